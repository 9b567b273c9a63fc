// What the online movements engine does on one connection, whichever side it is (company or
// central): opening table-form sources, transactions, the statement recomputation and the
// balance table. Internal to the engines layer.
#pragma once

#include <cstdint>
#include <string>

#include "engines/MovEnLinea.h"
#include "host/BaseDD.h"

namespace paratzorep::engines::detail {

// AbrirTabla on the first row; throws host::ErrorDatos when the source cannot be opened.
host::Recordset AbreTabla(host::BaseDD& bd, const host::Conexion& cn, const std::string& fuente);
// Sets a field when the recordset has it (a central table made from an older layout may lack
// a column that the company's has).
void Pon(host::Recordset& rs, const std::string& campo, host::Valor valor);

// START TRANSACTION now; ROLLBACK on destruction unless Confirma() committed.
class Transaccion {
  public:
    Transaccion(host::BaseDD& bd, host::Conexion cn);
    ~Transaccion();
    Transaccion(const Transaccion&) = delete;
    Transaccion& operator=(const Transaccion&) = delete;
    void Confirma();

  private:
    host::BaseDD& bd_;
    host::Conexion cn_;
    bool hecha_ = false;
};

// A statement row's date as the recomputation compares it: through "dd/mmm/yyyy" to
// "yyyy-mm-dd"; the zero date stays "0000-00-00".
std::string FechaDeMovimiento(const host::Valor& fecha);
// A key that will go into the statements as it stands, or ErrorMovEnLinea saying why not.
void ExigeClave(const std::string& clave, const std::string& queEs);

// The running balances from statement row `id` onward, row by row or in one statement; then
// (currency 1) clientes.Saldo and saldoscli.
ResumenRecalculo Recalcula(host::BaseDD& bd, const host::Conexion& cn, std::int64_t id,
                           bool porRenglon);
// saldoscli (currency 1) set to clientes.Saldo when they differ.
bool ActualizaSaldoEn(host::BaseDD& bd, const host::Conexion& cn, const std::string& clave);

}  // namespace paratzorep::engines::detail
