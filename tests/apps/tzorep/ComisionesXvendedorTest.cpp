// The commissions report end to end through tzorep on the company worked out by hand
// (support/EmpresaComisiones.h): every file type read back, the request for each scheme and
// basis, the form's refusals and the work tables dropped after a failure.
#include <gtest/gtest.h>

#include <fstream>

#include "renderer/writers/Lector.h"
#include "schema/Esquema.h"
#include "support/EmpresaComisiones.h"
#include "support/NombresDeCaso.h"
#include "support/Soporte.h"

namespace paratzorep::cli {
namespace {

namespace lector = renderer::prueba;

bool Contiene(const std::string& texto, const std::string& parte) {
    return texto.find(parte) != std::string::npos;
}

std::string Lee(const std::filesystem::path& archivo) {
    std::ifstream in(archivo, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

class ComisionesXvendedor : public ::testing::Test {
  protected:
    static void SetUpTestSuite() { pruebas::CreaModelosComisiones(); }

    void SetUp() override {
        bd.emplace();
        schema::cargarArchivo(bd->mysql(), schema::carpetaEsquemas() / "empresa.sql");
        bd->ejecutar(pruebas::kEmpresaComisiones);
        bd->ejecutar(
            "INSERT INTO configura (Dato,Valor) VALUES ('MultiMoneda','1'),('Remisiones','1'),"
            "('ComisXpagado','0'),('ComisXliquidado','0'),('ComisVendXtabla','1'),"
            "('ComisVendXlinea','0'),('ComisVendXprecios','0'),('ComisVendXlinYprec','0')");
        const auto& sv = bd->servidor();
        std::ofstream(tmp / "tzorep.ini")
            << "[BaseDD]\ncRuta=" << sv.host << "\ncUsuario=" << sv.usuario
            << "\ncPassword=" << sv.password << "\ncPuerto=" << sv.puerto
            << "\ncMiBase=" << bd->nombre() << "\n";
        auto r = Tzorep({"templates", "import", std::string(TZ_SOURCE_DIR) + "/templates"});
        ASSERT_EQ(r.estado, 0) << r.errores;
    }

    void Configura(const std::string& dato, const std::string& valor) {
        bd->ejecutar("UPDATE configura SET Valor='" + valor + "' WHERE Dato='" + dato + "'");
    }
    pruebas::ResultadoPrograma Tzorep(std::vector<std::string> args) {
        args.insert(args.begin(), {"--home", tmp.ruta().string()});
        return pruebas::ejecutarTzorep(args);
    }
    // October's commissions with the given extra words.
    pruebas::ResultadoPrograma Imprime(std::vector<std::string> extra) {
        std::vector<std::string> args = {"print", "ComisionesXvendedor",
                                         "--set", "mkeFecha(0)=01/10/2026",
                                         "--set", "mkeFecha(1)=31/10/2026"};
        args.insert(args.end(), extra.begin(), extra.end());
        return Tzorep(args);
    }
    // The report as text, read back by pdftotext.
    std::string ComoTexto(std::vector<std::string> extra) {
        const auto pdf = tmp / "comisiones.pdf";
        extra.insert(extra.end(), {"--to", "file", "--type", "pdf", "--out", pdf.string()});
        auto r = Imprime(extra);
        EXPECT_EQ(r.estado, 0) << r.errores;
        return lector::Ejecutar("pdftotext -layout " + lector::Comillas(pdf.string()) + " -").texto;
    }

    pruebas::CarpetaTemporal tmp;
    std::optional<pruebas::BaseDeDatosDePrueba> bd;
};

// V1 reached exactly its 3 % bracket: 1,000 + 1,850 (US$100) + 150 (F3's own line less its
// credit note) + 300.50 + 450 at 3 % = 30 + 55.50 + 4.50 + 9.02 (9.015) + 13.50 = 112.52.
TEST_F(ComisionesXvendedor, EveryFileTypeReadBack) {
    struct Caso {
        std::string tipo, lector, programa;
    };
    const std::vector<Caso> casos = {
        {"pdf", "pdftotext -layout", "pdftotext"},
        {"txt", "", ""},
        {"csv", lector::Lector() + " csv", "python3"},
        {"rtf", lector::Lector() + " rtf", "unrtf"},
        {"doc", lector::Lector() + " rtf", "unrtf"},
        {"xls", lector::Lector() + " xls", "python3"},
        {"xlsx", lector::Lector() + " xlsx", "python3"},
    };
    for (const auto& c : casos) {
        SCOPED_TRACE(c.tipo);
        if (!c.programa.empty() && !lector::HayPrograma(c.programa)) {
            ADD_FAILURE() << c.programa << " no está instalado (scripts/setup)";
            continue;
        }
        const auto salida = tmp / ("comisiones." + c.tipo);
        auto r = Imprime({"--to", "file", "--type", c.tipo, "--out", salida.string()});
        ASSERT_EQ(r.estado, 0) << r.errores;
        std::string texto = Lee(salida);
        if (!c.lector.empty()) {
            auto leido = lector::Ejecutar(c.lector + " " + lector::Comillas(salida.string()) +
                                          (c.tipo == "pdf" ? " -" : "") + " 2>&1");
            ASSERT_EQ(leido.estado, 0) << leido.texto;
            texto = leido.texto;
        }
        for (const char* s : {"ANA LOPEZ", "Por ventas entre 3,750.50 y 10,000.00",
                              "Sin tabla de comisiones", "O'HARA HERMANOS"})
            EXPECT_TRUE(Contiene(texto, s)) << s << "\n" << texto;
        if (c.tipo == "pdf" || c.tipo == "txt" || c.tipo == "rtf" || c.tipo == "doc") {
            for (const char* s :
                 {"Comisionar por lo vendido",
                  "Por la tabla de comisiones sobre ventas. Importes en moneda nacional",
                  "Del 1 de octubre de 2026 al 31 de octubre de 2026", "112.52", "4,530.50", "9.02",
                  "Página 1 de 1"})
                EXPECT_TRUE(Contiene(texto, s)) << s << "\n" << texto;
        }
    }
    EXPECT_EQ(bd->tablasDeTrabajo(), 0);
}

// The CSV carries one typed row per document under its seller's bracket.
TEST_F(ComisionesXvendedor, CsvRowsPerDocument) {
    const auto csv = tmp / "comisiones.csv";
    ASSERT_EQ(Imprime({"--set", "dcmDato(0)=V1", "--to", "file", "--out", csv.string()}).estado, 0);
    const std::string texto = Lee(csv);
    EXPECT_TRUE(
        Contiene(texto,
                 "V1,ANA LOPEZ,\"Por ventas entre 3,750.50 y 10,000.00\",3.00,REMISION,R,50,"
                 "2026-10-01,C1,CLIENTE UNO,300.50,0.00,300.50,,,9.02\r\n"))
        << texto;
    EXPECT_FALSE(Contiene(texto, "BETO RUIZ")) << texto;
}

struct CasoSolicitud {
    const char* nombre;
    std::vector<std::pair<std::string, std::string>> config;
    std::vector<std::string> args;
    std::vector<std::string> esperado;  // parts of the request log's line
};

class SolicitudComisiones : public ComisionesXvendedor,
                            public ::testing::WithParamInterface<CasoSolicitud> {};

TEST_P(SolicitudComisiones, TextosExactosDeLaSolicitud) {
    const auto& c = GetParam();
    for (const auto& [d, v] : c.config) Configura(d, v);
    const auto bitacora = tmp / "solicitudes.jsonl";
    auto args = c.args;
    args.insert(args.end(), {"--to", "file", "--type", "txt", "--out", (tmp / "x.txt").string(),
                             "--request-log", bitacora.string()});
    auto r = Imprime(args);
    ASSERT_EQ(r.estado, 0) << r.errores;
    const std::string linea = Lee(bitacora);
    for (const auto& e : c.esperado) EXPECT_TRUE(Contiene(linea, e)) << e << "\n" << linea;
    EXPECT_EQ(bd->tablasDeTrabajo(), 0);
}

INSTANTIATE_TEST_SUITE_P(
    Casos, SolicitudComisiones,
    ::testing::Values(
        CasoSolicitud{"tabla sobre lo vendido",
                      {},
                      {},
                      {"comispv1.rpt\"", "\"formulas\":[]",
                       "\"camposOrden\":[{\"i\":0,\"texto\":\"+{ComisXvend2.Fecha}\"}]",
                       "\"archivosDatos\":[]"}},
        CasoSolicitud{"tabla sobre lo pagado de un vendedor por documento",
                      {{"ComisXpagado", "1"}},
                      {"--set", "dcmDato(0)=V1", "--set", "optDato(1)=1"},
                      {"comispv1.rpt\"",
                       "\"formulas\":[{\"i\":0,\"texto\":\"VENDEDOR='Vendedor: ANA LOPEZ'\"},"
                       "{\"i\":1,\"texto\":\"COLVENCE='Vence'\"},{\"i\":2,\"texto\":"
                       "\"COLDIAS='Días'\"}]",
                       "\"camposOrden\":[{\"i\":0,\"texto\":\"+{ComisXvend2.Documento}\"},"
                       "{\"i\":1,\"texto\":\"+{ComisXvend2.Serie}\"},{\"i\":2,\"texto\":"
                       "\"+{ComisXvend2.Numero}\"}]"}},
        CasoSolicitud{"linea y precio por cliente",
                      {{"ComisVendXtabla", "0"}, {"ComisVendXlinYprec", "1"}},
                      {"--set", "optDato(2)=1", "--set", "cmbDato(0)=USD"},
                      {"comispv2.rpt\"",
                       "\"camposOrden\":[{\"i\":0,\"texto\":\"+{comisxventas.Cliente}\"},"
                       "{\"i\":1,\"texto\":\"+{comisxventas.Fecha}\"}]",
                       "\"archivosDatos\":[\"comisxventas*tbltemp0;comisxventasdetalle*"
                       "tbltemp1\"]"}}),
    pruebas::PorNombre());

// Line and price on payments: V1 27.00 + 46.25 + 6.43, V2 17.24 (see the engine's tests).
TEST_F(ComisionesXvendedor, LineaYPrecioSobreLoPagado) {
    Configura("ComisVendXtabla", "0");
    Configura("ComisVendXlinYprec", "1");
    Configura("ComisXpagado", "1");
    const std::string texto = ComoTexto({});
    for (const char* s : {"Comisionar por lo pagado", "Por línea y número de precio", "79.68",
                          "17.24", "96.92", "USD", "1,073.00", "MARTILLO 16 OZ"})
        EXPECT_TRUE(Contiene(texto, s)) << s << "\n" << texto;
    EXPECT_EQ(bd->tablasDeTrabajo(), 0);
}

// Refusals get the form's message and exit 1; a failure while filling still drops the work
// tables.
TEST_F(ComisionesXvendedor, RefusalsAndFailuresLeaveNothing) {
    struct Caso {
        std::vector<std::string> args;
        std::string mensaje;
    };
    const std::vector<Caso> casos = {
        {{"--set", "mkeFecha(0)=31/02/2026"}, "La fecha inicial ('31/02/2026') no es una fecha"},
        {{"--set", "mkeFecha(0)=01/11/2026"},
         "la fecha inicial (01/11/2026) es posterior a la final (31/10/2026)"},
    };
    for (const auto& c : casos) {
        auto r = Imprime(c.args);
        EXPECT_EQ(r.estado, 1) << r.errores;
        EXPECT_TRUE(Contiene(r.errores, c.mensaje)) << r.errores;
    }
    Configura("ComisVendXtabla", "0");
    Configura("ComisVendXlinea", "1");
    bd->ejecutar("DROP TABLE productos");
    auto r = Imprime({});
    EXPECT_EQ(r.estado, 1);
    EXPECT_TRUE(Contiene(r.errores, "calcular las comisiones")) << r.errores;
    EXPECT_EQ(bd->tablasDeTrabajo(), 0);
}

// Empty dates leave the period open; settings hide the currency and documents lists.
TEST_F(ComisionesXvendedor, OpenPeriodAndHiddenLists) {
    const std::string texto =
        ComoTexto({"--set", "mkeFecha(0)=", "--set", "mkeFecha(1)=", "--set", "dcmDato(0)=V1"});
    EXPECT_TRUE(Contiene(texto, "Todas las fechas")) << texto;
    EXPECT_TRUE(Contiene(texto, "Vendedor: ANA LOPEZ")) << texto;
    EXPECT_TRUE(Contiene(texto, "30/sep/2026")) << texto;  // September's invoice

    Configura("MultiMoneda", "0");
    Configura("Remisiones", "0");
    auto r = Tzorep({"show", "ComisionesXvendedor", "--json"});
    ASSERT_EQ(r.estado, 0) << r.errores;
    for (const char* c : {"cmbDato(0)", "cmbDocumentos"}) {
        const auto i = r.salida.find(std::string("\"name\":\"") + c + "\"");
        ASSERT_NE(i, std::string::npos) << r.salida;
        EXPECT_TRUE(Contiene(r.salida.substr(i, r.salida.find('}', i) - i), "\"visible\":false"))
            << c << "\n"
            << r.salida;
    }
}

}  // namespace
}  // namespace paratzorep::cli
