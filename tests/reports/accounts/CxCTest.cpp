// Receivables and payables: the ledger conditions and the statements that fill the work
// tables, character for character; the product balances' selection formula.
#include <gtest/gtest.h>

#include "reports/accounts/RepAdmCxC.h"
#include "reports/accounts/RepAdmSdoProdsCtes.h"
#include "support/NombresDeCaso.h"

namespace paratzorep::reports {
namespace {

struct CasoCondicion {
    const char* nombre;
    FiltrosCxC filtros;
    const char* esperada;
};

FiltrosCxC Con(const char* desde, const char* hasta, const char* c0, const char* c1) {
    FiltrosCxC f;
    f.desdeSQL = desde;
    f.hastaSQL = hasta;
    f.clave0 = c0;
    f.clave1 = c1;
    return f;
}

class CondicionesCxC : public ::testing::TestWithParam<CasoCondicion> {};

TEST_P(CondicionesCxC, SonLasDelSistema) {
    EXPECT_EQ(RepAdmCxC::Condiciones(GetParam().filtros), GetParam().esperada);
}

INSTANTIATE_TEST_SUITE_P(
    Tabla, CondicionesCxC,
    ::testing::Values(CasoCondicion{"sin filtros", Con("", "", "", ""), ""},
                      CasoCondicion{"solo desde", Con("2026-10-01", "", "", ""),
                                    " WHERE Vencimiento>='2026-10-01'"},
                      CasoCondicion{"solo hasta", Con("", "2026-10-31", "", ""),
                                    " WHERE Vencimiento<='2026-10-31'"},
                      CasoCondicion{"una clave en la segunda caja", Con("", "", "", "C00009"),
                                    " WHERE Clave='C00009'"},
                      CasoCondicion{
                          "todo", Con("2026-10-01", "2026-10-31", "C00001", "C00050"),
                          " WHERE Vencimiento>='2026-10-01' AND Vencimiento<='2026-10-31' AND "
                          "Clave>='C00001' AND Clave<='C00050'"}),
    pruebas::PorNombre());

TEST(LlenadoCxC, SentenciasExactas) {
    FiltrosCxC f = Con("2026-10-01", "", "C00001", "");
    EXPECT_EQ(RepAdmCxC::SqlLlenado("t1", RepAdmCxC::Tipos()[3], f),
              "INSERT INTO t1 (Fecha,Factura,Total,Concepto,Cliente,Saldo,Vence,IdFactura) SELECT "
              "d.Fecha,CONCAT(d.Serie,d.Factura),d.Subtotal+d.IVA+d.ImpuestoAd+d.Cargo1Cantidad+"
              "d.Cargo2Cantidad+d.Cargo3Cantidad+d.Retencion+d.RetencionIVA,CONCAT('APARTADO ',"
              "d.Serie,d.Factura),x.Clave,x.Saldo,x.Vencimiento,d.Id FROM (SELECT * FROM cxc WHERE "
              "Vencimiento>='2026-10-01' AND Clave='C00001') x JOIN apartados d ON d.Id=x.Numero "
              "WHERE x.Tipo='A'");
    f.vendedor = "V01";
    f.moneda = "2";
    f.clasificacion = "MAYOREO";
    EXPECT_EQ(RepAdmCxC::SqlLlenado("t1", RepAdmCxC::Tipos()[1], f),
              "INSERT INTO t1 (Fecha,Cargo,Total,Concepto,Cliente,Saldo,Vence,IdCargo) SELECT "
              "d.Fecha,CAST(x.Numero AS CHAR),d.CantidadCargo,d.Concepto,x.Clave,x.Saldo,"
              "x.Vencimiento,d.Id FROM (SELECT * FROM cxc WHERE Vencimiento>='2026-10-01' AND "
              "Clave='C00001') x JOIN edoctacli d ON d.Folio=x.Numero JOIN clientes k ON "
              "k.Clave=x.Clave WHERE x.Tipo='C' AND k.Clasificacion='MAYOREO' AND "
              "k.Vendedor='V01' AND d.IdMoneda=2");
    f.clave1 = "C00009";
    EXPECT_EQ(RepAdmCxC::SqlAUnaFecha("t1", 'R', "2026-09-30", f),
              "INSERT INTO t1 (Fecha,Serie,Remision,Id,Cliente,Total,Saldo,Vence,Concepto) "
              "SELECT d.Fecha,d.Serie,d.Factura,d.Id,d.Cliente,d.Total,d.Saldo+IFNULL(p.Pagado,"
              "0),d.Vence,CONCAT('REMISION ',d.Serie,d.Factura) FROM remisiones d LEFT JOIN "
              "(SELECT IdRemision,SUM(Cantidad) AS Pagado FROM anexopagosctes WHERE "
              "FechaAplicacion>'2026-09-30' AND IdRemision<>0 GROUP BY IdRemision) p ON "
              "p.IdRemision=d.Id WHERE d.Fecha<='2026-09-30' AND (d.Saldo>=.01 OR (d.Saldo=0 "
              "AND p.IdRemision IS NOT NULL)) AND d.Cliente>='C00001' AND d.Cliente<='C00009' "
              "AND d.Vendedor='V01' AND d.Moneda=2");
    FiltrosCxC p;
    p.clasificacion = "O'BRIEN";
    EXPECT_EQ(RepAdmCxP::SqlLlenado("t2", RepAdmCxP::Tipos()[2], p),
              "INSERT INTO t2 (Fecha,Compra,Total,Concepto,Proveedor,Saldo,Vence,Id) SELECT "
              "d.Fecha,CAST(d.Compra AS CHAR),d.Subtotal+d.IVA+d.ImpuestoAd,CONCAT('COMPRA ND "
              "',d.Factura),x.Clave,x.Saldo,x.Vencimiento,d.Compra FROM (SELECT * FROM cxp) x "
              "JOIN comprasnd d ON d.Compra=x.Numero JOIN proveedores k ON k.Clave=x.Clave WHERE "
              "x.Tipo='N' AND k.Clasificacion='O''BRIEN'");
}

TEST(SaldosProds, FormulaDelRango) {
    EXPECT_EQ(RepAdmSdoProdsCtes::FormulaSeleccion("", ""), "");
    EXPECT_EQ(RepAdmSdoProdsCtes::FormulaSeleccion("C00001", ""),
              "{saldosprodsctes.Cliente}='C00001'");
    EXPECT_EQ(RepAdmSdoProdsCtes::FormulaSeleccion("", "C00002"),
              "{saldosprodsctes.Cliente}='C00002'");
    EXPECT_EQ(RepAdmSdoProdsCtes::FormulaSeleccion("C00003", "C00003"),
              "{saldosprodsctes.Cliente}>='C00003' and {saldosprodsctes.Cliente}<='C00003'");
}

}  // namespace
}  // namespace paratzorep::reports
