// zvdocs: the reference's one source, docs/reference/pages/*.md, made into
// what the environment and a reader use:
//   Commands.pack          each page as WORD.rtf, packed by the language's
//                          own container code (the help's reader extracts
//                          them by name);
//   ZarvoltTutorial.pdf    the tutorial, then every page, one after another;
//   HTML_DIR/              one HTML page a word, links between them, an index.
// It runs at build time; none of its outputs is kept in the tree.
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFont>
#include <QGuiApplication>
#include <QPageLayout>
#include <QPageSize>
#include <QPdfWriter>
#include <QRegularExpression>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextList>
#include <QUrl>

#include <cstdio>
#include <filesystem>
#include <vector>

#include "apps/zvdocs/mensagens.h"
#include "core/valor.h"
#include "library/arquivos.h"
#include "runtime/rtf.h"

namespace fs = std::filesystem;
using namespace zv;
namespace m = zv::msg::docs;

namespace {

// The reader's fonts: what the help's RichTextBox finds on any desktop.
const char* const kFonteTexto = "Arial";
const char* const kFonteCodigo = "Courier New";
constexpr double kTamanhoTexto = 10;
constexpr double kTamanhoCodigo = 9;
constexpr double kTamanhoTitulo[] = {0, 18, 13, 11};
// Screenshots in the PDF are shown no wider than this (points of the page).
constexpr double kLarguraImagem = 420;

const QColor kCorTitulo(0x1F, 0x4E, 0x79);
const QColor kCorPrograma(0x00, 0x00, 0x80);
const QColor kCorSaida(0x00, 0x60, 0x20);
const QColor kCorRoteiro(0x60, 0x60, 0x60);
const QColor kCorCodigoNoTexto(0x80, 0x20, 0x00);
const QColor kCorLink(0x00, 0x44, 0xCC);

struct Pagina {
  QString palavra;  // the page's name, as in the word list
  QString markdown;
};

bool LeArquivo(const QString& caminho, QString& texto) {
  QFile f(caminho);
  if (!f.open(QIODevice::ReadOnly)) return false;
  texto = QString::fromUtf8(f.readAll());
  texto.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
  return true;
}

bool GravaArquivo(const QString& caminho, const QByteArray& dados) {
  QFile f(caminho);
  if (!f.open(QIODevice::WriteOnly)) {
    std::fprintf(stderr, m::kNaoGrava, qPrintable(caminho), qPrintable(f.errorString()));
    return false;
  }
  f.write(dados);
  return true;
}

// An example's blocks read as a page's fences say: a short line in front of
// each tells the reader what it is. Images are dropped where the output
// can't show them (the RTF of the help).
QString PreparaMarkdown(const QString& md, bool comImagens) {
  QStringList saida;
  bool dentro = false;
  for (const QString& l : md.split(u'\n')) {
    if (l.startsWith(QStringLiteral("```"))) {
      if (!dentro) {
        QStringList info = l.mid(3).trimmed().split(u' ', Qt::SkipEmptyParts);
        QString tipo = info.value(0);
        const char* rotulo = tipo == QStringLiteral("events")    ? m::kRotuloEventos
                             : tipo == QStringLiteral("answers") ? m::kRotuloRespostas
                             : tipo == QStringLiteral("output")  ? m::kRotuloSaida
                                                                 : nullptr;
        if (rotulo) saida << QStringLiteral("*%1*").arg(QString::fromUtf8(rotulo)) << QString();
        if (tipo == QStringLiteral("zarvolt") && info.contains(QStringLiteral("norun")))
          saida << QStringLiteral("*%1*").arg(QString::fromUtf8(m::kRotuloNaoRoda)) << QString();
      }
      dentro = !dentro;
    } else if (!dentro && !comImagens && l.trimmed().startsWith(QStringLiteral("!["))) {
      continue;
    }
    saida << l;
  }
  return saida.join(u'\n');
}

QString Linguagem(const QTextBlock& b) { return b.blockFormat().stringProperty(QTextFormat::BlockCodeLanguage); }
bool ECodigo(const QTextBlock& b) { return b.blockFormat().nonBreakableLines() || !Linguagem(b).isEmpty(); }

QColor CorDoCodigo(const QString& lingua) {
  if (lingua == QStringLiteral("output")) return kCorSaida;
  if (lingua == QStringLiteral("events") || lingua == QStringLiteral("answers")) return kCorRoteiro;
  return kCorPrograma;
}

// Sets one format's properties over a stretch of the document.
void Formata(QTextDocument& doc, int inicio, int fim, const QTextCharFormat& f) {
  QTextCursor c(&doc);
  c.setPosition(inicio);
  c.setPosition(fim, QTextCursor::KeepAnchor);
  c.mergeCharFormat(f);
}

// What the RTF writer carries is fonts, sizes, bold, italic, colours and
// paragraphs: the Markdown's headings, code, links, list bullets and the
// space between paragraphs are turned into those before it writes.
void AjustaParaRtf(QTextDocument& doc) {
  QFont base(QString::fromLatin1(kFonteTexto));
  base.setPointSizeF(kTamanhoTexto);
  doc.setDefaultFont(base);
  std::vector<QTextBlock> blocos;
  for (QTextBlock b = doc.begin(); b.isValid(); b = b.next()) blocos.push_back(b);
  // Back to front, so that what is inserted moves nothing not yet seen.
  for (size_t i = blocos.size(); i-- > 0;) {
    QTextBlock b = blocos[i];
    int inicio = b.position(), fim = b.position() + b.length() - 1;
    int nivel = b.blockFormat().headingLevel();
    QTextCharFormat f;
    f.setFontFamilies({QString::fromLatin1(kFonteTexto)});
    f.setFontPointSize(kTamanhoTexto);
    Formata(doc, inicio, fim, f);
    if (nivel > 0) {
      f.setFontPointSize(kTamanhoTitulo[std::min(nivel, 3)]);
      f.setFontWeight(QFont::Bold);
      f.setForeground(kCorTitulo);
      Formata(doc, inicio, fim, f);
    } else if (ECodigo(b)) {
      QString lingua = Linguagem(b);
      f.setFontFamilies({QString::fromLatin1(kFonteCodigo)});
      f.setFontPointSize(kTamanhoCodigo);
      f.setForeground(CorDoCodigo(lingua));
      Formata(doc, inicio, fim, f);
    } else {
      // Code and links inside a paragraph keep their own look.
      for (auto it = b.begin(); !it.atEnd(); ++it) {
        QTextFragment fr = it.fragment();
        QTextCharFormat cf = fr.charFormat();
        QTextCharFormat g;
        if (cf.fontFixedPitch() || cf.fontFamilies().toStringList().contains(QStringLiteral("monospace"))) {
          g.setFontFamilies({QString::fromLatin1(kFonteCodigo)});
          g.setForeground(kCorCodigoNoTexto);
        } else if (cf.isAnchor()) {
          g.setForeground(kCorLink);
        } else {
          continue;
        }
        Formata(doc, fr.position(), fr.position() + fr.length(), g);
      }
    }
    QTextCursor c(&doc);
    if (b.textList()) {
      c.setPosition(inicio);
      QTextCharFormat bala;
      bala.setFontFamilies({QString::fromLatin1(kFonteTexto)});
      bala.setFontPointSize(kTamanhoTexto);
      c.insertText(QString(QChar(0x2022)) + QStringLiteral("  "), bala);
    }
    // A blank paragraph between paragraphs, but not inside a code block or
    // a list.
    if (i == 0) continue;
    QTextBlock antes = blocos[i - 1];
    bool juntos = antes.blockFormat().headingLevel() > 0 || (ECodigo(antes) && ECodigo(b)) || (antes.textList() && antes.textList() == b.textList());
    if (!juntos) {
      c.setPosition(inicio);
      c.insertBlock(QTextBlockFormat(), QTextCharFormat());
    }
  }
}

// The PDF keeps Qt's own layout of the Markdown; code blocks get the
// reader's colours and a light background, so that a program, its event
// script and its output stand apart on paper.
void RealcaCodigoNoPdf(QTextDocument& doc) {
  for (QTextBlock b = doc.begin(); b.isValid(); b = b.next()) {
    if (b.blockFormat().headingLevel() > 1) {
      // Room above a section's heading, which Qt's Markdown leaves out.
      QTextCursor c(b);
      QTextBlockFormat bf = b.blockFormat();
      bf.setTopMargin(10);
      c.setBlockFormat(bf);
    }
    if (!ECodigo(b)) continue;
    QTextCursor c(b);
    QTextBlockFormat bf = b.blockFormat();
    bf.setBackground(QColor(0xF3, 0xF4, 0xF6));
    c.setBlockFormat(bf);
    QTextCharFormat f;
    f.setForeground(CorDoCodigo(Linguagem(b)));
    Formata(doc, b.position(), b.position() + b.length() - 1, f);
  }
}

QByteArray FazRtf(const QString& md) {
  QTextDocument doc;
  doc.setMarkdown(PreparaMarkdown(md, false));
  AjustaParaRtf(doc);
  std::string rtf = EscreveRtf(doc);
  return QByteArray(rtf.data(), static_cast<qsizetype>(rtf.size()));
}

Texto ParaTexto(const QString& s) { return Texto(reinterpret_cast<const char16_t*>(s.utf16()), static_cast<size_t>(s.size())); }

bool FazPacote(const std::vector<Pagina>& paginas, const QString& caminho) {
  QFile::remove(caminho);
  try {
    for (const Pagina& p : paginas)
      InsereNoContainer(fs::path(caminho.toStdString()), ParaTexto(p.palavra + QStringLiteral(".rtf")),
                        FazRtf(p.markdown).toStdString());
  } catch (const FalhaHost& f) {
    std::fprintf(stderr, m::kNaoGrava, qPrintable(caminho), Utf8(f.descricao).c_str());
    return false;
  }
  return true;
}

// Screenshots no wider than the page's text. Each is named by its full
// path: printing lays out a copy of the document, which keeps neither the
// base folder nor the pictures added to this one.
void AjustaImagens(QTextDocument& doc, const QString& pastaPaginas) {
  for (QTextBlock b = doc.begin(); b.isValid(); b = b.next()) {
    for (auto it = b.begin(); !it.atEnd(); ++it) {
      QTextFragment fr = it.fragment();
      if (!fr.charFormat().isImageFormat()) continue;
      QTextImageFormat img = fr.charFormat().toImageFormat();
      QString caminho = QDir(pastaPaginas).filePath(img.name());
      QImage imagem(caminho);
      if (imagem.isNull()) continue;
      double largura = std::min<double>(imagem.width(), kLarguraImagem);
      img.setName(QUrl::fromLocalFile(caminho).toString());
      img.setWidth(largura);
      img.setHeight(largura * imagem.height() / std::max(1, imagem.width()));
      QTextCursor c(&doc);
      c.setPosition(fr.position());
      c.setPosition(fr.position() + fr.length(), QTextCursor::KeepAnchor);
      c.setCharFormat(img);
    }
  }
}

bool FazPdf(const std::vector<Pagina>& paginas, const QString& pastaPaginas, const QString& caminho) {
  QStringList palavras;
  for (const Pagina& p : paginas)
    if (p.palavra != QStringLiteral("Curso")) palavras << p.palavra;
  QString md = QStringLiteral("# %1\n\n%2\n\n**%3** %4\n\n")
                   .arg(QString::fromUtf8(m::kTituloPdf), QString::fromUtf8(m::kSubtituloPdf),
                        QString::fromUtf8(m::kConteudoPdf), palavras.join(QStringLiteral(", ")));
  for (const Pagina& p : paginas) md += PreparaMarkdown(p.markdown, true) + QStringLiteral("\n\n");
  QTextDocument doc;
  doc.setBaseUrl(QUrl::fromLocalFile(pastaPaginas + u'/'));
  QFont base(QStringLiteral("DejaVu Sans"));
  base.setPointSizeF(kTamanhoTexto);
  doc.setDefaultFont(base);
  doc.setMarkdown(md);
  AjustaImagens(doc, pastaPaginas);
  RealcaCodigoNoPdf(doc);
  // Each page of the reference starts a page of paper.
  bool primeiro = true;
  for (QTextBlock b = doc.begin(); b.isValid(); b = b.next()) {
    if (b.blockFormat().headingLevel() != 1) continue;
    if (primeiro) {
      primeiro = false;
      continue;
    }
    QTextCursor c(b);
    QTextBlockFormat f = b.blockFormat();
    f.setPageBreakPolicy(QTextFormat::PageBreak_AlwaysBefore);
    c.setBlockFormat(f);
  }
  QPdfWriter pdf(caminho);
  pdf.setTitle(QString::fromUtf8(m::kTituloPdf));
  pdf.setCreator(QStringLiteral("zvdocs"));
  pdf.setPageLayout(QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait, QMarginsF(18, 18, 18, 18),
                                QPageLayout::Millimeter));
  doc.print(&pdf);
  return QFileInfo(caminho).size() > 0;
}

bool FazHtml(const std::vector<Pagina>& paginas, const QString& pastaPaginas, const QString& pasta) {
  // The pictures go along, so that the folder can be published as it is.
  QDir().mkpath(pasta + QStringLiteral("/images"));
  const QDir imagens(pastaPaginas + QStringLiteral("/images"));
  for (const QString& png : imagens.entryList({QStringLiteral("*.png")}, QDir::Files)) {
    QString alvo = pasta + QStringLiteral("/images/") + png;
    QFile::remove(alvo);
    if (!QFile::copy(imagens.filePath(png), alvo)) {
      std::fprintf(stderr, m::kNaoGrava, qPrintable(alvo), "copy failed");
      return false;
    }
  }
  static const QRegularExpression kLinkMd(QStringLiteral("href=\"([A-Za-z0-9_]+)\\.md\""));
  QString indice = QStringLiteral("<!DOCTYPE html>\n<html><head><meta charset=\"utf-8\"><title>%1</title></head><body>\n<h1>%1</h1>\n<ul>\n")
                       .arg(QString::fromUtf8(m::kTituloIndice));
  for (const Pagina& p : paginas) {
    QTextDocument doc;
    doc.setMarkdown(PreparaMarkdown(p.markdown, true));
    QString html = doc.toHtml();
    html.replace(kLinkMd, QStringLiteral("href=\"\\1.html\""));
    if (!GravaArquivo(pasta + u'/' + p.palavra + QStringLiteral(".html"), html.toUtf8())) return false;
    QString rotulo = p.palavra == QStringLiteral("Curso") ? QString::fromUtf8(m::kTutorialIndice) : p.palavra;
    indice += QStringLiteral("<li><a href=\"%1.html\">%2</a></li>\n").arg(p.palavra, rotulo.toHtmlEscaped());
  }
  indice += QStringLiteral("</ul>\n</body></html>\n");
  return GravaArquivo(pasta + QStringLiteral("/index.html"), indice.toUtf8());
}

}  // namespace

int main(int argc, char** argv) {
  // Pages are laid out for the PDF with no display.
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QGuiApplication app(argc, argv);
  QStringList a = app.arguments();
  if (a.size() != 5) {
    std::fputs(m::kUso, stderr);
    return 2;
  }
  QString pastaPaginas = QFileInfo(a[1]).absoluteFilePath(), saida = QFileInfo(a[3]).absoluteFilePath(),
          html = QFileInfo(a[4]).absoluteFilePath();
  QString lista;
  if (!LeArquivo(a[2], lista)) {
    std::fprintf(stderr, m::kNaoLe, qPrintable(a[2]));
    return 1;
  }
  // The tutorial first, then the words in the index's order; a word whose
  // page isn't written yet is left out.
  QStringList nomes{QStringLiteral("Curso")};
  for (const QString& p : lista.split(u'\n'))
    if (!p.trimmed().isEmpty()) nomes << p.trimmed();
  std::vector<Pagina> paginas;
  for (const QString& nome : nomes) {
    Pagina p{nome, {}};
    if (LeArquivo(pastaPaginas + u'/' + nome + QStringLiteral(".md"), p.markdown)) paginas.push_back(p);
  }
  QDir().mkpath(saida);
  QString pacote = saida + QStringLiteral("/Commands.pack"), pdf = saida + QStringLiteral("/ZarvoltTutorial.pdf");
  if (!FazPacote(paginas, pacote) || !FazPdf(paginas, pastaPaginas, pdf) || !FazHtml(paginas, pastaPaginas, html))
    return 1;
  std::printf(m::kFeito, static_cast<int>(paginas.size()), qPrintable(pacote), qPrintable(pdf), qPrintable(html));
  return 0;
}
