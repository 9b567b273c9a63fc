// Evaluation of formulas against the row being rendered.
#pragma once

#include <string_view>

#include "renderer/Valor.h"
#include "renderer/formula/Formula.h"

namespace paratzorep::renderer::formula {

// What a formula can see while it is evaluated. The layout supplies one: the
// current row's fields, the template's named formulas (with the request's
// assignments), the parameters and the group summaries it accumulates.
class Contexto {
  public:
    virtual ~Contexto() = default;

    // The value of {tabla.campo} in the current row. Names compare without regard
    // to letter case. Throws ErrorValor (or returns null) for an unknown field.
    virtual Valor campo(std::string_view tabla, std::string_view campo) const = 0;
    // The value of {@nombre}. Default: throws ErrorValor "fórmula desconocida".
    virtual Valor formula(std::string_view nombre) const;
    // The value of {?nombre} (e.g. UsuarioImpresion). Default: throws ErrorValor.
    virtual Valor parametro(std::string_view nombre) const;
    // A group summary at the current position of the report. Default: throws.
    virtual Valor resumen(const RefResumen& r) const;
    // CurrentDate. Default: today's local date.
    virtual Fecha fechaActual() const;
};

// Evaluates a node or a whole formula (an empty formula gives True). Errors of
// kind (a text where a number is wanted ...) throw ErrorFormula positioned at the
// node.
Valor evaluar(const Nodo& n, const Contexto& ctx);
Valor evaluar(const Formula& f, const Contexto& ctx);

// A selection formula's verdict for the current row: true only when the formula
// gives True (False and null drop the row); an empty formula keeps every row.
// Throws ErrorFormula when the result is not a boolean.
bool seleccionar(const Formula& f, const Contexto& ctx);
bool seleccionar(const Nodo& n, const Contexto& ctx);

}  // namespace paratzorep::renderer::formula
