#include "core/variaveis.h"

#include <algorithm>

namespace zv {

const char16_t* NomeTipo(TipoVariavel t) {
  switch (t) {
    case TipoVariavel::String:
      return u"String";
    case TipoVariavel::Integer:
      return u"Integer";
    case TipoVariavel::Decimal:
      return u"Decimal";
  }
  return u"";
}

bool LeTipo(TextoV palavra, TipoVariavel& tipo) {
  if (palavra == u"String")
    tipo = TipoVariavel::String;
  else if (palavra == u"Integer")
    tipo = TipoVariavel::Integer;
  else if (palavra == u"Decimal")
    tipo = TipoVariavel::Decimal;
  else
    return false;
  return true;
}

namespace {

// The directory keeps the first 50 characters, upper case, trimmed.
Texto NomeGuardado(TextoV nome) {
  Texto m = Maiusculas(nome.substr(0, 50));
  return Apara(m);
}

}  // namespace

size_t Variaveis::TamanhoValores(TipoVariavel t) const {
  switch (t) {
    case TipoVariavel::String:
      return textos.size();
    case TipoVariavel::Integer:
      return inteiros.size();
    case TipoVariavel::Decimal:
      return decimais.size();
  }
  return 0;
}

int32_t Variaveis::Acha(const Texto& chave) {
  bool lembra = registra && std::find(semRegistro.begin(), semRegistro.end(), chave) == semRegistro.end();
  if (lembra && consultados_.insert(chave).second && !chave.empty() && TemDigito(chave)) {
    ++consultadosComDigito_[Forma(chave[0], chave.size())];
    ++versaoDigitos;
  }
  auto it = indice_.find(chave);
  if (it == indice_.end()) return -1;
  const Local& l = it->second.first;
  tipoEncontrado = static_cast<TipoVariavel>(l.tipo);
  entradaEncontrada = &dir_[l.tipo][l.indice];
  if (lembra) dir_[l.tipo][l.indice].consultado = true;
  return entradaEncontrada->inicio;
}

int32_t Variaveis::Posicao(TextoV nome) {
  size_t p = nome.find(u'(');
  if (p != TextoV::npos) nome = nome.substr(0, p);
  // A stored name has at most 50 characters, so a longer one is never found.
  if (nome.size() > 50) return -1;
  return Acha(Maiusculas(nome));
}

bool Variaveis::TemDigito(const Texto& nome) {
  for (char16_t c : nome)
    if (EDigito(c)) return true;
  return false;
}

bool Variaveis::Cria(TextoV nome, TextoV tipo, int32_t tamanho) {
  TipoVariavel t;
  if (!LeTipo(tipo, t)) return false;
  if (Posicao(nome) >= 0) return false;
  if (tamanho < 0) tamanho = 0;
  int32_t inicio = static_cast<int32_t>(TamanhoValores(t));
  switch (t) {
    case TipoVariavel::String:
      textos.resize(textos.size() + tamanho);
      break;
    case TipoVariavel::Integer:
      inteiros.resize(inteiros.size() + tamanho, 0);
      break;
    case TipoVariavel::Decimal:
      decimais.resize(decimais.size() + tamanho, 0.0);
      break;
  }
  Acrescenta(t, NomeGuardado(nome), inicio, tamanho);
  return true;
}

void Variaveis::Anota(TextoV nome, TipoVariavel tipo, int32_t inicio) {
  if (Posicao(nome) >= 0) return;
  Acrescenta(tipo, NomeGuardado(nome), inicio, 1);
}

void Variaveis::Acrescenta(TipoVariavel t, Texto nome, int32_t inicio, int32_t tamanho) {
  auto& d = dir_[int(t)];
  EntradaVariavel e;
  e.nome = std::move(nome);
  e.inicio = inicio;
  e.tamanho = tamanho;
  d.push_back(std::move(e));
  const Texto& n = d.back().nome;
  if (Consultado(n)) ++geracao;
  if (!n.empty() && TemDigito(n)) {
    ++guardadosComDigito_[Forma(n[0], n.size())];
    ++versaoDigitos;
  }
  if (!n.empty() && n[0] == u'"') ++nomesComAspas_;
  auto [it, novo] = indice_.try_emplace(n);
  if (novo) {
    it->second = {Local{uint8_t(t), uint32_t(d.size() - 1)}, 1};
  } else {
    ++it->second.second;
    // A later type's entry never comes before an earlier one in the search.
    Local& l = it->second.first;
    if (uint8_t(t) < l.tipo) l = Local{uint8_t(t), uint32_t(d.size() - 1)};
  }
}

void Variaveis::Reindexa(const Texto& chave) {
  auto it = indice_.find(chave);
  if (it == indice_.end()) return;
  for (uint8_t t = 0; t < 3; ++t)
    for (size_t i = 0; i < dir_[t].size(); ++i)
      if (dir_[t][i].nome == chave) {
        it->second.first = Local{t, uint32_t(i)};
        return;
      }
  indice_.erase(it);
}

bool Variaveis::Remove(TextoV nome) {
  // The whole name, index and all, is compared.
  if (nome.size() > 50) return false;
  Texto chave = Maiusculas(nome);
  auto it = indice_.find(chave);
  if (it == indice_.end()) return false;
  Local l = it->second.first;
  Assenta();
  auto& d = dir_[l.tipo];
  // What was found before moves down when it stands behind this entry.
  bool muda = Consultado(chave);
  for (size_t i = l.indice; i < d.size() && !muda; ++i) muda = d[i].consultado;
  if (muda) ++geracao;
  int32_t f = d[l.indice].inicio, s = d[l.indice].tamanho;
  if (TemDigito(chave)) --guardadosComDigito_[Forma(chave[0], chave.size())];
  if (chave[0] == u'"') --nomesComAspas_;
  d.erase(d.begin() + l.indice);
  for (size_t i = l.indice; i < d.size(); ++i) {
    d[i].inicio -= s;
    // Entries behind it moved down by one: their index entries follow.
    auto j = indice_.find(d[i].nome);
    if (j != indice_.end() && j->second.first.tipo == l.tipo && j->second.first.indice == i + 1)
      j->second.first.indice = uint32_t(i);
  }
  switch (static_cast<TipoVariavel>(l.tipo)) {
    case TipoVariavel::String:
      textos.erase(textos.begin() + f, textos.begin() + f + s);
      break;
    case TipoVariavel::Integer:
      inteiros.erase(inteiros.begin() + f, inteiros.begin() + f + s);
      break;
    case TipoVariavel::Decimal:
      decimais.erase(decimais.begin() + f, decimais.begin() + f + s);
      break;
  }
  // Values behind it moved down.
  if (static_cast<TipoVariavel>(l.tipo) == TipoVariavel::String) indiceLimpo_ = -1;
  if (--it->second.second == 0)
    indice_.erase(it);
  else
    Reindexa(chave);
  entradaEncontrada = nullptr;
  return true;
}

void Variaveis::MoveCaidos() {
  textos[static_cast<size_t>(indiceCaido_)].erase(0, caidos_);
  if (indiceLimpo_ == indiceCaido_) prefixoLimpo_ = prefixoLimpo_ > caidos_ ? prefixoLimpo_ - caidos_ : 0;
  caidos_ = 0;
  indiceCaido_ = -1;
}

void Variaveis::Limpa() {
  ++geracao;
  ++versaoDigitos;
  for (auto& d : dir_) d.clear();
  textos.clear();
  inteiros.clear();
  decimais.clear();
  indice_.clear();
  consultados_.clear();
  std::fill(guardadosComDigito_.begin(), guardadosComDigito_.end(), 0);
  std::fill(consultadosComDigito_.begin(), consultadosComDigito_.end(), 0);
  nomesComAspas_ = 0;
  indiceLimpo_ = -1;
  indiceCaido_ = -1;
  caidos_ = 0;
  entradaEncontrada = nullptr;
}

}  // namespace zv
