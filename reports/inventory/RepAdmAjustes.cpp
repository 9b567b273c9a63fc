#include "reports/inventory/RepAdmAjustes.h"

#include "reports/inventory/Mercancia.h"
#include "session/Sesion.h"
#include "session/Solicitud.h"
#include "session/SuModulo.h"
#include "toolkit/Texto.h"

namespace paratzorep::reports {

namespace {

std::string Recorta(const std::string& s) {
    return toolkit::detail::Recorta(s);
}

}  // namespace

RepAdmAjustes::RepAdmAjustes() : FormaReporte("RepAdmAjustes", "Reporte de ajustes") {
    Agrega("lblFecha", -1, "Entre las fechas:");
    AgregaFecha("mkeFecha", 0);
    AgregaFecha("mkeFecha", 1);
    Agrega("lblUsuario", -1, "Usuario:");
    Agrega("txtDato", 0, "Usuario");
    Agrega("lblProducto", -1, "Producto:");
    Agrega("txtDato", 1, "Producto");
    Agrega("lblDato");
    Agrega("lblFolio", -1, "Folio:");
    Agrega("txtDato", 2, "Folio");
    Agrega("lblLinea", -1, "Línea:");
    Agrega("dcmDato", 0, "Línea");
    Agrega("chkDato", 0, "Ordenar por producto");
    Agrega("chkDato", 1, "Reporte costeado");
    Control& costo = Agrega("cmbDato", 0, "Costeado");
    costo.Items = {"Por costo", "Por precio"};
    costo.ListIndex = 0;
    costo.Text = costo.Items[0];
    Agrega("chkDato", 2, "Listar productos que no tuvieron ajuste");
    Agrega("chkDato", 3, "Formato de documento").Enabled = false;

    Ctl("txtDato", 1).Change = [this](Control& c) {
        Ctl("lblDato").Caption = mercancia::Descripcion(
            ConexionEmpresa(), "productos WHERE Clave='XXX'", Recorta(c.Text));
    };
    Ctl("txtDato", 2).Change = [this](Control&) { RevisaFolio(); };
    for (std::int16_t i = 1; i <= 3; ++i)
        Ctl("chkDato", i).Click = [this](Control&) { AjustaControles(); };
    AjustaControles();
}

void RepAdmAjustes::EnlazaCombos() {
    EnlazaCombo(Ctl("dcmDato", 0), "lineas ORDER BY Linea", "Linea", "Id");
}

void RepAdmAjustes::AlTerminarCarga() {
    RevisaFolio();
}

// "Formato de documento" is offered only for a folio that exists; a box left ticked when the
// folio stops matching is cleared, so that no document of a missing folio is asked for.
void RepAdmAjustes::RevisaFolio() {
    const double folio = mercancia::Lib().kvVal(Ctl("txtDato", 2).Text);
    bool existe = false;
    auto& bd = session::sesion().BaseDD;
    if (folio >= 1 && bd && ConexionEmpresa()) {
        try {
            host::Recordset rs;
            existe =
                bd->AbrirTabla(rs, ConexionEmpresa(),
                               "ajustes WHERE Ajuste=" + mercancia::Numero(folio) + " LIMIT 1") &&
                rs.RecordCount() > 0;
        } catch (const std::exception&) {
            existe = false;
        }
    }
    Control& doc = Ctl("chkDato", 3);
    doc.Enabled = existe;
    if (!existe && doc.Value != 0) {
        doc.Value = 0;
        AjustaControles();
    }
}

void RepAdmAjustes::AjustaControles() {
    const bool documento = Ctl("chkDato", 3).Value != 0;
    const bool sinAjuste = Ctl("chkDato", 2).Value != 0;
    const bool filtros = !documento && !sinAjuste;
    for (std::int16_t i = 0; i < 2; ++i) Ctl("mkeFecha", i).Enabled = !documento;
    Ctl("lblFecha").Enabled = !documento;
    Ctl("lblLinea").Enabled = !documento;
    Ctl("dcmDato", 0).Enabled = !documento;
    for (const char* c : {"lblUsuario", "lblProducto", "lblDato"}) Ctl(c).Enabled = filtros;
    Ctl("txtDato", 0).Enabled = filtros;
    Ctl("txtDato", 1).Enabled = filtros;
    Ctl("chkDato", 0).Enabled = filtros;
    Ctl("chkDato", 1).Enabled = filtros;
    Ctl("cmbDato", 0).Enabled = filtros && Ctl("chkDato", 1).Value != 0;
    Ctl("chkDato", 2).Enabled = !documento;
}

std::string RepAdmAjustes::FormulaSeleccion(const FiltrosAjustes& f) {
    using session::LlenaXXX;
    std::string s;
    if (!f.desde.empty())
        s = session::UneCondicion(s, "{ajustes.Fecha}>=" + session::FechaFormula(f.desde));
    if (!f.hasta.empty())
        s = session::UneCondicion(s, "{ajustes.Fecha}<=" + session::FechaFormula(f.hasta));
    if (!f.producto.empty())
        s = session::UneCondicion(s, LlenaXXX("{ajustes.Clave}='XXX'", f.producto));
    if (!f.usuario.empty())
        s = session::UneCondicion(s, LlenaXXX("{ajustes.Usuario}='XXX'", f.usuario));
    if (f.linea != 0)
        s = session::UneCondicion(s, "{productos.Linea}=" + mercancia::Numero(f.linea));
    if (f.folio > 0) s = session::UneCondicion(s, "{ajustes.Ajuste}=" + mercancia::Numero(f.folio));
    return s;
}

std::string RepAdmAjustes::Plantilla(bool costeado, int costoOprecio) {
    if (!costeado) return "ajustes1.rpt";
    return costoOprecio == 1 ? "ajustes3.rpt" : "ajustes2.rpt";
}

std::string RepAdmAjustes::CondicionProductos(double linea, bool servicios) {
    const auto& lib = mercancia::Lib();
    std::string w;
    if (linea != 0) w = lib.SumaWhereAnd(w, "Linea=" + mercancia::Numero(linea));
    if (servicios) w = lib.SumaWhereAnd(w, "Servicio=0");
    return w;
}

std::string RepAdmAjustes::TextoAjustes(const std::string& desdeSQL, const std::string& hastaSQL) {
    const auto& lib = mercancia::Lib();
    std::string w;
    if (!desdeSQL.empty()) w = lib.SumaWhereAnd(w, session::LlenaXXX("Fecha>='XXX'", desdeSQL));
    if (!hastaSQL.empty()) w = lib.SumaWhereAnd(w, session::LlenaXXX("Fecha<='XXX'", hastaSQL));
    const std::string texto = "ajustes" + w;
    return texto + (toolkit::detail::Minusculas(texto).find("where") == std::string::npos
                        ? " WHERE "
                        : " AND ");
}

std::string RepAdmAjustes::SqlSinAjuste(const std::string& tabla,
                                        const std::string& condicionProductos,
                                        const std::string& textoAjustes) {
    return "INSERT INTO " + tabla + " SELECT * FROM productos" + condicionProductos +
           (condicionProductos.empty() ? " WHERE " : " AND ") + "NOT EXISTS (SELECT 1 FROM " +
           textoAjustes + "ajustes.Clave=productos.Clave) ORDER BY Clave";
}

RepAdmAjustes::FiltrosAjustes RepAdmAjustes::Filtros() const {
    const auto& lib = mercancia::Lib();
    FiltrosAjustes f;
    f.desde = Fecha(0);
    f.hasta = Fecha(1);
    f.usuario = Recorta(Ctl("txtDato", 0).Text);
    f.producto = Recorta(Ctl("txtDato", 1).Text);
    f.linea = lib.kvVal(Ctl("dcmDato", 0).BoundText);
    f.folio = lib.kvVal(Ctl("txtDato", 2).Text);
    return f;
}

std::string RepAdmAjustes::TextoFiltros(const FiltrosAjustes& f) const {
    std::vector<std::string> partes;
    if (!f.usuario.empty()) partes.push_back("Usuario: " + f.usuario);
    if (!f.producto.empty())
        partes.push_back("Producto: " + f.producto + " " + Ctl("lblDato").Caption);
    if (f.linea != 0) partes.push_back("Línea: " + Ctl("dcmDato", 0).Text);
    if (f.folio > 0) partes.push_back("Folio: " + mercancia::Numero(f.folio));
    return mercancia::Filtros(partes);
}

void RepAdmAjustes::Imprimir() {
    if (Ctl("chkDato", 2).Value != 0)
        SinAjuste();
    else if (Ctl("chkDato", 3).Value != 0)
        Documento();
    else
        Listado();
}

void RepAdmAjustes::Listado() {
    Paso("armar la fórmula de selección");
    const FiltrosAjustes f = Filtros();
    const bool costeado = Ctl("chkDato", 1).Value != 0;
    const int costoOprecio = Ctl("cmbDato", 0).ListIndex;
    PasaGenerales({
        {"Titulo", host::Valor(Caption)},
        {"Subtitulo", host::Valor(!costeado           ? "Partidas ajustadas"
                                  : costoOprecio == 1 ? "Partidas ajustadas, valuadas a precio"
                                                      : "Partidas ajustadas, valuadas a costo")},
        {"ParaLasFechas", host::Valor(mercancia::Periodo(f.desde, f.hasta))},
        {"Filtros", host::Valor(TextoFiltros(f))},
    });
    auto& sol = session::solicitud();
    sol.Plantilla = Plantilla(costeado, costoOprecio);
    sol.FormulaSeleccion = FormulaSeleccion(f);
    if (Ctl("chkDato", 0).Value != 0) sol.SortField(0, "+{ajustes.Clave}");
    Ejecuta();
}

void RepAdmAjustes::Documento() {
    Paso("armar la fórmula del documento");
    const double folio = mercancia::Lib().kvVal(Ctl("txtDato", 2).Text);
    session::solicitud().FormulaSeleccion = "{ajustes.Ajuste}=" + mercancia::Numero(folio);
    EjecutaFormato("fmtAjuste");
}

void RepAdmAjustes::SinAjuste() {
    Paso("armar las condiciones de los productos");
    const FiltrosAjustes f = Filtros();
    const std::string productos =
        CondicionProductos(f.linea, session::LeerConfigBool(ConexionEmpresa(), "Servicios"));
    const std::string ajustes = TextoAjustes(FechaSQL(0), FechaSQL(1));

    const std::string tabla = ClonaTabla("productos", false);
    if (session::HuboError()) return;
    Paso("llenar la tabla de trabajo " + tabla + " con los productos sin ajuste");
    Llena(SqlSinAjuste(tabla, productos, ajustes));

    std::vector<std::string> partes;
    if (f.linea != 0) partes.push_back("Línea: " + Ctl("dcmDato", 0).Text);
    PasaGenerales({
        {"Titulo", host::Valor("Productos que no tuvieron ajuste")},
        {"ParaLasFechas", host::Valor(mercancia::Periodo(f.desde, f.hasta))},
        {"Filtros", host::Valor(mercancia::Filtros(partes))},
    });
    auto& sol = session::solicitud();
    sol.Plantilla = "ajustes4.rpt";
    sol.MapeaTabla("productos", tabla);
    Ejecuta();
}

}  // namespace paratzorep::reports
