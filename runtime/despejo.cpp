// The windows as text (zvrun --dump-windows) and as pictures
// (--screenshot): what tests compare and what a person looks at.
#include <QDir>
#include <QAbstractButton>
#include <QComboBox>
#include <QDateEdit>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>
#include <QPushButton>
#include <QTextEdit>

#include "controls/barras.h"
#include "controls/btn_esp.h"
#include "controls/calendario.h"
#include "controls/entra_num.h"
#include "controls/moldura.h"
#include "controls/sp_combo.h"
#include "runtime/figuras.h"
#include "runtime/headless_host.h"
#include "runtime/janelas.h"
#include "runtime/mensagens.h"

namespace zv {

namespace {

std::string Campo(const char* nome, const QString& valor) {
  return std::string(",\"") + nome + "\":\"" + EscapaJson(valor.toStdU16String()) + "\"";
}
std::string Campo(const char* nome, int valor) { return std::string(",\"") + nome + "\":" + std::to_string(valor); }
std::string Campo(const char* nome, bool valor) {
  return std::string(",\"") + nome + "\":" + (valor ? "true" : "false");
}

// What the control holds, as its kind shows it: text, caption or value.
void Conteudo(TipoControle tipo, QWidget* w, std::string& s) {
  switch (tipo) {
    case TipoControle::Botao: {
      auto* b = static_cast<BtnEsp*>(w);
      s += Campo("caption", b->text());
      // What the face shows: a skin's picture, or the drawn face up or sunk.
      static const char* const kFiguras[] = {"up", "high", "focus", "down", "disabled"};
      s += Campo("style", b->estilo());
      s += Campo("state", QString::fromLatin1(b->estilo() == 1 ? kFiguras[static_cast<int>(b->FiguraVisivel())]
                                              : !b->isEnabled() ? "disabled"
                                              : b->Afundado()   ? "down"
                                                                : "up"));
      break;
    }
    case TipoControle::Texto:
      if (auto* l = qobject_cast<QLineEdit*>(w))
        s += Campo("text", l->text());
      else if (auto* r = qobject_cast<QTextEdit*>(w))
        s += Campo("text", r->toPlainText().replace(QLatin1Char('\n'), QStringLiteral("\r\n")));
      break;
    case TipoControle::Rotulo:
      s += Campo("text", static_cast<QLabel*>(w)->text());
      break;
    case TipoControle::Combo: {
      auto* c = static_cast<SpCombo*>(w);
      s += Campo("text", c->Texto());
      s += Campo("list_open", c->Aberta());
      s += Campo("list_index", c->IndSel());
      break;
    }
    case TipoControle::Mascara:
      s += Campo("text", static_cast<QLineEdit*>(w)->text());
      break;
    case TipoControle::Moeda:
      s += Campo("value", static_cast<EntraNum*>(w)->TextoValor());
      s += Campo("shown", static_cast<EntraNum*>(w)->TextoExibido());
      break;
    case TipoControle::Calendario:
      s += Campo("text", static_cast<Calendario*>(w)->text());
      s += Campo("open", static_cast<Calendario*>(w)->Aberto());
      break;
    case TipoControle::Frame:
      s += Campo("caption", static_cast<SpecialFrame*>(w)->Legenda());
      break;
    case TipoControle::Barra:
      s += Campo("value", QString::number(static_cast<BarraRolagem*>(w)->value()));
      break;
    case TipoControle::Box:
      s += CamposBox(w);
      break;
    case TipoControle::Link:
    case TipoControle::Gif:
      DescreveMidia(tipo, w, s, [](const char* n, const QString& v) { return Campo(n, v); });
      break;
    case TipoControle::Video:
      DescreveSom(w, s, [](const char* n, const QString& v) { return Campo(n, v); });
      break;
    case TipoControle::Figura:
      DescreveSprite(w, s, [](const char* n, int v) { return Campo(n, v); });
      break;
    case TipoControle::Check:
    case TipoControle::Radio: {
      auto* b = static_cast<QAbstractButton*>(w);
      s += Campo("caption", b->text());
      s += Campo("value", QString::number(b->isChecked() ? 1 : 0));
      break;
    }
    default:
      break;
  }
}

}  // namespace

std::string SistemaJanelas::DespejaJanelas() {
  std::string out;
  if (!principalFeita_) return out;
  for (int k = 0; k < kSlotsJanelas; ++k) {
    JanelaExecucao* j = janelas_[static_cast<size_t>(k)];
    if (!j || nomes_[static_cast<size_t>(k)].empty()) continue;
    out += "{\"window\":\"" + EscapaJson(nomes_[static_cast<size_t>(k)]) + "\"";
    out += Campo("class", QString::fromLatin1(JanelaExecucao::NomeClasse(j->classe())));
    out += Campo("caption", j->windowTitle());
    out += Campo("visible", j->isVisible());
    if (!j->windowIcon().isNull()) out += Campo("icon", true);
    if (j->isMinimized()) out += Campo("minimized", true);
    if (k == 0 && modoBandeja) out += Campo("tray", true);
    if (QString url = EnderecoNavegador(*zv, j); !url.isEmpty()) out += Campo("browser", url);
    out += Campo("client_width", j->TamanhoCliente().width());
    out += Campo("client_height", j->TamanhoCliente().height());
    // The menu bar's tabs on view, each with its options on view.
    const auto menus = j->MenusVisiveis();
    if (!menus.empty()) {
      out += ",\"menu\":[";
      for (size_t m = 0; m < menus.size(); ++m) {
        if (m) out += ',';
        out += "{\"title\":\"" + EscapaJson(menus[m].first.toStdU16String()) + "\",\"options\":[";
        for (qsizetype o = 0; o < menus[m].second.size(); ++o) {
          if (o) out += ',';
          out += "\"" + EscapaJson(menus[m].second[o].toStdU16String()) + "\"";
        }
        out += "]}";
      }
      out += ']';
    }
    out += "}\n";
    // Its controls in the tear-down's order of kinds, then by slot.
    for (int t = 0; t < kTiposControle; ++t) {
      auto tipo = static_cast<TipoControle>(t);
      const TabelaControles& tab = controles[static_cast<size_t>(t)];
      for (size_t s = 0; s < tab.nomes.size(); ++s) {
        QWidget* w = tab.instancias[s];
        if (!w || tab.nomes[s].empty() || w->window() != j) continue;
        QPoint p = w->mapTo(j->Cliente(), QPoint(0, 0));
        out += "{\"control\":\"" + Utf8(Info(tipo).palavra) + "\"";
        out += Campo("name", QString::fromStdU16String(tab.nomes[s]));
        out += Campo("slot", static_cast<int>(s));
        out += Campo("owner", QString::fromStdU16String(tab.donos[s]));
        out += Campo("top", p.y());
        out += Campo("left", p.x());
        out += Campo("width", w->width());
        out += Campo("height", w->height());
        Conteudo(tipo, w, out);
        out += Campo("visible", w->isVisibleTo(j));
        out += Campo("enabled", w->isEnabled());
        if (Info(tipo).focavel) out += Campo("tab_index", w->property("zvTabIndex").toInt());
        out += "}\n";
      }
    }
  }
  return out;
}

bool SistemaJanelas::Fotografa(const std::string& pasta, std::string& erro) {
  if (!principalFeita_) return true;
  QDir().mkpath(QString::fromStdString(pasta));
  for (int k = 0; k < kSlotsJanelas; ++k) {
    JanelaExecucao* j = janelas_[static_cast<size_t>(k)];
    if (!j || !j->isVisible()) continue;
    QString nome = QString::fromStdU16String(nomes_[static_cast<size_t>(k)]);
    nome.remove(QLatin1Char('"')).remove(QLatin1Char('/'));
    QString arquivo = QDir(QString::fromStdString(pasta)).filePath(nome + QStringLiteral(".png"));
    if (!j->grab().save(arquivo, "PNG")) {
      erro = std::string(msg::execucao::kNaoGrava) + arquivo.toStdString();
      return false;
    }
  }
  return true;
}

}  // namespace zv
