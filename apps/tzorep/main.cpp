// tzorep: the command-line host. Parses the global options, resolves the home
// folder and dispatches to the commands (one source file each).
#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "data/ServidorPrivado.h"
#include "apps/tzorep/Commands.h"

namespace paratzorep::cli {
namespace detail {

constexpr const char* kUso =
    "Uso: tzorep [--home CARPETA] <orden>\n"
    "  db start | db stop | db status      servidor MariaDB privado de la carpeta\n"
    "  db demo [--scale N] [--seed S]      crea la empresa de demostración\n"
    "  list                                los 46 reportes\n"
    "  show ENTRADA [--set C=V]... [--json]\n"
    "  print ENTRADA [--set C=V]... [--to screen|printer|file] [--type T] [--out RUTA]\n"
    "        [--printer NOMBRE] [--request-log ARCHIVO]\n"
    "  templates list | import CARPETA | export CARPETA\n"
    "Carpeta: --home, TZOREP_HOME o ~/.local/share/tzorep.\n"
    "Salida: 0 hecho, 1 error, 2 uso incorrecto; db status: 0 en marcha, 3 detenido.\n";

int errorDeUso(const std::string& mensaje) {
    if (!mensaje.empty()) std::cerr << "tzorep: " << mensaje << "\n";
    std::cerr << kUso;
    return 2;
}

int principal(int argc, char** argv) {
    std::vector<std::string> args(argv + 1, argv + argc);
    Contexto ctx;
    std::string home;
    std::size_t i = 0;
    for (; i < args.size() && args[i].rfind("-", 0) == 0; ++i) {
        const std::string& a = args[i];
        if (a == "-h" || a == "--help") {
            std::cout << kUso;
            return 0;
        } else if (a == "--home") {
            if (i + 1 >= args.size()) return errorDeUso("falta la carpeta después de --home");
            home = args[++i];
        } else if (a.rfind("--home=", 0) == 0) {
            home = a.substr(7);
        } else {
            return errorDeUso("opción desconocida: " + a);
        }
        if (home.empty()) return errorDeUso("la carpeta de --home está vacía");
    }
    if (i >= args.size()) return errorDeUso("falta la orden");

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
    return errorDeUso("orden desconocida: " + orden);
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
