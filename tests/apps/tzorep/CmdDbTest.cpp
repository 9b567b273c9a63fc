// The tzorep program: global options, dispatch, exit codes and the db commands.
#include <gtest/gtest.h>

#include <chrono>
#include <fstream>

#include "support/Soporte.h"

namespace paratzorep::cli {
namespace {

using pruebas::CarpetaTemporal;
using pruebas::ejecutarTzorep;

bool contiene(const std::string& texto, const std::string& parte) {
    return texto.find(parte) != std::string::npos;
}

TEST(TzorepUso, ErroresDeUsoSalenCon2) {
    CarpetaTemporal tmp;
    const std::string home = tmp.ruta().string();
    const std::vector<std::vector<std::string>> casos = {
        {},
        {"--home"},
        {"--home", home},
        {"--home="},
        {"--bogus", "db", "status"},
        {"frobnicar"},
        {"--home", home, "db"},
        {"--home", home, "db", "reiniciar"},
        {"--home", home, "db", "start", "de_mas"},
    };
    for (const auto& args : casos) {
        auto r = ejecutarTzorep(args);
        std::string todo;
        for (const auto& a : args) todo += a + " ";
        EXPECT_EQ(r.estado, 2) << todo << "\n" << r.errores;
        EXPECT_TRUE(contiene(r.errores, "Uso:")) << todo << "\n" << r.errores;
        EXPECT_TRUE(r.salida.empty()) << todo;
    }
}

TEST(TzorepUso, AyudaVaALaSalidaConCero) {
    auto r = ejecutarTzorep({"--help"});
    EXPECT_EQ(r.estado, 0);
    EXPECT_TRUE(contiene(r.salida, "db start"));
    EXPECT_TRUE(contiene(r.salida, "3 detenido"));
}

TEST(TzorepDb, EstadoYParadaSinServidor) {
    CarpetaTemporal tmp;
    auto r = ejecutarTzorep({"--home", tmp.ruta().string(), "db", "status"});
    EXPECT_EQ(r.estado, 3) << r.errores;
    EXPECT_TRUE(contiene(r.salida, "detenido")) << r.salida;

    r = ejecutarTzorep({"--home=" + tmp.ruta().string(), "db", "stop"});
    EXPECT_EQ(r.estado, 0) << r.errores;
    EXPECT_TRUE(contiene(r.salida, "no estaba en marcha")) << r.salida;
}

TEST(TzorepDb, EstadoDelServidorDePruebaPorVariableDeEntorno) {
    const auto& s = pruebas::servidorDePrueba();
    auto r = ejecutarTzorep({"db", "status"}, {{"TZOREP_HOME", pruebas::homeDePrueba().string()}});
    EXPECT_EQ(r.estado, 0) << r.errores;
    EXPECT_TRUE(contiene(r.salida, "en marcha")) << r.salida;
    EXPECT_TRUE(contiene(r.salida, "Puerto: " + std::to_string(s.puerto))) << r.salida;
    EXPECT_TRUE(contiene(r.salida, "Socket: " + s.socket)) << r.salida;
    EXPECT_FALSE(contiene(r.salida, s.password)) << "la contraseña no se muestra";
}

TEST(TzorepDb, SegundoInicioRechazadoAlInstante) {
    pruebas::servidorDePrueba();
    const auto t0 = std::chrono::steady_clock::now();
    auto r = ejecutarTzorep({"--home", pruebas::homeDePrueba().string(), "db", "start"});
    const double s = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
    EXPECT_EQ(r.estado, 1);
    EXPECT_TRUE(contiene(r.errores, "ya está en marcha")) << r.errores;
    EXPECT_LT(s, 1.0);
    // The fixture's server keeps serving.
    auto m = pruebas::conectar(pruebas::servidorDePrueba());
    EXPECT_EQ(pruebas::valor(m.get(), "SELECT 1"), "1");
}

TEST(TzorepDb, HomeInservibleDaMensajeSinCaerse) {
    CarpetaTemporal tmp;
    { std::ofstream(tmp / "archivo") << "x"; }
    auto r = ejecutarTzorep({"--home", (tmp / "archivo" / "casa").string(), "db", "start"});
    EXPECT_EQ(r.estado, 1);
    EXPECT_TRUE(contiene(r.errores, "No se pudo crear la carpeta")) << r.errores;
}

}  // namespace
}  // namespace paratzorep::cli
