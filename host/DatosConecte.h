// The connection record of the current company: a non-empty xServidor says that the company's
// database lives on a remote server described here; empty means the data-access object's own
// server. The host fills it; the database opener reads it and clears xServidor after a failed
// remote open.
#pragma once

#include <cstdint>
#include <string>

namespace paratzorep::host {

class DatosConecte {
  public:
    virtual ~DatosConecte() = default;

    std::string xServidor;
    std::string xUsuario;
    std::string xPassWord;
    std::int32_t xPuerto = 0;
    std::string xBaseDD;
};

}  // namespace paratzorep::host
