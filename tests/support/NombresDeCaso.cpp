#include "NombresDeCaso.h"

#include <cctype>
#include <set>
#include <vector>

namespace paratzorep::pruebas {

namespace detail {

constexpr std::size_t kLargoMaximo = 80;

// The ASCII letter of a two-byte UTF-8 Spanish letter (0xC3 xx), or 0.
char sinAcento(unsigned char segundo) {
    switch (segundo) {
        case 0x81:
            return 'A';
        case 0x89:
            return 'E';
        case 0x8D:
            return 'I';
        case 0x93:
            return 'O';
        case 0x9A:
            return 'U';
        case 0x9C:
            return 'U';
        case 0x91:
            return 'N';
        case 0xA1:
            return 'a';
        case 0xA9:
            return 'e';
        case 0xAD:
            return 'i';
        case 0xB3:
            return 'o';
        case 0xBA:
            return 'u';
        case 0xBC:
            return 'u';
        case 0xB1:
            return 'n';
        default:
            return 0;
    }
}

// The word of an operator at the start of `resto`, and how many characters it takes.
std::pair<const char*, std::size_t> operador(std::string_view resto) {
    static const std::pair<std::string_view, const char*> kOperadores[] = {
        {"<>", "distinto"}, {"<=", "menor_o_igual"}, {">=", "mayor_o_igual"},
        {"<", "menor"},     {">", "mayor"},          {"=", "igual"},
        {"+", "mas"},       {"-", "menos"},          {"*", "por"},
        {"/", "entre"},     {"&", "concat"},         {"#", "numeral"},
    };
    for (const auto& [simbolo, palabra] : kOperadores) {
        if (resto.substr(0, simbolo.size()) == simbolo) return {palabra, simbolo.size()};
    }
    return {nullptr, 0};
}

}  // namespace detail

std::string NombreDeCaso(std::string_view texto) {
    std::string r;
    bool separa = false;
    auto agrega = [&](char c) {
        if (separa && !r.empty()) r += '_';
        separa = false;
        r += c;
    };
    for (std::size_t i = 0; i < texto.size(); ++i) {
        const auto c = static_cast<unsigned char>(texto[i]);
        if (c < 0x80 && std::isalnum(c)) {
            agrega(static_cast<char>(c));
        } else if (c == 0xC3 && i + 1 < texto.size() &&
                   detail::sinAcento(static_cast<unsigned char>(texto[i + 1]))) {
            agrega(detail::sinAcento(static_cast<unsigned char>(texto[++i])));
        } else {
            separa = true;
        }
    }
    if (r.size() > detail::kLargoMaximo) {
        // Cut at a word's end when there is one in the last quarter.
        const auto corte = r.rfind('_', detail::kLargoMaximo);
        r.resize(corte != std::string::npos && corte > detail::kLargoMaximo * 3 / 4
                     ? corte
                     : detail::kLargoMaximo);
    }
    while (!r.empty() && r.back() == '_') r.pop_back();
    return r.empty() ? "vacio" : r;
}

std::string NombreDeFormula(std::string_view formula) {
    std::string palabras;
    char comilla = 0;           // the quote of the text being read, 0 outside quotes
    std::vector<bool> agrupan;  // per open parenthesis: a grouping one, not a call's
    for (std::size_t i = 0; i < formula.size(); ++i) {
        const char c = formula[i];
        const char siguiente = i + 1 < formula.size() ? formula[i + 1] : '\0';
        if (comilla) {
            if (c == comilla) {
                if (siguiente == comilla)
                    ++i;  // a doubled quote inside the text
                else
                    comilla = 0;
                palabras += ' ';
            } else {
                palabras += c;
            }
        } else if (c == '\'' || c == '"') {
            if (siguiente == c) {
                palabras += " vacio ";
                ++i;
            } else {
                comilla = c;
                palabras += ' ';
            }
        } else if (c == '/' && siguiente == '/') {
            palabras += " comentario ";  // to the end of the line
            while (i + 1 < formula.size() && formula[i + 1] != '\n') ++i;
        } else if (c == '(') {
            const bool llamada =
                i > 0 &&
                (std::isalnum(static_cast<unsigned char>(formula[i - 1])) || formula[i - 1] == '_');
            agrupan.push_back(!llamada);
            palabras += llamada ? " " : " abre ";
        } else if (c == ')') {
            const bool agrupa = !agrupan.empty() && agrupan.back();
            if (!agrupan.empty()) agrupan.pop_back();
            palabras += agrupa ? " cierra " : " ";
        } else if (const auto [palabra, largo] = detail::operador(formula.substr(i)); palabra) {
            palabras += std::string(" ") + palabra + " ";
            i += largo - 1;
        } else {
            palabras += c;
        }
    }
    return NombreDeCaso(palabras);
}

std::string NombreUnico(const std::string& nombre, std::size_t indice) {
    static std::set<std::string> dados;  // the names of the instantiation being named
    if (indice == 0) dados.clear();
    std::string unico = nombre;
    for (int n = 2; !dados.insert(unico).second; ++n) {
        unico = nombre + (n == 2 ? "_bis" : n == 3 ? "_ter" : "_caso" + std::to_string(n));
    }
    return unico;
}

}  // namespace paratzorep::pruebas
