// Report forms: the form model lives in host/Formulario.h; the paired form of the
// customer and supplier reports is defined here.
#pragma once

#include <cstdint>
#include <string>

#include "host/Formulario.h"

namespace paratzorep::reports {

using host::Control;
using host::ErrorFormulario;
using host::Formulario;

// A form that serves customers and suppliers (RepAdmCargos, RepAdmEdoCta): the facade sets
// its report key, numeric code, mode label lblTipo ("C" or "P") and person label lblPersona.
class FormularioPareado : public Formulario {
  public:
    FormularioPareado(std::string nombre, std::string caption);

    // Report key ("RepCargosCtes"); after ShowForm it reads key, tab, key.
    std::string Llave;
    // 73 CargosClientes, 79 CargosProveedores, 75 EdoCtaClientes, 81 EdoCtaProveedores.
    std::int16_t Codigo = 0;

    // True when lblTipo says customers ("C").
    bool ParaClientes() const { return Ctl("lblTipo").Caption == "C"; }
};

}  // namespace paratzorep::reports
