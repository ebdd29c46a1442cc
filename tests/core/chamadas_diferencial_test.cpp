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

}  // namespace
}  // namespace zv
