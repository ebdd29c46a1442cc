// The main window under test: a person who answers the prompts in order,
// and the window made fresh in a folder of its own for each test.
#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QPrinter>
#include <QTest>
#include <cstdio>
#include <deque>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <unistd.h>

#include "environment/codigo.h"
#include "environment/editor_codigo.h"
#include "environment/interacao.h"
#include "environment/settings/armazem_config.h"

namespace zv::teste {

namespace fs = std::filesystem;

// The person in front of the window: answers given in advance, questions noted.
struct Pessoa : Interacao {
  std::deque<bool> sim;
  std::deque<std::optional<QString>> arquivos;
  QStringList perguntas, dialogos, avisos;
  QString pdf;
  bool Pergunta(QWidget*, const QString&, const QString& texto, bool) override {
    perguntas << texto;
    if (sim.empty()) {
      ADD_FAILURE() << "unexpected question: " << texto.toStdString();
      return false;
    }
    bool r = sim.front();
    sim.pop_front();
    return r;
  }
  void Avisa(QWidget*, const QString&, const QString& texto) override { avisos << texto; }
  std::optional<QString> EscolheArquivo(QWidget*, bool, const QString& titulo, const QString&, const QString&,
                                        const QString&) override {
    dialogos << titulo;
    if (arquivos.empty()) return std::nullopt;
    auto r = arquivos.front();
    arquivos.pop_front();
    return r;
  }
  bool EscolheImpressora(QWidget*, QPrinter& p) override {
    p.setOutputFormat(QPrinter::PdfFormat);
    p.setOutputFileName(pdf);
    return true;
  }
  std::optional<int> EscolheCor(QWidget*, const QString&, int) override { return std::nullopt; }
};

struct Ambiente : ::testing::Test {
  fs::path pasta = fs::temp_directory_path() / ("zv_amb_" + std::to_string(::getpid()));
  Pessoa pessoa;
  std::unique_ptr<JanelaCodigo> janela;
  std::FILE* saida = std::tmpfile();
  void SetUp() override {
    fs::remove_all(pasta);
    fs::create_directories(pasta);
    DescartaConfig();
    // Not the first dialogue of this installation: it opens where the record says.
    GravaConfig(pasta, u"PrimeiraAbertura", u"1");
    janela = std::make_unique<JanelaCodigo>(pasta, pessoa);
    janela->execucao().semTela = true;
    janela->execucao().saida = saida;
    janela->show();
    // Short cuts reach the active window only.
    QApplication::setActiveWindow(janela.get());
    ASSERT_TRUE(QTest::qWaitForWindowActive(janela.get()));
  }
  void TearDown() override {
    janela.reset();
    std::fclose(saida);
    DescartaConfig();
    fs::remove_all(pasta);
  }
  void Digita(const QString& texto) {
    janela->editor()->setFocus();
    QTest::keyClicks(janela->editor(), texto);
  }
  static std::string Le(const fs::path& f) {
    std::ifstream i(f, std::ios::binary);
    return {std::istreambuf_iterator<char>(i), std::istreambuf_iterator<char>()};
  }
  std::string Saida() {
    std::fflush(saida);
    std::rewind(saida);
    std::string s;
    char b[4096];
    size_t n;
    while ((n = std::fread(b, 1, sizeof b, saida)) > 0) s.append(b, n);
    return s;
  }
  std::string Arquivo(const char* nome) { return (pasta / nome).string(); }
};

}  // namespace zv::teste
