// Sound and Video: one control under two keywords, a media player that
// plays a file on command. Every 100 ms while it is on, its two variables
// take the length and the position (in milliseconds), and a looping file
// starts again from its beginning when it reaches its end.
#include <QAudioOutput>
#include <QElapsedTimer>
#include <QHBoxLayout>
#include <QAudioDevice>
#include <QMediaDevices>
#include <QMediaPlayer>
#include <QStyle>
#include <QTimer>
#include <QToolButton>
#include <QUrl>
#include <QVBoxLayout>
#include <QVideoWidget>

#include "library/arquivos.h"
#include "library/texto_qt.h"
#include "runtime/argumentos.h"
#include "runtime/janelas.h"
#include "runtime/mensagens.h"

namespace zv {

namespace {

constexpr int kTiqueMs = 100;

// The player: a picture area for files with video, over a bar of play,
// pause and stop buttons, as the platform's media control had them.
class Midia : public QWidget {
 public:
  explicit Midia(QWidget* pai) : QWidget(pai) {
    auto* v = new QVBoxLayout(this);
    v->setContentsMargins(0, 0, 0, 0);
    v->setSpacing(0);
    video_ = new QVideoWidget(this);
    video_->hide();
    v->addWidget(video_, 1);
    auto* barra = new QHBoxLayout;
    barra->setSpacing(0);
    auto botao = [&](QStyle::StandardPixmap icone, const char* nome, auto acao) {
      auto* b = new QToolButton(this);
      b->setIcon(style()->standardIcon(icone));
      b->setObjectName(QString::fromLatin1(nome));
      connect(b, &QToolButton::clicked, this, acao);
      barra->addWidget(b);
    };
    botao(QStyle::SP_MediaPlay, "Play", [this] { Continue(); });
    botao(QStyle::SP_MediaPause, "Pause", [this] { Pause(); });
    botao(QStyle::SP_MediaStop, "Stop", [this] { Stop(); });
    barra->addStretch();
    v->addLayout(barra);
    // A machine without a sound device plays silently: the player keeps
    // its clock (and the program its variables) with no output to feed.
    silencioso_ = QMediaDevices::audioOutputs().isEmpty();
    if (!silencioso_) player.setAudioOutput(&saida_);
    player.setVideoOutput(video_);
    connect(&player, &QMediaPlayer::hasVideoChanged, this, [this](bool sim) { video_->setVisible(sim); });
    timer.setInterval(kTiqueMs);
  }

  QMediaPlayer player;
  QTimer timer;  // TimerSound
  QString arquivo;  // Tag
  bool repete = false;

  void Play() {
    player.play();
    base_ = 0;
    relogio_.start();
  }
  void Pause() {
    player.pause();
    if (relogio_.isValid()) base_ = Posicao();
    relogio_.invalidate();
  }
  void Continue() {
    player.play();
    if (!relogio_.isValid()) relogio_.start();
  }
  void Stop() {
    Pause();
    player.stop();
  }
  // Where the file is, in milliseconds. Without a sound device the player
  // has no clock of its own for a sound: the time gone by stands for it.
  qint64 Posicao() const {
    if (!silencioso_) return player.position();
    qint64 p = base_ + (relogio_.isValid() ? relogio_.elapsed() : 0);
    qint64 d = player.duration();
    return d > 0 ? std::min(p, d) : p;
  }

 private:
  QVideoWidget* video_;
  QAudioOutput saida_;
  bool silencioso_ = false;
  QElapsedTimer relogio_;
  qint64 base_ = 0;
};

TabelaControles& Tabela(SistemaJanelas& s) { return s.controles[size_t(TipoControle::Video)]; }

// "Close", then the file from Tag opened and played.
void Toca(Interpretador& zv, Midia* m) {
  m->Stop();
  Texto caminho = ResolveArquivo(zv, T(m->arquivo));
  m->player.setSource(caminho.empty() ? QUrl() : QUrl::fromLocalFile(Q(caminho)));
  m->Play();
}

// The tick: the variables, and a looping file started again at its end.
void Tique(Interpretador& zv, Midia* m, const Texto& nome) {
  const qint64 duracao = m->player.duration(), posicao = m->Posicao();
  zv.GravaVariavel(nome + u".Time", Valor::DeDouble(double(duracao)), false);
  zv.GravaVariavel(nome + u".Position", Valor::DeDouble(double(posicao)), false);
  if (m->repete && duracao > 0 && posicao >= duracao) {
    m->Stop();
    m->player.setPosition(0);
    m->Play();
  }
}

Valor Cria(Interpretador& zv, SistemaJanelas& s, const std::vector<Texto>& a) {
  Texto nome = TextoT(zv, Arg(a, 0));
  // Qt's FFmpeg backend plays the common formats by itself; the GStreamer
  // one needs plugins a machine may lack, and fails hard without them. A
  // choice made in the environment stands.
  if (qEnvironmentVariableIsEmpty("QT_MEDIA_BACKEND")) qputenv("QT_MEDIA_BACKEND", "ffmpeg");
  auto* m = new Midia(s.Atual()->Cliente());
  s.PoeNaTabela(TipoControle::Video, nome, m);
  m->arquivo = Q(TextoT(zv, Arg(a, 1)));
  zv.CriaVariavel(nome + u".Time", u"Decimal");
  zv.CriaVariavel(nome + u".Position", u"Decimal");
  QObject::connect(&m->timer, &QTimer::timeout, m, [&zv, m, nome] { Tique(zv, m, nome); });
  m->resize(s.PxColuna(16), s.PxLinha(2));
  m->setProperty("zvTabIndex", static_cast<int>(s.proximoTabIndex++));
  m->show();
  return Valor();
}

void Membro(Interpretador& zv, SistemaJanelas& s, Midia* m, const std::vector<Texto>& a) {
  Texto primeiro = Apara(Arg(a, 0));
  Texto prop = PalavraDoMembro(primeiro);
  Texto valor = Arg(a, 2);
  if (s.MembroGrade(m, prop, valor)) return;
  if (prop == u".FILENAME") {
    m->arquivo = Q(TextoT(zv, valor));
  } else if (prop == u".PLAY") {
    Toca(zv, m);
    m->timer.start();
    // Until the first tick says how long the file is.
    TabelaControles& t = Tabela(s);
    for (size_t k = 0; k < t.nomes.size(); ++k)
      if (t.instancias[k] == m) zv.GravaVariavel(t.nomes[k] + u".Time", Valor::DeDouble(999999999), false);
  } else if (prop == u".STOP") {
    m->Stop();
    m->timer.stop();
  } else if (prop == u".CONTINUE") {
    m->Continue();
    m->timer.start();
  } else if (prop == u".PAUSE") {
    m->Pause();
  } else if (prop == u".END") {
    m->Stop();
    m->player.setSource(QUrl());
    m->timer.stop();
  } else if (prop == u".LOOP") {
    m->repete = Logico(zv, valor) == 1;
  } else {
    // Enabled, Visible, TabIndex: as every control has them.
    s.MembroComum(TipoControle::Video, m, prop, primeiro, valor);
  }
}

Valor Som(Interpretador& zv, const Texto& argumentos) {
  FormasDeControle f;
  f.cria = [&zv](SistemaJanelas& s, const std::vector<Texto>& a) { return Cria(zv, s, a); };
  f.membro = [&zv](SistemaJanelas& s, int slot, const std::vector<Texto>& a) {
    if (auto* m = static_cast<Midia*>(Tabela(s).instancias[size_t(slot)].data())) Membro(zv, s, m, a);
    return Valor();
  };
  // The player stops, and its two variables go with it.
  f.aoRemover = [&zv](SistemaJanelas& s, int slot) {
    if (auto* m = static_cast<Midia*>(Tabela(s).instancias[size_t(slot)].data())) {
      m->timer.stop();
      m->Stop();
    }
    const Texto& nome = Tabela(s).nomes[size_t(slot)];
    zv.variaveis.Remove(nome + u".Time");
    zv.variaveis.Remove(nome + u".Position");
  };
  return ComandoDeControle(zv, argumentos, TipoControle::Video, f);
}

// Video and Sound are one command: a failure under either says Sound.
Valor CmdSom(Interpretador& zv, const Texto& argumentos) {
  try {
    return Som(zv, argumentos);
  } catch (const FalhaHost& f) {
    zv.ErroExecucao(msg::FalhaDeComando(u"Sound", f.descricao));
    return Valor();
  }
}

}  // namespace

// The window dump's fields of a player: its file, and whether it plays.
void DescreveSom(QWidget* w, std::string& s, const std::function<std::string(const char*, const QString&)>& campo) {
  auto* m = static_cast<Midia*>(w);
  s += campo("file", m->arquivo);
  const char* estado = m->player.playbackState() == QMediaPlayer::PlayingState  ? "playing"
                       : m->player.playbackState() == QMediaPlayer::PausedState ? "paused"
                                                                                 : "stopped";
  s += campo("state", QString::fromLatin1(estado));
}

void RegistraSom(TabelaComandos& t) {
  t.Define(u"Sound", CmdSom);
  t.Define(u"Video", CmdSom);
}

}  // namespace zv
