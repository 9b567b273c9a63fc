// Purchases: replenishment of what runs short, occasional purchases, purchases without
// invoice ("ND"), returns to suppliers.
#include <algorithm>

#include "schema/demo/Simulacion.h"

namespace paratzorep::schema::detail {

void Simulacion::abreCompras() {
    comprasDet_ =
        lote("comprasdetalle", "Compra,Partida,Producto,Descrip,Cantidad,Costo,Descuento,IdKardex");
    comprasNdDet_ = lote("comprasnddetalle",
                         "Compra,Partida,Producto,Descrip,Cantidad,Costo,Descuento,IdKardex");
    devProv_ = lote("devolucionprov",
                    "DevolucionProv,Numero,Fecha,Hora,Proveedor,Compra,Cancelada,Moneda,Subtotal,"
                    "IVA,Total,Usuario,Motivo");
    devProvDet_ = lote("devolucionprovdet",
                       "DevolucionProv,Partida,Producto,Descripcion,Cantidad,Precio,IdKardex");
}

void Simulacion::compra(int d, int prov, std::vector<int> lista, bool nd) {
    Proveedor& pv = provs_[static_cast<size_t>(prov)];
    Compra cp;
    cp.nd = nd;
    cp.compra = nd ? sigCompraNd_++ : sigCompra_++;
    cp.fecha = d;
    cp.hora = hora();
    cp.prov = prov;
    cp.moneda = pv.moneda;
    cp.paridad = paridad(pv.moneda, d);
    cp.sucursal = "04";
    cp.usuario = usuario();
    cp.factura = nd ? "ND-" + std::to_string(az_.entre(1000, 99999))
                    : "F-" + std::to_string(az_.entre(10000, 999999));
    cp.cancelada = az_.probable(0.02);
    cp.vence = d + pv.diasCredito;
    auto& det = nd ? comprasNdDet_ : comprasDet_;
    int partida = 0;
    for (int pi : lista) {
        Producto& p = prods_[static_cast<size_t>(pi)];
        const long long cant = std::max<long long>(p.minimo * 3, 10000) + az_.entre(0, 20) * 1000;
        // Suppliers' prices move around the product's cost, with 4 % a year of inflation.
        const double inflacion = 1.0 + 0.04 * (d - inicio_) / 365.0;
        const long long costo =
            redondea(static_cast<double>(p.costoBase) * inflacion * (0.96 + az_.unitario() * 0.08));
        int kx = 0;
        if (!cp.cancelada) {
            // Average cost weighs the stock on hand with the purchase.
            const long long exist = std::max<long long>(p.exist, 0);
            p.costoProm = redondea(
                (static_cast<double>(exist) * p.costoProm + static_cast<double>(cant) * costo) /
                static_cast<double>(exist + cant));
            p.costo = costo;
            kx = kardex(pi, d, cp.hora, nd ? "COMPRA ND" : "COMPRA", cp.compra, cant, cp.usuario,
                        cp.sucursal);
        }
        const long long costoDoc = redondea(static_cast<double>(costo) / cp.paridad);
        cp.subtotal += redondea(static_cast<double>(cant) * costoDoc / 1000.0);
        det->agrega(
            Renglon().n(cp.compra).n(++partida).t(p.clave).t(p.descrip).q(cant).m(costoDoc).n(0).n(
                kx));
    }
    cp.iva = nd ? 0 : redondea(static_cast<double>(cp.subtotal) * 0.16);
    cp.impAd = az_.probable(0.05) ? redondea(static_cast<double>(cp.subtotal) * 0.03) : 0;
    cp.total = cp.subtotal + cp.iva + cp.impAd;
    cp.saldo = cp.total;
    const int idx = static_cast<int>(compras_.size());
    if (cp.cancelada) {
        cp.saldo = 0;
    } else {
        movProv(d, cp.hora, pv.clave, cp.moneda, cp.total, 0,
                std::string(nd ? "CARGO POR COMPRA ND " : "CARGO POR COMPRA ") + cp.factura,
                cp.usuario);
        RenglonCx cx;
        cx.id = static_cast<int>(cxp_.size()) + 1;
        cx.clave = pv.clave;
        cx.fecha = d;
        cx.vence = cp.vence;
        cx.tipo = nd ? 'N' : 'M';
        cx.numero = cp.compra;
        cx.saldo = cp.total;
        cx.total = cp.total;
        cx.moneda = cp.moneda;
        cp.cxp = static_cast<int>(cxp_.size());
        cxp_.push_back(cx);
        const double r = az_.unitario();
        if (r < 0.7) {
            programa(d + static_cast<int>(az_.entre(5, pv.diasCredito + 20)),
                     {kPagoCompra, 0, idx, 0});
        } else if (r < 0.85) {
            programa(d + static_cast<int>(az_.entre(5, 30)), {kPagoCompra, 0, idx, cp.total / 2});
        }
        if (az_.probable(0.03))
            programa(d + static_cast<int>(az_.entre(1, 4)), {kDevolucionProv, 0, idx, 0});
    }
    compras_.push_back(std::move(cp));
}

void Simulacion::reposicion(int d) {
    // Replenish what runs short, one purchase per supplier.
    std::map<int, std::vector<int>> porProveedor;
    for (size_t i = 0; i < prods_.size(); ++i) {
        const Producto& p = prods_[i];
        if (p.clase == 4 || p.clase == 3) continue;
        if (p.exist < p.minimo && az_.probable(0.5)) {
            const int prov = std::stoi(p.prov1.substr(1)) - 1;
            auto& v = porProveedor[prov];
            if (v.size() < 10) v.push_back(static_cast<int>(i));
        }
    }
    for (auto& [prov, lista] : porProveedor) compra(d, prov, lista, az_.probable(0.2));
}

// Occasional purchases of a few products from any supplier.
void Simulacion::comprasDelDia(int d) {
    for (int k = cuantos(0.15); k > 0; --k) {
        const int pv = static_cast<int>(az_.entre(0, static_cast<long long>(provs_.size()) - 1));
        std::vector<int> lista;
        for (int j = static_cast<int>(az_.entre(1, 6)); j > 0; --j)
            lista.push_back(elige(az_, prodsPorClase_[0]));
        std::sort(lista.begin(), lista.end());
        lista.erase(std::unique(lista.begin(), lista.end()), lista.end());
        compra(d, pv, lista, az_.probable(0.25));
    }
}

void Simulacion::devolucionProv(int d, Compra& cp) {
    if (cp.cancelada || cp.nd) return;
    Proveedor& pv = provs_[static_cast<size_t>(cp.prov)];
    const int id = sigDevProv_++;
    const int hr = hora();
    const std::string usr = usuario();
    // Return part of one product of the purchase.
    const int pi = elige(az_, prodsPorClase_[0]);
    Producto& p = prods_[static_cast<size_t>(pi)];
    const long long cant = az_.entre(1, 5) * 1000;
    const long long costo = redondea(static_cast<double>(p.costo) / cp.paridad);
    const long long subtotal = redondea(static_cast<double>(cant) * costo / 1000.0);
    const long long iva = redondea(static_cast<double>(subtotal) * 0.16);
    const long long total = subtotal + iva;
    const int kx = kardex(pi, d, hr, "DEVOLUCION A PROVEEDOR", id, -cant, usr, "04");
    devProvDet_->agrega(Renglon().n(id).n(1).t(p.clave).t(p.descrip).q(cant).m(costo).n(kx));
    devProv_->agrega(Renglon()
                         .n(id)
                         .n(id)
                         .f(d)
                         .h(hr)
                         .t(pv.clave)
                         .n(cp.compra)
                         .n(0)
                         .n(cp.moneda)
                         .m(subtotal)
                         .m(iva)
                         .m(total)
                         .t(usr)
                         .t("MERCANCIA DEFECTUOSA"));
    if (cp.cxp >= 0 && cp.saldo >= total) {
        movProv(d, hr, pv.clave, cp.moneda, 0, total,
                "DEVOLUCION PROV. No. " + std::to_string(id) + " COMPRA " + cp.factura, usr);
        cp.saldo -= total;
        RenglonCx& cx = cxp_[static_cast<size_t>(cp.cxp)];
        cx.saldo -= total;
        if (cx.saldo <= 0) cx.abierta = false;
    }
}

void Simulacion::cierreCompras() {
    for (auto* l : {&comprasDet_, &comprasNdDet_, &devProv_, &devProvDet_}) (*l)->termina();
    auto cmp =
        lote("compras",
             "Compra,Factura,Fecha,Hora,Proveedor,Sucursal,Usuario,Cancelada,Afectada,Moneda,"
             "IdMoneda,Paridad,Subtotal,IVA,ImpuestoAd,Total,Pagado,Saldo,Vence");
    auto cnd =
        lote("comprasnd",
             "Compra,Factura,Fecha,Hora,Proveedor,Sucursal,Usuario,Cancelada,Afectada,Moneda,"
             "IdMoneda,Paridad,Subtotal,IVA,ImpuestoAd,Total,Pagado,Saldo,Vence");
    for (const Compra& cp : compras_) {
        (cp.nd ? cnd : cmp)
            ->agrega(Renglon()
                         .n(cp.compra)
                         .t(cp.factura)
                         .f(cp.fecha)
                         .h(cp.hora)
                         .t(provs_[static_cast<size_t>(cp.prov)].clave)
                         .t(cp.sucursal)
                         .t(cp.usuario)
                         .n(cp.cancelada ? 1 : 0)
                         .n(cp.cancelada ? 0 : 1)
                         .n(cp.moneda)
                         .n(cp.moneda)
                         .x(cp.paridad, 4)
                         .m(cp.subtotal)
                         .m(cp.iva)
                         .m(cp.impAd)
                         .m(cp.total)
                         .m(cp.pagado)
                         .m(cp.saldo)
                         .f(cp.vence));
    }
    cmp->termina();
    cnd->termina();
}

}  // namespace paratzorep::schema::detail
