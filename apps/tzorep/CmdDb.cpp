// tzorep db start | stop | status: the private MariaDB server of the home folder.
#include <chrono>
#include <cstdio>
#include <iostream>

#include "apps/tzorep/Commands.h"
#include "data/BaseDDMaria.h"
#include "data/ConexionMaria.h"
#include "data/ServidorPrivado.h"
#include "data/TablasTrabajo.h"

namespace paratzorep::cli {

namespace detail {

constexpr int kDetenido = 3;  // db status when no server runs (as service tools do)

int usoDb() {
    std::cerr << "Uso: tzorep [--home CARPETA] db start | db stop | db status | db demo ...\n";
    return 2;
}

void mostrarError(const data::ErrorServidor& e) {
    std::cerr << "tzorep: " << e.what() << "\n";
    // The log tail is already part of the message when the server itself failed.
    const std::string texto = e.what();
    if (!e.registro().empty() && texto.find(e.registro()) == std::string::npos) {
        std::cerr << e.registro() << "\n";
    }
}

// A connection to the private server as its application user, for the work-table registry.
host::Conexion ConectaPrivado(const data::DatosServidor& d) {
    data::DatosConexion datos;
    datos.servidor = d.host;
    datos.puerto = d.puerto;
    datos.usuario = d.usuario;
    datos.password = d.password;
    return std::make_shared<data::ConexionMaria>(std::move(datos));
}

}  // namespace detail

int cmdDb(const Contexto& ctx, const std::vector<std::string>& args) {
    if (args.size() != 1) return detail::usoDb();
    const std::string& sub = args[0];
    data::ServidorPrivado servidor(ctx.home);
    try {
        if (sub == "start") {
            const auto t0 = std::chrono::steady_clock::now();
            const data::DatosServidor d = servidor.iniciar();
            const double s =
                std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
            char tiempo[32];
            std::snprintf(tiempo, sizeof tiempo, "%.2f", s);
            std::cout << "Servidor privado en marcha en 127.0.0.1:" << d.puerto << " (socket "
                      << d.socket << ", " << tiempo << " s)\n";
            // Work tables of prints that died with the server before this start.
            try {
                data::BaseDDMaria base;
                const auto borradas = data::BorraTablasHuerfanas(base, detail::ConectaPrivado(d));
                if (!borradas.empty())
                    std::cout << "Tablas de trabajo huérfanas borradas: " << borradas.size()
                              << "\n";
            } catch (const std::exception& e) {
                std::cerr << "tzorep: no se pudieron revisar las tablas de trabajo: " << e.what()
                          << "\n";
            }
            return 0;
        }
        if (sub == "stop") {
            if (servidor.detener()) {
                std::cout << "Servidor privado detenido\n";
            } else {
                std::cout << "El servidor privado no estaba en marcha\n";
            }
            return 0;
        }
        if (sub == "status") {
            const data::EstadoServidor e = servidor.estado();
            if (!e.corriendo) {
                std::cout << "Servidor privado: detenido\n"
                          << "Carpeta de datos: " << servidor.carpetaDatos().string() << "\n";
                return detail::kDetenido;
            }
            std::cout << "Servidor privado: en marcha\n"
                      << "Pid: " << e.pid << "\n";
            if (e.datos) {
                std::cout << "Puerto: " << e.datos->puerto << "\n"
                          << "Socket: " << e.datos->socket << "\n"
                          << "Usuario: " << e.datos->usuario << "\n";
            }
            std::cout << "Carpeta de datos: " << servidor.carpetaDatos().string() << "\n";
            if (e.datos) {
                try {
                    data::BaseDDMaria base;
                    const auto t =
                        data::RevisaTablasTrabajo(base, detail::ConectaPrivado(*e.datos));
                    std::cout << "Tablas de trabajo en uso: " << t.enUso << "\n"
                              << "Tablas de trabajo huérfanas: " << t.huerfanas.size();
                    if (!t.huerfanas.empty())
                        std::cout << " (se borran en la próxima impresión o con tzorep db start)";
                    std::cout << "\n";
                } catch (const std::exception& ex) {
                    std::cout << "Tablas de trabajo: no se pudieron revisar (" << ex.what()
                              << ")\n";
                }
            }
            return 0;
        }
    } catch (const data::ErrorServidor& e) {
        detail::mostrarError(e);
        return 1;
    } catch (const std::exception& e) {
        std::cerr << "tzorep: " << e.what() << "\n";
        return 1;
    }
    return detail::usoDb();
}

}  // namespace paratzorep::cli
