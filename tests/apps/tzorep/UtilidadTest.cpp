// The profit report end to end through `tzorep print` on six weeks of the demo company: every
// template and every file type, the figures read back against SQL of the test's own, and the
// form's refusals.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <sstream>

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

// A CSV of the report's data: its title row and its rows, split at commas outside quotes.
std::vector<std::vector<std::string>> Csv(const std::string& texto) {
    std::vector<std::vector<std::string>> filas;
    std::vector<std::string> fila;
    std::string campo;
    bool comillas = false;
    for (std::size_t i = texto.rfind("\xEF\xBB\xBF", 0) == 0 ? 3 : 0; i < texto.size(); ++i) {
        const char c = texto[i];
        if (comillas) {
            if (c == '"' && i + 1 < texto.size() && texto[i + 1] == '"') {
                campo += '"';
                ++i;
            } else if (c == '"') {
                comillas = false;
            } else {
                campo += c;
            }
        } else if (c == '"') {
            comillas = true;
        } else if (c == ',') {
            fila.push_back(campo), campo.clear();
        } else if (c == '\n') {
            fila.push_back(campo), campo.clear();
            filas.push_back(fila), fila.clear();
        } else if (c != '\r') {
            campo += c;
        }
    }
    return filas;
}

class Utilidad : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        empresa.emplace();
        schema::cargarArchivo(empresa->mysql(), schema::carpetaEsquemas() / "empresa.sql");
        auto c = schema::Conexion::abrir(empresa->servidor(), empresa->nombre());
        schema::OpcionesDemo op;
        op.baseEmpresa = empresa->nombre();
        op.baseGeneral = "";
        op.dias = 42;
        schema::generarDemo(c, op);
        pruebas::BaseDeDatosDePrueba modelos;
        schema::cargarArchivo(modelos.mysql(), schema::carpetaEsquemas() / "tanzoreportes.sql");
        modelos.ejecutar("CREATE DATABASE IF NOT EXISTS generaltanzo;"
                         "CREATE DATABASE IF NOT EXISTS tanzoreportes; CREATE TABLE IF NOT EXISTS "
                         "tanzoreportes.utilidadxdias LIKE `" +
                         modelos.nombre() + "`.utilidadxdias");
        const auto& sv = empresa->servidor();
        std::ofstream(home->ruta() / "tzorep.ini")
            << "[BaseDD]\ncRuta=" << sv.host << "\ncUsuario=" << sv.usuario
            << "\ncPassword=" << sv.password << "\ncPuerto=" << sv.puerto
            << "\ncMiBase=" << empresa->nombre() << "\n";
        auto r = Tzorep({"templates", "import", std::string(TZ_SOURCE_DIR) + "/templates"});
        ASSERT_EQ(r.estado, 0) << r.errores;
    }
    static void TearDownTestSuite() { empresa.reset(); }

    static pruebas::ResultadoPrograma Tzorep(std::vector<std::string> args) {
        args.insert(args.begin(), {"--home", home->ruta().string()});
        return pruebas::ejecutarTzorep(args, {}, std::chrono::seconds(300));
    }
    static pruebas::ResultadoPrograma Imprime(std::vector<std::string> sets, const std::string& tipo,
                                              const std::filesystem::path& salida) {
        std::vector<std::string> args = {"print", "Utilidad"};
        for (const auto& s : sets) args.insert(args.end(), {"--set", s});
        args.insert(args.end(), {"--to", "file", "--type", tipo, "--out", salida.string()});
        return Tzorep(args);
    }
    static double Sql(const std::string& sql) {
        return std::strtod(empresa->valor(sql).value_or("0").c_str(), nullptr);
    }

    static inline std::optional<pruebas::BaseDeDatosDePrueba> empresa;
    static inline std::unique_ptr<pruebas::CarpetaTemporal> home =
        std::make_unique<pruebas::CarpetaTemporal>();
    pruebas::CarpetaTemporal tmp;
};

// Every template reached from the form, to PDF: title, headings, the page count.
TEST_F(Utilidad, CadaPlantillaEnPdf) {
    struct Caso {
        std::vector<std::string> sets;
        std::vector<std::string> textos;
    };
    const std::vector<Caso> casos = {
        {{}, {"Utilidad", "Total del día", "Total del periodo", "Gastos del periodo", "Fac. A"}},
        {{"chkTotalizado=1"}, {"Utilidad", "Documento", "Total del día", "Rem. "}},
        {{"chkXlin=1", "optQue(1)=1"}, {"Línea:", "Total de la línea", "Notas de crédito"}},
        {{"chkXdias=1"}, {"Utilidad por días y vendedor", "Venta bruta", "Utilidad menos gastos"}},
    };
    for (const auto& c : casos) {
        const auto pdf = tmp / "utilidad.pdf";
        auto r = Imprime(c.sets, "pdf", pdf);
        ASSERT_EQ(r.estado, 0) << r.errores;
        auto texto = lector::Ejecutar("pdftotext -layout " + lector::Comillas(pdf.string()) + " -");
        ASSERT_EQ(texto.estado, 0);
        for (const auto& t : c.textos) EXPECT_TRUE(Contiene(texto.texto, t)) << t;
        EXPECT_TRUE(Contiene(texto.texto, "Página 1 de ")) << texto.texto.substr(0, 2000);
    }
    EXPECT_EQ(empresa->tablasDeTrabajo(), 0);
}

// Every file type of the detail template, read back by a reader of its own.
TEST_F(Utilidad, CadaTipoDeArchivo) {
    const std::vector<std::pair<std::string, std::string>> tipos = {
        {"txt", ""},
        {"rtf", lector::Lector() + " rtf"},
        {"doc", lector::Lector() + " rtf"},
        {"xls", lector::Lector() + " xls"},
        {"xlsx", lector::Lector() + " xlsx"},
    };
    for (const auto& [tipo, comando] : tipos) {
        SCOPED_TRACE(tipo);
        const auto salida = tmp / ("utilidad." + tipo);
        auto r = Imprime({"chkTotalizado=1"}, tipo, salida);
        ASSERT_EQ(r.estado, 0) << r.errores;
        const std::string texto =
            comando.empty()
                ? Lee(salida)
                : lector::Ejecutar(comando + " " + lector::Comillas(salida.string()) + " 2>&1").texto;
        EXPECT_TRUE(Contiene(texto, "Utilidad")) << texto.substr(0, 1000);
        EXPECT_TRUE(Contiene(texto, "% Vta.")) << texto.substr(0, 1000);
    }
}

// The detail rows with the period's returns as rows: sales less returns less credit notes, as
// the company's tables give them.
TEST_F(Utilidad, CifrasDelCsvContraSql) {
    const auto csv = tmp / "utilidad.csv";
    auto r = Imprime({"optQue(1)=1"}, "csv", csv);
    ASSERT_EQ(r.estado, 0) << r.errores;
    const auto filas = Csv(Lee(csv));
    ASSERT_GT(filas.size(), 100u);
    const auto& titulos = filas[0];
    EXPECT_EQ(titulos, (std::vector<std::string>{"Fecha", "Documento", "Cliente", "Vend.",
                                                 "Artículo", "Descripción", "Cantidad",
                                                 "Precio neto", "Venta", "Costo", "Utilidad",
                                                 "% Vta.", "% Costo"}));
    double venta = 0, cantidad = 0;
    for (std::size_t i = 1; i < filas.size(); ++i) {
        cantidad += std::strtod(filas[i][6].c_str(), nullptr);
        venta += std::strtod(filas[i][8].c_str(), nullptr);
    }
    const std::string periodo = "Fecha>=(SELECT MIN(Fecha) FROM facturas WHERE Fecha>'0000-00-00') "
                                "AND Fecha<=(SELECT MAX(Fecha) FROM facturas)";
    auto ventas = [&](const std::string& t, const std::string& que) {
        return Sql("SELECT SUM(" + que + ") FROM " + t + " d JOIN " + t.substr(0, t.size() - 7) +
                   " v ON v.Id=d.Id WHERE v.Cancelada=0 AND v.Afectada=1 AND v.PdeV=0 AND v." +
                   periodo);
    };
    const std::string importe =
        "d.Cantidad*d.PrecioNeto*IF(v.Moneda<>1,v.Paridad,1)*(1-v.Desc1/100)*(1-v.Desc2/100)*"
        "(1-v.Desc3/100)*(1-v.Desc4/100)*(1-v.Desc5/100)";
    const double devuelto = Sql(
        "SELECT SUM(d.Cantidad) FROM devolucionctesdet d JOIN devolucionctes v ON "
        "v.DevolucionCtes=d.DevolucionCtes WHERE v.Cancelada=0 AND v." + periodo);
    const double valorDevuelto = Sql(
        "SELECT SUM(d.Cantidad*d.Precio*IF(v.Moneda<>1,v.Paridad,1)*(1-v.Desc1/100)*"
        "(1-v.Desc2/100)*(1-v.Desc3/100)*(1-v.Desc4/100)*(1-v.Desc5/100)) FROM devolucionctesdet "
        "d JOIN devolucionctes v ON v.DevolucionCtes=d.DevolucionCtes WHERE v.Cancelada=0 AND v." +
        periodo);
    const double notas = Sql("SELECT SUM(Subtotal*IF(Moneda<>1,Paridad,1)) FROM notascredito "
                             "WHERE Devolucion=0 AND Cancelada=0 AND " + periodo);
    EXPECT_GT(devuelto, 0);
    EXPECT_GT(notas, 0);
    EXPECT_NEAR(cantidad, ventas("facturasdetalle", "d.Cantidad") +
                              ventas("remisionesdetalle", "d.Cantidad") - devuelto,
                0.01);
    const double esperada = ventas("facturasdetalle", importe) +
                            ventas("remisionesdetalle", importe) - valorDevuelto - notas;
    EXPECT_NEAR(venta, esperada, 0.005 * static_cast<double>(filas.size()));
    EXPECT_EQ(empresa->tablasDeTrabajo(), 0);
}

// By days, read back from the spreadsheet: each seller's sales are the sum of their documents.
TEST_F(Utilidad, PorDiasContraSql) {
    const auto csv = tmp / "dias.csv";
    auto r = Imprime({"chkXdias=1", "cmbVentas=#1"}, "csv", csv);
    ASSERT_EQ(r.estado, 0) << r.errores;
    const auto filas = Csv(Lee(csv));
    ASSERT_GT(filas.size(), 5u);
    EXPECT_EQ(filas[0][0], "Vendedor");
    EXPECT_EQ(filas[0][6], "Venta");
    std::map<std::string, double> porVendedor;
    for (std::size_t i = 1; i < filas.size(); ++i)
        porVendedor[filas[i][0]] += std::strtod(filas[i][6].c_str(), nullptr);
    for (const auto& [vendedor, venta] : porVendedor) {
        SCOPED_TRACE(vendedor);
        EXPECT_NEAR(venta,
                    Sql("SELECT SUM(d.Cantidad*d.PrecioNeto*IF(v.Moneda<>1,v.Paridad,1)*"
                        "(1-v.Desc1/100)*(1-v.Desc2/100)*(1-v.Desc3/100)*(1-v.Desc4/100)*"
                        "(1-v.Desc5/100)) FROM remisionesdetalle d JOIN remisiones v ON v.Id=d.Id "
                        "WHERE v.Cancelada=0 AND v.Afectada=1 AND v.PdeV=0 AND v.Vendedor='" +
                        vendedor + "' AND v.Fecha>=(SELECT MIN(Fecha) FROM facturas WHERE "
                        "Fecha>'0000-00-00') AND v.Fecha<=(SELECT MAX(Fecha) FROM facturas)"),
                    0.01 * static_cast<double>(filas.size()));
    }
}

TEST_F(Utilidad, RechazosConElMensajeDeLaForma) {
    const std::vector<std::pair<std::string, std::string>> casos = {
        {"txtDato(0)=C'01", "El dato 'Cliente' no puede llevar comillas simples"},
        {"txtDato(1)=A\\B", "El dato 'Producto' no puede llevar comillas simples (') ni diagonales"},
        {"mkeFecha(1)=30/02/2026", "La fecha final ('30/02/2026') no es una fecha válida"},
    };
    for (const auto& [set, mensaje] : casos) {
        auto r = Imprime({set}, "pdf", tmp / "no.pdf");
        EXPECT_EQ(r.estado, 1) << set;
        EXPECT_TRUE(Contiene(r.errores, "Utilidad: " + mensaje)) << r.errores;
    }
    EXPECT_FALSE(std::filesystem::exists(tmp / "no.pdf"));
}

}  // namespace
}  // namespace paratzorep::cli
