#include "runtime/aplicacao.h"
#include "runtime/mensagens.h"

#include <QApplication>
#include <QIcon>
#include <QPixmap>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace zv {

namespace {

// The offscreen platform says on standard error that it can't pass size
// hints to a window manager it hasn't got; a headless run's output stays
// the program's own.
QtMessageHandler anterior = nullptr;
void FiltraMensagens(QtMsgType tipo, const QMessageLogContext& ctx, const QString& texto) {
  if (texto.contains(QLatin1String(msg::execucao::kAvisoDicasDeTamanho))) return;
  if (anterior)
    anterior(tipo, ctx, texto);
  else
    std::fprintf(stderr, "%s\n", qPrintable(qFormatLogMessage(tipo, ctx, texto)));
}

}  // namespace

std::string iconeAplicacao;

void GaranteAplicacao(bool semTela) {
  if (QCoreApplication::instance()) return;
  if (semTela) setenv("QT_QPA_PLATFORM", "offscreen", 1);
  {
    // Qt wants a private runtime folder and complains on standard error
    // when a bare environment (a test, a container) has none.
    const char* r = std::getenv("XDG_RUNTIME_DIR");
    if (!r || !*r) {
      std::string d = "/tmp/zvrun-runtime-" + std::to_string(getuid());
      mkdir(d.c_str(), 0700);
      setenv("XDG_RUNTIME_DIR", d.c_str(), 1);
    }
  }
  // QApplication keeps references to these for its whole life.
  static int argc = 1;
  static char nome[] = "zvrun";
  static char* argv[] = {nome, nullptr};
  // Never destroyed: the run's widgets may outlive main's locals, and the
  // process ends right after the run.
  if (semTela) anterior = qInstallMessageHandler(FiltraMensagens);
  auto* app = new QApplication(argc, argv);
  app->setQuitOnLastWindowClosed(false);
  if (!iconeAplicacao.empty()) {
    QPixmap p;
    if (p.loadFromData(reinterpret_cast<const uchar*>(iconeAplicacao.data()), uint(iconeAplicacao.size())))
      QApplication::setWindowIcon(QIcon(p));
  }
}

bool AplicacaoCriada() { return QCoreApplication::instance() != nullptr; }

}  // namespace zv
