// The inventory listings end to end through tzorep print on eleven weeks of the demo company:
// every entry point to every file type, every template variant reached (request log and PDF
// read back), figures read back against SQL of the test's own, the adjustment document, the
// controls that the company's settings show, and the forms' refusals with no work table left.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>

#include "renderer/writers/Lector.h"
#include "schema/GeneradorDemo.h"
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

// Rows of a CSV without quoted commas (ours quote only texts that hold one).
std::vector<std::vector<std::string>> Csv(const std::string& texto) {
    std::vector<std::vector<std::string>> filas;
    std::vector<std::string> fila;
    std::string campo;
    bool comillas = false;
    for (std::size_t i = texto.rfind("\xEF\xBB\xBF", 0) == 0 ? 3 : 0; i < texto.size(); ++i) {
        const char c = texto[i];
        if (c == '"') {
            comillas = !comillas;
        } else if (c == ',' && !comillas) {
            fila.push_back(campo), campo.clear();
        } else if (c == '\n' && !comillas) {
            fila.push_back(campo), campo.clear();
            filas.push_back(fila), fila.clear();
        } else if (c != '\r') {
            campo += c;
        }
    }
    return filas;
}

// The line of `show --json` that describes a control.
std::string Control(const std::string& json, const std::string& nombre) {
    const auto i = json.find("{\"name\":\"" + nombre + "\"");
    return i == std::string::npos ? std::string() : json.substr(i, json.find('\n', i) - i);
}

class ImpresionInventario : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        empresa.emplace();
        schema::cargarArchivo(empresa->mysql(), schema::carpetaEsquemas() / "empresa.sql");
        auto c = schema::Conexion::abrir(empresa->servidor(), empresa->nombre());
        schema::OpcionesDemo op;
        op.baseEmpresa = empresa->nombre();
        op.baseGeneral = "";
        op.dias = 77;
        schema::generarDemo(c, op);
        pruebas::BaseDeDatosDePrueba modelos;
        schema::cargarArchivo(modelos.mysql(), schema::carpetaEsquemas() / "tanzoreportes.sql");
        modelos.ejecutar(
            "CREATE DATABASE IF NOT EXISTS generaltanzo;"
            "CREATE DATABASE IF NOT EXISTS tanzoreportes; CREATE TABLE IF NOT EXISTS "
            "tanzoreportes.compras3 LIKE `" +
            modelos.nombre() + "`.compras3");
        const auto& sv = empresa->servidor();
        std::ofstream(home->ruta() / "tzorep.ini")
            << "[Iniciales]\nVistaPrevia=1\n[BaseDD]\ncRuta=" << sv.host
            << "\ncUsuario=" << sv.usuario << "\ncPassword=" << sv.password
            << "\ncPuerto=" << sv.puerto << "\ncMiBase=" << empresa->nombre() << "\n";
        auto r = Tzorep({"templates", "import", std::string(TZ_SOURCE_DIR) + "/templates"});
        ASSERT_EQ(r.estado, 0) << r.errores;
    }
    static void TearDownTestSuite() { empresa.reset(); }

    static pruebas::ResultadoPrograma Tzorep(std::vector<std::string> args) {
        args.insert(args.begin(), {"--home", home->ruta().string()});
        return pruebas::ejecutarTzorep(args, {}, std::chrono::seconds(300));
    }
    pruebas::ResultadoPrograma Imprime(const std::string& entrada, std::vector<std::string> sets,
                                       const std::string& tipo) {
        std::vector<std::string> args = {"print", entrada};
        for (const auto& s : sets) args.insert(args.end(), {"--set", s});
        args.insert(args.end(), {"--to", "file", "--type", tipo, "--out", Salida(tipo).string(),
                                 "--request-log", (tmp / "solicitudes.jsonl").string()});
        return Tzorep(args);
    }
    std::filesystem::path Salida(const std::string& tipo) { return tmp / ("reporte." + tipo); }
    std::string Pdf() {
        return lector::Ejecutar("pdftotext -layout " + lector::Comillas(Salida("pdf").string()) +
                                " -")
            .texto;
    }
    // The last request handed to the runner.
    std::string UltimaSolicitud() {
        const std::string t = Lee(tmp / "solicitudes.jsonl");
        const auto fin = t.find_last_not_of('\n');
        return t.substr(t.rfind('\n', fin) == std::string::npos ? 0 : t.rfind('\n', fin) + 1);
    }
    static double Sql(const std::string& sql) {
        return std::strtod(empresa->valor(sql).value_or("0").c_str(), nullptr);
    }

    static inline std::optional<pruebas::BaseDeDatosDePrueba> empresa;
    static inline std::unique_ptr<pruebas::CarpetaTemporal> home =
        std::make_unique<pruebas::CarpetaTemporal>();
    pruebas::CarpetaTemporal tmp;
};

TEST_F(ImpresionInventario, CadaEntradaACadaTipoDeArchivo) {
    for (const std::string entrada :
         {"Ajustes", "Entradas", "Traspasos", "Perdidas", "SeparacionMetales"}) {
        for (const std::string tipo : {"pdf", "txt", "rtf", "doc", "xls", "csv", "xlsx"}) {
            SCOPED_TRACE(entrada + " " + tipo);
            auto r = Imprime(entrada, {}, tipo);
            ASSERT_EQ(r.estado, 0) << r.errores;
            EXPECT_GT(std::filesystem::file_size(Salida(tipo)), 200u);
        }
        EXPECT_TRUE(Contiene(Lee(Salida("txt")), "Página 1 de ")) << entrada;
    }
    EXPECT_EQ(empresa->tablasDeTrabajo(), 0);
}

// Every template reached from its form: the request names it and the PDF reads as it should.
TEST_F(ImpresionInventario, CadaVarianteLlegaASuPlantilla) {
    struct Caso {
        std::string entrada;
        std::vector<std::string> sets;
        std::vector<std::string> solicitud, textos;
    };
    const std::vector<Caso> casos = {
        {"Ajustes",
         {"chkDato(0)=1"},
         {"ajustes1.rpt", "+{ajustes.Clave}"},
         {"Reporte de ajustes", "Exist. anterior", "productos ajustados"}},
        {"Ajustes", {"chkDato(1)=1"}, {"ajustes2.rpt"}, {"valuadas a costo", "Faltantes"}},
        {"Ajustes",
         {"chkDato(1)=1", "cmbDato(0)=Por precio"},
         {"ajustes3.rpt"},
         {"valuadas a precio", "Efecto neto"}},
        {"Ajustes",
         {"chkDato(2)=1"},
         {"ajustes4.rpt", "productos*tbltemp"},
         {"Productos que no tuvieron ajuste", "productos sin ajuste", "Valor de su existencia"}},
        {"Entradas",
         {"optAfecs(1)=1"},
         {"entradas.rpt", "{entradas.Afectada}=0"},
         {"Detalle por documento", "SIN AFECTAR", "Solo entradas sin afectar"}},
        {"Entradas", {"chkTotalizado=1"}, {"entradastot.rpt"}, {"Totales por documento"}},
        {"Entradas",
         {"chkXprod=1", "cmbDato(0)=Precio real", "cmbDato(1)=#3"},
         {"entradasprod.rpt", "compras3*tbltemp", "-{compras3.Cantidad}"},
         {"valuado a Precio real", "Pr. real", "productos"}},
        {"Traspasos",
         {"cmbDato(2)=A"},
         {"traspasos.rpt", "{traspasos.Serie}='A'"},
         {"Serie: A", "Traspaso", "A-"}},
        {"Traspasos",
         {"chkTotalizado=1"},
         {"traspasostot.rpt", "{traspasos.Cancelado}=0"},
         {"Totales por documento", "traspasos"}},
        {"Traspasos",
         {"chkXprod=1", "cmbDato(0)=Precio 2"},
         {"traspasosprod.rpt"},
         {"valuado a Precio 2", "Precio"}},
        {"Perdidas",
         {"txtDato(1)=M"},
         {"perdidas.rpt", "{perdidas.Usuario}<='M'"},
         {"Usuarios hasta: M", "Total de la pérdida"}},
        {"SeparacionMetales", {}, {"separametales.rpt"}, {"Separado:", "Obtenido", "CHATARRA"}},
    };
    for (const auto& c : casos) {
        SCOPED_TRACE(c.entrada + " " + (c.sets.empty() ? "" : c.sets.back()));
        auto r = Imprime(c.entrada, c.sets, "pdf");
        ASSERT_EQ(r.estado, 0) << r.errores;
        const std::string s = UltimaSolicitud(), t = Pdf();
        for (const auto& x : c.solicitud) EXPECT_TRUE(Contiene(s, x)) << x << "\n" << s;
        for (const auto& x : c.textos)
            EXPECT_TRUE(Contiene(t, x)) << x << "\n" << t.substr(0, 3000);
    }
    EXPECT_EQ(empresa->tablasDeTrabajo(), 0);
}

TEST_F(ImpresionInventario, CifrasContraSql) {
    // Entries per product: the catalogue's products of every line entered, as SQL sums them.
    auto r = Imprime("Entradas", {"chkXprod=1", "cmbDato(0)=Costo"}, "csv");
    ASSERT_EQ(r.estado, 0) << r.errores;
    auto filas = Csv(Lee(Salida("csv")));
    ASSERT_GT(filas.size(), 10u);
    double cantidad = 0, total = 0;
    for (std::size_t i = 1; i < filas.size(); ++i) {
        cantidad += std::strtod(filas[i][3].c_str(), nullptr);
        total += std::strtod(filas[i][5].c_str(), nullptr);
    }
    const std::string lineas = " FROM entradasdetalle d JOIN productos p ON p.Clave=d.Producto";
    EXPECT_EQ(static_cast<double>(filas.size() - 1),
              Sql("SELECT COUNT(DISTINCT d.Producto)" + lineas));
    EXPECT_NEAR(cantidad, Sql("SELECT SUM(d.Cantidad)" + lineas), 0.01);
    EXPECT_NEAR(total, Sql("SELECT SUM(d.Cantidad*p.Costo)" + lineas), 0.01 * filas.size());
    // Lines of products no longer in the catalogue stay out of the summary, not of the listing.
    EXPECT_GT(Sql("SELECT COUNT(*) FROM entradasdetalle WHERE Producto LIKE 'BAJA-%'"), 0);

    // Transfers totalled: one row per valid transfer; the cancelled ones never count.
    r = Imprime("Traspasos", {"chkTotalizado=1"}, "csv");
    ASSERT_EQ(r.estado, 0) << r.errores;
    filas = Csv(Lee(Salida("csv")));
    EXPECT_GT(Sql("SELECT COUNT(*) FROM traspasos WHERE Cancelado<>0"), 0);
    EXPECT_EQ(static_cast<double>(filas.size() - 1),
              Sql("SELECT COUNT(DISTINCT t.Traspaso) FROM traspasos t JOIN traspasosdetalle d ON "
                  "d.Traspaso=t.Traspaso WHERE t.Cancelado=0"));
    double importe = 0;
    for (std::size_t i = 1; i < filas.size(); ++i)
        importe += std::strtod(filas[i].back().c_str(), nullptr);
    EXPECT_NEAR(importe,
                Sql("SELECT SUM(d.Cantidad*d.Precio) FROM traspasos t JOIN traspasosdetalle d ON "
                    "d.Traspaso=t.Traspaso WHERE t.Cancelado=0"),
                0.01 * filas.size());

    // Products without adjustment, stock items only (Servicios): the count SQL gives.
    r = Imprime("Ajustes", {"chkDato(2)=1"}, "csv");
    ASSERT_EQ(r.estado, 0) << r.errores;
    EXPECT_EQ(static_cast<double>(Csv(Lee(Salida("csv"))).size() - 1),
              Sql("SELECT COUNT(*) FROM productos p WHERE Servicio=0 AND NOT EXISTS (SELECT 1 "
                  "FROM ajustes a WHERE a.Clave=p.Clave)"));

    // Losses of the users up to M (ANA, M ... but not MARIO): their value in the PDF's total.
    r = Imprime("Perdidas", {"txtDato(1)=M"}, "csv");
    ASSERT_EQ(r.estado, 0) << r.errores;
    filas = Csv(Lee(Salida("csv")));
    double perdido = 0;
    for (std::size_t i = 1; i < filas.size(); ++i)
        perdido += std::strtod(filas[i].back().c_str(), nullptr);
    EXPECT_NEAR(perdido,
                Sql("SELECT SUM(d.Cantidad*d.Costo) FROM perdidas p JOIN perdidasdetalle d ON "
                    "d.Perdida=p.Perdida WHERE p.Usuario<='M'"),
                0.01 * filas.size());
    EXPECT_GT(Sql("SELECT COUNT(*) FROM perdidas WHERE Usuario='MARIO'"), 0);
    EXPECT_EQ(empresa->tablasDeTrabajo(), 0);
}

// One adjustment through its format: offered only for a folio that exists; with VistaPrevia
// it goes to the screen whatever the form's destination.
TEST_F(ImpresionInventario, DocumentoDeAjuste) {
    const std::string folio = *empresa->valor("SELECT MAX(Ajuste) FROM ajustes");
    const std::string clave =
        *empresa->valor("SELECT Clave FROM ajustes WHERE Ajuste=" + folio + " LIMIT 1");
    auto r = Tzorep({"print", "Ajustes", "--set", "txtDato(2)=" + folio, "--set", "chkDato(3)=1",
                     "--to", "file", "--type", "pdf", "--out", Salida("pdf").string()});
    ASSERT_EQ(r.estado, 0) << r.errores;
    EXPECT_TRUE(Contiene(r.salida, "Ajuste de inventario")) << r.salida;
    EXPECT_TRUE(Contiene(r.salida, clave)) << r.salida;
    EXPECT_TRUE(Contiene(r.salida, "Autorizó")) << r.salida;
    r = Tzorep({"print", "Ajustes", "--set", "txtDato(2)=999999", "--set", "chkDato(3)=1"});
    EXPECT_EQ(r.estado, 2) << r.errores;  // the box stays disabled
}

TEST_F(ImpresionInventario, LaFormaMuestraLoQueLaEmpresaUsa) {
    const std::string producto = *empresa->valor("SELECT Clave FROM productos LIMIT 1");
    const std::string descrip =
        *empresa->valor("SELECT Descrip FROM productos WHERE Clave='" + producto + "'");
    auto r = Tzorep({"show", "Traspasos", "--json", "--set", "txtDato(1)=" + producto});
    ASSERT_EQ(r.estado, 0) << r.errores;
    EXPECT_TRUE(Contiene(r.salida, "\"caption\":\"" + descrip + "\"")) << r.salida;
    EXPECT_TRUE(Contiene(r.salida, "\"items\":[\"A\",\"B\"]")) << r.salida;
    EXPECT_TRUE(Contiene(r.salida, "\"Precio 5\"")) << r.salida;
    empresa->ejecutar("UPDATE configura SET Valor='0' WHERE Dato IN ('SeriesEnTra','SubLineas')");
    r = Tzorep({"show", "Traspasos", "--json"});
    EXPECT_TRUE(Contiene(Control(r.salida, "cmbDato(2)"),
                         "\"items\":[],\"enabled\":true,\"visible\":false"))
        << r.salida;
    r = Tzorep({"show", "Perdidas", "--json"});
    EXPECT_TRUE(Contiene(Control(r.salida, "dcmDato(5)"), "\"visible\":false")) << r.salida;
    EXPECT_TRUE(Contiene(Control(r.salida, "dcmDato(3)"), "\"visible\":true")) << r.salida;
    empresa->ejecutar("UPDATE configura SET Valor='1' WHERE Dato IN ('SeriesEnTra','SubLineas')");
}

TEST_F(ImpresionInventario, EntradasMalasYFallosNoDejanTablas) {
    for (const auto& [entrada, set] : std::vector<std::pair<std::string, std::string>>{
             {"Entradas", "txtDato(1)=P'1"},
             {"Traspasos", "mkeFecha(0)=31/02/2025"},
             {"Perdidas", "txtDato(1)=A\\B"},
             {"SeparacionMetales", "mkeFecha(1)=00/13/2025"},
             {"Ajustes", "txtDato(0)=O'HARA"}}) {
        auto r = Imprime(entrada, {set}, "pdf");
        EXPECT_EQ(r.estado, 1) << entrada << " " << set << "\n" << r.errores;
        EXPECT_FALSE(r.errores.empty());
    }
    // A price list the catalogue has no column for fails while filling: the table goes.
    empresa->ejecutar("UPDATE configura SET Valor='6' WHERE Dato='Precios'");
    auto r = Imprime("Entradas", {"chkXprod=1", "cmbDato(0)=Precio 6"}, "pdf");
    empresa->ejecutar("UPDATE configura SET Valor='5' WHERE Dato='Precios'");
    EXPECT_EQ(r.estado, 1) << r.errores;
    EXPECT_TRUE(Contiene(r.errores, "Precio6")) << r.errores;
    EXPECT_EQ(empresa->tablasDeTrabajo(), 0);
}

}  // namespace
}  // namespace paratzorep::cli
