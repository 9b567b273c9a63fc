// What tzorep says about itself: version, help of each command, did-you-mean, the list of
// reports and the printers, through the program.
#include "apps/tzorep/Ayuda.h"

#include <gtest/gtest.h>

#include "support/NombresDeCaso.h"
#include "support/Soporte.h"

namespace paratzorep::cli {
namespace {

using pruebas::ejecutarTzorep;

bool Contiene(const std::string& texto, const std::string& parte) {
    return texto.find(parte) != std::string::npos;
}

struct CasoParecida {
    std::string nombre, palabra, esperada;
};

class Parecidas : public ::testing::TestWithParam<CasoParecida> {};

TEST_P(Parecidas, SugiereLaPalabraConocidaMasCercana) {
    const std::vector<std::string> conocidas = {"db",
                                                "list",
                                                "show",
                                                "print",
                                                "printers",
                                                "templates",
                                                "BitacoraUsuarios",
                                                "CargosClientes",
                                                "CargosProveedores"};
    EXPECT_EQ(Parecida(GetParam().palabra, conocidas), GetParam().esperada);
}

INSTANTIATE_TEST_SUITE_P(Casos, Parecidas,
                         ::testing::Values(CasoParecida{"LetraDeMenos", "prnt", "print"},
                                           CasoParecida{"LetrasCambiadas", "lsit", "list"},
                                           CasoParecida{"SinDistinguirMayusculas",
                                                        "bitacorausuario", "BitacoraUsuarios"},
                                           CasoParecida{"ComienzoDeUnaSola", "templ", "templates"},
                                           CasoParecida{"ComienzoDeDos", "Cargos", ""},
                                           CasoParecida{"Lejana", "frobnicar", ""},
                                           CasoParecida{"Exacta", "printers", "printers"}),
                         pruebas::PorNombre());

TEST(TzorepAyuda, VersionYAyudaDeCadaOrden) {
    for (const std::string v : {"--version", "-V"}) {
        auto r = ejecutarTzorep({v});
        EXPECT_EQ(r.estado, 0) << r.errores;
        EXPECT_EQ(r.salida.rfind("tzorep 0.", 0), 0u) << r.salida;
        EXPECT_TRUE(Contiene(r.salida, "plantillas versión 1")) << r.salida;
    }
    auto r = ejecutarTzorep({"help"});
    EXPECT_EQ(r.estado, 0);
    EXPECT_TRUE(Contiene(r.salida, "printers")) << r.salida;
    // help ORDEN and ORDEN --help say the same: the options, what --set takes, examples.
    for (const std::string orden :
         {"db", "list", "show", "print", "press", "printers", "templates", "movenlinea"}) {
        SCOPED_TRACE(orden);
        auto ayuda = ejecutarTzorep({"help", orden});
        auto opcion = ejecutarTzorep({orden, "--help"});
        EXPECT_EQ(ayuda.estado, 0);
        EXPECT_EQ(opcion.estado, 0);
        EXPECT_EQ(ayuda.salida, opcion.salida);
        EXPECT_TRUE(Contiene(ayuda.salida, "Uso: tzorep")) << ayuda.salida;
        EXPECT_TRUE(Contiene(ayuda.salida, "Ejemplos:")) << ayuda.salida;
    }
    auto print = ejecutarTzorep({"print", "BitacoraUsuarios", "--set", "x=1", "-h"});
    EXPECT_EQ(print.estado, 0);
    for (const std::string parte : {"dd/mm/aaaa", "casillas 0 o 1", "#índice", "--to screen",
                                    "número en 'tzorep list'", "--out -"})
        EXPECT_TRUE(Contiene(print.salida, parte)) << parte << "\n" << print.salida;
}

TEST(TzorepAyuda, PalabrasDesconocidasConSugerencia) {
    struct Caso {
        std::vector<std::string> args;
        std::string mensaje;
    };
    const std::vector<Caso> casos = {
        {{"prnt"}, "orden desconocida: 'prnt'. ¿Quiso decir 'print'?"},
        {{"help", "lst"}, "no hay ayuda de 'lst': no es una orden. ¿Quiso decir 'list'?"},
        {{"--verison"}, "opción desconocida: --verison. ¿Quiso decir '--version'?"},
        {{"print", "BitacoraUsuario"},
         "no existe el reporte 'BitacoraUsuario' (vea tzorep list). ¿Quiso decir "
         "'BitacoraUsuarios'?"},
        {{"list", "--jsno"}, "list solo admite --json"},
    };
    for (const auto& c : casos) {
        SCOPED_TRACE(c.args[0]);
        auto r = ejecutarTzorep(c.args);
        EXPECT_EQ(r.estado, 2);
        EXPECT_TRUE(Contiene(r.errores, c.mensaje)) << r.errores;
        EXPECT_TRUE(r.salida.empty()) << r.salida;
    }
}

TEST(TzorepAyuda, ListaEnJsonConTituloYDisponibilidad) {
    auto r = ejecutarTzorep({"list", "--json"});
    ASSERT_EQ(r.estado, 0) << r.errores;
    EXPECT_EQ(r.salida.rfind("[\n {\"number\":1,\"entry\":\"ADSClientes\"", 0), 0u) << r.salida;
    EXPECT_TRUE(Contiene(r.salida,
                         "{\"number\":6,\"entry\":\"BitacoraUsuarios\",\"form\":"
                         "\"RepAdmMovUser\",\"option\":105,\"available\":true,"
                         "\"title\":\"Bitácora de usuarios\"}"))
        << r.salida;
    EXPECT_TRUE(Contiene(r.salida,
                         "\"entry\":\"CargosClientes\",\"form\":\"RepAdmCargos\","
                         "\"option\":215,\"available\":true,\"title\":\"Cargos a "
                         "clientes\"}"))
        << r.salida;
    r = ejecutarTzorep({"list"});
    EXPECT_TRUE(
        Contiene(r.salida, "RepAdmMovUser            105  sí          Bitácora de usuarios"))
        << r.salida;
}

TEST(TzorepAyuda, ImpresorasSinServidorDejaLaDePdf) {
    pruebas::CarpetaTemporal tmp;
    auto r = ejecutarTzorep({"--home", tmp.ruta().string(), "printers"},
                            {{"CUPS_SERVER", "127.0.0.1:9"}});
    EXPECT_EQ(r.estado, 0) << r.errores;
    EXPECT_EQ(r.salida, "  Impresora   Descripción\n  pdfcreator  guarda el reporte como PDF en " +
                            (tmp.ruta() / "pdfs/").string() + "\n");
    EXPECT_TRUE(Contiene(r.errores, "no respondió el servidor de impresión")) << r.errores;
}

}  // namespace
}  // namespace paratzorep::cli
