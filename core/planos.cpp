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

int64_t Interpretador::IndiceDecimal(double x) {
  // As a whole number; one out of range counts as 0.
  int32_t n;
  return ArredondaInt32(x, n) ? n : 0;
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


bool Interpretador::CalculoRapido(const PlanoValor& p, double& x) {
  if (p.inteiro) {
    // The same holes, refused the same way; whole results of up to 15
    // digits are what the doubles below would read back.
    int64_t w;
    if (!InteiroRapido(p, w)) return false;
    if (w > -kLimite15 && w < kLimite15) {
      x = static_cast<double>(w);
      return true;
    }
  }
  double valores[kMaxBuracos];
  for (size_t n = 0; n < p.refs.size(); ++n) {
    const RefVariavel& r = p.refs[n];
    int64_t i;
    if (r.tipo != TipoVariavel::Integer || !IndiceRef(r, i)) return false;
    int32_t v = variaveis.inteiros[static_cast<size_t>(r.inicio + i)];
    if (v < 0) return false;
    valores[n] = v;
  }
  double r;
  x = p.arvore.Calcula(valores, r) ? NumeroRelido(r) : 0;
  return true;
}

// The text of an operand that is surely a text, in place; null otherwise.
const Texto* Interpretador::TextoRapido(const PlanoValor& p) {
  if (p.tipo == PlanoValor::Tipo::Constante) return &p.constante;
  if (p.tipo == PlanoValor::Tipo::Chamada) return TextoDaChamada(*p.chamada);
  int64_t i;
  if (p.tipo != PlanoValor::Tipo::Variavel || p.var.tipo != TipoVariavel::String || !IndiceRef(p.var, i))
    return nullptr;
  return &variaveis.textos[static_cast<size_t>(p.var.inicio + i)];
}

// ---- Expressions and conditions ----------------------------------------------

void Interpretador::PreparaValor(const Texto& texto, PlanoValor& p) {
  p = PlanoValor();
  p.fonte = texto;
  Texto t = Apara(LimpaParenteses(texto));
  if (PodeTerChamadaUsuario(t)) return;
  if (PodeTerChamadaInterna(t)) {
    PreparaValorComChamada(t, p);
    return;
  }
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
    p.inteiro = p.temArvore && p.arvore.Inteira() &&
                std::all_of(p.refs.begin(), p.refs.end(), [](const RefVariavel& r) { return r.tipo == TipoVariavel::Integer; });
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
    case PlanoValor::Tipo::Chamada: {
      Valor v;
      if (ValorDaChamada(*p.chamada, v)) return v;
      bool numerico = p.chamada->numerico;
      return ValorNumerico(p.fonte, numerico);
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
      if (!LeParte(p.refs[i], geracao, v) || v.tipo != Valor::Tipo::Int32 || v.i < 0) break;
      valores[i] = v.i;
    }
    if (i == p.refs.size()) {
      double r;
      if (!p.arvore.Calcula(valores, r)) return Valor::DeDecimal(0);
      return Valor::DeDecimal(NumeroRelido(r));
    }
  }
  Texto& b = bufferCalculo_;
  b.clear();
  for (size_t i = 0; i < p.refs.size(); ++i) {
    b += p.pedacos[i];
    // An index out of range has a box to show: the text's own way shows it.
    if (!LeParte(p.refs[i], geracao, v)) return ValorNumerico(p.fonte);
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
  c.partes = std::make_unique<PlanoCondicao::Partes>();
  c.partes->relacoes = partes.relacoes;
  c.partes->conectores = partes.conectores;
  c.lento = false;
  const Texto& rel = c.partes->relacoes[0];
  c.simples = c.operandos.size() == 2 && n == 0 && !rel.empty();
  c.relacao = LeRelacao(rel);
}

bool Interpretador::JulgaRapido(const PlanoCondicao& c, Veredito& veredito) {
  if (c.simples) {
    // Two numbers, or two texts, compare without the values' trip.
    int cmp = 2;
    double a, b;
    Valor::Tipo ta, tb;
    const Texto *sa, *sb;
    if (NumeroRapido(c.operandos[0], a, ta) && NumeroRapido(c.operandos[1], b, tb)) {
      cmp = a < b ? -1 : (a > b ? 1 : 0);
    } else if ((variaveis.Assenta(), sa = TextoRapido(c.operandos[0])) && (sb = TextoRapido(c.operandos[1]))) {
      int r = sa->compare(*sb);
      cmp = r < 0 ? -1 : (r > 0 ? 1 : 0);
    }
    if (cmp != 2) {
      veredito = Satisfaz(c.relacao, cmp) ? Veredito::Verdadeiro : Veredito::Falso;
      return true;
    }
  }
  return false;
}

Veredito Interpretador::Julga(const PlanoCondicao& c, uint64_t geracao) {
  Veredito v;
  if (JulgaInteiros(c, v) || JulgaRapido(c, v)) return v;
  Texto t = AvaliaCondicao(c, geracao);
  return t == u"TRUE" ? Veredito::Verdadeiro : (t == u"FALSE" ? Veredito::Falso : Veredito::Outro);
}

Texto Interpretador::AvaliaCondicao(const PlanoCondicao& c, uint64_t geracao) {
  if (c.lento) return AvaliaCondicao(c.fonte);
  const auto& relacoes = c.partes->relacoes;
  const auto& conectores = c.partes->conectores;
  if (c.operandos.size() == 2 && conectores[0].empty()) {
    Valor esq = AvaliaValor(c.operandos[0], geracao);
    Valor dir = AvaliaValor(c.operandos[1], geracao);
    return ComparaValores(relacoes, 0, std::move(esq), std::move(dir));
  }
  std::array<Texto, 21> resultados;
  for (size_t k = 0; k + 1 < c.operandos.size(); k += 2) {
    Valor esq = AvaliaValor(c.operandos[k], geracao);
    Valor dir = AvaliaValor(c.operandos[k + 1], geracao);
    resultados[k / 2] = ComparaValores(relacoes, k / 2, std::move(esq), std::move(dir));
  }
  if (!conectores[0].empty()) return CombinaCondicoes(conectores, resultados);
  return resultados[0];
}

// ---- Statements ----------------------------------------------------------------

void Interpretador::PreparaAtribuicao(const Texto& linha, const Texto& nome, PlanoLinha& pl, bool emCorpo) {
  size_t eq = linha.find(u'=');
  Texto dir = eq == NPOS ? Texto() : Apara(TextoV(linha).substr(eq + 1));
  Texto maius = Maiusculas(linha);
  if (Contem(dir, u" & ")) {
    PreparaJuncao(linha, nome, dir, pl, emCorpo);
    return;
  }
  for (const char16_t* w : {u"CHR(", u"JOIN(", u"FORMAT(", u"DIRECTORY(", u"SQL("})
    if (Contem(maius, w)) return;
  if (PodeTerChamadaUsuario(dir)) {
    // A body's plans take no calls: the call's arguments are texts with names.
    if (!emCorpo) PreparaChamada(nome, dir, pl);
    return;
  }
  if (PreparaAtribuicaoChamada(nome, dir, pl)) return;
  if (PodeTerChamadaInterna(dir)) {
    if (ResolveRef(nome, pl.alvo) && pl.alvo.tipo == TipoVariavel::String) PreparaSubStr(dir, pl);
    return;
  }
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

// "text = SubStr(source, start[, length])": the whole right side one call
// of SubStr on a String variable, with numbers for start and length.
void Interpretador::PreparaSubStr(const Texto& dir, PlanoLinha& pl) {
  Texto nome, args;
  if (!Comandos().trecho || AchaChamadaInterna(dir, nome, args) != 1 || nome != u"SubStr") return;
  if (LimpaParenteses(dir) != u"SubStr(" + args + u")" || args.find_first_of(u"\"[]") != NPOS) return;
  if (PodeTerChamadaInterna(args) || PodeTerChamadaUsuario(args)) return;
  // With arguments that name a variable only one character would be kept.
  if (PosicaoVariavel(Apara(args)) >= 0 && !VirgulaAposElemento(dir, pl)) return;
  std::vector<Texto> a;
  try {
    a = SeparaArgumentos(args, 6);
  } catch (const FalhaHost&) {
    return;
  }
  size_t n = 0;
  while (n < a.size() && !a[n].empty()) ++n;
  if (n < 2 || n > 3) return;
  for (size_t i = n; i < a.size(); ++i)
    if (!a[i].empty()) return;
  if (PodeTerChamadaUsuario(a[0]) || PodeTerChamadaInterna(a[0])) return;
  if (!ResolveRef(a[0], pl.fonte) || pl.fonte.tipo != TipoVariavel::String) return;
  for (size_t i = 1; i < n; ++i) {
    pl.partes.emplace_back();
    PlanoValor& p = pl.partes.back();
    PreparaValor(a[i], p);
    bool numero = p.tipo == PlanoValor::Tipo::Numero || p.tipo == PlanoValor::Tipo::Aritmetica ||
                  (p.tipo == PlanoValor::Tipo::Variavel && p.var.tipo != TipoVariavel::String);
    if (!numero) return;
  }
  pl.tipo = PlanoLinha::Tipo::SubStr;
}

bool Interpretador::SubStrRapido(PlanoLinha& pl) {
  int64_t i, k;
  if (!IndiceRef(pl.fonte, i) || !IndiceRef(pl.alvo, k)) return false;
  const size_t q = static_cast<size_t>(pl.fonte.inicio + i), a = static_cast<size_t>(pl.alvo.inicio + k);
  // The numbers first: a StrPos or StrLen among them may read this text.
  int64_t limites[2] = {0, -1};
  for (size_t n = 0; n < pl.partes.size(); ++n) {
    // As a whole number, the way the argument reaches SubStr.
    double x;
    Valor::Tipo tx;
    int32_t v;
    if (!NumeroRapido(pl.partes[n], x, tx) || !ArredondaInt32(x, v)) return false;
    limites[n] = v;
  }
  const Texto& t = variaveis.textos[q];
  const size_t caidos = variaveis.Caidos(q);
  TextoV valor = TextoV(t).substr(caidos);
  if (limites[1] < 0 && pl.partes.size() < 2) limites[1] = static_cast<int64_t>(valor.size());
  TextoV r;
  if (!Comandos().trecho(valor, limites[0], limites[1], r)) return false;
  // The result comes back quoted and is read again as a value.
  if (!VoltaIgualGuardado(q, r) || (pl.virgula && !VirgulaInofensiva(r))) return false;
  Texto& alvo = variaveis.textos[a];
  if (r.empty()) {
    if (variaveis.Caidos(a)) variaveis.Cai(a, 0);
    alvo.clear();
    variaveis.Escreveu(a);
  } else if (a == q) {
    // The text cut where it lies: its end dropped, its front left to drop
    // until it outweighs the rest. All of what is left was found clean.
    size_t de = static_cast<size_t>(r.data() - t.data()), n = r.size();
    alvo.resize(de + n);
    if (de > n) {
      variaveis.Cai(a, 0);
      alvo.erase(0, de);
      de = 0;
    } else {
      variaveis.Cai(a, de);
    }
    variaveis.AnotaLimpo(a, de + n);
  } else {
    if (variaveis.Caidos(a)) variaveis.Cai(a, 0);
    alvo.assign(r.data(), r.size());
    variaveis.Escreveu(a);
  }
  forcaTexto = false;
  return true;
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

void Interpretador::PreparaLinha(const Texto& texto, PlanoLinha& pl, bool emCorpo) {
  using T = PlanoLinha::Tipo;
  size_t pos = pl.pos, fim = pl.fim;
  pl = PlanoLinha();
  pl.pos = pos;
  pl.fim = fim;
  pl.geracao = variaveis.geracao;
  Texto linha = texto.substr(pos, fim - pos);
  Localizacao(linha, pl.editor, pl.linha);
  Texto maius = Maiusculas(linha);
  if (Contem(maius, u"ENDPROGRAM")) return;
  if (Contem(maius, u"ENDFUNCTION")) {
    if (emCorpo) pl.tipo = T::FimFuncao;
    return;
  }
  if (Contem(maius, u"ENDWINDOW")) return;
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
  if (Contem(maius, u"NEWWINDOW") || (linha.compare(kColunaComando, 2, u"DB") == 0 && Comandos().db)) return;
  if (Contem(linha, u"GoTo")) {
    PreparaSalto(texto, linha, pl);
    return;
  }
  // The statement after a jump target: its number, found as the walk finds it.
  auto numeroNaMarca = [&texto](size_t h) { return NumeroEm(texto, texto.rfind(u"&#", h) + 2); };
  if ((p = linha.find(u"While[")) != NPOS) {
    Texto tag = TagProfundidade(linha, p + 6);
    size_t h = texto.find(u"Loop[" + tag + u"]", pos);
    if (h == NPOS) return;
    pl.numeroSalto = numeroNaMarca(h);
    PreparaCondicao(CondicaoDoBloco(linha, p, 6, 9), pl.condicao);
    pl.tipo = T::While;
    return;
  }
  if ((p = linha.find(u"Loop[")) != NPOS) {
    Texto tag = TagProfundidade(linha, p + 5);
    size_t h = texto.rfind(u"While[" + tag + u"]", pos);
    size_t a = h == NPOS ? NPOS : texto.rfind(u"&#", h);
    if (a == NPOS) return;
    // Back to the While's own statement.
    pl.desvio.pos = a;
    pl.desvio.numero = NumeroEm(texto, a + 2);
    pl.desvio.fim = std::min(texto.find(CRLF, a), texto.size());
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
    PreparaCondicao(CondicaoDoBloco(linha, p, 3, 6), pl.condicao);
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
  if (m == u"VAR" || m == u"VARIABLE" || ESub(palavra)) return;
  if (m == u"RETURN") {
    PreparaValor(b == NPOS ? Texto() : resto.substr(b + 1), pl.valor);
    pl.tipo = T::Retorno;
    return;
  }
  if (PosicaoVariavel(palavra) >= 0)
    PreparaAtribuicao(linha, palavra, pl, emCorpo);
  else if (TerminaCom(palavra, u":") && ComandoNulo(linha))
    pl.tipo = T::Nulo;
  else if (m == u"REPSTR" && b != NPOS)
    PreparaRepStr(resto.substr(b + 1), pl);
}

namespace {

// A whole-number variable as an operand; false for any other kind or an
// index out of range, which the fast ways leave to the long way too.
bool OperandoDe(const RefVariavel& r, bool naoNegativo, OperandoInteiro& o) {
  if (r.tipo != TipoVariavel::Integer || r.chamada) return false;
  if (!r.indiceVariavel) {
    if (r.indice < 0 || r.indice >= r.tamanho) return false;
    o.modo = OperandoInteiro::Modo::Escalar;
    o.posicao = static_cast<int32_t>(r.inicio + r.indice);
  } else if (r.tipoIndice == TipoVariavel::Integer) {
    o.modo = OperandoInteiro::Modo::Elemento;
    o.posicao = r.inicio;
    o.posIndice = r.posIndice;
    o.tamanho = r.tamanho;
  } else {
    return false;  // a Decimal index: the general fast ways
  }
  o.minimo = naoNegativo ? 0 : INT64_MIN;
  return true;
}

}  // namespace

bool ValorInteiroDe(const PlanoValor& p, ValorInteiro& v) {
  if (p.tipo == PlanoValor::Tipo::Variavel) return OperandoDe(p.var, false, v.a);
  if (p.inteiro) {
    ArvoreCalculo::FormaInteira f = p.arvore.Forma();
    if (f.op == 0) return false;
    // Every variable of the calculation is read, each by one hole.
    size_t usados = 0;
    OperandoInteiro* lados[2] = {&v.a, &v.b};
    for (int k = 0; k < 2; ++k) {
      int h = f.buraco[k];
      if (h < 0) {
        lados[k]->constante = f.constante[k];
        continue;
      }
      if (static_cast<size_t>(h) >= p.refs.size() || !OperandoDe(p.refs[static_cast<size_t>(h)], true, *lados[k]))
        return false;
      usados |= size_t{1} << h;
    }
    if (usados != (size_t{1} << p.refs.size()) - 1) return false;
    v.operador = f.op;
    return true;
  }
  if (p.tipo != PlanoValor::Tipo::Numero || p.numero != std::trunc(p.numero) || !(std::fabs(p.numero) < 1e15))
    return false;
  v.a.constante = static_cast<int64_t>(p.numero);
  return true;
}

void Interpretador::PreparaAtalho(PlanoLinha& pl) {
  using T = PlanoLinha::Tipo;
  Atalho a;
  a.mais = pl.mais;
  bool alvo = pl.alvo.tipo == TipoVariavel::Integer && OperandoDe(pl.alvo, false, a.alvo);
  switch (pl.tipo) {
    case T::Incremento:
      if (alvo) a.tipo = Atalho::Tipo::Incremento;
      break;
    case T::Atribuicao:
      if (alvo && pl.partes.size() == 1 &&
          (pl.partes[0].tipo == PlanoValor::Tipo::Variavel || pl.partes[0].inteiro) &&
          ValorInteiroDe(pl.partes[0], a.valor))
        a.tipo = a.valor.operador == 0 && a.valor.a.modo != OperandoInteiro::Modo::Constante ? Atalho::Tipo::Copia
                                                                                            : Atalho::Tipo::Atribuicao;
      break;
    case T::Composto:
      if (alvo && ValorInteiroDe(pl.valor, a.valor)) a.tipo = Atalho::Tipo::Soma;
      break;
    case T::While:
    case T::If: {
      const PlanoCondicao& c = pl.condicao;
      if (c.simples && ValorInteiroDe(c.operandos[0], a.valor) && ValorInteiroDe(c.operandos[1], a.direita)) {
        for (int cmp = -1; cmp <= 1; ++cmp)
          if (Satisfaz(c.relacao, cmp)) a.aceita |= static_cast<uint8_t>(1u << (cmp + 1));
        if (pl.tipo == T::If) {
          if (pl.profundidade < 0 || pl.profundidade > 20) break;
          a.profundidadeIf = static_cast<int8_t>(pl.profundidade);
          a.falsoVaiAoElse = pl.numeroElse >= 0;
        }
        a.tipo = a.valor.operador == 0 && a.direita.operador == 0 ? Atalho::Tipo::Compara : Atalho::Tipo::Condicao;
      }
      break;
    }
    case T::Loop:
    case T::Salto:
      a.tipo = Atalho::Tipo::Salto;
      break;
    case T::Nulo:
      a.tipo = Atalho::Tipo::Nada;
      break;
    case T::EndIf:
      if (pl.profundidade >= 0 && pl.profundidade <= 20) {
        a.profundidadeIf = static_cast<int8_t>(pl.profundidade);
        a.tipo = Atalho::Tipo::FimSe;
      }
      break;
    case T::Chamada:
      pl.argumentosInteiros.clear();
      if (!alvo || pl.direto) break;
      for (const PlanoValor& p : pl.partes) {
        pl.argumentosInteiros.emplace_back();
        if (p.tipo != PlanoValor::Tipo::Variavel || !OperandoDe(p.var, false, pl.argumentosInteiros.back())) {
          pl.argumentosInteiros.clear();
          break;
        }
      }
      if (pl.argumentosInteiros.size() == pl.partes.size()) a.tipo = Atalho::Tipo::Chamada;
      break;
    default:
      break;
  }
  pl.atalho = a;
}

bool Interpretador::ValorPorPlano(const Texto& texto, Valor& v) {
  // Only where every name a plan finds tells it when it goes: not inside a
  // routine, whose own names come and go unannounced, nor while plans are
  // being made; and not when every statement is to walk.
  if (semPlanos || avaliandoLembrado_ || profundidade > 1 || variaveis.registra || texto.size() > 256) return false;
  if (!lembrados_) lembrados_ = std::make_unique<std::array<ValorLembrado, kValoresLembrados>>();
  size_t h = std::hash<Texto>{}(texto);
  ValorLembrado& l = (*lembrados_)[h % kValoresLembrados];
  bool lembrado = l.planejado && l.texto == texto;
  if (!lembrado && l.hash != h) {
    // Met once: only its hash is kept, so that texts met once cost no copy.
    l.hash = h;
    l.planejado = false;
    return false;
  }
  if (!lembrado || l.geracao != variaveis.geracao) {
    using T = PlanoValor::Tipo;
    l.texto = texto;
    l.geracao = variaveis.geracao;
    {
      Variaveis::Lembranca lembranca(variaveis);
      PreparaValor(texto, l.plano);
    }
    l.planejado = true;
    // Calls take the text's way: they may show boxes, set the numeric
    // flag or run the user's code.
    l.util = l.plano.tipo == T::Numero || l.plano.tipo == T::Constante || l.plano.tipo == T::Variavel ||
             (l.plano.tipo == T::Aritmetica && !l.plano.temChamada && !l.plano.chamada);
  }
  if (!l.util) return false;
  variaveis.Assenta();
  struct Avaliando {
    bool& b;
    explicit Avaliando(bool& x) : b(x) { b = true; }
    ~Avaliando() { b = false; }
  } avaliando(avaliandoLembrado_);
  v = AvaliaValor(l.plano, l.geracao);
  return true;
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
    pl.numerosUnicos = std::adjacent_find(pl.marcas.begin(), pl.marcas.end(), [](const auto& a, const auto& b) {
                         return a.first == b.first;
                       }) == pl.marcas.end();
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

// Where the walk goes after statement `alvo`: the next number, searched
// forward from `de`, as the walk searches it.
Destino Interpretador::DestinoApos(const Texto& texto, int32_t alvo, size_t de) {
  Destino d;
  d.numero = alvo + 1;
  d.pos = AchaMarca(texto, d.numero, de);
  if (d.pos != NPOS) d.fim = std::min(texto.find(CRLF, d.pos), texto.size());
  return d;
}

PlanoLinha* Interpretador::PlanoNovo(const Texto& texto, int32_t numero, size_t pos, size_t fim) {
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
    // What the plan looks up by name now must be looked up again when a
    // variable of that name comes or goes.
    {
      Variaveis::Lembranca lembranca(variaveis);
      PreparaLinha(texto, *pl, false);
    }
    PreparaAtalho(*pl);
    FixaDestinos(texto, *pl, numero);
  }
  return pl.get();
}

void Interpretador::FixaDestinos(const Texto& texto, PlanoLinha& pl, int32_t numero) {
  using T = PlanoLinha::Tipo;
  if (pl.tipo != T::Generico) pl.seguinte = DestinoApos(texto, numero, pl.pos);
  switch (pl.tipo) {
    case T::While:
    case T::Else:
      if (pl.numeroSalto >= 0) pl.desvio = DestinoApos(texto, pl.numeroSalto, pl.pos);
      break;
    case T::If:
      pl.desvio = DestinoApos(texto, pl.numeroElse >= 0 ? pl.numeroElse : pl.numeroEndIf, pl.pos);
      break;
    default:
      break;
  }
}

// The fast ways of the commonest statements. Each gives up (false) where the
// walk would show a box, throw or convert through text; the general way then
// does it all again from the start, which is safe as nothing was changed.

bool Interpretador::CompostoRapido(PlanoLinha& pl) {
  int64_t i;
  if (!IndiceRef(pl.alvo, i)) return false;
  size_t k = static_cast<size_t>(pl.alvo.inicio + i);
  if (pl.alvo.tipo == TipoVariavel::String) {
    variaveis.Assenta();
    const Texto* d = pl.mais ? TextoRapido(pl.valor) : nullptr;
    Texto& x = variaveis.textos[k];
    if (!d || x.size() + d->size() > kMaxTexto) return false;
    x += *d;
    return true;
  }
  double y;
  Valor::Tipo ty;
  if (!NumeroRapido(pl.valor, y, ty)) return false;
  if (pl.alvo.tipo == TipoVariavel::Integer) {
    // Two whole numbers add exactly; past the ends the store refuses the sum.
    int32_t& x = variaveis.inteiros[k];
    double r = pl.mais ? x + y : x - y;
    if (!std::isfinite(r)) return false;
    int32_t n;
    if (ArredondaInt32(r, n)) x = n;
    return true;
  }
  double& x = variaveis.decimais[k];
  double r = pl.mais ? x + y : x - y;
  if (!std::isfinite(r)) return false;
  x = r;
  return true;
}

bool Interpretador::AtribuicaoRapida(PlanoLinha& pl) {
  int64_t i;
  if (pl.partes.size() != 1 || !IndiceRef(pl.alvo, i)) return false;
  size_t k = static_cast<size_t>(pl.alvo.inicio + i);
  const PlanoValor& p = pl.partes[0];
  if (pl.alvo.tipo == TipoVariavel::String) {
    variaveis.Assenta();
    const Texto* t = TextoRapido(p);
    if (!t || t->size() > kMaxTexto) return false;
    variaveis.textos[k] = *t;
    variaveis.Escreveu(k);
    forcaTexto = false;
    return true;
  }
  double x;
  Valor::Tipo tx;
  if (!NumeroRapido(p, x, tx)) return false;
  // Whole values go straight in; others make the trip through their text.
  if (tx != Valor::Tipo::Int32 && x != std::trunc(x)) return false;
  if (pl.alvo.tipo == TipoVariavel::Integer) {
    if (!(std::fabs(x) < 2147483648.0)) return false;
    variaveis.inteiros[k] = static_cast<int32_t>(x);
  } else {
    if (tx != Valor::Tipo::Int32 && !(std::fabs(x) < 1e15)) return false;
    variaveis.decimais[k] = x + 0.0;
  }
  forcaTexto = false;
  return true;
}

// The value goes to the variable as its text; whole numbers read back as
// themselves, so they needn't make the trip.
void Interpretador::AtribuiValor(const RefVariavel& alvo, uint64_t g, Valor v) {
  bool inteiro = v.tipo == Valor::Tipo::Int32;
  bool real = v.tipo == Valor::Tipo::Double || v.tipo == Valor::Tipo::Decimal;
  if (alvo.tipo == TipoVariavel::Integer && real && v.d == std::trunc(v.d) && std::fabs(v.d) < 2147483648.0)
    v = Valor::DeInt32(static_cast<int32_t>(v.d));
  else if (alvo.tipo == TipoVariavel::Decimal && inteiro)
    v = Valor::DeDouble(v.i);
  else if (alvo.tipo == TipoVariavel::Decimal && real && v.d == std::trunc(v.d) && std::fabs(v.d) < 1e15)
    v = Valor::DeDouble(v.d + 0.0);
  else if (!(alvo.tipo == TipoVariavel::Integer && inteiro))
    v = Valor::DeTexto(v.ComoTexto());
  GravaRef(alvo, g, v);
  forcaTexto = false;
}

bool Interpretador::RetornoRapido(PlanoLinha& pl) {
  double x;
  Valor::Tipo t;
  int64_t w;
  bool numero = true;
  // A sum of whole values: the decimal CalculoRapido would give, directly.
  if (pl.valor.inteiro && InteiroDoValor(pl.valor, w)) {
    x = static_cast<double>(w);
    t = Valor::Tipo::Decimal;
  } else {
    numero = NumeroRapido(pl.valor, x, t);
  }
  if (numero) {
    // The value as DeInt32, DeDouble or DeDecimal makes it, in place.
    Valor& v = valorRetorno;
    v.tipo = t;
    v.s.clear();
    v.i = t == Valor::Tipo::Int32 ? static_cast<int32_t>(x) : 0;
    v.d = t == Valor::Tipo::Int32 ? 0 : x;
    return true;
  }
  if (const Texto* s = TextoRapido(pl.valor)) {
    valorRetorno = Valor::DeTexto(*s);
    return true;
  }
  return false;
}

void Interpretador::ExecutaPlanoGeral(PlanoLinha& pl) {
  using T = PlanoLinha::Tipo;
  const uint64_t g = pl.geracao;
  switch (pl.tipo) {
    case T::Incremento: {
      Valor v;
      if (!LeRef(pl.alvo, g, v)) v = LeVariavel(pl.alvo.nome);
      Valor um = Valor::DeInt32(1);
      GravaRef(pl.alvo, g, pl.mais ? SomaValores(v, um) : SubtraiValores(v, um));
      break;
    }
    case T::Composto: {
      Valor d = AvaliaValor(pl.valor, g);
      if (AcrescentaTexto(pl, d)) break;
      Valor v;
      if (!LeRef(pl.alvo, g, v)) v = LeVariavel(pl.alvo.nome);
      GravaRef(pl.alvo, g, pl.mais ? SomaValores(v, d) : SubtraiValores(v, d));
      break;
    }
    case T::Atribuicao: {
      forcaTexto = false;
      if (pl.partes.size() == 1) {
        AtribuiValor(pl.alvo, g, AvaliaValor(pl.partes[0], g));
        break;
      }
      Texto buf;
      for (const PlanoValor& p : pl.partes) buf += AvaliaValor(p, g).ComoTexto();
      GravaRef(pl.alvo, g, Valor::DeTexto(std::move(buf)));
      forcaTexto = false;
      break;
    }
    case T::Retorno:
      valorRetorno = AvaliaValor(pl.valor, g);
      break;
    default:
      break;
  }
}

Interpretador::Seguimento Interpretador::CorrePlanos(const Texto& texto, PlanoLinha* pl, int32_t& numeroSaida,
                                                     size_t& posSaida, size_t& fimSaida, CondicoesFalsas& falsas,
                                                     const CorpoPlanejado* corpo) {
  using T = PlanoLinha::Tipo;
  // Keeps a plan from being remade under this walk by a walk it starts.
  struct EmUso {
    PlanoLinha* p;
    explicit EmUso(PlanoLinha* x) : p(x) { ++p->emUso; }
    ~EmUso() { --p->emUso; }
  };
  // In a text whose statement numbers are all different (a body's always
  // are, see PlanejaCorpo), a plan kept at a destination is that
  // statement's as long as the variables stand.
  const bool unicos = corpo || (planos_ && planos_->numerosUnicos && planos_->dados == texto.data());
  // Where the walk stands, handed back on the way out: the statement's
  // number, and the place of its plan, which is the statement's own.
  int32_t numero = numeroSaida;
  auto sai = [&](Seguimento s) {
    numeroSaida = numero;
    posSaida = pl->pos;
    fimSaida = pl->fim;
    return s;
  };
  auto saiEm = [&](Seguimento s, const Destino& d) {
    numeroSaida = d.numero;
    posSaida = d.pos;
    fimSaida = d.fim;
    return s;
  };
  // A text with a front still to drop (see Variaveis::Caidos) is made whole
  // before any plan but those of SubStr, of numbers and of conditions reads
  // the store, before a statement's slow way, and by the callers when these
  // plans stop (those plans throw nothing).
  for (;;) {
    editorAtual = pl->editor;
    linhaAtual = pl->linha;
    bool desvia = false;
    bool feito = true;  // false: a fast way gave the statement up
    // The whole-number ways decided with the plan first; then the general
    // fast ways.
    if (!CorreAtalho(*pl, falsas, desvia)) {
      switch (pl->tipo) {
        case T::Generico:
          return sai(Seguimento::Generico);
        case T::Incremento:
          feito = IncrementoRapido(*pl);
          break;
        case T::Composto:
          feito = CompostoRapido(*pl);
          break;
        case T::Atribuicao:
          feito = AtribuicaoRapida(*pl);
          break;
        case T::SubStr:
          if (!SubStrRapido(*pl)) return sai(Seguimento::Generico);
          break;
        case T::Juncao: {
          variaveis.Assenta();
          EmUso u(pl);
          if (!JuncaoRapida(*pl)) return sai(Seguimento::Generico);
          break;
        }
        case T::JoinStr:
          variaveis.Assenta();
          if (!JoinStrRapido(*pl)) return sai(Seguimento::Generico);
          break;
        case T::RepStr:
          variaveis.Assenta();
          if (!RepStrRapido(*pl)) return sai(Seguimento::Generico);
          break;
        case T::While:
        case T::If: {
          Veredito v;
          const PlanoCondicao& c = pl->condicao;
          if (!JulgaRapido(c, v)) [[unlikely]] {
            if (corpo) return sai(Seguimento::Generico);
            variaveis.Assenta();
            EmUso u(pl);
            v = Julga(pl->condicao, pl->geracao);
          }
          desvia = v != Veredito::Verdadeiro;
          if (pl->tipo == T::If) falsas[pl->profundidade] = v == Veredito::Falso && pl->numeroElse >= 0;
          break;
        }
        case T::Loop:
        case T::Salto:
          desvia = true;
          break;
        case T::Nulo:
          break;
        case T::EndIf:
          falsas[pl->profundidade] = false;
          break;
        case T::Else:
          if (!falsas[pl->profundidade]) {
            if (pl->numeroSalto < 0) return sai(Seguimento::Generico);
            desvia = true;
            falsas[pl->profundidade] = false;
          }
          break;
        case T::Retorno:
          variaveis.Assenta();
          feito = RetornoRapido(*pl);
          break;
        case T::FimFuncao:
          return sai(Seguimento::Fim);
        case T::Chamada: {
          variaveis.Assenta();
          EmUso u(pl);
          ExecutaChamada(*pl);
          break;
        }
      }
    }
    if (!feito) [[unlikely]] {
      if (corpo) return sai(Seguimento::Generico);
      variaveis.Assenta();
      EmUso u(pl);
      ExecutaPlanoGeral(*pl);
    }
    const Destino& d = desvia ? pl->desvio : pl->seguinte;
    // Only a plan of a kind of its own is kept there, and only at a place
    // in the text (never at its end).
    // Where numbers repeat, a number's plan may be another place's now.
    if (d.geracaoPlano == variaveis.geracao) [[likely]] {
      pl = d.plano;
    } else if (!unicos && d.plano && d.plano->geracao == variaveis.geracao && d.plano->pos == d.pos &&
               d.plano->fim == d.fim) {
      pl = d.plano;
    } else {
      if (d.pos == NPOS) return saiEm(Seguimento::Fim, d);
      PlanoLinha* p =
          corpo ? corpo->Linha(d.numero, d.pos, d.fim, variaveis.geracao) : PlanoDe(texto, d.numero, d.pos, d.fim);
      if (!p || p->tipo == T::Generico) return saiEm(Seguimento::Proximo, d);
      d.plano = p;
      d.geracaoPlano = unicos ? variaveis.geracao : 0;
      pl = p;
    }
    numero = d.numero;
    // What the walk checks before every statement.
    if (!ProximaInstrucao()) [[unlikely]] return sai(Seguimento::Fim);
  }
}

}  // namespace zv
