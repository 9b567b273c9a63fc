#include "data/CapaDatos.h"

#include <gtest/gtest.h>

#include "EntornoPrueba.h"
#include "support/NombresDeCaso.h"

namespace paratzorep::data {
namespace {

struct CasoSql {
    std::string nombre, select, columna, valor, sufijo, esperado;
};

class SqlDeBuscarXclave : public ::testing::TestWithParam<CasoSql> {};

TEST_P(SqlDeBuscarXclave, ArmaElTextoTalCual) {
    const auto& c = GetParam();
    EXPECT_EQ(CapaDatos::SqlBuscarXclave(c.select, c.columna, c.valor, c.sufijo), c.esperado);
}

INSTANTIATE_TEST_SUITE_P(
    Casos, SqlDeBuscarXclave,
    ::testing::Values(CasoSql{"SelectCompleto", "SELECT * FROM clientes", "Clave", "A1", "",
                              "SELECT * FROM clientes WHERE Clave='A1'"},
                      CasoSql{"SufijoSinEspacio", "clientes", "Clave", "A1", "ORDER BY Nombre",
                              "clientes WHERE Clave='A1' ORDER BY Nombre"},
                      CasoSql{"SufijoConEspacio", "clientes", "Clave", "A1", " LIMIT 1",
                              "clientes WHERE Clave='A1' LIMIT 1"},
                      CasoSql{"ValorConComilla", "clientes", "Clave", "O'Hara", "",
                              "clientes WHERE Clave='O'Hara'"},
                      CasoSql{"ValorVacio", "clientes", "Clave", "", "", "clientes WHERE Clave=''"},
                      CasoSql{"ValorXXX", "clientes", "Clave", "XXX", "",
                              "clientes WHERE Clave='XXX'"}),
    pruebas::PorNombre());

class CapaDatosTest : public prueba::ConBase {
  protected:
    void SetUp() override {
        ConBase::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        Ejecuta("CREATE TABLE clientes (Clave VARCHAR(10) PRIMARY KEY, Nombre VARCHAR(40))");
        Ejecuta("INSERT INTO clientes VALUES ('A1','Uno'),('B2','Dos'),('C3','Tres')");
        capa.emplace(base);
        base->Olvida();
    }
    std::optional<CapaDatos> capa;
};

struct CasoConsulta {
    std::string nombre;
    std::string fuente;
    std::string baseDatos;  // "*" for the test's own database
    int resultado;
};

class ResultadosDeAbrirConsulta : public CapaDatosTest,
                                  public ::testing::WithParamInterface<CasoConsulta> {};

TEST_P(ResultadosDeAbrirConsulta, CodigoYConexionCerrada) {
    std::string bd = GetParam().baseDatos == "*" ? nombreBase : GetParam().baseDatos;
    host::Recordset rs;
    std::uint8_t resultado = 99;
    capa->AbrirConsulta(rs, GetParam().fuente, 0, bd, resultado);
    EXPECT_EQ(resultado, GetParam().resultado);
    EXPECT_EQ(base->aperturas, 1);
    EXPECT_EQ(base->cierres, 1);
    if (resultado == 0) {
        EXPECT_FALSE(rs.Conexion());
        EXPECT_GT(rs.RecordCount(), 0);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Casos, ResultadosDeAbrirConsulta,
    ::testing::Values(CasoConsulta{"TablaEnSuBase", "clientes", "*", 0},
                      CasoConsulta{"SelectEnLaBaseDeLaEmpresa", "SELECT Nombre FROM clientes", "",
                                   0},
                      CasoConsulta{"BaseQueNoExiste", "clientes", "base_que_no_existe", 1},
                      CasoConsulta{"TablaQueNoExiste", "noexiste", "*", 2},
                      CasoConsulta{"SqlConComillaSuelta", "clientes WHERE Clave='O'Hara'", "*", 2}),
    pruebas::PorNombre());

TEST_F(CapaDatosTest, BaseVaciaDevuelveLaDeLaEmpresa) {
    host::Recordset rs;
    std::string bd;
    std::uint8_t resultado = 99;
    capa->AbrirConsulta(rs, "clientes ORDER BY Clave", 0, bd, resultado);
    ASSERT_EQ(resultado, 0);
    EXPECT_EQ(bd, nombreBase);
    EXPECT_EQ(base->basesAbiertas, std::vector<std::string>{nombreBase});
    rs.MoveLast();
    EXPECT_EQ(rs["clave"].Texto(), "C3");
}

TEST_F(CapaDatosTest, BuscarXclaveEnLaConexionDelLlamador) {
    auto cn = Abre();
    host::Recordset rs;
    bool encontrado = false;
    capa->BuscarXclave("clientes", "Clave", "B2", 0, rs, cn, false, "ORDER BY Nombre", encontrado);
    ASSERT_TRUE(encontrado);
    EXPECT_EQ(rs["Nombre"].Texto(), "Dos");
    EXPECT_EQ(rs.Fuente(), "clientes WHERE Clave='B2' ORDER BY Nombre");
    EXPECT_TRUE(cn && cn->Abierta());

    capa->BuscarXclave("SELECT * FROM clientes", "Clave", "Z'9", 0, rs, cn, false, "", encontrado);
    EXPECT_FALSE(encontrado);

    // A key that is simply absent is still a successful open, with no rows.
    capa->BuscarXclave("clientes", "Clave", "Z9", 0, rs, cn, false, "", encontrado);
    EXPECT_TRUE(encontrado);
    EXPECT_TRUE(rs.Eof());
}

TEST(CapaDatosSinBase, FallaConCodigoSinExcepcion) {
    CapaDatos capa(std::make_shared<BaseDDMaria>());
    host::Recordset rs;
    std::string bd = "x";
    std::uint8_t resultado = 99;
    capa.AbrirConsulta(rs, "clientes", 0, bd, resultado);  // nothing listens on the defaults
    EXPECT_EQ(resultado, 1);
    bool encontrado = true;
    capa.BuscarXclave("clientes", "Clave", "A", 0, rs, host::Conexion{}, false, "", encontrado);
    EXPECT_FALSE(encontrado);
}

}  // namespace
}  // namespace paratzorep::data
