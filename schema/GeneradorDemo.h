// The demo company: a deterministic, believable two-year history of a retail
// business (sales, purchases, accounts, inventory, activity log) generated
// from a seed and a scale, written into the company database, the general
// database and the reports work database.
#pragma once

#include <cstdint>
#include <functional>
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
    // Receives progress texts during long loads (may be empty).
    std::function<void(std::string_view)> progreso;
};

// Rows written per table, keyed "base.tabla".
using ConteoFilas = std::map<std::string, long long>;

// The last day of the history. Fixed, so that a seed always yields the same data.
inline constexpr std::string_view kFechaFinalDemo = "2026-10-31";
// The first day: two years before the last.
inline constexpr std::string_view kFechaInicialDemo = "2024-11-01";

// Fills the databases named in the options, which must exist with their schema
// loaded and be empty. Throws ErrorEsquema when the server refuses a statement
// and std::invalid_argument for a scale below 1 or above 1000.
ConteoFilas generarDemo(Conexion& conexion, const OpcionesDemo& opciones);

namespace detail {

// xoshiro256** seeded through splitmix64: the generator's only source of chance.
class Azar {
  public:
    explicit Azar(std::uint64_t semilla);
    std::uint64_t siguiente();
    // Uniform integer in [a, b].
    long long entre(long long a, long long b);
    // Uniform in [0, 1).
    double unitario();
    bool probable(double p) { return unitario() < p; }

  private:
    std::uint64_t s_[4];
};

// Days since 1970-01-01 <-> "yyyy-mm-dd".
int diasDesdeCivil(int anio, int mes, int dia);
std::string textoFecha(int dias);
int fechaDeTexto(std::string_view texto);  // throws std::invalid_argument

// Fixed-point texts: cents as "-12.34", thousandths as "1.250".
std::string textoCentavos(long long centavos);
std::string textoMilesimas(long long milesimas);

}  // namespace detail

}  // namespace paratzorep::schema
