// Generated programs full of joins "x = a & b & c" run with plans and
// without them: the boxes, the statement count and every variable left
// behind must be the same. The parts mix every kind the walk's cut at " & "
// can give: texts of each type, array elements in and out of range, quoted
// texts with quotes, brackets and " & " inside, numbers, undeclared names and
// calls of built-in and user functions, joined into the target's own text at
// the front, the back, the middle or twice.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "core/interpretador.h"
#include "library/biblioteca.h"
#include "runtime/headless_host.h"
#include "tests/core/execucao_comparada.h"

namespace zv {
namespace {

class GeradorJuncoes : public GeradorProgramas {
 public:
  using GeradorProgramas::GeradorProgramas;

  Texto Programa() {
    std::vector<std::string> l = {
        "Var s String, u String, i Integer, k Integer, n Integer, d Decimal, kd Decimal",
        "Var T(3) String, NA(3) Integer, DA(2) Decimal",
        "s = \"" + Escolhe({"", "ab", "1", "x y"}) + "\"",
        "u = \"" + Escolhe({"", "q", "2.5", "a,b"}) + "\"",
        "d = " + Escolhe({"0", "2.5", "-1.25", "1000000", "0.1"}),
        "T(0) = \"t0\"",
        "T(1) = \"t1\"",
        "NA(1) = " + Escolhe({"7", "-3", "2147483647"}),
        "DA(1) = 1.5",
        "i = 0",
        "While i < " + std::to_string(2 + Um(6)),
        "  k = i % " + Escolhe({"3", "4", "5"}),
        "  kd = i / 2",
    };
    int total = 2 + Um(6);
    for (int j = 0; j < total; ++j) l.push_back("  " + Juncao());
    if (Um(3) == 0) l.push_back("  d = d + 0.5");
    if (Um(3) == 0) l.push_back("  " + Escolhe({"n", "d", "u"}) + " = G(" + Escolhe({"s", "u", "\"3\""}) + ")");
    if (Um(2)) l.push_back("  Message s, \"|\", u, \"|\", T(k)");
    l.push_back("  i++");
    l.push_back("Loop");
    l.push_back("Message s");
    l.push_back("EndProgram");
    // A join in the body leaves ForcaTexto as its line sets it, and the call
    // reads it when the body is done.
    l.push_back("Function G(p String) " + Escolhe({"String", "Numero"}));
    l.push_back("  Variable r String, r2 String");
    if (Um(2)) {
      l.push_back("  r = p & \"!\" & r");
      l.push_back("  r = r & " + Parte());
    } else {
      // "1+3" read back as a number, or as a text when ForcaTexto is on.
      l.push_back("  r = \"1+\" & p");
    }
    l.push_back("  r2 = \"x\" & \"" + Escolhe({"Chr(1)", "y", "Format("}) + "\"");
    l.push_back("  Return r");
    l.push_back("EndFunction");
    return Fonte(l);
  }

 private:
  std::string Parte() {
    switch (Um(5)) {
      case 0:
        return Escolhe({"s", "u", "i", "k", "n", "d", "kd", "S", "U"});
      case 1:
        return Escolhe({"T(k)", "T(i)", "T(1)", "T(3)", "T(kd)", "NA(k)", "NA(1)", "DA(k)", "DA(1)", "T(-1)"});
      case 2:
        return Escolhe({"\"abc\"", "\"\"", "\"a,b\"", "\"(x)\"", "\"x\"y\"", "\"a & b\"", "\" sp \"", "\"1\"",
                        "(\"p\")", "\"q", "\"Chr(2)\"", "\"5\""});
      case 3:
        return Escolhe({"12", "2.5", "zz", "F(1)", "G(u)", "i + 1", "Str(i)", "", "Chr 65"});
      default:
        return Escolhe({"Chr(65)", "StrLen(s)", "Format(d, \"0.00\")", "SubStr(s, 1, 2)", "Trim(u)", "Int(d)",
                        "Asc(\"A\")", "Hex(255)", "Chr(k + 65)", "StrLen(G(u))", "UCase(s)"});
    }
  }
  std::string Juncao() {
    std::string alvo =
        Um(6) == 0 ? Escolhe({"n", "d", "NA(k)"}) : Escolhe({"s", "s", "s", "u", "T(k)", "T(1)", "T(i)", "T(kd)"});
    std::string e = alvo + " = ";
    switch (Um(6)) {
      case 0:  // appended to itself
        e += alvo + " & " + Parte();
        break;
      case 1:  // put in front of itself
        e += Parte() + " & " + alvo;
        break;
      case 2:  // itself in the middle, or twice
        e += Parte() + " & " + alvo + " & " + (Um(2) ? alvo : Parte());
        break;
      default: {
        int n = 2 + Um(3);
        for (int j = 0; j < n; ++j) e += (j ? " & " : "") + (Um(4) == 0 ? alvo : Parte());
      }
    }
    return e;
  }
};

// What a run shows: its boxes, how far it went and its variables.
std::string Roda(const Texto& fonte, bool semPlanos, int64_t limite = 5000) {
  static const bool registrada = (RegistraBiblioteca(), true);
  (void)registrada;
  return RodaParaComparar(fonte, semPlanos, limite, true);
}

TEST(JuncoesPlanejadas, GeneratedProgramsRunTheSameWithAndWithoutPlans) {
  for (uint32_t semente = 1; semente <= 600; ++semente) {
    Texto fonte = GeradorJuncoes(semente).Programa();
    std::string com = Roda(fonte, false), sem = Roda(fonte, true);
    ASSERT_EQ(com, sem) << "program " << semente << ":\n" << Utf8(fonte);
  }
}

// Appends by "s = s & ..." grow the text where it stands: 100,000 of them
// take a fraction of a second (the walk, copying the text each time, takes
// many seconds), and the text is what the walk builds.
TEST(JuncoesPlanejadas, AppendsToATextTakeLinearTime) {
  const char* fonte =
      "Var s String, i Integer, linha String\r\n"
      "While i < 100000\r\n"
      "  linha = i & \",\" & Chr(65) & \";\"\r\n"
      "  s = s & linha\r\n"
      "  i++\r\n"
      "Loop\r\n"
      "Message StrLen(s)\r\n";
  std::string f(fonte);
  auto inicio = std::chrono::steady_clock::now();
  std::string r = Roda(Texto(f.begin(), f.end()), false, 0);
  double s = std::chrono::duration<double>(std::chrono::steady_clock::now() - inicio).count();
  EXPECT_NE(r.find("\"text\":\"788890\""), std::string::npos) << r.substr(0, 400);
  EXPECT_LT(s, 3.0);
}

// A join that would pass the longest text a variable holds is refused with
// the store's box, and the run ends, the same way with plans and without.
TEST(JuncoesPlanejadas, ATextPastTheLimitIsRefusedAsTheWalkRefusesIt) {
  std::string f =
      "Var s String, i Integer\r\n"
      "s = \"ab\"\r\n"
      "While i < 30\r\n"
      "  s = s & s\r\n"
      "  i++\r\n"
      "Loop\r\n";
  Texto fonte(f.begin(), f.end());
  std::string com = Roda(fonte, false, 0), sem = Roda(fonte, true, 0);
  EXPECT_TRUE(com == sem);
  EXPECT_EQ(com.rfind("{\"box\":\"critical\",\"title\":\"Zarvolt\",\"text\":\"Editor: 0 Line: 4\\rOut of memory: s "
                      "can't hold a text longer than 16777216 characters!\"",
                      0),
            0u)
      << com.substr(0, 300);
  // The text keeps the 16777216 characters of the last join that fitted.
  size_t p = com.find("\nS@14:ab");
  ASSERT_NE(p, std::string::npos);
  EXPECT_EQ(com.compare(p + 6 + 16777216, 2, ";\n"), 0);
  EXPECT_NE(com.find("I@20:23;"), std::string::npos);
}

}  // namespace
}  // namespace zv
