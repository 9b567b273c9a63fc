// The data path against the run's private server and a local SQLite file: pushed
// and in-memory selections agree, paging keeps order and rows, zero dates read
// empty, failures carry their context.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <algorithm>
#include <optional>

#include "renderer/data/Consulta.h"
#include "renderer/formula/Evaluador.h"
#include "support/NombresDeCaso.h"
#include "support/Soporte.h"
#include "tests/renderer/data/ConexionOdbc.h"

namespace paratzorep::renderer::data {
namespace {

using pruebas::BaseDeDatosDePrueba;

const char* kTablas =
    "CREATE TABLE mov (Id INT PRIMARY KEY, Clave VARCHAR(20), Fecha DATE NULL, "
    "Concepto VARCHAR(80), Importe DECIMAL(12,2) NULL, IdMoneda INT) DEFAULT CHARSET=utf8mb4;"
    "CREATE TABLE cli (Clave VARCHAR(20) PRIMARY KEY, Nombre VARCHAR(40), Zona CHAR(2) NULL) "
    "DEFAULT CHARSET=utf8mb4;"
    "INSERT INTO cli VALUES ('C001','Ana','N'),('c002','Beto',NULL),('C003','Ñoño','S');"
    "INSERT INTO mov VALUES "
    "(1,'C001','2024-03-05','BONIFICACION POR CANCELACION F-1',100.50,1),"
    "(2,'C001','2024-03-06','Devolución ctes. 12',20,1),"
    "(3,'c002','0000-00-00','DEVOLUCION CTES. 13',NULL,2),"
    "(4,'C003',NULL,'Cargo',5,1),"
    "(5,'C003 ','2024-01-31','cargo por factura',0,1),"
    "(6,'X9','2024-12-31',NULL,-3.25,1),"
    "(7,'C001','2024-03-05','ABONO AUTOMATICO A CXC',100.50,2),"
    "(8,'Ñ1','2024-03-05','niño',7,1)";

DescripcionConsulta consulta(std::string seleccion, std::vector<std::string> orden = {}) {
    DescripcionConsulta d;
    d.tablas = {{"edoctacli", "mov"}, {"clientes", "cli"}};
    Union u;
    u.izquierda = true;
    u.campos = {{{"edoctacli", "Clave"}, {"clientes", "Clave"}}};
    d.uniones = {u};
    d.columnas = {{"edoctacli", "Id"}};
    d.seleccion = std::move(seleccion);
    d.orden = std::move(orden);
    return d;
}

// The Ids in reading order. With a sort field, also checks that the rows come in
// the order the evaluator gives that field.
std::vector<int> ids(Filas& f, const std::string& orden = {}) {
    std::vector<int> r;
    const int i = f.indice("edoctacli", "Id");
    std::optional<formula::CampoOrden> o;
    if (!orden.empty()) o = formula::analizarCampoOrden(orden);
    const int c = o ? f.indice(o->campo.tabla, o->campo.campo) : -1;
    Valor anterior;
    while (f.siguiente()) {
        if (o && !r.empty()) {
            const auto cmp = compararParaOrden(anterior, f.valor(c));
            EXPECT_NE(cmp,
                      o->descendente ? std::strong_ordering::less : std::strong_ordering::greater)
                << anterior.aTexto() << " / " << f.valor(c).aTexto();
        }
        if (o) anterior = f.valor(c);
        r.push_back(static_cast<int>(f.valor(i).comoNumero()));
    }
    return r;
}

Opciones bloques(std::size_t n, std::size_t sinIndice) {
    Opciones o;
    o.filasPorBloque = n;
    o.filasPorBloqueSinIndice = sinIndice;
    return o;
}

// A database with the tables above and its connection string.
class FilasOdbc : public ::testing::Test {
  protected:
    void SetUp() override { bd.ejecutar(kTablas); }
    BaseDeDatosDePrueba bd;
    const std::string cs = prueba::conexionOdbc(bd);
};

const std::vector<std::string> kSelecciones = {
    "{edoctacli.IdMoneda}=1",
    "{edoctacli.Fecha}>=Date(2024,3,5)",
    "{edoctacli.Fecha}<=Date(2024,3,5)",
    "{edoctacli.Fecha}<Date(2024,3,5) and {edoctacli.IdMoneda}=1",
    "not ('BONIFICACION POR CANCELACION' in {edoctacli.Concepto})",
    "'devolucion ctes.' in {edoctacli.Concepto}",
    "'DEVOLUCIÓN CTES.' in {edoctacli.Concepto}",
    "not ('DEVOLUCION CTES. ' in {edoctacli.Concepto}) and not ('ABONO AUTOMATICO A CXC' in "
    "{edoctacli.Concepto})",
    "{edoctacli.Clave}='c001'",
    "{edoctacli.Clave}='C003'",
    "{edoctacli.Clave}>='C001' and {edoctacli.Clave}<='C002'",
    "{edoctacli.Clave}=''",
    "{edoctacli.Importe}>0",
    "{edoctacli.Importe}<>100.5",
    "{edoctacli.Concepto}='NINO'",
    "( {clientes.Nombre}='ana' OR {clientes.Zona}='S')",
    "{clientes.Zona} in ['N', 'X']",
    "not ({clientes.Zona}='N')",
    "{edoctacli.IdMoneda}=1 and Trim({edoctacli.Clave}) = 'C003'",
};

TEST_F(FilasOdbc, SeleccionEnviadaYEvaluadaDanLasMismasFilas) {
    for (const auto& sel : kSelecciones) {
        SCOPED_TRACE(sel);
        auto enviada = abrirOdbc(cs, consulta(sel, {"+{edoctacli.Id}"}));
        const std::vector<int> a = ids(*enviada);
        // The same selection evaluated here over every row.
        const formula::Formula f = formula::analizar(sel);
        std::vector<int> b;
        DescripcionConsulta d = consulta("", {"+{edoctacli.Id}"});
        for (const auto& c : f.campos()) d.columnas.push_back(c);
        auto filas = abrirOdbc(cs, d);
        while (filas->siguiente())
            if (formula::seleccionar(f, *filas))
                b.push_back(static_cast<int>(filas->valor(0).comoNumero()));
        EXPECT_EQ(a, b);
        const bool trim = sel.find("Trim") != std::string::npos;
        EXPECT_EQ(enviada->seleccionEnMemoria().size(), trim ? 1u : 0u);
        if (!trim) {
            EXPECT_EQ(enviada->leidas(), a.size()) << enviada->sqlEnviado().back();
        }
    }
}

TEST_F(FilasOdbc, PaginasConservanOrdenYFilas) {
    for (const char* orden : {"-{edoctacli.Importe}", "+{edoctacli.Fecha}", "+{clientes.Zona}",
                              "+{edoctacli.Concepto}", "-{edoctacli.Clave}"}) {
        SCOPED_TRACE(orden);
        auto uno = abrirOdbc(cs, consulta("", {orden}), bloques(1000, 1000));
        const auto esperado = ids(*uno, orden);
        ASSERT_EQ(esperado.size(), 8u);
        for (std::size_t n : {1u, 2u, 3u}) {
            auto f = abrirOdbc(cs, consulta("", {orden}), bloques(n, n));
            EXPECT_EQ(ids(*f, orden), esperado) << "bloques de " << n;
            // information_schema look-ups, then one statement per block plus the empty tail
            EXPECT_GE(f->sqlEnviado().size(), 8 / n);
        }
    }
}

// An order that no index serves: a small first block, then the rest sorted once into a
// temporary table and read by its row number; or, when that is not wanted, larger blocks.
TEST_F(FilasOdbc, OrdenSinIndiceSeOrdenaUnaVez) {
    const Opciones o = bloques(2, 500);
    DescripcionConsulta sola = consulta("", {"-{edoctacli.Id}"});
    sola.tablas.resize(1);
    sola.uniones.clear();
    auto conIndice = abrirOdbc(cs, sola, o);
    EXPECT_EQ(ids(*conIndice), (std::vector<int>{8, 7, 6, 5, 4, 3, 2, 1}));
    EXPECT_NE(conIndice->sqlEnviado().back().find(" LIMIT 2"), std::string::npos);
    for (const auto& sql : conIndice->sqlEnviado())
        EXPECT_EQ(sql.find("TEMPORARY"), std::string::npos) << sql;

    for (const char* orden : {"+{edoctacli.Importe}", "-{clientes.Zona}"}) {
        SCOPED_TRACE(orden);
        auto uno = abrirOdbc(cs, consulta("{edoctacli.Id}<>3", {orden}), bloques(1000, 1000));
        const auto esperado = ids(*uno, orden);
        ASSERT_EQ(esperado.size(), 7u);
        auto sinIndice = abrirOdbc(cs, consulta("{edoctacli.Id}<>3", {orden}), o);
        EXPECT_EQ(ids(*sinIndice, orden), esperado);
        const auto& sql = sinIndice->sqlEnviado();
        int creadas = 0, leidasDeLaTabla = 0;
        for (const auto& s : sql) {
            if (s.rfind("CREATE TEMPORARY TABLE tz_orden", 0) == 0) {
                ++creadas;
                // The rest: the selection and what follows the first block.
                EXPECT_NE(s.find("`edoctacli`.`Id` <> 3"), std::string::npos) << s;
                EXPECT_NE(s.find(" ORDER BY "), std::string::npos) << s;
            }
            if (s.find("FROM tz_orden") != std::string::npos) ++leidasDeLaTabla;
        }
        EXPECT_EQ(creadas, 1);
        EXPECT_GE(leidasDeLaTabla, 3);  // five rows after the first block, two a block

        Opciones sinTabla = o;
        sinTabla.ordenEnTablaTemporal = false;
        auto grandes = abrirOdbc(cs, consulta("{edoctacli.Id}<>3", {orden}), sinTabla);
        EXPECT_EQ(ids(*grandes, orden), esperado);
        EXPECT_NE(grandes->sqlEnviado().back().find(" LIMIT 500"), std::string::npos);
    }
}

// Whether the rest is sorted once into a table follows the server's plan for the blocks after
// the first: an index that leads the order serves it only when it goes on to the unique key
// (InnoDB's indexes end with the primary key by themselves, Aria's do not); a join whose order
// takes in the other table's key is sorted whatever its indexes.
TEST_F(FilasOdbc, TablaTemporalSoloCuandoElServidorOrdenaCadaBloque) {
    const struct {
        const char* nombre;
        const char* definicion;
        bool temporal;
    } casos[] = {
        {"innodb_indice", "Grupo INT, KEY Grupo (Grupo)) ENGINE=InnoDB", false},
        {"aria_indice", "Grupo INT, KEY Grupo (Grupo)) ENGINE=Aria", true},
        {"aria_indice_con_id", "Grupo INT, KEY Grupo (Grupo, Id)) ENGINE=Aria", false},
        {"sin_indice", "Grupo INT) ENGINE=InnoDB", true},
    };
    for (const auto& c : casos) {
        SCOPED_TRACE(c.nombre);
        bd.ejecutar(std::string("CREATE TABLE ") + c.nombre + " (Id INT PRIMARY KEY, " +
                    c.definicion + ";INSERT INTO " + c.nombre +
                    " SELECT seq, (seq * 7919) % 37 FROM seq_1_to_4000");
        DescripcionConsulta d;
        d.tablas = {{"edoctacli", c.nombre}};
        d.columnas = {{"edoctacli", "Id"}};
        d.orden = {"+{edoctacli.Grupo}"};
        auto f = abrirOdbc(cs, d, bloques(500, 500));
        std::vector<int> leidos = ids(*f, "+{edoctacli.Grupo}");
        ASSERT_EQ(leidos.size(), 4000u);
        std::sort(leidos.begin(), leidos.end());
        EXPECT_EQ(std::adjacent_find(leidos.begin(), leidos.end()), leidos.end());
        bool temporal = false;
        for (const auto& sql : f->sqlEnviado())
            temporal = temporal || sql.rfind("CREATE TEMPORARY TABLE tz_orden", 0) == 0;
        EXPECT_EQ(temporal, c.temporal);
    }
}

// Blocks read ahead on a second connection: blocks larger than a rowset of the driver,
// orders an index leads (the primary key; an indexed column with ties) in both directions.
TEST_F(FilasOdbc, BloquesLeidosPorAdelantadoSinRepetirNiPerder) {
    bd.ejecutar(
        "CREATE TABLE muchos (Id INT PRIMARY KEY, Grupo INT, KEY Grupo (Grupo));"
        "INSERT INTO muchos WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n "
        "WHERE i < 999) SELECT i, (i * 7919) % 37 FROM n");
    for (const char* orden : {"+{edoctacli.Id}", "-{edoctacli.Id}", "+{edoctacli.Grupo}"}) {
        SCOPED_TRACE(orden);
        DescripcionConsulta d;
        d.tablas = {{"edoctacli", "muchos"}};
        d.columnas = {{"edoctacli", "Id"}};
        d.seleccion = "{edoctacli.Id} <> 700";
        d.orden = {orden};
        auto uno = abrirOdbc(cs, d, bloques(5000, 5000));
        const auto esperado = ids(*uno, orden);
        ASSERT_EQ(esperado.size(), 998u);
        for (bool adelantado : {true, false}) {
            Opciones o = bloques(300, 300);
            o.leerAdelantado = adelantado;
            auto f = abrirOdbc(cs, d, o);
            EXPECT_EQ(ids(*f, orden), esperado) << "adelantado " << adelantado;
        }
    }
}

TEST_F(FilasOdbc, ClaveFloatEntreBloques) {
    bd.ejecutar(
        "CREATE TABLE flt (Id INT PRIMARY KEY, f FLOAT);"
        "INSERT INTO flt VALUES (1,1.2345678),(2,1.2345678),(3,1.2345678),(4,0.5)");
    DescripcionConsulta d;
    d.tablas = {{"edoctacli", "flt"}};
    d.columnas = {{"edoctacli", "Id"}};
    d.orden = {"-{edoctacli.f}"};
    auto f = abrirOdbc(cs, d, bloques(1, 1));
    EXPECT_EQ(ids(*f), (std::vector<int>{1, 2, 3, 4}));
}

TEST_F(FilasOdbc, FechaCeroEsFechaVacia) {
    DescripcionConsulta d = consulta("{edoctacli.Id}=3");
    d.columnas.push_back({"edoctacli", "Fecha"});
    d.columnas.push_back({"edoctacli", "Importe"});
    auto f = abrirOdbc(cs, d);
    ASSERT_TRUE(f->siguiente());
    EXPECT_EQ(f->valor(1).tipo(), Valor::Tipo::Fecha);
    EXPECT_TRUE(f->valor(1).comoFecha().vacia());
    EXPECT_TRUE(f->valor(2).esNulo());
    EXPECT_FALSE(f->siguiente());
}

TEST_F(FilasOdbc, ErroresConContexto) {
    try {
        abrirOdbc(cs + ";PWD=mala", consulta(""));
        FAIL();
    } catch (const ErrorDatos& e) {
        EXPECT_EQ(e.accion(), "conectar con la base de datos del reporte");
        EXPECT_NE(e.codigo(), 0);
    }
}

// A field or table the database lacks is found before any query is sent, and named as the
// report names it (the template's line is found from there).
TEST_F(FilasOdbc, NombresQueFaltanSeDicenAntesDeConsultar) {
    struct Caso {
        std::string seleccion;
        std::string tabla, campo, origen, texto;
    };
    const std::vector<Caso> casos = {
        {"{edoctacli.NoExiste}=1", "edoctacli", "NoExiste", "mov",
         "Error al leer los datos del reporte: el campo 'edoctacli.NoExiste' no existe en la "
         "tabla mov"},
        {"{clientes.nombre}='x'", "", "", "", ""},  // letter case does not matter
    };
    for (const auto& c : casos) {
        SCOPED_TRACE(c.seleccion);
        try {
            auto f = abrirOdbc(cs, consulta(c.seleccion));
            EXPECT_TRUE(c.tabla.empty());
        } catch (const ErrorNombre& e) {
            EXPECT_EQ(e.tabla(), c.tabla);
            EXPECT_EQ(e.campo(), c.campo);
            EXPECT_EQ(e.origen(), c.origen);
            EXPECT_EQ(std::string(e.what()), c.texto);
        }
    }
    DescripcionConsulta d = consulta("");
    d.tablas[1].origen = "noexiste";
    try {
        abrirOdbc(cs, d);
        FAIL();
    } catch (const ErrorNombre& e) {
        EXPECT_EQ(e.tabla(), "clientes");
        EXPECT_EQ(e.campo(), "");
    }
}

TEST_F(FilasOdbc, TablaSinClaveSeLeeEnUnBloqueYElSqlSeMuestra) {
    bd.ejecutar(
        "CREATE TABLE sinclave (a INT, b VARCHAR(5));"
        "INSERT INTO sinclave VALUES (3,'x'),(1,'y'),(2,NULL),(1,'z')");
    DescripcionConsulta d;
    d.tablas = {{"t", bd.nombre() + ".sinclave"}};
    d.columnas = {{"t", "a"}};
    d.seleccion = "{t.a} < 3";
    d.orden = {"+{t.a}"};
    ::setenv("TZOREP_DEBUG_SQL", "1", 1);
    ::testing::internal::CaptureStderr();
    auto f = abrirOdbc(cs, d, bloques(1, 1));
    std::vector<double> a;
    while (f->siguiente()) a.push_back(f->valor(0).comoNumero());
    const std::string err = ::testing::internal::GetCapturedStderr();
    ::unsetenv("TZOREP_DEBUG_SQL");
    EXPECT_EQ(a, (std::vector<double>{1, 1, 2}));
    const std::string& ultimo = f->sqlEnviado().back();
    EXPECT_EQ(ultimo, "SELECT `t`.`a` FROM `" + bd.nombre() +
                          "`.`sinclave` AS `t` WHERE `t`.`a` < 3 ORDER BY `t`.`a` ASC");
    EXPECT_NE(err.find("SQL: " + ultimo), std::string::npos);
}

// A named formula in the selection stays in memory and is asked of the caller.
class Formulas : public formula::Contexto {
  public:
    Valor campo(std::string_view, std::string_view) const override { return {}; }
    Valor formula(std::string_view n) const override {
        return n == "Limite" ? Valor::numero(50) : Contexto::formula(n);
    }
};

TEST_F(FilasOdbc, FormulasDelReporteEnLaSeleccion) {
    Formulas externas;
    Opciones o;
    o.contexto = &externas;
    auto f = abrirOdbc(
        cs,
        consulta("{edoctacli.IdMoneda}=1 and {edoctacli.Importe} > {@Limite}", {"+{edoctacli.Id}"}),
        o);
    EXPECT_EQ(ids(*f), (std::vector<int>{1}));
    EXPECT_EQ(f->seleccionEnMemoria(),
              (std::vector<std::string>{"{edoctacli.Importe} > {@Limite}"}));
}

// The collation of the formulas against the server's, pair by pair.
TEST(Colacion, IgualQueLaDelServidor) {
    BaseDeDatosDePrueba bd;
    const std::vector<std::string> textos = {
        "a", "A",  "á",   "ä ", "b",  "ñ", "N", "ß", "ss", "s", "Ø", "o", "a\t", "",
        " ", "ab", "AB ", "æ",  "ae", "ÿ", "Y", "😀", "😁",  "ǅ", "Ω", "ω", "я",   "Я"};
    std::string sql = "SELECT ";
    std::vector<std::pair<std::size_t, std::size_t>> pares;
    for (std::size_t i = 0; i < textos.size(); ++i)
        for (std::size_t j = 0; j < textos.size(); ++j) {
            if (!pares.empty()) sql += ",";
            sql += "STRCMP(_utf8mb4'" + textos[i] + "' COLLATE utf8mb4_general_ci, _utf8mb4'" +
                   textos[j] + "'), LOCATE(_utf8mb4'" + textos[j] +
                   "' COLLATE utf8mb4_general_ci, _utf8mb4'" + textos[i] + "') > 0";
            pares.push_back({i, j});
        }
    const auto fila = bd.filas(sql).at(0);
    for (std::size_t k = 0; k < pares.size(); ++k) {
        const auto& a = textos[pares[k].first];
        const auto& b = textos[pares[k].second];
        const auto r = compararTextos(a, b);
        const int nuestro = r < 0 ? -1 : (r > 0 ? 1 : 0);
        EXPECT_EQ(std::to_string(nuestro), fila[2 * k]) << "'" << a << "' vs '" << b << "'";
        EXPECT_EQ(contieneTexto(a, b) ? "1" : "0", fila[2 * k + 1])
            << "'" << b << "' in '" << a << "'";
    }
}

// A local data file with one table, as the forms' Auxiliar.mdb.
class FilasSqlite : public ::testing::Test {
  protected:
    void SetUp() override {
        sqlite3* b = nullptr;
        sqlite3_open(archivo.c_str(), &b);
        sqlite3_exec(b,
                     "CREATE TABLE Titulo100 (Id INTEGER PRIMARY KEY, Encabezado TEXT, Fecha DATE,"
                     " Monto REAL);"
                     "INSERT INTO Titulo100 VALUES (1,'Cargos de clientes','2024-03-05',1.5),"
                     "(2,'DEVOLUCIÓN','0000-00-00',NULL),(3,'devolucion x','2024-01-02',-2),"
                     "(4,NULL,NULL,3),(5,'Niño ','2024-12-31',0)",
                     nullptr, nullptr, nullptr);
        sqlite3_close(b);
        d.tablas = {{"Titulo100", "Titulo100"}};
        d.orden = {"+{Titulo100.Id}"};
    }
    pruebas::CarpetaTemporal tmp;
    const std::filesystem::path archivo = tmp / "Auxiliar.mdb";
    DescripcionConsulta d;
};

TEST_F(FilasSqlite, SeleccionLocalComoEnMemoria) {
    for (const char* sel :
         {"{Titulo100.Encabezado}='NINO'", "'DEVOLUCION' in {Titulo100.Encabezado}",
          "'devolución' in {Titulo100.Encabezado}", "{Titulo100.Fecha}>=Date(2024,1,2)",
          "{Titulo100.Fecha}<Date(2024,1,2)", "not ({Titulo100.Monto}>0)",
          "{Titulo100.Encabezado}<'D' or {Titulo100.Monto} in [3]",
          "Len({Titulo100.Encabezado})>5"}) {
        SCOPED_TRACE(sel);
        d.columnas = {{"Titulo100", "Id"}};
        d.seleccion = sel;
        auto f = abrirSqlite(archivo, d);
        std::vector<int> a;
        while (f->siguiente()) a.push_back(static_cast<int>(f->valor(0).comoNumero()));
        d.seleccion.clear();
        d.columnas = {{"Titulo100", "Id"},
                      {"Titulo100", "Encabezado"},
                      {"Titulo100", "Fecha"},
                      {"Titulo100", "Monto"}};
        auto todas = abrirSqlite(archivo, d);
        const formula::Formula fx = formula::analizar(sel);
        std::vector<int> b;
        while (todas->siguiente())
            if (formula::seleccionar(fx, *todas))
                b.push_back(static_cast<int>(todas->valor(0).comoNumero()));
        EXPECT_EQ(a, b);
    }
}

TEST_F(FilasSqlite, FechaCeroYArchivoFaltante) {
    d.columnas = {{"Titulo100", "Fecha"}};
    d.seleccion = "{Titulo100.Id}=2";
    auto f = abrirSqlite(archivo, d);
    ASSERT_TRUE(f->siguiente());
    EXPECT_TRUE(f->valor(0).comoFecha().vacia());
    // Past its end the reader stays there (the layout reads ahead and then asks again).
    EXPECT_FALSE(f->siguiente());
    EXPECT_FALSE(f->siguiente());
    EXPECT_THROW(abrirSqlite(tmp / "NoHay.mdb", d), ErrorDatos);
    d.columnas = {{"Titulo100", "Encabezados"}};
    try {
        abrirSqlite(archivo, d);
        FAIL();
    } catch (const ErrorNombre& e) {
        EXPECT_EQ(e.campo(), "Encabezados");
    }
}

struct CasoArchivos {
    const char* nombre;
    const char* entradas;
    const char* tabla;
    const char* esperado;
};

class ArchivosDatos : public ::testing::TestWithParam<CasoArchivos> {};

TEST_P(ArchivosDatos, Redireccion) {
    const auto m = leerArchivosDatos(GetParam().entradas);
    EXPECT_EQ(resolverTabla(GetParam().tabla, m, "datos1"), GetParam().esperado);
}

INSTANTIATE_TEST_SUITE_P(
    Casos, ArchivosDatos,
    ::testing::Values(CasoArchivos{"DestinoEnLaBaseDelReporte", "bitacorausuarios*tbltemp12",
                                   "bitacorausuarios", "datos1.tbltemp12"},
                      CasoArchivos{"DestinoConBaseYTablaEnMayusculas",
                                   "cxc*tanzoreportes.tbltemp3; Titulo100*Titulo100", "CXC",
                                   "tanzoreportes.tbltemp3"},
                      CasoArchivos{"SegundaEntrada", "a*b;c*d", "c", "datos1.d"},
                      CasoArchivos{"SinEntradas", "", "edoctacli", "datos1.edoctacli"},
                      CasoArchivos{"TablaConBaseSinEntrada", "x*y;", "otra.tabla", "otra.tabla"}),
    pruebas::PorNombre());

TEST(ArchivosDatos, EntradaMalFormada) {
    EXPECT_THROW(leerArchivosDatos("tabla sin estrella"), ErrorDatos);
}

}  // namespace
}  // namespace paratzorep::renderer::data
