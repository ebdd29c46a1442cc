#include "controls/calendario.h"

#include <QApplication>
#include <QPainter>
#include <QKeyEvent>
#include <QMouseEvent>

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

// ---- MyDate -----------------------------------------------------------------------

namespace {
constexpr int kMargemInterna = 2;   // Picture1: 25 in from the control
constexpr int kSobraLargura = 5;    // the editor: 75 wider than its panel
constexpr int kSobraAltura = 3;     // and 45 higher
}  // namespace

MyDate::MyDate(QWidget* pai) : QWidget(pai) {
  picture1_ = new QWidget(this);
  picture1_->setObjectName(QStringLiteral("Picture1"));
  dtPicker1_ = new QDateEdit(QDate::currentDate(), picture1_);
  dtPicker1_->setObjectName(QStringLiteral("DTPicker1"));
  dtPicker1_->setCalendarPopup(true);
  image1_ = new BotaoDescer(this);
  image1_->setObjectName(QStringLiteral("Image1"));
  txtAux_ = new QLineEdit(this);
  txtAux_->setObjectName(QStringLiteral("TxtAux"));
  txtAux_->setGeometry(0, -1000, 10, 10);
  txtAux_->setEnabled(false);
  setFocusProxy(dtPicker1_);
  // A click on the button: the editor takes the keyboard and F4 drops its month.
  image1_->aoClicar = [this] {
    dtPicker1_->setFocus();
    // The original sent F4; this platform's editor drops its month from a
    // press on its own button, which lies cut off beyond the panel.
    const QPointF seta(dtPicker1_->width() - 8, dtPicker1_->height() / 2.0);
    QMouseEvent aperta(QEvent::MouseButtonPress, seta, dtPicker1_->mapToGlobal(seta), Qt::LeftButton, Qt::LeftButton,
                       Qt::NoModifier);
    QCoreApplication::sendEvent(dtPicker1_, &aperta);
  };

  connect(qApp, &QApplication::focusChanged, this, [this](QWidget* antes, QWidget* agora) {
    const bool tinha = antes && isAncestorOf(antes), tem = agora && isAncestorOf(agora);
    if (tinha == tem) return;
    corBorda_ = tem ? corFoco : corPerdeFoco;
    update();
  });
  resize(120, 24);
}

QWidget* MyDate::botao() const { return image1_; }

bool MyDate::Aberto() const {
  // The month drops as a pop-up window of its own.
  QWidget* p = QApplication::activePopupWidget();
  return p && p->isAncestorOf(dtPicker1_->calendarWidget());
}

void MyDate::DefineCoresMes(const QColor& fundo, const QColor& letra, const QColor& fundoTitulo, const QColor& titulo,
                            const QColor& trilha) {
  QCalendarWidget* c = dtPicker1_->calendarWidget();
  QPalette p = c->palette();
  p.setColor(QPalette::Base, fundo);
  p.setColor(QPalette::Text, letra);
  c->setPalette(p);
  c->setStyleSheet(QStringLiteral("#qt_calendar_navigationbar{background-color:%1}"
                                  "#qt_calendar_navigationbar QToolButton{color:%2}")
                       .arg(fundoTitulo.name(), titulo.name()));
  trilha_ = trilha;
}

void MyDate::DefineAtiva(bool sim) {
  dtPicker1_->setEnabled(sim);
  txtAux_->setEnabled(!sim);
}

void MyDate::paintEvent(QPaintEvent*) {
  QPainter p(this);
  p.fillRect(rect(), palette().color(QPalette::Base));
  p.setPen(corBorda_);
  p.drawRect(rect().adjusted(0, 0, -1, -1));
}

void MyDate::resizeEvent(QResizeEvent* e) {
  QWidget::resizeEvent(e);
  picture1_->setGeometry(kMargemInterna, kMargemInterna, width() - 2 * kMargemInterna - 18,
                         height() - 2 * kMargemInterna);
  // Larger than its panel: its own frame and button fall outside and are cut.
  dtPicker1_->setGeometry(-1, -1, picture1_->width() + kSobraLargura + 18, picture1_->height() + kSobraAltura);
  image1_->setGeometry(width() - 18 - kMargemInterna, kMargemInterna, 16, height() - 2 * kMargemInterna);
}

}  // namespace zv
