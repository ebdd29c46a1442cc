// The database layer under the SQL command: a connection per database name
// and a record set per table name, over Qt SQL. A record set keeps its rows
// in memory (a client-side cursor), so it can move both ways on any driver;
// its changes go back to the database through UPDATE, INSERT and DELETE on
// the one table its SELECT reads. Needs no interpreter.
#pragma once

#include <QRegularExpression>
#include <QString>
#include <QVariant>
#include <QVector>

#include <cstdint>
#include <vector>

#include "core/texto.h"

namespace zv {

// A failure of the database or of this layer: a number and a description,
// which the SQL command hands to the program as its result.
struct FalhaSQL {
  int numero = 0;
  Texto descricao;
};

// Numbers of this layer's own failures (the database's carry its own).
namespace erro_sql {
inline constexpr int kArgumentos = 3001;   // a Find criterion it can't read
inline constexpr int kSemRegistro = 3021;  // no current record: BOF or EOF
inline constexpr int kSemCampo = 3265;     // no field of that name
inline constexpr int kSoLeitura = 3251;    // the set can't be changed
inline constexpr int kFechado = 3704;      // the connection or set is closed
inline constexpr int kSemDriver = 3706;    // no driver for the connection text
inline constexpr int kLinhaSumiu = 3640;   // the row changed or went away meanwhile
inline constexpr int kParaTras = 3219;     // backwards on a forward-only set
}  // namespace erro_sql

// What a connection text asks for, read from "Key=Value;..." pairs.
struct PedidoConexao {
  QString driver;  // Qt's driver name, QSQLITE, QPSQL, ...
  QString banco;   // database: a file for SQLite
  QString servidor;
  int porta = -1;
  QString usuario;
  QString senha;
  QString opcoes;  // the pairs no key above took, for the driver
};

// Reads a connection text. Throws FalhaSQL when it names no driver this
// layer knows.
PedidoConexao LeTextoConexao(const Texto& texto);

class ConexaoSQL {
 public:
  ConexaoSQL();
  ~ConexaoSQL();
  ConexaoSQL(const ConexaoSQL&) = delete;
  ConexaoSQL& operator=(const ConexaoSQL&) = delete;

  // A database file's name comes resolved against the program's folder.
  void Abre(const PedidoConexao& pedido);
  void Executa(const Texto& sql);
  void Fecha();
  bool Aberta() const;
  // 2 for a server-side cursor, 3 for a client-side one.
  void DefineLocal(int local) { local_ = local; }
  int Local() const { return local_; }
  const QString& Nome() const { return nome_; }

 private:
  QString nome_;  // Qt's connection name, one per object
  int local_ = 3;
  bool aberta_ = false;
};

// Cursor and lock numbers, as the SQL command turns its words into them.
enum class Cursor : int { ForwardOnly = 0, Keyset = 1, Dynamic = 2, Static = 3 };
enum class Trava : int { Nenhuma = 0, ReadOnly = 1, Pessimistic = 2, Optimistic = 3, BatchOptimistic = 4 };

class ConjuntoSQL {
 public:
  void Abre(const Texto& sql, const ConexaoSQL& conexao, int cursor, int trava);
  void Fecha();

  void MoveFirst();
  void MoveLast();
  void MoveNext();
  void MovePrevious();
  void AddNew();
  void Update();
  void Delete();
  // Searches from the current record forward; EOF when nothing matches.
  void Find(const Texto& criterio);

  bool Eof() const;
  bool Bof() const;
  int32_t RecordCount() const;

  // The current record's field; throws FalhaSQL with no current record or
  // no such field.
  QVariant Campo(const Texto& nome) const;
  void DefineCampo(const Texto& nome, const QVariant& valor);

  // The table changes go to; empty when the SELECT reads more than one.
  const QString& TabelaBase() const { return tabela_; }

 private:
  struct Linha {
    QVector<QVariant> valores;
    QVector<QVariant> originais;  // as read: how the row is found again
    std::vector<bool> mudou;
    bool nova = false;
    bool apagada = false;
  };

  void ExigeAberto() const;
  void ExigeAtual() const;
  void ExigeEscrita() const;
  int IndiceCampo(const Texto& nome) const;
  // Writes a pending change of the current row, as a move does first; a
  // change the database refuses is dropped.
  void GravaPendente();
  void Grava(Linha& l);
  // The first row at or after `i` (before, going back) that isn't deleted.
  int ProximaViva(int i) const;
  int AnteriorViva(int i) const;

  QString conexao_;
  bool aberto_ = false;
  bool paraFrente_ = false;  // forward-only on the server: no going back
  bool soLeitura_ = false;
  QString tabela_;
  QVector<QString> nomes_;  // field names as the set gives them
  QVector<int> chave_;      // fields that find a row again: the primary key, else all
  std::vector<Linha> linhas_;
  int32_t vivas_ = 0;  // the rows not deleted: RecordCount
  int pos_ = 0;  // -1 before the first row, linhas_.size() after the last
  bool editando_ = false;
};

// One Find criterion: "Field op Value", op one of = <> < > <= >= LIKE; a
// text in single quotes, a date in #, or a number. Exposed for its test.
struct CriterioBusca {
  QString campo;
  QString operador;  // upper case
  QVariant valor;
  QRegularExpression padrao;  // LIKE's, made once for the whole search
  bool Aceita(const QVariant& v) const;
};
CriterioBusca LeCriterio(const Texto& texto);

}  // namespace zv
