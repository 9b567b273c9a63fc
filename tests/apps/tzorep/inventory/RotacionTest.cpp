// Product rotation end to end on a demo company with a short history: the rows, the first
// band's sales and the stock value read back from CSV and PDF against SQL run apart, every file
// type, the request, the brand list hidden by its setting, refusals and a failed fill.
#include <algorithm>

#include "tests/apps/tzorep/accounts/DemoCuentas.h"

namespace paratzorep::cli {
namespace {

bool Contiene(const std::string& texto, const std::string& parte) {
    return texto.find(parte) != std::string::npos;
}

class RotacionDemo : public DemoCuentas {
  protected:
    static void SetUpTestSuite() {
        DemoCuentas::SetUpTestSuite();
        pruebas::BaseDeDatosDePrueba b;
        schema::cargarArchivo(b.mysql(), schema::carpetaEsquemas() / "tanzoreportes.sql");
        b.ejecutar("CREATE TABLE IF NOT EXISTS tanzoreportes.rotacionprods LIKE `" + b.nombre() +
                   "`.rotacionprods");
    }
};

TEST_F(RotacionDemo, CifrasTiposYSolicitud) {
    const std::string d = *bd->valor("SELECT MAX(Fecha) FROM historicoalmacen");
    ASSERT_EQ(d, "2026-10-31");
    const std::string con = " JOIN productos p ON p.Clave=v.Producto AND p.Existencia>0";
    // Units sold from 10-01 to 10-31 by the products with stock, and their value at the date.
    const double ventas = std::stod(*bd->valor(
        "SELECT SUM(Cantidad) FROM (SELECT Producto,Cantidad FROM remisiones r JOIN "
        "remisionesdetalle USING (Id) WHERE r.Afectada=1 AND r.Cancelada=0 AND r.Fecha BETWEEN "
        "'2026-10-01' AND '2026-10-31' UNION ALL SELECT Producto,Cantidad FROM facturas f JOIN "
        "facturasdetalle USING (Id) WHERE f.Afectada=1 AND f.Cancelada=0 AND f.Fecha BETWEEN "
        "'2026-10-01' AND '2026-10-31' UNION ALL SELECT Producto,Cantidad FROM ticketsdetalle "
        "WHERE Fecha BETWEEN '2026-10-01' AND '2026-10-31') v" +
        con));
    const double valor = std::stod(*bd->valor(
        "SELECT ROUND(SUM(h.ExistenciaActual*h.CostoPromedio),2) FROM historicoalmacen h JOIN "
        "(SELECT Producto,MAX(Id) AS Ultimo FROM historicoalmacen WHERE Fecha<='2026-10-31' "
        "GROUP BY Producto) v ON h.Id=v.Ultimo" +
        con));
    const auto cuenta = std::stoul(*bd->valor("SELECT COUNT(*) FROM productos WHERE Existencia>0"));
    ASSERT_GT(ventas, 0);

    const auto filas = FilasCsv(ImprimeYLee("RotacionProductos", {}, "csv"));
    ASSERT_EQ(filas.size(), cuenta + 1);
    const auto& t = filas[0];
    const auto col = [&t](const std::string& titulo) {
        return static_cast<std::size_t>(std::find(t.begin(), t.end(), titulo) - t.begin());
    };
    const std::size_t c30 = col("Ventas 0-30"), cValor = col("Valor"),
                      c90 = col("Ventas más de 90");
    ASSERT_LT(cValor, t.size());
    double suma30 = 0, sumaValor = 0;
    for (std::size_t i = 1; i < filas.size(); ++i) {
        suma30 += std::stod(filas[i][c30]);
        sumaValor += std::stod(filas[i][cValor]);
        EXPECT_EQ(filas[i][c90], "0.000") << i;
    }
    EXPECT_NEAR(suma30, ventas, 0.001);
    EXPECT_NEAR(sumaValor, valor, 0.05);

    const std::string pdf = ImprimeYLee("RotacionProductos", {}, "pdf");
    for (const std::string& s :
         {std::string("Rotación de productos al 31 de octubre de 2026"),
          std::string("Productos con existencia"), Importe(valor), std::string("Página 1 de")})
        EXPECT_TRUE(Contiene(pdf, s)) << s << "\n" << pdf.substr(0, 3000);
    const std::string clave = filas[1][col("Clave")];
    for (const std::string tipo : {"txt", "rtf", "doc", "xls", "xlsx"})
        EXPECT_TRUE(Contiene(ImprimeYLee("RotacionProductos", {"optProds(1)=1"}, tipo), clave))
            << tipo;

    const auto log = Solicitudes("RotacionProductos", {"txtDato(0)=" + clave});
    ASSERT_EQ(log.size(), 1u);
    for (const std::string s : {"\"plantilla\":\"rotacionprods.rpt\"", "\"rotacionprods*tbltemp",
                                "\"formulaSeleccion\":\"\""})
        EXPECT_TRUE(Contiene(log[0], s)) << s << "\n" << log[0];
    EXPECT_EQ(TablasDeTrabajo(), 0);
}

TEST_F(RotacionDemo, MarcasOcultasRechazosYFallas) {
    bd->ejecutar("UPDATE configura SET Valor='0' WHERE Dato='Marcas'");
    auto r = Tzorep({"show", "RotacionProductos", "--json"});
    ASSERT_EQ(r.estado, 0) << r.errores;
    const auto i = r.salida.find("\"name\":\"dcmDato(6)\"");
    ASSERT_NE(i, std::string::npos) << r.salida;
    EXPECT_TRUE(Contiene(r.salida.substr(i, r.salida.find('}', i) - i), "\"visible\":false"))
        << r.salida;

    const auto salida = (tmp / "r.pdf").string();
    const std::vector<std::string> archivo = {"--to", "file", "--type", "pdf", "--out", salida};
    for (const auto& [ajuste, mensaje] : std::vector<std::pair<std::string, std::string>>{
             {"txtDato(1)=P'1", "no puede llevar comillas simples"},
             {"mkeFecha(0)=31/02/2026", "no es una fecha válida"}}) {
        r = Imprime("RotacionProductos", {ajuste}, archivo);
        EXPECT_EQ(r.estado, 1) << ajuste;
        EXPECT_TRUE(Contiene(r.errores, mensaje)) << r.errores;
    }
    bd->ejecutar("DROP TABLE ticketsdetalle");
    r = Imprime("RotacionProductos", {}, archivo);
    EXPECT_EQ(r.estado, 1);
    EXPECT_TRUE(Contiene(r.errores, "las ventas en tickets")) << r.errores;
    EXPECT_EQ(TablasDeTrabajo(), 0);
}

}  // namespace
}  // namespace paratzorep::cli
