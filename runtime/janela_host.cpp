#include "runtime/janela_host.h"

#include <QCoreApplication>
#include <QTimer>
#include <thread>

#include "core/interpretador.h"
#include "runtime/porta_janelas.h"
#include "runtime/roteiro.h"
#include "runtime/mensagens.h"

namespace zv {

HostJanela::HostJanela(Modo modo, std::FILE* saida) : HostConsole(saida), modo_(modo) {
  // On the desktop the run window is there from the start.
  if (modo_ == Modo::Tela) GaranteGui();
}

namespace {

// The module, loaded if it isn't yet; a failure to load it is a host
// failure of the command that needed it.
ModuloJanelas& Modulo() {
  std::string erro;
  ModuloJanelas* m = CarregaModuloJanelas(&erro);
  if (!m) throw FalhaHost(U(erro));
  return *m;
}

}  // namespace

HostJanela::~HostJanela() {
  for (auto& [id, t] : timers_) delete t.qt;
}

void HostJanela::GaranteGui() {
  if (gui_) return;
  Modulo().CriaAplicacao(modo_ == Modo::SemTela);
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
  if (antesDaCaixa) antesDaCaixa(caixa);
  // The box runs its own loop: a pump point, where timers may fire.
  Resposta r = modo_ == Modo::SemTela ? HostConsole::MostraCaixa(caixa) : Modulo().MostraCaixa(caixa);
  if (depoisDaCaixa) depoisDaCaixa(caixa, r);
  return r;
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
    if (ModuloJanelas* m = ModuloJanelasCarregado())
      m->EntregaAcao(*zv_, acao, linha);
    else
      std::fprintf(stderr, msg::execucao::kLinhaDoRoteiro, linha, msg::execucao::kAindaSemJanela);
    if (gui_) QCoreApplication::processEvents(QEventLoop::AllEvents);
  }
  entregando_ = false;
}

void HostJanela::FechaJanela() {
  HostConsole::FechaJanela();
  Termina();
}

void HostJanela::MostraJanela() {
  if (modo_ == Modo::Tela && zv_) Modulo().MostraPrincipal(*zv_);
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
  // "<=": the call that finds the script used up still says yes, so that a
  // run with a script never gets the box of a run without a user; the
  // waits that ask again a moment later end the run quietly.
  return roteiro && agora <= fimDoRoteiro_ + std::chrono::milliseconds(demoraFinal);
}

Plataforma HostJanela::DadosPlataforma() const {
  Plataforma p = HostConsole::DadosPlataforma();
  if (modo_ == Modo::Tela && gui_) Modulo().DadosTela(p);
  return p;
}

void HostJanela::ExibeModal(const std::function<bool()>& aberta, const std::function<void()>& fecha) {
  while (aberta() && zv_ && zv_->executando) {
    if (!Interativo()) {
      // Headless, with no script or one used up, nobody will ever close it.
      if (!mudo) std::fputs(msg::execucao::kModalSemUsuario, stderr);
      zv_->pararPrograma = true;
      fecha();
      break;
    }
    if (modo_ == Modo::Tela && !roteiro) {
      QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    } else {
      Dorme(1);
      Bombeia();
    }
  }
}

void HostJanela::AguardaFim() {
  if (!zv_) return;
  if (modo_ == Modo::Tela) {
    // The end of the main text doesn't end the run: the window stays until
    // it is closed, and timers and events go on.
    ModuloJanelas& m = Modulo();
    while (zv_->executando && m.PrincipalViva(*zv_)) {
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

void HostJanela::Termina() {
  if (antesDoFim) {
    auto f = std::move(antesDoFim);
    antesDoFim = nullptr;
    f();
  }
  if (ModuloJanelas* m = ModuloJanelasCarregado()) {
    if (zv_) m->FechaPrincipal(*zv_);
  } else if (zv_) {
    zv_->executando = false;
  }
}

}  // namespace zv
