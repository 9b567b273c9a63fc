// Some tables of the company schema, as empresa.sql creates them, for tests that need a few
// of them and not the cost of all (each table is a file the server creates). Needs the
// schema layer (link tz_schema or the component).
#pragma once

#include <mysql.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "schema/Esquema.h"
#include "support/Soporte.h"

namespace paratzorep::pruebas {

// Runs the CREATE TABLE statements of empresa.sql for `tablas` in the connection's database.
inline void cargarTablasDeEmpresa(MYSQL* m, const std::vector<std::string>& tablas) {
    const auto archivo = schema::carpetaEsquemas() / "empresa.sql";
    std::ifstream f(archivo);
    const std::string texto((std::istreambuf_iterator<char>(f)), std::istreambuf_iterator<char>());
    for (const auto& s : schema::dividirSentencias(texto, archivo.string())) {
        const auto inicio = s.sql.find_first_not_of(" \t\r\n");
        for (const auto& t : tablas)
            if (inicio != std::string::npos &&
                s.sql.compare(inicio, 14 + t.size(), "CREATE TABLE " + t + " ") == 0)
                ejecutar(m, s.sql);
    }
}

}  // namespace paratzorep::pruebas
