// The commands that only need the host: Message, Write and Wait.
#include "core/interpretador.h"

namespace zv {

namespace {

Valor Message(Interpretador& zv, const Texto& argumentos) {
  bool simNao = false;
  Texto texto;
  for (const Texto& a : zv.SeparaArgumentos(argumentos, 51)) {
    if (a.empty()) break;
    if (Maiusculas(a) == u"OPTIONYESNO") {
      simNao = true;
      continue;
    }
    texto += zv.ValorNumerico(a).ComoTexto();
  }
  Caixa c;
  c.titulo = zv.TituloPrograma();
  c.texto = texto;
  if (simNao) {
    c.tipo = TipoCaixa::Pergunta;
    c.botoes = Botoes::YesNo;
    c.padrao = Resposta::No;
    return Valor::TextoComAspas(zv.host().MostraCaixa(c) == Resposta::Yes ? u"True" : u"False");
  }
  c.tipo = TipoCaixa::Info;
  zv.host().MostraCaixa(c);
  return Valor();
}

Valor Write(Interpretador& zv, const Texto& argumentos) {
  bool titulo = false;
  Texto texto;
  for (const Texto& a : zv.SeparaArgumentos(argumentos, 51)) {
    if (a.empty()) break;
    if (Maiusculas(a) == u"WINDOWTITLE") {
      titulo = true;
      continue;
    }
    texto += zv.ValorNumerico(a).ComoTexto();
  }
  if (titulo)
    zv.host().DefineTitulo(texto);
  else
    zv.host().Escreve(texto);
  zv.Bombeia();
  return Valor::DeBooleano(true);
}

// Waits for a click until the run ends; a run with no user can't be clicked.
void EsperaClique(Interpretador& zv, Texto& alvo, const char16_t* forma) {
  alvo.clear();
  if (!zv.host().Interativo()) {
    zv.CaixaCritica(msg::NoLocal(zv.LocalAtual(), msg::Formata(msg::kEsperaSemJanela, forma)));
    zv.pararPrograma = true;
    return;
  }
  while (alvo.empty() && zv.executando && !zv.pararPrograma && !zv.abortado && !zv.janelaFechada) {
    // A scripted user whose actions are used up clicks no more: the run ends.
    if (!zv.host().Interativo()) {
      zv.pararPrograma = true;
      return;
    }
    zv.host().Dorme(10);
    zv.Bombeia();
  }
  zv.GravaVariavel(u"RetStr", Valor::DeTexto(alvo), false);
}

Valor Wait(Interpretador& zv, const Texto& argumentos) {
  Texto m = Maiusculas(Apara(argumentos));
  if (m == u"EVENTS") {
    zv.Bombeia();
  } else if (m == u"CLICKBUTTON") {
    EsperaClique(zv, zv.ultimoBotao, u"ClickButton");
  } else if (m == u"CLICKBOX") {
    EsperaClique(zv, zv.ultimoCliqueCaixa, u"ClickBox");
  } else {
    double ms = zv.ValorNumerico(argumentos).ComoDouble();
    if (ms > 0) zv.host().Dorme(ms > 2147483647.0 ? 2147483647 : static_cast<int>(ms));
    zv.Bombeia();
  }
  return Valor();
}

}  // namespace

void RegistraNucleo(TabelaComandos& t) {
  t.Define(u"Message", Message);
  t.Define(u"Write", Write);
  t.Define(u"Wait", Wait);
}

}  // namespace zv
