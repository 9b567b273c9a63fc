#include "reports/accounts/RepAdmSALF.h"

namespace paratzorep::reports {

RepAdmSALF::RepAdmSALF()
    : FormaSaldosAlaFecha("RepAdmSALF", "Saldos a la fecha de clientes", Clientes()) {}

}  // namespace paratzorep::reports
