#include <iostream>

#include "host/cli/Commands.h"

namespace paratzorep::cli {

int cmdDbDemo(const Contexto&, const std::vector<std::string>&) {
    std::cerr << "tzorep: db demo no está disponible todavía\n";
    return 1;
}

}  // namespace paratzorep::cli
