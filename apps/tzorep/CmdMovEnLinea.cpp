// tzorep movenlinea crear | clientes | aplicar | recalcular ID | saldo CLAVE: the online
// movements engine's operations on the home's company database and, for crear, clientes and
// aplicar, the central database that kvtz5.ini names. Each prints one line saying what changed.
#include <cstdio>
#include <iostream>
#include <memory>

#include "apps/tzorep/Arranque.h"
#include "apps/tzorep/Commands.h"
#include "engines/MovEnLinea.h"
#include "host/Interaccion.h"
#include "session/Iniciales.h"
#include "toolkit/Ini.h"

namespace paratzorep::cli {

namespace detail {

constexpr const char* kTitulo = "Movimientos en línea";

int usoMovEnLinea(const std::string& mensaje) {
    if (!mensaje.empty()) std::cerr << "tzorep: " << mensaje << "\n";
    std::cerr << "Uso: tzorep [--home CARPETA] movenlinea crear | clientes | aplicar | "
                 "recalcular ID | saldo CLAVE\n";
    return 2;
}

std::string Importe(double v) {
    char b[64];
    std::snprintf(b, sizeof b, "%.2f", v);
    return b;
}

int SinUso() {
    std::cerr << kTitulo << ": la base de datos central no está en uso (BasesDD en la sección "
              << "[kvtz5] de " << toolkit::ArchivoRegistro().string() << "); no se hizo nada.\n";
    return 1;
}

}  // namespace detail

int cmdMovEnLinea(const Contexto& ctx, const std::vector<std::string>& args) {
    if (args.empty()) return detail::usoMovEnLinea("falta la operación");
    const std::string& op = args[0];
    const bool conArgumento = op == "recalcular" || op == "saldo";
    if (op != "crear" && op != "clientes" && op != "aplicar" && !conArgumento)
        return detail::usoMovEnLinea("operación desconocida: " + op);
    if (args.size() != (conArgumento ? 2u : 1u))
        return detail::usoMovEnLinea(conArgumento && args.size() < 2
                                         ? "falta " +
                                               std::string(op == "saldo" ? "la clave" : "el Id")
                                         : "sobran argumentos");
    std::int64_t id = 0;
    if (op == "recalcular") {
        const std::string& t = args[1];
        if (t.empty() || t.size() > 10 || t.find_first_not_of("0123456789") != std::string::npos ||
            (id = std::stoll(t)) <= 0)
            return detail::usoMovEnLinea(
                "el Id del movimiento debe ser un número entero positivo: " + t);
    }

    try {
        session::Iniciales ini;
        ResultadoArranque arranque = Arranca(ctx.home, ini);
        for (const auto& aviso : arranque.avisos) std::cerr << "tzorep: " << aviso << "\n";
        engines::MovEnLinea motor;
        if (op == "crear") {
            const auto r = motor.CrearBdDR();
            if (!r.enUso) return detail::SinUso();
            std::cout << "Base central" << (r.baseCreada ? " creada" : "") << ": "
                      << r.tablasCreadas << " tablas creadas, "
                      << r.sentencias.size() - static_cast<std::size_t>(r.tablasCreadas)
                      << " cambios de estructura\n";
        } else if (op == "clientes") {
            const auto r = motor.AgregarClientesSEL();
            if (!r.enUso) return detail::SinUso();
            std::cout << "Clientes a la base central: " << r.agregados << " copiados, "
                      << r.yaEstaban << " ya estaban";
            if (!r.omitidos.empty())
                std::cout << ", " << r.omitidos.size() << " omitidos por su clave";
            std::cout << " (de " << r.leidos << ")\n";
            for (const auto& c : r.omitidos)
                std::cerr << detail::kTitulo << ": el cliente '" << c
                          << "' no se copió: su clave lleva comillas o diagonales inversas\n";
        } else if (op == "aplicar") {
            const auto r = motor.AplicaPagosPendientes();
            if (!r.enUso) return detail::SinUso();
            std::cout << "Pagos de otras empresas: " << r.aplicados << " aplicados por "
                      << detail::Importe(r.importe);
            if (r.yaAplicados > 0)
                std::cout << ", " << r.yaAplicados
                          << " ya aplicados antes (solo se marcaron en la base central)";
            std::cout << "; FolioSEL " << r.folioSEL << "\n";
        } else if (op == "recalcular") {
            const auto r = motor.RecalculaEdoCta(id);
            if (!r.encontrado) {
                std::cerr << detail::kTitulo << ": no existe el movimiento " << id
                          << " en el estado de cuenta (edoctacli)\n";
                return 1;
            }
            std::cout << "Estado de cuenta de " << r.clave << " (moneda " << r.moneda
                      << "): " << r.movimientos << " movimientos recalculados desde el " << id
                      << ", saldo final " << detail::Importe(r.saldo) << "\n";
        } else {
            const std::string& clave = args[1];
            if (motor.ActualizaSaldo(clave))
                std::cout << "saldoscli de " << clave << " igualado a clientes.Saldo\n";
            else
                std::cout << "saldoscli de " << clave
                          << " sin cambios (ya coincide, o falta el cliente o su saldo)\n";
        }
        return std::cout ? 0 : 1;
    } catch (const engines::ErrorMovEnLinea& e) {
        std::cerr << detail::kTitulo << ": " << e.what() << "\n";
        return 1;
    } catch (const std::exception& e) {
        std::cerr << "tzorep: " << e.what() << "\n";
        return 1;
    }
}

}  // namespace paratzorep::cli
