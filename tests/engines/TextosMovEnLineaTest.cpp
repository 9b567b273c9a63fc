// The online movements engine's statement texts, exactly, and the central layout's clauses
// worked out from the company's own table definitions.
#include <gtest/gtest.h>

#include "engines/TextosMovEnLinea.h"
#include "support/NombresDeCaso.h"
#include "support/Soporte.h"
#include "support/TablasDeEmpresa.h"

namespace paratzorep::engines::detail {
namespace {

using pruebas::PorNombre;

struct Texto {
    const char* nombre;
    std::string hecho;
    const char* esperado;
};

class TextoExacto : public ::testing::TestWithParam<Texto> {};

TEST_P(TextoExacto, DiceLoQueElSistemaDice) {
    EXPECT_EQ(GetParam().hecho, GetParam().esperado);
}

INSTANTIATE_TEST_SUITE_P(
    Recalculo, TextoExacto,
    ::testing::Values(
        Texto{"movimiento", FuenteMovimiento(41), "edoctacli WHERE Id=41"},
        Texto{"anterior misma fecha", FuenteAnteriorMismaFecha("C001", 1, "2026-03-10", 41),
              "edoctacli WHERE Clave='C001' and IdMoneda=1 and Fecha='2026-03-10' and Id<41 "
              "ORDER BY Fecha DESC,Id DESC LIMIT 1"},
        Texto{"anterior fecha previa", FuenteAnteriorFechaPrevia("C001", 2, "2026-03-10"),
              "edoctacli WHERE Clave='C001' and IdMoneda=2 and Fecha<'2026-03-10' ORDER BY "
              "Fecha DESC,Id DESC LIMIT 1"},
        Texto{"saldos del movimiento", ActualizaSaldosMovimiento(1250.5, 1000, 41),
              "UPDATE edoctacli SET SaldoActual=1250.5,SaldoAnterior=1000 WHERE Id=41"},
        Texto{"saldos negativos", ActualizaSaldosMovimiento(-0.25, 0, 7),
              "UPDATE edoctacli SET SaldoActual=-0.25,SaldoAnterior=0 WHERE Id=7"},
        Texto{"siguiente", FuenteSiguiente(1, "C001", "2026-03-10", 41),
              "edoctacli WHERE IdMoneda=1 AND Clave='C001' AND (Fecha='2026-03-10' AND Id>41 OR "
              "Fecha>'2026-03-10') ORDER BY Fecha,Id LIMIT 1"},
        Texto{"saldo del cliente", ActualizaSaldoCliente(700.5, "C001"),
              "UPDATE clientes SET Saldo=700.5 WHERE Clave='C001'"},
        Texto{"saldoscli", FuenteSaldoscli("C001"), "saldoscli WHERE Clave='C001' AND IdMoneda=1"},
        Texto{"actualiza saldoscli", ActualizaSaldoscli(99.99, "C001"),
              "UPDATE saldoscli SET Saldo=99.99 WHERE Clave='C001' AND IdMoneda=1"},
        Texto{"busca cliente", BuscaCliente("C001"), "SELECT * FROM clientes WHERE Clave='C001'"}),
    PorNombre());

INSTANTIATE_TEST_SUITE_P(
    CentralYPagos, TextoExacto,
    ::testing::Values(
        Texto{"clientes de la empresa", FuenteClientesEmpresa(), "clientes ORDER BY Clave"},
        Texto{"saldo al copiar", FijaSaldoCliente(500, "C002"),
              "UPDATE clientes SET saldo=500 WHERE Clave='C002'"},
        Texto{"primer movimiento", FuentePrimerMovimiento("C002"),
              "edoctacli WHERE Clave='C002' LIMIT 1"},
        Texto{"puntos", SumaPuntos(12.5, "C001"),
              "UPDATE clientes SET SusPuntos=SusPuntos+12.5 WHERE Clave='C001'"},
        Texto{"remision", FuenteDocumento(true, 9), "remisiones WHERE Id=9"},
        Texto{"factura", FuenteDocumento(false, 9), "facturas WHERE Id=9"},
        Texto{"vacio para agregar", FuenteVacia("edoctacli"), "edoctacli WHERE Id=-9"},
        Texto{"cxc central", FuenteCxC(3), "cxc WHERE Id=3"},
        Texto{"cxc de la empresa", FuenteCxCEmpresa(3), "cxc WHERE Id=3 LIMIT 1"},
        Texto{"cierra cxc", BorraCxC(3), "DELETE FROM cxc WHERE Id=3"},
        Texto{"factura central", FuenteDocumentoCentral("F", "B", 1),
              "facturas WHERE ClaveEmpresa='B' and IdEmpresa=1"},
        Texto{"remision central", FuenteDocumentoCentral("R", "B", 1),
              "remisiones WHERE ClaveEmpresa='B' and IdEmpresa=1"},
        Texto{"cargo central", FuenteDocumentoCentral("C", "B", 4),
              "edoctacli WHERE ClaveEmpresa='B' and Folio=4"},
        Texto{"anexo", FuenteAnexoVacio(), "anexopagosctes WHERE FolioDelPago=-9"},
        Texto{"ultimo pago", ActualizaUltPago("2026-11-23", "C001"),
              "UPDATE clientes SET UltPago='2026-11-23' WHERE Clave='C001'"},
        Texto{"pendientes", FuentePagosPendientes("B", 17),
              "edoctacli WHERE Clave2Empresa='B' and Id>17 and CantidadPago>0 and Aplicado=0 "
              "ORDER BY Fecha,Id"},
        Texto{"definicion", MuestraDefinicion("cxc"), "SHOW CREATE TABLE cxc"},
        Texto{"altera", Altera("cxc", " drop index Clave"), "Alter table cxc drop index Clave"},
        Texto{"vacia", Vacia("cxc"), "Truncate table cxc"},
        Texto{"crea si falta", CreaSiFalta("CREATE TABLE `cxc` (\n  `Id` int(11))"),
              "CREATE TABLE IF NOT EXISTS `cxc` (\n  `Id` int(11))"}),
    PorNombre());

TEST(NumeroSql, EscribeElDobleMasCortoQueSeLeeIgual) {
    EXPECT_EQ(NumeroSql(1500), "1500");
    EXPECT_EQ(NumeroSql(0.1 + 0.2), "0.30000000000000004");
    EXPECT_EQ(NumeroSql(-0.0), "0");
    EXPECT_EQ(NumeroSql(1e16), "1e+16");
}

TEST(ClaveAceptable, RechazaLoQueRomperiaLaSentencia) {
    EXPECT_TRUE(ClaveAceptable("C001"));
    EXPECT_TRUE(ClaveAceptable("NÚÑEZ 01"));
    for (const char* mala : {"", "  ", "O'HARA", "C\\1", "C\n1"})
        EXPECT_FALSE(ClaveAceptable(mala)) << mala;
}

// The clauses that the company's own definitions need on the central side: the company
// columns everywhere but saldoscli, and what each table adds or drops.
struct Tabla {
    const char* nombre;
    std::vector<std::string> clausulas;
};

class ClausulasDeLaEmpresa : public ::testing::TestWithParam<Tabla> {
  protected:
    static void SetUpTestSuite() {
        bd_ = new pruebas::BaseDeDatosDePrueba();
        pruebas::cargarTablasDeEmpresa(
            bd_->mysql(), {"clientes", "cxc", "edoctacli", "facturas", "remisiones", "saldoscli"});
    }
    static void TearDownTestSuite() {
        delete bd_;
        bd_ = nullptr;
    }
    static pruebas::BaseDeDatosDePrueba* bd_;
};
pruebas::BaseDeDatosDePrueba* ClausulasDeLaEmpresa::bd_ = nullptr;

TEST_P(ClausulasDeLaEmpresa, SonLasQueLaBaseCentralAgrega) {
    const std::string tabla = GetParam().nombre;
    const auto filas = bd_->filas("SHOW CREATE TABLE " + tabla);
    ASSERT_EQ(filas.size(), 1u);
    EXPECT_EQ(ClausulasPendientes(tabla, filas[0][1], "B"), GetParam().clausulas);
}

const std::vector<std::string> kDeEmpresa = {" add ClaveEmpresa varchar(15) default 'B'",
                                             " add IdEmpresa integer default 0",
                                             " add Key(IdEmpresa,ClaveEmpresa)"};

std::vector<std::string> Con(std::vector<std::string> mas) {
    std::vector<std::string> r = kDeEmpresa;
    r.insert(r.end(), mas.begin(), mas.end());
    return r;
}

INSTANTIATE_TEST_SUITE_P(
    Tablas, ClausulasDeLaEmpresa,
    ::testing::Values(
        // clientes already carries Saldo and SusPuntos in the company layout.
        Tabla{"clientes", kDeEmpresa}, Tabla{"cxc", Con({" drop index Clave", " drop index Tipo"})},
        Tabla{"edoctacli",
              Con({" drop index ID", " drop index Fecha", " drop index Folio",
                   " add Clave2Empresa varchar(15) default ''", " add Key(Id,Clave2Empresa)",
                   " add Tipo Char(1) default ''", " add Numero integer default '0'",
                   " add IdCxCemp integer default '0'", " add Aplicado smallint default '0'"})},
        Tabla{"facturas", Con({" drop index Factura"})},
        Tabla{"remisiones", Con({" drop index Factura"})}, Tabla{"saldoscli", {}}),
    PorNombre());

TEST(ClausulasPendientes, UnaTablaViejaConAutoincYOtrasALasQueSoloLesFaltaAlgo) {
    const std::string edoctacli =
        "CREATE TABLE `edoctacli` (\n  `Autoinc` int(11) NOT NULL AUTO_INCREMENT,\n"
        "  `Id` int(11) NOT NULL DEFAULT 0,\n  `Clave` varchar(15) NOT NULL DEFAULT '',\n"
        "  PRIMARY KEY (`Autoinc`),\n  UNIQUE KEY `ID` (`Id`)\n) ENGINE=InnoDB";
    const std::vector<std::string> deA = {" add ClaveEmpresa varchar(15) default 'A'",
                                          " add IdEmpresa integer default 0",
                                          " add Key(IdEmpresa,ClaveEmpresa)"};
    std::vector<std::string> esperadas = deA;
    for (const char* c :
         {" drop index ID", " drop Autoinc", " add primary key(Id)",
          " change Id Id integer not null auto_increment",
          " add Clave2Empresa varchar(15) default ''", " add Key(Id,Clave2Empresa)",
          " add Tipo Char(1) default ''", " add Numero integer default '0'",
          " add IdCxCemp integer default '0'", " add Aplicado smallint default '0'"})
        esperadas.emplace_back(c);
    EXPECT_EQ(ClausulasPendientes("edoctacli", edoctacli, "A"), esperadas);

    const std::string clientes =
        "CREATE TABLE `clientes` (\n  `Clave` varchar(15) NOT NULL,\n  `ClaveEmpresa` "
        "varchar(15) DEFAULT 'A',\n  `IdEmpresa` int(11) DEFAULT 0,\n  PRIMARY KEY (`Clave`),\n"
        "  KEY `IdEmpresa` (`IdEmpresa`,`ClaveEmpresa`)\n) ENGINE=InnoDB";
    EXPECT_EQ(ClausulasPendientes("clientes", clientes, "A"),
              (std::vector<std::string>{" add Saldo double default 0",
                                        " add SusPuntos double default 0"}));
    const std::string cxc =
        "CREATE TABLE `cxc` (\n  `Id` int(11) NOT NULL,\n  `ClaveEmpresa` varchar(15),\n"
        "  `IdEmpresa` int(11),\n  KEY `IdEmpresa` (`IdEmpresa`,`ClaveEmpresa`)\n)";
    EXPECT_EQ(ClausulasPendientes("cxc", cxc, "A"),
              (std::vector<std::string>{" add Total double default 0"}));
}

}  // namespace
}  // namespace paratzorep::engines::detail
