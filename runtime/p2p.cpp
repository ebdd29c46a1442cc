// Peer messaging: one TCP connection a run, listened for or made by the
// program, and texts sent on it with no framing at all. What arrives, and
// who connected, reach the program's variables from the event loop, at the
// points where the run lets events in.
#include <QHostAddress>
#include <QObject>
#include <QTcpServer>
#include <QTcpSocket>

#include <memory>

#include "core/interpretador.h"
#include "library/texto_qt.h"
#include "runtime/janelas.h"
#include "runtime/mensagens.h"

namespace zv {

void RegistraP2P(TabelaComandos& t);

namespace {

// How long the end of a run waits for what the program sent last to leave.
constexpr int kEsperaEnvioMs = 2000;

class Par {
 public:
  explicit Par(Interpretador& zv) : zv_(zv) {}
  ~Par() { Fecha(true); }

  void Escuta(quint16 porta) {
    Fecha(false);
    servidor_ = std::make_unique<QTcpServer>();
    QObject::connect(servidor_.get(), &QTcpServer::newConnection, [this] { Aceita(); });
    if (!servidor_->listen(QHostAddress::Any, porta)) {
      QString e = servidor_->errorString();
      servidor_.reset();
      throw FalhaHost(T(e));
    }
  }

  void Conecta(const QString& host, quint16 porta) {
    Fecha(false);
    Liga(std::make_unique<QTcpSocket>());
    socket_->connectToHost(host, porta);
  }

  void Envia(const std::string& bytes) {
    if (!socket_ || socket_->state() != QAbstractSocket::ConnectedState) throw FalhaHost(msg::p2p::kSemConexao);
    if (socket_->write(bytes.data(), qint64(bytes.size())) < 0) throw FalhaHost(T(socket_->errorString()));
    socket_->flush();
  }

 private:
  // The request is accepted on the one socket, and nobody listens any more.
  void Aceita() {
    QTcpSocket* s = servidor_->nextPendingConnection();
    if (!s) return;
    s->setParent(nullptr);
    servidor_->close();
    Liga(std::unique_ptr<QTcpSocket>(s));
    QHostAddress a = s->peerAddress();
    bool v4 = false;
    quint32 ip = a.toIPv4Address(&v4);
    QString texto = v4 ? QHostAddress(ip).toString() : a.toString();
    zv_.GravaVariavel(u"ReferenceValue", Valor::DeTexto(T(texto)), false);
  }

  void Liga(std::unique_ptr<QTcpSocket> s) {
    socket_ = std::move(s);
    QObject::connect(socket_.get(), &QTcpSocket::readyRead, [this] {
      QByteArray b = socket_->readAll();
      zv_.GravaVariavel(u"RetStr", Valor::DeTexto(DeCp1252(std::string_view(b.constData(), size_t(b.size())))), false);
    });
  }

  // At the end of the run what was sent still leaves; a new Listen or
  // Connect drops the connection at once.
  void Fecha(bool fimDaExecucao) {
    if (socket_) {
      socket_->disconnect();
      if (fimDaExecucao && socket_->state() == QAbstractSocket::ConnectedState && socket_->bytesToWrite() > 0)
        socket_->waitForBytesWritten(kEsperaEnvioMs);
      socket_->abort();
      socket_.reset();
    }
    if (servidor_) {
      servidor_->close();
      servidor_.reset();
    }
  }

  Interpretador& zv_;
  std::unique_ptr<QTcpServer> servidor_;
  std::unique_ptr<QTcpSocket> socket_;
};

struct EstadoP2P {
  std::unique_ptr<Par> par;
};

// The socket belongs to the run's main window, as its other controls do:
// the window (and with it the event loop that carries the socket's events)
// comes up first.
Par& ParDaExecucao(Interpretador& zv) {
  Janelas(zv).Principal();
  auto& e = zv.Estado<EstadoP2P>();
  if (!e.par) e.par = std::make_unique<Par>(zv);
  return *e.par;
}

quint16 Porta(Interpretador& zv, const Texto& arg) {
  int32_t p = zv.ValorTexto(arg).ComoInt32();
  if (p < 0 || p > 65535) throw FalhaHost(msg::p2p::kPortaInvalida);
  return quint16(p);
}

Valor CmdListenP2P(Interpretador& zv, const Texto& args) {
  auto a = zv.SeparaArgumentos(args, 2);
  ParDaExecucao(zv).Escuta(Porta(zv, a[0]));
  return Valor();
}

Valor CmdConnectP2P(Interpretador& zv, const Texto& args) {
  auto a = zv.SeparaArgumentos(args, 3);
  Texto host = zv.ValorTexto(a[0]).ComoTexto();
  ParDaExecucao(zv).Conecta(Q(host), Porta(zv, a[1]));
  return Valor();
}

Valor CmdSendP2P(Interpretador& zv, const Texto& args) {
  auto a = zv.SeparaArgumentos(args, 2);
  ParDaExecucao(zv).Envia(ParaCp1252(zv.ValorTexto(a[0]).ComoTexto()));
  return Valor();
}

}  // namespace

void RegistraP2P(TabelaComandos& t) {
  t.Define(u"ListenP2P", CmdListenP2P);
  t.Define(u"ConnectP2P", CmdConnectP2P);
  t.Define(u"SendP2P", CmdSendP2P);
}

}  // namespace zv
