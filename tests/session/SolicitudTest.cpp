// The report request's indexed formulas and sort fields.
#include "session/Solicitud.h"

#include <gtest/gtest.h>

namespace paratzorep::session {
namespace {

TEST(SolicitudTest, VeintiunFormulasYLaVigesimoSegundaFueraDeRango) {
    SolicitudReporte s;
    for (int i = 0; i <= 20; ++i) s.Formula(i, "F" + std::to_string(i) + "='x'");
    EXPECT_EQ(s.Formula(20), "F20='x'");
    EXPECT_THROW(s.Formula(21, "F21='x'"), std::out_of_range);
    EXPECT_THROW(s.Formula(-1, "x"), std::out_of_range);
    EXPECT_THROW((void)s.Formula(21), std::out_of_range);
    EXPECT_EQ(s.Formulas().size(), 21u);
    for (int i = 0; i <= 20; ++i) s.SortField(i, "+{t.c}");
    EXPECT_THROW(s.SortField(21, "+{t.c}"), std::out_of_range);
}

TEST(SolicitudTest, ListasEnOrdenDeIndiceYLimpieza) {
    SolicitudReporte& s = solicitud();
    s.Limpia();
    s.Formula(3, "C='3'");
    s.Formula(0, "A='0'");
    s.SortField(1, "-{x.b}");
    s.MapeaTabla("bitacorausuarios", "tbltemp12");
    s.Destino = 2;
    EXPECT_EQ(s.Formulas(), (std::vector<std::string>{"A='0'", "C='3'"}));
    EXPECT_EQ(s.SortFields(), (std::vector<std::string>{"-{x.b}"}));
    EXPECT_EQ(s.ArchivosDatos, (std::vector<std::string>{"bitacorausuarios*tbltemp12"}));
    s.Limpia();
    EXPECT_TRUE(s.Formulas().empty());
    EXPECT_TRUE(s.ArchivosDatos.empty());
    EXPECT_EQ(s.Destino, 0);
    EXPECT_EQ(s.Copias, 1);
}

}  // namespace
}  // namespace paratzorep::session
