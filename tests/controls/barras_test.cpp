// The scroll bar's arithmetic, the grid's visible cells over its data, and
// a box's selection and keys, on the offscreen platform.
#include <gtest/gtest.h>

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>

#include "controls/barras.h"
#include "controls/grade.h"

namespace zv {
namespace {

TEST(BarraRolagem, StepsPassTheEndByLessThanAStepThenStop) {
  BarraHorizontal b(nullptr);
  b.resize(200, 17);
  b.setMaximum(100);
  b.setSingleStep(7);
  int mudancas = 0;
  b.aoMudar = [&] { ++mudancas; };
  for (int k = 0; k < 20; ++k) b.Passo(true);
  EXPECT_EQ(b.value(), 105);
  EXPECT_EQ(mudancas, 15);
  b.Passo(false);
  EXPECT_EQ(b.value(), 98);
}

TEST(BarraRolagem, PagesStopAtTheEnds) {
  BarraVertical b(nullptr);
  b.resize(17, 200);
  b.setMaximum(25);
  b.setPageStep(10);
  b.Pagina(true), b.Pagina(true), b.Pagina(true);
  EXPECT_EQ(b.value(), 25);
  b.Pagina(false), b.Pagina(false), b.Pagina(false);
  EXPECT_EQ(b.value(), 0);
}

TEST(BarraRolagem, ThumbPlacesAndDragEnds) {
  BarraHorizontal b(nullptr);
  b.resize(217, 17);  // arrows 17, thumb 17: travel from 17 to 183
  b.setMaximum(0);
  b.setValue(0);
  // A Max of 0 counts as 1: the thumb rests at the low end.
  EXPECT_EQ(b.Posicao(), b.Minimo());
  b.setMaximum(166);
  b.setValue(83);
  EXPECT_EQ(b.Posicao(), 17 + 83);
  // Dragged past the far end gives exactly Max; past the near end 0.
  b.ArrastaAte(1000);
  EXPECT_EQ(b.value(), 166);
  EXPECT_EQ(b.Posicao(), b.Maximo());
  b.ArrastaAte(-50);
  EXPECT_EQ(b.value(), 0);
  b.setMaximum(7);
  b.ArrastaAte(17 + 166.0 / 7 * 3);
  EXPECT_EQ(b.value(), 3);
  // A value beyond Max puts the thumb beyond the track: the program's to keep.
  b.setValue(14);
  EXPECT_GT(b.Posicao(), b.Maximo());
}

// A box of 30 rows in a control tall enough for a few.
struct Caixa {
  NovoBox b{nullptr};
  std::vector<DadosEvento> eventos;
  std::vector<int> avisos;
  explicit Caixa(int linhas = 30, int altura = 200) {
    b.resize(300, altura);
    b.atributosAtivos = true;
    b.relata = [this](const DadosEvento& e) { eventos.push_back(e); };
    b.avisa = [this](int f, const QString&, int) { avisos.push_back(f); };
    b.Titulo(QStringLiteral("N"), 6, 1, 1);
    b.Titulo(QStringLiteral("Text"), 12, 0, 0);
    b.Ativa(true);
    for (int k = 0; k < linhas; ++k) {
      b.Add(QString::number(k));
      b.Add(QStringLiteral("row %1").arg(k));
      b.BoxNew();
    }
    b.AddEnd();
  }
  void Tecla(int k) {
    QKeyEvent e(QEvent::KeyPress, k, Qt::NoModifier);
    QApplication::sendEvent(&b, &e);
  }
};

TEST(NovoBox, SelectedScrollsAsFarAsTheLastPage) {
  Caixa c;
  int t = c.b.TotalLinhas();
  ASSERT_GT(t, 2);
  ASSERT_LT(t, 30);
  c.b.Selected(5);
  EXPECT_EQ(c.b.PrimeiraLinha(), 5);
  EXPECT_EQ(c.b.LinhaSelecionada(), 5);
  EXPECT_EQ(c.b.LeCelula(0, 0), QStringLiteral(" 5"));
  c.b.Selected(29);
  EXPECT_EQ(c.b.PrimeiraLinha(), 30 - t);
  EXPECT_EQ(c.b.LinhaSelecionada(), 29);
  EXPECT_EQ(c.b.Arg(1), QStringLiteral("row 29"));
  c.b.Selected(30);
  EXPECT_EQ(c.avisos, (std::vector<int>{NovoBox::kSelecaoInvalida}));
  EXPECT_EQ(c.b.LinhaSelecionada(), 29);
}

// The operations the designer and the pickers use: a run of attributes on a
// row, rows filled without attributes, a change reported by the program.
TEST(NovoBox, RowAttributesRowsWithoutAttributesAndAReportedChange) {
  Caixa c(3);
  // Colours come as the language's numbers: red in the low byte.
  c.b.LinhaAtributo(1, 1, 0, 0x0000ff);
  EXPECT_EQ(c.b.modelo.Atributos(1, 1).fundo, qRgb(255, 0, 0));
  EXPECT_EQ(c.b.modelo.Atributos(1, 0).fundo, qRgb(255, 255, 255));
  EXPECT_EQ(c.b.modelo.Atributos(2, 1).fundo, qRgb(255, 255, 255));
  c.b.LinhaAtributo(0, 0, 1, -1, 0xff0000);
  EXPECT_EQ(c.b.modelo.Atributos(0, 0).frente, qRgb(0, 0, 255));
  EXPECT_EQ(c.b.modelo.Atributos(0, 1).frente, qRgb(0, 0, 0));
  c.b.LinhaAtributo(3, 0, 0, 0x030201);  // beyond the data: nothing
  c.b.LinhaAtributo(0, 40, 5, 0x030201);

  c.b.BoxNew2();  // the row begun after it takes no attributes
  c.b.Add(QStringLiteral("9"), 0x00ff00);
  c.b.BoxNew();
  c.b.Add(QStringLiteral("10"), 0x00ff00);
  c.b.BoxNew();
  EXPECT_EQ(c.b.ListCount(), 6);
  EXPECT_EQ(c.b.modelo.Atributos(4, 0).fundo, qRgb(255, 255, 255));
  EXPECT_EQ(c.b.modelo.Atributos(5, 0).fundo, qRgb(0, 255, 0));

  c.b.SofreuAlteracao();
  ASSERT_FALSE(c.eventos.empty());
  EXPECT_EQ(c.eventos.back().tipo, EventoControle::Mudou);
  EXPECT_EQ(c.b.RetHWnd(-1), 0u);
  EXPECT_EQ(c.b.RetHWnd(0), c.b.RetHWnd2());
}

TEST(NovoBox, ArrowsMoveTheCursorThenScroll) {
  Caixa c;
  int t = c.b.TotalLinhas();
  c.b.PosicionaCursor(0);
  for (int k = 0; k < t + 2; ++k) c.Tecla(Qt::Key_Down);
  EXPECT_EQ(c.b.LinhaSelecionada(), t + 2);
  EXPECT_EQ(c.b.PrimeiraLinha(), 3);
  c.Tecla(Qt::Key_PageDown);
  EXPECT_EQ(c.b.PrimeiraLinha(), 3 + t);
  for (int k = 0; k < 100; ++k) c.Tecla(Qt::Key_Down);
  EXPECT_EQ(c.b.LinhaSelecionada(), 29);  // the cursor stops at the data's end
  for (int k = 0; k < 100; ++k) c.Tecla(Qt::Key_Up);
  EXPECT_EQ(c.b.LinhaSelecionada(), 0);
  EXPECT_EQ(c.b.PrimeiraLinha(), 0);
  EXPECT_EQ(c.eventos.back().tipo, EventoControle::TeclaDesce);
  EXPECT_EQ(c.eventos.back().tecla, 38);
}

TEST(NovoBox, CursorBeyondTheVisibleRowsWrapsBySubtraction) {
  Caixa c;
  int t = c.b.TotalLinhas();
  c.b.PosicionaCursor(t + 1);
  EXPECT_EQ(c.b.LinhaSelecionada(), 1);
}

TEST(NovoBox, RemovingTheLastRowKeepsTheVisibleSelection) {
  Caixa c(3);
  c.b.Selected(2);
  c.b.RemoveLinha(2);
  EXPECT_EQ(c.b.ListCount(), 2);
  EXPECT_EQ(c.b.LinhaSelecionada(), 2);
  EXPECT_EQ(c.b.Arg(0), QString());
  EXPECT_EQ(c.b.LeCelula(2, 0), QString());
}

TEST(NovoBox, WideTextsAreCutWithDotsAndKeptWhole) {
  Caixa c(0);
  QString longo(100000, QLatin1Char('w'));
  c.b.Add(QStringLiteral("1"));
  c.b.Add(longo + QStringLiteral("\r\nend"));
  c.b.BoxNew();
  c.b.AddEnd();
  QString visto = c.b.LeCelula(0, 1);
  EXPECT_TRUE(visto.startsWith(QStringLiteral(" w")));
  EXPECT_TRUE(visto.endsWith(QStringLiteral("...")));
  EXPECT_LT(visto.size(), 40);
  EXPECT_EQ(c.b.LeVetor(0, 1).size(), 100005);
  EXPECT_EQ(c.b.LeCelula(0, 0), QStringLiteral(" 1"));
}

TEST(NovoBox, AddBeyondTheLastColumnIsReportedAndRowsAreFinishedOnly) {
  Caixa c(0);
  c.b.Add(QStringLiteral("a"));
  c.b.AddEnd();
  EXPECT_EQ(c.b.ListCount(), 0);
  c.b.Add(QStringLiteral("b"));
  c.b.Add(QStringLiteral("c"));
  EXPECT_EQ(c.avisos, (std::vector<int>{NovoBox::kColunaAlem}));
  c.b.Clear();
  EXPECT_EQ(c.b.ListCount(), 0);
  EXPECT_EQ(c.b.LeVetor(0, 0), QString());
  c.b.ClicaCabecalho(0);  // sorting nothing
  EXPECT_EQ(c.b.ListCount(), 0);
}

// The cut found by halving is the one that removing a character at a time
// from the end finds, as the original does it.
TEST(NovoBox, CutTextsMatchTheOneCharacterAtATimeLoop) {
  Caixa c(0);
  QFont f(QStringLiteral("Tahoma"));
  f.setStyleHint(QFont::SansSerif);
  f.setPointSize(10);
  QFontMetrics fm(f);
  double fator = c.b.width() < 400 ? 1.05 : 1.0;
  int largura = c.b.RetCelula(0, 1).width();
  const QString pontos = QStringLiteral("...");
  QStringList textos;
  for (int n = 1; n < 60; n += 3) textos << QStringLiteral("Wide text iiii WWWW %1 ").arg(n).repeated(n % 7 + 1);
  for (const QString& t : textos) {
    c.b.Clear();
    c.b.Add(QStringLiteral("1"));
    c.b.Add(t);
    c.b.BoxNew();
    c.b.AddEnd();
    QString esperado = t + QLatin1Char(' ');  // the left column's blank
    if (fm.horizontalAdvance(esperado) * fator > largura) {
      QString s = esperado.trimmed();
      do s.chop(1);
      while (!s.isEmpty() && fm.horizontalAdvance(s + pontos) * fator > largura);
      esperado = QLatin1Char(' ') + s + pontos;
    }
    EXPECT_EQ(c.b.LeCelula(0, 1), esperado) << t.toStdString();
  }
}

void Mouse(QWidget* w, QEvent::Type tipo, QPoint p) {
  Qt::MouseButtons estado = tipo == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
  QMouseEvent e(tipo, QPointF(p), w->mapToGlobal(QPointF(p)), tipo == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton,
                estado, Qt::NoModifier);
  QApplication::sendEvent(w, &e);
}

TEST(NovoBox, DraggingAHeadingsEdgeResizesItsColumnAndRefitsTheCells) {
  Caixa c(3);
  QRect antes = c.b.RetCabecalho(1);
  QPoint borda(antes.right() - 2, antes.center().y());
  Mouse(&c.b, QEvent::MouseButtonPress, borda);
  Mouse(&c.b, QEvent::MouseMove, borda - QPoint(60, 0));
  Mouse(&c.b, QEvent::MouseButtonRelease, borda - QPoint(60, 0));
  EXPECT_EQ(c.b.RetCabecalho(1).width(), antes.width() - 60);
  EXPECT_TRUE(c.b.LeCelula(0, 1).endsWith(QStringLiteral("...")));
  EXPECT_EQ(c.b.modelo.ColunaOrdem(), -1);  // an edge's drag is no sort
  // A press inside the heading and its release there sort by it.
  QPoint meio(antes.left() + 10, antes.center().y());
  Mouse(&c.b, QEvent::MouseButtonPress, meio);
  Mouse(&c.b, QEvent::MouseButtonRelease, meio);
  EXPECT_EQ(c.b.modelo.ColunaOrdem(), 1);
}

}  // namespace
}  // namespace zv

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
