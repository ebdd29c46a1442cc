// The API command: calls an exported function of a shared library, its
// arguments typed by how their texts look (whole numbers by value, other
// texts as pointers to byte copies a function may write into). The call is
// made through libffi, each argument a machine word, so a function taking
// int, long or a pointer reads what the program meant; the result is the
// word's low 32 bits, as the language's results have always been.
#include <dlfcn.h>
#include <ffi.h>

#include <array>
#include <filesystem>
#include <string>
#include <vector>

#include "core/interpretador.h"
#include "library/arquivos.h"
#include "runtime/mensagens.h"
#include "runtime/porta_janelas.h"

namespace zv {

namespace {

constexpr size_t kMaxArgumentos = 30;
// Only the first ten positions have a text buffer; a text further on passes 0.
constexpr size_t kBuffersTexto = 10;
// Room behind a text's own bytes: a function that writes past the end the
// program gave still writes into memory of the call's, not over the process.
constexpr size_t kFolgaBuffer = 256;

struct EstadoAPI {
  Texto biblioteca;  // ApiBiblioteca
  Texto funcao;      // ApiFuncao
  std::vector<Texto> argumentos;  // ApiArgumentos, kept after the call
};

// A library as a program of the original platform names it ("user32",
// "mylib.dll") or as this one does ("libm.so.6", a path), loaded: beside
// the program first, then as named, then as the system names libraries;
// the folders are looked through only when nothing else loaded.
void* CarregaBiblioteca(Interpretador& zv, const Texto& nome) {
  auto tenta = [](const std::string& c) { return dlopen(c.c_str(), RTLD_NOW | RTLD_LOCAL); };
  Texto beside = ResolveArquivo(zv, nome);
  if (!beside.empty())
    if (void* m = tenta(Utf8(beside))) return m;
  std::string n = Utf8(CaminhoPlataforma(nome));
  if (void* m = tenta(n)) return m;
  if (n.find('/') != std::string::npos) return nullptr;
  std::string base = n;
  if (base.size() > 4 && Utf8(Maiusculas(Texto(nome.end() - 4, nome.end()))) == ".DLL")
    base = base.substr(0, base.size() - 4);
  if (base.find(".so") != std::string::npos) return nullptr;
  std::string lib = base.rfind("lib", 0) == 0 ? base : "lib" + base;
  if (void* m = tenta(lib + ".so")) return m;
  // A library without its development link has only versioned names.
  namespace fs = std::filesystem;
  for (const char* pasta : {"/lib/x86_64-linux-gnu", "/usr/lib/x86_64-linux-gnu", "/usr/lib64", "/usr/lib", "/lib"}) {
    std::error_code ec;
    for (const auto& e : fs::directory_iterator(pasta, ec))
      if (e.path().filename().string().rfind(lib + ".so.", 0) == 0)
        if (void* m = tenta(e.path().string())) return m;
  }
  return nullptr;
}

void CaixaChamada(Interpretador& zv, const Texto& titulo, const Texto& texto) {
  Caixa c;
  c.tipo = TipoCaixa::Critico;
  c.titulo = titulo;
  c.texto = texto;
  zv.host().MostraCaixa(c);
}

// Whether a text reads as a number, as the typing rules see it.
bool LeNumero(const Texto& t, int32_t& numero) {
  Valor v = Valor::DeTexto(t);
  if (!v.ENumerico()) return false;
  numero = Valor::DeDouble(v.ComoDouble()).ComoInt32();
  return true;
}

int32_t Chama(Interpretador& zv, EstadoAPI& e) {
  // Loaded anew at each call, so a second Execute needs only the names.
  void* modulo = CarregaBiblioteca(zv, e.biblioteca);
  if (!modulo) {
    CaixaChamada(zv, msg::api::kTituloFalha, msg::Formata(msg::api::kSemBiblioteca, e.biblioteca));
    return 0;
  }
  struct Fecha {
    void* m;
    ~Fecha() { dlclose(m); }
  } fecha{modulo};
  if (e.funcao.empty()) {
    CaixaChamada(zv, msg::api::kTituloFuncao, msg::api::kFuncaoNaoDefinida);
    return 0;
  }
  void* entrada = dlsym(modulo, Utf8(e.funcao).c_str());
  if (!entrada) {
    CaixaChamada(zv, msg::api::kTituloFalha, msg::Formata(msg::api::kSemEntrada, e.funcao));
    return 0;
  }

  size_t n = e.argumentos.size();
  std::vector<int64_t> palavras(n);
  std::array<std::string, kBuffersTexto> buffers;
  std::array<size_t, kBuffersTexto> tamanhos{};
  std::vector<bool> numerico(n, false);
  for (size_t i = 0; i < n; ++i) {
    const Texto& t = e.argumentos[i];
    int32_t x = 0;
    if (!t.empty() && t[0] == u'$') {
      // Digits behind a dollar sign are a text all the same.
    } else if (LeNumero(t, x)) {
      numerico[i] = true;
      palavras[i] = x;
      continue;
    }
    if (i >= kBuffersTexto) {
      palavras[i] = 0;
      continue;
    }
    Texto texto = !t.empty() && t[0] == u'$' ? t.substr(1) : t;
    buffers[i] = ParaCp1252(texto);
    tamanhos[i] = buffers[i].size();
    buffers[i].append(kFolgaBuffer, '\0');
    palavras[i] = int64_t(reinterpret_cast<intptr_t>(buffers[i].data()));
  }

  std::vector<ffi_type*> tipos(n, &ffi_type_sint64);
  std::vector<void*> valores(n);
  for (size_t i = 0; i < n; ++i) valores[i] = &palavras[i];
  ffi_cif cif;
  if (ffi_prep_cif(&cif, FFI_DEFAULT_ABI, unsigned(n), &ffi_type_sint64, n ? tipos.data() : nullptr) != FFI_OK)
    throw FalhaHost(msg::api::kChamadaImpossivel);
  ffi_arg resultado = 0;
  ffi_call(&cif, FFI_FN(entrada), &resultado, n ? valores.data() : nullptr);

  // What the function wrote into a text comes back, up to its first zero
  // byte and never longer than the program gave.
  for (size_t i = 0; i < n && i < kBuffersTexto; ++i) {
    if (numerico[i]) continue;
    const std::string& b = buffers[i];
    size_t fim = b.find('\0');
    if (fim == std::string::npos || fim > tamanhos[i]) fim = tamanhos[i];
    e.argumentos[i] = DeCp1252(std::string_view(b).substr(0, fim));
  }
  return int32_t(uint32_t(uint64_t(resultado)));
}

// HWND: the X window of the window commands address, when the program has
// windows; 0 without. HDC has no counterpart here and is 0.
int64_t Alca(Interpretador& zv, const Texto& palavra) {
  if (palavra == u"HDC") return 0;
  ModuloJanelas* m = ModuloJanelasCarregado();
  return m ? m->AlcaFormAtual(zv) : 0;
}

Valor API(Interpretador& zv, const Texto& args) {
  std::vector<Texto> a = zv.SeparaArgumentos(args, kMaxArgumentos + 2);
  EstadoAPI& e = zv.Estado<EstadoAPI>();
  Texto forma = Maiusculas(Apara(a[0]));
  auto valor = [&](const Texto& arg) { return zv.ValorTexto(arg).ComoTexto(); };
  if (forma == u"LIBRARY") {
    e.biblioteca = valor(a[1]);
  } else if (forma == u"FUNCTIONNAME") {
    e.funcao = valor(a[1]);
  } else if (forma == u"EXECUTE") {
    e.argumentos.clear();
    for (size_t i = 1; i < a.size() && e.argumentos.size() < kMaxArgumentos; ++i) {
      Texto cru = Maiusculas(Apara(a[i]));
      Texto t = cru == u"HWND" || cru == u"HDC" ? cru : valor(a[i]);
      Texto palavra = Maiusculas(t);
      if (palavra == u"HWND" || palavra == u"HDC") t = InteiroParaTexto(Alca(zv, palavra));
      if (t.empty()) break;  // an empty text ends the list
      e.argumentos.push_back(t);
    }
    int32_t r = Chama(zv, e);
    zv.GravaVariavel(u"RetStr", Valor::DeTexto(InteiroParaTexto(r)), false);
  } else if (forma == u"ARGUMENT") {
    int32_t i = zv.ValorTexto(a[1]).ComoInt32();
    if (i < 0 || size_t(i) >= e.argumentos.size()) throw FalhaHost(falha::ForaDoIndice);
    zv.GravaVariavel(u"RetStr", Valor::DeTexto(e.argumentos[size_t(i)]), false);
  }
  return Valor::TextoComAspas(u"");
}

}  // namespace

void RegistraAPI() { Comandos().Define(u"API", API); }

}  // namespace zv
