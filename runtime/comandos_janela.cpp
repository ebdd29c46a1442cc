// The window model's commands: Window, NewWindow, Write, Position, Cls,
// Font, WindowWidth, WindowHeight, CaptureWindow; and the event functions
// Event, KeyTest, TestMouse and the Timer command.
#include <QApplication>
#include <QCursor>
#include <QFileInfo>
#include <QFontDatabase>
#include <QImage>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>
#include <QIcon>
#include <QPixmap>
#include <cmath>

#include "controls/figuras_padrao.h"
#include "data/dados.h"
#include "library/arquivos.h"
#include "library/texto_qt.h"
#include "net/net.h"
#include "runtime/aplicacao.h"
#include "runtime/argumentos.h"
#include "runtime/janela_host.h"
#include "runtime/janelas.h"
#include "runtime/mensagens.h"

namespace zv {

namespace {


// A value in numeric-or-text form, as text.


// A 16-bit store of a position, as the original keeps CurrentX and CurrentY.
int16_t Em16(double v) {
  double r = ArredondaPar(v);
  if (!(r >= -32768.0 && r <= 32767.0)) throw FalhaHost(falha::Estouro);
  return static_cast<int16_t>(r);
}

// The frame a window of this style has around its client area: the
// nominal 4-pixel border and 30-pixel caption. Window sizes are the
// outer sizes, in twips; controls and Res count in the client area.
QSize Moldura(const JanelaExecucao* j) {
  if ((j->estilo & 0xC00000u) != 0xC00000u) return {0, 0};
  return {8, 38};
}

int Px(double twips) { return SistemaJanelas::EmPixels(std::nearbyint(twips / 15.0)); }

}  // namespace

// ---- Window ---------------------------------------------------------------------

namespace {

void AplicaTamanho(SistemaJanelas& s, JanelaExecucao* j, const Texto& altura, const Texto& largura) {
  Interpretador& zv = *s.zv;
  QSize tela = s.TamanhoTela(), m = Moldura(j);
  QPoint pos = j->pos();
  int h, w;
  if (Maiusculas(Apara(altura)) == u"MAX") {
    pos.setY(0);
    h = tela.height();
  } else {
    h = Px(Num(zv, altura) * 220 + 600);
  }
  if (Maiusculas(Apara(largura)) == u"MAX") {
    pos.setX(0);
    w = tela.width();
  } else {
    w = Px(Num(zv, largura) * 120);
  }
  j->resize(std::max(1, w - m.width()), std::max(1, h - m.height()));
  j->move(pos);
}

void AplicaPosicao(SistemaJanelas& s, JanelaExecucao* j, const Texto& linha, const Texto& coluna) {
  Interpretador& zv = *s.zv;
  QSize tela = s.TamanhoTela(), m = Moldura(j);
  int alto = j->height() + m.height(), largo = j->width() + m.width();
  int top = Maiusculas(Apara(linha)) == u"CENTER" ? (tela.height() - alto) / 2 : Px(Num(zv, linha) * 220);
  int left = Maiusculas(Apara(coluna)) == u"CENTER" ? (tela.width() - largo) / 2 : Px(Num(zv, coluna) * 120);
  j->move(left, top);
}

void AplicaRes(SistemaJanelas& s, JanelaExecucao* j, const Texto& linhas, const Texto& colunas) {
  int32_t l = s.zv->ValorNumerico(linhas.empty() ? u"0" : linhas).ComoInt32();
  int32_t c = s.zv->ValorNumerico(colunas.empty() ? u"0" : colunas).ComoInt32();
  if (l == 0) l = 1;
  if (c == 0) c = 1;
  s.linSize = static_cast<double>(j->height()) / l;
  s.colSize = static_cast<double>(j->width()) / c;
  s.EscreveGrade();
}

// Background: a colour, a colour variable, NULL, or a picture file. False
// when the file isn't there (the message was shown).
bool AplicaFundo(SistemaJanelas& s, JanelaExecucao* j, const Texto& valor, const Texto& x, const Texto& y,
                 bool padroes = false) {
  Interpretador& zv = *s.zv;
  Texto v = Apara(valor);
  // Window Background looks at the built-in backgrounds first.
  if (padroes) {
    if (int n = ProcuraNaLista(QString::fromLatin1(kListaFundos),
                               QString::fromStdU16String(Interpretador::RemoveAspas(v)));
        n >= 0) {
      j->DefineFiguraFundo(FundoPadrao(n));
      return true;
    }
  }
  double n;
  if (LeNumero(v, n)) {
    j->DefineFundo(CorDe(n));
    return true;
  }
  if (!v.empty() && zv.PosicaoVariavel(v) >= 0) {
    j->DefineFundo(CorDe(zv.LeVariavel(v).ComoDouble()));
    return true;
  }
  if (Maiusculas(v) == u"NULL") {
    j->DefineFiguraFundo(QImage());
    return true;
  }
  Texto nome = Interpretador::RemoveAspas(v);
  Texto arquivo = ResolveArquivo(zv, nome);
  QImage figura;
  if (arquivo.empty() || !figura.load(QString::fromStdU16String(arquivo))) {
    zv.CaixaCritica(Texto(msg::FundoNaoAchado) + CR + nome + CR);
    return false;
  }
  double px = Num(zv, x), py = Num(zv, y);
  if (px == 0 && py == 0) {
    j->DefineFiguraFundo(figura);
  } else {
    j->DesenhaFigura(figura, s.PxColuna(px), s.PxLinha(py));
  }
  return true;
}

// Border: the style bits toggled for the kind BorderStyle holds, then for
// the kind asked for; so False twice on a sizable window restores it.
void Alterna(uint32_t& estilo, int k) {
  if (k == 1 || k == 4)
    estilo ^= 0xC00000u;
  else if (k == 3)
    estilo ^= 0xC80080u;
  else if (k != 0)
    estilo ^= 0xC40000u;
}

bool Verdade(Interpretador& zv, const Texto& t) { return Maiusculas(TextoNT(zv, t)) == u"TRUE"; }

}  // namespace

void SistemaJanelas::Window(const std::vector<Texto>& a) {
  JanelaExecucao* p = Principal();
  for (size_t i = 0; i < a.size(); ++i) {
    Texto t = Maiusculas(Apara(a[i]));
    if (t.empty()) break;
    Texto v1 = Arg(a, i + 2), v2 = Arg(a, i + 3);
    if (t == u"POINTSIZE") {
      p->larguraPena = zv->ValorNumerico(v1.empty() ? u"0" : v1).ComoInt16();
      return;  // nothing behind it on the line is looked at
    } else if (t == u"FIXED") {
      Texto v = Maiusculas(TextoNT(*zv, v1));
      if ((v == u"TRUE" && !fixo) || (v == u"FALSE" && fixo)) {
        p->estilo ^= 0x70000u;
        fixo = !fixo;
        p->AplicaEstilo();
      }
    } else if (t == u"BOX") {
      // Compared as written: only FALSE in capitals removes the box.
      if (TextoNT(*zv, v1) == u"FALSE")
        p->estilo |= JanelaExecucao::kSemCaixaSistema;
      else
        p->estilo &= ~JanelaExecucao::kSemCaixaSistema;
      p->AplicaEstilo();
    } else if (t == u"ENTER") {
      p->previaDeTeclas = Verdade(*zv, v1);
    } else if (t == u"CURSOR") {
      contaCursor += Verdade(*zv, v1) ? 1 : -1;
      for (int k = 0; k < kSlotsJanelas; ++k)
        if (JanelaExecucao* j = janelas_[static_cast<size_t>(k)]) {
          if (contaCursor >= 0)
            j->unsetCursor();
          else
            j->setCursor(Qt::BlankCursor);
        }
    } else if (t == u"VISIBLE") {
      if (Verdade(*zv, v1)) {
        p->showNormal();
      } else {
        p->hide();
      }
    } else if (t == u"MOUSEGENERAL") {
      mouseGeral = Verdade(*zv, v1);
      if (mouseGeral) zv->host().IniciaTimer(TimerMouse, 50, [this] { TiqueMouse(); });
    } else if (t == u"MOUSEICON") {
      Texto arquivo = ResolveArquivo(*zv, Interpretador::RemoveAspas(Apara(v1)));
      QPixmap icone;
      if (arquivo.empty() || !icone.load(QString::fromStdU16String(arquivo))) throw FalhaHost(falha::ArquivoNaoEncontrado);
      Atual()->setCursor(QCursor(icone));
    } else if (t == u"RES") {
      AplicaRes(*this, p, v1, v2);
    } else if (t == u"SIZE") {
      AplicaTamanho(*this, p, v1, v2);
    } else if (t == u"POS") {
      AplicaPosicao(*this, p, v1, v2);
    } else if (t == u"BACKGROUND") {
      // The built-in backgrounds are pictures of the environment, which
      // this build doesn't carry yet: they count as a missing picture.
      AplicaFundo(*this, Atual(), v1, v2, Arg(a, i + 4), true);
    } else if (t == u"VIDEORES") {
      throw FalhaHost(msg::ModoDeVideo);
    } else if (t == u"BORDER") {
      int pedido = Maiusculas(TextoNT(*zv, v1)) == u"FALSE" ? 0 : 1;
      Alterna(p->estilo, p->estiloBorda);
      Alterna(p->estilo, pedido);
      p->AplicaEstilo();
    }
  }
}

void SistemaJanelas::TiqueMouse() {
  if (!mouseGeral) return;
  // A program that never declared them gets nothing written.
  QPoint c = QCursor::pos();
  if (zv->PosicaoVariavel(u"LinhaMouse") >= 0) zv->GravaVariavel(u"LinhaMouse", Valor::DeTexto(InteiroParaTexto(c.y())), false);
  if (zv->PosicaoVariavel(u"ColunaMouse") >= 0) zv->GravaVariavel(u"ColunaMouse", Valor::DeTexto(InteiroParaTexto(c.x())), false);
}

// ---- NewWindow ----------------------------------------------------------------

void SistemaJanelas::NewWindow(const Texto& argumentos) {
  std::vector<Texto> a = zv->SeparaArgumentos(argumentos, 51, true);
  Texto primeiro = Apara(Arg(a, 0));
  if (Maiusculas(primeiro) == u"SET") {
    Principal();
    int livre = -1;
    for (int i = 1; i < 20 && livre < 0; ++i)
      if (nomes_[static_cast<size_t>(i)].empty()) livre = i;
    if (livre < 0) {
      zv->ErroExecucao(msg::JanelasDemais);
      return;
    }
    Texto tipo = Maiusculas(Apara(Arg(a, 2)));
    ClasseJanela c = tipo == u"FIXED" ? ClasseJanela::Form2 : tipo == u"WITHOUTBOX" ? ClasseJanela::Form3 : ClasseJanela::Form1;
    auto s = static_cast<size_t>(livre);
    nomes_[s] = Maiusculas(Apara(Arg(a, 1)));
    classes_[s] = c;
    JanelaExecucao* j = NovaJanela(c);
    Texto tag;
    for (char16_t ch : nomes_[s])
      if (ch != u'"') tag += ch;
    j->tag = tag;
    janelas_[s] = j;
    return;
  }
  size_t ponto = primeiro.find(u'.');
  if (ponto == NPOS) return;
  Texto nome = Apara(primeiro.substr(0, ponto));
  Principal();
  int slot = AchaJanela(nome);
  if (slot < 0) return;
  Texto resto = primeiro.substr(ponto);
  size_t b = resto.find(u' ');
  Texto prop = Maiusculas(resto.substr(0, b));
  Texto depois = b == NPOS ? Texto() : Apara(resto.substr(b + 1));
  JanelaExecucao* j = JanelaDoSlot(slot);
  Texto v1 = Arg(a, 2), v2 = Arg(a, 3);
  if (prop == u".POINTSIZE") {
    j->larguraPena = zv->ValorNumerico(v1.empty() ? u"0" : v1).ComoInt16();
  } else if (prop == u".RES") {
    AplicaRes(*this, j, v1, v2);
  } else if (prop == u".SIZE") {
    AplicaTamanho(*this, j, v1, v2);
  } else if (prop == u".POS") {
    AplicaPosicao(*this, j, v1, v2);
  } else if (prop == u".BACKGROUND") {
    Texto v = Apara(v1);
    double n;
    bool existe = LeNumero(v, n) || (!v.empty() && zv->PosicaoVariavel(v) >= 0) || Maiusculas(v) == u"NULL" ||
                  !ResolveArquivo(*zv, Interpretador::RemoveAspas(v)).empty();
    if (!existe) {
      zv->CaixaCritica(zv->LocalAtual() + msg::ErroFundoJanela);
      return;
    }
    AplicaFundo(*this, j, v1, v2, Arg(a, 4));
  } else if (prop == u".BORDER") {
    bool sem = Maiusculas(TextoNT(*zv, v1)) == u"FALSE";
    j->estiloBorda = sem ? 0 : 1;
    j->estilo = sem ? 0u : 0xC00000u;
    j->AplicaEstilo();
  } else if (prop == u".VISIBLE") {
    if (Maiusculas(TextoNT(*zv, v1)) == u"FALSE")
      j->hide();
    else
      j->show();
  } else if (prop == u".OFF") {
    if (slot == 0) {
      FechaPrincipal();
      return;
    }
    FechandoJanela(j);
    nomes_[static_cast<size_t>(slot)].clear();
    janelas_[static_cast<size_t>(slot)] = nullptr;
  } else if (prop == u".USE") {
    atual_ = j;
    nomeFormAtual = Maiusculas(nome);
    if (modais_ > 0) {
      zv->ErroExecucao(msg::UseEmModal);
      return;
    }
    j->show();
    usoDeImagem = false;
  } else if (prop == u".ACTIVATE") {
    Activate(slot, nome, Maiusculas(depois) == u"STATIC");
  }
}

void SistemaJanelas::Activate(int slot, const Texto& nome, bool estatica) {
  JanelaExecucao* j = JanelaDoSlot(slot);
  atual_ = j;
  nomeFormAtual = Maiusculas(nome);
  usoDeImagem = false;
  Texto sub = nome + u"_Code()";
  if (!estatica) {
    j->tag = nomeFormAtual;
    j->show();
    janelaEmExecucao = nomeFormAtual;
    zv->janelaFechada = false;
    zv->ChamaSub(sub);
    janelaEmExecucao.clear();
    zv->janelaFechada = false;
    atual_ = Principal();
    nomeFormAtual = u"PARENT";
    return;
  }
  int i = 0;
  while (i < kStaticas && estaticaLigada_[static_cast<size_t>(i)]) ++i;
  if (i == kStaticas) {
    zv->ErroExecucao(msg::EstaticasDemais);
    return;
  }
  estaticaLigada_[static_cast<size_t>(i)] = true;
  j->tag = nomeFormAtual;
  zv->host().IniciaTimer(kIdTimerJanela + i, 1, [this, i, sub] { TiqueEstatica(i, sub); });
  ++modais_;
  if (host) {
    QPointer<JanelaExecucao> janela = j;
    janela->setWindowModality(Qt::ApplicationModal);
    janela->show();
    host->ExibeModal([janela] { return janela && janela->isVisible(); },
                     [janela] {
                       if (janela) janela->hide();
                     });
    if (janela) janela->setWindowModality(Qt::NonModal);
  } else
    TiqueEstatica(i, sub);  // no loop to wait in: the code runs at once
  --modais_;
}

void SistemaJanelas::TiqueEstatica(int i, const Texto& sub) {
  zv->host().ParaTimer(kIdTimerJanela + i);
  auto k = static_cast<size_t>(i);
  salvas_[k] = atual_;
  nomesSalvos_[k] = nomeFormAtual;
  janelaEmExecucao = nomeFormAtual;
  zv->ChamaSub(sub);
  janelaEmExecucao.clear();
  if (i == 0) {
    atual_ = Principal();
    nomeFormAtual = u"PARENT";
  } else {
    atual_ = salvas_[k - 1];
    nomeFormAtual = nomesSalvos_[k - 1];
  }
  estaticaLigada_[k] = false;
}

// ---- Text on the window ----------------------------------------------------------

void SistemaJanelas::Escreve(const Texto& texto, bool titulo) {
  // A program that never made a window, headless, prints its lines only.
  bool naJanela = principalFeita_ || (host && !host->SemTela());
  if (titulo) {
    if (naJanela) Atual()->setWindowTitle(QString::fromStdU16String(texto));
    return;
  }
  zv->host().Escreve(texto);
  if (naJanela && !encerrada_) SuperficieAtual()->Escreve(QString::fromStdU16String(texto), posX, posY);
  posY = Em16(posY + linSize);
}

void SistemaJanelas::Posiciona(double linha, double coluna) {
  int16_t y = Em16(linha * linSize), x = Em16(coluna * colSize);
  posY = y;
  posX = x;
}

void SistemaJanelas::Limpa() { SuperficieAtual()->Limpa(); }

Superficie* SistemaJanelas::SuperficieAtual() {
  if (usoDeImagem && imagemEmUso)
    if (auto* s = dynamic_cast<Superficie*>(imagemEmUso.data())) return s;
  return Atual();
}

void SistemaJanelas::Fonte(const std::vector<Texto>& a) {
  Texto primeiro = Apara(Arg(a, 0));
  if (primeiro.find(u'.') == NPOS) primeiro = u"PARENT." + primeiro;
  Principal();
  int slot = AchaJanela(primeiro.substr(0, primeiro.find(u'.')));
  if (slot < 0) return;
  JanelaExecucao* j = JanelaDoSlot(slot);
  Texto m = Maiusculas(primeiro), v = Arg(a, 2);
  QFont f = j->font();
  // Each word is tested in turn, in the whole first argument.
  if (Contem(m, u"NAME")) f.setFamily(QString::fromStdU16String(zv->ValorTexto(v).ComoTexto()));
  if (Contem(m, u"SIZE")) {
    double s = Num(*zv, v);
    if (s > 0) f.setPointSizeF(s);
  }
  if (Contem(m, u"COLOR")) j->corFrente = CorDe(Num(*zv, v));
  if (Contem(m, u"BOLD")) f.setBold(Maiusculas(TextoNT(*zv, v)) != u"FALSE");
  if (Contem(m, u"ITALIC")) f.setItalic(Maiusculas(TextoNT(*zv, v)) != u"FALSE");
  j->setFont(f);
}

// ---- The commands ----------------------------------------------------------------

namespace {

Valor CmdWindow(Interpretador& zv, const Texto& args) {
  Janelas(zv).Window(zv.SeparaArgumentos(args, 51, true));
  return Valor();
}

void GanchoNewWindow_(Interpretador& zv, const Texto& args) {
  // The executor routes NewWindow itself, past the commands' handlers.
  try {
    Janelas(zv).NewWindow(args);
  } catch (const FalhaHost& f) {
    zv.ErroExecucao(msg::FalhaDeComando(u"NewWindow", f.descricao));
  } catch (const std::exception& e) {
    zv.ErroExecucao(msg::FalhaDeComando(u"NewWindow", U(e.what())));
  }
}

Valor CmdWrite(Interpretador& zv, const Texto& args) {
  bool titulo = false;
  Texto texto;
  for (const Texto& a : zv.SeparaArgumentos(args, 51)) {
    if (a.empty()) break;
    if (Maiusculas(a) == u"WINDOWTITLE") {
      titulo = true;
      continue;
    }
    texto += zv.ValorNumerico(a).ComoTexto();
  }
  Janelas(zv).Escreve(texto, titulo);
  zv.Bombeia();
  return Valor::DeBooleano(true);
}

Valor CmdPosition(Interpretador& zv, const Texto& args) {
  std::vector<Texto> a = zv.SeparaArgumentos(args, 51);
  Janelas(zv).Posiciona(Num(zv, Arg(a, 0)), Num(zv, Arg(a, 1)));
  return Valor();
}

Valor CmdCls(Interpretador& zv, const Texto&) {
  Janelas(zv).Limpa();
  return Valor();
}

// SystemMenu Start | MainOption, n, Text | MainOption, n, Option, Text: the
// menu bar of Janela and Form1.
Valor CmdSystemMenu(Interpretador& zv, const Texto& args) {
  std::vector<Texto> a = zv.SeparaArgumentos(args, 4);
  SistemaJanelas& s = Janelas(zv);
  // The words stand bare, as the examples write them, or in quotes.
  Texto palavra = Maiusculas(Apara(Arg(a, 0)));
  if (!palavra.empty() && palavra.front() == u'"') palavra = Maiusculas(Apara(TextoT(zv, Arg(a, 0))));
  if (palavra == u"START") {
    s.contadoresMenu.fill(0);
    return Valor();
  }
  if (palavra != u"MAINOPTION") return Valor();
  JanelaExecucao* j = s.Atual();
  if (!j->TemMenu()) throw FalhaHost(msg::SemMenu);
  int n = 0;
  if (!Arg(a, 1).empty()) {
    const double v = Num(zv, Arg(a, 1));
    if (!(v >= -32768.0 && v <= 32767.0)) throw FalhaHost(falha::Estouro);
    n = static_cast<int>(std::nearbyint(v));
  }
  if (n < 0 || n > 9) throw FalhaHost(msg::Formata(msg::ElementoInexistente, InteiroParaTexto(n)));
  const Texto terceiro = TextoT(zv, Arg(a, 2));
  if (Arg(a, 3).empty()) {
    j->DefineGuia(n, QString::fromStdU16String(terceiro));
  } else {
    int16_t& contador = s.contadoresMenu[static_cast<size_t>(n)];
    j->DefineOpcao(n, contador, QString::fromStdU16String(TextoT(zv, Arg(a, 3))));
    ++contador;
  }
  return Valor();
}

// Icon File: the current window's icon, from a picture file.
Valor CmdIcon(Interpretador& zv, const Texto& args) {
  std::vector<Texto> a = zv.SeparaArgumentos(args, 2);
  const Texto arquivo = ResolveArquivo(zv, TextoT(zv, Arg(a, 0)));
  QPixmap figura;
  if (arquivo.empty() || !figura.load(QString::fromStdU16String(arquivo))) throw FalhaHost(falha::ArquivoNaoEncontrado);
  Janelas(zv).Atual()->setWindowIcon(QIcon(figura));
  return Valor::TextoComAspas(Texto());
}

// Fonts(Number): a font's name, from 0 to TotalFonts. A printer here draws
// with the screen's fonts, so the list is the screen's; a run without a
// screen knows one font, the one its windows use, as TotalFonts says.
Valor CmdFonts(Interpretador& zv, const Texto& args) {
  std::vector<Texto> a = zv.SeparaArgumentos(args, 2);
  const bool semTela = Janelas(zv).SemTela();
  GaranteAplicacao(semTela);
  const QStringList familias = semTela ? QStringList{QApplication::font().family()} : QFontDatabase::families();
  const double n = ArredondaPar(Num(zv, Arg(a, 0)));
  if (!(n >= 0 && n < familias.size())) throw FalhaHost(falha::ForaDoIndice);
  return Valor::TextoComAspas(T(familias[static_cast<qsizetype>(n)]));
}

// The desktop's wallpaper, by the tool of the desktop that has one
// (GNOME and its kin through gsettings, Plasma, Xfce); true when it took it.
bool DefineFundoDaArea(const QString& arquivo) {
  auto roda = [](const QString& programa, const QStringList& args) {
    if (QStandardPaths::findExecutable(programa).isEmpty()) return false;
    QProcess p;
    p.start(programa, args);
    return p.waitForFinished(5000) && p.exitStatus() == QProcess::NormalExit && p.exitCode() == 0;
  };
  const QString uri = QUrl::fromLocalFile(arquivo).toString();
  const QString desktop = qEnvironmentVariable("XDG_CURRENT_DESKTOP").toUpper();
  if (desktop.contains(QLatin1String("KDE")))
    return roda(QStringLiteral("plasma-apply-wallpaperimage"), {arquivo});
  if (desktop.contains(QLatin1String("XFCE")))
    return roda(QStringLiteral("xfconf-query"), {QStringLiteral("-c"), QStringLiteral("xfce4-desktop"),
                                                 QStringLiteral("-p"),
                                                 QStringLiteral("/backdrop/screen0/monitor0/workspace0/last-image"),
                                                 QStringLiteral("-s"), arquivo});
  const QString esquema = QStringLiteral("org.gnome.desktop.background");
  if (!roda(QStringLiteral("gsettings"), {QStringLiteral("set"), esquema, QStringLiteral("picture-uri"), uri}))
    return false;
  // Newer GNOME shows this one in its dark style; older ones don't have it.
  roda(QStringLiteral("gsettings"), {QStringLiteral("set"), esquema, QStringLiteral("picture-uri-dark"), uri});
  return true;
}

// ChangeWallpaper File: "True" when the desktop took the picture. A picture
// that isn't a BMP goes as Temp.bmp in the program's folder. A run without
// a screen never touches the desktop: it answers "False".
Valor CmdChangeWallpaper(Interpretador& zv, const Texto& args) {
  std::vector<Texto> a = zv.SeparaArgumentos(args, 2);
  const Texto pedido = TextoT(zv, Arg(a, 0));
  const Texto resolvido = ResolveArquivo(zv, pedido);
  QString arquivo = Q(resolvido);
  auto falso = [] { return Valor::DeTexto(u"False"); };
  if (arquivo.isEmpty()) return falso();
  SistemaJanelas& s = Janelas(zv);
  GaranteAplicacao(s.SemTela());
  if (!arquivo.right(3).toUpper().endsWith(QLatin1String("BMP"))) {
    QImage figura;
    const QString temp = Q(zv.dirPrograma) + QStringLiteral("Temp.bmp");
    if (!figura.load(arquivo) || !figura.save(temp, "BMP")) return falso();
    arquivo = temp;
  } else if (!QFileInfo::exists(arquivo)) {
    return falso();
  }
  if (s.SemTela()) return falso();
  return Valor::DeTexto(DefineFundoDaArea(QFileInfo(arquivo).absoluteFilePath()) ? u"True" : u"False");
}

// Gradient [Start, End]: the current window's gradient, painted on its
// surface, and again at each resize from then on.
Valor CmdGradient(Interpretador& zv, const Texto& args) {
  std::vector<Texto> a = zv.SeparaArgumentos(args, 2);
  JanelaExecucao* j = Janelas(zv).Atual();
  if (!Arg(a, 0).empty()) {
    j->grdInicial = CorDe(Num(zv, Arg(a, 0)));
    j->grdFinal = CorDe(Num(zv, Arg(a, 1)));
  }
  if (!j->PintaGradiente()) throw FalhaHost(falha::DivisaoPorZero);
  j->grdAtivo = true;
  return Valor();
}

Valor CmdFont(Interpretador& zv, const Texto& args) {
  Janelas(zv).Fonte(zv.SeparaArgumentos(args, 51, true));
  return Valor();
}

int32_t Metade(double v) {
  int32_t n = 0;
  if (!ArredondaInt32(v, n)) throw FalhaHost(falha::Estouro);
  return n;
}

Valor CmdWindowWidth(Interpretador& zv, const Texto&) {
  SistemaJanelas& s = Janelas(zv);
  return Valor::DeInt32(Metade(s.Atual()->width() / s.colSize + 0.5));
}

Valor CmdWindowHeight(Interpretador& zv, const Texto&) {
  SistemaJanelas& s = Janelas(zv);
  return Valor::DeInt32(Metade(s.Atual()->height() / s.linSize + 0.5));
}

Valor CmdCapture(Interpretador& zv, const Texto&) {
  Janelas(zv).capturando = true;
  return Valor();
}

Valor CmdUnCapture(Interpretador& zv, const Texto&) {
  Janelas(zv).capturando = false;
  return Valor();
}

// ---- Events ------------------------------------------------------------------

Texto Tira(Texto& t) {
  Texto r = std::move(t);
  t.clear();
  return r;
}

Valor CmdEvent(Interpretador& zv, const Texto& args) {
  SistemaJanelas& s = Janelas(zv);
  s.FocaAuxiliar();
  Texto m = Maiusculas(Apara(args));
  EstadoEventos& e = s.eventos;
  if (m == u"EVENTKEY") return Valor::TextoComAspas(Tira(e.ultimaTeclaEvento));
  if (m == u"EVENTCLICK") return Valor::TextoComAspas(Tira(e.ultimoClique));
  if (m == u"EVENTRESIZE") return Valor::TextoComAspas(Tira(e.ultimoRedimensiona));
  if (m == u"EVENTBOX") return Valor::TextoComAspas(Tira(e.ultimaMudancaBox));
  if (m == u"EVENTANIMATEDGIF") return Valor::TextoComAspas(Tira(e.ultimoGif));
  return Valor();
}

Valor CmdKeyTest(Interpretador& zv, const Texto& args) {
  SistemaJanelas& s = Janelas(zv);
  s.FocaAuxiliar();
  Texto a = Apara(args);
  Texto m = Maiusculas(a == u"?" ? a : TextoNT(zv, a));
  EstadoEventos& e = s.eventos;
  if (m == u"?") return Valor::DeTexto(Tira(e.ultimaTeclaTeste));
  static const char16_t kLetras[] = u"LRUDSC#";
  for (size_t k = 0; k < 7; ++k)
    if (m.size() == 1 && m[0] == kLetras[k]) return Valor::TextoComAspas(m + e.nomeadas[k]);
  double n;
  if (LeNumero(m, n) && n >= 0 && n < 256) {
    auto c = static_cast<size_t>(n);
    return Valor::TextoComAspas(InteiroParaTexto(static_cast<int64_t>(c)) + (e.codigos[c] ? u"+" : u"-"));
  }
  return Valor();
}

Valor CmdTestMouse(Interpretador& zv, const Texto&) { return Valor::TextoComAspas(Janelas(zv).eventos.botoesMouse); }

Valor CmdTimer(Interpretador& zv, const Texto& args) {
  std::vector<Texto> a = zv.SeparaArgumentos(args, 51);
  Texto primeiro = Apara(Arg(a, 0));
  size_t ponto = primeiro.find(u'.');
  if (ponto == NPOS) return Valor();
  Texto nome = Maiusculas(Apara(primeiro.substr(0, ponto)));
  Texto prop = Maiusculas(Apara(primeiro.substr(ponto + 1)));
  bool ativa = prop == u"ACTIVATE";
  if (!ativa && prop != u"OFF") return Valor();
  int16_t ticks = ativa ? zv.ValorNumerico(Arg(a, 1).empty() ? u"0" : Arg(a, 1)).ComoInt16() : int16_t(0);
  // Every entry of that name: a repeated name is changed in each.
  for (size_t i = 0; i < zv.nomesTimers.size(); ++i) {
    const Texto& n = zv.nomesTimers[i];
    size_t u = n.find(u'_'), p = n.find(u'(');
    if (u == NPOS) continue;
    Texto entre = n.substr(u + 1, p == NPOS ? NPOS : p - u - 1);
    if (Maiusculas(Apara(entre)) == nome) zv.ticksTimers[i] = ticks;
  }
  return Valor();
}

}  // namespace

void RegistraControles(TabelaComandos& t);
void RegistraDialogos(TabelaComandos& t);
void RegistraDesenho(TabelaComandos& t);
void RegistraBandeja(TabelaComandos& t);
void RegistraP2P(TabelaComandos& t);
void RegistraFiguras(TabelaComandos& t);
void RegistraMidia(TabelaComandos& t);
void RegistraImagem(TabelaComandos& t);
void RegistraRelatorios(TabelaComandos& t);
void RegistraSom(TabelaComandos& t);
void RegistraCaptura(TabelaComandos& t);

void RegistraComandosJanela() {
  TabelaComandos& t = Comandos();
  DefinicaoComando semArgs;
  semArgs.semArgumentos = true;
  t.Define(u"Window", CmdWindow);
  t.newWindow = GanchoNewWindow_;
  t.Define(u"Write", CmdWrite);
  t.Define(u"Position", CmdPosition);
  t.Define(u"Cls", CmdCls, semArgs);
  t.Define(u"ClearWindow", CmdCls, semArgs);
  t.Define(u"Font", CmdFont);
  t.Define(u"Gradient", CmdGradient);
  t.Define(u"Icon", CmdIcon);
  t.Define(u"Fonts", CmdFonts);
  t.Define(u"ChangeWallpaper", CmdChangeWallpaper);
  t.Define(u"SystemMenu", CmdSystemMenu);
  t.Define(u"WindowWidth", CmdWindowWidth, semArgs);
  t.Define(u"WindowHeight", CmdWindowHeight, semArgs);
  t.Define(u"CaptureWindow", CmdCapture, semArgs);
  t.Define(u"UnCaptureWindow", CmdUnCapture, semArgs);
  t.Define(u"Event", CmdEvent);
  t.Define(u"KeyTest", CmdKeyTest);
  t.Define(u"TestMouse", CmdTestMouse, semArgs);
  t.Define(u"Timer", CmdTimer);
  RegistraControles(t);
  RegistraBandeja(t);
  RegistraDialogos(t);
  RegistraDesenho(t);
  RegistraP2P(t);
  RegistraFiguras(t);
  RegistraMidia(t);
  RegistraImagem(t);
  RegistraRelatorios(t);
  RegistraSom(t);
  RegistraCaptura(t);
  RegistraSQL();
  RegistraFTP();
}

}  // namespace zv
