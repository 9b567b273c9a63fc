// The template store: report templates kept in the company database (table reportesbin, one
// file cut into numbered pieces), written out to the workstation before a report renders, the
// alternative formats of a template (anexoreportes) and the editing hand-off to the host.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "host/BaseDD.h"
#include "host/Formulario.h"

namespace paratzorep::output {

inline constexpr const char* kTablaPlantillas = "reportesbin";
inline constexpr const char* kTablaAnexos = "anexoreportes";
inline constexpr const char* kArchivoAuxiliar = "Auxiliar.mdb";
// The user-activity log's action for "template opened in the editor".
inline constexpr std::int32_t kIdEditaPlantilla = 156;

// Writes the stored template `archivo` (its name part) into `carpeta`; an empty `carpeta`
// means RutaRpts and is set to it. Returns the full path written. Errors (no connection, no
// such template, unwritable folder) throw with a Spanish message.
std::string ExtraePlantilla(const host::Conexion& cn, const std::string& archivo,
                            std::string& carpeta, const std::string& tabla = kTablaPlantillas);

// The file to print for `archivo`: the remembered choice, or `omision` when the template has
// no alternative formats, or what the user picks in the format list. Returns a name part.
std::string EligeFormato(const std::string& archivo, const host::Conexion& cn,
                         const std::string& omision);

// Logs the action, lets the user pick the format (unless `sinElegir`), writes "Auxiliar.mdb"
// and the template into RutaEditaRpts, opens it in the user's program for it and hands it to
// the host's watcher (objMenu.mnTimerCrw: path, tab, date and time). Returns the path opened
// ("" when no file resulted).
std::string EditaPlantilla(const std::string& archivo, std::int16_t estiloVentana,
                           const host::Conexion& cn, bool sinElegir = false);

// The remembered format choice between prints: the forget flag, the remembered name, and the
// flag that makes the runner offer the choice before it renders.
bool& OlvidarFormato();
std::string& FormatoRecordado();
bool& RecordarFormato();

// frmListaFormatos: the template and its alternative formats (cmbFormato lists "Archivo -
// DESCripcion", ItemData holds Archivo), chkConservar keeps the choice, cmdAceptar accepts.
class frmListaFormatos : public host::Formulario {
  public:
    frmListaFormatos(const std::string& archivo, const std::string& omision,
                     const host::Conexion& cn);
    // The picked file name (the default until the user picks another).
    std::string Elegido() const;
    bool Conservar() const;

  protected:
    void Load() override;

  private:
    std::string archivo_;
    std::string omision_;
    host::Conexion cn_;
};

// --- Loading and listing the store ------------------------------------------------------------

struct PlantillaGuardada {
    std::string archivo;
    std::int64_t bytes = 0;
    std::int32_t piezas = 0;
};

// Reads a ".rpt" file as a template: one that cannot be read throws renderer::ErrorPlantilla with
// the file's line and column (other files pass unread).
void RevisaPlantilla(const std::filesystem::path& ruta);
// Stores the local file under its name part, cut into pieces; returns the number of pieces. A
// ".rpt" is read as a template first and refused (ErrorPlantilla) when it cannot be.
int GuardaPlantilla(const host::Conexion& cn, const std::filesystem::path& ruta,
                    const std::string& tabla = kTablaPlantillas);
// Stores every ".rpt" (any letter case) of a folder, in name order; returns the names stored.
// A missing folder throws; so does any template that cannot be read, and then none is stored.
std::vector<std::string> ImportaPlantillas(const host::Conexion& cn,
                                           const std::filesystem::path& carpeta,
                                           const std::string& tabla = kTablaPlantillas);
// Every stored file with its size and number of pieces, by name.
std::vector<PlantillaGuardada> ListaPlantillas(const host::Conexion& cn,
                                               const std::string& tabla = kTablaPlantillas);
// Writes every stored file into the folder (created); returns the paths written.
std::vector<std::string> ExportaPlantillas(const host::Conexion& cn,
                                           const std::filesystem::path& carpeta,
                                           const std::string& tabla = kTablaPlantillas);

}  // namespace paratzorep::output
