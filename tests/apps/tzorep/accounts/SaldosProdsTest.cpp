// Product balances by customer end to end: the rows of a key range and their value against
// SQL, every file type, the selection formula handed to the runner.
#include "tests/apps/tzorep/accounts/DemoCuentas.h"

namespace paratzorep::cli {
namespace {

bool Contiene(const std::string& texto, const std::string& parte) {
    return texto.find(parte) != std::string::npos;
}

using SaldosProdsDemo = DemoCuentas;

TEST_F(SaldosProdsDemo, RangoDeClientesTiposYSolicitud) {
    const auto claves = bd->filas(
        "SELECT MIN(Cliente), (SELECT Cliente FROM saldosprodsctes GROUP BY Cliente ORDER BY "
        "Cliente LIMIT 1 OFFSET 3) FROM saldosprodsctes");
    ASSERT_EQ(claves.size(), 1u);
    const std::string c0 = claves[0][0], c1 = claves[0][1];
    const std::string donde =
        " FROM saldosprodsctes WHERE Cliente>='" + c0 + "' AND Cliente<='" + c1 + "'";
    const auto cuenta = std::stoul(*bd->valor("SELECT COUNT(*)" + donde));
    const double valor = std::stod(*bd->valor("SELECT ROUND(SUM(Importe),2)" + donde));
    ASSERT_GT(cuenta, 3u);
    const std::vector<std::string> ajustes = {"txtDato(0)=" + c0, "txtDato(1)=" + c1};

    const auto filas = FilasCsv(ImprimeYLee("SaldosProdsCtes", ajustes, "csv"));
    ASSERT_EQ(filas.size(), cuenta + 1);
    double suma = 0;
    for (std::size_t i = 1; i < filas.size(); ++i) suma += std::stod(filas[i][5]);
    EXPECT_NEAR(suma, valor, 0.005);
    const std::string pdf = ImprimeYLee("SaldosProdsCtes", ajustes, "pdf");
    EXPECT_TRUE(Contiene(pdf, "Clientes del " + c0 + " al " + c1)) << pdf;
    EXPECT_TRUE(Contiene(pdf, Importe(valor))) << pdf;
    for (const std::string tipo : {"txt", "rtf", "doc", "xls", "xlsx"})
        EXPECT_TRUE(Contiene(ImprimeYLee("SaldosProdsCtes", {"txtDato(0)=" + c0}, tipo), c0))
            << tipo;

    auto log = Solicitudes("SaldosProdsCtes", ajustes);
    ASSERT_EQ(log.size(), 1u);
    EXPECT_TRUE(Contiene(log[0], "\"plantilla\":\"saldosprodsctes.rpt\"")) << log[0];
    EXPECT_TRUE(Contiene(log[0], "\"formulaSeleccion\":\"{saldosprodsctes.Cliente}>='" + c0 +
                                     "' and {saldosprodsctes.Cliente}<='" + c1 + "'\""))
        << log[0];
    log = Solicitudes("SaldosProdsCtes", {});
    EXPECT_TRUE(Contiene(log[0], "\"formulaSeleccion\":\"\"")) << log[0];
    const auto r = Imprime("SaldosProdsCtes", {"txtDato(1)=C'1"},
                           {"--to", "file", "--type", "pdf", "--out", (tmp / "m.pdf").string()});
    EXPECT_EQ(r.estado, 1);
}

}  // namespace
}  // namespace paratzorep::cli
