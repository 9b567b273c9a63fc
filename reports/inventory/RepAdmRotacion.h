// RepAdmRotacion: product rotation at a cut-off date ("rotacionprods.rpt"). For each chosen
// product, one row of the work table cloned from rotacionprods: its stock and costs at the date
// (the latest warehouse history row by Id among those dated up to it), what was sold in the
// three 30-day bands before it (applied, non-cancelled delivery notes and invoices, and
// point-of-sale ticket lines), its first alternate code, and its last purchase with the days
// since. Filled with one statement per source, every product at once.
#pragma once

#include <string>
#include <vector>

#include "reports/Marco.h"

namespace paratzorep::reports {

class RepAdmRotacion : public FormaReporte {
  public:
    RepAdmRotacion();

    // What chooses the products, as the controls give it ("" or 0 for a filter not given).
    struct Filtros {
        bool conExistencia = true;
        std::string producto, proveedor;
        long long linea = 0, marca = 0;  // Id of lineas and marcas; marca only when offered
    };

    // The product conditions joined with SumaWhereAnd (" WHERE ..." or "").
    static std::string Condiciones(const Filtros& f);
    // The statements that fill the work table `tabla` for the cut-off date ("yyyy-mm-dd"), in
    // order: the products with their alternate code and history row (IdKardex), the stock and
    // costs of that row, the last purchase, and the sales of delivery notes, invoices and
    // tickets by band.
    static std::vector<std::string> SqlLlenado(const std::string& tabla,
                                               const std::string& condiciones,
                                               const std::string& fechaSQL);
    // A "yyyy-mm-dd" date moved by `dias` days ("" when it is not such a date).
    static std::string SumaDias(const std::string& fechaSQL, int dias);

  protected:
    std::string TablaMovimientos() const override { return "historicoalmacen"; }
    void EnlazaCombos() override;
    void AlTerminarCarga() override;
    void Imprimir() override;

  private:
    void LlenaSubLineas();
    void MuestraProducto();
    void MuestraProveedor();
    Filtros LeeFiltros() const;
    std::string TextoFiltros(const Filtros& f) const;
    void Avance(int porcentaje, const std::string& texto);
};

}  // namespace paratzorep::reports
