// tzorep printers: where `print --to printer --printer NAME` can send a report: the queues of
// the print server (CUPS), the default one marked, and the built-in "pdfcreator", which keeps
// the report as a PDF in the home's PDF folder.
#include <algorithm>
#include <iostream>

#include "apps/tzorep/Arranque.h"
#include "apps/tzorep/Commands.h"
#include "output/Ejecutor.h"
#include "renderer/impresion/Impresora.h"
#include "session/Sesion.h"

namespace paratzorep::cli {

int cmdPrinters(const Contexto& ctx, const std::vector<std::string>& args) {
    if (!args.empty()) {
        std::cerr << "tzorep: printers no admite argumentos (" << args[0]
                  << ")\nLas órdenes y sus opciones: tzorep help\n";
        return 2;
    }
    session::Iniciales ini;
    Arranca(ctx.home, ini);
    const std::string carpetaPdf = session::sesion().RutaPDFs;

    struct Fila {
        std::string marca, nombre, descripcion;
    };
    std::vector<Fila> filas;
    const auto destinos = renderer::DestinosImpresion();
    bool predeterminada = false;
    if (destinos) {
        for (const auto& d : *destinos) {
            filas.push_back({d.predeterminada ? "*" : " ", d.nombre, d.descripcion});
            predeterminada = predeterminada || d.predeterminada;
        }
    }
    filas.push_back({" ", output::kImpresoraPdf, "guarda el reporte como PDF en " + carpetaPdf});

    std::size_t ancho = std::string("Impresora").size();
    for (const auto& f : filas) ancho = std::max(ancho, f.nombre.size());
    auto columna = [ancho](std::string s) {
        s.resize(ancho + 2, ' ');
        return s;
    };
    std::cout << "  " << columna("Impresora") << "Descripción\n";
    for (const auto& f : filas) {
        std::string linea = f.marca + " " + columna(f.nombre) + f.descripcion;
        while (!linea.empty() && linea.back() == ' ') linea.pop_back();
        std::cout << linea << "\n";
    }
    if (predeterminada) std::cout << "(* la impresora predeterminada)\n";
    if (!destinos) {
        std::cerr << "tzorep: aviso: no respondió el servidor de impresión (CUPS): solo se puede "
                     "imprimir a "
                  << output::kImpresoraPdf << "\n";
    } else if (destinos->empty()) {
        std::cerr << "tzorep: aviso: el servidor de impresión (CUPS) no tiene impresoras\n";
    }
    return std::cout.flush() ? 0 : 1;
}

}  // namespace paratzorep::cli
