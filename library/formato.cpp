// Format: number and date patterns.
#include "library/formato.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "library/datas.h"
#include "library/numeros.h"
#include "library/textos.h"

namespace zv {

namespace {

bool NomeIgual(TextoV padrao, const char16_t* nome) { return Maiusculas(Apara(padrao)) == nome; }

// Walks a pattern: a "quoted" stretch and a \escaped character are literal
// text, handed whole to `literal`; every other character goes to `outro`,
// which returns how many characters it took.
template <class Literal, class Outro>
void PercorrePadrao(TextoV p, Literal literal, Outro outro) {
  for (size_t i = 0; i < p.size();) {
    if (p[i] == u'"') {
      size_t f = p.find(u'"', i + 1);
      if (f == TextoV::npos) f = p.size();
      literal(p.substr(i + 1, f - i - 1));
      i = f + 1;
    } else if (p[i] == u'\\') {
      if (i + 1 < p.size()) literal(p.substr(i + 1, 1));
      i += 2;
    } else {
      i += outro(i);
    }
  }
}

// ---- Numbers --------------------------------------------------------------

enum class Peca : uint8_t { Literal, Zero, Cerquilha, Ponto, Virgula, Porcento, Expoente };

struct ItemNumero {
  Peca tipo;
  Texto texto;          // Literal: the text; Expoente: the letter as written
  bool sinalMais = false;
  size_t digitosExp = 0;
};

bool EDigitoPadrao(Peca p) { return p == Peca::Zero || p == Peca::Cerquilha; }

// Sections split at ';' outside quotes and escapes.
std::vector<Texto> Secoes(TextoV p) {
  std::vector<Texto> s(1);
  bool aspas = false;
  for (size_t i = 0; i < p.size(); ++i) {
    char16_t c = p[i];
    if (!aspas && c == u'\\' && i + 1 < p.size()) {
      s.back() += p.substr(i++, 2);
      continue;
    }
    if (c == u'"') aspas = !aspas;
    if (c == u';' && !aspas)
      s.emplace_back();
    else
      s.back() += c;
  }
  return s;
}

std::vector<ItemNumero> LeSecaoNumero(TextoV s) {
  std::vector<ItemNumero> itens;
  bool ponto = false;
  PercorrePadrao(
      s, [&](TextoV lit) { itens.push_back({Peca::Literal, Texto(lit)}); },
      [&](size_t i) -> size_t {
        char16_t c = s[i];
        switch (c) {
          case u'0': itens.push_back({Peca::Zero, {}}); return 1;
          case u'#': itens.push_back({Peca::Cerquilha, {}}); return 1;
          case u',': itens.push_back({Peca::Virgula, {}}); return 1;
          case u'%': itens.push_back({Peca::Porcento, {}}); return 1;
          case u'.':
            itens.push_back({ponto ? Peca::Literal : Peca::Ponto, ponto ? Texto(u".") : Texto()});
            ponto = true;
            return 1;
          default: break;
        }
        if ((c == u'E' || c == u'e') && i + 1 < s.size() && (s[i + 1] == u'+' || s[i + 1] == u'-')) {
          size_t j = i + 2;
          while (j < s.size() && (s[j] == u'0' || s[j] == u'#')) ++j;
          itens.push_back({Peca::Expoente, Texto(1, c), s[i + 1] == u'+', j - i - 2});
          return j - i;
        }
        itens.push_back({Peca::Literal, Texto(1, c)});
        return 1;
      });
  return itens;
}

// The mantissa's digits for `inteiros` whole and `decimais` fraction places,
// rounded half up, and the power of ten that goes with them.
DigitosDecimais Mantissa(double v, size_t inteiros, size_t decimais, int& expoente) {
  DigitosDecimais t = DecompoeDecimal(v);
  std::string s;
  int e = 0;
  if (!t.inteira.empty()) {
    s = t.inteira + t.fracao;
    e = static_cast<int>(t.inteira.size()) - 1;
  } else if (size_t z = t.fracao.find_first_not_of('0'); z != std::string::npos) {
    s = t.fracao.substr(z);
    e = -static_cast<int>(z) - 1;
  }
  size_t n = std::max<size_t>(inteiros + decimais, 1);
  if (s.empty()) {
    s.assign(n, '0');
    expoente = 0;
  } else {
    DigitosDecimais m{s.substr(0, 1), s.substr(1)};
    ArredondaDigitos(m, n - 1, false);
    s = m.inteira + m.fracao;
    if (s.size() > n) {
      ++e;
      s.resize(n);
    }
    expoente = inteiros >= 1 ? e - static_cast<int>(inteiros - 1) : e + 1;
  }
  DigitosDecimais r{s.substr(0, inteiros), s.substr(inteiros)};
  size_t z = r.inteira.find_first_not_of('0');
  r.inteira = z == std::string::npos ? std::string() : r.inteira.substr(z);
  return r;
}

Texto FormataSecao(double v, std::vector<ItemNumero> itens, bool& tudoZero) {
  auto acha = [&](Peca p) {
    return static_cast<size_t>(std::find_if(itens.begin(), itens.end(), [&](auto& x) { return x.tipo == p; }) -
                               itens.begin());
  };
  size_t iExp = acha(Peca::Expoente);
  size_t fimInteira = std::min(acha(Peca::Ponto), iExp);
  size_t phInteira = 0, primeiroZero = NPOS;
  for (size_t i = 0; i < fimInteira; ++i)
    if (EDigitoPadrao(itens[i].tipo)) {
      if (itens[i].tipo == Peca::Zero && primeiroZero == NPOS) primeiroZero = phInteira;
      ++phInteira;
    }
  if (phInteira == 0) {
    // No whole-number places: the whole part still shows, before any '%'.
    size_t onde = std::min(acha(Peca::Porcento), fimInteira);
    itens.insert(itens.begin() + static_cast<long>(onde), ItemNumero{Peca::Cerquilha, {}});
    ++fimInteira;
    ++iExp;
    phInteira = 1;
  }
  // A comma between digit places groups thousands; commas behind the last
  // one divide by a thousand each.
  bool agrupa = false;
  int escala = 0, porcentos = 0;
  size_t vistos = 0;
  for (size_t i = 0; i < itens.size(); ++i) {
    if (EDigitoPadrao(itens[i].tipo) && i < fimInteira) ++vistos;
    if (itens[i].tipo == Peca::Porcento) ++porcentos;
    if (itens[i].tipo == Peca::Virgula && i < fimInteira && vistos > 0) {
      if (vistos < phInteira)
        agrupa = true;
      else
        ++escala;
    }
  }
  size_t decimais = 0;
  for (size_t i = fimInteira; i < iExp && i < itens.size(); ++i) decimais += EDigitoPadrao(itens[i].tipo);
  v = v * std::pow(100.0, porcentos) / std::pow(1000.0, escala);

  int expoente = 0;
  DigitosDecimais d;
  if (iExp < itens.size()) {
    d = Mantissa(v, phInteira, decimais, expoente);
  } else {
    d = DecompoeDecimal(v);
    ArredondaDigitos(d, decimais, false);
  }
  tudoZero = d.inteira.empty() && d.fracao.find_first_not_of('0') == std::string::npos;
  size_t minimo = primeiroZero == NPOS ? 0 : phInteira - primeiroZero;
  std::string inteira = d.inteira;
  if (inteira.size() < minimo) inteira.insert(0, minimo - inteira.size(), '0');

  // The whole part is laid from the right; the leftmost place takes every
  // digit that is left.
  Texto invertida;
  size_t k = inteira.size(), restantes = phInteira, postos = 0;
  auto poe = [&](char c) {
    if (agrupa && postos > 0 && postos % 3 == 0) invertida += u',';
    invertida += static_cast<char16_t>(c);
    ++postos;
  };
  for (size_t i = fimInteira; i-- > 0;) {
    const ItemNumero& it = itens[i];
    if (EDigitoPadrao(it.tipo)) {
      if (--restantes == 0)
        while (k > 0) poe(inteira[--k]);
      else if (k > 0)
        poe(inteira[--k]);
    } else if (it.tipo == Peca::Literal) {
      invertida.append(it.texto.rbegin(), it.texto.rend());
    } else if (it.tipo == Peca::Porcento) {
      invertida += u'%';
    }
  }
  Texto r(invertida.rbegin(), invertida.rend());

  // Trailing '#' places drop their zeros.
  std::vector<Peca> lugares;
  for (size_t i = fimInteira; i < iExp && i < itens.size(); ++i)
    if (EDigitoPadrao(itens[i].tipo)) lugares.push_back(itens[i].tipo);
  size_t mostrados = decimais;
  while (mostrados > 0 && lugares[mostrados - 1] == Peca::Cerquilha && d.fracao[mostrados - 1] == '0') --mostrados;
  size_t j = 0;
  for (size_t i = fimInteira; i < itens.size(); ++i) {
    const ItemNumero& it = itens[i];
    switch (it.tipo) {
      case Peca::Ponto: r += u'.'; break;
      case Peca::Literal: r += it.texto; break;
      case Peca::Porcento: r += u'%'; break;
      case Peca::Virgula: break;
      case Peca::Zero:
      case Peca::Cerquilha:
        if (j < mostrados) r += static_cast<char16_t>(d.fracao[j]);
        ++j;
        break;
      case Peca::Expoente: {
        r += it.texto;
        if (expoente < 0)
          r += u'-';
        else if (it.sinalMais)
          r += u'+';
        Texto e = InteiroParaTexto(expoente < 0 ? -expoente : expoente);
        if (e.size() < it.digitosExp) e.insert(0, it.digitosExp - e.size(), u'0');
        r += e;
        break;
      }
    }
  }
  return r;
}

Texto Moeda(double valor, const QLocale& l) {
  // The symbol and its blank where the locale puts them: "$1.00", "1,00 €".
  QString um = l.toCurrencyString(1.0);
  qsizetype a = 0, b = um.size();
  while (a < um.size() && !um[a].isDigit()) ++a;
  while (b > a && !um[b - 1].isDigit()) --b;
  Texto corpo = TX(um.left(a)) + FormataNumero(std::fabs(valor), u"#,##0.00", l) + TX(um.mid(b));
  if (valor >= 0) return corpo;
  return l.toCurrencyString(-1.0).startsWith(u'(') ? u"(" + corpo + u")" : u"-" + corpo;
}

// ---- Dates ----------------------------------------------------------------

enum class Campo : uint8_t { Literal, D, W, M, Q, Y, H, N, S, T, C, AmPm };

struct ItemData {
  Campo campo;
  size_t n = 0;
  Texto texto;  // Literal: the text; AmPm: the marker as written
};

Campo CampoDaLetra(char16_t c) {
  switch (Minuscula(c)) {
    case u'd': return Campo::D;
    case u'w': return Campo::W;
    case u'm': return Campo::M;
    case u'q': return Campo::Q;
    case u'y': return Campo::Y;
    case u'h': return Campo::H;
    case u'n': return Campo::N;
    case u's': return Campo::S;
    case u't': return Campo::T;
    case u'c': return Campo::C;
    default: return Campo::Literal;
  }
}

// The AM/PM markers, longest first.
size_t MarcadorAmPm(TextoV p, size_t i) {
  for (const char16_t* m : {u"AM/PM", u"AMPM", u"A/P"}) {
    TextoV mv(m);
    if (i + mv.size() <= p.size() && Maiusculas(p.substr(i, mv.size())) == mv) return mv.size();
  }
  return 0;
}

std::vector<ItemData> LePadraoData(TextoV p) {
  std::vector<ItemData> itens;
  PercorrePadrao(
      p, [&](TextoV lit) { itens.push_back({Campo::Literal, 0, Texto(lit)}); },
      [&](size_t i) -> size_t {
        if (size_t n = MarcadorAmPm(p, i)) {
          itens.push_back({Campo::AmPm, n, Texto(p.substr(i, n))});
          return n;
        }
        Campo c = CampoDaLetra(p[i]);
        if (c == Campo::Literal) {
          itens.push_back({Campo::Literal, 1, Texto(1, p[i])});
          return 1;
        }
        size_t j = i;
        while (j < p.size() && Minuscula(p[j]) == Minuscula(p[i])) ++j;
        itens.push_back({c, j - i, Texto(p.substr(i, j - i))});
        return j - i;
      });
  // "m" behind an hour or before seconds means minutes.
  auto vizinho = [&](size_t i, int passo) -> Campo {
    for (long k = static_cast<long>(i) + passo; k >= 0 && k < static_cast<long>(itens.size()); k += passo)
      if (itens[static_cast<size_t>(k)].campo != Campo::Literal) return itens[static_cast<size_t>(k)].campo;
    return Campo::Literal;
  };
  for (size_t i = 0; i < itens.size(); ++i)
    if (itens[i].campo == Campo::M && itens[i].n <= 2 && (vizinho(i, -1) == Campo::H || vizinho(i, 1) == Campo::S))
      itens[i].campo = Campo::N;
  return itens;
}

Texto Numero2(int v, size_t largura) { return largura >= 2 ? Preenche(v, 2) : InteiroParaTexto(v); }

int SemanaDoAno(QDate d) {
  int domingoAntes = DiaDaSemana(QDate(d.year(), 1, 1));
  return (d.dayOfYear() - 1 + domingoAntes) / 7 + 1;
}

Texto CampoData(const ItemData& it, const QDateTime& m, const QLocale& l, bool dozeHoras) {
  QDate d = m.date();
  QTime t = m.time();
  switch (it.campo) {
    case Campo::D:
      if (it.n <= 2) return Numero2(d.day(), it.n);
      if (it.n <= 4) return TX(l.dayName(d.dayOfWeek(), it.n == 3 ? QLocale::ShortFormat : QLocale::LongFormat));
      return TX(l.toString(d, it.n == 5 ? FormatoDataCurta(l) : l.dateFormat(QLocale::LongFormat)));
    case Campo::W:
      return InteiroParaTexto(it.n == 1 ? DiaDaSemana(d) + 1 : SemanaDoAno(d));
    case Campo::M:
      if (it.n <= 2) return Numero2(d.month(), it.n);
      return TX(l.monthName(d.month(), it.n == 3 ? QLocale::ShortFormat : QLocale::LongFormat));
    case Campo::Q:
      return InteiroParaTexto((d.month() + 2) / 3);
    case Campo::Y:
      if (it.n == 1) return InteiroParaTexto(d.dayOfYear());
      return it.n == 2 ? Preenche(d.year() % 100, 2) : Preenche(d.year(), 4);
    case Campo::H: {
      int h = t.hour();
      if (dozeHoras) h = h % 12 == 0 ? 12 : h % 12;
      return Numero2(h, it.n);
    }
    case Campo::N:
      return Numero2(t.minute(), it.n);
    case Campo::S:
      return Numero2(t.second(), it.n);
    case Campo::T:
      return it.n == 5 ? TX(l.toString(t, FormatoHora(l))) : it.texto;
    case Campo::C:
      return TextoMomento(m, l);
    case Campo::AmPm: {
      bool manha = t.hour() < 12;
      if (it.n == 4) return TX(manha ? l.amText() : l.pmText());
      // The marker's own case: AM/PM, am/pm, A/P, a/p.
      Texto r = it.n == 3 ? Texto(manha ? u"A" : u"P") : Texto(manha ? u"AM" : u"PM");
      return it.texto[0] == u'a' ? Minusculas(r) : r;
    }
    case Campo::Literal:
      return it.texto;
  }
  return Texto();
}

struct FormaNomeada {
  const char16_t* nome;
  Texto (*forma)(const QDateTime&, const QLocale&);
};

const FormaNomeada kFormasData[] = {
    {u"GENERAL DATE", [](const QDateTime& m, const QLocale& l) { return TextoMomento(m, l); }},
    {u"LONG DATE",
     [](const QDateTime& m, const QLocale& l) { return TX(l.toString(m.date(), l.dateFormat(QLocale::LongFormat))); }},
    {u"MEDIUM DATE", [](const QDateTime& m, const QLocale& l) { return TX(l.toString(m.date(), u"dd-MMM-yy")); }},
    {u"SHORT DATE",
     [](const QDateTime& m, const QLocale& l) { return TX(l.toString(m.date(), FormatoDataCurta(l))); }},
    {u"LONG TIME", [](const QDateTime& m, const QLocale& l) { return TX(l.toString(m.time(), FormatoHora(l))); }},
    {u"MEDIUM TIME", [](const QDateTime& m, const QLocale& l) { return TX(l.toString(m.time(), u"hh:mm AP")); }},
    {u"SHORT TIME", [](const QDateTime& m, const QLocale& l) { return TX(l.toString(m.time(), u"HH:mm")); }},
};

const char16_t* const kFormasNumero[] = {u"GENERAL NUMBER", u"CURRENCY", u"FIXED",      u"STANDARD", u"PERCENT",
                                         u"SCIENTIFIC",     u"YES/NO",   u"TRUE/FALSE", u"ON/OFF"};

}  // namespace

Texto FormataNumero(double valor, TextoV padrao, const QLocale& l) {
  Texto nome = Maiusculas(Apara(padrao));
  if (nome.empty() || nome == u"GENERAL NUMBER" || !std::isfinite(valor)) return NumeroParaTexto(valor);
  if (nome == u"CURRENCY") return Moeda(valor, l);
  if (nome == u"FIXED") return FormataNumero(valor, u"0.00", l);
  if (nome == u"STANDARD") return FormataNumero(valor, u"#,##0.00", l);
  if (nome == u"PERCENT") return FormataNumero(valor, u"0.00%", l);
  if (nome == u"SCIENTIFIC") return FormataNumero(valor, u"0.00E+00", l);
  if (nome == u"YES/NO") return valor != 0 ? u"Yes" : u"No";
  if (nome == u"TRUE/FALSE") return valor != 0 ? u"True" : u"False";
  if (nome == u"ON/OFF") return valor != 0 ? u"On" : u"Off";

  std::vector<Texto> secoes = Secoes(padrao);
  const Texto* secao = &secoes[0];
  bool sinal = valor < 0;
  if (valor < 0 && secoes.size() > 1 && !secoes[1].empty()) {
    secao = &secoes[1];
    sinal = false;
  } else if (valor == 0 && secoes.size() > 2 && !secoes[2].empty()) {
    secao = &secoes[2];
  }
  bool zero = false;
  Texto r = FormataSecao(std::fabs(valor), LeSecaoNumero(*secao), zero);
  return sinal && !zero ? u"-" + r : r;
}

Texto FormataMomento(const QDateTime& m, TextoV padrao, const QLocale& l) {
  if (Apara(padrao).empty()) return TextoMomento(m, l);
  for (const FormaNomeada& f : kFormasData)
    if (NomeIgual(padrao, f.nome)) return f.forma(m, l);
  std::vector<ItemData> itens = LePadraoData(padrao);
  bool dozeHoras = std::any_of(itens.begin(), itens.end(), [](auto& it) { return it.campo == Campo::AmPm; });
  Texto r;
  for (const ItemData& it : itens) r += CampoData(it, m, l, dozeHoras);
  return r;
}

bool PadraoDeData(TextoV padrao) {
  for (const char16_t* n : kFormasNumero)
    if (NomeIgual(padrao, n)) return false;
  for (const FormaNomeada& f : kFormasData)
    if (NomeIgual(padrao, f.nome)) return true;
  bool data = false;
  PercorrePadrao(
      padrao, [](TextoV) {},
      [&](size_t i) -> size_t {
        Campo c = CampoDaLetra(padrao[i]);
        if (MarcadorAmPm(padrao, i) || (c != Campo::Literal && c != Campo::T && c != Campo::C)) data = true;
        return 1;
      });
  return data;
}

Texto FormataValor(TextoV valor, TextoV padrao, const QLocale& l) {
  if (Apara(padrao).empty()) return Texto(valor);
  bool data = PadraoDeData(padrao);
  double v;
  QDateTime m;
  if (LeNumero(valor, v)) {
    if (!data) return FormataNumero(v, padrao, l);
    return MomentoDoSerial(v, m) ? FormataMomento(m, padrao, l) : Texto(valor);
  }
  if (LeData(valor, l, m)) return data ? FormataMomento(m, padrao, l) : FormataNumero(SerialDoMomento(m), padrao, l);
  return Texto(valor);
}

namespace {

Valor Format(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, 6);
  Texto valor = ArgNumerico(zv, a, 0).ComoTexto();
  Texto padrao = Presente(a, 1) ? ArgTexto(zv, a, 1) : Texto();
  return Valor::TextoComAspas(FormataValor(valor, padrao, LocaleDatas()));
}

}  // namespace

void RegistraFormato() { Comandos().Define(u"Format", Format); }

}  // namespace zv
