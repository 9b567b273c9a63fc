// The commissions form's decisions from the company's settings and its exact texts: template,
// basis label, percentage sources, sort fields, data files and the period's heading.
#include "reports/sales/RepAdmComisXvend.h"

#include <gtest/gtest.h>

#include "support/NombresDeCaso.h"

namespace paratzorep::reports {
namespace {

struct CasoConfig {
    const char* nombre;
    ConfigComisiones config;
    const char* plantilla;
    const char* base;
    bool linea, precio;
};

class ConfigComisionesTest : public ::testing::TestWithParam<CasoConfig> {};

TEST_P(ConfigComisionesTest, EsquemaBaseYFuentes) {
    const auto& c = GetParam();
    EXPECT_EQ(RepAdmComisXvend::Plantilla(c.config, "/srv/rpts"), c.plantilla);
    EXPECT_EQ(RepAdmComisXvend::TextoBase(c.config), c.base);
    if (!c.config.EsquemaDeTabla()) {
        EXPECT_EQ(c.config.FuenteLinea(), c.linea);
        EXPECT_EQ(c.config.FuentePrecio(), c.precio);
    }
}

// Fields: pagado, liquidado, tabla, linea, precios, linYprec.
INSTANTIATE_TEST_SUITE_P(
    Casos, ConfigComisionesTest,
    ::testing::Values(
        // With both bases off, the basis is what was sold; with no scheme, the brackets.
        CasoConfig{"nada encendido",
                   {},
                   "/srv/rpts/comispv1.rpt",
                   "Comisionar por lo vendido",
                   false,
                   false},
        CasoConfig{"tabla y pagado",
                   {true, false, true, false, false, false},
                   "/srv/rpts/comispv1.rpt",
                   "Comisionar por lo pagado",
                   false,
                   false},
        CasoConfig{"tabla y liquidado",
                   {false, true, true, false, false, false},
                   "/srv/rpts/comispv1.rpt",
                   "Comisionar por lo liquidado",
                   false,
                   false},
        CasoConfig{"pagado y liquidado",
                   {true, true, true, false, false, false},
                   "/srv/rpts/comispv1.rpt",
                   "Comisionar por lo pagado",
                   false,
                   false},
        CasoConfig{"la tabla gana a la linea",
                   {false, false, true, true, false, false},
                   "/srv/rpts/comispv1.rpt",
                   "Comisionar por lo vendido",
                   false,
                   false},
        CasoConfig{"por linea",
                   {false, false, false, true, false, false},
                   "/srv/rpts/comispv2.rpt",
                   "Comisionar por lo vendido",
                   true,
                   false},
        CasoConfig{"por precios y pagado",
                   {true, false, false, false, true, false},
                   "/srv/rpts/comispv2.rpt",
                   "Comisionar por lo pagado",
                   false,
                   true},
        CasoConfig{"por linea y precio",
                   {false, false, false, false, false, true},
                   "/srv/rpts/comispv2.rpt",
                   "Comisionar por lo vendido",
                   true,
                   true}),
    pruebas::PorNombre());

TEST(RepAdmComisXvend, TextosExactos) {
    EXPECT_EQ(RepAdmComisXvend::Plantilla({}, ""), "comispv1.rpt");
    EXPECT_EQ(RepAdmComisXvend::ArchivosDatos("tbltemp3", "tbltemp4"),
              "comisxventas*tbltemp3;comisxventasdetalle*tbltemp4");
    using V = std::vector<std::string>;
    EXPECT_EQ(RepAdmComisXvend::Orden(0, true), V{"+{ComisXvend2.Fecha}"});
    EXPECT_EQ(RepAdmComisXvend::Orden(1, true),
              (V{"+{ComisXvend2.Documento}", "+{ComisXvend2.Serie}", "+{ComisXvend2.Numero}"}));
    EXPECT_EQ(RepAdmComisXvend::Orden(2, false),
              (V{"+{comisxventas.Cliente}", "+{comisxventas.Fecha}"}));
    EXPECT_EQ(RepAdmComisXvend::TextoPeriodo("01/10/2026", "31/10/2026"),
              "Del 1 de octubre de 2026 al 31 de octubre de 2026");
    EXPECT_EQ(RepAdmComisXvend::TextoPeriodo("01/10/2026", ""), "Desde el 1 de octubre de 2026");
    EXPECT_EQ(RepAdmComisXvend::TextoPeriodo("", "05/03/2025"), "Hasta el 5 de marzo de 2025");
    EXPECT_EQ(RepAdmComisXvend::TextoPeriodo("", ""), "Todas las fechas");
}

}  // namespace
}  // namespace paratzorep::reports
