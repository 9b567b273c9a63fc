// RepAdmCobRecibos: the numbered receipts issued for customer payments in a date range
// ("recibos.rpt"), each with the payment it stands for; cancelled receipts, and receipts whose
// payment no longer exists, read "CANCELADO".
#pragma once

#include <string>

#include "reports/accounts/Cobranza.h"

namespace paratzorep::reports {

class RepAdmCobRecibos : public FormaCobranza {
  public:
    RepAdmCobRecibos();

    // The receipts read: "recibos" + the date conditions + " ORDER BY Recibo".
    static std::string FuenteRecibos(const std::string& desdeSQL, const std::string& hastaSQL);
    // The statement that fills the work table in one go, receipt by receipt in number order,
    // each with its payment's concept, amount, customer and name, within the customer range.
    static std::string SqlLlenado(const std::string& tabla, const std::string& desdeSQL,
                                  const std::string& hastaSQL, const std::string& claveDesde,
                                  const std::string& claveHasta);

  protected:
    std::string TablaMovimientos() const override { return "recibos"; }
    // A blank date leaves that end of the period open.
    bool FechaOpcional(const Control&) const override { return true; }
    void AlSalir(Control& c) override;
    void Imprimir() override;
};

}  // namespace paratzorep::reports
