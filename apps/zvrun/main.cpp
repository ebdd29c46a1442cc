// zvrun: runs a Zarvolt program. With --headless it needs no window: boxes
// are JSON lines on standard output and take their answers from --answers.
#include <pthread.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>

#include "core/fonte.h"
#include "core/interpretador.h"
#include "data/dados.h"
#include "library/biblioteca.h"
#include "runtime/headless_host.h"

namespace fs = std::filesystem;
using namespace zv;

namespace {

const char* kAjuda = R"(Usage: zvrun --headless [options] FILE [-- ARGUMENTS...]

Runs a Zarvolt program that needs no window.

FILE is a source file. A file that begins with "#ZV7#" is read as a .Zvc
document (main code and code tabs); any other file is taken as the main code
alone. Files are Windows-1252 text (UTF-8 is recognised); LF line ends are
read as CR LF.

Every message box the run shows is written to standard output as one JSON
line:
  {"box":KIND,"title":TITLE,"text":TEXT,"buttons":BUTTONS,"answer":ANSWER}
KIND is info, critical, question, error (the run-time error box) or step
(the debug step box); BUTTONS is OK, OKCancel or YesNo. Write prints its text
and a line end.

Options:
  --headless           run without a window (the only mode of this tool yet)
  --answers A,B,...    answers to the boxes in order: OK, Cancel, Yes, No;
                       when the list runs out each box gets its default button
  --dump-prepared      print the prepared program text and run nothing
  --dump-vars          after the run, print each variable as a JSON line:
                       {"var":NAME,"type":TYPE,"values":[...]} (String, then
                       Integer, then Decimal variables, in declaration order)
  --step               show the step box before each statement
  --max-statements N   end the run after N statements
  --config-dir DIR     folder of ZV.File and Zarvolt8.inf (default: the
                       folder of zvrun)
  --locale NAME        run under this locale (e.g. de_DE.UTF-8) instead of
                       the one of the environment: it decides the date forms
  --no-plans           run each statement from its text alone, without the
                       plans made at its first run (slower; the same results)
  --help               this text
ARGUMENTS after "--" become the program's CommandLine.

Exit status: 0 after any run that ended, 2 for a usage error or a file that
can't be read.
)";

int Uso(const std::string& msg) {
  std::fprintf(stderr, "zvrun: %s\nTry 'zvrun --help'.\n", msg.c_str());
  return 2;
}

void DespejaVariaveis(const Interpretador& zv) {
  const Variaveis& v = zv.variaveis;
  for (int t = 0; t < 3; ++t) {
    auto tipo = static_cast<TipoVariavel>(t);
    for (const EntradaVariavel& e : v.Diretorio(tipo)) {
      std::string s = "{\"var\":\"" + EscapaJson(e.nome) + "\",\"type\":\"" + Utf8(NomeTipo(tipo)) + "\",\"values\":[";
      for (int32_t i = 0; i < e.tamanho; ++i) {
        if (i) s += ',';
        size_t k = static_cast<size_t>(e.inicio + i);
        if (tipo == TipoVariavel::String)
          s += "\"" + EscapaJson(v.textos[k]) + "\"";
        else if (tipo == TipoVariavel::Integer)
          s += std::to_string(v.inteiros[k]);
        else
          s += Utf8(NumeroParaTexto(v.decimais[k]));
      }
      s += "]}\n";
      std::fwrite(s.data(), 1, s.size(), stdout);
    }
  }
  std::fflush(stdout);
}

struct Opcoes {
  bool headless = false, dumpPrepared = false, dumpVars = false, passo = false, semPlanos = false;
  long long maxInstrucoes = 0;
  std::string arquivo, configDir, linhaComando;
  std::vector<Resposta> respostas;
};

struct Execucao {
  Opcoes* op;
  FontePrograma fonte;
  int status = 0;
};

// The run, on a thread of its own with a large stack, so that deep nesting
// of calls ends at the interpreter's limit and not in a stack overflow.
void* Roda(void* arg) {
  auto* ex = static_cast<Execucao*>(arg);
  Opcoes& op = *ex->op;
  HostConsole host;
  host.respostas = op.respostas;
  Interpretador zv(host);
  zv.fonte = ex->fonte;
  fs::path p = fs::absolute(op.arquivo);
  zv.nomeArquivoPrograma = U(p.filename().string());
  zv.dirPrograma = U(p.parent_path().string() + "/");
  zv.linhaDeComando = U(op.linhaComando);
  zv.modoDepuracao = op.passo;
  zv.semPlanos = op.semPlanos;
  zv.limiteInstrucoes = op.maxInstrucoes;
  if (!op.configDir.empty()) {
    zv.dirConfig = U(op.configDir);
  } else {
    zv.dirConfig = host.DadosPlataforma().pastaExecutavel;
  }
  if (op.dumpPrepared) {
    host.mudo = true;
    zv.DeclaraSistema();
    Texto msg = zv.PreparaPrograma();
    if (!msg.empty()) {
      std::fprintf(stderr, "zvrun: %s\n", Utf8(msg).c_str());
      ex->status = 1;
      return nullptr;
    }
    std::string s = Utf8(zv.textoPrograma);
    std::fwrite(s.data(), 1, s.size(), stdout);
    std::fflush(stdout);
    return nullptr;
  }
  zv.Executa();
  if (zv.limiteAtingido)
    std::fprintf(stderr, "zvrun: the run was ended after %lld statements (--max-statements)\n", op.maxInstrucoes);
  if (op.dumpVars) DespejaVariaveis(zv);
  return nullptr;
}

}  // namespace

int main(int argc, char** argv) {
  Opcoes op;
  int i = 1;
  for (; i < argc; ++i) {
    std::string a = argv[i];
    if (a == "--help" || a == "-h") {
      std::fputs(kAjuda, stdout);
      return 0;
    } else if (a == "--headless") {
      op.headless = true;
    } else if (a == "--dump-prepared") {
      op.dumpPrepared = true;
    } else if (a == "--dump-vars") {
      op.dumpVars = true;
    } else if (a == "--no-plans") {
      op.semPlanos = true;
    } else if (a == "--step") {
      op.passo = true;
    } else if (a == "--answers" || a == "--max-statements" || a == "--config-dir" ||
               a == "--locale") {
      if (i + 1 >= argc) return Uso(a + " needs a value");
      std::string v = argv[++i];
      if (a == "--answers") {
        std::stringstream ss(v);
        for (std::string item; std::getline(ss, item, ',');) {
          Resposta r;
          if (!LeResposta(item, r)) return Uso("unknown answer '" + item + "' (use OK, Cancel, Yes or No)");
          op.respostas.push_back(r);
        }
      } else if (a == "--max-statements") {
        char* fim;
        op.maxInstrucoes = std::strtoll(v.c_str(), &fim, 10);
        if (*fim || op.maxInstrucoes <= 0) return Uso("--max-statements needs a positive number");
      } else if (a == "--locale") {
        // Read by the date commands the first time they ask for the locale,
        // which is after this point.
        setenv("LC_ALL", v.c_str(), 1);
      } else {
        op.configDir = v;
      }
    } else if (a == "--") {
      ++i;
      break;
    } else if (a.size() > 1 && a[0] == '-') {
      return Uso("unknown option " + a);
    } else if (op.arquivo.empty()) {
      op.arquivo = a;
    } else {
      return Uso("only one program file can be run");
    }
  }
  for (; i < argc; ++i) {
    if (!op.linhaComando.empty()) op.linhaComando += ' ';
    op.linhaComando += argv[i];
  }
  if (op.arquivo.empty()) return Uso("no program file given");
  if (!op.headless && !op.dumpPrepared)
    return Uso("the run window isn't available in this build: use --headless");

  std::ifstream f(op.arquivo, std::ios::binary);
  if (!f) return Uso("can't read " + op.arquivo);
  std::string bytes((std::istreambuf_iterator<char>(f)), std::istreambuf_iterator<char>());
  if (f.bad()) return Uso("can't read " + op.arquivo);

  Execucao ex;
  ex.op = &op;
  Texto texto = NormalizaFimDeLinha(DeBytesArquivo(bytes));
  if (ComecaCom(texto, kAssinaturaFonte)) {
    if (!SeparaCodigos(texto, ex.fonte)) return Uso(op.arquivo + " is a damaged source file: a code has no end marker #%");
  } else {
    ex.fonte.textos[0] = texto;
  }

  RegistraBiblioteca();
  RegistraDados();

  pthread_attr_t attr;
  pthread_attr_init(&attr);
  pthread_attr_setstacksize(&attr, 512u * 1024 * 1024);
  pthread_t t;
  if (pthread_create(&t, &attr, Roda, &ex) != 0) {
    Roda(&ex);
  } else {
    pthread_join(t, nullptr);
  }
  pthread_attr_destroy(&attr);
  return ex.status;
}
