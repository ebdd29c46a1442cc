// EntraNum: the currency field behind the Currency command. The number is
// typed into a hidden edit box (TxtAux) with "." or "," as the decimal key
// and printed on the control's own surface, right-aligned, in the form
// "1.234,50" whatever the locale, with `Casas` decimal places. A key press
// is reported before the key is applied: the mirror variable wants the
// value that stood before it.
#pragma once

#include <QLineEdit>
#include <QTimer>
#include <QWidget>

#include "controls/encaminha.h"
#include "controls/evento_controle.h"

namespace zv {

// The display text of a raw text such as "1234.5" (Formata).
QString FormataMoeda(const QString& texto, int casas);
// How many characters stand behind the first "." (QCAP).
int CasasDigitadas(const QString& texto);
// A disabled field's lighter colour (Clareia, with Maior choosing which
// components rise), as RGB values.
QColor Clareia(const QColor& cor, int limite, int passo);
// The numeric value of a text as the original read it: the leading number,
// blanks skipped, "." as the point; 0 when there is none.
double ValorDoTexto(const QString& texto);

class EntraNum : public QWidget {
 public:
  explicit EntraNum(QWidget* pai);
  RelatorControle relata;

  double Valor() const { return valor_; }
  void DefineValor(double v);
  int Casas() const { return casas_; }
  void DefineCasas(int c);
  QString TextoValor() const;   // the value with its decimals: "12.50"
  QString TextoExibido() const { return exibido_; }  // what the surface shows: "12,50"
  QString TextoBruto() const { return txtAux_->text(); }

  QColor corFundo = Qt::white, corFrente = Qt::black, corBorda = Qt::black;
  void DefineTravado(bool sim);   // Locked: keys are ignored
  void DefineTamanhoMaximo(int n);  // MaxLength, 0 for none
  // Redraws the surface and reads Value again from the raw text.
  void FormataNumero();
  bool CursorVisivel() const { return cursorVisivel_; }
  QLineEdit* caixa() const { return txtAux_; }

 protected:
  void paintEvent(QPaintEvent* e) override;
  void resizeEvent(QResizeEvent* e) override;
  void changeEvent(QEvent* e) override;
  void mousePressEvent(QMouseEvent* e) override;
  void keyPressEvent(QKeyEvent* e) override;
  void keyReleaseEvent(QKeyEvent* e) override;
  bool eventFilter(QObject* o, QEvent* e) override;

 private:
  bool TeclaDesce(QKeyEvent* e);  // true when the key is consumed
  void TeclaSobe(QKeyEvent* e);
  int FiltraTecla(int ascii);     // CampoNumerico: the key, or 0 to drop it

  QLineEdit* txtAux_;
  QTimer redesenho_;  // Timer1: 10 ms after a key
  QTimer pisca_;      // Timer2: the caret, every 500 ms
  double valor_ = 0;
  int casas_ = 2;
  EncaminhaTeclas encaminha_;
  int fase_ = 1;      // 1: the next key is the first since the focus came
  bool cursorVisivel_ = false;
  QString exibido_;
};

}  // namespace zv
