// The scroll bars (`BarraHorizontal`, `BarraVertical`), drawn here part by
// part (arrows, track, thumb) with auto-repeat and a value reported during a
// drag.
#pragma once

#include <QBasicTimer>
#include <QPixmap>
#include <QWidget>
#include <array>
#include <functional>

#include "controls/evento_controle.h"

namespace zv {

// One bar; the orientation says which of the twins it is. Positions are
// pixels along the bar (x for the horizontal one, y for the vertical one).
class BarraRolagem : public QWidget {
 public:
  BarraRolagem(Qt::Orientation o, QWidget* pai);
  RelatorControle relata;       // the ScrollBar command's events
  std::function<void()> aoMudar;  // the change event, for a control that owns the bar

  Qt::Orientation orientation() const { return orientacao_; }
  // Max, SmallChange, LargeChange only store: the next placing of the thumb
  // reads them. Value stores, places the thumb and raises the change.
  int maximum() const { return max_; }
  void setMaximum(int m) { max_ = m; }
  void setRange(int, int m) { setMaximum(m); }
  int singleStep() const { return passo_; }
  void setSingleStep(int p) { passo_ = p; }
  int pageStep() const { return pagina_; }
  void setPageStep(int p) { pagina_ = p; }
  int value() const { return valor_; }
  void setValue(int v);

  // What the user does, also for the event script.
  void Passo(bool frente);
  void Pagina(bool frente);
  // A drag of the thumb that ends with its low edge at `posicao`.
  void ArrastaAte(double posicao);
  // A drag that ends at a value: the thumb where that value puts it.
  void ArrastaValor(int v);

  // The picture of a part; a null picture gives the built-in drawing.
  enum Parte { SetaBaixa, SetaAlta, SetaBaixaPress, SetaAltaPress, PolegarNormal, PolegarPress, Fundo, kPartes };
  void DefineFigura(Parte p, const QPixmap& figura);

  // The thumb's low edge and the ends it may take, for tests.
  double Posicao() const { return posicao_; }
  double Minimo() const { return minimo_; }
  double Maximo() const { return maximo_; }

 protected:
  void paintEvent(QPaintEvent*) override;
  void resizeEvent(QResizeEvent*) override;
  void showEvent(QShowEvent*) override;
  void mousePressEvent(QMouseEvent* e) override;
  void mouseMoveEvent(QMouseEvent* e) override;
  void mouseReleaseEvent(QMouseEvent* e) override;
  void mouseDoubleClickEvent(QMouseEvent* e) override;
  void keyPressEvent(QKeyEvent* e) override;
  void timerEvent(QTimerEvent* e) override;
  void focusInEvent(QFocusEvent* e) override;
  void focusOutEvent(QFocusEvent* e) override;

 private:
  void IniciaBarra();
  void Extremos();
  double Escala() const;
  int ValorEm(double posicao) const;
  void ColocaPolegar();
  void Mudou();
  int Comprimento() const;  // along the bar
  int Espessura() const;    // across it
  int TamanhoPolegar() const;
  double Ao(const QPointF& p) const;  // a point's position along the bar

  Qt::Orientation orientacao_;
  int max_ = 100, passo_ = 1, pagina_ = 10, valor_ = 0;
  double minimo_ = 0, maximo_ = 0, posicao_ = 0;
  bool arrastando_ = false, altaPresa_ = false, baixaPresa_ = false;
  bool depoisDoDuplo_ = false;
  double deslocamento_ = 0;
  int tiques_ = 0;
  QBasicTimer timer1_;  // 50 ms: auto-repeat and the change during a drag
  std::array<QPixmap, kPartes> figuras_;
};

class BarraHorizontal : public BarraRolagem {
 public:
  explicit BarraHorizontal(QWidget* pai) : BarraRolagem(Qt::Horizontal, pai) {}
};

class BarraVertical : public BarraRolagem {
 public:
  explicit BarraVertical(QWidget* pai) : BarraRolagem(Qt::Vertical, pai) {}
};


}  // namespace zv
