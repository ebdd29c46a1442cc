// Generated programs whose commands evaluate the same argument texts at
// every turn of a loop run with plans and without them: the boxes, the
// statement count and every variable left behind must be the same. The
// arguments read variables that are declared halfway through the run,
// elements in and out of range, texts whose front a SubStr drops, and the
// same texts inside a Function, whose own names shadow the main text's;
// and built-in calls, nested and side by side.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "library/biblioteca.h"
#include "tests/core/execucao_comparada.h"

namespace zv {
namespace {

class GeradorArgumentos : public GeradorProgramas {
 public:
  using GeradorProgramas::GeradorProgramas;

  Texto Programa() {
    std::vector<std::string> l = {
        "Var i Integer, k Integer, n Integer, d Decimal, s String, u String",
        "Var T(3) String, NA(3) Integer",
        "s = \"" + Escolhe({"abcdef", "12", "x y z"}) + "\"",
        "u = \"" + Escolhe({"", "7", "a,b"}) + "\"",
        "d = " + Escolhe({"0", "2.5", "-1.25"}),
        "T(1) = \"t1\"",
        "NA(1) = " + Escolhe({"7", "-3", "2147483647"}),
        "i = 0",
        "While i < " + std::to_string(3 + Um(5)),
        "  k = i % " + Escolhe({"2", "3", "4"}),
    };
    int total = 2 + Um(5);
    for (int j = 0; j < total; ++j) l.push_back("  " + Linha());
    if (Um(2)) {
      // A name the arguments look up before it exists.
      l.push_back("  If i = 1");
      l.push_back("    Var zz " + Escolhe({"Integer", "Decimal", "String"}));
      l.push_back("  EndIf");
    }
    l.push_back("  i++");
    l.push_back("Loop");
    l.push_back("Message " + Expressao() + ", \"|\", " + Expressao());
    l.push_back("EndProgram");
    l.push_back("Function G(p Integer) Numero");
    l.push_back("  Var i Integer");
    l.push_back("  i = p + 10");
    l.push_back("  Message " + Expressao() + ", \"/\", i + 1, \"/\", p * 2");
    l.push_back("  Return p * 2");
    l.push_back("EndFunction");
    return Fonte(l);
  }

 private:
  std::string Expressao() {
    return Escolhe({"i + 1",   "k * 2 - 1", "NA(k) + 3", "NA(i)",   "d / 2",  "s",          "T(k)",
                    "zz + 1",  "zz",        "12",        "\"lit\"", "u + 1",  "-i + 2",     "i % k",
                    "2.5 * i", "(i + 1) * 2", "T(i)",    "n",       "n + d",  "k",          "\"a,b\"",
                    // built-in calls, nested and beside others
                    "Int(d / 2) + 1", "StrLen(s) * 2", "Int(StrLen(s) / 2)", "Chr(k + 65)", "Round(d, 1)",
                    "k * 7 - Int(k * 7 / 3) * 3", "Int(i) + Int(k)", "StrLen(T(k))", "Abs(NA(k))"});
  }
  std::string Linha() {
    switch (Um(5)) {
      case 0:
        return "d = Int(" + Expressao() + ")";
      case 1:
        return "n = G(" + Escolhe({"i", "k + 1", "n"}) + ")";
      case 2:
        return "s = SubStr(s, 2, 50)";
      default:
        return "Message " + Expressao() + ", \"|\", " + Expressao() + ", \"|\", " + Expressao();
    }
  }
};

std::string Roda(const Texto& fonte, bool semPlanos) {
  static const bool registrada = (RegistraBiblioteca(), true);
  (void)registrada;
  return RodaParaComparar(fonte, semPlanos, 5000, true);
}

TEST(ArgumentosPlanejados, GeneratedProgramsRunTheSameWithAndWithoutPlans) {
  int comBoxes = 0;
  for (uint32_t semente = 1; semente <= 400; ++semente) {
    Texto fonte = GeradorArgumentos(semente).Programa();
    std::string com = Roda(fonte, false), sem = Roda(fonte, true);
    ASSERT_EQ(com, sem) << "program " << semente << ":\n" << Utf8(fonte);
    comBoxes += com.find("\"box\":\"info\"") != std::string::npos;
  }
  EXPECT_GT(comBoxes, 300);  // the programs do get to their messages
}

// Whole-number statements at the edges of 32 bits: "a = x op y",
// "a += x op y" and "If x op y < z" over whole variables and elements that hold 0, -1, the
// largest and smallest values (by a whole or a Decimal index), with + - * %
// and /, constants whole and not,
// in range and past it. The plans keep such sums in whole numbers; the walk
// goes through doubles and text, and both must leave the same.
class GeradorInteiros : public GeradorProgramas {
 public:
  using GeradorProgramas::GeradorProgramas;

  Texto Programa() {
    std::vector<std::string> l = {
        "Var a Integer, b Integer, x Integer, y Integer, i Integer, d Decimal, h Decimal",
        "Var L(3) Integer",
        "x = " + Valor(),
        "y = " + Valor(),
        "L(1) = " + Valor(),
        "L(2) = " + Valor(),
        "b = " + Valor(),
        "i = 0",
        "h = " + Escolhe({"1", "1.5", "2.5", "0.6", "-0.4", "7"}),
        "While i < 4",
    };
    int total = 3 + Um(5);
    for (int j = 0; j < total; ++j) l.push_back("  " + Linha());
    l.push_back("  x = x + " + Escolhe({"1", "7", "-3", "1000"}));
    l.push_back("  i++");
    l.push_back("Loop");
    l.push_back("Message a, \" \", b, \" \", x, \" \", y, \" \", L(1), \" \", L(2), \" \", d");
    return Fonte(l);
  }

 private:
  std::string Valor() {
    return Escolhe({"0", "1", "-1", "7", "46341", "65536", "2147483647", "-2147483647", "-2147483648", "3"});
  }
  std::string Operando() {
    return Escolhe({"x", "y", "b", "L(1)", "L(2)", "L(i)", "L(5)", "L(h)", "0", "-1", "3", "2.5", "2147483647",
                    "2147483648", "65536", "2147483646"});
  }
  std::string Linha() {
    std::string e = Operando() + " " + Escolhe({"+", "-", "*", "%", "/"}) + " " + Operando();
    switch (Um(5)) {
      case 4: {
        // A comparison of whole values, sums or constants, on one line.
        std::string lado = Um(2) ? Operando() : e;
        std::string outro = Um(2) ? Operando() : Operando() + " " + Escolhe({"*", "+"}) + " " + Operando();
        return "If " + lado + " " + Escolhe({"<", ">", "=", "<>", "<=", ">="}) + " " + outro +
               "\r\n    b++\r\n  EndIf";
      }
      case 0:
        return Escolhe({"a", "b", "L(1)", "L(i)", "L(h)"}) + " += " + e;
      case 1:
        return Escolhe({"a", "b"}) + " -= " + e;
      case 2:
        return "d = " + e;
      default:
        return Escolhe({"a", "b", "L(2)", "L(i)", "L(h)", "y"}) + " = " + e;
    }
  }
};

// A command line's dispatch is remembered in its plan; a variable given
// the command's name halfway makes the line an assignment from then on.
TEST(ArgumentosPlanejados, ACommandWhoseNameBecomesAVariableIsNoLongerDispatched) {
  const char* programa =
      "Var i Integer\r\nWhile i < 4\r\n  Message \"m\", i\r\n  If i = 1\r\n    Var Message String\r\n"
      "  EndIf\r\n  i++\r\nLoop\r\nWrite Message\r\n";
  Texto fonte(programa, programa + std::strlen(programa));
  std::string com = Roda(fonte, false);
  EXPECT_EQ(com, Roda(fonte, true));
  EXPECT_NE(com.find("m1"), std::string::npos);
  EXPECT_EQ(com.find("m2"), std::string::npos);
}

// A text quoting a statement marker makes that number stand twice in the
// program: a plan kept at a destination is then checked for its place.
TEST(ArgumentosPlanejados, AQuotedMarkerLeavesTheLoopsAsTheyRun) {
  const char* programa =
      "Var i Integer, j Integer, s Integer, t String\r\nt = \"&#00003 &#00005\"\r\nWhile i < 5\r\n  j = 0\r\n"
      "  While j < i\r\n    s += j\r\n    If s > 4\r\n      s -= 3\r\n    EndIf\r\n    j++\r\n  Loop\r\n"
      "  i++\r\nLoop\r\nMessage s, \" \", t\r\n";
  Texto fonte(programa, programa + std::strlen(programa));
  std::string com = Roda(fonte, false);
  EXPECT_EQ(com, Roda(fonte, true));
  EXPECT_NE(com.find("\"text\":\"4 &#00003 &#00005\""), std::string::npos) << com;
}

TEST(ArgumentosPlanejados, WholeNumberStatementsAtTheEdgesRunTheSameWithAndWithoutPlans) {
  // Products past 15 digits read back rounded: these two differ by 8 and
  // compare equal, as the walk compares them.
  const char* produtos =
      "Var x Integer, y Integer, u Integer, v Integer, n Integer\r\n"
      "x = 1000000007\r\ny = 1000000000\r\nu = 1000000008\r\nv = 999999999\r\n"
      "If x * y = u * v\r\n  n = 1\r\nEndIf\r\nIf x * y > u * v\r\n  n = n + 2\r\nEndIf\r\n"
      "If x * 3 > u * 3\r\n  n = n + 4\r\nEndIf\r\nMessage n\r\n";
  Texto fonte(produtos, produtos + std::strlen(produtos));
  ASSERT_EQ(Roda(fonte, false), Roda(fonte, true));

  for (uint32_t semente = 1; semente <= 1500; ++semente) {
    Texto fonte = GeradorInteiros(semente).Programa();
    std::string com = Roda(fonte, false), sem = Roda(fonte, true);
    ASSERT_EQ(com, sem) << "program " << semente << ":\n" << Utf8(fonte);
  }
}

}  // namespace
}  // namespace zv
