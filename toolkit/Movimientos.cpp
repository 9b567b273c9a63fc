#include "toolkit/Movimientos.h"

#include "toolkit/Texto.h"

namespace paratzorep::toolkit {

std::int64_t Movimientos::Foliar(const host::Conexion& cn, const std::string& tabla,
                                 const std::string& campoFolio, const std::string& serie,
                                 const std::string& campoSerie) const {
    std::string sql = "SELECT IFNULL(MAX(" + campoFolio + "),0)+1 AS Folio FROM " + tabla;
    if (!serie.empty() && !campoSerie.empty()) {
        sql += " WHERE " + campoSerie + "='" + detail::EscapaSQL(serie) + "'";
    }
    if (!BaseDD) throw host::ErrorDatos("Foliar " + tabla, sql, 0, "No hay objeto de datos");
    host::Recordset rs;
    if (!BaseDD->RstExecutar(rs, cn, sql)) {
        throw host::ErrorDatos("Foliar " + tabla, sql, 0, BaseDD->UltimoError());
    }
    if (rs.RecordCount() == 0) return 1;
    rs.MoveFirst();
    return rs.Campo(std::size_t{0}).Entero();
}

}  // namespace paratzorep::toolkit
