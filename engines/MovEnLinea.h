// MovEnLinea: keeps customer accounts in step between the company's database and the central
// database that the chain's companies share. Each company copies its customers, receivable
// documents and statement movements into the central database, tagged with its key
// (ClaveEmpresa); a payment taken at one company for another's document is written there
// (GrabaPago) and applied later by the owner (AplicaPagosPendientes). The engine recomputes the
// running balances of the customer statement (edoctacli), clientes.Saldo and saldoscli.
//
// The central database lives on the server that the helper library's registry names
// (kvtz5.ini, section [kvtz5]: SELservidor, SELbaseDeDatos, SELpuerto, SELusuario and
// SELpassword); BasesDD says whether it is in use. The company database is the session's
// (BaseDD.cMiBase, through the database opener); the company's key is the session's
// ClaveEmpresa.
//
// Every operation that writes to the central database connects to it before it touches the
// company database, so a central server that does not answer changes nothing. Each payment is
// applied in one company transaction that also records the central row it came from
// (pagossel), and only then is the central row marked Aplicado: after a stop at any point a
// second run applies every payment once (see AplicaPagosPendientes).
//
// Failures throw ErrorMovEnLinea with a Spanish message for the user; data-access failures
// inside carry what was being done and the SQL.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/BaseDD.h"
#include "host/DatosConecte.h"
#include "host/Menu.h"

namespace paratzorep::engines {

class ErrorMovEnLinea : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// A payment taken here for a document of another company.
struct DatosPago {
    std::string clave;    // the customer
    std::string fecha;    // "yyyy-mm-dd"; "" for the central server's date
    std::string hora;     // "hh:mm"; "" for the central server's time
    double cantidad = 0;  // CantidadPago, more than 0
    std::string concepto;
    std::string concepto2;  // the payment form's text boxes 5 and 6
    std::string concepto3;
    std::string usuario;         // "" for the session's user
    double montoTotal = 0;       // 0 for `cantidad`
    std::int64_t idEmpresa = 0;  // this company's own statement row of the payment, 0 if none
    // The settled document: the company that owns it (Clave2Empresa), its kind ("F" invoice,
    // "R" delivery note, "C" charge) and its number in the owner's ledger (the document's Id;
    // a charge's Folio).
    std::string claveEmpresaDoc;
    std::string tipo;
    std::int64_t numero = 0;
    std::int64_t idCxC = 0;  // the central ledger row (cxc.Id in the central database)
};

struct ResumenCrear {
    bool enUso = true;  // false: BasesDD is off and nothing was done
    bool baseCreada = false;
    int tablasCreadas = 0;
    std::vector<std::string> sentencias;  // every CREATE and ALTER run, in order
};

struct ResumenClientes {
    bool enUso = true;
    int leidos = 0;
    int agregados = 0;
    int yaEstaban = 0;
    std::vector<std::string> omitidos;  // keys that cannot go into SQL as they stand
};

struct ResumenPagos {
    bool enUso = true;
    int pendientes = 0;         // central rows read
    int aplicados = 0;          // applied in this run
    int yaAplicados = 0;        // found applied by an earlier, interrupted run: only marked
    double importe = 0;         // sum of the payments applied in this run
    std::int64_t folioSEL = 0;  // the high-water mark after the run
};

struct ResumenRecalculo {
    bool encontrado = false;  // false: no statement row of that Id
    std::string clave;
    std::int32_t moneda = 1;
    std::int64_t movimientos = 0;  // rows recomputed (the start row and those after it)
    double saldo = 0;              // the chain's last balance
};

class MovEnLinea {
  public:
    // Takes the menu and data-access objects of the session.
    MovEnLinea();

    // The host's menu object, the data-access object, the company and the general database.
    // When the host leaves BdDemp empty the engine opens the company database itself.
    std::shared_ptr<host::Menu> Menu;
    std::shared_ptr<host::BaseDD> deBdD;
    host::Conexion BdDemp;
    host::Conexion BdDgen;

    // Recomputes the chain from a row onward one row at a time, as the statements of the
    // recomputation read (slow on long chains); otherwise in one statement per chain.
    bool RecalculoPorRenglon = false;

    // Called after each payment is committed in the company and before its central row is
    // marked (progress; tests use it to stop the central server there).
    std::function<void(std::int64_t idCentral, int hechos, int total)> AlAplicar;

    // saldoscli (currency 1) set to clientes.Saldo when they differ; true when it changed.
    bool ActualizaSaldo(const std::string& clave);
    // Copies one company customer into the central database with its balance and an opening
    // statement row; false when the central database already has that key.
    bool AgregaCliente(const std::string& clave);
    // AgregaCliente for every customer of the company.
    ResumenClientes AgregarClientesSEL();
    // Applies the payments that other companies took for this company's documents.
    ResumenPagos AplicaPagosPendientes();
    // Whether the central database is in use (BasesDD).
    bool CompruebaSEL() const;
    // Prepares the central database's tables (and the database when missing); `vaciar`
    // empties them for a full reload.
    ResumenCrear CrearBdDR(bool vaciar = false);
    // Copies one new statement movement (and its document, when given) to the central
    // database and opens its ledger row there; returns the central statement row's Id (0 when
    // the company has no statement row `idEdoCta`).
    std::int64_t GeneraCxCyEdoCta(std::int64_t idEdoCta, std::int64_t idDocumento, bool esRemision,
                                  double saldo, double total, double puntos);
    // Records a payment in the central database and lowers the document's balance there;
    // returns the central statement row's Id.
    std::int64_t GrabaPago(const DatosPago& pago);
    // The central server's connection values from the registry.
    void LlenaObjetoMEL(host::DatosConecte& datos) const;
    // The running balances of the company's statement from row `id` onward, then
    // clientes.Saldo and saldoscli.
    ResumenRecalculo RecalculaEdoCta(std::int64_t id);

  private:
    host::BaseDD& Base() const;
    host::Conexion AbreCentral(bool crearBase = false, bool* creada = nullptr);
    host::Conexion AbreEmpresa();
    host::Conexion Empresa();
    std::string ClaveEmpresa() const;
};

}  // namespace paratzorep::engines
