#include "environment/documento.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <system_error>
#include <unistd.h>

#include "core/fonte.h"
#include "core/texto.h"

namespace zv {

namespace fs = std::filesystem;

bool Documento::ENovo() const { return Maiusculas(nomeAtual) == u"NEW.ZVC"; }

void Documento::Limpa() {
  fonte = FontePrograma();
}

Texto Documento::JuntaCodigos() const { return zv::JuntaCodigos(fonte); }

Documento::Leitura Documento::Le(const fs::path& caminho) {
  std::error_code ec;
  if (!fs::is_regular_file(caminho, ec)) return Leitura::Ilegivel;
  uintmax_t tamanho = fs::file_size(caminho, ec);
  if (ec) return Leitura::Ilegivel;
  if (tamanho > kMaiorFonte) return Leitura::Grande;
  std::ifstream f(caminho, std::ios::binary);
  if (!f) return Leitura::Ilegivel;
  std::string bytes((std::istreambuf_iterator<char>(f)), std::istreambuf_iterator<char>());
  if (f.bad()) return Leitura::Ilegivel;
  if (bytes.find('\0') != std::string::npos) return Leitura::Binaria;
  // The editor ends its lines with CR LF; a file written elsewhere with LF
  // comes in the same way.
  Texto texto = NormalizaFimDeLinha(DeBytesArquivo(bytes));
  return SeparaCodigos(texto, fonte) ? Leitura::Lida : Leitura::NaoEFonte;
}

bool Documento::GravaArquivo(const fs::path& caminho, const Texto& texto, bool textoMostradoVazio, bool* escrito,
                             std::string& erro) {
  if (escrito) *escrito = false;
  if (textoMostradoVazio || caminho.empty()) return true;
  // Written beside and renamed over the old file, so that a failed write
  // leaves the last saved program whole.
  std::error_code ec0;
  if (fs::exists(caminho, ec0) && access(caminho.c_str(), W_OK) != 0) {
    erro = std::strerror(errno);
    return false;
  }
  fs::path temporario = caminho;
  temporario += ".saving";
  {
    std::ofstream f(temporario, std::ios::binary | std::ios::trunc);
    if (!f) {
      erro = std::strerror(errno);
      return false;
    }
    std::string bytes = ParaCp1252(texto);
    f.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    f.close();
    if (!f) {
      erro = std::strerror(errno);
      std::error_code ec;
      fs::remove(temporario, ec);
      return false;
    }
  }
  std::error_code ec;
  fs::rename(temporario, caminho, ec);
  if (ec) {
    erro = ec.message();
    fs::remove(temporario, ec);
    return false;
  }
  if (escrito) *escrito = true;
  return true;
}

void SeparaCaminho(const fs::path& caminho, Texto& pasta, Texto& nome) {
  std::string s = caminho.string();
  size_t barra = s.find_last_of('/');
  pasta = U(barra == std::string::npos ? std::string() : s.substr(0, barra + 1));
  nome = U(barra == std::string::npos ? s : s.substr(barra + 1));
}

}  // namespace zv
