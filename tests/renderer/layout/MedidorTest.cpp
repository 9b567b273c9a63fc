#include "renderer/layout/Medidor.h"

#include <gtest/gtest.h>

#include "support/NombresDeCaso.h"

namespace paratzorep::renderer {
namespace {

class MedidorTest : public ::testing::Test {
  protected:
    Medidor medidor;
    std::uint16_t f = medidor.Registra(Fuente{"DejaVu Sans", 10});
};

TEST_F(MedidorTest, AnchoEsLaSumaDeSusPartes) {
    double a = medidor.Ancho(f, "Saldo ");
    double b = medidor.Ancho(f, "Núñez");
    EXPECT_GT(a, 0);
    EXPECT_NEAR(medidor.Ancho(f, "Saldo Núñez"), a + b, 1e-9);
    EXPECT_EQ(medidor.Ancho(f, ""), 0);
    // Bold is wider; the same font registered twice is one font.
    auto negrita = medidor.Registra(Fuente{"DejaVu Sans", 10, true});
    EXPECT_GT(medidor.Ancho(negrita, "Saldo"), medidor.Ancho(f, "Saldo"));
    EXPECT_EQ(medidor.Registra(Fuente{"DejaVu Sans", 10}), f);
}

TEST_F(MedidorTest, TextoInvalidoOAjenoNoRompe) {
    EXPECT_GT(medidor.Ancho(f, std::string("a\xff\xfe b\xc3", 6)), 0);
    EXPECT_GT(medidor.Ancho(f, "漢字 ✓ 😀"), 0);  // fallback fonts or replacement
    std::vector<CorridaGlifos> corridas;
    medidor.Glifos(f, "漢字 y Núñez", 0, 10, corridas);
    EXPECT_FALSE(corridas.empty());
}

struct CasoParte {
    const char* nombre;
    const char* texto;
    double anchoEnM;  // the width as a multiple of the width of "m"
    std::vector<std::string> lineas;
};

class ParteTest : public MedidorTest, public ::testing::WithParamInterface<CasoParte> {};

TEST_P(ParteTest, ParteEnBlancosYRespetaElAncho) {
    const auto& c = GetParam();
    double ancho = c.anchoEnM * medidor.Ancho(f, "m");
    auto r = medidor.Parte(f, c.texto, ancho, Alineacion::Izquierda, true);
    std::vector<std::string> lineas;
    for (const auto& l : r) {
        lineas.push_back(l.texto);
        EXPECT_NEAR(l.ancho, medidor.Ancho(f, l.texto), 1e-9);
        if (l.texto.size() > 1) {
            EXPECT_LE(l.ancho, ancho + 0.01) << l.texto;
        }
    }
    EXPECT_EQ(lineas, c.lineas);
}

INSTANTIATE_TEST_SUITE_P(
    Casos, ParteTest,
    ::testing::Values(CasoParte{"ParteEnUnBlanco", "mm mm mm", 5.5, {"mm mm", "mm"}},
                      CasoParte{"CabeEnUnaLinea", "mm mm mm", 100, {"mm mm mm"}},
                      CasoParte{"PalabraMasAnchaQueLaCaja", "mmmmmm", 3.5, {"mmm", "mmm"}},
                      CasoParte{"SaltoDeLinea", "uno\ndos", 100, {"uno", "dos"}},
                      CasoParte{"LineaVacia", "uno\n\ndos", 100, {"uno", "", "dos"}},
                      CasoParte{"TextoVacio", "", 10, {""}},
                      CasoParte{"VariosBlancosEnElCorte", "mm    mm", 2.5, {"mm", "mm"}}),
    pruebas::PorNombre());

TEST_F(MedidorTest, AlineaCadaLinea) {
    double ancho = 200;
    auto der = medidor.Parte(f, "Total", ancho, Alineacion::Derecha, false);
    ASSERT_EQ(der.size(), 1u);
    EXPECT_NEAR(der[0].dx + der[0].ancho, ancho, 1e-9);
    auto cen = medidor.Parte(f, "Total", ancho, Alineacion::Centro, false);
    EXPECT_NEAR(cen[0].dx * 2 + cen[0].ancho, ancho, 1e-9);
    // Without growing, the text stays on one line and line breaks become blanks.
    auto una = medidor.Parte(f, "uno\ndos", 5, Alineacion::Izquierda, false);
    ASSERT_EQ(una.size(), 1u);
    EXPECT_EQ(una[0].texto, "uno dos");
}

TEST_F(MedidorTest, GlifosEnLaPosicionMedida) {
    std::vector<CorridaGlifos> corridas;
    medidor.Glifos(f, "ab", 100, 50, corridas);
    ASSERT_EQ(corridas.size(), 1u);
    ASSERT_EQ(corridas[0].glifos.size(), 2u);
    EXPECT_DOUBLE_EQ(corridas[0].glifos[0].x, 100);
    EXPECT_NEAR(corridas[0].glifos[1].x, 100 + medidor.Ancho(f, "a"), 1e-9);
    EXPECT_DOUBLE_EQ(corridas[0].glifos[1].y, 50);
}

}  // namespace
}  // namespace paratzorep::renderer
