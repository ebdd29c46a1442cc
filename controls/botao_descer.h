// PicUp: the drop button of the combo and of the date control: a small
// raised face with a chevron at rest and pressed (PicNormal, PicDown), or
// two pictures of the user's (DefButton).
#pragma once

#include <QPixmap>
#include <QWidget>
#include <functional>

namespace zv {

class BotaoDescer : public QWidget {
 public:
  explicit BotaoDescer(QWidget* pai);
  bool proprias = false;
  QPixmap cima, baixo;
  bool apertado = false;
  std::function<void()> aoClicar;

 protected:
  void paintEvent(QPaintEvent*) override;
  void mousePressEvent(QMouseEvent*) override;
  void mouseReleaseEvent(QMouseEvent*) override;
};

}  // namespace zv
