// The database layer under the SQL command, on SQLite in memory: connection
// texts, Find's criteria, moving, and changes written back to exactly the row
// they were read from.
#include <gtest/gtest.h>

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QSqlRecord>

#include <functional>

#include "data/sql_conjunto.h"
#include "library/texto_qt.h"

namespace zv {
namespace {

using namespace Qt::StringLiterals;

int NumeroDaFalha(const std::function<void()>& f) {
  try {
    f();
  } catch (const FalhaSQL& e) {
    return e.numero;
  }
  return 0;
}

TEST(TextoConexao, DriversChavesEFalhas) {
  PedidoConexao p = LeTextoConexao(u"Driver=SQLite3;Database=loja.db");
  EXPECT_EQ(p.driver, u"QSQLITE");
  EXPECT_EQ(p.banco, u"loja.db");
  EXPECT_EQ(LeTextoConexao(u"Data Source = c:\\x\\a.sqlite3").driver, u"QSQLITE");
  EXPECT_EQ(LeTextoConexao(u"Driver={SQLite3 ODBC Driver};Database=a").driver, u"QSQLITE");

  p = LeTextoConexao(u"Driver={PostgreSQL Unicode};Server=db.local;Port=5433;UID=ana;PWD=\"s;x\";Database=vendas;sslmode=require");
  EXPECT_EQ(p.driver, u"QPSQL");
  EXPECT_EQ(p.servidor, u"db.local");
  EXPECT_EQ(p.porta, 5433);
  EXPECT_EQ(p.usuario, u"ana");
  EXPECT_EQ(p.senha, u"s;x");
  EXPECT_EQ(p.banco, u"vendas");
  EXPECT_EQ(p.opcoes, u"sslmode=require");

  EXPECT_EQ(NumeroDaFalha([] { LeTextoConexao(u"Provider=Microsoft.Jet.OLEDB.4.0;Data Source=a.mdb"); }),
            erro_sql::kSemDriver);
  EXPECT_EQ(NumeroDaFalha([] { LeTextoConexao(u"Database=vendas"); }), erro_sql::kSemDriver);
}

TEST(CriterioBusca, FormasEComparacoes) {
  CriterioBusca c = LeCriterio(u"Name = 'o''Hara'");
  EXPECT_EQ(c.campo, u"Name");
  EXPECT_TRUE(c.Aceita(u"O'HARA"_s));  // texts compare without case
  EXPECT_FALSE(c.Aceita(QVariant()));  // a null matches nothing

  c = LeCriterio(u"[Unit Price] >= 2.5");
  EXPECT_EQ(c.campo, u"Unit Price");
  EXPECT_TRUE(c.Aceita(10));  // 10 >= 2.5 as numbers, not as texts
  EXPECT_FALSE(c.Aceita(2));
  EXPECT_TRUE(LeCriterio(u"Age<>40").Aceita(u"39"_s));

  c = LeCriterio(u"Name like 'an*'");
  EXPECT_TRUE(c.Aceita(u"Anna"_s));
  EXPECT_FALSE(c.Aceita(u"Joanna"_s));
  EXPECT_TRUE(LeCriterio(u"Name LIKE '%nn%'").Aceita(u"Joanna"_s));
  EXPECT_FALSE(LeCriterio(u"Name LIKE 'a.b'").Aceita(u"axb"_s));  // only * and % are wild

  c = LeCriterio(u"Born < #2000-01-31#");
  EXPECT_TRUE(c.Aceita(u"1999-12-31"_s));
  EXPECT_FALSE(c.Aceita(u"2000-02-01"_s));

  for (const char16_t* mau : {u"", u"Name", u"Name = ", u"Name = 'open", u"= 3", u"Age LIKE 3", u"Name = 'a' AND Age = 3",
                              u"Born = #yesterday#"})
    EXPECT_EQ(NumeroDaFalha([&] { LeCriterio(mau); }), erro_sql::kArgumentos) << Utf8(mau);
}

class ConjuntoEmMemoria : public ::testing::Test {
 protected:
  void SetUp() override {
    PedidoConexao p;
    p.driver = u"QSQLITE"_s;
    p.banco = u":memory:"_s;
    conexao.Abre(p);
    conexao.Executa(u"CREATE TABLE Clientes (Id INTEGER PRIMARY KEY, Nome TEXT, Idade INTEGER)");
    conexao.Executa(u"INSERT INTO Clientes (Nome, Idade) VALUES ('Ana', 31), ('Bia', 40), ('Caio', 22)");
    conexao.Executa(u"CREATE TABLE Notas (Texto TEXT)");
    conexao.Executa(u"INSERT INTO Notas VALUES ('x'), ('x'), ('y')");
  }

  QString Consulta(const QString& sql) {
    QSqlQuery q(QSqlDatabase::database(conexao.Nome(), false));
    q.exec(sql);
    QStringList linhas;
    while (q.next()) {
      QStringList valores;
      for (int i = 0; i < q.record().count(); ++i) valores << q.value(i).toString();
      linhas << valores.join(u',');
    }
    return linhas.join(u';');
  }

  Texto Nome(const ConjuntoSQL& c) { return T(c.Campo(u"NOME").toString()); }

  ConexaoSQL conexao;
};

TEST_F(ConjuntoEmMemoria, AndaDeUmaPontaAOutra) {
  ConjuntoSQL c;
  c.Abre(u"SELECT * FROM Clientes ORDER BY Nome", conexao, int(Cursor::Dynamic), int(Trava::Optimistic));
  EXPECT_EQ(c.RecordCount(), 3);
  EXPECT_EQ(Nome(c), u"Ana");
  c.MovePrevious();
  EXPECT_TRUE(c.Bof());
  EXPECT_FALSE(c.Eof());
  EXPECT_EQ(NumeroDaFalha([&] { c.Campo(u"Nome"); }), erro_sql::kSemRegistro);
  EXPECT_EQ(NumeroDaFalha([&] { c.MovePrevious(); }), erro_sql::kSemRegistro);
  c.MoveLast();
  EXPECT_EQ(Nome(c), u"Caio");
  c.MoveNext();
  EXPECT_TRUE(c.Eof());
  EXPECT_EQ(NumeroDaFalha([&] { c.MoveNext(); }), erro_sql::kSemRegistro);
  c.MoveFirst();
  EXPECT_EQ(NumeroDaFalha([&] { c.Campo(u"Morada"); }), erro_sql::kSemCampo);

  c.Find(u"Idade > 30");  // from the current record on
  EXPECT_EQ(Nome(c), u"Ana");
  c.MoveNext();
  c.Find(u"Idade < 30");
  EXPECT_EQ(Nome(c), u"Caio");
  c.Find(u"Nome = 'Ana'");
  EXPECT_TRUE(c.Eof());

  ConjuntoSQL vazio;
  vazio.Abre(u"SELECT * FROM Clientes WHERE Idade > 99", conexao, 2, 3);
  EXPECT_TRUE(vazio.Eof());
  EXPECT_TRUE(vazio.Bof());
  EXPECT_EQ(NumeroDaFalha([&] { vazio.MoveFirst(); }), erro_sql::kSemRegistro);
  EXPECT_EQ(NumeroDaFalha([&] { vazio.MoveLast(); }), erro_sql::kSemRegistro);
}

TEST_F(ConjuntoEmMemoria, MudancasVoltamAoBanco) {
  ConjuntoSQL c;
  c.Abre(u"SELECT Id, Nome, Idade FROM Clientes ORDER BY Id", conexao, 2, 3);
  c.DefineCampo(u"Idade", 32);
  c.MoveNext();  // a move writes what was changed
  EXPECT_EQ(Consulta(u"SELECT Idade FROM Clientes WHERE Nome = 'Ana'"_s), u"32");

  c.AddNew();
  c.DefineCampo(u"Nome", u"Davi"_s);
  c.Update();
  EXPECT_EQ(c.Campo(u"Id").toInt(), 4);  // the key the database gave
  EXPECT_EQ(c.RecordCount(), 4);

  c.MoveFirst();
  c.Delete();
  EXPECT_EQ(NumeroDaFalha([&] { c.Campo(u"Nome"); }), erro_sql::kSemRegistro);  // until the next move
  c.MoveNext();
  EXPECT_EQ(Nome(c), u"Bia");
  EXPECT_EQ(c.RecordCount(), 3);
  c.MovePrevious();
  EXPECT_TRUE(c.Bof());  // the deleted row is skipped

  // Changed by someone else meanwhile: the row isn't found, nothing changes.
  c.MoveFirst();
  conexao.Executa(u"UPDATE Clientes SET Nome = 'Beatriz' WHERE Nome = 'Bia'");
  ConjuntoSQL semChave;
  semChave.Abre(u"SELECT Nome, Idade FROM Clientes ORDER BY Nome", conexao, 2, 3);
  conexao.Executa(u"UPDATE Clientes SET Idade = 41 WHERE Nome = 'Beatriz'");
  semChave.DefineCampo(u"Nome", u"B"_s);
  EXPECT_EQ(NumeroDaFalha([&] { semChave.Update(); }), erro_sql::kLinhaSumiu);
  EXPECT_EQ(Consulta(u"SELECT Nome FROM Clientes ORDER BY Id"_s), u"Beatriz;Caio;Davi");
  EXPECT_EQ(Nome(semChave), u"Beatriz");  // the refused change is dropped

  // Closing writes what is pending.
  semChave.MoveLast();
  semChave.DefineCampo(u"Idade", 5);
  semChave.Fecha();
  EXPECT_EQ(Consulta(u"SELECT Idade FROM Clientes WHERE Nome = 'Davi'"_s), u"5");
}

TEST_F(ConjuntoEmMemoria, LinhasIguaisSemChaveNaoMudamJuntas) {
  ConjuntoSQL c;
  c.Abre(u"SELECT Texto FROM Notas", conexao, 2, 3);
  c.DefineCampo(u"Texto", u"z"_s);
  EXPECT_EQ(NumeroDaFalha([&] { c.Update(); }), erro_sql::kLinhaSumiu);
  EXPECT_EQ(Consulta(u"SELECT Texto FROM Notas"_s), u"x;x;y");
  EXPECT_EQ(NumeroDaFalha([&] { c.Delete(); }), erro_sql::kLinhaSumiu);
  EXPECT_EQ(Consulta(u"SELECT COUNT(*) FROM Notas"_s), u"3");
}

TEST_F(ConjuntoEmMemoria, OQueNaoSePodeMudar) {
  ConjuntoSQL leitura;
  leitura.Abre(u"SELECT * FROM Clientes", conexao, 3, int(Trava::ReadOnly));
  EXPECT_EQ(NumeroDaFalha([&] { leitura.DefineCampo(u"Nome", u"x"_s); }), erro_sql::kSoLeitura);
  EXPECT_EQ(NumeroDaFalha([&] { leitura.AddNew(); }), erro_sql::kSoLeitura);

  ConjuntoSQL juncao;
  juncao.Abre(u"SELECT a.Nome FROM Clientes a JOIN Clientes b ON a.Id = b.Id", conexao, 2, 3);
  EXPECT_TRUE(juncao.TabelaBase().isEmpty());
  EXPECT_EQ(NumeroDaFalha([&] { juncao.Delete(); }), erro_sql::kSoLeitura);

  conexao.DefineLocal(2);
  ConjuntoSQL frente;
  frente.Abre(u"SELECT * FROM Clientes", conexao, int(Cursor::ForwardOnly), int(Trava::ReadOnly));
  frente.MoveNext();
  EXPECT_EQ(NumeroDaFalha([&] { frente.MovePrevious(); }), erro_sql::kParaTras);

  conexao.Fecha();
  EXPECT_EQ(NumeroDaFalha([&] { conexao.Executa(u"SELECT 1"); }), erro_sql::kFechado);
  EXPECT_EQ(NumeroDaFalha([&] { ConjuntoSQL().Abre(u"SELECT 1", conexao, 2, 3); }), erro_sql::kFechado);
  EXPECT_EQ(NumeroDaFalha([&] { ConjuntoSQL().MoveFirst(); }), erro_sql::kFechado);
}

}  // namespace
}  // namespace zv
