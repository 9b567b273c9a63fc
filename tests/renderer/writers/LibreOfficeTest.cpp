// LibreOffice as the second, independent reader: the RTF, the DOC, the XLS and the XLSX
// of the same reports converted to PDF in one call, and read with pdftotext.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "Documentos.h"
#include "Lector.h"
#include "renderer/writers/EscritorRtf.h"
#include "renderer/writers/EscritorTabla.h"

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

TEST(LibreOffice, AbreRtfDocXlsYXlsx) {
    if (!HayPrograma("soffice")) GTEST_SKIP() << "LibreOffice no está instalado";
    CarpetaTemporal carpeta;
    Escribir(*CreaEscritorRtf((carpeta / "rtf.rtf").string()));
    Escribir(*CreaEscritorDoc((carpeta / "doc.doc").string()));
    Reporte(*CreaEscritorXls((carpeta / "xls.xls").string()));
    Reporte(*CreaEscritorXlsx((carpeta / "xlsx.xlsx").string()));
    auto s =
        Ejecutar("cd " + carpeta.ruta().string() + " && HOME=" + carpeta.ruta().string() +
                 " soffice --headless --convert-to pdf rtf.rtf doc.doc xls.xls xlsx.xlsx 2>&1");
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

    // Workbooks: Calc shows the numbers and dates through their formats, so they are
    // numbers and dates to it, not texts.
    for (std::string nombre : {"xls", "xlsx"}) {
        SCOPED_TRACE(nombre);
        auto pdf = carpeta / (nombre + ".pdf");
        ASSERT_TRUE(std::filesystem::exists(pdf)) << s.texto;
        auto texto = Ejecutar("pdftotext -layout " + pdf.string() + " -").texto;
        for (std::string esperado : {"Fecha", "Cliente", "Saldo", "02/01/2024", "Pérez, Juan",
                                     "1,500.50", "Ñúñez", "-20.00", "Total:", "1,480.75"})
            EXPECT_NE(texto.find(esperado), std::string::npos) << esperado << "\n" << texto;
    }
}

}  // namespace
}  // namespace paratzorep::renderer
