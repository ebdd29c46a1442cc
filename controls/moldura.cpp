#include "controls/moldura.h"

#include <QImage>
#include <QPainter>
#include <cmath>

namespace zv {

QColor CorDaSuperficie(QWidget* pai, QPoint p) {
  if (!pai || !pai->rect().contains(p)) return {};
  QImage img(1, 1, QImage::Format_ARGB32_Premultiplied);
  img.fill(Qt::transparent);
  pai->render(&img, QPoint(), QRegion(QRect(p, QSize(1, 1))), QWidget::DrawWindowBackground);
  return img.pixelColor(0, 0);
}

// ---- The frame -------------------------------------------------------------------

SpecialFrame::SpecialFrame(QWidget* pai) : QWidget(pai) {
  relogio_.setSingleShot(true);
  relogio_.setInterval(1000);
  connect(&relogio_, &QTimer::timeout, this, [this] { Redesenha(); });
  relogio_.start();
}

void SpecialFrame::DefineLegenda(const QString& t) {
  legenda_ = t;
  Redesenha();
}

void SpecialFrame::Redesenha() {
  // Rendering the parent delivers its children's pending moves and
  // resizes, this frame's among them: those don't read again.
  if (lendo_) return;
  lendo_ = true;
  fundo_ = CorDaSuperficie(parentWidget(), geometry().center());
  lendo_ = false;
  update();
}

void SpecialFrame::paintEvent(QPaintEvent*) {
  QPainter p(this);
  const int w = width(), h = height();
  const QColor escuro(150, 150, 150), claro(250, 250, 250);
  // Two lines an edge: the odd ones dark, the even ones light, etched.
  p.setPen(escuro);
  p.drawLine(0, 7, 0, h - 1);
  p.drawLine(w - 2, 7, w - 2, h - 1);
  p.drawLine(1, 7, w - 1, 7);
  p.drawLine(1, h - 2, w - 1, h - 2);
  p.setPen(claro);
  p.drawLine(1, 7, 1, h - 1);
  p.drawLine(w - 1, 7, w - 1, h - 1);
  p.drawLine(1, 8, w - 1, 8);
  p.drawLine(1, h - 1, w - 1, h - 1);
  const QFontMetrics fm(font());
  const QRect legenda(7, 0, fm.horizontalAdvance(legenda_) + 5, fm.height());
  const QColor fundo = fundo_.isValid() && fundo_.alpha() > 0 ? fundo_ : palette().color(QPalette::Window);
  p.fillRect(legenda, fundo);
  p.setPen(palette().color(QPalette::WindowText));
  p.drawText(legenda, Qt::AlignLeft | Qt::AlignTop, legenda_);
}

void SpecialFrame::resizeEvent(QResizeEvent* e) {
  QWidget::resizeEvent(e);
  Redesenha();
}

void SpecialFrame::moveEvent(QMoveEvent* e) {
  QWidget::moveEvent(e);
  Redesenha();
}

void SpecialFrame::mousePressEvent(QMouseEvent*) {
  if (relata) relata({EventoControle::Clique});
}

void SpecialFrame::mouseDoubleClickEvent(QMouseEvent*) {
  if (relata) relata({EventoControle::DuploClique});
}

// ---- The gradient -----------------------------------------------------------------

int ValorMaior(int r, int g, int b, int& lider) {
  // Rule after rule, a later one that holds overriding an earlier one.
  lider = 0;
  if (r == g && g == b) lider = 0;
  if (r > b && r > g) lider = 0;
  if (g > b && g > r) lider = 1;
  if (b > g && b > 1) lider = 2;
  if (g == b && g > r) lider = 1;
  if (g == r && g > b) lider = 1;
  if (r == b && r > g) lider = 0;
  const int vaos[3] = {r, g, b};
  return vaos[lider];
}

bool DesenhaGradiente(QPainter& p, QSize tamanho, const QColor& inicial, const QColor& final) {
  int cor[3] = {inicial.red(), inicial.green(), inicial.blue()};
  const int fim[3] = {final.red(), final.green(), final.blue()};
  int vao[3], passo[3], intervalo[3] = {0, 0, 0};
  for (int i = 0; i < 3; ++i) {
    vao[i] = fim[i] - cor[i];
    passo[i] = vao[i] < 0 ? -1 : 1;
    vao[i] = std::abs(vao[i]);
  }
  int lider = 0;
  ValorMaior(vao[0], vao[1], vao[2], lider);
  const int altura = tamanho.height();
  // The interval as the original's 16-bit integer took it: rounded, half
  // to even.
  for (int k = 0; k < 3; ++k) {
    const int i = (lider + k) % 3;
    if (vao[i] == 0) continue;
    intervalo[i] = static_cast<int>(std::nearbyint(static_cast<double>(altura) / vao[i]));
    if (intervalo[i] == 0) return false;
  }
  // Lines below what the surface holds can't be seen: the walk stops there.
  const int ultima = p.device() ? std::min(altura, p.device()->height()) : altura;
  for (int y = 0; y <= ultima; ++y) {
    p.setPen(QColor(cor[0], cor[1], cor[2]));
    p.drawLine(0, y, tamanho.width(), y);
    for (int i = 0; i < 3; ++i)
      if (vao[i] != 0 && y % intervalo[i] == 0) cor[i] = std::clamp(cor[i] + passo[i], 0, 255);
  }
  return true;
}

}  // namespace zv
