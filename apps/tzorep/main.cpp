// tzorep: the command-line host. Parses the global options, resolves the home
// folder and dispatches to the commands (one source file each).
#include <algorithm>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "apps/tzorep/Ayuda.h"
#include "apps/tzorep/Commands.h"
#include "data/ServidorPrivado.h"

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
    if (orden == "templates") return cmdTemplates(ctx, resto);
    if (orden == "movenlinea") return cmdMovEnLinea(ctx, resto);
    return cmdPrinters(ctx, resto);
}

}  // namespace detail
}  // namespace paratzorep::cli

int main(int argc, char** argv) {
    try {
        return paratzorep::cli::detail::principal(argc, argv);
    } catch (const std::exception& e) {
        std::cerr << "tzorep: " << e.what() << "\n";
        return 1;
    }
}
