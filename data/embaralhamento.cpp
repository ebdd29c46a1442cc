#include "data/embaralhamento.h"

#include <chrono>
#include <cstdint>
#include <random>

namespace zv {

// Non-ASCII characters are written as octal escapes so that the bytes do not
// depend on the encoding this file is saved in.
constexpr std::array<std::string_view, 10> TabelaChaves = {
    // 0: 179 characters
    "p9\371\330s7HynY\3268-\277\305GBL\262\262wq>B\323S\260Z\361v\352:}4OCS+%\224B?\206{]"
    "gCD`t\377gh#\200=c\302t);0D\304Y\3657)=3o\225rJ\331\245\21002}N5m\202\344y<oY\323"
    "\266o(\212]Hdh\253z;l*J'\343l\300l1Vuj60qeN 2PT$[&\244\225]K~M\317\327\234\224}\361@"
    "sogo\301k\371\322S~}8 DX4\211\355\317in\313\356x\337\3336\227\3070\330\341=tm}[z%I<",
    // 1: 184 characters
    "(t\247I7\243q;FS$4g\331\253ba;4w/\250[QO\271A!\273Xs~\315i14hzZ\234\347\343z\2127"
    "\210%kz\327\273fD\351l\224V\366\331 >/^Z6l\301\364?iF^@V.sW\2140Wx\333)as_v\330($>A"
    "\305wr^\316.;\333q\2069F1`\273-W<\367Z86\260Q\234X<V\303i \213&\372\260|\367\243{<cn"
    "{\335\315j^?^g\342.d\340\337_Dy\335I5\377itU-\277#0LuO)K\202\303[(\333g*\272\331N A="
    "\211\267\234\250z",
    // 2: 215 characters
    "W_|\373A4Ze\242\270\207\221Dy6cJgJ\244\227IFF8\344+!YKO\2230\257Z\314+5\267\322\305I"
    "pw\252nY {\257dm\262X.YaWG\223+\257bK\244\375IO!^{\320\262+)}1J\227)XZ\345\213z>\237"
    "a@a\357+\377\357\274\256\322\243r\225:\365[s\252^\226^Q\302Rti\360\230$'#\313ic#hrJ9"
    "\323/\205)h{bmyPu\321EX\241?\353\361gRE\254aH7I._\337z\273t}7\241\231\313FZA\244Jjr"
    "\222\230's\310tJFx>mj\2146!\353k\377K4F:&=\265\257Es\225A'\370o\353\226&vE(G^\265"
    "\264dS",
    // 3: 279 characters
    "M\2510i %\3258uueGK}u|}\321\320ME\307:\250\2222X1qv&\303\365\377aj\246427G:Z]4xN%a0v"
    "?e\374\371Z>R`T.1YMm876}'\365HL@E\320yP\242EN\210I\322Y\225q\315IE\233\366I9\230-"
    "\266xN\2677jDh\230\347wp\203\350\331 &S\375\241}\302rwS%\241N\250\373j+\207\242\241}"
    ":Mr\257s\264_$oX\310F-\341U\330\360\226\267c86\305BI\237m\307D\214uMeG(g(ZIrJxtZ\354"
    "5\317q\221\3307\372EK'Hr\252\356auO\3259%B\204e\333eZn(Yk\211FcBWX\356%l3^~#El\360d7"
    ":fMknS,;w\341\316&w\355\317h*Q6\320='\271_\212e\307\3651*xs$N-_PSga@\274\316g6-0RW"
    "\234Ir@K",
    // 4: 257 characters
    "q8GH.6yR(rrax,j\337[_\241$@v4UsxZ^\320q!?aE\226\276{\250bL\361u%\252hs\335E\327\366q"
    "\366\364-\336>\274t\343:4~\3768Em}b>&\372)6\207\351-\216xlf#\261W}+Y\263zv2Gi\241"
    "\375\277\313-JFR\335j\2037)s\363'2\375agD\203\302XS\225\370(\266M7{\245 *6!GP_\2512"
    "\341W|6A\376\371\301u$<z?Hw#8CP\273oMH*0\266N\315:|\351\377@\367R\252n\324\223S\266;"
    "ysw;:\312~\310U\233e\231]\370\2242&\303i]\244B:*\204\301\330D[<2vT\332htb\311OCO\367"
    "%*EWr#B~*W\232}Ge\226(~\361GVRZ+63\262P}t\253\230}\343,\316K\321h\355",
    // 5: 176 characters
    "-.}[2\234 S+G;VE\246\202H:\307?!fhT\261\221wL\367<xqQT\311\323\314\305A7>D\247 C(~&:"
    "\214th8\241Ca\231\302NpVc&nG`\2704\320m\2509A\326'ebHo\352PL\364\326?\270[\365\311L'"
    "`Z\257>,O\256j\253o'#p\207y\273I%r1\311\204u\334)g)pcVd\275cMUgK\372|_Q\300\377\200P"
    "0&WMH\202T}m\226m\212\212v76r\321NzIX\356uv\252\221\355NL\207YU&I:\354\214\273C\367",
    // 6: 228 characters
    "B\274(O](Kb\3019g\202\202\3608+\317G>cHS\365;\366\224\200x\340\352A\316\326wY\377U"
    "\2244z\203\306{K\2148%|\254'hK^]d2_}YuG\3507`rU Ui=\223esI\312\267tS\260w|Q\302a\260"
    "Ik\241/HK>\210y7+xdtK[.f\205+L|m\336@\337\333\256\357h\311I\372%\350EH?\266d\3655X"
    "\223=/3-:S\271\333Ms}\301d@3`* &8\3129\254n\234CXi_pp\3335\221tew\353hJ{\227<m{nY"
    "\366\265dj'gi,XcN1\331\370\266\254We/2\360\3549a\257\213:g\342=K2+\223\300@\370EV$"
    "\3544\213pF\351\232#KR\225\241",
    // 7: 182 characters
    "\260tfI\366h\212Zg\2223\374\2500i\344\332\245R\243:6Hh\276]-^@Ee{ME*_gP{/\213(\207R^"
    "-\305\364\276gb_\275^\317\242\207P\377c\250_\341t\233od2Qh\224X\331~8\234Y\263e&\344"
    "\363aS\241s?y\314.#,R\326mA\332@\360r\333Vb4\352\372\317\341\223Fk\303\346#pF!\233QI"
    "_u5\2262a`\205#R\321\303_\203\221,B`W\257 \223\314\314\260c\307NVBL;uz\211\333x\313q"
    " OnzUGnA)\371!V\325\200U|\204K4S:1T",
    // 8: 176 characters
    "\244_\262b&h<H<\311FUdv`\304c,:?Bw\2760b \377z4\313Qn~O^)'%F'\202qu\313J5*\212L~*"
    "\312#j\261HOX!$\214X\334r;\237r\227Z'\323R\307\362|-X}+_xt\301+i/_P\222\203`t\351~Q>"
    "m\351n\371O,* \371v\326BQ\222uiQ\260$+\3526\347jXwr[:1K3#YK\326\264`\221\336\277\267"
    "8\202\301h\247\345\365\3505\352T\313\331a~*3azf}d?\346k2-7+BxM5t,\203cX",
    // 9: 174 characters
    "\332*)!umjwR\227t`jA4<\317}UIt\236\3502\370!\300Om\246$f-0\335t.f@\346\363\247\3414"
    "\360V\204nQ,@JoG7#P\247\3669\234_>T:)4,=,X\3072+o\377\205K\2614GT7\230\325ORzoVyT>("
    "\202tL\355.w3\3067^]h\224T}x@>\3604h#\231:.\237`\243\207%\337\363\203\360J;2\316-K"
    "\242f7D\311uR\253U[Oq\227Y\341H~'ts +s!\331\236gg6H?x\307H>[%\261\221}",
};

namespace {

constexpr std::array<size_t, 10> kTamanhos = {179, 184, 215, 279, 257, 176, 228, 182, 176, 174};

constexpr bool ChavesIntactas() {
  for (size_t k = 0; k < TabelaChaves.size(); ++k) {
    if (TabelaChaves[k].size() != kTamanhos[k]) return false;
    for (char c : TabelaChaves[k]) {
      auto b = static_cast<unsigned char>(c);
      if (b < 32 || b == 127) return false;
    }
  }
  return true;
}
// A slip of the keyboard in a key would make every file written so far
// unreadable: catch it at compile time.
static_assert(ChavesIntactas(), "a key of TabelaChaves lost its length or a character");

constexpr size_t kTamanhoPrefixo = 4;

uint32_t LePrefixo(std::string_view armazenado) {
  uint32_t n = 0;
  for (size_t i = 0; i < kTamanhoPrefixo; ++i)
    n |= uint32_t(static_cast<unsigned char>(armazenado[i])) << (8 * i);
  return n;
}

// The characters behind the key number byte, each less its key character.
std::string DesfazChave(std::string_view corpo, std::string_view chave) {
  std::string texto(corpo.size(), '\0');
  size_t j = 0;
  for (size_t i = 0; i < corpo.size(); ++i) {
    auto c = static_cast<unsigned char>(255 - static_cast<unsigned char>(corpo[i]));
    texto[i] = static_cast<char>(static_cast<unsigned char>(c - static_cast<unsigned char>(chave[j])));
    if (++j == chave.size()) j = 0;
  }
  return texto;
}

// Reads a stored form into `texto`. A form cut short is refused when
// `estrito`, else read as far as it goes.
bool LeArmazenado(std::string_view armazenado, bool estrito, std::string& texto) {
  if (armazenado.size() < kTamanhoPrefixo + 1) return false;
  size_t n = LePrefixo(armazenado);
  size_t disponivel = armazenado.size() - kTamanhoPrefixo;
  if (n == 0) return false;
  if (n > disponivel) {
    if (estrito) return false;
    n = disponivel;
  }
  int chave = 255 - static_cast<unsigned char>(armazenado[kTamanhoPrefixo]);
  if (chave > 9) return false;
  texto = DesfazChave(armazenado.substr(kTamanhoPrefixo + 1, n - 1), TabelaChaves[chave]);
  return true;
}

int SorteiaChave() {
  // Seeded once from the clock; two calls may well get the same key, and
  // nothing depends on them differing.
  thread_local std::minstd_rand gerador(
      static_cast<uint32_t>(std::chrono::system_clock::now().time_since_epoch().count()));
  return std::uniform_int_distribution<int>(0, 9)(gerador);
}

}  // namespace

std::string ComplementaTexto(std::string_view texto) {
  std::string r(texto.size(), '\0');
  for (size_t i = 0; i < texto.size(); ++i) r[i] = static_cast<char>(255 - static_cast<unsigned char>(texto[i]));
  return r;
}

std::string Embaralha(std::string_view texto) { return EmbaralhaComChave(texto, SorteiaChave()); }

std::string EmbaralhaComChave(std::string_view texto, int chave) {
  if (chave < 0 || chave > 9) chave = 0;
  std::string_view k = TabelaChaves[chave];
  uint32_t n = static_cast<uint32_t>(texto.size()) + 1;
  std::string r;
  r.reserve(texto.size() + kTamanhoPrefixo + 1);
  for (size_t i = 0; i < kTamanhoPrefixo; ++i) r += static_cast<char>((n >> (8 * i)) & 0xFF);
  r += static_cast<char>(255 - chave);
  size_t j = 0;
  for (char c : texto) {
    auto soma = static_cast<unsigned char>(static_cast<unsigned char>(c) + static_cast<unsigned char>(k[j]));
    r += static_cast<char>(255 - soma);
    if (++j == k.size()) j = 0;
  }
  return r;
}

bool DesembaralhaSeguro(std::string_view armazenado, std::string& texto) {
  return LeArmazenado(armazenado, true, texto);
}

std::string Desembaralha(std::string_view armazenado) {
  std::string texto;
  LeArmazenado(armazenado, false, texto);
  return texto;
}

}  // namespace zv
