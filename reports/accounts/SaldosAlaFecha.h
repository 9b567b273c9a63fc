// Balances at a date, shared by the customer (RepAdmSALF) and supplier (RepAdmSALFp) forms:
// each account's balance as it stood at the start of a chosen day, worked backwards from the
// current balance by undoing every statement movement dated on or after that day.
#pragma once

#include <string>

#include "reports/Marco.h"

namespace paratzorep::reports {

// The tables of one side: accounts, balances, statement, classifications, the setting that
// shows the classification list, and the template.
struct LadoSaldos {
    const char* cuentas;
    const char* saldos;
    const char* edocta;
    const char* clasificaciones;
    const char* ajusteClasifica;
    const char* plantilla;
};

class FormaSaldosAlaFecha : public FormaReporte {
  public:
    FormaSaldosAlaFecha(std::string nombre, std::string caption, const LadoSaldos& lado);

    static const LadoSaldos& Clientes();
    static const LadoSaldos& Proveedores();

    // The accounts read: "clientes" + the key-range and classification conditions joined by
    // SumaWhereAnd + " ORDER BY Clave".
    static std::string FuenteCuentas(const LadoSaldos& lado, const std::string& desde,
                                     const std::string& hasta, const std::string& clasificacion);
    // The statement that fills the work table in one go: every account of `fuente`, its
    // current balance of currency `moneda`, the charges and payments dated on or after
    // `fechaSQL` undone; with `ignorar`, each cancellation found on or after the date is taken
    // out together with the charge it reverses.
    static std::string SqlLlenado(const LadoSaldos& lado, const std::string& tabla,
                                  const std::string& fuente, const std::string& fechaSQL,
                                  const std::string& moneda, bool ignorar);
    // The report formula MONEDA: "MONEDA='Al día: <date in words>[. Moneda: <abbreviation>]'".
    static std::string FormulaMoneda(const std::string& fechaCompleta,
                                     const std::string& abreviacion);

  protected:
    void EnlazaCombos() override;
    void Imprimir() override;

  private:
    const LadoSaldos& lado_;
};

}  // namespace paratzorep::reports
