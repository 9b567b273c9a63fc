// The three databases' DDL: a connection of its own over Connector/C, the
// splitting of a schema file into statements, and the (re)creation of a
// database from its file.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "data/ServidorPrivado.h"

struct st_mysql;

namespace paratzorep::schema {

// A failure while creating or filling a database. The message is in Spanish and
// says what was being done; the SQL, the server's code and, for schema files,
// the file and line are kept apart for callers and tests.
class ErrorEsquema : public std::runtime_error {
  public:
    ErrorEsquema(const std::string& mensaje, std::string sql = {}, unsigned codigo = 0,
                 std::string archivo = {}, int linea = 0);

    const std::string& sql() const { return sql_; }
    unsigned codigo() const { return codigo_; }  // server error code, 0 when none
    const std::string& archivo() const { return archivo_; }
    int linea() const { return linea_; }

  private:
    std::string sql_;
    unsigned codigo_;
    std::string archivo_;
    int linea_;
};

// One result row; NULL columns are empty optionals.
using Fila = std::vector<std::optional<std::string>>;

// A connection to the server (RAII). Statements that fail throw ErrorEsquema
// with the SQL and the server's code.
class Conexion {
  public:
    // Connects with the server's data (socket when given, else host and port);
    // `base` empty means no current database.
    static Conexion abrir(const data::DatosServidor& datos, const std::string& base = {});

    Conexion(Conexion&&) noexcept;
    Conexion& operator=(Conexion&&) noexcept;
    ~Conexion();

    void ejecutar(std::string_view sql);
    std::vector<Fila> consultar(std::string_view sql);
    // The first column of the first row, or empty when there is no row or it is NULL.
    std::string valor(std::string_view sql);
    // Escapes a text for use between single quotes.
    std::string escapar(std::string_view texto);
    void usarBase(const std::string& base);
    // A new connection to the same server and current database.
    Conexion otra() const;

    st_mysql* nativo() { return mysql_.get(); }

  private:
    struct Cierre {
        void operator()(st_mysql* m) const;
    };
    explicit Conexion(st_mysql* m);
    [[noreturn]] void fallo(std::string_view sql);

    std::unique_ptr<st_mysql, Cierre> mysql_;
    data::DatosServidor datos_;
    std::string base_;
};

// One statement of a schema file and the line on which it starts.
struct Sentencia {
    std::string sql;
    int linea = 0;
};

// Splits SQL text at the semicolons that end statements: semicolons inside
// quoted texts or identifiers and inside comments do not count; comments are
// removed (except /*! ... */ ones); blank statements are dropped. Throws
// ErrorEsquema on an unterminated quote or comment.
std::vector<Sentencia> dividirSentencias(std::string_view texto, const std::string& archivo = {});

// True for a name made only of letters, digits and underscores (1 to 64 characters).
bool nombreDeBaseValido(std::string_view nombre);

// The folder holding empresa.sql, generaltanzo.sql and tanzoreportes.sql:
// TZOREP_SCHEMA_DIR when set, else the source tree's schema folder.
std::filesystem::path carpetaEsquemas();

// Runs every statement of a schema file in the connection's current database.
// Runs of consecutive CREATE TABLE statements are spread over `paralelas`
// connections (table creation waits on the disk, not on the processor); every
// other statement runs in order on `conexion`. A failing statement throws
// ErrorEsquema naming the file, the line, the server's code and message.
void cargarArchivo(Conexion& conexion, const std::filesystem::path& archivo, int paralelas = 4);

// The same over a connection that the caller owns (a test's scratch database,
// another layer's handle): every statement in order, in its current database.
void cargarArchivo(st_mysql* mysql, const std::filesystem::path& archivo);

// Drops the database when it exists, creates it (utf8mb4), makes it current and
// loads the schema file into it.
void recrearBase(Conexion& conexion, const std::string& base, const std::filesystem::path& archivo,
                 int paralelas = 4);

}  // namespace paratzorep::schema
