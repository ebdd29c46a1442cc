// HostJanela: the host of a run with a run window, on Qt Widgets. On the
// desktop its boxes are real message boxes; without a display (zvrun
// --headless) it keeps the console host's contract (boxes as JSON lines,
// Write as a line) and puts the windows on Qt's offscreen platform.
//
// One thread: the walk runs on the GUI thread and events reach the program
// only inside Bombeia, a box, or a modal window's loop. The timers are
// QTimers, and a QTimer fires only while an event loop runs, which is
// exactly at those points. The GUI itself is made at the first window
// command (GaranteGui): a program that opens no window starts nothing of it.
#pragma once

#include <chrono>
#include <map>
#include <memory>

#include "runtime/headless_host.h"

class QTimer;

namespace zv {

class Interpretador;
class RoteiroEventos;

class HostJanela : public HostConsole {
 public:
  enum class Modo { Tela, SemTela };
  explicit HostJanela(Modo modo, std::FILE* saida = stdout);
  ~HostJanela() override;

  // The run whose windows this host shows; set before the run starts.
  void Liga(Interpretador* zv) { zv_ = zv; }
  bool SemTela() const { return modo_ == Modo::SemTela; }
  bool SemDispositivos() const override { return SemTela(); }

  // --events: the user's actions, one at a pump. Null: none.
  std::unique_ptr<RoteiroEventos> roteiro;
  // --linger: how long the run pumps on after the main text and the script.
  int demoraFinal = 0;

  Resposta MostraCaixa(const Caixa& caixa) override;
  void Bombeia() override;
  void FechaJanela() override;
  void MostraJanela() override;
  void Escreve(const Texto& texto) override;
  void IniciaTimer(int id, int milissegundos, std::function<void()> tique) override;
  void ParaTimer(int id) override;
  bool Interativo() const override;
  Plataforma DadosPlataforma() const override;

  // Makes the QApplication, if there is none, and moves the timers onto it.
  void GaranteGui();
  bool GuiAtiva() const { return gui_; }
  // A modal wait: pumps while `aberta` says the window is open and the run
  // goes on; `fecha` hides it when nobody could ever close it.
  void ExibeModal(const std::function<bool()>& aberta, const std::function<void()>& fecha);
  // After the main text: on the desktop, until the main window closes;
  // headless, until the event script is used up, then --linger more.
  void AguardaFim();
  // The end of the run: the main window closes (if the run made one) and
  // the tear-down follows; `antesDoFim` runs first, once, in either case.
  void Termina();
  std::function<void()> antesDoFim;
  // Told of every box before it shows and once it is answered: the
  // environment marks the line a step or an error box names.
  std::function<void(const Caixa&)> antesDaCaixa;
  std::function<void(const Caixa&, Resposta)> depoisDaCaixa;

 private:
  struct Timer {
    int ms = 0;
    std::function<void()> tique;
    QTimer* qt = nullptr;  // owned by the host; kept when stopped, since a tick may stop its own timer
    bool ligado = false;
  };
  void LigaTimerQt(int id, Timer& t);
  void EntregaRoteiro();

  Modo modo_;
  Interpretador* zv_ = nullptr;
  bool gui_ = false;
  bool entregando_ = false;
  std::map<int, Timer> timers_;
  std::chrono::steady_clock::time_point esperaAte_{};
  mutable std::chrono::steady_clock::time_point fimDoRoteiro_{};
  mutable bool fimMarcado_ = false;
};

}  // namespace zv
