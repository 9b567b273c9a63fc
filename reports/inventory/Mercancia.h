// What the inventory listings of adjustments, goods entries, transfers, losses and metal
// separations share: the headings they write (period and filters in words), the product
// description shown beside a typed code, and the goods entries and transfers form
// (FormaMercancia): the same filters, the detail or totalled listing over the documents and
// their lines, and the per-product summary filled into a clone of compras3.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "reports/Marco.h"
#include "toolkit/LibKRVM.h"

namespace paratzorep::reports {

namespace mercancia {

// The helper library's routines (the session's object, or a local one without a session).
const toolkit::LibKRVM& Lib();
// A number as the system writes it after kvVal: "12", "12.5".
std::string Numero(double n);
// "Del 5 de marzo de 2024 al 31 de marzo de 2024", "Desde el ...", "Hasta el ...", or
// "Todas las fechas"; dates as typed (dd/mm/yyyy, "" when blank).
std::string Periodo(const std::string& desde, const std::string& hasta);
// The filters in words, joined with " · "; "Sin filtros" when there are none.
std::string Filtros(const std::vector<std::string>& partes);
// `Descrip` of the first row of a product look-up ("productos WHERE Clave='...'"); "" when
// the code is blank, holds a quote, matches no product or the look-up fails (a print then
// reports the server).
std::string Descripcion(const host::Conexion& cn, const std::string& plantilla,
                        const std::string& clave);

}  // namespace mercancia

// The documents a FormaMercancia lists: header table, line table, number column and the
// templates' common name ("entradas" gives "entradas.rpt", "entradastot.rpt",
// "entradasprod.rpt").
struct DocumentosMercancia {
    const char* tabla;
    const char* detalle;
    const char* folio;
    const char* plantilla;
};

// The filters of a print, as the user set them (texts trimmed, dates as typed).
struct FiltrosMercancia {
    std::string desde, hasta;
    std::string producto, descripcion, destino, usuario;
    bool totalizado = false;
};

class FormaMercancia : public FormaReporte {
  public:
    FormaMercancia(std::string nombre, std::string caption, DocumentosMercancia docs);

    // The fixed items of "Totalizar con:" and "Ordenar por:".
    static const std::vector<std::string>& OpcionesValor();
    static const std::vector<std::string>& OpcionesOrden();
    // The summary's sort field for an "Ordenar por:" choice.
    static std::string OrdenResumen(int eleccion);
    // The value column's heading written to EncabDeudores.Texto1 ("" for a price list).
    static std::string EncabezadoValor(int eleccion);
    // The statement that fills the summary `tabla` in one go: one row per product of the
    // lines of the documents that `condiciones` (" WHERE ..." on the header table) selects,
    // in the order the rule walks them (documents by number, lines by Partida); `valor` is the
    // "Totalizar con:" choice (0 cost, 1 average cost, 2 the lines' own prices, 3 on price
    // list 1 and so on).
    static std::string SqlResumen(const DocumentosMercancia& d, const std::string& tabla,
                                  const std::string& condiciones, const std::string& producto,
                                  const std::string& descripcion, int valor);

    FiltrosMercancia Filtros() const;

  protected:
    std::string TablaMovimientos() const override { return docs_.tabla; }
    // A blank date leaves that end of the period open.
    bool FechaOpcional(const Control&) const override { return true; }
    void EnlazaCombos() override;
    void Imprimir() override;

    // The listing's selection formula and the summary's header conditions.
    virtual std::string FormulaListado() const = 0;
    virtual std::string CondicionesResumen() const = 0;
    // The look-up of a typed product code ("productos WHERE Clave='XXX'").
    virtual std::string FuenteProducto() const { return "productos WHERE Clave='XXX'"; }
    // The filters in words for the heading, beyond those every form has.
    virtual std::vector<std::string> FiltrosPropios() const { return {}; }
    // The form's own controls and settings once the company database is open.
    virtual void EnlazaPropios() {}

  private:
    void AjustaTotalizado();
    void AjustaXprod();
    void EscribeEncabezadoValor(const std::string& texto);

    DocumentosMercancia docs_;
};

}  // namespace paratzorep::reports
