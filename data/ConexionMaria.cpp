#include "data/ConexionMaria.h"

#include <errmsg.h>
#include <mysql.h>

#include <cerrno>
#include <chrono>
#include <cstring>

#include "data/MensajesCliente.h"

namespace paratzorep::data {

namespace detail {

host::TipoCampo TipoDeCampo(const MYSQL_FIELD& f) {
    switch (f.type) {
        case MYSQL_TYPE_TINY:
        case MYSQL_TYPE_SHORT:
        case MYSQL_TYPE_LONG:
        case MYSQL_TYPE_LONGLONG:
        case MYSQL_TYPE_INT24:
        case MYSQL_TYPE_YEAR:
        case MYSQL_TYPE_BIT:
            return host::TipoCampo::Entero;
        case MYSQL_TYPE_DECIMAL:
        case MYSQL_TYPE_NEWDECIMAL:
        case MYSQL_TYPE_FLOAT:
        case MYSQL_TYPE_DOUBLE:
            return host::TipoCampo::Decimal;
        case MYSQL_TYPE_DATE:
        case MYSQL_TYPE_NEWDATE:
            return host::TipoCampo::Fecha;
        case MYSQL_TYPE_DATETIME:
        case MYSQL_TYPE_TIMESTAMP:
            return host::TipoCampo::FechaHora;
        case MYSQL_TYPE_TIME:
            return host::TipoCampo::Hora;
        case MYSQL_TYPE_TINY_BLOB:
        case MYSQL_TYPE_MEDIUM_BLOB:
        case MYSQL_TYPE_LONG_BLOB:
        case MYSQL_TYPE_BLOB:
        case MYSQL_TYPE_STRING:
        case MYSQL_TYPE_VAR_STRING:
        case MYSQL_TYPE_VARCHAR:
            // Character set 63 is "binary": BLOB, BINARY, VARBINARY.
            return f.charsetnr == 63 ? host::TipoCampo::Binario : host::TipoCampo::Texto;
        default:
            return host::TipoCampo::Texto;
    }
}

struct LiberaResultado {
    void operator()(MYSQL_RES* r) const { mysql_free_result(r); }
};
struct CierraSentencia {
    void operator()(MYSQL_STMT* s) const { mysql_stmt_close(s); }
};

double Ahora() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

// The client library's failures in Spanish (MensajeMaria); a statement that waited the whole
// limit for an answer is said to be a server that stopped answering.
std::string MotivoCliente(int codigo, const std::string& mensaje, unsigned espera,
                          double transcurrido) {
    const bool perdida = codigo == CR_SERVER_GONE_ERROR || codigo == CR_SERVER_LOST ||
                         codigo == CR_SERVER_LOST_EXTENDED;
    if (perdida && espera > 0 && transcurrido + 0.5 >= espera)
        return "el servidor no respondió en " + std::to_string(espera) +
               " segundos (puede estar detenido, saturado o sin red)";
    return MensajeMaria(static_cast<unsigned>(codigo), mensaje);
}

}  // namespace detail

unsigned& SegundosDeEspera() {
    static unsigned segundos = kSegundosDeEspera;
    return segundos;
}

std::string& ComoArrancarServidor() {
    static std::string como;
    return como;
}

std::string ConsejoServidor() {
    std::string r = "¿Está arrancado el servidor?";
    if (!ComoArrancarServidor().empty()) r += " " + ComoArrancarServidor();
    return r;
}

bool EsServidorInalcanzable(int codigo) {
    return codigo == CR_CONNECTION_ERROR || codigo == CR_CONN_HOST_ERROR ||
           codigo == CR_UNKNOWN_HOST || codigo == CR_SERVER_GONE_ERROR ||
           codigo == CR_SERVER_LOST || codigo == CR_SERVER_LOST_EXTENDED;
}

ConexionMaria::ConexionMaria(DatosConexion datos) : datos_(std::move(datos)) {
    mysql_ = mysql_init(nullptr);
    if (mysql_ == nullptr)
        throw host::ErrorDatos("Conectar al servidor", "", 0, "sin memoria para la conexión");
    mysql_optionsv(mysql_, MYSQL_SET_CHARSET_NAME, "utf8mb4");
    // Never longer than the limit on a silent server: a server that accepts the connection but
    // does not answer it is one too.
    unsigned respuesta = SegundosRespuesta();
    unsigned espera = datos_.segundosEspera;
    if (respuesta > 0 && respuesta < espera) espera = respuesta;
    datos_.segundosEspera = espera;
    mysql_optionsv(mysql_, MYSQL_OPT_CONNECT_TIMEOUT, &espera);
    // A server that stops answering (stopped, paused, cut off) ends the statement instead of
    // leaving it waiting for ever.
    if (respuesta > 0) {
        mysql_optionsv(mysql_, MYSQL_OPT_READ_TIMEOUT, &respuesta);
        mysql_optionsv(mysql_, MYSQL_OPT_WRITE_TIMEOUT, &respuesta);
    }
    // The system's SQL was written for the permissive mode (empty texts into numbers, zero
    // dates); every server is asked for it so that all behave like the private one.
    mysql_optionsv(mysql_, MYSQL_INIT_COMMAND, "SET SESSION sql_mode='NO_ENGINE_SUBSTITUTION'");
    // The server's own defaults, never the ones in /etc/mysql.
    const bool porSocket = !datos_.servidor.empty() && datos_.servidor.front() == '/';
    const char* host = porSocket ? "localhost" : datos_.servidor.c_str();
    const char* socket = porSocket ? datos_.servidor.c_str() : nullptr;
    if (!porSocket && datos_.servidor == "localhost") host = "127.0.0.1";
    unsigned int protocolo = porSocket ? MYSQL_PROTOCOL_SOCKET : MYSQL_PROTOCOL_TCP;
    mysql_optionsv(mysql_, MYSQL_OPT_PROTOCOL, &protocolo);
    inicio_ = detail::Ahora();
    if (mysql_real_connect(mysql_, host, datos_.usuario.c_str(), datos_.password.c_str(),
                           datos_.base.empty() ? nullptr : datos_.base.c_str(),
                           static_cast<unsigned>(datos_.puerto), socket,
                           CLIENT_FOUND_ROWS) == nullptr) {
        const int codigo = static_cast<int>(mysql_errno(mysql_));
        host::ErrorDatos e("Conectar con el servidor " + datos_.servidor +
                               (porSocket ? "" : ":" + std::to_string(datos_.puerto)) + " (base '" +
                               datos_.base + "')",
                           "", codigo,
                           detail::MotivoCliente(codigo, mysql_error(mysql_), datos_.segundosEspera,
                                                 detail::Ahora() - inicio_));
        mysql_close(mysql_);
        mysql_ = nullptr;
        throw e;
    }
}

ConexionMaria::~ConexionMaria() {
    Cierra();
}

void ConexionMaria::Cierra() {
    if (mysql_ != nullptr) {
        mysql_close(mysql_);
        mysql_ = nullptr;
    }
}

unsigned ConexionMaria::SegundosRespuesta() const {
    return datos_.segundosRespuesta.value_or(SegundosDeEspera());
}

unsigned long ConexionMaria::Hilo() const {
    return mysql_ ? mysql_thread_id(mysql_) : 0;
}

void ConexionMaria::Falla(const std::string& accion, const std::string& sql) const {
    if (mysql_ == nullptr) throw host::ErrorDatos(accion, sql, 0, "la conexión está cerrada");
    const int codigo = static_cast<int>(mysql_errno(mysql_));
    throw host::ErrorDatos(accion, sql, codigo,
                           detail::MotivoCliente(codigo, mysql_error(mysql_), SegundosRespuesta(),
                                                 detail::Ahora() - inicio_));
}

detail::Resultado ConexionMaria::Consulta(const std::string& sql, const std::string& accion) {
    if (mysql_ == nullptr) Falla(accion, sql);
    inicio_ = detail::Ahora();
    if (mysql_real_query(mysql_, sql.data(), sql.size()) != 0) Falla(accion, sql);
    std::unique_ptr<MYSQL_RES, detail::LiberaResultado> res(mysql_store_result(mysql_));
    detail::Resultado r;
    if (!res) {
        if (mysql_field_count(mysql_) != 0) Falla(accion, sql);
        return r;  // a statement without rows
    }
    const unsigned n = mysql_num_fields(res.get());
    MYSQL_FIELD* campos = mysql_fetch_fields(res.get());
    std::string unica;
    bool varias = false;
    for (unsigned i = 0; i < n; ++i) {
        const MYSQL_FIELD& f = campos[i];
        host::Columna c;
        c.nombre.assign(f.name, f.name_length);
        c.tipo = detail::TipoDeCampo(f);
        c.tabla.assign(f.org_table, f.org_table_length);
        c.esClave = (f.flags & PRI_KEY_FLAG) != 0;
        c.autoIncremento = (f.flags & AUTO_INCREMENT_FLAG) != 0;
        if (!c.tabla.empty()) {
            std::string q = f.db_length ? std::string(f.db, f.db_length) + "." + c.tabla : c.tabla;
            if (unica.empty()) {
                unica = q;
            } else if (q != unica) {
                varias = true;
            }
        }
        r.columnas.push_back(std::move(c));
    }
    if (!varias) r.tablaUnica = unica;
    r.filas.reserve(mysql_num_rows(res.get()));
    while (MYSQL_ROW fila = mysql_fetch_row(res.get())) {
        unsigned long* largos = mysql_fetch_lengths(res.get());
        std::vector<host::Valor> valores;
        valores.reserve(n);
        for (unsigned i = 0; i < n; ++i) {
            if (fila[i] == nullptr) {
                valores.push_back(host::Valor::Nulo(r.columnas[i].tipo));
            } else {
                valores.emplace_back(std::string(fila[i], largos[i]), r.columnas[i].tipo);
            }
        }
        r.filas.push_back(std::move(valores));
    }
    if (mysql_errno(mysql_) != 0) Falla(accion, sql);
    return r;
}

void ConexionMaria::Recorre(const std::string& sql, const std::string& accion,
                            const std::function<void(const detail::FilaTexto&)>& fila) {
    if (mysql_ == nullptr) Falla(accion, sql);
    if (mysql_real_query(mysql_, sql.data(), sql.size()) != 0) Falla(accion, sql);
    // Freeing a result read row by row discards what the server has not sent yet, so the
    // connection stays usable when `fila` throws.
    std::unique_ptr<MYSQL_RES, detail::LiberaResultado> res(mysql_use_result(mysql_));
    if (!res) {
        if (mysql_field_count(mysql_) != 0) Falla(accion, sql);
        return;
    }
    const unsigned n = mysql_num_fields(res.get());
    detail::FilaTexto textos(n);
    while (MYSQL_ROW f = mysql_fetch_row(res.get())) {
        const unsigned long* largos = mysql_fetch_lengths(res.get());
        for (unsigned i = 0; i < n; ++i)
            textos[i] = f[i] == nullptr ? std::nullopt
                                        : std::optional<std::string_view>(
                                              std::string_view(f[i], largos[i]));
        fila(textos);
    }
    if (mysql_errno(mysql_) != 0) Falla(accion, sql);
}

std::int64_t ConexionMaria::Ejecuta(const std::string& sql, const std::string& accion) {
    if (mysql_ == nullptr) Falla(accion, sql);
    inicio_ = detail::Ahora();
    if (mysql_real_query(mysql_, sql.data(), sql.size()) != 0) Falla(accion, sql);
    // A statement that returns rows anyway (SELECT through Executar): discard them.
    if (mysql_field_count(mysql_) != 0) {
        std::unique_ptr<MYSQL_RES, detail::LiberaResultado> res(mysql_store_result(mysql_));
        return res ? static_cast<std::int64_t>(mysql_num_rows(res.get())) : 0;
    }
    return static_cast<std::int64_t>(mysql_affected_rows(mysql_));
}

std::int64_t ConexionMaria::EjecutaConValores(const std::string& sql,
                                              const std::vector<host::Valor>& valores,
                                              const std::string& accion) {
    if (mysql_ == nullptr) Falla(accion, sql);
    std::unique_ptr<MYSQL_STMT, detail::CierraSentencia> st(mysql_stmt_init(mysql_));
    if (!st) Falla(accion, sql);
    inicio_ = detail::Ahora();
    auto fallaSentencia = [&] {
        const int codigo = static_cast<int>(mysql_stmt_errno(st.get()));
        throw host::ErrorDatos(
            accion, sql, codigo,
            detail::MotivoCliente(codigo, mysql_stmt_error(st.get()), SegundosRespuesta(),
                                  detail::Ahora() - inicio_));
    };
    if (mysql_stmt_prepare(st.get(), sql.data(), sql.size()) != 0) fallaSentencia();
    if (mysql_stmt_param_count(st.get()) != valores.size()) {
        throw host::ErrorDatos(accion, sql, 0,
                               "la sentencia espera " +
                                   std::to_string(mysql_stmt_param_count(st.get())) +
                                   " valores y recibió " + std::to_string(valores.size()));
    }
    std::vector<MYSQL_BIND> binds(valores.size());
    std::vector<long long> enteros(valores.size());
    std::vector<double> dobles(valores.size());
    std::vector<unsigned long> largos(valores.size());
    for (std::size_t i = 0; i < valores.size(); ++i) {
        const host::Valor& v = valores[i];
        MYSQL_BIND& b = binds[i];
        std::memset(&b, 0, sizeof b);
        if (v.EsNulo()) {
            b.buffer_type = MYSQL_TYPE_NULL;
        } else if (v.Tipo() == host::TipoCampo::Entero) {
            enteros[i] = v.Entero();
            b.buffer_type = MYSQL_TYPE_LONGLONG;
            b.buffer = &enteros[i];
        } else if (v.Tipo() == host::TipoCampo::Decimal) {
            dobles[i] = v.Doble();
            b.buffer_type = MYSQL_TYPE_DOUBLE;
            b.buffer = &dobles[i];
        } else {
            largos[i] = v.Texto().size();
            b.buffer_type =
                v.Tipo() == host::TipoCampo::Binario ? MYSQL_TYPE_BLOB : MYSQL_TYPE_STRING;
            b.buffer = const_cast<char*>(v.Texto().data());
            b.buffer_length = largos[i];
            b.length = &largos[i];
        }
    }
    if (!binds.empty() && mysql_stmt_bind_param(st.get(), binds.data()) != 0) fallaSentencia();
    if (mysql_stmt_execute(st.get()) != 0) fallaSentencia();
    return static_cast<std::int64_t>(mysql_stmt_affected_rows(st.get()));
}

std::string ConexionMaria::Literal(const std::string& texto) const {
    if (mysql_ == nullptr)
        throw host::ErrorDatos("Preparar valor", "", 0, "la conexión está cerrada");
    std::string r(texto.size() * 2 + 1, '\0');
    unsigned long n = mysql_real_escape_string(mysql_, r.data(), texto.data(), texto.size());
    r.resize(n);
    return "'" + r + "'";
}

detail::Resultado ConexionMaria::ConsultaConValores(const std::string& sql,
                                                    const std::vector<host::Valor>& valores,
                                                    const std::string& accion) {
    // Our own short look-ups: the values go in as escaped literals, in order of the "?".
    std::string texto;
    std::size_t k = 0;
    for (char c : sql) {
        if (c == '?' && k < valores.size()) {
            const host::Valor& v = valores[k++];
            if (v.EsNulo()) {
                texto += "NULL";
            } else if (host::EsTipoNumerico(v.Tipo())) {
                texto += host::Valor(v.Doble()).Texto();
            } else {
                texto += Literal(v.Texto());
            }
        } else {
            texto += c;
        }
    }
    return Consulta(texto, accion);
}

std::int64_t ConexionMaria::UltimoId() {
    auto r = Consulta("SELECT LAST_INSERT_ID()", "Leer el último Id");
    return r.filas.empty() ? 0 : r.filas[0][0].Entero();
}

bool ConexionMaria::ExisteTabla(const std::string& tabla) {
    std::string esquema = "DATABASE()";
    std::string nombre = tabla;
    if (auto punto = tabla.find('.'); punto != std::string::npos) {
        esquema = Literal(tabla.substr(0, punto));
        nombre = tabla.substr(punto + 1);
    }
    auto r =
        Consulta("SELECT COUNT(*) FROM information_schema.TABLES WHERE TABLE_SCHEMA=" + esquema +
                     " AND TABLE_NAME=" + Literal(nombre),
                 "Buscar la tabla '" + tabla + "'");
    return !r.filas.empty() && r.filas[0][0].Entero() > 0;
}

std::string ConexionMaria::Identificador(std::string_view nombre) const {
    std::string r;
    std::size_t inicio = 0;
    while (true) {
        std::size_t punto = nombre.find('.', inicio);
        std::string_view parte = nombre.substr(
            inicio, punto == std::string_view::npos ? std::string_view::npos : punto - inicio);
        r += '`';
        for (char c : parte) {
            r += c;
            if (c == '`') r += '`';
        }
        r += '`';
        if (punto == std::string_view::npos) break;
        r += '.';
        inicio = punto + 1;
    }
    return r;
}

std::string ConexionMaria::UpdateDeUnaFila(const std::string& tabla,
                                           const std::string& asignaciones,
                                           const std::string& condicion) const {
    return "UPDATE " + Identificador(tabla) + " SET " + asignaciones + " WHERE " + condicion +
           " LIMIT 1";
}

std::string ConexionMaria::IgualQueValor(const std::string& columna) const {
    return Identificador(columna) + "<=>?";
}

std::string ConexionMaria::InsertSinColumnas(const std::string& tabla) const {
    return "INSERT INTO " + Identificador(tabla) + " () VALUES ()";
}

}  // namespace paratzorep::data
