// The control commands of this slice: Button, Text and Label, with the
// forms they share (creation, .Remove, members), their tables and mirror
// variables, and what their events write.
#include "library/texto_qt.h"
#include "runtime/argumentos.h"
#include "runtime/controles.h"

#include <QIcon>
#include <QTextCursor>

#include "controls/btn_esp.h"
#include "controls/caixa_texto.h"
#include "controls/barras.h"
#include "controls/calendario.h"
#include "controls/entra_num.h"
#include "controls/figuras_padrao.h"
#include "controls/marcas.h"
#include "controls/moldura.h"
#include "controls/sp_combo.h"
#include "controls/rot.h"
#include "library/arquivos.h"
#include "library/datas.h"
#include "runtime/janelas.h"
#include "runtime/mensagens.h"
#include "runtime/figuras.h"
#include "runtime/rtf.h"

namespace zv {

const InfoControle& Info(TipoControle t) {
  static const InfoControle kInfo[kTiposControle] = {
      {u"AnimatedGif", nullptr, nullptr, false},
      {u"Button", nullptr, nullptr, true},
      {u"Text", u".Txt", u"String", true},
      {u"Currency", u".Value", u"Decimal", true},
      {u"Check", u".Value", u"Integer", true},
      {u"Label", u".Txt", u"String", false},
      {u"Link", nullptr, nullptr, false},
      {u"Radio", u".Value", u"Integer", true},
      {u"Combo", u".Txt", u"String", true},
      {u"Frame", nullptr, nullptr, false},
      {u"Mask", u".Txt", u"String", true},
      {u"Calendar", u".Txt", u"String", true},
      {u"ScrollBar", u".Value", u"Integer", true},
      {u"Box", u".Txt", u"String", true},
      {u"Picture", nullptr, nullptr, false},
      {u"Image", nullptr, nullptr, false},
      {u"Video", nullptr, nullptr, false},
  };
  return kInfo[static_cast<int>(t)];
}

int TabelaControles::Acha(TextoV nomeMaiusculo) const {
  for (int s = 0; s < contagem && static_cast<size_t>(s) < nomes.size(); ++s)
    if (!nomes[static_cast<size_t>(s)].empty() && Maiusculas(nomes[static_cast<size_t>(s)]) == nomeMaiusculo) return s;
  return -1;
}

int TabelaControles::Livre() {
  for (int s = 0; s < contagem; ++s)
    if (nomes[static_cast<size_t>(s)].empty()) return s;
  // Tables grow one slot at a time; the count is 16-bit, as the original's.
  if (contagem == INT16_MAX) throw FalhaHost(falha::Estouro);
  instancias.emplace_back();
  nomes.emplace_back();
  donos.emplace_back();
  multiLinha.push_back(0);
  return contagem++;
}

namespace {


// A multi-line text as programs read it: lines end in CR LF.
QString TextoDoRico(const QTextEdit* r) { return r->toPlainText().replace(QLatin1Char('\n'), QStringLiteral("\r\n")); }

// The default sizes of a control that isn't given one: the original's
// design-time instance 0, 1215 by 495 twips.
constexpr int kLarguraPadrao = 81;
constexpr int kAlturaBotao = 33;

QColor CorDeValor(Interpretador& zv, const Texto& v) { return CorDe(Num(zv, v)); }

void CorDeFundo(QWidget* w, const QColor& c) {
  QPalette p = w->palette();
  p.setColor(QPalette::Base, c);
  p.setColor(QPalette::Button, c);
  p.setColor(QPalette::Window, c);
  w->setPalette(p);
  w->setAutoFillBackground(true);
}

void CorDeFundoBotao(QWidget* w, const QColor& c) {
  QPalette p = w->palette();
  p.setColor(QPalette::Button, c);
  w->setPalette(p);
}

void CorDeFrente(QWidget* w, const QColor& c) {
  QPalette p = w->palette();
  p.setColor(QPalette::Text, c);
  p.setColor(QPalette::ButtonText, c);
  p.setColor(QPalette::WindowText, c);
  w->setPalette(p);
}

Qt::Alignment Alinhamento(int n) {
  if (n == 1) return Qt::AlignRight | Qt::AlignVCenter;
  if (n == 2) return Qt::AlignHCenter | Qt::AlignVCenter;
  return Qt::AlignLeft | Qt::AlignVCenter;
}

// A picture argument: empty clears, a default picture's name takes it, a
// file loads; false when it isn't there.
bool Figura(Interpretador& zv, BtnEsp* b, const Texto& valor) {
  Texto nome = TextoT(zv, valor);
  if (nome.empty()) {
    b->setIcon(QIcon());
    return true;
  }
  QPixmap p;
  if (int n = ProcuraNaLista(QString::fromLatin1(kListaFiguras), Q(nome)); n >= 0) {
    p = FiguraPadrao(n);
  } else {
    Texto arquivo = ResolveArquivo(zv, nome);
    if (arquivo.empty() || !p.load(Q(arquivo))) return false;
  }
  b->setIcon(QIcon(p));
  b->setIconSize(p.size());
  return true;
}

}  // namespace

// ---- Events -------------------------------------------------------------------

void SistemaJanelas::RelataControle(TipoControle tipo, int slot, const DadosEvento& e) {
  if (encerrada_) return;
  if (tipo == TipoControle::Box) return RelataBox(slot, e);
  TabelaControles& t = controles[static_cast<size_t>(tipo)];
  auto s = static_cast<size_t>(slot);
  if (s >= t.nomes.size() || t.nomes[s].empty()) return;
  const Texto nome = t.nomes[s];
  switch (e.tipo) {
    case EventoControle::Clique:
      // A mask's click writes nothing.
      if (tipo == TipoControle::Mascara) break;
      zv->GravaVariavel(u"RefIndex", Valor::DeInt32(slot), false);
      if (tipo == TipoControle::Gif) eventos.ultimoGif = u"CLICK";
      if (tipo == TipoControle::Check || tipo == TipoControle::Radio) EscreveMarca(tipo, slot);
      if (tipo == TipoControle::Botao) {
        zv->ultimoBotao = nome;
        zv->GravaVariavel(u"TestButton", Valor::DeTexto(nome), false);
      }
      break;
    case EventoControle::DuploClique:
      if (tipo != TipoControle::Botao) zv->GravaVariavel(u"RefIndex", Valor::DeInt32(slot), false);
      if (tipo == TipoControle::Gif) eventos.ultimoGif = u"DOUBLECLICK";
      break;
    case EventoControle::GanhouFoco:
      zv->GravaVariavel(u"GotFocus", Valor::DeTexto(nome), false);
      if (tipo == TipoControle::Texto && t.multiLinha[s]) Atual()->previaDeTeclas = false;
      break;
    case EventoControle::PerdeuFoco:
      zv->GravaVariavel(u"LostFocus", Valor::DeTexto(nome), false);
      if (tipo == TipoControle::Moeda && !t.instancias[s]->window()->isHidden()) EscreveEspelho(tipo, slot);
      if (tipo == TipoControle::Texto && t.multiLinha[s]) Atual()->previaDeTeclas = true;
      break;
    case EventoControle::TeclaDesce:
      if (tipo == TipoControle::Botao) TeclaDesce(e.tecla, e.shift);
      // The value as it stands before the key is applied.
      if (tipo == TipoControle::Moeda) EscreveEspelho(tipo, slot);
      break;
    case EventoControle::TeclaSobe:
      if (tipo == TipoControle::Mascara) EscreveEspelho(tipo, slot);
      break;
    case EventoControle::Mudou:
      EscreveEspelho(tipo, slot);
      break;
    default:
      break;
  }
}

// A check's variable gets its Value; a click on a radio puts every radio's
// variable to 0 (the table is global: other windows' radios too), then the
// clicked one's to 1 if it is on.
void SistemaJanelas::EscreveMarca(TipoControle tipo, int slot) {
  TabelaControles& t = controles[static_cast<size_t>(tipo)];
  auto k = static_cast<size_t>(slot);
  auto* b = static_cast<QAbstractButton*>(t.instancias[k].data());
  if (!b) return;
  if (tipo == TipoControle::Radio)
    for (size_t s = 0; s < t.nomes.size(); ++s)
      if (!t.nomes[s].empty()) zv->GravaVariavel(t.nomes[s] + u".Value", Valor::DeInt32(0), false);
  zv->GravaVariavel(t.nomes[k] + u".Value", Valor::DeInt32(b->isChecked() ? 1 : 0), false);
}

// The mirror variable of a combo, a mask or a scroll bar, from the control.
void SistemaJanelas::EscreveEspelho(TipoControle tipo, int slot) {
  TabelaControles& t = controles[static_cast<size_t>(tipo)];
  auto k = static_cast<size_t>(slot);
  QWidget* w = t.instancias[k];
  if (!w || t.nomes[k].empty()) return;
  if (tipo == TipoControle::Combo)
    zv->GravaVariavel(t.nomes[k] + u".Txt", Valor::DeTexto(T(static_cast<SpCombo*>(w)->Texto())), false);
  else if (tipo == TipoControle::Mascara)
    zv->GravaVariavel(t.nomes[k] + u".Txt", Valor::DeTexto(T(static_cast<CaixaTexto*>(w)->text())), false);
  else if (tipo == TipoControle::Barra)
    zv->GravaVariavel(t.nomes[k] + u".Value", Valor::DeInt32(static_cast<BarraRolagem*>(w)->value()), false);
  else if (tipo == TipoControle::Moeda)
    zv->GravaVariavel(t.nomes[k] + u".Value", Valor::DeDouble(static_cast<EntraNum*>(w)->Valor()), false);
  else if (tipo == TipoControle::Calendario)
    zv->GravaVariavel(t.nomes[k] + u".Txt",
                      Valor::DeTexto(TextoMomento(Momento(static_cast<Calendario*>(w)->date()), LocaleDatas())), false);
}

// Timer2: the text mirror. Every 5 ms while on, each live text control's
// text goes into its variable; off again when there is none.
void SistemaJanelas::LigaEspelhos() {
  if (espelhosLigados_) return;
  espelhosLigados_ = true;
  zv->host().IniciaTimer(TimerEspelhos, 5, [this] { TiqueEspelhos(); });
}

void SistemaJanelas::TiqueEspelhos() {
  TabelaControles& t = controles[static_cast<size_t>(TipoControle::Texto)];
  bool algum = false;
  for (size_t s = 0; s < t.nomes.size(); ++s) {
    QWidget* w = t.instancias[s];
    if (!w || t.nomes[s].empty()) continue;
    algum = true;
    QString texto = t.multiLinha[s] ? TextoDoRico(static_cast<TextoMultiLinha*>(w))
                                    : static_cast<CaixaTexto*>(w)->text();
    zv->GravaVariavel(t.nomes[s] + u".Txt", Valor::DeTexto(T(texto)), false);
  }
  if (!algum) {
    espelhosLigados_ = false;
    zv->host().ParaTimer(TimerEspelhos);
  }
}

// ---- Creation -------------------------------------------------------------------

int SistemaJanelas::PoeNaTabela(TipoControle tipo, const Texto& nome, QWidget* w) {
  TabelaControles& t = controles[static_cast<size_t>(tipo)];
  int slot = t.Livre();
  auto k = static_cast<size_t>(slot);
  t.nomes[k] = nome;
  t.donos[k] = nomeFormAtual;
  t.instancias[k] = w;
  return slot;
}

void Avisa(Interpretador& zv, const Texto& texto) {
  Caixa c;
  c.titulo = zv.TituloPrograma();
  c.texto = texto;
  zv.host().MostraCaixa(c);
}

namespace {

// Steps 1, 2 and 4 to 5 of a creation: the slot, the name and owner, the
// instance, the mirror variable. The caller places and shows it.
template <class W>
W* NovoControle(SistemaJanelas& s, TipoControle tipo, const Texto& nome, int& slot,
                const std::function<W*(QWidget*, int)>& faz) {
  slot = s.controles[static_cast<size_t>(tipo)].Livre();
  W* w = faz(s.Atual()->Cliente(), slot);
  s.PoeNaTabela(tipo, nome, w);
  const InfoControle& info = Info(tipo);
  if (info.espelho) s.zv->CriaVariavel(nome + info.espelho, info.tipoEspelho);
  w->relata = [&s, tipo, slot](const DadosEvento& e) { s.RelataControle(tipo, slot, e); };
  return w;
}

void Mostra(SistemaJanelas& s, QWidget* w, TipoControle tipo) {
  // Controls start with the font of the original's design-time instance
  // (the platform's small sans serif), not the window's printing font.
  if (tipo == TipoControle::Botao || tipo == TipoControle::Texto || tipo == TipoControle::Combo ||
      tipo == TipoControle::Moeda || tipo == TipoControle::Calendario || tipo == TipoControle::Mascara ||
      tipo == TipoControle::Frame) {
    QFont f(QStringLiteral("MS Sans Serif"), 8);
    f.setStyleHint(QFont::SansSerif);
    w->setFont(f);
  }
  w->show();
  if (Info(tipo).focavel) w->setProperty("zvTabIndex", static_cast<int>(s.proximoTabIndex++));
}

}  // namespace

Valor SistemaJanelas::CriaBotao(const std::vector<Texto>& a) {
  int slot;
  Texto nome = TextoT(*zv, Arg(a, 0));
  Texto t2 = Maiusculas(Apara(Arg(a, 1)));
  bool forma3 = ComecaCom(t2, u"TYPE");
  bool forma2 = !forma3 && !(Arg(a, 4).empty() && Arg(a, 5).empty() && Arg(a, 6).empty() && Arg(a, 7).empty());
  BtnEsp* b = NovoControle<BtnEsp>(*this, TipoControle::Botao, nome, slot,
                                   [](QWidget* pai, int) { return new BtnEsp(pai); });
  QFontMetrics fm(b->font());
  if (forma3) {
    // TypeN: skin n of the button-types array, skin 0 as ButtonStyle left it.
    double n = 0;
    Texto numero = Apara(t2.substr(4));
    if (!LeNumero(numero, n) || n < 0 || n >= kTiposBotao || n != static_cast<int>(n))
      throw FalhaHost(msg::Formata(msg::ElementoInexistente, numero));
    const int tipo = static_cast<int>(n);
    b->move(PxColuna(Num(*zv, Arg(a, 3))), PxLinha(Num(*zv, Arg(a, 2))));
    bool semNada = Arg(a, 4).empty() && Arg(a, 5).empty() && Arg(a, 6).empty();
    Texto cap = semNada ? Texto(u"OK") : TextoT(*zv, Arg(a, 4));
    b->setText(Q(cap));
    b->resize(std::max(kLarguraPadrao, fm.horizontalAdvance(Q(cap)) + 16), kAlturaBotao);
    b->DefineEstilo(1);
    bool figuras = false;
    if (tipo == 0) {
      if (estilo0_.temFundo) CorDeFundoBotao(b, estilo0_.fundo);
      if (estilo0_.temFrente) CorDeFrente(b, estilo0_.frente);
      for (const Texto& f : estilo0_.figuras) figuras = figuras || !f.empty();
    }
    if (figuras) {
      // The pictures ButtonStyle gave, shown as they are; the states it
      // left alone keep skin 0's own.
      Pele pele = PelePadrao(0, b->size());
      for (size_t i = 0; i < 5; ++i)
        if (!estilo0_.figuras[i].empty()) pele.figuras[i].load(Q(estilo0_.figuras[i]));
      b->DefinePele(pele);
    } else {
      b->DefineTipoPele(tipo);
    }
    if (!Figura(*zv, b, Arg(a, 5))) zv->ErroExecucao(msg::FiguraForma3);
    b->setToolTip(Q(TextoT(*zv, Arg(a, 6))));
  } else if (forma2) {
    b->setGeometry(PxColuna(Num(*zv, Arg(a, 2))), PxLinha(Num(*zv, Arg(a, 1))), PxColuna(Num(*zv, Arg(a, 4))),
                   PxLinha(Num(*zv, Arg(a, 3))));
    b->setText(Q(TextoT(*zv, Arg(a, 5))));
    if (!Figura(*zv, b, Arg(a, 6))) zv->ErroExecucao(msg::FiguraForma2);
    b->setToolTip(Q(TextoT(*zv, Arg(a, 7))));
  } else {
    Texto cap = TextoT(*zv, Arg(a, 3));
    if (cap.empty()) cap = u"OK";
    b->setText(Q(cap));
    b->setGeometry(PxColuna(Num(*zv, Arg(a, 2))), PxLinha(Num(*zv, Arg(a, 1))),
                   std::max(kLarguraPadrao, fm.horizontalAdvance(Q(cap)) + 16), kAlturaBotao);
  }
  Mostra(*this, b, TipoControle::Botao);
  return Valor();
}

Valor SistemaJanelas::CriaTexto(const std::vector<Texto>& a) {
  Texto nome = TextoT(*zv, Arg(a, 0));
  TabelaControles& t = controles[static_cast<size_t>(TipoControle::Texto)];
  double altura = Arg(a, 4).empty() ? 1 : Num(*zv, Arg(a, 4));
  // A slot taken again keeps its multi-line flag, whatever this Height says;
  // a new slot is multi-line from three lines up.
  int16_t antes = t.contagem;
  int slot = t.Livre();
  auto k = static_cast<size_t>(slot);
  if (slot >= antes) t.multiLinha[k] = altura >= 3;
  bool multi = t.multiLinha[k];
  t.nomes[k] = nome;
  t.donos[k] = nomeFormAtual;
  QWidget* w;
  // The two classes report alike.
  RelatorControle r = [this, slot](const DadosEvento& e) { RelataControle(TipoControle::Texto, slot, e); };
  if (multi) {
    auto* m = new TextoMultiLinha(Atual()->Cliente());
    m->relata = r;
    w = m;
  } else {
    auto* l = new CaixaTexto(Atual()->Cliente());
    l->relata = r;
    w = l;
  }
  t.instancias[k] = w;
  zv->CriaVariavel(nome + u".Txt", u"String");
  int largura = Arg(a, 3).empty() ? kLarguraPadrao : PxColuna(Num(*zv, Arg(a, 3)));
  w->setGeometry(PxColuna(Num(*zv, Arg(a, 2))), PxLinha(Num(*zv, Arg(a, 1))), largura, PxLinha(altura < 1 ? 1 : altura));
  Mostra(*this, w, TipoControle::Texto);
  LigaEspelhos();
  return Valor();
}

Valor SistemaJanelas::CriaRotulo(const std::vector<Texto>& a) {
  int slot;
  Texto nome = TextoT(*zv, Arg(a, 0));
  // Labels live in the main window's array and are moved onto the current
  // window; made on it directly here, which ends the same.
  Rot* r = NovoControle<Rot>(*this, TipoControle::Rotulo, nome, slot, [](QWidget* pai, int) { return new Rot(pai); });
  QString cap = Q(TextoNT(*zv, Arg(a, 1)));
  r->setText(cap);
  int altura = Arg(a, 4).empty() ? PxLinha(1) : PxLinha(Num(*zv, Arg(a, 4)));
  int largura = Arg(a, 5).empty() ? QFontMetrics(r->font()).horizontalAdvance(cap) + 2 : PxColuna(Num(*zv, Arg(a, 5)));
  r->setGeometry(PxColuna(Num(*zv, Arg(a, 3))), PxLinha(Num(*zv, Arg(a, 2))), largura, altura);
  Mostra(*this, r, TipoControle::Rotulo);
  return Valor();
}

Valor SistemaJanelas::CriaMarca(TipoControle tipo, const std::vector<Texto>& a) {
  int slot;
  Texto nome = TextoT(*zv, Arg(a, 0));
  QAbstractButton* b;
  if (tipo == TipoControle::Check)
    b = NovoControle<CaixaMarca>(*this, tipo, nome, slot, [](QWidget* pai, int) { return new CaixaMarca(pai); });
  else
    b = NovoControle<BotaoOpcao>(*this, tipo, nome, slot, [](QWidget* pai, int) { return new BotaoOpcao(pai); });
  // The font of the current window, and as wide as the caption on it plus
  // 25 pixels for the box.
  b->setFont(Atual()->font());
  QString cap = Q(TextoT(*zv, Arg(a, 3)));
  b->setText(cap);
  QFontMetrics fm(Atual()->font());
  b->setGeometry(PxColuna(Num(*zv, Arg(a, 2))), PxLinha(Num(*zv, Arg(a, 1))), fm.horizontalAdvance(cap) + 25,
                 std::max(PxLinha(1), fm.height() + 4));
  Mostra(*this, b, tipo);
  // An empty Value leaves it off.
  if (tipo == TipoControle::Check && !Arg(a, 4).empty()) {
    b->setChecked(Num(*zv, Arg(a, 4)) != 0);
    EscreveMarca(tipo, slot);
  }
  return Valor();
}

Valor SistemaJanelas::CriaCombo(const std::vector<Texto>& a) {
  int slot;
  SpCombo* c = NovoControle<SpCombo>(*this, TipoControle::Combo, TextoT(*zv, Arg(a, 0)), slot,
                                     [](QWidget* pai, int) { return new SpCombo(pai); });
  int largura = Arg(a, 3).empty() ? kLarguraPadrao : PxColuna(Num(*zv, Arg(a, 3)));
  // One line high; the combo raises that to its least height itself.
  c->setGeometry(PxColuna(Num(*zv, Arg(a, 2))), PxLinha(Num(*zv, Arg(a, 1))), largura, PxLinha(1));
  Mostra(*this, c, TipoControle::Combo);
  return Valor();
}

Valor SistemaJanelas::CriaFrame(const std::vector<Texto>& a) {
  int slot;
  SpecialFrame* f = NovoControle<SpecialFrame>(*this, TipoControle::Frame, TextoT(*zv, Arg(a, 0)), slot,
                                               [](QWidget* pai, int) { return new SpecialFrame(pai); });
  f->DefineLegenda(Q(TextoNT(*zv, Arg(a, 1))));
  f->setGeometry(PxColuna(Num(*zv, Arg(a, 3))), PxLinha(Num(*zv, Arg(a, 2))), PxColuna(Num(*zv, Arg(a, 5))),
                 PxLinha(Num(*zv, Arg(a, 4))));
  // Behind the controls already on the window, as a frame drawn first.
  f->lower();
  Mostra(*this, f, TipoControle::Frame);
  return Valor();
}

// The bar's thickness when the program gives only its length: the
// original's 255 twips.
constexpr int kEspessuraBarra = 17;

Valor SistemaJanelas::CriaBarra(const std::vector<Texto>& a) {
  int slot;
  bool vertical = Num(*zv, Arg(a, 4)) == 0;
  BarraRolagem* b = NovoControle<BarraRolagem>(
      *this, TipoControle::Barra, TextoT(*zv, Arg(a, 0)), slot,
      [vertical](QWidget* pai, int) { return new BarraRolagem(vertical ? Qt::Vertical : Qt::Horizontal, pai); });
  b->setRange(0, NumInt(*zv, Arg(a, 1)));
  int top = PxLinha(Num(*zv, Arg(a, 2))), left = PxColuna(Num(*zv, Arg(a, 3)));
  double tam = Num(*zv, Arg(a, 5));
  if (vertical)
    b->setGeometry(left, top, kEspessuraBarra, PxLinha(tam));
  else
    b->setGeometry(left, top, PxColuna(tam), kEspessuraBarra);
  Mostra(*this, b, TipoControle::Barra);
  return Valor();
}

Valor SistemaJanelas::CriaMoeda(const std::vector<Texto>& a) {
  int slot;
  EntraNum* m = NovoControle<EntraNum>(*this, TipoControle::Moeda, TextoT(*zv, Arg(a, 0)), slot,
                                       [](QWidget* pai, int) { return new EntraNum(pai); });
  int largura = Arg(a, 3).empty() ? kLarguraPadrao : PxColuna(Num(*zv, Arg(a, 3)));
  m->setGeometry(PxColuna(Num(*zv, Arg(a, 2))), PxLinha(Num(*zv, Arg(a, 1))), largura, PxLinha(1));
  Mostra(*this, m, TipoControle::Moeda);
  return Valor();
}

Valor SistemaJanelas::CriaCalendario(const std::vector<Texto>& a) {
  int slot;
  Calendario* c = NovoControle<Calendario>(*this, TipoControle::Calendario, TextoT(*zv, Arg(a, 0)), slot,
                                           [](QWidget* pai, int) { return new Calendario(pai); });
  c->setDisplayFormat(FormatoDataCurta(LocaleDatas()));
  int largura = Arg(a, 3).empty() ? kLarguraPadrao + 24 : PxColuna(Num(*zv, Arg(a, 3)));
  c->setGeometry(PxColuna(Num(*zv, Arg(a, 2))), PxLinha(Num(*zv, Arg(a, 1))), largura, c->sizeHint().height());
  Mostra(*this, c, TipoControle::Calendario);
  // Written at creation with the control's own default date.
  EscreveEspelho(TipoControle::Calendario, slot);
  return Valor();
}

namespace {
// The text a mask shows empty: every "#" a "_".
Texto MascaraVazia(Texto m) {
  for (char16_t& c : m)
    if (c == u'#') c = u'_';
  return m;
}
}  // namespace

Valor SistemaJanelas::CriaMascara(const std::vector<Texto>& a) {
  int slot;
  CaixaTexto* m = NovoControle<CaixaTexto>(*this, TipoControle::Mascara, TextoT(*zv, Arg(a, 0)), slot,
                                           [](QWidget* pai, int) { return new CaixaTexto(pai); });
  Texto mascara = TextoT(*zv, Arg(a, 1));
  m->setProperty("zvMascara", Q(mascara));
  m->mascara = Q(mascara);
  m->setText(Q(MascaraVazia(mascara)));
  int largura = Arg(a, 4).empty() ? kLarguraPadrao : PxColuna(Num(*zv, Arg(a, 4)));
  m->setGeometry(PxColuna(Num(*zv, Arg(a, 3))), PxLinha(Num(*zv, Arg(a, 2))), largura, PxLinha(1));
  QObject::connect(m, &QLineEdit::textEdited, m, [this, tipo = TipoControle::Mascara, slot] { EscreveEspelho(tipo, slot); });
  Mostra(*this, m, TipoControle::Mascara);
  // Setting the mask changed the text: the variable follows.
  EscreveEspelho(TipoControle::Mascara, slot);
  return Valor();
}

// ---- Members --------------------------------------------------------------------

namespace {

// Tab goes through a window's controls by their TabIndex. A control given
// an index stands before the others that hold it, as the original pushed
// them on; otherwise the order they were made in stands. New controls take
// the next index and stand last already: only a .TabIndex sorts again.
void OrdenaTabulacao(QWidget* cliente) {
  if (!cliente) return;
  std::vector<QWidget*> ws;
  for (QWidget* c : cliente->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
    if (c->property("zvTabIndex").isValid()) ws.push_back(c);
  std::stable_sort(ws.begin(), ws.end(), [](QWidget* a, QWidget* b) {
    const int ia = a->property("zvTabIndex").toInt(), ib = b->property("zvTabIndex").toInt();
    if (ia != ib) return ia < ib;
    return a->property("zvTabVez").toInt() > b->property("zvTabVez").toInt();
  });
  for (size_t i = 1; i < ws.size(); ++i) QWidget::setTabOrder(ws[i - 1], ws[i]);
}

}  // namespace

// The common properties; false when the property isn't one of them.
bool SistemaJanelas::MembroComum(TipoControle tipo, QWidget* w, const Texto& prop, const Texto& primeiro,
                                 const Texto& valor) {
  if (prop == u".ENABLED") {
    int v = Logico(*zv, valor);
    if (v >= 0) w->setEnabled(v == 1);
  } else if (prop == u".VISIBLE" || (tipo == TipoControle::Botao && Contem(Maiusculas(primeiro), u"VISIBLE"))) {
    int v = Logico(*zv, valor);
    if (v >= 0) w->setVisible(v == 1);
  } else if (prop == u".BACKCOLOR") {
    CorDeFundo(w, CorDeValor(*zv, valor));
  } else if (prop == u".FORECOLOR") {
    CorDeFrente(w, CorDeValor(*zv, valor));
  } else if (prop == u".FONTNAME") {
    QFont f = w->font();
    f.setFamily(Q(TextoT(*zv, valor)));
    w->setFont(f);
  } else if (prop == u".FONTSIZE") {
    QFont f = w->font();
    double s = Num(*zv, valor);
    if (s > 0) f.setPointSizeF(s);
    w->setFont(f);
  } else if (prop == u".BOLD" || prop == u".ITALIC") {
    QFont f = w->font();
    bool sim = Logico(*zv, valor) == 1;
    if (prop == u".BOLD")
      f.setBold(sim);
    else
      f.setItalic(sim);
    w->setFont(f);
  } else if (prop == u".SETFOCUS") {
    if (tipo != TipoControle::Rotulo) w->setFocus(Qt::OtherFocusReason);
  } else if (prop == u".TABINDEX") {
    if (Info(tipo).focavel) {
      static int vez = 0;
      w->setProperty("zvTabIndex", static_cast<int>(zv->ValorNumerico(valor.empty() ? u"0" : valor).ComoInt16()));
      w->setProperty("zvTabVez", ++vez);
      OrdenaTabulacao(w->parentWidget());
    }
  } else if (prop == u".TIP") {
    if (tipo != TipoControle::Botao) w->setToolTip(Q(TextoT(*zv, valor)));
  } else if (prop == u".PARENT") {
    // Into an Image control; an unknown name does nothing.
    PoeNaImagem(*this, w, TextoT(*zv, valor));
  } else {
    return false;
  }
  return true;
}

bool SistemaJanelas::MembroGrade(QWidget* w, const Texto& prop, const Texto& valor) {
  if (prop == u".LIN")
    w->move(w->x(), PxLinha(Num(*zv, valor)));
  else if (prop == u".COL")
    w->move(PxColuna(Num(*zv, valor)), w->y());
  else if (prop == u".HEIGHT")
    w->resize(w->width(), PxLinha(Num(*zv, valor)));
  else if (prop == u".WIDTH")
    w->resize(PxColuna(Num(*zv, valor)), w->height());
  else
    return false;
  return true;
}

void SistemaJanelas::Membro(TipoControle tipo, int slot, const std::vector<Texto>& a) {
  TabelaControles& t = controles[static_cast<size_t>(tipo)];
  auto k = static_cast<size_t>(slot);
  QWidget* w = t.instancias[k];
  if (!w) return;
  Texto primeiro = Apara(Arg(a, 0));
  Texto prop = PalavraDoMembro(primeiro);
  Texto valor = Arg(a, 2);
  const Texto nome = t.nomes[k];
  switch (tipo) {
    case TipoControle::Botao: {
      auto* b = static_cast<BtnEsp*>(w);
      if (prop == u".CAPTION") {
        b->setText(Q(TextoNT(*zv, valor)));
        return;
      }
      if (prop == u".PICTURE") {
        if (!Figura(*zv, b, valor)) zv->ErroExecucao(msg::FiguraForma2);
        return;
      }
      break;
    }
    case TipoControle::Rotulo: {
      auto* r = static_cast<Rot*>(w);
      if (prop == u".TXT") {
        r->setText(Q(TextoNT(*zv, valor)));
        return;
      }
      if (prop == u".ALIGNMENT") {
        int n = NumInt(*zv, valor);
        r->setAlignment((n == 1 ? Qt::AlignRight : n == 2 ? Qt::AlignHCenter : Qt::AlignLeft) | Qt::AlignTop);
        return;
      }
      break;
    }
    case TipoControle::Texto:
      if (MembroTexto(slot, prop, a)) return;
      break;
    case TipoControle::Combo: {
      auto* c = static_cast<SpCombo*>(w);
      if (prop == u".ADD") {
        // The text stands behind the first blank of the first argument.
        size_t b = primeiro.find(u' ');
        c->AdicionaItem(Q(TextoNT(*zv, b == NPOS ? Texto() : Apara(primeiro.substr(b + 1)))));
        return;
      }
      if (prop == u".TXT") {
        c->DefineTexto(Q(TextoNT(*zv, valor)));
        EscreveEspelho(tipo, slot);
        return;
      }
      if (prop == u".LINES") {
        // ListHeight = value x 210 twips: 14 pixels a line.
        c->DefineAlturaLista(ParaInt(Num(*zv, valor) * 14));
        return;
      }
      break;
    }
    case TipoControle::Frame:
      // Only these, and the removal.
      if (prop != u".VISIBLE" && prop != u".TIP" && prop != u".PARENT") return;
      break;
    case TipoControle::Barra: {
      auto* b = static_cast<BarraRolagem*>(w);
      int n = NumInt(*zv, valor);
      if (prop == u".MAX") {
        b->setMaximum(n);
      } else if (prop == u".SMALLSTEP") {
        b->setSingleStep(n);
      } else if (prop == u".LARGESTEP") {
        b->setPageStep(n);
      } else if (prop == u".VALUE") {
        b->setValue(n);
        EscreveEspelho(tipo, slot);
      } else if (prop != u".ENABLED" && prop != u".VISIBLE" && prop != u".SETFOCUS" && prop != u".TABINDEX" &&
                 prop != u".PARENT") {
        return;  // no colours, font or tip
      } else {
        break;
      }
      return;
    }
    case TipoControle::Mascara: {
      auto* m = static_cast<CaixaTexto*>(w);
      if (prop == u".TXT") {
        Texto v = TextoNT(*zv, valor);
        m->setText(Q(v.empty() ? MascaraVazia(T(m->property("zvMascara").toString())) : v));
        EscreveEspelho(tipo, slot);
        return;
      }
      if (prop == u".MASK") {
        Texto mascara = TextoT(*zv, valor);
        m->setProperty("zvMascara", Q(mascara));
        m->mascara = Q(mascara);
        m->setText(Q(MascaraVazia(mascara)));
        EscreveEspelho(tipo, slot);
        return;
      }
      if (prop == u".SELECT") {
        m->selectAll();
        return;
      }
      if (prop == u".HEIGHT") {
        m->resize(m->width(), PxLinha(Num(*zv, valor)));
        return;
      }
      break;
    }
    case TipoControle::Moeda: {
      auto* m = static_cast<EntraNum*>(w);
      if (prop == u".HEIGHT") {
        m->resize(m->width(), PxLinha(Num(*zv, valor)));
      } else if (prop == u".DECIMALPLACES") {
        m->DefineCasas(NumInt(*zv, valor));
      } else if (prop == u".VALUE") {
        m->DefineValor(Num(*zv, valor));
      } else if (prop == u".FONTNAME" || prop == u".FONTSIZE" || prop == u".BOLD" || prop == u".ITALIC") {
        // no font properties
      } else {
        break;
      }
      return;
    }
    case TipoControle::Calendario: {
      auto* c = static_cast<Calendario*>(w);
      if (prop == u".TXT") {
        QDateTime m;
        if (LeData(TextoNT(*zv, valor), LocaleDatas(), m)) c->setDate(m.date());
        EscreveEspelho(tipo, slot);
        return;
      }
      if (prop == u".BACKCOLOR" || prop == u".FORECOLOR" || prop == u".FONTNAME" || prop == u".FONTSIZE" ||
          prop == u".BOLD" || prop == u".ITALIC")
        return;  // no colours or font
      break;
    }
    case TipoControle::Check:
    case TipoControle::Radio:
      if (prop == u".VALUE") {
        // Setting the value is a click, as on the original platform: the
        // variables follow.
        Texto v = Maiusculas(TextoNT(*zv, valor));
        bool on = v == u"TRUE" || (v != u"FALSE" && Num(*zv, valor) != 0);
        static_cast<QAbstractButton*>(w)->setChecked(on);
        EscreveMarca(tipo, slot);
        return;
      }
      break;
    default:
      break;
  }
  MembroComum(tipo, w, prop, primeiro, valor);
}

bool SistemaJanelas::MembroTexto(int slot, const Texto& prop, const std::vector<Texto>& a) {
  TabelaControles& t = controles[static_cast<size_t>(TipoControle::Texto)];
  auto k = static_cast<size_t>(slot);
  bool multi = t.multiLinha[k];
  QWidget* w = t.instancias[k];
  auto* linha = multi ? nullptr : static_cast<CaixaTexto*>(w);
  auto* rico = multi ? static_cast<TextoMultiLinha*>(w) : nullptr;
  Texto valor = Arg(a, 2);
  if (prop == u".TXT") {
    QString v = Q(TextoNT(*zv, valor));
    if (multi)
      rico->setPlainText(v.replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
    else
      linha->setText(v);
    zv->GravaVariavel(t.nomes[k] + u".Txt", Valor::DeTexto(T(multi ? TextoDoRico(rico) : linha->text())), false);
  } else if (prop == u".SELECT") {
    // The start stands behind the first blank of the first argument:
    // "Name.Select 1, 5, Arial, 14, BOLD, 255".
    Texto primeiro = Apara(Arg(a, 0));
    size_t b = primeiro.find(u' ');
    Texto inicio = b == NPOS ? Texto() : Apara(primeiro.substr(b + 1));
    if (multi) {
      if (inicio.empty() || Arg(a, 1).empty()) {
        rico->selectAll();
      } else {
        QTextCursor c = rico->textCursor();
        int ini = NumInt(*zv, inicio) - 1, tam = NumInt(*zv, Arg(a, 1));
        int total = static_cast<int>(rico->toPlainText().size());
        ini = std::clamp(ini, 0, total);
        c.setPosition(ini);
        c.setPosition(std::clamp(ini + tam, 0, total), QTextCursor::KeepAnchor);
        QTextCharFormat f;
        if (!Arg(a, 2).empty()) f.setFontFamilies({Q(TextoT(*zv, Arg(a, 2)))});
        if (!Arg(a, 3).empty()) f.setFontPointSize(Num(*zv, Arg(a, 3)));
        // The word BOLD as written, not a value.
        if (!Arg(a, 4).empty()) f.setFontWeight(Maiusculas(Apara(Arg(a, 4))) == u"BOLD" ? QFont::Bold : QFont::Normal);
        if (!Arg(a, 5).empty()) f.setForeground(CorDeValor(*zv, Arg(a, 5)));
        c.mergeCharFormat(f);
        rico->setTextCursor(c);
      }
    } else {
      linha->selectAll();
    }
  } else if (prop == u".FORECOLOR" && multi) {
    QTextCursor c = rico->textCursor();
    c.select(QTextCursor::Document);
    QTextCharFormat f;
    f.setForeground(CorDeValor(*zv, valor));
    c.mergeCharFormat(f);
    c.clearSelection();
    rico->setTextCursor(c);
  } else if (prop == u".ALIGNMENT") {
    int n = NumInt(*zv, valor);
    if (multi)
      rico->setAlignment(Alinhamento(n) & Qt::AlignHorizontal_Mask);
    else
      linha->setAlignment(Alinhamento(n));
  } else if (prop == u".MAX") {
    int n = NumInt(*zv, valor);
    if (!multi) linha->setMaxLength(n > 0 ? n : 32767);
  } else if (prop == u".RIGHTMARGIN") {
    if (multi) {
      rico->setLineWrapMode(QTextEdit::FixedPixelWidth);
      rico->setLineWrapColumnOrWidth(PxColuna(Num(*zv, valor)));
    }
  } else if (prop == u".CURSORPOS") {
    int n = NumInt(*zv, valor);
    if (multi) {
      QTextCursor c = rico->textCursor();
      c.setPosition(std::clamp(n, 0, static_cast<int>(rico->toPlainText().size())));
      rico->setTextCursor(c);
    } else {
      linha->setCursorPosition(n);
    }
    w->setFocus(Qt::OtherFocusReason);
  } else if (prop == u".TEXTRTF") {
    // With "=": the formatted text, on a multi-line text only.
    if (multi && Arg(a, 1) == u"=") LeRtf(ParaCp1252(TextoNT(*zv, valor)), *rico->document());
  } else if (prop == u".NUMERIC") {
    if (!multi) linha->numerico = Logico(*zv, valor) == 1;
  } else {
    return false;
  }
  return true;
}

// ---- The commands ----------------------------------------------------------------

Valor ComandoDeControle(Interpretador& zv, const Texto& argumentos, TipoControle tipo, const FormasDeControle& f) {
  bool numerico = false;
  // Read through Arg, which gives an empty text past the last.
  std::vector<Texto> a = zv.SeparaArgumentos(argumentos, 51, true, numerico, true);
  SistemaJanelas& s = Janelas(zv);
  s.LimpaDescartados();
  Texto primeiro = Apara(Arg(a, 0));
  if (primeiro.empty()) return Valor();
  if (primeiro.find(u'.') == NPOS) return f.cria(s, a);
  Texto nome = NomeDoMembro(zv, primeiro);
  int slot = s.controles[static_cast<size_t>(tipo)].Acha(Maiusculas(nome));
  if (slot < 0) {
    if (f.semControle) f.semControle(nome);
    return Valor();
  }
  if (Contem(primeiro, u"Remove")) {
    if (f.aoRemover) f.aoRemover(s, slot);
    s.LiberaControle(tipo, slot, slot > 0);
    return Valor();
  }
  return f.membro(s, slot, a);
}

namespace {

Valor CriaControle(SistemaJanelas& s, TipoControle tipo, const std::vector<Texto>& a) {
  switch (tipo) {
    case TipoControle::Botao:
      return s.CriaBotao(a);
    case TipoControle::Texto:
      return s.CriaTexto(a);
    case TipoControle::Rotulo:
      return s.CriaRotulo(a);
    case TipoControle::Check:
    case TipoControle::Radio:
      return s.CriaMarca(tipo, a);
    case TipoControle::Combo:
      return s.CriaCombo(a);
    case TipoControle::Frame:
      return s.CriaFrame(a);
    case TipoControle::Barra:
      return s.CriaBarra(a);
    case TipoControle::Mascara:
      return s.CriaMascara(a);
    case TipoControle::Moeda:
      return s.CriaMoeda(a);
    case TipoControle::Calendario:
      return s.CriaCalendario(a);
    case TipoControle::Box:
      return s.CriaBox(a);
    default:
      return Valor();
  }
}

Valor Controle(Interpretador& zv, const Texto& argumentos, TipoControle tipo) {
  FormasDeControle f;
  f.cria = [tipo](SistemaJanelas& s, const std::vector<Texto>& a) { return CriaControle(s, tipo, a); };
  f.membro = [tipo](SistemaJanelas& s, int slot, const std::vector<Texto>& a) {
    Texto primeiro = Apara(Arg(a, 0));
    // Without "=", .TextRTF is a result: Text(Name.TextRTF).
    if (tipo == TipoControle::Texto && Arg(a, 1) != u"=" && Contem(Maiusculas(primeiro), u".TEXTRTF")) {
      auto* rico = dynamic_cast<QTextEdit*>(s.controles[static_cast<size_t>(tipo)].instancias[size_t(slot)].data());
      return Valor::TextoComAspas(rico ? DeCp1252(EscreveRtf(*rico->document())) : Texto());
    }
    if (tipo == TipoControle::Box) return s.MembroBox(slot, a);
    s.Membro(tipo, slot, a);
    return Valor();
  };
  return ComandoDeControle(zv, argumentos, tipo, f);
}

Valor CmdButton(Interpretador& zv, const Texto& a) { return Controle(zv, a, TipoControle::Botao); }
Valor CmdText(Interpretador& zv, const Texto& a) { return Controle(zv, a, TipoControle::Texto); }
Valor CmdLabel(Interpretador& zv, const Texto& a) { return Controle(zv, a, TipoControle::Rotulo); }
Valor CmdCheck(Interpretador& zv, const Texto& a) { return Controle(zv, a, TipoControle::Check); }
Valor CmdRadio(Interpretador& zv, const Texto& a) { return Controle(zv, a, TipoControle::Radio); }
Valor CmdCombo(Interpretador& zv, const Texto& a) { return Controle(zv, a, TipoControle::Combo); }
Valor CmdFrame(Interpretador& zv, const Texto& a) { return Controle(zv, a, TipoControle::Frame); }
Valor CmdScrollBar(Interpretador& zv, const Texto& a) { return Controle(zv, a, TipoControle::Barra); }
Valor CmdMask(Interpretador& zv, const Texto& a) { return Controle(zv, a, TipoControle::Mascara); }
Valor CmdCurrency(Interpretador& zv, const Texto& a) { return Controle(zv, a, TipoControle::Moeda); }
Valor CmdCalendar(Interpretador& zv, const Texto& a) { return Controle(zv, a, TipoControle::Calendario); }
Valor CmdBox(Interpretador& zv, const Texto& a) { return Controle(zv, a, TipoControle::Box); }

}  // namespace

// ButtonStyle Property = value: skin 0, for the Type0 buttons made later.
// The state pictures are kept for the skinned button to come.
Valor CmdButtonStyle(Interpretador& zv, const Texto& args) {
  std::vector<Texto> a = zv.SeparaArgumentos(args, 51, true);
  SistemaJanelas& s = Janelas(zv);
  Texto m = Maiusculas(Arg(a, 0));
  Texto v = Arg(a, 2);
  static const char16_t* const kEstados[] = {u"BTNUP", u"BTNHIGH", u"BTNFOCUS", u"BTNDOWN", u"BTNDISABLED"};
  for (size_t i = 0; i < 5; ++i)
    if (Contem(m, kEstados[i])) {
      Texto arquivo = ResolveArquivo(zv, TextoT(zv, v));
      if (arquivo.empty()) throw FalhaHost(falha::ArquivoNaoEncontrado);
      s.Estilo0().figuras[i] = arquivo;
    }
  if (Contem(m, u"BACKCOLOR")) {
    s.Estilo0().fundo = CorDe(Num(zv, v));
    s.Estilo0().temFundo = true;
  }
  if (Contem(m, u"FORECOLOR")) {
    s.Estilo0().frente = CorDe(Num(zv, v));
    s.Estilo0().temFrente = true;
  }
  return Valor();
}

void RegistraControles(TabelaComandos& t) {
  t.Define(u"ButtonStyle", CmdButtonStyle);
  t.Define(u"Button", CmdButton);
  t.Define(u"Text", CmdText);
  t.Define(u"Label", CmdLabel);
  t.Define(u"Check", CmdCheck);
  t.Define(u"Radio", CmdRadio);
  t.Define(u"Combo", CmdCombo);
  t.Define(u"Frame", CmdFrame);
  t.Define(u"ScrollBar", CmdScrollBar);
  t.Define(u"Mask", CmdMask);
  t.Define(u"Currency", CmdCurrency);
  t.Define(u"Calendar", CmdCalendar);
  t.Define(u"Box", CmdBox);
}

}  // namespace zv
