// The notification area: AddIconSysTray puts the run window's icon there,
// MinimizeSysTray hides the current window in it. A double click on the
// icon shows or hides the window, a right click opens its small menu (the
// window's way back, and Exit). A desktop without a notification area, or
// a run without a screen, shows no icon.
#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QPointer>
#include <QSystemTrayIcon>

#include "controls/figuras_padrao.h"
#include "library/texto_qt.h"
#include "runtime/aplicacao.h"
#include "runtime/janela_host.h"
#include "runtime/janelas.h"
#include "runtime/mensagens.h"

namespace zv {

namespace {

// The icon and its menu, owned by the run's window system.
class Bandeja : public QObject {
 public:
  Bandeja(SistemaJanelas& s, JanelaExecucao* janela, const QString& dica) : s_(s), janela_(janela) {
    // Without an area there is no icon, and hiding would leave no way back.
    if (!QSystemTrayIcon::isSystemTrayAvailable()) return;
    QIcon icone = janela->windowIcon();
    if (icone.isNull()) icone = QIcon(FiguraPadrao(0));  // the first default picture
    icone_ = new QSystemTrayIcon(icone, this);
    icone_->setToolTip(dica);
    auto* mostra = menu_.addAction(QString::fromUtf16(msg::kBandejaMostra));
    menu_.addSeparator();
    auto* sai = menu_.addAction(QString::fromUtf16(msg::kBandejaSai));
    QObject::connect(mostra, &QAction::triggered, this, [this] { Mostra(true); });
    QObject::connect(sai, &QAction::triggered, this, [this] { s_.FechaPrincipal(); });
    icone_->setContextMenu(&menu_);
    QObject::connect(icone_, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason r) {
      if (r == QSystemTrayIcon::DoubleClick) Mostra(janela_ && !janela_->isVisible());
    });
    icone_->show();
  }
  bool Visivel() const { return icone_ && icone_->isVisible(); }

 private:
  void Mostra(bool visivel) {
    if (!janela_) return;
    janela_->setVisible(visivel);
    if (visivel) janela_->activateWindow();
    s_.modoBandeja = !visivel;
  }

  SistemaJanelas& s_;
  QPointer<JanelaExecucao> janela_;
  QSystemTrayIcon* icone_ = nullptr;
  QMenu menu_;
};

// The tip: the source's name less its last four characters (".zvc").
QString Dica(const Interpretador& zv) {
  const Texto& n = zv.nomeArquivoPrograma;
  return Q(n.size() > 4 ? n.substr(0, n.size() - 4) : Texto());
}

Valor CmdAddIconSysTray(Interpretador& zv, const Texto&) {
  SistemaJanelas& s = Janelas(zv);
  JanelaExecucao* j = s.Atual();
  if (!s.bandeja && !s.SemTela()) s.bandeja = std::make_unique<Bandeja>(s, j, Dica(zv));
  return Valor();
}

// With no icon to click (none added, or no notification area), the window
// is minimised instead of hidden, so that the taskbar still brings it back.
Valor CmdMinimizeSysTray(Interpretador& zv, const Texto&) {
  SistemaJanelas& s = Janelas(zv);
  auto* b = static_cast<Bandeja*>(s.bandeja.get());
  if (b && b->Visivel())
    s.Atual()->hide();
  else
    s.Atual()->showMinimized();
  s.modoBandeja = true;
  return Valor();
}

}  // namespace

void RegistraBandeja(TabelaComandos& t) {
  DefinicaoComando semArgs;
  semArgs.semArgumentos = true;
  t.Define(u"AddIconSysTray", CmdAddIconSysTray, semArgs);
  t.Define(u"MinimizeSysTray", CmdMinimizeSysTray, semArgs);
}

}  // namespace zv
