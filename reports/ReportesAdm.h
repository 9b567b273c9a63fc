// ReportesAdm: the public facade through which the host opens reports, one method per report
// (46, in interface order). A method only makes sure that the report's form exists and hands it
// to the host's menu object (ShowForm) with the host's option number; the form does the rest.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "reports/Formulario.h"

namespace paratzorep::reports {

class ReportesAdm {
  public:
    void ADSClientes();          // RepAdmAdSCtes, option 218
    void ADSProveedores();       // RepAdmAdSProv, option 98
    void Ajustes();              // RepAdmAjustes, option 100
    void Apartados();            // RepAdmApar, option 304
    void AsistenciasGym();       // RepAdmGymAsistencias, option 324
    void BitacoraUsuarios();     // RepAdmMovUser, option 105
    void CargosClientes();       // RepAdmCargos, option 215
    void CargosProveedores();    // RepAdmCargos, option 95
    void ChecadorGym();          // RepAdmChecador, option 388
    void ComisionesXvendedor();  // RepAdmComisXvend, option 230
    void Compras();              // RepAdmCompras, option 93
    void ComprasND();            // RepAdmComprasND, option 94
    void Consignaciones();       // RepAdmConsigna, option 390
    void CortesDeCarne();        // RepAdmCortes, option 409
    void Cotizaciones();         // RepAdmCotiza, option 223
    void CxC();                  // RepAdmCxC, option 219
    void cxp();                  // RepAdmCxP, option 99
    void DevolClientes();        // RepAdmDevCtes, option 229
    void DevolProveedores();     // RepAdmDevProv, option 103
    void EdoCtaClientes();       // RepAdmEdoCta, option 217
    void EdoCtaProductos();      // RepAdmEdoCtaProds, option 421
    void EdoCtaProveedores();    // RepAdmEdoCta, option 97
    void Embarques();            // RepAdmEmbarques, option 234
    void Entradas();             // RepAdmEntradas, option 145
    void EntradasYcompras();     // RepAdmEntraCompra, option 361
    void EspecialDeVentas();     // RepAdmEspVtas, option 362
    void MovtosCancelados();     // RepAdmMovCanc, option 397
    void MovtosDeClientes();     // RepAdmMDC, option 425
    void Ordenes();              // RepAdmOrdenes, option 212
    void PagosClientes();        // RepAdmPagosCtes, option 216
    void PagosProveedores();     // RepAdmPagosProv, option 96
    void Pedidos();              // RepAdmPedidos, option 224
    void Perdidas();             // RepAdmPerdidas, option 104
    void ProductosRecibidos();   // RepAdmProdsRecib, option 366
    void RecepcionMercancia();   // RepAdmRecep, option 456
    void Recibos();              // RepAdmCobRecibos, option 220
    void RotacionProductos();    // RepAdmRotacion, option 431
    void SaldosAlaFechaCtes();   // RepAdmSALF, option 221
    void SaldosAlaFechaProv();   // RepAdmSALFp, option 248
    void SalidasEntradasKits();  // RepAdmKits, option 101
    void SaldosProdsCtes();      // RepAdmSdoProdsCtes, option 422
    void SeparacionMetales();    // RepAdmSepMet, option 428
    void Traspasos();            // RepAdmTraspasos, option 144
    void Utilidad();             // RepAdmUtilidad, option 231
    void UtilidadXvendedor();    // RepAdmUtilXvend, option 363
    void VentasCanceladas();     // RepAdmVtasCanc, option 365
};

// One row of the facade's table.
struct EntradaFachada {
    std::int16_t numero;
    const char* metodo;
    const char* forma;
    std::int16_t opcion;
    void (ReportesAdm::*llamada)();
};

// The 46 entry points in interface order.
const std::array<EntradaFachada, 46>& TablaFachada();

// The report's title as the user sees it: its form's caption, with the customer or supplier
// wording of the paired entries ("Cargos a clientes").
std::string TituloEntrada(const EntradaFachada& e);
// Whether the entry's form is a full report form, one that prints (not the bare form).
bool EntradaDisponible(const EntradaFachada& e);

// The default instance of a simple form (empty until first use, or after it unloaded).
std::shared_ptr<Formulario> InstanciaPorOmision(const std::string& forma);
// Forgets every default instance.
void OlvidaInstancias();

// The folder of the loaded component library (falls back to the executable's folder), with a
// final "/"; the marker file "RepCargosCtes.BND" is looked for there.
std::string CarpetaComponente();

namespace detail {
// Makes CarpetaComponente answer `carpeta` ("" restores the real folder); for tests that must
// not touch the installed folder.
void FijaCarpetaComponente(std::string carpeta);
}  // namespace detail

}  // namespace paratzorep::reports
