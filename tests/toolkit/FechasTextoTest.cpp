// Dates, numbers and filter clauses of the general helper object.
#include <gtest/gtest.h>

#include "support/NombresDeCaso.h"
#include "toolkit/Fechas.h"
#include "toolkit/LibKRVM.h"
#include "toolkit/Texto.h"
#include "toolkit/Utilerias.h"

namespace paratzorep::toolkit {
namespace {

struct CasoFecha {
    const char* nombre;
    const char* entrada;
    const char* sql;
    const char* completa;
    const char* mesCorto;
};

void PrintTo(const CasoFecha& c, std::ostream* os) {
    *os << '"' << c.entrada << '"';
}

class FechasTest : public ::testing::TestWithParam<CasoFecha> {};

TEST_P(FechasTest, ConvierteOrechaza) {
    const CasoFecha& c = GetParam();
    LibKRVM kv;
    EXPECT_EQ(kv.FechaSQL(c.entrada), c.sql);
    EXPECT_EQ(kv.FechaCompleta(c.entrada), c.completa);
    EXPECT_EQ(kv.FechaMesCorto(c.entrada), c.mesCorto);
    EXPECT_EQ(kv.EsFecha(c.entrada), std::string(c.sql) != "");
}

INSTANTIATE_TEST_SUITE_P(
    Tabla, FechasTest,
    ::testing::Values(
        CasoFecha{"DiaMesAnio", "05/03/2024", "2024-03-05", "5 de marzo de 2024", "05/mar/2024"},
        CasoFecha{"SinCeros", "5/3/2024", "2024-03-05", "5 de marzo de 2024", "05/mar/2024"},
        CasoFecha{"ConBlancos", " 31/12/1999 ", "1999-12-31", "31 de diciembre de 1999",
                  "31/dic/1999"},
        CasoFecha{"PrimeroDeAnio", "01/01/2025", "2025-01-01", "1 de enero de 2025", "01/ene/2025"},
        CasoFecha{"Bisiesto", "29/02/2024", "2024-02-29", "29 de febrero de 2024", "29/feb/2024"},
        CasoFecha{"MesAbreviado", "15/ago/2023", "2023-08-15", "15 de agosto de 2023",
                  "15/ago/2023"},
        CasoFecha{"MesEnMayusculas", "15/SEP/2023", "2023-09-15", "15 de septiembre de 2023",
                  "15/sep/2023"},
        CasoFecha{"Iso", "2024-06-30", "2024-06-30", "30 de junio de 2024", "30/jun/2024"},
        CasoFecha{"IsoConHora", "2024-06-30 10:11:12", "2024-06-30", "30 de junio de 2024",
                  "30/jun/2024"},
        CasoFecha{"DiaQueNoExiste", "31/02/2024", "", "", ""},
        CasoFecha{"NoBisiesto", "29/02/2023", "", "", ""},
        CasoFecha{"DiaCero", "00/01/2024", "", "", ""},
        CasoFecha{"MesTrece", "12/13/2024", "", "", ""},
        CasoFecha{"MascaraVacia", "__/__/____", "", "", ""},
        CasoFecha{"MascaraEnBlanco", "  /  /    ", "", "", ""}, CasoFecha{"Vacia", "", "", "", ""},
        CasoFecha{"AnioDeDosCifras", "05/03/24", "", "", ""},
        CasoFecha{"LetraAlFinal", "05/03/2024x", "", "", ""},
        CasoFecha{"Palabra", "hoy", "", "", ""}, CasoFecha{"IsoEnCeros", "0000-00-00", "", "", ""},
        CasoFecha{"MesDesconocido", "15/xyz/2023", "", "", ""}),
    pruebas::PorNombre());

TEST(MesesTest, AbreviacionesEnEspanol) {
    const char* esperadas[] = {"ene", "feb", "mar", "abr", "may", "jun",
                               "jul", "ago", "sep", "oct", "nov", "dic"};
    for (int m = 1; m <= 12; ++m) {
        EXPECT_EQ(TextoMesCorto(Fecha{2024, m, 1}),
                  std::string("01/") + esperadas[m - 1] + "/2024");
        // Each abbreviation reads back as its month.
        auto f = LeeFecha(std::string("01/") + esperadas[m - 1] + "/2024");
        ASSERT_TRUE(f);
        EXPECT_EQ(f->mes, m);
    }
}

TEST(FechasAritmeticaTest, DiasEntreCruzaMesesYBisiestos) {
    EXPECT_EQ(DiasEntre({2024, 2, 28}, {2024, 3, 1}), 2);
    EXPECT_EQ(DiasEntre({2023, 2, 28}, {2023, 3, 1}), 1);
    EXPECT_EQ(DiasEntre({2024, 3, 1}, {2024, 2, 28}), -2);
    EXPECT_EQ(SumaDias({2024, 12, 31}, 1), (Fecha{2025, 1, 1}));
    EXPECT_EQ(SumaDias({2024, 3, 1}, -30), (Fecha{2024, 1, 31}));
}

TEST(FechaVaciaTest, MascaraYBlancosSonVacios) {
    LibKRVM kv;
    EXPECT_TRUE(kv.FechaVacia(""));
    EXPECT_TRUE(kv.FechaVacia("__/__/____"));
    EXPECT_TRUE(kv.FechaVacia("  /  /    "));
    EXPECT_FALSE(kv.FechaVacia("01/__/____"));
    EXPECT_FALSE(kv.FechaVacia("01/01/2024"));
}

struct CasoVal {
    const char* nombre;
    const char* texto;
    double valor;
};

void PrintTo(const CasoVal& c, std::ostream* os) {
    *os << '"' << c.texto << '"';
}

class KvValTest : public ::testing::TestWithParam<CasoVal> {};

TEST_P(KvValTest, NumeroInicial) {
    EXPECT_DOUBLE_EQ(LibKRVM().kvVal(GetParam().texto), GetParam().valor);
}

INSTANTIATE_TEST_SUITE_P(
    Tabla, KvValTest,
    ::testing::Values(
        CasoVal{"Entero", "123", 123}, CasoVal{"BlancosYLetrasDespues", "  42abc", 42},
        CasoVal{"NegativoConDecimales", "-7.25", -7.25}, CasoVal{"SignoMas", "+3", 3},
        CasoVal{"SignoSeparado", "- 5", -5}, CasoVal{"BlancoEntreCifras", "1 000", 1000},
        CasoVal{"SinCeroAntesDelPunto", ".5", 0.5}, CasoVal{"DosPuntos", "12.3.4", 12.3},
        CasoVal{"Vacio", "", 0}, CasoVal{"Letras", "abc", 0}, CasoVal{"SoloSigno", "-", 0},
        CasoVal{"SignoDePesos", "$10", 0}, CasoVal{"ComaNoEsDecimal", "3,5", 3},
        CasoVal{"CerosALaIzquierda", "0007", 7}, CasoVal{"Tabuladores", "\t9\t", 9},
        CasoVal{"Exponente", "1.5E3", 1500}, CasoVal{"ExponenteNegativo", "25e-2", 0.25},
        CasoVal{"ExponenteSinCifras", "3e", 3}, CasoVal{"ExponenteConLetra", "4E+x", 4},
        CasoVal{"NegativoConExponente", "-2e2", -200}),
    pruebas::PorNombre());

TEST(SumaWhereAndTest, PrimeraCondicionAbreWhereYLasDemasUnenConAnd) {
    LibKRVM kv;
    std::string w;
    w = kv.SumaWhereAnd(w, "Fecha>='2024-01-01'");
    EXPECT_EQ(w, " WHERE Fecha>='2024-01-01'");
    w = kv.SumaWhereAnd(w, "");
    EXPECT_EQ(w, " WHERE Fecha>='2024-01-01'");
    w = kv.SumaWhereAnd(w, "Fecha<='2024-01-31'");
    w = kv.SumaWhereAnd(w, "Clave='A'");
    EXPECT_EQ(w, " WHERE Fecha>='2024-01-01' AND Fecha<='2024-01-31' AND Clave='A'");
    EXPECT_EQ(kv.SumaWhereAnd("   ", "X=1"), " WHERE X=1");
}

TEST(CambXXXTest, ReemplazaTodasSinEscapar) {
    Utilerias u;
    EXPECT_EQ(u.CambXXX("Fecha>='XXX' AND Fecha<='XXX'", "2024-01-01"),
              "Fecha>='2024-01-01' AND Fecha<='2024-01-01'");
    EXPECT_EQ(u.CambXXX("Clave='XXX'", "O'Hara"), "Clave='O'Hara'");
    EXPECT_EQ(u.CambXXX("sin marcador", "v"), "sin marcador");
    EXPECT_EQ(u.CambXXX("XXXX", "a"), "aX");
    EXPECT_EQ(u.CambXXX("XXX", "XXX"), "XXX");
    EXPECT_EQ(u.SQLseguro("O'Hara\\"), "O''Hara\\\\");
}

TEST(PorcentajeTest, AcotadoEntreCeroYCien) {
    LibKRVM kv;
    EXPECT_EQ(kv.Porcentaje(1, 3), 33);
    EXPECT_EQ(kv.Porcentaje(3, 3), 100);
    EXPECT_EQ(kv.Porcentaje(5, 3), 100);
    EXPECT_EQ(kv.Porcentaje(1, 0), 0);
    EXPECT_EQ(kv.Porcentaje(-1, 10), 0);
}

TEST(TeclasTest, EnterSeConsumeYFlechasMueven) {
    LibKRVM kv;
    std::int16_t k = 13;
    EXPECT_TRUE(kv.Enter(k));
    EXPECT_EQ(k, 0);
    k = 65;
    EXPECT_FALSE(kv.Enter(k));
    EXPECT_EQ(k, 65);
    EXPECT_TRUE(kv.Teclas(40, 0));
    EXPECT_FALSE(kv.Teclas(40, 1));
}

TEST(NoNullTest, NuloSegunTipo) {
    LibKRVM kv;
    EXPECT_EQ(kv.NoNull(host::Valor::Nulo(host::TipoCampo::Decimal)), "0");
    EXPECT_EQ(kv.NoNull(host::Valor::Nulo()), "");
    EXPECT_EQ(kv.NoNull(host::Valor("x")), "x");
}

TEST(Utf8Test, BienFormadoOMal) {
    const std::vector<std::pair<std::string, bool>> casos = {
        {"", true},
        {"Año ñoño €", true},
        {"\xF0\x9F\x98\x80", true},  // outside the BMP
        {"\xFF", false},
        {"caf\xE9", false},           // Latin-1
        {"\xC3", false},              // cut short
        {"\xC0\xAF", false},          // overlong
        {"\xED\xA0\x80", false},      // surrogate
        {"\xF4\x90\x80\x80", false},  // past U+10FFFF
    };
    for (const auto& [texto, valido] : casos)
        EXPECT_EQ(detail::EsUtf8Valido(texto), valido) << texto;
}

}  // namespace
}  // namespace paratzorep::toolkit
