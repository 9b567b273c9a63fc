// Streams a selection through the renderer's data path (ODBC, keyset-paged
// blocks) and reports rows, time, statements and a checksum. Run by correr.sh.
//   bench_datos CONNECT TABLA "CAMPO,CAMPO,..." "SELECCION" [FILAS_POR_BLOQUE] [ORDEN]
// TABLA is the table on the server ("base.tabla" or "tabla"); the formulas name it by
// its bare name, as a template does.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <string>

#include "renderer/data/Consulta.h"

using namespace paratzorep::renderer;

int main(int argc, char** argv) {
    if (argc < 5) {
        std::cerr << "uso: bench_datos CONNECT TABLA CAMPOS SELECCION [FILAS_POR_BLOQUE] [ORDEN]\n";
        return 2;
    }
    const std::string origen = argv[2];
    const std::string alias = origen.substr(origen.find('.') + 1);
    data::DescripcionConsulta d;
    d.tablas = {{alias, origen}};
    std::stringstream campos(argv[3]);
    for (std::string c; std::getline(campos, c, ',');) d.columnas.push_back({alias, c});
    d.seleccion = argv[4];
    if (argc > 6) d.orden = {argv[6]};
    data::Opciones o;
    if (argc > 5) o.filasPorBloque = std::strtoul(argv[5], nullptr, 10);
    // ADELANTADO=0 reads each block only when the previous one is consumed (for comparison).
    if (const char* a = std::getenv("ADELANTADO"); a && std::string(a) == "0")
        o.leerAdelantado = false;
    try {
        const auto t0 = std::chrono::steady_clock::now();
        auto f = data::abrirOdbc(argv[1], d, o);
        // Touch every value as a report would: numbers summed, texts measured.
        double suma = 0;
        std::size_t n = 0, bytes = 0;
        const std::size_t columnas = d.columnas.size();
        while (f->siguiente()) {
            ++n;
            for (std::size_t c = 0; c < columnas; ++c) {
                const Valor& v = f->valor(c);
                if (v.tipo() == Valor::Tipo::Numero)
                    suma += v.comoNumero();
                else if (v.tipo() == Valor::Tipo::Texto)
                    bytes += v.comoTexto().size();
            }
        }
        const double s =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
        std::printf("filas=%zu sentencias=%zu segundos=%.3f filas/s=%.0f suma=%.2f bytes=%zu\n", n,
                    f->sqlEnviado().size(), s, n / s, suma, bytes);
        std::printf("en memoria: %zu partes de la selección\n", f->seleccionEnMemoria().size());
        for (const auto& sql : f->sqlEnviado())
            if (sql.rfind("SELECT", 0) == 0 &&
                sql.find("information_schema") == std::string::npos) {
                std::printf("primer SQL: %s\n", sql.c_str());
                break;
            }
    } catch (const std::exception& e) {
        std::cerr << e.what() << "\n";
        return 1;
    }
    return 0;
}
