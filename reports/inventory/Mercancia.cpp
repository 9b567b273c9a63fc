#include "reports/inventory/Mercancia.h"

#include <cmath>
#include <cstdio>

#include "session/Sesion.h"
#include "session/Solicitud.h"
#include "session/SuModulo.h"
#include "toolkit/Texto.h"

namespace paratzorep::reports {

namespace mercancia {

const toolkit::LibKRVM& Lib() {
    static const toolkit::LibKRVM local;
    const auto& lib = session::sesion().LibKRVM;
    return lib ? *lib : local;
}

std::string Numero(double n) {
    if (std::floor(n) == n && std::fabs(n) < 1e15) return std::to_string(static_cast<long long>(n));
    char b[40];
    std::snprintf(b, sizeof b, "%.15g", n);
    return b;
}

std::string Periodo(const std::string& desde, const std::string& hasta) {
    const auto& lib = Lib();
    if (!desde.empty() && !hasta.empty())
        return "Del " + lib.FechaCompleta(desde) + " al " + lib.FechaCompleta(hasta);
    if (!desde.empty()) return "Desde el " + lib.FechaCompleta(desde);
    if (!hasta.empty()) return "Hasta el " + lib.FechaCompleta(hasta);
    return "Todas las fechas";
}

std::string Filtros(const std::vector<std::string>& partes) {
    std::string t;
    for (const auto& p : partes) {
        if (p.empty()) continue;
        t += (t.empty() ? "" : " · ") + p;
    }
    return t.empty() ? "Sin filtros" : t;
}

std::string Descripcion(const host::Conexion& cn, const std::string& plantilla,
                        const std::string& clave) {
    auto& bd = session::sesion().BaseDD;
    if (!bd || !cn || clave.empty() || detail::RompeLiteral(clave)) return {};
    try {
        host::Recordset rs;
        if (!bd->AbrirTabla(rs, cn, session::LlenaXXX(plantilla, clave)) || rs.RecordCount() == 0)
            return {};
        rs.MoveFirst();
        return rs.Campo("Descrip").Texto();
    } catch (const std::exception&) {
        return {};
    }
}

}  // namespace mercancia

namespace {

std::string Recorta(const std::string& s) {
    return toolkit::detail::Recorta(s);
}

}  // namespace

FormaMercancia::FormaMercancia(std::string nombre, std::string caption, DocumentosMercancia docs)
    : FormaReporte(std::move(nombre), std::move(caption)), docs_(docs) {
    Agrega("lblFecha", 0, "Del día:");
    AgregaFecha("mkeFecha", 0);
    Agrega("lblFecha", 1, "Al día:");
    AgregaFecha("mkeFecha", 1);
    Agrega("lblDestino", -1, "Destino:");
    Agrega("dcmDato", 0, "Destino");
    Agrega("lblUsuario", -1, "Usuario:");
    Agrega("txtDato", 0, "Usuario");
    Agrega("lblProducto", -1, "Producto:");
    Agrega("txtDato", 1, "Producto");
    Agrega("lblDato");
    Agrega("lblDescrip", -1, "Descripción:");
    Agrega("txtDato", 2, "Descripción");
    Agrega("chkTotalizado", -1, "Totalizado");
    Agrega("chkXprod", -1, "Totalizar por producto");
    Agrega("lblTotalizar", -1, "Totalizar con:");
    Control& valor = Agrega("cmbDato", 0, "Totalizar con");
    valor.Items = OpcionesValor();
    valor.ListIndex = 0;
    valor.Text = valor.Items[0];
    Agrega("lblOrden", -1, "Ordenar por:");
    Control& orden = Agrega("cmbDato", 1, "Ordenar por");
    orden.Items = OpcionesOrden();
    orden.ListIndex = 0;
    orden.Text = orden.Items[0];

    Ctl("txtDato", 1).Change = [this](Control& c) {
        Ctl("lblDato").Caption =
            mercancia::Descripcion(ConexionEmpresa(), FuenteProducto(), Recorta(c.Text));
    };
    Ctl("chkTotalizado").Click = [this](Control&) { AjustaTotalizado(); };
    Ctl("chkXprod").Click = [this](Control&) { AjustaXprod(); };
    AjustaXprod();
}

const std::vector<std::string>& FormaMercancia::OpcionesValor() {
    static const std::vector<std::string> v = {"Costo", "Costo promedio", "Precio real"};
    return v;
}

const std::vector<std::string>& FormaMercancia::OpcionesOrden() {
    static const std::vector<std::string> v = {"Clave", "Linea", "Descripción",
                                               "Cantidad MAYOR-menor", "Cantidad menor-MAYOR"};
    return v;
}

std::string FormaMercancia::OrdenResumen(int eleccion) {
    static const char* campos[] = {"+{compras3.Articulo}", "+{compras3.Linea}",
                                   "+{compras3.Descripcion}", "-{compras3.Cantidad}",
                                   "+{compras3.Cantidad}"};
    return eleccion < 0 || eleccion > 4 ? campos[0] : campos[eleccion];
}

std::string FormaMercancia::EncabezadoValor(int eleccion) {
    static const char* textos[] = {"Costo", "Costo p.", "Pr. real"};
    return eleccion >= 0 && eleccion <= 2 ? textos[eleccion] : "";
}

std::string FormaMercancia::SqlResumen(const DocumentosMercancia& d, const std::string& tabla,
                                       const std::string& condiciones, const std::string& producto,
                                       const std::string& descripcion, int valor) {
    // The first line of each product in the walk's order gives its code and description (and
    // its price, while no quantity has been summed).
    const std::string folio = std::string("e.") + d.folio;
    auto primera = [&](const std::string& campo) {
        return "GROUP_CONCAT(" + campo + " ORDER BY " + folio + ",l.Partida SEPARATOR '' LIMIT 1)";
    };
    std::string precio, total;
    if (valor == 2) {
        precio = "IF(SUM(l.Cantidad)<>0,SUM(l.Precio*l.Cantidad)/SUM(l.Cantidad)," +
                 primera("l.Precio") + "+0)";
        total = "SUM(l.Precio*l.Cantidad)";
    } else {
        const std::string columna = valor <= 0   ? std::string("Costo")
                                    : valor == 1 ? std::string("CostoProm")
                                                 : "Precio" + std::to_string(valor - 2);
        precio = "MIN(p." + columna + ")";
        total = "SUM(p." + columna + "*l.Cantidad)";
    }
    const auto& lib = mercancia::Lib();
    std::string w;
    if (!producto.empty())
        w = lib.SumaWhereAnd(w, "l.Producto='" + toolkit::detail::EscapaSQL(producto) + "'");
    if (!descripcion.empty())
        w = lib.SumaWhereAnd(
            w, "LOCATE('" + toolkit::detail::EscapaSQL(descripcion) + "',l.Descrip)>0");
    return "INSERT INTO " + tabla + " (Articulo,Descripcion,Linea,Precio,Cantidad,Total) SELECT " +
           primera("l.Producto") + "," + primera("l.Descrip") + ",IFNULL(MIN(n.Linea),'')," +
           precio + ",SUM(l.Cantidad)," + total + " FROM (SELECT " + d.folio + " FROM " + d.tabla +
           condiciones + ") e JOIN " + d.detalle + " l ON l." + d.folio + "=" + folio +
           " JOIN productos p ON p.Clave=l.Producto LEFT JOIN lineas n ON n.Id=p.Linea" + w +
           " GROUP BY l.Producto";
}

FiltrosMercancia FormaMercancia::Filtros() const {
    FiltrosMercancia f;
    f.desde = Fecha(0);
    f.hasta = Fecha(1);
    f.usuario = Recorta(Ctl("txtDato", 0).Text);
    f.producto = Recorta(Ctl("txtDato", 1).Text);
    f.descripcion = Recorta(Ctl("txtDato", 2).Text);
    f.destino = Recorta(Ctl("dcmDato", 0).BoundText);
    f.totalizado = Ctl("chkTotalizado").Value != 0;
    return f;
}

void FormaMercancia::AjustaTotalizado() {
    const bool libre = Ctl("chkTotalizado").Value == 0;
    Ctl("txtDato", 2).Enabled = libre;
    Ctl("lblDescrip").Enabled = libre;
}

void FormaMercancia::AjustaXprod() {
    const bool xprod = Ctl("chkXprod").Value != 0;
    for (const char* c : {"lblTotalizar", "lblOrden"}) Ctl(c).Enabled = xprod;
    Ctl("cmbDato", 0).Enabled = xprod;
    Ctl("cmbDato", 1).Enabled = xprod;
    Ctl("chkTotalizado").Enabled = !xprod;
}

void FormaMercancia::EnlazaCombos() {
    EnlazaCombo(Ctl("dcmDato", 0), "sucursales ORDER BY Clave", "Nombre", "Clave");
    // One more value per price list: "Precio 1", "Precio 2", ...
    const double listas = mercancia::Lib().kvVal(session::LeerConfig(ConexionEmpresa(), "Precios"));
    Control& valor = Ctl("cmbDato", 0);
    valor.Items = OpcionesValor();
    for (int n = 1; n <= listas && n <= 50; ++n)
        valor.Items.push_back("Precio " + std::to_string(n));
    EnlazaPropios();
}

void FormaMercancia::EscribeEncabezadoValor(const std::string& texto) {
    Paso("escribir el encabezado de la columna de valor en el archivo de trabajo local");
    auto& bd = session::sesion().BaseDD;
    if (!bd)
        throw ErrorPaso("escribir el encabezado", "la sesión no tiene objeto de acceso a datos");
    host::Conexion local;
    if (!bd->AbreBdDAccess(local, ArchivoLocal()))
        throw ErrorPaso("escribir el encabezado",
                        "no se pudo abrir " + ArchivoLocal() + ": " + bd->UltimoError());
    struct Cierra {
        host::BaseDD& bd;
        host::Conexion& cn;
        ~Cierra() { bd.CierraBdD(cn); }
    } cierra{*bd, local};
    bd->Executar(local, "DELETE FROM EncabDeudores");
    bd->AgregaRegistro(local, "EncabDeudores", {"Id", "Texto1"},
                       {host::Valor(1), host::Valor(texto)});
}

void FormaMercancia::Imprimir() {
    Paso("armar las condiciones del reporte");
    const FiltrosMercancia f = Filtros();
    const bool xprod = Ctl("chkXprod").Value != 0;
    const Control& valor = Ctl("cmbDato", 0);
    const int eleccion = valor.ListIndex < 0 ? 0 : valor.ListIndex;

    std::vector<std::string> filtros;
    if (!f.destino.empty()) filtros.push_back("Destino: " + Ctl("dcmDato", 0).Text);
    if (!f.usuario.empty()) filtros.push_back("Usuario: " + f.usuario);
    if (!f.producto.empty())
        filtros.push_back("Producto: " + f.producto + " " + Ctl("lblDato").Caption);
    if (!f.descripcion.empty() && (xprod || !f.totalizado))
        filtros.push_back("Descripción con: " + f.descripcion);
    for (const auto& p : FiltrosPropios()) filtros.push_back(p);
    const std::string subtitulo =
        xprod ? "Totalizado por producto, valuado a " +
                    (eleccion < static_cast<int>(valor.Items.size()) ? valor.Items[eleccion]
                                                                     : std::string("Costo"))
              : (f.totalizado ? "Totales por documento" : "Detalle por documento");
    PasaGenerales({
        {"Titulo", host::Valor(Caption)},
        {"Subtitulo", host::Valor(subtitulo)},
        {"ParaLasFechas", host::Valor(mercancia::Periodo(f.desde, f.hasta))},
        {"Filtros", host::Valor(mercancia::Filtros(filtros))},
    });

    auto& sol = session::solicitud();
    const std::string base = docs_.plantilla;
    if (!xprod) {
        sol.Plantilla = base + (f.totalizado ? "tot.rpt" : ".rpt");
        sol.FormulaSeleccion = FormulaListado();
        Ejecuta();
        return;
    }
    const std::string condiciones = CondicionesResumen();
    const std::string tabla = ClonaTabla("compras3", true);
    if (session::HuboError()) return;
    Paso("llenar la tabla de trabajo " + tabla + " con el resumen por producto");
    Llena(SqlResumen(docs_, tabla, condiciones, f.producto, f.descripcion, eleccion));
    EscribeEncabezadoValor(EncabezadoValor(eleccion));
    sol.Plantilla = base + "prod.rpt";
    sol.SortField(0, OrdenResumen(Ctl("cmbDato", 1).ListIndex));
    sol.MapeaTabla("compras3", tabla);
    Ejecuta();
}

}  // namespace paratzorep::reports
