// Every text the record database shows a user or a tool: the boxes of the
// record commands and of the DB block, and the descriptions its file fails
// with (zvdb prints the same). Build texts with parts through msg::Formata
// (core/mensagens.h); "(sic)" marks the system's own wording, odd spelling
// and grammar included, kept as it stands.
#pragma once

#include "core/mensagens.h"
#include "library/mensagens.h"

namespace zv::msg::dados {

// ---- Where: the database a declaration names ---------------------------------

inline constexpr char16_t kNaBase[] = u"Error ({}): ";
inline Texto NaBase(TextoV nome, TextoV mensagem) { return Formata(kNaBase, nome) + Texto(mensagem); }

// ---- The DB block -----------------------------------------------------------

inline constexpr char16_t kSemEndDB[] = u"the DB block has no EndDB!";
inline constexpr char16_t kTipoDeCampo[] =
    u"the field '{}' has the type '{}'; the types are String, AutoInc, Integer and Decimal";
inline constexpr char16_t kSenhaLonga[] = u"the password can't be longer than {} characters";
inline constexpr char16_t kBasesDemais[] = u"a program can't declare more than {} databases!";
// Behind the damage of a file met at its declaration.
inline constexpr char16_t kDeixadoComoEsta[] = u".\r\nThe file was left as it is.";
// (sic), after NaBase.
inline constexpr char16_t kTamanhoMudou[] =
    u"The size of the file fields have changed.\r\n"
    u"Return to the original structure of the fields, or delete the file\r\n"
    u"so that the ZV create a new file with a new structure.\r\n"
    u"Warning! if the file is deleted, the records already\r\n"
    u"in the database can not be recovered!";

// What a declaration can't be (behind NaBase, with a "!").
inline constexpr char16_t kSemNome[] = u"the database has no name";
inline constexpr char16_t kNomeLongo[] = u"the name of a database can't be longer than {} characters";
inline constexpr char16_t kSemCampos[] = u"the database has no fields";
inline constexpr char16_t kCamposDemais[] = u"a database can't have more than {} fields";
inline constexpr char16_t kCampoSemNome[] = u"a field has no name";
inline constexpr char16_t kNomeDeCampoLongo[] = u"the name of the field '{}' is longer than {} characters";
inline constexpr char16_t kComprimentoNegativo[] = u"the field '{}' has a negative length";
inline constexpr char16_t kRegistroLongo[] = u"a record can't be longer than {} bytes (this one has {})";

// ---- The record commands ----------------------------------------------------

inline constexpr char16_t kDescritorNaoEncontrado[] = u"Error: Database descriptor '{}' not found!";
inline constexpr char16_t kBaseFechada[] = u"Bad file name or number: the database '{}' is not open (OpenDB)";
inline constexpr char16_t kOpenDBSemArquivo[] = u"Error in function OpenDB - File not found: {}";  // (sic)
inline constexpr char16_t kSenhaInvalida[] = u"Error connecting do database '{}': Invalid password!";  // (sic)
// The command's name, then the field's full name.
inline constexpr char16_t kCampoPequeno[] =
    u"{}: The size of the field '{}'\r\nis smaller than the data size allocated to the field!";
inline constexpr char16_t kPosicaoInvalida[] =
    u"Invalid position:{}\r\nPositions range from 0 to the total records in the file minus 1.";  // (sic)
inline constexpr char16_t kNaoAtualiza[] = u"Can't update record: invalid position!";
inline constexpr char16_t kNaoApaga[] = u"Can't delete record: invalid position!";
inline constexpr char16_t kNaoLe[] = u"Can't read record: invalid position!";
inline constexpr char16_t kCampoIndiceNaoEncontrado[] = u"Index field not found in database: {}";
// FindDB before OrderDB: the command's prefix, then this.
inline constexpr char16_t kFindDBSemOrdem[] =
    u"FindDB!\r\nMake sure you set the order of the database with the command OrderDB!";
inline Texto FindDBSemOrdem() { return Texto(kErroEmComando) + kFindDBSemOrdem; }
// (sic), the work file's path behind it.
inline constexpr char16_t kOutroCompacta[] =
    u"Another user is clearing the database!\r\n"
    u"If you are sure that no user's performing this routine,\r\n"
    u"delete the file {}";

// ---- The file ---------------------------------------------------------------

inline constexpr char16_t kArquivoDanificado[] = u"The database file {} is damaged: {}";
// A write refused because the file was found damaged before.
inline constexpr char16_t kEscritaRecusada[] = u"The database file {} is damaged: {}. Nothing was written to it.";
// The file's path in front; nothing waits on what isn't a plain file.
inline constexpr char16_t kPastaNoLugar[] = u"{} is a folder, not a database file";
inline constexpr char16_t kNaoEArquivoComum[] = u"{} is not a plain file, not a database file";
inline constexpr char16_t kArquivoCheio[] = u"The database file {} is full: it holds {} records, the most a file can";
inline constexpr char16_t kArquivoFechado[] = u"the database file is not open";
inline constexpr char16_t kFechadoNaEspera[] = u"the database file was closed while waiting for its lock";
inline constexpr char16_t kSomenteLeitura[] = u"the database file is open for reading only";
inline constexpr char16_t kMarcaNaoCabe[] =
    u"the records of this database are too short ({} bytes) to carry the deleted mark";
inline constexpr char16_t kValorNaoCabe[] = u"a header value doesn't fit its slot: {}";
// Given up only by a run that ends; nobody is told, but it has a text.
inline constexpr char kEsperaDesistida[] = "the wait for the database lock was given up";

// What is wrong with a damaged file (behind kArquivoDanificado).
inline constexpr char16_t kCurtoDemais[] = u"it is shorter than its header";
inline constexpr char16_t kCurtoDemaisBytes[] = u"it is shorter than its header ({} of {} bytes)";
inline constexpr char16_t kTravaInvalida[] = u"its lock byte is neither \"0\" nor \"1\"";
inline constexpr char16_t kContagemIlegivel[] = u"its record count can't be read";
inline constexpr char16_t kNomeIlegivel[] = u"its database name can't be read";
inline constexpr char16_t kTamanhoIlegivel[] = u"its record size can't be read";
inline constexpr char16_t kCriacaoIlegivel[] = u"its creation stamp can't be read";
inline constexpr char16_t kDeclaracaoIlegivel[] = u"its declaration stamp can't be read";
inline constexpr char16_t kSenhaIlegivel[] = u"its password can't be read";
inline constexpr char16_t kNomeDeCampoIlegivel[] = u"the name of its field {} can't be read";
inline constexpr char16_t kSemMarcaFim[] = u"its field table has no end mark";
inline constexpr char16_t kComprimentoIlegivel[] = u"the length of its field '{}' can't be read";
inline constexpr char16_t kTipoIlegivel[] = u"the type of its field '{}' can't be read";
inline constexpr char16_t kComprimentoErrado[] = u"its field '{}' has a length that doesn't fit its type";
inline constexpr char16_t kNenhumCampo[] = u"it has no fields";
inline constexpr char16_t kSomaDiferente[] = u"its fields add up to {} bytes, but its record size says {}";
inline constexpr char16_t kContagemAlemDoFim[] = u"its count says {} records, but the file holds only {}";
// The bytes behind the last record, then the record size.
inline constexpr char16_t kSobraNoFim[] = u"{} bytes behind its last record don't make whole records of {} bytes";
inline constexpr char16_t kRegistroAlemDoFim[] = u"its record {} lies beyond the end of the file";
inline constexpr char16_t kCampoIlegivel[] = u"the field '{}' of its record {} can't be read";

// What the system refused to do with the file: the action, the file's name,
// ": " and the system's own reason.
inline constexpr char kNaoEscreve[] = "Can't write to";
inline constexpr char kNaoLeArquivo[] = "Can't read";
inline constexpr char kNaoExamina[] = "Can't examine";
inline constexpr char kNaoExaminaTrava[] = "Can't examine the lock of";
inline constexpr char kNaoReabre[] = "Can't open again";
inline constexpr char kNaoAbre[] = "Can't open";
inline constexpr char kNaoAbreNemCria[] = "Can't open or create";
inline constexpr char kNaoCria[] = "Can't create";
inline constexpr char kNaoTrava[] = "Can't lock";
inline constexpr char kNaoSubstitui[] = "Can't put in place of the database";
// Repair's own: the file it writes, the copy it keeps, the file it replaces.
inline constexpr char kNaoGrava[] = "Can't write";
inline constexpr char kNaoGuardaCopia[] = "Can't keep the file as it was in";
inline constexpr char kNaoPoeReparado[] = "Can't put the mended file in place of";

// ---- Repair -----------------------------------------------------------------

// Why a file can't be mended (zvdb repair prints it behind the file's name).
inline constexpr char16_t kNaoExiste[] = u"there is no such file";
inline constexpr char16_t kEmUso[] = u"a running program is using it; try again when it has stopped";
inline constexpr char16_t kIlegivel[] = u"it can't be read";
inline constexpr char16_t kTabelaSemDeclaracao[] =
    u"its field table can't be read; give the DB block's fields (--declared) to rebuild it";
// The problem with the fields, behind it.
inline constexpr char16_t kCamposInusaveis[] = u"its fields can't be used: {}";

// What a repair did, one finding a line.
inline constexpr char16_t kTabelaRefeita[] = u"its field table can't be read: it is rebuilt from the declared fields";
inline constexpr char16_t kNomeDoArquivo[] = u"its database name is taken from the file's name: {}";
inline constexpr char16_t kSenhaDescartada[] = u"its password can't be read: the mended file has none";
// The first and the last record dropped.
inline constexpr char16_t kRegistrosCortados[] = u"records {} to {} are dropped: the file ends before them";
inline constexpr char16_t kContagemPeloComprimento[] = u"its count is taken from its length: {} records";
inline constexpr char16_t kSobraDescartada[] = u"{} bytes behind the last record are dropped";
// What is wrong with the record (kCampoIlegivel) in front.
inline constexpr char16_t kRegistroDescartado[] = u"{}: the record is dropped";
inline constexpr char16_t kRegistroMarcado[] = u"{}: its values are dropped and it stands as deleted";

// ---- SQL ---------------------------------------------------------------------

inline constexpr char16_t kBancosDemais[] = u"Can't open more than 10 database files!";
inline constexpr char16_t kCursorSemTrava[] = u"Error: If you inform the cursor type, you must also inform the lock type!";
inline constexpr char16_t kBancoNaoEncontrado[] = u"Name of the database not found!";
inline constexpr char16_t kTabelasDemais[] =
    u"Can't open more than 10 tables at the same time to the same database!\r\n"
    u"Use the 'Close' method to close tables and free up space!";
// (sic), the name behind each.
inline constexpr char16_t kNomeBancoNaoEncontrado[] = u"Nome do banco de dados não encontrado: ";
inline constexpr char16_t kNomeTabelaNaoEncontrada[] = u"Nome da tabela não encontrada: ";
// A failure of the database, as the command's result: number, description.
inline constexpr char16_t kErroSQL[] = u"SQL Error {}: {}";
// The database layer's own failures, worded as users of record sets know them.
inline constexpr char16_t kTextoArgumentos[] =
    u"Arguments are of the wrong type, are out of acceptable range, or are in conflict with one another.";
inline constexpr char16_t kTextoSemRegistro[] =
    u"Either BOF or EOF is True, or the current record has been deleted. Requested operation requires a current record.";
inline constexpr char16_t kTextoSemCampo[] =
    u"Item cannot be found in the collection corresponding to the requested name or ordinal.";
inline constexpr char16_t kTextoSoLeitura[] =
    u"Current Recordset does not support updating. This may be a limitation of the provider, or of the selected locktype.";
inline constexpr char16_t kTextoFechado[] =
    u"Operation is not allowed when the object is closed.";
inline constexpr char16_t kTextoSemDriver[] =
    u"Provider cannot be found. It may not be properly installed.";
inline constexpr char16_t kTextoLinhaSumiu[] =
    u"Row cannot be located for updating. Some values may have been changed since it was last read.";
inline constexpr char16_t kTextoLinhasDemais[] =
    u"Key column information is insufficient or incorrect. Too many rows were affected by update.";
inline constexpr char16_t kTextoParaTras[] =
    u"Rowset does not support fetching backward.";

}  // namespace zv::msg::dados
