// Planned Function calls: "x = F(args)" in the main text, and the plans of a
// Function's body, made on one call's renamed body and kept for the next.
#include "core/interpretador.h"
#include "core/marcas.h"
#include "core/preparacao.h"

namespace zv {

namespace {

struct Nivel {
  int& n;
  explicit Nivel(int& p) : n(p) { ++n; }
  ~Nivel() { --n; }
};

// While a body is planned, its own names aren't remembered as looked up:
// each call checks where they stand instead, and their removal at the end
// of every call mustn't stale the plans.
struct RegistroCorpo {
  Variaveis& v;
  RegistroCorpo(Variaveis& x, const std::vector<Texto>& gerados) : v(x) {
    v.semRegistro.clear();
    for (const Texto& g : gerados) v.semRegistro.push_back(Maiusculas(g));
    v.registra = true;
  }
  ~RegistroCorpo() {
    v.registra = false;
    v.semRegistro.clear();
  }
};

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
  RegistroCorpo registro(variaveis, gerados);
  for (const auto& [n, p] : marcas) {
    auto pl = std::make_unique<PlanoLinha>();
    pl->pos = p;
    pl->fim = std::min(t.find(CRLF, p), t.size());
    PreparaLinha(t, *pl, true);
    FixaDestinos(t, *pl, n);
    cp->linhas[static_cast<size_t>(n - cp->primeiro)] = std::move(pl);
  }
  return cp;
}

void Interpretador::ExecutaCorpo(ModeloFuncao& m, const std::vector<Texto>& gerados,
                                 const std::vector<std::pair<TipoVariavel, int32_t>>& feitas,
                                 const Texto& exibicao) {
  // Where the routine's own variables stand: made now, or found standing.
  std::vector<std::pair<TipoVariavel, int32_t>> vagas = feitas;
  for (size_t i = 0; i < vagas.size(); ++i) {
    if (vagas[i].second >= 0) continue;
    int32_t p = variaveis.Posicao(gerados[i]);
    vagas[i] = {variaveis.tipoEncontrado, p};
  }
  ++m.chamadas;
  CorpoPlanejado* cp = m.plano.get();
  if (!cp || cp->geracao != variaveis.geracao || cp->vagas != vagas) {
    m.plano = PlanejaCorpo(m, gerados, vagas);
    cp = m.plano.get();
    // Plans that last a call or two cost more than they save.
    if (!cp || (++m.replanos > 8 && m.replanos * 4 > m.chamadas)) {
      m.rapido = false;
      m.plano.reset();
      cp = nullptr;
    }
  }
  if (!cp) {
    ExecutaTexto(CorpoRenomeado(m, gerados), exibicao, 0);
    return;
  }
  Nivel nivel(profundidade);
  if (!EntraCaminhada()) return;
  CondicoesFalsas falsas{};
  // The walk's checks before its first statement.
  if (!executando || janelaFechada || pararPrograma || abortado) return;
  if (limiteInstrucoes > 0 && ++instrucoesExecutadas > limiteInstrucoes) {
    limiteAtingido = true;
    abortado = true;
    return;
  }
  PlanoLinha* pl = cp->linhas.front().get();
  int32_t numero = cp->primeiro;
  size_t pos = pl->pos, fim = pl->fim;
  Seguimento s = Seguimento::Generico;
  if (pl->tipo != PlanoLinha::Tipo::Generico) {
    s = CorrePlanos(cp->modelo, pl, numero, pos, fim, falsas, cp);
    if (s == Seguimento::Fim) return;
  }
  // The walk goes on over this call's own body, from where the plans stopped.
  Texto corpo = CorpoRenomeado(m, gerados);
  pos = corpo.find(MarcaComando(numero));
  if (pos == NPOS) return;
  Caminha(corpo, exibicao, numero, pos, std::min(corpo.find(CRLF, pos), corpo.size()), falsas,
          s == Seguimento::Generico);
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
  pl.palavraResultado = tiposFuncoes[static_cast<size_t>(k)];
  pl.direita = dir;
  pl.tipo = PlanoLinha::Tipo::Chamada;
}

void Interpretador::ExecutaChamada(PlanoLinha& pl) {
  forcaTexto = false;
  if (pl.direto) {
    GravaRef(pl.alvo, pl.geracao, ChamaFuncao(pl.nomeFuncao, Texto(), &pl));
    return;
  }
  Texto t = ChamaFuncao(pl.nomeFuncao, Texto(), &pl).ComoTexto();
  if (pl.palavraResultado == u"Numero") {
    size_t v = t.rfind(u',');
    if (v != NPOS) t[v] = u'.';
  }
  if (pl.palavraResultado == u"String" && (t.empty() || t[0] != u'"')) t = u"\"" + t + u"\"";
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
