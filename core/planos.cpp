// Plans of the main text's statements: made the first time a statement runs,
// remade when variables come or go. Each plan runs the same routines as the
// walk over the text; where it can't be sure of that, it leaves the statement
// to the walk.
#include <algorithm>
#include <cmath>

#include "core/expressao.h"
#include "core/interpretador.h"
#include "core/marcas.h"
#include "core/preparacao.h"

namespace zv {

namespace {

constexpr uint32_t kSemMarca = UINT32_MAX;
constexpr size_t kMaxBuracos = 16;

bool CaractereDeNome(char16_t c) { return ELetra(c) || EDigito(c) || c == u'_' || c == u'.'; }

}  // namespace

bool Interpretador::PodeTerChamadaUsuario(const Texto& texto) const {
  Texto t = Apara(texto);
  if (t.empty() || t[0] == u'"') return false;
  return PalavraChamada(t, nomesFuncoes.data(), nomesFuncoes.size()) >= 0;
}

// ---- Variables --------------------------------------------------------------

bool Interpretador::ResolveRef(const Texto& nome, RefVariavel& r) {
  r = RefVariavel();
  r.nome = nome;
  if (variaveis.Posicao(nome) < 0) return false;
  r.tipo = variaveis.tipoEncontrado;
  r.inicio = variaveis.entradaEncontrada->inicio;
  r.tamanho = variaveis.entradaEncontrada->tamanho;
  size_t a = nome.find(u'(');
  if (a == NPOS) return true;
  size_t b = nome.find(u')');
  Texto dentro = (b == NPOS || b < a) ? nome.substr(a + 1) : nome.substr(a + 1, b - a - 1);
  double v;
  if (LeNumero(dentro, v)) {
    if (!(std::fabs(v) < 1e15)) return false;
    r.indice = static_cast<int64_t>(ArredondaPar(v));
    return true;
  }
  // The index variable: a plain name of a whole-number or decimal variable
  // with a value.
  if (dentro.find(u'(') != NPOS || variaveis.Posicao(dentro) < 0) return false;
  if (variaveis.tipoEncontrado == TipoVariavel::String || variaveis.entradaEncontrada->tamanho < 1) return false;
  r.indiceVariavel = true;
  r.tipoIndice = variaveis.tipoEncontrado;
  r.posIndice = variaveis.entradaEncontrada->inicio;
  return true;
}

bool Interpretador::IndiceRef(const RefVariavel& r, int64_t& i) const {
  if (!r.indiceVariavel) {
    i = r.indice;
  } else if (r.tipoIndice == TipoVariavel::Integer) {
    i = variaveis.inteiros[r.posIndice];
  } else {
    // As a whole number; one out of range counts as 0.
    double x = ArredondaPar(variaveis.decimais[r.posIndice]);
    i = (x >= -2147483648.0 && x <= 2147483647.0) ? static_cast<int64_t>(x) : 0;
  }
  return i >= 0 && i < r.tamanho;
}

bool Interpretador::LeRef(const RefVariavel& r, uint64_t geracao, Valor& v) const {
  int64_t i;
  if (geracao != variaveis.geracao || !IndiceRef(r, i)) return false;
  size_t k = static_cast<size_t>(r.inicio + i);
  switch (r.tipo) {
    case TipoVariavel::String:
      v = Valor::DeTexto(variaveis.textos[k]);
      break;
    case TipoVariavel::Integer:
      v = Valor::DeInt32(variaveis.inteiros[k]);
      break;
    case TipoVariavel::Decimal:
      v = Valor::DeDouble(variaveis.decimais[k]);
      break;
  }
  return true;
}

void Interpretador::GravaRef(const RefVariavel& r, uint64_t geracao, const Valor& v) {
  if (geracao != variaveis.geracao || r.tipo == TipoVariavel::String) {
    GravaVariavel(r.nome, v, true);
    return;
  }
  int64_t i;
  if (!IndiceRef(r, i)) return;
  size_t k = static_cast<size_t>(r.inicio + i);
  try {
    if (r.tipo == TipoVariavel::Integer) {
      variaveis.inteiros[k] = v.ComoInt32();
    } else {
      double d = v.ComoDouble();
      if (std::isfinite(d)) variaveis.decimais[k] = d;
    }
  } catch (const FalhaHost&) {
  }
}

// ---- Expressions and conditions ----------------------------------------------

void Interpretador::PreparaValor(const Texto& texto, PlanoValor& p) {
  p = PlanoValor();
  p.fonte = texto;
  Texto t = Apara(LimpaParenteses(texto));
  if (PodeTerChamadaInterna(t) || PodeTerChamadaUsuario(t)) return;
  if (LeNumero(t, p.numero)) {
    p.tipo = PlanoValor::Tipo::Numero;
    return;
  }
  Texto a = Apara(t);
  if (ExpressaoAritmetica(a)) {
    Texto pedaco;
    int64_t pecas = 0;
    for (size_t i = 0; i < a.size(); ++i, ++pecas) {
      if (!ELetra(a[i])) {
        pedaco += a[i];
        continue;
      }
      size_t j = i;
      while (j < a.size() && CaractereDeNome(a[j])) ++j;
      if (j < a.size() && a[j] == u'(') {
        size_t k = a.find(u')', j);
        j = k == NPOS ? a.size() : k + 1;
      }
      RefVariavel r;
      if (!ResolveRef(a.substr(i, j - i), r)) return;
      p.pedacos.push_back(std::move(pedaco));
      pedaco.clear();
      p.refs.push_back(std::move(r));
      i = j - 1;
    }
    p.pedacos.push_back(std::move(pedaco));
    p.pecaUnica = pecas == 1;
    p.temArvore = !p.pecaUnica && p.refs.size() <= kMaxBuracos && p.arvore.Compila(p.pedacos);
    p.tipo = PlanoValor::Tipo::Aritmetica;
    return;
  }
  if (PosicaoVariavel(a) >= 0) {
    if (ResolveRef(a, p.var)) p.tipo = PlanoValor::Tipo::Variavel;
    return;
  }
  p.constante = RemoveAspas(a);
  p.tipo = PlanoValor::Tipo::Constante;
}

Valor Interpretador::AvaliaValor(const PlanoValor& p, uint64_t geracao) {
  if (geracao != variaveis.geracao) return ValorNumerico(p.fonte);
  switch (p.tipo) {
    case PlanoValor::Tipo::Lento:
      return ValorNumerico(p.fonte);
    case PlanoValor::Tipo::Numero:
      return Valor::DeDouble(p.numero);
    case PlanoValor::Tipo::Constante:
      return Valor::DeTexto(p.constante);
    case PlanoValor::Tipo::Variavel: {
      Valor v;
      if (LeRef(p.var, geracao, v)) return v;
      return LeVariavel(p.var.nome);
    }
    case PlanoValor::Tipo::Aritmetica:
      break;
  }
  Valor v;
  if (p.temArvore) {
    // Whole values of 0 or more would stand in the text as bare digits.
    double valores[kMaxBuracos];
    size_t i = 0;
    for (; i < p.refs.size(); ++i) {
      if (!LeRef(p.refs[i], geracao, v) || v.tipo != Valor::Tipo::Int32 || v.i < 0) break;
      valores[i] = v.i;
    }
    if (i == p.refs.size()) {
      double r;
      if (!p.arvore.Calcula(valores, r)) return Valor::DeDecimal(0);
      return Valor::DeDecimal(NumeroRelido(r));
    }
  }
  Texto& b = planos_->buffer;
  b.clear();
  for (size_t i = 0; i < p.refs.size(); ++i) {
    b += p.pedacos[i];
    // An index out of range has a box to show: the text's own way shows it.
    if (!LeRef(p.refs[i], geracao, v)) return ValorNumerico(p.fonte);
    if (v.tipo == Valor::Tipo::Int32) {
      char n[16];
      int k = 0;
      uint32_t u = v.i < 0 ? 0u - static_cast<uint32_t>(v.i) : static_cast<uint32_t>(v.i);
      do {
        n[k++] = static_cast<char>('0' + u % 10);
        u /= 10;
      } while (u);
      if (v.i < 0) b += u'-';
      while (k) b += static_cast<char16_t>(n[--k]);
    } else {
      b += v.ComoTexto();
    }
  }
  b += p.pedacos.back();
  if (p.pecaUnica) return Valor::DeTexto(b);
  double r;
  if (!CalculaNumero(b, r)) return Valor::DeDecimal(0);
  return Valor::DeDecimal(NumeroRelido(r));
}

void Interpretador::PreparaCondicao(const Texto& texto, PlanoCondicao& c) {
  c = PlanoCondicao();
  c.fonte = texto;
  Condicao partes;
  try {
    SeparaCondicao(texto, partes);
  } catch (const FalhaHost&) {
    return;
  }
  for (size_t k = 0; k < partes.operandos.size() && !partes.operandos[k].empty(); k += 2) {
    if (k / 2 >= 21 || k + 1 >= partes.operandos.size()) return;  // the text's way says it is too long
    c.operandos.emplace_back();
    PreparaValor(partes.operandos[k], c.operandos.back());
    c.operandos.emplace_back();
    PreparaValor(partes.operandos[k + 1], c.operandos.back());
  }
  size_t n = 0;
  while (n < partes.conectores.size() && !partes.conectores[n].empty()) ++n;
  if (n >= 21) return;
  c.relacoes = partes.relacoes;
  c.conectores = partes.conectores;
  c.lento = false;
}

Texto Interpretador::AvaliaCondicao(const PlanoCondicao& c, uint64_t geracao) {
  if (c.lento) return AvaliaCondicao(c.fonte);
  if (c.operandos.size() == 2 && c.conectores[0].empty()) {
    Valor esq = AvaliaValor(c.operandos[0], geracao);
    Valor dir = AvaliaValor(c.operandos[1], geracao);
    return ComparaValores(c.relacoes, 0, std::move(esq), std::move(dir));
  }
  std::array<Texto, 21> resultados;
  for (size_t k = 0; k + 1 < c.operandos.size(); k += 2) {
    Valor esq = AvaliaValor(c.operandos[k], geracao);
    Valor dir = AvaliaValor(c.operandos[k + 1], geracao);
    resultados[k / 2] = ComparaValores(c.relacoes, k / 2, std::move(esq), std::move(dir));
  }
  if (!c.conectores[0].empty()) return CombinaCondicoes(c.conectores, resultados);
  return resultados[0];
}

// ---- Statements ----------------------------------------------------------------

void Interpretador::PreparaAtribuicao(const Texto& linha, const Texto& nome, PlanoLinha& pl) {
  size_t eq = linha.find(u'=');
  Texto dir = eq == NPOS ? Texto() : Apara(TextoV(linha).substr(eq + 1));
  Texto maius = Maiusculas(linha);
  for (const char16_t* w : {u"CHR(", u"JOIN(", u"FORMAT(", u"DIRECTORY(", u"SQL("})
    if (Contem(maius, w)) return;
  if (Contem(dir, u" & ") || PodeTerChamadaUsuario(dir) || PodeTerChamadaInterna(dir)) return;
  if (TemChamadaPreAvaliada(Maiusculas(Apara(dir)))) return;
  std::vector<Texto> partes;
  try {
    partes = SeparaArgumentos(dir, 11, false);
  } catch (const FalhaHost&) {
    return;
  }
  if (!ResolveRef(nome, pl.alvo)) return;
  for (const Texto& p : partes) {
    if (p.empty()) break;
    pl.partes.emplace_back();
    PreparaValor(p, pl.partes.back());
  }
  pl.tipo = PlanoLinha::Tipo::Atribuicao;
}

// True when ExecutaComando would do nothing with the line (an EndIf).
bool Interpretador::ComandoNulo(const Texto& linha) {
  Texto resto = Resto(linha, kColunaComando);
  size_t b = resto.find(u' ');
  Texto palavra = b == NPOS ? resto : resto.substr(0, b);
  Texto m = Maiusculas(palavra);
  if (m == u"VAR" || m == u"VARIABLE" || m == u"RETURN" || ESub(palavra)) return false;
  if (PosicaoVariavel(palavra) >= 0) return false;
  if (!EPalavraConhecida(palavra) && !ComecaCom(m, u"REP.") && !ComecaCom(m, u"PRINTER.")) return false;
  return DespachoSemEfeito(palavra);
}

void Interpretador::PreparaLinha(const Texto& texto, PlanoLinha& pl) {
  using T = PlanoLinha::Tipo;
  size_t pos = pl.pos, fim = pl.fim;
  pl = PlanoLinha();
  pl.pos = pos;
  pl.fim = fim;
  pl.geracao = variaveis.geracao;
  Texto linha = texto.substr(pos, fim - pos);
  Localizacao(linha, pl.editor, pl.linha);
  Texto maius = Maiusculas(linha);
  if (Contem(maius, u"ENDPROGRAM") || Contem(maius, u"ENDFUNCTION") || Contem(maius, u"ENDWINDOW")) return;
  size_t p;
  auto nomeAntes = [&linha](size_t p) {
    size_t b = p == 0 ? NPOS : linha.rfind(u' ', p - 1);
    return linha.substr(b == NPOS ? 0 : b + 1, b == NPOS ? p : p - b - 1);
  };
  if (TerminaCom(linha, u"++") || TerminaCom(linha, u"--")) {
    pl.mais = TerminaCom(linha, u"++");
    if (ResolveRef(nomeAntes(linha.find(pl.mais ? u"++" : u"--")), pl.alvo)) pl.tipo = T::Incremento;
    return;
  }
  if (Contem(linha, u"+ = ") || Contem(linha, u" + =") || Contem(linha, u"- = ") || Contem(linha, u" - =")) {
    pl.mais = Contem(linha, u"+ = ") || Contem(linha, u" + =");
    size_t q = linha.find(pl.mais ? u"+ = " : u"- = ");
    if (q != NPOS && q > 0 && linha[q - 1] != u' ') linha.insert(q, u" ");
    p = linha.find(pl.mais ? u" + =" : u" - =");
    if (p == NPOS || !ResolveRef(nomeAntes(p), pl.alvo)) return;
    PreparaValor(Resto(linha, p + 5), pl.valor);
    pl.tipo = T::Composto;
    return;
  }
  if (Contem(maius, u"NEWWINDOW") || (linha.compare(kColunaComando, 2, u"DB") == 0 && Comandos().db) ||
      Contem(linha, u"GoTo"))
    return;
  // The statement after a jump target: its number, found as the walk finds it.
  auto numeroNaMarca = [&texto](size_t h) { return NumeroEm(texto, texto.rfind(u"&#", h) + 2); };
  if ((p = linha.find(u"While[")) != NPOS) {
    Texto tag = TagProfundidade(linha, p + 6);
    size_t h = texto.find(u"Loop[" + tag + u"]", pos);
    if (h == NPOS) return;
    pl.numeroSalto = numeroNaMarca(h);
    PreparaCondicao(Resto(linha, p + 9), pl.condicao);
    pl.tipo = T::While;
    return;
  }
  if ((p = linha.find(u"Loop[")) != NPOS) {
    Texto tag = TagProfundidade(linha, p + 5);
    size_t h = texto.rfind(u"While[" + tag + u"]", pos);
    size_t a = h == NPOS ? NPOS : texto.rfind(u"&#", h);
    if (a == NPOS) return;
    pl.posVolta = a;
    pl.numeroVolta = NumeroEm(texto, a + 2);
    pl.fimVolta = std::min(texto.find(CRLF, a), texto.size());
    pl.tipo = T::Loop;
    return;
  }
  if ((p = linha.find(u"EndIf[")) != NPOS) {
    if (!ProfundidadeValida(TagProfundidade(linha, p + 6), pl.profundidade)) return;
    if (Contem(linha, u"Else[") || !ComandoNulo(linha)) return;
    pl.tipo = T::EndIf;
    return;
  }
  if ((p = linha.find(u"If[")) != NPOS) {
    Texto tag = TagProfundidade(linha, p + 3);
    if (!ProfundidadeValida(tag, pl.profundidade) || Contem(linha, u"MouseClick")) return;
    size_t hE = texto.find(u"EndIf[" + tag + u"]", pos);
    size_t hL = texto.find(u"Else[" + tag + u"]", pos);
    int32_t nE = hE == NPOS ? -1 : numeroNaMarca(hE);
    int32_t nL = hL == NPOS ? -1 : numeroNaMarca(hL);
    if (hL != NPOS && hE != NPOS && nL < nE)
      pl.numeroElse = nL;
    else if (hE != NPOS)
      pl.numeroEndIf = nE;
    else
      return;
    PreparaCondicao(Resto(linha, p + 6), pl.condicao);
    pl.tipo = T::If;
    return;
  }
  if ((p = linha.find(u"Else[")) != NPOS) {
    Texto tag = TagProfundidade(linha, p + 5);
    if (!ProfundidadeValida(tag, pl.profundidade)) return;
    size_t hE = texto.find(u"EndIf[" + tag + u"]", pos);
    pl.numeroSalto = hE == NPOS ? -1 : numeroNaMarca(hE);
    pl.tipo = T::Else;
    return;
  }
  // What ExecutaComando would make of it: only assignments have a plan.
  Texto resto = Resto(linha, kColunaComando);
  size_t b = resto.find(u' ');
  Texto palavra = b == NPOS ? resto : resto.substr(0, b);
  Texto m = Maiusculas(palavra);
  if (m == u"VAR" || m == u"VARIABLE" || ESub(palavra) || m == u"RETURN") return;
  if (PosicaoVariavel(palavra) >= 0) PreparaAtribuicao(linha, palavra, pl);
}

Planos& Interpretador::PlanosDoTexto() {
  if (planos_ && (planos_->dados != textoPrograma.data() || planos_->tamanho != textoPrograma.size()))
    planos_.reset();
  if (!planos_) {
    planos_ = std::make_unique<Planos>();
    planos_->dados = textoPrograma.data();
    planos_->tamanho = textoPrograma.size();
  }
  Planos& pl = *planos_;
  if (!pl.indexado) {
    // Every place a marker number stands, as a search for "&#nnnnn" finds it.
    const Texto& t = textoPrograma;
    for (size_t p = t.find(u"&#"); p != NPOS; p = t.find(u"&#", p + 1)) {
      if (p + 7 > t.size()) break;
      int32_t n = 0;
      size_t k = p + 2;
      for (; k < p + 7 && EDigito(t[k]); ++k) n = n * 10 + (t[k] - u'0');
      if (k < p + 7) continue;
      pl.marcas.emplace_back(n, static_cast<uint32_t>(p));
    }
    std::stable_sort(pl.marcas.begin(), pl.marcas.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    pl.primeiraMarca.assign(pl.marcas.empty() ? 0 : pl.marcas.back().first + 1, kSemMarca);
    for (auto it = pl.marcas.rbegin(); it != pl.marcas.rend(); ++it) pl.primeiraMarca[it->first] = it->second;
    pl.indexado = true;
  }
  return pl;
}

size_t Interpretador::AchaMarca(const Texto& texto, int32_t numero, size_t de) {
  if (&texto != &textoPrograma || numero < 0 || numero > kMaxNumeroMarcador || textoPrograma.size() >= kSemMarca)
    return texto.find(MarcaComando(numero), de);
  Planos& pl = PlanosDoTexto();
  if (static_cast<size_t>(numero) >= pl.primeiraMarca.size()) return NPOS;
  uint32_t f = pl.primeiraMarca[numero];
  if (f == kSemMarca) return NPOS;
  if (f >= de) return f;
  auto it = std::lower_bound(pl.marcas.begin(), pl.marcas.end(), std::make_pair(numero, static_cast<uint32_t>(de)));
  return (it != pl.marcas.end() && it->first == numero) ? it->second : NPOS;
}

size_t Interpretador::FimDaLinha(const Texto& texto, int32_t numero, size_t pos) {
  if (&texto == &textoPrograma && planos_ && numero >= 0 && static_cast<size_t>(numero) < planos_->linhas.size()) {
    const auto& pl = planos_->linhas[numero];
    if (pl && pl->pos == pos) return pl->fim;
  }
  return std::min(texto.find(CRLF, pos), texto.size());
}

PlanoLinha* Interpretador::PlanoDe(const Texto& texto, int32_t numero, size_t pos, size_t fim) {
  if (semPlanos || &texto != &textoPrograma || numero < 0 || numero > kMaxNumeroMarcador) return nullptr;
  Planos& planos = PlanosDoTexto();
  if (static_cast<size_t>(numero) >= planos.linhas.size()) planos.linhas.resize(numero + 1);
  auto& pl = planos.linhas[numero];
  if (!pl) pl = std::make_unique<PlanoLinha>();
  if (pl->pos != pos || pl->fim != fim || pl->geracao != variaveis.geracao) {
    if (pl->emUso > 0) {
      planos.aposentados.push_back(std::move(pl));
      pl = std::make_unique<PlanoLinha>();
    }
    pl->pos = pos;
    pl->fim = fim;
    PreparaLinha(texto, *pl);
  }
  return pl.get();
}

Interpretador::Seguimento Interpretador::ExecutaPlano(const Texto& texto, PlanoLinha& pl, int32_t& numero,
                                                      size_t& pos, size_t& fim,
                                                      std::array<Texto, 21>& resultadoCondicao) {
  using T = PlanoLinha::Tipo;
  const uint64_t g = pl.geracao;
  switch (pl.tipo) {
    case T::Generico:
      return Seguimento::Generico;
    case T::Incremento: {
      Valor v;
      if (!LeRef(pl.alvo, g, v)) v = LeVariavel(pl.alvo.nome);
      Valor um = Valor::DeInt32(1);
      GravaRef(pl.alvo, g, pl.mais ? SomaValores(v, um) : SubtraiValores(v, um));
      break;
    }
    case T::Composto: {
      Valor d = AvaliaValor(pl.valor, g);
      Valor v;
      if (!LeRef(pl.alvo, g, v)) v = LeVariavel(pl.alvo.nome);
      GravaRef(pl.alvo, g, pl.mais ? SomaValores(v, d) : SubtraiValores(v, d));
      break;
    }
    case T::Atribuicao: {
      forcaTexto = false;
      Valor v;
      if (pl.partes.size() == 1) {
        v = AvaliaValor(pl.partes[0], g);
        // The value goes to the variable as its text; whole numbers read back
        // as themselves, so they needn't make the trip.
        bool inteiro = v.tipo == Valor::Tipo::Int32;
        bool real = v.tipo == Valor::Tipo::Double || v.tipo == Valor::Tipo::Decimal;
        if (pl.alvo.tipo == TipoVariavel::Integer && real && v.d == std::trunc(v.d) && std::fabs(v.d) < 2147483648.0)
          v = Valor::DeInt32(static_cast<int32_t>(v.d));
        else if (pl.alvo.tipo == TipoVariavel::Decimal && inteiro)
          v = Valor::DeDouble(v.i);
        else if (pl.alvo.tipo == TipoVariavel::Decimal && real && v.d == std::trunc(v.d) && std::fabs(v.d) < 1e15)
          v = Valor::DeDouble(v.d + 0.0);
        else if (!(pl.alvo.tipo == TipoVariavel::Integer && inteiro))
          v = Valor::DeTexto(v.ComoTexto());
      } else {
        Texto buf;
        for (const PlanoValor& p : pl.partes) buf += AvaliaValor(p, g).ComoTexto();
        v = Valor::DeTexto(std::move(buf));
      }
      GravaRef(pl.alvo, g, v);
      forcaTexto = false;
      break;
    }
    case T::While:
      if (AvaliaCondicao(pl.condicao, g) != u"TRUE") numero = pl.numeroSalto;
      break;
    case T::Loop:
      pos = pl.posVolta;
      fim = pl.fimVolta;
      numero = pl.numeroVolta;
      return Seguimento::Salto;
    case T::EndIf:
      resultadoCondicao[pl.profundidade].clear();
      break;
    case T::If: {
      Texto v = AvaliaCondicao(pl.condicao, g);
      resultadoCondicao[pl.profundidade] = v;
      if (v != u"TRUE") {
        if (pl.numeroElse >= 0) {
          numero = pl.numeroElse;
        } else {
          numero = pl.numeroEndIf;
          resultadoCondicao[pl.profundidade].clear();
        }
      }
      break;
    }
    case T::Else:
      if (resultadoCondicao[pl.profundidade] != u"FALSE") {
        if (pl.numeroSalto < 0) return Seguimento::Generico;
        numero = pl.numeroSalto;
        resultadoCondicao[pl.profundidade].clear();
      }
      break;
  }
  // The next statement: the next number, searched forward from here.
  ++numero;
  size_t prox = AchaMarca(texto, numero, pos);
  if (prox == NPOS) return Seguimento::Fim;
  pos = prox;
  fim = FimDaLinha(texto, numero, pos);
  return Seguimento::Proximo;
}

}  // namespace zv
