#include "controls/barras.h"

#include <QKeyEvent>
#include <QLinearGradient>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <cmath>

#include "controls/teclas.h"

namespace zv {

namespace {

// Halves to even, as the original's Round.
double Arredonda(double v) { return std::nearbyint(v); }

// A value as the bar keeps it: whole, within what 32 bits hold.
int Inteiro(double v) {
  if (!(v > -2147483648.0)) return v != v ? 0 : INT32_MIN;
  return v > 2147483647.0 ? INT32_MAX : static_cast<int>(v);
}

// Ticks of 50 ms: the change every third one during a drag, the arrow's
// repeat from the eleventh on (after half a second).
constexpr int kTiqueMs = 50;
constexpr int kTiquesMudanca = 3;
constexpr int kTiquesRepete = 11;

// The built-in pictures: a raised, softly shaded blue part, darker pressed.
void PintaParte(QPainter& p, const QRectF& r, bool press, Qt::Orientation o) {
  QLinearGradient g(r.topLeft(), o == Qt::Horizontal ? r.bottomLeft() : r.topRight());
  if (press) {
    g.setColorAt(0, QColor(150, 180, 225));
    g.setColorAt(1, QColor(110, 145, 200));
  } else {
    g.setColorAt(0, QColor(236, 243, 253));
    g.setColorAt(1, QColor(176, 202, 240));
  }
  p.setPen(QColor(110, 140, 190));
  p.setBrush(g);
  p.drawRoundedRect(r.adjusted(0.5, 0.5, -0.5, -0.5), 2, 2);
}

void PintaSeta(QPainter& p, const QRectF& r, Qt::ArrowType dir) {
  QPointF c = r.center();
  double s = std::max(2.0, std::min(r.width(), r.height()) / 5.0);
  QPainterPath t;
  switch (dir) {
    case Qt::LeftArrow:
      t.moveTo(c.x() - s, c.y()), t.lineTo(c.x() + s * 0.6, c.y() - s), t.lineTo(c.x() + s * 0.6, c.y() + s);
      break;
    case Qt::RightArrow:
      t.moveTo(c.x() + s, c.y()), t.lineTo(c.x() - s * 0.6, c.y() - s), t.lineTo(c.x() - s * 0.6, c.y() + s);
      break;
    case Qt::UpArrow:
      t.moveTo(c.x(), c.y() - s), t.lineTo(c.x() - s, c.y() + s * 0.6), t.lineTo(c.x() + s, c.y() + s * 0.6);
      break;
    default:
      t.moveTo(c.x(), c.y() + s), t.lineTo(c.x() - s, c.y() - s * 0.6), t.lineTo(c.x() + s, c.y() - s * 0.6);
      break;
  }
  t.closeSubpath();
  p.setPen(Qt::NoPen);
  p.setBrush(QColor(40, 70, 120));
  p.drawPath(t);
}

}  // namespace

BarraRolagem::BarraRolagem(Qt::Orientation o, QWidget* pai) : QWidget(pai), orientacao_(o) {
  setFocusPolicy(Qt::StrongFocus);
  resize(o == Qt::Horizontal ? QSize(100, 17) : QSize(17, 100));
}

int BarraRolagem::Comprimento() const { return orientacao_ == Qt::Horizontal ? width() : height(); }
int BarraRolagem::Espessura() const { return orientacao_ == Qt::Horizontal ? height() : width(); }
// The thumb is a square of the bar's thickness, as the arrows are; a bar too
// short for both arrows and a thumb shares out what there is.
int BarraRolagem::TamanhoPolegar() const { return std::max(4, std::min(Espessura(), Comprimento() / 3)); }
double BarraRolagem::Ao(const QPointF& p) const { return orientacao_ == Qt::Horizontal ? p.x() : p.y(); }

void BarraRolagem::DefineFigura(Parte p, const QPixmap& figura) {
  figuras_[static_cast<size_t>(p)] = figura;
  update();
}

// The ends of the thumb's travel and its place for the value; runs each
// time the control is shown or resized.
void BarraRolagem::IniciaBarra() {
  ColocaPolegar();
  Mudou();
}

// The ends follow the bar's size, shown or not.
void BarraRolagem::Extremos() {
  int seta = std::min(Espessura(), Comprimento() / 3);
  minimo_ = seta;
  maximo_ = Comprimento() - seta - TamanhoPolegar();
}

// A Max of 0 counts as 1: the whole track is one unit.
double BarraRolagem::Escala() const { return (maximo_ - minimo_) / (max_ == 0 ? 1 : max_); }

// The value of a thumb's position; a bar too short to have a track has
// only the value 0.
int BarraRolagem::ValorEm(double posicao) const {
  double e = Escala();
  return e == 0 ? 0 : Inteiro(Arredonda((posicao - minimo_) / e));
}

void BarraRolagem::ColocaPolegar() {
  Extremos();
  posicao_ = Arredonda(valor_ * Escala()) + minimo_;
  update();
}

void BarraRolagem::Mudou() {
  if (aoMudar) aoMudar();
  if (relata) relata({EventoControle::Mudou});
}

void BarraRolagem::setValue(int v) {
  valor_ = v;
  ColocaPolegar();
  Mudou();
}

// Only the old value is tested, so a step may pass the end by less than a
// step (Max 100, SmallChange 7: 98 goes to 105, then no further).
void BarraRolagem::Passo(bool frente) {
  if (frente && valor_ < max_)
    valor_ = Inteiro(static_cast<double>(valor_) + passo_);
  else if (!frente && valor_ > 0)
    valor_ = Inteiro(static_cast<double>(valor_) - passo_);
  else
    return;
  ColocaPolegar();
  Mudou();
}

void BarraRolagem::Pagina(bool frente) {
  double v = static_cast<double>(valor_) + (frente ? pagina_ : -static_cast<double>(pagina_));
  valor_ = frente ? std::min(Inteiro(v), max_) : std::max(Inteiro(v), 0);
  ColocaPolegar();
  Mudou();
}

void BarraRolagem::ArrastaAte(double p) {
  Extremos();
  p = Arredonda(p);
  if (p <= minimo_) {
    p = minimo_;
    valor_ = 0;
  } else if (p >= maximo_) {
    // The far end gives exactly Max, not a rounded value.
    p = maximo_;
    valor_ = max_;
  } else {
    valor_ = ValorEm(p);
  }
  posicao_ = p;
  update();
}

void BarraRolagem::ArrastaValor(int v) {
  valor_ = v;
  ColocaPolegar();
  Mudou();
}

void BarraRolagem::resizeEvent(QResizeEvent*) { IniciaBarra(); }
void BarraRolagem::showEvent(QShowEvent*) { IniciaBarra(); }

void BarraRolagem::paintEvent(QPaintEvent*) {
  QPainter p(this);
  p.setRenderHint(QPainter::Antialiasing);
  bool h = orientacao_ == Qt::Horizontal;
  int c = Comprimento(), e = Espessura();
  int seta = static_cast<int>(minimo_);
  auto ret = [h, e](double de, double tam) { return h ? QRectF(de, 0, tam, e) : QRectF(0, de, e, tam); };
  auto figura = [this](Parte parte) -> const QPixmap& { return figuras_[static_cast<size_t>(parte)]; };
  // The track.
  QRectF trilho = ret(0, c);
  if (!figura(Fundo).isNull()) {
    p.drawPixmap(trilho.toRect(), figura(Fundo));
  } else {
    QLinearGradient g(trilho.topLeft(), h ? trilho.bottomLeft() : trilho.topRight());
    g.setColorAt(0, QColor(226, 232, 242));
    g.setColorAt(1, QColor(244, 247, 252));
    p.fillRect(trilho, g);
  }
  // The arrows at both ends.
  QRectF baixa = ret(0, seta), alta = ret(c - seta, seta);
  Parte fb = baixaPresa_ ? SetaBaixaPress : SetaBaixa, fa = altaPresa_ ? SetaAltaPress : SetaAlta;
  if (!figura(fb).isNull()) {
    p.drawPixmap(baixa.toRect(), figura(fb));
  } else {
    PintaParte(p, baixa, baixaPresa_, orientacao_);
    PintaSeta(p, baixa, h ? Qt::LeftArrow : Qt::UpArrow);
  }
  if (!figura(fa).isNull()) {
    p.drawPixmap(alta.toRect(), figura(fa));
  } else {
    PintaParte(p, alta, altaPresa_, orientacao_);
    PintaSeta(p, alta, h ? Qt::RightArrow : Qt::DownArrow);
  }
  // The thumb, with three grip lines across it.
  p.setClipRect(ret(seta, c - 2 * seta));
  QRectF polegar = ret(posicao_, TamanhoPolegar());
  Parte fp = arrastando_ ? PolegarPress : PolegarNormal;
  if (!figura(fp).isNull()) {
    p.drawPixmap(polegar.toRect(), figura(fp));
  } else {
    PintaParte(p, polegar, arrastando_, orientacao_);
    p.setPen(QColor(90, 120, 170));
    QPointF m = polegar.center();
    for (int k = -1; k <= 1; ++k) {
      if (h)
        p.drawLine(QPointF(m.x() + 2 * k, m.y() - e / 5.0), QPointF(m.x() + 2 * k, m.y() + e / 5.0));
      else
        p.drawLine(QPointF(m.x() - e / 5.0, m.y() + 2 * k), QPointF(m.x() + e / 5.0, m.y() + 2 * k));
    }
  }
}

void BarraRolagem::mousePressEvent(QMouseEvent* e) {
  if (e->button() != Qt::LeftButton) return;
  double x = Ao(e->position());
  depoisDoDuplo_ = false;
  if (x < minimo_ || x >= Comprimento() - minimo_) {
    (x < minimo_ ? baixaPresa_ : altaPresa_) = true;
    tiques_ = 0;
    timer1_.start(kTiqueMs, this);
    update();
  } else if (x >= posicao_ && x < posicao_ + TamanhoPolegar()) {
    deslocamento_ = x - posicao_;
    arrastando_ = true;
    tiques_ = 0;
    timer1_.start(kTiqueMs, this);
    update();
  } else {
    // The track: the thumb's low edge jumps to the click; it doesn't page.
    posicao_ = std::min(Arredonda(x), maximo_);
    valor_ = ValorEm(posicao_);
    update();
    Mudou();
  }
}

void BarraRolagem::mouseMoveEvent(QMouseEvent* e) {
  if (arrastando_) ArrastaAte(Ao(e->position()) - deslocamento_);
}

void BarraRolagem::mouseReleaseEvent(QMouseEvent* e) {
  double x = Ao(e->position());
  if (baixaPresa_ || altaPresa_) {
    bool alta = altaPresa_;
    baixaPresa_ = altaPresa_ = false;
    timer1_.stop();
    update();
    // The click on the arrow: one step, but none for the release that ends
    // a double click, which stepped already.
    bool sobre = alta ? x >= Comprimento() - minimo_ : x < minimo_;
    if (sobre && !depoisDoDuplo_) Passo(alta);
  } else if (arrastando_) {
    arrastando_ = false;
    timer1_.stop();
    update();
    Mudou();
  }
  depoisDoDuplo_ = false;
}

void BarraRolagem::mouseDoubleClickEvent(QMouseEvent* e) {
  double x = Ao(e->position());
  if (x < minimo_ || x >= Comprimento() - minimo_) {
    Passo(x >= Comprimento() - minimo_);
    depoisDoDuplo_ = true;
    (x < minimo_ ? baixaPresa_ : altaPresa_) = true;
    update();
  }
}

void BarraRolagem::timerEvent(QTimerEvent* e) {
  if (e->timerId() != timer1_.timerId()) return QWidget::timerEvent(e);
  ++tiques_;
  if (arrastando_) {
    if (tiques_ % kTiquesMudanca == 0) Mudou();
  } else if (tiques_ >= kTiquesRepete && (altaPresa_ || baixaPresa_)) {
    Passo(altaPresa_);
  }
}

void BarraRolagem::keyPressEvent(QKeyEvent* e) {
  bool h = orientacao_ == Qt::Horizontal;
  switch (CodigoTecla(e)) {
    case 39:  // right
    case 40:  // down
      if ((CodigoTecla(e) == 39) == h) Passo(true);
      break;
    case 37:  // left
    case 38:  // up
      if ((CodigoTecla(e) == 37) == h) Passo(false);
      break;
    case 34:
      Pagina(true);
      break;
    case 33:
      Pagina(false);
      break;
    default:
      QWidget::keyPressEvent(e);
      return;
  }
  if (relata) relata({EventoControle::TeclaDesce, CodigoTecla(e), EstadoShift(e)});
}

void BarraRolagem::focusInEvent(QFocusEvent* e) {
  QWidget::focusInEvent(e);
  if (relata) relata({EventoControle::GanhouFoco});
}

void BarraRolagem::focusOutEvent(QFocusEvent* e) {
  QWidget::focusOutEvent(e);
  if (relata) relata({EventoControle::PerdeuFoco});
}

}  // namespace zv
