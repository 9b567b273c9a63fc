// RepAdmEntradas: the goods entries into a branch, listed straight from entradas and
// entradasdetalle in detail ("entradas.rpt") or totalled per entry ("entradastot.rpt") through
// a selection formula, or summed per product into a clone of compras3 ("entradasprod.rpt").
#pragma once

#include <string>

#include "reports/inventory/Mercancia.h"

namespace paratzorep::reports {

class RepAdmEntradas : public FormaMercancia {
  public:
    RepAdmEntradas();

    static const DocumentosMercancia& Documentos();
    // `afectadas`: the chosen option of the "Entradas" frame (0 "Afectadas", 1 "Sin afectar",
    // 2 "Ambas").
    static std::string FormulaSeleccion(const FiltrosMercancia& f, int afectadas);
    // The header conditions of the per-product summary (" WHERE ..." or "").
    static std::string Condiciones(const FiltrosMercancia& f, int afectadas);

  protected:
    std::string FormulaListado() const override;
    std::string CondicionesResumen() const override;
    std::vector<std::string> FiltrosPropios() const override;

  private:
    int Afectadas() const;
};

}  // namespace paratzorep::reports
