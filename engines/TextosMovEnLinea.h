// The statement texts of the online movements engine, one builder each, so that the engine and
// its tests share them. Table-form sources ("edoctacli WHERE ...") are opened with AbrirTabla;
// the others are run with Executar. Keys go in as they stand (the engine checks them first,
// see ClaveAceptable); numbers are written by NumeroSql.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace paratzorep::engines::detail {

// A double as the statements carry it: the shortest text that reads back as the same value
// ("1500", "1234.5", "-0.25"); -0 is "0".
std::string NumeroSql(double valor);
// Whether a key may go into a quoted SQL literal as it stands: not empty, no quote, backslash
// or control character.
bool ClaveAceptable(const std::string& clave);

// --- Statement recomputation -----------------------------------------------------------------

std::string FuenteMovimiento(std::int64_t id);
// The movement before `id` on the same date, and failing that the last one of an earlier date.
std::string FuenteAnteriorMismaFecha(const std::string& clave, std::int32_t moneda,
                                     const std::string& fecha, std::int64_t id);
std::string FuenteAnteriorFechaPrevia(const std::string& clave, std::int32_t moneda,
                                      const std::string& fecha);
std::string ActualizaSaldosMovimiento(double nuevo, double anterior, std::int64_t id);
std::string FuenteSiguiente(std::int32_t moneda, const std::string& clave, const std::string& fecha,
                            std::int64_t id);
// "UPDATE clientes SET Saldo=... WHERE Clave='...'" (the recomputation's last step).
std::string ActualizaSaldoCliente(double saldo, const std::string& clave);
// The chain from `id` onward in one statement: running sums over the chain (window functions),
// started from `apertura`, added in the chain's order as the row-by-row pass adds them.
std::string RecalculoEnConjunto(std::int64_t id, double apertura);
// The chain's last movement (its balance after a recomputation in one statement).
std::string FuenteUltimoMovimiento(const std::string& clave, std::int32_t moneda);

// --- Balance table ---------------------------------------------------------------------------

std::string FuenteSaldoscli(const std::string& clave);
std::string ActualizaSaldoscli(double saldo, const std::string& clave);
// The shared customer look-up (all columns).
std::string BuscaCliente(const std::string& clave);

// --- Customers to the central database ------------------------------------------------------

std::string FuenteClientesEmpresa();  // "clientes ORDER BY Clave"
std::string FijaSaldoCliente(double saldo, const std::string& clave);
std::string FuentePrimerMovimiento(const std::string& clave);
std::string SumaPuntos(double puntos, const std::string& clave);

// --- Documents and ledger ----------------------------------------------------------------------

// "remisiones" or "facturas" " WHERE Id=" + id; with id -9: the empty set to append to.
std::string FuenteDocumento(bool esRemision, std::int64_t id);
std::string FuenteVacia(const std::string& tabla);  // tabla + " WHERE Id=-9"
std::string FuenteCxC(std::int64_t id);             // "cxc WHERE Id=" + id
std::string FuenteCxCEmpresa(std::int64_t id);      // the same + " LIMIT 1"
std::string BorraCxC(std::int64_t id);
std::string ActualizaSaldoCxC(double saldo, std::int64_t id);
// The settled document of a central payment, found by its owner: "F" invoice, "R" delivery
// note (`numero` = the document's Id there), "C" charge (`numero` = the charge's Folio there).
std::string FuenteDocumentoCentral(const std::string& tipo, const std::string& claveEmpresa,
                                   std::int64_t numero);
std::string FuenteAnexoVacio();  // "anexopagosctes WHERE FolioDelPago=-9"
std::string FuenteCargoEmpresa(std::int64_t folio);
// The company's ledger row of a document ("F", "R": its Id; "C": the charge's Folio).
std::string FuenteCxCDeDocumento(const std::string& tipo, std::int64_t numero);
// A document's balance after a payment (and, in the owner's database, what it has been paid).
std::string ActualizaSaldoDocumento(bool esRemision, double saldo, std::int64_t id);
std::string ActualizaDocumentoPagado(bool esRemision, double saldo, double pago, std::int64_t id);
std::string ActualizaUltPago(const std::string& fecha, const std::string& clave);

// --- Pending payments -------------------------------------------------------------------------

std::string FuentePagosPendientes(const std::string& claveEmpresa, std::int64_t folioSEL);
std::string MarcaAplicado(std::int64_t id);
// The company's record of the central payments it applied (one row per central Id).
std::string FuenteMarcaSEL(std::int64_t idSEL);
std::string CompletaMarcaSEL(std::int64_t idSEL, std::int64_t folio, std::int64_t idEdoCta);
// The high-water mark of the central rows already looked at, in the company's configura.
inline constexpr const char* kFolioSEL = "FolioSEL";

// --- Central database layout (CrearBdDR) ---------------------------------------------------------

// The central database's tables, in the order they are prepared.
const std::vector<std::string>& TablasCentrales();
std::string MuestraDefinicion(const std::string& tabla);  // "SHOW CREATE TABLE " + tabla
std::string Altera(const std::string& tabla, const std::string& clausula);  // "Alter table "...
std::string Vacia(const std::string& tabla);                                // "Truncate table "...
// A company table's definition made safe to run where the table may already exist.
std::string CreaSiFalta(const std::string& definicion);
// What `tabla` lacks (or carries and must lose) given its SHOW CREATE TABLE text, in the order
// the clauses are run; `claveEmpresa` fills the default of ClaveEmpresa.
std::vector<std::string> ClausulasPendientes(const std::string& tabla,
                                             const std::string& definicion,
                                             const std::string& claveEmpresa);

}  // namespace paratzorep::engines::detail
