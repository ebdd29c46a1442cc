// zvrun: runs a Zarvolt program. On the desktop it opens the run window and
// runs until that closes. With --headless it needs no display: boxes are
// JSON lines on standard output and take their answers from --answers, and
// the windows stand on Qt's offscreen platform, driven by --events.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>

#include "builder/embutido.h"
#include "core/interpretador.h"
#include "runtime/janela_host.h"
#include "runtime/lancador.h"
#include "runtime/porta_janelas.h"
#include "runtime/roteiro.h"

namespace fs = std::filesystem;
using namespace zv;

namespace {

const char* kAjuda = R"(Usage: zvrun [--headless] [options] FILE [-- ARGUMENTS...]

Runs a Zarvolt program. Without --headless the run window opens on the
desktop, and the run lasts until the main window is closed: the end of the
main text doesn't end it. With --headless nothing is shown: the windows are
made on Qt's offscreen platform (only when the program uses a window
command), and the run ends when the main text has ended and the event
script is used up.

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
  --headless           run without a display (see above)
  --events FILE        user actions, one JSON object a line, each delivered at
                       a pump point once the one before it was handled:
                       {"click":NAME}, {"dblclick":NAME} (optional "kind":
                       the control's keyword, "window": its window),
                       {"type":TEXT,"into":NAME}, {"key":KEY,"into":NAME,
                       "modifiers":["shift","ctrl","alt"]}, {"keydown":KEY},
                       {"keyup":KEY}, {"mouse":"move"|"down"|"up"|"click"|
                       "dblclick","x":PX,"y":PY,"button":"left"|"right",
                       "window":NAME}, {"close":WINDOW}, {"wait":MS}.
                       KEY is a Qt key name without "Key_" (Enter, Tab, F6,
                       A) or the key code the program sees. An action naming
                       nothing that exists is skipped with a warning
  --linger MS          pump MS milliseconds more before the run ends
  --dump-windows       after the run, one JSON line per window and one per
                       control it shows (before the tear-down)
  --screenshot DIR     after the run, a PNG of each visible window in DIR,
                       named after the window
  --answers A,B,...    what the user answers, in order: a box takes the next
                       entry as its button (OK, Cancel, Yes, No; anything
                       else leaves its default button), a dialogue as what
                       was chosen: a file path, a colour number, a font as
                       Name;size;bold;italic, a text, or Cancel. When the
                       list runs out boxes get their default button and
                       dialogues are cancelled (GetText gives its default)
  --answers-file FILE  the same, one answer a line (for texts with commas)
  Dialogues (DialogBox, GetText) are JSON lines too:
    {"dialog":KIND,"title":TITLE,"text":PROMPT,"default":DEFAULT}
  with KIND open, save, color, printer, font or input.
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
  bool headless = false, dumpPrepared = false, dumpVars = false, dumpWindows = false;
  std::string eventos, fotos;
  int demora = 0;
  std::vector<std::string> respostas;
  PedidoExecucao pedido;
};

// The prepared text alone: the predeclared variables and the preparation,
// no walk. 1 when the preparation refused the program.
int DespejaPreparado(Interpretador& zv) {
  zv.DeclaraSistema();
  Texto msg = zv.PreparaPrograma();
  if (!msg.empty()) {
    std::fprintf(stderr, "zvrun: %s\n", Utf8(msg).c_str());
    return 1;
  }
  std::string s = Utf8(zv.textoPrograma);
  std::fwrite(s.data(), 1, s.size(), stdout);
  std::fflush(stdout);
  return 0;
}

}  // namespace

#ifdef ZV_IMAGEM
extern "C" const char zv_recursos[];

// The program behind this executable's image, when it is a built one: its
// codes, and a path for the run's name and folder (the executable's folder,
// the source file's name).
bool ProgramaEmbutido(zv::FontePrograma& fonte, std::string& caminho) {
  std::error_code ec;
  std::filesystem::path exe = std::filesystem::read_symlink("/proc/self/exe", ec);
  std::string nome;
  if (ec) return false;
  if (!zv::LeBlocoDoArquivo(exe.string(), fonte, nome)) {
    // Something behind the image that isn't a sound program: damaged, and
    // not run.
    if (zv::TemBloco(exe.string())) {
      std::fprintf(stderr, "%s: the program inside this file is damaged; make it again with Compile\n",
                   exe.filename().c_str());
      std::exit(1);
    }
    return false;
  }
  caminho = (exe.parent_path() / nome).string();
  return true;
}
#endif

int main(int argc, char** argv) {
  Opcoes op;
  int i = 1;
  FontePrograma fonte;
  bool embutido = false;
#ifdef ZV_IMAGEM
  embutido = ProgramaEmbutido(fonte, op.pedido.arquivo);
#endif
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
    } else if (a == "--dump-windows") {
      op.dumpWindows = true;
    } else if (a == "--no-plans") {
      op.pedido.semPlanos = true;
    } else if (a == "--step") {
      op.pedido.passoAPasso = true;
    } else if (a == "--answers" || a == "--max-statements" || a == "--config-dir" ||
               a == "--locale" || a == "--events" || a == "--screenshot" || a == "--linger" ||
               a == "--answers-file") {
      if (i + 1 >= argc) return Uso(a + " needs a value");
      std::string v = argv[++i];
      if (a == "--answers") {
        std::stringstream ss(v);
        for (std::string item; std::getline(ss, item, ',');) op.respostas.push_back(item);
      } else if (a == "--answers-file") {
        std::ifstream f(v);
        if (!f) return Uso("can't read the answers file " + v);
        for (std::string item; std::getline(f, item);) {
          if (!item.empty() && item.back() == '\r') item.pop_back();
          op.respostas.push_back(item);
        }
      } else if (a == "--max-statements") {
        char* fim;
        op.pedido.maxInstrucoes = std::strtoll(v.c_str(), &fim, 10);
        if (*fim || op.pedido.maxInstrucoes <= 0) return Uso("--max-statements needs a positive number");
      } else if (a == "--events") {
        op.eventos = v;
      } else if (a == "--screenshot") {
        op.fotos = v;
      } else if (a == "--linger") {
        char* fim;
        long n = std::strtol(v.c_str(), &fim, 10);
        if (*fim || n < 0 || n > 3600000) return Uso("--linger needs a number of milliseconds");
        op.demora = static_cast<int>(n);
      } else if (a == "--locale") {
        // Read by the date commands the first time they ask for the locale,
        // which is after this point.
        setenv("LC_ALL", v.c_str(), 1);
      } else {
        op.pedido.dirConfig = v;
      }
    } else if (a == "--") {
      ++i;
      break;
    } else if (a.size() > 1 && a[0] == '-') {
      return Uso("unknown option " + a);
    } else if (embutido) {
      // A built program's arguments are its command line.
      if (!op.pedido.linhaComando.empty()) op.pedido.linhaComando += ' ';
      op.pedido.linhaComando += a;
    } else if (op.pedido.arquivo.empty()) {
      op.pedido.arquivo = a;
    } else {
      return Uso("only one program file can be run");
    }
  }
  for (; i < argc; ++i) {
    if (!op.pedido.linhaComando.empty()) op.pedido.linhaComando += ' ';
    op.pedido.linhaComando += argv[i];
  }
  if (op.pedido.arquivo.empty()) return Uso("no program file given");
  if (op.dumpPrepared) op.headless = true;
  if (op.headless) {
    // Windows of a headless run stand on the offscreen platform, whatever
    // the environment says; set before anything can make the application.
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
  } else if (!TemTela()) {
    std::fprintf(stderr, "zvrun: no display to open the run window on; use --headless to run without one\n");
    return 2;
  }

  std::string erro;
  if (!embutido && !CarregaFonte(op.pedido.arquivo, fonte, erro)) return Uso(erro);
#ifdef ZV_IMAGEM
  // The built program's own icon on all its windows.
  std::string_view icone = zv::LeIcone(std::string_view(zv_recursos, zv::kTamanhoRecursos));
  if (!icone.empty())
    if (ModuloJanelas* m = CarregaModuloJanelas()) m->DefineIconeAplicacao(std::string(icone));
#endif

  HostJanela host(op.headless ? HostJanela::Modo::SemTela : HostJanela::Modo::Tela);
  host.respostas = op.respostas;
  host.demoraFinal = op.demora;
  if (!op.eventos.empty()) {
    host.roteiro = std::make_unique<RoteiroEventos>();
    if (!host.roteiro->Carrega(op.eventos, erro)) return Uso(erro);
  }
  if (op.dumpPrepared) host.mudo = true;
  Lancador lancador(host, op.pedido, fonte);
  Interpretador& zv = lancador.interpretador();
  host.Liga(&zv);
  if (op.dumpPrepared) return DespejaPreparado(zv);
  // Dumps and pictures come before the tear-down: at the end of a headless
  // run, or when the main window closes on the desktop.
  host.antesDoFim = [&] {
    // Only a run that made a window has the module loaded.
    if (ModuloJanelas* m = ModuloJanelasCarregado()) {
      if (op.dumpWindows) {
        std::string d = m->DespejaJanelas(zv);
        std::fwrite(d.data(), 1, d.size(), stdout);
        std::fflush(stdout);
      }
      std::string e;
      if (!op.fotos.empty() && !m->Fotografa(zv, op.fotos, e)) std::fprintf(stderr, "zvrun: %s\n", e.c_str());
    }
    if (op.dumpVars) DespejaVariaveis(zv);
  };
  lancador.Executa([&host] { host.AguardaFim(); });
  if (zv.limiteAtingido)
    std::fprintf(stderr, "zvrun: the run was ended after %lld statements (--max-statements)\n",
                 static_cast<long long>(op.pedido.maxInstrucoes));
  host.Termina();
  return 0;
}
