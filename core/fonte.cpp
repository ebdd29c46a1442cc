#include "core/fonte.h"

namespace zv {

Texto JuntaCodigos(const FontePrograma& fonte) {
  Texto t = kAssinaturaFonte + fonte.textos[0] + u"#%";
  for (int i = 1; i <= 6; ++i) {
    if (fonte.textos[i].empty()) continue;
    t += fonte.nomes[i - 1] + u"#&" + fonte.textos[i] + u"#%";
  }
  return t;
}

bool SeparaCodigos(TextoV texto, FontePrograma& fonte) {
  for (auto& t : fonte.textos) t.clear();
  for (auto& n : fonte.nomes) n.clear();
  size_t p = texto.find(u"#%");
  if (p == TextoV::npos) return false;
  // The five signature characters are skipped, not compared.
  fonte.textos[0] = p > 5 ? Texto(texto.substr(5, p - 5)) : Texto();
  texto = texto.substr(p + 2);
  for (int slot = 1; slot <= 6; ++slot) {
    size_t e = texto.find(u"#&");
    if (e == TextoV::npos) break;
    fonte.nomes[slot - 1] = Texto(texto.substr(0, e));
    texto = texto.substr(e + 2);
    size_t f = texto.find(u"#%");
    if (f == TextoV::npos) return false;
    fonte.textos[slot] = Texto(texto.substr(0, f));
    texto = texto.substr(f + 2);
  }
  return true;
}

}  // namespace zv
