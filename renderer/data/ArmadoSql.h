// Internal: the SELECT that a query description becomes, shared by the sources.
#pragma once

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "renderer/data/Consulta.h"
#include "renderer/formula/Traductor.h"

namespace paratzorep::renderer::data::detail {

// A table name as the dialect writes it: "db.table" -> `db`.`table`.
std::string tablaSql(const std::string& origen, formula::Dialecto d);

// "SELECT <columns> FROM <tables and joins>" for the given columns; a non-empty
// entry of `expresiones` replaces the column at its position. With `alias`, the i-th
// column is named c<i> (for a table made from the result).
std::string seleccionarDesde(const DescripcionConsulta& d,
                             const std::vector<formula::RefCampo>& columnas,
                             formula::Dialecto dialecto,
                             const std::vector<std::string>& expresiones = {}, bool alias = false);

// Adds c to v unless it is there already (names without regard to letter case).
int agregarColumna(std::vector<formula::RefCampo>& v, const formula::RefCampo& c);

bool mismoNombre(std::string_view a, std::string_view b);

// Checks that each table of the description exists and holds every field that `columnas` and the
// joins name. `columnasDe` gives a table's columns (lower case), or nullopt when it does not
// exist. Throws ErrorNombre.
void revisarNombres(
    const DescripcionConsulta& d, const std::vector<formula::RefCampo>& columnas,
    const std::function<std::optional<std::set<std::string>>(const TablaConsulta&)>& columnasDe);

std::string minusculasSql(std::string_view s);

}  // namespace paratzorep::renderer::data::detail
