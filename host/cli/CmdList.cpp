#include <iostream>

#include "host/cli/Commands.h"

namespace paratzorep::cli {

int cmdList(const Contexto&, const std::vector<std::string>&) {
    std::cerr << "tzorep: list no está disponible todavía\n";
    return 1;
}

}  // namespace paratzorep::cli
