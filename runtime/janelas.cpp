#include "runtime/janelas.h"

#include <QApplication>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QScreen>
#include <QThread>
#include <cmath>

#include "controls/caixa_texto.h"
#include "controls/teclas.h"
#include "runtime/aplicacao.h"
#include "runtime/janela_host.h"
#include "runtime/mensagens.h"

namespace zv {

namespace {

// Key preview (Window Enter = True): the window sees a key before the
// control that has the focus.
class FiltroTeclas : public QObject {
 public:
  explicit FiltroTeclas(SistemaJanelas& s) : s_(s) {}
  bool eventFilter(QObject* alvo, QEvent* e) override {
    if (e->type() != QEvent::KeyPress || !alvo->isWidgetType()) return false;
    auto* j = dynamic_cast<JanelaExecucao*>(static_cast<QWidget*>(alvo)->window());
    // The key reaches the filter once for the widget it was sent to.
    if (!j || !j->previaDeTeclas || static_cast<QWidget*>(alvo) != QApplication::focusWidget()) {
      if (!(j && j->previaDeTeclas && alvo == j)) return false;
    }
    return s_.TeclaPrevia(j, static_cast<QKeyEvent*>(e));
  }

 private:
  SistemaJanelas& s_;
};

}  // namespace

SistemaJanelas& Janelas(Interpretador& zv) {
  SistemaJanelas& s = zv.Estado<SistemaJanelas>();
  if (!s.zv) {
    s.zv = &zv;
    s.host = dynamic_cast<HostJanela*>(&zv.host());
  }
  return s;
}

QColor CorDe(double valor) {
  auto n = static_cast<uint32_t>(static_cast<int64_t>(valor));
  return QColor(static_cast<int>(n & 0xFF), static_cast<int>((n >> 8) & 0xFF), static_cast<int>((n >> 16) & 0xFF));
}

int32_t NumeroDaCor(const QColor& c) { return c.red() | (c.green() << 8) | (c.blue() << 16); }

SistemaJanelas::~SistemaJanelas() {
  if (filtro_) {
    if (QCoreApplication::instance()) QCoreApplication::instance()->removeEventFilter(filtro_.get());
  }
  // Controls die with their windows; the windows go last.
  LimpaDescartados();
  vivas_.clear();
}

JanelaExecucao* SistemaJanelas::NovaJanela(ClasseJanela c) {
  auto j = std::make_unique<JanelaExecucao>(c, this);
  JanelaExecucao* p = j.get();
  vivas_.push_back(std::move(j));
  // TxtAux: out of sight beyond the right edge, where it can still take the
  // focus and so the keys of Event and KeyTest.
  auto* aux = new CaixaTexto(p);
  aux->setObjectName(QStringLiteral("TxtAux"));
  aux->setGeometry(p->width() + 500 / 15, 0, 20, 20);
  aux->relata = [this](const DadosEvento& e) {
    if (e.tipo == EventoControle::TeclaDesce) TeclaDesce(e.tecla, e.shift);
    if (e.tipo == EventoControle::TeclaSobe) TeclaSobe(e.tecla);
  };
  aux->setFocusPolicy(Qt::StrongFocus);
  p->auxiliar = aux;
  // A menu title or option clicked: its caption, as a button's name.
  p->aoMenu = [this](const QString& legenda) {
    if (!zv) return;
    zv->ultimoBotao = legenda.toStdU16String();
    zv->GravaVariavel(u"TestButton", Valor::DeTexto(legenda.toStdU16String()), false);
  };
  return p;
}

JanelaExecucao* SistemaJanelas::Principal() {
  if (principalFeita_) return janelas_[0] ? janelas_[0].data() : vivas_.front().get();
  principalFeita_ = true;
  if (host)
    host->GaranteGui();
  else
    GaranteAplicacao(true);
  if (!filtro_) {
    filtro_ = std::make_unique<FiltroTeclas>(*this);
    QCoreApplication::instance()->installEventFilter(filtro_.get());
  }
  // Steps 1 to 9 of the start of a run: every table empty, the window
  // centred, then named PARENT, captioned, coloured and cleared.
  JanelaExecucao* j = NovaJanela(ClasseJanela::Janela);
  QSize tela = TamanhoTela();
  j->move((tela.width() - j->width()) / 2, (tela.height() - j->height()) / 2);
  j->tag = u"PARENT";
  janelas_[0] = j;
  nomes_[0] = u"PARENT";
  classes_[0] = ClasseJanela::Janela;
  atual_ = j;
  nomeFormAtual = u"PARENT";
  j->setWindowTitle(QString::fromStdU16String(Texto(msg::TituloPrefixo) + zv->nomeArquivoPrograma));
  j->corFrente = QApplication::palette().color(QPalette::ButtonText);
  j->DefineFundo(QApplication::palette().color(QPalette::Button));
  j->Limpa();
  posX = posY = 0;
  // Step 14: shown unless the program's text holds the word anywhere.
  if (!Contem(zv->textoPrograma, u"StartWindowInvisible")) j->show();
  return j;
}

bool SistemaJanelas::SemTela() const { return host && host->SemTela(); }

QSize SistemaJanelas::TamanhoTela() const {
  if (SemTela()) {
    Plataforma p = host->DadosPlataforma();
    return {p.larguraTela, p.alturaTela};
  }
  if (QScreen* s = QGuiApplication::primaryScreen()) return s->geometry().size();
  return {1024, 768};
}

JanelaExecucao* SistemaJanelas::Atual() {
  JanelaExecucao* p = Principal();
  if (!atual_) {
    atual_ = p;
    nomeFormAtual = u"PARENT";
  }
  return atual_;
}

int SistemaJanelas::AchaJanela(TextoV nome) const {
  Texto m = Maiusculas(Apara(nome));
  for (int i = 0; i < 20; ++i) {
    const Texto& n = nomes_[static_cast<size_t>(i)];
    if (n.empty()) continue;
    Texto semAspas;
    for (char16_t c : n)
      if (c != u'"') semAspas += c;
    if (Maiusculas(semAspas) == m) return i;
  }
  return -1;
}

JanelaExecucao* SistemaJanelas::JanelaDoSlot(int slot) {
  if (slot == 0) return Principal();
  auto s = static_cast<size_t>(slot);
  if (!janelas_[s] && !nomes_[s].empty()) {
    Principal();
    JanelaExecucao* j = NovaJanela(classes_[s]);
    j->tag = Maiusculas(nomes_[s]);
    janelas_[s] = j;
  }
  return janelas_[s];
}

int SistemaJanelas::SlotDe(const JanelaExecucao* j) const {
  for (int i = 0; i < kSlotsJanelas; ++i)
    if (janelas_[static_cast<size_t>(i)] == j) return i;
  return -1;
}

void SistemaJanelas::EscreveGrade() {
  zv->GravaVariavel(u"LinSize", Valor::DeDouble(linSize), false);
  zv->GravaVariavel(u"ColSize", Valor::DeDouble(colSize), false);
  QSize t = TamanhoTela();
  zv->GravaVariavel(u"ScreenHeight", Valor::DeDouble(t.height() / linSize), false);
  zv->GravaVariavel(u"ScreenWidth", Valor::DeDouble(t.width() / colSize), false);
}

void SistemaJanelas::LimpaDescartados() {
  for (QPointer<QWidget>& w : descartados_) delete w.data();
  descartados_.clear();
}

// ---- Closing ------------------------------------------------------------------

void SistemaJanelas::LiberaControle(TipoControle tipo, int slot, bool destroi) {
  TabelaControles& t = controles[static_cast<size_t>(tipo)];
  auto s = static_cast<size_t>(slot);
  if (s >= t.nomes.size() || t.nomes[s].empty()) return;
  if (const char16_t* suf = Info(tipo).espelho) zv->variaveis.Remove(t.nomes[s] + suf);
  t.nomes[s].clear();
  t.donos[s].clear();
  if (QWidget* w = t.instancias[s]) {
    w->hide();
    if (destroi) {
      // Not deleted here: a user's key or click may have led here, and its
      // handler is still on the stack. It goes at the next command.
      t.instancias[s] = nullptr;
      descartados_.emplace_back(w);
    }
  }
}

void SistemaJanelas::FechaControlesDe(const Texto& dono) {
  for (int k = 0; k < kTiposControle; ++k) {
    auto tipo = static_cast<TipoControle>(k);
    TabelaControles& t = controles[static_cast<size_t>(k)];
    for (int s = static_cast<int>(t.nomes.size()) - 1; s >= 0; --s)
      if (!t.nomes[static_cast<size_t>(s)].empty() && t.donos[static_cast<size_t>(s)] == dono)
        LiberaControle(tipo, s, s > 0);
  }
}

void SistemaJanelas::FechandoJanela(JanelaExecucao* j) {
  if (encerrada_) return;
  if (j == janelas_[0]) {
    FechaPrincipal();
    return;
  }
  if (j->fechando) return;
  j->fechando = true;
  FechaControlesDe(j->tag);
  // The window keeps its name and slot; a later command on the name gets a
  // new empty window of the same class there.
  int slot = SlotDe(j);
  if (slot > 0) janelas_[static_cast<size_t>(slot)] = nullptr;
  if (j->tag == janelaEmExecucao) zv->janelaFechada = true;
  j->hide();
}

void SistemaJanelas::FechaPrincipal() {
  // The runner's dumps and screenshots see the windows as the user last
  // saw them, before the tear-down.
  if (host && host->antesDoFim && !encerrada_) {
    auto f = std::move(host->antesDoFim);
    host->antesDoFim = nullptr;
    f();
  }
  if (encerrada_ || !principalFeita_) {
    encerrada_ = true;
    zv->executando = false;
    return;
  }
  encerrada_ = true;
  // 1. The run flag, and every timer of the run window.
  zv->executando = false;
  if (host) {
    for (int id : {int(TimerTique), int(TimerEspelhos), int(TimerMouse)}) host->ParaTimer(id);
    for (int i = 0; i < kStaticas; ++i) host->ParaTimer(kIdTimerJanela + i);
  }
  // 2. Every control, kind by kind in their fixed order, whatever its owner.
  for (int k = 0; k < kTiposControle; ++k) {
    TabelaControles& t = controles[static_cast<size_t>(k)];
    for (int s = static_cast<int>(t.nomes.size()) - 1; s >= 0; --s)
      LiberaControle(static_cast<TipoControle>(k), s, s > 0);
  }
  for (auto& j : vivas_) {
    j->fechando = true;
    j->hide();
  }
  // 3. The notification icon.
  bandeja.reset();
  modoBandeja = false;
}

void SistemaJanelas::Desmonta() { FechaPrincipal(); }

// ---- Events on a window's own surface -------------------------------------------

void SistemaJanelas::JanelaAtivada(JanelaExecucao* j) {
  if (usoDeImagem || j->fechando || encerrada_) return;
  atual_ = j;
  nomeFormAtual = j->tag;
}

void SistemaJanelas::MouseJanela(JanelaExecucao* j, int tipo, int botao, int x, int y) {
  if (encerrada_) return;
  auto escreveXY = [&] {
    if (mouseGeral) return;
    zv->GravaVariavel(u"MouseY", Valor::DeDouble(std::floor(y / linSize + 0.5)), false);
    zv->GravaVariavel(u"MouseX", Valor::DeDouble(std::floor(x / colSize + 0.5)), false);
  };
  switch (tipo) {
    case 0:  // down
      if (botao == 1 && capturando) {
        origemArrasto_ = QPoint(x, y);
        return;
      }
      escreveXY();
      if (botao == 1) eventos.botoesMouse[0] = u'1';
      if (botao == 2) eventos.botoesMouse[1] = u'1';
      break;
    case 1:  // up
      escreveXY();
      if (botao == 1) eventos.botoesMouse[0] = u'0';
      if (botao == 2) eventos.botoesMouse[1] = u'0';
      break;
    case 2:  // move
      if (botao == 1 && capturando) {
        j->move(j->pos() + QPoint(x, y) - origemArrasto_);
        return;
      }
      escreveXY();
      break;
    case 3:  // click
      eventos.ultimoClique = u"CLICK";
      zv->GravaVariavel(u"MouseClick", Valor::DeTexto(u"CLICK"), false);
      QThread::msleep(100);
      break;
    case 4:  // double click
      eventos.ultimoClique = u"DOUBLECLICK";
      zv->GravaVariavel(u"MouseClick", Valor::DeTexto(u"DOUBLECLICK"), false);
      break;
  }
}

void SistemaJanelas::JanelaRedimensionada(JanelaExecucao* j) {
  if (!principalFeita_ || encerrada_) return;
  eventos.ultimoRedimensiona = u"RESIZE " + Maiusculas(nomeFormAtual);
  if (j->auxiliar) j->auxiliar->move(j->width() + 500 / 15, 0);
  if (j->grdAtivo) j->PintaGradiente();
  if (j == janelas_[0] && fixo && j->isMaximized()) j->showNormal();
}

bool SistemaJanelas::TeclaPrevia(JanelaExecucao* j, QKeyEvent* e) {
  int codigo = CodigoTecla(e);
  if (codigo == 19 || codigo == 117) {
    // Pause and F6 end the run.
    if (JanelaExecucao* p = janelas_[0]) p->close();
    return true;
  }
  if (codigo == 13 && !j->fechando) {
    // Enter as Tab.
    if (QWidget* f = QApplication::focusWidget()) {
      QKeyEvent tab(QEvent::KeyPress, Qt::Key_Tab, Qt::NoModifier);
      QCoreApplication::sendEvent(f, &tab);
    }
    return true;
  }
  return false;
}

// ---- Keys ---------------------------------------------------------------------

namespace {

int IndiceNomeada(int codigo) {
  switch (codigo) {
    case 37: return 0;  // L
    case 39: return 1;  // R
    case 38: return 2;  // U
    case 40: return 3;  // D
    case 16: return 4;  // S
    case 17: return 5;  // C
    case 32: return 6;  // #
  }
  return -1;
}

}  // namespace

void SistemaJanelas::TeclaDesce(int codigo, int shift) {
  Texto t = InteiroParaTexto(codigo);
  if (shift == 1) t += u"SHIFT";
  if (shift == 2) t += u"CTRL";
  eventos.ultimaTeclaEvento = t;
  eventos.ultimaTeclaTeste = t;
  int n = IndiceNomeada(codigo);
  if (n >= 0) eventos.nomeadas[static_cast<size_t>(n)] = u'+';
  // Codes above 255 are outside the table and change nothing.
  if (codigo >= 0 && codigo < 256) eventos.codigos[static_cast<size_t>(codigo)] = true;
}

void SistemaJanelas::TeclaSobe(int codigo) {
  int n = IndiceNomeada(codigo);
  if (n >= 0) eventos.nomeadas[static_cast<size_t>(n)] = u'-';
  if (codigo >= 0 && codigo < 256) eventos.codigos[static_cast<size_t>(codigo)] = false;
}

void SistemaJanelas::FocaAuxiliar() {
  JanelaExecucao* j = Atual();
  if (!j->auxiliar) return;
  j->auxiliar->show();
  j->auxiliar->setFocus(Qt::OtherFocusReason);
}

}  // namespace zv
