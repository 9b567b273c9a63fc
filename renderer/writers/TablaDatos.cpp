#include "renderer/writers/TablaDatos.h"

#include <algorithm>

#include "renderer/writers/ArchivoCsv.h"
#include "renderer/writers/LibroXls.h"
#include "renderer/writers/LibroXlsx.h"

namespace paratzorep::renderer {
namespace detail {
namespace {

// A run of literal text inside a spreadsheet format: quoted; a quote itself escaped.
std::string Literal(std::string_view texto) {
    std::string r;
    bool abierto = false;
    for (char c : texto) {
        if (c == '"') {
            if (abierto) r += '"';
            abierto = false;
            r += "\\\"";
            continue;
        }
        if (!abierto) r += '"';
        abierto = true;
        r += c;
    }
    if (abierto) r += '"';
    return r;
}

double SerieDe(const Fecha& f) {
    static const std::int64_t base = Fecha{1899, 12, 30}.diaJuliano();
    return static_cast<double>(f.diaJuliano() - base);
}

double FraccionDe(const Hora& h) {
    return (h.hora * 3600 + h.minuto * 60 + h.segundo) / 86400.0;
}

}  // namespace

std::string FormatoExcel(std::string_view formato) {
    const std::size_t ini = formato.find_first_of("#0");
    if (ini == std::string_view::npos) return formato.empty() ? "" : Literal(formato);
    const std::size_t fin = formato.find_last_of("#0");
    std::string r = Literal(formato.substr(0, ini));
    for (char c : formato.substr(ini, fin - ini + 1)) {
        if (c == '#' || c == '0' || c == ',' || c == '.')
            r += c;
        else
            r += Literal(std::string_view(&c, 1));
    }
    return r + Literal(formato.substr(fin + 1));
}

std::size_t Caracteres(std::string_view utf8) {
    return static_cast<std::size_t>(std::count_if(utf8.begin(), utf8.end(), [](char c) {
        return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
    }));
}

}  // namespace detail

TablaDatos::TablaDatos(std::unique_ptr<SalidaTabular> salida,
                       const std::vector<ColumnaDatos>& columnas, const ImpresionHoja& impresion)
    : salida_(std::move(salida)) {
    salida_->Impresion(impresion);
    std::vector<ColumnaTabla> definicion;
    for (const auto& c : columnas) {
        Columna col;
        col.formato = c.formato.empty() ? "#,##0.00" : c.formato;
        col.numero = salida_->Estilo({detail::FormatoExcel(col.formato)});
        // Dates and times centred, apart from the texts and numbers beside them.
        col.fecha = salida_->Estilo({"dd/mm/yyyy", false, AlineacionCelda::Centro});
        col.fechaHora = salida_->Estilo({"dd/mm/yyyy hh:mm:ss", false, AlineacionCelda::Centro});
        col.hora = salida_->Estilo({"hh:mm:ss", false, AlineacionCelda::Centro});
        columnas_.push_back(std::move(col));
        // Bold titles with the filter's button beside them.
        const double titulo = static_cast<double>(detail::Caracteres(c.titulo)) * 1.1 + 3;
        anchosTitulo_.push_back(titulo);
        definicion.push_back({c.titulo, std::clamp(titulo, 6.0, 60.0)});
    }
    salida_->Columnas(std::move(definicion));
    fila_.resize(columnas_.size());
}

TablaDatos::~TablaDatos() = default;

void TablaDatos::Registro(const std::vector<Valor>& valores) {
    const std::size_t n = std::min(valores.size(), columnas_.size());
    for (std::size_t i = 0; i < n; ++i) {
        const Valor& v = valores[i];
        Columna& c = columnas_[i];
        CeldaTabla& celda = fila_[i];
        double ancho = 0;
        switch (v.tipo()) {
            case Valor::Tipo::Nulo:
                celda = {};
                break;
            case Valor::Tipo::Numero:
                celda = CeldaTabla::Numero(v.comoNumero(), c.numero);
                ancho = static_cast<double>(formatearNumero(v.comoNumero(), c.formato).size());
                break;
            case Valor::Tipo::Fecha:
                if (v.esVacio()) {
                    celda = {};
                    break;
                }
                celda = CeldaTabla::Fecha(detail::SerieDe(v.comoFecha()), c.fecha);
                ancho = 10;
                break;
            case Valor::Tipo::FechaHora: {
                if (v.esVacio()) {
                    celda = {};
                    break;
                }
                const FechaHora f = v.comoFechaHora();
                celda = CeldaTabla::Fecha(detail::SerieDe(f.fecha) + detail::FraccionDe(f.hora),
                                          c.fechaHora);
                ancho = 19;
                break;
            }
            case Valor::Tipo::Hora:
                celda = CeldaTabla::Hora(detail::FraccionDe(v.comoHora()), c.hora);
                ancho = 8;
                break;
            case Valor::Tipo::Texto:
                celda = CeldaTabla::Texto(v.comoTexto());
                ancho = static_cast<double>(detail::Caracteres(v.comoTexto()));
                break;
            case Valor::Tipo::Booleano:
                celda = CeldaTabla::Texto(v.aTexto());
                ancho = 9;
                break;
        }
        c.ancho = std::max(c.ancho, ancho);
    }
    for (std::size_t i = n; i < fila_.size(); ++i) fila_[i] = {};
    salida_->Fila(fila_);
}

void TablaDatos::Termina() {
    std::vector<double> anchos;
    for (std::size_t i = 0; i < columnas_.size(); ++i)
        anchos.push_back(
            std::clamp(std::max(anchosTitulo_[i], columnas_[i].ancho + 1.5), 6.0, 60.0));
    salida_->Anchos(anchos);
    salida_->Cerrar();
}

std::unique_ptr<SalidaTabular> CreaTablaCsv(const std::string& archivo, const std::string&) {
    return std::make_unique<ArchivoCsv>(archivo);
}

std::unique_ptr<SalidaTabular> CreaTablaXls(const std::string& archivo, const std::string& titulo) {
    return std::make_unique<LibroXls>(archivo, titulo.empty() ? "Reporte" : titulo);
}

std::unique_ptr<SalidaTabular> CreaTablaXlsx(const std::string& archivo,
                                             const std::string& titulo) {
    return std::make_unique<LibroXlsx>(archivo, titulo.empty() ? "Reporte" : titulo);
}

}  // namespace paratzorep::renderer
