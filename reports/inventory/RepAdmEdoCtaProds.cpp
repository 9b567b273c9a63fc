#include "reports/inventory/RepAdmEdoCtaProds.h"

#include "reports/inventory/BuscaClave.h"
#include "session/Sesion.h"
#include "session/Solicitud.h"
#include "session/SuModulo.h"
#include "toolkit/LibKRVM.h"
#include "toolkit/Texto.h"

namespace paratzorep::reports {

namespace {

const toolkit::LibKRVM& Lib() {
    static const toolkit::LibKRVM local;
    const auto& lib = session::sesion().LibKRVM;
    return lib ? *lib : local;
}

std::string Recortado(const Control& c) {
    return toolkit::detail::Recorta(c.Text);
}

}  // namespace

RepAdmEdoCtaProds::RepAdmEdoCtaProds()
    : FormaReporte("RepAdmEdoCtaProds", "Estados de cuenta de productos con saldo") {
    Agrega("lblFechas", -1, "Entre las fechas:");
    AgregaFecha("mkeFecha", 0);
    AgregaFecha("mkeFecha", 1);
    Agrega("lblCliente", -1, "Cliente:");
    Agrega("txtDato", 0, "Del cliente");
    Agrega("lblDato", 0);
    Agrega("txtDato", 1, "Al cliente");
    Agrega("lblDato", 1);
    Agrega("lblProducto", -1, "Producto:");
    Agrega("txtDato", 2, "Producto");
    Agrega("lblDato", 2);
    for (std::int16_t i = 0; i < 3; ++i)
        Ctl("txtDato", i).Change = [this, i](Control&) { Muestra(i); };
}

std::string RepAdmEdoCtaProds::FormulaSeleccion(const std::string& desde, const std::string& hasta,
                                                const std::string& cliente0,
                                                const std::string& cliente1,
                                                const std::string& producto) {
    std::string s;
    const std::string d = session::FechaFormula(desde), h = session::FechaFormula(hasta);
    if (!d.empty()) s = session::UneCondicion(s, "{edoctaspc.Fecha}>=" + d);
    if (!h.empty()) s = session::UneCondicion(s, "{edoctaspc.Fecha}<=" + h);
    if (!cliente0.empty())
        s = session::UneCondicion(
            s, session::LlenaXXX(
                   cliente1.empty() ? "{edoctaspc.Cliente}='XXX'" : "{edoctaspc.Cliente}>='XXX'",
                   cliente0));
    if (!cliente1.empty())
        s = session::UneCondicion(
            s, session::LlenaXXX(
                   cliente0.empty() ? "{edoctaspc.Cliente}='XXX'" : "{edoctaspc.Cliente}<='XXX'",
                   cliente1));
    if (!producto.empty())
        s = session::UneCondicion(s, session::LlenaXXX("{edoctaspc.Producto}='XXX'", producto));
    return s;
}

void RepAdmEdoCtaProds::Muestra(std::int16_t i) {
    const bool producto = i == 2;
    Ctl("lblDato", i).Caption =
        detail::DatoDeClave(ConexionEmpresa(), producto ? "productos" : "clientes",
                            producto ? "Descrip" : "Nombre", Recortado(Ctl("txtDato", i)));
}

std::string RepAdmEdoCtaProds::TextoFiltros() const {
    const std::string c0 = Recortado(Ctl("txtDato", 0)), c1 = Recortado(Ctl("txtDato", 1));
    const std::string p = Recortado(Ctl("txtDato", 2));
    auto conNombre = [this](const std::string& clave, std::int16_t i) {
        const std::string n = Ctl("lblDato", i).Caption;
        return clave + (n.empty() ? "" : " " + n);
    };
    std::string t = "Todos los clientes";
    if (!c0.empty() && !c1.empty())
        t = c0 == c1 ? "Cliente " + conNombre(c0, 0) : "Clientes del " + c0 + " al " + c1;
    else if (!c0.empty() || !c1.empty())
        t = c0.empty() ? "Cliente " + conNombre(c1, 1) : "Cliente " + conNombre(c0, 0);
    if (!p.empty()) t += ". Producto: " + conNombre(p, 2);
    return t;
}

void RepAdmEdoCtaProds::Imprimir() {
    Paso("revisar los filtros");
    const std::string desde = Fecha(0), hasta = Fecha(1);
    if (!desde.empty() && !hasta.empty() && FechaSQL(0) > FechaSQL(1))
        throw ErrorPaso("revisar el periodo",
                        "la fecha inicial (" + desde + ") es posterior a la final (" + hasta + ")");
    for (std::int16_t i = 0; i < 3; ++i) Muestra(i);

    const auto& lib = Lib();
    std::string periodo = "Todas las fechas";
    if (!desde.empty() && !hasta.empty())
        periodo = "Del " + lib.FechaCompleta(desde) + " al " + lib.FechaCompleta(hasta);
    else if (!desde.empty())
        periodo = "Desde el " + lib.FechaCompleta(desde);
    else if (!hasta.empty())
        periodo = "Hasta el " + lib.FechaCompleta(hasta);
    PasaGenerales({
        {"Titulo", host::Valor(Caption)},
        {"ParaLasFechas", host::Valor(periodo)},
        {"Filtros", host::Valor(TextoFiltros())},
    });

    auto& sol = session::solicitud();
    sol.Plantilla = "edoctaprods.rpt";
    sol.FormulaSeleccion =
        FormulaSeleccion(desde, hasta, Recortado(Ctl("txtDato", 0)), Recortado(Ctl("txtDato", 1)),
                         Recortado(Ctl("txtDato", 2)));
    Ejecuta();
}

}  // namespace paratzorep::reports
