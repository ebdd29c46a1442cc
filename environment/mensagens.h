// Every text the environment's windows show: menus, tips, prompts, the
// dialogues' titles, and the notices of its own that the original lacked.
#pragma once

namespace zv::msg::ambiente {

// ---- The document --------------------------------------------------------------
inline constexpr char kCodigoPrincipal[] = "Main code";
inline constexpr char kExtensao[] = "Code extension %1";
inline constexpr char kNomeCodigo[] = "Code name";
inline constexpr char kSalvarMudancasEm[] = "Save changes to %1?";
inline constexpr char kSalvarArquivo[] = "Save %1?";
inline constexpr char kModificadoSalvar[] = "%1 is modified. Save changes?";
inline constexpr char kTituloSalvar[] = "Save source code";
inline constexpr char kTituloAbrir[] = "Open source code";
inline constexpr char kFiltro[] = "Zarvolt source code (*.Zvc *.zvc *.ZVC)";
inline constexpr char kPrepareImpressora[] = "Prepare the printer and press OK";
inline constexpr char kCabecalhoListagem[] = "'*** Zarvolt - Program listing ";
// Notices of failures the original passed over in silence: the user's
// text is never dropped without a word.
inline constexpr char kNaoGravou[] = "%1 could not be written: %2. The program is not saved.";
inline constexpr char kNaoEFonte[] = "%1 is not a Zarvolt source file: it has no end-of-code mark \"#%\".";
inline constexpr char kBinario[] = "%1 is not a Zarvolt source file: it holds binary data. Nothing was read.";
inline constexpr char kGrande[] = "%1 is too large to be a Zarvolt source file (more than 16 MB). Nothing was read.";
inline constexpr char kIlegivel[] = "%1 could not be read.";
inline constexpr char kGravado[] = "Saved %1";

// ---- The editor's styles, as the colour settings name them ------------------
inline constexpr char kEstiloTexto[] = "Text";
inline constexpr char kEstiloComentario[] = "Comment";
inline constexpr char kEstiloComando[] = "Command";
inline constexpr char kEstiloPalavraChave[] = "Keyword";
inline constexpr char kEstiloAtributo[] = "Attribute";
inline constexpr char kEstiloAspas[] = "Quoted text";
inline constexpr char kEstiloOperador[] = "Operator";

// ---- Menus -----------------------------------------------------------------------
inline constexpr char kMenuArquivo[] = "&File";
inline constexpr char kMenuNovo[] = "New program";
inline constexpr char kMenuAbrir[] = "Open program";
inline constexpr char kMenuSalvar[] = "Save";
inline constexpr char kMenuSalvarComo[] = "Save as...";
inline constexpr char kMenuImprimir[] = "Print";
inline constexpr char kMenuSair[] = "Exit";
inline constexpr char kMenuEditar[] = "&Edit";
inline constexpr char kMenuDesfazer[] = "Undo";
inline constexpr char kMenuRefazer[] = "Redo";
inline constexpr char kMenuProcurar[] = "Find...";
inline constexpr char kMenuProxima[] = "Find next";
inline constexpr char kMenuSubstituir[] = "Replace...";
inline constexpr char kMenuBookmark[] = "Activate/Deactivate bookmark";
inline constexpr char kMenuNextBookmark[] = "Go to next bookmark";
inline constexpr char kMenuPrevBookmark[] = "Go to previous bookmark";
inline constexpr char kMenuIrParaLinha[] = "Go to line...";
inline constexpr char kMenuConf[] = "Settings";
inline constexpr char kMenuPrograma[] = "&Program";
inline constexpr char kMenuExecutar[] = "Run";
inline constexpr char kMenuEncerrar[] = "Break";
inline constexpr char kMenuDepurar[] = "Debug";
inline constexpr char kMenuCompilar[] = "Compile";
inline constexpr char kMenuAjuda[] = "&Help";
inline constexpr char kMenuTopicos[] = "Help topics";
inline constexpr char kMenuHelp[] = "Help";
inline constexpr char kMenuSuporte[] = "Technical support";
inline constexpr char kMenuWeb[] = "Zarvolt on the Web";
inline constexpr char kMenuSobre[] = "About Zarvolt";

// ---- Tool bar tips -----------------------------------------------------------------
inline constexpr char kDicaPausa[] = "Pause";
inline constexpr char kDicaProcurar[] = "Find";
inline constexpr char kDicaComponentes[] = "Components wizard";
inline constexpr char kDicaFiguras[] = "Pictures";
inline constexpr char kDicaBotoes[] = "Buttons";

// ---- The find bar ------------------------------------------------------------------
inline constexpr char kProcurar[] = "Find";
inline constexpr char kSubstituirPor[] = "Replace with";
inline constexpr char kSubstituir[] = "Replace";
inline constexpr char kSubstituirTodos[] = "Replace all";
inline constexpr char kMaiusculas[] = "Match case";
inline constexpr char kPalavraInteira[] = "Whole word";
inline constexpr char kVolta[] = "Wrap";
inline constexpr char kAnterior[] = "Previous (Shift+F3)";
inline constexpr char kProximo[] = "Next (F3)";
inline constexpr char kNaoAchado[] = "Not found";
inline constexpr char kSubstituidas[] = "%1 replaced";
inline constexpr char kIrParaLinha[] = "Go to line:";

// ---- About, and a run's state --------------------------------------------------------
inline constexpr char kSobreTitulo[] = "About Zarvolt";
inline constexpr char kSobreTexto[] =
    "<h3>Zarvolt 8.0</h3><p>A development environment and interpreter for a BASIC-family language, "
    "for Linux desktops.</p><p>Copyright \u00a9 2026 the Zarvolt developers.</p>"
    "<p><a href=\"https://zarvolt.org\">zarvolt.org</a> \u2014 "
    "<a href=\"mailto:support@zarvolt.org\">support@zarvolt.org</a></p>";
inline constexpr char kEnderecoWeb[] = "https://zarvolt.org";
inline constexpr char kEnderecoSuporte[] = "mailto:support@zarvolt.org";
inline constexpr char kExecutando[] = "Running";
inline constexpr char kDepurando[] = "Debugging";
// FrmCompilar.
inline constexpr char kCompilarTitulo[] = "Zarvolt - Compile programs";
inline constexpr char kCompilarCabecalho[] = "Compile program (create an executable)";
inline constexpr char kCompilarBotao[] = "   Create executable\r    Program!";
inline constexpr char kCompilarSair[] = "Close";
inline constexpr char kCompilarFonte[] = "Source program";
inline constexpr char kCompilarExecutavel[] = "Executable file";
inline constexpr const char* kCompilarRotulos[] = {
    "Executable program icon", "Company owns",  "Program description", "Author's name (copyright)",
    "Product name",            "File version",  "Vers\u00e3o do produto", "Internal name", "Original filename"};
inline constexpr char kCompilarAguarde[] = "Wait, compiling program...";
inline constexpr char kCompilarFiltroExe[] = "Executable program (*)";
inline constexpr char kCompilarEscolheIcone[] = "Icon";
inline constexpr char kCompilarFiltroIcone[] = "Icon files (*.ico *.png)";
// The end of a build, with the executable's path between the two parts.
inline constexpr char kCompilarFeito1[] = "The executable file ";
inline constexpr char kCompilarFeito2[] = "\r was generated successfully!";
inline constexpr char kCompilarErro[] = "Error when compiling program: \r\r";

// ---- Workspace settings ------------------------------------------------------------
inline constexpr char kConfigTitulo[] = "Workspace settings";
inline constexpr const char* kRotulosCores[] = {
    "Background color", "Foreground",      "Commands color", "Keywords color",  "Attributes color", "Comment color",
    "Operators color",  "Quotes color",    "Cursor line color", "Left bank color", "Numeration color"};
inline constexpr char kConfigFonte[] = "Font:";
inline constexpr char kConfigAmostra[] = "Sample:";
inline constexpr char kConfigNumeracao[] = "Enable automatic line numbering";
inline constexpr char kSelecioneCor[] = "Selecione a cor";
inline constexpr const char* kFontesConfig[] = {
    "Courier",          "Courier New",       "Lucida Console",         "Fixedsys",       "Andale Mono",
    "Atomic Clock Radio", "Courier10 BT",    "Dark Courier",           "Digital Dream",  "Digital Dream Fat",
    "Digital dream Fat Skew", "Legal10    ", "Legal15    ",            "Orator10 BT",    "Orator15 BT"};
// The sample program, lines ending in CR LF.
inline constexpr char kAmostra[] =
    "Variable X Integer, Y String\r\n\r\n'Set window background and resolution\r\n"
    "Window Background = \"Space.jpg\", Res = 50, 100\r\n\r\nMessage \"Are you sure?\", OptionYesNo";
inline constexpr char kExecucaoParou[] = "zarvolt: the run stopped: %s\n";

// ---- The splash and the file association ---------------------------------------
inline constexpr char kApresentaTitulo[] = "Zarvolt";
inline constexpr char kApresentaSubtitulo[] = "Development environment";
inline constexpr char kRegiaoSemTamanho[] = "Unable to determine size of region in SaveRegionDataToFile";
inline constexpr char kRegiaoSemDados[] = "Unable to get region data in SaveRegionDataToFile";
inline constexpr char kRegiaoDanificada[] = "%1 is damaged: the splash's shape was computed again.";
inline constexpr char kMimeComentario[] = "Zarvolt source code";
inline constexpr char kEntradaComentario[] = "Write, run and debug Zarvolt programs";
inline constexpr char kAssociacaoFalhou[] = "The .Zvc files could not be associated with Zarvolt: %s\n";

// ---- Additions: error mark, Variables panel, breakpoints, recovery copy ----------
inline constexpr char kMenuVer[] = "&View";
inline constexpr char kMenuVariaveis[] = "Variables";
inline constexpr char kVariaveisTitulo[] = "Variables";
inline constexpr char kColunaNome[] = "Name";
inline constexpr char kColunaTipo[] = "Type";
inline constexpr char kColunaValor[] = "Value";
inline constexpr char kVariaveisQuando[] = "Filled when a run stops in a step box, at a breakpoint or in an error box.";
inline constexpr char kVariaveisEm[] = "Stopped in %1, line %2";
inline constexpr char kValores[] = "%1 values: %2";
inline constexpr char kIrParaErro[] = "Error in %1, line %2 \u2014 go there";
inline constexpr char kParadoEm[] = "Step: %1, line %2";
inline constexpr char kRecuperar[] =
    "Zarvolt did not close properly last time. Restore the unsaved texts of %1, copied at %2?";
inline constexpr char kRecuperacaoDanificada[] = "The recovery copy %1 is damaged and was not used; it was kept as %2.";
inline constexpr char kRecuperacaoNaoGravada[] = "The recovery copy could not be written: %1";
inline constexpr char kConfigExtras[] = "Additions";
inline constexpr char kExtraMarcaErro[] = "Mark the line of a run-time error";
inline constexpr char kExtraVariaveis[] = "Variables panel (View menu)";
inline constexpr char kExtraPontos[] = "Breakpoints: a click in the margin";
inline constexpr char kExtraRecuperacao[] = "Recovery copy of unsaved texts every 30 seconds";

// ---- The help: the index Ajuda and the reader Intro ------------------------------
inline constexpr char kAjudaTitulo[] = "Zarvolt - Help";
inline constexpr char kIntroTitulo[] = "Introduction to Zarvolt";
inline constexpr char kAjudaProcure[] = "Type the first few letters of the command to seek";
inline constexpr char kAjudaExibir[] = "Show";
inline constexpr char kAjudaSair[] = "Close";
inline constexpr char kAjudaCurso[] = "Zarvolt tutorial for beginners";
inline constexpr char kAjudaLivro[] = "Introduction to Zarvolt: from an empty program to a window";
inline constexpr char kIntroF9[] = "F9 - Find word";
inline constexpr char kIntroF3[] = "F3 - Find next";
inline constexpr char kIntroFrase[] = "Find word or phrase";
inline constexpr char kIntroCancelar[] = "Cancel";
inline constexpr char kSemMaisOcorrencias[] = "No more occurrences of this text!";
inline constexpr char kTextoNaoEncontrado[] = "Text not found!";
// Beyond the original: an error in a command leads to its page.
inline constexpr char kPaginaDoComando[] = "Help on %1";

}  // namespace zv::msg::ambiente
