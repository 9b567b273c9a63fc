#include "schema/Esquema.h"

#include <mysql.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <thread>

#include "data/MensajesCliente.h"

namespace paratzorep::schema {

ErrorEsquema::ErrorEsquema(const std::string& mensaje, std::string sql, unsigned codigo,
                           std::string archivo, int linea)
    : std::runtime_error(mensaje),
      sql_(std::move(sql)),
      codigo_(codigo),
      archivo_(std::move(archivo)),
      linea_(linea) {}

void Conexion::Cierre::operator()(st_mysql* m) const {
    if (m) mysql_close(m);
}

Conexion::Conexion(st_mysql* m) : mysql_(m) {}
Conexion::Conexion(Conexion&&) noexcept = default;
Conexion& Conexion::operator=(Conexion&&) noexcept = default;
Conexion::~Conexion() = default;

Conexion Conexion::abrir(const data::DatosServidor& datos, const std::string& base) {
    MYSQL* m = mysql_init(nullptr);
    if (!m) throw ErrorEsquema("No hay memoria para abrir una conexión con el servidor");
    Conexion c(m);
    c.datos_ = datos;
    c.base_ = base;
    unsigned tiempo = 10;
    mysql_optionsv(m, MYSQL_OPT_CONNECT_TIMEOUT, &tiempo);
    mysql_optionsv(m, MYSQL_SET_CHARSET_NAME, "utf8mb4");
    const bool porSocket = !datos.socket.empty();
    if (porSocket) {
        unsigned protocolo = MYSQL_PROTOCOL_SOCKET;
        mysql_optionsv(m, MYSQL_OPT_PROTOCOL, &protocolo);
    }
    if (!mysql_real_connect(m, porSocket ? nullptr : datos.host.c_str(), datos.usuario.c_str(),
                            datos.password.c_str(), base.empty() ? nullptr : base.c_str(),
                            static_cast<unsigned>(datos.puerto),
                            porSocket ? datos.socket.c_str() : nullptr, 0)) {
        std::ostringstream msg;
        msg << "No se pudo conectar al servidor de base de datos ("
            << (porSocket ? datos.socket : datos.host + ":" + std::to_string(datos.puerto))
            << ", usuario '" << datos.usuario << "'";
        if (!base.empty()) msg << ", base '" << base << "'";
        msg << "): " << data::MensajeMaria(mysql_errno(m), mysql_error(m));
        throw ErrorEsquema(msg.str(), {}, mysql_errno(m));
    }
    return c;
}

void Conexion::fallo(std::string_view sql) {
    std::string texto(sql.substr(0, 300));
    if (sql.size() > 300) texto += "...";
    throw ErrorEsquema("El servidor rechazó la sentencia (error " +
                           std::to_string(mysql_errno(mysql_.get())) +
                           "): " + mysql_error(mysql_.get()) + "\nSQL: " + texto,
                       std::string(sql), mysql_errno(mysql_.get()));
}

void Conexion::ejecutar(std::string_view sql) {
    if (mysql_real_query(mysql_.get(), sql.data(), sql.size()) != 0) fallo(sql);
    // A statement may return rows (SHOW, SELECT): drain them.
    do {
        if (MYSQL_RES* r = mysql_store_result(mysql_.get())) mysql_free_result(r);
    } while (mysql_next_result(mysql_.get()) == 0);
}

std::vector<Fila> Conexion::consultar(std::string_view sql) {
    if (mysql_real_query(mysql_.get(), sql.data(), sql.size()) != 0) fallo(sql);
    std::unique_ptr<MYSQL_RES, decltype(&mysql_free_result)> res(mysql_store_result(mysql_.get()),
                                                                 &mysql_free_result);
    std::vector<Fila> filas;
    if (!res) {
        if (mysql_field_count(mysql_.get()) != 0) fallo(sql);
        return filas;
    }
    const unsigned n = mysql_num_fields(res.get());
    while (MYSQL_ROW row = mysql_fetch_row(res.get())) {
        const unsigned long* largos = mysql_fetch_lengths(res.get());
        Fila f(n);
        for (unsigned i = 0; i < n; ++i)
            if (row[i]) f[i] = std::string(row[i], largos[i]);
        filas.push_back(std::move(f));
    }
    return filas;
}

std::string Conexion::valor(std::string_view sql) {
    auto filas = consultar(sql);
    if (filas.empty() || filas[0].empty() || !filas[0][0]) return {};
    return *filas[0][0];
}

std::string Conexion::escapar(std::string_view texto) {
    std::string r(texto.size() * 2 + 1, '\0');
    auto n = mysql_real_escape_string(mysql_.get(), r.data(), texto.data(), texto.size());
    r.resize(n);
    return r;
}

void Conexion::usarBase(const std::string& base) {
    if (mysql_select_db(mysql_.get(), base.c_str()) != 0)
        throw ErrorEsquema(
            "No se pudo abrir la base de datos '" + base + "': " + mysql_error(mysql_.get()), {},
            mysql_errno(mysql_.get()));
    base_ = base;
}

Conexion Conexion::otra() const {
    return abrir(datos_, base_);
}

std::vector<Sentencia> dividirSentencias(std::string_view t, const std::string& archivo) {
    std::vector<Sentencia> out;
    std::string actual;
    int linea = 1;
    int inicio = 0;  // line where the current statement's first non-blank character is
    auto agrega = [&](char c) {
        if (inicio == 0 && !std::isspace(static_cast<unsigned char>(c))) inicio = linea;
        actual += c;
    };
    auto cierra = [&] {
        auto a = actual.find_first_not_of(" \t\r\n");
        if (a != std::string::npos) {
            auto b = actual.find_last_not_of(" \t\r\n");
            out.push_back({actual.substr(a, b - a + 1), inicio});
        }
        actual.clear();
        inicio = 0;
    };
    const size_t n = t.size();
    size_t i = 0;
    while (i < n) {
        char c = t[i];
        if (c == '\n') {
            actual += c;
            ++linea;
            ++i;
        } else if (c == '\'' || c == '"' || c == '`') {
            const int lineaComilla = linea;
            agrega(c);
            ++i;
            bool cerrada = false;
            while (i < n) {
                char d = t[i];
                if (d == '\n') ++linea;
                if (d == '\\' && c != '`' && i + 1 < n) {
                    actual += d;
                    actual += t[i + 1];
                    if (t[i + 1] == '\n') ++linea;
                    i += 2;
                    continue;
                }
                actual += d;
                ++i;
                if (d == c) {
                    if (i < n && t[i] == c) {  // doubled quote
                        actual += t[i];
                        ++i;
                        continue;
                    }
                    cerrada = true;
                    break;
                }
            }
            if (!cerrada)
                throw ErrorEsquema("Texto entre comillas sin cerrar en " + archivo + ", línea " +
                                       std::to_string(lineaComilla),
                                   {}, 0, archivo, lineaComilla);
        } else if (c == '#' ||
                   (c == '-' && i + 1 < n && t[i + 1] == '-' &&
                    (i + 2 >= n || std::isspace(static_cast<unsigned char>(t[i + 2]))))) {
            while (i < n && t[i] != '\n') ++i;
        } else if (c == '/' && i + 1 < n && t[i + 1] == '*') {
            const int lineaComentario = linea;
            const bool ejecutable = i + 2 < n && t[i + 2] == '!';
            size_t fin = t.find("*/", i + 2);
            if (fin == std::string_view::npos)
                throw ErrorEsquema("Comentario sin cerrar en " + archivo + ", línea " +
                                       std::to_string(lineaComentario),
                                   {}, 0, archivo, lineaComentario);
            for (size_t k = i; k < fin + 2; ++k) {
                if (t[k] == '\n') ++linea;
                if (ejecutable) agrega(t[k]);
            }
            if (!ejecutable) actual += ' ';
            i = fin + 2;
        } else if (c == ';') {
            cierra();
            ++i;
        } else {
            agrega(c);
            ++i;
        }
    }
    cierra();
    return out;
}

bool nombreDeBaseValido(std::string_view nombre) {
    if (nombre.empty() || nombre.size() > 64) return false;
    for (char c : nombre)
        if (!std::isalnum(static_cast<unsigned char>(c)) && c != '_') return false;
    return true;
}

std::filesystem::path carpetaEsquemas() {
    if (const char* e = std::getenv("TZOREP_SCHEMA_DIR"); e && *e) return e;
    return TZ_SCHEMA_DIR;
}

namespace {

bool esCreateTable(const std::string& sql) {
    std::string inicio = sql.substr(0, 12);
    for (auto& c : inicio) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return inicio == "CREATE TABLE";
}

ErrorEsquema errorEnArchivo(const std::filesystem::path& archivo, const Sentencia& s,
                            const ErrorEsquema& e) {
    return ErrorEsquema(
        archivo.filename().string() + ", línea " + std::to_string(s.linea) + ": " + e.what(), s.sql,
        e.codigo(), archivo.string(), s.linea);
}

// Runs the statements [desde, hasta) spread over the worker connections.
void enParalelo(std::vector<Conexion>& trabajadores, const std::vector<Sentencia>& ss, size_t desde,
                size_t hasta, const std::filesystem::path& archivo) {
    std::vector<std::optional<ErrorEsquema>> errores(trabajadores.size());
    std::vector<std::string> otros(trabajadores.size());
    {
        std::vector<std::jthread> hilos;
        for (size_t w = 0; w < trabajadores.size(); ++w)
            hilos.emplace_back([&, w] {
                for (size_t i = desde + w; i < hasta && !errores[w]; i += trabajadores.size()) {
                    try {
                        trabajadores[w].ejecutar(ss[i].sql);
                    } catch (const ErrorEsquema& e) {
                        errores[w] = errorEnArchivo(archivo, ss[i], e);
                    } catch (const std::exception& e) {
                        otros[w] = e.what();
                    }
                }
            });
    }
    for (size_t w = 0; w < trabajadores.size(); ++w) {
        if (errores[w]) throw *errores[w];
        if (!otros[w].empty()) throw ErrorEsquema(otros[w]);
    }
}

}  // namespace

void cargarArchivo(Conexion& conexion, const std::filesystem::path& archivo, int paralelas) {
    std::ifstream f(archivo, std::ios::binary);
    if (!f)
        throw ErrorEsquema("No se pudo leer el archivo de esquema " + archivo.string(), {}, 0,
                           archivo.string());
    std::stringstream ss;
    ss << f.rdbuf();
    const auto sentencias = dividirSentencias(ss.str(), archivo.string());
    std::vector<Conexion> trabajadores;
    size_t i = 0;
    while (i < sentencias.size()) {
        size_t j = i;
        while (j < sentencias.size() && esCreateTable(sentencias[j].sql)) ++j;
        if (j - i > 1 && paralelas > 1) {
            if (trabajadores.empty())
                for (int w = 0; w < paralelas; ++w) trabajadores.push_back(conexion.otra());
            enParalelo(trabajadores, sentencias, i, j, archivo);
            i = j;
            continue;
        }
        const auto& s = sentencias[i++];
        try {
            conexion.ejecutar(s.sql);
        } catch (const ErrorEsquema& e) {
            throw errorEnArchivo(archivo, s, e);
        }
    }
}

void cargarArchivo(st_mysql* mysql, const std::filesystem::path& archivo) {
    if (!mysql) throw ErrorEsquema("No hay conexión para cargar " + archivo.string());
    std::ifstream f(archivo, std::ios::binary);
    if (!f)
        throw ErrorEsquema("No se pudo leer el archivo de esquema " + archivo.string(), {}, 0,
                           archivo.string());
    std::stringstream ss;
    ss << f.rdbuf();
    for (const auto& s : dividirSentencias(ss.str(), archivo.string())) {
        if (mysql_real_query(mysql, s.sql.data(), s.sql.size()) != 0)
            throw errorEnArchivo(
                archivo, s,
                ErrorEsquema(std::string("El servidor rechazó la sentencia (error ") +
                                 std::to_string(mysql_errno(mysql)) + "): " + mysql_error(mysql),
                             s.sql, mysql_errno(mysql)));
        do {
            if (MYSQL_RES* r = mysql_store_result(mysql)) mysql_free_result(r);
        } while (mysql_next_result(mysql) == 0);
    }
}

void recrearBase(Conexion& conexion, const std::string& base, const std::filesystem::path& archivo,
                 int paralelas) {
    if (!nombreDeBaseValido(base))
        throw ErrorEsquema("Nombre de base de datos no válido: '" + base +
                           "' (solo letras, dígitos y guion bajo)");
    if (!std::filesystem::is_regular_file(archivo))
        throw ErrorEsquema("No existe el archivo de esquema " + archivo.string(), {}, 0,
                           archivo.string());
    // Dropping a filled database waits on the disk table by table: drop its tables
    // over several connections first.
    std::vector<Sentencia> borrados;
    for (const auto& f : conexion.consultar(
             "SELECT TABLE_NAME FROM information_schema.TABLES WHERE TABLE_SCHEMA='" + base + "'"))
        if (f[0]) borrados.push_back({"DROP TABLE IF EXISTS `" + base + "`.`" + *f[0] + "`", 0});
    if (borrados.size() > 1 && paralelas > 1) {
        std::vector<Conexion> trabajadores;
        for (int w = 0; w < paralelas; ++w) trabajadores.push_back(conexion.otra());
        try {
            enParalelo(trabajadores, borrados, 0, borrados.size(), base);
        } catch (const ErrorEsquema& e) {
            throw ErrorEsquema("No se pudo borrar la base de datos '" + base + "': " + e.what(),
                               e.sql(), e.codigo());
        }
    }
    conexion.ejecutar("DROP DATABASE IF EXISTS `" + base + "`");
    conexion.ejecutar("CREATE DATABASE `" + base +
                      "` CHARACTER SET utf8mb4 COLLATE utf8mb4_general_ci");
    conexion.usarBase(base);
    cargarArchivo(conexion, archivo, paralelas);
}

}  // namespace paratzorep::schema
