// BtnEsp: the button behind the Button command. Style 0 draws a flat
// three-dimensional face that sinks when pressed; style 1 shows one of five
// state pictures (a skin). It tracks hover, press and focus itself: hover
// on a 100 ms timer that runs only while the mouse is over it, and the
// background under it sampled twice after it starts, so that a button on a
// picture or a gradient shows no grey corner.
#pragma once

#include <QPixmap>
#include <QPushButton>
#include <QTimer>
#include <array>

#include "controls/evento_controle.h"

namespace zv {

// The five state pictures, in the order the Button command names them.
enum class EstadoPele { Cima, Alto, Foco, Baixo, Desativado };  // BtnUp, BtnHigh, BtnFocus, BtnDown, BtnDisabled
struct Pele {
  std::array<QPixmap, 5> figuras;
  QPixmap& operator[](EstadoPele e) { return figuras[static_cast<size_t>(e)]; }
  const QPixmap& operator[](EstadoPele e) const { return figuras[static_cast<size_t>(e)]; }
};

// The button-types array: skins 0 to 8, drawn here (no picture files) at
// the size asked for. Skin 0 is the one ButtonStyle may change in a run.
inline constexpr int kTiposBotao = 9;
Pele PelePadrao(int tipo, QSize tamanho);

class BtnEsp : public QPushButton {
 public:
  explicit BtnEsp(QWidget* pai);
  RelatorControle relata;

  // Style: 0 drawn, 1 skin. A skin of default pictures (tipoPele >= 0) is
  // drawn again at each size; one given as pictures is shown as it is.
  int estilo() const { return estilo_; }
  void DefineEstilo(int estilo);
  void DefinePele(const Pele& pele);
  void DefineTipoPele(int tipo);
  const Pele& pele() const { return pele_; }
  // Transparent: the colour around the face is sampled from the parent.
  bool transparente = true;

  // What is on view, for the window dump and tests.
  EstadoPele FiguraVisivel() const { return figura_; }
  bool Afundado() const { return afundado_; }
  bool MouseSobre() const { return mouseSobre_; }
  // The face's content as laid out: the icon's and the caption's places.
  QRect RetanguloIcone() const;
  QRect RetanguloLegenda() const;
  // One tick of the hover timer, and of the background sampling.
  void TiqueHover();
  void AmostraFundo();
  bool HoverAtivo() const { return hover_.isActive(); }

 protected:
  void paintEvent(QPaintEvent* e) override;
  void resizeEvent(QResizeEvent* e) override;
  void changeEvent(QEvent* e) override;
  void mousePressEvent(QMouseEvent* e) override;
  void mouseReleaseEvent(QMouseEvent* e) override;
  void mouseMoveEvent(QMouseEvent* e) override;
  void focusInEvent(QFocusEvent* e) override;
  void focusOutEvent(QFocusEvent* e) override;
  void keyPressEvent(QKeyEvent* e) override;
  void keyReleaseEvent(QKeyEvent* e) override;

 private:
  void MostraFigura(EstadoPele e);
  void Afunda(bool sim);
  QRect Face() const;
  void Layout(const QRect& face, QRect* icone, QRect* legenda) const;

  int estilo_ = 0;
  int tipoPele_ = -1;  // a default skin, drawn at the button's size
  Pele pele_;
  EstadoPele figura_ = EstadoPele::Cima;
  bool mouseSobre_ = false, altoVisivel_ = false, temFoco_ = false, pressionado_ = false, afundado_ = false;
  QColor superficie_;  // sampled from the parent; invalid until then
  QTimer hover_;       // Timer1
  QTimer amostra_;     // Timer2
  int amostras_ = 0;
};

}  // namespace zv
