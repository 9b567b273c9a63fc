// Tabular output shared by the spreadsheet and CSV writers: a table of typed cells
// (numbers stay numbers, dates stay dates) with column titles, widths and styles.
// Rows are handed over one at a time so that no writer needs the whole report in memory.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace paratzorep::renderer {

enum class AlineacionCelda { General, Izquierda, Centro, Derecha };

struct EstiloCelda {
    std::string formato;  // Excel number format code ("#,##0.00", "dd/mm/yyyy"); empty: General
    bool negrita = false;
    AlineacionCelda alineacion = AlineacionCelda::General;
    bool operator==(const EstiloCelda&) const = default;
};

struct CeldaTabla {
    enum class Tipo { Vacia, Numero, Texto, Fecha, Hora };
    Tipo tipo = Tipo::Vacia;
    // Numero: the value; Fecha: days since 1899-12-30 (day fraction = time); Hora: the day
    // fraction alone
    double numero = 0;
    std::string texto;  // Texto: UTF-8
    int estilo = 0;     // an id from SalidaTabular::Estilo; 0 is General

    static CeldaTabla Numero(double v, int estilo = 0) { return {Tipo::Numero, v, {}, estilo}; }
    static CeldaTabla Texto(std::string v, int estilo = 0) {
        return {Tipo::Texto, 0, std::move(v), estilo};
    }
    static CeldaTabla Fecha(double serie, int estilo = 0) {
        return {Tipo::Fecha, serie, {}, estilo};
    }
    static CeldaTabla Hora(double fraccion, int estilo = 0) {
        return {Tipo::Hora, fraccion, {}, estilo};
    }
};

struct ColumnaTabla {
    std::string titulo;
    double ancho = 10;  // in characters of the default font
};

// How a sheet prints: on the report's paper, its columns fitted to the page width (landscape
// when they are wide), the title row repeated on every page, the title and page numbers in
// the page's header and footer.
struct ImpresionHoja {
    double anchoPapel = 612, altoPapel = 792;  // points, either orientation
    std::string titulo;
};
// The spreadsheet paper code of a sheet size (Letter 1, Legal 5, A4 9, Folio 14); 0, the
// printer's own, for any other.
int CodigoPapel(double ancho, double alto);
// Whether columns this wide (characters) print across a landscape page.
bool HojaHorizontal(const std::vector<double>& anchos, const ImpresionHoja& impresion);

// Days since 1899-12-30 for a calendar date: the serial that spreadsheets show as a
// date (for dates from 1900-03-01 on, where Excel's 1900 leap-year slip no longer shows).
double SerieFecha(int anio, int mes, int dia, int hora = 0, int minuto = 0, int segundo = 0);

class SalidaTabular {
  public:
    virtual ~SalidaTabular() = default;
    // How the sheets print, before Columnas.
    virtual void Impresion(const ImpresionHoja&) {}
    // Registers a cell style and returns its id for CeldaTabla::estilo.
    virtual int Estilo(const EstiloCelda& estilo) = 0;
    // Column titles and widths, before the first row. Titles, when any is not empty,
    // head every sheet (and the CSV file). Spreadsheets then keep the title row in view
    // (frozen, and repeated on every printed page) and put a filter on it.
    virtual void Columnas(std::vector<ColumnaTabla> columnas) = 0;
    virtual void Fila(std::span<const CeldaTabla> celdas) = 0;
    // The widths the columns end with (characters), once the rows are known; before Cerrar.
    virtual void Anchos(const std::vector<double>&) {}
    // Finishes the file; nothing is complete on disk before this returns.
    virtual void Cerrar() = 0;
};

}  // namespace paratzorep::renderer
