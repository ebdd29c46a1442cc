// Codigo, the environment's main window: one program of up to seven named
// code texts, switched by a row of tab buttons; its file (New, Open, Save,
// Save as, Print); the editor; and Run, Break and Debug on the run window.
#pragma once

#include <QMainWindow>
#include <array>
#include <filesystem>
#include <functional>
#include <string>

#include "environment/documento.h"
#include "environment/execucao.h"

class QAction;
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
  // The path of the current file: DirPrograma, trimmed, and NomeAtual.
  std::filesystem::path CaminhoAtual() const;

  // ---- Running ---------------------------------------------------------------------
  void Executa();
  void Depura();
  void ComEncerra();
  ControleExecucao& execucao() { return execucao_; }

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
  void AbreConfiguracoes();

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
};

}  // namespace zv
