// Generated programs with Functions run with plans and without them: the
// boxes, the statement count and every variable left behind must be the
// same, whichever way each call went.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "core/interpretador.h"
#include "runtime/headless_host.h"
#include "tests/core/execucao_comparada.h"

namespace zv {
namespace {

class Gerador : public GeradorProgramas {
 public:
  using GeradorProgramas::GeradorProgramas;

  Texto Programa() {
    std::vector<std::string> linhas = {"Var i Integer, n Integer, d Decimal, t String"};
    struct Funcao {
      std::string nome;
      int parametros;
      std::vector<std::string> texto;
    };
    std::vector<Funcao> funcoes;
    int total = 1 + Um(3);
    for (int k = 0; k < total; ++k) {
      Funcao f;
      f.nome = Escolhe({"Soma", "Calc", "F", "Dobro", "Tx"}) + std::string(1, static_cast<char>('A' + k));
      f.parametros = Um(4);
      std::vector<std::string> nomes;
      std::string cabeca = "Function " + f.nome + "(";
      for (int j = 0; j < f.parametros; ++j) {
        nomes.push_back("p" + std::to_string(j));
        cabeca += (j ? ", " : "") + nomes.back() + " " + Escolhe({"Integer", "Decimal", "String"});
      }
      cabeca += ") " + Escolhe({"Numero", "String", "Integer"});
      f.texto.push_back(cabeca);
      int locais = Um(3);
      if (locais) {
        std::string var = Escolhe({"Var", "Variable"}) + " ";
        for (int j = 0; j < locais; ++j) {
          nomes.push_back("l" + std::to_string(j));
          var += (j ? ", " : "") + nomes.back() + " " + Escolhe({"Integer", "Decimal", "String"});
        }
        f.texto.push_back("  " + var);
      }
      Corpo(nomes, 0, "  ", f.texto);
      f.texto.push_back("EndFunction");
      funcoes.push_back(f);
    }
    linhas.push_back("i = 0");
    linhas.push_back("While i < " + std::to_string(2 + Um(10)));
    for (const Funcao& f : funcoes) {
      std::string args;
      int n = f.parametros + (Um(10) == 0 ? 1 : 0);
      for (int j = 0; j < n; ++j) args += (j ? ", " : "") + Escolhe({"i", "n", "d", "t", "1", "-2", "2.5", "\"q\"", "i - 3"});
      std::string alvo = Escolhe({"n", "d", "t"});
      linhas.push_back("  " + alvo + " = " + f.nome + "(" + args + ")");
      linhas.push_back("  Message \"" + f.nome + " \", i, \" \", " + alvo);
    }
    linhas.push_back("  i++");
    linhas.push_back("Loop");
    linhas.push_back("EndProgram");
    for (const Funcao& f : funcoes) linhas.insert(linhas.end(), f.texto.begin(), f.texto.end());
    return Fonte(linhas);
  }

 private:
  std::string Expressao(const std::vector<std::string>& nomes) {
    std::vector<std::string> n = nomes.empty() ? std::vector<std::string>{"1"} : nomes;
    auto nome = [&] { return n[static_cast<size_t>(Um(static_cast<int>(n.size())))]; };
    switch (Um(4)) {
      case 0:
        return nome();
      case 1:
        return Escolhe({"0", "1", "-1", "7", "2.5", "100000", "2147483647"});
      case 2:
        return Escolhe({"\"a\"", "\"x y\"", "\"1\"", "\"\""});
      default:
        return nome() + " " + Escolhe({"+", "-", "*", "/", "%"}) + " " + (Um(2) ? nome() : Escolhe({"2", "3", "1"}));
    }
  }
  void Corpo(const std::vector<std::string>& nomes, int nivel, const std::string& recuo,
             std::vector<std::string>& saida) {
    int total = 1 + Um(5);
    for (int k = 0; k < total; ++k) {
      int c = Um(20);
      std::string alvo = nomes.empty() ? "n" : nomes[static_cast<size_t>(Um(static_cast<int>(nomes.size())))];
      if (c < 5) {
        saida.push_back(recuo + "Return " + Expressao(nomes));
      } else if (c < 9 && !nomes.empty()) {
        saida.push_back(recuo + alvo + " = " + Expressao(nomes));
      } else if (c < 11 && !nomes.empty()) {
        saida.push_back(recuo + alvo + " += " + Escolhe({"1", "2", "p0"}));
      } else if (c < 12 && !nomes.empty()) {
        saida.push_back(recuo + alvo + "++");
      } else if (c < 15 && nivel < 2 && !nomes.empty()) {
        saida.push_back(recuo + "If " + alvo + " " + Escolhe({"<", ">", "=", "<>", "<=", ">="}) + " " +
                        Expressao(nomes));
        Corpo(nomes, nivel + 1, recuo + "  ", saida);
        if (Um(2)) {
          saida.push_back(recuo + "Else");
          Corpo(nomes, nivel + 1, recuo + "  ", saida);
        }
        saida.push_back(recuo + "EndIf");
      } else if (c < 16) {
        saida.push_back(recuo + "Message \"in\", " + alvo);
      } else {
        saida.push_back(recuo + "Return " + alvo);
      }
    }
  }
};

// What a run shows: its boxes, how far it went and its variables.
std::string Roda(const Texto& fonte, bool semPlanos) { return RodaParaComparar(fonte, semPlanos, 5000, true); }

TEST(ChamadasPlanejadas, GeneratedProgramsRunTheSameWithAndWithoutPlans) {
  for (uint32_t semente = 1; semente <= 400; ++semente) {
    Texto fonte = Gerador(semente).Programa();
    std::string com = Roda(fonte, false), sem = Roda(fonte, true);
    ASSERT_EQ(com, sem) << "program " << semente << ":\n" << Utf8(fonte);
  }
}

// Functions of one Return, which planned calls work out from their
// arguments: whole-number parameters (now and then a Decimal one), values
// at the edges of 32 bits and below 0, elements in range and past it,
// targets of every type, and now and then a variable standing already
// under a name one of the calls will make.
class GeradorFolhas : public GeradorProgramas {
 public:
  using GeradorProgramas::GeradorProgramas;

  Texto Programa() {
    const std::string f = Escolhe({"Soma", "F", "Calc"});
    const int parametros = 1 + Um(3);
    std::string cabeca = "Function " + f + "(";
    for (int j = 0; j < parametros; ++j)
      cabeca += (j ? ", " : "") + std::string("p") + std::to_string(j) + (Um(8) ? " Integer" : " Decimal");
    cabeca += ") " + Escolhe({"Numero", "Numero", "Integer", "String"});
    std::vector<std::string> l = {"Var i Integer, n Integer, k Integer, d Decimal, t String", "Var A(3) Integer"};
    if (Um(4) == 0) l.push_back("Var " + f + std::to_string(Um(6)) + "p" + std::to_string(Um(parametros)) + " Integer");
    l.push_back("n = " + Valor());
    l.push_back("k = " + Valor());
    l.push_back("A(1) = " + Valor());
    l.push_back("A(2) = " + Valor());
    l.push_back("i = 0");
    l.push_back("While i < 5");
    int chamadas = 1 + Um(3);
    for (int c = 0; c < chamadas; ++c) {
      std::string args;
      int n = parametros + (Um(12) == 0 ? 1 : 0);
      for (int j = 0; j < n; ++j)
        args += (j ? ", " : "") + Escolhe({"i", "n", "k", "A(i)", "A(1)", "A(5)", "k", "n", "-1", "3", "d", "i - 3"});
      std::string alvo = Escolhe({"n", "k", "k", "A(i)", "A(2)", "d", "t"});
      l.push_back("  " + alvo + " = " + f + "(" + args + ")");
      l.push_back("  Message \"" + f + " \", i, \" \", " + alvo);
    }
    if (Um(2)) l.push_back("  n = " + Escolhe({"n * 3 + 1", "n - 7", "k"}));
    // A name a later call will make, declared halfway.
    if (Um(4) == 0) {
      l.push_back("  If i = 2");
      l.push_back("    Var " + f + std::to_string(3 + Um(10)) + "p" + std::to_string(Um(parametros)) + " Integer");
      l.push_back("  EndIf");
    }
    l.push_back("  i++");
    l.push_back("Loop");
    l.push_back("Message n, \" \", k, \" \", A(1), \" \", A(2), \" \", d, \" \", t");
    l.push_back("EndProgram");
    l.push_back(cabeca);
    l.push_back("  Return " + Expressao(parametros));
    l.push_back("EndFunction");
    return Fonte(l);
  }

 private:
  std::string Valor() {
    return Escolhe({"0", "1", "-1", "7", "46341", "65536", "2147483647", "-2147483648", "-5"});
  }
  std::string Expressao(int parametros) {
    auto p = [&] { return "p" + std::to_string(Um(parametros)); };
    switch (Um(4)) {
      case 0:
        return p();
      case 1:
        return p() + " " + Escolhe({"+", "-", "*", "%", "/"}) + " " + p();
      case 2:
        return p() + " " + Escolhe({"+", "-", "*", "%"}) + " " + Escolhe({"1", "2147483647", "0", "-3", "2.5"});
      default:
        return Escolhe({"3", "100000"}) + " " + Escolhe({"+", "-", "*"}) + " " + p();
    }
  }
};

TEST(ChamadasPlanejadas, FunctionsOfOneReturnRunTheSameWithAndWithoutPlans) {
  for (uint32_t semente = 1; semente <= 600; ++semente) {
    Texto fonte = GeradorFolhas(semente).Programa();
    // Counted (every statement checked against a budget) and not.
    for (int64_t limite : {int64_t{0}, int64_t{5000}}) {
      std::string com = RodaParaComparar(fonte, false, limite, true), sem = RodaParaComparar(fonte, true, limite, true);
      ASSERT_EQ(com, sem) << "program " << semente << ", limit " << limite << ":\n" << Utf8(fonte);
    }
  }
}

}  // namespace
}  // namespace zv
