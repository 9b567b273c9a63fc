#include "reports/accounts/RepAdmCxC.h"

#include <algorithm>
#include <cmath>

#include "reports/accounts/FormaCuentas.h"
#include "session/Sesion.h"
#include "session/Solicitud.h"
#include "session/SuModulo.h"
#include "toolkit/LibKRVM.h"
#include "toolkit/Texto.h"

namespace paratzorep::reports {

namespace detail {

const toolkit::LibKRVM& LibCxC() {
    static const toolkit::LibKRVM local;
    const auto& lib = session::sesion().LibKRVM;
    return lib ? *lib : local;
}

// A value chosen from a list, as an SQL literal (its quotes doubled).
std::string Literal(const std::string& valor) {
    std::string r = "'";
    for (char c : valor) {
        if (c == '\'' || c == '\\') r += c;
        r += c;
    }
    return r + "'";
}

// A chosen currency's id as the number kvVal reads.
std::string Numero(const std::string& valor) {
    const double v = LibCxC().kvVal(valor);
    return std::to_string(static_cast<long long>(std::llround(v)));
}

// The document total of the shared routine, over alias d: every amount added, the retentions
// with their stored sign.
constexpr const char* kTotalDocumento =
    "d.Subtotal+d.IVA+d.ImpuestoAd+d.Cargo1Cantidad+d.Cargo2Cantidad+d.Cargo3Cantidad+"
    "d.Retencion+d.RetencionIVA";

// The key range applied to a column with the single-key rule: "=" for one box, ">=" and "<="
// for both.
std::string RangoClave(const std::string& columna, const FiltrosCxC& f) {
    std::string w;
    if (!f.clave0.empty())
        w += " AND " + columna + (f.clave1.empty() ? "=" : ">=") + Literal(f.clave0);
    if (!f.clave1.empty())
        w += " AND " + columna + (f.clave0.empty() ? "=" : "<=") + Literal(f.clave1);
    return w;
}

std::string Ledger(const std::string& libro, const FiltrosCxC& f) {
    return "(SELECT * FROM " + libro + RepAdmCxC::Condiciones(f) + ") x";
}

// The list controls of the two forms: the caption label and the data combo.
void AgregaLista(Formulario& f, std::int16_t i, const std::string& etiqueta,
                 const std::string& caption) {
    f.Agrega("lblLista", i, etiqueta);
    f.Agrega("dcmDato", i, caption);
}

void MuestraLista(Formulario& f, std::int16_t i, bool visible) {
    f.Ctl("dcmDato", i).Visible = visible;
    f.Ctl("lblLista", i).Visible = visible;
}

std::string Elegido(const Formulario& f, std::int16_t i) {
    if (!f.TieneControl("dcmDato", i)) return "";
    const Control& c = f.Ctl("dcmDato", i);
    return c.Visible && c.ListIndex >= 0 ? c.BoundText : std::string();
}

// The headings that every listing of open documents prints: the filters in words.
std::string TextoFiltros(const Formulario& forma, const FiltrosCxC& f, const char* persona,
                         const char* personas) {
    std::string t;
    auto suma = [&](const std::string& parte) { t += (t.empty() ? "" : " · ") + parte; };
    std::string tipos;
    for (const Control* c : const_cast<Formulario&>(forma).Arreglo("chkVentas"))
        if (c->Visible && c->Enabled && c->Value != 0)
            tipos += (tipos.empty() ? "" : ", ") + c->Caption;
    suma(tipos.empty() ? "Ningún tipo de documento" : tipos);
    if (!f.clave0.empty() && !f.clave1.empty())
        suma(std::string(personas) + " del " + f.clave0 + " al " + f.clave1);
    else if (!f.clave0.empty() || !f.clave1.empty())
        suma(std::string(persona) + " " + (f.clave0.empty() ? f.clave1 : f.clave0));
    for (std::int16_t i = 0; i < 3; ++i) {
        if (Elegido(forma, i).empty()) continue;
        const Control& c = forma.Ctl("dcmDato", i);
        suma(c.Caption + ": " + c.Elegido());
    }
    return t;
}

std::string TextoVencimientos(const std::string& desde, const std::string& hasta) {
    const auto& lib = LibCxC();
    if (!desde.empty() && !hasta.empty())
        return "Vencimientos del " + lib.FechaCompleta(desde) + " al " + lib.FechaCompleta(hasta);
    if (!desde.empty()) return "Vencimientos desde el " + lib.FechaCompleta(desde);
    if (!hasta.empty()) return "Vencimientos hasta el " + lib.FechaCompleta(hasta);
    return "Todos los vencimientos";
}

}  // namespace detail

// --- Receivables ------------------------------------------------------------------------

RepAdmCxC::RepAdmCxC() : FormaReporte("RepAdmCxC", "Cuentas por cobrar") {
    Agrega("lblFecha", 0, "Vencen desde:");
    AgregaFecha("mkeFecha", 0);
    Agrega("lblFecha", 1, "Hasta:");
    AgregaFecha("mkeFecha", 1);
    Agrega("txtDato", 0, "Del cliente");
    Agrega("lblDato", 0);
    Agrega("txtDato", 1, "Al cliente");
    Agrega("lblDato", 1);
    const char* tipos[] = {"Facturas", "Cargos", "Remisiones", "Apartados"};
    for (std::int16_t i = 0; i < 4; ++i) Agrega("chkVentas", i, tipos[i]).Value = 1;
    Agrega("chkAunaFecha", -1, "Saldos a una fecha").Click = [this](Control&) { CambiaModo(); };
    detail::AgregaLista(*this, 0, "Vendedor:", "Vendedor");
    detail::AgregaLista(*this, 1, "Moneda:", "Moneda");
    detail::AgregaLista(*this, 2, "Clasificación:", "Clasificación");
}

const std::vector<TipoDocumento>& RepAdmCxC::Tipos() {
    // In the order of chkVentas(0..3). Layaways go into the invoice columns.
    static const std::vector<TipoDocumento> tipos = {
        {'F', "facturas", "Id", "Factura", "IdFactura", "FACTURA "},
        {'C', "edoctacli", "Folio", "Cargo", "IdCargo", ""},
        {'R', "remisiones", "Id", "Remision", "IdRemision", "REMISION "},
        {'A', "apartados", "Id", "Factura", "IdFactura", "APARTADO "},
    };
    return tipos;
}

void RepAdmCxC::CambiaModo() {
    const bool aUnaFecha = Ctl("chkAunaFecha").Value != 0;
    Ctl("lblFecha", 0).Caption = aUnaFecha ? "Saldos al día:" : "Vencen desde:";
    Ctl("lblFecha", 1).Caption = aUnaFecha ? "" : "Hasta:";
    Ctl("mkeFecha", 1).Enabled = !aUnaFecha;
    // The balances at a date are rebuilt from invoices, delivery notes and layaways only.
    Ctl("chkVentas", 1).Enabled = !aUnaFecha;
}

void RepAdmCxC::EnlazaCombos() {
    const auto& cn = ConexionEmpresa();
    EnlazaCombo(Ctl("dcmDato", 0), "vendedores ORDER BY Clave", "Nombre", "Clave");
    EnlazaCombo(Ctl("dcmDato", 1), "monedas ORDER BY Abreviacion", "Abreviacion", "Id");
    EnlazaCombo(Ctl("dcmDato", 2), "clasificactes ORDER BY Clasificacion", "Clasificacion",
                "Clasificacion");
    detail::MuestraLista(*this, 0, session::LeerConfigBool(cn, "Vendedores"));
    detail::MuestraLista(*this, 1, session::LeerConfigBool(cn, "MultiMoneda"));
    detail::MuestraLista(*this, 2, session::LeerConfigBool(cn, "ClasificaCtes"));
    Ctl("chkVentas", 2).Visible = session::LeerConfigBool(cn, "Remisiones");
    Ctl("chkVentas", 3).Visible = session::LeerConfigBool(cn, "Apartados");
}

void RepAdmCxC::AlSalir(Control& c) {
    if (c.Nombre != "txtDato" || c.Indice < 0 || c.Indice > 1) return;
    Ctl("lblDato", c.Indice).Caption =
        NombreDeCuenta(ConexionEmpresa(), true, toolkit::detail::Recorta(c.Text));
}

bool RepAdmCxC::FechaOpcional(const Control& c) const {
    // The date of the balances is required; the due-date bounds are not.
    return !(Ctl("chkAunaFecha").Value != 0 && c.Indice == 0);
}

std::string RepAdmCxC::Condiciones(const FiltrosCxC& f) {
    const auto& lib = detail::LibCxC();
    std::string w;
    if (!f.desdeSQL.empty())
        w = lib.SumaWhereAnd(w, session::LlenaXXX("Vencimiento>='XXX'", f.desdeSQL));
    if (!f.hastaSQL.empty())
        w = lib.SumaWhereAnd(w, session::LlenaXXX("Vencimiento<='XXX'", f.hastaSQL));
    if (!f.clave0.empty())
        w = lib.SumaWhereAnd(
            w, session::LlenaXXX(f.clave1.empty() ? "Clave='XXX'" : "Clave>='XXX'", f.clave0));
    if (!f.clave1.empty())
        w = lib.SumaWhereAnd(
            w, session::LlenaXXX(f.clave0.empty() ? "Clave='XXX'" : "Clave<='XXX'", f.clave1));
    return w;
}

std::string RepAdmCxC::SqlLlenado(const std::string& tabla, const TipoDocumento& t,
                                  const FiltrosCxC& f) {
    const bool cargo = t.tipo == 'C';
    std::string sql = "INSERT INTO " + tabla + " (Fecha," + t.campo +
                      ",Total,Concepto,Cliente,Saldo,Vence," + t.campoId + ") SELECT d.Fecha,";
    if (cargo)
        sql += "CAST(x.Numero AS CHAR),d.CantidadCargo,d.Concepto,";
    else
        sql += std::string("CONCAT(d.Serie,d.Factura),") + detail::kTotalDocumento + ",CONCAT('" +
               t.palabra + "',d.Serie,d.Factura),";
    sql += "x.Clave,x.Saldo,x.Vencimiento,d.Id FROM " + detail::Ledger("cxc", f) + " JOIN " +
           t.tabla + " d ON d." + t.llave + "=x.Numero";
    const bool porCliente = !f.clasificacion.empty() || (cargo && !f.vendedor.empty());
    if (porCliente) sql += " JOIN clientes k ON k.Clave=x.Clave";
    sql += " WHERE x.Tipo='" + std::string(1, t.tipo) + "'";
    if (!f.clasificacion.empty()) sql += " AND k.Clasificacion=" + detail::Literal(f.clasificacion);
    // A charge has no seller of its own: it is the customer's.
    if (!f.vendedor.empty())
        sql += std::string(cargo ? " AND k.Vendedor=" : " AND d.Vendedor=") +
               detail::Literal(f.vendedor);
    if (!f.moneda.empty())
        sql +=
            std::string(cargo ? " AND d.IdMoneda=" : " AND d.Moneda=") + detail::Numero(f.moneda);
    return sql;
}

std::string RepAdmCxC::SqlAUnaFecha(const std::string& tabla, char tipo,
                                    const std::string& fechaSQL, const FiltrosCxC& f) {
    const char* documentos = tipo == 'R' ? "remisiones" : tipo == 'A' ? "apartados" : "facturas";
    const char* llave = tipo == 'R' ? "Remision" : tipo == 'A' ? "Apartado" : "Factura";
    const std::string id = std::string("Id") + llave;
    const char* palabra = tipo == 'R' ? "REMISION " : tipo == 'A' ? "APARTADO " : "FACTURA ";
    std::string sql =
        "INSERT INTO " + tabla + " (Fecha,Serie," + llave +
        ",Id,Cliente,Total,Saldo,Vence,Concepto) SELECT d.Fecha,d.Serie,d.Factura,"
        "d.Id,d.Cliente,d.Total,d.Saldo+IFNULL(p.Pagado,0),d.Vence,CONCAT('" +
        palabra + "',d.Serie,d.Factura) FROM " + documentos + " d LEFT JOIN (SELECT " + id +
        ",SUM(Cantidad) AS Pagado FROM anexopagosctes WHERE FechaAplicacion>'" + fechaSQL +
        "' AND " + id + "<>0 GROUP BY " + id + ") p ON p." + id + "=d.Id WHERE d.Fecha<='" +
        fechaSQL + "' AND (d.Saldo>=.01 OR (d.Saldo=0 AND p." + id + " IS NOT NULL))";
    sql += detail::RangoClave("d.Cliente", f);
    if (!f.vendedor.empty()) sql += " AND d.Vendedor=" + detail::Literal(f.vendedor);
    if (!f.moneda.empty()) sql += " AND d.Moneda=" + detail::Numero(f.moneda);
    return sql;
}

FiltrosCxC RepAdmCxC::Filtros() const {
    FiltrosCxC f;
    const bool aUnaFecha = Ctl("chkAunaFecha").Value != 0;
    f.desdeSQL = FechaSQL(0);
    if (!aUnaFecha) f.hastaSQL = FechaSQL(1);
    f.clave0 = toolkit::detail::Recorta(Ctl("txtDato", 0).Text);
    f.clave1 = toolkit::detail::Recorta(Ctl("txtDato", 1).Text);
    for (std::size_t i = 0; i < Tipos().size(); ++i) {
        const Control& c = Ctl("chkVentas", static_cast<std::int16_t>(i));
        if (c.Visible && c.Enabled && c.Value != 0) f.tipos.push_back(Tipos()[i].tipo);
    }
    f.vendedor = detail::Elegido(*this, 0);
    f.moneda = detail::Elegido(*this, 1);
    f.clasificacion = detail::Elegido(*this, 2);
    return f;
}

void RepAdmCxC::Imprimir() {
    Paso("armar las condiciones del reporte");
    const bool aUnaFecha = Ctl("chkAunaFecha").Value != 0;
    FiltrosCxC f = Filtros();

    const std::string tabla = ClonaTabla("cxc", true);
    if (session::HuboError()) return;
    for (const auto& t : Tipos()) {
        if (std::find(f.tipos.begin(), f.tipos.end(), t.tipo) == f.tipos.end()) continue;
        Paso("llenar la tabla de trabajo " + tabla + " con " + t.tabla);
        if (aUnaFecha) {
            FiltrosCxC sinFechas = f;
            sinFechas.desdeSQL.clear();
            Llena(SqlAUnaFecha(tabla, t.tipo, f.desdeSQL, sinFechas));
        } else {
            Llena(SqlLlenado(tabla, t, f));
        }
    }

    const auto& lib = detail::LibCxC();
    PasaGenerales({
        {"Titulo", host::Valor("Cuentas por cobrar")},
        {"ParaLasFechas", host::Valor(aUnaFecha ? "Saldos al " + lib.FechaCompleta(Fecha(0))
                                                : detail::TextoVencimientos(Fecha(0), Fecha(1)))},
        {"Filtros", host::Valor(detail::TextoFiltros(*this, f, "Cliente", "Clientes"))},
    });
    auto& sol = session::solicitud();
    sol.Plantilla = "cxcnvo.rpt";
    sol.MapeaTabla("cxc", tabla);
    Ejecuta();
}

// --- Payables ---------------------------------------------------------------------------

RepAdmCxP::RepAdmCxP() : FormaReporte("RepAdmCxP", "Cuentas por pagar") {
    Agrega("lblFecha", 0, "Vencen desde:");
    AgregaFecha("mkeFecha", 0);
    Agrega("lblFecha", 1, "Hasta:");
    AgregaFecha("mkeFecha", 1);
    Agrega("txtDato", 0, "Del proveedor");
    Agrega("lblDato", 0);
    Agrega("txtDato", 1, "Al proveedor");
    Agrega("lblDato", 1);
    const char* tipos[] = {"Compras", "Cargos", "Compras sin factura"};
    for (std::int16_t i = 0; i < 3; ++i) Agrega("chkVentas", i, tipos[i]).Value = 1;
    detail::AgregaLista(*this, 1, "Moneda:", "Moneda");
    detail::AgregaLista(*this, 2, "Clasificación:", "Clasificación");
}

const std::vector<TipoDocumento>& RepAdmCxP::Tipos() {
    static const std::vector<TipoDocumento> tipos = {
        {'M', "compras", "Compra", "Compra", "Id", "COMPRA "},
        {'C', "edoctaprov", "Folio", "Cargo", "IdCargo", ""},
        {'N', "comprasnd", "Compra", "Compra", "Id", "COMPRA ND "},
    };
    return tipos;
}

void RepAdmCxP::EnlazaCombos() {
    const auto& cn = ConexionEmpresa();
    EnlazaCombo(Ctl("dcmDato", 1), "monedas ORDER BY Abreviacion", "Abreviacion", "Id");
    EnlazaCombo(Ctl("dcmDato", 2), "clasificaprov ORDER BY Clasificacion", "Clasificacion",
                "Clasificacion");
    detail::MuestraLista(*this, 1, session::LeerConfigBool(cn, "MultiMoneda"));
    detail::MuestraLista(*this, 2, session::LeerConfigBool(cn, "ClasificaProv"));
}

void RepAdmCxP::AlSalir(Control& c) {
    if (c.Nombre != "txtDato" || c.Indice < 0 || c.Indice > 1) return;
    Ctl("lblDato", c.Indice).Caption =
        NombreDeCuenta(ConexionEmpresa(), false, toolkit::detail::Recorta(c.Text));
}

std::string RepAdmCxP::SqlLlenado(const std::string& tabla, const TipoDocumento& t,
                                  const FiltrosCxC& f) {
    const bool cargo = t.tipo == 'C';
    std::string sql = "INSERT INTO " + tabla + " (Fecha," + t.campo +
                      ",Total,Concepto,Proveedor,Saldo,Vence," + t.campoId + ") SELECT d.Fecha,";
    if (cargo)
        sql +=
            "CAST(x.Numero AS CHAR),d.CantidadCargo,d.Concepto,x.Clave,x.Saldo,x.Vencimiento,d.Id";
    else
        sql += std::string("CAST(d.Compra AS CHAR),d.Subtotal+d.IVA+d.ImpuestoAd,CONCAT('") +
               t.palabra + "',d.Factura),x.Clave,x.Saldo,x.Vencimiento,d.Compra";
    sql += " FROM " + detail::Ledger("cxp", f) + " JOIN " + t.tabla + " d ON d." + t.llave +
           "=x.Numero";
    if (!f.clasificacion.empty()) sql += " JOIN proveedores k ON k.Clave=x.Clave";
    sql += " WHERE x.Tipo='" + std::string(1, t.tipo) + "'";
    if (!f.clasificacion.empty()) sql += " AND k.Clasificacion=" + detail::Literal(f.clasificacion);
    if (!f.moneda.empty())
        sql +=
            std::string(cargo ? " AND d.IdMoneda=" : " AND d.Moneda=") + detail::Numero(f.moneda);
    return sql;
}

FiltrosCxC RepAdmCxP::Filtros() const {
    FiltrosCxC f;
    f.desdeSQL = FechaSQL(0);
    f.hastaSQL = FechaSQL(1);
    f.clave0 = toolkit::detail::Recorta(Ctl("txtDato", 0).Text);
    f.clave1 = toolkit::detail::Recorta(Ctl("txtDato", 1).Text);
    for (std::size_t i = 0; i < Tipos().size(); ++i) {
        const Control& c = Ctl("chkVentas", static_cast<std::int16_t>(i));
        if (c.Visible && c.Value != 0) f.tipos.push_back(Tipos()[i].tipo);
    }
    f.moneda = detail::Elegido(*this, 1);
    f.clasificacion = detail::Elegido(*this, 2);
    return f;
}

void RepAdmCxP::Imprimir() {
    Paso("armar las condiciones del reporte");
    const FiltrosCxC f = Filtros();
    const std::string tabla = ClonaTabla("cxp", true);
    if (session::HuboError()) return;
    for (const auto& t : Tipos()) {
        if (std::find(f.tipos.begin(), f.tipos.end(), t.tipo) == f.tipos.end()) continue;
        Paso("llenar la tabla de trabajo " + tabla + " con " + t.tabla);
        Llena(SqlLlenado(tabla, t, f));
    }
    PasaGenerales({
        {"Titulo", host::Valor("Cuentas por pagar")},
        {"ParaLasFechas", host::Valor(detail::TextoVencimientos(Fecha(0), Fecha(1)))},
        {"Filtros", host::Valor(detail::TextoFiltros(*this, f, "Proveedor", "Proveedores"))},
    });
    auto& sol = session::solicitud();
    sol.Plantilla = "cxpnvo.rpt";
    sol.MapeaTabla("cxp", tabla);
    Ejecuta();
}

}  // namespace paratzorep::reports
