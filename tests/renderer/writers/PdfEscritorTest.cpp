// The PDF and PNG writers on the sample report, read back with poppler's tools.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <regex>

#include "Lector.h"
#include "Muestra.h"
#include "renderer/writers/PdfEscritor.h"
#include "renderer/writers/PngEscritor.h"

namespace paratzorep::renderer {
namespace {

using prueba::CarpetaTemporal;
using prueba::Ejecutar;
using prueba::RenderMuestra;

TEST(PdfEscritor, SeLeeConPdftotextConColumnasAlineadasYPaginaDeTotal) {
    CarpetaTemporal tmp;
    Medidor medidor;
    std::string pdf = (tmp / "muestra.pdf").string();
    PdfEscritor escritor(pdf, medidor);
    int paginas = RenderMuestra(20, medidor, {&escritor});
    ASSERT_GE(paginas, 2);
    std::string texto = Ejecutar("pdftotext -layout '" + pdf + "' -").texto;
    EXPECT_NE(texto.find("Antigüedad de saldos"), std::string::npos);
    EXPECT_NE(texto.find("Ferretería Núñez"), std::string::npos);
    EXPECT_NE(texto.find("Página 1 de " + std::to_string(paginas)), std::string::npos);
    EXPECT_NE(texto.find("Página " + std::to_string(paginas) + " de " + std::to_string(paginas)),
              std::string::npos);
    EXPECT_NE(texto.find("Total general"), std::string::npos);
    EXPECT_NE(texto.find("/mar/2024"), std::string::npos);

    // Amounts end at the same x on every line of the first page (word boxes as read back
    // by pdftotext).
    std::string cajas = Ejecutar("pdftotext -bbox -f 1 -l 1 '" + pdf + "' -").texto;
    std::regex palabra(
        R"re(<word xMin="([\d.]+)" yMin="[\d.]+" xMax="([\d.]+)" yMax="[\d.]+">(\d{1,3}(,\d{3})*\.\d\d)</word>)re");
    double minimo = 1e9, maximo = 0;
    int importes = 0;
    for (std::sregex_iterator it(cajas.begin(), cajas.end(), palabra), fin; it != fin; ++it) {
        double xMax = std::stod((*it)[2]);
        minimo = std::min(minimo, xMax);
        maximo = std::max(maximo, xMax);
        ++importes;
    }
    EXPECT_GE(importes, 20);
    EXPECT_LT(maximo - minimo, 0.5) << "importes desalineados";

    // Fonts are embedded.
    std::string fuentes = Ejecutar("pdffonts '" + pdf + "'").texto;
    EXPECT_NE(fuentes.find("DejaVuSans"), std::string::npos);
    EXPECT_EQ(fuentes.find(" no  "), std::string::npos) << fuentes;
}

TEST(PngEscritor, UnaImagenPorPagina) {
    CarpetaTemporal tmp;
    Medidor medidor;
    PngEscritor escritor((tmp / "vista").string(), medidor, 72);
    int paginas = RenderMuestra(20, medidor, {&escritor});
    for (int i = 1; i <= paginas; ++i) {
        std::ifstream f(escritor.ArchivoPagina(i), std::ios::binary);
        ASSERT_TRUE(f) << escritor.ArchivoPagina(i);
        char cabecera[8] = {};
        f.read(cabecera, 8);
        EXPECT_EQ(std::string(cabecera + 1, 3), "PNG");
    }
    EXPECT_FALSE(std::filesystem::exists(escritor.ArchivoPagina(paginas + 1)));
}

}  // namespace
}  // namespace paratzorep::renderer
