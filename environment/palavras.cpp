#include "environment/palavras.h"

#include "environment/tabela_palavras.h"

namespace zv {

namespace {

template <size_t N>
void Copia(std::array<QString, TabelaPalavras::kSlots>& destino, int inicio, const char16_t* const (&palavras)[N],
           QSet<QString>* conjunto) {
  for (size_t i = 0; i < N; ++i) {
    QString w = QString::fromUtf16(palavras[i]);
    destino[static_cast<size_t>(inicio) + i] = w;
    if (conjunto) conjunto->insert(w);
  }
}

}  // namespace

void TabelaPalavras::Preenche() {
  for (auto& s : slots_) s.clear();
  comandos_.clear(), chave_.clear(), atributos_.clear();
  Copia(slots_, kComandos, palavras::kComandos, &comandos_);
  Copia(slots_, kPalavrasChave, palavras::kPalavrasChave, &chave_);
  Copia(slots_, kAtributos, palavras::kAtributos, &atributos_);
  Copia(slots_, kOperadores, palavras::kOperadores, nullptr);
}

QString TabelaPalavras::Lista(Secao s) const {
  QString r;
  for (int i = s; i < kSlots && !slots_[static_cast<size_t>(i)].isEmpty(); ++i)
    r += slots_[static_cast<size_t>(i)] + QLatin1Char('\n');
  return r;
}

int TabelaPalavras::SecaoDe(const QString& palavra) const {
  if (comandos_.contains(palavra)) return kComandos;
  if (chave_.contains(palavra)) return kPalavrasChave;
  if (atributos_.contains(palavra)) return kAtributos;
  return -1;
}

}  // namespace zv
