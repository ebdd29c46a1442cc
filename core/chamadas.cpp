// Planned Function calls: "x = F(args)" in the main text, and the plans of a
// Function's body, made on one call's renamed body and kept for the next.
#include <algorithm>
#include <cmath>

#include "core/interpretador.h"
#include "core/marcas.h"
#include "core/preparacao.h"

namespace zv {

namespace {

// The digits of the call counter, by halves rather than ten comparisons.
size_t Digitos(int32_t c) {
  return c < 100000 ? (c < 100 ? (c < 10 ? 1 : 2) : (c < 1000 ? 3 : (c < 10000 ? 4 : 5)))
                    : (c < 10000000 ? (c < 1000000 ? 6 : 7) : (c < 100000000 ? 8 : (c < 1000000000 ? 9 : 10)));
}

}  // namespace

std::unique_ptr<CorpoPlanejado> Interpretador::PlanejaCorpo(
    const ModeloFuncao& m, const std::vector<Texto>& gerados,
    const std::vector<std::pair<TipoVariavel, int32_t>>& vagas) {
  auto cp = std::make_unique<CorpoPlanejado>();
  cp->modelo = CorpoRenomeado(m, gerados);
  const Texto& t = cp->modelo;
  // Markers in rising order, each once: then every search for one, forward
  // or back, finds the same place in any call's body.
  std::vector<std::pair<int32_t, size_t>> marcas;
  for (size_t p = t.find(u"&#"); p != NPOS; p = t.find(u"&#", p + 1)) {
    int32_t n = 0;
    size_t k = p + 2;
    for (; k < p + 7 && k < t.size() && EDigito(t[k]); ++k) n = n * 10 + (t[k] - u'0');
    if (k < p + 7 || (!marcas.empty() && n <= marcas.back().first)) return nullptr;
    marcas.emplace_back(n, p);
  }
  if (marcas.empty()) return nullptr;
  cp->primeiro = marcas.front().first;
  cp->linhas.resize(static_cast<size_t>(marcas.back().first - cp->primeiro) + 1);
  cp->vagas = vagas;
  cp->geracao = variaveis.geracao;
  // The body's own names aren't remembered as looked up: each call checks
  // where they stand instead, and their removal at the end of every call
  // mustn't stale the plans.
  std::vector<Texto> proprios;
  for (const Texto& g : gerados) proprios.push_back(Maiusculas(g));
  Variaveis::Lembranca lembranca(variaveis, std::move(proprios));
  for (const auto& [n, p] : marcas) {
    auto pl = std::make_unique<PlanoLinha>();
    pl->pos = p;
    pl->fim = std::min(t.find(CRLF, p), t.size());
    PreparaLinha(t, *pl, true);
    PreparaAtalho(*pl);
    FixaDestinos(t, *pl, n);
    cp->linhas[static_cast<size_t>(n - cp->primeiro)] = std::move(pl);
  }
  int32_t seguinte[3] = {-1, -1, -1};
  cp->vagasSeguidas = m.tiposLocais.size() == vagas.size();
  for (size_t i = 0; i < vagas.size() && cp->vagasSeguidas; ++i) {
    auto t = static_cast<size_t>(vagas[i].first);
    if (vagas[i].first != m.tiposLocais[i] || (seguinte[t] >= 0 && vagas[i].second != seguinte[t])) {
      cp->vagasSeguidas = false;
    } else {
      if (seguinte[t] < 0) cp->primeiraVaga[t] = vagas[i].second;
      seguinte[t] = vagas[i].second + 1;
    }
  }
  AnalisaFolha(m, *cp);
  return cp;
}

void Interpretador::AnalisaFolha(const ModeloFuncao& m, CorpoPlanejado& cp) {
  using T = PlanoLinha::Tipo;
  if (cp.linhas.size() != 2 || !cp.linhas[0] || !cp.linhas[1] || cp.linhas[0]->tipo != T::Retorno ||
      cp.linhas[1]->tipo != T::FimFuncao || m.locais.size() != m.totalParametros || cp.vagas.size() != m.totalParametros)
    return;
  for (TipoVariavel t : m.tiposLocais)
    if (t != TipoVariavel::Integer) return;
  const PlanoValor& v = cp.linhas[0]->valor;
  // What RetornoRapido takes the whole-number way: a calculation by
  // InteiroDoValor, a variable by NumeroRapido.
  if (!v.inteiro && v.tipo != PlanoValor::Tipo::Variavel) return;
  ValorInteiro r;
  if (!ValorInteiroDe(v, r)) return;
  // Each variable read is one of the parameters, by where it stands.
  for (OperandoInteiro* o : {&r.a, &r.b}) {
    if (o->modo == OperandoInteiro::Modo::Constante) continue;
    if (o->modo != OperandoInteiro::Modo::Escalar) return;
    auto k = std::find(cp.vagas.begin(), cp.vagas.end(), std::make_pair(TipoVariavel::Integer, o->posicao));
    if (k == cp.vagas.end()) return;
    o->posicao = static_cast<int32_t>(k - cp.vagas.begin());
  }
  cp.retorno = r;
  cp.folha = true;
}

bool Interpretador::ChamadaFolha(ModeloFuncao& m, const CorpoPlanejado& cp, const double* numeros,
                                 const Valor::Tipo* tipos, const Texto* const* textos, Valor& resultado) {
  int32_t argumentos[21];
  for (size_t i = 0; i < m.totalParametros; ++i) {
    if (textos[i] || tipos[i] != Valor::Tipo::Int32) return false;
    argumentos[i] = static_cast<int32_t>(numeros[i]);
  }
  int64_t w;
  if (!FolhaPodeCorrer() || !LeValorInteiroEm(argumentos, cp.retorno, w)) return false;
  const Valor& v = TerminaFolha(m, cp, w);
  resultado.tipo = v.tipo;
  resultado.s.clear();
  resultado.i = v.i;
  resultado.d = v.d;
  return true;
}

bool Interpretador::FolhaPodeCorrer() const {
  // What the body's walk would meet on its way: the checks before its two
  // statements, the nesting limit, the stack's end.
  char aqui;
  if (profundidade >= kMaxProfundidade || (fundoPilha && &aqui < fundoPilha)) return false;
  if (SegueExecutando()) return true;
  if (!executando || janelaFechada || pararPrograma || abortado) return false;
  return !contando || instrucoesExecutadas + 2 <= limiteInstrucoes;
}

const Valor& Interpretador::TerminaFolha(ModeloFuncao& m, const CorpoPlanejado& cp, int64_t w) {
  ++m.chamadas;
  if (contando) instrucoesExecutadas += 2;  // the Return and the EndFunction
  variaveis.Assenta();
  // The value as RetornoRapido makes it: a calculation's Decimal, a
  // parameter's Int32.
  const bool calculo = cp.linhas[0]->valor.inteiro;
  Valor& v = valorRetorno;
  v.tipo = calculo ? Valor::Tipo::Decimal : Valor::Tipo::Int32;
  v.s.clear();
  v.i = calculo ? 0 : static_cast<int32_t>(w);
  v.d = calculo ? static_cast<double>(w) : 0;
  // Where the body's walk ends: its EndFunction line.
  editorAtual = cp.linhas[1]->editor;
  linhaAtual = cp.linhas[1]->linha;
  ++contadorChamadas;
  return v;
}

bool Interpretador::NomesLivres(const Texto& nome, ModeloFuncao& m) {
  const size_t tamanho = nome.size() + Digitos(contadorChamadas);
  if (m.nomesLivresEm == variaveis.versaoDigitos && m.nomesLivresTamanho == tamanho) return true;
  for (const Texto& local : m.locais)
    if (variaveis.TalvezComDigito(m.inicialMaiuscula, tamanho + local.size())) return false;
  m.nomesLivresEm = variaveis.versaoDigitos;
  m.nomesLivresTamanho = tamanho;
  return true;
}

bool Interpretador::ChamadaRapida(PlanoLinha& pl) {
  ModeloFuncao* m = pl.modelo;
  if (!m || !m->rapido || Vigiado()) return false;
  const CorpoPlanejado* cp = m->plano.get();
  if (cp && !cp->folha) {
    // A body that isn't one Return (its text says so) stays so: this
    // statement goes the general way until its plan is made again.
    pl.atalho.tipo = Atalho::Tipo::Nenhum;
    return false;
  }
  if (!cp || cp->geracao != variaveis.geracao || pl.geracao != variaveis.geracao ||
      !m->locaisDistintos || contadorChamadas < 0 || pl.argumentosInteiros.size() != m->totalParametros)
    return false;
  // No variable of the names the call would make may stand or have been looked for.
  if (!NomesLivres(pl.nomeFuncao, *m)) return false;
  int32_t argumentos[21];
  for (size_t i = 0; i < m->totalParametros; ++i) {
    int64_t a;
    if (!LeOperando(pl.argumentosInteiros[i], a)) return false;
    argumentos[i] = static_cast<int32_t>(a);
  }
  int64_t w;
  int32_t* alvo = LugarInteiro(pl.atalho.alvo);
  if (!alvo || !FolhaPodeCorrer() || !LeValorInteiroEm(argumentos, cp->retorno, w) || w <= -kLimite32 ||
      w >= kLimite32)
    return false;
  TerminaFolha(*m, *cp, w);
  // A whole number goes to the variable as ExecutaChamada stores it.
  *alvo = static_cast<int32_t>(w);
  forcaTexto = false;
  return true;
}

void Interpretador::ExecutaCorpo(ModeloFuncao& m, const std::vector<Texto>& gerados,
                                 const std::vector<std::pair<TipoVariavel, int32_t>>& feitas) {
  // A name that already stood (another call's, or a global's, of any size)
  // leaves the call to the walk: plans only know variables made for them.
  bool feitasAgora = true;
  for (const auto& v : feitas) feitasAgora = feitasAgora && v.second >= 0;
  ++m.chamadas;
  CorpoPlanejado* cp = feitasAgora ? m.plano.get() : nullptr;
  if (feitasAgora && (!cp || cp->geracao != variaveis.geracao || cp->vagas != feitas)) {
    m.plano = PlanejaCorpo(m, gerados, feitas);
    cp = m.plano.get();
    // Plans that last a call or two cost more than they save.
    if (!cp || (++m.replanos > 8 && m.replanos * 4 > m.chamadas)) {
      m.rapido = false;
      m.plano.reset();
      cp = nullptr;
    }
  }
  if (!cp) {
    ExecutaTexto(CorpoRenomeado(m, gerados), m.corpo, 0);
    return;
  }
  Nivel nivel(profundidade);
  if (!EntraCaminhada()) return;
  CondicoesFalsas falsas = NenhumaFalsa();
  int32_t numero;
  Seguimento s = CorreCorpo(*cp, falsas, numero);
  if (s != Seguimento::Fim) SegueCorpo(m, gerados, numero, falsas, s);
}

Interpretador::Seguimento Interpretador::CorreCorpo(CorpoPlanejado& cp, CondicoesFalsas& falsas, int32_t& numero) {
  // The walk's checks before its first statement.
  if (!ProximaInstrucao()) return Seguimento::Fim;
  PlanoLinha* pl = cp.linhas.front().get();
  numero = cp.primeiro;
  size_t pos = pl->pos, fim = pl->fim;
  if (pl->tipo == PlanoLinha::Tipo::Generico) return Seguimento::Generico;
  // A text cut by the plans is whole again for the walk, whichever way they stop.
  Seguimento s;
  try {
    s = CorrePlanos(cp.modelo, pl, numero, pos, fim, falsas, &cp);
  } catch (...) {
    variaveis.Assenta();
    throw;
  }
  variaveis.Assenta();
  return s;
}

// The walk goes on over this call's own body, from where the plans stopped.
void Interpretador::SegueCorpo(const ModeloFuncao& m, const std::vector<Texto>& gerados, int32_t numero,
                               CondicoesFalsas& falsas, Seguimento s) {
  Texto corpo = CorpoRenomeado(m, gerados);
  size_t pos = corpo.find(MarcaComando(numero));
  if (pos == NPOS) return;
  Caminha(corpo, m.corpo, numero, pos, std::min(corpo.find(CRLF, pos), corpo.size()), falsas,
          s == Seguimento::Generico);
}

bool Interpretador::ChamadaSemNomes(const Texto& nome, ModeloFuncao& m, const PlanoLinha& plano, Valor& resultado) {
  CorpoPlanejado* cp = m.plano.get();
  if (!cp || cp->geracao != variaveis.geracao || plano.geracao != variaveis.geracao || !m.locaisDistintos ||
      contadorChamadas < 0)
    return false;
  const size_t n = m.locais.size();
  // Each variable goes where Cria would put it, at the end of its type's
  // table, and none of that name can stand already or have been looked for.
  const size_t tamanhos[3] = {variaveis.textos.size(), variaveis.inteiros.size(), variaveis.decimais.size()};
  if (!cp->vagasSeguidas) return false;
  for (size_t t = 0; t < 3; ++t)
    if (cp->primeiraVaga[t] >= 0 && static_cast<size_t>(cp->primeiraVaga[t]) != tamanhos[t]) return false;
  if (!NomesLivres(nome, m)) return false;
  // The arguments, when reading them is all that their values take.
  double numeros[21];
  Valor::Tipo tipos[21];
  const Texto* textos[21];
  for (size_t i = 0; i < m.totalParametros; ++i) {
    const PlanoValor& p = plano.partes[i];
    textos[i] = nullptr;
    if (!NumeroRapido(p, numeros[i], tipos[i])) {
      textos[i] = TextoRapido(p);
      if (!textos[i] || textos[i]->size() > kMaxTexto) return false;
    }
  }
  if (cp->folha && ChamadaFolha(m, *cp, numeros, tipos, textos, resultado)) return true;
  for (size_t i = 0; i < n; ++i) variaveis.AcrescentaValor(m.tiposLocais[i]);
  for (size_t i = 0; i < m.totalParametros; ++i) {
    TipoVariavel t = m.tiposLocais[i];
    size_t k = static_cast<size_t>(cp->vagas[i].second);
    if (textos[i]) {
      if (t == TipoVariavel::String) {
        variaveis.textos[k] = *textos[i];
        variaveis.Escreveu(k);
      } else {
        GravaNaPosicao(t, k, Valor::DeTexto(*textos[i]));
      }
    } else if (t == TipoVariavel::Integer && tipos[i] == Valor::Tipo::Int32) {
      variaveis.inteiros[k] = static_cast<int32_t>(numeros[i]);
    } else {
      Valor::Tipo tx = tipos[i];
      double x = numeros[i];
      GravaNaPosicao(t, k,
                     tx == Valor::Tipo::Int32    ? Valor::DeInt32(static_cast<int32_t>(x))
                     : tx == Valor::Tipo::Double ? Valor::DeDouble(x)
                                                 : Valor::DeDecimal(x));
    }
  }
  ++m.chamadas;
  std::vector<Texto> gerados;
  auto comNomes = [&] {
    if (!gerados.empty() || n == 0) return;
    Texto contador = InteiroParaTexto(contadorChamadas);
    for (size_t i = 0; i < n; ++i) {
      gerados.push_back(nome + contador + m.locais[i]);
      variaveis.Anota(gerados.back(), m.tiposLocais[i], cp->vagas[i].second);
    }
  };
  try {
    Nivel nivel(profundidade);
    if (EntraCaminhada()) {
      CondicoesFalsas falsas = NenhumaFalsa();
      int32_t numero;
      Seguimento s = CorreCorpo(*cp, falsas, numero);
      if (s != Seguimento::Fim) {
        comNomes();
        SegueCorpo(m, gerados, numero, falsas, s);
      }
    }
  } catch (...) {
    // A failure leaves the call's variables behind, named, as the long way does.
    comNomes();
    throw;
  }
  resultado = valorRetorno;
  // A run ended by a limit keeps the call's variables, as the long way does.
  if (abortado) {
    comNomes();
    return true;
  }
  if (!gerados.empty()) {
    for (const Texto& g : gerados) RemoveVariable(g);
  } else {
    for (size_t i = 0; i < n; ++i) variaveis.RetiraValor(m.tiposLocais[i]);
  }
  ++contadorChamadas;
  return true;
}

// "x = F(args)" where the right side is that one call: found as
// AchaFuncaoUsuario finds it, but without its box.
void Interpretador::PreparaChamada(const Texto& nome, const Texto& dir, PlanoLinha& pl) {
  if (dir.empty() || dir[0] == u'"') return;
  int k = PalavraChamada(dir, nomesFuncoes.data(), nomesFuncoes.size());
  if (k < 0) return;
  const Texto& funcao = nomesFuncoes[static_cast<size_t>(k)];
  Texto m = MarcaParenteses(LimpaParenteses(dir));
  size_t q = m.find(funcao);
  if (q == NPOS) return;
  size_t w = q;
  while (w < m.size() && (ELetra(m[w]) || EDigito(m[w]) || m[w] == u'_')) ++w;
  Texto args;
  size_t fim;
  if (!ArgumentosMarcados(m, q, w - q, args, fim)) return;
  pl.nomeFuncao = m.substr(q, w - q);
  pl.direto = TerminaCom(dir, u"()");
  if (pl.direto) {
    if (TextoV(dir).substr(0, dir.size() - 2) != pl.nomeFuncao) return;
  } else {
    // Nothing before the call and nothing behind it, as the splice cuts it.
    if (q != 0) return;
    Texto resto;
    size_t f;
    if (!ArgumentosMarcados(m, q, pl.nomeFuncao.size(), resto, f) || !LimpaParenteses(TextoV(m).substr(f)).empty())
      return;
    if (TemChamadaPreAvaliada(Maiusculas(Apara(args)))) return;
    std::vector<Texto> reais;
    try {
      reais = SeparaArgumentos(args, 21);
    } catch (const FalhaHost&) {
      return;
    }
    for (const Texto& r : reais) {
      if (r.empty()) break;
      pl.partes.emplace_back();
      PreparaValor(r, pl.partes.back());
    }
  }
  if (!ResolveRef(nome, pl.alvo)) return;
  const Texto& palavra = tiposFuncoes[static_cast<size_t>(k)];
  pl.resultadoTexto = palavra == u"String";
  pl.resultadoNumero = palavra == u"Numero";
  pl.direita = dir;
  pl.tipo = PlanoLinha::Tipo::Chamada;
}

void Interpretador::ExecutaChamada(PlanoLinha& pl) {
  forcaTexto = false;
  if (pl.direto) {
    GravaRef(pl.alvo, pl.geracao, ChamaFuncao(pl.nomeFuncao, Texto(), &pl));
    return;
  }
  Valor r;
  bool feito = false;
  // Once the Function is known, a call that needs no names goes straight in.
  if (ModeloFuncao* m = pl.modelo; m && m->rapido && !Vigiado() && pl.partes.size() == m->totalParametros) {
    try {
      feito = ChamadaSemNomes(pl.nomeFuncao, *m, pl, r);
    } catch (const std::exception&) {  // FalhaHost among them
      FalhaFuncao();
      r = Valor();
      feito = true;
    }
  }
  if (!feito) r = ChamaFuncao(pl.nomeFuncao, Texto(), &pl);
  // A whole number's text reads back as the number itself.
  if (!forcaTexto && !pl.resultadoTexto) {
    double x = 0;
    bool inteiro = r.tipo == Valor::Tipo::Int32 || r.tipo == Valor::Tipo::Int16;
    if (inteiro) {
      x = r.i;
    } else if ((r.tipo == Valor::Tipo::Double || r.tipo == Valor::Tipo::Decimal) && r.d == std::trunc(r.d) &&
               std::fabs(r.d) < 1e15) {
      x = r.d + 0.0;
      inteiro = true;
    }
    if (inteiro) {
      int64_t k;
      if (pl.geracao == variaveis.geracao && IndiceRef(pl.alvo, k) && pl.alvo.tipo != TipoVariavel::String &&
          (pl.alvo.tipo == TipoVariavel::Decimal || std::fabs(x) < 2147483648.0)) {
        size_t p = static_cast<size_t>(pl.alvo.inicio + k);
        if (pl.alvo.tipo == TipoVariavel::Integer)
          variaveis.inteiros[p] = static_cast<int32_t>(x);
        else
          variaveis.decimais[p] = x;
        forcaTexto = false;
      } else {
        AtribuiValor(pl.alvo, pl.geracao, Valor::DeDouble(x));
      }
      return;
    }
  }
  Texto t = r.ComoTexto();
  if (pl.resultadoNumero) {
    size_t v = t.rfind(u',');
    if (v != NPOS) t[v] = u'.';
  }
  if (pl.resultadoTexto && (t.empty() || t[0] != u'"')) t = u"\"" + t + u"\"";
  // A plain number holds no further call and reads back as a number.
  double x;
  if (!forcaTexto && !t.empty() && t.find_first_of(u"\"(),[] ") == NPOS && LeNumero(t, x)) {
    AtribuiValor(pl.alvo, pl.geracao, Valor::DeDouble(x));
    return;
  }
  bool igual = t == pl.direita;
  AtribuiSemJuncao(pl.alvo.nome, std::move(t), pl.alvo.tipo != TipoVariavel::String, 1, igual);
}

}  // namespace zv
