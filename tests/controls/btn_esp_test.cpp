// The skinned button on the offscreen platform: clicks from the mouse and
// the keyboard, hover on its timer, focus, the layout of icon and caption,
// the background it samples, and the nine default skins.
#include <gtest/gtest.h>

#include <QApplication>
#include <QCursor>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QTest>

#include "controls/btn_esp.h"

namespace zv {
namespace {

void Mouse(QWidget* w, QEvent::Type tipo, QPoint p) {
  QMouseEvent e(tipo, QPointF(p), w->mapToGlobal(QPointF(p)), tipo == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton,
                tipo == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
  QCoreApplication::sendEvent(w, &e);
}

void Tecla(QWidget* w, int k) {
  QKeyEvent d(QEvent::KeyPress, k, Qt::NoModifier), u(QEvent::KeyRelease, k, Qt::NoModifier);
  QCoreApplication::sendEvent(w, &d);
  QCoreApplication::sendEvent(w, &u);
}

struct Janela : ::testing::Test {
  QWidget janela;
  BtnEsp* a = new BtnEsp(&janela);
  BtnEsp* b = new BtnEsp(&janela);
  int cliques = 0;
  void SetUp() override {
    janela.resize(300, 120);
    a->setGeometry(10, 10, 90, 32);
    b->setGeometry(120, 10, 90, 32);
    a->setText(QStringLiteral("Save"));
    a->relata = [this](const DadosEvento& d) { cliques += d.tipo == EventoControle::Clique; };
    janela.show();
    QApplication::setActiveWindow(&janela);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&janela));
  }
};

TEST_F(Janela, APressThatBeganHereClicksWhereverItIsReleased) {
  Mouse(a, QEvent::MouseButtonPress, {5, 5});
  EXPECT_TRUE(a->Afundado());
  Mouse(a, QEvent::MouseButtonRelease, {200, 90});  // dragged off
  EXPECT_FALSE(a->Afundado());
  EXPECT_EQ(cliques, 1);
  Mouse(a, QEvent::MouseButtonRelease, {5, 5});  // a release with no press before it
  EXPECT_EQ(cliques, 1);

  // Style 1: the pressed picture, then the resting one (the mouse is elsewhere).
  a->DefineEstilo(1);
  a->DefineTipoPele(2);
  Mouse(a, QEvent::MouseButtonPress, {5, 5});
  EXPECT_EQ(a->FiguraVisivel(), EstadoPele::Baixo);
  Mouse(a, QEvent::MouseButtonRelease, {5, 5});
  EXPECT_EQ(a->FiguraVisivel(), EstadoPele::Cima);
  EXPECT_EQ(cliques, 2);
}

TEST_F(Janela, EnterAndSpaceClickOnceAndArrowsMoveTheFocus) {
  a->setFocus();
  Tecla(a, Qt::Key_Return);
  Tecla(a, Qt::Key_Space);
  EXPECT_EQ(cliques, 2);
  EXPECT_FALSE(a->Afundado());
  Tecla(a, Qt::Key_Right);
  EXPECT_TRUE(b->hasFocus());
  Tecla(b, Qt::Key_Up);
  EXPECT_TRUE(a->hasFocus());
}

TEST_F(Janela, HoverRunsOnItsTimerOnlyWhileTheMouseIsOver) {
  a->DefineEstilo(1);
  a->DefineTipoPele(1);
  EXPECT_FALSE(a->HoverAtivo());
  QCursor::setPos(a->mapToGlobal(a->rect().center()));
  Mouse(a, QEvent::MouseMove, a->rect().center());
  EXPECT_TRUE(a->HoverAtivo());
  a->TiqueHover();
  EXPECT_EQ(a->FiguraVisivel(), EstadoPele::Alto);
  EXPECT_TRUE(a->MouseSobre());
  // Focus while the mouse is over shows the hover picture, not the focus one.
  a->setFocus();
  EXPECT_EQ(a->FiguraVisivel(), EstadoPele::Alto);
  QCursor::setPos(b->mapToGlobal(b->rect().center()));
  a->TiqueHover();
  EXPECT_EQ(a->FiguraVisivel(), EstadoPele::Foco);
  EXPECT_FALSE(a->HoverAtivo());
  b->setFocus();
  EXPECT_EQ(a->FiguraVisivel(), EstadoPele::Cima);

  // Disabled: its own picture, and a tick that finds it disabled stops.
  Mouse(a, QEvent::MouseMove, a->rect().center());
  a->setEnabled(false);
  EXPECT_EQ(a->FiguraVisivel(), EstadoPele::Desativado);
  a->TiqueHover();
  EXPECT_FALSE(a->HoverAtivo());
  // The drawn style has no hover at all.
  b->DefineEstilo(0);
  Mouse(b, QEvent::MouseMove, b->rect().center());
  EXPECT_FALSE(b->HoverAtivo());
}

TEST_F(Janela, TheIconLeadsTheCaptionByLessThanTheWidthItCountsFor) {
  QPixmap icone(16, 16);
  icone.fill(Qt::red);
  a->setIcon(QIcon(icone));
  a->setIconSize(icone.size());
  const QRect i = a->RetanguloIcone(), l = a->RetanguloLegenda();
  EXPECT_EQ(l.left(), i.right() + 1 + 7);
  const int conteudo = l.width() + 16 + 13;
  EXPECT_EQ(i.left(), 1 + (90 - 3 - conteudo) / 2);
  // With no caption the icon alone stands in the middle.
  a->setText(QString());
  EXPECT_EQ(a->RetanguloIcone().left(), 1 + (87 - 16) / 2);
  EXPECT_FALSE(a->RetanguloLegenda().isValid());
}

TEST_F(Janela, ASkinWithoutPicturesShowsItsCaptionAndTheBackgroundIsSampled) {
  a->DefineEstilo(1);
  a->DefinePele(Pele{});
  QImage img = a->grab().toImage();
  const QRect l = a->RetanguloLegenda();
  int escuros = 0;
  for (int y = l.top(); y <= l.bottom(); ++y)
    for (int x = l.left(); x <= l.right(); ++x) escuros += qGray(img.pixel(x, y)) < 100;
  EXPECT_GT(escuros, 5);

  // The parent's colour 3 pixels right of the button, at half its height,
  // shows outside the drawn frame, in the last column and row.
  QPalette p = janela.palette();
  p.setColor(QPalette::Window, QColor(200, 30, 30));
  janela.setPalette(p);
  janela.setAutoFillBackground(true);
  b->AmostraFundo();
  EXPECT_EQ(b->grab().toImage().pixelColor(89, 31), QColor(200, 30, 30));
  b->transparente = false;
  p.setColor(QPalette::Window, QColor(30, 200, 30));
  janela.setPalette(p);
  b->AmostraFundo();
  EXPECT_EQ(b->grab().toImage().pixelColor(89, 31), QColor(200, 30, 30));  // no longer sampled
}

TEST(Peles, NineSkinsOfFiveDistinctStatesWithCutCorners) {
  for (int t = 0; t < kTiposBotao; ++t) {
    Pele p = PelePadrao(t, QSize(80, 30));
    for (int e = 0; e < 5; ++e) {
      QImage img = p.figuras[static_cast<size_t>(e)].toImage();
      ASSERT_EQ(img.size(), QSize(80, 30)) << t << "/" << e;
      EXPECT_EQ(qAlpha(img.pixel(0, 0)), 0) << t << "/" << e;
      EXPECT_EQ(qAlpha(img.pixel(40, 15)), 255) << t << "/" << e;
      for (int f = 0; f < e; ++f)
        EXPECT_NE(img, p.figuras[static_cast<size_t>(f)].toImage()) << "skin " << t << " states " << f << "," << e;
    }
  }
  EXPECT_TRUE(PelePadrao(kTiposBotao, QSize(80, 30)).figuras[0].isNull());
  EXPECT_TRUE(PelePadrao(-1, QSize(80, 30)).figuras[0].isNull());
}

}  // namespace
}  // namespace zv
