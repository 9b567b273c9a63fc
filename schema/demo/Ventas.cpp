// Sales documents: invoices, delivery notes and layaways with their lines, invoices made
// from delivery notes, point-of-sale tickets, cancellations, customer returns and credit
// notes.
#include <algorithm>

#include "schema/demo/Simulacion.h"

namespace paratzorep::schema::detail {

void Simulacion::abreVentas() {
    tickets_ = lote("tickets",
                    "Id,Ticket,Serie,Fecha,Hora,Caja,Cliente,Vendedor,Sucursal,Usuario,Cancelada,"
                    "Moneda,Subtotal,IVA,Total,Efectivo,Cambio,Facturado");
    ticketsDet_ = lote("ticketsdetalle",
                       "Id,Partida,Fecha,Producto,Descripcion,Cantidad,Precio,PrecioNeto,"
                       "CostoPromedio,IdKardex");
    devCtes_ = lote("devolucionctes",
                    "DevolucionCtes,Numero,Serie,Fecha,Hora,Cliente,Tipo,Venta,NotasCredito,"
                    "Cancelada,Moneda,Paridad,Desc1,Desc2,Desc3,Desc4,Desc5,Subtotal,IVA,Total,"
                    "Usuario,Motivo");
    devCtesDet_ = lote("devolucionctesdet",
                       "DevolucionCtes,Partida,Producto,Descripcion,Cantidad,Precio,CostoPromedio,"
                       "PartidaVenta,IdKardex");
    notas_ = lote("notascredito",
                  "NotaCredito,Serie,Fecha,Hora,Cliente,Devolucion,Cancelada,Moneda,Paridad,"
                  "Subtotal,IVA,Total,Concepto,Usuario");
    notasDet_ = lote("notascreditodetalle", "NotaCredito,Partida,Tipo,Numero,Producto,Cantidad");
}

// The day's sales: invoices, delivery notes, layaways and tickets; every fifteenth day some
// customers have their pending delivery notes invoiced.
void Simulacion::ventasDelDia(int d) {
    for (int k = cuantos(9.0); k > 0; --k) venta(d, kFactura);
    for (int k = cuantos(7.0); k > 0; --k) venta(d, kRemision);
    for (int k = cuantos(0.4); k > 0; --k) venta(d, kApartado);
    for (int k = cuantos(20.0); k > 0; --k) ticket(d);
    if ((d - inicio_) % 15 == 14) {
        std::vector<int> clientes;
        for (const auto& [llave, lista] : remisionesPendientes_)
            if (!lista.empty() && az_.probable(0.12)) clientes.push_back(llave.first);
        std::sort(clientes.begin(), clientes.end());
        clientes.erase(std::unique(clientes.begin(), clientes.end()), clientes.end());
        for (int c : clientes) facturaDeRemisiones(d, c);
    }
}

long long Simulacion::totalizar(Documento& doc) {
    double factor = 1.0;
    for (int d : doc.desc)
        if (d != 0) factor *= 1.0 - d / 100.0;
    long long bruto = 0;
    for (const auto& p : doc.partidas)
        bruto += redondea(static_cast<double>(p.cant) * static_cast<double>(p.precioNeto) / 1000.0);
    doc.subtotal = redondea(static_cast<double>(bruto) * factor);
    doc.iva = redondea(static_cast<double>(doc.subtotal) * 0.16);
    doc.total = doc.subtotal + doc.iva + doc.impAd + doc.cargo1 + doc.ret + doc.retIva;
    return doc.total;
}

void Simulacion::venta(int d, int kind) {
    Documento doc;
    doc.kind = kind;
    doc.id = static_cast<int>(docs_[kind].size()) + 1;
    doc.cli = static_cast<int>(az_.entre(0, static_cast<long long>(clis_.size()) - 1));
    Cliente& cli = clis_[static_cast<size_t>(doc.cli)];
    doc.fecha = d;
    doc.hora = hora();
    doc.sucursal = sucursales_[static_cast<size_t>(az_.entre(0, 2))];
    doc.serie =
        kind == kFactura ? (doc.sucursal == "02" ? "B" : "A") : (kind == kRemision ? "R" : "AP");
    doc.numero = ++folioDoc_[kind];
    doc.vendedor =
        az_.probable(0.05) ? "" : (cli.vendedor.empty() ? elige(az_, vendedores_) : cli.vendedor);
    doc.usuario = usuario();
    doc.moneda = (cli.monedaExtra != 0 && az_.probable(0.4)) ? cli.monedaExtra : 1;
    doc.paridad = paridad(doc.moneda, d);
    doc.credito = kind == kApartado || (cli.diasCredito > 0 && az_.probable(0.7));
    doc.afectada = kind != kApartado && !az_.probable(0.03);
    doc.pdev = kind == kFactura && az_.probable(0.04);
    if (az_.probable(0.15)) {
        doc.desc[0] = static_cast<int>(az_.entre(1, 3)) * 5;
        if (az_.probable(0.4)) doc.desc[1] = static_cast<int>(az_.entre(1, 5));
        if (az_.probable(0.1)) doc.desc[2] = 2;
        if (az_.probable(0.05)) doc.desc[4] = 1;
        // A special discount on some of them, so that every one of the five is used.
        if (azDescuentos_.probable(0.12)) doc.desc[3] = 3;
    }
    const int nLin = static_cast<int>(az_.entre(1, 6));
    std::vector<int> usados;
    for (int k = 0; k < nLin; ++k) {
        const bool servicio = az_.probable(0.04);
        int pi = servicio ? elige(az_, prodsPorClase_[4]) : elige(az_, prodsVendibles_);
        if (std::find(usados.begin(), usados.end(), pi) != usados.end()) continue;
        usados.push_back(pi);
        Producto& p = prods_[static_cast<size_t>(pi)];
        Partida pt;
        pt.prod = pi;
        pt.numPrecio = cli.numPrecio;
        pt.cant = (p.clase == 1 || p.clase == 2) ? az_.entre(500, 25000) : az_.entre(1, 12) * 1000;
        if (p.clase == 0 && az_.probable(0.1)) pt.cant *= 5;
        const double par = doc.paridad;
        pt.precio =
            redondea(static_cast<double>(p.precio[static_cast<size_t>(pt.numPrecio - 1)]) / par);
        pt.descuento = az_.probable(0.1) ? 5 : 0;
        pt.precioNeto = redondea(static_cast<double>(pt.precio) * (100 - pt.descuento) / 100.0);
        pt.costoProm = redondea(static_cast<double>(p.costoProm) / par);
        pt.paridadCompra = par;
        doc.partidas.push_back(pt);
    }
    if (az_.probable(0.08)) doc.impAd = 0;
    totalizar(doc);
    if (az_.probable(0.08)) doc.impAd = redondea(static_cast<double>(doc.subtotal) * 0.08);
    if (az_.probable(0.05)) doc.cargo1 = az_.entre(100, 600) * 100;
    if (kind == kFactura && cli.clasif == "GOBIERNO" && az_.probable(0.6)) {
        doc.ret = -redondea(static_cast<double>(doc.subtotal) * 0.0125);
        doc.retIva = -redondea(static_cast<double>(doc.iva) * 2.0 / 3.0);
    } else if (kind == kFactura && az_.probable(0.01)) {
        doc.ret = redondea(static_cast<double>(doc.subtotal) * 0.0125);  // captured with the sign
    }
    totalizar(doc);
    doc.vence = d + (doc.credito ? std::max(cli.diasCredito, kind == kApartado ? 60 : 15) : 0);
    doc.saldo = doc.total;

    // Stock leaves with the document when it is applied.
    if (doc.afectada)
        for (auto& pt : doc.partidas)
            pt.idKardex =
                kardex(pt.prod, d, doc.hora, kind == kFactura ? "VENTA FACTURA" : "VENTA REMISION",
                       doc.id, -pt.cant, doc.usuario, doc.sucursal);

    const std::string nombreDoc =
        std::string(kPalabraDoc[kind]) + " " + doc.serie + std::to_string(doc.numero);
    Movimiento& cargo = movCli(d, doc.hora, cli.clave, doc.moneda, doc.total, 0,
                               "CARGO POR " + nombreDoc, doc.usuario);
    cargo.concepto2 = doc.credito ? "A CREDITO" : "DE CONTADO";
    auto& lista = docs_[kind];
    if (!doc.credito) {
        // Cash sale: the payment follows on the same day.
        Movimiento& pago = movCli(d, doc.hora + 60, cli.clave, doc.moneda, 0, doc.total,
                                  "PAGO DE CONTADO " + nombreDoc, doc.usuario);
        doc.pagado = doc.total;
        doc.saldo = 0;
        const int medio = static_cast<int>(az_.entre(0, 3));
        aplicacion(pago.folio, &doc, 0, doc.total, 0, doc.moneda, d, doc.hora + 60, medio,
                   cli.clave);
        recibo(pago);
        cli.ultPago = d;
    } else {
        RenglonCx cx;
        cx.id = static_cast<int>(cxc_.size()) + 1;
        cx.clave = cli.clave;
        cx.fecha = d;
        cx.vence = doc.vence;
        cx.tipo = kLetraDoc[kind];
        cx.numero = doc.id;
        cx.saldo = doc.saldo;
        cx.total = doc.total;
        cx.moneda = doc.moneda;
        doc.cxc = static_cast<int>(cxc_.size());
        cxc_.push_back(cx);
        // Payment plan.
        const int idx = static_cast<int>(lista.size());
        if (kind == kApartado) {
            const int abonos = static_cast<int>(az_.entre(2, 5));
            for (int a = 1; a <= abonos; ++a)
                programa(d + 14 * a, {kPago, kind, idx, a == 4 ? 0 : doc.total / 4});
        } else {
            const double r = az_.unitario();
            if (r < 0.55) {
                programa(d + static_cast<int>(az_.entre(3, cli.diasCredito + 30)),
                         {kPago, kind, idx, 0});
            } else if (r < 0.75) {
                programa(d + static_cast<int>(az_.entre(3, 30)), {kPago, kind, idx, doc.total / 2});
                programa(d + static_cast<int>(az_.entre(31, 90)), {kPago, kind, idx, 0});
            } else if (r < 0.85) {
                programa(d + static_cast<int>(az_.entre(10, 45)),
                         {kPago, kind, idx, doc.total * 2 / 5});
            }
        }
    }
    const int idx = static_cast<int>(lista.size());
    if (kind != kApartado) {
        if (az_.probable(0.025))
            programa(d + static_cast<int>(az_.entre(0, 12)), {kCancelacion, kind, idx, 0});
        else if (doc.afectada && az_.probable(0.035))
            programa(d + static_cast<int>(az_.entre(1, 25)), {kDevolucion, kind, idx, 0});
        else if (doc.credito && az_.probable(0.015))
            programa(d + static_cast<int>(az_.entre(3, 20)), {kNotaCredito, kind, idx, 0});
    }
    if (kind == kRemision && doc.afectada)
        remisionesPendientes_[{doc.cli, doc.moneda}].push_back(idx);
    lista.push_back(std::move(doc));
}

// An invoice made from a customer's delivery notes: the notes keep the debt and
// the stock movement, so the invoice neither charges nor moves stock.
void Simulacion::facturaDeRemisiones(int d, int cli) {
    for (int moneda = 1; moneda <= 3; ++moneda) {
        auto it = remisionesPendientes_.find({cli, moneda});
        if (it == remisionesPendientes_.end()) continue;
        std::vector<int> tomadas;
        for (int ri : it->second) {
            const Documento& r = docs_[kRemision][static_cast<size_t>(ri)];
            if (!r.cancelada && !r.facturada && tomadas.size() < 4) tomadas.push_back(ri);
        }
        it->second.clear();
        if (tomadas.empty()) continue;
        Documento f;
        f.kind = kFactura;
        f.id = static_cast<int>(docs_[kFactura].size()) + 1;
        f.cli = cli;
        f.fecha = d;
        f.hora = hora();
        f.sucursal = "01";
        f.serie = "A";
        f.numero = ++folioDoc_[kFactura];
        f.moneda = moneda;
        f.paridad = paridad(moneda, d);
        f.afectada = false;
        f.deRemisiones = true;
        f.usuario = usuario();
        for (int ri : tomadas) {
            Documento& r = docs_[kRemision][static_cast<size_t>(ri)];
            r.facturada = true;
            r.idFactura = f.id;
            f.vendedor = r.vendedor;
            f.credito = f.credito || r.credito;
            f.subtotal += r.subtotal;
            f.iva += r.iva;
            f.impAd += r.impAd;
            f.cargo1 += r.cargo1;
            for (Partida p : r.partidas) {
                p.remision = r.id;
                p.idKardex = 0;
                p.devueltos = 0;
                if (r.desc[0] != 0 || r.desc[1] != 0 || r.desc[2] != 0 || r.desc[4] != 0) {
                    double factor = 1.0;
                    for (int x : r.desc)
                        if (x != 0) factor *= 1.0 - x / 100.0;
                    p.precioNeto = redondea(static_cast<double>(p.precioNeto) * factor);
                }
                f.partidas.push_back(p);
            }
        }
        f.total = f.subtotal + f.iva + f.impAd + f.cargo1;
        f.vence = d;
        f.saldo = 0;
        docs_[kFactura].push_back(std::move(f));
    }
}

void Simulacion::ticket(int d) {
    const int id = sigTicketId_++;
    const int hr = hora();
    const std::string suc = sucursales_[static_cast<size_t>(az_.entre(0, 2))];
    const std::string usr = az_.probable(0.5) ? "CAJA1" : "CAJA2";
    const bool cancelado = az_.probable(0.01);
    const int nLin = static_cast<int>(az_.entre(1, 4));
    long long subtotal = 0;
    std::vector<int> usados;
    int partida = 0;
    for (int k = 0; k < nLin; ++k) {
        const int pi = elige(az_, prodsVendibles_);
        if (std::find(usados.begin(), usados.end(), pi) != usados.end()) continue;
        usados.push_back(pi);
        Producto& p = prods_[static_cast<size_t>(pi)];
        const long long cant =
            (p.clase == 1 || p.clase == 2) ? az_.entre(250, 5000) : az_.entre(1, 4) * 1000;
        const long long precio = p.precio[0];
        const long long importe = redondea(static_cast<double>(cant) * precio / 1000.0);
        subtotal += importe;
        const int kx = cancelado ? 0 : kardex(pi, d, hr, "VENTA TICKET", id, -cant, usr, suc);
        ticketsDet_->agrega(Renglon()
                                .n(id)
                                .n(++partida)
                                .f(d)
                                .t(p.clave)
                                .t(p.descrip)
                                .q(cant)
                                .m(precio)
                                .m(precio)
                                .m(p.costoProm)
                                .n(kx));
    }
    const long long iva = redondea(static_cast<double>(subtotal) * 0.16);
    const long long total = subtotal + iva;
    const long long efectivo = (total / 5000 + 1) * 5000;
    tickets_->agrega(Renglon()
                         .n(id)
                         .n(sigTicket_++)
                         .t("T")
                         .f(d)
                         .h(hr)
                         .n(usr == "CAJA1" ? 1 : 2)
                         .t(az_.probable(0.2)
                                ? clis_[static_cast<size_t>(
                                            az_.entre(0, static_cast<long long>(clis_.size()) - 1))]
                                      .clave
                                : std::string())
                         .t(az_.probable(0.3) ? elige(az_, vendedores_) : std::string())
                         .t(suc)
                         .t(usr)
                         .n(cancelado ? 1 : 0)
                         .n(1)
                         .m(subtotal)
                         .m(iva)
                         .m(total)
                         .m(efectivo)
                         .m(efectivo - total)
                         .n(0));
}

void Simulacion::cancelacion(int d, Documento& doc) {
    if (doc.cancelada || doc.facturada || doc.tuvoCredito) return;
    Cliente& cli = clis_[static_cast<size_t>(doc.cli)];
    doc.cancelada = true;
    doc.fechaCanc = d;
    const int hr = hora();
    const std::string usr = usuario();
    if (doc.afectada)
        for (const auto& pt : doc.partidas)
            kardex(pt.prod, d, hr,
                   doc.kind == kFactura ? "CANCELACION FACTURA" : "CANCELACION REMISION", doc.id,
                   pt.cant, usr, doc.sucursal);
    const std::string nombreDoc =
        std::string(kPalabraDoc[doc.kind]) + " " + doc.serie + std::to_string(doc.numero);
    movCli(d, hr, cli.clave, doc.moneda, 0, doc.total,
           "BONIFICACION POR CANCELACION DE " + nombreDoc, usr);
    if (doc.pagado > 0)
        movCli(d, hr + 30, cli.clave, doc.moneda, doc.pagado, 0,
               "DEVOLUCION DEL DINERO POR CANC. DE " + nombreDoc, usr);
    doc.saldo = 0;
    if (doc.cxc >= 0) {
        cxc_[static_cast<size_t>(doc.cxc)].saldo = 0;
        cxc_[static_cast<size_t>(doc.cxc)].abierta = false;
    }
}

void Simulacion::devolucion(int d, Documento& doc) {
    if (doc.cancelada || doc.partidas.empty()) return;
    Cliente& cli = clis_[static_cast<size_t>(doc.cli)];
    const int id = sigDevCte_++;
    const int hr = hora();
    const std::string usr = usuario();
    const bool cancelada = az_.probable(0.06);
    double factor = 1.0;
    for (int x : doc.desc)
        if (x != 0) factor *= 1.0 - x / 100.0;
    long long bruto = 0;
    int partida = 0;
    for (auto& pt : doc.partidas) {
        if (partida > 0 && az_.probable(0.5)) continue;
        const Producto& p = prods_[static_cast<size_t>(pt.prod)];
        if (p.clase == 4) continue;
        const long long disponible = pt.cant - pt.devueltos;
        if (disponible <= 0) continue;
        long long cant = (p.clase == 1 || p.clase == 2)
                             ? std::max<long long>(100, disponible / 3)
                             : az_.entre(1, std::max<long long>(1, disponible / 1000)) * 1000;
        cant = std::min(cant, disponible);
        const int kx =
            cancelada ? 0
                      : kardex(pt.prod, d, hr, "DEVOLUCION CLIENTE", id, cant, usr, doc.sucursal);
        if (!cancelada) pt.devueltos += cant;
        bruto += redondea(static_cast<double>(cant) * pt.precioNeto / 1000.0);
        devCtesDet_->agrega(Renglon()
                                .n(id)
                                .n(++partida)
                                .t(p.clave)
                                .t(p.descrip)
                                .q(cant)
                                .m(pt.precioNeto)
                                .m(pt.costoProm)
                                .n(static_cast<long long>(&pt - doc.partidas.data()) + 1)
                                .n(kx));
    }
    if (partida == 0) {
        --sigDevCte_;
        return;
    }
    const long long subtotal = redondea(static_cast<double>(bruto) * factor);
    const long long iva = redondea(static_cast<double>(subtotal) * 0.16);
    const long long total = subtotal + iva;
    int nota = 0;
    const std::string nombreDoc =
        std::string(kPalabraDoc[doc.kind]) + " " + doc.serie + std::to_string(doc.numero);
    if (!cancelada && doc.cxc >= 0 && doc.saldo >= total) {
        // The return lowers what the customer owes, with or without a credit note.
        if (az_.probable(0.6)) {
            nota = sigNota_++;
            notas_->agrega(Renglon()
                               .n(nota)
                               .t("NC")
                               .f(d)
                               .h(hr)
                               .t(cli.clave)
                               .n(id)
                               .n(0)
                               .n(doc.moneda)
                               .x(doc.paridad, 4)
                               .m(subtotal)
                               .m(iva)
                               .m(total)
                               .t("DEVOLUCION No. " + std::to_string(id) + " DE " + nombreDoc)
                               .t(usr));
            notasDet_->agrega(Renglon()
                                  .n(nota)
                                  .n(1)
                                  .t(std::string(1, kLetraDoc[doc.kind]))
                                  .n(doc.id)
                                  .t("")
                                  .m(total));
        }
        Movimiento& mv =
            movCli(d, hr, cli.clave, doc.moneda, 0, total,
                   "DEVOLUCION CTES. No. " + std::to_string(id) + " DE " + nombreDoc, usr);
        mv.notaCredito = nota;
        doc.saldo -= total;
        doc.tuvoCredito = true;
        RenglonCx& cx = cxc_[static_cast<size_t>(doc.cxc)];
        cx.saldo -= total;
        if (cx.saldo <= 0) cx.abierta = false;
        aplicacion(mv.folio, &doc, 0, total, doc.saldo, doc.moneda, d, hr, -1, cli.clave);
    }
    devCtes_->agrega(Renglon()
                         .n(id)
                         .n(id)
                         .t("D")
                         .f(d)
                         .h(hr)
                         .t(cli.clave)
                         .t(std::string(1, kLetraDoc[doc.kind]))
                         .n(doc.id)
                         .n(nota)
                         .n(cancelada ? 1 : 0)
                         .n(doc.moneda)
                         .x(doc.paridad, 4)
                         .n(doc.desc[0])
                         .n(doc.desc[1])
                         .n(doc.desc[2])
                         .n(doc.desc[3])
                         .n(doc.desc[4])
                         .m(subtotal)
                         .m(iva)
                         .m(total)
                         .t(usr)
                         .t(az_.probable(0.5) ? "MERCANCIA DAÑADA" : "NO ERA LO SOLICITADO"));
}

void Simulacion::notaCredito(int d, Documento& doc) {
    if (doc.cancelada || doc.cxc < 0) return;
    Cliente& cli = clis_[static_cast<size_t>(doc.cli)];
    const long long total = std::min(doc.saldo, redondea(static_cast<double>(doc.total) * 0.05));
    if (total <= 0) return;
    const int nota = sigNota_++;
    const int hr = hora();
    const std::string usr = usuario();
    const bool cancelada = az_.probable(0.1);
    const long long subtotal = redondea(static_cast<double>(total) / 1.16);
    const std::string nombreDoc =
        std::string(kPalabraDoc[doc.kind]) + " " + doc.serie + std::to_string(doc.numero);
    notas_->agrega(Renglon()
                       .n(nota)
                       .t("NC")
                       .f(d)
                       .h(hr)
                       .t(cli.clave)
                       .n(0)
                       .n(cancelada ? 1 : 0)
                       .n(doc.moneda)
                       .x(doc.paridad, 4)
                       .m(subtotal)
                       .m(total - subtotal)
                       .m(total)
                       .t("DESCUENTO POR PRONTO PAGO " + nombreDoc)
                       .t(usr));
    notasDet_->agrega(
        Renglon().n(nota).n(1).t(std::string(1, kLetraDoc[doc.kind])).n(doc.id).t("").m(total));
    if (cancelada) return;
    Movimiento& mv = movCli(d, hr, cli.clave, doc.moneda, 0, total,
                            "NOTA DE CREDITO No. " + std::to_string(nota), usr);
    mv.notaCredito = nota;
    doc.saldo -= total;
    doc.tuvoCredito = true;
    RenglonCx& cx = cxc_[static_cast<size_t>(doc.cxc)];
    cx.saldo -= total;
    if (cx.saldo <= 0) cx.abierta = false;
    aplicacion(mv.folio, &doc, 0, total, doc.saldo, doc.moneda, d, hr, -1, cli.clave);
}

// The documents with their lines, as they stand at the end of the history.
void Simulacion::cierreVentas() {
    for (auto* l : {&tickets_, &ticketsDet_, &devCtes_, &devCtesDet_, &notas_, &notasDet_})
        (*l)->termina();
    const std::string colsDoc =
        "Id,{num}Factura,Serie,Fecha,Hora,Cliente,Vendedor,Sucursal,Usuario,Cancelada,"
        "FechaCancelacion,Afectada,PdeV,{extra}Moneda,IdMoneda,Paridad,Desc1,Desc2,Desc3,Desc4,"
        "Desc5,Subtotal,IVA,ImpuestoAd,Cargo1Cantidad,Cargo2Cantidad,Cargo3Cantidad,Retencion,"
        "RetencionIVA,Importe,Total,Pagado,Saldo,Vence,Observaciones";
    for (int kind = 0; kind < 3; ++kind) {
        std::string cols = colsDoc;
        const std::string num =
            kind == kRemision ? "Remision," : (kind == kApartado ? "Apartado," : "");
        const std::string extra = kind == kFactura    ? "Credito,"
                                  : kind == kRemision ? "Credito,Facturada,IdFactura,"
                                                      : "Entregado,";
        cols.replace(cols.find("{num}"), 5, num);
        cols.replace(cols.find("{extra}"), 7, extra);
        auto enc = lote(kTablaDoc[kind], cols);
        std::string colsDet =
            "Id,Partida,Producto,Descripcion,Cantidad,Devueltos,Precio,PrecioNeto,Descuento,IVA,"
            "CostoPromedio,ParidadCompra,NumeroDePrecio,IdKardex";
        if (kind != kApartado) colsDet += ",Remision";
        auto det = lote(std::string(kTablaDoc[kind]) + "detalle", colsDet);
        for (const Documento& doc : docs_[kind]) {
            const Cliente& cli = clis_[static_cast<size_t>(doc.cli)];
            Renglon r;
            r.n(doc.id);
            if (kind != kFactura) r.n(doc.numero);
            r.n(doc.numero)
                .t(doc.serie)
                .f(doc.fecha)
                .h(doc.hora)
                .t(cli.clave)
                .t(doc.vendedor)
                .t(doc.sucursal)
                .t(doc.usuario)
                .n(doc.cancelada ? 1 : 0);
            if (doc.cancelada)
                r.f(doc.fechaCanc);
            else
                r.cero();
            r.n(doc.afectada ? 1 : 0).n(doc.pdev ? 1 : 0);
            if (kind == kFactura)
                r.n(doc.credito ? 1 : 0);
            else if (kind == kRemision)
                r.n(doc.credito ? 1 : 0).n(doc.facturada ? 1 : 0).n(doc.idFactura);
            else
                r.n(doc.entregado ? 1 : 0);
            r.n(doc.moneda).n(doc.moneda).x(doc.paridad, 4);
            for (int x : doc.desc) r.n(x);
            r.m(doc.subtotal)
                .m(doc.iva)
                .m(doc.impAd)
                .m(doc.cargo1)
                .m(0)
                .m(0)
                .m(doc.ret)
                .m(doc.retIva)
                .m(doc.total)
                .m(doc.total)
                .m(doc.pagado)
                .m(doc.saldo)
                .f(doc.vence)
                .t(doc.deRemisiones ? "FACTURA DE REMISIONES" : "");
            enc->agrega(r);
            int partida = 0;
            for (const Partida& pt : doc.partidas) {
                const Producto& p = prods_[static_cast<size_t>(pt.prod)];
                Renglon rd;
                rd.n(doc.id)
                    .n(++partida)
                    .t(p.clave)
                    .t(p.descrip)
                    .q(pt.cant)
                    .q(pt.devueltos)
                    .m(pt.precio)
                    .m(pt.precioNeto)
                    .n(pt.descuento)
                    .n(16)
                    .m(pt.costoProm)
                    .x(pt.paridadCompra, 4)
                    .n(pt.numPrecio)
                    .n(pt.idKardex);
                if (kind != kApartado) rd.n(pt.remision);
                det->agrega(rd);
            }
        }
        enc->termina();
        det->termina();
    }
}

}  // namespace paratzorep::schema::detail
