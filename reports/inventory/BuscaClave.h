// Look-ups by key that the inventory forms of this folder show beside their code boxes.
#pragma once

#include <string>

#include "host/BaseDD.h"

namespace paratzorep::reports::detail {

// `campo` of the row of `tabla` whose Clave is `clave` (tabla + " WHERE Clave='" + clave +
// "' LIMIT 1"); "" when the key is blank, holds a quote, is unknown or the look-up fails.
std::string DatoDeClave(const host::Conexion& cn, const std::string& tabla,
                        const std::string& campo, const std::string& clave);

}  // namespace paratzorep::reports::detail
