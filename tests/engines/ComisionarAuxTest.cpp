// The commission engine on a small company worked out by hand: brackets (a seller exactly on a
// threshold, one without brackets, one below every bracket), invoice lines from a delivery note,
// a credit note against an invoice (and a cancelled one), a document in dollars, payments with
// an application of 0.01, one before and one after the period, and every percentage source.
#include "engines/clsComisionarAux.h"

#include <gtest/gtest.h>

#include <map>
#include <optional>

#include "data/BaseDDMaria.h"
#include "data/TablasTrabajo.h"
#include "host/DatosConecte.h"
#include "host/Interaccion.h"
#include "schema/Esquema.h"
#include "session/Sesion.h"
#include "support/EmpresaComisiones.h"
#include "support/NombresDeCaso.h"
#include "support/Soporte.h"
#include "toolkit/Fabrica.h"
#include "toolkit/LibKRVM.h"

namespace paratzorep::engines {
namespace {

using detail::Tramo;

// --- Brackets, worked out by hand -------------------------------------------------------------

struct CasoTramo {
    const char* nombre;
    std::vector<Tramo> tramos;
    double total;
    int elegido;
    const char* descripcion;
};

class EligeTramoTest : public ::testing::TestWithParam<CasoTramo> {};

TEST_P(EligeTramoTest, ElTotalEligeElTramoMasAltoQueAlcanza) {
    const auto& c = GetParam();
    EXPECT_EQ(detail::EligeTramo(c.tramos, c.total), c.elegido);
    EXPECT_EQ(detail::DescribeTramo(c.tramos, c.elegido), c.descripcion);
}

const std::vector<Tramo> kTramos = {{1, 0, 1}, {2, 50000, 1.5}, {3, 150000, 2}, {4, 400000, 2.5}};

INSTANTIATE_TEST_SUITE_P(
    Casos, EligeTramoTest,
    ::testing::Values(
        CasoTramo{"justo en el umbral", kTramos, 50000.00, 1,
                  "Por ventas entre 50,000.00 y 150,000.00"},
        CasoTramo{"un centavo abajo del umbral", kTramos, 49999.99, 0,
                  "Por ventas entre 0.00 y 50,000.00"},
        // A total summed from cents that falls a hair below the threshold in binary.
        CasoTramo{"suma binaria en el umbral", kTramos, 0.1 + 0.2 + 49999.7, 1,
                  "Por ventas entre 50,000.00 y 150,000.00"},
        CasoTramo{"el tramo superior", kTramos, 1234567.8, 3, "Por ventas desde 400,000.00"},
        CasoTramo{
            "debajo de todos", {{1, 100, 1.5}, {2, 500, 2}}, 80, -1, "Por ventas menores a 100.00"},
        CasoTramo{"sin tabla", {}, 5000, -1, "Sin tabla de comisiones"},
        // Brackets are ranked by Renglon, read from the highest down.
        CasoTramo{"renglones desordenados",
                  {{3, 9000, 3}, {1, 0, 1}, {2, 1000, 2}},
                  1000,
                  2,
                  "Por ventas entre 1,000.00 y 9,000.00"}),
    pruebas::PorNombre());

TEST(FormatoMonto, MilesYDosDecimales) {
    EXPECT_EQ(detail::FormatoMonto(0), "0.00");
    EXPECT_EQ(detail::FormatoMonto(999.995), "1,000.00");
    EXPECT_EQ(detail::FormatoMonto(1234567890.1), "1,234,567,890.10");
    EXPECT_EQ(detail::FormatoMonto(-1500), "-1,500.00");
}

TEST(Condiciones, TextoExacto) {
    toolkit::LibKRVM lib;
    EXPECT_EQ(detail::CondicionesDocumentos(true, "2026-10-01", "2026-10-31", "V01", 2),
              " WHERE Fecha>='2026-10-01' AND Fecha<='2026-10-31' AND Cancelada=0 AND "
              "Vendedor<>'' AND Vendedor='V01' AND Moneda=2");
    // On payments the period is the payments', and an empty date leaves its side open.
    EXPECT_EQ(detail::CondicionesDocumentos(false, "2026-10-01", "", "", 0),
              " WHERE Cancelada=0 AND Vendedor<>''");
    EXPECT_EQ(detail::CondicionesDocumentos(true, "", "2026-10-31", "", 0),
              " WHERE Fecha<='2026-10-31' AND Cancelada=0 AND Vendedor<>''");
    EXPECT_EQ(detail::CondicionesPagos("2026-10-01", "2026-10-31"),
              " WHERE CantidadPago>0 AND NotaCredito=0 AND Fecha>='2026-10-01' AND "
              "Fecha<='2026-10-31'");
    EXPECT_EQ(detail::CondicionesPagos("", ""), " WHERE CantidadPago>0 AND NotaCredito=0");
}

// --- The engine on the small company ----------------------------------------------------------

class ComisionesTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() { pruebas::CreaModelosComisiones(); }

    void SetUp() override {
        toolkit::RegistraToolkit();
        session::sesion() = session::RegistroSesion{};
        bd.emplace();
        schema::cargarArchivo(bd->mysql(), schema::carpetaEsquemas() / "empresa.sql");
        bd->ejecutar(pruebas::kEmpresaComisiones);
        base = pruebas::baseDD(bd->servidor(), bd->nombre());
        auto& s = session::sesion();
        s.BaseDD = base;
        s.DatosConecte = std::make_shared<host::DatosConecte>();
        s.LibKRVM = std::make_shared<toolkit::LibKRVM>();
    }
    void TearDown() override { session::sesion() = session::RegistroSesion{}; }

    // Rows of a table of the local work file, in Id order, as "field=value" texts.
    std::vector<std::map<std::string, std::string>> Local(const std::string& tabla) {
        host::Conexion cn;
        EXPECT_TRUE(base->AbreBdDAccess(cn, archivo()));
        host::Recordset rs;
        EXPECT_TRUE(base->AbrirTabla(rs, cn, tabla + " ORDER BY Id"));
        std::vector<std::map<std::string, std::string>> r;
        for (rs.MoveFirst(); !rs.Eof(); rs.MoveNext()) {
            auto& fila = r.emplace_back();
            for (const auto& c : rs.Columnas()) fila[c.nombre] = rs[c.nombre].Texto();
        }
        base->CierraBdD(cn);
        return r;
    }
    // "DOC-IdVenta: Subtotal NotasDeCredito Monto Comision" per document row, and the totals.
    std::vector<std::string> Documentos() {
        std::vector<std::string> r;
        for (auto& f : Local("ComisXvend2"))
            r.push_back(f["clave"] + " " + f["Documento"].substr(0, 1) + f["IdVenta"] + ": " +
                        Num(f["Subtotal"]) + " " + Num(f["NotasDeCredito"]) + " " +
                        Num(f["Monto"]) + " " + Num(f["Comision"]) + "%" +
                        (f["DiasVencida"].empty() ? "" : " " + f["DiasVencida"] + "d"));
        return r;
    }
    std::vector<std::string> Tramos() {
        std::vector<std::string> r;
        auto totales = Local("ComisXvend1");
        auto tramos = Local("ComisVendXtabla");
        for (std::size_t i = 0; i < tramos.size(); ++i)
            r.push_back(tramos[i]["Vendedor"] + " " + Num(totales[i]["MontoTotal"]) + " " +
                        Num(tramos[i]["Comision"]) + "% " + tramos[i]["DeLaTabla"]);
        return r;
    }
    static std::string Num(const std::string& t) {
        if (t.empty()) return "-";
        char b[32];
        std::snprintf(b, sizeof b, "%.2f", std::stod(t));
        return b;
    }
    std::string archivo() const { return (tmp / "Auxiliar.mdb").string(); }

    // The line-and-price tables: "DOC-Id seller: Cantidad Pagado Monto" and "DOC-Id product:
    // Cantidad Precio Importe % Comision", linked by IdComision.
    std::pair<std::vector<std::string>, std::vector<std::string>> PorLineas(
        const std::function<void(clsComisionarAux&, const std::string&, const std::string&)>&
            corre) {
        host::Conexion cn;
        EXPECT_TRUE(base->AbrirBdD(cn, bd->nombre()));
        const std::string ventas = data::ClonaEstructura(cn, "comisxventas", true);
        const std::string detalle = data::ClonaEstructura(cn, "comisxventasdetalle", true);
        clsComisionarAux motor;
        corre(motor, ventas, detalle);
        std::vector<std::string> docs, lineas;
        for (const auto& f :
             bd->filas("SELECT CONCAT(LEFT(Documento,1),IdVenta,' ',clave,': ',"
                       "CAST(Cantidad AS DECIMAL(18,2)),' ',CAST(Pagado AS DECIMAL(18,2)),' ',"
                       "CAST(Monto AS DECIMAL(18,2)),' ',IdMoneda) FROM " +
                       ventas + " ORDER BY Documento,IdVenta"))
            docs.push_back(f[0]);
        for (const auto& f : bd->filas(
                 "SELECT CONCAT(LEFT(d.Documento,1),d.IdVenta,' ',d.Producto,': ',d.Cantidad,' ',"
                 "ROUND(d.Precio,2),' ',CAST(d.Importe AS DECIMAL(18,2)),' ',d.ComisionPorcen,'% ',"
                 "CAST(d.ComisionMonto AS DECIMAL(18,2)),"
                 "IF(v.Id IS NULL,' SIN DOCUMENTO','')) FROM " +
                 detalle + " d LEFT JOIN " + ventas +
                 " v ON v.Id=d.IdComision AND v.IdVenta=d.IdVenta ORDER BY "
                 "d.Documento,d.IdVenta,d.Producto"))
            lineas.push_back(f[0]);
        base->CierraBdD(cn);
        return {docs, lineas};
    }

    pruebas::CarpetaTemporal tmp;
    std::optional<pruebas::BaseDeDatosDePrueba> bd;
    std::shared_ptr<data::BaseDDMaria> base;
    host::InteraccionTemporal silencio{std::make_shared<host::InteraccionGrabada>()};
};

// On sales: F1 1,000 + F2 US$100 at 18.50 + F3 (its own line of 200 of 500, less the credit
// note of 58 with taxes: 50 before them; the cancelled note is ignored) + R1 300.50 + R2 450:
// V1 sums exactly the 3,750.50 of its third bracket. F8's lines all came from R2: it is left
// out. Cancelled, out-of-period and sellerless documents earn nothing.
TEST_F(ComisionesTest, PorLoVendidoConTabla) {
    clsComisionarAux motor;
    motor.CreaMovsXvendido("01/10/2026", "31/10/2026", "", archivo());
    EXPECT_EQ(Documentos(), (std::vector<std::string>{
                                "V1 F1: 1000.00 0.00 1000.00 3.00%",
                                "V1 F2: 1850.00 0.00 1850.00 3.00%",
                                "V1 F3: 200.00 50.00 150.00 3.00%",
                                "V2 F6: 700.00 0.00 700.00 0.00%",
                                "V1 R1: 300.50 0.00 300.50 3.00%",
                                "V1 R2: 450.00 0.00 450.00 3.00%",
                                "V3 R4: 80.00 0.00 80.00 0.00%",
                            }));
    EXPECT_EQ(Tramos(), (std::vector<std::string>{
                            "V1 3750.50 3.00% Por ventas entre 3,750.50 y 10,000.00",
                            "V2 700.00 0.00% Sin tabla de comisiones",
                            "V3 80.00 0.00% Por ventas menores a 100.00",
                        }));
    const auto f1 = Local("ComisXvend2").front();
    EXPECT_EQ(f1.at("Vendedor"), "ANA LOPEZ");
    EXPECT_EQ(f1.at("Nombre"), "CLIENTE UNO");
    EXPECT_EQ(f1.at("Serie") + f1.at("Numero"), "A101");
    EXPECT_EQ(f1.at("Fecha"), "2026-10-05");
}

struct CasoFiltro {
    const char* nombre;
    std::string desde, hasta, vendedor;
    DocumentosComision documentos;
    std::int16_t moneda;
    std::vector<std::string> tramos;
};

class FiltrosTest : public ComisionesTest, public ::testing::WithParamInterface<CasoFiltro> {};

TEST_P(FiltrosTest, ElTotalDelVendedorSigueALosFiltros) {
    const auto& c = GetParam();
    clsComisionarAux motor;
    motor.Documentos = c.documentos;
    motor.Moneda = c.moneda;
    motor.CreaMovsXvendido(c.desde, c.hasta, c.vendedor, archivo());
    EXPECT_EQ(Tramos(), c.tramos);
}

INSTANTIATE_TEST_SUITE_P(
    Casos, FiltrosTest,
    ::testing::Values(CasoFiltro{"solo facturas",
                                 "01/10/2026",
                                 "31/10/2026",
                                 "V1",
                                 DocumentosComision::Facturas,
                                 0,
                                 {"V1 3000.00 2.00% Por ventas entre 1,000.00 y 3,750.50"}},
                      CasoFiltro{"solo remisiones",
                                 "01/10/2026",
                                 "31/10/2026",
                                 "",
                                 DocumentosComision::Remisiones,
                                 0,
                                 {"V1 750.50 1.00% Por ventas entre 0.00 y 1,000.00",
                                  "V3 80.00 0.00% Por ventas menores a 100.00"}},
                      CasoFiltro{"solo dolares",
                                 "01/10/2026",
                                 "31/10/2026",
                                 "",
                                 DocumentosComision::Ambas,
                                 2,
                                 {"V1 1850.00 2.00% Por ventas entre 1,000.00 y 3,750.50"}},
                      // Without dates every document counts: F5 of September too.
                      CasoFiltro{"sin fechas",
                                 "",
                                 "",
                                 "V1",
                                 DocumentosComision::Ambas,
                                 0,
                                 {"V1 4000.50 3.00% Por ventas entre 3,750.50 y 10,000.00"}},
                      CasoFiltro{"solo la fecha final",
                                 "",
                                 "30/09/2026",
                                 "",
                                 DocumentosComision::Ambas,
                                 0,
                                 {"V1 250.00 1.00% Por ventas entre 0.00 y 1,000.00"}}),
    pruebas::PorNombre());

// On payments, before taxes: F1 1,160 of 1,160 = 1,000; F2 US$58 of 116 = US$50 = 925; R1
// 248.58 of 348.58 in October (100 came in September) = 214.29. R2's 0.01 is ignored, the
// credit note on F3 is not a payment, the charge is not a document, November's are later.
TEST_F(ComisionesTest, PorLoPagadoConTabla) {
    clsComisionarAux motor;
    motor.CreaMovsXpagado("01/10/2026", "31/10/2026", "", archivo());
    EXPECT_EQ(Documentos(), (std::vector<std::string>{
                                "V1 F1: 1000.00 0.00 1000.00 2.00% 5d",
                                "V1 F2: 1850.00 0.00 925.00 2.00% 0d",
                                "V2 F6: 700.00 0.00 344.83 0.00% 2d",
                                "V1 R1: 300.50 0.00 214.29 2.00% 10d",
                            }));
    EXPECT_EQ(Tramos()[0], "V1 2139.29 2.00% Por ventas entre 1,000.00 y 3,750.50");
    EXPECT_EQ(Local("ComisXvend2").front().at("Vence"), "2026-10-01");
}

// Settled in October and nothing applied after: F1 and R1, each for its whole sale. F6 was
// settled in November; F2 still owes.
TEST_F(ComisionesTest, PorLoLiquidadoConTabla) {
    clsComisionarAux motor;
    motor.Liquidado = true;
    motor.CreaMovsXpagado("01/10/2026", "31/10/2026", "", archivo());
    EXPECT_EQ(Documentos(), (std::vector<std::string>{
                                "V1 F1: 1000.00 0.00 1000.00 2.00% 5d",
                                "V1 R1: 300.50 0.00 300.50 2.00% 10d",
                            }));
}

// Percentages: V1 has line 2 at 5 % and price 1 at 3 %; V2 none (P3's own 6 %, P4's line 2.5 %);
// V3 line 1 at 0 %, an agreement that stands. P2 is locked with 10 % off its price 2. F1's
// hammer had one returned; F3 earns on its own line; F8 and R3 earn nothing; R1's 300.50 at
// 3 % is 9.015, rounded to 9.02.
TEST_F(ComisionesTest, PorLineaYPrecioSobreLoVendido) {
    auto [docs, lineas] =
        PorLineas([](clsComisionarAux& m, const std::string& v, const std::string& d) {
            m.CreaMovsXlasOtras("01/10/2026", "31/10/2026", "", v, d);
        });
    EXPECT_EQ(docs, (std::vector<std::string>{
                        "F1 V1: 660.00 1160.00 27.00 1",
                        "F2 V1: 1850.00 1073.00 92.50 2",
                        "F3 V1: 200.00 0.00 6.00 1",
                        "F6 V2: 700.00 812.00 35.00 1",
                        "R1 V1: 300.50 348.58 9.02 1",
                        "R2 V1: 405.00 522.00 20.25 1",
                        "R4 V3: 80.00 0.00 0.00 1",
                    }));
    EXPECT_EQ(lineas, (std::vector<std::string>{
                          "F1 P1: 1 300.00 300.00 3% 9.00",
                          "F1 P2: 4 90.00 360.00 5% 18.00",
                          "F2 P3: 1 1850.00 1850.00 5% 92.50",
                          "F3 P1: 1 200.00 200.00 3% 6.00",
                          "F6 P3: 5 100.00 500.00 6% 30.00",
                          "F6 P4: 2 100.00 200.00 2.5% 5.00",
                          "R1 P1: 1 300.50 300.50 3% 9.02",
                          "R2 P2: 3 135.00 405.00 5% 20.25",
                          "R4 P1: 1 80.00 80.00 0% 0.00",
                      }));
}

// The paid share of each document: F1 all, F2 half, R1 248.58/348.58, F6 400/812; on every line
// of the document.
TEST_F(ComisionesTest, PorLineaYPrecioSobreLoPagadoYLoLiquidado) {
    auto [docs, lineas] =
        PorLineas([](clsComisionarAux& m, const std::string& v, const std::string& d) {
            m.CreaMovsXpag("01/10/2026", "31/10/2026", "", v, d);
        });
    EXPECT_EQ(docs, (std::vector<std::string>{
                        "F1 V1: 660.00 1160.00 27.00 1",
                        "F2 V1: 925.00 1073.00 46.25 2",
                        "F6 V2: 344.83 400.00 17.24 1",
                        "R1 V1: 214.29 248.58 6.43 1",
                    }));
    EXPECT_EQ(lineas, (std::vector<std::string>{
                          "F1 P1: 1 300.00 300.00 3% 9.00",
                          "F1 P2: 4 90.00 360.00 5% 18.00",
                          "F2 P3: 1 1850.00 925.00 5% 46.25",
                          "F6 P3: 5 100.00 246.31 6% 14.78",
                          "F6 P4: 2 100.00 98.52 2.5% 2.46",
                          "R1 P1: 1 300.50 214.29 3% 6.43",
                      }));
    auto [liq, _] = PorLineas([](clsComisionarAux& m, const std::string& v, const std::string& d) {
        m.Liquidado = true;
        m.CreaMovsXpag("01/10/2026", "31/10/2026", "", v, d);
    });
    EXPECT_EQ(liq, (std::vector<std::string>{"F1 V1: 660.00 1160.00 27.00 1",
                                             "R1 V1: 300.50 348.58 9.02 1"}));
}

// Only the seller's line, or only the price numbers, as the company's settings say.
TEST_F(ComisionesTest, FuentesDelPorcentaje) {
    auto porcentajes = [this](bool linea, bool precio) {
        auto [_, lineas] =
            PorLineas([=](clsComisionarAux& m, const std::string& v, const std::string& d) {
                m.PorLinea = linea;
                m.PorPrecio = precio;
                m.CreaMovsXlasOtras("01/10/2026", "31/10/2026", "", v, d);
            });
        std::string r;
        for (const auto& l : lineas)
            r += l.substr(0, l.find(':')) + l.substr(l.rfind(' ', l.rfind('%'))) + ";";
        return r;
    };
    EXPECT_EQ(porcentajes(true, false),
              "F1 P1 2.5% 7.50;F1 P2 5% 18.00;F2 P3 5% 92.50;F3 P1 2.5% 5.00;F6 P3 0% 0.00;"
              "F6 P4 2.5% 5.00;R1 P1 2.5% 7.51;R2 P2 5% 20.25;R4 P1 0% 0.00;");
    EXPECT_EQ(porcentajes(false, true),
              "F1 P1 3% 9.00;F1 P2 0% 0.00;F2 P3 6% 111.00;F3 P1 3% 6.00;F6 P3 6% 30.00;"
              "F6 P4 0% 0.00;R1 P1 3% 9.02;R2 P2 0% 0.00;R4 P1 4% 3.20;");
}

TEST_F(ComisionesTest, DatosMalosSeRechazanSinTocarLasTablas) {
    clsComisionarAux motor;
    motor.CreaMovsXvendido("01/10/2026", "31/10/2026", "", archivo());
    const auto antes = Documentos();
    EXPECT_THROW(motor.CreaMovsXvendido("31/02/2026", "", "", archivo()), std::invalid_argument);
    EXPECT_THROW(motor.CreaMovsXvendido("", "", "V1' OR '1'='1", archivo()), std::invalid_argument);
    EXPECT_THROW(motor.CreaMovsXlasOtras("", "", "", "x; DROP TABLE facturas", "y"),
                 std::invalid_argument);
    // A failure on the server leaves the local file as it was.
    bd->ejecutar("DROP TABLE vendedores");
    EXPECT_THROW(motor.CreaMovsXvendido("", "", "", archivo()), host::ErrorDatos);
    EXPECT_EQ(Documentos(), antes);
}

}  // namespace
}  // namespace paratzorep::engines
