// One run of a program: the prepared text, the variables, the routines and
// the walks over the text. All state of a run lives here; the tear-down is
// this object's destruction.
#pragma once

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "core/despacho.h"
#include "core/host.h"
#include "core/planos.h"
#include "core/texto.h"
#include "core/valor.h"
#include "core/variaveis.h"

namespace zv {

// The program as the editor holds it: slot 0 the main code, 1 to 6 the
// further code tabs, 7 to 10 never read; six tab names.
struct FontePrograma {
  std::array<Texto, 11> textos;  // TextosFonte
  std::array<Texto, 7> nomes;    // NomeCodigo (0 to 5 name tabs 1 to 6)
};

// Statement limits of the markers: five digits.
inline constexpr int32_t kMaxNumeroMarcador = 99999;

// The four flags that end a walk, and whether statements are counted
// against a budget, side by side so that the check made before every
// statement reads them as one word.
struct SinaisDeParada {
  bool executando = true;     // Executando
  bool pararPrograma = false; // PararPrograma
  bool janelaFechada = false; // JanelaFechada
  // Set when a limit (nesting depth, statement budget) ended the run; stops every walk.
  bool abortado = false;
  bool contando = false;      // limiteInstrucoes > 0, set at the start of a run
  bool livres_[3] = {};       // no padding in the word
};

class Interpretador : public SinaisDeParada {
 public:
  explicit Interpretador(Host& host);
  ~Interpretador();
  Interpretador(const Interpretador&) = delete;
  Interpretador& operator=(const Interpretador&) = delete;

  Host& host() { return host_; }

  // ---- The program and its run -------------------------------------------
  FontePrograma fonte;
  Texto nomeArquivoPrograma;  // file name, e.g. "hello.Zvc" (box titles)
  Texto dirPrograma;          // DirPrograma: the source's folder, with its separator
  Texto linhaDeComando;       // CommandLine
  Texto dirConfig;            // folder of ZV.File and Zarvolt8.inf
  bool modoDepuracao = false; // ModoDepuracao
  // Lines where a plain run stops with the step box, as (editor, line) the
  // way the box counts them: the environment's breakpoints. While any is
  // set, every statement takes the walk, as in Debug.
  std::set<std::pair<int32_t, int32_t>> pontosParada;
  bool Vigiado() const { return modoDepuracao || !pontosParada.empty(); }
  // Ends the run after so many statements (0: no limit); set by tools.
  int64_t limiteInstrucoes = 0;
  int64_t instrucoesExecutadas = 0;
  // Every statement walks the text its own way, without plans: for checking
  // that both ways give the same.
  bool semPlanos = false;
  bool limiteAtingido = false;

  // Start of a run: declares the predeclared variables, prepares the program,
  // checks the blocks and walks the main text. Returns when the main walk ends.
  void Executa();

  // ---- Preparation -------------------------------------------------------
  // Builds TextoPrograma from the sources; empty result when all went well,
  // else the message that stops the run.
  Texto PreparaPrograma();
  Texto textoPrograma;  // TextoPrograma

  // ---- Executor ----------------------------------------------------------
  void ExecutaTexto(const Texto& texto, const Texto& textoExibicao, int32_t numeroInicial);
  void ExecutaComando(const Texto& linha);
  // The run-time error box: LocalAtual, CR, the message; OK and Cancel.
  void ErroExecucao(const Texto& mensagem);
  // A critical box with OK (the core's own complaints).
  void CaixaCritica(const Texto& texto);
  // Pumps the host once (and so runs due timers).
  void Bombeia();

  // True while no flag asks the walk to stop and no budget is counted.
  [[gnu::always_inline]] bool SegueExecutando() const {
    static constexpr uint64_t kSegue = std::bit_cast<uint64_t>(SinaisDeParada{});
    return std::bit_cast<uint64_t>(static_cast<const SinaisDeParada&>(*this)) == kSegue;
  }
  // The check before each statement: false when the walk must stop, for a
  // flag or for the statement budget, which it counts.
  [[gnu::always_inline]] bool ProximaInstrucao() {
    if (SegueExecutando()) [[likely]] return true;
    return ProximaInstrucaoContada();
  }
  bool ProximaInstrucaoContada();
  // LocalAtual, "Editor: e Line: n", is made only when a box needs it.
  int32_t editorAtual = 0, linhaAtual = 0;
  Texto LocalAtual() const;
  Resposta respostaErro = Resposta::OK;  // RespostaErro
  // The last clicked button and the last box click, written by the window
  // layer's events and awaited by Wait ClickButton and Wait ClickBox.
  Texto ultimoBotao, ultimoCliqueCaixa;
  int profundidade = 0;       // walks nested now
  // Routines a walk may nest. Deep enough for a user's recursive flood fill
  // or tree walk; the run launcher gives the walk a stack for this many
  // levels of the deepest frames measured, several times over.
  static constexpr int kMaxProfundidade = 50000;
  // The lowest stack address a walk may still start from, set by whoever
  // gave the walk its stack; a walk below it stops the run as too deep
  // rather than overflow, should frames ever be far larger than measured.
  const char* fundoPilha = nullptr;

  // ---- Variables ---------------------------------------------------------
  Variaveis variaveis;
  int32_t PosicaoVariavel(TextoV nome) { return variaveis.Posicao(nome); }
  Valor LeVariavel(TextoV nome);
  void GravaVariavel(TextoV nome, const Valor& valor, bool deveExistir);
  // The store of a value into a variable's value k, once it was found.
  void GravaNaPosicao(TipoVariavel tipo, size_t k, const Valor& valor);
  void DeclaraVariaveis(const Texto& linha, TextoV palavra);
  void CriaVariavel(TextoV nome, TextoV tipo) { variaveis.Cria(nome, tipo); }
  void CriaVetor(TextoV nome, TextoV tipo);
  void RemoveVariable(TextoV nome);
  void DeclaraSistema();
  // Sets the predeclared variables that depend on the window.
  void DefineVariaveisJanela();

  // ---- Expressions -------------------------------------------------------
  Valor ValorNumerico(const Texto& texto, bool& numerico);
  Valor ValorNumerico(const Texto& texto) {
    bool n = false;
    return ValorNumerico(texto, n);
  }
  Valor ValorTexto(const Texto& texto, bool& numerico);
  Valor ValorTexto(const Texto& texto) {
    bool n = false;
    return ValorTexto(texto, n);
  }
  static Texto RemoveAspas(TextoV texto);
  void Atribui(const Texto& linha, const Texto& nome, bool numerico);
  // The value of a condition: "TRUE", "FALSE" or empty.
  Texto AvaliaCondicao(const Texto& condicao);
  bool forcaTexto = false;  // ForcaTexto

  // ---- Dispatch ----------------------------------------------------------
  bool EPalavraConhecida(TextoV palavra) const;
  Valor DespachaComando(const Texto& nome, const Texto& argumentos);
  // Splits an argument text into `vagas` slots (the first empty one ends the
  // list). More arguments than slots is a host failure. `compacto`: only as
  // many slots as the text fills, for callers that check the count.
  std::vector<Texto> SeparaArgumentos(const Texto& texto, size_t vagas, bool separaIgual, bool& numerico,
                                      bool compacto = false);
  std::vector<Texto> SeparaArgumentos(const Texto& texto, size_t vagas, bool separaIgual = false) {
    bool n = false;
    return SeparaArgumentos(texto, vagas, separaIgual, n);
  }
  bool AchaFuncaoInterna(const Texto& texto, Texto par[2]);
  void ExecutaFuncaoInterna(Texto& texto, const Texto par[2], bool& numerico);

  // ---- Routines ----------------------------------------------------------
  void RegistraRotinas(const Texto& texto);
  bool ESub(TextoV palavra) const;
  void ChamaSub(const Texto& nome);
  // `plano`, a planned "x = F(args)", gives the arguments already read.
  Valor ChamaFuncao(const Texto& nome, const Texto& argumentos, const PlanoLinha* plano = nullptr);
  bool AchaFuncaoUsuario(const Texto& texto, Texto par[2], Texto& palavraResultado);
  void ExecutaFuncaoUsuario(Texto& texto, const Texto par[2], const Texto& palavraResultado);

  std::vector<Texto> nomesFuncoes, tiposFuncoes, nomesSubs, nomesTimers;
  std::vector<int16_t> ticksTimers;
  bool temTimer = false;
  int64_t contadorTiques = 0;
  Valor valorRetorno;           // ValorRetorno
  int32_t contadorChamadas = 0; // ContadorChamadas

  // ---- State of other subsystems, per run ---------------------------------
  // A table that a subsystem keeps for the length of a run (open files,
  // databases, windows). Made on first use; destroyed at the tear-down, the
  // last made first.
  template <class T>
  T& Estado() {
    static const char marca = 0;
    auto it = indiceEstados_.find(&marca);
    if (it != indiceEstados_.end()) return *static_cast<T*>(estados_[it->second].get());
    estados_.emplace_back(new T(), [](void* p) { delete static_cast<T*>(p); });
    indiceEstados_[&marca] = estados_.size() - 1;
    return *static_cast<T*>(estados_.back().get());
  }

  // Title of the program's own boxes: the file name without its extension.
  Texto TituloPrograma() const;

 private:
  friend struct Caminhada;
  void TiqueTimer();
  // Per If depth (0 to 20): whether the If's condition came out "FALSE"
  // (its Else runs). Three words wide, so that a call clears it in three
  // stores.
  using CondicoesFalsas = std::array<bool, 24>;
  static CondicoesFalsas NenhumaFalsa() {
    // Three plain stores: a cleared array is a string instruction otherwise.
    CondicoesFalsas f;
    const uint64_t zero = 0;
    for (size_t k = 0; k < f.size(); k += sizeof zero) std::memcpy(f.data() + k, &zero, sizeof zero);
    return f;
  }
  enum class Seguimento { Proximo, Generico, Fim };
  // One more walk nested while it lives.
  struct Nivel {
    int& n;
    explicit Nivel(int& p) : n(p) { ++n; }
    ~Nivel() { --n; }
  };
  // The guard every walk passes first: false when calls nest too deep.
  [[gnu::always_inline]] bool EntraCaminhada() {
    char aqui;
    if (profundidade > kMaxProfundidade || (fundoPilha && &aqui < fundoPilha)) [[unlikely]]
      return CaminhadaFundaDemais(&aqui < fundoPilha);
    pararPrograma = false;
    return true;
  }
  // The box of a walk nested past the limit or the stack's end; false.
  bool CaminhadaFundaDemais(bool semPilha);
  // The walk's loop from the statement at numero/pos/fim; `contado` when that
  // statement was already counted against the limit.
  void Caminha(const Texto& texto, const Texto& textoExibicao, int32_t numero, size_t pos, size_t fim,
               CondicoesFalsas& falsas, bool contado);
  // What one statement kind of the walk made of a line: Segue, not taken
  // (the next tests of the table look at it); Feito, done (the walk goes on
  // behind `numero`); Fica, done (the walk goes on at `numero` itself, at
  // `pos`); Termina, the walk ends.
  enum class Desfecho : uint8_t { Segue, Feito, Fica, Termina };
  // The step box; false when the user cancels it.
  bool PassoDepuracao(const Texto& textoExibicao, const Texto& linha, int32_t numero);
  Desfecho PassoIncremento(const Texto& linha);
  Desfecho PassoComposto(Texto& linha);
  Desfecho PassoGoTo(const Texto& texto, const Texto& linha, size_t p, int32_t& numero, size_t& pos);
  Desfecho PassoWhile(const Texto& texto, const Texto& linha, size_t p, size_t pos, int32_t& numero);
  Desfecho PassoLoop(const Texto& texto, const Texto& linha, size_t p, int32_t& numero, size_t& pos);
  Desfecho PassoEndIf(const Texto& linha, size_t p, CondicoesFalsas& falsas);
  Desfecho PassoIf(const Texto& texto, const Texto& linha, size_t p, size_t pos, int32_t& numero,
                   CondicoesFalsas& falsas);
  Desfecho PassoElse(const Texto& texto, const Texto& linha, size_t p, size_t pos, int32_t& numero,
                     CondicoesFalsas& falsas);
  // The part of Atribui after its "F()" form, from the `inicio`th user call on.
  void AtribuiSemJuncao(const Texto& nome, Texto dir, bool numerico, int inicio, bool semMaisChamadas);

  // ---- Plans of the main text's statements (see planos.h) -----------------
  std::unique_ptr<Planos> planos_;
  Texto bufferCalculo_;  // reused for the texts of arithmetic
  // The texts commands evaluate, by hash (see ValorLembrado).
  std::unique_ptr<std::array<ValorLembrado, kValoresLembrados>> lembrados_;
  bool avaliandoLembrado_ = false;
  // The value of a text by its plan; false when the text's own way must work it out.
  bool ValorPorPlano(const Texto& texto, Valor& v);
  // ExecutaComando's dispatch of a plain command line, remembered in its
  // plan; false when the line must take ExecutaComando's way.
  bool ComandoDireto(PlanoLinha& pl, const Texto& linha);
  bool PodeTerChamadaUsuario(const Texto& texto) const;
  // A Function's stretch and parameters, found once per prepared text.
  ModeloFuncao* ModeloDe(const Texto& nome);
  void LeFuncao(const Texto& nome, ModeloFuncao& m, bool avisa);
  void AnalisaModelo(const Texto& nome, ModeloFuncao& m);
  Texto CorpoRenomeado(const ModeloFuncao& m, const std::vector<Texto>& gerados) const;
  // The body of a call whose own variables are made: by its plans while they
  // hold, else (or from where they stop) by the walk.
  void ExecutaCorpo(ModeloFuncao& m, const std::vector<Texto>& gerados,
                    const std::vector<std::pair<TipoVariavel, int32_t>>& vagas);
  // A call whose own variables nobody looks up by name: their values stand
  // where Cria would put them, and the names are only made if the walk must
  // take over. False, with nothing changed, when the call isn't such a one.
  bool ChamadaSemNomes(const Texto& nome, ModeloFuncao& m, const PlanoLinha& plano, Valor& resultado);
  // The box of a Function call that failed.
  void FalhaFuncao();
  Seguimento CorreCorpo(CorpoPlanejado& cp, CondicoesFalsas& falsas, int32_t& numero);
  void SegueCorpo(const ModeloFuncao& m, const std::vector<Texto>& gerados, int32_t numero, CondicoesFalsas& falsas,
                  Seguimento s);
  std::unique_ptr<CorpoPlanejado> PlanejaCorpo(const ModeloFuncao& m, const std::vector<Texto>& gerados,
                                               const std::vector<std::pair<TipoVariavel, int32_t>>& vagas);
  void PreparaChamada(const Texto& nome, const Texto& dir, PlanoLinha& pl);
  // A body of one Return (CorpoPlanejado::folha): found when its plans are
  // made, and its call worked out from the arguments; false, with nothing
  // changed, where the body's walk must go.
  void AnalisaFolha(const ModeloFuncao& m, CorpoPlanejado& cp);
  bool ChamadaFolha(ModeloFuncao& m, const CorpoPlanejado& cp, const double* numeros, const Valor::Tipo* tipos,
                    const Texto* const* textos, Valor& resultado);
  // The same for a planned "x = F(a, b)" (Atalho::Tipo::Chamada), all of it.
  bool ChamadaRapida(PlanoLinha& pl);
  bool FolhaPodeCorrer() const;
  // No variable of the names a call of `m` would make now stands or has
  // been looked for (remembered until a name with a digit comes).
  bool NomesLivres(const Texto& nome, ModeloFuncao& m);
  // The call's end as the body's walk leaves it; the value returned.
  const Valor& TerminaFolha(ModeloFuncao& m, const CorpoPlanejado& cp, int64_t w);
  void ExecutaChamada(PlanoLinha& pl);
  // A single value given to a planned target, as Atribui gives it.
  void AtribuiValor(const RefVariavel& alvo, uint64_t g, Valor v);
  bool ResolveRef(const Texto& nome, RefVariavel& r);
  // The element a reference names now; false when out of range.
  [[gnu::always_inline]] bool IndiceRef(const RefVariavel& r, int64_t& i) const {
    if (!r.indiceVariavel) {
      i = r.indice;
    } else if (r.tipoIndice == TipoVariavel::Integer) {
      i = variaveis.inteiros[static_cast<size_t>(r.posIndice)];
    } else {
      i = IndiceDecimal(variaveis.decimais[static_cast<size_t>(r.posIndice)]);
    }
    return i >= 0 && i < r.tamanho;
  }
  static int64_t IndiceDecimal(double x);
  bool LeRef(const RefVariavel& r, uint64_t geracao, Valor& v) const;
  void GravaRef(const RefVariavel& r, uint64_t geracao, const Valor& v);
  void PreparaValor(const Texto& texto, PlanoValor& p);
  Valor AvaliaValor(const PlanoValor& p, uint64_t geracao);
  void PreparaCondicao(const Texto& texto, PlanoCondicao& c);
  Texto AvaliaCondicao(const PlanoCondicao& c, uint64_t geracao);
  void PreparaAtribuicao(const Texto& linha, const Texto& nome, PlanoLinha& pl, bool emCorpo);
  bool ComandoNulo(const Texto& linha);
  void PreparaLinha(const Texto& texto, PlanoLinha& pl, bool emCorpo);
  Planos& PlanosDoTexto();
  // The plan of a statement of the main text, made or remade when stale; null
  // when the statement isn't the main text's.
  PlanoLinha* PlanoDe(const Texto& texto, int32_t numero, size_t pos, size_t fim) {
    if (planos_ && &texto == &textoPrograma && planos_->dados == texto.data() &&
        planos_->tamanho == texto.size() && static_cast<size_t>(numero) < planos_->linhas.size()) {
      PlanoLinha* p = planos_->linhas[static_cast<size_t>(numero)].get();
      if (p && p->pos == pos && p->fim == fim && p->geracao == variaveis.geracao) return p;
    }
    return PlanoNovo(texto, numero, pos, fim);
  }
  PlanoLinha* PlanoNovo(const Texto& texto, int32_t numero, size_t pos, size_t fim);
  // Where a plan goes next and where its jump goes.
  void FixaDestinos(const Texto& texto, PlanoLinha& pl, int32_t numero);
  Destino DestinoApos(const Texto& texto, int32_t alvo, size_t de);
  size_t FimDaLinha(const Texto& texto, int32_t numero, size_t pos);
  size_t AchaMarca(const Texto& texto, int32_t numero, size_t de);
  [[gnu::always_inline]] bool NumeroRapido(const PlanoValor& p, double& x, Valor::Tipo& tipo);
  bool CalculoRapido(const PlanoValor& p, double& x);
  // A PlanoValor with `inteiro` worked out in whole numbers; false where
  // CalculoRapido would give up (an index out of range, a value below 0).
  [[gnu::always_inline]] bool InteiroRapido(const PlanoValor& p, int64_t& r);
  // The same for a whole-number variable and a whole constant too.
  [[gnu::always_inline]] bool InteiroDoValor(const PlanoValor& p, int64_t& r) {
    if (p.tipo == PlanoValor::Tipo::Variavel) {
      int64_t i;
      if (p.var.tipo != TipoVariavel::Integer || !IndiceRef(p.var, i)) return false;
      r = variaveis.inteiros[static_cast<size_t>(p.var.inicio + i)];
      return true;
    }
    // Past 15 digits a result reads back through its text.
    if (p.inteiro) return InteiroRapido(p, r) && r > -kLimite15 && r < kLimite15;
    if (p.tipo != PlanoValor::Tipo::Numero) return false;
    // Whole numbers of up to 15 digits read back as themselves.
    if (p.numero != std::trunc(p.numero) || !(std::fabs(p.numero) < 1e15)) return false;
    r = static_cast<int64_t>(p.numero);
    return true;
  }
  // Whole results below this in size are stored as they are: 2^31.
  static constexpr int64_t kLimite32 = int64_t{1} << 31;
  static constexpr int64_t kLimite15 = 1'000'000'000'000'000;  // 1e15
  const Texto* TextoRapido(const PlanoValor& p);
  bool JulgaRapido(const PlanoCondicao& c, Veredito& v);
  Veredito Julga(const PlanoCondicao& c, uint64_t geracao);
  [[gnu::always_inline]] bool JulgaInteiros(const PlanoCondicao& c, Veredito& v);
  [[gnu::always_inline]] bool IncrementoRapido(PlanoLinha& pl);
  // The statement's Atalho (planos.h), made once with the plan; false
  // with nothing changed where the fast ways above would give it up.
  void PreparaAtalho(PlanoLinha& pl);
  [[gnu::always_inline]] bool LeOperando(const OperandoInteiro& o, int64_t& v) const {
    return LeOperandoEm(variaveis.inteiros.data(), o, v);
  }
  [[gnu::always_inline]] bool LeValorInteiro(const ValorInteiro& c, int64_t& r) const {
    return LeValorInteiroEm(variaveis.inteiros.data(), c, r);
  }
  // The same over other values than the store's (a call's arguments).
  [[gnu::always_inline]] static bool LeOperandoEm(const int32_t* x, const OperandoInteiro& o, int64_t& v);
  [[gnu::always_inline]] static bool LeValorInteiroEm(const int32_t* x, const ValorInteiro& c, int64_t& r);
  [[gnu::always_inline]] int32_t* LugarInteiro(const OperandoInteiro& o);
  [[gnu::always_inline]] bool CorreAtalho(PlanoLinha& pl, CondicoesFalsas& falsas, bool& desvia);
  bool CompostoRapido(PlanoLinha& pl);
  bool AtribuicaoRapida(PlanoLinha& pl);
  bool RetornoRapido(PlanoLinha& pl);
  void PreparaSubStr(const Texto& dir, PlanoLinha& pl);
  bool SubStrRapido(PlanoLinha& pl);
  // Joins "text = a & b & c" (planos_juncao.cpp).
  void PreparaJuncao(const Texto& linha, const Texto& nome, const Texto& dir, PlanoLinha& pl, bool emCorpo);
  bool JuncaoRapida(PlanoLinha& pl);
  // Plans of calls on long texts and of GoTo (planos_textos.cpp).
  bool PreparaValorComChamada(const Texto& t, PlanoValor& p, bool numerico = false);
  bool PreparaChamadaTexto(const Texto& nome, const Texto& args, ChamadaTexto& c, bool numerico);
  bool PreparaAtribuicaoChamada(const Texto& nome, const Texto& dir, PlanoLinha& pl);
  bool NumeroDaChamada(ChamadaTexto& c, double& x);
  bool CalculoComChamada(const PlanoValor& p, double& x);
  const Texto* TextoDaChamada(ChamadaTexto& c);
  bool ValorDaChamada(ChamadaTexto& c, Valor& v);
  bool LeParte(const RefVariavel& r, uint64_t geracao, Valor& v);
  void PreparaSalto(const Texto& texto, const Texto& linha, PlanoLinha& pl);
  bool PreparaJoinStr(const Texto& nome, const Texto& dir, PlanoLinha& pl);
  bool JoinStrRapido(PlanoLinha& pl);
  void PreparaRepStr(const Texto& args, PlanoLinha& pl);
  bool RepStrRapido(PlanoLinha& pl);
  // Whether a text spliced into a statement in quotes reads back as itself.
  bool VoltaIgual(TextoV r);
  // The same for a part of the stored text k, read only where the store
  // doesn't know it clean.
  bool VoltaIgualGuardado(size_t k, TextoV r);
  bool VirgulaAposElemento(const Texto& dir, PlanoLinha& pl);
  bool VirgulaInofensiva(TextoV r);
  // "text += value" with a text value: appended where the text lies.
  bool AcrescentaTexto(PlanoLinha& pl, const Valor& d);
  // Runs plans one after another from `pl` while the statements have one.
  // Proximo: the statement at numero/pos/fim has none (the walk takes it);
  // Generico: `pl` itself was left to the walk; Fim: the walk ends. With
  // `corpo`, the plans are a Function body's and take only their fast ways.
  Seguimento CorrePlanos(const Texto& texto, PlanoLinha* pl, int32_t& numero, size_t& pos, size_t& fim,
                         CondicoesFalsas& falsas, const CorpoPlanejado* corpo);
  // A planned statement that none of the fast ways took.
  void ExecutaPlanoGeral(PlanoLinha& pl);

  Host& host_;
  std::vector<std::unique_ptr<void, void (*)(void*)>> estados_;
  std::unordered_map<const void*, size_t> indiceEstados_;
};

// The value of an operand as a number, without making a Valor, when the walk
// would surely get a number; `tipo` is the kind of value the walk would get.
inline bool Interpretador::InteiroRapido(const PlanoValor& p, int64_t& r) {
  int32_t valores[2] = {0, 0};
  for (size_t n = 0; n < p.refs.size(); ++n) {
    const RefVariavel& ref = p.refs[n];
    int64_t i;
    if (!IndiceRef(ref, i)) return false;
    int32_t v = variaveis.inteiros[static_cast<size_t>(ref.inicio + i)];
    if (v < 0) return false;
    valores[n] = v;
  }
  r = p.arvore.CalculaInteiro(valores);
  return true;
}

// The whole-number ways of an increment and a comparison (the step from plan
// to plan takes its Atalho first): each gives what the general fast ways
// give, or false with nothing changed.
inline bool Interpretador::IncrementoRapido(PlanoLinha& pl) {
  int64_t i;
  if (pl.alvo.tipo == TipoVariavel::String || !IndiceRef(pl.alvo, i)) return false;
  size_t k = static_cast<size_t>(pl.alvo.inicio + i);
  if (pl.alvo.tipo == TipoVariavel::Integer) {
    // Past the ends the store refuses the value and the variable stays.
    int32_t& x = variaveis.inteiros[k];
    if (pl.mais ? x < INT32_MAX : x > INT32_MIN) x += pl.mais ? 1 : -1;
  } else {
    variaveis.decimais[k] += pl.mais ? 1.0 : -1.0;
  }
  return true;
}

inline bool Interpretador::JulgaInteiros(const PlanoCondicao& c, Veredito& v) {
  int64_t a, b;
  if (!c.simples || !InteiroDoValor(c.operandos[0], a) || !InteiroDoValor(c.operandos[1], b)) return false;
  v = Satisfaz(c.relacao, a < b ? -1 : (a > b ? 1 : 0)) ? Veredito::Verdadeiro : Veredito::Falso;
  return true;
}

inline bool Interpretador::LeOperandoEm(const int32_t* x, const OperandoInteiro& o, int64_t& v) {
  if (o.modo == OperandoInteiro::Modo::Escalar) [[likely]] {
    v = x[o.posicao];
  } else if (o.modo == OperandoInteiro::Modo::Elemento) {
    // An index below 0 is past the end too, read unsigned.
    auto i = static_cast<uint32_t>(x[o.posIndice]);
    if (i >= static_cast<uint32_t>(o.tamanho)) return false;
    v = x[static_cast<size_t>(o.posicao) + i];
  } else {
    v = o.constante;
    return true;
  }
  return v >= o.minimo;
}

inline bool Interpretador::LeValorInteiroEm(const int32_t* x, const ValorInteiro& c, int64_t& r) {
  int64_t a, b;
  if (!LeOperandoEm(x, c.a, a)) return false;
  if (c.operador == 0) {
    r = a;
    return true;
  }
  if (!LeOperandoEm(x, c.b, b)) return false;
  switch (c.operador) {
    case u'+':
      r = a + b;
      break;
    case u'-':
      r = a - b;
      break;
    case u'*':
      r = a * b;
      break;
    default:
      // A remainder by zero fails the long way, with its box.
      if (b == 0) return false;
      r = b == -1 ? 0 : a % b;
  }
  return r > -kLimite15 && r < kLimite15;
}

inline int32_t* Interpretador::LugarInteiro(const OperandoInteiro& o) {
  int32_t* x = variaveis.inteiros.data();
  if (o.modo == OperandoInteiro::Modo::Escalar) return x + o.posicao;
  auto i = static_cast<uint32_t>(x[o.posIndice]);
  return i < static_cast<uint32_t>(o.tamanho) ? x + o.posicao + i : nullptr;
}

inline bool Interpretador::CorreAtalho(PlanoLinha& pl, CondicoesFalsas& falsas, bool& desvia) {
  const Atalho& a = pl.atalho;
  int64_t w;
  switch (a.tipo) {
    case Atalho::Tipo::Nenhum:
      return false;
    case Atalho::Tipo::Incremento: {
      int32_t* x = LugarInteiro(a.alvo);
      if (!x) return false;
      // Past the ends the store refuses the value and the variable stays.
      if (a.mais ? *x < INT32_MAX : *x > INT32_MIN) *x += a.mais ? 1 : -1;
      return true;
    }
    case Atalho::Tipo::Atribuicao: {
      int32_t* x = LugarInteiro(a.alvo);
      if (!x || !LeValorInteiro(a.valor, w) || w <= -kLimite32 || w >= kLimite32) return false;
      *x = static_cast<int32_t>(w);
      forcaTexto = false;
      return true;
    }
    case Atalho::Tipo::Soma: {
      int32_t* x = LugarInteiro(a.alvo);
      if (!x || !LeValorInteiro(a.valor, w) || w <= -kLimite32 || w >= kLimite32) return false;
      int64_t r = a.mais ? *x + w : *x - w;
      if (r >= INT32_MIN && r <= INT32_MAX) *x = static_cast<int32_t>(r);
      return true;
    }
    case Atalho::Tipo::Copia: {
      // A whole-number variable's value always fits another.
      int32_t* x = LugarInteiro(a.alvo);
      if (!x || !LeOperando(a.valor.a, w)) return false;
      *x = static_cast<int32_t>(w);
      forcaTexto = false;
      return true;
    }
    case Atalho::Tipo::Compara:
    case Atalho::Tipo::Condicao: {
      int64_t d;
      bool lidos = a.tipo == Atalho::Tipo::Compara ? LeOperando(a.valor.a, w) && LeOperando(a.direita.a, d)
                                                   : LeValorInteiro(a.valor, w) && LeValorInteiro(a.direita, d);
      if (!lidos) return false;
      bool v = (a.aceita >> ((w >= d) + (w > d))) & 1;
      desvia = !v;
      if (a.profundidadeIf >= 0) falsas[static_cast<size_t>(a.profundidadeIf)] = !v && a.falsoVaiAoElse;
      return true;
    }
    case Atalho::Tipo::Chamada:
      return ChamadaRapida(pl);
    case Atalho::Tipo::Salto:
      desvia = true;
      return true;
    case Atalho::Tipo::FimSe:
      falsas[static_cast<size_t>(a.profundidadeIf)] = false;
      return true;
    case Atalho::Tipo::Nada:
      return true;
  }
  // Every kind has its case: no range check before the jump.
  __builtin_unreachable();
}

inline bool Interpretador::NumeroRapido(const PlanoValor& p, double& x, Valor::Tipo& tipo) {
  if (p.tipo == PlanoValor::Tipo::Variavel) {
    int64_t i;
    if (p.var.tipo == TipoVariavel::String || !IndiceRef(p.var, i)) return false;
    size_t k = static_cast<size_t>(p.var.inicio + i);
    if (p.var.tipo == TipoVariavel::Integer) {
      x = variaveis.inteiros[k];
      tipo = Valor::Tipo::Int32;
    } else {
      x = variaveis.decimais[k];
      tipo = Valor::Tipo::Double;
    }
    return true;
  }
  if (p.tipo == PlanoValor::Tipo::Numero) {
    x = p.numero;
    tipo = Valor::Tipo::Double;
    return true;
  }
  if (p.tipo != PlanoValor::Tipo::Aritmetica || !p.temArvore) {
    if (p.tipo != PlanoValor::Tipo::Chamada) return false;
    tipo = Valor::Tipo::Double;
    return NumeroDaChamada(*p.chamada, x);
  }
  tipo = Valor::Tipo::Decimal;
  // A call's hole goes its own way, so that the commonest calculations pay
  // nothing for it.
  if (p.temChamada) [[unlikely]] return CalculoComChamada(p, x);
  return CalculoRapido(p, x);
}

// Renames whole-word occurrences of a parameter in a function's body.
void TrocaNome(Texto& texto, const Texto& velho, const Texto& novo);

}  // namespace zv
