// What the payment and receipt forms (RepAdmPagosCtes, RepAdmPagosProv, RepAdmCobRecibos)
// share: the period heading they write to the local work file's Titulo100, the account-key
// range rule of the statement reports, and the customer or supplier name shown beside a
// typed key.
#pragma once

#include <string>
#include <vector>

#include "reports/Marco.h"
#include "toolkit/LibKRVM.h"

namespace paratzorep::reports {

class FormaCobranza : public FormaReporte {
  public:
    using FormaReporte::FormaReporte;

    // caption + ", desde el " + from + " hasta el " + to (dates as "dd/mmm/yyyy"; each part
    // only when its date is given).
    static std::string Encabezado(const std::string& caption, const std::string& desde,
                                  const std::string& hasta);
    // The key-range conditions: with one key, equal to it; with both, from the first to the
    // second. The templates name the three forms, e.g. "{edoctacli.Clave}='XXX'".
    static std::vector<std::string> RangoClaves(const std::string& igual, const std::string& desde,
                                                const std::string& hasta,
                                                const std::string& claveDesde,
                                                const std::string& claveHasta);

    // The sort field of the sort list's choice (0 date, 1 amount, 2 concept, 3 account) over
    // `tabla`: "+{tabla.Fecha}", "+{tabla.CantidadPago}", "+{tabla.Concepto}", "+{tabla.Clave}".
    static std::string OrdenPagos(const std::string& tabla, int eleccion);
    // The sort list's entries, in order.
    static const std::vector<std::string>& OpcionesOrden(const std::string& cuenta);

  protected:
    // Adds the sort list cmbDato(indice) with its label, "Fecha" chosen.
    void AgregaOrden(std::int16_t indice, const std::string& cuenta);
    // Shows the currency list dcmDato(indice) only with MultiMoneda and binds it to "monedas".
    void EnlazaMonedas(std::int16_t indice);
    // The chosen currency's id ("" when the list is hidden or nothing is chosen); a bound value
    // that is not a number stops the print.
    std::string MonedaElegida(std::int16_t indice) const;
    // Empties Titulo100 of the local work file and writes `encabezado` in its Encabezado.
    void EscribeEncabezado(const std::string& encabezado);
    // The name of an account of `tabla` ("clientes", "proveedores"); "" when unknown.
    std::string NombreDe(const std::string& tabla, const std::string& clave) const;
    // A typed key box's text without surrounding blanks.
    std::string Clave(std::int16_t i) const;
};

namespace detail {
// The helper library's routines (the session's object, or a local one without a session).
const toolkit::LibKRVM& LibCobranza();
}  // namespace detail

}  // namespace paratzorep::reports
