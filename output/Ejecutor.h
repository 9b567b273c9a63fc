// The report runner: renders the component-wide report request through the report engine.
// The template is written out of the template store, the engine's data files are pointed at
// the work tables (or the local work file), the ODBC data source is written and the engine's
// Connect set, and Action = 1 renders to the destination.
#pragma once

#include <cstdint>
#include <ctime>
#include <filesystem>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>

#include "renderer/Motor.h"

namespace paratzorep::output {

// Renders the component-wide request session::solicitud(). Throws std::runtime_error-derived
// errors with a Spanish message naming what failed; the caller (the form frame) reports them
// and drops its work table.
void EjecutaReporte(const std::string& archivoLocal);

// The short entry for document formats: template under the reports folder, destination 1
// (or 0 when VistaPrevia), window title; then the same run.
void EjecutaFormato(const std::string& plantilla, const std::string& tituloVentana,
                    const std::string& archivoLocal);
// What the short entry sets in the request before the run (template, destination, title).
void PreparaFormato(const std::string& plantilla, const std::string& tituloVentana);

// What a host sets for the runs of this process.
struct OpcionesEjecucion {
    std::string bitacoraSolicitudes;         // --request-log FILE: one JSON line per request
    std::ostream* salidaPantalla = nullptr;  // destination 0: text pages go here
    int anchoPantalla = 0;                   // ... fitted to these columns (0: as laid out)
    std::string separadorPaginas = "\f";     // ... and separated by this
    std::string carpetaVistaPrevia;   // preview PNG pages ("" = a folder under the private folder)
    bool imagenesVistaPrevia = true;  // false: the preview is the text pages alone
};
OpcionesEjecucion& opcionesEjecucion();

// The engine's last run (pages, rows, files written), for hosts that report it.
const renderer::ResultadoMotor& UltimoResultado();

// A failed run: a Spanish message naming the report and what failed (never a password).
class ErrorReporte : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// The printer served by the renderer's own PDF writer (compared in lower case).
inline constexpr const char* kImpresoraPdf = "pdfcreator";

namespace detail {

// Where a requested template is written and read.
struct PlantillaResuelta {
    std::string nombre;   // file name part ("bitacoraus.rpt")
    std::string carpeta;  // folder it is extracted into
    std::string ruta;     // carpeta + nombre
};

// ".rpt" appended when the text does not contain it; a bare name goes under `rutaRpts` and
// must end in ".rpt" (any case), else nothing is rendered (nullopt). A path is kept as given.
std::optional<PlantillaResuelta> ResuelvePlantilla(const std::string& texto,
                                                   const std::string& rutaRpts);

// The server the report reads: the remote company server while one is in use, else the
// data-access object's.
struct ServidorReporte {
    std::string servidor, base, usuario, password;
    std::int32_t puerto = 0;
};
ServidorReporte ServidorDeSesion();
// "DSN=myodbc3-test;SERVER=...;DB=...;UID=...;PWD=...".
std::string CadenaConnect(const ServidorReporte& s);

// <carpeta>/<reporte><yyyymmdd-hhnnss>.pdf
std::string NombrePdf(const std::string& carpeta, const std::string& reporte, std::time_t cuando);

// A PDF that could not be printed, moved into the session's PDF folder under the stamped
// name; where it now is ("" when it no longer exists).
std::string GuardaSinImprimir(const std::filesystem::path& pdf);
// What the progress bar says of a run ("Leyendo datos: 120,000 filas, 2,400 páginas
// (85,000 filas/s)", "Escribiendo: página 1,200 de 3,893 (2,000 páginas/s)") and its percentage
// (-1 while reading: the total is not known).
std::pair<int, std::string> TextoAvance(const renderer::AvanceMotor& a);
// 1234567 -> "1,234,567".
std::string ConMiles(std::int64_t n);

}  // namespace detail

}  // namespace paratzorep::output
