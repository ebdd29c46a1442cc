// The system services this platform can give as the original did: the
// registry, kept in a file of our own beside ZV.File (Registry.json: the
// four roots, their keys and string values, keys and names compared
// without regard to case as the original's registry did), and Call, which
// starts another program and doesn't wait for it. The start-up list is
// the desktop's autostart folder: an entry there starts the environment
// with the program at the next log-in, and the registry keeps its line as
// the original's Run key did. The hardware ports are /dev/port, for a
// privileged process; a run without devices has ports of its own.
#include <fcntl.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QSaveFile>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>

#include "core/interpretador.h"
#include "library/arquivos.h"
#include "library/biblioteca.h"
#include "library/mensagens.h"
#include "library/texto_qt.h"

namespace zv {

namespace {

constexpr char kArquivoRegistro[] = "Registry.json";


QString CaminhoRegistro(const Interpretador& zv) {
  return QString::fromStdString((std::filesystem::path(zv.dirConfig) / kArquivoRegistro).string());
}

// The root in capitals when it is one of the four; empty otherwise.
QString Raiz(const Texto& t) {
  const QString r = Q(t).trimmed().toUpper();
  for (const char* valida : {"HKEY_CLASSES_ROOT", "HKEY_CURRENT_USER", "HKEY_LOCAL_MACHINE", "HKEY_USERS"})
    if (r == QLatin1String(valida)) return r;
  return {};
}

QString Chave(const QString& raiz, const Texto& chave) {
  return raiz + QLatin1Char('\\') + Q(chave).trimmed().toUpper();
}

// A damaged file reads as an empty registry: nothing in it is trusted,
// and a save writes a sound one over it.
QJsonObject LeRegistro(const QString& arquivo) {
  QFile f(arquivo);
  if (!f.open(QIODevice::ReadOnly)) return {};
  const QJsonDocument d = QJsonDocument::fromJson(f.readAll());
  return d.isObject() ? d.object() : QJsonObject();
}

void GravaRegistro(const QString& arquivo, const QJsonObject& registro) {
  QSaveFile f(arquivo);
  if (!f.open(QIODevice::WriteOnly) || f.write(QJsonDocument(registro).toJson()) < 0 || !f.commit())
    throw FalhaHost(falha::PermissaoNegada);
}

Texto ArgT(Interpretador& zv, const std::vector<Texto>& a, size_t i) {
  return i < a.size() && !a[i].empty() ? zv.ValorTexto(a[i]).ComoTexto() : Texto();
}

Valor GetWinReg(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, 4);
  const QString raiz = Raiz(ArgT(zv, a, 0));
  if (raiz.isEmpty()) return Valor::TextoComAspas(Texto());
  const QJsonObject chave = LeRegistro(CaminhoRegistro(zv)).value(Chave(raiz, ArgT(zv, a, 1))).toObject();
  const QJsonValue v = chave.value(Q(ArgT(zv, a, 2)).toUpper());
  // Only a string value is read; it stops at its first zero character.
  QString s = v.isString() ? v.toString() : QString();
  const qsizetype zero = s.indexOf(QChar(0));
  if (zero >= 0) s.truncate(zero);
  return Valor::TextoComAspas(s.toStdU16String());
}

Valor SaveWinReg(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, 5);
  const QString raiz = Raiz(ArgT(zv, a, 0));
  if (raiz.isEmpty()) return Valor::TextoComAspas(Texto());
  const QString arquivo = CaminhoRegistro(zv);
  QJsonObject registro = LeRegistro(arquivo);
  const QString nome = Chave(raiz, ArgT(zv, a, 1));
  QJsonObject chave = registro.value(nome).toObject();
  chave.insert(Q(ArgT(zv, a, 2)).toUpper(), Q(ArgT(zv, a, 3)));
  registro.insert(nome, chave);
  GravaRegistro(arquivo, registro);
  return Valor::TextoComAspas(Texto());
}

// What a start-up entry starts: the environment beside the running
// executable (or the running one, a built program), and the program's source.
QStringList ComandoDeInicio(Interpretador& zv) {
  const QString pasta = Q(zv.host().DadosPlataforma().pastaExecutavel);
  QString exe = pasta + QStringLiteral("/zarvolt");
  if (!QFile::exists(exe)) exe = QFile::symLinkTarget(QStringLiteral("/proc/self/exe"));
  return {exe, Q(zv.dirPrograma + zv.nomeArquivoPrograma)};
}

// An argument of a desktop entry's Exec line, quoted as that format wants.
QString ArgumentoExec(QString a) {
  a.replace(QLatin1Char('\\'), QStringLiteral("\\\\"));
  for (const char* c : {"\"", "`", "$"}) a.replace(QLatin1String(c), QLatin1String("\\") + QLatin1String(c));
  return QLatin1Char('"') + a + QLatin1Char('"');
}

QString PastaAutostart() {
  const QByteArray xdg = qgetenv("XDG_CONFIG_HOME");
  return (xdg.isEmpty() ? QDir::homePath() + QStringLiteral("/.config") : QString::fromLocal8Bit(xdg)) +
         QStringLiteral("/autostart");
}

// The entry's file: "zarvolt-" and the name in small letters (the list's
// names are the registry's, whose case doesn't count), its other characters
// made '_'.
QString ArquivoAutostart(const Texto& nome) {
  QString n = Q(nome).trimmed().toLower();
  for (QChar& c : n)
    if (!c.isLetterOrNumber() && c != QLatin1Char('-')) c = QLatin1Char('_');
  return PastaAutostart() + QStringLiteral("/zarvolt-") + n + QStringLiteral(".desktop");
}

const Texto kChaveRun = u"Software\\Microsoft\\Windows\\CurrentVersion\\Run";

Valor AddSysStartup(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, 2);
  const Texto nome = ArgT(zv, a, 0);
  const QStringList comando = ComandoDeInicio(zv);
  const QString linha = comando.join(QLatin1Char(' '));
  QDir().mkpath(PastaAutostart());
  QSaveFile f(ArquivoAutostart(nome));
  const QString entrada = QStringLiteral("[Desktop Entry]\nType=Application\nName=") + Q(nome) +
                          QStringLiteral("\nExec=") + ArgumentoExec(comando[0]) + QLatin1Char(' ') +
                          ArgumentoExec(comando[1]) + QStringLiteral("\nX-Zarvolt-Entry=") + Q(nome) +
                          QStringLiteral("\n");
  if (!f.open(QIODevice::WriteOnly) || f.write(entrada.toUtf8()) < 0 || !f.commit())
    throw FalhaHost(falha::PermissaoNegada);
  const QString arquivo = CaminhoRegistro(zv);
  QJsonObject registro = LeRegistro(arquivo);
  const QString chave = Chave(QStringLiteral("HKEY_LOCAL_MACHINE"), kChaveRun);
  QJsonObject run = registro.value(chave).toObject();
  run.insert(Q(nome).toUpper(), linha);
  registro.insert(chave, run);
  GravaRegistro(arquivo, registro);
  return Valor();
}

// A name that isn't in the list leaves it as it is, without a word.
Valor RemoveSysStartup(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, 2);
  const Texto nome = ArgT(zv, a, 0);
  QFile::remove(ArquivoAutostart(nome));
  const QString arquivo = CaminhoRegistro(zv);
  QJsonObject registro = LeRegistro(arquivo);
  const QString chave = Chave(QStringLiteral("HKEY_LOCAL_MACHINE"), kChaveRun);
  QJsonObject run = registro.value(chave).toObject();
  if (!run.contains(Q(nome).toUpper())) return Valor();
  run.remove(Q(nome).toUpper());
  registro.insert(chave, run);
  GravaRegistro(arquivo, registro);
  return Valor();
}

// Call Command, Style: the command line runs as it stands; the answer is
// the new program's process number, or a quoted "Error n: description".
Valor Call(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, 3);
  const QStringList partes = QProcess::splitCommand(Q(ArgT(zv, a, 0)));
  qint64 pid = 0;
  if (!partes.isEmpty() && QProcess::startDetached(partes.first(), partes.mid(1), QString(), &pid))
    return Valor::DeTexto(QString::number(pid).toStdU16String());
  // The original's error number for a program it can't start.
  return Valor::TextoComAspas(msg::Formata(msg::biblioteca::kErroAoChamar, u"53", falha::ArquivoNaoEncontrado));
}

// ---- Hardware ports ----------------------------------------------------------

// The ports of a run without devices: what OutPort wrote, read back; a port
// never written reads as a bus with nothing on it.
struct PortasDaExecucao {
  std::array<uint8_t, 65536> valores;
  PortasDaExecucao() { valores.fill(0xFF); }
};

// A byte at a port through /dev/port, which only a privileged process may
// open; false with errno set otherwise.
bool PortaDoSistema(uint16_t porta, uint8_t& valor, bool escreve) {
  int fd = ::open("/dev/port", escreve ? O_WRONLY : O_RDONLY);
  if (fd < 0) return false;
  ssize_t n = escreve ? ::pwrite(fd, &valor, 1, porta) : ::pread(fd, &valor, 1, porta);
  int erro = errno;
  ::close(fd);
  errno = erro;
  return n == 1;
}

// Port and value are 16-bit, as the platform's calls take them; a port
// carries a byte.
Valor Porta(Interpretador& zv, const Texto& argumentos, bool escreve) {
  auto a = zv.SeparaArgumentos(argumentos, 3);
  const uint16_t porta = uint16_t(zv.ValorNumerico(a[0]).ComoInt16());
  uint8_t valor = escreve ? uint8_t(zv.ValorNumerico(a[1]).ComoInt16()) : 0;
  if (zv.host().SemDispositivos()) {
    auto& p = zv.Estado<PortasDaExecucao>().valores;
    if (escreve) p[porta] = valor;
    else valor = p[porta];
  } else if (!PortaDoSistema(porta, valor, escreve)) {
    throw FalhaHost(errno == EACCES || errno == EPERM ? Texto(falha::PermissaoNegada) : U(std::strerror(errno)));
  }
  return escreve ? Valor() : Valor::DeInt16(int16_t(valor));
}

Valor OutPort(Interpretador& zv, const Texto& argumentos) { return Porta(zv, argumentos, true); }
Valor Inport(Interpretador& zv, const Texto& argumentos) { return Porta(zv, argumentos, false); }

}  // namespace

void RegistraSistema() {
  Comandos().Define(u"OutPort", OutPort);
  Comandos().Define(u"Inport", Inport);
  Comandos().Define(u"GetWinReg", GetWinReg);
  Comandos().Define(u"SaveWinReg", SaveWinReg);
  Comandos().Define(u"Call", Call);
  Comandos().Define(u"AddSysStartup", AddSysStartup);
  Comandos().Define(u"RemoveSysStartup", RemoveSysStartup);
}

}  // namespace zv
