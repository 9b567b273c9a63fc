// RepAdmAdSProv: aging of the suppliers' balances ("adsdpm.rpt"). Every open document of the
// payables ledger (cxp) of the kind chosen in cmbDato, with its days past due on the cut-off
// date, in the work table "adsmovtos"; the template spreads the balances over the aging
// columns.
#pragma once

#include <string>

#include "reports/Marco.h"
#include "reports/accounts/Antiguedad.h"

namespace paratzorep::reports {

class RepAdmAdSProv : public FormaReporte {
  public:
    RepAdmAdSProv();

    FiltrosAntiguedad Filtros() const;
    // "ENCABEZADO='<caption> al día: dd/mmm/yyyy'" and "TEXTOLLAVE='<the kind's word>'".
    std::string FormulaEncabezado() const;
    std::string FormulaLlave() const;

  protected:
    void EnlazaCombos() override;
    void AlSalir(Control& c) override;
    void AlTerminarCarga() override;
    void Imprimir() override;
};

}  // namespace paratzorep::reports
