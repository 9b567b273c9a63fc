#include "reports/accounts/Antiguedad.h"

#include <cmath>

#include "session/Sesion.h"
#include "session/SuModulo.h"
#include "toolkit/LibKRVM.h"

namespace paratzorep::reports {

namespace {

const toolkit::LibKRVM& Lib() {
    static const toolkit::LibKRVM local;
    const auto& lib = session::sesion().LibKRVM;
    return lib ? *lib : local;
}

// A value chosen from a list as an SQL literal (quotes and backslashes doubled).
std::string Literal(const std::string& valor) {
    std::string r = "'";
    for (char c : valor) {
        if (c == '\'' || c == '\\') r += c;
        r += c;
    }
    return r + "'";
}

// The days from the due date to the cut-off; a row without a due date counts from its
// document's date.
std::string Dias(const std::string& corteSQL) {
    return "DATEDIFF('" + corteSQL + "',IF(x.Vencimiento>'0000-00-00',x.Vencimiento,d.Fecha))";
}

}  // namespace

const std::vector<TipoAntiguedad>& TiposAntiguedadClientes() {
    static const std::vector<TipoAntiguedad> t = {{'F', "facturas", "Id"},
                                                  {'C', "edoctacli", "Folio"},
                                                  {'R', "remisiones", "Id"},
                                                  {'A', "apartados", "Id"}};
    return t;
}

const std::vector<TipoAntiguedad>& TiposAntiguedadProveedores() {
    static const std::vector<TipoAntiguedad> t = {
        {'M', "compras", "Compra"}, {'N', "comprasnd", "Compra"}, {'C', "edoctaprov", "Folio"}};
    return t;
}

std::string CondicionesAntiguedad(const FiltrosAntiguedad& f, const std::string& prefijo) {
    const auto& lib = Lib();
    const std::string c = prefijo + "Clave";
    std::string w;
    if (!f.clave0.empty())
        w = lib.SumaWhereAnd(
            w, session::LlenaXXX(c + (f.clave1.empty() ? "='XXX'" : ">='XXX'"), f.clave0));
    if (!f.clave1.empty())
        w = lib.SumaWhereAnd(
            w, session::LlenaXXX(c + (f.clave0.empty() ? "='XXX'" : "<='XXX'"), f.clave1));
    return w;
}

std::string SqlCorreoAntiguedad(const FiltrosAntiguedad& f) {
    const auto& lib = Lib();
    std::string w = CondicionesAntiguedad(f, "cxc.");
    if (!f.clasificacion.empty())
        w = lib.SumaWhereAnd(w, session::LlenaXXX("clientes.Clasificacion='XXX'", f.clasificacion));
    std::string tipos;
    for (char t : f.tipos)
        tipos += (tipos.empty() ? "" : " or ") + std::string("cxc.Tipo='") + t + "'";
    if (!tipos.empty()) w = lib.SumaWhereAnd(w, "(" + tipos + ")");
    if (!f.sinVencer)
        w = lib.SumaWhereAnd(w, session::LlenaXXX("cxc.Vencimiento<='XXX'", f.corteSQL));
    w = lib.SumaWhereAnd(w, "clientes.Email<>''");
    return std::string(
               "SELECT cxc.Id,cxc.Clave,cxc.Vencimiento,cxc.Tipo,cxc.Numero,cxc.Saldo,clientes."
               "Nombre,clientes.Clasificacion") +
           ",clientes.Email FROM cxc LEFT JOIN clientes on cxc.Clave=clientes.clave" + w;
}

std::string SqlAntiguedad(const std::string& tabla, const std::string& libro,
                          const TipoAntiguedad& t, const FiltrosAntiguedad& f,
                          const std::string& origen) {
    const bool clientes = libro == "cxc";
    const bool cargo = t.tipo == 'C';
    std::string importe;
    std::string llave;
    if (cargo) {
        importe = "d.CantidadCargo";
        llave = "CAST(x.Numero AS CHAR)";
    } else if (clientes) {
        importe = "d.Importe";
        llave = "CONCAT(d.Serie,d.Factura)";
    } else {
        importe = "d.Subtotal+d.IVA+d.ImpuestoAd";
        llave = "d.Factura";
    }
    std::string sql = "INSERT INTO " + tabla +
                      " (clave,Tipo,Llave,Importe,Concepto,DiasDeVencido,Fecha,Vencimiento,Saldo,"
                      "Pagado" +
                      (clientes ? ",IdCxC,IdChequesPF" : "") + ") SELECT x.Clave,x.Tipo," + llave +
                      "," + importe + "," + (cargo ? "d.Concepto" : "''") + "," + Dias(f.corteSQL) +
                      ",d.Fecha,x.Vencimiento,x.Saldo," + importe + "-x.Saldo";
    // The first cheque applied to the row, as a lookup by IdCxC finds it.
    if (clientes)
        sql +=
            ",x.Id,IFNULL((SELECT p.IdCheque FROM chequespfdetalle p WHERE p.IdCxC=x.Id ORDER "
            "BY p.Id LIMIT 1),0)";
    sql += " FROM " +
           (origen.empty() ? "(SELECT * FROM " + libro + CondicionesAntiguedad(f) + ")" : origen) +
           " x JOIN " + t.tabla + " d ON ";
    // A charge's statement row is the first one with its folio.
    if (cargo)
        sql += std::string("d.Id=(SELECT MIN(e.Id) FROM ") + t.tabla + " e WHERE e.Folio=x.Numero)";
    else
        sql += std::string("d.") + t.llave + "=x.Numero";
    const bool clasifica = !f.clasificacion.empty() && origen.empty();
    if (clasifica)
        sql += std::string(" JOIN ") + (clientes ? "clientes" : "proveedores") +
               " k ON k.Clave=x.Clave";
    sql += " WHERE x.Tipo='" + std::string(1, t.tipo) + "'";
    if (clasifica) sql += " AND k.Clasificacion=" + Literal(f.clasificacion);
    if (!f.moneda.empty()) {
        const double v = Lib().kvVal(f.moneda);
        sql += std::string(cargo ? " AND d.Moneda=" : " AND d.IdMoneda=") +
               std::to_string(static_cast<long long>(std::llround(v)));
    }
    if (clientes && !f.vendedor.empty()) sql += " AND d.Vendedor=" + Literal(f.vendedor);
    if (!f.sinVencer) sql += " AND " + Dias(f.corteSQL) + ">=0";
    return sql;
}

}  // namespace paratzorep::reports
