// RepAdmCxC and RepAdmCxP: the open documents of the receivables ledger (cxc) and of the
// payables ledger (cxp), one row per document with its total, open balance and due date, in
// the work table "cxc" or "cxp" rendered with "cxcnvo.rpt" or "cxpnvo.rpt". The customer form
// can also rebuild each document's balance as it stood on a past date (chkAunaFecha) from the
// documents and the payments applied after that date. Both fill their work table with one
// INSERT ... SELECT per kind of document.
#pragma once

#include <string>
#include <vector>

#include "reports/Marco.h"

namespace paratzorep::reports {

// The filters of a print, as the user set them.
struct FiltrosCxC {
    std::string desdeSQL;  // "yyyy-mm-dd"; "" when blank or invalid
    std::string hastaSQL;
    std::string clave0;  // account keys, trimmed; "" when blank
    std::string clave1;
    std::vector<char> tipos;    // ledger kinds ticked ('F', 'C', 'R', 'A'; 'M', 'C', 'N')
    std::string vendedor;       // "" when none is chosen
    std::string moneda;         // the chosen currency's id; "" when none
    std::string clasificacion;  // "" when none
};

// The kind of a ledger row: its source table, key column, kind word and columns of the
// work table.
struct TipoDocumento {
    char tipo;            // ledger Tipo
    const char* tabla;    // source table
    const char* llave;    // key column of the source table
    const char* campo;    // work-table column of the document number
    const char* campoId;  // work-table column of the source row's id
    const char* palabra;  // "FACTURA " ...; "" for charges (their concept is copied)
};

class RepAdmCxC : public FormaReporte {
  public:
    RepAdmCxC();

    // The ledger conditions (due dates, key range), joined with SumaWhereAnd: " WHERE ..." or "".
    static std::string Condiciones(const FiltrosCxC& f);
    // The ledger-mode statement that fills `tabla` with the rows of one kind.
    static std::string SqlLlenado(const std::string& tabla, const TipoDocumento& t,
                                  const FiltrosCxC& f);
    // The at-a-date statement that fills `tabla` with the documents of one kind ('F', 'R' or
    // 'A') open on `fechaSQL`, each with its balance on that date.
    static std::string SqlAUnaFecha(const std::string& tabla, char tipo,
                                    const std::string& fechaSQL, const FiltrosCxC& f);
    static const std::vector<TipoDocumento>& Tipos();

  protected:
    void EnlazaCombos() override;
    void AlSalir(Control& c) override;
    bool FechaOpcional(const Control& c) const override;
    void Imprimir() override;

  private:
    void CambiaModo();
    FiltrosCxC Filtros() const;
};

class RepAdmCxP : public FormaReporte {
  public:
    RepAdmCxP();

    static std::string Condiciones(const FiltrosCxC& f) { return RepAdmCxC::Condiciones(f); }
    static std::string SqlLlenado(const std::string& tabla, const TipoDocumento& t,
                                  const FiltrosCxC& f);
    static const std::vector<TipoDocumento>& Tipos();

  protected:
    void EnlazaCombos() override;
    void AlSalir(Control& c) override;
    bool FechaOpcional(const Control&) const override { return true; }
    void Imprimir() override;

  private:
    FiltrosCxC Filtros() const;
};

}  // namespace paratzorep::reports
