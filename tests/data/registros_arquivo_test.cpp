// The record file engine: the format byte by byte, the lock between
// processes, compaction, damaged files and the order list.
#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <random>
#include <set>

#include "data/registros_arquivo.h"
#include "data/embaralhamento.h"

namespace zv {
namespace {

namespace fs = std::filesystem;

class Pasta {
 public:
  Pasta() {
    std::string modelo = (fs::temp_directory_path() / "zvdb-test-XXXXXX").string();
    caminho_ = ::mkdtemp(modelo.data());
  }
  ~Pasta() { fs::remove_all(caminho_); }
  fs::path operator/(const char* nome) const { return caminho_ / nome; }

 private:
  fs::path caminho_;
};

std::string LeTudo(const fs::path& p) {
  std::ifstream f(p, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(f), {});
}

void EscreveEm(const fs::path& p, int64_t pos, std::string_view bytes) {
  std::fstream f(p, std::ios::binary | std::ios::in | std::ios::out);
  f.seekp(pos);
  f.write(bytes.data(), std::streamsize(bytes.size()));
}

// The text of the stored form at an offset.
std::string Valor(const std::string& b, size_t pos, size_t largura) {
  std::string t;
  EXPECT_TRUE(DesembaralhaSeguro(std::string_view(b).substr(pos, largura), t)) << "at " << pos;
  return t;
}

Estrutura Agenda() {
  Estrutura e;
  e.descritor = u"Agenda";
  e.Acrescenta(u"Codigo", TipoCampo::AutoInc);
  e.Acrescenta(u"Nome", TipoCampo::String, 30);
  e.Acrescenta(u"Saldo", TipoCampo::Decimal);
  return e;
}

Registro Pessoa(Texto nome, double saldo = 0) {
  Registro r(3);
  r[1].texto = std::move(nome);
  r[2].decimal = saldo;
  return r;
}

// A database in a fresh folder, opened for writing.
struct Base {
  Pasta pasta;
  fs::path arquivo = pasta / "Agenda.Zvf";
  Estrutura e = Agenda();
  ArquivoRegistros a;

  explicit Base(Estrutura estrutura = Agenda(), Texto senha = u"Senha") : e(std::move(estrutura)) {
    Texto problema;
    EXPECT_EQ(ArquivoRegistros::Declara(arquivo, e, senha, u"01/02/2024 10:00:00", problema),
              ArquivoRegistros::Declaracao::Pronta);
    EXPECT_EQ(a.Abre(arquivo, &e, &senha, false, problema), ArquivoRegistros::Abertura::Aberta) << Utf8(problema);
  }
  std::string Bytes() { return LeTudo(arquivo); }
  void Escreve(int64_t pos, std::string_view bytes) { EscreveEm(arquivo, pos, bytes); }
  int32_t Adiciona(Texto nome, double saldo = 0) { return a.Adiciona(a.Monta(Pessoa(std::move(nome), saldo), -1, nullptr)); }
  Registro Le(int32_t n, bool* vivo = nullptr) {
    Registro r;
    bool v = a.Decodifica(a.LeBruto(n), n, r);
    if (vivo) *vivo = v;
    return r;
  }
};

TEST(FormatoRegistros, WorkedExampleByteForByte) {
  Base b;
  const auto& c = b.e.campos;
  EXPECT_EQ(c[0].posicao, 1);
  EXPECT_EQ(c[0].largura, 9);
  EXPECT_EQ(c[1].posicao, 10);
  EXPECT_EQ(c[1].largura, 35);
  EXPECT_EQ(c[2].posicao, 45);
  EXPECT_EQ(c[2].largura, 13);
  EXPECT_EQ(b.e.tamanhoRegistro, 57);

  std::string h = b.Bytes();
  ASSERT_EQ(h.size(), 20000u);
  EXPECT_EQ(h[0], '0');
  EXPECT_EQ(h.substr(1, 4), std::string("\x02\0\0\0", 4));
  EXPECT_LE(255 - static_cast<unsigned char>(h[5]), 9);
  EXPECT_EQ(h.substr(7, 5), "     ");
  EXPECT_EQ(Valor(h, 1, 11), "0");
  EXPECT_EQ(h.substr(12, 4), std::string("\x07\0\0\0", 4));
  EXPECT_EQ(Valor(h, 12, 25), "Agenda");
  EXPECT_EQ(h.substr(12 + 11, 14), std::string(14, ' '));
  EXPECT_EQ(Valor(h, 37, 12), "57");
  EXPECT_EQ(Valor(h, 49, 30), "01/02/2024 10:00:00");
  EXPECT_EQ(Valor(h, 79, 30), "01/02/2024 10:00:00");
  EXPECT_EQ(Valor(h, 109, 25), "Senha");
  EXPECT_EQ(h.substr(134, 865), std::string(865, ' '));
  const char* campos[][3] = {{"Codigo", "4", "AutoInc"}, {"Nome", "30", "String"}, {"Saldo", "8", "Decimal"}};
  for (size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(Valor(h, 999 + 48 * i, 25), campos[i][0]);
    EXPECT_EQ(Valor(h, 1024 + 48 * i, 11), campos[i][1]);
    EXPECT_EQ(Valor(h, 1035 + 48 * i, 12), campos[i][2]);
  }
  EXPECT_EQ(Valor(h, 1143, 25), "#Fim");
  EXPECT_EQ(h.substr(1152), std::string(20000 - 1152, ' '));

  EXPECT_EQ(b.Adiciona(u"Ana", 10.5), 0);
  EXPECT_EQ(b.Adiciona(u"Bruno", -2.25), 1);
  std::string f = b.Bytes();
  ASSERT_EQ(f.size(), 20113u);
  EXPECT_EQ(f[0], '0');
  EXPECT_EQ(Valor(f, 1, 11), "2");
  EXPECT_EQ(Valor(f, 20056, 9), std::string("\x01\0\0\0", 4));
  EXPECT_EQ(Valor(f, 20056 + 9, 35), "Bruno");
  EXPECT_EQ(f.substr(20056 + 9 + 10, 25), std::string(25, ' '));
  double saldo = 0;
  std::string d = Valor(f, 20056 + 44, 13);
  ASSERT_EQ(d.size(), 8u);
  std::memcpy(&saldo, d.data(), 8);
  EXPECT_EQ(saldo, -2.25);

  b.a.Grava(0, b.a.RegistroApagado());
  f = b.Bytes();
  EXPECT_EQ(f.substr(19999, 4), std::string("\x02\0\0\0", 4));
  EXPECT_EQ(Valor(f, 19999, 6), "#");
  EXPECT_EQ(f.substr(19999 + 6, 51), std::string(51, ' '));
  bool vivo = true;
  Registro r = b.Le(0, &vivo);
  EXPECT_FALSE(vivo);
  EXPECT_EQ(r[1].texto, u"");
  r = b.Le(1, &vivo);
  EXPECT_TRUE(vivo);
  EXPECT_EQ(r[0].inteiro, 1);
  EXPECT_EQ(r[1].texto, u"Bruno");
  EXPECT_EQ(LinhaRegistro(b.e, r), u"\"1        Bruno" + Texto(30, u' ') + u"-2.25        \"");
}

TEST(FormatoRegistros, HeaderSharesItsLastByteWithRecordZero) {
  Base b;
  EXPECT_EQ(b.Bytes()[19999], ' ');
  b.Adiciona(u"Ana");
  // The AutoInc's stored form starts with its length, 5.
  EXPECT_EQ(b.Bytes()[19999], '\x05');
  Texto problema;
  EXPECT_EQ(ArquivoRegistros::Declara(b.arquivo, b.e, u"Senha", u"02/02/2024 11:00:00", problema),
            ArquivoRegistros::Declaracao::Pronta);
  std::string f = b.Bytes();
  EXPECT_EQ(f[19999], '\x05');
  EXPECT_EQ(Valor(f, 49, 30), "01/02/2024 10:00:00");
  EXPECT_EQ(Valor(f, 79, 30), "02/02/2024 11:00:00");
  EXPECT_EQ(b.Le(0)[1].texto, u"Ana");
}

TEST(FormatoRegistros, CountGrowsInsideItsSlotAndLimits) {
  Base b;
  for (int i = 0; i < 9; ++i) b.Adiciona(u"x");
  EXPECT_EQ(b.Bytes().substr(1, 4), std::string("\x02\0\0\0", 4));
  b.Adiciona(u"x");
  std::string f = b.Bytes();
  EXPECT_EQ(f.substr(1, 4), std::string("\x03\0\0\0", 4));
  EXPECT_EQ(Valor(f, 1, 11), "10");
  EXPECT_EQ(f.substr(1 + 7, 4), "    ");

  // A text longer than its field leaves the slot blank, which reads empty.
  std::vector<size_t> longos;
  std::string r = b.a.Monta(Pessoa(Texto(31, u'a')), -1, &longos);
  EXPECT_EQ(longos, std::vector<size_t>{1});
  EXPECT_EQ(r.substr(9, 35), std::string(35, ' '));
  int32_t n = b.a.Adiciona(r);
  EXPECT_EQ(b.Le(n)[1].texto, u"");
  EXPECT_EQ(b.Le(n)[0].inteiro, n);
}

TEST(FormatoRegistros, FirstFieldHoldingTheMarkIsDeleted) {
  Estrutura e;
  e.descritor = u"Notas";
  e.Acrescenta(u"Titulo", TipoCampo::String, 0);  // five bytes: the mark lends the room behind
  e.Acrescenta(u"Texto", TipoCampo::String, 10);
  Base b(e);
  Registro r(2);
  r[0].texto = u"#";
  std::vector<size_t> longos;
  b.a.Adiciona(b.a.Monta(r, -1, &longos));
  EXPECT_EQ(longos.size(), 1u);  // "#" doesn't fit a length of 0
  r[0].texto = u"";
  r[1].texto = u"kept";
  b.a.Adiciona(b.a.Monta(r, -1, nullptr));
  b.a.Grava(0, b.a.RegistroApagado());
  bool vivo = true;
  b.Le(0, &vivo);
  EXPECT_FALSE(vivo);
  EXPECT_EQ(b.Le(1, &vivo)[1].texto, u"kept");
  EXPECT_TRUE(vivo);

  // A program that writes "#" into a first String field deletes the record.
  Estrutura s;
  s.descritor = u"S";
  s.Acrescenta(u"Nome", TipoCampo::String, 5);
  Base d(s);
  Registro um(1);
  um[0].texto = u"#";
  d.a.Adiciona(d.a.Monta(um, -1, nullptr));
  d.Le(0, &vivo);
  EXPECT_FALSE(vivo);
}

TEST(FormatoRegistros, DeclaringChecksOnlyTheRecordSize) {
  Base b;
  b.Adiciona(u"Ana");
  std::string antes = b.Bytes();
  Estrutura outra = Agenda();
  outra.Acrescenta(u"Extra", TipoCampo::Integer);
  Texto problema;
  EXPECT_EQ(ArquivoRegistros::Declara(b.arquivo, outra, u"", u"x", problema),
            ArquivoRegistros::Declaracao::TamanhoDiferente);
  EXPECT_EQ(b.Bytes(), antes);
  ArquivoRegistros a;
  EXPECT_EQ(a.Abre(b.arquivo, &outra, nullptr, false, problema), ArquivoRegistros::Abertura::TamanhoDiferente);
  Texto errada = u"senha";
  EXPECT_EQ(a.Abre(b.arquivo, &b.e, &errada, false, problema), ArquivoRegistros::Abertura::SenhaInvalida);
  EXPECT_FALSE(a.Aberto());
  EXPECT_EQ(a.Abre(b.arquivo.parent_path() / "Nada.Zvf", &b.e, nullptr, false, problema),
            ArquivoRegistros::Abertura::NaoEncontrada);

  // The same size by other fields is taken, and reads the old bytes.
  Estrutura mesma;
  mesma.descritor = u"Agenda";
  mesma.Acrescenta(u"Tudo", TipoCampo::String, 52);
  EXPECT_EQ(ArquivoRegistros::Declara(b.arquivo, mesma, u"", u"x", problema), ArquivoRegistros::Declaracao::Pronta);
}

TEST(FormatoRegistros, StructuresThatCantBeStoredAreRefused) {
  Estrutura e;
  e.descritor = u"Agenda";
  EXPECT_NE(e.Problema(), u"");  // no fields
  e.Acrescenta(u"NomeDeCampoMuitoLongo1", TipoCampo::Integer);
  EXPECT_NE(e.Problema(), u"");
  e = Estrutura{};
  e.descritor = u"Agenda";
  e.Acrescenta(u"Texto", TipoCampo::String, 32763);
  EXPECT_NE(e.Problema(), u"");
  e = Estrutura{};
  e.descritor = u"Agenda";
  e.Acrescenta(u"Texto", TipoCampo::String, 32762);
  EXPECT_EQ(e.Problema(), u"");
}

// ---- Damaged files --------------------------------------------------------

class Danificado : public ::testing::Test {
 protected:
  // Opening must refuse, say why, and leave the bytes as they were.
  void EsperaDano(const char* trecho) {
    std::string antes = b.Bytes();
    ArquivoRegistros a;
    Texto problema;
    EXPECT_EQ(a.Abre(b.arquivo, &b.e, nullptr, false, problema), ArquivoRegistros::Abertura::Danificada);
    EXPECT_NE(Utf8(problema).find(trecho), std::string::npos) << Utf8(problema);
    problema.clear();
    EXPECT_EQ(ArquivoRegistros::Declara(b.arquivo, b.e, u"", u"x", problema), ArquivoRegistros::Declaracao::Danificada);
    EXPECT_EQ(b.Bytes(), antes);
  }
  Base b;
};

TEST_F(Danificado, ShorterThanItsHeader) {
  b.a.Fecha();
  fs::resize_file(b.arquivo, 100);
  EsperaDano("shorter than its header");
}

TEST_F(Danificado, CountBeyondTheFilesLength) {
  b.Adiciona(u"Ana");
  b.a.Fecha();
  std::string t = b.Bytes().substr(0, 20);
  PoeContagem(t, 5);
  b.Escreve(0, t);
  ArquivoRegistros a;
  Texto problema;
  EXPECT_EQ(a.Abre(b.arquivo, &b.e, nullptr, false, problema), ArquivoRegistros::Abertura::Danificada);
  EXPECT_EQ(problema, u"its count says 5 records, but the file holds only 1");
}

TEST_F(Danificado, UnreadableHeaderValues) {
  b.Escreve(37, "\xff\xff\xff\x7f");
  EsperaDano("record size");
}

TEST_F(Danificado, StrangeLockByte) {
  b.Escreve(0, "x");
  EsperaDano("lock byte");
}

TEST_F(Danificado, UnreadableRecordField) {
  b.Adiciona(u"Ana");
  b.Escreve(19999 + 9, std::string("\xc8\0\0\0", 4));
  Registro r;
  try {
    b.a.Decodifica(b.a.LeBruto(0), 0, r);
    FAIL();
  } catch (const FalhaRegistros& f) {
    EXPECT_NE(Utf8(f.descricao).find("the field 'Nome' of its record 0 can't be read"), std::string::npos);
  }
  EXPECT_THROW(b.a.LeBruto(1), FalhaRegistros);
}

// ---- Damaged variants ---------------------------------------------------------

// Bytes from hex text: "00 ff 7f".
std::string Hex(const char* hex) {
  std::string b;
  for (const char* p = hex; *p;) {
    if (*p == ' ') {
      ++p;
      continue;
    }
    b += static_cast<char>(std::stoi(std::string(p, 2), nullptr, 16));
    p += 2;
  }
  return b;
}

// A sound file of four records (57 bytes each from offset 19999: Codigo at
// +0, Nome at +9, Saldo at +44), then one variant's damage: hex bytes at an
// offset, or a new length.
struct Variante {
  const char* nome;
  int64_t posicao;        // where the bytes go, or -1
  const char* hex;
  int64_t comprimento;    // the file's new length, or -1
  const char* problema;   // what the DB block says
  bool abre;              // OpenDB still opens it: only a record is damaged
  int32_t mantidos, marcados;  // what a repair keeps, and of them now deleted
};

constexpr int64_t kR2 = 19999 + 2 * 57;
const Variante kVariantes[] = {
    {"truncated", -1, "", 20050, "its count says 4 records, but the file holds only 0", false, 0, 0},
    {"cut mid-record", -1, "", kR2 + 30, "its count says 4 records, but the file holds only 2", false, 2, 0},
    {"last byte dropped", -1, "", 19999 + 4 * 57 - 1, "the file holds only 3", false, 3, 0},
    {"trailing bytes", 19999 + 4 * 57, "41 42 43", -1, "3 bytes behind its last record", false, 4, 0},
    {"field length 0", kR2 + 9, "00 00 00 00", -1, "the field 'Nome' of its record 2 can't be read", true, 4, 1},
    {"field length huge", kR2 + 9, "ff ff ff 7f", -1, "the field 'Nome' of its record 2", true, 4, 1},
    {"field length past its slot", kR2 + 9, "20 00 00 00", -1, "the field 'Nome' of its record 2", true, 4, 1},
    {"bad key byte", kR2 + 13, "f5", -1, "the field 'Nome' of its record 2", true, 4, 1},
    {"integer too short", kR2, "02 00 00 00", -1, "the field 'Codigo' of its record 2", true, 4, 1},
    {"decimal too short", kR2 + 44, "05 00 00 00", -1, "the field 'Saldo' of its record 2", true, 4, 1},
    {"blanks over a length", kR2 + 44, "20 20 20 20", -1, "the field 'Saldo' of its record 2", true, 4, 1},
    {"zeroed record", kR2, "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00", -1, "the field 'Codigo' of its record 2",
     true, 4, 1},
    {"garbled lock byte", 0, "00", -1, "its lock byte", false, 4, 0},
    {"garbled count", 1, "7a 7a 7a 7a", -1, "its record count can't be read", false, 4, 0},
    {"garbled name", 12, "ff", -1, "its database name can't be read", false, 4, 0},
    {"garbled record size", 37, "ff ff ff 7f", -1, "its record size can't be read", false, 4, 0},
    {"garbled password", 109, "00 00 00 00", -1, "its password can't be read", false, 4, 0},
    {"garbled field type", 1035 + 48, "09 00 00 00", -1, "the type of its field 'Nome' can't be read", false, 4, 0},
};

class Variantes : public ::testing::TestWithParam<Variante> {
 protected:
  void SetUp() override {
    for (const char16_t* n : {u"Ana", u"Bia", u"Caio", u"Davi"}) b.Adiciona(n, 1.5);
    b.a.Fecha();
    const Variante& v = GetParam();
    if (v.posicao >= 0) b.Escreve(v.posicao, Hex(v.hex));
    if (v.comprimento >= 0) fs::resize_file(b.arquivo, uintmax_t(v.comprimento));
    antes = b.Bytes();
  }
  // Runs what may write, expecting it refused, and the bytes kept.
  template <class F>
  void Recusa(const char* o_que, F f) {
    try {
      f();
      ADD_FAILURE() << o_que << " wrote";
    } catch (const FalhaRegistros& falha) {
      EXPECT_TRUE(falha.dano) << o_que << ": " << falha.what();
    }
    EXPECT_EQ(b.Bytes(), antes) << o_que << " changed the file";
  }
  Base b;
  std::string antes;
};

TEST_P(Variantes, AreToldAndKeepTheirBytesThenRepairKeepsWhatReads) {
  const Variante& v = GetParam();
  Texto problema;
  EXPECT_EQ(ArquivoRegistros::Declara(b.arquivo, b.e, u"Senha", u"x", problema),
            ArquivoRegistros::Declaracao::Danificada);
  EXPECT_NE(Utf8(problema).find(v.problema), std::string::npos) << Utf8(problema);
  EXPECT_EQ(b.Bytes(), antes);

  ArquivoRegistros a;
  problema.clear();
  auto r = a.Abre(b.arquivo, &b.e, nullptr, false, problema);
  if (!v.abre) {
    EXPECT_EQ(r, ArquivoRegistros::Abertura::Danificada);
    EXPECT_NE(Utf8(problema).find(v.problema), std::string::npos) << Utf8(problema);
  } else {
    ASSERT_EQ(r, ArquivoRegistros::Abertura::Aberta);
    // Each write checks what it touches, with nothing found before.
    Recusa("UpdateRecord of the damaged record", [&] { a.Grava(2, a.Monta(Pessoa(u"Novo"), 2, nullptr)); });
    Recusa("CompactDB", [&] {
      fs::path t;
      int32_t n;
      a.Compacta(t, n);
    });
    EXPECT_FALSE(fs::exists(b.arquivo.parent_path() / "Temp.Zvf"));
    // Found once, every write of the file is refused.
    a.Abre(b.arquivo, &b.e, nullptr, false, problema);
    Registro valores;
    EXPECT_THROW(a.Decodifica(a.LeBruto(2), 2, valores), FalhaRegistros);
    EXPECT_EQ(Utf8(a.Dano()).find(v.problema) != std::string::npos, true) << Utf8(a.Dano());
    Recusa("AddRecord", [&] { a.Adiciona(a.Monta(Pessoa(u"Novo"), -1, nullptr)); });
    Recusa("UpdateRecord of a sound record", [&] { a.Grava(0, a.Monta(Pessoa(u"Novo"), 0, nullptr)); });
    Recusa("DeleteRecord", [&] { a.Grava(1, a.RegistroApagado()); });
    EXPECT_TRUE(a.Decodifica(a.LeBruto(3), 3, valores));
    EXPECT_EQ(valores[1].texto, u"Davi");
    a.Fecha();
  }

  Reparo rep;
  ASSERT_EQ(ReparaArquivo(b.arquivo, &b.e, rep, problema), ResultadoReparo::Reparado) << Utf8(problema);
  EXPECT_EQ(LeTudo(rep.copia), antes);
  EXPECT_FALSE(rep.relato.empty());
  EXPECT_EQ(rep.mantidos, v.mantidos);
  EXPECT_EQ(rep.marcados, v.marcados);
  ASSERT_EQ(a.Abre(b.arquivo, &b.e, nullptr, true, problema), ArquivoRegistros::Abertura::Aberta) << Utf8(problema);
  EXPECT_EQ(a.Total(), v.mantidos);
  EXPECT_EQ(a.ProcuraDano(a.Total()), u"");
  const char16_t* nomes[] = {u"Ana", u"Bia", u"Caio", u"Davi"};
  for (int32_t n = 0; n < v.mantidos; ++n) {
    Registro valores;
    bool vivo = a.Decodifica(a.LeBruto(n), n, valores);
    EXPECT_EQ(vivo, !(v.marcados && n == 2)) << n;
    if (vivo) {
      EXPECT_EQ(valores[1].texto, nomes[n]);
      EXPECT_EQ(valores[0].inteiro, n);
    }
  }
  // A sound file is left alone.
  a.Fecha();
  std::string mendado = b.Bytes();
  EXPECT_EQ(ReparaArquivo(b.arquivo, nullptr, rep, problema), ResultadoReparo::Sao);
  EXPECT_EQ(b.Bytes(), mendado);
}

INSTANTIATE_TEST_SUITE_P(Danificados, Variantes, ::testing::ValuesIn(kVariantes),
                         [](const ::testing::TestParamInfo<Variante>& i) {
                           std::string n;
                           for (const char* p = i.param.nome; *p; ++p) n += std::isalnum(*p) ? *p : '_';
                           return n;
                         });

TEST(Reparo, AHeaderWithoutItsFieldTableNeedsTheDeclaration) {
  Base b;
  b.Adiciona(u"Ana");
  b.a.Fecha();
  b.Escreve(999, Hex("00 00 00 00"));
  std::string antes = b.Bytes();
  Reparo r;
  Texto problema;
  EXPECT_EQ(ReparaArquivo(b.arquivo, nullptr, r, problema), ResultadoReparo::Impossivel);
  EXPECT_NE(Utf8(problema).find("--declared"), std::string::npos);
  EXPECT_EQ(b.Bytes(), antes);
  EXPECT_EQ(ReparaArquivo(b.arquivo, &b.e, r, problema), ResultadoReparo::Reparado);
  ArquivoRegistros a;
  ASSERT_EQ(a.Abre(b.arquivo, &b.e, nullptr, true, problema), ArquivoRegistros::Abertura::Aberta) << Utf8(problema);
  Registro v;
  EXPECT_TRUE(a.Decodifica(a.LeBruto(0), 0, v));
  EXPECT_EQ(v[1].texto, u"Ana");
  // The password slot was sound and is kept.
  EXPECT_EQ(a.CabecalhoLido().senha, u"Senha");
}

TEST(Reparo, ARunningProgramsLockStopsIt) {
  Base b;
  b.Adiciona(u"Ana");
  b.a.Fecha();
  b.Escreve(19999 + 9, Hex("00 00 00 00"));
  std::string antes = b.Bytes();
  // The lock a program holds while it changes the count.
  int fd = ::open(b.arquivo.c_str(), O_RDWR);
  struct flock fl {};
  fl.l_type = F_WRLCK;
  fl.l_whence = SEEK_SET;
  fl.l_len = kTamanhoTrava;
  ASSERT_EQ(::fcntl(fd, F_OFD_SETLK, &fl), 0);
  Reparo r;
  Texto problema;
  EXPECT_EQ(ReparaArquivo(b.arquivo, nullptr, r, problema), ResultadoReparo::Impossivel);
  EXPECT_NE(Utf8(problema).find("running program"), std::string::npos) << Utf8(problema);
  EXPECT_EQ(b.Bytes(), antes);
  ::close(fd);
  EXPECT_EQ(ReparaArquivo(b.arquivo, nullptr, r, problema), ResultadoReparo::Reparado) << Utf8(problema);
}

// ---- Compaction -------------------------------------------------------------

TEST(Compactacao, RemovesDeletedRecordsAndRenumbersAFirstAutoInc) {
  Base b;
  for (const char16_t* n : {u"Ana", u"Bia", u"Caio", u"Duda"}) b.Adiciona(n);
  b.a.Grava(0, b.a.RegistroApagado());
  b.a.Grava(2, b.a.RegistroApagado());
  fs::path trabalho;
  int32_t total = -1;
  ASSERT_EQ(b.a.Compacta(trabalho, total), ArquivoRegistros::Compactacao::Feita);
  EXPECT_EQ(trabalho, b.arquivo.parent_path() / "Temp.Zvf");
  EXPECT_FALSE(fs::exists(trabalho));
  EXPECT_EQ(total, 2);
  EXPECT_EQ(b.a.Total(), 2);
  EXPECT_EQ(fs::file_size(b.arquivo), 19999u + 2 * 57);
  EXPECT_EQ(b.Le(0)[1].texto, u"Bia");
  EXPECT_EQ(b.Le(0)[0].inteiro, 0);
  EXPECT_EQ(b.Le(1)[1].texto, u"Duda");
  EXPECT_EQ(b.Le(1)[0].inteiro, 1);
  // The header kept everything but the count.
  std::string h = b.Bytes();
  EXPECT_EQ(Valor(h, 109, 25), "Senha");
  EXPECT_EQ(Valor(h, 1143, 25), "#Fim");

  // With nothing deleted, only a first AutoInc changes.
  b.a.Grava(1, b.a.Monta(Pessoa(u"Eva"), 77, nullptr));
  ASSERT_EQ(b.a.Compacta(trabalho, total), ArquivoRegistros::Compactacao::Feita);
  EXPECT_EQ(b.Le(1)[0].inteiro, 1);
  EXPECT_EQ(b.Le(1)[1].texto, u"Eva");

  // Everything deleted: a bare header again.
  b.a.Grava(0, b.a.RegistroApagado());
  b.a.Grava(1, b.a.RegistroApagado());
  ASSERT_EQ(b.a.Compacta(trabalho, total), ArquivoRegistros::Compactacao::Feita);
  EXPECT_EQ(total, 0);
  EXPECT_EQ(fs::file_size(b.arquivo), 20000u);
}

TEST(Compactacao, AnotherAutoIncKeepsItsValues) {
  Estrutura e;
  e.descritor = u"Itens";
  e.Acrescenta(u"Nome", TipoCampo::String, 10);
  e.Acrescenta(u"Codigo", TipoCampo::AutoInc);
  Base b(e);
  for (const char16_t* n : {u"a", u"b", u"c"}) {
    Registro r(2);
    r[0].texto = n;
    b.a.Adiciona(b.a.Monta(r, -1, nullptr));
  }
  b.a.Grava(0, b.a.RegistroApagado());
  fs::path trabalho;
  int32_t total;
  ASSERT_EQ(b.a.Compacta(trabalho, total), ArquivoRegistros::Compactacao::Feita);
  EXPECT_EQ(b.Le(0)[1].inteiro, 1);
  EXPECT_EQ(b.Le(1)[1].inteiro, 2);
}

TEST(Compactacao, AWorkFileInTheFolderStopsIt) {
  Base b;
  b.Adiciona(u"Ana");
  b.a.Grava(0, b.a.RegistroApagado());
  std::ofstream(b.arquivo.parent_path() / "Temp.Zvf") << "someone else's";
  std::string antes = b.Bytes();
  fs::path trabalho;
  int32_t total;
  EXPECT_EQ(b.a.Compacta(trabalho, total), ArquivoRegistros::Compactacao::TrabalhoExiste);
  EXPECT_EQ(b.Bytes(), antes);
  EXPECT_EQ(LeTudo(trabalho), "someone else's");
}

// ---- The lock between processes ---------------------------------------------

// Runs `filho` in a child process; its exit status is 0 when it returns true.
pid_t EmProcesso(const std::function<bool()>& filho) {
  pid_t p = ::fork();
  if (p == 0) ::_exit(filho() ? 0 : 1);
  return p;
}

int Espera(pid_t p) {
  int st = 0;
  ::waitpid(p, &st, 0);
  return st;
}

TEST(Trava, TwoProcessesAddingNeverShareANumber) {
  Base b;
  b.a.Fecha();
  auto adiciona = [&b] {
    ArquivoRegistros a;
    Texto problema;
    if (a.Abre(b.arquivo, &b.e, nullptr, false, problema) != ArquivoRegistros::Abertura::Aberta) return false;
    for (int i = 0; i < 500; ++i) a.Adiciona(a.Monta(Pessoa(u"p" + InteiroParaTexto(getpid())), -1, nullptr));
    return true;
  };
  pid_t p1 = EmProcesso(adiciona), p2 = EmProcesso(adiciona);
  EXPECT_EQ(Espera(p1), 0);
  EXPECT_EQ(Espera(p2), 0);
  Texto problema;
  ASSERT_EQ(b.a.Abre(b.arquivo, &b.e, nullptr, false, problema), ArquivoRegistros::Abertura::Aberta);
  ASSERT_EQ(b.a.Total(), 1000);
  std::set<int32_t> codigos;
  for (int32_t n = 0; n < 1000; ++n) {
    Registro r = b.Le(n);
    EXPECT_EQ(r[0].inteiro, n);
    codigos.insert(r[0].inteiro);
  }
  EXPECT_EQ(codigos.size(), 1000u);
}

// A child that takes the lock as AddRecord does (busy byte and all), tells
// the parent through a pipe, and then either dies or lets go after a while.
pid_t TomaEMorre(const fs::path& arquivo, bool morre) {
  int canal[2];
  EXPECT_EQ(::pipe(canal), 0);
  pid_t p = EmProcesso([&] {
    int fd = ::open(arquivo.c_str(), O_RDWR);
    struct flock fl {};
    fl.l_type = F_WRLCK;
    fl.l_len = kTamanhoTrava;
    if (::fcntl(fd, F_OFD_SETLK, &fl) != 0) return false;
    if (::pwrite(fd, "1", 1, 0) != 1) return false;
    if (::write(canal[1], "x", 1) != 1) return false;
    if (morre) ::raise(SIGKILL);
    ::usleep(200000);
    if (::pwrite(fd, "0", 1, 0) != 1) return false;
    return true;
  });
  char c;
  EXPECT_EQ(::read(canal[0], &c, 1), 1);
  ::close(canal[0]);
  ::close(canal[1]);
  return p;
}

TEST(Trava, ADeadHoldersBusyByteIsCleared) {
  Base b;
  pid_t p = TomaEMorre(b.arquivo, true);
  int st = Espera(p);
  EXPECT_TRUE(WIFSIGNALED(st));
  EXPECT_EQ(b.Bytes()[0], '1');
  EXPECT_EQ(b.Adiciona(u"Ana"), 0);
  EXPECT_EQ(b.Bytes()[0], '0');

  // A busy byte with no holder at all (a program of the past) is also stale.
  b.Escreve(0, "1");
  EXPECT_EQ(b.a.Total(), 1);
  EXPECT_EQ(b.Bytes()[0], '0');
}

TEST(Trava, ALiveHolderIsWaitedFor) {
  Base b;
  int esperas = 0;
  b.a.aoEsperar = [&esperas] {
    ++esperas;
    return true;
  };
  pid_t p = TomaEMorre(b.arquivo, false);
  EXPECT_EQ(b.Adiciona(u"Ana"), 0);
  EXPECT_GT(esperas, 0);
  EXPECT_EQ(Espera(p), 0);
  EXPECT_EQ(b.a.Total(), 1);

  // The waiter may give up.
  p = TomaEMorre(b.arquivo, false);
  b.a.aoEsperar = [] { return false; };
  EXPECT_THROW(b.a.Total(), EsperaInterrompida);
  Espera(p);
}

TEST(Trava, AddingAfterAnotherProgramCompactedUsesTheNewFile) {
  Base b;
  for (const char16_t* n : {u"Ana", u"Bia"}) b.Adiciona(n);
  b.a.Grava(0, b.a.RegistroApagado());
  ArquivoRegistros outro;
  Texto problema;
  ASSERT_EQ(outro.Abre(b.arquivo, &b.e, nullptr, false, problema), ArquivoRegistros::Abertura::Aberta);
  fs::path trabalho;
  int32_t total;
  ASSERT_EQ(outro.Compacta(trabalho, total), ArquivoRegistros::Compactacao::Feita);
  EXPECT_EQ(b.Adiciona(u"Caio"), 1);
  EXPECT_EQ(outro.Total(), 2);
}

// ---- Order list -------------------------------------------------------------

TEST(Ordem, TiraAcentosMapsItsPairsAndCutsAt131) {
  EXPECT_EQ(TiraAcentos(u"ÁÀÃáàã ÉÊéê Íí ÓÕÔóõô Úú Çç"), u"AAAaaa EEee Ii OOOooo Uu Cc");
  EXPECT_EQ(TiraAcentos(u"Âñü"), u"Âñü");
  EXPECT_EQ(TiraAcentos(Texto(200, u'x')).size(), 131u);
}

// A one-field order of these names; returns the list.
ListaOrdem OrdemDeNomes(const Estrutura& e, const std::vector<Texto>& nomes, std::vector<int> campos = {1}) {
  std::vector<std::pair<Texto, int32_t>> chaves;
  for (size_t i = 0; i < nomes.size(); ++i) {
    Registro r = Pessoa(nomes[i]);
    r[0].inteiro = int32_t(i);
    chaves.emplace_back(ChaveIndice(e, &r, campos, int32_t(i)), int32_t(i));
  }
  ListaOrdem l;
  l.Monta(std::move(chaves));
  return l;
}

int32_t Acha(const ListaOrdem& l, const Estrutura& e, std::vector<Texto> chave, ModoBusca m,
             std::vector<int> campos = {1}) {
  Texto k;
  EXPECT_TRUE(ChaveBusca(e, campos, chave, k));
  return l.Busca(k, m);
}

TEST(Ordem, IndexKeysStartOnTheLinesQuote) {
  Estrutura e = Agenda();
  Registro r = Pessoa(u"Ana", 1.5);
  r[0].inteiro = 12;
  EXPECT_EQ(ChaveIndice(e, &r, {1}, 7), u" Ana" + Texto(31, u' ') + u"000007");
  EXPECT_EQ(ChaveIndice(e, &r, {0, 2}, 7), u"\"12      " + Texto(u" 1.5") + Texto(9, u' ') + u"000007");
  EXPECT_EQ(ChaveIndice(e, nullptr, {1}, 42), u"000042");
}

TEST(Ordem, EmptyListFindsNothingInAnyMode) {
  Estrutura e = Agenda();
  ListaOrdem l;
  for (ModoBusca m : {ModoBusca::Simples, ModoBusca::Primeiro, ModoBusca::Ultimo, ModoBusca::Proximo})
    EXPECT_EQ(Acha(l, e, {u"Ana"}, m), -1);
}

TEST(Ordem, SearchModesAccentsAndCase) {
  Estrutura e = Agenda();
  // Sorted: Ana(1) Ana(4) ana(6) Bruno Carlos José
  ListaOrdem l = OrdemDeNomes(e, {u"Carlos", u"Ana", u"José", u"Bruno", u"Ana", u"", u"ana"});
  ASSERT_EQ(l.Tamanho(), 7);
  EXPECT_EQ(l.RegistroEm(0), 5);  // the empty name sorts first
  EXPECT_EQ(l.RegistroEm(6), 2);
  EXPECT_EQ(Acha(l, e, {u"ANA"}, ModoBusca::Primeiro), 1);
  EXPECT_EQ(Acha(l, e, {u"ANA"}, ModoBusca::Ultimo), 3);
  int32_t simples = Acha(l, e, {u"Ana"}, ModoBusca::Simples);
  EXPECT_GE(simples, 1);
  EXPECT_LE(simples, 3);
  EXPECT_EQ(Acha(l, e, {u"JOSE"}, ModoBusca::Simples), 6);
  EXPECT_EQ(Acha(l, e, {u"josé"}, ModoBusca::Primeiro), 6);
  EXPECT_EQ(Acha(l, e, {u"Beto"}, ModoBusca::Simples), -1);
  EXPECT_EQ(Acha(l, e, {u"Beto"}, ModoBusca::Proximo), 4);
  EXPECT_EQ(Acha(l, e, {u"Zeca"}, ModoBusca::Proximo), 6);
  EXPECT_EQ(Acha(l, e, {u"Zeca"}, ModoBusca::Ultimo), -1);
  EXPECT_EQ(l.RegistroEm(7), -1);
  Texto k;
  EXPECT_FALSE(ChaveBusca(e, {1}, {u"a", u"b"}, k));
}

TEST(Ordem, NumbersSortAsText) {
  Estrutura e;
  e.descritor = u"N";
  e.Acrescenta(u"Valor", TipoCampo::Integer);
  std::vector<std::pair<Texto, int32_t>> chaves;
  int32_t valores[] = {9, 10, 100, -5};
  for (int32_t i = 0; i < 4; ++i) {
    Registro r(1);
    r[0].inteiro = valores[i];
    chaves.emplace_back(ChaveIndice(e, &r, {0}, i), i);
  }
  ListaOrdem l;
  l.Monta(chaves);
  EXPECT_EQ(l.RegistroEm(0), 3);  // "-5"
  EXPECT_EQ(l.RegistroEm(1), 1);  // "10"
  EXPECT_EQ(l.RegistroEm(2), 2);  // "100"
  EXPECT_EQ(l.RegistroEm(3), 0);  // "9"
  EXPECT_EQ(Acha(l, e, {u"100"}, ModoBusca::Simples, {0}), 2);
}

TEST(Ordem, FewerKeysThanIndexFieldsMatchByTheFirst) {
  Estrutura e;
  e.descritor = u"P";
  e.Acrescenta(u"Nome", TipoCampo::String, 10);
  e.Acrescenta(u"Cidade", TipoCampo::String, 10);
  std::vector<std::pair<Texto, int32_t>> chaves;
  const char16_t* dados[][2] = {{u"Ana", u"Rio"}, {u"Ana", u"Belém"}, {u"Bia", u"Rio"}};
  for (int32_t i = 0; i < 3; ++i) {
    Registro r(2);
    r[0].texto = dados[i][0];
    r[1].texto = dados[i][1];
    chaves.emplace_back(ChaveIndice(e, &r, {0, 1}, i), i);
  }
  ListaOrdem l;
  l.Monta(chaves);
  EXPECT_EQ(l.RegistroEm(0), 1);
  EXPECT_EQ(Acha(l, e, {u"ana", u"belem"}, ModoBusca::Simples, {0, 1}), 0);
  EXPECT_EQ(Acha(l, e, {u"Ana", u"Rio"}, ModoBusca::Simples, {0, 1}), 1);
  EXPECT_EQ(Acha(l, e, {u"Ana"}, ModoBusca::Ultimo, {0, 1}), 1);
  EXPECT_EQ(Acha(l, e, {u"Bia"}, ModoBusca::Primeiro, {0, 1}), 2);
}

TEST(Ordem, InsertAndRemoveKeepTheOrderAtScale) {
  Estrutura e = Agenda();
  std::mt19937 g(7);
  ListaOrdem l;
  std::vector<std::pair<Texto, int32_t>> ref;
  for (int32_t i = 0; i < 6000; ++i) {
    Texto nome = u"n" + InteiroParaTexto(g() % 100000);
    Registro r = Pessoa(nome);
    l.Insere(ChaveIndice(e, &r, {1}, i), i);
    ref.emplace_back(Maiusculas(nome), i);
  }
  for (int k = 0; k < 2000; ++k) {
    int32_t i = int32_t(g() % uint32_t(l.Tamanho()));
    int32_t reg = l.RegistroEm(i);
    l.RemoveEm(i);
    ref.erase(std::find_if(ref.begin(), ref.end(), [reg](auto& p) { return p.second == reg; }));
  }
  std::sort(ref.begin(), ref.end());
  ASSERT_EQ(l.Tamanho(), int32_t(ref.size()));
  for (int32_t i = 0; i < l.Tamanho(); ++i) ASSERT_EQ(l.RegistroEm(i), ref[size_t(i)].second) << i;
  for (int k = 0; k < 200; ++k) {
    const auto& [nome, reg] = ref[g() % ref.size()];
    int32_t p = Acha(l, e, {nome}, ModoBusca::Primeiro);
    ASSERT_GE(p, 0);
    EXPECT_EQ(Maiusculas(nome), ref[size_t(p)].first);
  }
}

TEST(Ordem, BuiltFromTheFile) {
  Base b;
  for (const char16_t* n : {u"Caio", u"Ana", u"Bia"}) b.Adiciona(n);
  b.a.Grava(2, b.a.RegistroApagado());
  ListaOrdem l;
  ConstroiOrdem(b.a, {1}, l);
  ASSERT_EQ(l.Tamanho(), 3);
  EXPECT_EQ(l.RegistroEm(0), 2);  // the deleted record's bare number sorts first
  EXPECT_EQ(l.RegistroEm(1), 1);
  EXPECT_EQ(l.RegistroEm(2), 0);
}

}  // namespace
}  // namespace zv
