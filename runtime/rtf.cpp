#include "runtime/rtf.h"

#include <QTextBlock>
#include <QTextCursor>
#include <QVector>
#include <cctype>
#include <vector>

#include "core/texto.h"

namespace zv {

namespace {

void Escapa(std::string& s, const QString& texto) {
  for (QChar q : texto) {
    char16_t c = q.unicode();
    if (c == u'\\' || c == u'{' || c == u'}') {
      s += '\\';
      s += static_cast<char>(c);
    } else if (c == u'\t') {
      s += "\\tab ";
    } else if (c == 0x2028 || c == u'\n') {
      s += "\\line ";
    } else if (c < 128) {
      s += static_cast<char>(c);
    } else {
      std::string b = ParaCp1252(Texto(1, c));
      if (b != "?" ) {
        char h[8];
        std::snprintf(h, sizeof h, "\\'%02x", static_cast<unsigned char>(b[0]));
        s += h;
      } else {
        s += "\\u" + std::to_string(static_cast<int16_t>(c)) + "?";
      }
    }
  }
}

}  // namespace

std::string EscreveRtf(const QTextDocument& doc) {
  QStringList fontes;
  QVector<QColor> cores;
  auto indiceFonte = [&](const QString& f) {
    int i = static_cast<int>(fontes.indexOf(f));
    if (i < 0) {
      fontes << f;
      i = static_cast<int>(fontes.size()) - 1;
    }
    return i;
  };
  auto indiceCor = [&](const QColor& c) {
    int i = static_cast<int>(cores.indexOf(c));
    if (i < 0) {
      cores << c;
      i = static_cast<int>(cores.size()) - 1;
    }
    return i + 1;  // 0 is the automatic colour
  };
  indiceFonte(doc.defaultFont().family());
  std::string corpo;
  for (QTextBlock b = doc.begin(); b.isValid(); b = b.next()) {
    corpo += "\\pard";
    Qt::Alignment al = b.blockFormat().alignment();
    corpo += (al & Qt::AlignRight) ? "\\qr" : (al & Qt::AlignHCenter) ? "\\qc" : "\\ql";
    for (auto it = b.begin(); !it.atEnd(); ++it) {
      QTextFragment f = it.fragment();
      QTextCharFormat cf = f.charFormat();
      QFont fonte = cf.font();
      QString familia = cf.fontFamilies().toStringList().value(0, fonte.family());
      double pt = cf.fontPointSize() > 0 ? cf.fontPointSize() : doc.defaultFont().pointSizeF();
      corpo += "\\plain\\f" + std::to_string(indiceFonte(familia)) + "\\fs" +
               std::to_string(static_cast<int>(pt * 2 + 0.5));
      if (cf.fontWeight() >= QFont::Bold) corpo += "\\b";
      if (cf.fontItalic()) corpo += "\\i";
      if (cf.hasProperty(QTextFormat::ForegroundBrush)) corpo += "\\cf" + std::to_string(indiceCor(cf.foreground().color()));
      corpo += ' ';
      Escapa(corpo, f.text());
    }
    corpo += "\\par\r\n";
  }
  std::string s = "{\\rtf1\\ansi\\ansicpg1252\\deff0{\\fonttbl";
  for (int i = 0; i < fontes.size(); ++i) {
    s += "{\\f" + std::to_string(i) + "\\fnil ";
    Escapa(s, fontes[i]);
    s += ";}";
  }
  s += "}\r\n{\\colortbl ;";
  for (const QColor& c : cores)
    s += "\\red" + std::to_string(c.red()) + "\\green" + std::to_string(c.green()) + "\\blue" +
         std::to_string(c.blue()) + ";";
  s += "}\r\n\\viewkind4\\uc1" + corpo + "}\r\n";
  return s;
}

namespace {

struct Estado {
  bool negrito = false, italico = false;
  int fonte = 0, tamanho = 0, cor = 0;  // tamanho in half points
  bool pula = false;                    // a destination that is skipped
  int destino = 0;                      // 1 font table, 2 colour table
};

}  // namespace

bool LeRtf(const std::string& rtf, QTextDocument& doc) {
  if (rtf.rfind("{\\rtf", 0) != 0) return false;
  std::vector<QString> fontes;
  std::vector<QColor> cores;  // entry 0 is the automatic colour
  int vermelho = 0, verde = 0, azul = 0, fonteAtual = 0;
  QString nomeFonte;
  QTextDocument novo;
  QTextCursor cur(&novo);
  Qt::Alignment alinhamento = Qt::AlignLeft;
  bool primeiroBloco = true;
  std::vector<Estado> pilha{Estado()};
  auto poe = [&](const QString& t) {
    Estado& e = pilha.back();
    if (e.pula) return;
    if (e.destino == 1) {
      nomeFonte += t;
      return;
    }
    if (e.destino == 2) return;
    QTextCharFormat f;
    if (e.fonte >= 0 && static_cast<size_t>(e.fonte) < fontes.size()) f.setFontFamilies({fontes[static_cast<size_t>(e.fonte)]});
    if (e.tamanho > 0) f.setFontPointSize(e.tamanho / 2.0);
    f.setFontWeight(e.negrito ? QFont::Bold : QFont::Normal);
    f.setFontItalic(e.italico);
    if (e.cor > 0 && static_cast<size_t>(e.cor) < cores.size()) f.setForeground(cores[static_cast<size_t>(e.cor)]);
    if (primeiroBloco) {
      QTextBlockFormat bf;
      bf.setAlignment(alinhamento);
      cur.setBlockFormat(bf);
      primeiroBloco = false;
    }
    cur.insertText(t, f);
  };
  int pularCaracteres = 0;
  for (size_t i = 0; i < rtf.size(); ++i) {
    char c = rtf[i];
    if (c == '{') {
      pilha.push_back(pilha.back());
    } else if (c == '}') {
      if (pilha.back().destino == 1 && !nomeFonte.isEmpty()) {
        QString n = nomeFonte.trimmed();
        if (n.endsWith(QLatin1Char(';'))) n.chop(1);
        if (fontes.size() <= static_cast<size_t>(fonteAtual)) fontes.resize(static_cast<size_t>(fonteAtual) + 1);
        fontes[static_cast<size_t>(fonteAtual)] = n;
        nomeFonte.clear();
      }
      if (pilha.size() > 1) pilha.pop_back();
    } else if (c == '\r' || c == '\n') {
    } else if (c == '\\' && i + 1 < rtf.size()) {
      char d = rtf[i + 1];
      if (d == '\\' || d == '{' || d == '}') {
        poe(QString(QChar(d)));
        ++i;
      } else if (d == '\'' && i + 3 < rtf.size()) {
        char hex[3] = {rtf[i + 2], rtf[i + 3], 0};
        char byte = static_cast<char>(std::strtol(hex, nullptr, 16));
        i += 3;
        if (pularCaracteres > 0) {
          --pularCaracteres;
        } else {
          poe(QString::fromStdU16String(DeCp1252(std::string(1, byte))));
        }
      } else if (d == '*') {
        pilha.back().pula = true;
        ++i;
      } else if (std::isalpha(static_cast<unsigned char>(d))) {
        size_t j = i + 1;
        while (j < rtf.size() && std::isalpha(static_cast<unsigned char>(rtf[j]))) ++j;
        std::string palavra = rtf.substr(i + 1, j - i - 1);
        bool temNumero = false;
        int n = 0, sinal = 1;
        if (j < rtf.size() && rtf[j] == '-') {
          sinal = -1;
          ++j;
        }
        while (j < rtf.size() && std::isdigit(static_cast<unsigned char>(rtf[j]))) {
          n = n * 10 + (rtf[j] - '0');
          temNumero = true;
          ++j;
        }
        n *= sinal;
        if (j < rtf.size() && rtf[j] == ' ') ++j;
        i = j - 1;
        Estado& e = pilha.back();
        if (palavra == "fonttbl") e.destino = 1;
        else if (palavra == "colortbl") e.destino = 2;
        else if (palavra == "stylesheet" || palavra == "info" || palavra == "pict" || palavra == "header" ||
                 palavra == "footer")
          e.pula = true;
        else if (palavra == "f") {
          if (e.destino == 1) fonteAtual = n;
          else e.fonte = n;
        } else if (palavra == "red") vermelho = n;
        else if (palavra == "green") verde = n;
        else if (palavra == "blue") azul = n;
        else if (palavra == "fs") e.tamanho = n;
        else if (palavra == "b") e.negrito = !temNumero || n != 0;
        else if (palavra == "i") e.italico = !temNumero || n != 0;
        else if (palavra == "cf") e.cor = n;
        else if (palavra == "plain") {
          e.negrito = e.italico = false;
          e.tamanho = 0;
          e.cor = 0;
          e.fonte = 0;
        } else if (palavra == "pard") alinhamento = Qt::AlignLeft;
        else if (palavra == "ql") alinhamento = Qt::AlignLeft;
        else if (palavra == "qr") alinhamento = Qt::AlignRight;
        else if (palavra == "qc") alinhamento = Qt::AlignHCenter;
        else if (palavra == "tab") poe(QStringLiteral("\t"));
        else if (palavra == "line") poe(QString(QChar(0x2028)));
        else if (palavra == "u") {
          poe(QString(QChar(static_cast<char16_t>(n))));
          pularCaracteres = 1;
        } else if (palavra == "par" && !e.pula && e.destino == 0) {
          QTextBlockFormat bf;
          bf.setAlignment(alinhamento);
          if (primeiroBloco) cur.setBlockFormat(bf);
          cur.insertBlock(bf);
          primeiroBloco = false;
        }
      } else {
        ++i;  // a control symbol this reader doesn't know
      }
    } else if (c == ';' && pilha.back().destino == 2) {
      cores.emplace_back(vermelho, verde, azul);
      vermelho = verde = azul = 0;
    } else {
      if (pularCaracteres > 0) {
        --pularCaracteres;
        continue;
      }
      poe(QString(QChar(static_cast<unsigned char>(c))));
    }
  }
  // The last \par ends the last paragraph; it makes no empty one.
  QTextCursor fim(&novo);
  fim.movePosition(QTextCursor::End);
  if (novo.blockCount() > 1 && fim.block().text().isEmpty()) {
    fim.deletePreviousChar();
  }
  doc.setHtml(novo.toHtml());
  return true;
}

}  // namespace zv
