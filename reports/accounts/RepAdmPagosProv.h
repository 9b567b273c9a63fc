// RepAdmPagosProv: the payments made to suppliers ("pagosprov.rpt"), rendered straight over
// the supplier statement with a selection formula: the rows with a payment, optionally
// without returns, of one currency, a date range and a supplier range, in the order chosen.
#pragma once

#include <string>

#include "reports/accounts/Cobranza.h"

namespace paratzorep::reports {

class RepAdmPagosProv : public FormaCobranza {
  public:
    RepAdmPagosProv();

    // The selection formula; dates as typed ("dd/mm/yyyy", "" for none), `moneda` the
    // currency's id ("" for every currency).
    static std::string FormulaSeleccion(const std::string& desde, const std::string& hasta,
                                        const std::string& claveDesde,
                                        const std::string& claveHasta, const std::string& moneda,
                                        bool devoluciones);

  protected:
    std::string TablaMovimientos() const override { return "edoctaprov"; }
    // A blank date leaves that end of the period open.
    bool FechaOpcional(const Control&) const override { return true; }
    void EnlazaCombos() override;
    void AlSalir(Control& c) override;
    void Imprimir() override;
};

}  // namespace paratzorep::reports
