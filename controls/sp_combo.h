// SpCombo: the combo box behind the Combo command. A text box, a drop
// button and a list that stands below the text all the time, hidden by the
// control's own height: opening the list grows the control over its
// neighbours. Typing completes: the first item that begins with the text
// (capitals and Portuguese accents folded) is selected in the list, and
// Enter or a click takes it into the text.
#pragma once

#include <QLineEdit>
#include <QListWidget>
#include <QPixmap>
#include <QWidget>

#include "controls/encaminha.h"
#include "controls/evento_controle.h"

namespace zv {

// Upper case with the Portuguese accents taken off: "São" -> "SAO".
QString DobraTexto(const QString& s);

class BotaoDescer;

class SpCombo : public QWidget {
 public:
  explicit SpCombo(QWidget* pai);
  RelatorControle relata;

  QString Texto() const { return txtAux_->text(); }
  void DefineTexto(const QString& t) { txtAux_->setText(t); }
  void AdicionaItem(const QString& item) { lstAux_->addItem(item); }
  void Limpa() { lstAux_->clear(); }
  // ListHeight in pixels; .Lines gives 14 a line (210 twips).
  void DefineAlturaLista(int px);
  // DefButton: the drop button wears UpPicture and DownPicture.
  void DefineFigurasBotao(bool proprias, const QPixmap& cima, const QPixmap& baixo);
  // SelLista: the index of the first item equal to the text, or the count.
  int SelLista() const;
  int IndSel() const { return lstAux_->currentRow(); }
  bool Aberta() const { return aberta_; }
  void Abre();
  void Fecha(bool devolveFoco = true);
  QLineEdit* caixa() const { return txtAux_; }
  QListWidget* lista() const { return lstAux_; }
  QWidget* botao() const;

 protected:
  void resizeEvent(QResizeEvent* e) override;
  void changeEvent(QEvent* e) override;
  void keyPressEvent(QKeyEvent* e) override;
  void keyReleaseEvent(QKeyEvent* e) override;
  bool eventFilter(QObject* o, QEvent* e) override;

 private:
  void Arranja();
  void Completa();
  void ItemParaTexto();
  void CliqueLista();
  bool TeclaNaCaixa(QKeyEvent* e);
  bool TeclaNaLista(QKeyEvent* e);
  QWidget* ParteComFoco() const;

  QLineEdit* txtAux_;
  BotaoDescer* picUp_;
  QListWidget* lstAux_;
  int alturaLista_ = 106;  // 1590 twips
  bool aberta_ = false;
  bool arranjando_ = false;
  EncaminhaTeclas encaminha_;
  bool mudando_ = false;         // Changing: from a key's press to its release
  bool primeiroClique_ = true;   // the list's first click event is passed over
  QString ultimoTexto_;          // LastText
};

}  // namespace zv
