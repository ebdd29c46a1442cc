// The text controls: a one-line text box and a multi-line rich text. They
// report clicks, focus, keys and changes; the numeric filter of `.Numeric`
// is the box's own, as it decides which key presses it takes.
#pragma once

#include <QLineEdit>
#include <QTextEdit>

#include "controls/evento_controle.h"

namespace zv {

class CaixaTexto : public QLineEdit {
 public:
  explicit CaixaTexto(QWidget* pai);
  RelatorControle relata;
  // Only digits and backspace get through (the Tag "NUMERICO").
  bool numerico = false;
  // A masked box (Mask): each "#" of the mask takes one digit, the other
  // characters stand as they are and the caret passes over them; Backspace
  // and Delete put "_" back. Empty: a plain box.
  QString mascara;

 protected:
  void mousePressEvent(QMouseEvent* e) override;
  void mouseDoubleClickEvent(QMouseEvent* e) override;
  void focusInEvent(QFocusEvent* e) override;
  void focusOutEvent(QFocusEvent* e) override;
  void keyPressEvent(QKeyEvent* e) override;
  void keyReleaseEvent(QKeyEvent* e) override;

 private:
  bool TeclaNaMascara(QKeyEvent* e);  // true when the key was the mask's
};

class TextoMultiLinha : public QTextEdit {
 public:
  explicit TextoMultiLinha(QWidget* pai);
  RelatorControle relata;
  QString Texto() const { return toPlainText(); }

 protected:
  void mousePressEvent(QMouseEvent* e) override;
  void mouseDoubleClickEvent(QMouseEvent* e) override;
  void focusInEvent(QFocusEvent* e) override;
  void focusOutEvent(QFocusEvent* e) override;
};

}  // namespace zv
