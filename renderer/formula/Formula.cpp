#include "renderer/formula/Formula.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstring>
#include <functional>

namespace paratzorep::renderer::formula {

namespace {

std::string mensaje(const Tramo& t, const std::string& detalle) {
    return "Error en la fórmula, línea " + std::to_string(t.linea) + ", columna " +
           std::to_string(t.columna) + ": " + detalle;
}

}  // namespace

ErrorFormula::ErrorFormula(const Tramo& donde, std::string detalle, std::string token)
    : std::runtime_error(mensaje(donde, detalle)),
      donde_(donde),
      detalle_(std::move(detalle)),
      token_(std::move(token)) {}

namespace detail {

std::string minusculas(std::string_view s) {
    std::string r(s);
    for (auto& c : r) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return r;
}

struct DefFuncion {
    const char* nombre;  // canonical spelling
    int minArgs;
    int maxArgs;
};

// The functions of the language, with a few common synonyms.
constexpr DefFuncion kFunciones[] = {
    {"Date", 1, 3},      {"DateTime", 1, 6},  {"CurrentDate", 0, 0}, {"CurrentDateTime", 0, 0},
    {"ToText", 1, 3},    {"Trim", 1, 1},      {"TrimLeft", 1, 1},    {"TrimRight", 1, 1},
    {"UpperCase", 1, 1}, {"LowerCase", 1, 1}, {"Left", 2, 2},        {"Right", 2, 2},
    {"Mid", 2, 3},       {"Len", 1, 1},       {"Year", 1, 1},        {"Month", 1, 1},
    {"Day", 1, 1},       {"IsNull", 1, 1},    {"Round", 1, 2},       {"Abs", 1, 1},
    {"ToNumber", 1, 1},  {"Sum", 1, 2},       {"Count", 1, 2},       {"DistinctCount", 1, 2},
    {"Average", 1, 2},   {"Minimum", 1, 2},   {"Maximum", 1, 2},
};

struct Sinonimo {
    const char* alias;
    const char* nombre;
};
constexpr Sinonimo kSinonimos[] = {
    {"ucase", "UpperCase"}, {"lcase", "LowerCase"}, {"length", "Len"},
    {"cstr", "ToText"},     {"ltrim", "TrimLeft"},  {"rtrim", "TrimRight"},
    {"val", "ToNumber"},    {"cdbl", "ToNumber"},   {"today", "CurrentDate"},
};

const DefFuncion* buscarFuncion(std::string_view nombre) {
    std::string n = minusculas(nombre);
    for (const auto& s : kSinonimos)
        if (n == s.alias) n = minusculas(s.nombre);
    for (const auto& f : kFunciones)
        if (n == minusculas(f.nombre)) return &f;
    return nullptr;
}

bool esResumen(std::string_view nombre, Resumen* r = nullptr) {
    static constexpr std::pair<const char*, Resumen> kRes[] = {
        {"Sum", Resumen::Sum},
        {"Count", Resumen::Count},
        {"DistinctCount", Resumen::DistinctCount},
        {"Average", Resumen::Average},
        {"Minimum", Resumen::Minimum},
        {"Maximum", Resumen::Maximum}};
    for (const auto& [n, v] : kRes) {
        if (nombre == n) {
            if (r) *r = v;
            return true;
        }
    }
    return false;
}

enum class Tok { Fin, Numero, Cadena, Ident, Llave, Simbolo };

struct Token {
    Tok tipo = Tok::Fin;
    std::size_t inicio = 0;
    std::size_t fin = 0;
    std::string texto;  // Cadena: the unquoted text; Llave: inside the braces; else as written
    double numero = 0;
};

// Trees deeper than this are refused: evaluation, printing and destruction recurse.
constexpr int kAlturaMaxima = 400;

class Analizador {
  public:
    explicit Analizador(std::string_view fuente) : src_(fuente) { avanzar(); }

    Tramo tramo(std::size_t inicio, std::size_t fin) const {
        // Line and column by counting from the last position asked for (nodes are
        // mostly made left to right), or from the start.
        if (inicio < cache_.inicio) cache_ = Tramo{};
        Tramo t = cache_;
        for (std::size_t i = t.inicio; i < inicio && i < src_.size(); ++i) {
            const auto c = static_cast<unsigned char>(src_[i]);
            if (c == '\n') {
                ++t.linea;
                t.columna = 1;
            } else if ((c & 0xC0) != 0x80) {
                ++t.columna;
            }
        }
        t.inicio = inicio;
        cache_ = t;
        t.fin = fin;
        return t;
    }

    [[noreturn]] void error(std::size_t inicio, std::size_t fin, const std::string& detalle,
                            const std::string& token = {}) const {
        throw ErrorFormula(tramo(inicio, fin), detalle, token);
    }

    std::string describir(const Token& t) const {
        if (t.tipo == Tok::Fin) return "el final de la fórmula";
        std::string s(src_.substr(t.inicio, t.fin - t.inicio));
        if (s.size() > 40) s = s.substr(0, 40) + "...";
        return "'" + s + "'";
    }

    [[noreturn]] void esperado(const std::string& que) const {
        error(tok_.inicio, tok_.fin, "se esperaba " + que + " y se encontró " + describir(tok_),
              std::string(src_.substr(tok_.inicio, tok_.fin - tok_.inicio)));
    }

    // ---- lexer ----
    void saltarBlancos() {
        for (;;) {
            while (pos_ < src_.size() && (std::isspace(static_cast<unsigned char>(src_[pos_])) ||
                                          static_cast<unsigned char>(src_[pos_]) == 0))
                ++pos_;
            if (pos_ + 1 < src_.size() && src_[pos_] == '/' && src_[pos_ + 1] == '/') {
                while (pos_ < src_.size() && src_[pos_] != '\n') ++pos_;
                continue;
            }
            break;
        }
    }

    void avanzar() {
        saltarBlancos();
        tok_ = Token{};
        tok_.inicio = pos_;
        if (pos_ >= src_.size()) {
            tok_.fin = pos_;
            return;
        }
        const char c = src_[pos_];
        if (std::isdigit(static_cast<unsigned char>(c)) ||
            (c == '.' && pos_ + 1 < src_.size() &&
             std::isdigit(static_cast<unsigned char>(src_[pos_ + 1])))) {
            std::size_t p = pos_;
            while (p < src_.size() && std::isdigit(static_cast<unsigned char>(src_[p]))) ++p;
            if (p < src_.size() && src_[p] == '.') {
                ++p;
                while (p < src_.size() && std::isdigit(static_cast<unsigned char>(src_[p]))) ++p;
            }
            tok_.tipo = Tok::Numero;
            tok_.fin = p;
            tok_.texto = std::string(src_.substr(pos_, p - pos_));
            std::string t = tok_.texto;
            if (t.front() == '.') t.insert(t.begin(), '0');
            auto [ptr, ec] = std::from_chars(t.data(), t.data() + t.size(), tok_.numero);
            if (ec != std::errc()) error(pos_, p, "número fuera de rango " + describir(tok_));
            pos_ = p;
            return;
        }
        if (c == '\'' || c == '"') {
            std::size_t p = pos_ + 1;
            std::string s;
            for (;;) {
                if (p >= src_.size())
                    error(pos_, p, "el texto que empieza aquí no tiene comilla de cierre",
                          std::string(1, c));
                if (src_[p] == c) {
                    if (p + 1 < src_.size() && src_[p + 1] == c) {
                        s += c;
                        p += 2;
                        continue;
                    }
                    ++p;
                    break;
                }
                s += src_[p++];
            }
            tok_.tipo = Tok::Cadena;
            tok_.fin = p;
            tok_.texto = std::move(s);
            pos_ = p;
            return;
        }
        if (c == '{') {
            const std::size_t cierre = src_.find('}', pos_);
            const std::size_t salto = src_.find('\n', pos_);
            if (cierre == std::string_view::npos || salto < cierre)
                error(pos_, pos_ + 1, "falta '}' para cerrar la referencia", "{");
            tok_.tipo = Tok::Llave;
            tok_.fin = cierre + 1;
            tok_.texto = std::string(src_.substr(pos_ + 1, cierre - pos_ - 1));
            pos_ = cierre + 1;
            return;
        }
        if (std::isalpha(static_cast<unsigned char>(c)) || c == '_') {
            std::size_t p = pos_;
            while (p < src_.size() &&
                   (std::isalnum(static_cast<unsigned char>(src_[p])) || src_[p] == '_'))
                ++p;
            tok_.tipo = Tok::Ident;
            tok_.fin = p;
            tok_.texto = std::string(src_.substr(pos_, p - pos_));
            pos_ = p;
            return;
        }
        static constexpr const char* kDobles[] = {"<>", "<=", ">="};
        for (const char* d : kDobles) {
            if (src_.substr(pos_, 2) == d) {
                tok_.tipo = Tok::Simbolo;
                tok_.texto = d;
                tok_.fin = pos_ + 2;
                pos_ += 2;
                return;
            }
        }
        if (std::strchr("+-*/&=<>()[],;", c) != nullptr) {
            tok_.tipo = Tok::Simbolo;
            tok_.texto = std::string(1, c);
            tok_.fin = pos_ + 1;
            ++pos_;
            return;
        }
        // An unexpected character: show it whole, even when it is multi-byte.
        std::size_t p = pos_ + 1;
        while (p < src_.size() && (static_cast<unsigned char>(src_[p]) & 0xC0) == 0x80) ++p;
        error(pos_, p, "carácter inesperado '" + std::string(src_.substr(pos_, p - pos_)) + "'",
              std::string(src_.substr(pos_, p - pos_)));
    }

    bool esSimbolo(std::string_view s) const {
        return tok_.tipo == Tok::Simbolo && tok_.texto == s;
    }
    bool esPalabra(std::string_view w) const {
        return tok_.tipo == Tok::Ident && minusculas(tok_.texto) == w;
    }
    void exigirSimbolo(std::string_view s) {
        if (!esSimbolo(s)) esperado("'" + std::string(s) + "'");
        avanzar();
    }

    std::unique_ptr<Nodo> nuevo(TipoNodo t, std::size_t inicio, std::size_t fin) const {
        auto n = std::make_unique<Nodo>();
        n->tipo = t;
        n->tramo = tramo(inicio, fin);
        return n;
    }

    std::unique_ptr<Nodo> binario(std::string op, std::unique_ptr<Nodo> a,
                                  std::unique_ptr<Nodo> b) {
        auto n = nuevo(TipoNodo::Binario, a->tramo.inicio, b->tramo.fin);
        n->tramo = a->tramo;
        n->tramo.fin = b->tramo.fin;
        n->op = std::move(op);
        n->altura = std::max(a->altura, b->altura) + 1;
        if (n->altura > kAlturaMaxima)
            error(n->tramo.inicio, n->tramo.fin, "la fórmula anida demasiados niveles");
        n->hijos.push_back(std::move(a));
        n->hijos.push_back(std::move(b));
        return n;
    }

    // Sets the node's height from its children and refuses trees too deep.
    std::unique_ptr<Nodo> cerrar(std::unique_ptr<Nodo> n) const {
        for (const auto& h : n->hijos) n->altura = std::max(n->altura, h->altura + 1);
        if (n->altura > kAlturaMaxima)
            error(n->tramo.inicio, n->tramo.fin, "la fórmula anida demasiados niveles");
        return n;
    }

    // ---- parser ----
    // Nesting is bounded so that hostile input cannot exhaust the stack.
    struct Profundidad {
        explicit Profundidad(Analizador& a) : a_(a) {
            if (++a_.profundidad_ > 200)
                a_.error(a_.tok_.inicio, a_.tok_.fin, "la fórmula anida demasiados niveles");
        }
        ~Profundidad() { --a_.profundidad_; }
        Analizador& a_;
    };

    std::unique_ptr<Nodo> expresion() {
        Profundidad guardia(*this);
        auto a = conjuncion();
        while (esPalabra("or")) {
            avanzar();
            a = binario("or", std::move(a), conjuncion());
        }
        return a;
    }

    std::unique_ptr<Nodo> conjuncion() {
        auto a = negacion();
        while (esPalabra("and")) {
            avanzar();
            a = binario("and", std::move(a), negacion());
        }
        return a;
    }

    std::unique_ptr<Nodo> negacion() {
        if (esPalabra("not")) {
            Profundidad guardia(*this);
            const std::size_t ini = tok_.inicio;
            avanzar();
            auto h = negacion();
            auto n = nuevo(TipoNodo::Unario, ini, h->tramo.fin);
            n->op = "not";
            n->hijos.push_back(std::move(h));
            return cerrar(std::move(n));
        }
        return comparacion();
    }

    std::unique_ptr<Nodo> comparacion() {
        auto a = concatenacion();
        static constexpr const char* kOps[] = {"=", "<>", "<", ">", "<=", ">="};
        for (const char* op : kOps) {
            if (esSimbolo(op)) {
                avanzar();
                return binario(op, std::move(a), concatenacion());
            }
        }
        if (esPalabra("in")) {
            avanzar();
            return binario("in", std::move(a), concatenacion());
        }
        return a;
    }

    std::unique_ptr<Nodo> concatenacion() {
        auto a = suma();
        while (esSimbolo("&")) {
            avanzar();
            a = binario("&", std::move(a), suma());
        }
        return a;
    }

    std::unique_ptr<Nodo> suma() {
        auto a = producto();
        while (esSimbolo("+") || esSimbolo("-")) {
            std::string op = tok_.texto;
            avanzar();
            a = binario(op, std::move(a), producto());
        }
        return a;
    }

    std::unique_ptr<Nodo> producto() {
        auto a = unario();
        while (esSimbolo("*") || esSimbolo("/")) {
            std::string op = tok_.texto;
            avanzar();
            a = binario(op, std::move(a), unario());
        }
        return a;
    }

    std::unique_ptr<Nodo> unario() {
        if (esSimbolo("-") || esSimbolo("+")) {
            Profundidad guardia(*this);
            const std::size_t ini = tok_.inicio;
            const bool menos = esSimbolo("-");
            avanzar();
            auto h = unario();
            if (!menos) return h;
            auto n = nuevo(TipoNodo::Unario, ini, h->tramo.fin);
            n->op = "-";
            n->hijos.push_back(std::move(h));
            return cerrar(std::move(n));
        }
        return primario();
    }

    std::unique_ptr<Nodo> referencia(const Token& t) {
        std::string_view dentro = t.texto;
        auto recortar = [](std::string_view s) {
            while (!s.empty() && std::isspace(static_cast<unsigned char>(s.front())))
                s.remove_prefix(1);
            while (!s.empty() && std::isspace(static_cast<unsigned char>(s.back())))
                s.remove_suffix(1);
            return s;
        };
        dentro = recortar(dentro);
        const std::string escrito(src_.substr(t.inicio, t.fin - t.inicio));
        if (!dentro.empty() && (dentro.front() == '@' || dentro.front() == '?')) {
            auto n = nuevo(dentro.front() == '@' ? TipoNodo::RefFormula : TipoNodo::Parametro,
                           t.inicio, t.fin);
            n->nombre = std::string(recortar(dentro.substr(1)));
            if (n->nombre.empty())
                error(t.inicio, t.fin, "falta el nombre en la referencia " + escrito, escrito);
            return n;
        }
        const std::size_t punto = dentro.rfind('.');
        if (punto == std::string_view::npos || recortar(dentro.substr(0, punto)).empty() ||
            recortar(dentro.substr(punto + 1)).empty())
            error(t.inicio, t.fin,
                  "se esperaba un campo {tabla.campo}, {@fórmula} o {?parámetro} y se encontró " +
                      escrito,
                  escrito);
        auto n = nuevo(TipoNodo::Campo, t.inicio, t.fin);
        n->tabla = std::string(recortar(dentro.substr(0, punto)));
        n->nombre = std::string(recortar(dentro.substr(punto + 1)));
        return n;
    }

    std::unique_ptr<Nodo> primario() {
        const Token t = tok_;
        switch (t.tipo) {
            case Tok::Numero: {
                avanzar();
                auto n = nuevo(TipoNodo::Literal, t.inicio, t.fin);
                n->valor = Valor::numero(t.numero);
                return n;
            }
            case Tok::Cadena: {
                avanzar();
                auto n = nuevo(TipoNodo::Literal, t.inicio, t.fin);
                n->valor = Valor::texto(t.texto);
                return n;
            }
            case Tok::Llave:
                avanzar();
                return referencia(t);
            case Tok::Simbolo:
                if (t.texto == "(") {
                    avanzar();
                    auto e = expresion();
                    exigirSimbolo(")");
                    return e;
                }
                if (t.texto == "[") {
                    avanzar();
                    auto n = nuevo(TipoNodo::Lista, t.inicio, t.fin);
                    if (!esSimbolo("]")) {
                        n->hijos.push_back(expresion());
                        while (esSimbolo(",")) {
                            avanzar();
                            n->hijos.push_back(expresion());
                        }
                    }
                    n->tramo.fin = tok_.fin;
                    exigirSimbolo("]");
                    return cerrar(std::move(n));
                }
                esperado("un valor");
            case Tok::Ident:
                return identificador();
            case Tok::Fin:
                esperado("un valor");
        }
        esperado("un valor");
    }

    std::unique_ptr<Nodo> identificador() {
        const Token t = tok_;
        const std::string w = minusculas(t.texto);
        if (w == "true" || w == "false") {
            avanzar();
            auto n = nuevo(TipoNodo::Literal, t.inicio, t.fin);
            n->valor = Valor::booleano(w == "true");
            return n;
        }
        if (w == "if") {
            Profundidad guardia(*this);
            avanzar();
            auto n = nuevo(TipoNodo::Si, t.inicio, t.fin);
            n->hijos.push_back(expresion());
            if (!esPalabra("then")) esperado("'then'");
            avanzar();
            n->hijos.push_back(expresion());
            if (esPalabra("else")) {
                avanzar();
                n->hijos.push_back(expresion());
            }
            n->tramo.fin = n->hijos.back()->tramo.fin;
            return cerrar(std::move(n));
        }
        static constexpr const char* kReservadas[] = {"and", "or", "not", "in", "then", "else"};
        for (const char* r : kReservadas)
            if (w == r) esperado("un valor");
        const DefFuncion* f = buscarFuncion(t.texto);
        if (f == nullptr)
            error(t.inicio, t.fin, "función o nombre desconocido '" + t.texto + "'", t.texto);
        avanzar();
        auto n = nuevo(TipoNodo::Funcion, t.inicio, t.fin);
        n->nombre = f->nombre;
        if (esSimbolo("(")) {
            Profundidad guardia(*this);
            avanzar();
            if (!esSimbolo(")")) {
                n->hijos.push_back(expresion());
                while (esSimbolo(",")) {
                    avanzar();
                    n->hijos.push_back(expresion());
                }
            }
            n->tramo.fin = tok_.fin;
            exigirSimbolo(")");
        }
        const int nargs = static_cast<int>(n->hijos.size());
        if (nargs < f->minArgs || nargs > f->maxArgs) {
            std::string cuantos = f->minArgs == f->maxArgs ? std::to_string(f->minArgs)
                                                           : "de " + std::to_string(f->minArgs) +
                                                                 " a " + std::to_string(f->maxArgs);
            error(t.inicio, t.fin,
                  "la función " + std::string(f->nombre) + " lleva " + cuantos +
                      " argumentos y recibió " + std::to_string(nargs),
                  t.texto);
        }
        if (esResumen(n->nombre)) {
            const Nodo& a = *n->hijos[0];
            if (a.tipo != TipoNodo::Campo && a.tipo != TipoNodo::RefFormula)
                error(a.tramo.inicio, a.tramo.fin,
                      "el resumen " + n->nombre + " se calcula sobre un campo o una fórmula",
                      std::string(src_.substr(a.tramo.inicio, a.tramo.fin - a.tramo.inicio)));
            if (nargs == 2 && n->hijos[1]->tipo != TipoNodo::Campo)
                error(n->hijos[1]->tramo.inicio, n->hijos[1]->tramo.fin,
                      "el grupo de " + n->nombre + " debe ser un campo {tabla.campo}");
        }
        return cerrar(std::move(n));
    }

    std::unique_ptr<Nodo> formulaCompleta() {
        if (tok_.tipo == Tok::Fin) return nullptr;
        auto e = expresion();
        while (esSimbolo(";")) avanzar();  // a closing semicolon is allowed
        if (tok_.tipo != Tok::Fin) esperado("el final de la fórmula");
        return e;
    }

    const Token& token() const { return tok_; }
    std::string_view fuente() const { return src_; }

  private:
    std::string_view src_;
    std::size_t pos_ = 0;
    Token tok_;
    int profundidad_ = 0;
    mutable Tramo cache_;
};

void recorrer(const Nodo& n, const std::function<void(const Nodo&)>& f) {
    f(n);
    for (const auto& h : n.hijos) recorrer(*h, f);
}

}  // namespace detail

Formula::Formula(std::string fuente, std::unique_ptr<Nodo> raiz)
    : fuente_(std::move(fuente)), raiz_(std::move(raiz)) {}

std::vector<RefCampo> Formula::campos() const {
    std::vector<RefCampo> r;
    if (!raiz_) return r;
    detail::recorrer(*raiz_, [&](const Nodo& n) {
        if (n.tipo != TipoNodo::Campo) return;
        RefCampo c{n.tabla, n.nombre};
        if (std::find(r.begin(), r.end(), c) == r.end()) r.push_back(std::move(c));
    });
    return r;
}

std::vector<std::string> Formula::formulas() const {
    std::vector<std::string> r;
    if (!raiz_) return r;
    detail::recorrer(*raiz_, [&](const Nodo& n) {
        if (n.tipo == TipoNodo::RefFormula && std::find(r.begin(), r.end(), n.nombre) == r.end())
            r.push_back(n.nombre);
    });
    return r;
}

std::vector<std::string> Formula::parametros() const {
    std::vector<std::string> r;
    if (!raiz_) return r;
    detail::recorrer(*raiz_, [&](const Nodo& n) {
        if (n.tipo == TipoNodo::Parametro && std::find(r.begin(), r.end(), n.nombre) == r.end())
            r.push_back(n.nombre);
    });
    return r;
}

std::vector<RefResumen> Formula::resumenes() const {
    std::vector<RefResumen> r;
    if (!raiz_) return r;
    detail::recorrer(*raiz_, [&](const Nodo& n) {
        Resumen tipo;
        if (n.tipo != TipoNodo::Funcion || !detail::esResumen(n.nombre, &tipo)) return;
        RefResumen x;
        x.funcion = tipo;
        x.nodo = &n;
        const Nodo& a = *n.hijos[0];
        if (a.tipo == TipoNodo::Campo) {
            x.campo = {a.tabla, a.nombre};
        } else {
            x.campo = {"", "@" + a.nombre};
        }
        if (n.hijos.size() > 1) x.grupo = {n.hijos[1]->tabla, n.hijos[1]->nombre};
        r.push_back(std::move(x));
    });
    return r;
}

Formula analizar(std::string_view fuente) {
    detail::Analizador a(fuente);
    auto raiz = a.formulaCompleta();
    return Formula(std::string(fuente), std::move(raiz));
}

CampoOrden analizarCampoOrden(std::string_view fuente) {
    detail::Analizador a(fuente);
    CampoOrden c;
    if (a.esSimbolo("+") || a.esSimbolo("-")) {
        c.descendente = a.esSimbolo("-");
        a.avanzar();
    }
    if (a.token().tipo != detail::Tok::Llave) a.esperado("un campo {tabla.campo}");
    const detail::Token t = a.token();
    a.avanzar();
    auto n = a.referencia(t);
    if (n->tipo != TipoNodo::Campo)
        a.error(t.inicio, t.fin, "un campo de orden debe ser {tabla.campo}",
                std::string(fuente.substr(t.inicio, t.fin - t.inicio)));
    if (a.token().tipo != detail::Tok::Fin) a.esperado("el final del campo de orden");
    c.campo = {n->tabla, n->nombre};
    return c;
}

Asignacion analizarAsignacion(std::string_view fuente) {
    detail::Analizador a(fuente);
    if (a.token().tipo != detail::Tok::Ident) a.esperado("el nombre de una fórmula");
    Asignacion r;
    r.nombre = a.token().texto;
    a.avanzar();
    a.exigirSimbolo("=");
    if (a.token().tipo == detail::Tok::Fin) a.esperado("un valor");
    auto raiz = a.formulaCompleta();
    r.formula = Formula(std::string(fuente), std::move(raiz));
    return r;
}

namespace {

int precedencia(const Nodo& n) {
    if (n.tipo == TipoNodo::Binario) {
        const std::string& o = n.op;
        if (o == "or") return 1;
        if (o == "and") return 2;
        if (o == "=" || o == "<>" || o == "<" || o == ">" || o == "<=" || o == ">=" || o == "in")
            return 4;
        if (o == "&") return 5;
        if (o == "+" || o == "-") return 6;
        return 7;
    }
    if (n.tipo == TipoNodo::Unario) return n.op == "not" ? 3 : 8;
    if (n.tipo == TipoNodo::Si) return 0;
    return 9;
}

std::string citar(const std::string& s) {
    std::string r = "'";
    for (char c : s) {
        if (c == '\'') r += '\'';
        r += c;
    }
    return r + "'";
}

std::string numeroTexto(double v) {
    // Literals are never negative and carry no exponent in the language: the
    // shortest fixed notation that reads back as the same number.
    char buf[400];
    auto [p, ec] = std::to_chars(buf, buf + sizeof buf, v, std::chars_format::fixed);
    return ec == std::errc() ? std::string(buf, p) : "0";
}

}  // namespace

std::string aTexto(const Nodo& n) {
    auto hijo = [&](const Nodo& h, int minimo) {
        std::string t = aTexto(h);
        return precedencia(h) < minimo ? "(" + t + ")" : t;
    };
    switch (n.tipo) {
        case TipoNodo::Literal:
            switch (n.valor.tipo()) {
                case Valor::Tipo::Numero:
                    return numeroTexto(n.valor.comoNumero());
                case Valor::Tipo::Texto:
                    return citar(n.valor.comoTexto());
                case Valor::Tipo::Booleano:
                    return n.valor.comoBooleano() ? "True" : "False";
                default:
                    return citar(n.valor.aTexto());
            }
        case TipoNodo::Campo:
            return "{" + n.tabla + "." + n.nombre + "}";
        case TipoNodo::RefFormula:
            return "{@" + n.nombre + "}";
        case TipoNodo::Parametro:
            return "{?" + n.nombre + "}";
        case TipoNodo::Unario:
            return n.op == "not" ? "not " + hijo(*n.hijos[0], 3) : "-" + hijo(*n.hijos[0], 9);
        case TipoNodo::Binario: {
            const int p = precedencia(n);
            // Left-associative: the right operand needs brackets at equal level;
            // comparisons do not chain, so both sides need them there.
            const int izq = p == 4 ? p + 1 : p;
            return hijo(*n.hijos[0], izq) + " " + n.op + " " + hijo(*n.hijos[1], p + 1);
        }
        case TipoNodo::Lista: {
            std::string s = "[";
            for (std::size_t i = 0; i < n.hijos.size(); ++i)
                s += (i ? ", " : "") + hijo(*n.hijos[i], 1);
            return s + "]";
        }
        case TipoNodo::Si: {
            std::string s = "(if " + hijo(*n.hijos[0], 1) + " then " + hijo(*n.hijos[1], 1);
            if (n.hijos.size() > 2) s += " else " + hijo(*n.hijos[2], 1);
            return s + ")";
        }
        case TipoNodo::Funcion: {
            std::string s = n.nombre + "(";
            for (std::size_t i = 0; i < n.hijos.size(); ++i)
                s += (i ? ", " : "") + hijo(*n.hijos[i], 1);
            return s + ")";
        }
    }
    return {};
}

}  // namespace paratzorep::renderer::formula
