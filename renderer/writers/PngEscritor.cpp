#include "renderer/writers/PngEscritor.h"

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <memory>

#include "renderer/layout/Pintor.h"
#include "renderer/writers/ErrorEscritura.h"

namespace paratzorep::renderer {

namespace {
struct LiberaSuperficie {
    void operator()(cairo_surface_t* s) const { cairo_surface_destroy(s); }
};
struct LiberaContexto {
    void operator()(cairo_t* c) const { cairo_destroy(c); }
};
}  // namespace

PngEscritor::PngEscritor(std::string carpeta, Medidor& medidor, double ppp)
    : carpeta_(std::move(carpeta)), medidor_(medidor), ppp_(ppp) {}

std::string PngEscritor::ArchivoPagina(int numero) const {
    char nombre[32];
    std::snprintf(nombre, sizeof nombre, "pagina-%04d.png", numero);
    return (std::filesystem::path(carpeta_) / nombre).string();
}

void PngEscritor::Inicia(const Documento& documento) {
    doc_ = documento;
    std::error_code ec;
    std::filesystem::create_directories(carpeta_, ec);
    if (ec)
        throw ErrorEscritura("No se pudo crear la carpeta de la vista previa", carpeta_,
                             ec.message());
}

void PngEscritor::Pagina(const renderer::Pagina& pagina) {
    const double escala = ppp_ / 72.0;
    int ancho = static_cast<int>(std::ceil(doc_.anchoPagina * escala));
    int alto = static_cast<int>(std::ceil(doc_.altoPagina * escala));
    std::unique_ptr<cairo_surface_t, LiberaSuperficie> s(
        cairo_image_surface_create(CAIRO_FORMAT_RGB24, ancho, alto));
    std::unique_ptr<cairo_t, LiberaContexto> cr(cairo_create(s.get()));
    cairo_scale(cr.get(), escala, escala);
    DibujaPagina(cr.get(), pagina, doc_, medidor_);
    cairo_surface_flush(s.get());
    std::string archivo = ArchivoPagina(pagina.numero);
    cairo_status_t st = cairo_surface_write_to_png(s.get(), archivo.c_str());
    if (st != CAIRO_STATUS_SUCCESS)
        throw ErrorEscritura("No se pudo escribir la página de la vista previa", archivo,
                             cairo_status_to_string(st));
}

void PngEscritor::Termina() {}

}  // namespace paratzorep::renderer
