// Aging of balances: the system's strings character for character, and the set-based fill of
// adsmovtos compared with the rule walked ledger row by ledger row (a query per row) on a small
// company that has rows on both sides of every condition.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>

#include "data/BaseDDMaria.h"
#include "host/DatosConecte.h"
#include "host/Interaccion.h"
#include "reports/accounts/RepAdmAdSCtes.h"
#include "reports/accounts/RepAdmAdSProv.h"
#include "schema/Esquema.h"
#include "session/Sesion.h"
#include "session/Solicitud.h"
#include "support/NombresDeCaso.h"
#include "support/Soporte.h"
#include "toolkit/Fabrica.h"
#include "toolkit/Fechas.h"
#include "toolkit/LibKRVM.h"

namespace paratzorep::reports {
namespace {

FiltrosAntiguedad Con(const char* c0, const char* c1, std::vector<char> tipos, bool sinVencer) {
    FiltrosAntiguedad f;
    f.corteSQL = "2025-03-01";
    f.clave0 = c0;
    f.clave1 = c1;
    f.tipos = std::move(tipos);
    f.sinVencer = sinVencer;
    return f;
}

struct CasoTexto {
    const char* nombre;
    std::string obtenido;
    const char* esperado;
};

class TextosAntiguedad : public ::testing::TestWithParam<CasoTexto> {};

TEST_P(TextosAntiguedad, SonLosDelSistema) {
    EXPECT_EQ(GetParam().obtenido, GetParam().esperado);
}

FiltrosAntiguedad Todo() {
    auto f = Con("C1", "C9", {'F', 'A'}, false);
    f.clasificacion = "O'HARA";
    f.moneda = "2";
    f.vendedor = "V01";
    return f;
}

FiltrosAntiguedad Proveedores() {
    auto f = Con("", "", {'N'}, true);
    f.clasificacion = "FABRICANTES";
    f.moneda = "3";
    return f;
}

INSTANTIATE_TEST_SUITE_P(
    Tabla, TextosAntiguedad,
    ::testing::Values(
        CasoTexto{"sin claves", CondicionesAntiguedad(Con("", "", {}, true)), ""},
        CasoTexto{"una clave en la primera caja", CondicionesAntiguedad(Con("C1", "", {}, true)),
                  " WHERE Clave='C1'"},
        CasoTexto{"una clave en la segunda caja", CondicionesAntiguedad(Con("", "C2", {}, true)),
                  " WHERE Clave='C2'"},
        CasoTexto{"rango", CondicionesAntiguedad(Con("C1", "C2", {}, true), "cxc."),
                  " WHERE cxc.Clave>='C1' AND cxc.Clave<='C2'"},
        CasoTexto{"correo sin filtros", SqlCorreoAntiguedad(Con("", "", {}, true)),
                  "SELECT cxc.Id,cxc.Clave,cxc.Vencimiento,cxc.Tipo,cxc.Numero,cxc.Saldo,"
                  "clientes.Nombre,clientes.Clasificacion,clientes.Email FROM cxc LEFT JOIN "
                  "clientes on cxc.Clave=clientes.clave WHERE clientes.Email<>''"},
        CasoTexto{"correo con todo", SqlCorreoAntiguedad(Todo()),
                  "SELECT cxc.Id,cxc.Clave,cxc.Vencimiento,cxc.Tipo,cxc.Numero,cxc.Saldo,"
                  "clientes.Nombre,clientes.Clasificacion,clientes.Email FROM cxc LEFT JOIN "
                  "clientes on cxc.Clave=clientes.clave WHERE cxc.Clave>='C1' AND "
                  "cxc.Clave<='C9' AND clientes.Clasificacion='O'HARA' AND (cxc.Tipo='F' or "
                  "cxc.Tipo='A') AND cxc.Vencimiento<='2025-03-01' AND clientes.Email<>''"},
        CasoTexto{"facturas con todo",
                  SqlAntiguedad("t1", "cxc", TiposAntiguedadClientes()[0], Todo()),
                  "INSERT INTO t1 (clave,Tipo,Llave,Importe,Concepto,DiasDeVencido,Fecha,"
                  "Vencimiento,Saldo,Pagado,IdCxC,IdChequesPF) SELECT x.Clave,x.Tipo,CONCAT(d."
                  "Serie,d.Factura),d.Importe,'',DATEDIFF('2025-03-01',IF(x.Vencimiento>"
                  "'0000-00-00',x.Vencimiento,d.Fecha)),d.Fecha,x.Vencimiento,x.Saldo,d.Importe-"
                  "x.Saldo,x.Id,IFNULL((SELECT p.IdCheque FROM chequespfdetalle p WHERE "
                  "p.IdCxC=x.Id ORDER BY p.Id LIMIT 1),0) FROM (SELECT * FROM cxc WHERE "
                  "Clave>='C1' AND Clave<='C9') x JOIN facturas d ON d.Id=x.Numero JOIN clientes "
                  "k ON k.Clave=x.Clave WHERE x.Tipo='F' AND k.Clasificacion='O''HARA' AND "
                  "d.IdMoneda=2 AND d.Vendedor='V01' AND DATEDIFF('2025-03-01',IF(x.Vencimiento>"
                  "'0000-00-00',x.Vencimiento,d.Fecha))>=0"},
        CasoTexto{
            "cargos de proveedores",
            SqlAntiguedad("t2", "cxp", TiposAntiguedadProveedores()[2], Con("", "P1", {'C'}, true)),
            "INSERT INTO t2 (clave,Tipo,Llave,Importe,Concepto,DiasDeVencido,Fecha,"
            "Vencimiento,Saldo,Pagado) SELECT x.Clave,x.Tipo,CAST(x.Numero AS CHAR),"
            "d.CantidadCargo,d.Concepto,DATEDIFF('2025-03-01',IF(x.Vencimiento>"
            "'0000-00-00',x.Vencimiento,d.Fecha)),d.Fecha,x.Vencimiento,x.Saldo,"
            "d.CantidadCargo-x.Saldo FROM (SELECT * FROM cxp WHERE Clave='P1') x JOIN "
            "edoctaprov d ON d.Id=(SELECT MIN(e.Id) FROM edoctaprov e WHERE "
            "e.Folio=x.Numero) WHERE x.Tipo='C'"},
        CasoTexto{"compras sin factura de proveedores",
                  SqlAntiguedad("t3", "cxp", TiposAntiguedadProveedores()[1], Proveedores()),
                  "INSERT INTO t3 (clave,Tipo,Llave,Importe,Concepto,DiasDeVencido,Fecha,"
                  "Vencimiento,Saldo,Pagado) SELECT x.Clave,x.Tipo,d.Factura,d.Subtotal+d.IVA+"
                  "d.ImpuestoAd,'',DATEDIFF('2025-03-01',IF(x.Vencimiento>'0000-00-00',"
                  "x.Vencimiento,d.Fecha)),d.Fecha,x.Vencimiento,x.Saldo,d.Subtotal+d.IVA+"
                  "d.ImpuestoAd-x.Saldo FROM (SELECT * FROM cxp) x JOIN comprasnd d ON "
                  "d.Compra=x.Numero JOIN proveedores k ON k.Clave=x.Clave WHERE x.Tipo='N' AND "
                  "k.Clasificacion='FABRICANTES' AND d.IdMoneda=3"}),
    pruebas::PorNombre());

using Fila = std::vector<std::string>;

// C1 and C3 wholesale customers of V01 with addresses, C2 retail of V02 without one. Ledger
// rows: due before, on and after the cut-off (1 March 2025), one without a due date, one whose
// layaway is gone, charges whose folio repeats, documents in pesos and dollars, cheques applied
// twice to one row.
const char* kEmpresa = R"(
INSERT INTO configura (Dato,Valor) VALUES ('MultiMoneda','1'),('Remisiones','1'),
  ('Apartados','1'),('Vendedores','1'),('ClasificaCtes','1'),('EDC-ADS-Asunto','Saldos de XXX');
INSERT INTO clasificactes (Clasificacion) VALUES ('MAYOREO'),('MENUDEO');
INSERT INTO monedas (Id,Abreviacion) VALUES (1,'MN'),(2,'USD');
INSERT INTO vendedores (Clave,Nombre) VALUES ('V01','ANA'),('V02','BETO');
INSERT INTO clientes (Clave,Nombre,Clasificacion,Vendedor,Email) VALUES
  ('C1','FERRETERIA CENTRAL','MAYOREO','V01','c1@example.com'),
  ('C2','PINTURAS DEL NORTE','MENUDEO','V02',''),
  ('C3','TLAPALERIA SUR','MAYOREO','V01','c3@example.com');
INSERT INTO facturas (Id,Serie,Factura,Fecha,Cliente,Vendedor,IdMoneda,Importe) VALUES
  (1,'A',101,'2025-01-10','C1','V01',1,1000),(2,'A',102,'2025-02-20','C2','V02',2,500),
  (3,'B',7,'2025-02-25','C3','V02',1,90);
INSERT INTO remisiones (Id,Serie,Factura,Fecha,Cliente,Vendedor,IdMoneda,Importe) VALUES
  (1,'',55,'2025-02-01','C1','V01',1,250);
INSERT INTO apartados (Id,Serie,Factura,Fecha,Cliente,Vendedor,IdMoneda,Importe) VALUES
  (1,'X',9,'2024-11-15','C2','V02',2,80);
INSERT INTO edoctacli (Id,Folio,Fecha,Clave,CantidadCargo,Concepto,Moneda) VALUES
  (1,10,'2024-09-01','C1',300,'CARGO POR FLETE',1),(2,11,'2024-12-01','C2',70,'INTERESES',2),
  (3,10,'2024-09-02','C1',999,'OTRO CON EL MISMO FOLIO',2);
INSERT INTO cxc (Id,Clave,Tipo,Numero,Vencimiento,Saldo) VALUES
  (1,'C1','F',1,'2025-02-09',600),(2,'C1','R',1,'2025-03-01',200),
  (3,'C2','F',2,'2025-04-01',500),(4,'C1','C',10,'2024-10-01',300),
  (5,'C2','C',11,'2025-01-01',50),(6,'C2','A',1,'2024-12-15',80),
  (7,'C3','F',3,'0000-00-00',90),(8,'C3','A',99,'2025-01-01',10);
INSERT INTO chequespfdetalle (Id,IdCheque,IdCxC) VALUES (1,7,1),(2,8,1),(3,9,3);
)";

class Antiguedad : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        pruebas::BaseDeDatosDePrueba modelos;
        schema::cargarArchivo(modelos.mysql(), schema::carpetaEsquemas() / "tanzoreportes.sql");
        modelos.ejecutar(
            "CREATE DATABASE IF NOT EXISTS tanzoreportes; CREATE TABLE IF NOT EXISTS "
            "tanzoreportes.adsmovtos LIKE `" +
            modelos.nombre() + "`.adsmovtos");
    }

    void SetUp() override {
        // No mail settings but those of the test.
        setenv("XDG_CONFIG_HOME", tmp.ruta().c_str(), 1);
        toolkit::RegistraToolkit();
        session::sesion() = session::RegistroSesion{};
        bd.emplace();
        schema::cargarArchivo(bd->mysql(), schema::carpetaEsquemas() / "empresa.sql");
        bd->ejecutar(kEmpresa);
        base = pruebas::baseDD(bd->servidor(), bd->nombre());
        auto& s = session::sesion();
        s.BaseDD = base;
        s.DatosConecte = std::make_shared<host::DatosConecte>();
        s.LibKRVM = std::make_shared<toolkit::LibKRVM>();
        s.RutaTanzo = tmp.ruta().string() + "/";
        s.RutaPDFs = (tmp / "pdfs").string();
        s.ArchivoINI = (tmp / "sistema.ini").string();
        forma.FijaEjecutor([this](const std::string&) {
            const auto& sol = session::solicitud();
            if (sol.Destino == 2) std::ofstream(sol.NombreArchivo) << "%PDF-1.4\n";
            solicitudes.push_back(sol.Formulas());
            solicitudes.back().push_back(sol.FormulaSeleccion);
            const std::string& m = sol.ArchivosDatos.at(0);
            filas = bd->filas(
                "SELECT clave,Tipo,Llave,CAST(Importe AS DECIMAL(15,2)),Concepto,DiasDeVencido,"
                "Fecha,Vencimiento,CAST(Saldo AS DECIMAL(15,2)),CAST(Pagado AS DECIMAL(15,2)),"
                "IdCxC,IdChequesPF FROM " +
                m.substr(m.find('*') + 1) + " ORDER BY IdCxC");
        });
    }
    void TearDown() override {
        forma.Descarga();
        session::sesion() = session::RegistroSesion{};
        unsetenv("XDG_CONFIG_HOME");
    }

    std::string Uno(const std::string& sql) { return bd->valor(sql).value_or(""); }

    // The rule as written, ledger row by ledger row.
    std::vector<Fila> Regla(const FiltrosAntiguedad& f, bool correo) {
        std::vector<Fila> r;
        std::string w = CondicionesAntiguedad(f);
        const auto corte = *toolkit::LeeFecha(f.corteSQL);
        for (char tipo : f.tipos) {
            for (const auto& x : bd->filas("SELECT Id,Clave,Tipo,Numero,Vencimiento,CAST(Saldo AS "
                                           "DECIMAL(15,2)) FROM cxc" +
                                           w + " ORDER BY Id")) {
                if (x[2] != std::string(1, tipo)) continue;
                if (correo && Uno("SELECT Email FROM clientes WHERE clave='" + x[1] + "'").empty())
                    continue;
                if (!f.clasificacion.empty() &&
                    Uno("SELECT Clasificacion FROM clientes WHERE clave='" + x[1] + "'") !=
                        f.clasificacion)
                    continue;
                const std::string cheque =
                    bd->valor("SELECT IdCheque FROM chequespfdetalle WHERE IdCxC=" + x[0])
                        .value_or("0");
                const bool cargo = tipo == 'C';
                const char* tabla = cargo         ? "edoctacli WHERE Folio="
                                    : tipo == 'F' ? "facturas WHERE Id="
                                    : tipo == 'R' ? "remisiones WHERE Id="
                                                  : "apartados WHERE Id=";
                const auto d =
                    bd->filas(std::string("SELECT ") +
                              (cargo ? "CONCAT(Folio),CantidadCargo,Concepto,Moneda,''"
                                     : "CONCAT(Serie,Factura),Importe,'',IdMoneda,Vendedor") +
                              ",Fecha FROM " + tabla + x[3]);
                if (d.empty()) continue;
                if (!f.moneda.empty() && d[0][3] != f.moneda) continue;
                if (!f.vendedor.empty() && (cargo || d[0][4] != f.vendedor)) continue;
                const auto vence = toolkit::LeeFecha(x[4]);
                const long dias =
                    toolkit::DiasEntre(vence ? *vence : *toolkit::LeeFecha(d[0][5]), corte);
                if (dias < 0 && !f.sinVencer) continue;
                char importe[32], pagado[32];
                std::snprintf(importe, sizeof importe, "%.2f", std::stod(d[0][1]));
                std::snprintf(pagado, sizeof pagado, "%.2f", std::stod(d[0][1]) - std::stod(x[5]));
                r.push_back({x[1], x[2], d[0][0], importe, d[0][2], std::to_string(dias), d[0][5],
                             x[4], x[5], pagado, x[0], cheque});
            }
        }
        std::sort(r.begin(), r.end(),
                  [](const Fila& a, const Fila& b) { return std::stoi(a[10]) < std::stoi(b[10]); });
        return r;
    }

    pruebas::CarpetaTemporal tmp;
    std::optional<pruebas::BaseDeDatosDePrueba> bd;
    std::shared_ptr<data::BaseDDMaria> base;
    std::shared_ptr<host::InteraccionGrabada> sink = std::make_shared<host::InteraccionGrabada>();
    host::InteraccionTemporal instalada{sink};
    RepAdmAdSCtes forma;
    std::vector<Fila> filas;
    std::vector<std::vector<std::string>> solicitudes;
};

struct CasoLlenado {
    const char* nombre;
    std::vector<std::pair<std::string, std::string>> controles;
    std::size_t filas;  // so that no case passes on two empty tables
    bool correo = false;
};

class LlenadoAntiguedad : public Antiguedad, public ::testing::WithParamInterface<CasoLlenado> {};

TEST_P(LlenadoAntiguedad, ElLlenadoDeConjuntosDaLoQueLaReglaRenglonPorRenglon) {
    const auto& c = GetParam();
    forma.Carga();
    forma.Fija("mkeFecha(0)", "01/03/2025");
    for (const auto& [control, valor] : c.controles) forma.Fija(control, valor);
    if (c.correo) {
        // A server that is not there: the table is filled and the first PDF made, the send
        // fails and the table is dropped all the same.
        std::filesystem::create_directories(tmp / "kvtz5");
        std::ofstream(tmp / "kvtz5" / "kvtz5.ini")
            << "[kvtz5]\nedcSMTP=127.0.0.1\nedcPuertoSalida=9\nedcCorreoSaliente=a@example.com\n";
        EXPECT_FALSE(forma.Envia());
        EXPECT_NE(forma.UltimoError().find("127.0.0.1:9"), std::string::npos)
            << forma.UltimoError();
    } else {
        ASSERT_TRUE(forma.Imprime()) << forma.UltimoError();
    }
    const auto esperadas = Regla(forma.Filtros(), c.correo);
    EXPECT_EQ(esperadas.size(), c.filas);
    EXPECT_EQ(filas, esperadas);
    EXPECT_EQ(bd->tablasDeTrabajo(), 0);
}

INSTANTIATE_TEST_SUITE_P(
    Casos, LlenadoAntiguedad,
    ::testing::Values(
        CasoLlenado{"todo", {}, 7}, CasoLlenado{"solo vencidos", {{"chkSinVencer", "0"}}, 6},
        CasoLlenado{"un cliente en la segunda caja", {{"txtDato(1)", "C2"}}, 3},
        CasoLlenado{"rango", {{"txtDato(0)", "C1"}, {"txtDato(1)", "C2"}}, 6},
        CasoLlenado{"clasificacion y moneda", {{"dcmDato(1)", "MAYOREO"}, {"dcmDato(2)", "1"}}, 4},
        CasoLlenado{"vendedor sin cargos", {{"dcmDato(3)", "V01"}}, 2},
        CasoLlenado{"cargos y apartados", {{"chkVentas(0)", "0"}, {"chkVentas(2)", "0"}}, 3},
        CasoLlenado{"ningun tipo",
                    {{"chkVentas(0)", "0"},
                     {"chkVentas(1)", "0"},
                     {"chkVentas(2)", "0"},
                     {"chkVentas(3)", "0"}},
                    0},
        CasoLlenado{"correo solo vencidos", {{"chkSinVencer", "0"}}, 4, true}),
    pruebas::PorNombre());

TEST_F(Antiguedad, SolicitudYFormasDeAmbosLados) {
    forma.Carga();
    forma.Fija("mkeFecha(0)", "01/03/2025");
    ASSERT_TRUE(forma.Imprime());
    ASSERT_EQ(solicitudes.size(), 1u);
    EXPECT_EQ(solicitudes[0],
              (std::vector<std::string>{
                  "ENCABEZADO='Antigüedad de saldos de clientes al día: 01/mar/2025'",
                  "TEXTOLLAVE='Movto.'", ""}));
    EXPECT_EQ(session::solicitud().Plantilla, "adsdcm.rpt");
    // Without mail settings the send button is off and says why.
    EXPECT_FALSE(forma.Ctl("cmdEnviar").Enabled);
    EXPECT_NE(forma.Ctl("cmdEnviar").Tag.find("edcSMTP"), std::string::npos);

    RepAdmAdSProv prov;
    prov.FijaEjecutor([](const std::string&) {});
    prov.Carga();
    bd->ejecutar("UPDATE configura SET Valor='0' WHERE Dato='MultiMoneda'");
    prov.Fija("mkeFecha(0)", "05/11/2026");
    prov.Fija("cmbDato", "#2");
    EXPECT_EQ(prov.FormulaEncabezado(),
              "ENCABEZADO='Antigüedad de saldos de proveedores al día: 05/nov/2026'");
    EXPECT_EQ(prov.FormulaLlave(), "TEXTOLLAVE='Cargo'");
    EXPECT_EQ(prov.Ctl("cmbDato").Items[1], "Documento");  // OtrasCompras is off here
    EXPECT_EQ(prov.Filtros().tipos, std::vector<char>{'C'});
    prov.Descarga();
    RepAdmAdSProv sinMonedas;
    sinMonedas.Carga();
    EXPECT_FALSE(sinMonedas.Ctl("dcmDato", 2).Visible);
    sinMonedas.Descarga();
}

}  // namespace
}  // namespace paratzorep::reports
