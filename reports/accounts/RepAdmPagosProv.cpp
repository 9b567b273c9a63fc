#include "reports/accounts/RepAdmPagosProv.h"

#include "session/Sesion.h"
#include "session/Solicitud.h"
#include "session/SuModulo.h"

namespace paratzorep::reports {

RepAdmPagosProv::RepAdmPagosProv() : FormaCobranza("RepAdmPagosProv", "Pagos a proveedores") {
    Agrega("lblFecha", 0, "Del día:");
    AgregaFecha("mkeFecha", 0);
    Agrega("lblFecha", 1, "Al día:");
    AgregaFecha("mkeFecha", 1);
    Agrega("lblDato", 0, "Del proveedor:");
    Agrega("txtDato", 0, "Proveedor inicial");
    Agrega("lblNombre", 0);
    Agrega("lblDato", 1, "Al proveedor:");
    Agrega("txtDato", 1, "Proveedor final");
    Agrega("lblNombre", 1);
    Agrega("lblMoneda", -1, "Moneda:");
    Agrega("dcmDato", 0, "Moneda");
    Agrega("chkDevoluc", -1, "Incluir devoluciones a proveedores");
    AgregaOrden(0, "Proveedor");
}

void RepAdmPagosProv::EnlazaCombos() {
    EnlazaMonedas(0);
}

void RepAdmPagosProv::AlSalir(Control& c) {
    if (c.Nombre == "txtDato")
        Ctl("lblNombre", c.Indice).Caption = NombreDe("proveedores", Clave(c.Indice));
}

std::string RepAdmPagosProv::FormulaSeleccion(const std::string& desde, const std::string& hasta,
                                              const std::string& claveDesde,
                                              const std::string& claveHasta,
                                              const std::string& moneda, bool devoluciones) {
    std::string f = "{edoctaprov.CantidadPago}>0";
    if (!devoluciones)
        f = session::UneCondicion(f, "not ('DEVOLUCION PROV. ' in {edoctaprov.Concepto})");
    if (!moneda.empty()) f = session::UneCondicion(f, "{edoctaprov.IdMoneda}=" + moneda);
    if (!desde.empty())
        f = session::UneCondicion(f, "{edoctaprov.Fecha}>=" + session::FechaFormula(desde));
    if (!hasta.empty())
        f = session::UneCondicion(f, "{edoctaprov.Fecha}<=" + session::FechaFormula(hasta));
    for (const auto& c : RangoClaves("{edoctaprov.Clave}='XXX'", "{edoctaprov.Clave}>='XXX'",
                                     "{edoctaprov.Clave}<='XXX'", claveDesde, claveHasta))
        f = session::UneCondicion(f, c);
    return f;
}

void RepAdmPagosProv::Imprimir() {
    Paso("armar las condiciones del reporte");
    const std::string moneda = MonedaElegida(0);
    EscribeEncabezado(Encabezado(Caption, Fecha(0), Fecha(1)));

    auto& sol = session::solicitud();
    sol.Plantilla = "pagosprov.rpt";
    sol.FormulaSeleccion = FormulaSeleccion(Fecha(0), Fecha(1), Clave(0), Clave(1), moneda,
                                            Ctl("chkDevoluc").Value != 0);
    sol.SortField(0, OrdenPagos("edoctaprov", Ctl("cmbDato", 0).ListIndex));
    Ejecuta();
}

}  // namespace paratzorep::reports
