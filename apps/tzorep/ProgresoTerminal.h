// Progress of long work on a terminal: one line on stderr, redrawn in place, that the
// commands' interaction sink draws from the component's progress reports. When stderr is
// not a terminal (scripts, pipes, tests) nothing is drawn.
#pragma once

#include <chrono>
#include <ostream>
#include <string>
#include <string_view>

#include "host/Interaccion.h"

namespace paratzorep::cli {

// Draws " 42 %   12 s  texto" on one line, in place, cut to the terminal's width (the
// percentage blank when it is -1, not known); the time counts from the first line drawn. While the
// percentage and the stage (the text's words before its figures) stay the same, the line is
// redrawn at most ten times a second; a new stage is always drawn. Inactive, it writes nothing.
class LineaDeProgreso {
  public:
    using Reloj = std::chrono::steady_clock;

    // `columnas` 0: the terminal's width, asked at each draw.
    LineaDeProgreso(std::ostream& salida, bool activa, int columnas = 0);
    ~LineaDeProgreso() { oculta(); }
    LineaDeProgreso(const LineaDeProgreso&) = delete;
    LineaDeProgreso& operator=(const LineaDeProgreso&) = delete;

    void muestra(int porcentaje, std::string_view texto) {
        muestra(porcentaje, texto, Reloj::now());
    }
    void muestra(int porcentaje, std::string_view texto, Reloj::time_point ahora);
    // Clears the line, if one is drawn.
    void oculta();
    bool activa() const { return activa_; }

  private:
    std::ostream& salida_;
    bool activa_;
    int columnas_;
    bool visible_ = false, empezada_ = false;
    int ultimoPorcentaje_ = -1;
    std::string ultimaEtapa_;
    Reloj::time_point inicio_, ultimo_;
};

// The console sink (messages to stderr as "Titulo: texto") with progress drawn on the
// terminal: Progreso(p, texto) shows the line, Progreso(0, "") hides it, and a message first
// clears it. Active when stderr is a terminal.
class InteraccionTerminal : public host::InteraccionConsola {
  public:
    InteraccionTerminal();
    host::Respuesta Mensaje(const std::string& titulo, const std::string& texto, host::Icono icono,
                            host::Botones botones) override;
    void Progreso(int porcentaje, const std::string& texto) override;

  protected:
    LineaDeProgreso linea_;
};

}  // namespace paratzorep::cli
