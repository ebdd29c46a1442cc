#include "environment/associacao.h"

#include <QProcess>
#include <QSaveFile>
#include <QStandardPaths>
#include <QXmlStreamWriter>
#include <cstdlib>
#include <system_error>

#include "environment/apresenta.h"
#include "environment/mensagens.h"

namespace zv {

namespace fs = std::filesystem;
namespace m = msg::ambiente;

namespace {

// Written whole or not at all (QSaveFile), so that a desktop reading the
// folder never sees half an entry.
bool Escreve(const fs::path& arquivo, const std::string& texto, std::string& falha) {
  std::error_code ec;
  fs::create_directories(arquivo.parent_path(), ec);
  QSaveFile f(QString::fromStdString(arquivo.string()));
  if (f.open(QIODevice::WriteOnly) && f.write(texto.data(), static_cast<qint64>(texto.size())) >= 0 && f.commit())
    return true;
  falha = arquivo.string() + ": " + f.errorString().toStdString();
  return false;
}

// A desktop entry's Exec quotes its program when the path has blanks.
std::string Citado(const std::string& caminho) {
  std::string r = "\"";
  for (char c : caminho) {
    if (c == '"' || c == '\\' || c == '`' || c == '$') r += '\\';
    r += c;
  }
  return r + "\"";
}

void AtualizaBase(const char* ferramenta, const fs::path& pasta) {
  const QString exe = QStandardPaths::findExecutable(QString::fromUtf8(ferramenta));
  if (exe.isEmpty()) return;  // the desktop reads the folder again at its next start
  QProcess::execute(exe, {QString::fromStdString(pasta.string())});
}

}  // namespace

fs::path PastaDadosUsuario() {
  const char* xdg = std::getenv("XDG_DATA_HOME");
  if (xdg && *xdg) return xdg;
  const char* home = std::getenv("HOME");
  return fs::path(home ? home : ".") / ".local" / "share";
}

std::string FazAssociacao(const fs::path& executavel, const fs::path& dados) {
  std::string falha;
  QByteArray xml;
  {
    QXmlStreamWriter w(&xml);
    w.setAutoFormatting(true);
    w.writeStartDocument();
    w.writeStartElement(QStringLiteral("mime-info"));
    w.writeDefaultNamespace(QStringLiteral("http://www.freedesktop.org/standards/shared-mime-info"));
    w.writeStartElement(QStringLiteral("mime-type"));
    w.writeAttribute(QStringLiteral("type"), QString::fromLatin1(kTipoMime));
    w.writeTextElement(QStringLiteral("comment"), QString::fromUtf8(m::kMimeComentario));
    w.writeEmptyElement(QStringLiteral("sub-class-of"));
    w.writeAttribute(QStringLiteral("type"), QStringLiteral("text/plain"));
    // Any case, as the original's file system allowed.
    w.writeEmptyElement(QStringLiteral("glob"));
    w.writeAttribute(QStringLiteral("pattern"), QStringLiteral("*.zvc"));
    w.writeEmptyElement(QStringLiteral("icon"));
    w.writeAttribute(QStringLiteral("name"), QStringLiteral("zarvolt"));
    w.writeEndElement();
    w.writeEndElement();
    w.writeEndDocument();
  }
  const std::string mime = xml.toStdString();
  const std::string entrada = std::string("[Desktop Entry]\nType=Application\nName=Zarvolt\nComment=") +
                              m::kEntradaComentario + "\nExec=" + Citado(executavel.string()) +
                              " %f\nIcon=zarvolt\nTerminal=false\nCategories=Development;IDE;\nMimeType=" +
                              kTipoMime + ";\n";
  if (!Escreve(dados / "mime" / "packages" / "zarvolt.xml", mime, falha) ||
      !Escreve(dados / "applications" / "zarvolt.desktop", entrada, falha))
    return falha;
  // The icon: the splash's mark, cut round.
  const fs::path icone = dados / "icons" / "hicolor" / "128x128" / "apps" / "zarvolt.png";
  std::error_code ec;
  fs::create_directories(icone.parent_path(), ec);
  QImage marca = ImagemApresenta().copy(30, 63, 124, 124).convertToFormat(QImage::Format_ARGB32);
  for (int y = 0; y < marca.height(); ++y) {
    auto* linha = reinterpret_cast<QRgb*>(marca.scanLine(y));
    for (int x = 0; x < marca.width(); ++x)
      if ((x - 62) * (x - 62) + (y - 62) * (y - 62) > 60 * 60) linha[x] = 0;
  }
  marca = marca.scaled(128, 128, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
  if (!marca.save(QString::fromStdString(icone.string()), "PNG")) return icone.string();
  AtualizaBase("update-mime-database", dados / "mime");
  AtualizaBase("update-desktop-database", dados / "applications");
  return {};
}

}  // namespace zv
