#include "apps/tzorep/Arranque.h"

#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <optional>
#include <stdexcept>

#include "data/BaseDDMaria.h"
#include "data/ConexionMaria.h"
#include "data/ServidorPrivado.h"
#include "session/Sesion.h"
#include "toolkit/Ini.h"
#include "toolkit/LibKRVM.h"
#include "toolkit/Texto.h"

namespace paratzorep::cli {

namespace detail {

bool Igual(const std::string& a, const char* b) {
    return toolkit::detail::IgualesSinCaso(a, b);
}

// A port number, or nothing when the text is not one.
std::optional<std::int32_t> Puerto(const std::string& texto) {
    double v = toolkit::LibKRVM().kvVal(texto);
    if (v < 1 || v > 65535) return std::nullopt;
    return static_cast<std::int32_t>(v);
}

std::string Carpeta(const std::filesystem::path& p) {
    std::string s = p.string();
    if (s.empty() || s.back() != '/') s += '/';
    return s;
}

}  // namespace detail

void LeeArranque(const std::filesystem::path& home, session::Iniciales& ini, host::BaseDD& bd,
                 host::DatosConecte& dc, std::vector<std::string>& avisos) {
    const std::filesystem::path archivo = home / "tzorep.ini";
    std::error_code ec;
    if (std::filesystem::exists(archivo, ec)) {
        std::ifstream prueba(archivo);
        if (!prueba) throw std::runtime_error("No se pudo leer " + archivo.string());
    }

    // Defaults from the home folder.
    ini.RutaTanzo(detail::Carpeta(home));
    ini.RutaRpts(detail::Carpeta(home / "rpts"));
    ini.RutaEditaRpts(detail::Carpeta(home / "editarpts"));
    ini.RutaPDFs(detail::Carpeta(home / "pdfs"));
    ini.RutaImgs(detail::Carpeta(home / "imgs"));
    ini.ArchivoINI(archivo.string());
    ini.ArchivoCoordenadas((home / "coordenadas.ini").string());
    bd.cMiBase = "datos1";
    data::ServidorPrivado servidor(home);
    std::optional<data::DatosServidor> privado;
    if (auto e = servidor.estado(); e.corriendo && e.datos) privado = e.datos;
    if (privado) {
        bd.cRuta = privado->host;
        bd.cPuerto = privado->puerto;
        bd.cUsuario = privado->usuario;
        bd.cPassword = privado->password;
    } else {
        bd.cRuta = "127.0.0.1";
    }
    if (const char* usuario = std::getenv("USER"); usuario && *usuario) {
        try {
            ini.UserUsuario(usuario);
        } catch (const std::exception& e) {
            avisos.push_back(e.what());
        }
    }

    for (const auto& [clave, valor] : toolkit::ClavesIni("Iniciales", archivo)) {
        try {
            if (!ini.AsignaPorNombre(clave, valor)) {
                avisos.push_back("[Iniciales] propiedad desconocida: " + clave);
            }
        } catch (const std::exception& e) {
            avisos.push_back("[Iniciales] " + clave + ": " + e.what());
        }
    }
    for (const auto& [clave, valor] : toolkit::ClavesIni("BaseDD", archivo)) {
        if (detail::Igual(clave, "cRuta")) {
            bd.cRuta = valor;
        } else if (detail::Igual(clave, "cUsuario")) {
            bd.cUsuario = valor;
        } else if (detail::Igual(clave, "cPassword")) {
            bd.cPassword = valor;
        } else if (detail::Igual(clave, "cMiBase")) {
            bd.cMiBase = valor;
        } else if (detail::Igual(clave, "cPuerto")) {
            if (auto p = detail::Puerto(valor)) {
                bd.cPuerto = *p;
            } else {
                avisos.push_back("[BaseDD] cPuerto no es un puerto válido: " + valor);
            }
        } else {
            avisos.push_back("[BaseDD] clave desconocida: " + clave);
        }
    }
    // The private server takes a free port at each start: when the file points at the running
    // private server of this home (its user on this machine), the live port and password win.
    if (privado && bd.cUsuario == privado->usuario &&
        (bd.cRuta.empty() || bd.cRuta == "127.0.0.1" || bd.cRuta == "localhost")) {
        bd.cRuta = privado->host;
        bd.cPuerto = privado->puerto;
        bd.cPassword = privado->password;
    }
    // Starting the private server is the fix only when the file points at this machine.
    if (!(bd.cRuta.empty() || bd.cRuta == "127.0.0.1" || bd.cRuta == "localhost" ||
          (privado && bd.cRuta == privado->host)))
        data::ComoArrancarServidor().clear();
    for (const auto& [clave, valor] : toolkit::ClavesIni("Servidor", archivo)) {
        if (detail::Igual(clave, "TiempoDeEspera")) {
            const std::string t = toolkit::detail::Recorta(valor);
            const double v = toolkit::LibKRVM().kvVal(t);
            if (t.empty() || t.find_first_not_of("0123456789") != std::string::npos || v > 86400) {
                avisos.push_back(
                    "[Servidor] TiempoDeEspera debe ser un número de segundos entre 0 y 86400, "
                    "no '" +
                    valor + "'");
            } else {
                data::SegundosDeEspera() = static_cast<unsigned>(v);
            }
        } else {
            avisos.push_back("[Servidor] clave desconocida: " + clave);
        }
    }
    for (const auto& [clave, valor] : toolkit::ClavesIni("DatosConecte", archivo)) {
        if (detail::Igual(clave, "xServidor")) {
            dc.xServidor = valor;
        } else if (detail::Igual(clave, "xUsuario")) {
            dc.xUsuario = valor;
        } else if (detail::Igual(clave, "xPassWord")) {
            dc.xPassWord = valor;
        } else if (detail::Igual(clave, "xBaseDD")) {
            dc.xBaseDD = valor;
        } else if (detail::Igual(clave, "xPuerto")) {
            if (toolkit::detail::Recorta(valor).empty() || toolkit::detail::Recorta(valor) == "0") {
                dc.xPuerto = 0;  // no remote server
            } else if (auto p = detail::Puerto(valor)) {
                dc.xPuerto = *p;
            } else {
                avisos.push_back("[DatosConecte] xPuerto no es un puerto válido: " + valor);
            }
        } else {
            avisos.push_back("[DatosConecte] clave desconocida: " + clave);
        }
    }
}

ResultadoArranque Arranca(const std::filesystem::path& home, session::Iniciales& ini) {
    ResultadoArranque r;
    auto bd = std::make_shared<data::BaseDDMaria>();
    auto dc = std::make_shared<host::DatosConecte>();
    LeeArranque(home, ini, *bd, *dc, r.avisos);
    ini.BaseDD(bd);
    ini.DatosConecte(dc);
    r.baseDD = std::move(bd);
    r.datosConecte = std::move(dc);
    return r;
}

}  // namespace paratzorep::cli
