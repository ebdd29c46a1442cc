// Subs and Functions: stretches of the prepared text, found by their head
// and end lines and walked on a copy.
#include <algorithm>

#include "core/interpretador.h"
#include "core/preparacao.h"

namespace zv {

namespace {

bool HashAtras(const Texto& t, size_t h, size_t n) { return h >= n && t[h - n] == u'#'; }

// Searches `fim` from `de` on for an end word with '#' four places before it.
size_t AchaFimRotina(const Texto& t, TextoV fim, size_t de) {
  for (size_t e = t.find(fim, de); e != NPOS; e = t.find(fim, e + 1))
    if (HashAtras(t, e, 4)) return e;
  return NPOS;
}

// The stretch from `inicio` through the CR LF behind the end word at `e`.
Texto Trecho(const Texto& t, size_t inicio, size_t e) {
  size_t f = t.find(CRLF, e);
  size_t fim = f == NPOS ? t.size() : f + 2;
  return t.substr(inicio, fim - inicio);
}

}  // namespace

void Interpretador::RegistraRotinas(const Texto& texto) {
  nomesFuncoes.clear();
  tiposFuncoes.clear();
  nomesSubs.clear();
  nomesTimers.clear();
  ticksTimers.clear();
  temTimer = false;
  try {
    Texto maius = Maiusculas(texto);
    // Functions: the head in any case.
    for (size_t de = 0;;) {
      size_t p = maius.find(u"FUNCTION ", de);
      if (p == NPOS || !HashAtras(texto, p, 4)) break;
      size_t a = texto.find(u'(', p + 9);
      size_t b = texto.find(u')', p + 9);
      if (a == NPOS || b == NPOS) throw FalhaHost(falha::ChamadaInvalida);
      Texto nome = texto.substr(p + 9, a - p - 9);
      size_t cr = texto.find(CR, b);
      nomesFuncoes.push_back(nome);
      tiposFuncoes.push_back(Apara(TextoV(texto).substr(b + 1, cr == NPOS ? NPOS : cr - b - 1)));
      bool erro = false;
      for (size_t s = p + 9;;) {
        size_t h = maius.find(u"FUNCTION", s);
        if (h == NPOS) {
          erro = true;
          break;
        }
        if (HashAtras(texto, h, 4) || HashAtras(texto, h, 7)) {
          if (h >= 3 && maius.compare(h - 3, 11, u"ENDFUNCTION") == 0) {
            de = h + 5;
            break;
          }
          if (maius.compare(h, 9, u"FUNCTION ") == 0) {
            erro = true;
            break;
          }
        }
        s = h + 5;
      }
      if (erro) {
        CaixaCritica(msg::Formata(msg::kFunctionSemFim, nome));
        break;
      }
    }
    // Subs: the head spelled exactly.
    for (size_t de = 0;;) {
      size_t p = texto.find(u"Sub ", de);
      if (p == NPOS || !HashAtras(texto, p, 4)) break;
      size_t b = texto.find(u')', p + 4);
      if (b == NPOS) throw FalhaHost(falha::ChamadaInvalida);
      Texto nome = texto.substr(p + 4, b - p - 3);
      nomesSubs.push_back(nome);
      bool erro = false;
      for (size_t s = p + 4;;) {
        size_t h = texto.find(u"Sub", s);
        if (h == NPOS) {
          erro = true;
          break;
        }
        if (HashAtras(texto, h, 4) || HashAtras(texto, h, 7)) {
          if (h >= 3 && texto.compare(h - 3, 6, u"EndSub") == 0) {
            de = h + 2;
            break;
          }
          if (texto.compare(h, 4, u"Sub ") == 0) {
            erro = true;
            break;
          }
        }
        s = h + 2;
      }
      if (erro) {
        CaixaCritica(msg::Formata(msg::kSubSemFim, nome));
        break;
      }
    }
    // Timers: every "Timer_" anywhere.
    for (size_t de = 0;;) {
      size_t p = texto.find(u"Timer_", de);
      if (p == NPOS) break;
      size_t b = texto.find(u')', p);
      size_t a = texto.find(u'(', p);
      if (a == NPOS || b == NPOS || b < a) throw FalhaHost(falha::ChamadaInvalida);
      double v;
      if (!LeNumero(TextoV(texto).substr(a + 1, b - a - 1), v)) throw FalhaHost(falha::TipoIncompativel);
      v = ArredondaPar(v);
      if (v < -32768 || v > 32767) throw FalhaHost(falha::Estouro);
      nomesTimers.push_back(texto.substr(p, b - p + 1));
      ticksTimers.push_back(static_cast<int16_t>(v));
      temTimer = true;
      de = a;
    }
  } catch (const FalhaHost&) {
    CaixaCritica(msg::kErroNasRotinas);
  }
}

bool Interpretador::ESub(TextoV palavra) const {
  Texto p = Apara(palavra);
  for (const Texto& s : nomesSubs)
    if (s == p) return true;
  return false;
}

void Interpretador::ChamaSub(const Texto& nome) {
  try {
    size_t h = textoPrograma.find(u"Sub " + nome);
    if (h == NPOS) {
      CaixaCritica(msg::Formata(msg::kSubNaoEncontrada, nome));
      return;
    }
    size_t e = AchaFimRotina(textoPrograma, u"EndSub", h);
    if (e == NPOS) return;
    Texto trecho = Trecho(textoPrograma, h, e);
    ExecutaTexto(trecho, trecho, 0);
  } catch (const FalhaHost&) {
  } catch (const std::exception&) {
  }
}

namespace {

// The next place from `de` where `velho` stands as a whole word for
// TrocaNome: behind '(', a blank or CR, and before ',', ')', a blank or CR.
size_t AchaNomeInteiro(const Texto& texto, const Texto& velho, size_t de) {
  for (size_t p = texto.find(velho, de); p != NPOS; p = texto.find(velho, p + velho.size())) {
    char16_t antes = p > 0 ? texto[p - 1] : 0;
    size_t e = p + velho.size();
    char16_t depois = e < texto.size() ? texto[e] : 0;
    if ((antes == u'(' || antes == u' ' || antes == CR) &&
        (depois == u',' || depois == u')' || depois == u' ' || depois == CR))
      return p;
  }
  return NPOS;
}

bool NomeSimples(const Texto& t) {
  if (t.empty()) return false;
  for (char16_t c : t)
    if (!ELetra(c) && !EDigito(c) && c != u'_') return false;
  return true;
}

}  // namespace

void TrocaNome(Texto& texto, const Texto& velho, const Texto& novo) {
  if (velho.empty()) throw FalhaHost(falha::ChamadaInvalida);
  for (size_t p = AchaNomeInteiro(texto, velho, 0); p != NPOS; p = AchaNomeInteiro(texto, velho, p + novo.size()))
    texto.replace(p, velho.size(), novo);
}

// Reads a Function's stretch from the main text; a fault throws, and a
// missing Function is also shown when `avisa`.
void Interpretador::LeFuncao(const Texto& nome, ModeloFuncao& m, bool avisa) {
  size_t h = textoPrograma.find(u"Function " + nome);
  if (h == NPOS) {
    if (avisa) CaixaCritica(msg::Formata(msg::kFunctionNaoEncontrada, nome));
    throw FalhaHost(falha::ChamadaInvalida);
  }
  size_t e = AchaFimRotina(textoPrograma, u"EndFunction", h);
  if (e == NPOS) throw FalhaHost(falha::ChamadaInvalida);
  Texto trecho = Trecho(textoPrograma, h, e);
  size_t a = trecho.find(u'('), b = trecho.find(u')');
  if (a == NPOS || b == NPOS || b < a) throw FalhaHost(falha::ChamadaInvalida);
  m.parametros = SeparaArgumentos(trecho.substr(a + 1, b - a - 1), 21);
  size_t cr = trecho.find(CR);
  m.corpo = cr == NPOS ? Texto() : trecho.substr(cr + 1);
}

ModeloFuncao* Interpretador::ModeloDe(const Texto& nome) {
  if (semPlanos) return nullptr;
  auto& funcoes = PlanosDoTexto().funcoes;
  if (auto it = funcoes.find(nome); it != funcoes.end()) return &it->second;
  // Only a head that reads well is kept; any fault is met again the long way.
  ModeloFuncao m;
  try {
    LeFuncao(nome, m, false);
  } catch (const FalhaHost&) {
    return nullptr;
  }
  for (const Texto& f : m.parametros) {
    if (f.empty()) break;
    if (f.find(u' ') == NPOS) return nullptr;
  }
  return &funcoes.emplace(nome, std::move(m)).first->second;
}

// Whether a call's body can run on plans made by an earlier call: every
// renaming must fall where it fell then, whatever the counter's digits.
void Interpretador::AnalisaModelo(const Texto& nome, ModeloFuncao& m) {
  m.analisado = true;
  m.rapido = false;
  m.locais.clear();
  m.tipos.clear();
  m.tiposLocais.clear();
  if (!NomeSimples(nome)) return;
  // A call's name is looked for in the body's texts: one with digits could
  // meet a generated name's counter, and then be found in one call's body and
  // not in another's. It can only when what comes before its first digit
  // ends this Function's name (or is nothing).
  const Texto nomeM = Maiusculas(nome);
  bool digitos = std::any_of(nome.begin(), nome.end(), EDigito);
  auto colide = [&](TextoV chamada) {
    size_t d = 0;
    while (d < chamada.size() && !EDigito(chamada[d])) ++d;
    if (d == chamada.size()) return false;
    return digitos || d == 0 || TerminaCom(nomeM, Maiusculas(chamada.substr(0, d)));
  };
  for (const Texto& f : nomesFuncoes)
    if (colide(f)) return;
  for (const char16_t* f : kPalavrasChave)
    if (colide(f)) return;
  // A name in the body spelled like a generated one, in any case, means
  // another variable at each call.
  const Texto corpoM = Maiusculas(m.corpo);
  for (size_t p = corpoM.find(nomeM); p != NPOS; p = corpoM.find(nomeM, p + 1)) {
    size_t e = p + nomeM.size();
    if (e < corpoM.size() && EDigito(corpoM[e])) return;
  }
  auto item = [&](const Texto& it) {
    size_t sp = it.find(u' ');
    if (sp == NPOS) return false;
    Texto local = it.substr(0, sp), tipo = it.substr(sp + 1);
    TipoVariavel t;
    // A local named like a generated name could be renamed twice.
    if (!NomeSimples(local) || ComecaCom(local, nome) || !LeTipo(tipo, t)) return false;
    if (nome.size() + 11 + local.size() > 50) return false;
    m.locais.push_back(local);
    m.tipos.push_back(tipo);
    m.tiposLocais.push_back(t);
    return true;
  };
  for (const Texto& f : m.parametros) {
    if (f.empty()) break;
    if (!item(f)) return;
  }
  m.totalParametros = m.locais.size();
  // The first line decides on locals after the parameters were renamed in
  // it. A generated name has no blank, so renaming never makes a "Var "
  // line; a Var line is only read the same every time if renaming leaves it
  // alone.
  const size_t col = kColunaComando + 1;
  size_t cr = m.corpo.find(CR);
  Texto primeira = m.corpo.substr(0, cr == NPOS ? NPOS : cr + 1);
  Texto palavra;
  if (m.corpo.compare(col, 4, u"Var ") == 0)
    palavra = u"Var";
  else if (m.corpo.compare(col, 9, u"Variable ") == 0)
    palavra = u"Variable";
  for (size_t i = 0; i < m.totalParametros && !palavra.empty(); ++i)
    if (AchaNomeInteiro(primeira, m.locais[i], 0) != NPOS) return;
  m.corpoSemVar = m.corpo;
  if (!palavra.empty()) {
    size_t ini = col + palavra.size() + 1;
    Texto lista = m.corpo.substr(ini, cr == NPOS ? NPOS : cr - ini);
    if (TemChamadaPreAvaliada(Maiusculas(Apara(lista)))) return;
    try {
      for (const Texto& it : SeparaArgumentos(lista, 101)) {
        if (it.empty()) break;
        if (!item(it)) return;
      }
    } catch (const FalhaHost&) {
      return;
    }
    size_t primeiro = m.corpo.find(u"&#");
    size_t segundo = primeiro == NPOS ? NPOS : m.corpo.find(u"&#", primeiro + 2);
    m.corpoSemVar = segundo == NPOS ? Texto() : m.corpo.substr(segundo);
  }
  m.locaisDistintos = true;
  for (size_t i = 0; i < m.locais.size(); ++i)
    for (size_t j = 0; j < i; ++j)
      if (m.locais[i] == m.locais[j]) m.locaisDistintos = false;
  m.inicialMaiuscula = Maiusculas(TextoV(nome).substr(0, 1))[0];
  m.rapido = true;
}

Texto Interpretador::CorpoRenomeado(const ModeloFuncao& m, const std::vector<Texto>& gerados) const {
  Texto corpo = m.corpoSemVar;
  for (size_t i = 0; i < m.locais.size(); ++i) TrocaNome(corpo, m.locais[i], gerados[i]);
  return corpo;
}

Valor Interpretador::ChamaFuncao(const Texto& nome, const Texto& argumentos, const PlanoLinha* plano) {
  std::vector<Texto> remover;
  try {
    std::unique_ptr<ModeloFuncao> lido;
    ModeloFuncao* modelo = plano && plano->modelo ? plano->modelo : ModeloDe(nome);
    if (plano) plano->modelo = modelo;
    if (!modelo) {
      lido = std::make_unique<ModeloFuncao>();
      LeFuncao(nome, *lido, true);
      modelo = lido.get();
    } else {
      if (!modelo->analisado) AnalisaModelo(nome, *modelo);
      if (plano && modelo->rapido && !Vigiado() && plano->partes.size() == modelo->totalParametros) {
        Valor r;
        if (ChamadaSemNomes(nome, *modelo, *plano, r)) return r;
      }
    }
    Texto contador = InteiroParaTexto(contadorChamadas);
    std::vector<Texto> locais, gerados;
    // Where each generated variable was made; -1: it already stood.
    std::vector<std::pair<TipoVariavel, int32_t>> vagas;
    // Each parameter and local gets a global of a generated name.
    auto declara = [&](const Texto& item) {
      size_t sp = item.find(u' ');
      if (sp == NPOS) throw FalhaHost(falha::ChamadaInvalida);
      Texto local = item.substr(0, sp);
      Texto gerado = nome + contador + local;
      TextoV tipo = TextoV(item).substr(sp + 1);
      TipoVariavel t = TipoVariavel::Integer;
      bool feito = variaveis.Cria(gerado, tipo);
      if (feito) LeTipo(tipo, t);
      vagas.emplace_back(t, feito ? static_cast<int32_t>(variaveis.TamanhoValores(t)) - 1 : -1);
      remover.push_back(gerado);
      locais.push_back(local);
      gerados.push_back(std::move(gerado));
    };
    for (const Texto& f : modelo->parametros) {
      if (f.empty()) break;
      declara(f);
    }
    std::vector<Texto> reais;
    size_t totalReais = 0;
    if (plano) {
      totalReais = plano->partes.size();
    } else {
      reais = SeparaArgumentos(argumentos, 21);
      while (totalReais < reais.size() && !reais[totalReais].empty()) ++totalReais;
    }
    const bool rapido = !lido && modelo->rapido && !Vigiado() && totalReais == modelo->totalParametros;
    Texto corpo = rapido ? Texto() : modelo->corpo;
    for (size_t i = 0; i < totalReais; ++i) {
      if (!rapido)
        TrocaNome(corpo, i < locais.size() ? locais[i] : Texto(), i < gerados.size() ? gerados[i] : Texto());
      bool numerico = false;
      Valor v = plano ? AvaliaValor(plano->partes[i], plano->geracao) : ValorNumerico(reais[i], numerico);
      GravaVariavel(gerados[i], v, true);
    }
    if (rapido) {
      for (size_t i = modelo->totalParametros; i < modelo->locais.size(); ++i)
        declara(modelo->locais[i] + u' ' + modelo->tipos[i]);
      ExecutaCorpo(*modelo, gerados, vagas);
    } else {
      Texto exibicao = modelo->corpo;
      // Locals: only a first statement "Var" or "Variable", spelled so.
      const size_t col = kColunaComando + 1;
      Texto palavra;
      if (corpo.compare(col, 4, u"Var ") == 0)
        palavra = u"Var";
      else if (corpo.compare(col, 9, u"Variable ") == 0)
        palavra = u"Variable";
      if (!palavra.empty()) {
        size_t fimLinha = corpo.find(CR, col);
        size_t ini = col + palavra.size() + 1;
        Texto lista = corpo.substr(ini, fimLinha == NPOS ? NPOS : fimLinha - ini);
        size_t antes = locais.size();
        for (const Texto& item : SeparaArgumentos(lista, 101)) {
          if (item.empty()) break;
          declara(item);
        }
        for (size_t i = antes; i < locais.size(); ++i) TrocaNome(corpo, locais[i], gerados[i]);
        size_t primeiro = corpo.find(u"&#");
        size_t segundo = primeiro == NPOS ? NPOS : corpo.find(u"&#", primeiro + 2);
        corpo = segundo == NPOS ? Texto() : corpo.substr(segundo);
      }
      ExecutaTexto(corpo, exibicao, 0);
    }
    Valor r = valorRetorno;
    // A run ended by a limit is being torn down: its generated names go with it.
    if (abortado) return r;
    for (const Texto& g : remover) RemoveVariable(g);
    ++contadorChamadas;
    return r;
  } catch (const FalhaHost&) {
  } catch (const std::exception&) {
  }
  FalhaFuncao();
  return Valor();
}

void Interpretador::FalhaFuncao() {
  ErroExecucao(msg::kFalhaDeFuncao);
}

bool Interpretador::AchaFuncaoUsuario(const Texto& texto, Texto par[2], Texto& palavraResultado) {
  Texto t = Apara(texto);
  if (t.empty() || t[0] == u'"') return false;
  int k = PalavraChamada(t, nomesFuncoes.data(), nomesFuncoes.size());
  if (k >= 0) {
    size_t i = static_cast<size_t>(k);
    const Texto& nome = nomesFuncoes[i];
    Texto m = MarcaParenteses(LimpaParenteses(t));
    size_t q = m.find(nome);
    size_t w = q;
    while (w < m.size() && (ELetra(m[w]) || EDigito(m[w]) || m[w] == u'_')) ++w;
    size_t fim;
    if (q == NPOS || !ArgumentosMarcados(m, q, w - q, par[1], fim)) {
      CaixaCritica(msg::SemParenteses(msg::kErroEmFuncao, t));
      return false;
    }
    par[0] = m.substr(q, w - q);
    palavraResultado = tiposFuncoes[i];
    return true;
  }
  return false;
}

void Interpretador::ExecutaFuncaoUsuario(Texto& texto, const Texto par[2], const Texto& palavraResultado) {
  Texto t = LimpaParenteses(texto);
  Texto m = MarcaParenteses(t);
  size_t q = m.find(par[0]);
  if (q == NPOS) return;
  Texto novo = LimpaParenteses(TextoV(m).substr(0, q));
  novo += ChamaFuncao(par[0], par[1]).ComoTexto();
  Texto args;
  size_t fim;
  if (ArgumentosMarcados(m, q, par[0].size(), args, fim)) novo += LimpaParenteses(TextoV(m).substr(fim));
  if (palavraResultado == u"Numero") {
    size_t v = novo.rfind(u',');
    if (v != NPOS) novo[v] = u'.';
  }
  if (palavraResultado == u"String" && (novo.empty() || novo[0] != u'"')) novo = u"\"" + novo + u"\"";
  texto = std::move(novo);
}

void Interpretador::TiqueTimer() {
  if (!executando) return;
  ++contadorTiques;
  for (size_t i = 0; i < nomesTimers.size() && executando; ++i) {
    int16_t t = ticksTimers[i];
    if (t > 0 && contadorTiques % t == 0) ChamaSub(nomesTimers[i]);
  }
}

}  // namespace zv
