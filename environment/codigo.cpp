#include "environment/codigo.h"

#include <QAction>
#include <algorithm>
#include <cstdio>
#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QDesktopServices>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDateTime>
#include <QDir>
#include <QDockWidget>
#include <QHeaderView>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QPrinter>
#include <QPushButton>
#include <QScreen>
#include <QStatusBar>
#include <QStyle>
#include <QTableWidget>
#include <QTextDocument>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <QUrl>
#include <QVBoxLayout>

#include "core/mensagens.h"
#include "core/texto.h"
#include "core/variaveis.h"
#include "library/texto_qt.h"
#include "runtime/headless_host.h"
#include "environment/compilar.h"
#include "environment/configuracoes.h"
#include "environment/editor_codigo.h"
#include "environment/interacao.h"
#include "environment/mensagens.h"
#include "environment/settings/armazem_config.h"

namespace zv {

namespace fs = std::filesystem;
namespace m = msg::ambiente;

namespace {

Texto U(const std::string& s) { return QString::fromStdString(s).toStdU16String(); }
QString Tr(const char* s) { return QString::fromUtf8(s); }
constexpr char kTag[] = "tag";
constexpr char kInativo[] = "INATIVO";

}  // namespace

JanelaCodigo::JanelaCodigo(const fs::path& dirConfig, Interacao& interacao, QWidget* pai)
    : QMainWindow(pai), dirConfig_(dirConfig), interacao_(interacao) {
  setObjectName(QStringLiteral("Codigo"));
  CarregaPreferencias(dirConfig_);

  auto* centro = new QWidget(this);
  auto* v = new QVBoxLayout(centro);
  v->setContentsMargins(0, 0, 0, 0);
  v->setSpacing(0);
  MontaAbas(centro);
  editor_ = new EditorCodigo(centro);
  v->addWidget(editor_, 1);
  setCentralWidget(centro);
  MontaMenus();
  MontaBarra();

  barraPrograma_ = new QLabel(this);
  barraPrograma_->setObjectName(QStringLiteral("BarraInfPrograma"));
  barraEstado_ = new QLabel(this);
  statusBar()->addWidget(barraPrograma_, 1);
  irErro_ = new QPushButton(this);
  irErro_->setObjectName(QStringLiteral("IrParaErro"));
  irErro_->setFlat(true);
  irErro_->setCursor(Qt::PointingHandCursor);
  irErro_->setStyleSheet(QStringLiteral("color:#b03000;text-decoration:underline"));
  irErro_->hide();
  connect(irErro_, &QPushButton::clicked, this, [this] {
    if (!erro_) return;
    if (erro_->first != documento.codigoAtivo) TrocaCodigo(erro_->first);
    editor_->setCursorPosition(erro_->second, 0);
    editor_->ensureLineVisible(erro_->second);
    editor_->setFocus();
  });
  statusBar()->addPermanentWidget(irErro_);
  paginaErro_ = new QPushButton(this);
  paginaErro_->setObjectName(QStringLiteral("PaginaDoErro"));
  paginaErro_->setFlat(true);
  paginaErro_->setCursor(Qt::PointingHandCursor);
  paginaErro_->setStyleSheet(QStringLiteral("color:#2050b0;text-decoration:underline"));
  paginaErro_->hide();
  connect(paginaErro_, &QPushButton::clicked, this, [this] { ajuda_->PalavraNoEditor(comandoErro_); });
  statusBar()->addPermanentWidget(paginaErro_);
  ajuda_ = std::make_unique<Ajuda>(dirConfig_, interacao_);
  abreAjuda = [this](const QString& palavra) {
    if (palavra.isEmpty())
      ajuda_->MostraIndice();
    else
      ajuda_->PalavraNoEditor(palavra);
  };
  statusBar()->addPermanentWidget(barraEstado_);

  editor_->AplicaPreferencias(PreferenciasAtivas());
  connect(editor_, &QsciScintilla::textChanged, this, [this] { DefineModificado(true); });
  editor_->aoEsc = [this] { close(); };

  desfazer_ = new QTimer(this);
  desfazer_->setInterval(300);
  connect(desfazer_, &QTimer::timeout, this, [this] { ConsultaDesfazer(); });
  desfazer_->start();

  execucao_.dirConfig = dirConfig_;
  execucao_.aoMudar = [this](ControleExecucao::Estado e) { MostraEstado(e); };
  execucao_.aoParar = [this](TipoCaixa t, int codigo, int linha, const Texto& texto) {
    Parou(t, codigo, linha, texto);
  };
  execucao_.aoSeguir = [this](TipoCaixa t) { Seguiu(t); };
  MontaExtras();

  documento.nomeAtual = Documento::kNomeNovo;
  BarraInfPrograma(Q(documento.nomeAtual));
  nome_->setText(Tr(m::kCodigoPrincipal));
  TrocaCodigo(0);
  DefineModificado(false);
  MostraEstado(ControleExecucao::Estado::Parado);
  resize(900, 640);
  if (QScreen* s = QGuiApplication::primaryScreen()) move(s->availableGeometry().center() - rect().center());
  editor_->setFocus();
}

JanelaCodigo::~JanelaCodigo() = default;

// ---- Building the window ---------------------------------------------------------

QAction* JanelaCodigo::NovaAcao(const char* nome, const char* texto, const QKeySequence& atalho,
                                std::function<void()> f) {
  auto* a = new QAction(Tr(texto), this);
  a->setObjectName(QString::fromLatin1(nome));
  if (!atalho.isEmpty()) a->setShortcut(atalho);
  connect(a, &QAction::triggered, this, [f = std::move(f)] { f(); });
  addAction(a);
  return a;
}

QAction* JanelaCodigo::acao(const char* nome) const {
  return findChild<QAction*>(QString::fromLatin1(nome));
}

void JanelaCodigo::MontaMenus() {
  QMenu* arquivo = menuBar()->addMenu(Tr(m::kMenuArquivo));
  arquivo->addAction(NovaAcao("MenuNovoProg", m::kMenuNovo, QKeySequence(Qt::CTRL | Qt::Key_N), [this] { Novo(); }));
  arquivo->addAction(NovaAcao("MenuAbrir", m::kMenuAbrir, QKeySequence(Qt::CTRL | Qt::Key_O), [this] { Abre(); }));
  arquivo->addAction(NovaAcao("MenuSalvar", m::kMenuSalvar, QKeySequence(Qt::CTRL | Qt::Key_S), [this] { Salva(); }));
  arquivo->addAction(NovaAcao("MenuSalvarComo", m::kMenuSalvarComo, {}, [this] { SalvaComo(); }));
  arquivo->addAction(NovaAcao("MenuImprimir", m::kMenuImprimir, QKeySequence(Qt::CTRL | Qt::Key_P), [this] { Imprime(); }));
  arquivo->addSeparator();
  arquivo->addAction(NovaAcao("MenuSair", m::kMenuSair, {}, [this] { close(); }));

  QMenu* editar = menuBar()->addMenu(Tr(m::kMenuEditar));
  auto desfaz = [this](bool refaz) {
    if (Etiqueta(refaz ? "BtnRefazer" : "BtnDesfazer") == QLatin1String(kInativo)) return;
    editor_->setFocus();
    if (refaz ? editor_->isRedoAvailable() : editor_->isUndoAvailable()) refaz ? editor_->redo() : editor_->undo();
  };
  editar->addAction(NovaAcao("MenuDesfazer", m::kMenuDesfazer, QKeySequence(Qt::CTRL | Qt::Key_Z), [desfaz] { desfaz(false); }));
  editar->addAction(NovaAcao("MenuRefazer", m::kMenuRefazer, QKeySequence(Qt::CTRL | Qt::Key_Q), [desfaz] { desfaz(true); }));
  editar->addSeparator();
  editar->addAction(NovaAcao("MenuCodigo", m::kCodigoPrincipal, {}, [this] { TrocaCodigo(0); }));
  for (int i = 1; i <= 6; ++i) {
    QByteArray nome = "MenuExt" + QByteArray::number(i);
    QAction* a = NovaAcao(nome.constData(), "", {}, [this, i] { TrocaCodigo(i); });
    a->setText(Tr(m::kExtensao).arg(i));
    editar->addAction(a);
  }
  editar->addSeparator();
  editar->addAction(NovaAcao("MenuProcurar", m::kMenuProcurar, QKeySequence(Qt::CTRL | Qt::Key_F), [this] {
    editor_->setFocus();
    editor_->AbreProcura(false);
  }));
  editar->addAction(NovaAcao("MenuProximaPalavra", m::kMenuProxima, QKeySequence(Qt::Key_F3), [this] {
    editor_->setFocus();
    editor_->ProcuraPalavraNoCursor();
  }));
  editar->addAction(NovaAcao("MenuSubstituir", m::kMenuSubstituir, QKeySequence(Qt::CTRL | Qt::Key_H), [this] {
    editor_->setFocus();
    editor_->AbreProcura(true);
  }));
  editar->addAction(NovaAcao("AtivaBookmark", m::kMenuBookmark, QKeySequence(Qt::CTRL | Qt::Key_F2), [this] {
    editor_->setFocus();
    editor_->AlternaMarcador();
  }));
  editar->addAction(NovaAcao("MenuNextBookmark", m::kMenuNextBookmark, QKeySequence(Qt::Key_F2), [this] {
    editor_->setFocus();
    editor_->ProximoMarcador(false);
  }));
  editar->addAction(NovaAcao("MenuPrevBookmark", m::kMenuPrevBookmark, QKeySequence(Qt::SHIFT | Qt::Key_F2), [this] {
    editor_->setFocus();
    editor_->ProximoMarcador(true);
  }));
  editar->addAction(NovaAcao("MenuIrParaLinha", m::kMenuIrParaLinha, QKeySequence(Qt::CTRL | Qt::Key_G), [this] {
    editor_->setFocus();
    editor_->AbreIrParaLinha();
  }));
  editar->addSeparator();
  editar->addAction(NovaAcao("MenuConf", m::kMenuConf, {}, [this] { AbreConfiguracoes(); }));
  NovaAcao("SelecionaTudo", "", QKeySequence(Qt::CTRL | Qt::Key_A), [this] { editor_->SelecionaTudo(); });

  QMenu* programa = menuBar()->addMenu(Tr(m::kMenuPrograma));
  QAction* executar = NovaAcao("MenuExecutar", m::kMenuExecutar, QKeySequence(Qt::Key_F5), [this] { Executa(); });
  // F5 runs with or without Shift, Ctrl or Alt.
  executar->setShortcuts({QKeySequence(Qt::Key_F5), QKeySequence(Qt::SHIFT | Qt::Key_F5),
                          QKeySequence(Qt::CTRL | Qt::Key_F5), QKeySequence(Qt::ALT | Qt::Key_F5)});
  programa->addAction(executar);
  programa->addAction(NovaAcao("MenuEncerrar", m::kMenuEncerrar, QKeySequence(Qt::Key_F6), [this] { ComEncerra(); }));
  programa->addAction(NovaAcao("MenuDepurar", m::kMenuDepurar, {}, [this] { Depura(); }));
  programa->addAction(NovaAcao("MenuCompilar", m::kMenuCompilar, {}, [this] {
    GuardaCodigoAtual();
    FormCompilar form(dirConfig_, interacao_, QString::fromStdString(CaminhoAtual().string()), this);
    form.exec();
  }));

  QMenu* ajuda = menuBar()->addMenu(Tr(m::kMenuAjuda));
  ajuda->addAction(NovaAcao("MenuTopicos", m::kMenuTopicos, {}, [this] {
    if (abreAjuda) abreAjuda(QString());
  }));
  ajuda->addAction(NovaAcao("MenuHelp", m::kMenuHelp, QKeySequence(Qt::Key_F1), [this] {
    if (abreAjuda) abreAjuda(editor_->PalavraNoCursor());
  }));
  ajuda->addSeparator();
  ajuda->addAction(NovaAcao("MenuSuporte", m::kMenuSuporte, {}, [] {
    QDesktopServices::openUrl(QUrl(Tr(m::kEnderecoSuporte)));
  }));
  ajuda->addAction(NovaAcao("MenuWeb", m::kMenuWeb, {}, [] { QDesktopServices::openUrl(QUrl(Tr(m::kEnderecoWeb))); }));
  ajuda->addAction(NovaAcao("MenuSobre", m::kMenuSobre, {}, [this] {
    QDialog sobre(this);
    sobre.setObjectName(QStringLiteral("Sobre"));
    sobre.setWindowTitle(Tr(m::kSobreTitulo));
    auto* l = new QVBoxLayout(&sobre);
    auto* texto = new QLabel(Tr(m::kSobreTexto), &sobre);
    texto->setOpenExternalLinks(true);
    l->addWidget(texto);
    auto* ok = new QDialogButtonBox(QDialogButtonBox::Ok, &sobre);
    connect(ok, &QDialogButtonBox::accepted, &sobre, &QDialog::accept);
    l->addWidget(ok);
    sobre.exec();
  }));
}

void JanelaCodigo::MontaBarra() {
  QToolBar* barra = addToolBar(QStringLiteral("Tools"));
  barra->setObjectName(QStringLiteral("BarraFerramentas"));
  barra->setMovable(false);
  barra->setIconSize(QSize(20, 20));
  QStyle* s = style();
  struct Botao {
    const char* nome;
    const char* dica;
    QStyle::StandardPixmap icone;
    const char* menu;
  };
  const Botao botoes[] = {
      {"BtnNovo", m::kMenuNovo, QStyle::SP_FileIcon, "MenuNovoProg"},
      {"BtnAbrir", m::kMenuAbrir, QStyle::SP_DialogOpenButton, "MenuAbrir"},
      {"BtnGravar", m::kMenuSalvar, QStyle::SP_DialogSaveButton, "MenuSalvar"},
      {"BtnImprimir", m::kMenuImprimir, QStyle::SP_FileDialogDetailedView, "MenuImprimir"},
      {nullptr, nullptr, {}, nullptr},
      {"BtnDesfazer", m::kMenuDesfazer, QStyle::SP_ArrowBack, "MenuDesfazer"},
      {"BtnRefazer", m::kMenuRefazer, QStyle::SP_ArrowForward, "MenuRefazer"},
      {nullptr, nullptr, {}, nullptr},
      {"BtnExecutar", m::kMenuExecutar, QStyle::SP_MediaPlay, "MenuExecutar"},
      {"BtnPause", m::kDicaPausa, QStyle::SP_MediaPause, nullptr},
      {"BtnStop", m::kMenuEncerrar, QStyle::SP_MediaStop, "MenuEncerrar"},
      {"BtnProcurar", m::kDicaProcurar, QStyle::SP_FileDialogContentsView, "MenuProcurar"},
      {"BtnDepurar", m::kMenuDepurar, QStyle::SP_MediaSeekForward, "MenuDepurar"},
      {"BtnCompilar", m::kMenuCompilar, QStyle::SP_ComputerIcon, "MenuCompilar"},
      {"BtnConfig", m::kMenuConf, QStyle::SP_FileDialogListView, "MenuConf"},
  };
  for (const Botao& b : botoes) {
    if (!b.nome) {
      barra->addSeparator();
      continue;
    }
    auto* a = new QAction(s->standardIcon(b.icone), Tr(b.dica), this);
    a->setObjectName(QString::fromLatin1(b.nome));
    a->setToolTip(Tr(b.dica));
    a->setProperty("iconeAtivo", a->icon());
    if (b.menu) {
      QAction* menu = acao(b.menu);
      connect(a, &QAction::triggered, menu, &QAction::trigger);
    }
    barra->addAction(a);
    barra->widgetForAction(a)->setObjectName(QString::fromLatin1(b.nome));
    DefineEtiqueta(a, true);
  }
}

void JanelaCodigo::MontaAbas(QWidget* pai) {
  auto* linha = new QWidget(pai);
  linha->setObjectName(QStringLiteral("LinhaAbas"));
  auto* h = new QHBoxLayout(linha);
  h->setContentsMargins(4, 3, 4, 3);
  h->setSpacing(2);
  for (int i = 0; i < 7; ++i) {
    auto* b = new QToolButton(linha);
    b->setObjectName(QStringLiteral("BtnCod%1").arg(i));
    b->setCheckable(true);
    b->setAutoRaise(true);
    b->setText(i == 0 ? Tr(m::kCodigoPrincipal) : QString::number(i));
    b->setToolTip(i == 0 ? Tr(m::kCodigoPrincipal) : Tr(m::kExtensao).arg(i));
    b->setMinimumWidth(i == 0 ? 80 : 34);
    connect(b, &QToolButton::clicked, this, [this, i] { TrocaCodigo(i); });
    abas_[static_cast<size_t>(i)] = b;
    h->addWidget(b);
  }
  h->addSpacing(12);
  nome_ = new QLineEdit(linha);
  nome_->setObjectName(QStringLiteral("TxtPrograma"));
  nome_->setToolTip(Tr(m::kNomeCodigo));
  nome_->setMaximumWidth(220);
  nome_->installEventFilter(this);
  connect(nome_, &QLineEdit::textEdited, this, [this](const QString& t) {
    if (documento.codigoAtivo == 0) return;
    documento.fonte.nomes[static_cast<size_t>(documento.codigoAtivo - 1)] = T(t);
    LegendasDasAbas();
  });
  connect(nome_, &QLineEdit::returnPressed, this, [this] { editor_->setFocus(); });
  h->addWidget(nome_);
  h->addStretch();
  static_cast<QVBoxLayout*>(pai->layout())->addWidget(linha);
}

bool JanelaCodigo::eventFilter(QObject* o, QEvent* e) {
  // The main code has no name: its box passes the focus on at once.
  if (o == nome_ && e->type() == QEvent::FocusIn && documento.codigoAtivo == 0) {
    QTimer::singleShot(0, editor_, [this] { editor_->setFocus(); });
  }
  return QMainWindow::eventFilter(o, e);
}

// ---- State shown on the buttons ------------------------------------------------------

void JanelaCodigo::DefineEtiqueta(QAction* a, bool ativo) {
  if (!a) return;
  a->setProperty(kTag, ativo ? QString() : QString::fromLatin1(kInativo));
  QIcon icone = a->property("iconeAtivo").value<QIcon>();
  // The inactive picture: the same one, greyed; the button stays clickable.
  a->setIcon(ativo ? icone : QIcon(icone.pixmap(QSize(20, 20), QIcon::Disabled)));
}

QString JanelaCodigo::Etiqueta(const char* nome) const {
  QAction* a = acao(nome);
  return a ? a->property(kTag).toString() : QString();
}

bool JanelaCodigo::EstaModificado() const { return Etiqueta("BtnGravar").isEmpty(); }

void JanelaCodigo::DefineModificado(bool sim) { DefineEtiqueta(acao("BtnGravar"), sim); }

void JanelaCodigo::ConsultaDesfazer() {
  bool d = editor_->isUndoAvailable(), r = editor_->isRedoAvailable();
  if (d != Etiqueta("BtnDesfazer").isEmpty()) DefineEtiqueta(acao("BtnDesfazer"), d);
  if (r != Etiqueta("BtnRefazer").isEmpty()) DefineEtiqueta(acao("BtnRefazer"), r);
}

void JanelaCodigo::BarraInfPrograma(const QString& nome) { barraPrograma_->setText(nome); }
QString JanelaCodigo::TextoBarraInferior() const { return barraPrograma_->text(); }

void JanelaCodigo::MostraEstado(ControleExecucao::Estado e) {
  using E = ControleExecucao::Estado;
  DefineEtiqueta(acao("BtnExecutar"), e == E::Parado);
  DefineEtiqueta(acao("BtnPause"), e != E::Parado);
  DefineEtiqueta(acao("BtnStop"), e != E::Parado);
  DefineEtiqueta(acao("BtnDepurar"), e != E::Depurando);
  barraEstado_->setText(e == E::Parado ? QString() : Tr(e == E::Depurando ? m::kDepurando : m::kExecutando));
  if (e == E::Parado) {
    // What the run's windows covered is painted again now, not at the next event.
    editor_->viewport()->update();
    show();
    raise();
    activateWindow();
    if (fecharDepois_) QTimer::singleShot(0, this, [this] { close(); });
  }
}

// ---- The document ---------------------------------------------------------------

void JanelaCodigo::GuardaCodigoAtual() {
  auto i = static_cast<size_t>(documento.codigoAtivo);
  documento.fonte.textos[i] = T(editor_->text());
  pontos_[i] = editor_->Pontos();
  if (i != 0) documento.fonte.nomes[i - 1] = T(nome_->text());
}

fs::path JanelaCodigo::CaminhoAtual() const {
  QString pasta = Q(PreferenciasAtivas().dirPrograma).trimmed();
  return fs::path((pasta + Q(documento.nomeAtual)).toStdString());
}

void JanelaCodigo::LegendasDasAbas() {
  // A named code shows its name beside its number.
  for (int k = 1; k <= 6; ++k) {
    const QString nome = Q(documento.fonte.nomes[static_cast<size_t>(k - 1)]).trimmed();
    abas_[static_cast<size_t>(k)]->setText(nome.isEmpty() ? QString::number(k)
                                                           : QStringLiteral("%1 %2").arg(k).arg(nome.left(16)));
  }
}

void JanelaCodigo::MostraCodigoAtivo() {
  int i = documento.codigoAtivo;
  LegendasDasAbas();
  for (int k = 0; k < 7; ++k) abas_[static_cast<size_t>(k)]->setChecked(k == i);
  editor_->setText(Q(documento.fonte.textos[static_cast<size_t>(i)]));
  nome_->setText(i == 0 ? Tr(m::kCodigoPrincipal) : Q(documento.fonte.nomes[static_cast<size_t>(i - 1)]));
  nome_->setReadOnly(i == 0);
  // The marks go with the text they were set on.
  editor_->DefinePontos(pontos_[static_cast<size_t>(i)]);
  editor_->MarcaErro(erro_ && erro_->first == i ? erro_->second : -1);
  editor_->MarcaPasso(passo_ && passo_->first == i ? passo_->second : -1);
  editor_->setFocus();
}

void JanelaCodigo::TrocaCodigo(int indice) {
  if (indice < 0 || indice > 6) return;
  GuardaCodigoAtual();
  documento.codigoAtivo = indice;
  // Setting the editor's text is a change: the Save button lights up.
  MostraCodigoAtivo();
}

bool JanelaCodigo::GravaNoCaminho(const fs::path& caminho) {
  bool escrito = false;
  std::string erro;
  if (!Documento::GravaArquivo(caminho, documento.JuntaCodigos(), editor_->text().isEmpty(), &escrito, erro)) {
    interacao_.Avisa(this, QStringLiteral("Zarvolt"),
                     Tr(m::kNaoGravou).arg(QString::fromStdString(caminho.string()), QString::fromStdString(erro)));
    return false;
  }
  if (escrito) barraEstado_->setText(Tr(m::kGravado).arg(QString::fromStdString(caminho.string())));
  RemoveRecuperacao();
  return true;
}

void JanelaCodigo::Novo() {
  GuardaCodigoAtual();
  if (EstaModificado() &&
      interacao_.Pergunta(this, QStringLiteral("Zarvolt"), Tr(m::kSalvarMudancasEm).arg(Q(documento.nomeAtual)), true))
    GravaNoCaminho(CaminhoAtual());
  documento.nomeAtual = Documento::kNomeNovo;
  BarraInfPrograma(Q(documento.nomeAtual));
  editor_->setText(QString());
  documento.Limpa();
  EsqueceMarcas();
  RemoveRecuperacao();
  editor_->setFocus();
  DefineModificado(false);
  documento.temArquivo = false;
  DefineEtiqueta(acao("BtnDesfazer"), false);
  DefineEtiqueta(acao("BtnRefazer"), false);
  editor_->SendScintilla(QsciScintilla::SCI_EMPTYUNDOBUFFER);
  GuardaCodigoAtual();
}

void JanelaCodigo::Abre() {
  GuardaCodigoAtual();
  if (EstaModificado() && !editor_->text().isEmpty() &&
      interacao_.Pergunta(this, QStringLiteral("Zarvolt"), Tr(m::kSalvarArquivo).arg(Q(documento.nomeAtual)), true))
    GravaNoCaminho(CaminhoAtual());
  Salvar(true);
  documento.codigoAtivo = 0;
  MostraCodigoAtivo();
  editor_->SendScintilla(QsciScintilla::SCI_EMPTYUNDOBUFFER);
  DefineModificado(false);
}

void JanelaCodigo::Salva() {
  GuardaCodigoAtual();
  if (documento.ENovo()) {
    Salvar(false);
  } else if (GravaNoCaminho(CaminhoAtual())) {
    DefineModificado(false);
  }
  editor_->setFocus();
}

void JanelaCodigo::SalvaComo() {
  GuardaCodigoAtual();
  Salvar(false);
  editor_->setFocus();
}

void JanelaCodigo::AvisaLeitura(Documento::Leitura r, const QString& caminho) {
  const char* texto = r == Documento::Leitura::NaoEFonte ? m::kNaoEFonte
                      : r == Documento::Leitura::Binaria ? m::kBinario
                      : r == Documento::Leitura::Grande  ? m::kGrande
                                                         : m::kIlegivel;
  barraEstado_->setText(Tr(texto).arg(caminho));
}

void JanelaCodigo::Salvar(bool abrir) {
  Preferencias& p = PreferenciasAtivas();
  QString pasta = Q(p.dirPrograma).trimmed();
  QString nome = documento.temArquivo ? Q(p.nomePrograma).trimmed() : QString();
  if (LeConfig(dirConfig_, u"PrimeiraAbertura").empty()) {
    GravaConfig(dirConfig_, u"PrimeiraAbertura", u"1");
    // The first dialogue opens on the programs' own folder.
    QDir casa = QDir::home();
    casa.mkpath(QStringLiteral("Zarvolt/Programs"));
    pasta = casa.filePath(QStringLiteral("Zarvolt/Programs"));
    nome.clear();
  }
  if (!QDir(pasta).exists()) pasta = QDir::homePath();
  std::optional<QString> escolhido = interacao_.EscolheArquivo(
      this, !abrir, Tr(abrir ? m::kTituloAbrir : m::kTituloSalvar), Tr(m::kFiltro), pasta, nome);
  if (!escolhido) return;
  QString caminho = *escolhido;
  if (abrir) {
    documento.Limpa();
    EsqueceMarcas();
    RemoveRecuperacao();
    Documento::Leitura r = documento.Le(fs::path(caminho.toStdString()));
    // A file that isn't a source ends the form here: the name and folder
    // stay as they were.
    if (r != Documento::Leitura::Lida) return AvisaLeitura(r, caminho);
  } else {
    if (!caminho.contains(QLatin1Char('.'))) caminho += QStringLiteral(".Zvc");
    if (!GravaNoCaminho(fs::path(caminho.toStdString()))) return;
    DefineModificado(false);
  }
  Texto dir, arquivo;
  SeparaCaminho(fs::path(caminho.toStdString()), dir, arquivo);
  p.dirPrograma = dir;
  p.nomePrograma = arquivo;
  documento.temArquivo = true;
  GravaPreferencias(dirConfig_);
  documento.nomeAtual = Q(arquivo).trimmed().toStdU16String();
  BarraInfPrograma(Q(documento.nomeAtual));
}

void JanelaCodigo::ColaDoSeletor(const QString& texto) {
  if (texto.isEmpty()) return;  // a picker closed at once leaves nothing
  QClipboard* c = QGuiApplication::clipboard();
  c->clear();
  c->setText(texto);
  editor_->setFocus();
  QKeyEvent aperta(QEvent::KeyPress, Qt::Key_V, Qt::ControlModifier, QStringLiteral("\x16"));
  QKeyEvent solta(QEvent::KeyRelease, Qt::Key_V, Qt::ControlModifier, QStringLiteral("\x16"));
  QCoreApplication::sendEvent(editor_, &aperta);
  QCoreApplication::sendEvent(editor_, &solta);
}

void JanelaCodigo::AssociaSeFaltar(const std::function<std::string()>& faz) {
  if (!LeConfig(dirConfig_, u"AssociaZV").empty()) return;
  std::string falha = faz();
  if (falha.empty())
    GravaConfig(dirConfig_, u"AssociaZV", u"SIM");
  else  // tried again at the next start
    std::fprintf(stderr, m::kAssociacaoFalhou, falha.c_str());
}

void JanelaCodigo::AbreDaLinhaDeComando(const QString& caminho) {
  documento.Limpa();
  EsqueceMarcas();
  Documento::Leitura r = documento.Le(fs::path(caminho.toStdString()));
  if (r != Documento::Leitura::Lida) AvisaLeitura(r, caminho);
  Texto dir, arquivo;
  SeparaCaminho(fs::path(QFileInfo(caminho).absoluteFilePath().toStdString()), dir, arquivo);
  PreferenciasAtivas().dirPrograma = dir;
  PreferenciasAtivas().nomePrograma = arquivo;
  documento.temArquivo = true;
  documento.nomeAtual = arquivo;
  BarraInfPrograma(Q(arquivo));
  documento.codigoAtivo = 0;
  MostraCodigoAtivo();
  editor_->SendScintilla(QsciScintilla::SCI_EMPTYUNDOBUFFER);
  DefineModificado(false);
}

void JanelaCodigo::Imprime() {
  GuardaCodigoAtual();
  QString listagem = Tr(m::kCabecalhoListagem) + Q(documento.nomeAtual) + QStringLiteral("\r\n\r\n") +
                     Q(documento.fonte.textos[0]) + QStringLiteral("\r\n\r\n");
  for (int i = 1; i <= 6; ++i)
    if (!documento.fonte.textos[static_cast<size_t>(i)].empty())
      listagem += QStringLiteral("\r\n") + Q(documento.fonte.textos[static_cast<size_t>(i)]);
  if (!interacao_.Pergunta(this, QStringLiteral("Zarvolt"), Tr(m::kPrepareImpressora), false)) return;
  QPrinter impressora(QPrinter::HighResolution);
  if (!interacao_.EscolheImpressora(this, impressora)) return;
  QTextDocument doc;
  QFont fonte(QStringLiteral("Courier New"), 10);
  fonte.setStyleHint(QFont::Monospace);
  doc.setDefaultFont(fonte);
  // An empty line first, as the listing always began.
  doc.setPlainText(QStringLiteral("\n") + listagem.replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
  doc.print(&impressora);
}

// ---- Running -------------------------------------------------------------------

void JanelaCodigo::Executa() { Roda(false); }

void JanelaCodigo::Depura() {
  if (execucao_.estado() == ControleExecucao::Estado::Depurando) return;
  Roda(true);
}

void JanelaCodigo::Roda(bool depurar) {
  GuardaCodigoAtual();
  if (EstaModificado() && documento.ENovo()) Salvar(false);
  LimpaMarcaErro();
  // Debug steps at every line anyway.
  execucao_.pontosParada = depurar ? std::set<std::pair<int32_t, int32_t>>() : PontosParada();
  execucao_.Executa(documento.fonte, CaminhoAtual().string(), depurar);
}

void JanelaCodigo::LimpaMarcaErro() {
  erro_.reset();
  editor_->MarcaErro(-1);
  irErro_->hide();
  paginaErro_->hide();
}

void JanelaCodigo::ComEncerra() { execucao_.Encerra(); }

void JanelaCodigo::AbreConfiguracoes() {
  FormConfig form(dirConfig_, interacao_, this);
  form.exec();
  // Applied whether the form was confirmed or not: the record holds what counts.
  editor_->AplicaPreferencias(PreferenciasAtivas());
  AplicaExtras(LeExtras(dirConfig_));
}

void JanelaCodigo::closeEvent(QCloseEvent* e) {
  if (execucao_.Rodando()) {
    // The run unwinds first; the window closes when it has ended.
    fecharDepois_ = true;
    execucao_.Encerra();
    e->ignore();
    return;
  }
  fecharDepois_ = false;
  GuardaCodigoAtual();
  if (EstaModificado() &&
      interacao_.Pergunta(this, QStringLiteral("Zarvolt"), Tr(m::kModificadoSalvar).arg(Q(documento.nomeAtual)), true)) {
    Salva();
    // Asked to save and not saved (the dialogue cancelled, the disk
    // refusing): the window stays, so that the text isn't lost.
    if (EstaModificado()) {
      e->ignore();
      return;
    }
  }
  // Closed as the user wanted: nothing is left to recover.
  RemoveRecuperacao();
  e->accept();
}

// ---- Additions: error mark, Variables panel, breakpoints, recovery copy --------------

void JanelaCodigo::MontaExtras() {
  painel_ = new QDockWidget(Tr(m::kVariaveisTitulo), this);
  painel_->setObjectName(QStringLiteral("PainelVariaveis"));
  auto* corpo = new QWidget(painel_);
  auto* v = new QVBoxLayout(corpo);
  v->setContentsMargins(2, 2, 2, 2);
  ondeParou_ = new QLabel(corpo);
  ondeParou_->setObjectName(QStringLiteral("OndeParou"));
  ondeParou_->setText(Tr(m::kVariaveisQuando));
  ondeParou_->setWordWrap(true);
  v->addWidget(ondeParou_);
  tabela_ = new QTableWidget(0, 3, corpo);
  v->addWidget(tabela_, 1);
  tabela_->setObjectName(QStringLiteral("TabelaVariaveis"));
  tabela_->setHorizontalHeaderLabels({Tr(m::kColunaNome), Tr(m::kColunaTipo), Tr(m::kColunaValor)});
  tabela_->horizontalHeader()->setStretchLastSection(true);
  tabela_->verticalHeader()->hide();
  tabela_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  tabela_->setSelectionBehavior(QAbstractItemView::SelectRows);
  tabela_->setWordWrap(false);
  tabela_->verticalHeader()->setDefaultSectionSize(tabela_->fontMetrics().height() + 6);
  painel_->setWidget(corpo);
  painel_->setMinimumWidth(320);
  addDockWidget(Qt::RightDockWidgetArea, painel_);
  painel_->hide();
  QAction* ver = painel_->toggleViewAction();
  ver->setObjectName(QStringLiteral("MenuVariaveis"));
  ver->setText(Tr(m::kMenuVariaveis));
  // Opened while a run stands in a box: filled at once.
  connect(painel_, &QDockWidget::visibilityChanged, this, [this](bool v) {
    if (v) MostraVariaveis();
  });
  QMenu* menu = new QMenu(Tr(m::kMenuVer), this);
  menu->addAction(ver);
  menuBar()->insertMenu(menuBar()->actions().value(2), menu);

  recuperacao_ = new QTimer(this);
  recuperacao_->setInterval(30000);
  connect(recuperacao_, &QTimer::timeout, this, [this] { GravaCopiaRecuperacao(); });
  AplicaExtras(LeExtras(dirConfig_));
}

void JanelaCodigo::AplicaExtras(const Extras& e) {
  extras_ = e;
  editor_->pontosLigados = e.pontosParada;
  if (!e.pontosParada) {
    // Turned off: the marks go too, so that none stands unheeded.
    for (auto& p : pontos_) p.clear();
    editor_->DefinePontos({});
  }
  if (!e.marcaErro) LimpaMarcaErro();
  painel_->toggleViewAction()->setEnabled(e.variaveis);
  if (!e.variaveis) painel_->hide();
  if (e.recuperacao) {
    recuperacao_->start();
  } else {
    recuperacao_->stop();
    RemoveRecuperacao();
  }
}

std::set<std::pair<int32_t, int32_t>> JanelaCodigo::PontosParada() {
  std::set<std::pair<int32_t, int32_t>> r;
  if (!extras_.pontosParada) return r;
  pontos_[static_cast<size_t>(documento.codigoAtivo)] = editor_->Pontos();
  for (int c = 0; c < 7; ++c)
    for (int l : pontos_[static_cast<size_t>(c)]) r.insert({c, l + 1});
  return r;
}

void JanelaCodigo::EsqueceMarcas() {
  for (auto& p : pontos_) p.clear();
  passo_.reset();
  LimpaMarcaErro();
}

QString JanelaCodigo::NomeDoCodigo(int codigo) const {
  if (codigo <= 0 || codigo > 6) return Tr(m::kCodigoPrincipal);
  QString nome = Q(documento.fonte.nomes[static_cast<size_t>(codigo - 1)]).trimmed();
  return nome.isEmpty() ? Tr(m::kExtensao).arg(codigo) : nome;
}

void JanelaCodigo::Parou(TipoCaixa tipo, int codigo, int linha, const Texto& texto) {
  const int l = linha - 1;
  if (tipo == TipoCaixa::Erro) {
    // "Error in command Round(x ...": that command's page, where it has one.
    const QString t = Q(texto);
    const QString marca = QString::fromStdU16String(msg::kErroEmComando);
    qsizetype p = t.indexOf(marca);
    QString palavra;
    if (p >= 0)
      for (qsizetype k = p + marca.size(); k < t.size() && (t[k].isLetterOrNumber() || t[k] == QLatin1Char('_')); ++k)
        palavra += t[k];
    comandoErro_ = palavra;
    paginaErro_->setVisible(!palavra.isEmpty() && ajuda_->TemPagina(palavra));
    paginaErro_->setText(Tr(m::kPaginaDoComando).arg(palavra));
  }
  if (tipo == TipoCaixa::Erro && extras_.marcaErro && linha > 0) {
    // The mark and a way there; the caret stays where the user left it.
    erro_ = {codigo, l};
    if (codigo == documento.codigoAtivo) editor_->MarcaErro(l);
    irErro_->setText(Tr(m::kIrParaErro).arg(NomeDoCodigo(codigo)).arg(linha));
    irErro_->show();
  }
  if (tipo == TipoCaixa::Passo) {
    passo_ = {codigo, l};
    if (codigo == documento.codigoAtivo) editor_->MarcaPasso(l);
    barraEstado_->setText(Tr(m::kParadoEm).arg(NomeDoCodigo(codigo)).arg(linha));
  }
  if (painel_->isVisible()) MostraVariaveis();
}

void JanelaCodigo::Seguiu(TipoCaixa tipo) {
  if (tipo != TipoCaixa::Passo) return;
  passo_.reset();
  editor_->MarcaPasso(-1);
}

namespace {

// The names every run declares before the program's first line, learnt once
// from an interpreter of our own.
const std::set<Texto>& VariaveisPredeclaradas() {
  static const std::set<Texto> nomes = [] {
    HostConsole host(nullptr);
    host.mudo = true;
    Interpretador zv(host);
    zv.DeclaraSistema();
    std::set<Texto> r;
    for (int t = 0; t < 3; ++t)
      for (const EntradaVariavel& e : zv.variaveis.Diretorio(static_cast<TipoVariavel>(t))) r.insert(e.nome);
    return r;
  }();
  return nomes;
}

QString ValorParaMostrar(const Variaveis& v, TipoVariavel tipo, size_t k) {
  if (tipo == TipoVariavel::String) {
    QString t = Q(v.textos[k]);
    if (t.size() > 200) t = t.left(200) + QChar(0x2026);
    return QLatin1Char('"') + t + QLatin1Char('"');
  }
  if (tipo == TipoVariavel::Integer) return QString::number(v.inteiros[k]);
  return Q(NumeroParaTexto(v.decimais[k]));
}

}  // namespace

void JanelaCodigo::MostraVariaveis() {
  Interpretador* zv = execucao_.interpretador();
  if (!zv || !extras_.variaveis) return;
  struct Linha {
    QString nome, tipo, valor;
    bool sistema = false;
  };
  std::vector<Linha> linhas;
  const Variaveis& v = zv->variaveis;
  for (int t = 0; t < 3; ++t) {
    auto tipo = static_cast<TipoVariavel>(t);
    for (const EntradaVariavel& e : v.Diretorio(tipo)) {
      QString valor;
      if (e.tamanho == 1) {
        valor = ValorParaMostrar(v, tipo, static_cast<size_t>(e.inicio));
      } else {
        QStringList partes;
        for (int32_t i = 0; i < e.tamanho && i < 10; ++i)
          partes << ValorParaMostrar(v, tipo, static_cast<size_t>(e.inicio + i));
        if (e.tamanho > 10) partes << QString(QChar(0x2026));
        valor = Tr(m::kValores).arg(e.tamanho).arg(partes.join(QStringLiteral(", ")));
      }
      linhas.push_back({Q(e.nome), Q(NomeTipo(tipo)), valor, false});
    }
  }
  // The program's own variables first, then the predeclared ones, greyed.
  const std::set<Texto>& sistema = VariaveisPredeclaradas();
  for (Linha& l : linhas) l.sistema = sistema.count(T(l.nome)) > 0;
  std::sort(linhas.begin(), linhas.end(), [](const Linha& a, const Linha& b) {
    if (a.sistema != b.sistema) return b.sistema;
    return a.nome.compare(b.nome, Qt::CaseInsensitive) < 0;
  });
  tabela_->setRowCount(static_cast<int>(linhas.size()));
  for (int i = 0; i < static_cast<int>(linhas.size()); ++i) {
    const Linha& l = linhas[static_cast<size_t>(i)];
    int c = 0;
    for (const QString& texto : {l.nome, l.tipo, l.valor}) {
      auto* item = new QTableWidgetItem(texto);
      if (l.sistema) item->setForeground(palette().color(QPalette::Disabled, QPalette::Text));
      tabela_->setItem(i, c++, item);
    }
  }
  tabela_->resizeColumnToContents(0);
  tabela_->resizeColumnToContents(1);
  ondeParou_->setText(Tr(m::kVariaveisEm).arg(NomeDoCodigo(zv->editorAtual)).arg(zv->linhaAtual));
}

void JanelaCodigo::GravaCopiaRecuperacao() {
  if (!extras_.recuperacao) return;
  GuardaCodigoAtual();
  if (!EstaModificado()) return;
  const Texto caminho = documento.temArquivo ? U(CaminhoAtual().string()) : Texto(Documento::kNomeNovo);
  std::string erro;
  if (!GravaRecuperacao(ArquivoRecuperacao(dirConfig_), caminho, documento.fonte, erro))
    barraEstado_->setText(Tr(m::kRecuperacaoNaoGravada).arg(QString::fromStdString(erro)));
}

void JanelaCodigo::RemoveRecuperacao() {
  std::error_code ec;
  fs::remove(ArquivoRecuperacao(dirConfig_), ec);
}

void JanelaCodigo::OfereceRecuperacao() {
  const fs::path arquivo = ArquivoRecuperacao(dirConfig_);
  Texto caminho;
  FontePrograma fonte;
  switch (LeRecuperacao(arquivo, caminho, fonte)) {
    case Recuperacao::Nenhuma:
      return;
    case Recuperacao::Danificada: {
      fs::path guardado = arquivo;
      guardado += ".damaged";
      std::error_code ec;
      fs::rename(arquivo, guardado, ec);
      barraEstado_->setText(Tr(m::kRecuperacaoDanificada)
                                .arg(QString::fromStdString(arquivo.string()), QString::fromStdString(guardado.string())));
      return;
    }
    case Recuperacao::Lida:
      break;
  }
  QFileInfo info(QString::fromStdString(arquivo.string()));
  const QString quando = QLocale().toString(info.lastModified(), QLocale::ShortFormat);
  if (!interacao_.Pergunta(this, QStringLiteral("Zarvolt"), Tr(m::kRecuperar).arg(Q(caminho), quando), true)) {
    RemoveRecuperacao();
    return;
  }
  documento.Limpa();
  EsqueceMarcas();
  documento.fonte = std::move(fonte);
  Texto dir, nome;
  SeparaCaminho(fs::path(QString(Q(caminho)).toStdString()), dir, nome);
  documento.temArquivo = !dir.empty();
  if (documento.temArquivo) {
    PreferenciasAtivas().dirPrograma = dir;
    PreferenciasAtivas().nomePrograma = nome;
  }
  documento.nomeAtual = documento.temArquivo ? nome : Texto(Documento::kNomeNovo);
  BarraInfPrograma(Q(documento.nomeAtual));
  documento.codigoAtivo = 0;
  MostraCodigoAtivo();
  editor_->SendScintilla(QsciScintilla::SCI_EMPTYUNDOBUFFER);
  // Restored, not saved: the copy stays until the user saves or closes.
  DefineModificado(true);
}

}  // namespace zv
