// Report work tables: "tbltemp" + a number, cloned from a model table of the reports work
// database (tanzoreportes) or of the company database, created unqualified in the connection's
// current database, and dropped by the caller when the report is done.
//
// Many prints may clone at once (several workstations, scheduled jobs): a name is reserved in the
// registry tanzoreportes.tablastrabajo (its key is the database and the name) before the table is
// created, and a name taken meanwhile by another print is passed over. Each row names the
// connection that created the table (CONNECTION_ID(), the server's start, the account, the
// workstation and the process), so that a table whose print died with its connection (the
// process killed, the server restarted) is recognised as orphaned and dropped, and a table that
// a live print uses never is. An interrupted process drops its tables before it ends
// (host/Proceso.h).
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "host/BaseDD.h"

namespace paratzorep::data {

// Past tbltemp32767 the 16-bit counter overflows; no name wraps round.
class ErrorDesbordamiento : public std::overflow_error {
  public:
    using std::overflow_error::overflow_error;
};

// The registry of work tables and the statement that creates it.
inline constexpr const char* kRegistroTablas = "tanzoreportes.tablastrabajo";
extern const char* const kCreaRegistroTablas;

// The first "tbltemp<n>" (n from 0) for which HayTabla answers false.
std::string NombreTablaTemporal(host::BaseDD& base, const host::Conexion& cn);

// Creates an empty work table with the model's columns, keys and options and returns its name.
// `enReportes`: the model lives in tanzoreportes (true) or in BaseDD.cMiBase (false).
// A missing model throws host::ErrorDatos from RstExecutar.
std::string ClonaEstructura(host::BaseDD& base, host::Conexion& cn, const std::string& modelo,
                            bool enReportes);

// "DROP TABLE " + nombre through Executar; then the table leaves the registry.
void BorraTablaTrabajo(host::BaseDD& base, const host::Conexion& cn, const std::string& nombre);

// The same over the session's BaseDD (throws host::ErrorDatos when the session has none).
std::string NombreTablaTemporal(const host::Conexion& cn);
std::string ClonaEstructura(host::Conexion& cn, const std::string& modelo, bool enReportes);
void BorraTablaTrabajo(const host::Conexion& cn, const std::string& nombre);

// The registered work tables of the connection's server: those in use by a live connection, and
// the orphans ("base.tabla") whose creating connection is gone. Rows of other accounts count only
// when the account may see every connection (PROCESS). Throws host::ErrorDatos when the registry
// cannot be read.
struct TablasRegistradas {
    int enUso = 0;
    std::vector<std::string> huerfanas;
};
TablasRegistradas RevisaTablasTrabajo(host::BaseDD& base, const host::Conexion& cn);

// Drops the orphaned work tables of the connection's server; returns those dropped ("base.tabla").
// Each is first claimed in the registry by this connection, so that two clean-ups never drop a
// name that a new print has taken meanwhile. Failures are left for the next time.
std::vector<std::string> BorraTablasHuerfanas(host::BaseDD& base, const host::Conexion& cn);

}  // namespace paratzorep::data
