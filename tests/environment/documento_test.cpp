// The .Zvc document as the environment reads and writes it, and the
// colouring of a line: what each byte is drawn as.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sys/stat.h>

#include "core/texto.h"
#include "environment/documento.h"
#include "environment/editor_codigo.h"

namespace zv {
namespace {

namespace fs = std::filesystem;

struct Pasta {
  fs::path p = fs::temp_directory_path() / ("zv_doc_" + std::to_string(::getpid()));
  Pasta() { fs::create_directories(p); }
  ~Pasta() {
    std::error_code ec;
    fs::permissions(p, fs::perms::owner_all, ec);
    fs::remove_all(p, ec);
  }
  fs::path Escreve(const std::string& nome, const std::string& bytes) const {
    std::ofstream(p / nome, std::ios::binary) << bytes;
    return p / nome;
  }
  static std::string Le(const fs::path& f) {
    std::ifstream i(f, std::ios::binary);
    return {std::istreambuf_iterator<char>(i), std::istreambuf_iterator<char>()};
  }
};

TEST(Documento, TheWorkedExampleAndItsRoundTrip) {
  Documento d;
  d.fonte.textos[0] = u"A=1";
  d.fonte.textos[1] = u"B=2";
  d.fonte.nomes[0] = u"T";
  EXPECT_EQ(d.JuntaCodigos(), u"#ZV7#A=1#%T#&B=2#%");
  // An extension with text and an empty name keeps its empty name; codes in
  // slots 2 and 4 only come back in 1 and 2.
  Documento e;
  e.fonte.textos[0] = u"Main\r\nX = 1";
  e.fonte.textos[2] = u"Sub A\r\nEndSub";
  e.fonte.textos[4] = u"Sub B\r\nEndSub";
  e.fonte.nomes[3] = u"Named";
  Pasta pasta;
  bool escrito = false;
  std::string erro;
  ASSERT_TRUE(Documento::GravaArquivo(pasta.p / "p.Zvc", e.JuntaCodigos(), false, &escrito, erro));
  EXPECT_TRUE(escrito);
  Documento lido;
  ASSERT_EQ(lido.Le(pasta.p / "p.Zvc"), Documento::Leitura::Lida);
  EXPECT_EQ(lido.fonte.textos[0], e.fonte.textos[0]);
  EXPECT_EQ(lido.fonte.textos[1], e.fonte.textos[2]);
  EXPECT_EQ(lido.fonte.nomes[0], u"");
  EXPECT_EQ(lido.fonte.textos[2], e.fonte.textos[4]);
  EXPECT_EQ(lido.fonte.nomes[1], u"Named");
  EXPECT_TRUE(lido.fonte.textos[3].empty());
  // The signature isn't checked: any five characters will do.
  Documento outro;
  EXPECT_EQ(outro.Le(pasta.Escreve("o.Zvc", "abcdeX=1#%")), Documento::Leitura::Lida);
  EXPECT_EQ(outro.fonte.textos[0], u"X=1");
}

TEST(Documento, FilesThatAreNotSourcesAndFilesThatCantBeWritten) {
  Pasta pasta;
  Documento d;
  EXPECT_EQ(d.Le(pasta.Escreve("a.txt", "just text")), Documento::Leitura::NaoEFonte);
  // A "#&" with no "#%" behind it: what came before is kept.
  EXPECT_EQ(d.Le(pasta.Escreve("b.Zvc", "#ZV7#M#%N#&never ends")), Documento::Leitura::NaoEFonte);
  EXPECT_EQ(d.fonte.textos[0], u"M");
  EXPECT_EQ(d.fonte.nomes[0], u"N");
  EXPECT_EQ(d.Le(pasta.Escreve("c.Zvc", std::string("#ZV7#\0\1\2#%", 10))), Documento::Leitura::Binaria);
  EXPECT_EQ(d.Le(pasta.p / "missing.Zvc"), Documento::Leitura::Ilegivel);
  EXPECT_EQ(d.Le(pasta.p), Documento::Leitura::Ilegivel);
  {
    std::ofstream g(pasta.p / "big.Zvc", std::ios::binary);
    g.seekp(static_cast<std::streamoff>(Documento::kMaiorFonte) + 1);
    g.put('x');
  }
  EXPECT_EQ(d.Le(pasta.p / "big.Zvc"), Documento::Leitura::Grande);

  // An empty text in the editor writes nothing and deletes nothing.
  fs::path velho = pasta.Escreve("old.Zvc", "#ZV7#old#%");
  bool escrito = true;
  std::string erro;
  EXPECT_TRUE(Documento::GravaArquivo(velho, u"#ZV7##%ext#&x#%", true, &escrito, erro));
  EXPECT_FALSE(escrito);
  EXPECT_EQ(Pasta::Le(velho), "#ZV7#old#%");
  // A read-only file is refused, and stays as it was.
  if (::geteuid() != 0) {
    fs::permissions(velho, fs::perms::owner_read);
    EXPECT_FALSE(Documento::GravaArquivo(velho, u"#ZV7#new#%", false, &escrito, erro));
    EXPECT_EQ(Pasta::Le(velho), "#ZV7#old#%");
  }
  // A folder that vanished: refused with the system's reason.
  EXPECT_FALSE(Documento::GravaArquivo(pasta.p / "gone" / "x.Zvc", u"#ZV7#x#%", false, &escrito, erro));
  EXPECT_FALSE(erro.empty());
  // Windows-1252 on disk.
  fs::path acento = pasta.p / "e.Zvc";
  EXPECT_TRUE(Documento::GravaArquivo(acento, u"#ZV7#Write \"é\"#%", false, &escrito, erro));
  EXPECT_EQ(Pasta::Le(acento), "#ZV7#Write \"\xe9\"#%");
}

std::vector<int> Estilos(const char* linha) {
  static TabelaPalavras tabela;
  return LexicoZarvolt::EstilosDaLinha(QByteArray(linha), tabela);
}

TEST(Colorido, WordsCommentsStringsAndOperators) {
  using L = LexicoZarvolt;
  // Case-sensitive: "Abs" is a command, "abs" stays plain.
  auto e = Estilos("x = Abs(abs)");
  EXPECT_EQ(e[0], L::kPadrao);
  EXPECT_EQ(e[2], L::kOperador);
  EXPECT_EQ(e[4], L::kComando);
  EXPECT_EQ(e[6], L::kComando);
  EXPECT_EQ(e[7], L::kOperador);
  EXPECT_EQ(e[8], L::kPadrao);
  // A comment runs to the end of the line; a quote in it is no string.
  e = Estilos("Write 1 ' say \"hi\" + 2\r\n");
  EXPECT_EQ(e[0], L::kComando);
  EXPECT_EQ(e[8], L::kComentario);
  EXPECT_EQ(e[20], L::kComentario);
  EXPECT_EQ(e[23], L::kPadrao);
  // A string to its closing quote, or to the line's end.
  e = Estilos("Message \"it's Abs\", x");
  EXPECT_EQ(e[8], L::kAspas);
  EXPECT_EQ(e[13], L::kAspas);
  EXPECT_EQ(e[17], L::kAspas);
  EXPECT_EQ(e[18], L::kPadrao);
  e = Estilos("Message \"open");
  EXPECT_EQ(e.back(), L::kAspas);
  // Members: ".NewLine" is a keyword behind the name; "Txt" an attribute.
  e = Estilos("Box G.NewLine");
  EXPECT_EQ(e[0], L::kComando);
  EXPECT_EQ(e[4], L::kPadrao);
  EXPECT_EQ(e[5], L::kPalavraChave);
  EXPECT_EQ(e[12], L::kPalavraChave);
  e = Estilos("A.Txt = RefIndex");
  EXPECT_EQ(e[2], L::kAtributo);
  EXPECT_EQ(e[8], L::kAtributo);
  // A word in two lists takes the first: "True" is a keyword.
  EXPECT_EQ(Estilos("True")[0], L::kPalavraChave);
}

TEST(Colorido, TheWordTableHasItsFourSections) {
  TabelaPalavras t;
  EXPECT_EQ(t.Slot(0), QStringLiteral("Abs"));
  EXPECT_EQ(t.Slot(160), QStringLiteral("StartWindowInvisible"));
  EXPECT_TRUE(t.Slot(161).isEmpty());
  EXPECT_EQ(t.Slot(300), QStringLiteral(".Draw"));
  EXPECT_EQ(t.Slot(403), QStringLiteral(".Point"));
  EXPECT_EQ(t.Slot(500), QStringLiteral(".Image"));
  EXPECT_EQ(t.Slot(596), QStringLiteral("ScreenWidth"));
  EXPECT_EQ(t.Slot(663), QStringLiteral("&"));
  EXPECT_EQ(t.Lista(TabelaPalavras::kOperadores), QStringLiteral("(\n)\n=\n<\n>\n+\n*\n/\n-\n++\n--\n%\n^\n&\n"));
}

}  // namespace
}  // namespace zv
