#include "reports/sales/RepAdmUtilXvend.h"

#include "reports/sales/RepAdmComisXvend.h"
#include "session/Iniciales.h"
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

// The sum of one kind's lines per seller: the seller as its key in vendedores ('' when the
// document has none or names one that does not exist), every document counted once.
std::string PorVendedor(const std::string& tabla, const std::string& condiciones) {
    return "SELECT IFNULL(vendedores.Clave,'') AS Vendedor,"
           "IFNULL(MIN(vendedores.Nombre),'" +
           std::string(RepAdmUtilXvend::kSinVendedor) +
           "') AS Nombre,"
           "SUM(IFNULL(Cantidad,0)*IFNULL(PrecioNeto,0)) AS Ventas,"
           "SUM(IFNULL(Cantidad,0)*IFNULL(p.CostoActual,0)) AS AlCosto,"
           "SUM(IFNULL(Cantidad,0)*IFNULL(CostoPromedio,0)) AS AlCostoProm,"
           "COUNT(DISTINCT " +
           tabla + ".Id) AS NumeroVentas FROM " + tabla + " LEFT JOIN " + tabla + "detalle on " +
           tabla + ".Id=" + tabla + "detalle.Id LEFT JOIN vendedores on " + tabla +
           ".Vendedor=vendedores.Clave LEFT JOIN (SELECT Clave AS ClaveProducto,Costo AS "
           "CostoActual FROM productos) p ON p.ClaveProducto=" +
           tabla + "detalle.Producto" + condiciones + " GROUP BY vendedores.Clave";
}

}  // namespace

RepAdmUtilXvend::RepAdmUtilXvend() : FormaReporte("RepAdmUtilXvend", "Utilidad por vendedor") {
    Agrega("lblFecha", 0, "Del día:");
    AgregaFecha("mkeFecha", 0);
    Agrega("lblFecha", 1, "Al día:");
    AgregaFecha("mkeFecha", 1);
    Agrega("lblCliente", -1, "Cliente (vacío: todos):");
    Agrega("txtDato", 0, "Cliente");
    Agrega("lblDato", 0);
    Agrega("lblVendedor", -1, "Vendedor (vacío: todos):");
    Agrega("dcmDato", 0, "Vendedor");
    Agrega("lblDato", 1);
    Ctl("dcmDato", 0).Change = [this](Control&) { MuestraVendedor(); };
}

std::string RepAdmUtilXvend::Condiciones(const std::string& tabla, const std::string& desdeSQL,
                                         const std::string& hastaSQL, const std::string& cliente,
                                         const std::string& vendedor) {
    const auto& lib = Lib();
    std::string w = lib.SumaWhereAnd("", "Cancelada=0");
    if (!desdeSQL.empty()) w = lib.SumaWhereAnd(w, session::LlenaXXX("Fecha>='XXX'", desdeSQL));
    if (!hastaSQL.empty()) w = lib.SumaWhereAnd(w, session::LlenaXXX("Fecha<='XXX'", hastaSQL));
    if (!cliente.empty()) w = lib.SumaWhereAnd(w, session::LlenaXXX("Cliente='XXX'", cliente));
    if (!vendedor.empty())
        w = lib.SumaWhereAnd(w, tabla + session::LlenaXXX(".Vendedor='XXX'", vendedor));
    return w;
}

std::string RepAdmUtilXvend::SqlLlenado(const std::string& tabla, const std::string& condFacturas,
                                        const std::string& condRemisiones) {
    return "INSERT INTO " + tabla +
           " (Vendedor,Nombre,Ventas,AlCosto,AlCostoProm,NumeroVentas) SELECT Vendedor,"
           "MIN(Nombre),SUM(Ventas),SUM(AlCosto),SUM(AlCostoProm),SUM(NumeroVentas) FROM (" +
           PorVendedor("facturas", condFacturas) + " UNION ALL " +
           PorVendedor("remisiones", condRemisiones) + ") v GROUP BY Vendedor ORDER BY Vendedor";
}

std::string RepAdmUtilXvend::FormulaTitulo(const std::string& desde, const std::string& hasta) {
    return "Titulo='" +
           toolkit::detail::Reemplaza(RepAdmComisXvend::TextoPeriodo(desde, hasta), "'", "''") +
           "'";
}

void RepAdmUtilXvend::EnlazaCombos() {
    EnlazaCombo(Ctl("dcmDato", 0), "vendedores ORDER BY Clave", "Clave", "Clave");
}

void RepAdmUtilXvend::AlSalir(Control& c) {
    if (c.Nombre == "txtDato") MuestraCliente();
}

void RepAdmUtilXvend::MuestraCliente() {
    Control& etiqueta = Ctl("lblDato", 0);
    etiqueta.Caption.clear();
    const std::string clave = toolkit::detail::Recorta(Ctl("txtDato", 0).Text);
    host::Recordset rs;
    if (!clave.empty() && !detail::RompeLiteral(clave) && ConexionEmpresa() &&
        session::BuscaCliente(ConexionEmpresa(), clave, rs))
        etiqueta.Caption = rs["Nombre"].Texto();
}

void RepAdmUtilXvend::MuestraVendedor() {
    Control& etiqueta = Ctl("lblDato", 1);
    etiqueta.Caption.clear();
    const std::string clave = toolkit::detail::Recorta(Ctl("dcmDato", 0).BoundText);
    host::Recordset rs;
    if (!clave.empty() && !detail::RompeLiteral(clave) && ConexionEmpresa() &&
        session::BuscaVendedor(ConexionEmpresa(), clave, rs))
        etiqueta.Caption = rs["Nombre"].Texto();
}

void RepAdmUtilXvend::Imprimir() {
    Paso("revisar los filtros");
    const std::string desde = Fecha(0), hasta = Fecha(1);
    if (!desde.empty() && !hasta.empty() && FechaSQL(0) > FechaSQL(1))
        throw ErrorPaso("revisar el periodo",
                        "la fecha inicial (" + desde + ") es posterior a la final (" + hasta + ")");
    const std::string cliente = toolkit::detail::Recorta(Ctl("txtDato", 0).Text);
    const std::string vendedor = toolkit::detail::Recorta(Ctl("dcmDato", 0).BoundText);
    if (detail::RompeLiteral(vendedor))
        throw ErrorPaso("revisar los filtros", "la clave del vendedor '" + vendedor +
                                                   "' no puede llevar comillas simples (') ni "
                                                   "diagonales invertidas (\\)");
    MuestraCliente();
    MuestraVendedor();

    const std::string tabla = ClonaTabla("utilidadxvendedor", true);
    if (session::HuboError()) return;
    Paso("llenar la tabla de trabajo " + tabla + " con las ventas por vendedor");
    Llena(SqlLlenado(tabla, Condiciones("facturas", FechaSQL(0), FechaSQL(1), cliente, vendedor),
                     Condiciones("remisiones", FechaSQL(0), FechaSQL(1), cliente, vendedor)));

    std::string filtros;
    if (!cliente.empty()) {
        const std::string nombre = Ctl("lblDato", 0).Caption;
        filtros = "Cliente: " + cliente + (nombre.empty() ? "" : " " + nombre);
    }
    if (!vendedor.empty()) {
        const std::string nombre = Ctl("lblDato", 1).Caption;
        filtros += std::string(filtros.empty() ? "" : ". ") + "Vendedor: " + vendedor +
                   (nombre.empty() ? "" : " " + nombre);
    }
    PasaGenerales({{"Filtros", host::Valor(filtros)}});

    auto& sol = session::solicitud();
    const std::string carpeta = session::sesion().RutaRpts;
    sol.Plantilla =
        (carpeta.empty() ? "" : session::ConSeparadorFinal(carpeta)) + "utilidadxvendedor" + ".rpt";
    sol.Formula(0, FormulaTitulo(desde, hasta));
    sol.MapeaTabla("utilidadxvendedor", tabla);
    Ejecuta();
}

}  // namespace paratzorep::reports
