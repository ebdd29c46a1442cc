// The drawing commands: circles, boxes, lines, points, a flood fill and a
// cross-fade of two pictures, on the current window's surface, placed on
// the grid of LinSize and ColSize.
#include <QPainter>
#include <cmath>
#include <queue>

#include "library/arquivos.h"
#include "runtime/argumentos.h"
#include "runtime/janelas.h"
#include "runtime/mensagens.h"

namespace zv {

namespace {

struct Ponto {
  int x, y;
};

// Row and column to pixels, each rounded.
Ponto NaGrade(SistemaJanelas& s, double linha, double coluna) {
  return {SistemaJanelas::EmPixels(std::nearbyint(coluna * s.colSize)),
          SistemaJanelas::EmPixels(std::nearbyint(linha * s.linSize))};
}

QColor Cor(Interpretador& zv, const Texto& t) { return CorDe(Num(zv, t)); }

QPen Pena(const Superficie* j, const QColor& c) { return QPen(c, std::max(1, j->larguraPena)); }

Valor CmdCircle(Interpretador& zv, const Texto& args) {
  auto a = zv.SeparaArgumentos(args, 5);
  SistemaJanelas& s = Janelas(zv);
  Superficie* j = s.SuperficieAtual();
  const Ponto c = NaGrade(s, Num(zv, Arg(a, 0)), Num(zv, Arg(a, 1)));
  // The radius counts in columns only.
  const double raio = SistemaJanelas::EmPixels(Num(zv, Arg(a, 2)) * s.colSize);
  const QColor cor = Cor(zv, Arg(a, 3));
  QPainter p(&j->Tela());
  p.setPen(Pena(j, cor));
  p.setBrush(cor);
  p.drawEllipse(QPointF(c.x, c.y), raio, raio);
  j->MostraTela(QRect(c.x - static_cast<int>(raio) - 4, c.y - static_cast<int>(raio) - 4,
                      2 * static_cast<int>(raio) + 8, 2 * static_cast<int>(raio) + 8));
  return Valor();
}

// Rectangle (filled) and Straight (a line) from one grid place to another.
Valor Traca(Interpretador& zv, const Texto& args, bool cheio) {
  auto a = zv.SeparaArgumentos(args, 6);
  SistemaJanelas& s = Janelas(zv);
  Superficie* j = s.SuperficieAtual();
  const Ponto p1 = NaGrade(s, Num(zv, Arg(a, 0)), Num(zv, Arg(a, 1)));
  const Ponto p2 = NaGrade(s, Num(zv, Arg(a, 2)), Num(zv, Arg(a, 3)));
  const QColor cor = Cor(zv, Arg(a, 4));
  QPainter p(&j->Tela());
  p.setPen(Pena(j, cor));
  const QRect r = QRect(QPoint(p1.x, p1.y), QPoint(p2.x, p2.y)).normalized();
  if (cheio) {
    p.setBrush(cor);
    p.drawRect(r);
  } else {
    p.drawLine(p1.x, p1.y, p2.x, p2.y);
  }
  j->MostraTela(r.adjusted(-j->larguraPena - 1, -j->larguraPena - 1, j->larguraPena + 1, j->larguraPena + 1));
  return Valor();
}

Valor CmdRectangle(Interpretador& zv, const Texto& args) { return Traca(zv, args, true); }
Valor CmdStraight(Interpretador& zv, const Texto& args) { return Traca(zv, args, false); }

Valor CmdPoint(Interpretador& zv, const Texto& args) {
  auto a = zv.SeparaArgumentos(args, 4);
  SistemaJanelas& s = Janelas(zv);
  Superficie* j = s.SuperficieAtual();
  const Ponto pt = NaGrade(s, Num(zv, Arg(a, 0)), Num(zv, Arg(a, 1)));
  QImage& tela = j->Tela();
  if (tela.rect().contains(pt.x, pt.y)) tela.setPixelColor(pt.x, pt.y, Cor(zv, Arg(a, 2)));
  j->MostraTela(QRect(pt.x, pt.y, 1, 1));
  return Valor();
}

Valor CmdReadPoint(Interpretador& zv, const Texto& args) {
  auto a = zv.SeparaArgumentos(args, 3);
  SistemaJanelas& s = Janelas(zv);
  Superficie* j = s.SuperficieAtual();
  const Ponto pt = NaGrade(s, Num(zv, Arg(a, 0)), Num(zv, Arg(a, 1)));
  const QColor c = j->CorVisivel(QPoint(pt.x, pt.y));
  // Outside the window the original read -1 (CLR_INVALID).
  return Valor::DeInt32(c.isValid() ? NumeroDaCor(c) : -1);
}

// Paint: every pixel joined to the point and of its colour takes the fill
// colour, as the surface shows them. The window isn't repainted.
Valor CmdPaint(Interpretador& zv, const Texto& args) {
  auto a = zv.SeparaArgumentos(args, 4);
  SistemaJanelas& s = Janelas(zv);
  Superficie* j = s.SuperficieAtual();
  const Ponto pt = NaGrade(s, Num(zv, Arg(a, 0)), Num(zv, Arg(a, 1)));
  const QColor cor = Cor(zv, Arg(a, 2));
  QImage& tela = j->Tela();
  if (!tela.rect().contains(pt.x, pt.y)) return Valor();
  // What is seen, the controls left out: the background and the drawing,
  // as the original's device context held them.
  const QImage visto = j->Visto();
  if (!visto.rect().contains(pt.x, pt.y)) return Valor();
  const QRgb alvo = visto.pixel(pt.x, pt.y);
  if (alvo == cor.rgb()) return Valor();
  std::vector<bool> visitado(static_cast<size_t>(visto.width()) * static_cast<size_t>(visto.height()));
  std::queue<QPoint> fila;
  fila.push(QPoint(pt.x, pt.y));
  while (!fila.empty()) {
    const QPoint q = fila.front();
    fila.pop();
    if (!visto.rect().contains(q)) continue;
    const size_t k = static_cast<size_t>(q.y()) * static_cast<size_t>(visto.width()) + static_cast<size_t>(q.x());
    if (visitado[k] || visto.pixel(q) != alvo) continue;
    visitado[k] = true;
    tela.setPixelColor(q, cor);
    fila.push(q + QPoint(1, 0));
    fila.push(q - QPoint(1, 0));
    fila.push(q + QPoint(0, 1));
    fila.push(q - QPoint(0, 1));
  }
  return Valor();
}

// Transition: the two pictures and where they go, kept for the run.
struct EstadoTransicao {
  QImage inicial, final;
  int x = 0, y = 0;
};

Valor CmdTransition(Interpretador& zv, const Texto& args) {
  auto a = zv.SeparaArgumentos(args, 4, true);
  SistemaJanelas& s = Janelas(zv);
  EstadoTransicao& t = zv.Estado<EstadoTransicao>();
  const Texto palavra = Maiusculas(Apara(Arg(a, 0)));
  if (palavra == u"POSITION") {
    // The first value, scaled by LinSize, is the x: as the original had it.
    t.x = SistemaJanelas::EmPixels(std::nearbyint(Num(zv, Arg(a, 2)) * s.linSize));
    t.y = SistemaJanelas::EmPixels(std::nearbyint(Num(zv, Arg(a, 3)) * s.colSize));
  } else if (palavra == u"INITIALPICTURE" || palavra == u"FINALPICTURE") {
    const bool inicial = palavra == u"INITIALPICTURE";
    const Texto nome = TextoT(zv, Arg(a, 2));
    const Texto arquivo = ResolveArquivo(zv, nome);
    QImage& figura = inicial ? t.inicial : t.final;
    figura = QImage();
    if (arquivo.empty() || !figura.load(QString::fromStdU16String(arquivo)))
      zv.ErroExecucao(Texto(inicial ? msg::FiguraInicialAusente : msg::FiguraFinalAusente) + u"\r" + nome);
  } else if (palavra == u"VALUE") {
    const double n = std::clamp(Num(zv, Arg(a, 2)), 0.0, 255.0);
    if (t.inicial.isNull()) return Valor();
    QImage mistura = t.inicial.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    {
      QPainter p(&mistura);
      p.setOpacity(n / 255.0);
      p.drawImage(0, 0, t.final);
    }
    Superficie* j = s.SuperficieAtual();
    QPainter(&j->Tela()).drawImage(t.x, t.y, mistura);
    j->MostraTela(QRect(QPoint(t.x, t.y), mistura.size()));
  }
  return Valor();
}

}  // namespace

void RegistraDesenho(TabelaComandos& t) {
  t.Define(u"Circle", CmdCircle);
  t.Define(u"Rectangle", CmdRectangle);
  t.Define(u"Straight", CmdStraight);
  t.Define(u"Point", CmdPoint);
  t.Define(u"ReadPoint", CmdReadPoint);
  t.Define(u"Paint", CmdPaint);
  t.Define(u"Transition", CmdTransition);
}

}  // namespace zv
