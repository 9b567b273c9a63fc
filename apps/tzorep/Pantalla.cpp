#include "apps/tzorep/Pantalla.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>

extern char** environ;

namespace paratzorep::cli {

namespace detail {

std::string Paginador() {
    if (const char* p = std::getenv("PAGER")) {
        std::string pager = p;
        while (!pager.empty() && pager.back() == ' ') pager.pop_back();
        return pager == "cat" ? std::string() : pager;
    }
    const char* ruta = std::getenv("PATH");
    std::string carpetas = ruta ? ruta : "/usr/bin:/bin";
    for (std::size_t inicio = 0; inicio <= carpetas.size();) {
        std::size_t fin = carpetas.find(':', inicio);
        if (fin == std::string::npos) fin = carpetas.size();
        const std::filesystem::path less =
            std::filesystem::path(carpetas.substr(inicio, fin - inicio)) / "less";
        if (::access(less.c_str(), X_OK) == 0) return "less";
        inicio = fin + 1;
    }
    return {};
}

int ColumnasTerminal(int fd) {
    winsize w{};
    if (::ioctl(fd, TIOCGWINSZ, &w) == 0 && w.ws_col > 0) return w.ws_col;
    if (const char* c = std::getenv("COLUMNS")) {
        const int n = std::atoi(c);
        if (n > 0) return n;
    }
    return 80;
}

}  // namespace detail

std::unique_ptr<Pantalla> Pantalla::Abre() {
    if (!::isatty(STDOUT_FILENO)) return nullptr;
    const std::string pager = detail::Paginador();
    if (pager.empty()) return nullptr;
    // less: leave at once when the report fits one screen, keep the screen afterwards.
    ::setenv("LESS", "FRX", 0);
    std::fflush(stdout);
    int extremos[2];
    if (::pipe2(extremos, O_CLOEXEC) != 0) return nullptr;
    // Through sh, as popen would, but the pager starts with no signal blocked (this process
    // blocks the interruptions for its own handler), so that Ctrl-C reaches it.
    posix_spawn_file_actions_t acciones;
    posix_spawn_file_actions_init(&acciones);
    posix_spawn_file_actions_adddup2(&acciones, extremos[0], STDIN_FILENO);
    posix_spawnattr_t atributos;
    posix_spawnattr_init(&atributos);
    sigset_t ninguna;
    sigemptyset(&ninguna);
    posix_spawnattr_setsigmask(&atributos, &ninguna);
    posix_spawnattr_setflags(&atributos, POSIX_SPAWN_SETSIGMASK);
    const char* args[] = {"/bin/sh", "-c", pager.c_str(), nullptr};
    pid_t pid = 0;
    const int r =
        ::posix_spawn(&pid, "/bin/sh", &acciones, &atributos, const_cast<char**>(args), environ);
    posix_spawnattr_destroy(&atributos);
    posix_spawn_file_actions_destroy(&acciones);
    ::close(extremos[0]);
    std::FILE* tubo = r == 0 ? ::fdopen(extremos[1], "w") : nullptr;
    if (!tubo) {
        ::close(extremos[1]);
        if (r == 0) ::waitpid(pid, nullptr, 0);
        return nullptr;
    }
    // One column spare, so that a full line does not wrap.
    return std::unique_ptr<Pantalla>(
        new Pantalla(tubo, pid, detail::ColumnasTerminal(STDOUT_FILENO) - 1));
}

Pantalla::Pantalla(std::FILE* tubo, pid_t paginador, int columnas)
    : tubo_(tubo), paginador_(paginador), bufer_(tubo), flujo_(&bufer_), columnas_(columnas) {
    // A pager that quits early must not kill the program: the writes then fail instead.
    senalAnterior_ = std::signal(SIGPIPE, SIG_IGN);
}

Pantalla::~Pantalla() {
    flujo_.flush();
    std::fclose(tubo_);
    while (::waitpid(paginador_, nullptr, 0) < 0 && errno == EINTR) {
    }
    std::signal(SIGPIPE, senalAnterior_);
}

Pantalla::Tubo::int_type Pantalla::Tubo::overflow(int_type c) {
    if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
    return std::fputc(c, f_) == EOF ? traits_type::eof() : c;
}

std::streamsize Pantalla::Tubo::xsputn(const char* s, std::streamsize n) {
    return static_cast<std::streamsize>(std::fwrite(s, 1, static_cast<std::size_t>(n), f_));
}

int Pantalla::Tubo::sync() {
    return std::fflush(f_) == 0 ? 0 : -1;
}

}  // namespace paratzorep::cli
