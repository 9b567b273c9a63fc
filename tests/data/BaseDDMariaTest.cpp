#include "data/BaseDDMaria.h"

#include <gtest/gtest.h>

#include "EntornoPrueba.h"
#include "support/NombresDeCaso.h"

namespace paratzorep::data {
namespace {

using host::Valor;

class BaseDDMariaTest : public prueba::ConBase {
  protected:
    void SetUp() override {
        ConBase::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        Ejecuta(
            "CREATE TABLE clientes (Clave VARCHAR(10) PRIMARY KEY, Nombre VARCHAR(40) NULL, "
            "Saldo DECIMAL(12,2) NULL, Alta DATE NULL, Vence DATETIME NULL)");
        Ejecuta(
            "INSERT INTO clientes VALUES ('A1','Uno',10.50,'2024-01-31','2024-02-01 08:30:00'),"
            "('B2','',0,'0000-00-00','0000-00-00 00:00:00'),('C3',NULL,NULL,NULL,NULL),"
            "('D4','Cuatro',-5,'2023-12-01',NULL)");
        Ejecuta(
            "CREATE TABLE movs (Id INT AUTO_INCREMENT PRIMARY KEY, Cliente VARCHAR(10) NOT NULL "
            "DEFAULT '', Cantidad DOUBLE NOT NULL DEFAULT 0, Nota VARCHAR(40) NULL)");
        Ejecuta("CREATE TABLE sinclave (Texto VARCHAR(10), Numero INT)");
        Ejecuta("INSERT INTO sinclave VALUES ('x',1),('x',1),('y',2)");
        cn = Abre();
    }

    host::Recordset Lee(const std::string& fuente) {
        host::Recordset rs;
        EXPECT_TRUE(base->AbrirTabla(rs, cn, fuente)) << base->UltimoError();
        return rs;
    }

    host::Conexion cn;
};

struct CasoFuente {
    std::string fuente;
    int filas;
};

class FormasDeFuente : public BaseDDMariaTest, public ::testing::WithParamInterface<CasoFuente> {};

TEST_P(FormasDeFuente, AbrirTablaYLastRecCuentanLoMismo) {
    auto rs = Lee(GetParam().fuente);
    EXPECT_EQ(rs.RecordCount(), GetParam().filas);
    EXPECT_EQ(base->LastRec(cn, GetParam().fuente), GetParam().filas);
}

INSTANTIATE_TEST_SUITE_P(
    Fuentes, FormasDeFuente,
    ::testing::Values(CasoFuente{"clientes", 4}, CasoFuente{"clientes WHERE Saldo>0", 1},
                      CasoFuente{"clientes ORDER BY Nombre DESC", 4},
                      CasoFuente{"clientes WHERE Clave>'A1' ORDER BY Clave LIMIT 2", 2},
                      CasoFuente{"  SELECT Clave FROM clientes WHERE Nombre IS NULL", 1},
                      CasoFuente{"select * from clientes c join sinclave s on 1=1", 12},
                      CasoFuente{"SHOW TABLES", 3}, CasoFuente{"movs", 0}),
    pruebas::NombrePor(&CasoFuente::fuente));

TEST_F(BaseDDMariaTest, NulosVaciosYFechasCero) {
    auto rs = Lee("clientes ORDER BY Clave");
    EXPECT_EQ(rs["Saldo"].Doble(), 10.5);
    EXPECT_EQ(rs["Alta"].Fecha(), "2024-01-31");
    EXPECT_EQ(rs["Vence"].Fecha(), "2024-02-01");
    EXPECT_EQ(rs["Alta"].Tipo(), host::TipoCampo::Fecha);
    rs.MoveNext();  // B2: empty name, zero dates
    EXPECT_FALSE(rs["Nombre"].EsNulo());
    EXPECT_EQ(rs["Nombre"].Texto(), "");
    EXPECT_EQ(rs["Alta"].Texto(), "0000-00-00");
    EXPECT_EQ(rs["Alta"].Fecha(), "");
    EXPECT_EQ(rs["Vence"].Fecha(), "");
    rs.MoveNext();  // C3: nulls
    EXPECT_TRUE(rs["nombre"].EsNulo());
    EXPECT_TRUE(rs["Alta"].EsNulo());
    EXPECT_EQ(base->NoNull(rs["Saldo"]).Texto(), "0");
    EXPECT_EQ(base->NoNull(rs["Nombre"]).Texto(), "");
    EXPECT_FALSE(base->NoNull(rs["Nombre"]).EsNulo());
}

TEST_F(BaseDDMariaTest, SigueUsableDespuesDeCerrarLaConexion) {
    auto rs = Lee("clientes ORDER BY Clave");
    base->DesactivaConexion(rs);
    base->CierraBdD(cn);
    EXPECT_FALSE(cn);
    int n = 0;
    for (rs.MoveFirst(); !rs.Eof(); rs.MoveNext()) ++n;
    EXPECT_EQ(n, 4);
    rs.MoveLast();
    EXPECT_EQ(rs["Clave"].Texto(), "D4");
    rs.Asigna("Nombre", Valor("cambio"));
    EXPECT_THROW(base->RstUpdate(rs), host::ErrorDatos);
}

TEST_F(BaseDDMariaTest, RstUpdateEscribePorClavePrimaria) {
    auto rs = Lee("clientes WHERE Clave='C3'");
    rs.Asigna("Nombre", Valor("Tres O'Hara"));
    rs.Asigna("Saldo", Valor(7.25));
    rs.Asigna("Alta", Valor("2024-05-06"));
    base->RstUpdate(rs);
    EXPECT_TRUE(rs.FilasPendientes().empty());
    auto otra = Lee("SELECT * FROM clientes WHERE Clave='C3'");
    EXPECT_EQ(otra["Nombre"].Texto(), "Tres O'Hara");
    EXPECT_EQ(otra["Saldo"].Doble(), 7.25);
    EXPECT_EQ(otra["Alta"].Fecha(), "2024-05-06");
    EXPECT_EQ(base->LastRec(cn, "clientes WHERE Nombre IS NULL"), 0);
}

TEST_F(BaseDDMariaTest, RstUpdatePuedeCambiarLaClave) {
    auto rs = Lee("clientes WHERE Clave='A1'");
    rs.Asigna("Clave", Valor("Z9"));
    base->RstUpdate(rs);
    EXPECT_EQ(base->LastRec(cn, "clientes WHERE Clave='A1'"), 0);
    EXPECT_EQ(Lee("clientes WHERE Clave='Z9'")["Nombre"].Texto(), "Uno");
}

TEST_F(BaseDDMariaTest, AddNuevoConAutonumericoYLastId) {
    auto rs = Lee("movs WHERE Id=-9");
    ASSERT_EQ(rs.RecordCount(), 0);
    for (int i = 1; i <= 2; ++i) {
        base->AddNuevo(rs);
        rs.Asigna("Cliente", Valor("A1"));
        rs.Asigna("Cantidad", Valor(i * 1.5));
        base->RstUpdate(rs);
        EXPECT_EQ(rs["Id"].Entero(), base->LastId(cn));
    }
    EXPECT_EQ(base->LastRec(cn, "movs"), 2);
    EXPECT_DOUBLE_EQ(base->Sum(cn, "Cantidad", "movs WHERE Cliente='A1'"), 4.5);
    // Unset fields take the column defaults; a row with nothing set still goes in.
    base->AddNuevo(rs);
    base->RstUpdate(rs);
    EXPECT_EQ(Lee("movs WHERE Id=" + rs["Id"].Texto())["Cliente"].Texto(), "");
}

TEST_F(BaseDDMariaTest, RstUpdateSinClaveCambiaUnaSolaFila) {
    auto rs = Lee("sinclave WHERE Texto='x'");
    rs.Asigna("Numero", Valor(5));
    base->RstUpdate(rs);
    EXPECT_EQ(base->LastRec(cn, "sinclave WHERE Numero=5"), 1);
    EXPECT_EQ(base->LastRec(cn, "sinclave WHERE Numero=1"), 1);
}

TEST_F(BaseDDMariaTest, RstUpdateDeUnaFilaBorradaFalla) {
    auto rs = Lee("clientes WHERE Clave='D4'");
    base->Executar(cn, "DELETE FROM clientes WHERE Clave='D4'");
    rs.Asigna("Nombre", Valor("nadie"));
    EXPECT_THROW(base->RstUpdate(rs), host::ErrorDatos);
}

TEST_F(BaseDDMariaTest, SumDaCeroSinFilasYRespetaLimit) {
    EXPECT_EQ(base->Sum(cn, "Saldo", "clientes WHERE Clave='no hay'"), 0.0);
    EXPECT_DOUBLE_EQ(base->Sum(cn, "Saldo", "clientes"), 5.5);
    EXPECT_DOUBLE_EQ(base->Sum(cn, "Saldo", "clientes ORDER BY Saldo DESC LIMIT 1"), 10.5);
    EXPECT_DOUBLE_EQ(base->Sum(cn, "clientes.Saldo", "SELECT Saldo FROM clientes"), 5.5);
}

TEST_F(BaseDDMariaTest, AgregaYActualizaRegistroConValoresConComillas) {
    base->AgregaRegistro(cn, "movs", {"Cliente", "Cantidad", "Nota"},
                         {Valor("O'B"), Valor(2.5), Valor::Nulo()});
    base->AgregaRegistro(cn, "movs", {"Cliente", "Cantidad", "Nota"},
                         {Valor("X"), Valor(1), Valor("a\\b")});
    auto rs = Lee("movs ORDER BY Id");
    EXPECT_EQ(rs["Cliente"].Texto(), "O'B");
    EXPECT_TRUE(rs["Nota"].EsNulo());
    rs.MoveNext();
    EXPECT_EQ(rs["Nota"].Texto(), "a\\b");
    EXPECT_EQ(base->ActualizaRegistro(cn, "movs", "Cliente='X'", {"Cantidad", "Nota"},
                                      {Valor(9), Valor("it's")}),
              1);
    EXPECT_EQ(Lee("movs WHERE Cliente='X'")["Nota"].Texto(), "it's");
    EXPECT_THROW(base->AgregaRegistro(cn, "movs", {"Cliente"}, {}), host::ErrorDatos);
}

TEST_F(BaseDDMariaTest, PasaCampoYCopiaRecordset) {
    auto origen = Lee("clientes WHERE Clave='A1'");
    auto destino = Lee("clientes WHERE Clave='none'");
    base->CopiaRecordset(destino, origen, {"clave"});
    EXPECT_TRUE(destino["Clave"].EsNulo());
    EXPECT_EQ(destino["Nombre"].Texto(), "Uno");
    destino.Asigna("Clave", Valor("E5"));
    base->RstUpdate(destino);
    EXPECT_EQ(Lee("clientes WHERE Clave='E5'")["Alta"].Fecha(), "2024-01-31");

    auto mov = Lee("movs WHERE Id=-1");
    base->AddNuevo(mov);
    base->PasaCampo(mov, origen, "Clave", "Cliente");
    base->PasaCampo(mov, origen, "Saldo", "Cantidad");
    base->RstUpdate(mov);
    auto leido = Lee("movs");
    EXPECT_EQ(leido["Cliente"].Texto(), "A1");
    EXPECT_EQ(leido["Cantidad"].Doble(), 10.5);
}

TEST_F(BaseDDMariaTest, HayTablaYErroresConContexto) {
    EXPECT_TRUE(base->HayTabla(cn, "clientes"));
    EXPECT_FALSE(base->HayTabla(cn, "clientes_"));
    EXPECT_FALSE(base->HayTabla(cn, "client%"));
    EXPECT_TRUE(base->HayTabla(cn, nombreBase + ".movs"));
    try {
        base->Executar(cn, "UPDATE noexiste SET a=1");
        FAIL();
    } catch (const host::ErrorDatos& e) {
        EXPECT_EQ(e.Codigo(), 1146);
        EXPECT_EQ(e.Sql(), "UPDATE noexiste SET a=1");
        EXPECT_NE(e.MensajeServidor().find("noexiste"), std::string::npos);
    }
    host::Recordset rs;
    EXPECT_FALSE(base->AbrirTabla(rs, cn, "noexiste WHERE x=1"));
    EXPECT_NE(base->UltimoError().find("noexiste"), std::string::npos);
    EXPECT_FALSE(rs.Abierto());
}

TEST_F(BaseDDMariaTest, AbrirBdDFallidoDevuelveFalso) {
    host::Conexion otra;
    EXPECT_FALSE(base->AbrirBdD(otra, "base_que_no_existe"));
    EXPECT_FALSE(otra);
    EXPECT_NE(base->UltimoError().find("base_que_no_existe"), std::string::npos);
    base->CierraBdD(otra);  // closing nothing is fine
    EXPECT_THROW(base->Executar(otra, "SELECT 1"), host::ErrorDatos);
}

TEST_F(BaseDDMariaTest, BinariosIdaYVuelta) {
    Ejecuta("CREATE TABLE bin (Id INT PRIMARY KEY, Dato LONGBLOB)");
    const std::string bytes("a\0b'\xff\\", 6);
    base->AgregaRegistro(cn, "bin", {"Id", "Dato"},
                         {Valor(1), Valor(bytes, host::TipoCampo::Binario)});
    auto rs = Lee("bin");
    EXPECT_EQ(rs["Dato"].Tipo(), host::TipoCampo::Binario);
    EXPECT_EQ(rs["Dato"].Texto(), bytes);
    rs.Asigna("Dato", Valor(bytes + bytes, host::TipoCampo::Binario));
    base->RstUpdate(rs);
    EXPECT_EQ(Lee("bin")["Dato"].Texto(), bytes + bytes);
}

TEST_F(BaseDDMariaTest, ModoPermisivoEnCualquierServidor) {
    // Empty text into a number and a zero date go in as the system expects, even where the
    // server's default mode is strict.
    base->Executar(cn, "INSERT INTO sinclave VALUES ('z','')");
    base->Executar(cn, "UPDATE clientes SET Alta='0000-00-00' WHERE Clave='A1'");
    EXPECT_EQ(base->LastRec(cn, "sinclave WHERE Numero=0"), 1);
    EXPECT_EQ(base->LastRec(cn, "clientes WHERE Alta='0000-00-00'"), 2);
}

TEST_F(BaseDDMariaTest, AbrirDataSourceDaLasColumnasPedidas) {
    host::Recordset rs;
    ASSERT_TRUE(base->AbrirDataSource(rs, cn, "clientes ORDER BY Clave", "Clave,Nombre"));
    EXPECT_EQ(rs.FieldCount(), 2);
    EXPECT_EQ(rs.RecordCount(), 4);
    EXPECT_FALSE(rs.Conexion());
}

}  // namespace
}  // namespace paratzorep::data
