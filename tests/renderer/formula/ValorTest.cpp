// The value type: dates, the server's text collation, number and date patterns.
#include <gtest/gtest.h>

#include "renderer/Valor.h"
#include "support/NombresDeCaso.h"

namespace paratzorep::renderer {
namespace {

TEST(Fecha, LecturaDelServidor) {
    EXPECT_EQ(Fecha::leer("2024-03-05"), (Fecha{2024, 3, 5}));
    EXPECT_EQ(Fecha::leer("2024-03-05 10:11:12"), (Fecha{2024, 3, 5}));
    EXPECT_TRUE(Fecha::leer("0000-00-00")->vacia());
    EXPECT_TRUE(Fecha::leer("2024-00-00")->vacia());
    EXPECT_FALSE(Fecha::leer("2024-02-30"));
    EXPECT_FALSE(Fecha::leer("05/03/2024"));
    EXPECT_FALSE(Fecha::leer("2024-3-5"));
    EXPECT_EQ(FechaHora::leer("2024-03-05 10:11:12.5")->hora, (Hora{10, 11, 12}));
    EXPECT_TRUE(FechaHora::leer("0000-00-00 00:00:00")->fecha.vacia());
    EXPECT_FALSE(Hora::leer("25:00:00"));
}

TEST(Fecha, DiasJulianosIdaYVuelta) {
    for (Fecha f : {Fecha{1, 1, 1}, Fecha{1600, 2, 29}, Fecha{2000, 2, 29}, Fecha{2024, 12, 31},
                    Fecha{9999, 12, 31}}) {
        EXPECT_EQ(Fecha::desdeDiaJuliano(f.diaJuliano()), f) << f.iso();
    }
    EXPECT_EQ(Fecha({1, 1, 1}).diaJuliano(), 0);
    EXPECT_EQ(Fecha({2024, 3, 1}).diaJuliano() - Fecha({2024, 2, 28}).diaJuliano(), 2);
}

// Pairs over a wide sample are compared with the server's own collation in
// data/FilasTest (Colacion.IgualQueLaDelServidor); here, what cannot be sent there.
TEST(Colacion, BytesQueNoSonUtf8VanAlFinal) {
    EXPECT_EQ(compararTextos("\xff", "a"), std::strong_ordering::greater);
    EXPECT_EQ(compararTextos("a", "a\xff"), std::strong_ordering::less);
}

TEST(Colacion, SubcadenaComoLocate) {
    EXPECT_TRUE(contieneTexto("DEVOLUCION CTES. 5", "ctes. "));
    EXPECT_FALSE(contieneTexto("DEVOLUCION CTES.", "CTES. "));  // no padding in LOCATE
    EXPECT_TRUE(contieneTexto("café", "CAFÉ"));
    EXPECT_FALSE(contieneTexto("CAFÉ X", "CAFE"));  // window of the needle's byte length
    EXPECT_FALSE(contieneTexto("Ñ", "n"));
    EXPECT_TRUE(contieneTexto("x", ""));
    EXPECT_FALSE(contieneTexto("", "x"));
}

TEST(Valor, ComparacionEntreTipos) {
    EXPECT_FALSE(comparar(Valor(), Valor::numero(1)).has_value());
    EXPECT_EQ(*comparar(Valor::fecha({2024, 3, 5}), Valor::fechaHora({{2024, 3, 5}, {0, 0, 1}})),
              std::strong_ordering::less);
    EXPECT_THROW(comparar(Valor::texto("1"), Valor::numero(1)), ErrorValor);
    EXPECT_EQ(compararParaOrden(Valor(), Valor::numero(-1)), std::strong_ordering::less);
    EXPECT_EQ(compararParaOrden(Valor::fecha({}), Valor::fecha({1, 1, 1})),
              std::strong_ordering::less);
    EXPECT_THROW(Valor::texto("x").comoNumero(), ErrorValor);
}

struct CasoNumero {
    const char* nombre;
    double v;
    const char* patron;
    const char* texto;
};

class Patron : public ::testing::TestWithParam<CasoNumero> {};

TEST_P(Patron, Formatea) {
    EXPECT_EQ(formatearNumero(GetParam().v, GetParam().patron), GetParam().texto);
}

INSTANTIATE_TEST_SUITE_P(
    Casos, Patron,
    ::testing::Values(CasoNumero{"MilesYDecimales", 1234567.891, "#,##0.00", "1,234,567.89"},
                      CasoNumero{"Cero", 0, "#,##0.00", "0.00"},
                      CasoNumero{"NegativoQueRedondeaACero", -0.004, "#,##0.00", "0.00"},
                      CasoNumero{"NegativoSinDecimales", -1234.5, "#,##0", "-1,235"},
                      CasoNumero{"MedioRedondeaHaciaArriba", 0.5, "#", "1"},
                      CasoNumero{"DecimalesOpcionales", 0.25, "0.###", "0.25"},
                      CasoNumero{"CerosALaIzquierda", 7, "000", "007"},
                      CasoNumero{"TextoAlrededor", 99.5, "$#,##0.00 MXN", "$99.50 MXN"},
                      CasoNumero{"Enorme", 1e20, "#,##0", "100,000,000,000,000,000,000"}),
    pruebas::PorNombre());

TEST(Patron, Fechas) {
    const FechaHora f{{2024, 3, 5}, {9, 7, 3}};
    EXPECT_EQ(formatearFecha(f, "dd/mmm/yyyy"), "05/mar/2024");
    EXPECT_EQ(formatearFecha(f, "d/m/yy"), "5/3/24");
    EXPECT_EQ(formatearFecha(f, "dd/mm/yyyy hh:nn:ss"), "05/03/2024 09:07:03");
    EXPECT_EQ(formatearFecha(f, "mmmm"), "marzo");
    EXPECT_EQ(formatearFecha({{2024, 8, 1}, {}}, "mmm"), "ago");
    EXPECT_EQ(formatearFecha({}, "dd/mm/yyyy"), "");
}

}  // namespace
}  // namespace paratzorep::renderer
