// RepAdmSALFp: suppliers' balances at a date ("salfp.rpt").
#pragma once

#include "reports/accounts/SaldosAlaFecha.h"

namespace paratzorep::reports {

class RepAdmSALFp : public FormaSaldosAlaFecha {
  public:
    RepAdmSALFp();
};

}  // namespace paratzorep::reports
