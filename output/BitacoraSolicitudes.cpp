#include "output/BitacoraSolicitudes.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <ctime>
#include <stdexcept>

#include "toolkit/Texto.h"

namespace paratzorep::output {

namespace detail {

std::string TextoJson(const std::string& s) {
    std::string r = "\"";
    for (unsigned char c : s) {
        switch (c) {
            case '"':
                r += "\\\"";
                break;
            case '\\':
                r += "\\\\";
                break;
            case '\n':
                r += "\\n";
                break;
            case '\r':
                r += "\\r";
                break;
            case '\t':
                r += "\\t";
                break;
            default:
                if (c < 0x20) {
                    char b[8];
                    std::snprintf(b, sizeof b, "\\u%04x", c);
                    r += b;
                } else {
                    r += static_cast<char>(c);
                }
        }
    }
    return r + "\"";
}

std::string ListaJson(const std::vector<std::string>& v) {
    std::string r = "[";
    for (std::size_t i = 0; i < v.size(); ++i) r += (i ? "," : "") + TextoJson(v[i]);
    return r + "]";
}

// Index and text of every set entry: [{"i":0,"texto":"..."}, ...].
template <class Lee>
std::string EntradasJson(Lee lee) {
    std::string r = "[";
    bool primera = true;
    for (int i = 0; i < session::SolicitudReporte::kMaxEntradas; ++i) {
        const std::string& t = lee(i);
        if (t.empty()) continue;
        r += std::string(primera ? "" : ",") + "{\"i\":" + std::to_string(i) +
             ",\"texto\":" + TextoJson(t) + "}";
        primera = false;
    }
    return r + "]";
}

std::string Ahora() {
    const auto t = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    std::tm tm{};
    localtime_r(&t, &tm);
    char b[32];
    std::strftime(b, sizeof b, "%Y-%m-%dT%H:%M:%S", &tm);
    return b;
}

}  // namespace detail

std::string OcultaPassword(const std::string& connect) {
    std::string r;
    std::size_t i = 0;
    while (i <= connect.size()) {
        std::size_t fin = connect.find(';', i);
        if (fin == std::string::npos) fin = connect.size();
        std::string par = connect.substr(i, fin - i);
        const auto igual = par.find('=');
        if (igual != std::string::npos) {
            const std::string clave =
                toolkit::detail::Minusculas(toolkit::detail::Recorta(par.substr(0, igual)));
            if (clave == "pwd" || clave == "password") par = par.substr(0, igual + 1) + "***";
        }
        r += par;
        if (fin < connect.size()) r += ';';
        i = fin + 1;
    }
    return r;
}

std::string LineaSolicitud(const session::SolicitudReporte& s, const std::string& archivoLocal,
                           const std::string& connect) {
    std::string r = "{";
    auto campo = [&](const char* nombre, const std::string& valorJson) {
        if (r.size() > 1) r += ",";
        r += std::string("\"") + nombre + "\":" + valorJson;
    };
    campo("fecha", detail::TextoJson(detail::Ahora()));
    campo("plantilla", detail::TextoJson(s.Plantilla));
    campo("destino", std::to_string(s.Destino));
    campo("tipoArchivo", std::to_string(s.TipoArchivo));
    campo("nombreArchivo", detail::TextoJson(s.NombreArchivo));
    campo("copias", std::to_string(s.Copias));
    campo("impresora", detail::TextoJson(s.Impresora));
    campo("tituloVentana", detail::TextoJson(s.TituloVentana));
    campo("formulas",
          detail::EntradasJson([&](int i) -> const std::string& { return s.Formula(i); }));
    campo("camposOrden",
          detail::EntradasJson([&](int i) -> const std::string& { return s.SortField(i); }));
    campo("formulaSeleccion", detail::TextoJson(s.FormulaSeleccion));
    campo("archivosDatos", detail::ListaJson(s.ArchivosDatos));
    campo("archivoLocal", detail::TextoJson(archivoLocal));
    campo("usuarioImpresion", detail::TextoJson(s.UsuarioImpresion));
    campo("connect", detail::TextoJson(OcultaPassword(connect)));
    return r + "}";
}

void AnotaSolicitud(const std::string& archivo, const std::string& linea) {
    const int fd = ::open(archivo.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    if (fd < 0)
        throw std::runtime_error("No se pudo abrir la bitácora de solicitudes " + archivo + ": " +
                                 std::strerror(errno));
    // One write per line, so that lines of concurrent runs never interleave.
    const std::string texto = linea + "\n";
    const ssize_t n = ::write(fd, texto.data(), texto.size());
    const int error = errno;
    ::close(fd);
    if (n != static_cast<ssize_t>(texto.size()))
        throw std::runtime_error("No se pudo escribir en la bitácora de solicitudes " + archivo +
                                 (n < 0 ? std::string(": ") + std::strerror(error) : ""));
}

}  // namespace paratzorep::output
