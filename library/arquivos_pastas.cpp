// Folders and whole files: Directory, FindFile, DeleteFile, Copy, MkDir and
// RmDir.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "core/interpretador.h"
#include "core/valor.h"
#include "library/arquivos.h"
#include "library/arquivos_interno.h"
#include "library/textos.h"

namespace zv {

namespace fs = std::filesystem;

bool CorrespondeCuringa(TextoV nome, TextoV padrao) {
  if (padrao == u"*.*") padrao = u"*";
  // Greedy walk with one point of return: the last "*" seen.
  size_t n = 0, p = 0, estrela = NPOS, retorno = 0;
  while (n < nome.size()) {
    if (p < padrao.size() && padrao[p] == u'*') {
      estrela = p++;
      retorno = n;
    } else if (p < padrao.size() && (padrao[p] == u'?' || Maiuscula(padrao[p]) == Maiuscula(nome[n]))) {
      ++p;
      ++n;
    } else if (estrela != NPOS) {
      p = estrela + 1;
      n = ++retorno;
    } else {
      return false;
    }
  }
  while (p < padrao.size() && padrao[p] == u'*') ++p;
  return p == padrao.size();
}

namespace {

// The one listing of Directory, per run.
struct Listagem {
  bool iniciada = false;
  std::vector<Texto> nomes;
  size_t proximo = 0;
};

// The names of the normal files (not folders, not hidden) that match a
// pattern, which may name a folder before it; sorted, as listings should be
// the same on every machine.
std::vector<Texto> ListaArquivos(TextoV padrao) {
  Texto t = CaminhoPlataforma(padrao);
  size_t barra = t.rfind(u'/');
  Texto pasta = barra == NPOS ? Texto(u".") : t.substr(0, barra + 1);
  Texto curinga = barra == NPOS ? t : t.substr(barra + 1);
  if (curinga.empty()) curinga = u"*";
  std::vector<Texto> nomes;
  std::error_code ec;
  for (fs::directory_iterator it(fs::path(Utf8(pasta)), ec), fim; !ec && it != fim; it.increment(ec)) {
    Texto nome = U(it->path().filename().string());
    std::error_code ec2;
    if (nome.empty() || nome[0] == u'.' || !it->is_regular_file(ec2)) continue;
    if (CorrespondeCuringa(nome, curinga)) nomes.push_back(std::move(nome));
  }
  std::sort(nomes.begin(), nomes.end(), [](const Texto& a, const Texto& b) {
    Texto ma = Maiusculas(a), mb = Maiusculas(b);
    return ma != mb ? ma < mb : a < b;
  });
  return nomes;
}

Valor Directory(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, kArgumentosArquivo);
  auto& l = zv.Estado<Listagem>();
  if (Presente(a, 0)) {
    l.nomes = ListaArquivos(zv.ValorTexto(a[0]).ComoTexto());
    l.proximo = 0;
    l.iniciada = true;
  } else if (!l.iniciada) {
    // Asking for the next name before any listing began.
    throw FalhaHost(falha::ChamadaInvalida);
  }
  if (l.proximo >= l.nomes.size()) return Valor::TextoComAspas(u"");
  return Valor::TextoComAspas(l.nomes[l.proximo++]);
}

// Files of a folder before its subfolders, each in name order; links to
// folders aren't followed, so a loop of links ends.
bool ProcuraNaArvore(const fs::path& pasta, const Texto& nomeMaiusculo, fs::path& achado) {
  std::vector<fs::path> subpastas;
  std::vector<fs::path> arquivos;
  std::error_code ec;
  for (fs::directory_iterator it(pasta, ec), fim; !ec && it != fim; it.increment(ec)) {
    std::error_code ec2;
    if (it->is_directory(ec2) && !it->is_symlink(ec2))
      subpastas.push_back(it->path());
    else if (Maiusculas(U(it->path().filename().string())) == nomeMaiusculo)
      arquivos.push_back(it->path());
  }
  if (!arquivos.empty()) {
    achado = *std::min_element(arquivos.begin(), arquivos.end());
    return true;
  }
  std::sort(subpastas.begin(), subpastas.end());
  for (const auto& s : subpastas)
    if (ProcuraNaArvore(s, nomeMaiusculo, achado)) return true;
  return false;
}

Valor FindFile(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, kArgumentosArquivo);
  fs::path raiz = CaminhoSistema(ArgTexto(zv, a, 0));
  Texto nome = ArgTexto(zv, a, 1);
  std::error_code ec;
  fs::path inteira = fs::absolute(raiz, ec);
  if (ec) FalhaArquivo(ec.value(), raiz);
  fs::path achado;
  if (nome.find_first_of(u"\\/") != TextoV::npos ||
      !ProcuraNaArvore(inteira.lexically_normal(), Maiusculas(nome), achado))
    return Valor::TextoComAspas(u"");
  return Valor::TextoComAspas(U(achado.string()));
}

Valor DeleteFile(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, kArgumentosArquivo);
  Texto caminho = ResolveArquivo(zv, ArgTexto(zv, a, 0));
  // A file that can't be deleted is passed over in silence.
  if (!caminho.empty()) ::unlink(CaminhoSistema(caminho).c_str());
  return Valor::TextoComAspas(caminho);
}

// The text of a failure that Copy, MkDir and RmDir give as their result.
Texto TextoDeErro(const char16_t* palavra, int numero, TextoV descricao) {
  return Texto(palavra) + InteiroParaTexto(numero) + u": " + Texto(descricao);
}

Valor Copy(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, kArgumentosArquivo);
  fs::path origem = CaminhoSistema(ArgTexto(zv, a, 0));
  fs::path destino = CaminhoSistema(ArgTexto(zv, a, 1));
  Descritor de(::open(origem.c_str(), O_RDONLY | O_CLOEXEC));
  try {
    if (de.fd < 0) FalhaArquivo(errno, origem);
    struct stat st;
    if (::fstat(de.fd, &st) == 0 && S_ISDIR(st.st_mode)) FalhaArquivo(EISDIR, origem);
    ArquivoTemporario novo(destino);
    novo.CopiaDe(de.fd);
    novo.Confirma();
  } catch (const FalhaDeArquivo& f) {
    ErroArquivo e = TraduzErro(f.erro, f.caminho);
    return Valor::TextoComAspas(TextoDeErro(msg::biblioteca::kErroDeCopy, e.numero, e.descricao));
  }
  return Valor::TextoComAspas(u"");
}

// MkDir and RmDir give one of two texts for their two usual failures.
Valor ResultadoPasta(int resultado) {
  if (resultado == 0) return Valor::TextoComAspas(u"");
  int numero;
  switch (errno) {
    case EEXIST:
    case ENOTEMPTY:
    case EACCES:
    case EPERM:
    case EROFS:
    case EBUSY:
    case EISDIR:
    case EINVAL:
      numero = 75;
      break;
    case ENOENT:
    case ENOTDIR:
    case ENAMETOOLONG:
    case ELOOP:
      numero = 76;
      break;
    default:
      numero = TraduzErro(errno).numero;
  }
  const char16_t* texto = numero == 75   ? msg::biblioteca::kPastaExisteOuNegada
                          : numero == 76 ? msg::biblioteca::kPastaNaoEncontrada
                                         : u"";
  return Valor::TextoComAspas(TextoDeErro(msg::biblioteca::kErroDePasta, numero, texto));
}

Valor MkDir(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, kArgumentosArquivo);
  fs::path p = CaminhoSistema(ArgTexto(zv, a, 0));
  return ResultadoPasta(::mkdir(p.c_str(), 0777));
}

Valor RmDir(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, kArgumentosArquivo);
  fs::path p = CaminhoSistema(ArgTexto(zv, a, 0));
  return ResultadoPasta(::rmdir(p.c_str()));
}

}  // namespace

void RegistraPastas() {
  Comandos().Define(u"Directory", Directory);
  Comandos().Define(u"FindFile", FindFile);
  Comandos().Define(u"DeleteFile", DeleteFile);
  Comandos().Define(u"Copy", Copy);
  Comandos().Define(u"MkDir", MkDir);
  Comandos().Define(u"RmDir", RmDir);
}

}  // namespace zv
