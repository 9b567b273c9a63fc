// tzorep print ENTRY [--set C=V]... [--to screen|printer|file] [--type T] [--out PATH]
//                    [--printer NAME] [--request-log FILE] [--pages DIR]
// Opens the entry's form, sets its controls as a user would, chooses the destination (the
// file destination answers the export dialog with --type and --out; --out - sends a text
// type to standard output) and presses print. The screen goes through a pager on a terminal.
// Exit 0 when the report was produced, 1 when the form reported an error, 2 for a usage error.
//
// --out names a file: an existing folder is a usage error (the message suggests a name inside
// it), and so is a name that is only the extension (".pdf"). The name's extension is kept as
// written ("x.PDF"); a name without the type's extension gets it appended.
// The screen preview is the text pages; --pages DIR also writes each page as a PNG image into DIR.
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iostream>

#include "apps/tzorep/AbreEntrada.h"
#include "apps/tzorep/Pantalla.h"
#include "host/Proceso.h"
#include "output/Ejecutor.h"
#include "renderer/TiposArchivo.h"
#include "reports/Marco.h"

namespace paratzorep::cli {

namespace detail {

struct OpcionesPrint {
    std::string destino;  // "", screen, printer, file
    std::string tipo;
    std::string salida;
    std::string impresora;
    std::string bitacora;
    std::string paginas;  // --pages: folder of the preview's PNG pages
};

OpcionesPrint LeeOpcionesPrint(const Argumentos& a) {
    OpcionesPrint o;
    for (const auto& [nombre, valor] : a.opciones) {
        if (nombre == "--to") {
            if (valor != "screen" && valor != "printer" && valor != "file") {
                throw ErrorUso("--to admite screen, printer o file, no '" + valor + "'");
            }
            o.destino = valor;
        } else if (nombre == "--type") {
            o.tipo = valor;
            for (char& c : o.tipo)
                c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
            if (!renderer::TipoPorExtension("x." + o.tipo)) {
                throw ErrorUso("tipo de archivo desconocido: '" + valor +
                               "' (pdf, txt, rtf, doc, xls, csv, xlsx)");
            }
        } else if (nombre == "--out") {
            o.salida = valor;
        } else if (nombre == "--printer") {
            o.impresora = valor;
        } else if (nombre == "--request-log") {
            o.bitacora = valor;
        } else if (nombre == "--pages") {
            if (valor.empty()) throw ErrorUso("--pages necesita una carpeta");
            o.paginas = valor;
        }
    }
    // --type and --out say the report goes to a file.
    if (o.destino.empty() && (!o.tipo.empty() || !o.salida.empty())) o.destino = "file";
    if (!o.paginas.empty() && !o.destino.empty() && o.destino != "screen")
        throw ErrorUso("--pages va con --to screen");
    if (o.destino == "file") {
        if (o.salida.empty()) throw ErrorUso("--to file necesita --out RUTA");
        if (o.salida == "-") {
            if (o.tipo.empty()) o.tipo = "txt";
            if (o.tipo != "txt" && o.tipo != "csv")
                throw ErrorUso(
                    "--out - escribe en la salida estándar solo los tipos de texto "
                    "(txt, csv), no " +
                    o.tipo);
        } else {
            namespace fs = std::filesystem;
            std::error_code ec;
            const fs::path ruta = fs::absolute(o.salida).lexically_normal();
            if (fs::is_directory(ruta, ec)) {
                const std::string ejemplo =
                    (ruta / ((a.entrada ? a.entrada->metodo : std::string("reporte")) + "." +
                             (o.tipo.empty() ? std::string("pdf") : o.tipo)))
                        .string();
                throw ErrorUso("--out nombra la carpeta " + ruta.string() +
                               "; indique el archivo, por ejemplo --out " + ejemplo);
            }
            if (o.tipo.empty()) {
                // The type follows the name's extension when --type is not given.
                auto t = renderer::TipoPorExtension(o.salida);
                if (!t)
                    throw ErrorUso(
                        "--to file necesita --type T (pdf, txt, rtf, doc, xls, csv, xlsx)");
                o.tipo = std::string(t->extension.substr(1));
            }
            std::string nombre = ruta.filename().string();
            for (char& c : nombre)
                c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
            if (nombre.empty() || nombre == "." + o.tipo)
                throw ErrorUso("--out '" + o.salida + "' no tiene nombre de archivo");
        }
    } else if (!o.tipo.empty() || !o.salida.empty()) {
        throw ErrorUso("--type y --out van con --to file, no con --to " + o.destino);
    }
    if (!o.impresora.empty() && o.destino != "printer") {
        throw ErrorUso("--printer va con --to printer");
    }
    return o;
}

// The path as the user wrote it (absolute), when it ends in the type's extension in any letter
// case; "" otherwise (the dialog then appends the extension).
std::string RutaExacta(const OpcionesPrint& o) {
    namespace fs = std::filesystem;
    const std::string ruta = fs::absolute(o.salida).lexically_normal().string();
    const std::string ext = "." + o.tipo;
    if (ruta.size() <= ext.size()) return {};
    std::string cola = ruta.substr(ruta.size() - ext.size());
    for (char& c : cola) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return cola == ext ? ruta : std::string();
}

// The export dialog's answer: folder and name without the type's extension.
RespuestaArchivo Respuesta(const OpcionesPrint& o) {
    namespace fs = std::filesystem;
    fs::path ruta = fs::absolute(o.salida).lexically_normal();
    RespuestaArchivo r;
    r.tipo = o.tipo;
    r.carpeta = ruta.parent_path().string();
    if (r.carpeta.empty() || r.carpeta.back() != '/') r.carpeta += '/';
    r.nombre = ruta.filename().string();
    const std::string ext = "." + o.tipo;
    if (r.nombre.size() > ext.size()) {
        std::string cola = r.nombre.substr(r.nombre.size() - ext.size());
        for (char& c : cola) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        if (cola == ext) r.nombre.resize(r.nombre.size() - ext.size());
    }
    return r;
}

}  // namespace detail

int cmdPrint(const Contexto& ctx, const std::vector<std::string>& args) {
    Argumentos a;
    detail::OpcionesPrint o;
    try {
        a = LeeArgumentos(args,
                          {"--to", "--type", "--out", "--printer", "--request-log", "--pages"}, {});
        o = detail::LeeOpcionesPrint(a);
    } catch (const ErrorUso& e) {
        std::cerr << "tzorep: " << e.what() << "\n"
                  << "Uso: tzorep print ENTRADA [--set C=V]... [--to screen|printer|file] "
                     "[--type T] [--out RUTA] [--printer NOMBRE] [--request-log ARCHIVO] "
                     "[--pages CARPETA]\n"
                     "Más: tzorep help print\n";
        return 2;
    }
    // --out -: the report is written to the process's private folder (removed however the run
    // ends), then to standard output.
    const bool aSalida = o.destino == "file" && o.salida == "-";
    if (aSalida) {
        try {
            o.salida = (host::SubcarpetaPrivada("salida") / ("reporte." + o.tipo)).string();
        } catch (const std::exception& e) {
            std::cerr << "tzorep: " << e.what() << "\n";
            return 1;
        }
    }
    try {
        auto interaccion = std::make_shared<InteraccionCli>();
        if (o.destino == "file") {
            interaccion->archivo = detail::Respuesta(o);
            // A script names the file it wants; its folder is made as `mkdir -p` would.
            std::error_code ec;
            std::filesystem::create_directories(interaccion->archivo->carpeta, ec);
            if (ec) {
                std::cerr << "tzorep: no se pudo crear la carpeta " << interaccion->archivo->carpeta
                          << ": " << ec.message() << "\n";
                return 1;
            }
        }
        auto abierta = AbreEntrada(ctx, a, interaccion);
        auto* forma = dynamic_cast<reports::FormaReporte*>(abierta.forma.get());
        if (!forma) {
            std::cerr << "tzorep: el reporte " << a.entrada->metodo << " ("
                      << abierta.forma->Nombre() << ") no está disponible todavía\n";
            return 1;
        }
        // The form already said why it cannot work (the company database did not open).
        if (interaccion->criticos > 0) return 1;
        if (!FijaDesdeLinea(*forma, a)) return 2;
        auto& opciones = output::opcionesEjecucion();
        opciones.bitacoraSolicitudes = o.bitacora;
        opciones.salidaPantalla = &std::cout;
        // The preview's page images only when asked for, into the folder named.
        opciones.imagenesVistaPrevia = !o.paginas.empty();
        opciones.carpetaVistaPrevia = o.paginas;
        if (o.destino == "screen") forma->Fija("optDispos(0)", "1");
        if (o.destino == "printer") {
            forma->Fija("optDispos(1)", "1");
            forma->Impresora = o.impresora;
        }
        if (o.destino == "file") {
            forma->Fija("optDispos(2)", "1");
            if (forma->Destino() != 2) {
                std::cerr << "tzorep: no se pudo elegir el archivo de salida " << o.salida << "\n";
                return 1;
            }
            // The dialog writes the extension in lower case; the name keeps the user's.
            if (const std::string exacta = detail::RutaExacta(o); !exacta.empty()) {
                forma->ArchivoSalida = exacta;
                forma->Ctl("lblArchivoReporte").Caption = exacta;
            }
        }
        // On a terminal the preview goes through the pager, fitted to its width.
        std::unique_ptr<Pantalla> pantalla;
        if (forma->Destino() == 0) pantalla = Pantalla::Abre();
        if (pantalla) {
            opciones.salidaPantalla = &pantalla->Flujo();
            opciones.anchoPantalla = pantalla->Columnas();
            opciones.separadorPaginas = "\n\n";
        }
        const int antes = interaccion->mensajes;
        const bool hecho = forma->Imprime();
        pantalla.reset();  // the user leaves the pager before any message below
        if (!hecho) {
            // The date guard only beeps: say why here.
            if (interaccion->mensajes == antes && !forma->UltimoError().empty()) {
                std::cerr << forma->Caption << ": " << forma->UltimoError() << "\n";
            }
            return 1;
        }
        // The screen preview already stopped quietly if its reader went away (`| head`); any
        // other failure of standard output made the print fail above.
        if (forma->Destino() == 0) return 0;
        if (forma->Destino() == 2 && aSalida) {
            // The byte-order mark is for spreadsheets opening a file, not for a pipe.
            std::ifstream in(forma->ArchivoSalida, std::ios::binary);
            char marca[3] = {};
            in.read(marca, 3);
            if (in.gcount() == 3 && std::string(marca, 3) == "\xEF\xBB\xBF") {
                if (in.peek() != std::ifstream::traits_type::eof()) std::cout << in.rdbuf();
            } else {
                std::cout.write(marca, in.gcount());
                in.clear();
                if (in.peek() != std::ifstream::traits_type::eof()) std::cout << in.rdbuf();
            }
        } else if (forma->Destino() == 2) {
            std::cout << forma->ArchivoSalida << "\n";
        }
    } catch (const std::exception& e) {
        std::cerr << "tzorep: " << e.what() << "\n";
        return 1;
    }
    return std::cout.flush() ? 0 : 1;
}

}  // namespace paratzorep::cli
