// CSV and XLSX writers, and the page model turned into tables, read back with Python's
// csv module, openpyxl and xlrd.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <iterator>

#include "Documentos.h"
#include "Lector.h"
#include "renderer/writers/ArchivoCsv.h"
#include "renderer/writers/ErrorEscritura.h"
#include "renderer/writers/EscritorTabla.h"
#include "renderer/writers/LibroXlsx.h"
#include "support/NombresDeCaso.h"

namespace paratzorep::renderer {
namespace {

using namespace prueba;
using Lineas = std::vector<std::vector<std::string>>;
using C = CeldaLeida;

Lineas LeerCsv(const std::filesystem::path& archivo) {
    auto s = Ejecutar(Lector() + " csv " + Comillas(archivo.string()) + " 2>&1");
    EXPECT_EQ(s.estado, 0) << s.texto;
    return Campos(s.texto);
}

TEST(CampoCsv, ComillasSoloCuandoHacenFalta) {
    struct Caso {
        std::string entrada, salida;
    } casos[] = {
        {"simple", "simple"},
        {"", ""},
        {"Pérez, Juan", "\"Pérez, Juan\""},
        {"dice \"hola\"", "\"dice \"\"hola\"\"\""},
        {"dos\nlíneas", "\"dos\nlíneas\""},
        {"retorno\r", "\"retorno\r\""},
        {" espacio", "\" espacio\""},
        {"malo\xff", "malo\xEF\xBF\xBD"},
    };
    for (const auto& c : casos) EXPECT_EQ(detail::CampoCsv(c.entrada), c.salida) << c.entrada;
}

TEST(NumeroCsv, PuntoDecimalYLosDecimalesDelFormato) {
    struct Caso {
        double valor;
        std::string formato, salida;
    } casos[] = {
        {1234567.891, "#,##0.00", "1234567.89"},
        {0.1 + 0.2, "", "0.30000000000000004"},
        {0.1 + 0.2, "General", "0.30000000000000004"},
        {-0.001, "0.00", "0.00"},
        {2.5, "#,##0", "2"},  // round half to even, as printf does
        {-3, "", "-3"},
        {1e21, "", "1e+21"},
        {12.5, "0.0%", "12.5"},
        {NAN, "", ""},
    };
    for (const auto& c : casos)
        EXPECT_EQ(detail::NumeroCsv(c.valor, detail::DecimalesDeFormato(c.formato)), c.salida)
            << c.valor << " " << c.formato;
}

TEST(FechaCsv, Iso8601) {
    std::pair<double, std::string> casos[] = {
        {SerieFecha(2024, 2, 29), "2024-02-29"},
        {SerieFecha(1999, 12, 31, 13, 30, 5), "1999-12-31 13:30:05"},
        {SerieFecha(1900, 3, 1), "1900-03-01"},
        {SerieFecha(2100, 1, 1), "2100-01-01"},
        {0, "1899-12-30"}};
    for (const auto& [serie, texto] : casos) EXPECT_EQ(detail::FechaCsv(serie), texto);
}

TEST(ArchivoCsv, PythonLeeLoMismoQueSeEscribio) {
    CarpetaTemporal carpeta;
    auto ruta = carpeta / "clientes.csv";
    ArchivoCsv csv(ruta);
    int dinero = csv.Estilo({"#,##0.00"});
    csv.Columnas({{"Clave", 8}, {"Nombre", 30}, {"Saldo", 12}, {"Alta", 10}});
    csv.Fila(std::vector{CeldaTabla::Texto("C-001"), CeldaTabla::Texto("Pérez, \"El Güero\"\nJuan"),
                         CeldaTabla::Numero(1500.5, dinero),
                         CeldaTabla::Fecha(SerieFecha(2023, 1, 9))});
    csv.Fila(std::vector{CeldaTabla::Texto("C-002"), CeldaTabla{}, CeldaTabla::Numero(-7, dinero)});
    EXPECT_FALSE(std::filesystem::exists(ruta));  // complete only once closed
    csv.Cerrar();

    std::ifstream in(ruta, std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(in), {}};
    EXPECT_EQ(bytes.substr(0, 3), "\xEF\xBB\xBF");
    EXPECT_NE(bytes.find("Alta\r\n"), std::string::npos);
    auto filas = LeerCsv(ruta);
    ASSERT_EQ(filas.size(), 3u);
    EXPECT_EQ(filas[0], (std::vector<std::string>{"FILA", "Clave", "Nombre", "Saldo", "Alta"}));
    EXPECT_EQ(filas[1], (std::vector<std::string>{"FILA", "C-001", "Pérez, \"El Güero\"\nJuan",
                                                  "1500.50", "2023-01-09"}));
    EXPECT_EQ(filas[2], (std::vector<std::string>{"FILA", "C-002", "", "-7.00"}));
}

class LibroXlsxTest : public ::testing::Test {
  protected:
    void SetUp() override {
        if (!prueba::HayModuloPython("openpyxl"))
            GTEST_SKIP() << "python3-openpyxl no está instalado";
    }
    CarpetaTemporal carpeta;
};

TEST_F(LibroXlsxTest, ValoresConTipoFormatoYAnchos) {
    auto ruta = carpeta / "ventas.xlsx";
    {
        LibroXlsx libro(ruta, "Ventas: enero/febrero");
        int dinero = libro.Estilo({"#,##0.00", false, AlineacionCelda::Derecha});
        libro.Columnas({{"Fecha", 12}, {"Cliente", 30}, {"Importe", 14}});
        libro.Fila(std::vector{CeldaTabla::Fecha(SerieFecha(2024, 2, 29)),
                               CeldaTabla::Texto("Ñandú & <Cía>"),
                               CeldaTabla::Numero(1234.5, dinero)});
        libro.Fila(std::vector{CeldaTabla::Texto("=SUMA(A1)"), CeldaTabla::Texto("x\xff"),
                               CeldaTabla::Numero(INFINITY)});
        libro.Cerrar();
    }
    auto libro = LeerLibro("xlsx", ruta);
    ASSERT_EQ(libro.hojas.size(), 1u);
    const auto& h = libro.hojas[0];
    EXPECT_EQ(h.nombre, "Ventas_ enero_febrero");
    EXPECT_EQ(std::pair(h.filas, h.columnas), std::pair(3L, 3L));
    EXPECT_EQ(h.anchos, "12.71,30.71,14.71");
    EXPECT_EQ(h.at(0, 1), (C{"texto", "Cliente", "General", true}));
    EXPECT_EQ(h.at(1, 0), (C{"fecha", "2024-02-29T00:00:00", "dd/mm/yyyy"}));
    EXPECT_EQ(h.at(1, 1).valor, "Ñandú & <Cía>");
    EXPECT_EQ(h.at(1, 2), (C{"numero", "1234.5", "#,##0.00"}));
    // A text that looks like a formula stays a text; nothing is ever written as a formula.
    EXPECT_EQ(h.at(2, 0).valor, "=SUMA(A1)");
    EXPECT_EQ(libro.formulas, "0");
    EXPECT_EQ(h.at(2, 1).valor, "x\uFFFD");
    EXPECT_EQ(h.celdas.count({2, 2}), 0u);
}

TEST_F(LibroXlsxTest, SigueEnOtraHojaAlLlegarAlLimite) {
    auto ruta = carpeta / "largo.xlsx";
    {
        LibroXlsx libro(ruta, "Datos", 4);
        libro.Columnas({{"N", 5}});
        for (int i = 0; i < 7; ++i) libro.Fila(std::vector{CeldaTabla::Numero(i)});
        libro.Cerrar();
        EXPECT_EQ(libro.Hojas(), 3u);
    }
    auto hojas = LeerLibro("xlsx", ruta).hojas;
    ASSERT_EQ(hojas.size(), 3u);
    EXPECT_EQ(hojas[1].nombre, "Datos (2)");
    EXPECT_EQ(hojas[1].filas, 4);
    EXPECT_EQ(hojas[2].nombre, "Datos (3)");
    EXPECT_EQ(hojas[2].filas, 2);
    EXPECT_EQ(hojas[1].at(0, 0).valor, "N");
    EXPECT_EQ(hojas[1].at(1, 0).valor, "3.0");
    EXPECT_EQ(hojas[2].at(1, 0).valor, "6.0");
}

TEST(EscritorTabla, CsvTieneSoloLosRenglonesDeDetalle) {
    CarpetaTemporal carpeta;
    auto ruta = carpeta / "saldos.csv";
    Reporte(*CreaEscritorCsv(ruta.string()));
    auto filas = LeerCsv(ruta);
    ASSERT_EQ(filas.size(), 4u);
    EXPECT_EQ(filas[0], (std::vector<std::string>{"FILA", "Fecha", "Cliente", "Saldo"}));
    EXPECT_EQ(filas[1], (std::vector<std::string>{"FILA", "2024-01-02", "Pérez, Juan", "1500.50"}));
    EXPECT_EQ(filas[3], (std::vector<std::string>{"FILA", "2024-01-04", "García", "0.25"}));
}

// The sample report as a workbook: only detail rows and footers, each value with its type
// and format, the group total under its column in bold, and no page header or footer.
using Formato = std::pair<std::string, std::string>;  // extension, Python reader module
class TablaLibro : public ::testing::TestWithParam<Formato> {};

TEST_P(TablaLibro, ConservaTiposYTotalesBajoSuColumna) {
    const auto& [modo, modulo] = GetParam();
    if (!HayModuloPython(modulo)) GTEST_SKIP() << "python3-" << modulo << " no está instalado";
    CarpetaTemporal carpeta;
    auto ruta = carpeta / ("saldos." + modo);
    Reporte(*(modo == "xls" ? CreaEscritorXls : CreaEscritorXlsx)(ruta.string()));
    auto hojas = LeerLibro(modo, ruta).hojas;
    ASSERT_EQ(hojas.size(), 1u);
    const auto& h = hojas[0];
    EXPECT_EQ(h.nombre, "Saldos de clientes");
    EXPECT_EQ(std::pair(h.filas, h.columnas), std::pair(5L, 3L));
    EXPECT_EQ(h.at(0, 0).valor, "Fecha");
    EXPECT_EQ(h.at(0, 2).valor, "Saldo");
    EXPECT_EQ(h.at(1, 0), (C{"fecha", "2024-01-02T00:00:00", "dd/mm/yyyy"}));
    EXPECT_EQ(h.at(2, 1).valor, "Ñúñez");
    EXPECT_EQ(h.at(2, 2), (C{"numero", "-20.0", "#,##0.00"}));
    EXPECT_EQ(h.at(3, 0).tipo, "fecha");
    EXPECT_EQ(h.at(3, 2), (C{"numero", "0.25", "#,##0.00"}));
    EXPECT_EQ(h.at(4, 1).valor, "Total:");
    EXPECT_EQ(h.at(4, 2), (C{"numero", "1480.75", "#,##0.00", true}));
    for (const auto& [clave, celda] : h.celdas)
        EXPECT_EQ(celda.valor.find("Página"), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(Formatos, TablaLibro,
                         ::testing::Values(Formato{"xls", "xlrd"}, Formato{"xlsx", "openpyxl"}),
                         pruebas::NombrePor(&Formato::first));

TEST(AgruparColumnas, TextosQueSeTraslapanCompartenColumna) {
    auto cols = detail::AgruparColumnas({{100, 200}, {10, 50}, {150, 190}, {60, 95}, {120, 300}});
    ASSERT_EQ(cols.size(), 3u);
    EXPECT_EQ(cols[0].x0, 10);
    EXPECT_EQ(cols[2].x0, 100);
    EXPECT_EQ(cols[2].x1, 300);
    EXPECT_EQ(detail::ColumnaDe(cols, 51, 53), 0u);
    EXPECT_EQ(detail::ColumnaDe(cols, 55, 58), 1u);   // nearest when nothing overlaps
    EXPECT_EQ(detail::ColumnaDe(cols, 80, 400), 2u);  // most overlap wins
}

}  // namespace
}  // namespace paratzorep::renderer
