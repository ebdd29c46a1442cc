// The grid's own costs, without the interpreter: a 5-column NovoBox filled
// with N rows through Add, BoxNew and AddEnd, sorted by a numeric and a text
// heading, scrolled from top to bottom a row at a time, clicked on rows,
// and read back cell by cell. Prints one line per size.
//
//   bench_grid [N ...]      (10000 and 100000 without one)
#include <QApplication>
#include <QMouseEvent>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "controls/grade.h"

using namespace zv;

namespace {

using Relogio = std::chrono::steady_clock;
double Ms(Relogio::time_point desde) {
  return std::chrono::duration<double, std::milli>(Relogio::now() - desde).count();
}

void Mede(int n) {
  NovoBox b(nullptr);
  b.resize(560, 400);
  b.atributosAtivos = true;
  b.Titulo(QStringLiteral("Id"), 6, 1, 1);
  b.Titulo(QStringLiteral("Name"), 12, 0, 0);
  b.Titulo(QStringLiteral("City"), 10, 0, 0);
  b.Titulo(QStringLiteral("Total"), 9, 1, 1);
  b.Titulo(QStringLiteral("Note"), 12, 0, 0);
  b.Ativa(true);
  b.show();
  auto t = Relogio::now();
  for (int k = 0; k < n; ++k) {
    QString textos[5] = {QString::number(k), QStringLiteral("name %1").arg(n - k), QStringLiteral("Lisbon"),
                         QStringLiteral("%1,50").arg(k * 7 % 1000), QStringLiteral("a note")};
    for (const QString& s : textos) b.Add(s);
    b.BoxNew();
  }
  b.AddEnd();
  double enche = Ms(t);
  double bytes = static_cast<double>(b.modelo.BytesEstrutura()) / (5.0 * n);
  t = Relogio::now();
  b.ClicaCabecalho(3);
  double numerico = Ms(t);
  t = Relogio::now();
  b.ClicaCabecalho(1);
  double texto = Ms(t);
  // A row at a time, as the arrow of the bar steps.
  int passos = b.BarraV()->maximum();
  t = Relogio::now();
  for (int v = 1; v <= passos; ++v) b.BarraV()->setValue(v);
  double rola = Ms(t);
  // Clicks on the rows in view, as the mouse gives them.
  int cliques = 2000;
  t = Relogio::now();
  for (int k = 0; k < cliques; ++k) {
    QPoint p = b.RetCelula(k % b.TotalLinhas(), 1).center();
    QMouseEvent press(QEvent::MouseButtonPress, p, b.mapToGlobal(p), Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QMouseEvent solta(QEvent::MouseButtonRelease, p, b.mapToGlobal(p), Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(&b, &press);
    QApplication::sendEvent(&b, &solta);
  }
  double clica = Ms(t);
  t = Relogio::now();
  size_t lidos = 0;
  for (int l = 0; l < n; ++l)
    for (int c = 0; c < 5; ++c) lidos += static_cast<size_t>(b.LeVetor(l, c).size());
  double le = Ms(t);
  std::printf("%8d %9.1f %9.1f %9.1f %9.4f %9.4f %9.1f %11.1f %10zu\n", n, enche, numerico, texto,
              passos ? rola / passos : 0.0, clica / cliques, le, bytes, lidos);
}

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  std::vector<int> tamanhos;
  for (int k = 1; k < argc; ++k) tamanhos.push_back(std::atoi(argv[k]));
  if (tamanhos.empty()) tamanhos = {10000, 100000};
  std::printf("%8s %9s %9s %9s %9s %9s %9s %11s %10s\n", "rows", "fill ms", "sort# ms", "sortA ms", "step ms",
              "click ms", "read ms", "bytes/cell", "chars read");
  for (int n : tamanhos) Mede(n);
  return 0;
}
