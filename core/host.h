// The one way the language core reaches the outside: a run window with its
// message boxes, its event pump and its timers. The Qt run window and the
// headless console host implement it.
#pragma once

#include <cstdint>
#include <functional>

#include "core/texto.h"

namespace zv {

enum class Botoes : uint8_t { OK, OKCancel, YesNo };
enum class Resposta : uint8_t { OK, Cancel, Yes, No };

// What a box is for; it gives the icon.
enum class TipoCaixa : uint8_t {
  Info,      // information icon (Message)
  Critico,   // critical icon (the core's own complaints)
  Pergunta,  // question mark (Message with OptionYesNo)
  Erro,      // the run-time error box: location, CR, message; OK and Cancel
  Passo,     // the debug step box
};

struct Caixa {
  TipoCaixa tipo = TipoCaixa::Info;
  Botoes botoes = Botoes::OK;
  Resposta padrao = Resposta::OK;  // the default button
  Texto titulo;
  Texto texto;
};

// Facts about the machine that the predeclared variables show.
struct Plataforma {
  int larguraTela = 1024;   // pixels
  int alturaTela = 768;
  int totalFontes = 1;      // number of fonts the printer or screen knows
  Texto pastaSistema;       // WindowsDir
  Texto areaDeTrabalho;     // Desktop
  Texto pastaProgramas;     // WindowsPrograms
  Texto pastaExecutavel;    // ZVDir, with no separator at its end
};

class Host {
 public:
  virtual ~Host() = default;

  // Modal; returns the button pressed.
  virtual Resposta MostraCaixa(const Caixa& caixa) = 0;
  // Delivers pending events (and due timers) once.
  virtual void Bombeia() = 0;
  // Sleeps, then the caller pumps.
  virtual void Dorme(int milissegundos) = 0;
  // Closes the run window as if by program; the tear-down follows.
  virtual void FechaJanela() = 0;
  // Shows the run window (unless the program starts it invisible).
  virtual void MostraJanela() {}
  // Prints a line on the current window (Write); the headless host writes it
  // to standard output.
  virtual void Escreve(const Texto& texto) = 0;
  virtual void DefineTitulo(const Texto& texto) {}

  // Timers fire only inside Bombeia. Id names the timer, so starting it again
  // changes its interval.
  virtual void IniciaTimer(int id, int milissegundos, std::function<void()> tique) = 0;
  virtual void ParaTimer(int id) = 0;

  // False when no user can ever click (a headless run): waits for a click end.
  virtual bool Interativo() const { return true; }

  virtual Plataforma DadosPlataforma() const = 0;

  // True for a run that touches no device of the machine (a headless run):
  // its hardware ports are the run's own.
  virtual bool SemDispositivos() const { return true; }
};

// Ids of the run window's timers.
enum IdTimer : int { TimerTique = 1, TimerEspelhos = 2, TimerMouse = 3 };

}  // namespace zv
