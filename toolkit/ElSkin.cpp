#include "toolkit/ElSkin.h"

#include "toolkit/Ini.h"
#include "toolkit/LibKRVM.h"

namespace paratzorep::toolkit {

std::string ElSkin::Archivo() const {
    return ArchivoINI.empty() ? ArchivoRegistro().string() : ArchivoINI;
}

void ElSkin::Skin(host::Ventana& ventana) const {
    ventana.Piel = "kvtz5";
}

void ElSkin::LeeCoord(host::Ventana& ventana) const {
    const std::string seccion = ventana.Nombre();
    if (LeeIni(seccion, "Firma", Archivo()) != seccion) return;
    LibKRVM kv;
    ventana.Top = static_cast<int>(kv.kvVal(LeeIni(seccion, "Linea", Archivo(), "0")));
    ventana.Left = static_cast<int>(kv.kvVal(LeeIni(seccion, "Columna", Archivo(), "0")));
    ventana.WindowState = static_cast<int>(kv.kvVal(LeeIni(seccion, "Ventana", Archivo(), "0")));
}

void ElSkin::GrabaCoord(const host::Ventana& ventana) const {
    const std::string seccion = ventana.Nombre();
    EscribeIni(seccion, "Ventana", std::to_string(ventana.WindowState), Archivo());
    EscribeIni(seccion, "Linea", std::to_string(ventana.Top), Archivo());
    EscribeIni(seccion, "Columna", std::to_string(ventana.Left), Archivo());
    EscribeIni(seccion, "Firma", seccion, Archivo());
}

host::Respuesta ElSkin::MsgBoxSkn(const std::string& texto, const std::string& titulo,
                                  host::Icono icono, host::Botones botones) const {
    return host::interaccion().Mensaje(titulo, texto, icono, botones);
}

void ElSkin::BarraPorcentaje(double i, double n, const std::string& texto) const {
    host::interaccion().Progreso(LibKRVM().Porcentaje(i, n), texto);
}

}  // namespace paratzorep::toolkit
