#include "schema/Esquema.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <set>
#include <sstream>

#include "support/NombresDeCaso.h"
#include "support/Soporte.h"

namespace paratzorep::schema {
namespace {

struct CasoDivision {
    const char* nombre;
    const char* texto;
    std::vector<std::string> sentencias;
    std::vector<int> lineas;
};

class DivisionTest : public ::testing::TestWithParam<CasoDivision> {};

TEST_P(DivisionTest, CortaEnLosPuntoYComaQueTerminanSentencias) {
    const auto& c = GetParam();
    const auto s = dividirSentencias(c.texto, "prueba.sql");
    ASSERT_EQ(s.size(), c.sentencias.size());
    for (size_t i = 0; i < s.size(); ++i) {
        EXPECT_EQ(s[i].sql, c.sentencias[i]) << i;
        EXPECT_EQ(s[i].linea, c.lineas[i]) << i;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Casos, DivisionTest,
    ::testing::Values(
        CasoDivision{"dos", "SELECT 1;\nSELECT 2;", {"SELECT 1", "SELECT 2"}, {1, 2}},
        CasoDivision{
            "sinPuntoFinal", "SELECT 1;\n\n  SELECT 2\n", {"SELECT 1", "SELECT 2"}, {1, 3}},
        CasoDivision{
            "puntoEnTexto", "INSERT INTO t VALUES ('a;b');", {"INSERT INTO t VALUES ('a;b')"}, {1}},
        CasoDivision{"comillaDoble", "SELECT 'it''s; ok';", {"SELECT 'it''s; ok'"}, {1}},
        CasoDivision{"escape", "SELECT 'a\\';b';SELECT 3", {"SELECT 'a\\';b'", "SELECT 3"}, {1, 1}},
        CasoDivision{"identificador", "SELECT `a;b` FROM t;", {"SELECT `a;b` FROM t"}, {1}},
        CasoDivision{"comentarios",
                     "-- uno; dos\nSELECT 1; # tres;\n/* cuatro;\n cinco */ SELECT 2;",
                     {"SELECT 1", "SELECT 2"},
                     {2, 4}},
        CasoDivision{"guionesSinEspacioNoComentan", "SELECT 1--2;", {"SELECT 1--2"}, {1}},
        CasoDivision{"comentarioEjecutable", "/*!40101 SET x=1 */;", {"/*!40101 SET x=1 */"}, {1}},
        CasoDivision{
            "textoConSaltos", "SELECT 'a\n;b';\nSELECT 2;", {"SELECT 'a\n;b'", "SELECT 2"}, {1, 3}},
        CasoDivision{"vacio", " ;; \n-- nada\n", {}, {}}),
    pruebas::PorNombre());

TEST(Division, SeñalaLaLineaDeUnaComillaSinCerrar) {
    try {
        dividirSentencias("SELECT 1;\nSELECT 'abc;\n", "x.sql");
        FAIL() << "debió fallar";
    } catch (const ErrorEsquema& e) {
        EXPECT_EQ(e.linea(), 2);
        EXPECT_EQ(e.archivo(), "x.sql");
    }
    EXPECT_THROW(dividirSentencias("SELECT 1 /* sin fin", "x.sql"), ErrorEsquema);
}

TEST(NombreDeBase, AceptaSoloLetrasDigitosYGuionBajo) {
    EXPECT_TRUE(nombreDeBaseValido("datos1"));
    EXPECT_TRUE(nombreDeBaseValido("tanzo_reportes"));
    EXPECT_FALSE(nombreDeBaseValido(""));
    EXPECT_FALSE(nombreDeBaseValido("datos'1"));
    EXPECT_FALSE(nombreDeBaseValido("a b"));
    EXPECT_FALSE(nombreDeBaseValido("x`; DROP DATABASE y"));
    EXPECT_FALSE(nombreDeBaseValido(std::string(65, 'a')));
}

// A database of this test, dropped at the end.
class BaseTemporal {
  public:
    explicit BaseTemporal(const std::string& sufijo)
        : c_(Conexion::abrir(pruebas::servidorDePrueba())),
          nombre_("t_esq_" + sufijo + "_" + std::to_string(::getpid())) {}
    ~BaseTemporal() {
        try {
            c_.ejecutar("DROP DATABASE IF EXISTS `" + nombre_ + "`");
        } catch (...) {
        }
    }
    Conexion& c() { return c_; }
    const std::string& nombre() const { return nombre_; }

  private:
    Conexion c_;
    std::string nombre_;
};

// Tables and columns that the reports and engines read or write, by name.
const std::vector<std::pair<const char*, const char*>> kColumnasEmpresa = {
    {"clientes", "Clave,Nombre,Clasificacion,Email,Saldo,SusPuntos,UltPago,Vendedor"},
    {"proveedores", "Clave,Nombre,Clasificacion"},
    {"vendedores", "Clave,Nombre"},
    {"monedas", "Id,Abreviacion,Paridad"},
    {"lineas", "Id,Linea,Comision"},
    {"sublineas", "IdLinea,SubLinea"},
    {"marcas", "Id,Marca"},
    {"sucursales", "Clave,Nombre"},
    {"productos",
     "Clave,Descrip,Existencia,Linea,SubLinea,Marca,Proveedor1,Proveedor2,Servicio,Costo,CostoProm,"
     "Precio1,Precio5,Desc1,Desc5,ComisionPrecio,ComisionPrecio1,NumeroDePrecio,Bloqueado"},
    {"clavesalternas", "ClaveProducto,ClaveAlterna"},
    {"saldoscli", "Clave,IdMoneda,Saldo"},
    {"saldospro", "Clave,IdMoneda,Saldo"},
    {"edoctacli",
     "Id,Folio,Foliote,Movimiento,Fecha,Hora,FechaDePago,Clave,CantidadCargo,CantidadPago,Concepto,"
     "Concepto2,Concepto3,Usuario,MontoTotal,MonedaMT,IdMoneda,Moneda,NotaCredito,SaldoAnterior,"
     "SaldoActual"},
    {"edoctaprov",
     "Clave,Fecha,IdMoneda,Concepto,CantidadCargo,CantidadPago,SaldoAnterior,"
     "SaldoActual,Folio,Moneda"},
    {"cxc", "Id,Clave,Vencimiento,Tipo,Numero,NumPago,Saldo,Total"},
    {"cxp", "Id,Clave,Vencimiento,Tipo,Numero,Saldo"},
    {"anexopagosctes",
     "FolioDelPago,Cantidad,Factura,Remision,Cargo,Moneda,CantidadReal,FechaReal,Hora,"
     "FechaAplicacion,Tipo,Efectivo,ChequeCuenta,ChequeOtra,Saldo,IdFactura,IdRemision,IdApartado"},
    {"recibos", "Recibo,IdPago,Fecha,Cancelado"},
    {"chequespfdetalle", "IdCxC,IdCheque"},
    {"facturas",
     "Id,Serie,Factura,Fecha,Cliente,Vendedor,Cancelada,Afectada,PdeV,Moneda,IdMoneda,Paridad,"
     "Subtotal,IVA,ImpuestoAd,Cargo1Cantidad,Cargo2Cantidad,Cargo3Cantidad,Retencion,RetencionIVA,"
     "Importe,Total,Pagado,Saldo,Vence,Desc1,Desc5"},
    {"remisiones", "Id,Serie,Factura,Remision,Facturada,Saldo,Vendedor,Cancelada,Afectada,Vence"},
    {"apartados", "Id,Serie,Factura,Saldo,IdMoneda,Vendedor,Importe"},
    {"facturasdetalle",
     "Id,Partida,Producto,Cantidad,Devueltos,PrecioNeto,Precio,Descripcion,Remision,IdKardex,"
     "CostoPromedio,ParidadCompra"},
    {"remisionesdetalle", "Id,Partida,Producto,Cantidad,Devueltos,PrecioNeto,IdKardex"},
    {"ticketsdetalle", "Fecha,Producto,Cantidad"},
    {"devolucionctes",
     "DevolucionCtes,Fecha,Cliente,NotasCredito,Tipo,Venta,Cancelada,Moneda,"
     "Paridad,Desc1,Desc5,Numero,Serie"},
    {"devolucionctesdet",
     "DevolucionCtes,Producto,PartidaVenta,Partida,Cantidad,CostoPromedio,"
     "Precio,Descripcion"},
    {"devolucionprov", "Fecha,Proveedor"},
    {"devolucionprovdet", "Producto"},
    {"notascredito", "NotaCredito,Cliente,Devolucion,Cancelada,Subtotal,Fecha"},
    {"notascreditodetalle", "Tipo,Numero,Cantidad"},
    {"compras", "Compra,Factura,Fecha,Cancelada,Subtotal,IVA,ImpuestoAd,IdMoneda"},
    {"comprasdetalle", "Compra,Producto,Cantidad"},
    {"comprasnd", "Compra,Factura,Subtotal,IVA,ImpuestoAd,Fecha,IdMoneda"},
    {"entradas", "Entrada,Fecha,Destino,Usuario,Afectada"},
    {"entradasdetalle", "Entrada,Partida,Producto,Descrip,Cantidad,Precio"},
    {"traspasos", "Traspaso,Fecha,Destino,Usuario,Serie,Cancelado"},
    {"traspasosdetalle", "Traspaso,Partida,Producto,Descrip,Cantidad,Precio"},
    {"sistema", "Dato"},
    {"ajustes", "Ajuste,Fecha,Clave,Usuario"},
    {"perdidas", "Fecha,Usuario"},
    {"perdidasdetalle", "Producto"},
    {"separacionmet", "Fecha,Usuario,MetalOrigen"},
    {"separacionmetdetalle", "MetalDestino"},
    {"movcortes", "Fecha,IdCorte,Usuario"},
    {"cortes", "Id,Corte"},
    {"historicoalmacen",
     "Id,Producto,Fecha,Costo,CostoPromedio,ExistenciaAnterior,ExistenciaActual"},
    {"comisiones", "Vendedor,Renglon,CantVendida,Comision"},
    {"comisionesporlinea", "Vendedor,Linea,Comision"},
    {"comisionesmasprecios", "Vendedor,NumPrecio,Comision"},
    {"gastos", "Cantidad,PdeV,Fecha"},
    {"saldosprodsctes", "Cliente"},
    {"edoctaspc", "Fecha,Cliente,Producto"},
    {"configura", "Dato,Valor"},
    {"bitacorausuarios", "Id,Fecha,Hora,Usuario,Accion,Registro,Llave,Adicionales,Version,Equipo"},
    {"reportesbin", "Archivo,Renglon,Contenido"},
    {"anexoreportes", "ArchivoPadre,Archivo,DESCripcion"},
    {"pagossel", "IdSEL,ClaveEmpresa,Folio,IdEdoCta,Fecha"},
};

const std::vector<std::pair<const char*, const char*>> kColumnasReportes = {
    {"bitacorausuarios", "Id,Fecha,Hora,Usuario,Accion,Version,Equipo"},
    {"adsmovtos",
     "clave,Tipo,Llave,Importe,Concepto,DiasDeVencido,Fecha,Vencimiento,Saldo,"
     "Pagado,IdCxC,IdChequesPF"},
    {"cxc",
     "Id,Fecha,Cargo,Remision,Factura,Apartado,Serie,Total,Concepto,Cliente,Saldo,Vence,"
     "IdCargo,IdRemision,IdFactura,IdApartado"},
    {"cxp", "Id,Fecha,Cargo,Compra,Total,Concepto,Proveedor,Saldo,Vence,IdCargo"},
    {"compras3", "Articulo,Descripcion,Linea,Precio,Cantidad,Total"},
    {"rotacionprods",
     "ClaveProd,Fecha,ClaveAlterna,Costo,CostoProm,ExistenciaAlDia,VentasA30,"
     "VentasA60,VentasA90,VentasAmas90,FechaCom,CantCom,DiasAlmacen"},
    {"utilidadxdias",
     "Fecha,VendedorCve,VendedorNom,Cantidad,Devueltos,Total,Total2,Costo,Total3,"
     "Porcentaje,Devoluciones,NotasCredito"},
    {"utilidadxvendedor", "Vendedor,Nombre,Ventas,AlCosto,AlCostoProm,NumeroVentas"},
    {"comisxventas",
     "Documento,IdVenta,clave,Nombre,Fecha,Serie,Numero,Cliente,Subtotal,Total,"
     "Cantidad,Pagado,IdMoneda,Monto"},
    {"comisxventasdetalle",
     "Producto,DESCripcion,Precio,ComisionPorcen,Cantidad,ComisionMonto,Importe"},
    {"saldosalafecha", "clave,Nombre,Cargos,Abonos,SaldoActual"},
    {"recibos", "Recibo,IdPago,Fecha,Concepto,Cantidad,Cliente,Nombre"},
    {"edoctacli", "Id,Folio,Fecha,Clave,CantidadCargo,CantidadPago,Concepto,IdMoneda"},
    {"cheques", "Fecha,Tipo,Cantidad"},
    {"recibosfaltantes", "Recibo,IdPago,Fecha,Motivo"},
    {"ventascanceladas",
     "Fecha,Serie,Factura,Remision,Cliente,Nombre,Vendedor,Ventas,AlCosto,"
     "AlCostoProm"},
};

// Each listed column exists (names compared in lower case, as the server keeps them).
void compruebaColumnas(Conexion& c, const std::string& base,
                       const std::vector<std::pair<const char*, const char*>>& tablas) {
    for (const auto& [tabla, lista] : tablas) {
        std::set<std::string> hay;
        for (const auto& f :
             c.consultar("SELECT LOWER(COLUMN_NAME) FROM information_schema.COLUMNS "
                         "WHERE TABLE_SCHEMA='" +
                         base + "' AND TABLE_NAME='" + tabla + "'"))
            hay.insert(*f[0]);
        EXPECT_FALSE(hay.empty()) << "falta la tabla " << tabla;
        std::istringstream columnas(lista);
        for (std::string col; std::getline(columnas, col, ',');) {
            for (auto& ch : col)
                ch = static_cast<char>(std::tolower(static_cast<unsigned char>(ch)));
            EXPECT_TRUE(hay.count(col)) << "falta " << tabla << "." << col;
        }
    }
}

TEST(Esquemas, LaEmpresaTieneCadaTablaYColumnaQueLeenLosReportes) {
    BaseTemporal b("emp");
    recrearBase(b.c(), b.nombre(), carpetaEsquemas() / "empresa.sql");
    compruebaColumnas(b.c(), b.nombre(), kColumnasEmpresa);
    // Table names in two spellings resolve to the same table.
    EXPECT_NO_THROW(b.c().consultar("SELECT COUNT(*) FROM SubLineas"));
    EXPECT_NO_THROW(b.c().consultar("SELECT COUNT(*) FROM Clientes"));
    // The setting names are looked up whatever their case.
    b.c().ejecutar("INSERT INTO configura (Dato,Valor) VALUES ('MultiMoneda','1')");
    EXPECT_EQ(b.c().valor("SELECT Valor FROM configura WHERE Dato='multimoneda'"), "1");
    EXPECT_THROW(b.c().ejecutar("INSERT INTO configura (Dato,Valor) VALUES ('Multimoneda','0')"),
                 ErrorEsquema);
    // Zero dates are the default of every date.
    b.c().ejecutar("INSERT INTO cxc (Clave) VALUES ('C1')");
    EXPECT_EQ(b.c().valor("SELECT Vencimiento FROM cxc"), "0000-00-00");
    // The index names that the online-movements engine drops exist.
    for (const auto& [tabla, indice] :
         std::vector<std::pair<std::string, std::string>>{{"cxc", "Clave"},
                                                          {"cxc", "Tipo"},
                                                          {"edoctacli", "ID"},
                                                          {"edoctacli", "Fecha"},
                                                          {"edoctacli", "Folio"},
                                                          {"facturas", "Factura"},
                                                          {"remisiones", "Factura"}})
        EXPECT_EQ(b.c().valor("SELECT COUNT(*) FROM information_schema.STATISTICS WHERE "
                              "TABLE_SCHEMA='" +
                              b.nombre() + "' AND TABLE_NAME='" + tabla + "' AND INDEX_NAME='" +
                              indice + "'") != "0",
                  true)
            << tabla << "." << indice;
}

TEST(Esquemas, LosReportesTienenUnModeloVacioPorTablaDeTrabajo) {
    BaseTemporal b("rep");
    recrearBase(b.c(), b.nombre(), carpetaEsquemas() / "tanzoreportes.sql");
    compruebaColumnas(b.c(), b.nombre(), kColumnasReportes);
    // A clone made from SHOW CREATE TABLE is a valid table.
    auto def = b.c().consultar("SHOW CREATE TABLE adsmovtos");
    ASSERT_EQ(def.size(), 1u);
    std::string sql = *def[0][1];
    sql.replace(sql.find("adsmovtos"), 9, "tbltemp0");
    EXPECT_NO_THROW(b.c().ejecutar(sql));
    // Recreating a filled database leaves only the empty models.
    b.c().ejecutar("INSERT INTO cheques (Tipo) VALUES ('EFECTIVO')");
    recrearBase(b.c(), b.nombre(), carpetaEsquemas() / "tanzoreportes.sql");
    EXPECT_EQ(b.c().valor("SELECT COUNT(*) FROM cheques"), "0");
    EXPECT_EQ(b.c().valor("SELECT COUNT(*) FROM information_schema.TABLES WHERE TABLE_SCHEMA='" +
                          b.nombre() + "' AND TABLE_NAME='tbltemp0'"),
              "0");
}

TEST(Esquemas, LaBaseGeneralTieneEstructurasEIconos) {
    BaseTemporal b("gen");
    recrearBase(b.c(), b.nombre(), carpetaEsquemas() / "generaltanzo.sql");
    compruebaColumnas(b.c(), b.nombre(),
                      {{"estructurasm", "Id,Dato"}, {"iconos", "Id,DESCripcion,Imagen"}});
    b.c().ejecutar("INSERT INTO estructurasm VALUES (180, ENCODE('ENTRADA','527'))");
    EXPECT_EQ(b.c().valor("SELECT DECODE(Dato,'527') FROM estructurasm WHERE Id=180"), "ENTRADA");
}

struct CasoError {
    const char* nombre;
    const char* texto;
    int linea;
    const char* sql;
};

class ErrorDeArchivoTest : public ::testing::TestWithParam<CasoError> {};

TEST_P(ErrorDeArchivoTest, NombraArchivoLineaYCodigoDelServidor) {
    const auto& c = GetParam();
    pruebas::CarpetaTemporal tmp;
    const auto archivo = tmp / "malo.sql";
    std::ofstream(archivo) << c.texto;
    BaseTemporal b(std::string("mal") + c.nombre);
    try {
        recrearBase(b.c(), b.nombre(), archivo);
        FAIL() << "debió fallar";
    } catch (const ErrorEsquema& e) {
        EXPECT_EQ(e.linea(), c.linea);
        EXPECT_EQ(e.codigo(), 1064u);  // syntax error
        EXPECT_NE(std::string(e.what()).find("malo.sql, línea " + std::to_string(c.linea)),
                  std::string::npos)
            << e.what();
        EXPECT_EQ(e.sql(), c.sql);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Casos, ErrorDeArchivoTest,
    ::testing::Values(
        CasoError{"secuencial",
                  "CREATE TABLE a (x INT);\n\n-- comentario\nCREATE TABLA b (y INT);\n", 4,
                  "CREATE TABLA b (y INT)"},
        // Inside a run of CREATE TABLE statements spread over several connections.
        CasoError{"paralelo",
                  "CREATE TABLE a (x INT);\nCREATE TABLE b (x INT);\nCREATE TABLE c (y INT,);\n"
                  "CREATE TABLE d (x INT);\nCREATE TABLE e (x INT);\n",
                  3, "CREATE TABLE c (y INT,)"}),
    pruebas::PorNombre());

TEST(Esquemas, RechazaNombresYArchivosInvalidosSinTocarElServidor) {
    BaseTemporal b("inv");
    EXPECT_THROW(recrearBase(b.c(), "datos'1", carpetaEsquemas() / "empresa.sql"), ErrorEsquema);
    EXPECT_THROW(recrearBase(b.c(), b.nombre(), "/no/existe.sql"), ErrorEsquema);
    EXPECT_EQ(b.c().valor("SELECT COUNT(*) FROM information_schema.SCHEMATA WHERE SCHEMA_NAME='" +
                          b.nombre() + "'"),
              "0");
}

}  // namespace
}  // namespace paratzorep::schema
