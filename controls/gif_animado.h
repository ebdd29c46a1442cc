// GifAnimado: an animated picture played frame by frame (AnimatedGif). The
// frames come from a file or from the built-in gifs; the widget shows one,
// steps forward or back, plays on a timer with each frame's own delay, and
// reports clicks.
#pragma once

#include <QImage>
#include <QLabel>
#include <QTimer>
#include <vector>

#include "controls/evento_controle.h"

namespace zv {

struct QuadrosGif {
  std::vector<QImage> quadros;
  std::vector<int> atrasos;  // milliseconds, one a frame
};

// The frames of a gif file; empty when it can't be read as a picture.
QuadrosGif LeGif(const QString& caminho);
// Built-in gif n (GifSapo1, GifSapo2, GifSapa1, GifSapa2); empty outside 0 to 3.
QuadrosGif GifPadrao(int n);
inline constexpr char kListaGifs[] = "GifSapo1#0,GifSapo2#1,GifSapa1#2,GifSapa2#3,";

class GifAnimado : public QLabel {
 public:
  explicit GifAnimado(QWidget* pai);
  void Carrega(QuadrosGif q);
  int Quadros() const { return static_cast<int>(q_.quadros.size()); }
  int Quadro() const { return quadro_; }
  void MostraQuadro(int n);
  void Proximo();
  void Anterior();
  void Toca();
  void Para();
  bool Tocando() const { return timer_.isActive(); }
  bool repete = true;  // Loop: from the last frame back to the first
  // Stretch: the frame fills the control instead of sizing it.
  void Estica(bool sim);
  RelatorControle relata;

 protected:
  void mousePressEvent(QMouseEvent* e) override;
  void mouseDoubleClickEvent(QMouseEvent* e) override;
  void resizeEvent(QResizeEvent* e) override;

 private:
  void Tique();
  QuadrosGif q_;
  int quadro_ = 0;
  bool estica_ = false;
  QTimer timer_;
};

}  // namespace zv
