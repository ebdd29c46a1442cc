// The main window as a user drives it: tabs and the Save button, New, Open,
// Save and closing with their prompts (answered here, in order, through the
// environment's seam), and runs: the tool bar through Run, Debug and Break,
// F5 during a run, Cancel in the step box.
#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QCheckBox>
#include <QClipboard>
#include <QDockWidget>
#include <QPrinter>
#include <QPushButton>
#include <QTableWidget>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <deque>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>

#include "environment/codigo.h"
#include "environment/configuracoes.h"
#include "environment/extras.h"
#include "environment/editor_codigo.h"
#include "environment/interacao.h"
#include "environment/settings/armazem_config.h"
#include "tests/environment/ambiente.h"

namespace zv {
namespace {

namespace fs = std::filesystem;
using Estado = ControleExecucao::Estado;
using teste::Ambiente;
using teste::Pessoa;

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
  // A named code wears its name on its tab; the others only their number.
  EXPECT_EQ(janela->botaoCodigo(2)->text(), QStringLiteral("2 Tools"));
  EXPECT_EQ(janela->botaoCodigo(3)->text(), QStringLiteral("3"));
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

TEST_F(Ambiente, AProgramThatFailsToPrepareSaysWhyAndTheToolBarComesBack) {
  janela->editor()->setText(QStringLiteral("If 1 = 1\r\nWrite \"no end\""));
  janela->DefineModificado(false);
  janela->execucao().respostas = {"OK"};
  janela->Executa();
  EXPECT_NE(Saida().find("If statement without their EndIf!"), std::string::npos) << Saida();
  EXPECT_EQ(Saida().find("no end"), std::string::npos);
  EXPECT_FALSE(janela->execucao().Rodando());
  EXPECT_EQ(janela->Etiqueta("BtnExecutar"), QString());
  EXPECT_EQ(janela->Etiqueta("BtnStop"), QStringLiteral("INATIVO"));
}

TEST_F(Ambiente, APickersTextIsPastedAtTheCaretThroughTheClipboard) {
  janela->editor()->setText(QStringLiteral("A\r\nB"));
  janela->editor()->setCursorPosition(1, 0);
  janela->ColaDoSeletor(QStringLiteral("Button BtnNew, \"Go\", 1, 1, \"OK\"\r\n"));
  EXPECT_EQ(janela->editor()->text(), QStringLiteral("A\r\nButton BtnNew, \"Go\", 1, 1, \"OK\"\r\nB"));
  EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("Button BtnNew, \"Go\", 1, 1, \"OK\"\r\n"));
  janela->ColaDoSeletor(QString());
  EXPECT_EQ(janela->editor()->lines(), 3);
}

// ---- The additions -----------------------------------------------------------------

TEST_F(Ambiente, BreakpointsFollowTheirCodeAndStopAPlainRun) {
  janela->editor()->setText(QStringLiteral("Var n Integer\r\nn = 1\r\nn = 2\r\nConta()"));
  janela->editor()->AlternaPonto(2);
  QTest::mouseClick(janela->botaoCodigo(1), Qt::LeftButton);
  janela->caixaNome()->setText(QStringLiteral("Tools"));
  janela->documento.fonte.nomes[0] = u"Tools";
  janela->editor()->setText(QStringLiteral("Sub Conta()\r\n  n = 3\r\nEndSub"));
  janela->editor()->AlternaPonto(1);
  janela->editor()->AlternaPonto(0);
  janela->editor()->AlternaPonto(0);  // twice: off again
  QTest::mouseClick(janela->botaoCodigo(0), Qt::LeftButton);
  EXPECT_EQ(janela->editor()->Pontos(), (std::set<int>{2}));
  EXPECT_EQ(janela->PontosParada(), (std::set<std::pair<int32_t, int32_t>>{{0, 3}, {1, 2}}));

  janela->DefineModificado(false);
  janela->execucao().respostas = {"OK", "OK"};
  janela->Executa();
  const std::string s = Saida();
  EXPECT_NE(s.find("Editor: 0\\rLine: 3"), std::string::npos) << s;
  EXPECT_NE(s.find("Editor: 1\\rLine: 2"), std::string::npos) << s;
  // The step line's mark went with its box.
  EXPECT_EQ(janela->editor()->LinhaPasso(), -1);

  // Switched off in the settings: the marks go, and a run steps nowhere.
  Extras e = janela->extras();
  e.pontosParada = false;
  janela->AplicaExtras(e);
  EXPECT_TRUE(janela->editor()->Pontos().empty());
  EXPECT_TRUE(janela->PontosParada().empty());
  janela->editor()->AlternaPonto(0);
  QTest::mouseClick(janela->botaoCodigo(1), Qt::LeftButton);
  QTest::mouseClick(janela->botaoCodigo(0), Qt::LeftButton);
  EXPECT_TRUE(janela->PontosParada().empty());
}

TEST_F(Ambiente, AnErrorMarksItsLineAndTheStatusBarLeadsThere) {
  janela->editor()->setText(QStringLiteral("Quebra()"));
  QTest::mouseClick(janela->botaoCodigo(1), Qt::LeftButton);
  janela->caixaNome()->setText(QStringLiteral("Tools"));
  janela->documento.fonte.nomes[0] = u"Tools";
  janela->editor()->setText(QStringLiteral("Sub Quebra()\r\n  Ninguem = 1\r\nEndSub"));
  QTest::mouseClick(janela->botaoCodigo(0), Qt::LeftButton);
  janela->editor()->setCursorPosition(0, 3);
  janela->DefineModificado(false);
  janela->execucao().respostas = {"OK"};
  janela->Executa();
  ASSERT_NE(Saida().find("\"box\":\"error\""), std::string::npos) << Saida();
  EXPECT_FALSE(janela->irParaErro()->isHidden());
  EXPECT_EQ(janela->irParaErro()->text(), QString::fromUtf8("Error in Tools, line 2 \u2014 go there"));
  // The caret stays; the other code's margin has the mark, shown with it.
  int linha = -1, coluna = -1;
  janela->editor()->getCursorPosition(&linha, &coluna);
  EXPECT_EQ(std::pair(linha, coluna), std::pair(0, 3));
  EXPECT_EQ(janela->editor()->LinhaErro(), -1);
  QTest::mouseClick(janela->irParaErro(), Qt::LeftButton);
  EXPECT_EQ(janela->documento.codigoAtivo, 1);
  EXPECT_EQ(janela->editor()->LinhaErro(), 1);
  janela->editor()->getCursorPosition(&linha, &coluna);
  EXPECT_EQ(linha, 1);

  // The next run starts clean.
  janela->execucao().respostas = {"OK"};
  janela->editor()->setText(QStringLiteral("Sub Quebra()\r\nEndSub"));
  janela->Executa();
  EXPECT_TRUE(janela->irParaErro()->isHidden());
  EXPECT_EQ(janela->editor()->LinhaErro(), -1);
}

TEST_F(Ambiente, TheVariablesPanelShowsTheRunWhereItStopped) {
  EXPECT_FALSE(janela->painelVariaveis()->isVisible());
  janela->painelVariaveis()->show();
  janela->editor()->setText(
      QStringLiteral("Var n Integer, s String, v(3) Decimal\r\nn = 3\r\ns = \"hi\"\r\nv(2) = 1.5\r\nn = 4"));
  janela->editor()->AlternaPonto(4);
  janela->DefineModificado(false);
  janela->execucao().respostas = {"OK"};
  janela->Executa();
  QTableWidget* t = janela->tabelaVariaveis();
  std::map<QString, QString> valores, tipos;
  for (int i = 0; i < t->rowCount(); ++i) {
    valores[t->item(i, 0)->text()] = t->item(i, 2)->text();
    tipos[t->item(i, 0)->text()] = t->item(i, 1)->text();
  }
  // Names as the language keeps them, in capitals.
  EXPECT_EQ(valores[QStringLiteral("N")], QStringLiteral("3"));  // before line 5 ran
  EXPECT_EQ(valores[QStringLiteral("S")], QStringLiteral("\"hi\""));
  EXPECT_EQ(tipos[QStringLiteral("N")], QStringLiteral("Integer"));
  EXPECT_EQ(valores[QStringLiteral("V")], QStringLiteral("3 values: 0, 0, 1.5"));

  Extras e = janela->extras();
  e.variaveis = false;
  janela->AplicaExtras(e);
  EXPECT_FALSE(janela->painelVariaveis()->isVisible());
  EXPECT_FALSE(janela->acao("MenuVariaveis")->isEnabled());
}

TEST_F(Ambiente, TheRecoveryCopyComesBackAfterACrashAndGoesOnSave) {
  const fs::path copia = pasta / "zv.recovery";
  Digita(QStringLiteral("Write 1"));
  QTest::mouseClick(janela->botaoCodigo(3), Qt::LeftButton);
  Digita(QStringLiteral("Sub T"));
  janela->GravaCopiaRecuperacao();
  ASSERT_TRUE(fs::exists(copia));
  // The crash: the window goes without its close.
  janela->hide();
  Pessoa outra;
  outra.sim = {true};
  JanelaCodigo nova(pasta, outra);
  nova.OfereceRecuperacao();
  ASSERT_EQ(outra.perguntas.size(), 1);
  EXPECT_TRUE(outra.perguntas[0].contains(QStringLiteral("New.Zvc")));
  EXPECT_EQ(nova.editor()->text(), QStringLiteral("Write 1"));
  EXPECT_EQ(nova.documento.fonte.textos[1], u"Sub T");  // slot 3 comes back as 1
  EXPECT_TRUE(nova.EstaModificado());
  EXPECT_TRUE(fs::exists(copia));
  outra.arquivos.push_back(QString::fromStdString(Arquivo("kept.Zvc")));
  nova.Salva();
  EXPECT_FALSE(fs::exists(copia));
  EXPECT_EQ(Le(pasta / "kept.Zvc"), "#ZV7#Write 1#%#&Sub T#%");

  // Nothing modified: nothing copied. A damaged copy is set aside, not used.
  nova.GravaCopiaRecuperacao();
  EXPECT_FALSE(fs::exists(copia));
  std::ofstream(copia, std::ios::binary) << "#ZV7#not a copy";
  nova.OfereceRecuperacao();
  EXPECT_FALSE(fs::exists(copia));
  EXPECT_TRUE(fs::exists(pasta / "zv.recovery.damaged"));
  EXPECT_EQ(outra.perguntas.size(), 1);

  // Turned off: no copy, and the timer's call writes none.
  Extras e = nova.extras();
  e.recuperacao = false;
  nova.AplicaExtras(e);
  nova.editor()->setText(QStringLiteral("Write 2"));
  nova.GravaCopiaRecuperacao();
  EXPECT_FALSE(fs::exists(copia));
}

TEST_F(Ambiente, TheSettingsFormSwitchesTheAdditions) {
  FormConfig form(pasta, pessoa);
  for (int i = 0; i < 4; ++i) EXPECT_TRUE(form.extra(i)->isChecked());
  form.extra(1)->setChecked(false);
  form.extra(3)->setChecked(false);
  form.Confirma();
  Extras e = LeExtras(pasta);
  EXPECT_TRUE(e.marcaErro);
  EXPECT_FALSE(e.variaveis);
  EXPECT_TRUE(e.pontosParada);
  EXPECT_FALSE(e.recuperacao);
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
