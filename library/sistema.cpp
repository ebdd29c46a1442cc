// The system services this platform can give as the original did: the
// registry, kept in a file of our own beside ZV.File (Registry.json: the
// four roots, their keys and string values, keys and names compared
// without regard to case as the original's registry did), and Call, which
// starts another program and doesn't wait for it.
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QSaveFile>
#include <filesystem>

#include "core/interpretador.h"
#include "library/biblioteca.h"
#include "library/mensagens.h"

namespace zv {

namespace {

constexpr char kArquivoRegistro[] = "Registry.json";

QString Q(const Texto& t) { return QString::fromStdU16String(t); }

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
  QSaveFile f(arquivo);
  if (!f.open(QIODevice::WriteOnly) || f.write(QJsonDocument(registro).toJson()) < 0 || !f.commit())
    throw FalhaHost(falha::PermissaoNegada);
  return Valor::TextoComAspas(Texto());
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

}  // namespace

void RegistraSistema() {
  Comandos().Define(u"GetWinReg", GetWinReg);
  Comandos().Define(u"SaveWinReg", SaveWinReg);
  Comandos().Define(u"Call", Call);
}

}  // namespace zv
