// What our BaseDD needs from a connection, whatever it reaches: the MariaDB server
// (ConexionMaria) or the local work file (ConexionLocal). Internal to the data layer.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/BaseDD.h"
#include "host/Recordset.h"

namespace paratzorep::data::detail {

// One row of a streamed result: each column's text, nullopt for NULL. The texts are valid
// only during the call that receives them.
using FilaTexto = std::vector<std::optional<std::string_view>>;

struct Resultado {
    std::vector<host::Columna> columnas;
    std::vector<std::vector<host::Valor>> filas;
    // The base table the rows come from when they all come from one ("" otherwise); may be
    // qualified "base.tabla".
    std::string tablaUnica;
};

class ConexionInterna : public host::ConexionBdD {
  public:
    // Runs a statement that returns rows. Throws host::ErrorDatos(accion, sql, ...).
    virtual Resultado Consulta(const std::string& sql, const std::string& accion) = 0;
    // Runs a statement; returns the rows it matched or changed.
    virtual std::int64_t Ejecuta(const std::string& sql, const std::string& accion) = 0;
    // Runs a statement with "?" placeholders bound to `valores` (prepared, never spliced).
    virtual std::int64_t EjecutaConValores(const std::string& sql,
                                           const std::vector<host::Valor>& valores,
                                           const std::string& accion) = 0;
    // Same, for a statement that returns rows.
    virtual Resultado ConsultaConValores(const std::string& sql,
                                         const std::vector<host::Valor>& valores,
                                         const std::string& accion) = 0;
    // Runs a statement that returns rows and hands them over one at a time, as the server
    // sends them, so that memory does not grow with the result. The default reads the whole
    // result first. An exception from `fila` ends the reading and passes on.
    virtual void Recorre(const std::string& sql, const std::string& accion,
                         const std::function<void(const FilaTexto&)>& fila);
    virtual std::int64_t UltimoId() = 0;
    virtual bool ExisteTabla(const std::string& tabla) = 0;
    // An identifier quoted for this engine; "a.b" is quoted part by part.
    virtual std::string Identificador(std::string_view nombre) const = 0;
    // "UPDATE <tabla> SET <asignaciones> WHERE <condicion>" limited to one row.
    virtual std::string UpdateDeUnaFila(const std::string& tabla, const std::string& asignaciones,
                                        const std::string& condicion) const = 0;
    // Null-safe equality of a column and a placeholder.
    virtual std::string IgualQueValor(const std::string& columna) const = 0;
    // INSERT with no explicit column.
    virtual std::string InsertSinColumnas(const std::string& tabla) const = 0;
    virtual void Cierra() = 0;
};

// The connection behind a handle; throws host::ErrorDatos when it is empty, closed or not ours.
ConexionInterna& Interna(const host::Conexion& cn, const std::string& accion);

// Case-insensitive comparison and trimming shared by the data layer.
bool IgualSinMayusculas(std::string_view a, std::string_view b);
std::string Recorta(std::string_view s);
std::string Minusculas(std::string_view s);
// Every occurrence of `buscado` replaced by `nuevo` (binary comparison).
std::string ReemplazaTodo(std::string texto, std::string_view buscado, std::string_view nuevo);

// Sources as AbrirTabla takes them: SQL text (SELECT, SHOW, ...) or a table name optionally
// followed by " WHERE ...", " ORDER BY ...", " LIMIT ...".
bool EsTextoSql(std::string_view fuente);
// The table name that a table-form source starts with ("" for SQL text).
std::string TablaDeFuente(std::string_view fuente);
// The SQL text that reads a source.
std::string SqlDeFuente(std::string_view fuente, std::string_view columnas = "*");

}  // namespace paratzorep::data::detail
