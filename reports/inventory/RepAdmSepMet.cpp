#include "reports/inventory/RepAdmSepMet.h"

#include "reports/inventory/Mercancia.h"
#include "session/Solicitud.h"
#include "session/SuModulo.h"
#include "toolkit/Texto.h"

namespace paratzorep::reports {

RepAdmSepMet::RepAdmSepMet() : FormaReporte("RepAdmSepMet", "Reporte de separación de metales") {
    Agrega("lblFecha", 0, "Del día:");
    AgregaFecha("mkeFecha", 0);
    Agrega("lblFecha", 1, "Al día:");
    AgregaFecha("mkeFecha", 1);
    Agrega("lblProducto", -1, "Producto:");
    Agrega("txtDato", 1, "Producto");
    Agrega("lblDato");
    Agrega("lblUsuario", -1, "Usuario:");
    Agrega("txtDato", 0, "Usuario");
    Ctl("txtDato", 1).Change = [this](Control& c) {
        Ctl("lblDato").Caption = mercancia::Descripcion(
            ConexionEmpresa(), "productos WHERE Clave='XXX'", toolkit::detail::Recorta(c.Text));
    };
}

std::string RepAdmSepMet::FormulaSeleccion(const std::string& desde, const std::string& hasta,
                                           const std::string& producto,
                                           const std::string& usuario) {
    std::string s;
    if (!desde.empty())
        s = session::UneCondicion(s, "{separacionmet.Fecha}>=" + session::FechaFormula(desde));
    if (!hasta.empty())
        s = session::UneCondicion(s, "{separacionmet.Fecha}<=" + session::FechaFormula(hasta));
    if (!producto.empty())
        s = session::UneCondicion(
            s, "( {separacionmet.MetalOrigen}='" + producto + "' OR " +
                   session::LlenaXXX("{separacionmetdetalle.MetalDestino}='XXX')", producto));
    if (!usuario.empty())
        s = session::UneCondicion(s, session::LlenaXXX("{separacionmet.Usuario}='XXX'", usuario));
    return s;
}

void RepAdmSepMet::Imprimir() {
    Paso("armar la fórmula de selección");
    const std::string producto = toolkit::detail::Recorta(Ctl("txtDato", 1).Text);
    const std::string usuario = toolkit::detail::Recorta(Ctl("txtDato", 0).Text);
    std::vector<std::string> partes;
    if (!producto.empty()) partes.push_back("Metal: " + producto + " " + Ctl("lblDato").Caption);
    if (!usuario.empty()) partes.push_back("Usuario: " + usuario);
    PasaGenerales({
        {"Titulo", host::Valor(Caption)},
        {"ParaLasFechas", host::Valor(mercancia::Periodo(Fecha(0), Fecha(1)))},
        {"Filtros", host::Valor(mercancia::Filtros(partes))},
    });
    auto& sol = session::solicitud();
    sol.Plantilla = "separametales.rpt";
    sol.FormulaSeleccion = FormulaSeleccion(Fecha(0), Fecha(1), producto, usuario);
    Ejecuta();
}

}  // namespace paratzorep::reports
