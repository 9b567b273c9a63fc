#include "reports/accounts/RepAdmSALFp.h"

namespace paratzorep::reports {

RepAdmSALFp::RepAdmSALFp()
    : FormaSaldosAlaFecha("RepAdmSALFp", "Saldos a la fecha de proveedores", Proveedores()) {}

}  // namespace paratzorep::reports
