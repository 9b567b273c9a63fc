// The simulated business behind the demo company. One class holds the state that
// the domains share (catalogues, documents, accounts, the day's agenda); its
// member functions live in one source file per domain:
//
//   Simulacion.cpp   the run: batches, phases, the day's schedule, the agenda, progress
//   Catalogos.cpp    branches, currencies, lines, sellers, settings, products, customers, suppliers
//   Ventas.cpp       invoices, delivery notes, layaways, tickets, cancellations, returns, credit
//   notes Cuentas.cpp      statements, payments and their applications, receipts, open documents,
//                    post-dated cheques, balances, expenses
//   Compras.cpp      purchases, replenishment, returns to suppliers
//   Inventario.cpp   warehouse history, entries, transfers, adjustments, losses, metal
//                    separations, meat cuts, containers lent to customers
//   Bitacora.cpp     the users' activity log and its structure texts
//   Plantillas.cpp   the template store's annex and the general database's icons
//
// Each domain opens its row batches in abre<Dominio>(), adds its day's work from
// dia() and writes what it kept in memory in cierre<Dominio>().
//
// Same seed, same data: every draw of chance comes from `az_` in a fixed order,
// so a draw added or removed anywhere changes every table written after it. New
// data should draw from a stream of its own, a member of its domain's section
// (`Azar azAnticipos_ = azarDe(op_.semilla, "anticipos");`), which leaves the data of
// the existing tables as it was (the demo's tests pin a checksum of every table).
#pragma once

#include <array>
#include <chrono>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "schema/demo/Comun.h"

namespace paratzorep::schema::detail {

enum Kind { kFactura = 0, kRemision = 1, kApartado = 2 };
inline constexpr const char* kTablaDoc[] = {"facturas", "remisiones", "apartados"};
inline constexpr const char* kPalabraDoc[] = {"FACTURA", "REMISION", "APARTADO"};
inline constexpr char kLetraDoc[] = {'F', 'R', 'A'};

// The system's users (the activity log walks them in this order).
extern const std::vector<std::string> kUsuarios;
struct Producto {
    std::string clave, descrip, unidad;
    int linea = 0, sublinea = 0, marca = 0, clase = 0;
    std::string prov1, prov2;
    long long costo = 0, costoProm = 0, costoBase = 0;  // cents
    std::array<long long, 5> precio{};
    std::array<int, 5> desc{};
    std::array<double, 5> comis{};
    int numPrecio = 1, bloqueado = 0;
    long long exist = 0, minimo = 0;  // thousandths
    int alta = 0;
};

struct Cliente {
    std::string clave, nombre, rfc, direccion, colonia, ciudad, cp, tel, email, clasif, vendedor;
    long long limite = 0;
    int diasCredito = 0, numPrecio = 1, alta = 0, ultPago = 0;
    int monedaExtra = 0;  // 0: pesos only; 2 or 3: also dollars or euros
    long long puntos = 0;
};

struct Proveedor {
    std::string clave, nombre, rfc, direccion, ciudad, tel, email, contacto, clasif;
    int diasCredito = 30, moneda = 1, ultPago = 0;
};

struct Partida {
    int prod = 0;
    long long cant = 0;  // thousandths
    long long precio = 0, precioNeto = 0, costoProm = 0;
    long long devueltos = 0;
    int idKardex = 0, remision = 0, numPrecio = 1;
    double paridadCompra = 1.0;
    long long descuento = 0;  // line discount percent
};

struct Documento {
    int kind = 0, id = 0, numero = 0;
    std::string serie, vendedor, sucursal, usuario;
    int fecha = 0, hora = 0, cli = 0;
    bool cancelada = false, afectada = true, pdev = false, credito = false, facturada = false,
         entregado = false, tuvoCredito = false, deRemisiones = false;
    int fechaCanc = 0, idFactura = 0, moneda = 1;
    double paridad = 1.0;
    std::array<int, 5> desc{};
    long long subtotal = 0, iva = 0, impAd = 0, cargo1 = 0, ret = 0, retIva = 0, total = 0,
              pagado = 0, saldo = 0;
    int vence = 0, cxc = -1;
    std::vector<Partida> partidas;
};

struct Movimiento {
    int id = 0, folio = 0, fecha = 0, hora = 0, fechaPago = 0, moneda = 1, notaCredito = 0;
    std::string clave, concepto, concepto2, usuario;
    long long cargo = 0, pago = 0, montoTotal = 0, saldoAnt = 0, saldoAct = 0;
    int movimiento = 0;
};

struct RenglonCx {
    int id = 0, fecha = 0, vence = 0, numero = 0, moneda = 1;
    std::string clave;
    char tipo = 'F';
    long long saldo = 0, total = 0;
    bool abierta = true;
};

struct Compra {
    bool nd = false;
    int compra = 0, fecha = 0, hora = 0, prov = 0, moneda = 1, vence = 0, cxp = -1;
    std::string factura, sucursal, usuario;
    bool cancelada = false;
    double paridad = 1.0;
    long long subtotal = 0, iva = 0, impAd = 0, total = 0, pagado = 0, saldo = 0;
};

enum TipoEvento {
    kPago,
    kCancelacion,
    kDevolucion,
    kNotaCredito,
    kPagoCargo,
    kPagoCompra,
    kDevolucionProv
};

struct Evento {
    TipoEvento tipo;
    int kind = 0;         // document kind, for customer documents
    int indice = 0;       // index into the documents, charges or purchases
    long long monto = 0;  // planned amount (cents); 0 = the whole balance
};

class Simulacion {
  public:
    Simulacion(Escritores& c, const OpcionesDemo& op, ConteoFilas& conteos);

    void ejecuta();
    // Reports progress through the interaction sink (a few times a second at most, always
    // when `final`): the phase, the rows written and their rate.
    void informa(bool final = false);

  private:
    // --- the run (Simulacion.cpp) ------------------------------------------
    void avisa(std::string fase);
    std::string tabla(const std::string& t) const { return "`" + op_.baseEmpresa + "`." + t; }
    std::unique_ptr<Lote> lote(const std::string& t, const std::string& cols) {
        return std::make_unique<Lote>(c_, conteos_, tabla(t), cols);
    }
    // A batch for a table of the general database.
    std::unique_ptr<Lote> loteGeneral(const std::string& t, const std::string& cols) {
        return std::make_unique<Lote>(c_, conteos_, "`" + op_.baseGeneral + "`." + t, cols);
    }
    int hora() { return static_cast<int>(az_.entre(8 * 3600, 20 * 3600)); }
    std::string telefono(const char* lada) {
        return junta({lada, std::to_string(az_.entre(3000, 3999)), " ",
                      std::to_string(az_.entre(1000, 9999))});
    }
    const std::string& usuario() { return elige(az_, kUsuarios); }
    double paridad(int moneda, int dia) const {
        if (moneda == 1) return 1.0;
        const int k = (dia * 7919) % 250;
        const double usd = 17.50 + k / 100.0;
        return moneda == 2 ? usd : usd + 1.35 + ((dia * 31) % 40) / 100.0;
    }
    void programa(int dia, const Evento& e) {
        if (dia > fin_) return;
        agenda_[static_cast<size_t>(dia - inicio_)].push_back(e);
    }
    // How many of something happen today, for a mean per scale unit on a full weekday:
    // uniform over 0..2k for the whole part k, plus one more with the probability of
    // the fraction. Sundays and Saturdays are quieter.
    int cuantos(double media);
    void dia(int d);
    void eventos(int d);

    Escritores& c_;
    const OpcionesDemo& op_;
    ConteoFilas& conteos_;
    Azar az_;
    int s_;
    int inicio_ = 0, fin_ = 0;
    double factorDia_ = 1.0;
    std::vector<std::vector<Evento>> agenda_;
    std::string fase_;
    std::chrono::steady_clock::time_point t0_, ultimoAviso_;
    long long filasEstimadas_ = 0;

    // --- catalogues and settings (Catalogos.cpp) -------------------------
    void catalogos();
    void productos();
    void clientesYproveedores();
    void cierreCatalogos();

    std::vector<Producto> prods_;
    std::vector<std::vector<int>> prodsPorClase_;
    std::vector<int> prodsVendibles_;
    std::vector<Cliente> clis_;
    std::vector<Proveedor> provs_;
    std::vector<std::string> vendedores_;
    std::vector<std::string> sucursales_ = {"01", "02", "03", "04"};

    // --- sales documents (Ventas.cpp) ------------------------------------
    void abreVentas();
    void ventasDelDia(int d);
    void venta(int d, int kind);
    void facturaDeRemisiones(int d, int cli);
    void ticket(int d);
    void cancelacion(int d, Documento& doc);
    void devolucion(int d, Documento& doc);
    void notaCredito(int d, Documento& doc);
    long long totalizar(Documento& doc);
    void cierreVentas();

    std::array<std::vector<Documento>, 3> docs_;
    std::array<int, 3> folioDoc_{};
    std::map<std::pair<int, int>, std::vector<int>> remisionesPendientes_;  // (cli, moneda) -> idx
    int sigTicket_ = 1, sigTicketId_ = 1, sigDevCte_ = 1, sigNota_ = 1;
    std::unique_ptr<Lote> tickets_, ticketsDet_, devCtes_, devCtesDet_, notas_, notasDet_;
    Azar azDescuentos_ = azarDe(op_.semilla, "descuentos");  // the fourth document discount

    // --- accounts and payments (Cuentas.cpp) -----------------------------
    void abreCuentas();
    Movimiento& movCli(int dia, int hr, const std::string& clave, int moneda, long long cargo,
                       long long pago, std::string concepto, const std::string& usr);
    Movimiento& movProv(int dia, int hr, const std::string& clave, int moneda, long long cargo,
                        long long pago, std::string concepto, const std::string& usr);
    void aplicacion(int folioPago, const Documento* doc, int folioCargo, long long cantidad,
                    long long saldoDespues, int moneda, int dia, int hr, int medio,
                    const std::string& cliente);
    void recibo(const Movimiento& mv);
    void pagosDelDia(int d, std::vector<Evento>& pagos);
    void pagoCompra(int d, Compra& cp, long long monto);
    void cargosDelDia(int d);
    void cargoMiscelaneo(int d);
    void cargoPorFlete(int d);
    void gastosDelDia(int d);
    void cierreCuentas();

    std::vector<Movimiento> movsCli_, movsProv_;
    std::vector<RenglonCx> cxc_, cxp_;
    // Final balance per (account, currency), known once the statements are chained.
    std::map<std::pair<std::string, int>, long long> saldosCli_, saldosProv_;
    std::map<std::string, int> movsPorCuentaCli_, movsPorCuentaProv_;
    int sigFolioCli_ = 1, sigFolioProv_ = 1, sigRecibo_ = 1, sigReciboId_ = 0, sigAplic_ = 1,
        sigCheque_ = 1, sigGasto_ = 1;
    std::unique_ptr<Lote> aplic_, recibos_, gastos_;

    // --- purchases (Compras.cpp) -----------------------------------------
    void abreCompras();
    void reposicion(int d);
    void comprasDelDia(int d);
    void compra(int d, int prov, std::vector<int> prods, bool nd);
    void devolucionProv(int d, Compra& cp);
    void cierreCompras();

    std::vector<Compra> compras_;
    int sigCompra_ = 1, sigCompraNd_ = 1, sigDevProv_ = 1;
    std::unique_ptr<Lote> comprasDet_, comprasNdDet_, devProv_, devProvDet_;

    // --- inventory (Inventario.cpp) --------------------------------------
    void abreInventario();
    // A warehouse history row: moves `cantidad` of the product and returns the row's Id (0 for
    // services, which hold no stock).
    int kardex(int prod, int dia, int hr, const char* mov, int documento, long long cantidad,
               const std::string& usuario, const std::string& sucursal = "01");
    void inventarioInicial();
    void inventarioDelDia(int d);
    void entrada(int d);
    void traspaso(int d);
    void ajuste(int d);
    void perdida(int d);
    void separacion(int d);
    void corte(int d);
    void envases(int d);
    void cierreInventario();

    std::vector<std::pair<int, std::string>> cortes_;        // product index of each cut, name
    std::map<std::pair<int, int>, long long> envasesSaldo_;  // (cli, prod) -> thousandths
    std::map<std::pair<int, int>, int> envasesUlt_;
    int sigKardex_ = 1, sigEntrada_ = 1, sigTraspaso_ = 1, sigAjuste_ = 1, sigAjusteRen_ = 1,
        sigPerdida_ = 1, sigSeparacion_ = 1, sigCorte_ = 1, sigEnvase_ = 1;
    std::unique_ptr<Lote> kardex_, entradas_, entradasDet_, traspasos_, traspasosDet_, ajustes_,
        perdidas_, perdidasDet_, separa_, separaDet_, movCortes_, edoctaspc_;
    // Lines of products no longer in the catalogue on some entries and transfers, and the
    // remarks of some metal separations.
    Azar azMercancia_ = azarDe(op_.semilla, "mercancia");
    // A line of a product that left the catalogue, on about one document in 40.
    bool lineaSinCatalogo(const std::unique_ptr<Lote>& detalle, int documento, int partida);

    // --- the users' activity log (Bitacora.cpp) ---------------------------
    void abreBitacora();
    void bitacora(int d);
    void cierreBitacora();

    int sigBitacora_ = 1;
    std::unique_ptr<Lote> bitacora_;

    // --- the template store's annex and the icons (Plantillas.cpp) --------
    void cierrePlantillas();
};

}  // namespace paratzorep::schema::detail
