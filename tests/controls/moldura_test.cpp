// The window gradient line by line, the leader of its spans, and the
// frame's caption on the colour under the frame.
#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QPainter>

#include "controls/moldura.h"

namespace zv {
namespace {

QColor Linha(const QImage& img, int y) { return img.pixelColor(0, y); }

TEST(Gradiente, BlackToWhiteOn128LinesStepsEveryLine) {
  QImage img(4, 129, QImage::Format_ARGB32);
  img.fill(Qt::transparent);
  QPainter p(&img);
  ASSERT_TRUE(DesenhaGradiente(p, QSize(4, 128), QColor(0, 0, 0), QColor(255, 255, 255)));
  p.end();
  EXPECT_EQ(Linha(img, 0), QColor(0, 0, 0));
  EXPECT_EQ(Linha(img, 1), QColor(1, 1, 1));  // the first step comes after line 0
  EXPECT_EQ(Linha(img, 100), QColor(100, 100, 100));
  // It needn't reach the final colour: 128 steps of one.
  EXPECT_EQ(Linha(img, 128), QColor(128, 128, 128));
}

TEST(Gradiente, EqualColoursArePlainAndTooSteepASpanIsRefused) {
  QImage img(4, 50, QImage::Format_ARGB32);
  QPainter p(&img);
  ASSERT_TRUE(DesenhaGradiente(p, QSize(4, 50), QColor(10, 200, 30), QColor(10, 200, 30)));
  EXPECT_EQ(Linha(img, 0), QColor(10, 200, 30));
  EXPECT_EQ(Linha(img, 49), QColor(10, 200, 30));
  // 255 steps over 100 lines: the interval rounds to 0.
  EXPECT_FALSE(DesenhaGradiente(p, QSize(4, 100), QColor(0, 0, 0), QColor(255, 0, 0)));
}

TEST(Gradiente, DownwardsSpansAndTheirLeader) {
  int lider = -1;
  EXPECT_EQ(ValorMaior(5, 5, 5, lider), 5);
  EXPECT_EQ(lider, 0);
  EXPECT_EQ(ValorMaior(9, 3, 1, lider), 9);
  EXPECT_EQ(lider, 0);
  EXPECT_EQ(ValorMaior(3, 9, 1, lider), 9);
  EXPECT_EQ(lider, 1);
  // "B above G and above 1" doesn't ask about R: the later rules can't undo it.
  EXPECT_EQ(ValorMaior(9, 1, 3, lider), 3);
  EXPECT_EQ(lider, 2);
  EXPECT_EQ(ValorMaior(1, 7, 7, lider), 7);
  EXPECT_EQ(lider, 1);

  QImage img(2, 101, QImage::Format_ARGB32);
  QPainter p(&img);
  ASSERT_TRUE(DesenhaGradiente(p, QSize(2, 100), QColor(200, 100, 50), QColor(150, 100, 0)));
  EXPECT_EQ(Linha(img, 0), QColor(200, 100, 50));
  EXPECT_EQ(Linha(img, 100), QColor(150, 100, 0));  // intervals of 2, 50 steps each
}

TEST(Moldura, TheCaptionTakesTheColourUnderTheFramesCentre) {
  QWidget pai;
  pai.resize(300, 200);
  QPalette pal = pai.palette();
  pal.setColor(QPalette::Window, QColor(20, 120, 220));
  pai.setPalette(pal);
  pai.setAutoFillBackground(true);
  SpecialFrame f(&pai);
  f.setGeometry(20, 20, 200, 100);
  f.DefineLegenda(QStringLiteral("Total"));
  pai.show();
  f.Redesenha();
  EXPECT_EQ(f.FundoDaLegenda(), QColor(20, 120, 220));
  const QImage img = f.grab().toImage();
  EXPECT_EQ(img.pixelColor(0, 50), QColor(150, 150, 150));   // the left edge, dark
  EXPECT_EQ(img.pixelColor(1, 50), QColor(250, 250, 250));   // and light
  EXPECT_EQ(img.pixelColor(100, 7), QColor(150, 150, 150));  // the top edge at y = 7
  EXPECT_EQ(img.pixelColor(8, 1), QColor(20, 120, 220));     // the caption's background
}

}  // namespace
}  // namespace zv
