// Pushdown: formula -> SQL text, and what stays in memory.
#include <gtest/gtest.h>

#include "renderer/formula/Traductor.h"
#include "support/NombresDeCaso.h"
#include "tests/renderer/formula/FormulasDeReportes.h"

namespace paratzorep::renderer::formula {
namespace {

struct Caso {
    const char* formula;
    const char* mariadb;
    const char* sqlite;
    std::size_t resto = 0;  // parts left for memory
};

class Traduccion_ : public ::testing::TestWithParam<Caso> {};

TEST_P(Traduccion_, SqlExacto) {
    const Formula f = analizar(GetParam().formula);
    const Traduccion m = traducirSeleccion(f, Dialecto::MariaDB);
    EXPECT_EQ(m.sql, GetParam().mariadb);
    EXPECT_EQ(m.resto.size(), GetParam().resto);
    const Traduccion s = traducirSeleccion(f, Dialecto::SQLite);
    EXPECT_EQ(s.sql, GetParam().sqlite);
    EXPECT_EQ(s.resto.size(), GetParam().resto);
}

INSTANTIATE_TEST_SUITE_P(
    Casos, Traduccion_,
    ::testing::Values(
        Caso{"{edoctacli.IdMoneda}=1", "`edoctacli`.`IdMoneda` = 1",
             "\"edoctacli\".\"IdMoneda\" = 1"},
        Caso{"{edoctacli.Fecha}>=Date(2024,3,5)", "`edoctacli`.`Fecha` >= DATE'2024-03-05'",
             "\"edoctacli\".\"Fecha\" >= '2024-03-05'"},
        Caso{"{t.m} < DateTime(2024,3,5,8,0,9)", "`t`.`m` < TIMESTAMP'2024-03-05 08:00:09'",
             "\"t\".\"m\" < '2024-03-05 08:00:09'"},
        Caso{"{edoctacli.Clave}='C''01\\'",
             "`edoctacli`.`Clave` = _utf8mb4'C''01\\\\' COLLATE utf8mb4_general_ci",
             "\"edoctacli\".\"Clave\" = 'C''01\\' COLLATE tz_general_ci"},
        Caso{"'x' <> {t.a}", "_utf8mb4'x' COLLATE utf8mb4_general_ci <> `t`.`a`",
             "'x' COLLATE tz_general_ci <> \"t\".\"a\""},
        Caso{"not ('BONIFICACION POR CANCELACION' in {edoctacli.Concepto})",
             "NOT (LOCATE(_utf8mb4'BONIFICACION POR CANCELACION' COLLATE utf8mb4_general_ci, "
             "`edoctacli`.`Concepto`) > 0)",
             "NOT (tz_locate('BONIFICACION POR CANCELACION', \"edoctacli\".\"Concepto\") > 0)"},
        Caso{"( {separacionmet.MetalOrigen}='X1' OR {separacionmetdetalle.MetalDestino}='X1')",
             "`separacionmet`.`MetalOrigen` = _utf8mb4'X1' COLLATE utf8mb4_general_ci OR "
             "`separacionmetdetalle`.`MetalDestino` = _utf8mb4'X1' COLLATE utf8mb4_general_ci",
             "\"separacionmet\".\"MetalOrigen\" = 'X1' COLLATE tz_general_ci OR "
             "\"separacionmetdetalle\".\"MetalDestino\" = 'X1' COLLATE tz_general_ci"},
        Caso{"{t.a} in [1, -2.5]", "`t`.`a` = 1 OR `t`.`a` = -2.5",
             "\"t\".\"a\" = 1 OR \"t\".\"a\" = -2.5"},
        Caso{"{t.a} in [1, 2] and {t.b} = 3", "(`t`.`a` = 1 OR `t`.`a` = 2) AND `t`.`b` = 3",
             "(\"t\".\"a\" = 1 OR \"t\".\"a\" = 2) AND \"t\".\"b\" = 3"},
        Caso{"{t.a} = 1 and {t.b} = {t.c}", "`t`.`a` = 1 AND `t`.`b` = `t`.`c`",
             "\"t\".\"a\" = 1 AND \"t\".\"b\" = \"t\".\"c\""},
        // what stays in memory: the and-parts that cannot go; an or goes whole or not at all
        Caso{"{t.a} = 1 and Trim({t.b}) = 'x'", "`t`.`a` = 1", "\"t\".\"a\" = 1", 1},
        Caso{"{t.a} = 1 or Trim({t.b}) = 'x'", "", "", 1},
        Caso{"{@F} = 1 and {t.a} > 0.25 and {?P} = 'x'", "`t`.`a` > 0.25", "\"t\".\"a\" > 0.25", 2},
        Caso{"{t.a} + 1 > 2", "", "", 1},
        Caso{"{t.a} = 'x' and 'x' = 1", "`t`.`a` = _utf8mb4'x' COLLATE utf8mb4_general_ci",
             "\"t\".\"a\" = 'x' COLLATE tz_general_ci", 1},
        Caso{"True", "TRUE", "1"}, Caso{"", "", ""}),
    pruebas::NombrePor(&Caso::formula, pruebas::NombreDeFormula));

TEST(Traduccion, CadaSeleccionDeLosReportesVaCompleta) {
    for (const auto& f : prueba::seleccionesDeReportes()) {
        SCOPED_TRACE(f);
        const Formula x = analizar(f);
        for (auto d : {Dialecto::MariaDB, Dialecto::SQLite}) {
            const Traduccion t = traducirSeleccion(x, d);
            EXPECT_TRUE(t.completa());
            EXPECT_FALSE(t.sql.empty());
        }
    }
}

TEST(Traduccion, FechaImposibleEsUnErrorPosicionado) {
    try {
        traducirSeleccion(analizar("{t.f} >= Date(2024,13,1)"), Dialecto::MariaDB);
        FAIL();
    } catch (const ErrorFormula& e) {
        EXPECT_EQ(e.columna(), 10);
        EXPECT_EQ(e.detalle(), "la fecha 2024,13,1 no existe");
    }
}

TEST(Traduccion, TextoNoUtf8SeQuedaEnMemoria) {
    const Traduccion t = traducirSeleccion(analizar("{t.a} = '\xff'"), Dialecto::MariaDB);
    EXPECT_TRUE(t.sql.empty());
    EXPECT_EQ(t.resto.size(), 1u);
}

TEST(Traduccion, CamposDeOrden) {
    std::vector<CampoOrden> c = {analizarCampoOrden("+{edoctacli.Fecha}"),
                                 analizarCampoOrden("-{compras3.Cantidad}")};
    EXPECT_EQ(ordenSql(c, Dialecto::MariaDB),
              "`edoctacli`.`Fecha` ASC, `compras3`.`Cantidad` DESC");
    EXPECT_EQ(ordenSql(c, Dialecto::SQLite),
              "\"edoctacli\".\"Fecha\" ASC, \"compras3\".\"Cantidad\" DESC");
    EXPECT_EQ(identificadorSql("a`b", Dialecto::MariaDB), "`a``b`");
    EXPECT_EQ(numeroSql(1e20), "1e+20");
    EXPECT_EQ(numeroSql(0.1), "0.1");
    EXPECT_EQ(numeroSql(-0.0), "0");
}

}  // namespace
}  // namespace paratzorep::renderer::formula
