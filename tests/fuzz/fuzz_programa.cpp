// Feeds arbitrary texts to the interpreter as the main code of a program and
// runs them for a few statements, windows included (on the offscreen
// platform). Boxes and Write print nothing; a box takes its default answer.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string_view>

#include "core/interpretador.h"
#include "core/texto.h"
#include "runtime/janela_host.h"
#include "runtime/porta_janelas.h"
#include "runtime/lancador.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* dados, size_t tamanho) {
  // API calls whatever function a text names, with whatever arguments: a
  // fuzzed input would find abort() or a wild pointer. The FTP transfers
  // would wait up to a minute on hosts that don't answer. They do nothing
  // here.
  static const bool semAPI = [] {
    zv::RegistraSubsistemas();
    // The FTP commands are the window module's: loaded first, so that what
    // it registers is replaced here.
    zv::CarregaModuloJanelas();
    for (const char16_t* palavra : {u"API", u"DownFileFTP", u"UpFileFTP"})
      zv::Comandos().Define(palavra, [](zv::Interpretador&, const zv::Texto&) { return zv::Valor(); });
    return true;
  }();
  (void)semAPI;
  std::string_view bytes(reinterpret_cast<const char*>(dados), tamanho);
  // Settings files go to a scratch folder, and the files a program makes
  // (databases, text files) to a scratch working folder; both are emptied
  // for each input, so that no input reads what an earlier one left, such
  // as a database grown by thousands of runs.
  std::error_code erro;
  for (const char* pasta : {"/tmp/zv-fuzz-config", "/tmp/zv-fuzz-work"}) {
    std::filesystem::remove_all(pasta, erro);
    std::filesystem::create_directories(pasta, erro);
  }
  std::filesystem::current_path("/tmp/zv-fuzz-work", erro);
  zv::HostJanela host(zv::HostJanela::Modo::SemTela);
  host.mudo = true;
  zv::PedidoExecucao pedido;
  pedido.dirConfig = "/tmp/zv-fuzz-config/";
  pedido.maxInstrucoes = 2000;
  zv::FontePrograma fonte;
  fonte.textos[0] = zv::NormalizaFimDeLinha(zv::DeBytesArquivo(bytes));
  zv::Lancador lancador(host, pedido, fonte);
  host.Liga(&lancador.interpretador());
  lancador.Executa();
  // The end of the run: its windows torn down.
  host.Termina();
  return 0;
}
