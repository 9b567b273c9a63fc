// LibreOffice as the second, independent reader: the RTF and the DOC of the same report
// converted to PDF and read with pdftotext; the XLS and the XLSX of the same data converted
// to CSV (every value as shown) and to PDF (how the sheet prints).
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <map>

#include "Documentos.h"
#include "Lector.h"
#include "renderer/writers/EscritorRtf.h"
#include "renderer/writers/TablaDatos.h"

namespace paratzorep::renderer {
namespace {

using namespace prueba;

// A greyscale PGM as rows of bytes.
struct Imagen {
    int ancho = 0, alto = 0;
    std::string datos;
    bool empty() const { return datos.empty(); }
    int at(int y, int x) const { return static_cast<unsigned char>(datos.at(y * ancho + x)); }
};

Imagen Pixeles(const std::filesystem::path& pgm) {
    std::ifstream in(pgm, std::ios::binary);
    std::string magia;
    Imagen img;
    int maximo = 0;
    if (!(in >> magia >> img.ancho >> img.alto >> maximo) || magia != "P5") return {};
    in.get();
    img.datos.assign(std::istreambuf_iterator<char>(in), {});
    if (img.datos.size() < static_cast<std::size_t>(img.ancho) * img.alto) return {};
    return img;
}

// soffice converting files in `carpeta` (its own profile there).
Salida Convierte(const CarpetaTemporal& carpeta, const std::string& filtro,
                 const std::string& archivos) {
    return Ejecutar("cd " + carpeta.ruta().string() + " && HOME=" + carpeta.ruta().string() +
                    " soffice --headless --convert-to '" + filtro + "' " + archivos + " 2>&1");
}

TEST(LibreOffice, AbreRtfYDoc) {
    if (!HayPrograma("soffice")) GTEST_SKIP() << "LibreOffice no está instalado";
    CarpetaTemporal carpeta;
    Escribir(*CreaEscritorRtf((carpeta / "rtf.rtf").string()));
    Escribir(*CreaEscritorDoc((carpeta / "doc.doc").string()));
    auto s = Convierte(carpeta, "pdf", "rtf.rtf doc.doc");
    ASSERT_EQ(s.estado, 0) << s.texto;

    // Documents: same pages, paper and positions as the layout.
    for (std::string nombre : {"rtf", "doc"}) {
        SCOPED_TRACE(nombre);
        auto pdf = carpeta / (nombre + ".pdf");
        ASSERT_TRUE(std::filesystem::exists(pdf)) << s.texto;
        auto info = Ejecutar("pdfinfo " + pdf.string()).texto;
        EXPECT_NE(info.find("Pages:           2"), std::string::npos) << info;
        EXPECT_NE(info.find("595."), std::string::npos) << info;

        int fechas = 0, importes = 0;
        for (const auto& w : Palabras(pdf)) {
            if (w.texto.size() == 10 && w.texto.substr(2) == "/01/2024") {
                int i = std::stoi(w.texto.substr(0, 2)) - 10;
                ++fechas;
                EXPECT_NEAR(w.x0, 36, 1.5) << w.texto;
                EXPECT_NEAR(w.y0, 80 + i * 14, 3) << w.texto;  // rows do not drift down the page
            } else if (w.texto.find('.') == w.texto.size() - 3 && w.x0 > 300) {
                ++importes;
                EXPECT_NEAR(w.x1, 500, 1.5) << w.texto;  // right aligned on the same edge
            } else if (w.texto == "Ñúñez") {
                EXPECT_NEAR(w.x0, 110, 1.5);
            }
        }
        EXPECT_EQ(fechas, 2 * kFilas);
        EXPECT_EQ(importes, 2 * kFilas);

        // The rule and the grey box, seen on the first page drawn at 1 pixel a point.
        Ejecutar("pdftoppm -r 72 -gray -f 1 -l 1 " + pdf.string() + " " +
                 (carpeta / nombre).string());
        auto pixeles = Pixeles(carpeta / (nombre + "-1.pgm"));
        ASSERT_FALSE(pixeles.empty());
        for (int x : {40, 200, 495}) EXPECT_LT(pixeles.at(70, x), 64) << "regla en x=" << x;
        for (int x : {30, 510}) EXPECT_GT(pixeles.at(70, x), 200) << "fuera de la regla en x=" << x;
        for (int x : {455, 545}) EXPECT_NEAR(pixeles.at(20, x), 128, 16) << "caja en x=" << x;
        EXPECT_GT(pixeles.at(20, 560), 200);
    }
}

// A report's header block and a shaded band, as Writer shows them: the user in the title's
// corner and the print date under it stay where the layout put them (not lines of their own
// that push the rest down), the rule under the block strikes no text, and the band's text
// prints above its shading.
TEST(LibreOffice, RtfComoLaPaginaDelPdf) {
    if (!HayPrograma("soffice")) GTEST_SKIP() << "LibreOffice no está instalado";
    CarpetaTemporal carpeta;
    {
        auto w = CreaEscritorRtf((carpeta / "hoja.rtf").string());
        Documento d;
        d.fuentes = {Fuente{"DejaVu Sans", 8}, Fuente{"DejaVu Sans", 15, true},
                     Fuente{"DejaVu Sans", 10}};
        d.margenIzquierdo = d.margenSuperior = d.margenDerecho = d.margenInferior = 36;
        d.totalPaginas = 1;
        w->Inicia(d);
        renderer::Pagina p;
        auto t = [&p](double x, double y, double ancho, std::string s, Alineacion a, int f,
                      double base) {
            auto e = Texto(TipoBanda::EncabezadoReporte, 1, x, y, ancho, std::move(s), a);
            e.base = base;
            e.fuente = static_cast<std::uint16_t>(f);
            p.textos.push_back(std::move(e));
        };
        t(36, 36, 300, "Bitacora", Alineacion::Izquierda, 1, 14);
        t(456, 39, 100, "ANA", Alineacion::Derecha, 0, 7.4);
        t(456, 50, 100, "23/nov/2026", Alineacion::Derecha, 0, 7.4);
        t(36, 59, 300, "Movimientos", Alineacion::Izquierda, 2, 9.3);
        t(36, 73, 300, "Del 1 al 10", Alineacion::Izquierda, 2, 9.3);
        p.lineas.push_back({36, 93, 556, 93, 2});
        p.cajas.push_back({36, 110, 520, 16, 0, 0.5});
        t(42, 113, 100, "DIA", Alineacion::Izquierda, 1, 14);
        w->Pagina(p);
        w->Termina();
    }
    auto s = Convierte(carpeta, "pdf", "hoja.rtf");
    ASSERT_EQ(s.estado, 0) << s.texto;
    std::map<std::string, Palabra> en;
    for (const auto& w : Palabras(carpeta / "hoja.pdf")) en.emplace(w.texto, w);
    ASSERT_EQ(en.size(), 9u);  // "Del 1 al 10" is four
    // Where the layout put each text's top (the word box starts a little above the ink).
    const std::pair<std::string, double> arriba[] = {
        {"ANA", 39}, {"23/nov/2026", 50}, {"Movimientos", 59}, {"Del", 73}, {"Bitacora", 36}};
    for (const auto& [palabra, y] : arriba) EXPECT_NEAR(en.at(palabra).y0, y, 3) << palabra;
    EXPECT_NEAR(en.at("ANA").x1, 556, 2);
    EXPECT_LT(en.at("Del").y0 + 12, 93);  // above the rule
    Ejecutar("pdftoppm -r 72 -gray " + (carpeta / "hoja.pdf").string() + " " +
             (carpeta / "hoja").string());
    auto pixeles = Pixeles(carpeta / "hoja-1.pgm");
    ASSERT_FALSE(pixeles.empty());
    int tinta = 0;
    for (int y = 112; y < 126; ++y)
        for (int x = 42; x < 80; ++x) tinta += pixeles.at(y, x) < 64;
    EXPECT_GT(tinta, 20) << "el texto de la banda queda bajo el sombreado";
    EXPECT_NEAR(pixeles.at(118, 300), 128, 16);  // the band itself
}

// Workbooks: Calc shows every value through its format (numbers, dates and times are
// numbers to it, and a format with text keeps its value), and prints the sheet one page
// wide, the title row on every page.
TEST(LibreOffice, AbreXlsYXlsxConCadaValor) {
    if (!HayPrograma("soffice")) GTEST_SKIP() << "LibreOffice no está instalado";
    CarpetaTemporal carpeta;
    EscribeDatos(CreaTablaXls((carpeta / "xls.xls").string(), "Saldos"), true);
    EscribeDatos(CreaTablaXlsx((carpeta / "xlsx.xlsx").string(), "Saldos"), true);
    auto s = Convierte(carpeta, "csv:Text - txt - csv (StarCalc):44,34,76,1", "xls.xls xlsx.xlsx");
    ASSERT_EQ(s.estado, 0) << s.texto;
    for (std::string nombre : {"xls", "xlsx"}) {
        SCOPED_TRACE(nombre);
        std::ifstream in(carpeta / (nombre + ".csv"));
        std::string csv{std::istreambuf_iterator<char>(in), {}};
        // Calc quotes the text cells.
        EXPECT_EQ(csv,
                  "\"Fecha\",\"Hora\",\"Cliente\",\"Saldo\",\"Movimientos\"\n"
                  "02/01/2024,08:00:50,\"Pérez, Juan\",\"1,500.50\",3 movimientos\n"
                  "02/01/2024,13:30:00,\"Ñúñez\",-20.00,1 movimientos\n"
                  ",00:00:00,\"García\",0.25,\n");
    }
    // The filter as Calc reads it from the XLS records.
    s = Convierte(carpeta, "ods", "xls.xls");
    ASSERT_EQ(s.estado, 0) << s.texto;
    auto filtro = Ejecutar("unzip -p " + (carpeta / "xls.ods").string() + " content.xml").texto;
    EXPECT_NE(filtro.find("Saldos.A1:Saldos.E4\" table:display-filter-buttons=\"true\""),
              std::string::npos)
        << filtro.substr(0, 2000);
    s = Convierte(carpeta, "pdf", "xls.xls xlsx.xlsx");
    ASSERT_EQ(s.estado, 0) << s.texto;
    for (std::string nombre : {"xls", "xlsx"}) {
        SCOPED_TRACE(nombre);
        auto pdf = carpeta / (nombre + ".pdf");
        auto info = Ejecutar("pdfinfo " + pdf.string()).texto;
        EXPECT_NE(info.find("Pages:           1"), std::string::npos) << info;
        EXPECT_NE(info.find("612 x 792"), std::string::npos) << info;  // Letter, portrait
        auto texto = Ejecutar("pdftotext -layout " + pdf.string() + " -").texto;
        for (std::string esperado : {"Saldos & cargos", "Movimientos", "Página 1 de 1"})
            EXPECT_NE(texto.find(esperado), std::string::npos) << esperado << "\n" << texto;
    }
}

}  // namespace
}  // namespace paratzorep::renderer
