// The error that every file writer of the renderer raises: what was being written,
// to which file, and the system's or library's own reason.
#pragma once

#include <stdexcept>
#include <string>

namespace paratzorep::renderer {

class ErrorEscritura : public std::runtime_error {
  public:
    // `mensaje` is the Spanish text for the user; `archivo` the file being written
    // (may be empty); `causa` the reason given by the system or the library.
    ErrorEscritura(const std::string& mensaje, std::string archivo = {}, std::string causa = {})
        : std::runtime_error(Componer(mensaje, archivo, causa)),
          archivo_(std::move(archivo)),
          causa_(std::move(causa)) {}

    const std::string& archivo() const { return archivo_; }
    const std::string& causa() const { return causa_; }

  private:
    static std::string Componer(const std::string& mensaje, const std::string& archivo,
                                const std::string& causa) {
        std::string texto = mensaje;
        if (!archivo.empty()) texto += " (" + archivo + ")";
        if (!causa.empty()) texto += ": " + causa;
        return texto;
    }

    std::string archivo_;
    std::string causa_;
};

}  // namespace paratzorep::renderer
