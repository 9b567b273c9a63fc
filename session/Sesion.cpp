#include "session/Sesion.h"

namespace paratzorep::session {

RegistroSesion& sesion() {
    static RegistroSesion registro;
    return registro;
}

}  // namespace paratzorep::session
