#include "renderer/formula/Traductor.h"

#include <charconv>
#include <cmath>

#include "renderer/formula/Evaluador.h"

namespace paratzorep::renderer::formula {

namespace detail {

bool utf8Valido(std::string_view s) {
    for (std::size_t i = 0; i < s.size();) {
        const auto b = static_cast<unsigned char>(s[i]);
        int n = b < 0x80                   ? 1
                : (b >= 0xC2 && b <= 0xDF) ? 2
                : (b >= 0xE0 && b <= 0xEF) ? 3
                : (b >= 0xF0 && b <= 0xF4) ? 4
                                           : 0;
        if (n == 0 || i + n > s.size()) return false;
        char32_t c = n == 1 ? b : (b & (0xFF >> (n + 1)));
        for (int k = 1; k < n; ++k) {
            const auto x = static_cast<unsigned char>(s[i + k]);
            if ((x & 0xC0) != 0x80) return false;
            c = (c << 6) | (x & 0x3F);
        }
        static constexpr char32_t kMin[] = {0, 0, 0x80, 0x800, 0x10000};
        if (c < kMin[n] || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF) || c == 0) return false;
        i += n;
    }
    return true;
}

bool esComparacion(const std::string& op) {
    return op == "=" || op == "<>" || op == "<" || op == ">" || op == "<=" || op == ">=";
}

// A context for constant expressions (Date(2024,3,5)): no fields at all.
class SinFilas : public Contexto {
  public:
    Valor campo(std::string_view, std::string_view) const override {
        throw ErrorValor("no hay filas");
    }
};

bool fechaConstante(const Nodo& n) {
    if (n.tipo != TipoNodo::Funcion || (n.nombre != "Date" && n.nombre != "DateTime")) return false;
    if (n.hijos.size() != 3 && n.hijos.size() != 6) return false;
    for (const auto& h : n.hijos)
        if (h->tipo != TipoNodo::Literal || h->valor.tipo() != Valor::Tipo::Numero) return false;
    return true;
}

enum class Clase { Ninguna, Numero, Texto, Fecha, Campo };

// What kind of scalar a node is, when it can go to SQL.
Clase clase(const Nodo& n) {
    switch (n.tipo) {
        case TipoNodo::Campo:
            return Clase::Campo;
        case TipoNodo::Literal:
            if (n.valor.tipo() == Valor::Tipo::Numero) return Clase::Numero;
            if (n.valor.tipo() == Valor::Tipo::Texto)
                return utf8Valido(n.valor.comoTexto()) ? Clase::Texto : Clase::Ninguna;
            return Clase::Ninguna;
        case TipoNodo::Unario:
            if (n.op == "-" && n.hijos[0]->tipo == TipoNodo::Literal &&
                n.hijos[0]->valor.tipo() == Valor::Tipo::Numero)
                return Clase::Numero;
            return Clase::Ninguna;
        case TipoNodo::Funcion:
            return fechaConstante(n) ? Clase::Fecha : Clase::Ninguna;
        default:
            return Clase::Ninguna;
    }
}

// Two scalars the evaluator can compare without a kind error (a field may be anything).
bool comparables(Clase a, Clase b) {
    if (a == Clase::Ninguna || b == Clase::Ninguna) return false;
    return a == Clase::Campo || b == Clase::Campo || a == b;
}

std::string escalar(const Nodo& n, Dialecto d, bool colacion) {
    switch (n.tipo) {
        case TipoNodo::Campo:
            return columnaSql({n.tabla, n.nombre}, d);
        case TipoNodo::Literal:
            if (n.valor.tipo() == Valor::Tipo::Numero) return numeroSql(n.valor.comoNumero());
            if (colacion) {
                if (d == Dialecto::MariaDB)
                    return "_utf8mb4" + textoSql(n.valor.comoTexto(), d) +
                           " COLLATE utf8mb4_general_ci";
                return textoSql(n.valor.comoTexto(), d) + " COLLATE tz_general_ci";
            }
            return textoSql(n.valor.comoTexto(), d);
        case TipoNodo::Unario:
            return "-" + numeroSql(n.hijos[0]->valor.comoNumero());
        case TipoNodo::Funcion: {
            SinFilas sin;
            const Valor v = evaluar(n, sin);  // throws a positioned error for a bad date
            if (v.tipo() == Valor::Tipo::Fecha) return fechaSql(v.comoFecha(), d);
            const FechaHora fh = v.comoFechaHora();
            if (d == Dialecto::MariaDB) return "TIMESTAMP'" + fh.iso() + "'";
            return "'" + fh.iso() + "'";
        }
        default:
            break;
    }
    throw ErrorFormula(n.tramo, "esta parte de la fórmula no se puede enviar al servidor");
}

bool condicionTraducible(const Nodo& n) {
    switch (n.tipo) {
        case TipoNodo::Literal:
            return n.valor.tipo() == Valor::Tipo::Booleano;
        case TipoNodo::Unario:
            return n.op == "not" && condicionTraducible(*n.hijos[0]);
        case TipoNodo::Binario: {
            const Nodo& a = *n.hijos[0];
            const Nodo& b = *n.hijos[1];
            if (n.op == "and" || n.op == "or")
                return condicionTraducible(a) && condicionTraducible(b);
            if (esComparacion(n.op)) return comparables(clase(a), clase(b));
            if (n.op == "in") {
                if (b.tipo == TipoNodo::Lista) {
                    if (b.hijos.empty() || clase(a) == Clase::Ninguna) return false;
                    for (const auto& h : b.hijos)
                        if (!comparables(clase(a), clase(*h))) return false;
                    return true;
                }
                const Clase ca = clase(a), cb = clase(b);
                return (ca == Clase::Texto || ca == Clase::Campo) &&
                       (cb == Clase::Texto || cb == Clase::Campo);
            }
            return false;
        }
        default:
            return false;
    }
}

std::string comparacion(const std::string& op, const Nodo& a, const Nodo& b, Dialecto d) {
    // The collation goes on a text literal's side, so that a column's index stays usable.
    const bool ta = clase(a) == Clase::Texto, tb = clase(b) == Clase::Texto;
    return escalar(a, d, ta) + " " + op + " " + escalar(b, d, tb && !ta);
}

std::string condicion(const Nodo& n, Dialecto d) {
    switch (n.tipo) {
        case TipoNodo::Literal:
            if (d == Dialecto::MariaDB) return n.valor.comoBooleano() ? "TRUE" : "FALSE";
            return n.valor.comoBooleano() ? "1" : "0";
        case TipoNodo::Unario:
            return "NOT (" + condicion(*n.hijos[0], d) + ")";
        case TipoNodo::Binario: {
            const Nodo& a = *n.hijos[0];
            const Nodo& b = *n.hijos[1];
            if (n.op == "and") return "(" + condicion(a, d) + " AND " + condicion(b, d) + ")";
            if (n.op == "or") return "(" + condicion(a, d) + " OR " + condicion(b, d) + ")";
            if (esComparacion(n.op)) return comparacion(n.op, a, b, d);
            if (n.op == "in" && b.tipo == TipoNodo::Lista) {
                std::string s = "(";
                for (std::size_t i = 0; i < b.hijos.size(); ++i)
                    s += (i ? " OR " : "") + comparacion("=", a, *b.hijos[i], d);
                return s + ")";
            }
            if (n.op == "in") {
                const bool ta = clase(a) == Clase::Texto, tb = clase(b) == Clase::Texto;
                if (d == Dialecto::MariaDB)
                    return "LOCATE(" + escalar(a, d, ta) + ", " + escalar(b, d, tb && !ta) +
                           ") > 0";
                return "tz_locate(" + escalar(a, d, false) + ", " + escalar(b, d, false) + ") > 0";
            }
            break;
        }
        default:
            break;
    }
    throw ErrorFormula(n.tramo, "esta parte de la fórmula no se puede enviar al servidor");
}

void partes(const Nodo& n, std::vector<const Nodo*>& out) {
    if (n.tipo == TipoNodo::Binario && n.op == "and") {
        partes(*n.hijos[0], out);
        partes(*n.hijos[1], out);
    } else {
        out.push_back(&n);
    }
}

}  // namespace detail

bool traducible(const Nodo& n) {
    return detail::condicionTraducible(n);
}

std::string traducirExpresion(const Nodo& n, Dialecto d) {
    if (!traducible(n))
        throw ErrorFormula(n.tramo, "esta parte de la fórmula no se puede enviar al servidor");
    return detail::condicion(n, d);
}

Traduccion traducirSeleccion(const Formula& f, Dialecto d) {
    Traduccion t;
    if (f.vacia()) return t;
    std::vector<const Nodo*> ps;
    detail::partes(*f.raiz(), ps);
    for (const Nodo* p : ps) {
        if (!traducible(*p)) {
            t.resto.push_back(p);
            continue;
        }
        std::string s = detail::condicion(*p, d);
        if (s.size() > 2 && s.front() == '(' && s.back() == ')' && ps.size() == 1)
            s = s.substr(1, s.size() - 2);
        t.sql += (t.sql.empty() ? "" : " AND ") + s;
    }
    return t;
}

std::string identificadorSql(std::string_view nombre, Dialecto d) {
    const char q = d == Dialecto::MariaDB ? '`' : '"';
    std::string r(1, q);
    for (char c : nombre) {
        if (c == q) r += q;
        r += c;
    }
    return r + q;
}

std::string columnaSql(const RefCampo& c, Dialecto d) {
    return identificadorSql(c.tabla, d) + "." + identificadorSql(c.campo, d);
}

std::string textoSql(std::string_view s, Dialecto d) {
    std::string r = "'";
    for (char c : s) {
        if (c == '\'') {
            r += "''";
        } else if (d == Dialecto::MariaDB && c == '\\') {
            r += "\\\\";
        } else if (d == Dialecto::MariaDB && c == '\0') {
            r += "\\0";
        } else {
            r += c;
        }
    }
    return r + "'";
}

std::string numeroSql(double v) {
    if (!std::isfinite(v)) return "NULL";
    if (v == std::trunc(v) && std::fabs(v) < 1e15) {
        char buf[32];
        std::snprintf(buf, sizeof buf, "%.0f", v);
        return std::string(buf) == "-0" ? "0" : buf;
    }
    char buf[64];
    auto [p, ec] = std::to_chars(buf, buf + sizeof buf, v);
    return std::string(buf, p);
}

std::string fechaSql(const Fecha& f, Dialecto d) {
    return d == Dialecto::MariaDB ? "DATE'" + f.iso() + "'" : "'" + f.iso() + "'";
}

std::string ordenSql(const std::vector<CampoOrden>& campos, Dialecto d) {
    std::string s;
    for (const auto& c : campos) {
        if (!s.empty()) s += ", ";
        s += columnaSql(c.campo, d) + (c.descendente ? " DESC" : " ASC");
    }
    return s;
}

}  // namespace paratzorep::renderer::formula
