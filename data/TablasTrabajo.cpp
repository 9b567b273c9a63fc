#include "data/TablasTrabajo.h"

#include <cstdint>
#include <limits>

#include "data/ConexionInterna.h"
#include "session/Sesion.h"

namespace paratzorep::data {

namespace detail {

host::BaseDD& BaseDeSesion(const std::string& accion) {
    auto& base = session::sesion().BaseDD;
    if (!base)
        throw host::ErrorDatos(accion, "", 0, "no hay objeto de acceso a datos en la sesión");
    return *base;
}

}  // namespace detail

std::string NombreTablaTemporal(host::BaseDD& base, const host::Conexion& cn) {
    std::int16_t contador = 0;
    while (true) {
        std::string nombre = "tbltemp" + std::to_string(contador);
        if (!base.HayTabla(cn, nombre)) return nombre;
        if (contador == std::numeric_limits<std::int16_t>::max()) {
            throw ErrorDesbordamiento(
                "Desbordamiento: no quedan nombres libres para tablas de trabajo (tbltemp0 a "
                "tbltemp32767 existen)");
        }
        ++contador;
    }
}

std::string ClonaEstructura(host::BaseDD& base, host::Conexion& cn, const std::string& modelo,
                            bool enReportes) {
    const std::string nombre = NombreTablaTemporal(base, cn);
    const std::string sql = enReportes ? "SHOW CREATE TABLE tanzoreportes." + modelo
                                       : "SHOW CREATE TABLE " + base.cMiBase + "." + modelo;
    host::Recordset rs;
    base.RstExecutar(rs, cn, sql);
    if (rs.Eof() || rs.FieldCount() < 2) {
        throw host::ErrorDatos("Clonar la estructura de '" + modelo + "'", sql, 0,
                               "el servidor no devolvió la definición de la tabla");
    }
    const std::string creacion = rs.Campo(std::size_t{1}).Texto();
    // The "IF NOT EXISTS" form is worked out and dropped: the statement run is the server's own
    // definition, renamed (the free name is new already).
    [[maybe_unused]] const std::string siNoExiste =
        detail::ReemplazaTodo(creacion, "CREATE TABLE", "CREATE TABLE IF NOT EXISTS");
    // Every occurrence of the model's name, including those inside column and index names.
    const std::string ddl = detail::ReemplazaTodo(creacion, modelo, nombre);
    base.Executar(cn, ddl);
    base.CierraTabla(rs);
    return nombre;
}

void BorraTablaTrabajo(host::BaseDD& base, const host::Conexion& cn, const std::string& nombre) {
    base.Executar(cn, "DROP TABLE " + nombre);
}

std::string NombreTablaTemporal(const host::Conexion& cn) {
    return NombreTablaTemporal(detail::BaseDeSesion("Elegir el nombre de la tabla de trabajo"), cn);
}

std::string ClonaEstructura(host::Conexion& cn, const std::string& modelo, bool enReportes) {
    return ClonaEstructura(detail::BaseDeSesion("Clonar la estructura de '" + modelo + "'"), cn,
                           modelo, enReportes);
}

void BorraTablaTrabajo(const host::Conexion& cn, const std::string& nombre) {
    BorraTablaTrabajo(detail::BaseDeSesion("Borrar la tabla de trabajo '" + nombre + "'"), cn,
                      nombre);
}

}  // namespace paratzorep::data
