// Printing a rendered report through CUPS: the file (a PDF from the renderer) goes to a
// queue by name, with copies and a job title. When the job cannot be sent (no print
// server, an unknown queue, a refused job) the file stays where it is and the error
// tells the user, in Spanish, why and where the report was kept.
#pragma once

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace paratzorep::renderer {

struct TrabajoImpresion {
    std::filesystem::path archivo;  // the document to print (PDF)
    std::string impresora;          // CUPS queue ("nombre" or "nombre/instancia"); empty: default
    int copias = 1;                 // 1 to 999
    std::string titulo;             // job title; empty: the file's name
    std::string servidor;           // "host[:puerto]" or a socket path; empty: CUPS' own choice
    bool borrarAlEnviar = false;    // remove the file once the server has taken the job
};

class ErrorImpresion : public std::runtime_error {
  public:
    enum class Motivo {
        ArchivoFaltante,
        SinServidor,
        SinPredeterminada,
        ImpresoraDesconocida,
        Rechazado
    };

    ErrorImpresion(Motivo motivo, const std::string& mensaje, std::filesystem::path archivo)
        : std::runtime_error(mensaje), motivo_(motivo), archivo_(std::move(archivo)) {}

    Motivo motivo() const { return motivo_; }
    // Where the unprinted report was kept.
    const std::filesystem::path& archivo() const { return archivo_; }
    // Why it was not printed: the message without where the report was kept.
    std::string causa() const;

  private:
    Motivo motivo_;
    std::filesystem::path archivo_;
};

// Sends the job and returns the CUPS job id. Throws ErrorImpresion.
int Imprimir(const TrabajoImpresion& trabajo);

// The engine's printing hook (Motor::Imprimir): prints a finished PDF on the default
// CUPS server. Throws ErrorImpresion.
void ImprimirEnCups(const std::string& pdf, const std::string& impresora, int copias,
                    const std::string& titulo);

// The queues the server offers (empty when there is no server). The default queue first.
std::vector<std::string> Impresoras(const std::string& servidor = {});

// A queue with what the server says of it.
struct DestinoImpresion {
    std::string nombre;  // "nombre" or "nombre/instancia"
    bool predeterminada = false;
    std::string descripcion;  // the queue's printer-info, "" when it has none
};
// The queues, the default first; nullopt when no print server answers.
std::optional<std::vector<DestinoImpresion>> DestinosImpresion(const std::string& servidor = {});

}  // namespace paratzorep::renderer
