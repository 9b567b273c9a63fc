// RepAdmUtilXvend: profit by seller ("utilidadxvendedor.rpt"). For each seller, the sales of a
// period (invoices and delivery notes, not cancelled) beside what they cost at the product's
// current cost and at the average cost recorded on each sold line, and how many documents they
// made. One row per seller in the work table utilidadxvendedor; the margins are the template's.
#pragma once

#include <string>

#include "reports/Marco.h"

namespace paratzorep::reports {

class RepAdmUtilXvend : public FormaReporte {
  public:
    RepAdmUtilXvend();

    // The caption of the sales without a seller.
    static constexpr const char* kSinVendedor = "*** SIN VENDEDOR";

    // The conditions on the documents of `tabla` (facturas, remisiones), joined with
    // SumaWhereAnd; dates as "yyyy-mm-dd", "" for an open end.
    static std::string Condiciones(const std::string& tabla, const std::string& desdeSQL,
                                   const std::string& hastaSQL, const std::string& cliente,
                                   const std::string& vendedor);
    // The statement that fills the work table: the lines of both kinds of document grouped by
    // seller, the documents counted.
    static std::string SqlLlenado(const std::string& tabla, const std::string& condFacturas,
                                  const std::string& condRemisiones);
    // The report formula with the period in words.
    static std::string FormulaTitulo(const std::string& desde, const std::string& hasta);

  protected:
    std::string TablaMovimientos() const override { return "facturas"; }
    bool FechaOpcional(const Control&) const override { return true; }
    void EnlazaCombos() override;
    void AlSalir(Control& c) override;
    void Imprimir() override;

  private:
    void MuestraCliente();
    void MuestraVendedor();
};

}  // namespace paratzorep::reports
