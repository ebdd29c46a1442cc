// The word table of the editor: 701 slots in four sections (commands from
// 0, keywords from 300, attributes from 500, operators from 650), each
// ending at its first empty slot, and the language definition built from
// it for the editor's colouring.
#pragma once

#include <QSet>
#include <QString>
#include <array>

namespace zv {

class TabelaPalavras {
 public:
  static constexpr int kSlots = 701;
  enum Secao { kComandos = 0, kPalavrasChave = 300, kAtributos = 500, kOperadores = 650 };

  TabelaPalavras() { Preenche(); }
  // Fills the table: at the first showing of the main window, and again at
  // each registration of the language.
  void Preenche();
  const QString& Slot(int i) const { return slots_[static_cast<size_t>(i)]; }
  // A section as the editor takes a word list: each word followed by a line feed.
  QString Lista(Secao s) const;
  // Which section colours a word, case-sensitively; -1 for none. A word
  // standing in two lists ("Col", "True") takes the first.
  int SecaoDe(const QString& palavra) const;

 private:
  std::array<QString, kSlots> slots_;
  QSet<QString> comandos_, chave_, atributos_;
};

}  // namespace zv
