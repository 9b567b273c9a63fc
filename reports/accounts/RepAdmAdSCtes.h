// RepAdmAdSCtes: aging of the customers' balances ("adsdcm.rpt"). Every open document of the
// receivables ledger (cxc) of the ticked kinds, with its days past due on the cut-off date, in
// the work table "adsmovtos"; the template spreads the balances over the aging columns. The
// send button (cmdEnviar) mails each customer that has an address its own sheet as a PDF.
#pragma once

#include <string>

#include "reports/Marco.h"
#include "reports/accounts/Antiguedad.h"

namespace paratzorep::reports {

class RepAdmAdSCtes : public FormaReporte {
  public:
    RepAdmAdSCtes();

    FiltrosAntiguedad Filtros() const;
    // "ENCABEZADO='<caption> al día: dd/mmm/yyyy'".
    std::string FormulaEncabezado() const;
    // The PDF file of one customer's sheet: "ADS-" + key + ".pdf" in the PDF folder.
    static std::string ArchivoHoja(const std::string& carpeta, const std::string& clave);

    // cmdEnviar: fills the work table with the documents of the customers that have an
    // address and sends each one its sheet. False when something failed (said in a message).
    bool Envia();

  protected:
    void EnlazaCombos() override;
    void AlSalir(Control& c) override;
    void AlTerminarCarga() override;
    void Imprimir() override;

  private:
    std::string LlenaTabla(const FiltrosAntiguedad& f, const std::string& origen);
    void PreparaSolicitud(const std::string& tabla, const FiltrosAntiguedad& f);
    void EnviaHojas();
    bool enviando_ = false;
};

}  // namespace paratzorep::reports
