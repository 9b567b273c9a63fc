// INI settings files: "[Seccion]" headers and "Clave=Valor" lines, UTF-8 (a leading BOM is
// skipped), sections and keys matched without regard to case, ";" and "#" comment lines kept.
// Writes go to a temporary file beside the target that then replaces it, so a failed write
// never leaves half a file.
#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace paratzorep::toolkit {

// The value of `clave` in `seccion`; `omision` when the file, section or key is missing.
std::string LeeIni(const std::string& seccion, const std::string& clave,
                   const std::filesystem::path& archivo, const std::string& omision = "");
// Writes `clave`=`valor` into `seccion`, creating the file, folder, section or key as needed.
// Throws std::runtime_error (Spanish message with the path) when the file cannot be written.
void EscribeIni(const std::string& seccion, const std::string& clave, const std::string& valor,
                const std::filesystem::path& archivo);
// Every "Clave=Valor" of a section in file order (keys as written); empty when missing.
std::vector<std::pair<std::string, std::string>> ClavesIni(const std::string& seccion,
                                                           const std::filesystem::path& archivo);
// Removes a key ("" removes the whole section); a missing file is fine.
void BorraIni(const std::string& seccion, const std::string& clave,
              const std::filesystem::path& archivo);

// The helper library's own registry file: $XDG_CONFIG_HOME/kvtz5/kvtz5.ini (or
// ~/.config/kvtz5/kvtz5.ini).
std::filesystem::path ArchivoRegistro();

namespace detail {
// Writes `contenido` to `archivo` through a temporary file and a rename; `modo` sets the
// permissions of the new file (0 keeps those of the file it replaces, 0644 for a new one).
void EscribeAtomico(const std::filesystem::path& archivo, const std::string& contenido,
                    unsigned modo = 0);
}  // namespace detail

}  // namespace paratzorep::toolkit
