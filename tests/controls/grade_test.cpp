// The grid's data: numeric keys, the order of sorts (checked against the
// original's binary insertion, written out here as the slow path), filling,
// removal and the edges of the data.
#include <gtest/gtest.h>

#include <QApplication>
#include <random>

#include "controls/grade.h"

namespace zv {
namespace {

struct Chave {
  const char* texto;
  double valor;
};

// "." is the thousands separator and the first "," the decimal one; a key
// with no number counts 0.
const Chave kChaves[] = {
    {"1.200,50", 1200.5}, {"300,00", 300},   {" 300", 300},        {"-5", -5},      {"none", 0},
    {"", 0},              {"12abc", 12},     {"1.234.567", 1234567}, {"3,5,7", 3.5}, {",5", 0.5},
    {"+2", 2},            {"1e3", 1000},     {"7 ", 7},            {"-", 0},        {"1,2e2", 120},
};

TEST(ModeloGrade, NumericKeys) {
  for (const Chave& c : kChaves)
    EXPECT_DOUBLE_EQ(ModeloGrade::NumeroDaChave(QString::fromUtf8(c.texto)), c.valor) << c.texto;
}

ModeloGrade Modelo(const std::vector<std::pair<QString, QString>>& linhas) {
  ModeloGrade m;
  m.Titulo({QStringLiteral("Name"), 10, 0, 0});
  m.Titulo({QStringLiteral("Total"), 10, 1, 1});
  for (const auto& [a, b] : linhas) {
    m.Add(a, {});
    m.Add(b, {});
    m.BoxNew();
  }
  return m;
}

QStringList Coluna(const ModeloGrade& m, int c) {
  QStringList r;
  for (int l = 0; l < m.Linhas(); ++l) r << m.LeVetor(l, c);
  return r;
}

// The original's sort, as it is described: binary insertion of each key
// into a sorted list, a key going behind the equal ones already there; the
// rows read from the end for descending.
QStringList OrdemOriginal(const ModeloGrade& m, int coluna, bool ascendente) {
  std::vector<int> lista;
  auto menor = [&](int a, int b) {
    if (m.Coluna(coluna).tipo == 1)
      return ModeloGrade::NumeroDaChave(m.Texto(a, coluna)) < ModeloGrade::NumeroDaChave(m.Texto(b, coluna));
    return m.Texto(a, coluna) < m.Texto(b, coluna);
  };
  for (int l = 0; l < m.Linhas(); ++l) {
    size_t baixo = 0, alto = lista.size();
    while (baixo < alto) {
      size_t meio = (baixo + alto) / 2;
      if (menor(l, lista[meio]))
        alto = meio;
      else
        baixo = meio + 1;
    }
    lista.insert(lista.begin() + static_cast<ptrdiff_t>(baixo), l);
  }
  if (!ascendente) std::reverse(lista.begin(), lista.end());
  QStringList r;
  for (int l : lista) r << m.LeVetor(l, 0);
  return r;
}

TEST(ModeloGrade, SortsAsTheBinaryInsertionDoes) {
  std::mt19937 gerador(12);
  const char* nomes[] = {"ann", "Ann", "bob", "Bob", "cid", "b", "", "Zé", "ana"};
  const char* numeros[] = {"1.200,50", "300,00", "300", "-5", "x", "0", "12,5", "1.000"};
  for (int rodada = 0; rodada < 40; ++rodada) {
    std::vector<std::pair<QString, QString>> linhas;
    int n = static_cast<int>(gerador() % 60);
    for (int k = 0; k < n; ++k)
      linhas.emplace_back(QString::fromUtf8(nomes[gerador() % 9]) + QString::number(k % 3 == 0 ? 0 : k),
                          QString::fromUtf8(numeros[gerador() % 8]));
    for (int coluna = 0; coluna < 2; ++coluna)
      for (bool asc : {true, false}) {
        ModeloGrade m = Modelo(linhas);
        QStringList esperado = OrdemOriginal(m, coluna, asc);
        m.Ordena(coluna, asc);
        EXPECT_EQ(Coluna(m, 0), esperado) << "round " << rodada << " column " << coluna << " asc " << asc;
      }
  }
}

TEST(ModeloGrade, NumericColumnPutsThreeHundredFirst) {
  ModeloGrade m = Modelo({{"a", "1.200,50"}, {"b", "300,00"}});
  m.Ordena(1, true);
  EXPECT_EQ(Coluna(m, 0), (QStringList{"b", "a"}));
}

TEST(ModeloGrade, HeaderClicksAlternateAndANewColumnStartsAscending) {
  ModeloGrade m = Modelo({});
  EXPECT_TRUE(m.CliqueCabecalho(1));
  EXPECT_FALSE(m.CliqueCabecalho(1));
  EXPECT_TRUE(m.CliqueCabecalho(1));
  EXPECT_TRUE(m.CliqueCabecalho(0));
  EXPECT_FALSE(m.CliqueCabecalho(0));
  EXPECT_TRUE(m.CliqueCabecalho(1));
}

TEST(ModeloGrade, FillingCountsFinishedRowsAndPadsByAlignment) {
  ModeloGrade m;
  m.Titulo({QStringLiteral("A"), 10, 0, 0});
  m.Titulo({QStringLiteral("B"), 10, 1, 0});
  m.Titulo({QStringLiteral("C"), 10, 2, 0});
  EXPECT_TRUE(m.Add(QStringLiteral("a"), {}));
  EXPECT_EQ(m.Linhas(), 0);  // unfinished rows don't count
  EXPECT_TRUE(m.Add(QStringLiteral("b"), {}));
  EXPECT_TRUE(m.Add(QStringLiteral("c"), {}));
  EXPECT_FALSE(m.Add(QStringLiteral("d"), {}));  // beyond the last column: refused, nothing moves
  EXPECT_EQ(m.ColunaDePreenchimento(), 3);
  m.BoxNew();
  EXPECT_EQ(m.Linhas(), 1);
  EXPECT_EQ(m.Texto(0, 0), QStringLiteral("a "));
  EXPECT_EQ(m.Texto(0, 1), QStringLiteral(" b"));
  EXPECT_EQ(m.Texto(0, 2), QStringLiteral("c"));
  EXPECT_EQ(m.LeVetor(0, 1), QStringLiteral("b"));
  // Beyond the data: empty, whatever side.
  EXPECT_EQ(m.LeVetor(1, 0), QString());
  EXPECT_EQ(m.LeVetor(0, 3), QString());
  EXPECT_EQ(m.LeVetor(-1, 0), QString());
}

TEST(ModeloGrade, RemovalMovesTheRowsBehindUp) {
  ModeloGrade m = Modelo({{"a", "1"}, {"b", "2"}, {"c", "3"}});
  EXPECT_TRUE(m.RemoveLinha(1));
  EXPECT_EQ(Coluna(m, 0), (QStringList{"a", "c"}));
  EXPECT_EQ(Coluna(m, 1), (QStringList{"1", "3"}));
  EXPECT_TRUE(m.RemoveLinha(1));  // the last row
  EXPECT_EQ(Coluna(m, 0), (QStringList{"a"}));
  EXPECT_FALSE(m.RemoveLinha(1));
  EXPECT_FALSE(m.RemoveLinha(-1));
  // Filling goes on behind the rows that are left.
  m.Add(QStringLiteral("d"), {});
  m.Add(QStringLiteral("4"), {});
  m.BoxNew();
  EXPECT_EQ(Coluna(m, 0), (QStringList{"a", "d"}));
}

TEST(ModeloGrade, EmptyAndOneRowSortsAndTheFiftyFirstColumn) {
  ModeloGrade vazio = Modelo({});
  vazio.Ordena(1, false);
  EXPECT_EQ(vazio.Linhas(), 0);
  ModeloGrade um = Modelo({{"a", "x"}});
  um.Ordena(0, false);
  EXPECT_EQ(Coluna(um, 0), (QStringList{"a"}));
  um.Ordena(7, true);  // no such column: nothing
  EXPECT_EQ(um.Linhas(), 1);
  ModeloGrade m;
  for (int c = 0; c < ModeloGrade::kMaxColunas; ++c) EXPECT_TRUE(m.Titulo({}));
  EXPECT_FALSE(m.Titulo({}));
  EXPECT_EQ(m.TotalColunas(), 50);
}

// Found by fuzzing: rows finished before any column had no storage, and a
// column added then read past it.
TEST(ModeloGrade, RowsBeforeAnyColumnThenAColumn) {
  ModeloGrade m;
  m.Add(QStringLiteral("refused"), {});
  m.BoxNew();
  m.BoxNew();
  m.Titulo({QStringLiteral("late"), 5, 0, 0});
  EXPECT_EQ(m.Linhas(), 2);
  EXPECT_EQ(m.LeVetor(1, 0), QString());
  m.Add(QStringLiteral("x"), {});
  m.BoxNew();
  EXPECT_EQ(m.LeVetor(2, 0), QStringLiteral("x"));
  m.Titulo({QStringLiteral("later"), 5, 1, 0});
  EXPECT_EQ(m.LeVetor(2, 0), QStringLiteral("x"));
  EXPECT_EQ(m.LeVetor(2, 1), QString());
  m.Ordena(0, false);
  EXPECT_EQ(m.LeVetor(0, 0), QStringLiteral("x"));
}

TEST(ModeloGrade, AttributesMoveWithTheirRows) {
  ModeloGrade m;
  m.Titulo({QStringLiteral("A"), 10, 2, 0});
  AtributosCelula vermelho;
  vermelho.fundo = qRgb(255, 0, 0);
  m.Add(QStringLiteral("b"), vermelho);
  m.BoxNew();
  m.Add(QStringLiteral("a"), {});
  m.BoxNew();
  m.Ordena(0, true);
  EXPECT_EQ(m.Atributos(1, 0).fundo, qRgb(255, 0, 0));
  EXPECT_EQ(m.Atributos(0, 0).fundo, AtributosCelula{}.fundo);
  // A cell costs its text's handle and 12 bytes of attributes, far under 200.
  EXPECT_LE(sizeof(QString) + sizeof(AtributosCelula), 40u);
}

}  // namespace
}  // namespace zv
