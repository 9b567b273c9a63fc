// Receipts collected and what the payment forms share: the heading, the key-range rule, the
// receipts' source exactly; the set-based fill equal to the rule (receipt by receipt in number
// order, its payment looked up, the customer range on the payment's key, cancelled receipts
// read "CANCELADO") on a small company with receipts on both sides of every condition.
#include <gtest/gtest.h>

#include "reports/accounts/RepAdmCobRecibos.h"
#include "support/NombresDeCaso.h"
#include "support/Soporte.h"
#include "support/TablasDeEmpresa.h"

namespace paratzorep::reports {
namespace {

using R = RepAdmCobRecibos;

std::string Une(const std::vector<std::string>& v) {
    std::string t;
    for (const auto& s : v) t += (t.empty() ? "" : " | ") + s;
    return t;
}

struct Texto {
    const char* nombre;
    std::string hecho;
    const char* esperado;
};

class TextoCobranza : public ::testing::TestWithParam<Texto> {};

TEST_P(TextoCobranza, DiceLoQueElSistemaDice) {
    EXPECT_EQ(GetParam().hecho, GetParam().esperado);
}

const char* kIgual = "{edoctacli.Clave}='XXX'";
const char* kDesde = "{edoctacli.Clave}>='XXX'";
const char* kHasta = "{edoctacli.Clave}<='XXX'";

INSTANTIATE_TEST_SUITE_P(
    Casos, TextoCobranza,
    ::testing::Values(
        Texto{"encabezado con ambas fechas",
              R::Encabezado("Pagos de clientes", "05/03/2026", "31/12/2026"),
              "Pagos de clientes, desde el 05/mar/2026 hasta el 31/dic/2026"},
        Texto{"encabezado sin fecha final", R::Encabezado("Pagos a proveedores", "01/01/2026", ""),
              "Pagos a proveedores, desde el 01/ene/2026"},
        Texto{"encabezado sin fechas", R::Encabezado("Recibos cobrados", "", ""),
              "Recibos cobrados"},
        Texto{"sin claves", Une(R::RangoClaves(kIgual, kDesde, kHasta, "", "")), ""},
        Texto{"solo la inicial", Une(R::RangoClaves(kIgual, kDesde, kHasta, "C1", "")),
              "{edoctacli.Clave}='C1'"},
        Texto{"solo la final", Une(R::RangoClaves(kIgual, kDesde, kHasta, "", "C9")),
              "{edoctacli.Clave}='C9'"},
        Texto{"rango", Une(R::RangoClaves(kIgual, kDesde, kHasta, "C1", "C9")),
              "{edoctacli.Clave}>='C1' | {edoctacli.Clave}<='C9'"},
        Texto{"recibos sin fechas", R::FuenteRecibos("", ""), "recibos ORDER BY Recibo"},
        Texto{"recibos del periodo", R::FuenteRecibos("2026-03-01", "2026-03-31"),
              "recibos WHERE Fecha>='2026-03-01' AND Fecha<='2026-03-31' ORDER BY Recibo"},
        Texto{"recibos desde", R::FuenteRecibos("2026-03-01", ""),
              "recibos WHERE Fecha>='2026-03-01' ORDER BY Recibo"}),
    pruebas::PorNombre());

// The rule, receipt by receipt.
std::vector<std::vector<std::string>> Regla(const pruebas::BaseDeDatosDePrueba& bd,
                                            const std::string& desde, const std::string& hasta,
                                            const std::string& c0, const std::string& c1) {
    std::vector<std::vector<std::string>> r;
    for (const auto& rec : bd.filas("SELECT Recibo, IdPago, Fecha, Cancelado FROM " +
                                    R::FuenteRecibos(desde, hasta))) {
        std::string concepto = "CANCELADO", cantidad = "0", cliente, nombre;
        const auto pago =
            bd.filas("SELECT Concepto, CantidadPago, clave FROM edoctacli WHERE Id=" + rec[1]);
        if (!pago.empty()) {
            concepto = pago[0][0];
            cantidad = pago[0][1];
            cliente = pago[0][2];
            nombre =
                bd.valor("SELECT Nombre FROM clientes WHERE Clave='" + cliente + "'").value_or("");
        }
        if (c0.empty() != c1.empty()) {
            if (cliente != (c0.empty() ? c1 : c0)) continue;
        } else if (!c0.empty() && (cliente < c0 || cliente > c1)) {
            continue;
        }
        if (rec[3] != "0") concepto = "CANCELADO";
        r.push_back({rec[0], rec[1], rec[2], concepto, cantidad, cliente, nombre});
    }
    return r;
}

TEST(Recibos, ElLlenadoEnConjuntoDaLoQueLaReglaReciboPorRecibo) {
    pruebas::BaseDeDatosDePrueba bd;
    pruebas::cargarTablasDeEmpresa(bd.mysql(), {"clientes", "edoctacli", "recibos"});
    bd.ejecutar(
        "INSERT INTO clientes (Clave, Nombre) VALUES ('C1','UNO'),('C2','DOS'),('C3','TRES');"
        "INSERT INTO edoctacli (Id, Fecha, Clave, CantidadPago, Concepto) VALUES "
        "(1,'2026-03-01','C1',100,'PAGO A FACTURA A1'),(2,'2026-03-02','C2',250.5,'PAGO'),"
        "(3,'2026-03-03','C3',80,'PAGO A VARIOS DOCUMENTOS'),(4,'2026-03-05','C9',10,'PAGO');"
        // Receipt numbers out of Id order, one cancelled, one without payment, one before and
        // one after the period, one of a customer that is not in the catalogue.
        "INSERT INTO recibos (Id, Recibo, IdPago, Fecha, Cancelado) VALUES "
        "(1,12,2,'2026-03-02',0),(2,11,1,'2026-03-01',0),(3,13,3,'2026-03-03',1),"
        "(4,14,77,'2026-03-04',0),(5,10,1,'2026-02-28',0),(6,15,3,'2026-04-01',0),"
        "(7,16,4,'2026-03-05',0)");
    bd.ejecutar(
        "CREATE TABLE w (Id INT AUTO_INCREMENT PRIMARY KEY, Recibo INT, IdPago INT, Fecha DATE, "
        "Concepto VARCHAR(150), Cantidad DOUBLE, Cliente VARCHAR(15), Nombre VARCHAR(100))");
    const std::vector<std::vector<std::string>> casos = {{"", "", "", ""},
                                                         {"2026-03-01", "2026-03-31", "", ""},
                                                         {"2026-03-01", "", "C2", ""},
                                                         {"", "2026-03-31", "", "C3"},
                                                         {"", "", "C1", "C2"},
                                                         {"", "", "C2", "C9"}};
    for (const auto& c : casos) {
        SCOPED_TRACE(Une(c));
        bd.ejecutar("TRUNCATE TABLE w");
        bd.ejecutar(R::SqlLlenado("w", c[0], c[1], c[2], c[3]));
        const auto hecho = bd.filas(
            "SELECT Recibo, IdPago, Fecha, Concepto, Cantidad, Cliente, Nombre FROM w ORDER BY Id");
        EXPECT_EQ(hecho, Regla(bd, c[0], c[1], c[2], c[3]));
    }
    // With no dates, every receipt in number order; the cancelled one keeps its amount.
    bd.ejecutar("TRUNCATE TABLE w");
    bd.ejecutar(R::SqlLlenado("w", "", "", "", ""));
    EXPECT_EQ(bd.filas("SELECT GROUP_CONCAT(Recibo ORDER BY Id) FROM w")[0][0],
              "10,11,12,13,14,15,16");
    EXPECT_EQ(
        bd.filas("SELECT Concepto, Cantidad, Cliente FROM w WHERE Recibo IN (13,14) ORDER BY Id"),
        (std::vector<std::vector<std::string>>{{"CANCELADO", "80", "C3"}, {"CANCELADO", "0", ""}}));
}

}  // namespace
}  // namespace paratzorep::reports
