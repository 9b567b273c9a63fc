// PNG pages for the screen preview: one image per page, "pagina-0001.png" and so on, in a
// folder.
#pragma once

#include <memory>
#include <string>

#include "renderer/layout/Medidor.h"
#include "renderer/writers/Escritor.h"

namespace paratzorep::renderer {

class PngEscritor : public Escritor {
  public:
    // `carpeta` is created when missing; `ppp` is the resolution in pixels per inch.
    PngEscritor(std::string carpeta, Medidor& medidor, double ppp = 96);
    void Inicia(const Documento& documento) override;
    void Pagina(const renderer::Pagina& pagina) override;
    void Termina() override;

    // The file of page `numero` (1-based).
    std::string ArchivoPagina(int numero) const;

  private:
    std::string carpeta_;
    Medidor& medidor_;
    double ppp_;
    Documento doc_;
};

}  // namespace paratzorep::renderer
