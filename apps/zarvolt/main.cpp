// zarvolt: the development environment. Opens the main window, with a
// program given on the command line (in quotes or not), and runs programs
// from it on the run window in the same process.
#include <QApplication>
#include <QFileInfo>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>

#include "environment/apresenta.h"
#include "environment/associacao.h"
#include "environment/codigo.h"
#include "environment/interacao.h"

namespace {

bool TemTela() {
  const char* x = std::getenv("DISPLAY");
  const char* w = std::getenv("WAYLAND_DISPLAY");
  const char* p = std::getenv("QT_QPA_PLATFORM");
  return (x && *x) || (w && *w) || (p && *p);
}

// The command line's file: one enclosing pair of double quotes, or of
// brackets with quotes inside, is stripped.
QString ArquivoDaLinha(QString a) {
  a = a.trimmed();
  if (a.startsWith(QLatin1Char('[')) && a.endsWith(QLatin1Char(']'))) a = a.mid(1, a.size() - 2);
  if (a.size() >= 2 && a.startsWith(QLatin1Char('"')) && a.endsWith(QLatin1Char('"'))) a = a.mid(1, a.size() - 2);
  return a;
}

}  // namespace

int main(int argc, char** argv) {
  if (!TemTela()) {
    std::fprintf(stderr,
                 "zarvolt: no display to open the environment on. Programs run without one with:\n"
                 "  zvrun --headless PROGRAM.zvc\n");
    return 2;
  }
  QApplication app(argc, argv);
  QApplication::setApplicationName(QStringLiteral("Zarvolt"));
  // Settings live beside the executable, as the runner's do, so that a
  // program run from the environment reads the same ZV.File.
  const std::filesystem::path pasta = QCoreApplication::applicationDirPath().toStdString();
  QStringList args = app.arguments();
  const QString arquivo = args.size() > 1 ? ArquivoDaLinha(args.mid(1).join(QLatin1Char(' '))) : QString();
  std::unique_ptr<zv::JanelaCodigo> janela;
  zv::Apresenta apresenta(
      pasta,
      [&] {
        janela = std::make_unique<zv::JanelaCodigo>(pasta, zv::InteracaoDaTela());
        janela->AssociaSeFaltar([&] {
          return zv::FazAssociacao(QCoreApplication::applicationFilePath().toStdString(),
                                   zv::PastaDadosUsuario());
        });
        janela->show();
        if (!arquivo.isEmpty()) janela->AbreDaLinhaDeComando(arquivo);
        // A copy left by a crash is offered last: restoring it replaces the file opened.
        janela->OfereceRecuperacao();
      },
      [](const QString& aviso) { std::fprintf(stderr, "zarvolt: %s\n", aviso.toLocal8Bit().constData()); });
  apresenta.show();
  return app.exec();
}
