// Profit by seller: the exact conditions and fill, and the set-based fill proved equal to the
// rule walked line by line (each line, its product's cost looked up, each seller's documents
// counted) on a small company with sales without a seller, a seller unknown to the catalogue,
// a document without lines, a product missing from the catalogue and cancelled documents.
#include "reports/sales/RepAdmUtilXvend.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <optional>

#include "schema/Esquema.h"
#include "support/EmpresaComisiones.h"
#include "support/NombresDeCaso.h"
#include "support/Soporte.h"

namespace paratzorep::reports {
namespace {

TEST(RepAdmUtilXvend, TextosExactos) {
    EXPECT_EQ(RepAdmUtilXvend::Condiciones("facturas", "2026-10-01", "2026-10-31", "C1", "V1"),
              " WHERE Cancelada=0 AND Fecha>='2026-10-01' AND Fecha<='2026-10-31' AND "
              "Cliente='C1' AND facturas.Vendedor='V1'");
    EXPECT_EQ(RepAdmUtilXvend::Condiciones("remisiones", "", "2026-10-31", "", "V1"),
              " WHERE Cancelada=0 AND Fecha<='2026-10-31' AND remisiones.Vendedor='V1'");
    EXPECT_EQ(RepAdmUtilXvend::Condiciones("facturas", "", "", "", ""), " WHERE Cancelada=0");
    EXPECT_EQ(RepAdmUtilXvend::FormulaTitulo("01/10/2026", "31/10/2026"),
              "Titulo='Del 1 de octubre de 2026 al 31 de octubre de 2026'");
    EXPECT_EQ(RepAdmUtilXvend::FormulaTitulo("", ""), "Titulo='Todas las fechas'");
    EXPECT_EQ(
        RepAdmUtilXvend::SqlLlenado("tbltemp9", " WHERE Cancelada=0", " WHERE Cancelada=0"),
        "INSERT INTO tbltemp9 (Vendedor,Nombre,Ventas,AlCosto,AlCostoProm,NumeroVentas) SELECT "
        "Vendedor,MIN(Nombre),SUM(Ventas),SUM(AlCosto),SUM(AlCostoProm),SUM(NumeroVentas) FROM "
        "(SELECT IFNULL(vendedores.Clave,'') AS Vendedor,IFNULL(MIN(vendedores.Nombre),'*** SIN "
        "VENDEDOR') AS Nombre,SUM(IFNULL(Cantidad,0)*IFNULL(PrecioNeto,0)) AS Ventas,"
        "SUM(IFNULL(Cantidad,0)*IFNULL(p.CostoActual,0)) AS AlCosto,"
        "SUM(IFNULL(Cantidad,0)*IFNULL(CostoPromedio,0)) AS AlCostoProm,COUNT(DISTINCT "
        "facturas.Id) AS NumeroVentas FROM facturas LEFT JOIN facturasdetalle on "
        "facturas.Id=facturasdetalle.Id LEFT JOIN vendedores on facturas.Vendedor="
        "vendedores.Clave LEFT JOIN (SELECT Clave AS ClaveProducto,Costo AS CostoActual FROM "
        "productos) p ON p.ClaveProducto=facturasdetalle.Producto WHERE Cancelada=0 GROUP BY "
        "vendedores.Clave UNION ALL SELECT IFNULL(vendedores.Clave,'') AS Vendedor,"
        "IFNULL(MIN(vendedores.Nombre),'*** SIN VENDEDOR') AS Nombre,"
        "SUM(IFNULL(Cantidad,0)*IFNULL(PrecioNeto,0)) AS Ventas,"
        "SUM(IFNULL(Cantidad,0)*IFNULL(p.CostoActual,0)) AS AlCosto,"
        "SUM(IFNULL(Cantidad,0)*IFNULL(CostoPromedio,0)) AS AlCostoProm,COUNT(DISTINCT "
        "remisiones.Id) AS NumeroVentas FROM remisiones LEFT JOIN remisionesdetalle on "
        "remisiones.Id=remisionesdetalle.Id LEFT JOIN vendedores on remisiones.Vendedor="
        "vendedores.Clave LEFT JOIN (SELECT Clave AS ClaveProducto,Costo AS CostoActual FROM "
        "productos) p ON p.ClaveProducto=remisionesdetalle.Producto WHERE Cancelada=0 GROUP BY "
        "vendedores.Clave) v GROUP BY Vendedor ORDER BY Vendedor");
}

struct CasoLlenado {
    const char* nombre;
    std::string desde, hasta, cliente, vendedor;
};

class LlenadoUtilXvendTest : public ::testing::TestWithParam<CasoLlenado> {
  protected:
    static void SetUpTestSuite() { pruebas::CreaModelosComisiones(); }

    void SetUp() override {
        bd.emplace();
        schema::cargarArchivo(bd->mysql(), schema::carpetaEsquemas() / "empresa.sql");
        bd->ejecutar(pruebas::kEmpresaComisiones);
        // Costs, a seller unknown to the catalogue, a document without lines and a product
        // missing from the catalogue.
        bd->ejecutar(
            "UPDATE productos SET Costo=CASE Clave WHEN 'P1' THEN 150 WHEN 'P2' THEN 60.5 WHEN "
            "'P3' THEN 55 ELSE 40 END;"
            "UPDATE facturasdetalle SET CostoPromedio=PrecioNeto*0.55;"
            "UPDATE remisionesdetalle SET CostoPromedio=PrecioNeto*0.6;"
            "INSERT INTO facturas (Id,Serie,Factura,Fecha,Cliente,Vendedor,Cancelada,Subtotal) "
            "VALUES (9,'A',109,'2026-10-26','C1','V9',0,90),(10,'A',110,'2026-10-27','C2','V2',"
            "0,0);"
            "INSERT INTO facturasdetalle (Id,Partida,Producto,Cantidad,PrecioNeto,CostoPromedio) "
            "VALUES (9,1,'P1',1,90,50),(9,2,'NOESTA',2,10,4);");
        bd->ejecutar("CREATE TABLE uxv LIKE tanzoreportes.utilidadxvendedor");
    }

    // The rule, line by line: "Vendedor|Nombre|Ventas|AlCosto|AlCostoProm|NumeroVentas".
    std::vector<std::string> Regla(const CasoLlenado& c) {
        struct Fila {
            std::string nombre;
            double ventas = 0, alCosto = 0, alCostoProm = 0;
            long numero = 0;
        };
        std::map<std::string, Fila> filas;
        auto num = [](const std::string& s) { return s.empty() ? 0.0 : std::stod(s); };
        for (const std::string t : {"facturas", "remisiones"}) {
            const std::string w =
                RepAdmUtilXvend::Condiciones(t, c.desde, c.hasta, c.cliente, c.vendedor);
            for (const auto& l :
                 bd->filas("SELECT " + t +
                           ".Id,vendedores.Clave,vendedores.Nombre,Cantidad,PrecioNeto,Producto,"
                           "CostoPromedio FROM " +
                           t + " LEFT JOIN " + t + "detalle on " + t + ".Id=" + t +
                           "detalle.Id LEFT JOIN vendedores on " + t +
                           ".Vendedor=vendedores.Clave" + w + " ORDER BY Fecha")) {
                auto& f = filas[l[1]];
                f.nombre = l[1].empty() ? RepAdmUtilXvend::kSinVendedor : l[2];
                const double cantidad = num(l[3]);
                const auto costo =
                    bd->valor("SELECT Costo FROM productos WHERE Clave='" + l[5] + "'");
                f.ventas += cantidad * num(l[4]);
                f.alCosto += cantidad * num(costo.value_or(""));
                f.alCostoProm += cantidad * num(l[6]);
            }
        }
        std::vector<std::string> r;
        for (auto& [clave, f] : filas) {
            for (const std::string t : {"facturas", "remisiones"}) {
                // Sales without a known seller are counted under the row that holds them.
                const std::string delVendedor =
                    clave.empty() ? " AND Vendedor NOT IN (SELECT Clave FROM vendedores)"
                                  : " AND Vendedor='" + clave + "'";
                f.numero += std::stol(*bd->valor(
                    "SELECT COUNT(*) FROM " + t +
                    RepAdmUtilXvend::Condiciones(t, c.desde, c.hasta, c.cliente, c.vendedor) +
                    delVendedor));
            }
            r.push_back(Texto(clave, f.nombre, f.ventas, f.alCosto, f.alCostoProm, f.numero));
        }
        return r;
    }

    static std::string Texto(const std::string& clave, const std::string& nombre, double v,
                             double c, double p, long n) {
        char b[160];
        std::snprintf(b, sizeof b, "%.4f|%.4f|%.4f|%ld", v, c, p, n);
        return clave + "|" + nombre + "|" + b;
    }

    std::optional<pruebas::BaseDeDatosDePrueba> bd;
};

TEST_P(LlenadoUtilXvendTest, IgualALaReglaPartidaPorPartida) {
    const auto& c = GetParam();
    bd->ejecutar(RepAdmUtilXvend::SqlLlenado(
        "uxv", RepAdmUtilXvend::Condiciones("facturas", c.desde, c.hasta, c.cliente, c.vendedor),
        RepAdmUtilXvend::Condiciones("remisiones", c.desde, c.hasta, c.cliente, c.vendedor)));
    std::vector<std::string> llenado;
    for (const auto& f : bd->filas("SELECT Vendedor,Nombre,Ventas,AlCosto,AlCostoProm,"
                                   "NumeroVentas FROM uxv ORDER BY Vendedor"))
        llenado.push_back(
            Texto(f[0], f[1], std::stod(f[2]), std::stod(f[3]), std::stod(f[4]), std::stol(f[5])));
    const auto regla = Regla(c);
    ASSERT_FALSE(regla.empty());
    EXPECT_EQ(llenado, regla);
}

INSTANTIATE_TEST_SUITE_P(Casos, LlenadoUtilXvendTest,
                         ::testing::Values(CasoLlenado{"sin filtros", "", "", "", ""},
                                           CasoLlenado{"octubre", "2026-10-01", "2026-10-31", "",
                                                       ""},
                                           CasoLlenado{"un cliente", "", "", "C1", ""},
                                           CasoLlenado{"un vendedor", "2026-10-01", "", "", "V1"}),
                         pruebas::PorNombre());

// By hand, October: V1 has F1 (2×300 + 4×100), F2 (100 as it stands, no currency
// conversion), F3 (300 + 200), F8 (3×150) and R1, R2 (300.50, 3×150): 2,800.50 in 6 sales; V2 has
// F6 and F10, a sale without lines;
// "*** SIN VENDEDOR" holds F7 (no seller) and F9 (V9, unknown): 400 + 90 + 20 in 2 sales.
TEST_F(LlenadoUtilXvendTest, CifrasAMano) {
    bd->ejecutar(RepAdmUtilXvend::SqlLlenado(
        "uxv", RepAdmUtilXvend::Condiciones("facturas", "2026-10-01", "2026-10-31", "", ""),
        RepAdmUtilXvend::Condiciones("remisiones", "2026-10-01", "2026-10-31", "", "")));
    EXPECT_EQ(bd->filas("SELECT Vendedor,Nombre,ROUND(Ventas,2),NumeroVentas FROM uxv ORDER BY "
                        "Vendedor"),
              (std::vector<std::vector<std::string>>{{"", "*** SIN VENDEDOR", "510.00", "2"},
                                                     {"V1", "ANA LOPEZ", "2800.50", "6"},
                                                     {"V2", "BETO RUIZ", "700.00", "2"},
                                                     {"V3", "CARMEN DIAZ", "80.00", "1"}}));
}

}  // namespace
}  // namespace paratzorep::reports
