#include "environment/execucao.h"

#include "core/texto.h"
#include "environment/mensagens.h"
#include "runtime/janela_host.h"
#include "runtime/lancador.h"

namespace zv {

namespace {
bool usaAPI = false;
}

bool UsaAPI() { return usaAPI; }

bool DeclaraBiblioteca(const FontePrograma& fonte) {
  for (int i = 0; i <= 6; ++i)
    if (Contem(Maiusculas(fonte.textos[static_cast<size_t>(i)]), u"API LIBRARY")) return true;
  return false;
}

void ControleExecucao::Muda(Estado e) {
  estado_ = e;
  if (aoMudar) aoMudar(e);
}

void ControleExecucao::Executa(const FontePrograma& fonte, const std::string& arquivo, bool depurar) {
  Pedido p{fonte, arquivo, depurar};
  if (Rodando()) {
    // Called from inside the run's pump: the run unwinds first, then the
    // loop below starts the new one from the outermost call.
    proximo_ = std::move(p);
    Encerra();
    return;
  }
  proximo_ = std::move(p);
  while (proximo_) {
    Pedido agora = std::move(*proximo_);
    proximo_.reset();
    Roda(agora);
  }
}

void ControleExecucao::Roda(const Pedido& p) {
  if (DeclaraBiblioteca(p.fonte)) usaAPI = true;
  PedidoExecucao pedido;
  pedido.arquivo = p.arquivo;
  pedido.dirConfig = dirConfig.string();
  pedido.passoAPasso = p.depurar;
  HostJanela host(semTela ? HostJanela::Modo::SemTela : HostJanela::Modo::Tela, saida);
  host.respostas = respostas;
  Lancador lancador(host, pedido, p.fonte);
  Interpretador& zv = lancador.interpretador();
  host.Liga(&zv);
  // The environment's application is there already: the run pumps it, and
  // its timers are Qt's, from the first statement on.
  host.GaranteGui();
  zv.pontosParada = pontosParada;
  auto parada = [](const Caixa& c) { return c.tipo == TipoCaixa::Passo || c.tipo == TipoCaixa::Erro; };
  host.antesDaCaixa = [this, &zv, parada](const Caixa& c) {
    if (parada(c) && aoParar) aoParar(c.tipo, zv.editorAtual, zv.linhaAtual, c.texto);
  };
  host.depoisDaCaixa = [this, parada](const Caixa& c, Resposta) {
    if (parada(c) && aoSeguir) aoSeguir(c.tipo);
  };
  zv_ = &zv;
  Muda(p.depurar ? Estado::Depurando : Estado::Executando);
  try {
    lancador.Executa([&host] { host.AguardaFim(); });
  } catch (const std::exception& e) {
    std::fprintf(stderr, msg::ambiente::kExecucaoParou, e.what());
  }
  host.Termina();
  zv_ = nullptr;
  ++terminados_;
  Muda(Estado::Parado);
}

void ControleExecucao::Encerra() {
  if (!zv_) return;
  zv_->executando = false;
}

}  // namespace zv
