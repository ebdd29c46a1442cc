#include "controls/btn_esp.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <chrono>
#include <thread>

#include "controls/moldura.h"
#include "controls/teclas.h"

namespace zv {

namespace {

// The original's measures were twips, 15 to a pixel.
constexpr int kMargem = 1;        // the face stands 20 in from the top and left
constexpr int kEncolhe = 3;       // and 50 smaller
constexpr int kAfundado = 2;      // 30 when pressed
constexpr int kFocoDentro = 3;    // the focus lines, 40 and 50 inside the face
constexpr int kEspacoIcone = 13;  // 200 between icon and caption, in the content width
constexpr int kLegendaApos = 7;   // the caption stands 100 behind the icon
constexpr int kAmostraX = 3;      // the background is read 50 to the right

struct Tons {
  QColor topo, base, borda;
};

// Nine skins, light enough that the default black caption reads on each.
const Tons kTons[kTiposBotao] = {
    {QColor(253, 253, 254), QColor(214, 219, 228), QColor(128, 137, 156)},  // 0 silver
    {QColor(236, 244, 255), QColor(150, 192, 243), QColor(62, 112, 186)},   // 1 sky
    {QColor(238, 251, 236), QColor(154, 214, 150), QColor(64, 136, 66)},    // 2 mint
    {QColor(255, 246, 224), QColor(246, 196, 110), QColor(186, 122, 28)},   // 3 amber
    {QColor(255, 238, 238), QColor(240, 162, 160), QColor(170, 64, 64)},    // 4 rose
    {QColor(255, 255, 255), QColor(196, 200, 207), QColor(96, 100, 110)},   // 5 steel, glossy
    {QColor(244, 238, 255), QColor(196, 172, 240), QColor(106, 70, 170)},   // 6 lavender
    {QColor(230, 251, 248), QColor(140, 214, 204), QColor(36, 128, 118)},   // 7 teal
    {QColor(250, 247, 240), QColor(216, 204, 180), QColor(126, 108, 74)},   // 8 sand
};

QColor Mistura(const QColor& a, const QColor& b, double t) {
  return QColor::fromRgbF(static_cast<float>(a.redF() + (b.redF() - a.redF()) * t),
                          static_cast<float>(a.greenF() + (b.greenF() - a.greenF()) * t),
                          static_cast<float>(a.blueF() + (b.blueF() - a.blueF()) * t));
}

QColor Cinza(const QColor& c) {
  int g = qGray(c.rgb());
  return QColor(g, g, g);
}

QPixmap DesenhaEstado(const Tons& t, EstadoPele e, QSize tamanho, bool brilho) {
  QPixmap pm(tamanho.expandedTo(QSize(4, 4)));
  pm.fill(Qt::transparent);
  QPainter p(&pm);
  p.setRenderHint(QPainter::Antialiasing);
  Tons c = t;
  switch (e) {
    case EstadoPele::Alto:
      c.topo = Mistura(t.topo, Qt::white, 0.5);
      c.base = Mistura(t.base, Qt::white, 0.3);
      break;
    case EstadoPele::Baixo:
      std::swap(c.topo, c.base);
      c.topo = Mistura(c.topo, Qt::black, 0.12);
      break;
    case EstadoPele::Desativado:
      c.topo = Mistura(Cinza(t.topo), Qt::white, 0.4);
      c.base = Mistura(Cinza(t.base), Qt::white, 0.4);
      c.borda = Mistura(Cinza(t.borda), Qt::white, 0.4);
      break;
    default:
      break;
  }
  const QRectF r = QRectF(pm.rect()).adjusted(0.5, 0.5, -0.5, -0.5);
  const double raio = std::min(6.0, r.height() / 3);
  QPainterPath forma;
  forma.addRoundedRect(r, raio, raio);
  QLinearGradient g(0, 0, 0, pm.height());
  g.setColorAt(0, c.topo);
  g.setColorAt(1, c.base);
  if (brilho && e != EstadoPele::Baixo) {
    // The steel skin's glass: a hard step at half height.
    g.setColorAt(0.49, Mistura(c.topo, c.base, 0.35));
    g.setColorAt(0.5, Mistura(c.topo, c.base, 0.75));
  }
  p.fillPath(forma, g);
  p.setPen(QPen(c.borda, 1));
  p.drawPath(forma);
  if (e == EstadoPele::Foco || e == EstadoPele::Alto) {
    // The focus and the hover wear a second ring, inside the first.
    QPainterPath anel;
    anel.addRoundedRect(r.adjusted(1.5, 1.5, -1.5, -1.5), raio - 1, raio - 1);
    p.setPen(QPen(e == EstadoPele::Foco ? Mistura(t.borda, Qt::white, 0.2) : QColor(255, 255, 255, 200), 1.2));
    p.drawPath(anel);
  }
  return pm;
}

}  // namespace

Pele PelePadrao(int tipo, QSize tamanho) {
  Pele pele;
  if (tipo < 0 || tipo >= kTiposBotao) return pele;
  for (int i = 0; i < 5; ++i)
    pele.figuras[static_cast<size_t>(i)] = DesenhaEstado(kTons[tipo], static_cast<EstadoPele>(i), tamanho, tipo == 5);
  return pele;
}

BtnEsp::BtnEsp(QWidget* pai) : QPushButton(pai) {
  setAutoDefault(false);
  setMouseTracking(true);
  setAttribute(Qt::WA_OpaquePaintEvent);
  hover_.setInterval(100);
  connect(&hover_, &QTimer::timeout, this, [this] { TiqueHover(); });
  // Twice, at 300 and 600 ms, then never again: a still window costs nothing.
  amostra_.setInterval(300);
  connect(&amostra_, &QTimer::timeout, this, [this] {
    AmostraFundo();
    if (++amostras_ >= 2) amostra_.stop();
  });
  amostra_.start();
}

void BtnEsp::DefineEstilo(int estilo) {
  estilo_ = estilo == 1 ? 1 : 0;
  figura_ = isEnabled() ? EstadoPele::Cima : EstadoPele::Desativado;
  update();
}

void BtnEsp::DefinePele(const Pele& pele) {
  pele_ = pele;
  tipoPele_ = -1;
  update();
}

void BtnEsp::DefineTipoPele(int tipo) {
  tipoPele_ = tipo;
  pele_ = PelePadrao(tipo, size());
  update();
}

void BtnEsp::MostraFigura(EstadoPele e) {
  if (figura_ == e) return;
  figura_ = e;
  update();
}

void BtnEsp::Afunda(bool sim) {
  afundado_ = sim;
  update();
}

QRect BtnEsp::Face() const {
  if (estilo_ == 1) return rect();
  const int m = afundado_ ? kAfundado : kMargem;
  return QRect(m, m, std::max(0, width() - kEncolhe), std::max(0, height() - kEncolhe));
}

void BtnEsp::Layout(const QRect& face, QRect* icone, QRect* legenda) const {
  const QFontMetrics fm = fontMetrics();
  const QString cap = text();
  const int largCap = fm.horizontalAdvance(cap);
  const int altCap = fm.height();
  const bool temIcone = !icon().isNull();
  const QSize ti = temIcone ? iconSize() : QSize();
  const int yCap = face.y() + (face.height() - altCap) / 2;
  if (!temIcone) {
    *icone = QRect();
    *legenda = QRect(face.x() + (face.width() - largCap) / 2, yCap, largCap, altCap);
    return;
  }
  const int yIcone = face.y() + (face.height() - ti.height()) / 2;
  if (cap.isEmpty()) {
    *icone = QRect(QPoint(face.x() + (face.width() - ti.width()) / 2, yIcone), ti);
    *legenda = QRect();
    return;
  }
  // The space counts in the width but only half of it stands between the
  // two: the group sits a little left of the centre, as it always did.
  const int conteudo = largCap + ti.width() + kEspacoIcone;
  *icone = QRect(QPoint(face.x() + (face.width() - conteudo) / 2, yIcone), ti);
  *legenda = QRect(icone->right() + 1 + kLegendaApos, yCap, largCap, altCap);
}

QRect BtnEsp::RetanguloIcone() const {
  QRect i, l;
  Layout(Face(), &i, &l);
  return i;
}

QRect BtnEsp::RetanguloLegenda() const {
  QRect i, l;
  Layout(Face(), &i, &l);
  return l;
}

void BtnEsp::paintEvent(QPaintEvent*) {
  QPainter p(this);
  const QColor face = palette().color(QPalette::Button);
  p.fillRect(rect(), superficie_.isValid() ? superficie_ : face);
  const QRect f = Face();
  if (estilo_ == 1) {
    const QPixmap& pm = pele_[figura_];
    if (!pm.isNull()) p.drawPixmap(0, 0, pm);
  } else {
    p.fillRect(f, face);
    const int w = width(), h = height();
    p.setPen(afundado_ ? QColor(Qt::black) : QColor(Qt::white));
    p.drawLine(0, 0, w - 1, 0);
    p.drawLine(0, 0, 0, h - 1);
    p.setPen(QColor(120, 120, 120));
    p.drawLine(w - 2, 0, w - 2, h - 2);
    p.drawLine(0, h - 2, w - 2, h - 2);
    if (temFoco_) {
      p.setPen(QColor(128, 128, 128));
      p.drawRect(f.adjusted(kFocoDentro, kFocoDentro, -kFocoDentro, -kFocoDentro));
    }
  }
  QRect icone, legenda;
  Layout(f, &icone, &legenda);
  if (icone.isValid())
    p.drawPixmap(icone.topLeft(), icon().pixmap(iconSize(), isEnabled() ? QIcon::Normal : QIcon::Disabled));
  if (legenda.isValid()) {
    p.setFont(font());
    if (!isEnabled()) {
      // The disabled caption, engraved as the platform drew it.
      p.setPen(Qt::white);
      p.drawText(legenda.translated(1, 1), Qt::AlignLeft | Qt::AlignVCenter, text());
      p.setPen(QColor(128, 128, 128));
    } else {
      p.setPen(palette().color(QPalette::ButtonText));
    }
    p.drawText(legenda, Qt::AlignLeft | Qt::AlignVCenter, text());
  }
}

void BtnEsp::resizeEvent(QResizeEvent* e) {
  QPushButton::resizeEvent(e);
  if (tipoPele_ >= 0) pele_ = PelePadrao(tipoPele_, size());
}

void BtnEsp::changeEvent(QEvent* e) {
  QPushButton::changeEvent(e);
  if (e->type() == QEvent::EnabledChange && estilo_ == 1)
    MostraFigura(isEnabled() ? (temFoco_ ? EstadoPele::Foco : EstadoPele::Cima) : EstadoPele::Desativado);
}

void BtnEsp::mousePressEvent(QMouseEvent*) {
  // The platform button's own pressing is left out: this one draws itself.
  if (estilo_ == 1)
    MostraFigura(EstadoPele::Baixo);
  else
    Afunda(true);
  pressionado_ = true;
}

void BtnEsp::mouseReleaseEvent(QMouseEvent*) {
  if (estilo_ == 1)
    MostraFigura(mouseSobre_ ? EstadoPele::Alto : EstadoPele::Cima);
  else
    Afunda(false);
  // A press that began here clicks, wherever the release falls: the press
  // keeps the mouse.
  if (pressionado_) {
    pressionado_ = false;
    if (relata) relata({EventoControle::Clique});
  }
}

void BtnEsp::mouseMoveEvent(QMouseEvent*) {
  if (estilo_ == 1 && isEnabled() && !hover_.isActive()) hover_.start();
}

void BtnEsp::TiqueHover() {
  if (!isEnabled()) {
    MostraFigura(EstadoPele::Desativado);
    hover_.stop();
    return;
  }
  QWidget* sob = QApplication::widgetAt(QCursor::pos());
  if (sob == this) {
    mouseSobre_ = true;
    if (!altoVisivel_) {
      MostraFigura(EstadoPele::Alto);
      altoVisivel_ = true;
    }
  } else {
    mouseSobre_ = false;
    MostraFigura(temFoco_ ? EstadoPele::Foco : EstadoPele::Cima);
    altoVisivel_ = false;
    hover_.stop();
  }
}

void BtnEsp::AmostraFundo() {
  if (!transparente) return;
  const QColor c = CorDaSuperficie(parentWidget(), QPoint(geometry().right() + 1 + kAmostraX, y() + height() / 2));
  if (!c.isValid()) return;
  superficie_ = c;
  update();
}

void BtnEsp::focusInEvent(QFocusEvent* e) {
  QPushButton::focusInEvent(e);
  temFoco_ = true;
  if (estilo_ == 1) MostraFigura(mouseSobre_ ? EstadoPele::Alto : EstadoPele::Foco);
  update();
  if (relata) relata({EventoControle::GanhouFoco});
}

void BtnEsp::focusOutEvent(QFocusEvent* e) {
  QPushButton::focusOutEvent(e);
  temFoco_ = false;
  if (estilo_ == 1) MostraFigura(EstadoPele::Cima);
  update();
  if (relata) relata({EventoControle::PerdeuFoco});
}

void BtnEsp::keyPressEvent(QKeyEvent* e) {
  if (relata) relata({EventoControle::TeclaDesce, CodigoTecla(e), EstadoShift(e)});
  switch (e->key()) {
    case Qt::Key_Right:
    case Qt::Key_Down:
      focusNextChild();
      return;
    case Qt::Key_Left:
    case Qt::Key_Up:
      focusPreviousChild();
      return;
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
      if (e->isAutoRepeat()) return;
      // The press is shown for 100 ms, the window's events let through once.
      if (estilo_ == 1)
        MostraFigura(EstadoPele::Baixo);
      else
        Afunda(true);
      repaint();
      QCoreApplication::processEvents();
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
      if (estilo_ == 1)
        MostraFigura(mouseSobre_ ? EstadoPele::Alto : EstadoPele::Cima);
      else
        Afunda(false);
      repaint();
      if (relata) relata({EventoControle::Clique});
      return;
    default:
      QWidget::keyPressEvent(e);
  }
}

void BtnEsp::keyReleaseEvent(QKeyEvent* e) {
  if (relata) relata({EventoControle::TeclaSobe, CodigoTecla(e), EstadoShift(e)});
  // Not the platform button's: its space would click a second time.
  QWidget::keyReleaseEvent(e);
}

}  // namespace zv
