// The private MariaDB server that the project runs under its home folder when no
// other server is configured: started with `mariadbd --no-defaults ...`, its own
// data folder, socket and a free 127.0.0.1 port, utf8mb4, zero dates allowed, Spanish error
// texts (so that a server message quoted in ours reads in the same language), and a buffer
// pool sized to the machine.
//
// Files in the home folder:
//   mariadb/          the data folder (initialised on the first start)
//   mariadb.sock      the socket (or a short folder under /tmp, see rutaSocket)
//   mariadbd.pid      the server's pid file
//   mariadbd.err      the server's error log
//   servidor.conf     user, password, port and socket of the running server (0600)
//   servidor.lock     held while a start or a stop is in progress
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>

namespace paratzorep::data {

// How to reach a running private server. The application user holds the
// grants and authenticates with its password over TCP or the socket; root is
// reachable through the socket only.
struct DatosServidor {
    std::string host = "127.0.0.1";
    int puerto = 0;
    std::string socket;    // full path of the server's socket
    std::string usuario;   // application user
    std::string password;  // its password
};

// The InnoDB buffer pool of the private server. Reports read whole tables, so the pool
// takes a share of the machine's memory (an eighth of it, between 128 MiB and 1 GiB; the
// memory is the machine's or the control group's limit, the smaller) unless
// `[ServidorPrivado] BufferPool` in the home's tzorep.ini gives a size ("768M", "2G").
struct TamanoBufferPool {
    std::uint64_t bytes = 0;
    bool delIni = false;  // given by tzorep.ini
};

// Pool size for a machine with `memoria` bytes.
std::uint64_t BufferPoolParaMemoria(std::uint64_t memoria);
// A size as tzorep.ini writes it: a whole number of bytes, or followed by K, M or G (either
// case, optionally "B" after it: "512MB"). nullopt when the text is not a size.
std::optional<std::uint64_t> LeeTamano(const std::string& texto);

// State of the server of one home folder.
struct EstadoServidor {
    bool corriendo = false;
    int pid = 0;
    std::optional<DatosServidor> datos;  // set when running
};

// A failure to start, stop or query the private server. what() is the message
// for the user (Spanish); registro() holds the tail of the server's error log
// when the server itself failed.
class ErrorServidor : public std::runtime_error {
  public:
    explicit ErrorServidor(const std::string& mensaje, std::string registro = {})
        : std::runtime_error(mensaje), registro_(std::move(registro)) {}
    const std::string& registro() const { return registro_; }

  private:
    std::string registro_;
};

class ServidorPrivado {
  public:
    // home: the tzorep home folder (TZOREP_HOME, default ~/.local/share/tzorep).
    explicit ServidorPrivado(std::filesystem::path home);

    // The home folder used when neither --home nor TZOREP_HOME says otherwise.
    static std::filesystem::path homePorDefecto();

    // Initialises the data folder on first use, starts the server and waits until
    // it accepts connections. Throws ErrorServidor (a std::runtime_error) with a
    // clear message when a server already runs on this home or the start fails.
    DatosServidor iniciar();
    // Stops a running server and waits for it to end; false when none was running.
    bool detener();
    EstadoServidor estado() const;

    const std::filesystem::path& home() const { return home_; }
    std::filesystem::path carpetaDatos() const { return home_ / "mariadb"; }
    std::filesystem::path archivoConexion() const { return home_ / "servidor.conf"; }
    std::filesystem::path registroErrores() const { return home_ / "mariadbd.err"; }
    // The socket's path: in the home, or under /tmp when that path is too long.
    std::filesystem::path rutaSocket() const;
    // The buffer pool the next start gives the server. Throws ErrorServidor when tzorep.ini
    // holds a value that is not a usable size.
    TamanoBufferPool bufferPool() const;

  private:
    std::filesystem::path home_;
};

}  // namespace paratzorep::data
