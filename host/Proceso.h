// What must not outlive the process: its private folder for temporary files, and the clean-ups
// that an interruption (SIGINT, SIGTERM, SIGHUP) runs before the process ends (work tables to
// drop, half-written files to remove). Whoever creates such a thing registers its clean-up and
// releases it once the thing is gone.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

namespace paratzorep::host {

// The process's private folder: "tzorep-<pid>-XXXXXX" under TMPDIR (or /tmp), mode 0700,
// created on first use and removed with its contents when the process exits or is interrupted.
// Folders left by processes that died without a chance to clean up (SIGKILL) are removed when a
// later process creates its own. Throws std::runtime_error with the system's reason.
const std::filesystem::path& CarpetaPrivada();
// A new subfolder of the private folder, "<prefijo>-<n>".
std::filesystem::path SubcarpetaPrivada(const std::string& prefijo);
// Removes the private folder now (it is made again on the next use).
void BorraCarpetaPrivada();

// A clean-up that runs only if the process is interrupted while it is registered. The action
// runs on another thread while the interrupted one may still be working: it must capture values
// (paths, connection data), never objects of the interrupted code. It returns "" when done, or
// what it could not do (said to the user).
class Limpieza {
  public:
    using Accion = std::function<std::string()>;

    Limpieza() = default;
    explicit Limpieza(Accion accion);
    // Released without running.
    ~Limpieza();
    Limpieza(Limpieza&& otra) noexcept;
    Limpieza& operator=(Limpieza&& otra) noexcept;
    Limpieza(const Limpieza&) = delete;
    Limpieza& operator=(const Limpieza&) = delete;

    void Libera();
    bool Registrada() const { return id_ != 0; }

  private:
    std::uint64_t id_ = 0;
};

// Runs every registered clean-up, newest first, and forgets them; returns what could not be
// done, one line each. Used by the interruption handler (and by tests).
std::string EjecutaLimpiezas();

// Installs the interruption handler: SIGINT, SIGTERM and SIGHUP are blocked in this thread (and
// so in every thread started after it) and one thread waits for them. On the first it runs the
// clean-ups, removes the private folder, writes "<programa>: <what happened>" to stderr and
// ends the process with 128 + the signal's number; anything else the process still writes to
// stderr is discarded, so that no second, misleading message follows. A second signal ends the
// process at once. Call at the start of main, before any other thread exists.
void InstalaInterrupciones(const std::string& programa);

// True once an interruption began.
bool Interrumpido();
// Blocks for ever when an interruption began (the handler ends the process); returns at once
// otherwise. main calls it before returning, so that the exit status is the handler's.
void EsperaSiInterrumpido();

}  // namespace paratzorep::host
