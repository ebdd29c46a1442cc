// The statement executor: walks a prepared text statement by statement,
// finding its way by searching for markers.
#include <array>

#include "core/interpretador.h"
#include "core/marcas.h"
#include "core/preparacao.h"

namespace zv {

namespace {

void LocalizacaoTexto(TextoV linha, Texto& editor, Texto& numLinha) {
  int32_t e, l;
  Localizacao(linha, e, l);
  editor = InteiroParaTexto(e);
  numLinha = InteiroParaTexto(l);
}

// None of the words the walk tests a line for: the ends, ++ and --, the
// compound assignments, NewWindow, a DB block, GoTo and the block words.
bool SemPalavrasDoCaminho(const Texto& linha, const Texto& maius) {
  return !Contem(maius, u"ENDPROGRAM") && !Contem(maius, u"ENDFUNCTION") && !Contem(maius, u"ENDWINDOW") &&
         !TerminaCom(linha, u"++") && !TerminaCom(linha, u"--") && !Contem(linha, u"+ = ") &&
         !Contem(linha, u" + =") && !Contem(linha, u"- = ") && !Contem(linha, u" - =") &&
         !Contem(maius, u"NEWWINDOW") && linha.compare(kColunaComando, 2, u"DB") != 0 &&
         linha.find(u"GoTo") == NPOS && linha.find(u"While[") == NPOS && linha.find(u"Loop[") == NPOS &&
         linha.find(u"If[") == NPOS && linha.find(u"Else[") == NPOS;
}

}  // namespace

Interpretador::Interpretador(Host& host) : host_(host) {}

Interpretador::~Interpretador() {
  // Tear-down: the other subsystems' tables go first, the last made first.
  while (!estados_.empty()) estados_.pop_back();
}

Texto Interpretador::LocalAtual() const {
  if (linhaAtual == 0) return Texto();  // no statement has run yet
  return msg::Local(InteiroParaTexto(editorAtual), InteiroParaTexto(linhaAtual));
}

Texto Interpretador::TituloPrograma() const {
  Texto n = nomeArquivoPrograma;
  return n.size() > 4 ? n.substr(0, n.size() - 4) : Texto();
}

void Interpretador::CaixaCritica(const Texto& texto) {
  Caixa c;
  c.tipo = TipoCaixa::Critico;
  c.botoes = Botoes::OK;
  c.titulo = msg::kTituloSistema;
  c.texto = texto;
  host_.MostraCaixa(c);
}

void Interpretador::ErroExecucao(const Texto& mensagem) {
  Caixa c;
  c.tipo = TipoCaixa::Erro;
  c.botoes = Botoes::OKCancel;
  c.padrao = Resposta::OK;
  c.titulo = msg::kTituloSistema;
  c.texto = msg::NoLocal(LocalAtual(), mensagem);
  respostaErro = host_.MostraCaixa(c);
  if (respostaErro == Resposta::Cancel) pararPrograma = true;
}

void Interpretador::Bombeia() { host_.Bombeia(); }

namespace {

// The statement as the user wrote it, for the step box.
Texto ComandoParaExibir(Texto l) {
  auto troca = [&l](TextoV de, TextoV para) {
    for (size_t p = l.find(de); p != NPOS; p = l.find(de, p + para.size())) l.replace(p, de.size(), para);
  };
  troca(u"+ =", u"+=");
  troca(u"- =", u"-=");
  l = Resto(l, kColunaComando);
  for (const char16_t* w : {u"While[", u"Loop[", u"EndIf[", u"If["}) {
    size_t p = l.find(w);
    if (p == NPOS) continue;
    size_t a = p + Texto(w).size() - 1;
    size_t b = l.find(u']', a);
    if (b != NPOS) l.erase(a, b - a + 1);
  }
  return l;
}

}  // namespace

bool Interpretador::CaminhadaFundaDemais(bool semPilha) {
  semPilha = semPilha && fundoPilha;
  if (!abortado) {
    Texto motivo = semPilha ? msg::Formata(msg::kPilhaEsgotada, InteiroParaTexto(profundidade))
                            : msg::Formata(msg::kChamadasFundasDemais, InteiroParaTexto(kMaxProfundidade));
    CaixaCritica(msg::NoLocal(LocalAtual(), motivo));
  }
  abortado = true;
  return false;
}

void Interpretador::ExecutaTexto(const Texto& texto, const Texto& textoExibicao, int32_t numeroInicial) {
  Nivel nivel(profundidade);
  if (!EntraCaminhada()) return;
  CondicoesFalsas falsas = NenhumaFalsa();  // ResultadoCondicao, of which only "FALSE" counts

  int32_t numero = numeroInicial;
  if (numeroInicial == 0) {
    size_t p = texto.find(u"&#");
    if (p == NPOS) return;
    numero = NumeroEm(texto, p + 2);
  }
  size_t pos = AchaMarca(texto, numero, 0);
  if (pos == NPOS) return;
  Caminha(texto, textoExibicao, numero, pos, FimDaLinha(texto, numero, pos), falsas, false);
}

namespace {

// Places in a line, counted from a word found in it: where the NewWindow
// command's text begins (column 30), the label behind "GoTo ", the value
// behind " + = ", and the depth tag behind "While[", "Loop[", "If[",
// "EndIf[" and "Else[". The condition behind a block's tag starts where
// CondicaoDoBloco says.
constexpr size_t kColunaNewWindow = 29;
constexpr size_t kSaltoRotulo = 5;
constexpr size_t kSaltoComposto = 5;
constexpr size_t kTamWhile = 6, kTamLoop = 5, kTamIf = 3, kTamEndIf = 6, kTamElse = 5;
// Where the condition starts behind "While[" and "If[" with a tag of one
// or two digits.
constexpr size_t kSaltoCondicaoWhile = 9, kSaltoCondicaoIf = 6;

// The name in front of `p`: from behind the last blank before it.
Texto NomeAntes(const Texto& linha, size_t p) {
  size_t b = p == 0 ? NPOS : linha.rfind(u' ', p - 1);
  return linha.substr(b == NPOS ? 0 : b + 1, b == NPOS ? p : p - b - 1);
}

}  // namespace

void Interpretador::Caminha(const Texto& texto, const Texto& textoExibicao, int32_t numero, size_t pos,
                           size_t fim, CondicoesFalsas& falsas, bool contado) {
  for (;; contado = false) {
    PlanoLinha* generico = nullptr;
    if (!contado) {
      if (!ProximaInstrucao()) return;
      if (!Vigiado()) {
        PlanoLinha* pl = PlanoDe(texto, numero, pos, fim);
        if (pl && pl->tipo == PlanoLinha::Tipo::Generico) generico = pl;
        if (pl && pl->tipo != PlanoLinha::Tipo::Generico) {
          // A text cut by the plans is whole again for the walk, whichever way they stop.
          Seguimento s;
          try {
            s = CorrePlanos(texto, pl, numero, pos, fim, falsas, nullptr);
          } catch (...) {
            variaveis.Assenta();
            throw;
          }
          variaveis.Assenta();
          if (s == Seguimento::Fim) return;
          if (s == Seguimento::Proximo) continue;
        }
      }
    }
    Texto linha = texto.substr(pos, fim - pos);
    Localizacao(linha, editorAtual, linhaAtual);

    // A line in which an earlier walk found none of the words below is a
    // plain command: the same tests would all fail again.
    if (generico && generico->semPalavras == 1) {
      if (!ComandoDireto(*generico, linha)) ExecutaComando(linha);
      ++numero;
      size_t prox = AchaMarca(texto, numero, pos);
      if (prox == NPOS) return;
      pos = prox;
      fim = FimDaLinha(texto, numero, pos);
      continue;
    }

    Texto maius = Maiusculas(linha);
    // Noted now, before the line runs: running it may remake the plans.
    if (generico && generico->semPalavras < 0) generico->semPalavras = SemPalavrasDoCaminho(linha, maius) ? 1 : 0;
    if (Contem(maius, u"ENDPROGRAM")) {
      pararPrograma = true;
      return;
    }
    if (Contem(maius, u"ENDFUNCTION")) return;
    if (Contem(maius, u"ENDWINDOW")) {
      host_.FechaJanela();
      executando = false;
      return;
    }
    if (Vigiado() && (modoDepuracao || pontosParada.count({editorAtual, linhaAtual})) &&
        !PassoDepuracao(textoExibicao, linha, numero))
      return;

    // The first test of the table that fits decides; the block words are
    // tested one after another while none has taken the line.
    Desfecho d = Desfecho::Segue;
    size_t p;
    if (TerminaCom(linha, u"++") || TerminaCom(linha, u"--")) {
      d = PassoIncremento(linha);
    } else if (Contem(linha, u"+ = ") || Contem(linha, u" + =") || Contem(linha, u"- = ") ||
               Contem(linha, u" - =")) {
      d = PassoComposto(linha);
    } else if (Contem(maius, u"NEWWINDOW")) {
      if (Comandos().newWindow) Comandos().newWindow(*this, Resto(linha, kColunaNewWindow));
      d = Desfecho::Feito;
    } else if (linha.compare(kColunaComando, 2, u"DB") == 0 && Comandos().db) {
      numero = Comandos().db(*this, texto, pos, fim, numero);
      d = Desfecho::Feito;
    } else if ((p = linha.find(u"GoTo")) != NPOS) {
      d = PassoGoTo(texto, linha, p, numero, pos);
    }
    if (d == Desfecho::Segue && (p = linha.find(u"While[")) != NPOS) d = PassoWhile(texto, linha, p, pos, numero);
    if (d == Desfecho::Segue && (p = linha.find(u"Loop[")) != NPOS) d = PassoLoop(texto, linha, p, numero, pos);
    bool eraEndIf = false;
    if (d == Desfecho::Segue && (p = linha.find(u"EndIf[")) != NPOS) {
      d = PassoEndIf(linha, p, falsas);
      eraEndIf = true;
    }
    if (d == Desfecho::Segue && !eraEndIf && (p = linha.find(u"If[")) != NPOS)
      d = PassoIf(texto, linha, p, pos, numero, falsas);
    if (d == Desfecho::Segue && (p = linha.find(u"Else[")) != NPOS) d = PassoElse(texto, linha, p, pos, numero, falsas);
    if (d == Desfecho::Segue) ExecutaComando(linha);

    if (d == Desfecho::Termina) return;
    if (d == Desfecho::Fica) {
      fim = FimDaLinha(texto, numero, pos);
      continue;
    }
    // Next statement: the next number, searched forward from here.
    ++numero;
    size_t prox = AchaMarca(texto, numero, pos);
    if (prox == NPOS) return;
    pos = prox;
    fim = FimDaLinha(texto, numero, pos);
  }
}

bool Interpretador::PassoDepuracao(const Texto& textoExibicao, const Texto& linha, int32_t numero) {
  size_t h = textoExibicao.find(MarcaComando(numero));
  Texto l = linha;
  if (h != NPOS) {
    size_t f = textoExibicao.find(CRLF, h);
    l = textoExibicao.substr(h, (f == NPOS ? textoExibicao.size() : f) - h);
  }
  Texto e, n;
  LocalizacaoTexto(l, e, n);
  Caixa c;
  c.tipo = TipoCaixa::Passo;
  c.botoes = Botoes::OKCancel;
  c.titulo = msg::kTituloSistema;
  c.texto = msg::LocalPasso(e, n) + CR + CR + ComandoParaExibir(l);
  return host_.MostraCaixa(c) != Resposta::Cancel;
}

Interpretador::Desfecho Interpretador::PassoIncremento(const Texto& linha) {
  bool mais = TerminaCom(linha, u"++");
  Texto nome = NomeAntes(linha, linha.find(mais ? u"++" : u"--"));
  Valor v = LeVariavel(nome);
  Valor r = mais ? SomaValores(v, Valor::DeInt32(1)) : SubtraiValores(v, Valor::DeInt32(1));
  GravaVariavel(nome, r, true);
  return Desfecho::Feito;
}

Interpretador::Desfecho Interpretador::PassoComposto(Texto& linha) {
  bool mais = Contem(linha, u"+ = ") || Contem(linha, u" + =");
  // A source "x+=1" reaches here as "x+ = 1": the name needs its blank.
  size_t q = linha.find(mais ? u"+ = " : u"- = ");
  if (q != NPOS && q > 0 && linha[q - 1] != u' ') linha.insert(q, u" ");
  size_t p = linha.find(mais ? u" + =" : u" - =");
  if (p == NPOS) return Desfecho::Segue;
  Texto nome = NomeAntes(linha, p);
  bool numerico = false;
  Valor d = ValorNumerico(Resto(linha, p + kSaltoComposto), numerico);
  Valor v = LeVariavel(nome);
  GravaVariavel(nome, mais ? SomaValores(v, d) : SubtraiValores(v, d), true);
  return Desfecho::Feito;
}

Interpretador::Desfecho Interpretador::PassoGoTo(const Texto& texto, const Texto& linha, size_t p, int32_t& numero,
                                                 size_t& pos) {
  Texto rotulo = Resto(linha, p + kSaltoRotulo);
  Texto editor = InteiroParaTexto(editorAtual), numLinha = InteiroParaTexto(linhaAtual);
  if (TerminaCom(rotulo, u":")) {
    CaixaCritica(msg::FalhaDeGoTo(editor, numLinha, msg::kRotuloComDoisPontos));
    return Desfecho::Termina;
  }
  rotulo += u':';
  size_t h = texto.find(rotulo);
  size_t a = h == NPOS ? NPOS : texto.rfind(u"&#", h);
  if (a == NPOS) {
    CaixaCritica(msg::FalhaDeGoTo(editor, numLinha, msg::Formata(msg::kRotuloNaoEncontrado, rotulo)));
    return Desfecho::Termina;
  }
  pos = a;
  numero = NumeroEm(texto, a + 2);
  return Desfecho::Fica;
}

Interpretador::Desfecho Interpretador::PassoWhile(const Texto& texto, const Texto& linha, size_t p, size_t pos,
                                                  int32_t& numero) {
  Texto tag = TagProfundidade(linha, p + kTamWhile);
  if (AvaliaCondicao(CondicaoDoBloco(linha, p, kTamWhile, kSaltoCondicaoWhile)) == u"TRUE") return Desfecho::Feito;
  size_t h = texto.find(u"Loop[" + tag + u"]", pos);
  // With no Loop in this stretch the body runs once.
  if (h == NPOS) return Desfecho::Segue;
  numero = NumeroEm(texto, texto.rfind(u"&#", h) + 2);
  return Desfecho::Feito;
}

Interpretador::Desfecho Interpretador::PassoLoop(const Texto& texto, const Texto& linha, size_t p, int32_t& numero,
                                                 size_t& pos) {
  Texto tag = TagProfundidade(linha, p + kTamLoop);
  size_t h = texto.rfind(u"While[" + tag + u"]", pos);
  size_t a = h == NPOS ? NPOS : texto.rfind(u"&#", h);
  if (a == NPOS) return Desfecho::Termina;  // the While lies outside this stretch
  pos = a;
  numero = NumeroEm(texto, a + 2);
  return Desfecho::Fica;
}

Interpretador::Desfecho Interpretador::PassoEndIf(const Texto& linha, size_t p, CondicoesFalsas& falsas) {
  int d = -1;
  if (!ProfundidadeValida(TagProfundidade(linha, p + kTamEndIf), d)) return Desfecho::Termina;
  falsas[d] = false;
  return Desfecho::Segue;
}

Interpretador::Desfecho Interpretador::PassoIf(const Texto& texto, const Texto& linha, size_t p, size_t pos,
                                               int32_t& numero, CondicoesFalsas& falsas) {
  Texto tag = TagProfundidade(linha, p + kTamIf);
  int d = -1;
  if (!ProfundidadeValida(tag, d)) {
    if (d > 20) CaixaCritica(msg::NoLocal(LocalAtual(), msg::kIfFundoDemais));
    return Desfecho::Termina;
  }
  Texto v = AvaliaCondicao(CondicaoDoBloco(linha, p, kTamIf, kSaltoCondicaoIf));
  falsas[d] = v == u"FALSE";
  if (Contem(linha, u"MouseClick")) GravaVariavel(u"MouseClick", Valor::DeTexto(u"FALSE"), false);
  if (v == u"TRUE") return Desfecho::Feito;
  size_t hE = texto.find(u"EndIf[" + tag + u"]", pos);
  size_t hL = texto.find(u"Else[" + tag + u"]", pos);
  int32_t nE = hE == NPOS ? -1 : NumeroEm(texto, texto.rfind(u"&#", hE) + 2);
  int32_t nL = hL == NPOS ? -1 : NumeroEm(texto, texto.rfind(u"&#", hL) + 2);
  if (hL != NPOS && hE != NPOS && nL < nE) {
    numero = nL;
    return Desfecho::Feito;
  }
  if (hE != NPOS) {
    numero = nE;
    falsas[d] = false;
    return Desfecho::Feito;
  }
  // With no EndIf in this stretch the body runs.
  return Desfecho::Segue;
}

Interpretador::Desfecho Interpretador::PassoElse(const Texto& texto, const Texto& linha, size_t p, size_t pos,
                                                 int32_t& numero, CondicoesFalsas& falsas) {
  Texto tag = TagProfundidade(linha, p + kTamElse);
  int d = -1;
  if (!ProfundidadeValida(tag, d)) return Desfecho::Termina;
  if (falsas[d]) return Desfecho::Feito;
  size_t hE = texto.find(u"EndIf[" + tag + u"]", pos);
  if (hE == NPOS) return Desfecho::Segue;
  numero = NumeroEm(texto, texto.rfind(u"&#", hE) + 2);
  falsas[d] = false;
  return Desfecho::Feito;
}

namespace {

// A statement's first word and the text behind its blank.
void PalavraEArgumentos(const Texto& linha, Texto& palavra, Texto& argumentos) {
  Texto resto = Resto(linha, kColunaComando);
  size_t b = resto.find(u' ');
  palavra = b == NPOS ? resto : resto.substr(0, b);
  argumentos = b == NPOS ? Texto() : resto.substr(b + 1);
}

}  // namespace

bool Interpretador::ComandoDireto(PlanoLinha& pl, const Texto& linha) {
  // Where every name tells the plans when it comes: not inside a routine,
  // nor while plans are made, nor when every statement walks.
  if (semPlanos || profundidade > 1 || variaveis.registra) return false;
  if (pl.geracaoComando != variaveis.geracao) {
    pl.geracaoComando = variaveis.geracao;
    pl.comandoDireto = false;
    Texto palavra, argumentos;
    PalavraEArgumentos(linha, palavra, argumentos);
    Texto maius = Maiusculas(palavra);
    if (maius == u"VAR" || maius == u"VARIABLE" || maius == u"RETURN" || ESub(palavra)) return false;
    {
      // A variable of that name declared later changes the generation.
      Variaveis::Lembranca lembranca(variaveis);
      if (PosicaoVariavel(palavra) >= 0) return false;
    }
    if (!EPalavraConhecida(palavra) && !ComecaCom(maius, u"REP.") && !ComecaCom(maius, u"PRINTER.")) return false;
    pl.palavraComando = std::move(palavra);
    pl.argumentosComando = std::move(argumentos);
    pl.comandoDireto = true;
  }
  if (!pl.comandoDireto) return false;
  // The command may remake this plan under us: it gets its own copies.
  const Texto palavra = pl.palavraComando, argumentos = pl.argumentosComando;
  DespachaComando(palavra, argumentos);
  return true;
}

void Interpretador::ExecutaComando(const Texto& linha) {
  Texto palavra, args;
  PalavraEArgumentos(linha, palavra, args);
  Texto maius = Maiusculas(palavra);
  if (maius == u"VAR" || maius == u"VARIABLE") {
    DeclaraVariaveis(linha, palavra);
    return;
  }
  if (ESub(palavra)) {
    ChamaSub(Apara(palavra));
    return;
  }
  if (maius == u"RETURN") {
    bool numerico = false;
    valorRetorno = ValorNumerico(args, numerico);
    return;
  }
  if (PosicaoVariavel(palavra) >= 0) {
    bool eTexto = variaveis.tipoEncontrado == TipoVariavel::String;
    Atribui(linha, palavra, !eTexto);
    return;
  }
  if (EPalavraConhecida(palavra) || ComecaCom(maius, u"REP.") || ComecaCom(maius, u"PRINTER.")) {
    DespachaComando(palavra, args);
    return;
  }
  ErroExecucao(msg::Formata(msg::kNaoDeclarada, palavra));
}

bool Interpretador::ProximaInstrucaoContada() {
  if (!executando || janelaFechada || pararPrograma || abortado) return false;
  if (contando && ++instrucoesExecutadas > limiteInstrucoes) {
    limiteAtingido = true;
    abortado = true;
    return false;
  }
  return true;
}

void Interpretador::Executa() {
  variaveis.Limpa();
  contando = limiteInstrucoes > 0;
  contadorChamadas = 0;
  contadorTiques = 0;
  executando = true;
  pararPrograma = false;
  abortado = false;
  janelaFechada = false;
  DeclaraSistema();
  Texto msg = PreparaPrograma();
  if (msg.empty()) msg = VerificaBlocos(textoPrograma);
  if (!msg.empty()) {
    CaixaCritica(msg);
    return;
  }
  DefineVariaveisJanela();
  janelaFechada = false;
  if (!Contem(textoPrograma, u"StartWindowInvisible")) host_.MostraJanela();
  try {
    ExecutaTexto(textoPrograma, textoPrograma, 0);
  } catch (const FalhaHost&) {
    // A failure that no command caught ends the main walk without a word.
  } catch (const std::exception&) {
  }
}

}  // namespace zv
