#include "toolkit/BitacoraUsuarios.h"

#include <unistd.h>

#include "toolkit/Texto.h"

namespace paratzorep::toolkit {

namespace {

std::string Codifica(const std::string& texto, const char* llave) {
    return "ENCODE('" + detail::EscapaSQL(texto) + "','" + llave + "')";
}

std::string EsteEquipo() {
    char nombre[256] = {};
    if (::gethostname(nombre, sizeof nombre - 1) != 0) return "";
    return nombre;
}

}  // namespace

std::string BitacoraUsuarios::SentenciaGraba() const {
    const std::string equipo = Equipo.empty() ? EsteEquipo() : Equipo;
    return "INSERT INTO bitacorausuarios "
           "(Fecha,Hora,Usuario,Accion,Registro,Llave,Adicionales,Version,Equipo) VALUES "
           "(CURDATE(),CURTIME()," +
           Codifica(Usuario, "418") + ",'" + detail::EscapaSQL(Accion) + "'," + std::to_string(ID) +
           "," + Codifica(Llave, "184") + "," + Codifica(Adicionales, "184") + "," +
           Codifica(Version, "527") + "," + Codifica(equipo, "527") + ")";
}

void BitacoraUsuarios::Graba(const host::Conexion& cn) const {
    const std::string sql = SentenciaGraba();
    if (!BaseDD) {
        throw host::ErrorDatos("Registrar en la bitácora de usuarios", sql, 0,
                               "No hay objeto de datos");
    }
    BaseDD->Executar(cn, sql);
}

}  // namespace paratzorep::toolkit
