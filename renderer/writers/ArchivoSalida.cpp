#include "renderer/writers/ArchivoSalida.h"

#include <cerrno>
#include <cstring>
#include <system_error>

#include "renderer/writers/ErrorEscritura.h"

namespace paratzorep::renderer::detail {

std::filesystem::path RutaParcial(const std::filesystem::path& destino) {
    std::filesystem::path p = destino;
    p += ".parcial";
    return p;
}

void Reemplazar(const std::filesystem::path& parcial, const std::filesystem::path& destino) {
    std::error_code ec;
    std::filesystem::rename(parcial, destino, ec);
    if (ec) {
        std::filesystem::remove(parcial, ec);
        throw ErrorEscritura("No se pudo guardar el archivo", destino.string(), ec.message());
    }
}

ArchivoSalida::ArchivoSalida(std::filesystem::path destino)
    : destino_(std::move(destino)), parcial_(RutaParcial(destino_)) {
    if (destino_.empty()) throw ErrorEscritura("No se indicó el nombre del archivo");
    errno = 0;
    flujo_.open(parcial_, std::ios::binary | std::ios::trunc);
    if (!flujo_) {
        std::string causa = errno ? std::strerror(errno) : "no se pudo abrir";
        throw ErrorEscritura("No se pudo crear el archivo", destino_.string(), causa);
    }
}

ArchivoSalida::~ArchivoSalida() {
    if (confirmado_) return;
    flujo_.close();
    std::error_code ec;
    std::filesystem::remove(parcial_, ec);
}

void ArchivoSalida::Confirmar() {
    errno = 0;
    flujo_.flush();
    flujo_.close();
    if (flujo_.fail()) {
        std::string causa = errno ? std::strerror(errno) : "error de escritura";
        throw ErrorEscritura("No se pudo escribir el archivo", destino_.string(), causa);
    }
    Reemplazar(parcial_, destino_);
    confirmado_ = true;
}

}  // namespace paratzorep::renderer::detail
