// The engine's data provider: turns the engine's query (tables, data files, Connect,
// selection, order, fields) into rows of the renderer's data path. Company tables are read
// through ODBC with the Connect string; tables of the local work file (data files ending in
// ".mdb", pointed at the SQLite work file) through SQLite. A report driven by company tables
// may show local heading tables (Generales ...) that are not joined to them: their first row
// is read once and its values stand on every row.
#pragma once

#include "renderer/Motor.h"

namespace paratzorep::output {

// Opens the rows of one run. Throws renderer::ErrorMotor or renderer::data::ErrorDatos.
renderer::DatosAbiertos AbreDatosReporte(const renderer::ConsultaReporte& consulta);

// Whether a data file names the local work file (its last four characters, lower-cased,
// are ".mdb").
bool EsArchivoLocal(const std::string& archivoDatos);

}  // namespace paratzorep::output
