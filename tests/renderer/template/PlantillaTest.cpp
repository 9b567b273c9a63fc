#include "renderer/template/Plantilla.h"

#include <gtest/gtest.h>

#include <tuple>

#include <string>

#include "support/NombresDeCaso.h"

namespace paratzorep::renderer {
namespace {

TEST(Plantilla, LeeUnaPlantillaCompletaConValoresPorOmision) {
    Plantilla p = LeePlantillaTexto(R"(<reporte version="1" titulo="Utilidad">
  <pagina tamano="Carta" orientacion="horizontal" margenes="10 12 10 12"/>
  <fuente familia="Liberation Sans" tamano="8"/>
  <tabla nombre="utilidadxdias"/>
  <tabla nombre="Titulo100" archivo="Auxiliar.mdb"/>
  <tabla nombre="vendedores"/>
  <union tipo="izquierda" tabla="vendedores" de="{utilidadxdias.VendedorCve}" a="vendedores.Clave"/>
  <formula nombre="Titulo">'Del 1 al 31 de marzo'</formula>
  <formula nombre="VENDEDOR"></formula>
  <parametro nombre="UsuarioImpresion" valor="nadie"/>
  <orden>+{utilidadxdias.Fecha}</orden>
  <grupo campo="utilidadxdias.VendedorCve" orden="desc" juntos="si" paginaNueva="si">
    <encabezado><campo ref="utilidadxdias.VendedorNom" x="0" y="0" estilo="negrita cursiva"/></encabezado>
    <pie><resumen funcion="promedio" campo="utilidadxdias.Total" x="100" y="0" ancho="30"/></pie>
  </grupo>
  <detalle>
    <campo ref="utilidadxdias.Fecha" x="0" y="0" ancho="25" formato="dd/mmm/yyyy"/>
    <campo ref="utilidadxdias.Total" x="100" y="0" ancho="30" formato="#,##0.00" crece="si" alinea="centro"/>
    <linea x="0" y="5" ancho="50"/>
    <caja x="0" y="0" ancho="10" alto="5" relleno="0.8"/>
  </detalle>
  <pieReporte><resumen funcion="distintos" campo="utilidadxdias.VendedorCve" x="0" y="0"/></pieReporte>
  <piePagina><especial tipo="paginaDeTotal" x="0" y="0" texto="Hoja {N} de {M}"/></piePagina>
</reporte>)",
                                    "utilidad.rpt");
    EXPECT_EQ(p.titulo, "Utilidad");
    EXPECT_NEAR(p.pagina.ancho, 792, 0.01);  // landscape Letter
    EXPECT_NEAR(p.pagina.alto, 612, 0.01);
    EXPECT_NEAR(p.pagina.margenDerecho, 12 * 72 / 25.4, 0.01);
    EXPECT_EQ(p.fuente.familia, "Liberation Sans");
    ASSERT_EQ(p.tablas.size(), 3u);
    EXPECT_TRUE(p.tablas[1].EsLocal());
    EXPECT_EQ(p.ArchivosDatos(),
              (std::vector<std::string>{"utilidadxdias", "Auxiliar.mdb", "vendedores"}));
    ASSERT_EQ(p.uniones.size(), 1u);
    EXPECT_EQ(p.uniones[0].tipo, TipoUnion::Izquierda);
    EXPECT_EQ(p.uniones[0].campoIzquierdo, "utilidadxdias.VendedorCve");
    ASSERT_NE(p.BuscaFormula("titulo"), nullptr);  // names without regard to case
    EXPECT_EQ(p.BuscaFormula("Titulo")->expresion, "'Del 1 al 31 de marzo'");
    EXPECT_EQ(p.parametros[0].valor, "nadie");
    ASSERT_EQ(p.grupos.size(), 1u);
    const auto& g = p.grupos[0];
    EXPECT_TRUE(g.descendente && g.juntos && g.paginaNueva && !g.esFormula);
    const auto& enc = g.encabezado.elementos[0];
    EXPECT_TRUE(enc.fuente.negrita && enc.fuente.cursiva);
    EXPECT_DOUBLE_EQ(enc.fuente.tamano, 8);  // inherited
    EXPECT_EQ(g.pie.elementos[0].ambito.tipo, AmbitoResumen::Tipo::Grupo);
    EXPECT_EQ(g.pie.elementos[0].ambito.nivel, 1);
    EXPECT_EQ(g.pie.elementos[0].funcion, FuncionResumen::Promedio);
    const auto& total = p.detalle.elementos[1];
    EXPECT_TRUE(total.crece);
    EXPECT_EQ(total.alineacion, Alineacion::Centro);
    EXPECT_NEAR(total.x, 100 * 72 / 25.4, 0.01);
    EXPECT_NEAR(p.detalle.elementos[2].x2, 50 * 72 / 25.4, 0.01);
    EXPECT_DOUBLE_EQ(p.detalle.elementos[3].gris, 0.8);
    EXPECT_EQ(p.pieReporte.elementos[0].ambito.tipo, AmbitoResumen::Tipo::Reporte);
    EXPECT_EQ(p.piePagina.elementos[0].valor, "Hoja {N} de {M}");
    EXPECT_FALSE(p.encabezadoPagina.presente);
    EXPECT_EQ(p.orden, std::vector<std::string>{"+{utilidadxdias.Fecha}"});
}

struct CasoError {
    const char* nombre;
    std::string xml;
    int linea;
    int columna;  // 0: any
    const char* mensaje;
};

class ErroresPlantilla : public ::testing::TestWithParam<CasoError> {};

TEST_P(ErroresPlantilla, DicenLineaColumnaYQueFalla) {
    const auto& c = GetParam();
    try {
        LeePlantillaTexto(c.xml, "x.rpt");
        FAIL() << "se esperaba un error";
    } catch (const ErrorPlantilla& e) {
        EXPECT_EQ(e.linea(), c.linea) << e.what();
        if (c.columna) {
            EXPECT_EQ(e.columna(), c.columna) << e.what();
        }
        EXPECT_NE(std::string(e.what()).find(c.mensaje), std::string::npos) << e.what();
        EXPECT_NE(std::string(e.what()).find("x.rpt"), std::string::npos);
    }
}

const std::string kIni = "<reporte version=\"1\">\n";

INSTANTIATE_TEST_SUITE_P(
    Casos, ErroresPlantilla,
    ::testing::Values(
        CasoError{"XmlRoto", kIni + "<detalle>\n  <campo ref=\"a.b\"\n</reporte>", 4, 1,
                  "el XML no es válido"},
        CasoError{"VersionDesconocida", "<reporte version=\"2\"/>", 1, 1,
                  "versión de plantilla 2 no es compatible"},
        CasoError{"SinVersion", "<reporte/>", 1, 1, "falta el atributo 'version'"},
        CasoError{"OtraRaiz", "<report version=\"1\"/>", 1, 1, "se esperaba el elemento <reporte>"},
        CasoError{"ElementoDesconocido", kIni + "  <detalles/>\n</reporte>", 2, 3,
                  "elemento desconocido <detalles>"},
        CasoError{"AtributoMalEscrito",
                  kIni + "<detalle>\n    <campo ref=\"a.b\" anchura=\"3\"/></detalle></reporte>", 3,
                  5, "atributo desconocido 'anchura'"},
        CasoError{"NumeroInvalido",
                  kIni + "<detalle><campo ref=\"a.b\" x=\"1,5\"/></detalle></reporte>", 2, 10,
                  "'x' debe ser un número"},
        CasoError{"ReferenciaSinTabla",
                  kIni + "<detalle><campo ref=\"Saldo\"/></detalle></reporte>", 2, 10,
                  "debe tener la forma tabla.campo"},
        CasoError{"TamanoDePagina", kIni + "<pagina tamano=\"A3\"/></reporte>", 2, 1,
                  "tamaño de página desconocido 'A3'"},
        CasoError{"Margenes", kIni + "<pagina margenes=\"1 2\"/></reporte>", 2, 1,
                  "'margenes' lleva uno o cuatro"},
        CasoError{
            "Funcion",
            kIni + "<pieReporte><resumen funcion=\"total\" campo=\"a.b\"/></pieReporte></reporte>",
            2, 13, "función de resumen desconocida 'total'"},
        CasoError{
            "GrupoInexistente",
            kIni + "<pieReporte>\n<resumen campo=\"a.b\" ambito=\"2\"/></pieReporte></reporte>", 3,
            0, "grupo 2, que no existe"},
        CasoError{"FormulaRepetida",
                  kIni + "<formula nombre=\"A\"/>\n<formula nombre=\"a\"/></reporte>", 3, 1,
                  "la fórmula 'a' está repetida"},
        CasoError{"SeccionRepetida", kIni + "<detalle/>\n<detalle/></reporte>", 3, 1,
                  "la sección <detalle> está repetida"},
        CasoError{"Booleano",
                  kIni + "<detalle><campo ref=\"a.b\" crece=\"quizá\"/></detalle></reporte>", 2, 10,
                  "admite 'si' o 'no'"},
        CasoError{"GrupoSinCampo", kIni + "<grupo/></reporte>", 2, 1, "un grupo lleva 'campo'"},
        CasoError{"Especial", kIni + "<piePagina><especial tipo=\"hoja\"/></piePagina></reporte>",
                  2, 12, "campo especial desconocido 'hoja'"},
        CasoError{"MedidaEnorme",
                  kIni + "<detalle><campo ref=\"a.b\" x=\"99999\"/></detalle></reporte>", 2, 10,
                  "mayor que cualquier página"},
        CasoError{"UnionSinTabla", kIni + "<union tabla=\"b\" de=\"a.x\" a=\"b.x\"/></reporte>", 2,
                  0, "no está declarada"},
        CasoError{
            "AtributoRepetido",
            kIni + "<detalle>\n  <campo ref=\"a.b\" x=\"1\" ref=\"c.d\"/></detalle></reporte>", 3,
            3, "el atributo 'ref' está repetido en <campo>"},
        CasoError{"Vacia", "", 1, 1, "no hay ningún elemento"}),
    pruebas::PorNombre());

// The line a message about a missing table or field points at: the first that names it.
TEST(Plantilla, LineaQueNombraCadaUso) {
    const Plantilla p =
        LeePlantillaTexto(kIni +
                              "<tabla nombre=\"mov\"/>\n"                                  // 2
                              "<tabla nombre=\"cli\"/>\n"                                  // 3
                              "<union tabla=\"cli\" de=\"mov.Clave\" a=\"cli.Clave\"/>\n"  // 4
                              "<formula nombre=\"f\">{mov.Importe} * 2</formula>\n"        // 5
                              "<orden>+{mov.Fecha}</orden>\n"                              // 6
                              "<grupo campo=\"cli.Zona\"/>\n"                              // 7
                              "<detalle>\n"                                                // 8
                              "<campo ref=\"cli.Nombre\"/>\n"                              // 9
                              "<resumen campo=\"mov.Importe\"/>\n"                         // 10
                              "</detalle></reporte>",
                          "x.rpt");
    const std::vector<std::tuple<std::string, std::string, int>> casos = {
        {"cli", "", 3},     {"CLI", "nombre", 9}, {"mov", "Importe", 5}, {"mov", "Fecha", 6},
        {"cli", "Zona", 7}, {"cli", "Clave", 4},  {"mov", "NoHay", 0},   {"otra", "", 0},
    };
    for (const auto& [tabla, campo, linea] : casos)
        EXPECT_EQ(LineaQueNombra(p, tabla, campo), linea) << tabla << "." << campo;
}

TEST(Plantilla, ArchivoQueNoExiste) {
    try {
        LeePlantilla("/no/existe/bitacoraus.rpt");
        FAIL();
    } catch (const ErrorPlantilla& e) {
        EXPECT_NE(std::string(e.what()).find("no se pudo abrir"), std::string::npos);
    }
}

TEST(Plantilla, AltoDeSeccionPorOmisionEsLaExtensionDeSusElementos) {
    Plantilla p = LeePlantillaTexto(
        kIni +
            R"(<pagina unidades="pt"/><detalle><campo ref="a.b" y="4" alto="10"/><linea x="0" y="20" ancho="5"/></detalle></reporte>)",
        "x.rpt");
    EXPECT_DOUBLE_EQ(p.detalle.alto, 20);
}

}  // namespace
}  // namespace paratzorep::renderer
