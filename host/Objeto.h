// A generic host object handed to the component (the registry helper DelRegistro and the like):
// properties read and written by name, nothing else is known of it.
#pragma once

#include <map>
#include <string>

namespace paratzorep::host {

class Objeto {
  public:
    virtual ~Objeto() = default;

    // Sets a property by name.
    virtual void Propiedad(const std::string& nombre, const std::string& valor) {
        propiedades_[nombre] = valor;
    }
    // Reads a property by name; "" when it was never set.
    virtual std::string Propiedad(const std::string& nombre) const {
        auto it = propiedades_.find(nombre);
        return it == propiedades_.end() ? std::string() : it->second;
    }

  private:
    std::map<std::string, std::string> propiedades_;
};

}  // namespace paratzorep::host

namespace paratzorep::host {

// A window the host shows (report forms, dialogs): its name, caption and position in pixels.
// Skins and saved window positions work on this.
class Ventana {
  public:
    virtual ~Ventana() = default;

    // The window's class name ("RepAdmCxC").
    virtual std::string Nombre() const = 0;
    std::string Caption;
    int Left = 0;
    int Top = 0;
    int Width = 0;
    int Height = 0;
    // 0 normal, 1 minimised, 2 maximised.
    int WindowState = 0;
    // The skin applied last ("" when none).
    std::string Piel;
};

}  // namespace paratzorep::host
