// Plans of joins, "text = a & b & c": the commonest way programs build
// reports, CSV lines and file contents. The walk copies the whole text of
// every part, the target's own included, on each run of the statement, so
// that building a text by appends costs time that grows with the square of
// its length. The plan appends to (or puts in front of) the target's text in
// place, with the walk's results: each part gives what the walk's cut at
// " & " makes of it, and anything the plan can't be sure of goes to the walk.
#include "core/despacho.h"
#include "core/interpretador.h"
#include "core/planos.h"

namespace zv {

namespace {

// Built-in functions that only work out a value from their arguments: they
// run no program code and change no variable, so that the parts around them
// read the same before and after. Upper case.
constexpr const char16_t* kFuncoesPuras[] = {
    u"CHR",   u"TRIM",  u"STRLEN", u"SUBSTR", u"STRPOS", u"HEX", u"ASC", u"STRVAL",
    u"FORMAT", u"INT",  u"ROUND",  u"ABS",    u"FIX",    u"DATE", u"TIME",
};

bool FuncaoPura(const Texto& nome) {
  Texto m = Maiusculas(nome);
  for (const char16_t* f : kFuncoesPuras)
    if (m == f) return true;
  return false;
}

}  // namespace

void Interpretador::PreparaJuncao(const Texto& linha, const Texto& nome, const Texto& dir, PlanoLinha& pl,
                                  bool emCorpo) {
  // "x = SQL(...TOTALRECORDS...)" goes its own way before any join.
  if (ComecaCom(Maiusculas(dir), u"SQL(")) return;
  if (!ResolveRef(nome, pl.alvo) || pl.alvo.tipo != TipoVariavel::String) return;
  auto j = std::make_unique<PlanoJuncao>();
  Texto maius = Maiusculas(linha);
  for (const char16_t* w : {u"CHR(", u"JOIN(", u"FORMAT(", u"DIRECTORY(", u"SQL("})
    if (Contem(maius, w)) j->forcaTexto = true;
  // The cut takes no notice of quotes, as the walk's does.
  for (size_t ini = 0;;) {
    size_t p = dir.find(u" & ", ini);
    Texto parte = Apara(TextoV(dir).substr(ini, p == NPOS ? NPOS : p - ini));
    ParteJuncao pj;
    if (ComecaCom(parte, u"\"")) {
      pj.tipo = ParteJuncao::Tipo::Constante;
      pj.texto = RemoveAspas(parte);
    } else if (PosicaoVariavel(parte) >= 0) {
      if (!ResolveRef(parte, pj.var)) return;
      pj.tipo = ParteJuncao::Tipo::Variavel;
    } else {
      // A body's plans are made on one call's names: a name that isn't a
      // variable now, or a call's arguments, may read differently in the next.
      if (emCorpo) return;
      Texto funcao, args;
      int r = AchaChamadaInterna(parte, funcao, args);
      if (r < 0) return;  // the walk has a box to show
      if (r > 0) {
        // Arguments with no call of their own, so that nothing but the
        // function itself runs.
        if (!FuncaoPura(funcao) || args.find(u'(') != NPOS || PalavraChamadaChave(args) >= 0 ||
            PalavraChamada(args, nomesFuncoes.data(), nomesFuncoes.size()) >= 0)
          return;
        pj.tipo = ParteJuncao::Tipo::Chamada;
        pj.texto = std::move(funcao);
        pj.argumentos = std::move(args);
        j->temChamada = true;
      }
    }
    j->partes.push_back(std::move(pj));
    if (p == NPOS) break;
    ini = p + 3;
  }
  j->valores.resize(j->partes.size());
  j->pedacos.resize(j->partes.size());
  pl.juncao = std::move(j);
  pl.tipo = PlanoLinha::Tipo::Juncao;
}

// False, with nothing changed, where the walk would show a box for a part
// (an index out of range); the walk then does the statement.
bool Interpretador::JuncaoRapida(PlanoLinha& pl) {
  using P = ParteJuncao::Tipo;
  PlanoJuncao& j = *pl.juncao;
  const size_t n = j.partes.size();
  int64_t i;
  if (!IndiceRef(pl.alvo, i)) return false;
  const size_t alvo = static_cast<size_t>(pl.alvo.inicio + i);
  // Where each variable part stands; the target's own text among them.
  size_t primeiroDoAlvo = NPOS, vezesDoAlvo = 0;
  for (size_t k = 0; k < n; ++k) {
    const ParteJuncao& p = j.partes[k];
    if (p.tipo != P::Variavel) continue;
    if (!IndiceRef(p.var, i)) return false;
    if (p.var.tipo == TipoVariavel::String && static_cast<size_t>(p.var.inicio + i) == alvo) {
      if (vezesDoAlvo++ == 0) primeiroDoAlvo = k;
    }
  }
  forcaTexto = j.forcaTexto;
  // The calls run first, in their order: they change no variable, so the
  // parts read afterwards hold what the walk would have read in between.
  bool releitura = false;
  if (j.temChamada) {
    for (size_t k = 0; k < n; ++k) {
      const ParteJuncao& p = j.partes[k];
      if (p.tipo == P::Chamada) j.valores[k] = RemoveAspas(DespachaComando(p.texto, p.argumentos).ComoTexto());
    }
    // A box may have let something else run: then the rest is read by name.
    releitura = variaveis.geracao != pl.geracao;
    for (size_t k = 0; k < n && !releitura; ++k)
      if (j.partes[k].tipo == P::Variavel && !IndiceRef(j.partes[k].var, i)) releitura = true;
    if (releitura || !IndiceRef(pl.alvo, i) || static_cast<size_t>(pl.alvo.inicio + i) != alvo) {
      Texto buf;
      for (size_t k = 0; k < n; ++k) {
        const ParteJuncao& p = j.partes[k];
        if (p.tipo == P::Constante) buf += p.texto;
        if (p.tipo == P::Chamada) buf += j.valores[k];
        if (p.tipo == P::Variavel && PosicaoVariavel(p.var.nome) >= 0) buf += LeVariavel(p.var.nome).ComoTexto();
      }
      GravaVariavel(pl.alvo.nome, Valor::DeTexto(std::move(buf)), true);
      return true;
    }
  }
  size_t total = 0;
  for (size_t k = 0; k < n; ++k) {
    const ParteJuncao& p = j.partes[k];
    TextoV& v = j.pedacos[k];
    switch (p.tipo) {
      case P::Constante:
        v = p.texto;
        break;
      case P::Chamada:
        v = j.valores[k];
        break;
      case P::Nada:
        v = TextoV();
        break;
      case P::Variavel: {
        IndiceRef(p.var, i);
        size_t e = static_cast<size_t>(p.var.inicio + i);
        // Numbers as LeVariavel's value turns them into text.
        if (p.var.tipo == TipoVariavel::String) {
          v = variaveis.textos[e];
        } else {
          j.valores[k] = p.var.tipo == TipoVariavel::Integer ? InteiroParaTexto(variaveis.inteiros[e])
                                                               : NumeroParaTexto(variaveis.decimais[e]);
          v = j.valores[k];
        }
        break;
      }
    }
    total += v.size();
  }
  Texto& t = variaveis.textos[alvo];
  if (total > kMaxTexto) {
    // The store's own refusal, with its box.
    Texto buf;
    for (TextoV v : j.pedacos) buf += v;
    GravaVariavel(pl.alvo.nome, Valor::DeTexto(std::move(buf)), true);
    return true;
  }
  if (vezesDoAlvo == 1 && primeiroDoAlvo == 0) {
    // s = s & ...: the text grows where it stands, its room doubling.
    for (size_t k = 1; k < n; ++k) t.append(j.pedacos[k]);
    return true;
  }
  variaveis.Escreveu(alvo);
  if (vezesDoAlvo == 1 && primeiroDoAlvo == n - 1) {
    // s = ... & s: what comes before goes in front.
    Texto frente;
    frente.reserve(total - t.size());
    for (size_t k = 0; k + 1 < n; ++k) frente.append(j.pedacos[k]);
    t.insert(0, frente);
  } else if (vezesDoAlvo == 0) {
    t.clear();
    for (TextoV v : j.pedacos) t.append(v);
  } else {
    Texto b;
    b.reserve(total);
    for (TextoV v : j.pedacos) b.append(v);
    t = std::move(b);
  }
  return true;
}

}  // namespace zv
