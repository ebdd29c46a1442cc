#include "controls/calendario.h"

#include <QApplication>
#include <QKeyEvent>

#include "controls/botao_descer.h"
#include "controls/teclas.h"

namespace zv {

namespace {

// The original's measures were twips, 15 to a pixel.
constexpr int kFolgaAltura = 3;     // 50 below the field
constexpr int kBotaoDaDireita = 20; // 295 from the right edge
constexpr int kLarguraBotao = 16;

}  // namespace

Calendario::Calendario(QWidget* pai) : QWidget(pai) {
  txtData_ = new QDateEdit(this);
  txtData_->setObjectName(QStringLiteral("TxtData"));
  txtData_->setButtonSymbols(QAbstractSpinBox::NoButtons);
  picUp_ = new BotaoDescer(this);
  picUp_->setObjectName(QStringLiteral("PicUp"));
  txtCalendario_ = new QCalendarWidget(this);
  txtCalendario_->setObjectName(QStringLiteral("TxtCalendario"));
  txtCalendario_->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
  txtCalendario_->hide();
  setFocusProxy(txtData_);
  txtData_->installEventFilter(this);
  txtCalendario_->installEventFilter(this);
  picUp_->aoClicar = [this] {
    if (aberto_)
      Fecha();
    else
      Abre();
  };
  // A day chosen in the month closes it.
  connect(txtCalendario_, &QCalendarWidget::clicked, this, [this] { Fecha(); });
  connect(txtCalendario_, &QCalendarWidget::activated, this, [this] { Fecha(); });
  // At first both show today.
  setDate(QDate::currentDate());
  fechado_ = QSize(120, txtData_->sizeHint().height() + kFolgaAltura);
  resize(fechado_);
}

QWidget* Calendario::botao() const { return picUp_; }

QSize Calendario::sizeHint() const { return QSize(120, txtData_->sizeHint().height() + kFolgaAltura); }

void Calendario::setDate(const QDate& d) {
  if (!d.isValid()) return;
  valor_ = d;
  txtData_->setDate(d);
  txtCalendario_->setSelectedDate(d);
}

void Calendario::Arranja() {
  const int altura = std::max(fechado_.height(), txtData_->sizeHint().height() + kFolgaAltura);
  txtData_->setGeometry(0, 0, fechado_.width(), altura - kFolgaAltura);
  picUp_->setGeometry(fechado_.width() - kBotaoDaDireita, 2, kLarguraBotao, altura - kFolgaAltura - 4);
  picUp_->raise();
  txtCalendario_->setGeometry(0, altura, std::max(width(), txtCalendario_->sizeHint().width()),
                              txtCalendario_->sizeHint().height());
}

void Calendario::resizeEvent(QResizeEvent* e) {
  QWidget::resizeEvent(e);
  if (redimensionando_) return;
  fechado_ = size();
  Arranja();
}

void Calendario::Abre() {
  if (aberto_) return;
  redimensionando_ = true;
  aberto_ = true;
  raise();
  txtCalendario_->setSelectedDate(txtData_->date());
  txtCalendario_->show();
  // As wide as the month needs, at the least.
  const QSize mes = txtCalendario_->sizeHint();
  resize(std::max(fechado_.width(), mes.width()), fechado_.height() + mes.height());
  txtCalendario_->setGeometry(0, fechado_.height(), width(), mes.height());
  txtCalendario_->setFocus();
}

void Calendario::Fecha() {
  if (!aberto_) return;
  txtData_->setDate(txtCalendario_->selectedDate());
  valor_ = txtData_->date();
  aberto_ = false;
  txtCalendario_->hide();
  resize(fechado_);
  redimensionando_ = false;
  txtData_->setFocus();
  if (relata) relata({EventoControle::Mudou});
}

void Calendario::keyPressEvent(QKeyEvent* e) { encaminha_(e, ParteComFoco()); }
void Calendario::keyReleaseEvent(QKeyEvent* e) { encaminha_(e, ParteComFoco()); }

QWidget* Calendario::ParteComFoco() const {
  return aberto_ ? static_cast<QWidget*>(txtCalendario_) : static_cast<QWidget*>(txtData_);
}

bool Calendario::eventFilter(QObject* o, QEvent* e) {
  if (o == txtData_) {
    switch (e->type()) {
      case QEvent::FocusIn:
        // The field taking the input closes the month.
        if (aberto_) Fecha();
        if (relata) relata({EventoControle::GanhouFoco});
        break;
      case QEvent::FocusOut:
        if (!aberto_) valor_ = txtData_->date();
        if (relata && !isAncestorOf(QApplication::focusWidget())) relata({EventoControle::PerdeuFoco});
        break;
      case QEvent::KeyPress: {
        auto* k = static_cast<QKeyEvent*>(e);
        if (relata) relata({EventoControle::TeclaDesce, CodigoTecla(k), EstadoShift(k)});
        break;
      }
      case QEvent::KeyRelease: {
        auto* k = static_cast<QKeyEvent*>(e);
        if (relata) relata({EventoControle::TeclaSobe, CodigoTecla(k), EstadoShift(k)});
        break;
      }
      case QEvent::MouseButtonPress:
        if (relata) relata({EventoControle::Clique});
        break;
      default:
        break;
    }
    return false;
  }
  if (o == txtCalendario_ && e->type() == QEvent::KeyPress) {
    auto* k = static_cast<QKeyEvent*>(e);
    if (k->key() == Qt::Key_Return || k->key() == Qt::Key_Enter) {
      Fecha();
      return true;
    }
  }
  return QWidget::eventFilter(o, e);
}

}  // namespace zv
