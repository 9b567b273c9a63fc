#include "renderer/Valor.h"

#include <array>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <memory>
#include <utility>

namespace paratzorep::renderer {

namespace detail {

// Decodes one UTF-8 character at s[i]; returns its length, 0 when the bytes
// there are not a complete, well-formed character.
int decodificar(std::string_view s, std::size_t i, char32_t& c) {
    const auto b0 = static_cast<unsigned char>(s[i]);
    if (b0 < 0x80) {
        c = b0;
        return 1;
    }
    int n;
    char32_t minimo;
    if (b0 >= 0xC2 && b0 <= 0xDF) {
        n = 2;
        c = b0 & 0x1F;
        minimo = 0x80;
    } else if (b0 >= 0xE0 && b0 <= 0xEF) {
        n = 3;
        c = b0 & 0x0F;
        minimo = 0x800;
    } else if (b0 >= 0xF0 && b0 <= 0xF4) {
        n = 4;
        c = b0 & 0x07;
        minimo = 0x10000;
    } else {
        return 0;
    }
    if (i + n > s.size()) return 0;
    for (int k = 1; k < n; ++k) {
        const auto b = static_cast<unsigned char>(s[i + k]);
        if ((b & 0xC0) != 0x80) return 0;
        c = (c << 6) | (b & 0x3F);
    }
    if (c < minimo || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) return 0;
    return n;
}

namespace {

struct ParPeso {
    std::uint16_t cp;
    std::uint16_t peso;
};

constexpr ParPeso kPesos[] = {
#include "renderer/formula/ColacionGeneral.inc"
};

const std::array<std::uint16_t, 0x10000>& tablaPesos() {
    static const auto tabla = [] {
        auto t = std::make_unique<std::array<std::uint16_t, 0x10000>>();
        for (std::size_t i = 0; i < t->size(); ++i) (*t)[i] = static_cast<std::uint16_t>(i);
        for (const auto& p : kPesos) (*t)[p.cp] = p.peso;
        return t;
    }();
    return *tabla;
}

std::string_view sinEspaciosFinales(std::string_view s) {
    while (!s.empty() && s.back() == ' ') s.remove_suffix(1);
    return s;
}

std::strong_ordering compararBytes(std::string_view a, std::string_view b) {
    const int r = a.compare(b);
    return r < 0 ? std::strong_ordering::less
                 : (r > 0 ? std::strong_ordering::greater : std::strong_ordering::equal);
}

constexpr const char* kMesesCortos[] = {"ene", "feb", "mar", "abr", "may", "jun",
                                        "jul", "ago", "sep", "oct", "nov", "dic"};
constexpr const char* kMesesLargos[] = {"enero",      "febrero", "marzo",     "abril",
                                        "mayo",       "junio",   "julio",     "agosto",
                                        "septiembre", "octubre", "noviembre", "diciembre"};

bool leerEntero(std::string_view s, std::size_t pos, std::size_t n, int& v) {
    if (pos + n > s.size()) return false;
    v = 0;
    for (std::size_t i = 0; i < n; ++i) {
        const char ch = s[pos + i];
        if (ch < '0' || ch > '9') return false;
        v = v * 10 + (ch - '0');
    }
    return true;
}

std::string dosDigitos(int v) {
    char buf[16];
    std::snprintf(buf, sizeof buf, "%02d", v);
    return buf;
}

}  // namespace
}  // namespace detail

std::uint16_t pesoColacion(char32_t c) {
    if (c > 0xFFFF) return 0xFFFD;
    return detail::tablaPesos()[c];
}

// ---- Fechas -------------------------------------------------------------------

namespace {
bool bisiesto(int a) {
    return (a % 4 == 0 && a % 100 != 0) || a % 400 == 0;
}
int diasDelMes(int a, int m) {
    static constexpr int kDias[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return m == 2 && bisiesto(a) ? 29 : kDias[m - 1];
}
}  // namespace

bool Fecha::valida() const {
    return anio >= 1 && anio <= 9999 && mes >= 1 && mes <= 12 && dia >= 1 &&
           dia <= diasDelMes(anio, mes);
}

std::int64_t Fecha::diaJuliano() const {
    // Days from civil (proleptic Gregorian), shifted so that 0001-01-01 is 0.
    std::int64_t y = anio;
    const int m = mes;
    y -= m <= 2;
    const std::int64_t era = (y >= 0 ? y : y - 399) / 400;
    const std::int64_t yoe = y - era * 400;
    const std::int64_t doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + dia - 1;
    const std::int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + doe - 306;  // 0000-03-01 based -> 0001-01-01 based
}

Fecha Fecha::desdeDiaJuliano(std::int64_t dias) {
    std::int64_t z = dias + 306;
    const std::int64_t era = (z >= 0 ? z : z - 146096) / 146097;
    const std::int64_t doe = z - era * 146097;
    const std::int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const std::int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const std::int64_t mp = (5 * doy + 2) / 153;
    const int d = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
    const int m = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
    const int y = static_cast<int>(yoe + era * 400 + (m <= 2));
    return Fecha{y, m, d};
}

std::string Fecha::iso() const {
    char buf[32];
    std::snprintf(buf, sizeof buf, "%04d-%02d-%02d", anio, mes, dia);
    return buf;
}

std::optional<Fecha> Fecha::leer(std::string_view t) {
    Fecha f;
    if (t.size() < 10 || t[4] != '-' || t[7] != '-') return std::nullopt;
    if (!detail::leerEntero(t, 0, 4, f.anio) || !detail::leerEntero(t, 5, 2, f.mes) ||
        !detail::leerEntero(t, 8, 2, f.dia))
        return std::nullopt;
    if (t.size() > 10 && t[10] != ' ' && t[10] != 'T') return std::nullopt;
    if (f.vacia() || f.valida()) return f;
    // The server keeps partial zero dates ('2024-00-00') too: read them as empty.
    if (f.mes == 0 || f.dia == 0) return Fecha{};
    return std::nullopt;
}

std::string Hora::iso() const {
    char buf[32];
    std::snprintf(buf, sizeof buf, "%02d:%02d:%02d", hora, minuto, segundo);
    return buf;
}

std::optional<Hora> Hora::leer(std::string_view t) {
    Hora h;
    // The server's TIME may be negative or exceed 24 h; only a time of day reads.
    if (t.size() < 8 || t[2] != ':' || t[5] != ':') return std::nullopt;
    if (!detail::leerEntero(t, 0, 2, h.hora) || !detail::leerEntero(t, 3, 2, h.minuto) ||
        !detail::leerEntero(t, 6, 2, h.segundo))
        return std::nullopt;
    if (h.hora > 23 || h.minuto > 59 || h.segundo > 59) return std::nullopt;
    return h;
}

std::string FechaHora::iso() const {
    return fecha.iso() + " " + hora.iso();
}

std::optional<FechaHora> FechaHora::leer(std::string_view t) {
    auto f = Fecha::leer(t);
    if (!f) return std::nullopt;
    FechaHora r{*f, {}};
    if (t.size() == 10) return r;
    auto h = Hora::leer(t.substr(11));
    if (!h) return std::nullopt;
    if (!f->vacia()) r.hora = *h;
    return r;
}

// ---- Valor ----------------------------------------------------------------------

const char* Valor::nombreTipo(Tipo t) {
    switch (t) {
        case Tipo::Nulo:
            return "nulo";
        case Tipo::Numero:
            return "número";
        case Tipo::Texto:
            return "texto";
        case Tipo::Fecha:
            return "fecha";
        case Tipo::FechaHora:
            return "fecha y hora";
        case Tipo::Hora:
            return "hora";
        case Tipo::Booleano:
            return "booleano";
    }
    return "?";
}

namespace {
[[noreturn]] void errorTipo(Valor::Tipo tiene, const char* quiere) {
    throw ErrorValor(std::string("se esperaba un valor de tipo ") + quiere +
                     " y se encontró uno de tipo " + Valor::nombreTipo(tiene));
}
}  // namespace

bool Valor::esVacio() const {
    switch (tipo()) {
        case Tipo::Nulo:
            return true;
        case Tipo::Fecha:
            return std::get<Fecha>(dato_).vacia();
        case Tipo::FechaHora:
            return std::get<FechaHora>(dato_).fecha.vacia();
        default:
            return false;
    }
}

double Valor::comoNumero() const {
    if (tipo() != Tipo::Numero) errorTipo(tipo(), "número");
    return std::get<double>(dato_);
}

const std::string& Valor::comoTexto() const {
    if (tipo() != Tipo::Texto) errorTipo(tipo(), "texto");
    return std::get<std::string>(dato_);
}

Fecha Valor::comoFecha() const {
    if (tipo() == Tipo::Fecha) return std::get<Fecha>(dato_);
    if (tipo() == Tipo::FechaHora) return std::get<FechaHora>(dato_).fecha;
    errorTipo(tipo(), "fecha");
}

FechaHora Valor::comoFechaHora() const {
    if (tipo() == Tipo::FechaHora) return std::get<FechaHora>(dato_);
    if (tipo() == Tipo::Fecha) return FechaHora{std::get<Fecha>(dato_), {}};
    errorTipo(tipo(), "fecha y hora");
}

Hora Valor::comoHora() const {
    if (tipo() == Tipo::Hora) return std::get<Hora>(dato_);
    if (tipo() == Tipo::FechaHora) return std::get<FechaHora>(dato_).hora;
    errorTipo(tipo(), "hora");
}

bool Valor::comoBooleano() const {
    if (tipo() != Tipo::Booleano) errorTipo(tipo(), "booleano");
    return std::get<bool>(dato_);
}

std::string Valor::aTexto() const {
    switch (tipo()) {
        case Tipo::Nulo:
            return {};
        case Tipo::Numero:
            return formatearNumero(std::get<double>(dato_), "#,##0.00");
        case Tipo::Texto:
            return std::get<std::string>(dato_);
        case Tipo::Fecha:
            return formatearFecha(FechaHora{std::get<Fecha>(dato_), {}}, "dd/mm/yyyy");
        case Tipo::FechaHora:
            return formatearFecha(std::get<FechaHora>(dato_), "dd/mm/yyyy hh:nn:ss");
        case Tipo::Hora:
            return std::get<Hora>(dato_).iso();
        case Tipo::Booleano:
            return std::get<bool>(dato_) ? "Verdadero" : "Falso";
    }
    return {};
}

// ---- Comparación ---------------------------------------------------------------

std::strong_ordering compararTextos(std::string_view a, std::string_view b) {
    a = detail::sinEspaciosFinales(a);
    b = detail::sinEspaciosFinales(b);
    std::size_t i = 0, j = 0;
    while (i < a.size() && j < b.size()) {
        char32_t ca, cb;
        const int na = detail::decodificar(a, i, ca);
        const int nb = detail::decodificar(b, j, cb);
        if (na == 0 || nb == 0) return detail::compararBytes(a.substr(i), b.substr(j));
        const auto pa = pesoColacion(ca), pb = pesoColacion(cb);
        if (pa != pb) return pa <=> pb;
        i += na;
        j += nb;
    }
    // PAD SPACE: the shorter text continues with spaces.
    const bool restoEnA = i < a.size();
    std::string_view resto = restoEnA ? a.substr(i) : b.substr(j);
    for (std::size_t k = 0; k < resto.size();) {
        char32_t c;
        const int n = detail::decodificar(resto, k, c);
        const auto p = n == 0 ? static_cast<std::uint16_t>(static_cast<unsigned char>(resto[k]))
                              : pesoColacion(c);
        if (p != 0x20) {
            const bool mayor = p > 0x20;
            return mayor == restoEnA ? std::strong_ordering::greater : std::strong_ordering::less;
        }
        k += n == 0 ? 1 : n;
    }
    return std::strong_ordering::equal;
}

bool contieneTexto(std::string_view pajar, std::string_view aguja) {
    if (aguja.empty()) return true;
    for (std::size_t i = 0; i + aguja.size() <= pajar.size();) {
        // A window of the needle's byte length, compared without padding.
        std::string_view ventana = pajar.substr(i, aguja.size());
        std::size_t x = 0, y = 0;
        bool igual = true;
        while (x < ventana.size() && y < aguja.size()) {
            char32_t cv, ca;
            const int nv = detail::decodificar(ventana, x, cv);
            const int na = detail::decodificar(aguja, y, ca);
            if (nv == 0 || na == 0) {
                igual = ventana.substr(x) == aguja.substr(y);
                x = ventana.size();
                y = aguja.size();
                break;
            }
            if (pesoColacion(cv) != pesoColacion(ca)) {
                igual = false;
                break;
            }
            x += nv;
            y += na;
        }
        if (igual && x == ventana.size() && y == aguja.size()) return true;
        char32_t c;
        const int n = detail::decodificar(pajar, i, c);
        i += n == 0 ? 1 : n;
    }
    return false;
}

namespace {
int rango(Valor::Tipo t) {
    // Kinds that compare with each other share a rank.
    switch (t) {
        case Valor::Tipo::Fecha:
        case Valor::Tipo::FechaHora:
            return 3;
        default:
            return static_cast<int>(t);
    }
}
}  // namespace

std::optional<std::strong_ordering> comparar(const Valor& a, const Valor& b) {
    using T = Valor::Tipo;
    if (a.esNulo() || b.esNulo()) return std::nullopt;
    if (rango(a.tipo()) != rango(b.tipo())) {
        throw ErrorValor(std::string("no se puede comparar un valor de tipo ") +
                         Valor::nombreTipo(a.tipo()) + " con uno de tipo " +
                         Valor::nombreTipo(b.tipo()));
    }
    switch (a.tipo()) {
        case T::Numero: {
            const double x = a.comoNumero(), y = b.comoNumero();
            if (x < y) return std::strong_ordering::less;
            if (x > y) return std::strong_ordering::greater;
            return std::strong_ordering::equal;
        }
        case T::Texto:
            return compararTextos(a.comoTexto(), b.comoTexto());
        case T::Fecha:
        case T::FechaHora:
            if (a.tipo() == T::Fecha && b.tipo() == T::Fecha)
                return a.comoFecha() <=> b.comoFecha();
            return a.comoFechaHora() <=> b.comoFechaHora();
        case T::Hora:
            return a.comoHora() <=> b.comoHora();
        case T::Booleano:
            return a.comoBooleano() <=> b.comoBooleano();
        case T::Nulo:
            break;
    }
    return std::strong_ordering::equal;
}

std::strong_ordering compararParaOrden(const Valor& a, const Valor& b) {
    if (a.esNulo() || b.esNulo()) return !a.esNulo() <=> !b.esNulo();
    if (rango(a.tipo()) != rango(b.tipo())) return rango(a.tipo()) <=> rango(b.tipo());
    return *comparar(a, b);
}

// ---- Formatos ------------------------------------------------------------------

std::string formatearNumero(double v, std::string_view patron) {
    if (std::isnan(v)) return "NaN";
    // Split the pattern into prefix, digits part and suffix.
    std::size_t ini = patron.find_first_of("#0");
    if (ini == std::string_view::npos) return std::string(patron);
    std::size_t fin = patron.find_last_of("#0");
    const std::string_view prefijo = patron.substr(0, ini);
    const std::string_view cuerpo = patron.substr(ini, fin - ini + 1);
    const std::string_view sufijo = patron.substr(fin + 1);
    const std::size_t punto = cuerpo.find('.');
    const std::string_view entera = cuerpo.substr(0, punto);
    const std::string_view decimal =
        punto == std::string_view::npos ? std::string_view{} : cuerpo.substr(punto + 1);
    int decimalesMin = 0, decimalesMax = 0, enterosMin = 0;
    for (char c : decimal) {
        if (c == '0') ++decimalesMin, ++decimalesMax;
        if (c == '#') ++decimalesMax;
    }
    for (char c : entera)
        if (c == '0') ++enterosMin;
    const bool agrupar = entera.find(',') != std::string_view::npos;

    if (std::isinf(v)) return std::string(v < 0 ? "-" : "") + "Infinito";
    // Round half away from zero at the wanted decimals.
    const double escala = std::pow(10.0, decimalesMax);
    double r = std::round(std::fabs(v) * escala) / escala;
    const bool negativo = v < 0 && r != 0;
    char buf[400];
    std::snprintf(buf, sizeof buf, "%.*f", decimalesMax, r);
    std::string num = buf;
    std::string ent = num.substr(0, num.find('.'));
    std::string dec = decimalesMax > 0 ? num.substr(num.find('.') + 1) : "";
    while (static_cast<int>(dec.size()) > decimalesMin && !dec.empty() && dec.back() == '0')
        dec.pop_back();
    if (ent == "0" && enterosMin == 0) ent.clear();
    while (static_cast<int>(ent.size()) < enterosMin) ent.insert(ent.begin(), '0');
    if (agrupar) {
        std::string g;
        int n = 0;
        for (auto it = ent.rbegin(); it != ent.rend(); ++it, ++n) {
            if (n > 0 && n % 3 == 0) g.insert(g.begin(), ',');
            g.insert(g.begin(), *it);
        }
        ent = g;
    }
    std::string out(prefijo);
    if (negativo) out += '-';
    out += ent;
    if (!dec.empty()) out += "." + dec;
    if (out.size() == prefijo.size() + (negativo ? 1 : 0)) out += '0';  // "#" of zero
    out += sufijo;
    return out;
}

std::string formatearFecha(const FechaHora& v, std::string_view patron) {
    if (v.fecha.vacia()) return {};
    if (v.fecha.mes < 1 || v.fecha.mes > 12) return v.fecha.iso();
    std::string out;
    bool trasHora = false;  // "mm" right after an hour token means minutes
    for (std::size_t i = 0; i < patron.size();) {
        if (patron[i] == '"') {  // quoted text is copied as it is
            const std::size_t cierre = patron.find('"', i + 1);
            const std::size_t hasta = cierre == std::string_view::npos ? patron.size() : cierre;
            out.append(patron.substr(i + 1, hasta - i - 1));
            i = hasta + 1;
            continue;
        }
        const char c = static_cast<char>(std::tolower(static_cast<unsigned char>(patron[i])));
        std::size_t n = 1;
        while (i + n < patron.size() &&
               std::tolower(static_cast<unsigned char>(patron[i + n])) == c)
            ++n;
        switch (c) {
            case 'd':
                out += n == 1 ? std::to_string(v.fecha.dia) : detail::dosDigitos(v.fecha.dia);
                trasHora = false;
                break;
            case 'm':
                if (trasHora && n <= 2) {
                    out +=
                        n == 1 ? std::to_string(v.hora.minuto) : detail::dosDigitos(v.hora.minuto);
                } else if (n == 1) {
                    out += std::to_string(v.fecha.mes);
                } else if (n == 2) {
                    out += detail::dosDigitos(v.fecha.mes);
                } else if (n == 3) {
                    out += detail::kMesesCortos[v.fecha.mes - 1];
                } else {
                    out += detail::kMesesLargos[v.fecha.mes - 1];
                }
                trasHora = false;
                break;
            case 'y': {
                std::string a = std::to_string(v.fecha.anio);
                if (n <= 2) {
                    a = detail::dosDigitos(v.fecha.anio % 100);
                } else {
                    while (a.size() < 4) a.insert(a.begin(), '0');
                }
                out += a;
                trasHora = false;
                break;
            }
            case 'h':
                out += n == 1 ? std::to_string(v.hora.hora) : detail::dosDigitos(v.hora.hora);
                trasHora = true;
                break;
            case 'n':
                out += n == 1 ? std::to_string(v.hora.minuto) : detail::dosDigitos(v.hora.minuto);
                trasHora = false;
                break;
            case 's':
                out += n == 1 ? std::to_string(v.hora.segundo) : detail::dosDigitos(v.hora.segundo);
                trasHora = false;
                break;
            default:
                out.append(patron.substr(i, n));
                break;
        }
        i += n;
    }
    return out;
}

}  // namespace paratzorep::renderer
