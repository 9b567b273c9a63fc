// The local work file: an SQLite database that keeps the system's desktop-database file names
// ("Auxiliar.mdb"). It holds the report headings and the builders' tables, created on first use:
//
//   Generales        one row of general values the templates print: Titulo, Subtitulo,
//                    ParaLasFechas, Usuario, UsuarioImpresion, Empresa, Sucursal, Filtros,
//                    FechaImpresion, Texto1..Texto5 (more text columns are added on demand by
//                    PasaGeneralesAlRpt)
//   EncabDeudores    Texto1..Texto5
//   Titulo100        Encabezado
//   Utilidad         one row per sold line (profit report); besides the keys of the product's
//                    line, sub-line and brand, their names (NombreLinea, NombreSubLinea,
//                    NombreMarca)
//   TotalesUtilPdV   Gastos
//   ComisXvend1      Clave, MontoTotal
//   ComisXvend2      one row per document (commission brackets)
//   ComisVendXtabla  Vendedor, DeLaTabla, Comision
//
// Every table has an "Id INTEGER PRIMARY KEY" so that recordsets over it write back by key.
#pragma once

#include <string>
#include <vector>

#include "data/ConexionInterna.h"

struct sqlite3;
struct sqlite3_stmt;

namespace paratzorep::data {

class ConexionLocal final : public detail::ConexionInterna {
  public:
    // Opens (creating when missing) the file and its tables; throws host::ErrorDatos.
    explicit ConexionLocal(std::string archivo);
    ~ConexionLocal() override;
    ConexionLocal(const ConexionLocal&) = delete;
    ConexionLocal& operator=(const ConexionLocal&) = delete;

    bool Abierta() const override { return db_ != nullptr; }
    std::string Base() const override { return archivo_; }
    std::string Servidor() const override { return {}; }
    std::int32_t Puerto() const override { return 0; }
    std::string Usuario() const override { return {}; }

    detail::Resultado Consulta(const std::string& sql, const std::string& accion) override;
    std::int64_t Ejecuta(const std::string& sql, const std::string& accion) override;
    std::int64_t EjecutaConValores(const std::string& sql, const std::vector<host::Valor>& valores,
                                   const std::string& accion) override;
    detail::Resultado ConsultaConValores(const std::string& sql,
                                         const std::vector<host::Valor>& valores,
                                         const std::string& accion) override;
    std::int64_t UltimoId() override;
    bool ExisteTabla(const std::string& tabla) override;
    std::string Identificador(std::string_view nombre) const override;
    std::string UpdateDeUnaFila(const std::string& tabla, const std::string& asignaciones,
                                const std::string& condicion) const override;
    std::string IgualQueValor(const std::string& columna) const override;
    std::string InsertSinColumnas(const std::string& tabla) const override;
    void Cierra() override;

    // Names of a table's columns, in order.
    std::vector<std::string> ColumnasDe(const std::string& tabla);

    // The statement that creates one of the file's tables ("" when the file has no such table).
    static std::string Definicion(const std::string& tabla);

  private:
    friend class InsercionLocal;
    void CreaTablas();

    std::string archivo_;
    sqlite3* db_ = nullptr;
};

// One INSERT with "?" placeholders, prepared once and run for many rows. Values come as text
// (nullopt for NULL) and the columns' declared types convert them as SQLite's affinity does:
// "12.5" into a DOUBLE column is a number, "2025-03-05" into a DATE column stays a text.
class InsercionLocal {
  public:
    InsercionLocal(ConexionLocal& local, std::string sql, std::string accion);
    ~InsercionLocal();
    InsercionLocal(const InsercionLocal&) = delete;
    InsercionLocal& operator=(const InsercionLocal&) = delete;

    // Throws host::ErrorDatos when the row is refused.
    void Inserta(const detail::FilaTexto& valores);

  private:
    sqlite3* db_;
    sqlite3_stmt* st_ = nullptr;
    std::string sql_;
    std::string accion_;
};

}  // namespace paratzorep::data
