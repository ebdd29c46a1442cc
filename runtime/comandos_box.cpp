// The Box command: the grid's creation, its members and getters, and what
// its clicks, keys and edits write for the program.
#include <QApplication>
#include <QJsonObject>
#include <QMouseEvent>
#include <cstdio>

#include "controls/grade.h"
#include "library/texto_qt.h"
#include "runtime/argumentos.h"
#include "runtime/headless_host.h"
#include "runtime/janelas.h"
#include "runtime/mensagens.h"

namespace zv {

namespace {


// The value of .Add, .Select and .GetText: behind the first blank of the
// first argument.
Texto DepoisDoBranco(const Texto& primeiro) {
  size_t b = primeiro.find(u' ');
  return b == NPOS ? Texto() : Apara(primeiro.substr(b + 1));
}

// A number as a 32-bit value, whatever the program gave.
int Inteiro(double v) {
  if (!(v > -2147483648.0)) return v != v ? 0 : INT32_MIN;
  if (v > 2147483647.0) return INT32_MAX;
  return static_cast<int>(v);
}

// A colour argument: empty or out of range is the box's own (-1).
int64_t Cor(Interpretador& zv, const Texto& t) {
  if (t.empty()) return -1;
  double v = Num(zv, t);
  return v >= -1 && v <= 4294967295.0 ? static_cast<int64_t>(v) : -1;
}

// A Box without a Height: ten lines, which holds eight rows of cells.
constexpr double kAlturaPadrao = 10;
// The room kept to the window's right edge by a box as wide as it can be.
constexpr int kMargemDireita = 8;

// What Config receives when Box calls it with a font alone: white cells,
// black text, a dark blue selection with white text, a light grey panel
// whose lines part the cells.
constexpr QRgb kFundo = 0xffffffff, kFrente = 0xff000000;
constexpr QRgb kFundoSel = 0xff316ac5, kFrenteSel = 0xffffffff, kPainel = 0xffc8ccd4;

QRgb Rgb(double v) {
  if (!(v >= -2147483648.0 && v <= 4294967295.0)) v = 0;
  return CorDe(v).rgb();
}

}  // namespace

Valor SistemaJanelas::CriaBox(const std::vector<Texto>& a) {
  TabelaControles& t = controles[static_cast<size_t>(TipoControle::Box)];
  Texto nome = TextoT(*zv, Arg(a, 0));
  int slot = t.Livre();
  auto k = static_cast<size_t>(slot);
  t.nomes[k] = nome;
  t.donos[k] = nomeFormAtual;
  auto* b = new NovoBox(Atual()->Cliente());
  t.instancias[k] = b;
  // The mirror, Name.Txt(n), is declared by .Activate, when the columns are known.
  b->relata = [this, slot](const DadosEvento& e) { RelataBox(slot, e); };
  b->avisa = [this](int falha, const QString& texto, int coluna) {
    if (falha == NovoBox::kColunaAlem)
      zv->CaixaCritica(msg::Formata(msg::ColunaAlem, T(texto), InteiroParaTexto(coluna)));
    else
      zv->CaixaCritica(msg::SelecaoInvalida);
  };
  b->Config(QStringLiteral("Tahoma"), 10, kFundo, kFrente, kFundoSel, kFrenteSel, kPainel, false);
  b->atributosAtivos = true;
  double linhas = Arg(a, 3).empty() ? kAlturaPadrao : Num(*zv, Arg(a, 3));
  int left = PxColuna(Num(*zv, Arg(a, 2))), top = PxLinha(Num(*zv, Arg(a, 1)));
  int largura = std::max(100, Atual()->width() - left - kMargemDireita);
  b->setGeometry(left, top, largura, static_cast<int>(std::clamp(linhas * linSize * 1.7, 1.0, 30000.0)));
  b->show();
  b->setProperty("zvTabIndex", static_cast<int>(proximoTabIndex++));
  return Valor();
}

Valor SistemaJanelas::MembroBox(int slot, const std::vector<Texto>& a) {
  TabelaControles& t = controles[static_cast<size_t>(TipoControle::Box)];
  auto k = static_cast<size_t>(slot);
  auto* b = static_cast<NovoBox*>(t.instancias[k].data());
  if (!b) return Valor();
  Texto primeiro = Apara(Arg(a, 0));
  Texto resto = primeiro.substr(primeiro.find(u'.'));
  Texto prop = Maiusculas(resto.substr(0, resto.find(u' ')));
  const Texto nome = t.nomes[k];
  if (prop == u".TITLE") {
    Texto al = Maiusculas(Apara(TextoT(*zv, Arg(a, 3))));
    int alinhamento = al == u"RIGHT" ? 1 : al == u"CENTER" ? 2 : 0;
    int tipo = Maiusculas(Apara(TextoT(*zv, Arg(a, 4)))) == u"NUMERIC" ? 1 : 0;
    // The column table holds 50: the 51st is out of its range.
    if (!b->Titulo(Q(TextoT(*zv, Arg(a, 1))), Inteiro(Num(*zv, Arg(a, 2))), alinhamento, tipo))
      throw FalhaHost(falha::ForaDoIndice);
  } else if (prop == u".ACTIVATE") {
    Texto v = Maiusculas(Apara(TextoNT(*zv, Arg(a, 2))));
    zv->CriaVetor(nome + u".Txt(" + InteiroParaTexto(b->TotalColunas()) + u")", u"String");
    // As wide as its columns and the bar, and no wider than the window.
    int cabe = std::max(100, b->parentWidget()->width() - b->x() - kMargemDireita);
    int colunas = 0;
    for (int c = 0; c < b->TotalColunas(); ++c) colunas += LarguraPx(b->modelo.Coluna(c).largura) + 1;
    b->resize(std::min(cabe, colunas + 17), b->height());
    b->Ativa(v != u"FALSE");
    b->show();
  } else if (prop == u".ADD") {
    Texto fonte = TextoT(*zv, Arg(a, 3));
    b->Add(Q(TextoNT(*zv, DepoisDoBranco(primeiro))), Cor(*zv, Arg(a, 1)), Cor(*zv, Arg(a, 2)), Q(fonte),
           Num(*zv, Arg(a, 4)), Maiusculas(Apara(Arg(a, 5))) == u"BOLD");
  } else if (prop == u".NEWLINE") {
    b->BoxNew();
  } else if (prop == u".END") {
    b->AddEnd();
  } else if (prop == u".SELECT") {
    b->Selected(Inteiro(Num(*zv, DepoisDoBranco(primeiro))));
  } else if (prop == u".CLS") {
    b->Clear();
  } else if (prop == u".ALTERCELL") {
    Texto v = Maiusculas(Apara(TextoNT(*zv, Arg(a, 2))));
    if (v == u"TRUE" || v == u"FALSE") b->alteraCelula = v == u"TRUE";
  } else if (prop == u".TOTALITEMS") {
    return Valor::DeInt32(b->ListCount());
  } else if (prop == u".COLBOXREF") {
    return Valor::DeInt32(b->ColBoxRef());
  } else if (prop == u".LINBOXREF") {
    return Valor::DeInt32(b->LinBoxRef());
  } else if (prop == u".LINLISTREF") {
    return Valor::DeInt32(b->LinVetRef());
  } else if (prop == u".TOTALLINBOX") {
    return Valor::DeInt32(b->TotalLinhas());
  } else if (prop == u".TOTALCOLBOX") {
    return Valor::DeInt32(b->TotalColunas());
  } else if (prop == u".GETTEXT") {
    int l = Inteiro(Num(*zv, DepoisDoBranco(primeiro))), c = Inteiro(Num(*zv, Arg(a, 1)));
    return Valor::TextoComAspas(T(b->LeVetor(l, c)));
  } else if (prop == u".BACKCOLOR" || prop == u".FORECOLOR") {
    // The box's own colours: the cells' defaults, shown at once.
    b->DefineCorPadrao(prop == u".BACKCOLOR", Rgb(Num(*zv, Arg(a, 2))));
  } else if (prop == u".SETFOCUS" || prop == u".TABINDEX" || prop == u".TIP" || prop == u".PARENT" ||
             prop == u".ENABLED" || prop == u".VISIBLE") {
    MembroComum(TipoControle::Box, b, prop, primeiro, Arg(a, 2));
  }
  return Valor();
}

// A click on a row: the row's texts into Name.Txt(i), then RefIndex, a
// pause, ObjectValue and the last box click, in the order a polling
// program relies on (the texts are there before ObjectValue changes).
void SistemaJanelas::CliqueBox(int slot) {
  TabelaControles& t = controles[static_cast<size_t>(TipoControle::Box)];
  auto k = static_cast<size_t>(slot);
  auto* b = static_cast<NovoBox*>(t.instancias[k].data());
  if (!b) return;
  const Texto nome = t.nomes[k];
  zv->GravaVariavel(u"RefIndex", Valor::DeInt32(slot), false);
  for (int i = 0; i < b->TotalColunas(); ++i)
    zv->GravaVariavel(nome + u".Txt(" + InteiroParaTexto(i) + u")", Valor::DeTexto(T(b->Arg(i))), false);
  zv->host().Dorme(100);
  zv->GravaVariavel(u"ObjectValue", Valor::DeTexto(nome), false);
  zv->ultimoCliqueCaixa = u"CLICKBOX";
}

void SistemaJanelas::RelataBox(int slot, const DadosEvento& e) {
  if (encerrada_) return;
  TabelaControles& t = controles[static_cast<size_t>(TipoControle::Box)];
  auto k = static_cast<size_t>(slot);
  if (k >= t.nomes.size() || t.nomes[k].empty()) return;
  const Texto nome = t.nomes[k];
  switch (e.tipo) {
    case EventoControle::Clique:
      CliqueBox(slot);
      break;
    case EventoControle::DuploClique:
      zv->GravaVariavel(u"RefIndex", Valor::DeInt32(slot), false);
      zv->GravaVariavel(u"ObjectValue", Valor::DeTexto(nome), false);
      zv->ultimoCliqueCaixa = u"DOUBLECLICKBOX";
      break;
    case EventoControle::TeclaDesce:
      TeclaDesce(e.tecla, e.shift);
      if (e.tecla == 38 || e.tecla == 40) {
        CliqueBox(slot);
      } else if (e.tecla == 13) {
        zv->GravaVariavel(u"ObjectValue", Valor::DeTexto(nome), false);
        zv->ultimoCliqueCaixa = u"DOUBLECLICKBOX";
      }
      break;
    case EventoControle::TeclaSobe:
      TeclaSobe(e.tecla);
      break;
    case EventoControle::Mudou:
      eventos.ultimaMudancaBox = u"Altered";
      break;
    case EventoControle::GanhouFoco:
      zv->GravaVariavel(u"GotFocus", Valor::DeTexto(nome), false);
      break;
    case EventoControle::PerdeuFoco:
      zv->GravaVariavel(u"LostFocus", Valor::DeTexto(nome), false);
      break;
  }
}

// ---- The event script and the window dump --------------------------------------------

namespace {

void Aviso(int linha, const QString& texto) {
  std::fprintf(stderr, msg::execucao::kLinhaDoRoteiro, linha, texto.toUtf8().constData());
}

void Mouse(QWidget* w, QEvent::Type tipo, QPoint p) {
  Qt::MouseButtons estado = tipo == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
  QMouseEvent e(tipo, QPointF(p), w->mapToGlobal(QPointF(p)), Qt::LeftButton, estado, Qt::NoModifier);
  QCoreApplication::sendEvent(w, &e);
}

// A user's click (or double click) at a point of the box.
void Clica(QWidget* w, QPoint p, bool duplo) {
  QWidget* janela = w->window();
  if (janela->isVisible() && !janela->isActiveWindow()) {
    janela->activateWindow();
    QCoreApplication::processEvents();
  }
  Mouse(w, QEvent::MouseButtonPress, p);
  Mouse(w, QEvent::MouseButtonRelease, p);
  if (duplo) {
    Mouse(w, QEvent::MouseButtonDblClick, p);
    Mouse(w, QEvent::MouseButtonRelease, p);
  }
}

}  // namespace

// {"row":N,"in":BOX} clicks data row N (the box scrolls to it first, as a
// user would; "double":true for a double click, and {"click":BOX,"row":N}
// or {"dblclick":BOX,"row":N} say the same), {"header":N,"in":BOX} the heading of column N,
// {"edit":TEXT,"in":BOX,"row":N,"column":N} types TEXT into a cell by a
// double click, the text and Enter.
void SistemaJanelas::EntregaBox(const QJsonObject& a, int linha) {
  auto s = [&](const char* k) { return a.value(QLatin1String(k)).toString(); };
  // The box is "in", or the name of a click: {"click":BOX,"row":N}.
  bool duplo = a.value(QLatin1String("double")).toBool() || a.contains(QLatin1String("dblclick"));
  QString nome = a.contains(QLatin1String("in"))         ? s("in")
                 : a.contains(QLatin1String("dblclick")) ? s("dblclick")
                                                         : s("click");
  auto* b = principalFeita_ ? dynamic_cast<NovoBox*>(AchaControle(nome, QStringLiteral("Box"), s("window"))) : nullptr;
  if (!b) return Aviso(linha, QString::fromUtf8(msg::execucao::kSemBox) + nome);
  if (a.contains(QLatin1String("header"))) {
    QRect r = b->RetCabecalho(a.value(QLatin1String("header")).toInt());
    if (r.isEmpty()) return Aviso(linha, QString::fromUtf8(msg::execucao::kSemCabecalho));
    // Left of the edge that a drag would take.
    return Clica(b, QPoint(r.left() + r.width() / 3, r.center().y()), false);
  }
  int n = a.value(QLatin1String("row")).toInt(-1);
  int c = a.value(QLatin1String("column")).toInt(0);
  int lv = b->MostraLinha(n);
  if (lv < 0 && n >= b->PrimeiraLinha() && n < b->PrimeiraLinha() + b->TotalLinhas()) lv = n - b->PrimeiraLinha();
  QRect r = b->RetCelula(lv, c);
  if (r.isEmpty()) return Aviso(linha, QString::fromUtf8(msg::execucao::kSemLinha) + QString::number(n));
  if (!a.contains(QLatin1String("edit"))) return Clica(b, r.center(), duplo);
  Clica(b, r.center(), true);
  if (!b->EditaCelula(lv, c, s("edit"))) return Aviso(linha, QString::fromUtf8(msg::execucao::kCelulaTravada));
  QWidget* editor = QApplication::focusWidget();
  if (!editor) editor = b;
  QKeyEvent p(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QStringLiteral("\r"));
  QKeyEvent l(QEvent::KeyRelease, Qt::Key_Return, Qt::NoModifier, QStringLiteral("\r"));
  QCoreApplication::sendEvent(editor, &p);
  QCoreApplication::sendEvent(editor, &l);
}

std::string CamposBox(QWidget* w) {
  auto* b = dynamic_cast<NovoBox*>(w);
  if (!b) return {};
  auto n = [](const char* k, int v) { return std::string(",\"") + k + "\":" + std::to_string(v); };
  std::string s = n("rows", b->ListCount()) + n("columns", b->TotalColunas()) + n("first_row", b->PrimeiraLinha()) +
                  n("selected", b->LinhaSelecionada());
  int oc = b->modelo.ColunaOrdem();
  s += ",\"sort\":{\"column\":" + std::to_string(oc) + ",\"direction\":\"" +
       (oc < 0 ? "none" : b->modelo.UltimaAscendente() ? "ascending" : "descending") + "\"}";
  s += ",\"cells\":[";
  for (int r = 0; r < b->TotalLinhas(); ++r) {
    s += r ? ",[" : "[";
    for (int c = 0; c < b->ColunasVisiveis(); ++c)
      s += (c ? ",\"" : "\"") + EscapaJson(T(b->LeCelula(r, c))) + "\"";
    s += "]";
  }
  return s + "]";
}

}  // namespace zv
