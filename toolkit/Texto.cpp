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

bool EsUtf8Valido(std::string_view s) {
    std::size_t i = 0;
    while (i < s.size()) {
        const auto c = static_cast<unsigned char>(s[i]);
        std::size_t n = 0;
        unsigned minimo = 0, valor = 0;
        if (c < 0x80) {
            ++i;
            continue;
        } else if ((c & 0xE0) == 0xC0) {
            n = 1, minimo = 0x80, valor = c & 0x1F;
        } else if ((c & 0xF0) == 0xE0) {
            n = 2, minimo = 0x800, valor = c & 0x0F;
        } else if ((c & 0xF8) == 0xF0) {
            n = 3, minimo = 0x10000, valor = c & 0x07;
        } else {
            return false;
        }
        if (i + n >= s.size()) return false;  // cut short
        for (std::size_t k = 1; k <= n; ++k) {
            const auto b = static_cast<unsigned char>(s[i + k]);
            if ((b & 0xC0) != 0x80) return false;
            valor = (valor << 6) | (b & 0x3F);
        }
        if (valor < minimo || valor > 0x10FFFF || (valor >= 0xD800 && valor <= 0xDFFF))
            return false;
        i += n + 1;
    }
    return true;
}

}  // namespace paratzorep::toolkit::detail
