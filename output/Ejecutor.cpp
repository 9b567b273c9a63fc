#include "output/Ejecutor.h"

#include <algorithm>
#include <cctype>
#include <exception>
#include <filesystem>
#include <vector>

#include "data/AbrirBaseDeDatos.h"
#include "data/MensajesCliente.h"
#include "host/DatosConecte.h"
#include "host/Interaccion.h"
#include "output/BitacoraSolicitudes.h"
#include "output/DatosMotor.h"
#include "output/Plantillas.h"
#include "renderer/TiposArchivo.h"
#include "renderer/data/Consulta.h"
#include "renderer/impresion/Impresora.h"
#include "session/Sesion.h"
#include "session/Solicitud.h"
#include "session/SuModulo.h"
#include "toolkit/Auxiliares.h"
#include "toolkit/DeArchivos.h"
#include "toolkit/MyODBCs.h"
#include "toolkit/Texto.h"

namespace paratzorep::output {

namespace detail {

renderer::ResultadoMotor& Ultimo() {
    static renderer::ResultadoMotor r;
    return r;
}

bool ContieneSinCaso(const std::string& texto, const std::string& buscado) {
    return toolkit::detail::Minusculas(texto).find(buscado) != std::string::npos;
}

std::optional<PlantillaResuelta> ResuelvePlantilla(const std::string& texto,
                                                   const std::string& rutaRpts) {
    std::string t = toolkit::detail::Recorta(texto);
    if (t.empty()) return std::nullopt;
    if (!ContieneSinCaso(t, ".rpt")) t += ".rpt";
    toolkit::DeArchivos da;
    PlantillaResuelta r;
    r.nombre = da.NombreDeArchivo(t);
    if (r.nombre == t) {
        // A bare name: under the reports folder, and it must be a ".rpt" file.
        if (r.nombre.size() < 4 ||
            toolkit::detail::Minusculas(r.nombre.substr(r.nombre.size() - 4)) != ".rpt")
            return std::nullopt;
        r.carpeta = rutaRpts;
    } else {
        r.carpeta = da.CarpetaDeArchivo(t);
    }
    if (r.nombre.empty()) return std::nullopt;
    if (!r.carpeta.empty() && r.carpeta.back() != '/' && r.carpeta.back() != '\\') r.carpeta += '/';
    r.ruta = toolkit::RutaNativa(r.carpeta) + r.nombre;
    return r;
}

ServidorReporte ServidorDeSesion() {
    const auto& s = session::sesion();
    if (!s.BaseDD) throw ErrorReporte("No hay objeto de acceso a datos para generar el reporte");
    ServidorReporte r;
    if (s.DatosConecte && !s.DatosConecte->xServidor.empty()) {
        r.servidor = s.DatosConecte->xServidor;
        r.base = s.DatosConecte->xBaseDD;
        r.usuario = s.DatosConecte->xUsuario;
        r.password = s.DatosConecte->xPassWord;
        r.puerto = s.DatosConecte->xPuerto;
    } else {
        r.servidor = s.BaseDD->cRuta;
        r.base = s.BaseDD->cMiBase;
        r.usuario = s.BaseDD->cUsuario;
        r.password = s.BaseDD->cPassword;
        r.puerto = s.BaseDD->cPuerto;
    }
    return r;
}

std::string CadenaConnect(const ServidorReporte& s) {
    return std::string("DSN=") + toolkit::kFuenteODBC + ";SERVER=" + s.servidor + ";DB=" + s.base +
           ";UID=" + s.usuario + ";PWD=" + s.password;
}

std::string NombrePdf(const std::string& carpeta, const std::string& reporte, std::time_t cuando) {
    std::tm tm{};
    localtime_r(&cuando, &tm);
    char sello[32];
    std::strftime(sello, sizeof sello, "%Y%m%d-%H%M%S", &tm);
    std::string c = toolkit::RutaNativa(carpeta);
    if (!c.empty() && c.back() != '/') c += '/';
    return c + reporte + sello + ".pdf";
}

std::string ConMiles(std::int64_t n) {
    std::string digitos = std::to_string(n < 0 ? -n : n);
    std::string r;
    for (std::size_t i = 0; i < digitos.size(); ++i) {
        if (i > 0 && (digitos.size() - i) % 3 == 0) r += ',';
        r += digitos[i];
    }
    return n < 0 ? "-" + r : r;
}

std::pair<int, std::string> TextoAvance(const renderer::AvanceMotor& a) {
    // A rate over less than a fifth of a second says little.
    const auto ritmo = [&](double cuantos, const char* que) {
        if (a.segundos < 0.2) return std::string();
        return " (" + ConMiles(static_cast<std::int64_t>(cuantos / a.segundos)) + " " + que + "/s)";
    };
    if (a.fase == renderer::AvanceMotor::Fase::Leyendo) {
        if (a.filas == 0 && a.paginas == 0) return {-1, "Leyendo datos..."};
        return {-1, "Leyendo datos: " + ConMiles(a.filas) +
                        (a.filas == 1 ? " fila, " : " filas, ") + ConMiles(a.paginas) +
                        (a.paginas == 1 ? " página" : " páginas") +
                        ritmo(static_cast<double>(a.filas), "filas")};
    }
    const int total = std::max(a.paginas, 1);
    return {static_cast<int>(100LL * a.escritas / total),
            "Escribiendo: página " + ConMiles(a.escritas) + " de " + ConMiles(a.paginas) +
                ritmo(a.escritas, "páginas")};
}

// A message without the password, whatever the layer below put in it.
std::string SinPassword(std::string texto, const std::string& password) {
    if (password.size() >= 3) texto = toolkit::detail::Reemplaza(texto, password, "***");
    return texto;
}

void Ejecuta(const std::string& archivoLocal) {
    auto& s = session::sesion();
    const session::SolicitudReporte& sol = session::solicitud();
    Ultimo() = {};

    auto da = session::ObjetoAyuda<toolkit::DeArchivos>("DeArchivos");
    auto bases = session::ObjetoAyuda<toolkit::BasesDD>("BasesDD");
    auto odbc = session::ObjetoAyuda<toolkit::MyODBCs>("MyODBCs");
    if (!da || !bases || !odbc)
        throw ErrorReporte("No se pudieron crear los objetos de ayuda del reporte (kvtz5)");

    // One log line per request, with the server the report reads (after any fallback from an
    // unreachable remote server), its password masked by construction.
    const auto anota = [&] {
        const auto& bitacora = opcionesEjecucion().bitacoraSolicitudes;
        if (bitacora.empty()) return;
        ServidorReporte oculto = ServidorDeSesion();
        oculto.password = "***";
        AnotaSolicitud(bitacora, LineaSolicitud(sol, archivoLocal, CadenaConnect(oculto)));
    };

    auto plantilla = ResuelvePlantilla(sol.Plantilla, s.RutaRpts);
    if (!plantilla) {
        anota();
        return;  // not a ".rpt" template: nothing is rendered
    }

    // The store lives in the company database; opening it settles which server is in use.
    host::Conexion cn;
    const bool abierta = data::AbrirBaseDeDatos(cn, s.BaseDD->cMiBase);
    anota();
    if (!abierta)
        throw ErrorReporte("No se pudo abrir la base de datos " + s.BaseDD->cMiBase +
                           " para leer la plantilla " + plantilla->nombre + ": " +
                           s.BaseDD->UltimoError());
    const ServidorReporte servidor = ServidorDeSesion();
    const std::string connect = CadenaConnect(servidor);
    struct Cierra {
        host::Conexion& cn;
        ~Cierra() {
            if (auto& b = session::sesion().BaseDD) b->CierraBdD(cn);
        }
    } cierra{cn};
    if (RecordarFormato())
        plantilla->nombre = EligeFormato(plantilla->nombre, cn, plantilla->nombre);
    std::string carpeta = plantilla->carpeta;
    plantilla->ruta = ExtraePlantilla(cn, plantilla->nombre, carpeta);

    renderer::Motor motor;
    motor.ReportFileName(plantilla->ruta);
    std::string mapeos;
    for (const auto& m : sol.ArchivosDatos) mapeos += (mapeos.empty() ? "" : ";") + m;
    const auto tablasTrabajo = renderer::data::leerArchivosDatos(mapeos);
    const std::string base = (s.DatosConecte && !s.DatosConecte->xServidor.empty())
                                 ? s.DatosConecte->xBaseDD
                                 : s.BaseDD->cMiBase;
    for (int i = 0; i < motor.RetrieveDataFiles(); ++i) {
        const std::string archivo = motor.DataFiles(i);
        if (EsArchivoLocal(archivo))
            motor.DataFiles(i, archivoLocal);
        else
            motor.DataFiles(i, renderer::data::resolverTabla(archivo, tablasTrabajo, base));
    }
    for (int i = 0; i < session::SolicitudReporte::kMaxEntradas; ++i)
        if (!sol.Formula(i).empty()) motor.Formulas(i, sol.Formula(i));
    motor.WindowTitle(sol.TituloVentana);
    motor.Destination(sol.Destino);
    motor.PrintFileType(sol.TipoArchivo);
    motor.PrintFileName(sol.NombreArchivo);
    for (int i = 0; i < session::SolicitudReporte::kMaxEntradas; ++i)
        if (!sol.SortField(i).empty()) motor.SortFields(i, sol.SortField(i));
    motor.SelectionFormula(sol.FormulaSeleccion);
    motor.CopiesToPrinter(sol.Copias);
    motor.PrinterName(sol.Impresora);

    // The data source is written before the driver manager first looks it up.
    odbc->GuardaEnODBCtzp(servidor.servidor, servidor.base, servidor.usuario, servidor.password,
                          servidor.puerto);
    motor.Connect(connect);

    // The PDF printer takes part only when the report goes to the printer.
    if (sol.Destino == 1 &&
        toolkit::detail::Minusculas(toolkit::detail::Recorta(sol.Impresora)) == kImpresoraPdf) {
        if (s.RutaPDFs.empty())
            throw ErrorReporte("No se indicó la carpeta de los archivos PDF (RutaPDFs)");
        if (!da->CreaRuta(s.RutaPDFs))
            throw ErrorReporte("No se pudo crear la carpeta de los PDF " + s.RutaPDFs);
        std::string reporte = plantilla->nombre;
        reporte.resize(reporte.size() - std::min<std::size_t>(4, reporte.size()));
        motor.Destination(2);
        motor.PrintFileType(renderer::InfoDe(renderer::TipoArchivo::Pdf).codigo);
        motor.PrintFileName(NombrePdf(s.RutaPDFs, reporte, std::time(nullptr)));
    }

    motor.Parametro("UsuarioImpresion",
                    sol.UsuarioImpresion.empty() ? s.UserUsuario : sol.UsuarioImpresion);
    motor.Datos(AbreDatosReporte);
    motor.Avance([](const renderer::AvanceMotor& a) {
        const auto [porcentaje, texto] = TextoAvance(a);
        host::interaccion().Progreso(porcentaje, texto);
    });
    // The bar goes away when the run ends, however it ends.
    struct OcultaAvance {
        ~OcultaAvance() { host::interaccion().Progreso(0, ""); }
    } ocultaAvance;
    motor.SalidaPantalla(opcionesEjecucion().salidaPantalla);
    motor.AnchoPantalla(opcionesEjecucion().anchoPantalla);
    motor.SeparadorPantalla(opcionesEjecucion().separadorPaginas);
    motor.CarpetaVistaPrevia(opcionesEjecucion().carpetaVistaPrevia);
    motor.ImagenesVistaPrevia(opcionesEjecucion().imagenesVistaPrevia);
    motor.Action(1);
    Ultimo() = motor.Resultado();
}

}  // namespace detail

namespace detail {

std::string GuardaSinImprimir(const std::filesystem::path& pdf) {
    namespace fs = std::filesystem;
    std::error_code ec;
    if (pdf.empty() || !fs::is_regular_file(pdf, ec)) return {};
    const auto& s = session::sesion();
    std::string reporte = fs::path(session::solicitud().Plantilla).stem().string();
    // The engine's copy lives in the process's private folder, which goes when it ends: only a
    // copy that reached the PDF folder is worth naming.
    if (s.RutaPDFs.empty() || reporte.empty()) return {};
    fs::create_directories(s.RutaPDFs, ec);
    const fs::path destino = NombrePdf(s.RutaPDFs, reporte, std::time(nullptr));
    fs::rename(pdf, destino, ec);
    if (ec) {  // another file system: copy, then remove the temporary one
        ec.clear();
        fs::copy_file(pdf, destino, fs::copy_options::overwrite_existing, ec);
        if (ec) return {};
        fs::remove(pdf, ec);
    }
    return destino.string();
}

}  // namespace detail

OpcionesEjecucion& opcionesEjecucion() {
    static OpcionesEjecucion o;
    return o;
}

const renderer::ResultadoMotor& UltimoResultado() {
    return detail::Ultimo();
}

void EjecutaReporte(const std::string& archivoLocal) {
    // Both servers' passwords are kept out of every message, whichever one the run used.
    std::vector<std::string> passwords;
    const auto& s = session::sesion();
    if (s.BaseDD) passwords.push_back(s.BaseDD->cPassword);
    if (s.DatosConecte) passwords.push_back(s.DatosConecte->xPassWord);
    const auto limpio = [&](std::string texto) {
        for (const auto& p : passwords) texto = detail::SinPassword(std::move(texto), p);
        return texto;
    };
    try {
        detail::Ejecuta(archivoLocal);
    } catch (const ErrorReporte& e) {
        throw ErrorReporte(limpio(e.what()));
    } catch (const renderer::ErrorImpresion& e) {
        // The report was made; only printing failed. Its PDF is kept where the user keeps
        // PDFs (when that folder is not available, it goes with the temporary files).
        std::string guardado = detail::GuardaSinImprimir(e.archivo());
        throw ErrorReporte(
            limpio("El reporte se generó pero no se pudo imprimir: " + e.causa() +
                   (guardado.empty() ? std::string() : " El PDF quedó guardado en: " + guardado)));
    } catch (const std::exception& e) {
        // The ODBC driver's own connection errors come in English: said again in Spanish.
        std::string texto = e.what();
        if (const auto* d = dynamic_cast<const renderer::data::ErrorDatos*>(&e);
            d && d->codigo() >= 2000 && d->codigo() <= 2999 && d->detalle().rfind("[", 0) == 0)
            texto = renderer::data::ErrorDatos(
                        d->accion(),
                        data::MensajeMaria(static_cast<unsigned>(d->codigo()), d->detalle()),
                        d->sql(), d->estado(), d->codigo())
                        .what();
        // The original stays nested for hosts that want its context (SQL, server code).
        std::throw_with_nested(ErrorReporte(limpio(
            "No se pudo generar el reporte '" + session::solicitud().Plantilla + "'. " + texto)));
    }
}

void EjecutaFormato(const std::string& plantilla, const std::string& tituloVentana,
                    const std::string& archivoLocal) {
    PreparaFormato(plantilla, tituloVentana);
    EjecutaReporte(archivoLocal);
}

void PreparaFormato(const std::string& plantilla, const std::string& tituloVentana) {
    auto& sol = session::solicitud();
    const auto& s = session::sesion();
    std::string carpeta = s.RutaRpts;
    if (!carpeta.empty() && carpeta.back() != '/' && carpeta.back() != '\\') carpeta += '/';
    sol.Plantilla = carpeta + toolkit::DeArchivos().NombreDeArchivo(plantilla);
    sol.Destino = s.VistaPrevia ? 0 : 1;
    sol.TituloVentana = tituloVentana;
}

}  // namespace paratzorep::output
