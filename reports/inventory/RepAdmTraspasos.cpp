#include "reports/inventory/RepAdmTraspasos.h"

#include "session/Sesion.h"
#include "session/SuModulo.h"
#include "toolkit/Texto.h"

namespace paratzorep::reports {

namespace {
constexpr const char* kPrefijoSerie = "TR-";
}

RepAdmTraspasos::RepAdmTraspasos()
    : FormaMercancia("RepAdmTraspasos", "Reporte de traspasos", Documentos()) {
    Agrega("lblSerie", -1, "Serie:").Visible = false;
    Agrega("cmbDato", 2, "Serie").Visible = false;
}

const DocumentosMercancia& RepAdmTraspasos::Documentos() {
    static const DocumentosMercancia d{"traspasos", "traspasosdetalle", "Traspaso", "traspasos"};
    return d;
}

std::string RepAdmTraspasos::FuenteSeries() {
    return std::string("sistema WHERE Dato LIKE '") + kPrefijoSerie + "%' AND Dato<>'" +
           kPrefijoSerie + "' ORDER BY Dato";
}

std::string RepAdmTraspasos::Serie() const {
    const Control& c = Ctl("cmbDato", 2);
    return c.Visible ? toolkit::detail::Recorta(c.Text) : std::string();
}

std::string RepAdmTraspasos::FormulaSeleccion(const FiltrosMercancia& f, const std::string& serie) {
    using session::LlenaXXX;
    std::string s;
    if (!f.desde.empty())
        s = session::UneCondicion(s, "{traspasos.Fecha}>=" + session::FechaFormula(f.desde));
    if (!f.hasta.empty())
        s = session::UneCondicion(s, "{traspasos.Fecha}<=" + session::FechaFormula(f.hasta));
    if (!f.producto.empty())
        s = session::UneCondicion(s, LlenaXXX("{traspasosdetalle.Producto}='XXX'", f.producto));
    if (!f.totalizado && !f.descripcion.empty())
        s = session::UneCondicion(
            s, LlenaXXX("'XXX'", f.descripcion) + " in {traspasosdetalle.Descrip}");
    if (!f.destino.empty())
        s = session::UneCondicion(s, LlenaXXX("{traspasos.Destino}='XXX'", f.destino));
    if (!f.usuario.empty())
        s = session::UneCondicion(s, LlenaXXX("{traspasos.Usuario}='XXX'", f.usuario));
    s = session::UneCondicion(s, "{traspasos.Cancelado}=0");
    if (!serie.empty()) s = session::UneCondicion(s, LlenaXXX("{traspasos.Serie}='XXX'", serie));
    return s;
}

std::string RepAdmTraspasos::Condiciones(const FiltrosMercancia& f, const std::string& serie) {
    using session::LlenaXXX;
    const auto& lib = mercancia::Lib();
    std::string w;
    if (!f.desde.empty()) w = lib.SumaWhereAnd(w, LlenaXXX("Fecha>='XXX'", lib.FechaSQL(f.desde)));
    if (!f.hasta.empty()) w = lib.SumaWhereAnd(w, LlenaXXX("Fecha<='XXX'", lib.FechaSQL(f.hasta)));
    if (!f.destino.empty()) w = lib.SumaWhereAnd(w, LlenaXXX("Destino='XXX'", f.destino));
    if (!f.usuario.empty()) w = lib.SumaWhereAnd(w, LlenaXXX("Usuario='XXX'", f.usuario));
    if (!serie.empty()) w = lib.SumaWhereAnd(w, LlenaXXX("Serie='XXX'", serie));
    return lib.SumaWhereAnd(w, "Cancelado=0");
}

std::string RepAdmTraspasos::FormulaListado() const {
    return FormulaSeleccion(Filtros(), Serie());
}

std::string RepAdmTraspasos::CondicionesResumen() const {
    return Condiciones(Filtros(), Serie());
}

std::vector<std::string> RepAdmTraspasos::FiltrosPropios() const {
    const std::string serie = Serie();
    if (serie.empty()) return {};
    return {"Serie: " + serie};
}

void RepAdmTraspasos::EnlazaPropios() {
    const bool series = session::LeerConfigBool(ConexionEmpresa(), "SeriesEnTra");
    Control& c = Ctl("cmbDato", 2);
    Ctl("lblSerie").Visible = series;
    c.Visible = series;
    c.Items.clear();
    c.ListIndex = -1;
    c.Text.clear();
    if (!series) return;
    host::Recordset rs;
    auto& bd = session::sesion().BaseDD;
    if (!bd || !bd->AbrirTabla(rs, ConexionEmpresa(), FuenteSeries())) return;
    for (rs.MoveFirst(); !rs.Eof(); rs.MoveNext()) {
        const std::string dato = rs.Campo("Dato").Texto();
        c.Items.push_back(dato.size() > 3 ? dato.substr(3) : std::string());
    }
}

}  // namespace paratzorep::reports
