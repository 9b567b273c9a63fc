// Small text helpers shared by the toolkit's objects.
#pragma once

#include <string>
#include <string_view>

namespace paratzorep::toolkit::detail {

// Blanks (space, tab, CR, LF) removed from both ends.
std::string Recorta(std::string_view s);
// ASCII lower case (UTF-8 bytes above 127 are left as they are).
std::string Minusculas(std::string_view s);
// Equal without regard to ASCII case.
bool IgualesSinCaso(std::string_view a, std::string_view b);
// Every occurrence of `buscado` replaced by `nuevo`.
std::string Reemplaza(std::string_view s, std::string_view buscado, std::string_view nuevo);
// A text made safe inside a single-quoted SQL literal (quote and backslash doubled/escaped).
std::string EscapaSQL(std::string_view s);
// Whether a text is well-formed UTF-8 (no stray, overlong or surrogate sequences).
bool EsUtf8Valido(std::string_view s);

}  // namespace paratzorep::toolkit::detail
