#include "reports/inventory/RepAdmPerdidas.h"

#include "reports/inventory/Mercancia.h"
#include "session/Sesion.h"
#include "session/Solicitud.h"
#include "session/SuModulo.h"
#include "toolkit/Texto.h"

namespace paratzorep::reports {

RepAdmPerdidas::RepAdmPerdidas()
    : FormaReporte("RepAdmPerdidas", "Reporte de pérdidas de productos") {
    Agrega("lblFecha", 0, "Del día:");
    AgregaFecha("mkeFecha", 0);
    Agrega("lblFecha", 1, "Al día:");
    AgregaFecha("mkeFecha", 1);
    Agrega("lblUsuario", -1, "Usuario:");
    Agrega("txtDato", 1, "Usuario");
    Agrega("lblProducto", -1, "Producto:");
    Agrega("txtDato", 0, "Producto");
    Agrega("lblDato");
    Agrega("lblLinea", -1, "Linea:");
    Agrega("dcmDato", 2, "Linea");
    Agrega("lblSubLinea", -1, "Sublínea:");
    Agrega("dcmDato", 5, "Sublínea");
    Agrega("lblMarca", -1, "Marca:");
    Agrega("dcmDato", 3, "Marca");

    Ctl("txtDato", 0).Change = [this](Control& c) {
        Ctl("lblDato").Caption = mercancia::Descripcion(
            ConexionEmpresa(), "productos WHERE clave='XXX'", toolkit::detail::Recorta(c.Text));
    };
    Ctl("dcmDato", 2).Change = [this](Control&) { LlenaSubLineas(); };
}

void RepAdmPerdidas::EnlazaCombos() {
    const auto& cn = ConexionEmpresa();
    EnlazaCombo(Ctl("dcmDato", 2), "lineas ORDER BY Linea", "Linea", "Id");
    const bool sublineas = session::LeerConfigBool(cn, "SubLineas");
    Ctl("lblSubLinea").Visible = sublineas;
    Ctl("dcmDato", 5).Visible = sublineas;
    LlenaSubLineas();
    const bool marcas = session::LeerConfigBool(cn, "Marcas");
    Ctl("lblMarca").Visible = marcas;
    Ctl("dcmDato", 3).Visible = marcas;
    if (marcas) EnlazaCombo(Ctl("dcmDato", 3), "marcas ORDER BY Marca", "Marca", "Id");
}

void RepAdmPerdidas::LlenaSubLineas() {
    Control& sub = Ctl("dcmDato", 5);
    sub.Items.clear();
    sub.ItemData.clear();
    sub.ListIndex = -1;
    sub.Text.clear();
    sub.BoundText.clear();
    if (!sub.Visible || !ConexionEmpresa()) return;
    const double linea = mercancia::Lib().kvVal(Ctl("dcmDato", 2).BoundText);
    EnlazaCombo(sub, "sublineas WHERE IdLinea=" + mercancia::Numero(linea) + " ORDER BY SubLinea",
                "SubLinea", "Id");
}

std::string RepAdmPerdidas::FormulaSeleccion(const FiltrosPerdidas& f) {
    using session::LlenaXXX;
    std::string s;
    if (!f.desde.empty())
        s = session::UneCondicion(s, "{perdidas.Fecha}>=" + session::FechaFormula(f.desde));
    if (!f.hasta.empty())
        s = session::UneCondicion(s, "{perdidas.Fecha}<=" + session::FechaFormula(f.hasta));
    if (!f.usuario.empty())
        s = session::UneCondicion(s, LlenaXXX("{perdidas.Usuario}<='XXX'", f.usuario));
    if (!f.producto.empty())
        s = session::UneCondicion(s, LlenaXXX("{perdidasdetalle.Producto}='XXX'", f.producto));
    if (f.linea != 0)
        s = session::UneCondicion(s, "{productos.Linea}=" + mercancia::Numero(f.linea));
    if (f.sublinea != 0)
        s = session::UneCondicion(s, "{productos.SubLinea}=" + mercancia::Numero(f.sublinea));
    if (f.marca != 0)
        s = session::UneCondicion(s, "{productos.Marca}=" + mercancia::Numero(f.marca));
    return s;
}

RepAdmPerdidas::FiltrosPerdidas RepAdmPerdidas::Filtros() const {
    const auto& lib = mercancia::Lib();
    FiltrosPerdidas f;
    f.desde = Fecha(0);
    f.hasta = Fecha(1);
    f.usuario = toolkit::detail::Recorta(Ctl("txtDato", 1).Text);
    f.producto = toolkit::detail::Recorta(Ctl("txtDato", 0).Text);
    f.linea = lib.kvVal(Ctl("dcmDato", 2).BoundText);
    if (Ctl("dcmDato", 5).Visible) f.sublinea = lib.kvVal(Ctl("dcmDato", 5).BoundText);
    if (Ctl("dcmDato", 3).Visible) f.marca = lib.kvVal(Ctl("dcmDato", 3).BoundText);
    return f;
}

void RepAdmPerdidas::Imprimir() {
    Paso("armar la fórmula de selección");
    const FiltrosPerdidas f = Filtros();
    std::vector<std::string> partes;
    if (!f.usuario.empty()) partes.push_back("Usuarios hasta: " + f.usuario);
    if (!f.producto.empty())
        partes.push_back("Producto: " + f.producto + " " + Ctl("lblDato").Caption);
    if (f.linea != 0) partes.push_back("Línea: " + Ctl("dcmDato", 2).Text);
    if (f.sublinea != 0) partes.push_back("Sublínea: " + Ctl("dcmDato", 5).Text);
    if (f.marca != 0) partes.push_back("Marca: " + Ctl("dcmDato", 3).Text);
    PasaGenerales({
        {"Titulo", host::Valor(Caption)},
        {"ParaLasFechas", host::Valor(mercancia::Periodo(f.desde, f.hasta))},
        {"Filtros", host::Valor(mercancia::Filtros(partes))},
    });
    auto& sol = session::solicitud();
    sol.Plantilla = "perdidas.rpt";
    sol.FormulaSeleccion = FormulaSeleccion(f);
    Ejecuta();
}

}  // namespace paratzorep::reports
