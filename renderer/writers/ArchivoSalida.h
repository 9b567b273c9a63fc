// A file written in full or not at all: the content goes to a partial file beside the
// target, which replaces the target only when Confirmar() succeeds. A writer that fails
// half way (full disk, an error in the data) leaves any earlier file untouched.
#pragma once

#include <filesystem>
#include <fstream>

namespace paratzorep::renderer::detail {

class ArchivoSalida {
  public:
    // Throws ErrorEscritura when the partial file cannot be created.
    explicit ArchivoSalida(std::filesystem::path destino);
    ~ArchivoSalida();
    ArchivoSalida(const ArchivoSalida&) = delete;
    ArchivoSalida& operator=(const ArchivoSalida&) = delete;

    std::ofstream& flujo() { return flujo_; }
    const std::filesystem::path& parcial() const { return parcial_; }
    const std::filesystem::path& destino() const { return destino_; }

    // Flushes, checks that every byte reached the disk and renames the partial file
    // onto the target. Throws ErrorEscritura otherwise.
    void Confirmar();

  private:
    std::filesystem::path destino_;
    std::filesystem::path parcial_;
    std::ofstream flujo_;
    bool confirmado_ = false;
};

// The partial-file name used beside `destino`.
std::filesystem::path RutaParcial(const std::filesystem::path& destino);

// Renames a finished partial file onto its target; throws ErrorEscritura on failure.
void Reemplazar(const std::filesystem::path& parcial, const std::filesystem::path& destino);

}  // namespace paratzorep::renderer::detail
