// "kvtz5.LibKRVM": the helper library's general object. Every form uses it for keys and focus,
// value conversion, date masks and formats, filter clauses and settings.
#pragma once

#include <cstdint>
#include <string>

#include "host/Recordset.h"
#include "toolkit/Fabrica.h"

namespace paratzorep::toolkit {

class LibKRVM : public ObjetoKv {
  public:
    std::string Clase() const override { return "LibKRVM"; }

    // Enter in a box: turns a carriage return (13) into 0 and answers true (move to the next).
    bool Enter(std::int16_t& keyAscii) const;
    // Key-down in a box: true when the key asks to move (up 38 / down 40 without shift).
    bool Teclas(std::int16_t keyCode, std::int16_t shift) const;
    // Highlighting of a focused box: the first and last character selected (start, length).
    std::pair<int, int> Resalta(const std::string& texto) const;

    // The leading number of a text: blanks skipped, sign and decimals read; 0 when none.
    double kvVal(const std::string& texto) const;
    // A null as "" (or "0" for numeric columns), any other value as its text.
    std::string NoNull(const host::Valor& valor) const;

    // The date boxes' input mask "##/##/####" and display format "dd/mm/yyyy".
    std::string MascaraFecha() const { return "##/##/####"; }
    std::string FormatoFecha() const { return "dd/mm/yyyy"; }
    // True for a blank box or its empty mask ("__/__/____", "  /  /    ").
    bool FechaVacia(const std::string& texto) const;
    // True when the text is a valid date ("31/02/2024" is not).
    bool EsFecha(const std::string& texto) const;
    // "dd/mm/yyyy" → "yyyy-mm-dd"; "" when the text is not a date.
    std::string FechaSQL(const std::string& texto) const;
    // "dd/mm/yyyy" → "5 de marzo de 2024"; "" when not a date.
    std::string FechaCompleta(const std::string& texto) const;
    // "dd/mm/yyyy" → "05/mar/2024"; "" when not a date.
    std::string FechaMesCorto(const std::string& texto) const;
    // Any date text (also "yyyy-mm-dd" from the server) → "dd/mm/yyyy"; "" when not a date.
    std::string FechaDMA(const std::string& texto) const;

    // Adds a condition to a WHERE clause: " WHERE " + cond for the first, acc + " AND " + cond
    // after; an empty condition leaves the clause as it is.
    std::string SumaWhereAnd(const std::string& acumulado, const std::string& condicion) const;

    // Settings files (see toolkit/Ini.h).
    std::string LeeIni(const std::string& seccion, const std::string& clave,
                       const std::string& archivo, const std::string& omision = "") const;
    void EscribeIni(const std::string& seccion, const std::string& clave, const std::string& valor,
                    const std::string& archivo) const;

    // Percentage of `i` out of `n`, 0..100 (0 when n is not positive).
    std::int16_t Porcentaje(double i, double n) const;
};

}  // namespace paratzorep::toolkit
