// A connection to a MariaDB (or MySQL) server through Connector/C, text protocol for the
// system's own SQL and prepared statements for values that we put into SQL ourselves.
#pragma once

#include <memory>
#include <optional>
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
    // How long a statement waits for the server's answer before the connection gives up
    // (0: no limit); SegundosDeEspera() unless the caller says otherwise.
    std::optional<unsigned> segundosRespuesta;
};

// The process-wide limit on a server's silence, in seconds (0: none): a statement whose answer
// does not start within it fails with a message that says the server stopped answering. The
// host sets it from its settings; kSegundosDeEspera by default.
inline constexpr unsigned kSegundosDeEspera = 120;
unsigned& SegundosDeEspera();

// What the host tells a user to do when the server does not answer at all (for tzorep:
// "tzorep db start"); added to the message after "¿Está arrancado el servidor?".
std::string& ComoArrancarServidor();
// "¿Está arrancado el servidor?" and the host's way to start it.
std::string ConsejoServidor();
// Whether a client error code means that the server could not be reached or stopped answering
// (nothing the server itself said).
bool EsServidorInalcanzable(int codigo);

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
    // What it was opened with, and the server's id for it (CONNECTION_ID()).
    const DatosConexion& Datos() const { return datos_; }
    unsigned long Hilo() const;

    detail::Resultado Consulta(const std::string& sql, const std::string& accion) override;
    std::int64_t Ejecuta(const std::string& sql, const std::string& accion) override;
    std::int64_t EjecutaConValores(const std::string& sql, const std::vector<host::Valor>& valores,
                                   const std::string& accion) override;
    detail::Resultado ConsultaConValores(const std::string& sql,
                                         const std::vector<host::Valor>& valores,
                                         const std::string& accion) override;
    // Streams the rows (mysql_use_result): the connection is busy until the last row is read.
    void Recorre(const std::string& sql, const std::string& accion,
                 const std::function<void(const detail::FilaTexto&)>& fila) override;
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

    // Seconds the last statement waited for the server (to tell a timeout from a lost server).
    unsigned SegundosRespuesta() const;

    DatosConexion datos_;
    st_mysql* mysql_ = nullptr;
    double inicio_ = 0;  // when the statement under way was sent (steady clock, seconds)
};

}  // namespace paratzorep::data
