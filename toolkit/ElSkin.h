// "kvtz5.ElSkin": window dressing (skin), saved window positions and skinned messages.
#pragma once

#include <string>

#include "host/Interaccion.h"
#include "host/Objeto.h"
#include "toolkit/Fabrica.h"

namespace paratzorep::toolkit {

class ElSkin : public ObjetoKv {
  public:
    std::string Clase() const override { return "ElSkin"; }

    // Settings file that keeps window positions; "" means the helper library's registry file.
    std::string ArchivoINI;

    // Applies the installation's skin to a window.
    void Skin(host::Ventana& ventana) const;
    // Restores a window's saved position (section = window name: "Linea" top, "Columna" left,
    // "Ventana" state, "Firma" the window name that wrote them); nothing when none is saved.
    void LeeCoord(host::Ventana& ventana) const;
    // Saves a window's position under the same keys.
    void GrabaCoord(const host::Ventana& ventana) const;
    // A skinned message box through the host's interaction sink.
    host::Respuesta MsgBoxSkn(const std::string& texto, const std::string& titulo,
                              host::Icono icono = host::Icono::Informacion,
                              host::Botones botones = host::Botones::Aceptar) const;
    // Progress bar: i of n with a text.
    void BarraPorcentaje(double i, double n, const std::string& texto = "") const;

  private:
    std::string Archivo() const;
};

}  // namespace paratzorep::toolkit
