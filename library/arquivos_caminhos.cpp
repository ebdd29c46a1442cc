// A program's file names on this platform, platform failures in the
// language's words, and the temporary file that replaces a file in one step.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "core/interpretador.h"
#include "core/valor.h"
#include "library/arquivos.h"
#include "library/arquivos_interno.h"

namespace zv {

namespace fs = std::filesystem;

Texto CaminhoPlataforma(TextoV caminho) {
  Texto t(caminho);
  if (t.size() >= 2 && t[1] == u':' && ELetra(t[0]) && t[0] < 0x80) t.erase(0, 2);
  for (auto& c : t)
    if (c == u'\\') c = u'/';
  return t;
}

fs::path CaminhoSistema(TextoV caminho) { return fs::path(Utf8(CaminhoPlataforma(caminho))); }

Texto CaminhoNoPrograma(TextoV nome, TextoV dirPrograma) {
  if (nome.empty()) return {};
  if (nome.find_first_of(u"\\/") == TextoV::npos && !(nome.size() >= 2 && nome[1] == u':')) {
    Texto dir = CaminhoPlataforma(Apara(dirPrograma));
    if (!dir.empty() && dir.back() != u'/') dir += u'/';
    return dir + Texto(nome);
  }
  // With a drive, from the root, or relative: as it stands.
  return CaminhoPlataforma(nome);
}

Texto ResolveArquivo(TextoV nome, TextoV dirPrograma) {
  Texto caminho = CaminhoNoPrograma(nome, dirPrograma);
  if (caminho.empty()) return {};
  std::error_code ec;
  fs::path p(Utf8(caminho));
  if (!fs::exists(p, ec) || fs::is_directory(p, ec)) return {};
  return caminho;
}

Texto ResolveArquivo(Interpretador& zv, TextoV nome) { return ResolveArquivo(nome, zv.dirPrograma); }

ErroArquivo TraduzErro(int erro, const fs::path& caminho) {
  switch (erro) {
    case ENOENT: {
      std::error_code ec;
      fs::path pasta = caminho.parent_path();
      if (!pasta.empty() && !fs::is_directory(pasta, ec)) return {76, falha::CaminhoNaoEncontrado};
      return {53, falha::ArquivoNaoEncontrado};
    }
    case ENOTDIR:
    case ENAMETOOLONG:
    case ELOOP:
      return {76, falha::CaminhoNaoEncontrado};
    case EACCES:
    case EPERM:
    case ETXTBSY:
    case EBUSY:
      return {70, falha::PermissaoNegada};
    case EEXIST:
      return {58, falha::ArquivoJaExiste};
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return {61, falha::DiscoCheio};
    case EMFILE:
    case ENFILE:
      return {67, falha::ArquivosDemais};
    case EISDIR:
    case EROFS:
    case ENOTEMPTY:
      return {75, falha::AcessoArquivo};
    default:
      return {57, falha::ErroES};
  }
}

FalhaDeArquivo::FalhaDeArquivo(int e, fs::path c)
    : FalhaHost(TraduzErro(e, c).descricao + u": " + U(c.string())), erro(e), caminho(std::move(c)) {}

void FalhaArquivo(int erro, const fs::path& caminho) { throw FalhaDeArquivo(erro, caminho); }

std::string LeTrecho(int fd, int64_t posicao, int64_t tamanho, const fs::path& caminho) {
  std::string dados(static_cast<size_t>(tamanho), '\0');
  size_t lido = 0;
  while (lido < dados.size()) {
    ssize_t n = ::pread(fd, dados.data() + lido, dados.size() - lido, posicao + static_cast<int64_t>(lido));
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) FalhaArquivo(errno, caminho);
    if (n == 0) break;
    lido += static_cast<size_t>(n);
  }
  dados.resize(lido);
  return dados;
}

void GravaTrecho(int fd, std::string_view bytes, int64_t posicao, const fs::path& caminho) {
  while (!bytes.empty()) {
    ssize_t n = ::pwrite(fd, bytes.data(), bytes.size(), posicao);
    if (n < 0 && errno == EINTR) continue;
    // A file opened for reading only says so here.
    if (n < 0) FalhaArquivo(errno == EBADF ? EACCES : errno, caminho);
    bytes.remove_prefix(static_cast<size_t>(n));
    posicao += n;
  }
}

ArquivoTemporario::ArquivoTemporario(const fs::path& destino) : destino_(destino) {
  static unsigned contador = 0;
  for (int tentativa = 0; tentativa < 100; ++tentativa) {
    fs::path t = destino;
    t += ".zvtmp" + std::to_string(::getpid()) + "_" + std::to_string(++contador);
    fd_ = ::open(t.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd_ >= 0) {
      temporario_ = t;
      break;
    }
    if (errno != EEXIST) FalhaArquivo(errno, destino);
  }
  if (fd_ < 0) FalhaArquivo(EEXIST, destino);
  // A replaced file keeps its permissions.
  struct stat st;
  if (::stat(destino.c_str(), &st) == 0) ::fchmod(fd_, st.st_mode & 07777);
}

ArquivoTemporario::~ArquivoTemporario() {
  if (fd_ >= 0) ::close(fd_);
  if (!temporario_.empty()) ::unlink(temporario_.c_str());
}

void ArquivoTemporario::Grava(std::string_view bytes, int64_t posicao) { GravaTrecho(fd_, bytes, posicao, destino_); }

void ArquivoTemporario::CopiaDe(int origem) {
  constexpr int64_t kBloco = 1 << 16;
  for (int64_t posicao = 0;; posicao += kBloco) {
    std::string bloco = LeTrecho(origem, posicao, kBloco, destino_);
    Grava(bloco, posicao);
    if (static_cast<int64_t>(bloco.size()) < kBloco) break;
  }
}

void ArquivoTemporario::Confirma() {
  if (::fsync(fd_) != 0) FalhaArquivo(errno, destino_);
  int r = ::close(fd_);
  fd_ = -1;
  if (r != 0) FalhaArquivo(errno, destino_);
  if (::rename(temporario_.c_str(), destino_.c_str()) != 0) FalhaArquivo(errno, destino_);
  temporario_.clear();
}

void GravaArquivoSeguro(const fs::path& destino, std::string_view bytes) {
  ArquivoTemporario t(destino);
  t.Grava(bytes, 0);
  t.Confirma();
}

std::string LeArquivoInteiro(const fs::path& caminho) {
  Descritor arquivo(::open(caminho.c_str(), O_RDONLY | O_CLOEXEC));
  if (arquivo.fd < 0) FalhaArquivo(errno, caminho);
  struct stat st;
  if (::fstat(arquivo.fd, &st) != 0) FalhaArquivo(errno, caminho);
  if (S_ISDIR(st.st_mode)) FalhaArquivo(EISDIR, caminho);
  return LeTrecho(arquivo.fd, 0, st.st_size, caminho);
}

}  // namespace zv
