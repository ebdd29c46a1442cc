// Prints "WIDTHxHEIGHT COLOURS" of a PNG: its size and how many distinct
// colours it has (up to 100), so a script can tell a drawn window from a
// blank one.
#include <QImage>
#include <QSet>
#include <cstdio>

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  QImage img(QString::fromLocal8Bit(argv[1]));
  if (img.isNull()) {
    std::fprintf(stderr, "can't read %s\n", argv[1]);
    return 1;
  }
  QSet<QRgb> cores;
  for (int y = 0; y < img.height() && cores.size() < 100; ++y)
    for (int x = 0; x < img.width() && cores.size() < 100; ++x) cores.insert(img.pixel(x, y));
  std::printf("%dx%d %d\n", img.width(), img.height(), static_cast<int>(cores.size()));
  return 0;
}
