// Refilling tables of the local work file from queries on the company database, rows streamed
// from the server straight into SQLite, inside one transaction of the work file: the tables
// end up with every row copied or, when anything fails, as they were before.
//
//   data::CargaLocal carga(cnLocal);
//   carga.Rehace("Utilidad");
//   carga.Copia(cnEmpresa, "SELECT ... FROM facturas ...", "Utilidad", {"Fecha", "Cliente"});
//   carga.Confirma();  // without it, the destructor rolls everything back
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/BaseDD.h"

namespace paratzorep::data {

class ConexionLocal;

class CargaLocal {
  public:
    // Starts the transaction on the local work file (opened with AbreBdDAccess). Throws
    // host::ErrorDatos when the connection is not a local work file.
    explicit CargaLocal(const host::Conexion& local);
    ~CargaLocal();
    CargaLocal(const CargaLocal&) = delete;
    CargaLocal& operator=(const CargaLocal&) = delete;

    // Empties a table of the file: dropped and created again from its definition (so that a
    // file made by an older version gets the current columns), or its rows deleted when the
    // file does not define it.
    void Rehace(const std::string& tabla);
    // Appends the rows of `sql`, run on `origen`, to `tabla`: the query's columns in order
    // into `columnas`. Returns the rows copied.
    std::int64_t Copia(const host::Conexion& origen, const std::string& sql,
                       const std::string& tabla, const std::vector<std::string>& columnas);
    // Commits what was copied.
    void Confirma();

  private:
    ConexionLocal* local_;
    bool confirmada_ = false;
};

}  // namespace paratzorep::data
