// The picture and media controls: Picture and DrawPictures (figuras.cpp),
// and what they share with the others.
#pragma once

#include <QImage>
#include <QString>
#include <functional>
#include <string>

#include "core/interpretador.h"

class QWidget;

namespace zv {

// A picture file of a program, resolved as its other files are; `achou`
// false when there is no such file. A file that isn't a picture throws.
QImage CarregaFiguraArquivo(Interpretador& zv, const Texto& nome, bool& achou);

// A Picture's fields in the window dump.
void DescreveSprite(QWidget* w, std::string& s, const std::function<std::string(const char*, int)>& campo);

void RegistraFiguras(TabelaComandos& t);

// Link, AnimatedGif and Browser (midia.cpp). Their fields in the window
// dump; the address the browser of a window shows, empty when it has none
// on view.
enum class TipoControle : int;
void DescreveMidia(TipoControle tipo, QWidget* w, std::string& s,
                   const std::function<std::string(const char*, const QString&)>& campo);
class JanelaExecucao;
QString EnderecoNavegador(Interpretador& zv, const JanelaExecucao* j);
void RegistraMidia(TabelaComandos& t);

// Image (imagem.cpp). A control moved into the Image of that name by
// `.Parent`; false when there is none.
class SistemaJanelas;
bool PoeNaImagem(SistemaJanelas& s, QWidget* w, const Texto& nome);
void RegistraImagem(TabelaComandos& t);

// Sound and Video (som.cpp): a player's fields in the window dump.
void DescreveSom(QWidget* w, std::string& s, const std::function<std::string(const char*, const QString&)>& campo);
void RegistraSom(TabelaComandos& t);

}  // namespace zv
