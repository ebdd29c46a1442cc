// The help: pages out of the archive as the original found them, the
// index's search as you type, the reader's find, and F1 from the editor on
// the real Commands.pack the build makes.
#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>
#include <QTextEdit>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "environment/ajuda.h"
#include "environment/codigo.h"
#include "environment/editor_codigo.h"
#include "environment/interacao.h"
#include "environment/lista_ajuda.h"
#include "environment/settings/armazem_config.h"
#include "tests/environment/ambiente.h"

namespace zv {
namespace {

namespace fs = std::filesystem;

std::string Le(const fs::path& p) {
  std::ifstream in(p, std::ios::binary);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

// A directory slot: the name in 25 characters, size in 10, position in 15.
std::string Slot(const std::string& nome, size_t tamanho, size_t posicao) {
  std::string s = nome.substr(0, 25);
  s.resize(25, ' ');
  std::string t = std::to_string(tamanho), p = std::to_string(posicao);
  t.resize(10, ' ');
  p.resize(15, ' ');
  return s + t + p;
}

struct Pasta {
  fs::path p = fs::temp_directory_path() / ("zv_ajuda_" + std::to_string(::getpid()));
  Pasta() {
    fs::remove_all(p);
    fs::create_directories(p);
  }
  ~Pasta() { fs::remove_all(p); }
};

TEST(ExtraiArquivoComando, TheDirectoryIsReadAsTheOriginalReadIt) {
  Pasta pasta;
  const fs::path pacote = pasta.p / "Commands.pack";
  // A blank slot first: it doesn't end the directory. A page cut short by the
  // file's end. A name of 26 characters.
  std::string dir = Slot("", 0, 0) + Slot("Abs.rtf", 3, 15001) + Slot("AbsX.rtf", 4, 15004) +
                    Slot("Cut.rtf", 100, 15008) + Slot("ABCDEFGHIJKLMNOPQRSTUV.rtf", 1, 15001);
  dir.resize(15000, ' ');
  std::ofstream(pacote, std::ios::binary) << dir << "abs" << "absx" << "cut";
  const fs::path destino = pasta.p / "Command.rtf";

  EXPECT_TRUE(ExtraiArquivoComando(pacote, destino, u"ABS.RTF"));
  EXPECT_EQ(Le(destino), "abs");
  EXPECT_TRUE(ExtraiArquivoComando(pacote, destino, u"absx.rtf"));
  EXPECT_EQ(Le(destino), "absx");
  EXPECT_TRUE(ExtraiArquivoComando(pacote, destino, u"Cut.rtf"));
  EXPECT_EQ(Le(destino), "cut");
  EXPECT_FALSE(ExtraiArquivoComando(pacote, destino, u"Ab.rtf"));
  EXPECT_FALSE(ExtraiArquivoComando(pacote, destino, u"ABCDEFGHIJKLMNOPQRSTUV.rtf"));

  // A missing archive is made, empty, and holds nothing.
  const fs::path nenhum = pasta.p / "None.pack";
  EXPECT_FALSE(ExtraiArquivoComando(nenhum, destino, u"Abs.rtf"));
  EXPECT_TRUE(fs::exists(nenhum));
  EXPECT_EQ(fs::file_size(nenhum), 0u);
}

TEST(IndiceDaAjuda, TheListIsTheReferencesAndTheSearchFollowsTheTyping) {
  std::ifstream in(fs::path(ZV_RAIZ) / "docs" / "reference" / "words.txt");
  std::vector<std::string> palavras;
  for (std::string w; in >> w;) palavras.push_back(w);
  ASSERT_EQ(palavras.size(), kLstAjuda.size());
  for (size_t i = 0; i < palavras.size(); ++i)
    EXPECT_EQ(QString::fromUtf16(kLstAjuda[i]).toStdString(), palavras[i]);

  Pasta pasta;
  InteracaoNula ninguem;
  Ajuda ajuda(pasta.p, ninguem);
  FormAjuda* f = ajuda.indice();
  auto escolhido = [&] { return f->lista()->currentItem()->text(); };
  f->caixa()->setFocus();
  QTest::keyClicks(f->caixa(), QStringLiteral("wai"));
  EXPECT_EQ(escolhido(), QStringLiteral("Wait"));
  QTest::keyClick(f->caixa(), Qt::Key_Backspace);
  QTest::keyClick(f->caixa(), Qt::Key_Backspace);
  EXPECT_EQ(escolhido(), QStringLiteral("Wait"));
  f->caixa()->clear();
  QTest::keyClicks(f->caixa(), QStringLiteral("zz"));
  EXPECT_EQ(escolhido(), QStringLiteral("ZVDir"));  // past the last word: the last
  f->caixa()->clear();
  QTest::keyClicks(f->caixa(), QStringLiteral("DAY"));
  EXPECT_EQ(escolhido(), QStringLiteral("Day"));  // shown sorted: after DateDiff
  EXPECT_EQ(f->lista()->item(f->lista()->currentRow() - 1)->text(), QStringLiteral("DateDiff"));
}

TEST(LeitorDaAjuda, FindThenFindNextThenNoMore) {
  Pasta pasta;
  InteracaoNula pessoa;
  Ajuda ajuda(pasta.p, pessoa);
  FormIntro* l = ajuda.leitor();
  l->texto()->setPlainText(QStringLiteral("Round rounds a number. See also Int."));
  l->show();
  // Focus moves (and so the phrase box's fresh start) need an active window.
  QApplication::setActiveWindow(l);
  ASSERT_TRUE(QTest::qWaitForWindowActive(l));
  l->MostraProcura();
  EXPECT_TRUE(l->painel()->isVisible());
  QTest::keyClicks(l->frase(), QStringLiteral("round"));
  QTest::keyClick(l->frase(), Qt::Key_Return);
  EXPECT_FALSE(l->painel()->isVisible());  // a new search hides the panel
  EXPECT_EQ(l->texto()->textCursor().selectionStart(), 0);
  QTest::keyClick(l->texto(), Qt::Key_F3);
  EXPECT_EQ(l->texto()->textCursor().selectionStart(), 6);
  QTest::keyClick(l->texto(), Qt::Key_F3);
  EXPECT_EQ(pessoa.avisos, QStringList{QStringLiteral("No more occurrences of this text!")});
  // Back in the phrase box, the next search is a new one.
  QTest::keyClick(l->texto(), Qt::Key_F9);
  l->frase()->setText(QStringLiteral("zebra"));
  QTest::keyClick(l->frase(), Qt::Key_Return);
  EXPECT_EQ(pessoa.avisos.last(), QStringLiteral("Text not found!"));
}

// F1 and the error's page need the build's Commands.pack beside the tests.
struct ComPacote : teste::Ambiente {
  void SetUp() override {
    const fs::path pacote = fs::path(QCoreApplication::applicationDirPath().toStdString()) / "Commands.pack";
    if (!fs::exists(pacote)) GTEST_SKIP() << "no Commands.pack beside the tests";
    teste::Ambiente::SetUp();
    fs::copy_file(pacote, pasta / "Commands.pack");
  }
};

TEST_F(ComPacote, F1OpensTheWordsPageInAnyCaseOrElseTheIndex) {
  janela->editor()->setText(QStringLiteral("c = substr(t, 1, 2)"));
  janela->editor()->setCursorPosition(0, 6);
  QTest::keyClick(janela.get(), Qt::Key_F1);
  FormIntro* leitor = janela->ajuda().leitor();
  EXPECT_TRUE(leitor->isVisible());
  EXPECT_EQ(leitor->windowTitle(), QStringLiteral("Zarvolt - Help"));
  EXPECT_TRUE(leitor->texto()->toPlainText().contains(QStringLiteral("SubStr")));
  leitor->close();

  janela->editor()->setText(QStringLiteral("Nonsense"));
  janela->editor()->setCursorPosition(0, 2);
  QTest::keyClick(janela.get(), Qt::Key_F1);
  EXPECT_FALSE(leitor->isVisible());
  EXPECT_TRUE(janela->ajuda().indice()->isVisible());
  janela->ajuda().indice()->close();

  // The tutorial from the index's book.
  janela->ajuda().MostraIndice();
  QTest::mouseClick(janela->ajuda().indice()->findChild<QWidget*>(QStringLiteral("Book1")), Qt::LeftButton);
  EXPECT_EQ(leitor->windowTitle(), QStringLiteral("Introduction to Zarvolt"));
  EXPECT_FALSE(leitor->texto()->toPlainText().isEmpty());
}

TEST_F(ComPacote, AnErrorInACommandLeadsToItsPage) {
  janela->editor()->setText(QStringLiteral("Var c String\r\nc = SubStr(\"abc\", 0, 2)"));
  janela->DefineModificado(false);
  janela->execucao().respostas = {"OK"};
  janela->Executa();
  ASSERT_FALSE(janela->paginaDoErro()->isHidden());
  EXPECT_EQ(janela->paginaDoErro()->text(), QStringLiteral("Help on SubStr"));
  QTest::mouseClick(janela->paginaDoErro(), Qt::LeftButton);
  EXPECT_TRUE(janela->ajuda().leitor()->isVisible());
  EXPECT_TRUE(janela->ajuda().leitor()->texto()->toPlainText().contains(QStringLiteral("SubStr")));

  // An error that names no command has no link.
  janela->editor()->setText(QStringLiteral("Ninguem = 1"));
  janela->execucao().respostas = {"OK"};
  janela->Executa();
  EXPECT_TRUE(janela->paginaDoErro()->isHidden());
}

}  // namespace
}  // namespace zv
