// Date and time commands: dates are texts, read and written in the locale's
// short form; the calendar work is QDate's.
#include "library/datas.h"

#include <array>
#include <cmath>

#include <QRegularExpression>

#include "library/biblioteca.h"
#include "library/textos.h"

namespace zv {

namespace {

const QDate kBaseSerial(1899, 12, 30);
constexpr int kAnoMinimo = 100, kAnoMaximo = 9999;

bool AnoValido(const QDate& d) { return d.isValid() && d.year() >= kAnoMinimo && d.year() <= kAnoMaximo; }

int64_t DivideParaBaixo(int64_t a, int64_t b) { return a / b - ((a % b != 0) && ((a < 0) != (b < 0))); }

// Day, month and year in the order the locale's short form writes them.
std::array<char, 3> OrdemDaData(const QLocale& l) {
  std::array<char, 3> ordem{};
  size_t n = 0;
  bool citacao = false;
  for (QChar c : l.dateFormat(QLocale::ShortFormat)) {
    if (c == u'\'') citacao = !citacao;
    if (citacao || (c != u'd' && c != u'M' && c != u'y')) continue;
    char k = static_cast<char>(c.unicode());
    bool visto = false;
    for (size_t i = 0; i < n; ++i) visto = visto || ordem[i] == k;
    if (!visto && n < 3) ordem[n++] = k;
  }
  if (n < 3) return {'M', 'd', 'y'};
  return ordem;
}

// Three numbers separated by '/', '-', '.' or blanks.
bool LeDataNumerica(TextoV t, const QLocale& l, QDate& data) {
  std::array<TextoV, 3> partes;
  size_t n = 0, i = 0;
  while (i < t.size()) {
    size_t j = i;
    while (j < t.size() && EDigito(t[j])) ++j;
    if (j == i || n == 3 || j - i > 4) return false;
    partes[n++] = t.substr(i, j - i);
    i = j;
    size_t seps = 0;
    while (i < t.size() && (t[i] == u'/' || t[i] == u'-' || t[i] == u'.' || t[i] == u' ')) ++i, ++seps;
    if (seps == 0 && i < t.size()) return false;
  }
  if (n != 3) return false;
  std::array<char, 3> ordem = partes[0].size() > 2 ? std::array<char, 3>{'y', 'M', 'd'} : OrdemDaData(l);
  int dia = 0, mes = 0, ano = 0;
  for (size_t k = 0; k < 3; ++k) {
    int v = 0;
    for (char16_t c : partes[k]) v = v * 10 + (c - u'0');
    if (ordem[k] == 'y') {
      // Two-digit years fall in 1930 to 2029.
      if (partes[k].size() <= 2) v += v < 30 ? 2000 : 1900;
      ano = v;
    } else if (partes[k].size() > 2) {
      return false;
    } else if (ordem[k] == 'M') {
      mes = v;
    } else {
      dia = v;
    }
  }
  data = QDate(ano, mes, dia);
  return data.isValid();
}

// Month names: the locale's long form and the common written forms.
bool LeDataPorExtenso(TextoV t, const QLocale& l, QDate& data) {
  static const char* const kFormas[] = {"d MMMM yyyy", "d MMM yyyy",  "MMMM d, yyyy", "MMM d, yyyy",
                                        "MMMM d yyyy", "MMM d yyyy",  "d-MMM-yyyy",   "d MMMM, yyyy",
                                        "dddd, MMMM d, yyyy", "dddd, d MMMM yyyy"};
  QString s = QS(t);
  bool algumaLetra = false;
  for (QChar c : s) algumaLetra = algumaLetra || c.isLetter();
  if (!algumaLetra) return false;
  std::array<QLocale, 2> locales{l, QLocale::c()};
  size_t nLocales = l.language() == QLocale::English ? 1 : 2;
  for (size_t k = 0; k < nLocales; ++k) {
    // The locale's long form, with and without its weekday.
    QString longa = locales[k].dateFormat(QLocale::LongFormat);
    QString semDia = longa;
    static const QRegularExpression kDiaDaSemana(QStringLiteral("d{4}[,.]?\\s*"));
    semDia.remove(kDiaDaSemana);
    for (const QString& f : {longa, semDia}) {
      data = locales[k].toDate(s, f);
      if (data.isValid()) return true;
    }
    for (const char* f : kFormas) {
      data = locales[k].toDate(s, QString::fromLatin1(f));
      if (data.isValid()) return true;
    }
  }
  return false;
}

// "H:mm[:ss]" with an optional AM or PM (or the locale's words for them).
bool LeHora(TextoV t, const QLocale& l, QTime& hora) {
  int campos[3] = {0, 0, 0};
  size_t n = 0, i = 0;
  while (n < 3) {
    size_t j = i;
    while (j < t.size() && EDigito(t[j]) && j - i < 2) campos[n] = campos[n] * 10 + (t[j++] - u'0');
    if (j == i) return false;
    ++n;
    i = j;
    if (i < t.size() && t[i] == u':') {
      ++i;
    } else {
      break;
    }
  }
  if (n < 2) return false;
  QString resto = QS(Apara(t.substr(i))).toUpper();
  int h = campos[0];
  if (!resto.isEmpty()) {
    bool am = resto == u"AM" || resto == u"A" || resto == l.amText().toUpper();
    bool pm = resto == u"PM" || resto == u"P" || resto == l.pmText().toUpper();
    if ((!am && !pm) || h < 1 || h > 12) return false;
    h = h % 12 + (pm ? 12 : 0);
  }
  hora = QTime(h, campos[1], campos[2]);
  return hora.isValid();
}

}  // namespace

const QLocale& LocaleDatas() {
  static const QLocale l = [] {
    QLocale s = QLocale::system();
    return s.language() == QLocale::C ? QLocale(QLocale::English, QLocale::UnitedStates) : s;
  }();
  return l;
}

QDateTime Momento(QDate data, QTime hora) { return QDateTime(data, hora, Qt::UTC); }

QString FormatoDataCurta(const QLocale& l) {
  QString f = l.dateFormat(QLocale::ShortFormat), r;
  bool citacao = false;
  for (qsizetype i = 0; i < f.size();) {
    if (f[i] == u'\'') citacao = !citacao;
    if (!citacao && f[i] == u'y') {
      while (i < f.size() && f[i] == u'y') ++i;
      r += u"yyyy";
    } else {
      r += f[i++];
    }
  }
  return r;
}

QString FormatoHora(const QLocale& l) {
  // The long form without its time zone; a form that isn't "h:mm:ss"-like
  // couldn't be read back, and gives way to the 24-hour one.
  QString f = l.timeFormat(QLocale::LongFormat);
  f.remove(u't').remove(QStringLiteral("()"));
  f = f.trimmed();
  return f.contains(u"mm:ss") ? f : QStringLiteral("HH:mm:ss");
}

Texto TextoMomento(const QDateTime& m, const QLocale& l) {
  bool temHora = m.time().msecsSinceStartOfDay() != 0;
  Texto hora = temHora ? TX(l.toString(m.time(), FormatoHora(l))) : Texto();
  if (temHora && m.date() == kBaseSerial) return hora;
  Texto r = TX(l.toString(m.date(), FormatoDataCurta(l)));
  if (temHora) r += u" " + hora;
  return r;
}

bool LeData(TextoV texto, const QLocale& l, QDateTime& m) {
  Texto t = Apara(texto);
  if (t.empty()) return false;
  QTime hora(0, 0);
  TextoV parteData = t;
  size_t dp = t.find(u':');
  if (dp != NPOS) {
    size_t ini = dp;
    while (ini > 0 && EDigito(t[ini - 1])) --ini;
    if (ini == dp || (ini > 0 && t[ini - 1] != u' ' && t[ini - 1] != u'T')) return false;
    if (!LeHora(TextoV(t).substr(ini), l, hora)) return false;
    parteData = TextoV(t).substr(0, ini > 0 ? ini - 1 : 0);
    while (!parteData.empty() && parteData.back() == u' ') parteData.remove_suffix(1);
  }
  QDate data = kBaseSerial;
  if (!parteData.empty() && !LeDataNumerica(parteData, l, data) && !LeDataPorExtenso(parteData, l, data))
    return false;
  if (!AnoValido(data)) return false;
  m = Momento(data, hora);
  return true;
}

double SerialDoMomento(const QDateTime& m) {
  double dias = static_cast<double>(kBaseSerial.daysTo(m.date()));
  double fracao = m.time().msecsSinceStartOfDay() / 86400000.0;
  return dias >= 0 ? dias + fracao : dias - fracao;
}

bool MomentoDoSerial(double serial, QDateTime& m) {
  if (!std::isfinite(serial) || std::fabs(serial) > 4e6) return false;
  double dias = std::trunc(serial);
  // Dates show whole seconds; the time of a negative value counts forward too.
  int64_t segundos = std::llround(std::fabs(serial - dias) * 86400);
  int64_t d = static_cast<int64_t>(dias);
  if (segundos >= 86400) {
    ++d;
    segundos -= 86400;
  }
  QDate data = kBaseSerial.addDays(d);
  if (!AnoValido(data)) return false;
  m = Momento(data, QTime(0, 0).addSecs(static_cast<int>(segundos)));
  return true;
}

Intervalo IntervaloDaUnidade(TextoV unidade) {
  static const std::pair<const char16_t*, Intervalo> kUnidades[] = {
      {u"SECOND", Intervalo::Segundo}, {u"MINUTE", Intervalo::Minuto},     {u"HOUR", Intervalo::Hora},
      {u"WEEK", Intervalo::Semana},    {u"WEEKDAY", Intervalo::DiaSemana}, {u"DAY", Intervalo::Dia},
      {u"DAYYEAR", Intervalo::DiaAno}, {u"MONTH", Intervalo::Mes},         {u"YEAR", Intervalo::Ano}};
  Texto m = Maiusculas(Apara(unidade));
  for (const auto& [nome, u] : kUnidades)
    if (m == nome) return u;
  return Intervalo::Nenhum;
}

bool SomaIntervalo(Intervalo u, int64_t n, QDateTime& m) {
  // Beyond these no result stays within the years 100 to 9999.
  if (n > 400000000000LL || n < -400000000000LL) return false;
  int64_t dias = 0, segundos = 0;
  switch (u) {
    case Intervalo::Segundo: segundos = n; break;
    case Intervalo::Minuto: segundos = n * 60; break;
    case Intervalo::Hora: segundos = n * 3600; break;
    case Intervalo::Semana: dias = n * 7; break;
    case Intervalo::DiaSemana:
    case Intervalo::Dia:
    case Intervalo::DiaAno: dias = n; break;
    case Intervalo::Mes:
    case Intervalo::Ano:
      if (n > 120000 || n < -120000) return false;
      m = u == Intervalo::Mes ? m.addMonths(static_cast<int>(n)) : m.addYears(static_cast<int>(n));
      return AnoValido(m.date());
    case Intervalo::Nenhum: return false;
  }
  if (dias > 4000000 || dias < -4000000) return false;
  m = m.addDays(dias).addSecs(segundos);
  return AnoValido(m.date());
}

int64_t DiferencaIntervalo(Intervalo u, const QDateTime& a, const QDateTime& b) {
  int64_t diaA = kBaseSerial.daysTo(a.date()), diaB = kBaseSerial.daysTo(b.date());
  int64_t segA = diaA * 86400 + a.time().msecsSinceStartOfDay() / 1000;
  int64_t segB = diaB * 86400 + b.time().msecsSinceStartOfDay() / 1000;
  switch (u) {
    case Intervalo::Segundo: return segB - segA;
    case Intervalo::Minuto: return DivideParaBaixo(segB, 60) - DivideParaBaixo(segA, 60);
    case Intervalo::Hora: return DivideParaBaixo(segB, 3600) - DivideParaBaixo(segA, 3600);
    // Day 1 of the count, 31 December 1899, was a Sunday.
    case Intervalo::Semana: return DivideParaBaixo(diaB - 1, 7) - DivideParaBaixo(diaA - 1, 7);
    case Intervalo::DiaSemana: return (diaB - diaA) / 7;
    case Intervalo::Dia:
    case Intervalo::DiaAno: return diaB - diaA;
    case Intervalo::Mes:
      return (int64_t{b.date().year()} - a.date().year()) * 12 + b.date().month() - a.date().month();
    case Intervalo::Ano: return int64_t{b.date().year()} - a.date().year();
    case Intervalo::Nenhum: break;
  }
  return 0;
}

Texto NomeDiaSemana(int dia, TextoV idioma) {
  struct Linha {
    const char16_t* codigo;
    std::array<const char16_t*, 7> nomes;
  };
  static const Linha kTabela[] = {
      {u"EN", {u"Sunday", u"Monday", u"Tuesday", u"Wednesday", u"Thursday", u"Friday", u"Saturday"}},
      {u"PT",
       {u"Domingo", u"Segunda-feira", u"Terça-feira", u"Quarta-feira", u"Quinta-feira", u"Sexta-feira",
        u"Sábado"}},
      {u"GR", {u"Sonntag", u"Montag", u"Dienstag", u"Mittwoch", u"Donnerstag", u"Freitag", u"Samstag"}},
      {u"SP", {u"Domingo", u"Lunes", u"Martes", u"Miércoles", u"Jueves", u"Viernes", u"Sábado"}},
      {u"IT", {u"Domenica", u"Lunedi", u"Martedì", u"Mercoledì", u"Giovedi", u"Venerdì", u"Sabato"}},
      {u"FR", {u"Dimanche", u"Lundi", u"Mardi", u"Mercredi", u"Jeudi", u"Vendredi", u"Samedi"}},
  };
  if (dia < 0 || dia > 6) return Texto();
  for (const Linha& linha : kTabela)
    if (idioma == linha.codigo) return linha.nomes[static_cast<size_t>(dia)];
  return Texto();
}

int DiaDaSemana(QDate d) { return d.dayOfWeek() % 7; }

QDateTime MomentoDoValor(const Valor& v) {
  QDateTime m;
  if (v.tipo == Valor::Tipo::Data || v.ENumero() || v.tipo == Valor::Tipo::Booleano) {
    if (!MomentoDoSerial(v.tipo == Valor::Tipo::Data ? v.d : v.ComoDouble(), m)) throw FalhaHost(falha::Estouro);
    return m;
  }
  if (!LeData(v.ComoTexto(), LocaleDatas(), m)) throw FalhaHost(falha::TipoIncompativel);
  return m;
}

namespace {

Texto TextoSerial(double serial) {
  QDateTime m;
  if (!MomentoDoSerial(serial, m)) return NumeroParaTexto(serial);
  return TextoMomento(m, LocaleDatas());
}

Valor Date(Interpretador&, const Texto&) {
  const QLocale& l = LocaleDatas();
  return Valor::TextoComAspas(TX(l.toString(QDate::currentDate(), FormatoDataCurta(l))));
}

Valor Time(Interpretador&, const Texto&) {
  const QLocale& l = LocaleDatas();
  return Valor::TextoComAspas(TX(l.toString(QTime::currentTime(), FormatoHora(l))));
}

// Day, Month and Year: no argument, or an empty one, means today.
QDate DataOuHoje(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, 4);
  if (!Presente(a, 0)) return QDate::currentDate();
  Valor v = zv.ValorTexto(a[0]);
  if (v.ETexto() && Apara(v.s).empty()) return QDate::currentDate();
  return MomentoDoValor(v).date();
}

Valor Day(Interpretador& zv, const Texto& argumentos) {
  return Valor::DeTexto(InteiroParaTexto(DataOuHoje(zv, argumentos).day()));
}

Valor Month(Interpretador& zv, const Texto& argumentos) {
  return Valor::DeTexto(InteiroParaTexto(DataOuHoje(zv, argumentos).month()));
}

Valor Year(Interpretador& zv, const Texto& argumentos) {
  return Valor::DeTexto(InteiroParaTexto(DataOuHoje(zv, argumentos).year()));
}

Valor WeekDay(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, 6);
  int dia = DiaDaSemana(MomentoDoValor(ArgNumerico(zv, a, 0)).date());
  Texto idioma = Presente(a, 1) ? Maiusculas(Apara(zv.ValorNumerico(a[1]).ComoTexto())) : Texto();
  Texto nome = NomeDiaSemana(dia, idioma);
  return Valor::TextoComAspas(nome.empty() ? InteiroParaTexto(dia) : nome);
}

Intervalo IntervaloExigido(TextoV unidade) {
  Intervalo u = IntervaloDaUnidade(unidade);
  if (u == Intervalo::Nenhum) throw FalhaHost(falha::ChamadaInvalida);
  return u;
}

Valor DateAdd(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, 6);
  Intervalo u = IntervaloExigido(ArgNumerico(zv, a, 0).ComoTexto());
  double quantidade = std::trunc(ArgDouble(zv, a, 1));
  QDateTime m = MomentoDoValor(ArgNumerico(zv, a, 2));
  if (std::fabs(quantidade) > 1e15 || !SomaIntervalo(u, static_cast<int64_t>(quantidade), m))
    throw FalhaHost(falha::ChamadaInvalida);
  return Valor::TextoComAspas(TextoMomento(m, LocaleDatas()));
}

Valor DateDiff(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, 6);
  Intervalo u = IntervaloExigido(ArgTexto(zv, a, 0));
  QDateTime m1 = MomentoDoValor(zv.ValorTexto(Obrigatorio(a, 1)));
  QDateTime m2 = MomentoDoValor(zv.ValorTexto(Obrigatorio(a, 2)));
  int64_t d = DiferencaIntervalo(u, m1, m2);
  if (d > INT32_MAX || d < INT32_MIN) throw FalhaHost(falha::Estouro);
  return Valor::DeInt32(static_cast<int32_t>(d));
}

Valor RevDate(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, 4);
  QDate d = MomentoDoValor(zv.ValorTexto(Obrigatorio(a, 0))).date();
  return Valor::TextoComAspas(Preenche(d.year(), 4) + Preenche(d.month(), 2) + Preenche(d.day(), 2));
}

Valor TestDate(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, 4);
  Valor v = ArgNumerico(zv, a, 0);
  QDateTime m;
  bool data = v.tipo == Valor::Tipo::Data || (v.ETexto() && LeData(v.s, LocaleDatas(), m));
  return Valor::TextoComAspas(data ? u"TRUE" : u"FALSE");
}

}  // namespace

void RegistraDatas() {
  TabelaComandos& c = Comandos();
  c.Define(u"Date", Date, {.semTratador = true, .semArgumentos = true});
  c.Define(u"Time", Time, {.semTratador = true, .semArgumentos = true});
  c.Define(u"Day", Day);
  c.Define(u"Month", Month);
  c.Define(u"Year", Year);
  c.Define(u"WeekDay", WeekDay);
  c.Define(u"DateAdd", DateAdd);
  c.Define(u"DateDiff", DateDiff);
  c.Define(u"RevDate", RevDate);
  c.Define(u"TestDate", TestDate);
  FormataDataPadrao = TextoSerial;
}

}  // namespace zv
