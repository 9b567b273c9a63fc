// A connection to a MariaDB (or MySQL) server through Connector/C, text protocol for the
// system's own SQL and prepared statements for values that we put into SQL ourselves.
#pragma once

#include <memory>
#include <string>

#include "data/ConexionInterna.h"

struct st_mysql;

namespace paratzorep::data {

struct DatosConexion {
    std::string servidor;  // host name or address; a path starting with "/" is a socket
    std::string usuario;
    std::string password;
    std::int32_t puerto = 3306;
    std::string base;             // may be empty: no current database
    unsigned segundosEspera = 5;  // connect timeout
};

class ConexionMaria final : public detail::ConexionInterna {
  public:
    // Connects; throws host::ErrorDatos with the server's code when the server refuses.
    explicit ConexionMaria(DatosConexion datos);
    ~ConexionMaria() override;
    ConexionMaria(const ConexionMaria&) = delete;
    ConexionMaria& operator=(const ConexionMaria&) = delete;

    bool Abierta() const override { return mysql_ != nullptr; }
    std::string Base() const override { return datos_.base; }
    std::string Servidor() const override { return datos_.servidor; }
    std::int32_t Puerto() const override { return datos_.puerto; }
    std::string Usuario() const override { return datos_.usuario; }

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

    // A text literal, quoted and escaped for this connection's character set.
    std::string Literal(const std::string& texto) const;

  private:
    [[noreturn]] void Falla(const std::string& accion, const std::string& sql) const;

    DatosConexion datos_;
    st_mysql* mysql_ = nullptr;
};

}  // namespace paratzorep::data
