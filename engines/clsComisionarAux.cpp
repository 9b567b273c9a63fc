#include "engines/clsComisionarAux.h"

#include <cmath>
#include <cstdio>
#include <map>
#include <stdexcept>

#include "data/AbrirBaseDeDatos.h"
#include "session/Sesion.h"
#include "session/SuModulo.h"
#include "toolkit/LibKRVM.h"
#include "toolkit/Texto.h"

namespace paratzorep::engines {

namespace detail {

namespace {

const toolkit::LibKRVM& Lib() {
    static const toolkit::LibKRVM local;
    const auto& lib = session::sesion().LibKRVM;
    return lib ? *lib : local;
}

std::int64_t Centavos(double v) {
    return std::llround(v * 100.0);
}

}  // namespace

int EligeTramo(const std::vector<Tramo>& tramos, double total) {
    int elegido = -1;
    for (std::size_t i = 0; i < tramos.size(); ++i) {
        if (Centavos(total) < Centavos(tramos[i].cantVendida)) continue;
        if (elegido < 0 || tramos[i].renglon > tramos[static_cast<std::size_t>(elegido)].renglon)
            elegido = static_cast<int>(i);
    }
    return elegido;
}

std::string FormatoMonto(double valor) {
    const std::int64_t c = Centavos(valor);
    const std::uint64_t a = static_cast<std::uint64_t>(c < 0 ? -c : c);
    std::string enteros = std::to_string(a / 100);
    for (int i = static_cast<int>(enteros.size()) - 3; i > 0; i -= 3)
        enteros.insert(static_cast<std::size_t>(i), ",");
    char dec[4];
    std::snprintf(dec, sizeof dec, "%02u", static_cast<unsigned>(a % 100));
    return (c < 0 ? "-" : "") + enteros + "." + dec;
}

std::string DescribeTramo(const std::vector<Tramo>& tramos, int i) {
    if (tramos.empty()) return "Sin tabla de comisiones";
    if (i < 0) {
        double menor = tramos.front().cantVendida;
        for (const auto& t : tramos) menor = std::min(menor, t.cantVendida);
        return "Por ventas menores a " + FormatoMonto(menor);
    }
    // The next bracket up, by Renglon, bounds this one.
    const Tramo& t = tramos[static_cast<std::size_t>(i)];
    const Tramo* siguiente = nullptr;
    for (const auto& x : tramos)
        if (x.renglon > t.renglon && (!siguiente || x.renglon < siguiente->renglon)) siguiente = &x;
    if (siguiente == nullptr) return "Por ventas desde " + FormatoMonto(t.cantVendida);
    return "Por ventas entre " + FormatoMonto(t.cantVendida) + " y " +
           FormatoMonto(siguiente->cantVendida);
}

std::string CondicionesDocumentos(bool conFechas, const std::string& desde,
                                  const std::string& hasta, const std::string& vendedor,
                                  std::int16_t moneda) {
    const auto& lib = Lib();
    std::string w;
    if (conFechas && !desde.empty())
        w = lib.SumaWhereAnd(w, session::LlenaXXX("Fecha>='XXX'", desde));
    if (conFechas && !hasta.empty())
        w = lib.SumaWhereAnd(w, session::LlenaXXX("Fecha<='XXX'", hasta));
    w = lib.SumaWhereAnd(w, "Cancelada=0");
    w = lib.SumaWhereAnd(w, "Vendedor<>''");
    if (!vendedor.empty()) w = lib.SumaWhereAnd(w, session::LlenaXXX("Vendedor='XXX'", vendedor));
    if (moneda != 0) w = lib.SumaWhereAnd(w, "Moneda=" + std::to_string(moneda));
    return w;
}

std::string CondicionesPagos(const std::string& desde, const std::string& hasta) {
    const auto& lib = Lib();
    std::string w = lib.SumaWhereAnd("", "CantidadPago>0 AND NotaCredito=0");
    if (!desde.empty()) w = lib.SumaWhereAnd(w, session::LlenaXXX("Fecha>='XXX'", desde));
    if (!hasta.empty()) w = lib.SumaWhereAnd(w, session::LlenaXXX("Fecha<='XXX'", hasta));
    return w;
}

namespace {

// One kind of sales document.
struct Tipo {
    const char* tabla;      // facturas, remisiones
    const char* documento;  // FACTURA, REMISION
    const char* numero;     // the document's number column
    const char* anexo;      // its column in anexopagosctes
    bool esFactura;
};
constexpr Tipo kFactura{"facturas", "FACTURA", "Factura", "Factura", true};
constexpr Tipo kRemision{"remisiones", "REMISION", "Remision", "Remision", false};

// The rate of the document `f`: currency 1 is the company's.
constexpr const char* kParidad = "IF(f.Moneda<>1 AND m.Paridad>0,m.Paridad,1)";

// Rounded to cents, half away from zero (decimal arithmetic on the server).
std::string Centavos(const std::string& expr) {
    return "ROUND(CAST(" + expr + " AS DECIMAL(26,8)),2)";
}

// The documents of a kind that a run reads, as a derived table `f`.
std::string Documentos(const Tipo& t, const std::string& condiciones) {
    return std::string("(SELECT Id,Serie,") + t.numero +
           " AS Numero,Fecha,Cliente,Vendedor,Cancelada,Moneda,Subtotal,Total,Pagado,Saldo,Vence"
           " FROM " +
           t.tabla + condiciones + ") f";
}

// The credit notes applied to an invoice `f` (cancelled notes left out), in its currency.
std::string NotasDeCredito(const Tipo& t) {
    if (!t.esFactura) return "0";
    return "IFNULL((SELECT SUM(Cantidad) FROM notascreditodetalle WHERE Tipo='F' AND Numero=f.Id"
           " AND NotaCredito IN (SELECT NotaCredito FROM notascredito WHERE Cancelada=0)),0)";
}

// The share of an invoice `f` that earns on sales: its lines not made from a delivery note
// over all its lines (1 for a document without lines).
std::string PartePropia(const Tipo& t) {
    if (!t.esFactura) return "1";
    return "IFNULL(IFNULL((SELECT SUM(Cantidad*PrecioNeto) FROM facturasdetalle WHERE Id=f.Id"
           " AND Remision=0),0)/NULLIF((SELECT SUM(Cantidad*PrecioNeto) FROM facturasdetalle"
           " WHERE Id=f.Id),0),1)";
}

// The product's field for its price number, "<campo>1".."<campo>5".
std::string CampoDelPrecio(const std::string& campo) {
    std::string s = "(CASE p.NumeroDePrecio";
    for (int i = 1; i <= 5; ++i)
        s += " WHEN " + std::to_string(i) + " THEN p." + campo + std::to_string(i);
    return s + " ELSE 0 END)";
}

void ExigeFecha(const std::string& fecha, const char* cual) {
    if (fecha.empty() || Lib().EsFecha(fecha)) return;
    throw std::invalid_argument(std::string("Comisiones: la fecha ") + cual + " '" + fecha +
                                "' no es una fecha válida (dd/mm/aaaa)");
}

void ExigeNombreTabla(const std::string& tabla) {
    bool bien = !tabla.empty();
    for (char ch : tabla)
        bien = bien && ((ch >= 'a' && ch <= 'z') || (ch >= 'A' && ch <= 'Z') ||
                        (ch >= '0' && ch <= '9') || ch == '_');
    if (!bien)
        throw std::invalid_argument("Comisiones: '" + tabla +
                                    "' no es un nombre de tabla de trabajo válido");
}

host::BaseDD& Base() {
    auto& bd = session::sesion().BaseDD;
    if (!bd) throw std::runtime_error("Comisiones: la sesión no tiene objeto de acceso a datos");
    return *bd;
}

// A connection closed when it goes out of scope.
struct ConexionPropia {
    host::Conexion cn;
    ~ConexionPropia() {
        if (cn && session::sesion().BaseDD) session::sesion().BaseDD->CierraBdD(cn);
    }
};

void Abre(ConexionPropia& c) {
    auto& bd = Base();
    if (!data::AbrirBaseDeDatos(c.cn, bd.cMiBase))
        throw std::runtime_error("Comisiones: no se pudo abrir la base de datos de la empresa '" +
                                 bd.cMiBase + "': " + bd.UltimoError());
}

host::Recordset Lee(const host::Conexion& cn, const std::string& fuente, const char* que) {
    host::Recordset rs;
    auto& bd = Base();
    if (!bd.AbrirTabla(rs, cn, fuente))
        throw host::ErrorDatos(std::string("Comisiones: leer ") + que, fuente, 0, bd.UltimoError());
    return rs;
}

}  // namespace

}  // namespace detail

namespace {

// What one call was given, checked and converted.
struct Corrida {
    std::string desde, hasta;  // "yyyy-mm-dd" or ""
    std::string vendedor;
    bool porPagos = false;
    bool liquidado = false;
    std::vector<detail::Tipo> tipos;
    std::int16_t moneda = 0;
};

using detail::Tipo;

Corrida Prepara(const std::string& desde, const std::string& hasta, const std::string& vendedor,
                bool porPagos, bool liquidado, DocumentosComision documentos, std::int16_t moneda) {
    detail::ExigeFecha(desde, "inicial");
    detail::ExigeFecha(hasta, "final");
    Corrida c;
    c.desde = detail::Lib().FechaSQL(desde);
    c.hasta = detail::Lib().FechaSQL(hasta);
    c.vendedor = toolkit::detail::Recorta(vendedor);
    if (c.vendedor.find_first_of("'\\") != std::string::npos)
        throw std::invalid_argument("Comisiones: la clave del vendedor '" + c.vendedor +
                                    "' no puede llevar comillas ni diagonales invertidas");
    c.porPagos = porPagos;
    c.liquidado = porPagos && liquidado;
    if (documentos != DocumentosComision::Remisiones) c.tipos.push_back(detail::kFactura);
    if (documentos != DocumentosComision::Facturas) c.tipos.push_back(detail::kRemision);
    c.moneda = moneda;
    return c;
}

std::string Condiciones(const Corrida& c) {
    return detail::CondicionesDocumentos(!c.porPagos, c.desde, c.hasta, c.vendedor, c.moneda);
}

// Payment bases: what the period's payments applied to each document, in a temporary table
// comispagos (Documento, IdVenta, Pagado in the document's currency, UltimoPago).
void JuntaPagos(const host::Conexion& cn, const Corrida& c) {
    auto& bd = detail::Base();
    bd.Executar(cn, "DROP TEMPORARY TABLE IF EXISTS comispagos");
    bd.Executar(cn,
                "CREATE TEMPORARY TABLE comispagos (Documento VARCHAR(10) NOT NULL, IdVenta INT "
                "NOT NULL, Pagado DOUBLE NOT NULL, UltimoPago DATE NOT NULL, PRIMARY KEY "
                "(Documento, IdVenta))");
    bd.Executar(cn,
                "INSERT INTO comispagos (Documento,IdVenta,Pagado,UltimoPago) "
                "SELECT IF(a.Factura<>0,'FACTURA','REMISION'),IF(a.Factura<>0,a.Factura,"
                "a.Remision),SUM(a.Cantidad),MAX(e.Fecha) "
                "FROM (SELECT Folio,MIN(Fecha) AS Fecha FROM edoctacli" +
                    detail::CondicionesPagos(c.desde, c.hasta) +
                    " GROUP BY Folio) e "
                    "JOIN anexopagosctes a ON a.FolioDelPago=e.Folio AND a.Cantidad > 0.01 "
                    "WHERE a.Factura<>0 OR a.Remision<>0 GROUP BY 1,2");
}

// Liquidated basis: the document is settled and nothing was applied to it after the period.
std::string Liquidados(const Tipo& t, const Corrida& c, const char* alias) {
    std::string w = std::string(" AND ") + alias + ".Saldo<=0.01";
    if (!c.hasta.empty())
        w += std::string(" AND NOT EXISTS (SELECT 1 FROM anexopagosctes WHERE FechaReal>'") +
             c.hasta + "' AND " + t.anexo + "=" + alias + ".Id AND Cantidad > 0.01)";
    return w;
}

// --- Bracket scheme ---------------------------------------------------------------------------

// Fills the temporary table comisdoctos with one row per document of a kind: its figures in
// the company's currency and the amount it adds to its seller's total (Monto).
void DocumentosDeTabla(const host::Conexion& cn, const Tipo& t, const Corrida& c) {
    using detail::Centavos;
    const std::string pagos = c.porPagos ? " JOIN comispagos p ON p.Documento='" +
                                               std::string(t.documento) + "' AND p.IdVenta=f.Id"
                                         : "";
    // d: the document with its rate, own share, credit notes and payments.
    const std::string d =
        std::string("(SELECT f.*,") + detail::kParidad + " AS Par," +
        (c.porPagos ? "1" : detail::PartePropia(t)) + " AS Parte," + detail::NotasDeCredito(t) +
        " AS NC," +
        (c.porPagos ? "p.Pagado AS Cobros,p.UltimoPago" : "0 AS Cobros,NULL AS UltimoPago") +
        " FROM " + detail::Documentos(t, Condiciones(c)) + pagos +
        " LEFT JOIN monedas m ON m.Id=f.Moneda)";
    // x: the figures rounded to cents.
    const std::string sobreTotal = "IF(d.Total<>0,d.Subtotal/d.Total,1)";
    const std::string x =
        "(SELECT d.*," + Centavos("d.Subtotal*d.Par*d.Parte") + " AS Sub," +
        Centavos("d.NC*d.Par*" + sobreTotal) + " AS NdeC," +
        Centavos("IF(d.Total>0,LEAST(d.Cobros,d.Total)*d.Subtotal/d.Total,d.Cobros)*d.Par") +
        " AS Cobrado FROM " + d + " d)";
    const std::string monto = c.porPagos && !c.liquidado ? "x.Cobrado" : "x.Sub-x.NdeC";
    std::string sql =
        "INSERT INTO comisdoctos (Documento,IdVenta,Serie,Numero,Fecha,Cliente,Nombre,clave,"
        "Vendedor,Subtotal,NotasDeCredito,Monto,Vence,DiasVencida) SELECT '" +
        std::string(t.documento) +
        "',x.Id,x.Serie,x.Numero,x.Fecha,x.Cliente,IFNULL(cl.Nombre,''),x.Vendedor,"
        "IFNULL(v.Nombre,''),x.Sub,x.NdeC," +
        monto + "," +
        (c.porPagos ? "IF(x.Vence>'0000-00-00',x.Vence,NULL),IF(x.Vence>'0000-00-00' AND "
                      "x.UltimoPago>x.Vence,DATEDIFF(x.UltimoPago,x.Vence),0)"
                    : "NULL,NULL") +
        " FROM " + x +
        " x LEFT JOIN clientes cl ON cl.Clave=x.Cliente LEFT JOIN vendedores v ON "
        "v.Clave=x.Vendedor WHERE (x.Parte<>0 OR x.NdeC<>0)" +
        (c.liquidado ? Liquidados(t, c, "x") : "") + " ORDER BY x.Id";
    detail::Base().Executar(cn, sql);
}

void PorTabla(const Corrida& c, const std::string& archivoLocal) {
    auto& bd = detail::Base();
    detail::ConexionPropia empresa;
    detail::Abre(empresa);
    const host::Conexion& cn = empresa.cn;

    session::BarraPorcentaje(0, 1, "Comisiones: reuniendo los documentos");
    if (c.porPagos) JuntaPagos(cn, c);
    bd.Executar(cn, "DROP TEMPORARY TABLE IF EXISTS comisdoctos");
    bd.Executar(cn,
                "CREATE TEMPORARY TABLE comisdoctos (Id INT NOT NULL AUTO_INCREMENT, Documento "
                "VARCHAR(10) NOT NULL, IdVenta INT NOT NULL, Serie VARCHAR(20), Numero INT, Fecha "
                "DATE, Cliente VARCHAR(30), Nombre VARCHAR(200), clave VARCHAR(30), Vendedor "
                "VARCHAR(200), Subtotal DECIMAL(18,2), NotasDeCredito DECIMAL(18,2), Monto "
                "DECIMAL(18,2), Vence DATE NULL, DiasVencida INT NULL, PRIMARY KEY (Id))");
    for (const auto& t : c.tipos) DocumentosDeTabla(cn, t, c);

    // The sellers' totals and the bracket each reaches.
    struct Vendedor {
        double total = 0;
        double comision = 0;
        std::string deLaTabla;
    };
    std::map<std::string, Vendedor> vendedores;
    {
        auto rs = detail::Lee(cn,
                              "SELECT clave,SUM(Monto) AS MontoTotal FROM comisdoctos GROUP BY "
                              "clave ORDER BY clave",
                              "los totales de los vendedores");
        for (rs.MoveFirst(); !rs.Eof(); rs.MoveNext())
            vendedores[rs["clave"].Texto()].total = rs["MontoTotal"].Doble();
    }
    for (auto& [clave, v] : vendedores) {
        auto rs = detail::Lee(cn,
                              "comisiones WHERE Vendedor='" + toolkit::detail::EscapaSQL(clave) +
                                  "' ORDER BY Renglon" + (c.porPagos ? "" : " DESC"),
                              "la tabla de comisiones");
        std::vector<detail::Tramo> tramos;
        for (rs.MoveFirst(); !rs.Eof(); rs.MoveNext())
            tramos.push_back({static_cast<std::int16_t>(rs["Renglon"].Entero()),
                              rs["CantVendida"].Doble(), rs["Comision"].Doble()});
        const int i = detail::EligeTramo(tramos, v.total);
        v.comision = i < 0 ? 0.0 : tramos[static_cast<std::size_t>(i)].comision;
        v.deLaTabla = detail::DescribeTramo(tramos, i);
    }

    // The local work file, replaced in one transaction.
    detail::ConexionPropia local;
    if (!bd.AbreBdDAccess(local.cn, archivoLocal))
        throw std::runtime_error("Comisiones: no se pudo abrir el archivo de trabajo '" +
                                 archivoLocal + "': " + bd.UltimoError());
    bd.Executar(local.cn, "BEGIN");
    try {
        for (const char* t : {"ComisXvend1", "ComisXvend2", "ComisVendXtabla"})
            bd.Executar(local.cn, std::string("DELETE FROM ") + t);
        for (const auto& [clave, v] : vendedores) {
            bd.AgregaRegistro(local.cn, "ComisXvend1", {"Clave", "MontoTotal"},
                              {host::Valor(clave), host::Valor(v.total)});
            bd.AgregaRegistro(
                local.cn, "ComisVendXtabla", {"Vendedor", "DeLaTabla", "Comision"},
                {host::Valor(clave), host::Valor(v.deLaTabla), host::Valor(v.comision)});
        }
        const double n = bd.LastRec(cn, "comisdoctos");
        const std::vector<std::string> campos = {
            "Vendedor", "clave",          "Nombre",   "Documento", "Serie",
            "Numero",   "Fecha",          "Cliente",  "IdVenta",   "Subtotal",
            "Monto",    "NotasDeCredito", "Comision", "Vence",     "DiasVencida"};
        const std::vector<std::string> origen = {
            "Vendedor", "clave",          "Nombre",  "Documento", "Serie",
            "Numero",   "Fecha",          "Cliente", "IdVenta",   "Subtotal",
            "Monto",    "NotasDeCredito", "",        "Vence",     "DiasVencida"};
        std::int64_t ultimo = 0;
        double escritos = 0;
        constexpr int kBloque = 5000;
        for (;;) {
            auto rs = detail::Lee(cn,
                                  "SELECT * FROM comisdoctos WHERE Id>" + std::to_string(ultimo) +
                                      " ORDER BY Id LIMIT " + std::to_string(kBloque),
                                  "los documentos comisionados");
            if (rs.RecordCount() == 0) break;
            for (rs.MoveFirst(); !rs.Eof(); rs.MoveNext()) {
                std::vector<host::Valor> valores;
                valores.reserve(campos.size());
                for (const auto& o : origen)
                    valores.push_back(
                        o.empty() ? host::Valor(vendedores[rs["clave"].Texto()].comision) : rs[o]);
                bd.AgregaRegistro(local.cn, "ComisXvend2", campos, valores);
                ultimo = rs["Id"].Entero();
            }
            escritos += rs.RecordCount();
            session::BarraPorcentaje(escritos, n, "Comisiones: documentos");
        }
        bd.Executar(local.cn, "COMMIT");
    } catch (...) {
        try {
            bd.Executar(local.cn, "ROLLBACK");
        } catch (...) {
            // The error that stopped the fill is the one to report.
        }
        throw;
    }
    bd.Executar(cn, "DROP TEMPORARY TABLE IF EXISTS comisdoctos");
}

// --- Line-and-price scheme --------------------------------------------------------------------

// The percentage of a line, by the sources in force, first found first: the seller's line,
// the seller's price number, the product's field for its price number, the line's own. A row
// of the seller's tables applies even at 0 (an agreement); the catalogue's fields when not 0.
std::string Porcentaje(bool porLinea, bool porPrecio) {
    std::string s = "CASE WHEN p.Clave IS NULL THEN 0";
    if (porLinea) s += " WHEN cl.Vendedor IS NOT NULL THEN cl.Comision";
    if (porPrecio) {
        s += " WHEN cp.Vendedor IS NOT NULL THEN cp.Comision";
        const std::string campo = detail::CampoDelPrecio("ComisionPrecio");
        s += " WHEN " + campo + "<>0 THEN " + campo;
    }
    if (porLinea) s += " WHEN l.Comision<>0 THEN l.Comision";
    return s + " ELSE 0 END";
}

void DetalleDeLineas(const host::Conexion& cn, const Tipo& t, const Corrida& c,
                     const std::string& tablaDetalle, bool porLinea, bool porPrecio) {
    using detail::Centavos;
    // The line's price in the company's currency, less the product's discount for its price
    // number when its price is locked (Bloqueado).
    const std::string precio = std::string("d.PrecioNeto*") + detail::kParidad +
                               "*IF(p.Bloqueado<>0,1-" + detail::CampoDelPrecio("Desc") + "/100,1)";
    const std::string parte =
        c.porPagos && !c.liquidado ? "IF(f.Total>0,LEAST(pg.Pagado/f.Total,1),1)" : "1";
    const std::string lineas =
        std::string("(SELECT '") + t.documento +
        "' AS Documento,f.Id AS IdVenta,d.Partida,d.Producto,"
        "IF(d.Descripcion<>'',d.Descripcion,IFNULL(p.Descrip,'')) AS Descr,"
        "d.Cantidad-d.Devueltos AS Cant," +
        precio + " AS Precio,(" + Porcentaje(porLinea, porPrecio) + ") AS Porcen," + parte +
        " AS Parte FROM " + detail::Documentos(t, Condiciones(c)) +
        (c.porPagos ? " JOIN comispagos pg ON pg.Documento='" + std::string(t.documento) +
                          "' AND pg.IdVenta=f.Id"
                    : "") +
        " JOIN " + t.tabla + "detalle d ON d.Id=f.Id" +
        (c.porPagos || !t.esFactura ? "" : " AND d.Remision=0") +
        " LEFT JOIN productos p ON p.Clave=d.Producto"
        " LEFT JOIN lineas l ON l.Id=p.Linea"
        " LEFT JOIN comisionesporlinea cl ON cl.Vendedor=f.Vendedor AND cl.Linea=p.Linea"
        " LEFT JOIN comisionesmasprecios cp ON cp.Vendedor=f.Vendedor AND "
        "cp.NumPrecio=p.NumeroDePrecio"
        " LEFT JOIN monedas m ON m.Id=f.Moneda" +
        (c.liquidado ? " WHERE 1=1" + Liquidados(t, c, "f") : "") + ")";
    const std::string importe = Centavos("y.Cant*y.Precio*y.Parte");
    const std::string porLineaSql =
        "(SELECT y.Documento,y.IdVenta,y.Producto,FIRST_VALUE(y.Descr) OVER w AS Descr,"
        "FIRST_VALUE(y.Precio) OVER w AS Precio,y.Porcen,y.Cant," +
        importe + " AS Importe,ROUND(" + importe +
        "*CAST(y.Porcen AS DECIMAL(16,6))/100,2) AS ComisionMonto FROM " + lineas +
        " y WINDOW w AS (PARTITION BY y.IdVenta,y.Producto ORDER BY y.Partida))";
    detail::Base().Executar(
        cn, "INSERT INTO " + tablaDetalle +
                " (Documento,IdVenta,Producto,DESCripcion,Precio,ComisionPorcen,Cantidad,"
                "ComisionMonto,Importe) SELECT z.Documento,z.IdVenta,z.Producto,MIN(z.Descr),"
                "MIN(z.Precio),MIN(z.Porcen),SUM(z.Cant),SUM(z.ComisionMonto),SUM(z.Importe) "
                "FROM " +
                porLineaSql + " z GROUP BY z.Documento,z.IdVenta,z.Producto ORDER BY z.IdVenta");
}

void DocumentosDeLineas(const host::Conexion& cn, const Tipo& t, const Corrida& c,
                        const std::string& tablaVentas, const std::string& tablaDetalle) {
    using detail::Centavos;
    const std::string par = detail::kParidad;
    const std::string pagado = c.porPagos && !c.liquidado
                                   ? "IF(f.Total>0,LEAST(pg.Pagado,f.Total),pg.Pagado)"
                                   : "f.Pagado";
    detail::Base().Executar(
        cn, "INSERT INTO " + tablaVentas +
                " (Documento,IdVenta,clave,Nombre,Fecha,Serie,Numero,Cliente,Subtotal,Total,"
                "Cantidad,Pagado,IdMoneda,Monto) SELECT t.Documento,f.Id,f.Vendedor,"
                "IFNULL(v.Nombre,''),f.Fecha,f.Serie,f.Numero,f.Cliente," +
                Centavos("f.Subtotal*" + par) + "," + Centavos("f.Total*" + par) + ",t.Importe," +
                Centavos(pagado + "*" + par) +
                ",f.Moneda,t.Monto FROM (SELECT Documento,IdVenta,SUM(Importe) AS Importe,"
                "SUM(ComisionMonto) AS Monto FROM " +
                tablaDetalle + " WHERE Documento='" + t.documento +
                "' GROUP BY Documento,IdVenta) t JOIN " + detail::Documentos(t, "") +
                " ON f.Id=t.IdVenta" +
                (c.porPagos ? " JOIN comispagos pg ON pg.Documento=t.Documento AND "
                              "pg.IdVenta=t.IdVenta"
                            : "") +
                " LEFT JOIN monedas m ON m.Id=f.Moneda LEFT JOIN vendedores v ON "
                "v.Clave=f.Vendedor ORDER BY f.Id");
}

void PorLineaYprecio(const Corrida& c, const std::string& tablaVentas,
                     const std::string& tablaDetalle, bool porLinea, bool porPrecio) {
    detail::ExigeNombreTabla(tablaVentas);
    detail::ExigeNombreTabla(tablaDetalle);
    auto& bd = detail::Base();
    detail::ConexionPropia empresa;
    detail::Abre(empresa);
    const host::Conexion& cn = empresa.cn;
    session::BarraPorcentaje(0, 1, "Comisiones: reuniendo los documentos");
    if (c.porPagos) JuntaPagos(cn, c);
    bd.Executar(cn, "DELETE FROM " + tablaDetalle);
    bd.Executar(cn, "DELETE FROM " + tablaVentas);
    const double pasos = static_cast<double>(c.tipos.size()) * 2 + 1;
    double paso = 0;
    for (const auto& t : c.tipos) {
        DetalleDeLineas(cn, t, c, tablaDetalle, porLinea, porPrecio);
        session::BarraPorcentaje(++paso, pasos, "Comisiones: partidas");
    }
    for (const auto& t : c.tipos) {
        DocumentosDeLineas(cn, t, c, tablaVentas, tablaDetalle);
        session::BarraPorcentaje(++paso, pasos, "Comisiones: documentos");
    }
    bd.Executar(cn, "UPDATE " + tablaDetalle + " d JOIN " + tablaVentas +
                        " v ON v.Documento=d.Documento AND v.IdVenta=d.IdVenta SET "
                        "d.IdComision=v.Id");
    session::BarraPorcentaje(pasos, pasos, "Comisiones: listas");
}

}  // namespace

void clsComisionarAux::CreaMovsXvendido(const std::string& desde, const std::string& hasta,
                                        const std::string& vendedor,
                                        const std::string& archivoLocal) {
    PorTabla(Prepara(desde, hasta, vendedor, false, false, Documentos, Moneda), archivoLocal);
}

void clsComisionarAux::CreaMovsXpagado(const std::string& desde, const std::string& hasta,
                                       const std::string& vendedor,
                                       const std::string& archivoLocal) {
    PorTabla(Prepara(desde, hasta, vendedor, true, Liquidado, Documentos, Moneda), archivoLocal);
}

void clsComisionarAux::CreaMovsXlasOtras(const std::string& desde, const std::string& hasta,
                                         const std::string& vendedor,
                                         const std::string& tablaVentas,
                                         const std::string& tablaDetalle) {
    PorLineaYprecio(Prepara(desde, hasta, vendedor, false, false, Documentos, Moneda), tablaVentas,
                    tablaDetalle, PorLinea, PorPrecio);
}

void clsComisionarAux::CreaMovsXpag(const std::string& desde, const std::string& hasta,
                                    const std::string& vendedor, const std::string& tablaVentas,
                                    const std::string& tablaDetalle) {
    PorLineaYprecio(Prepara(desde, hasta, vendedor, true, Liquidado, Documentos, Moneda),
                    tablaVentas, tablaDetalle, PorLinea, PorPrecio);
}

}  // namespace paratzorep::engines
