// Refilling the local work file from the server: values as SQLite's column types make them,
// streamed (a result larger than any block), and all or nothing.
#include "data/CargaLocal.h"

#include <gtest/gtest.h>

#include "EntornoPrueba.h"

namespace paratzorep::data {
namespace {

class CargaLocalTest : public prueba::ConBase {
  protected:
    void SetUp() override {
        ConBase::SetUp();
        Ejecuta(
            "CREATE TABLE origen (Id INT PRIMARY KEY, Texto VARCHAR(40), Numero DOUBLE, Fecha DATE);"
            "INSERT INTO origen VALUES (1,'O''Brien',12.5,'2025-03-05'),(2,NULL,0.1,'0000-00-00'),"
            "(3,'ñandú',-3,NULL)");
        empresa = Abre();
        ASSERT_TRUE(base->AbreBdDAccess(local, (tmp / "Auxiliar.mdb").string()));
        base->Executar(local, "CREATE TABLE IF NOT EXISTS Prueba (Id INTEGER PRIMARY KEY, "
                              "Texto TEXT, Numero DOUBLE, Fecha DATE)");
    }
    void TearDown() override {
        base->CierraBdD(local);
        base->CierraBdD(empresa);
        ConBase::TearDown();
    }
    std::vector<std::string> Prueba(const std::string& sql) {
        host::Recordset rs;
        EXPECT_TRUE(base->AbrirTabla(rs, local, sql)) << base->UltimoError();
        std::vector<std::string> r;
        for (rs.MoveFirst(); !rs.Eof(); rs.MoveNext()) {
            std::string fila;
            for (std::int16_t c = 0; c < rs.FieldCount(); ++c) {
                const auto& v = rs.Campo(static_cast<std::size_t>(c));
                fila += (c ? "|" : "") + (v.EsNulo() ? std::string("nulo") : v.Texto());
            }
            r.push_back(fila);
        }
        return r;
    }
    std::int64_t Copia(CargaLocal& carga, const std::string& sql) {
        return carga.Copia(empresa, sql, "Prueba", {"Texto", "Numero", "Fecha"});
    }

    pruebas::CarpetaTemporal tmp;
    host::Conexion empresa, local;
};

TEST_F(CargaLocalTest, CopiaConLosTiposDeLasColumnasYTodoONada) {
    {
        CargaLocal carga(local);
        carga.Rehace("Prueba");
        EXPECT_EQ(Copia(carga, "SELECT Texto,Numero,Fecha FROM origen ORDER BY Id"), 3);
        carga.Confirma();
    }
    EXPECT_EQ(Prueba("SELECT Texto,typeof(Numero),Numero,Fecha,typeof(Fecha) FROM Prueba "
                     "ORDER BY Id"),
              (std::vector<std::string>{"O'Brien|real|12.5|2025-03-05|text",
                                        "nulo|real|0.1|0000-00-00|text",
                                        "ñandú|real|-3|nulo|null"}));
    // Without a commit, or when a query fails half way, the table keeps what it had.
    {
        CargaLocal carga(local);
        carga.Rehace("Prueba");
        Copia(carga, "SELECT 'otro',1,NULL");
    }
    {
        CargaLocal carga(local);
        carga.Rehace("Prueba");
        Copia(carga, "SELECT 'otro',1,NULL");
        EXPECT_THROW(Copia(carga, "SELECT Texto,Numero FROM no_existe"), host::ErrorDatos);
    }
    EXPECT_EQ(Prueba("SELECT COUNT(*) FROM Prueba"), (std::vector<std::string>{"3"}));
}

TEST_F(CargaLocalTest, RehaceLasTablasDelArchivoConSuDefinicionYLeeSinAcumular) {
    // A file made before a column was added gets the table as it is defined now.
    base->Executar(local, "DROP TABLE Utilidad");
    base->Executar(local, "CREATE TABLE Utilidad (Id INTEGER PRIMARY KEY, Linea TEXT)");
    CargaLocal carga(local);
    carga.Rehace("Utilidad");
    carga.Rehace("Prueba");
    // 200,000 rows streamed through one prepared insert.
    EXPECT_EQ(Copia(carga,
                    "SELECT CONCAT('fila ', seq), seq / 4, '2025-01-01' FROM seq_1_to_200000"),
              200000);
    carga.Confirma();
    EXPECT_EQ(Prueba("SELECT COUNT(*), CAST(SUM(Numero) AS INTEGER) FROM Prueba"),
              (std::vector<std::string>{"200000|5000025000"}));
    host::Recordset rs;
    ASSERT_TRUE(base->AbrirTabla(rs, local, "Utilidad"));
    EXPECT_TRUE(rs.TieneCampo("NombreLinea"));
    EXPECT_TRUE(rs.TieneCampo("MontoNdeC"));
}

}  // namespace
}  // namespace paratzorep::data
