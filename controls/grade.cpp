#include "controls/grade.h"

#include <QKeyEvent>
#include <QLinearGradient>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <numeric>

#include "controls/teclas.h"

namespace zv {

// ---- The data -------------------------------------------------------------------

void ModeloGrade::Reinicia() {
  colunas_.clear();
  Limpa();
  colunaOrdem_ = -1;
  proximaAscendente_ = ultimaAscendente_ = true;
}

bool ModeloGrade::Titulo(const ColunaGrade& c) {
  if (TotalColunas() >= kMaxColunas) return false;
  // Columns come before the data; one added later widens every row, even
  // rows finished while there was no column at all (and so no storage).
  auto antes = static_cast<size_t>(TotalColunas());
  colunas_.push_back(c);
  if (linhas_ > 0 || !textos_.empty()) {
    auto n = static_cast<size_t>(TotalColunas());
    std::vector<QString> t(static_cast<size_t>(linhas_ + 1) * n);
    std::vector<AtributosCelula> a(t.size());
    for (size_t l = 0; l <= static_cast<size_t>(linhas_); ++l)
      for (size_t k = 0; k < antes && l * antes + k < textos_.size(); ++k) {
        t[l * n + k] = std::move(textos_[l * antes + k]);
        a[l * n + k] = atributos_[l * antes + k];
      }
    textos_ = std::move(t);
    atributos_ = std::move(a);
  }
  return true;
}

void ModeloGrade::Cresce() {
  size_t precisa = static_cast<size_t>((linhas_ + 1) * TotalColunas());
  // vector's doubling makes a row's growth amortised constant, where the
  // original reallocated every array by one row each time.
  if (textos_.size() < precisa) {
    textos_.resize(precisa);
    atributos_.resize(precisa);
  }
}

bool ModeloGrade::Add(const QString& texto, const AtributosCelula& a, bool comAtributos) {
  if (preenche_ >= TotalColunas()) return false;
  Cresce();
  int al = colunas_[static_cast<size_t>(preenche_)].alinhamento;
  size_t k = static_cast<size_t>(linhas_ * TotalColunas() + preenche_);
  textos_[k] = al == 0 ? texto + QLatin1Char(' ') : al == 1 ? QLatin1Char(' ') + texto : texto;
  if (comAtributos && !semAtributos_) atributos_[k] = a;
  ++preenche_;
  return true;
}

void ModeloGrade::BoxNew() {
  Cresce();
  ++linhas_;
  preenche_ = 0;
  semAtributos_ = false;
  Cresce();
}

void ModeloGrade::BoxNew2() {
  BoxNew();
  semAtributos_ = true;
}

void ModeloGrade::Limpa() {
  textos_.clear();
  atributos_.clear();
  textos_.shrink_to_fit();
  atributos_.shrink_to_fit();
  linhas_ = preenche_ = 0;
  semAtributos_ = false;
}

QString ModeloGrade::Texto(int linha, int coluna) const {
  if (!Existe(linha, coluna)) return {};
  return textos_[static_cast<size_t>(linha * TotalColunas() + coluna)];
}

AtributosCelula ModeloGrade::Atributos(int linha, int coluna) const {
  if (!Existe(linha, coluna)) return {};
  return atributos_[static_cast<size_t>(linha * TotalColunas() + coluna)];
}

void ModeloGrade::GravaVetor(int linha, int coluna, const QString& texto, const AtributosCelula& a) {
  if (!Existe(linha, coluna)) return;
  size_t k = static_cast<size_t>(linha * TotalColunas() + coluna);
  textos_[k] = texto;
  atributos_[k] = a;
}

void ModeloGrade::GravaAtributos(int linha, int coluna, const AtributosCelula& a) {
  if (Existe(linha, coluna)) atributos_[static_cast<size_t>(linha * TotalColunas() + coluna)] = a;
}

bool ModeloGrade::RemoveLinha(int linha) {
  if (linha < 0 || linha >= linhas_) return false;
  auto n = static_cast<ptrdiff_t>(TotalColunas());
  auto de = static_cast<ptrdiff_t>(linha) * n;
  textos_.erase(textos_.begin() + de, textos_.begin() + de + n);
  atributos_.erase(atributos_.begin() + de, atributos_.begin() + de + n);
  --linhas_;
  return true;
}

bool ModeloGrade::CliqueCabecalho(int c) {
  if (c != colunaOrdem_) proximaAscendente_ = true;
  colunaOrdem_ = c;
  ultimaAscendente_ = proximaAscendente_;
  proximaAscendente_ = !proximaAscendente_;
  return ultimaAscendente_;
}

double ModeloGrade::NumeroDaChave(const QString& chave) {
  QString s = chave;
  s.remove(QLatin1Char('.'));
  qsizetype v = s.indexOf(QLatin1Char(','));
  if (v >= 0) s[v] = QLatin1Char('.');
  s = s.trimmed();
  // The longest start that reads as a number: sign, digits, one point,
  // digits, an exponent.
  qsizetype i = 0, n = s.size();
  if (i < n && (s[i] == u'-' || s[i] == u'+')) ++i;
  qsizetype digitos = i;
  while (i < n && s[i].isDigit() && s[i].unicode() < 128) ++i;
  if (i < n && s[i] == u'.') {
    ++i;
    while (i < n && s[i].isDigit() && s[i].unicode() < 128) ++i;
  }
  if (i == digitos || (i == digitos + 1 && s[digitos] == u'.')) return 0;
  qsizetype fim = i;
  if (i < n && (s[i] == u'e' || s[i] == u'E')) {
    qsizetype j = i + 1;
    if (j < n && (s[j] == u'-' || s[j] == u'+')) ++j;
    qsizetype k = j;
    while (j < n && s[j].isDigit() && s[j].unicode() < 128) ++j;
    if (j > k) fim = j;
  }
  bool ok = false;
  double d = s.left(fim).toDouble(&ok);
  return ok ? d : 0;
}

// The original inserts each key into a sorted list by binary search with a
// block move of the row numbers behind it (O(n²) moves); a key equal to
// ones already placed goes behind them. A stable sort gives that same
// order in O(n log n).
void ModeloGrade::Ordena(int coluna, bool ascendente) {
  if (coluna < 0 || coluna >= TotalColunas()) return;
  size_t n = static_cast<size_t>(linhas_), cols = static_cast<size_t>(TotalColunas());
  auto c = static_cast<size_t>(coluna);
  std::vector<uint32_t> ordem(n);
  std::iota(ordem.begin(), ordem.end(), 0u);
  if (colunas_[c].tipo == 1) {
    std::vector<double> chaves(n);
    for (size_t l = 0; l < n; ++l) chaves[l] = NumeroDaChave(textos_[l * cols + c]);
    std::stable_sort(ordem.begin(), ordem.end(), [&](uint32_t a, uint32_t b) { return chaves[a] < chaves[b]; });
  } else {
    // By character code, case-sensitive: QString compares UTF-16 units.
    std::stable_sort(ordem.begin(), ordem.end(), [&](uint32_t a, uint32_t b) {
      return QStringView(textos_[a * cols + c]).compare(QStringView(textos_[b * cols + c])) < 0;
    });
  }
  if (!ascendente) std::reverse(ordem.begin(), ordem.end());
  std::vector<QString> t(n * cols);
  std::vector<AtributosCelula> at(n * cols);
  for (size_t l = 0; l < n; ++l)
    for (size_t k = 0; k < cols; ++k) {
      t[l * cols + k] = std::move(textos_[ordem[l] * cols + k]);
      at[l * cols + k] = atributos_[ordem[l] * cols + k];
    }
  textos_ = std::move(t);
  atributos_ = std::move(at);
  preenche_ = 0;
  if (n > 0 || !textos_.empty()) Cresce();
}

uint16_t ModeloGrade::IndiceFonte(const QString& nome) {
  for (size_t i = 0; i < fontes_.size(); ++i)
    if (fontes_[i] == nome) return static_cast<uint16_t>(i);
  if (fontes_.size() >= UINT16_MAX) return 0;
  fontes_.push_back(nome);
  return static_cast<uint16_t>(fontes_.size() - 1);
}

size_t ModeloGrade::BytesEstrutura() const {
  return textos_.capacity() * sizeof(QString) + atributos_.capacity() * sizeof(AtributosCelula) +
         colunas_.capacity() * sizeof(ColunaGrade);
}

// ---- The control ------------------------------------------------------------------

namespace {

// Twips to pixels at the original's 15 twips a pixel.
constexpr int Px(int twips) { return (twips + 7) / 15; }
constexpr int kLarguraColuna = 8;   // a width unit, 120 twips
constexpr int kEntre = 1;           // 15 twips between columns and rows
constexpr int kMaxLinhas = 200;     // rows of cells laid out at most
constexpr int kFolgaPainel = Px(600);
constexpr int kZonaBorda = Px(100);  // the edge a drag takes, and the heading's margin
constexpr int kEspessuraBarra = 17;
constexpr int kAlturaCabecalho = 21;
// The header skins: rest, hover, pressed; the arrow's ground takes the
// lower colour of each.
enum Pele : uint8_t { Azul, Laranja, Laranja2 };
QColor CorSeta(uint8_t p) {
  return p == Laranja ? QColor(251, 228, 164) : p == Laranja2 ? QColor(238, 165, 57) : QColor(165, 196, 238);
}
QColor CorAlta(uint8_t p) {
  return p == Laranja ? QColor(255, 246, 222) : p == Laranja2 ? QColor(250, 205, 130) : QColor(228, 238, 252);
}

QString UmaLinha(QString s) {
  // A one-line cell shows line breaks as blanks.
  for (QChar& c : s)
    if (c == u'\r' || c == u'\n') c = u' ';
  return s;
}

}  // namespace

// A width of 0 or below shows one unit; a huge one is held to what a
// widget can be.
int LarguraPx(int largura) { return std::clamp(largura, 1, 4000) * kLarguraColuna; }

NovoBox::NovoBox(QWidget* pai) : QWidget(pai) {
  setFocusPolicy(Qt::StrongFocus);
  setMouseTracking(true);
  barraV_ = new BarraVertical(this);
  barraH_ = new BarraHorizontal(this);
  barraV_->setFocusPolicy(Qt::NoFocus);
  barraH_->setFocusPolicy(Qt::NoFocus);
  barraV_->setMaximum(0);
  barraH_->hide();
  barraV_->aoMudar = [this] { RolouVertical(); };
  barraH_->aoMudar = [this] {
    deslocamentoH_ = barraH_->value() * Px(300);
    update();
  };
  QFont f(fonte_);
  f.setPointSizeF(tamanho_);
  setFont(f);
}

NovoBox::~NovoBox() = default;

void NovoBox::Config(const QString& fonte, double tamanho, QRgb fundo, QRgb frente, QRgb fundoSel, QRgb frenteSel,
                     QRgb painel, bool negrito) {
  if (ativo_) Desativa();
  modelo.Reinicia();
  fonte_ = fonte;
  tamanho_ = tamanho > 0 ? tamanho : 10;
  fundo_ = fundo, frente_ = frente, fundoSel_ = fundoSel, frenteSel_ = frenteSel, painel_ = painel;
  negrito_ = negrito;
  QFont f(fonte_);
  f.setStyleHint(QFont::SansSerif);
  f.setPointSizeF(tamanho_);
  f.setBold(negrito_);
  setFont(f);
}

bool NovoBox::Titulo(const QString& texto, int largura, int alinhamento, int tipo) {
  return modelo.Titulo({texto, largura, alinhamento, tipo});
}

AtributosCelula NovoBox::Resolve(int64_t fundo, int64_t frente, const QString& fonte, double tamanho, bool negrito) {
  AtributosCelula a;
  // Colours come as the language gives them, red in the low byte.
  auto cor = [](int64_t v, QRgb padrao) {
    if (v == -1) return padrao;
    auto u = static_cast<uint32_t>(v);
    return qRgb(static_cast<int>(u & 0xff), static_cast<int>((u >> 8) & 0xff), static_cast<int>((u >> 16) & 0xff));
  };
  a.fundo = cor(fundo, fundo_);
  a.frente = cor(frente, frente_);
  a.fonte = modelo.IndiceFonte(fonte.isEmpty() ? fonte_ : fonte);
  double t = tamanho > 0 ? tamanho : tamanho_;  // 0, below or not a number: the default
  a.tamanho = static_cast<int8_t>(std::clamp(t, 1.0, 127.0));
  a.negrito = negrito;
  return a;
}

QFont NovoBox::FonteDe(const AtributosCelula& a) const {
  QFont f(modelo.NomeFonte(a.fonte));
  // A machine without the font (Tahoma, most often) gets a sans serif one.
  f.setStyleHint(QFont::SansSerif);
  f.setPointSize(a.tamanho);
  f.setBold(a.negrito);
  return f;
}

// ---- Layout -----------------------------------------------------------------------

void NovoBox::Ativa(bool comTitulos) {
  if (ativo_) Desativa();
  comTitulos_ = comTitulos;
  ativo_ = true;
  // The cells are laid out for the columns there are now; a column added
  // later is in the data but has no cells.
  nc_ = TotalColunas();
  int cols = nc_;
  ColocaColunas();
  QFontMetrics fm(FonteDe(Padrao()));
  alturaLinha_ = fm.height() + 6;
  alturaCabecalho_ = comTitulos ? std::max(kAlturaCabecalho, QFontMetrics(font()).height() + 6) : 0;
  pele_.assign(static_cast<size_t>(cols), Azul);
  int topo = comTitulos ? alturaCabecalho_ + kEntre : 0;
  int alturaPai = height();
  // Rows of cells until one's bottom passes the panel's height less 600
  // twips; that row is the last.
  int r = 0, fundo = topo;
  while (cols > 0) {
    fundo = topo + r * (alturaLinha_ + kEntre) + alturaLinha_;
    ++r;
    if (r >= kMaxLinhas || fundo > alturaPai - kFolgaPainel) break;
  }
  totalLinhas_ = r;
  celulas_.assign(static_cast<size_t>(r * cols), Celula{});
  alturaPainel_ = fundo + Px(20);
  primeira_ = cursor_ = 0;
  destacada_ = false;
  ColocaBarras();
  ClearBox();
}

void NovoBox::Desativa() {
  FechaEditor(false);
  modelo.Limpa();
  celulas_.clear();
  totalLinhas_ = 0;
  nc_ = 0;
  esquerdas_.assign(1, 0);
  ativo_ = false;
  setaColuna_ = -1;
  update();
}

void NovoBox::ColocaColunas() {
  int cols = nc_;
  esquerdas_.assign(static_cast<size_t>(cols) + 1, 0);
  int x = 0;
  for (int c = 0; c < cols; ++c) {
    esquerdas_[static_cast<size_t>(c)] = x;
    x += LarguraPx(modelo.Coluna(c).largura) + kEntre;
  }
  esquerdas_[static_cast<size_t>(cols)] = x;
  larguraPainel_ = x;
}

void NovoBox::ColocaBarras() {
  int visivel = width() - kEspessuraBarra;
  bool h = barHor && larguraPainel_ > visivel;
  barraV_->setGeometry(width() - kEspessuraBarra, 0, kEspessuraBarra, alturaPainel_);
  barraV_->setPageStep(std::max(1, totalLinhas_));
  barraV_->show();
  if (h) {
    barraH_->setGeometry(0, alturaPainel_, visivel, kEspessuraBarra);
    // Steps of 300 twips up to where the last column meets the right edge
    // (the original's maximum, the panel's whole width, scrolls past it).
    barraH_->setMaximum((larguraPainel_ - visivel + Px(300) - 1) / Px(300));
    barraH_->show();
  } else {
    barraH_->hide();
    deslocamentoH_ = 0;
  }
  resize(width(), alturaPainel_ + (h ? kEspessuraBarra : 0));
}

void NovoBox::resizeEvent(QResizeEvent*) {
  barraV_->setGeometry(width() - kEspessuraBarra, 0, kEspessuraBarra, ativo_ ? alturaPainel_ : height());
  if (barraH_->isVisible()) barraH_->setGeometry(0, alturaPainel_, width() - kEspessuraBarra, kEspessuraBarra);
}

QRect NovoBox::RetCelula(int lv, int c) const {
  if (c < 0 || c >= nc_ || lv < 0 || lv >= totalLinhas_) return {};
  int topo = (comTitulos_ ? alturaCabecalho_ + kEntre : 0) + lv * (alturaLinha_ + kEntre);
  int x = esquerdas_[static_cast<size_t>(c)] - deslocamentoH_;
  int w = esquerdas_[static_cast<size_t>(c) + 1] - esquerdas_[static_cast<size_t>(c)] - kEntre;
  return {x, topo, w, alturaLinha_};
}

QRect NovoBox::RetCabecalho(int c) const {
  if (!comTitulos_ || c < 0 || c >= nc_) return {};
  int x = esquerdas_[static_cast<size_t>(c)] - deslocamentoH_;
  return {x, 0, esquerdas_[static_cast<size_t>(c) + 1] - esquerdas_[static_cast<size_t>(c)] - kEntre,
          alturaCabecalho_};
}

// ---- Cells -------------------------------------------------------------------------

// The text as the cell shows it: whole when it fits (measured with a
// factor of 1.05 on a control under 6000 twips), else trimmed and cut from
// its end until it fits with "...", behind a blank. The data keeps the
// whole text.
void NovoBox::GravaCelula(int lv, int c, const QString& texto, const AtributosCelula& a) {
  Celula& cel = celulas_[static_cast<size_t>(lv * nc_ + c)];
  cel.fonte = FonteDe(a);
  cel.fundo = a.fundo;
  cel.frente = a.frente;
  cel.vazia = false;
  QFontMetrics fm(cel.fonte);
  double fator = width() < Px(6000) ? 1.05 : 1.0;
  int largura = RetCelula(lv, c).width();
  QString t = UmaLinha(texto);
  auto cabe = [&](const QString& s) { return fm.horizontalAdvance(s) * fator <= largura; };
  // A text far wider than any cell is cut before it is measured: no cell
  // shows more characters than it has pixels.
  if (t.size() <= largura && cabe(t)) {
    cel.mostrado = t;
    return;
  }
  t = t.trimmed();
  const QString pontos = QStringLiteral("...");
  // The longest start that fits with "...": found by halving, which gives
  // what removing one character at a time gives, since a longer start is
  // never narrower.
  qsizetype baixo = 0, alto = std::min<qsizetype>(t.size() - 1, largura);
  while (baixo < alto) {
    qsizetype meio = (baixo + alto + 1) / 2;
    if (cabe(t.left(meio) + pontos))
      baixo = meio;
    else
      alto = meio - 1;
  }
  cel.mostrado = QLatin1Char(' ') + t.left(std::max<qsizetype>(baixo, 0)) + pontos;
}

QString NovoBox::LeCelula(int lv, int c) const {
  if (lv < 0 || lv >= totalLinhas_ || c < 0 || c >= nc_) return {};
  return celulas_[static_cast<size_t>(lv * nc_ + c)].mostrado;
}

void NovoBox::ClearBox() {
  for (Celula& cel : celulas_) {
    cel.mostrado.clear();
    cel.fundo = fundo_;
    cel.frente = frente_;
    cel.vazia = true;
  }
  update();
}

void NovoBox::ListaVetStr(int primeira) {
  primeira_ = std::max(0, primeira);
  destacada_ = false;
  int cols = nc_;
  AtributosCelula padrao = Padrao();
  for (int r = 0; r < totalLinhas_; ++r) {
    int l = primeira_ + r;
    for (int c = 0; c < cols; ++c) {
      if (l < modelo.Linhas())
        GravaCelula(r, c, modelo.Texto(l, c), atributosAtivos ? modelo.Atributos(l, c) : padrao);
      else {
        Celula& cel = celulas_[static_cast<size_t>(r * cols + c)];
        cel.mostrado.clear();
        cel.fundo = fundo_;
        cel.frente = frente_;
        cel.vazia = true;
      }
    }
  }
  update();
}

void NovoBox::Destaca(int lv) {
  if (lv < 0 || lv >= totalLinhas_) return;
  for (int c = 0; c < nc_; ++c) {
    Celula& cel = celulas_[static_cast<size_t>(lv * nc_ + c)];
    cel.fundo = fundoSel_;
    cel.frente = frenteSel_;
  }
  destacada_ = true;
  update();
}

void NovoBox::RolouVertical() {
  if (rolando_) return;
  bool tinha = destacada_;
  ClearBox();
  ListaVetStr(barraV_->value());
  // The selection is a visible row: it stays where it stood.
  if (tinha) Destaca(cursor_);
}

// ---- Filling -----------------------------------------------------------------------

void NovoBox::Add(const QString& texto, int64_t fundo, int64_t frente, const QString& fonte, double tamanho,
                  bool negrito) {
  int coluna = modelo.ColunaDePreenchimento();
  bool ok = atributosAtivos ? modelo.Add(texto, Resolve(fundo, frente, fonte, tamanho, negrito))
                            : modelo.Add(texto, {}, false);
  if (!ok && avisa) avisa(kColunaAlem, texto, coluna);
}

void NovoBox::AddEnd() {
  barraV_->setMaximum(std::max(0, modelo.Linhas() - totalLinhas_));
  rolando_ = true;
  barraV_->setValue(0);
  rolando_ = false;
  ListaVetStr(0);
}

void NovoBox::Refresh() {
  barraV_->setMaximum(std::max(0, modelo.Linhas() - totalLinhas_));
  bool tinha = destacada_;
  ListaVetStr(primeira_);
  if (tinha) Destaca(cursor_);
}

void NovoBox::Clear() {
  FechaEditor(false);
  ClearBox();
  modelo.Limpa();
  rolando_ = true;
  barraV_->setMaximum(0);
  barraV_->setValue(0);
  rolando_ = false;
  primeira_ = cursor_ = 0;
  destacada_ = false;
}

void NovoBox::RemoveLinha(int linha) {
  if (!modelo.RemoveLinha(linha)) return;
  FechaEditor(false);
  bool tinha = destacada_;
  barraV_->setMaximum(std::max(0, modelo.Linhas() - totalLinhas_));
  ClearBox();
  ListaVetStr(primeira_);
  if (tinha) Destaca(cursor_);
}

void NovoBox::GravaVetor(int linha, int coluna, const QString& texto, int64_t fundo, int64_t frente,
                         const QString& fonte, double tamanho, bool negrito) {
  modelo.GravaVetor(linha, coluna, texto, Resolve(fundo, frente, fonte, tamanho, negrito));
}

void NovoBox::LinhaAtributo(int linha, int primeiraColuna, int quantas, int64_t fundo, int64_t frente,
                            const QString& fonte, double tamanho, bool negrito) {
  if (linha < 0 || linha >= modelo.Linhas() || primeiraColuna < 0) return;
  int ultima = quantas <= 0 ? TotalColunas() : std::min(TotalColunas(), primeiraColuna + quantas);
  AtributosCelula a = Resolve(fundo, frente, fonte, tamanho, negrito);
  for (int c = primeiraColuna; c < ultima; ++c) modelo.GravaAtributos(linha, c, a);
  if (ativo_ && linha >= primeira_ && linha < primeira_ + totalLinhas_) {
    bool tinha = destacada_;
    ListaVetStr(primeira_);
    if (tinha) Destaca(cursor_);
  }
}

quintptr NovoBox::RetHWnd(int indiceCelula) {
  if (indiceCelula < 0 || indiceCelula >= static_cast<int>(celulas_.size())) return 0;
  return static_cast<quintptr>(winId());
}

void NovoBox::DefineCorPadrao(bool fundo, QRgb cor) {
  (fundo ? fundo_ : frente_) = cor;
  Refresh();
}

// ---- Selection ---------------------------------------------------------------------

void NovoBox::PosicionaCursor(int n) {
  cursor_ = n >= totalLinhas_ ? n - totalLinhas_ : n;
  ListaVetStr(primeira_);
  Destaca(cursor_);
}

void NovoBox::Selected(int n) {
  if (n < 0 || n >= modelo.Linhas()) {
    if (avisa) avisa(kSelecaoInvalida, {}, n);
    return;
  }
  if (modelo.Linhas() < totalLinhas_) return PosicionaCursor(n);
  int m = modelo.Linhas() - totalLinhas_;
  rolando_ = true;
  barraV_->setValue(n < m ? n : m);
  rolando_ = false;
  primeira_ = n < m ? n : m;
  PosicionaCursor(n < m ? 0 : n - m);
}

int NovoBox::MostraLinha(int linha) {
  if (linha >= primeira_ && linha < primeira_ + totalLinhas_) return linha - primeira_;
  if (linha < 0 || linha >= modelo.Linhas()) return -1;
  int m = std::max(0, modelo.Linhas() - totalLinhas_);
  int p = std::min(linha, m);
  rolando_ = true;
  barraV_->setValue(p);
  rolando_ = false;
  bool tinha = destacada_;
  ListaVetStr(p);
  if (tinha) Destaca(cursor_);
  return linha - p;
}

// ---- Painting ----------------------------------------------------------------------

void NovoBox::paintEvent(QPaintEvent*) {
  QPainter p(this);
  int visivel = width() - kEspessuraBarra;
  p.fillRect(QRect(0, 0, visivel, ativo_ ? alturaPainel_ : height()), QColor(painel_));
  if (!ativo_) return;
  p.setClipRect(QRect(0, 0, visivel, alturaPainel_));
  int cols = nc_;
  // Headings.
  for (int c = 0; c < cols && comTitulos_; ++c) {
    QRect r = RetCabecalho(c);
    if (r.right() < 0 || r.left() > visivel) continue;
    uint8_t pele = pele_[static_cast<size_t>(c)];
    QLinearGradient g(r.topLeft(), r.bottomLeft());
    g.setColorAt(0, CorAlta(pele));
    g.setColorAt(1, CorSeta(pele));
    p.fillRect(r, g);
    p.setPen(QColor(120, 150, 200));
    p.drawLine(r.bottomLeft(), r.bottomRight());
    p.setPen(QColor(255, 255, 255, 160));
    p.drawLine(r.topLeft(), r.bottomLeft());
    p.setPen(QColor(20, 40, 80));
    p.setFont(font());
    const ColunaGrade& col = modelo.Coluna(c);
    int al = col.alinhamento;
    QRect texto = al == 0 ? r.adjusted(Px(50), 0, 0, 0) : al == 1 ? r.adjusted(0, 0, -Px(100), 0) : r;
    // The arrow's place is kept clear of the heading.
    if (c == setaColuna_) texto.setRight(std::min(texto.right(), r.right() - Px(200) - 2));
    p.drawText(texto, Qt::AlignVCenter | (al == 1 ? Qt::AlignRight : al == 2 ? Qt::AlignHCenter : Qt::AlignLeft),
               col.titulo);
    if (c == setaColuna_) {
      // The sort arrow, 200 twips inside the right edge, on its ground.
      // Drawn straight on the heading, whose skin is its ground: it follows
      // the hover and the press as the arrow's own ground did.
      QRectF a(r.right() - Px(200), r.top() + 2, Px(200) - 2, r.height() - 4);
      QPointF m = a.center();
      double s = 3.5;
      QPainterPath t;
      if (setaCima_)
        t.moveTo(m.x(), m.y() - s), t.lineTo(m.x() - s, m.y() + s * 0.7), t.lineTo(m.x() + s, m.y() + s * 0.7);
      else
        t.moveTo(m.x(), m.y() + s), t.lineTo(m.x() - s, m.y() - s * 0.7), t.lineTo(m.x() + s, m.y() - s * 0.7);
      t.closeSubpath();
      p.setRenderHint(QPainter::Antialiasing);
      p.setPen(Qt::NoPen);
      p.setBrush(QColor(40, 70, 130));
      p.drawPath(t);
      p.setRenderHint(QPainter::Antialiasing, false);
    }
  }
  // Cells.
  for (int r = 0; r < totalLinhas_; ++r)
    for (int c = 0; c < cols; ++c) {
      QRect q = RetCelula(r, c);
      if (q.right() < 0 || q.left() > visivel) continue;
      const Celula& cel = celulas_[static_cast<size_t>(r * cols + c)];
      p.fillRect(q, QColor(cel.fundo));
      if (cel.mostrado.isEmpty()) continue;
      p.setPen(QColor(cel.frente));
      p.setFont(cel.fonte);
      int al = modelo.Coluna(c).alinhamento;
      p.drawText(q.adjusted(2, 0, -2, 0),
                 Qt::AlignVCenter | Qt::TextSingleLine |
                     (al == 1 ? Qt::AlignRight : al == 2 ? Qt::AlignHCenter : Qt::AlignLeft),
                 cel.mostrado);
    }
}

// ---- The mouse -------------------------------------------------------------------

int NovoBox::ColunaEm(int x, bool& naBorda) const {
  naBorda = false;
  int xp = x + deslocamentoH_;
  for (int c = 0; c < nc_; ++c) {
    int dir = esquerdas_[static_cast<size_t>(c) + 1] - kEntre;
    if (xp >= esquerdas_[static_cast<size_t>(c)] && xp < dir + kEntre) {
      naBorda = xp >= dir - kZonaBorda;
      return c;
    }
  }
  return -1;
}

bool NovoBox::CelulaEm(QPoint p, int& lv, int& c) const {
  int topo = comTitulos_ ? alturaCabecalho_ + kEntre : 0;
  if (!ativo_ || p.y() < topo || p.x() >= width() - kEspessuraBarra) return false;
  lv = (p.y() - topo) / (alturaLinha_ + kEntre);
  bool borda;
  c = ColunaEm(p.x(), borda);
  return lv < totalLinhas_ && c >= 0;
}

void NovoBox::mousePressEvent(QMouseEvent* e) {
  QPoint p = e->position().toPoint();
  if (e->button() != Qt::LeftButton || !ativo_) return;
  setFocus(Qt::MouseFocusReason);
  if (comTitulos_ && p.y() < alturaCabecalho_) {
    bool borda;
    int c = ColunaEm(p.x(), borda);
    if (c < 0) return;
    if (borda) {
      arrastaColuna_ = c;
      arrastaDesvio_ = esquerdas_[static_cast<size_t>(c) + 1] - kEntre - (p.x() + deslocamentoH_);
    } else {
      pressionado_ = c;
      pele_[static_cast<size_t>(c)] = Laranja2;
      update();
    }
    return;
  }
  int lv, c;
  if (!CelulaEm(p, lv, c)) return;
  if (Editando() && (lv != editaLinha_ || c != editaColuna_)) FechaEditor(false);
  LeBoxCel(lv, c);
  LeVetCel(lv, c);
  PosicionaCursor(lv);
  Relata(EventoControle::Clique);
}

void NovoBox::mouseMoveEvent(QMouseEvent* e) {
  QPoint p = e->position().toPoint();
  if (!ativo_) return;
  if (arrastaColuna_ >= 0) {
    // The heading follows the pointer; the columns behind it move with it.
    int esq = esquerdas_[static_cast<size_t>(arrastaColuna_)];
    int nova = std::max(kLarguraColuna, p.x() + deslocamentoH_ + arrastaDesvio_ - esq);
    int delta = nova - (esquerdas_[static_cast<size_t>(arrastaColuna_) + 1] - kEntre - esq);
    for (size_t k = static_cast<size_t>(arrastaColuna_) + 1; k < esquerdas_.size(); ++k) esquerdas_[k] += delta;
    larguraPainel_ = esquerdas_.back();
    update();
    return;
  }
  bool borda = false;
  int c = -1;
  if (comTitulos_ && p.y() < alturaCabecalho_) c = ColunaEm(p.x(), borda);
  setCursor(c >= 0 && borda ? Qt::SizeHorCursor : Qt::ArrowCursor);
  bool mudou = false;
  for (size_t k = 0; k < pele_.size(); ++k) {
    uint8_t nova = static_cast<int>(k) == c ? (pressionado_ == c ? Laranja2 : Laranja) : Azul;
    if (pele_[k] != nova) pele_[k] = nova, mudou = true;
  }
  if (mudou) update();
}

void NovoBox::mouseReleaseEvent(QMouseEvent* e) {
  QPoint p = e->position().toPoint();
  if (arrastaColuna_ >= 0) {
    arrastaColuna_ = -1;
    // The cells follow the new widths, the texts fitted again.
    bool tinha = destacada_;
    ColocaBarras();
    ListaVetStr(primeira_);
    if (tinha) Destaca(cursor_);
    return;
  }
  if (pressionado_ >= 0) {
    int c = pressionado_;
    pressionado_ = -1;
    pele_[static_cast<size_t>(c)] = Azul;
    QRect r = RetCabecalho(c);
    // Within the heading's width less 100 twips: a sort.
    if (r.contains(p) && p.x() < r.right() - kZonaBorda) ClicaCabecalho(c);
    update();
  }
}

void NovoBox::mouseDoubleClickEvent(QMouseEvent* e) {
  int lv, c;
  if (e->button() != Qt::LeftButton || !CelulaEm(e->position().toPoint(), lv, c)) {
    if (comTitulos_ && e->position().y() < alturaCabecalho_) mousePressEvent(e);
    return;
  }
  Relata(EventoControle::DuploClique);
  if (alteraCelula && primeira_ + lv < modelo.Linhas()) AbreEditor(lv, c);
}

void NovoBox::focusInEvent(QFocusEvent* e) {
  QWidget::focusInEvent(e);
  Relata(EventoControle::GanhouFoco);
}

void NovoBox::focusOutEvent(QFocusEvent* e) {
  QWidget::focusOutEvent(e);
  if (!Editando()) Relata(EventoControle::PerdeuFoco);
}

void NovoBox::leaveEvent(QEvent*) {
  std::fill(pele_.begin(), pele_.end(), Azul);
  update();
}

void NovoBox::ClicaCabecalho(int c) {
  if (c < 0 || c >= TotalColunas()) return;
  FechaEditor(false);
  bool asc = modelo.CliqueCabecalho(c);
  setaColuna_ = c;
  setaCima_ = asc;
  modelo.Ordena(c, asc);
  AddEnd();
}

// ---- Editing -----------------------------------------------------------------------

void NovoBox::AbreEditor(int lv, int c) {
  if (!editor_) {
    editor_ = new QLineEdit(this);
    editor_->setFrame(false);
    editor_->installEventFilter(this);
  }
  editaLinha_ = lv, editaColuna_ = c;
  // Unlocked, the cell takes the default colours.
  QPalette pal = editor_->palette();
  pal.setColor(QPalette::Base, QColor(fundo_));
  pal.setColor(QPalette::Text, QColor(frente_));
  editor_->setPalette(pal);
  AtributosCelula padrao = Padrao();
  editor_->setFont(FonteDe(padrao));
  int al = modelo.Coluna(c).alinhamento;
  editor_->setAlignment(al == 1 ? Qt::AlignRight : al == 2 ? Qt::AlignHCenter : Qt::AlignLeft);
  editor_->setText(UmaLinha(modelo.LeVetor(primeira_ + lv, c)));
  editor_->setGeometry(RetCelula(lv, c));
  editor_->show();
  editor_->setFocus(Qt::OtherFocusReason);
  editor_->selectAll();
}

void NovoBox::FechaEditor(bool grava) {
  if (!Editando()) return;
  editor_->hide();
  int lv = editaLinha_, c = editaColuna_;
  editaLinha_ = editaColuna_ = -1;
  setFocus(Qt::OtherFocusReason);
  if (!grava) return;
  // Locked again: the data takes the text with the default attributes, and
  // the row shows selected.
  LeVetCel(lv, c);
  modelo.GravaVetor(linVetRef_, c, editor_->text(), Padrao());
  PosicionaCursor(lv);
  Relata(EventoControle::Mudou);
}

bool NovoBox::EditaCelula(int lv, int c, const QString& texto) {
  if (!Editando() || lv != editaLinha_ || c != editaColuna_) return false;
  editor_->setText(texto);
  return true;
}

bool NovoBox::eventFilter(QObject* o, QEvent* e) {
  if (o == editor_ && e->type() == QEvent::KeyPress) {
    auto* k = static_cast<QKeyEvent*>(e);
    int codigo = CodigoTecla(k);
    if (codigo == 13) {
      FechaEditor(true);
      Relata(EventoControle::TeclaDesce, 13, EstadoShift(k));
      return true;
    }
    if (k->key() == Qt::Key_Escape) {
      FechaEditor(false);
      return true;
    }
  }
  return QWidget::eventFilter(o, e);
}

// ---- Keys ------------------------------------------------------------------------

void NovoBox::Tecla(int codigo) {
  int linhas = modelo.Linhas();
  int v = barraV_->value();
  int fim = std::max(0, linhas - totalLinhas_);
  switch (codigo) {
    case 40:
      if (cursor_ >= totalLinhas_ - 1) {
        if (v < fim) barraV_->setValue(v + 1);
      } else if (primeira_ + cursor_ + 1 < linhas) {
        ++cursor_;
      }
      break;
    case 38:
      if (cursor_ <= 0) {
        if (v > 0) barraV_->setValue(v - 1);
      } else {
        --cursor_;
      }
      break;
    case 34:
      barraV_->setValue(v + totalLinhas_ < fim ? v + totalLinhas_ : fim);
      break;
    case 33:
      barraV_->setValue(v - totalLinhas_ > 0 ? v - totalLinhas_ : 0);
      break;
    default:
      return;
  }
  PosicionaCursor(cursor_);
}

void NovoBox::keyPressEvent(QKeyEvent* e) {
  int codigo = CodigoTecla(e);
  if (!ativo_) return QWidget::keyPressEvent(e);
  if (codigo == 33 || codigo == 34 || codigo == 38 || codigo == 40) {
    Tecla(codigo);
    LeBoxCel(cursor_, colBoxRef_);
    LeVetCel(cursor_, colVetRef_);
  } else if (codigo == 13) {
    LeBoxCel(cursor_, colBoxRef_);
    LeVetCel(cursor_, colVetRef_);
  }
  Relata(EventoControle::TeclaDesce, codigo, EstadoShift(e));
}

void NovoBox::keyReleaseEvent(QKeyEvent* e) { Relata(EventoControle::TeclaSobe, CodigoTecla(e), EstadoShift(e)); }

void NovoBox::Relata(EventoControle t, int tecla, int shift) {
  if (relata) relata({t, tecla, shift});
}

}  // namespace zv
