// Balances at a date end to end through tzorep print on a small company: customers and
// suppliers to PDF and CSV with the figures checked against SQL run on the same data, the
// request handed to the runner, the currency and classification lists hidden by their
// settings, and bad input refused with the work table dropped.
#include <gtest/gtest.h>

#include <fstream>

#include "renderer/writers/Lector.h"
#include "schema/Esquema.h"
#include "support/Soporte.h"
#include "support/TablasDeEmpresa.h"

namespace paratzorep::cli {
namespace {

namespace lector = renderer::prueba;

bool Contiene(const std::string& texto, const std::string& parte) {
    return texto.find(parte) != std::string::npos;
}

class SaldosAlaFecha : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        pruebas::BaseDeDatosDePrueba b;
        b.ejecutar("CREATE DATABASE IF NOT EXISTS tanzoreportes");
        const auto archivo = schema::carpetaEsquemas() / "tanzoreportes.sql";
        std::ifstream f(archivo);
        const std::string texto((std::istreambuf_iterator<char>(f)), {});
        for (const auto& s : schema::dividirSentencias(texto, archivo.string())) {
            const auto p = s.sql.find("CREATE TABLE saldosalafecha ");
            if (p != std::string::npos)
                b.ejecutar("CREATE TABLE IF NOT EXISTS tanzoreportes.saldosalafecha " +
                           s.sql.substr(p + 28));
        }
    }

    void SetUp() override {
        pruebas::cargarTablasDeEmpresa(
            bd.mysql(), {"clientes", "saldoscli", "edoctacli", "proveedores", "saldospro",
                         "edoctaprov", "configura", "monedas", "clasificactes", "clasificaprov",
                         "reportesbin", "anexoreportes"});
        bd.ejecutar(
            "INSERT INTO configura (Dato, Valor) VALUES ('MultiMoneda','1'),('ClasificaCtes','1'),"
            "('ClasificaProv','0');"
            "INSERT INTO monedas (Id, Moneda, Abreviacion) VALUES (1,'PESOS','MN'),"
            "(2,'DOLARES','USD');"
            "INSERT INTO clasificactes (Clasificacion) VALUES ('MAYOREO'),('MENUDEO');"
            "INSERT INTO clientes (Clave, Nombre, Clasificacion) VALUES "
            "('C1','FERRETERIA LA TUERCA','MAYOREO'),('C2','JUAN PEREZ','MENUDEO');"
            "INSERT INTO saldoscli (Clave, IdMoneda, Saldo) VALUES ('C1',1,1500),('C2',1,80),"
            "('C2',2,40);"
            "INSERT INTO edoctacli (Fecha, Clave, IdMoneda, CantidadCargo, CantidadPago, "
            "Concepto) VALUES ('2026-02-01','C1',1,2000,0,'CARGO POR FACTURA A1'),"
            "('2026-03-01','C1',1,0,700,'PAGO'),('2026-03-02','C1',1,1200,0,'CARGO'),"
            "('2026-03-03','C1',1,0,1000,'PAGO'),('2026-03-01','C2',2,40,0,'CARGO');"
            "INSERT INTO proveedores (Clave, Nombre) VALUES ('P1','ACEROS DEL NORTE');"
            "INSERT INTO saldospro (Clave, IdMoneda, Saldo) VALUES ('P1',1,300);"
            "INSERT INTO edoctaprov (Fecha, Clave, IdMoneda, CantidadCargo, CantidadPago, "
            "Concepto) VALUES ('2026-03-02','P1',1,0,1234.5,'PAGO')");
        const auto& sv = bd.servidor();
        std::ofstream(tmp / "tzorep.ini")
            << "[BaseDD]\ncRuta=" << sv.host << "\ncUsuario=" << sv.usuario
            << "\ncPassword=" << sv.password << "\ncPuerto=" << sv.puerto
            << "\ncMiBase=" << bd.nombre() << "\n";
        auto r = Tzorep({"templates", "import", std::string(TZ_SOURCE_DIR) + "/templates"});
        ASSERT_EQ(r.estado, 0) << r.errores;
    }

    pruebas::ResultadoPrograma Tzorep(std::vector<std::string> args) {
        args.insert(args.begin(), {"--home", tmp.ruta().string()});
        return pruebas::ejecutarTzorep(args);
    }
    pruebas::ResultadoPrograma Imprime(const std::string& entrada, const std::string& fecha,
                                       const std::string& tipo, std::vector<std::string> extra) {
        std::vector<std::string> args = {
            "print", entrada,      "--set",         "mkeFecha(0)=" + fecha,
            "--to",  "file",       "--type",        tipo,
            "--out", Salida(tipo), "--request-log", (tmp / "solicitudes.jsonl").string()};
        args.insert(args.end(), extra.begin(), extra.end());
        return Tzorep(args);
    }
    std::string Salida(const std::string& tipo) { return (tmp / ("saldos." + tipo)).string(); }
    std::string Lee(const std::string& tipo) {
        auto l = lector::Ejecutar(
            (tipo == "pdf" ? "pdftotext -layout " : lector::Lector() + " " + tipo + " ") +
            lector::Comillas(Salida(tipo)) + (tipo == "pdf" ? " -" : "") + " 2>&1");
        EXPECT_EQ(l.estado, 0) << l.texto;
        return l.texto;
    }
    std::string UltimaSolicitud() {
        std::ifstream log(tmp / "solicitudes.jsonl");
        std::string linea, ultima;
        while (std::getline(log, linea)) ultima = linea;
        return ultima;
    }

    pruebas::CarpetaTemporal tmp;
    pruebas::BaseDeDatosDePrueba bd;
};

TEST_F(SaldosAlaFecha, ClientesYProveedoresConLasCifrasDeLaBase) {
    // On March 1st C1 owed 1,500 + 1,700 paid since - 1,200 charged since = 2,000.
    auto r = Imprime("SaldosAlaFechaCtes", "01/03/2026", "pdf", {});
    ASSERT_EQ(r.estado, 0) << r.errores;
    std::string t = Lee("pdf");
    EXPECT_TRUE(Contiene(t, "Saldos a la fecha de clientes")) << t;
    EXPECT_TRUE(Contiene(t, "Al día: 1 de marzo de 2026")) << t;
    EXPECT_TRUE(Contiene(t, "FERRETERIA LA TUERCA")) << t;
    EXPECT_TRUE(Contiene(t, "1,200.00")) << t;
    EXPECT_TRUE(Contiene(t, "1,700.00")) << t;
    EXPECT_TRUE(Contiene(t, "2,000.00")) << t;
    EXPECT_TRUE(Contiene(t, "Página 1 de 1")) << t;
    const auto s = UltimaSolicitud();
    EXPECT_TRUE(Contiene(s, "\"plantilla\":\"salf.rpt\"")) << s;
    EXPECT_TRUE(Contiene(s, "MONEDA='Al día: 1 de marzo de 2026'")) << s;

    // The balance of each customer at March 2nd, independently: current + paid - charged.
    r = Imprime("SaldosAlaFechaCtes", "02/03/2026", "csv", {});
    ASSERT_EQ(r.estado, 0) << r.errores;
    t = Lee("csv");
    const auto filas = bd.filas(
        "SELECT CONCAT_WS(CHAR(9),'FILA',c.Clave,c.Nombre,CAST(IFNULL(SUM(e.CantidadCargo),0) AS "
        "DECIMAL(20,2)),CAST(IFNULL(SUM(e.CantidadPago),0) AS DECIMAL(20,2)),CAST(IFNULL(s.Saldo,"
        "0)+IFNULL(SUM(e.CantidadPago),0)-IFNULL(SUM(e.CantidadCargo),0) AS DECIMAL(20,2))) FROM "
        "clientes c LEFT JOIN saldoscli s ON s.Clave=c.Clave AND s.IdMoneda=1 LEFT JOIN "
        "edoctacli e ON e.Clave=c.Clave AND e.IdMoneda=1 AND e.Fecha>='2026-03-02' GROUP BY "
        "c.Clave");
    ASSERT_EQ(filas.size(), 2u);
    for (const auto& f : filas) EXPECT_TRUE(Contiene(t, f[0])) << f[0] << "\n" << t;

    // In dollars, of one classification.
    r = Imprime("SaldosAlaFechaCtes", "01/03/2026", "txt",
                {"--set", "dcmDato(1)=USD", "--set", "dcmDato(0)=MENUDEO"});
    ASSERT_EQ(r.estado, 0) << r.errores;
    EXPECT_TRUE(Contiene(UltimaSolicitud(), "MONEDA='Al día: 1 de marzo de 2026. Moneda: USD'"));

    r = Imprime("SaldosAlaFechaProv", "02/03/2026", "pdf", {});
    ASSERT_EQ(r.estado, 0) << r.errores;
    t = Lee("pdf");
    EXPECT_TRUE(Contiene(t, "Saldos a la fecha de proveedores")) << t;
    EXPECT_TRUE(Contiene(t, "ACEROS DEL NORTE")) << t;
    EXPECT_TRUE(Contiene(t, "1,534.50")) << t;
    EXPECT_TRUE(Contiene(UltimaSolicitud(), "\"plantilla\":\"salfp.rpt\""));
    EXPECT_EQ(bd.tablasDeTrabajo(), 0);

    // The form lists its controls; the suppliers' classification list is hidden by its
    // setting (ClasificaProv is off).
    r = Tzorep({"show", "SaldosAlaFechaProv", "--json"});
    ASSERT_EQ(r.estado, 0) << r.errores;
    EXPECT_TRUE(Contiene(r.salida, "chkIgnorar")) << r.salida;
    auto visible = [&](const std::string& control) {
        const auto p = r.salida.find("\"name\":\"" + control + "\"");
        return p != std::string::npos &&
               r.salida.find("\"visible\":true", p) == r.salida.find("\"visible\":", p);
    };
    EXPECT_FALSE(visible("dcmDato(0)")) << r.salida;
    EXPECT_TRUE(visible("dcmDato(1)")) << r.salida;
}

TEST_F(SaldosAlaFecha, EntradasMalasSeRechazanSinDejarTablas) {
    for (const auto& extra : std::vector<std::vector<std::string>>{
             {"--set", "txtDato(0)=C'1"}, {"--set", "mkeFecha(0)=31/02/2026"}}) {
        auto r = Imprime("SaldosAlaFechaCtes", "01/03/2026", "pdf", extra);
        EXPECT_EQ(r.estado, 1) << extra[1] << "\n" << r.errores;
        EXPECT_FALSE(r.errores.empty());
    }
    // A failure while rendering still drops the work table.
    bd.ejecutar("DELETE FROM reportesbin WHERE Archivo='salf.rpt'");
    auto r = Imprime("SaldosAlaFechaCtes", "01/03/2026", "pdf", {});
    EXPECT_EQ(r.estado, 1);
    EXPECT_TRUE(Contiene(r.errores, "salf.rpt")) << r.errores;
    EXPECT_EQ(bd.tablasDeTrabajo(), 0);
}

}  // namespace
}  // namespace paratzorep::cli
