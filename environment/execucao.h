// Run and debug from the environment: a program runs in the environment's
// own process, on the GUI thread, from the texts in memory (saved or not),
// on the run window. Break ends it at its next pump point; Run during a run
// ends that one and starts again with the present texts.
#pragma once

#include <cstdio>
#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "core/interpretador.h"

namespace zv {

// UsaAPI: set once a program's text declares a foreign library, for the
// life of the process.
bool UsaAPI();
// "API LIBRARY" in any code, in any case, comments too.
bool DeclaraBiblioteca(const FontePrograma& fonte);

class ControleExecucao {
 public:
  enum class Estado { Parado, Executando, Depurando };

  // Where a run's configuration files lie (ZV.File, Zarvolt8.inf).
  std::filesystem::path dirConfig;
  // Tests run programs without the desktop's boxes: boxes go to `saida` as
  // JSON lines and take their answers from `respostas`.
  bool semTela = false;
  std::vector<std::string> respostas;
  std::FILE* saida = stdout;
  // Told of every change of state, and when a run ends (the main window
  // shows itself again there).
  std::function<void(Estado)> aoMudar;
  // Breakpoints for the next run, as (code, line from 1).
  std::set<std::pair<int32_t, int32_t>> pontosParada;
  // Told when a step box or a run-time error box is about to show, with the
  // code and line (from 1) it names and its text, and when it has been answered.
  std::function<void(TipoCaixa, int32_t codigo, int32_t linha, const Texto& texto)> aoParar;
  std::function<void(TipoCaixa)> aoSeguir;

  // Executa, or Depura with `depurar`: starts a run, or, during one, ends it
  // and starts again once it has unwound. Returns when no run is left to do.
  void Executa(const FontePrograma& fonte, const std::string& arquivo, bool depurar);
  // ComEncerra: the run ends at its next pump point; nothing when none runs.
  void Encerra();

  Estado estado() const { return estado_; }
  bool Rodando() const { return zv_ != nullptr; }
  // The run's interpreter while it runs, for the environment's own panels.
  Interpretador* interpretador() const { return zv_; }
  // How many runs ended, for tests that wait for one.
  int RunsTerminados() const { return terminados_; }

 private:
  struct Pedido {
    FontePrograma fonte;
    std::string arquivo;
    bool depurar;
  };
  void Roda(const Pedido& p);
  void Muda(Estado e);
  Interpretador* zv_ = nullptr;
  Estado estado_ = Estado::Parado;
  std::optional<Pedido> proximo_;
  int terminados_ = 0;
};

}  // namespace zv
