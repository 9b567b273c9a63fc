// tzorep press ENTRY BUTTON [--set C=V]... [--request-log FILE]
// Opens the entry's form, sets its controls as a user would and clicks one of its buttons
// (cmdEnviar of ADSClientes mails the aging sheets). Exit 0 when the button did its work, 1
// when the form reported an error (a message with the critical icon, or a report form's
// failure), 2 for a usage error (a control that the form does not have or that is not a
// button).
#include <iostream>

#include "apps/tzorep/AbreEntrada.h"
#include "output/Ejecutor.h"
#include "reports/Marco.h"

namespace paratzorep::cli {

int cmdPress(const Contexto& ctx, const std::vector<std::string>& args) {
    Argumentos a;
    std::string boton;
    std::string bitacora;
    try {
        // The button is the second word: the one after the entry.
        std::vector<std::string> resto;
        int palabras = 0;
        for (std::size_t i = 0; i < args.size(); ++i) {
            const bool opcion = args[i].rfind("--", 0) == 0;
            if (!opcion && palabras++ == 1) {
                boton = args[i];
                continue;
            }
            resto.push_back(args[i]);
            // The value of an option given apart goes with it.
            if (opcion && args[i].find('=') == std::string::npos && i + 1 < args.size())
                resto.push_back(args[++i]);
        }
        a = LeeArgumentos(resto, {"--request-log"}, {});
        if (boton.empty()) throw ErrorUso("falta el botón que se oprime (por ejemplo cmdEnviar)");
        for (const auto& [nombre, valor] : a.opciones)
            if (nombre == "--request-log") bitacora = valor;
    } catch (const ErrorUso& e) {
        std::cerr << "tzorep: " << e.what() << "\n"
                  << "Uso: tzorep press ENTRADA BOTON [--set C=V]... [--request-log ARCHIVO]\n"
                     "Más: tzorep help press\n";
        return 2;
    }
    try {
        auto interaccion = std::make_shared<InteraccionCli>();
        auto abierta = AbreEntrada(ctx, a, interaccion);
        auto& forma = *abierta.forma;
        if (interaccion->criticos > 0) return 1;
        const std::string base = boton.substr(0, boton.find('('));
        bool existe = false;
        for (const host::Control* c : forma.Controles())
            if (c->NombreCompleto() == boton) existe = true;
        if (!existe || host::TipoDe(base) != host::TipoControl::Boton) {
            std::string botones;
            for (const host::Control* c : forma.Controles())
                if (c->Tipo() == host::TipoControl::Boton)
                    botones += (botones.empty() ? "" : ", ") + c->NombreCompleto();
            std::cerr << "tzorep: la forma " << forma.Nombre() << " no tiene el botón '" << boton
                      << "' (sus botones: " << botones << ")\n";
            return 2;
        }
        if (!FijaDesdeLinea(forma, a)) return 2;
        const host::Control& c = forma.Ctl(
            base, boton == base
                      ? std::int16_t{-1}
                      : static_cast<std::int16_t>(std::stoi(boton.substr(base.size() + 1))));
        if (!c.Enabled) {
            std::cerr << forma.Caption << ": el botón '" << c.Caption << "' (" << boton
                      << ") está desactivado" << (c.Tag.empty() ? "" : ": " + c.Tag) << "\n";
            return 1;
        }
        auto& opciones = output::opcionesEjecucion();
        opciones.bitacoraSolicitudes = bitacora;
        opciones.salidaPantalla = &std::cout;
        auto* reporte = dynamic_cast<reports::FormaReporte*>(&forma);
        const int antes = interaccion->criticos;
        const int mensajes = interaccion->mensajes;
        forma.Fija(boton, "");
        const bool fallo =
            interaccion->criticos > antes || (reporte && !reporte->UltimoError().empty());
        if (fallo && reporte && interaccion->mensajes == mensajes)
            std::cerr << forma.Caption << ": " << reporte->UltimoError() << "\n";
        if (fallo) return 1;
    } catch (const std::exception& e) {
        std::cerr << "tzorep: " << e.what() << "\n";
        return 1;
    }
    return std::cout.flush() ? 0 : 1;
}

}  // namespace paratzorep::cli
