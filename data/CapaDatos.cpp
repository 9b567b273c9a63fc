#include "data/CapaDatos.h"

#include "data/ConexionInterna.h"
#include "session/Sesion.h"

namespace paratzorep::data {

host::BaseDD* CapaDatos::Base() const {
    return base_ ? base_.get() : session::sesion().BaseDD.get();
}

void CapaDatos::AbrirConsulta(host::Recordset& rs, const std::string& fuente, std::int32_t opcion,
                              std::string& baseDatos, std::uint8_t& resultado) {
    host::BaseDD* base = Base();
    if (base == nullptr) {
        resultado = 1;
        return;
    }
    if (baseDatos.empty()) baseDatos = base->cMiBase;
    host::Conexion cn;
    try {
        if (!base->AbrirBdD(cn, baseDatos)) {
            resultado = 1;
        } else if (!base->AbrirTabla(rs, cn, fuente, opcion)) {
            resultado = 2;
        } else {
            base->DesactivaConexion(rs);
            resultado = 0;
        }
    } catch (const std::exception&) {
        // Only the result code reports a failure.
        resultado = cn ? 2 : 1;
    }
    try {
        base->CierraBdD(cn);
    } catch (const std::exception&) {
        // The connection is released with `cn` anyway.
    }
}

std::string CapaDatos::SqlBuscarXclave(const std::string& select, const std::string& columna,
                                       const std::string& valor, std::string sufijo) {
    if (!sufijo.empty() && sufijo.front() != ' ') sufijo.insert(0, " ");
    return select + " WHERE " + columna + detail::ReemplazaTodo("='XXX'", "XXX", valor) + sufijo;
}

void CapaDatos::BuscarXclave(const std::string& select, const std::string& columna,
                             const std::string& valor, std::int32_t modo, host::Recordset& rs,
                             const host::Conexion& cn, bool bandera, std::string sufijo,
                             bool& encontrado) {
    encontrado = false;
    host::BaseDD* base = Base();
    if (base == nullptr) return;
    try {
        encontrado = base->AbrirTabla(
            rs, cn, SqlBuscarXclave(select, columna, valor, std::move(sufijo)), modo, bandera);
    } catch (const std::exception&) {
        encontrado = false;
    }
}

}  // namespace paratzorep::data
