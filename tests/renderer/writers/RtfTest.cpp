// RTF and DOC writers read back with unrtf and, where installed, LibreOffice (its PDF
// export measured with pdftotext shows where the texts landed on which page).
#include "renderer/writers/EscritorRtf.h"

#include <gtest/gtest.h>

#include <cmath>
#include <regex>

#include "Lector.h"
#include "renderer/writers/ErrorEscritura.h"

namespace paratzorep::renderer {
namespace {

using prueba::CarpetaTemporal;

TEST(TextoRtf, EscapesYUnicode) {
    struct Caso {
        std::string entrada, salida;
    } casos[] = {
        {"Saldo {total} \\ fin", "Saldo \\{total\\} \\\\ fin"},
        {"Año", "A\\u241\\'f1o"},
        {"€ 5", "\\u8364\\'80 5"},
        {"“cita”", "\\u8220\\'93cita\\u8221\\'94"},
        {"日", "\\u26085?"},
        {"\xEF\xBF\xBD", "\\u-3?"},
        {"😀", "\\u-10179?\\u-8704?"},
        {"a\tb", "a\\tab b"},
        {"a\nb\rc", "a b c"},
    };
    for (const auto& c : casos) EXPECT_EQ(detail::TextoRtf(c.entrada), c.salida) << c.entrada;
}

TEST(LineasRtf, AgrupaPorLineaBaseYOrdenaPorX) {
    std::string a = "a", b = "b", c = "c", d = "d";
    auto lineas = detail::LineasRtf({{112, 10, 20, Alineacion::Izquierda, 0, 9, &d},
                                     {100.5, 300, 320, Alineacion::Derecha, 0, 9, &b},
                                     {100, 10, 50, Alineacion::Izquierda, 0, 9, &a},
                                     {101, 150, 160, Alineacion::Izquierda, 0, 9, &c}});
    ASSERT_EQ(lineas.size(), 2u);
    ASSERT_EQ(lineas[0].size(), 3u);
    EXPECT_EQ(*lineas[0][0].texto, "a");
    EXPECT_EQ(*lineas[0][1].texto, "c");
    EXPECT_EQ(*lineas[0][2].texto, "b");
    EXPECT_EQ(*lineas[1][0].texto, "d");
}

// Two A4 pages of 40 rows: date, client (left aligned) and amount (right aligned
// at x = 500), under a bold centred title.
constexpr int kFilas = 40;

std::string Cliente(int i) {
    return i % 2 ? "Pérez, Juan {x}" : "Ñúñez & Cía";
}
std::string Importe(int i) {
    char buf[32];
    std::snprintf(buf, sizeof buf, "%.2f", i * 1234.5);
    return buf;
}

void Escribir(Escritor& w) {
    Documento d;
    d.titulo = "Saldos";
    d.fuentes = {Fuente{}, Fuente{"DejaVu Sans", 12, true}};
    d.margenIzquierdo = d.margenSuperior = d.margenDerecho = d.margenInferior = 36;
    d.totalPaginas = 2;
    w.Inicia(d);
    for (int pg = 1; pg <= 2; ++pg) {
        renderer::Pagina p;
        p.numero = pg;
        auto t = [&p](double x, double y, double ancho, std::string s, Alineacion a, int f = 0) {
            ElementoTexto e;
            e.x = x;
            e.y = y;
            e.ancho = ancho;
            e.alto = 12;
            e.base = 9;
            e.fuente = static_cast<std::uint16_t>(f);
            e.alineacion = a;
            double m = 5.0 * static_cast<double>(s.size());
            double dx = a == Alineacion::Derecha  ? ancho - m
                        : a == Alineacion::Centro ? (ancho - m) / 2
                                                  : 0;
            e.renglones.push_back({std::move(s), dx, m});
            p.textos.push_back(std::move(e));
        };
        t(36, 40, 520, "Saldos de clientes — página " + std::to_string(pg), Alineacion::Centro, 1);
        for (int i = 0; i < kFilas; ++i) {
            double y = 80 + i * 14;
            t(420, y, 80, Importe(i), Alineacion::Derecha);
            t(36, y, 60, std::to_string(10 + i) + "/01/2024", Alineacion::Izquierda);
            t(110, y, 200, Cliente(i), Alineacion::Izquierda);
        }
        w.Pagina(p);
    }
    w.Termina();
}

TEST(EscritorRtf, UnrtfLeeLineasConSusColumnas) {
    if (!prueba::HayPrograma("unrtf")) GTEST_SKIP() << "unrtf no está instalado";
    CarpetaTemporal carpeta;
    auto ruta = carpeta / "saldos.rtf";
    Escribir(*CreaEscritorRtf(ruta.string()));
    auto s = prueba::Ejecutar(prueba::Lector() + " rtf " + ruta.string());
    ASSERT_EQ(s.estado, 0);
    auto lineas = prueba::Campos(s.texto);
    ASSERT_EQ(lineas.size(), 2u * (kFilas + 1));
    EXPECT_EQ(lineas[0][1], "Saldos de clientes — página 1");
    for (int i = 0; i < kFilas; ++i)
        EXPECT_EQ(lineas[1 + i][1],
                  std::to_string(10 + i) + "/01/2024\t" + Cliente(i) + "\t" + Importe(i));
    EXPECT_EQ(lineas[kFilas + 1][1], "Saldos de clientes — página 2");
}

TEST(EscritorRtf, SinIniciarOCarpetaInexistente) {
    CarpetaTemporal carpeta;
    EscritorRtf sinIniciar(carpeta / "a.rtf");
    EXPECT_THROW(sinIniciar.Pagina(renderer::Pagina{}), ErrorEscritura);
    EscritorRtf sinCarpeta(carpeta / "no" / "a.rtf");
    EXPECT_THROW(sinCarpeta.Inicia(Documento{}), ErrorEscritura);
}

// LibreOffice opens both the RTF and the DOC: same pages, paper and positions as the layout.
struct Palabra {
    int pagina;
    double x0, y0, x1;
    std::string texto;
};

std::vector<Palabra> Palabras(const std::filesystem::path& pdf) {
    auto s = prueba::Ejecutar("pdftotext -bbox " + pdf.string() + " -");
    std::vector<Palabra> r;
    int pagina = 0;
    std::regex palabra(
        R"re(<word xMin="([\d.]+)" yMin="([\d.]+)" xMax="([\d.]+)" yMax="[\d.]+">(.*)</word>)re");
    std::istringstream in(s.texto);
    std::string linea;
    while (std::getline(in, linea)) {
        if (linea.find("<page ") != std::string::npos) ++pagina;
        std::smatch m;
        if (std::regex_search(linea, m, palabra))
            r.push_back({pagina, std::stod(m[1]), std::stod(m[2]), std::stod(m[3]), m[4]});
    }
    return r;
}

TEST(EscritorRtf, LibreOfficeRespetaPaginasYPosiciones) {
    if (!prueba::HayPrograma("soffice")) GTEST_SKIP() << "LibreOffice no está instalado";
    CarpetaTemporal carpeta;
    Escribir(*CreaEscritorRtf((carpeta / "saldos.rtf").string()));
    Escribir(*CreaEscritorDoc((carpeta / "saldosdoc.doc").string()));
    auto s =
        prueba::Ejecutar("cd " + carpeta.ruta().string() + " && HOME=" + carpeta.ruta().string() +
                         " soffice --headless --convert-to pdf saldos.rtf saldosdoc.doc 2>&1");
    ASSERT_EQ(s.estado, 0) << s.texto;
    for (std::string nombre : {"saldos", "saldosdoc"}) {
        SCOPED_TRACE(nombre);
        auto pdf = carpeta / (nombre + ".pdf");
        ASSERT_TRUE(std::filesystem::exists(pdf)) << s.texto;
        auto info = prueba::Ejecutar("pdfinfo " + pdf.string()).texto;
        EXPECT_NE(info.find("Pages:           2"), std::string::npos) << info;
        EXPECT_NE(info.find("595."), std::string::npos) << info;

        auto palabras = Palabras(pdf);
        int fechas = 0, importes = 0;
        for (const auto& w : palabras) {
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
    }
}

}  // namespace
}  // namespace paratzorep::renderer
