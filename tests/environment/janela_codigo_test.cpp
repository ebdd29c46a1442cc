// The main window as a user drives it: tabs and the Save button, New, Open,
// Save and closing with their prompts (answered here, in order, through the
// environment's seam), and runs: the tool bar through Run, Debug and Break,
// F5 during a run, Cancel in the step box.
#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QPrinter>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <deque>
#include <filesystem>
#include <fstream>

#include "environment/codigo.h"
#include "environment/editor_codigo.h"
#include "environment/interacao.h"
#include "environment/settings/armazem_config.h"

namespace zv {
namespace {

namespace fs = std::filesystem;
using Estado = ControleExecucao::Estado;

// The person in front of the window: answers given in advance, questions noted.
struct Pessoa : Interacao {
  std::deque<bool> sim;
  std::deque<std::optional<QString>> arquivos;
  QStringList perguntas, dialogos, avisos;
  QString pdf;
  bool Pergunta(QWidget*, const QString&, const QString& texto, bool) override {
    perguntas << texto;
    if (sim.empty()) {
      ADD_FAILURE() << "unexpected question: " << texto.toStdString();
      return false;
    }
    bool r = sim.front();
    sim.pop_front();
    return r;
  }
  void Avisa(QWidget*, const QString&, const QString& texto) override { avisos << texto; }
  std::optional<QString> EscolheArquivo(QWidget*, bool, const QString& titulo, const QString&, const QString&,
                                        const QString&) override {
    dialogos << titulo;
    if (arquivos.empty()) return std::nullopt;
    auto r = arquivos.front();
    arquivos.pop_front();
    return r;
  }
  bool EscolheImpressora(QWidget*, QPrinter& p) override {
    p.setOutputFormat(QPrinter::PdfFormat);
    p.setOutputFileName(pdf);
    return true;
  }
  std::optional<int> EscolheCor(QWidget*, const QString&, int) override { return std::nullopt; }
};

struct Ambiente : ::testing::Test {
  fs::path pasta = fs::temp_directory_path() / ("zv_amb_" + std::to_string(::getpid()));
  Pessoa pessoa;
  std::unique_ptr<JanelaCodigo> janela;
  std::FILE* saida = std::tmpfile();
  void SetUp() override {
    fs::remove_all(pasta);
    fs::create_directories(pasta);
    DescartaConfig();
    // Not the first dialogue of this installation: it opens where the record says.
    GravaConfig(pasta, u"PrimeiraAbertura", u"1");
    janela = std::make_unique<JanelaCodigo>(pasta, pessoa);
    janela->execucao().semTela = true;
    janela->execucao().saida = saida;
    janela->show();
    // Short cuts reach the active window only.
    QApplication::setActiveWindow(janela.get());
    ASSERT_TRUE(QTest::qWaitForWindowActive(janela.get()));
  }
  void TearDown() override {
    janela.reset();
    std::fclose(saida);
    DescartaConfig();
    fs::remove_all(pasta);
  }
  void Digita(const QString& texto) {
    janela->editor()->setFocus();
    QTest::keyClicks(janela->editor(), texto);
  }
  static std::string Le(const fs::path& f) {
    std::ifstream i(f, std::ios::binary);
    return {std::istreambuf_iterator<char>(i), std::istreambuf_iterator<char>()};
  }
  std::string Saida() {
    std::fflush(saida);
    std::rewind(saida);
    std::string s;
    char b[4096];
    size_t n;
    while ((n = std::fread(b, 1, sizeof b, saida)) > 0) s.append(b, n);
    return s;
  }
  std::string Arquivo(const char* nome) { return (pasta / nome).string(); }
};

TEST_F(Ambiente, TabsKeepTheirTextsAndNamesAndLightTheSaveButton) {
  EXPECT_FALSE(janela->EstaModificado());
  EXPECT_EQ(janela->caixaNome()->text(), QStringLiteral("Main code"));
  Digita(QStringLiteral("X = 1"));
  QTest::mouseClick(janela->botaoCodigo(2), Qt::LeftButton);
  janela->DefineModificado(false);
  Digita(QStringLiteral("Sub Two"));
  janela->caixaNome()->setFocus();
  QTest::keyClicks(janela->caixaNome(), QStringLiteral("Tools"));
  QTest::mouseClick(janela->botaoCodigo(0), Qt::LeftButton);
  // Writing the editor's text is a change: a tab switch lights Save up.
  EXPECT_TRUE(janela->EstaModificado());
  EXPECT_EQ(janela->editor()->text(), QStringLiteral("X = 1"));
  EXPECT_TRUE(janela->caixaNome()->isReadOnly());
  EXPECT_EQ(janela->documento.fonte.textos[2], u"Sub Two");
  EXPECT_EQ(janela->documento.fonte.nomes[1], u"Tools");
  EXPECT_TRUE(janela->botaoCodigo(0)->isChecked());
  EXPECT_FALSE(janela->botaoCodigo(2)->isChecked());
}

TEST_F(Ambiente, SavingANewProgramAsksForANameThenWritesWithoutAsking) {
  Digita(QStringLiteral("Write 1"));
  pessoa.arquivos.push_back(QString::fromStdString(Arquivo("first.Zvc")));
  QTest::keyClick(janela.get(), Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(pessoa.dialogos, QStringList{QStringLiteral("Save source code")});
  EXPECT_EQ(Le(pasta / "first.Zvc"), "#ZV7#Write 1#%");
  EXPECT_FALSE(janela->EstaModificado());
  EXPECT_EQ(janela->documento.nomeAtual, u"first.Zvc");
  EXPECT_EQ(janela->TextoBarraInferior(), QStringLiteral("first.Zvc"));
  // The folder and name went to the preferences record.
  CarregaPreferencias(pasta);
  EXPECT_EQ(PreferenciasAtivas().nomePrograma, u"first.Zvc");

  Digita(QStringLiteral("0"));
  QTest::keyClick(janela.get(), Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(pessoa.dialogos.size(), 1);
  EXPECT_EQ(Le(pasta / "first.Zvc"), "#ZV7#Write 10#%");

  // An empty main code is never written, though an extension has text.
  janela->editor()->clear();
  QTest::mouseClick(janela->botaoCodigo(1), Qt::LeftButton);
  Digita(QStringLiteral("Sub A"));
  QTest::mouseClick(janela->botaoCodigo(0), Qt::LeftButton);
  janela->Salva();
  EXPECT_EQ(Le(pasta / "first.Zvc"), "#ZV7#Write 10#%");
}

TEST_F(Ambiente, ClosingAModifiedNewProgramOpensTheSaveDialogue) {
  Digita(QStringLiteral("Write 1"));
  // Yes, then the dialogue cancelled: the window stays with the text.
  pessoa.sim = {true};
  EXPECT_FALSE(janela->close());
  EXPECT_EQ(pessoa.perguntas, QStringList{QStringLiteral("New.Zvc is modified. Save changes?")});
  EXPECT_EQ(pessoa.dialogos, QStringList{QStringLiteral("Save source code")});
  EXPECT_TRUE(janela->isVisible());
  // No: it closes.
  pessoa.sim = {false};
  EXPECT_TRUE(janela->close());
}

TEST_F(Ambiente, OpenAskFirstAndAFileThatIsNotASourceComesUpEmpty) {
  std::ofstream(pasta / "good.Zvc", std::ios::binary) << "#ZV7#Write 2#%Util#&Sub U#%";
  std::ofstream(pasta / "bad.txt", std::ios::binary) << "no marks here";
  Digita(QStringLiteral("Write 1"));
  pessoa.sim = {false};
  pessoa.arquivos.push_back(QString::fromStdString(Arquivo("good.Zvc")));
  QTest::keyClick(janela.get(), Qt::Key_O, Qt::ControlModifier);
  EXPECT_EQ(pessoa.perguntas, QStringList{QStringLiteral("Save New.Zvc?")});
  EXPECT_EQ(janela->editor()->text(), QStringLiteral("Write 2"));
  EXPECT_EQ(janela->documento.fonte.nomes[0], u"Util");
  EXPECT_EQ(janela->documento.nomeAtual, u"good.Zvc");
  EXPECT_FALSE(janela->EstaModificado());

  pessoa.arquivos.push_back(QString::fromStdString(Arquivo("bad.txt")));
  janela->Abre();
  EXPECT_TRUE(janela->editor()->text().isEmpty());
  EXPECT_EQ(janela->documento.nomeAtual, u"good.Zvc");
  // The good file is untouched.
  EXPECT_EQ(Le(pasta / "good.Zvc"), "#ZV7#Write 2#%Util#&Sub U#%");
}

TEST_F(Ambiente, PrintingGoesThroughTheDialogueToAPdf) {
  Digita(QStringLiteral("Write 1"));
  pessoa.sim = {true};
  pessoa.pdf = QString::fromStdString(Arquivo("listing.pdf"));
  janela->Imprime();
  EXPECT_EQ(pessoa.perguntas, QStringList{QStringLiteral("Prepare the printer and press OK")});
  EXPECT_EQ(Le(pasta / "listing.pdf").substr(0, 5), "%PDF-");
}

TEST_F(Ambiente, RunAndDebugMoveTheToolBarAndEndAsTheyShould) {
  std::vector<Estado> estados;
  QStringList depurar;
  auto antes = janela->execucao().aoMudar;
  janela->execucao().aoMudar = [&](Estado e) {
    antes(e);
    estados.push_back(e);
    depurar << janela->Etiqueta("BtnExecutar") + "/" + janela->Etiqueta("BtnStop") + "/" +
                   janela->Etiqueta("BtnDepurar");
  };
  Digita(QStringLiteral("Write \"hello\""));
  janela->DefineModificado(false);
  janela->Executa();
  EXPECT_EQ(estados, (std::vector<Estado>{Estado::Executando, Estado::Parado}));
  EXPECT_EQ(depurar, (QStringList{"INATIVO//", "/INATIVO/"}));
  EXPECT_NE(Saida().find("hello"), std::string::npos);

  // Debug: the step box; its Cancel ends the present walk only.
  estados.clear();
  depurar.clear();
  janela->execucao().respostas = {"Cancel"};
  janela->Depura();
  EXPECT_EQ(estados, (std::vector<Estado>{Estado::Depurando, Estado::Parado}));
  EXPECT_EQ(depurar.front(), QStringLiteral("INATIVO//INATIVO"));
  EXPECT_NE(Saida().find("\"box\":\"step\""), std::string::npos);
  // Nothing was written to run it.
  EXPECT_FALSE(fs::exists(pasta / "New.Zvc"));
}

TEST_F(Ambiente, F5DuringARunStartsItAgainAndBreakEndsIt) {
  std::vector<Estado> estados;
  auto antes = janela->execucao().aoMudar;
  janela->execucao().aoMudar = [&](Estado e) {
    antes(e);
    estados.push_back(e);
  };
  janela->editor()->setText(QStringLiteral("Var k Integer\r\nWhile k < 1\r\n  Wait 2\r\nLoop"));
  janela->DefineModificado(false);
  // Both keys reach the window at the run's pump points.
  QTimer::singleShot(30, janela.get(), [&] {
    QTest::keyClick(janela.get(), Qt::Key_F5);
    QTimer::singleShot(30, janela.get(), [&] { QTest::keyClick(janela.get(), Qt::Key_F6); });
  });
  janela->Executa();
  EXPECT_EQ(estados, (std::vector<Estado>{Estado::Executando, Estado::Parado, Estado::Executando, Estado::Parado}));
  EXPECT_EQ(janela->execucao().RunsTerminados(), 2);
  EXPECT_FALSE(janela->execucao().Rodando());
  EXPECT_EQ(janela->Etiqueta("BtnExecutar"), QString());
}

TEST_F(Ambiente, ApiLibraryAnywhereSetsUsaApi) {
  FontePrograma f;
  f.textos[3] = u"' uses an api library";
  EXPECT_TRUE(DeclaraBiblioteca(f));
  f.textos[3] = u"' no foreign calls";
  EXPECT_FALSE(DeclaraBiblioteca(f));
}

}  // namespace
}  // namespace zv
