#include "reports/accounts/RepAdmSdoProdsCtes.h"

#include "reports/accounts/FormaCuentas.h"
#include "session/Solicitud.h"
#include "session/SuModulo.h"
#include "toolkit/Texto.h"

namespace paratzorep::reports {

RepAdmSdoProdsCtes::RepAdmSdoProdsCtes()
    : FormaReporte("RepAdmSdoProdsCtes", "Saldos de productos por cliente") {
    Agrega("lblFecha", 0, "Del día:");
    AgregaFecha("mkeFecha", 0);
    Agrega("lblFecha", 1, "Al día:");
    AgregaFecha("mkeFecha", 1);
    Agrega("txtDato", 0, "Del cliente");
    Agrega("lblDato", 0);
    Agrega("txtDato", 1, "Al cliente");
    Agrega("lblDato", 1);
}

std::string RepAdmSdoProdsCtes::FormulaSeleccion(const std::string& clave0,
                                                 const std::string& clave1) {
    std::string s;
    if (!clave0.empty())
        s = session::UneCondicion(
            s, session::LlenaXXX(clave1.empty() ? "{saldosprodsctes.Cliente}='XXX'"
                                                : "{saldosprodsctes.Cliente}>='XXX'",
                                 clave0));
    if (!clave1.empty())
        s = session::UneCondicion(
            s, session::LlenaXXX(clave0.empty() ? "{saldosprodsctes.Cliente}='XXX'"
                                                : "{saldosprodsctes.Cliente}<='XXX'",
                                 clave1));
    return s;
}

void RepAdmSdoProdsCtes::AlSalir(Control& c) {
    if (c.Nombre != "txtDato" || c.Indice < 0 || c.Indice > 1) return;
    Ctl("lblDato", c.Indice).Caption =
        NombreDeCuenta(ConexionEmpresa(), true, toolkit::detail::Recorta(c.Text));
}

void RepAdmSdoProdsCtes::Imprimir() {
    Paso("armar la fórmula de selección");
    const std::string c0 = toolkit::detail::Recorta(Ctl("txtDato", 0).Text);
    const std::string c1 = toolkit::detail::Recorta(Ctl("txtDato", 1).Text);
    std::string filtros = "Todos los clientes";
    if (!c0.empty() && !c1.empty())
        filtros = "Clientes del " + c0 + " al " + c1;
    else if (!c0.empty() || !c1.empty())
        filtros = "Cliente " + (c0.empty() ? c1 : c0);
    PasaGenerales({
        {"Titulo", host::Valor(Caption)},
        {"Filtros", host::Valor(filtros)},
    });
    auto& sol = session::solicitud();
    sol.Plantilla = "saldosprodsctes.rpt";
    sol.FormulaSeleccion = FormulaSeleccion(c0, c1);
    Ejecuta();
}

}  // namespace paratzorep::reports
