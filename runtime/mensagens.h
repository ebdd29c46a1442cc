// Every text the run's hosts, its windows and its launcher show a user or a
// tool. The launcher's are the runner's words on the terminal, not boxes:
// narrow texts. Tests spell these out literally.
#pragma once

#include "core/mensagens.h"
#include "core/texto.h"

namespace zv::msg::execucao {

// ---- Reading a program file ------------------------------------------------

inline constexpr char kEPasta[] = " is a folder, not a program file";
inline constexpr char kNaoLe[] = "can't read ";
inline constexpr char kFonteDanificada[] = " is a damaged source file: a code has no end marker #%";


// ---- The event script and the window module (standard error) -------------

inline constexpr char kLinhaDoRoteiro[] = "zvrun: event line %d: %s; skipped\n";
inline constexpr char kAindaSemJanela[] = "the program has no window yet";
inline constexpr char kJanelaFechada[] = "the run window is closed";
inline constexpr char kSemControle[] = "no control named ";
inline constexpr char kSemMenu[] = "no menu title or option ";
inline constexpr char kSemJanela[] = "no window named ";
inline constexpr char kSemBarra[] = "no scroll bar named ";
inline constexpr char kSemFoco[] = "no window has the keyboard focus";
inline constexpr char kTeclaDesconhecida[] = "unknown key ";
inline constexpr char kAcaoDeMouse[] = "unknown mouse action ";
inline constexpr char kAcaoDesconhecida[] = "unknown action";
inline constexpr char kSemBox[] = "no box named ";
inline constexpr char kSemCabecalho[] = "the box has no such heading";
inline constexpr char kSemLinha[] = "the box has no row ";
inline constexpr char kCelulaTravada[] = "the cell can't be edited (AlterCell is off)";
inline constexpr char kModalSemUsuario[] = "zvrun: no user is left to close a modal window; the run ends\n";
inline constexpr char kNaoLeRoteiro[] = "can't read the event script ";
inline constexpr char kNaoEObjeto[] = ": not a JSON object";
inline constexpr char kNaoGrava[] = "can't write ";
inline constexpr char kModulo[] = "the window module ";
inline constexpr char kModuloNaoCarrega[] = " can't be loaded";

// The offscreen platform's notice that it can't pass size hints to a window
// manager it hasn't got: kept off a headless run's standard error.
inline constexpr char kAvisoDicasDeTamanho[] = "does not support propagateSizeHints";

}  // namespace zv::msg::execucao

namespace zv::msg {

using Texto = const char16_t*;

// The grid (Box). Its two older texts are Portuguese, as the system has them.
inline constexpr Texto ColunaAlem = u"{} N\u00e3o pode inserir dados na coluna {}";
inline constexpr Texto SelecaoInvalida = u"Selected: \u00cdndice inv\u00e1lido!";

// Window model.
inline constexpr Texto JanelasDemais = u"Could not set window: more than 20 windows defined!";
inline constexpr Texto EstaticasDemais = u"Can't open static window, maximum overlapping windows = 5!";
inline constexpr Texto UseEmModal = u"The command 'NewWindow Use' can only be used in dynamic windows!";
inline constexpr Texto FundoNaoAchado = u"Background - Image file not found:";
inline constexpr Texto ErroFundo = u"Error in the Background property!";
inline constexpr Texto ErroFundoJanela = u"Error in BackGround property!";
inline constexpr Texto ModoDeVideo = u"the screen mode can't be changed on this platform";
inline constexpr Texto TituloPrefixo = u"Zarvolt - ";

// Control commands.
inline constexpr Texto FiguraForma2 = u"Erro ao carregar figura, caminho n\u00e3o encontrado!";
inline constexpr Texto FiguraForma3 = u"Error loading picture, path not found!";
inline constexpr Texto TipoSemControle = u"this kind of window has no control of this kind";
// Transition: a picture the program's folder doesn't have.
inline constexpr Texto FiguraInicialAusente = u"Path of initial picture not found:";
inline constexpr Texto FiguraFinalAusente = u"Path of final picture not found:";
// Picture and DrawPictures.
inline constexpr Texto FiguraDeSpriteAusente = u"Picture file path not found:";
inline constexpr Texto SpriteInexistente = u"Picture does not exist!";
// AnimatedGif.
inline constexpr Texto GifFlutuanteInvalido = u"Invalid gif for type = 1 (float)!";
inline constexpr Texto GifAusente = u"Animated gif path file not found:";
inline constexpr Texto GifFlutuanteAltura = u"Float mode does not support the Height property!";
inline constexpr Texto GifFlutuanteLargura = u"Float mode does not support the Width property!";
// Image.
inline constexpr Texto ImagemAusente = u"Path of picture not found:";
inline constexpr Texto ImagemInexistente = u"Image does not exist: '{}'";
inline constexpr Texto SalvaFiguraExtensao = u"SalvaFigura: o nome do arquivo deve conter extens\u00e3o .bmp ou .jpg!";
inline constexpr Texto ImagemNaoGravada = u"the picture can't be written to {}";
// Reports and the printer.
inline constexpr Texto ErroNoRelatorio = u"Rep error in method {}\r{}";
inline constexpr Texto ErroNaImpressora = u"Printer error in method {}\r{}";
inline constexpr Texto RelatorioSemConfig = u"the report hasn't started: Rep.Config first";
inline constexpr Texto ImpressoraRecusa = u"the printer can't start a document";
inline constexpr Texto SemImpressora = u"There is no printer: the pages were written to {}";
inline constexpr Texto CanceladoPeloUsuario = u"Canceled by user!";
inline constexpr Texto PaginasAImprimir = u"Pages to print:";
inline constexpr Texto PaginasAte = u"TO";
inline constexpr Texto BotaoImprimir = u"Print";
inline constexpr Texto BotaoSair = u"Exit";
// RecordSound and WebCam.
inline constexpr Texto GravacaoSemAbertura = u"Erro de abertura do arquivo!";
inline constexpr Texto GravacaoFormato = u"Defini\u00e7\u00f5es n\u00e3o consistentes!";
inline constexpr Texto SemCamera = u"no camera is connected";
// A file that is there but isn't a picture.
inline constexpr Texto FiguraInvalida = u"Invalid picture";
// SystemMenu on a window class without a menu bar (Form2, Form3).
inline constexpr Texto SemMenu = u"Object doesn't support this property or method";
// A skin number the button-types array has no instance for.
inline constexpr Texto ElementoInexistente = u"Control array element '{}' doesn't exist";

// ---- The notification icon's menu ---------------------------------------------

inline constexpr char16_t kBandejaMostra[] = u"Show the window";
inline constexpr char16_t kBandejaSai[] = u"Exit";

}  // namespace zv::msg

namespace zv::msg::api {

inline constexpr char16_t kTituloFalha[] = u"Function call error";
inline constexpr char16_t kSemBiblioteca[] = u"Don't find library \"{}\"";
inline constexpr char16_t kSemEntrada[] =
    u"Can't find the entry point for \"{}\"\r\nNote: functions are case sensitive, check the syntax of the function!";
// (sic), under its own title.
inline constexpr char16_t kTituloFuncao[] = u"Function call error!";
inline constexpr char16_t kFuncaoNaoDefinida[] = u"Função não definida!";
inline constexpr char16_t kChamadaImpossivel[] = u"the call can't be prepared";

}  // namespace zv::msg::api

namespace zv::msg::p2p {

inline constexpr char16_t kSemConexao[] = u"Wrong protocol or connection state for the requested transaction or request";
inline constexpr char16_t kPortaInvalida[] = u"the port must be a number from 0 to 65535";

}  // namespace zv::msg::p2p
