// Compound File Binary writer (version 3, 512-byte sectors): the container that
// Excel 97-2003 workbooks live in. Every stream sits in the root storage; streams
// under 4096 bytes go to the mini stream, as readers expect.
#pragma once

#include <cstdint>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace paratzorep::renderer {

struct FlujoCfb {
    std::string nombre;  // ASCII, at most 31 characters
    std::uint64_t tamano = 0;
    // Writes exactly `tamano` bytes of the stream's content.
    std::function<void(std::ostream&)> escribir;
};

// Writes a compound file holding `flujos` to `salida`. Throws ErrorEscritura when a
// name is invalid, the file would pass the format's limits, or a stream's writer
// does not deliver the announced size.
void EscribirCfb(std::ostream& salida, const std::vector<FlujoCfb>& flujos);

namespace detail {

inline constexpr std::uint32_t kSectorLibre = 0xFFFFFFFFu;
inline constexpr std::uint32_t kFinDeCadena = 0xFFFFFFFEu;
inline constexpr std::uint32_t kSectorFat = 0xFFFFFFFDu;
inline constexpr std::uint32_t kSectorDifat = 0xFFFFFFFCu;
inline constexpr std::uint32_t kSinEntrada = 0xFFFFFFFFu;
inline constexpr std::uint32_t kCorteMini = 4096;

// Where each part of the file goes, in sectors counted after the header.
struct PlanCfb {
    std::vector<std::uint32_t> inicioFlujo;  // first sector (or mini sector) per stream
    std::vector<bool> enMini;
    std::uint32_t sectoresDatos = 0;  // sectors of the regular streams
    std::uint32_t inicioMiniFlujo = kFinDeCadena;
    std::uint32_t sectoresMiniFlujo = 0;
    std::uint64_t tamanoMiniFlujo = 0;
    std::uint32_t inicioMiniFat = kFinDeCadena;
    std::uint32_t sectoresMiniFat = 0;
    std::uint32_t inicioDirectorio = 0;
    std::uint32_t sectoresDirectorio = 0;
    std::uint32_t inicioFat = 0;
    std::uint32_t sectoresFat = 0;
    std::uint32_t inicioDifat = kFinDeCadena;
    std::uint32_t sectoresDifat = 0;
    std::uint32_t totalSectores = 0;
};

PlanCfb PlanificarCfb(const std::vector<std::uint64_t>& tamanos);

// Order of names in a storage's red-black tree: shorter first, then by upper case.
int CompararNombresCfb(const std::u16string& a, const std::u16string& b);

}  // namespace detail
}  // namespace paratzorep::renderer
