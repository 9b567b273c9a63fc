// `tzorep db demo` refuses bad arguments before it touches any server.
#include <gtest/gtest.h>

#include <filesystem>

#include "support/NombresDeCaso.h"
#include "support/Soporte.h"

namespace paratzorep::cli {
namespace {

struct CasoUso {
    const char* nombre;
    std::vector<std::string> args;
    const char* mensaje;
};

class UsoDemoTest : public ::testing::TestWithParam<CasoUso> {};

TEST_P(UsoDemoTest, TerminaConDosYUnMensajeSinIniciarNada) {
    const auto& c = GetParam();
    pruebas::CarpetaTemporal home;
    std::vector<std::string> args = {"--home", home.ruta().string(), "db", "demo"};
    args.insert(args.end(), c.args.begin(), c.args.end());
    const auto r = pruebas::ejecutarTzorep(args);
    EXPECT_EQ(r.estado, 2) << r.errores;
    EXPECT_NE(r.errores.find(c.mensaje), std::string::npos) << r.errores;
    EXPECT_NE(r.errores.find("Uso: tzorep"), std::string::npos) << r.errores;
    EXPECT_TRUE(std::filesystem::is_empty(home.ruta()));
}

INSTANTIATE_TEST_SUITE_P(
    Casos, UsoDemoTest,
    ::testing::Values(CasoUso{"escalaCero", {"--scale", "0"}, "la escala debe ser"},
                      CasoUso{"escalaGrande", {"--scale=1001"}, "la escala debe ser"},
                      CasoUso{"escalaTexto", {"--scale", "diez"}, "'diez'"},
                      CasoUso{"escalaVacia", {"--scale="}, "la escala debe ser"},
                      CasoUso{"semillaNegativa", {"--seed", "-1"}, "la semilla debe ser"},
                      CasoUso{"semillaDecimal", {"--seed", "1.5"}, "'1.5'"},
                      CasoUso{"semillaEnorme", {"--seed", "99999999999999999999999"}, "semilla"},
                      CasoUso{"faltaValor", {"--scale"}, "falta el valor de --scale"},
                      CasoUso{"desconocido", {"--escala", "2"}, "argumento desconocido: --escala"},
                      CasoUso{"posicional", {"10"}, "argumento desconocido: 10"}),
    pruebas::PorNombre());

}  // namespace
}  // namespace paratzorep::cli
