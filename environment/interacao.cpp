#include "environment/interacao.h"

#include <QColorDialog>
#include <QFileDialog>
#include <QMessageBox>
#include <QPrintDialog>
#include <QPrinter>

namespace zv {

namespace {

class InteracaoTela : public Interacao {
 public:
  bool Pergunta(QWidget* pai, const QString& titulo, const QString& texto, bool simNao) override {
    auto botoes = simNao ? QMessageBox::Yes | QMessageBox::No : QMessageBox::Ok | QMessageBox::Cancel;
    auto r = QMessageBox::question(pai, titulo, texto, botoes, simNao ? QMessageBox::Yes : QMessageBox::Ok);
    return r == QMessageBox::Yes || r == QMessageBox::Ok;
  }
  void Informa(QWidget* pai, const QString& titulo, const QString& texto) override {
    QMessageBox::information(pai, titulo, texto);
  }
  void AvisaErro(QWidget* pai, const QString& titulo, const QString& texto) override {
    QMessageBox::critical(pai, titulo, texto);
  }
  void Avisa(QWidget* pai, const QString& titulo, const QString& texto) override {
    QMessageBox::warning(pai, titulo, texto);
  }
  std::optional<QString> EscolheArquivo(QWidget* pai, bool salvar, const QString& titulo, const QString& filtro,
                                        const QString& pasta, const QString& nome) override {
    QString inicio = nome.isEmpty() ? pasta : pasta + QLatin1Char('/') + nome;
    QString r = salvar ? QFileDialog::getSaveFileName(pai, titulo, inicio, filtro)
                       : QFileDialog::getOpenFileName(pai, titulo, inicio, filtro);
    if (r.isEmpty()) return std::nullopt;
    return r;
  }
  bool EscolheImpressora(QWidget* pai, QPrinter& impressora) override {
    QPrintDialog d(&impressora, pai);
    return d.exec() == QDialog::Accepted;
  }
  std::optional<int> EscolheCor(QWidget* pai, const QString& titulo, int atual) override {
    QColor c = QColorDialog::getColor(QColor(atual & 0xff, (atual >> 8) & 0xff, (atual >> 16) & 0xff), pai, titulo);
    if (!c.isValid()) return std::nullopt;
    return c.red() | (c.green() << 8) | (c.blue() << 16);
  }
};

}  // namespace

Interacao& InteracaoDaTela() {
  static InteracaoTela tela;
  return tela;
}

}  // namespace zv
