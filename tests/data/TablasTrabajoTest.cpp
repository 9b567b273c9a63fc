#include "data/TablasTrabajo.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "EntornoPrueba.h"
#include "support/NombresDeCaso.h"

namespace paratzorep::data {
namespace {

class TablasTrabajoTest : public prueba::ConBase {
  protected:
    void SetUp() override {
        ConBase::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        Ejecuta(
            "CREATE TABLE ventas (Id INT AUTO_INCREMENT PRIMARY KEY, ventas_total DOUBLE NOT NULL "
            "DEFAULT 0, Cliente VARCHAR(10) NOT NULL DEFAULT '', KEY idx_ventas_cliente "
            "(Cliente)) ENGINE=InnoDB COMMENT='modelo ventas'");
        cn = Abre();
        base->Olvida();
    }

    std::vector<std::string> Columnas(const std::string& tabla) {
        host::Recordset rs;
        base->RstExecutar(rs, cn, "SHOW COLUMNS FROM " + tabla);
        std::vector<std::string> r;
        for (; !rs.Eof(); rs.MoveNext()) r.push_back(rs["Field"].Texto());
        return r;
    }

    host::Conexion cn;
};

struct CasoNombre {
    const char* nombre;
    std::vector<int> existentes;
    std::string esperado;
};

class NombreLibre : public TablasTrabajoTest, public ::testing::WithParamInterface<CasoNombre> {};

TEST_P(NombreLibre, ElPrimerHueco) {
    for (int n : GetParam().existentes)
        base->Executar(cn, "CREATE TABLE tbltemp" + std::to_string(n) + " (a INT)");
    EXPECT_EQ(NombreTablaTemporal(*base, cn), GetParam().esperado);
}

INSTANTIATE_TEST_SUITE_P(
    Casos, NombreLibre,
    ::testing::Values(CasoNombre{"Ninguna", {}, "tbltemp0"},
                      CasoNombre{"HuecoEnMedio", {0, 2}, "tbltemp1"},
                      CasoNombre{"SinHuecos", {0, 1, 2}, "tbltemp3"},
                      CasoNombre{"HuecoAlPrincipio", {1}, "tbltemp0"},
                      CasoNombre{"DiezSeguidas", {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}, "tbltemp10"}),
    pruebas::PorNombre());

TEST_F(TablasTrabajoTest, PasadoTbltemp32767SeDesborda) {
    base->hayTablaFija = true;
    EXPECT_THROW(NombreTablaTemporal(*base, cn), ErrorDesbordamiento);
    EXPECT_EQ(base->preguntasHayTabla, 32768);
}

TEST_F(TablasTrabajoTest, ClonaDeLaEmpresaRenombrandoTodo) {
    base->Executar(cn, "CREATE TABLE tbltemp0 (a INT)");
    base->Executar(cn, "CREATE TABLE tbltemp2 (a INT)");
    base->Olvida();
    const std::string nombre = ClonaEstructura(*base, cn, "ventas", false);
    EXPECT_EQ(nombre, "tbltemp1");
    EXPECT_EQ(base->consultas,
              std::vector<std::string>{"SHOW CREATE TABLE " + nombreBase + ".ventas"});
    ASSERT_EQ(base->ejecutadas.size(), 1u);
    const std::string& ddl = base->ejecutadas[0];
    EXPECT_EQ(ddl.find("IF NOT EXISTS"), std::string::npos);
    EXPECT_EQ(ddl.find("ventas"), std::string::npos) << ddl;
    EXPECT_EQ(Columnas("tbltemp1"), (std::vector<std::string>{"Id", "tbltemp1_total", "Cliente"}));
    EXPECT_EQ(base->LastRec(cn, "SHOW INDEX FROM tbltemp1 WHERE Key_name='idx_tbltemp1_cliente'"),
              1);
    EXPECT_EQ(base->LastRec(cn, "tbltemp1"), 0);
    EXPECT_EQ(base->LastRec(cn, "SELECT * FROM information_schema.TABLES WHERE TABLE_SCHEMA='" +
                                    nombreBase +
                                    "' AND TABLE_NAME='tbltemp1' AND TABLE_COMMENT='modelo "
                                    "tbltemp1'"),
              1);
}

TEST_F(TablasTrabajoTest, ClonaDeReportesEnLaBaseDeLaConexion) {
    const std::string modelo = "modelo" + std::to_string(::getpid());
    base->Executar(cn, "CREATE DATABASE IF NOT EXISTS tanzoreportes");
    base->Executar(cn,
                   "CREATE TABLE tanzoreportes." + modelo + " (Clave VARCHAR(5), Monto DOUBLE)");
    std::string nombre;
    try {
        nombre = ClonaEstructura(*base, cn, modelo, true);
    } catch (...) {
        base->Executar(cn, "DROP TABLE tanzoreportes." + modelo);
        throw;
    }
    base->Executar(cn, "DROP TABLE tanzoreportes." + modelo);
    EXPECT_EQ(nombre, "tbltemp0");
    EXPECT_TRUE(base->HayTabla(cn, nombreBase + ".tbltemp0"));
    EXPECT_FALSE(base->HayTabla(cn, "tanzoreportes.tbltemp0"));
    EXPECT_EQ(Columnas("tbltemp0"), (std::vector<std::string>{"Clave", "Monto"}));

    base->Olvida();
    BorraTablaTrabajo(*base, cn, nombre);
    EXPECT_EQ(base->ejecutadas, std::vector<std::string>{"DROP TABLE tbltemp0"});
    EXPECT_FALSE(base->HayTabla(cn, "tbltemp0"));
}

TEST_F(TablasTrabajoTest, ModeloInexistenteLlegaAlLlamador) {
    try {
        ClonaEstructura(*base, cn, "noexiste", false);
        FAIL();
    } catch (const host::ErrorDatos& e) {
        EXPECT_EQ(e.Sql(), "SHOW CREATE TABLE " + nombreBase + ".noexiste");
        EXPECT_EQ(e.Codigo(), 1146);
    }
    EXPECT_TRUE(base->ejecutadas.empty());
}

}  // namespace
}  // namespace paratzorep::data
