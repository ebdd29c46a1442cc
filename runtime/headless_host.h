// A host without a window: message boxes go to standard output as JSON
// lines and take their answers from a script; Write prints a line.
#pragma once

#include <chrono>
#include <cstdio>
#include <map>
#include <vector>

#include "core/host.h"

namespace zv {

// A box as one JSON line: {"box":..,"title":..,"text":..,"buttons":..,"answer":..}.
std::string CaixaJson(const Caixa& c, Resposta resposta);
std::string EscapaJson(TextoV texto);
const char* NomeResposta(Resposta r);
// "OK", "Cancel", "Yes", "No" (any case); false for anything else.
bool LeResposta(std::string_view s, Resposta& r);

class HostConsole : public Host {
 public:
  explicit HostConsole(std::FILE* saida = stdout) : saida_(saida) {}

  // What the user answers, in order: a box takes the next entry as its
  // button (OK, Cancel, Yes, No), a dialogue as what was chosen.
  std::vector<std::string> respostas;
  bool mudo = false;                // print nothing (for tools)
  bool janelaFechada = false;

  Resposta MostraCaixa(const Caixa& caixa) override;
  void Bombeia() override;
  void Dorme(int milissegundos) override;
  void FechaJanela() override { janelaFechada = true; }
  void Escreve(const Texto& texto) override;
  void IniciaTimer(int id, int milissegundos, std::function<void()> tique) override;
  void ParaTimer(int id) override { timers_.erase(id); }
  bool Interativo() const override { return false; }
  Plataforma DadosPlataforma() const override;

  // The next scripted answer; false when they are used up.
  bool ProximaResposta(std::string& r);
  // One line on the output (a dialogue's JSON line); nothing when mute.
  void EscreveLinha(const std::string& linha);

 private:
  struct Timer {
    std::chrono::milliseconds intervalo;
    std::chrono::steady_clock::time_point proximo;
    std::function<void()> tique;
  };
  std::FILE* saida_;
  size_t proximaResposta_ = 0;
  std::map<int, Timer> timers_;
  bool bombeando_ = false;
};

}  // namespace zv
