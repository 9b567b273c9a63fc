#include <gtest/gtest.h>

#include "data/ConexionInterna.h"
#include "support/NombresDeCaso.h"

namespace paratzorep::data::detail {
namespace {

struct CasoFuente {
    std::string fuente;
    bool esSql;
    std::string tabla;
    std::string sql;
};

class Fuentes : public ::testing::TestWithParam<CasoFuente> {};

TEST_P(Fuentes, ClaseTablaYTexto) {
    const auto& c = GetParam();
    EXPECT_EQ(EsTextoSql(c.fuente), c.esSql);
    EXPECT_EQ(TablaDeFuente(c.fuente), c.tabla);
    EXPECT_EQ(SqlDeFuente(c.fuente), c.sql);
}

INSTANTIATE_TEST_SUITE_P(
    Casos, Fuentes,
    ::testing::Values(
        CasoFuente{"clientes", false, "clientes", "SELECT * FROM clientes"},
        CasoFuente{" cxc WHERE Clave>='A' ", false, "cxc", "SELECT * FROM cxc WHERE Clave>='A'"},
        CasoFuente{"lineas ORDER BY Linea", false, "lineas", "SELECT * FROM lineas ORDER BY Linea"},
        CasoFuente{"tanzoreportes.cxc LIMIT 1", false, "tanzoreportes.cxc",
                   "SELECT * FROM tanzoreportes.cxc LIMIT 1"},
        CasoFuente{"`edoctacli` WHERE Id=-9", false, "edoctacli",
                   "SELECT * FROM `edoctacli` WHERE Id=-9"},
        CasoFuente{"SELECT NOW()", true, "", "SELECT NOW()"},
        CasoFuente{"  select Clave from clientes", true, "", "  select Clave from clientes"},
        CasoFuente{"SHOW CREATE TABLE tanzoreportes.x", true, "",
                   "SHOW CREATE TABLE tanzoreportes.x"},
        CasoFuente{"(SELECT 1) UNION (SELECT 2)", true, "", "(SELECT 1) UNION (SELECT 2)"},
        CasoFuente{"selecciones WHERE a=1", false, "selecciones",
                   "SELECT * FROM selecciones WHERE a=1"}),
    pruebas::NombrePor(&CasoFuente::fuente));

TEST(Textos, ReemplazaTodoEsBinarioYNoSeRepite) {
    EXPECT_EQ(ReemplazaTodo("ventas ventas_total Ventas", "ventas", "tbltemp0"),
              "tbltemp0 tbltemp0_total Ventas");
    EXPECT_EQ(ReemplazaTodo("aXXXb", "XXX", "XXXX"), "aXXXXb");
    EXPECT_EQ(ReemplazaTodo("sin cambio", "", "x"), "sin cambio");
}

}  // namespace
}  // namespace paratzorep::data::detail
