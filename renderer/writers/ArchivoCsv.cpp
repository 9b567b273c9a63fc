#include "renderer/writers/ArchivoCsv.h"

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>

#include "renderer/writers/ArchivoSalida.h"
#include "renderer/writers/ErrorEscritura.h"
#include "renderer/writers/Unicode.h"

namespace paratzorep::renderer {
namespace detail {

std::string CampoCsv(std::string_view texto) {
    std::string s = Utf8Valido(texto);
    bool comillas = s.find_first_of(",\"\r\n") != std::string::npos ||
                    (!s.empty() && (s.front() == ' ' || s.back() == ' '));
    if (!comillas) return s;
    std::string r = "\"";
    for (char c : s) {
        if (c == '"') r += '"';
        r += c;
    }
    return r + "\"";
}

int DecimalesDeFormato(std::string_view formato) {
    if (formato.empty() || formato == "General") return -1;
    auto punto = formato.find('.');
    if (punto == std::string_view::npos) {
        // A format without decimals ("#,##0", "0") shows whole numbers.
        return formato.find_first_of("0#") != std::string_view::npos ? 0 : -1;
    }
    int n = 0;
    for (std::size_t i = punto + 1; i < formato.size() && (formato[i] == '0' || formato[i] == '#');
         ++i)
        ++n;
    return n;
}

std::string NumeroCsv(double valor, int decimales) {
    if (!std::isfinite(valor)) return {};
    char buf[64];
    std::to_chars_result r;
    if (decimales >= 0)
        r = std::to_chars(buf, buf + sizeof buf, valor, std::chars_format::fixed,
                          std::min(decimales, 15));
    else
        r = std::to_chars(buf, buf + sizeof buf, valor);
    std::string s(buf, r.ptr);
    if (s == "-0" || s.find_first_not_of("-0.") == std::string::npos) {
        if (!s.empty() && s[0] == '-') s.erase(0, 1);  // no "-0.00"
    }
    return s;
}

std::string FechaCsv(double serie) {
    if (!std::isfinite(serie)) return {};
    // Civil date from days since 1970-01-01 (serial 25569).
    long long segundos = std::llround(serie * 86400.0);
    long long dias = segundos >= 0 ? segundos / 86400 : -((-segundos + 86399) / 86400);
    long long resto = segundos - dias * 86400;
    long long z = dias - 25569 + 719468;
    const long long era = (z >= 0 ? z : z - 146096) / 146097;
    const unsigned doe = static_cast<unsigned>(z - era * 146097);
    const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const unsigned mp = (5 * doy + 2) / 153;
    const unsigned d = doy - (153 * mp + 2) / 5 + 1;
    const unsigned m = mp < 10 ? mp + 3 : mp - 9;
    const long long y = static_cast<long long>(yoe) + era * 400 + (m <= 2);
    char buf[64];
    if (resto == 0)
        std::snprintf(buf, sizeof buf, "%04lld-%02u-%02u", y, m, d);
    else
        std::snprintf(buf, sizeof buf, "%04lld-%02u-%02u %02lld:%02lld:%02lld", y, m, d,
                      resto / 3600, resto / 60 % 60, resto % 60);
    return buf;
}

std::string HoraCsv(double fraccion) {
    if (!std::isfinite(fraccion)) return {};
    long long segundos = std::llround(fraccion * 86400.0);
    if (segundos < 0) segundos = 0;
    char buf[32];
    std::snprintf(buf, sizeof buf, "%02lld:%02lld:%02lld", segundos / 3600, segundos / 60 % 60,
                  segundos % 60);
    return buf;
}

}  // namespace detail

ArchivoCsv::ArchivoCsv(std::filesystem::path archivo)
    : archivo_(std::make_unique<detail::ArchivoSalida>(std::move(archivo))) {
    archivo_->flujo() << "\xEF\xBB\xBF";
    decimales_.push_back(-1);
}

ArchivoCsv::~ArchivoCsv() = default;

int ArchivoCsv::Estilo(const EstiloCelda& estilo) {
    decimales_.push_back(detail::DecimalesDeFormato(estilo.formato));
    return static_cast<int>(decimales_.size() - 1);
}

void ArchivoCsv::Columnas(std::vector<ColumnaTabla> columnas) {
    bool hayTitulos = false;
    for (const auto& c : columnas) hayTitulos = hayTitulos || !c.titulo.empty();
    if (!hayTitulos) return;
    std::vector<CeldaTabla> titulos;
    for (auto& c : columnas) titulos.push_back(CeldaTabla::Texto(std::move(c.titulo)));
    Fila(titulos);
}

void ArchivoCsv::Fila(std::span<const CeldaTabla> celdas) {
    if (!archivo_) throw ErrorEscritura("El archivo CSV ya está cerrado");
    linea_.clear();
    for (std::size_t i = 0; i < celdas.size(); ++i) {
        if (i > 0) linea_ += ',';
        const CeldaTabla& c = celdas[i];
        int decimales = c.estilo >= 0 && static_cast<std::size_t>(c.estilo) < decimales_.size()
                            ? decimales_[c.estilo]
                            : -1;
        switch (c.tipo) {
            case CeldaTabla::Tipo::Vacia:
                break;
            case CeldaTabla::Tipo::Numero:
                linea_ += detail::NumeroCsv(c.numero, decimales);
                break;
            case CeldaTabla::Tipo::Fecha:
                linea_ += detail::FechaCsv(c.numero);
                break;
            case CeldaTabla::Tipo::Hora:
                linea_ += detail::HoraCsv(c.numero);
                break;
            case CeldaTabla::Tipo::Texto:
                linea_ += detail::CampoCsv(c.texto);
                break;
        }
    }
    linea_ += "\r\n";
    errno = 0;
    archivo_->flujo() << linea_;
    if (!archivo_->flujo()) archivo_->FallaEscritura();
}

void ArchivoCsv::Cerrar() {
    if (!archivo_) return;
    archivo_->Confirmar();
    archivo_.reset();
}

}  // namespace paratzorep::renderer
