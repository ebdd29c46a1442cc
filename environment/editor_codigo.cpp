#include "environment/editor_codigo.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "environment/mensagens.h"
#include "environment/settings/armazem_config.h"

namespace zv {

namespace {

QColor CorDe(int32_t c) { return QColor(c & 0xff, (c >> 8) & 0xff, (c >> 16) & 0xff); }

bool EDaPalavra(unsigned char c) { return std::isalnum(c) || c == '_' || c >= 0x80; }
bool EOperador(char c) { return std::strchr("()=<>+*/-%^&", c) != nullptr && c != '\0'; }

}  // namespace

// ---- Colouring ---------------------------------------------------------------

QString LexicoZarvolt::description(int estilo) const {
  switch (estilo) {
    case kPadrao: return QString::fromUtf8(msg::ambiente::kEstiloTexto);
    case kComentario: return QString::fromUtf8(msg::ambiente::kEstiloComentario);
    case kComando: return QString::fromUtf8(msg::ambiente::kEstiloComando);
    case kPalavraChave: return QString::fromUtf8(msg::ambiente::kEstiloPalavraChave);
    case kAtributo: return QString::fromUtf8(msg::ambiente::kEstiloAtributo);
    case kAspas: return QString::fromUtf8(msg::ambiente::kEstiloAspas);
    case kOperador: return QString::fromUtf8(msg::ambiente::kEstiloOperador);
    default: return {};
  }
}

std::vector<int> LexicoZarvolt::EstilosDaLinha(const QByteArray& linha, const TabelaPalavras& tabela) {
  std::vector<int> estilos(static_cast<size_t>(linha.size()), kPadrao);
  const int n = static_cast<int>(linha.size());
  auto pinta = [&](int de, int ate, int estilo) {
    for (int k = de; k < ate; ++k) estilos[static_cast<size_t>(k)] = estilo;
  };
  for (int i = 0; i < n;) {
    char c = linha[i];
    if (c == '\'') {  // the comment marker: to the end of the line
      int fim = i;
      while (fim < n && linha[fim] != '\r' && linha[fim] != '\n') ++fim;
      pinta(i, fim, kComentario);
      i = fim;
    } else if (c == '"') {  // a string ends at its quote or the line's end; "\" escapes
      int fim = i + 1;
      while (fim < n && linha[fim] != '"' && linha[fim] != '\n' && linha[fim] != '\r') fim += linha[fim] == '\\' ? 2 : 1;
      fim = std::min(n, fim < n && linha[fim] == '"' ? fim + 1 : fim);
      pinta(i, fim, kAspas);
      i = fim;
    } else if (EDaPalavra(static_cast<unsigned char>(c)) ||
               (c == '.' && i + 1 < n && std::isalpha(static_cast<unsigned char>(linha[i + 1])))) {
      int fim = i + 1;
      while (fim < n && EDaPalavra(static_cast<unsigned char>(linha[fim]))) ++fim;
      QString palavra = QString::fromUtf8(linha.mid(i, fim - i));
      int secao = tabela.SecaoDe(palavra);
      if (secao < 0 && palavra.startsWith(QLatin1Char('.'))) secao = tabela.SecaoDe(palavra.mid(1));
      if (secao >= 0)
        pinta(i, fim,
              secao == TabelaPalavras::kComandos        ? kComando
              : secao == TabelaPalavras::kPalavrasChave ? kPalavraChave
                                                        : kAtributo);
      i = fim;
    } else {
      if (EOperador(c)) estilos[static_cast<size_t>(i)] = kOperador;
      ++i;
    }
  }
  return estilos;
}

void LexicoZarvolt::styleText(int inicio, int fim) {
  QsciScintilla* ed = editor();
  if (!ed) return;
  // Every line colours on its own (strings and comments end with it), so a
  // change restyles from the start of its line only.
  int linha = 0, coluna = 0;
  ed->lineIndexFromPosition(inicio, &linha, &coluna);
  inicio = ed->positionFromLineIndex(linha, 0);
  QByteArray bytes = ed->bytes(inicio, fim);
  // bytes() ends with a terminating NUL.
  if (!bytes.isEmpty() && bytes.back() == '\0') bytes.chop(1);
  startStyling(inicio);
  int de = 0;
  while (de < bytes.size()) {
    int nl = bytes.indexOf('\n', de);
    int ate = nl < 0 ? static_cast<int>(bytes.size()) : nl + 1;
    std::vector<int> estilos = EstilosDaLinha(bytes.mid(de, ate - de), tabela_);
    for (size_t k = 0; k < estilos.size();) {
      size_t j = k;
      while (j < estilos.size() && estilos[j] == estilos[k]) ++j;
      setStyling(static_cast<int>(j - k), estilos[k]);
      k = j;
    }
    de = ate;
  }
}

// ---- The editor ------------------------------------------------------------------

EditorCodigo::EditorCodigo(QWidget* pai) : QsciScintilla(pai) {
  setObjectName(QStringLiteral("CodeMax"));
  setUtf8(true);
  setEolMode(EolWindows);
  setAutoIndent(true);
  setTabWidth(2);
  setMarginType(0, NumberMargin);
  setMarginType(1, SymbolMargin);
  setMarginWidth(1, 14);
  markerDefine(RightArrow, kMarcador);
  setMarkerBackgroundColor(QColor(70, 130, 220), kMarcador);
  markerDefine(Circle, kPonto);
  setMarkerBackgroundColor(QColor(210, 40, 40), kPonto);
  setMarkerForegroundColor(QColor(150, 20, 20), kPonto);
  markerDefine(RightTriangle, kErro);
  setMarkerBackgroundColor(QColor(240, 120, 20), kErro);
  setMarkerForegroundColor(QColor(160, 70, 0), kErro);
  markerDefine(Background, kPasso);
  setMarkerBackgroundColor(QColor(190, 215, 255), kPasso);
  setMarginSensitivity(1, true);
  connect(this, &QsciScintilla::marginClicked, this, [this](int margem, int linha, Qt::KeyboardModifiers) {
    if (margem == 1 && pontosLigados) AlternaPonto(linha);
  });
  setCaretLineVisible(true);
  setBraceMatching(SloppyBraceMatch);
  // The horizontal bar only when a line is wider than the view.
  SendScintilla(SCI_SETSCROLLWIDTH, 1);
  SendScintilla(SCI_SETSCROLLWIDTHTRACKING, 1);
  lexico_ = new LexicoZarvolt(this, tabela_);
  setLexer(lexico_);
  painel_ = new PainelProcura(this);
  painel_->hide();
  AplicaPreferencias(Preferencias());
}

QColor EditorCodigo::CorDoEstilo(int estilo) const { return lexico_->color(estilo); }

void EditorCodigo::AplicaPreferencias(const Preferencias& p) {
  // A "Legal" font keeps the blanks that pad its name to eleven characters.
  QString nome = QString::fromStdU16String(p.fonteNome);
  nome = nome.startsWith(QStringLiteral("Legal")) ? nome.left(11) : nome.trimmed();
  QFont fonte(nome, p.fonteTamanho > 0 ? p.fonteTamanho : 10);
  fonte.setStyleHint(QFont::Monospace);
  fonte.setFixedPitch(true);
  QFont negrito = fonte;
  negrito.setBold(true);
  lexico_->setDefaultFont(fonte);
  lexico_->setDefaultPaper(CorDe(p.corFundo));
  lexico_->setDefaultColor(CorDe(p.corLetra));
  for (int e = 0; e < LexicoZarvolt::kTotalEstilos; ++e) {
    lexico_->setFont(e == LexicoZarvolt::kOperador ? negrito : fonte, e);
    lexico_->setPaper(CorDe(p.corFundo), e);
  }
  lexico_->setColor(CorDe(p.corLetra), LexicoZarvolt::kPadrao);
  lexico_->setColor(CorDe(p.corComando), LexicoZarvolt::kComando);
  lexico_->setColor(CorDe(p.corComentario), LexicoZarvolt::kComentario);
  lexico_->setColor(CorDe(p.corPC1), LexicoZarvolt::kPalavraChave);
  lexico_->setColor(CorDe(p.corPC2), LexicoZarvolt::kAtributo);
  lexico_->setColor(CorDe(p.corAspas), LexicoZarvolt::kAspas);
  lexico_->setColor(CorDe(p.corOperador), LexicoZarvolt::kOperador);
  setPaper(CorDe(p.corFundo));
  setColor(CorDe(p.corLetra));
  setMarginsBackgroundColor(CorDe(p.corMargem));
  setMarginsForegroundColor(CorDe(p.corNumeracao));
  setMarginsFont(fonte);
  setCaretLineBackgroundColor(CorDe(p.corLinha));
  numeracao_ = p.ativaNumeracao != 0;
  setMarginLineNumbers(0, numeracao_);
  setMarginWidth(0, numeracao_ ? QStringLiteral("00000") : QString());
  recolor();
}

QString EditorCodigo::PalavraNoCursor() const {
  int l = 0, c = 0;
  getCursorPosition(&l, &c);
  return wordAtLineIndex(l, c);
}

void EditorCodigo::SelecionaFaixa(int l1, int c1, int l2, int c2) {
  setSelection(l1, c1, l2, c2);
  ensureLineVisible(l2);
  ensureLineVisible(l1);
}

void EditorCodigo::SelecionaTudo() {
  int ultima = std::max(0, lines() - 1);
  SelecionaFaixa(0, 0, ultima, lineLength(ultima));
}

void EditorCodigo::AbreProcura(bool substituir) {
  painel_->Mostra(substituir, false);
  if (hasSelectedText() && !selectedText().contains(QLatin1Char('\n'))) painel_->campoProcura->setText(selectedText());
  painel_->campoProcura->setFocus();
  painel_->campoProcura->selectAll();
}

void EditorCodigo::AbreIrParaLinha() {
  painel_->Mostra(false, true);
  painel_->campoLinha->setFocus();
  painel_->campoLinha->selectAll();
}

void EditorCodigo::ProcuraPalavraNoCursor() {
  QString palavra = PalavraNoCursor();
  if (palavra.isEmpty()) return;
  painel_->campoProcura->setText(palavra);
  painel_->palavraInteira->setChecked(true);
  painel_->ProcuraProximo();
}

void EditorCodigo::AlternaMarcador() {
  int l = 0, c = 0;
  getCursorPosition(&l, &c);
  if (markersAtLine(l) & (1u << kMarcador))
    markerDelete(l, kMarcador);
  else
    markerAdd(l, kMarcador);
}

void EditorCodigo::ProximoMarcador(bool paraTras) {
  int l = 0, c = 0;
  getCursorPosition(&l, &c);
  unsigned mascara = 1u << kMarcador;
  int achada = paraTras ? markerFindPrevious(l - 1, mascara) : markerFindNext(l + 1, mascara);
  if (achada < 0) achada = paraTras ? markerFindPrevious(lines() - 1, mascara) : markerFindNext(0, mascara);
  if (achada < 0) return;
  setCursorPosition(achada, 0);
  ensureLineVisible(achada);
}

void EditorCodigo::keyPressEvent(QKeyEvent* e) {
  const auto m = e->modifiers() & (Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier);
  const int k = e->key();
  if (k == Qt::Key_F && m == Qt::ControlModifier) return AbreProcura(false);
  if (k == Qt::Key_F3 && m == (Qt::ControlModifier | Qt::AltModifier)) return AbreProcura(true);
  if (k == Qt::Key_F3 && m == Qt::ControlModifier) return ProcuraPalavraNoCursor();
  if (k == Qt::Key_F3 && m == Qt::NoModifier) {
    painel_->ProcuraProximo();
    return;
  }
  if (k == Qt::Key_F3 && m == Qt::ShiftModifier) {
    painel_->ProcuraProximo(true);
    return;
  }
  if (k == Qt::Key_G && m == Qt::ControlModifier) return AbreIrParaLinha();
  if (k == Qt::Key_F2 && m == Qt::ControlModifier) return AlternaMarcador();
  if (k == Qt::Key_F2 && m == Qt::NoModifier) return ProximoMarcador(false);
  if (k == Qt::Key_F2 && m == Qt::ShiftModifier) return ProximoMarcador(true);
  if (k == Qt::Key_Escape && m == Qt::NoModifier) {
    if (painel_->isVisible()) {
      painel_->hide();
      return;
    }
    if (aoEsc) return aoEsc();
  }
  QsciScintilla::keyPressEvent(e);
}

void EditorCodigo::resizeEvent(QResizeEvent* e) {
  QsciScintilla::resizeEvent(e);
  if (painel_->isVisible()) painel_->Mostra(!painel_->campoSubstitui->isHidden(), !painel_->campoLinha->isHidden());
}

// ---- Find, replace, go to line ---------------------------------------------

PainelProcura::PainelProcura(EditorCodigo* editor) : QWidget(editor), editor_(editor) {
  setObjectName(QStringLiteral("PainelProcura"));
  setAutoFillBackground(true);
  auto* v = new QVBoxLayout(this);
  v->setContentsMargins(6, 4, 6, 4);
  v->setSpacing(3);

  linhaProcura_ = new QWidget(this);
  auto* h1 = new QHBoxLayout(linhaProcura_);
  h1->setContentsMargins(0, 0, 0, 0);
  campoProcura = new QLineEdit(linhaProcura_);
  campoProcura->setPlaceholderText(QString::fromUtf8(msg::ambiente::kProcurar));
  maiusculas = new QCheckBox(QString::fromUtf8(msg::ambiente::kMaiusculas), linhaProcura_);
  palavraInteira = new QCheckBox(QString::fromUtf8(msg::ambiente::kPalavraInteira), linhaProcura_);
  volta = new QCheckBox(QString::fromUtf8(msg::ambiente::kVolta), linhaProcura_);
  volta->setChecked(true);
  auto* anterior = new QPushButton(QStringLiteral("\u2191"), linhaProcura_);
  auto* proximo = new QPushButton(QStringLiteral("\u2193"), linhaProcura_);
  anterior->setToolTip(QString::fromUtf8(msg::ambiente::kAnterior));
  proximo->setToolTip(QString::fromUtf8(msg::ambiente::kProximo));
  estado = new QLabel(linhaProcura_);
  auto* fecha = new QPushButton(QStringLiteral("\u2715"), linhaProcura_);
  fecha->setFlat(true);
  for (QWidget* w : {static_cast<QWidget*>(campoProcura), static_cast<QWidget*>(anterior),
                     static_cast<QWidget*>(proximo), static_cast<QWidget*>(maiusculas),
                     static_cast<QWidget*>(palavraInteira), static_cast<QWidget*>(volta),
                     static_cast<QWidget*>(estado)})
    h1->addWidget(w);
  h1->addStretch();
  h1->addWidget(fecha);
  v->addWidget(linhaProcura_);

  linhaSubstitui_ = new QWidget(this);
  auto* h2 = new QHBoxLayout(linhaSubstitui_);
  h2->setContentsMargins(0, 0, 0, 0);
  campoSubstitui = new QLineEdit(linhaSubstitui_);
  campoSubstitui->setPlaceholderText(QString::fromUtf8(msg::ambiente::kSubstituirPor));
  auto* substitui = new QPushButton(QString::fromUtf8(msg::ambiente::kSubstituir), linhaSubstitui_);
  auto* todos = new QPushButton(QString::fromUtf8(msg::ambiente::kSubstituirTodos), linhaSubstitui_);
  h2->addWidget(campoSubstitui);
  h2->addWidget(substitui);
  h2->addWidget(todos);
  h2->addStretch();
  v->addWidget(linhaSubstitui_);

  linhaIr_ = new QWidget(this);
  auto* h3 = new QHBoxLayout(linhaIr_);
  h3->setContentsMargins(0, 0, 0, 0);
  h3->addWidget(new QLabel(QString::fromUtf8(msg::ambiente::kIrParaLinha), linhaIr_));
  campoLinha = new QLineEdit(linhaIr_);
  campoLinha->setMaximumWidth(90);
  h3->addWidget(campoLinha);
  h3->addStretch();
  v->addWidget(linhaIr_);

  // Find as you type: each change searches again from the selection's start.
  connect(campoProcura, &QLineEdit::textEdited, this, [this] {
    int l = 0, c = 0, l2 = 0, c2 = 0;
    editor_->getSelection(&l, &c, &l2, &c2);
    if (l >= 0) editor_->setCursorPosition(l, c);
    Procura(true, false);
  });
  connect(campoProcura, &QLineEdit::returnPressed, this, [this] { ProcuraProximo(); });
  connect(proximo, &QPushButton::clicked, this, [this] { ProcuraProximo(); });
  connect(anterior, &QPushButton::clicked, this, [this] { ProcuraProximo(true); });
  connect(substitui, &QPushButton::clicked, this, [this] {
    if (editor_->hasSelectedText()) editor_->replace(campoSubstitui->text());
    ProcuraProximo();
  });
  connect(todos, &QPushButton::clicked, this, [this] { SubstituiTodos(); });
  connect(campoLinha, &QLineEdit::returnPressed, this, [this] {
    bool ok = false;
    int n = campoLinha->text().trimmed().toInt(&ok);
    if (!ok || n < 1) return;
    n = std::min(n, editor_->lines());
    editor_->setCursorPosition(n - 1, 0);
    editor_->ensureLineVisible(n - 1);
    hide();
    editor_->setFocus();
  });
  connect(fecha, &QPushButton::clicked, this, [this] {
    hide();
    editor_->setFocus();
  });
}

void PainelProcura::Mostra(bool substituir, bool linha) {
  linhaProcura_->setVisible(!linha);
  linhaSubstitui_->setVisible(substituir && !linha);
  linhaIr_->setVisible(linha);
  campoSubstitui->setHidden(!substituir || linha);
  campoLinha->setHidden(!linha);
  adjustSize();
  int h = sizeHint().height();
  QRect r = editor_->viewport()->geometry();
  setGeometry(r.left(), r.bottom() - h + 1, r.width(), h);
  show();
  raise();
}

bool PainelProcura::Procura(bool, bool paraTras) {
  QString texto = campoProcura->text();
  if (texto.isEmpty()) {
    estado->clear();
    return false;
  }
  bool achou = editor_->findFirst(texto, false, maiusculas->isChecked(), palavraInteira->isChecked(),
                                  volta->isChecked(), !paraTras, -1, -1, true);
  estado->setText(achou ? QString() : QString::fromUtf8(msg::ambiente::kNaoAchado));
  return achou;
}

bool PainelProcura::ProcuraProximo(bool paraTras) {
  if (paraTras && editor_->hasSelectedText()) {
    // Backwards, the search starts before the selection, not at its end.
    int l = 0, c = 0, l2 = 0, c2 = 0;
    editor_->getSelection(&l, &c, &l2, &c2);
    editor_->setCursorPosition(l, c);
  }
  return Procura(false, paraTras);
}

int PainelProcura::SubstituiTodos() {
  QString texto = campoProcura->text();
  if (texto.isEmpty()) return 0;
  int n = 0;
  editor_->beginUndoAction();
  // findNext goes on behind each replacement, so a replacement holding
  // the text searched for is not found again.
  bool achou = editor_->findFirst(texto, false, maiusculas->isChecked(), palavraInteira->isChecked(), false, true,
                                  0, 0, false);
  while (achou) {
    editor_->replace(campoSubstitui->text());
    ++n;
    achou = editor_->findNext();
  }
  editor_->endUndoAction();
  estado->setText(QString::fromUtf8(msg::ambiente::kSubstituidas).arg(n));
  return n;
}

void PainelProcura::keyPressEvent(QKeyEvent* e) {
  if (e->key() == Qt::Key_Escape) {
    hide();
    editor_->setFocus();
    return;
  }
  QWidget::keyPressEvent(e);
}

// ---- Marks -------------------------------------------------------------------------

std::set<int> EditorCodigo::Pontos() const {
  std::set<int> r;
  auto* eu = const_cast<EditorCodigo*>(this);  // markerFindNext isn't const
  for (int l = eu->markerFindNext(0, 1 << kPonto); l >= 0; l = eu->markerFindNext(l + 1, 1 << kPonto)) r.insert(l);
  return r;
}

void EditorCodigo::DefinePontos(const std::set<int>& linhas) {
  markerDeleteAll(kPonto);
  for (int l : linhas)
    if (l < lines()) markerAdd(l, kPonto);
}

void EditorCodigo::AlternaPonto(int linha) {
  if (markersAtLine(linha) & (1 << kPonto))
    markerDelete(linha, kPonto);
  else
    markerAdd(linha, kPonto);
}

int EditorCodigo::Primeira(int marca) const {
  return const_cast<EditorCodigo*>(this)->markerFindNext(0, 1 << marca);
}

void EditorCodigo::MarcaUnica(int marca, int linha) {
  markerDeleteAll(marca);
  if (linha >= 0 && linha < lines()) markerAdd(linha, marca);
}

void EditorCodigo::MarcaErro(int linha) { MarcaUnica(kErro, linha); }

void EditorCodigo::MarcaPasso(int linha) {
  MarcaUnica(kPasso, linha);
  if (linha >= 0) ensureLineVisible(linha);
}

}  // namespace zv
