// Calendario: the date field behind the Calendar command. A date editor
// (TxtData), a drop button, and a month calendar below them, hidden until
// opened: opening grows the control over the controls below it; choosing a
// day, Enter, or the button again closes it, and the date goes into the
// field. Closing always reports a change, a day chosen or not.
#pragma once

#include <QCalendarWidget>
#include <QDateEdit>
#include <QWidget>

#include "controls/encaminha.h"
#include "controls/evento_controle.h"

namespace zv {

class BotaoDescer;

class Calendario : public QWidget {
 public:
  explicit Calendario(QWidget* pai);
  RelatorControle relata;

  // Value: the date; setting it writes the field (and the month view).
  QDate date() const { return valor_; }
  void setDate(const QDate& d);
  void setDisplayFormat(const QString& f) { txtData_->setDisplayFormat(f); }
  QString text() const { return txtData_->text(); }

  bool Aberto() const { return aberto_; }
  void Abre();
  void Fecha();
  QDateEdit* campo() const { return txtData_; }
  QCalendarWidget* mes() const { return txtCalendario_; }
  QWidget* botao() const;
  QSize sizeHint() const override;

 protected:
  void resizeEvent(QResizeEvent* e) override;
  void keyPressEvent(QKeyEvent* e) override;
  void keyReleaseEvent(QKeyEvent* e) override;
  bool eventFilter(QObject* o, QEvent* e) override;

 private:
  void Arranja();
  QWidget* ParteComFoco() const;

  QDateEdit* txtData_;
  BotaoDescer* picUp_;
  QCalendarWidget* txtCalendario_;
  QDate valor_;
  QSize fechado_;           // PicCalendario's size: the closed control
  bool aberto_ = false;     // Open
  bool redimensionando_ = false;  // Resizing: the control's own growing
  EncaminhaTeclas encaminha_;
};

}  // namespace zv
