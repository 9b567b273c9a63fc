// The private MariaDB server that the project runs under its home folder when no
// other server is configured: started with `mariadbd --no-defaults ...`, its own
// data folder, socket and a free 127.0.0.1 port, utf8mb4, zero dates allowed.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace paratzorep::data {

// How to reach a running private server. The application user holds the
// grants and authenticates with its password over TCP or the socket; root is
// reachable through the socket only.
struct DatosServidor {
    std::string host = "127.0.0.1";
    int puerto = 0;
    std::string socket;      // full path of the server's socket
    std::string usuario;     // application user
    std::string password;    // its password
};

// State of the server of one home folder.
struct EstadoServidor {
    bool corriendo = false;
    int pid = 0;
    std::optional<DatosServidor> datos;  // set when running
};

class ServidorPrivado {
public:
    // home: the tzorep home folder (TZOREP_HOME, default ~/.local/share/tzorep).
    explicit ServidorPrivado(std::filesystem::path home);

    // The home folder used when neither --home nor TZOREP_HOME says otherwise.
    static std::filesystem::path homePorDefecto();

    // Initialises the data folder on first use, starts the server and waits until
    // it accepts connections. Throws std::runtime_error with a clear message when
    // a server already runs on this home or the start fails.
    DatosServidor iniciar();
    // Stops a running server and waits for it to end; false when none was running.
    bool detener();
    EstadoServidor estado() const;

    const std::filesystem::path& home() const { return home_; }

private:
    std::filesystem::path home_;
};

}  // namespace paratzorep::data
