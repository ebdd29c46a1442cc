// A small FTP server for the tests and the reference's examples: one folder,
// one user, passive transfers only. It speaks what FTP clients send for a
// plain download or upload (USER, PASS, PWD, CWD, TYPE, EPSV, PASV, SIZE,
// RETR, STOR, QUIT) and refuses the rest.
//
//   zv_servidor_ftp FOLDER PORT USER PASSWORD
//
// Prints "ready PORT" once it listens (PORT 0 takes a free one) and serves
// until killed.
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>

#include <cstdio>
#include <memory>

namespace {

class Sessao : public QObject {
 public:
  Sessao(QTcpSocket* controle, const QString& raiz, const QString& usuario, const QString& senha)
      : controle_(controle), raiz_(QDir(raiz).canonicalPath()), usuario_(usuario), senha_(senha) {
    controle_->setParent(this);
    connect(controle_, &QTcpSocket::readyRead, this, [this] { Le(); });
    connect(controle_, &QTcpSocket::disconnected, this, &QObject::deleteLater);
    Responde("220 Zarvolt test server ready.");
  }

 private:
  void Responde(const QByteArray& linha) {
    controle_->write(linha + "\r\n");
    controle_->flush();
  }

  void Le() {
    while (controle_->canReadLine()) {
      QByteArray linha = controle_->readLine().trimmed();
      int espaco = linha.indexOf(' ');
      QByteArray verbo = (espaco < 0 ? linha : linha.left(espaco)).toUpper();
      QString arg = espaco < 0 ? QString() : QString::fromUtf8(linha.mid(espaco + 1));
      Comando(verbo, arg);
    }
  }

  // A path of the client's inside the folder; empty when it would leave it.
  QString Caminho(const QString& arg) const {
    QString rel = arg.startsWith(u'/') ? arg : cwd_ + u'/' + arg;
    QString limpo = QDir::cleanPath(u'/' + rel);
    if (limpo.contains(QStringLiteral(".."))) return {};
    return raiz_ + limpo;
  }

  void Comando(const QByteArray& v, const QString& arg) {
    if (v == "USER") {
      usuarioDado_ = arg;
      return Responde("331 Password required.");
    }
    if (v == "PASS") {
      logado_ = usuarioDado_ == usuario_ && arg == senha_;
      return Responde(logado_ ? "230 Logged in." : "530 Login incorrect.");
    }
    if (v == "QUIT") {
      Responde("221 Goodbye.");
      controle_->disconnectFromHost();
      return;
    }
    if (!logado_) return Responde("530 Please log in first.");
    if (v == "SYST") return Responde("215 UNIX Type: L8");
    if (v == "FEAT") return Responde("211 No features.");
    if (v == "PWD") return Responde("257 \"" + (cwd_.isEmpty() ? QByteArray("/") : cwd_.toUtf8()) + "\"");
    if (v == "CWD") {
      QString c = Caminho(arg);
      if (c.isEmpty() || !QFileInfo(c).isDir()) return Responde("550 No such folder.");
      cwd_ = c.mid(raiz_.size());
      return Responde("250 Folder changed.");
    }
    if (v == "TYPE") return Responde("200 Type set.");
    if (v == "EPSV" || v == "PASV") {
      dados_ = std::make_unique<QTcpServer>();
      dados_->listen(QHostAddress::LocalHost, 0);
      connect(dados_.get(), &QTcpServer::newConnection, this, [this] {
        socketDados_ = dados_->nextPendingConnection();
        if (pendente_) pendente_();
      });
      int p = dados_->serverPort();
      if (v == "EPSV") return Responde("229 Entering Extended Passive Mode (|||" + QByteArray::number(p) + "|)");
      return Responde("227 Entering Passive Mode (127,0,0,1," + QByteArray::number(p / 256) + "," +
                      QByteArray::number(p % 256) + ")");
    }
    if (v == "SIZE") {
      QFileInfo f(Caminho(arg));
      if (!f.isFile()) return Responde("550 No such file.");
      return Responde("213 " + QByteArray::number(f.size()));
    }
    if (v == "REST") return Responde(arg == u"0" ? "350 Restarting at 0." : "502 Not here.");
    if (v == "RETR") {
      QString c = Caminho(arg);
      if (c.isEmpty() || !QFileInfo(c).isFile()) return Responde("550 No such file.");
      return ComDados([this, c] {
        QFile f(c);
        f.open(QIODevice::ReadOnly);
        socketDados_->write(f.readAll());
        Fecha("226 Transfer complete.");
      });
    }
    if (v == "STOR") {
      QString c = Caminho(arg);
      if (c.isEmpty()) return Responde("553 Not allowed.");
      return ComDados([this, c] {
        auto recebido = std::make_shared<QByteArray>();
        QPointer<QTcpSocket> s = socketDados_;
        auto termina = [this, c, recebido, s] {
          if (!s) return;
          *recebido += s->readAll();
          QFile f(c);
          bool ok = f.open(QIODevice::WriteOnly) && f.write(*recebido) == recebido->size();
          s->disconnect(this);
          s->deleteLater();
          socketDados_ = nullptr;
          Responde(ok ? "226 Transfer complete." : "451 Can't write the file.");
        };
        connect(s, &QTcpSocket::readyRead, this, [recebido, s] { *recebido += s->readAll(); });
        connect(s, &QTcpSocket::disconnected, this, termina);
        if (s->state() != QAbstractSocket::ConnectedState) termina();
      });
    }
    Responde("502 Command not implemented.");
  }

  // Runs `f` once the client has opened the data connection.
  void ComDados(std::function<void()> f) {
    if (!dados_) return Responde("425 Use EPSV or PASV first.");
    Responde("150 Opening data connection.");
    if (socketDados_) return f();
    pendente_ = std::move(f);
  }

  void Fecha(const QByteArray& resposta) {
    socketDados_->disconnectFromHost();
    if (socketDados_->state() != QAbstractSocket::UnconnectedState) socketDados_->waitForDisconnected(5000);
    socketDados_->deleteLater();
    socketDados_ = nullptr;
    pendente_ = nullptr;
    Responde(resposta);
  }

  QTcpSocket* controle_;
  QString raiz_, usuario_, senha_, usuarioDado_, cwd_;
  bool logado_ = false;
  std::unique_ptr<QTcpServer> dados_;
  QTcpSocket* socketDados_ = nullptr;
  std::function<void()> pendente_;
};

}  // namespace

int main(int argc, char** argv) {
  QCoreApplication app(argc, argv);
  if (argc != 5) {
    std::fprintf(stderr, "usage: zv_servidor_ftp FOLDER PORT USER PASSWORD\n");
    return 2;
  }
  QString raiz = QString::fromLocal8Bit(argv[1]), usuario = QString::fromLocal8Bit(argv[3]),
          senha = QString::fromLocal8Bit(argv[4]);
  QTcpServer servidor;
  if (!servidor.listen(QHostAddress::LocalHost, quint16(QByteArray(argv[2]).toUInt()))) {
    std::fprintf(stderr, "zv_servidor_ftp: %s\n", servidor.errorString().toLocal8Bit().constData());
    return 1;
  }
  QObject::connect(&servidor, &QTcpServer::newConnection, [&] {
    while (QTcpSocket* s = servidor.nextPendingConnection()) new Sessao(s, raiz, usuario, senha);
  });
  std::printf("ready %d\n", servidor.serverPort());
  std::fflush(stdout);
  return app.exec();
}
