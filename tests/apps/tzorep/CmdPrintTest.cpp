// tzorep show and print end to end: the user activity log of a scratch company, its template
// loaded with `templates import`, printed to every file type and read back by independent
// readers; the form's refusals and the request log.
#include <gtest/gtest.h>

#include <fstream>

#include "renderer/writers/Lector.h"
#include "support/Soporte.h"
#include "tests/apps/tzorep/EmpresaPrueba.h"

namespace paratzorep::cli {
namespace {

namespace lector = renderer::prueba;

bool Contiene(const std::string& texto, const std::string& parte) {
    return texto.find(parte) != std::string::npos;
}

class CmdPrint : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        // The general database and the reports database's model are shared by the run: created
        // once, with structure texts at Ids no other test uses besides the system's 180 and 181.
        pruebas::BaseDeDatosDePrueba b;
        b.ejecutar(prueba::kBasesCompartidas);
    }

    void SetUp() override {
        bd.emplace();
        bd->ejecutar(prueba::kTablasEmpresa);
        bd->ejecutar(
            "INSERT INTO bitacorausuarios (Fecha,Hora,Usuario,Registro,Llave,Adicionales,Version,"
            "Equipo) VALUES "
            "('2026-09-15','10:00:00',ENCODE('BETO','418'),180,'','',"
            "ENCODE('5.3.004','527'),ENCODE('CAJA-09','527')),"
            "('2026-10-01','08:00:50',ENCODE('ANA','418'),180,'','',"
            "ENCODE('5.3.004','527'),ENCODE('CAJA-01','527')),"
            "('2026-10-01','09:15:00',ENCODE('MARIO','418'),9150,ENCODE('FOLIO 12','184'),"
            "ENCODE('ALTA TOTAL 150.00','184'),ENCODE('5.3.004','527'),ENCODE('ALMACEN','527')),"
            "('2026-10-02','11:30:00',ENCODE('ANA','418'),99999,ENCODE('FOLIO 7','184'),"
            "ENCODE('CAMBIO','184'),ENCODE('5.3.004','527'),ENCODE('CAJA-01','527')),"
            "('2026-10-02','19:00:00',ENCODE('MARIO','418'),181,'','',"
            "ENCODE('5.3.004','527'),ENCODE('ALMACEN','527'))");
        prueba::EscribeIni(tmp.ruta(), bd->servidor(), bd->nombre());
        auto r = Tzorep({"templates", "import", std::string(TZ_SOURCE_DIR) + "/templates"});
        ASSERT_EQ(r.estado, 0) << r.errores;
    }

    pruebas::ResultadoPrograma Tzorep(std::vector<std::string> args) {
        args.insert(args.begin(), {"--home", tmp.ruta().string()});
        return pruebas::ejecutarTzorep(args);
    }
    // A print of October's log with the given extra words.
    pruebas::ResultadoPrograma Imprime(std::vector<std::string> extra) {
        std::vector<std::string> args = {"print", "BitacoraUsuarios",
                                         "--set", "mkeFecha(0)=01/10/2026",
                                         "--set", "mkeFecha(1)=31/10/2026"};
        args.insert(args.end(), extra.begin(), extra.end());
        return Tzorep(args);
    }
    int TablasDeTrabajo() const { return bd->tablasDeTrabajo(); }

    pruebas::CarpetaTemporal tmp;
    std::optional<pruebas::BaseDeDatosDePrueba> bd;
};

TEST_F(CmdPrint, ShowListsTheFormAfterLoading) {
    auto r = Tzorep({"show", "BitacoraUsuarios"});
    ASSERT_EQ(r.estado, 0) << r.errores;
    // The filters in the order of the form, each under its label, with what it takes; the
    // default dates come from the first and last rows of the log.
    EXPECT_EQ(r.salida.substr(0, r.salida.find("  txtDato")),
              "RepAdmMovUser: Bitácora de usuarios\n"
              "  mkeFecha(0)     \"Del día:\" = \"15/09/2026\"  [fecha dd/mm/aaaa]\n"
              "  mkeFecha(1)     \"Al día:\" = \"02/10/2026\"  [fecha dd/mm/aaaa]\n");
    EXPECT_TRUE(Contiene(r.salida,
                         "  Tipos de acción (ninguno: todos)\n"
                         "  chkAccion(0)    \"Altas\" = 0  [casilla: 0 o 1]\n"))
        << r.salida;
    for (const std::string adorno :
         {"imgPant", "pctFondoUniversal", "Frame2", "optDispos", "cmdImprimir", "lblFecha"})
        EXPECT_FALSE(Contiene(r.salida, adorno)) << adorno << "\n" << r.salida;
    r = Tzorep({"show", "BitacoraUsuarios", "--all"});
    for (const std::string control :
         {"imgPant", "pctFondoUniversal", "Frame2", "optDispos(2)", "lblFecha(0)", "mkeFecha(0)"})
        EXPECT_TRUE(Contiene(r.salida, control)) << control << "\n" << r.salida;

    r = Tzorep({"show", "6", "--set", "optDispos(1)=1", "--json"});
    ASSERT_EQ(r.estado, 0) << r.errores;
    EXPECT_EQ(r.salida.rfind("{\"form\":\"RepAdmMovUser\"", 0), 0u) << r.salida;
    EXPECT_TRUE(Contiene(r.salida,
                         "{\"name\":\"optDispos(1)\",\"kind\":\"opcion\","
                         "\"caption\":\"Im&presora\",\"text\":\"\",\"value\":1"))
        << r.salida;
    EXPECT_TRUE(Contiene(r.salida, "\"visible\":true,\"filter\":false}")) << r.salida;
    EXPECT_TRUE(Contiene(r.salida, "{\"name\":\"chkAccion(0)\"")) << r.salida;
}

// --out - sends a text type to standard output (CSV without the byte-order mark that is
// there for spreadsheets), and --out alone means a file.
TEST_F(CmdPrint, OutDashWritesToStandardOutput) {
    auto r = Imprime({"--set", "txtDato(0)=MARIO", "--type", "csv", "--out", "-"});
    ASSERT_EQ(r.estado, 0) << r.errores;
    EXPECT_EQ(r.salida,
              "Fecha,Hora,Usuario,Acción,Versión,Equipo\r\n"
              "2026-10-01,09:15:00,MARIO,FACTURACION FOLIO 12 ALTA TOTAL 150.00,5.3.004,"
              "ALMACEN\r\n"
              "2026-10-02,19:00:00,MARIO,SALIDA DEL SISTEMA,5.3.004,ALMACEN\r\n");
    r = Imprime({"--to", "file", "--out", "-"});
    ASSERT_EQ(r.estado, 0) << r.errores;
    EXPECT_TRUE(Contiene(r.salida, "Página 1 de 1")) << r.salida;  // txt by default
    r = Imprime({"--type", "pdf", "--out", "-"});
    EXPECT_EQ(r.estado, 2);
    EXPECT_TRUE(Contiene(r.errores, "solo los tipos de texto (txt, csv)")) << r.errores;
    EXPECT_TRUE(r.salida.empty());
    EXPECT_EQ(TablasDeTrabajo(), 0);
}

// A report that was made but could not be printed says so, and where its PDF was kept.
TEST_F(CmdPrint, PrintingFailureKeepsThePdf) {
    auto r = pruebas::ejecutarTzorep(
        {"--home", tmp.ruta().string(), "print", "6", "--to", "printer", "--printer", "oficina"},
        {{"CUPS_SERVER", "127.0.0.1:9"}});
    EXPECT_EQ(r.estado, 1);
    EXPECT_TRUE(Contiene(r.errores,
                         "Bitácora de usuarios: El reporte se generó pero no se pudo "
                         "imprimir: No se pudo conectar con el servidor de impresión"))
        << r.errores;
    const std::string guardado = "El PDF quedó guardado en: " + (tmp / "pdfs/bitacoraus").string();
    ASSERT_TRUE(Contiene(r.errores, guardado)) << r.errores;
    const auto ruta = r.errores.substr(r.errores.find(guardado) + guardado.size() -
                                       (tmp / "pdfs/bitacoraus").string().size());
    EXPECT_TRUE(std::filesystem::exists(ruta.substr(0, ruta.find('\n')))) << ruta;
    EXPECT_FALSE(Contiene(r.errores, "No se pudo generar")) << r.errores;
    EXPECT_EQ(TablasDeTrabajo(), 0);
}

// Progress goes to stderr on a terminal only: under a pseudo-terminal (script) the line shows
// the fill, the reading and the pages written, redrawn in place; piped, stderr stays empty.
TEST_F(CmdPrint, ProgresoEnLaTerminalYSilencioSinElla) {
    const std::string salida = (tmp / "log.csv").string();
    auto r = Imprime({"--to", "file", "--type", "csv", "--out", salida});
    ASSERT_EQ(r.estado, 0) << r.errores;
    EXPECT_EQ(r.errores, "");

    std::string orden = std::string(TZOREP_EXE) + " --home " + tmp.ruta().string() +
                        " print BitacoraUsuarios --to file --type pdf --out " +
                        (tmp / "log.pdf").string();
    r = pruebas::ejecutarPrograma("/usr/bin/script", {"-qec", orden, "/dev/null"});
    ASSERT_EQ(r.estado, 0) << r.salida << r.errores;
    for (const char* parte :
         {"\r\033[K", "Llenando la tabla de trabajo", "Leyendo datos", "Escribiendo: página "})
        EXPECT_TRUE(Contiene(r.salida, parte)) << parte << " en " << r.salida;
    // The line is cleared before the file's name is printed.
    EXPECT_TRUE(Contiene(r.salida, "\r\033[K" + (tmp / "log.pdf").string())) << r.salida;
}

// Every file type, read back by a reader that shares no code with the writers. Each must hold
// the decoded users, the composed action, the row of a structure with no text, and none of
// September's rows.
TEST_F(CmdPrint, EveryFileTypeReadBack) {
    struct Caso {
        std::string tipo;
        std::string lector;  // command that prints the file's text; "" = read it as it is
        std::string programa;
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
        const auto salida = tmp / ("nueva/bitacora." + c.tipo);
        auto r = Imprime({"--to", "file", "--type", c.tipo, "--out", salida.string()});
        ASSERT_EQ(r.estado, 0) << r.errores;
        EXPECT_EQ(r.salida, salida.string() + "\n");
        std::string texto;
        if (c.lector.empty()) {
            std::ifstream in(salida);
            texto.assign(std::istreambuf_iterator<char>(in), {});
        } else {
            auto leido = lector::Ejecutar(c.lector + " " + lector::Comillas(salida.string()) +
                                          (c.tipo == "pdf" ? " -" : "") + " 2>&1");
            ASSERT_EQ(leido.estado, 0) << leido.texto;
            texto = leido.texto;
        }
        EXPECT_TRUE(Contiene(texto, "ANA")) << texto;
        EXPECT_TRUE(Contiene(texto, "FACTURACION FOLIO 12 ALTA TOTAL 150.00")) << texto;
        // The row whose structure has no text is listed (LEFT JOIN); the system's CONCAT of a
        // NULL structure text leaves its action empty.
        EXPECT_TRUE(Contiene(texto, "11:30:00")) << texto;
        EXPECT_TRUE(Contiene(texto, "SALIDA DEL SISTEMA")) << texto;
        EXPECT_FALSE(Contiene(texto, "BETO")) << texto;
        if (c.tipo == "pdf" || c.tipo == "txt") {
            EXPECT_TRUE(Contiene(texto, "Movimientos de todos los usuarios")) << texto;
            EXPECT_TRUE(Contiene(texto, "Del 1 de octubre de 2026 al 31 de octubre de 2026"))
                << texto;
            EXPECT_TRUE(Contiene(texto, "Página 1 de 1")) << texto;
        }
    }
    EXPECT_EQ(TablasDeTrabajo(), 0);
}

// The CSV holds the report's data: the day of each row's group on the row, the time as a
// time; with no rows, the titles alone.
TEST_F(CmdPrint, CsvCarriesTheDayOnEveryRowAndTitlesWithoutRows) {
    const auto csv = tmp / "bitacora.csv";
    auto lee = [&csv] {
        std::ifstream in(csv, std::ios::binary);
        return std::string{std::istreambuf_iterator<char>(in), {}};
    };
    const std::string titulos =
        "\xEF\xBB\xBF"
        "Fecha,Hora,Usuario,Acción,Versión,Equipo\r\n";
    ASSERT_EQ(Imprime({"--to", "file", "--out", csv.string()}).estado, 0);
    EXPECT_EQ(lee(), titulos +
                         "2026-10-01,08:00:50,ANA,ENTRADA AL SISTEMA,5.3.004,CAJA-01\r\n"
                         "2026-10-01,09:15:00,MARIO,FACTURACION FOLIO 12 ALTA TOTAL 150.00,"
                         "5.3.004,ALMACEN\r\n"
                         "2026-10-02,11:30:00,ANA,,5.3.004,CAJA-01\r\n"
                         "2026-10-02,19:00:00,MARIO,SALIDA DEL SISTEMA,5.3.004,ALMACEN\r\n");
    ASSERT_EQ(Imprime({"--set", "txtDato(0)=NADIE", "--to", "file", "--out", csv.string()}).estado,
              0);
    EXPECT_EQ(lee(), titulos);
}

TEST_F(CmdPrint, FiltersReachTheQueryAndTheRequestLog) {
    const auto bitacora = tmp / "solicitudes.jsonl";
    const auto salida = tmp / "solo-mario.txt";
    auto r = Imprime({"--set", "txtDato(0)=MARIO", "--set", "optAccesos(1)=1", "--set",
                      "chkAccion(0)=1", "--set", "chkAccion(3)=1", "--to", "file", "--out",
                      salida.string(), "--request-log", bitacora.string()});
    ASSERT_EQ(r.estado, 0) << r.errores;
    std::ifstream in(salida);
    const std::string texto{std::istreambuf_iterator<char>(in), {}};
    // Only the accesses of MARIO, and of those only the kinds ticked: none is an ALTA or an
    // IMPRESION, so the report has no rows but keeps its headings.
    EXPECT_TRUE(Contiene(texto, "Movimientos del usuario 'MARIO'")) << texto;
    EXPECT_FALSE(Contiene(texto, "ANA")) << texto;
    EXPECT_FALSE(Contiene(texto, "SALIDA DEL SISTEMA")) << texto;

    std::ifstream log(bitacora);
    std::string linea;
    ASSERT_TRUE(std::getline(log, linea));
    EXPECT_TRUE(Contiene(linea, "\"plantilla\":\"bitacoraus.rpt\"")) << linea;
    EXPECT_TRUE(Contiene(linea, "\"destino\":2")) << linea;
    EXPECT_TRUE(Contiene(linea,
                         "\"formulaSeleccion\":\"('ALTA' in {bitacorausuarios.Accion} or "
                         "'IMPRESION' in {bitacorausuarios.Accion})\""))
        << linea;
    EXPECT_TRUE(Contiene(linea, "\"archivosDatos\":[\"bitacorausuarios*tbltemp0\"]")) << linea;
    EXPECT_TRUE(Contiene(linea, "PWD=***")) << linea;
    EXPECT_FALSE(Contiene(linea, bd->servidor().password)) << linea;
    EXPECT_FALSE(std::getline(log, linea));
}

TEST_F(CmdPrint, ScreenShowsTextPages) {
    auto r = Imprime({"--to", "screen"});
    ASSERT_EQ(r.estado, 0) << r.errores;
    EXPECT_TRUE(Contiene(r.salida, "Bitácora de usuarios")) << r.salida;
    EXPECT_TRUE(Contiene(r.salida, "01/oct/2026")) << r.salida;
}

// Refusals: each stops before the report, says why on stderr and leaves no work table.
TEST_F(CmdPrint, RefusalsExplainAndLeaveNothing) {
    struct Caso {
        std::vector<std::string> args;
        int estado;
        std::string mensaje;
    };
    const std::vector<Caso> casos = {
        {{"--set", "txtDato(0)=O'Brien"},
         1,
         "Bitácora de usuarios: El dato 'Usuario' no puede llevar comillas simples"},
        {{"--set", "txtDato(0)=a\\b"}, 1, "ni diagonales invertidas"},
        {{"--set", "mkeFecha(0)=31/02/2026"},
         1,
         "La fecha inicial ('31/02/2026') no es una fecha válida"},
        {{"--set", "noExiste(3)=1"},
         2,
         "--set: La forma RepAdmMovUser no tiene el control noExiste"},
        {{"--set", "optAccesos(0)=7"}, 2, "--set: La opción optAccesos(0) solo admite 1"},
        {{"--to", "file"}, 2, "--to file necesita --out"},
        {{"--to", "file", "--type", "odt", "--out", "x.odt"}, 2, "tipo de archivo desconocido"},
        {{"--to", "papel"}, 2, "--to admite screen, printer o file"},
        {{"--printer", "hp"}, 2, "--printer va con --to printer"},
    };
    for (const auto& c : casos) {
        auto r = Imprime(c.args);
        SCOPED_TRACE(c.args.back());
        EXPECT_EQ(r.estado, c.estado) << r.errores;
        EXPECT_TRUE(Contiene(r.errores, c.mensaje)) << r.errores;
    }
    EXPECT_EQ(TablasDeTrabajo(), 0);

    // A report whose form is not built yet shows its bare form but does not print.
    auto r = Tzorep({"print", "Apartados"});
    EXPECT_EQ(r.estado, 1);
    EXPECT_TRUE(Contiene(r.errores, "no está disponible todavía")) << r.errores;
    EXPECT_EQ(Tzorep({"show", "Apartados"}).estado, 0);
}

// A template missing from the store ends the run with the runner's message; the work table
// is dropped all the same and the output file is not created.
TEST_F(CmdPrint, MissingTemplateDropsTheWorkTable) {
    bd->ejecutar("DELETE FROM reportesbin");
    const auto salida = tmp / "sin-plantilla.pdf";
    auto r = Imprime({"--to", "file", "--out", salida.string()});
    EXPECT_EQ(r.estado, 1);
    EXPECT_TRUE(Contiene(r.errores, "Bitácora de usuarios: ")) << r.errores;
    EXPECT_TRUE(Contiene(r.errores, "bitacoraus.rpt")) << r.errores;
    EXPECT_FALSE(std::filesystem::exists(salida));
    EXPECT_EQ(TablasDeTrabajo(), 0);
}

}  // namespace
}  // namespace paratzorep::cli
