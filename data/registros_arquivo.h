// The record file (.Zvf): a 20,000-byte header followed by fixed-size
// records, every value in its stored (scrambled) form. This engine knows the
// format, the lock, compaction and the order list; it needs no interpreter,
// so the zvdb tool and the benchmark use it as the language does.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <mutex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "core/texto.h"
#include "data/mensagens.h"

namespace zv {

// ---- Layout -----------------------------------------------------------------

inline constexpr int64_t kTamanhoCabecalho = 20000;
// Record 0 starts on the header's last byte: the two share it.
inline constexpr int64_t kInicioRegistros = 19999;
// The part of the header that the lock covers: lock byte and count.
inline constexpr int64_t kTamanhoTrava = 20;
inline constexpr int32_t kMaxRegistros = 999999;
inline constexpr int32_t kMaxCampos = 300;
inline constexpr int32_t kMaxTamanhoRegistro = 32767;
// Names of descriptors and fields, and passwords: a 25-byte slot less the
// five bytes of the stored form.
inline constexpr int32_t kMaxNome = 20;
inline constexpr char kLivre = '0';
inline constexpr char kOcupado = '1';
inline constexpr std::string_view kMarcaFim = "#Fim";
inline constexpr std::string_view kMarcaApagado = "#";
inline constexpr std::string_view kArquivoTrabalho = "Temp.Zvf";

// ---- Structure --------------------------------------------------------------

enum class TipoCampo : uint8_t { String, AutoInc, Integer, Decimal };

// The type words, exact case; false for any other word.
bool LeTipoCampo(TextoV palavra, TipoCampo& tipo);
const char16_t* PalavraTipo(TipoCampo tipo);

struct Campo {
  Texto nome;               // without the descriptor
  TipoCampo tipo = TipoCampo::String;
  int32_t comprimento = 0;  // data length: the declared length, 4 or 8
  int32_t largura = 0;      // width of its slot in a record
  int32_t posicao = 0;      // 1-based position of the slot in a record
};

struct Estrutura {
  Texto descritor;
  std::vector<Campo> campos;
  int32_t tamanhoRegistro = 0;  // the sum of the widths

  // Appends a field behind the last one. A String's length is its declared
  // length; the other types ignore it.
  void Acrescenta(Texto nome, TipoCampo tipo, int32_t comprimento = 0);
  // Index of a field by name (any case), or -1.
  int IndiceCampo(TextoV nome) const;
  // What stops this structure from being stored, or empty.
  Texto Problema() const;
};

// What the header holds besides the structure.
struct Cabecalho {
  char trava = kLivre;
  int32_t total = 0;
  Estrutura estrutura;
  Texto criacao, declaracao, senha;
};

// The 20,000 bytes of a header.
std::string MontaCabecalho(const Cabecalho& c);
// Reads a header; false, with the reason, when it can't be trusted.
bool LeCabecalho(std::string_view bytes, Cabecalho& c, Texto& problema);

// What can be read of a header, slot by slot, for mending a damaged one:
// each flag says whether its slot was read, and `problemas` lists the others
// in the header's order. The field table is read whole or not at all.
struct CabecalhoParcial {
  Cabecalho c;
  bool total = false, descritor = false, tamanho = false, criacao = false, declaracao = false, senha = false,
       campos = false;
  int32_t tamanhoDeclarado = 0;
  std::vector<Texto> problemas;
};
void LeCabecalhoParcial(std::string_view bytes, CabecalhoParcial& h);

// ---- Values -----------------------------------------------------------------

// The value of one field: `texto` for String, `inteiro` for Integer and
// AutoInc, `decimal` for Decimal.
struct ValorCampo {
  Texto texto;
  int32_t inteiro = 0;
  double decimal = 0;
};
using Registro = std::vector<ValorCampo>;

// A field's value as text, and that text left-justified (cut or padded)
// to the field's width: a column of the record's line.
Texto TextoValor(const Campo& campo, const ValorCampo& v);
Texto ColunaCampo(const Campo& campo, const ValorCampo& v);
// The record's line: a double quote, the columns, a double quote.
Texto LinhaRegistro(const Estrutura& e, const Registro& r);

// ---- Failures ---------------------------------------------------------------

// A failure of the file or of its contents; `what()` is plain UTF-8 and
// `descricao` the same text.
struct FalhaRegistros : std::runtime_error {
  Texto descricao;
  // Damage found in the file: which file, and what is wrong with it. A run
  // that sees one writes nothing more to that file.
  bool dano = false;
  Texto arquivo, problema;
  explicit FalhaRegistros(Texto d) : std::runtime_error(Utf8(d)), descricao(std::move(d)) {}
};

// "The database file … is damaged: …", and the refusal of a write to it.
Texto MensagemDano(const Texto& arquivo, const Texto& problema);
Texto MensagemEscritaRecusada(const Texto& arquivo, const Texto& problema);
FalhaRegistros FalhaDano(const Texto& arquivo, const Texto& problema, bool escrita = false);

// What is wrong with the length of a file whose header counts `total`
// records of `tamanho` bytes, or empty. Whole records behind the last counted
// one are not damage: UpdateRecord may write one there, and a program that
// died while adding leaves one.
Texto ProblemaComprimento(int64_t comprimento, int32_t total, int32_t tamanho);
// The wait for the lock was given up by the waiter.
struct EsperaInterrompida : std::runtime_error {
  EsperaInterrompida() : std::runtime_error(msg::dados::kEsperaDesistida) {}
};

// ---- The file ---------------------------------------------------------------

// An open record file. The count is changed under an operating-system lock
// over the lock byte and the count, besides the lock byte itself, so that two
// programs adding at once never take the same record number.
//
// Adds come in bursts (a loop of AddRecord), and taking and giving back the
// lock for each would cost most of their time. So an add keeps the lock for
// a moment (kRetencao), and further adds in that moment find it taken. Each
// add still writes its record and the count at once. A thread of the object
// gives the lock back when the moment is over even if the program does
// something else; every other operation gives it back first. A program
// waiting for the lock says so, and a holder then lets it in before it takes
// the lock again.
class ArquivoRegistros {
 public:
  ArquivoRegistros() = default;
  ~ArquivoRegistros();
  ArquivoRegistros(const ArquivoRegistros&) = delete;
  ArquivoRegistros& operator=(const ArquivoRegistros&) = delete;

  static constexpr std::chrono::microseconds kRetencao{1000};

  enum class Declaracao { Pronta, TamanhoDiferente, Danificada };
  // Creates the file with this structure and password when it is missing;
  // otherwise checks its record size against the structure. Either way the
  // last-declared stamp is written. Nothing else of an existing file changes.
  static Declaracao Declara(const std::filesystem::path& arquivo, const Estrutura& e, const Texto& senha,
                            const Texto& carimbo, Texto& problema);

  enum class Abertura { Aberta, NaoEncontrada, SenhaInvalida, TamanhoDiferente, Danificada };
  // Opens an existing file. With a structure, records are read and written
  // through it (it must have the file's record size); without one, through
  // the file's own field table. With a password, it must match the header's.
  // Read-only opening never writes, not even to clear a dead lock. A file
  // whose length doesn't fit its count is damaged; with `aindaQueCurto` a
  // read-only opening takes it all the same (for looking into it), with the
  // damage in Dano().
  Abertura Abre(const std::filesystem::path& arquivo, const Estrutura* estrutura, const Texto* senha,
                bool somenteLeitura, Texto& problema, bool aindaQueCurto = false);
  // Gives back a lock kept by the last adds.
  void SoltaRetida();
  void Fecha();
  bool Aberto() const { return fd_ >= 0; }
  const std::filesystem::path& Caminho() const { return caminho_; }
  // The header as read at opening (the count in it is not kept up to date).
  const Cabecalho& CabecalhoLido() const { return cabecalho_; }
  const Estrutura& estrutura() const { return estrutura_; }

  // Called while another program holds the lock, between tries; returning
  // false gives up the wait (EsperaInterrompida). It runs without the
  // object's own lock, so it may use this object again.
  std::function<bool()> aoEsperar;

  // The record count, read under the lock.
  int32_t Total();
  // Appends a record (see Monta); its AutoInc fields get the record's number,
  // taken under the lock with the count. Returns that number.
  int32_t Adiciona(std::string registro);
  // Writes a record at a record number (the caller has checked it against
  // the count). It first checks what it touches: the lock byte, the count,
  // the file's length and the record it replaces, if any.
  void Grava(int32_t numero, std::string_view registro);
  // The bytes of `quantos` records from `numero` on; a record past the end
  // of the file is an error.
  std::string LeBruto(int32_t numero, int32_t quantos = 1);

  // A record of the structure's size from values. Texts longer than their
  // field leave it blank and their field indexes go to `longos`. AutoInc
  // fields get `autoInc`, or stay blank when it is negative.
  std::string Monta(const Registro& valores, int32_t autoInc, std::vector<size_t>* longos) const;
  // The record that marks a deletion.
  std::string RegistroApagado() const;
  static bool EApagado(std::string_view bruto);
  // The values of a record; false when it is deleted. A blank slot reads as
  // the empty text or 0; a slot that can't be read is an error.
  bool Decodifica(std::string_view bruto, int32_t numero, Registro& valores) const;
  // One field only (the others stay as they are).
  void DecodificaCampo(std::string_view bruto, int32_t numero, size_t campo, ValorCampo& v) const;
  // Why a record can't be read whole ("the field 'Nome' of its record 3
  // can't be read"), or empty. Deleted records always read.
  Texto ProblemaRegistro(std::string_view bruto, int32_t numero) const;
  // The first record of 0 to total - 1 that can't be read, as above.
  Texto ProcuraDano(int32_t total);

  // Damage found in this file while it is open (or told by the caller):
  // from then on every write is refused and the file keeps its bytes.
  const Texto& Dano() const { return dano_; }
  void MarcaDano(const Texto& problema) { if (dano_.empty()) dano_ = problema; }

  enum class Compactacao { Feita, TrabalhoExiste };
  // Copies the live records into the work file of the folder, renumbering a
  // first AutoInc field, and puts the copy in the file's place. The file is
  // open again afterwards.
  Compactacao Compacta(std::filesystem::path& trabalho, int32_t& novoTotal);

  // How many records fit in the file's present length, and its length.
  int32_t RegistrosNoComprimento();
  int64_t Comprimento();
  // True when another program holds the lock right now.
  bool TravaComOutro();

 private:
  using Trinco = std::unique_lock<std::mutex>;
  using Relogio = std::chrono::steady_clock;

  static std::filesystem::path CaminhoTrabalho(const std::filesystem::path& arquivo);
  // Takes the operating-system lock, waiting as long as another process
  // holds it. A busy byte found then was left by a program that died: no
  // live program holds the byte without the lock. With `paraAdicionar` a
  // lock kept by an add stays; otherwise it is given back first.
  void Prende(Trinco& l, bool paraAdicionar);
  void SoltaTrava();
  // Gives the kept lock back.
  void Descarrega();
  // Before any operation but an add: the kept lock is given back.
  void Libera(Trinco& l);
  // After a burst, a program that waits goes first.
  void CedeAVez(Trinco& l);
  bool InteresseDeOutro();
  void MarcaInteresse(bool sim);
  void LacoSoltador();
  void ParaSoltador();
  // Reopens the file when a compaction elsewhere has put a new one in its
  // place; true when it did.
  bool Reabre();
  std::string LeTrava();
  // The lock's 20 bytes through a mapping of the file's start while adding.
  void Mapeia();
  void Desmapeia();
  void EscreveTrava(std::string_view bytes);
  // Without the object's own lock: for those who hold it.
  std::string LeRegistros(int32_t numero, int32_t quantos);
  int64_t TamanhoArquivo();
  void EscreveEm(int64_t posicao, std::string_view bytes);
  size_t LeEm(int64_t posicao, char* destino, size_t tamanho);
  void Falha(const char* acao) const;
  // Notes the damage and throws it.
  [[noreturn]] void Danificado(const Texto& problema) const;
  // Before any write: a file found damaged is refused.
  void RecusaSeDanificado() const;
  int32_t Contagem(std::string_view trava) const;

  int fd_ = -1;
  char* mapa_ = nullptr;
  bool somenteLeitura_ = false;
  std::filesystem::path caminho_;
  Cabecalho cabecalho_;
  Estrutura estrutura_;
  mutable Texto dano_;

  // The kept lock, shared with the thread.
  std::mutex m_;
  std::condition_variable cv_;
  std::thread soltador_;
  bool parar_ = false;
  bool retida_ = false;
  std::string trava_;     // the 20 bytes of the lock while kept
  int32_t contagem_ = 0;  // the count while kept
  Relogio::time_point tomadaEm_, soltaEm_;
};

// The record count in the 20 bytes of the lock; false when it can't be read.
bool LeContagem(std::string_view trava, int32_t& total);
// Puts a count into those 20 bytes (the bytes behind its slot stay).
void PoeContagem(std::string& trava, int32_t total);

// Why a record can't be read whole through a structure ("the field 'Nome'
// of its record 3 can't be read"), or empty. Deleted records always read.
Texto ProblemaRegistro(const Estrutura& e, std::string_view bruto, int32_t numero);

// ---- Repair -----------------------------------------------------------------

struct Reparo {
  std::vector<Texto> relato;     // what was mended or dropped, a line each
  int32_t mantidos = 0;          // records in the mended file, deleted ones too
  int32_t marcados = 0;          // of them, damaged ones that now stand deleted
  std::filesystem::path copia;   // where the file as it was is kept
};
enum class ResultadoReparo { Sao, Reparado, Impossivel };

// Mends a damaged file. Every record that reads whole keeps its place; one
// that doesn't is marked deleted, so that the records behind it keep their
// numbers (and AutoInc values); what lies behind the last whole record is
// dropped; header slots that can't be read are rebuilt (the name from the
// file's name, the size from the fields, the count from the records). The
// field table comes from the header or, when that can't be read, from
// `declarada`. The mended file is written beside the old one and renamed over
// it, and the old one stays as FILE.damaged (FILE.damaged.2, ...). A sound
// file is left alone. Nothing is done while a program holds the file's lock.
ResultadoReparo ReparaArquivo(const std::filesystem::path& arquivo, const Estrutura* declarada, Reparo& r,
                              Texto& problema);

// ---- Order list -------------------------------------------------------------

// The accented letters of Portuguese by their plain ones; at most the first
// 131 characters are kept.
Texto TiraAcentos(TextoV texto);

// The index key of a record: for each index field the characters of the
// record's line that start at its position, then the record number in six
// digits. A deleted record has only the six digits.
Texto ChaveIndice(const Estrutura& e, const Registro* valores, const std::vector<int>& camposIndice,
                  int32_t numero);

// The search key of FindDB: each value left-justified to the width of its
// index field (a longer value stays whole). False when there are more values
// than index fields.
bool ChaveBusca(const Estrutura& e, const std::vector<int>& camposIndice, const std::vector<Texto>& valores,
                Texto& chave);

enum class ModoBusca { Simples, Primeiro, Ultimo, Proximo };
// "FIRST", "LAST", "NEXT" (any case); anything else is the plain search.
ModoBusca LeModoBusca(TextoV modo);

// The sorted list of index keys of one database. Entries are kept in blocks
// so that inserting, removing and reaching the i-th entry stay cheap with
// hundreds of thousands of keys.
class ListaOrdem {
 public:
  void Limpa();
  int32_t Tamanho() const { return tamanho_; }
  void Insere(const Texto& chave, int32_t registro);
  void RemoveEm(int32_t indice);
  // The record number at an index, or -1 outside the list.
  int32_t RegistroEm(int32_t indice) const;
  // Builds the list at once from unsorted keys.
  void Monta(std::vector<std::pair<Texto, int32_t>> chaves);
  // Binary search by a search key; the list's index, or -1 when not found.
  int32_t Busca(TextoV chave, ModoBusca modo) const;

 private:
  struct Entrada {
    // The key as it sorts: no leading quote or blanks, capitals, no accents.
    Texto ordem;
    int32_t registro;
    uint16_t recuo;  // leading blanks taken off
    bool operator<(const Entrada& o) const {
      return ordem != o.ordem ? ordem < o.ordem : registro < o.registro;
    }
  };
  static Entrada FazEntrada(Texto chave, int32_t registro);
  const Entrada& Em(int32_t indice) const;
  void Reindexa() const;
  int Compara(const Texto& busca, size_t tamanhoBusca, int32_t indice) const;

  std::vector<std::vector<Entrada>> blocos_;
  int32_t tamanho_ = 0;
  mutable std::vector<int32_t> inicios_;  // first index of each block
  mutable bool sujo_ = false;
};

// Builds the order list of an open file by the given fields (indexes into
// its structure). Reads every record once.
void ConstroiOrdem(ArquivoRegistros& arquivo, const std::vector<int>& camposIndice, ListaOrdem& lista);

}  // namespace zv
