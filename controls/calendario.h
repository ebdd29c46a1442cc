// Calendario: the date field behind the Calendar command. A date editor
// (TxtData), a drop button, and a month calendar below them, hidden until
// opened: opening grows the control over the controls below it; choosing a
// day, Enter, or the button again closes it, and the date goes into the
// field. Closing always reports a change, a day chosen or not.
#pragma once

#include <QCalendarWidget>
#include <QDateEdit>
#include <QLineEdit>
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

namespace zv {

// MyDate: a second date field, with colours of its own. No window of the
// run time makes one; it belongs to the set for programs of the
// environment's kind. The date editor stands larger than its panel, so
// that its own frame and button are cut off, and a drop button of ours
// opens its month.
class MyDate : public QWidget {
 public:
  explicit MyDate(QWidget* pai);
  QColor corFoco{0x80, 0x80, 0xFF};     // CorFoco, 0xFF8080 as the language counts colours
  QColor corPerdeFoco{192, 0, 0};       // CorPerdeFoco, 192
  QColor CorBorda() const { return corBorda_; }
  QDate ValorData() const { return dtPicker1_->date(); }
  void DefineValorData(const QDate& d) { dtPicker1_->setDate(d); }
  // CorFundo, CorLetra, FundoTitulo, CorTitulo, CorTrilha: the month's.
  void DefineCoresMes(const QColor& fundo, const QColor& letra, const QColor& fundoTitulo, const QColor& titulo,
                      const QColor& trilha);
  // Ativa: the editor on or off, the helper box the other way.
  void DefineAtiva(bool sim);
  bool Aberto() const;
  QDateEdit* editor() const { return dtPicker1_; }
  QWidget* botao() const;

 protected:
  void paintEvent(QPaintEvent* e) override;
  void resizeEvent(QResizeEvent* e) override;

 private:
  QWidget* picture1_;
  QDateEdit* dtPicker1_;
  BotaoDescer* image1_;
  QLineEdit* txtAux_;
  QColor corBorda_{192, 0, 0};
  QColor trilha_;
};

}  // namespace zv
