// The progress line of the terminal: drawn in place, cut to the width, not redrawn more than
// ten times a second at the same percentage and stage, cleared once; inactive, silent.
#include "apps/tzorep/ProgresoTerminal.h"

#include <gtest/gtest.h>

#include <sstream>

namespace paratzorep::cli {
namespace {

using std::chrono::milliseconds;

constexpr const char* kBorra = "\r\033[K";

struct Paso {
    int ms;  // since the first step
    int porcentaje;
    const char* texto;  // nullptr: hide
    std::string escrito;
};

TEST(LineaDeProgreso, DibujaEnSuLugarSinRepetirseDeMasYSeBorraUnaVez) {
    const std::vector<Paso> pasos = {
        {0, 5, "Catálogos", std::string(kBorra) + "  5 %    0 s  Catálogos"},
        {40, 5, "Catálogos: líneas", ""},  // same percentage and stage within 100 ms
        {50, 5, "Movimientos de 2025-01",  // a new stage is drawn at once
         std::string(kBorra) + "  5 %    0 s  Movimientos de 2025-01"},
        {60, 6, "Movimientos de 2025-01",
         std::string(kBorra) + "  6 %    0 s  Movimientos de 2025-01"},
        {2400, 6, "Movimientos de 2025-02",
         std::string(kBorra) + "  6 %    2 s  Movimientos de 2025-02"},
        // Cut to 39 characters of a 40-column terminal, "á" counting as one.
        {2600, 100, "Catálogos, líneas, márgenes y sucursales",
         std::string(kBorra) + "100 %    3 s  Catálogos, líneas, márgen"},
        {2650, -1, "Leyendo datos: 1,024 filas",
         std::string(kBorra) + "         3 s  Leyendo datos: 1,024 fila"},
        {2700, 0, nullptr, kBorra},
        {2800, 0, nullptr, ""},
    };
    std::ostringstream salida;
    LineaDeProgreso linea(salida, true, 40);
    const auto t0 = LineaDeProgreso::Reloj::now();
    for (const auto& p : pasos) {
        salida.str("");
        if (p.texto)
            linea.muestra(p.porcentaje, p.texto, t0 + milliseconds(p.ms));
        else
            linea.oculta();
        EXPECT_EQ(salida.str(), p.escrito) << "a los " << p.ms << " ms";
    }
}

TEST(LineaDeProgreso, InactivaNoEscribeNada) {
    std::ostringstream salida;
    {
        LineaDeProgreso linea(salida, false, 80);
        linea.muestra(50, "Catálogos");
        linea.oculta();
        linea.muestra(100, "Fin");
    }
    EXPECT_EQ(salida.str(), "");
}

}  // namespace
}  // namespace paratzorep::cli
