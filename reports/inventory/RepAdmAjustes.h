// RepAdmAjustes: the inventory adjustments ("Reporte de ajustes"). Three modes: the listing of
// the adjusted lines straight from ajustes through a selection formula ("ajustes1.rpt", or,
// costed, "ajustes2.rpt" at cost and "ajustes3.rpt" at price); one adjustment document through
// its format "fmtAjuste"; and the products that had no adjustment in the period, copied whole
// into a clone of productos ("ajustes4.rpt").
#pragma once

#include <string>

#include "reports/Marco.h"

namespace paratzorep::reports {

class RepAdmAjustes : public FormaReporte {
  public:
    RepAdmAjustes();

    // The listing's filters as the user set them (texts trimmed, dates as typed, numbers
    // through kvVal).
    struct FiltrosAjustes {
        std::string desde, hasta, producto, usuario;
        double linea = 0, folio = 0;
    };
    static std::string FormulaSeleccion(const FiltrosAjustes& f);
    // The listing's template: "ajustes1.rpt" uncosted, "ajustes2.rpt" at cost (combo index 0),
    // "ajustes3.rpt" at price.
    static std::string Plantilla(bool costeado, int costoOprecio);
    // The products considered by the list of products without adjustment (" WHERE ..." or "").
    static std::string CondicionProductos(double linea, bool servicios);
    // The adjustments looked for, ending in " WHERE " or " AND " ready for the product's code.
    static std::string TextoAjustes(const std::string& desdeSQL, const std::string& hastaSQL);
    // The statement that copies in one go every product of `condicionProductos` without a row
    // in `textoAjustes`, in code order.
    static std::string SqlSinAjuste(const std::string& tabla, const std::string& condicionProductos,
                                    const std::string& textoAjustes);

  protected:
    std::string TablaMovimientos() const override { return "ajustes"; }
    // A blank date leaves that end of the period open.
    bool FechaOpcional(const Control&) const override { return true; }
    void EnlazaCombos() override;
    void AlTerminarCarga() override;
    void Imprimir() override;

  private:
    void RevisaFolio();
    void AjustaControles();
    FiltrosAjustes Filtros() const;
    std::string TextoFiltros(const FiltrosAjustes& f) const;
    void Listado();
    void Documento();
    void SinAjuste();
};

}  // namespace paratzorep::reports
