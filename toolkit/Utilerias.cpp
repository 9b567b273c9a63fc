#include "toolkit/Utilerias.h"

#include "toolkit/Ini.h"
#include "toolkit/Texto.h"

namespace paratzorep::toolkit {

std::string Utilerias::CambXXX(const std::string& plantilla, const std::string& valor) const {
    return detail::Reemplaza(plantilla, "XXX", valor);
}

std::string Utilerias::LeeRegistro(const std::string& seccion, const std::string& clave,
                                   const std::string& omision) const {
    return LeeIni(seccion, clave, ArchivoRegistro(), omision);
}

void Utilerias::GrabaRegistro(const std::string& seccion, const std::string& clave,
                              const std::string& valor) const {
    EscribeIni(seccion, clave, valor, ArchivoRegistro());
}

std::string Utilerias::SQLseguro(const std::string& texto) const {
    return detail::EscapaSQL(texto);
}

}  // namespace paratzorep::toolkit
