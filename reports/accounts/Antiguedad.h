// What the two aging forms share (RepAdmAdSCtes, RepAdmAdSProv): the filters of a print, the
// ledger's key-range conditions and the statements that fill the work table "adsmovtos" with
// every open document of one kind, its days past due on the cut-off date and, for customers,
// the post-dated cheque applied to it. One INSERT ... SELECT per kind joins the ledger row to
// its source document (and to the customer or supplier when a classification is chosen).
#pragma once

#include <string>
#include <vector>

namespace paratzorep::reports {

struct FiltrosAntiguedad {
    std::string corteSQL;  // the cut-off date, "yyyy-mm-dd"
    std::string clave0;    // account keys, trimmed; "" when blank
    std::string clave1;
    std::vector<char> tipos;    // the kinds to list, in the order they are filled
    bool sinVencer = false;     // also the documents not yet due
    std::string clasificacion;  // "" when none is chosen
    std::string moneda;         // the chosen currency's id; "" when none
    std::string vendedor;       // customers only; "" when none
};

// A kind of ledger row: its letter, source table and the column that the ledger's Numero
// points at.
struct TipoAntiguedad {
    char tipo;
    const char* tabla;
    const char* llave;
};

// The kinds of each side, in the order of the form's check boxes or list.
const std::vector<TipoAntiguedad>& TiposAntiguedadClientes();
const std::vector<TipoAntiguedad>& TiposAntiguedadProveedores();

// The ledger's key-range filter, joined with SumaWhereAnd: " WHERE Clave>='A' AND Clave<='B'",
// " WHERE Clave='A'" when only one box is filled, "" when none. `prefijo` goes before Clave
// ("cxc." in the mail query).
std::string CondicionesAntiguedad(const FiltrosAntiguedad& f, const std::string& prefijo = "");

// The query of the mail path: open documents of customers that have an address.
std::string SqlCorreoAntiguedad(const FiltrosAntiguedad& f);

// The statement that fills `tabla` with the rows of one kind. `libro` is "cxc" or "cxp";
// `origen` replaces the ledger read ("" reads the ledger with the key-range filter) and is
// taken as already filtered by classification.
std::string SqlAntiguedad(const std::string& tabla, const std::string& libro,
                          const TipoAntiguedad& t, const FiltrosAntiguedad& f,
                          const std::string& origen = "");

}  // namespace paratzorep::reports
