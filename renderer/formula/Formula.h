// The report formula language: selection formulas, named formulas and sort fields.
//
//   literals     'text' "text" (a doubled quote inside is one quote), 12, 0.5,
//                True, False
//   references   {tabla.campo}  {@formula}  {?parametro}
//   operators    unary -, * /, + -, &, = <> < > <= >=, in, not, and, or
//                (keywords and function names in any letter case)
//   in           'text' in {t.f}   substring test;  x in [a, b, c]   list test
//   conditional  if c then a else b   (else optional: a null result)
//   functions    Date(y,m,d) DateTime(y,m,d[,h,n,s]) CurrentDate ToText Trim
//                UpperCase LowerCase Left Right Mid Len Year Month Day IsNull
//                Round Abs and the group summaries Sum Count DistinctCount
//                Average Minimum Maximum (field[, group field])
//   comments     // to the end of the line
//
// Nulls: an operation on a null gives null; comparisons with null are unknown;
// not/and/or follow three-valued logic as in SQL; a selection formula keeps a
// row only when it gives True. That is what the pushed-down SQL does too.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "renderer/Valor.h"

namespace paratzorep::renderer::formula {

// Where a node sits in its source text: byte offsets and the 1-based line and
// column (counted in characters) of its first character.
struct Tramo {
    std::size_t inicio = 0;
    std::size_t fin = 0;
    int linea = 1;
    int columna = 1;
};

// A formula that cannot be read or evaluated. what() is the full Spanish message,
// e.g. "Error en la fórmula, línea 1, columna 14: se esperaba ')' y se encontró
// 'and'".
class ErrorFormula : public std::runtime_error {
  public:
    ErrorFormula(const Tramo& donde, std::string detalle, std::string token = {});
    const Tramo& donde() const { return donde_; }
    int linea() const { return donde_.linea; }
    int columna() const { return donde_.columna; }
    const std::string& detalle() const { return detalle_; }  // the message after the position
    const std::string& token() const { return token_; }      // the offending text, if any

  private:
    Tramo donde_;
    std::string detalle_;
    std::string token_;
};

enum class TipoNodo {
    Literal,     // valor
    Campo,       // tabla, nombre
    RefFormula,  // nombre
    Parametro,   // nombre
    Unario,      // op ("-", "not"), hijos[0]
    Binario,     // op ("+","-","*","/","&","=","<>","<",">","<=",">=","in","and","or"), hijos[0..1]
    Lista,       // [a, b, ...]: hijos
    Si,          // if hijos[0] then hijos[1] else hijos[2] (hijos.size()==2 without else)
    Funcion,     // nombre (canonical spelling, e.g. "ToText"), hijos = arguments
};

// Group summaries, evaluated by the context.
enum class Resumen { Sum, Count, DistinctCount, Average, Minimum, Maximum };

struct Nodo {
    TipoNodo tipo = TipoNodo::Literal;
    Tramo tramo;
    Valor valor;         // Literal
    std::string tabla;   // Campo
    std::string nombre;  // Campo: field; RefFormula/Parametro: name; Funcion: function
    std::string op;      // Unario/Binario, lower-case
    int altura = 1;      // levels of the subtree (bounded by the parser)
    std::vector<std::unique_ptr<Nodo>> hijos;
};

// A reference to a database field, as written in a formula.
struct RefCampo {
    std::string tabla;
    std::string campo;
    bool operator==(const RefCampo&) const = default;
};

// A group summary used by a formula: function, summarised field and, when given,
// the field of the group it is taken over (empty tabla/campo: the whole report).
struct RefResumen {
    Resumen funcion = Resumen::Sum;
    const Nodo* nodo = nullptr;  // the call in the formula's tree
    RefCampo campo;
    RefCampo grupo;
};

// A parsed formula: its source text and its tree.
class Formula {
  public:
    Formula() = default;
    Formula(std::string fuente, std::unique_ptr<Nodo> raiz);

    const std::string& fuente() const { return fuente_; }
    // Null for an empty (blank) formula: a selection that keeps every row.
    const Nodo* raiz() const { return raiz_.get(); }
    bool vacia() const { return !raiz_; }

    // Every field referenced, in order of first appearance, without repeats.
    std::vector<RefCampo> campos() const;
    // Every named formula and parameter referenced.
    std::vector<std::string> formulas() const;
    std::vector<std::string> parametros() const;
    // Every group summary, in order of appearance.
    std::vector<RefResumen> resumenes() const;

  private:
    std::string fuente_;
    std::unique_ptr<Nodo> raiz_;
};

// A sort field "+{t.f}" (ascending) or "-{t.f}" (descending); a bare "{t.f}" is
// ascending.
struct CampoOrden {
    RefCampo campo;
    bool descendente = false;
};

// A formula assignment of a report request: "NOMBRE=expresión", e.g.
// "ENCABEZADO='Reporte al día: 05/mar/2024'".
struct Asignacion {
    std::string nombre;
    Formula formula;
};

// Parses a formula. A blank text gives an empty formula. Throws ErrorFormula.
Formula analizar(std::string_view fuente);
// Parses a sort field. Throws ErrorFormula.
CampoOrden analizarCampoOrden(std::string_view fuente);
// Parses a request assignment. Throws ErrorFormula.
Asignacion analizarAsignacion(std::string_view fuente);

// Writes a node back as formula text (canonical spelling, fully parenthesised
// where needed); parsing the result gives the same tree.
std::string aTexto(const Nodo& n);

}  // namespace paratzorep::renderer::formula
