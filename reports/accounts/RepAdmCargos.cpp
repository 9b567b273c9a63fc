#include "reports/accounts/RepAdmCargos.h"

#include "session/Solicitud.h"
#include "session/SuModulo.h"
#include "toolkit/Fechas.h"

namespace paratzorep::reports {

RepAdmCargos::RepAdmCargos() : FormaCuentas("RepAdmCargos", "Cargos ") {
    Agrega("lblOrden", -1, "Ordenado por:");
    Control& orden = Agrega("cmbDato", 0, "Orden");
    orden.Items = {"Fecha", "Importe", "Concepto", "Cliente"};
    orden.ListIndex = 0;
}

void RepAdmCargos::AjustaModo() {
    FormaCuentas::AjustaModo();
    Ctl("cmbDato", 0).Items[3] = ParaClientes() ? "Cliente" : "Proveedor";
}

std::string RepAdmCargos::FormulaSeleccion(const FiltrosCuenta& f) {
    const std::string t = TablaEdoCta(f.clientes);
    std::string s = "{" + t + ".CantidadCargo}>0";
    if (!f.moneda.empty()) s = session::UneCondicion(s, "{" + t + ".IdMoneda}=" + f.moneda);
    s = session::UneCondicion(s, CondicionFecha(t, f.desde, false));
    s = session::UneCondicion(s, CondicionFecha(t, f.hasta, true));
    for (const auto& c : CondicionesClave(t, f.clave0, f.clave1)) s = session::UneCondicion(s, c);
    return s;
}

std::string RepAdmCargos::CampoOrden(bool clientes, int orden) {
    static const char* const campos[] = {"Fecha", "CantidadCargo", "Concepto", "Clave"};
    if (orden < 0 || orden > 3) return "";
    return "+{" + TablaEdoCta(clientes) + "." + campos[orden] + "}";
}

std::string RepAdmCargos::Encabezado(const std::string& caption, const std::string& desde,
                                     const std::string& hasta) {
    std::string e = caption;
    if (const auto d = toolkit::LeeFecha(desde)) e += ", desde el " + toolkit::TextoMesCorto(*d);
    if (const auto h = toolkit::LeeFecha(hasta)) e += " hasta el " + toolkit::TextoMesCorto(*h);
    return e;
}

std::string RepAdmCargos::Plantilla(bool clientes) {
    return clientes ? "cargosctes.rpt" : "cargosprov.rpt";
}

void RepAdmCargos::Imprimir() {
    Paso("armar la fórmula de selección");
    const FiltrosCuenta f = Filtros();
    PasaEncabezado(Encabezado(Caption, f.desde, f.hasta));
    PasaGenerales({
        {"Titulo", host::Valor(Caption)},
        {"ParaLasFechas", host::Valor(TextoPeriodo(f))},
        {"Filtros", host::Valor(TextoFiltros(f, false))},
    });

    auto& sol = session::solicitud();
    sol.Plantilla = Plantilla(f.clientes);
    sol.FormulaSeleccion = FormulaSeleccion(f);
    sol.SortField(0, CampoOrden(f.clientes, Ctl("cmbDato", 0).ListIndex));
    Ejecuta();
}

}  // namespace paratzorep::reports
