// Charges end to end on a demo company: the rows and the total per currency against SQL, in
// the PDF and in the CSV; every file type of both sides; the request handed to the runner.
#include <regex>
#include <sstream>

#include "tests/apps/tzorep/accounts/DemoCuentas.h"

namespace paratzorep::cli {
namespace {

bool Contiene(const std::string& texto, const std::string& parte) {
    return texto.find(parte) != std::string::npos;
}

using CargosDemo = DemoCuentas;

// October's charges in pesos of the customers: only rows with a charge, sorted by amount
// within the currency, their sum; payments never appear.
TEST_F(CargosDemo, LosCargosDelPeriodoConSuTotal) {
    const std::string where =
        " FROM edoctacli WHERE CantidadCargo>0 AND IdMoneda=1 AND Fecha BETWEEN '2026-10-01' AND "
        "'2026-10-31'";
    const auto cuenta = std::stoul(*bd->valor("SELECT COUNT(*)" + where));
    const double suma = std::stod(*bd->valor("SELECT ROUND(SUM(CantidadCargo),2)" + where));
    ASSERT_GT(cuenta, 10u);
    const std::vector<std::string> ajustes = {"mkeFecha(0)=01/10/2026", "mkeFecha(1)=31/10/2026",
                                              "dcmDato(0)=MN", "cmbDato(0)=Importe"};
    const auto filas = FilasCsv(ImprimeYLee("CargosClientes", ajustes, "csv"));
    ASSERT_EQ(filas.size(), cuenta + 1);
    EXPECT_EQ(filas[0], (std::vector<std::string>{"Moneda", "Fecha", "Folio", "Cliente", "Nombre",
                                                  "Concepto", "Importe"}));
    double total = 0, anterior = 0;
    for (std::size_t i = 1; i < filas.size(); ++i) {
        const double importe = std::stod(filas[i][6]);
        EXPECT_GT(importe, 0);
        EXPECT_GE(importe, anterior) << "ordenado por importe";
        anterior = importe;
        total += importe;
    }
    EXPECT_NEAR(total, suma, 0.005);

    const std::string pdf = ImprimeYLee("CargosClientes", ajustes, "pdf");
    EXPECT_TRUE(Contiene(pdf, "Cargos a clientes, desde el 01/oct/2026 hasta el 31/oct/2026"))
        << pdf;
    EXPECT_TRUE(std::regex_search(pdf, std::regex("Total\\s+" + Importe(suma)))) << pdf;
    EXPECT_TRUE(Contiene(pdf, std::to_string(cuenta) + " cargos")) << pdf;
    EXPECT_FALSE(Contiene(pdf, "PAGO A ")) << pdf;
    EXPECT_TRUE(Contiene(pdf, "Página 1 de ")) << pdf;
    EXPECT_EQ(TablasDeTrabajo(), 0);
}

// Both sides to every file type: the first charge's account name and amount; the request.
TEST_F(CargosDemo, CadaTipoDeArchivoYLaSolicitud) {
    for (const bool clientes : {true, false}) {
        const std::string tabla = clientes ? "edoctacli" : "edoctaprov";
        const std::string catalogo = clientes ? "clientes" : "proveedores";
        const auto c = bd->filas("SELECT e.Clave, n.Nombre, ROUND(e.CantidadCargo,2) FROM " +
                                 tabla + " e JOIN " + catalogo +
                                 " n ON n.Clave=e.Clave WHERE e.CantidadCargo>0 ORDER BY e.Clave,"
                                 " e.Fecha, e.Id LIMIT 1");
        ASSERT_EQ(c.size(), 1u);
        const std::string entrada = clientes ? "CargosClientes" : "CargosProveedores";
        for (const std::string tipo : {"pdf", "txt", "rtf", "doc", "xls", "xlsx", "csv"}) {
            SCOPED_TRACE(entrada + " " + tipo);
            const std::string texto = ImprimeYLee(entrada, {"txtDato(0)=" + c[0][0]}, tipo);
            EXPECT_TRUE(Contiene(texto, c[0][1])) << texto;
            const double importe = std::stod(c[0][2]);
            EXPECT_TRUE(Contiene(texto, tipo == "csv" || tipo == "xls" || tipo == "xlsx"
                                            ? c[0][2].substr(0, c[0][2].find('.'))
                                            : Importe(importe)))
                << texto;
        }
    }
    EXPECT_EQ(TablasDeTrabajo(), 0);

    auto log = Solicitudes("CargosProveedores", {"mkeFecha(0)=01/09/2026", "dcmDato(0)=USD",
                                                 "txtDato(1)=P0003", "cmbDato(0)=#3"});
    ASSERT_EQ(log.size(), 1u);
    EXPECT_TRUE(Contiene(log[0], "\"plantilla\":\"cargosprov.rpt\"")) << log[0];
    EXPECT_TRUE(Contiene(log[0], "\"tituloVentana\":\"Cargos de proveedores\"")) << log[0];
    EXPECT_TRUE(
        Contiene(log[0],
                 "\"formulas\":[],\"camposOrden\":[{\"i\":0,\"texto\":\"+{edoctaprov.Clave}\"}],"
                 "\"formulaSeleccion\":\"{edoctaprov.CantidadCargo}>0 and "
                 "{edoctaprov.IdMoneda}=2 and {edoctaprov.Fecha}>=Date(2026,9,1) and "
                 "{edoctaprov.Clave}='P0003'\",\"archivosDatos\":[]"))
        << log[0];
    log = Solicitudes("CargosClientes", {});
    ASSERT_EQ(log.size(), 1u);
    EXPECT_TRUE(Contiene(
        log[0],
        "\"camposOrden\":[{\"i\":0,\"texto\":\"+{edoctacli.Fecha}\"}],\"formulaSeleccion\":\""
        "{edoctacli.CantidadCargo}>0\""))
        << log[0];

    const auto r = Imprime("CargosClientes", {"txtDato(1)=C'9"},
                           {"--to", "file", "--type", "pdf", "--out", (tmp / "m.pdf").string()});
    EXPECT_EQ(r.estado, 1);
    EXPECT_TRUE(Contiene(r.errores, "no puede llevar comillas simples")) << r.errores;
}

}  // namespace
}  // namespace paratzorep::cli
