// The splash's shape and its cache file, the splash's end, and the file
// association written once into a data folder of the test's own.
#include <gtest/gtest.h>

#include <QTest>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "environment/apresenta.h"
#include "environment/associacao.h"
#include "environment/codigo.h"
#include "environment/interacao.h"
#include "environment/settings/armazem_config.h"

namespace zv {
namespace {

namespace fs = std::filesystem;

std::string LeTudo(const fs::path& p) {
  std::ifstream in(p, std::ios::binary);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

struct PastaTemporaria {
  fs::path p;
  explicit PastaTemporaria(const char* nome) : p(fs::temp_directory_path() / nome) {
    fs::remove_all(p);
    fs::create_directories(p);
  }
  ~PastaTemporaria() { fs::remove_all(p); }
};

TEST(Forma, RunsOfTheKeyColourAreCutAwayAndTheRegionSurvivesItsFile) {
  // A 6x3 picture: the key colour in the corners and one hole in the middle.
  QImage img(6, 3, QImage::Format_RGB32);
  img.fill(Qt::blue);
  for (QPoint p : {QPoint(0, 0), QPoint(5, 0), QPoint(0, 2), QPoint(5, 2), QPoint(2, 1), QPoint(3, 1)})
    img.setPixel(p, kCorRecortada);
  QRegion r = RegiaoDaImagem(img);
  EXPECT_FALSE(r.contains(QPoint(0, 0)));
  EXPECT_TRUE(r.contains(QPoint(1, 0)));
  EXPECT_FALSE(r.contains(QPoint(2, 1)));
  EXPECT_TRUE(r.contains(QPoint(4, 1)));
  EXPECT_EQ(r.boundingRect(), QRect(0, 0, 6, 3));

  const std::string bytes = BytesDaRegiao(r);
  ASSERT_EQ(bytes.size(), 32u + 16u * static_cast<size_t>(r.rectCount()));
  auto volta = RegiaoDosBytes(bytes);
  ASSERT_TRUE(volta);
  EXPECT_EQ(*volta, r);

  // Damage of every kind is refused, never trusted.
  EXPECT_FALSE(RegiaoDosBytes(bytes.substr(0, bytes.size() - 1)));
  EXPECT_FALSE(RegiaoDosBytes(bytes + "x"));
  EXPECT_FALSE(RegiaoDosBytes(std::string(12, '\0')));
  std::string outroTipo = bytes;
  outroTipo[4] = 2;
  EXPECT_FALSE(RegiaoDosBytes(outroTipo));
  std::string virado = bytes;  // the first rectangle's left beyond its right
  std::swap(virado[32], virado[40]);
  EXPECT_FALSE(RegiaoDosBytes(virado));
  std::string foraDoLimite = bytes;
  foraDoLimite[24] = 3;  // the bound's right edge inside the picture
  EXPECT_FALSE(RegiaoDosBytes(foraDoLimite));
}

TEST(Forma, TheSplashPictureKeepsItsCornersCut) {
  QRegion r = RegiaoDaImagem(ImagemApresenta());
  EXPECT_FALSE(r.contains(QPoint(0, 0)));
  EXPECT_TRUE(r.contains(QPoint(220, 125)));
}

TEST(Apresentacao, TheShapeIsCachedAndADamagedCacheIsReportedAndReplaced) {
  PastaTemporaria pasta("zv_apresenta");
  QStringList avisos;
  auto aviso = [&](const QString& a) { avisos << a; };
  {
    Apresenta a(pasta.p, [] {}, aviso);
    EXPECT_FALSE(a.RegiaoDoCache());
  }
  const std::string gravado = LeTudo(pasta.p / "zv.shp");
  ASSERT_GT(gravado.size(), 32u);
  {
    Apresenta a(pasta.p, [] {}, aviso);
    EXPECT_TRUE(a.RegiaoDoCache());
  }
  EXPECT_TRUE(avisos.isEmpty());
  std::ofstream(pasta.p / "zv.shp", std::ios::binary | std::ios::trunc) << "garbage";
  {
    Apresenta a(pasta.p, [] {}, aviso);
    EXPECT_FALSE(a.RegiaoDoCache());
  }
  ASSERT_EQ(avisos.size(), 1);
  EXPECT_TRUE(avisos[0].contains(QStringLiteral("damaged")));
  EXPECT_EQ(LeTudo(pasta.p / "zv.shp"), gravado);
}

TEST(Apresentacao, TheFourthTickOrAClickEndsItOnce) {
  PastaTemporaria pasta("zv_apresenta_fim");
  int vezes = 0;
  Apresenta a(pasta.p, [&] { ++vezes; });
  a.Tique();
  a.Tique();
  a.Tique();
  EXPECT_EQ(vezes, 0);
  a.Tique();
  EXPECT_EQ(vezes, 1);
  QTest::mouseClick(&a, Qt::LeftButton);
  EXPECT_EQ(vezes, 1);

  Apresenta b(pasta.p, [&] { ++vezes; });
  QTest::keyClick(&b, Qt::Key_Space);
  EXPECT_EQ(vezes, 2);
}

TEST(Associacao, TheDesktopEntryAndMimeTypeAreWrittenOnceKeyedByTheSetting) {
  PastaTemporaria pasta("zv_associa");
  const fs::path dados = pasta.p / "share";
  const fs::path exe = pasta.p / "my tools" / "zarvolt";
  ASSERT_EQ(FazAssociacao(exe, dados), "");
  const std::string entrada = LeTudo(dados / "applications" / "zarvolt.desktop");
  EXPECT_NE(entrada.find("Exec=\"" + exe.string() + "\" %f"), std::string::npos) << entrada;
  EXPECT_NE(entrada.find(std::string("MimeType=") + kTipoMime + ";"), std::string::npos);
  const std::string mime = LeTudo(dados / "mime" / "packages" / "zarvolt.xml");
  EXPECT_NE(mime.find("pattern=\"*.zvc\""), std::string::npos) << mime;
  EXPECT_TRUE(fs::exists(dados / "icons" / "hicolor" / "128x128" / "apps" / "zarvolt.png"));

  InteracaoNula ninguem;
  JanelaCodigo janela(pasta.p, ninguem);
  int vezes = 0;
  janela.AssociaSeFaltar([&] { return ++vezes == 1 ? std::string("no room") : std::string(); });
  EXPECT_EQ(LeConfig(pasta.p, u"AssociaZV"), u"");  // a failure is tried again at the next start
  janela.AssociaSeFaltar([&] { return ++vezes == 1 ? std::string("no room") : std::string(); });
  EXPECT_EQ(LeConfig(pasta.p, u"AssociaZV"), u"SIM");
  janela.AssociaSeFaltar([&] { return ++vezes, std::string(); });
  EXPECT_EQ(vezes, 2);
}

}  // namespace
}  // namespace zv
