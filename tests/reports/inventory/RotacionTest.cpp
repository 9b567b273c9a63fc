// Product rotation: the exact product conditions and fill statements, and the set-based fill
// proved equal to the rule walked product by product (a query for the alternate code, one for
// the history, one per sales document and band, one for the last purchase) on a small company
// with a sale on each band boundary, cancelled and unapplied documents, a movement captured
// late with an earlier date, a product never bought and one with alternate codes.
#include "reports/inventory/RepAdmRotacion.h"

#include <gtest/gtest.h>

#include <optional>

#include "schema/Esquema.h"
#include "support/NombresDeCaso.h"
#include "support/Soporte.h"
#include "toolkit/Fechas.h"

namespace paratzorep::reports {
namespace {

using Filtros = RepAdmRotacion::Filtros;

struct CasoCondicion {
    const char* nombre;
    Filtros filtros;
    const char* esperada;
};

class CondicionesRotacion : public ::testing::TestWithParam<CasoCondicion> {};

TEST_P(CondicionesRotacion, SonLasDelSistema) {
    EXPECT_EQ(RepAdmRotacion::Condiciones(GetParam().filtros), GetParam().esperada);
}

INSTANTIATE_TEST_SUITE_P(
    Tabla, CondicionesRotacion,
    ::testing::Values(
        CasoCondicion{"con existencia", Filtros{}, " WHERE Existencia>0"},
        CasoCondicion{"todos", Filtros{false, "", "", 0, 0}, ""},
        CasoCondicion{"producto", Filtros{false, "FER-0001", "", 0, 0}, " WHERE Clave='FER-0001'"},
        CasoCondicion{"todo en su orden", Filtros{true, "A1", "P0003", 4, 7},
                      " WHERE Existencia>0 AND Clave='A1' AND Linea=4 AND (Proveedor1='P0003' "
                      "OR Proveedor2='P0003') AND Marca=7"},
        CasoCondicion{"proveedor y marca", Filtros{false, "", "P0001", 0, 2},
                      " WHERE (Proveedor1='P0001' OR Proveedor2='P0001') AND Marca=2"}),
    pruebas::PorNombre());

TEST(RepAdmRotacion, SumaDiasYSentencias) {
    EXPECT_EQ(RepAdmRotacion::SumaDias("2026-03-01", -1), "2026-02-28");
    EXPECT_EQ(RepAdmRotacion::SumaDias("2024-03-30", -30), "2024-02-29");
    EXPECT_EQ(RepAdmRotacion::SumaDias("2026-01-15", -90), "2025-10-17");
    EXPECT_EQ(RepAdmRotacion::SumaDias("31/10/2026", -1), "");
    const auto s = RepAdmRotacion::SqlLlenado("tbltemp3", " WHERE Existencia>0", "2026-10-31");
    ASSERT_EQ(s.size(), 6u);
    EXPECT_EQ(s[0],
              "INSERT INTO tbltemp3 (ClaveProd,Fecha,ClaveAlterna,IdKardex) SELECT "
              "Clave,'2026-10-31',IFNULL((SELECT ClaveAlterna FROM clavesalternas WHERE "
              "clavesalternas.ClaveProducto=productos.Clave ORDER BY ClaveAlterna LIMIT 1),''),"
              "(SELECT historicoalmacen.Id FROM historicoalmacen WHERE "
              "historicoalmacen.Producto=productos.Clave AND historicoalmacen.Fecha<='2026-10-31' "
              "ORDER BY historicoalmacen.Id DESC LIMIT 1) FROM productos WHERE Existencia>0 "
              "ORDER BY Clave");
    EXPECT_EQ(s[1],
              "UPDATE tbltemp3 w JOIN historicoalmacen h ON h.Id=w.IdKardex SET "
              "w.Costo=h.Costo,w.CostoProm=h.CostoPromedio,w.ExistenciaAlDia=h.ExistenciaActual");
    EXPECT_EQ(s[2],
              "UPDATE tbltemp3 w JOIN (SELECT comprasdetalle.Producto,compras.Fecha,"
              "comprasdetalle.Cantidad,ROW_NUMBER() OVER (PARTITION BY comprasdetalle.Producto "
              "ORDER BY compras.Fecha DESC,compras.Compra DESC,comprasdetalle.Partida DESC) AS "
              "Orden FROM compras JOIN comprasdetalle ON compras.Compra=comprasdetalle.Compra "
              "WHERE compras.Cancelada=0 AND compras.Fecha<='2026-10-31') c ON "
              "c.Producto=w.ClaveProd AND c.Orden=1 SET w.FechaCom=c.Fecha,w.CantCom=c.Cantidad,"
              "w.DiasAlmacen=DATEDIFF('2026-10-31',c.Fecha)");
    EXPECT_EQ(s[4],
              "UPDATE tbltemp3 w JOIN (SELECT facturasdetalle.Producto AS Producto,"
              "SUM(IF(facturas.Fecha>='2026-10-01',facturasdetalle.Cantidad,0)) AS A30,"
              "SUM(IF(facturas.Fecha<='2026-09-30' AND facturas.Fecha>='2026-09-01',"
              "facturasdetalle.Cantidad,0)) AS A60,SUM(IF(facturas.Fecha<='2026-08-31',"
              "facturasdetalle.Cantidad,0)) AS A90 FROM facturas JOIN facturasdetalle ON "
              "facturasdetalle.Id=facturas.Id WHERE facturas.Afectada=1 AND facturas.Cancelada=0 "
              "AND facturas.Fecha>='2026-08-02' AND facturas.Fecha<='2026-10-31' GROUP BY "
              "facturasdetalle.Producto) s ON s.Producto=w.ClaveProd SET "
              "w.VentasA30=w.VentasA30+s.A30,w.VentasA60=w.VentasA60+s.A60,"
              "w.VentasA90=w.VentasA90+s.A90");
    EXPECT_NE(s[5].find(" FROM ticketsdetalle WHERE ticketsdetalle.Fecha>='2026-08-02' AND "
                        "ticketsdetalle.Fecha<='2026-10-31' GROUP BY ticketsdetalle.Producto"),
              std::string::npos)
        << s[5];
}

// Cut-off 2026-10-31: the bands are 10-01..10-31, 09-01..09-30 and 08-02..08-31.
constexpr const char* kEmpresa = R"sql(
INSERT INTO productos (Clave,Descrip,Existencia,Linea,Marca,Proveedor1,Proveedor2) VALUES
 ('A1','MARTILLO',10,1,2,'PR1',''),('A2','BROCHA',5,2,2,'','PR1'),
 ('A3','NUNCA COMPRADO',3,1,3,'',''),('A4','SIN EXISTENCIA',0,1,2,'PR2','');
INSERT INTO clavesalternas (ClaveProducto,ClaveAlterna) VALUES ('A2','ZZ-9'),('A2','AA-1'),('A1','M-16');
INSERT INTO historicoalmacen (Id,Producto,Fecha,Costo,CostoPromedio,ExistenciaActual) VALUES
 (1,'A1','2026-08-01',10,10,5),(2,'A1','2026-10-28',11,10.5,12),(3,'A1','2026-10-20',12,10.8,9),
 (4,'A1','2026-11-02',13,11,20),(5,'A2','2026-09-01',7,6.5,5),(6,'A4','2026-07-01',3,3,0);
INSERT INTO compras (Compra,Fecha,Cancelada) VALUES (1,'2026-09-21',0),(2,'2026-10-26',1),
 (3,'2026-11-02',0),(4,'2026-10-10',0),(5,'2026-10-10',0),(6,'2026-05-01',0);
INSERT INTO comprasdetalle (Compra,Partida,Producto,Cantidad) VALUES (1,1,'A1',30),(2,1,'A1',99),
 (3,1,'A1',77),(4,1,'A2',5),(5,1,'A2',6),(5,2,'A2',2),(6,1,'A4',10),(1,2,'A2',1);
INSERT INTO remisiones (Id,Fecha,Afectada,Cancelada) VALUES (1,'2026-10-31',1,0),(2,'2026-10-01',1,0),
 (3,'2026-09-30',1,0),(4,'2026-09-01',1,0),(5,'2026-08-31',1,0),(6,'2026-08-02',1,0),
 (7,'2026-08-01',1,0),(8,'2026-10-26',0,0),(9,'2026-10-26',1,1),(10,'2026-10-12',1,0);
INSERT INTO remisionesdetalle (Id,Partida,Producto,Cantidad) VALUES (1,1,'A1',2),(1,2,'A1',1.5),
 (2,1,'A1',3),(3,1,'A1',7),(4,1,'A1',11),(5,1,'A1',13),(6,1,'A1',17),(7,1,'A1',100),
 (8,1,'A1',500),(9,1,'A1',1000),(10,1,'A2',4);
INSERT INTO facturas (Id,Fecha,Afectada,Cancelada) VALUES (1,'2026-10-21',1,0),(2,'2026-10-21',1,1),
 (3,'2026-09-15',1,0);
INSERT INTO facturasdetalle (Id,Partida,Producto,Cantidad) VALUES (1,1,'A1',0.25),(1,2,'A2',4),
 (2,1,'A1',1000),(3,1,'A2',2.5),(3,2,'A4',1);
INSERT INTO ticketsdetalle (Id,Partida,Fecha,Producto,Cantidad) VALUES (1,1,'2026-10-01','A1',0.5),
 (2,1,'2026-09-30','A1',1),(3,1,'2026-08-01','A1',50),(4,1,'2026-10-31','A4',2),
 (5,1,'2026-10-14','A2',1);
)sql";

struct CasoLlenado {
    const char* nombre;
    Filtros filtros;
    std::string corte;
};

class LlenadoRotacion : public ::testing::TestWithParam<CasoLlenado> {
  protected:
    void SetUp() override {
        bd.emplace();
        schema::cargarArchivo(bd->mysql(), schema::carpetaEsquemas() / "empresa.sql");
        pruebas::BaseDeDatosDePrueba modelos;
        schema::cargarArchivo(modelos.mysql(), schema::carpetaEsquemas() / "tanzoreportes.sql");
        bd->ejecutar("CREATE TABLE rotacionprods LIKE `" + modelos.nombre() + "`.rotacionprods");
        bd->ejecutar(kEmpresa);
    }

    std::vector<std::string> Llenado(const Filtros& f, const std::string& d) {
        bd->ejecutar("DELETE FROM rotacionprods");
        for (const auto& s :
             RepAdmRotacion::SqlLlenado("rotacionprods", RepAdmRotacion::Condiciones(f), d))
            bd->ejecutar(s);
        std::vector<std::string> r;
        for (const auto& fila : bd->filas(
                 "SELECT ClaveProd,Fecha,ClaveAlterna,Costo,CostoProm,ExistenciaAlDia,VentasA30,"
                 "VentasA60,VentasA90,VentasAmas90,FechaCom,CantCom,DiasAlmacen FROM "
                 "rotacionprods ORDER BY Id"))
            r.push_back(Renglon(fila));
        return r;
    }

    // The rule, product by product and document by document.
    std::vector<std::string> Regla(const Filtros& f, const std::string& d) {
        auto uno = [this](const std::string& sql) { return bd->valor(sql).value_or(""); };
        auto suma = [&uno](const std::string& sql) {
            const std::string v = uno("SELECT SUM(Cantidad) FROM " + sql);
            return v.empty() ? 0.0 : std::stod(v);
        };
        std::vector<std::string> r;
        for (const auto& p : bd->filas("SELECT Clave FROM productos" +
                                       RepAdmRotacion::Condiciones(f) + " ORDER BY Clave")) {
            const std::string c = p[0];
            std::vector<std::string> fila = {c, d};
            fila.push_back(uno("SELECT ClaveAlterna FROM clavesalternas WHERE ClaveProducto='" + c +
                               "' ORDER BY ClaveAlterna LIMIT 1"));
            auto h = bd->filas(
                "SELECT Costo,CostoPromedio,ExistenciaActual FROM historicoalmacen WHERE "
                "Producto='" +
                c + "' AND Fecha<='" + d + "' ORDER BY Id DESC LIMIT 1");
            if (h.empty()) h.push_back({"", "", ""});
            fila.insert(fila.end(), h[0].begin(), h[0].end());
            const std::pair<int, int> bandas[] = {{-30, 0}, {-60, -31}, {-90, -61}};
            for (const auto& [de, a] : bandas) {
                const std::string desde = RepAdmRotacion::SumaDias(d, de);
                const std::string hasta = RepAdmRotacion::SumaDias(d, a);
                double s = 0;
                for (const std::string t : {"remisiones", "facturas"})
                    for (const auto& doc :
                         bd->filas("SELECT Id FROM " + t +
                                   " WHERE Afectada=1 AND Cancelada=0 AND Fecha>='" + desde +
                                   "' AND Fecha<='" + hasta + "' ORDER BY Id"))
                        s += suma(t + "detalle WHERE Id=" + doc[0] + " AND Producto='" + c + "'");
                s += suma("ticketsdetalle WHERE Fecha>='" + desde + "' AND Fecha<='" + hasta +
                          "' AND Producto='" + c + "'");
                fila.push_back(std::to_string(s));
            }
            fila.push_back("0");
            auto com = bd->filas(
                "SELECT Fecha,Cantidad FROM compras LEFT JOIN comprasdetalle ON "
                "compras.Compra=comprasdetalle.Compra WHERE Producto='" +
                c + "' AND Cancelada=0 AND Fecha<='" + d +
                "' ORDER BY Fecha DESC,compras.Compra DESC,Partida DESC");
            if (com.empty()) {
                fila.insert(fila.end(), {"", "", ""});
            } else {
                fila.insert(fila.end(), com[0].begin(), com[0].end());
                fila.push_back(std::to_string(
                    toolkit::DiasEntre(*toolkit::LeeFecha(com[0][0]), *toolkit::LeeFecha(d))));
            }
            r.push_back(Renglon(fila));
        }
        return r;
    }

    // A row as text, numbers to four decimals.
    static std::string Renglon(const std::vector<std::string>& f) {
        std::string r;
        for (std::size_t i = 0; i < f.size(); ++i) {
            std::string v = f[i];
            if ((i >= 3 && i <= 9) || i == 11 || i == 12) {
                if (!v.empty()) {
                    char b[40];
                    std::snprintf(b, sizeof b, "%.4f", std::stod(v));
                    v = b;
                }
            }
            r += (i ? "|" : "") + v;
        }
        return r;
    }

    std::optional<pruebas::BaseDeDatosDePrueba> bd;
};

TEST_P(LlenadoRotacion, IgualALaReglaProductoPorProducto) {
    const auto& c = GetParam();
    const auto regla = Regla(c.filtros, c.corte);
    ASSERT_FALSE(regla.empty());
    EXPECT_EQ(Llenado(c.filtros, c.corte), regla);
}

INSTANTIATE_TEST_SUITE_P(
    Casos, LlenadoRotacion,
    ::testing::Values(CasoLlenado{"todos al corte", Filtros{false, "", "", 0, 0}, "2026-10-31"},
                      CasoLlenado{"con existencia", Filtros{}, "2026-10-31"},
                      CasoLlenado{"proveedor en cualquiera de los dos",
                                  Filtros{false, "", "PR1", 0, 0}, "2026-10-31"},
                      CasoLlenado{"linea y marca", Filtros{false, "", "", 1, 2}, "2026-10-31"},
                      CasoLlenado{"un producto", Filtros{false, "A2", "", 0, 0}, "2026-10-31"},
                      CasoLlenado{"corte anterior", Filtros{false, "", "", 0, 0}, "2026-10-15"},
                      CasoLlenado{"corte antes de todo", Filtros{false, "", "", 0, 0},
                                  "2026-01-10"}),
    pruebas::PorNombre());

// By hand at 2026-10-31. A1: the history row captured last among those up to the date (Id 3,
// dated 10-20, not Id 2 dated 10-28); 3.5 + 3 + 0.25 + 0.5 in the first band (the boundary
// 10-01 inside), 7 + 11 + 1 in the second (09-30 and 09-01), 13 + 17 in the third (08-31,
// 08-02); 08-01, the unapplied and the cancelled documents nowhere; the purchase of 09-21 (the
// cancelled one of 10-26 and the later one passed over). A2: its first alternate code and, of
// two purchases the same day, the one entered last. A3: never bought, no history.
TEST_F(LlenadoRotacion, CifrasAMano) {
    Llenado(Filtros{false, "", "", 0, 0}, "2026-10-31");
    EXPECT_EQ(bd->filas("SELECT ClaveProd,ClaveAlterna,Costo,ExistenciaAlDia,VentasA30,VentasA60,"
                        "VentasA90,VentasAmas90,FechaCom,CantCom,DiasAlmacen FROM rotacionprods "
                        "ORDER BY Id"),
              (std::vector<std::vector<std::string>>{
                  {"A1", "M-16", "12", "9", "7.25", "19", "30", "0", "2026-09-21", "30", "40"},
                  {"A2", "AA-1", "7", "5", "9", "2.5", "0", "0", "2026-10-10", "2", "21"},
                  {"A3", "", "", "", "0", "0", "0", "0", "", "", ""},
                  {"A4", "", "3", "0", "2", "1", "0", "0", "2026-05-01", "10", "183"}}));
}

}  // namespace
}  // namespace paratzorep::reports
