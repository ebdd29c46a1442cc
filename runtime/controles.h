// The control tables: for each kind, parallel tables by slot of instances,
// names and owners, and the count of slots ever used. One kind's names are
// apart from another's: the keyword says which table a command searches.
#pragma once

#include <QPointer>
#include <QWidget>
#include <array>
#include <cstdint>
#include <vector>

#include "controls/evento_controle.h"
#include "core/texto.h"

namespace zv {

// The kinds, in the order in which the tear-down walks them.
enum class TipoControle : int {
  Gif, Botao, Texto, Moeda, Check, Rotulo, Link, Radio, Combo, Frame, Mascara, Calendario, Barra, Box,
  Figura, Imagem, Video,
};
inline constexpr int kTiposControle = 17;

struct InfoControle {
  const char16_t* palavra;  // the command's keyword, as error messages spell it
  const char16_t* espelho;  // suffix of the mirror variable, or null
  const char16_t* tipoEspelho;
  bool focavel;             // takes a TabIndex
};
const InfoControle& Info(TipoControle t);

struct TabelaControles {
  std::vector<QPointer<QWidget>> instancias;
  std::vector<Texto> nomes;   // as given; empty = free slot
  std::vector<Texto> donos;   // NomeFormAtual at creation
  std::vector<char> multiLinha;  // Text only
  int16_t contagem = 0;       // slots ever used

  // The first slot from 0 whose name is `nome` in upper case; -1 if none.
  int Acha(TextoV nomeMaiusculo) const;
  // The first free slot, the tables grown by one when there is none.
  int Livre();
};

// The event strings and the key tables, shared by all windows.
struct EstadoEventos {
  Texto ultimaTeclaEvento, ultimaTeclaTeste;  // the last key, two copies
  Texto ultimoClique, ultimoRedimensiona, ultimaMudancaBox, ultimoGif;
  std::array<char16_t, 7> nomeadas{};  // '+' or '-' of L R U D S C #
  std::array<bool, 256> codigos{};     // down
  Texto botoesMouse = u"00";
  EstadoEventos() { nomeadas.fill(u'-'); }
};

}  // namespace zv
