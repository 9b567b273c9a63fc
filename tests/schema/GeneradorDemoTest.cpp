#include "schema/GeneradorDemo.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <set>

#include "support/Soporte.h"

namespace paratzorep::schema {
namespace {

using detail::Azar;

TEST(Azar, LaMismaSemillaDaLaMismaSecuenciaYOtraNo) {
    Azar a(1), b(1), c(2);
    bool distinta = false;
    for (int i = 0; i < 100; ++i) {
        const auto x = a.siguiente();
        EXPECT_EQ(x, b.siguiente());
        distinta = distinta || x != c.siguiente();
    }
    EXPECT_TRUE(distinta);
}

TEST(Azar, LosRangosSonInclusivosYCompletos) {
    Azar a(42);
    std::set<long long> vistos;
    for (int i = 0; i < 2000; ++i) {
        const auto v = a.entre(-2, 3);
        ASSERT_GE(v, -2);
        ASSERT_LE(v, 3);
        vistos.insert(v);
        const double u = a.unitario();
        ASSERT_GE(u, 0.0);
        ASSERT_LT(u, 1.0);
    }
    EXPECT_EQ(vistos.size(), 6u);
    EXPECT_EQ(a.entre(5, 5), 5);
}

TEST(Fechas, IdaYVueltaEnBisiestosYCambiosDeAnio) {
    for (const char* t :
         {"1970-01-01", "2024-02-29", "2024-12-31", "2025-01-01", "2026-10-31", "2000-03-01"})
        EXPECT_EQ(detail::textoFecha(detail::fechaDeTexto(t)), t);
    EXPECT_EQ(detail::fechaDeTexto("2024-03-01") - detail::fechaDeTexto("2024-02-28"), 2);
    EXPECT_EQ(detail::fechaDeTexto(kFechaFinalDemo) - detail::fechaDeTexto(kFechaInicialDemo), 729);
    for (const char* malo : {"", "2024-13-01", "2024/01/01", "31-12-2024", "abcd-ef-gh"})
        EXPECT_THROW(detail::fechaDeTexto(malo), std::invalid_argument) << malo;
}

TEST(Importes, CentavosYMilesimasConSigno) {
    EXPECT_EQ(detail::textoCentavos(0), "0.00");
    EXPECT_EQ(detail::textoCentavos(5), "0.05");
    EXPECT_EQ(detail::textoCentavos(-5), "-0.05");
    EXPECT_EQ(detail::textoCentavos(123456), "1234.56");
    EXPECT_EQ(detail::textoCentavos(-100), "-1.00");
    EXPECT_EQ(detail::textoMilesimas(1250), "1.250");
    EXPECT_EQ(detail::textoMilesimas(-7), "-0.007");
}

// The company and general databases of one generated demo, dropped at the end.
class Demo {
  public:
    Demo(const std::string& sufijo, OpcionesDemo op)
        : c_(Conexion::abrir(pruebas::servidorDePrueba())) {
        const std::string pid = std::to_string(::getpid());
        op.baseEmpresa = "t_demo_" + sufijo + "_e" + pid;
        op.baseGeneral = "t_demo_" + sufijo + "_g" + pid;
        empresa_ = op.baseEmpresa;
        general_ = op.baseGeneral;
        recrearBase(c_, general_, carpetaEsquemas() / "generaltanzo.sql");
        recrearBase(c_, empresa_, carpetaEsquemas() / "empresa.sql");
        conteos_ = generarDemo(c_, op);
    }
    ~Demo() {
        for (const auto& b : {empresa_, general_}) try {
                c_.ejecutar("DROP DATABASE IF EXISTS `" + b + "`");
            } catch (...) {
            }
    }
    Conexion& c() { return c_; }
    std::string n(const std::string& sql) { return c_.valor(sql); }
    const std::string& empresa() const { return empresa_; }
    const std::string& general() const { return general_; }
    const ConteoFilas& conteos() const { return conteos_; }

    // CHECKSUM TABLE of every table of both databases, in name order.
    std::vector<std::string> sumas() {
        std::vector<std::string> r;
        for (const auto& base : {empresa_, general_})
            for (const auto& t : c_.consultar("SELECT TABLE_NAME FROM information_schema.TABLES "
                                              "WHERE TABLE_SCHEMA='" +
                                              base + "' ORDER BY TABLE_NAME")) {
                auto f = c_.consultar("CHECKSUM TABLE `" + base + "`.`" + *t[0] + "`");
                r.push_back(*t[0] + "=" + f[0][1].value_or("NULL"));
            }
        return r;
    }

  private:
    Conexion c_;
    std::string empresa_, general_;
    ConteoFilas conteos_;
};

TEST(GeneradorDemo, LaMismaSemillaDaDatosIdenticosYOtraSemillaOtros) {
    OpcionesDemo op;
    op.dias = 45;
    op.semilla = 7;
    Demo a("a", op), b("b", op);
    op.semilla = 8;
    Demo c("c", op);
    const auto sa = a.sumas(), sb = b.sumas(), sc = c.sumas();
    EXPECT_EQ(sa, sb);
    ASSERT_EQ(sa.size(), sc.size());
    int distintas = 0;
    for (size_t i = 0; i < sa.size(); ++i) distintas += sa[i] != sc[i];
    EXPECT_GT(distintas, 20);
    EXPECT_EQ(a.n("SELECT MAX(Fecha) FROM facturas"), "2026-10-31");
    EXPECT_EQ(a.n("SELECT MIN(Fecha) FROM historicoalmacen"), "2026-09-17");
}

TEST(GeneradorDemo, RechazaEscalasFueraDeRango) {
    auto c = Conexion::abrir(pruebas::servidorDePrueba());
    OpcionesDemo op;
    op.escala = 0;
    EXPECT_THROW(generarDemo(c, op), std::invalid_argument);
    op.escala = 1;
    op.baseEmpresa = "no valida";
    EXPECT_THROW(generarDemo(c, op), std::invalid_argument);
}

// What another layer's tests do: the company schema and a short history in
// their own scratch database, without a general database.
TEST(GeneradorDemo, CargaEsquemaYDemoCortaEnUnaBaseDePrueba) {
    pruebas::BaseDeDatosDePrueba bd;
    cargarArchivo(bd.mysql(), carpetaEsquemas() / "empresa.sql");
    EXPECT_EQ(bd.valor("SELECT COUNT(*) FROM information_schema.TABLES WHERE TABLE_SCHEMA='" +
                       bd.nombre() + "'"),
              "63");
    auto c = Conexion::abrir(pruebas::servidorDePrueba(), bd.nombre());
    OpcionesDemo op;
    op.baseEmpresa = bd.nombre();
    op.baseGeneral = "";
    op.dias = 20;
    const auto conteos = generarDemo(c, op);
    EXPECT_EQ(conteos.count("`" + bd.nombre() + "`.facturas"), 1u);
    EXPECT_NE(bd.valor("SELECT COUNT(*) FROM facturas"), "0");
    EXPECT_EQ(bd.valor("SELECT MIN(Fecha) FROM edoctacli"), "2026-10-12");
    EXPECT_THROW(cargarArchivo(bd.mysql(), carpetaEsquemas() / "empresa.sql"), ErrorEsquema);
    // A second load into the filled database fails on the first duplicate key.
    try {
        generarDemo(c, op);
        FAIL() << "debió fallar";
    } catch (const ErrorEsquema& e) {
        EXPECT_EQ(e.codigo(), 1062u) << e.what();
    }
}

// The whole scale-1 company: every table filled, and the figures that the
// reports rely on agree with one another.
class DemoCompleta : public ::testing::Test {
  protected:
    static void SetUpTestSuite() { demo_ = new Demo("full", OpcionesDemo{}); }
    static void TearDownTestSuite() {
        delete demo_;
        demo_ = nullptr;
    }
    static Demo* demo_;
    long long cuenta(const std::string& sql) { return std::stoll(demo_->n(sql)); }
};
Demo* DemoCompleta::demo_ = nullptr;

TEST_F(DemoCompleta, CadaTablaTieneFilasYLosDatosSonCoherentes) {
    Demo& d = *demo_;
    {
        SCOPED_TRACE("todas las tablas con filas");
        for (const auto& base : {d.empresa(), d.general()})
            for (const auto& t : d.c().consultar("SELECT TABLE_NAME FROM information_schema.TABLES "
                                                 "WHERE TABLE_SCHEMA='" +
                                                 base + "'")) {
                if (*t[0] == "reportesbin") continue;  // filled from the template sources
                EXPECT_GT(cuenta("SELECT COUNT(*) FROM `" + base + "`.`" + *t[0] + "`"), 0)
                    << base << "." << *t[0];
            }
        EXPECT_GT(d.conteos().at("`" + d.empresa() + "`.facturasdetalle"), 10000);
    }
    {
        SCOPED_TRACE("estados de cuenta encadenados por Fecha e Id");
        for (const char* t : {"edoctacli", "edoctaprov"}) {
            const std::string sql =
                std::string(
                    "SELECT COUNT(*) FROM (SELECT SaldoAnterior, SaldoActual, "
                    "CantidadCargo, CantidadPago, COALESCE(LAG(SaldoActual) OVER (PARTITION "
                    "BY Clave, IdMoneda ORDER BY Fecha, Id), 0) AS previo FROM ") +
                t +
                ") x WHERE ABS(SaldoAnterior - previo) > 0.001 OR ABS(SaldoActual - "
                "IF(CantidadCargo<>0, SaldoAnterior + CantidadCargo, SaldoAnterior - "
                "CantidadPago)) > 0.001";
            EXPECT_EQ(cuenta(sql), 0) << t;
        }
        // Rows captured late make Id order differ from date order.
        EXPECT_GT(cuenta("SELECT COUNT(*) FROM edoctacli a JOIN edoctacli b ON a.Clave=b.Clave "
                         "AND a.IdMoneda=b.IdMoneda AND a.Id<b.Id AND a.Fecha>b.Fecha"),
                  0);
        EXPECT_GT(cuenta("SELECT COUNT(DISTINCT IdMoneda) FROM edoctacli"), 2);
    }
    {
        SCOPED_TRACE("saldos de clientes, cuentas por cobrar y documentos");
        EXPECT_EQ(cuenta("SELECT COUNT(*) FROM clientes c LEFT JOIN saldoscli s ON s.Clave=c.Clave "
                         "AND s.IdMoneda=1 WHERE s.Clave IS NULL OR ABS(s.Saldo-c.Saldo)>0.001"),
                  0);
        EXPECT_EQ(cuenta("SELECT COUNT(*) FROM clientes c LEFT JOIN (SELECT Clave, SUM(Saldo) s "
                         "FROM cxc WHERE IdMoneda=1 GROUP BY Clave) x ON x.Clave=c.Clave WHERE "
                         "ABS(COALESCE(x.s,0)-c.Saldo)>0.01"),
                  0);
        for (const auto& [tipo, tabla] : std::vector<std::pair<std::string, std::string>>{
                 {"F", "facturas"}, {"R", "remisiones"}, {"A", "apartados"}}) {
            EXPECT_EQ(cuenta("SELECT COUNT(*) FROM cxc JOIN " + tabla +
                             " d ON d.Id=cxc.Numero WHERE cxc.Tipo='" + tipo +
                             "' AND (ABS(d.Saldo-cxc.Saldo)>0.001 OR d.Cliente<>cxc.Clave)"),
                      0)
                << tabla;
            EXPECT_EQ(cuenta("SELECT COUNT(*) FROM " + tabla + " d LEFT JOIN cxc ON cxc.Tipo='" +
                             tipo + "' AND cxc.Numero=d.Id WHERE d.Saldo>0 AND cxc.Id IS NULL"),
                      0)
                << tabla;
        }
        EXPECT_EQ(cuenta("SELECT COUNT(*) FROM cxc c LEFT JOIN edoctacli e ON e.Folio=c.Numero "
                         "WHERE c.Tipo='C' AND e.Id IS NULL"),
                  0);
        EXPECT_EQ(cuenta("SELECT COUNT(*) FROM cxp JOIN compras d ON d.Compra=cxp.Numero WHERE "
                         "cxp.Tipo='M' AND ABS(d.Saldo-cxp.Saldo)>0.001"),
                  0);
        EXPECT_EQ(cuenta("SELECT COUNT(*) FROM proveedores p JOIN saldospro s ON s.Clave=p.Clave "
                         "AND s.IdMoneda=1 WHERE ABS(s.Saldo-p.Saldo)>0.001"),
                  0);
        EXPECT_EQ(cuenta("SELECT COUNT(*) FROM chequespfdetalle d LEFT JOIN cxc ON cxc.Id=d.IdCxC "
                         "WHERE cxc.Id IS NULL"),
                  0);
        EXPECT_EQ(cuenta("SELECT COUNT(*) FROM anexopagosctes a LEFT JOIN edoctacli e ON "
                         "e.Folio=a.FolioDelPago WHERE e.Id IS NULL OR e.CantidadPago<=0"),
                  0);
        EXPECT_EQ(cuenta("SELECT COUNT(*) FROM facturas WHERE ABS(Total - (Subtotal+IVA+ImpuestoAd"
                         "+Cargo1Cantidad+Cargo2Cantidad+Cargo3Cantidad+Retencion+RetencionIVA))"
                         ">0.001"),
                  0);
    }
    {
        SCOPED_TRACE("historial de almacén encadenado por producto");
        EXPECT_EQ(cuenta("SELECT COUNT(*) FROM (SELECT ExistenciaAnterior, COALESCE(LAG("
                         "ExistenciaActual) OVER (PARTITION BY Producto ORDER BY Id), 0) previo, "
                         "ExistenciaActual, Cantidad FROM historicoalmacen) x WHERE "
                         "ABS(ExistenciaAnterior-previo)>0.0001 OR "
                         "ABS(ExistenciaActual-ExistenciaAnterior-Cantidad)>0.0001"),
                  0);
        EXPECT_EQ(
            cuenta("SELECT COUNT(*) FROM productos p LEFT JOIN (SELECT h.Producto, "
                   "h.ExistenciaActual FROM historicoalmacen h JOIN (SELECT Producto, MAX(Id) "
                   "m FROM historicoalmacen GROUP BY Producto) u ON u.m=h.Id) f ON "
                   "f.Producto=p.Clave WHERE ABS(p.Existencia-COALESCE(f.ExistenciaActual,0))"
                   ">0.0001"),
            0);
        EXPECT_EQ(cuenta("SELECT COUNT(*) FROM historicoalmacen a JOIN historicoalmacen b ON "
                         "b.Id=a.Id+1 WHERE b.Fecha<a.Fecha"),
                  0);
        EXPECT_EQ(cuenta("SELECT COUNT(*) FROM facturasdetalle d JOIN historicoalmacen h ON "
                         "h.Id=d.IdKardex WHERE h.Producto<>d.Producto"),
                  0);
    }
    {
        SCOPED_TRACE("cada regla con filas de ambos lados");
        const std::vector<std::string> ambos = {
            "facturas WHERE Cancelada=1",
            "facturas WHERE Cancelada=0",
            "facturas WHERE Afectada=0 AND Observaciones=''",
            "facturas WHERE PdeV=1",
            "facturas WHERE Moneda=2",
            "facturas WHERE Moneda=3",
            "facturas WHERE Desc1>0 AND Desc2>0",
            "facturas WHERE Retencion<0",
            "facturas WHERE Retencion>0",
            "facturas WHERE Vendedor=''",
            "facturas WHERE Saldo>0 AND Vence<'2026-10-01'",
            "facturas WHERE Saldo>0 AND Vence>'2026-10-31'",
            "remisiones WHERE Facturada=1",
            "remisiones WHERE Cancelada=1",
            "remisiones WHERE Afectada=0",
            "facturasdetalle WHERE Remision<>0",
            "facturasdetalle WHERE Devueltos>0",
            "apartados WHERE Saldo=0",
            "apartados WHERE Saldo>0",
            "devolucionctes WHERE NotasCredito<>0",
            "devolucionctes WHERE NotasCredito=0 AND Cancelada=0",
            "devolucionctes WHERE Cancelada=1",
            "notascredito WHERE Devolucion=0 AND Cancelada=0",
            "notascredito WHERE Devolucion<>0",
            "notascredito WHERE Cancelada=1",
            "edoctacli WHERE Concepto LIKE 'ABONO AUTOMATICO A CXC%'",
            "edoctacli WHERE Concepto LIKE 'BONIFICACION POR CANCELACION%'",
            "edoctacli WHERE Concepto LIKE 'DEVOLUCION DEL DINERO POR CANC.%'",
            "edoctacli WHERE Concepto LIKE 'CARGO POR FACTURA %'",
            "edoctacli WHERE Concepto LIKE 'DEVOLUCION CTES. %' AND NotaCredito=0",
            "edoctacli WHERE Concepto LIKE 'DEVOLUCION CTES. %' AND NotaCredito<>0",
            "edoctacli WHERE CantidadPago>0 AND Clave=''",
            "edoctacli WHERE FechaDePago<Fecha",
            "edoctacli e WHERE CantidadPago>0 AND NOT EXISTS (SELECT 1 FROM recibos r WHERE "
            "r.IdPago=e.Id)",
            "edoctaprov WHERE Concepto LIKE 'DEVOLUCION PROV. %'",
            "cxc WHERE Tipo='C'",
            "cxc WHERE Tipo='R'",
            "cxc WHERE Tipo='A'",
            "cxp WHERE Tipo='N'",
            "cxp WHERE Tipo='C'",
            "anexopagosctes WHERE Efectivo>0",
            "anexopagosctes WHERE ChequeCuenta>0",
            "anexopagosctes WHERE ChequeOtra>0",
            "anexopagosctes WHERE Remision<>0",
            "anexopagosctes WHERE Cargo<>0",
            "recibos WHERE Cancelado=1",
            "compras WHERE Cancelada=1",
            "entradas WHERE Afectada=0",
            "entradas WHERE Afectada=1",
            "traspasos WHERE Serie='A'",
            "traspasos WHERE Serie='B'",
            "traspasos WHERE Serie=''",
            "traspasos WHERE Cancelado=1",
            "sistema WHERE Dato='TR-'",
            "productos WHERE Servicio=1",
            "productos WHERE Existencia<=0 AND Servicio=0",
            "productos p WHERE NOT EXISTS (SELECT 1 FROM ajustes a WHERE a.Clave=p.Clave)",
            "gastos WHERE PdeV=1",
            "gastos WHERE PdeV=0",
            "bitacorausuarios WHERE Registro IN (180,181)",
            "bitacorausuarios b WHERE NOT EXISTS (SELECT 1 FROM `" + d.general() +
                "`.estructurasm e WHERE e.Id=b.Registro)",
            "bitacorausuarios WHERE DECODE(Usuario,'418')='ANA'",
            "perdidas WHERE Usuario='MARIO'",
            "perdidas WHERE Usuario='M'",
            "clientes WHERE Email=''",
            "clientes WHERE Email<>''",
        };
        for (const auto& w : ambos) EXPECT_GT(cuenta("SELECT COUNT(*) FROM " + w), 0) << w;
        // Same-day payments next to payments on later days.
        EXPECT_GT(cuenta("SELECT COUNT(*) FROM anexopagosctes a JOIN facturas f ON f.Id=a.Factura "
                         "WHERE a.FechaAplicacion=f.Fecha"),
                  0);
        EXPECT_GT(cuenta("SELECT COUNT(*) FROM anexopagosctes a JOIN facturas f ON f.Id=a.Factura "
                         "WHERE a.FechaAplicacion>f.Fecha"),
                  0);
        EXPECT_EQ(
            d.n("SELECT DECODE(Dato,'527') FROM `" + d.general() + "`.estructurasm WHERE Id=180"),
            "ENTRADA AL SISTEMA");
        EXPECT_EQ(d.n("SELECT DECODE(Version,'527') FROM bitacorausuarios ORDER BY Id LIMIT 1"),
                  "5.2.118");
        EXPECT_EQ(cuenta("SELECT COUNT(*) FROM monedas"), 3);
        EXPECT_EQ(d.n("SELECT GROUP_CONCAT(Abreviacion ORDER BY Id) FROM monedas"), "MN,USD,EUR");
        EXPECT_EQ(d.n("SELECT Valor FROM configura WHERE Dato='multimoneda'"), "1");
    }
}

}  // namespace
}  // namespace paratzorep::schema
