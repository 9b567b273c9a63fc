#include "toolkit/DeArchivos.h"

#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <random>

#include "host/Interaccion.h"

extern char** environ;

namespace paratzorep::toolkit {

namespace fs = std::filesystem;

std::string RutaNativa(const std::string& ruta) {
    std::string r = ruta;
    for (char& c : r) {
        if (c == '\\') c = '/';
    }
    return r;
}

std::string DeArchivos::NombreDeArchivo(const std::string& ruta) const {
    std::size_t p = ruta.find_last_of("/\\");
    return p == std::string::npos ? ruta : ruta.substr(p + 1);
}

std::string DeArchivos::CarpetaDeArchivo(const std::string& ruta) const {
    std::size_t p = ruta.find_last_of("/\\");
    return p == std::string::npos ? std::string() : ruta.substr(0, p + 1);
}

bool DeArchivos::CreaRuta(const std::string& carpeta) const {
    if (carpeta.empty()) return false;
    std::error_code ec;
    fs::path p(RutaNativa(carpeta));
    fs::create_directories(p, ec);
    return fs::is_directory(p, ec);
}

bool DeArchivos::HayArchivo(const std::string& ruta) const {
    if (ruta.empty()) return false;
    std::error_code ec;
    return fs::is_regular_file(fs::path(RutaNativa(ruta)), ec);
}

bool DeArchivos::BorraArchivo(const std::string& ruta) const {
    if (ruta.empty()) return true;
    std::error_code ec;
    fs::remove(fs::path(RutaNativa(ruta)), ec);
    return !fs::exists(fs::path(RutaNativa(ruta)), ec);
}

std::string DeArchivos::FechaYhora(const std::string& ruta) const {
    if (!HayArchivo(ruta)) return "";
    struct stat st {};
    if (::stat(RutaNativa(ruta).c_str(), &st) != 0) return "";
    std::time_t tt = st.st_mtime;
    std::tm local{};
    localtime_r(&tt, &local);
    char buf[32];
    std::strftime(buf, sizeof buf, "%d/%m/%Y %H:%M:%S", &local);
    return buf;
}

bool DeArchivos::AbreDocumento(const std::string& ruta, std::int16_t) const {
    const char* x = std::getenv("DISPLAY");
    const char* w = std::getenv("WAYLAND_DISPLAY");
    if ((!x || !*x) && (!w || !*w)) return false;
    if (!HayArchivo(ruta)) return false;
    std::string archivo = RutaNativa(ruta);
    // Double spawn through sh so that xdg-open is not our child and leaves no zombie.
    std::string orden = "xdg-open \"$0\" >/dev/null 2>&1 &";
    const char* args[] = {"/bin/sh", "-c", orden.c_str(), archivo.c_str(), nullptr};
    pid_t pid = 0;
    // The child starts with no signal blocked, whatever this process blocks for its own handler.
    posix_spawnattr_t atributos;
    posix_spawnattr_init(&atributos);
    sigset_t ninguna;
    sigemptyset(&ninguna);
    posix_spawnattr_setsigmask(&atributos, &ninguna);
    posix_spawnattr_setflags(&atributos, POSIX_SPAWN_SETSIGMASK);
    const int r =
        posix_spawn(&pid, "/bin/sh", nullptr, &atributos, const_cast<char**>(args), environ);
    posix_spawnattr_destroy(&atributos);
    if (r != 0) return false;
    int estado = 0;
    waitpid(pid, &estado, 0);
    return WIFEXITED(estado) && WEXITSTATUS(estado) == 0;
}

std::string DeArchivos::Carpeta(const std::string& titulo, const std::string& inicial) const {
    return host::interaccion().EligeCarpeta(titulo, inicial);
}

std::string DeArchivos::ArchivoTemporal(const std::string& carpeta,
                                        const std::string& extension) const {
    std::string base = RutaNativa(carpeta);
    if (!base.empty() && base.back() != '/') base += '/';
    base += "Temporal/";
    CreaRuta(base);
    std::random_device rd;
    std::mt19937_64 gen(rd());
    std::string ext = extension.empty() || extension[0] == '.' ? extension : "." + extension;
    for (int intento = 0; intento < 100; ++intento) {
        char nombre[32];
        std::snprintf(nombre, sizeof nombre, "tz%012llx",
                      static_cast<unsigned long long>(gen() & 0xFFFFFFFFFFFFULL));
        std::string ruta = base + nombre + ext;
        if (!HayArchivo(ruta)) return ruta;
    }
    return base + "tz" + std::to_string(::getpid()) + ext;
}

}  // namespace paratzorep::toolkit
