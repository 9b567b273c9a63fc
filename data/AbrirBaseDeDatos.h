// The database opener: opens a company database on the remote server that the connection record
// names, falling back for the rest of the session to the data-access object's own server when
// the remote one does not answer. The general database never goes through the remote rule.
#pragma once

#include <string>

#include "host/BaseDD.h"
#include "host/DatosConecte.h"

namespace paratzorep::data {

// Opens `cn` on `nombre` (or, on the remote server, on `alterno` when given, else on
// DatosConecte.xBaseDD). `bandera` goes to AbrirBdD. BaseDD always ends with its own server
// values; a failed remote open clears xServidor, sets xBaseDD to `nombre` and shows the
// fallback message (title "Atención", critical icon) through the interaction sink.
bool AbrirBaseDeDatos(host::BaseDD& base, host::DatosConecte& datos, host::Conexion& cn,
                      const std::string& nombre, const std::string& alterno = "",
                      bool bandera = false);

// The same over the session's BaseDD and DatosConecte; false when the session has no BaseDD.
bool AbrirBaseDeDatos(host::Conexion& cn, const std::string& nombre,
                      const std::string& alterno = "", bool bandera = false);

// The fallback message, CR LF line breaks.
std::string MensajeServidorRemoto(const std::string& servidorRemoto,
                                  const std::string& baseIntentada,
                                  const std::string& servidorOriginal,
                                  const std::string& baseSolicitada);

}  // namespace paratzorep::data
