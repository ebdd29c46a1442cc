// Generated programs over long texts run with plans and without them: the
// boxes, the statement count and every variable left behind must be the
// same. They lean on the statements whose plans read a text where it lies
// (StrLen, StrPos, ConvStr, SubStr, JoinStr, RepStr) and on GoTo.
#include <gtest/gtest.h>

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

class Gerador : public GeradorProgramas {
 public:
  using GeradorProgramas::GeradorProgramas;

  Texto Programa() {
    std::vector<std::string> l = {
        "Var s String, t String, x String, w String, i Integer, p Integer, k Integer, d Decimal",
        "Var a(3) String",
        "x = " + Escolhe({"\"b\"", "\";\"", "\"ab\"", "\"\"", "\"x y\"", "\",\""}),
        "d = " + Escolhe({"0", "2.5", "-1", "1000000"}),
        "i = 0",
        "While i < " + std::to_string(20 + Um(60)),
        "  s += " + Escolhe({"\"ab;\"", "\"a,b \"", "\"word;\"", "x", "ConvStr(i)", "\"(1]\"", "\"StrLen(\"", "\"x)\"", "\"[1)\"", "\"1.50 \"", "\"a  b\""}),
        "  k = i % 3",
        "  a(k) += " + Escolhe({"\"q;\"", "x", "ConvStr(i)"}),
        "  i++",
        "Loop",
        "i = 0",
        "k = 0",
        "Again:",
    };
    int total = 3 + Um(8);
    for (int n = 0; n < total; ++n) Sentenca(l, "");
    l.push_back("i++");
    l.push_back("If i < " + std::to_string(2 + Um(4)));
    l.push_back(std::string("  GoTo ") + (Um(8) ? "Again" : "Missing"));
    l.push_back("EndIf");
    l.push_back("Message \"end \", i, \" \", p, \" \", k, \" \", d");
    return Fonte(l);
  }

 private:
  std::string Texto_() { return Escolhe({"s", "s", "t", "a(1)", "a(k)", "a(p)"}); }
  std::string Busca() { return Escolhe({"x", "\";\"", "\"b\"", "\",\"", "t", "\"\"", "\"zz\""}); }
  std::string Numero() {
    switch (Um(6)) {
      case 0: return "StrLen(" + Texto_() + ")";
      case 1: return "StrPos(" + Texto_() + ", " + Busca() + ")";
      case 2: return "StrPos(" + Texto_() + ", " + Busca() + ", " + Escolhe({"p + 1", "k", "i - 3", "d", "2 * k + 1"}) + ")";
      case 3: return Escolhe({"k", "p", "i"}) + " " + Escolhe({"+", "-", "*"}) + " StrLen(" + Texto_() + ")";
      case 4: return "StrLen(" + Texto_() + ") " + Escolhe({"+ 1", "- k", "* 2"});
      default: return Escolhe({"k", "p"}) + " + StrPos(" + Texto_() + ", " + Busca() + ", p + 1) " + Escolhe({"", "- 1", "* 2"});
    }
  }
  void Sentenca(std::vector<std::string>& l, const std::string& r) {
    switch (Um(13)) {
      case 0:
      case 1:
        l.push_back(r + Escolhe({"p", "k", "d", "t"}) + " = " + Numero());
        break;
      case 2:
        l.push_back(r + Escolhe({"s", "t", "a(2)"}) + " += " + Escolhe({"ConvStr(i)", "ConvStr(d)", "ConvStr(k)", "StrLen(s)", "StrPos(s, x)", "SubStr(s, k, 3)", "SubStr(s, p)", "SubStr(a(1), 2, k)", "SubStr(a(k), p, 2)", "StrLen(a(k))", "StrPos(a(p), x, k)",
                                                            "ConvStr(i % 7)", "ConvStr(k * 2 - 5)", "ConvStr(d / 3)", "Trim(x)",
                                                            "JoinStr(x, k)"}));
        break;
      case 3:
        l.push_back(r + Escolhe({"t", "w", "k"}) + " = ConvStr(" + Escolhe({"i", "d", "k", "s"}) + ")");
        break;
      case 4:
        l.push_back(r + "p = StrPos(s, " + Busca() + ")");
        l.push_back(r + "While p > 0 AND k < 200");
        l.push_back(r + "  k++");
        l.push_back(r + "  p = StrPos(s, " + Busca() + ", p + 1)");
        l.push_back(r + "Loop");
        break;
      case 5:
        l.push_back(r + "k = 1");
        l.push_back(r + "While k <= StrLen(" + Texto_() + ")");
        l.push_back(r + "  k = k + " + Escolhe({"7", "StrLen(x)", "1"}));
        l.push_back(r + "Loop");
        break;
      case 6:
        if (Um(2))
          l.push_back(r + "If StrPos(" + Texto_() + ", " + Busca() + ") " + Escolhe({">", "=", "<"}) + " " + Numero());
        else
          l.push_back(r + "If SubStr(" + Texto_() + ", " + Escolhe({"k", "p", "1", "k + 1"}) + ", 1) = " + Busca());
        l.push_back(r + "  d = d + StrLen(s)");
        l.push_back(r + "Else");
        l.push_back(r + "  k = StrLen(t)");
        l.push_back(r + "EndIf");
        break;
      case 7:
        l.push_back(r + "p = StrPos(s, x)");
        l.push_back(r + "If p > 0");
        l.push_back(r + "  w = SubStr(s, 1, p - 1)");
        l.push_back(r + "  s = SubStr(s, p + " + Escolhe({"1", "0", "2"}) + ")");
        l.push_back(r + "EndIf");
        break;
      case 8:
        l.push_back(r + Escolhe({"s", "t"}) + " = SubStr(" + Escolhe({"s", "t", "a(1)"}) + ", " + Escolhe({"k", "p", "2", "i"}) + Escolhe({"", ", 3", ", k"}) + ")");
        break;
      case 9:
        l.push_back(r + Escolhe({"s", "t", "a(1)"}) + " = JoinStr(" + Escolhe({"s", "t", "a(1)"}) + ", " + Escolhe({"x", "\"ab\"", "k", "d", "t"}) + ")");
        break;
      case 10:
        l.push_back(r + "RepStr " + Escolhe({"s", "t", "a(1)", "w"}) + ", " + Escolhe({"x", "\"Z\"", "t"}) + ", " + Escolhe({"k", "p", "1", "i + 1"}) + Escolhe({"", ", 1", ", k"}));
        break;
      case 11:
        l.push_back(r + "k = " + Escolhe({"0", "1", "5", "-2", "StrLen(s) / 2", "40"}));
        break;
      default:
        l.push_back(r + "Message " + Escolhe({"k", "p", "d", "t", "StrLen(s)", "w"}));
        break;
    }
  }
};

// Loops that grow a text with JoinStr and eat it from the front with SubStr,
// read by StrLen, StrPos and SubStr while its front is still to drop, mixed
// with every other kind of write to the same variable, with pieces
// that make quotes and nesting tags across the joins and the cuts. No text
// is joined to a long one, so they grow by a few characters a turn.
class GeradorAcumulador : public GeradorProgramas {
 public:
  using GeradorProgramas::GeradorProgramas;

  Texto Programa() {
    std::vector<std::string> l = {
        "Var s String, t String, x String, y String, i Integer, p Integer, k Integer",
        "Var a(3) String",
        "x = " + Peca(),
        "y = " + Peca(),
        "t = " + Escolhe({"\"abc\"", "\"(1\"", "\"]x\"", "\"\"", "\"a;b;c;\""}),
        "i = 0",
        "While i < " + std::to_string(20 + Um(100)),
        "  k = i % " + std::to_string(2 + Um(2)),
    };
    int total = 2 + Um(7);
    for (int n = 0; n < total; ++n) l.push_back("  " + Sentenca());
    l.push_back("  i++");
    l.push_back("Loop");
    l.push_back("Message StrLen(s), \" \", StrLen(a(1))");
    return Fonte(l);
  }

 private:
  std::string Peca() {
    return Escolhe({"\"ab\"", "\"word;\"", "\"(\"", "\"]\"", "\"[\"", "\")\"", "\"1\"", "\"(1\"", "\"1]\"", "Chr(34)",
                    "\"a b\"", "\",\"", "\"\""});
  }
  std::string Alvo() { return Escolhe({"s", "s", "s", "a(1)", "a(k)"}); }
  std::string Sentenca() {
    switch (Um(19)) {
      case 0:
      case 1:
      case 2:
        return "s = JoinStr(s, " + Escolhe({"x", "y", "x, y", "\"ab\"", "k", "y, x"}) + ")";
      case 3:
      case 4:
        return "s = SubStr(s, " + Escolhe({"k", "2", "1", "k + 1", "StrPos(s, x) + 1"}) + ")";
      case 5: {
        std::string a = Alvo();
        return a + " = JoinStr(" + a + ", " + Escolhe({"x", "y", "\"ab\"", "k"}) + ")";
      }
      case 6: {
        std::string a = Alvo();
        return a + " = SubStr(" + a + ", " + Escolhe({"k", "2", "3"}) + Escolhe({"", ", 4", ", k"}) + ")";
      }
      case 7:
        return Alvo() + " += " + Escolhe({"x", "y", "\"ab\"", "ConvStr(k)"});
      case 8:
        return "s = " + Escolhe({"s & x", "x & s", "s & y & \",\"", "y & s"});
      case 9:
        return "RepStr " + Alvo() + ", " + Escolhe({"x", "y", "\"Z\"", "t"}) + ", " + Escolhe({"k", "1", "2"}) +
               Escolhe({"", ", 1"});
      case 10:
        return Escolhe({"s", "a(1)"}) + " = " + Escolhe({"t", "x", "\"fresh;\"", "a(2)", "s"});
      case 11:
        return Escolhe({"t", "a(2)"}) + " = SubStr(s, " + Escolhe({"k", "2", "1"}) + ")";
      case 12:
        return Escolhe({"t", "a(1)"}) + " = JoinStr(s, " + Escolhe({"x", "y"}) + ")";
      case 13:
        return "p = StrPos(s, " + Escolhe({"x", "\";\"", "\"(\"", "y"}) + Escolhe({"", ", k + 1", ", p + 1"}) + ")";
      case 16:
        return "p = " + Escolhe({"StrLen(s)", "StrLen(s) - StrPos(s, \";\")", "p + StrLen(a(1))"});
      case 17:
        return "If " + Escolhe({"StrPos(s, \";\") > 2", "SubStr(s, 1, 1) = \"w\"", "StrLen(s) < k + 9"}) +
               "\r\n    a(2) = SubStr(s, " + Escolhe({"2, 5", "p", "k + 1"}) + ")\r\n  EndIf";
      case 14:
        return "x = " + Peca();
      default:
        return "If StrLen(s) > " + std::to_string(50 + Um(400)) + "\r\n    s = SubStr(s, 40)\r\n  EndIf";
    }
  }
};

// What a run shows: its boxes, how far it went and its variables.
std::string Roda(const Texto& fonte, bool semPlanos) {
  static const bool registrada = (RegistraBiblioteca(), true);
  (void)registrada;
  return RodaParaComparar(fonte, semPlanos, 20000);
}

TEST(TextosLongos, GeneratedProgramsRunTheSameWithAndWithoutPlans) {
  // ZV_MOSTRA=N prints program N and what its planned run shows, to look at one.
  if (const char* n = std::getenv("ZV_MOSTRA")) {
    Texto f = Gerador(static_cast<uint32_t>(std::atoi(n))).Programa();
    std::printf("%s\n%s", Utf8(f).c_str(), Roda(f, false).c_str());
  }
  for (uint32_t semente = 1; semente <= 300; ++semente) {
    Texto fonte = Gerador(semente).Programa();
    std::string com = Roda(fonte, false), sem = Roda(fonte, true);
    ASSERT_EQ(com, sem) << "program " << semente << ":\n" << Utf8(fonte);
  }
}

TEST(TextosLongos, AccumulatorsEatenAndGrownRunTheSameWithAndWithoutPlans) {
  if (const char* n = std::getenv("ZV_MOSTRA_ACUMULADOR")) {
    Texto f = GeradorAcumulador(static_cast<uint32_t>(std::atoi(n))).Programa();
    std::printf("%s\n%s", Utf8(f).c_str(), Roda(f, false).c_str());
  }
  for (uint32_t semente = 1; semente <= 400; ++semente) {
    Texto fonte = GeradorAcumulador(semente).Programa();
    std::string com = Roda(fonte, false), sem = Roda(fonte, true);
    ASSERT_EQ(com, sem) << "program " << semente << ":\n" << Utf8(fonte);
  }
}

}  // namespace
}  // namespace zv
