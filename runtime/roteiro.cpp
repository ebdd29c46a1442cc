// The event script: reading it (its delivery is the window module's,
// entrega.cpp).
#include "runtime/roteiro.h"
#include "runtime/mensagens.h"

#include <QJsonDocument>
#include <fstream>

namespace zv {

bool RoteiroEventos::Carrega(const std::string& caminho, std::string& erro) {
  std::ifstream f(caminho);
  if (!f) {
    erro = std::string(msg::execucao::kNaoLeRoteiro) + caminho;
    return false;
  }
  int n = 0;
  for (std::string linha; std::getline(f, linha);) {
    ++n;
    bool branca = linha.find_first_not_of(" \t\r") == std::string::npos;
    if (branca) continue;
    QJsonParseError e;
    QJsonDocument d = QJsonDocument::fromJson(QByteArray::fromStdString(linha), &e);
    if (!d.isObject()) {
      erro = caminho + ":" + std::to_string(n) + msg::execucao::kNaoEObjeto;
      return false;
    }
    acoes_.push_back(d.object());
    linhas_.push_back(n);
  }
  return true;
}

}  // namespace zv
