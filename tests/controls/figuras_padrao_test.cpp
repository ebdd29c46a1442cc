// The default pictures: the look-up by the original's rule, and a picture
// for every entry of the lists.
#include <gtest/gtest.h>

#include "controls/figuras_padrao.h"

namespace zv {
namespace {

TEST(FigurasPadrao, TheEndOfANameIsEnoughInAnyCase) {
  const QString figuras = QString::fromLatin1(kListaFiguras), fundos = QString::fromLatin1(kListaFundos);
  EXPECT_EQ(ProcuraNaLista(figuras, QStringLiteral("PicOK")), 0);
  EXPECT_EQ(ProcuraNaLista(figuras, QStringLiteral("ok")), 0);
  EXPECT_EQ(ProcuraNaLista(figuras, QStringLiteral("PICOK2")), 12);
  EXPECT_EQ(ProcuraNaLista(figuras, QStringLiteral("Pic$")), 9);
  EXPECT_EQ(ProcuraNaLista(figuras, QStringLiteral("monitor")), 32);
  // Any tail of an entry finds it: "2" is the end of PicOK2.
  EXPECT_EQ(ProcuraNaLista(figuras, QStringLiteral("2")), 12);
  EXPECT_EQ(ProcuraNaLista(figuras, QString()), -1);
  EXPECT_EQ(ProcuraNaLista(figuras, QStringLiteral("PicNone")), -1);
  EXPECT_EQ(ProcuraNaLista(figuras, QStringLiteral("/home/ana/PicOK")), -1);  // a path never matches
  EXPECT_EQ(ProcuraNaLista(fundos, QStringLiteral("imgsobre")), 1);
  EXPECT_EQ(ProcuraNaLista(fundos, QStringLiteral("Pantano")), 0);
}

TEST(FigurasPadrao, EveryEntryHasItsPicture) {
  for (int n = 0; n < kTotalFiguras; ++n) {
    const QImage img = FiguraPadrao(n).toImage();
    ASSERT_EQ(img.size(), QSize(32, 32)) << n;
    int tinta = 0;
    for (int y = 0; y < 32; ++y)
      for (int x = 0; x < 32; ++x) tinta += qAlpha(img.pixel(x, y)) > 0;
    EXPECT_GT(tinta, 20) << "picture " << n << " is nearly empty";
  }
  EXPECT_TRUE(FiguraPadrao(kTotalFiguras).isNull());
  EXPECT_EQ(FundoPadrao(0).size(), QSize(640, 480));
  EXPECT_NE(FundoPadrao(0), FundoPadrao(1));
}

}  // namespace
}  // namespace zv
