#include "environment/configuracoes.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include "environment/editor_codigo.h"
#include "environment/extras.h"
#include "environment/interacao.h"
#include "environment/mensagens.h"

namespace zv {

namespace m = msg::ambiente;

namespace {

QString Tr(const char* s) { return QString::fromUtf8(s); }

// The record's colour fields in the order of the form's buttons.
int32_t* CampoCor(Preferencias& p, int i) {
  int32_t* campos[] = {&p.corFundo, &p.corLetra,    &p.corComando, &p.corPC1,   &p.corPC2,      &p.corComentario,
                       &p.corOperador, &p.corAspas, &p.corLinha,   &p.corMargem, &p.corNumeracao};
  return campos[i];
}

}  // namespace

FormConfig::FormConfig(const std::filesystem::path& dirConfig, Interacao& interacao, QWidget* pai)
    : QDialog(pai), dirConfig_(dirConfig), interacao_(interacao) {
  setObjectName(QStringLiteral("Config"));
  setWindowTitle(Tr(m::kConfigTitulo));
  auto* raiz = new QHBoxLayout(this);
  auto* cores = new QGridLayout();
  for (int i = 0; i < kCores; ++i) {
    auto* b = new QPushButton(this);
    b->setObjectName(QStringLiteral("BtnSelCor%1").arg(i));
    b->setFixedSize(46, 22);
    connect(b, &QPushButton::clicked, this, [this, i] {
      if (auto c = interacao_.EscolheCor(this, Tr(m::kSelecioneCor), cores_[static_cast<size_t>(i)])) {
        cores_[static_cast<size_t>(i)] = *c;
        MostraCor(i);
        AplicaAmostra();
      }
    });
    botoes_[static_cast<size_t>(i)] = b;
    cores->addWidget(b, i, 0);
    cores->addWidget(new QLabel(Tr(m::kRotulosCores[i]), this), i, 1);
  }
  auto* esquerda = new QVBoxLayout();
  esquerda->addLayout(cores);
  // The environment's own additions, each one the user may turn off.
  auto* grupo = new QGroupBox(Tr(m::kConfigExtras), this);
  auto* g = new QVBoxLayout(grupo);
  const Extras e = LeExtras(dirConfig_);
  const std::pair<const char*, bool> extras[] = {{m::kExtraMarcaErro, e.marcaErro},
                                                 {m::kExtraVariaveis, e.variaveis},
                                                 {m::kExtraPontos, e.pontosParada},
                                                 {m::kExtraRecuperacao, e.recuperacao}};
  const char* nomes[] = {"ChkMarcaErro", "ChkVariaveis", "ChkPontosParada", "ChkRecuperacao"};
  for (int i = 0; i < 4; ++i) {
    auto* c = new QCheckBox(Tr(extras[i].first), grupo);
    c->setObjectName(QString::fromLatin1(nomes[i]));
    c->setChecked(extras[i].second);
    extras_[static_cast<size_t>(i)] = c;
    g->addWidget(c);
  }
  esquerda->addWidget(grupo);
  esquerda->addStretch();
  raiz->addLayout(esquerda);

  auto* direita = new QVBoxLayout();
  auto* linhaFonte = new QHBoxLayout();
  linhaFonte->addWidget(new QLabel(Tr(m::kConfigFonte), this));
  fonte_ = new QComboBox(this);
  fonte_->setObjectName(QStringLiteral("CmbFonte"));
  fonte_->setEditable(true);
  for (const char* f : m::kFontesConfig) fonte_->addItem(Tr(f));
  tamanho_ = new QComboBox(this);
  tamanho_->setObjectName(QStringLiteral("CmbTamanho"));
  for (int t = 6; t <= 24; ++t) tamanho_->addItem(QStringLiteral("%1").arg(t, 2));
  linhaFonte->addWidget(fonte_, 1);
  linhaFonte->addWidget(tamanho_);
  direita->addLayout(linhaFonte);
  numeracao_ = new QCheckBox(Tr(m::kConfigNumeracao), this);
  numeracao_->setObjectName(QStringLiteral("ChkAtivaNumeracao"));
  direita->addWidget(numeracao_);
  direita->addWidget(new QLabel(Tr(m::kConfigAmostra), this));
  amostra_ = new EditorCodigo(this);
  amostra_->setObjectName(QStringLiteral("TxtCodigo"));
  amostra_->setMinimumSize(420, 220);
  direita->addWidget(amostra_, 1);
  auto* ok = new QPushButton(QStringLiteral("OK"), this);
  ok->setObjectName(QStringLiteral("BtnOK"));
  connect(ok, &QPushButton::clicked, this, [this] { Confirma(); });
  auto* rodape = new QHBoxLayout();
  rodape->addStretch();
  rodape->addWidget(ok);
  direita->addLayout(rodape);
  raiz->addLayout(direita, 1);

  // The record, shown in the fields.
  CarregaPreferencias(dirConfig_);
  Preferencias p = PreferenciasAtivas();
  for (int i = 0; i < kCores; ++i) {
    cores_[static_cast<size_t>(i)] = *CampoCor(p, i);
    MostraCor(i);
  }
  fonte_->setEditText(QString::fromStdU16String(p.fonteNome));
  tamanho_->setCurrentText(QStringLiteral("%1").arg(p.fonteTamanho, 2));
  numeracao_->setChecked(p.ativaNumeracao != 0);
  AplicaAmostra();
  amostra_->setText(Tr(m::kAmostra));

  connect(numeracao_, &QCheckBox::clicked, this, [this] { AplicaAmostra(); });
  connect(tamanho_, &QComboBox::currentIndexChanged, this, [this] { AplicaAmostra(); });
  // A font typed by hand takes effect too, at the next tick.
  relogio_ = new QTimer(this);
  relogio_->setInterval(1000);
  connect(relogio_, &QTimer::timeout, this, [this] {
    if (amostra_->property("fonteAplicada").toString() != fonte_->currentText()) AplicaAmostra();
  });
  relogio_->start();
}

void FormConfig::MostraCor(int i) {
  int32_t c = cores_[static_cast<size_t>(i)];
  botoes_[static_cast<size_t>(i)]->setStyleSheet(
      QStringLiteral("background-color:rgb(%1,%2,%3);border-style:solid;border-width:1px;border-color:#555")
          .arg(c & 0xff)
          .arg((c >> 8) & 0xff)
          .arg((c >> 16) & 0xff));
}

Preferencias FormConfig::Campos() const {
  Preferencias p = PreferenciasAtivas();
  for (int i = 0; i < kCores; ++i) *CampoCor(p, i) = cores_[static_cast<size_t>(i)];
  p.fonteNome = fonte_->currentText().toStdU16String();
  p.fonteTamanho = static_cast<int16_t>(tamanho_->currentText().trimmed().toInt());
  p.ativaNumeracao = numeracao_->isChecked() ? 1 : 0;
  return p;
}

void FormConfig::AplicaAmostra() {
  amostra_->AplicaPreferencias(Campos());
  amostra_->setProperty("fonteAplicada", fonte_->currentText());
}

void FormConfig::Confirma() {
  PreferenciasAtivas() = Campos();
  GravaPreferencias(dirConfig_);
  GravaExtras(dirConfig_, Extras{extras_[0]->isChecked(), extras_[1]->isChecked(), extras_[2]->isChecked(),
                                 extras_[3]->isChecked()});
  accept();
}

}  // namespace zv
