// RepAdmTraspasos: the stock transfers between branches, listed straight from traspasos and
// traspasosdetalle in detail ("traspasos.rpt") or totalled per transfer ("traspasostot.rpt")
// through a selection formula, or summed per product into a clone of compras3
// ("traspasosprod.rpt"). Cancelled transfers are never listed; with SeriesEnTra the series
// combo narrows the listing to one series.
#pragma once

#include <string>

#include "reports/inventory/Mercancia.h"

namespace paratzorep::reports {

class RepAdmTraspasos : public FormaMercancia {
  public:
    RepAdmTraspasos();

    static const DocumentosMercancia& Documentos();
    // `serie`: the series combo's text ("" for every series).
    static std::string FormulaSeleccion(const FiltrosMercancia& f, const std::string& serie);
    static std::string Condiciones(const FiltrosMercancia& f, const std::string& serie);
    // The source of the series combo; each item is Dato from its fourth character on.
    static std::string FuenteSeries();

  protected:
    std::string FormulaListado() const override;
    std::string CondicionesResumen() const override;
    std::string FuenteProducto() const override { return "productos WHERE Clave='XXX' LIMIT 1"; }
    std::vector<std::string> FiltrosPropios() const override;
    void EnlazaPropios() override;

  private:
    std::string Serie() const;
};

}  // namespace paratzorep::reports
