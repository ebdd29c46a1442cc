// The code editor (what the environment asks of its editor control): the
// whole text, change notices, undo and redo, the word at the caret, lines,
// selecting a range, the language's colouring from the preferences record,
// and its own keystrokes: find (Ctrl+F), find the word at the caret
// (Ctrl+F3), replace (Ctrl+Alt+F3), go to line (Ctrl+G), bookmarks (Ctrl+F2,
// F2, Shift+F2).
#pragma once

#include <Qsci/qscilexercustom.h>
#include <Qsci/qsciscintilla.h>
#include <functional>
#include <set>

#include "environment/palavras.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace zv {

struct Preferencias;

class LexicoZarvolt : public QsciLexerCustom {
 public:
  enum Estilo { kPadrao, kComentario, kComando, kPalavraChave, kAtributo, kAspas, kOperador, kTotalEstilos };
  explicit LexicoZarvolt(QObject* pai, const TabelaPalavras& tabela) : QsciLexerCustom(pai), tabela_(tabela) {}
  const char* language() const override { return "Zarvolt"; }
  QString description(int estilo) const override;
  void styleText(int inicio, int fim) override;
  // The style of each byte of one line of text (UTF-8), as the editor
  // colours it: a test reads the colouring without an editor.
  static std::vector<int> EstilosDaLinha(const QByteArray& linha, const TabelaPalavras& tabela);

 private:
  const TabelaPalavras& tabela_;
};

class PainelProcura;

class EditorCodigo : public QsciScintilla {
 public:
  explicit EditorCodigo(QWidget* pai = nullptr);

  // AplicaPreferencias on this editor: font, colours, bold operators,
  // line numbers.
  void AplicaPreferencias(const Preferencias& p);
  bool NumeracaoAtiva() const { return numeracao_; }
  // The colour an element of the language is drawn in (for tests).
  QColor CorDoEstilo(int estilo) const;

  QString PalavraNoCursor() const;
  int TotalLinhas() const { return lines(); }
  int TamanhoLinha(int linha) const { return lineLength(linha); }
  // Selects from (line, column) to (line, column), from 0, and shows it.
  void SelecionaFaixa(int l1, int c1, int l2, int c2);
  void SelecionaTudo();

  // The editor's own dialogues, as its keystrokes open them.
  void AbreProcura(bool substituir);
  void AbreIrParaLinha();
  void ProcuraPalavraNoCursor();
  void AlternaMarcador();
  void ProximoMarcador(bool paraTras);
  PainelProcura* Painel() const { return painel_; }

  // The environment's marks beside the text. Breakpoints toggle by a click
  // in the symbol margin while `pontosLigados`; the other two are set by
  // the main window as a run stops.
  bool pontosLigados = true;
  std::set<int> Pontos() const;  // lines from 0
  void DefinePontos(const std::set<int>& linhas);
  void AlternaPonto(int linha);
  void MarcaErro(int linha);      // -1 clears
  void MarcaPasso(int linha);     // -1 clears
  int LinhaErro() const { return Primeira(kErro); }
  int LinhaPasso() const { return Primeira(kPasso); }
  // The one notice the editor control gives its owner besides changes: Esc.
  std::function<void()> aoEsc;

 protected:
  void keyPressEvent(QKeyEvent* e) override;
  void resizeEvent(QResizeEvent* e) override;

 private:
  TabelaPalavras tabela_;
  LexicoZarvolt* lexico_;
  PainelProcura* painel_;
  bool numeracao_ = true;
  int Primeira(int marca) const;
  void MarcaUnica(int marca, int linha);
  static constexpr int kMarcador = 1;
  static constexpr int kPonto = 2;
  static constexpr int kErro = 3;
  static constexpr int kPasso = 4;
};

// The find bar at the foot of the editor: find as you type, match case,
// whole word, wrap; a replace row; a go-to-line field.
class PainelProcura : public QWidget {
 public:
  explicit PainelProcura(EditorCodigo* editor);
  void Mostra(bool substituir, bool linha);
  bool ProcuraProximo(bool paraTras = false);
  int SubstituiTodos();
  QLineEdit* campoProcura;
  QLineEdit* campoSubstitui;
  QLineEdit* campoLinha;
  QCheckBox* maiusculas;
  QCheckBox* palavraInteira;
  QCheckBox* volta;
  QLabel* estado;

 protected:
  void keyPressEvent(QKeyEvent* e) override;

 private:
  bool Procura(bool doInicio, bool paraTras);
  EditorCodigo* editor_;
  QWidget* linhaProcura_;
  QWidget* linhaSubstitui_;
  QWidget* linhaIr_;
};

}  // namespace zv
