// What `tzorep show` and `tzorep print` share: reading an entry point and its --set options,
// starting the session from the home's tzorep.ini, a menu that loads the forms it is asked to
// show, the command-line interaction sink (it answers the export dialog from the print
// options), opening the entry through the facade and setting the controls in order.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "apps/tzorep/Arranque.h"
#include "apps/tzorep/Commands.h"
#include "apps/tzorep/ProgresoTerminal.h"
#include "host/Formulario.h"
#include "host/Interaccion.h"
#include "host/Menu.h"
#include "reports/ReportesAdm.h"

namespace paratzorep::cli {

// A usage error of the command line (exit 2).
class ErrorUso : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// A text as a JSON string, quotes included.
std::string TextoJson(const std::string& s);

// The entry point named by its method ("BitacoraUsuarios", any letter case) or number ("6").
const reports::EntradaFachada* BuscaEntrada(const std::string& texto);

// Shows forms by loading them and remembers the last one.
class MenuCli : public host::Menu {
  public:
    void ShowForm(std::int16_t opcion, std::shared_ptr<host::Formulario>& forma) override;
    std::shared_ptr<host::Formulario> ultima;
};

// The export dialog's answer taken from --type and --out.
struct RespuestaArchivo {
    std::string tipo;     // "pdf", "txt", ...
    std::string carpeta;  // with a final "/"
    std::string nombre;   // without extension
};

// Messages to stderr as "Titulo: texto", progress on the terminal's line (none when stderr is
// not a terminal); the export dialog answered from `archivo` (refused when none is given or
// the dialog does not list the type).
class InteraccionCli : public InteraccionTerminal {
  public:
    host::Respuesta Mensaje(const std::string& titulo, const std::string& texto, host::Icono icono,
                            host::Botones botones) override;
    bool Dialogo(host::Formulario& forma) override;

    std::optional<RespuestaArchivo> archivo;
    int mensajes = 0;
    int criticos = 0;  // messages with the critical icon (a failure, not a notice)
};

// The words of show and print: the entry, the --set pairs in order and the other options
// (name, value; value "" for flags such as --json).
struct Argumentos {
    const reports::EntradaFachada* entrada = nullptr;
    std::vector<std::pair<std::string, std::string>> fijar;
    std::vector<std::pair<std::string, std::string>> opciones;
};
// `conValor` are the options that take a value, `banderas` those that take none. Throws ErrorUso.
Argumentos LeeArgumentos(const std::vector<std::string>& args,
                         const std::vector<std::string>& conValor,
                         const std::vector<std::string>& banderas);

// The session started, the entry's form shown (loaded) and the --set values applied.
struct EntradaAbierta {
    ResultadoArranque arranque;
    std::shared_ptr<MenuCli> menu;
    std::shared_ptr<InteraccionCli> interaccion;
    std::shared_ptr<host::Formulario> forma;
};
// Starts the session and opens the entry; `interaccion` is installed for the process.
// ErrorFormulario from a --set value passes to the caller.
EntradaAbierta AbreEntrada(const Contexto& ctx, const Argumentos& a,
                           std::shared_ptr<InteraccionCli> interaccion);
// Applies the --set pairs in order.
void AplicaFijar(host::Formulario& forma, const Argumentos& a);
// The same for a command: a control the form does not have, or a value it does not take, is
// a usage error, said on stderr; false then.
bool FijaDesdeLinea(host::Formulario& forma, const Argumentos& a);

}  // namespace paratzorep::cli
