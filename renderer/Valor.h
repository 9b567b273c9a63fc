// The value type of the report renderer: what a field, a formula or a parameter
// holds while a report is rendered.
//
// Text comparison follows the server's collation utf8mb4_general_ci so that a
// condition evaluated here and the same condition run by MariaDB agree:
//  - each character of the Basic Multilingual Plane is replaced by its weight
//    (the upper-case base letter for most Latin, Greek and Cyrillic letters:
//    'a', 'A', 'á', 'Á', 'ä' all weigh 'A'; 'ñ' weighs 'N'; 'ß' weighs 'S');
//    the table is the server's own (WEIGHT_STRING), see renderer/formula/ColacionGeneral.inc;
//  - characters beyond the BMP all weigh U+FFFD, as in the server;
//  - trailing spaces are ignored (PAD SPACE): 'abc' = 'abc  ';
//  - invalid UTF-8 bytes compare as raw bytes after any valid text.
// The substring test (`'x' in {t.f}`) follows the server's LOCATE(): a window of
// the needle's byte length is compared at each character position of the text,
// without space padding.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>

namespace paratzorep::renderer {

// A calendar date. The zero date (0,0,0) is the EMPTY date: what '0000-00-00'
// in the database reads as. It sorts before every other date, as on the server.
struct Fecha {
    int anio = 0;
    int mes = 0;
    int dia = 0;

    bool vacia() const { return anio == 0 && mes == 0 && dia == 0; }
    // Whether the day exists in the Gregorian calendar (the empty date does not).
    bool valida() const;
    // Days since 0001-01-01 (day 0); for arithmetic and day differences.
    std::int64_t diaJuliano() const;
    static Fecha desdeDiaJuliano(std::int64_t dias);
    // "yyyy-mm-dd"; the empty date gives "0000-00-00".
    std::string iso() const;
    // Reads "yyyy-mm-dd" (a time part after it is ignored); "0000-00-00" gives
    // the empty date. nullopt when the text is not such a date.
    static std::optional<Fecha> leer(std::string_view texto);

    auto operator<=>(const Fecha&) const = default;
};

struct Hora {
    int hora = 0;
    int minuto = 0;
    int segundo = 0;

    std::string iso() const;  // "hh:mm:ss"
    static std::optional<Hora> leer(std::string_view texto);
    auto operator<=>(const Hora&) const = default;
};

struct FechaHora {
    Fecha fecha;
    Hora hora;

    std::string iso() const;  // "yyyy-mm-dd hh:mm:ss"
    // "yyyy-mm-dd hh:mm:ss[.ffffff]" or a bare date (midnight).
    static std::optional<FechaHora> leer(std::string_view texto);
    auto operator<=>(const FechaHora&) const = default;
};

// A value of the wrong kind for an operation (adding a date to a text, asking a
// number of a text ...). The message is in Spanish and names the kinds.
class ErrorValor : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

class Valor {
  public:
    enum class Tipo { Nulo, Numero, Texto, Fecha, FechaHora, Hora, Booleano };

    Valor() = default;  // null
    static Valor nulo() { return Valor(); }
    static Valor numero(double v) { return Valor(Dato(v)); }
    static Valor texto(std::string v) { return Valor(Dato(std::move(v))); }
    static Valor fecha(Fecha v) { return Valor(Dato(v)); }
    static Valor fechaHora(FechaHora v) { return Valor(Dato(v)); }
    static Valor hora(Hora v) { return Valor(Dato(v)); }
    static Valor booleano(bool v) { return Valor(Dato(v)); }

    Tipo tipo() const { return static_cast<Tipo>(dato_.index()); }
    bool esNulo() const { return tipo() == Tipo::Nulo; }
    // Null, or an empty date: what IsNull() answers true for.
    bool esVacio() const;

    // Accessors: throw ErrorValor when the value is of another kind.
    double comoNumero() const;
    const std::string& comoTexto() const;
    Fecha comoFecha() const;          // a date, or the date part of a date-time
    FechaHora comoFechaHora() const;  // a date-time, or a date at midnight
    Hora comoHora() const;
    bool comoBooleano() const;

    // The value as a report shows it by default: numbers "#,##0.00", dates
    // "dd/mm/yyyy", date-times "dd/mm/yyyy hh:mm:ss", booleans "Verdadero"/"Falso",
    // null and the empty date as "".
    std::string aTexto() const;

    // Same kind and same value (texts compared exactly, byte for byte).
    bool operator==(const Valor& otro) const { return dato_ == otro.dato_; }

    static const char* nombreTipo(Tipo t);

  private:
    using Dato = std::variant<std::monostate, double, std::string, Fecha, FechaHora, Hora, bool>;
    explicit Valor(Dato d) : dato_(std::move(d)) {}
    Dato dato_;
};

// Three-way comparison as a formula compares: numbers numerically, texts by the
// collation above, dates and date-times chronologically (a date is midnight of
// its day when met with a date-time), booleans False < True. nullopt when either
// side is null (the comparison is then unknown, as in SQL). Throws ErrorValor for
// kinds that cannot be compared (a number with a text ...).
std::optional<std::strong_ordering> comparar(const Valor& a, const Valor& b);

// Total order for sorting: null first, then by comparar(); values of kinds that
// cannot be compared sort by kind.
std::strong_ordering compararParaOrden(const Valor& a, const Valor& b);

// Texts under utf8mb4_general_ci with PAD SPACE.
std::strong_ordering compararTextos(std::string_view a, std::string_view b);
// The server's LOCATE(aguja, pajar) > 0 under utf8mb4_general_ci.
bool contieneTexto(std::string_view pajar, std::string_view aguja);
// The collation weight of one code point.
std::uint16_t pesoColacion(char32_t c);

// Formats a number with a pattern of the report language: "#,##0.00", "0",
// "#,##0", "0.000", "##,###,##0.00" ... ('#' optional digit, '0' forced digit, ','
// thousands grouping, '.' decimal point; other characters copied). Rounds half
// away from zero. Negative numbers get a leading '-'.
std::string formatearNumero(double v, std::string_view patron);
// Formats a date: "dd/mm/yyyy", "dd/mmm/yyyy" (Spanish abbreviations ene..dic),
// "d", "dd", "m", "mm", "mmm", "mmmm" (full month name), "yy", "yyyy"; "h", "hh",
// "nn", "ss" for times of a date-time. The empty date formats as "".
std::string formatearFecha(const FechaHora& v, std::string_view patron);

}  // namespace paratzorep::renderer
