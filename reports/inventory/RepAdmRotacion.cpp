#include "reports/inventory/RepAdmRotacion.h"

#include <cmath>

#include "host/Interaccion.h"
#include "reports/inventory/BuscaClave.h"
#include "session/Sesion.h"
#include "session/Solicitud.h"
#include "session/SuModulo.h"
#include "toolkit/Fechas.h"
#include "toolkit/LibKRVM.h"
#include "toolkit/Texto.h"

namespace paratzorep::reports {

namespace {

const toolkit::LibKRVM& Lib() {
    static const toolkit::LibKRVM local;
    const auto& lib = session::sesion().LibKRVM;
    return lib ? *lib : local;
}

// The sales of one source by product in the three bands before the cut-off date, added to the
// work table's rows. `desde` is the document table with its detail joined, `fecha` its date.
std::string SqlVentas(const std::string& tabla, const std::string& desde,
                      const std::string& detalle, const std::string& fecha,
                      const std::string& condiciones, const std::string& d) {
    const std::string producto = detalle + ".Producto", cantidad = detalle + ".Cantidad";
    const std::string d30 = RepAdmRotacion::SumaDias(d, -30);
    const std::string d31 = RepAdmRotacion::SumaDias(d, -31);
    const std::string d60 = RepAdmRotacion::SumaDias(d, -60);
    const std::string d61 = RepAdmRotacion::SumaDias(d, -61);
    const std::string d90 = RepAdmRotacion::SumaDias(d, -90);
    return "UPDATE " + tabla + " w JOIN (SELECT " + producto + " AS Producto,SUM(IF(" + fecha +
           ">='" + d30 + "'," + cantidad + ",0)) AS A30,SUM(IF(" + fecha + "<='" + d31 + "' AND " +
           fecha + ">='" + d60 + "'," + cantidad + ",0)) AS A60,SUM(IF(" + fecha + "<='" + d61 +
           "'," + cantidad + ",0)) AS A90 FROM " + desde + " WHERE " + condiciones + fecha + ">='" +
           d90 + "' AND " + fecha + "<='" + d + "' GROUP BY " + producto +
           ") s ON s.Producto=w.ClaveProd SET w.VentasA30=w.VentasA30+s.A30,"
           "w.VentasA60=w.VentasA60+s.A60,w.VentasA90=w.VentasA90+s.A90";
}

std::string Numero(long long n) {
    return std::to_string(n);
}

}  // namespace

RepAdmRotacion::RepAdmRotacion()
    : FormaReporte("RepAdmRotacion", "Reporte de rotación de productos") {
    Agrega("lblFecha", 0, "Al día:");
    AgregaFecha("mkeFecha", 0);
    // A second date box that the computation does not use: kept for the frame, never shown.
    Control& otra = AgregaFecha("mkeFecha", 1);
    otra.Visible = false;
    otra.Enabled = false;
    Agrega("Frame1").Caption = "Imprimir productos:";
    Agrega("optProds", 0, "Con existencia").Value = 1;
    Agrega("optProds", 1, "Todos");
    Agrega("lblProducto", -1, "Producto:");
    Agrega("txtDato", 0, "Producto");
    Agrega("lblDato", 0);
    Agrega("lblProveedor", -1, "Proveedor:");
    Agrega("txtDato", 1, "Proveedor");
    Agrega("lblDato", 1);
    Agrega("lblLinea", -1, "Linea:");
    Agrega("dcmDato", 2, "Linea");
    Agrega("lblSubLinea", -1, "SubLinea:");
    Agrega("dcmDato", 4, "SubLinea");
    Agrega("lblMarca", -1, "Marca:");
    Agrega("dcmDato", 6, "Marca");
    Agrega("Label6");

    Ctl("txtDato", 0).Change = [this](Control&) { MuestraProducto(); };
    Ctl("txtDato", 1).Change = [this](Control&) { MuestraProveedor(); };
    Ctl("dcmDato", 2).Change = [this](Control&) { LlenaSubLineas(); };
}

std::string RepAdmRotacion::SumaDias(const std::string& fechaSQL, int dias) {
    const auto f = toolkit::LeeFecha(fechaSQL);
    if (!f || fechaSQL.size() != 10 || fechaSQL[4] != '-') return {};
    return toolkit::TextoSQL(toolkit::SumaDias(*f, dias));
}

std::string RepAdmRotacion::Condiciones(const Filtros& f) {
    const auto& lib = Lib();
    std::string w;
    if (f.conExistencia) w = lib.SumaWhereAnd(w, "Existencia>0");
    if (!f.producto.empty()) w = lib.SumaWhereAnd(w, session::LlenaXXX("Clave='XXX'", f.producto));
    if (f.linea != 0) w = lib.SumaWhereAnd(w, "Linea=" + Numero(f.linea));
    if (!f.proveedor.empty())
        w = lib.SumaWhereAnd(
            w, session::LlenaXXX("(Proveedor1='XXX' OR Proveedor2='XXX')", f.proveedor));
    if (f.marca != 0) w = lib.SumaWhereAnd(w, "Marca=" + Numero(f.marca));
    return w;
}

std::vector<std::string> RepAdmRotacion::SqlLlenado(const std::string& tabla,
                                                    const std::string& condiciones,
                                                    const std::string& d) {
    return {
        // The chosen products in code order, each with its first alternate code and its latest
        // history row by Id among those dated up to the cut-off date.
        "INSERT INTO " + tabla + " (ClaveProd,Fecha,ClaveAlterna,IdKardex) SELECT Clave,'" + d +
            "',IFNULL((SELECT ClaveAlterna FROM clavesalternas WHERE "
            "clavesalternas.ClaveProducto=productos.Clave ORDER BY ClaveAlterna LIMIT 1),''),"
            "(SELECT historicoalmacen.Id FROM historicoalmacen WHERE "
            "historicoalmacen.Producto=productos.Clave AND historicoalmacen.Fecha<='" +
            d + "' ORDER BY historicoalmacen.Id DESC LIMIT 1) FROM productos" + condiciones +
            " ORDER BY Clave",
        // Stock and costs of that row.
        "UPDATE " + tabla +
            " w JOIN historicoalmacen h ON h.Id=w.IdKardex SET w.Costo=h.Costo,"
            "w.CostoProm=h.CostoPromedio,w.ExistenciaAlDia=h.ExistenciaActual",
        // The last purchase line up to the date that is not cancelled; on the same day, the
        // purchase entered last, then its last line.
        "UPDATE " + tabla +
            " w JOIN (SELECT comprasdetalle.Producto,compras.Fecha,comprasdetalle.Cantidad,"
            "ROW_NUMBER() OVER (PARTITION BY comprasdetalle.Producto ORDER BY compras.Fecha "
            "DESC,compras.Compra DESC,comprasdetalle.Partida DESC) AS Orden FROM compras JOIN "
            "comprasdetalle ON compras.Compra=comprasdetalle.Compra WHERE compras.Cancelada=0 "
            "AND compras.Fecha<='" +
            d +
            "') c ON c.Producto=w.ClaveProd AND c.Orden=1 SET w.FechaCom=c.Fecha,"
            "w.CantCom=c.Cantidad,w.DiasAlmacen=DATEDIFF('" +
            d + "',c.Fecha)",
        SqlVentas(tabla, "remisiones JOIN remisionesdetalle ON remisionesdetalle.Id=remisiones.Id",
                  "remisionesdetalle", "remisiones.Fecha",
                  "remisiones.Afectada=1 AND remisiones.Cancelada=0 AND ", d),
        SqlVentas(tabla, "facturas JOIN facturasdetalle ON facturasdetalle.Id=facturas.Id",
                  "facturasdetalle", "facturas.Fecha",
                  "facturas.Afectada=1 AND facturas.Cancelada=0 AND ", d),
        SqlVentas(tabla, "ticketsdetalle", "ticketsdetalle", "ticketsdetalle.Fecha", "", d),
    };
}

void RepAdmRotacion::EnlazaCombos() {
    EnlazaCombo(Ctl("dcmDato", 2), "lineas ORDER BY Linea", "Linea", "Id");
    EnlazaCombo(Ctl("dcmDato", 6), "marcas ORDER BY Marca", "Marca", "Id");
    LlenaSubLineas();
    const bool marcas = session::LeerConfigBool(ConexionEmpresa(), "Marcas");
    Ctl("lblMarca").Visible = marcas;
    Ctl("dcmDato", 6).Visible = marcas;
}

void RepAdmRotacion::AlTerminarCarga() {
    // The cut-off date starts at the last day of the warehouse history.
    Control& hasta = Ctl("mkeFecha", 1);
    if (!hasta.SinFecha()) Ctl("mkeFecha", 0).Text = hasta.Text;
}

void RepAdmRotacion::LlenaSubLineas() {
    Control& sub = Ctl("dcmDato", 4);
    const long long linea = std::llround(Lib().kvVal(Ctl("dcmDato", 2).BoundText));
    if (linea == 0 || !ConexionEmpresa()) {
        sub.Items.clear();
        sub.ItemData.clear();
        sub.ListIndex = -1;
        sub.BoundText.clear();
        sub.Text.clear();
        return;
    }
    EnlazaCombo(sub, "SubLineas WHERE IdLinea=" + Numero(linea) + " ORDER BY SubLinea", "SubLinea",
                "Id");
}

void RepAdmRotacion::MuestraProducto() {
    Ctl("lblDato", 0).Caption =
        detail::DatoDeClave(ConexionEmpresa(), "productos", "Descrip",
                            toolkit::detail::Recorta(Ctl("txtDato", 0).Text));
}

void RepAdmRotacion::MuestraProveedor() {
    Ctl("lblDato", 1).Caption =
        detail::DatoDeClave(ConexionEmpresa(), "proveedores", "Nombre",
                            toolkit::detail::Recorta(Ctl("txtDato", 1).Text));
}

RepAdmRotacion::Filtros RepAdmRotacion::LeeFiltros() const {
    Filtros f;
    f.conExistencia = Ctl("optProds", 1).Value == 0;
    f.producto = toolkit::detail::Recorta(Ctl("txtDato", 0).Text);
    f.proveedor = toolkit::detail::Recorta(Ctl("txtDato", 1).Text);
    const Control& linea = Ctl("dcmDato", 2);
    if (linea.ListIndex >= 0) f.linea = std::llround(Lib().kvVal(linea.BoundText));
    const Control& marca = Ctl("dcmDato", 6);
    if (marca.Visible && marca.ListIndex >= 0) f.marca = std::llround(Lib().kvVal(marca.BoundText));
    return f;
}

std::string RepAdmRotacion::TextoFiltros(const Filtros& f) const {
    std::string t = f.conExistencia ? "Productos con existencia" : "Todos los productos";
    auto agrega = [&t](const std::string& s) { t += ". " + s; };
    if (!f.producto.empty()) {
        const std::string d = Ctl("lblDato", 0).Caption;
        agrega("Producto: " + f.producto + (d.empty() ? "" : " " + d));
    }
    if (!f.proveedor.empty()) {
        const std::string n = Ctl("lblDato", 1).Caption;
        agrega("Proveedor: " + f.proveedor + (n.empty() ? "" : " " + n));
    }
    if (f.linea != 0) agrega("Línea: " + Ctl("dcmDato", 2).Text);
    if (f.marca != 0) agrega("Marca: " + Ctl("dcmDato", 6).Text);
    return t;
}

void RepAdmRotacion::Avance(int porcentaje, const std::string& texto) {
    Ctl("Label6").Caption = texto;
    host::interaccion().Progreso(porcentaje, texto);
}

void RepAdmRotacion::Imprimir() {
    Paso("revisar los filtros");
    const Filtros f = LeeFiltros();
    const std::string d = FechaSQL(0);
    MuestraProducto();
    MuestraProveedor();

    const std::string tabla = ClonaTabla("rotacionprods", true);
    if (session::HuboError()) return;
    const auto sqls = SqlLlenado(tabla, Condiciones(f), d);
    const char* const que[] = {"los productos y sus claves alternas",
                               "la existencia y el costo al día",
                               "la última compra",
                               "las ventas en remisiones",
                               "las ventas en facturas",
                               "las ventas en tickets"};
    for (std::size_t i = 0; i < sqls.size(); ++i) {
        Paso("llenar la tabla de trabajo " + tabla + " con " + que[i]);
        Avance(static_cast<int>(i * 100 / sqls.size()), std::string("Leyendo ") + que[i]);
        if (i == 0)
            Llena(sqls[i]);
        else
            Ejecutar(sqls[i]);
    }
    Avance(0, "");

    PasaGenerales({
        {"Titulo", host::Valor("Rotación de productos al " + Lib().FechaCompleta(Fecha(0)))},
        {"Filtros", host::Valor(TextoFiltros(f))},
    });
    auto& sol = session::solicitud();
    sol.Plantilla = "rotacionprods.rpt";
    sol.MapeaTabla("rotacionprods", tabla);
    Ejecuta();
}

}  // namespace paratzorep::reports
