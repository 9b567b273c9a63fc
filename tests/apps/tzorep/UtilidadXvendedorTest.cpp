// Profit by seller end to end through tzorep on the small company of the commission tests
// (support/EmpresaComisiones.h) with costs: every file type read back with its figures checked
// against SQL run on the same data, the request's exact texts, refusals and a failed fill.
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

class UtilidadXvendedor : public ::testing::Test {
  protected:
    static void SetUpTestSuite() { pruebas::CreaModelosComisiones(); }

    void SetUp() override {
        bd.emplace();
        schema::cargarArchivo(bd->mysql(), schema::carpetaEsquemas() / "empresa.sql");
        bd->ejecutar(pruebas::kEmpresaComisiones);
        bd->ejecutar(
            "UPDATE productos SET Costo=CASE Clave WHEN 'P1' THEN 150 WHEN 'P2' THEN 60 WHEN "
            "'P3' THEN 55 ELSE 40 END;"
            "UPDATE facturasdetalle SET CostoPromedio=PrecioNeto*0.5;"
            "UPDATE remisionesdetalle SET CostoPromedio=PrecioNeto*0.5;"
            "INSERT INTO facturas (Id,Serie,Factura,Fecha,Cliente,Vendedor,Cancelada) VALUES "
            "(10,'A',110,'2026-10-27','C2','V2',0)");
        const auto& sv = bd->servidor();
        std::ofstream(tmp / "tzorep.ini")
            << "[BaseDD]\ncRuta=" << sv.host << "\ncUsuario=" << sv.usuario
            << "\ncPassword=" << sv.password << "\ncPuerto=" << sv.puerto
            << "\ncMiBase=" << bd->nombre() << "\n";
        auto r = Tzorep({"templates", "import", std::string(TZ_SOURCE_DIR) + "/templates"});
        ASSERT_EQ(r.estado, 0) << r.errores;
    }

    pruebas::ResultadoPrograma Tzorep(std::vector<std::string> args) {
        args.insert(args.begin(), {"--home", tmp.ruta().string()});
        return pruebas::ejecutarTzorep(args);
    }
    pruebas::ResultadoPrograma Imprime(std::vector<std::string> extra) {
        std::vector<std::string> args = {"print", "UtilidadXvendedor",
                                         "--set", "mkeFecha(0)=01/10/2026",
                                         "--set", "mkeFecha(1)=31/10/2026"};
        args.insert(args.end(), extra.begin(), extra.end());
        return Tzorep(args);
    }
    // A figure of October's sales computed on the server, as the report prints it.
    std::string Cifra(const std::string& expr, const std::string& donde) {
        std::string sql = "SELECT FORMAT(" + expr +
                          ",2) FROM (SELECT Vendedor,Cantidad,"
                          "PrecioNeto,CostoPromedio,Producto FROM facturas JOIN facturasdetalle "
                          "USING (Id) WHERE Cancelada=0 AND Fecha BETWEEN '2026-10-01' AND "
                          "'2026-10-31' UNION ALL SELECT Vendedor,Cantidad,PrecioNeto,"
                          "CostoPromedio,Producto FROM remisiones JOIN remisionesdetalle USING "
                          "(Id) WHERE Cancelada=0 AND Fecha BETWEEN '2026-10-01' AND "
                          "'2026-10-31') l LEFT JOIN productos p ON p.Clave=l.Producto" +
                          donde;
        return bd->valor(sql).value_or("?");
    }

    pruebas::CarpetaTemporal tmp;
    std::optional<pruebas::BaseDeDatosDePrueba> bd;
};

TEST_F(UtilidadXvendedor, EveryFileTypeReadBack) {
    // V1's sales, costs and profit, and the total, computed apart.
    const std::string v1 = " WHERE l.Vendedor='V1'";
    const std::vector<std::string> cifras = {
        Cifra("SUM(Cantidad*PrecioNeto)", v1),
        Cifra("SUM(Cantidad*p.Costo)", v1),
        Cifra("SUM(Cantidad*PrecioNeto)-SUM(Cantidad*p.Costo)", v1),
        Cifra("SUM(Cantidad*PrecioNeto)", ""),
        Cifra("SUM(Cantidad*CostoPromedio)", ""),
    };
    EXPECT_EQ(cifras[0], "2,800.50");
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
        const auto salida = tmp / ("utilidad." + c.tipo);
        auto r = Imprime({"--to", "file", "--type", c.tipo, "--out", salida.string()});
        ASSERT_EQ(r.estado, 0) << r.errores;
        std::string texto = Lee(salida);
        if (!c.lector.empty()) {
            auto leido = lector::Ejecutar(c.lector + " " + lector::Comillas(salida.string()) +
                                          (c.tipo == "pdf" ? " -" : "") + " 2>&1");
            ASSERT_EQ(leido.estado, 0) << leido.texto;
            texto = leido.texto;
        }
        for (const char* s : {"ANA LOPEZ", "*** SIN VENDEDOR", "BETO RUIZ"})
            EXPECT_TRUE(Contiene(texto, s)) << s << "\n" << texto;
        if (c.tipo == "pdf" || c.tipo == "txt" || c.tipo == "rtf" || c.tipo == "doc") {
            for (const auto& s : cifras) EXPECT_TRUE(Contiene(texto, s)) << s << "\n" << texto;
            for (const char* s :
                 {"Utilidad por vendedor", "Del 1 de octubre de 2026 al 31 de octubre de 2026",
                  "Al costo actual", "Al costo promedio", "Página 1 de 1"})
                EXPECT_TRUE(Contiene(texto, s)) << s << "\n" << texto;
        }
    }
    EXPECT_EQ(bd->tablasDeTrabajo(), 0);
}

// One typed row per seller; a seller whose only sale has no lines has no margin, not an error.
TEST_F(UtilidadXvendedor, CsvRowsAndEmptyMargins) {
    const auto csv = tmp / "utilidad.csv";
    ASSERT_EQ(Imprime({"--set", "dcmDato(0)=V2", "--set", "mkeFecha(0)=27/10/2026", "--to", "file",
                       "--out", csv.string()})
                  .estado,
              0);
    const std::string texto = Lee(csv);
    EXPECT_TRUE(Contiene(texto, "V2,BETO RUIZ,1,0.00,0.00,0.00,,,0.00,0.00,,\r\n")) << texto;
}

struct CasoSolicitud {
    const char* nombre;
    std::vector<std::string> args;
    std::vector<std::string> esperado;  // parts of the request log's line
};

class SolicitudUtilidad : public UtilidadXvendedor,
                          public ::testing::WithParamInterface<CasoSolicitud> {};

TEST_P(SolicitudUtilidad, TextosExactosDeLaSolicitud) {
    const auto& c = GetParam();
    const auto bitacora = tmp / "solicitudes.jsonl";
    auto args = c.args;
    args.insert(args.end(), {"--to", "file", "--type", "txt", "--out", (tmp / "x.txt").string(),
                             "--request-log", bitacora.string()});
    auto r = Imprime(args);
    ASSERT_EQ(r.estado, 0) << r.errores;
    const std::string linea = Lee(bitacora);
    for (const auto& e : c.esperado) EXPECT_TRUE(Contiene(linea, e)) << e << "\n" << linea;
}

INSTANTIATE_TEST_SUITE_P(
    Casos, SolicitudUtilidad,
    ::testing::Values(
        CasoSolicitud{"el periodo",
                      {},
                      {"utilidadxvendedor.rpt\"",
                       "\"formulas\":[{\"i\":0,\"texto\":\"Titulo='Del 1 de octubre de 2026 al "
                       "31 de octubre de 2026'\"}]"}},
        CasoSolicitud{"sin fechas, un cliente y un vendedor",
                      {"--set", "mkeFecha(0)=", "--set", "mkeFecha(1)=", "--set", "txtDato(0)=C1",
                       "--set", "dcmDato(0)=V1"},
                      {"\"formulas\":[{\"i\":0,\"texto\":\"Titulo='Todas las fechas'\"}]"}}),
    pruebas::PorNombre());

TEST_F(UtilidadXvendedor, RefusalsAndFailuresLeaveNothing) {
    struct Caso {
        std::vector<std::string> args;
        std::string mensaje;
    };
    const std::vector<Caso> casos = {
        {{"--set", "mkeFecha(1)=31/13/2026"}, "La fecha final ('31/13/2026') no es una fecha"},
        {{"--set", "mkeFecha(0)=01/11/2026"},
         "la fecha inicial (01/11/2026) es posterior a la final (31/10/2026)"},
        {{"--set", "txtDato(0)=C1' OR '1'='1"}, "no puede llevar comillas simples"},
    };
    for (const auto& c : casos) {
        auto r = Imprime(c.args);
        EXPECT_EQ(r.estado, 1) << r.errores;
        EXPECT_TRUE(Contiene(r.errores, c.mensaje)) << r.errores;
    }
    bd->ejecutar("DROP TABLE productos");
    auto r = Imprime({});
    EXPECT_EQ(r.estado, 1);
    EXPECT_TRUE(Contiene(r.errores, "llenar la tabla de trabajo")) << r.errores;
    EXPECT_EQ(bd->tablasDeTrabajo(), 0);
}

}  // namespace
}  // namespace paratzorep::cli
