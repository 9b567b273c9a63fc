// "kvtz5.MyODBCs": the ODBC data source "myodbc3-test" that the report renderer connects
// through (unixODBC, MariaDB driver).
#pragma once

#include <cstdint>
#include <string>

#include "toolkit/Fabrica.h"

namespace paratzorep::toolkit {

inline constexpr const char* kFuenteODBC = "myodbc3-test";
inline constexpr const char* kControladorODBC = "/usr/lib/x86_64-linux-gnu/odbc/libmaodbc.so";

class MyODBCs : public ObjetoKv {
  public:
    std::string Clase() const override { return "MyODBCs"; }

    // The odbc.ini to write; "" means $ODBCINI when set, else kvtz5/odbc.ini in the user's
    // configuration folder.
    std::string ArchivoOdbc;

    // Writes (or updates) the data source "myodbc3-test" with the server values, keeps the
    // file's other data sources, makes the file readable by its owner only (0600) and points
    // ODBCINI at it. Returns the file's path; throws std::runtime_error when it cannot write.
    std::string GuardaEnODBCtzp(const std::string& servidor, const std::string& base,
                                const std::string& usuario, const std::string& password,
                                std::int32_t puerto) const;
    // The file GuardaEnODBCtzp writes.
    std::string Archivo() const;
};

}  // namespace paratzorep::toolkit
