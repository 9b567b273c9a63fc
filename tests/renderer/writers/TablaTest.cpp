// CSV and XLSX writers, and the report's data as a table, read back with Python's csv module,
// openpyxl and xlrd.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <iterator>

#include "Documentos.h"
#include "Lector.h"
#include "renderer/writers/ArchivoCsv.h"
#include "renderer/writers/ErrorEscritura.h"
#include "renderer/writers/LibroXlsx.h"
#include "renderer/writers/TablaDatos.h"
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
    EXPECT_EQ(detail::HoraCsv(13.5 / 24), "13:30:00");
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

std::string LeeBytes(const std::filesystem::path& ruta) {
    std::ifstream in(ruta, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

TEST(TablaDatos, CsvConTiposYTitulosAunSinFilas) {
    CarpetaTemporal carpeta;
    const std::string titulos =
        "\xEF\xBB\xBF"
        "Fecha,Hora,Cliente,Saldo,Movimientos\r\n";
    EscribeDatos(CreaTablaCsv((carpeta / "con.csv").string(), ""), true);
    EXPECT_EQ(LeeBytes(carpeta / "con.csv"), titulos +
                                                 "2024-01-02,08:00:50,\"Pérez, Juan\",1500.50,3\r\n"
                                                 "2024-01-02,13:30:00,Ñúñez,-20.00,1\r\n"
                                                 ",00:00:00,García,0.25,\r\n");
    EscribeDatos(CreaTablaCsv((carpeta / "sin.csv").string(), ""), false);
    EXPECT_EQ(LeeBytes(carpeta / "sin.csv"), titulos);
}

TEST(FormatoExcel, TextoLiteralEntreComillas) {
    std::pair<std::string, std::string> casos[] = {
        {"#,##0.00", "#,##0.00"},
        {"#,##0 movimientos en el día", "#,##0\" movimientos en el día\""},
        {"Total: #,##0 movimientos", "\"Total: \"#,##0\" movimientos\""},
        {"0.0%", "0.0\"%\""},
        {"", ""},
        {"di \"hola\" 0", "\"di \"\\\"\"hola\"\\\"\" \"0"},
    };
    for (const auto& [formato, excel] : casos) EXPECT_EQ(detail::FormatoExcel(formato), excel);
}

// The data sheet of both workbook formats: titles in bold, every value with its type, the
// count's format with its text quoted, the title row frozen, filtered and repeated on every
// printed page, one page wide on Letter paper; empty when there are no rows but the titles.
using Formato = std::pair<std::string, std::string>;  // extension, Python reader module
class HojaDeDatos : public ::testing::TestWithParam<Formato> {};

TEST_P(HojaDeDatos, ValoresConTipoYTitulosFijosConFiltro) {
    const auto& [modo, modulo] = GetParam();
    if (!HayModuloPython(modulo)) GTEST_SKIP() << "python3-" << modulo << " no está instalado";
    CarpetaTemporal carpeta;
    auto ruta = carpeta / ("saldos." + modo);
    EscribeDatos((modo == "xls" ? CreaTablaXls : CreaTablaXlsx)(ruta.string(), "Saldos"), true);
    auto libro = LeerLibro(modo, ruta);
    ASSERT_EQ(libro.hojas.size(), 1u);
    const auto& h = libro.hojas[0];
    EXPECT_EQ(h.nombre, "Saldos");
    EXPECT_EQ(std::pair(h.filas, h.columnas), std::pair(4L, 5L));
    EXPECT_EQ(h.at(0, 0), (C{"texto", "Fecha", "General", true}));
    EXPECT_EQ(h.at(1, 0), (C{"fecha", "2024-01-02T00:00:00", "dd/mm/yyyy"}));
    EXPECT_EQ(h.at(1, 1), (C{"hora", "08:00:50", "hh:mm:ss"}));
    EXPECT_EQ(h.at(2, 2).valor, "Ñúñez");
    EXPECT_EQ(h.at(2, 3), (C{"numero", "-20.0", "#,##0.00"}));
    EXPECT_EQ(h.at(1, 4), (C{"numero", "3.0", "#,##0\" movimientos\""}));
    EXPECT_EQ(h.celdas.count({3, 0}), 0u);  // the empty date
    EXPECT_EQ(h.celdas.count({3, 4}), 0u);
    // Frozen row 1; fitted 1 page wide, any number tall; Letter (1); portrait.
    EXPECT_EQ(h.vista, "1\t1\t0\t1\t1");
    if (modo == "xlsx") {
        EXPECT_EQ(h.filtro, "A1:E4\t$1:$1");
    } else {
        EXPECT_EQ(h.filtro, "5");
        // xlrd cuts the title rows' whole width to the sheet's columns.
        EXPECT_EQ(libro.nombres, (std::vector<std::string>{"_FilterDatabase\t0\tSaldos!R1:4C1:5",
                                                           "Print_Titles\t0\tSaldos!R1:1C1:5"}));
    }

    EscribeDatos((modo == "xls" ? CreaTablaXls : CreaTablaXlsx)(ruta.string(), "Saldos"), false);
    libro = LeerLibro(modo, ruta);
    EXPECT_EQ(libro.hojas.at(0).filas, 1);
    EXPECT_EQ(libro.hojas.at(0).at(0, 4).valor, "Movimientos");
}

INSTANTIATE_TEST_SUITE_P(Formatos, HojaDeDatos,
                         ::testing::Values(Formato{"xls", "xlrd"}, Formato{"xlsx", "openpyxl"}),
                         pruebas::NombrePor(&Formato::first));

}  // namespace
}  // namespace paratzorep::renderer
