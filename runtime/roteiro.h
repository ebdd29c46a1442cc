// The event script of zvrun --events: one JSON object a line, each a user
// action, handed to the windows one at a pump once the one before it has
// been handled.
#pragma once

#include <QJsonObject>
#include <string>
#include <vector>

namespace zv {

class RoteiroEventos {
 public:
  // False, with a message, when the file can't be read or a line isn't a
  // JSON object.
  bool Carrega(const std::string& caminho, std::string& erro);

  bool Pendente() const { return proxima_ < acoes_.size(); }
  // The next action and its line number (from 1).
  const QJsonObject& Proxima(int& linha) {
    linha = linhas_[proxima_];
    return acoes_[proxima_++];
  }

 private:
  std::vector<QJsonObject> acoes_;
  std::vector<int> linhas_;
  size_t proxima_ = 0;
};

}  // namespace zv
