#include "renderer/formula/Evaluador.h"

#include <chrono>
#include <cmath>
#include <ctime>

namespace paratzorep::renderer::formula {

Valor Contexto::formula(std::string_view nombre) const {
    throw ErrorValor("la fórmula {@" + std::string(nombre) + "} no existe en el reporte");
}

Valor Contexto::parametro(std::string_view nombre) const {
    throw ErrorValor("el parámetro {?" + std::string(nombre) + "} no tiene valor");
}

Valor Contexto::resumen(const RefResumen& r) const {
    throw ErrorValor("el resumen del campo " + r.campo.tabla + "." + r.campo.campo +
                     " no está disponible aquí");
}

Fecha Contexto::fechaActual() const {
    const std::time_t t = std::time(nullptr);
    std::tm tm{};
    localtime_r(&t, &tm);
    return Fecha{tm.tm_year + 1900, tm.tm_mon + 1, tm.tm_mday};
}

namespace detail {

using T = Valor::Tipo;

[[noreturn]] void fallar(const Nodo& n, const std::string& detalle) {
    throw ErrorFormula(n.tramo, detalle);
}

double numero(const Nodo& n, const Valor& v, const char* uso) {
    if (v.tipo() != T::Numero)
        fallar(n, std::string(uso) + " espera un número y recibió un valor de tipo " +
                      Valor::nombreTipo(v.tipo()));
    return v.comoNumero();
}

const std::string& texto(const Nodo& n, const Valor& v, const char* uso) {
    if (v.tipo() != T::Texto)
        fallar(n, std::string(uso) + " espera un texto y recibió un valor de tipo " +
                      Valor::nombreTipo(v.tipo()));
    return v.comoTexto();
}

int entero(const Nodo& n, const Valor& v, const char* uso) {
    const double d = numero(n, v, uso);
    if (!std::isfinite(d) || std::fabs(d) > 1e9)
        fallar(n, std::string(uso) + " recibió un número fuera de rango");
    return static_cast<int>(std::trunc(d));
}

// Code-point positions of a UTF-8 text: the byte offset where each character starts.
std::vector<std::size_t> inicios(const std::string& s) {
    std::vector<std::size_t> r;
    for (std::size_t i = 0; i < s.size(); ++i)
        if ((static_cast<unsigned char>(s[i]) & 0xC0) != 0x80) r.push_back(i);
    return r;
}

std::string subcadena(const std::string& s, long desde, long cuantos) {
    const auto ini = inicios(s);
    const long total = static_cast<long>(ini.size());
    if (desde < 0) desde = 0;
    if (desde >= total || cuantos <= 0) return {};
    const long hasta = std::min(total, desde + cuantos);
    const std::size_t b0 = ini[desde];
    const std::size_t b1 = hasta == total ? s.size() : ini[hasta];
    return s.substr(b0, b1 - b0);
}

// Upper/lower case of ASCII and the Latin-1 letters (á, ñ, ü ...).
std::string cambiarCaja(const std::string& s, bool mayus) {
    std::string r;
    r.reserve(s.size());
    for (std::size_t i = 0; i < s.size(); ++i) {
        const auto c = static_cast<unsigned char>(s[i]);
        if (c < 0x80) {
            r += static_cast<char>(mayus ? std::toupper(c) : std::tolower(c));
        } else if (c == 0xC3 && i + 1 < s.size()) {
            auto d = static_cast<unsigned char>(s[i + 1]);
            // U+00C0..U+00DE <-> U+00E0..U+00FE, except x (U+00D7) and ÷ (U+00F7).
            if (mayus && d >= 0xA0 && d <= 0xBE && d != 0xB7) d -= 0x20;
            if (!mayus && d >= 0x80 && d <= 0x9E && d != 0x97) d += 0x20;
            r += static_cast<char>(c);
            r += static_cast<char>(d);
            ++i;
        } else {
            r += static_cast<char>(c);
        }
    }
    return r;
}

std::string recortar(const std::string& s, bool izq, bool der) {
    std::size_t a = 0, b = s.size();
    if (izq)
        while (a < b && (s[a] == ' ' || s[a] == '\t')) ++a;
    if (der)
        while (b > a && (s[b - 1] == ' ' || s[b - 1] == '\t')) --b;
    return s.substr(a, b - a);
}

double redondear(double v, int decimales) {
    const double escala = std::pow(10.0, decimales);
    return std::round(v * escala) / escala;
}

std::string enTexto(const Nodo& n, const Valor& v, const Valor* fmt) {
    switch (v.tipo()) {
        case T::Numero: {
            if (fmt == nullptr) return formatearNumero(v.comoNumero(), "#,##0.00");
            if (fmt->tipo() == T::Numero) {
                const int dec = entero(n, *fmt, "ToText");
                if (dec < 0 || dec > 15) fallar(n, "ToText admite de 0 a 15 decimales");
                return formatearNumero(v.comoNumero(),
                                       dec == 0 ? "#,##0" : "#,##0." + std::string(dec, '0'));
            }
            return formatearNumero(v.comoNumero(), texto(n, *fmt, "El formato de ToText"));
        }
        case T::Fecha:
        case T::FechaHora: {
            const std::string patron =
                fmt ? texto(n, *fmt, "El formato de ToText")
                    : (v.tipo() == T::Fecha ? "dd/mm/yyyy" : "dd/mm/yyyy hh:nn:ss");
            return formatearFecha(v.comoFechaHora(), patron);
        }
        case T::Hora: {
            if (!fmt) return v.aTexto();
            FechaHora fh{Fecha{2000, 1, 1}, v.comoHora()};
            return formatearFecha(fh, texto(n, *fmt, "El formato de ToText"));
        }
        default:
            return v.aTexto();
    }
}

Fecha fechaValida(const Nodo& n, int a, int m, int d) {
    Fecha f{a, m, d};
    if (!f.valida())
        fallar(n, "la fecha " + std::to_string(a) + "," + std::to_string(m) + "," +
                      std::to_string(d) + " no existe");
    return f;
}

FechaHora sumarSegundos(const FechaHora& f, double segundos) {
    const double total = static_cast<double>(f.fecha.diaJuliano()) * 86400.0 + f.hora.hora * 3600 +
                         f.hora.minuto * 60 + f.hora.segundo + segundos;
    const double dias = std::floor(total / 86400.0);
    auto resto = static_cast<long>(std::llround(total - dias * 86400.0));
    auto d = static_cast<std::int64_t>(dias);
    if (resto >= 86400) {
        resto -= 86400;
        ++d;
    }
    FechaHora r;
    r.fecha = Fecha::desdeDiaJuliano(d);
    r.hora = Hora{static_cast<int>(resto / 3600), static_cast<int>(resto / 60 % 60),
                  static_cast<int>(resto % 60)};
    return r;
}

Valor fechaDesde(const Nodo& n, const Fecha& f) {
    if (!f.valida()) fallar(n, "la operación da una fecha fuera del calendario");
    return Valor::fecha(f);
}

class Evaluador {
  public:
    explicit Evaluador(const Contexto& ctx) : ctx_(ctx) {}

    Valor operator()(const Nodo& n) {
        try {
            return evaluar(n);
        } catch (const ErrorValor& e) {
            fallar(n, e.what());
        }
    }

  private:
    Valor evaluar(const Nodo& n) {
        switch (n.tipo) {
            case TipoNodo::Literal:
                return n.valor;
            case TipoNodo::Campo:
                return ctx_.campo(n.tabla, n.nombre);
            case TipoNodo::RefFormula:
                return ctx_.formula(n.nombre);
            case TipoNodo::Parametro:
                return ctx_.parametro(n.nombre);
            case TipoNodo::Unario:
                return unario(n);
            case TipoNodo::Binario:
                return binario(n);
            case TipoNodo::Lista:
                fallar(n, "una lista [ ] sólo puede ir después de 'in'");
            case TipoNodo::Si: {
                const Valor c = (*this)(*n.hijos[0]);
                if (!c.esNulo() && c.tipo() != T::Booleano)
                    fallar(*n.hijos[0], "la condición de 'if' debe dar verdadero o falso");
                if (!c.esNulo() && c.comoBooleano()) return (*this)(*n.hijos[1]);
                return n.hijos.size() > 2 ? (*this)(*n.hijos[2]) : Valor();
            }
            case TipoNodo::Funcion:
                return funcion(n);
        }
        return {};
    }

    Valor logico(const Nodo& n, const Valor& v) {
        if (!v.esNulo() && v.tipo() != T::Booleano)
            fallar(n,
                   "se esperaba una condición (verdadero o falso) y se encontró un valor de tipo " +
                       std::string(Valor::nombreTipo(v.tipo())));
        return v;
    }

    Valor unario(const Nodo& n) {
        const Valor v = (*this)(*n.hijos[0]);
        if (v.esNulo()) return v;
        if (n.op == "not") return Valor::booleano(!logico(*n.hijos[0], v).comoBooleano());
        return Valor::numero(-numero(n, v, "El signo '-'"));
    }

    Valor binario(const Nodo& n) {
        const std::string& op = n.op;
        if (op == "and" || op == "or") {
            // Three-valued logic with short-circuit: False and x = False, True or x = True.
            const bool esAnd = op == "and";
            const Valor a = logico(*n.hijos[0], (*this)(*n.hijos[0]));
            if (!a.esNulo() && a.comoBooleano() != esAnd) return a;
            const Valor b = logico(*n.hijos[1], (*this)(*n.hijos[1]));
            if (!b.esNulo() && b.comoBooleano() != esAnd) return b;
            if (a.esNulo() || b.esNulo()) return Valor();
            return Valor::booleano(esAnd);
        }
        if (op == "in") return contiene(n);
        const Valor a = (*this)(*n.hijos[0]);
        const Valor b = (*this)(*n.hijos[1]);
        if (op == "=" || op == "<>" || op == "<" || op == ">" || op == "<=" || op == ">=") {
            const auto c = comparar(a, b);
            if (!c) return Valor();
            bool r;
            if (op == "=")
                r = *c == 0;
            else if (op == "<>")
                r = *c != 0;
            else if (op == "<")
                r = *c < 0;
            else if (op == ">")
                r = *c > 0;
            else if (op == "<=")
                r = *c <= 0;
            else
                r = *c >= 0;
            return Valor::booleano(r);
        }
        if (a.esNulo() || b.esNulo()) return Valor();
        if (op == "&") return Valor::texto(enTexto(n, a, nullptr) + enTexto(n, b, nullptr));
        if (op == "+") {
            if (a.tipo() == T::Texto && b.tipo() == T::Texto)
                return Valor::texto(a.comoTexto() + b.comoTexto());
            if (a.tipo() == T::Numero && b.tipo() == T::Numero)
                return Valor::numero(a.comoNumero() + b.comoNumero());
            if (b.tipo() == T::Numero && (a.tipo() == T::Fecha || a.tipo() == T::FechaHora))
                return masDias(n, a, b.comoNumero());
            if (a.tipo() == T::Numero && (b.tipo() == T::Fecha || b.tipo() == T::FechaHora))
                return masDias(n, b, a.comoNumero());
            fallar(n, tiposNoValidos("sumar", a, b));
        }
        if (op == "-") {
            if (a.tipo() == T::Numero && b.tipo() == T::Numero)
                return Valor::numero(a.comoNumero() - b.comoNumero());
            if (b.tipo() == T::Numero && (a.tipo() == T::Fecha || a.tipo() == T::FechaHora))
                return masDias(n, a, -b.comoNumero());
            if (a.tipo() == T::Fecha && b.tipo() == T::Fecha)
                return Valor::numero(
                    static_cast<double>(a.comoFecha().diaJuliano() - b.comoFecha().diaJuliano()));
            if ((a.tipo() == T::Fecha || a.tipo() == T::FechaHora) &&
                (b.tipo() == T::Fecha || b.tipo() == T::FechaHora))
                return Valor::numero((segundos(a.comoFechaHora()) - segundos(b.comoFechaHora())) /
                                     86400.0);
            fallar(n, tiposNoValidos("restar", a, b));
        }
        const double x = numero(n, a, op == "*" ? "La multiplicación" : "La división");
        const double y = numero(n, b, op == "*" ? "La multiplicación" : "La división");
        if (op == "*") return Valor::numero(x * y);
        if (y == 0) fallar(n, "división entre cero");
        return Valor::numero(x / y);
    }

    static double segundos(const FechaHora& f) {
        return static_cast<double>(f.fecha.diaJuliano()) * 86400.0 + f.hora.hora * 3600.0 +
               f.hora.minuto * 60.0 + f.hora.segundo;
    }

    static std::string tiposNoValidos(const char* que, const Valor& a, const Valor& b) {
        return std::string("no se puede ") + que + " un valor de tipo " +
               Valor::nombreTipo(a.tipo()) + " y uno de tipo " + Valor::nombreTipo(b.tipo());
    }

    Valor masDias(const Nodo& n, const Valor& f, double dias) {
        if (!std::isfinite(dias) || std::fabs(dias) > 4e6)
            fallar(n, "número de días fuera de rango");
        if (f.esVacio()) return f;
        if (f.tipo() == T::Fecha)
            return fechaDesde(n,
                              Fecha::desdeDiaJuliano(f.comoFecha().diaJuliano() +
                                                     static_cast<std::int64_t>(std::trunc(dias))));
        const FechaHora r = sumarSegundos(f.comoFechaHora(), dias * 86400.0);
        if (!r.fecha.valida()) fallar(n, "la operación da una fecha fuera del calendario");
        return Valor::fechaHora(r);
    }

    Valor contiene(const Nodo& n) {
        const Valor a = (*this)(*n.hijos[0]);
        const Nodo& der = *n.hijos[1];
        if (der.tipo == TipoNodo::Lista) {
            if (a.esNulo()) return Valor();
            bool desconocido = false;
            for (const auto& h : der.hijos) {
                const Valor e = (*this)(*h);
                const auto c = comparar(a, e);
                if (!c)
                    desconocido = true;
                else if (*c == 0)
                    return Valor::booleano(true);
            }
            return desconocido ? Valor() : Valor::booleano(false);
        }
        const Valor b = (*this)(der);
        if (a.esNulo() || b.esNulo()) return Valor();
        return Valor::booleano(contieneTexto(texto(n, b, "'in'"), texto(n, a, "'in'")));
    }

    std::vector<Valor> argumentos(const Nodo& n) {
        std::vector<Valor> r;
        r.reserve(n.hijos.size());
        for (const auto& h : n.hijos) r.push_back((*this)(*h));
        return r;
    }

    Valor funcion(const Nodo& n) {
        const std::string& f = n.nombre;
        if (f == "Sum" || f == "Count" || f == "DistinctCount" || f == "Average" ||
            f == "Minimum" || f == "Maximum")
            return resumen(n);
        if (f == "CurrentDate") return Valor::fecha(ctx_.fechaActual());
        if (f == "CurrentDateTime") {
            const std::time_t t = std::time(nullptr);
            std::tm tm{};
            localtime_r(&t, &tm);
            return Valor::fechaHora(
                FechaHora{ctx_.fechaActual(), Hora{tm.tm_hour, tm.tm_min, tm.tm_sec}});
        }
        const std::vector<Valor> a = argumentos(n);
        if (f == "IsNull") return Valor::booleano(a[0].esVacio());
        for (const auto& v : a)
            if (v.esNulo()) return Valor();  // null in, null out
        if (f == "Date") return fecha(n, a);
        if (f == "DateTime") return fechaHora(n, a);
        if (f == "ToText") {
            if (a.size() == 3) {
                // ToText(number, decimals, thousands separator)
                const int dec = entero(n, a[1], "ToText");
                if (dec < 0 || dec > 15) fallar(n, "ToText admite de 0 a 15 decimales");
                const std::string sep = texto(n, a[2], "ToText");
                std::string s =
                    formatearNumero(numero(n, a[0], "ToText"),
                                    dec == 0 ? "#,##0" : "#,##0." + std::string(dec, '0'));
                std::string r;
                for (char c : s) {
                    if (c == ',')
                        r += sep;
                    else
                        r += c;
                }
                return Valor::texto(r);
            }
            return Valor::texto(enTexto(n, a[0], a.size() > 1 ? &a[1] : nullptr));
        }
        if (f == "Trim") return Valor::texto(recortar(texto(n, a[0], f.c_str()), true, true));
        if (f == "TrimLeft") return Valor::texto(recortar(texto(n, a[0], f.c_str()), true, false));
        if (f == "TrimRight") return Valor::texto(recortar(texto(n, a[0], f.c_str()), false, true));
        if (f == "UpperCase") return Valor::texto(cambiarCaja(texto(n, a[0], f.c_str()), true));
        if (f == "LowerCase") return Valor::texto(cambiarCaja(texto(n, a[0], f.c_str()), false));
        if (f == "Len")
            return Valor::numero(static_cast<double>(inicios(texto(n, a[0], "Len")).size()));
        if (f == "Left" || f == "Right") {
            const std::string& s = texto(n, a[0], f.c_str());
            const int k = entero(n, a[1], f.c_str());
            if (k < 0) fallar(n, f + " no admite una longitud negativa");
            if (f == "Left") return Valor::texto(subcadena(s, 0, k));
            const long total = static_cast<long>(inicios(s).size());
            return Valor::texto(subcadena(s, std::max(0L, total - k), k));
        }
        if (f == "Mid") {
            const std::string& s = texto(n, a[0], "Mid");
            const int desde = entero(n, a[1], "Mid");
            if (desde < 1) fallar(n, "Mid empieza en la posición 1");
            long k = a.size() > 2 ? entero(n, a[2], "Mid") : 0x7FFFFFFFL;
            if (k < 0) fallar(n, "Mid no admite una longitud negativa");
            return Valor::texto(subcadena(s, desde - 1, k));
        }
        if (f == "Year" || f == "Month" || f == "Day") {
            if (a[0].tipo() != T::Fecha && a[0].tipo() != T::FechaHora)
                fallar(n, f + " espera una fecha y recibió un valor de tipo " +
                              Valor::nombreTipo(a[0].tipo()));
            const Fecha d = a[0].comoFecha();
            return Valor::numero(f == "Year" ? d.anio : (f == "Month" ? d.mes : d.dia));
        }
        if (f == "Round") {
            const int dec = a.size() > 1 ? entero(n, a[1], "Round") : 0;
            if (dec < -15 || dec > 15) fallar(n, "Round admite de -15 a 15 decimales");
            return Valor::numero(redondear(numero(n, a[0], "Round"), dec));
        }
        if (f == "Abs") return Valor::numero(std::fabs(numero(n, a[0], "Abs")));
        if (f == "ToNumber") {
            if (a[0].tipo() == T::Numero) return a[0];
            if (a[0].tipo() == T::Booleano) return Valor::numero(a[0].comoBooleano() ? 1 : 0);
            std::string s = recortar(texto(n, a[0], "ToNumber"), true, true);
            std::string limpio;
            for (char c : s)
                if (c != ',') limpio += c;
            char* fin = nullptr;
            const double v = std::strtod(limpio.c_str(), &fin);
            if (limpio.empty() || fin == nullptr || *fin != '\0')
                fallar(n, "el texto '" + s + "' no es un número");
            return Valor::numero(v);
        }
        fallar(n, "función no disponible: " + f);
    }

    Valor fecha(const Nodo& n, const std::vector<Valor>& a) {
        if (a.size() == 3)
            return Valor::fecha(fechaValida(n, entero(n, a[0], "Date"), entero(n, a[1], "Date"),
                                            entero(n, a[2], "Date")));
        if (a.size() != 1) fallar(n, "Date lleva 1 o 3 argumentos");
        if (a[0].tipo() == T::Fecha || a[0].tipo() == T::FechaHora)
            return Valor::fecha(a[0].comoFecha());
        const std::string& s = texto(n, a[0], "Date");
        if (auto f = Fecha::leer(s)) return Valor::fecha(*f);
        // dd/mm/yyyy, as the forms show dates
        int d, m, y;
        char sobra;
        if (std::sscanf(s.c_str(), "%d/%d/%d%c", &d, &m, &y, &sobra) == 3)
            return Valor::fecha(fechaValida(n, y, m, d));
        fallar(n, "el texto '" + s + "' no es una fecha");
    }

    Valor fechaHora(const Nodo& n, const std::vector<Valor>& a) {
        if (a.size() == 1) {
            if (a[0].tipo() == T::Texto) {
                if (auto f = FechaHora::leer(a[0].comoTexto())) return Valor::fechaHora(*f);
                fallar(n, "el texto '" + a[0].comoTexto() + "' no es una fecha y hora");
            }
            return Valor::fechaHora(a[0].comoFechaHora());
        }
        if (a.size() == 2) return Valor::fechaHora(FechaHora{a[0].comoFecha(), a[1].comoHora()});
        if (a.size() != 3 && a.size() != 6) fallar(n, "DateTime lleva 1, 2, 3 o 6 argumentos");
        FechaHora r;
        r.fecha = fechaValida(n, entero(n, a[0], "DateTime"), entero(n, a[1], "DateTime"),
                              entero(n, a[2], "DateTime"));
        if (a.size() == 6) {
            r.hora = Hora{entero(n, a[3], "DateTime"), entero(n, a[4], "DateTime"),
                          entero(n, a[5], "DateTime")};
            if (r.hora.hora < 0 || r.hora.hora > 23 || r.hora.minuto < 0 || r.hora.minuto > 59 ||
                r.hora.segundo < 0 || r.hora.segundo > 59)
                fallar(n, "la hora " + r.hora.iso() + " no existe");
        }
        return Valor::fechaHora(r);
    }

    Valor resumen(const Nodo& n) {
        RefResumen r;
        static constexpr std::pair<const char*, Resumen> kRes[] = {
            {"Sum", Resumen::Sum},
            {"Count", Resumen::Count},
            {"DistinctCount", Resumen::DistinctCount},
            {"Average", Resumen::Average},
            {"Minimum", Resumen::Minimum},
            {"Maximum", Resumen::Maximum}};
        for (const auto& [nombre, v] : kRes)
            if (n.nombre == nombre) r.funcion = v;
        r.nodo = &n;
        const Nodo& a = *n.hijos[0];
        r.campo =
            a.tipo == TipoNodo::Campo ? RefCampo{a.tabla, a.nombre} : RefCampo{"", "@" + a.nombre};
        if (n.hijos.size() > 1) r.grupo = {n.hijos[1]->tabla, n.hijos[1]->nombre};
        return ctx_.resumen(r);
    }

    const Contexto& ctx_;
};

}  // namespace detail

Valor evaluar(const Nodo& n, const Contexto& ctx) {
    return detail::Evaluador(ctx)(n);
}

Valor evaluar(const Formula& f, const Contexto& ctx) {
    if (f.vacia()) return Valor::booleano(true);
    return evaluar(*f.raiz(), ctx);
}

bool seleccionar(const Nodo& n, const Contexto& ctx) {
    const Valor v = evaluar(n, ctx);
    if (v.esNulo()) return false;
    if (v.tipo() != Valor::Tipo::Booleano)
        throw ErrorFormula(
            n.tramo, "la fórmula de selección debe dar verdadero o falso y dio un valor de tipo " +
                         std::string(Valor::nombreTipo(v.tipo())));
    return v.comoBooleano();
}

bool seleccionar(const Formula& f, const Contexto& ctx) {
    return f.vacia() ? true : seleccionar(*f.raiz(), ctx);
}

}  // namespace paratzorep::renderer::formula
