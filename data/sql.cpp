// The language's side of the SQL command: names a program gives its
// databases and record sets, the pointer state it tests in SQLPointer, and
// the texts its failures come back as. The database work is the layer's in
// sql_conjunto.
#include <array>
#include <memory>

#include "core/interpretador.h"
#include "data/dados.h"
#include "data/mensagens.h"
#include "data/sql_conjunto.h"
#include "library/arquivos.h"
#include "library/texto_qt.h"

namespace zv {

namespace {

constexpr int16_t kMaxBancos = 10;
constexpr size_t kMaxTabelas = 10;

const Texto kOK = u"OK";
const Texto kEOF = u"EOF";
const Texto kBOF = u"BOF";

struct TabelaAberta {
  Texto nome;  // in capitals; empty marks a free slot
  std::unique_ptr<ConjuntoSQL> conjunto;
  Texto estado;  // EstadoTabela
};

struct BancoAberto {
  Texto nome;  // in capitals; empty marks a closed one
  std::unique_ptr<ConexaoSQL> conexao;
  std::array<TabelaAberta, kMaxTabelas> tabelas;
};

struct EstadoSQL {
  int16_t qtdBancos = 0;  // only grows during a run
  std::array<BancoAberto, kMaxBancos> bancos;
  Texto ultimoEstado;  // of the last move on any table; field reads look at it
};

EstadoSQL& Estado(Interpretador& zv) { return zv.Estado<EstadoSQL>(); }

void DefinePonteiro(Interpretador& zv, const Texto& estado) {
  zv.GravaVariavel(u"SQLPointer", Valor::DeTexto(estado), false);
}

BancoAberto* AchaBanco(EstadoSQL& e, const Texto& nome) {
  for (int16_t i = 0; i < e.qtdBancos; ++i)
    if (!e.bancos[size_t(i)].nome.empty() && e.bancos[size_t(i)].nome == nome) return &e.bancos[size_t(i)];
  return nullptr;
}

// The table a method names, or null after telling the user which name is
// unknown.
TabelaAberta* AchaTabela(Interpretador& zv, const Texto& banco, const Texto& tabela) {
  BancoAberto* b = AchaBanco(Estado(zv), banco);
  if (!b) {
    zv.CaixaCritica(msg::dados::kNomeBancoNaoEncontrado + banco);
    return nullptr;
  }
  for (TabelaAberta& t : b->tabelas)
    if (!t.nome.empty() && t.nome == tabela) return &t;
  zv.CaixaCritica(msg::dados::kNomeTabelaNaoEncontrada + tabela);
  return nullptr;
}

int NumeroCursor(const Texto& palavra) {
  Texto p = Maiusculas(palavra);
  if (p == u"FORWARDONLY") return int(Cursor::ForwardOnly);
  if (p == u"KEYSET") return int(Cursor::Keyset);
  if (p == u"DYNAMIC") return int(Cursor::Dynamic);
  if (p == u"STATIC") return int(Cursor::Static);
  return 0;
}

int NumeroTrava(const Texto& palavra) {
  Texto p = Maiusculas(palavra);
  if (p == u"READONLY") return int(Trava::ReadOnly);
  if (p == u"PESSIMISTIC") return int(Trava::Pessimistic);
  if (p == u"OPTIMISTIC") return int(Trava::Optimistic);
  if (p == u"BATCHOPTIMISTIC") return int(Trava::BatchOptimistic);
  return 0;
}

// A field's value as the program reads it.
Texto TextoDoCampo(const QVariant& v) {
  if (v.isNull()) return {};
  switch (v.typeId()) {
    case QMetaType::Double:
    case QMetaType::Float:
      return Valor::DeDouble(v.toDouble()).ComoTexto();
    case QMetaType::Bool:
      return v.toBool() ? u"True" : u"False";
    case QMetaType::QByteArray: {
      // Bytes stand for themselves, as the language's files hold them.
      QByteArray b = v.toByteArray();
      return T(QString::fromLatin1(b));
    }
    default:
      return T(v.toString());
  }
}

// A program's value as the database takes it: numbers as numbers.
QVariant ValorDoCampo(const Valor& v) {
  switch (v.tipo) {
    case Valor::Tipo::Vazio:
      return QVariant(QMetaType(QMetaType::QString));
    case Valor::Tipo::Int16:
    case Valor::Tipo::Int32:
      return qlonglong(v.ComoInt32());
    case Valor::Tipo::Double:
    case Valor::Tipo::Decimal:
      return v.ComoDouble();
    default:
      return Q(v.ComoTexto());
  }
}

Valor AbreBanco(Interpretador& zv, const Texto& nome, const std::vector<Texto>& a) {
  EstadoSQL& e = Estado(zv);
  if (e.qtdBancos == kMaxBancos) {
    zv.CaixaCritica(msg::dados::kBancosDemais);
    return Valor::TextoComAspas(u"");
  }
  BancoAberto& b = e.bancos[size_t(e.qtdBancos)];
  for (TabelaAberta& t : b.tabelas) t = TabelaAberta();
  b.nome = nome;
  b.conexao = std::make_unique<ConexaoSQL>();
  PedidoConexao pedido = LeTextoConexao(zv.ValorTexto(a[1]).ComoTexto());
  // A database in a file lies beside the program, as its other files do; it
  // is made there when it isn't yet.
  if (pedido.driver == u"QSQLITE" && !pedido.banco.isEmpty() && pedido.banco != u":memory:")
    pedido.banco = Q(CaminhoNoPrograma(T(pedido.banco), zv.dirPrograma));
  b.conexao->Abre(pedido);
  b.conexao->DefineLocal(Maiusculas(zv.ValorTexto(a[2]).ComoTexto()) == u"USESERVER" ? 2 : 3);
  ++e.qtdBancos;
  return Valor::TextoComAspas(u"");
}

Valor AbreTabela(Interpretador& zv, const Texto& banco, const Texto& tabela, const std::vector<Texto>& a) {
  Texto palavraCursor = zv.ValorTexto(a[2]).ComoTexto();
  Texto palavraTrava = zv.ValorTexto(a[3]).ComoTexto();
  int cursor = NumeroCursor(palavraCursor);
  int trava = NumeroTrava(palavraTrava);
  if (!palavraCursor.empty() && palavraTrava.empty()) {
    zv.ErroExecucao(msg::dados::kCursorSemTrava);
    return Valor::TextoComAspas(u"");
  }
  if (palavraCursor.empty() && palavraTrava.empty()) {
    cursor = int(Cursor::Dynamic);
    trava = int(Trava::Optimistic);
  }
  BancoAberto* b = AchaBanco(Estado(zv), banco);
  if (!b) {
    zv.CaixaCritica(msg::dados::kBancoNaoEncontrado);
    return Valor::TextoComAspas(u"");
  }
  // A name opened again takes its own slot back: a query run anew in a loop
  // doesn't use up the ten.
  TabelaAberta* t = nullptr;
  for (TabelaAberta& x : b->tabelas)
    if (!x.nome.empty() && x.nome == tabela) t = &x;
  for (TabelaAberta& x : b->tabelas)
    if (!t && x.nome.empty()) t = &x;
  if (!t) {
    zv.CaixaCritica(msg::dados::kTabelasDemais);
    return Valor::TextoComAspas(u"");
  }
  auto conjunto = std::make_unique<ConjuntoSQL>();
  conjunto->Abre(zv.ValorTexto(a[1]).ComoTexto(), *b->conexao, cursor, trava);
  t->nome = tabela;
  t->conjunto = std::move(conjunto);
  t->estado = t->conjunto->Eof() ? kEOF : kOK;
  DefinePonteiro(zv, t->estado);
  return Valor::TextoComAspas(u"");
}

// After a move, a change or a deletion: the state every table method leaves.
void NotaPosicao(Interpretador& zv, TabelaAberta& t) {
  EstadoSQL& e = Estado(zv);
  Texto estado = kOK;
  e.ultimoEstado.clear();
  if (t.conjunto->Eof()) estado = e.ultimoEstado = kEOF;
  if (t.conjunto->Bof()) estado = e.ultimoEstado = kBOF;
  t.estado = estado;
  DefinePonteiro(zv, estado);
}

Valor MetodoTabela(Interpretador& zv, const Texto& banco, const Texto& tabela, const Texto& metodo,
                   const std::vector<Texto>& a) {
  if (metodo == u"OPEN") return AbreTabela(zv, banco, tabela, a);
  TabelaAberta* t = AchaTabela(zv, banco, tabela);
  if (!t) return Valor::TextoComAspas(u"");
  ConjuntoSQL& c = *t->conjunto;
  EstadoSQL& e = Estado(zv);

  if (metodo == u"MOVEFIRST" || metodo == u"MOVELAST" || metodo == u"MOVENEXT" || metodo == u"MOVEPREVIOUS" ||
      metodo == u"DELETE" || metodo == u"UPDATE" || metodo == u"ADD") {
    if (metodo == u"MOVEFIRST") c.MoveFirst();
    else if (metodo == u"MOVELAST") c.MoveLast();
    else if (metodo == u"MOVENEXT") c.MoveNext();
    else if (metodo == u"MOVEPREVIOUS") c.MovePrevious();
    else if (metodo == u"DELETE") c.Delete();
    else if (metodo == u"UPDATE") c.Update();
    else c.AddNew();
    NotaPosicao(zv, *t);
    return Valor::TextoComAspas(u"");
  }
  if (metodo == u"EDIT") {
    zv.Bombeia();
    return Valor::TextoComAspas(u"");
  }
  if (metodo == u"FIND") {
    Texto criterio = zv.ValorTexto(a[1]).ComoTexto();
    try {
      c.MoveFirst();
    } catch (const FalhaSQL&) {
    }
    c.Find(criterio);
    e.ultimoEstado = c.Eof() ? kEOF : Texto();
    t->estado = c.Eof() ? kEOF : kOK;
    DefinePonteiro(zv, t->estado);
    return Valor::TextoComAspas(u"");
  }
  if (metodo == u"TOTALRECORDS") {
    try {
      c.MoveLast();
    } catch (const FalhaSQL&) {
      // An empty set has no last record: it has none at all.
    }
    if (c.Eof()) return Valor::DeInt32(0);
    int32_t n = c.RecordCount();
    c.MoveFirst();
    return Valor::DeInt32(n);
  }
  if (metodo == u"POINTER") return Valor::TextoComAspas(t->estado);
  if (metodo == u"CLOSE") {
    c.Fecha();
    *t = TabelaAberta();
    return Valor::TextoComAspas(u"");
  }

  // Any other word is a field: written with a value, read without.
  const Texto& primeiro = a[1];
  if (!primeiro.empty()) {
    const Texto& valor = primeiro == u"=" ? a[2] : primeiro;
    c.DefineCampo(metodo, ValorDoCampo(zv.ValorTexto(valor)));
    return Valor::TextoComAspas(u"");
  }
  if (!e.ultimoEstado.empty()) return Valor::TextoComAspas(u"");
  try {
    return Valor::TextoComAspas(TextoDoCampo(c.Campo(metodo)));
  } catch (const FalhaSQL&) {
    return Valor::TextoComAspas(u"");
  }
}

Valor MetodoBanco(Interpretador& zv, const Texto& banco, const Texto& metodo, const std::vector<Texto>& a) {
  if (metodo == u"OPEN") return AbreBanco(zv, banco, a);
  BancoAberto* b = AchaBanco(Estado(zv), banco);
  if (!b) {
    if (metodo == u"CLOSE" || metodo == u"EXECUTE") zv.CaixaCritica(msg::dados::kNomeBancoNaoEncontrado + banco);
    return Valor::TextoComAspas(u"");
  }
  if (metodo == u"EXECUTE") {
    b->conexao->Executa(zv.ValorTexto(a[1]).ComoTexto());
  } else if (metodo == u"CLOSE") {
    // Its record sets go with it; the slot stays spent for the run.
    for (TabelaAberta& t : b->tabelas) {
      try {
        if (t.conjunto) t.conjunto->Fecha();
      } catch (const FalhaSQL&) {
      }
      t = TabelaAberta();
    }
    b->nome.clear();
    b->conexao->Fecha();
  }
  return Valor::TextoComAspas(u"");
}

Valor SQL(Interpretador& zv, const Texto& args) {
  std::vector<Texto> a = zv.SeparaArgumentos(args, 6, true);
  // The first argument is raw: database, table and method, cut at points.
  Texto nomes = Maiusculas(Apara(a[0]));
  size_t p1 = nomes.find(u'.');
  if (p1 == Texto::npos) return Valor::TextoComAspas(u"");
  Texto banco = Apara(nomes.substr(0, p1));
  size_t p2 = nomes.find(u'.', p1 + 1);
  try {
    if (p2 == Texto::npos) {
      Texto metodo = Apara(nomes.substr(p1 + 1));
      if (metodo.empty()) return Valor::TextoComAspas(u"");
      return MetodoBanco(zv, banco, metodo, a);
    }
    Texto tabela = Apara(nomes.substr(p1 + 1, p2 - p1 - 1));
    Texto metodo = Apara(nomes.substr(p2 + 1));
    if (metodo.empty()) return Valor::TextoComAspas(u"");
    return MetodoTabela(zv, banco, tabela, metodo, a);
  } catch (const FalhaSQL& f) {
    return Valor::TextoComAspas(msg::Formata(msg::dados::kErroSQL, InteiroParaTexto(f.numero), f.descricao));
  }
}

}  // namespace

void RegistraSQL() { Comandos().Define(u"SQL", SQL); }

}  // namespace zv
