#include "toolkit/Texto.h"

#include <cctype>

namespace paratzorep::toolkit::detail {

namespace {
bool EsBlanco(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}
}  // namespace

std::string Recorta(std::string_view s) {
    std::size_t i = 0, j = s.size();
    while (i < j && EsBlanco(s[i])) ++i;
    while (j > i && EsBlanco(s[j - 1])) --j;
    return std::string(s.substr(i, j - i));
}

std::string Minusculas(std::string_view s) {
    std::string r(s);
    for (char& c : r) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return r;
}

bool IgualesSinCaso(std::string_view a, std::string_view b) {
    return a.size() == b.size() && Minusculas(a) == Minusculas(b);
}

std::string Reemplaza(std::string_view s, std::string_view buscado, std::string_view nuevo) {
    if (buscado.empty()) return std::string(s);
    std::string r;
    r.reserve(s.size());
    std::size_t pos = 0;
    while (true) {
        std::size_t hallado = s.find(buscado, pos);
        if (hallado == std::string_view::npos) break;
        r.append(s.substr(pos, hallado - pos));
        r.append(nuevo);
        pos = hallado + buscado.size();
    }
    r.append(s.substr(pos));
    return r;
}

std::string EscapaSQL(std::string_view s) {
    std::string r;
    r.reserve(s.size());
    for (char c : s) {
        if (c == '\'') {
            r += "''";
        } else if (c == '\\') {
            r += "\\\\";
        } else {
            r += c;
        }
    }
    return r;
}

}  // namespace paratzorep::toolkit::detail
