// The date field on the offscreen platform: the month opens over what lies
// below, closes by a day, by Enter or by the button, and reports a change
// each time it closes.
#include <gtest/gtest.h>

#include <QApplication>
#include <QLineEdit>
#include <QTest>

#include "controls/calendario.h"

namespace zv {
namespace {

struct Data : ::testing::Test {
  QWidget janela;
  Calendario* c = new Calendario(&janela);
  QLineEdit* abaixo = new QLineEdit(&janela);
  int mudancas = 0;
  void SetUp() override {
    janela.resize(400, 300);
    c->setGeometry(10, 10, 110, 24);
    abaixo->setGeometry(10, 40, 100, 20);
    c->relata = [this](const DadosEvento& d) { mudancas += d.tipo == EventoControle::Mudou; };
    c->setDate(QDate(2026, 3, 10));
    janela.show();
    QApplication::setActiveWindow(&janela);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&janela));
  }
};

TEST_F(Data, TheButtonOpensTheMonthOverTheControlsBelow) {
  const QSize fechado = c->size();
  QTest::mouseClick(c->botao(), Qt::LeftButton);
  EXPECT_TRUE(c->Aberto());
  EXPECT_TRUE(c->mes()->isVisible());
  EXPECT_GT(c->height(), fechado.height() + 100);
  EXPECT_GE(c->width(), fechado.width());
  EXPECT_TRUE(c->geometry().intersects(abaixo->geometry()));
  // On top of its neighbours.
  EXPECT_TRUE(c->isAncestorOf(janela.childAt(QPoint(20, 60))));
  // A second click closes it with the month's date, chosen or not: a change all the same.
  QTest::mouseClick(c->botao(), Qt::LeftButton);
  EXPECT_FALSE(c->Aberto());
  EXPECT_EQ(c->size(), fechado);
  EXPECT_EQ(c->date(), QDate(2026, 3, 10));
  EXPECT_EQ(mudancas, 1);
}

TEST_F(Data, ADayOrEnterClosesItAndTheFieldTakesTheDate) {
  c->Abre();
  c->mes()->setSelectedDate(QDate(2026, 3, 20));
  QTest::keyClick(c->mes()->focusWidget() ? c->mes()->focusWidget() : c->mes(), Qt::Key_Return);
  EXPECT_FALSE(c->Aberto());
  EXPECT_EQ(c->date(), QDate(2026, 3, 20));
  EXPECT_EQ(c->campo()->date(), QDate(2026, 3, 20));
  EXPECT_TRUE(c->campo()->hasFocus());
  EXPECT_EQ(mudancas, 1);

  // The field taking the input closes an open month too.
  c->Abre();
  c->campo()->setFocus();
  EXPECT_FALSE(c->Aberto());
  EXPECT_EQ(mudancas, 2);
}

TEST_F(Data, ADateTypedInTheFieldBecomesTheValueWhenTheFocusLeaves) {
  c->campo()->setFocus();
  c->campo()->setDate(QDate(2027, 1, 2));
  EXPECT_EQ(c->date(), QDate(2026, 3, 10));
  abaixo->setFocus();
  EXPECT_EQ(c->date(), QDate(2027, 1, 2));
  EXPECT_EQ(mudancas, 0);
}

}  // namespace
}  // namespace zv

namespace zv {
namespace {

TEST(MyDate, TheBorderFollowsTheFocusAndTheButtonDropsTheMonth) {
  QWidget janela;
  janela.resize(300, 200);
  auto* d = new MyDate(&janela);
  d->setGeometry(10, 10, 140, 24);
  auto* outro = new QLineEdit(&janela);
  outro->setGeometry(10, 100, 80, 20);
  janela.show();
  QApplication::setActiveWindow(&janela);
  ASSERT_TRUE(QTest::qWaitForWindowActive(&janela));
  EXPECT_EQ(d->ValorData(), QDate::currentDate());
  outro->setFocus();
  d->editor()->setFocus();
  EXPECT_EQ(d->CorBorda(), d->corFoco);
  outro->setFocus();
  EXPECT_EQ(d->CorBorda(), d->corPerdeFoco);
  // The editor's own frame and button lie outside its panel.
  EXPECT_GT(d->editor()->width(), d->editor()->parentWidget()->width());
  QTest::mouseClick(d->botao(), Qt::LeftButton);
  EXPECT_TRUE(d->Aberto());  // the month, a pop-up, has the keyboard now
  d->DefineAtiva(false);
  EXPECT_FALSE(d->editor()->isEnabled());
}

}  // namespace
}  // namespace zv
