// Receipts collected end to end through tzorep print on a small company: to PDF and CSV with
// the figures checked against SQL run on the same data, the default dates from the receipts,
// the name shown beside a typed key, and bad input refused with the work table dropped.
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

class Recibos : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        pruebas::BaseDeDatosDePrueba b;
        b.ejecutar("CREATE DATABASE IF NOT EXISTS tanzoreportes");
        const auto archivo = schema::carpetaEsquemas() / "tanzoreportes.sql";
        std::ifstream f(archivo);
        const std::string texto((std::istreambuf_iterator<char>(f)), {});
        for (const auto& s : schema::dividirSentencias(texto, archivo.string())) {
            const auto p = s.sql.find("CREATE TABLE recibos ");
            if (p != std::string::npos)
                b.ejecutar("CREATE TABLE IF NOT EXISTS tanzoreportes.recibos " +
                           s.sql.substr(p + 21));
        }
    }

    void SetUp() override {
        pruebas::cargarTablasDeEmpresa(bd.mysql(), {"clientes", "edoctacli", "recibos", "configura",
                                                    "reportesbin", "anexoreportes"});
        bd.ejecutar(
            "INSERT INTO clientes (Clave, Nombre) VALUES ('C1','FERRETERIA LA TUERCA'),"
            "('C2','JUAN PEREZ');"
            "INSERT INTO edoctacli (Id, Fecha, Clave, CantidadPago, Concepto) VALUES "
            "(1,'2026-03-01','C1',1500,'PAGO A FACTURA A1'),(2,'2026-03-02','C2',2250.5,'PAGO'),"
            "(3,'2026-03-03','C1',700,'PAGO A VARIOS DOCUMENTOS');"
            "INSERT INTO recibos (Recibo, IdPago, Fecha, Cancelado) VALUES "
            "(101,1,'2026-03-01',0),(102,2,'2026-03-02',0),(103,3,'2026-03-03',1),"
            "(104,99,'2026-03-04',0)");
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
    pruebas::ResultadoPrograma Imprime(const std::string& tipo, std::vector<std::string> extra) {
        std::vector<std::string> args = {"print",         "Recibos",
                                         "--to",          "file",
                                         "--type",        tipo,
                                         "--out",         Salida(tipo),
                                         "--request-log", (tmp / "solicitudes.jsonl").string()};
        args.insert(args.end(), extra.begin(), extra.end());
        return Tzorep(args);
    }
    std::string Salida(const std::string& tipo) { return (tmp / ("recibos." + tipo)).string(); }
    std::string Lee(const std::string& tipo) {
        auto l = lector::Ejecutar(
            (tipo == "pdf" ? "pdftotext -layout " : lector::Lector() + " " + tipo + " ") +
            lector::Comillas(Salida(tipo)) + (tipo == "pdf" ? " -" : "") + " 2>&1");
        EXPECT_EQ(l.estado, 0) << l.texto;
        return l.texto;
    }

    pruebas::CarpetaTemporal tmp;
    pruebas::BaseDeDatosDePrueba bd;
};

TEST_F(Recibos, ListaLosRecibosConSusPagosYMarcaLosCancelados) {
    // The default dates are the first and last receipt dates: every receipt.
    auto r = Imprime("pdf", {});
    ASSERT_EQ(r.estado, 0) << r.errores;
    std::string t = Lee("pdf");
    EXPECT_TRUE(Contiene(t, "Recibos cobrados, desde el 01/mar/2026 hasta el 04/mar/2026")) << t;
    EXPECT_TRUE(Contiene(t, "FERRETERIA LA TUERCA")) << t;
    EXPECT_TRUE(Contiene(t, "PAGO A FACTURA A1")) << t;
    EXPECT_TRUE(Contiene(t, "4 recibos")) << t;
    EXPECT_TRUE(Contiene(t, "2 cancelados")) << t;
    // 1,500.00 + 2,250.50: the cancelled receipt keeps its 700.00 but is not collected.
    EXPECT_TRUE(Contiene(t, "700.00")) << t;
    EXPECT_TRUE(Contiene(t, "3,750.50")) << t;
    EXPECT_TRUE(Contiene(t, "Página 1 de 1")) << t;

    // With no dates, every receipt in number order under the bare caption.
    r = Imprime("pdf", {"--set", "mkeFecha(0)=", "--set", "mkeFecha(1)="});
    ASSERT_EQ(r.estado, 0) << r.errores;
    t = Lee("pdf");
    EXPECT_TRUE(Contiene(t, "4 recibos")) << t;
    EXPECT_FALSE(Contiene(t, "desde el")) << t;

    // One customer, to CSV: the rows are that customer's receipts, as SQL reads them.
    r = Imprime("csv", {"--set", "txtDato(0)=C1", "--set", "mkeFecha(0)=01/03/2026", "--set",
                        "mkeFecha(1)=31/03/2026"});
    ASSERT_EQ(r.estado, 0) << r.errores;
    t = Lee("csv");
    const auto filas = bd.filas(
        "SELECT CONCAT_WS(CHAR(9),'FILA',r.Recibo,r.Fecha,e.Clave,"
        "c.Nombre,IF(r.Cancelado,'CANCELADO',e.Concepto),CAST(e.CantidadPago AS DECIMAL(20,2)))"
        " FROM recibos r JOIN edoctacli e ON e.Id=r.IdPago JOIN clientes c ON c.Clave=e.Clave"
        " WHERE e.Clave='C1' ORDER BY r.Recibo");
    ASSERT_EQ(filas.size(), 2u);
    for (const auto& f : filas) EXPECT_TRUE(Contiene(t, f[0])) << f[0] << "\n" << t;
    EXPECT_FALSE(Contiene(t, "JUAN PEREZ")) << t;
    EXPECT_EQ(bd.tablasDeTrabajo(), 0);

    // The name shows beside a typed key; an unknown key leaves it empty.
    r = Tzorep(
        {"show", "Recibos", "--json", "--all", "--set", "txtDato(0)=C2", "--set", "txtDato(1)=X9"});
    ASSERT_EQ(r.estado, 0) << r.errores;
    EXPECT_TRUE(Contiene(r.salida, "\"caption\":\"JUAN PEREZ\"")) << r.salida;
    EXPECT_TRUE(Contiene(r.salida, "\"text\":\"01/03/2026\"")) << r.salida;
    EXPECT_TRUE(Contiene(r.salida, "\"text\":\"04/03/2026\"")) << r.salida;
}

TEST_F(Recibos, EntradasMalasSeRechazanSinDejarTablas) {
    for (const auto& extra : std::vector<std::vector<std::string>>{
             {"--set", "txtDato(1)=C'1"}, {"--set", "mkeFecha(1)=32/03/2026"}}) {
        auto r = Imprime("pdf", extra);
        EXPECT_EQ(r.estado, 1) << extra[1] << "\n" << r.errores;
        EXPECT_FALSE(r.errores.empty());
    }
    bd.ejecutar("DELETE FROM reportesbin WHERE Archivo='recibos.rpt'");
    auto r = Imprime("pdf", {});
    EXPECT_EQ(r.estado, 1);
    EXPECT_TRUE(Contiene(r.errores, "recibos.rpt")) << r.errores;
    EXPECT_EQ(bd.tablasDeTrabajo(), 0);
}

}  // namespace
}  // namespace paratzorep::cli
