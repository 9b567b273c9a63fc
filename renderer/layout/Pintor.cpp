#include "renderer/layout/Pintor.h"

namespace paratzorep::renderer {

void DibujaPagina(cairo_t* cr, const Pagina& pagina, const Documento& documento, Medidor& medidor) {
    cairo_save(cr);
    cairo_set_source_rgb(cr, 1, 1, 1);
    cairo_paint(cr);
    cairo_set_line_cap(cr, CAIRO_LINE_CAP_SQUARE);
    for (const auto& c : pagina.cajas) {
        cairo_rectangle(cr, c.x, c.y, c.ancho, c.alto);
        if (c.gris >= 0) {
            cairo_set_source_rgb(cr, c.gris, c.gris, c.gris);
            if (c.grosor > 0)
                cairo_fill_preserve(cr);
            else
                cairo_fill(cr);
        }
        if (c.grosor > 0) {
            cairo_set_source_rgb(cr, 0, 0, 0);
            cairo_set_line_width(cr, c.grosor);
            cairo_stroke(cr);
        }
        cairo_new_path(cr);
    }
    cairo_set_source_rgb(cr, 0, 0, 0);
    for (const auto& l : pagina.lineas) {
        cairo_set_line_width(cr, l.grosor);
        cairo_move_to(cr, l.x1, l.y1);
        cairo_line_to(cr, l.x2, l.y2);
        cairo_stroke(cr);
    }
    // All glyphs of the page in one call per font: cairo then writes one text object per
    // font instead of one per line, which halves the cost of a PDF page.
    std::vector<CorridaGlifos> corridas;
    for (const auto& t : pagina.textos) {
        double base = t.y + t.base;
        for (const auto& r : t.renglones) {
            if (!r.texto.empty()) {
                medidor.Glifos(t.fuente, r.texto, t.x + r.dx, base, corridas);
                if (t.fuente < documento.fuentes.size() && documento.fuentes[t.fuente].subrayada) {
                    double tam = documento.fuentes[t.fuente].tamano;
                    cairo_set_line_width(cr, tam * 0.06);
                    cairo_move_to(cr, t.x + r.dx, base + tam * 0.12);
                    cairo_line_to(cr, t.x + r.dx + r.ancho, base + tam * 0.12);
                    cairo_stroke(cr);
                }
            }
            base += t.interlineado;
        }
    }
    for (const auto& c : corridas) {
        cairo_set_scaled_font(cr, c.fuente);
        cairo_show_glyphs(cr, c.glifos.data(), static_cast<int>(c.glifos.size()));
    }
    cairo_restore(cr);
}

}  // namespace paratzorep::renderer
