// The frame behind the Frame command (`SpecialFrame`): an etched rectangle
// of eight lines with a caption that breaks its top edge, on the colour
// that lies under the frame's centre. And the window gradient (`Gradiente`)
// that the Gradient command paints on a window's surface.
#pragma once

#include <QColor>
#include <QTimer>
#include <QWidget>

#include "controls/evento_controle.h"

class QPainter;

namespace zv {

// The colour of the parent's own surface at `p` (its background and what it
// painted, not its other children): what the original's Point read.
QColor CorDaSuperficie(QWidget* pai, QPoint p);

class SpecialFrame : public QWidget {
 public:
  explicit SpecialFrame(QWidget* pai);
  RelatorControle relata;
  QString Legenda() const { return legenda_; }
  void DefineLegenda(const QString& t);
  QColor FundoDaLegenda() const { return fundo_; }
  // Reads the colour under the frame again and redraws.
  void Redesenha();

 protected:
  void paintEvent(QPaintEvent* e) override;
  void resizeEvent(QResizeEvent* e) override;
  void moveEvent(QMoveEvent* e) override;
  void mousePressEvent(QMouseEvent* e) override;
  void mouseDoubleClickEvent(QMouseEvent* e) override;

 private:
  QString legenda_ = QStringLiteral("Label");
  QColor fundo_;
  QTimer relogio_;  // once, after 1000 ms: the parent has drawn by then
  bool lendo_ = false;
};

// ValorMaior: of the three spans, the leader's (0 red, 1 green, 2 blue).
int ValorMaior(int r, int g, int b, int& lider);
// Paints the gradient from `inicial` to `final`, a line at a time, over
// `tamanho`; false (nothing painted) when a component's interval comes to
// 0, which the original met as a division by zero.
bool DesenhaGradiente(QPainter& p, QSize tamanho, const QColor& inicial, const QColor& final);

}  // namespace zv
