// RepAdmSdoProdsCtes: the balances of products that customers hold with the business
// (containers, goods on deposit), straight from saldosprodsctes, which the host keeps, per
// customer ("saldosprodsctes.rpt"). No work table: a selection formula on the customer key.
#pragma once

#include <string>

#include "reports/Marco.h"

namespace paratzorep::reports {

class RepAdmSdoProdsCtes : public FormaReporte {
  public:
    RepAdmSdoProdsCtes();

    // The selection formula of a customer key range ("" with both boxes blank).
    static std::string FormulaSeleccion(const std::string& clave0, const std::string& clave1);

  protected:
    void AlSalir(Control& c) override;
    bool FechaOpcional(const Control&) const override { return true; }
    void Imprimir() override;
};

}  // namespace paratzorep::reports
