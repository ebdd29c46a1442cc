// Mending a damaged record file (zvdb repair): what reads whole is kept in
// its place, the rest is told and dropped, and the result replaces the file
// through a new file and a rename, the old one kept beside it.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>

#include "data/registros_arquivo.h"
#include "data/embaralhamento.h"

namespace zv {

namespace fs = std::filesystem;

namespace {

struct Ao {
  int fd;
  ~Ao() {
    if (fd >= 0) ::close(fd);
  }
};

Texto Erro(const char* acao, const fs::path& p) {
  return U(std::string(acao) + " " + p.string() + ": " + std::strerror(errno));
}

bool EscreveTudo(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    ssize_t n = ::write(fd, bytes.data(), bytes.size());
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    bytes.remove_prefix(size_t(n));
  }
  return true;
}

// FILE.damaged, or FILE.damaged.2 and on when that is taken.
fs::path NomeCopia(const fs::path& arquivo) {
  std::error_code ec;
  fs::path p = arquivo.string() + ".damaged";
  for (int i = 2; fs::exists(p, ec) || fs::is_symlink(p, ec); ++i) p = arquivo.string() + ".damaged." + std::to_string(i);
  return p;
}

}  // namespace

ResultadoReparo ReparaArquivo(const fs::path& arquivo, const Estrutura* declarada, Reparo& r, Texto& problema) {
  r = Reparo{};
  std::error_code ec;
  if (!fs::is_regular_file(arquivo, ec)) {
    problema = msg::dados::kNaoExiste;
    return ResultadoReparo::Impossivel;
  }
  Ao fd{::open(arquivo.c_str(), O_RDWR | O_CLOEXEC)};
  if (fd.fd < 0) {
    problema = Erro(msg::dados::kNaoAbre, arquivo);
    return ResultadoReparo::Impossivel;
  }
  // The same lock the programs take to change the count: none of them can
  // add while the file is read and replaced.
  struct flock fl {};
  fl.l_type = F_WRLCK;
  fl.l_whence = SEEK_SET;
  fl.l_start = 0;
  fl.l_len = kTamanhoTrava;
  if (::fcntl(fd.fd, F_OFD_SETLK, &fl) != 0) {
    problema = msg::dados::kEmUso;
    return ResultadoReparo::Impossivel;
  }
  std::string bytes;
  {
    std::ifstream f(arquivo, std::ios::binary);
    bytes.assign(std::istreambuf_iterator<char>(f), {});
    if (f.bad()) {
      problema = msg::dados::kIlegivel;
      return ResultadoReparo::Impossivel;
    }
  }

  const std::string original = bytes;
  CabecalhoParcial h;
  bool curto = bytes.size() < size_t(kTamanhoCabecalho);
  if (curto) {
    // What there is of the header is read as if blanks followed: a file cut
    // inside its header may still hold its field table.
    r.relato.push_back(msg::Formata(msg::dados::kCurtoDemaisBytes, InteiroParaTexto(int64_t(bytes.size())),
                                    InteiroParaTexto(kTamanhoCabecalho)));
    bytes.resize(size_t(kTamanhoCabecalho), ' ');
  }
  LeCabecalhoParcial(bytes, h);
  Cabecalho c = h.c;
  bool mexido = curto || !h.problemas.empty();
  if (curto) {
    // No record survives a cut inside the header; the blanks added stand
    // for the header's last byte.
    bytes.resize(size_t(kInicioRegistros));
    h.total = false;
  }
  {
    if (!h.campos) {
      if (!declarada) {
        problema = msg::dados::kTabelaSemDeclaracao;
        return ResultadoReparo::Impossivel;
      }
      r.relato.push_back(msg::dados::kTabelaRefeita);
      Texto nome = c.estrutura.descritor;
      c.estrutura = *declarada;
      c.estrutura.descritor = nome;
    }
    // Each slot rebuilt below says so itself: the name, the count, the
    // password, and the field table when it can't be read (its finding is
    // then the last).
    for (const Texto& p : h.problemas)
      if (p != msg::dados::kNomeIlegivel && p != msg::dados::kContagemIlegivel && p != msg::dados::kSenhaIlegivel &&
          (h.campos || p != h.problemas.back()))
        r.relato.push_back(p);
  }
  // We hold the lock: a busy byte is a dead program's, and the mended file
  // starts free. A busy byte alone is no reason to mend a file.
  c.trava = kLivre;
  if (!h.descritor) {
    c.estrutura.descritor = U(arquivo.stem().string()).substr(0, size_t(kMaxNome));
    r.relato.push_back(msg::Formata(msg::dados::kNomeDoArquivo, c.estrutura.descritor));
  }
  if (!h.criacao) c.criacao = h.declaracao ? c.declaracao : Texto();
  if (!h.declaracao) c.declaracao = c.criacao;
  if (!h.senha) r.relato.push_back(msg::dados::kSenhaDescartada);
  if (Texto p = c.estrutura.Problema(); !p.empty()) {
    problema = msg::Formata(msg::dados::kCamposInusaveis, p);
    return ResultadoReparo::Impossivel;
  }

  // The records: those the count and the length both hold.
  const int64_t tam = c.estrutura.tamanhoRegistro;
  const int64_t comprimento = int64_t(bytes.size());
  const int64_t inteiros = comprimento > kInicioRegistros ? (comprimento - kInicioRegistros) / tam : 0;
  int64_t total = h.total ? std::min<int64_t>(c.total, inteiros) : inteiros;
  total = std::min<int64_t>(total, kMaxRegistros);
  if (h.total && c.total > inteiros) {
    r.relato.push_back(
        msg::Formata(msg::dados::kRegistrosCortados, InteiroParaTexto(inteiros), InteiroParaTexto(c.total - 1)));
    mexido = true;
  } else if (!h.total) {
    r.relato.push_back(msg::Formata(msg::dados::kContagemPeloComprimento, InteiroParaTexto(total)));
  }
  const int64_t fim = total == 0 ? kTamanhoCabecalho : kInicioRegistros + total * tam;
  if (comprimento > fim) {
    // Whole records behind the count alone are no damage (UpdateRecord at
    // the count leaves one); they go only with a file mended for another
    // reason.
    if ((comprimento - fim) % tam != 0) mexido = true;
    r.relato.push_back(msg::Formata(msg::dados::kSobraDescartada, InteiroParaTexto(comprimento - fim)));
  }
  std::string apagado = Embaralha(kMarcaApagado);
  apagado.resize(size_t(tam), ' ');
  std::string registros;
  registros.reserve(size_t(total * tam));
  for (int64_t n = 0; n < total; ++n) {
    std::string_view reg = std::string_view(bytes).substr(size_t(kInicioRegistros + n * tam), size_t(tam));
    Texto p = ProblemaRegistro(c.estrutura, reg, int32_t(n));
    if (p.empty()) {
      registros.append(reg);
      continue;
    }
    mexido = true;
    if (tam < int64_t(Embaralha(kMarcaApagado).size())) {
      // Too short to carry the deleted mark: only dropping it is left, and
      // the records behind move up.
      r.relato.push_back(msg::Formata(msg::dados::kRegistroDescartado, p));
      continue;
    }
    r.relato.push_back(msg::Formata(msg::dados::kRegistroMarcado, p));
    registros.append(apagado);
    ++r.marcados;
  }
  if (!mexido) {
    r.relato.clear();
    return ResultadoReparo::Sao;
  }

  r.mantidos = int32_t(registros.size() / size_t(tam));
  c.total = r.mantidos;
  std::string cab;
  if (h.problemas.empty() && bytes.size() >= size_t(kTamanhoCabecalho)) {
    // A sound header keeps its bytes; only the count and the lock change.
    cab = bytes.substr(0, size_t(kTamanhoCabecalho));
    cab[0] = kLivre;
    std::string trava = cab.substr(0, size_t(kTamanhoTrava));
    PoeContagem(trava, c.total);
    cab.replace(0, trava.size(), trava);
  } else {
    cab = MontaCabecalho(c);
  }
  // Record 0 begins on the header's last byte.
  if (!registros.empty()) cab.resize(size_t(kInicioRegistros));
  cab += registros;

  struct stat st;
  ::fstat(fd.fd, &st);
  fs::path novo = arquivo.string() + ".repair";
  fs::remove(novo, ec);
  Ao saida{::open(novo.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, st.st_mode & 07777)};
  if (saida.fd < 0) {
    problema = Erro(msg::dados::kNaoCria, novo);
    return ResultadoReparo::Impossivel;
  }
  if (!EscreveTudo(saida.fd, cab) || ::fsync(saida.fd) != 0) {
    problema = Erro(msg::dados::kNaoGrava, novo);
    fs::remove(novo, ec);
    return ResultadoReparo::Impossivel;
  }
  // The copy is a file of its own, not a second name: the damaged file then
  // loses its last name at the rename, and a program that has it open sees
  // that it was replaced, as after a compaction.
  r.copia = NomeCopia(arquivo);
  {
    Ao copia{::open(r.copia.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, st.st_mode & 07777)};
    if (copia.fd < 0 || !EscreveTudo(copia.fd, original) || ::fsync(copia.fd) != 0) {
      problema = Erro(msg::dados::kNaoGuardaCopia, r.copia);
      fs::remove(novo, ec);
      if (copia.fd >= 0) fs::remove(r.copia, ec);
      return ResultadoReparo::Impossivel;
    }
  }
  if (::rename(novo.c_str(), arquivo.c_str()) != 0) {
    problema = Erro(msg::dados::kNaoPoeReparado, arquivo);
    fs::remove(novo, ec);
    fs::remove(r.copia, ec);
    return ResultadoReparo::Impossivel;
  }
  return ResultadoReparo::Reparado;
}

}  // namespace zv
