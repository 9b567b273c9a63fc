#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <regex>
#include <sstream>

#include <set>

#include "renderer/writers/ErrorEscritura.h"
#include "renderer/writers/Muestra.h"
#include "renderer/writers/PdfEscritor.h"
#include "renderer/writers/PngEscritor.h"
#include "renderer/writers/TxtEscritor.h"

namespace paratzorep::renderer {
namespace {

namespace fs = std::filesystem;

struct CarpetaTemporal {
    fs::path ruta;
    CarpetaTemporal() {
        char plantilla[] = "/tmp/tz-escritores-XXXXXX";
        ruta = mkdtemp(plantilla);
    }
    ~CarpetaTemporal() {
        std::error_code ec;
        fs::remove_all(ruta, ec);
    }
};

std::string Ejecuta(const std::string& orden) {
    std::unique_ptr<FILE, int (*)(FILE*)> p(popen(orden.c_str(), "r"), pclose);
    std::string salida;
    std::array<char, 4096> buf;
    while (p && fgets(buf.data(), buf.size(), p.get())) salida += buf.data();
    return salida;
}

// Lays out the sample report and replays it to the given writers.
int RenderMuestra(int clientes, Medidor& medidor, const std::vector<Escritor*>& escritores) {
    Plantilla p = LeePlantillaTexto(prueba::kPlantillaMuestra, "muestra.rpt");
    auto datos = prueba::DatosMuestra(clientes);
    ListaPaginas lista;
    Maquetador m(p, medidor, 1709640000);
    auto r = m.Maqueta(datos, lista);
    lista.Reproduce(m.DocumentoSalida(), medidor, escritores);
    return r.paginas;
}

TEST(PdfEscritor, SeLeeConPdftotextConColumnasAlineadasYPaginaDeTotal) {
    CarpetaTemporal tmp;
    Medidor medidor;
    std::string pdf = (tmp.ruta / "muestra.pdf").string();
    PdfEscritor escritor(pdf, medidor);
    int paginas = RenderMuestra(20, medidor, {&escritor});
    ASSERT_GE(paginas, 2);
    std::string texto = Ejecuta("pdftotext -layout '" + pdf + "' -");
    EXPECT_NE(texto.find("Antigüedad de saldos"), std::string::npos);
    EXPECT_NE(texto.find("Ferretería Núñez"), std::string::npos);
    EXPECT_NE(texto.find("Página 1 de " + std::to_string(paginas)), std::string::npos);
    EXPECT_NE(texto.find("Página " + std::to_string(paginas) + " de " + std::to_string(paginas)),
              std::string::npos);
    EXPECT_NE(texto.find("Total general"), std::string::npos);
    EXPECT_NE(texto.find("/mar/2024"), std::string::npos);

    // Amounts end at the same x on every line of the first page (word boxes as read back
    // by pdftotext).
    std::string cajas = Ejecuta("pdftotext -bbox -f 1 -l 1 '" + pdf + "' -");
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
    std::string fuentes = Ejecuta("pdffonts '" + pdf + "'");
    EXPECT_NE(fuentes.find("DejaVuSans"), std::string::npos);
    EXPECT_EQ(fuentes.find(" no  "), std::string::npos) << fuentes;
}

TEST(PdfEscritor, CarpetaInexistenteDaUnErrorClaro) {
    Medidor medidor;
    PdfEscritor escritor("/no/existe/reporte.pdf", medidor);
    try {
        RenderMuestra(1, medidor, {&escritor});
        FAIL() << "se esperaba ErrorEscritura";
    } catch (const ErrorEscritura& e) {
        EXPECT_NE(std::string(e.what()).find("PDF"), std::string::npos);
        EXPECT_EQ(e.archivo(), "/no/existe/reporte.pdf");
    }
}

TEST(PngEscritor, UnaImagenPorPagina) {
    CarpetaTemporal tmp;
    Medidor medidor;
    PngEscritor escritor((tmp.ruta / "vista").string(), medidor, 72);
    int paginas = RenderMuestra(20, medidor, {&escritor});
    for (int i = 1; i <= paginas; ++i) {
        std::ifstream f(escritor.ArchivoPagina(i), std::ios::binary);
        ASSERT_TRUE(f) << escritor.ArchivoPagina(i);
        char cabecera[8] = {};
        f.read(cabecera, 8);
        EXPECT_EQ(std::string(cabecera + 1, 3), "PNG");
    }
    EXPECT_FALSE(fs::exists(escritor.ArchivoPagina(paginas + 1)));
}

}  // namespace
}  // namespace paratzorep::renderer
