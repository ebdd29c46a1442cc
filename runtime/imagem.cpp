// Image: a drawing panel on a window. It holds a picture and what is drawn
// on it, takes other controls inside it, keeps the mouse's last state, and
// with `.Use` becomes what the drawing commands and Write draw on.
#include <QBitmap>
#include <QCursor>
#include <QFileInfo>
#include <QMouseEvent>
#include <QPainter>

#include "controls/figuras_padrao.h"
#include "library/arquivos.h"
#include "library/texto_qt.h"
#include "runtime/argumentos.h"
#include "runtime/figuras.h"
#include "runtime/janelas.h"
#include "runtime/mensagens.h"

namespace zv {

bool PoeNaImagem(SistemaJanelas& s, QWidget* w, const Texto& nome);

namespace {

class Imagem : public QWidget, public Superficie {
 public:
  explicit Imagem(QWidget* pai) : QWidget(pai) {
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
  }

  QImage figura;  // Picture: drawn at 0, 0 at its own size
  QColor fundo{240, 240, 240};
  int posX = 0, posY = 0;  // CurrentX, CurrentY, in pixels
  int mouseX = 0, mouseY = 0, mouseBotao = 0;

  QImage& Tela() override {
    Cresce(tela_, width(), height());
    return tela_;
  }
  void MostraTela(const QRect& r) override { update(r); }
  QImage Visto() override {
    QImage visto(Tela().size(), QImage::Format_RGB32);
    QPainter p(&visto);
    Pinta(p, visto.rect());
    return visto;
  }
  QColor CorVisivel(QPoint p) override {
    if (!rect().contains(p)) return {};
    // That one point painted as the panel paints it.
    QImage ponto(1, 1, QImage::Format_RGB32);
    QPainter pintor(&ponto);
    pintor.translate(-p);
    Pinta(pintor, QRect(p, QSize(1, 1)));
    pintor.end();
    return ponto.pixelColor(0, 0);
  }
  void Escreve(const QString& texto, int x, int y) override { update(DesenhaTexto(Tela(), font(), corFrente, texto, x, y)); }
  void Limpa() override {
    tela_.fill(Qt::transparent);
    update();
  }
  // Cls of the image itself: its picture goes too.
  void LimpaTudo() {
    figura = QImage();
    Limpa();
  }

 protected:
  void paintEvent(QPaintEvent* e) override {
    QPainter p(this);
    Pinta(p, e->rect());
  }
  void mouseMoveEvent(QMouseEvent* e) override {
    mouseX = qRound(e->position().x());
    mouseY = qRound(e->position().y());
    QWidget::mouseMoveEvent(e);
  }
  void mousePressEvent(QMouseEvent* e) override {
    mouseBotao = e->button() == Qt::LeftButton ? 1 : e->button() == Qt::RightButton ? 2 : 4;
    QWidget::mousePressEvent(e);
  }
  void mouseReleaseEvent(QMouseEvent* e) override {
    mouseBotao = 0;
    QWidget::mouseReleaseEvent(e);
  }

 private:
  void Pinta(QPainter& p, const QRect& r) {
    p.fillRect(r, fundo);
    if (!figura.isNull()) p.drawImage(0, 0, figura);
    if (!tela_.isNull()) p.drawImage(0, 0, tela_);
  }
  QImage tela_;
};

TabelaControles& Tabela(SistemaJanelas& s) { return s.controles[size_t(TipoControle::Imagem)]; }

// A picture argument of Image: a built-in picture, a background, or a file;
// false (after the box) when the file isn't there.
bool Carrega(Interpretador& zv, const Texto& nome, QImage& figura) {
  if (nome.empty()) {
    figura = QImage();
    return true;
  }
  if (int n = ProcuraNaLista(QString::fromLatin1(kListaFiguras), Q(nome)); n >= 0) {
    figura = FiguraPadrao(n).toImage();
    return true;
  }
  if (int n = ProcuraNaLista(QString::fromLatin1(kListaFundos), Q(nome)); n >= 0) {
    figura = FundoPadrao(n);
    return true;
  }
  bool achou = false;
  QImage f = CarregaFiguraArquivo(zv, nome, achou);
  if (!achou) {
    zv.ErroExecucao(Texto(msg::ImagemAusente) + u"\r" + nome);
    return false;
  }
  figura = f;
  return true;
}

Valor CriaImagem(Interpretador& zv, SistemaJanelas& s, const std::vector<Texto>& a) {
  Texto nome = TextoT(zv, Arg(a, 0));
  auto* img = new Imagem(s.Atual()->Cliente());
  s.PoeNaTabela(TipoControle::Imagem, nome, img);
  QImage figura;
  if (Carrega(zv, TextoT(zv, Arg(a, 1)), figura)) img->figura = figura;
  // As large as its picture; a panel without one starts at 100 by 100.
  img->resize(figura.isNull() ? QSize(100, 100) : figura.size());
  img->show();
  return Valor();
}

// The values of a member: behind "=", or the text behind the first blank of
// the first argument and every argument after it.
std::vector<Texto> Valores(const std::vector<Texto>& a) {
  std::vector<Texto> v;
  if (Arg(a, 1) == u"=") {
    v.assign(a.begin() + 2, a.end());
  } else {
    Texto primeiro = Apara(Arg(a, 0));
    size_t branco = primeiro.find(u' ');
    if (branco != Texto::npos) v.push_back(Apara(primeiro.substr(branco + 1)));
    if (a.size() > 1) v.insert(v.end(), a.begin() + 1, a.end());
  }
  while (!v.empty() && v.back().empty()) v.pop_back();
  return v;
}

void Salva(Interpretador& zv, Imagem* img, const std::vector<Texto>& v) {
  Texto arquivo = TextoT(zv, Arg(v, 0));
  Texto m = Maiusculas(arquivo);
  const bool bmp = Contem(m, u".BMP"), jpg = Contem(m, u".JPG");
  if (!bmp && !jpg) {
    Avisa(zv, msg::SalvaFiguraExtensao);
    return;
  }
  QString caminho = Q(CaminhoNoPrograma(arquivo, zv.dirPrograma));
  QImage visto = img->Visto();
  bool ok = false;
  if (bmp) {
    ok = visto.save(caminho, "BMP");
  } else {
    // The quality words of a JPEG, as the image services take them: 100
    // superb, 75 good, 50 normal, 25 average, 10 bad; other numbers the
    // encoder's default.
    int q = Arg(v, 1).empty() ? -1 : NumInt(zv, Arg(v, 1));
    int qualidade = q == 100 || q == 75 || q == 50 || q == 25 || q == 10 ? q : -1;
    ok = visto.save(caminho, "JPG", qualidade);
  }
  if (!ok) throw FalhaHost(msg::Formata(msg::ImagemNaoGravada, T(caminho)));
}

Valor Membro(Interpretador& zv, SistemaJanelas& s, int slot, const std::vector<Texto>& a) {
  auto* img = static_cast<Imagem*>(Tabela(s).instancias[size_t(slot)].data());
  if (!img) return Valor();
  Texto primeiro = Apara(Arg(a, 0));
  Texto prop = PalavraDoMembro(primeiro);
  std::vector<Texto> v = Valores(a);
  auto num = [&](size_t i) { return Num(zv, Arg(v, i)); };
  auto inteiro = [&](size_t i) { return NumInt(zv, Arg(v, i)); };

  if (prop == u".HEIGHT") {
    img->resize(img->width(), s.PxLinha(num(0)) + 1);
  } else if (prop == u".WIDTH") {
    img->resize(s.PxColuna(num(0)) + 1, img->height());
  } else if (prop == u".LIN") {
    img->move(img->x(), s.PxLinha(num(0)));
  } else if (prop == u".COL") {
    img->move(s.PxColuna(num(0)), img->y());
  } else if (prop == u".IMG") {
    Texto nome = TextoT(zv, Arg(v, 0));
    bool achou = false;
    QImage f = CarregaFiguraArquivo(zv, nome, achou);
    if (!achou) {
      zv.ErroExecucao(Texto(msg::ImagemAusente) + u"\r" + nome);
      return Valor();
    }
    QPainter(&img->Tela()).drawImage(img->posX, img->posY, f);
    img->MostraTela(QRect(QPoint(img->posX, img->posY), f.size()));
  } else if (prop == u".POSX") {
    img->posX = inteiro(0);
  } else if (prop == u".POSY") {
    img->posY = inteiro(0);
  } else if (prop == u".POINT") {
    QImage& t = img->Tela();
    QPoint p(inteiro(0), inteiro(1));
    if (t.rect().contains(p)) t.setPixelColor(p, CorDe(num(2)));
    img->MostraTela(QRect(p, QSize(1, 1)));
  } else if (prop == u".READPOINT") {
    QColor c = img->CorVisivel(QPoint(inteiro(0), inteiro(1)));
    return Valor::DeInt32(c.isValid() ? NumeroDaCor(c) : -1);
  } else if (prop == u".MOUSEX") {
    return Valor::DeInt32(img->mouseX);
  } else if (prop == u".MOUSEY") {
    return Valor::DeInt32(img->mouseY);
  } else if (prop == u".MOUSEBUTTON") {
    return Valor::DeInt32(img->mouseBotao);
  } else if (prop == u".POINTSIZE") {
    img->larguraPena = std::max(1, inteiro(0));
  } else if (prop == u".STRAIGHT") {
    QPoint p1(inteiro(0), inteiro(1)), p2(inteiro(2), inteiro(3));
    QColor cor = Arg(v, 4).empty() ? QColor(Qt::black) : CorDe(num(4));
    QPainter p(&img->Tela());
    p.setPen(QPen(cor, img->larguraPena));
    p.drawLine(p1, p2);
    int m = img->larguraPena + 1;
    img->MostraTela(QRect(p1, p2).normalized().adjusted(-m, -m, m, m));
  } else if (prop == u".WRITE") {
    Texto texto;
    for (const Texto& x : v) {
      if (x.empty()) break;
      texto += TextoNT(zv, x);
    }
    img->Escreve(Q(texto), img->posX, img->posY);
    img->posX = 0;
    img->posY += QFontMetrics(img->font()).height();
  } else if (prop == u".CLS") {
    img->LimpaTudo();
  } else if (prop == u".MOUSEICON") {
    Texto nome = TextoT(zv, Arg(v, 0));
    bool achou = false;
    QImage f = CarregaFiguraArquivo(zv, nome, achou);
    if (achou) img->setCursor(QCursor(QPixmap::fromImage(f)));
  } else if (prop == u".AUTOSIZE") {
    if (Logico(zv, Arg(v, 0)) == 1 && !img->figura.isNull()) img->resize(img->figura.size());
  } else if (prop == u".RESIZE") {
    if (!img->figura.isNull())
      img->figura = img->figura.scaled(s.PxColuna(num(1)), s.PxLinha(num(0)), Qt::IgnoreAspectRatio,
                                       Qt::SmoothTransformation);
    img->update();
  } else if (prop == u".SAVEPICTURE") {
    Salva(zv, img, v);
  } else if (prop == u".BACKCOLOR") {
    img->fundo = CorDe(num(0));
    img->update();
  } else if (prop == u".FORECOLOR") {
    img->corFrente = CorDe(num(0));
  } else if (prop == u".USE") {
    s.imagemEmUso = img;
    s.usoDeImagem = true;
  } else if (prop == u".ORDER") {
    Texto o = Maiusculas(TextoT(zv, Arg(v, 0)));
    if (o == u"FRONT") img->raise();
    else if (o == u"BACK") img->lower();
  } else if (prop == u".PARENT") {
    PoeNaImagem(s, img, TextoT(zv, Arg(v, 0)));
  } else if (prop == u".HWND") {
    return Valor::DeInt32(int32_t(img->winId()));
  } else if (prop == u".HDC") {
    return Valor::DeInt32(0);
  } else {
    // Visible, the font: as every control has them.
    s.MembroComum(TipoControle::Imagem, img, prop, primeiro, Arg(v, 0));
  }
  return Valor();
}

Valor CmdImage(Interpretador& zv, const Texto& argumentos) {
  FormasDeControle f;
  f.cria = [&zv](SistemaJanelas& s, const std::vector<Texto>& a) { return CriaImagem(zv, s, a); };
  f.membro = [&zv](SistemaJanelas& s, int slot, const std::vector<Texto>& a) { return Membro(zv, s, slot, a); };
  f.semControle = [&zv](const Texto& nome) { zv.ErroExecucao(msg::Formata(msg::ImagemInexistente, nome)); };
  // An image in use that goes ends the use.
  f.aoRemover = [](SistemaJanelas& s, int slot) {
    if (s.imagemEmUso == Tabela(s).instancias[size_t(slot)]) s.usoDeImagem = false;
  };
  return ComandoDeControle(zv, argumentos, TipoControle::Imagem, f);
}

}  // namespace

// A control moved into an Image by `.Parent`; false when no image has the name.
bool PoeNaImagem(SistemaJanelas& s, QWidget* w, const Texto& nome) {
  int slot = Tabela(s).Acha(Maiusculas(nome));
  QWidget* img = slot >= 0 ? Tabela(s).instancias[size_t(slot)].data() : nullptr;
  if (!img || img == w) return false;
  // Its place keeps its numbers, now inside the image.
  QPoint p = w->pos();
  w->setParent(img);
  w->move(p);
  w->show();
  return true;
}

void RegistraImagem(TabelaComandos& t) { t.Define(u"Image", CmdImage); }

}  // namespace zv
