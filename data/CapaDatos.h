// CapaDatos: the public query class. AbrirConsulta opens a disconnected result on a connection
// of its own; BuscarXclave opens a keyed look-up on the caller's connection.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "host/BaseDD.h"

namespace paratzorep::data {

class CapaDatos {
  public:
    // Works with the session's BaseDD.
    CapaDatos() = default;
    // Works with `base` instead of the session's.
    explicit CapaDatos(std::shared_ptr<host::BaseDD> base) : base_(std::move(base)) {}

    // Opens `fuente` on `baseDatos` (empty: BaseDD.cMiBase, written back) into `rs`, detached
    // from its connection, which is always closed again. `resultado`: 0 done, 1 the database
    // could not be opened, 2 the source could not be opened. Shows nothing, throws nothing.
    void AbrirConsulta(host::Recordset& rs, const std::string& fuente, std::int32_t opcion,
                       std::string& baseDatos, std::uint8_t& resultado);

    // Opens select + " WHERE " + columna + "='" valor "'" + sufijo on the caller's connection
    // (the value as it stands, no escaping; a suffix gets one leading space). `encontrado`
    // tells whether AbrirTabla succeeded. The connection stays open.
    void BuscarXclave(const std::string& select, const std::string& columna,
                      const std::string& valor, std::int32_t modo, host::Recordset& rs,
                      const host::Conexion& cn, bool bandera, std::string sufijo, bool& encontrado);

    // The SQL text BuscarXclave opens.
    static std::string SqlBuscarXclave(const std::string& select, const std::string& columna,
                                       const std::string& valor, std::string sufijo);

  private:
    host::BaseDD* Base() const;

    std::shared_ptr<host::BaseDD> base_;
};

}  // namespace paratzorep::data
