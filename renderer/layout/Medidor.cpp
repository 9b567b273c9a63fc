#include "renderer/layout/Medidor.h"

#include <pango/pangocairo.h>

#include <array>
#include <stdexcept>
#include <string>
#include <unordered_map>

namespace paratzorep::renderer {

namespace detail {

char32_t SiguienteCaracter(std::string_view s, std::size_t& i) {
    auto b = [&](std::size_t k) { return static_cast<unsigned char>(s[k]); };
    unsigned char c = b(i);
    if (c < 0x80) {
        ++i;
        return c;
    }
    int extra = c >= 0xF8 ? -1 : c >= 0xF0 ? 3 : c >= 0xE0 ? 2 : c >= 0xC0 ? 1 : -1;
    if (extra < 0 || i + static_cast<std::size_t>(extra) >= s.size()) {
        ++i;
        return 0xFFFD;
    }
    char32_t cp = c & (0x3F >> extra);
    for (int k = 1; k <= extra; ++k) {
        unsigned char d = b(i + k);
        if ((d & 0xC0) != 0x80) {
            ++i;
            return 0xFFFD;
        }
        cp = (cp << 6) | (d & 0x3F);
    }
    i += extra + 1;
    return cp;
}

struct Glifo {
    PangoFont* fuente = nullptr;  // the font that holds the glyph (fallback included)
    PangoGlyph glifo = 0;
    double avance = 0;
    bool listo = false;
};

template <typename T>
struct LiberaGObject {
    void operator()(T* p) const { g_object_unref(p); }
};

struct FuenteCargada {
    Fuente fuente;
    PangoFontDescription* descripcion = nullptr;
    MetricaFuente metrica;
    std::array<Glifo, 256> latin{};  // ASCII and Latin-1 without a hash look-up
    std::unordered_map<char32_t, Glifo> otros;
};

}  // namespace detail

struct Medidor::Impl {
    std::unique_ptr<PangoFontMap, detail::LiberaGObject<PangoFontMap>> mapa;
    std::unique_ptr<PangoContext, detail::LiberaGObject<PangoContext>> contexto;
    std::unique_ptr<PangoLayout, detail::LiberaGObject<PangoLayout>> layout;
    std::vector<Fuente> fuentes;
    std::vector<std::unique_ptr<detail::FuenteCargada>> cargadas;

    ~Impl() {
        for (auto& c : cargadas) {
            for (auto& g : c->latin)
                if (g.fuente) g_object_unref(g.fuente);
            for (auto& [k, g] : c->otros)
                if (g.fuente) g_object_unref(g.fuente);
            pango_font_description_free(c->descripcion);
        }
    }

    detail::FuenteCargada& Cargada(std::uint16_t i) {
        if (i >= cargadas.size()) throw std::out_of_range("fuente no registrada en el medidor");
        return *cargadas[i];
    }

    // Shapes one character alone; the font of the resulting run is the one fontconfig
    // chose for it, which may be a fallback font for characters the family lacks.
    detail::Glifo Forma(detail::FuenteCargada& f, char32_t c) {
        detail::Glifo g;
        g.listo = true;
        if (c < 0x20 || c == 0x7F) c = ' ';
        gchar buf[8];
        int n = g_unichar_to_utf8(static_cast<gunichar>(c), buf);
        pango_layout_set_font_description(layout.get(), f.descripcion);
        pango_layout_set_text(layout.get(), buf, n);
        PangoLayoutLine* linea = pango_layout_get_line_readonly(layout.get(), 0);
        double avance = 0;
        for (GSList* r = linea ? linea->runs : nullptr; r; r = r->next) {
            auto* run = static_cast<PangoGlyphItem*>(r->data);
            for (int k = 0; k < run->glyphs->num_glyphs; ++k) {
                PangoGlyphInfo& gi = run->glyphs->glyphs[k];
                if (!g.fuente && !(gi.glyph & PANGO_GLYPH_UNKNOWN_FLAG) &&
                    gi.glyph != PANGO_GLYPH_EMPTY) {
                    g.fuente = PANGO_FONT(g_object_ref(run->item->analysis.font));
                    g.glifo = gi.glyph;
                }
                avance += static_cast<double>(gi.geometry.width) / PANGO_SCALE;
            }
        }
        g.avance = avance;
        // The advance that cairo itself will use when drawing the glyph: a PDF then needs
        // no per-glyph position corrections, and measuring and drawing agree exactly.
        if (g.fuente) {
            cairo_scaled_font_t* sf = pango_cairo_font_get_scaled_font(PANGO_CAIRO_FONT(g.fuente));
            cairo_glyph_t cg{g.glifo, 0, 0};
            cairo_text_extents_t ext;
            cairo_scaled_font_glyph_extents(sf, &cg, 1, &ext);
            if (cairo_scaled_font_status(sf) == CAIRO_STATUS_SUCCESS) g.avance = ext.x_advance;
        }
        return g;
    }

    const detail::Glifo& GlifoDe(detail::FuenteCargada& f, char32_t c) {
        detail::Glifo* g;
        if (c < 256)
            g = &f.latin[c];
        else
            g = &f.otros[c];
        if (!g->listo) *g = Forma(f, c);
        return *g;
    }
};

Medidor::Medidor() : impl_(std::make_unique<Impl>()) {
    impl_->mapa.reset(pango_cairo_font_map_new());
    pango_cairo_font_map_set_resolution(PANGO_CAIRO_FONT_MAP(impl_->mapa.get()), 72.0);
    impl_->contexto.reset(pango_font_map_create_context(impl_->mapa.get()));
    // Unhinted metrics: the same advances on a 96 dpi preview as in the PDF.
    cairo_font_options_t* opciones = cairo_font_options_create();
    cairo_font_options_set_hint_metrics(opciones, CAIRO_HINT_METRICS_OFF);
    cairo_font_options_set_hint_style(opciones, CAIRO_HINT_STYLE_NONE);
    pango_cairo_context_set_font_options(impl_->contexto.get(), opciones);
    cairo_font_options_destroy(opciones);
    pango_cairo_context_set_resolution(impl_->contexto.get(), 72.0);
    // At 72 dpi a pixel is a point: rounded positions would move glyphs by up to half a point.
    pango_context_set_round_glyph_positions(impl_->contexto.get(), FALSE);
    impl_->layout.reset(pango_layout_new(impl_->contexto.get()));
}

Medidor::~Medidor() = default;

std::uint16_t Medidor::Registra(const Fuente& fuente) {
    for (std::size_t i = 0; i < impl_->fuentes.size(); ++i)
        if (impl_->fuentes[i] == fuente) return static_cast<std::uint16_t>(i);
    if (impl_->fuentes.size() >= 0xFFFF)
        throw std::length_error("demasiadas fuentes en el reporte");
    auto c = std::make_unique<detail::FuenteCargada>();
    c->fuente = fuente;
    c->descripcion = pango_font_description_new();
    pango_font_description_set_family(c->descripcion, fuente.familia.c_str());
    pango_font_description_set_size(c->descripcion,
                                    static_cast<gint>(fuente.tamano * PANGO_SCALE + 0.5));
    pango_font_description_set_weight(c->descripcion,
                                      fuente.negrita ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
    pango_font_description_set_style(c->descripcion,
                                     fuente.cursiva ? PANGO_STYLE_ITALIC : PANGO_STYLE_NORMAL);
    PangoFontMetrics* m = pango_context_get_metrics(impl_->contexto.get(), c->descripcion,
                                                    pango_language_from_string("es"));
    c->metrica.ascenso = static_cast<double>(pango_font_metrics_get_ascent(m)) / PANGO_SCALE;
    c->metrica.descenso = static_cast<double>(pango_font_metrics_get_descent(m)) / PANGO_SCALE;
    pango_font_metrics_unref(m);
    impl_->cargadas.push_back(std::move(c));
    impl_->fuentes.push_back(fuente);
    return static_cast<std::uint16_t>(impl_->fuentes.size() - 1);
}

const std::vector<Fuente>& Medidor::Fuentes() const {
    return impl_->fuentes;
}

MetricaFuente Medidor::Metrica(std::uint16_t fuente) {
    return impl_->Cargada(fuente).metrica;
}

double Medidor::Ancho(std::uint16_t fuente, std::string_view texto) {
    auto& f = impl_->Cargada(fuente);
    double ancho = 0;
    for (std::size_t i = 0; i < texto.size();) {
        char32_t c = detail::SiguienteCaracter(texto, i);
        ancho += impl_->GlifoDe(f, c).avance;
    }
    return ancho;
}

namespace {

RenglonTexto Coloca(std::string texto, double medido, double ancho, Alineacion a) {
    double dx = 0;
    if (a == Alineacion::Derecha)
        dx = ancho - medido;
    else if (a == Alineacion::Centro)
        dx = (ancho - medido) / 2;
    return {std::move(texto), dx, medido};
}

}  // namespace

std::vector<RenglonTexto> Medidor::Parte(std::uint16_t fuente, std::string_view texto, double ancho,
                                         Alineacion alineacion, bool multilinea) {
    auto& f = impl_->Cargada(fuente);
    std::vector<RenglonTexto> renglones;
    if (!multilinea) {
        // One line: line breaks and tabs become blanks.
        std::string plano(texto);
        for (char& c : plano)
            if (c == '\n' || c == '\r' || c == '\t') c = ' ';
        double w = Ancho(fuente, plano);
        renglones.push_back(Coloca(std::move(plano), w, ancho, alineacion));
        return renglones;
    }
    std::size_t inicioParrafo = 0;
    while (inicioParrafo <= texto.size()) {
        std::size_t fin = texto.find('\n', inicioParrafo);
        if (fin == std::string_view::npos) fin = texto.size();
        std::string_view parrafo = texto.substr(inicioParrafo, fin - inicioParrafo);
        if (!parrafo.empty() && parrafo.back() == '\r') parrafo.remove_suffix(1);

        // Greedy breaking: the line grows while it fits; a break goes at the last blank,
        // or before the character that overflows when the line has no blank.
        std::size_t lineaInicio = 0;
        while (true) {
            double w = 0, wHastaBlanco = 0;
            std::size_t ultimoBlanco = std::string_view::npos;
            std::size_t i = lineaInicio, corte = parrafo.size();
            bool desborda = false;
            while (i < parrafo.size()) {
                std::size_t antes = i;
                char32_t c = detail::SiguienteCaracter(parrafo, i);
                double a = impl_->GlifoDe(f, c == '\t' ? U' ' : c).avance;
                if (c == ' ' || c == '\t') {
                    ultimoBlanco = antes;
                    wHastaBlanco = w;
                }
                if (w + a > ancho + 0.01 && c != ' ' && antes > lineaInicio) {
                    desborda = true;
                    corte = antes;
                    break;
                }
                w += a;
            }
            if (!desborda) {
                std::string t(parrafo.substr(lineaInicio));
                while (!t.empty() && t.back() == ' ') {
                    t.pop_back();
                    w -= impl_->GlifoDe(f, U' ').avance;
                }
                renglones.push_back(Coloca(std::move(t), w, ancho, alineacion));
                break;
            }
            std::size_t siguiente;
            if (ultimoBlanco != std::string_view::npos && ultimoBlanco > lineaInicio) {
                corte = ultimoBlanco;
                w = wHastaBlanco;
                siguiente = ultimoBlanco;
                while (siguiente < parrafo.size() &&
                       (parrafo[siguiente] == ' ' || parrafo[siguiente] == '\t'))
                    ++siguiente;
            } else {
                w = Ancho(fuente, parrafo.substr(lineaInicio, corte - lineaInicio));
                siguiente = corte;
            }
            std::string t(parrafo.substr(lineaInicio, corte - lineaInicio));
            while (!t.empty() && t.back() == ' ') {
                t.pop_back();
                w -= impl_->GlifoDe(f, U' ').avance;
            }
            renglones.push_back(Coloca(std::move(t), w, ancho, alineacion));
            lineaInicio = siguiente;
            if (lineaInicio >= parrafo.size()) break;
        }
        if (fin >= texto.size()) break;
        inicioParrafo = fin + 1;
    }
    return renglones;
}

void Medidor::Glifos(std::uint16_t fuente, std::string_view texto, double x, double yBase,
                     std::vector<CorridaGlifos>& salida) {
    auto& f = impl_->Cargada(fuente);
    PangoFont* actual = nullptr;
    CorridaGlifos* corrida = nullptr;
    for (std::size_t i = 0; i < texto.size();) {
        char32_t c = detail::SiguienteCaracter(texto, i);
        const detail::Glifo& g = impl_->GlifoDe(f, c);
        if (g.fuente && c != ' ') {
            if (g.fuente != actual || !corrida) {
                actual = g.fuente;
                cairo_scaled_font_t* sf =
                    pango_cairo_font_get_scaled_font(PANGO_CAIRO_FONT(g.fuente));
                corrida = nullptr;
                for (auto& c2 : salida)
                    if (c2.fuente == sf) corrida = &c2;
                if (!corrida) {
                    salida.push_back({sf, {}});
                    corrida = &salida.back();
                }
            }
            corrida->glifos.push_back({g.glifo, x, yBase});
        }
        x += g.avance;
    }
}

}  // namespace paratzorep::renderer
