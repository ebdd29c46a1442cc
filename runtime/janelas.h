// SistemaJanelas: the windows of one run and everything the window model
// keeps for it: the window table, the current window, the grid, the print
// position, the control tables and the event strings. It lives beside the
// interpreter (Interpretador::Estado) and is torn down with the run.
#pragma once

#include <QPointer>
#include <array>
#include <memory>
#include <vector>

#include "core/interpretador.h"
#include "runtime/controles.h"
#include "runtime/janela.h"

class QJsonObject;
class QWidget;

namespace zv {

class HostJanela;

// Slots of the window table: 0 the main window, 1 to 19 for NewWindow Set,
// 20 never handed out.
inline constexpr int kSlotsJanelas = 21;
inline constexpr int kStaticas = 5;
// Ids of the static windows' timers, TimerJanela(0) to (4), beside the
// core's own timer ids.
inline constexpr int kIdTimerJanela = 100;

class SistemaJanelas : public OuvinteJanela {
 public:
  SistemaJanelas() = default;
  ~SistemaJanelas() override;
  SistemaJanelas(const SistemaJanelas&) = delete;
  SistemaJanelas& operator=(const SistemaJanelas&) = delete;

  Interpretador* zv = nullptr;
  HostJanela* host = nullptr;  // null under a host without windows
  // A run without a screen (headless): it touches nothing of the desktop.
  bool SemTela() const;

  // ---- Windows -----------------------------------------------------------
  // The main window, made (with the GUI) on first use: steps 1 to 9 of the
  // start of a run, shown unless the program starts invisible.
  JanelaExecucao* Principal();
  bool TemPrincipal() const { return principalFeita_; }
  bool PrincipalViva() const { return principalFeita_ && !encerrada_; }
  bool Encerrada() const { return encerrada_; }
  // The window that commands address (FormAtual), made if need be.
  JanelaExecucao* Atual();
  Texto nomeFormAtual = u"PARENT";  // NomeFormAtual
  // Slot of a name among 0 to 19, -1 when none (NewWindow, Font).
  int AchaJanela(TextoV nome) const;
  // The window in a slot; a slot whose window the user closed gets a new
  // one of the same class.
  JanelaExecucao* JanelaDoSlot(int slot);
  const Texto& NomeJanela(int slot) const { return nomes_[static_cast<size_t>(slot)]; }

  // ---- The grid and the print position -------------------------------------
  double linSize = 14, colSize = 8;  // LinSize, ColSize (pixels a line, a column)
  int16_t posX = 0, posY = 0;        // CurrentX, CurrentY on the current window
  void EscreveGrade();               // the four program variables
  // Lines to pixels, as every command places things.
  int PxLinha(double l) const { return EmPixels(l * linSize); }
  int PxColuna(double c) const { return EmPixels(c * colSize); }
  // A place or size beyond what the original's twips could hold (2^31 / 15
  // pixels) overflows, as it did there.
  static int EmPixels(double v) {
    if (!(v > -143165577.0 && v < 143165577.0)) throw FalhaHost(falha::Estouro);
    return static_cast<int>(v);
  }
  // The screen in pixels: the desktop's, or a fixed 1024 by 768 headless.
  QSize TamanhoTela() const;
  int SlotDe(const JanelaExecucao* j) const;
  bool fixo = false;  // Window Fixed

  // ---- Commands (comandos_janela.cpp) --------------------------------------
  void Window(const std::vector<Texto>& args);
  void NewWindow(const Texto& argumentos);
  void Escreve(const Texto& texto, bool titulo);
  void Posiciona(double linha, double coluna);
  void Limpa();
  void Fonte(const std::vector<Texto>& args);
  // The main window closes: the run ends and everything is torn down.
  void FechaPrincipal();
  // Tear-down without a close (the end of a headless run).
  void Desmonta();

  // ---- Controls (controles.cpp) ------------------------------------------
  std::array<TabelaControles, kTiposControle> controles;
  int16_t proximoTabIndex = 0;  // ProximoTabIndex
  // SystemMenu's option counters, one a tab, shared by every window.
  std::array<int16_t, 10> contadoresMenu{};
  // Removes a control's mirror variable and frees its slot.
  void LiberaControle(TipoControle tipo, int slot, bool destroi);
  // A control made by its kind's command into the kind's tables, owned by
  // the current window's name; its slot.
  int PoeNaTabela(TipoControle tipo, const Texto& nome, QWidget* w);
  // Deletes the controls removed so far; only from a command, where no
  // widget's handler is on the stack.
  void LimpaDescartados();
  void RelataControle(TipoControle tipo, int slot, const DadosEvento& e);
  void LigaEspelhos();
  void TiqueEspelhos();
  Valor CriaBotao(const std::vector<Texto>& args);
  Valor CriaTexto(const std::vector<Texto>& args);
  Valor CriaRotulo(const std::vector<Texto>& args);
  Valor CriaMarca(TipoControle tipo, const std::vector<Texto>& args);
  void EscreveMarca(TipoControle tipo, int slot);
  // Skin 0 of the button types, as ButtonStyle leaves it.
  struct EstiloBotao {
    std::array<Texto, 5> figuras;  // BtnUp, BtnHigh, BtnFocus, BtnDown, BtnDisabled
    QColor fundo, frente;
    bool temFundo = false, temFrente = false;
  };
  EstiloBotao& Estilo0() { return estilo0_; }
  void EscreveEspelho(TipoControle tipo, int slot);
  Valor CriaCombo(const std::vector<Texto>& args);
  Valor CriaFrame(const std::vector<Texto>& args);
  Valor CriaBarra(const std::vector<Texto>& args);
  Valor CriaMascara(const std::vector<Texto>& args);
  Valor CriaMoeda(const std::vector<Texto>& args);
  Valor CriaCalendario(const std::vector<Texto>& args);
  // The Box command (comandos_box.cpp).
  Valor CriaBox(const std::vector<Texto>& a);
  Valor MembroBox(int slot, const std::vector<Texto>& a);
  void RelataBox(int slot, const DadosEvento& e);
  void CliqueBox(int slot);
  void EntregaBox(const QJsonObject& acao, int linha);
  void Membro(TipoControle tipo, int slot, const std::vector<Texto>& args);
  bool MembroComum(TipoControle tipo, QWidget* w, const Texto& prop, const Texto& primeiro, const Texto& valor);
  // .Lin, .Col, .Height and .Width of a control that takes them all, in
  // lines and columns of the grid; false for any other member.
  bool MembroGrade(QWidget* w, const Texto& prop, const Texto& valor);
  bool MembroTexto(int slot, const Texto& prop, const std::vector<Texto>& args);

  // ---- Events ------------------------------------------------------------
  EstadoEventos eventos;
  bool capturando = false;   // CaptureWindow: a drag moves the window
  bool mouseGeral = false;   // MouseGeneral
  int contaCursor = 0;       // the platform's show count of the pointer
  Texto janelaEmExecucao;    // JanelaEmExecucao
  bool usoDeImagem = false;  // the flag of Image Name.Use
  QPointer<QWidget> imagemEmUso;  // the Image that Use made the target
  // What drawing commands and Write draw on: the image in use, else the
  // current window.
  Superficie* SuperficieAtual();
  // The focus goes to TxtAux of the current window (Event, KeyTest).
  void FocaAuxiliar();
  void TiqueMouse();
  void TeclaDesce(int codigo, int shift);
  void TeclaSobe(int codigo);

  // ---- Tools (despejo.cpp, roteiro.cpp) ------------------------------------
  std::string DespejaJanelas();
  // PNGs of the visible windows; false with a message when one can't be written.
  bool Fotografa(const std::string& pasta, std::string& erro);
  // One user action of the event script; a warning on standard error when
  // it names nothing that exists.
  void EntregaAcao(const QJsonObject& acao, int linha);
  // A control by name for the script: optionally of one kind (its keyword)
  // and owned by one window.
  QWidget* AchaControle(const QString& nome, const QString& tipo, const QString& janela);
  // A window by name that stands now; the current one for no name.
  JanelaExecucao* AchaJanelaViva(const QString& nome);

  // OuvinteJanela
  void FechandoJanela(JanelaExecucao* j) override;
  void JanelaAtivada(JanelaExecucao* j) override;
  void MouseJanela(JanelaExecucao* j, int tipo, int botao, int x, int y) override;
  bool TeclaPrevia(JanelaExecucao* j, QKeyEvent* e) override;
  void JanelaRedimensionada(JanelaExecucao* j) override;

 private:
  friend class ComandosJanela;
  JanelaExecucao* NovaJanela(ClasseJanela c);
  void FechaControlesDe(const Texto& dono);
  void Activate(int slot, const Texto& nome, bool estatica);
  void TiqueEstatica(int i, const Texto& sub);

  std::unique_ptr<QObject> filtro_;  // key preview
 public:
  // The run's one notification icon (AddIconSysTray), gone at the tear-down,
  // and ModoBandeja: the window hides in the notification area.
  std::unique_ptr<QObject> bandeja;
  bool modoBandeja = false;
 private:
  bool espelhosLigados_ = false;     // Timer2
  EstiloBotao estilo0_;
  std::vector<QPointer<QWidget>> descartados_;
  bool principalFeita_ = false;
  bool encerrada_ = false;
  std::array<QPointer<JanelaExecucao>, kSlotsJanelas> janelas_{};
  std::array<Texto, kSlotsJanelas> nomes_{};
  std::array<ClasseJanela, kSlotsJanelas> classes_{};
  QPointer<JanelaExecucao> atual_;
  // Every window the run made. One closed by the user or by .Off is only
  // hidden, and kept until the run ends: its own events may still be on
  // the stack.
  std::vector<std::unique_ptr<JanelaExecucao>> vivas_;
  // Static windows: the five TimerJanela and the windows saved by them.
  std::array<bool, kStaticas> estaticaLigada_{};
  std::array<QPointer<JanelaExecucao>, kStaticas + 1> salvas_{};
  std::array<Texto, kStaticas + 1> nomesSalvos_{};
  int modais_ = 0;
  QPoint origemArrasto_;
};

// The run's window system, made on first use.
SistemaJanelas& Janelas(Interpretador& zv);

// A plain box with OK under the program's title, as Message shows one.
void Avisa(Interpretador& zv, const Texto& texto);

// The grammar every control command shares: a first argument without a
// point creates; with one, it names a control of the kind and a member of
// it, or its removal when it holds "Remove". A name no control has does
// nothing unless `semControle` says otherwise.
struct FormasDeControle {
  std::function<Valor(SistemaJanelas&, const std::vector<Texto>&)> cria;
  std::function<Valor(SistemaJanelas&, int slot, const std::vector<Texto>&)> membro;
  std::function<void(const Texto& nome)> semControle;
  std::function<void(SistemaJanelas&, int slot)> aoRemover;  // before the slot is freed
};
Valor ComandoDeControle(Interpretador& zv, const Texto& argumentos, TipoControle tipo, const FormasDeControle& f);

// The window commands and the control commands into the keyword table
// (the module's real routines, in place of the stand-ins).
void RegistraComandosJanela();

// A box's rows, columns, selection, sort and visible cells for the dump.
std::string CamposBox(QWidget* w);

// A colour as the language gives it (red in the low byte).
QColor CorDe(double valor);
// The reverse: a colour as the language's number, red in the low byte.
int32_t NumeroDaCor(const QColor& c);

}  // namespace zv
