// UTF-8 decoding for the writers whose formats store UTF-16 (BIFF8, RTF).
#pragma once

#include <string>
#include <string_view>

namespace paratzorep::renderer::detail {

// UTF-16 code units of a UTF-8 text. Malformed bytes become U+FFFD, so that any input
// produces a file.
std::u16string Utf8AUtf16(std::string_view texto);

// Replaces malformed UTF-8 sequences with U+FFFD (for writers that keep UTF-8).
std::string Utf8Valido(std::string_view texto);

}  // namespace paratzorep::renderer::detail
