// The help: the index `Ajuda` (the 160 words with a search as you type)
// and the reader `Intro` (one RTF page taken out of Commands.pack, with a
// find panel). Both open beside the editor without blocking it.
#pragma once

#include <QDialog>
#include <QWidget>
#include <filesystem>

#include "core/texto.h"

class QFrame;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QTextEdit;

namespace zv {

class Interacao;

// Copies the page `pagina` (e.g. "Abs.rtf") out of the archive to `destino`:
// the first of the 300 directory entries whose name, its first 25
// characters trimmed, matches in any case. A missing archive is made empty,
// as the original did, and then nothing is found.
bool ExtraiArquivoComando(const std::filesystem::path& pacote, const std::filesystem::path& destino,
                          TextoV pagina);

class FormIntro;
class FormAjuda;

// TemaAtual and the two forms, made when first needed.
class Ajuda {
 public:
  // `pasta`: where Commands.pack, Command.rtf and ZarvoltTutorial.pdf lie.
  Ajuda(const std::filesystem::path& pasta, Interacao& interacao);
  ~Ajuda();

  Texto temaAtual;  // TemaAtual; "Curso" for the tutorial
  // F1: the page of `palavra` in the reader, or the index when it has none.
  void PalavraNoEditor(const QString& palavra);
  // "Help topics".
  void MostraIndice();
  // Opens the reader on `temaAtual`.
  void MostraLeitor();
  // Takes the page of `temaAtual` out and loads it into the reader.
  bool ExtraiComando();
  // True when `palavra` has a page in the archive.
  bool TemPagina(const QString& palavra) const;

  FormAjuda* indice();
  FormIntro* leitor();
  const std::filesystem::path& pasta() const { return pasta_; }
  Interacao& interacao() { return interacao_; }

 private:
  std::filesystem::path pasta_;
  Interacao& interacao_;
  FormAjuda* indice_ = nullptr;
  FormIntro* leitor_ = nullptr;
};

class FormAjuda : public QWidget {
 public:
  explicit FormAjuda(Ajuda& ajuda);
  QLineEdit* caixa() const { return txtAjuda_; }
  QListWidget* lista() const { return lista_; }
  // The incremental search: the first word whose start, of the text's
  // length, is at or after the text (both in capitals); else the last.
  void Procura(const QString& texto);
  void AbreSelecionada();
  void AbreTutorial();

 private:
  Ajuda& ajuda_;
  QLineEdit* txtAjuda_;
  QListWidget* lista_;
};

class FormIntro : public QWidget {
 public:
  explicit FormIntro(Ajuda& ajuda);
  QTextEdit* texto() const { return txtCurso_; }
  QLineEdit* frase() const { return txtFrase_; }
  QFrame* painel() const { return fraProcura_; }
  void MostraProcura();
  // Enter or BtnOK: a new search from the start, or the next hit.
  void Procura();
  void Carrega(const std::filesystem::path& rtf);
  void AjustaTitulo(const Texto& tema);

 protected:
  void keyPressEvent(QKeyEvent* e) override;
  bool eventFilter(QObject* o, QEvent* e) override;

 private:
  Ajuda& ajuda_;
  QTextEdit* txtCurso_;
  QFrame* fraProcura_;
  QLineEdit* txtFrase_;
  bool continua_ = false;
  int ultimo_ = -1;
};

}  // namespace zv
