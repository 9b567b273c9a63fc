// clsComisionarAux: the commission movement engine. It works out what each seller earned in a
// period and writes it as movements into the work tables that the commissions report prints.
//
// Two schemes, each on two bases:
//   - sales brackets (table `comisiones`): the seller's total in the period picks one bracket,
//     the highest whose CantVendida the total reaches, and its percentage applies to every
//     document of the seller. Tables of the local work file: ComisXvend1 (Clave, MontoTotal),
//     ComisXvend2 (one row per document) and ComisVendXtabla (the bracket that applied).
//     CreaMovsXvendido (what was sold) and CreaMovsXpagado (what was paid).
//   - line and price number: each sold line earns the first percentage found among the seller's
//     line (`comisionesporlinea`), the seller's price number (`comisionesmasprecios`), the
//     product's own ComisionPrecio<n> and the line's Comision. Work tables cloned from the
//     reports database's `comisxventas` (one row per document) and `comisxventasdetalle` (one
//     row per document and product, IdComision = the document's row). CreaMovsXlasOtras (what
//     was sold) and CreaMovsXpag (what was paid).
//
// Rules shared by the four operations:
//   - amounts are in the company's currency (currency 1): a document in another currency is
//     converted at the rate that `monedas` holds for it (a rate missing or not positive counts
//     as 1); they are before taxes and rounded to cents, half away from zero;
//   - cancelled documents and documents without a seller earn nothing;
//   - on sales, invoice lines that came from a delivery note earn nothing through the invoice:
//     the delivery note earns them (an invoiced note is still counted), so a sale counts once;
//   - on payments, a payment is a statement row with CantidadPago>0 that is not a credit note,
//     in the period; its applications of more than 0.01 to an invoice or a delivery note count,
//     whole documents (every line); what was paid is taken before taxes (paid × Subtotal/Total,
//     at most the document's total). With `Liquidado` only documents settled in the period count
//     (balance 0.01 or less and no application after the period), for their whole sale.
// Every operation opens its own connection, replaces the contents of its tables, and closes
// what it opened. Failures throw (host::ErrorDatos from the data layer, std::invalid_argument
// for bad arguments) with what was being done; the tables are then left as they were (local
// file) or for the caller to drop (work tables).
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/BaseDD.h"

namespace paratzorep::engines {

// Which sales documents a run takes.
enum class DocumentosComision : std::int16_t { Facturas = 0, Remisiones = 1, Ambas = 2 };

class clsComisionarAux {
  public:
    // Filters and sources beyond the period and the seller, set before calling an operation.
    DocumentosComision Documentos = DocumentosComision::Ambas;
    // 0: every currency; otherwise only documents in that currency (monedas.Id).
    std::int16_t Moneda = 0;
    // Percentage sources of the line-and-price scheme: the seller's line and the line's own
    // percentage; the seller's price number and the product's field for it.
    bool PorLinea = true;
    bool PorPrecio = true;
    // Payment bases: only documents settled in the period, each for its whole sale.
    bool Liquidado = false;

    // The period is two dates as typed ("dd/mm/yyyy"), either of them empty for no limit; the
    // seller is its key ("" for every seller). The bracket scheme writes into the local work
    // file `archivoLocal`; the line-and-price scheme into the work tables named (clones of
    // comisxventas and comisxventasdetalle in the company database).
    void CreaMovsXvendido(const std::string& desde, const std::string& hasta,
                          const std::string& vendedor, const std::string& archivoLocal);
    void CreaMovsXpagado(const std::string& desde, const std::string& hasta,
                         const std::string& vendedor, const std::string& archivoLocal);
    void CreaMovsXlasOtras(const std::string& desde, const std::string& hasta,
                           const std::string& vendedor, const std::string& tablaVentas,
                           const std::string& tablaDetalle);
    void CreaMovsXpag(const std::string& desde, const std::string& hasta,
                      const std::string& vendedor, const std::string& tablaVentas,
                      const std::string& tablaDetalle);
};

namespace detail {

// One row of a seller's brackets.
struct Tramo {
    std::int16_t renglon = 0;
    double cantVendida = 0;
    double comision = 0;
};

// The bracket a total reaches: the highest Renglon whose CantVendida the total reaches
// (compared in cents, so a total exactly on a threshold takes that bracket); -1 when none.
int EligeTramo(const std::vector<Tramo>& tramos, double total);
// What ComisVendXtabla.DeLaTabla says of the bracket `i` (-1: none reached) of `tramos`.
std::string DescribeTramo(const std::vector<Tramo>& tramos, int i);
// A number as "##,###,##0.00": grouped by thousands, two decimals.
std::string FormatoMonto(double valor);

// The conditions on the documents of a run, joined with SumaWhereAnd: the period on their
// dates (sales only; "" dates leave it open), not cancelled, with a seller, the seller and the
// currency asked for. Dates as "yyyy-mm-dd".
std::string CondicionesDocumentos(bool conFechas, const std::string& desde,
                                  const std::string& hasta, const std::string& vendedor,
                                  std::int16_t moneda);
// The payments of the period: statement rows of customers' payments that are not credit notes.
std::string CondicionesPagos(const std::string& desde, const std::string& hasta);

}  // namespace detail

}  // namespace paratzorep::engines
