// The settings form, "Workspace settings": the editor's colours, font and
// line numbers, shown at once on a sample editor; OK writes them to the
// preferences record.
#pragma once

#include <QDialog>
#include <array>
#include <filesystem>

#include "environment/settings/armazem_config.h"

class QCheckBox;
class QComboBox;
class QPushButton;
class QTimer;

namespace zv {

class EditorCodigo;
class Interacao;

class FormConfig : public QDialog {
 public:
  FormConfig(const std::filesystem::path& dirConfig, Interacao& interacao, QWidget* pai = nullptr);
  static constexpr int kCores = 11;
  // The form's fields as a record (the sample shows them).
  Preferencias Campos() const;
  EditorCodigo* amostra() const { return amostra_; }
  QPushButton* botaoCor(int i) const { return botoes_[static_cast<size_t>(i)]; }
  QComboBox* fonte() const { return fonte_; }
  QComboBox* tamanho() const { return tamanho_; }
  QCheckBox* numeracao() const { return numeracao_; }
  // The additions' switches: error mark, Variables panel, breakpoints, recovery.
  QCheckBox* extra(int i) const { return extras_[static_cast<size_t>(i)]; }
  void Confirma();  // BtnOK

 private:
  void MostraCor(int i);
  void AplicaAmostra();
  std::filesystem::path dirConfig_;
  Interacao& interacao_;
  std::array<int32_t, kCores> cores_{};
  std::array<QPushButton*, kCores> botoes_{};
  QComboBox* fonte_;
  QComboBox* tamanho_;
  QCheckBox* numeracao_;
  std::array<QCheckBox*, 4> extras_{};
  EditorCodigo* amostra_;
  QTimer* relogio_;
};

}  // namespace zv
