#include "reports/inventory/BuscaClave.h"

#include "reports/Marco.h"
#include "session/Sesion.h"

namespace paratzorep::reports::detail {

std::string DatoDeClave(const host::Conexion& cn, const std::string& tabla,
                        const std::string& campo, const std::string& clave) {
    const auto& bd = session::sesion().BaseDD;
    if (clave.empty() || RompeLiteral(clave) || !cn || !bd) return {};
    try {
        host::Recordset rs;
        if (bd->AbrirTabla(rs, cn, tabla + " WHERE Clave='" + clave + "' LIMIT 1") &&
            rs.RecordCount() > 0) {
            rs.MoveFirst();
            return rs.Campo(campo).Texto();
        }
    } catch (const std::exception&) {
        // An unknown key or a failed look-up leaves the label empty; printing reports the server.
    }
    return {};
}

}  // namespace paratzorep::reports::detail
