#include "data/MensajesCliente.h"

#include <gtest/gtest.h>

#include "data/ConexionMaria.h"
#include "host/BaseDD.h"

namespace paratzorep::data {
namespace {

struct CasoMensaje {
    const char* nombre;
    unsigned codigo;
    const char* original;
    const char* esperado;
};

class MensajesDelCliente : public ::testing::TestWithParam<CasoMensaje> {};

TEST_P(MensajesDelCliente, EnEspanolConLoQueCitan) {
    EXPECT_EQ(MensajeMaria(GetParam().codigo, GetParam().original), GetParam().esperado);
}

INSTANTIATE_TEST_SUITE_P(
    Codigos, MensajesDelCliente,
    ::testing::Values(
        CasoMensaje{"PuertoCerrado", 2002, "Can't connect to server on '127.0.0.1' (111)",
                    "No se pudo conectar con el servidor en '127.0.0.1' (111): no está en marcha "
                    "o no escucha en esa dirección"},
        CasoMensaje{"Socket", 2002,
                    "Can't connect to local server through socket '/tmp/x/mysqld.sock' (2)",
                    "No se pudo conectar con el servidor en '/tmp/x/mysqld.sock' (2): no está en "
                    "marcha o no escucha en esa dirección"},
        CasoMensaje{"ControladorOdbc", 2002, "[ma-3.1.15]Can't connect to server on 'h' (115)",
                    "[ma-3.1.15]No se pudo conectar con el servidor en 'h' (115): no está en "
                    "marcha o no escucha en esa dirección"},
        CasoMensaje{"NombreDesconocido", 2005, "Unknown server host 'nohay' (-2)",
                    "No se encontró el servidor 'nohay' (-2): el nombre no se resuelve"},
        CasoMensaje{"ConexionPerdida", 2013, "Lost connection to server during query",
                    "Se perdió la conexión con el servidor durante la consulta"},
        CasoMensaje{"OtroDelCliente", 2999, "Something else",
                    "Error 2999 del cliente de MariaDB: Something else"},
        CasoMensaje{"DelServidorSinCambio", 1146, "La tabla 'x.y' no existe",
                    "La tabla 'x.y' no existe"}),
    [](const auto& i) { return std::string(i.param.nombre); });

TEST(MensajesDelClienteReal, UnPuertoSinServidorSeDiceEnEspanol) {
    DatosConexion d;
    d.servidor = "127.0.0.1";
    d.puerto = 1;  // nothing listens there
    d.usuario = "nadie";
    d.segundosEspera = 2;
    try {
        ConexionMaria c(d);
        FAIL() << "se conectó al puerto 1";
    } catch (const host::ErrorDatos& e) {
        EXPECT_EQ(e.MensajeServidor().rfind("No se pudo conectar con el servidor en '", 0), 0u)
            << e.MensajeServidor();
    }
}

}  // namespace
}  // namespace paratzorep::data
