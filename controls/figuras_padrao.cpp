#include "controls/figuras_padrao.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>
#include <cmath>

namespace zv {

int ProcuraNaLista(const QString& lista, const QString& nome) {
  if (nome.isEmpty()) return -1;
  const QString l = lista.toUpper();
  const QString alvo = nome.toUpper() + QLatin1Char('#');
  const qsizetype p = l.indexOf(alvo);
  if (p < 0) return -1;
  const qsizetype digitos = p + alvo.size();
  const qsizetype fim = l.indexOf(QLatin1Char(','), digitos);
  bool ok = false;
  const int n = l.mid(digitos, fim < 0 ? -1 : fim - digitos).toShort(&ok);
  return ok ? n : -1;
}

namespace {

constexpr int kLado = 32;

void Glifo(QPainter& p, const QString& texto, const QColor& cor, int tamanho = 20) {
  QFont f(QStringLiteral("DejaVu Sans"), tamanho, QFont::Bold);
  f.setPixelSize(tamanho);
  p.setFont(f);
  p.setPen(cor);
  p.drawText(QRect(0, 0, kLado, kLado), Qt::AlignCenter, texto);
}

void Disquete(QPainter& p) {
  p.setPen(QPen(QColor(30, 60, 120), 1.5));
  p.setBrush(QColor(60, 110, 200));
  p.drawRoundedRect(QRectF(5, 5, 22, 22), 2, 2);
  p.setBrush(Qt::white);
  p.drawRect(QRectF(9, 5.5, 14, 8));
  p.setBrush(QColor(200, 210, 230));
  p.drawRect(QRectF(9, 18, 14, 9));
}

void Pasta(QPainter& p, bool aberta) {
  p.setPen(QPen(QColor(150, 110, 20), 1.2));
  p.setBrush(QColor(240, 190, 60));
  QPainterPath fundo;
  fundo.moveTo(4, 9);
  fundo.lineTo(12, 9);
  fundo.lineTo(14, 11);
  fundo.lineTo(28, 11);
  fundo.lineTo(28, 26);
  fundo.lineTo(4, 26);
  fundo.closeSubpath();
  p.drawPath(fundo);
  p.setBrush(QColor(252, 214, 100));
  if (aberta) {
    QPolygonF frente;
    frente << QPointF(7, 15) << QPointF(31, 15) << QPointF(27, 26) << QPointF(3, 26);
    p.drawPolygon(frente);
  } else {
    p.drawRect(QRectF(4, 14, 24, 12));
  }
}

void Lupa(QPainter& p, const QColor& aro) {
  p.setPen(QPen(aro, 3));
  p.setBrush(QColor(200, 230, 255, 160));
  p.drawEllipse(QPointF(13, 13), 7.5, 7.5);
  p.setPen(QPen(QColor(90, 60, 30), 4, Qt::SolidLine, Qt::RoundCap));
  p.drawLine(QPointF(19, 19), QPointF(27, 27));
}

void Impressora(QPainter& p) {
  p.setPen(QPen(QColor(70, 70, 80), 1.2));
  p.setBrush(Qt::white);
  p.drawRect(QRectF(9, 4, 14, 9));
  p.setBrush(QColor(150, 155, 165));
  p.drawRoundedRect(QRectF(4, 12, 24, 11), 2, 2);
  p.setBrush(Qt::white);
  p.drawRect(QRectF(9, 19, 14, 9));
}

void Folha(QPainter& p) {
  p.setPen(QPen(QColor(90, 100, 120), 1.2));
  p.setBrush(Qt::white);
  QPainterPath f;
  f.moveTo(7, 4);
  f.lineTo(20, 4);
  f.lineTo(26, 10);
  f.lineTo(26, 28);
  f.lineTo(7, 28);
  f.closeSubpath();
  p.drawPath(f);
  p.drawLine(QPointF(20, 4), QPointF(20, 10));
  p.drawLine(QPointF(20, 10), QPointF(26, 10));
  p.setPen(QPen(QColor(40, 150, 60), 2.5));
  p.drawLine(QPointF(12, 19), QPointF(20, 19));
  p.drawLine(QPointF(16, 15), QPointF(16, 23));
}

void Grafico(QPainter& p) {
  const QColor cores[] = {QColor(60, 120, 220), QColor(240, 160, 40), QColor(60, 170, 90)};
  const int alturas[] = {10, 18, 24};
  p.setPen(Qt::NoPen);
  for (int i = 0; i < 3; ++i) {
    p.setBrush(cores[i]);
    p.drawRect(QRectF(5 + i * 8, 28 - alturas[i], 6, alturas[i]));
  }
  p.setPen(QPen(QColor(60, 60, 70), 1.5));
  p.drawLine(QPointF(3, 28.5), QPointF(29, 28.5));
}

void Monitor(QPainter& p) {
  p.setPen(QPen(QColor(50, 55, 65), 1.5));
  p.setBrush(QColor(90, 150, 220));
  p.drawRoundedRect(QRectF(4, 5, 24, 16), 2, 2);
  p.setBrush(QColor(120, 125, 135));
  p.drawRect(QRectF(13, 21, 6, 4));
  p.drawRoundedRect(QRectF(8, 25, 16, 3), 1, 1);
}

void Chave(QPainter& p) {
  p.setPen(QPen(QColor(160, 120, 20), 2.5));
  p.setBrush(Qt::NoBrush);
  p.drawEllipse(QPointF(10, 11), 5, 5);
  p.drawLine(QPointF(14, 15), QPointF(27, 27));
  p.drawLine(QPointF(22, 22), QPointF(25, 19));
  p.drawLine(QPointF(25, 25), QPointF(28, 22));
}

}  // namespace

QPixmap FiguraPadrao(int n) {
  if (n < 0 || n >= kTotalFiguras) return {};
  QPixmap pm(kLado, kLado);
  pm.fill(Qt::transparent);
  QPainter p(&pm);
  p.setRenderHint(QPainter::Antialiasing);
  p.setRenderHint(QPainter::TextAntialiasing);
  const QColor verde(40, 150, 60), azul(40, 100, 200), vermelho(200, 40, 40), escuro(60, 65, 80);
  switch (n) {
    case 0: Glifo(p, QStringLiteral("\u2713"), verde, 24); break;
    case 1: Disquete(p); break;
    case 2: Glifo(p, QStringLiteral("\u2717"), vermelho, 24); break;
    case 3: Glifo(p, QStringLiteral("\u21E5"), QColor(200, 100, 20), 24); break;
    case 4: Pasta(p, true); break;
    case 5: Folha(p); break;
    case 6: Impressora(p); break;
    case 7: Glifo(p, QStringLiteral("+"), verde, 28); break;
    case 8: Lupa(p, azul); break;
    case 9: Glifo(p, QStringLiteral("$"), verde, 24); break;
    case 10: Glifo(p, QStringLiteral("\u263A"), azul, 24); break;
    case 11: Lupa(p, escuro); break;
    case 12: Glifo(p, QStringLiteral("\u2714"), azul, 24); break;
    case 13: Glifo(p, QStringLiteral("\u2298"), vermelho, 26); break;
    case 14: Glifo(p, QStringLiteral("\u21B6"), azul, 24); break;
    case 15: Glifo(p, QStringLiteral("\u21B7"), azul, 24); break;
    case 16: Glifo(p, QStringLiteral("\u2192"), azul, 26); break;
    case 17: Glifo(p, QStringLiteral("\u2190"), azul, 26); break;
    case 18: Glifo(p, QStringLiteral("\u270E"), escuro, 24); break;
    case 19: Glifo(p, QStringLiteral("\u20AC"), QColor(180, 140, 20), 24); break;
    case 20: Glifo(p, QStringLiteral("\u2716"), QColor(200, 100, 20), 22); break;
    case 21: Glifo(p, QStringLiteral("\u2630"), escuro, 24); break;
    case 22: Glifo(p, QStringLiteral("\u2699"), escuro, 26); break;
    case 23: Glifo(p, QStringLiteral("\u00B6"), QColor(140, 60, 40), 24); break;
    case 24: Glifo(p, QStringLiteral("\u00A7"), QColor(140, 60, 40), 24); break;
    case 25: Glifo(p, QStringLiteral("\u25CF"), vermelho, 24); break;
    case 26: Glifo(p, QStringLiteral("31"), azul, 16); break;
    case 27: Grafico(p); break;
    case 28: Pasta(p, false); break;
    case 29: Chave(p); break;
    case 30: Glifo(p, QStringLiteral("\u2295"), azul, 26); break;
    case 31: Glifo(p, QStringLiteral("\u260E"), escuro, 24); break;
    case 32: Monitor(p); break;
    default: break;
  }
  return pm;
}

QImage FundoPadrao(int n) {
  QImage img(640, 480, QImage::Format_RGB32);
  QPainter p(&img);
  p.setRenderHint(QPainter::Antialiasing);
  if (n == 0) {
    // A marsh at dusk: the sky, a low sun, the water and its reeds.
    QLinearGradient ceu(0, 0, 0, 300);
    ceu.setColorAt(0, QColor(40, 30, 80));
    ceu.setColorAt(0.6, QColor(190, 90, 90));
    ceu.setColorAt(1, QColor(250, 180, 90));
    p.fillRect(0, 0, 640, 300, ceu);
    QRadialGradient sol(QPointF(420, 290), 60);
    sol.setColorAt(0, QColor(255, 230, 150));
    sol.setColorAt(1, QColor(255, 200, 120, 0));
    p.fillRect(300, 200, 240, 100, sol);
    QLinearGradient agua(0, 300, 0, 480);
    agua.setColorAt(0, QColor(150, 90, 90));
    agua.setColorAt(1, QColor(30, 30, 60));
    p.fillRect(0, 300, 640, 180, agua);
    p.setPen(QPen(QColor(255, 210, 150, 90), 2));
    for (int i = 0; i < 12; ++i) p.drawLine(QPointF(380 + (i % 3) * 10, 310 + i * 12), QPointF(460 - (i % 4) * 8, 310 + i * 12));
    p.setPen(QPen(QColor(20, 20, 30), 2));
    for (int i = 0; i < 60; ++i) {
      const double x = 10 + i * 10.5 + 4 * std::sin(i * 1.7);
      const double h = 40 + 35 * std::fabs(std::sin(i * 0.9));
      p.drawLine(QPointF(x, 480), QPointF(x + 6 * std::sin(i * 0.4), 480 - h));
    }
  } else {
    // A blue field of waves.
    QLinearGradient fundo(0, 0, 640, 480);
    fundo.setColorAt(0, QColor(20, 60, 140));
    fundo.setColorAt(1, QColor(60, 150, 210));
    p.fillRect(img.rect(), fundo);
    for (int k = 0; k < 9; ++k) {
      QPainterPath onda;
      const double base = 60 + k * 50;
      onda.moveTo(0, base);
      for (int x = 0; x <= 640; x += 8) onda.lineTo(x, base + 18 * std::sin(x / 70.0 + k * 0.8));
      p.setPen(QPen(QColor(255, 255, 255, 40 + k * 6), 2 + k % 3));
      p.drawPath(onda);
    }
  }
  return img;
}

}  // namespace zv
