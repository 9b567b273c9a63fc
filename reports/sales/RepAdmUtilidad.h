// RepAdmUtilidad: the profit report. Sets what was sold in a period (invoices and delivery
// notes) against what it cost: every line priced net of the document's cascading discounts,
// costed at its average cost and its warehouse history row, with what came back through
// returns and credit notes. Detail mode writes one row per sold line into the local work
// file's Utilidad ("utilidad.rpt", "utilidadtot.rpt", "utilidadtotlin.rpt"); by-days mode one
// row per day and seller into a work table cloned from utilidadxdias ("utilidadtotxdias.rpt").
// Profit and margins of the detail templates are the templates' own formulas.
#pragma once

#include <string>
#include <vector>

#include "reports/Marco.h"

namespace paratzorep::reports {

class RepAdmUtilidad : public FormaReporte {
  public:
    RepAdmUtilidad();

    // The caller's switch for point-of-sale documents: off (the default) leaves them out.
    bool PuntoDeVenta = false;

    // What a print reads, as the form's controls give it ("" for a filter not given).
    struct Filtros {
        std::string desdeSQL, hastaSQL;  // "yyyy-mm-dd"
        std::string vendedor, cliente, producto;
        std::string linea, sublinea, marca;  // Id of lineas, sublineas, marcas
        bool puntoDeVenta = false;
        bool multimoneda = false;  // prices and costs of foreign documents in local currency
    };

    // The first document kind read for the list index of cmbVentas (0 facturas, 1 remisiones);
    // the last is always 1.
    static int PrimerTipo(int indiceVentas);
    // The template for the three check boxes.
    static std::string Plantilla(bool totalizado, bool porDias, bool porLinea);

    // The system's queries: the sales of one kind (by-days mode drops the line number and the
    // history row and asks for a seller), the return documents and the credit notes of the
    // period, and the expenses (a source for Sum).
    static std::string ConsultaVentas(int tipo, const Filtros& f, bool porDias);
    static std::string ConsultaDevoluciones(const Filtros& f);
    static std::string ConsultaNotasCredito(const Filtros& f);
    static std::string FuenteGastos(const Filtros& f);

    // The set-based statements built on them. Detail mode: the rows of Utilidad, in its
    // columns' order (ColumnasUtilidad), for a kind's sales (with the returns looked up per
    // line when `buscaDevoluciones`), the return documents and the credit notes. By-days
    // mode: the statements that fill the work table `tabla`, in order.
    static const std::vector<std::string>& ColumnasUtilidad();
    static std::string SqlVentas(int tipo, const Filtros& f, bool buscaDevoluciones);
    static std::string SqlDevoluciones(const Filtros& f);
    static std::string SqlNotasCredito(const Filtros& f);
    static std::vector<std::string> SqlPorDias(const std::string& tabla, int primerTipo,
                                               const Filtros& f);

  protected:
    std::string TablaMovimientos() const override { return "facturas"; }
    void EnlazaCombos() override;
    void AlSalir(Control& c) override;
    void Imprimir() override;

  private:
    void LlenaSubLineas();
    Filtros LeeFiltros() const;
    void LlenaArchivoLocal(const Filtros& f, bool porDias, int primerTipo);
    std::string TextoFiltros() const;
};

}  // namespace paratzorep::reports
