// The run window's own texts: the boxes of the window model, the control
// commands and the events, and the runner's one-line complaints. Tests spell
// these out literally.
#pragma once

#include "core/texto.h"

namespace zv::msg {

using Texto = const char16_t*;

// Window model.
inline constexpr Texto JanelasDemais = u"Could not set window: more than 20 windows defined!";
inline constexpr Texto EstaticasDemais = u"Can't open static window, maximum overlapping windows = 5!";
inline constexpr Texto UseEmModal = u"The command 'NewWindow Use' can only be used in dynamic windows!";
inline constexpr Texto FundoNaoAchado = u"Background - Image file not found:";
inline constexpr Texto ErroFundo = u"Error in the Background property!";
inline constexpr Texto ErroFundoJanela = u"Error in BackGround property!";
inline constexpr Texto ModoDeVideo = u"the screen mode can't be changed on this platform";
inline constexpr Texto ArquivoIcone = u"File not found";
inline constexpr Texto TituloPrefixo = u"Zarvolt - ";

// Control commands.
inline constexpr Texto FiguraForma2 = u"Erro ao carregar figura, caminho n\u00e3o encontrado!";
inline constexpr Texto FiguraForma3 = u"Error loading picture, path not found!";
inline constexpr Texto TipoSemControle = u"this kind of window has no control of this kind";

}  // namespace zv::msg
