#include "environment/apresenta.h"

#include <QFont>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLinearGradient>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <sstream>
#include <vector>

#include "environment/mensagens.h"

namespace zv {

namespace fs = std::filesystem;
namespace m = msg::ambiente;

namespace {

constexpr int kLargura = 440;
constexpr int kAltura = 250;
constexpr int kCabecalho = 32;  // dwSize, iType, nCount, nRgnSize, rcBound
constexpr int kTiquesAteMostrar = 4;

void PoeInt(std::string& s, int32_t v) {
  auto u = static_cast<uint32_t>(v);
  for (int i = 0; i < 4; ++i) s.push_back(static_cast<char>((u >> (8 * i)) & 0xff));
}

int32_t TiraInt(const std::string& s, size_t pos) {
  uint32_t u = 0;
  for (int i = 0; i < 4; ++i) u |= static_cast<uint32_t>(static_cast<unsigned char>(s[pos + i])) << (8 * i);
  return static_cast<int32_t>(u);
}

}  // namespace

QImage ImagemApresenta() {
  QImage img(kLargura, kAltura, QImage::Format_RGB32);
  img.fill(kCorRecortada);
  QPainter p(&img);
  // The outline without smoothing: a blended edge would leave a grey fringe
  // that is neither cut away nor part of the picture.
  p.setRenderHint(QPainter::Antialiasing, false);
  QPainterPath forma;
  forma.addRoundedRect(QRectF(0, 0, kLargura, kAltura), 26, 26);
  QLinearGradient fundo(0, 0, kLargura, kAltura);
  fundo.setColorAt(0, QColor(22, 52, 96));
  fundo.setColorAt(1, QColor(18, 120, 128));
  p.fillPath(forma, fundo);
  p.setRenderHint(QPainter::Antialiasing, true);
  p.setRenderHint(QPainter::TextAntialiasing, true);
  // The mark: a bolt in a ring.
  const QPointF centro(92, 125);
  p.setPen(QPen(QColor(255, 196, 60), 6));
  p.setBrush(Qt::NoBrush);
  p.drawEllipse(centro, 52, 52);
  QPolygonF raio;
  raio << QPointF(100, 78) << QPointF(70, 132) << QPointF(92, 132) << QPointF(82, 172) << QPointF(116, 114)
       << QPointF(94, 114) << QPointF(106, 78);
  p.setPen(Qt::NoPen);
  p.setBrush(QColor(255, 212, 90));
  p.drawPolygon(raio);
  p.setPen(Qt::white);
  QFont titulo(QStringLiteral("Sans Serif"), 34, QFont::Bold);
  p.setFont(titulo);
  p.drawText(QRect(168, 70, 260, 60), Qt::AlignLeft | Qt::AlignVCenter, QString::fromUtf8(m::kApresentaTitulo));
  QFont sub(QStringLiteral("Sans Serif"), 12);
  p.setFont(sub);
  p.setPen(QColor(200, 225, 235));
  p.drawText(QRect(170, 130, 260, 30), Qt::AlignLeft | Qt::AlignVCenter, QString::fromUtf8(m::kApresentaSubtitulo));
  return img;
}

QRegion RegiaoDaImagem(const QImage& imagem, QRgb recortada) {
  // Rows of runs that are kept, in y-x band order: the same region as the
  // whole rectangle less each run of the cut colour.
  std::vector<QRect> corridas;
  const QImage img = imagem.convertToFormat(QImage::Format_RGB32);
  const QRgb chave = recortada | 0xff000000;
  for (int y = 0; y < img.height(); ++y) {
    auto* linha = reinterpret_cast<const QRgb*>(img.constScanLine(y));
    int x = 0;
    while (x < img.width()) {
      while (x < img.width() && (linha[x] | 0xff000000) == chave) ++x;
      int inicio = x;
      while (x < img.width() && (linha[x] | 0xff000000) != chave) ++x;
      if (x > inicio) corridas.emplace_back(inicio, y, x - inicio, 1);
    }
  }
  QRegion r;
  if (!corridas.empty()) r.setRects(corridas.data(), static_cast<int>(corridas.size()));
  return r;
}

std::string BytesDaRegiao(const QRegion& regiao) {
  std::string s;
  const auto n = static_cast<int32_t>(regiao.rectCount());
  const QRect b = regiao.boundingRect();
  PoeInt(s, kCabecalho);
  PoeInt(s, 1);  // rectangles
  PoeInt(s, n);
  PoeInt(s, n * 16);
  for (int v : {b.left(), b.top(), b.left() + b.width(), b.top() + b.height()}) PoeInt(s, v);
  for (const QRect& r : regiao)
    for (int v : {r.left(), r.top(), r.left() + r.width(), r.top() + r.height()}) PoeInt(s, v);
  return s;
}

std::optional<QRegion> RegiaoDosBytes(const std::string& bytes) {
  if (bytes.size() < kCabecalho) return std::nullopt;
  const int32_t n = TiraInt(bytes, 8);
  if (TiraInt(bytes, 0) != kCabecalho || TiraInt(bytes, 4) != 1 || n < 0 || n > (1 << 24) ||
      TiraInt(bytes, 12) != n * 16 || bytes.size() != kCabecalho + static_cast<size_t>(n) * 16)
    return std::nullopt;
  const QRect limite(QPoint(TiraInt(bytes, 16), TiraInt(bytes, 20)),
                     QPoint(TiraInt(bytes, 24) - 1, TiraInt(bytes, 28) - 1));
  std::vector<QRect> rs;
  rs.reserve(static_cast<size_t>(n));
  for (int32_t i = 0; i < n; ++i) {
    size_t p = kCabecalho + static_cast<size_t>(i) * 16;
    int l = TiraInt(bytes, p), t = TiraInt(bytes, p + 4), r = TiraInt(bytes, p + 8), b = TiraInt(bytes, p + 12);
    if (l >= r || t >= b) return std::nullopt;
    QRect q(l, t, r - l, b - t);
    if (!limite.contains(q)) return std::nullopt;
    // Band order, no overlap: what a region's own data always has.
    if (!rs.empty()) {
      const QRect& a = rs.back();
      bool mesmaFaixa = a.top() == q.top() && a.bottom() == q.bottom();
      if (mesmaFaixa ? q.left() <= a.right() : q.top() <= a.bottom()) return std::nullopt;
    }
    rs.push_back(q);
  }
  QRegion reg;
  if (!rs.empty()) reg.setRects(rs.data(), n);
  return reg;
}

std::string GravaRegiao(const fs::path& arquivo, const QRegion& regiao) {
  if (regiao.isEmpty()) return m::kRegiaoSemTamanho;
  const std::string bytes = BytesDaRegiao(regiao);
  std::ofstream out(arquivo, std::ios::binary | std::ios::trunc);
  if (!out || !out.write(bytes.data(), static_cast<std::streamsize>(bytes.size())) || !out.flush())
    return m::kRegiaoSemDados;
  return {};
}

Apresenta::Apresenta(const fs::path& pasta, std::function<void()> pronta, std::function<void(const QString&)> aviso)
    : QWidget(nullptr, Qt::SplashScreen | Qt::FramelessWindowHint), imagem_(ImagemApresenta()),
      pronta_(std::move(pronta)) {
  setObjectName(QStringLiteral("Apresenta"));
  setFixedSize(imagem_.size());
  const fs::path arquivo = pasta / "zv.shp";
  std::optional<QRegion> regiao;
  std::ifstream in(arquivo, std::ios::binary);
  if (in) {
    std::stringstream s;
    s << in.rdbuf();
    regiao = RegiaoDosBytes(s.str());
    if (!regiao && aviso)
      aviso(QString::fromUtf8(m::kRegiaoDanificada).arg(QString::fromStdString(arquivo.string())));
    doCache_ = regiao.has_value();
  }
  if (!regiao) {
    regiao = RegiaoDaImagem(imagem_);
    std::string falha = GravaRegiao(arquivo, *regiao);
    if (!falha.empty() && aviso) aviso(QString::fromStdString(falha));
  }
  setMask(*regiao);
  if (QScreen* tela = QGuiApplication::primaryScreen())
    move(tela->availableGeometry().center() - rect().center());
  relogio_.setInterval(150);
  QObject::connect(&relogio_, &QTimer::timeout, this, [this] { Tique(); });
  relogio_.start();
}

void Apresenta::Tique() {
  if (++tiques_ >= kTiquesAteMostrar) Termina();
}

void Apresenta::Termina() {
  relogio_.stop();
  if (!pronta_) return;
  // Once only: a click after the last tick finds nothing to do.
  auto f = std::move(pronta_);
  pronta_ = nullptr;
  // The main window shows before the splash goes, so that the application
  // never stands without a window.
  f();
  hide();
}

void Apresenta::paintEvent(QPaintEvent*) {
  QPainter p(this);
  p.drawImage(0, 0, imagem_);
}

void Apresenta::mousePressEvent(QMouseEvent*) { Termina(); }
void Apresenta::keyPressEvent(QKeyEvent*) { Termina(); }

}  // namespace zv
