// Helpers of the template store and runner tests that need no database: a user who answers
// dialogs, and test-name labels.
#pragma once

#include <cctype>
#include <functional>
#include <string>

#include "host/Formulario.h"
#include "host/Interaccion.h"

namespace paratzorep::output::prueba {

// Answers dialogs as a user would: runs `llena` on the form first.
class UsuarioDePrueba : public host::InteraccionGrabada {
  public:
    std::function<void(host::Formulario&)> llena;
    bool Dialogo(host::Formulario& forma) override {
        if (llena) llena(forma);
        return host::InteraccionGrabada::Dialogo(forma);
    }
};

// A label for a test's name: letters and digits only.
inline std::string Etiqueta(const std::string& s) {
    std::string r;
    for (unsigned char c : s) r += std::isalnum(c) ? static_cast<char>(c) : '_';
    return r;
}

}  // namespace paratzorep::output::prueba
