// The shared module: services every form uses (helper objects, look-ups by key, XXX
// templates, condition joining, document totals, configuration values, settings files, server
// time, folios, messages) over the session record.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/BaseDD.h"
#include "host/Interaccion.h"
#include "host/Objeto.h"
#include "toolkit/Fabrica.h"

namespace paratzorep::session {

// --- Helper objects -------------------------------------------------------------------------

// Creates "kvtz5.<clase>" and ties it to the session (settings file, data-access object,
// coordinates file, odbc.ini); empty when creation fails.
std::shared_ptr<toolkit::ObjetoKv> CreaObjetoAyuda(const std::string& clase);

template <class T>
std::shared_ptr<T> ObjetoAyuda(const std::string& clase) {
    return std::dynamic_pointer_cast<T>(CreaObjetoAyuda(clase));
}

// --- Templates and conditions ---------------------------------------------------------------

// Every "XXX" of a template replaced by the value (no quote escaping).
std::string LlenaXXX(const std::string& plantilla, const std::string& valor);
// Joins a condition of the engine's selection formula with " and ".
std::string UneCondicion(const std::string& acumulado, const std::string& condicion);
// The seller heading formula "VENDEDOR='Vendedor: <nombre>'"; "" when no seller is chosen.
std::string FormulaVendedor(const std::string& nombreVendedor);
// "Date(yyyy,m,d)" of a typed date, without zero padding; "" when it is not a date.
std::string FechaFormula(const std::string& fecha);

// --- Records ----------------------------------------------------------------------------------

// Subtotal + IVA + ImpuestoAd + Cargo1..3Cantidad + Retencion + RetencionIVA of the current
// row: the retentions are stored with their sign and are added. Missing or null fields count 0.
double TotalDocumento(const host::Recordset& documento);

// Looks a row up by its key ("Clave") in clientes, proveedores or vendedores: the trimmed key,
// quotes escaped. True when found (rs on the row).
bool BuscaXclave(const host::Conexion& cn, const std::string& tabla, const std::string& clave,
                 host::Recordset& rs);
bool BuscaCliente(const host::Conexion& cn, const std::string& clave, host::Recordset& rs);
bool BuscaProveedor(const host::Conexion& cn, const std::string& clave, host::Recordset& rs);
bool BuscaVendedor(const host::Conexion& cn, const std::string& clave, host::Recordset& rs);

// Paridad of a currency ("monedas WHERE Id=" + id); 1 when the currency is unknown.
double Paridad(const host::Conexion& cn, std::int32_t idMoneda);

// --- Configuration of the company database (table configura: Dato, Valor) ------------------

std::string LeerConfig(const host::Conexion& cn, const std::string& dato,
                       const std::string& omision = "");
// "1" is true, anything else ("0", missing) false.
bool LeerConfigBool(const host::Conexion& cn, const std::string& dato);
// Updates the value, or adds the row when missing.
void GrabarConfig(const host::Conexion& cn, const std::string& dato, const std::string& valor);
bool EsMultiempresa(const host::Conexion& cn);
bool AplicaIVA(const host::Conexion& cn);
bool AplicaImpAd(const host::Conexion& cn);
// Mail subject (Dato prefijo + "-Asunto") and text (prefijo + "-Texto", by default "Mensaje del
// correo para XXX"), with XXX replaced by the recipient's name.
std::string AsuntoCorreo(const host::Conexion& cn, const std::string& prefijo,
                         const std::string& nombre);
std::string TextoCorreo(const host::Conexion& cn, const std::string& prefijo,
                        const std::string& nombre);

// --- Replication settings ---------------------------------------------------------------------

struct Replicacion {
    std::string base = "datos1";
    std::string password;
    std::string puerto = "3309";
    std::string usuario = "root";
};
// RutaTanzo + "Para replicacion.INI", section "Mirror"; defaults for what is missing.
Replicacion LeeReplicacion();
// Puts the replication settings into the data-access object (cMiBase, cPassword, cPuerto,
// cUsuario).
void AplicaReplicacion(host::BaseDD& bd);
// The replication settings file's path.
std::string ArchivoReplicacion();

// --- Settings file (ArchivoINI) and window positions -------------------------------------------

std::string LeeIni(const std::string& seccion, const std::string& clave,
                   const std::string& omision = "");
void EscribeIni(const std::string& seccion, const std::string& clave, const std::string& valor);
// Window position on unload: "Ventana", "Linea", "Columna", "Firma" under the window's name.
void GuardaPosicion(const host::Ventana& ventana);
void LeePosicion(host::Ventana& ventana);

// --- Server ------------------------------------------------------------------------------------

// "SELECT NOW()" as "yyyy-mm-dd hh:mm:ss". Throws host::ErrorDatos.
std::string HoraServidor(const host::Conexion& cn);
// Next folio of a series (toolkit Movimientos.Foliar).
std::int64_t Foliar(const host::Conexion& cn, const std::string& tabla,
                    const std::string& campoFolio = "Folio", const std::string& serie = "");
// Hands the general values to the templates, adding UsuarioImpresion (the session's user).
void PasaGeneralesAlRpt(const host::Conexion& cnLocal,
                        std::vector<std::pair<std::string, host::Valor>> valores);

// Report-date guard: with DiasParaReportes > 0 a date is accepted only when it is a date and
// today (the server's date when the general database opens, else the workstation's) minus the
// date is at most that many days. Every refusal beeps.
bool FechaReporteValida(const std::string& fecha);
// Today's date as the guard sees it ("yyyy-mm-dd").
std::string FechaHoyServidor();

// --- Icons of the general database ----------------------------------------------------------

// Writes the icon of that description (or Id) from `base`.iconos into RutaImgs + "Tempo.img";
// returns the file's path, "" when there is no such icon.
std::string IconoPorDescripcion(const host::Conexion& cn, const std::string& descripcion,
                                const std::string& base = host::kBaseGeneral);
std::string IconoPorId(const host::Conexion& cn, std::int32_t id,
                       const std::string& base = host::kBaseGeneral);

// --- Files ---------------------------------------------------------------------------------------

bool HayArchivo(const std::string& ruta);
bool BorraArchivo(const std::string& ruta);
// A new file name under RutaTanzo + "Temporal/".
std::string ArchivoTemporal(const std::string& extension = ".tmp");

// --- User interface
// -------------------------------------------------------------------------------

host::Respuesta Mensaje(const std::string& texto, const std::string& titulo = "ParaTZOrep",
                        host::Icono icono = host::Icono::Informacion,
                        host::Botones botones = host::Botones::Aceptar);
void Beep();
void BarraPorcentaje(double i, double n, const std::string& texto = "");
void TextoEstado(const std::string& texto);

}  // namespace paratzorep::session
