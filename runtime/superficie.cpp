#include "runtime/superficie.h"

#include <QFontMetrics>
#include <QPainter>
#include <algorithm>

namespace zv {

void Superficie::Cresce(QImage& tela, int w, int h) {
  constexpr int kMaior = 4096;
  w = std::min(w, kMaior);
  h = std::min(h, kMaior);
  if (tela.width() >= w && tela.height() >= h) return;
  QImage maior(std::max(tela.width(), w), std::max(tela.height(), h), QImage::Format_ARGB32_Premultiplied);
  maior.fill(Qt::transparent);
  QPainter(&maior).drawImage(0, 0, tela);
  tela = std::move(maior);
}

QRect Superficie::DesenhaTexto(QImage& tela, const QFont& fonte, const QColor& cor, const QString& texto, int x,
                               int y) {
  QPainter p(&tela);
  p.setFont(fonte);
  p.setPen(cor);
  QFontMetrics fm(fonte);
  p.drawText(QPoint(x, y + fm.ascent()), texto);
  return QRect(x, y, fm.horizontalAdvance(texto) + 2, fm.height() + 1);
}

}  // namespace zv
