// tzorep: the command-line host. Parses the global options, resolves the home
// folder and dispatches to the commands (one source file each).
#include <libintl.h>

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "apps/tzorep/Ayuda.h"
#include "apps/tzorep/Commands.h"
#include "data/ConexionMaria.h"
#include "data/ServidorPrivado.h"
#include "host/Proceso.h"

namespace paratzorep::cli {
namespace detail {

int errorDeUso(const std::string& mensaje) {
    std::cerr << "tzorep: " << mensaje
              << "\nUso: tzorep [--home CARPETA] ORDEN [OPCIONES]  (las órdenes y sus opciones: "
                 "tzorep help)\n";
    return 2;
}

// tzorep help [ORDEN]
int cmdHelp(const std::vector<std::string>& args) {
    if (args.empty()) {
        std::cout << UsoGeneral();
    } else if (args.size() > 1) {
        return errorDeUso("help lleva a lo más una orden");
    } else if (!AyudaDe(args[0], std::cout)) {
        return errorDeUso("no hay ayuda de '" + args[0] + "': no es una orden." +
                          QuisoDecir(args[0], Ordenes()));
    }
    return std::cout.flush() ? 0 : 1;
}

int principal(int argc, char** argv) {
    std::vector<std::string> args(argv + 1, argv + argc);
    Contexto ctx;
    std::string home;
    std::size_t i = 0;
    for (; i < args.size() && args[i].rfind("-", 0) == 0; ++i) {
        const std::string& a = args[i];
        if (a == "-h" || a == "--help") {
            std::cout << UsoGeneral();
            return 0;
        } else if (a == "-V" || a == "--version") {
            std::cout << Version() << "\n";
            return 0;
        } else if (a == "--home") {
            if (i + 1 >= args.size()) return errorDeUso("falta la carpeta después de --home");
            home = args[++i];
        } else if (a.rfind("--home=", 0) == 0) {
            home = a.substr(7);
        } else {
            return errorDeUso("opción desconocida: " + a + "." +
                              QuisoDecir(a, {"--home", "--help", "--version"}));
        }
        if (home.empty()) return errorDeUso("la carpeta de --home está vacía");
    }
    if (i >= args.size()) {
        std::cerr << UsoGeneral();
        return 2;
    }

    if (home.empty()) {
        const char* env = std::getenv("TZOREP_HOME");
        ctx.home =
            env && *env ? std::filesystem::path(env) : data::ServidorPrivado::homePorDefecto();
    } else {
        ctx.home = home;
    }
    ctx.home = std::filesystem::absolute(ctx.home).lexically_normal();
    if (ctx.home.filename().empty()) ctx.home = ctx.home.parent_path();  // "dir/" -> "dir"
    // What a message about an unreachable server tells the user to run (Arranque clears it when
    // tzorep.ini points at another server).
    data::ComoArrancarServidor() =
        "tzorep " + (home.empty() ? std::string() : "--home " + ctx.home.string() + " ") +
        "db start";

    const std::string orden = args[i];
    std::vector<std::string> resto(args.begin() + static_cast<std::ptrdiff_t>(i) + 1, args.end());
    if (orden == "help") return cmdHelp(resto);
    const auto& ordenes = Ordenes();
    if (std::find(ordenes.begin(), ordenes.end(), orden) == ordenes.end())
        return errorDeUso("orden desconocida: '" + orden + "'." + QuisoDecir(orden, ordenes));
    if (PideAyuda(resto)) {
        AyudaDe(orden, std::cout);
        return std::cout.flush() ? 0 : 1;
    }
    if (orden == "db") {
        if (!resto.empty() && resto[0] == "demo") {
            return cmdDbDemo(ctx, std::vector<std::string>(resto.begin() + 1, resto.end()));
        }
        return cmdDb(ctx, resto);
    }
    if (orden == "list") return cmdList(ctx, resto);
    if (orden == "show") return cmdShow(ctx, resto);
    if (orden == "print") return cmdPrint(ctx, resto);
    if (orden == "press") return cmdPress(ctx, resto);
    if (orden == "templates") return cmdTemplates(ctx, resto);
    if (orden == "movenlinea") return cmdMovEnLinea(ctx, resto);
    return cmdPrinters(ctx, resto);
}

}  // namespace detail
}  // namespace paratzorep::cli

int main(int argc, char** argv) {
    // Ctrl-C, SIGTERM and SIGHUP drop the work tables and remove the half-written files before
    // the process ends; installed before any other thread starts.
    paratzorep::host::InstalaInterrupciones("tzorep");
    // The system's own reasons (a full disk, a missing folder) in Spanish, whatever the locale
    // says; numbers, dates and collation keep the C locale.
    setenv("LANGUAGE", "es", 0);
    const char* mensajes = std::setlocale(LC_MESSAGES, "");
    if (mensajes == nullptr || std::strcmp(mensajes, "C") == 0 ||
        std::strcmp(mensajes, "POSIX") == 0)
        std::setlocale(LC_MESSAGES, "C.UTF-8");
    bind_textdomain_codeset("libc", "UTF-8");
    int estado = 1;
    try {
        estado = paratzorep::cli::detail::principal(argc, argv);
    } catch (const std::exception& e) {
        std::cerr << "tzorep: " << e.what() << "\n";
    }
    // An interruption under way ends the process with its own status and message.
    paratzorep::host::EsperaSiInterrumpido();
    return estado;
}
