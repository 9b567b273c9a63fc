// A file written in full or not at all: the content goes to a partial file beside the
// target, which replaces the target only when Confirmar() succeeds. A writer that fails
// half way (full disk, an error in the data) leaves any earlier file untouched.
//
// Each partial file has a name of its own ("<name>.<random>.parcial", created exclusively), so
// that two prints to the same target never write into one file, and it is removed if the process
// is interrupted (host/Proceso.h).
#pragma once

#include <filesystem>
#include <fstream>
#include <string>

#include "host/Proceso.h"

namespace paratzorep::renderer::detail {

// A partial file of its own beside `destino`, created empty with the permissions a new file gets;
// removed on destruction (and on interruption) unless it replaced the target.
class Parcial {
  public:
    // Throws ErrorEscritura (naming `destino`, with the system's reason) when it cannot be made.
    explicit Parcial(std::filesystem::path destino);
    ~Parcial();
    Parcial(const Parcial&) = delete;
    Parcial& operator=(const Parcial&) = delete;

    const std::filesystem::path& ruta() const { return ruta_; }
    const std::filesystem::path& destino() const { return destino_; }
    // Renames the finished partial file onto the target; throws ErrorEscritura on failure.
    void Reemplaza();
    // Removes the partial file now.
    void Descarta();

  private:
    std::filesystem::path destino_;
    std::filesystem::path ruta_;
    host::Limpieza limpieza_;
    bool hecho_ = false;
};

class ArchivoSalida {
  public:
    // Throws ErrorEscritura when the partial file cannot be created.
    explicit ArchivoSalida(std::filesystem::path destino);
    ~ArchivoSalida();
    ArchivoSalida(const ArchivoSalida&) = delete;
    ArchivoSalida& operator=(const ArchivoSalida&) = delete;

    std::ofstream& flujo() { return flujo_; }
    const std::filesystem::path& parcial() const { return parcial_.ruta(); }
    const std::filesystem::path& destino() const { return parcial_.destino(); }

    // Flushes, checks that every byte reached the disk and renames the partial file
    // onto the target. Throws ErrorEscritura otherwise.
    void Confirmar();
    // A write that failed: "No se pudo escribir el archivo (<target>): <the system's reason>".
    [[noreturn]] void FallaEscritura() const;

  private:
    Parcial parcial_;
    std::ofstream flujo_;
};

// The system's reason for the last failed call (errno), or a generic one.
std::string CausaDelSistema();

}  // namespace paratzorep::renderer::detail
