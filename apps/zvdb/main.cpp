// zvdb: looks into record files (.Zvf) without running a program, through
// the same engine the language uses. Only `repair` writes, and then through
// a new file and a rename, keeping the old one.
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "data/registros_arquivo.h"

namespace fs = std::filesystem;
using namespace zv;

namespace {

const char* kAjuda = R"AJUDA(Usage: zvdb COMMAND FILE.Zvf [options]

Looks into a Zarvolt record file. Only repair writes to it.

Commands:
  info FILE     the database's name, stamps, fields, record size, number of
                records and of deleted records, and the state of its lock
  dump FILE     every record, one per line, tab-separated with a header line;
                deleted records show as "(deleted)"
      --json    one JSON object per line instead:
                {"record":N,"deleted":false,"fields":{"Name":value,...}}
      --csv     comma-separated, with a header line; deleted records are left
                out
  check FILE    reads the header and every record and reports what can't be
                trusted, and bytes behind the last counted record
      --declared DECL
                also compares the header with a DB block: what differs is
                reported and the exit status is 1
  repair FILE   keeps every record that reads whole, in its place; a damaged
                record stays as a deleted one, so the others keep their
                numbers; drops what lies behind the last whole record and
                rebuilds header values that can't be read. The mended file
                replaces the old one through a new file and a rename; the old
                one is kept as FILE.damaged. Tells what was dropped.
      --declared DECL
                the fields to use when the header's own can't be read
  --help        this text

DECL is a DB block: either a file that holds one (a program, .zvc or text;
the block named like FILE is taken, else the first), or its lines in one
argument separated by ";", as in
  --declared "DB Agenda, dados; Codigo, AutoInc; Nome, String, 30; EndDB"
(the DB and EndDB lines may be left out). Arguments must be written out as
literals: a variable's value can't be known here.

Exit status: 0 when the file is sound (check) or the command ran, 1 when the
file is damaged or differs from DECL, or can't be repaired, 2 for a usage
error or a file that can't be opened.
)AJUDA";

int Uso(const std::string& msg) {
  std::fprintf(stderr, "zvdb: %s\nTry 'zvdb --help'.\n", msg.c_str());
  return 2;
}

void Imprime(const std::string& s) { std::fwrite(s.data(), 1, s.size(), stdout); }

std::string Json(const Texto& t) {
  std::string s = "\"";
  for (char c : Utf8(t)) {
    auto u = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      s += '\\';
      s += c;
    } else if (u < 0x20) {
      char b[8];
      std::snprintf(b, sizeof b, "\\u%04x", u);
      s += b;
    } else {
      s += c;
    }
  }
  return s + "\"";
}

std::string Csv(const Texto& t) {
  std::string s = Utf8(t);
  if (s.find_first_of(",\"\r\n") == std::string::npos) return s;
  std::string q = "\"";
  for (char c : s) q += (c == '"') ? std::string("\"\"") : std::string(1, c);
  return q + "\"";
}

std::string NumeroJson(const Campo& c, const ValorCampo& v) {
  if (c.tipo == TipoCampo::Decimal && !std::isfinite(v.decimal)) return "null";
  return Utf8(TextoValor(c, v));
}

void Sugere(const fs::path& p) {
  std::printf("%s: 'zvdb repair %s' keeps every record that reads and tells what it drops\n", p.c_str(), p.c_str());
}

// Opens for reading; prints the reason and gives the exit status on failure.
int Abre(ArquivoRegistros& a, const fs::path& p) {
  Texto problema;
  ArquivoRegistros::Abertura r;
  try {
    // A file whose length is wrong is still looked into: what is there reads.
    r = a.Abre(p, nullptr, nullptr, true, problema, true);
  } catch (const FalhaRegistros& f) {
    std::fprintf(stderr, "zvdb: %s\n", Utf8(f.descricao).c_str());
    return 2;
  }
  switch (r) {
    case ArquivoRegistros::Abertura::Aberta: return 0;
    case ArquivoRegistros::Abertura::NaoEncontrada:
      std::fprintf(stderr, "zvdb: %s: no such file\n", p.c_str());
      return 2;
    default:
      std::printf("%s: damaged: %s\n", p.c_str(), Utf8(problema).c_str());
      Sugere(p);
      return 1;
  }
}

// Walks the records in batches: `cada(numero, valores, vivo)`, or `dano`
// with the description of a record that can't be read.
template <class Cada, class Dano>
void PercorreRegistros(ArquivoRegistros& a, int32_t total, Cada cada, Dano dano) {
  // A file cut short has said so at opening: the records it has are read.
  if (!a.Dano().empty()) total = std::min(total, a.RegistrosNoComprimento());
  const size_t tam = size_t(a.estrutura().tamanhoRegistro);
  const int32_t porVez = int32_t(std::max<size_t>(1, (1 << 20) / tam));
  Registro r;
  for (int32_t n = 0; n < total; n += porVez) {
    int32_t k = std::min(porVez, total - n);
    std::string bloco;
    try {
      bloco = a.LeBruto(n, k);
    } catch (const FalhaRegistros& f) {
      // Some of the batch lies beyond the end: read those that are there.
      for (int32_t i = n; i < n + k; ++i) {
        try {
          std::string um = a.LeBruto(i);
          bool vivo = a.Decodifica(um, i, r);
          cada(i, r, vivo);
        } catch (const FalhaRegistros& g) {
          dano(i, g.dano ? g.problema : g.descricao);
        }
      }
      continue;
    }
    for (int32_t i = 0; i < k; ++i) {
      std::string_view reg(bloco.data() + size_t(i) * tam, tam);
      try {
        bool vivo = a.Decodifica(reg, n + i, r);
        cada(n + i, r, vivo);
      } catch (const FalhaRegistros& g) {
        dano(n + i, g.dano ? g.problema : g.descricao);
      }
    }
  }
}

// ---- Declarations ------------------------------------------------------------

// What a DB block says: the name (empty when it wasn't given), the password
// when it is a quoted literal, and the fields.
struct Declarado {
  Texto nome;
  bool temSenha = false;
  Texto senha;
  Estrutura estrutura;
};

// A line's arguments split at commas outside double quotes, trimmed.
std::vector<Texto> Argumentos(TextoV linha) {
  std::vector<Texto> a(1);
  bool aspas = false;
  for (char16_t c : linha) {
    if (c == u'"') aspas = !aspas;
    if (c == u',' && !aspas) a.emplace_back();
    else a.back() += c;
  }
  for (Texto& t : a) t = Apara(t);
  return a;
}

// Whether bytes are well-formed UTF-8 (else they are taken as Windows-1252).
bool TextoValido(std::string_view s) {
  for (size_t i = 0; i < s.size();) {
    auto c = static_cast<unsigned char>(s[i]);
    size_t n = c < 0x80 ? 0 : (c >> 5) == 6 ? 1 : (c >> 4) == 14 ? 2 : (c >> 3) == 30 ? 3 : 9;
    if (n == 9 || i + n >= s.size() + (n == 0)) return false;
    for (size_t k = 1; k <= n; ++k)
      if ((static_cast<unsigned char>(s[i + k]) >> 6) != 2) return false;
    i += n + 1;
  }
  return true;
}

bool Literal(const Texto& t) { return t.size() >= 2 && t.front() == u'"' && t.back() == u'"'; }
Texto SemAspas(const Texto& t) { return Literal(t) ? t.substr(1, t.size() - 2) : t; }

// The lines of the block for `arquivo` in a text: the DB block named like the
// file, else the first; a text with no DB line is the field lines alone.
std::vector<Texto> LinhasDoBloco(const std::vector<Texto>& linhas, const fs::path& arquivo) {
  const Texto alvo = Maiusculas(U(arquivo.stem().string()));
  std::vector<Texto> primeiro, achado;
  for (size_t i = 0; i < linhas.size(); ++i) {
    Texto m = Maiusculas(Apara(linhas[i]));
    if (!(ComecaCom(m, u"DB ") || m == u"DB")) continue;
    std::vector<Texto> bloco;
    for (size_t j = i; j < linhas.size(); ++j) {
      Texto l = Apara(linhas[j]);
      if (ComecaCom(Maiusculas(l), u"ENDDB")) break;
      bloco.push_back(l);
    }
    Texto nome = Maiusculas(SemAspas(Argumentos(Apara(bloco[0]).substr(2))[0]));
    if (nome == alvo) return bloco;
    if (primeiro.empty()) primeiro = bloco;
  }
  if (!primeiro.empty()) return primeiro;
  for (const Texto& l : linhas)
    if (!Apara(l).empty() && !ComecaCom(Maiusculas(Apara(l)), u"ENDDB")) achado.push_back(Apara(l));
  return achado;
}

// Reads DECL; false with the reason when it can't be used.
bool LeDeclarado(const std::string& decl, const fs::path& arquivo, Declarado& d, std::string& erro) {
  std::string texto = decl;
  std::error_code ec;
  if (fs::is_regular_file(decl, ec)) {
    std::ifstream f(decl, std::ios::binary);
    texto.assign(std::istreambuf_iterator<char>(f), {});
  }
  // Programs may be Windows-1252, as the environment writes them.
  Texto t = TextoValido(texto) ? U(texto) : DeCp1252(texto);
  std::vector<Texto> linhas(1);
  for (char16_t c : t) {
    if (c == u'\r') continue;
    if (c == u'\n' || c == u';') linhas.emplace_back();
    else linhas.back() += c;
  }
  for (const Texto& l : LinhasDoBloco(linhas, arquivo)) {
    if (ComecaCom(Maiusculas(l), u"'") || ComecaCom(l, u"#")) continue;
    if (ComecaCom(Maiusculas(l), u"DB ")) {
      auto a = Argumentos(l.substr(3));
      d.nome = SemAspas(a[0]);
      if (a.size() > 2 && Literal(a[2])) {
        d.temSenha = true;
        d.senha = SemAspas(a[2]);
      }
      continue;
    }
    auto a = Argumentos(l);
    TipoCampo tipo;
    Texto palavra = a.size() > 1 ? SemAspas(a[1]) : Texto();
    if (!LeTipoCampo(palavra, tipo)) {
      erro = "the field line '" + Utf8(l) + "' has no type: String, AutoInc, Integer or Decimal";
      return false;
    }
    int32_t comprimento = 0;
    if (tipo == TipoCampo::String) {
      std::string n = a.size() > 2 ? Utf8(a[2]) : "";
      if (n.empty() || n.size() > 5 || n.find_first_not_of("0123456789") != std::string::npos) {
        erro = "the String field in '" + Utf8(l) + "' needs its length written as a number";
        return false;
      }
      comprimento = std::stoi(n);
    }
    d.estrutura.Acrescenta(SemAspas(a[0]), tipo, comprimento);
  }
  if (d.estrutura.campos.empty()) {
    erro = "the declaration holds no field lines";
    return false;
  }
  d.estrutura.descritor = d.nome.empty() ? U(arquivo.stem().string()) : d.nome;
  return true;
}

Texto DescreveCampo(const Campo& c) {
  Texto t = c.nome + u", " + PalavraTipo(c.tipo);
  if (c.tipo == TipoCampo::String) t += u", " + InteiroParaTexto(c.comprimento);
  return t;
}

// What differs between the header and the declaration, a line each.
std::vector<std::string> Diferencas(const Cabecalho& c, const Declarado& d) {
  std::vector<std::string> r;
  const Estrutura& h = c.estrutura;
  const Estrutura& e = d.estrutura;
  if (!d.nome.empty() && Maiusculas(d.nome) != Maiusculas(h.descritor))
    r.push_back("the header names the database '" + Utf8(h.descritor) + "', the DB block '" + Utf8(d.nome) + "'");
  if (d.temSenha && d.senha != c.senha) r.push_back("the header's password is not the DB block's");
  size_t n = std::max(h.campos.size(), e.campos.size());
  for (size_t i = 0; i < n; ++i) {
    std::string q = "field " + std::to_string(i + 1) + ": ";
    if (i >= h.campos.size())
      r.push_back(q + "the header has none, the DB block declares '" + Utf8(DescreveCampo(e.campos[i])) + "'");
    else if (i >= e.campos.size())
      r.push_back(q + "the header has '" + Utf8(DescreveCampo(h.campos[i])) + "', the DB block declares none");
    else if (Maiusculas(DescreveCampo(h.campos[i])) != Maiusculas(DescreveCampo(e.campos[i])))
      r.push_back(q + "the header has '" + Utf8(DescreveCampo(h.campos[i])) + "', the DB block declares '" +
                  Utf8(DescreveCampo(e.campos[i])) + "'");
  }
  if (h.tamanhoRegistro != e.tamanhoRegistro)
    r.push_back("the header's record size is " + std::to_string(h.tamanhoRegistro) +
                " bytes, the DB block's fields make " + std::to_string(e.tamanhoRegistro) +
                ": the DB block refuses the file");
  else if (!r.empty() && h.campos.size() + e.campos.size() > 0)
    r.push_back("the record sizes agree (" + std::to_string(h.tamanhoRegistro) +
                " bytes): the DB block takes the file and reads its bytes through its own fields");
  return r;
}

int Info(const fs::path& p) {
  ArquivoRegistros a;
  if (int r = Abre(a, p)) return r;
  const Cabecalho& c = a.CabecalhoLido();
  const Estrutura& e = a.estrutura();
  int32_t total = a.Total(), apagados = 0, danificados = 0;
  PercorreRegistros(
      a, total, [&](int32_t, const Registro&, bool vivo) { apagados += !vivo; },
      [&](int32_t, const Texto&) { ++danificados; });
  std::printf("File:          %s\n", p.c_str());
  std::printf("Database:      %s\n", Utf8(e.descritor).c_str());
  std::printf("Created:       %s\n", Utf8(c.criacao).c_str());
  std::printf("Last declared: %s\n", Utf8(c.declaracao).c_str());
  std::printf("Password:      %s\n", c.senha.empty() ? "none" : "set");
  std::string trava = "0 (free)";
  if (a.TravaComOutro())
    trava = "held by a running program";
  else if (c.trava == kOcupado)
    trava = "1, left by a program that stopped (cleared at the next use)";
  std::printf("Lock:          %s\n", trava.c_str());
  std::printf("Record size:   %d bytes\n", e.tamanhoRegistro);
  std::printf("Records:       %d (%d deleted", total, apagados);
  if (danificados) std::printf(", %d damaged", danificados);
  std::printf(")\n");
  if (!a.Dano().empty()) std::printf("Damaged:       %s\n", Utf8(a.Dano()).c_str());
  std::printf("Fields:        %zu\n", e.campos.size());
  std::printf("  %-4s %-20s %-8s %7s %9s %6s\n", "#", "Name", "Type", "Length", "Position", "Width");
  for (size_t i = 0; i < e.campos.size(); ++i) {
    const Campo& f = e.campos[i];
    std::printf("  %-4zu %-20s %-8s %7d %9d %6d\n", i + 1, Utf8(f.nome).c_str(), Utf8(PalavraTipo(f.tipo)).c_str(),
                f.comprimento, f.posicao, f.largura);
  }
  return danificados || !a.Dano().empty() ? 1 : 0;
}

enum class Formato { Texto, Json, Csv };

int Dump(const fs::path& p, Formato formato) {
  ArquivoRegistros a;
  if (int r = Abre(a, p)) return r;
  const Estrutura& e = a.estrutura();
  int32_t total = a.Total();
  bool dano = !a.Dano().empty();
  if (dano) std::fprintf(stderr, "zvdb: %s\n", Utf8(MensagemDano(U(p.string()), a.Dano())).c_str());
  if (formato != Formato::Json) {
    std::string h = formato == Formato::Csv ? "record" : "#";
    for (const Campo& c : e.campos) h += (formato == Formato::Csv ? "," + Csv(c.nome) : "\t" + Utf8(c.nome));
    Imprime(h + "\n");
  }
  PercorreRegistros(
      a, total,
      [&](int32_t n, const Registro& r, bool vivo) {
        std::string s = std::to_string(n);
        if (formato == Formato::Json) {
          s = "{\"record\":" + s + ",\"deleted\":" + (vivo ? "false" : "true");
          if (vivo) {
            s += ",\"fields\":{";
            for (size_t i = 0; i < e.campos.size(); ++i) {
              const Campo& c = e.campos[i];
              if (i) s += ',';
              s += Json(c.nome) + ":" + (c.tipo == TipoCampo::String ? Json(r[i].texto) : NumeroJson(c, r[i]));
            }
            s += "}";
          }
          s += "}";
        } else if (!vivo) {
          if (formato == Formato::Csv) return;
          s += "\t(deleted)";
        } else {
          for (size_t i = 0; i < e.campos.size(); ++i) {
            Texto v = TextoValor(e.campos[i], r[i]);
            s += formato == Formato::Csv ? "," + Csv(v) : "\t" + Utf8(v);
          }
        }
        Imprime(s + "\n");
      },
      [&](int32_t, const Texto& d) {
        dano = true;
        std::fprintf(stderr, "zvdb: %s\n", Utf8(d).c_str());
      });
  return dano ? 1 : 0;
}

int Check(const fs::path& p, const Declarado* declarado) {
  ArquivoRegistros a;
  if (int r = Abre(a, p)) return r;
  const Estrutura& e = a.estrutura();
  int32_t total = a.Total(), apagados = 0;
  std::vector<std::string> danos, notas;
  if (!a.Dano().empty()) danos.push_back(Utf8(a.Dano()));
  PercorreRegistros(
      a, total, [&](int32_t, const Registro&, bool vivo) { apagados += !vivo; },
      [&](int32_t, const Texto& d) { danos.push_back(Utf8(d)); });
  int64_t usado = total == 0 ? kTamanhoCabecalho : kInicioRegistros + int64_t(total) * e.tamanhoRegistro;
  int64_t comprimento = a.Comprimento();
  if (comprimento > usado && (comprimento - usado) % e.tamanhoRegistro == 0)
    notas.push_back(std::to_string(comprimento - usado) + " bytes (" +
                    std::to_string((comprimento - usado) / e.tamanhoRegistro) +
                    " whole records) lie behind the last counted record; the next AddRecord writes over them");
  const Cabecalho& c = a.CabecalhoLido();
  if (Maiusculas(c.estrutura.descritor) != Maiusculas(U(p.stem().string())))
    notas.push_back("the header names the database '" + Utf8(c.estrutura.descritor) +
                    "', but the file is named " + p.filename().string());
  std::vector<std::string> diferencas;
  if (declarado) diferencas = Diferencas(c, *declarado);
  if (a.CabecalhoLido().trava == kOcupado && !a.TravaComOutro())
    notas.push_back("the lock byte is busy, left by a program that stopped; it is cleared at the next use");
  std::error_code ec;
  if (fs::exists(p.parent_path() / std::string(kArquivoTrabalho), ec))
    notas.push_back("the folder holds a work file Temp.Zvf: a compaction is running or was interrupted, and "
                    "CompactDB refuses to run until it is removed");
  for (const auto& n : notas) std::printf("%s: note: %s\n", p.c_str(), n.c_str());
  for (const auto& d : danos) std::printf("%s: damaged: %s\n", p.c_str(), d.c_str());
  if (!danos.empty()) Sugere(p);
  for (const auto& d : diferencas) std::printf("%s: differs: %s\n", p.c_str(), d.c_str());
  if (!danos.empty() || !diferencas.empty()) return 1;
  std::printf("%s: sound (%d records, %d deleted)\n", p.c_str(), total, apagados);
  return 0;
}

int Repair(const fs::path& p, const Declarado* declarado) {
  Reparo r;
  Texto problema;
  ResultadoReparo res = ReparaArquivo(p, declarado ? &declarado->estrutura : nullptr, r, problema);
  for (const Texto& l : r.relato) std::printf("%s: %s\n", p.c_str(), Utf8(l).c_str());
  switch (res) {
    case ResultadoReparo::Sao:
      std::printf("%s: sound; nothing to repair\n", p.c_str());
      return 0;
    case ResultadoReparo::Reparado:
      std::printf("%s: repaired: %d records kept", p.c_str(), r.mantidos);
      if (r.marcados) std::printf(", %d of them damaged and now deleted", r.marcados);
      std::printf("; the file as it was is kept as %s\n", r.copia.c_str());
      return 0;
    case ResultadoReparo::Impossivel: break;
  }
  std::printf("%s: can't be repaired: %s\n", p.c_str(), Utf8(problema).c_str());
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> args(argv + 1, argv + argc);
  for (const auto& a : args)
    if (a == "--help" || a == "-h") {
      std::fputs(kAjuda, stdout);
      return 0;
    }
  if (args.size() < 2) return Uso("a command and a file are needed");
  const std::string& cmd = args[0];
  fs::path arquivo = args[1];
  Formato formato = Formato::Texto;
  Declarado declarado;
  bool comDeclarado = false;
  for (size_t i = 2; i < args.size(); ++i) {
    if (cmd == "dump" && args[i] == "--json") formato = Formato::Json;
    else if (cmd == "dump" && args[i] == "--csv") formato = Formato::Csv;
    else if ((cmd == "check" || cmd == "repair") && args[i] == "--declared" && i + 1 < args.size()) {
      std::string erro;
      if (!LeDeclarado(args[++i], arquivo, declarado, erro)) return Uso("--declared: " + erro);
      comDeclarado = true;
    } else {
      return Uso("unknown option '" + args[i] + "'");
    }
  }
  try {
    if (cmd == "info") return Info(arquivo);
    if (cmd == "dump") return Dump(arquivo, formato);
    if (cmd == "check") return Check(arquivo, comDeclarado ? &declarado : nullptr);
    if (cmd == "repair") return Repair(arquivo, comDeclarado ? &declarado : nullptr);
  } catch (const FalhaRegistros& f) {
    std::printf("%s: damaged: %s\n", arquivo.c_str(), Utf8(f.descricao).c_str());
    return 1;
  }
  return Uso("unknown command '" + cmd + "'");
}
