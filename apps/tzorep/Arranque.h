// Start-up of the command-line host: reads <home>/tzorep.ini into the session. Sections:
//   [Iniciales]     any Iniciales property by name (RutaTanzo=..., UserUsuario=..., ...)
//   [BaseDD]        cRuta, cUsuario, cPassword, cPuerto, cMiBase
//   [DatosConecte]  xServidor, xUsuario, xPassWord, xPuerto, xBaseDD
//   [Servidor]      TiempoDeEspera: seconds a statement waits for a silent server before the
//                   print ends with a message (0: no limit; 120 by default)
// What the file leaves out comes from the home folder: the private server's connection
// (servidor.conf) for [BaseDD], company database "datos1", and folders under the home.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "host/BaseDD.h"
#include "host/DatosConecte.h"
#include "session/Iniciales.h"

namespace paratzorep::cli {

struct ResultadoArranque {
    std::shared_ptr<host::BaseDD> baseDD;
    std::shared_ptr<host::DatosConecte> datosConecte;
    // Lines of the file that were not understood (Spanish), for the user.
    std::vector<std::string> avisos;
};

// Creates the data-access object (MariaDB) and the connection record, fills them and the
// session from <home>/tzorep.ini and the defaults, and hands them to `ini`. A missing file is
// fine (defaults only). Throws std::runtime_error when the file exists but cannot be read.
ResultadoArranque Arranca(const std::filesystem::path& home, session::Iniciales& ini);

// The part of Arranca that reads the file into given objects.
void LeeArranque(const std::filesystem::path& home, session::Iniciales& ini, host::BaseDD& bd,
                 host::DatosConecte& dc, std::vector<std::string>& avisos);

}  // namespace paratzorep::cli
