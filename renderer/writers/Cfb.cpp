#include "renderer/writers/Cfb.h"

#include <algorithm>
#include <numeric>

#include "renderer/writers/Bytes.h"
#include "renderer/writers/ErrorEscritura.h"

namespace paratzorep::renderer {
namespace detail {
namespace {

constexpr std::uint32_t kSector = 512;
constexpr std::uint32_t kMiniSector = 64;
constexpr std::uint32_t kEntradasPorSector = kSector / 4;
constexpr std::uint32_t kDifatEnCabecera = 109;
constexpr std::uint64_t kTamanoMaximo = 0x7FFFFFFFu;  // readers of version 3 stop at 2 GB

std::uint32_t Techo(std::uint64_t a, std::uint64_t b) {
    return static_cast<std::uint32_t>((a + b - 1) / b);
}

std::u16string NombreUtf16(const std::string& nombre) {
    if (nombre.empty() || nombre.size() > 31)
        throw ErrorEscritura("Nombre de flujo inválido en el archivo compuesto", {}, nombre);
    std::u16string r;
    for (unsigned char c : nombre) {
        if (c < 0x20 || c >= 0x80 || c == '/' || c == '\\' || c == ':' || c == '!')
            throw ErrorEscritura("Nombre de flujo inválido en el archivo compuesto", {}, nombre);
        r.push_back(c);
    }
    return r;
}

// A balanced binary search tree over the sorted entries: the middle entry at the root.
// Nodes on the deepest level are red and all others black, which keeps every path's
// black count equal.
struct Nodo {
    std::uint32_t izquierda = kSinEntrada;
    std::uint32_t derecha = kSinEntrada;
    int profundidad = 0;
};

std::uint32_t Arbol(const std::vector<std::uint32_t>& orden, int desde, int hasta, int profundidad,
                    std::vector<Nodo>& nodos) {
    if (desde >= hasta) return kSinEntrada;
    int medio = (desde + hasta) / 2;
    std::uint32_t id = orden[medio];
    nodos[id].profundidad = profundidad;
    nodos[id].izquierda = Arbol(orden, desde, medio, profundidad + 1, nodos);
    nodos[id].derecha = Arbol(orden, medio + 1, hasta, profundidad + 1, nodos);
    return id;
}

void EntradaDirectorio(Bytes& b, const std::u16string& nombre, std::uint8_t tipo, bool negro,
                       std::uint32_t izquierda, std::uint32_t derecha, std::uint32_t hijo,
                       std::uint32_t inicio, std::uint64_t tamano) {
    for (char16_t c : nombre) b.u16(c);
    b.ceros(64 - nombre.size() * 2);
    b.u16(static_cast<std::uint16_t>(nombre.empty() ? 0 : (nombre.size() + 1) * 2));
    b.u8(tipo).u8(negro ? 1 : 0);
    b.u32(izquierda).u32(derecha).u32(hijo);
    b.ceros(16 + 4 + 8 + 8);  // class id, state bits, creation and modification times
    b.u32(inicio).u64(tamano);
}

void EscribirCompleto(std::ostream& salida, const std::string& datos) {
    salida.write(datos.data(), static_cast<std::streamsize>(datos.size()));
}

void Relleno(std::ostream& salida, std::uint64_t escritos, std::uint32_t bloque) {
    std::uint64_t resto = escritos % bloque;
    if (resto == 0) return;
    std::string ceros(bloque - resto, '\0');
    EscribirCompleto(salida, ceros);
}

void EscribirFlujo(std::ostream& salida, const FlujoCfb& flujo) {
    auto antes = salida.tellp();
    if (flujo.escribir) flujo.escribir(salida);
    if (!salida) throw ErrorEscritura("No se pudo escribir el archivo compuesto", {}, flujo.nombre);
    auto despues = salida.tellp();
    if (antes >= 0 && despues >= 0 && static_cast<std::uint64_t>(despues - antes) != flujo.tamano)
        throw ErrorEscritura("El flujo no tiene el tamaño anunciado", {}, flujo.nombre);
}

}  // namespace

int CompararNombresCfb(const std::u16string& a, const std::u16string& b) {
    if (a.size() != b.size()) return a.size() < b.size() ? -1 : 1;
    for (std::size_t i = 0; i < a.size(); ++i) {
        auto ca = a[i] >= u'a' && a[i] <= u'z' ? a[i] - 32 : a[i];
        auto cb = b[i] >= u'a' && b[i] <= u'z' ? b[i] - 32 : b[i];
        if (ca != cb) return ca < cb ? -1 : 1;
    }
    return 0;
}

PlanCfb PlanificarCfb(const std::vector<std::uint64_t>& tamanos) {
    PlanCfb plan;
    std::uint64_t sector = 0;
    std::uint64_t mini = 0;
    for (std::uint64_t tamano : tamanos) {
        if (tamano > kTamanoMaximo)
            throw ErrorEscritura("El archivo excede el tamaño máximo del formato");
        bool pequeno = tamano < kCorteMini;
        plan.enMini.push_back(pequeno);
        if (tamano == 0) {
            plan.inicioFlujo.push_back(kFinDeCadena);
        } else if (pequeno) {
            plan.inicioFlujo.push_back(static_cast<std::uint32_t>(mini));
            mini += Techo(tamano, kMiniSector);
        } else {
            plan.inicioFlujo.push_back(static_cast<std::uint32_t>(sector));
            sector += Techo(tamano, kSector);
        }
    }
    plan.sectoresDatos = static_cast<std::uint32_t>(sector);
    plan.tamanoMiniFlujo = mini * kMiniSector;
    plan.sectoresMiniFlujo = Techo(plan.tamanoMiniFlujo, kSector);
    if (plan.sectoresMiniFlujo > 0) plan.inicioMiniFlujo = static_cast<std::uint32_t>(sector);
    sector += plan.sectoresMiniFlujo;
    plan.sectoresMiniFat = Techo(mini * 4, kSector);
    if (plan.sectoresMiniFat > 0) plan.inicioMiniFat = static_cast<std::uint32_t>(sector);
    sector += plan.sectoresMiniFat;
    plan.sectoresDirectorio = Techo(tamanos.size() + 1, kSector / 128);
    plan.inicioDirectorio = static_cast<std::uint32_t>(sector);
    sector += plan.sectoresDirectorio;

    // The FAT must also map its own sectors and those of the DIFAT.
    std::uint64_t fat = 0, difat = 0;
    for (;;) {
        std::uint64_t necesarios = Techo(sector + fat + difat, kEntradasPorSector);
        std::uint64_t difatNecesarios =
            necesarios > kDifatEnCabecera ? Techo(necesarios - kDifatEnCabecera, 127) : 0;
        if (necesarios == fat && difatNecesarios == difat) break;
        fat = necesarios;
        difat = difatNecesarios;
    }
    plan.inicioFat = static_cast<std::uint32_t>(sector);
    plan.sectoresFat = static_cast<std::uint32_t>(fat);
    sector += fat;
    if (difat > 0) plan.inicioDifat = static_cast<std::uint32_t>(sector);
    plan.sectoresDifat = static_cast<std::uint32_t>(difat);
    sector += difat;
    if (sector >= 0xFFFFFFF0u)
        throw ErrorEscritura("El archivo excede el tamaño máximo del formato");
    plan.totalSectores = static_cast<std::uint32_t>(sector);
    return plan;
}

}  // namespace detail

void EscribirCfb(std::ostream& salida, const std::vector<FlujoCfb>& flujos) {
    using namespace detail;
    std::vector<std::u16string> nombres;
    std::vector<std::uint64_t> tamanos;
    for (const auto& f : flujos) {
        nombres.push_back(NombreUtf16(f.nombre));
        tamanos.push_back(f.tamano);
    }
    for (std::size_t i = 0; i < nombres.size(); ++i)
        for (std::size_t j = i + 1; j < nombres.size(); ++j)
            if (CompararNombresCfb(nombres[i], nombres[j]) == 0)
                throw ErrorEscritura("Nombre de flujo repetido en el archivo compuesto", {},
                                     flujos[i].nombre);
    const PlanCfb plan = PlanificarCfb(tamanos);

    // Header.
    Bytes cab;
    cab.u32(0xE011CFD0u).u32(0xE11AB1A1u).ceros(16);
    cab.u16(0x003E).u16(0x0003).u16(0xFFFE).u16(9).u16(6).ceros(6);
    cab.u32(0).u32(plan.sectoresFat).u32(plan.inicioDirectorio).u32(0).u32(kCorteMini);
    cab.u32(plan.inicioMiniFat).u32(plan.sectoresMiniFat);
    cab.u32(plan.inicioDifat).u32(plan.sectoresDifat);
    for (std::uint32_t i = 0; i < kDifatEnCabecera; ++i)
        cab.u32(i < plan.sectoresFat ? plan.inicioFat + i : kSectorLibre);
    EscribirCompleto(salida, cab.str());

    // Regular streams, each from a sector boundary.
    for (std::size_t i = 0; i < flujos.size(); ++i) {
        if (plan.enMini[i]) continue;
        EscribirFlujo(salida, flujos[i]);
        Relleno(salida, flujos[i].tamano, kSector);
    }
    // The mini stream: small streams on 64-byte boundaries.
    for (std::size_t i = 0; i < flujos.size(); ++i) {
        if (!plan.enMini[i] || flujos[i].tamano == 0) continue;
        EscribirFlujo(salida, flujos[i]);
        Relleno(salida, flujos[i].tamano, kMiniSector);
    }
    Relleno(salida, plan.tamanoMiniFlujo, kSector);

    // Mini FAT.
    if (plan.sectoresMiniFat > 0) {
        Bytes mf;
        for (std::size_t i = 0; i < flujos.size(); ++i) {
            if (!plan.enMini[i] || flujos[i].tamano == 0) continue;
            std::uint32_t n = Techo(flujos[i].tamano, kMiniSector);
            for (std::uint32_t k = 0; k < n; ++k)
                mf.u32(k + 1 < n ? plan.inicioFlujo[i] + k + 1 : kFinDeCadena);
        }
        while (mf.size() % kSector != 0) mf.u32(kSectorLibre);
        EscribirCompleto(salida, mf.str());
    }

    // Directory: the root entry, then one entry per stream.
    std::vector<std::uint32_t> orden(flujos.size());
    std::iota(orden.begin(), orden.end(), 0u);
    std::sort(orden.begin(), orden.end(), [&](std::uint32_t a, std::uint32_t b) {
        return CompararNombresCfb(nombres[a], nombres[b]) < 0;
    });
    std::vector<Nodo> nodos(flujos.size());
    std::uint32_t raizArbol = Arbol(orden, 0, static_cast<int>(orden.size()), 0, nodos);
    int maxProfundidad = 0;
    for (const auto& n : nodos) maxProfundidad = std::max(maxProfundidad, n.profundidad);
    auto id = [](std::uint32_t i) { return i == kSinEntrada ? kSinEntrada : i + 1; };

    Bytes dir;
    EntradaDirectorio(dir, u"Root Entry", 5, true, kSinEntrada, kSinEntrada, id(raizArbol),
                      plan.sectoresMiniFlujo > 0 ? plan.inicioMiniFlujo : kFinDeCadena,
                      plan.tamanoMiniFlujo);
    for (std::size_t i = 0; i < flujos.size(); ++i) {
        bool negro = nodos[i].profundidad == 0 || nodos[i].profundidad < maxProfundidad;
        EntradaDirectorio(dir, nombres[i], 2, negro, id(nodos[i].izquierda), id(nodos[i].derecha),
                          kSinEntrada, plan.inicioFlujo[i], tamanos[i]);
    }
    while (dir.size() % kSector != 0)
        EntradaDirectorio(dir, u"", 0, false, kSinEntrada, kSinEntrada, kSinEntrada, 0, 0);
    EscribirCompleto(salida, dir.str());

    // FAT.
    Bytes fat;
    auto cadena = [&fat](std::uint32_t inicio, std::uint32_t n) {
        for (std::uint32_t k = 0; k < n; ++k) fat.u32(k + 1 < n ? inicio + k + 1 : kFinDeCadena);
    };
    for (std::size_t i = 0; i < flujos.size(); ++i)
        if (!plan.enMini[i]) cadena(plan.inicioFlujo[i], Techo(tamanos[i], kSector));
    cadena(plan.inicioMiniFlujo, plan.sectoresMiniFlujo);
    cadena(plan.inicioMiniFat, plan.sectoresMiniFat);
    cadena(plan.inicioDirectorio, plan.sectoresDirectorio);
    for (std::uint32_t k = 0; k < plan.sectoresFat; ++k) fat.u32(kSectorFat);
    for (std::uint32_t k = 0; k < plan.sectoresDifat; ++k) fat.u32(kSectorDifat);
    while (fat.size() < static_cast<std::size_t>(plan.sectoresFat) * kSector) fat.u32(kSectorLibre);
    EscribirCompleto(salida, fat.str());

    // DIFAT sectors for the FAT sectors past the 109 that the header lists.
    std::uint32_t siguienteFat = kDifatEnCabecera;
    for (std::uint32_t d = 0; d < plan.sectoresDifat; ++d) {
        Bytes df;
        for (int k = 0; k < 127; ++k, ++siguienteFat)
            df.u32(siguienteFat < plan.sectoresFat ? plan.inicioFat + siguienteFat : kSectorLibre);
        df.u32(d + 1 < plan.sectoresDifat ? plan.inicioDifat + d + 1 : kFinDeCadena);
        EscribirCompleto(salida, df.str());
    }
    if (!salida) throw ErrorEscritura("No se pudo escribir el archivo compuesto");
}

}  // namespace paratzorep::renderer
