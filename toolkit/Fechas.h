// Calendar dates as the forms type them ("dd/mm/yyyy", also "dd/mmm/yyyy" with Spanish month
// abbreviations) and as SQL takes them ("yyyy-mm-dd"). Invalid days (31/02/2024) are not dates.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace paratzorep::toolkit {

struct Fecha {
    int anio = 0;
    int mes = 0;
    int dia = 0;

    std::chrono::year_month_day Ymd() const;
    friend bool operator==(const Fecha&, const Fecha&) = default;
};

// Reads "d/m/yyyy", "dd/mm/yyyy", "dd-mm-yyyy", "dd/mmm/yyyy" (ene..dic, any case) or
// "yyyy-mm-dd" (with an optional time after it); nothing for a blank, a mask or a non-date.
std::optional<Fecha> LeeFecha(std::string_view texto);
// Today on the workstation's clock (local time).
Fecha Hoy();
// Days from `desde` to `hasta` (negative when `hasta` is earlier).
long DiasEntre(const Fecha& desde, const Fecha& hasta);
Fecha SumaDias(const Fecha& f, long dias);

// "dd/mm/yyyy".
std::string TextoDMA(const Fecha& f);
// "yyyy-mm-dd".
std::string TextoSQL(const Fecha& f);
// "dd/mmm/yyyy" with the month's Spanish abbreviation ("05/mar/2024").
std::string TextoMesCorto(const Fecha& f);
// "5 de marzo de 2024".
std::string TextoCompleto(const Fecha& f);

// Spanish month names and abbreviations, 1..12.
std::string_view NombreMes(int mes);
std::string_view MesCorto(int mes);

}  // namespace paratzorep::toolkit
