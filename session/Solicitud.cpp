#include "session/Solicitud.h"

#include <stdexcept>

namespace paratzorep::session {

namespace detail {

std::size_t IndiceValido(int i, const char* que) {
    if (i < 0 || i >= SolicitudReporte::kMaxEntradas) {
        throw std::out_of_range(std::string("Índice de ") + que + " fuera de rango: " +
                                std::to_string(i) + " (se admiten de 0 a 20)");
    }
    return static_cast<std::size_t>(i);
}

std::vector<std::string> NoVacias(const std::array<std::string, 21>& a) {
    std::vector<std::string> r;
    for (const auto& s : a) {
        if (!s.empty()) r.push_back(s);
    }
    return r;
}

}  // namespace detail

void SolicitudReporte::Formula(int i, const std::string& texto) {
    formulas_[detail::IndiceValido(i, "fórmula")] = texto;
}

const std::string& SolicitudReporte::Formula(int i) const {
    return formulas_[detail::IndiceValido(i, "fórmula")];
}

void SolicitudReporte::SortField(int i, const std::string& texto) {
    orden_[detail::IndiceValido(i, "campo de orden")] = texto;
}

const std::string& SolicitudReporte::SortField(int i) const {
    return orden_[detail::IndiceValido(i, "campo de orden")];
}

std::vector<std::string> SolicitudReporte::Formulas() const {
    return detail::NoVacias(formulas_);
}

std::vector<std::string> SolicitudReporte::SortFields() const {
    return detail::NoVacias(orden_);
}

void SolicitudReporte::MapeaTabla(const std::string& tablaPlantilla,
                                  const std::string& tablaTrabajo) {
    ArchivosDatos.push_back(tablaPlantilla + "*" + tablaTrabajo);
}

void SolicitudReporte::Limpia() {
    *this = SolicitudReporte{};
}

SolicitudReporte& solicitud() {
    static SolicitudReporte s;
    return s;
}

bool& HuboError() {
    static bool bandera = false;
    return bandera;
}

}  // namespace paratzorep::session
