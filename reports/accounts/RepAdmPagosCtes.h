// RepAdmPagosCtes: the payments received from customers. The plain list renders straight over
// the customer statement with a selection formula ("pagosctes4.rpt", broken down by the
// documents each payment settled in "pagosctes.rpt" or "pagosctescfdi.rpt", by customer in
// "pagosctes2.rpt", stamped receipts in "RepAdmTimbres.rpt"); with a seller chosen the
// seller's payments are first copied into a work table. The means-of-payment breakdown
// ("pagosctes3.rpt") and the missing receipts ("recibosfaltantes.rpt") fill work tables.
#pragma once

#include <string>

#include "reports/accounts/Cobranza.h"

namespace paratzorep::reports {

// What the user chose, as the statement builders take it.
struct FiltrosPagos {
    std::string desde, hasta;          // entry dates as typed ("" for none)
    std::string pagoDesde, pagoHasta;  // FechaDePago range, when shown
    std::string claveDesde, claveHasta, usuario;
    std::string moneda;    // currency id, "" for every currency
    std::string vendedor;  // seller key, "" for none
    int tipo = 0;          // 0 every document, 1 invoices, 2 delivery notes
    int orden = 0;         // 0 date, 1 amount, 2 concept, 3 customer
    bool cancelaciones = false, devoluciones = false;
    bool notasVisibles = false, notas = false;
    bool pagosNIVisibles = false, sinCliente = false;
};

class RepAdmPagosCtes : public FormaCobranza {
  public:
    RepAdmPagosCtes();

    // The variant list's entries: the plain list, by customer, the means-of-payment breakdown.
    enum Variante { kLista = 0, kPorCliente = 1, kCheques = 2 };

    // The plain list's selection formula (sort field apart).
    static std::string FormulaSeleccion(const FiltrosPagos& f);
    // The statement that copies the chosen payments into `tabla`: the seller's (seller variant),
    // or those that settled the chosen kind of document, each payment once.
    static std::string SqlCopia(const std::string& tabla, const FiltrosPagos& f);
    // Means-of-payment breakdown: the statement rows read ("edoctacli" + conditions) and the
    // statement that writes their applications by means into `tabla`.
    static std::string FuenteCheques(const FiltrosPagos& f);
    static std::string SqlCheques(const std::string& tabla, const FiltrosPagos& f);
    // Missing receipts: the first and last payment of the range, and the statement that writes
    // each payment between them without its receipt, or with a receipt dated outside the range.
    static std::string FuentePrimerPago(const std::string& desdeSQL);
    static std::string FuenteUltimoPago(const std::string& hastaSQL);
    static std::string SqlRecibosFaltantes(const std::string& tabla, const std::string& primero,
                                           const std::string& ultimo, const std::string& desdeSQL,
                                           const std::string& hastaSQL);
    // The template of a print.
    static std::string Plantilla(bool timbrados, int variante, bool desglosar, bool cfdi);

  protected:
    std::string TablaMovimientos() const override { return "edoctacli"; }
    // A blank date leaves that end of the period open.
    bool FechaOpcional(const Control&) const override { return true; }
    void EnlazaCombos() override;
    void AlSalir(Control& c) override;
    void Imprimir() override;

  private:
    FiltrosPagos Filtros() const;
    bool Marcada(const std::string& casilla) const;
    void ImprimeCheques(const FiltrosPagos& f);
    void ImprimeRecibosFaltantes();
    bool cfdi_ = false;
};

}  // namespace paratzorep::reports
