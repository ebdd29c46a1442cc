#include "environment/compilar.h"

#include <QApplication>
#include <QFileInfo>
#include <QFocusEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include "builder/compilador.h"
#include "environment/interacao.h"
#include "environment/mensagens.h"
#include "environment/settings/armazem_config.h"

namespace zv {

namespace m = msg::ambiente;

namespace {

QString Tr(const char* s) { return QString::fromUtf8(s); }

// The form's fields, their settings keys, and the version string each
// goes into (-1: none).
struct DefCampo {
  const char* objeto;
  const char16_t* chave;
  int versao;
};
constexpr std::array<DefCampo, 11> kCampos = {{
    {"TxtNomeProg", u"CompilaNomeProg", -1},
    {"TxtNomeExe", u"CompilaNomeExe", -1},
    {"TxtIcone", u"CompilaIcone", -1},
    {"TxtEmpresa", u"CompilaEmpresa", int(Versao::CompanyName)},
    {"TxtDescricao", u"CompilaDescricao", int(Versao::FileDescription)},
    {"TxtAutor", u"CompilaAutor", int(Versao::LegalCopyright)},
    {"TxtNome", u"CompilaNome", int(Versao::ProductName)},
    {"TxtVersaoArquivo", u"CompilaVersaoArquivo", int(Versao::FileVersion)},
    {"TxtVersaoProduto", u"CompilaVersaoProduto", int(Versao::ProductVersion)},
    {"TxtNomeInterno", u"CompilaNomeInterno", int(Versao::InternalName)},
    {"TxtNomeOriginal", u"CompilaNomeOriginal", int(Versao::OriginalFilename)},
}};
enum { kProg, kExe, kIcone };

// A field that takes its whole text when it gets the focus, so that typing
// replaces it.
class CampoTodo : public QLineEdit {
 public:
  using QLineEdit::QLineEdit;

 protected:
  void focusInEvent(QFocusEvent* e) override {
    QLineEdit::focusInEvent(e);
    QTimer::singleShot(0, this, &QLineEdit::selectAll);
  }
};

}  // namespace

FormCompilar::FormCompilar(const std::filesystem::path& dirConfig, Interacao& interacao, const QString& fonteAtual,
                           QWidget* pai)
    : QDialog(pai), dirConfig_(dirConfig), interacao_(interacao) {
  setObjectName(QStringLiteral("FrmCompilar"));
  setWindowTitle(Tr(m::kCompilarTitulo));
  imagem = QApplication::applicationDirPath() + QStringLiteral("/zv-runtime");
  auto* raiz = new QVBoxLayout(this);
  auto* cabecalho = new QLabel(Tr(m::kCompilarCabecalho), this);
  QFont f = cabecalho->font();
  f.setBold(true);
  f.setPointSizeF(f.pointSizeF() * 1.3);
  cabecalho->setFont(f);
  raiz->addWidget(cabecalho);
  auto* grade = new QGridLayout;
  for (size_t i = 0; i < kCampos.size(); ++i) {
    auto* c = new CampoTodo(this);
    c->setObjectName(QString::fromLatin1(kCampos[i].objeto));
    c->setText(QString::fromStdU16String(LeConfig(dirConfig_, kCampos[i].chave)));
    c->setMinimumWidth(360);
    // Enter goes on to the next field.
    connect(c, &QLineEdit::returnPressed, this, [this] { focusNextChild(); });
    campos_[i] = c;
    QString rotulo = i == kProg ? Tr(m::kCompilarFonte) : i == kExe ? Tr(m::kCompilarExecutavel)
                                                                    : Tr(m::kCompilarRotulos[i - 2]);
    grade->addWidget(new QLabel(rotulo, this), int(i), 0);
    grade->addWidget(c, int(i), 1);
  }
  if (Campo(kProg)->text().isEmpty()) Campo(kProg)->setText(fonteAtual);
  connect(Campo(kExe), &QLineEdit::editingFinished, this, [this] { Deriva(); });
  auto botao = [&](int linha, const char* nome, auto acao) {
    auto* b = new QPushButton(QStringLiteral("..."), this);
    b->setObjectName(QString::fromLatin1(nome));
    b->setAutoDefault(false);
    connect(b, &QPushButton::clicked, this, acao);
    grade->addWidget(b, linha, 2);
  };
  botao(kProg, "BtnEscolher", [this] {
    QString pasta = QFileInfo(Campo(kProg)->text()).absolutePath();
    if (auto c = interacao_.EscolheArquivo(this, false, Tr(m::kTituloAbrir), Tr(m::kFiltro), pasta,
                                           QString())) {
      Campo(kProg)->setText(*c);
      findChild<QPushButton*>(QStringLiteral("BtnExecutavel"))->setFocus();
    }
  });
  botao(kExe, "BtnExecutavel", [this] {
    QFileInfo fonte(Campo(kProg)->text());
    if (auto c = interacao_.EscolheArquivo(this, true, Tr(m::kCompilarExecutavel), Tr(m::kCompilarFiltroExe),
                                           fonte.absolutePath(), fonte.completeBaseName())) {
      Campo(kExe)->setText(*c);
      Deriva();
      findChild<QPushButton*>(QStringLiteral("BtnCompilar"))->setFocus();
    }
  });
  botao(kIcone, "BtnLocalizarIcone", [this] {
    if (auto c = interacao_.EscolheArquivo(this, false, Tr(m::kCompilarEscolheIcone), Tr(m::kCompilarFiltroIcone),
                                           QFileInfo(Campo(kProg)->text()).absolutePath(), QString()))
      Campo(kIcone)->setText(*c);
  });
  raiz->addLayout(grade);
  aviso_ = new QLabel(Tr(m::kCompilarAguarde), this);
  aviso_->setObjectName(QStringLiteral("PicMsg"));
  aviso_->setAlignment(Qt::AlignCenter);
  aviso_->setFrameShape(QFrame::Box);
  aviso_->hide();
  raiz->addWidget(aviso_);
  auto* baixo = new QHBoxLayout;
  baixo->addStretch();
  auto* compilar = new QPushButton(Tr(m::kCompilarBotao).replace(u'\r', u'\n'), this);
  compilar->setObjectName(QStringLiteral("BtnCompilar"));
  compilar->setAutoDefault(false);
  connect(compilar, &QPushButton::clicked, this, [this] { Compila(); });
  auto* sair = new QPushButton(Tr(m::kCompilarSair), this);
  sair->setObjectName(QStringLiteral("BtnSair"));
  sair->setAutoDefault(false);
  connect(sair, &QPushButton::clicked, this, &QDialog::reject);
  baixo->addWidget(compilar);
  baixo->addWidget(sair);
  raiz->addLayout(baixo);
}

// From the executable's path: its file name, and that name before its
// last point.
void FormCompilar::Deriva() {
  QString nome = QFileInfo(Campo(kExe)->text()).fileName();
  Campo(10)->setText(nome);
  int ponto = int(nome.lastIndexOf(u'.'));
  Campo(9)->setText(ponto > 0 ? nome.left(ponto) : nome);
}

bool FormCompilar::Compila() {
  aviso_->show();
  aviso_->repaint();
  PedidoCompilacao p;
  p.imagem = imagem.toStdString();
  p.fonte = Campo(kProg)->text().toStdString();
  p.executavel = Campo(kExe)->text().toStdString();
  p.icone = Campo(kIcone)->text().toStdString();
  for (size_t i = 0; i < kCampos.size(); ++i)
    if (kCampos[i].versao >= 0) p.versoes[size_t(kCampos[i].versao)] = Campo(int(i))->text().toStdString();
  try {
    zv::Compila(p);
  } catch (const FalhaCompilacao& f) {
    // The panel stays up, as what was made so far stays on the disk.
    QString texto = Tr(m::kCompilarErro) + QString::number(f.numero) + QStringLiteral(" - ") +
                    QString::fromStdString(f.descricao);
    interacao_.AvisaErro(this, windowTitle(), texto.replace(u'\r', u'\n'));
    return false;
  }
  aviso_->hide();
  QString texto = Tr(m::kCompilarFeito1) + Campo(kExe)->text() + Tr(m::kCompilarFeito2);
  interacao_.Informa(this, windowTitle(), texto.replace(u'\r', u'\n'));
  return true;
}

void FormCompilar::done(int r) {
  // Every field is remembered, an empty one too.
  for (size_t i = 0; i < kCampos.size(); ++i)
    GravaConfig(dirConfig_, kCampos[i].chave, campos_[i]->text().toStdU16String());
  QDialog::done(r);
}

}  // namespace zv
