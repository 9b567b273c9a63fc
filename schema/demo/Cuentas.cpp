// Accounts and payments: customers' and suppliers' statements, payments and the documents
// they settle, receipts, miscellaneous charges, unidentified deposits, freight charges,
// open documents (cxc, cxp), post-dated cheques, balances per currency and expenses.
#include <algorithm>
#include <numeric>
#include <tuple>

#include "schema/demo/Simulacion.h"

namespace paratzorep::schema::detail {

namespace {

const std::vector<std::string> kBancos = {"BANAMEX", "BBVA", "SANTANDER",
                                          "BANORTE", "HSBC", "SCOTIABANK"};

// Chains each account's statement by Fecha, then Id, and returns the final
// balance per (account, currency).
std::map<std::pair<std::string, int>, long long> encadena(std::vector<Movimiento>& movs) {
    std::vector<size_t> orden(movs.size());
    std::iota(orden.begin(), orden.end(), size_t{0});
    std::sort(orden.begin(), orden.end(), [&](size_t a, size_t b) {
        const Movimiento& x = movs[a];
        const Movimiento& y = movs[b];
        return std::tie(x.clave, x.moneda, x.fecha, x.id) <
               std::tie(y.clave, y.moneda, y.fecha, y.id);
    });
    std::map<std::pair<std::string, int>, long long> saldos;
    for (size_t i : orden) {
        Movimiento& mv = movs[i];
        long long& saldo = saldos[{mv.clave, mv.moneda}];
        mv.saldoAnt = saldo;
        saldo = mv.cargo != 0 ? saldo + mv.cargo : saldo - mv.pago;
        mv.saldoAct = saldo;
    }
    return saldos;
}

}  // namespace

void Simulacion::abreCuentas() {
    aplic_ =
        lote("anexopagosctes",
             "Id,FolioDelPago,Tipo,Factura,Remision,Apartado,Cargo,IdFactura,IdRemision,"
             "IdApartado,Cliente,Cantidad,Moneda,CantidadReal,Efectivo,ChequeCuenta,ChequeOtra,"
             "Banco,NumCheque,Saldo,FechaReal,Hora,FechaAplicacion");
    recibos_ = lote("recibos", "Id,Recibo,IdPago,Fecha,Cliente,Cantidad,Cancelado,Usuario");
    gastos_ = lote("gastos", "Id,Fecha,Hora,Concepto,Cantidad,PdeV,Sucursal,Usuario");
}

Movimiento& Simulacion::movCli(int dia, int hr, const std::string& clave, int moneda,
                               long long cargo, long long pago, std::string concepto,
                               const std::string& usr) {
    Movimiento mv;
    mv.id = static_cast<int>(movsCli_.size()) + 1;
    mv.folio = sigFolioCli_++;
    mv.fecha = dia;
    mv.fechaPago = dia;
    mv.hora = hr;
    mv.clave = clave;
    mv.moneda = moneda;
    mv.cargo = cargo;
    mv.pago = pago;
    mv.concepto = std::move(concepto);
    mv.usuario = usr;
    mv.montoTotal = cargo != 0 ? cargo : pago;
    mv.movimiento = ++movsPorCuentaCli_[clave];
    movsCli_.push_back(std::move(mv));
    return movsCli_.back();
}

Movimiento& Simulacion::movProv(int dia, int hr, const std::string& clave, int moneda,
                                long long cargo, long long pago, std::string concepto,
                                const std::string& usr) {
    Movimiento mv;
    mv.id = static_cast<int>(movsProv_.size()) + 1;
    mv.folio = sigFolioProv_++;
    mv.fecha = dia;
    mv.fechaPago = dia;
    mv.hora = hr;
    mv.clave = clave;
    mv.moneda = moneda;
    mv.cargo = cargo;
    mv.pago = pago;
    mv.concepto = std::move(concepto);
    mv.usuario = usr;
    mv.montoTotal = cargo != 0 ? cargo : pago;
    mv.movimiento = ++movsPorCuentaProv_[clave];
    movsProv_.push_back(std::move(mv));
    return movsProv_.back();
}

// medio: 0 cash, 1 own-bank cheque, 2 other-bank cheque, 3 cash and other-bank cheque,
// -1 none (credits that are not payments).
void Simulacion::aplicacion(int folioPago, const Documento* doc, int folioCargo, long long cantidad,
                            long long saldoDespues, int moneda, int dia, int hr, int medio,
                            const std::string& cliente) {
    long long efectivo = 0, chCuenta = 0, chOtra = 0;
    std::string banco, cheque;
    switch (medio) {
        case 0:
            efectivo = cantidad;
            break;
        case 1:
            chCuenta = cantidad;
            break;
        case 2:
            chOtra = cantidad;
            break;
        case 3:
            efectivo = cantidad / 2;
            chOtra = cantidad - efectivo;
            break;
        default:
            break;
    }
    if (chCuenta != 0 || chOtra != 0) {
        banco = elige(az_, kBancos);
        cheque = conCeros(az_.entre(1, 9999999), 7);
    }
    const int kind = doc ? doc->kind : -1;
    const int idDoc = doc ? doc->id : 0;
    aplic_->agrega(Renglon()
                       .n(sigAplic_++)
                       .n(folioPago)
                       .t(doc ? std::string(1, kLetraDoc[kind]) : std::string("C"))
                       .n(kind == kFactura ? idDoc : 0)
                       .n(kind == kRemision ? idDoc : 0)
                       .n(kind == kApartado ? idDoc : 0)
                       .n(doc ? 0 : folioCargo)
                       .n(kind == kFactura ? idDoc : 0)
                       .n(kind == kRemision ? idDoc : 0)
                       .n(kind == kApartado ? idDoc : 0)
                       .t(cliente)
                       .m(cantidad)
                       .n(moneda)
                       .m(cantidad)
                       .m(efectivo)
                       .m(chCuenta)
                       .m(chOtra)
                       .t(banco)
                       .t(cheque)
                       .m(saldoDespues)
                       .f(dia)
                       .h(hr)
                       .f(dia));
}

void Simulacion::recibo(const Movimiento& mv) {
    const int numero = sigRecibo_++;
    if (az_.probable(0.03)) return;  // the receipt was never captured
    int fecha = mv.fecha;
    if (az_.probable(0.02)) fecha += static_cast<int>(az_.entre(35, 70));  // captured out of range
    recibos_->agrega(Renglon()
                         .n(++sigReciboId_)
                         .n(numero)
                         .n(mv.id)
                         .f(fecha)
                         .t(mv.clave)
                         .m(mv.pago)
                         .n(az_.probable(0.03) ? 1 : 0)
                         .t(mv.usuario));
}

void Simulacion::pagosDelDia(int d, std::vector<Evento>& pagos) {
    // One payment per customer and currency settles all that customer's documents due today.
    struct Parte {
        Documento* doc;
        RenglonCx* cx;
        int folioCargo;
        long long monto;
    };
    std::map<std::pair<int, int>, std::vector<Parte>> grupos;  // (customer, currency)
    for (const Evento& e : pagos) {
        if (e.tipo == kPago) {
            Documento& doc = docs_[e.kind][static_cast<size_t>(e.indice)];
            if (doc.cancelada || doc.saldo <= 0 || doc.cxc < 0) continue;
            const long long monto = e.monto == 0 ? doc.saldo : std::min(e.monto, doc.saldo);
            if (monto <= 0) continue;
            grupos[{doc.cli, doc.moneda}].push_back(
                {&doc, &cxc_[static_cast<size_t>(doc.cxc)], 0, monto});
        } else {
            RenglonCx& cx = cxc_[static_cast<size_t>(e.indice)];
            if (!cx.abierta || cx.saldo <= 0) continue;
            const long long monto = e.monto == 0 ? cx.saldo : std::min(e.monto, cx.saldo);
            const int cli = std::stoi(cx.clave.substr(1)) - 1;
            grupos[{cli, cx.moneda}].push_back({nullptr, &cx, cx.numero, monto});
        }
    }
    for (auto& [llave, partes] : grupos) {
        Cliente& cli = clis_[static_cast<size_t>(llave.first)];
        long long total = 0;
        for (const auto& p : partes) total += p.monto;
        const bool automatico = az_.probable(0.04);
        std::string concepto;
        if (automatico)
            concepto = "ABONO AUTOMATICO A CXC";
        else if (partes.size() > 1)
            concepto = "PAGO A VARIOS DOCUMENTOS";
        else if (partes[0].doc)
            concepto = std::string("PAGO A ") + kPalabraDoc[partes[0].doc->kind] + " " +
                       partes[0].doc->serie + std::to_string(partes[0].doc->numero);
        else
            concepto = "PAGO A CARGO " + std::to_string(partes[0].folioCargo);
        if (automatico && partes[0].doc)
            concepto += std::string(" ") + kPalabraDoc[partes[0].doc->kind] + " " +
                        partes[0].doc->serie + std::to_string(partes[0].doc->numero);
        // Some payments are captured days after they were received.
        int fecha = d;
        if (az_.probable(0.06)) fecha = std::max(inicio_, d - static_cast<int>(az_.entre(1, 4)));
        const int hr = hora();
        const std::string quien = automatico ? std::string("SISTEMA") : usuario();
        Movimiento& mv = movCli(fecha, hr, cli.clave, llave.second, 0, total, concepto, quien);
        if (az_.probable(0.1)) mv.fechaPago = fecha - static_cast<int>(az_.entre(1, 3));
        mv.concepto2 = automatico ? "" : "RECIBIDO EN " + elige(az_, sucursales_);
        const int medio = automatico ? -1 : static_cast<int>(az_.entre(0, 3));
        for (auto& p : partes) {
            p.cx->saldo -= p.monto;
            if (p.cx->saldo <= 0) p.cx->abierta = false;
            long long saldoDoc = p.cx->saldo;
            if (p.doc) {
                p.doc->saldo -= p.monto;
                p.doc->pagado += p.monto;
                saldoDoc = p.doc->saldo;
                if (p.doc->kind == kApartado && p.doc->saldo == 0) p.doc->entregado = true;
            }
            aplicacion(mv.folio, p.doc, p.folioCargo, p.monto, saldoDoc, llave.second, fecha, hr,
                       medio, cli.clave);
        }
        if (!automatico) recibo(mv);
        cli.ultPago = std::max(cli.ultPago, fecha);
        cli.puntos += total / 10000;
    }
}

void Simulacion::pagoCompra(int d, Compra& cp, long long monto) {
    if (cp.cancelada || monto <= 0 || cp.cxp < 0) return;
    Proveedor& pv = provs_[static_cast<size_t>(cp.prov)];
    const int hr = hora();
    const std::string quien = usuario();
    movProv(d, hr, pv.clave, cp.moneda, 0, monto,
            std::string("PAGO A PROVEEDOR ") + (cp.nd ? "COMPRA ND " : "COMPRA ") + cp.factura,
            quien);
    cp.saldo -= monto;
    cp.pagado += monto;
    RenglonCx& cx = cxp_[static_cast<size_t>(cp.cxp)];
    cx.saldo -= monto;
    if (cx.saldo <= 0) cx.abierta = false;
    pv.ultPago = d;
}

// Charges to customers (interest, bounced cheques) and deposits that nobody could match
// to a customer.
void Simulacion::cargosDelDia(int d) {
    for (int k = cuantos(0.25); k > 0; --k) cargoMiscelaneo(d);
    if (az_.probable(0.15 * factorDia_)) {
        const int hr = hora();
        const long long monto = az_.entre(500, 20000) * 100;
        movCli(d, hr, "", 1, 0, monto, "DEPOSITO NO IDENTIFICADO", "ADMIN").concepto2 =
            "DEPOSITO BANCARIO";
    }
}

void Simulacion::cargoMiscelaneo(int d) {
    const int ci = static_cast<int>(az_.entre(0, static_cast<long long>(clis_.size()) - 1));
    Cliente& cli = clis_[static_cast<size_t>(ci)];
    if (cli.diasCredito == 0) return;
    const long long monto = az_.entre(50, 1500) * 100;
    const int hr = hora();
    const char* concepto =
        az_.probable(0.6) ? "CARGO POR INTERESES MORATORIOS" : "CARGO POR CHEQUE DEVUELTO";
    const std::string quien = usuario();
    Movimiento& mv = movCli(d, hr, cli.clave, 1, monto, 0, concepto, quien);
    RenglonCx cx;
    cx.id = static_cast<int>(cxc_.size()) + 1;
    cx.clave = cli.clave;
    cx.fecha = d;
    cx.vence = d + 15;
    cx.tipo = 'C';
    cx.numero = mv.folio;
    cx.saldo = monto;
    cx.total = monto;
    cxc_.push_back(cx);
    if (az_.probable(0.6))
        programa(d + static_cast<int>(az_.entre(5, 40)),
                 {kPagoCargo, 0, static_cast<int>(cxc_.size()) - 1, 0});
}

// Now and then a supplier charges a freight.
void Simulacion::cargoPorFlete(int d) {
    if (!az_.probable(0.05 * factorDia_)) return;
    Proveedor& pv =
        provs_[static_cast<size_t>(az_.entre(0, static_cast<long long>(provs_.size()) - 1))];
    const long long monto = az_.entre(200, 3000) * 100;
    const int hr = hora();
    const std::string quien = usuario();
    Movimiento& mv = movProv(d, hr, pv.clave, pv.moneda, monto, 0, "CARGO POR FLETE", quien);
    RenglonCx cx;
    cx.id = static_cast<int>(cxp_.size()) + 1;
    cx.clave = pv.clave;
    cx.fecha = d;
    cx.vence = d + 30;
    cx.tipo = 'C';
    cx.numero = mv.folio;
    cx.saldo = monto;
    cx.total = monto;
    cx.moneda = pv.moneda;
    cxp_.push_back(cx);
}

// Expenses paid from the till or the office.
void Simulacion::gastosDelDia(int d) {
    for (int k = cuantos(1.5); k > 0; --k) {
        const bool pdv = az_.probable(0.4);
        const std::array<const char*, 6> conceptos = {
            "PAPELERIA", "LUZ", "AGUA", "GASOLINA", "MANTENIMIENTO", "COMIDA DEL PERSONAL"};
        gastos_->agrega(Renglon()
                            .n(sigGasto_++)
                            .f(d)
                            .h(hora())
                            .t(conceptos[static_cast<size_t>(az_.entre(0, 5))])
                            .m(az_.entre(50, 3000) * 100)
                            .n(pdv ? 1 : 0)
                            .t(sucursales_[static_cast<size_t>(az_.entre(0, 2))])
                            .t(pdv ? "CAJA1" : "ADMIN"));
    }
}

// Open documents, post-dated cheques, the chained statements and the balances per
// currency (kept for the customers' and suppliers' rows).
void Simulacion::cierreCuentas() {
    for (auto* l : {&aplic_, &recibos_, &gastos_}) (*l)->termina();
    auto cxc = lote("cxc", "Id,Clave,Fecha,Vencimiento,Tipo,Numero,NumPago,Saldo,Total,IdMoneda");
    for (const auto& cx : cxc_)
        if (cx.abierta && cx.saldo > 0)
            cxc->agrega(Renglon()
                            .n(cx.id)
                            .t(cx.clave)
                            .f(cx.fecha)
                            .f(cx.vence)
                            .t(std::string(1, cx.tipo))
                            .n(cx.numero)
                            .n(1)
                            .m(cx.saldo)
                            .m(cx.total)
                            .n(cx.moneda));
    cxc->termina();
    auto cxp = lote("cxp", "Id,Clave,Fecha,Vencimiento,Tipo,Numero,NumPago,Saldo,Total,IdMoneda");
    for (const auto& cx : cxp_)
        if (cx.abierta && cx.saldo > 0)
            cxp->agrega(Renglon()
                            .n(cx.id)
                            .t(cx.clave)
                            .f(cx.fecha)
                            .f(cx.vence)
                            .t(std::string(1, cx.tipo))
                            .n(cx.numero)
                            .n(1)
                            .m(cx.saldo)
                            .m(cx.total)
                            .n(cx.moneda));
    cxp->termina();

    // Post-dated cheques for some open documents; a few already cashed or cancelled.
    auto ch = lote("chequespf",
                   "IdCheque,Fecha,FechaCobro,Cliente,Banco,NumCheque,Cantidad,IdMoneda,Cobrado,"
                   "Cancelado,Usuario");
    auto chd = lote("chequespfdetalle", "Id,IdCheque,IdCxC,Cantidad");
    int sigDet = 1;
    for (const auto& cx : cxc_) {
        if (!cx.abierta || cx.saldo <= 0 || cx.tipo == 'C' || !az_.probable(0.08)) continue;
        const int id = sigCheque_++;
        const int fecha = std::max(cx.fecha, fin_ - static_cast<int>(az_.entre(0, 40)));
        ch->agrega(Renglon()
                       .n(id)
                       .f(fecha)
                       .f(fecha + static_cast<int>(az_.entre(5, 60)))
                       .t(cx.clave)
                       .t(elige(az_, kBancos))
                       .t(conCeros(az_.entre(1, 9999999), 7))
                       .m(cx.saldo)
                       .n(cx.moneda)
                       .n(0)
                       .n(az_.probable(0.05) ? 1 : 0)
                       .t(usuario()));
        chd->agrega(Renglon().n(sigDet++).n(id).n(cx.id).m(cx.saldo));
    }
    ch->termina();
    chd->termina();

    const std::string cols =
        "Id,Folio,Foliote,Movimiento,Fecha,Hora,FechaDePago,Clave,CantidadCargo,CantidadPago,"
        "Concepto,Concepto2,Concepto3,Usuario,MontoTotal,MonedaMT,IdMoneda,Moneda,NotaCredito,"
        "SaldoAnterior,SaldoActual";
    auto escribe = [&](std::vector<Movimiento>& movs, const char* t) {
        auto l = lote(t, cols);
        for (const Movimiento& mv : movs)
            l->agrega(Renglon()
                          .n(mv.id)
                          .n(mv.folio)
                          .n(mv.folio)
                          .n(mv.movimiento)
                          .f(mv.fecha)
                          .h(mv.hora)
                          .f(mv.fechaPago)
                          .t(mv.clave)
                          .m(mv.cargo)
                          .m(mv.pago)
                          .t(mv.concepto)
                          .t(mv.concepto2)
                          .t("")
                          .t(mv.usuario)
                          .m(mv.montoTotal)
                          .n(mv.moneda)
                          .n(mv.moneda)
                          .n(mv.moneda)
                          .n(mv.notaCredito)
                          .m(mv.saldoAnt)
                          .m(mv.saldoAct));
        l->termina();
    };
    saldosCli_ = encadena(movsCli_);
    saldosProv_ = encadena(movsProv_);
    escribe(movsCli_, "edoctacli");
    escribe(movsProv_, "edoctaprov");

    // Every customer has a balance row in pesos; a supplier only when it has none at all.
    auto sc = lote("saldoscli", "Clave,IdMoneda,Saldo");
    for (const Cliente& c : clis_) {
        bool tiene1 = false;
        for (int m = 1; m <= 3; ++m) {
            auto it = saldosCli_.find({c.clave, m});
            if (it == saldosCli_.end()) continue;
            sc->agrega(Renglon().t(c.clave).n(m).m(it->second));
            if (m == 1) tiene1 = true;
        }
        if (!tiene1) sc->agrega(Renglon().t(c.clave).n(1).m(0));
    }
    sc->termina();
    auto sp = lote("saldospro", "Clave,IdMoneda,Saldo");
    for (const Proveedor& p : provs_) {
        bool alguno = false;
        for (int m = 1; m <= 3; ++m) {
            auto it = saldosProv_.find({p.clave, m});
            if (it == saldosProv_.end()) continue;
            sp->agrega(Renglon().t(p.clave).n(m).m(it->second));
            alguno = true;
        }
        if (!alguno) sp->agrega(Renglon().t(p.clave).n(1).m(0));
    }
    sp->termina();
}

}  // namespace paratzorep::schema::detail
