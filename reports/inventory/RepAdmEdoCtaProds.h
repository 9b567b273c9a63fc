// RepAdmEdoCtaProds: the statements of the products that customers hold with the business
// (containers, goods on deposit), per customer and product, straight from edoctaspc
// ("edoctaprods.rpt"): each movement's document, units handed over and returned, and the
// running balance. No work table: a selection formula on dates, customers and product.
#pragma once

#include <string>

#include "reports/Marco.h"

namespace paratzorep::reports {

class RepAdmEdoCtaProds : public FormaReporte {
  public:
    RepAdmEdoCtaProds();

    // The selection formula: dates as typed (a text that is not a date adds nothing), the
    // customer keys and the product key trimmed ("" when blank).
    static std::string FormulaSeleccion(const std::string& desde, const std::string& hasta,
                                        const std::string& cliente0, const std::string& cliente1,
                                        const std::string& producto);

  protected:
    bool FechaOpcional(const Control&) const override { return true; }
    void Imprimir() override;

  private:
    void Muestra(std::int16_t i);
    std::string TextoFiltros() const;
};

}  // namespace paratzorep::reports
