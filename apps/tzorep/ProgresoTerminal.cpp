#include "apps/tzorep/ProgresoTerminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdio>
#include <iostream>

namespace paratzorep::cli {

namespace {

constexpr auto kPausa = std::chrono::milliseconds(100);

int anchoDeTerminal() {
    winsize w{};
    if (::ioctl(STDERR_FILENO, TIOCGWINSZ, &w) == 0 && w.ws_col > 0) return w.ws_col;
    return 80;
}

// The first `maximo` characters of a UTF-8 text (continuation bytes do not count).
std::string_view corta(std::string_view texto, int maximo) {
    int caracteres = 0;
    for (size_t i = 0; i < texto.size(); ++i) {
        if ((static_cast<unsigned char>(texto[i]) & 0xC0) == 0x80) continue;
        if (caracteres++ == maximo) return texto.substr(0, i);
    }
    return texto;
}

// The stage a progress text names: its words up to the first colon, dot or figure
// ("Leyendo datos: 1,024 filas" and "Leyendo datos..." are the same stage).
std::string_view etapa(std::string_view texto) {
    const auto fin = texto.find_first_of(":.0123456789");
    return texto.substr(0, fin == std::string_view::npos ? texto.size() : fin);
}

}  // namespace

LineaDeProgreso::LineaDeProgreso(std::ostream& salida, bool activa, int columnas)
    : salida_(salida), activa_(activa), columnas_(columnas) {}

void LineaDeProgreso::muestra(int porcentaje, std::string_view texto, Reloj::time_point ahora) {
    if (!activa_) return;
    if (!empezada_) {
        empezada_ = true;
        inicio_ = ahora;
    } else if (visible_ && porcentaje == ultimoPorcentaje_ && etapa(texto) == ultimaEtapa_ &&
               ahora - ultimo_ < kPausa) {
        return;
    }
    ultimo_ = ahora;
    ultimoPorcentaje_ = porcentaje;
    ultimaEtapa_ = etapa(texto);
    // The time right after the percentage, so that a long text loses only its end.
    // A share not known (-1: rows read so far) leaves the percentage blank.
    char cifras[48];
    const double segundos = std::chrono::duration<double>(ahora - inicio_).count();
    if (porcentaje < 0)
        std::snprintf(cifras, sizeof cifras, "      %4.0f s  ", segundos);
    else
        std::snprintf(cifras, sizeof cifras, "%3d %% %4.0f s  ", porcentaje, segundos);
    std::string linea = cifras;
    linea += texto;
    // One column short of the width, so that the terminal never wraps the line.
    const int ancho = (columnas_ > 0 ? columnas_ : anchoDeTerminal()) - 1;
    salida_ << "\r\033[K" << corta(linea, ancho < 1 ? 1 : ancho) << std::flush;
    visible_ = true;
}

void LineaDeProgreso::oculta() {
    if (!visible_) return;
    salida_ << "\r\033[K" << std::flush;
    visible_ = false;
}

InteraccionTerminal::InteraccionTerminal() : linea_(std::cerr, ::isatty(STDERR_FILENO) != 0) {}

host::Respuesta InteraccionTerminal::Mensaje(const std::string& titulo, const std::string& texto,
                                             host::Icono icono, host::Botones botones) {
    linea_.oculta();
    return InteraccionConsola::Mensaje(titulo, texto, icono, botones);
}

void InteraccionTerminal::Progreso(int porcentaje, const std::string& texto) {
    if (porcentaje == 0 && texto.empty())
        linea_.oculta();
    else
        linea_.muestra(porcentaje, texto);
}

}  // namespace paratzorep::cli
