#include "host/Proceso.h"

#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <thread>
#include <vector>

namespace paratzorep::host {

namespace detail {

namespace fs = std::filesystem;

constexpr const char* kPrefijo = "tzorep-";
// Held locked by the owner for as long as it lives: a folder whose lock can be taken belongs to a
// process that is gone.
constexpr const char* kCandado = ".en-uso";

struct Privada {
    std::mutex mutex;
    std::optional<fs::path> carpeta;
    int candado = -1;
    int subcarpetas = 0;
    bool alSalir = false;
};

Privada& privada() {
    static Privada* p = new Privada;  // never destroyed: used from atexit and other threads
    return *p;
}

struct Registro {
    std::mutex mutex;
    std::uint64_t siguiente = 1;
    std::map<std::uint64_t, Limpieza::Accion> acciones;
};

Registro& registro() {
    static Registro* r = new Registro;
    return *r;
}

std::atomic<bool> interrumpido{false};

fs::path CarpetaTemporalDelSistema() {
    const char* t = std::getenv("TMPDIR");
    return t && *t ? fs::path(t) : fs::path("/tmp");
}

// Folders of this user's earlier processes that died without removing theirs.
void BorraCarpetasHuerfanas(const fs::path& base) {
    std::error_code ec;
    for (fs::directory_iterator it(base, ec), fin; !ec && it != fin; it.increment(ec)) {
        const std::string nombre = it->path().filename().string();
        if (nombre.rfind(kPrefijo, 0) != 0) continue;
        struct stat st {};
        if (::lstat(it->path().c_str(), &st) != 0 || !S_ISDIR(st.st_mode) ||
            st.st_uid != ::geteuid())
            continue;
        const int fd = ::open((it->path() / kCandado).c_str(), O_RDWR | O_CLOEXEC);
        if (fd < 0) continue;  // not one of ours, or still being made
        const bool muerto = ::flock(fd, LOCK_EX | LOCK_NB) == 0;
        ::close(fd);
        if (muerto) fs::remove_all(it->path(), ec);
        ec.clear();
    }
}

void BorraAlSalir() {
    BorraCarpetaPrivada();
}

std::string NombreSenal(int senal) {
    switch (senal) {
        case SIGINT:
            return "interrumpido con Ctrl-C (SIGINT)";
        case SIGTERM:
            return "terminado con SIGTERM";
        case SIGHUP:
            return "terminado con SIGHUP (se cerró la terminal)";
        default:
            return "terminado con la señal " + std::to_string(senal);
    }
}

void Escribe(int fd, const std::string& texto) {
    const char* p = texto.data();
    std::size_t resta = texto.size();
    while (resta > 0) {
        const ssize_t n = ::write(fd, p, resta);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return;
        p += n;
        resta -= static_cast<std::size_t>(n);
    }
}

}  // namespace detail

const std::filesystem::path& CarpetaPrivada() {
    namespace fs = std::filesystem;
    auto& p = detail::privada();
    std::lock_guard<std::mutex> bloqueo(p.mutex);
    if (p.carpeta) return *p.carpeta;
    const fs::path base = detail::CarpetaTemporalDelSistema();
    detail::BorraCarpetasHuerfanas(base);
    std::string plantilla =
        (base / (std::string(detail::kPrefijo) + std::to_string(::getpid()) + "-XXXXXX")).string();
    std::vector<char> nombre(plantilla.begin(), plantilla.end());
    nombre.push_back('\0');
    // mkdtemp makes the folder 0700: nobody else can list or read what goes in it.
    if (::mkdtemp(nombre.data()) == nullptr)
        throw std::runtime_error("No se pudo crear la carpeta temporal privada en " +
                                 base.string() + ": " + std::strerror(errno));
    const fs::path carpeta(nombre.data());
    const int fd = ::open((carpeta / detail::kCandado).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (fd < 0 || ::flock(fd, LOCK_EX) != 0) {
        const int e = errno;
        if (fd >= 0) ::close(fd);
        std::error_code ec;
        fs::remove_all(carpeta, ec);
        throw std::runtime_error("No se pudo preparar la carpeta temporal privada " +
                                 carpeta.string() + ": " + std::strerror(e));
    }
    p.candado = fd;
    p.carpeta = carpeta;
    if (!p.alSalir) {
        std::atexit(detail::BorraAlSalir);
        p.alSalir = true;
    }
    return *p.carpeta;
}

std::filesystem::path SubcarpetaPrivada(const std::string& prefijo) {
    const std::filesystem::path base = CarpetaPrivada();
    int n = 0;
    {
        auto& p = detail::privada();
        std::lock_guard<std::mutex> bloqueo(p.mutex);
        n = ++p.subcarpetas;
    }
    const std::filesystem::path r = base / (prefijo + "-" + std::to_string(n));
    std::error_code ec;
    std::filesystem::create_directory(r, ec);
    if (ec)
        throw std::runtime_error("No se pudo crear la carpeta temporal " + r.string() + ": " +
                                 ec.message());
    return r;
}

void BorraCarpetaPrivada() {
    auto& p = detail::privada();
    std::lock_guard<std::mutex> bloqueo(p.mutex);
    if (!p.carpeta) return;
    std::error_code ec;
    std::filesystem::remove_all(*p.carpeta, ec);
    if (p.candado >= 0) ::close(p.candado);
    p.candado = -1;
    p.carpeta.reset();
}

Limpieza::Limpieza(Accion accion) {
    auto& r = detail::registro();
    std::lock_guard<std::mutex> bloqueo(r.mutex);
    id_ = r.siguiente++;
    r.acciones.emplace(id_, std::move(accion));
}

Limpieza::~Limpieza() {
    Libera();
}

Limpieza::Limpieza(Limpieza&& otra) noexcept : id_(otra.id_) {
    otra.id_ = 0;
}

Limpieza& Limpieza::operator=(Limpieza&& otra) noexcept {
    if (this != &otra) {
        Libera();
        id_ = otra.id_;
        otra.id_ = 0;
    }
    return *this;
}

void Limpieza::Libera() {
    if (id_ == 0) return;
    auto& r = detail::registro();
    std::lock_guard<std::mutex> bloqueo(r.mutex);
    r.acciones.erase(id_);
    id_ = 0;
}

std::string EjecutaLimpiezas() {
    std::map<std::uint64_t, Limpieza::Accion> acciones;
    {
        auto& r = detail::registro();
        std::lock_guard<std::mutex> bloqueo(r.mutex);
        acciones.swap(r.acciones);
    }
    std::string fallas;
    for (auto it = acciones.rbegin(); it != acciones.rend(); ++it) {
        std::string falla;
        try {
            falla = it->second();
        } catch (const std::exception& e) {
            falla = e.what();
        }
        if (!falla.empty()) fallas += falla + "\n";
    }
    return fallas;
}

void InstalaInterrupciones(const std::string& programa) {
    sigset_t senales;
    sigemptyset(&senales);
    sigaddset(&senales, SIGINT);
    sigaddset(&senales, SIGTERM);
    sigaddset(&senales, SIGHUP);
    pthread_sigmask(SIG_BLOCK, &senales, nullptr);
    std::thread([senales, programa] {
        int senal = 0;
        if (sigwait(&senales, &senal) != 0) return;
        detail::interrumpido = true;
        // What the interrupted thread still says (a failure caused by the clean-up itself) is
        // not what happened: only the handler speaks from here on.
        const int salida = ::dup(2);
        const int nulo = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
        if (nulo >= 0) ::dup2(nulo, 2);
        std::thread([salida, senal, programa] {
            const std::string fallas = EjecutaLimpiezas();
            BorraCarpetaPrivada();
            std::string texto = programa + ": " + detail::NombreSenal(senal);
            texto +=
                fallas.empty() ? "; no quedó nada a medias.\n" : ". No se pudo limpiar todo:\n";
            detail::Escribe(salida, texto + fallas);
            ::_exit(128 + senal);
        }).detach();
        int otra = 0;
        if (sigwait(&senales, &otra) == 0) {
            detail::Escribe(salida, programa + ": " + detail::NombreSenal(otra) +
                                        " otra vez; se termina sin acabar de limpiar.\n");
            ::_exit(128 + otra);
        }
    }).detach();
}

bool Interrumpido() {
    return detail::interrumpido;
}

void EsperaSiInterrumpido() {
    while (detail::interrumpido) std::this_thread::sleep_for(std::chrono::seconds(1));
}

}  // namespace paratzorep::host
