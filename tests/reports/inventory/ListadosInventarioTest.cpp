// The inventory listings (adjustments, entries, transfers, losses, metal separations): their
// selection formulas, conditions and templates exactly; the controls each mode enables; the
// per-product summary of entries and transfers and the list of products without adjustment,
// each filled in one statement and proved equal to the rule walked document by document and
// product by product on a small company with rows on both sides of every condition.
#include <gtest/gtest.h>

#include <cmath>
#include <map>

#include "reports/inventory/RepAdmAjustes.h"
#include "reports/inventory/RepAdmEntradas.h"
#include "reports/inventory/RepAdmPerdidas.h"
#include "reports/inventory/RepAdmSepMet.h"
#include "reports/inventory/RepAdmTraspasos.h"
#include "support/NombresDeCaso.h"
#include "support/Soporte.h"
#include "support/TablasDeEmpresa.h"

namespace paratzorep::reports {
namespace {

using A = RepAdmAjustes;
using E = RepAdmEntradas;
using T = RepAdmTraspasos;
using M = FormaMercancia;

FiltrosMercancia Fm(std::string desde, std::string hasta, std::string producto,
                    std::string descripcion, std::string destino, std::string usuario,
                    bool totalizado = false) {
    return {std::move(desde),   std::move(hasta),   std::move(producto), std::move(descripcion),
            std::move(destino), std::move(usuario), totalizado};
}

struct Texto {
    const char* nombre;
    std::string hecho;
    const char* esperado;
};

class TextoInventario : public ::testing::TestWithParam<Texto> {};

TEST_P(TextoInventario, DiceLoQueElSistemaDice) {
    EXPECT_EQ(GetParam().hecho, GetParam().esperado);
}

INSTANTIATE_TEST_SUITE_P(
    Casos, TextoInventario,
    ::testing::Values(
        Texto{"ajustes todo",
              A::FormulaSeleccion({"05/03/2024", "31/12/2024", "FER-1", "ANA", 3, 12}),
              "{ajustes.Fecha}>=Date(2024,3,5) and {ajustes.Fecha}<=Date(2024,12,31) and "
              "{ajustes.Clave}='FER-1' and {ajustes.Usuario}='ANA' and {productos.Linea}=3 and "
              "{ajustes.Ajuste}=12"},
        Texto{"ajustes sin filtros, folio negativo", A::FormulaSeleccion({"", "", "", "", 0, -4}),
              ""},
        Texto{"ajustes solo hasta y linea", A::FormulaSeleccion({"", "01/01/2025", "", "", 2, 0}),
              "{ajustes.Fecha}<=Date(2025,1,1) and {productos.Linea}=2"},
        Texto{"plantilla sin costear", A::Plantilla(false, 1), "ajustes1.rpt"},
        Texto{"plantilla por costo", A::Plantilla(true, 0), "ajustes2.rpt"},
        Texto{"plantilla por precio", A::Plantilla(true, 1), "ajustes3.rpt"},
        Texto{"productos de una linea sin servicios", A::CondicionProductos(4, true),
              " WHERE Linea=4 AND Servicio=0"},
        Texto{"todos los productos", A::CondicionProductos(0, false), ""},
        Texto{"ajustes del periodo", A::TextoAjustes("2024-03-01", "2024-03-31"),
              "ajustes WHERE Fecha>='2024-03-01' AND Fecha<='2024-03-31' AND "},
        Texto{"ajustes de siempre", A::TextoAjustes("", ""), "ajustes WHERE "},
        Texto{"sin ajuste en conjunto",
              A::SqlSinAjuste("tbltemp3", " WHERE Servicio=0", "ajustes WHERE "),
              "INSERT INTO tbltemp3 SELECT * FROM productos WHERE Servicio=0 AND NOT EXISTS "
              "(SELECT 1 FROM ajustes WHERE ajustes.Clave=productos.Clave) ORDER BY Clave"},
        Texto{"entradas todo, afectadas",
              E::FormulaSeleccion(Fm("01/02/2025", "28/02/2025", "P1", "TORN", "02", "ANA"), 0),
              "{entradas.Fecha}>=Date(2025,2,1) and {entradas.Fecha}<=Date(2025,2,28) and "
              "{entradasdetalle.Producto}='P1' and 'TORN' in {entradasdetalle.Descrip} and "
              "{entradas.Destino}='02' and {entradas.Usuario}='ANA' and {entradas.Afectada}=1"},
        Texto{"entradas totalizadas sin afectar",
              E::FormulaSeleccion(Fm("", "", "", "TORN", "", "", true), 1),
              "{entradas.Afectada}=0"},
        Texto{"entradas ambas", E::FormulaSeleccion(Fm("", "", "", "", "", ""), 2), ""},
        Texto{"entradas condiciones",
              E::Condiciones(Fm("01/02/2025", "28/02/2025", "P1", "TORN", "02", "ANA"), 1),
              " WHERE Fecha>='2025-02-01' AND Fecha<='2025-02-28' AND Destino='02' AND "
              "Usuario='ANA' AND Afectada=0"},
        Texto{"entradas condiciones ambas", E::Condiciones(Fm("", "", "", "", "", ""), 2), ""},
        Texto{"traspasos todo con serie",
              T::FormulaSeleccion(Fm("01/02/2025", "", "P1", "TORN", "03", "M"), "A"),
              "{traspasos.Fecha}>=Date(2025,2,1) and {traspasosdetalle.Producto}='P1' and "
              "'TORN' in {traspasosdetalle.Descrip} and {traspasos.Destino}='03' and "
              "{traspasos.Usuario}='M' and {traspasos.Cancelado}=0 and {traspasos.Serie}='A'"},
        Texto{"traspasos totalizados sin serie",
              T::FormulaSeleccion(Fm("", "", "", "TORN", "", "", true), ""),
              "{traspasos.Cancelado}=0"},
        Texto{"traspasos condiciones",
              T::Condiciones(Fm("01/02/2025", "28/02/2025", "", "", "03", "M"), "B"),
              " WHERE Fecha>='2025-02-01' AND Fecha<='2025-02-28' AND Destino='03' AND "
              "Usuario='M' AND Serie='B' AND Cancelado=0"},
        Texto{"traspasos condiciones minimas", T::Condiciones(Fm("", "", "", "", "", ""), ""),
              " WHERE Cancelado=0"},
        Texto{"series", T::FuenteSeries(),
              "sistema WHERE Dato LIKE 'TR-%' AND Dato<>'TR-' ORDER BY Dato"},
        Texto{"orden clave", M::OrdenResumen(0), "+{compras3.Articulo}"},
        Texto{"orden linea", M::OrdenResumen(1), "+{compras3.Linea}"},
        Texto{"orden descripcion", M::OrdenResumen(2), "+{compras3.Descripcion}"},
        Texto{"orden mayor a menor", M::OrdenResumen(3), "-{compras3.Cantidad}"},
        Texto{"orden menor a mayor", M::OrdenResumen(4), "+{compras3.Cantidad}"},
        Texto{"encabezado costo", M::EncabezadoValor(0), "Costo"},
        Texto{"encabezado costo promedio", M::EncabezadoValor(1), "Costo p."},
        Texto{"encabezado precio real", M::EncabezadoValor(2), "Pr. real"},
        Texto{"encabezado lista de precios", M::EncabezadoValor(3), ""},
        Texto{"perdidas todo",
              RepAdmPerdidas::FormulaSeleccion({"05/03/2024", "06/03/2024", "M", "FER-2", 1, 7, 9}),
              "{perdidas.Fecha}>=Date(2024,3,5) and {perdidas.Fecha}<=Date(2024,3,6) and "
              "{perdidas.Usuario}<='M' and {perdidasdetalle.Producto}='FER-2' and "
              "{productos.Linea}=1 and {productos.SubLinea}=7 and {productos.Marca}=9"},
        Texto{"perdidas sin filtros", RepAdmPerdidas::FormulaSeleccion({}), ""},
        Texto{"separaciones todo",
              RepAdmSepMet::FormulaSeleccion("01/01/2025", "31/01/2025", "MET-3", "ANA"),
              "{separacionmet.Fecha}>=Date(2025,1,1) and {separacionmet.Fecha}<=Date(2025,1,31) "
              "and ( {separacionmet.MetalOrigen}='MET-3' OR "
              "{separacionmetdetalle.MetalDestino}='MET-3') and {separacionmet.Usuario}='ANA'"},
        Texto{"separaciones de un usuario", RepAdmSepMet::FormulaSeleccion("", "", "", "M"),
              "{separacionmet.Usuario}='M'"}),
    pruebas::PorNombre());

TEST(ListadosInventario, ElResumenSeArmaEnUnaSolaSentencia) {
    EXPECT_EQ(M::SqlResumen(E::Documentos(), "w", " WHERE Afectada=1", "P'1", "", 3),
              "INSERT INTO w (Articulo,Descripcion,Linea,Precio,Cantidad,Total) SELECT "
              "GROUP_CONCAT(l.Producto ORDER BY e.Entrada,l.Partida SEPARATOR '' LIMIT 1),"
              "GROUP_CONCAT(l.Descrip ORDER BY e.Entrada,l.Partida SEPARATOR '' LIMIT 1),"
              "IFNULL(MIN(n.Linea),''),MIN(p.Precio1),SUM(l.Cantidad),SUM(p.Precio1*l.Cantidad) "
              "FROM (SELECT Entrada FROM entradas WHERE Afectada=1) e JOIN entradasdetalle l ON "
              "l.Entrada=e.Entrada JOIN productos p ON p.Clave=l.Producto LEFT JOIN lineas n ON "
              "n.Id=p.Linea WHERE l.Producto='P''1' GROUP BY l.Producto");
}

// The controls each mode leaves usable.
TEST(ListadosInventario, CadaModoHabilitaSusControles) {
    RepAdmAjustes a;
    EXPECT_FALSE(a.Ctl("chkDato", 3).Enabled);  // no folio yet
    EXPECT_FALSE(a.Ctl("cmbDato", 0).Enabled);
    a.Fija("chkDato(1)", "1");
    EXPECT_TRUE(a.Ctl("cmbDato", 0).Enabled);
    a.Fija("chkDato(2)", "1");
    for (const auto& [c, i] : std::vector<std::pair<const char*, int>>{
             {"txtDato", 0}, {"txtDato", 1}, {"chkDato", 0}, {"chkDato", 1}, {"cmbDato", 0}})
        EXPECT_FALSE(a.Ctl(c, static_cast<std::int16_t>(i)).Enabled) << c << i;
    EXPECT_TRUE(a.Ctl("mkeFecha", 0).Enabled);
    EXPECT_TRUE(a.Ctl("dcmDato", 0).Enabled);
    a.Fija("chkDato(2)", "0");
    EXPECT_TRUE(a.Ctl("cmbDato", 0).Enabled);  // still costed

    RepAdmEntradas e;
    EXPECT_FALSE(e.Ctl("cmbDato", 0).Enabled);
    e.Fija("chkTotalizado", "1");
    EXPECT_FALSE(e.Ctl("txtDato", 2).Enabled);
    e.Fija("chkXprod", "1");
    EXPECT_TRUE(e.Ctl("cmbDato", 1).Enabled);
    EXPECT_FALSE(e.Ctl("chkTotalizado").Enabled);
    EXPECT_EQ(e.Ctl("optAfecs", 2).Value, 1);  // "Ambas" until the user narrows it
    EXPECT_FALSE(RepAdmTraspasos().Ctl("cmbDato", 2).Visible);
}

// --- The per-product summary against the rule ------------------------------------------------

class ResumenXproducto : public ::testing::Test {
  protected:
    void SetUp() override {
        pruebas::cargarTablasDeEmpresa(
            bd.mysql(), {"productos", "lineas", "entradas", "entradasdetalle", "traspasos",
                         "traspasosdetalle", "ajustes"});
        bd.ejecutar(
            "CREATE TABLE w (Id INT AUTO_INCREMENT PRIMARY KEY, Articulo VARCHAR(20), "
            "Descripcion VARCHAR(150), Linea VARCHAR(60), Precio DOUBLE, Cantidad DOUBLE, "
            "Total DOUBLE)");
        bd.ejecutar(
            "INSERT INTO lineas (Id, Linea) VALUES (1,'TORNILLERIA'),(2,'HERRAMIENTA');"
            // P4's line is not in the catalogue; P9 is not a product.
            "INSERT INTO productos (Clave, Descrip, Linea, Costo, CostoProm, Precio1, Precio2) "
            "VALUES ('P1','TORNILLO 1/4',1,2.5,2.4,4,3.8),('P2','MARTILLO',2,80,79.25,120,115),"
            "('P3','PINZAS',2,55,54,90,85),('P4','BROCA',7,10,11,15,14);"
            // Entries out of date order, applied and not, of two branches and users.
            "INSERT INTO entradas (Entrada, Fecha, Destino, Usuario, Afectada) VALUES "
            "(1,'2025-02-03','01','ANA',1),(2,'2025-02-01','02','M',1),(3,'2025-02-10','01',"
            "'ANA',0),(4,'2025-03-01','01','ANA',1);"
            // Partida out of insertion order; the same product at two prices; a zero line;
            // a product missing from the catalogue.
            "INSERT INTO entradasdetalle (Entrada, Partida, Producto, Descrip, Cantidad, Precio) "
            "VALUES (1,2,'P1','TORNILLO CABEZA',10,2.6),(1,1,'P2','MARTILLO DE UÑA',2,81),"
            "(2,1,'P1','TORNILLO 1/4 (CAJA)',30,2.45),(2,2,'P9','ARTICULO DE BAJA',4,9),"
            "(3,1,'P3','PINZAS',0,50),(3,2,'P1','TORNILLO',5,2.7),(4,1,'P4','BROCA 1/8',3,10.5),"
            "(4,2,'P3','PINZAS MECANICO',0,56);"
            "INSERT INTO traspasos (Traspaso, Serie, Fecha, Destino, Usuario, Cancelado) VALUES "
            "(1,'A','2025-02-02','03','ANA',0),(2,'B','2025-02-04','03','M',0),"
            "(3,'A','2025-02-05','02','ANA',1);"
            "INSERT INTO traspasosdetalle (Traspaso, Partida, Producto, Descrip, Cantidad, "
            "Precio) VALUES (1,1,'P2','MARTILLO',1,80),(2,1,'P2','MARTILLO',3,80),"
            "(2,2,'P1','TORNILLO',7,2.5),(3,1,'P1','TORNILLO',100,2.5)");
    }

    static double N(const std::string& s) { return s.empty() ? 0.0 : std::stod(s); }
    static std::string Fila(const std::string& a, const std::string& d, const std::string& l,
                            double p, double c, double t) {
        char b[120];
        std::snprintf(b, sizeof b, "|%.6f|%.6f|%.6f", p, c, t);
        return a + "|" + d + "|" + l + b;
    }

    // The rule: documents in number order, lines by Partida, a summary row per product raised
    // line by line.
    std::vector<std::string> Regla(const DocumentosMercancia& d, const std::string& condiciones,
                                   const std::string& producto, const std::string& descripcion,
                                   int valor) {
        struct R {
            std::string descrip, linea;
            double precio = 0, cantidad = 0, total = 0;
        };
        std::map<std::string, R> filas;
        const std::string folio = d.folio;
        for (const auto& doc : bd.filas("SELECT " + folio + " FROM " + d.tabla + condiciones +
                                        " ORDER BY " + folio)) {
            for (const auto& l : bd.filas("SELECT Producto, Descrip, Cantidad, Precio FROM " +
                                          std::string(d.detalle) + " WHERE " + folio + "=" +
                                          doc[0] + " ORDER BY Partida")) {
                if (!producto.empty() && l[0] != producto) continue;
                if (!descripcion.empty() && l[1].find(descripcion) == std::string::npos) continue;
                const auto p = bd.filas(
                    "SELECT Costo, CostoProm, Precio1, Precio2, Linea FROM productos WHERE "
                    "Clave='" +
                    l[0] + "'");
                if (p.empty()) continue;
                auto it = filas.find(l[0]);
                if (it == filas.end()) {
                    R r;
                    r.descrip = l[1];
                    r.linea = bd.valor("SELECT Linea FROM lineas WHERE Id=" + p[0][4]).value_or("");
                    r.precio = valor == 2 ? N(l[3]) : N(p[0][valor < 2 ? valor : valor - 1]);
                    it = filas.emplace(l[0], r).first;
                }
                R& r = it->second;
                r.cantidad += N(l[2]);
                if (valor != 2) {
                    r.total += r.precio * N(l[2]);
                } else {
                    r.total += N(l[3]) * N(l[2]);
                    if (r.cantidad != 0) r.precio = r.total / r.cantidad;
                }
            }
        }
        std::vector<std::string> v;
        for (const auto& [a, r] : filas)
            v.push_back(Fila(a, r.descrip, r.linea, r.precio, r.cantidad, r.total));
        return v;
    }

    std::vector<std::string> Llenado(const DocumentosMercancia& d, const std::string& condiciones,
                                     const std::string& producto, const std::string& descripcion,
                                     int valor) {
        bd.ejecutar("TRUNCATE TABLE w");
        bd.ejecutar(M::SqlResumen(d, "w", condiciones, producto, descripcion, valor));
        std::vector<std::string> v;
        for (const auto& f : bd.filas("SELECT Articulo, Descripcion, Linea, Precio, Cantidad, "
                                      "Total FROM w ORDER BY Articulo"))
            v.push_back(Fila(f[0], f[1], f[2], N(f[3]), N(f[4]), N(f[5])));
        return v;
    }

    pruebas::BaseDeDatosDePrueba bd;
};

TEST_F(ResumenXproducto, IgualALaReglaPartidaPorPartida) {
    struct Caso {
        const DocumentosMercancia& d;
        std::string condiciones, producto, descripcion;
    };
    const std::vector<Caso> casos = {
        {E::Documentos(), E::Condiciones(Fm("", "", "", "", "", ""), 2), "", ""},
        {E::Documentos(), E::Condiciones(Fm("", "", "", "", "", ""), 0), "", ""},
        {E::Documentos(), E::Condiciones(Fm("02/02/2025", "28/02/2025", "", "", "01", "ANA"), 2),
         "", ""},
        {E::Documentos(), E::Condiciones(Fm("", "", "", "", "", ""), 1), "P1", ""},
        {E::Documentos(), E::Condiciones(Fm("", "", "", "", "", ""), 2), "", "TORNILLO"},
        {T::Documentos(), T::Condiciones(Fm("", "", "", "", "", ""), ""), "", ""},
        {T::Documentos(), T::Condiciones(Fm("", "", "", "", "03", ""), "B"), "", ""},
    };
    for (const auto& c : casos) {
        for (int valor : {0, 1, 2, 3, 4}) {
            SCOPED_TRACE(std::string(c.d.tabla) + c.condiciones + " " + c.producto + " " +
                         c.descripcion + " valor " + std::to_string(valor));
            const auto regla = Regla(c.d, c.condiciones, c.producto, c.descripcion, valor);
            ASSERT_FALSE(regla.empty());
            EXPECT_EQ(Llenado(c.d, c.condiciones, c.producto, c.descripcion, valor), regla);
        }
    }
    // By hand: P1 enters at 2.6 ×10 (entry 1, whose line names it), 2.45 ×30 and 2.7 ×5 (not
    // applied) = 113 for 45 units; P3 has only zero lines and keeps its first line's price; P9,
    // not in the catalogue, is left out.
    EXPECT_EQ(
        Llenado(E::Documentos(), "", "", "", 2),
        (std::vector<std::string>{Fila("P1", "TORNILLO CABEZA", "TORNILLERIA", 113.0 / 45, 45, 113),
                                  Fila("P2", "MARTILLO DE UÑA", "HERRAMIENTA", 81, 2, 162),
                                  Fila("P3", "PINZAS", "HERRAMIENTA", 50, 0, 0),
                                  Fila("P4", "BROCA 1/8", "", 10.5, 3, 31.5)}));
}

TEST_F(ResumenXproducto, LosProductosSinAjusteSonLosDeLaReglaProductoPorProducto) {
    bd.ejecutar(
        "INSERT INTO productos (Clave, Descrip, Linea, Servicio) VALUES ('S1','FLETE',2,1),"
        "('P5','LIJA',1,0);"
        "INSERT INTO ajustes (Ajuste, Fecha, Clave, Cantidad) VALUES (1,'2025-02-01','P1',-1),"
        "(2,'2025-03-15','P2',2),(3,'2024-12-31','P3',1),(3,'2024-12-31','S1',1)");
    struct Caso {
        double linea;
        bool servicios;
        std::string desde, hasta;
    };
    for (const auto& c : std::vector<Caso>{{0, false, "", ""},
                                           {0, true, "2025-01-01", "2025-02-28"},
                                           {2, false, "2025-01-01", ""},
                                           {1, true, "", "2025-01-31"}}) {
        const std::string productos = A::CondicionProductos(c.linea, c.servicios);
        const std::string ajustes = A::TextoAjustes(c.desde, c.hasta);
        std::vector<std::vector<std::string>> regla;
        for (const auto& p : bd.filas("SELECT * FROM productos" + productos + " ORDER BY Clave"))
            if (bd.valor("SELECT COUNT(*) FROM " + ajustes + "Clave='" + p[0] + "'") == "0")
                regla.push_back(p);
        bd.ejecutar("DROP TABLE IF EXISTS sa; CREATE TABLE sa LIKE productos");
        bd.ejecutar(A::SqlSinAjuste("sa", productos, ajustes));
        SCOPED_TRACE(productos + " | " + ajustes);
        EXPECT_EQ(bd.filas("SELECT * FROM sa ORDER BY Clave"), regla);
    }
    // February, stock items only: P1 was adjusted then; P2 only after, P3 only before.
    bd.ejecutar("TRUNCATE TABLE sa");
    bd.ejecutar(A::SqlSinAjuste("sa", A::CondicionProductos(0, true),
                                A::TextoAjustes("2025-02-01", "2025-02-28")));
    EXPECT_EQ(bd.valor("SELECT GROUP_CONCAT(Clave ORDER BY Clave) FROM sa"), "P2,P3,P4,P5");
}

}  // namespace
}  // namespace paratzorep::reports
