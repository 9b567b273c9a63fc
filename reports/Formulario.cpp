#include "reports/Formulario.h"

namespace paratzorep::reports {

std::string Control::NombreCompleto() const {
    return Indice < 0 ? Nombre : Nombre + "(" + std::to_string(Indice) + ")";
}

Formulario::Formulario(std::string nombre, std::string caption) : nombre_(std::move(nombre)) {
    Caption = std::move(caption);
}

Control& Formulario::Agrega(const std::string& nombre, std::int16_t indice,
                            const std::string& caption) {
    auto clave = std::make_pair(nombre, indice);
    if (auto it = porNombre_.find(clave); it != porNombre_.end()) return *it->second;
    auto c = std::make_unique<Control>();
    c->Nombre = nombre;
    c->Indice = indice;
    c->Caption = caption;
    Control* p = c.get();
    controles_.push_back(std::move(c));
    porNombre_[clave] = p;
    return *p;
}

Control& Formulario::Ctl(const std::string& nombre, std::int16_t indice) {
    return const_cast<Control&>(std::as_const(*this).Ctl(nombre, indice));
}

const Control& Formulario::Ctl(const std::string& nombre, std::int16_t indice) const {
    auto it = porNombre_.find({nombre, indice});
    if (it == porNombre_.end()) {
        Control c;
        c.Nombre = nombre;
        c.Indice = indice;
        throw ErrorFormulario("La forma " + nombre_ + " no tiene el control " + c.NombreCompleto());
    }
    return *it->second;
}

bool Formulario::TieneControl(const std::string& nombre, std::int16_t indice) const {
    return porNombre_.count({nombre, indice}) > 0;
}

std::vector<const Control*> Formulario::Controles() const {
    std::vector<const Control*> r;
    for (const auto& c : controles_) r.push_back(c.get());
    return r;
}

void Formulario::Carga() {
    if (cargada_) return;
    cargada_ = true;
    descargada_ = false;
    Load();
}

void Formulario::Descarga() {
    if (descargada_) return;
    Unload();
    descargada_ = true;
    cargada_ = false;
}

FormularioPareado::FormularioPareado(std::string nombre, std::string caption)
    : Formulario(std::move(nombre), std::move(caption)) {
    Agrega("lblTipo");
    Agrega("lblPersona", -1, "Cliente");
}

}  // namespace paratzorep::reports
