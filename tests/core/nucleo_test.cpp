// Unit tests of the language core's formats and algorithms.
#include <gtest/gtest.h>

#include "core/despacho.h"
#include "core/expressao.h"
#include "core/fonte.h"
#include "core/interpretador.h"
#include "core/preparacao.h"
#include "runtime/headless_host.h"

namespace zv {
namespace {

TEST(Texto, NumbersShowAsTheLanguageShowsThem) {
  EXPECT_EQ(NumeroParaTexto(14), u"14");
  EXPECT_EQ(NumeroParaTexto(2.5), u"2.5");
  EXPECT_EQ(NumeroParaTexto(-3), u"-3");
  EXPECT_EQ(NumeroParaTexto(1.0 / 3), u"0.333333333333333");
  EXPECT_EQ(NumeroParaTexto(1e16), u"1E+16");
  EXPECT_EQ(NumeroParaTexto(0.00001), u"1E-05");
  EXPECT_EQ(NumeroParaTexto(0.0001), u"0.0001");
  EXPECT_EQ(NumeroParaTexto(123456789012345.0), u"123456789012345");
  EXPECT_EQ(NumeroParaTexto(0.1 + 0.2), u"0.3");
}

TEST(Texto, NumericSpelling) {
  double v;
  EXPECT_TRUE(LeNumero(u" 12.5 ", v));
  EXPECT_DOUBLE_EQ(v, 12.5);
  EXPECT_TRUE(LeNumero(u"-1e3", v));
  EXPECT_DOUBLE_EQ(v, -1000);
  EXPECT_TRUE(LeNumero(u".5", v));
  EXPECT_FALSE(LeNumero(u"", v));
  EXPECT_FALSE(LeNumero(u"1.2.3", v));
  EXPECT_FALSE(LeNumero(u"12a", v));
  EXPECT_FALSE(LeNumero(u"\"12\"", v));
  EXPECT_DOUBLE_EQ(LeNumeroInicial(u"12.5kg"), 12.5);
  EXPECT_DOUBLE_EQ(LeNumeroInicial(u"abc"), 0);
}

TEST(Texto, CodePageRoundTrip) {
  std::string todos;
  for (int i = 0; i < 256; ++i) todos += static_cast<char>(i);
  EXPECT_EQ(ParaCp1252(DeCp1252(todos)), todos);
  EXPECT_EQ(DeCp1252("\x80"), u"\u20AC");
  EXPECT_EQ(NormalizaFimDeLinha(u"a\nb\r\nc\rd"), u"a\r\nb\r\nc\rd");
}

TEST(Preparacao, MarkersAndTrimming) {
  EXPECT_EQ(MarcaLinhas(u"  a \r\n\tb", 3), u"\u00A7#00000$#03 a\r\n\u00A7#00001$#03 \tb\r\n");
  // Only CR LF ends a line.
  EXPECT_EQ(MarcaLinhas(u"a\rb", 0), u"\u00A7#00000$#00 a\rb\r\n");
}

// Beside the worked example (tests/programs/core/worked_example.zvc).
TEST(Preparacao, CommentsSemicolonsAndOperators) {
  EXPECT_EQ(LimpaTexto(u"a; b;\r\nc"), u"a\r\nb\r\nc");
  EXPECT_EQ(LimpaTexto(u"x = \"a;b\" ' c;d\r\n"), u"x = \"a;b\" \r\n");
  EXPECT_EQ(LimpaTexto(u"s = \"it's\""), u"s = \"it's\"");
  EXPECT_EQ(LimpaTexto(u"a =b"), u"a =b");
  EXPECT_EQ(LimpaTexto(u"a= b"), u"a =  b");
  EXPECT_EQ(LimpaTexto(u"x+=1"), u"x+ = 1");
  EXPECT_EQ(LimpaTexto(u"s = \"<a>\""), u"s = \"<a>\"");
}

TEST(Preparacao, BlockTagsNeedTheStatementStart) {
  Texto t = NumeraComandos(MarcaLinhas(u"If a\r\nIf b\r\nElseX\r\nEndIf\r\nEndIf\r\nif c\r\nEndIf", 0));
  Texto r = NumeraIf(t);
  EXPECT_NE(r.find(u"If[0] a"), NPOS);
  EXPECT_NE(r.find(u"If[1] b"), NPOS);
  EXPECT_NE(r.find(u"Else[1]X"), NPOS);
  EXPECT_NE(r.find(u"EndIf[1]"), NPOS);
  EXPECT_NE(r.find(u"EndIf[0]"), NPOS);
  EXPECT_NE(r.find(u"if c"), NPOS);
  // A stray EndIf gets a negative tag, and the totals don't balance.
  EXPECT_NE(r.find(u"EndIf[-1]"), NPOS);
  EXPECT_EQ(VerificaBlocos(r), u"If statement without their EndIf!");
  Texto w = NumeraWhile(NumeraComandos(MarcaLinhas(u"While x\r\nWhile y\r\nLoop\r\n", 0)));
  EXPECT_NE(w.find(u"While[0] x"), NPOS);
  EXPECT_NE(w.find(u"While[1] y"), NPOS);
  EXPECT_EQ(VerificaBlocos(w), u"While statement without their Loop!");
}

TEST(Preparacao, EmptyLinesLeaveNoStatement) {
  EXPECT_EQ(NumeraComandos(LimpaTexto(MarcaLinhas(u"\r\n' only a comment\r\nx", 0))).find(u"&#00001"), NPOS);
  // An empty main text is the stop alone, on the line behind the empty one.
  HostConsole host{stdout};
  Interpretador zv{host};
  EXPECT_EQ(zv.PreparaPrograma(), u"");
  EXPECT_EQ(zv.textoPrograma, u"&#00000\u00A7#00001$#00 EndProgram\r\n");
}

// The operators one by one are in tests/programs/core/expressions.zvc.
TEST(Expressao, Arithmetic) {
  EXPECT_EQ(CalculaExpressao(u"-3 + 1"), u"-2");
  EXPECT_EQ(CalculaExpressao(u"2 * -3"), u"-6");
  EXPECT_EQ(CalculaExpressao(u"1 / 0"), u"");
  EXPECT_EQ(CalculaExpressao(u"1.2.3 + 1"), u"");
  EXPECT_EQ(CalculaExpressao(u"1E5 + 1"), u"");
  EXPECT_THROW(CalculaExpressao(u"1 % 0"), FalhaHost);
  EXPECT_TRUE(ExpressaoAritmetica(u"-xy"));
  EXPECT_FALSE(ExpressaoAritmetica(u"-x"));
  EXPECT_FALSE(ExpressaoAritmetica(u"6&3"));
  EXPECT_FALSE(ExpressaoAritmetica(u"\"a+b\""));
}

TEST(Expressao, ConditionsAreFlat) {
  Condicao c;
  SeparaCondicao(u"Order > 1", c);
  EXPECT_EQ(c.operandos[0], u"");
  EXPECT_EQ(c.conectores[0], u"Or");
  EXPECT_EQ(c.operandos[1], u"der");
  SeparaCondicao(u"Nome = \"Or\" AND (a >= 1)", c);
  EXPECT_EQ(c.operandos[1], u"\"Or\"");
  EXPECT_EQ(c.conectores[0], u"AND");
  EXPECT_EQ(c.operandos[2], u"(a");
  EXPECT_EQ(c.relacoes[1], u">=");
  EXPECT_EQ(c.operandos[3], u"1)");
  SeparaCondicao(u"a = 1 and b = 2", c);
  EXPECT_EQ(c.operandos[1], u"1 and b");
}

TEST(Expressao, ComparingNumbersAndTexts) {
  std::array<Texto, 51> rel;
  rel[0] = u"=";
  EXPECT_EQ(ComparaValores(rel, 0, Valor::DeTexto(u"12"), Valor::DeDouble(12)), u"FALSE");
  EXPECT_EQ(ComparaValores(rel, 0, Valor::DeInt32(12), Valor::DeTexto(u"12")), u"TRUE");
  rel[0] = u"<";
  EXPECT_EQ(ComparaValores(rel, 0, Valor::DeDouble(99), Valor::DeTexto(u"a")), u"TRUE");
  EXPECT_EQ(ComparaValores(rel, 0, Valor::DeTexto(u"B"), Valor::DeTexto(u"a")), u"TRUE");
  rel[0].clear();
  EXPECT_EQ(ComparaValores(rel, 0, Valor::DeDouble(1), Valor::DeDouble(1)), u"");
  std::array<Texto, 51> con;
  std::array<Texto, 21> res;
  con[0] = u"Or";
  con[1] = u"And";
  res[0] = u"TRUE";
  res[1] = u"FALSE";
  res[2] = u"FALSE";
  EXPECT_EQ(CombinaCondicoes(con, res), u"FALSE");  // (a or b) and c
}

TEST(Despacho, NestingTags) {
  EXPECT_EQ(MarcaParenteses(u"Soma(2,(3))"), u"Soma(1]2,(2]3[2)[1)");
  EXPECT_EQ(LimpaParenteses(u"Soma(1]2,(2]3[2)[1)"), u"Soma(2,(3))");
  EXPECT_EQ(kPalavrasChave.size(), 142u);
  EXPECT_EQ(Texto(kPalavrasChave[0]), u"JoinStr");
  EXPECT_EQ(Texto(kPalavrasChave[141]), u"Sound");
}

// The keyword search by first character finds what a search per keyword in
// the table's order finds, on texts made of keywords, their pieces and the
// characters that follow a call.
TEST(Despacho, KeywordSearchByInitialAgreesWithTheTableOrder) {
  std::vector<Texto> tabela(kPalavrasChave.begin(), kPalavrasChave.end());
  const Texto extras[] = {u"(", u" ", u"x", u"1", u",", u"\"", u")", u"Sub", u"Str", u"Int", u"ab"};
  uint32_t semente = 12345;
  auto proximo = [&semente] {
    semente = semente * 1103515245u + 12345u;
    return (semente >> 8) & 0xFFFF;
  };
  int achados = 0;
  for (int caso = 0; caso < 20000; ++caso) {
    Texto t;
    int pecas = 1 + static_cast<int>(proximo() % 6);
    for (int i = 0; i < pecas; ++i) {
      if (proximo() % 2) {
        Texto kw(kPalavrasChave[proximo() % kPalavrasChave.size()]);
        t += proximo() % 4 ? kw : kw.substr(0, kw.size() / 2 + 1);
      } else {
        t += extras[proximo() % std::size(extras)];
      }
    }
    int esperado = PalavraChamada(t, tabela.data(), tabela.size());
    ASSERT_EQ(PalavraChamadaChave(t), esperado) << "text: " << std::string(t.begin(), t.end());
    achados += esperado >= 0;
  }
  EXPECT_GT(achados, 1000);  // the texts do hold calls
}

// The remembered answers are the search's, whether a text comes back at
// once, after others took its slot, or with a value spliced into it.
TEST(Despacho, RememberedCallAnswersAgreeWithTheSearch) {
  const Texto textos[] = {u"G.Add JoinStr(\"name \", n - k)", u"x = Int(k * 7 / 1000) * 1000",
                          u"StrLen(a) + StrLen(b)",            u"Int 5",
                          u"Round(x",                          u"\"Int(3)\"",
                          u"plain words",                      u"SubStr(t, 1, 2), Int(4)"};
  uint32_t semente = 7;
  for (int caso = 0; caso < 5000; ++caso) {
    semente = semente * 1103515245u + 12345u;
    Texto t = textos[(semente >> 8) % std::size(textos)];
    if ((semente >> 4) % 3 == 0) t += InteiroParaTexto(caso);  // a text seen once
    Texto n1, a1, n2, a2;
    int esperado = AchaChamadaInternaBusca(t, n1, a1);
    ASSERT_EQ(AchaChamadaInterna(t, n2, a2), esperado) << std::string(t.begin(), t.end());
    ASSERT_EQ(n2, n1);
    ASSERT_EQ(a2, a1);
  }
}

class Run : public ::testing::Test {
 protected:
  HostConsole host{stdout};
  Interpretador zv{host};
  void SetUp() override { host.mudo = true; }
};

TEST_F(Run, KnownWords) {
  EXPECT_TRUE(zv.EPalavraConhecida(u"MESSAGE"));
  EXPECT_TRUE(zv.EPalavraConhecida(u"Loopy"));
  EXPECT_TRUE(zv.EPalavraConhecida(u"IFoo"));
  EXPECT_TRUE(zv.EPalavraConhecida(u"Fim:"));
  EXPECT_TRUE(zv.EPalavraConhecida(u"Goto"));
  EXPECT_FALSE(zv.EPalavraConhecida(u"Sub"));
  EXPECT_FALSE(zv.EPalavraConhecida(u"Message("));
}

// The split cuts slices of the text where it once built each argument a
// character at a time; both give the same on texts of quotes, separators
// and blanks, unclosed quotes included.
TEST_F(Run, SplittingBySlicesAgreesWithSplittingByCharacters) {
  auto porCaracteres = [](const Texto& texto, size_t vagas, bool separaIgual) {
    Texto t = Apara(texto);
    std::vector<Texto> tab(vagas);
    size_t k = 0;
    Texto buf;
    auto poe = [&](Texto v) {
      if (k < vagas) tab[k] = std::move(v);
      ++k;
    };
    for (size_t i = 0; i < t.size(); ++i) {
      char16_t c = t[i];
      if (c == u'"') {
        size_t q = t.find(u'"', i + 1);
        if (q == NPOS) q = t.size() - 1;
        buf.append(t, i, q - i + 1);
        i = q;
      } else if (c == u',') {
        poe(Apara(buf));
        buf.clear();
      } else if (c == u'=' && separaIgual) {
        poe(Apara(buf));
        buf.clear();
        poe(u"=");
      } else {
        buf += c;
      }
    }
    poe(Apara(buf));
    return std::make_pair(tab, k);
  };
  const char16_t pecas[] = u"ab ,=\"x1 ";
  uint32_t semente = 99;
  for (int caso = 0; caso < 20000; ++caso) {
    Texto t;
    semente = semente * 1103515245u + 12345u;
    int n = static_cast<int>((semente >> 8) % 14);
    for (int i = 0; i < n; ++i) {
      semente = semente * 1103515245u + 12345u;
      t += pecas[(semente >> 8) % (std::size(pecas) - 1)];
    }
    bool igual = caso % 2;
    auto [esperado, total] = porCaracteres(t, 6, igual);
    if (total > 6) {
      EXPECT_THROW(zv.SeparaArgumentos(t, 6, igual), FalhaHost) << std::string(t.begin(), t.end());
      continue;
    }
    ASSERT_EQ(zv.SeparaArgumentos(t, 6, igual), esperado) << std::string(t.begin(), t.end());
  }
}

TEST_F(Run, SplittingArguments) {
  auto a = zv.SeparaArgumentos(u" \"a,b\" , 5 ", 4);
  EXPECT_EQ(a[0], u"\"a,b\"");
  EXPECT_EQ(a[1], u"5");
  EXPECT_EQ(a[2], u"");
  auto b = zv.SeparaArgumentos(u"Btn.Caption = \"x=y\"", 4, true);
  EXPECT_EQ(b[0], u"Btn.Caption");
  EXPECT_EQ(b[1], u"=");
  EXPECT_EQ(b[2], u"\"x=y\"");
  EXPECT_THROW(zv.SeparaArgumentos(u"1,2,3,4", 3), FalhaHost);
}

TEST_F(Run, VariableStoreKeepsItsOrderAndIndexes) {
  zv.DeclaraVariaveis(u"&#00000\u00A7#00000$#00 Var a Integer, b(3) Integer, c Integer, s", u"Var");
  zv.GravaVariavel(u"c", Valor::DeInt32(9), true);
  zv.GravaVariavel(u"b(2)", Valor::DeTexto(u"2.5"), true);
  EXPECT_EQ(zv.LeVariavel(u"b(2)").i, 2);  // halves go to even
  zv.GravaVariavel(u"b(1)", Valor::DeDouble(3.5), true);
  EXPECT_EQ(zv.LeVariavel(u"B(1)").i, 4);
  zv.RemoveVariable(u"b");
  EXPECT_EQ(zv.PosicaoVariavel(u"b"), -1);
  EXPECT_EQ(zv.PosicaoVariavel(u"C"), 1);  // its first-value column lowered
  EXPECT_EQ(zv.LeVariavel(u"c").i, 9);
  ASSERT_EQ(zv.variaveis.Diretorio(TipoVariavel::Integer).size(), 2u);
  // A second declaration keeps the first type; an unknown type word creates nothing.
  zv.CriaVariavel(u"s", u"Integer");
  EXPECT_EQ(zv.PosicaoVariavel(u"s"), 0);
  EXPECT_EQ(zv.variaveis.tipoEncontrado, TipoVariavel::String);
  zv.CriaVariavel(u"x", u"integer");
  EXPECT_EQ(zv.PosicaoVariavel(u"x"), -1);
  // Names longer than 50 characters are declared but never found again.
  Texto longo(51, u'n');
  zv.CriaVariavel(longo, u"String");
  EXPECT_EQ(zv.PosicaoVariavel(longo), -1);
  EXPECT_EQ(zv.variaveis.Diretorio(TipoVariavel::String).back().nome.size(), 50u);
  EXPECT_THROW(zv.GravaVariavel(u"nada", Valor::DeInt32(1), true), FalhaHost);
}

TEST_F(Run, GeneratedNamesRenameWholeWordsOnly) {
  Texto corpo = u"\n&#1 Return Parcela + 1\r\n&#2 x = Parcela+1\r\n&#3 y = (Parcela)\r\n";
  TrocaNome(corpo, u"Parcela", u"Soma0Parcela");
  EXPECT_NE(corpo.find(u"Return Soma0Parcela + 1"), NPOS);
  EXPECT_NE(corpo.find(u"x = Parcela+1"), NPOS);
  EXPECT_NE(corpo.find(u"(Soma0Parcela)"), NPOS);
}

// Records the boxes instead of printing them.
class HostGravador : public HostConsole {
 public:
  std::vector<Texto> textos;
  Resposta MostraCaixa(const Caixa& caixa) override {
    textos.push_back(caixa.texto);
    return Resposta::OK;
  }
};

TEST(Limites, DoublingTextIsStoppedWithABox) {
  HostGravador host;
  Interpretador zv(host);
  zv.fonte.textos[0] =
      u"Var s String, n Integer\r\ns = \"ab\"\r\nWhile n < 40\r\n  s = s, s\r\n  n++\r\nLoop\r\n"
      u"Message \"not reached\"";
  zv.Executa();
  ASSERT_EQ(host.textos.size(), 1u);
  EXPECT_NE(host.textos[0].find(u"Line: 4\rOut of memory: s can't hold a text longer than 16777216"), NPOS);
  EXPECT_EQ(zv.LeVariavel(u"n").i, 23);  // 2 << 23 characters was the last kept
  EXPECT_EQ(zv.LeVariavel(u"s").s.size(), size_t{1} << 24);
}

// Breakpoints: a plain run shows the step box at each marked line it
// reaches, in the main code and in a routine of a code tab alike; its
// Cancel ends only the walk it stopped.
TEST(PontosParada, APlainRunStepsAtMarkedLinesOnly) {
  struct Passos : HostConsole {
    std::vector<Texto> textos;
    int cancelaNo = -1;
    Resposta MostraCaixa(const Caixa& c) override {
      if (c.tipo != TipoCaixa::Passo) return Resposta::OK;
      textos.push_back(c.texto);
      return static_cast<int>(textos.size()) == cancelaNo ? Resposta::Cancel : Resposta::OK;
    }
  };
  auto roda = [](Passos& host, bool comPontos) {
    Interpretador zv(host);
    zv.fonte.textos[0] = u"Var n Integer, t Integer\r\nWhile n < 3\r\n  n++\r\n  Conta()\r\nLoop";
    zv.fonte.nomes[0] = u"Tools";
    zv.fonte.textos[1] = u"Sub Conta()\r\n  t++\r\nEndSub";
    if (comPontos) zv.pontosParada = {{0, 3}, {1, 2}};
    zv.Executa();
    return std::pair{zv.LeVariavel(u"n").i, zv.LeVariavel(u"t").i};
  };
  Passos semPontos;
  EXPECT_EQ(roda(semPontos, false), (std::pair{3, 3}));
  EXPECT_TRUE(semPontos.textos.empty());

  Passos todos;
  EXPECT_EQ(roda(todos, true), (std::pair{3, 3}));
  ASSERT_EQ(todos.textos.size(), 6u);
  EXPECT_EQ(todos.textos[0].substr(0, 18), u"Editor: 0\rLine: 3\r");
  EXPECT_EQ(todos.textos[1].substr(0, 18), u"Editor: 1\rLine: 2\r");

  // Cancel in the routine: that call's walk ends, the loop goes on.
  Passos cancela;
  cancela.cancelaNo = 2;
  EXPECT_EQ(roda(cancela, true), (std::pair{3, 2}));
  EXPECT_EQ(cancela.textos.size(), 6u);
}

TEST(Fonte, DocumentRoundTrip) {
  FontePrograma f;
  f.textos[0] = u"A=1";
  f.textos[1] = u"B=2";
  f.nomes[0] = u"T";
  EXPECT_EQ(JuntaCodigos(f), u"#ZV7#A=1#%T#&B=2#%");
  FontePrograma g;
  ASSERT_TRUE(SeparaCodigos(u"#ZV7#A=1#%T#&B=2#%", g));
  EXPECT_EQ(g.textos[0], u"A=1");
  EXPECT_EQ(g.nomes[0], u"T");
  EXPECT_EQ(g.textos[1], u"B=2");
  // Empty tabs aren't stored: tabs 1 and 3 come back as 1 and 2.
  FontePrograma h;
  h.textos[1] = u"x";
  h.textos[3] = u"y";
  FontePrograma k;
  ASSERT_TRUE(SeparaCodigos(JuntaCodigos(h), k));
  EXPECT_EQ(k.textos[2], u"y");
  EXPECT_FALSE(SeparaCodigos(u"no marker", k));
}

}  // namespace
}  // namespace zv

namespace zv {
namespace {

// The one-pass search for pre-evaluated calls against the plain one it
// replaced: each "NAME(" looked for in turn.
TEST(Despacho, PreEvaluatedCallsFoundInOnePassAsByEachName) {
  auto ingenua = [](TextoV m) {
    for (const char16_t* p : {u"JOINSTR(", u"FORMAT(", u"DATEADD(", u"DATEDIFF(", u"READPOINT(", u"FIND(", u"RGB(",
                              u"CIRCLE(", u"RECTANGLE(", u"READFILE(", u"COPY(", u"CALL(", u"SEQSTR(", u"SUBSTR("})
      if (m.find(p) != NPOS) return true;
    return false;
  };
  const Texto pecas[] = {u"JOINSTR", u"FORMAT", u"SUBSTR", u"RGB", u"CALL", u"(", u")", u"X", u" ", u",", u"\"", u"DATE",
                         u"ADD", u"DIFF", u"READ", u"POINT", u"FILE", u"SEQ", u"STR", u"COP", u"Y", u"RECT"};
  uint32_t semente = 11;
  for (int caso = 0; caso < 20000; ++caso) {
    Texto t;
    const int n = 1 + static_cast<int>((semente = semente * 1103515245u + 12345u) >> 16) % 8;
    for (int k = 0; k < n; ++k) t += pecas[((semente = semente * 1103515245u + 12345u) >> 16) % std::size(pecas)];
    ASSERT_EQ(TemChamadaPreAvaliada(t), ingenua(t)) << std::string(t.begin(), t.end());
  }
  EXPECT_TRUE(TemChamadaPreAvaliada(u"A = JOINSTR(B, C)"));
  EXPECT_FALSE(TemChamadaPreAvaliada(u"JOINSTR X(B)"));
  EXPECT_TRUE(TemChamadaPreAvaliada(u"XSUBSTR(1)"));  // a name's tail is enough, as before
}

}  // namespace
}  // namespace zv
