// Parsing: the report forms' formulas, the tree's shape, positioned errors.
#include <gtest/gtest.h>

#include "renderer/formula/Formula.h"
#include "support/NombresDeCaso.h"
#include "tests/renderer/formula/FormulasDeReportes.h"

namespace paratzorep::renderer::formula {
namespace {

TEST(FormulaAnalisis, AceptaCadaFormulaDeLosReportes) {
    for (const auto& f : prueba::seleccionesDeReportes()) {
        SCOPED_TRACE(f);
        const Formula x = analizar(f);
        ASSERT_FALSE(x.vacia());
        // Writing the tree back and parsing it again gives the same text.
        const std::string t = aTexto(*x.raiz());
        EXPECT_EQ(aTexto(*analizar(t).raiz()), t);
    }
    for (const auto& s : prueba::camposOrdenDeReportes()) {
        SCOPED_TRACE(s);
        EXPECT_NO_THROW(analizarCampoOrden(s));
    }
    for (const auto& a : prueba::asignacionesDeReportes()) {
        SCOPED_TRACE(a);
        EXPECT_NO_THROW(analizarAsignacion(a));
    }
}

struct CasoArbol {
    const char* fuente;
    const char* arbol;  // aTexto of the parse
};

class FormulaArbol : public ::testing::TestWithParam<CasoArbol> {};

TEST_P(FormulaArbol, PrecedenciaYFormaCanonica) {
    EXPECT_EQ(aTexto(*analizar(GetParam().fuente).raiz()), GetParam().arbol);
}

INSTANTIATE_TEST_SUITE_P(
    Casos, FormulaArbol,
    ::testing::Values(
        CasoArbol{"1 + 2 * 3", "1 + 2 * 3"}, CasoArbol{"(1 + 2) * 3", "(1 + 2) * 3"},
        CasoArbol{"1 - (2 - 3)", "1 - (2 - 3)"}, CasoArbol{"1 - 2 - 3", "1 - 2 - 3"},
        CasoArbol{"-{t.a} * 2", "-{t.a} * 2"}, CasoArbol{"'x' & 1 + 2", "'x' & 1 + 2"},
        CasoArbol{"NOT {t.a} = 1 AND {t.b} = 2 OR {t.c} = 3",
                  "not {t.a} = 1 and {t.b} = 2 or {t.c} = 3"},
        CasoArbol{"{t.a}=1 and ({t.b}=2 or {t.c}=3)", "{t.a} = 1 and ({t.b} = 2 or {t.c} = 3)"},
        CasoArbol{"'it''s' = \"say \"\"hi\"\"\"", "'it''s' = 'say \"hi\"'"},
        CasoArbol{"{t.a} in [1, 2,3]", "{t.a} in [1, 2, 3]"},
        CasoArbol{"if {t.a} > 0 then 'si' else 'no'", "(if {t.a} > 0 then 'si' else 'no')"},
        CasoArbol{"totext({t.a}, \"#,##0.00\")", "ToText({t.a}, '#,##0.00')"},
        CasoArbol{"ucase(trim({t.a}))", "UpperCase(Trim({t.a}))"},
        CasoArbol{"currentdate", "CurrentDate()"}, CasoArbol{"TRUE and false", "True and False"},
        CasoArbol{"{@Total} + {?UsuarioImpresion}", "{@Total} + {?UsuarioImpresion}"},
        CasoArbol{"{ t.a }  // comentario\n = .5", "{t.a} = 0.5"},
        CasoArbol{"Sum({t.Importe}, {t.Clave})", "Sum({t.Importe}, {t.Clave})"},
        CasoArbol{"{t.a} = 1;", "{t.a} = 1"}),
    pruebas::NombrePor(&CasoArbol::fuente, pruebas::NombreDeFormula));

TEST(FormulaAnalisis, VaciaSiEstaEnBlanco) {
    EXPECT_TRUE(analizar("").vacia());
    EXPECT_TRUE(analizar("  \n\t ").vacia());
    EXPECT_TRUE(analizar("// sólo un comentario").vacia());
}

TEST(FormulaAnalisis, ReferenciasYResumenes) {
    const Formula f = analizar(
        "{a.x} > 1 and {b.y} = {a.x} and {@F1} = {?P} and Sum({a.z}, {b.g}) > Count({@F1})");
    const std::vector<RefCampo> campos = {{"a", "x"}, {"b", "y"}, {"a", "z"}, {"b", "g"}};
    EXPECT_EQ(f.campos(), campos);
    EXPECT_EQ(f.formulas(), std::vector<std::string>{"F1"});
    EXPECT_EQ(f.parametros(), std::vector<std::string>{"P"});
    const auto r = f.resumenes();
    ASSERT_EQ(r.size(), 2u);
    EXPECT_EQ(r[0].funcion, Resumen::Sum);
    EXPECT_EQ(r[0].campo, (RefCampo{"a", "z"}));
    EXPECT_EQ(r[0].grupo, (RefCampo{"b", "g"}));
    EXPECT_EQ(r[1].funcion, Resumen::Count);
    EXPECT_EQ(r[1].campo, (RefCampo{"", "@F1"}));
    EXPECT_TRUE(r[1].grupo.tabla.empty());
}

TEST(FormulaAnalisis, TramosConLineaYColumnaEnCaracteres) {
    const Formula f = analizar("{t.año} = 'ñ'\n  and {t.b} = 2");
    const Nodo& y = *f.raiz();
    EXPECT_EQ(y.op, "and");
    const Nodo& der = *y.hijos[1];
    EXPECT_EQ(der.tramo.linea, 2);
    EXPECT_EQ(der.tramo.columna, 7);
    const Nodo& lit = *y.hijos[0]->hijos[1];
    EXPECT_EQ(lit.tramo.linea, 1);
    EXPECT_EQ(lit.tramo.columna, 11);  // counted in characters, 'ñ' of "año" is one
}

TEST(FormulaAnalisis, CampoDeOrdenYAsignacion) {
    auto c = analizarCampoOrden("-{compras3.Cantidad}");
    EXPECT_TRUE(c.descendente);
    EXPECT_EQ(c.campo, (RefCampo{"compras3", "Cantidad"}));
    c = analizarCampoOrden("{edoctacli.Fecha}");
    EXPECT_FALSE(c.descendente);
    auto a = analizarAsignacion("ENCABEZADO='Reporte al día: 05/mar/2024'");
    EXPECT_EQ(a.nombre, "ENCABEZADO");
    EXPECT_EQ(a.formula.raiz()->valor.comoTexto(), "Reporte al día: 05/mar/2024");
    a = analizarAsignacion("Total = {t.a} * 2");
    EXPECT_EQ(aTexto(*a.formula.raiz()), "{t.a} * 2");
}

TEST(FormulaAnalisis, ErrorDeCampoDeOrden) {
    EXPECT_THROW(analizarCampoOrden("+edoctacli.Fecha"), ErrorFormula);
    EXPECT_THROW(analizarCampoOrden("+{@F}"), ErrorFormula);
    EXPECT_THROW(analizarCampoOrden("+{t.a} x"), ErrorFormula);
    EXPECT_THROW(analizarAsignacion("=1"), ErrorFormula);
    EXPECT_THROW(analizarAsignacion("NOMBRE="), ErrorFormula);
    // A quote inside the value, as a form would put it without escaping.
    try {
        analizarAsignacion("ENCABEZADO='O'Higgins'");
        FAIL();
    } catch (const ErrorFormula& e) {
        EXPECT_STREQ(e.what(),
                     "Error en la fórmula, línea 1, columna 15: se esperaba el final de la fórmula "
                     "y se encontró 'Higgins'");
    }
}

TEST(FormulaAnalisis, AnidamientoProfundoEsUnErrorNoUnaCaida) {
    std::string f(100000, '(');
    EXPECT_THROW(analizar(f), ErrorFormula);
    std::string g;
    for (int i = 0; i < 100000; ++i) g += "not ";
    EXPECT_THROW(analizar(g + "True"), ErrorFormula);
    std::string h;
    for (int i = 0; i < 100000; ++i) h += "-";
    EXPECT_THROW(analizar(h + "1"), ErrorFormula);
    std::string largo = "1";
    for (int i = 0; i < 100000; ++i) largo += " + 1";
    EXPECT_THROW(analizar(largo), ErrorFormula);
}

}  // namespace
}  // namespace paratzorep::renderer::formula
