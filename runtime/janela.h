// JanelaExecucao: one window of a running program, of one of the four
// classes. It holds what is printed on it (Write, Cls) and reports what the
// user does on its own surface; what that means is SistemaJanelas's.
#pragma once

#include <QImage>
#include <QWidget>
#include <array>
#include <functional>
#include <vector>

#include "core/texto.h"
#include "runtime/superficie.h"

class QAction;
class QMenuBar;

namespace zv {

enum class ClasseJanela { Janela, Form1, Form2, Form3 };

// What a window tells the logic.
class OuvinteJanela {
 public:
  virtual ~OuvinteJanela() = default;
  // The user (or the program) asks to close it; false keeps it open.
  virtual void FechandoJanela(class JanelaExecucao* j) = 0;
  virtual void JanelaAtivada(JanelaExecucao* j) = 0;
  // botao: 1 left, 2 right; tipo: 0 down, 1 up, 2 move, 3 click, 4 double click.
  virtual void MouseJanela(JanelaExecucao* j, int tipo, int botao, int x, int y) = 0;
  // A key seen before the controls (key preview); true when it was swallowed.
  virtual bool TeclaPrevia(JanelaExecucao* j, QKeyEvent* e) = 0;
  virtual void JanelaRedimensionada(JanelaExecucao* j) = 0;
};

class JanelaExecucao : public QWidget, public Superficie {
 public:
  JanelaExecucao(ClasseJanela classe, OuvinteJanela* ouvinte);
  ~JanelaExecucao() override;

  ClasseJanela classe() const { return classe_; }
  static const char* NomeClasse(ClasseJanela c);
  // The client area a window of the class has before any Size, in pixels.
  static QSize TamanhoPadrao(ClasseJanela c);

  Texto tag;               // Tag: the upper-case name
  bool fechando = false;   // being unloaded: keys and focus don't count
  bool previaDeTeclas = false;  // KeyPreview (Window Enter)
  QWidget* auxiliar = nullptr;  // TxtAux, a child: it dies with the window
  // The frame's style bits as the original platform keeps them (Border,
  // Fixed): 0xC00000 caption, 0x40000 thick frame, 0x30000 the boxes.
  uint32_t estilo = 0;
  // Not one of the platform's bits: the system box taken off (Window Box).
  static constexpr uint32_t kSemCaixaSistema = 0x1000000u;
  int estiloBorda = 2;  // BorderStyle: 0 none, 1 fixed single, 2 sizable

  // Text output: printed on the window's surface below the controls.
  void Escreve(const QString& texto, int x, int y) override;
  void Limpa() override;
  void DefineFundo(const QColor& cor);
  void DefineFiguraFundo(const QImage& figura);
  // A picture drawn once on the surface, at x, y in pixels.
  void DesenhaFigura(const QImage& figura, int x, int y);
  // The frame as the style bits say.
  void AplicaEstilo();
  // Grd, the window's gradient: its colours, and whether it is painted
  // again at each resize (GrdAtivo). False when the colours can't be
  // spread over the window's height.
  QColor grdInicial{Qt::black}, grdFinal{Qt::black};
  bool grdAtivo = false;
  bool PintaGradiente();
  // The drawing surface (what Write, the drawing commands and the gradient
  // leave), grown to the window; and a repaint of a part of it.
  QImage& Tela() override;
  void MostraTela(const QRect& r) override { update(r.translated(0, desvio_)); }
  QImage Visto() override;
  // The colour seen at p of the client, controls left out: the background,
  // its picture and the surface.
  QColor CorVisivel(QPoint p) override;

  // The client area, where the controls live: the whole window until a
  // menu bar takes the top, then below it. Controls are made in it.
  QWidget* Cliente() const { return cliente_; }
  // Its size now, whether or not a hidden window has laid it out yet.
  QSize TamanhoCliente() const { return {width(), std::max(0, height() - desvio_)}; }
  // The menu bar of Janela and Form1: ten tabs (Guia), each with its list
  // of options (MenuGuia0 to MenuGuia9). False for the classes without one.
  bool TemMenu() const;
  void DefineGuia(int n, const QString& titulo);
  void DefineOpcao(int n, int indice, const QString& texto);
  // Each tab's title and its options on view, for the window dump.
  std::vector<std::pair<QString, QStringList>> MenusVisiveis() const;
  // Clicks a title or an option by its caption; false when none has it.
  bool ClicaMenu(const QString& legenda);
  // Told of a click on a title or an option, with its caption.
  std::function<void(const QString&)> aoMenu;

 protected:
  void paintEvent(QPaintEvent* e) override;
  void resizeEvent(QResizeEvent* e) override;
  void closeEvent(QCloseEvent* e) override;
  void changeEvent(QEvent* e) override;
  void focusInEvent(QFocusEvent* e) override;
  void mousePressEvent(QMouseEvent* e) override;
  void mouseReleaseEvent(QMouseEvent* e) override;
  void mouseMoveEvent(QMouseEvent* e) override;
  void mouseDoubleClickEvent(QMouseEvent* e) override;

 private:
  void CresceTela();
  void MostraBarra();
  ClasseJanela classe_;
  QWidget* cliente_ = nullptr;
  QMenuBar* barra_ = nullptr;
  std::array<QAction*, 10> guias_{};
  std::array<std::vector<QAction*>, 10> opcoes_;
  int desvio_ = 0;  // the bar's height once it shows
  OuvinteJanela* ouvinte_;
  QImage tela_;     // what Write printed, transparent elsewhere
  QImage figura_;   // the background picture, sized by the window
};

}  // namespace zv
