// The request log (tzorep --request-log FILE): one JSON line for every report request handed
// to the runner, with every field of the request and the Connect string, its password masked.
#pragma once

#include <string>

#include "session/Solicitud.h"

namespace paratzorep::output {

// The Connect string with the value of every PWD (and PASSWORD) key replaced by "***".
std::string OcultaPassword(const std::string& connect);

// One JSON object on one line (no final newline).
std::string LineaSolicitud(const session::SolicitudReporte& s, const std::string& archivoLocal,
                           const std::string& connect);

// Appends the line and a newline to `archivo` (created when missing). Throws
// std::runtime_error (Spanish) when it cannot write.
void AnotaSolicitud(const std::string& archivo, const std::string& linea);

namespace detail {
// A JSON string literal (quotes included) of UTF-8 text.
std::string TextoJson(const std::string& s);
}  // namespace detail

}  // namespace paratzorep::output
