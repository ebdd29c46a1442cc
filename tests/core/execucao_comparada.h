// One run of a program as the differential tests compare it: the boxes it
// shows, how many statements it ran and every variable it leaves, so that a
// run with plans and one without can be told apart by a string comparison.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <string>
#include <vector>

#include "core/interpretador.h"
#include "runtime/headless_host.h"

namespace zv {

// `comPosicao` adds where each variable's values stand in the store, which
// planned Function calls must leave as the walk leaves it.
inline std::string RodaParaComparar(const Texto& fonte, bool semPlanos, int64_t limite, bool comPosicao = false) {
  char* buffer = nullptr;
  size_t tamanho = 0;
  std::FILE* f = open_memstream(&buffer, &tamanho);
  std::string r;
  {
    HostConsole host(f);
    Interpretador zv(host);
    zv.semPlanos = semPlanos;
    zv.limiteInstrucoes = limite;
    zv.fonte.textos[0] = fonte;
    zv.Executa();
    std::fflush(f);
    r.assign(buffer, tamanho);
    r += "statements " + std::to_string(zv.instrucoesExecutadas) + "\n";
    const Variaveis& v = zv.variaveis;
    for (TipoVariavel t : {TipoVariavel::String, TipoVariavel::Integer, TipoVariavel::Decimal}) {
      for (const EntradaVariavel& e : v.Diretorio(t)) {
        r += Utf8(e.nome) + (comPosicao ? "@" + std::to_string(e.inicio) : std::string()) + ":";
        for (int32_t i = 0; i < e.tamanho; ++i) {
          size_t k = static_cast<size_t>(e.inicio + i);
          r += t == TipoVariavel::String    ? Utf8(v.textos[k])
               : t == TipoVariavel::Integer ? std::to_string(v.inteiros[k])
                                            : Utf8(NumeroParaTexto(v.decimais[k]));
          r += ";";
        }
        r += "\n";
      }
    }
  }
  std::fclose(f);
  std::free(buffer);
  return r;
}

// What the program generators of the differential tests share: a seeded
// choice, and the lines joined into a source with CR LF.
class GeradorProgramas {
 public:
  explicit GeradorProgramas(uint32_t semente) : s_(semente) {}

 protected:
  int Um(int n) {
    s_ = s_ * 1103515245u + 12345u;
    return static_cast<int>((s_ >> 8) % static_cast<uint32_t>(n));
  }
  std::string Escolhe(std::initializer_list<const char*> opcoes) {
    return *(opcoes.begin() + Um(static_cast<int>(opcoes.size())));
  }
  static Texto Fonte(const std::vector<std::string>& linhas) {
    std::string fonte;
    for (const std::string& l : linhas) fonte += l + "\r\n";
    return Texto(fonte.begin(), fonte.end());
  }

 private:
  uint32_t s_;
};

}  // namespace zv
