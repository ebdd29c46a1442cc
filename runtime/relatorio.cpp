// Reports and printing. `Rep.Method` lays out rows of column cells on pages
// (all lengths in twips, 1,440 to the inch), drawn into page pictures for a
// preview the user browses and prints from, or straight onto the printer on
// a second run. `Printer.Method` writes lines on the printer by rows and
// columns. Without a screen (or without a printer) the printer is a PDF file.
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>
#include <QPrinterInfo>
#include <QPushButton>
#include <QRandomGenerator>
#include <QScrollArea>
#include <QToolButton>
#include <QVBoxLayout>
#include <array>
#include <functional>
#include <memory>

#include "library/arquivos.h"
#include "library/texto_qt.h"
#include "runtime/argumentos.h"
#include "runtime/dialogos.h"
#include "runtime/headless_host.h"
#include "runtime/janelas.h"
#include "runtime/mensagens.h"

namespace zv {

namespace {

constexpr int kColunas = 50;
constexpr int kSuperficieTwips = 20000;  // the preview's page surface, square
constexpr double kTwipsPorPixel = 15;    // at 96 dots to the inch
constexpr int kBranco = 16777215;

struct Coluna {
  int largura = 20;
  QString fonte = QStringLiteral("MS Sans Serif");
  double tamanho = 8;
  bool negrito = false;
  QString alinhamento = QStringLiteral("ESQ");
  bool vertical = true, horizontal = true;
  int corRegua = 0;
};

// The printer of a run: a real one, or a PDF file when there is none to
// reach (headless, or a desktop without printers).
struct Impressora {
  std::unique_ptr<QPrinter> printer;
  QPainter painter;
  QString arquivoPdf;  // empty for a real printer
  int paginas = 1;
  bool Ativa() const { return painter.isActive(); }
};

struct EstadoRelatorio {
  // The report.
  int colAtual = 0, posX = 0, posY = 0, tamLinha = 240;
  bool saidaVideo = true;
  int margemEsq = 0, margemTopo = 0, tamPagina = 15000;
  int totalPaginas = 1, paginaVista = 1, paginaImpressao = 1;
  QString prefixo;
  std::array<Coluna, kColunas> colunas;
  QImage pagina;  // PicXRel
  QString pasta;  // XRel, beside the program
  Impressora impressoraRel;
  bool emCurso = false;
  // Kept between reports of a run.
  int paginaInicial = 1, paginaFinal = 9999;
  Texto modoSaida;
  QString nomeImpressora;  // the one the preview's Print chose
  // Printer.Method.
  Impressora impressoraDireta;
  QFont fonteDireta{QStringLiteral("MS Sans Serif"), 10};
  int printerX = 0, printerY = 0;
  int impressos = 0;  // PDF files written this run

  // A run that ends inside a preview report leaves no page files behind.
  ~EstadoRelatorio();
};

EstadoRelatorio& Estado(Interpretador& zv) { return zv.Estado<EstadoRelatorio>(); }

// ---- Surfaces -------------------------------------------------------------------------

// Starts a printer: the chosen or default one on the desktop, a PDF file in
// the working folder otherwise.
void AbreImpressora(Interpretador& zv, EstadoRelatorio& e, Impressora& i) {
  i.printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
  bool real = !Console(zv) && !QPrinterInfo::availablePrinters().isEmpty();
  if (real) {
    if (!e.nomeImpressora.isEmpty()) i.printer->setPrinterName(e.nomeImpressora);
    i.arquivoPdf.clear();
  } else {
    i.arquivoPdf = QDir::current().absoluteFilePath(QStringLiteral("zarvolt-print-%1.pdf").arg(++e.impressos));
    i.printer->setOutputFormat(QPrinter::PdfFormat);
    i.printer->setOutputFileName(i.arquivoPdf);
  }
  i.paginas = 1;
  if (!i.painter.begin(i.printer.get())) throw FalhaHost(msg::ImpressoraRecusa);
}

void FechaImpressora(Interpretador& zv, Impressora& i) {
  if (!i.Ativa()) return;
  i.painter.end();
  if (i.arquivoPdf.isEmpty()) return;
  // Where the pages went, for whoever looks: the headless run's reader, or
  // the desktop user without a printer.
  if (HostConsole* h = Console(zv)) {
    h->EscreveLinha("{\"printed\":\"" + Utf8(T(QFileInfo(i.arquivoPdf).fileName())) +
                    "\",\"pages\":" + std::to_string(i.paginas) + "}");
  } else {
    Avisa(zv, msg::Formata(msg::SemImpressora, T(i.arquivoPdf)));
  }
}

// A painter on the report's surface with lengths in twips: `k` device
// pixels a twip.
struct Papel {
  QPainter* p;
  double k;
  std::unique_ptr<QPainter> proprio;
  int X(double twips) const { return qRound(twips * k); }
  double Twips(double px) const { return px / k; }
};

Papel PapelDe(EstadoRelatorio& e) {
  Papel papel;
  if (e.saidaVideo) {
    papel.proprio = std::make_unique<QPainter>(&e.pagina);
    papel.p = papel.proprio.get();
    papel.k = 1 / kTwipsPorPixel;
  } else {
    papel.p = &e.impressoraRel.painter;
    papel.k = e.impressoraRel.printer->resolution() / 1440.0;
  }
  papel.p->setRenderHint(QPainter::TextAntialiasing);
  return papel;
}

void DefineFonte(Papel& papel, const Coluna& c) {
  QFont f(c.fonte, 1);
  f.setPointSizeF(c.tamanho > 0 ? c.tamanho : 8);
  f.setBold(c.negrito);
  papel.p->setFont(f);
}

// DentroDaFaixa: the printer run's page is in the range the preview chose.
// The preview itself shows every page.
bool DentroDaFaixa(const EstadoRelatorio& e) {
  return e.saidaVideo || (e.paginaInicial <= e.paginaImpressao && e.paginaFinal >= e.paginaImpressao);
}

QString ArquivoPagina(const EstadoRelatorio& e, int n) {
  return e.pasta + u'/' + e.prefixo + QStringLiteral("%1.png").arg(n, 4, 10, QLatin1Char('0'));
}

void LimpaPagina(EstadoRelatorio& e) {
  int lado = qRound(kSuperficieTwips / kTwipsPorPixel);
  e.pagina = QImage(lado, lado, QImage::Format_RGB32);
  e.pagina.fill(Qt::white);
}

void ApagaPaginas(EstadoRelatorio& e) {
  for (int n = 1; n <= e.totalPaginas; ++n) QFile::remove(ArquivoPagina(e, n));
  QDir().rmdir(e.pasta);
}

EstadoRelatorio::~EstadoRelatorio() {
  if (emCurso && saidaVideo) ApagaPaginas(*this);
}

// ---- The engine -------------------------------------------------------------------------

// The value behind a key in a text of KEY:value items, up to a comma, a
// blank, a semicolon or the end; empty when the key isn't there.
QString PegaValor(const QString& texto, const QString& chave, bool* achou = nullptr) {
  int p = texto.indexOf(chave);
  if (achou) *achou = p >= 0;
  if (p < 0) return {};
  int i = p + int(chave.size()), f = i;
  while (f < texto.size() && texto[f] != u',' && texto[f] != u' ' && texto[f] != u';') ++f;
  return texto.mid(i, f - i);
}

void Config(Interpretador& zv, EstadoRelatorio& e, const QString& t0) {
  QString t = t0.toUpper();
  if (e.impressoraRel.Ativa()) FechaImpressora(zv, e.impressoraRel);
  e.tamLinha = 240;
  e.tamPagina = 15000;
  e.paginaImpressao = 1;
  e.margemEsq = PegaValor(t, QStringLiteral("LEFTMARGIN:")).toInt();
  e.margemTopo = PegaValor(t, QStringLiteral("TOPMARGIN:")).toInt();
  e.colAtual = e.posX = e.posY = 0;
  LimpaPagina(e);
  e.totalPaginas = 1;
  // No OUTPUT: key at all reads as the preview: a report with no place to go
  // is one to look at.
  bool temSaida = false;
  QString saida = PegaValor(t, QStringLiteral("OUTPUT:"), &temSaida);
  e.saidaVideo = !temSaida || saida == u"VIDEO";
  e.colunas.fill(Coluna());
  e.pasta = Q(CaminhoNoPrograma(u"XRel", zv.dirPrograma));
  if (e.saidaVideo) QDir().mkpath(e.pasta);
  e.prefixo = QString::number(QRandomGenerator::global()->bounded(1, 1001)) + QStringLiteral("TMP");
  if (!e.saidaVideo) AbreImpressora(zv, e, e.impressoraRel);
  e.emCurso = true;
}

// Each key the text holds, its value handed on; keys it lacks are left.
void ComChaves(const QString& t0, std::initializer_list<std::pair<const char*, std::function<void(const QString&)>>> chaves) {
  const QString t = t0.toUpper();
  for (const auto& [chave, aplica] : chaves) {
    bool achou = false;
    QString v = PegaValor(t, QString::fromLatin1(chave), &achou);
    if (achou) aplica(v);
  }
}

void Size(EstadoRelatorio& e, const QString& t) {
  ComChaves(t, {{"LINESIZE:", [&](const QString& v) { e.tamLinha = v.toInt(); }},
                {"PAGESIZE:", [&](const QString& v) { e.tamPagina = v.toInt(); }}});
}

void Col(EstadoRelatorio& e, int n, const QString& t) {
  if (n < 0 || n >= kColunas) throw FalhaHost(falha::ForaDoIndice);
  Coluna& c = e.colunas[size_t(n)];
  ComChaves(t, {{"WIDTH:", [&](const QString& v) { c.largura = v.toInt() * 120; }},
                {"FONTNAME:", [&](const QString& v) { c.fonte = v; }},
                {"FONTSIZE:", [&](const QString& v) { c.tamanho = v.toDouble(); }},
                {"BOLD:", [&](const QString& v) { c.negrito = v == u"TRUE"; }},
                {"ALIGN:", [&](const QString& v) { c.alinhamento = v; }},
                {"VERTAB:", [&](const QString& v) { c.vertical = v == u"TRUE"; }},
                {"HORTAB:", [&](const QString& v) { c.horizontal = v == u"TRUE"; }},
                {"TABCOLOR:", [&](const QString& v) { c.corRegua = v.toInt(); }}});
}

// MidX: the text a character at a time until it is wider than the limit;
// the character that crossed it stays.
QString CortaTexto(const Papel& papel, const QString& texto, double limite) {
  QFontMetrics fm(papel.p->font());
  QString r;
  for (QChar c : texto) {
    r += c;
    if (papel.Twips(fm.horizontalAdvance(r)) > limite) break;
  }
  return r;
}

void Add(EstadoRelatorio& e, const QString& texto, int corTexto, int corFundo) {
  if (e.colAtual >= kColunas) throw FalhaHost(falha::ForaDoIndice);
  const Coluna& c = e.colunas[size_t(e.colAtual)];
  Papel papel = PapelDe(e);
  DefineFonte(papel, c);
  QFontMetrics fm(papel.p->font());
  const double largTexto = papel.Twips(fm.horizontalAdvance(texto));
  const double altTexto = papel.Twips(fm.height());
  double desvio = 0;
  if (c.alinhamento == u"CENTER") desvio = (c.largura - largTexto) / 2;
  else if (c.alinhamento == u"RIGHT") desvio = (c.largura - 100) - largTexto;
  const bool dentro = DentroDaFaixa(e);
  const int x0 = e.margemEsq + e.posX, y0 = e.margemTopo + e.posY;
  if (corFundo != kBranco && dentro)
    papel.p->fillRect(QRect(papel.X(x0), papel.X(y0), papel.X(x0 + c.largura) - papel.X(x0),
                            papel.X(y0 + e.tamLinha) - papel.X(y0)),
                      CorDe(corFundo));
  const double x = x0 + 50 + desvio;
  const double y = y0 + int((e.tamLinha - altTexto) / 2);
  if (dentro) {
    QString cortado = CortaTexto(papel, texto, c.largura - 200);
    QPointF base(papel.X(x), papel.X(y) + fm.ascent());
    if (corTexto == 0) {
      papel.p->setPen(Qt::black);
    } else {
      // PrintColor: the text in its colour on a box of the fill colour.
      papel.p->fillRect(QRectF(papel.X(x), papel.X(y), fm.horizontalAdvance(cortado), fm.height()), CorDe(corFundo));
      papel.p->setPen(CorDe(corTexto));
    }
    papel.p->drawText(base, cortado);
  }
  papel.p->setPen(QPen(CorDe(c.corRegua), 0));
  if (c.vertical && dentro) {
    papel.p->drawLine(papel.X(x0), papel.X(y0), papel.X(x0), papel.X(y0 + e.tamLinha));
    papel.p->drawLine(papel.X(x0 + c.largura), papel.X(y0), papel.X(x0 + c.largura), papel.X(y0 + e.tamLinha));
  }
  if (c.horizontal && dentro) {
    papel.p->drawLine(papel.X(x0), papel.X(y0), papel.X(x0 + c.largura), papel.X(y0));
    papel.p->drawLine(papel.X(x0), papel.X(y0 + e.tamLinha), papel.X(x0 + c.largura), papel.X(y0 + e.tamLinha));
  }
  e.posX += c.largura;
  ++e.colAtual;
}

void Imprime(EstadoRelatorio& e, const QString& texto, int x) {
  if (!DentroDaFaixa(e)) return;
  Papel papel = PapelDe(e);
  DefineFonte(papel, e.colunas[0]);
  papel.p->setPen(Qt::black);
  QFontMetrics fm(papel.p->font());
  papel.p->drawText(QPointF(papel.X(e.margemEsq + x), papel.X(e.margemTopo + e.posY + 25) + fm.ascent()), texto);
}

void Linha(EstadoRelatorio& e, int x1, int x2, int cor, int altura) {
  if (!DentroDaFaixa(e)) return;
  Papel papel = PapelDe(e);
  papel.p->setPen(QPen(CorDe(cor), 0));
  const int y = e.margemTopo + e.posY - 15;
  papel.p->drawLine(papel.X(e.margemEsq + x1), papel.X(y), papel.X(e.margemEsq + x2), papel.X(y + altura));
}

void Imagem(EstadoRelatorio& e, const Texto& arquivo, bool avanca, int x) {
  QImage f;
  if (!arquivo.empty()) f.load(Q(arquivo));
  // A picture is as many twips as it has pixels at 96 to the inch.
  const int altura = f.isNull() ? 0 : qRound(f.height() * kTwipsPorPixel);
  if (!f.isNull() && DentroDaFaixa(e)) {
    Papel papel = PapelDe(e);
    const int x0 = e.margemEsq + e.posX + x, y0 = e.margemTopo + e.posY;
    papel.p->drawImage(QRect(papel.X(x0), papel.X(y0), papel.X(x0 + f.width() * kTwipsPorPixel) - papel.X(x0),
                             papel.X(y0 + altura) - papel.X(y0)),
                       f);
  }
  if (avanca) e.posY += altura;
}

void NovaLinha(EstadoRelatorio& e) {
  e.colAtual = e.posX = 0;
  e.posY += e.tamLinha;
}

void NovaPagina(Interpretador& zv, EstadoRelatorio& e) {
  if (e.saidaVideo) {
    e.pagina.save(ArquivoPagina(e, e.totalPaginas), "PNG");
    LimpaPagina(e);
    ++e.totalPaginas;
    zv.Bombeia();
  } else {
    if (DentroDaFaixa(e)) {
      e.impressoraRel.printer->newPage();
      ++e.impressoraRel.paginas;
    }
    ++e.paginaImpressao;
  }
  e.colAtual = e.posX = e.posY = 0;
}

// ---- The preview --------------------------------------------------------------------------

class Previa : public QDialog {
 public:
  Previa(Interpretador& zv, EstadoRelatorio& e) : QDialog(nullptr), zv_(zv), e_(e) {
    setObjectName(QStringLiteral("FrmXRel"));
    setWindowTitle(Q(zv.TituloPrograma()));
    auto* v = new QVBoxLayout(this);
    auto* topo = new QHBoxLayout;
    const char* setas[] = {"|<", "<", ">", ">|"};
    for (int i = 0; i < 4; ++i) {
      auto* b = new QToolButton(this);
      b->setText(QString::fromLatin1(setas[i]));
      b->setObjectName(QStringLiteral("ImgSeta%1").arg(i));
      connect(b, &QToolButton::clicked, this, [this, i] { Vai(i); });
      topo->addWidget(b);
    }
    rotulo_ = new QLabel(this);
    rotulo_->setObjectName(QStringLiteral("LblPagina"));
    topo->addWidget(rotulo_);
    topo->addStretch();
    topo->addWidget(new QLabel(Q(msg::PaginasAImprimir), this));
    ini_ = Campo(QStringLiteral("TxtPagIni"), e.paginaInicial);
    topo->addWidget(ini_);
    topo->addWidget(new QLabel(Q(msg::PaginasAte), this));
    fim_ = Campo(QStringLiteral("TxtPagFim"), e.paginaFinal);
    topo->addWidget(fim_);
    connect(ini_, &QLineEdit::returnPressed, fim_, [this] { fim_->setFocus(); });
    v->addLayout(topo);
    auto* area = new QScrollArea(this);
    folha_ = new QLabel;
    area->setWidget(folha_);
    area->setBackgroundRole(QPalette::Dark);
    v->addWidget(area, 1);
    auto* baixo = new QHBoxLayout;
    baixo->addStretch();
    auto* imprimir = new QPushButton(Q(msg::BotaoImprimir), this);
    imprimir->setObjectName(QStringLiteral("BtnImprimir"));
    auto* sair = new QPushButton(Q(msg::BotaoSair), this);
    sair->setObjectName(QStringLiteral("BtnSair"));
    connect(imprimir, &QPushButton::clicked, this, [this] { Imprimir(); });
    connect(sair, &QPushButton::clicked, this, [this] { Sair(); });
    baixo->addWidget(imprimir);
    baixo->addWidget(sair);
    v->addLayout(baixo);
    resize(900, 700);
    Mostra(1);
  }

  void Imprimir() {
    QPrinter p;
    QPrintDialog d(&p, this);
    if (d.exec() != QDialog::Accepted) {
      Avisa(zv_, msg::CanceladoPeloUsuario);
      return;
    }
    e_.nomeImpressora = p.printerName();
    e_.modoSaida = u"PRINTER";
    close();
  }
  void Sair() {
    e_.modoSaida.clear();
    close();
  }

 protected:
  void closeEvent(QCloseEvent* ev) override {
    e_.paginaInicial = ini_->text().toInt();
    e_.paginaFinal = fim_->text().toInt();
    QDialog::closeEvent(ev);
  }
  void keyPressEvent(QKeyEvent* ev) override {
    if (ev->key() == Qt::Key_Escape) return Sair();
    QDialog::keyPressEvent(ev);
  }

 private:
  QLineEdit* Campo(const QString& nome, int valor) {
    auto* c = new QLineEdit(QStringLiteral("%1").arg(valor, 4, 10, QLatin1Char('0')), this);
    c->setObjectName(nome);
    c->setMaximumWidth(60);
    return c;
  }
  void Vai(int seta) {
    int n = seta == 0 ? 1 : seta == 1 ? std::max(1, e_.paginaVista - 1)
                       : seta == 2 ? std::min(e_.totalPaginas, e_.paginaVista + 1) : e_.totalPaginas;
    Mostra(n);
  }
  void Mostra(int n) {
    e_.paginaVista = n;
    QImage f(ArquivoPagina(e_, n));
    folha_->setPixmap(QPixmap::fromImage(f));
    folha_->resize(f.size());
    rotulo_->setText(QStringLiteral("%1 of %2").arg(n).arg(e_.totalPaginas));
  }

  Interpretador& zv_;
  EstadoRelatorio& e_;
  QLabel* rotulo_;
  QLabel* folha_;
  QLineEdit *ini_, *fim_;
};

// Headless: the preview is a JSON line; the answer "print" (or "print 2-3",
// a range of pages) prints, after the printer dialogue's own answer; "exit"
// or none leaves.
void PreviaSemTela(Interpretador& zv, EstadoRelatorio& e, HostConsole& h) {
  for (;;) {
    std::string r;
    Texto faixa = T(QStringLiteral("%1-%2").arg(e.paginaInicial, 4, 10, QLatin1Char('0')).arg(e.paginaFinal, 4, 10, QLatin1Char('0')));
    bool ok = Responde(h, "preview", zv.TituloPrograma(), T(e.totalPaginas == 1 ? QStringLiteral("1 page") : QStringLiteral("%1 pages").arg(e.totalPaginas)), faixa, r);
    QString resposta = QString::fromStdString(r).trimmed().toLower();
    if (!ok || !resposta.startsWith(u"print")) {
      e.modoSaida.clear();
      return;
    }
    QStringList paginas = resposta.mid(5).trimmed().split(u'-', Qt::SkipEmptyParts);
    if (paginas.size() == 2) {
      e.paginaInicial = paginas[0].toInt();
      e.paginaFinal = paginas[1].toInt();
    }
    std::string p;
    // Only an answer of Cancel cancels; none left takes the printer.
    if (!Responde(h, "printer", Texto(), Texto(), Texto(), p) && !p.empty()) {
      Avisa(zv, msg::CanceladoPeloUsuario);
      continue;
    }
    e.modoSaida = u"PRINTER";
    return;
  }
}

void Finaliza(Interpretador& zv, EstadoRelatorio& e) {
  e.emCurso = false;
  if (e.saidaVideo) {
    e.pagina.save(ArquivoPagina(e, e.totalPaginas), "PNG");
    e.paginaVista = 1;
  } else {
    FechaImpressora(zv, e.impressoraRel);
  }
}

void RepEnd(Interpretador& zv, EstadoRelatorio& e) {
  bool video = e.saidaVideo;
  Finaliza(zv, e);
  if (e.modoSaida != u"PRINTER" && video) {
    if (HostConsole* h = Console(zv)) {
      PreviaSemTela(zv, e, *h);
    } else {
      Previa p(zv, e);
      e.modoSaida.clear();
      p.exec();
    }
    ApagaPaginas(e);
  } else {
    if (video) ApagaPaginas(e);
    e.modoSaida.clear();
  }
  zv.GravaVariavel(u"RetStr", Valor::DeTexto(e.modoSaida), false);
}

// ---- The commands -------------------------------------------------------------------------

// The method of "Rep.Method" or "Printer.Method", in capitals.
Texto Metodo(const Texto& nome) {
  size_t p = nome.find(u'.');
  return p == Texto::npos ? Texto() : Maiusculas(Apara(nome.substr(p + 1)));
}

Valor Rep(Interpretador& zv, const Texto& nome, const Texto& args) {
  // Fonts and pictures need the GUI, which comes up with the main window.
  Janelas(zv).Principal();
  Texto metodo = Metodo(nome);
  // A call in an expression reaches here as "Rep" alone (the name's walk
  // stops at the point): the one method with a result is meant.
  if (metodo.empty()) metodo = u"TESTENDPAGE";
  EstadoRelatorio& e = Estado(zv);
  std::vector<Texto> a = zv.SeparaArgumentos(args, 8, true);
  auto texto = [&](size_t i) { return Q(TextoNT(zv, Arg(a, i))); };
  auto numero = [&](size_t i, int padrao) { return Arg(a, i).empty() ? padrao : NumInt(zv, Arg(a, i)); };
  try {
    if (metodo == u"CONFIG") {
      QString t = texto(0);
      Config(zv, e, t);
      if (t.toUpper().contains(u"PRINTER")) e.modoSaida = u"PRINTER";
      return Valor();
    }
    if (!e.emCurso && metodo != u"TESTENDPAGE") throw FalhaHost(msg::RelatorioSemConfig);
    if (metodo == u"PAPERHEIGHT") Size(e, QStringLiteral("PAGESIZE:") + texto(0));
    else if (metodo == u"LINEHEIGHT") Size(e, QStringLiteral("LINESIZE:") + texto(0));
    else if (metodo == u"COL") Col(e, numero(0, 0), texto(1));
    else if (metodo == u"ADD") Add(e, texto(0), numero(1, 0), numero(2, kBranco));
    else if (metodo == u"PRINT") Imprime(e, texto(0), numero(1, 0));
    else if (metodo == u"LINE") Linha(e, numero(0, 0), numero(1, 0), numero(2, 0), numero(3, 0));
    else if (metodo == u"IMG")
      Imagem(e, ResolveArquivo(zv, TextoT(zv, Arg(a, 0))), Maiusculas(TextoNT(zv, Arg(a, 1))) == u"TRUE", numero(2, 0));
    else if (metodo == u"NEWPAGE") NovaPagina(zv, e);
    else if (metodo == u"NEWLINE") NovaLinha(e);
    else if (metodo == u"TESTENDPAGE") return Valor::TextoComAspas(e.posY > e.tamPagina ? u"True" : u"False");
    else if (metodo == u"END") RepEnd(zv, e);
  } catch (const FalhaHost& f) {
    zv.ErroExecucao(msg::Formata(msg::ErroNoRelatorio, Apara(nome.substr(nome.find(u'.') + 1)), f.descricao));
  }
  return Valor();
}

Impressora& ImpressoraDireta(Interpretador& zv, EstadoRelatorio& e) {
  if (!e.impressoraDireta.Ativa()) {
    AbreImpressora(zv, e, e.impressoraDireta);
    e.printerX = e.printerY = 0;
  }
  return e.impressoraDireta;
}

double TwipsImpressora(const Impressora& i) { return i.printer->resolution() / 1440.0; }

Valor Printer(Interpretador& zv, const Texto& nome, const Texto& args) {
  Janelas(zv).Principal();
  Texto metodo = Metodo(nome);
  EstadoRelatorio& e = Estado(zv);
  std::vector<Texto> a = zv.SeparaArgumentos(args, 101, true);
  try {
    if (metodo == u"FONT") {
      e.fonteDireta.setBold(false);
      e.fonteDireta.setItalic(false);
      for (size_t i = 0; i + 2 < a.size() && i < 100; ++i) {
        Texto palavra = Maiusculas(Apara(a[i]));
        if (palavra != u"NAME" && palavra != u"SIZE" && palavra != u"BOLD" && palavra != u"ITALIC") continue;
        QString v = Q(Maiusculas(TextoNT(zv, a[i + 2])));
        if (palavra == u"NAME") e.fonteDireta.setFamily(v);
        else if (palavra == u"SIZE" && v.toDouble() > 0) e.fonteDireta.setPointSizeF(v.toDouble());
        else if (palavra == u"BOLD") e.fonteDireta.setBold(v == u"TRUE");
        else e.fonteDireta.setItalic(v == u"TRUE");
      }
    } else if (metodo == u"POSITION") {
      e.printerY = NumInt(zv, Arg(a, 0)) * 220;
      e.printerX = NumInt(zv, Arg(a, 1)) * 120;
    } else if (metodo == u"WRITE") {
      Impressora& i = ImpressoraDireta(zv, e);
      QString linha;
      for (const Texto& x : a) linha += Q(TextoNT(zv, x));
      const double k = TwipsImpressora(i);
      i.painter.setFont(e.fonteDireta);
      i.painter.setPen(Qt::black);
      QFontMetrics fm(i.painter.font());
      i.painter.drawText(QPointF(e.printerX * k, e.printerY * k + fm.ascent()), linha);
      // The next line under it, from the left, as the printer's own print does.
      e.printerY += qRound(fm.height() / k);
      e.printerX = 0;
    } else if (metodo == u"DRAW") {
      Impressora& i = ImpressoraDireta(zv, e);
      Texto arquivo = ResolveArquivo(zv, TextoT(zv, Arg(a, 0)));
      QImage f;
      if (arquivo.empty() || !f.load(Q(arquivo))) throw FalhaHost(msg::FiguraInvalida);
      const double k = TwipsImpressora(i);
      i.painter.drawImage(QRectF(e.printerX * k, e.printerY * k, f.width() * kTwipsPorPixel * k,
                                 f.height() * kTwipsPorPixel * k),
                          f);
    } else if (metodo == u"NEWPAGE") {
      Impressora& i = ImpressoraDireta(zv, e);
      i.printer->newPage();
      ++i.paginas;
      e.printerX = e.printerY = 0;
    } else if (metodo == u"END") {
      FechaImpressora(zv, e.impressoraDireta);
    }
  } catch (const FalhaHost& f) {
    zv.ErroExecucao(msg::Formata(msg::ErroNaImpressora, Apara(nome.substr(nome.find(u'.') + 1)), f.descricao));
  }
  return Valor();
}

}  // namespace

void RegistraRelatorios(TabelaComandos& t) {
  t.rep = Rep;
  t.printer = Printer;
}

}  // namespace zv
