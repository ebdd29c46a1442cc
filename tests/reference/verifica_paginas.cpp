// Checks the reference pages under docs/reference/pages/.
//
//   zv_verifica_paginas examples ZVRUN PAGE.md...
//       runs every ```zarvolt example of each page through zvrun --headless
//       (with the ```events and ```answers blocks that follow it) in an
//       empty folder of its own, renders what it prints as a reader sees it
//       and compares that with the page's ```output block; a mismatch
//       prints a unified diff. ```zarvolt norun examples are counted, not run.
//       A ```zarvolt peer block behind an example is a second program run
//       beside it in the same folder (two programs that talk): started once
//       the example has printed its first line, or, marked "first", started
//       before it, the example waiting for the peer's first line. Only the
//       example's output is compared.
//       ```zarvolt ftp PORT runs the example with a small FTP server on
//       PORT (zv_servidor_ftp, beside zvrun): user "demo", password "demo",
//       serving a folder that holds the page files.
//       ```zarvolt image NAME puts a copy of the run-time image of built
//       programs (zv-runtime, beside zvrun) in the example's folder as NAME.
//   zv_verifica_paginas words WORDS.txt PAGES_DIR [PENDING.txt]
//       every word of the list has its page, and every page is a word of
//       the list (the tutorial, Curso, apart). A word of PENDING.txt (one a
//       line) may still lack its page: the reference is written in parts,
//       and the list shrinks as they land. Each word's page has the shape
//       every page shares (its title, its sections in order), and its links
//       lead to pages of the list.
//
// Exit status 0 when everything agrees, 1 otherwise.
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QStringList>
#include <QTemporaryDir>
#include <QTextStream>

#include <cstdio>
#include <iterator>

namespace {

// A run that takes longer than this has hung on something the page didn't
// plan for (a box waiting, an event script that never ends it).
constexpr int kLimiteExecucaoMs = 30000;

void Diz(const QString& s) {
  QByteArray b = s.toUtf8();
  std::fwrite(b.constData(), 1, static_cast<size_t>(b.size()), stdout);
  std::fflush(stdout);
}

struct Bloco {
  QString tipo;  // zarvolt, events, answers, output (or anything else)
  bool naoRoda = false;
  bool par = false, primeiro = false;  // a peer program, started first
  int portaFtp = 0;                      // an FTP server beside it, on this port
  QString imagem;                        // a copy of zv-runtime beside it, by this name
  QString texto;
  int linha = 0;  // of the opening fence, 1-based
};

struct Exemplo {
  QString programa, eventos, respostas, saida, par;
  bool temEventos = false, temRespostas = false, temSaida = false, naoRoda = false;
  bool temPar = false, parPrimeiro = false;
  int portaFtp = 0;
  QString imagem;
  int linha = 0;
};

QStringList LeLinhas(const QString& caminho, bool* ok) {
  QFile f(caminho);
  *ok = f.open(QIODevice::ReadOnly);
  if (!*ok) return {};
  QString t = QString::fromUtf8(f.readAll());
  t.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
  return t.split(u'\n');
}

QList<Bloco> LeBlocos(const QStringList& linhas) {
  QList<Bloco> blocos;
  for (int i = 0; i < linhas.size(); ++i) {
    QString l = linhas[i];
    if (!l.startsWith(QStringLiteral("```"))) continue;
    Bloco b;
    b.linha = i + 1;
    QStringList info = l.mid(3).trimmed().split(u' ', Qt::SkipEmptyParts);
    b.tipo = info.value(0);
    b.naoRoda = info.contains(QStringLiteral("norun"));
    b.par = info.contains(QStringLiteral("peer"));
    b.primeiro = info.contains(QStringLiteral("first"));
    if (int k = info.indexOf(QStringLiteral("ftp")); k >= 0) b.portaFtp = info.value(k + 1).toInt();
    if (int k = info.indexOf(QStringLiteral("image")); k >= 0) b.imagem = info.value(k + 1);
    QStringList corpo;
    for (++i; i < linhas.size() && linhas[i].trimmed() != QStringLiteral("```"); ++i) corpo << linhas[i];
    b.texto = corpo.join(u'\n');
    blocos << b;
  }
  return blocos;
}

// An example is a program and the blocks behind it up to the next program.
QList<Exemplo> JuntaExemplos(const QList<Bloco>& blocos) {
  QList<Exemplo> exemplos;
  for (const Bloco& b : blocos) {
    if (b.tipo == QStringLiteral("zarvolt") && b.par) {
      if (exemplos.isEmpty()) continue;
      exemplos.last().par = b.texto;
      exemplos.last().temPar = true;
      exemplos.last().parPrimeiro = b.primeiro;
      continue;
    }
    if (b.tipo == QStringLiteral("zarvolt")) {
      Exemplo e;
      e.programa = b.texto;
      e.naoRoda = b.naoRoda;
      e.portaFtp = b.portaFtp;
      e.imagem = b.imagem;
      e.linha = b.linha;
      exemplos << e;
      continue;
    }
    if (exemplos.isEmpty()) continue;
    Exemplo& e = exemplos.last();
    if (b.tipo == QStringLiteral("events")) {
      e.eventos = b.texto;
      e.temEventos = true;
    } else if (b.tipo == QStringLiteral("answers")) {
      e.respostas = b.texto;
      e.temRespostas = true;
    } else if (b.tipo == QStringLiteral("output") && !e.temSaida) {
      e.saida = b.texto;
      e.temSaida = true;
    }
  }
  return exemplos;
}

// What the run shows, as the page writes it: a box as its text, its kind in
// brackets when it isn't an information box, its answer when it had more
// than an OK button; any other line as it stands.
QStringList Renderiza(const QString& saida) {
  QStringList r;
  QStringList linhas = saida.split(u'\n');
  if (!linhas.isEmpty() && linhas.last().isEmpty()) linhas.removeLast();
  for (const QString& l : linhas) {
    QJsonObject caixa;
    if (l.startsWith(QStringLiteral("{\"box\":"))) caixa = QJsonDocument::fromJson(l.toUtf8()).object();
    if (caixa.isEmpty()) {
      r << l;
      continue;
    }
    QString texto = caixa.value(QStringLiteral("text")).toString();
    texto.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    texto.replace(u'\r', u'\n');
    QStringList partes = texto.split(u'\n');
    QString tipo = caixa.value(QStringLiteral("box")).toString();
    if (tipo != QStringLiteral("info")) partes[0].prepend(QStringLiteral("[%1] ").arg(tipo));
    r << partes;
    if (caixa.value(QStringLiteral("buttons")).toString() != QStringLiteral("OK"))
      r << QStringLiteral("-> ") + caixa.value(QStringLiteral("answer")).toString();
  }
  return r;
}

void TiraBrancasNoFim(QStringList& l) {
  while (!l.isEmpty() && l.last().trimmed().isEmpty()) l.removeLast();
}

bool Grava(const QString& caminho, const QString& texto) {
  QFile f(caminho);
  if (!f.open(QIODevice::WriteOnly)) return false;
  f.write(texto.toUtf8());
  if (!texto.endsWith(u'\n')) f.write("\n");
  return true;
}

QString Diferenca(const QString& pasta, const QString& rotulo, const QStringList& esperado, const QStringList& obtido) {
  QString a = pasta + QStringLiteral("/expected.txt"), b = pasta + QStringLiteral("/actual.txt");
  Grava(a, esperado.join(u'\n'));
  Grava(b, obtido.join(u'\n'));
  QProcess diff;
  diff.start(QStringLiteral("diff"), {QStringLiteral("-u"), QStringLiteral("--label"), rotulo + QStringLiteral(" (page)"),
                                      QStringLiteral("--label"), rotulo + QStringLiteral(" (this run)"), a, b});
  diff.waitForFinished();
  return QString::fromUtf8(diff.readAllStandardOutput());
}

// One example in a folder of its own; true when it shows what the page says.
// `arquivos`: the folder of files the examples open (pictures, icons),
// copied beside each example.
bool RodaExemplo(const QString& zvrun, const QString& rotulo, const Exemplo& e, const QString& arquivos) {
  if (!e.temSaida) {
    Diz(rotulo + QStringLiteral(": the example has no ```output block\n"));
    return false;
  }
  QTemporaryDir pasta;
  QString dir = pasta.path();
  for (const QFileInfo& f : QDir(arquivos).entryInfoList(QDir::Files))
    QFile::copy(f.absoluteFilePath(), dir + u'/' + f.fileName());
  // Dates and numbers in the pages are in the US forms, whatever the
  // machine that checks them is set to.
  QStringList args{QStringLiteral("--headless"), QStringLiteral("--config-dir"), dir, QStringLiteral("--locale"),
                   QStringLiteral("en_US.UTF-8")};
  if (e.temEventos) {
    Grava(dir + QStringLiteral("/example.events"), e.eventos);
    args << QStringLiteral("--events") << dir + QStringLiteral("/example.events");
  }
  if (e.temRespostas) {
    Grava(dir + QStringLiteral("/example.answers"), e.respostas);
    args << QStringLiteral("--answers-file") << dir + QStringLiteral("/example.answers");
  }
  if (!e.imagem.isEmpty() &&
      !QFile::copy(QFileInfo(zvrun).absolutePath() + QStringLiteral("/zv-runtime"), dir + u'/' + e.imagem)) {
    Diz(rotulo + QStringLiteral(": zv-runtime isn't beside zvrun\n"));
    return false;
  }
  // The program's own folder is the run's folder, so the files it makes
  // stay beside it and go with it.
  QString programa = dir + QStringLiteral("/example.zvc");
  Grava(programa, e.programa);
  args << programa;

  // What an example adds to the desktop (a start-up entry) stays in its folder.
  QProcessEnvironment ambiente = QProcessEnvironment::systemEnvironment();
  ambiente.insert(QStringLiteral("XDG_CONFIG_HOME"), dir + QStringLiteral("/config"));
  auto prepara = [&](QProcess& processo) {
    processo.setWorkingDirectory(dir);
    processo.setProcessEnvironment(ambiente);
  };
  // Waits until a program has printed a whole line; false when it ends or
  // the time runs out first.
  auto esperaLinha = [](QProcess& processo) {
    QElapsedTimer t;
    t.start();
    while (!processo.canReadLine()) {
      if (processo.state() != QProcess::Running || t.elapsed() > kLimiteExecucaoMs) return false;
      processo.waitForReadyRead(100);
    }
    return true;
  };

  // The FTP server an example talks to, serving the page files.
  QProcess ftp;
  struct Encerra {
    QProcess& p;
    ~Encerra() {
      if (p.state() == QProcess::NotRunning) return;
      p.kill();
      p.waitForFinished();
    }
  } encerraFtp{ftp};
  if (e.portaFtp > 0) {
    QString servidor = dir + QStringLiteral("/server");
    QDir().mkpath(servidor);
    for (const QFileInfo& f : QDir(arquivos).entryInfoList(QDir::Files))
      QFile::copy(f.absoluteFilePath(), servidor + u'/' + f.fileName());
    ftp.start(QFileInfo(zvrun).absolutePath() + QStringLiteral("/zv_servidor_ftp"),
              {servidor, QString::number(e.portaFtp), QStringLiteral("demo"), QStringLiteral("demo")});
    if (!ftp.waitForStarted() || !esperaLinha(ftp)) {
      Diz(rotulo + QStringLiteral(": the FTP server doesn't start\n") + QString::fromUtf8(ftp.readAllStandardError()));
      return false;
    }
  }

  QProcess par;
  prepara(par);
  auto iniciaPar = [&] {
    QString programaPar = dir + QStringLiteral("/peer.zvc");
    Grava(programaPar, e.par);
    par.start(zvrun, {QStringLiteral("--headless"), QStringLiteral("--config-dir"), dir + QStringLiteral("/peer"),
                      QStringLiteral("--locale"), QStringLiteral("en_US.UTF-8"), programaPar});
    return par.waitForStarted();
  };
  auto terminaPar = [&] {
    if (!e.temPar) return;
    if (!par.waitForFinished(kLimiteExecucaoMs)) par.kill();
    par.waitForFinished();
  };
  if (e.temPar && e.parPrimeiro && !(iniciaPar() && esperaLinha(par))) {
    Diz(rotulo + QStringLiteral(": the peer program printed no first line\n") +
        QString::fromUtf8(par.readAllStandardError()));
    terminaPar();
    return false;
  }

  QProcess p;
  prepara(p);
  p.start(zvrun, args);
  if (!p.waitForStarted()) {
    Diz(rotulo + QStringLiteral(": zvrun doesn't start: ") + zvrun + u'\n');
    terminaPar();
    return false;
  }
  if (e.temPar && !e.parPrimeiro && esperaLinha(p)) iniciaPar();
  if (!p.waitForFinished(kLimiteExecucaoMs)) {
    p.kill();
    p.waitForFinished();
    terminaPar();
    Diz(rotulo + QStringLiteral(": the run took longer than %1 s\n").arg(kLimiteExecucaoMs / 1000));
    return false;
  }
  terminaPar();
  QString erros = QString::fromUtf8(p.readAllStandardError());
  if (p.exitStatus() != QProcess::NormalExit || p.exitCode() != 0) {
    Diz(rotulo + QStringLiteral(": zvrun ended with %1\n").arg(p.exitCode()) + erros);
    return false;
  }
  QStringList obtido = Renderiza(QString::fromUtf8(p.readAllStandardOutput()));
  QStringList esperado = e.saida.split(u'\n');
  TiraBrancasNoFim(obtido);
  TiraBrancasNoFim(esperado);
  if (obtido == esperado) return true;
  Diz(Diferenca(dir, rotulo, esperado, obtido) + erros);
  Diz(rotulo + QStringLiteral(": the example's output differs from its ```output block (the diff above)\n"));
  return false;
}

int VerificaExemplos(const QString& zvrun, const QStringList& paginas) {
  int rodados = 0, naoRodados = 0, falhas = 0;
  for (const QString& pagina : paginas) {
    bool ok = false;
    QStringList linhas = LeLinhas(pagina, &ok);
    if (!ok) {
      Diz(pagina + QStringLiteral(": can't be read\n"));
      ++falhas;
      continue;
    }
    QList<Exemplo> exemplos = JuntaExemplos(LeBlocos(linhas));
    QString nome = QFileInfo(pagina).fileName();
    if (exemplos.isEmpty()) {
      Diz(nome + QStringLiteral(": no ```zarvolt example\n"));
      ++falhas;
    }
    for (const Exemplo& e : exemplos) {
      if (e.naoRoda) {
        ++naoRodados;
        continue;
      }
      ++rodados;
      if (!RodaExemplo(zvrun, nome + QStringLiteral(":%1").arg(e.linha), e,
                       QFileInfo(pagina).absolutePath() + QStringLiteral("/files")))
        ++falhas;
    }
  }
  Diz(QStringLiteral("%1 examples run, %2 failed, %3 not run (norun)\n").arg(rodados).arg(falhas).arg(naoRodados));
  return falhas == 0 ? 0 : 1;
}

// The sections of a word's page, in their order; Result is for functions
// only.
const char* const kSecoes[] = {"## Forms", "## Result", "## What goes wrong", "## Watch out", "## Example", "## See also"};

// Problems of one page's shape, one a line; empty when it has none.
QStringList VerificaForma(const QString& palavra, const QStringList& linhas, const QSet<QString>& conhecidas) {
  QStringList problemas;
  // The tutorial has steps of its own; only its links are checked.
  const bool tutorial = palavra == QStringLiteral("Curso");
  if (!tutorial && linhas.value(0) != QStringLiteral("# ") + palavra)
    problemas << QStringLiteral("the first line isn't \"# %1\"").arg(palavra);
  int ultima = -1;
  bool dentro = false;
  static const QRegularExpression kLink(QStringLiteral("\\]\\(([^)#]*)\\.md[)#]"));
  for (int i = 0; i < linhas.size(); ++i) {
    const QString& l = linhas[i];
    if (l.startsWith(QStringLiteral("```"))) dentro = !dentro;
    if (dentro) continue;
    if (!tutorial && l.startsWith(QStringLiteral("## "))) {
      int k = -1;
      for (int j = 0; j < int(std::size(kSecoes)); ++j)
        if (l == QString::fromLatin1(kSecoes[j])) k = j;
      if (k < 0)
        problemas << QStringLiteral("line %1: \"%2\" isn't a section of a page").arg(i + 1).arg(l);
      else if (k <= ultima)
        problemas << QStringLiteral("line %1: \"%2\" stands out of order").arg(i + 1).arg(l);
      else
        ultima = k;
    }
    for (auto it = kLink.globalMatch(l); it.hasNext();) {
      QString alvo = it.next().captured(1);
      if (!conhecidas.contains(alvo)) problemas << QStringLiteral("line %1: a link to %2.md, no word's page").arg(i + 1).arg(alvo);
    }
  }
  for (int j : {0, 2, 3, 4, 5})
    if (!tutorial && !linhas.contains(QString::fromLatin1(kSecoes[j])))
      problemas << QStringLiteral("no section \"%1\"").arg(QString::fromLatin1(kSecoes[j]));
  // A page that says its example isn't run, with every example run: the
  // note outlived the part it waited for.
  const QString texto = linhas.join(u'\n');
  if (texto.contains(QStringLiteral("isn't run when the reference is checked")) &&
      !texto.contains(QStringLiteral("```zarvolt norun")))
    problemas << QStringLiteral("it says its example isn't run, but every example runs");
  return problemas;
}

int VerificaPalavras(const QString& lista, const QString& pastaPaginas, const QString& listaPendentes) {
  bool ok = false;
  QSet<QString> pendentes;
  if (!listaPendentes.isEmpty()) {
    const QStringList linhas = LeLinhas(listaPendentes, &ok);
    for (const QString& p : linhas)
      if (!p.trimmed().isEmpty()) pendentes.insert(p.trimmed());
  }
  QStringList palavras = LeLinhas(lista, &ok);
  if (!ok) {
    Diz(lista + QStringLiteral(": can't be read\n"));
    return 1;
  }
  QSet<QString> conhecidas;
  int falhas = 0;
  for (QString p : palavras) {
    p = p.trimmed();
    if (p.isEmpty()) continue;
    conhecidas.insert(p);
    if (!QFileInfo::exists(pastaPaginas + u'/' + p + QStringLiteral(".md")) && !pendentes.contains(p)) {
      Diz(p + QStringLiteral(": no page ") + p + QStringLiteral(".md\n"));
      ++falhas;
    }
  }
  conhecidas.insert(QStringLiteral("Curso"));
  const QStringList md = QDir(pastaPaginas).entryList({QStringLiteral("*.md")}, QDir::Files, QDir::Name);
  for (const QString& arquivo : md) {
    QString palavra = QFileInfo(arquivo).completeBaseName();
    if (!conhecidas.contains(palavra)) {
      Diz(arquivo + QStringLiteral(": a page for no word of ") + QFileInfo(lista).fileName() + u'\n');
      ++falhas;
      continue;
    }
    bool lida = false;
    for (const QString& p : VerificaForma(palavra, LeLinhas(pastaPaginas + u'/' + arquivo, &lida), conhecidas)) {
      Diz(arquivo + QStringLiteral(": ") + p + u'\n');
      ++falhas;
    }
  }
  // Not a fault: the list is the writers' to keep.
  QStringList escritas;
  for (const QString& p : std::as_const(pendentes))
    if (QFileInfo::exists(pastaPaginas + u'/' + p + QStringLiteral(".md"))) escritas << p;
  if (!escritas.isEmpty()) {
    escritas.sort();
    Diz(QStringLiteral("written now, to drop from the pending list: ") + escritas.join(QStringLiteral(", ")) + u'\n');
  }
  Diz(QStringLiteral("%1 words, %2 pages, %3 pending, %4 problems\n")
          .arg(conhecidas.size() - 1)
          .arg(md.size())
          .arg(pendentes.size())
          .arg(falhas));
  return falhas == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  QCoreApplication app(argc, argv);
  QStringList a = app.arguments();
  if (a.size() >= 3 && a[1] == QStringLiteral("examples")) return VerificaExemplos(QFileInfo(a[2]).absoluteFilePath(), a.mid(3));
  if ((a.size() == 4 || a.size() == 5) && a[1] == QStringLiteral("words")) return VerificaPalavras(a[2], a[3], a.value(4));
  Diz(QStringLiteral("usage: zv_verifica_paginas examples ZVRUN PAGE.md... | words WORDS.txt PAGES_DIR [PENDING.txt]\n"));
  return 2;
}
