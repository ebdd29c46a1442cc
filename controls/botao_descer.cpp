#include "controls/botao_descer.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

namespace zv {

BotaoDescer::BotaoDescer(QWidget* pai) : QWidget(pai) { setCursor(Qt::ArrowCursor); }

void BotaoDescer::paintEvent(QPaintEvent*) {
  QPainter p(this);
  if (proprias) {
    const QPixmap& pm = apertado ? baixo : cima;
    if (!pm.isNull()) p.drawPixmap(0, 0, pm);
    return;
  }
  p.setRenderHint(QPainter::Antialiasing);
  QRectF r = QRectF(rect()).adjusted(0.5, 1.5, -0.5, -1.5);
  QLinearGradient g(0, 0, 0, height());
  g.setColorAt(0, apertado ? QColor(200, 208, 222) : QColor(250, 251, 253));
  g.setColorAt(1, apertado ? QColor(226, 231, 240) : QColor(218, 224, 234));
  QPainterPath forma;
  forma.addRoundedRect(r, 2, 2);
  p.fillPath(forma, g);
  p.setPen(QColor(150, 160, 178));
  p.drawPath(forma);
  const QPointF c = r.center() + QPointF(apertado ? 1 : 0, apertado ? 1 : 0);
  QPainterPath seta;
  seta.moveTo(c + QPointF(-3.5, -1.5));
  seta.lineTo(c + QPointF(0, 2));
  seta.lineTo(c + QPointF(3.5, -1.5));
  p.setPen(QPen(isEnabled() ? QColor(50, 60, 80) : QColor(160, 160, 160), 1.6));
  p.drawPath(seta);
}

void BotaoDescer::mousePressEvent(QMouseEvent*) {
  apertado = true;
  update();
}

void BotaoDescer::mouseReleaseEvent(QMouseEvent*) {
  apertado = false;
  update();
  if (aoClicar) aoClicar();
}

}  // namespace zv
