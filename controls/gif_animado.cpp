#include "controls/gif_animado.h"

#include <QImageReader>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <cmath>

namespace zv {

QuadrosGif LeGif(const QString& caminho) {
  QuadrosGif q;
  QImageReader r(caminho);
  r.setDecideFormatFromContent(true);
  QImage f;
  while (r.read(&f)) {
    q.quadros.push_back(f.convertToFormat(QImage::Format_ARGB32_Premultiplied));
    // Browsers treat a delay under 20 ms as 100 ms; so does this player.
    int d = r.nextImageDelay();
    q.atrasos.push_back(d < 20 ? 100 : d);
    if (r.imageCount() > 0 && static_cast<int>(q.quadros.size()) >= r.imageCount()) break;
  }
  return q;
}

namespace {

// One frog frame: `salto` from 0 (sitting) to 1 (at the top of a hop).
QImage Sapo(const QColor& pele, const QColor& barriga, bool laco, double salto) {
  constexpr int kLado = 64;
  QImage f(kLado, kLado, QImage::Format_ARGB32_Premultiplied);
  f.fill(Qt::transparent);
  QPainter p(&f);
  p.setRenderHint(QPainter::Antialiasing);
  const double sobe = 14 * salto;
  const double estica = 1 + 0.15 * salto;
  // Legs: folded sitting, stretched in the air.
  p.setPen(QPen(pele.darker(140), 1.5));
  p.setBrush(pele.darker(115));
  p.drawEllipse(QRectF(8, 44 - sobe * 0.5, 18, 12 * estica));
  p.drawEllipse(QRectF(38, 44 - sobe * 0.5, 18, 12 * estica));
  // Body and belly.
  p.setBrush(pele);
  p.drawEllipse(QRectF(12, 24 - sobe, 40, 30));
  p.setBrush(barriga);
  p.setPen(Qt::NoPen);
  p.drawEllipse(QRectF(20, 34 - sobe, 24, 18));
  // Eyes on top of the head.
  p.setPen(QPen(pele.darker(140), 1.5));
  p.setBrush(pele);
  p.drawEllipse(QRectF(14, 16 - sobe, 14, 14));
  p.drawEllipse(QRectF(36, 16 - sobe, 14, 14));
  p.setBrush(Qt::white);
  p.drawEllipse(QRectF(17, 19 - sobe, 8, 8));
  p.drawEllipse(QRectF(39, 19 - sobe, 8, 8));
  p.setBrush(Qt::black);
  p.setPen(Qt::NoPen);
  p.drawEllipse(QRectF(20, 21 - sobe, 4, 4));
  p.drawEllipse(QRectF(42, 21 - sobe, 4, 4));
  // A smile.
  p.setPen(QPen(pele.darker(170), 1.5));
  p.setBrush(Qt::NoBrush);
  p.drawArc(QRectF(24, 30 - sobe, 16, 8), 200 * 16, 140 * 16);
  if (laco) {
    p.setPen(QPen(QColor(150, 20, 60), 1));
    p.setBrush(QColor(230, 60, 120));
    QPainterPath a;
    a.moveTo(32, 14 - sobe);
    a.lineTo(24, 9 - sobe);
    a.lineTo(24, 19 - sobe);
    a.closeSubpath();
    a.moveTo(32, 14 - sobe);
    a.lineTo(40, 9 - sobe);
    a.lineTo(40, 19 - sobe);
    a.closeSubpath();
    p.drawPath(a);
  }
  return f;
}

}  // namespace

QuadrosGif GifPadrao(int n) {
  QuadrosGif q;
  if (n < 0 || n > 3) return q;
  const bool sapa = n >= 2;
  const QColor pele = n == 0 ? QColor(70, 160, 60) : n == 1 ? QColor(120, 150, 40) : n == 2 ? QColor(80, 170, 120)
                                                                                              : QColor(150, 170, 60);
  const QColor barriga = sapa ? QColor(250, 230, 200) : QColor(230, 240, 170);
  // A hop: up in four frames, down in four, and a rest. The second of each
  // pair hops twice as fast.
  const int passos = 8;
  const int atraso = (n % 2 == 0) ? 90 : 45;
  for (int i = 0; i < passos; ++i) {
    q.quadros.push_back(Sapo(pele, barriga, sapa, std::sin(3.14159265 * i / passos)));
    q.atrasos.push_back(atraso);
  }
  q.quadros.push_back(Sapo(pele, barriga, sapa, 0));
  q.atrasos.push_back(400);
  return q;
}

GifAnimado::GifAnimado(QWidget* pai) : QLabel(pai) {
  setAttribute(Qt::WA_TranslucentBackground);
  timer_.setSingleShot(true);
  QObject::connect(&timer_, &QTimer::timeout, this, [this] { Tique(); });
}

void GifAnimado::Carrega(QuadrosGif q) {
  timer_.stop();
  q_ = std::move(q);
  quadro_ = 0;
  if (!estica_ && !q_.quadros.empty()) resize(q_.quadros[0].size());
  MostraQuadro(0);
}

void GifAnimado::MostraQuadro(int n) {
  if (q_.quadros.empty()) {
    clear();
    return;
  }
  quadro_ = std::clamp(n, 0, Quadros() - 1);
  const QImage& f = q_.quadros[static_cast<size_t>(quadro_)];
  setPixmap(QPixmap::fromImage(estica_ ? f.scaled(size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation) : f));
}

void GifAnimado::Proximo() { MostraQuadro(quadro_ + 1 >= Quadros() ? 0 : quadro_ + 1); }
void GifAnimado::Anterior() { MostraQuadro(quadro_ == 0 ? Quadros() - 1 : quadro_ - 1); }

void GifAnimado::Toca() {
  if (Quadros() < 2) return;
  timer_.start(q_.atrasos[static_cast<size_t>(quadro_)]);
}

void GifAnimado::Para() { timer_.stop(); }

void GifAnimado::Tique() {
  if (quadro_ + 1 >= Quadros()) {
    if (!repete) return;
    MostraQuadro(0);
  } else {
    MostraQuadro(quadro_ + 1);
  }
  timer_.start(q_.atrasos[static_cast<size_t>(quadro_)]);
}

void GifAnimado::Estica(bool sim) {
  estica_ = sim;
  MostraQuadro(quadro_);
}

void GifAnimado::resizeEvent(QResizeEvent* e) {
  QLabel::resizeEvent(e);
  if (estica_) MostraQuadro(quadro_);
}

void GifAnimado::mousePressEvent(QMouseEvent* e) {
  QLabel::mousePressEvent(e);
  if (relata && e->button() == Qt::LeftButton) relata({EventoControle::Clique});
}

void GifAnimado::mouseDoubleClickEvent(QMouseEvent* e) {
  QLabel::mouseDoubleClickEvent(e);
  if (relata) relata({EventoControle::DuploClique});
}

}  // namespace zv
