// The combo on the offscreen platform: completion, the keys of the text
// and of the list, the drop button, and its least height.
#include <gtest/gtest.h>

#include <QApplication>
#include <QKeyEvent>
#include <QTest>

#include "controls/sp_combo.h"

namespace zv {
namespace {

struct Combo : ::testing::Test {
  QWidget janela;
  SpCombo* c = new SpCombo(&janela);
  QLineEdit* outro = new QLineEdit(&janela);
  int fechou = 0;
  void SetUp() override {
    janela.resize(400, 300);
    c->setGeometry(10, 10, 160, 14);
    outro->setGeometry(10, 200, 100, 20);
    for (const char* s : {"Belo Horizonte", "Santos", "São Paulo", "Salvador"}) c->AdicionaItem(QString::fromUtf8(s));
    janela.show();
    QApplication::setActiveWindow(&janela);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&janela));
    c->caixa()->setFocus();
  }
};

TEST(DobraTexto, CapitalsAndPortugueseAccents) {
  EXPECT_EQ(DobraTexto(QString::fromUtf8("São Paulo")), QStringLiteral("SAO PAULO"));
  EXPECT_EQ(DobraTexto(QString::fromUtf8("Açúcar, ÉRA, põe")), QStringLiteral("ACUCAR, ERA, POE"));
}

TEST_F(Combo, TypingOpensTheListAndSelectsWithoutTouchingTheText) {
  EXPECT_EQ(c->height(), 19);  // raised to its least height
  QTest::keyClicks(c->caixa(), QStringLiteral("sa"));
  EXPECT_TRUE(c->Aberta());
  EXPECT_GT(c->height(), 19);
  EXPECT_EQ(c->IndSel(), 1);  // Santos
  QTest::keyClick(c->caixa(), Qt::Key_O);
  EXPECT_EQ(c->IndSel(), 2);
  EXPECT_EQ(c->Texto(), QStringLiteral("sao"));
  // No item begins so: the selection stays.
  QTest::keyClick(c->caixa(), Qt::Key_X);
  EXPECT_EQ(c->IndSel(), 2);
  QTest::keyClick(c->caixa(), Qt::Key_Backspace);
  QTest::keyClick(c->caixa(), Qt::Key_Return);
  EXPECT_EQ(c->Texto(), QString::fromUtf8("São Paulo"));
  EXPECT_EQ(c->caixa()->selectedText(), QString::fromUtf8("São Paulo"));
  EXPECT_FALSE(c->Aberta());
  EXPECT_EQ(c->height(), 19);
  EXPECT_EQ(c->SelLista(), 2);
  c->DefineTexto(QStringLiteral("Recife"));
  EXPECT_EQ(c->SelLista(), 4);  // none: the count
}

TEST_F(Combo, EnterWithTheListClosedOnlySelectsTheText) {
  c->DefineTexto(QStringLiteral("Santos"));
  QTest::keyClick(c->caixa(), Qt::Key_Return);
  EXPECT_EQ(c->Texto(), QStringLiteral("Santos"));
  EXPECT_EQ(c->caixa()->selectedText(), QStringLiteral("Santos"));
  EXPECT_FALSE(c->Aberta());
}

TEST_F(Combo, DownGoesIntoTheListUpOnTheFirstItemComesBack) {
  QTest::keyClick(c->caixa(), Qt::Key_Down);
  EXPECT_TRUE(c->Aberta());
  EXPECT_TRUE(c->lista()->hasFocus());
  c->lista()->setCurrentRow(1);
  QTest::keyClick(c->lista(), Qt::Key_Down);  // its release takes the item
  EXPECT_EQ(c->Texto(), QString::fromUtf8("São Paulo"));
  c->lista()->setCurrentRow(0);
  QTest::keyClick(c->lista(), Qt::Key_Up);
  EXPECT_TRUE(c->caixa()->hasFocus());
  QTest::keyClick(c->caixa(), Qt::Key_Up);
  EXPECT_FALSE(c->Aberta());
}

TEST_F(Combo, TheDropButtonTogglesAndLosingTheFocusCloses) {
  QTest::mouseClick(c->botao(), Qt::LeftButton);
  EXPECT_TRUE(c->Aberta());
  EXPECT_TRUE(c->caixa()->hasFocus());
  QTest::mouseClick(c->botao(), Qt::LeftButton);
  EXPECT_FALSE(c->Aberta());
  QTest::mouseClick(c->botao(), Qt::LeftButton);
  outro->setFocus();
  EXPECT_FALSE(c->Aberta());
  EXPECT_TRUE(outro->hasFocus());  // closing didn't take the focus back
  c->Abre();
  c->setEnabled(false);
  EXPECT_FALSE(c->Aberta());
}

TEST_F(Combo, ItsOwnButtonPicturesLetItBeLow) {
  QPixmap cima(12, 10);
  cima.fill(Qt::blue);
  c->DefineFigurasBotao(true, cima, cima);
  c->resize(160, 12);
  EXPECT_EQ(c->height(), 12);
  c->DefineFigurasBotao(false, {}, {});
  c->resize(160, 12);
  EXPECT_EQ(c->height(), 19);
}

}  // namespace
}  // namespace zv
