#include "toolkit/Fabrica.h"

#include <algorithm>
#include <map>

#include "toolkit/Auxiliares.h"
#include "toolkit/BitacoraUsuarios.h"
#include "toolkit/CamposBin.h"
#include "toolkit/DeArchivos.h"
#include "toolkit/ElSkin.h"
#include "toolkit/LibKRVM.h"
#include "toolkit/Movimientos.h"
#include "toolkit/MyODBCs.h"
#include "toolkit/Utilerias.h"

namespace paratzorep::toolkit {

namespace detail {

struct Registro {
    std::map<std::string, Creador> creadores;
    bool iniciado = false;
};

Registro& ElRegistro() {
    static Registro r;
    return r;
}

void IniciaSiHaceFalta() {
    if (!ElRegistro().iniciado) RegistraToolkit();
}

template <class T>
void Alta() {
    Registra(Identificador(T().Clase()), [] { return std::make_shared<T>(); });
}

}  // namespace detail

std::string Identificador(const std::string& clase) {
    return std::string(kClaveAplicacion) + "." + clase;
}

void Registra(const std::string& identificador, Creador creador) {
    detail::IniciaSiHaceFalta();
    detail::ElRegistro().creadores[identificador] = std::move(creador);
}

void Quita(const std::string& identificador) {
    detail::IniciaSiHaceFalta();
    detail::ElRegistro().creadores.erase(identificador);
}

void RegistraToolkit() {
    detail::ElRegistro().iniciado = true;
    detail::Alta<LibKRVM>();
    detail::Alta<Utilerias>();
    detail::Alta<DeArchivos>();
    detail::Alta<ElSkin>();
    detail::Alta<CamposBin>();
    detail::Alta<MyODBCs>();
    detail::Alta<Movimientos>();
    detail::Alta<BasesDD>();
    detail::Alta<DeControles>();
    detail::Alta<DeAyudaP0>();
    detail::Alta<ConcentradorRutinas>();
    detail::Alta<BitacoraUsuarios>();
}

std::vector<std::string> Registrados() {
    detail::IniciaSiHaceFalta();
    std::vector<std::string> r;
    for (const auto& [id, _] : detail::ElRegistro().creadores) r.push_back(id);
    return r;
}

std::shared_ptr<ObjetoKv> CreaObjeto(const std::string& identificador) noexcept {
    try {
        detail::IniciaSiHaceFalta();
        auto& creadores = detail::ElRegistro().creadores;
        auto it = creadores.find(identificador);
        if (it == creadores.end() || !it->second) return nullptr;
        return it->second();
    } catch (...) {
        return nullptr;
    }
}

}  // namespace paratzorep::toolkit
