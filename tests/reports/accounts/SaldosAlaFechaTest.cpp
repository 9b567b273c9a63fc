// Balances at a date: the accounts' source and the MONEDA formula exactly; the set-based fill
// equal to the rule (each account's current balance, the movements from the day on undone one
// account at a time, cancellations found through their charge) on a small company, for three
// dates, with and without leaving cancelled sales out, in two currencies.
#include <gtest/gtest.h>

#include <cmath>
#include <map>

#include "reports/accounts/SaldosAlaFecha.h"
#include "support/NombresDeCaso.h"
#include "support/Soporte.h"
#include "support/TablasDeEmpresa.h"

namespace paratzorep::reports {
namespace {

using F = FormaSaldosAlaFecha;

struct Texto {
    const char* nombre;
    std::string hecho;
    const char* esperado;
};

class TextoSaldos : public ::testing::TestWithParam<Texto> {};

TEST_P(TextoSaldos, DiceLoQueElSistemaDice) {
    EXPECT_EQ(GetParam().hecho, GetParam().esperado);
}

INSTANTIATE_TEST_SUITE_P(
    Casos, TextoSaldos,
    ::testing::Values(
        Texto{"todas", F::FuenteCuentas(F::Clientes(), "", "", ""), "clientes ORDER BY Clave"},
        Texto{"solo la inicial", F::FuenteCuentas(F::Clientes(), "C001", "", ""),
              "clientes WHERE Clave='C001' ORDER BY Clave"},
        Texto{"solo la final", F::FuenteCuentas(F::Clientes(), "", "C009", ""),
              "clientes WHERE Clave='C009' ORDER BY Clave"},
        Texto{"rango y clasificacion", F::FuenteCuentas(F::Proveedores(), "P1", "P5", "FLETES"),
              "proveedores WHERE Clave>='P1' AND Clave<='P5' AND Clasificacion='FLETES' ORDER BY "
              "Clave"},
        Texto{"moneda de la fecha", F::FormulaMoneda("5 de marzo de 2026", ""),
              "MONEDA='Al día: 5 de marzo de 2026'"},
        Texto{"moneda elegida", F::FormulaMoneda("5 de marzo de 2026", "USD"),
              "MONEDA='Al día: 5 de marzo de 2026. Moneda: USD'"}),
    pruebas::PorNombre());

// The rule, one account at a time, with the statements' own conditions.
std::map<std::string, std::vector<double>> Regla(const pruebas::BaseDeDatosDePrueba& bd,
                                                 const std::string& fecha, int moneda,
                                                 bool ignorar) {
    std::map<std::string, std::vector<double>> r;
    const std::string m = std::to_string(moneda);
    auto num = [&](const std::string& sql) { return std::stod(bd.valor(sql).value_or("0")); };
    for (const auto& c : bd.filas("SELECT Clave FROM clientes ORDER BY Clave")) {
        const std::string k = c[0];
        const double saldo = num("SELECT IFNULL(MAX(Saldo),0) FROM saldoscli WHERE Clave='" + k +
                                 "' and IdMoneda=" + m);
        const std::string w =
            " FROM edoctacli WHERE Clave='" + k + "' and Fecha>='" + fecha + "' and IdMoneda=" + m;
        double cargos = num("SELECT IFNULL(SUM(CantidadCargo),0)" + w);
        double abonos = num("SELECT IFNULL(SUM(CantidadPago),0)" + w);
        if (ignorar) {
            for (const auto& b : bd.filas("SELECT Concepto, CantidadPago" + w +
                                          " and CantidadPago>0 and Concepto like "
                                          "'%BONIFICACION POR CANCELACION%'")) {
                auto p = b[0].find("FACTURA ");
                if (p == std::string::npos) p = b[0].find("REMISION ");
                if (p == std::string::npos) continue;
                const auto cargo =
                    bd.filas("SELECT CantidadCargo" + w + " and Concepto like 'CARGO POR " +
                             b[0].substr(p) + "%' ORDER BY Id LIMIT 1");
                if (cargo.empty()) continue;
                cargos -= std::stod(cargo[0][0]);
                abonos -= std::stod(b[1]);
            }
        }
        r[k] = {cargos, abonos, saldo + abonos - cargos};
    }
    return r;
}

TEST(SaldosAlaFecha, ElLlenadoEnConjuntoDaLoQueLaReglaCuentaPorCuenta) {
    pruebas::BaseDeDatosDePrueba bd;
    pruebas::cargarTablasDeEmpresa(bd.mysql(), {"clientes", "saldoscli", "edoctacli"});
    // C1: movements before, on and after the dates, a sale charged and cancelled after the
    // date, one charged before and cancelled after; C2 another currency too; C3 nothing moved;
    // C4 no balance row.
    bd.ejecutar(
        "INSERT INTO clientes (Clave, Nombre) VALUES ('C1','UNO'),('C2','DOS'),('C3','TRES'),"
        "('C4','CUATRO');"
        "INSERT INTO saldoscli (Clave, IdMoneda, Saldo) VALUES ('C1',1,350),('C2',1,80),"
        "('C2',2,40),('C3',1,12.5);"
        "INSERT INTO edoctacli (Id, Fecha, Clave, IdMoneda, CantidadCargo, CantidadPago, Concepto)"
        " VALUES (1,'2026-01-10','C1',1,500,0,'CARGO POR FACTURA A1'),"
        "(2,'2026-02-01','C1',1,0,200,'PAGO'),"
        "(3,'2026-03-01','C1',1,300,0,'CARGO POR FACTURA A2'),"
        "(4,'2026-03-01','C1',1,0,300,'BONIFICACION POR CANCELACION DE FACTURA A2'),"
        "(5,'2026-03-05','C1',1,0,50,'PAGO'),"
        "(6,'2026-03-06','C1',1,0,100,'BONIFICACION POR CANCELACION DE FACTURA A1'),"
        "(7,'2026-03-07','C1',1,200,0,'CARGO POR REMISION R9'),"
        "(8,'2026-03-08','C1',1,0,200,'BONIFICACION POR CANCELACION DE REMISION R9'),"
        "(9,'2026-02-20','C2',1,80,0,'CARGO POR FACTURA A3'),"
        "(10,'2026-03-01','C2',2,40,0,'CARGO POR FACTURA A4'),"
        "(11,'2026-03-05','C4',1,0,5,'PAGO')");
    bd.ejecutar(
        "CREATE TABLE w (Id INT AUTO_INCREMENT PRIMARY KEY, clave VARCHAR(15), Nombre "
        "VARCHAR(100), Cargos DOUBLE, Abonos DOUBLE, SaldoActual DOUBLE)");
    for (const char* fecha : {"2026-02-01", "2026-03-01", "2026-03-06"})
        for (int moneda : {1, 2})
            for (bool ignorar : {false, true}) {
                SCOPED_TRACE(std::string(fecha) + " moneda " + std::to_string(moneda) +
                             (ignorar ? " sin canceladas" : ""));
                bd.ejecutar("TRUNCATE TABLE w");
                bd.ejecutar(F::SqlLlenado(F::Clientes(), "w",
                                          F::FuenteCuentas(F::Clientes(), "", "", ""), fecha,
                                          std::to_string(moneda), ignorar));
                std::map<std::string, std::vector<double>> hecho;
                for (const auto& f :
                     bd.filas("SELECT clave, Cargos, Abonos, SaldoActual FROM w ORDER BY Id"))
                    hecho[f[0]] = {std::stod(f[1]), std::stod(f[2]), std::stod(f[3])};
                EXPECT_EQ(hecho, Regla(bd, fecha, moneda, ignorar));
            }
    // The day's own movements are undone: C1 at the start of March 1st, with and without the
    // cancelled sale of that day.
    bd.ejecutar("TRUNCATE TABLE w");
    bd.ejecutar(
        F::SqlLlenado(F::Clientes(), "w", "clientes WHERE Clave='C1'", "2026-03-01", "1", true));
    EXPECT_EQ(bd.filas("SELECT Cargos, Abonos, SaldoActual FROM w"),
              (std::vector<std::vector<std::string>>{{"0", "150", "500"}}));
}

}  // namespace
}  // namespace paratzorep::reports
