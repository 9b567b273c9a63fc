// Streams a selection through the renderer's data path (ODBC, keyset-paged
// blocks) and reports rows, time and a checksum. Run by correr.sh.
//   bench_datos CONNECT TABLA "SELECCION" [FILAS_POR_BLOQUE] [+{orden}]
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <iostream>

#include "renderer/data/Consulta.h"

using namespace paratzorep::renderer;

int main(int argc, char** argv) {
    if (argc < 4) {
        std::cerr << "uso: bench_datos CONNECT TABLA SELECCION [FILAS_POR_BLOQUE] [ORDEN]\n";
        return 2;
    }
    data::DescripcionConsulta d;
    d.tablas = {{"edoctacli", argv[2]}};
    d.columnas = {{"edoctacli", "Id"},       {"edoctacli", "Clave"},   {"edoctacli", "Fecha"},
                  {"edoctacli", "Concepto"}, {"edoctacli", "Importe"}, {"edoctacli", "IdMoneda"},
                  {"edoctacli", "Usuario"}};
    d.seleccion = argv[3];
    if (argc > 5) d.orden = {argv[5]};
    data::Opciones o;
    if (argc > 4) o.filasPorBloque = std::strtoul(argv[4], nullptr, 10);
    try {
        const auto t0 = std::chrono::steady_clock::now();
        auto f = data::abrirOdbc(argv[1], d, o);
        double suma = 0;
        std::size_t n = 0, bytes = 0;
        while (f->siguiente()) {
            ++n;
            suma += f->valor(4).esNulo() ? 0 : f->valor(4).comoNumero();
            bytes += f->valor(3).esNulo() ? 0 : f->valor(3).comoTexto().size();
        }
        const double s =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
        std::printf("filas=%zu sentencias=%zu segundos=%.3f filas/s=%.0f suma=%.2f bytes=%zu\n", n,
                    f->sqlEnviado().size(), s, n / s, suma, bytes);
        std::printf("último SQL: %s\n", f->sqlEnviado().back().c_str());
    } catch (const std::exception& e) {
        std::cerr << e.what() << "\n";
        return 1;
    }
    return 0;
}
