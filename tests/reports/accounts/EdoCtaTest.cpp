// Account statements and charges: the selection formulas and sort fields, character for
// character, for every combination of filters that changes the text; and the paired form
// fitted to each side by the facade.
#include <gtest/gtest.h>

#include "host/Menu.h"
#include "reports/Formas.h"
#include "reports/ReportesAdm.h"
#include "reports/accounts/RepAdmCargos.h"
#include "reports/accounts/RepAdmEdoCta.h"
#include "session/Sesion.h"
#include "support/NombresDeCaso.h"
#include "toolkit/Fabrica.h"

namespace paratzorep::reports {
namespace {

struct CasoFormula {
    const char* nombre;
    FiltrosCuenta filtros;
    const char* esperada;
};

// The filters of a case, set by name.
struct F {
    FiltrosCuenta f;
    F& moneda(const char* v) { return f.moneda = v, *this; }
    F& desde(const char* v) { return f.desde = v, *this; }
    F& hasta(const char* v) { return f.hasta = v, *this; }
    F& clave0(const char* v) { return f.clave0 = v, *this; }
    F& clave1(const char* v) { return f.clave1 = v, *this; }
    F& sinCancelaciones() { return f.sinCancelaciones = true, *this; }
    F& proveedores() { return f.clientes = false, *this; }
    operator FiltrosCuenta() const { return f; }
};

class FormulaEdoCta : public ::testing::TestWithParam<CasoFormula> {};

TEST_P(FormulaEdoCta, EsLaDelSistema) {
    EXPECT_EQ(RepAdmEdoCta::FormulaSeleccion(GetParam().filtros), GetParam().esperada);
}

INSTANTIATE_TEST_SUITE_P(
    Tabla, FormulaEdoCta,
    ::testing::Values(
        CasoFormula{"sin filtros, moneda 1", F(), "{edoctacli.IdMoneda}=1"},
        CasoFormula{"moneda elegida", F().moneda("2"), "{edoctacli.IdMoneda}=2"},
        CasoFormula{"desde", F().desde("05/03/2025"),
                    "{edoctacli.IdMoneda}=1 and {edoctacli.Fecha}>=Date(2025,3,5)"},
        CasoFormula{"hasta", F().hasta("31/12/2025"),
                    "{edoctacli.IdMoneda}=1 and {edoctacli.Fecha}<=Date(2025,12,31)"},
        CasoFormula{"fecha invalida no se aplica", F().desde("31/02/2025"),
                    "{edoctacli.IdMoneda}=1"},
        CasoFormula{"sin cancelaciones", F().sinCancelaciones(),
                    "{edoctacli.IdMoneda}=1 and not ('BONIFICACION POR CANCELACION' in "
                    "{edoctacli.Concepto}) and not ('DEVOLUCION DEL DINERO POR CANC.' in "
                    "{edoctacli.Concepto})"},
        CasoFormula{"una clave en la primera caja", F().clave0("C00007"),
                    "{edoctacli.IdMoneda}=1 and {edoctacli.Clave}='C00007'"},
        CasoFormula{"una clave en la segunda caja", F().clave1("C00009"),
                    "{edoctacli.IdMoneda}=1 and {edoctacli.Clave}='C00009'"},
        CasoFormula{"todo junto",
                    F().moneda("3")
                        .desde("01/01/2025")
                        .hasta("30/06/2025")
                        .clave0("C00001")
                        .clave1("C00050")
                        .sinCancelaciones(),
                    "{edoctacli.IdMoneda}=3 and {edoctacli.Fecha}>=Date(2025,1,1) and "
                    "{edoctacli.Fecha}<=Date(2025,6,30) and not ('BONIFICACION POR CANCELACION' "
                    "in {edoctacli.Concepto}) and not ('DEVOLUCION DEL DINERO POR CANC.' in "
                    "{edoctacli.Concepto}) and {edoctacli.Clave}>='C00001' and "
                    "{edoctacli.Clave}<='C00050'"},
        CasoFormula{"proveedores con rango",
                    F().desde("01/01/2025").clave0("P0001").clave1("P0009").proveedores(),
                    "{edoctaprov.IdMoneda}=1 and {edoctaprov.Fecha}>=Date(2025,1,1) and "
                    "{edoctaprov.Clave}>='P0001' and {edoctaprov.Clave}<='P0009'"},
        CasoFormula{"proveedores sin cancelaciones no las quita",
                    F().sinCancelaciones().proveedores(), "{edoctaprov.IdMoneda}=1"}),
    pruebas::PorNombre());

class FormulaCargos : public ::testing::TestWithParam<CasoFormula> {};

TEST_P(FormulaCargos, EsLaDelSistema) {
    EXPECT_EQ(RepAdmCargos::FormulaSeleccion(GetParam().filtros), GetParam().esperada);
}

INSTANTIATE_TEST_SUITE_P(
    Tabla, FormulaCargos,
    ::testing::Values(
        CasoFormula{"sin filtros, todas las monedas", F(), "{edoctacli.CantidadCargo}>0"},
        CasoFormula{"moneda elegida", F().moneda("2"),
                    "{edoctacli.CantidadCargo}>0 and {edoctacli.IdMoneda}=2"},
        CasoFormula{"fechas y una clave",
                    F().desde("01/10/2026").hasta("31/10/2026").clave1("C00004"),
                    "{edoctacli.CantidadCargo}>0 and {edoctacli.Fecha}>=Date(2026,10,1) and "
                    "{edoctacli.Fecha}<=Date(2026,10,31) and {edoctacli.Clave}='C00004'"},
        CasoFormula{"proveedores, moneda y rango",
                    F().proveedores().moneda("3").clave0("P0001").clave1("P0002"),
                    "{edoctaprov.CantidadCargo}>0 and {edoctaprov.IdMoneda}=3 and "
                    "{edoctaprov.Clave}>='P0001' and {edoctaprov.Clave}<='P0002'"}),
    pruebas::PorNombre());

TEST(Cargos, OrdenEncabezadoYPlantilla) {
    const char* clientes[] = {"+{edoctacli.Fecha}", "+{edoctacli.CantidadCargo}",
                              "+{edoctacli.Concepto}", "+{edoctacli.Clave}"};
    for (int i = 0; i < 4; ++i) EXPECT_EQ(RepAdmCargos::CampoOrden(true, i), clientes[i]);
    EXPECT_EQ(RepAdmCargos::CampoOrden(false, 1), "+{edoctaprov.CantidadCargo}");
    EXPECT_EQ(RepAdmCargos::CampoOrden(true, -1), "");
    EXPECT_EQ(RepAdmCargos::Encabezado("Cargos a clientes", "05/03/2026", "31/10/2026"),
              "Cargos a clientes, desde el 05/mar/2026 hasta el 31/oct/2026");
    EXPECT_EQ(RepAdmCargos::Encabezado("Cargos de proveedores", "", "31/10/2026"),
              "Cargos de proveedores hasta el 31/oct/2026");
    EXPECT_EQ(RepAdmCargos::Encabezado("Cargos a clientes", "05/03/2026", ""),
              "Cargos a clientes, desde el 05/mar/2026");
    EXPECT_EQ(RepAdmCargos::Plantilla(true), "cargosctes.rpt");
    EXPECT_EQ(RepAdmCargos::Plantilla(false), "cargosprov.rpt");
}

// The facade's paired entries fit the form to their side.
class ModoPareado : public ::testing::Test {
  protected:
    void SetUp() override {
        toolkit::RegistraToolkit();
        RegistraFormasBasicas();
        OlvidaInstancias();
        session::sesion() = session::RegistroSesion{};
        session::sesion().objMenu = menu;
    }
    void TearDown() override {
        OlvidaInstancias();
        session::sesion() = session::RegistroSesion{};
    }
    FormularioPareado& Forma(std::size_t i) {
        return dynamic_cast<FormularioPareado&>(*menu->llamadas.at(i).forma);
    }
    std::shared_ptr<host::MenuRegistro> menu = std::make_shared<host::MenuRegistro>();
    ReportesAdm fachada;
};

TEST_F(ModoPareado, CadaLadoConSusLeyendasYSusControles) {
    fachada.EdoCtaClientes();
    fachada.EdoCtaProveedores();
    fachada.CargosProveedores();
    auto& clientes = Forma(0);
    auto& proveedores = Forma(1);
    EXPECT_EQ(clientes.Ctl("txtDato", 0).Caption, "Del cliente");
    EXPECT_EQ(clientes.Ctl("txtDato", 1).Caption, "Al cliente");
    EXPECT_TRUE(clientes.Ctl("chkCancelaciones").Visible);
    EXPECT_EQ(proveedores.Ctl("txtDato", 0).Caption, "Del proveedor");
    EXPECT_EQ(proveedores.Ctl("txtDato", 1).Caption, "Al proveedor");
    EXPECT_FALSE(proveedores.Ctl("chkCancelaciones").Visible);
    EXPECT_EQ(Forma(2).Ctl("txtDato", 1).Caption, "Al proveedor");
    EXPECT_EQ(Forma(2).Ctl("cmbDato", 0).Items,
              (std::vector<std::string>{"Fecha", "Importe", "Concepto", "Proveedor"}));
    // Without a company database the dates stay blank: the whole history.
    EXPECT_TRUE(clientes.Ctl("mkeFecha", 0).SinFecha());
}

}  // namespace
}  // namespace paratzorep::reports
