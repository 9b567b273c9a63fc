// Plain-text output: each page becomes a character grid that keeps the report's columns
// aligned (numbers stay right-aligned under their headings). Pages are separated by a
// form feed, or by the separator given. For a screen, the grid can be narrowed to a number
// of columns as far as the page's texts still fit whole and apart.
#pragma once

#include <fstream>
#include <memory>
#include <ostream>
#include <string>

#include "renderer/writers/ArchivoSalida.h"
#include "renderer/writers/Escritor.h"

namespace paratzorep::renderer {

class TxtEscritor : public Escritor {
  public:
    // Writes to a file.
    explicit TxtEscritor(std::string archivo);
    // Writes to a stream that the caller keeps open (standard output for the preview).
    TxtEscritor(std::ostream& salida, std::string separador);
    void Inicia(const Documento& documento) override;
    void Pagina(const renderer::Pagina& pagina) override;
    void Termina() override;

    // The grid of one page as lines of UTF-8 text, without trailing blanks.
    std::vector<std::string> Rejilla(const renderer::Pagina& pagina) const;

    // Fits the pages into `columnas` columns (0: the report's own width) where the layout
    // allows: a narrower grid is taken only when it cuts and joins no more texts than the
    // report's own; otherwise the narrowest that does not. Once a page needs a wider grid,
    // the pages after it keep that width.
    void AjustaA(int columnas) { columnasMaximas_ = columnas; }
    double AnchoColumna() const { return anchoColumna_; }

  private:
    // The grid at a column width; `danos` (when given) counts the characters left out and
    // the places where two texts touch.
    std::vector<std::string> Rejilla(const renderer::Pagina& pagina, double anchoColumna,
                                     int* danos) const;
    double AnchoParaPagina(const renderer::Pagina& pagina);
    int columnasMaximas_ = 0;
    double anchoAjustado_ = 0;  // the narrowest width found so far (0: not yet)
    std::string archivo_;
    // The file being written: a partial file that replaces `archivo_` only when complete.
    std::unique_ptr<detail::ArchivoSalida> archivoSalida_;
    std::ostream* salida_ = nullptr;
    std::string separador_ = "\f";
    Documento doc_;
    double anchoColumna_ = 5;
    double altoRenglon_ = 10;
    bool primera_ = true;
    bool lectorCerrado_ = false;  // the stream's reader went away: nothing more is written
    bool LectorSeFue();
};

}  // namespace paratzorep::renderer
