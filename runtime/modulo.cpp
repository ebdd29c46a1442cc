// The window module's entry: what the door (porta_janelas.h) asks of it.
#include <QApplication>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QMessageBox>
#include <QScreen>

#include "runtime/aplicacao.h"
#include "runtime/janelas.h"
#include "runtime/porta_janelas.h"

namespace zv {

namespace {

class Modulo : public ModuloJanelas {
 public:
  void Registra() override { RegistraComandosJanela(); }
  void CriaAplicacao(bool semTela) override { GaranteAplicacao(semTela); }

  Resposta MostraCaixa(const Caixa& caixa) override {
    QMessageBox box;
    box.setWindowTitle(QString::fromStdU16String(caixa.titulo));
    QString texto = QString::fromStdU16String(caixa.texto);
    texto.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(QChar(u'\r'), QChar(u'\n'));
    box.setText(texto);
    switch (caixa.tipo) {
      case TipoCaixa::Info:
        box.setIcon(QMessageBox::Information);
        break;
      case TipoCaixa::Pergunta:
        box.setIcon(QMessageBox::Question);
        break;
      case TipoCaixa::Passo:
        box.setIcon(QMessageBox::NoIcon);
        break;
      default:
        box.setIcon(QMessageBox::Critical);
    }
    QMessageBox::StandardButton padrao = QMessageBox::Ok;
    switch (caixa.botoes) {
      case Botoes::OK:
        box.setStandardButtons(QMessageBox::Ok);
        break;
      case Botoes::OKCancel:
        box.setStandardButtons(QMessageBox::Ok | QMessageBox::Cancel);
        if (caixa.padrao == Resposta::Cancel) padrao = QMessageBox::Cancel;
        break;
      case Botoes::YesNo:
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
        padrao = caixa.padrao == Resposta::Yes ? QMessageBox::Yes : QMessageBox::No;
        break;
    }
    box.setDefaultButton(padrao);
    switch (box.exec()) {
      case QMessageBox::Cancel:
        return Resposta::Cancel;
      case QMessageBox::Yes:
        return Resposta::Yes;
      case QMessageBox::No:
        return Resposta::No;
      default:
        return Resposta::OK;
    }
  }

  void DadosTela(Plataforma& p) override {
    if (QScreen* s = QGuiApplication::primaryScreen()) {
      p.larguraTela = s->geometry().width();
      p.alturaTela = s->geometry().height();
    }
    p.totalFontes = static_cast<int>(QFontDatabase::families().size());
  }

  void MostraPrincipal(Interpretador& zv) override { Janelas(zv).Principal(); }
  void FechaPrincipal(Interpretador& zv) override { Janelas(zv).FechaPrincipal(); }
  bool PrincipalViva(Interpretador& zv) override { return Janelas(zv).PrincipalViva(); }
  void EntregaAcao(Interpretador& zv, const QJsonObject& acao, int linha) override {
    Janelas(zv).EntregaAcao(acao, linha);
  }
  std::string DespejaJanelas(Interpretador& zv) override { return Janelas(zv).DespejaJanelas(); }
  bool Fotografa(Interpretador& zv, const std::string& pasta, std::string& erro) override {
    return Janelas(zv).Fotografa(pasta, erro);
  }
  int64_t AlcaFormAtual(Interpretador& zv) override { return int64_t(Janelas(zv).Atual()->winId()); }
  void DefineIconeAplicacao(const std::string& bytes) override { iconeAplicacao = bytes; }
};

}  // namespace

}  // namespace zv

extern "C" zv::ModuloJanelas* zv_modulo_janelas() {
  static zv::Modulo modulo;
  return &modulo;
}
