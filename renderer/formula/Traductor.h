// Pushdown: the selection formula and the sort fields as SQL.
//
// A formula is split into its top-level "and" parts; each part that translates is
// sent to the server and the others are kept for evaluation in memory. An "or"
// goes whole or not at all. What translates:
//   - field references (as alias.column; the query names each table by its
//     template name), literals, Date()/DateTime() with constant arguments;
//   - comparisons = <> < > <= >= between fields and literals. With a text
//     literal on one side the comparison is forced to the evaluator's collation:
//     MariaDB "... COLLATE utf8mb4_general_ci", SQLite "COLLATE tz_general_ci"
//     (a collation that the renderer registers on its SQLite connections);
//   - 'text' in {t.f}: MariaDB "LOCATE('text', t.f COLLATE utf8mb4_general_ci) > 0",
//     SQLite "tz_locate('text', t.f) > 0" (registered likewise);
//   - x in [a, b]: "x IN (a, b)";
//   - not / and / or, with the three-valued logic that the evaluator uses;
//   - dates as DATE'yyyy-mm-dd' (MariaDB) or 'yyyy-mm-dd' (SQLite, where dates
//     are stored as ISO text); a zero date on the server sorts before every date,
//     as the empty date does in memory;
//   - +, -, *, / on numbers, Abs, Round, UpperCase, LowerCase, Trim, Len are
//     left in memory (their null and rounding rules differ in small ways).
// Named formulas, parameters, summaries and anything else stay in memory.
#pragma once

#include <string>
#include <vector>

#include "renderer/formula/Formula.h"

namespace paratzorep::renderer::formula {

enum class Dialecto { MariaDB, SQLite };

struct Traduccion {
    std::string sql;                 // the pushed condition; empty when nothing went
    std::vector<const Nodo*> resto;  // the parts kept for memory, all to be True
    bool completa() const { return resto.empty(); }
};

// Translates the selection formula. The nodes in `resto` belong to `f`.
Traduccion traducirSeleccion(const Formula& f, Dialecto d);
// Translates one node wholly; throws ErrorFormula when it cannot go.
std::string traducirExpresion(const Nodo& n, Dialecto d);
// Whether a node can be translated wholly.
bool traducible(const Nodo& n);

// "alias.column" quoted for the dialect (`a`.`c` or "a"."c").
std::string columnaSql(const RefCampo& c, Dialecto d);
std::string identificadorSql(std::string_view nombre, Dialecto d);
// Literals in the dialect's syntax.
std::string textoSql(std::string_view s, Dialecto d);
std::string numeroSql(double v);
std::string fechaSql(const Fecha& f, Dialecto d);

// "ORDER BY" terms of the sort fields (without the keywords), e.g.
// "`edoctacli`.`Fecha` ASC, `compras3`.`Cantidad` DESC".
std::string ordenSql(const std::vector<CampoOrden>& campos, Dialecto d);

}  // namespace paratzorep::renderer::formula
