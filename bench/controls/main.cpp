// The own controls' budgets, offscreen:
//   paint  one skinned button painted in each of its states (budget 1 ms)
//   idle   a window of 200 skinned buttons left alone once their background
//          sampling is over: the process's CPU time over the wall time
//          (budget 1% of one core)
//   bench_controls [seconds of idle, default 3]
#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QImage>
#include <QTimer>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <sys/resource.h>
#include <vector>

#include "controls/btn_esp.h"

using namespace zv;

namespace {

double CpuSegundos() {
  rusage r{};
  getrusage(RUSAGE_SELF, &r);
  return static_cast<double>(r.ru_utime.tv_sec + r.ru_stime.tv_sec) +
         static_cast<double>(r.ru_utime.tv_usec + r.ru_stime.tv_usec) / 1e6;
}

// The event loop left to itself, as a window nobody touches.
void Espera(int ms) {
  QEventLoop laco;
  QTimer::singleShot(ms, &laco, &QEventLoop::quit);
  laco.exec();
}

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  const int segundos = argc > 1 ? std::max(1, std::atoi(argv[1])) : 3;
  bool dentro = true;

  std::printf("%-28s %10s %10s  %s\n", "measure", "budget", "measured", "verdict");
  QWidget janela;
  janela.resize(200, 100);
  BtnEsp b(&janela);
  b.setGeometry(10, 10, 100, 32);
  b.setText(QStringLiteral("Save"));
  QImage alvo(b.size(), QImage::Format_ARGB32_Premultiplied);
  struct Caso {
    const char* nome;
    int estilo;
    bool ativo;
  };
  for (Caso c : {Caso{"paint drawn (style 0)", 0, true}, Caso{"paint skin up (style 1)", 1, true},
                 Caso{"paint skin disabled", 1, false}}) {
    b.DefineEstilo(c.estilo);
    if (c.estilo == 1) b.DefineTipoPele(5);
    b.setEnabled(c.ativo);
    const int vezes = 2000;
    QElapsedTimer t;
    t.start();
    for (int i = 0; i < vezes; ++i) b.render(&alvo);
    double ms = static_cast<double>(t.nsecsElapsed()) / 1e6 / vezes;
    bool ok = ms < 1.0;
    dentro = dentro && ok;
    std::printf("%-28s %10s %8.3f ms  %s\n", c.nome, "1 ms", ms, ok ? "within" : "OVER");
  }

  QWidget grande;
  grande.resize(1000, 700);
  std::vector<BtnEsp*> botoes;
  for (int i = 0; i < 200; ++i) {
    auto* bt = new BtnEsp(&grande);
    bt->setGeometry(5 + (i % 10) * 98, 5 + (i / 10) * 34, 94, 30);
    bt->setText(QStringLiteral("Button %1").arg(i));
    bt->DefineEstilo(1);
    bt->DefineTipoPele(i % kTiposBotao);
    botoes.push_back(bt);
  }
  grande.show();
  Espera(1000);  // the two background samples, at 300 and 600 ms
  const double cpu0 = CpuSegundos();
  QElapsedTimer parede;
  parede.start();
  Espera(segundos * 1000);
  const double uso = (CpuSegundos() - cpu0) / (static_cast<double>(parede.elapsed()) / 1000.0) * 100.0;
  bool ok = uso < 1.0;
  dentro = dentro && ok;
  std::printf("%-28s %10s %8.2f %%   %s\n", "idle, 200 skinned buttons", "1 %", uso, ok ? "within" : "OVER");
  return dentro ? 0 : 1;
}
