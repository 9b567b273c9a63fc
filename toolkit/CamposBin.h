// "kvtz5.CamposBin": files kept in a table as numbered pieces (the template store). A file is
// the concatenation of the text column of its rows in ascending order of the number column.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "host/BaseDD.h"
#include "toolkit/Fabrica.h"

namespace paratzorep::toolkit {

class CamposBin : public ObjetoKv {
  public:
    std::string Clase() const override { return "CamposBin"; }

    std::shared_ptr<host::BaseDD> BaseDD;  // data-access object
    host::Conexion Conexion;               // open connection on the database holding the table
    std::string CampoLlave = "Archivo";    // column with the file's name
    std::string CampoNumero = "Renglon";   // column with the piece's number
    std::string CampoTexto = "Contenido";  // column with the piece's bytes
    std::string cTablaRpts = "reportesbin";
    std::string cRutaPrograma;        // program folder (for relative target folders)
    std::size_t TamanoPieza = 60000;  // bytes per stored piece

    // Writes the stored file `archivo` (name part only) into `carpeta`, through a temporary
    // file and a rename; returns the full path written. Throws std::runtime_error (Spanish)
    // when the file has no rows or cannot be written, host::ErrorDatos on a server error.
    std::string ExtraeRPT(const std::string& archivo, const std::string& carpeta) const;
    // Stores the local file `ruta` under the name `archivo` (default: its name part), cut in
    // pieces of TamanoPieza bytes, replacing any earlier version in one transaction; returns
    // the number of pieces.
    int Guarda(const std::string& ruta, const std::string& archivo = "") const;
    // Writes the binary field `campo` of the first row of `fuente` (a table followed by its
    // WHERE ... LIMIT 1) into the file `archivo`; false when there is no row or the field is null.
    bool BLOBextraer(const std::string& fuente, const std::string& campo,
                     const std::string& archivo) const;
    // Whether the table holds a file of that name.
    bool Existe(const std::string& archivo) const;

  private:
    void Exige(const char* accion) const;
};

}  // namespace paratzorep::toolkit
