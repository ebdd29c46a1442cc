// The record file against SQLite on the same work, in the same run: adding
// records, ordering them by a String field, and looking records up by that
// field. Prints a table of the times.
//
//   bench_records [--records N] [--lookups M] [--dir FOLDER]
//
// The record file goes through the engine the language's commands use (the
// lock and the count are taken for every record, as AddRecord does); SQLite
// gets its best case: one transaction, a prepared statement, an index.
#include <sqlite3.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "data/registros_arquivo.h"

namespace fs = std::filesystem;
using namespace zv;

namespace {

using Relogio = std::chrono::steady_clock;

double Ms(Relogio::time_point desde) {
  return std::chrono::duration<double, std::milli>(Relogio::now() - desde).count();
}

struct Pessoa {
  Texto nome, cidade;
  double saldo;
};

// Names of three syllables and a surname, some accented, nearly all distinct.
std::vector<Pessoa> Pessoas(int n) {
  static const char16_t* silabas[] = {u"ma", u"ri", u"jo", u"sé", u"an", u"tô", u"ca", u"lu", u"pe", u"dro",
                                      u"be", u"ne", u"di", u"to", u"ço", u"ga", u"bri", u"el", u"fe", u"li"};
  static const char16_t* cidades[] = {u"Rio", u"São Paulo", u"Belém", u"Recife", u"Curitiba", u"Natal"};
  std::mt19937 g(42);
  std::vector<Pessoa> v;
  v.reserve(size_t(n));
  for (int i = 0; i < n; ++i) {
    Texto nome;
    for (int s = 0; s < 3; ++s) nome += silabas[g() % 20];
    nome[0] = Maiuscula(nome[0]);
    nome += u" ";
    for (int s = 0; s < 3; ++s) nome += silabas[g() % 20];
    nome += InteiroParaTexto(g() % 1000);
    v.push_back({nome, cidades[g() % 6], double(g() % 1000000) / 100});
  }
  return v;
}

struct Tempos {
  double insere = 0, ordena = 0, busca = 0;
  int achados = 0;
};

Tempos ArquivoDeRegistros(const fs::path& pasta, const std::vector<Pessoa>& pessoas, const std::vector<int>& consultas) {
  Estrutura e;
  e.descritor = u"Agenda";
  e.Acrescenta(u"Codigo", TipoCampo::AutoInc);
  e.Acrescenta(u"Nome", TipoCampo::String, 30);
  e.Acrescenta(u"Cidade", TipoCampo::String, 20);
  e.Acrescenta(u"Saldo", TipoCampo::Decimal);
  fs::path arquivo = pasta / "Agenda.Zvf";
  fs::remove(arquivo);
  Texto problema;
  Tempos t;
  auto ini = Relogio::now();
  ArquivoRegistros::Declara(arquivo, e, u"", u"", problema);
  ArquivoRegistros a;
  if (a.Abre(arquivo, &e, nullptr, false, problema) != ArquivoRegistros::Abertura::Aberta) {
    std::fprintf(stderr, "can't open %s: %s\n", arquivo.c_str(), Utf8(problema).c_str());
    std::exit(1);
  }
  Registro r(4);
  for (const Pessoa& p : pessoas) {
    r[1].texto = p.nome;
    r[2].texto = p.cidade;
    r[3].decimal = p.saldo;
    a.Adiciona(a.Monta(r, -1, nullptr));
  }
  t.insere = Ms(ini);

  ini = Relogio::now();
  ListaOrdem lista;
  const std::vector<int> indice{1};
  ConstroiOrdem(a, indice, lista);
  t.ordena = Ms(ini);

  ini = Relogio::now();
  for (int i : consultas) {
    Texto chave;
    ChaveBusca(e, indice, {pessoas[size_t(i)].nome}, chave);
    int32_t pos = lista.Busca(chave, ModoBusca::Primeiro);
    if (pos < 0) continue;
    int32_t n = lista.RegistroEm(pos);
    if (a.Decodifica(a.LeBruto(n), n, r) && r[1].texto == pessoas[size_t(i)].nome) ++t.achados;
  }
  t.busca = Ms(ini);
  return t;
}

void Sql(sqlite3* db, const char* sql) {
  char* erro = nullptr;
  if (sqlite3_exec(db, sql, nullptr, nullptr, &erro) != SQLITE_OK) {
    std::fprintf(stderr, "SQLite: %s\n", erro);
    std::exit(1);
  }
}

Tempos SQLite(const fs::path& pasta, const std::vector<Pessoa>& pessoas, const std::vector<int>& consultas) {
  fs::path arquivo = pasta / "agenda.sqlite";
  fs::remove(arquivo);
  sqlite3* db = nullptr;
  sqlite3_open(arquivo.c_str(), &db);
  Tempos t;
  auto ini = Relogio::now();
  Sql(db, "CREATE TABLE agenda(codigo INTEGER PRIMARY KEY, nome TEXT, cidade TEXT, saldo REAL)");
  Sql(db, "BEGIN");
  sqlite3_stmt* ins = nullptr;
  sqlite3_prepare_v2(db, "INSERT INTO agenda(nome, cidade, saldo) VALUES (?, ?, ?)", -1, &ins, nullptr);
  for (const Pessoa& p : pessoas) {
    std::string nome = Utf8(p.nome), cidade = Utf8(p.cidade);
    sqlite3_bind_text(ins, 1, nome.c_str(), int(nome.size()), SQLITE_TRANSIENT);
    sqlite3_bind_text(ins, 2, cidade.c_str(), int(cidade.size()), SQLITE_TRANSIENT);
    sqlite3_bind_double(ins, 3, p.saldo);
    sqlite3_step(ins);
    sqlite3_reset(ins);
  }
  sqlite3_finalize(ins);
  Sql(db, "COMMIT");
  t.insere = Ms(ini);

  ini = Relogio::now();
  Sql(db, "CREATE INDEX agenda_nome ON agenda(nome COLLATE NOCASE)");
  t.ordena = Ms(ini);

  ini = Relogio::now();
  sqlite3_stmt* sel = nullptr;
  sqlite3_prepare_v2(db,
                     "SELECT codigo, nome, cidade, saldo FROM agenda WHERE nome = ? COLLATE NOCASE "
                     "ORDER BY nome COLLATE NOCASE, codigo LIMIT 1",
                     -1, &sel, nullptr);
  for (int i : consultas) {
    std::string nome = Utf8(pessoas[size_t(i)].nome);
    sqlite3_bind_text(sel, 1, nome.c_str(), int(nome.size()), SQLITE_TRANSIENT);
    if (sqlite3_step(sel) == SQLITE_ROW &&
        std::string(reinterpret_cast<const char*>(sqlite3_column_text(sel, 1))) == nome)
      ++t.achados;
    sqlite3_reset(sel);
  }
  sqlite3_finalize(sel);
  t.busca = Ms(ini);
  sqlite3_close(db);
  fs::remove(arquivo);
  return t;
}

std::string Milhares(long n) {
  std::string d = std::to_string(n), s;
  for (size_t i = 0; i < d.size(); ++i) {
    if (i > 0 && (d.size() - i) % 3 == 0) s += ',';
    s += d[i];
  }
  return s;
}

}  // namespace

int main(int argc, char** argv) {
  int registros = 100000, buscas = 10000;
  fs::path pasta;
  for (int i = 1; i + 1 < argc; i += 2) {
    std::string a = argv[i];
    if (a == "--records") registros = std::atoi(argv[i + 1]);
    else if (a == "--lookups") buscas = std::atoi(argv[i + 1]);
    else if (a == "--dir") pasta = argv[i + 1];
  }
  if (registros < 1 || registros > kMaxRegistros || buscas < 0) {
    std::fprintf(stderr, "usage: bench_records [--records 1..999999] [--lookups N] [--dir FOLDER]\n");
    return 2;
  }
  bool temporaria = pasta.empty();
  if (temporaria) {
    std::string modelo = (fs::temp_directory_path() / "bench-records-XXXXXX").string();
    pasta = ::mkdtemp(modelo.data());
  }
  std::vector<Pessoa> pessoas = Pessoas(registros);
  std::mt19937 g(7);
  std::vector<int> consultas(static_cast<size_t>(buscas));
  for (int& c : consultas) c = int(g() % uint32_t(registros));

  Tempos zvf = ArquivoDeRegistros(pasta, pessoas, consultas);
  Tempos sql = SQLite(pasta, pessoas, consultas);
  if (temporaria) fs::remove_all(pasta);

  std::printf("%s records, %s lookups, SQLite %s (default settings)\n\n", Milhares(registros).c_str(),
              Milhares(buscas).c_str(), sqlite3_libversion());
  std::printf("%-40s %12s %12s %8s\n", "work", "record file", "SQLite", "ratio");
  auto linha = [](const std::string& nome, double a, double b) {
    std::printf("%-40s %9.1f ms %9.1f ms %8.2f\n", nome.c_str(), a, b, b > 0 ? a / b : 0.0);
  };
  linha("add " + Milhares(registros) + " records", zvf.insere, sql.insere);
  linha("order by a String field (index)", zvf.ordena, sql.ordena);
  linha(Milhares(buscas) + " lookups by that field (find + read)", zvf.busca, sql.busca);
  std::printf("\nfound: record file %d, SQLite %d of %d\n", zvf.achados, sql.achados, buscas);
  return zvf.achados == sql.achados ? 0 : 1;
}
