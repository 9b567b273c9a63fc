// Report work tables: "tbltemp" + a number, cloned from a model table of the reports work
// database (tanzoreportes) or of the company database, created unqualified in the connection's
// current database, and dropped by the caller when the report is done.
#pragma once

#include <stdexcept>
#include <string>

#include "host/BaseDD.h"

namespace paratzorep::data {

// Past tbltemp32767 the 16-bit counter overflows; no name wraps round.
class ErrorDesbordamiento : public std::overflow_error {
  public:
    using std::overflow_error::overflow_error;
};

// The first "tbltemp<n>" (n from 0) for which HayTabla answers false.
std::string NombreTablaTemporal(host::BaseDD& base, const host::Conexion& cn);

// Creates an empty work table with the model's columns, keys and options and returns its name.
// `enReportes`: the model lives in tanzoreportes (true) or in BaseDD.cMiBase (false).
// A missing model throws host::ErrorDatos from RstExecutar.
std::string ClonaEstructura(host::BaseDD& base, host::Conexion& cn, const std::string& modelo,
                            bool enReportes);

// "DROP TABLE " + nombre through Executar.
void BorraTablaTrabajo(host::BaseDD& base, const host::Conexion& cn, const std::string& nombre);

// The same over the session's BaseDD (throws host::ErrorDatos when the session has none).
std::string NombreTablaTemporal(const host::Conexion& cn);
std::string ClonaEstructura(host::Conexion& cn, const std::string& modelo, bool enReportes);
void BorraTablaTrabajo(const host::Conexion& cn, const std::string& nombre);

}  // namespace paratzorep::data
