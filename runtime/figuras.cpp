// Picture and DrawPictures: sprites a program places by the pixel and draws
// on the current window when it asks, back ones first, white showing what
// lies beneath.
#include <QPainter>

#include "controls/figuras_padrao.h"
#include "library/arquivos.h"
#include "library/texto_qt.h"
#include "runtime/argumentos.h"
#include "runtime/figuras.h"
#include "runtime/janelas.h"
#include "runtime/mensagens.h"

namespace zv {

QImage CarregaFiguraArquivo(Interpretador& zv, const Texto& nome, bool& achou) {
  Texto caminho = ResolveArquivo(zv, nome);
  achou = !caminho.empty();
  if (!achou) return {};
  QImage figura(Q(caminho));
  if (figura.isNull()) throw FalhaHost(msg::FiguraInvalida);
  return figura;
}

namespace {

// A picture of the Picture command. It is never on view: DrawPictures
// copies it onto a window.
class Sprite : public QWidget {
 public:
  explicit Sprite(QWidget* pai) : QWidget(pai) { hide(); }
  QImage figura;  // white turned transparent: the mask and the picture in one
  int posicao = 1;  // 0 off, 1 back, 2 front
  // Its place and size on the window it is drawn on are the widget's own.
};

// The picture with its white (the back colour) transparent; anything a file
// itself leaves transparent stays so.
QImage ComMascara(const QImage& original) {
  QImage f = original.convertToFormat(QImage::Format_ARGB32);
  for (int y = 0; y < f.height(); ++y) {
    auto* linha = reinterpret_cast<QRgb*>(f.scanLine(y));
    for (int x = 0; x < f.width(); ++x) {
      QRgb p = linha[x];
      if (qAlpha(p) < 128 || (qRed(p) == 255 && qGreen(p) == 255 && qBlue(p) == 255))
        linha[x] = qRgba(0, 0, 0, 0);
      else
        linha[x] = p | 0xFF000000u;
    }
  }
  return f;
}

TabelaControles& Tabela(SistemaJanelas& s) { return s.controles[size_t(TipoControle::Figura)]; }

Valor CriaPicture(Interpretador& zv, SistemaJanelas& s, const std::vector<Texto>& a) {
  Texto nome = TextoT(zv, Arg(a, 0));
  // Pictures live on the main window, whichever window is current.
  auto* sp = new Sprite(s.Principal()->Cliente());
  sp->setGeometry(0, 0, 0, 0);
  s.PoeNaTabela(TipoControle::Figura, nome, sp);

  Texto arquivo = TextoT(zv, Arg(a, 1));
  QImage figura;
  if (int n = ProcuraNaLista(QString::fromLatin1(kListaFiguras), Q(arquivo)); n >= 0) {
    figura = FiguraPadrao(n).toImage();
  } else {
    bool achou = false;
    figura = CarregaFiguraArquivo(zv, arquivo, achou);
    if (!achou) {
      zv.ErroExecucao(Texto(msg::FiguraDeSpriteAusente) + u"\r" + arquivo);
      return Valor();
    }
  }
  sp->figura = ComMascara(figura);
  sp->setGeometry(0, 0, figura.width(), figura.height());
  sp->posicao = 1;
  return Valor();
}

void MembroPicture(Interpretador& zv, SistemaJanelas& s, Sprite* sp, const std::vector<Texto>& a) {
  Texto prop = PalavraDoMembro(Apara(Arg(a, 0)));
  Texto valor = Arg(a, 2);
  if (s.MembroGrade(sp, prop, valor)) return;
  if (prop == u".OFF") sp->posicao = 0;
  else if (prop == u".POSITION") {
    Texto p = Maiusculas(TextoT(zv, valor));
    if (p == u"BACK") sp->posicao = 1;
    else if (p == u"FRONT") sp->posicao = 2;
  }
}

Valor CmdPicture(Interpretador& zv, const Texto& argumentos) {
  FormasDeControle f;
  f.cria = [&zv](SistemaJanelas& s, const std::vector<Texto>& a) { return CriaPicture(zv, s, a); };
  f.membro = [&zv](SistemaJanelas& s, int slot, const std::vector<Texto>& a) {
    if (auto* sp = static_cast<Sprite*>(Tabela(s).instancias[size_t(slot)].data())) MembroPicture(zv, s, sp, a);
    return Valor();
  };
  // Unlike the other kinds, a picture that isn't there is reported.
  f.semControle = [&zv](const Texto&) { zv.ErroExecucao(msg::SpriteInexistente); };
  return ComandoDeControle(zv, argumentos, TipoControle::Figura, f);
}

// Back pictures, then front ones, each at its place and size, onto the
// current window: cleared first unless Preserve keeps what is there.
Valor CmdDrawPictures(Interpretador& zv, const Texto& argumentos) {
  std::vector<Texto> a = zv.SeparaArgumentos(argumentos, 2);
  SistemaJanelas& s = Janelas(zv);
  s.LimpaDescartados();
  Superficie* j = s.SuperficieAtual();
  if (Maiusculas(TextoT(zv, Arg(a, 0))) != u"PRESERVE") s.Limpa();
  TabelaControles& t = Tabela(s);
  QRect tocada;
  {
    QPainter p(&j->Tela());
    for (int camada = 1; camada <= 2; ++camada)
      for (size_t k = 0; k < t.nomes.size(); ++k) {
        auto* sp = static_cast<Sprite*>(t.instancias[k].data());
        if (t.nomes[k].empty() || !sp || sp->posicao != camada) continue;
        QRect alvo = sp->geometry();
        p.drawImage(alvo.topLeft(), sp->figura, QRect(QPoint(0, 0), alvo.size()));
        tocada |= alvo;
      }
  }
  j->MostraTela(tocada.isNull() ? j->Tela().rect() : tocada);
  return Valor();
}

}  // namespace

void DescreveSprite(QWidget* w, std::string& s, const std::function<std::string(const char*, int)>& campo) {
  s += campo("position", static_cast<Sprite*>(w)->posicao);
}

void RegistraFiguras(TabelaComandos& t) {
  t.Define(u"Picture", CmdPicture);
  t.Define(u"DrawPictures", CmdDrawPictures);
}

}  // namespace zv
