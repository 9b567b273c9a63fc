// The shared module: templates, totals, replication settings, configuration values, look-ups
// and the report-date guard.
#include "session/SuModulo.h"

#include <gtest/gtest.h>

#include <fstream>

#include "data/BaseDDMaria.h"
#include "session/Sesion.h"
#include "toolkit/Apoyo.h"
#include "toolkit/ElSkin.h"
#include "toolkit/Fabrica.h"
#include "toolkit/Fechas.h"
#include "toolkit/Ini.h"

namespace paratzorep::session {
namespace {

using host::Columna;
using host::TipoCampo;
using host::Valor;

Columna Col(std::string nombre, TipoCampo tipo) {
    Columna c;
    c.nombre = std::move(nombre);
    c.tipo = tipo;
    return c;
}

class ConSesionLimpia : public ::testing::Test {
  protected:
    void SetUp() override {
        toolkit::RegistraToolkit();
        sesion() = RegistroSesion{};
    }
    void TearDown() override { sesion() = RegistroSesion{}; }
};

host::Recordset Documento(const std::vector<std::pair<std::string, std::string>>& campos) {
    std::vector<Columna> cols;
    std::vector<Valor> fila;
    for (const auto& [n, v] : campos) {
        cols.push_back(Col(n, TipoCampo::Decimal));
        fila.push_back(v == "NULL" ? Valor::Nulo(TipoCampo::Decimal)
                                   : Valor(v, TipoCampo::Decimal));
    }
    host::Recordset rs;
    rs.Abre(cols, {fila}, "doc", "", {});
    rs.MoveFirst();
    return rs;
}

TEST(TotalDocumentoTest, RetencionesSeSumanConSuSigno) {
    // 100 + 16 + 4 + 1 + 2 + 3 = 126 before retentions.
    auto base = [](const char* ret, const char* retIva) {
        return Documento({{"Subtotal", "100"},
                          {"IVA", "16"},
                          {"ImpuestoAd", "4"},
                          {"Cargo1Cantidad", "1"},
                          {"Cargo2Cantidad", "2"},
                          {"Cargo3Cantidad", "3"},
                          {"Retencion", ret},
                          {"RetencionIVA", retIva}});
    };
    EXPECT_DOUBLE_EQ(TotalDocumento(base("-10", "-1.5")), 114.5);
    EXPECT_LT(TotalDocumento(base("-10", "0")), 126);
    EXPECT_DOUBLE_EQ(TotalDocumento(base("10", "1.5")), 137.5);
    EXPECT_DOUBLE_EQ(TotalDocumento(base("NULL", "NULL")), 126);
    EXPECT_DOUBLE_EQ(TotalDocumento(Documento({{"Subtotal", "5"}})), 5);
}

TEST(PlantillasTest, XXXCondicionesYEncabezados) {
    EXPECT_EQ(LlenaXXX("{edoctacli.Clave}='XXX'", "C'1"), "{edoctacli.Clave}='C'1'");
    std::string f;
    f = UneCondicion(f, "{a.x}=1");
    f = UneCondicion(f, "");
    f = UneCondicion(f, "{a.y}=2");
    EXPECT_EQ(f, "{a.x}=1 and {a.y}=2");
    EXPECT_EQ(FormulaVendedor("Juan Pérez"), "VENDEDOR='Vendedor: Juan Pérez'");
    EXPECT_EQ(FormulaVendedor("  "), "");
    EXPECT_EQ(FechaFormula("05/03/2024"), "Date(2024,3,5)");
    EXPECT_EQ(FechaFormula("31/02/2024"), "");
}

TEST_F(ConSesionLimpia, ReplicacionConValoresPorOmisionYDelArchivo) {
    apoyo::CarpetaTemporal tmp;
    sesion().RutaTanzo = tmp.ruta().string();  // without final separator: joined anyway
    Replicacion r = LeeReplicacion();
    EXPECT_EQ(r.base, "datos1");
    EXPECT_EQ(r.puerto, "3309");
    EXPECT_EQ(r.usuario, "root");
    EXPECT_EQ(r.password, "");
    EXPECT_EQ(ArchivoReplicacion(), (tmp / "Para replicacion.INI").string());

    std::ofstream(tmp / "Para replicacion.INI")
        << "[Mirror]\nBase de datos=espejo\nContraseña=clave\nPuerto=3400\n";
    data::BaseDDMaria bd;
    AplicaReplicacion(bd);
    EXPECT_EQ(bd.cMiBase, "espejo");
    EXPECT_EQ(bd.cPassword, "clave");
    EXPECT_EQ(bd.cPuerto, 3400);
    EXPECT_EQ(bd.cUsuario, "root");
}

TEST_F(ConSesionLimpia, IniDeSesionYPosicionDeVentana) {
    apoyo::CarpetaTemporal tmp;
    sesion().ArchivoINI = (tmp / "sistema.ini").string();
    EscribeIni("General", "Clave", "v");
    EXPECT_EQ(LeeIni("general", "clave"), "v");

    struct V : host::Ventana {
        std::string Nombre() const override { return "RepAdmCxC"; }
    } v;
    v.Top = 120;
    v.Left = 40;
    GuardaPosicion(v);
    EXPECT_EQ(LeeIni("RepAdmCxC", "Linea"), "120");
    EXPECT_EQ(LeeIni("RepAdmCxC", "Columna"), "40");
    EXPECT_EQ(LeeIni("RepAdmCxC", "Firma"), "RepAdmCxC");
    EXPECT_EQ(LeeIni("RepAdmCxC", "Ventana"), "0");
    V otra;
    LeePosicion(otra);
    EXPECT_EQ(otra.Top, 120);
    EXPECT_EQ(otra.Left, 40);
    // The skin object made through the module writes to the same settings file.
    auto skin = ObjetoAyuda<toolkit::ElSkin>("ElSkin");
    ASSERT_TRUE(skin);
    EXPECT_EQ(skin->ArchivoINI, sesion().ArchivoINI);
}

TEST_F(ConSesionLimpia, MensajesYBarraPorElAnfitrion) {
    auto g = std::make_shared<host::InteraccionGrabada>();
    host::InteraccionTemporal t(g);
    g->respuestas.push_back(host::Respuesta::No);
    EXPECT_EQ(Mensaje("¿Seguro?", "Atención", host::Icono::Pregunta, host::Botones::SiNo),
              host::Respuesta::No);
    BarraPorcentaje(1, 4, "Llenando");
    Beep();
    ASSERT_EQ(g->mensajes.size(), 1u);
    EXPECT_EQ(g->mensajes[0].titulo, "Atención");
    EXPECT_EQ(g->mensajes[0].icono, host::Icono::Pregunta);
    EXPECT_EQ(g->progresos.back(), (std::pair<int, std::string>{25, "Llenando"}));
    EXPECT_EQ(g->beeps, 1);
}

// A data-access object whose server says a fixed date and that counts its opens.
class ServidorConFecha : public data::BaseDDMaria {
  public:
    struct ConFalsa : host::ConexionBdD {
        bool Abierta() const override { return true; }
        std::string Base() const override { return "generaltanzo"; }
        std::string Servidor() const override { return "falso"; }
        std::int32_t Puerto() const override { return 0; }
        std::string Usuario() const override { return ""; }
    };
    explicit ServidorConFecha(std::string fecha, bool abre = true)
        : fecha_(std::move(fecha)), abre_(abre) {}
    bool AbrirBdD(host::Conexion& cn, const std::string& base, bool) override {
        bases.push_back(base);
        if (!abre_) return false;
        cn = std::make_shared<ConFalsa>();
        return true;
    }
    void CierraBdD(host::Conexion& cn) override { cn.reset(); }
    bool RstExecutar(host::Recordset& rs, const host::Conexion&, const std::string& sql) override {
        rs.Abre({Col("f", TipoCampo::Fecha)}, {{Valor(fecha_, TipoCampo::Fecha)}}, sql, "", {});
        return true;
    }
    std::vector<std::string> bases;

  private:
    std::string fecha_;
    bool abre_;
};

class GuardiaTest : public ConSesionLimpia {
  protected:
    std::shared_ptr<host::InteraccionGrabada> g = std::make_shared<host::InteraccionGrabada>();
    host::InteraccionTemporal t{g};
};

TEST_F(GuardiaTest, SinLimiteTodoPasa) {
    sesion().DiasParaReportes = 0;
    EXPECT_TRUE(FechaReporteValida("01/01/1990"));
    EXPECT_TRUE(FechaReporteValida("no es fecha"));
    sesion().DiasParaReportes = -5;
    EXPECT_TRUE(FechaReporteValida("01/01/1990"));
    EXPECT_EQ(g->beeps, 0);
}

TEST_F(GuardiaTest, TreintaDiasContraLaFechaDelServidor) {
    auto bd = std::make_shared<ServidorConFecha>("2020-03-31");
    sesion().BaseDD = bd;
    sesion().DiasParaReportes = 30;
    EXPECT_TRUE(FechaReporteValida("01/03/2020"));  // 30 days before
    EXPECT_EQ(g->beeps, 0);
    EXPECT_FALSE(FechaReporteValida("29/02/2020"));  // 31 days before
    EXPECT_EQ(g->beeps, 1);
    EXPECT_FALSE(FechaReporteValida("31/02/2020"));
    EXPECT_FALSE(FechaReporteValida(""));
    EXPECT_EQ(g->beeps, 3);
    EXPECT_TRUE(FechaReporteValida("15/04/2020"));  // after the server's date
    // The general database (empty name) was opened for the server's date.
    ASSERT_FALSE(bd->bases.empty());
    EXPECT_EQ(bd->bases[0], "");
}

TEST_F(GuardiaTest, SinServidorUsaLaFechaDelEquipo) {
    sesion().BaseDD = std::make_shared<ServidorConFecha>("2000-01-01", false);
    sesion().DiasParaReportes = 30;
    toolkit::Fecha hoy = toolkit::Hoy();
    EXPECT_TRUE(FechaReporteValida(toolkit::TextoDMA(toolkit::SumaDias(hoy, -30))));
    EXPECT_FALSE(FechaReporteValida(toolkit::TextoDMA(toolkit::SumaDias(hoy, -31))));
    sesion().BaseDD.reset();
    EXPECT_TRUE(FechaReporteValida(toolkit::TextoDMA(hoy)));
    EXPECT_EQ(g->beeps, 1);
}

class ConBaseDeEmpresa : public apoyo::ConServidor {
  protected:
    void SetUp() override {
        toolkit::RegistraToolkit();
        sesion() = RegistroSesion{};
        ConServidor::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        sesion().BaseDD = bd;
        base_->ejecutar(
            "CREATE TABLE configura (Dato VARCHAR(40) PRIMARY KEY, Valor TEXT);"
            "INSERT INTO configura VALUES ('multiempresa','1'),('AplicaIVA','0'),"
            "('AplicaImpAd','1'),('Multimoneda','x'),('edc-Asunto','Saldo de XXX');"
            "CREATE TABLE monedas (Id INT PRIMARY KEY, Abreviacion VARCHAR(5), Paridad DOUBLE);"
            "INSERT INTO monedas VALUES (1,'MN',1),(2,'USD',17.25);"
            "CREATE TABLE clientes (Clave VARCHAR(10) PRIMARY KEY, Nombre VARCHAR(40));"
            "INSERT INTO clientes VALUES ('C1','Ana'),('O''X','Comilla')");
    }
    void TearDown() override {
        ConServidor::TearDown();
        sesion() = RegistroSesion{};
    }
};

TEST_F(ConBaseDeEmpresa, ConfiguracionYCorreo) {
    EXPECT_TRUE(EsMultiempresa(cn));
    EXPECT_FALSE(AplicaIVA(cn));
    EXPECT_TRUE(AplicaImpAd(cn));
    EXPECT_FALSE(LeerConfigBool(cn, "Multimoneda"));  // only "1" is true
    EXPECT_FALSE(LeerConfigBool(cn, "NoExiste"));
    EXPECT_EQ(LeerConfig(cn, "NoExiste", "omision"), "omision");
    EXPECT_EQ(LeerConfig(cn, "o'malo"), "");
    GrabarConfig(cn, "Servicios", "1");
    GrabarConfig(cn, "AplicaIVA", "1");
    EXPECT_TRUE(LeerConfigBool(cn, "Servicios"));
    EXPECT_TRUE(AplicaIVA(cn));
    EXPECT_EQ(AsuntoCorreo(cn, "edc", "Ana"), "Saldo de Ana");
    EXPECT_EQ(TextoCorreo(cn, "edc", "Ana"), "Mensaje del correo para Ana");
}

TEST_F(ConBaseDeEmpresa, BusquedasParidadHoraYFolio) {
    host::Recordset rs;
    EXPECT_TRUE(BuscaCliente(cn, "  C1 ", rs));
    EXPECT_EQ(rs["Nombre"].Texto(), "Ana");
    EXPECT_TRUE(BuscaCliente(cn, "O'X", rs));  // a quote in the key is data, not SQL
    EXPECT_EQ(rs["Nombre"].Texto(), "Comilla");
    EXPECT_FALSE(BuscaCliente(cn, "nadie' OR '1'='1", rs));
    EXPECT_FALSE(BuscaCliente(cn, "   ", rs));
    EXPECT_THROW(BuscaProveedor(cn, "P1", rs), host::ErrorDatos);  // no such table
    EXPECT_DOUBLE_EQ(Paridad(cn, 2), 17.25);
    EXPECT_DOUBLE_EQ(Paridad(cn, 99), 1.0);
    EXPECT_EQ(HoraServidor(cn).size(), 19u);
    base_->ejecutar(
        "CREATE TABLE entradas (Serie VARCHAR(3), Folio INT);"
        "INSERT INTO entradas VALUES ('A',4)");
    EXPECT_EQ(Foliar(cn, "entradas", "Folio", "A"), 5);
}

TEST_F(ConBaseDeEmpresa, IconosSeEscribenEnTempoImg) {
    apoyo::CarpetaTemporal imgs;
    sesion().RutaImgs = imgs.ruta().string();
    base_->ejecutar(
        "CREATE TABLE iconos (Id INT PRIMARY KEY, DESCripcion VARCHAR(60), Imagen MEDIUMBLOB);"
        "INSERT INTO iconos VALUES (1,'Imprimir',X'89504E470D0A1A0A00FF'),(2,'Vacio',NULL)");
    const std::string esperado = imgs.ruta().string() + "/Tempo.img";
    EXPECT_EQ(IconoPorDescripcion(cn, "Imprimir", base_->nombre()), esperado);
    EXPECT_EQ(apoyo::LeeArchivo(esperado), std::string("\x89PNG\r\n\x1A\n\0\xFF", 10));
    EXPECT_EQ(IconoPorId(cn, 2, base_->nombre()), "");
    EXPECT_EQ(IconoPorDescripcion(cn, "o'tro", base_->nombre()), "");
}

}  // namespace
}  // namespace paratzorep::session
