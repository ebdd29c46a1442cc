// The common dialogues (DialogBox) and the input form (GetText). On the
// desktop they are Qt's; headless each is a JSON line and takes the next
// scripted answer as what the user chose.
#include <QColorDialog>
#include <QFileDialog>
#include <QFontDialog>
#include <QPrintDialog>
#include <QPrinter>
#include <QInputDialog>

#include "library/texto_qt.h"
#include "runtime/argumentos.h"
#include "runtime/dialogos.h"
#include "runtime/headless_host.h"
#include "runtime/janela_host.h"
#include "runtime/janelas.h"

namespace zv {

HostConsole* Console(Interpretador& zv) {
  auto* h = dynamic_cast<HostConsole*>(&zv.host());
  auto* j = dynamic_cast<HostJanela*>(h);
  return (h && (!j || j->SemTela())) ? h : nullptr;
}

bool Responde(HostConsole& h, const char* tipo, const Texto& titulo, const Texto& texto, const Texto& padrao,
              std::string& resposta) {
  h.EscreveLinha(std::string("{\"dialog\":\"") + tipo + "\",\"title\":\"" + EscapaJson(titulo) + "\",\"text\":\"" +
                 EscapaJson(texto) + "\",\"default\":\"" + EscapaJson(padrao) + "\"}");
  if (!h.ProximaResposta(resposta)) return false;
  std::string m;
  for (char c : resposta) m += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return m != "cancel";
}

namespace {

// "Name;size;bold;italic" or a font of the dialogue, as RetStr shows it:
// the name in 30 columns, the size in 3, bold and italic in 10 each.
Texto TextoFonte(const QString& nome, int tamanho, bool negrito, bool italico) {
  auto campo = [](QString t, int largura) { return t.leftJustified(largura, QLatin1Char(' '), true); };
  QString s = campo(nome, 30) + campo(QString::number(tamanho), 3) +
              campo(negrito ? QStringLiteral("True") : QStringLiteral("False"), 10) +
              campo(italico ? QStringLiteral("True") : QStringLiteral("False"), 10);
  return s.toStdU16String();
}

Valor CmdGetText(Interpretador& zv, const Texto& args) {
  std::vector<Texto> a = zv.SeparaArgumentos(args, 51);
  Texto prompt = TextoT(zv, Arg(a, 0)), padrao = TextoT(zv, Arg(a, 1));
  Texto titulo = zv.TituloPrograma();
  Texto r;
  if (HostConsole* h = Console(zv)) {
    std::string resp;
    bool ok = Responde(*h, "input", titulo, prompt, padrao, resp);
    // No answer left: the user pressed OK on the default.
    r = ok ? U(resp) : (resp.empty() ? padrao : Texto(u"CANCELED"));
  } else {
    Janelas(zv).Principal();
    bool ok = false;
    QString t = QInputDialog::getText(nullptr, Q(titulo), Q(prompt), QLineEdit::Normal, Q(padrao), &ok);
    r = ok ? t.toStdU16String() : Texto(u"CANCELED");
  }
  return Valor::TextoComAspas(r);
}

Valor CmdDialogBox(Interpretador& zv, const Texto& args) {
  std::vector<Texto> a = zv.SeparaArgumentos(args, 51);
  Texto tipo = Maiusculas(Apara(Arg(a, 0)));
  HostConsole* h = Console(zv);
  if (!h) Janelas(zv).Principal();
  std::string resp;
  if (tipo == u"OPEN" || tipo == u"SAVE") {
    Janelas(zv).eventos.botoesMouse = u"00";
    Texto titulo = TextoT(zv, Arg(a, 1)), nome = TextoT(zv, Arg(a, 2)), padrao = TextoT(zv, Arg(a, 3));
    Texto inicio = TextoT(zv, Arg(a, 4));
    Texto filtro = nome + u"|" + padrao + u";";
    Texto escolhido;
    if (h) {
      if (!Responde(*h, tipo == u"OPEN" ? "open" : "save", titulo, filtro, inicio, resp)) return Valor();
      escolhido = U(resp);
    } else {
      QString f = Q(nome) + QStringLiteral(" (") + Q(padrao).replace(QLatin1Char(';'), QLatin1Char(' ')) + QStringLiteral(")");
      QString c = tipo == u"OPEN" ? QFileDialog::getOpenFileName(nullptr, Q(titulo), Q(inicio), f)
                                  : QFileDialog::getSaveFileName(nullptr, Q(titulo), Q(inicio), f);
      if (c.isEmpty()) return Valor();
      escolhido = c.toStdU16String();
    }
    zv.GravaVariavel(u"RetStr", Valor::DeTexto(escolhido), false);
  } else if (tipo == u"COLOR") {
    double cor = 0;
    if (h) {
      if (!Responde(*h, "color", Texto(), Texto(), Texto(), resp) || !LeNumero(U(resp), cor)) return Valor();
    } else {
      QColor c = QColorDialog::getColor(Qt::white, nullptr);
      if (!c.isValid()) return Valor();
      cor = NumeroDaCor(c);
    }
    zv.GravaVariavel(u"RetValue", Valor::DeDouble(cor), false);
  } else if (tipo == u"PRINTER") {
    zv.GravaVariavel(u"RetStr", Valor::DeTexto(Texto()), false);
    if (h) {
      // Only an answer of Cancel cancels; none left takes the printer.
      if (!Responde(*h, "printer", Texto(), Texto(), Texto(), resp) && !resp.empty()) return Valor();
    } else {
      // The desktop's printer dialogue; the printer chosen becomes the
      // platform's choice for what prints next.
      QPrinter impressora;
      QPrintDialog dialogo(&impressora);
      if (dialogo.exec() != QDialog::Accepted) return Valor();
    }
    zv.GravaVariavel(u"RetStr", Valor::DeTexto(u"OK"), false);
  } else if (tipo == u"FONT") {
    Texto r;
    if (h) {
      if (!Responde(*h, "font", Texto(), Texto(), Texto(), resp)) return Valor();
      QStringList p = QString::fromStdString(resp).split(QLatin1Char(';'));
      auto sim = [&](int i) { return p.size() > i && p[i].trimmed().compare(QLatin1String("true"), Qt::CaseInsensitive) == 0; };
      r = TextoFonte(p.value(0), p.value(1).toInt(), sim(2), sim(3));
    } else {
      bool ok = false;
      QFont f = QFontDialog::getFont(&ok, nullptr);
      if (!ok) return Valor();
      r = TextoFonte(f.family(), f.pointSize(), f.bold(), f.italic());
    }
    zv.GravaVariavel(u"RetStr", Valor::DeTexto(r), false);
  }
  return Valor();
}

}  // namespace

void RegistraDialogos(TabelaComandos& t) {
  t.Define(u"GetText", CmdGetText);
  t.Define(u"DialogBox", CmdDialogBox);
}

}  // namespace zv
