// The page model turned back into a table for the spreadsheet and CSV writers. Columns
// come from the horizontal spans of the detail texts (the first page with details sets
// them); titles from the page header texts that sit over exactly one column, the ones
// nearest the details winning. Each printed band instance becomes one row; its texts go
// to the column they overlap most, keeping their value type and format. Page headers
// and footers and the report header repeat or decorate and are left out; group headers
// and footers and the report footer (totals) are kept unless only details are wanted.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "renderer/writers/Escritor.h"
#include "renderer/writers/SalidaTabular.h"

namespace paratzorep::renderer {

class EscritorTabla : public Escritor {
  public:
    // `crear` opens the output once the document (its title names the sheet) is known.
    using CrearSalida = std::function<std::unique_ptr<SalidaTabular>(const Documento&)>;
    EscritorTabla(CrearSalida crear, bool soloDetalle);
    ~EscritorTabla() override;

    void Inicia(const Documento& documento) override;
    void Pagina(const renderer::Pagina& pagina) override;
    void Termina() override;

    struct Columna {
        double x0 = 0, x1 = 0;
    };

  private:
    struct FilaPendiente {
        std::uint32_t banda = 0;
        TipoBanda tipo = TipoBanda::Detalle;
        std::vector<ElementoTexto> elementos;
    };

    bool Incluida(TipoBanda tipo) const;
    void DefinirColumnas(const std::vector<const ElementoTexto*>& base);
    void CerrarFilaAbierta();
    void EmitirFila(const FilaPendiente& fila);
    int EstiloDe(const ElementoTexto& e);

    CrearSalida crear_;
    std::unique_ptr<SalidaTabular> salida_;
    bool soloDetalle_;
    std::vector<Fuente> fuentes_;
    std::vector<Columna> columnas_;
    bool columnasDefinidas_ = false;
    std::vector<FilaPendiente> pendientes_;  // rows seen before the columns were known
    std::optional<FilaPendiente> abierta_;   // the band instance being collected
    std::vector<ElementoTexto> encabezado_;  // the first page's header, for titles
    std::vector<std::pair<EstiloCelda, int>> estilos_;
};

namespace detail {
// Columns from text spans: spans that overlap by more than half of the narrower one
// share a column; the result is sorted left to right.
std::vector<EscritorTabla::Columna> AgruparColumnas(std::vector<std::pair<double, double>> spans);
// The column a span overlaps most, or the nearest one (by the gap between edges) when it
// overlaps none.
std::size_t ColumnaDe(const std::vector<EscritorTabla::Columna>& columnas, double x0, double x1);
// Points to characters of the spreadsheet's default font.
double AnchoEnCaracteres(double puntos);
}  // namespace detail

// The writers behind the export types, over the page model.
// XLS and XLSX name their first sheet after the document's title.
std::unique_ptr<Escritor> CreaEscritorXls(const std::string& archivo);
std::unique_ptr<Escritor> CreaEscritorXlsx(const std::string& archivo);
std::unique_ptr<Escritor> CreaEscritorCsv(const std::string& archivo);

}  // namespace paratzorep::renderer
