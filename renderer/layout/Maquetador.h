// The banded layout: reads the rows once, in order, and lays the template's sections out
// into pages (report header, page header on every page, group headers and footers with
// keep-together and new-page, detail, summaries, page footer at a fixed place that no band
// overlaps, report footer). Pages go straight to a ListaPaginas on disk.
#pragma once

#include <cstdint>
#include <ctime>
#include <functional>
#include <string>
#include <vector>

#include "renderer/Valor.h"
#include "renderer/layout/ListaPaginas.h"
#include "renderer/layout/Medidor.h"
#include "renderer/template/Plantilla.h"

namespace paratzorep::renderer {

// A value the layout reads for every row.
struct Referencia {
    enum class Tipo { Campo, Formula, Parametro } tipo = Tipo::Campo;
    std::string nombre;  // "tabla.campo", or the formula's or parameter's name
    bool operator==(const Referencia&) const = default;
};

// The rows of the report, already selected and sorted (groups first), as the layout
// reads them.
class FuenteFilas {
  public:
    virtual ~FuenteFilas() = default;
    // Called once before the first row with every value the layout will read per row;
    // values then come in this order.
    virtual void Prepara(const std::vector<Referencia>& referencias) = 0;
    // Moves to the next row and fills its values; false when there are no more rows.
    virtual bool Siguiente(std::vector<Valor>& valores) = 0;
    // The values without any row (fields null): for a report without rows.
    virtual void SinFila(std::vector<Valor>& valores) = 0;
};

struct ResultadoMaquetado {
    int paginas = 0;
    std::int64_t filas = 0;
};

class Maquetador {
  public:
    // The template must outlive the layout. `impresion` is the print date and time shown
    // by the special fields.
    Maquetador(const Plantilla& plantilla, Medidor& medidor, std::time_t impresion);
    ~Maquetador();
    Maquetador(const Maquetador&) = delete;
    Maquetador& operator=(const Maquetador&) = delete;

    // The references the layout reads per row (for the data layer to plan its query).
    const std::vector<Referencia>& Referencias() const;

    ResultadoMaquetado Maqueta(FuenteFilas& filas, ListaPaginas& salida);

    // Called with the page count each time a page is complete (for an early preview of
    // the first page while the rest is still being laid out).
    void AlCerrarPagina(std::function<void(int)> aviso);

    // The data columns: each group header's values (outermost first), then the detail's, left
    // to right. When the detail shows no value, the innermost group's footer takes its place.
    const std::vector<ColumnaDatos>& ColumnasDatos() const;
    // Called with one value per data column for every record: each detail row (or each
    // innermost group, at its footer). Group values are those its header printed.
    void AlRegistro(std::function<void(const std::vector<Valor>&)> registro);

    // The document description for the writers (page size, fonts), valid after Maqueta.
    Documento DocumentoSalida() const;

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace paratzorep::renderer
