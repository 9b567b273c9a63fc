// tzorep templates list | import DIR | export DIR: the template store of the company database
// (reportesbin) as the home's tzorep.ini points at it.
#include <iostream>
#include <string>
#include <vector>

#include "data/AbrirBaseDeDatos.h"
#include "apps/tzorep/Arranque.h"
#include "apps/tzorep/Commands.h"
#include "output/Plantillas.h"
#include "session/Iniciales.h"
#include "session/Sesion.h"

namespace paratzorep::cli {

namespace detail {

int usoPlantillas(const std::string& mensaje) {
    std::cerr
        << "tzorep: " << mensaje << "\n"
        << "Uso: tzorep [--home CARPETA] templates list | import CARPETA | export CARPETA\n"
        << "  list            las plantillas guardadas en reportesbin (nombre, bytes, piezas)\n"
        << "  import CARPETA  guarda cada archivo .rpt de la carpeta\n"
        << "  export CARPETA  escribe cada plantilla guardada en la carpeta\n";
    return 2;
}

}  // namespace detail

int cmdTemplates(const Contexto& ctx, const std::vector<std::string>& args) {
    if (args.empty()) return detail::usoPlantillas("falta la orden de templates");
    const std::string& orden = args[0];
    if (orden == "list") {
        if (args.size() != 1) return detail::usoPlantillas("list no lleva argumentos");
    } else if (orden == "import" || orden == "export") {
        if (args.size() != 2 || args[1].empty())
            return detail::usoPlantillas(orden + " lleva una carpeta");
    } else {
        return detail::usoPlantillas("orden desconocida: templates " + orden);
    }

    try {
        session::Iniciales ini;
        auto arranque = Arranca(ctx.home, ini);
        for (const auto& aviso : arranque.avisos) std::cerr << "tzorep: " << aviso << "\n";
        auto& base = *session::sesion().BaseDD;
        host::Conexion cn;
        if (!data::AbrirBaseDeDatos(cn, base.cMiBase))
            throw std::runtime_error(
                "no se pudo abrir la base de datos " + base.cMiBase + ": " + base.UltimoError() +
                ". Revise tzorep.ini o inicie el servidor con 'tzorep db start'");
        struct Cierra {
            host::BaseDD& base;
            host::Conexion& cn;
            ~Cierra() { base.CierraBdD(cn); }
        } cierra{base, cn};

        if (orden == "list") {
            for (const auto& p : output::ListaPlantillas(cn))
                std::cout << p.archivo << "\t" << p.bytes << "\t" << p.piezas << "\n";
        } else if (orden == "import") {
            const auto guardadas = output::ImportaPlantillas(cn, args[1]);
            for (const auto& g : guardadas) std::cout << g << "\n";
            std::cerr << guardadas.size() << " plantillas guardadas en " << base.cMiBase
                      << ".reportesbin\n";
        } else {
            const auto escritas = output::ExportaPlantillas(cn, args[1]);
            for (const auto& e : escritas) std::cout << e << "\n";
            std::cerr << escritas.size() << " plantillas escritas en " << args[1] << "\n";
        }
        return 0;
    } catch (const std::exception& e) {
        std::cerr << "tzorep: templates " << orden << ": " << e.what() << "\n";
        return 1;
    }
}

}  // namespace paratzorep::cli
