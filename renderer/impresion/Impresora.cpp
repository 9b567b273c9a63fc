#include "renderer/impresion/Impresora.h"

#include <cups/cups.h>
#include <sys/socket.h>

#include <algorithm>
#include <memory>
#include <system_error>

namespace paratzorep::renderer {
namespace detail {
namespace {

constexpr int kEsperaConexionMs = 5000;

// Points libcups at `servidor` for this thread while alive, then back to its default.
class ServidorCups {
  public:
    explicit ServidorCups(const std::string& servidor) : propio_(!servidor.empty()) {
        if (propio_) cupsSetServer(servidor.c_str());
    }
    ~ServidorCups() {
        if (propio_) cupsSetServer(nullptr);
    }
    ServidorCups(const ServidorCups&) = delete;
    ServidorCups& operator=(const ServidorCups&) = delete;

    std::string Nombre() const {
        std::string s = cupsServer();
        if (!s.empty() && s.front() != '/') s += ":" + std::to_string(ippPort());
        return s;
    }

  private:
    bool propio_;
};

struct CerrarHttp {
    void operator()(http_t* h) const { httpClose(h); }
};
using Conexion = std::unique_ptr<http_t, CerrarHttp>;

Conexion Conectar() {
    return Conexion(httpConnect2(cupsServer(), ippPort(), nullptr, AF_UNSPEC, cupsEncryption(), 1,
                                 kEsperaConexionMs, nullptr));
}

struct LiberarDestino {
    void operator()(cups_dest_t* d) const { cupsFreeDests(1, d); }
};

std::string Guardado(const std::filesystem::path& archivo) {
    return " El reporte no se imprimió y quedó guardado en: " + archivo.string();
}

}  // namespace
}  // namespace detail

std::string ErrorImpresion::causa() const {
    std::string texto = what();
    const std::string guardado = detail::Guardado(archivo_);
    if (texto.size() >= guardado.size() &&
        texto.compare(texto.size() - guardado.size(), guardado.size(), guardado) == 0)
        texto.resize(texto.size() - guardado.size());
    return texto;
}

int Imprimir(const TrabajoImpresion& trabajo) {
    using Motivo = ErrorImpresion::Motivo;
    std::error_code ec;
    if (trabajo.archivo.empty() || !std::filesystem::is_regular_file(trabajo.archivo, ec))
        throw ErrorImpresion(
            Motivo::ArchivoFaltante,
            "No se encontró el archivo que se iba a imprimir: " + trabajo.archivo.string(),
            trabajo.archivo);

    detail::ServidorCups servidor(trabajo.servidor);
    detail::Conexion http = detail::Conectar();
    if (!http)
        throw ErrorImpresion(Motivo::SinServidor,
                             "No se pudo conectar con el servidor de impresión (" +
                                 servidor.Nombre() + ")." + detail::Guardado(trabajo.archivo),
                             trabajo.archivo);

    std::unique_ptr<cups_dest_t, detail::LiberarDestino> destino(cupsGetNamedDest(
        http.get(), trabajo.impresora.empty() ? nullptr : trabajo.impresora.c_str(), nullptr));
    if (!destino) {
        if (cupsLastError() == IPP_STATUS_ERROR_SERVICE_UNAVAILABLE)
            throw ErrorImpresion(Motivo::SinServidor,
                                 "El servidor de impresión (" + servidor.Nombre() +
                                     ") no responde." + detail::Guardado(trabajo.archivo),
                                 trabajo.archivo);
        if (trabajo.impresora.empty())
            throw ErrorImpresion(
                Motivo::SinPredeterminada,
                "No hay una impresora predeterminada." + detail::Guardado(trabajo.archivo),
                trabajo.archivo);
        throw ErrorImpresion(Motivo::ImpresoraDesconocida,
                             "La impresora \"" + trabajo.impresora +
                                 "\" no existe en el servidor de impresión." +
                                 detail::Guardado(trabajo.archivo),
                             trabajo.archivo);
    }

    // The queue's own options (those of an instance included), then the copies.
    int n = 0;
    cups_option_t* opciones = nullptr;
    for (int i = 0; i < destino->num_options; ++i)
        n = cupsAddOption(destino->options[i].name, destino->options[i].value, n, &opciones);
    const int copias = std::clamp(trabajo.copias, 1, 999);
    n = cupsAddOption("copies", std::to_string(copias).c_str(), n, &opciones);
    const std::string titulo =
        trabajo.titulo.empty() ? trabajo.archivo.filename().string() : trabajo.titulo;
    const int id = cupsPrintFile2(http.get(), destino->name, trabajo.archivo.c_str(),
                                  titulo.c_str(), n, opciones);
    cupsFreeOptions(n, opciones);
    if (id == 0)
        throw ErrorImpresion(Motivo::Rechazado,
                             "La impresora \"" + std::string(destino->name) +
                                 "\" no aceptó el trabajo: " + cupsLastErrorString() + "." +
                                 detail::Guardado(trabajo.archivo),
                             trabajo.archivo);
    if (trabajo.borrarAlEnviar) std::filesystem::remove(trabajo.archivo, ec);
    return id;
}

void ImprimirEnCups(const std::string& pdf, const std::string& impresora, int copias,
                    const std::string& titulo) {
    TrabajoImpresion trabajo;
    trabajo.archivo = pdf;
    trabajo.impresora = impresora;
    trabajo.copias = copias;
    trabajo.titulo = titulo;
    Imprimir(trabajo);
}

std::optional<std::vector<DestinoImpresion>> DestinosImpresion(const std::string& servidor) {
    detail::ServidorCups s(servidor);
    detail::Conexion http = detail::Conectar();
    if (!http) return std::nullopt;
    std::vector<DestinoImpresion> r;
    cups_dest_t* destinos = nullptr;
    int n = cupsGetDests2(http.get(), &destinos);
    for (int i = 0; i < n; ++i) {
        const cups_dest_t& d = destinos[i];
        DestinoImpresion x;
        x.nombre = d.name;
        if (d.instance) x.nombre += std::string("/") + d.instance;
        x.predeterminada = d.is_default != 0;
        if (const char* info = cupsGetOption("printer-info", d.num_options, d.options))
            x.descripcion = info;
        if (x.predeterminada)
            r.insert(r.begin(), std::move(x));
        else
            r.push_back(std::move(x));
    }
    cupsFreeDests(n, destinos);
    return r;
}

std::vector<std::string> Impresoras(const std::string& servidor) {
    std::vector<std::string> nombres;
    if (auto destinos = DestinosImpresion(servidor))
        for (const auto& d : *destinos) nombres.push_back(d.nombre);
    return nombres;
}

}  // namespace paratzorep::renderer
