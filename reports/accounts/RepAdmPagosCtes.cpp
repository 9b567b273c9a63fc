#include "reports/accounts/RepAdmPagosCtes.h"

#include <algorithm>

#include "session/Sesion.h"
#include "session/Solicitud.h"
#include "session/SuModulo.h"

namespace paratzorep::reports {

namespace {

// "Desglose de cheques, por pagos de clientes": the breakdown's heading.
const char* kEncabezadoCheques = "Desglose de cheques, por pagos de clientes";

// Adds a condition to an SQL text with " and ".
void Y(std::string& w, const std::string& condicion) {
    w += " and " + condicion;
}

}  // namespace

RepAdmPagosCtes::RepAdmPagosCtes() : FormaCobranza("RepAdmPagosCtes", "Pagos de clientes") {
    Agrega("lblFecha", 0, "Del día:");
    AgregaFecha("mkeFecha", 0);
    Agrega("lblFecha", 1, "Al día:");
    AgregaFecha("mkeFecha", 1);
    Agrega("lblFecha", 2, "Pagados del día:");
    AgregaFecha("mkeFecha", 2);
    Agrega("lblFecha", 3, "Al día:");
    AgregaFecha("mkeFecha", 3);
    Agrega("lblDato", 0, "Del cliente:");
    Agrega("txtDato", 0, "Cliente inicial");
    Agrega("lblNombre", 0);
    Agrega("lblDato", 1, "Al cliente:");
    Agrega("txtDato", 1, "Cliente final");
    Agrega("lblNombre", 1);
    Agrega("lblUsuario", -1, "Usuario:");
    Agrega("txtDato", 2, "Usuario");
    Agrega("lblVendedor", -1, "Vendedor:");
    Agrega("dcmDato", 0, "Vendedor");
    Agrega("lblMoneda", -1, "Moneda:");
    Agrega("dcmDato", 1, "Moneda");
    Agrega("lblTipo", -1, "Documentos:");
    Agrega("cmbDato", 0, "Documentos");
    Agrega("lblVariante", -1, "Reporte:");
    Agrega("cmbDato", 1, "Reporte");
    AgregaOrden(2, "Cliente");
    Agrega("chkCancelaciones", -1, "Incluir bonificaciones por cancelación");
    Agrega("chkDevoluc", -1, "Incluir devoluciones de clientes");
    Agrega("chkNdeC", -1, "Incluir notas de crédito");
    Agrega("chkRecibos", -1, "Recibos faltantes");
    Agrega("chkPagosNI", -1, "Solo pagos no asignados a un cliente");
    Agrega("chkTimbrados", -1, "Recibos timbrados");
    Agrega("chkDesglosarCxCs", -1, "Desglosar los documentos pagados");
}

void RepAdmPagosCtes::EnlazaCombos() {
    const auto& cn = ConexionEmpresa();
    auto ajuste = [&](const char* dato) { return session::LeerConfigBool(cn, dato); };
    EnlazaMonedas(1);
    const bool vendedores = ajuste("Vendedores");
    Ctl("lblVendedor").Visible = vendedores;
    Ctl("dcmDato", 0).Visible = vendedores;
    if (vendedores)
        EnlazaCombo(Ctl("dcmDato", 0), "SELECT Clave,Nombre FROM vendedores ORDER BY Nombre",
                    "Nombre", "Clave");
    Control& tipo = Ctl("cmbDato", 0);
    tipo.Items = {"Todos", "Facturas"};
    if (ajuste("Remisiones")) tipo.Items.push_back("Remisiones");
    tipo.ListIndex = 0;
    Control& variante = Ctl("cmbDato", 1);
    variante.Items = {"Lista de pagos", "Pagos por cliente"};
    if (ajuste("ChequesEnPagos")) variante.Items.push_back("Desglose de cheques");
    variante.ListIndex = 0;
    const bool fdp = ajuste("FDPenPagosCtes");
    for (std::int16_t i = 2; i <= 3; ++i) {
        Ctl("lblFecha", i).Visible = fdp;
        Ctl("mkeFecha", i).Visible = fdp;
        // The payment dates start as the entry dates: the whole period.
        Ctl("mkeFecha", i).Text = Ctl("mkeFecha", i - 2).Text;
    }
    Ctl("chkNdeC").Visible = ajuste("NotasCredito");
    Ctl("chkRecibos").Visible = ajuste("ImpReciboEnPagos");
    Ctl("chkPagosNI").Visible = ajuste("PagosSinDefinir");
    cfdi_ = ajuste("CFDI3.3");
    Ctl("chkTimbrados").Visible = cfdi_;
}

void RepAdmPagosCtes::AlSalir(Control& c) {
    if (c.Nombre == "txtDato" && c.Indice <= 1)
        Ctl("lblNombre", c.Indice).Caption = NombreDe("clientes", Clave(c.Indice));
}

std::string RepAdmPagosCtes::FormulaSeleccion(const FiltrosPagos& f) {
    auto une = [](std::string& a, const std::string& c) { a = session::UneCondicion(a, c); };
    std::string s = "{edoctacli.CantidadPago}>0";
    if (!f.cancelaciones) une(s, "not ('BONIFICACION POR CANCELACION' in {edoctacli.Concepto})");
    if (!f.devoluciones) une(s, "not ('DEVOLUCION CTES. ' in {edoctacli.Concepto})");
    une(s, "not ('ABONO AUTOMATICO A CXC' in {edoctacli.Concepto})");
    if (!f.moneda.empty()) une(s, "{edoctacli.IdMoneda}=" + f.moneda);
    if (!f.desde.empty()) une(s, "{edoctacli.Fecha}>=" + session::FechaFormula(f.desde));
    if (!f.hasta.empty()) une(s, "{edoctacli.Fecha}<=" + session::FechaFormula(f.hasta));
    if (!f.pagoDesde.empty())
        une(s, "{edoctacli.FechaDePago}>=" + session::FechaFormula(f.pagoDesde));
    if (!f.pagoHasta.empty())
        une(s, "{edoctacli.FechaDePago}<=" + session::FechaFormula(f.pagoHasta));
    if (f.notasVisibles && !f.notas) une(s, "{edoctacli.NotaCredito}=0");
    for (const auto& c : RangoClaves("{edoctacli.Clave}='XXX'", "{edoctacli.Clave}>='XXX'",
                                     "{edoctacli.Clave}<='XXX'", f.claveDesde, f.claveHasta))
        une(s, c);
    if (!f.usuario.empty()) une(s, session::LlenaXXX("{edoctacli.Usuario}='XXX'", f.usuario));
    if (f.tipo == 1) une(s, "{anexopagosctes.Factura}<>0");
    if (f.tipo == 2) une(s, "{anexopagosctes.Remision}<>0");
    // Payments that no customer was assigned are listed only when asked for.
    if (f.sinCliente)
        une(s, "{edoctacli.Clave}=''");
    else if (f.pagosNIVisibles)
        une(s, "{edoctacli.Clave}<>''");
    return s;
}

std::string RepAdmPagosCtes::SqlCopia(const std::string& tabla, const FiltrosPagos& f) {
    const auto& lib = detail::LibCobranza();
    static const char* columnas =
        "edoctacli.Id,edoctacli.Folio,edoctacli.Foliote,edoctacli.Movimiento,edoctacli.Fecha,"
        "edoctacli.Hora,edoctacli.FechaDePago,edoctacli.Clave,edoctacli.CantidadCargo,"
        "edoctacli.CantidadPago,edoctacli.Concepto,edoctacli.Concepto2,edoctacli.Concepto3,"
        "edoctacli.Usuario,edoctacli.MontoTotal,edoctacli.MonedaMT,edoctacli.IdMoneda,"
        "edoctacli.Moneda,edoctacli.NotaCredito,edoctacli.SaldoAnterior,edoctacli.SaldoActual";
    std::string sql = session::LlenaXXX("INSERT INTO XXX ", tabla) + "SELECT " + columnas +
                      " FROM edoctacli LEFT JOIN clientes on edoctacli.Clave=clientes.Clave";
    if (f.tipo != 0)
        sql += " LEFT JOIN anexopagosctes on edoctacli.Folio=anexopagosctes.FolioDelPago";
    sql += " WHERE ";
    if (!f.vendedor.empty()) sql += "Clientes.Vendedor='" + f.vendedor + "' and ";
    sql += "edoctacli.CantidadPago>0";
    if (!f.devoluciones) Y(sql, "not edoctacli.Concepto like '%DEVOLUCION CTES. %'");
    Y(sql, "not edoctacli.Concepto like '%ABONO AUTOMATICO A CXC%'");
    if (!f.moneda.empty()) Y(sql, "edoctacli.IdMoneda=" + f.moneda);
    if (!f.desde.empty())
        Y(sql, session::LlenaXXX("edoctacli.Fecha>='XXX'", lib.FechaSQL(f.desde)));
    if (!f.hasta.empty())
        Y(sql, session::LlenaXXX("edoctacli.Fecha<='XXX'", lib.FechaSQL(f.hasta)));
    if (f.notasVisibles && !f.notas) Y(sql, "edoctacli.NotaCredito=0");
    for (const auto& c : RangoClaves("edoctacli.Clave='XXX'", "edoctacli.Clave>='XXX'",
                                     "edoctacli.Clave<='XXX'", f.claveDesde, f.claveHasta))
        Y(sql, c);
    if (f.tipo == 1) Y(sql, "anexopagosctes.Factura<>0");
    if (f.tipo == 2) Y(sql, "anexopagosctes.Remision<>0");
    return sql + " GROUP BY edoctacli.Id";
}

std::string RepAdmPagosCtes::FuenteCheques(const FiltrosPagos& f) {
    const auto& lib = detail::LibCobranza();
    std::string w = lib.SumaWhereAnd("", "CantidadPago>0");
    if (!f.devoluciones) w = lib.SumaWhereAnd(w, "not (Concepto like 'DEVOLUCION CTES. %')");
    if (!f.moneda.empty()) w = lib.SumaWhereAnd(w, "IdMoneda=" + f.moneda);
    if (!f.desde.empty())
        w = lib.SumaWhereAnd(w, session::LlenaXXX("Fecha>='XXX'", lib.FechaSQL(f.desde)));
    if (!f.hasta.empty())
        w = lib.SumaWhereAnd(w, session::LlenaXXX("Fecha<='XXX'", lib.FechaSQL(f.hasta)));
    if (f.notasVisibles && !f.notas) w = lib.SumaWhereAnd(w, "NotaCredito=0");
    for (const auto& c :
         RangoClaves("Clave='XXX'", "Clave>='XXX'", "Clave<='XXX'", f.claveDesde, f.claveHasta))
        w = lib.SumaWhereAnd(w, c);
    return "edoctacli" + w;
}

std::string RepAdmPagosCtes::SqlCheques(const std::string& tabla, const FiltrosPagos& f) {
    // Each application of each payment, once per means of payment it used.
    const std::string cantidad =
        "CASE m.Orden WHEN 1 THEN a.Efectivo WHEN 2 THEN a.ChequeCuenta ELSE a.ChequeOtra END";
    std::string tipo;
    if (f.tipo == 1) tipo = " and a.Factura<>0";
    if (f.tipo == 2) tipo = " and a.Remision<>0";
    return "INSERT INTO " + tabla +
           " (Fecha,Tipo,Cantidad,Clave,Folio,Concepto) SELECT e.Fecha,m.Tipo," + cantidad +
           ",e.Clave,e.Folio,e.Concepto FROM (SELECT * FROM " + FuenteCheques(f) +
           ") e JOIN anexopagosctes a ON a.FolioDelPago=e.Folio" + tipo +
           " JOIN (SELECT 1 AS Orden,'EFECTIVO' AS Tipo UNION ALL SELECT 2,'CHEQUE DE CASA' "
           "UNION ALL SELECT 3,'OTROS BANCOS') m WHERE " +
           cantidad + "<>0 ORDER BY e.Id,a.Id,m.Orden";
}

std::string RepAdmPagosCtes::FuentePrimerPago(const std::string& desdeSQL) {
    return "edoctacli WHERE CantidadPago>0 and Fecha>='" + desdeSQL + "' ORDER BY Id LIMIT 1";
}

std::string RepAdmPagosCtes::FuenteUltimoPago(const std::string& hastaSQL) {
    return "edoctacli WHERE CantidadPago>0 and Fecha<='" + hastaSQL + "' ORDER BY Id DESC LIMIT 1";
}

std::string RepAdmPagosCtes::SqlRecibosFaltantes(const std::string& tabla,
                                                 const std::string& primero,
                                                 const std::string& ultimo,
                                                 const std::string& desdeSQL,
                                                 const std::string& hastaSQL) {
    // The first receipt of each payment between the two; the receipt's date as "dd/mmm/yyyy".
    return "INSERT INTO " + tabla +
           " (Recibo,IdPago,Fecha,Motivo) SELECT IFNULL(r.Recibo,0),e.Id,e.Fecha,IF(r.Id IS "
           "NULL,'No existe el recibo',CONCAT('Recibo fuera de rango (',DATE_FORMAT(r.Fecha,"
           "'%d/'),ELT(MONTH(r.Fecha),'ene','feb','mar','abr','may','jun','jul','ago','sep',"
           "'oct','nov','dic'),DATE_FORMAT(r.Fecha,'/%Y'),')')) FROM (SELECT Id,Fecha FROM "
           "edoctacli WHERE Id>=" +
           primero + " and Id<=" + ultimo +
           " and CantidadPago>0) e LEFT JOIN recibos r ON r.Id=(SELECT MIN(x.Id) FROM recibos x "
           "WHERE x.IdPago=e.Id) WHERE r.Id IS NULL OR r.Fecha<'" +
           desdeSQL + "' OR r.Fecha>'" + hastaSQL + "' ORDER BY e.Id";
}

std::string RepAdmPagosCtes::Plantilla(bool timbrados, int variante, bool desglosar, bool cfdi) {
    if (timbrados) return "RepAdmTimbres.rpt";
    if (variante == kCheques) return "pagosctes3.rpt";
    if (variante == kPorCliente) return "pagosctes2.rpt";
    if (!desglosar) return "pagosctes4.rpt";
    return cfdi ? "pagosctescfdi.rpt" : "pagosctes.rpt";
}

bool RepAdmPagosCtes::Marcada(const std::string& casilla) const {
    const Control& c = Ctl(casilla);
    return c.Visible && c.Value != 0;
}

FiltrosPagos RepAdmPagosCtes::Filtros() const {
    FiltrosPagos f;
    f.desde = Fecha(0);
    f.hasta = Fecha(1);
    if (Ctl("mkeFecha", 2).Visible) {
        f.pagoDesde = Fecha(2);
        f.pagoHasta = Fecha(3);
    }
    f.claveDesde = Clave(0);
    f.claveHasta = Clave(1);
    f.usuario = Clave(2);
    f.moneda = MonedaElegida(1);
    const Control& vendedor = Ctl("dcmDato", 0);
    if (vendedor.Visible) f.vendedor = vendedor.BoundText;
    if (detail::RompeLiteral(f.vendedor))
        throw ErrorPaso("leer el vendedor elegido",
                        "El vendedor elegido ('" + f.vendedor + "') no es válido.");
    f.tipo = std::max<int>(0, Ctl("cmbDato", 0).ListIndex);
    f.orden = std::max<int>(0, Ctl("cmbDato", 2).ListIndex);
    f.cancelaciones = Ctl("chkCancelaciones").Value != 0;
    f.devoluciones = Ctl("chkDevoluc").Value != 0;
    f.notasVisibles = Ctl("chkNdeC").Visible;
    f.notas = Ctl("chkNdeC").Value != 0;
    f.pagosNIVisibles = Ctl("chkPagosNI").Visible;
    f.sinCliente = Marcada("chkPagosNI");
    return f;
}

void RepAdmPagosCtes::Imprimir() {
    Paso("armar las condiciones del reporte");
    if (Marcada("chkRecibos")) return ImprimeRecibosFaltantes();
    const FiltrosPagos f = Filtros();
    const int variante = Ctl("cmbDato", 1).ListIndex;
    if (variante == kCheques) return ImprimeCheques(f);

    auto& sol = session::solicitud();
    sol.Plantilla =
        Plantilla(Marcada("chkTimbrados"), variante, Ctl("chkDesglosarCxCs").Value != 0, cfdi_);
    // Only the breakdown by documents reads the applications; the other lists show each
    // payment once, so a kind of document is applied when copying them.
    const bool unaLinea = sol.Plantilla != "pagosctes.rpt" && sol.Plantilla != "pagosctescfdi.rpt";
    FiltrosPagos formula = f;
    if (!f.vendedor.empty() || (unaLinea && f.tipo != 0)) {
        const std::string tabla = ClonaTabla("edoctacli", true);
        if (session::HuboError()) return;
        Paso("copiar los pagos de los clientes a la tabla de trabajo " + tabla);
        Llena(SqlCopia(tabla, f));
        sol.MapeaTabla("edoctacli", tabla);
        if (unaLinea) formula.tipo = 0;
    }
    std::string encabezado = Encabezado(Caption, f.desde, f.hasta);
    if (!f.vendedor.empty()) encabezado += ". Vendedor: " + Ctl("dcmDato", 0).Elegido();
    EscribeEncabezado(encabezado);
    sol.FormulaSeleccion = FormulaSeleccion(formula);
    sol.SortField(0, OrdenPagos("edoctacli", f.orden));
    Ejecuta();
}

void RepAdmPagosCtes::ImprimeCheques(const FiltrosPagos& f) {
    const std::string tabla = ClonaTabla("cheques", true);
    if (session::HuboError()) return;
    Paso("llenar la tabla de trabajo " + tabla + " con el desglose de los pagos");
    Llena(SqlCheques(tabla, f));
    EscribeEncabezado(kEncabezadoCheques);
    auto& sol = session::solicitud();
    sol.Plantilla = "pagosctes3.rpt";
    sol.MapeaTabla("cheques", tabla);
    Ejecuta();
}

void RepAdmPagosCtes::ImprimeRecibosFaltantes() {
    // An open end of the period reaches the first or last date on file.
    const std::string desde = Fecha(0).empty() ? "0000-00-00" : FechaSQL(0);
    const std::string hasta = Fecha(1).empty() ? "9999-12-31" : FechaSQL(1);
    Paso("buscar el primer y el último pago del periodo");
    auto& bd = *session::sesion().BaseDD;
    auto id = [&](const std::string& fuente) -> std::string {
        host::Recordset rs;
        if (!bd.AbrirTabla(rs, ConexionEmpresa(), fuente))
            throw ErrorPaso("buscar los pagos del periodo", bd.UltimoError());
        if (rs.RecordCount() == 0) return {};
        rs.MoveFirst();
        return rs.Campo("Id").Texto();
    };
    std::string primero = id(FuentePrimerPago(desde)), ultimo = id(FuenteUltimoPago(hasta));
    // No payment in the range: nothing between.
    if (primero.empty() || ultimo.empty()) primero = "1", ultimo = "0";

    const std::string tabla = ClonaTabla("recibosfaltantes", true);
    if (session::HuboError()) return;
    Paso("llenar la tabla de trabajo " + tabla + " con los recibos faltantes");
    Llena(SqlRecibosFaltantes(tabla, primero, ultimo, desde, hasta));
    EscribeEncabezado(Encabezado("Recibos faltantes de pagos de clientes", Fecha(0), Fecha(1)));
    auto& sol = session::solicitud();
    sol.Plantilla = "recibosfaltantes.rpt";
    sol.MapeaTabla("recibosfaltantes", tabla);
    Ejecuta();
}

}  // namespace paratzorep::reports
