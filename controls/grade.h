// NovoBox, the grid behind the Box command: rows held in memory
// (ModeloGrade) shown through a fixed set of visible cells that the control
// lays out once and rewrites when it scrolls; headings with a sort arrow,
// sorting on a header click, column edges to drag, its own scroll bars,
// whole-row selection and cell editing. Rows and columns count from 0.
#pragma once

#include <QFont>
#include <QLineEdit>
#include <QRgb>
#include <QString>
#include <QWidget>
#include <cstdint>
#include <functional>
#include <vector>

#include "controls/barras.h"
#include "controls/evento_controle.h"

namespace zv {

struct ColunaGrade {
  QString titulo;
  int largura = 10;     // in columns of 120 twips (8 pixels)
  int alinhamento = 0;  // 0 left, 1 right, 2 center
  int tipo = 0;         // 0 text, 1 numeric (for sorting)
};

// A cell's attributes, resolved when it is filled. 12 bytes: the font name
// is an index into the grid's table of names.
struct AtributosCelula {
  QRgb fundo = 0xffffffff, frente = 0xff000000;
  uint16_t fonte = 0;
  int8_t tamanho = 10;
  bool negrito = false;
};

// A column's width in pixels: its units of 120 twips, at least one.
int LarguraPx(int largura);

// The data: a column table of at most 50 columns, and the rows as flat
// arrays [row × columns + column] grown by amortised doubling. The row
// being filled stands behind the finished ones.
class ModeloGrade {
 public:
  static constexpr int kMaxColunas = 50;

  void Reinicia();  // no columns, no data
  // Appends a column; false when there are 50 already.
  bool Titulo(const ColunaGrade& c);
  int TotalColunas() const { return static_cast<int>(colunas_.size()); }
  const ColunaGrade& Coluna(int c) const { return colunas_[static_cast<size_t>(c)]; }
  ColunaGrade& Coluna(int c) { return colunas_[static_cast<size_t>(c)]; }

  // Add: the next cell of the row being filled, padded by its column's
  // alignment (left: a blank behind, right: a blank before). False, with
  // nothing written, for a column beyond the last.
  bool Add(const QString& texto, const AtributosCelula& a, bool comAtributos = true);
  int ColunaDePreenchimento() const { return preenche_; }
  // BoxNew: the row being filled is finished; a new one begins.
  void BoxNew();
  // BoxNew2: the same for a grid filled without attributes: the new row's
  // cells keep the defaults whatever Add is given.
  void BoxNew2();
  int Linhas() const { return linhas_; }  // finished rows: ListCount
  void Limpa();                           // no rows, the row being filled empty

  bool Existe(int linha, int coluna) const {
    return linha >= 0 && coluna >= 0 && linha < linhas_ && coluna < TotalColunas();
  }
  // As stored (with the alignment's blank); empty beyond the data.
  QString Texto(int linha, int coluna) const;
  // LeVetor: trimmed; empty beyond the data.
  QString LeVetor(int linha, int coluna) const { return Texto(linha, coluna).trimmed(); }
  AtributosCelula Atributos(int linha, int coluna) const;
  void GravaVetor(int linha, int coluna, const QString& texto, const AtributosCelula& a);
  void GravaAtributos(int linha, int coluna, const AtributosCelula& a);
  // RemoveLinha: the rows behind move up; false beyond the data.
  bool RemoveLinha(int linha);

  // A header click on column c: a new column starts ascending, the same one
  // alternates. Returns true when this click sorts ascending.
  bool CliqueCabecalho(int c);
  int ColunaOrdem() const { return colunaOrdem_; }
  bool UltimaAscendente() const { return ultimaAscendente_; }
  // Sorts the finished rows by a column, stably: ascending keeps equal keys
  // in their order, descending is that order read from the end. A row being
  // filled is dropped, as the rows are added again.
  void Ordena(int coluna, bool ascendente);
  // A numeric column's key: every "." removed, the first "," made ".", the
  // number it begins with; 0 when none.
  static double NumeroDaChave(const QString& chave);

  // A font name's index in the grid's table.
  uint16_t IndiceFonte(const QString& nome);
  const QString& NomeFonte(uint16_t i) const { return fontes_[i]; }
  // Bytes held beyond the texts' characters, for the benchmark.
  size_t BytesEstrutura() const;

 private:
  void Cresce();  // room for the row being filled
  std::vector<ColunaGrade> colunas_;
  std::vector<QString> textos_;
  std::vector<AtributosCelula> atributos_;
  std::vector<QString> fontes_;
  int linhas_ = 0, preenche_ = 0;
  int colunaOrdem_ = -1;
  bool semAtributos_ = false;  // the row being filled began with BoxNew2
  bool proximaAscendente_ = true, ultimaAscendente_ = true;
};

// The grid control.
class NovoBox : public QWidget {
 public:
  explicit NovoBox(QWidget* pai);
  ~NovoBox() override;
  RelatorControle relata;
  // The texts of failures ("Não pode inserir dados na coluna"): the owner
  // shows them in its boxes, the control only says which.
  std::function<void(int falha, const QString& texto, int coluna)> avisa;
  enum Falha { kColunaAlem, kSelecaoInvalida };

  ModeloGrade modelo;
  bool atributosAtivos = false;  // AtivaAtributos
  bool alteraCelula = false;     // AlteraCelula
  bool barHor = true;            // BarHor

  // ---- Building ------------------------------------------------------------
  void Config(const QString& fonte, double tamanho, QRgb fundo, QRgb frente, QRgb fundoSel, QRgb frenteSel,
              QRgb painel, bool negrito);
  bool Titulo(const QString& texto, int largura, int alinhamento, int tipo);
  void Ativa(bool comTitulos);
  void Desativa();
  bool Ativo() const { return ativo_; }

  // ---- Filling ---------------------------------------------------------------
  // Back or fore of -1, an empty font, a size of 0: the defaults.
  void Add(const QString& texto, int64_t fundo = -1, int64_t frente = -1, const QString& fonte = {}, double tamanho = 0,
           bool negrito = false);
  void BoxNew() { modelo.BoxNew(); }
  void BoxNew2() { modelo.BoxNew2(); }
  void AddEnd();
  void Refresh();
  void Clear();
  void RemoveLinha(int linha);
  void GravaVetor(int linha, int coluna, const QString& texto, int64_t fundo = -1, int64_t frente = -1,
                  const QString& fonte = {}, double tamanho = 0, bool negrito = false);
  // LinhaAtributo: attributes for a run of cells of a data row, from a
  // column on, `quantas` of them (0: to the last column); the defaults as
  // GravaVetor takes them. The row is shown again when it is in view.
  void LinhaAtributo(int linha, int primeiraColuna, int quantas, int64_t fundo = -1, int64_t frente = -1,
                     const QString& fonte = {}, double tamanho = 0, bool negrito = false);
  // SofreuAlteracao: reports a change, as a cell edited by the user does.
  void SofreuAlteracao() { Relata(EventoControle::Mudou); }
  // The focus to the grid's key catcher (the control itself: it has no
  // separate one, as its cells are drawn).
  void SetaFoco() { setFocus(Qt::OtherFocusReason); }
  // The handle of a cell: the cells are drawn on the control, so every
  // cell answers with the control's own; 0 for an index out of the cells.
  quintptr RetHWnd(int indiceCelula);
  quintptr RetHWnd2() { return static_cast<quintptr>(winId()); }
  // Atualiza: the rows from the vertical bar's value.
  void Atualiza() { ListaVetStr(barraV_->value()); }
  // The default background or text colour, and the cells shown again in it.
  void DefineCorPadrao(bool fundo, QRgb cor);

  // ---- Showing and selecting -------------------------------------------------
  void ListaVetStr(int primeira);
  void AtualizaBox() { ListaVetStr(primeira_); }
  void PosicionaCursor(int linha);
  void Selected(int linha);
  // A data row brought into view (scrolling as Selected does); its visible row.
  int MostraLinha(int linha);
  // Puts a text in the cell being edited, as typing would; false when that
  // cell isn't the one being edited.
  bool EditaCelula(int linhaVisivel, int coluna, const QString& texto);
  void ClicaCabecalho(int coluna);

  // ---- Getters -------------------------------------------------------------
  int ListCount() const { return modelo.Linhas(); }
  int TotalLinhas() const { return totalLinhas_; }
  int TotalColunas() const { return modelo.TotalColunas(); }
  int ColunasVisiveis() const { return nc_; }  // columns that have cells
  int LinBoxRef() const { return linBoxRef_; }
  int ColBoxRef() const { return colBoxRef_; }
  int LinVetRef() const { return linVetRef_; }
  int ColVetRef() const { return colVetRef_; }
  int ListIndex() const { return barraV_->value() + cursor_; }
  int PrimeiraLinha() const { return primeira_; }
  // The selected data row, -1 when no row shows the selection.
  int LinhaSelecionada() const { return destacada_ ? primeira_ + cursor_ : -1; }
  QString Arg(int coluna) const { return modelo.LeVetor(primeira_ + cursor_, coluna); }
  QString LeVetor(int l, int c) const { return modelo.LeVetor(l, c); }
  QString List(int l, int c) const { return modelo.LeVetor(l, c); }
  // What a visible cell shows (with "..." when cut).
  QString LeCelula(int linhaVisivel, int coluna) const;
  BarraRolagem* BarraV() const { return barraV_; }
  BarraRolagem* BarraH() const { return barraH_; }
  bool Editando() const { return editor_ && editor_->isVisible(); }
  // Where a visible cell stands and a heading, in the control.
  QRect RetCelula(int linhaVisivel, int coluna) const;
  QRect RetCabecalho(int coluna) const;

 protected:
  void paintEvent(QPaintEvent*) override;
  void mousePressEvent(QMouseEvent* e) override;
  void mouseMoveEvent(QMouseEvent* e) override;
  void mouseReleaseEvent(QMouseEvent* e) override;
  void mouseDoubleClickEvent(QMouseEvent* e) override;
  void keyPressEvent(QKeyEvent* e) override;
  void keyReleaseEvent(QKeyEvent* e) override;
  void leaveEvent(QEvent* e) override;
  void focusInEvent(QFocusEvent* e) override;
  void focusOutEvent(QFocusEvent* e) override;
  void resizeEvent(QResizeEvent* e) override;
  bool eventFilter(QObject* o, QEvent* e) override;

 private:
  struct Celula {
    QString mostrado;  // the text as fitted
    QRgb fundo, frente;
    QFont fonte;
    bool vazia = true;
  };
  AtributosCelula Resolve(int64_t fundo, int64_t frente, const QString& fonte, double tamanho, bool negrito);
  AtributosCelula Padrao() { return Resolve(-1, -1, {}, 0, negrito_); }
  QFont FonteDe(const AtributosCelula& a) const;
  void GravaCelula(int lv, int c, const QString& texto, const AtributosCelula& a);
  void ClearBox();
  void Destaca(int lv);
  void ColocaColunas();
  void ColocaBarras();
  void RolouVertical();
  int ColunaEm(int x, bool& naBorda) const;
  bool CelulaEm(QPoint p, int& lv, int& c) const;
  void Tecla(int codigo);
  void LeBoxCel(int lv, int c) { linBoxRef_ = lv, colBoxRef_ = c; }
  void LeVetCel(int lv, int c) { linVetRef_ = lv + primeira_, colVetRef_ = c; }
  void AbreEditor(int lv, int c);
  void FechaEditor(bool grava);
  void Relata(EventoControle t, int tecla = 0, int shift = 0);

  // Defaults of Config.
  QString fonte_ = QStringLiteral("Tahoma");
  double tamanho_ = 10;
  QRgb fundo_ = qRgb(255, 255, 255), frente_ = qRgb(0, 0, 0);
  QRgb fundoSel_ = qRgb(49, 106, 197), frenteSel_ = qRgb(255, 255, 255);
  QRgb painel_ = qRgb(212, 216, 224);
  bool negrito_ = false;

  bool ativo_ = false, comTitulos_ = true;
  int totalLinhas_ = 0;  // rows of cells laid out
  int nc_ = 0;           // columns of cells laid out
  int primeira_ = 0;     // data row in visible row 0
  int cursor_ = 0;       // the selected visible row
  bool destacada_ = false;
  int linBoxRef_ = 0, colBoxRef_ = 0, linVetRef_ = 0, colVetRef_ = 0;
  std::vector<Celula> celulas_;  // visible row × columns + column
  std::vector<int> esquerdas_{0};  // each column's left edge in the panel, and the end
  int alturaCabecalho_ = 0, alturaLinha_ = 0, alturaPainel_ = 0, larguraPainel_ = 0;
  int deslocamentoH_ = 0;  // the panel's Left, pixels
  // The headings' state: skin by column ("Azul", "Laranja", "Laranja2").
  std::vector<uint8_t> pele_;
  int arrastaColuna_ = -1, arrastaDesvio_ = 0;
  int pressionado_ = -1;
  int setaColuna_ = -1;
  bool setaCima_ = true;
  BarraRolagem* barraV_;
  BarraRolagem* barraH_;
  QLineEdit* editor_ = nullptr;
  int editaLinha_ = -1, editaColuna_ = -1;
  bool rolando_ = false;
};

}  // namespace zv
