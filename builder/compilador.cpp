#include "builder/compilador.h"

#include <filesystem>

#include "builder/mensagens.h"
#include "core/fonte.h"
#include "library/arquivos.h"

namespace zv {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void Falha(int numero, const std::string& descricao) { throw FalhaCompilacao{numero, descricao}; }

// A file's failure as the Compile button reports it: the language's number
// and words, and the path.
FalhaCompilacao DeArquivo(const FalhaDeArquivo& f) { return {TraduzErro(f.erro, f.caminho).numero, Utf8(f.descricao)}; }

void TornaExecutavel(const std::string& caminho) {
  std::error_code ec;
  fs::permissions(caminho, fs::perms::owner_exec | fs::perms::group_exec | fs::perms::others_exec,
                  fs::perm_options::add, ec);
}

}  // namespace

void Compila(const PedidoCompilacao& p) {
  try {
    std::error_code ec;
    // An older target goes first; if it can't, writing it below says so.
    if (fs::exists(p.executavel, ec)) fs::remove(p.executavel, ec);
    std::string imagem = LeArquivoInteiro(p.imagem);
    if (AchaRecursos(imagem) == std::string::npos) Falha(5, msg::compilador::kImagemSemRecursos + p.imagem);
    if (!p.icone.empty() && !TrocaIcone(imagem, LeArquivoInteiro(p.icone)))
      Falha(5, msg::compilador::kIconeGrande + p.icone);
    for (size_t i = 0; i < kVersoes; ++i) GravaVersao(imagem, Versao(i), p.versoes[i]);
    GravaArquivoSeguro(p.executavel, imagem);
    TornaExecutavel(p.executavel);
    // The program as it was saved, not as the editor holds it.
    Texto texto = NormalizaFimDeLinha(DeBytesArquivo(LeArquivoInteiro(p.fonte)));
    FontePrograma fonte;
    if (!ComecaCom(texto, kAssinaturaFonte) || !SeparaCodigos(texto, fonte)) fonte.textos[0] = texto;
    GravaArquivoSeguro(p.executavel, imagem + MontaBloco(fonte, p.fonte));
  } catch (const FalhaDeArquivo& f) {
    throw DeArquivo(f);
  }
}

bool TrocaIconeDoArquivo(const std::string& icone, const std::string& executavel) {
  try {
    std::string imagem = LeArquivoInteiro(executavel);
    if (!TrocaIcone(imagem, LeArquivoInteiro(icone))) return false;
    // A failure halfway leaves the executable as it was.
    GravaArquivoSeguro(executavel, imagem);
    return true;
  } catch (const FalhaHost&) {
    return false;
  }
}

}  // namespace zv
