#include "toolkit/Fechas.h"

#include <array>
#include <cctype>
#include <ctime>
#include <vector>

#include "toolkit/Texto.h"

namespace paratzorep::toolkit {

namespace {

constexpr std::array<std::string_view, 12> kMeses = {
    "enero", "febrero", "marzo",      "abril",   "mayo",      "junio",
    "julio", "agosto",  "septiembre", "octubre", "noviembre", "diciembre"};
constexpr std::array<std::string_view, 12> kMesesCortos = {
    "ene", "feb", "mar", "abr", "may", "jun", "jul", "ago", "sep", "oct", "nov", "dic"};

std::optional<int> Numero(std::string_view s, std::size_t minimo, std::size_t maximo) {
    if (s.size() < minimo || s.size() > maximo) return std::nullopt;
    int n = 0;
    for (char c : s) {
        if (!std::isdigit(static_cast<unsigned char>(c))) return std::nullopt;
        n = n * 10 + (c - '0');
    }
    return n;
}

std::optional<int> Mes(std::string_view s) {
    if (auto n = Numero(s, 1, 2)) return n;
    std::string m = detail::Minusculas(s);
    for (int i = 0; i < 12; ++i) {
        if (m == kMesesCortos[i] || m == kMeses[i]) return i + 1;
    }
    return std::nullopt;
}

std::vector<std::string_view> Parte(std::string_view s, char sep) {
    std::vector<std::string_view> partes;
    std::size_t pos = 0;
    while (true) {
        std::size_t hallado = s.find(sep, pos);
        partes.push_back(
            s.substr(pos, hallado == std::string_view::npos ? hallado : hallado - pos));
        if (hallado == std::string_view::npos) break;
        pos = hallado + 1;
    }
    return partes;
}

std::optional<Fecha> Valida(int anio, int mes, int dia) {
    if (anio < 1 || anio > 9999) return std::nullopt;
    std::chrono::year_month_day ymd{std::chrono::year{anio}, std::chrono::month{unsigned(mes)},
                                    std::chrono::day{unsigned(dia)}};
    if (!ymd.ok()) return std::nullopt;
    return Fecha{anio, mes, dia};
}

std::string DosDigitos(int n) {
    std::string s = std::to_string(n);
    return n < 10 ? "0" + s : s;
}

std::string CuatroDigitos(int n) {
    std::string s = std::to_string(n);
    while (s.size() < 4) s.insert(s.begin(), '0');
    return s;
}

}  // namespace

std::chrono::year_month_day Fecha::Ymd() const {
    return {std::chrono::year{anio}, std::chrono::month{unsigned(mes)},
            std::chrono::day{unsigned(dia)}};
}

std::optional<Fecha> LeeFecha(std::string_view texto) {
    std::string t = detail::Recorta(texto);
    if (t.empty()) return std::nullopt;
    // ISO form first: "yyyy-mm-dd" with an optional time.
    if (t.size() >= 10 && t[4] == '-' && t[7] == '-') {
        auto a = Numero(std::string_view(t).substr(0, 4), 4, 4);
        auto m = Numero(std::string_view(t).substr(5, 2), 2, 2);
        auto d = Numero(std::string_view(t).substr(8, 2), 2, 2);
        if (t.size() > 10 && t[10] != ' ' && t[10] != 'T') return std::nullopt;
        if (!a || !m || !d) return std::nullopt;
        return Valida(*a, *m, *d);
    }
    char sep = t.find('/') != std::string::npos ? '/' : '-';
    auto partes = Parte(t, sep);
    if (partes.size() != 3) return std::nullopt;
    auto d = Numero(partes[0], 1, 2);
    auto m = Mes(partes[1]);
    auto a = Numero(partes[2], 4, 4);
    if (!d || !m || !a) return std::nullopt;
    return Valida(*a, *m, *d);
}

Fecha Hoy() {
    std::time_t ahora = std::time(nullptr);
    std::tm local{};
    localtime_r(&ahora, &local);
    return Fecha{local.tm_year + 1900, local.tm_mon + 1, local.tm_mday};
}

long DiasEntre(const Fecha& desde, const Fecha& hasta) {
    return (std::chrono::sys_days{hasta.Ymd()} - std::chrono::sys_days{desde.Ymd()}).count();
}

Fecha SumaDias(const Fecha& f, long dias) {
    std::chrono::year_month_day r{std::chrono::sys_days{f.Ymd()} + std::chrono::days{dias}};
    return Fecha{int(r.year()), int(unsigned(r.month())), int(unsigned(r.day()))};
}

std::string TextoDMA(const Fecha& f) {
    return DosDigitos(f.dia) + "/" + DosDigitos(f.mes) + "/" + CuatroDigitos(f.anio);
}

std::string TextoSQL(const Fecha& f) {
    return CuatroDigitos(f.anio) + "-" + DosDigitos(f.mes) + "-" + DosDigitos(f.dia);
}

std::string TextoMesCorto(const Fecha& f) {
    return DosDigitos(f.dia) + "/" + std::string(MesCorto(f.mes)) + "/" + CuatroDigitos(f.anio);
}

std::string TextoCompleto(const Fecha& f) {
    return std::to_string(f.dia) + " de " + std::string(NombreMes(f.mes)) + " de " +
           std::to_string(f.anio);
}

std::string_view NombreMes(int mes) {
    return mes >= 1 && mes <= 12 ? kMeses[mes - 1] : "";
}

std::string_view MesCorto(int mes) {
    return mes >= 1 && mes <= 12 ? kMesesCortos[mes - 1] : "";
}

}  // namespace paratzorep::toolkit
