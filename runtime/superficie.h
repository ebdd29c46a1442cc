// Superficie: what the drawing commands and Write draw on. A window is one;
// an Image control is another, while `Image Name.Use` makes it the target.
#pragma once

#include <QColor>
#include <QFont>
#include <QImage>
#include <QPoint>
#include <QRect>
#include <QString>

namespace zv {

class Superficie {
 public:
  virtual ~Superficie() = default;
  // The drawing, transparent where nothing was drawn, grown to the surface.
  virtual QImage& Tela() = 0;
  // A repaint of a part of it.
  virtual void MostraTela(const QRect& r) = 0;
  // The colour seen at p, controls left out; invalid outside.
  virtual QColor CorVisivel(QPoint p) = 0;
  // What is seen, controls left out: the background, its picture and the
  // drawing, as large as the drawing.
  virtual QImage Visto() = 0;
  // Text at x, y in pixels, in the surface's font and ForeColor.
  virtual void Escreve(const QString& texto, int x, int y) = 0;
  virtual void Limpa() = 0;

  int larguraPena = 1;          // DrawWidth
  QColor corFrente{Qt::black};  // ForeColor

 protected:
  // The drawing grown to w by h, keeping what it holds; no larger than the
  // original's persistent picture could be: a surface made absurdly large
  // draws only on its first 4096 pixels.
  static void Cresce(QImage& tela, int w, int h);
  // Text on the drawing, its top-left at x, y; the part it covers.
  static QRect DesenhaTexto(QImage& tela, const QFont& fonte, const QColor& cor, const QString& texto, int x, int y);
};

}  // namespace zv
