#include "toolkit/MyODBCs.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "toolkit/Ini.h"
#include "toolkit/Texto.h"

namespace paratzorep::toolkit {

std::string MyODBCs::Archivo() const {
    if (!ArchivoOdbc.empty()) return ArchivoOdbc;
    if (const char* env = std::getenv("ODBCINI"); env && *env) return env;
    return (ArchivoRegistro().parent_path() / "odbc.ini").string();
}

std::string MyODBCs::GuardaEnODBCtzp(const std::string& servidor, const std::string& base,
                                     const std::string& usuario, const std::string& password,
                                     std::int32_t puerto) const {
    const std::string archivo = Archivo();
    // Rebuild the file without our section, then append it, in one atomic write.
    std::string resto;
    {
        std::ifstream in(archivo, std::ios::binary);
        std::string linea;
        bool nuestra = false;
        while (in && std::getline(in, linea)) {
            std::string t = detail::Recorta(linea);
            if (t.size() >= 2 && t.front() == '[' && t.back() == ']') {
                nuestra = detail::IgualesSinCaso(t.substr(1, t.size() - 2), kFuenteODBC);
            }
            if (!nuestra) resto += linea + "\n";
        }
    }
    while (resto.size() >= 2 && resto.substr(resto.size() - 2) == "\n\n") resto.pop_back();
    std::ostringstream s;
    if (!resto.empty()) s << resto << "\n";
    s << "[" << kFuenteODBC << "]\n"
      << "Driver=" << kControladorODBC << "\n"
      << "SERVER=" << servidor << "\n"
      << "DATABASE=" << base << "\n"
      << "USER=" << usuario << "\n"
      << "PASSWORD=" << password << "\n"
      << "PORT=" << puerto << "\n";
    detail::EscribeAtomico(archivo, s.str(), 0600);
    ::setenv("ODBCINI", archivo.c_str(), 1);
    return archivo;
}

}  // namespace paratzorep::toolkit
