// The page model: what the layout produces and every writer consumes. A page is a flat
// display list of positioned texts, lines and boxes in points (1/72 inch), origin at the
// top-left corner of the sheet, y growing downwards. Texts arrive already broken into
// lines and measured by the one shaping path (layout/Medidor), so writers never wrap or
// re-measure: they draw each line where the layout put it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace paratzorep::renderer {

struct Fuente {
    std::string familia = "DejaVu Sans";
    double tamano = 9;  // points
    bool negrita = false;
    bool cursiva = false;
    bool subrayada = false;
    bool operator==(const Fuente&) const = default;
};

enum class Alineacion : std::uint8_t { Izquierda, Centro, Derecha };

// The band a text came from, for writers and checks that tell bands apart:
// every printed instance of a band has its own `banda` number, increasing through the report.
enum class TipoBanda : std::uint8_t {
    EncabezadoReporte,
    EncabezadoPagina,
    EncabezadoGrupo,
    Detalle,
    PieGrupo,
    PiePagina,
    PieReporte,
    SinDatos,
};

// What a text shows, for writers that keep types: numbers and dates keep their value in
// `numero` (dates as days since 1899-12-30, the spreadsheet serial) besides the shown text.
enum class TipoValor : std::uint8_t { Texto, Numero, Fecha };

struct RenglonTexto {
    std::string texto;  // UTF-8, one line, no line breaks
    double dx = 0;      // offset of the line's start from the element's left edge
    double ancho = 0;   // measured advance width of the line
};

struct ElementoTexto {
    double x = 0, y = 0, ancho = 0, alto = 0;  // the element's box
    double base = 0;           // distance from the box top to the first line's baseline
    double interlineado = 0;   // distance between baselines of consecutive lines
    std::uint16_t fuente = 0;  // index into Documento::fuentes
    Alineacion alineacion = Alineacion::Izquierda;
    TipoBanda tipoBanda = TipoBanda::Detalle;
    std::uint8_t nivelGrupo = 0;  // for group bands: 1 is the outermost group
    std::uint32_t banda = 0;      // the band instance, increasing through the report
    std::uint16_t columna = 0;    // the element's order within its section of the template
    TipoValor tipo = TipoValor::Texto;
    double numero = 0;    // the value when `tipo` is Numero or Fecha
    std::string formato;  // the display format applied ("#,##0.00", "dd/mmm/yyyy"), if any
    std::vector<RenglonTexto> renglones;
};

struct ElementoLinea {
    double x1 = 0, y1 = 0, x2 = 0, y2 = 0;
    double grosor = 0.5;
};

struct ElementoCaja {
    double x = 0, y = 0, ancho = 0, alto = 0;
    double grosor = 0.5;  // 0: no border
    double gris = -1;     // fill grey level 0 (black) .. 1 (white); negative: no fill
};

struct Pagina {
    int numero = 1;                     // 1-based
    std::vector<ElementoCaja> cajas;    // drawn first
    std::vector<ElementoLinea> lineas;  // then lines
    std::vector<ElementoTexto> textos;  // then texts
};

// A column of the report's data, for the tabular exports (CSV, XLS, XLSX): a value that the
// detail shows, or one of an enclosing group's header.
struct ColumnaDatos {
    std::string titulo;
    std::string formato;  // the element's display format; "" none
    int nivelGrupo = 0;   // 0 the detail; k the header of group level k (1 outermost)
};

// What every writer learns before the first page.
struct Documento {
    std::string titulo;
    double anchoPagina = 595.28;  // points (A4 portrait by default)
    double altoPagina = 841.89;
    double margenIzquierdo = 0, margenSuperior = 0, margenDerecho = 0, margenInferior = 0;
    int totalPaginas = 0;
    std::vector<Fuente> fuentes;  // ElementoTexto::fuente indexes this table
};

}  // namespace paratzorep::renderer
