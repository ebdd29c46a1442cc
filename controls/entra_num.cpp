#include "controls/entra_num.h"

#include <QCoreApplication>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QPainter>

#include "controls/teclas.h"

namespace zv {

namespace {

// The original's measures were twips, 15 to a pixel.
constexpr int kMargemTexto = 7;  // 100 from the right edge
constexpr int kCursorX = 5;      // the caret, 70 from it

constexpr char16_t kModelo[] = u"000.000.000.000.000,000000";
constexpr int kFimInteiro = 18;  // the units digit
constexpr int kVirgula = 19;
constexpr int kTamModelo = 26;

bool Digito(int c) { return c >= '0' && c <= '9'; }

// Maior: which components lead, as a code for Clareia.
int Maior(int r, int g, int b) {
  if (g == b && g > r) return 5;
  if (r == b && g < r) return 4;
  if (r == g && r > b) return 3;
  if (b > g && b > 1) return 2;
  if (b < g && g > r) return 1;
  if (r > b && g < r) return 0;
  return 6;
}

}  // namespace

QString FormataMoeda(const QString& entrada, int casas) {
  QString texto = entrada;
  bool negativo = false;
  if (!texto.isEmpty() && (texto[0] == QLatin1Char('+') || texto[0] == QLatin1Char('-'))) {
    negativo = texto[0] == QLatin1Char('-');
    texto.remove(0, 1);
  }
  texto = texto.trimmed();
  const qsizetype ponto = texto.indexOf(QLatin1Char('.'));
  const QString inteiro = ponto < 0 ? texto : texto.left(ponto);
  const QString decimais = ponto < 0 ? QString() : texto.mid(ponto + 1);
  QString m = QString::fromUtf16(kModelo);
  // The integer digits from the right, past the group points; what doesn't
  // fit in fifteen places is lost.
  int pos = kFimInteiro;
  for (qsizetype i = inteiro.size() - 1; i >= 0; --i) {
    while (pos >= 0 && m[pos] != QLatin1Char('0')) --pos;
    if (pos < 0) break;
    m[pos--] = inteiro[i];
  }
  pos = kVirgula + 1;
  for (QChar c : decimais) {
    while (pos < kTamModelo && m[pos] != QLatin1Char('0')) ++pos;
    if (pos >= kTamModelo) break;
    m[pos++] = c;
  }
  // Leading zeros and points go, but the units digit always shows.
  for (int i = 0; i < kFimInteiro && (m[i] == QLatin1Char('0') || m[i] == QLatin1Char('.')); ++i) m[i] = QLatin1Char(' ');
  const int ultimaCasa = kVirgula + std::max(casas, 0);
  for (int i = kTamModelo - 1; i > ultimaCasa && m[i] == QLatin1Char('0'); --i) m[i] = QLatin1Char(' ');
  m = m.trimmed();
  if (m.endsWith(QLatin1Char(','))) m.chop(1);
  return negativo ? QLatin1Char('-') + m : m;
}

int CasasDigitadas(const QString& texto) {
  const qsizetype p = texto.indexOf(QLatin1Char('.'));
  return p < 0 ? 0 : static_cast<int>(texto.size() - p - 1);
}

QColor Clareia(const QColor& cor, int limite, int passo) {
  int c[3] = {cor.red(), cor.green(), cor.blue()};
  // Which components rise, by the code of Maior: R, G, B.
  static const bool kSobe[7][3] = {{false, true, true},  {true, false, true}, {true, true, false},
                                   {false, false, true}, {false, true, false}, {true, false, false},
                                   {true, true, true}};
  const int codigo = Maior(c[0], c[1], c[2]);
  for (int i = 0; i < 3; ++i)
    if (kSobe[codigo][i] && c[i] + passo < limite) c[i] += passo;
  return QColor(c[0], c[1], c[2]);
}

double ValorDoTexto(const QString& texto) {
  QString s;
  int i = 0;
  while (i < texto.size() && texto[i].isSpace()) ++i;
  if (i < texto.size() && (texto[i] == QLatin1Char('-') || texto[i] == QLatin1Char('+'))) s += texto[i++];
  bool ponto = false;
  for (; i < texto.size(); ++i) {
    const QChar c = texto[i];
    if (c.isDigit()) {
      s += c;
    } else if (c == QLatin1Char('.') && !ponto) {
      ponto = true;
      s += c;
    } else {
      break;
    }
  }
  bool ok = false;
  const double v = s.toDouble(&ok);
  return ok ? v : 0.0;
}

EntraNum::EntraNum(QWidget* pai) : QWidget(pai) {
  setFocusPolicy(Qt::StrongFocus);
  setAttribute(Qt::WA_OpaquePaintEvent);
  // The edit box that holds the raw text lies out of sight, above the
  // surface: it must stay shown to take the keyboard.
  txtAux_ = new QLineEdit(this);
  txtAux_->setObjectName(QStringLiteral("TxtAux"));
  txtAux_->setGeometry(0, -1000, 200, 20);
  txtAux_->installEventFilter(this);
  setFocusProxy(txtAux_);
  redesenho_.setSingleShot(true);
  redesenho_.setInterval(10);
  connect(&redesenho_, &QTimer::timeout, this, [this] { FormataNumero(); });
  pisca_.setInterval(500);
  connect(&pisca_, &QTimer::timeout, this, [this] {
    cursorVisivel_ = !cursorVisivel_;
    update();
  });
  DefineValor(0);
}

void EntraNum::DefineValor(double v) {
  valor_ = v;
  txtAux_->setText(QString::number(v, 'g', 15));
  FormataNumero();
}

void EntraNum::DefineCasas(int c) {
  casas_ = std::clamp(c, -32768, 32767);
  FormataNumero();
}

void EntraNum::DefineTravado(bool sim) { txtAux_->setReadOnly(sim); }

void EntraNum::DefineTamanhoMaximo(int n) { txtAux_->setMaxLength(n > 0 ? n : 32767); }

QString EntraNum::TextoValor() const { return QString::number(valor_, 'f', std::clamp(casas_, 0, 15)); }

void EntraNum::FormataNumero() {
  exibido_ = FormataMoeda(txtAux_->text(), casas_);
  valor_ = ValorDoTexto(txtAux_->text());
  update();
}

void EntraNum::paintEvent(QPaintEvent*) {
  QPainter p(this);
  p.fillRect(rect(), corFundo);
  p.setPen(corBorda);
  p.drawRect(rect().adjusted(0, 0, -1, -1));
  p.setFont(font());
  const QFontMetrics fm(font());
  const int largura = fm.horizontalAdvance(exibido_);
  const int topo = (height() - fm.height()) / 2;
  p.setPen(isEnabled() ? corFrente : Clareia(corFrente, 255, 100));
  p.drawText(QRect(width() - largura - kMargemTexto, topo, largura, fm.height()), Qt::AlignLeft | Qt::AlignVCenter,
             exibido_);
  if (cursorVisivel_ && txtAux_->hasFocus()) {
    p.setPen(Qt::black);
    p.drawLine(width() - kCursorX, topo, width() - kCursorX, topo + fm.height());
  }
}

void EntraNum::resizeEvent(QResizeEvent* e) {
  QWidget::resizeEvent(e);
  update();
}

void EntraNum::changeEvent(QEvent* e) {
  QWidget::changeEvent(e);
  // BackColor and ForeColor come as the palette of every control.
  if (e->type() == QEvent::PaletteChange) {
    corFundo = palette().color(QPalette::Base);
    corFrente = palette().color(QPalette::Text);
  }
  if (e->type() == QEvent::EnabledChange || e->type() == QEvent::FontChange || e->type() == QEvent::PaletteChange)
    update();
}

void EntraNum::mousePressEvent(QMouseEvent*) {
  txtAux_->setFocus(Qt::MouseFocusReason);
  if (relata) relata({EventoControle::Clique});
}

void EntraNum::keyPressEvent(QKeyEvent* e) { encaminha_(e, txtAux_); }
void EntraNum::keyReleaseEvent(QKeyEvent* e) { encaminha_(e, txtAux_); }

bool EntraNum::eventFilter(QObject* o, QEvent* e) {
  if (o != txtAux_) return QWidget::eventFilter(o, e);
  switch (e->type()) {
    case QEvent::KeyPress:
      return TeclaDesce(static_cast<QKeyEvent*>(e));
    case QEvent::KeyRelease:
      TeclaSobe(static_cast<QKeyEvent*>(e));
      return false;
    case QEvent::FocusIn:
      fase_ = 1;
      txtAux_->end(false);
      cursorVisivel_ = true;
      pisca_.start();
      FormataNumero();
      if (relata) relata({EventoControle::GanhouFoco});
      return false;
    case QEvent::FocusOut:
      pisca_.stop();
      cursorVisivel_ = false;
      // The redraw due 10 ms after the last key is not left behind.
      redesenho_.stop();
      FormataNumero();
      if (relata) relata({EventoControle::PerdeuFoco});
      return false;
    default:
      return false;
  }
}

bool EntraNum::TeclaDesce(QKeyEvent* e) {
  // The redraw of the key before is due: no hand types twice in 10 ms, and
  // so the host sees the value each earlier key left.
  if (redesenho_.isActive()) {
    redesenho_.stop();
    FormataNumero();
  }
  redesenho_.start();
  if (relata) relata({EventoControle::TeclaDesce, CodigoTecla(e), EstadoShift(e)});
  if (e->key() == Qt::Key_Delete) {
    // Delete acts as Backspace, at the caret.
    if (!txtAux_->isReadOnly()) txtAux_->backspace();
    return true;
  }
  int ascii = 0;
  if (e->key() == Qt::Key_Backspace)
    ascii = 8;
  else if (e->key() == Qt::Key_Return || e->key() == Qt::Key_Enter)
    ascii = 13;
  else if (e->key() == Qt::Key_Escape)
    ascii = 27;
  else if (!e->text().isEmpty() && e->text()[0].isPrint())
    ascii = e->text()[0].unicode();
  // Keys that type nothing (arrows, Home, End) move the caret as usual.
  if (ascii == 0) return false;
  if (txtAux_->isReadOnly()) return true;
  if (fase_ == 1) {
    if (ascii == '.') {
      fase_ = 2;
      txtAux_->end(false);
      if (valor_ == 0) {
        txtAux_->setText(QStringLiteral("0."));
        return true;
      }
    } else if (Digito(ascii) || ascii == '-') {
      // The first key replaces the number that stood there.
      valor_ = 0;
      if (txtAux_->text() != QStringLiteral("-")) txtAux_->clear();
      fase_ = 2;
    }
  }
  const int k = FiltraTecla(ascii);
  if (k == 8)
    txtAux_->backspace();
  else if (k != 0 && k != 13 && k != 27)
    txtAux_->insert(QString(QChar(k)));
  return true;
}

void EntraNum::TeclaSobe(QKeyEvent* e) {
  if (relata) relata({EventoControle::TeclaSobe, CodigoTecla(e), EstadoShift(e)});
  if (txtAux_->text() == QStringLiteral("0-")) {
    txtAux_->setText(QStringLiteral("-"));
    txtAux_->end(false);
  }
}

int EntraNum::FiltraTecla(int ascii) {
  if (casas_ < 1) return Digito(ascii) || ascii == 8 || ascii == '-' ? ascii : 0;
  const QString t = txtAux_->text();
  if (CasasDigitadas(t) >= casas_) {
    if (ascii == '-' || ascii == 27 || ascii == 13 || ascii == 8) return ascii;
    // The decimals are full: keys still go in before the point.
    const qsizetype ponto = t.indexOf(QLatin1Char('.'));
    return ponto < 0 || txtAux_->cursorPosition() <= ponto ? ascii : 0;
  }
  if (ascii == ',') return '.';  // the comma types a point
  return Digito(ascii) || ascii == '.' || ascii == '-' || ascii == 8 ? ascii : 0;
}

}  // namespace zv
