// FrmCompilar: "Compile" makes an executable of the saved program: a copy
// of the run-time image with the user's icon and version strings, and the
// program behind it. The fields are remembered between sessions.
#pragma once

#include <QDialog>
#include <array>
#include <filesystem>

class QLabel;
class QLineEdit;
class QPushButton;

namespace zv {

class Interacao;

class FormCompilar : public QDialog {
 public:
  // `fonteAtual`: the program the editor shows, for a form never filled.
  FormCompilar(const std::filesystem::path& dirConfig, Interacao& interacao, const QString& fonteAtual,
               QWidget* pai = nullptr);
  // The run-time image copied: zv-runtime beside the environment.
  QString imagem;
  // The Compile button's steps; true when the executable was made.
  bool Compila();

 protected:
  void done(int r) override;

 private:
  void Deriva();
  QLineEdit* Campo(int i) const { return campos_[size_t(i)]; }
  std::filesystem::path dirConfig_;
  Interacao& interacao_;
  std::array<QLineEdit*, 11> campos_{};
  QLabel* aviso_;  // PicMsg
};

}  // namespace zv
