#include "reports/Formulario.h"

namespace paratzorep::reports {

FormularioPareado::FormularioPareado(std::string nombre, std::string caption)
    : Formulario(std::move(nombre), std::move(caption)) {
    Agrega("lblTipo");
    Agrega("lblPersona", -1, "Cliente");
}

}  // namespace paratzorep::reports
