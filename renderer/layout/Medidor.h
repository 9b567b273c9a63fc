// The one text measurement and shaping path of the renderer. The layout measures and
// breaks texts with it, and the drawing writers (PDF, PNG) take their glyphs from it, so
// a text occupies on paper exactly the width the layout reserved for it.
//
// Shaping goes through pango once per distinct character and font (fontconfig fallback
// included); a text is then the sum of its characters' advances, without kerning, which
// keeps measuring and drawing identical and makes both cheap.
#pragma once

#include <cairo.h>

#include <memory>
#include <string_view>
#include <vector>

#include "renderer/layout/Pagina.h"

namespace paratzorep::renderer {

struct MetricaFuente {
    double ascenso = 0;   // baseline to the top of the line
    double descenso = 0;  // baseline to the bottom of the line
    double AltoLinea() const { return ascenso + descenso; }
};

// Glyphs of one cairo font ready for cairo_show_glyphs.
struct CorridaGlifos {
    cairo_scaled_font_t* fuente = nullptr;  // owned by the Medidor
    std::vector<cairo_glyph_t> glifos;
};

class Medidor {
  public:
    Medidor();
    ~Medidor();
    Medidor(const Medidor&) = delete;
    Medidor& operator=(const Medidor&) = delete;

    // Registers a font (or finds it) and returns its index; indices follow the order of
    // registration, so Fuentes() can be handed to writers as Documento::fuentes.
    std::uint16_t Registra(const Fuente& fuente);
    const std::vector<Fuente>& Fuentes() const;

    MetricaFuente Metrica(std::uint16_t fuente);
    double Ancho(std::uint16_t fuente, std::string_view texto);

    // Breaks a text into lines no wider than `ancho` (at blanks, or inside a word that does
    // not fit alone) and places each line by the alignment. Line breaks in the text are
    // kept. With `multilinea` false the text stays on one line (it may then overflow).
    std::vector<RenglonTexto> Parte(std::uint16_t fuente, std::string_view texto, double ancho,
                                    Alineacion alineacion, bool multilinea);

    // Glyphs of a line with its start at (x, y_base), appended to the run of their cairo
    // font in `salida` (one run per font, whatever the order of the calls).
    void Glifos(std::uint16_t fuente, std::string_view texto, double x, double yBase,
                std::vector<CorridaGlifos>& salida);

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

namespace detail {
// Decodes one UTF-8 character at `i` and advances `i`; invalid bytes read as U+FFFD.
char32_t SiguienteCaracter(std::string_view s, std::size_t& i);
}  // namespace detail

}  // namespace paratzorep::renderer
