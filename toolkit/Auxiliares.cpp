#include "toolkit/Auxiliares.h"

#include <cctype>
#include <sstream>

#include "toolkit/Texto.h"

namespace paratzorep::toolkit {

std::string BasesDD::Califica(const std::string& tabla, const std::string& base) const {
    if (base.empty() || tabla.find('.') != std::string::npos) return tabla;
    return base + "." + tabla;
}

bool BasesDD::NombreValido(const std::string& nombre) const {
    if (nombre.empty() || nombre.size() > 64) return false;
    for (char c : nombre) {
        if (!std::isalnum(static_cast<unsigned char>(c)) && c != '_' && c != '$') return false;
    }
    return true;
}

std::int16_t DeControles::BuscaEnLista(const std::vector<std::string>& items,
                                       const std::string& texto) const {
    std::string buscado = detail::Recorta(texto);
    for (std::size_t i = 0; i < items.size() && i < 32767; ++i) {
        if (detail::IgualesSinCaso(detail::Recorta(items[i]), buscado)) {
            return static_cast<std::int16_t>(i);
        }
    }
    return -1;
}

std::string DeAyudaP0::CondicionBusqueda(const std::string& campo, const std::string& texto) const {
    std::istringstream in(texto);
    std::string palabra, r;
    while (in >> palabra) {
        if (!r.empty()) r += " AND ";
        r += campo + " LIKE '%" + detail::EscapaSQL(palabra) + "%'";
    }
    return r;
}

bool ConcentradorRutinas::PluginCorrecto(const std::string& lista,
                                         const std::string& plugin) const {
    std::string p = detail::Recorta(plugin);
    if (p.empty()) return false;
    std::string item;
    for (std::size_t i = 0; i <= lista.size(); ++i) {
        if (i == lista.size() || lista[i] == ',' || lista[i] == ';' || lista[i] == '|') {
            if (detail::IgualesSinCaso(detail::Recorta(item), p)) return true;
            item.clear();
        } else {
            item += lista[i];
        }
    }
    return false;
}

}  // namespace paratzorep::toolkit
