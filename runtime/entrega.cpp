// Each action of the event script delivered as the real input events a
// user's hand would make, sent to the widget.
#include <QApplication>
#include <QCursor>
#include <QJsonArray>
#include <QJsonObject>
#include <QKeyEvent>
#include <QMetaEnum>
#include <QMouseEvent>
#include <cstdio>

#include "controls/barras.h"
#include "controls/teclas.h"
#include "runtime/janelas.h"
#include "runtime/mensagens.h"

namespace zv {

namespace {

void Aviso(int linha, const QString& texto) {
  std::fprintf(stderr, msg::execucao::kLinhaDoRoteiro, linha, texto.toUtf8().constData());
}

void Ativa(QWidget* w) {
  QWidget* janela = w->window();
  if (!janela->isVisible()) return;
  janela->activateWindow();
  QCoreApplication::processEvents();
  if (!janela->isActiveWindow()) {
    // The offscreen platform activates only on request: ask directly.
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    QApplication::setActiveWindow(janela);
    QT_WARNING_POP
  }
}

void Mouse(QWidget* w, QEvent::Type tipo, QPoint p, Qt::MouseButton b) {
  Qt::MouseButtons estado = tipo == QEvent::MouseButtonRelease || tipo == QEvent::MouseMove ? Qt::NoButton : b;
  QPointF global = w->mapToGlobal(QPointF(p));
  QMouseEvent e(tipo, QPointF(p), global, tipo == QEvent::MouseMove ? Qt::NoButton : b, estado, Qt::NoModifier);
  QCoreApplication::sendEvent(w, &e);
}

void Clica(QWidget* w, QPoint p, Qt::MouseButton b, bool duplo) {
  if (w->focusPolicy() & Qt::ClickFocus) w->setFocus(Qt::MouseFocusReason);
  Mouse(w, QEvent::MouseButtonPress, p, b);
  Mouse(w, QEvent::MouseButtonRelease, p, b);
  if (duplo) {
    Mouse(w, QEvent::MouseButtonDblClick, p, b);
    Mouse(w, QEvent::MouseButtonRelease, p, b);
  }
}

// A key by the script's name: a Qt key name without "Key_", or the code
// the program sees.
int TeclaDoNome(const QJsonValue& v) {
  if (v.isDouble()) return TeclaDeCodigo(v.toInt());
  // A text is a Qt key name first ("7" is the key 7), then a code.
  QString s = v.toString();
  bool ok = false;
  int k = QMetaEnum::fromType<Qt::Key>().keyToValue(("Key_" + s).toLatin1().constData(), &ok);
  if (ok) return k;
  int n = s.toInt(&ok);
  return ok ? TeclaDeCodigo(n) : Qt::Key_unknown;
}

QString TextoDaTecla(int k, Qt::KeyboardModifiers m) {
  if (m & (Qt::ControlModifier | Qt::AltModifier)) return {};
  if (k >= Qt::Key_A && k <= Qt::Key_Z) {
    QChar c(u'a' + (k - Qt::Key_A));
    return (m & Qt::ShiftModifier) ? QString(c.toUpper()) : QString(c);
  }
  if (k >= Qt::Key_0 && k <= Qt::Key_9) return QString(QChar(u'0' + (k - Qt::Key_0)));
  switch (k) {
    case Qt::Key_Space: return QStringLiteral(" ");
    case Qt::Key_Return:
    case Qt::Key_Enter: return QStringLiteral("\r");
    case Qt::Key_Tab: return QStringLiteral("\t");
    case Qt::Key_Backspace: return QStringLiteral("\b");
  }
  return {};
}

void Tecla(QWidget* w, QEvent::Type tipo, int k, Qt::KeyboardModifiers m, const QString& texto) {
  QKeyEvent e(tipo, k, m, texto);
  QCoreApplication::sendEvent(w, &e);
}

// The key of a typed character.
int TeclaDoCaractere(QChar c, Qt::KeyboardModifiers& m) {
  m = Qt::NoModifier;
  if (c.isLetter() && c.unicode() < 128) {
    if (c.isUpper()) m = Qt::ShiftModifier;
    return Qt::Key_A + (c.toUpper().unicode() - u'A');
  }
  if (c.isDigit() && c.unicode() < 128) return Qt::Key_0 + (c.unicode() - u'0');
  if (c == u' ') return Qt::Key_Space;
  return Qt::Key_unknown;
}

}  // namespace

QWidget* SistemaJanelas::AchaControle(const QString& nome, const QString& tipo, const QString& janela) {
  Texto n = Maiusculas(nome.toStdU16String());
  Texto j = Maiusculas(janela.toStdU16String());
  for (int k = 0; k < kTiposControle; ++k) {
    auto t = static_cast<TipoControle>(k);
    if (!tipo.isEmpty() && Maiusculas(Info(t).palavra) != Maiusculas(tipo.toStdU16String())) continue;
    const TabelaControles& tab = controles[static_cast<size_t>(k)];
    for (size_t s = 0; s < tab.nomes.size(); ++s) {
      if (tab.nomes[s].empty() || !tab.instancias[s] || Maiusculas(tab.nomes[s]) != n) continue;
      if (!j.empty() && tab.donos[s] != j) continue;
      return tab.instancias[s];
    }
  }
  return nullptr;
}

JanelaExecucao* SistemaJanelas::AchaJanelaViva(const QString& nome) {
  if (nome.isEmpty()) return principalFeita_ ? Atual() : nullptr;
  int s = AchaJanela(nome.toStdU16String());
  if (s < 0) return nullptr;
  return janelas_[static_cast<size_t>(s)];
}

void SistemaJanelas::EntregaAcao(const QJsonObject& a, int linha) {
  auto s = [&](const char* k) { return a.value(QLatin1String(k)).toString(); };
  // The control an action names, its window brought forward; null, with a
  // warning, when there is none.
  auto alvo = [&](const QString& nome) -> QWidget* {
    QWidget* w = principalFeita_ ? AchaControle(nome, s("kind"), s("window")) : nullptr;
    if (w)
      Ativa(w);
    else
      Aviso(linha, QString::fromUtf8(msg::execucao::kSemControle) + nome);
    return w;
  };
  if (encerrada_) {
    Aviso(linha, QString::fromUtf8(msg::execucao::kJanelaFechada));
    return;
  }
  // A box's rows, headings and cells.
  if (a.contains(QLatin1String("row")) || a.contains(QLatin1String("header")) || a.contains(QLatin1String("edit")))
    return EntregaBox(a, linha);
  if (a.contains(QLatin1String("click")) || a.contains(QLatin1String("dblclick"))) {
    bool duplo = a.contains(QLatin1String("dblclick"));
    QString nome = s(duplo ? "dblclick" : "click");
    QWidget* w = alvo(nome);
    if (!w) return;
    // "part":"button": the drop button of a combo or a date field.
    if (s("part") == u"button") {
      if (QWidget* b = w->findChild<QWidget*>(QStringLiteral("PicUp"))) w = b;
    }
    Clica(w, w->rect().center(), Qt::LeftButton, duplo);
    return;
  }
  // The mouse over a control (the cursor goes there, as a hand would take
  // it), or off every control with an empty name; a press or a release on
  // one, each by itself, to see the states between them.
  if (a.contains(QLatin1String("hover"))) {
    const QString nome = s("hover");
    if (nome.isEmpty()) {
      QCursor::setPos(QPoint(-10000, -10000));
      return;
    }
    QWidget* w = alvo(nome);
    if (!w) return;
    QCursor::setPos(w->mapToGlobal(w->rect().center()));
    Mouse(w, QEvent::MouseMove, w->rect().center(), Qt::NoButton);
    return;
  }
  if (a.contains(QLatin1String("press")) || a.contains(QLatin1String("release"))) {
    const bool press = a.contains(QLatin1String("press"));
    const QString nome = s(press ? "press" : "release");
    QWidget* w = alvo(nome);
    if (!w) return;
    if (press && (w->focusPolicy() & Qt::ClickFocus)) w->setFocus(Qt::MouseFocusReason);
    Mouse(w, press ? QEvent::MouseButtonPress : QEvent::MouseButtonRelease, w->rect().center(), Qt::LeftButton);
    return;
  }
  if (a.contains(QLatin1String("type"))) {
    QString nome = s("into");
    QWidget* w = alvo(nome);
    if (!w) return;
    w->setFocus(Qt::OtherFocusReason);
    for (QChar c : s("type")) {
      Qt::KeyboardModifiers m;
      int k = TeclaDoCaractere(c, m);
      Tecla(w, QEvent::KeyPress, k, m, QString(c));
      Tecla(w, QEvent::KeyRelease, k, m, QString(c));
    }
    return;
  }
  bool press = a.contains(QLatin1String("key")) || a.contains(QLatin1String("keydown"));
  bool release = a.contains(QLatin1String("key")) || a.contains(QLatin1String("keyup"));
  if (press || release) {
    QJsonValue v = a.value(QLatin1String(a.contains(QLatin1String("key")) ? "key" : press ? "keydown" : "keyup"));
    int k = TeclaDoNome(v);
    if (k == Qt::Key_unknown) return Aviso(linha, QString::fromUtf8(msg::execucao::kTeclaDesconhecida) + v.toVariant().toString());
    Qt::KeyboardModifiers m;
    for (const QJsonValue& mv : a.value(QLatin1String("modifiers")).toArray()) {
      QString n = mv.toString().toLower();
      if (n == u"shift") m |= Qt::ShiftModifier;
      if (n == u"ctrl") m |= Qt::ControlModifier;
      if (n == u"alt") m |= Qt::AltModifier;
    }
    QWidget* w = nullptr;
    if (a.contains(QLatin1String("into"))) {
      w = alvo(s("into"));
      if (!w) return;
      w->setFocus(Qt::OtherFocusReason);
    } else {
      if (!principalFeita_) return Aviso(linha, QString::fromUtf8(msg::execucao::kSemFoco));
      JanelaExecucao* j = Atual();
      w = QApplication::focusWidget();
      if (!w || w->window() != j) w = j->focusWidget() ? j->focusWidget() : j;
    }
    QString texto = TextoDaTecla(k, m);
    if (press) Tecla(w, QEvent::KeyPress, k, m, texto);
    if (release) Tecla(w, QEvent::KeyRelease, k, m, texto);
    return;
  }
  if (a.contains(QLatin1String("mouse"))) {
    JanelaExecucao* j = AchaJanelaViva(s("window"));
    if (!j) return Aviso(linha, QString::fromUtf8(msg::execucao::kSemJanela) + s("window"));
    QPoint p(a.value(QLatin1String("x")).toInt(), a.value(QLatin1String("y")).toInt());
    Qt::MouseButton b = s("button") == u"right" ? Qt::RightButton : Qt::LeftButton;
    QString tipo = s("mouse");
    if (tipo == u"move")
      Mouse(j, QEvent::MouseMove, p, b);
    else if (tipo == u"down")
      Mouse(j, QEvent::MouseButtonPress, p, b);
    else if (tipo == u"up")
      Mouse(j, QEvent::MouseButtonRelease, p, b);
    else if (tipo == u"click" || tipo == u"dblclick")
      Clica(j, p, b, tipo == u"dblclick");
    else
      Aviso(linha, QString::fromUtf8(msg::execucao::kAcaoDeMouse) + tipo);
    return;
  }
  if (a.contains(QLatin1String("scroll"))) {
    auto* b = principalFeita_ ? dynamic_cast<BarraRolagem*>(AchaControle(s("scroll"), QStringLiteral("ScrollBar"), s("window")))
                              : nullptr;
    if (!b) return Aviso(linha, QString::fromUtf8(msg::execucao::kSemBarra) + s("scroll"));
    Ativa(b);
    // As the user's drag ends: the bar's position changes.
    b->ArrastaValor(a.value(QLatin1String("value")).toInt());
    return;
  }
  // A menu title or option of the current window, by its caption.
  if (a.contains(QLatin1String("menu"))) {
    JanelaExecucao* j = principalFeita_ ? AchaJanelaViva(s("window")) : nullptr;
    if (!j || !j->ClicaMenu(s("menu"))) return Aviso(linha, QString::fromUtf8(msg::execucao::kSemMenu) + s("menu"));
    return;
  }
  if (a.contains(QLatin1String("close"))) {
    JanelaExecucao* j = AchaJanelaViva(s("close"));
    if (!j) return Aviso(linha, QString::fromUtf8(msg::execucao::kSemJanela) + s("close"));
    j->close();
    return;
  }
  Aviso(linha, QString::fromUtf8(msg::execucao::kAcaoDesconhecida));
}

}  // namespace zv
