#include "renderer/writers/Unicode.h"

namespace paratzorep::renderer::detail {
namespace {

// Decodes one code point at `i`, advancing it; returns U+FFFD for a malformed sequence
// (consuming one byte) so that decoding always progresses.
char32_t Siguiente(std::string_view t, std::size_t& i) {
    auto b0 = static_cast<unsigned char>(t[i]);
    if (b0 < 0x80) {
        ++i;
        return b0;
    }
    int largo = 0;
    char32_t cp = 0;
    if ((b0 & 0xE0) == 0xC0) {
        largo = 2;
        cp = b0 & 0x1F;
    } else if ((b0 & 0xF0) == 0xE0) {
        largo = 3;
        cp = b0 & 0x0F;
    } else if ((b0 & 0xF8) == 0xF0) {
        largo = 4;
        cp = b0 & 0x07;
    } else {
        ++i;
        return 0xFFFD;
    }
    if (i + largo > t.size()) {
        ++i;
        return 0xFFFD;
    }
    for (int k = 1; k < largo; ++k) {
        auto b = static_cast<unsigned char>(t[i + k]);
        if ((b & 0xC0) != 0x80) {
            ++i;
            return 0xFFFD;
        }
        cp = cp << 6 | (b & 0x3F);
    }
    static constexpr char32_t kMinimo[] = {0, 0, 0x80, 0x800, 0x10000};
    if (cp < kMinimo[largo] || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
        ++i;
        return 0xFFFD;
    }
    i += largo;
    return cp;
}

}  // namespace

std::u16string Utf8AUtf16(std::string_view texto) {
    std::u16string r;
    r.reserve(texto.size());
    for (std::size_t i = 0; i < texto.size();) {
        char32_t cp = Siguiente(texto, i);
        if (cp >= 0x10000) {
            cp -= 0x10000;
            r.push_back(static_cast<char16_t>(0xD800 + (cp >> 10)));
            r.push_back(static_cast<char16_t>(0xDC00 + (cp & 0x3FF)));
        } else {
            r.push_back(static_cast<char16_t>(cp));
        }
    }
    return r;
}

std::string Utf8Valido(std::string_view texto) {
    std::string r;
    r.reserve(texto.size());
    for (std::size_t i = 0; i < texto.size();) {
        std::size_t inicio = i;
        char32_t cp = Siguiente(texto, i);
        if (cp == 0xFFFD && !(i - inicio == 3 && texto.substr(inicio, 3) == "\xEF\xBF\xBD"))
            r += "\xEF\xBF\xBD";
        else
            r.append(texto.substr(inicio, i - inicio));
    }
    return r;
}

}  // namespace paratzorep::renderer::detail
