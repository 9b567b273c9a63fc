// Report forms: the form model lives in host/Formulario.h; the report forms' frame, paired
// forms included, in reports/Marco.h.
#pragma once

#include "host/Formulario.h"

namespace paratzorep::reports {

using host::Control;
using host::ErrorFormulario;
using host::Formulario;

}  // namespace paratzorep::reports
