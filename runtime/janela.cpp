#include "runtime/janela.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>
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
  // The client: transparent, so that the window's own painting shows
  // through it; the mouse it doesn't take goes up to the window.
  cliente_ = new QWidget(this);
  cliente_->setObjectName(QStringLiteral("Cliente"));
  cliente_->setMouseTracking(true);
  QSize s = TamanhoPadrao(classe);
  resize(s);
  cliente_->setGeometry(rect());
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

QImage& JanelaExecucao::Tela() {
  CresceTela();
  return tela_;
}

QColor JanelaExecucao::CorVisivel(QPoint p) {
  return CorDaSuperficie(this, p + QPoint(0, desvio_));
}

bool JanelaExecucao::PintaGradiente() {
  CresceTela();
  QPainter p(&tela_);
  const bool feito = DesenhaGradiente(p, size(), grdInicial, grdFinal);
  update();
  return feito;
}

QImage JanelaExecucao::Visto() {
  QImage& tela = Tela();
  QImage visto(tela.size(), QImage::Format_RGB32);
  visto.fill(Qt::white);
  render(&visto, QPoint(), QRegion(QRect(cliente_->pos(), tela.size())), QWidget::DrawWindowBackground);
  return visto;
}

void JanelaExecucao::CresceTela() { Cresce(tela_, width(), height()); }

void JanelaExecucao::Escreve(const QString& texto, int x, int y) {
  CresceTela();
  update(DesenhaTexto(tela_, font(), corFrente, texto, x, y));
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
  p.translate(0, desvio_);
  if (!figura_.isNull()) p.drawImage(rect(), figura_);
  p.drawImage(0, 0, tela_);
}

void JanelaExecucao::resizeEvent(QResizeEvent* e) {
  QWidget::resizeEvent(e);
  cliente_->setGeometry(0, desvio_, width(), std::max(0, height() - desvio_));
  if (barra_) barra_->setGeometry(0, 0, width(), desvio_);
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

// The mouse in the client's units: below the menu bar when there is one.
void JanelaExecucao::mousePressEvent(QMouseEvent* e) {
  const QPoint p = e->position().toPoint() - QPoint(0, desvio_);
  if (ouvinte_) ouvinte_->MouseJanela(this, 0, Botao(e->button()), p.x(), p.y());
}

void JanelaExecucao::mouseReleaseEvent(QMouseEvent* e) {
  if (!ouvinte_) return;
  const QPoint p = e->position().toPoint() - QPoint(0, desvio_);
  ouvinte_->MouseJanela(this, 1, Botao(e->button()), p.x(), p.y());
  if (cliente_->rect().contains(p)) ouvinte_->MouseJanela(this, 3, Botao(e->button()), p.x(), p.y());
}

void JanelaExecucao::mouseMoveEvent(QMouseEvent* e) {
  int b = (e->buttons() & Qt::LeftButton) ? 1 : (e->buttons() & Qt::RightButton) ? 2 : 0;
  const QPoint p = e->position().toPoint() - QPoint(0, desvio_);
  if (ouvinte_) ouvinte_->MouseJanela(this, 2, b, p.x(), p.y());
}

void JanelaExecucao::mouseDoubleClickEvent(QMouseEvent* e) {
  const QPoint p = e->position().toPoint() - QPoint(0, desvio_);
  if (ouvinte_) ouvinte_->MouseJanela(this, 4, Botao(e->button()), p.x(), p.y());
}

// ---- The menu bar ---------------------------------------------------------------

bool JanelaExecucao::TemMenu() const { return classe_ == ClasseJanela::Janela || classe_ == ClasseJanela::Form1; }

void JanelaExecucao::MostraBarra() {
  if (!barra_) {
    barra_ = new QMenuBar(this);
    barra_->setObjectName(QStringLiteral("Guia"));
    barra_->setNativeMenuBar(false);
    // The desktop's own font, not the window's printing font.
    barra_->setFont(QApplication::font());
    for (int n = 0; n < 10; ++n) {
      // Hidden at first: a tab shows once it has a title.
      QAction* g = barra_->addAction(QString());
      g->setVisible(false);
      connect(g, &QAction::triggered, this, [this, g] {
        if (aoMenu) aoMenu(g->text());
      });
      guias_[static_cast<size_t>(n)] = g;
    }
  }
  if (desvio_ > 0) return;
  // The bar takes the top; the client keeps its size below it.
  desvio_ = barra_->sizeHint().height();
  const QSize cliente = size();
  if (estilo & 0x40000u)
    resize(cliente.width(), cliente.height() + desvio_);
  else
    setFixedSize(cliente.width(), cliente.height() + desvio_);
  barra_->setGeometry(0, 0, width(), desvio_);
  cliente_->setGeometry(0, desvio_, width(), height() - desvio_);
  barra_->show();
  update();
}

void JanelaExecucao::DefineGuia(int n, const QString& titulo) {
  MostraBarra();
  QAction* g = guias_[static_cast<size_t>(n)];
  g->setText(titulo);
  g->setVisible(true);
  barra_->adjustSize();
  barra_->setGeometry(0, 0, width(), desvio_);
}

void JanelaExecucao::DefineOpcao(int n, int indice, const QString& texto) {
  MostraBarra();
  QAction* g = guias_[static_cast<size_t>(n)];
  if (!g->menu()) {
    auto* m = new QMenu(this);
    // A click on the title, before its list drops, counts as its own click.
    connect(m, &QMenu::aboutToShow, this, [this, g] {
      if (aoMenu) aoMenu(g->text());
    });
    g->setMenu(m);
  }
  std::vector<QAction*>& itens = opcoes_[static_cast<size_t>(n)];
  // Item 0 exists from the start; later ones are loaded hidden.
  while (static_cast<int>(itens.size()) <= indice + 1) {
    QAction* o = g->menu()->addAction(QString());
    o->setVisible(false);
    connect(o, &QAction::triggered, this, [this, o] {
      if (aoMenu) aoMenu(o->text());
    });
    itens.push_back(o);
  }
  itens[static_cast<size_t>(indice)]->setText(texto);
  itens[static_cast<size_t>(indice)]->setVisible(true);
}

std::vector<std::pair<QString, QStringList>> JanelaExecucao::MenusVisiveis() const {
  std::vector<std::pair<QString, QStringList>> r;
  if (!barra_) return r;
  for (size_t n = 0; n < 10; ++n) {
    if (!guias_[n]->isVisible()) continue;
    QStringList opcoes;
    for (QAction* o : opcoes_[n])
      if (o->isVisible()) opcoes << o->text();
    r.emplace_back(guias_[n]->text(), opcoes);
  }
  return r;
}

bool JanelaExecucao::ClicaMenu(const QString& legenda) {
  if (!barra_) return false;
  for (size_t n = 0; n < 10; ++n) {
    for (QAction* o : opcoes_[n])
      if (o->isVisible() && o->text() == legenda) {
        o->trigger();
        return true;
      }
  }
  for (size_t n = 0; n < 10; ++n)
    if (guias_[n]->isVisible() && guias_[n]->text() == legenda) {
      if (aoMenu) aoMenu(legenda);
      return true;
    }
  return false;
}

}  // namespace zv
