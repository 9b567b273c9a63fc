#include "reports/accounts/RepAdmCobRecibos.h"

#include "session/Sesion.h"
#include "session/Solicitud.h"
#include "session/SuModulo.h"

namespace paratzorep::reports {

RepAdmCobRecibos::RepAdmCobRecibos() : FormaCobranza("RepAdmCobRecibos", "Recibos cobrados") {
    Agrega("lblFecha", 0, "Del día:");
    AgregaFecha("mkeFecha", 0);
    Agrega("lblFecha", 1, "Al día:");
    AgregaFecha("mkeFecha", 1);
    Agrega("lblDato", 0, "Del cliente:");
    Agrega("txtDato", 0, "Cliente inicial");
    Agrega("lblNombre", 0);
    Agrega("lblDato", 1, "Al cliente:");
    Agrega("txtDato", 1, "Cliente final");
    Agrega("lblNombre", 1);
}

void RepAdmCobRecibos::AlSalir(Control& c) {
    if (c.Nombre == "txtDato")
        Ctl("lblNombre", c.Indice).Caption = NombreDe("clientes", Clave(c.Indice));
}

std::string RepAdmCobRecibos::FuenteRecibos(const std::string& desdeSQL,
                                            const std::string& hastaSQL) {
    const auto& lib = detail::LibCobranza();
    std::string w;
    if (!desdeSQL.empty()) w = lib.SumaWhereAnd(w, session::LlenaXXX("Fecha>='XXX'", desdeSQL));
    if (!hastaSQL.empty()) w = lib.SumaWhereAnd(w, session::LlenaXXX("Fecha<='XXX'", hastaSQL));
    return "recibos" + w + " ORDER BY Recibo";
}

std::string RepAdmCobRecibos::SqlLlenado(const std::string& tabla, const std::string& desdeSQL,
                                         const std::string& hastaSQL, const std::string& claveDesde,
                                         const std::string& claveHasta) {
    const auto& lib = detail::LibCobranza();
    std::string w;
    // A receipt without its payment has an empty key: outside any range typed.
    for (const auto& c : RangoClaves("IFNULL(e.Clave,'')='XXX'", "IFNULL(e.Clave,'')>='XXX'",
                                     "IFNULL(e.Clave,'')<='XXX'", claveDesde, claveHasta))
        w = lib.SumaWhereAnd(w, c);
    return "INSERT INTO " + tabla +
           " (Recibo,IdPago,Fecha,Concepto,Cantidad,Cliente,Nombre) SELECT r.Recibo,r.IdPago,"
           "r.Fecha,IF(r.Cancelado<>0 OR e.Id IS NULL,'CANCELADO',e.Concepto),"
           "IFNULL(e.CantidadPago,0),IFNULL(e.Clave,''),IFNULL(c.Nombre,'') FROM (SELECT * FROM " +
           FuenteRecibos(desdeSQL, hastaSQL) +
           ") r LEFT JOIN edoctacli e ON e.Id=r.IdPago LEFT JOIN clientes c ON c.Clave=e.Clave" +
           w + " ORDER BY r.Recibo,r.Id";
}

void RepAdmCobRecibos::Imprimir() {
    Paso("armar las condiciones del reporte");
    const std::string desde = Clave(0), hasta = Clave(1);

    const std::string tabla = ClonaTabla("recibos", true);
    if (session::HuboError()) return;

    Paso("llenar la tabla de trabajo " + tabla + " con los recibos");
    Llena(SqlLlenado(tabla, FechaSQL(0), FechaSQL(1), desde, hasta));

    std::string encabezado = Encabezado(Caption, Fecha(0), Fecha(1));
    if (!desde.empty() || !hasta.empty()) {
        encabezado += !desde.empty() && !hasta.empty()
                          ? ", clientes del " + desde + " al " + hasta
                          : ", cliente " + (desde.empty() ? hasta : desde);
    }
    EscribeEncabezado(encabezado);

    auto& sol = session::solicitud();
    sol.Plantilla = "recibos.rpt";
    sol.MapeaTabla("recibos", tabla);
    Ejecuta();
}

}  // namespace paratzorep::reports
