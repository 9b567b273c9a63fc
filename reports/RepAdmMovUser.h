// RepAdmMovUser: the user activity log report ("bitacoraus.rpt"). Lists the rows of
// bitacorausuarios in a date range, optionally of one user and only the system's entries and
// exits, with the user, version and workstation decoded and the action composed from the
// general database's structure text, the key and the additional data.
#pragma once

#include <string>
#include <vector>

#include "reports/Marco.h"

namespace paratzorep::reports {

class RepAdmMovUser : public FormaReporte {
  public:
    RepAdmMovUser();

    // The action kinds of the check boxes chkAccion(0..4), in order: their captions and the
    // text looked for in the composed action.
    static const std::vector<std::pair<std::string, std::string>>& TiposAccion();

    // The conditions of a print, joined with SumaWhereAnd (" WHERE ..." or "").
    static std::string Condiciones(const std::string& desdeSQL, const std::string& hastaSQL,
                                   const std::string& usuario, bool soloAccesos);
    // The statement that fills the work table.
    static std::string SqlLlenado(const std::string& tabla, const std::string& condiciones);
    // The selection formula for the ticked kinds: any of them ("" when none is ticked).
    static std::string FormulaAcciones(const std::vector<std::string>& tipos);

  protected:
    std::string TablaMovimientos() const override { return "bitacorausuarios"; }
    void Imprimir() override;
};

}  // namespace paratzorep::reports
