// CSV and XLSX writers, and the page model turned into tables, read back with Python's
// csv module, openpyxl and xlrd.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <iterator>
#include <map>

#include "Documentos.h"
#include "Lector.h"
#include "renderer/writers/ArchivoCsv.h"
#include "renderer/writers/ErrorEscritura.h"
#include "renderer/writers/EscritorTabla.h"
#include "renderer/writers/LibroXlsx.h"

namespace paratzorep::renderer {
namespace {

using prueba::CarpetaTemporal;
using namespace prueba;
using Lineas = std::vector<std::vector<std::string>>;

Lineas Leer(const std::string& modo, const std::filesystem::path& archivo) {
    auto s = prueba::Ejecutar(prueba::Lector() + " " + modo + " " +
                              prueba::Comillas(archivo.string()) + " 2>&1");
    EXPECT_EQ(s.estado, 0) << s.texto;
    return prueba::Campos(s.texto);
}

std::string Contenido(const std::filesystem::path& archivo) {
    std::ifstream in(archivo, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

// Cells of a spreadsheet reading: "hoja:fila:columna" -> {tipo, valor, formato, negrita}.
std::map<std::string, std::vector<std::string>> Celdas(const Lineas& lineas,
                                                       std::vector<std::string>* hojas = nullptr) {
    std::map<std::string, std::vector<std::string>> r;
    int hoja = -1;
    for (const auto& l : lineas) {
        if (l[0] == "HOJA") {
            ++hoja;
            if (hojas) hojas->push_back(l[1] + "|" + l[2] + "|" + l[3] + "|" + l[4]);
        } else if (l[0] == "FORMULAS") {
            r["formulas"] = {l[1]};
        } else if (l[0] == "CELDA") {
            r[std::to_string(hoja) + ":" + l[1] + ":" + l[2]] = {l[3], l[4], l[5], l[6]};
        }
    }
    return r;
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
    EXPECT_EQ(detail::FechaCsv(SerieFecha(2024, 2, 29)), "2024-02-29");
    EXPECT_EQ(detail::FechaCsv(SerieFecha(1999, 12, 31, 13, 30, 5)), "1999-12-31 13:30:05");
    EXPECT_EQ(detail::FechaCsv(SerieFecha(1900, 3, 1)), "1900-03-01");
    EXPECT_EQ(detail::FechaCsv(SerieFecha(2100, 1, 1)), "2100-01-01");
    EXPECT_EQ(detail::FechaCsv(0), "1899-12-30");
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

    std::string bytes = Contenido(ruta);
    EXPECT_EQ(bytes.substr(0, 3), "\xEF\xBB\xBF");
    EXPECT_NE(bytes.find("Alta\r\n"), std::string::npos);
    auto filas = Leer("csv", ruta);
    ASSERT_EQ(filas.size(), 3u);
    EXPECT_EQ(filas[0], (std::vector<std::string>{"FILA", "Clave", "Nombre", "Saldo", "Alta"}));
    EXPECT_EQ(filas[1], (std::vector<std::string>{"FILA", "C-001", "Pérez, \"El Güero\"\nJuan",
                                                  "1500.50", "2023-01-09"}));
    EXPECT_EQ(filas[2], (std::vector<std::string>{"FILA", "C-002", "", "-7.00"}));
}

TEST(ArchivoCsv, CarpetaInexistente) {
    CarpetaTemporal carpeta;
    try {
        ArchivoCsv csv(carpeta / "falta" / "x.csv");
        FAIL();
    } catch (const ErrorEscritura& e) {
        EXPECT_NE(std::string(e.what()).find("No se pudo crear el archivo"), std::string::npos);
    }
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
    std::vector<std::string> hojas;
    auto c = Celdas(Leer("xlsx", ruta), &hojas);
    ASSERT_EQ(hojas.size(), 1u);
    EXPECT_EQ(hojas[0], "Ventas_ enero_febrero|3|3|12.71,30.71,14.71");
    EXPECT_EQ(c["0:0:1"], (std::vector<std::string>{"texto", "Cliente", "General", "1"}));
    EXPECT_EQ(c["0:1:0"],
              (std::vector<std::string>{"fecha", "2024-02-29T00:00:00", "dd/mm/yyyy", "0"}));
    EXPECT_EQ(c["0:1:1"][1], "Ñandú & <Cía>");
    EXPECT_EQ(c["0:1:2"], (std::vector<std::string>{"numero", "1234.5", "#,##0.00", "0"}));
    // A text that looks like a formula stays a text; nothing is ever written as a formula.
    EXPECT_EQ(c["0:2:0"][1], "=SUMA(A1)");
    EXPECT_EQ(c["formulas"][0], "0");
    EXPECT_EQ(c["0:2:1"][1], "x\uFFFD");
    EXPECT_EQ(c.count("0:2:2"), 0u);
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
    std::vector<std::string> hojas;
    auto c = Celdas(Leer("xlsx", ruta), &hojas);
    ASSERT_EQ(hojas.size(), 3u);
    EXPECT_EQ(hojas[1].substr(0, 12), "Datos (2)|4|");
    EXPECT_EQ(hojas[2].substr(0, 12), "Datos (3)|2|");
    EXPECT_EQ(c["1:0:0"][1], "N");
    EXPECT_EQ(c["1:1:0"][1], "3.0");
    EXPECT_EQ(c["2:1:0"][1], "6.0");
}

TEST_F(LibroXlsxTest, CarpetaInexistenteNoDejaNada) {
    auto ruta = carpeta / "falta" / "x.xlsx";
    LibroXlsx libro(ruta);
    libro.Fila(std::vector{CeldaTabla::Numero(1)});
    EXPECT_THROW(libro.Cerrar(), ErrorEscritura);
    EXPECT_TRUE(std::filesystem::is_empty(carpeta.ruta()));
}

TEST(EscritorTabla, CsvTieneSoloLosRenglonesDeDetalle) {
    CarpetaTemporal carpeta;
    auto ruta = carpeta / "saldos.csv";
    Reporte(*CreaEscritorCsv(ruta.string()));
    auto filas = Leer("csv", ruta);
    ASSERT_EQ(filas.size(), 4u);
    EXPECT_EQ(filas[0], (std::vector<std::string>{"FILA", "Fecha", "Cliente", "Saldo"}));
    EXPECT_EQ(filas[1], (std::vector<std::string>{"FILA", "2024-01-02", "Pérez, Juan", "1500.50"}));
    EXPECT_EQ(filas[3], (std::vector<std::string>{"FILA", "2024-01-04", "García", "0.25"}));
}

TEST(EscritorTabla, XlsConservaTiposYTotalesBajoSuColumna) {
    if (!prueba::HayModuloPython("xlrd")) GTEST_SKIP() << "python3-xlrd no está instalado";
    CarpetaTemporal carpeta;
    auto ruta = carpeta / "saldos.xls";
    Reporte(*CreaEscritorXls(ruta.string()));
    std::vector<std::string> hojas;
    auto c = Celdas(Leer("xls", ruta), &hojas);
    ASSERT_EQ(hojas.size(), 1u);
    EXPECT_EQ(hojas[0].substr(0, 23), "Saldos de clientes|5|3|");
    EXPECT_EQ(c["0:0:0"][1], "Fecha");
    EXPECT_EQ(c["0:0:2"][1], "Saldo");
    EXPECT_EQ(c["0:1:0"],
              (std::vector<std::string>{"fecha", "2024-01-02T00:00:00", "dd/mm/yyyy", "0"}));
    EXPECT_EQ(c["0:2:1"][1], "Ñúñez");
    EXPECT_EQ(c["0:2:2"], (std::vector<std::string>{"numero", "-20.0", "#,##0.00", "0"}));
    // The group footer: its label falls in the client column, the total under Saldo, bold.
    EXPECT_EQ(c["0:4:1"][1], "Total:");
    EXPECT_EQ(c["0:4:2"], (std::vector<std::string>{"numero", "1480.75", "#,##0.00", "1"}));
    for (const auto& [clave, celda] : c) EXPECT_EQ(celda[1].find("Página"), std::string::npos);
}

TEST(EscritorTabla, XlsxIgualQueXls) {
    if (!prueba::HayModuloPython("openpyxl")) GTEST_SKIP() << "python3-openpyxl no está instalado";
    CarpetaTemporal carpeta;
    auto ruta = carpeta / "saldos.xlsx";
    Reporte(*CreaEscritorXlsx(ruta.string()));
    std::vector<std::string> hojas;
    auto c = Celdas(Leer("xlsx", ruta), &hojas);
    ASSERT_EQ(hojas.size(), 1u);
    EXPECT_EQ(hojas[0].substr(0, 23), "Saldos de clientes|5|3|");
    EXPECT_EQ(c["0:3:0"][0], "fecha");
    EXPECT_EQ(c["0:3:2"], (std::vector<std::string>{"numero", "0.25", "#,##0.00", "0"}));
    EXPECT_EQ(c["0:4:2"], (std::vector<std::string>{"numero", "1480.75", "#,##0.00", "1"}));
}

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
