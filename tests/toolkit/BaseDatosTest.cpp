// Helper objects that work through the data-access object, against the test server.
#include <gtest/gtest.h>

#include <fstream>
#include <random>

#include "data/BaseDDMaria.h"
#include "toolkit/Apoyo.h"
#include "toolkit/BitacoraUsuarios.h"
#include "toolkit/CamposBin.h"
#include "toolkit/Movimientos.h"

namespace paratzorep::toolkit {
namespace {

using apoyo::CarpetaTemporal;
using apoyo::ConServidor;
using apoyo::LeeArchivo;

class CamposBinTest : public ConServidor {
  protected:
    void SetUp() override {
        ConServidor::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        base_->ejecutar(
            "CREATE TABLE reportesbin (Archivo VARCHAR(60) NOT NULL, Renglon INT NOT NULL, "
            "Contenido LONGBLOB, PRIMARY KEY (Archivo, Renglon))");
        cb.BaseDD = bd;
        cb.Conexion = cn;
    }

    CamposBin cb;
    CarpetaTemporal tmp;
};

TEST_F(CamposBinTest, GuardaYExtraeByteAByte) {
    // Every byte value, NULs and quotes included, over several pieces and a short last one.
    std::string datos;
    std::mt19937 gen(7);
    for (int i = 0; i < 150000; ++i) datos += static_cast<char>(gen() & 0xFF);
    datos += std::string("\0'\\\"", 4);
    std::ofstream(tmp / "origen.rpt", std::ios::binary) << datos;

    EXPECT_EQ(cb.Guarda((tmp / "origen.rpt").string(), "plantilla.rpt"), 3);
    EXPECT_EQ(base_->valor("SELECT COUNT(*) FROM reportesbin WHERE Archivo='plantilla.rpt'"), "3");
    EXPECT_EQ(base_->valor("SELECT LENGTH(Contenido) FROM reportesbin WHERE Renglon=1"), "60000");
    EXPECT_TRUE(cb.Existe("C:\\otra\\plantilla.rpt"));

    std::string ruta = cb.ExtraeRPT("/ruta/ignorada/plantilla.rpt", (tmp / "salida").string());
    EXPECT_EQ(ruta, (tmp / "salida" / "plantilla.rpt").string());
    EXPECT_EQ(LeeArchivo(ruta), datos);
}

TEST_F(CamposBinTest, JuntaEnOrdenDeRenglonYReemplazaVersionAnterior) {
    // Rows inserted out of order are joined by Renglon.
    base_->ejecutar(
        "INSERT INTO reportesbin VALUES ('a.rpt',2,'mundo'),('a.rpt',10,'!'),('a.rpt',1,'hola ')");
    EXPECT_EQ(LeeArchivo(cb.ExtraeRPT("a.rpt", tmp.ruta().string())), "hola mundo!");

    std::ofstream(tmp / "nuevo.rpt", std::ios::binary) << "corto";
    EXPECT_EQ(cb.Guarda((tmp / "nuevo.rpt").string(), "a.rpt"), 1);
    EXPECT_EQ(base_->valor("SELECT COUNT(*) FROM reportesbin WHERE Archivo='a.rpt'"), "1");
    EXPECT_EQ(LeeArchivo(cb.ExtraeRPT("a.rpt", tmp.ruta().string())), "corto");
}

TEST_F(CamposBinTest, ArchivoAusenteOvacioOconComillas) {
    EXPECT_THROW(cb.ExtraeRPT("noexiste.rpt", tmp.ruta().string()), std::runtime_error);
    EXPECT_FALSE(std::filesystem::exists(tmp / "noexiste.rpt"));
    EXPECT_FALSE(cb.Existe("o'hara.rpt"));
    std::ofstream(tmp / "vacio.rpt", std::ios::binary);
    EXPECT_EQ(cb.Guarda((tmp / "vacio.rpt").string(), "o'hara.rpt"), 1);
    EXPECT_EQ(LeeArchivo(cb.ExtraeRPT("o'hara.rpt", tmp.ruta().string())), "");
    EXPECT_THROW(cb.Guarda((tmp / "no-hay.rpt").string()), std::runtime_error);
}

TEST_F(CamposBinTest, FallaAMitadNoDejaMediaPlantilla) {
    base_->ejecutar("INSERT INTO reportesbin VALUES ('b.rpt',1,'viejo')");
    // A piece bigger than the column allows makes the second insert fail.
    base_->ejecutar("ALTER TABLE reportesbin MODIFY Contenido VARBINARY(10)");
    std::ofstream(tmp / "b.rpt", std::ios::binary) << std::string(25, 'x');
    bd->Executar(cn, "SET SESSION sql_mode='STRICT_ALL_TABLES'");
    // The delete runs, then the first piece of 11 bytes does not fit: all is rolled back.
    cb.TamanoPieza = 11;
    EXPECT_ANY_THROW(cb.Guarda((tmp / "b.rpt").string()));
    EXPECT_EQ(base_->valor("SELECT CAST(Contenido AS CHAR) FROM reportesbin WHERE Archivo='b.rpt'"),
              "viejo");
}

TEST_F(ConServidor, BitacoraGrabaConTextosCodificados) {
    base_->ejecutar(
        "CREATE TABLE bitacorausuarios (Id INT AUTO_INCREMENT PRIMARY KEY, Fecha DATE, Hora TIME, "
        "Usuario BLOB, Accion VARCHAR(40), Registro INT, Llave BLOB, Adicionales BLOB, "
        "Version BLOB, Equipo BLOB)");
    BitacoraUsuarios b;
    b.BaseDD = bd;
    b.Usuario = "ana";
    b.Version = "2.5";
    b.ID = 156;
    b.Llave = "o'hara.rpt";
    b.Equipo = "caja1";
    b.Graba(cn);
    auto f = base_->filas(
        "SELECT DECODE(Usuario,'418'), Registro, DECODE(Llave,'184'), DECODE(Version,'527'), "
        "DECODE(Equipo,'527'), Fecha=CURDATE(), Usuario<>'ana' FROM bitacorausuarios");
    ASSERT_EQ(f.size(), 1u);
    EXPECT_EQ(f[0],
              (std::vector<std::string>{"ana", "156", "o'hara.rpt", "2.5", "caja1", "1", "1"}));
}

TEST_F(ConServidor, FoliarDaElSiguienteDeLaSerie) {
    base_->ejecutar("CREATE TABLE ventas (Serie VARCHAR(5), Folio INT)");
    Movimientos m;
    m.BaseDD = bd;
    EXPECT_EQ(m.Foliar(cn, "ventas"), 1);
    base_->ejecutar("INSERT INTO ventas VALUES ('A',7),('A',9),('B',30)");
    EXPECT_EQ(m.Foliar(cn, "ventas", "Folio", "A"), 10);
    EXPECT_EQ(m.Foliar(cn, "ventas", "Folio", "C"), 1);
    EXPECT_EQ(m.Foliar(cn, "ventas"), 31);
    EXPECT_EQ(m.Foliar(cn, "ventas", "Folio", "x'y"), 1);
    EXPECT_THROW(m.Foliar(cn, "no_hay_tabla"), host::ErrorDatos);
}

}  // namespace
}  // namespace paratzorep::toolkit
