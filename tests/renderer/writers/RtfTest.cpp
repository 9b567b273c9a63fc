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

TEST(LineasRtf, AgrupaPorLineaBaseYOrdenaPorX) {
    std::string a = "a", b = "b", c = "c", d = "d";
    auto lineas = detail::LineasRtf({{112, 10, 20, Alineacion::Izquierda, 0, 9, &d},
                                     {100.5, 300, 320, Alineacion::Derecha, 0, 9, &b},
                                     {100, 10, 50, Alineacion::Izquierda, 0, 9, &a},
                                     {101, 150, 160, Alineacion::Izquierda, 0, 9, &c}});
    ASSERT_EQ(lineas.size(), 2u);
    std::vector<std::string> orden;
    for (const auto& l : lineas)
        for (const auto& t : l) orden.push_back(*t.texto);
    EXPECT_EQ(orden, (std::vector<std::string>{"a", "c", "b", "d"}));
    EXPECT_EQ(lineas[1].size(), 1u);
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
