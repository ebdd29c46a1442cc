#include "runtime/headless_host.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

namespace zv {

std::string EscapaJson(TextoV texto) {
  std::string u = Utf8(texto), s;
  s.reserve(u.size() + 8);
  for (unsigned char c : u) {
    switch (c) {
      case '"':
        s += "\\\"";
        break;
      case '\\':
        s += "\\\\";
        break;
      case '\r':
        s += "\\r";
        break;
      case '\n':
        s += "\\n";
        break;
      case '\t':
        s += "\\t";
        break;
      default:
        if (c < 0x20) {
          char b[8];
          std::snprintf(b, sizeof b, "\\u%04x", c);
          s += b;
        } else {
          s += static_cast<char>(c);
        }
    }
  }
  return s;
}

const char* NomeResposta(Resposta r) {
  switch (r) {
    case Resposta::OK:
      return "OK";
    case Resposta::Cancel:
      return "Cancel";
    case Resposta::Yes:
      return "Yes";
    case Resposta::No:
      return "No";
  }
  return "OK";
}

bool LeResposta(std::string_view s, Resposta& r) {
  std::string m;
  for (char c : s) m += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  if (m == "ok")
    r = Resposta::OK;
  else if (m == "cancel")
    r = Resposta::Cancel;
  else if (m == "yes")
    r = Resposta::Yes;
  else if (m == "no")
    r = Resposta::No;
  else
    return false;
  return true;
}

std::string CaixaJson(const Caixa& c, Resposta resposta) {
  static const char* const kTipos[] = {"info", "critical", "question", "error", "step"};
  static const char* const kBotoes[] = {"OK", "OKCancel", "YesNo"};
  std::string s = "{\"box\":\"";
  s += kTipos[static_cast<int>(c.tipo)];
  s += "\",\"title\":\"" + EscapaJson(c.titulo) + "\",\"text\":\"" + EscapaJson(c.texto) + "\",\"buttons\":\"";
  s += kBotoes[static_cast<int>(c.botoes)];
  s += "\",\"answer\":\"";
  s += NomeResposta(resposta);
  s += "\"}";
  return s;
}

namespace {

bool Cabe(Resposta r, Botoes b) {
  switch (b) {
    case Botoes::OK:
      return r == Resposta::OK;
    case Botoes::OKCancel:
      return r == Resposta::OK || r == Resposta::Cancel;
    case Botoes::YesNo:
      return r == Resposta::Yes || r == Resposta::No;
  }
  return false;
}

}  // namespace

Resposta HostConsole::MostraCaixa(const Caixa& caixa) {
  Resposta r = caixa.padrao;
  if (!Cabe(r, caixa.botoes)) r = caixa.botoes == Botoes::YesNo ? Resposta::No : Resposta::OK;
  // A scripted answer that isn't one of the box's buttons is used up, and
  // the default button stands.
  std::string texto;
  Resposta dada;
  if (ProximaResposta(texto) && LeResposta(texto, dada) && Cabe(dada, caixa.botoes)) r = dada;
  if (!mudo) {
    std::string linha = CaixaJson(caixa, r);
    linha += '\n';
    std::fwrite(linha.data(), 1, linha.size(), saida_);
    std::fflush(saida_);
  }
  return r;
}

bool HostConsole::ProximaResposta(std::string& r) {
  if (proximaResposta_ >= respostas.size()) return false;
  r = respostas[proximaResposta_++];
  return true;
}

void HostConsole::EscreveLinha(const std::string& linha) {
  if (mudo) return;
  std::string l = linha + '\n';
  std::fwrite(l.data(), 1, l.size(), saida_);
  std::fflush(saida_);
}

void HostConsole::Bombeia() {
  // A tick that reaches a Wait pumps again: each timer fires at most once a
  // pump, and not inside its own tick.
  if (bombeando_) return;
  bombeando_ = true;
  auto agora = std::chrono::steady_clock::now();
  std::vector<int> devidos;
  for (auto& [id, t] : timers_)
    if (agora >= t.proximo) devidos.push_back(id);
  for (int id : devidos) {
    auto it = timers_.find(id);
    if (it == timers_.end()) continue;
    it->second.proximo = agora + it->second.intervalo;
    auto tique = it->second.tique;
    bombeando_ = false;
    tique();
    bombeando_ = true;
  }
  bombeando_ = false;
}

void HostConsole::Dorme(int milissegundos) {
  if (milissegundos > 0) std::this_thread::sleep_for(std::chrono::milliseconds(milissegundos));
}

void HostConsole::Escreve(const Texto& texto) {
  if (mudo) return;
  std::string s = Utf8(texto);
  s += '\n';
  std::fwrite(s.data(), 1, s.size(), saida_);
  std::fflush(saida_);
}

void HostConsole::IniciaTimer(int id, int milissegundos, std::function<void()> tique) {
  Timer t;
  t.intervalo = std::chrono::milliseconds(milissegundos);
  t.proximo = std::chrono::steady_clock::now() + t.intervalo;
  t.tique = std::move(tique);
  timers_[id] = std::move(t);
}

Plataforma HostConsole::DadosPlataforma() const {
  namespace fs = std::filesystem;
  Plataforma p;
  p.larguraTela = 1024;
  p.alturaTela = 768;
  p.totalFontes = 1;  // the console's one font
  const char* home = std::getenv("HOME");
  std::string h = home ? home : "/";
  p.pastaSistema = U(h);
  // The desktop folder as the user's folder settings name it.
  std::string desk = h + "/Desktop";
  std::ifstream dirs(h + "/.config/user-dirs.dirs");
  for (std::string l; std::getline(dirs, l);) {
    if (l.rfind("XDG_DESKTOP_DIR=", 0) != 0) continue;
    std::string v = l.substr(16);
    if (v.size() >= 2 && v.front() == '"' && v.back() == '"') v = v.substr(1, v.size() - 2);
    if (v.rfind("$HOME", 0) == 0) v = h + v.substr(5);
    desk = v;
  }
  p.areaDeTrabalho = U(desk);
  p.pastaProgramas = U(h + "/.local/share/applications");
  std::error_code ec;
  fs::path exe = fs::read_symlink("/proc/self/exe", ec);
  p.pastaExecutavel = ec ? Texto() : U(exe.parent_path().string());
  return p;
}

}  // namespace zv
