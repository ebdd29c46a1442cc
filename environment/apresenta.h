// The splash form `Apresenta`: a picture cut to its shape, shown while the
// environment starts. The shape (every pixel of the key colour cut away) is
// cached in zv.shp in the program's folder, in the layout of a region's data
// on the original platform: a 32-byte header, then one rectangle a band run.
#pragma once

#include <QImage>
#include <QRegion>
#include <QTimer>
#include <QWidget>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace zv {

// The key colour: red 192, green 192, blue 192.
inline constexpr QRgb kCorRecortada = 0xffc0c0c0;

// The splash picture, drawn here rather than shipped as a file.
QImage ImagemApresenta();
// The picture's region: the whole rectangle less every run of the key colour.
QRegion RegiaoDaImagem(const QImage& imagem, QRgb recortada = kCorRecortada);

// The region's data, as bytes and back. LeRegiao refuses (nullopt) any file
// whose header doesn't agree with its size: a damaged cache is recomputed.
std::string BytesDaRegiao(const QRegion& regiao);
std::optional<QRegion> RegiaoDosBytes(const std::string& bytes);
// Empty when written; otherwise the message for the failure.
std::string GravaRegiao(const std::filesystem::path& arquivo, const QRegion& regiao);

class Apresenta : public QWidget {
 public:
  // `pronta` runs once: on the fourth tick of 150 ms, or at once on a
  // click or a key. `aviso` hears of a shape file that can't be used.
  Apresenta(const std::filesystem::path& pasta, std::function<void()> pronta,
            std::function<void(const QString&)> aviso = {});
  void Tique();
  int Tiques() const { return tiques_; }
  bool RegiaoDoCache() const { return doCache_; }

 protected:
  void paintEvent(QPaintEvent*) override;
  void mousePressEvent(QMouseEvent*) override;
  void keyPressEvent(QKeyEvent*) override;

 private:
  void Termina();
  QImage imagem_;
  QTimer relogio_;
  int tiques_ = 0;
  bool doCache_ = false;
  std::function<void()> pronta_;
};

}  // namespace zv
