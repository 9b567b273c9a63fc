// Evaluation: values, three-valued logic, functions, kind errors.
#include <gtest/gtest.h>

#include <cctype>
#include <map>
#include <string>
#include <tuple>

#include "renderer/formula/Evaluador.h"
#include "support/NombresDeCaso.h"

namespace paratzorep::renderer::formula {
namespace {

// One row held in a map; summaries asked for are recorded.
class ContextoFila : public Contexto {
  public:
    std::map<std::string, Valor> campos;     // "tabla.campo" in lower case
    std::map<std::string, Valor> formulas_;  // by name
    std::map<std::string, Valor> parametros_;
    Valor valorResumen;
    mutable std::vector<RefResumen> pedidos;

    static std::string clave(std::string_view t, std::string_view c) {
        std::string k = std::string(t) + "." + std::string(c);
        for (auto& ch : k) ch = static_cast<char>(std::tolower(static_cast<unsigned char>(ch)));
        return k;
    }
    ContextoFila& con(std::string_view t, std::string_view c, Valor v) {
        campos[clave(t, c)] = std::move(v);
        return *this;
    }
    Valor campo(std::string_view t, std::string_view c) const override {
        auto it = campos.find(clave(t, c));
        if (it == campos.end()) throw ErrorValor("campo desconocido " + clave(t, c));
        return it->second;
    }
    Valor formula(std::string_view n) const override {
        auto it = formulas_.find(std::string(n));
        return it == formulas_.end() ? Contexto::formula(n) : it->second;
    }
    Valor parametro(std::string_view n) const override {
        auto it = parametros_.find(std::string(n));
        return it == parametros_.end() ? Contexto::parametro(n) : it->second;
    }
    Valor resumen(const RefResumen& r) const override {
        pedidos.push_back(r);
        return valorResumen;
    }
    Fecha fechaActual() const override { return Fecha{2024, 3, 5}; }
};

ContextoFila fila() {
    ContextoFila c;
    c.con("t", "Num", Valor::numero(1234.5))
        .con("t", "Cero", Valor::numero(0))
        .con("t", "Texto", Valor::texto("Devolución Ctes. 12"))
        .con("t", "Clave", Valor::texto("C001"))
        .con("t", "Fecha", Valor::fecha({2024, 3, 5}))
        .con("t", "Vacia", Valor::fecha({}))
        .con("t", "Momento", Valor::fechaHora({{2024, 3, 5}, {10, 30, 0}}))
        .con("t", "Nulo", Valor());
    c.formulas_["Doble"] = Valor::numero(2);
    c.parametros_["UsuarioImpresion"] = Valor::texto("ANA");
    return c;
}

struct Caso {
    const char* formula;
    Valor esperado;
};

class Evaluacion : public ::testing::TestWithParam<Caso> {};

TEST_P(Evaluacion, DaElValorEsperado) {
    const auto ctx = fila();
    const Valor v = evaluar(analizar(GetParam().formula), ctx);
    EXPECT_EQ(v, GetParam().esperado) << GetParam().formula << " -> " << v.aTexto();
}

const Valor V = Valor::booleano(true);
const Valor F = Valor::booleano(false);
const Valor N;
Valor num(double d) {
    return Valor::numero(d);
}
Valor tx(const char* s) {
    return Valor::texto(s);
}

INSTANTIATE_TEST_SUITE_P(
    Aritmetica, Evaluacion,
    ::testing::Values(Caso{"1 + 2 * 3", num(7)}, Caso{"-{t.Num} + 1", num(-1233.5)},
                      Caso{"10 / 4", num(2.5)}, Caso{"{t.Num} * {@Doble}", num(2469)},
                      Caso{"{t.Nulo} + 1", N}, Caso{"'a' + 'b'", tx("ab")},
                      Caso{"'n=' & 5", tx("n=5.00")},
                      Caso{"{t.Clave} & '-' & {t.Fecha}", tx("C001-05/03/2024")},
                      Caso{"{t.Fecha} + 27", Valor::fecha({2024, 4, 1})},
                      Caso{"{t.Fecha} - Date(2024,2,28)", num(6)},
                      Caso{"{t.Momento} + 0.5", Valor::fechaHora({{2024, 3, 5}, {22, 30, 0}})},
                      Caso{"{t.Vacia} + 3", Valor::fecha({})}),
    pruebas::NombrePor(&Caso::formula, pruebas::NombreDeFormula));

INSTANTIATE_TEST_SUITE_P(
    Logica, Evaluacion,
    ::testing::Values(
        // comparisons under the server's collation
        Caso{"{t.Clave} = 'c001'", V}, Caso{"{t.Clave} = 'C001   '", V},
        Caso{"'Canción' = 'CANCION'", V}, Caso{"'niño' = 'NINO'", V}, Caso{"'a' < 'B'", V},
        Caso{"{t.Num} >= 1234.5", V}, Caso{"{t.Fecha} >= Date(2024,3,5)", V},
        Caso{"{t.Fecha} > Date(2024,3,5)", F}, Caso{"{t.Momento} > Date(2024,3,5)", V},
        Caso{"{t.Momento} = DateTime(2024,3,5,10,30,0)", V},
        // the empty date sorts before every date, as on the server
        Caso{"{t.Vacia} < Date(1,1,1)", V}, Caso{"{t.Vacia} >= Date(2024,3,5)", F},
        // substring test: case and accents as LOCATE() sees them
        Caso{"'CTES.' in {t.Texto}", V}, Caso{"'devolución' in {t.Texto}", V},
        Caso{"'DEVOLUCION' in {t.Texto}", F},  // 'o' (1 byte) against 'ó' (2 bytes)
        Caso{"'' in {t.Texto}", V}, Caso{"'x' in {t.Nulo}", N},
        Caso{"{t.Clave} in ['A', 'c001']", V}, Caso{"{t.Clave} in ['A', 'B']", F},
        Caso{"{t.Nulo} in [1]", N}, Caso{"{t.Num} in [1, {t.Nulo}]", N},
        // three-valued logic
        Caso{"{t.Nulo} = 1", N}, Caso{"not ({t.Nulo} = 1)", N}, Caso{"{t.Nulo} = 1 and 1 = 2", F},
        Caso{"{t.Nulo} = 1 or 1 = 1", V}, Caso{"{t.Nulo} = 1 or 1 = 2", N},
        Caso{"{t.Nulo} = 1 and 1 = 1", N},
        // short-circuit: the right side is not evaluated
        Caso{"1 = 2 and {t.NoExiste} = 1", F}, Caso{"1 = 1 or {t.NoExiste} = 1", V},
        Caso{"if {t.Cero} = 0 then 'cero' else 'otro'", tx("cero")},
        Caso{"if {t.Nulo} = 0 then 'cero' else 'otro'", tx("otro")}, Caso{"if 1 = 2 then 'x'", N}),
    pruebas::NombrePor(&Caso::formula, pruebas::NombreDeFormula));

INSTANTIATE_TEST_SUITE_P(
    Funciones, Evaluacion,
    ::testing::Values(
        Caso{"ToText({t.Num})", tx("1,234.50")}, Caso{"ToText({t.Num}, 0)", tx("1,235")},
        Caso{"ToText(-{t.Num}, '#,##0.00')", tx("-1,234.50")}, Caso{"ToText(2.5, '0')", tx("3")},
        Caso{"ToText(0.125, '0.00')", tx("0.13")},
        Caso{"ToText(1234567.891, '##,###,##0.00')", tx("1,234,567.89")},
        Caso{"ToText(1234.5, 2, '')", tx("1234.50")},
        Caso{"ToText({t.Fecha}, 'dd/mmm/yyyy')", tx("05/mar/2024")},
        Caso{"ToText(Date(2024,12,1), 'd \"de\" mmmm \"de\" yyyy')", tx("1 de diciembre de 2024")},
        Caso{"ToText({t.Momento}, 'dd/mm/yy hh:mm')", tx("05/03/24 10:30")},
        Caso{"ToText({t.Vacia}, 'dd/mmm/yyyy')", tx("")}, Caso{"Trim('  a b  ')", tx("a b")},
        Caso{"UpperCase('canción ñ')", tx("CANCIÓN Ñ")}, Caso{"LowerCase('ÁRBOL')", tx("árbol")},
        Caso{"Left('añoxyz', 3)", tx("año")}, Caso{"Right('xyzaño', 3)", tx("año")},
        Caso{"Mid('xañoz', 2, 3)", tx("año")}, Caso{"Mid('abc', 2)", tx("bc")},
        Caso{"Mid('abc', 9)", tx("")}, Caso{"Len('año')", num(3)},
        Caso{"Year({t.Fecha})", num(2024)}, Caso{"Month({t.Momento})", num(3)},
        Caso{"Day({t.Fecha})", num(5)}, Caso{"IsNull({t.Nulo})", V}, Caso{"IsNull({t.Vacia})", V},
        Caso{"IsNull({t.Cero})", F}, Caso{"Round(2.345, 2)", num(2.35)},
        Caso{"Round(-2.5)", num(-3)}, Caso{"Abs(-3)", num(3)},
        Caso{"ToNumber('1,234.5')", num(1234.5)}, Caso{"CurrentDate", Valor::fecha({2024, 3, 5})},
        Caso{"Date({t.Momento})", Valor::fecha({2024, 3, 5})},
        Caso{"Date('05/03/2024')", Valor::fecha({2024, 3, 5})},
        Caso{"{?UsuarioImpresion}", tx("ANA")}, Caso{"UpperCase({t.Nulo})", N}),
    pruebas::NombrePor(&Caso::formula, pruebas::NombreDeFormula));

TEST(Evaluacion, ResumenesPasanPorElContexto) {
    auto ctx = fila();
    ctx.valorResumen = Valor::numero(99);
    const Formula f = analizar("Sum({t.Num}, {t.Clave}) + 1");
    EXPECT_EQ(evaluar(f, ctx), Valor::numero(100));
    ASSERT_EQ(ctx.pedidos.size(), 1u);
    EXPECT_EQ(ctx.pedidos[0].funcion, Resumen::Sum);
    EXPECT_EQ(ctx.pedidos[0].campo, (RefCampo{"t", "Num"}));
    EXPECT_EQ(ctx.pedidos[0].grupo, (RefCampo{"t", "Clave"}));
    // The same node the formula lists, so the layout can match its accumulators.
    EXPECT_EQ(ctx.pedidos[0].nodo, f.resumenes()[0].nodo);
}

TEST(Evaluacion, SeleccionSoloConservaVerdadero) {
    const auto ctx = fila();
    EXPECT_TRUE(seleccionar(analizar(""), ctx));
    EXPECT_TRUE(seleccionar(analizar("{t.Num} > 0"), ctx));
    EXPECT_FALSE(seleccionar(analizar("{t.Num} < 0"), ctx));
    EXPECT_FALSE(seleccionar(analizar("{t.Nulo} = 0"), ctx));
    EXPECT_THROW(seleccionar(analizar("{t.Num} + 1"), ctx), ErrorFormula);
}

struct CasoFallo {
    const char* formula;
    int linea, columna;
    const char* detalle;  // after "Error en la fórmula, línea L, columna C: "
};

// The flag tells whether the formula parses and fails only when evaluated.
class FormulaFallida : public ::testing::TestWithParam<std::tuple<bool, CasoFallo>> {};

TEST_P(FormulaFallida, ErrorPosicionado) {
    const auto& [alEvaluar, c] = GetParam();
    const auto ctx = fila();
    bool analizada = false;
    try {
        const Formula f = analizar(c.formula);
        analizada = true;
        evaluar(f, ctx);
        FAIL() << "se esperaba un error";
    } catch (const ErrorFormula& e) {
        EXPECT_EQ(e.what(), "Error en la fórmula, línea " + std::to_string(c.linea) + ", columna " +
                                std::to_string(c.columna) + ": " + c.detalle);
        EXPECT_EQ(analizada, alEvaluar);
    }
}

INSTANTIATE_TEST_SUITE_P(
    AlAnalizar, FormulaFallida,
    ::testing::Combine(
        ::testing::Values(false),
        ::testing::Values(
            CasoFallo{"({t.a} = 1 and", 1, 15,
                      "se esperaba un valor y se encontró el final de la fórmula"},
            CasoFallo{"Round({t.a}; 2)", 1, 12, "se esperaba ')' y se encontró ';'"},
            CasoFallo{"Left({t.a} 2)", 1, 12, "se esperaba ')' y se encontró '2'"},
            CasoFallo{"{t.a} = 'abc", 1, 9, "el texto que empieza aquí no tiene comilla de cierre"},
            CasoFallo{"{t.a} = 'O'Higgins'", 1, 12,
                      "se esperaba el final de la fórmula y se encontró 'Higgins'"},
            CasoFallo{
                "{ta} = 1", 1, 1,
                "se esperaba un campo {tabla.campo}, {@fórmula} o {?parámetro} y se encontró {ta}"},
            CasoFallo{"{t.a = 1", 1, 1, "falta '}' para cerrar la referencia"},
            CasoFallo{"{t.a} = 1 #", 1, 11, "carácter inesperado '#'"},
            CasoFallo{"{t.a} = 1\n and Foo(2)", 2, 6, "función o nombre desconocido 'Foo'"},
            CasoFallo{"Mid('abc')", 1, 1, "la función Mid lleva de 2 a 3 argumentos y recibió 1"},
            CasoFallo{"Sum(3)", 1, 5, "el resumen Sum se calcula sobre un campo o una fórmula"},
            CasoFallo{"if {t.a} 1", 1, 10, "se esperaba 'then' y se encontró '1'"},
            CasoFallo{"{t.a} = and", 1, 9, "se esperaba un valor y se encontró 'and'"})),
    pruebas::NombrePor([](const auto& p) { return std::get<1>(p).formula; },
                       pruebas::NombreDeFormula));

INSTANTIATE_TEST_SUITE_P(
    AlEvaluar, FormulaFallida,
    ::testing::Combine(
        ::testing::Values(true),
        ::testing::Values(
            CasoFallo{"{t.Clave} = 1", 1, 1,
                      "no se puede comparar un valor de tipo texto con uno de tipo número"},
            CasoFallo{"1 = 1 and {t.Num} / {t.Cero} > 1", 1, 11, "división entre cero"},
            CasoFallo{"Date(2024, 2, 30) = {t.Fecha}", 1, 1, "la fecha 2024,2,30 no existe"},
            CasoFallo{"{t.Fecha} + 'x'", 1, 1,
                      "no se puede sumar un valor de tipo fecha y uno de tipo texto"},
            CasoFallo{"{t.NoExiste}", 1, 1, "campo desconocido t.noexiste"},
            CasoFallo{"{@NoHay}", 1, 1, "la fórmula {@NoHay} no existe en el reporte"},
            CasoFallo{"not 5", 1, 5,
                      "se esperaba una condición (verdadero o falso) y se encontró un valor de "
                      "tipo número"},
            CasoFallo{"5 in {t.Texto}", 1, 1,
                      "'in' espera un texto y recibió un valor de tipo número"},
            CasoFallo{"Left('abc', -1)", 1, 1, "Left no admite una longitud negativa"})),
    pruebas::NombrePor([](const auto& p) { return std::get<1>(p).formula; },
                       pruebas::NombreDeFormula));

}  // namespace
}  // namespace paratzorep::renderer::formula
