#include "data/ServidorPrivado.h"

#include <fcntl.h>
#include <mysql.h>
#include <netinet/in.h>
#include <pwd.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <memory>
#include <random>
#include <sstream>
#include <thread>
#include <vector>

#include "data/MensajesCliente.h"
#include "toolkit/Ini.h"

namespace paratzorep::data {

namespace fs = std::filesystem;
using Reloj = std::chrono::steady_clock;

namespace detail {

constexpr const char* kUsuarioApp = "tzorep";
// sun_path holds 108 bytes including the terminating zero.
constexpr std::size_t kLargoMaximoSocket = 107;
constexpr auto kEsperaInicio = std::chrono::seconds(60);
constexpr auto kEsperaFin = std::chrono::seconds(60);
constexpr auto kPausa = std::chrono::milliseconds(10);

std::string errnoTexto(int err) {
    return std::strerror(err);
}

// Closes a descriptor on scope exit.
class Descriptor {
  public:
    explicit Descriptor(int fd = -1) : fd_(fd) {}
    ~Descriptor() {
        if (fd_ >= 0) ::close(fd_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return fd_; }

  private:
    int fd_;
};

struct CierraMysql {
    void operator()(MYSQL* m) const { mysql_close(m); }
};
using Conexion = std::unique_ptr<MYSQL, CierraMysql>;

// An exclusive lock on the home's lock file, held while starting or stopping,
// so that two tzorep processes never start the same server at once.
class Cerrojo {
  public:
    explicit Cerrojo(const fs::path& archivo)
        : fd_(::open(archivo.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {
        if (fd_.get() < 0) {
            throw ErrorServidor("No se pudo abrir " + archivo.string() + ": " + errnoTexto(errno));
        }
        if (::flock(fd_.get(), LOCK_EX | LOCK_NB) != 0) {
            throw ErrorServidor("Otro proceso está iniciando o deteniendo el servidor privado (" +
                                archivo.string() + ")");
        }
    }

  private:
    Descriptor fd_;
};

std::string leerArchivo(const fs::path& ruta) {
    std::ifstream in(ruta, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

// The last `lineas` lines of a log file from byte `desde` on.
std::string colaDeRegistro(const fs::path& ruta, std::uintmax_t desde, int lineas) {
    std::string texto = leerArchivo(ruta);
    if (desde < texto.size())
        texto.erase(0, desde);
    else if (desde > 0)
        texto.clear();
    while (!texto.empty() && texto.back() == '\n') texto.pop_back();
    std::size_t pos = texto.size();
    for (int i = 0; i < lineas && pos != std::string::npos && pos > 0; ++i) {
        pos = texto.rfind('\n', pos - 1);
    }
    return pos == std::string::npos || pos == texto.size() ? texto : texto.substr(pos + 1);
}

std::uintmax_t tamanio(const fs::path& ruta) {
    std::error_code ec;
    auto n = fs::file_size(ruta, ec);
    return ec ? 0 : n;
}

// Writes a file readable by its owner only, replacing the old one atomically.
void escribirPrivado(const fs::path& ruta, const std::string& contenido) {
    fs::path tmp = ruta;
    tmp += ".tmp";
    {
        Descriptor fd(::open(tmp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
        if (fd.get() < 0 || ::fchmod(fd.get(), 0600) != 0) {
            throw ErrorServidor("No se pudo escribir " + ruta.string() + ": " + errnoTexto(errno));
        }
        const char* p = contenido.data();
        std::size_t resta = contenido.size();
        while (resta > 0) {
            ssize_t n = ::write(fd.get(), p, resta);
            if (n < 0 && errno == EINTR) continue;
            if (n <= 0) {
                int err = errno;
                ::unlink(tmp.c_str());
                throw ErrorServidor("No se pudo escribir " + ruta.string() + ": " +
                                    errnoTexto(err));
            }
            p += n;
            resta -= static_cast<std::size_t>(n);
        }
    }
    if (::rename(tmp.c_str(), ruta.c_str()) != 0) {
        int err = errno;
        ::unlink(tmp.c_str());
        throw ErrorServidor("No se pudo escribir " + ruta.string() + ": " + errnoTexto(err));
    }
}

// servidor.conf: "clave=valor" lines, '#' comments.
std::map<std::string, std::string> leerConf(const fs::path& ruta) {
    std::map<std::string, std::string> valores;
    std::ifstream in(ruta);
    std::string linea;
    while (std::getline(in, linea)) {
        if (linea.empty() || linea[0] == '#') continue;
        auto igual = linea.find('=');
        if (igual == std::string::npos) continue;
        valores[linea.substr(0, igual)] = linea.substr(igual + 1);
    }
    return valores;
}

void escribirConf(const fs::path& ruta, const std::map<std::string, std::string>& valores) {
    std::string texto = "# Servidor privado de tzorep: datos de conexión (lo escribe tzorep)\n";
    for (const auto& [clave, valor] : valores) texto += clave + "=" + valor + "\n";
    escribirPrivado(ruta, texto);
}

int aEntero(const std::string& texto) {
    try {
        std::size_t usados = 0;
        int n = std::stoi(texto, &usados);
        return usados == texto.size() ? n : 0;
    } catch (const std::exception&) {
        return 0;
    }
}

std::string passwordAleatoria() {
    static constexpr char kLetras[] =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
    std::random_device azar;
    std::uniform_int_distribution<std::size_t> dist(0, sizeof(kLetras) - 2);
    std::string clave;
    for (int i = 0; i < 24; ++i) clave += kLetras[dist(azar)];
    return clave;
}

// Asks the kernel for a free TCP port on 127.0.0.1.
int puertoLibre() {
    Descriptor fd(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in dir{};
    dir.sin_family = AF_INET;
    dir.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    dir.sin_port = 0;
    socklen_t largo = sizeof dir;
    if (fd.get() < 0 || ::bind(fd.get(), reinterpret_cast<sockaddr*>(&dir), sizeof dir) != 0 ||
        ::getsockname(fd.get(), reinterpret_cast<sockaddr*>(&dir), &largo) != 0) {
        throw ErrorServidor("No se pudo obtener un puerto libre en 127.0.0.1: " +
                            errnoTexto(errno));
    }
    return ntohs(dir.sin_port);
}

bool socketResponde(const fs::path& ruta) {
    const std::string s = ruta.string();
    if (s.size() > kLargoMaximoSocket) return false;
    Descriptor fd(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_un dir{};
    dir.sun_family = AF_UNIX;
    std::memcpy(dir.sun_path, s.c_str(), s.size() + 1);
    return fd.get() >= 0 && ::connect(fd.get(), reinterpret_cast<sockaddr*>(&dir), sizeof dir) == 0;
}

// True while the process exists and is not a zombie. Reaps it when it is our
// own child, so that a server this process started is seen to end.
bool procesoVive(int pid) {
    if (pid <= 0) return false;
    int st = 0;
    if (::waitpid(pid, &st, WNOHANG) == pid) return false;
    if (::kill(pid, 0) != 0 && errno != EPERM) return false;
    std::string stat = leerArchivo("/proc/" + std::to_string(pid) + "/stat");
    auto cierre = stat.rfind(')');
    if (cierre == std::string::npos || cierre + 2 >= stat.size() || stat[cierre + 2] != 'Z')
        return true;
    // It ended between the two looks: reap it when it is our child, so that it is gone.
    ::waitpid(pid, &st, WNOHANG);
    return false;
}

// Whether the process is a mariadbd serving this data folder (guards against a
// pid file whose pid was reused by another process).
bool esServidorDe(int pid, const fs::path& datos) {
    std::string cmd = leerArchivo("/proc/" + std::to_string(pid) + "/cmdline");
    const std::string buscado = "--datadir=" + datos.string();
    std::size_t inicio = 0;
    while (inicio < cmd.size()) {
        std::size_t fin = cmd.find('\0', inicio);
        if (fin == std::string::npos) fin = cmd.size();
        if (cmd.compare(inicio, fin - inicio, buscado) == 0) return true;
        inicio = fin + 1;
    }
    return false;
}

// The pid of the process holding InnoDB's lock on the system tablespace, or 0.
// Catches a server on this data folder whose pid file is gone.
int pidDelBloqueo(const fs::path& datos) {
    Descriptor fd(::open((datos / "ibdata1").c_str(), O_RDONLY | O_CLOEXEC));
    if (fd.get() < 0) return 0;
    struct flock fl {};
    fl.l_type = F_WRLCK;
    fl.l_whence = SEEK_SET;
    if (::fcntl(fd.get(), F_GETLK, &fl) != 0 || fl.l_type == F_UNLCK) return 0;
    return fl.l_pid;
}

fs::path buscarPrograma(const std::string& nombre) {
    std::vector<std::string> carpetas;
    if (const char* path = std::getenv("PATH")) {
        std::stringstream s(path);
        std::string c;
        while (std::getline(s, c, ':'))
            if (!c.empty()) carpetas.push_back(c);
    }
    // Ordinary users often lack the sbin folders in PATH.
    for (const char* c : {"/usr/sbin", "/usr/local/sbin", "/usr/bin", "/usr/local/bin"})
        carpetas.emplace_back(c);
    for (const auto& c : carpetas) {
        fs::path p = fs::path(c) / nombre;
        if (::access(p.c_str(), X_OK) == 0) return p;
    }
    throw ErrorServidor("No se encontró el programa " + nombre +
                        " (instale el paquete mariadb-server)");
}

// Starts a program in its own session with stdin on /dev/null and its output
// appended to `salida`; it keeps no other descriptor of ours, so that it can
// outlive this process without holding its pipes open.
pid_t lanzar(const std::vector<std::string>& args, const fs::path& salida) {
    std::vector<char*> argv;
    for (const auto& a : args) argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    const std::string rutaSalida = salida.string();

    pid_t pid = ::fork();
    if (pid < 0) {
        throw ErrorServidor("No se pudo crear el proceso de " + args[0] + ": " + errnoTexto(errno));
    }
    if (pid == 0) {
        ::setsid();
        int nulo = ::open("/dev/null", O_RDONLY);
        int out = ::open(rutaSalida.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
        if (nulo < 0 || out < 0) ::_exit(126);
        ::dup2(nulo, 0);
        ::dup2(out, 1);
        ::dup2(out, 2);
        ::close_range(3, ~0U, 0);
        sigset_t todas;
        sigemptyset(&todas);
        ::sigprocmask(SIG_SETMASK, &todas, nullptr);
        ::signal(SIGPIPE, SIG_DFL);
        ::execv(argv[0], argv.data());
        const char msg[] = "tzorep: no se pudo ejecutar el programa\n";
        [[maybe_unused]] auto n = ::write(2, msg, sizeof msg - 1);
        ::_exit(127);
    }
    return pid;
}

int esperarFin(pid_t pid) {
    int st = 0;
    while (::waitpid(pid, &st, 0) < 0) {
        if (errno != EINTR) return -1;
    }
    return WIFEXITED(st) ? WEXITSTATUS(st) : 128 + WTERMSIG(st);
}

Conexion conectarSocket(const std::string& socket, const std::string& usuario,
                        const std::string& password, std::string* error = nullptr) {
    Conexion m(mysql_init(nullptr));
    if (!m) throw ErrorServidor("Sin memoria para una conexión MariaDB");
    unsigned int espera = 2;
    mysql_optionsv(m.get(), MYSQL_OPT_CONNECT_TIMEOUT, &espera);
    mysql_optionsv(m.get(), MYSQL_SET_CHARSET_NAME, "utf8mb4");
    if (!mysql_real_connect(m.get(), "localhost", usuario.c_str(), password.c_str(), nullptr, 0,
                            socket.c_str(), 0)) {
        if (error) *error = MensajeMaria(mysql_errno(m.get()), mysql_error(m.get()));
        return nullptr;
    }
    return m;
}

constexpr std::uint64_t kMiB = 1024ULL * 1024;
// The pool's share of the memory and its bounds; an explicit size may go from kMinimoIni up to
// the whole memory.
constexpr std::uint64_t kFraccionMemoria = 8;
constexpr std::uint64_t kPoolMinimo = 128 * kMiB;
constexpr std::uint64_t kPoolMaximo = 1024 * kMiB;
constexpr std::uint64_t kMinimoIni = 32 * kMiB;

// The memory this process may use: the machine's, or its control group's limit when lower.
std::uint64_t memoriaDisponible() {
    const long paginas = ::sysconf(_SC_PHYS_PAGES);
    const long tamPagina = ::sysconf(_SC_PAGESIZE);
    std::uint64_t memoria = paginas > 0 && tamPagina > 0 ? static_cast<std::uint64_t>(paginas) *
                                                               static_cast<std::uint64_t>(tamPagina)
                                                         : 0;
    for (const char* limite :
         {"/sys/fs/cgroup/memory.max", "/sys/fs/cgroup/memory/memory.limit_in_bytes"}) {
        std::string texto = leerArchivo(limite);
        while (!texto.empty() && std::isspace(static_cast<unsigned char>(texto.back())))
            texto.pop_back();
        if (texto.empty() || texto == "max") continue;
        if (auto n = LeeTamano(texto); n && *n > 0 && (memoria == 0 || *n < memoria)) memoria = *n;
    }
    return memoria;
}

// "1536M": InnoDB takes sizes in whole mebibytes best.
std::string enMegas(std::uint64_t bytes) {
    return std::to_string((bytes + kMiB - 1) / kMiB) + "M";
}

std::vector<std::string> opcionesComunes(const fs::path& datos, std::uint64_t bufferPool) {
    // Temporary files in a folder of this server's own, beside its data: in the shared /tmp
    // another server or a clean-up of stale files could remove them while they are in use.
    const fs::path temporales = datos.string() + "-tmp";
    std::error_code ec;
    fs::create_directories(temporales, ec);
    fs::permissions(temporales, fs::perms::owner_all, fs::perm_options::replace, ec);
    std::vector<std::string> o = {
        "--no-defaults",  // must come first: never read /etc/mysql or ~/.my.cnf
        "--datadir=" + datos.string(),
        "--tmpdir=" + temporales.string(),
        // The system's SQL spells some tables in two cases (SubLineas, sublineas);
        // fixed when the data folder is initialised.
        "--lower-case-table-names=1",
        "--character-set-server=utf8mb4",
        "--collation-server=utf8mb4_general_ci",
        "--skip-name-resolve",
        "--skip-log-bin",
        "--innodb-flush-log-at-trx-commit=2",
        "--innodb-buffer-pool-size=" + enMegas(bufferPool),
        "--innodb-log-file-size=64M",
    };
    if (::geteuid() == 0) o.push_back("--user=root");
    return o;
}

// Home paths may be long; a socket path over 107 characters aborts the server,
// so then the socket goes to a short folder under /tmp named by a hash of the home.
fs::path socketPara(const fs::path& home) {
    fs::path enHome = home / "mariadb.sock";
    if (enHome.string().size() <= kLargoMaximoSocket) return enHome;
    std::uint64_t h = 1469598103934665603ULL;  // FNV-1a
    for (unsigned char c : home.string()) {
        h ^= c;
        h *= 1099511628211ULL;
    }
    char nombre[64];
    std::snprintf(nombre, sizeof nombre, "/tmp/tzorep-%u-%016llx",
                  static_cast<unsigned>(::getuid()), static_cast<unsigned long long>(h));
    return fs::path(nombre) / "mysqld.sock";
}

}  // namespace detail

ServidorPrivado::ServidorPrivado(fs::path home) : home_(fs::absolute(home).lexically_normal()) {
    if (home_.filename().empty()) home_ = home_.parent_path();  // "dir/" -> "dir"
}

fs::path ServidorPrivado::homePorDefecto() {
    const char* h = std::getenv("HOME");
    std::string base = h && *h ? h : "";
    if (base.empty()) {
        if (passwd* pw = ::getpwuid(::getuid()); pw && pw->pw_dir) base = pw->pw_dir;
    }
    if (base.empty()) base = "/tmp";
    return fs::path(base) / ".local" / "share" / "tzorep";
}

std::uint64_t BufferPoolParaMemoria(std::uint64_t memoria) {
    return std::clamp(memoria / detail::kFraccionMemoria, detail::kPoolMinimo, detail::kPoolMaximo);
}

std::optional<std::uint64_t> LeeTamano(const std::string& texto) {
    std::size_t i = 0;
    while (i < texto.size() && std::isspace(static_cast<unsigned char>(texto[i]))) ++i;
    std::uint64_t n = 0;
    const std::size_t inicio = i;
    for (; i < texto.size() && std::isdigit(static_cast<unsigned char>(texto[i])); ++i) {
        const auto d = static_cast<std::uint64_t>(texto[i] - '0');
        if (n > (UINT64_MAX - d) / 10) return std::nullopt;
        n = n * 10 + d;
    }
    if (i == inicio) return std::nullopt;
    std::uint64_t factor = 1;
    if (i < texto.size()) {
        switch (std::toupper(static_cast<unsigned char>(texto[i]))) {
            case 'K':
                factor = 1024;
                break;
            case 'M':
                factor = detail::kMiB;
                break;
            case 'G':
                factor = 1024 * detail::kMiB;
                break;
            default:
                factor = 0;
        }
        if (factor != 0) {
            ++i;
            if (i < texto.size() && std::toupper(static_cast<unsigned char>(texto[i])) == 'B') ++i;
        }
    }
    while (i < texto.size() && std::isspace(static_cast<unsigned char>(texto[i]))) ++i;
    if (factor == 0 || i != texto.size() || n > UINT64_MAX / factor) return std::nullopt;
    return n * factor;
}

TamanoBufferPool ServidorPrivado::bufferPool() const {
    const fs::path ini = home_ / "tzorep.ini";
    const std::uint64_t memoria = detail::memoriaDisponible();
    std::string texto;
    try {
        texto = toolkit::LeeIni("ServidorPrivado", "BufferPool", ini);
    } catch (const std::exception& e) {
        throw ErrorServidor("No se pudo leer " + ini.string() + ": " + e.what());
    }
    if (texto.find_first_not_of(" \t") == std::string::npos)
        return {BufferPoolParaMemoria(memoria), false};
    const auto n = LeeTamano(texto);
    if (!n || *n < detail::kMinimoIni || (memoria > 0 && *n > memoria)) {
        throw ErrorServidor("El valor BufferPool=" + texto +
                            " de la sección [ServidorPrivado] de " + ini.string() +
                            " no es un tamaño válido: escriba uno entre 32M y " +
                            (memoria > 0 ? detail::enMegas(memoria) : std::string("la memoria")) +
                            ", por ejemplo 512M o 2G, o quite la línea para el tamaño automático");
    }
    return {*n, true};
}

fs::path ServidorPrivado::rutaSocket() const {
    return detail::socketPara(home_);
}

EstadoServidor ServidorPrivado::estado() const {
    EstadoServidor e;
    const fs::path datos = carpetaDatos();
    std::string texto = detail::leerArchivo(home_ / "mariadbd.pid");
    while (!texto.empty() && std::isspace(static_cast<unsigned char>(texto.back())))
        texto.pop_back();
    int pid = detail::aEntero(texto);
    if (!(detail::procesoVive(pid) && detail::esServidorDe(pid, datos))) {
        pid = detail::pidDelBloqueo(datos);
    }
    if (pid <= 0 || !detail::procesoVive(pid)) return e;

    e.corriendo = true;
    e.pid = pid;
    auto conf = detail::leerConf(archivoConexion());
    DatosServidor d;
    d.puerto = detail::aEntero(conf["puerto"]);
    d.socket = conf["socket"].empty() ? rutaSocket().string() : conf["socket"];
    d.usuario = conf["usuario"];
    d.password = conf["password"];
    e.datos = d;
    return e;
}

DatosServidor ServidorPrivado::iniciar() {
    std::error_code ec;
    fs::create_directories(home_, ec);
    if (ec) {
        throw ErrorServidor("No se pudo crear la carpeta " + home_.string() + ": " + ec.message());
    }
    detail::Cerrojo cerrojo(home_ / "servidor.lock");

    EstadoServidor actual = estado();
    if (actual.corriendo) {
        throw ErrorServidor("El servidor privado ya está en marcha en " + home_.string() +
                            " (pid " + std::to_string(actual.pid) + ")");
    }
    const fs::path socket = rutaSocket();
    if (detail::socketResponde(socket)) {
        throw ErrorServidor("Ya hay un servidor escuchando en " + socket.string());
    }
    // Leftovers of a server that did not end cleanly.
    fs::remove(home_ / "mariadbd.pid", ec);
    fs::remove(socket, ec);
    if (socket.parent_path() != home_) {
        fs::create_directories(socket.parent_path(), ec);
        ::chmod(socket.parent_path().c_str(), 0700);
    }

    const fs::path mariadbd = detail::buscarPrograma("mariadbd");
    const fs::path datos = carpetaDatos();
    const std::uint64_t pool = bufferPool().bytes;

    // First start: initialise the data folder. A folder without the system
    // database is what a failed initialisation left behind.
    if (!fs::exists(datos / "mysql")) {
        if (fs::exists(datos)) fs::remove_all(datos, ec);
        const fs::path instalador = detail::buscarPrograma("mariadb-install-db");
        const fs::path registro = home_ / "instalacion.log";
        fs::remove(registro, ec);
        std::vector<std::string> args = {instalador.string()};
        for (auto& o : detail::opcionesComunes(datos, detail::kPoolMinimo)) args.push_back(o);
        args.push_back("--auth-root-authentication-method=socket");
        args.push_back("--skip-test-db");
        int rc = detail::esperarFin(detail::lanzar(args, registro));
        if (rc != 0) {
            std::string cola = detail::colaDeRegistro(registro, 0, 15);
            fs::remove_all(datos, ec);
            throw ErrorServidor("No se pudo inicializar la carpeta de datos " + datos.string() +
                                    " (mariadb-install-db terminó con " + std::to_string(rc) +
                                    "; ver " + registro.string() + ")",
                                cola);
        }
    }

    // The application user and its password: kept in servidor.conf and (re)set at
    // every start through an init file, so a lost file only means a new password.
    auto conf = detail::leerConf(archivoConexion());
    if (conf["usuario"].empty()) conf["usuario"] = detail::kUsuarioApp;
    if (conf["password"].empty()) conf["password"] = detail::passwordAleatoria();
    conf.erase("puerto");
    conf["socket"] = socket.string();
    detail::escribirConf(archivoConexion(), conf);

    const fs::path init = home_ / "servidor-init.sql";
    const std::string cuenta = "'" + conf["usuario"] + "'@'%'";
    const std::string clave = "'" + conf["password"] + "'";
    detail::escribirPrivado(init, "CREATE USER IF NOT EXISTS " + cuenta + " IDENTIFIED BY " +
                                      clave + ";\nALTER USER " + cuenta + " IDENTIFIED BY " +
                                      clave + ";\nGRANT ALL PRIVILEGES ON *.* TO " + cuenta +
                                      " WITH GRANT OPTION;\n");
    struct BorraInit {
        fs::path p;
        ~BorraInit() {
            std::error_code e;
            fs::remove(p, e);
        }
    } borraInit{init};

    const fs::path registro = registroErrores();
    for (int intento = 1;; ++intento) {
        const int puerto = detail::puertoLibre();
        std::vector<std::string> args = {mariadbd.string()};
        for (auto& o : detail::opcionesComunes(datos, pool)) args.push_back(o);
        for (std::string o : {
                 "--socket=" + socket.string(),
                 "--port=" + std::to_string(puerto),
                 std::string("--bind-address=127.0.0.1"),
                 "--pid-file=" + (home_ / "mariadbd.pid").string(),
                 "--log-error=" + registro.string(),
                 "--init-file=" + init.string(),
                 // The lenient mode of the MySQL versions the system was written
                 // for: zero dates work as defaults and in comparisons.
                 std::string("--sql-mode=NO_ENGINE_SUBSTITUTION"),
                 std::string("--max-allowed-packet=64M"),
                 std::string("--max-connections=100"),
                 std::string("--performance-schema=OFF"),
                 // Error texts in Spanish (Debian's mariadb-server-core ships
                 // /usr/share/mysql/spanish/errmsg.sys).
                 std::string("--lc-messages=es_ES"),
             })
            args.push_back(o);

        const auto desde = detail::tamanio(registro);
        const pid_t pid = detail::lanzar(args, registro);
        const auto limite = Reloj::now() + detail::kEsperaInicio;
        while (true) {
            int st = 0;
            if (::waitpid(pid, &st, WNOHANG) == pid) {
                std::string cola = detail::colaDeRegistro(registro, desde, 15);
                if (intento < 3 && cola.find("Bind on TCP/IP port") != std::string::npos) break;
                throw ErrorServidor("El servidor privado terminó al iniciar (ver " +
                                        registro.string() + "):\n" + cola,
                                    cola);
            }
            std::string error;
            if (detail::conectarSocket(socket.string(), conf["usuario"], conf["password"],
                                       &error)) {
                conf["puerto"] = std::to_string(puerto);
                conf["pid"] = std::to_string(pid);
                detail::escribirConf(archivoConexion(), conf);
                DatosServidor d;
                d.puerto = puerto;
                d.socket = socket.string();
                d.usuario = conf["usuario"];
                d.password = conf["password"];
                return d;
            }
            if (Reloj::now() > limite) {
                ::kill(pid, SIGKILL);
                detail::esperarFin(pid);
                std::string cola = detail::colaDeRegistro(registro, desde, 15);
                throw ErrorServidor("El servidor privado no aceptó conexiones en " +
                                        std::to_string(detail::kEsperaInicio.count()) +
                                        " s (último error: " + error + ")",
                                    cola);
            }
            std::this_thread::sleep_for(detail::kPausa);
        }
    }
}

bool ServidorPrivado::detener() {
    std::error_code ec;
    if (!fs::exists(home_)) return false;
    detail::Cerrojo cerrojo(home_ / "servidor.lock");
    EstadoServidor e = estado();
    if (!e.corriendo) {
        fs::remove(home_ / "mariadbd.pid", ec);
        return false;
    }
    bool pedido = false;
    if (e.datos) {
        if (auto m = detail::conectarSocket(e.datos->socket, e.datos->usuario, e.datos->password)) {
            pedido = mysql_query(m.get(), "SHUTDOWN") == 0;
        }
    }
    if (!pedido) ::kill(e.pid, SIGTERM);

    auto limite = Reloj::now() + detail::kEsperaFin;
    while (detail::procesoVive(e.pid)) {
        if (Reloj::now() > limite) {
            ::kill(e.pid, SIGKILL);
            limite = Reloj::now() + std::chrono::seconds(5);
            if (!detail::procesoVive(e.pid)) break;
            std::this_thread::sleep_for(std::chrono::seconds(1));
            if (detail::procesoVive(e.pid)) {
                throw ErrorServidor("El servidor privado (pid " + std::to_string(e.pid) +
                                    ") no terminó");
            }
            break;
        }
        std::this_thread::sleep_for(detail::kPausa);
    }
    fs::remove(home_ / "mariadbd.pid", ec);
    auto conf = detail::leerConf(archivoConexion());
    conf.erase("puerto");
    conf.erase("pid");
    try {
        detail::escribirConf(archivoConexion(), conf);
    } catch (const ErrorServidor&) {
        // The server is down; a stale port in the file is harmless.
    }
    return true;
}

}  // namespace paratzorep::data
