#include "engines/Cadena.h"

#include "engines/TextosMovEnLinea.h"
#include "toolkit/Fechas.h"

namespace paratzorep::engines::detail {

host::Recordset AbreTabla(host::BaseDD& bd, const host::Conexion& cn, const std::string& fuente) {
    host::Recordset rs;
    if (!bd.AbrirTabla(rs, cn, fuente))
        throw host::ErrorDatos("Abrir '" + fuente + "'", "", 0, bd.UltimoError());
    if (rs.RecordCount() > 0) rs.MoveFirst();
    return rs;
}

void Pon(host::Recordset& rs, const std::string& campo, host::Valor valor) {
    if (rs.TieneCampo(campo)) rs.Asigna(campo, std::move(valor));
}

Transaccion::Transaccion(host::BaseDD& bd, host::Conexion cn) : bd_(bd), cn_(std::move(cn)) {
    bd_.Executar(cn_, "START TRANSACTION");
}

Transaccion::~Transaccion() {
    if (hecha_) return;
    try {
        bd_.Executar(cn_, "ROLLBACK");
    } catch (...) {
        // The connection is gone: the server rolls the transaction back itself.
    }
}

void Transaccion::Confirma() {
    bd_.Executar(cn_, "COMMIT");
    hecha_ = true;
}

std::string FechaDeMovimiento(const host::Valor& fecha) {
    auto f = toolkit::LeeFecha(fecha.Fecha());
    if (!f) return "0000-00-00";
    auto corta = toolkit::LeeFecha(toolkit::TextoMesCorto(*f));
    return corta ? toolkit::TextoSQL(*corta) : "0000-00-00";
}

void ExigeClave(const std::string& clave, const std::string& queEs) {
    if (!ClaveAceptable(clave))
        throw ErrorMovEnLinea("La clave " + queEs + " '" + clave +
                              "' no es válida: no puede estar vacía ni llevar comillas, "
                              "diagonales inversas o caracteres de control.");
}

ResumenRecalculo Recalcula(host::BaseDD& bd, const host::Conexion& cn, std::int64_t id,
                           bool porRenglon) {
    ResumenRecalculo r;
    host::Recordset fila = AbreTabla(bd, cn, FuenteMovimiento(id));
    if (fila.RecordCount() == 0) return r;
    r.encontrado = true;
    r.clave = fila["Clave"].Texto();
    r.moneda = static_cast<std::int32_t>(fila["IdMoneda"].Entero());
    ExigeClave(r.clave, "del cliente del movimiento " + std::to_string(id));
    std::string fecha = FechaDeMovimiento(fila["Fecha"]);

    host::Recordset previo =
        AbreTabla(bd, cn, FuenteAnteriorMismaFecha(r.clave, r.moneda, fecha, id));
    if (previo.RecordCount() == 0)
        previo = AbreTabla(bd, cn, FuenteAnteriorFechaPrevia(r.clave, r.moneda, fecha));
    const double apertura = previo.RecordCount() > 0 ? previo["SaldoActual"].Doble() : 0.0;

    if (porRenglon) {
        double saldo = apertura;
        std::int64_t actual = id;
        for (;;) {
            const double cargo = fila["CantidadCargo"].Doble();
            const double nuevo = cargo != 0 ? saldo + cargo : saldo - fila["CantidadPago"].Doble();
            bd.Executar(cn, ActualizaSaldosMovimiento(nuevo, saldo, actual));
            ++r.movimientos;
            saldo = nuevo;
            host::Recordset siguiente =
                AbreTabla(bd, cn, FuenteSiguiente(r.moneda, r.clave, fecha, actual));
            if (siguiente.RecordCount() == 0) break;
            actual = siguiente["Id"].Entero();
            fecha = FechaDeMovimiento(siguiente["Fecha"]);
            fila = std::move(siguiente);
        }
        r.saldo = saldo;
    } else {
        r.movimientos = bd.Executar(cn, RecalculoEnConjunto(id, apertura));
        host::Recordset ultimo = AbreTabla(bd, cn, FuenteUltimoMovimiento(r.clave, r.moneda));
        r.saldo = ultimo.RecordCount() > 0 ? ultimo["SaldoActual"].Doble() : apertura;
    }
    // clientes.Saldo and saldoscli hold the balance in the first currency only.
    if (r.moneda == 1) {
        bd.Executar(cn, ActualizaSaldoCliente(r.saldo, r.clave));
        ActualizaSaldoEn(bd, cn, r.clave);
    }
    return r;
}

bool ActualizaSaldoEn(host::BaseDD& bd, const host::Conexion& cn, const std::string& clave) {
    ExigeClave(clave, "del cliente");
    host::Recordset saldo = AbreTabla(bd, cn, FuenteSaldoscli(clave));
    if (saldo.RecordCount() == 0) return false;
    host::Recordset cliente = AbreTabla(bd, cn, BuscaCliente(clave));
    if (cliente.RecordCount() == 0) return false;
    const double deCliente = cliente["Saldo"].Doble();
    if (deCliente == saldo["Saldo"].Doble()) return false;
    bd.Executar(cn, ActualizaSaldoscli(deCliente, clave));
    return true;
}

}  // namespace paratzorep::engines::detail
