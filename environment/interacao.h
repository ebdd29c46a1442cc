// What the environment asks of the person in front of it: yes/no and
// OK/Cancel prompts, the file dialogues, plain notices. The windows ask
// through this seam only, so that a test answers them itself, in order,
// with no timer racing a dialogue.
#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <optional>

class QPrinter;
class QWidget;

namespace zv {

class Interacao {
 public:
  virtual ~Interacao() = default;
  // Yes/No, or OK/Cancel: true for Yes or OK.
  virtual bool Pergunta(QWidget* pai, const QString& titulo, const QString& texto, bool simNao) = 0;
  virtual void Avisa(QWidget* pai, const QString& titulo, const QString& texto) = 0;
  // A notice of something done, under the information sign; and of a
  // failure that stopped a task, under the stop sign. Both are notices.
  virtual void Informa(QWidget* pai, const QString& titulo, const QString& texto) { Avisa(pai, titulo, texto); }
  virtual void AvisaErro(QWidget* pai, const QString& titulo, const QString& texto) { Avisa(pai, titulo, texto); }
  // The file dialogues: the chosen path, or nothing when cancelled.
  virtual std::optional<QString> EscolheArquivo(QWidget* pai, bool salvar, const QString& titulo,
                                                const QString& filtro, const QString& pasta,
                                                const QString& nome) = 0;
  // The printer dialogue: false when cancelled.
  virtual bool EscolheImpressora(QWidget* pai, QPrinter& impressora) = 0;
  // The colour dialogue: a colour as the language's number, or nothing.
  virtual std::optional<int> EscolheCor(QWidget* pai, const QString& titulo, int atual) = 0;
};

// Nobody at the keyboard: every question declined, every dialogue
// cancelled, the notices kept (for tools and tests that run unattended).
class InteracaoNula : public Interacao {
 public:
  QStringList avisos;
  bool Pergunta(QWidget*, const QString&, const QString&, bool) override { return false; }
  void Avisa(QWidget*, const QString&, const QString& texto) override { avisos << texto; }
  std::optional<QString> EscolheArquivo(QWidget*, bool, const QString&, const QString&, const QString&,
                                        const QString&) override {
    return std::nullopt;
  }
  bool EscolheImpressora(QWidget*, QPrinter&) override { return false; }
  std::optional<int> EscolheCor(QWidget*, const QString&, int) override { return std::nullopt; }
};

// The real dialogues of the desktop.
Interacao& InteracaoDaTela();

}  // namespace zv
