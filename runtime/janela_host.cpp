#include "runtime/janela_host.h"

#include <QApplication>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QMessageBox>
#include <QScreen>
#include <QTimer>
#include <thread>

#include "core/interpretador.h"
#include "runtime/aplicacao.h"
#include "runtime/janelas.h"
#include "runtime/roteiro.h"

namespace zv {

HostJanela::HostJanela(Modo modo, std::FILE* saida) : HostConsole(saida), modo_(modo) {
  // On the desktop the run window is there from the start.
  if (modo_ == Modo::Tela) GaranteGui();
}

HostJanela::~HostJanela() {
  for (auto& [id, t] : timers_) delete t.qt;
}

void HostJanela::GaranteGui() {
  if (gui_) return;
  GaranteAplicacao(modo_ == Modo::SemTela);
  gui_ = true;
  // Timers started before the GUI (a Timer_ Sub's tick) move onto Qt's.
  for (auto& [id, t] : timers_) {
    if (!t.ligado) continue;
    HostConsole::ParaTimer(id);
    LigaTimerQt(id, t);
  }
}

void HostJanela::LigaTimerQt(int id, Timer& t) {
  if (!t.qt) {
    t.qt = new QTimer();
    t.qt->setTimerType(Qt::PreciseTimer);
    QObject::connect(t.qt, &QTimer::timeout, [this, id] {
      auto it = timers_.find(id);
      if (it == timers_.end() || !it->second.ligado) return;
      // A copy: the tick may start or stop its own timer.
      std::function<void()> tique = it->second.tique;
      tique();
    });
  }
  t.qt->start(t.ms);
}

void HostJanela::IniciaTimer(int id, int milissegundos, std::function<void()> tique) {
  Timer& t = timers_[id];
  t.ms = milissegundos;
  t.tique = std::move(tique);
  t.ligado = true;
  if (gui_)
    LigaTimerQt(id, t);
  else
    HostConsole::IniciaTimer(id, milissegundos, t.tique);
}

void HostJanela::ParaTimer(int id) {
  auto it = timers_.find(id);
  if (it == timers_.end()) return;
  it->second.ligado = false;
  if (it->second.qt) it->second.qt->stop();
  HostConsole::ParaTimer(id);
}

Resposta HostJanela::MostraCaixa(const Caixa& caixa) {
  if (modo_ == Modo::SemTela) return HostConsole::MostraCaixa(caixa);
  QMessageBox box;
  box.setWindowTitle(QString::fromStdU16String(caixa.titulo));
  QString texto = QString::fromStdU16String(caixa.texto);
  texto.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(QChar(u'\r'), QChar(u'\n'));
  box.setText(texto);
  switch (caixa.tipo) {
    case TipoCaixa::Info:
      box.setIcon(QMessageBox::Information);
      break;
    case TipoCaixa::Pergunta:
      box.setIcon(QMessageBox::Question);
      break;
    case TipoCaixa::Passo:
      box.setIcon(QMessageBox::NoIcon);
      break;
    default:
      box.setIcon(QMessageBox::Critical);
  }
  QMessageBox::StandardButton padrao = QMessageBox::Ok;
  switch (caixa.botoes) {
    case Botoes::OK:
      box.setStandardButtons(QMessageBox::Ok);
      break;
    case Botoes::OKCancel:
      box.setStandardButtons(QMessageBox::Ok | QMessageBox::Cancel);
      if (caixa.padrao == Resposta::Cancel) padrao = QMessageBox::Cancel;
      break;
    case Botoes::YesNo:
      box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
      padrao = caixa.padrao == Resposta::Yes ? QMessageBox::Yes : QMessageBox::No;
      break;
  }
  box.setDefaultButton(padrao);
  // The box runs its own loop: a pump point, where timers may fire.
  switch (box.exec()) {
    case QMessageBox::Cancel:
      return Resposta::Cancel;
    case QMessageBox::Yes:
      return Resposta::Yes;
    case QMessageBox::No:
      return Resposta::No;
    default:
      // The close box of a box with Cancel counts as Cancel, as on the
      // original platform.
      return caixa.botoes == Botoes::OKCancel && box.clickedButton() == nullptr ? Resposta::Cancel : Resposta::OK;
  }
}

void HostJanela::Bombeia() {
  if (gui_)
    QCoreApplication::processEvents(QEventLoop::AllEvents);
  else
    HostConsole::Bombeia();
  if (roteiro && zv_ && !entregando_) EntregaRoteiro();
}

void HostJanela::EntregaRoteiro() {
  auto agora = std::chrono::steady_clock::now();
  if (agora < esperaAte_ || !roteiro->Pendente()) return;
  entregando_ = true;
  int linha = 0;
  const QJsonObject& acao = roteiro->Proxima(linha);
  if (acao.contains(QStringLiteral("wait"))) {
    esperaAte_ = agora + std::chrono::milliseconds(acao.value(QStringLiteral("wait")).toInt());
  } else {
    Janelas(*zv_).EntregaAcao(acao, linha);
    if (gui_) QCoreApplication::processEvents(QEventLoop::AllEvents);
  }
  entregando_ = false;
}

void HostJanela::FechaJanela() {
  HostConsole::FechaJanela();
  if (zv_)
    Janelas(*zv_).FechaPrincipal();
}

void HostJanela::MostraJanela() {
  if (modo_ == Modo::Tela && zv_) Janelas(*zv_).Principal();
}

void HostJanela::Escreve(const Texto& texto) {
  // On the desktop Write prints on the window only.
  if (modo_ == Modo::SemTela) HostConsole::Escreve(texto);
}

bool HostJanela::Interativo() const {
  if (modo_ == Modo::Tela) return true;
  if (roteiro && roteiro->Pendente()) return true;
  // Used up (or none): the run still waits --linger milliseconds.
  auto agora = std::chrono::steady_clock::now();
  if (!fimMarcado_) {
    fimMarcado_ = true;
    fimDoRoteiro_ = agora;
  }
  return roteiro && agora < fimDoRoteiro_ + std::chrono::milliseconds(demoraFinal);
}

Plataforma HostJanela::DadosPlataforma() const {
  Plataforma p = HostConsole::DadosPlataforma();
  if (modo_ == Modo::Tela && gui_) {
    if (QScreen* s = QGuiApplication::primaryScreen()) {
      p.larguraTela = s->geometry().width();
      p.alturaTela = s->geometry().height();
    }
    p.totalFontes = static_cast<int>(QFontDatabase::families().size());
  }
  return p;
}

void HostJanela::ExibeModal(QWidget* janela) {
  janela->setWindowModality(Qt::ApplicationModal);
  janela->show();
  while (janela->isVisible() && zv_ && zv_->executando) {
    if (!Interativo()) {
      // Headless, with the script used up, nobody will ever close it.
      std::fprintf(stderr, "zvrun: the event script is used up while a modal window waits; the run ends\n");
      zv_->pararPrograma = true;
      janela->hide();
      break;
    }
    if (modo_ == Modo::Tela && !roteiro) {
      QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    } else {
      Dorme(1);
      Bombeia();
    }
  }
  janela->setWindowModality(Qt::NonModal);
}

void HostJanela::AguardaFim() {
  if (!zv_) return;
  SistemaJanelas& j = Janelas(*zv_);
  if (modo_ == Modo::Tela) {
    // The end of the main text doesn't end the run: the window stays until
    // it is closed, and timers and events go on.
    while (zv_->executando && j.PrincipalViva()) {
      if (roteiro && roteiro->Pendente()) {
        Dorme(1);
        Bombeia();
      } else {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
      }
    }
    return;
  }
  while (zv_->executando && roteiro && roteiro->Pendente()) {
    Dorme(1);
    Bombeia();
  }
  auto fim = std::chrono::steady_clock::now() + std::chrono::milliseconds(demoraFinal);
  while (zv_->executando && std::chrono::steady_clock::now() < fim) {
    Dorme(1);
    Bombeia();
  }
}

}  // namespace zv
