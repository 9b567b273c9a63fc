// "kvtz5.Utilerias": text utilities and the helper library's registry (kvtz5.ini).
#pragma once

#include <string>

#include "toolkit/Fabrica.h"

namespace paratzorep::toolkit {

class Utilerias : public ObjetoKv {
  public:
    std::string Clase() const override { return "Utilerias"; }

    // Every "XXX" of the template replaced by the value, quotes left as they are.
    std::string CambXXX(const std::string& plantilla, const std::string& valor) const;
    // A value of the helper library's registry (kvtz5.ini); `omision` when missing.
    std::string LeeRegistro(const std::string& seccion, const std::string& clave,
                            const std::string& omision = "") const;
    // Writes a value into the helper library's registry.
    void GrabaRegistro(const std::string& seccion, const std::string& clave,
                       const std::string& valor) const;
    // Text made safe inside a single-quoted SQL literal.
    std::string SQLseguro(const std::string& texto) const;
};

}  // namespace paratzorep::toolkit
