// "kvtz5.DeArchivos": files and folders. Paths may use "/" or "\\" as separator.
#pragma once

#include <cstdint>
#include <string>

#include "toolkit/Fabrica.h"

namespace paratzorep::toolkit {

class DeArchivos : public ObjetoKv {
  public:
    std::string Clase() const override { return "DeArchivos"; }

    // The name part of a path (after the last "/" or "\\").
    std::string NombreDeArchivo(const std::string& ruta) const;
    // The folder part of a path, with its final separator ("" when there is none).
    std::string CarpetaDeArchivo(const std::string& ruta) const;
    // Creates a folder and its parents; true when it exists afterwards.
    bool CreaRuta(const std::string& carpeta) const;
    // Whether a file exists; false for an empty path.
    bool HayArchivo(const std::string& ruta) const;
    // Deletes a file; true when it is gone afterwards (also when it never existed).
    bool BorraArchivo(const std::string& ruta) const;
    // The file's last change as "dd/mm/yyyy hh:mm:ss"; "" when it does not exist.
    std::string FechaYhora(const std::string& ruta) const;
    // Opens a document in its associated program (xdg-open) without waiting; false, silently,
    // when there is no desktop session or the file does not exist.
    bool AbreDocumento(const std::string& ruta, std::int16_t estiloVentana = 1) const;
    // Lets the user choose a folder through the host's interaction sink; "" when cancelled.
    std::string Carpeta(const std::string& titulo, const std::string& inicial = "") const;
    // A new, unused file name under `carpeta` + "Temporal/" (the folder is created).
    std::string ArchivoTemporal(const std::string& carpeta, const std::string& extension) const;
};

// Path text with every "\\" turned into "/".
std::string RutaNativa(const std::string& ruta);

}  // namespace paratzorep::toolkit
