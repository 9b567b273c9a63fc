#include "reports/accounts/SaldosAlaFecha.h"

#include <ctime>

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

std::string Hoy() {
    const std::time_t t = std::time(nullptr);
    std::tm tm{};
    localtime_r(&t, &tm);
    char texto[16];
    std::strftime(texto, sizeof texto, "%d/%m/%Y", &tm);
    return texto;
}

// The cancelled document named by a cancellation's concept: from "FACTURA " or "REMISION " to
// the end ("BONIFICACION POR CANCELACION DE FACTURA A12" gives "FACTURA A12").
std::string DocumentoCancelado(const std::string& columna) {
    return "SUBSTRING(" + columna + ",IF(LOCATE('FACTURA '," + columna + ")>0,LOCATE('FACTURA '," +
           columna + "),LOCATE('REMISION '," + columna + ")))";
}

}  // namespace

const LadoSaldos& FormaSaldosAlaFecha::Clientes() {
    static const LadoSaldos lado{"clientes",      "saldoscli",     "edoctacli",
                                 "clasificactes", "ClasificaCtes", "salf.rpt"};
    return lado;
}

const LadoSaldos& FormaSaldosAlaFecha::Proveedores() {
    static const LadoSaldos lado{"proveedores",   "saldospro",     "edoctaprov",
                                 "clasificaprov", "ClasificaProv", "salfp.rpt"};
    return lado;
}

FormaSaldosAlaFecha::FormaSaldosAlaFecha(std::string nombre, std::string caption,
                                         const LadoSaldos& lado)
    : FormaReporte(std::move(nombre), std::move(caption)), lado_(lado) {
    const bool clientes = &lado == &Clientes();
    Agrega("lblFecha", 0, "Saldos al día:");
    AgregaFecha("mkeFecha", 0).Text = Hoy();
    Agrega("lblDato", 0, clientes ? "Del cliente:" : "Del proveedor:");
    Agrega("txtDato", 0, clientes ? "Cliente inicial" : "Proveedor inicial");
    Agrega("lblDato", 1, clientes ? "Al cliente:" : "Al proveedor:");
    Agrega("txtDato", 1, clientes ? "Cliente final" : "Proveedor final");
    Agrega("lblClasificacion", -1, "Clasificación:");
    Agrega("dcmDato", 0, "Clasificación");
    Agrega("lblMoneda", -1, "Moneda:");
    Agrega("dcmDato", 1, "Moneda");
    Agrega("chkIgnorar", -1, "Ignorar ventas canceladas");
}

void FormaSaldosAlaFecha::EnlazaCombos() {
    const auto& cn = ConexionEmpresa();
    const bool clasifica = session::LeerConfigBool(cn, lado_.ajusteClasifica);
    const bool monedas = session::LeerConfigBool(cn, "MultiMoneda");
    for (const char* nombre : {"lblClasificacion", "dcmDato"}) {
        Ctl(nombre, std::string(nombre) == "dcmDato" ? 0 : -1).Visible = clasifica;
    }
    Ctl("lblMoneda").Visible = monedas;
    Ctl("dcmDato", 1).Visible = monedas;
    if (clasifica) {
        EnlazaCombo(Ctl("dcmDato", 0),
                    std::string("SELECT Clasificacion FROM ") + lado_.clasificaciones +
                        " ORDER BY Clasificacion",
                    "Clasificacion", "Clasificacion");
    }
    if (monedas) {
        EnlazaCombo(Ctl("dcmDato", 1), "SELECT Id,Abreviacion FROM monedas ORDER BY Abreviacion",
                    "Abreviacion", "Id");
    }
}

std::string FormaSaldosAlaFecha::FuenteCuentas(const LadoSaldos& lado, const std::string& desde,
                                               const std::string& hasta,
                                               const std::string& clasificacion) {
    const auto& lib = Lib();
    std::string w;
    if (desde.empty() != hasta.empty()) {
        w = lib.SumaWhereAnd(w, session::LlenaXXX("Clave='XXX'", desde.empty() ? hasta : desde));
    } else if (!desde.empty()) {
        w = lib.SumaWhereAnd(w, session::LlenaXXX("Clave>='XXX'", desde));
        w = lib.SumaWhereAnd(w, session::LlenaXXX("Clave<='XXX'", hasta));
    }
    if (!clasificacion.empty())
        w = lib.SumaWhereAnd(w, session::LlenaXXX("Clasificacion='XXX'", clasificacion));
    return lado.cuentas + w + " ORDER BY Clave";
}

std::string FormaSaldosAlaFecha::SqlLlenado(const LadoSaldos& lado, const std::string& tabla,
                                            const std::string& fuente, const std::string& fechaSQL,
                                            const std::string& moneda, bool ignorar) {
    const std::string ed = lado.edocta;
    auto desde = [&](const std::string& t) {
        return t + "Fecha>='" + fechaSQL + "' and " + t + "IdMoneda=" + moneda;
    };
    std::string cargos = "IFNULL(m.Cargos,0)", abonos = "IFNULL(m.Abonos,0)", ajuste;
    if (ignorar) {
        // Each cancellation with the first charge of its document, both on or after the date.
        cargos += "-IFNULL(x.Cargos,0)";
        abonos += "-IFNULL(x.Abonos,0)";
        ajuste =
            " LEFT JOIN (SELECT b.Clave,SUM(g.CantidadCargo) AS Cargos,SUM(b.CantidadPago) "
            "AS Abonos FROM " +
            ed + " b JOIN " + ed + " g ON g.Id=(SELECT h.Id FROM " + ed +
            " h WHERE h.Clave=b.Clave and " + desde("h.") +
            " and h.Concepto like CONCAT('CARGO POR '," + DocumentoCancelado("b.Concepto") +
            ",'%') ORDER BY h.Id LIMIT 1) WHERE " + desde("b.") +
            " and b.CantidadPago>0 and b.Concepto like '%BONIFICACION POR CANCELACION%' and "
            "(b.Concepto like '%FACTURA %' or b.Concepto like '%REMISION %') GROUP BY "
            "b.Clave) x ON x.Clave=c.Clave";
    }
    return "INSERT INTO " + tabla +
           " (clave,Nombre,Cargos,Abonos,SaldoActual) SELECT c.Clave,c.Nombre," + cargos + "," +
           abonos + ",IFNULL(s.Saldo,0)+(" + abonos + ")-(" + cargos +
           ") FROM (SELECT Clave,Nombre FROM " + fuente + ") c LEFT JOIN " + lado.saldos +
           " s ON s.Clave=c.Clave and s.IdMoneda=" + moneda +
           " LEFT JOIN (SELECT Clave,SUM(CantidadCargo) AS Cargos,SUM(CantidadPago) AS Abonos "
           "FROM " +
           ed + " WHERE " + desde("") + " GROUP BY Clave) m ON m.Clave=c.Clave" + ajuste +
           " ORDER BY c.Clave";
}

std::string FormaSaldosAlaFecha::FormulaMoneda(const std::string& fechaCompleta,
                                               const std::string& abreviacion) {
    std::string texto = session::LlenaXXX("Al día: XXX", fechaCompleta);
    if (!abreviacion.empty()) texto += ". Moneda: " + abreviacion;
    return "MONEDA='" + texto + "'";
}

void FormaSaldosAlaFecha::Imprimir() {
    Paso("armar las condiciones del reporte");
    auto texto = [&](std::int16_t i) { return toolkit::detail::Recorta(Ctl("txtDato", i).Text); };
    const Control& clasif = Ctl("dcmDato", 0);
    const Control& mon = Ctl("dcmDato", 1);
    const std::string clasificacion = clasif.Visible ? clasif.BoundText : "";
    const bool conMoneda = mon.Visible && !mon.BoundText.empty();
    const std::string moneda = conMoneda ? mon.BoundText : "1";
    if (moneda.find_first_not_of("0123456789") != std::string::npos)
        throw ErrorPaso("leer la moneda elegida",
                        "La moneda elegida ('" + moneda + "') no es válida.");
    const std::string fuente = FuenteCuentas(lado_, texto(0), texto(1), clasificacion);

    const std::string tabla = ClonaTabla("saldosalafecha", true);
    if (session::HuboError()) return;

    Paso("llenar la tabla de trabajo " + tabla + " con los saldos a la fecha");
    Llena(SqlLlenado(lado_, tabla, fuente, FechaSQL(0), moneda, Ctl("chkIgnorar").Value != 0));

    auto& sol = session::solicitud();
    sol.Plantilla = lado_.plantilla;
    sol.Formula(0, FormulaMoneda(Lib().FechaCompleta(Fecha(0)), conMoneda ? mon.Elegido() : ""));
    sol.MapeaTabla("saldosalafecha", tabla);
    Ejecuta();
}

}  // namespace paratzorep::reports
