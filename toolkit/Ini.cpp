#include "toolkit/Ini.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "toolkit/Texto.h"

namespace paratzorep::toolkit {

namespace {

std::vector<std::string> LeeLineas(const std::filesystem::path& archivo) {
    std::vector<std::string> lineas;
    std::ifstream in(archivo, std::ios::binary);
    if (!in) return lineas;
    std::string linea;
    bool primera = true;
    while (std::getline(in, linea)) {
        if (!linea.empty() && linea.back() == '\r') linea.pop_back();
        if (primera && linea.rfind("\xEF\xBB\xBF", 0) == 0) linea.erase(0, 3);
        primera = false;
        lineas.push_back(std::move(linea));
    }
    return lineas;
}

// The section's name when the line is a "[Seccion]" header.
std::optional<std::string> Encabezado(const std::string& linea) {
    std::string t = detail::Recorta(linea);
    if (t.size() >= 2 && t.front() == '[' && t.back() == ']') {
        return detail::Recorta(std::string_view(t).substr(1, t.size() - 2));
    }
    return std::nullopt;
}

bool EsComentario(const std::string& linea) {
    std::string t = detail::Recorta(linea);
    return t.empty() || t[0] == ';' || t[0] == '#';
}

// Key of a "Clave=Valor" line, when it is one.
std::optional<std::string> ClaveDe(const std::string& linea) {
    if (EsComentario(linea)) return std::nullopt;
    std::size_t igual = linea.find('=');
    if (igual == std::string::npos) return std::nullopt;
    return detail::Recorta(std::string_view(linea).substr(0, igual));
}

std::string Une(const std::vector<std::string>& lineas) {
    std::string r;
    for (const auto& l : lineas) {
        r += l;
        r += '\n';
    }
    return r;
}

}  // namespace

std::string LeeIni(const std::string& seccion, const std::string& clave,
                   const std::filesystem::path& archivo, const std::string& omision) {
    if (archivo.empty()) return omision;
    bool dentro = false;
    for (const auto& linea : LeeLineas(archivo)) {
        if (auto s = Encabezado(linea)) {
            dentro = detail::IgualesSinCaso(*s, detail::Recorta(seccion));
            continue;
        }
        if (!dentro) continue;
        auto k = ClaveDe(linea);
        if (k && detail::IgualesSinCaso(*k, detail::Recorta(clave))) {
            return detail::Recorta(std::string_view(linea).substr(linea.find('=') + 1));
        }
    }
    return omision;
}

std::vector<std::pair<std::string, std::string>> ClavesIni(const std::string& seccion,
                                                           const std::filesystem::path& archivo) {
    std::vector<std::pair<std::string, std::string>> r;
    bool dentro = false;
    for (const auto& linea : LeeLineas(archivo)) {
        if (auto s = Encabezado(linea)) {
            dentro = detail::IgualesSinCaso(*s, detail::Recorta(seccion));
            continue;
        }
        if (!dentro) continue;
        if (auto k = ClaveDe(linea)) {
            r.emplace_back(*k,
                           detail::Recorta(std::string_view(linea).substr(linea.find('=') + 1)));
        }
    }
    return r;
}

void EscribeIni(const std::string& seccion, const std::string& clave, const std::string& valor,
                const std::filesystem::path& archivo) {
    if (archivo.empty()) throw std::runtime_error("No se indicó el archivo de configuración");
    auto lineas = LeeLineas(archivo);
    std::string sec = detail::Recorta(seccion);
    std::string cla = detail::Recorta(clave);
    std::string nueva = cla + "=" + valor;
    bool dentro = false;
    std::optional<std::size_t> finSeccion;  // where a new key of the section goes
    for (std::size_t i = 0; i < lineas.size(); ++i) {
        if (auto s = Encabezado(lineas[i])) {
            if (dentro) break;
            dentro = detail::IgualesSinCaso(*s, sec);
            if (dentro) finSeccion = i + 1;
            continue;
        }
        if (!dentro) continue;
        auto k = ClaveDe(lineas[i]);
        if (k && detail::IgualesSinCaso(*k, cla)) {
            lineas[i] = *k + "=" + valor;  // the key keeps its spelling in the file
            detail::EscribeAtomico(archivo, Une(lineas));
            return;
        }
        if (!detail::Recorta(lineas[i]).empty()) finSeccion = i + 1;
    }
    if (finSeccion) {
        lineas.insert(lineas.begin() + static_cast<long>(*finSeccion), nueva);
    } else {
        if (!lineas.empty() && !detail::Recorta(lineas.back()).empty()) lineas.emplace_back();
        lineas.push_back("[" + sec + "]");
        lineas.push_back(nueva);
    }
    detail::EscribeAtomico(archivo, Une(lineas));
}

void BorraIni(const std::string& seccion, const std::string& clave,
              const std::filesystem::path& archivo) {
    auto lineas = LeeLineas(archivo);
    if (lineas.empty()) return;
    std::vector<std::string> quedan;
    bool dentro = false;
    for (const auto& linea : lineas) {
        if (auto s = Encabezado(linea)) {
            dentro = detail::IgualesSinCaso(*s, detail::Recorta(seccion));
            if (dentro && clave.empty()) continue;
            quedan.push_back(linea);
            continue;
        }
        if (dentro) {
            if (clave.empty()) continue;
            auto k = ClaveDe(linea);
            if (k && detail::IgualesSinCaso(*k, detail::Recorta(clave))) continue;
        }
        quedan.push_back(linea);
    }
    detail::EscribeAtomico(archivo, Une(quedan));
}

std::filesystem::path ArchivoRegistro() {
    std::filesystem::path base;
    if (const char* xdg = std::getenv("XDG_CONFIG_HOME"); xdg && *xdg) {
        base = xdg;
    } else if (const char* home = std::getenv("HOME"); home && *home) {
        base = std::filesystem::path(home) / ".config";
    } else {
        base = std::filesystem::temp_directory_path();
    }
    return base / "kvtz5" / "kvtz5.ini";
}

namespace detail {

void EscribeAtomico(const std::filesystem::path& archivo, const std::string& contenido,
                    unsigned modo) {
    std::error_code ec;
    if (archivo.has_parent_path()) std::filesystem::create_directories(archivo.parent_path(), ec);
    std::string plantilla = archivo.string() + ".XXXXXX";
    std::vector<char> nombre(plantilla.begin(), plantilla.end());
    nombre.push_back('\0');
    int fd = ::mkstemp(nombre.data());
    if (fd < 0) {
        throw std::runtime_error("No se pudo escribir el archivo " + archivo.string() + ": " +
                                 std::strerror(errno));
    }
    auto falla = [&](int error) {
        ::close(fd);
        ::unlink(nombre.data());
        throw std::runtime_error("No se pudo escribir el archivo " + archivo.string() + ": " +
                                 std::strerror(error));
    };
    // mkstemp makes the file 0600; a file that exists keeps its permissions (a settings file
    // holding a password stays readable by its owner only), a new one gets the usual ones.
    if (modo == 0) {
        struct stat actual {};
        modo = ::stat(archivo.c_str(), &actual) == 0 ? (actual.st_mode & 07777) : 0644;
    }
    if (::fchmod(fd, modo) != 0) falla(errno);
    const char* p = contenido.data();
    std::size_t resta = contenido.size();
    while (resta > 0) {
        ssize_t n = ::write(fd, p, resta);
        if (n < 0) {
            if (errno == EINTR) continue;
            falla(errno);
        }
        p += n;
        resta -= static_cast<std::size_t>(n);
    }
    if (::fsync(fd) != 0) falla(errno);
    if (::close(fd) != 0) {
        int error = errno;
        ::unlink(nombre.data());
        throw std::runtime_error("No se pudo escribir el archivo " + archivo.string() + ": " +
                                 std::strerror(error));
    }
    if (::rename(nombre.data(), archivo.c_str()) != 0) {
        int error = errno;
        ::unlink(nombre.data());
        throw std::runtime_error("No se pudo reemplazar el archivo " + archivo.string() + ": " +
                                 std::strerror(error));
    }
}

}  // namespace detail

}  // namespace paratzorep::toolkit
