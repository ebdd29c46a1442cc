#include "data/sql_conjunto.h"

#include <QDateTime>
#include <QRegularExpression>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlField>
#include <QSqlIndex>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QStringList>

#include <atomic>

#include "data/mensagens.h"
#include "library/texto_qt.h"

namespace zv {

using namespace Qt::StringLiterals;

namespace {

[[noreturn]] void Falha(int numero, const Texto& descricao) { throw FalhaSQL{numero, descricao}; }

[[noreturn]] void FalhaDe(const QSqlError& e) {
  bool ok = false;
  int numero = e.nativeErrorCode().toInt(&ok);
  QString texto = e.databaseText().isEmpty() ? e.driverText() : e.databaseText();
  if (texto.isEmpty()) texto = e.text();
  throw FalhaSQL{ok ? numero : 0, T(texto.trimmed())};
}

// "Key=Value" pairs, split at ";" outside braces and double quotes.
QStringList Pares(const QString& texto) {
  QStringList pares;
  QString atual;
  int chaves = 0;
  bool aspas = false;
  for (QChar c : texto) {
    if (c == u'"' && chaves == 0) aspas = !aspas;
    else if (c == u'{' && !aspas) ++chaves;
    else if (c == u'}' && !aspas && chaves > 0) --chaves;
    if (c == u';' && !aspas && chaves == 0) {
      pares << atual;
      atual.clear();
    } else {
      atual += c;
    }
  }
  pares << atual;
  return pares;
}

QString SemEnvoltorio(QString v) {
  v = v.trimmed();
  if (v.size() >= 2 && ((v.front() == u'{' && v.back() == u'}') || (v.front() == u'"' && v.back() == u'"')))
    v = v.mid(1, v.size() - 2).trimmed();
  return v;
}

// Qt's driver for a driver or provider word; empty when none fits.
QString DriverDe(const QString& palavra) {
  QString p = palavra.toUpper();
  if (p.contains(u"SQLITE")) return u"QSQLITE"_s;
  if (p.contains(u"POSTGRES") || p == u"QPSQL" || p == u"PSQL") return u"QPSQL"_s;
  if (p.contains(u"MYSQL") || p.contains(u"MARIADB")) return u"QMYSQL"_s;
  if (p.contains(u"ODBC") || p == u"MSDASQL") return u"QODBC"_s;
  if (p.startsWith(u'Q') && QSqlDatabase::drivers().contains(p)) return p;
  return {};
}

bool ArquivoSQLite(const QString& nome) {
  static const QRegularExpression ext(u"\\.(db|db3|sqlite|sqlite3)$"_s, QRegularExpression::CaseInsensitiveOption);
  return ext.match(nome).hasMatch();
}

std::atomic<int> proximaConexao{0};

}  // namespace

PedidoConexao LeTextoConexao(const Texto& texto) {
  PedidoConexao p;
  QString palavraDriver;
  QStringList resto;
  for (const QString& par : Pares(Q(texto))) {
    if (par.trimmed().isEmpty()) continue;
    int igual = par.indexOf(u'=');
    QString chave = (igual < 0 ? par : par.left(igual)).trimmed().toUpper();
    QString valor = igual < 0 ? QString() : SemEnvoltorio(par.mid(igual + 1));
    if (chave == u"DRIVER" || chave == u"PROVIDER") palavraDriver = valor;
    else if (chave == u"DATABASE" || chave == u"DATA SOURCE" || chave == u"DBQ" || chave == u"INITIAL CATALOG" ||
             chave == u"DSN")
      p.banco = valor;
    else if (chave == u"SERVER" || chave == u"HOST" || chave == u"ADDRESS") p.servidor = valor;
    else if (chave == u"PORT") p.porta = valor.toInt();
    else if (chave == u"UID" || chave == u"USER" || chave == u"USER ID" || chave == u"USERNAME") p.usuario = valor;
    else if (chave == u"PWD" || chave == u"PASSWORD") p.senha = valor;
    else resto << par.trimmed();
  }
  p.driver = palavraDriver.isEmpty() ? (ArquivoSQLite(p.banco) ? u"QSQLITE"_s : QString()) : DriverDe(palavraDriver);
  if (p.driver.isEmpty()) {
    Texto nome = palavraDriver.isEmpty() ? Texto() : u" (" + T(palavraDriver) + u")";
    Falha(erro_sql::kSemDriver, msg::dados::kTextoSemDriver + nome);
  }
  // ODBC takes the whole text: its driver reads the pairs itself.
  if (p.driver == u"QODBC" && !DriverDe(palavraDriver).isEmpty() && palavraDriver.toUpper() != u"ODBC" &&
      palavraDriver.toUpper() != u"QODBC")
    p.banco = Q(texto);
  p.opcoes = resto.join(u';');
  return p;
}

// ---- The connection ---------------------------------------------------------------

ConexaoSQL::ConexaoSQL() : nome_(u"zv-sql-"_s + QString::number(proximaConexao++)) {}

ConexaoSQL::~ConexaoSQL() { Fecha(); }

bool ConexaoSQL::Aberta() const { return aberta_; }

void ConexaoSQL::Abre(const PedidoConexao& pedido) {
  Fecha();
  if (!QSqlDatabase::isDriverAvailable(pedido.driver))
    Falha(erro_sql::kSemDriver, Texto(msg::dados::kTextoSemDriver) + u" (" + T(pedido.driver) + u")");
  QSqlError erro;
  {
    QSqlDatabase db = QSqlDatabase::addDatabase(pedido.driver, nome_);
    db.setDatabaseName(pedido.banco);
    if (!pedido.servidor.isEmpty()) db.setHostName(pedido.servidor);
    if (pedido.porta >= 0) db.setPort(pedido.porta);
    if (!pedido.usuario.isEmpty()) db.setUserName(pedido.usuario);
    if (!pedido.senha.isEmpty()) db.setPassword(pedido.senha);
    if (!pedido.opcoes.isEmpty() && pedido.driver != u"QSQLITE") db.setConnectOptions(pedido.opcoes);
    aberta_ = db.open();
    if (!aberta_) erro = db.lastError();
  }
  if (!aberta_) {
    QSqlDatabase::removeDatabase(nome_);
    FalhaDe(erro);
  }
}

void ConexaoSQL::Executa(const Texto& sql) {
  if (!aberta_) Falha(erro_sql::kFechado, msg::dados::kTextoFechado);
  QSqlQuery q(QSqlDatabase::database(nome_, false));
  if (!q.exec(Q(sql))) FalhaDe(q.lastError());
}

void ConexaoSQL::Fecha() {
  if (!aberta_) return;
  aberta_ = false;
  { QSqlDatabase::database(nome_, false).close(); }
  QSqlDatabase::removeDatabase(nome_);
}

// ---- The record set ---------------------------------------------------------------

namespace {

// The one table a SELECT reads, as the statement spells it; empty when it
// reads several (a join, a list of tables, a union) or isn't a SELECT.
QString TabelaDoSelect(const QString& sql) {
  static const QRegularExpression select(u"^\\s*SELECT\\b"_s, QRegularExpression::CaseInsensitiveOption);
  static const QRegularExpression varias(u"\\b(JOIN|UNION|INTERSECT|EXCEPT)\\b"_s,
                                         QRegularExpression::CaseInsensitiveOption);
  static const QRegularExpression de(
      u"\\bFROM\\s+(\\[[^\\]]+\\]|\"[^\"]+\"|`[^`]+`|[\\w.]+)\\s*(,)?"_s, QRegularExpression::CaseInsensitiveOption);
  if (!select.match(sql).hasMatch() || varias.match(sql).hasMatch()) return {};
  auto m = de.match(sql);
  if (!m.hasMatch() || !m.captured(2).isEmpty()) return {};
  return m.captured(1);
}

QString SemAspasDeNome(QString nome) {
  if (nome.size() >= 2 && (nome.front() == u'[' || nome.front() == u'"' || nome.front() == u'`'))
    return nome.mid(1, nome.size() - 2);
  return nome;
}

}  // namespace

void ConjuntoSQL::Abre(const Texto& sql, const ConexaoSQL& conexao, int cursor, int trava) {
  if (!conexao.Aberta()) Falha(erro_sql::kFechado, msg::dados::kTextoFechado);
  QSqlDatabase db = QSqlDatabase::database(conexao.Nome(), false);
  QSqlQuery q(db);
  q.setForwardOnly(true);
  QString texto = Q(sql);
  if (!q.exec(texto)) FalhaDe(q.lastError());

  Fecha();
  conexao_ = conexao.Nome();
  QSqlRecord r = q.record();
  nomes_.clear();
  for (int i = 0; i < r.count(); ++i) nomes_ << r.fieldName(i);
  linhas_.clear();
  while (q.next()) {
    Linha l;
    l.valores.reserve(r.count());
    for (int i = 0; i < r.count(); ++i) l.valores << q.value(i);
    l.originais = l.valores;
    l.mudou.assign(size_t(r.count()), false);
    linhas_.push_back(std::move(l));
  }
  vivas_ = int32_t(linhas_.size());
  if (q.lastError().isValid()) FalhaDe(q.lastError());

  tabela_ = q.isSelect() ? TabelaDoSelect(texto) : QString();
  chave_.clear();
  if (!tabela_.isEmpty()) {
    QSqlIndex primaria = db.primaryIndex(SemAspasDeNome(tabela_));
    for (int i = 0; i < primaria.count(); ++i) {
      int k = nomes_.indexOf(primaria.fieldName(i));
      if (k < 0) {
        chave_.clear();
        break;
      }
      chave_ << k;
    }
    // No key in the set: a row is found again by all it holds.
    if (chave_.isEmpty())
      for (int i = 0; i < nomes_.size(); ++i) chave_ << i;
  }
  soLeitura_ = trava == int(Trava::ReadOnly) || tabela_.isEmpty();
  paraFrente_ = cursor == int(Cursor::ForwardOnly) && conexao.Local() == 2;
  aberto_ = true;
  editando_ = false;
  pos_ = ProximaViva(0);
}

void ConjuntoSQL::Fecha() {
  if (!aberto_) return;
  GravaPendente();
  aberto_ = false;
  linhas_.clear();
  vivas_ = 0;
  nomes_.clear();
}

void ConjuntoSQL::ExigeAberto() const {
  if (!aberto_) Falha(erro_sql::kFechado, msg::dados::kTextoFechado);
}

void ConjuntoSQL::ExigeAtual() const {
  ExigeAberto();
  if (Eof() || Bof() || linhas_[size_t(pos_)].apagada) Falha(erro_sql::kSemRegistro, msg::dados::kTextoSemRegistro);
}

void ConjuntoSQL::ExigeEscrita() const {
  if (soLeitura_) Falha(erro_sql::kSoLeitura, msg::dados::kTextoSoLeitura);
}

int ConjuntoSQL::ProximaViva(int i) const {
  while (i < int(linhas_.size()) && linhas_[size_t(i)].apagada) ++i;
  return i;
}

int ConjuntoSQL::AnteriorViva(int i) const {
  while (i >= 0 && linhas_[size_t(i)].apagada) --i;
  return i;
}

int32_t ConjuntoSQL::RecordCount() const { return vivas_; }

bool ConjuntoSQL::Eof() const { return pos_ >= int(linhas_.size()) || RecordCount() == 0; }
bool ConjuntoSQL::Bof() const { return pos_ < 0 || RecordCount() == 0; }

void ConjuntoSQL::MoveFirst() {
  ExigeAberto();
  if (RecordCount() == 0) Falha(erro_sql::kSemRegistro, msg::dados::kTextoSemRegistro);
  GravaPendente();
  pos_ = ProximaViva(0);
}

void ConjuntoSQL::MoveLast() {
  ExigeAberto();
  if (RecordCount() == 0) Falha(erro_sql::kSemRegistro, msg::dados::kTextoSemRegistro);
  GravaPendente();
  pos_ = AnteriorViva(int(linhas_.size()) - 1);
}

void ConjuntoSQL::MoveNext() {
  ExigeAberto();
  if (Eof()) Falha(erro_sql::kSemRegistro, msg::dados::kTextoSemRegistro);
  GravaPendente();
  pos_ = ProximaViva(pos_ + 1);
}

void ConjuntoSQL::MovePrevious() {
  ExigeAberto();
  if (paraFrente_) Falha(erro_sql::kParaTras, msg::dados::kTextoParaTras);
  if (Bof()) Falha(erro_sql::kSemRegistro, msg::dados::kTextoSemRegistro);
  GravaPendente();
  pos_ = AnteriorViva(pos_ - 1);
}

void ConjuntoSQL::AddNew() {
  ExigeAberto();
  ExigeEscrita();
  GravaPendente();
  Linha l;
  l.valores.resize(nomes_.size());
  l.originais = l.valores;
  l.mudou.assign(size_t(nomes_.size()), false);
  l.nova = true;
  linhas_.push_back(std::move(l));
  ++vivas_;
  pos_ = int(linhas_.size()) - 1;
  editando_ = true;
}

int ConjuntoSQL::IndiceCampo(const Texto& nome) const {
  QString n = Q(nome);
  for (int i = 0; i < nomes_.size(); ++i)
    if (nomes_[i].compare(n, Qt::CaseInsensitive) == 0) return i;
  Falha(erro_sql::kSemCampo, msg::dados::kTextoSemCampo);
}

QVariant ConjuntoSQL::Campo(const Texto& nome) const {
  ExigeAtual();
  return linhas_[size_t(pos_)].valores[IndiceCampo(nome)];
}

void ConjuntoSQL::DefineCampo(const Texto& nome, const QVariant& valor) {
  ExigeAtual();
  ExigeEscrita();
  int i = IndiceCampo(nome);
  Linha& l = linhas_[size_t(pos_)];
  l.valores[i] = valor;
  l.mudou[size_t(i)] = true;
  editando_ = true;
}

void ConjuntoSQL::Update() {
  ExigeAberto();
  if (!editando_) return;
  ExigeAtual();
  GravaPendente();
}

void ConjuntoSQL::GravaPendente() {
  if (!editando_) return;
  editando_ = false;
  if (pos_ < 0 || pos_ >= int(linhas_.size()) || linhas_[size_t(pos_)].apagada) return;
  Linha& l = linhas_[size_t(pos_)];
  try {
    Grava(l);
  } catch (const FalhaSQL&) {
    // The change the database refused is dropped, so the set can still
    // move: the row reads as it was read, a new one is gone.
    if (l.nova) {
      l.apagada = true;
      --vivas_;
    } else {
      l.valores = l.originais;
      std::fill(l.mudou.begin(), l.mudou.end(), false);
    }
    throw;
  }
}

namespace {

// Runs a change that must touch exactly one row: inside a transaction where
// the driver has them, so a key that finds several rows changes none.
void UmaLinha(QSqlDatabase& db, QSqlQuery& q) {
  bool transacao = db.driver()->hasFeature(QSqlDriver::Transactions) && db.transaction();
  if (!q.exec()) {
    QSqlError e = q.lastError();
    if (transacao) db.rollback();
    FalhaDe(e);
  }
  int n = q.numRowsAffected();
  if (n == 0 || (n > 1 && transacao)) {
    if (transacao) db.rollback();
    Falha(erro_sql::kLinhaSumiu, n == 0 ? msg::dados::kTextoLinhaSumiu : msg::dados::kTextoLinhasDemais);
  }
  if (transacao && !db.commit()) FalhaDe(db.lastError());
}

}  // namespace

void ConjuntoSQL::Grava(Linha& l) {
  QSqlDatabase db = QSqlDatabase::database(conexao_, false);
  if (!db.isOpen()) Falha(erro_sql::kFechado, msg::dados::kTextoFechado);
  QSqlDriver* d = db.driver();
  auto campo = [&](int i) { return d->escapeIdentifier(nomes_[i], QSqlDriver::FieldName); };
  QSqlQuery q(db);
  if (l.nova) {
    QStringList colunas, marcas;
    for (int i = 0; i < nomes_.size(); ++i)
      if (l.mudou[size_t(i)]) {
        colunas << campo(i);
        marcas << u"?"_s;
      }
    QString sql = colunas.isEmpty() ? u"INSERT INTO %1 DEFAULT VALUES"_s.arg(tabela_)
                                    : u"INSERT INTO %1 (%2) VALUES (%3)"_s.arg(tabela_, colunas.join(u", "),
                                                                               marcas.join(u", "));
    if (!q.prepare(sql)) FalhaDe(q.lastError());
    for (int i = 0; i < nomes_.size(); ++i)
      if (l.mudou[size_t(i)]) q.addBindValue(l.valores[i]);
    if (!q.exec()) FalhaDe(q.lastError());
    // A key the database numbered itself shows in the new row at once.
    QVariant id = q.lastInsertId();
    if (id.isValid() && chave_.size() == 1 && chave_.size() < nomes_.size() && l.valores[chave_[0]].isNull())
      l.valores[chave_[0]] = id;
  } else {
    QStringList mudancas, onde;
    for (int i = 0; i < nomes_.size(); ++i)
      if (l.mudou[size_t(i)]) mudancas << campo(i) + u" = ?"_s;
    if (mudancas.isEmpty()) return;
    for (int k : chave_) onde << (l.originais[k].isNull() ? campo(k) + u" IS NULL"_s : campo(k) + u" = ?"_s);
    if (!q.prepare(u"UPDATE %1 SET %2 WHERE %3"_s.arg(tabela_, mudancas.join(u", "), onde.join(u" AND "))))
      FalhaDe(q.lastError());
    for (int i = 0; i < nomes_.size(); ++i)
      if (l.mudou[size_t(i)]) q.addBindValue(l.valores[i]);
    for (int k : chave_)
      if (!l.originais[k].isNull()) q.addBindValue(l.originais[k]);
    UmaLinha(db, q);
  }
  l.nova = false;
  l.originais = l.valores;
  std::fill(l.mudou.begin(), l.mudou.end(), false);
}

void ConjuntoSQL::Delete() {
  ExigeAtual();
  ExigeEscrita();
  Linha& l = linhas_[size_t(pos_)];
  if (!l.nova) {
    QSqlDatabase db = QSqlDatabase::database(conexao_, false);
    if (!db.isOpen()) Falha(erro_sql::kFechado, msg::dados::kTextoFechado);
    QSqlDriver* d = db.driver();
    QStringList onde;
    for (int k : chave_) {
      QString c = d->escapeIdentifier(nomes_[k], QSqlDriver::FieldName);
      onde << (l.originais[k].isNull() ? c + u" IS NULL"_s : c + u" = ?"_s);
    }
    QSqlQuery q(db);
    if (!q.prepare(u"DELETE FROM %1 WHERE %2"_s.arg(tabela_, onde.join(u" AND ")))) FalhaDe(q.lastError());
    for (int k : chave_)
      if (!l.originais[k].isNull()) q.addBindValue(l.originais[k]);
    UmaLinha(db, q);
  }
  // The pointer stays on the deleted row until the next move.
  l.apagada = true;
  --vivas_;
  editando_ = false;
}

void ConjuntoSQL::Find(const Texto& criterio) {
  ExigeAberto();
  CriterioBusca c = LeCriterio(criterio);
  int campo = IndiceCampo(T(c.campo));
  GravaPendente();
  for (int i = std::max(pos_, 0); i < int(linhas_.size()); ++i) {
    const Linha& l = linhas_[size_t(i)];
    if (!l.apagada && c.Aceita(l.valores[campo])) {
      pos_ = i;
      return;
    }
  }
  pos_ = int(linhas_.size());
}

// ---- Find's criterion -----------------------------------------------------------------

CriterioBusca LeCriterio(const Texto& texto) {
  static const QRegularExpression forma(
      u"^\\s*(\\[[^\\]]+\\]|[^\\s=<>]+)\\s*(<=|>=|<>|=|<|>|\\bLIKE\\b)\\s*('(?:[^']|'')*'|#[^#]*#|[-+]?[0-9.]+(?:[eE][-+]?[0-9]+)?)\\s*$"_s,
      QRegularExpression::CaseInsensitiveOption);
  auto m = forma.match(Q(texto));
  if (!m.hasMatch()) Falha(erro_sql::kArgumentos, msg::dados::kTextoArgumentos);
  CriterioBusca c;
  c.campo = SemAspasDeNome(m.captured(1));
  c.operador = m.captured(2).toUpper();
  QString v = m.captured(3);
  if (v.front() == u'\'') {
    c.valor = v.mid(1, v.size() - 2).replace(u"''"_s, u"'"_s);
  } else if (v.front() == u'#') {
    QString d = v.mid(1, v.size() - 2).trimmed();
    QDateTime dt = QDateTime::fromString(d, Qt::ISODate);
    if (!dt.isValid()) dt = QDateTime(QDate::fromString(d, Qt::ISODate), QTime(0, 0));
    if (!dt.isValid()) dt = QDateTime(QDate::fromString(d, u"M/d/yyyy"_s), QTime(0, 0));
    if (!dt.isValid()) Falha(erro_sql::kArgumentos, msg::dados::kTextoArgumentos);
    c.valor = dt;
  } else {
    bool ok = false;
    double x = v.toDouble(&ok);
    if (!ok) Falha(erro_sql::kArgumentos, msg::dados::kTextoArgumentos);
    c.valor = x;
  }
  if (c.operador == u"LIKE") {
    if (c.valor.typeId() != QMetaType::QString) Falha(erro_sql::kArgumentos, msg::dados::kTextoArgumentos);
    // * and % stand for any run of characters.
    QString padrao = QRegularExpression::escape(c.valor.toString());
    padrao.replace(u"\\*"_s, u".*"_s).replace(u"\\%"_s, u".*"_s);
    c.padrao = QRegularExpression(QRegularExpression::anchoredPattern(padrao), QRegularExpression::CaseInsensitiveOption);
  }
  return c;
}

bool CriterioBusca::Aceita(const QVariant& v) const {
  if (v.isNull()) return false;
  if (operador == u"LIKE") return padrao.match(v.toString()).hasMatch();
  int cmp = 0;
  bool feito = false;
  if (valor.typeId() == QMetaType::Double) {
    bool ok = false;
    double x = v.toDouble(&ok);
    if (ok) {
      double y = valor.toDouble();
      cmp = x < y ? -1 : x > y ? 1 : 0;
      feito = true;
    }
  } else if (valor.typeId() == QMetaType::QDateTime) {
    QDateTime x = v.toDateTime();
    if (!x.isValid()) x = QDateTime::fromString(v.toString(), Qt::ISODate);
    if (x.isValid()) {
      QDateTime y = valor.toDateTime();
      cmp = x < y ? -1 : x > y ? 1 : 0;
      feito = true;
    }
  }
  if (!feito) cmp = v.toString().compare(valor.toString(), Qt::CaseInsensitive);
  if (operador == u"=") return cmp == 0;
  if (operador == u"<>") return cmp != 0;
  if (operador == u"<") return cmp < 0;
  if (operador == u">") return cmp > 0;
  if (operador == u"<=") return cmp <= 0;
  return cmp >= 0;
}

}  // namespace zv
