#include "environment/ajuda.h"

#include <QDesktopServices>
#include <QFocusEvent>
#include <QFrame>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QStyle>
#include <QTextEdit>
#include <QToolButton>
#include <QUrl>
#include <QVBoxLayout>
#include <algorithm>
#include <cstdio>
#include <fstream>
#include <optional>
#include <system_error>

#include "environment/interacao.h"
#include "environment/lista_ajuda.h"
#include "environment/mensagens.h"
#include "library/arquivos.h"
#include "runtime/rtf.h"

namespace zv {

namespace fs = std::filesystem;
namespace m = msg::ambiente;

namespace {

QString Tr(const char* s) { return QString::fromUtf8(s); }
QString Q(TextoV t) { return QString::fromUtf16(t.data(), static_cast<qsizetype>(t.size())); }

// A number field of the directory, as the original's Val read it: the
// leading digits, blanks skipped; anything else is 0.
long long Campo(std::string_view c) {
  long long v = 0;
  size_t i = 0;
  while (i < c.size() && c[i] == ' ') ++i;
  for (; i < c.size() && c[i] >= '0' && c[i] <= '9' && v < (1LL << 50); ++i) v = v * 10 + (c[i] - '0');
  return v;
}

std::string Apara(std::string s) {
  size_t a = s.find_first_not_of(' ');
  if (a == std::string::npos) return {};
  return s.substr(a, s.find_last_not_of(' ') - a + 1);
}

// The directory's entry for `pagina`: every slot is looked at, a blank name
// doesn't end the directory.
struct EntradaPagina {
  long long tamanho, posicao;
};
std::optional<EntradaPagina> AchaPagina(std::ifstream& in, TextoV pagina) {
  std::string diretorio(static_cast<size_t>(kTamanhoDiretorio), '\0');
  in.read(diretorio.data(), kTamanhoDiretorio);
  diretorio.resize(static_cast<size_t>(in.gcount()));
  in.clear();
  const QString procurado = Q(pagina).toUpper();
  for (size_t e = 0; e + kTamanhoSlot <= diretorio.size(); e += kTamanhoSlot) {
    std::string_view entrada(diretorio.data() + e, kTamanhoSlot);
    if (QString::fromLatin1(Apara(std::string(entrada.substr(0, kTamanhoNomeEntrada)))).toUpper() != procurado)
      continue;
    return EntradaPagina{Campo(entrada.substr(kTamanhoNomeEntrada, kTamanhoCampoTamanho)),
                         Campo(entrada.substr(kTamanhoNomeEntrada + kTamanhoCampoTamanho, kTamanhoCampoPosicao))};
  }
  return std::nullopt;
}

}  // namespace

bool ExtraiArquivoComando(const fs::path& pacote, const fs::path& destino, TextoV pagina) {
  std::error_code ec;
  fs::remove(destino, ec);
  if (!fs::exists(pacote, ec)) std::ofstream(pacote, std::ios::binary);  // made empty, as opening it did
  std::ifstream in(pacote, std::ios::binary);
  std::ofstream out(destino, std::ios::binary);
  if (!in || !out) return false;
  const std::optional<EntradaPagina> e = AchaPagina(in, pagina);
  if (!e) return false;
  // A page cut short gives what there is: no check was ever made.
  std::string dados;
  if (e->posicao > 0) {
    dados.resize(static_cast<size_t>(std::min<long long>(e->tamanho, 64LL << 20)));
    in.seekg(e->posicao - 1);
    in.read(dados.data(), static_cast<std::streamsize>(dados.size()));
    dados.resize(static_cast<size_t>(std::max<std::streamsize>(in.gcount(), 0)));
  }
  out.write(dados.data(), static_cast<std::streamsize>(dados.size()));
  return true;
}

// ---- Ajuda --------------------------------------------------------------------------

Ajuda::Ajuda(const fs::path& pasta, Interacao& interacao) : pasta_(pasta), interacao_(interacao) {}

Ajuda::~Ajuda() {
  delete indice_;
  delete leitor_;
}

FormAjuda* Ajuda::indice() {
  if (!indice_) indice_ = new FormAjuda(*this);
  return indice_;
}

FormIntro* Ajuda::leitor() {
  if (!leitor_) leitor_ = new FormIntro(*this);
  return leitor_;
}

bool Ajuda::ExtraiComando() {
  const fs::path rtf = pasta_ / "Command.rtf";
  if (!ExtraiArquivoComando(pasta_ / "Commands.pack", rtf, temaAtual + u".rtf")) {
    leitor()->texto()->clear();
    return false;
  }
  leitor()->Carrega(rtf);
  return true;
}

bool Ajuda::TemPagina(const QString& palavra) const {
  if (palavra.trimmed().isEmpty()) return false;
  // Only a look at the directory: nothing is written, no archive is made.
  std::ifstream in(pasta_ / "Commands.pack", std::ios::binary);
  return in && AchaPagina(in, palavra.trimmed().toStdU16String() + u".rtf").has_value();
}

void Ajuda::MostraLeitor() {
  FormIntro* l = leitor();
  l->AjustaTitulo(temaAtual);
  l->painel()->hide();
  l->show();
  l->raise();
  l->activateWindow();
}

void Ajuda::PalavraNoEditor(const QString& palavra) {
  temaAtual = palavra.trimmed().toStdU16String();
  if (!temaAtual.empty() && ExtraiComando()) {
    MostraLeitor();
  } else {
    MostraIndice();
  }
}

void Ajuda::MostraIndice() {
  FormAjuda* i = indice();
  i->show();
  i->raise();
  i->activateWindow();
  i->caixa()->setFocus();
}

// ---- The index ------------------------------------------------------------------------

FormAjuda::FormAjuda(Ajuda& ajuda) : QWidget(nullptr, Qt::Window), ajuda_(ajuda) {
  setObjectName(QStringLiteral("Ajuda"));
  setWindowTitle(Tr(m::kAjudaTitulo));
  auto* v = new QVBoxLayout(this);
  auto* topo = new QHBoxLayout();
  auto* livro = new QToolButton(this);
  livro->setObjectName(QStringLiteral("Book1"));
  livro->setIcon(style()->standardIcon(QStyle::SP_FileDialogInfoView));
  livro->setIconSize(QSize(32, 32));
  livro->setAutoRaise(true);
  livro->setToolTip(Tr(m::kAjudaLivro));
  connect(livro, &QToolButton::clicked, this, [this] {
    ajuda_.temaAtual = u"Curso";
    ajuda_.ExtraiComando();
    ajuda_.MostraLeitor();
  });
  topo->addWidget(livro);
  auto* curso = new QLabel(QStringLiteral("<a href=\"#\">%1</a>").arg(Tr(m::kAjudaCurso).toHtmlEscaped()), this);
  curso->setObjectName(QStringLiteral("LblCurso"));
  connect(curso, &QLabel::linkActivated, this, [this] { AbreTutorial(); });
  topo->addWidget(curso, 1);
  v->addLayout(topo);
  v->addWidget(new QLabel(Tr(m::kAjudaProcure), this));
  txtAjuda_ = new QLineEdit(this);
  txtAjuda_->setObjectName(QStringLiteral("TxtAjuda"));
  v->addWidget(txtAjuda_);
  lista_ = new QListWidget(this);
  lista_->setObjectName(QStringLiteral("LstAjuda"));
  // Filled in the list's order, shown sorted as the index always was,
  // without regard to case.
  QStringList palavras;
  for (const char16_t* w : kLstAjuda) palavras << QString::fromUtf16(w);
  std::stable_sort(palavras.begin(), palavras.end(),
                   [](const QString& a, const QString& b) { return a.compare(b, Qt::CaseInsensitive) < 0; });
  lista_->addItems(palavras);
  v->addWidget(lista_, 1);
  auto* botoes = new QHBoxLayout();
  auto* exibir = new QPushButton(Tr(m::kAjudaExibir), this);
  exibir->setObjectName(QStringLiteral("BtnExibir"));
  auto* sair = new QPushButton(Tr(m::kAjudaSair), this);
  sair->setObjectName(QStringLiteral("BtnSair"));
  botoes->addStretch();
  botoes->addWidget(exibir);
  botoes->addWidget(sair);
  v->addLayout(botoes);
  resize(340, 480);

  connect(txtAjuda_, &QLineEdit::textEdited, this, [this](const QString& t) { Procura(t); });
  connect(txtAjuda_, &QLineEdit::returnPressed, this, [this] { AbreSelecionada(); });
  connect(lista_, &QListWidget::itemActivated, this, [this] { AbreSelecionada(); });
  connect(exibir, &QPushButton::clicked, this, [this] { AbreSelecionada(); });
  connect(sair, &QPushButton::clicked, this, [this] { close(); });
}

void FormAjuda::Procura(const QString& texto) {
  if (lista_->count() == 0) return;
  const QString alvo = texto.toUpper();
  int escolhido = lista_->count() - 1;
  for (int i = 0; i < lista_->count(); ++i) {
    if (lista_->item(i)->text().left(alvo.size()).toUpper() >= alvo) {
      escolhido = i;
      break;
    }
  }
  lista_->setCurrentRow(escolhido);
  lista_->scrollToItem(lista_->item(escolhido));
}

void FormAjuda::AbreSelecionada() {
  if (QListWidgetItem* item = lista_->currentItem()) txtAjuda_->setText(item->text());
  // The box's text, its trailing blanks cut, names the page.
  QString tema = txtAjuda_->text();
  while (tema.endsWith(QLatin1Char(' '))) tema.chop(1);
  ajuda_.temaAtual = tema.toStdU16String();
  ajuda_.ExtraiComando();
  ajuda_.MostraLeitor();
}

void FormAjuda::AbreTutorial() {
  // A missing PDF shows nothing, as before: the viewer's answer isn't looked at.
  QDesktopServices::openUrl(
      QUrl::fromLocalFile(QString::fromStdString((ajuda_.pasta() / "ZarvoltTutorial.pdf").string())));
}

// ---- The reader ------------------------------------------------------------------------

FormIntro::FormIntro(Ajuda& ajuda) : QWidget(nullptr, Qt::Window), ajuda_(ajuda) {
  setObjectName(QStringLiteral("Intro"));
  setWindowTitle(Tr(m::kAjudaTitulo));
  auto* v = new QVBoxLayout(this);
  auto* dicas = new QHBoxLayout();
  dicas->addWidget(new QLabel(Tr(m::kIntroF9), this));
  dicas->addWidget(new QLabel(Tr(m::kIntroF3), this));
  dicas->addStretch();
  auto* sair = new QPushButton(Tr(m::kAjudaSair), this);
  sair->setObjectName(QStringLiteral("BtnSair"));
  connect(sair, &QPushButton::clicked, this, [this] { close(); });
  dicas->addWidget(sair);
  v->addLayout(dicas);

  fraProcura_ = new QFrame(this);
  fraProcura_->setObjectName(QStringLiteral("FraProcura"));
  fraProcura_->setFrameShape(QFrame::StyledPanel);
  auto* h = new QHBoxLayout(fraProcura_);
  h->addWidget(new QLabel(Tr(m::kIntroFrase), fraProcura_));
  txtFrase_ = new QLineEdit(fraProcura_);
  txtFrase_->setObjectName(QStringLiteral("TxtFrase"));
  txtFrase_->installEventFilter(this);
  h->addWidget(txtFrase_, 1);
  auto* ok = new QPushButton(QStringLiteral("OK"), fraProcura_);
  ok->setObjectName(QStringLiteral("BtnOK"));
  auto* cancela = new QPushButton(Tr(m::kIntroCancelar), fraProcura_);
  cancela->setObjectName(QStringLiteral("BtbCancel"));
  h->addWidget(ok);
  h->addWidget(cancela);
  v->addWidget(fraProcura_);
  fraProcura_->hide();
  connect(ok, &QPushButton::clicked, this, [this] { Procura(); });
  connect(txtFrase_, &QLineEdit::returnPressed, this, [this] { Procura(); });
  connect(cancela, &QPushButton::clicked, this, [this] { fraProcura_->hide(); });

  txtCurso_ = new QTextEdit(this);
  txtCurso_->setObjectName(QStringLiteral("TxtCurso"));
  txtCurso_->setReadOnly(true);
  // Find keys work with the focus in the page too.
  txtCurso_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  txtCurso_->installEventFilter(this);
  v->addWidget(txtCurso_, 1);
  resize(720, 600);
}

void FormIntro::AjustaTitulo(const Texto& tema) {
  setWindowTitle(Tr(tema == u"Curso" ? m::kIntroTitulo : m::kAjudaTitulo));
}

void FormIntro::Carrega(const fs::path& rtf) {
  std::ifstream in(rtf, std::ios::binary);
  std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  QTextDocument* doc = txtCurso_->document();
  if (!LeRtf(bytes, *doc)) txtCurso_->setPlainText(QString::fromLatin1(bytes.data(), static_cast<qsizetype>(bytes.size())));
  txtCurso_->moveCursor(QTextCursor::Start);
}

void FormIntro::MostraProcura() {
  fraProcura_->show();
  txtFrase_->setFocus();
}

void FormIntro::Procura() {
  const QString texto = txtCurso_->toPlainText().toUpper();
  const QString frase = txtFrase_->text().toUpper();
  const bool continuada = continua_;
  int inicio = 0;
  if (continuada) {
    inicio = ultimo_ + 1;
  } else {
    fraProcura_->hide();
  }
  int achou = frase.isEmpty() ? -1 : static_cast<int>(texto.indexOf(frase, inicio));
  if (achou >= 0) {
    QTextCursor c = txtCurso_->textCursor();
    c.setPosition(achou);
    c.setPosition(achou + static_cast<int>(frase.size()), QTextCursor::KeepAnchor);
    txtCurso_->setTextCursor(c);
    ultimo_ = achou;
    continua_ = true;
  } else {
    ajuda_.interacao().Avisa(this, Tr(m::kAjudaTitulo),
                             Tr(continuada ? m::kSemMaisOcorrencias : m::kTextoNaoEncontrado));
  }
  txtCurso_->setFocus();
}

void FormIntro::keyPressEvent(QKeyEvent* e) {
  if (e->key() == Qt::Key_F9 || (e->key() == Qt::Key_F && (e->modifiers() & Qt::ControlModifier))) {
    MostraProcura();
    return;
  }
  if (e->key() == Qt::Key_F3) {
    if (!txtFrase_->text().isEmpty()) Procura();
    return;
  }
  QWidget::keyPressEvent(e);
}

bool FormIntro::eventFilter(QObject* o, QEvent* e) {
  if (o == txtFrase_ && e->type() == QEvent::FocusIn) {
    // Back in the phrase: the next search starts anew.
    txtFrase_->selectAll();
    continua_ = false;
  }
  if (o == txtCurso_ && e->type() == QEvent::KeyPress) {
    auto* k = static_cast<QKeyEvent*>(e);
    if (k->key() == Qt::Key_F9 || k->key() == Qt::Key_F3 ||
        (k->key() == Qt::Key_F && (k->modifiers() & Qt::ControlModifier))) {
      keyPressEvent(k);
      return true;
    }
  }
  return QWidget::eventFilter(o, e);
}

}  // namespace zv
