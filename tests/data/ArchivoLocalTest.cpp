#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "data/BaseDDMaria.h"

namespace paratzorep::data {
namespace {

using host::Valor;
namespace fs = std::filesystem;

class ArchivoLocalTest : public ::testing::Test {
  protected:
    void SetUp() override {
        carpeta = fs::temp_directory_path() /
                  ("tzdatos_local_" + std::to_string(::getpid()) + "_" +
                   ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(carpeta);
        fs::create_directories(carpeta);
        archivo = (carpeta / "Auxiliar.mdb").string();
        ASSERT_TRUE(base.AbreBdDAccess(cn, archivo)) << base.UltimoError();
    }
    void TearDown() override {
        base.CierraBdD(cn);
        fs::remove_all(carpeta);
    }

    BaseDDMaria base;
    host::Conexion cn;
    fs::path carpeta;
    std::string archivo;
};

TEST_F(ArchivoLocalTest, CreaSusTablasAlPrimerUso) {
    EXPECT_TRUE(fs::exists(archivo));
    for (const char* t : {"Generales", "EncabDeudores", "Titulo100", "Utilidad", "TotalesUtilPdV",
                          "ComisXvend1", "ComisXvend2", "ComisVendXtabla"}) {
        EXPECT_TRUE(base.HayTabla(cn, t)) << t;
    }
    host::Recordset rs;
    ASSERT_TRUE(base.AbrirTabla(rs, cn, "Utilidad"));
    for (const char* c :
         {"Linea", "VendedorCve", "Fecha", "CostoPromedio", "PrecioNeto", "Desc5", "clave",
          "DESCripcion", "Devueltos", "IdKardex", "EnNdeC", "Devolucion", "MontoNdeC"}) {
        EXPECT_TRUE(rs.TieneCampo(c)) << c;
    }
    ASSERT_TRUE(base.AbrirTabla(rs, cn, "ComisXvend2"));
    EXPECT_TRUE(rs.TieneCampo("DiasVencida"));
    EXPECT_TRUE(rs.TieneCampo("NotasDeCredito"));
}

TEST_F(ArchivoLocalTest, FilasNuevasYCambiosPorClave) {
    base.Executar(cn, "DELETE FROM Utilidad");
    host::Recordset rs;
    ASSERT_TRUE(base.AbrirTabla(rs, cn, "Utilidad"));
    base.AddNuevo(rs);
    rs.Asigna("clave", Valor("P1"));
    rs.Asigna("Fecha", Valor("2024-03-05"));
    rs.Asigna("Cantidad", Valor(3));
    rs.Asigna("PrecioNeto", Valor(81.0));
    base.RstUpdate(rs);
    EXPECT_GT(rs["Id"].Entero(), 0);
    rs.Asigna("Devueltos", Valor(1.5));
    base.RstUpdate(rs);

    host::Recordset leido;
    ASSERT_TRUE(base.AbrirTabla(leido, cn, "Utilidad WHERE clave='P1'"));
    ASSERT_EQ(leido.RecordCount(), 1);
    EXPECT_EQ(leido["Fecha"].Fecha(), "2024-03-05");
    EXPECT_EQ(leido["Fecha"].Tipo(), host::TipoCampo::Fecha);
    EXPECT_DOUBLE_EQ(leido["PrecioNeto"].Doble(), 81);
    EXPECT_DOUBLE_EQ(leido["Devueltos"].Doble(), 1.5);
    EXPECT_TRUE(leido["Linea"].EsNulo());
    EXPECT_EQ(base.NoNull(leido["EnNdeC"]).Doble(), 0);
    EXPECT_EQ(base.LastRec(cn, "Utilidad"), 1);
    EXPECT_DOUBLE_EQ(base.Sum(cn, "Cantidad", "Utilidad WHERE clave='P1'"), 3);
    EXPECT_EQ(base.ActualizaRegistro(cn, "Utilidad", "WHERE clave='P1'", {"Cantidad"},
                                     {Valor(leido["Cantidad"].Doble() + 2)}),
              1);
    EXPECT_DOUBLE_EQ(base.Sum(cn, "Cantidad", "Utilidad"), 5);
}

TEST_F(ArchivoLocalTest, PasaGeneralesReemplazaLaFilaYAgregaColumnas) {
    base.PasaGeneralesAlRpt(cn, {{"Titulo", Valor("Uno")}, {"UsuarioImpresion", Valor("ana")}});
    base.PasaGeneralesAlRpt(cn, {{"Titulo", Valor("Movimientos del usuario 'luis'")},
                                 {"ParaLasFechas", Valor("Del 01/01/2024 al 31/01/2024")},
                                 {"Moneda", Valor("Pesos")}});
    host::Recordset rs;
    ASSERT_TRUE(base.AbrirTabla(rs, cn, "Generales"));
    ASSERT_EQ(rs.RecordCount(), 1);
    EXPECT_EQ(rs["Titulo"].Texto(), "Movimientos del usuario 'luis'");
    EXPECT_EQ(rs["Moneda"].Texto(), "Pesos");
    EXPECT_TRUE(rs["UsuarioImpresion"].EsNulo());
}

TEST(ArchivoLocal, CarpetaInexistenteDaFalsoConElNombre) {
    BaseDDMaria base;
    host::Conexion cn;
    EXPECT_FALSE(base.AbreBdDAccess(cn, "/no/existe/esta/carpeta/Auxiliar.mdb"));
    EXPECT_FALSE(cn);
    EXPECT_NE(base.UltimoError().find("Auxiliar.mdb"), std::string::npos);
}

}  // namespace
}  // namespace paratzorep::data
