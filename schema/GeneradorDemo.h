// The demo company: a deterministic, believable two-year history of a retail
// business (sales, purchases, accounts, inventory, activity log) generated
// from a seed and a scale, written into the company database, the general
// database and the reports work database.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "schema/Esquema.h"

namespace paratzorep::schema {

struct OpcionesDemo {
    int escala = 1;  // 1: about 100 thousand document lines; 10: about a million
    std::uint64_t semilla = 1;
    // Days of history up to the fixed last day; 0 means the whole two years.
    int dias = 0;
    std::string baseEmpresa = "datos1";
    std::string baseGeneral = "generaltanzo";  // empty: the general database is left alone
};

// Rows written per table, keyed "base.tabla".
using ConteoFilas = std::map<std::string, long long>;

// The last day of the history. Fixed, so that a seed always yields the same data.
inline constexpr std::string_view kFechaFinalDemo = "2026-10-31";
// The first day: two years before the last.
inline constexpr std::string_view kFechaInicialDemo = "2024-11-01";

// Fills the databases named in the options, which must exist with their schema
// loaded and be empty. Reports what it generates, the rows written and their rate
// through the interaction sink's progress. Throws ErrorEsquema when the server
// refuses a statement and std::invalid_argument for a scale below 1 or above 1000.
ConteoFilas generarDemo(Conexion& conexion, const OpcionesDemo& opciones);

}  // namespace paratzorep::schema
