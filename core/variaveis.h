// The variable store: three directories (String, Integer, Decimal) in order
// of declaration, each beside its value table, with a hash on the name so
// that a lookup doesn't scan.
#pragma once

#include <algorithm>
#include <cstdint>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "core/texto.h"

namespace zv {

enum class TipoVariavel : uint8_t { String = 0, Integer = 1, Decimal = 2 };
const char16_t* NomeTipo(TipoVariavel t);
// The three type words, exact case; false for any other word.
bool LeTipo(TextoV palavra, TipoVariavel& tipo);

// A directory entry: the name as stored (upper case, at most 50 characters,
// trimmed), the index of its first value and its number of values.
struct EntradaVariavel {
  Texto nome;
  int32_t inicio = 0;
  int32_t tamanho = 1;
  bool consultado = false;  // found while lookups were remembered
};

class Variaveis {
 public:
  // Index of the variable's first value, or -1. The name may carry an index
  // "(...)", which is cut off. Sets tipoEncontrado.
  int32_t Posicao(TextoV nome);
  TipoVariavel tipoEncontrado = TipoVariavel::String;  // TipoEncontrado
  // The entry found by the last successful Posicao.
  const EntradaVariavel* entradaEncontrada = nullptr;

  // Creates a variable of `tamanho` values, unless the name exists in any
  // type. An unknown type word creates nothing. True when it made one.
  bool Cria(TextoV nome, TextoV tipo, int32_t tamanho = 1);
  // Removes by the whole upper-case name; false when there is none.
  bool Remove(TextoV nome);
  // Whether a stored name, or one looked up while lookups were remembered,
  // with a digit in it could be a name of this upper-case first character
  // and length. False means surely not.
  // Moves on whenever TalvezComDigito may turn true for some name: a
  // "surely not" found under one version holds while it stands.
  uint64_t versaoDigitos = 0;
  bool TalvezComDigito(char16_t inicialMaiuscula, size_t tamanho) const {
    size_t k = Forma(inicialMaiuscula, tamanho);
    return guardadosComDigito_[k] != 0 || consultadosComDigito_[k] != 0;
  }
  // One more value of a type at the end of its table, empty; and the last
  // one taken away again.
  [[gnu::always_inline]] void AcrescentaValor(TipoVariavel t) {
    if (t == TipoVariavel::String)
      textos.emplace_back();
    else if (t == TipoVariavel::Integer)
      inteiros.push_back(0);
    else
      decimais.push_back(0.0);
  }
  [[gnu::always_inline]] void RetiraValor(TipoVariavel t) {
    if (t == TipoVariavel::String) {
      Assenta();
      textos.pop_back();
      if (indiceLimpo_ >= static_cast<int64_t>(textos.size())) indiceLimpo_ = -1;
    } else if (t == TipoVariavel::Integer)
      inteiros.pop_back();
    else
      decimais.pop_back();
  }
  // Whether any stored name begins with a double quote.
  bool HaNomeComAspas() const { return nomesComAspas_ != 0; }
  // Declares a variable of one value whose value already stands at
  // `inicio`, as Cria would have declared it then.
  void Anota(TextoV nome, TipoVariavel tipo, int32_t inicio);
  void Limpa();

  // Changes when a name comes or goes in a way that alters an earlier lookup
  // made while `registra` was on (a name found or missed then), or moves
  // values: what was found by name then is stale when it differs. A routine's
  // own names, created and removed last-in first-out, leave it alone.
  uint64_t geracao = 1;
  // Lookups made while this is on are remembered until Limpa, except of
  // these names (upper case): a routine's own names, which the plans of its
  // body check at each call instead.
  bool registra = false;
  std::vector<Texto> semRegistro;
  // Remembers lookups while it lives, except of `excluidos` (upper case).
  struct Lembranca {
    Variaveis& v;
    explicit Lembranca(Variaveis& x, std::vector<Texto> excluidos = {}) : v(x) {
      v.semRegistro = std::move(excluidos);
      v.registra = true;
    }
    ~Lembranca() {
      v.registra = false;
      v.semRegistro.clear();
    }
    Lembranca(const Lembranca&) = delete;
    Lembranca& operator=(const Lembranca&) = delete;
  };

  // How long a prefix of one stored text is known to read back in quotes
  // as itself (no quote, no nesting tag), so that the plans check a text
  // they grow or cut only where it changed. Whatever changes any of those
  // first characters forgets it (Escreveu); appends leave it true.
  size_t PrefixoLimpo(size_t k) const {
    return static_cast<int64_t>(k) == indiceLimpo_ ? std::min(prefixoLimpo_, textos[k].size()) : 0;
  }
  void AnotaLimpo(size_t k, size_t n) {
    indiceLimpo_ = static_cast<int64_t>(k);
    prefixoLimpo_ = n;
  }
  // The text at k changed from its character `de` on.
  void Escreveu(size_t k, size_t de = 0) {
    if (static_cast<int64_t>(k) == indiceLimpo_) prefixoLimpo_ = std::min(prefixoLimpo_, de);
  }

  // Characters cut off the front of one stored text and not yet moved out:
  // its value is what follows them, and its clean prefix counts them (what
  // lies between them and the prefix's end is clean). Only the plans that
  // know it read that text so (SubStr's, and StrLen's and StrPos's in a
  // number); before anything else reads the store, Assenta moves them out.
  // They are moved once they outnumber what is kept, so each character is
  // moved at most once more than it would be read.
  size_t Caidos(size_t k) const { return static_cast<int64_t>(k) == indiceCaido_ ? caidos_ : 0; }
  bool HaCaidos() const { return caidos_ != 0; }
  void Assenta() {
    if (caidos_ != 0) [[unlikely]] MoveCaidos();
  }
  // The text at k is to drop `n` characters from its front in all.
  void Cai(size_t k, size_t n) {
    if (static_cast<int64_t>(k) != indiceCaido_) Assenta();
    indiceCaido_ = static_cast<int64_t>(k);
    caidos_ = n;
    if (n == 0) indiceCaido_ = -1;
  }

  const std::vector<EntradaVariavel>& Diretorio(TipoVariavel t) const { return dir_[int(t)]; }
  std::vector<Texto> textos;      // ValoresTexto
  std::vector<int32_t> inteiros;  // ValoresInteiro
  std::vector<double> decimais;   // ValoresDecimal
  size_t TamanhoValores(TipoVariavel t) const;

 private:
  struct Local {
    uint8_t tipo;
    uint32_t indice;  // in its directory
  };
  int32_t Acha(const Texto& chave);
  [[gnu::noinline]] void MoveCaidos();
  void Acrescenta(TipoVariavel t, Texto nome, int32_t inicio, int32_t tamanho);
  static size_t Forma(char16_t inicial, size_t tamanho) { return (inicial & 127u) * 51 + (tamanho > 50 ? 50 : tamanho); }
  static bool TemDigito(const Texto& nome);
  bool Consultado(const Texto& chave) const { return consultados_.count(chave) != 0; }
  void Reindexa(const Texto& chave);

  std::vector<EntradaVariavel> dir_[3];
  // First entry of each stored name in search order (String, Integer,
  // Decimal, each by declaration), and how many entries carry that name.
  std::unordered_map<Texto, std::pair<Local, uint32_t>> indice_;
  std::unordered_set<Texto> consultados_;
  // Names with a digit, by first character and length: stored ones, and
  // remembered lookups.
  std::vector<uint32_t> guardadosComDigito_ = std::vector<uint32_t>(128 * 51);
  std::vector<uint32_t> consultadosComDigito_ = std::vector<uint32_t>(128 * 51);
  uint32_t nomesComAspas_ = 0;
  int64_t indiceLimpo_ = -1;
  size_t prefixoLimpo_ = 0;
  int64_t indiceCaido_ = -1;
  size_t caidos_ = 0;
};

}  // namespace zv
