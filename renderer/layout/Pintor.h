// Draws a page of the page model on a cairo context (PDF pages, PNG previews), with the
// glyphs of the shared Medidor: the same advances that the layout measured.
#pragma once

#include <cairo.h>

#include "renderer/layout/Medidor.h"
#include "renderer/layout/Pagina.h"

namespace paratzorep::renderer {

// Draws in points; the caller sets any scale (a preview's resolution) beforehand.
void DibujaPagina(cairo_t* cr, const Pagina& pagina, const Documento& documento, Medidor& medidor);

}  // namespace paratzorep::renderer
