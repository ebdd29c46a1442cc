#include "runtime/lancador.h"

#include <pthread.h>
#include <sys/mman.h>
#include <ucontext.h>
#include <unistd.h>

#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <mutex>

#include "builder/compilador.h"
#include "core/fonte.h"
#include "data/dados.h"
#include "library/biblioteca.h"
#include "runtime/mensagens.h"
#include "runtime/porta_janelas.h"

// Sanitizers must be told that the stack changes under them, or they take
// the deep stack's frames for an overflow of the thread's own.
#if defined(__SANITIZE_ADDRESS__)
#define ZV_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ZV_ASAN 1
#endif
#endif
#ifdef ZV_ASAN
#include <sanitizer/common_interface_defs.h>
#endif

namespace fs = std::filesystem;

namespace zv {

bool CarregaFonte(const std::string& caminho, FontePrograma& fonte, std::string& erro) {
  std::error_code ec;
  if (fs::is_directory(caminho, ec)) {
    erro = caminho + msg::execucao::kEPasta;
    return false;
  }
  std::ifstream f(caminho, std::ios::binary);
  if (!f) {
    erro = msg::execucao::kNaoLe + caminho;
    return false;
  }
  std::string bytes((std::istreambuf_iterator<char>(f)), std::istreambuf_iterator<char>());
  if (f.bad()) {
    erro = msg::execucao::kNaoLe + caminho;
    return false;
  }
  fonte = FontePrograma();
  Texto texto = NormalizaFimDeLinha(DeBytesArquivo(bytes));
  if (!ComecaCom(texto, kAssinaturaFonte)) {
    fonte.textos[0] = texto;
    return true;
  }
  if (!SeparaCodigos(texto, fonte)) {
    erro = caminho + msg::execucao::kFonteDanificada;
    return false;
  }
  return true;
}

void RegistraSubsistemas() {
  static std::once_flag feito;
  std::call_once(feito, [] {
    RegistraBiblioteca();
    RegistraDados();
    RegistraAPI();
    RegistraBuilder();
    RegistraJanelas();
  });
}

// ---- The run's stack --------------------------------------------------------

namespace {

// The stack, reserved once a process: address space only, until the walk
// touches its pages. Its lowest pages are a guard, so that a walk that
// still overflowed would fault there and not write over another mapping.
constexpr size_t kGuarda = 64 * 1024;

struct PilhaExecucao {
  char* base = nullptr;
  bool emUso = false;

  bool Reserva() {
    if (base) return true;
    void* p = mmap(nullptr, kTamanhoPilhaExecucao, PROT_READ | PROT_WRITE,
                   MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_STACK, -1, 0);
    if (p == MAP_FAILED) return false;
    base = static_cast<char*>(p);
    mprotect(base, kGuarda, PROT_NONE);
    return true;
  }
  // The pages a deep run touched go back to the system; the reservation stays.
  void Devolve() { madvise(base + kGuarda, kTamanhoPilhaExecucao - kGuarda, MADV_DONTNEED); }
};

PilhaExecucao& Pilha() {
  static PilhaExecucao pilha;
  return pilha;
}

// What the switch hands to the other stack: makecontext passes only ints.
struct Troca {
  const std::function<void()>* corpo;
  std::exception_ptr erro;
  ucontext_t chamador, execucao;
#ifdef ZV_ASAN
  void* pilhaFalsa = nullptr;
  const void* baseChamador = nullptr;
  size_t tamanhoChamador = 0;
#endif
};
thread_local Troca* trocaAtual = nullptr;

void Trampolim() {
  Troca* t = trocaAtual;
#ifdef ZV_ASAN
  __sanitizer_finish_switch_fiber(nullptr, &t->baseChamador, &t->tamanhoChamador);
#endif
  try {
    (*t->corpo)();
  } catch (...) {
    t->erro = std::current_exception();
  }
#ifdef ZV_ASAN
  // Null: this stack's frames are gone when it is entered again.
  __sanitizer_start_switch_fiber(nullptr, t->baseChamador, t->tamanhoChamador);
#endif
  swapcontext(&t->execucao, &t->chamador);
}

// Room kept below the guard check: one level's statement, and a box or a
// dialogue of the host opened from it.
constexpr size_t kFolga = 1024 * 1024;

}  // namespace

const char* FundoPilhaAtual() {
  PilhaExecucao& pilha = Pilha();
  char aqui;
  if (pilha.emUso && &aqui > pilha.base && &aqui < pilha.base + kTamanhoPilhaExecucao)
    return pilha.base + kGuarda + kFolga;
  pthread_attr_t attr;
  if (pthread_getattr_np(pthread_self(), &attr) != 0) return nullptr;
  void* base = nullptr;
  size_t tamanho = 0;
  int r = pthread_attr_getstack(&attr, &base, &tamanho);
  pthread_attr_destroy(&attr);
  if (r != 0 || tamanho <= 2 * kFolga) return nullptr;
  return static_cast<const char*>(base) + kFolga;
}

void NaPilhaDaExecucao(const std::function<void()>& corpo) {
  PilhaExecucao& pilha = Pilha();
  if (pilha.emUso || !pilha.Reserva()) {
    // Already on it (a run started from inside a run), or no address space
    // to be had: the caller's own stack, and the nesting limit still stops
    // the walk, only sooner if the stack is small.
    corpo();
    return;
  }
  Troca t;
  t.corpo = &corpo;
  getcontext(&t.execucao);
  t.execucao.uc_stack.ss_sp = pilha.base + kGuarda;
  t.execucao.uc_stack.ss_size = kTamanhoPilhaExecucao - kGuarda;
  t.execucao.uc_link = nullptr;
  makecontext(&t.execucao, Trampolim, 0);
  Troca* anterior = trocaAtual;
  trocaAtual = &t;
  pilha.emUso = true;
#ifdef ZV_ASAN
  __sanitizer_start_switch_fiber(&t.pilhaFalsa, pilha.base + kGuarda, kTamanhoPilhaExecucao - kGuarda);
#endif
  swapcontext(&t.chamador, &t.execucao);
#ifdef ZV_ASAN
  __sanitizer_finish_switch_fiber(t.pilhaFalsa, nullptr, nullptr);
#endif
  pilha.emUso = false;
  trocaAtual = anterior;
  pilha.Devolve();
  if (t.erro) std::rethrow_exception(t.erro);
}

// ---- A run -----------------------------------------------------------------

Lancador::Lancador(Host& host, const PedidoExecucao& pedido, const FontePrograma& fonte)
    : zv_(std::make_unique<Interpretador>(host)) {
  RegistraSubsistemas();
  Interpretador& zv = *zv_;
  zv.fonte = fonte;
  if (!pedido.arquivo.empty()) {
    std::error_code ec;
    fs::path p = fs::absolute(pedido.arquivo, ec);
    if (ec) p = pedido.arquivo;
    zv.nomeArquivoPrograma = U(p.filename().string());
    zv.dirPrograma = U(p.parent_path().string() + "/");
  }
  zv.linhaDeComando = U(pedido.linhaComando);
  zv.modoDepuracao = pedido.passoAPasso;
  zv.semPlanos = pedido.semPlanos;
  zv.limiteInstrucoes = pedido.maxInstrucoes;
  zv.dirConfig = pedido.dirConfig.empty() ? host.DadosPlataforma().pastaExecutavel : U(pedido.dirConfig);
}

void Lancador::Executa() { Executa(nullptr); }

void Lancador::Executa(const std::function<void()>& depois) {
  NaPilhaDaExecucao([this, &depois] {
    zv_->fundoPilha = FundoPilhaAtual();
    zv_->Executa();
    if (depois) depois();
  });
}

}  // namespace zv
