// libFuzzer target for the formula language: parsing, printing back, pushdown and
// evaluation must either succeed or throw the language's own errors; never crash,
// hang or leak. Printing a parsed formula and parsing it again must give the same
// text.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "renderer/formula/Evaluador.h"
#include "renderer/formula/Traductor.h"

namespace {

using namespace paratzorep::renderer;
using namespace paratzorep::renderer::formula;

// Every field has a value chosen by its name, so that all kinds meet.
class ContextoFuzz : public Contexto {
public:
    Valor campo(std::string_view t, std::string_view c) const override {
        const std::size_t h = std::hash<std::string_view>{}(t) ^ std::hash<std::string_view>{}(c);
        switch (h % 7) {
            case 0: return Valor();
            case 1: return Valor::numero(static_cast<double>(h % 1000) / 7.0);
            case 2: return Valor::texto(std::string(c));
            case 3: return Valor::fecha({2024, 3, static_cast<int>(h % 28) + 1});
            case 4: return Valor::fecha({});
            case 5: return Valor::fechaHora({{2024, 2, 29}, {23, 59, 59}});
            default: return Valor::booleano(h % 2 == 0);
        }
    }
    Valor formula(std::string_view n) const override { return Valor::texto(std::string(n)); }
    Valor parametro(std::string_view) const override { return Valor::texto("ANA"); }
    Valor resumen(const RefResumen&) const override { return Valor::numero(1); }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view src(reinterpret_cast<const char*>(data), size);
    try {
        const Formula f = analizar(src);
        (void)f.campos();
        (void)f.resumenes();
        if (!f.vacia()) {
            const std::string t = aTexto(*f.raiz());
            const Formula g = analizar(t);
            if (g.vacia() || aTexto(*g.raiz()) != t) std::abort();  // printing is not faithful
        }
        for (auto d : {Dialecto::MariaDB, Dialecto::SQLite}) {
            try {
                (void)traducirSeleccion(f, d);
            } catch (const ErrorFormula&) {
            }
        }
        ContextoFuzz ctx;
        try {
            (void)evaluar(f, ctx);
            (void)seleccionar(f, ctx);
        } catch (const ErrorFormula&) {
        }
    } catch (const ErrorFormula&) {
    }
    try {
        (void)analizarCampoOrden(src);
    } catch (const ErrorFormula&) {
    }
    try {
        (void)analizarAsignacion(src);
    } catch (const ErrorFormula&) {
    }
    const std::size_t mitad = size / 2;
    (void)compararTextos(src.substr(0, mitad), src.substr(mitad));
    (void)contieneTexto(src.substr(0, mitad), src.substr(mitad));
    return 0;
}
