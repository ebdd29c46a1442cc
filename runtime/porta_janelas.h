// The door to the window subsystem. Windows, controls and their events live
// in a module of their own, libzv_janelas.so, on Qt Widgets; it is loaded at
// the first window command and not before, so that a program that opens no
// window loads nothing of the GUI: not even the libraries, whose loading
// alone costs a run more than a small program does.
//
// Until then each window keyword's routine is a stand-in that loads the
// module, which puts the real routines in the keyword table, and then runs
// the real one. Write stays here (a headless program prints its lines) and
// hands over to the module's once it is loaded.
#pragma once

#include <QJsonObject>
#include <functional>
#include <string>

#include "core/host.h"

namespace zv {

class Interpretador;

// What the module offers; made by the module's one exported function.
class ModuloJanelas {
 public:
  virtual ~ModuloJanelas() = default;
  // The real routines into the keyword table.
  virtual void Registra() = 0;
  // The process's QApplication (offscreen when `semTela`).
  virtual void CriaAplicacao(bool semTela) = 0;
  // A real message box.
  virtual Resposta MostraCaixa(const Caixa& caixa) = 0;
  // The desktop's screen and fonts.
  virtual void DadosTela(Plataforma& p) = 0;

  // ---- One run ---------------------------------------------------------
  virtual void MostraPrincipal(Interpretador& zv) = 0;
  // The main window closes (EndWindow, the end of a headless run).
  virtual void FechaPrincipal(Interpretador& zv) = 0;
  virtual bool PrincipalViva(Interpretador& zv) = 0;
  virtual void EntregaAcao(Interpretador& zv, const QJsonObject& acao, int linha) = 0;
  virtual std::string DespejaJanelas(Interpretador& zv) = 0;
  virtual bool Fotografa(Interpretador& zv, const std::string& pasta, std::string& erro) = 0;
  // The native handle of the window commands address (API's HWND).
  virtual int64_t AlcaFormAtual(Interpretador& zv) = 0;
  // The icon of every window of the process (a built program's), as a
  // picture file's bytes.
  virtual void DefineIconeAplicacao(const std::string& bytes) = 0;
};

// Loads the module once; null (and `erro`) when it can't be loaded.
ModuloJanelas* CarregaModuloJanelas(std::string* erro = nullptr);
// The module if it was loaded, else null.
ModuloJanelas* ModuloJanelasCarregado();

// The stand-ins for the window keywords, and Write, into the keyword table.
void RegistraJanelas();

// The API command, which calls functions of shared libraries (api.cpp).
void RegistraAPI();

// True when a desktop session can be reached (DISPLAY or WAYLAND_DISPLAY).
bool TemTela();

}  // namespace zv

// The module's entry point. Weak: a run-time image has the window code
// linked in and its entry point at hand; zvrun has none and loads the module.
extern "C" zv::ModuloJanelas* zv_modulo_janelas() __attribute__((weak));
