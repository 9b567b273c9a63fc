// The renderer's data path: which tables a report reads, how they are joined and
// redirected, and the rows streamed out of MariaDB (through unixODBC and the
// MariaDB driver) or out of the local SQLite work file.
//
// The selection formula is pushed into the query's WHERE (see
// renderer/formula/Traductor.h); what cannot go is evaluated here on each row, so
// that a caller sees only the selected rows. Sort fields become the ORDER BY.
//
// Bounded memory over ODBC: the MariaDB driver keeps a whole result in the client,
// so the query is read in blocks of `filasPorBloque` rows by keyset paging: the
// ORDER BY ends with the unique key of every table, and each block starts after
// the last row of the one before ("(k1 > v1) OR (k1 = v1 AND k2 > v2) ...", with
// NULLs placed as the server sorts them: first ascending, last descending). A
// table without a primary or unique key cannot be paged: its query is read in
// one block. Within a block, rows come in bound rowsets of 256 (columns read as
// text, then converted: zero dates become empty dates). SQLite steps through its
// result and needs no paging.
//
// TZOREP_DEBUG_SQL=1 prints every statement sent to stderr; Filas::sqlEnviado()
// keeps them too.
#pragma once

#include <cstddef>
#include <filesystem>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "renderer/Valor.h"
#include "renderer/formula/Evaluador.h"
#include "renderer/formula/Formula.h"

namespace paratzorep::renderer::data {

// A data failure with its context: what was being done, the SQL, the server's
// SQLSTATE and native code. what() is a Spanish message for the user.
class ErrorDatos : public std::runtime_error {
  public:
    ErrorDatos(std::string accion, std::string detalle, std::string sql = {},
               std::string estado = {}, long codigo = 0);
    const std::string& accion() const { return accion_; }
    const std::string& detalle() const { return detalle_; }
    const std::string& sql() const { return sql_; }
    const std::string& estado() const { return estado_; }  // SQLSTATE
    long codigo() const { return codigo_; }                // server's native code

  private:
    std::string accion_, detalle_, sql_, estado_;
    long codigo_;
};

// A table or a field that the report reads and the database lacks: `tabla` and `campo` as the
// report names them (campo "" when the table itself is missing), `origen` where it was looked
// for. Found before the query is sent, so that the message can name the template's line.
class ErrorNombre : public ErrorDatos {
  public:
    ErrorNombre(std::string tabla, std::string campo, std::string origen);
    const std::string& tabla() const { return tabla_; }
    const std::string& campo() const { return campo_; }
    const std::string& origen() const { return origen_; }

  private:
    std::string tabla_, campo_, origen_;
};

// One table of the template, as the query names it (its template name is the
// alias in SQL, so the formulas' {tabla.campo} stay valid) and where it is read.
struct TablaConsulta {
    std::string nombre;  // template name, e.g. "edoctacli"
    std::string origen;  // "db.table" or "table" on the server; a table of the local file
};

// How a table joins the ones before it: each pair is (field of an earlier table,
// field of this table).
struct Union {
    bool izquierda = false;  // LEFT JOIN; otherwise INNER JOIN
    std::vector<std::pair<formula::RefCampo, formula::RefCampo>> campos;
};

struct DescripcionConsulta {
    std::vector<TablaConsulta> tablas;        // the first one drives the query
    std::vector<Union> uniones;               // one per table after the first
    std::vector<formula::RefCampo> columnas;  // the fields the report shows
    std::string seleccion;                    // selection formula (may be blank)
    std::vector<std::string> orden;           // sort fields "+{t.f}" / "-{t.f}"
};

// The request's data-file entries "tabla*tablatrabajo", several joined by ';':
// template table name (lower case) -> work table.
std::map<std::string, std::string> leerArchivosDatos(std::string_view entradas);

// Where a template table is read: the work table when an entry names it, else
// the table itself; qualified with `base` when it carries no "." (and `base` is
// not empty).
std::string resolverTabla(std::string_view nombre, const std::map<std::string, std::string>& mapeos,
                          std::string_view base);

struct Opciones {
    std::size_t filasPorBloque = 20000;  // rows per block over ODBC
    // Rows per block when no index serves the order: each block then makes the
    // server sort the whole selection, so blocks are fewer and larger.
    std::size_t filasPorBloqueSinIndice = 200000;
    // When no index serves the order (the server's plan sorts), sort what follows the first
    // block once into a temporary table on the server (falls back to filasPorBloqueSinIndice
    // if refused).
    bool ordenEnTablaTemporal = true;
    // Read the next block on a second connection while the current one is consumed.
    bool leerAdelantado = true;
    // Named formulas and parameters that the remaining selection may use; the
    // row's fields come from the stream itself.
    const formula::Contexto* contexto = nullptr;
    // Seconds a statement waits for a silent server before it fails with a message that says
    // so (0: no limit); the connections' read, write and connect timeouts.
    unsigned segundosEspera = 0;
};

// A stream of selected rows in the requested order.
class Filas : public formula::Contexto {
  public:
    ~Filas() override = default;

    // Moves to the next selected row; false at the end.
    virtual bool siguiente() = 0;
    // The columns: the description's, then the sort fields and the selection's
    // fields that were not among them.
    const std::vector<formula::RefCampo>& columnas() const { return columnas_; }
    // Index of a column, or -1. Names compare without regard to letter case.
    int indice(std::string_view tabla, std::string_view campo) const;
    const Valor& valor(std::size_t i) const { return fila_.at(i); }
    const std::vector<Valor>& fila() const { return fila_; }

    // Contexto: the current row's fields; formulas and parameters from Opciones.
    Valor campo(std::string_view tabla, std::string_view campo) const override;
    Valor formula(std::string_view nombre) const override;
    Valor parametro(std::string_view nombre) const override;
    Valor resumen(const formula::RefResumen& r) const override;

    // Every statement sent so far, in order.
    const std::vector<std::string>& sqlEnviado() const { return sql_; }
    // Parts of the selection evaluated in memory (their formula text).
    std::vector<std::string> seleccionEnMemoria() const;
    // Rows read from the source, and rows handed out.
    std::size_t leidas() const { return leidas_; }
    std::size_t entregadas() const { return entregadas_; }

  protected:
    Filas(const DescripcionConsulta& d, const Opciones& o);
    // Whether the current row passes the part of the selection kept in memory.
    bool pasaResto();
    void registrarSql(const std::string& sql);

    formula::Formula seleccion_;
    std::vector<formula::CampoOrden> orden_;
    std::vector<const formula::Nodo*> resto_;
    std::vector<formula::RefCampo> columnas_;
    std::vector<Valor> fila_;
    Opciones opciones_;
    std::vector<std::string> sql_;
    std::size_t leidas_ = 0;
    std::size_t entregadas_ = 0;
};

// Opens the query on MariaDB through unixODBC with the runner's Connect string
// ("DSN=myodbc3-test;SERVER=...;DB=...;UID=...;PWD=..."). The data source must
// be known to the driver manager (ODBCINI set before the first ODBC call).
std::unique_ptr<Filas> abrirOdbc(const std::string& connect, const DescripcionConsulta& d,
                                 const Opciones& o = {});

// Opens the query on the local SQLite work file. The connection gets the
// collation "tz_general_ci" and the function "tz_locate" that the pushed SQL
// uses (the same comparison as the formulas').
std::unique_ptr<Filas> abrirSqlite(const std::filesystem::path& archivo,
                                   const DescripcionConsulta& d, const Opciones& o = {});

}  // namespace paratzorep::renderer::data
