// Link, AnimatedGif and Browser: a text that opens an address, an animated
// picture, and a simple web view on a window.
#include <QDesktopServices>
#include <QFile>
#include <QFileInfo>
#include <QMouseEvent>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QPointer>
#include <QTextBrowser>
#include <QUrl>
#include <map>

#include "controls/figuras_padrao.h"
#include "controls/gif_animado.h"
#include "controls/rot.h"
#include "library/arquivos.h"
#include "library/texto_qt.h"
#include "runtime/argumentos.h"
#include "runtime/figuras.h"
#include "runtime/janelas.h"
#include "runtime/mensagens.h"

namespace zv {

namespace {

// ---- Link ---------------------------------------------------------------------------

constexpr char kEndereco[] = "zvEndereco";
constexpr char kAberto[] = "zvAberto";

// Fits the link to its text: as wide as the text, `folga` pixels taller.
void AjustaLink(Rot* r, int folga) {
  QFontMetrics fm(r->font());
  r->resize(fm.horizontalAdvance(r->text()) + 2, fm.height() + folga);
}

void AbreLink(SistemaJanelas& s, Rot* r) {
  QString endereco = r->property(kEndereco).toString();
  r->setProperty(kAberto, endereco);
  // Headless the address is only noted (the window dump shows it).
  if (!s.SemTela() && !endereco.isEmpty()) QDesktopServices::openUrl(QUrl::fromUserInput(endereco));
}

Valor CriaLink(Interpretador& zv, SistemaJanelas& s, const std::vector<Texto>& a) {
  Texto nome = TextoT(zv, Arg(a, 0));
  auto* r = new Rot(s.Atual()->Cliente());
  int slot = s.PoeNaTabela(TipoControle::Link, nome, r);
  // It looks like a link until the program says otherwise.
  QFont f = r->font();
  f.setUnderline(true);
  r->setFont(f);
  QPalette p = r->palette();
  p.setColor(QPalette::WindowText, Qt::blue);
  r->setPalette(p);
  r->setAutoFillBackground(false);
  r->setCursor(Qt::PointingHandCursor);
  r->setText(Q(TextoNT(zv, Arg(a, 3))));
  r->setProperty(kEndereco, Q(TextoT(zv, Arg(a, 4))));
  r->move(s.PxColuna(Num(zv, Arg(a, 2))), s.PxLinha(Num(zv, Arg(a, 1))));
  AjustaLink(r, 10);
  r->relata = [&s, slot, r](const DadosEvento& e) {
    s.RelataControle(TipoControle::Link, slot, e);
    if (e.tipo != EventoControle::Clique) return;
    AbreLink(s, r);
    s.FocaAuxiliar();
  };
  r->show();
  s.FocaAuxiliar();
  return Valor();
}

void MembroLink(Interpretador& zv, SistemaJanelas& s, Rot* r, const std::vector<Texto>& a) {
  Texto primeiro = Apara(Arg(a, 0));
  Texto prop = PalavraDoMembro(primeiro);
  Texto valor = Arg(a, 2);
  if (prop == u".TXT") {
    r->setText(Q(TextoNT(zv, valor)));
    AjustaLink(r, r->height() - QFontMetrics(r->font()).height());
  } else if (prop == u".LINK") {
    r->setProperty(kEndereco, Q(TextoT(zv, valor)));
  } else if (prop == u".UNDERLINE") {
    QFont f = r->font();
    f.setUnderline(Logico(zv, valor) == 1);
    r->setFont(f);
  } else if (prop == u".HEIGHT") {
    r->resize(r->width(), s.PxLinha(Num(zv, valor)));
  } else if (prop == u".WIDTH") {
    r->resize(s.PxColuna(Num(zv, valor)), r->height());
  } else if (prop == u".BACKCOLOR") {
    r->setAutoFillBackground(true);
    s.MembroComum(TipoControle::Link, r, prop, primeiro, valor);
    AjustaLink(r, 5);
  } else {
    s.MembroComum(TipoControle::Link, r, prop, primeiro, valor);
  }
}

// ---- AnimatedGif --------------------------------------------------------------------

// A float gif draws over the window without being one of its controls: the
// platform's AniGIF did. Marked so, it takes neither clicks nor sizes.
constexpr char kFlutua[] = "zvFlutua";

bool Flutua(const QWidget* w) { return w->property(kFlutua).toBool(); }

// The gif a program names, loaded into the control; false after the box
// that says why not.
bool CarregaGif(Interpretador& zv, GifAnimado* g, const Texto& nome, bool flutua) {
  if (int n = ProcuraNaLista(QString::fromLatin1(kListaGifs), Q(nome)); n >= 0) {
    if (flutua) {
      zv.CaixaCritica(msg::GifFlutuanteInvalido);
      return false;
    }
    g->Carrega(GifPadrao(n));
  } else {
    Texto caminho = ResolveArquivo(zv, nome);
    if (caminho.empty()) {
      zv.ErroExecucao(Texto(msg::GifAusente) + u"\r" + nome);
      return false;
    }
    QuadrosGif q = LeGif(Q(caminho));
    if (q.quadros.empty()) throw FalhaHost(msg::FiguraInvalida);
    g->Carrega(std::move(q));
  }
  g->Para();
  g->MostraQuadro(0);
  return true;
}

Valor CriaGif(Interpretador& zv, SistemaJanelas& s, const std::vector<Texto>& a) {
  Texto nome = TextoT(zv, Arg(a, 0));
  bool flutua = Num(zv, Arg(a, 2)) == 1;
  Texto gif = TextoT(zv, Arg(a, 1));
  if (flutua && ProcuraNaLista(QString::fromLatin1(kListaGifs), Q(gif)) >= 0) {
    zv.CaixaCritica(msg::GifFlutuanteInvalido);
    return Valor();
  }
  auto* g = new GifAnimado(s.Atual()->Cliente());
  int slot = s.PoeNaTabela(TipoControle::Gif, nome, g);
  g->setProperty(kFlutua, flutua);
  if (flutua) {
    g->setAttribute(Qt::WA_TransparentForMouseEvents);
  } else {
    g->relata = [&s, slot](const DadosEvento& e) { s.RelataControle(TipoControle::Gif, slot, e); };
  }
  if (CarregaGif(zv, g, gif, flutua)) g->show();
  return Valor();
}

Valor MembroGif(Interpretador& zv, SistemaJanelas& s, GifAnimado* g, const std::vector<Texto>& a) {
  Texto primeiro = Apara(Arg(a, 0));
  Texto prop = PalavraDoMembro(primeiro);
  Texto valor = Arg(a, 2);
  const bool flutua = Flutua(g);
  if (prop == u".LIN") {
    g->move(g->x(), s.PxLinha(Num(zv, valor)));
  } else if (prop == u".COL") {
    g->move(s.PxColuna(Num(zv, valor)), g->y());
  } else if (prop == u".HEIGHT" || prop == u".WIDTH") {
    const bool altura = prop == u".HEIGHT";
    if (flutua) {
      Avisa(zv, altura ? msg::GifFlutuanteAltura : msg::GifFlutuanteLargura);
    } else if (Arg(a, 1).empty() && valor.empty()) {
      return Valor::DeDouble(altura ? g->height() / s.linSize : g->width() / s.colSize);
    } else {
      g->Estica(true);
      if (altura)
        g->resize(g->width(), s.PxLinha(Num(zv, valor)));
      else
        g->resize(s.PxColuna(Num(zv, valor)), g->height());
    }
  } else if (prop == u".NEXTFRAME") {
    g->Proximo();
  } else if (prop == u".PREVIOUSFRAME") {
    g->Anterior();
  } else if (prop == u".FRAMENUMBER") {
    g->MostraQuadro(NumInt(zv, valor));
  } else if (prop == u".BACK") {
    g->lower();
  } else if (prop == u".FRONT") {
    g->raise();
  } else if (prop == u".PLAY") {
    g->Toca();
  } else if (prop == u".STOP") {
    g->Para();
  } else if (prop == u".LOOP") {
    Texto v = TextoNT(zv, valor);
    g->repete = flutua ? v != u"0" : (Logico(zv, valor) == 1 || (Logico(zv, valor) < 0 && Num(zv, valor) != 0));
  } else if (prop == u".IMAGE") {
    CarregaGif(zv, g, TextoT(zv, valor), flutua);
  } else if (prop == u".VISIBLE") {
    int v = Logico(zv, valor);
    if (v >= 0) g->setVisible(v == 1);
  }
  return Valor();
}

// ---- Browser ----------------------------------------------------------------------

// A plain web view: pages from files and from http(s) addresses, their
// links followed inside it, with a history to go back and forth in. No
// scripts and no style sheets: it shows what QTextBrowser's HTML shows.
class Navegador : public QTextBrowser {
 public:
  explicit Navegador(QWidget* pai) : QTextBrowser(pai) {
    setOpenLinks(false);
    connect(this, &QTextBrowser::anchorClicked, this, [this](const QUrl& u) { Navega(atual_.resolved(u)); });
  }

  void Navega(const QUrl& u) {
    if (u.isEmpty()) return;
    if (historico_.size() > size_t(posicao_ + 1)) historico_.resize(size_t(posicao_ + 1));
    historico_.push_back(u);
    posicao_ = int(historico_.size()) - 1;
    if (inicio_.isEmpty()) inicio_ = u;
    Carrega(u);
  }
  void Volta() {
    if (posicao_ > 0) Carrega(historico_[size_t(--posicao_)]);
  }
  void Avanca() {
    if (posicao_ + 1 < int(historico_.size())) Carrega(historico_[size_t(++posicao_)]);
  }
  void Inicio() {
    if (!inicio_.isEmpty()) Navega(inicio_);
  }
  void Recarrega() {
    if (!atual_.isEmpty()) Carrega(atual_);
  }
  void ParaCarga() {
    if (resposta_) resposta_->abort();
  }
  const QUrl& Atual() const { return atual_; }

 private:
  void Carrega(const QUrl& u) {
    ParaCarga();
    atual_ = u;
    if (u.isLocalFile() || u.scheme().isEmpty()) {
      QFile f(u.isLocalFile() ? u.toLocalFile() : u.toString());
      if (f.open(QIODevice::ReadOnly)) {
        document()->setBaseUrl(QUrl::fromLocalFile(QFileInfo(f).absoluteFilePath()));
        setHtml(QString::fromUtf8(f.readAll()));
      }
      return;
    }
    if (!rede_) rede_ = new QNetworkAccessManager(this);
    resposta_ = rede_->get(QNetworkRequest(u));
    QPointer<QNetworkReply> r = resposta_;
    connect(r, &QNetworkReply::finished, this, [this, r] {
      if (!r) return;
      r->deleteLater();
      if (r->error() == QNetworkReply::NoError) {
        document()->setBaseUrl(r->url());
        setHtml(QString::fromUtf8(r->readAll()));
      }
    });
  }

  std::vector<QUrl> historico_;
  int posicao_ = -1;
  QUrl atual_, inicio_;
  QNetworkAccessManager* rede_ = nullptr;
  QPointer<QNetworkReply> resposta_;
};

struct EstadoNavegadores {
  std::map<const JanelaExecucao*, QPointer<Navegador>> porJanela;
};

// The current window's browser, made hidden on first use.
Navegador* NavegadorDe(Interpretador& zv, SistemaJanelas& s) {
  JanelaExecucao* j = s.Atual();
  auto& n = zv.Estado<EstadoNavegadores>().porJanela[j];
  if (!n) {
    n = new Navegador(j->Cliente());
    n->setObjectName(QStringLiteral("Navegador"));
    n->setFont(QFont());  // pages read in the desktop's font, not the window's printing one
    n->hide();
  }
  return n;
}

// An address as a program writes it: a path of a file beside the program,
// or anything a browser's address bar takes.
QUrl Endereco(Interpretador& zv, const Texto& t) {
  Texto arquivo = ResolveArquivo(zv, t);
  if (!arquivo.empty()) return QUrl::fromLocalFile(QFileInfo(Q(arquivo)).absoluteFilePath());
  return QUrl::fromUserInput(Q(t));
}

Valor CmdBrowser(Interpretador& zv, const Texto& argumentos) {
  std::vector<Texto> a = zv.SeparaArgumentos(argumentos, 6);
  SistemaJanelas& s = Janelas(zv);
  Texto verbo = Maiusculas(Apara(Arg(a, 0)));
  Navegador* n = NavegadorDe(zv, s);
  if (verbo == u"ACTIVATE") {
    n->setGeometry(s.PxColuna(Num(zv, Arg(a, 2))), s.PxLinha(Num(zv, Arg(a, 1))), s.PxColuna(Num(zv, Arg(a, 4))),
                   s.PxLinha(Num(zv, Arg(a, 3))));
    n->show();
  } else if (verbo == u"URL") {
    n->Navega(Endereco(zv, TextoT(zv, Arg(a, 1))));
  } else if (verbo == u"BACK") {
    n->Volta();
  } else if (verbo == u"FORWARD") {
    n->Avanca();
  } else if (verbo == u"STOP") {
    n->ParaCarga();
  } else if (verbo == u"HOME") {
    n->Inicio();
  } else if (verbo == u"REFRESH") {
    n->Recarrega();
  }
  return Valor();
}

// ---- The commands -----------------------------------------------------------------

Valor CmdLink(Interpretador& zv, const Texto& argumentos) {
  FormasDeControle f;
  f.cria = [&zv](SistemaJanelas& s, const std::vector<Texto>& a) { return CriaLink(zv, s, a); };
  f.membro = [&zv](SistemaJanelas& s, int slot, const std::vector<Texto>& a) {
    if (auto* r = static_cast<Rot*>(s.controles[size_t(TipoControle::Link)].instancias[size_t(slot)].data()))
      MembroLink(zv, s, r, a);
    return Valor();
  };
  return ComandoDeControle(zv, argumentos, TipoControle::Link, f);
}

Valor CmdAnimatedGif(Interpretador& zv, const Texto& argumentos) {
  FormasDeControle f;
  f.cria = [&zv](SistemaJanelas& s, const std::vector<Texto>& a) { return CriaGif(zv, s, a); };
  f.membro = [&zv](SistemaJanelas& s, int slot, const std::vector<Texto>& a) {
    auto* g = static_cast<GifAnimado*>(s.controles[size_t(TipoControle::Gif)].instancias[size_t(slot)].data());
    return g ? MembroGif(zv, s, g, a) : Valor();
  };
  return ComandoDeControle(zv, argumentos, TipoControle::Gif, f);
}

}  // namespace

void DescreveMidia(TipoControle tipo, QWidget* w, std::string& s,
                   const std::function<std::string(const char*, const QString&)>& campo) {
  if (tipo == TipoControle::Link) {
    auto* r = static_cast<Rot*>(w);
    s += campo("caption", r->text());
    s += campo("address", r->property(kEndereco).toString());
    if (r->property(kAberto).isValid()) s += campo("opened", r->property(kAberto).toString());
  } else if (tipo == TipoControle::Gif) {
    auto* g = static_cast<GifAnimado*>(w);
    if (Flutua(g)) s += campo("mode", QStringLiteral("float"));
    s += campo("frame", QStringLiteral("%1/%2").arg(g->Quadros() ? g->Quadro() + 1 : 0).arg(g->Quadros()));
    s += campo("playing", g->Tocando() ? QStringLiteral("yes") : QStringLiteral("no"));
  }
}

QString EnderecoNavegador(Interpretador& zv, const JanelaExecucao* j) {
  auto& m = zv.Estado<EstadoNavegadores>().porJanela;
  auto it = m.find(j);
  if (it == m.end() || !it->second || !it->second->isVisibleTo(j)) return {};
  return it->second->Atual().toString();
}

void RegistraMidia(TabelaComandos& t) {
  t.Define(u"Link", CmdLink);
  t.Define(u"AnimatedGif", CmdAnimatedGif);
  t.Define(u"Browser", CmdBrowser);
}

}  // namespace zv
