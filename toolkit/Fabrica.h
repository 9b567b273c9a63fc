// The helper-object factory: objects are created by identifier, the application key "kvtz5", a
// full stop and the class name ("kvtz5.LibKRVM"). A failed creation gives an empty pointer and
// never throws, so the first use fails in the caller, as with an unregistered library.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace paratzorep::toolkit {

inline constexpr const char* kClaveAplicacion = "kvtz5";

// Base of every helper object.
class ObjetoKv {
  public:
    virtual ~ObjetoKv() = default;
    // The class name without the application key ("LibKRVM").
    virtual std::string Clase() const = 0;
};

using Creador = std::function<std::shared_ptr<ObjetoKv>()>;

// Registers (or replaces) the maker of an identifier.
void Registra(const std::string& identificador, Creador creador);
// Forgets an identifier: later creations under it give an empty pointer.
void Quita(const std::string& identificador);
// Registers every class of the toolkit under "kvtz5.<Clase>". Called once by the factory itself
// on first use; calling it again restores the toolkit's own makers.
void RegistraToolkit();
// The identifiers currently registered, sorted.
std::vector<std::string> Registrados();

// "kvtz5" + "." + clase.
std::string Identificador(const std::string& clase);

// Creates the object of an identifier; empty when unknown or when its maker fails.
std::shared_ptr<ObjetoKv> CreaObjeto(const std::string& identificador) noexcept;

// Creates "kvtz5.<clase>" as T; empty when creation fails or the object is not a T.
template <class T>
std::shared_ptr<T> Crea(const std::string& clase) noexcept {
    return std::dynamic_pointer_cast<T>(CreaObjeto(Identificador(clase)));
}

}  // namespace paratzorep::toolkit
