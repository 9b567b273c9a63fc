#include "renderer/writers/ArchivoSalida.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <system_error>
#include <vector>

#include "renderer/writers/ErrorEscritura.h"

namespace paratzorep::renderer::detail {

std::string CausaDelSistema() {
    return errno != 0 ? std::strerror(errno) : "error de escritura";
}

Parcial::Parcial(std::filesystem::path destino) : destino_(std::move(destino)) {
    if (destino_.empty()) throw ErrorEscritura("No se indicó el nombre del archivo");
    std::string plantilla = destino_.string() + ".XXXXXX.parcial";
    std::vector<char> nombre(plantilla.begin(), plantilla.end());
    nombre.push_back('\0');
    const int fd = ::mkstemps(nombre.data(), static_cast<int>(std::strlen(".parcial")));
    if (fd < 0) {
        throw ErrorEscritura("No se pudo crear el archivo", destino_.string(),
                             std::strerror(errno));
    }
    // mkstemps makes the file 0600; the report gets what any new file of the user gets.
    const mode_t mascara = ::umask(0);
    ::umask(mascara);
    ::fchmod(fd, 0666 & ~mascara);
    ::close(fd);
    ruta_ = nombre.data();
    limpieza_ = host::Limpieza([ruta = ruta_]() -> std::string {
        std::error_code ec;
        std::filesystem::remove(ruta, ec);
        return ec ? "no se pudo borrar " + ruta.string() + ": " + ec.message() : "";
    });
}

Parcial::~Parcial() {
    if (!hecho_) Descarta();
}

void Parcial::Descarta() {
    std::error_code ec;
    std::filesystem::remove(ruta_, ec);
    limpieza_.Libera();
}

void Parcial::Reemplaza() {
    std::error_code ec;
    std::filesystem::rename(ruta_, destino_, ec);
    if (ec) {
        Descarta();
        throw ErrorEscritura("No se pudo guardar el archivo", destino_.string(), ec.message());
    }
    hecho_ = true;
    limpieza_.Libera();
}

ArchivoSalida::ArchivoSalida(std::filesystem::path destino) : parcial_(std::move(destino)) {
    errno = 0;
    flujo_.open(parcial_.ruta(), std::ios::binary | std::ios::trunc);
    if (!flujo_) {
        throw ErrorEscritura("No se pudo crear el archivo", parcial_.destino().string(),
                             CausaDelSistema());
    }
}

ArchivoSalida::~ArchivoSalida() {
    if (flujo_.is_open()) flujo_.close();
}

void ArchivoSalida::FallaEscritura() const {
    throw ErrorEscritura("No se pudo escribir el archivo", parcial_.destino().string(),
                         CausaDelSistema());
}

void ArchivoSalida::Confirmar() {
    errno = 0;
    flujo_.flush();
    flujo_.close();
    if (flujo_.fail()) FallaEscritura();
    parcial_.Reemplaza();
}

}  // namespace paratzorep::renderer::detail
