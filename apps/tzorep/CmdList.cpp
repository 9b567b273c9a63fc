// tzorep list [--json]: the facade's 46 entry points in interface order under a title line:
// number, method, form, option, whether the report is available (its form is a full form
// that prints) and its title as the user sees it. --json gives the same as a JSON list.
#include <algorithm>
#include <iomanip>
#include <iostream>

#include "apps/tzorep/AbreEntrada.h"
#include "apps/tzorep/Commands.h"
#include "reports/ReportesAdm.h"

namespace paratzorep::cli {

int cmdList(const Contexto&, const std::vector<std::string>& args) {
    const bool json = args.size() == 1 && args[0] == "--json";
    if (!args.empty() && !json) {
        std::cerr << "tzorep: list solo admite --json (" << args[0]
                  << ")\nLas órdenes y sus opciones: tzorep help list\n";
        return 2;
    }
    const auto& tabla = reports::TablaFachada();
    if (json) {
        std::cout << "[";
        for (std::size_t i = 0; i < tabla.size(); ++i) {
            const auto& e = tabla[i];
            std::cout << (i ? ",\n " : "\n ") << "{\"number\":" << e.numero
                      << ",\"entry\":" << TextoJson(e.metodo) << ",\"form\":" << TextoJson(e.forma)
                      << ",\"option\":" << e.opcion
                      << ",\"available\":" << (reports::EntradaDisponible(e) ? "true" : "false")
                      << ",\"title\":" << TextoJson(reports::TituloEntrada(e)) << "}";
        }
        std::cout << "\n]\n";
        return std::cout.flush() ? 0 : 1;
    }
    std::size_t anchoMetodo = std::string("Entrada").size(), anchoForma = 0;
    for (const auto& e : tabla) {
        anchoMetodo = std::max(anchoMetodo, std::string(e.metodo).size());
        anchoForma = std::max(anchoForma, std::string(e.forma).size());
    }
    std::cout << "Núm  " << std::left << std::setw(static_cast<int>(anchoMetodo)) << "Entrada"
              << "  " << std::setw(static_cast<int>(anchoForma)) << "Forma"
              << "  Opción  Disponible  Reporte\n";
    for (const auto& e : tabla) {
        std::cout << std::right << std::setw(3) << e.numero << "  " << std::left
                  << std::setw(static_cast<int>(anchoMetodo)) << e.metodo << "  "
                  << std::setw(static_cast<int>(anchoForma)) << e.forma << "  " << std::right
                  << std::setw(6) << e.opcion << "  "
                  << (reports::EntradaDisponible(e) ? "sí" : "no") << "          "
                  << reports::TituloEntrada(e) << "\n";
    }
    return std::cout.flush() ? 0 : 1;
}

}  // namespace paratzorep::cli
