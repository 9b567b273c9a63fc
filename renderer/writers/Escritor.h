// The interface of every output writer over the page model (layout/Pagina.h).
// The layout has finished and the total page count is known before Inicia is called;
// pages then arrive one at a time, in order, and are not kept by the caller after
// Pagina returns, so a writer must not hold references to them.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "renderer/layout/Pagina.h"

namespace paratzorep::renderer {

class Escritor {
public:
    virtual ~Escritor() = default;
    virtual void Inicia(const Documento& documento) = 0;
    virtual void Pagina(const Pagina& pagina) = 0;
    // Completes the output; nothing is guaranteed on disk before it returns.
    // Errors raise ErrorEscritura (writers/ErrorEscritura.h).
    virtual void Termina() = 0;
};

// Creates the writer of one file type for the file at `archivo`.
using FabricaEscritor = std::function<std::unique_ptr<Escritor>(const std::string& archivo)>;

}  // namespace paratzorep::renderer
