// RecordSound and WebCam: sound from the microphone into a wave file, and
// camera frames into a box on the window and, if asked, into JPEG files.
// A run without a screen touches no device: its microphone records silence
// and its camera shows a test picture, so that programs behave the same
// (and check the same) on any machine.
#include <QAudioDevice>
#include <QAudioSource>
#include <QCamera>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QMediaCaptureSession>
#include <QMediaDevices>
#include <QPainter>
#include <QTimer>
#include <QVideoFrame>
#include <QVideoSink>
#include <QtEndian>
#include <memory>

#include "library/arquivos.h"
#include "library/texto_qt.h"
#include "runtime/argumentos.h"
#include "runtime/janelas.h"
#include "runtime/mensagens.h"

namespace zv {

namespace {

// The recording's fixed format: CD quality.
constexpr int kAmostrasPorSegundo = 44100;
constexpr int kCanais = 2;
constexpr int kBitsPorAmostra = 16;
constexpr int kAlinhamento = kCanais * kBitsPorAmostra / 8;
constexpr int kBytesPorSegundo = kAlinhamento * kAmostrasPorSegundo;

struct Gravador {
  std::unique_ptr<QAudioSource> fonte;  // null when recording silence
  QIODevice* entrada = nullptr;
  QByteArray dados;
  QElapsedTimer silencio;  // the silent microphone's clock
  bool aberto = false, gravando = false;

  void Colhe() {
    if (entrada) dados += entrada->readAll();
    if (!fonte && silencio.isValid()) {
      qint64 quadros = silencio.elapsed() * kAmostrasPorSegundo / 1000;
      qint64 falta = quadros * kAlinhamento - dados.size();
      if (falta > 0) dados.append(QByteArray(falta, '\0'));
    }
  }
  void Para() {
    if (!gravando) return;
    Colhe();
    if (fonte) fonte->stop();
    silencio.invalidate();
    entrada = nullptr;
    gravando = false;
  }
  void Fecha() {
    Para();
    fonte.reset();
    dados.clear();
    aberto = false;
  }
};

// A wave file: the RIFF header of 16-bit stereo PCM at 44,100 Hz, then the
// samples.
QByteArray Wave(const QByteArray& dados) {
  QByteArray w;
  auto u32 = [&](quint32 v) {
    char b[4];
    qToLittleEndian(v, b);
    w.append(b, 4);
  };
  auto u16 = [&](quint16 v) {
    char b[2];
    qToLittleEndian(v, b);
    w.append(b, 2);
  };
  w.append("RIFF");
  u32(quint32(36 + dados.size()));
  w.append("WAVEfmt ");
  u32(16);
  u16(1);  // PCM
  u16(kCanais);
  u32(kAmostrasPorSegundo);
  u32(kBytesPorSegundo);
  u16(kAlinhamento);
  u16(kBitsPorAmostra);
  w.append("data");
  u32(quint32(dados.size()));
  w.append(dados);
  return w;
}

Valor CmdRecordSound(Interpretador& zv, const Texto& argumentos) {
  std::vector<Texto> a = zv.SeparaArgumentos(argumentos, 3);
  SistemaJanelas& s = Janelas(zv);
  Gravador& g = zv.Estado<Gravador>();
  Texto palavra = Maiusculas(Apara(Arg(a, 0)));
  if (palavra == u"START") {
    g.Fecha();  // "close all"
    QAudioFormat f;
    f.setSampleRate(kAmostrasPorSegundo);
    f.setChannelCount(kCanais);
    f.setSampleFormat(QAudioFormat::Int16);
    if (s.SemTela()) {
      g.silencio.start();
    } else {
      QAudioDevice d = QMediaDevices::defaultAudioInput();
      if (d.isNull()) {
        Avisa(zv, msg::GravacaoSemAbertura);
        return Valor();
      }
      if (!d.isFormatSupported(f)) {
        Avisa(zv, msg::GravacaoFormato);
        return Valor();
      }
      g.fonte = std::make_unique<QAudioSource>(d, f);
      g.entrada = g.fonte->start();
      if (!g.entrada) {
        g.fonte.reset();
        Avisa(zv, msg::GravacaoSemAbertura);
        return Valor();
      }
      QObject::connect(g.entrada, &QIODevice::readyRead, [&g] { g.Colhe(); });
    }
    g.aberto = g.gravando = true;
  } else if (palavra == u"STOP") {
    g.Para();
  } else if (palavra == u"SAVE") {
    // Saving a device that isn't open is refused by it, and nobody reads
    // the refusal: nothing is said, nothing is written.
    if (!g.aberto) return Valor();
    g.Colhe();
    Texto nome = TextoT(zv, Arg(a, 1));
    QFile f(Q(CaminhoNoPrograma(nome, zv.dirPrograma)));
    if (!f.open(QIODevice::WriteOnly) || f.write(Wave(g.dados)) < 0) throw FalhaHost(T(f.errorString()));
    g.Fecha();
  }
  return Valor();
}

// ---- The camera ---------------------------------------------------------------------

struct Camera {
  QPointer<QLabel> saida;  // PicOutPut
  int divisor = 3;
  QString base;
  int qualidade = 25;
  int ticks = 0, quadros = 0;
  QTimer timer;  // tmrMain
  std::unique_ptr<QCamera> camera;
  std::unique_ptr<QMediaCaptureSession> sessao;
  std::unique_ptr<QVideoSink> pia;
  QImage ultimo;  // the last frame the camera gave
  bool timerLigado = false;  // the tick is connected (once a run)
};

// The test picture of a run without a screen: colour bars and the tick.
QImage QuadroDeTeste(int tick) {
  QImage f(320, 240, QImage::Format_RGB32);
  const QColor barras[] = {Qt::white, Qt::yellow, Qt::cyan, Qt::green, Qt::magenta, Qt::red, Qt::blue, Qt::black};
  QPainter p(&f);
  for (int i = 0; i < 8; ++i) p.fillRect(QRect(i * 40, 0, 40, 240), barras[i]);
  p.fillRect(QRect(110, 95, 100, 50), Qt::black);
  p.setPen(Qt::white);
  p.drawText(QRect(110, 95, 100, 50), Qt::AlignCenter, QString::number(tick));
  return f;
}

void Tique(SistemaJanelas& s, Camera& c) {
  // Failures here are ignored: a frame that can't be taken or stored is
  // skipped.
  if (c.divisor != 0 && c.ticks % c.divisor == 0) {
    QImage f = s.SemTela() ? QuadroDeTeste(c.ticks) : c.ultimo;
    if (!f.isNull()) {
      if (c.saida) c.saida->setPixmap(QPixmap::fromImage(f.scaled(c.saida->size(), Qt::KeepAspectRatio)));
      if (!c.base.isEmpty()) {
        QString nome = c.base + QStringLiteral("%1.jpg").arg(c.quadros, 5, 10, QLatin1Char('0'));
        if (f.save(nome, "JPG", c.qualidade)) ++c.quadros;
      }
    }
  }
  ++c.ticks;
}

Valor CmdWebCam(Interpretador& zv, const Texto& argumentos) {
  std::vector<Texto> a = zv.SeparaArgumentos(argumentos, 9);
  SistemaJanelas& s = Janelas(zv);
  // The frames' box and the timer live on the window.
  s.Principal();
  Camera& c = zv.Estado<Camera>();
  Texto palavra = Maiusculas(Apara(Arg(a, 0)));
  if (palavra == u"CONFIG") {
    JanelaExecucao* j = s.Atual();
    if (!c.saida || c.saida->parentWidget() != j->Cliente()) {
      delete c.saida.data();
      c.saida = new QLabel(j->Cliente());
      c.saida->setObjectName(QStringLiteral("PicOutPut"));
      c.saida->setStyleSheet(QStringLiteral("background: black"));
      c.saida->setAlignment(Qt::AlignCenter);
    }
    c.saida->setGeometry(s.PxColuna(Num(zv, Arg(a, 2))), s.PxLinha(Num(zv, Arg(a, 1))), s.PxColuna(Num(zv, Arg(a, 4))),
                         s.PxLinha(Num(zv, Arg(a, 3))));
    c.saida->show();
    c.divisor = Arg(a, 5).empty() ? 3 : NumInt(zv, Arg(a, 5));
    // A divisor of 0 would take no frame at all: one a tick is meant.
    if (c.divisor <= 0) c.divisor = 1;
    Texto base = TextoT(zv, Arg(a, 6));
    c.base = base.empty() ? QString() : Q(CaminhoNoPrograma(base, zv.dirPrograma));
    int barra = int(c.base.lastIndexOf(u'/'));
    if (barra > 2) QDir().mkpath(c.base.left(barra));
    c.qualidade = Arg(a, 7).empty() ? 25 : NumInt(zv, Arg(a, 7));
    c.ticks = c.quadros = 0;
  } else if (palavra == u"START") {
    if (!s.SemTela() && !c.camera) {
      QCameraDevice d = QMediaDevices::defaultVideoInput();
      if (d.isNull()) throw FalhaHost(msg::SemCamera);
      c.camera = std::make_unique<QCamera>(d);
      c.sessao = std::make_unique<QMediaCaptureSession>();
      c.pia = std::make_unique<QVideoSink>();
      c.sessao->setCamera(c.camera.get());
      c.sessao->setVideoSink(c.pia.get());
      QObject::connect(c.pia.get(), &QVideoSink::videoFrameChanged, [&c](const QVideoFrame& f) { c.ultimo = f.toImage(); });
    }
    if (c.camera) c.camera->start();
    zv.Bombeia();
    if (!c.timerLigado) QObject::connect(&c.timer, &QTimer::timeout, [&s, &c] { Tique(s, c); });
    c.timerLigado = true;
    c.timer.start(100);
  } else if (palavra == u"STOP") {
    c.timer.stop();
    zv.Bombeia();
    if (c.camera) c.camera->stop();
  }
  return Valor();
}

}  // namespace

void RegistraCaptura(TabelaComandos& t) {
  t.Define(u"RecordSound", CmdRecordSound);
  t.Define(u"WebCam", CmdWebCam);
}

}  // namespace zv
