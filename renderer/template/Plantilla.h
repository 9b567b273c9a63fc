// The report template: the model of one .rpt file (our own versioned XML format, described
// in renderer/README.md) and its reader. Positions and sizes are kept in points, whatever
// unit the file uses; every other default is filled in here, so later stages never guess.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "renderer/layout/Pagina.h"

namespace paratzorep::renderer {

// The template format versions this reader understands.
inline constexpr int kVersionPlantilla = 1;

// A template that cannot be read: the file, the place (line and column, 0 when unknown)
// and a Spanish message.
class ErrorPlantilla : public std::runtime_error {
  public:
    ErrorPlantilla(const std::string& archivo, int linea, int columna, const std::string& mensaje);
    const std::string& archivo() const { return archivo_; }
    int linea() const { return linea_; }
    int columna() const { return columna_; }
    const std::string& detalle() const { return detalle_; }

  private:
    std::string archivo_;
    int linea_;
    int columna_;
    std::string detalle_;
};

struct ConfigPagina {
    double ancho = 595.28;  // points, after orientation
    double alto = 841.89;
    double margenSuperior = 28.35, margenDerecho = 28.35, margenInferior = 28.35,
           margenIzquierdo = 28.35;
    double AnchoUtil() const { return ancho - margenIzquierdo - margenDerecho; }
    double AltoUtil() const { return alto - margenSuperior - margenInferior; }
};

// A table the template reads: a table of the company database, or a table of a local work
// file (`archivo` holds the data file's name, such as "Auxiliar.mdb").
struct TablaPlantilla {
    std::string nombre;
    std::string archivo;
    int linea = 0;  // in the template file, for messages
    bool EsLocal() const { return !archivo.empty(); }
    // The name the engine shows as this table's data file (DataFiles).
    std::string ArchivoDatos() const { return EsLocal() ? archivo : nombre; }
};

enum class TipoUnion { Interna, Izquierda };

// `tabla` joins the tables before it on campoIzquierdo = campoDerecho ("tabla.campo" each).
struct UnionPlantilla {
    TipoUnion tipo = TipoUnion::Interna;
    std::string tabla;
    std::string campoIzquierdo;
    std::string campoDerecho;
    int linea = 0;
};

struct FormulaPlantilla {
    std::string nombre;
    std::string expresion;  // in the formula language; a request formula replaces it
    int linea = 0;
};

struct ParametroPlantilla {
    std::string nombre;
    std::string valor;  // the value when the caller gives none
};

enum class TipoElemento { Texto, Campo, Formula, Parametro, Resumen, Especial, Linea, Caja };

enum class FuncionResumen { Suma, Cuenta, CuentaDistintos, Promedio, Minimo, Maximo };

enum class CampoEspecial {
    NumeroPagina,
    TotalPaginas,
    PaginaDeTotal,
    FechaImpresion,
    HoraImpresion,
    NumeroRegistro,
};

// Where a summary accumulates: the whole report, the current page, or one group level.
struct AmbitoResumen {
    enum class Tipo { Reporte, Pagina, Grupo } tipo = Tipo::Reporte;
    int nivel = 0;  // group level (1 is the outermost) when tipo is Grupo
};

struct ElementoPlantilla {
    TipoElemento tipo = TipoElemento::Texto;
    int linea = 0;                             // line in the template file, for messages
    double x = 0, y = 0, ancho = 0, alto = 0;  // points, relative to the section; alto 0: one line
    Fuente fuente;
    std::optional<Alineacion> alineacion;  // unset: numbers right, everything else left
    bool crece = false;                    // can-grow: wraps and pushes the section down
    std::string formato;                   // display format ("#,##0.00", "dd/mmm/yyyy")
    std::string titulo;  // the value's column title in the data exports; empty: found by layout
    // Texto: the literal; Campo: "tabla.campo"; Formula, Parametro: the name;
    // Resumen: the summarized field ("tabla.campo") or formula name; Especial: a pattern
    // with {N} (page) and {M} (total pages), empty for the default wording.
    std::string valor;
    // Resumen
    FuncionResumen funcion = FuncionResumen::Suma;
    bool resumenDeFormula = false;
    AmbitoResumen ambito;
    bool acumulado = false;  // running total: the value so far, printed in the detail
    // Especial
    CampoEspecial especial = CampoEspecial::NumeroPagina;
    // Linea: from (x, y) to (x2, y2); Caja: (x, y, ancho, alto)
    double x2 = 0, y2 = 0;
    double grosor = 0.5;
    double gris = -1;  // box fill, 0 black .. 1 white; negative: none
};

struct SeccionPlantilla {
    bool presente = false;
    double alto = 0;             // points; the elements' extent when the file gives none
    bool suprimirVacia = false;  // skip the band when all its values are blank
    std::vector<ElementoPlantilla> elementos;
};

struct GrupoPlantilla {
    std::string valor;  // "tabla.campo", or a formula name when esFormula
    bool esFormula = false;
    bool descendente = false;
    bool juntos = false;       // keep the group together on one page when it fits
    bool paginaNueva = false;  // each group starts a new page
    bool repetirEncabezado =
        false;  // the header prints again atop each page the group continues on
    int linea = 0;
    SeccionPlantilla encabezado;
    SeccionPlantilla pie;
};

struct Plantilla {
    std::string archivo;  // where it was read from, for messages
    int version = kVersionPlantilla;
    std::string titulo;
    ConfigPagina pagina;
    Fuente fuente;  // the default font of every element
    std::vector<TablaPlantilla> tablas;
    std::vector<UnionPlantilla> uniones;
    std::vector<FormulaPlantilla> formulas;
    std::vector<ParametroPlantilla> parametros;
    std::vector<std::string> orden;      // the template's own sort fields ("+{t.f}", "-{t.f}")
    std::vector<int> lineasOrden;        // the line of each
    std::vector<GrupoPlantilla> grupos;  // outermost first
    SeccionPlantilla encabezadoReporte;
    SeccionPlantilla encabezadoPagina;
    SeccionPlantilla detalle;
    SeccionPlantilla piePagina;
    SeccionPlantilla pieReporte;
    std::string sinDatos = "No hay información para este reporte";

    // The data files in table order, as the engine lists them (RetrieveDataFiles).
    std::vector<std::string> ArchivosDatos() const;
    const FormulaPlantilla* BuscaFormula(std::string_view nombre) const;
    FormulaPlantilla* BuscaFormula(std::string_view nombre);
};

// The first line of the template that names the field tabla.campo (an element, a formula, a
// group, a join, a sort field), or that declares the table when `campo` is empty; 0 when none
// does (names compare without regard to letter case).
int LineaQueNombra(const Plantilla& p, std::string_view tabla, std::string_view campo);

// Reads a template from XML text; `archivo` names it in error messages. Malformed XML, unknown
// elements or attributes and repeated attributes are refused with their line and column.
Plantilla LeePlantillaTexto(std::string_view xml, const std::string& archivo);
// Reads a template file. A missing or unreadable file raises ErrorPlantilla.
Plantilla LeePlantilla(const std::string& ruta);

}  // namespace paratzorep::renderer
