// Compile from the environment: the form's dialogues, the names it derives,
// a build that runs, its failure message, and the fields remembered.
#include <QLineEdit>
#include <QPushButton>

#include "environment/compilar.h"
#include "tests/environment/ambiente.h"

namespace zv::teste {
namespace {

QLineEdit* CampoDe(FormCompilar& f, const char* nome) { return f.findChild<QLineEdit*>(QString::fromLatin1(nome)); }
void Clica(FormCompilar& f, const char* nome) {
  QTest::mouseClick(f.findChild<QPushButton*>(QString::fromLatin1(nome)), Qt::LeftButton);
}

TEST_F(Ambiente, CompileMakesAnExecutableOfTheSavedProgram) {
  {
    std::ofstream o(pasta / "Agenda.zvc", std::ios::binary);
    o << "#ZV7#Write JoinStr(\"Agenda \", CommandLine)\r\n#%";
  }
  FormCompilar f(pasta, pessoa, QString());
  f.imagem = QStringLiteral(ZV_IMAGEM_RUNTIME);
  pessoa.arquivos = {QString::fromStdString(Arquivo("Agenda.zvc")), QString::fromStdString(Arquivo("agenda.bin"))};
  Clica(f, "BtnEscolher");
  Clica(f, "BtnExecutavel");
  EXPECT_EQ(pessoa.dialogos, (QStringList{QStringLiteral("Open source code"), QStringLiteral("Executable file")}));
  EXPECT_EQ(CampoDe(f, "TxtNomeOriginal")->text(), QStringLiteral("agenda.bin"));
  EXPECT_EQ(CampoDe(f, "TxtNomeInterno")->text(), QStringLiteral("agenda"));
  CampoDe(f, "TxtEmpresa")->setText(QStringLiteral("Acme"));
  Clica(f, "BtnCompilar");
  ASSERT_EQ(pessoa.avisos.size(), 1);
  EXPECT_EQ(pessoa.avisos[0],
            QStringLiteral("The executable file %1\n was generated successfully!").arg(QString::fromStdString(Arquivo("agenda.bin"))));
  std::string saida;
  FILE* p = ::popen((Arquivo("agenda.bin") + " --headless today").c_str(), "r");
  char b[256];
  while (p && std::fgets(b, sizeof b, p)) saida += b;
  if (p) ::pclose(p);
  EXPECT_EQ(saida, "Agenda today\n");

  // A source that isn't there: the failure in words, the panel left up.
  CampoDe(f, "TxtNomeProg")->setText(QString::fromStdString(Arquivo("none.zvc")));
  Clica(f, "BtnCompilar");
  ASSERT_EQ(pessoa.avisos.size(), 2);
  EXPECT_TRUE(pessoa.avisos[1].startsWith(QStringLiteral("Error when compiling program: \n\n53 - File not found")))
      << pessoa.avisos[1].toStdString();

  // Closed, the fields are remembered for the next time.
  f.reject();
  FormCompilar outra(pasta, pessoa, QStringLiteral("ignored: a field was filled"));
  EXPECT_EQ(CampoDe(outra, "TxtEmpresa")->text(), QStringLiteral("Acme"));
  EXPECT_EQ(CampoDe(outra, "TxtNomeExe")->text(), QString::fromStdString(Arquivo("agenda.bin")));
  EXPECT_EQ(CampoDe(outra, "TxtNomeProg")->text(), QString::fromStdString(Arquivo("none.zvc")));
}

}  // namespace
}  // namespace zv::teste
