#include "environment/extras.h"

#include <fstream>
#include <sstream>
#include <system_error>

#include "core/fonte.h"
#include "environment/documento.h"
#include "environment/settings/armazem_config.h"

namespace zv {

namespace fs = std::filesystem;

namespace {

constexpr char16_t kAssinatura[] = u"#ZVR#";
constexpr size_t kTamAssinatura = 5;

struct Chave {
  const char16_t* nome;
  bool Extras::*campo;
};
constexpr Chave kChaves[] = {{u"MarcaErro", &Extras::marcaErro},
                             {u"PainelVariaveis", &Extras::variaveis},
                             {u"PontosParada", &Extras::pontosParada},
                             {u"CopiaRecuperacao", &Extras::recuperacao}};

}  // namespace

Extras LeExtras(const fs::path& dirConfig) {
  Extras e;
  // Missing keys mean on: a first start has every addition.
  for (const Chave& c : kChaves) e.*c.campo = LeConfig(dirConfig, c.nome) != u"0";
  return e;
}

void GravaExtras(const fs::path& dirConfig, const Extras& e) {
  for (const Chave& c : kChaves) GravaConfig(dirConfig, c.nome, e.*c.campo ? u"1" : u"0");
}

fs::path ArquivoRecuperacao(const fs::path& dirConfig) { return dirConfig / "zv.recovery"; }

bool GravaRecuperacao(const fs::path& arquivo, const Texto& caminhoDoc, const FontePrograma& fonte,
                      std::string& erro) {
  Texto texto = Texto(kAssinatura) + caminhoDoc + u"\r\n" + JuntaCodigos(fonte);
  bool escrito = false;
  return Documento::GravaArquivo(arquivo, texto, false, &escrito, erro);
}

Recuperacao LeRecuperacao(const fs::path& arquivo, Texto& caminhoDoc, FontePrograma& fonte) {
  std::error_code ec;
  if (!fs::is_regular_file(arquivo, ec)) return Recuperacao::Nenhuma;
  if (fs::file_size(arquivo, ec) > Documento::kMaiorFonte + 4096) return Recuperacao::Danificada;
  std::ifstream in(arquivo, std::ios::binary);
  std::stringstream s;
  s << in.rdbuf();
  if (!in && !in.eof()) return Recuperacao::Danificada;
  Texto t = DeCp1252(s.str());
  if (t.compare(0, kTamAssinatura, kAssinatura) != 0) return Recuperacao::Danificada;
  size_t fim = t.find(u"\r\n");
  if (fim == NPOS) return Recuperacao::Danificada;
  FontePrograma lida;
  if (!SeparaCodigos(TextoV(t).substr(fim + 2), lida)) return Recuperacao::Danificada;
  caminhoDoc = t.substr(kTamAssinatura, fim - kTamAssinatura);
  fonte = std::move(lida);
  return Recuperacao::Lida;
}

}  // namespace zv
