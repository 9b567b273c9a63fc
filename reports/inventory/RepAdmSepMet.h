// RepAdmSepMet: the metal separations ("separametales.rpt"), listed straight from
// separacionmet and separacionmetdetalle through a selection formula: period, user, and a
// product that is either the metal separated or one of the metals obtained.
#pragma once

#include <string>

#include "reports/Marco.h"

namespace paratzorep::reports {

class RepAdmSepMet : public FormaReporte {
  public:
    RepAdmSepMet();

    // Dates as typed ("" for none); texts trimmed.
    static std::string FormulaSeleccion(const std::string& desde, const std::string& hasta,
                                        const std::string& producto, const std::string& usuario);

  protected:
    std::string TablaMovimientos() const override { return "separacionmet"; }
    bool FechaOpcional(const Control&) const override { return true; }
    void Imprimir() override;
};

}  // namespace paratzorep::reports
