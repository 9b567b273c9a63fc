#include "renderer/writers/PdfEscritor.h"

#include <cairo-pdf.h>

#include <cerrno>
#include <filesystem>

#include "renderer/layout/Pintor.h"
#include "renderer/writers/ArchivoSalida.h"
#include "renderer/writers/ErrorEscritura.h"

namespace paratzorep::renderer {

// The PDF is drawn into a partial file beside the target, which replaces the target only
// when the document is complete: a failed run leaves an earlier file as it was.
struct PdfEscritor::Impl {
    std::string archivo;
    detail::Parcial parcial;
    Medidor& medidor;
    Documento doc;
    cairo_surface_t* superficie = nullptr;
    cairo_t* cr = nullptr;

    Impl(std::string a, Medidor& m) : archivo(std::move(a)), parcial(archivo), medidor(m) {}
    ~Impl() { Libera(); }
    void Libera() {
        if (cr) cairo_destroy(cr);
        if (superficie) cairo_surface_destroy(superficie);
        cr = nullptr;
        superficie = nullptr;
    }
    void Revisa(const char* que) {
        cairo_status_t st =
            superficie ? cairo_surface_status(superficie) : CAIRO_STATUS_NULL_POINTER;
        if (st == CAIRO_STATUS_SUCCESS && cr) st = cairo_status(cr);
        if (st != CAIRO_STATUS_SUCCESS) {
            const std::string causa = Causa(st);
            Libera();
            throw ErrorEscritura(que, archivo, causa);
        }
    }
    // Cairo's own words are English; a failed write keeps the system's reason in errno.
    static std::string Causa(cairo_status_t st) {
        switch (st) {
            case CAIRO_STATUS_WRITE_ERROR:
            case CAIRO_STATUS_FILE_NOT_FOUND:
                return detail::CausaDelSistema();
            case CAIRO_STATUS_NO_MEMORY:
                return "sin memoria";
            default:
                return std::string("error de cairo: ") + cairo_status_to_string(st);
        }
    }
};

PdfEscritor::PdfEscritor(std::string archivo, Medidor& medidor)
    : impl_(std::make_unique<Impl>(std::move(archivo), medidor)) {}

PdfEscritor::~PdfEscritor() = default;

void PdfEscritor::Inicia(const Documento& documento) {
    impl_->doc = documento;
    errno = 0;
    impl_->superficie = cairo_pdf_surface_create(impl_->parcial.ruta().c_str(),
                                                 documento.anchoPagina, documento.altoPagina);
    impl_->Revisa("No se pudo crear el archivo PDF");
    cairo_pdf_surface_set_metadata(impl_->superficie, CAIRO_PDF_METADATA_TITLE,
                                   documento.titulo.c_str());
    cairo_pdf_surface_set_metadata(impl_->superficie, CAIRO_PDF_METADATA_CREATOR, "ParaTZOrep");
    impl_->cr = cairo_create(impl_->superficie);
    impl_->Revisa("No se pudo crear el archivo PDF");
}

void PdfEscritor::Pagina(const renderer::Pagina& pagina) {
    DibujaPagina(impl_->cr, pagina, impl_->doc, impl_->medidor);
    errno = 0;
    cairo_show_page(impl_->cr);
    impl_->Revisa("No se pudo escribir el archivo PDF");
}

void PdfEscritor::Termina() {
    if (!impl_->superficie) return;
    cairo_destroy(impl_->cr);
    impl_->cr = nullptr;
    errno = 0;
    cairo_surface_finish(impl_->superficie);
    impl_->Revisa("No se pudo terminar el archivo PDF");
    impl_->Libera();
    impl_->parcial.Reemplaza();
}

}  // namespace paratzorep::renderer
