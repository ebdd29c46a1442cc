#include "controls/sp_combo.h"

#include <QApplication>
#include <QKeyEvent>

#include "controls/botao_descer.h"
#include "controls/teclas.h"

namespace zv {

namespace {

// The original's measures were twips, 15 to a pixel.
constexpr int kAlturaMinima = 19;  // 280
constexpr int kEntreListaTexto = 2;  // 35
constexpr int kBotaoDaBorda = 1;   // 20
constexpr int kLarguraBotao = 16;

bool LetraOuDigito(int k) {
  return (k >= Qt::Key_A && k <= Qt::Key_Z) || (k >= Qt::Key_0 && k <= Qt::Key_9);
}

}  // namespace

QString DobraTexto(const QString& s) {
  static const QString kCom = QStringLiteral("ÁÀÂÃÄÉÈÊËÍÌÎÏÓÒÔÕÖÚÙÛÜÇÑáàâãäéèêëíìîïóòôõöúùûüçñ");
  static const QString kSem = QStringLiteral("AAAAAEEEEIIIIOOOOOUUUUCNaaaaaeeeeiiiiooooouuuucn");
  QString r = s;
  for (QChar& c : r) {
    const qsizetype i = kCom.indexOf(c);
    if (i >= 0) c = kSem[i];
  }
  return r.toUpper();
}

SpCombo::SpCombo(QWidget* pai) : QWidget(pai) {
  txtAux_ = new QLineEdit(this);
  txtAux_->setObjectName(QStringLiteral("TxtAux"));
  picUp_ = new BotaoDescer(this);
  picUp_->setObjectName(QStringLiteral("PicUp"));
  lstAux_ = new QListWidget(this);
  lstAux_->setObjectName(QStringLiteral("LstAux"));
  lstAux_->setFocusPolicy(Qt::StrongFocus);
  setFocusProxy(txtAux_);
  txtAux_->installEventFilter(this);
  lstAux_->installEventFilter(this);
  picUp_->aoClicar = [this] {
    if (aberta_)
      Fecha();
    else
      Abre();
    txtAux_->setFocus();
  };
  connect(txtAux_, &QLineEdit::textChanged, this, [this] {
    if (relata) relata({EventoControle::Mudou});
  });
  // The list's click event, as the original's list raised it: on a change
  // of its selection (the completion's too) and on a click on an item.
  connect(lstAux_, &QListWidget::currentRowChanged, this, [this] { CliqueLista(); });
  connect(lstAux_, &QListWidget::itemClicked, this, [this] { CliqueLista(); });
  connect(lstAux_, &QListWidget::itemDoubleClicked, this, [this] { Fecha(); });
  // Losing the focus closes the list (without taking the focus back).
  connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* agora) {
    if (aberta_ && (!agora || !isAncestorOf(agora))) Fecha(false);
  });
  resize(120, kAlturaMinima);
}

QWidget* SpCombo::botao() const { return picUp_; }

void SpCombo::DefineAlturaLista(int px) {
  alturaLista_ = std::max(1, px);
  Arranja();
}

void SpCombo::DefineFigurasBotao(bool proprias, const QPixmap& cima, const QPixmap& baixo) {
  picUp_->proprias = proprias;
  picUp_->cima = cima;
  picUp_->baixo = baixo;
  Arranja();
  picUp_->update();
}

int SpCombo::SelLista() const {
  const QString t = txtAux_->text();
  for (int i = 0; i < lstAux_->count(); ++i)
    if (lstAux_->item(i)->text() == t) return static_cast<int16_t>(i);
  return static_cast<int16_t>(lstAux_->count());
}

void SpCombo::Arranja() {
  if (aberta_ || arranjando_) return;
  raise();
  const int altura = !picUp_->proprias && height() < kAlturaMinima ? kAlturaMinima : height();
  if (altura != height()) {
    // Laid out below at once: a hidden control gets its resize event late.
    arranjando_ = true;
    resize(width(), altura);
    arranjando_ = false;
  }
  txtAux_->setGeometry(0, 0, width(), altura);
  const int largBotao = picUp_->proprias && !picUp_->cima.isNull() ? picUp_->cima.width() : kLarguraBotao;
  picUp_->setGeometry(txtAux_->width() - largBotao - kBotaoDaBorda - 1, 2, largBotao, altura - 4);
  picUp_->raise();
  txtAux_->setTextMargins(0, 0, largBotao + 2, 0);
  lstAux_->setGeometry(0, altura + kEntreListaTexto, width(), alturaLista_);
}

void SpCombo::resizeEvent(QResizeEvent* e) {
  QWidget::resizeEvent(e);
  Arranja();
}

void SpCombo::changeEvent(QEvent* e) {
  QWidget::changeEvent(e);
  if (e->type() == QEvent::EnabledChange && !isEnabled() && aberta_) Fecha(false);
  if (e->type() == QEvent::FontChange) {
    txtAux_->setFont(font());
    lstAux_->setFont(font());
  }
}

void SpCombo::Abre() {
  if (aberta_) return;
  raise();
  aberta_ = true;
  resize(width(), lstAux_->height() + txtAux_->height() + kEntreListaTexto);
}

void SpCombo::Fecha(bool devolveFoco) {
  if (!aberta_) return;
  aberta_ = false;
  resize(txtAux_->width(), txtAux_->height());
  if (devolveFoco) txtAux_->setFocus();
}

void SpCombo::ItemParaTexto() {
  QListWidgetItem* item = lstAux_->currentItem();
  if (!item) return;
  txtAux_->setText(item->text());
  txtAux_->selectAll();
  ultimoTexto_ = item->text();
  if (relata) relata({EventoControle::Clique});
}

void SpCombo::CliqueLista() {
  if (primeiroClique_) {
    primeiroClique_ = false;
    return;
  }
  if (mudando_) return;
  ItemParaTexto();
}

void SpCombo::Completa() {
  ultimoTexto_ = txtAux_->text();
  const QString alvo = DobraTexto(ultimoTexto_);
  for (int i = 0; i < lstAux_->count(); ++i) {
    if (DobraTexto(lstAux_->item(i)->text().left(alvo.size())) == alvo) {
      // Selected in the list only: the typing stands until Enter or a click.
      lstAux_->setCurrentRow(i);
      return;
    }
  }
}

void SpCombo::keyPressEvent(QKeyEvent* e) { encaminha_(e, ParteComFoco()); }
void SpCombo::keyReleaseEvent(QKeyEvent* e) { encaminha_(e, ParteComFoco()); }

QWidget* SpCombo::ParteComFoco() const {
  return lstAux_->hasFocus() ? static_cast<QWidget*>(lstAux_) : static_cast<QWidget*>(txtAux_);
}

bool SpCombo::TeclaNaCaixa(QKeyEvent* e) {
  if (relata) relata({EventoControle::TeclaDesce, CodigoTecla(e), EstadoShift(e)});
  mudando_ = true;
  switch (e->key()) {
    case Qt::Key_Down:
      Abre();
      lstAux_->setFocus();
      return true;
    case Qt::Key_Up:
      Fecha();
      return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
      if (aberta_ && lstAux_->currentItem()) txtAux_->setText(lstAux_->currentItem()->text());
      txtAux_->selectAll();
      Fecha();
      return true;
    default:
      if (LetraOuDigito(e->key()) && !aberta_) Abre();
      return false;
  }
}

bool SpCombo::TeclaNaLista(QKeyEvent* e) {
  switch (e->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      Fecha();
      return true;
    case Qt::Key_Up:
      if (lstAux_->currentRow() <= 0) {
        txtAux_->setFocus();
        return true;
      }
      return false;
    default:
      return false;
  }
}

bool SpCombo::eventFilter(QObject* o, QEvent* e) {
  if (o == txtAux_) {
    if (e->type() == QEvent::KeyPress) return TeclaNaCaixa(static_cast<QKeyEvent*>(e));
    if (e->type() == QEvent::KeyRelease) {
      auto* k = static_cast<QKeyEvent*>(e);
      if (relata) relata({EventoControle::TeclaSobe, CodigoTecla(k), EstadoShift(k)});
      // Still changing while the completion selects: the list's click that
      // follows leaves the typing alone.
      Completa();
      mudando_ = false;
    } else if (e->type() == QEvent::FocusIn) {
      if (relata) relata({EventoControle::GanhouFoco});
    } else if (e->type() == QEvent::FocusOut) {
      if (!isAncestorOf(QApplication::focusWidget()) && relata) relata({EventoControle::PerdeuFoco});
    }
    return false;
  }
  if (o == lstAux_) {
    if (e->type() == QEvent::KeyPress) return TeclaNaLista(static_cast<QKeyEvent*>(e));
    if (e->type() == QEvent::KeyRelease) {
      auto* k = static_cast<QKeyEvent*>(e);
      if (k->key() != Qt::Key_Return && k->key() != Qt::Key_Enter) ItemParaTexto();
    }
    return false;
  }
  return QWidget::eventFilter(o, e);
}

}  // namespace zv
