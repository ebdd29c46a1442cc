// zvdb: looks into record files (.Zvf) without running a program, through
// the same engine the language uses. It never writes to the file.
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "data/registros_arquivo.h"

namespace fs = std::filesystem;
using namespace zv;

namespace {

const char* kAjuda = R"AJUDA(Usage: zvdb COMMAND FILE.Zvf [options]

Looks into a Zarvolt record file. The file is only read.

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
                trusted
  --help        this text

Exit status: 0 when the file is sound (check) or the command ran, 1 when the
file is damaged, 2 for a usage error or a file that can't be opened.
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

// Opens for reading; prints the reason and gives the exit status on failure.
int Abre(ArquivoRegistros& a, const fs::path& p) {
  Texto problema;
  ArquivoRegistros::Abertura r;
  try {
    r = a.Abre(p, nullptr, nullptr, true, problema);
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
      return 1;
  }
}

// Walks the records in batches: `cada(numero, valores, vivo)`, or `dano`
// with the description of a record that can't be read.
template <class Cada, class Dano>
void PercorreRegistros(ArquivoRegistros& a, int32_t total, Cada cada, Dano dano) {
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
          dano(i, g.descricao);
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
        dano(n + i, g.descricao);
      }
    }
  }
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
  std::printf("Fields:        %zu\n", e.campos.size());
  std::printf("  %-4s %-20s %-8s %7s %9s %6s\n", "#", "Name", "Type", "Length", "Position", "Width");
  for (size_t i = 0; i < e.campos.size(); ++i) {
    const Campo& f = e.campos[i];
    std::printf("  %-4zu %-20s %-8s %7d %9d %6d\n", i + 1, Utf8(f.nome).c_str(), Utf8(PalavraTipo(f.tipo)).c_str(),
                f.comprimento, f.posicao, f.largura);
  }
  return danificados ? 1 : 0;
}

enum class Formato { Texto, Json, Csv };

int Dump(const fs::path& p, Formato formato) {
  ArquivoRegistros a;
  if (int r = Abre(a, p)) return r;
  const Estrutura& e = a.estrutura();
  int32_t total = a.Total();
  bool dano = false;
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

int Check(const fs::path& p) {
  ArquivoRegistros a;
  if (int r = Abre(a, p)) return r;
  const Estrutura& e = a.estrutura();
  int32_t total = a.Total(), apagados = 0;
  std::vector<std::string> danos, notas;
  PercorreRegistros(
      a, total, [&](int32_t, const Registro&, bool vivo) { apagados += !vivo; },
      [&](int32_t, const Texto& d) { danos.push_back(Utf8(d)); });
  int64_t usado = kInicioRegistros + int64_t(total) * e.tamanhoRegistro;
  int64_t comprimento = a.Comprimento();
  if (total > 0 && comprimento > usado)
    notas.push_back(std::to_string(comprimento - usado) + " bytes lie behind the last counted record");
  if (a.CabecalhoLido().trava == kOcupado && !a.TravaComOutro())
    notas.push_back("the lock byte is busy, left by a program that stopped; it is cleared at the next use");
  std::error_code ec;
  if (fs::exists(p.parent_path() / std::string(kArquivoTrabalho), ec))
    notas.push_back("the folder holds a work file Temp.Zvf: a compaction is running or was interrupted, and "
                    "CompactDB refuses to run until it is removed");
  for (const auto& n : notas) std::printf("%s: note: %s\n", p.c_str(), n.c_str());
  for (const auto& d : danos) std::printf("%s: damaged: %s\n", p.c_str(), d.c_str());
  if (!danos.empty()) return 1;
  std::printf("%s: sound (%d records, %d deleted)\n", p.c_str(), total, apagados);
  return 0;
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
  for (size_t i = 2; i < args.size(); ++i) {
    if (cmd == "dump" && args[i] == "--json") formato = Formato::Json;
    else if (cmd == "dump" && args[i] == "--csv") formato = Formato::Csv;
    else return Uso("unknown option '" + args[i] + "'");
  }
  try {
    if (cmd == "info") return Info(arquivo);
    if (cmd == "dump") return Dump(arquivo, formato);
    if (cmd == "check") return Check(arquivo);
  } catch (const FalhaRegistros& f) {
    std::printf("%s: damaged: %s\n", arquivo.c_str(), Utf8(f.descricao).c_str());
    return 1;
  }
  return Uso("unknown command '" + cmd + "'");
}
