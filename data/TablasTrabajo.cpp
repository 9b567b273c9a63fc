#include "data/TablasTrabajo.h"

#include <unistd.h>

#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <mutex>

#include "data/ConexionInterna.h"
#include "data/ConexionMaria.h"
#include "host/Proceso.h"
#include "session/Sesion.h"
#include "toolkit/Texto.h"

namespace paratzorep::data {

const char* const kCreaRegistroTablas =
    "CREATE TABLE IF NOT EXISTS tanzoreportes.tablastrabajo ("
    "Base VARCHAR(64) NOT NULL, Tabla VARCHAR(64) NOT NULL, "
    "Conexion BIGINT UNSIGNED NOT NULL, Arranque DATETIME NOT NULL, "
    "Usuario VARCHAR(200) NOT NULL DEFAULT '', Equipo VARCHAR(255) NOT NULL DEFAULT '', "
    "Proceso INT NOT NULL DEFAULT 0, Creada DATETIME NOT NULL, "
    "PRIMARY KEY (Base, Tabla)) ENGINE=InnoDB";

namespace detail {

constexpr int kErrorTablaExiste = 1050;
constexpr int kErrorLlaveRepetida = 1062;
// Retries of a name that another print created between the look-up and the creation.
constexpr int kReintentos = 100;

// When the server now running started: a creator recorded under another start is gone.
constexpr const char* kArranqueServidor =
    "(NOW() - INTERVAL (SELECT VARIABLE_VALUE FROM information_schema.GLOBAL_STATUS WHERE "
    "VARIABLE_NAME='UPTIME') SECOND)";

// The condition, on a registry row "r", that its creating connection is gone: the server has
// restarted since, or no connection of that id is left.
std::string CreadorMuerto() {
    return std::string("(ABS(TIMESTAMPDIFF(SECOND, r.Arranque, ") + kArranqueServidor +
           ")) > 2 OR r.Conexion NOT IN (SELECT ID FROM information_schema.PROCESSLIST))";
}

host::BaseDD& BaseDeSesion(const std::string& accion) {
    auto& base = session::sesion().BaseDD;
    if (!base)
        throw host::ErrorDatos(accion, "", 0, "no hay objeto de acceso a datos en la sesión");
    return *base;
}

std::string Texto(const std::string& s) {
    return "'" + toolkit::detail::EscapaSQL(s) + "'";
}

std::string Equipo() {
    char nombre[256] = {0};
    if (::gethostname(nombre, sizeof nombre - 1) != 0) return {};
    return nombre;
}

// The registry is reached through our own connections only (never through the data-access
// object, whose statements are the system's); nullptr when the connection is not one of ours.
ConexionMaria* Nuestra(const host::Conexion& cn) {
    return dynamic_cast<ConexionMaria*>(cn.get());
}

// Whether the registry exists on the connection's server (made on first use; remembered once
// it is there).
bool HayRegistro(ConexionMaria& c) {
    static std::mutex mutex;
    static std::map<std::string, bool> vistos;
    const std::string servidor = c.Servidor() + ":" + std::to_string(c.Puerto());
    {
        std::lock_guard<std::mutex> bloqueo(mutex);
        if (vistos.count(servidor)) return true;
    }
    try {
        c.Ejecuta(kCreaRegistroTablas, "Preparar el registro de tablas de trabajo");
    } catch (const host::ErrorDatos&) {
        return false;  // no reports database, or no right to it: tables go unregistered
    }
    std::lock_guard<std::mutex> bloqueo(mutex);
    vistos[servidor] = true;
    return true;
}

// The values that tie a registry row to the connection that runs the statement.
std::string DuenoActual() {
    return std::string("CONNECTION_ID(), ") + kArranqueServidor + ", CURRENT_USER(), " +
           Texto(Equipo()) + ", " + std::to_string(::getpid()) + ", NOW()";
}

enum class Reserva { Hecha, Ocupada, SinRegistro };

Reserva ReservaNombre(ConexionMaria* c, const std::string& nombre) {
    if (c == nullptr || !HayRegistro(*c)) return Reserva::SinRegistro;
    try {
        c->Ejecuta(std::string("INSERT INTO ") + kRegistroTablas +
                       " (Base, Tabla, Conexion, Arranque, Usuario, Equipo, Proceso, Creada) "
                       "VALUES (DATABASE(), " +
                       Texto(nombre) + ", " + DuenoActual() + ")",
                   "Reservar el nombre de la tabla de trabajo " + nombre);
        return Reserva::Hecha;
    } catch (const host::ErrorDatos& e) {
        if (e.Codigo() == kErrorLlaveRepetida) return Reserva::Ocupada;
        return Reserva::SinRegistro;
    }
}

void QuitaDelRegistro(ConexionMaria* c, const std::string& base, const std::string& nombre) {
    if (c == nullptr) return;
    try {
        c->Ejecuta(std::string("DELETE FROM ") + kRegistroTablas + " WHERE Base=" + base +
                       " AND Tabla=" + Texto(nombre) + " AND Conexion=CONNECTION_ID()",
                   "Quitar la tabla de trabajo " + nombre + " del registro");
    } catch (const host::ErrorDatos&) {
        // A row left behind belongs to this connection: once it ends, the clean-up takes it.
    }
}

// The clean-ups of the work tables this process holds, by "base.tabla".
std::map<std::string, host::Limpieza>& AlInterrumpir() {
    static auto* m = new std::map<std::string, host::Limpieza>;
    return *m;
}
std::mutex& MutexInterrumpir() {
    static std::mutex m;
    return m;
}

// If the process is interrupted, a fresh connection ends the one that created the table (and
// with it a fill under way), drops the table and its registry row.
void DropAlInterrumpir(ConexionMaria* c, const std::string& nombre) {
    if (c == nullptr) return;
    DatosConexion datos = c->Datos();
    const std::string base = datos.base;
    const unsigned long hilo = c->Hilo();
    datos.base.clear();
    datos.segundosEspera = 3;
    datos.segundosRespuesta = 10;
    host::Limpieza limpieza([datos, base, nombre, hilo]() -> std::string {
        try {
            ConexionMaria otra(datos);
            try {
                otra.Ejecuta("KILL CONNECTION " + std::to_string(hilo), "Terminar la impresión");
            } catch (const host::ErrorDatos&) {
                // Already gone.
            }
            otra.Ejecuta("SET SESSION lock_wait_timeout=10", "Borrar la tabla de trabajo");
            otra.Ejecuta("DROP TABLE IF EXISTS " + otra.Identificador(base + "." + nombre),
                         "Borrar la tabla de trabajo");
            try {
                otra.Ejecuta(std::string("DELETE FROM ") + kRegistroTablas +
                                 " WHERE Base=" + Texto(base) + " AND Tabla=" + Texto(nombre) +
                                 " AND Conexion=" + std::to_string(hilo),
                             "Quitar la tabla de trabajo del registro");
            } catch (const host::ErrorDatos&) {
                // No registry: nothing to remove.
            }
            return "";
        } catch (const std::exception& e) {
            return "no se pudo borrar la tabla de trabajo " + base + "." + nombre + " (" +
                   e.what() + "); se borrará en la próxima impresión";
        }
    });
    std::lock_guard<std::mutex> bloqueo(MutexInterrumpir());
    AlInterrumpir()[base + "." + nombre] = std::move(limpieza);
}

void OlvidaAlInterrumpir(ConexionMaria* c, const std::string& nombre) {
    if (c == nullptr) return;
    std::lock_guard<std::mutex> bloqueo(MutexInterrumpir());
    AlInterrumpir().erase(c->Base() + "." + nombre);
}

std::string NombreLibreDesde(host::BaseDD& base, const host::Conexion& cn, std::int32_t desde,
                             std::int32_t& numero) {
    constexpr std::int32_t maximo = std::numeric_limits<std::int16_t>::max();
    for (std::int32_t contador = desde;; ++contador) {
        if (contador > maximo) {
            throw ErrorDesbordamiento(
                "Desbordamiento: no quedan nombres libres para tablas de trabajo (tbltemp0 a "
                "tbltemp32767 existen)");
        }
        std::string nombre = "tbltemp" + std::to_string(contador);
        if (!base.HayTabla(cn, nombre)) {
            numero = contador;
            return nombre;
        }
    }
}

// The registry's rows whose creating connection is gone ("base", "tabla"); `enUso` gets how many
// are held by a live one.
std::vector<std::pair<std::string, std::string>> Huerfanas(ConexionMaria& c, int* enUso) {
    const std::string accion = "Revisar las tablas de trabajo";
    // Without PROCESS an account sees its own connections only: other accounts' rows are left.
    const std::string veTodo =
        "(SELECT COUNT(*) FROM information_schema.USER_PRIVILEGES WHERE PRIVILEGE_TYPE='PROCESS' "
        "AND GRANTEE=CONCAT('''', SUBSTRING_INDEX(CURRENT_USER(),'@',1), '''@''', "
        "SUBSTRING_INDEX(CURRENT_USER(),'@',-1), ''''))";
    auto r = c.Consulta("SELECT r.Base, r.Tabla, r.Conexion, r.Arranque, " + CreadorMuerto() +
                            " AS Muerta FROM " + kRegistroTablas +
                            " r WHERE r.Usuario=CURRENT_USER() OR " + veTodo +
                            " > 0 ORDER BY r.Base, r.Tabla",
                        accion);
    std::vector<std::pair<std::string, std::string>> huerfanas;
    int vivas = 0;
    for (const auto& f : r.filas) {
        if (f[4].Entero() == 0) {
            ++vivas;
            continue;
        }
        huerfanas.emplace_back(f[0].Texto(), f[1].Texto());
    }
    if (enUso) *enUso = vivas;
    return huerfanas;
}

}  // namespace detail

std::string NombreTablaTemporal(host::BaseDD& base, const host::Conexion& cn) {
    std::int32_t numero = 0;
    return detail::NombreLibreDesde(base, cn, 0, numero);
}

std::string ClonaEstructura(host::BaseDD& base, host::Conexion& cn, const std::string& modelo,
                            bool enReportes) {
    std::int32_t numero = 0;
    std::string nombre = detail::NombreLibreDesde(base, cn, 0, numero);
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
    // definition, renamed. The name is reserved in the registry first, so that two prints never
    // create the same table; one created by a print that keeps no registry is passed over.
    [[maybe_unused]] const std::string siNoExiste =
        detail::ReemplazaTodo(creacion, "CREATE TABLE", "CREATE TABLE IF NOT EXISTS");
    ConexionMaria* nuestra = detail::Nuestra(cn);
    for (int intento = 0;; ++intento) {
        const auto reserva = detail::ReservaNombre(nuestra, nombre);
        if (reserva == detail::Reserva::Ocupada) {
            nombre = detail::NombreLibreDesde(base, cn, numero + 1, numero);
            continue;
        }
        try {
            // Every occurrence of the model's name, including those inside column and index
            // names.
            base.Executar(cn, detail::ReemplazaTodo(creacion, modelo, nombre));
        } catch (const host::ErrorDatos& e) {
            if (reserva == detail::Reserva::Hecha)
                detail::QuitaDelRegistro(nuestra, "DATABASE()", nombre);
            if (e.Codigo() != detail::kErrorTablaExiste || intento >= detail::kReintentos) throw;
            nombre = detail::NombreLibreDesde(base, cn, numero + 1, numero);
            continue;
        }
        break;
    }
    base.CierraTabla(rs);
    detail::DropAlInterrumpir(nuestra, nombre);
    return nombre;
}

void BorraTablaTrabajo(host::BaseDD& base, const host::Conexion& cn, const std::string& nombre) {
    base.Executar(cn, "DROP TABLE " + nombre);
    ConexionMaria* nuestra = detail::Nuestra(cn);
    detail::OlvidaAlInterrumpir(nuestra, nombre);
    detail::QuitaDelRegistro(nuestra, "DATABASE()", nombre);
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

TablasRegistradas RevisaTablasTrabajo(host::BaseDD&, const host::Conexion& cn) {
    TablasRegistradas r;
    auto& c = detail::Interna(cn, "Revisar las tablas de trabajo");
    auto* nuestra = dynamic_cast<ConexionMaria*>(&c);
    if (nuestra == nullptr || !detail::HayRegistro(*nuestra)) return r;
    for (const auto& [b, t] : detail::Huerfanas(*nuestra, &r.enUso))
        r.huerfanas.push_back(b + "." + t);
    return r;
}

std::vector<std::string> BorraTablasHuerfanas(host::BaseDD&, const host::Conexion& cn) {
    std::vector<std::string> borradas;
    auto* nuestra = detail::Nuestra(cn);
    if (nuestra == nullptr || !detail::HayRegistro(*nuestra)) return borradas;
    const std::string accion = "Borrar las tablas de trabajo huérfanas";
    for (const auto& [b, t] : detail::Huerfanas(*nuestra, nullptr)) {
        try {
            // Claimed first: the row now names this connection, so no other clean-up takes it
            // and no print reserves the name until the row is gone.
            const std::int64_t reclamadas = nuestra->Ejecuta(
                std::string("UPDATE ") + kRegistroTablas +
                    " r SET r.Conexion=CONNECTION_ID(), r.Arranque=" + detail::kArranqueServidor +
                    ", r.Usuario=CURRENT_USER(), r.Proceso=" + std::to_string(::getpid()) +
                    " WHERE r.Base=" + detail::Texto(b) + " AND r.Tabla=" + detail::Texto(t) +
                    " AND " + detail::CreadorMuerto(),
                accion);
            if (reclamadas != 1) continue;
            nuestra->Ejecuta("DROP TABLE IF EXISTS " + nuestra->Identificador(b + "." + t), accion);
            detail::QuitaDelRegistro(nuestra, detail::Texto(b), t);
            borradas.push_back(b + "." + t);
        } catch (const host::ErrorDatos&) {
            // Left for the next print.
        }
    }
    return borradas;
}

}  // namespace paratzorep::data
