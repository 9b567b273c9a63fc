// Payments of customers and suppliers: the selection formulas, the copy of the seller variant,
// the means-of-payment breakdown, the missing receipts and the template choice, exactly; the
// breakdown's and the missing receipts' set-based fills equal to the rule applied payment by
// payment on a small company.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>

#include "reports/accounts/RepAdmPagosCtes.h"
#include "reports/accounts/RepAdmPagosProv.h"
#include "support/NombresDeCaso.h"
#include "support/Soporte.h"
#include "support/TablasDeEmpresa.h"

namespace paratzorep::reports {
namespace {

using C = RepAdmPagosCtes;

FiltrosPagos Con(std::function<void(FiltrosPagos&)> cambia) {
    FiltrosPagos f;
    cambia(f);
    return f;
}

struct Texto {
    const char* nombre;
    std::string hecho;
    const char* esperado;
};

class TextoPagos : public ::testing::TestWithParam<Texto> {};

TEST_P(TextoPagos, DiceLoQueElSistemaDice) {
    EXPECT_EQ(GetParam().hecho, GetParam().esperado);
}

const char* kBase =
    "{edoctacli.CantidadPago}>0 and not ('BONIFICACION POR CANCELACION' in "
    "{edoctacli.Concepto}) and not ('DEVOLUCION CTES. ' in {edoctacli.Concepto}) and not "
    "('ABONO AUTOMATICO A CXC' in {edoctacli.Concepto})";

INSTANTIATE_TEST_SUITE_P(
    Formulas, TextoPagos,
    ::testing::Values(
        Texto{"sin filtros", C::FormulaSeleccion({}), kBase},
        Texto{"con cancelaciones y devoluciones",
              C::FormulaSeleccion(Con([](auto& f) { f.cancelaciones = f.devoluciones = true; })),
              "{edoctacli.CantidadPago}>0 and not ('ABONO AUTOMATICO A CXC' in "
              "{edoctacli.Concepto})"},
        Texto{"todo a la vez", C::FormulaSeleccion(Con([](auto& f) {
                  f.cancelaciones = f.devoluciones = true;
                  f.moneda = "2";
                  f.desde = "05/03/2026";
                  f.hasta = "31/03/2026";
                  f.pagoDesde = "01/02/2026";
                  f.pagoHasta = "15/04/2026";
                  f.notasVisibles = true;
                  f.claveDesde = "C1";
                  f.claveHasta = "C9";
                  f.usuario = "ANA";
                  f.tipo = 1;
                  f.pagosNIVisibles = true;
              })),
              "{edoctacli.CantidadPago}>0 and not ('ABONO AUTOMATICO A CXC' in "
              "{edoctacli.Concepto}) and {edoctacli.IdMoneda}=2 and "
              "{edoctacli.Fecha}>=Date(2026,3,5) and {edoctacli.Fecha}<=Date(2026,3,31) and "
              "{edoctacli.FechaDePago}>=Date(2026,2,1) and {edoctacli.FechaDePago}<=Date(2026,4,15)"
              " and {edoctacli.NotaCredito}=0 and {edoctacli.Clave}>='C1' and "
              "{edoctacli.Clave}<='C9' and {edoctacli.Usuario}='ANA' and "
              "{anexopagosctes.Factura}<>0 and {edoctacli.Clave}<>''"},
        Texto{"remisiones, notas incluidas, un cliente", C::FormulaSeleccion(Con([](auto& f) {
                  f.cancelaciones = f.devoluciones = true;
                  f.notasVisibles = f.notas = true;
                  f.claveHasta = "C7";
                  f.tipo = 2;
              })),
              "{edoctacli.CantidadPago}>0 and not ('ABONO AUTOMATICO A CXC' in "
              "{edoctacli.Concepto}) and {edoctacli.Clave}='C7' and "
              "{anexopagosctes.Remision}<>0"},
        Texto{"pagos no asignados", C::FormulaSeleccion(Con([](auto& f) {
                  f.cancelaciones = f.devoluciones = true;
                  f.pagosNIVisibles = f.sinCliente = true;
              })),
              "{edoctacli.CantidadPago}>0 and not ('ABONO AUTOMATICO A CXC' in "
              "{edoctacli.Concepto}) and {edoctacli.Clave}=''"},
        Texto{"orden por fecha", C::OrdenPagos("edoctacli", 0), "+{edoctacli.Fecha}"},
        Texto{"orden por cantidad", C::OrdenPagos("edoctacli", 1), "+{edoctacli.CantidadPago}"},
        Texto{"orden por concepto", C::OrdenPagos("edoctaprov", 2), "+{edoctaprov.Concepto}"},
        Texto{"orden por cuenta", C::OrdenPagos("edoctaprov", 3), "+{edoctaprov.Clave}"},
        Texto{"proveedores sin filtros",
              RepAdmPagosProv::FormulaSeleccion("", "", "", "", "", false),
              "{edoctaprov.CantidadPago}>0 and not ('DEVOLUCION PROV. ' in "
              "{edoctaprov.Concepto})"},
        Texto{"proveedores con todo",
              RepAdmPagosProv::FormulaSeleccion("01/01/2026", "31/01/2026", "P1", "P5", "1", true),
              "{edoctaprov.CantidadPago}>0 and {edoctaprov.IdMoneda}=1 and "
              "{edoctaprov.Fecha}>=Date(2026,1,1) and {edoctaprov.Fecha}<=Date(2026,1,31) and "
              "{edoctaprov.Clave}>='P1' and {edoctaprov.Clave}<='P5'"},
        Texto{"proveedores uno", RepAdmPagosProv::FormulaSeleccion("", "", "P3", "", "", true),
              "{edoctaprov.CantidadPago}>0 and {edoctaprov.Clave}='P3'"}),
    pruebas::PorNombre());

const char* kColumnas =
    "SELECT edoctacli.Id,edoctacli.Folio,edoctacli.Foliote,edoctacli.Movimiento,"
    "edoctacli.Fecha,edoctacli.Hora,edoctacli.FechaDePago,edoctacli.Clave,"
    "edoctacli.CantidadCargo,edoctacli.CantidadPago,edoctacli.Concepto,edoctacli.Concepto2,"
    "edoctacli.Concepto3,edoctacli.Usuario,edoctacli.MontoTotal,edoctacli.MonedaMT,"
    "edoctacli.IdMoneda,edoctacli.Moneda,edoctacli.NotaCredito,edoctacli.SaldoAnterior,"
    "edoctacli.SaldoActual FROM edoctacli LEFT JOIN clientes on edoctacli.Clave=clientes.Clave";

std::string Sin(const std::string& sql) {
    const auto p = sql.find(kColumnas);
    return p == std::string::npos
               ? sql
               : sql.substr(0, p) + "..." + sql.substr(p + std::strlen(kColumnas));
}

INSTANTIATE_TEST_SUITE_P(
    Sentencias, TextoPagos,
    ::testing::Values(
        Texto{"copia del vendedor",
              Sin(C::SqlCopia("t1", Con([](auto& f) { f.vendedor = "V01"; }))),
              "INSERT INTO t1 ... WHERE Clientes.Vendedor='V01' and edoctacli.CantidadPago>0 and "
              "not edoctacli.Concepto like '%DEVOLUCION CTES. %' and not edoctacli.Concepto like "
              "'%ABONO AUTOMATICO A CXC%' GROUP BY edoctacli.Id"},
        Texto{"copia del vendedor con todo", Sin(C::SqlCopia("t1", Con([](auto& f) {
                                                                 f.vendedor = "V02";
                                                                 f.devoluciones = true;
                                                                 f.moneda = "1";
                                                                 f.desde = "01/03/2026";
                                                                 f.hasta = "31/03/2026";
                                                                 f.notasVisibles = true;
                                                                 f.claveDesde = "C1";
                                                                 f.claveHasta = "C2";
                                                                 f.tipo = 1;
                                                             }))),
              "INSERT INTO t1 ... LEFT JOIN anexopagosctes on "
              "edoctacli.Folio=anexopagosctes.FolioDelPago WHERE Clientes.Vendedor='V02' and "
              "edoctacli.CantidadPago>0 and not edoctacli.Concepto like '%ABONO AUTOMATICO A "
              "CXC%' and edoctacli.IdMoneda=1 and edoctacli.Fecha>='2026-03-01' and "
              "edoctacli.Fecha<='2026-03-31' and edoctacli.NotaCredito=0 and "
              "edoctacli.Clave>='C1' and edoctacli.Clave<='C2' and anexopagosctes.Factura<>0 "
              "GROUP BY edoctacli.Id"},
        Texto{"copia por remisiones sin vendedor", Sin(C::SqlCopia("t1", Con([](auto& f) {
                                                                       f.devoluciones = true;
                                                                       f.claveDesde = "C3";
                                                                       f.tipo = 2;
                                                                   }))),
              "INSERT INTO t1 ... LEFT JOIN anexopagosctes on "
              "edoctacli.Folio=anexopagosctes.FolioDelPago WHERE edoctacli.CantidadPago>0 and not "
              "edoctacli.Concepto like '%ABONO AUTOMATICO A CXC%' and edoctacli.Clave='C3' and "
              "anexopagosctes.Remision<>0 GROUP BY edoctacli.Id"},
        Texto{"cheques sin filtros", C::FuenteCheques({}),
              "edoctacli WHERE CantidadPago>0 AND not (Concepto like 'DEVOLUCION CTES. %')"},
        Texto{"cheques con todo", C::FuenteCheques(Con([](auto& f) {
                  f.devoluciones = true;
                  f.moneda = "2";
                  f.desde = "01/03/2026";
                  f.hasta = "31/03/2026";
                  f.notasVisibles = true;
                  f.claveDesde = "C1";
              })),
              "edoctacli WHERE CantidadPago>0 AND IdMoneda=2 AND Fecha>='2026-03-01' AND "
              "Fecha<='2026-03-31' AND NotaCredito=0 AND Clave='C1'"},
        Texto{"primer pago", C::FuentePrimerPago("2026-03-01"),
              "edoctacli WHERE CantidadPago>0 and Fecha>='2026-03-01' ORDER BY Id LIMIT 1"},
        Texto{"ultimo pago", C::FuenteUltimoPago("2026-03-31"),
              "edoctacli WHERE CantidadPago>0 and Fecha<='2026-03-31' ORDER BY Id DESC LIMIT 1"},
        Texto{"timbrados", C::Plantilla(true, C::kCheques, true, true), "RepAdmTimbres.rpt"},
        Texto{"lista", C::Plantilla(false, C::kLista, false, true), "pagosctes4.rpt"},
        Texto{"desglosada", C::Plantilla(false, C::kLista, true, false), "pagosctes.rpt"},
        Texto{"desglosada timbrada", C::Plantilla(false, C::kLista, true, true),
              "pagosctescfdi.rpt"},
        Texto{"por cliente", C::Plantilla(false, C::kPorCliente, false, false), "pagosctes2.rpt"},
        Texto{"cheques", C::Plantilla(false, C::kCheques, false, false), "pagosctes3.rpt"}),
    pruebas::PorNombre());

class PagosEnConjunto : public ::testing::Test {
  protected:
    void SetUp() override {
        pruebas::cargarTablasDeEmpresa(bd.mysql(), {"edoctacli", "anexopagosctes", "recibos"});
        // Payments 1..6: cash, a cheque of each kind, mixed, a return, a credit note, another
        // currency; 7 a charge; applications to invoices, delivery notes and a charge.
        bd.ejecutar(
            "INSERT INTO edoctacli (Id, Folio, Fecha, Clave, IdMoneda, CantidadCargo, "
            "CantidadPago, NotaCredito, Concepto) VALUES "
            "(1,11,'2026-03-01','C1',1,0,100,0,'PAGO'),(2,12,'2026-03-02','C2',1,0,300,0,'PAGO'),"
            "(3,13,'2026-03-03','C1',1,0,50,0,'DEVOLUCION CTES. No. 1 DE FACTURA A1'),"
            "(4,14,'2026-03-04','C3',1,0,70,1,'NOTA DE CREDITO'),"
            "(5,15,'2026-03-05','C1',2,0,20,0,'PAGO'),(6,16,'2026-02-27','C2',1,0,10,0,'PAGO'),"
            "(7,17,'2026-03-06','C1',1,500,0,0,'CARGO POR FACTURA A9'),"
            "(8,18,'2026-03-31','C2',1,0,40,0,'PAGO'),(9,19,'2026-04-02','C2',1,0,40,0,'PAGO');"
            "INSERT INTO anexopagosctes (FolioDelPago, Factura, Remision, Cargo, Cantidad, "
            "Efectivo, ChequeCuenta, ChequeOtra) VALUES (11,5,0,0,100,100,0,0),"
            "(12,6,0,0,200,0,200,0),(12,0,7,0,100,40,0,60),(13,8,0,0,50,50,0,0),"
            "(14,0,9,0,70,0,0,70),(15,10,0,0,20,20,0,0),(16,0,0,3,10,10,0,0);"
            "INSERT INTO recibos (Recibo, IdPago, Fecha) VALUES (1,1,'2026-03-01'),"
            "(2,2,'2026-04-20'),(4,4,'2026-03-04'),(5,5,'2026-02-20'),(6,6,'2026-02-27'),"
            "(8,8,'2026-03-31')");
    }
    pruebas::BaseDeDatosDePrueba bd;
};

TEST_F(PagosEnConjunto, ElDesgloseDeChequesDaLoQueLaReglaPagoPorPago) {
    bd.ejecutar(
        "CREATE TABLE w (Id INT AUTO_INCREMENT PRIMARY KEY, Fecha DATE, Tipo VARCHAR(30), "
        "Cantidad DOUBLE, Clave VARCHAR(15), Folio INT, Concepto VARCHAR(150))");
    const std::vector<FiltrosPagos> casos = {{},
                                             Con([](auto& f) { f.devoluciones = true; }),
                                             Con([](auto& f) {
                                                 f.desde = "01/03/2026";
                                                 f.hasta = "31/03/2026";
                                                 f.notasVisibles = true;
                                                 f.tipo = 1;
                                             }),
                                             Con([](auto& f) {
                                                 f.moneda = "1";
                                                 f.claveDesde = "C2";
                                                 f.claveHasta = "C3";
                                                 f.tipo = 2;
                                             })};
    for (const auto& f : casos) {
        SCOPED_TRACE(C::FuenteCheques(f) + " tipo " + std::to_string(f.tipo));
        bd.ejecutar("TRUNCATE TABLE w");
        bd.ejecutar(C::SqlCheques("w", f));
        std::vector<std::vector<std::string>> regla;
        for (const auto& p : bd.filas("SELECT Folio, Fecha, Clave, Concepto FROM " +
                                      C::FuenteCheques(f) + " ORDER BY Id")) {
            std::string w = "anexopagosctes WHERE FolioDelPago=" + p[0];
            if (f.tipo == 1) w += " and Factura<>0";
            if (f.tipo == 2) w += " and Remision<>0";
            for (const auto& a :
                 bd.filas("SELECT Efectivo, ChequeCuenta, ChequeOtra FROM " + w + " ORDER BY Id")) {
                const char* tipos[] = {"EFECTIVO", "CHEQUE DE CASA", "OTROS BANCOS"};
                for (int i = 0; i < 3; ++i)
                    if (std::stod(a[i]) != 0)
                        regla.push_back({p[1], tipos[i], a[i], p[2], p[0], p[3]});
            }
        }
        EXPECT_EQ(
            bd.filas("SELECT Fecha, Tipo, Cantidad, Clave, Folio, Concepto FROM w ORDER BY Id"),
            regla);
    }
}

TEST_F(PagosEnConjunto, LosRecibosFaltantesDanLoQueLaReglaPagoPorPago) {
    bd.ejecutar(
        "CREATE TABLE w (Id INT AUTO_INCREMENT PRIMARY KEY, Recibo INT, IdPago INT, Fecha DATE, "
        "Motivo VARCHAR(150))");
    bd.ejecutar(C::SqlRecibosFaltantes("w", "1", "8", "2026-03-01", "2026-03-31"));
    // Every payment between the two Ids: 3 has no receipt, 2's is dated after the range, 5's
    // and 6's before it (6 was entered late); 7 is a charge; 1's and 8's are inside.
    EXPECT_EQ(bd.filas("SELECT Recibo, IdPago, Fecha, Motivo FROM w ORDER BY Id"),
              (std::vector<std::vector<std::string>>{
                  {"2", "2", "2026-03-02", "Recibo fuera de rango (20/abr/2026)"},
                  {"0", "3", "2026-03-03", "No existe el recibo"},
                  {"5", "5", "2026-03-05", "Recibo fuera de rango (20/feb/2026)"},
                  {"6", "6", "2026-02-27", "Recibo fuera de rango (27/feb/2026)"}}));
    EXPECT_EQ(bd.valor("SELECT Id FROM " + C::FuentePrimerPago("2026-03-01")), "1");
    EXPECT_EQ(bd.valor("SELECT Id FROM " + C::FuenteUltimoPago("2026-03-31")), "8");
}

}  // namespace
}  // namespace paratzorep::reports
