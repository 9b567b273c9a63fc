// Product statements end to end on a demo company: each customer's statement of a product ends
// at the balance that the product balances report prints for that customer and product; every
// file type; the request's exact formula; refusals.
#include <map>

#include "tests/apps/tzorep/accounts/DemoCuentas.h"

namespace paratzorep::cli {
namespace {

bool Contiene(const std::string& texto, const std::string& parte) {
    return texto.find(parte) != std::string::npos;
}

using EdoCtaProdsDemo = DemoCuentas;

// The column of a CSV whose title is `titulo`.
std::size_t Columna(const std::vector<std::string>& titulos, const std::string& titulo) {
    const auto i = std::find(titulos.begin(), titulos.end(), titulo);
    EXPECT_NE(i, titulos.end()) << titulo;
    return static_cast<std::size_t>(i - titulos.begin());
}

TEST_F(EdoCtaProdsDemo, TerminaEnLosSaldosDeProductosPorCliente) {
    // Every balance of saldosprodsctes is the sum of its statement's movements and its last
    // running balance; no statement lacks its balance.
    EXPECT_EQ(
        bd->valor("SELECT COUNT(*) FROM saldosprodsctes s LEFT JOIN (SELECT Cliente,Producto,"
                  "SUM(CantidadCargo-CantidadAbono) AS Neto FROM edoctaspc GROUP BY Cliente,"
                  "Producto) e USING (Cliente,Producto) WHERE e.Neto IS NULL OR "
                  "ABS(e.Neto-s.Cantidad)>0.0005 OR ABS(s.Cantidad-(SELECT x.SaldoActual FROM "
                  "edoctaspc x WHERE x.Cliente=s.Cliente AND x.Producto=s.Producto ORDER BY "
                  "x.Fecha DESC,x.Id DESC LIMIT 1))>0.0005"),
        "0");
    EXPECT_EQ(bd->valor("SELECT COUNT(*) FROM (SELECT DISTINCT Cliente,Producto FROM edoctaspc) e "
                        "LEFT JOIN saldosprodsctes s USING (Cliente,Producto) WHERE s.Id IS NULL"),
              "0");

    const auto claves = bd->filas(
        "SELECT MIN(Cliente),(SELECT Cliente FROM saldosprodsctes GROUP BY Cliente ORDER BY "
        "Cliente LIMIT 1 OFFSET 4) FROM saldosprodsctes");
    const std::string c0 = claves[0][0], c1 = claves[0][1];
    const std::vector<std::string> rango = {"txtDato(0)=" + c0, "txtDato(1)=" + c1};

    // The statement's last balance of each customer and product, as printed.
    std::map<std::string, std::string> finales;
    auto filas = FilasCsv(ImprimeYLee("EdoCtaProductos", rango, "csv"));
    ASSERT_GT(filas.size(), 5u);
    const std::size_t cli = Columna(filas[0], "Cliente"), prod = Columna(filas[0], "Producto"),
                      saldo = Columna(filas[0], "Saldo");
    for (std::size_t i = 1; i < filas.size(); ++i)
        finales[filas[i][cli] + "|" + filas[i][prod]] = filas[i][saldo];
    EXPECT_EQ(filas.size() - 1,
              std::stoul(*bd->valor("SELECT COUNT(*) FROM edoctaspc WHERE Cliente>='" + c0 +
                                    "' AND Cliente<='" + c1 + "'")));

    // The same customers' balances as the product balances report prints them.
    std::map<std::string, std::string> saldos;
    filas = FilasCsv(ImprimeYLee("SaldosProdsCtes", rango, "csv"));
    ASSERT_GT(filas.size(), 1u);
    const std::size_t sCli = Columna(filas[0], "Cliente"), sProd = Columna(filas[0], "Producto"),
                      sCant = Columna(filas[0], "Cantidad");
    for (std::size_t i = 1; i < filas.size(); ++i)
        saldos[filas[i][sCli] + "|" + filas[i][sProd]] = filas[i][sCant];
    EXPECT_EQ(finales, saldos);

    const std::string nombre = *bd->valor("SELECT Nombre FROM clientes WHERE Clave='" + c0 + "'");
    const std::string pdf = ImprimeYLee("EdoCtaProductos", rango, "pdf");
    for (const std::string& s : {std::string("Estados de cuenta de productos con saldo"),
                                "Clientes del " + c0 + " al " + c1, nombre,
                                std::string("Saldo anterior"), std::string("Página 1 de")})
        EXPECT_TRUE(Contiene(pdf, s)) << s << "\n" << pdf.substr(0, 3000);
    for (const std::string tipo : {"txt", "rtf", "doc", "xls", "xlsx"})
        EXPECT_TRUE(Contiene(ImprimeYLee("EdoCtaProductos", {"txtDato(1)=" + c0}, tipo), c0))
            << tipo;
}

TEST_F(EdoCtaProdsDemo, SolicitudYRechazos) {
    const auto log =
        Solicitudes("EdoCtaProductos", {"mkeFecha(0)=01/08/2026", "mkeFecha(1)=31/10/2026",
                                        "txtDato(1)=C00003", "txtDato(2)=ENV-0001"});
    ASSERT_EQ(log.size(), 1u);
    for (const std::string s :
         {"\"plantilla\":\"edoctaprods.rpt\"",
          "\"formulaSeleccion\":\"{edoctaspc.Fecha}>=Date(2026,8,1) and "
          "{edoctaspc.Fecha}<=Date(2026,10,31) and {edoctaspc.Cliente}='C00003' and "
          "{edoctaspc.Producto}='ENV-0001'\"",
          "\"archivosDatos\":[]"})
        EXPECT_TRUE(Contiene(log[0], s)) << s << "\n" << log[0];

    const std::vector<std::string> archivo = {"--to", "file",  "--type",
                                              "pdf",  "--out", (tmp / "e.pdf").string()};
    for (const auto& [ajustes, mensaje] :
         std::vector<std::pair<std::vector<std::string>, std::string>>{
             {{"txtDato(0)=C'1"}, "no puede llevar comillas simples"},
             {{"mkeFecha(1)=31/13/2026"}, "no es una fecha válida"},
             {{"mkeFecha(0)=01/11/2026", "mkeFecha(1)=31/10/2026"},
              "la fecha inicial (01/11/2026) es posterior a la final (31/10/2026)"}}) {
        const auto r = Imprime("EdoCtaProductos", ajustes, archivo);
        EXPECT_EQ(r.estado, 1) << ajustes[0];
        EXPECT_TRUE(Contiene(r.errores, mensaje)) << r.errores;
    }
}

}  // namespace
}  // namespace paratzorep::cli
