// Product statements: the selection formula character for character for every combination of
// filters that changes it.
#include "reports/inventory/RepAdmEdoCtaProds.h"

#include <gtest/gtest.h>

#include "support/NombresDeCaso.h"

namespace paratzorep::reports {
namespace {

struct CasoFormula {
    const char* nombre;
    const char *desde, *hasta, *cliente0, *cliente1, *producto;
    const char* esperada;
};

class FormulaEdoCtaProds : public ::testing::TestWithParam<CasoFormula> {};

TEST_P(FormulaEdoCtaProds, EsLaDelSistema) {
    const auto& c = GetParam();
    EXPECT_EQ(
        RepAdmEdoCtaProds::FormulaSeleccion(c.desde, c.hasta, c.cliente0, c.cliente1, c.producto),
        c.esperada);
}

INSTANTIATE_TEST_SUITE_P(
    Tabla, FormulaEdoCtaProds,
    ::testing::Values(
        CasoFormula{"sin filtros", "", "", "", "", "", ""},
        CasoFormula{"desde", "05/03/2026", "", "", "", "", "{edoctaspc.Fecha}>=Date(2026,3,5)"},
        CasoFormula{"hasta", "", "31/10/2026", "", "", "", "{edoctaspc.Fecha}<=Date(2026,10,31)"},
        CasoFormula{"fecha invalida no se aplica", "31/02/2026", "", "", "", "", ""},
        CasoFormula{"solo el primer cliente", "", "", "C00007", "", "",
                    "{edoctaspc.Cliente}='C00007'"},
        CasoFormula{"solo el ultimo cliente", "", "", "", "C00009", "",
                    "{edoctaspc.Cliente}='C00009'"},
        CasoFormula{"el mismo cliente en las dos", "", "", "C00005", "C00005", "",
                    "{edoctaspc.Cliente}>='C00005' and {edoctaspc.Cliente}<='C00005'"},
        CasoFormula{"producto", "", "", "", "", "ENV-0002", "{edoctaspc.Producto}='ENV-0002'"},
        CasoFormula{"todo junto", "01/01/2026", "30/06/2026", "C00001", "C00030", "ENV-0001",
                    "{edoctaspc.Fecha}>=Date(2026,1,1) and {edoctaspc.Fecha}<=Date(2026,6,30) and "
                    "{edoctaspc.Cliente}>='C00001' and {edoctaspc.Cliente}<='C00030' and "
                    "{edoctaspc.Producto}='ENV-0001'"}),
    pruebas::PorNombre());

}  // namespace
}  // namespace paratzorep::reports
