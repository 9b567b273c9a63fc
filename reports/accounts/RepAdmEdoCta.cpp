#include "reports/accounts/RepAdmEdoCta.h"

#include "session/Solicitud.h"
#include "session/SuModulo.h"

namespace paratzorep::reports {

RepAdmEdoCta::RepAdmEdoCta() : FormaCuentas("RepAdmEdoCta", "Estados de cuenta de ") {
    Agrega("chkCancelaciones", -1, "Sin los movimientos de cancelaciones");
}

void RepAdmEdoCta::AjustaModo() {
    FormaCuentas::AjustaModo();
    Control& cancelaciones = Ctl("chkCancelaciones");
    cancelaciones.Visible = ParaClientes();
    if (!ParaClientes()) cancelaciones.Value = 0;
}

std::string RepAdmEdoCta::FormulaSeleccion(const FiltrosCuenta& f) {
    const std::string t = TablaEdoCta(f.clientes);
    std::string s = "{" + t + ".IdMoneda}=" + (f.moneda.empty() ? std::string("1") : f.moneda);
    s = session::UneCondicion(s, CondicionFecha(t, f.desde, false));
    s = session::UneCondicion(s, CondicionFecha(t, f.hasta, true));
    if (f.clientes && f.sinCancelaciones) {
        s = session::UneCondicion(s,
                                  "not ('BONIFICACION POR CANCELACION' in {" + t + ".Concepto})");
        s = session::UneCondicion(
            s, "not ('DEVOLUCION DEL DINERO POR CANC.' in {" + t + ".Concepto})");
    }
    for (const auto& c : CondicionesClave(t, f.clave0, f.clave1)) s = session::UneCondicion(s, c);
    return s;
}

std::string RepAdmEdoCta::Plantilla(bool clientes) {
    return clientes ? "edoctactes.rpt" : "edoctaprov.rpt";
}

void RepAdmEdoCta::Imprimir() {
    Paso("armar la fórmula de selección");
    FiltrosCuenta f = Filtros();
    f.sinCancelaciones = f.clientes && Ctl("chkCancelaciones").Value != 0;

    PasaGenerales({
        {"Titulo", host::Valor(Caption)},
        {"ParaLasFechas", host::Valor(TextoPeriodo(f))},
        {"Filtros", host::Valor(TextoFiltros(f, true))},
    });

    auto& sol = session::solicitud();
    sol.Plantilla = Plantilla(f.clientes);
    sol.FormulaSeleccion = FormulaSeleccion(f);
    Ejecuta();
}

}  // namespace paratzorep::reports
