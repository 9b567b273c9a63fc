// RepAdmPerdidas: the product losses ("perdidas.rpt"), listed straight from perdidas and
// perdidasdetalle through a selection formula: period, user (every user whose name sorts at or
// before the one typed), product, line and, where the company uses them, sub-line and brand.
#pragma once

#include <string>

#include "reports/Marco.h"

namespace paratzorep::reports {

class RepAdmPerdidas : public FormaReporte {
  public:
    RepAdmPerdidas();

    struct FiltrosPerdidas {
        std::string desde, hasta, usuario, producto;
        double linea = 0, sublinea = 0, marca = 0;  // 0: any (sub-line and brand also when hidden)
    };
    static std::string FormulaSeleccion(const FiltrosPerdidas& f);

  protected:
    std::string TablaMovimientos() const override { return "perdidas"; }
    bool FechaOpcional(const Control&) const override { return true; }
    void EnlazaCombos() override;
    void Imprimir() override;

  private:
    void LlenaSubLineas();
    FiltrosPerdidas Filtros() const;
};

}  // namespace paratzorep::reports
