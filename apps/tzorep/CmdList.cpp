// tzorep list: the facade's 46 entry points in interface order, one a line, in aligned columns:
// number, method, form, option.
#include <algorithm>
#include <iomanip>
#include <iostream>

#include "apps/tzorep/Commands.h"
#include "reports/ReportesAdm.h"

namespace paratzorep::cli {

int cmdList(const Contexto&, const std::vector<std::string>& args) {
    if (!args.empty()) {
        std::cerr << "tzorep: list no admite argumentos (" << args[0] << ")\n";
        return 2;
    }
    const auto& tabla = reports::TablaFachada();
    std::size_t anchoMetodo = 0, anchoForma = 0;
    for (const auto& e : tabla) {
        anchoMetodo = std::max(anchoMetodo, std::string(e.metodo).size());
        anchoForma = std::max(anchoForma, std::string(e.forma).size());
    }
    for (const auto& e : tabla) {
        std::cout << std::right << std::setw(2) << e.numero << "  " << std::left
                  << std::setw(static_cast<int>(anchoMetodo)) << e.metodo << "  "
                  << std::setw(static_cast<int>(anchoForma)) << e.forma << "  " << std::right
                  << std::setw(3) << e.opcion << "\n";
    }
    return std::cout ? 0 : 1;
}

}  // namespace paratzorep::cli
