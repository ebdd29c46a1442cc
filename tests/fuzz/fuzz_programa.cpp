// Feeds arbitrary texts to the interpreter as the main code of a program and
// runs them for a few statements. Boxes and Write print nothing; a box takes
// its default answer.
#include <pthread.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string_view>

#include "core/interpretador.h"
#include "core/texto.h"
#include "data/dados.h"
#include "library/biblioteca.h"
#include "runtime/headless_host.h"

namespace {

struct Entrada {
  const uint8_t* dados;
  size_t tamanho;
};

void* Roda(void* arg) {
  auto* e = static_cast<Entrada*>(arg);
  std::string_view bytes(reinterpret_cast<const char*>(e->dados), e->tamanho);
  zv::HostConsole host;
  host.mudo = true;
  zv::Interpretador zv(host);
  zv.limiteInstrucoes = 2000;
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
  zv.dirConfig = zv::U("/tmp/zv-fuzz-config/");
  zv.fonte.textos[0] = zv::NormalizaFimDeLinha(zv::DeBytesArquivo(bytes));
  zv.Executa();
  return nullptr;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  zv::RegistraBiblioteca();
  zv::RegistraDados();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* dados, size_t tamanho) {
  Entrada e{dados, tamanho};
  // Nested calls go 400 deep before the interpreter stops them; with ASan's
  // larger frames that needs more than the default stack.
  pthread_attr_t attr;
  pthread_attr_init(&attr);
  pthread_attr_setstacksize(&attr, 256u * 1024 * 1024);
  pthread_t t;
  if (pthread_create(&t, &attr, Roda, &e) != 0) {
    Roda(&e);
  } else {
    pthread_join(t, nullptr);
  }
  pthread_attr_destroy(&attr);
  return 0;
}
