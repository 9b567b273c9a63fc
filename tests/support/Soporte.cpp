#include "Soporte.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <mutex>
#include <stdexcept>
#include <thread>

extern char** environ;

namespace paratzorep::pruebas {

namespace fs = std::filesystem;

namespace detail {

std::runtime_error errorSql(MYSQL* m, const std::string& sql) {
    return std::runtime_error("Error " + std::to_string(mysql_errno(m)) + " (" + mysql_sqlstate(m) +
                              "): " + mysql_error(m) + "\nSQL: " + sql);
}

// "t_<suite>_<test>_<pid>_<n>" in lower case letters, digits and '_'.
std::string nombreBase() {
    static std::atomic<int> contador{0};
    std::string prueba = "sin_prueba";
    if (const auto* info = ::testing::UnitTest::GetInstance()->current_test_info()) {
        prueba = std::string(info->test_suite_name()) + "_" + info->name();
    }
    std::string limpio;
    for (unsigned char c : prueba) {
        limpio += std::isalnum(c) ? static_cast<char>(std::tolower(c)) : '_';
    }
    const std::string cola = "_" + std::to_string(::getpid()) + "_" + std::to_string(++contador);
    const std::size_t cabe = 64 - 2 - cola.size();
    if (limpio.size() > cabe) limpio.resize(cabe);
    return "t_" + limpio + cola;
}

}  // namespace detail

fs::path homeDePrueba() {
    const char* env = std::getenv("TZOREP_TEST_HOME");
    return env && *env ? fs::path(env) : fs::path(TZ_TEST_HOME);
}

const data::DatosServidor& servidorDePrueba() {
    static std::once_flag una;
    static data::DatosServidor datos;
    std::call_once(una, [] {
        data::ServidorPrivado servidor(homeDePrueba());
        data::EstadoServidor e = servidor.estado();
        if (!e.corriendo || !e.datos || e.datos->puerto == 0) {
            throw std::runtime_error("El servidor de pruebas no está en marcha en " +
                                     homeDePrueba().string() +
                                     " (ctest lo inicia con la prueba server_start)");
        }
        datos = *e.datos;
    });
    return datos;
}

Conexion conectar(const data::DatosServidor& s, const std::string& base) {
    Conexion m(mysql_init(nullptr));
    if (!m) throw std::runtime_error("mysql_init falló");
    unsigned int protocolo = MYSQL_PROTOCOL_TCP;
    unsigned int espera = 5;
    mysql_optionsv(m.get(), MYSQL_OPT_PROTOCOL, &protocolo);
    mysql_optionsv(m.get(), MYSQL_OPT_CONNECT_TIMEOUT, &espera);
    mysql_optionsv(m.get(), MYSQL_SET_CHARSET_NAME, "utf8mb4");
    if (!mysql_real_connect(m.get(), s.host.c_str(), s.usuario.c_str(), s.password.c_str(),
                            base.empty() ? nullptr : base.c_str(), s.puerto, nullptr,
                            CLIENT_MULTI_STATEMENTS)) {
        throw std::runtime_error("No se pudo conectar a " + s.host + ":" +
                                 std::to_string(s.puerto) + " como " + s.usuario + ": " +
                                 mysql_error(m.get()));
    }
    return m;
}

void ejecutar(MYSQL* m, const std::string& sql) {
    if (mysql_real_query(m, sql.data(), sql.size()) != 0) throw detail::errorSql(m, sql);
    // Drain every result so the connection is ready for the next statement.
    for (;;) {
        if (MYSQL_RES* r = mysql_store_result(m))
            mysql_free_result(r);
        else if (mysql_errno(m) != 0)
            throw detail::errorSql(m, sql);
        int siguiente = mysql_next_result(m);
        if (siguiente > 0) throw detail::errorSql(m, sql);
        if (siguiente < 0) break;
    }
}

std::vector<std::vector<std::string>> filas(MYSQL* m, const std::string& sql) {
    if (mysql_real_query(m, sql.data(), sql.size()) != 0) throw detail::errorSql(m, sql);
    std::unique_ptr<MYSQL_RES, decltype(&mysql_free_result)> r(mysql_store_result(m),
                                                               &mysql_free_result);
    if (!r) {
        if (mysql_errno(m) != 0) throw detail::errorSql(m, sql);
        return {};
    }
    std::vector<std::vector<std::string>> todas;
    const unsigned int n = mysql_num_fields(r.get());
    while (MYSQL_ROW fila = mysql_fetch_row(r.get())) {
        unsigned long* largos = mysql_fetch_lengths(r.get());
        std::vector<std::string> f;
        for (unsigned int i = 0; i < n; ++i) {
            f.emplace_back(fila[i] ? std::string(fila[i], largos[i]) : std::string());
        }
        todas.push_back(std::move(f));
    }
    return todas;
}

std::optional<std::string> valor(MYSQL* m, const std::string& sql) {
    if (mysql_real_query(m, sql.data(), sql.size()) != 0) throw detail::errorSql(m, sql);
    std::unique_ptr<MYSQL_RES, decltype(&mysql_free_result)> r(mysql_store_result(m),
                                                               &mysql_free_result);
    if (!r) {
        if (mysql_errno(m) != 0) throw detail::errorSql(m, sql);
        return std::nullopt;
    }
    MYSQL_ROW fila = mysql_fetch_row(r.get());
    if (!fila || mysql_num_fields(r.get()) == 0 || !fila[0]) return std::nullopt;
    return std::string(fila[0], mysql_fetch_lengths(r.get())[0]);
}

BaseDeDatosDePrueba::BaseDeDatosDePrueba(const data::DatosServidor& servidor)
    : servidor_(servidor), nombre_(detail::nombreBase()) {
    Conexion admin = conectar(servidor_);
    pruebas::ejecutar(admin.get(), "DROP DATABASE IF EXISTS `" + nombre_ + "`");
    pruebas::ejecutar(admin.get(), "CREATE DATABASE `" + nombre_ + "`");
    conexion_ = conectar(servidor_, nombre_);
}

BaseDeDatosDePrueba::~BaseDeDatosDePrueba() {
    try {
        pruebas::ejecutar(conexion_.get(), "DROP DATABASE IF EXISTS `" + nombre_ + "`");
    } catch (const std::exception& e) {
        ADD_FAILURE() << "No se pudo borrar la base " << nombre_ << ": " << e.what();
    }
}

CarpetaTemporal::CarpetaTemporal() {
    std::string plantilla = (fs::temp_directory_path() / "tzorep-prueba-XXXXXX").string();
    if (!::mkdtemp(plantilla.data())) {
        throw std::runtime_error("No se pudo crear una carpeta temporal: " +
                                 std::string(std::strerror(errno)));
    }
    ruta_ = plantilla;
}

CarpetaTemporal::~CarpetaTemporal() {
    std::error_code ec;
    fs::remove_all(ruta_, ec);
}

namespace detail {

// argv and envp for execve: the program, its arguments, this process's environment with the
// given variables put in.
struct Ejecucion {
    std::vector<std::string> args, env;
    std::vector<char*> argv, envp;
    Ejecucion(const fs::path& programa, const std::vector<std::string>& a,
              const std::vector<std::pair<std::string, std::string>>& entorno) {
        args = {programa.string()};
        args.insert(args.end(), a.begin(), a.end());
        for (char** e = environ; *e; ++e) {
            std::string v = *e;
            bool reemplazada = false;
            for (const auto& [nombre, valor] : entorno)
                reemplazada = reemplazada || v.rfind(nombre + "=", 0) == 0;
            if (!reemplazada) env.push_back(v);
        }
        for (const auto& [nombre, valor] : entorno) env.push_back(nombre + "=" + valor);
        for (auto& x : args) argv.push_back(x.data());
        argv.push_back(nullptr);
        for (auto& x : env) envp.push_back(x.data());
        envp.push_back(nullptr);
    }
};

std::string leeArchivo(const fs::path& p) {
    std::ifstream in(p, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

}  // namespace detail

ProgramaEnCurso::ProgramaEnCurso(const fs::path& programa, const std::vector<std::string>& args,
                                 const std::vector<std::pair<std::string, std::string>>& entorno) {
    detail::Ejecucion e(programa, args, entorno);
    const std::string salida = (salidas_ / "salida").string();
    const std::string errores = (salidas_ / "errores").string();
    pid_ = ::fork();
    if (pid_ == 0) {
        const int o = ::open(salida.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        const int r = ::open(errores.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        const int nulo = ::open("/dev/null", O_RDONLY);
        if (o < 0 || r < 0 || nulo < 0) ::_exit(126);
        ::dup2(nulo, 0);
        ::dup2(o, 1);
        ::dup2(r, 2);
        ::execve(e.argv[0], e.argv.data(), e.envp.data());
        ::_exit(127);
    }
    if (pid_ < 0) throw std::runtime_error("fork falló");
}

ProgramaEnCurso::~ProgramaEnCurso() {
    if (pid_ > 0 && !estado_) {
        ::kill(pid_, SIGKILL);
        int st = 0;
        while (::waitpid(pid_, &st, 0) < 0 && errno == EINTR) {
        }
    }
}

void ProgramaEnCurso::senal(int s) const {
    if (pid_ > 0) ::kill(pid_, s);
}

bool ProgramaEnCurso::termino() {
    if (estado_) return true;
    int st = 0;
    if (::waitpid(pid_, &st, WNOHANG) != pid_) return false;
    estado_ = WIFEXITED(st) ? WEXITSTATUS(st) : 128 + WTERMSIG(st);
    return true;
}

ResultadoPrograma ProgramaEnCurso::espera(std::chrono::seconds limite) {
    const auto fin = std::chrono::steady_clock::now() + limite;
    while (!termino()) {
        if (std::chrono::steady_clock::now() > fin) ::kill(pid_, SIGKILL);
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    ResultadoPrograma r;
    r.estado = *estado_;
    r.salida = detail::leeArchivo(salidas_ / "salida");
    r.errores = detail::leeArchivo(salidas_ / "errores");
    return r;
}

std::unique_ptr<ProgramaEnCurso> lanzarTzorep(
    const std::vector<std::string>& args,
    const std::vector<std::pair<std::string, std::string>>& entorno) {
    return std::make_unique<ProgramaEnCurso>(TZOREP_EXE, args, entorno);
}

ResultadoPrograma ejecutarPrograma(const fs::path& programa, const std::vector<std::string>& args,
                                   const std::vector<std::pair<std::string, std::string>>& entorno,
                                   std::chrono::seconds limite) {
    detail::Ejecucion e(programa, args, entorno);
    auto& argv = e.argv;
    auto& envp = e.envp;

    int salida[2], errores[2];
    if (::pipe2(salida, O_CLOEXEC) != 0) throw std::runtime_error("pipe falló");
    if (::pipe2(errores, O_CLOEXEC) != 0) {
        ::close(salida[0]);
        ::close(salida[1]);
        throw std::runtime_error("pipe falló");
    }
    pid_t pid = ::fork();
    if (pid == 0) {
        ::dup2(salida[1], 1);
        ::dup2(errores[1], 2);
        int nulo = ::open("/dev/null", O_RDONLY);
        if (nulo >= 0) ::dup2(nulo, 0);
        ::execve(argv[0], argv.data(), envp.data());
        ::_exit(127);
    }
    ::close(salida[1]);
    ::close(errores[1]);
    ResultadoPrograma r;
    if (pid < 0) {
        ::close(salida[0]);
        ::close(errores[0]);
        throw std::runtime_error("fork falló");
    }
    const auto fin = std::chrono::steady_clock::now() + limite;
    pollfd fds[2] = {{salida[0], POLLIN, 0}, {errores[0], POLLIN, 0}};
    std::string* destinos[2] = {&r.salida, &r.errores};
    int abiertos = 2;
    bool matado = false;
    while (abiertos > 0) {
        if (std::chrono::steady_clock::now() > fin && !matado) {
            ::kill(pid, SIGKILL);
            matado = true;
        }
        if (::poll(fds, 2, 100) < 0 && errno != EINTR) break;
        for (int i = 0; i < 2; ++i) {
            if (fds[i].fd < 0 || !(fds[i].revents & (POLLIN | POLLHUP | POLLERR))) continue;
            char buf[4096];
            ssize_t n = ::read(fds[i].fd, buf, sizeof buf);
            if (n > 0) {
                destinos[i]->append(buf, static_cast<std::size_t>(n));
            } else if (n == 0 || errno != EINTR) {
                ::close(fds[i].fd);
                fds[i].fd = -1;
                --abiertos;
            }
        }
    }
    int st = 0;
    while (::waitpid(pid, &st, 0) < 0 && errno == EINTR) {
    }
    r.estado = WIFEXITED(st) ? WEXITSTATUS(st) : 128 + WTERMSIG(st);
    return r;
}

ResultadoPrograma ejecutarTzorep(const std::vector<std::string>& args,
                                 const std::vector<std::pair<std::string, std::string>>& entorno,
                                 std::chrono::seconds limite) {
    return ejecutarPrograma(TZOREP_EXE, args, entorno, limite);
}

}  // namespace paratzorep::pruebas
