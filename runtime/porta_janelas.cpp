#include "runtime/porta_janelas.h"

#include <dlfcn.h>

#include <array>
#include <cstdlib>
#include <filesystem>

#include "core/interpretador.h"
#include "runtime/mensagens.h"

namespace zv {

namespace {

ModuloJanelas* modulo = nullptr;

// The module stands beside the executable; a build tree keeps it there too.
std::string CaminhoModulo() {
  std::error_code ec;
  std::filesystem::path exe = std::filesystem::read_symlink("/proc/self/exe", ec);
  std::filesystem::path p = (ec ? std::filesystem::path(".") : exe.parent_path()) / "libzv_janelas.so";
#ifdef ZV_DIR_MODULO
  if (!std::filesystem::exists(p, ec)) p = std::filesystem::path(ZV_DIR_MODULO) / "libzv_janelas.so";
#endif
  return p.string();
}

}  // namespace

ModuloJanelas* ModuloJanelasCarregado() { return modulo; }

ModuloJanelas* CarregaModuloJanelas(std::string* erro) {
  if (modulo) return modulo;
  if (zv_modulo_janelas) {
    modulo = zv_modulo_janelas();
    modulo->Registra();
    return modulo;
  }
  static std::string falhou;
  if (!falhou.empty()) {
    if (erro) *erro = falhou;
    return nullptr;
  }
  std::string caminho = CaminhoModulo();
  void* h = dlopen(caminho.c_str(), RTLD_NOW | RTLD_GLOBAL);
  using Entrada = ModuloJanelas* (*)();
  auto entrada = h ? reinterpret_cast<Entrada>(dlsym(h, "zv_modulo_janelas")) : nullptr;
  if (!entrada) {
    const char* e = dlerror();
    falhou = std::string(msg::execucao::kModulo) + caminho + msg::execucao::kModuloNaoCarrega + (e ? std::string(": ") + e : std::string());
    if (erro) *erro = falhou;
    return nullptr;
  }
  modulo = entrada();
  modulo->Registra();
  return modulo;
}

bool TemTela() {
  const char* d = std::getenv("DISPLAY");
  const char* w = std::getenv("WAYLAND_DISPLAY");
  return (d && *d) || (w && *w);
}

namespace {

// The keywords whose routines are the module's, with their options.
struct Substituta {
  const char16_t* palavra;
  bool semArgumentos;
};
constexpr std::array<Substituta, 59> kPalavras = {{
    {u"Window", false},       {u"Position", false},       {u"Cls", true},          {u"ClearWindow", true},
    {u"Font", false},         {u"WindowWidth", true},     {u"WindowHeight", true}, {u"CaptureWindow", true},
    {u"UnCaptureWindow", true}, {u"Event", false},        {u"KeyTest", false},     {u"TestMouse", true},
    {u"Timer", false},        {u"Button", false},         {u"Text", false},        {u"Label", false},
    {u"Check", false},        {u"Radio", false},          {u"Combo", false},       {u"Frame", false},
    {u"ScrollBar", false},    {u"Mask", false},           {u"GetText", false},     {u"DialogBox", false},
    {u"Currency", false},     {u"Calendar", false},           {u"ButtonStyle", false},
    {u"Box", false},          {u"Gradient", false},       {u"SystemMenu", false},
    {u"Circle", false},       {u"Rectangle", false},      {u"Straight", false},    {u"Point", false},
    {u"ReadPoint", false},    {u"Paint", false},          {u"Transition", false},  {u"Icon", false},
    {u"Fonts", false},        {u"ChangeWallpaper", false}, {u"AddIconSysTray", true},
    {u"MinimizeSysTray", true}, {u"ListenP2P", false},    {u"ConnectP2P", false},  {u"SendP2P", false},
    {u"Picture", false},      {u"DrawPictures", false},   {u"Link", false},        {u"AnimatedGif", false},
    {u"Browser", false},      {u"Image", false},          {u"Sound", false},       {u"Video", false},
    {u"RecordSound", false},  {u"WebCam", false},
    // Not window words: their libraries are the module's (Qt SQL, libcurl).
    {u"SQL", false},          {u"ConnectFTP", false},     {u"DownFileFTP", false}, {u"UpFileFTP", false},
}};

ModuloJanelas& Modulo() {
  std::string erro;
  ModuloJanelas* m = CarregaModuloJanelas(&erro);
  if (!m) throw FalhaHost(U(erro));
  return *m;
}

// A stand-in: loads the module, which replaced this routine in the table,
// and runs the routine that now stands there.
template <size_t I>
Valor Substituto(Interpretador& zv, const Texto& argumentos) {
  Modulo();
  int i = IndicePalavra(kPalavras[I].palavra);
  const DefinicaoComando* d = Comandos().Rotina_(i);
  if (!d || d->rotina == &Substituto<I>) return Valor();
  return d->rotina(zv, argumentos);
}

void NewWindowSubstituto(Interpretador& zv, const Texto& argumentos) {
  std::string erro;
  if (!CarregaModuloJanelas(&erro)) {
    zv.ErroExecucao(msg::FalhaDeComando(u"NewWindow", U(erro)));
    return;
  }
  if (Comandos().newWindow != &NewWindowSubstituto) Comandos().newWindow(zv, argumentos);
}

// Write before any window: the line goes to the host (standard output
// headless). The module's Write replaces this one when it loads.
Valor WriteSemJanela(Interpretador& zv, const Texto& argumentos) {
  bool titulo = false;
  Texto texto;
  for (const Texto& a : zv.SeparaArgumentos(argumentos, 51)) {
    if (a.empty()) break;
    if (Maiusculas(a) == u"WINDOWTITLE") {
      titulo = true;
      continue;
    }
    texto += zv.ValorNumerico(a).ComoTexto();
  }
  if (titulo)
    zv.host().DefineTitulo(texto);
  else
    zv.host().Escreve(texto);
  zv.Bombeia();
  return Valor::DeBooleano(true);
}

// Rep.Method and Printer.Method, found by their prefix: stand-ins that load
// the module, which puts its own in their place.
template <bool kRep>
Valor RelatorioSubstituto(Interpretador& zv, const Texto& nome, const Texto& argumentos) {
  Modulo();
  RotinaComNome r = kRep ? Comandos().rep : Comandos().printer;
  if (r == &RelatorioSubstituto<kRep>) return Valor();
  return r(zv, nome, argumentos);
}

template <size_t... I>
void DefineSubstitutos(TabelaComandos& t, std::index_sequence<I...>) {
  (
      [&] {
        DefinicaoComando d;
        d.semArgumentos = kPalavras[I].semArgumentos;
        t.Define(kPalavras[I].palavra, &Substituto<I>, d);
      }(),
      ...);
}

}  // namespace

void RegistraJanelas() {
  TabelaComandos& t = Comandos();
  DefineSubstitutos(t, std::make_index_sequence<kPalavras.size()>());
  t.Define(u"Write", WriteSemJanela);
  t.newWindow = NewWindowSubstituto;
  t.rep = RelatorioSubstituto<true>;
  t.printer = RelatorioSubstituto<false>;
  // Loaded already (a desktop run loads it first thing): the real ones.
  if (modulo) modulo->Registra();
}

}  // namespace zv
