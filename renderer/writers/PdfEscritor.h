// PDF output through cairo: vector pages, fonts embedded and subset.
#pragma once

#include <memory>
#include <string>

#include "renderer/layout/Medidor.h"
#include "renderer/writers/Escritor.h"

namespace paratzorep::renderer {

class PdfEscritor : public Escritor {
  public:
    // The Medidor must be the one the layout used; it outlives the writer.
    PdfEscritor(std::string archivo, Medidor& medidor);
    ~PdfEscritor() override;
    void Inicia(const Documento& documento) override;
    void Pagina(const renderer::Pagina& pagina) override;
    void Termina() override;

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace paratzorep::renderer
