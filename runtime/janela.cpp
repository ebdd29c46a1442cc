#include "runtime/janela.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include "controls/moldura.h"

namespace zv {

JanelaExecucao::JanelaExecucao(ClasseJanela classe, OuvinteJanela* ouvinte)
    : QWidget(nullptr), classe_(classe), ouvinte_(ouvinte) {
  setAttribute(Qt::WA_DeleteOnClose, false);
  setMouseTracking(true);
  setFocusPolicy(Qt::ClickFocus);
  // Sizable windows have the boxes and the thick frame; the others a single
  // fixed frame (the system box is a flag of its own, see AplicaEstilo).
  bool sizable = classe == ClasseJanela::Janela || classe == ClasseJanela::Form1;
  estilo = 0xC00000u | (sizable ? 0x70000u : 0u);
  estiloBorda = sizable ? 2 : 1;
  QFont f(QStringLiteral("Courier New"), 10);
  f.setStyleHint(QFont::Monospace);
  setFont(f);
  setAutoFillBackground(true);
  QSize s = TamanhoPadrao(classe);
  resize(s);
  tela_ = QImage(s, QImage::Format_ARGB32_Premultiplied);
  tela_.fill(Qt::transparent);
  AplicaEstilo();
}

JanelaExecucao::~JanelaExecucao() = default;

const char* JanelaExecucao::NomeClasse(ClasseJanela c) {
  switch (c) {
    case ClasseJanela::Janela:
      return "Janela";
    case ClasseJanela::Form1:
      return "Form1";
    case ClasseJanela::Form2:
      return "Form2";
    case ClasseJanela::Form3:
      return "Form3";
  }
  return "Form1";
}

QSize JanelaExecucao::TamanhoPadrao(ClasseJanela c) {
  // The classes' built-in client areas, in twips / 15.
  switch (c) {
    case ClasseJanela::Janela:
      return {9540 / 15, 5700 / 15};
    case ClasseJanela::Form1:
      return {9855 / 15, 6780 / 15};
    case ClasseJanela::Form2:
      return {9840 / 15, 6570 / 15};
    case ClasseJanela::Form3:
      return {9840 / 15, 5790 / 15};
  }
  return {640, 400};
}

void JanelaExecucao::AplicaEstilo() {
  bool visivel = isVisible();
  Qt::WindowFlags f = Qt::Window;
  if ((estilo & 0xC00000u) != 0xC00000u) {
    f |= Qt::FramelessWindowHint;
  } else {
    f |= Qt::CustomizeWindowHint | Qt::WindowTitleHint;
    if (classe_ != ClasseJanela::Form3 && !(estilo & kSemCaixaSistema)) f |= Qt::WindowCloseButtonHint | Qt::WindowSystemMenuHint;
    if (estilo & 0x10000u) f |= Qt::WindowMaximizeButtonHint;
    if (estilo & 0x20000u) f |= Qt::WindowMinimizeButtonHint;
  }
  if (windowFlags() != f) setWindowFlags(f);
  if (estilo & 0x40000u) {
    setMinimumSize(0, 0);
    setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
  } else {
    setFixedSize(size());
  }
  if (visivel && !isVisible()) show();
}

void JanelaExecucao::DesenhaFigura(const QImage& figura, int x, int y) {
  CresceTela();
  QPainter(&tela_).drawImage(x, y, figura);
  update();
}

bool JanelaExecucao::PintaGradiente() {
  CresceTela();
  QPainter p(&tela_);
  const bool feito = DesenhaGradiente(p, size(), grdInicial, grdFinal);
  update();
  return feito;
}

void JanelaExecucao::CresceTela() {
  if (tela_.width() < width() || tela_.height() < height()) {
    QImage maior(std::max(tela_.width(), width()), std::max(tela_.height(), height()),
                 QImage::Format_ARGB32_Premultiplied);
    maior.fill(Qt::transparent);
    QPainter(&maior).drawImage(0, 0, tela_);
    tela_ = std::move(maior);
  }
}

void JanelaExecucao::Escreve(const QString& texto, int x, int y) {
  CresceTela();
  QPainter p(&tela_);
  p.setFont(font());
  p.setPen(corFrente);
  QFontMetrics fm(font());
  p.drawText(QPoint(x, y + fm.ascent()), texto);
  update(QRect(x, y, fm.horizontalAdvance(texto) + 2, fm.height() + 1));
}

void JanelaExecucao::Limpa() {
  tela_.fill(Qt::transparent);
  update();
}

void JanelaExecucao::DefineFundo(const QColor& cor) {
  QPalette p = palette();
  p.setColor(QPalette::Window, cor);
  setPalette(p);
}

void JanelaExecucao::DefineFiguraFundo(const QImage& figura) {
  figura_ = figura;
  update();
}

void JanelaExecucao::paintEvent(QPaintEvent*) {
  QPainter p(this);
  if (!figura_.isNull()) p.drawImage(rect(), figura_);
  p.drawImage(0, 0, tela_);
}

void JanelaExecucao::resizeEvent(QResizeEvent* e) {
  QWidget::resizeEvent(e);
  if (ouvinte_) ouvinte_->JanelaRedimensionada(this);
}

void JanelaExecucao::closeEvent(QCloseEvent* e) {
  if (ouvinte_) ouvinte_->FechandoJanela(this);
  e->accept();
}

void JanelaExecucao::changeEvent(QEvent* e) {
  QWidget::changeEvent(e);
  if (e->type() == QEvent::ActivationChange && isActiveWindow() && ouvinte_) ouvinte_->JanelaAtivada(this);
}

void JanelaExecucao::focusInEvent(QFocusEvent* e) {
  QWidget::focusInEvent(e);
  if (ouvinte_) ouvinte_->JanelaAtivada(this);
}

namespace {
int Botao(Qt::MouseButton b) { return b == Qt::RightButton ? 2 : b == Qt::LeftButton ? 1 : 0; }
}  // namespace

void JanelaExecucao::mousePressEvent(QMouseEvent* e) {
  if (ouvinte_) ouvinte_->MouseJanela(this, 0, Botao(e->button()), e->position().toPoint().x(), e->position().toPoint().y());
}

void JanelaExecucao::mouseReleaseEvent(QMouseEvent* e) {
  if (!ouvinte_) return;
  QPoint p = e->position().toPoint();
  ouvinte_->MouseJanela(this, 1, Botao(e->button()), p.x(), p.y());
  if (rect().contains(p)) ouvinte_->MouseJanela(this, 3, Botao(e->button()), p.x(), p.y());
}

void JanelaExecucao::mouseMoveEvent(QMouseEvent* e) {
  int b = (e->buttons() & Qt::LeftButton) ? 1 : (e->buttons() & Qt::RightButton) ? 2 : 0;
  if (ouvinte_) ouvinte_->MouseJanela(this, 2, b, e->position().toPoint().x(), e->position().toPoint().y());
}

void JanelaExecucao::mouseDoubleClickEvent(QMouseEvent* e) {
  if (ouvinte_) ouvinte_->MouseJanela(this, 4, Botao(e->button()), e->position().toPoint().x(), e->position().toPoint().y());
}

}  // namespace zv
