// tzorep db demo [--scale N] [--seed S]: (re)creates the demo company "datos1",
// the general database and the reports work database on the private server,
// loads the template sources and writes the home's tzorep.ini.
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "apps/tzorep/Commands.h"
#include "apps/tzorep/ProgresoTerminal.h"
#include "data/BaseDDMaria.h"
#include "data/ServidorPrivado.h"
#include "host/Interaccion.h"
#include "output/Plantillas.h"
#include "schema/Esquema.h"
#include "schema/GeneradorDemo.h"
#include "session/Sesion.h"
#include "toolkit/Ini.h"

namespace paratzorep::cli {

namespace detail {

namespace fs = std::filesystem;

constexpr const char* kBaseEmpresa = "datos1";
constexpr const char* kBaseGeneral = "generaltanzo";
constexpr const char* kBaseReportes = "tanzoreportes";

int usoDemo(const std::string& mensaje) {
    std::cerr << "tzorep: " << mensaje << "\n"
              << "Uso: tzorep [--home CARPETA] db demo [--scale N] [--seed S]\n"
              << "  --scale N  tamaño de la empresa, de 1 a 1000 (1: unas 100 mil partidas)\n"
              << "  --seed S   semilla; la misma semilla da los mismos datos\n";
    return 2;
}

// Parses a whole decimal number within [minimo, maximo].
bool leeEntero(const std::string& texto, unsigned long long minimo, unsigned long long maximo,
               unsigned long long& valor) {
    if (texto.empty() || texto.size() > 20) return false;
    unsigned long long v = 0;
    for (char c : texto) {
        if (c < '0' || c > '9') return false;
        const unsigned long long d = static_cast<unsigned long long>(c - '0');
        if (v > (~0ULL - d) / 10) return false;
        v = v * 10 + d;
    }
    if (v < minimo || v > maximo) return false;
    valor = v;
    return true;
}

std::string conBarra(const fs::path& p) {
    std::string s = p.string();
    if (s.empty() || s.back() != '/') s += '/';
    return s;
}

// The home's start-up values for the host: paths under the home, the company
// database on the private server, no remote company server. Only these keys
// are written; whatever else the file holds (window positions, grid widths,
// other settings) stays.
void escribeIni(const fs::path& home, const data::DatosServidor& d) {
    for (const char* c : {"rpts", "editarpts", "pdfs", "imgs"}) fs::create_directories(home / c);
    const fs::path ini = home / "tzorep.ini";
    if (!fs::exists(ini)) {
        std::ofstream f(ini);
        f << "; Valores iniciales de tzorep; 'tzorep db demo' escribe los de la demostración.\n";
        if (!f.flush()) throw std::runtime_error("No se pudo escribir " + ini.string());
    }
    const std::vector<std::tuple<const char*, const char*, std::string>> valores = {
        {"Iniciales", "RutaTanzo", conBarra(home)},
        {"Iniciales", "RutaRpts", conBarra(home / "rpts")},
        {"Iniciales", "RutaEditaRpts", conBarra(home / "editarpts")},
        {"Iniciales", "RutaPDFs", conBarra(home / "pdfs")},
        {"Iniciales", "RutaImgs", conBarra(home / "imgs")},
        {"Iniciales", "ArchivoINI", ini.string()},
        {"Iniciales", "UserUsuario", "ADMIN"},
        {"Iniciales", "IdDelUs", "1"},
        {"Iniciales", "ClaveEmpresa", "DEMO"},
        {"Iniciales", "DiasParaReportes", "0"},
        {"BaseDD", "cRuta", d.host},
        {"BaseDD", "cUsuario", d.usuario},
        {"BaseDD", "cPassword", d.password},
        {"BaseDD", "cPuerto", std::to_string(d.puerto)},
        {"BaseDD", "cMiBase", kBaseEmpresa},
        {"DatosConecte", "xServidor", ""},
        {"DatosConecte", "xUsuario", ""},
        {"DatosConecte", "xPassWord", ""},
        {"DatosConecte", "xPuerto", "0"},
        {"DatosConecte", "xBaseDD", ""},
    };
    for (const auto& [seccion, clave, valor] : valores)
        toolkit::EscribeIni(seccion, clave, valor, ini);
    // It holds the database password.
    fs::permissions(ini, fs::perms::owner_read | fs::perms::owner_write);
}

// Stores every template source into the company's reportesbin with the same routine as
// 'tzorep templates import'; no folder, no templates.
int cargaPlantillas(const data::DatosServidor& d, const fs::path& carpeta) {
    std::error_code ec;
    if (!fs::is_directory(carpeta, ec)) return 0;
    auto base = std::make_shared<data::BaseDDMaria>();
    base->cRuta = d.host;
    base->cUsuario = d.usuario;
    base->cPassword = d.password;
    base->cPuerto = d.puerto;
    base->cMiBase = kBaseEmpresa;
    session::sesion().BaseDD = base;
    host::Conexion cn;
    if (!base->AbrirBdD(cn, kBaseEmpresa))
        throw std::runtime_error("no se pudo abrir " + std::string(kBaseEmpresa) +
                                 " para cargar las plantillas: " + base->UltimoError());
    const auto guardadas = output::ImportaPlantillas(cn, carpeta);
    base->CierraBdD(cn);
    return static_cast<int>(guardadas.size());
}

// Bytes on disk of one database's folder in the server's data folder.
unsigned long long tamanioBase(const fs::path& datadir, const std::string& base) {
    unsigned long long total = 0;
    std::error_code ec;
    for (const auto& e : fs::recursive_directory_iterator(datadir / base, ec))
        if (e.is_regular_file(ec)) total += e.file_size(ec);
    return total;
}

std::string enMegas(unsigned long long bytes) {
    char b[32];
    std::snprintf(b, sizeof b, "%.1f MB", static_cast<double>(bytes) / (1024.0 * 1024.0));
    return b;
}

}  // namespace detail

int cmdDbDemo(const Contexto& ctx, const std::vector<std::string>& args) {
    namespace fs = std::filesystem;
    schema::OpcionesDemo op;
    op.baseEmpresa = detail::kBaseEmpresa;
    op.baseGeneral = detail::kBaseGeneral;
    for (size_t i = 0; i < args.size(); ++i) {
        std::string a = args[i], valor;
        const auto igual = a.find('=');
        if (a.rfind("--", 0) == 0 && igual != std::string::npos) {
            valor = a.substr(igual + 1);
            a = a.substr(0, igual);
        } else if (a == "--scale" || a == "--seed") {
            if (i + 1 >= args.size()) return detail::usoDemo("falta el valor de " + a);
            valor = args[++i];
        } else {
            return detail::usoDemo("argumento desconocido: " + a);
        }
        unsigned long long v = 0;
        if (a == "--scale") {
            if (!detail::leeEntero(valor, 1, 1000, v))
                return detail::usoDemo("la escala debe ser un número entero de 1 a 1000: '" +
                                       valor + "'");
            op.escala = static_cast<int>(v);
        } else if (a == "--seed") {
            if (!detail::leeEntero(valor, 0, ~0ULL, v))
                return detail::usoDemo("la semilla debe ser un número entero no negativo: '" +
                                       valor + "'");
            op.semilla = v;
        } else {
            return detail::usoDemo("argumento desconocido: " + args[i]);
        }
    }

    const auto t0 = std::chrono::steady_clock::now();
    // Progress on stderr when it is a terminal; nothing otherwise.
    host::InteraccionTemporal sink(std::make_shared<InteraccionTerminal>());
    host::Interaccion& ui = host::interaccion();
    try {
        data::ServidorPrivado servidor(ctx.home);
        data::EstadoServidor estado = servidor.estado();
        data::DatosServidor datos;
        if (estado.corriendo && estado.datos) {
            datos = *estado.datos;
        } else {
            std::cerr << "Iniciando el servidor privado en " << ctx.home.string() << "\n";
            datos = servidor.iniciar();
        }
        auto conexion = schema::Conexion::abrir(datos);
        const fs::path esquemas = schema::carpetaEsquemas();
        ui.Progreso(0, "Creando las bases de datos");
        schema::recrearBase(conexion, detail::kBaseGeneral, esquemas / "generaltanzo.sql");
        schema::recrearBase(conexion, detail::kBaseReportes, esquemas / "tanzoreportes.sql");
        schema::recrearBase(conexion, detail::kBaseEmpresa, esquemas / "empresa.sql");
        const auto conteos = schema::generarDemo(conexion, op);
        ui.Progreso(100, "Cargando las plantillas");
        const int plantillas =
            detail::cargaPlantillas(datos, fs::path(TZ_SOURCE_DIR) / "templates");
        detail::escribeIni(ctx.home, datos);
        ui.Progreso(0, "");
        const double segundos =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();

        // Summary: the main tables with their rows, time and size on disk.
        std::map<std::string, long long> porTabla;
        long long total = 0;
        for (const auto& [tabla, filas] : conteos) {
            const auto punto = tabla.find("`.");
            porTabla[punto == std::string::npos ? tabla : tabla.substr(punto + 2)] += filas;
            total += filas;
        }
        std::cout << "Empresa de demostración creada (escala " << op.escala << ", semilla "
                  << op.semilla << ", del " << schema::kFechaInicialDemo << " al "
                  << schema::kFechaFinalDemo << ")\n";
        const std::string datadir = conexion.valor("SELECT @@datadir");
        unsigned long long bytes = 0;
        for (const char* b : {detail::kBaseEmpresa, detail::kBaseGeneral, detail::kBaseReportes}) {
            const auto t = detail::tamanioBase(datadir, b);
            bytes += t;
            std::cout << "  base " << b << ": " << detail::enMegas(t) << "\n";
        }
        for (const char* t :
             {"clientes", "proveedores", "productos", "facturas", "facturasdetalle", "remisiones",
              "remisionesdetalle", "tickets", "ticketsdetalle", "edoctacli", "anexopagosctes",
              "cxc", "compras", "historicoalmacen", "bitacorausuarios"}) {
            char linea[96];
            std::snprintf(linea, sizeof linea, "  %-20s %10lld\n", t, porTabla[t]);
            std::cout << linea;
        }
        char fin[160];
        std::snprintf(fin, sizeof fin,
                      "  %lld filas en %zu tablas, %d plantillas, %.1f s, %s en disco\n", total,
                      porTabla.size(), plantillas, segundos, detail::enMegas(bytes).c_str());
        std::cout << fin << "  " << (ctx.home / "tzorep.ini").string() << " escrito\n";
        return 0;
    } catch (const data::ErrorServidor& e) {
        ui.Progreso(0, "");
        std::cerr << "tzorep: " << e.what() << "\n";
        if (!e.registro().empty()) std::cerr << e.registro() << "\n";
    } catch (const std::exception& e) {
        ui.Progreso(0, "");
        std::cerr << "tzorep: no se pudo crear la empresa de demostración: " << e.what() << "\n";
    }
    return 1;
}

}  // namespace paratzorep::cli
