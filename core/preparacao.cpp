#include "core/preparacao.h"

#include <vector>

#include "core/interpretador.h"

namespace zv {

Texto MarcaLinhas(TextoV texto, int editor) {
  Texto t(texto);
  t += CRLF;
  Texto saida;
  saida.reserve(t.size() + t.size() / 4 + 32);
  Texto ed = Preenche(editor, 2);
  size_t ini = 0;
  int64_t linha = 0;
  for (;;) {
    size_t p = t.find(CRLF, ini);
    if (p == NPOS) break;  // what stands behind the last line end is empty
    saida += u"\u00A7#";
    saida += Preenche(linha, 5);
    saida += u"$#";
    saida += ed;
    saida += u' ';
    saida += Apara(TextoV(t).substr(ini, p - ini));
    saida += CRLF;
    ++linha;
    ini = p + 2;
  }
  return saida;
}

Texto LimpaTexto(TextoV texto) {
  bool aspas = false;
  // Pass 1: comments run from an apostrophe outside quotes to the line's CR.
  Texto p1;
  p1.reserve(texto.size());
  for (size_t i = 0; i < texto.size(); ++i) {
    char16_t c = texto[i];
    if (c == u'"') aspas = !aspas;
    if (c == u'\'' && !aspas) {
      size_t cr = texto.find(CR, i);
      if (cr == NPOS) break;
      i = cr;
      p1 += CR;
      continue;
    }
    p1 += c;
  }
  // Pass 2: a semicolon outside quotes separates statements. The quote state
  // goes on from pass 1.
  Texto p2;
  p2.reserve(p1.size() + 64);
  for (size_t i = 0; i < p1.size(); ++i) {
    char16_t c = p1[i];
    if (c == u'"') aspas = !aspas;
    if (c == u';' && !aspas) {
      p2 += CRLF;
      if (i + 1 < p1.size() && p1[i + 1] == u' ') {
        ++i;
      } else if (i + 1 < p1.size() && p1[i + 1] == CR) {
        i += (i + 2 < p1.size() && p1[i + 2] == LF) ? 2 : 1;
      }
      continue;
    }
    p2 += c;
  }
  // Pass 3: comparison operators get blanks around them.
  Texto p3;
  p3.reserve(p2.size() + p2.size() / 8);
  size_t n = p2.size();
  for (size_t i = 0; i < n; ++i) {
    char16_t c = p2[i];
    char16_t d = i + 1 < n ? p2[i + 1] : 0;
    if ((c == u'<' && d == u'=') || (c == u'>' && d == u'=') || (c == u'<' && d == u'>')) {
      p3 += u' ';
      p3 += c;
      p3 += d;
      p3 += u' ';
      ++i;
      continue;
    }
    if (c == u'<' || c == u'=' || c == u'>') {
      if (i == 0 || p2[i - 1] != u' ') {
        p3 += u' ';
        p3 += c;
        p3 += u' ';
      } else {
        p3 += c;
      }
      continue;
    }
    p3 += c;
    if (c == u'"') {
      size_t q = p2.find(u'"', i + 1);
      if (q == NPOS) q = n - 1;
      p3.append(p2, i + 1, q - i);
      i = q;
    }
  }
  return p3;
}

Texto NumeraComandos(TextoV texto) {
  Texto saida;
  saida.reserve(texto.size() + texto.size() / 3);
  Texto marcador;
  int64_t contador = 0;
  size_t ini = 0;
  for (;;) {
    size_t p = texto.find(CRLF, ini);
    if (p == NPOS) break;  // a last piece with no line end is dropped
    Texto peca = Apara(texto.substr(ini, p - ini));
    ini = p + 2;
    if (!ComecaCom(peca, u"\u00A7#")) peca = marcador + u" " + peca;
    marcador = peca.substr(0, 11);
    if (peca.size() >= 13) {
      saida += u"&#";
      saida += Preenche(contador, 5);
      saida += peca;
      saida += CRLF;
      ++contador;
    }
  }
  return saida;
}

namespace {

// One block word of the tagging passes.
struct RegraBloco {
  const char16_t* palavra;
  int delta;      // change of depth: -1 before the tag, +1 after it, 0 none
  int avanco;     // characters to go further after the match
  bool trocaBranco;  // the blank behind the word becomes "[n] "
  int ajusteTag;  // the tag shows depth + ajusteTag
};

// Scans for block words that open a statement (a '#' four places behind),
// tags them with their depth and skips as the passes do.
Texto NumeraBlocos(TextoV texto, const RegraBloco* regras, int nRegras) {
  Texto saida;
  saida.reserve(texto.size() + texto.size() / 16);
  int64_t nivel = 0;
  size_t i = 0;
  // Positions of the modified text still to skip without testing.
  int64_t pular = 0;
  while (i < texto.size()) {
    if (pular > 0) {
      saida += texto[i++];
      --pular;
      continue;
    }
    bool casou = false;
    if (saida.size() >= 4 && saida[saida.size() - 4] == u'#') {
      for (int r = 0; r < nRegras && !casou; ++r) {
        TextoV w = regras[r].palavra;
        if (texto.substr(i, w.size()) != w) continue;
        casou = true;
        if (regras[r].delta < 0) --nivel;
        Texto tag = u"[" + InteiroParaTexto(nivel + regras[r].ajusteTag) + u"]";
        size_t inicio = saida.size();
        if (regras[r].trocaBranco) {
          saida.append(w.substr(0, w.size() - 1));
          saida += tag;
          saida += u' ';
        } else {
          saida.append(w);
          saida += tag;
        }
        i += w.size();
        if (regras[r].delta > 0) ++nivel;
        // The next test stands avanco + 1 places behind the word's start in
        // the modified text; tag characters can't start a word, so only the
        // original characters beyond the emitted ones are skipped.
        int64_t emitidos = static_cast<int64_t>(saida.size() - inicio);
        pular = regras[r].avanco + 1 - emitidos;
      }
    }
    if (!casou) saida += texto[i++];
  }
  return saida;
}

}  // namespace

Texto NumeraIf(TextoV texto) {
  static const RegraBloco regras[] = {
      {u"Else", 0, 13, false, -1},
      {u"EndIf", -1, 5, false, 0},
      {u"If ", +1, 3, true, 0},
  };
  return NumeraBlocos(texto, regras, 3);
}

Texto NumeraWhile(TextoV texto) {
  static const RegraBloco regras[] = {
      {u"Loop", -1, 6, false, 0},
      {u"While", +1, 8, false, 0},
  };
  return NumeraBlocos(texto, regras, 2);
}

namespace {

size_t ContaEApaga(Texto& t, TextoV alvo, char16_t troca) {
  size_t n = 0;
  for (size_t p = t.find(alvo); p != NPOS; p = t.find(alvo, p + alvo.size())) {
    ++n;
    if (troca)
      for (size_t k = 0; k < alvo.size(); ++k) t[p + k] = troca;
  }
  return n;
}

}  // namespace

Texto VerificaBlocos(TextoV texto) {
  Texto t = Maiusculas(texto);
  Texto msg;
  size_t fins = ContaEApaga(t, u"ENDIF[", u'X');
  if (fins != ContaEApaga(t, u"IF[", 0)) msg = msg::kIfSemEndIf;
  size_t loops = ContaEApaga(t, u"LOOP[", u'X');
  if (loops != ContaEApaga(t, u"WHILE[", 0)) msg = msg::kWhileSemLoop;
  return msg;
}

Texto Interpretador::PreparaPrograma() {
  Texto principal = fonte.textos[0] + CRLF + u"EndProgram" + CRLF;
  Texto t = MarcaLinhas(principal, 0);
  auto contaLinhas = [](const Texto& s) {
    size_t n = 0;
    for (size_t p = s.find(CRLF); p != NPOS; p = s.find(CRLF, p + 2)) ++n;
    return n;
  };
  if (contaLinhas(principal) > size_t(kMaxNumeroMarcador))
    return msg::kCodigoPrincipalLongo;
  for (int i = 1; i <= 6; ++i) {
    if (fonte.textos[i].empty()) continue;
    if (contaLinhas(fonte.textos[i]) > size_t(kMaxNumeroMarcador))
      return msg::Formata(msg::kCodigoLongo, InteiroParaTexto(i));
    t += CRLF;
    t += MarcaLinhas(fonte.textos[i], i);
  }
  t = LimpaTexto(t);
  t = NumeraComandos(t);
  if (contaLinhas(t) > size_t(kMaxNumeroMarcador) + 1) return msg::kProgramaLongo;
  t = NumeraIf(t);
  t = NumeraWhile(t);
  textoPrograma = std::move(t);
  planos_.reset();
  RegistraRotinas(textoPrograma);
  if (temTimer) host().IniciaTimer(TimerTique, 10, [this] { TiqueTimer(); });
  return Texto();
}

}  // namespace zv
