#include "builder/embutido.h"

#include <cstring>
#include <fstream>

#include "data/embaralhamento.h"

namespace zv {

namespace {

// The part of a path behind its last separator.
std::string_view UltimaParte(std::string_view caminho) {
  size_t p = caminho.find_last_of("\\/");
  return p == std::string_view::npos ? caminho : caminho.substr(p + 1);
}

uint64_t Le(std::string_view b, size_t pos, size_t tamanho) {
  uint64_t v = 0;
  for (size_t i = 0; i < tamanho; ++i) v |= uint64_t(uint8_t(b[pos + i])) << (8 * i);
  return v;
}

// One scrambled piece at `pos`, its text out; false when it runs past the end.
bool LePeca(std::string_view b, size_t& pos, std::string& texto) {
  if (pos + 5 > b.size()) return false;
  uint64_t n = Le(b, pos, 4);
  if (n == 0 || pos + 4 + n > b.size()) return false;
  if (!DesembaralhaSeguro(b.substr(pos, 4 + n), texto)) return false;
  pos += 4 + n;
  return true;
}

bool Espera(std::string_view b, size_t& pos, std::string_view marca) {
  if (b.substr(pos, marca.size()) != marca) return false;
  pos += marca.size();
  return true;
}

// Where a file's ELF image ends (its section headers close it) and the
// file's size; false when it isn't a 64-bit ELF file or can't be read.
bool FimDaImagem(std::ifstream& f, uint64_t& fim, uint64_t& tamanho) {
  std::string cabecalho(64, '\0');
  if (!f.read(cabecalho.data(), 64)) return false;
  std::string_view h(cabecalho);
  if (h.substr(0, 4) != "\x7f" "ELF" || h[4] != 2) return false;
  fim = Le(h, 0x28, 8) + Le(h, 0x3A, 2) * Le(h, 0x3C, 2);
  f.seekg(0, std::ios::end);
  tamanho = uint64_t(f.tellg());
  return fim <= tamanho;
}

}  // namespace

std::string MontaPrograma(const FontePrograma& fonte) {
  std::string p = Embaralha(ParaCp1252(fonte.textos[0]));
  p += kFimCodigo;
  for (size_t i = 1; i <= 6; ++i) {
    if (fonte.textos[i].empty()) continue;
    p += Embaralha(ParaCp1252(fonte.nomes[i - 1]));
    p += kFimNomeCodigo;
    p += Embaralha(ParaCp1252(fonte.textos[i]));
    p += kFimCodigo;
  }
  return p;
}

std::string MontaBloco(const FontePrograma& fonte, std::string_view caminhoFonte) {
  std::string nome = ParaCp1252(Maiusculas(U(UltimaParte(caminhoFonte))));
  std::string b(kInicioBloco);
  b += nome.substr(0, nome.size() >= 4 ? nome.size() - 4 : 0);
  b += kFimNome;
  b += MontaPrograma(fonte);
  b += kFimBloco;
  b += nome;
  return b;
}

bool TemBloco(const std::string& caminho) {
  std::ifstream f(caminho, std::ios::binary);
  uint64_t fim = 0, tamanho = 0;
  return FimDaImagem(f, fim, tamanho) && fim < tamanho;
}

bool LeBlocoDoArquivo(const std::string& caminho, FontePrograma& fonte, std::string& nomeArquivo) {
  std::ifstream f(caminho, std::ios::binary);
  uint64_t fim = 0, tamanho = 0;
  if (!FimDaImagem(f, fim, tamanho) || fim == tamanho) return false;
  std::string bloco(tamanho - fim, '\0');
  f.seekg(std::streamoff(fim));
  if (!f.read(bloco.data(), std::streamsize(bloco.size()))) return false;
  return LeSoBloco(bloco, fonte, nomeArquivo);
}

bool LeSoBloco(std::string_view b, FontePrograma& fonte, std::string& nomeArquivo) {
  size_t pos = 0;
  if (!Espera(b, pos, kInicioBloco)) return false;
  size_t fimNome = b.find(kFimNome, pos);
  if (fimNome == std::string_view::npos) return false;
  pos = fimNome + kFimNome.size();
  FontePrograma f;
  std::string texto, nome;
  if (!LePeca(b, pos, texto) || !Espera(b, pos, kFimCodigo)) return false;
  f.textos[0] = DeCp1252(texto);
  for (size_t i = 1; i <= 6 && !b.substr(pos).starts_with(kFimBloco); ++i) {
    if (!LePeca(b, pos, nome) || !Espera(b, pos, kFimNomeCodigo) || !LePeca(b, pos, texto) ||
        !Espera(b, pos, kFimCodigo))
      return false;
    f.nomes[i - 1] = DeCp1252(nome);
    f.textos[i] = DeCp1252(texto);
  }
  if (!Espera(b, pos, kFimBloco)) return false;
  nomeArquivo = std::string(b.substr(pos));
  fonte = f;
  return true;
}

// ---- Resources ---------------------------------------------------------------------------

size_t AchaRecursos(std::string_view imagem) {
  // Made at run time: a whole literal of the signature would stand in the
  // bytes of any image this code is linked into, ahead of the real area.
  static const std::string assinatura = std::string(kAssinaturaRecursos.substr(0, 6)) +
                                        std::string(kAssinaturaRecursos.substr(6));
  size_t p = imagem.find(assinatura);
  if (p == std::string_view::npos || p + kTamanhoRecursos > imagem.size()) return std::string_view::npos;
  return p;
}

bool GravaVersao(std::string& imagem, Versao v, std::string_view texto) {
  size_t p = AchaRecursos(imagem);
  if (p == std::string::npos) return false;
  char* campo = imagem.data() + p + 16 + size_t(v) * kTamanhoVersao;
  std::memset(campo, 0, kTamanhoVersao);
  std::memcpy(campo, texto.data(), std::min(texto.size(), kTamanhoVersao - 1));
  return true;
}

bool TrocaIcone(std::string& imagem, std::string_view icone) {
  size_t p = AchaRecursos(imagem);
  if (p == std::string::npos || icone.empty() || icone.size() > kTamanhoIcone) return false;
  char* area = imagem.data() + p + 16 + kVersoes * kTamanhoVersao;
  uint32_t n = uint32_t(icone.size());
  for (int i = 0; i < 4; ++i) area[i] = char((n >> (8 * i)) & 0xFF);
  std::memset(area + 4, 0, kTamanhoIcone);
  std::memcpy(area + 4, icone.data(), icone.size());
  return true;
}

std::string LeVersao(std::string_view r, Versao v) {
  if (r.size() < kTamanhoRecursos) return {};
  std::string_view campo = r.substr(16 + size_t(v) * kTamanhoVersao, kTamanhoVersao);
  return std::string(campo.substr(0, campo.find('\0')));
}

std::string_view LeIcone(std::string_view r) {
  if (r.size() < kTamanhoRecursos) return {};
  size_t base = 16 + kVersoes * kTamanhoVersao;
  uint64_t n = Le(r, base, 4);
  if (n == 0 || n > kTamanhoIcone) return {};
  return r.substr(base + 4, n);
}

}  // namespace zv
