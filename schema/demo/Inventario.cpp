// Inventory: the warehouse history that every stock movement writes, the opening stock,
// goods entries, transfers between branches, count adjustments, losses, metal separations,
// meat cuts and the containers lent to customers.
#include <algorithm>

#include "schema/demo/Simulacion.h"

namespace paratzorep::schema::detail {

void Simulacion::abreInventario() {
    kardex_ =
        lote("historicoalmacen",
             "Id,Producto,Fecha,Hora,Movimiento,Documento,Sucursal,Cantidad,ExistenciaAnterior,"
             "ExistenciaActual,Costo,CostoPromedio,Usuario");
    entradas_ =
        lote("entradas", "Entrada,Fecha,Hora,Destino,Proveedor,Usuario,Afectada,Observaciones");
    entradasDet_ =
        lote("entradasdetalle", "Entrada,Partida,Producto,Descrip,Cantidad,Precio,IdKardex");
    traspasos_ = lote("traspasos",
                      "Traspaso,Serie,Fecha,Hora,Origen,Destino,Usuario,Cancelado,Recibido,"
                      "Observaciones");
    traspasosDet_ =
        lote("traspasosdetalle", "Traspaso,Partida,Producto,Descrip,Cantidad,Precio,IdKardex");
    ajustes_ = lote("ajustes",
                    "Id,Ajuste,Fecha,Hora,Clave,Descrip,Sucursal,Usuario,ExistenciaAnterior,"
                    "ExistenciaFisica,Cantidad,Costo,Precio,Concepto,IdKardex");
    perdidas_ = lote("perdidas", "Perdida,Fecha,Hora,Sucursal,Usuario,Concepto");
    perdidasDet_ =
        lote("perdidasdetalle", "Perdida,Partida,Producto,Descrip,Cantidad,Costo,Motivo,IdKardex");
    separa_ = lote("separacionmet",
                   "Separacion,Fecha,Hora,Usuario,MetalOrigen,Descrip,Cantidad,Costo,Merma,"
                   "Observaciones");
    separaDet_ =
        lote("separacionmetdetalle", "Separacion,Partida,MetalDestino,Descrip,Cantidad,Costo");
    movCortes_ = lote("movcortes",
                      "Id,Fecha,Hora,IdCorte,Usuario,ProductoOrigen,Producto,PesoOrigen,Cantidad,"
                      "Merma,Costo,Observaciones");
    edoctaspc_ = lote("edoctaspc",
                      "Id,Fecha,Hora,Cliente,Producto,Concepto,Documento,CantidadCargo,"
                      "CantidadAbono,SaldoAnterior,SaldoActual,Usuario");
}

int Simulacion::kardex(int prod, int dia, int hr, const char* mov, int documento,
                       long long cantidad, const std::string& usr, const std::string& suc) {
    Producto& p = prods_[static_cast<size_t>(prod)];
    if (p.clase == 4) return 0;  // services hold no stock
    const long long antes = p.exist;
    p.exist += cantidad;
    const int id = sigKardex_++;
    kardex_->agrega(Renglon()
                        .n(id)
                        .t(p.clave)
                        .f(dia)
                        .h(hr)
                        .t(mov)
                        .n(documento)
                        .t(suc)
                        .q(cantidad)
                        .q(antes)
                        .q(p.exist)
                        .m(p.costo)
                        .m(p.costoProm)
                        .t(usr));
    return id;
}

// The meat cuts (every meat product but the carcass) and the opening stock.
void Simulacion::inventarioInicial() {
    for (size_t k = 1; k < prodsPorClase_[2].size(); ++k) {
        const int pi = prodsPorClase_[2][k];
        std::string nombre = prods_[static_cast<size_t>(pi)].descrip;
        nombre = nombre.substr(0, nombre.find(" POR KG"));
        cortes_.push_back({pi, nombre});
    }
    for (size_t i = 0; i < prods_.size(); ++i) {
        Producto& p = prods_[i];
        if (p.clase == 4 || p.clase == 3) continue;
        if (az_.probable(0.05)) continue;  // a few products start without stock or history
        const long long cant =
            (p.clase == 1 || p.clase == 2) ? az_.entre(50000, 400000) : az_.entre(10, 120) * 1000;
        kardex(static_cast<int>(i), inicio_, 8 * 3600, "INVENTARIO INICIAL", 0, cant, "ADMIN");
    }
}

void Simulacion::inventarioDelDia(int d) {
    for (int k = cuantos(0.8); k > 0; --k) entrada(d);
    for (int k = cuantos(0.7); k > 0; --k) traspaso(d);
    for (int k = cuantos(0.3); k > 0; --k) ajuste(d);
    for (int k = cuantos(0.25); k > 0; --k) perdida(d);
    for (int k = cuantos(0.08); k > 0; --k) separacion(d);
    for (int k = cuantos(1.2); k > 0; --k) corte(d);
    for (int k = cuantos(0.3); k > 0; --k) envases(d);
}

void Simulacion::entrada(int d) {
    const int id = sigEntrada_++;
    const int hr = hora();
    const std::string usr = usuario();
    const std::string destino = sucursales_[static_cast<size_t>(az_.entre(0, 3))];
    const bool afectada = az_.probable(0.85);
    const int nLin = static_cast<int>(az_.entre(1, 7));
    std::vector<int> usados;
    int partida = 0;
    for (int k = 0; k < nLin; ++k) {
        const int pi = elige(az_, prodsPorClase_[0]);
        if (std::find(usados.begin(), usados.end(), pi) != usados.end()) continue;
        usados.push_back(pi);
        const Producto& p = prods_[static_cast<size_t>(pi)];
        const long long cant = az_.entre(1, 30) * 1000;
        const long long precio =
            redondea(static_cast<double>(p.costo) * (0.95 + az_.unitario() * 0.1));
        const int kx = afectada ? kardex(pi, d, hr, "ENTRADA", id, cant, usr, destino) : 0;
        entradasDet_->agrega(
            Renglon().n(id).n(++partida).t(p.clave).t(p.descrip).q(cant).m(precio).n(kx));
    }
    lineaSinCatalogo(entradasDet_, id, partida + 1);
    entradas_->agrega(Renglon()
                          .n(id)
                          .f(d)
                          .h(hr)
                          .t(destino)
                          .t(elige(az_, provs_).clave)
                          .t(usr)
                          .n(afectada ? 1 : 0)
                          .t(afectada ? "" : "PENDIENTE DE REVISAR"));
}

void Simulacion::traspaso(int d) {
    const int id = sigTraspaso_++;
    const int hr = hora();
    const int o = static_cast<int>(az_.entre(0, 3));
    int de = static_cast<int>(az_.entre(0, 2));
    if (de >= o) ++de;
    const double r = az_.unitario();
    const std::string serie = r < 0.45 ? "A" : (r < 0.8 ? "B" : "");
    const int nLin = static_cast<int>(az_.entre(1, 6));
    std::vector<int> usados;
    int partida = 0;
    for (int k = 0; k < nLin; ++k) {
        const int pi = elige(az_, prodsPorClase_[0]);
        if (std::find(usados.begin(), usados.end(), pi) != usados.end()) continue;
        usados.push_back(pi);
        const Producto& p = prods_[static_cast<size_t>(pi)];
        traspasosDet_->agrega(Renglon()
                                  .n(id)
                                  .n(++partida)
                                  .t(p.clave)
                                  .t(p.descrip)
                                  .q(az_.entre(1, 20) * 1000)
                                  .m(p.costo)
                                  .n(0));
    }
    lineaSinCatalogo(traspasosDet_, id, partida + 1);
    const bool cancelado = az_.probable(0.06);
    traspasos_->agrega(Renglon()
                           .n(id)
                           .t(serie)
                           .f(d)
                           .h(hr)
                           .t(sucursales_[static_cast<size_t>(o)])
                           .t(sucursales_[static_cast<size_t>(de)])
                           .t(usuario())
                           .n(cancelado ? 1 : 0)
                           .n(cancelado ? 0 : 1)
                           .t(cancelado ? "CANCELADO POR ERROR DE CAPTURA" : ""));
}

void Simulacion::ajuste(int d) {
    const int folio = sigAjuste_++;
    const int hr = hora();
    const std::string usr = usuario();
    const int nLin = static_cast<int>(az_.entre(1, 4));
    for (int k = 0; k < nLin; ++k) {
        const int pi = elige(az_, prodsPorClase_[0]);
        Producto& p = prods_[static_cast<size_t>(pi)];
        const long long antes = p.exist;
        const long long fisica = std::max<long long>(0, antes + az_.entre(-5, 3) * 1000);
        const long long dif = fisica - antes;
        const int kx = kardex(pi, d, hr, "AJUSTE", folio, dif, usr);
        ajustes_->agrega(Renglon()
                             .n(sigAjusteRen_++)
                             .n(folio)
                             .f(d)
                             .h(hr)
                             .t(p.clave)
                             .t(p.descrip)
                             .t("01")
                             .t(usr)
                             .q(antes)
                             .q(fisica)
                             .q(dif)
                             .m(p.costo)
                             .m(p.precio[0])
                             .t(dif < 0 ? "FALTANTE EN CONTEO FISICO" : "SOBRANTE EN CONTEO FISICO")
                             .n(kx));
    }
}

void Simulacion::perdida(int d) {
    const int id = sigPerdida_++;
    const int hr = hora();
    const std::string usr = usuario();
    const int nLin = static_cast<int>(az_.entre(1, 3));
    std::vector<int> usados;
    int partida = 0;
    for (int k = 0; k < nLin; ++k) {
        const int pi =
            az_.probable(0.2) ? elige(az_, prodsPorClase_[2]) : elige(az_, prodsPorClase_[0]);
        if (std::find(usados.begin(), usados.end(), pi) != usados.end()) continue;
        usados.push_back(pi);
        const Producto& p = prods_[static_cast<size_t>(pi)];
        const long long cant = p.clase == 2 ? az_.entre(200, 3000) : az_.entre(1, 3) * 1000;
        const int kx = kardex(pi, d, hr, "PERDIDA", id, -cant, usr);
        perdidasDet_->agrega(Renglon()
                                 .n(id)
                                 .n(++partida)
                                 .t(p.clave)
                                 .t(p.descrip)
                                 .q(cant)
                                 .m(p.costo)
                                 .t(p.clase == 2 ? "CADUCIDAD" : "ROTURA")
                                 .n(kx));
    }
    perdidas_->agrega(Renglon()
                          .n(id)
                          .f(d)
                          .h(hr)
                          .t(sucursales_[static_cast<size_t>(az_.entre(0, 2))])
                          .t(usr)
                          .t("MERMA REGISTRADA EN PISO DE VENTA"));
}

void Simulacion::separacion(int d) {
    const auto& metales = prodsPorClase_[1];
    int origen = -1;
    std::vector<int> destinos;
    for (int pi : metales) {
        if (prods_[static_cast<size_t>(pi)].descrip.rfind("CHATARRA MIXTA", 0) == 0)
            origen = pi;
        else
            destinos.push_back(pi);
    }
    if (origen < 0 || destinos.empty()) return;
    const int id = sigSeparacion_++;
    const int hr = hora();
    const std::string usr = usuario();
    const long long peso = az_.entre(50, 800) * 1000;
    Producto& po = prods_[static_cast<size_t>(origen)];
    kardex(origen, d, hr, "SEPARACION METALES", id, -peso, usr);
    long long resto = peso - peso / 20;  // about 5 % is lost
    int partida = 0;
    const int n = static_cast<int>(az_.entre(2, static_cast<long long>(destinos.size())));
    for (int k = 0; k < n && resto > 0; ++k) {
        const int pi = destinos[static_cast<size_t>(k)];
        const long long cant = k == n - 1 ? resto : resto * az_.entre(20, 60) / 100;
        resto -= cant;
        kardex(pi, d, hr, "SEPARACION METALES", id, cant, usr);
        separaDet_->agrega(Renglon()
                               .n(id)
                               .n(++partida)
                               .t(prods_[static_cast<size_t>(pi)].clave)
                               .t(prods_[static_cast<size_t>(pi)].descrip)
                               .q(cant)
                               .m(prods_[static_cast<size_t>(pi)].costo));
    }
    static const char* kObservaciones[] = {"", "", "LOTE DE CHATARRA DE OBRA",
                                           "SEPARADO EN PATIO 2", "PROVEEDOR MOSTRADOR"};
    separa_->agrega(Renglon()
                        .n(id)
                        .f(d)
                        .h(hr)
                        .t(usr)
                        .t(po.clave)
                        .t(po.descrip)
                        .q(peso)
                        .m(po.costo)
                        .q(peso / 20)
                        .t(kObservaciones[azMercancia_.entre(0, 4)]));
}

bool Simulacion::lineaSinCatalogo(const std::unique_ptr<Lote>& detalle, int documento,
                                  int partida) {
    if (!azMercancia_.probable(0.025)) return false;
    const long long n = azMercancia_.entre(1, 3);
    detalle->agrega(Renglon()
                        .n(documento)
                        .n(partida)
                        .t("BAJA-00" + std::to_string(n))
                        .t("ARTICULO DADO DE BAJA " + std::to_string(n))
                        .q(azMercancia_.entre(1, 10) * 1000)
                        .m(azMercancia_.entre(2000, 9000))
                        .n(0));
    return true;
}

void Simulacion::corte(int d) {
    if (cortes_.empty()) return;
    const auto& carnes = prodsPorClase_[2];
    const int origen = carnes.front();  // the carcass
    const size_t c = static_cast<size_t>(az_.entre(0, static_cast<long long>(cortes_.size()) - 1));
    const int destino = cortes_[c].first;
    const int hr = hora();
    const std::string usr = usuario();
    const long long pesoOrigen = az_.entre(5000, 60000);
    const long long merma = pesoOrigen * az_.entre(3, 12) / 100;
    const long long cant = pesoOrigen - merma;
    const int id = sigCorte_++;
    kardex(origen, d, hr, "CORTE DE CARNE", id, -pesoOrigen, usr);
    kardex(destino, d, hr, "CORTE DE CARNE", id, cant, usr);
    movCortes_->agrega(Renglon()
                           .n(id)
                           .f(d)
                           .h(hr)
                           .n(static_cast<long long>(c) + 1)
                           .t(usr)
                           .t(prods_[static_cast<size_t>(origen)].clave)
                           .t(prods_[static_cast<size_t>(destino)].clave)
                           .q(pesoOrigen)
                           .q(cant)
                           .q(merma)
                           .m(prods_[static_cast<size_t>(origen)].costo)
                           .t(""));
}

void Simulacion::envases(int d) {
    const auto& lista = prodsPorClase_[3];
    if (lista.empty()) return;
    const int ci = static_cast<int>(az_.entre(0, static_cast<long long>(clis_.size()) / 10));
    const int pi = elige(az_, lista);
    long long& saldo = envasesSaldo_[{ci, pi}];
    const bool presta = saldo <= 0 || az_.probable(0.55);
    const long long cant =
        presta ? az_.entre(1, 10) * 1000 : std::min(saldo, az_.entre(1, 5) * 1000);
    const long long antes = saldo;
    saldo += presta ? cant : -cant;
    envasesUlt_[{ci, pi}] = d;
    edoctaspc_->agrega(Renglon()
                           .n(sigEnvase_++)
                           .f(d)
                           .h(hora())
                           .t(clis_[static_cast<size_t>(ci)].clave)
                           .t(prods_[static_cast<size_t>(pi)].clave)
                           .t(presta ? "PRESTAMO DE ENVASE" : "DEVOLUCION DE ENVASE")
                           .t("REM " + std::to_string(az_.entre(1, 9000)))
                           .q(presta ? cant : 0)
                           .q(presta ? 0 : cant)
                           .q(antes)
                           .q(saldo)
                           .t(usuario()));
}

// The cuts' catalogue and the containers each customer still holds.
void Simulacion::cierreInventario() {
    for (auto* l : {&kardex_, &entradas_, &entradasDet_, &traspasos_, &traspasosDet_, &ajustes_,
                    &perdidas_, &perdidasDet_, &separa_, &separaDet_, &movCortes_, &edoctaspc_})
        (*l)->termina();
    auto cor = lote("cortes", "Id,Corte,Producto");
    for (size_t i = 0; i < cortes_.size(); ++i)
        cor->agrega(Renglon()
                        .n(static_cast<long long>(i) + 1)
                        .t(cortes_[i].second)
                        .t(prods_[static_cast<size_t>(cortes_[i].first)].clave));
    cor->termina();

    auto spc =
        lote("saldosprodsctes", "Id,Cliente,Producto,Descrip,Cantidad,Importe,UltMovimiento");
    int sigSpc = 1;
    for (const auto& [llave, saldo] : envasesSaldo_) {
        const Producto& p = prods_[static_cast<size_t>(llave.second)];
        spc->agrega(Renglon()
                        .n(sigSpc++)
                        .t(clis_[static_cast<size_t>(llave.first)].clave)
                        .t(p.clave)
                        .t(p.descrip)
                        .q(saldo)
                        .m(redondea(static_cast<double>(saldo) * p.precio[0] / 1000.0))
                        .f(envasesUlt_[llave]));
    }
    spc->termina();
}

}  // namespace paratzorep::schema::detail
