// The one way a run is started, whoever starts it: zvrun, the fuzz target,
// the run window and the environment. It reads the program file, registers
// every subsystem's commands, sets the interpreter up and walks the program
// on a stack deep enough for the language's nesting limit.
//
// The stack. A user's recursive flood fill or tree walk nests routines
// thousands deep, and every nested walk costs a few kilobytes of machine
// stack, more than the 8 MiB a process's main thread starts with. The walk
// can't move to a thread of its own: the run window's widgets, its events
// and its timers belong to the GUI thread, and the walk touches them at
// every pump point. Re-executing the process with a raised stack limit would
// leak that limit into every program the user starts from it and lose the
// environment's state. So the walk stays on the calling thread and only its
// stack changes: `NaPilhaDaExecucao` switches (with ucontext) to a stack of
// its own, reserved once per process and committed page by page as the walk
// goes deeper, and switches back when the walk returns. Thread-local state,
// Qt's thread affinity and the event loop see the same thread throughout.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "core/interpretador.h"

namespace zv {

// What a run is asked to do, besides its program.
struct PedidoExecucao {
  std::string arquivo;        // the source file: its name titles the boxes, its folder is DirPrograma
  std::string dirConfig;      // folder of ZV.File and Zarvolt8.inf; empty: the executable's folder
  std::string linhaComando;   // CommandLine
  bool passoAPasso = false;   // ModoDepuracao: the step box before each statement
  bool semPlanos = false;     // every statement walked from its text
  int64_t maxInstrucoes = 0;  // end the run after so many statements (0: no limit)
};

// Reads a program file as the environment saves it (a .Zvc document or a
// bare main code). False, with a message in the runner's words, when the
// file can't be read or is damaged.
bool CarregaFonte(const std::string& caminho, FontePrograma& fonte, std::string& erro);

// Every subsystem's commands into the keyword table. Once a process; later
// calls do nothing.
void RegistraSubsistemas();

// Runs `corpo` on the calling thread, on the run's deep stack. A call made
// while already on it runs `corpo` as it is. An exception leaves `corpo` on
// its own stack and is thrown again on the caller's.
void NaPilhaDaExecucao(const std::function<void()>& corpo);

// Bytes of the run's stack: the deepest nesting measured costs about 9 KiB
// a level, so the language's limit of 50,000 levels takes less than half.
inline constexpr size_t kTamanhoPilhaExecucao = size_t(1) << 30;

// The lowest address the stack the caller runs on may be used down to,
// with room left for one level's statement and the host's boxes below it;
// null when it can't be told.
const char* FundoPilhaAtual();

// One run of one program on a host.
class Lancador {
 public:
  Lancador(Host& host, const PedidoExecucao& pedido, const FontePrograma& fonte);

  Interpretador& interpretador() { return *zv_; }

  // The whole run, from declaring the predeclared variables to the end of
  // the main walk, on the deep stack.
  void Executa();
  // The same, then `depois` on the same stack: what the run does after its
  // main text (the run window's events and timers until it closes), where
  // a timer's Sub may nest walks as deep as the main text's.
  void Executa(const std::function<void()>& depois);

 private:
  std::unique_ptr<Interpretador> zv_;
};

}  // namespace zv
