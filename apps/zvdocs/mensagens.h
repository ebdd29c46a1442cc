// The texts zvdocs puts into the documents it makes, and its own words on a
// terminal.
#pragma once

namespace zv::msg::docs {

// Labels in front of an example's blocks, for a reader who doesn't know
// the page's fences.
inline constexpr char kRotuloEventos[] = "What the user does (the event script of the run):";
inline constexpr char kRotuloRespostas[] = "What the user answers, one answer a line:";
inline constexpr char kRotuloSaida[] = "What the program shows:";
inline constexpr char kRotuloNaoRoda[] = "(This example needs a part of Zarvolt not built yet: it isn't run when the reference is checked.)";

inline constexpr char kTituloPdf[] = "Zarvolt Tutorial and Command Reference";
inline constexpr char kSubtituloPdf[] =
    "The tutorial for beginners, then one page for each word of the language's reference, in the order of the help index.";
inline constexpr char kConteudoPdf[] = "The reference's words, in this order:";
inline constexpr char kTituloIndice[] = "Zarvolt command reference";
inline constexpr char kTutorialIndice[] = "Tutorial: from an empty program to a window";

inline constexpr char kUso[] = "usage: zvdocs PAGES_DIR WORDS.txt OUT_DIR HTML_DIR\n"
                               "Makes OUT_DIR/Commands.pack (the help's RTF pages), OUT_DIR/ZarvoltTutorial.pdf and\n"
                               "HTML_DIR/ from the Markdown pages of PAGES_DIR, in the order of WORDS.txt.\n";
inline constexpr char kNaoLe[] = "zvdocs: can't read %s\n";
inline constexpr char kNaoGrava[] = "zvdocs: can't write %s: %s\n";
inline constexpr char kFeito[] = "zvdocs: %d pages into %s, %s and %s\n";

}  // namespace zv::msg::docs
