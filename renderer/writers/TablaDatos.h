// The report's data as a table: what CSV, XLS and XLSX hold. One row per record that the
// layout hands over (layout/Maquetador: ColumnasDatos, AlRegistro), under a title row that is
// there even when no record is. Values keep their type: numbers stay numbers (in the
// element's format, literal text quoted for spreadsheets), dates dates, times times, dates
// with a time both; an empty date is an empty cell. Column widths follow what the columns
// hold.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "renderer/Valor.h"
#include "renderer/layout/Pagina.h"
#include "renderer/writers/SalidaTabular.h"

namespace paratzorep::renderer {

class TablaDatos {
  public:
    TablaDatos(std::unique_ptr<SalidaTabular> salida, const std::vector<ColumnaDatos>& columnas,
               const ImpresionHoja& impresion);
    ~TablaDatos();
    TablaDatos(const TablaDatos&) = delete;
    TablaDatos& operator=(const TablaDatos&) = delete;

    void Registro(const std::vector<Valor>& valores);
    // Completes the file (ErrorEscritura on failure).
    void Termina();

  private:
    struct Columna {
        std::string formato;                                 // the element's, for numbers
        int numero = 0, fecha = 0, fechaHora = 0, hora = 0;  // style ids
        double ancho = 0;                                    // widest value, characters
    };
    std::unique_ptr<SalidaTabular> salida_;
    std::vector<Columna> columnas_;
    std::vector<double> anchosTitulo_;
    std::vector<CeldaTabla> fila_;
};

// Opens the table of one file type for the file at `archivo`; `titulo` names the sheet.
using FabricaTabla = std::function<std::unique_ptr<SalidaTabular>(const std::string& archivo,
                                                                  const std::string& titulo)>;
std::unique_ptr<SalidaTabular> CreaTablaCsv(const std::string& archivo, const std::string& titulo);
std::unique_ptr<SalidaTabular> CreaTablaXls(const std::string& archivo, const std::string& titulo);
std::unique_ptr<SalidaTabular> CreaTablaXlsx(const std::string& archivo, const std::string& titulo);

namespace detail {
// A display format of the templates as a spreadsheet number format: the digits part as it
// is, the text before and after it quoted ("#,##0 movimientos" -> #,##0" movimientos").
std::string FormatoExcel(std::string_view formato);
// Characters a value takes on screen (code points of its text).
std::size_t Caracteres(std::string_view utf8);
}  // namespace detail

}  // namespace paratzorep::renderer
