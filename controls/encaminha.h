// Keys sent to a composite control itself (an event script's) go down to
// the part that has the focus, as a user's would. A key that part leaves
// comes back up to the control: it goes no further down.
#pragma once

#include <QCoreApplication>
#include <QKeyEvent>
#include <QWidget>

namespace zv {

class EncaminhaTeclas {
 public:
  void operator()(QKeyEvent* e, QWidget* alvo) {
    if (ativo_) {
      e->ignore();
      return;
    }
    ativo_ = true;
    QCoreApplication::sendEvent(alvo, e);
    ativo_ = false;
  }

 private:
  bool ativo_ = false;
};

}  // namespace zv
