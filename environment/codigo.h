// Codigo, the environment's main window: one program of up to seven named
// code texts, switched by a row of tab buttons; its file (New, Open, Save,
// Save as, Print); the editor; and Run, Break and Debug on the run window.
#pragma once

#include <QMainWindow>
#include <array>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "environment/ajuda.h"
#include "environment/documento.h"
#include "environment/execucao.h"
#include "environment/extras.h"

class QAction;
class QDockWidget;
class QPushButton;
class QTableWidget;
class QLabel;
class QLineEdit;
class QTimer;
class QToolButton;

namespace zv {

class EditorCodigo;
class Interacao;

class JanelaCodigo : public QMainWindow {
 public:
  // `dirConfig`: where Zarvolt8.inf and ZV.File live.
  JanelaCodigo(const std::filesystem::path& dirConfig, Interacao& interacao, QWidget* pai = nullptr);
  ~JanelaCodigo() override;

  // ---- The document ------------------------------------------------------------
  Documento documento;
  void GuardaCodigoAtual();
  bool EstaModificado() const;
  void DefineModificado(bool sim);
  void Novo();
  void Abre();
  void Salva();
  void SalvaComo();
  void Imprime();
  void TrocaCodigo(int indice);
  // Opening a file named on the command line: not recorded in the preferences.
  void AbreDaLinhaDeComando(const QString& caminho);
  // On first start (AssociaZV empty): `faz` makes the file association and
  // answers a failure's message, empty when done; the key is written then.
  void AssociaSeFaltar(const std::function<std::string()>& faz);
  // A piece of source text from a picker (the wizard's), pasted at the
  // caret the way the user would: through the clipboard and Ctrl+V.
  void ColaDoSeletor(const QString& texto);
  // The path of the current file: DirPrograma, trimmed, and NomeAtual.
  std::filesystem::path CaminhoAtual() const;

  // ---- Running ---------------------------------------------------------------------
  void Executa();
  void Depura();
  void ComEncerra();
  ControleExecucao& execucao() { return execucao_; }

  // ---- Beyond the original, each switchable in the settings form ------------------
  const Extras& extras() const { return extras_; }
  void AplicaExtras(const Extras& e);
  // Every code's breakpoints, as a run takes them: (code, line from 1).
  std::set<std::pair<int32_t, int32_t>> PontosParada();
  QDockWidget* painelVariaveis() const { return painel_; }
  QTableWidget* tabelaVariaveis() const { return tabela_; }
  QPushButton* irParaErro() const { return irErro_; }
  QPushButton* paginaDoErro() const { return paginaErro_; }
  Ajuda& ajuda() { return *ajuda_; }
  // The recovery copy, written by a 30-second timer while the text is
  // modified; at start, a copy left behind is offered back.
  void GravaCopiaRecuperacao();
  void OfereceRecuperacao();

  // ---- For tests and the help ------------------------------------------------------
  EditorCodigo* editor() const { return editor_; }
  QLineEdit* caixaNome() const { return nome_; }
  QToolButton* botaoCodigo(int i) const { return abas_[static_cast<size_t>(i)]; }
  QAction* acao(const char* nome) const;
  // A tool bar button's tag: "" active, "INATIVO" inactive.
  QString Etiqueta(const char* nome) const;
  QString TextoBarraInferior() const;
  // Help on a word (F1), the index when empty: the help reader's hook.
  std::function<void(const QString& palavra)> abreAjuda;

 protected:
  void closeEvent(QCloseEvent* e) override;
  bool eventFilter(QObject* o, QEvent* e) override;

 private:
  void MontaMenus();
  void MontaBarra();
  void MontaAbas(QWidget* pai);
  QAction* NovaAcao(const char* nome, const char* texto, const QKeySequence& atalho, std::function<void()> f);
  void DefineEtiqueta(QAction* a, bool ativo);
  void BarraInfPrograma(const QString& nome);
  void MostraEstado(ControleExecucao::Estado e);
  void ConsultaDesfazer();
  // The form Salvar, in its two modes.
  void Salvar(bool abrir);
  bool GravaNoCaminho(const std::filesystem::path& caminho);
  void AvisaLeitura(Documento::Leitura r, const QString& caminho);
  void MostraCodigoAtivo();
  void LegendasDasAbas();
  void AbreConfiguracoes();
  void MontaExtras();
  void EsqueceMarcas();
  void LimpaMarcaErro();
  void Roda(bool depurar);
  void Parou(TipoCaixa tipo, int codigo, int linha, const Texto& texto);
  void Seguiu(TipoCaixa tipo);
  void MostraVariaveis();
  void RemoveRecuperacao();
  QString NomeDoCodigo(int codigo) const;

  std::filesystem::path dirConfig_;
  Interacao& interacao_;
  EditorCodigo* editor_ = nullptr;
  QLineEdit* nome_ = nullptr;
  QLabel* barraPrograma_ = nullptr;
  QLabel* barraEstado_ = nullptr;
  std::array<QToolButton*, 7> abas_{};
  QTimer* desfazer_ = nullptr;
  ControleExecucao execucao_;
  bool fecharDepois_ = false;
  bool carregando_ = false;  // the editor's text being set by the program, not typed

  Extras extras_;
  std::array<std::set<int>, 7> pontos_;       // each code's breakpoints, lines from 0
  std::optional<std::pair<int, int>> erro_;   // code and line (from 0) of the last error
  std::optional<std::pair<int, int>> passo_;  // where a step box stands now
  QDockWidget* painel_ = nullptr;
  QTableWidget* tabela_ = nullptr;
  QLabel* ondeParou_ = nullptr;
  QPushButton* irErro_ = nullptr;
  QPushButton* paginaErro_ = nullptr;  // the page of the command an error names
  QString comandoErro_;
  std::unique_ptr<Ajuda> ajuda_;
  QTimer* recuperacao_ = nullptr;
};

}  // namespace zv
