// ConnectFTP, DownFileFTP and UpFileFTP: one file moved a request, through
// libcurl. ConnectFTP only keeps where to go; each transfer runs while the
// command waits, checked once a second with the window's events let in,
// and gives back the server's last reply (or what went wrong) as its text.
#include <curl/curl.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

#include "core/interpretador.h"
#include "library/arquivos.h"
#include "net/mensagens.h"
#include "net/net.h"

namespace zv {

namespace {

namespace fs = std::filesystem;

// A request's time-out: without a byte for this long it fails.
constexpr long kTempoLimiteS = 60;
constexpr int kPortaFTP = 21;

struct EstadoFTP {
  std::string servidor;  // host, or host:port
  std::string usuario, senha;
  bool conectado = false;
};

// The server's last reply line, as the transfer's header callback sees
// them go by.
size_t GuardaResposta(char* dados, size_t tamanho, size_t n, void* alvo) {
  std::string linha(dados, tamanho * n);
  while (!linha.empty() && (linha.back() == '\n' || linha.back() == '\r')) linha.pop_back();
  if (!linha.empty()) *static_cast<std::string*>(alvo) = linha;
  return tamanho * n;
}

// What a download writes: the bytes at their place in the file to be, the
// first failure kept (it can't cross libcurl), which stops the transfer.
struct Recebido {
  ArquivoTemporario* arquivo;
  int64_t posicao = 0;
  Texto falha;
};

size_t GuardaRecebido(char* dados, size_t tamanho, size_t n, void* alvo) {
  auto* r = static_cast<Recebido*>(alvo);
  try {
    r->arquivo->Grava(std::string_view(dados, tamanho * n), r->posicao);
    r->posicao += int64_t(tamanho * n);
    return tamanho * n;
  } catch (const FalhaHost& f) {
    r->falha = f.descricao;
    return 0;
  }
}

// Each part of a remote path escaped for the address; its "/" kept.
std::string CaminhoRemoto(CURL* c, const std::string& remoto) {
  std::string r;
  size_t i = 0;
  while (i <= remoto.size()) {
    size_t fim = remoto.find('/', i);
    if (fim == std::string::npos) fim = remoto.size();
    std::string parte = remoto.substr(i, fim - i);
    char* e = curl_easy_escape(c, parte.c_str(), int(parte.size()));
    r += e ? e : "";
    curl_free(e);
    if (fim < remoto.size()) r += '/';
    i = fim + 1;
  }
  return r;
}

std::string Endereco(CURL* c, const EstadoFTP& e, const Texto& remoto) {
  std::string s = e.servidor;
  if (s.rfind("ftp://", 0) == 0) s = s.substr(6);
  while (!s.empty() && s.back() == '/') s.pop_back();
  if (s.find(':') == std::string::npos) s += ":" + std::to_string(kPortaFTP);
  std::string r = Utf8(CaminhoPlataforma(remoto));
  // A path from the root is written with "%2F" so that the server doesn't
  // take it from the login folder.
  if (!r.empty() && r[0] == '/') return "ftp://" + s + "/%2F" + CaminhoRemoto(c, r.substr(1));
  return "ftp://" + s + "/" + CaminhoRemoto(c, r);
}

struct Curl {
  CURL* c = curl_easy_init();
  CURLM* m = curl_multi_init();
  ~Curl() {
    curl_multi_remove_handle(m, c);
    curl_easy_cleanup(c);
    curl_multi_cleanup(m);
  }
};

// Runs the transfer prepared on `t`: the reply is checked once a second,
// the window's events run between; the text the command gives back.
Texto Transfere(Interpretador& zv, Curl& t) {
  std::string resposta;
  curl_easy_setopt(t.c, CURLOPT_HEADERFUNCTION, GuardaResposta);
  curl_easy_setopt(t.c, CURLOPT_HEADERDATA, &resposta);
  curl_easy_setopt(t.c, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(t.c, CURLOPT_CONNECTTIMEOUT, kTempoLimiteS);
  curl_easy_setopt(t.c, CURLOPT_LOW_SPEED_LIMIT, 1L);
  curl_easy_setopt(t.c, CURLOPT_LOW_SPEED_TIME, kTempoLimiteS);
  curl_multi_add_handle(t.m, t.c);
  CURLcode resultado = CURLE_OK;
  bool feito = false;
  auto Acabou = [&] {
    int correndo = 0;
    curl_multi_perform(t.m, &correndo);
    int n = 0;
    while (CURLMsg* m = curl_multi_info_read(t.m, &n))
      if (m->msg == CURLMSG_DONE) {
        resultado = m->data.result;
        feito = true;
      }
    return feito;
  };
  while (!Acabou()) {
    // The reply is looked at once a second, as the program's users have
    // always seen it: the whole second passes (the transfer going on all
    // the while), then the window's turn, then the look.
    auto fim = std::chrono::steady_clock::now() + std::chrono::seconds(1);
    // (Once the transfer is over, the poll has nothing to wake it: it
    // waits out the second.)
    for (;;) {
      auto falta = std::chrono::duration_cast<std::chrono::milliseconds>(fim - std::chrono::steady_clock::now());
      if (falta.count() <= 0) break;
      curl_multi_poll(t.m, nullptr, 0, int(falta.count()), nullptr);
      Acabou();
    }
    zv.Bombeia();
    if (!zv.executando) return msg::rede::kInterrompida;
  }
  if (resultado == CURLE_OK) return DeCp1252(resposta);
  // The server's own complaint when it made one, else the library's.
  if (!resposta.empty() && (resposta[0] == '4' || resposta[0] == '5')) return DeCp1252(resposta);
  return DeCp1252(curl_easy_strerror(resultado));
}

EstadoFTP& Conexao(Interpretador& zv) {
  EstadoFTP& e = zv.Estado<EstadoFTP>();
  if (!e.conectado) throw FalhaHost(msg::rede::kSemConexaoFTP);
  return e;
}

void Prepara(Curl& t, const EstadoFTP& e, const Texto& remoto) {
  if (!t.c || !t.m) throw FalhaHost(msg::rede::kSemLibcurl);
  std::string url = Endereco(t.c, e, remoto);
  curl_easy_setopt(t.c, CURLOPT_URL, url.c_str());
  curl_easy_setopt(t.c, CURLOPT_USERNAME, e.usuario.c_str());
  curl_easy_setopt(t.c, CURLOPT_PASSWORD, e.senha.c_str());
}

Valor ConnectFTP(Interpretador& zv, const Texto& args) {
  auto a = zv.SeparaArgumentos(args, 4);
  EstadoFTP& e = zv.Estado<EstadoFTP>();
  e.servidor = Utf8(Apara(zv.ValorTexto(a[0]).ComoTexto()));
  e.usuario = Utf8(zv.ValorTexto(a[1]).ComoTexto());
  e.senha = Utf8(zv.ValorTexto(a[2]).ComoTexto());
  e.conectado = true;
  return Valor();
}

Valor DownFileFTP(Interpretador& zv, const Texto& args) {
  auto a = zv.SeparaArgumentos(args, 3);
  const Texto remoto = zv.ValorTexto(a[0]).ComoTexto();
  const Texto local = zv.ValorTexto(a[1]).ComoTexto();
  EstadoFTP& e = Conexao(zv);
  Curl t;
  Prepara(t, e, remoto);
  // Into a file beside the local one, which takes its place only when the
  // whole file has come: a failed transfer leaves the old one as it was.
  ArquivoTemporario arquivo(CaminhoSistema(CaminhoNoPrograma(local, zv.dirPrograma)));
  Recebido recebido{&arquivo};
  curl_easy_setopt(t.c, CURLOPT_WRITEFUNCTION, GuardaRecebido);
  curl_easy_setopt(t.c, CURLOPT_WRITEDATA, &recebido);
  Texto resposta = Transfere(zv, t);
  if (!recebido.falha.empty()) throw FalhaHost(recebido.falha);
  long codigo = 0;
  curl_easy_getinfo(t.c, CURLINFO_RESPONSE_CODE, &codigo);
  if (codigo / 100 == 2 && !resposta.empty() && (resposta[0] == u'2' || resposta[0] == u'1')) arquivo.Confirma();
  return Valor::TextoComAspas(resposta);
}

Valor UpFileFTP(Interpretador& zv, const Texto& args) {
  auto a = zv.SeparaArgumentos(args, 3);
  const Texto local = zv.ValorTexto(a[0]).ComoTexto();
  const Texto remoto = zv.ValorTexto(a[1]).ComoTexto();
  EstadoFTP& e = Conexao(zv);
  Texto caminho = ResolveArquivo(zv, local);
  if (caminho.empty()) throw FalhaHost(msg::Formata(msg::rede::kArquivoLocalAusente, local));
  std::unique_ptr<FILE, int (*)(FILE*)> f(std::fopen(Utf8(caminho).c_str(), "rb"), std::fclose);
  if (!f) FalhaArquivo(errno, CaminhoSistema(caminho));
  std::error_code ec;
  auto tamanho = fs::file_size(CaminhoSistema(caminho), ec);
  Curl t;
  Prepara(t, e, remoto);
  curl_easy_setopt(t.c, CURLOPT_UPLOAD, 1L);
  curl_easy_setopt(t.c, CURLOPT_READDATA, f.get());
  if (!ec) curl_easy_setopt(t.c, CURLOPT_INFILESIZE_LARGE, curl_off_t(tamanho));
  return Valor::TextoComAspas(Transfere(zv, t));
}

}  // namespace

void RegistraFTP() {
  static const bool iniciado = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
  (void)iniciado;
  TabelaComandos& c = Comandos();
  c.Define(u"ConnectFTP", ConnectFTP);
  c.Define(u"DownFileFTP", DownFileFTP);
  c.Define(u"UpFileFTP", UpFileFTP);
}

}  // namespace zv
