// ODBC connection strings to a test database through the DSN the reports name.
#pragma once

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "support/Soporte.h"

namespace paratzorep::renderer::data::prueba {

// Writes the tests' odbc.ini once and points the driver manager at it before the
// process's first ODBC call; returns the connection string for the database.
inline std::string conexionOdbc(const pruebas::BaseDeDatosDePrueba& bd) {
    const auto& s = bd.servidor();
    static const bool hecho = [&s] {
        const std::string ruta = (std::filesystem::temp_directory_path() /
                                  ("tz-odbc-" + std::to_string(::getpid()) + ".ini"))
                                     .string();
        std::ofstream(ruta) << "[myodbc3-test]\nDriver=/usr/lib/x86_64-linux-gnu/odbc/libmaodbc.so"
                            << "\nSERVER=" << s.host << "\nPORT=" << s.puerto << "\n";
        ::setenv("ODBCINI", ruta.c_str(), 1);
        return true;
    }();
    (void)hecho;
    return "DSN=myodbc3-test;SERVER=" + s.host + ";DB=" + bd.nombre() + ";UID=" + s.usuario +
           ";PWD=" + s.password;
}

}  // namespace paratzorep::renderer::data::prueba
