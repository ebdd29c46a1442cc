#include "builder/compilador.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "builder/mensagens.h"
#include "core/fonte.h"

namespace zv {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void Falha(int numero, const std::string& descricao) { throw FalhaCompilacao{numero, descricao}; }

// The platform's failure in the language's numbers and words.
[[noreturn]] void FalhaDoSistema(int erro, const std::string& caminho) {
  int numero = erro == ENOENT ? 53 : erro == EACCES || erro == EPERM ? 70 : erro == ENOSPC ? 61 : 75;
  Falha(numero, std::string(numero == 53   ? msg::compilador::kArquivoNaoEncontrado
                            : numero == 70 ? msg::compilador::kPermissaoNegada
                            : numero == 61 ? msg::compilador::kDiscoCheio
                                           : msg::compilador::kErroDeAcesso) +
                    ": " + caminho);
}

std::string Le(const std::string& caminho) {
  std::ifstream f(caminho, std::ios::binary);
  if (!f) FalhaDoSistema(errno ? errno : ENOENT, caminho);
  std::string b((std::istreambuf_iterator<char>(f)), std::istreambuf_iterator<char>());
  if (f.bad()) FalhaDoSistema(errno, caminho);
  return b;
}

void Grava(const std::string& caminho, const std::string& bytes, bool acrescenta) {
  std::ofstream f(caminho, std::ios::binary | (acrescenta ? std::ios::app : std::ios::trunc));
  if (!f) FalhaDoSistema(errno ? errno : EACCES, caminho);
  f.write(bytes.data(), std::streamsize(bytes.size()));
  f.close();
  if (!f) FalhaDoSistema(errno ? errno : EIO, caminho);
}

}  // namespace

void Compila(const PedidoCompilacao& p) {
  std::error_code ec;
  // An older target goes first; if it can't, the copy below says so.
  if (fs::exists(p.executavel, ec)) fs::remove(p.executavel, ec);
  std::string imagem = Le(p.imagem);
  if (AchaRecursos(imagem) == std::string::npos) Falha(5, msg::compilador::kImagemSemRecursos + p.imagem);
  if (!p.icone.empty() && !TrocaIcone(imagem, Le(p.icone)))
    Falha(5, msg::compilador::kIconeGrande + p.icone);
  for (size_t i = 0; i < kVersoes; ++i) GravaVersao(imagem, Versao(i), p.versoes[i]);
  Grava(p.executavel, imagem, false);
  fs::permissions(p.executavel, fs::perms::owner_exec | fs::perms::group_exec | fs::perms::others_exec,
                  fs::perm_options::add, ec);
  // The program as it was saved, not as the editor holds it.
  if (p.fonte.empty()) FalhaDoSistema(ENOENT, p.fonte);
  std::string bytes = Le(p.fonte);
  Texto texto = NormalizaFimDeLinha(DeBytesArquivo(bytes));
  FontePrograma fonte;
  if (!ComecaCom(texto, kAssinaturaFonte) || !SeparaCodigos(texto, fonte)) fonte.textos[0] = texto;
  Grava(p.executavel, MontaBloco(fonte, p.fonte), true);
}

bool TrocaIconeDoArquivo(const std::string& icone, const std::string& executavel) {
  try {
    std::string imagem = Le(executavel);
    if (!TrocaIcone(imagem, Le(icone))) return false;
    // Written whole into a file beside it that takes its place: a failure
    // halfway leaves the executable as it was.
    std::string novo = executavel + ".icon-tmp";
    Grava(novo, imagem, false);
    std::error_code ec;
    fs::permissions(novo, fs::status(executavel, ec).permissions(), ec);
    fs::rename(novo, executavel, ec);
    if (ec) {
      fs::remove(novo, ec);
      return false;
    }
    return true;
  } catch (const FalhaCompilacao&) {
    return false;
  }
}

}  // namespace zv
