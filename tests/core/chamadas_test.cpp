// Unit tests of what planned Function calls rest on: the store's filters
// that tell when a generated name can't be there, declaring a variable over
// a value already in place, and the calculation tree against the text's own
// calculation.
#include <gtest/gtest.h>

#include <string>

#include "core/expressao.h"
#include "core/variaveis.h"

namespace zv {
namespace {

uint32_t Proximo(uint32_t& semente) {
  semente = semente * 1103515245u + 12345u;
  return (semente >> 8) & 0xFFFF;
}

TEST(Variaveis, ShapeFilterNeverMissesAStoredOrLookedUpName) {
  Variaveis v;
  const Texto letras = u"ABsx_";
  uint32_t semente = 7;
  std::vector<Texto> guardados;
  for (int caso = 0; caso < 3000; ++caso) {
    Texto nome;
    size_t n = 1 + Proximo(semente) % 8;
    for (size_t i = 0; i < n; ++i)
      nome += Proximo(semente) % 3 ? letras[Proximo(semente) % letras.size()] : static_cast<char16_t>(u'0' + i);
    switch (Proximo(semente) % 3) {
      case 0:
        if (v.Cria(nome, u"Integer")) guardados.push_back(nome);
        break;
      case 1:
        if (!guardados.empty()) {
          size_t k = Proximo(semente) % guardados.size();
          EXPECT_TRUE(v.Remove(guardados[k]));
          guardados.erase(guardados.begin() + static_cast<long>(k));
        }
        break;
      default:
        v.registra = caso % 2;
        v.Posicao(nome);
        v.registra = false;
        break;
    }
    for (const Texto& g : guardados) {
      Texto m = Maiusculas(g);
      bool digito = m.find_first_of(u"0123456789") != NPOS;
      if (digito) {
        ASSERT_TRUE(v.TalvezComDigito(m[0], m.size())) << std::string(m.begin(), m.end());
      }
    }
  }
  // With nothing stored and nothing remembered, no shape can be there.
  v.Limpa();
  EXPECT_FALSE(v.TalvezComDigito(u'S', 6));
  v.Cria(u"Soma0a", u"Integer");
  EXPECT_TRUE(v.TalvezComDigito(u'S', 6));
  EXPECT_FALSE(v.TalvezComDigito(u'S', 7));
  v.Remove(u"Soma0a");
  EXPECT_FALSE(v.TalvezComDigito(u'S', 6));
  // A name looked up while lookups are remembered stays in the filter.
  v.registra = true;
  v.Posicao(u"Soma12b");
  v.registra = false;
  EXPECT_TRUE(v.TalvezComDigito(u'S', 7));
  // Except a routine's own names, which are checked at each call instead.
  v.semRegistro = {u"SOMA13B"};
  v.registra = true;
  v.Posicao(u"Soma13b");
  v.registra = false;
  v.semRegistro.clear();
  uint64_t g = v.geracao;
  v.Cria(u"Soma13b", u"Integer");
  EXPECT_EQ(v.geracao, g);
  v.Cria(u"Soma12b", u"Integer");
  EXPECT_GT(v.geracao, g);
}

TEST(Variaveis, NamesStartingWithAQuoteAreCounted) {
  Variaveis v;
  EXPECT_FALSE(v.HaNomeComAspas());
  v.Cria(u"\"x\"", u"String");
  v.Cria(u"\"y\"", u"Integer");
  EXPECT_TRUE(v.HaNomeComAspas());
  v.Remove(u"\"x\"");
  EXPECT_TRUE(v.HaNomeComAspas());
  v.Remove(u"\"Y\"");
  EXPECT_FALSE(v.HaNomeComAspas());
}

// Values pushed first and declared afterwards end as Cria leaves them.
TEST(Variaveis, DeclaringOverValuesInPlaceMatchesCria) {
  Variaveis a, b;
  for (Variaveis* v : {&a, &b}) {
    v->Cria(u"x", u"Integer");
    v->Cria(u"t", u"String");
    v->registra = true;
    v->Posicao(u"F0q");  // remembered while absent: declaring it stales plans
    v->registra = false;
  }
  a.Cria(u"F0p", u"Integer");
  a.Cria(u"F0q", u"Decimal");
  a.Cria(u"F0s", u"String");
  b.inteiros.push_back(0);
  b.decimais.push_back(0.0);
  b.textos.emplace_back();
  b.Anota(u"F0p", TipoVariavel::Integer, 1);
  b.Anota(u"F0q", TipoVariavel::Decimal, 0);
  b.Anota(u"F0s", TipoVariavel::String, 1);
  EXPECT_EQ(a.geracao, b.geracao);
  EXPECT_EQ(a.inteiros, b.inteiros);
  EXPECT_EQ(a.decimais, b.decimais);
  EXPECT_EQ(a.textos, b.textos);
  for (TipoVariavel t : {TipoVariavel::String, TipoVariavel::Integer, TipoVariavel::Decimal}) {
    const auto& da = a.Diretorio(t);
    const auto& db = b.Diretorio(t);
    ASSERT_EQ(da.size(), db.size());
    for (size_t i = 0; i < da.size(); ++i) {
      EXPECT_EQ(da[i].nome, db[i].nome);
      EXPECT_EQ(da[i].inicio, db[i].inicio);
      EXPECT_EQ(da[i].tamanho, db[i].tamanho);
    }
  }
  for (const char16_t* n : {u"F0p", u"F0q", u"F0s", u"x", u"t"}) EXPECT_EQ(a.Posicao(n), b.Posicao(n));
}

// The tree gives what the text's calculation gives once its holes are
// filled with whole numbers of 0 or more, failures and throws included,
// whether a hole opens or closes the text.
TEST(Calculo, TreeAgreesWithTheFilledText) {
  const Texto ops[] = {u" + ", u" - ", u" * ", u" / ", u" % ", u" ^ ", u" & ", u" @ ", u"-", u"*"};
  const Texto numeros[] = {u"0", u"1", u"2", u"7", u"10", u"2.5", u"65537"};
  uint32_t semente = 99;
  int arvores = 0;
  for (int caso = 0; caso < 20000; ++caso) {
    std::vector<Texto> pedacos;
    Texto pedaco;
    size_t termos = 2 + Proximo(semente) % 3;
    for (size_t i = 0; i < termos; ++i) {
      if (i > 0) pedaco += ops[Proximo(semente) % std::size(ops)];
      if (Proximo(semente) % 2) {
        pedacos.push_back(pedaco);
        pedaco.clear();
      } else {
        pedaco += numeros[Proximo(semente) % std::size(numeros)];
      }
    }
    pedacos.push_back(pedaco);
    ArvoreCalculo arvore;
    if (!arvore.Compila(pedacos)) continue;
    ++arvores;
    double valores[8];
    Texto texto;
    for (size_t i = 0; i < pedacos.size(); ++i) {
      texto += pedacos[i];
      if (i + 1 < pedacos.size()) {
        valores[i] = Proximo(semente) % 4 == 0 ? 0 : Proximo(semente) % 50000;
        texto += InteiroParaTexto(static_cast<int64_t>(valores[i]));
      }
    }
    std::string nome(texto.begin(), texto.end());
    double r1 = 0, r2 = 0;
    bool ok1 = false, ok2 = false, lanca1 = false, lanca2 = false;
    try {
      ok1 = arvore.Calcula(valores, r1);
    } catch (const FalhaHost&) {
      lanca1 = true;
    }
    try {
      ok2 = CalculaNumero(texto, r2);
    } catch (const FalhaHost&) {
      lanca2 = true;
    }
    ASSERT_EQ(lanca1, lanca2) << nome;
    ASSERT_EQ(ok1, ok2) << nome;
    if (ok1) {
      ASSERT_EQ(NumeroRelido(r1), NumeroRelido(r2)) << nome;
    }
  }
  EXPECT_GT(arvores, 5000);
  // "a + b", a hole at each end, is one of them.
  ArvoreCalculo soma;
  ASSERT_TRUE(soma.Compila({u"", u" + ", u""}));
  double ab[2] = {2, 3}, r;
  ASSERT_TRUE(soma.Calcula(ab, r));
  EXPECT_EQ(r, 5);
}

}  // namespace
}  // namespace zv
