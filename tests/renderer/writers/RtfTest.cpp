// RTF and DOC writers read back with unrtf and, where installed, LibreOffice (its PDF
// export measured with pdftotext shows where the texts landed on which page).
#include "renderer/writers/EscritorRtf.h"

#include <gtest/gtest.h>

#include "Documentos.h"
#include "Lector.h"
#include "renderer/writers/ErrorEscritura.h"

namespace paratzorep::renderer {
namespace {

using namespace prueba;

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

// Lines are the texts on the baseline of the largest one whose height they share, left to
// right; a text that shares the height but not the baseline, or collides with a piece of the
// line, goes in a text box.
TEST(LineasRtf, AgrupaPorAlturaYApartaLoQueChoca) {
    std::string a = "a", b = "b", c = "c", d = "d", titulo = "Título", usuario = "ANA",
                fecha = "23/nov/2026", sub = "Movimientos";
    auto d1 = detail::LineasRtf({{112, 10, 20, Alineacion::Izquierda, 0, 9, &d},
                                 {100.5, 300, 320, Alineacion::Derecha, 0, 9, &b},
                                 {100, 10, 50, Alineacion::Izquierda, 0, 9, &a},
                                 {101, 150, 160, Alineacion::Izquierda, 0, 9, &c}});
    auto textos = [](const detail::LineasDePagina& l) {
        std::vector<std::string> r;
        for (const auto& linea : l.lineas) {
            std::string t;
            for (const auto& p : linea) t += (t.empty() ? "" : "|") + *p.texto;
            r.push_back(t);
        }
        for (const auto& p : l.sueltas) r.push_back("caja:" + *p.texto);
        return r;
    };
    EXPECT_EQ(textos(d1), (std::vector<std::string>{"a|c|b", "d"}));
    // A report's header block: a large title with the user on its right, the print date
    // under the user, a subtitle below the title.
    auto d2 = detail::LineasRtf({{14, 0, 150, Alineacion::Izquierda, 1, 15, &titulo},
                                 {10, 450, 500, Alineacion::Derecha, 0, 8, &usuario},
                                 {21.6, 440, 500, Alineacion::Derecha, 0, 8, &fecha},
                                 {32, 0, 120, Alineacion::Izquierda, 0, 10, &sub}});
    EXPECT_EQ(textos(d2),
              (std::vector<std::string>{"Título", "Movimientos", "caja:ANA", "caja:23/nov/2026"}));
}

TEST(EscritorRtf, UnrtfLeeLineasConSusColumnas) {
    if (!HayPrograma("unrtf")) GTEST_SKIP() << "unrtf no está instalado";
    CarpetaTemporal carpeta;
    auto ruta = carpeta / "saldos.rtf";
    Escribir(*CreaEscritorRtf(ruta.string()));
    auto s = Ejecutar(Lector() + " rtf " + ruta.string());
    ASSERT_EQ(s.estado, 0);
    auto lineas = Campos(s.texto);
    ASSERT_EQ(lineas.size(), 2u * (kFilas + 1));
    EXPECT_EQ(lineas[0][1], "Saldos de clientes — página 1");
    for (int i = 0; i < kFilas; ++i)
        EXPECT_EQ(lineas[1 + i][1],
                  std::to_string(10 + i) + "/01/2024\t" + Cliente(i) + "\t" + Importe(i));
    EXPECT_EQ(lineas[kFilas + 1][1], "Saldos de clientes — página 2");
}

TEST(EscritorRtf, PaginaSinIniciarEsUnError) {
    CarpetaTemporal carpeta;
    EscritorRtf sinIniciar(carpeta / "a.rtf");
    EXPECT_THROW(sinIniciar.Pagina(renderer::Pagina{}), ErrorEscritura);
}

}  // namespace
}  // namespace paratzorep::renderer
