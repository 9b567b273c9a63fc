#include "toolkit/LibKRVM.h"

#include <algorithm>
#include <cctype>
#include <cmath>

#include "toolkit/Fechas.h"
#include "toolkit/Ini.h"
#include "toolkit/Texto.h"

namespace paratzorep::toolkit {

bool LibKRVM::Enter(std::int16_t& keyAscii) const {
    if (keyAscii != 13) return false;
    keyAscii = 0;
    return true;
}

bool LibKRVM::Teclas(std::int16_t keyCode, std::int16_t shift) const {
    return shift == 0 && (keyCode == 38 || keyCode == 40);
}

std::pair<int, int> LibKRVM::Resalta(const std::string& texto) const {
    return {0, static_cast<int>(texto.size())};
}

double LibKRVM::kvVal(const std::string& texto) const {
    std::size_t i = 0;
    auto saltaBlancos = [&] {
        while (i < texto.size() && (texto[i] == ' ' || texto[i] == '\t')) ++i;
    };
    saltaBlancos();
    double signo = 1;
    if (i < texto.size() && (texto[i] == '-' || texto[i] == '+')) {
        if (texto[i] == '-') signo = -1;
        ++i;
        saltaBlancos();
    }
    double entero = 0, fraccion = 0, escala = 1;
    bool hayDigitos = false, enFraccion = false;
    for (; i < texto.size(); ++i) {
        char c = texto[i];
        if (std::isdigit(static_cast<unsigned char>(c))) {
            hayDigitos = true;
            if (enFraccion) {
                escala /= 10;
                fraccion += (c - '0') * escala;
            } else {
                entero = entero * 10 + (c - '0');
            }
        } else if (c == '.' && !enFraccion) {
            enFraccion = true;
        } else if (c == ' ' || c == '\t') {
            // Blanks inside a number are skipped, as the users type "1 000".
        } else {
            break;
        }
    }
    if (!hayDigitos) return 0;
    double valor = entero + fraccion;
    // An exponent ("1.5E3", "2e-2") counts only when digits follow it.
    if (i < texto.size() && (texto[i] == 'e' || texto[i] == 'E')) {
        std::size_t j = i + 1;
        int signoExp = 1;
        if (j < texto.size() && (texto[j] == '-' || texto[j] == '+')) {
            if (texto[j] == '-') signoExp = -1;
            ++j;
        }
        int exponente = 0;
        bool hayExp = false;
        while (j < texto.size() && std::isdigit(static_cast<unsigned char>(texto[j]))) {
            exponente = std::min(exponente * 10 + (texto[j] - '0'), 400);
            hayExp = true;
            ++j;
        }
        if (hayExp) valor *= std::pow(10.0, signoExp * exponente);
    }
    return signo * valor;
}

std::string LibKRVM::NoNull(const host::Valor& valor) const {
    if (!valor.EsNulo()) return valor.Texto();
    return host::EsTipoNumerico(valor.Tipo()) ? "0" : "";
}

bool LibKRVM::FechaVacia(const std::string& texto) const {
    return std::all_of(texto.begin(), texto.end(),
                       [](char c) { return c == ' ' || c == '_' || c == '/' || c == '\t'; });
}

bool LibKRVM::EsFecha(const std::string& texto) const {
    return LeeFecha(texto).has_value();
}

std::string LibKRVM::FechaSQL(const std::string& texto) const {
    auto f = LeeFecha(texto);
    return f ? TextoSQL(*f) : std::string();
}

std::string LibKRVM::FechaCompleta(const std::string& texto) const {
    auto f = LeeFecha(texto);
    return f ? TextoCompleto(*f) : std::string();
}

std::string LibKRVM::FechaMesCorto(const std::string& texto) const {
    auto f = LeeFecha(texto);
    return f ? TextoMesCorto(*f) : std::string();
}

std::string LibKRVM::FechaDMA(const std::string& texto) const {
    auto f = LeeFecha(texto);
    return f ? TextoDMA(*f) : std::string();
}

std::string LibKRVM::SumaWhereAnd(const std::string& acumulado,
                                  const std::string& condicion) const {
    if (detail::Recorta(condicion).empty()) return acumulado;
    if (detail::Recorta(acumulado).empty()) return " WHERE " + condicion;
    return acumulado + " AND " + condicion;
}

std::string LibKRVM::LeeIni(const std::string& seccion, const std::string& clave,
                            const std::string& archivo, const std::string& omision) const {
    return toolkit::LeeIni(seccion, clave, archivo, omision);
}

void LibKRVM::EscribeIni(const std::string& seccion, const std::string& clave,
                         const std::string& valor, const std::string& archivo) const {
    toolkit::EscribeIni(seccion, clave, valor, archivo);
}

std::int16_t LibKRVM::Porcentaje(double i, double n) const {
    if (!(n > 0)) return 0;
    double p = std::floor(i * 100.0 / n);
    return static_cast<std::int16_t>(std::clamp(p, 0.0, 100.0));
}

}  // namespace paratzorep::toolkit
