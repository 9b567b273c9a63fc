// RepAdmEdoCta: the account statements of customers ("edoctactes.rpt") or suppliers
// ("edoctaprov.rpt"). No work table and no computed balance: the template is rendered straight
// over the statement table, whose rows carry the running balance (SaldoAnterior, SaldoActual),
// with a selection formula for one currency, the dates, the account range and, for customers,
// without the movements that cancellations generate.
#pragma once

#include <string>

#include "reports/accounts/FormaCuentas.h"

namespace paratzorep::reports {

class RepAdmEdoCta : public FormaCuentas {
  public:
    RepAdmEdoCta();

    void AjustaModo() override;

    // The selection formula of a print.
    static std::string FormulaSeleccion(const FiltrosCuenta& f);
    static std::string Plantilla(bool clientes);

  protected:
    void Imprimir() override;
};

}  // namespace paratzorep::reports
