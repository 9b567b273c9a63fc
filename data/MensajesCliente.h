// Error texts of a MariaDB connection in Spanish. The server's own texts already are (the
// private server runs with lc_messages=es_ES); the client library's, those of a connection
// that could not be made or was lost (codes 2000 to 2999), come in English whatever the
// server speaks, and are said here in Spanish, keeping the host, socket and system error
// number that they quote.
#pragma once

#include <string>

namespace paratzorep::data {

// `texto` as the user should read it: the client's connection errors in Spanish, any other
// text unchanged. A "[ma-3.1.15]"-style prefix of the ODBC driver is kept.
std::string MensajeMaria(unsigned codigo, const std::string& texto);

}  // namespace paratzorep::data
