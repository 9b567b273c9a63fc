#include "host/Recordset.h"

#include <gtest/gtest.h>

#include "host/BaseDD.h"
#include "support/NombresDeCaso.h"

namespace paratzorep::host {
namespace {

struct CasoLectura {
    const char* nombre;
    Valor valor;
    std::string texto;
    double doble;
    std::int64_t entero;
    std::string fecha;
};

class LecturasDeValor : public ::testing::TestWithParam<CasoLectura> {};

TEST_P(LecturasDeValor, TextoNumeroYFecha) {
    const auto& c = GetParam();
    EXPECT_EQ(c.valor.Texto(), c.texto);
    EXPECT_DOUBLE_EQ(c.valor.Doble(), c.doble);
    EXPECT_EQ(c.valor.Entero(), c.entero);
    EXPECT_EQ(c.valor.Fecha(), c.fecha);
}

INSTANTIATE_TEST_SUITE_P(
    Valores, LecturasDeValor,
    ::testing::Values(
        CasoLectura{"Nulo", Valor(), "", 0, 0, ""},
        CasoLectura{"TextoVacio", Valor(""), "", 0, 0, ""},
        CasoLectura{"Decimal", Valor("12.50", TipoCampo::Decimal), "12.50", 12.5, 12, ""},
        CasoLectura{"TextoConDecimales", Valor("13.5"), "13.5", 13.5, 14, ""},
        CasoLectura{"EnteroNegativo", Valor("-3", TipoCampo::Entero), "-3", -3, -3, ""},
        CasoLectura{"NumeroEntreBlancos", Valor(" 7 "), " 7 ", 7, 7, ""},
        CasoLectura{"Letras", Valor("abc"), "abc", 0, 0, ""},
        CasoLectura{"NumeroSeguidoDeLetras", Valor("12abc"), "12abc", 0, 0, ""},
        CasoLectura{"Fecha", Valor("2024-03-05", TipoCampo::Fecha), "2024-03-05", 0, 0,
                    "2024-03-05"},
        CasoLectura{"FechaHora", Valor("2024-03-05 10:11:12", TipoCampo::FechaHora),
                    "2024-03-05 10:11:12", 0, 0, "2024-03-05"},
        CasoLectura{"FechaEnCeros", Valor("0000-00-00", TipoCampo::Fecha), "0000-00-00", 0, 0, ""},
        CasoLectura{"FechaHoraEnCeros", Valor("0000-00-00 00:00:00", TipoCampo::FechaHora),
                    "0000-00-00 00:00:00", 0, 0, ""},
        CasoLectura{"FechaComoTexto", Valor("05/03/2024"), "05/03/2024", 0, 0, ""},
        CasoLectura{"Doble", Valor(81.0), "81", 81, 81, ""},
        CasoLectura{"DobleMenorQueUno", Valor(0.1), "0.1", 0.1, 0, ""},
        CasoLectura{"Entero", Valor(42), "42", 42, 42, ""}),
    pruebas::PorNombre());

TEST(Valor, NuloYVacioSeDistinguen) {
    EXPECT_TRUE(Valor().EsNulo());
    EXPECT_FALSE(Valor("").EsNulo());
    EXPECT_FALSE(Valor() == Valor(""));
    EXPECT_TRUE(Valor::Nulo(TipoCampo::Entero) == Valor());
}

// A recordset shaped like one read from "clientes".
Recordset Clientes() {
    Recordset rs;
    rs.Abre({{"Clave", TipoCampo::Texto, "clientes", true, false},
             {"Nombre", TipoCampo::Texto, "clientes", false, false},
             {"Saldo", TipoCampo::Decimal, "clientes", false, false}},
            {{Valor("A1"), Valor("Uno"), Valor("10.5", TipoCampo::Decimal)},
             {Valor("B2"), Valor::Nulo(), Valor::Nulo(TipoCampo::Decimal)}},
            "clientes", "clientes", {});
    return rs;
}

TEST(Recordset, NavegaYLeeSinImportarMayusculas) {
    auto rs = Clientes();
    EXPECT_EQ(rs.RecordCount(), 2);
    EXPECT_FALSE(rs.Eof());
    EXPECT_EQ(rs["clave"].Texto(), "A1");
    EXPECT_EQ(rs.Campo("NOMBRE").Texto(), "Uno");
    EXPECT_EQ(rs.Campo("clientes.Saldo").Doble(), 10.5);
    rs.MoveNext();
    EXPECT_TRUE(rs["Nombre"].EsNulo());
    rs.MoveNext();
    EXPECT_TRUE(rs.Eof());
    EXPECT_THROW(rs.MoveNext(), ErrorRecordset);
    EXPECT_THROW(rs["Clave"], ErrorRecordset);
    rs.MoveFirst();
    EXPECT_EQ(rs["Clave"].Texto(), "A1");
}

TEST(Recordset, CampoInexistenteDiceCualYDeDonde) {
    auto rs = Clientes();
    try {
        rs["Telefono"];
        FAIL();
    } catch (const ErrorRecordset& e) {
        EXPECT_NE(std::string(e.what()).find("'Telefono'"), std::string::npos);
        EXPECT_NE(std::string(e.what()).find("clientes"), std::string::npos);
    }
}

TEST(Recordset, AsignarYAgregarMarcanLasFilasPendientes) {
    auto rs = Clientes();
    EXPECT_TRUE(rs.FilasPendientes().empty());
    rs.Asigna("nombre", Valor("Nuevo"));
    rs.AddNew();
    EXPECT_EQ(rs.Posicion(), 2);
    EXPECT_TRUE(rs["Clave"].EsNulo());
    EXPECT_EQ(rs["Saldo"].Tipo(), TipoCampo::Decimal);
    rs.Asigna("Clave", Valor("C3"));
    EXPECT_EQ(rs.FilasPendientes(), (std::vector<std::int32_t>{0, 2}));
    EXPECT_EQ(rs.Estado(0), Recordset::EstadoFila::Modificada);
    EXPECT_EQ(rs.Estado(2), Recordset::EstadoFila::Nueva);
    EXPECT_EQ(rs.Original(0)[1].Texto(), "Uno");
    rs.MarcaGuardada(0);
    EXPECT_EQ(rs.Original(0)[1].Texto(), "Nuevo");
    EXPECT_EQ(rs.FilasPendientes(), (std::vector<std::int32_t>{2}));
}

TEST(Recordset, AutonumericoSeLlenaAlGuardarUnaFilaNueva) {
    Recordset rs;
    rs.Abre({{"Id", TipoCampo::Entero, "t", true, true}, {"Dato", TipoCampo::Texto, "t"}}, {}, "t",
            "t", {});
    rs.AddNew();
    rs.MarcaGuardada(0, Valor(17));
    EXPECT_EQ(rs["Id"].Entero(), 17);
}

TEST(ErrorDatos, ElMensajeLlevaAccionSqlYCodigo) {
    ErrorDatos e("Abrir 'x'", "SELECT * FROM x", 1146, "Table 'x' doesn't exist");
    std::string m = e.what();
    EXPECT_NE(m.find("Abrir 'x'"), std::string::npos);
    EXPECT_NE(m.find("1146"), std::string::npos);
    EXPECT_NE(m.find("SELECT * FROM x"), std::string::npos);
    EXPECT_EQ(e.Codigo(), 1146);
}

}  // namespace
}  // namespace paratzorep::host
