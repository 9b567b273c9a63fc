// Payments end to end through tzorep print on a small company: every variant of the customer
// form reaches its template and prints, the plain list to every file type, the seller copy,
// the means-of-payment breakdown and the missing receipts with their figures checked against
// SQL run on the same data; the supplier form to PDF and CSV; bad input refused with the work
// tables dropped.
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

class Pagos : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        pruebas::BaseDeDatosDePrueba b;
        b.ejecutar("CREATE DATABASE IF NOT EXISTS tanzoreportes");
        const auto archivo = schema::carpetaEsquemas() / "tanzoreportes.sql";
        std::ifstream f(archivo);
        const std::string texto((std::istreambuf_iterator<char>(f)), {});
        for (const auto& s : schema::dividirSentencias(texto, archivo.string())) {
            for (const std::string modelo : {"edoctacli", "cheques", "recibosfaltantes"}) {
                const std::string crea = "CREATE TABLE " + modelo + " ";
                const auto p = s.sql.find(crea);
                if (p != std::string::npos)
                    b.ejecutar("CREATE TABLE IF NOT EXISTS tanzoreportes." + modelo + " " +
                               s.sql.substr(p + crea.size()));
            }
        }
    }

    void SetUp() override {
        pruebas::cargarTablasDeEmpresa(
            bd.mysql(),
            {"clientes", "vendedores", "edoctacli", "anexopagosctes", "recibos", "proveedores",
             "edoctaprov", "configura", "monedas", "reportesbin", "anexoreportes"});
        bd.ejecutar(
            "INSERT INTO configura (Dato, Valor) VALUES ('MultiMoneda','1'),('Vendedores','1'),"
            "('Remisiones','1'),('ChequesEnPagos','1'),('FDPenPagosCtes','1'),"
            "('NotasCredito','1'),('ImpReciboEnPagos','1'),('PagosSinDefinir','1'),"
            "('CFDI3.3','1');"
            "INSERT INTO monedas (Id, Moneda, Abreviacion) VALUES (1,'PESOS','MN'),"
            "(2,'DOLARES','USD');"
            "INSERT INTO vendedores (Clave, Nombre) VALUES ('V1','LUIS'),('V2','ROSA');"
            "INSERT INTO clientes (Clave, Nombre, Vendedor) VALUES "
            "('C1','FERRETERIA LA TUERCA','V1'),('C2','JUAN PEREZ','V2');"
            "INSERT INTO edoctacli (Id, Folio, Fecha, FechaDePago, Clave, IdMoneda, CantidadPago,"
            " NotaCredito, Usuario, Concepto) VALUES "
            "(1,11,'2026-03-01','2026-03-01','C1',1,1500,0,'ANA','PAGO A VARIOS DOCUMENTOS'),"
            "(2,12,'2026-03-02','2026-03-02','C2',1,2250.5,0,'ANA','PAGO A FACTURA A2'),"
            "(3,13,'2026-03-03','2026-03-03','C1',1,99,0,'ANA','ABONO AUTOMATICO A CXC'),"
            "(4,14,'2026-03-04','2026-03-04','',1,321,0,'CAJA1','DEPOSITO NO IDENTIFICADO'),"
            "(5,15,'2026-03-05','2026-03-05','C2',1,80,1,'ANA','NOTA DE CREDITO'),"
            "(6,16,'2026-03-06','2026-03-06','C1',2,40,0,'ANA','PAGO A FACTURA A3');"
            "INSERT INTO anexopagosctes (FolioDelPago, Factura, Remision, Cantidad, Efectivo, "
            "ChequeCuenta, ChequeOtra) VALUES (11,1,0,1000,1000,0,0),(11,0,2,500,0,200,300),"
            "(12,3,0,2250.5,0,2250.5,0),(16,4,0,40,40,0,0);"
            "INSERT INTO recibos (Recibo, IdPago, Fecha) VALUES (1,1,'2026-03-01'),"
            "(2,2,'2026-04-15'),(4,4,'2026-03-04'),(5,5,'2026-03-05'),(6,6,'2026-03-06');"
            "INSERT INTO proveedores (Clave, Nombre) VALUES ('P1','ACEROS DEL NORTE');"
            "INSERT INTO edoctaprov (Fecha, Clave, IdMoneda, CantidadPago, Concepto) VALUES "
            "('2026-03-02','P1',1,1234.5,'PAGO A PROVEEDOR COMPRA 7'),"
            "('2026-03-03','P1',1,66,'DEVOLUCION PROV. No. 1 DE COMPRA 7')");
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
    pruebas::ResultadoPrograma Imprime(const std::string& entrada, const std::string& tipo,
                                       std::vector<std::string> extra) {
        std::vector<std::string> args = {
            "print", entrada, "--to",       "file",          "--type",
            tipo,    "--out", Salida(tipo), "--request-log", (tmp / "solicitudes.jsonl").string()};
        args.insert(args.end(), extra.begin(), extra.end());
        return Tzorep(args);
    }
    std::string Salida(const std::string& tipo) { return (tmp / ("pagos." + tipo)).string(); }
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

TEST_F(Pagos, CadaVarianteLlegaASuPlantillaEImprime) {
    struct Caso {
        std::vector<std::string> fija;
        const char* plantilla;
        const char* texto;
    };
    const std::vector<Caso> casos = {
        {{}, "pagosctes4.rpt", "JUAN PEREZ"},
        {{"chkDesglosarCxCs=1"}, "pagosctescfdi.rpt", "Remisión 2"},
        {{"chkTimbrados=1"}, "RepAdmTimbres.rpt", "Recibos timbrados"},
        {{"cmbDato(1)=Pagos por cliente"}, "pagosctes2.rpt", "pagos del cliente"},
        {{"cmbDato(1)=Desglose de cheques"}, "pagosctes3.rpt", "OTROS BANCOS"},
        {{"chkRecibos=1"}, "recibosfaltantes.rpt", "No existe el recibo"},
        {{"dcmDato(0)=V1"}, "pagosctes4.rpt", "Vendedor: LUIS"},
        {{"cmbDato(0)=Facturas"}, "pagosctes4.rpt", "PAGO A FACTURA A2"}};
    for (const auto& c : casos) {
        std::vector<std::string> extra;
        for (const auto& f : c.fija) extra.insert(extra.end(), {"--set", f});
        SCOPED_TRACE(c.plantilla + std::string(" ") + (c.fija.empty() ? "" : c.fija[0]));
        auto r = Imprime("PagosClientes", "pdf", extra);
        ASSERT_EQ(r.estado, 0) << r.errores;
        EXPECT_TRUE(Contiene(UltimaSolicitud(), std::string("\"plantilla\":\"") + c.plantilla))
            << UltimaSolicitud();
        EXPECT_TRUE(Contiene(Lee("pdf"), c.texto)) << Lee("pdf");
    }
    EXPECT_EQ(bd.tablasDeTrabajo(), 0);
    // The plain list to every file type.
    for (const char* tipo : {"txt", "rtf", "doc", "xls", "xlsx", "csv"}) {
        auto r = Imprime("PagosClientes", tipo, {});
        EXPECT_EQ(r.estado, 0) << tipo << "\n" << r.errores;
    }
}

TEST_F(Pagos, LasCifrasSonLasDeLaBase) {
    // Plain list: no automatic credit, no unassigned payment, no credit note (unticked).
    auto r = Imprime("PagosClientes", "pdf", {"--set", "mkeFecha(0)=01/03/2026"});
    ASSERT_EQ(r.estado, 0) << r.errores;
    std::string t = Lee("pdf");
    EXPECT_TRUE(Contiene(t, "Pagos de clientes, desde el 01/mar/2026 hasta el 06/mar/2026")) << t;
    EXPECT_FALSE(Contiene(t, "ABONO AUTOMATICO")) << t;
    EXPECT_FALSE(Contiene(t, "DEPOSITO NO IDENTIFICADO")) << t;
    EXPECT_FALSE(Contiene(t, "NOTA DE CREDITO")) << t;
    EXPECT_TRUE(Contiene(t, "3,750.50")) << t;  // pesos: 1,500.00 + 2,250.50
    EXPECT_TRUE(Contiene(t, "Página 1 de 1")) << t;
    const auto s = UltimaSolicitud();
    EXPECT_TRUE(Contiene(s, "{edoctacli.Fecha}>=Date(2026,3,1)")) << s;
    EXPECT_TRUE(Contiene(s, "{edoctacli.NotaCredito}=0 and")) << s;
    EXPECT_TRUE(Contiene(s, "\"texto\":\"+{edoctacli.Fecha}\"")) << s;

    // Unassigned payments only.
    r = Imprime("PagosClientes", "pdf", {"--set", "chkPagosNI=1"});
    ASSERT_EQ(r.estado, 0) << r.errores;
    t = Lee("pdf");
    EXPECT_TRUE(Contiene(t, "DEPOSITO NO IDENTIFICADO")) << t;
    EXPECT_FALSE(Contiene(t, "JUAN PEREZ")) << t;

    // The breakdown by means: each means' total as SQL adds it, and its rows in the CSV.
    r = Imprime("PagosClientes", "pdf", {"--set", "cmbDato(1)=Desglose de cheques"});
    ASSERT_EQ(r.estado, 0) << r.errores;
    t = Lee("pdf");
    EXPECT_TRUE(Contiene(t, "Desglose de cheques, por pagos de clientes")) << t;
    const auto sumas = bd.filas(
        "SELECT FORMAT(SUM(a.Efectivo),2), FORMAT(SUM(a.ChequeCuenta),2), "
        "FORMAT(SUM(a.ChequeOtra),2) FROM edoctacli e JOIN anexopagosctes a ON "
        "a.FolioDelPago=e.Folio WHERE e.CantidadPago>0 AND e.NotaCredito=0");
    ASSERT_EQ(sumas.size(), 1u);
    EXPECT_EQ(sumas[0], (std::vector<std::string>{"1,040.00", "2,450.50", "300.00"}));
    for (const auto& v : sumas[0]) EXPECT_TRUE(Contiene(t, v)) << v << "\n" << t;
    r = Imprime("PagosClientes", "csv", {"--set", "cmbDato(1)=Desglose de cheques"});
    ASSERT_EQ(r.estado, 0) << r.errores;
    EXPECT_TRUE(Contiene(Lee("csv"), "OTROS BANCOS\t2026-03-01\tC1\t11\tPAGO A VARIOS DOCUMENTOS\t300.00"));

    // Missing receipts: payment 3 has none; 2's receipt is dated after the period.
    r = Imprime("PagosClientes", "pdf", {"--set", "chkRecibos=1"});
    ASSERT_EQ(r.estado, 0) << r.errores;
    t = Lee("pdf");
    EXPECT_TRUE(Contiene(t, "Recibo fuera de rango (15/abr/2026)")) << t;
    EXPECT_TRUE(Contiene(t, "No existe el recibo")) << t;
    EXPECT_TRUE(Contiene(t, "Total: 2 recibos")) << t;

    // Suppliers: the return is left out unless asked for.
    r = Imprime("PagosProveedores", "pdf", {});
    ASSERT_EQ(r.estado, 0) << r.errores;
    t = Lee("pdf");
    EXPECT_TRUE(Contiene(t, "ACEROS DEL NORTE")) << t;
    EXPECT_TRUE(Contiene(t, "1,234.50")) << t;
    EXPECT_FALSE(Contiene(t, "DEVOLUCION PROV.")) << t;
    EXPECT_TRUE(Contiene(UltimaSolicitud(), "\"plantilla\":\"pagosprov.rpt\""));
    r = Imprime("PagosProveedores", "csv",
                {"--set", "chkDevoluc=1", "--set", "cmbDato(0)=Cantidad"});
    ASSERT_EQ(r.estado, 0) << r.errores;
    t = Lee("csv");
    EXPECT_TRUE(Contiene(t, "DEVOLUCION PROV. No. 1 DE COMPRA 7\t\t66.00")) << t;
    EXPECT_TRUE(Contiene(UltimaSolicitud(), "+{edoctaprov.CantidadPago}"));
}

TEST_F(Pagos, EntradasMalasSeRechazanSinDejarTablas) {
    for (const auto& extra :
         std::vector<std::vector<std::string>>{{"--set", "txtDato(0)=C'1"},
                                               {"--set", "txtDato(2)=A\\NA"},
                                               {"--set", "mkeFecha(3)=30/02/2026"}}) {
        auto r = Imprime("PagosClientes", "pdf", extra);
        EXPECT_EQ(r.estado, 1) << extra[1] << "\n" << r.errores;
        EXPECT_FALSE(r.errores.empty());
    }
    auto r = Imprime("PagosProveedores", "pdf", {"--set", "txtDato(1)=P'1"});
    EXPECT_EQ(r.estado, 1);
    // A failure while rendering still drops the seller's copy.
    bd.ejecutar("DELETE FROM reportesbin WHERE Archivo='pagosctes4.rpt'");
    r = Imprime("PagosClientes", "pdf", {"--set", "dcmDato(0)=V1"});
    EXPECT_EQ(r.estado, 1);
    EXPECT_TRUE(Contiene(r.errores, "pagosctes4.rpt")) << r.errores;
    EXPECT_EQ(bd.tablasDeTrabajo(), 0);
}

}  // namespace
}  // namespace paratzorep::cli
