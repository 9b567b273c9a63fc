#include "data/TablasTrabajo.h"

#include <gtest/gtest.h>
#include <unistd.h>
#include <algorithm>

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

// The registry of tanzoreportes ties each work table to the connection that created it.
class RegistroTablas : public TablasTrabajoTest {
  protected:
    void SetUp() override {
        TablasTrabajoTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        bd->ejecutar("CREATE DATABASE IF NOT EXISTS tanzoreportes");
        bd->ejecutar(kCreaRegistroTablas);
        otra = pruebas::conectar(*servidor, nombreBase);
        idOtra = pruebas::valor(otra.get(), "SELECT CONNECTION_ID()").value_or("0");
    }
    void TearDown() override {
        bd->ejecutar("DELETE FROM tanzoreportes.tablastrabajo WHERE Base='" + nombreBase + "'");
    }
    // "tabla:conexion" of this database's rows, by name.
    std::vector<std::string> Registro() {
        std::vector<std::string> r;
        for (const auto& f : bd->filas("SELECT Tabla, Conexion FROM tanzoreportes.tablastrabajo "
                                       "WHERE Base='" +
                                       nombreBase + "' ORDER BY Tabla"))
            r.push_back(f[0] + ":" + f[1]);
        return r;
    }
    // A row as another print would leave it.
    void Registra(const std::string& tabla, const std::string& conexion,
                  const std::string& arranque =
                      "NOW() - INTERVAL (SELECT VARIABLE_VALUE FROM "
                      "information_schema.GLOBAL_STATUS WHERE "
                      "VARIABLE_NAME='UPTIME') SECOND") {
        bd->ejecutar(
            "INSERT INTO tanzoreportes.tablastrabajo (Base, Tabla, Conexion, Arranque, "
            "Usuario, Creada) VALUES ('" +
            nombreBase + "', '" + tabla + "', " + conexion + ", " + arranque +
            ", CURRENT_USER(), NOW())");
    }
    std::string IdPropio() {
        host::Recordset rs;
        base->RstExecutar(rs, cn, "SELECT CONNECTION_ID()");
        return rs.Campo(std::size_t{0}).Texto();
    }

    pruebas::Conexion otra;
    std::string idOtra;
};

TEST_F(RegistroTablas, CadaTablaQuedaAtadaASuConexionHastaQueSeBorra) {
    const std::string nombre = ClonaEstructura(*base, cn, "ventas", false);
    EXPECT_EQ(Registro(), std::vector<std::string>{nombre + ":" + IdPropio()});
    BorraTablaTrabajo(*base, cn, nombre);
    EXPECT_TRUE(Registro().empty());
}

// A name reserved by a print that has not created its table yet, and a table created by a print
// that keeps no registry after the look-up found its name free, are both passed over.
TEST_F(RegistroTablas, UnNombreReservadoOCreadoPorOtraSeSalta) {
    Registra("tbltemp0", idOtra);
    bd->ejecutar("CREATE TABLE tbltemp1 (a INT)");
    base->hayTablaFija = false;
    const std::string nombre = ClonaEstructura(*base, cn, "ventas", false);
    EXPECT_EQ(nombre, "tbltemp2");
    EXPECT_EQ(Registro(),
              (std::vector<std::string>{"tbltemp0:" + idOtra, "tbltemp2:" + IdPropio()}));
}

// Orphans: the creating connection ended, or the server restarted since. A live print's table,
// on another connection, stays.
TEST_F(RegistroTablas, HuerfanasSeBorranYLaDeUnaImpresionVivaNo) {
    for (const char* t : {"tbltemp5", "tbltemp6", "tbltemp7"})
        bd->ejecutar(std::string("CREATE TABLE ") + t + " (a INT)");
    Registra("tbltemp5", idOtra);                           // live
    Registra("tbltemp6", "4000000000");                     // its connection ended
    Registra("tbltemp7", idOtra, "'2000-01-01 00:00:00'");  // before the server restarted
    Registra("tbltemp8", "4000000001");                     // died before it created it
    const std::string propia = nombreBase + ".";
    auto nuestras = [&](std::vector<std::string> v) {
        std::erase_if(v, [&](const std::string& n) { return n.rfind(propia, 0) != 0; });
        return v;
    };
    // Prints of other tests clean the same server at the same time: what this call drops is
    // some of these orphans, and in the end all of them are gone.
    const std::vector<std::string> huerfanas = {propia + "tbltemp6", propia + "tbltemp7",
                                                propia + "tbltemp8"};
    for (const auto& n : nuestras(BorraTablasHuerfanas(*base, cn)))
        EXPECT_NE(std::find(huerfanas.begin(), huerfanas.end(), n), huerfanas.end()) << n;
    EXPECT_EQ(Registro(), std::vector<std::string>{"tbltemp5:" + idOtra});
    EXPECT_TRUE(base->HayTabla(cn, "tbltemp5"));
    EXPECT_FALSE(base->HayTabla(cn, "tbltemp6"));
    EXPECT_FALSE(base->HayTabla(cn, "tbltemp7"));
    const auto despues = RevisaTablasTrabajo(*base, cn);
    EXPECT_TRUE(nuestras(despues.huerfanas).empty());
    EXPECT_GE(despues.enUso, 1);
}

}  // namespace
}  // namespace paratzorep::data
