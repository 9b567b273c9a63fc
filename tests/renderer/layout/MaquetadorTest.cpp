#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "renderer/layout/FuentePrueba.h"
#include "renderer/layout/ListaPaginas.h"
#include "renderer/layout/Maquetador.h"
#include "renderer/template/Plantilla.h"
#include "support/NombresDeCaso.h"

namespace paratzorep::renderer {
namespace {

using prueba::FuentePrueba;

// A 300 x 200 pt page with 10 pt margins: page header 20 pt, page footer 20 pt, so the
// body runs from y=30 to y=170 (140 pt: 14 detail rows of 10 pt).
std::string Plantilla10(const std::string& cuerpo, const std::string& extra = {}) {
    return R"(<reporte version="1" titulo="Prueba">
  <pagina tamano="personal" ancho="300" alto="200" unidades="pt" margenes="10"/>
  <encabezadoPagina alto="20"><texto x="0" y="0" ancho="200">Encabezado</texto></encabezadoPagina>
  <piePagina alto="20"><especial tipo="paginaDeTotal" x="0" y="5" ancho="280" alinea="derecha"/></piePagina>
)" + extra +
           cuerpo + "</reporte>";
}

const char* kDetalle10 =
    R"(<detalle alto="10"><campo ref="t.nombre" x="0" y="0" ancho="100" alto="10"/>
<campo ref="t.monto" x="150" y="0" ancho="100" alto="10" formato="#,##0.00"/></detalle>)";

const char* kFin =
    R"(<pieReporte alto="10"><texto x="0" y="0" ancho="100" alto="10">Fin</texto></pieReporte>)";

struct Resultado {
    std::vector<Pagina> paginas;
    std::int64_t filas = 0;
};

Resultado Maqueta(const std::string& xml, FuenteFilas& filas) {
    Plantilla p = LeePlantillaTexto(xml, "prueba.rpt");
    Medidor medidor;
    ListaPaginas lista;
    Maquetador m(p, medidor, 0);
    auto r = m.Maqueta(filas, lista);
    Resultado res;
    res.filas = r.filas;
    for (int i = 0; i < lista.Total(); ++i) res.paginas.push_back(lista.Lee(i, medidor));
    EXPECT_EQ(r.paginas, lista.Total());
    return res;
}

const std::vector<std::string> kColumnas = {"t.nombre", "t.monto", "t.grupo"};

Resultado Maqueta(const std::string& xml, std::vector<std::vector<Valor>> filas,
                  std::vector<std::string> columnas = kColumnas) {
    FuentePrueba f(std::move(columnas), std::move(filas));
    return Maqueta(xml, f);
}

std::vector<std::string> Textos(const Pagina& p) {
    std::vector<std::string> r;
    for (const auto& t : p.textos) {
        std::string s;
        for (const auto& l : t.renglones) s += (s.empty() ? "" : "\n") + l.texto;
        r.push_back(s);
    }
    return r;
}

bool Contiene(const Pagina& p, const std::string& texto) {
    auto t = Textos(p);
    return std::find(t.begin(), t.end(), texto) != t.end();
}

const ElementoTexto* Busca(const Pagina& p, const std::string& texto) {
    for (const auto& t : p.textos)
        if (!t.renglones.empty() && t.renglones[0].texto == texto) return &t;
    return nullptr;
}

std::vector<std::vector<Valor>> Filas(int n, int porGrupo = 0) {
    std::vector<std::vector<Valor>> f;
    for (int i = 0; i < n; ++i)
        f.push_back({Valor::texto("fila " + std::to_string(i + 1)), Valor::numero(i + 1),
                     Valor::texto("G" + std::to_string(porGrupo ? i / porGrupo + 1 : 1))});
    return f;
}

// Nothing but the page footer reaches below the body (y >= 170).
void CuerpoSobreElPie(const std::vector<Pagina>& paginas) {
    for (const auto& p : paginas)
        for (const auto& t : p.textos)
            if (t.tipoBanda != TipoBanda::PiePagina) {
                EXPECT_LE(t.y + t.alto, 170.001) << "página " << p.numero;
            }
}

struct CasoPaginas {
    const char* nombre;
    int filas;
    std::string pieReporte;
    int paginas;
};

class PaginasTest : public ::testing::TestWithParam<CasoPaginas> {};

TEST_P(PaginasTest, CortaLasPaginasDondeSeAcabaElCuerpo) {
    const auto& c = GetParam();
    auto r = Maqueta(Plantilla10(kDetalle10 + c.pieReporte), Filas(c.filas));
    ASSERT_EQ(static_cast<int>(r.paginas.size()), c.paginas);
    for (const auto& p : r.paginas) {
        EXPECT_TRUE(Contiene(p, "Encabezado")) << "página " << p.numero;
        EXPECT_TRUE(
            Contiene(p, "Página " + std::to_string(p.numero) + " de " + std::to_string(c.paginas)));
    }
    CuerpoSobreElPie(r.paginas);
    EXPECT_EQ(r.filas, c.filas);
}

INSTANTIATE_TEST_SUITE_P(Casos, PaginasTest,
                         ::testing::Values(CasoPaginas{"UnaFila", 1, "", 1},
                                           CasoPaginas{"PaginaLlena", 14, "", 1},
                                           CasoPaginas{"UnaFilaDeMas", 15, "", 2},
                                           CasoPaginas{"DosPaginasLlenas", 28, "", 2},
                                           CasoPaginas{"TerceraPagina", 29, "", 3},
                                           CasoPaginas{"PieDeReporteCabe", 13, kFin, 1},
                                           CasoPaginas{"PieDeReporteAbrePagina", 14, kFin, 2},
                                           CasoPaginas{"TrescientasFilas", 300, "", 22}),
                         pruebas::PorNombre());

const char* kGrupo = R"(<grupo campo="t.grupo" %s>
  <encabezado alto="10"><campo ref="t.grupo" x="0" y="0" ancho="100" alto="10"/></encabezado>
  <pie alto="10"><texto x="0" y="0" ancho="100" alto="10">Total</texto>
    <resumen funcion="suma" campo="t.monto" x="150" y="0" ancho="100" alto="10" formato="0"/></pie>
</grupo>)";

std::string Grupo(const std::string& atributos) {
    char buf[1024];
    std::snprintf(buf, sizeof buf, kGrupo, atributos.c_str());
    return buf;
}

TEST(Maquetador, SinFilasImprimeEncabezadosYElTextoDeSinDatos) {
    auto r = Maqueta(Plantilla10(kDetalle10, "<sinDatos>No hay movimientos</sinDatos>"), {});
    ASSERT_EQ(r.paginas.size(), 1u);
    EXPECT_TRUE(Contiene(r.paginas[0], "Encabezado"));
    EXPECT_TRUE(Contiene(r.paginas[0], "No hay movimientos"));
    EXPECT_TRUE(Contiene(r.paginas[0], "Página 1 de 1"));
    // Without a text of its own, the default notice; the report footer still prints, but
    // with no group there is no group footer.
    r = Maqueta(Plantilla10(kDetalle10, Grupo("") + kFin), {});
    ASSERT_EQ(r.paginas.size(), 1u);
    EXPECT_TRUE(Contiene(r.paginas[0], "No hay información para este reporte"));
    EXPECT_TRUE(Contiene(r.paginas[0], "Fin"));
    EXPECT_FALSE(Contiene(r.paginas[0], "Total"));
    EXPECT_EQ(r.filas, 0);
}

TEST(Maquetador, PieDeGrupoAlPieDeLaPaginaCabeSinCortar) {
    // Header + 12 rows + footer = 14 bands: exactly one page body.
    auto r = Maqueta(Plantilla10(kDetalle10, Grupo("")), Filas(24, 12));
    ASSERT_EQ(r.paginas.size(), 2u);
    const ElementoTexto* total = Busca(r.paginas[0], "78");  // 1 + ... + 12
    ASSERT_NE(total, nullptr);
    EXPECT_NEAR(total->y, 160, 0.01);
    EXPECT_TRUE(Contiene(r.paginas[1], "G2"));
    EXPECT_TRUE(Contiene(r.paginas[1], "222"));  // 13 + ... + 24
}

TEST(Maquetador, EncabezadoDeGrupoNoQuedaSoloAlPie) {
    // Group 1: header + 12 rows = 13 bands; its footer takes the 14th; group 2's header
    // would be alone at the foot, so it goes to the next page with its first row.
    auto r = Maqueta(Plantilla10(kDetalle10, Grupo("")), Filas(14, 12));
    ASSERT_EQ(r.paginas.size(), 2u);
    EXPECT_FALSE(Contiene(r.paginas[0], "G2"));
    EXPECT_TRUE(Contiene(r.paginas[1], "G2"));
}

TEST(Maquetador, MantenerJuntoPasaElGrupoEnteroALaPaginaSiguiente) {
    // Groups of 5 rows take 7 bands: two fit on a page (14 bands) and stay there.
    auto b = Maqueta(Plantilla10(kDetalle10, Grupo("juntos=\"si\"")), Filas(15, 5));
    ASSERT_EQ(b.paginas.size(), 2u);
    EXPECT_TRUE(Contiene(b.paginas[0], "G2"));
    // With 6-row groups (8 bands) the second group does not fit after the first.
    auto c = Maqueta(Plantilla10(kDetalle10, Grupo("juntos=\"si\"")), Filas(12, 6));
    ASSERT_EQ(c.paginas.size(), 2u);
    EXPECT_FALSE(Contiene(c.paginas[0], "G2"));
    EXPECT_FALSE(Contiene(c.paginas[0], "fila 7"));
    EXPECT_TRUE(Contiene(c.paginas[1], "G2"));
    EXPECT_EQ(c.filas, 12);
}

TEST(Maquetador, PaginaNuevaPorGrupo) {
    auto r = Maqueta(Plantilla10(kDetalle10, Grupo("paginaNueva=\"si\"")), Filas(6, 2));
    ASSERT_EQ(r.paginas.size(), 3u);
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(Contiene(r.paginas[i], "G" + std::to_string(i + 1)));
}

TEST(Maquetador, CampoQueCreceParteElTextoYEmpujaLaBanda) {
    const char* detalle =
        R"(<detalle alto="10"><campo ref="t.nombre" x="0" y="0" ancho="60" alto="10" crece="si"/>
<campo ref="t.monto" x="150" y="0" ancho="100" alto="10" formato="0"/></detalle>)";
    std::vector<std::vector<Valor>> filas = {
        {Valor::texto("uno dos tres cuatro cinco seis siete ocho"), Valor::numero(1), Valor()},
        {Valor::texto("corto"), Valor::numero(2), Valor()},
    };
    auto r = Maqueta(Plantilla10(detalle), filas);
    ASSERT_EQ(r.paginas.size(), 1u);
    const auto& p = r.paginas[0];
    const ElementoTexto* largo = nullptr;
    for (const auto& t : p.textos)
        if (t.renglones.size() > 1) largo = &t;
    ASSERT_NE(largo, nullptr);
    std::string junto;
    for (const auto& l : largo->renglones) {
        EXPECT_LE(l.ancho, 60.01) << l.texto;
        junto += (junto.empty() ? "" : " ") + l.texto;
    }
    EXPECT_EQ(junto, "uno dos tres cuatro cinco seis siete ocho");
    const ElementoTexto* segundo = Busca(p, "corto");
    ASSERT_NE(segundo, nullptr);
    EXPECT_NEAR(segundo->y, largo->y + largo->alto, 0.01);
}

struct CasoPieDeGrupo {
    const char* nombre;
    int filas;         // rows of the single group
    int paginaDelPie;  // 0-based page that holds the group footer
    double yDelPie;    // its top
};

class PieDeGrupoTest : public ::testing::TestWithParam<CasoPieDeGrupo> {};

// The body holds 14 bands of 10 pt from y=30: header + rows + footer either fit, or the
// footer moves to the next page with the group's last row (never alone at the top); it
// never reaches into the page footer.
TEST_P(PieDeGrupoTest, ElPieDeGrupoNoInvadeElPieDePagina) {
    const auto& c = GetParam();
    std::string xml = Plantilla10(kDetalle10, Grupo(""));
    xml.insert(xml.find("<grupo"), kFin);
    auto r = Maqueta(xml, Filas(c.filas));
    ASSERT_GT(static_cast<int>(r.paginas.size()), c.paginaDelPie);
    const ElementoTexto* pie = Busca(r.paginas[static_cast<std::size_t>(c.paginaDelPie)], "Total");
    ASSERT_NE(pie, nullptr);
    EXPECT_NEAR(pie->y, c.yDelPie, 0.01);
    CuerpoSobreElPie(r.paginas);
    EXPECT_TRUE(Contiene(r.paginas.back(), "Fin"));
}

INSTANTIATE_TEST_SUITE_P(Casos, PieDeGrupoTest,
                         ::testing::Values(CasoPieDeGrupo{"CabeConHueco", 11, 0, 150},
                                           CasoPieDeGrupo{"CabeAlRas", 12, 0, 160},
                                           CasoPieDeGrupo{"PasaALaSegundaConSuUltimaFila", 13, 1, 40},
                                           CasoPieDeGrupo{"SegundaConHueco", 25, 1, 150},
                                           CasoPieDeGrupo{"SegundaAlRas", 26, 1, 160},
                                           CasoPieDeGrupo{"PasaALaTerceraConSuUltimaFila", 27, 2, 40}),
                         pruebas::PorNombre());


TEST(Maquetador, EncabezadoQueSeRepiteEnCadaPagina) {
    // 30 rows of one group: page 2 opens with the group's heading again, then row 14.
    auto r = Maqueta(Plantilla10(kDetalle10, Grupo("repetirEncabezado=\"si\"")), Filas(30, 30));
    ASSERT_EQ(r.paginas.size(), 3u);
    for (std::size_t i = 1; i < r.paginas.size(); ++i) {
        const ElementoTexto* g = Busca(r.paginas[i], "G1");
        ASSERT_NE(g, nullptr) << "página " << i + 1;
        EXPECT_NEAR(g->y, 30, 0.01);
        EXPECT_EQ(g->tipoBanda, TipoBanda::EncabezadoGrupo);
    }
    EXPECT_NEAR(Busca(r.paginas[1], "fila 14")->y, 40, 0.01);
    CuerpoSobreElPie(r.paginas);
    // Without the attribute the heading prints once.
    r = Maqueta(Plantilla10(kDetalle10, Grupo("")), Filas(30, 30));
    EXPECT_EQ(Busca(r.paginas[1], "G1"), nullptr);
}

// The report's data: each record carries its groups' header values; columns are titled by
// the template, the page heading over them, the label on their left or the field's name.
TEST(Maquetador, RegistrosDeDatosConLosValoresDeSusGrupos) {
    const std::string xml = R"(<reporte version="1">
  <pagina tamano="A4" unidades="pt" margenes="10"/>
  <grupo campo="t.grupo">
    <encabezado><texto x="0" y="0" ancho="40">Grupo:</texto><campo ref="t.grupo" x="50" y="0" ancho="60"/></encabezado>
  </grupo>
  <grupo campo="t.sub"><encabezado><caja x="0" y="0" ancho="100" alto="5"/></encabezado></grupo>
  <encabezadoPagina><texto x="0" y="0" ancho="100">Nombre</texto><texto x="150" y="0" ancho="100">Monto</texto></encabezadoPagina>
  <detalle>
    <campo ref="t.nombre" x="0" y="0" ancho="100" titulo="Cliente"/>
    <campo ref="t.grupo" x="110" y="0" ancho="30"/>
    <texto x="120" y="0" ancho="20">$</texto>
    <campo ref="t.monto" x="150" y="0" ancho="100" formato="#,##0.00"/>
    <resumen funcion="cuenta" campo="t.nombre" x="300" y="0" ancho="40"/>
  </detalle>
</reporte>)";
    Plantilla p = LeePlantillaTexto(xml, "datos.rpt");
    Medidor medidor;
    Maquetador m(p, medidor, 0);
    std::vector<std::string> titulos, formatos;
    for (const auto& c : m.ColumnasDatos()) {
        titulos.push_back(c.titulo + "/" + std::to_string(c.nivelGrupo));
        formatos.push_back(c.formato);
    }
    EXPECT_EQ(titulos, (std::vector<std::string>{"Grupo/1", "sub/2", "Cliente/0", "Monto/0",
                                                 "Cuenta de nombre/0"}));
    EXPECT_EQ(formatos, (std::vector<std::string>{"", "", "", "#,##0.00", "#,##0"}));
    std::vector<std::vector<Valor>> registros;
    m.AlRegistro([&](const std::vector<Valor>& v) { registros.push_back(v); });
    FuentePrueba f({"t.nombre", "t.monto", "t.grupo", "t.sub"},
                   {{Valor::texto("A"), Valor::numero(10), Valor::texto("G1"), Valor::texto("S1")},
                    {Valor::texto("B"), Valor::numero(20), Valor::texto("G1"), Valor::texto("S2")},
                    {Valor::texto("C"), Valor::numero(5), Valor::texto("G2"), Valor::texto("S2")}});
    ListaPaginas lista;
    m.Maqueta(f, lista);
    auto t = [](const char* s) { return Valor::texto(s); };
    auto n = [](double x) { return Valor::numero(x); };
    EXPECT_EQ(registros, (std::vector<std::vector<Valor>>{{t("G1"), t("S1"), t("A"), n(10), n(1)},
                                                          {t("G1"), t("S2"), t("B"), n(20), n(2)},
                                                          {t("G2"), t("S2"), t("C"), n(5), n(3)}}));

    // A detail that shows nothing: one record per group, from its footer.
    const std::string resumen = R"(<reporte version="1">
  <pagina tamano="A4" unidades="pt" margenes="10"/>
  <grupo campo="t.grupo"><pie><resumen funcion="suma" campo="t.monto" x="150" y="0" ancho="100"/></pie></grupo>
  <detalle><texto x="0" y="0">·</texto></detalle>
</reporte>)";
    Plantilla p2 = LeePlantillaTexto(resumen, "resumen.rpt");
    Maquetador m2(p2, medidor, 0);
    ASSERT_EQ(m2.ColumnasDatos().size(), 2u);
    EXPECT_EQ(m2.ColumnasDatos()[1].titulo, "Suma de monto");
    registros.clear();
    m2.AlRegistro([&](const std::vector<Valor>& v) { registros.push_back(v); });
    FuentePrueba f2(kColumnas, Filas(5, 3));
    ListaPaginas lista2;
    m2.Maqueta(f2, lista2);
    EXPECT_EQ(registros, (std::vector<std::vector<Valor>>{{t("G1"), n(6)}, {t("G2"), n(9)}}));
}

// Two levels: t.grupo (outer, header only) and t.sub (inner, header and footer).
std::string DosNiveles(const std::string& atributosInterior) {
    return R"(<grupo campo="t.grupo">
  <encabezado alto="10"><campo ref="t.grupo" x="0" y="0" ancho="100" alto="10"/></encabezado>
</grupo>
<grupo campo="t.sub" )" +
           atributosInterior + R"(>
  <encabezado alto="10"><campo ref="t.sub" x="10" y="0" ancho="100" alto="10"/></encabezado>
  <pie alto="10"><texto x="0" y="0" ancho="100" alto="10">Subtotal</texto></pie>
</grupo>)";
}

// Rows given as (outer group, inner group) per row.
std::vector<std::vector<Valor>> FilasDosNiveles(
    const std::vector<std::pair<std::string, std::string>>& grupos) {
    std::vector<std::vector<Valor>> f;
    int i = 0;
    for (const auto& [g, s] : grupos) {
        ++i;
        f.push_back({Valor::texto("fila " + std::to_string(i)), Valor::numero(i), Valor::texto(g),
                     Valor::texto(s)});
    }
    return f;
}

const std::vector<std::string> kColumnasDosNiveles = {"t.nombre", "t.monto", "t.grupo", "t.sub"};

// Whenever an outer header is on a page, the first inner header of that group is too.
void EncabezadoExteriorConSuInterior(const std::vector<Pagina>& paginas, const std::string& g,
                                     const std::string& s) {
    for (const auto& p : paginas)
        if (Contiene(p, g)) {
            EXPECT_TRUE(Contiene(p, s)) << g << " sin " << s << " en página " << p.numero;
        }
}

TEST(Maquetador, PaginaNuevaDelGrupoInteriorNoDejaSoloAlExterior) {
    auto filas = FilasDosNiveles(
        {{"G1", "S1"}, {"G1", "S1"}, {"G1", "S2"}, {"G1", "S2"}, {"G2", "S3"}, {"G2", "S3"}});
    auto r = Maqueta(Plantilla10(kDetalle10, DosNiveles("paginaNueva=\"si\"")), filas,
                     kColumnasDosNiveles);
    ASSERT_EQ(r.paginas.size(), 3u);
    EXPECT_TRUE(Contiene(r.paginas[0], "S1"));
    EXPECT_TRUE(Contiene(r.paginas[1], "S2"));
    EXPECT_FALSE(Contiene(r.paginas[1], "G2"));
    EXPECT_TRUE(Contiene(r.paginas[2], "G2"));
    EncabezadoExteriorConSuInterior(r.paginas, "G2", "S3");
}

TEST(Maquetador, MantenerJuntoInteriorLlevaConsigoAlEncabezadoExterior) {
    // G1/S1: 1 + 1 + 7 + 1 = 10 bands, 4 left. G2/S2 with 5 rows needs 1 + 7 = 8 bands:
    // the whole of it, the outer header included, goes to page 2.
    std::vector<std::pair<std::string, std::string>> g(7, {"G1", "S1"});
    for (int i = 0; i < 5; ++i) g.push_back({"G2", "S2"});
    auto r = Maqueta(Plantilla10(kDetalle10, DosNiveles("juntos=\"si\"")), FilasDosNiveles(g),
                     kColumnasDosNiveles);
    ASSERT_EQ(r.paginas.size(), 2u);
    EXPECT_FALSE(Contiene(r.paginas[0], "G2"));
    EXPECT_TRUE(Contiene(r.paginas[1], "G2"));
    EncabezadoExteriorConSuInterior(r.paginas, "G2", "S2");
    EXPECT_EQ(r.filas, 12);
}

TEST(Maquetador, ResumenesPorGrupoReportePaginaYAcumulados) {
    const char* detalle =
        R"(<detalle alto="10"><campo ref="t.nombre" x="0" y="0" ancho="60" alto="10"/>
<resumen funcion="suma" campo="t.monto" acumulado="si" x="150" y="0" ancho="100" alto="10" formato="0"/></detalle>)";
    const char* pie = R"(<pieReporte alto="60">
  <resumen funcion="suma" campo="t.monto" x="0" y="0" ancho="50" alto="10" formato="0"/>
  <resumen funcion="cuenta" campo="t.monto" x="0" y="10" ancho="50" alto="10"/>
  <resumen funcion="distintos" campo="t.grupo" x="0" y="20" ancho="50" alto="10"/>
  <resumen funcion="promedio" campo="t.monto" x="0" y="30" ancho="50" alto="10" formato="0.0"/>
  <resumen funcion="minimo" campo="t.nombre" x="0" y="40" ancho="50" alto="10"/>
  <resumen funcion="maximo" campo="t.monto" x="0" y="50" ancho="50" alto="10" formato="0"/>
</pieReporte>)";
    auto r = Maqueta(Plantilla10(std::string(detalle) + pie), Filas(4, 2));
    ASSERT_EQ(r.paginas.size(), 1u);
    auto t = Textos(r.paginas[0]);
    for (const char* esperado : {"1", "3", "6", "10", "4", "2", "2.5", "fila 1"})
        EXPECT_NE(std::find(t.begin(), t.end(), esperado), t.end()) << esperado;
}

// A margin in a footer is a formula over summaries: the section's scope when the call names no
// group (group footer: the group; report footer: the report), the named group's otherwise; a
// zero divisor gives an empty value through "if", and the data export shows the same figures.
TEST(Maquetador, FormulasConResumenesEnPiesYExportacion) {
    const std::string xml = R"(<reporte version="1">
  <pagina tamano="A4" unidades="pt" margenes="10"/>
  <formula nombre="Utilidad">{t.monto} - {t.costo}</formula>
  <formula nombre="Margen">if Sum({t.monto}) &lt;&gt; 0 then Sum({@Utilidad}) / Sum({t.monto}) * 100</formula>
  <formula nombre="DelGrupo">Sum({t.monto}, {t.grupo})</formula>
  <formula nombre="Etiqueta">'M ' &amp; ToText({@Margen}, 1)</formula>
  <grupo campo="t.grupo"><pie>
    <campo ref="t.grupo" x="0" y="0" ancho="40"/>
    <formula nombre="Margen" x="50" y="0" ancho="50" formato="0.0"/>
  </pie></grupo>
  <detalle><texto x="0" y="0">·</texto></detalle>
  <pieReporte>
    <formula nombre="Margen" x="0" y="0" ancho="50" formato="0.00" titulo="MT"/>
    <formula nombre="DelGrupo" x="0" y="20" ancho="50" formato="0"/>
    <formula nombre="Etiqueta" x="0" y="40" ancho="80"/>
  </pieReporte>
</reporte>)";
    Plantilla p = LeePlantillaTexto(xml, "margen.rpt");
    Medidor medidor;
    Maquetador m(p, medidor, 0);
    std::vector<std::vector<Valor>> registros;
    m.AlRegistro([&](const std::vector<Valor>& v) { registros.push_back(v); });
    auto n = [](double x) { return Valor::numero(x); };
    auto t = [](const char* s) { return Valor::texto(s); };
    // G1: sales 100 + 100, profit 20 + 30 (25 %); G2: nothing sold (empty margin); G3: 50, 10.
    FuentePrueba f({"t.grupo", "t.monto", "t.costo", "Utilidad"},
                   {{t("G1"), n(100), n(80), n(20)},
                    {t("G1"), n(100), n(70), n(30)},
                    {t("G2"), n(0), n(5), n(-5)},
                    {t("G3"), n(50), n(40), n(10)}});
    ListaPaginas lista;
    m.Maqueta(f, lista);
    ASSERT_EQ(lista.Total(), 1);
    auto textos = Textos(lista.Lee(0, medidor));
    auto hay = [&](const std::string& s) {
        return std::find(textos.begin(), textos.end(), s) != textos.end();
    };
    EXPECT_TRUE(hay("25.0"));   // G1
    EXPECT_TRUE(hay("20.0"));   // G3
    EXPECT_TRUE(hay("22.00"));  // report: 55 / 250
    EXPECT_TRUE(hay("50"));     // the last group's sales, named in the report footer
    EXPECT_TRUE(hay("M 22.0"));
    // G2's footer shows its key and an empty margin, no "0.0" and no error.
    EXPECT_FALSE(hay("0.0"));
    EXPECT_EQ(registros, (std::vector<std::vector<Valor>>{
                             {t("G1"), n(25)}, {t("G2"), Valor()}, {t("G3"), n(20)}}));

    // A summary by a field that is not a group is refused with the template's name.
    const std::string malo = R"(<reporte version="1">
  <formula nombre="X">Sum({t.monto}, {t.otro})</formula>
  <detalle><formula nombre="X" x="0" y="0"/></detalle></reporte>)";
    Plantilla pm = LeePlantillaTexto(malo, "malo.rpt");
    try {
        Maquetador mm(pm, medidor, 0);
        ADD_FAILURE() << "se esperaba un error";
    } catch (const ErrorPlantilla& e) {
        EXPECT_NE(std::string(e.what()).find("{t.otro}"), std::string::npos) << e.what();
    }
}

TEST(Maquetador, TotalPorPaginaNoSeConfundeConElDelReporte) {
    std::string xml = R"(<reporte version="1">
  <pagina tamano="personal" ancho="300" alto="200" unidades="pt" margenes="10"/>
  <piePagina alto="20"><resumen funcion="suma" campo="t.monto" x="0" y="0" ancho="100" formato="0"/></piePagina>
  <pieReporte alto="10"><resumen funcion="suma" campo="t.monto" x="0" y="0" ancho="100" formato="0"/></pieReporte>
)" + std::string(kDetalle10) +
                      "</reporte>";
    // Body: 160 pt = 16 rows per page.
    auto r = Maqueta(xml, Filas(20));
    ASSERT_EQ(r.paginas.size(), 2u);
    EXPECT_TRUE(Contiene(r.paginas[0], "136"));  // 1..16
    EXPECT_TRUE(Contiene(r.paginas[1], "74"));   // 17..20
    EXPECT_TRUE(Contiene(r.paginas[1], "210"));  // 1..20
}

TEST(Maquetador, SeccionVaciaSuprimida) {
    std::string xml = Plantilla10(
        R"(<detalle alto="10" suprimirVacia="si"><campo ref="t.nombre" x="0" y="0" ancho="60" alto="10"/></detalle>)");
    auto r = Maqueta(xml, {{Valor::texto("a")}, {Valor::texto("")}, {Valor()}, {Valor::texto("b")}},
                     {"t.nombre"});
    ASSERT_EQ(r.paginas.size(), 1u);
    const ElementoTexto* b = Busca(r.paginas[0], "b");
    ASSERT_NE(b, nullptr);
    EXPECT_NEAR(b->y, 40, 0.01);  // right below "a" at 30
}

TEST(Maquetador, EncabezadoYPieQueLlenanLaPaginaSonUnError) {
    std::string xml = R"(<reporte version="1">
  <pagina tamano="personal" ancho="300" alto="200" unidades="pt" margenes="10"/>
  <encabezadoPagina alto="100"><texto>x</texto></encabezadoPagina>
  <piePagina alto="60"><texto>y</texto></piePagina>
</reporte>)";
    Plantilla p = LeePlantillaTexto(xml, "alto.rpt");
    Medidor medidor;
    EXPECT_THROW(Maquetador(p, medidor, 0), ErrorPlantilla);
}

TEST(Maquetador, BandaMasAltaQueLaPaginaSeCortaSobreElPie) {
    const char* detalle =
        R"(<detalle><campo ref="t.nombre" x="0" y="0" ancho="60" crece="si"/></detalle>)";
    std::string largo;
    for (int i = 0; i < 60; ++i) largo += "palabra ";
    auto r =
        Maqueta(Plantilla10(detalle), {{Valor::texto(largo), Valor::numero(1), Valor()},
                                       {Valor::texto("siguiente"), Valor::numero(2), Valor()}});
    ASSERT_EQ(r.paginas.size(), 2u);
    CuerpoSobreElPie(r.paginas);
    for (const auto& t : r.paginas[0].textos)
        if (t.tipoBanda == TipoBanda::Detalle) {
            EXPECT_EQ(t.renglones.size(), 13u);  // the 13 lines that fit in 140 pt
        }
    EXPECT_TRUE(Contiene(r.paginas[1], "siguiente"));
}

TEST(Maquetador, NumerosAlineadosALaDerechaYConTipo) {
    auto r = Maqueta(Plantilla10(kDetalle10), Filas(12));
    ASSERT_EQ(r.paginas.size(), 1u);
    const ElementoTexto* uno = Busca(r.paginas[0], "1.00");
    const ElementoTexto* doce = Busca(r.paginas[0], "12.00");
    ASSERT_TRUE(uno && doce);
    EXPECT_EQ(uno->tipo, TipoValor::Numero);
    EXPECT_DOUBLE_EQ(doce->numero, 12);
    EXPECT_NEAR(uno->x + uno->renglones[0].dx + uno->renglones[0].ancho,
                doce->x + doce->renglones[0].dx + doce->renglones[0].ancho, 0.01);
}

}  // namespace
}  // namespace paratzorep::renderer
