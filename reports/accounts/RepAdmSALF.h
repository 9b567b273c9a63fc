// RepAdmSALF: customers' balances at a date ("salf.rpt").
#pragma once

#include "reports/accounts/SaldosAlaFecha.h"

namespace paratzorep::reports {

class RepAdmSALF : public FormaSaldosAlaFecha {
  public:
    RepAdmSALF();
};

}  // namespace paratzorep::reports
