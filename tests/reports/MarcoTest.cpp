// The report form frame against the test server: default dates, the date guard, the input
// check, the error flag and the work table's clean-up; and the user activity log's SQL.
#include "reports/Marco.h"

#include <gtest/gtest.h>

#include <optional>

#include "data/BaseDDMaria.h"
#include "host/DatosConecte.h"
#include "host/Interaccion.h"
#include "host/Menu.h"
#include "reports/RepAdmMovUser.h"
#include "session/Sesion.h"
#include "session/Solicitud.h"
#include "support/NombresDeCaso.h"
#include "support/Soporte.h"
#include "toolkit/Fabrica.h"
#include "toolkit/LibKRVM.h"

namespace paratzorep::reports {
namespace {

// A report on the table `movs` of the scratch database: clones it, fills it from the first date
// on and runs whatever runner the test gives.
class FormaPrueba : public FormaReporte {
  public:
    FormaPrueba() : FormaReporte("RepAdmPrueba", "Reporte de prueba") {
        AgregaFecha("mkeFecha", 0);
        AgregaFecha("mkeFecha", 1);
        Agrega("txtDato", 0, "Cliente");
        Agrega("dcmDato", 0);
    }
    std::string modelo = "movs";
    bool llenada = false;
    std::string tabla;

  protected:
    std::string TablaMovimientos() const override { return "movs"; }
    void EnlazaCombos() override {
        EnlazaCombo(Ctl("dcmDato", 0), "SELECT DISTINCT Importe FROM movs ORDER BY Importe",
                    "Importe", "Importe");
    }
    void Imprimir() override {
        tabla = ClonaTabla(modelo, false);
        if (session::HuboError()) return;
        Paso("llenar la tabla de trabajo");
        Llena("INSERT INTO " + tabla + " SELECT * FROM movs WHERE Fecha>='" + FechaSQL(0) + "'");
        llenada = true;
        session::solicitud().Plantilla = "prueba.rpt";
        session::solicitud().MapeaTabla("movs", tabla);
        Ejecuta();
    }
};

class MarcoTest : public ::testing::Test {
  protected:
    void SetUp() override {
        toolkit::RegistraToolkit();
        session::sesion() = session::RegistroSesion{};
        const auto& servidor = pruebas::servidorDePrueba();
        bd.emplace(servidor);
        bd->ejecutar("CREATE DATABASE IF NOT EXISTS generaltanzo");
        bd->ejecutar(
            "CREATE TABLE movs (Id INT AUTO_INCREMENT PRIMARY KEY, Fecha DATE NOT NULL DEFAULT "
            "'0000-00-00', Importe INT);"
            "INSERT INTO movs (Fecha, Importe) VALUES ('0000-00-00',1),('2024-03-05',2),"
            "('2023-11-20',3),('2024-01-10',4)");
        base = pruebas::baseDD(servidor, bd->nombre());
        auto& s = session::sesion();
        s.BaseDD = base;
        s.DatosConecte = std::make_shared<host::DatosConecte>();
        s.LibKRVM = std::make_shared<toolkit::LibKRVM>();
        s.RutaTanzo = tmp.ruta().string() + "/";
        s.ArchivoINI = (tmp / "sistema.ini").string();
        s.UserUsuario = "PRUEBA";
        forma.FijaEjecutor([this](const std::string&) {
            ++corridas;
            // The work table exists while the runner renders.
            tablaAlCorrer = bd->valor(
                                "SELECT COUNT(*) FROM information_schema.tables WHERE "
                                "table_schema=DATABASE() AND table_name='" +
                                forma.tabla + "'") == std::optional<std::string>("1");
            if (!falloDelMotor.empty()) throw std::runtime_error(falloDelMotor);
        });
    }
    void TearDown() override {
        forma.Descarga();
        session::sesion() = session::RegistroSesion{};
    }

    int TablasDeTrabajo() const { return bd->tablasDeTrabajo(); }

    pruebas::CarpetaTemporal tmp;
    std::optional<pruebas::BaseDeDatosDePrueba> bd;
    std::shared_ptr<data::BaseDDMaria> base;
    std::shared_ptr<host::InteraccionGrabada> sink = std::make_shared<host::InteraccionGrabada>();
    host::InteraccionTemporal instalada{sink};
    FormaPrueba forma;
    int corridas = 0;
    bool tablaAlCorrer = false;
    std::string falloDelMotor;
};

TEST_F(MarcoTest, CargaConFechasDeLaPrimeraYUltimaFilaYCombosLigados) {
    forma.Carga();
    // The zero date is skipped; the rows are not in date order.
    EXPECT_EQ(forma.Ctl("mkeFecha", 0).Text, "20/11/2023");
    EXPECT_EQ(forma.Ctl("mkeFecha", 1).Text, "05/03/2024");
    EXPECT_EQ(forma.Ctl("mkeFecha", 0).Mask, "##/##/####");
    EXPECT_EQ(forma.Ctl("dcmDato", 0).Items, (std::vector<std::string>{"1", "2", "3", "4"}));
    EXPECT_TRUE(sink->mensajes.empty());
}

TEST_F(MarcoTest, SinFilasLasFechasQuedanVacias) {
    bd->ejecutar("DELETE FROM movs");
    forma.Carga();
    EXPECT_TRUE(forma.Ctl("mkeFecha", 0).SinFecha());
    EXPECT_TRUE(forma.Ctl("mkeFecha", 1).SinFecha());
}

TEST_F(MarcoTest, ImprimeYBorraLaTablaDeTrabajo) {
    forma.Carga();
    forma.Fija("cmdImprimir", "");
    EXPECT_EQ(corridas, 1);
    EXPECT_TRUE(tablaAlCorrer);
    EXPECT_EQ(forma.tabla, "tbltemp0");
    EXPECT_EQ(TablasDeTrabajo(), 0);
    const auto& sol = session::solicitud();
    EXPECT_EQ(sol.ArchivosDatos, (std::vector<std::string>{"movs*tbltemp0"}));
    EXPECT_EQ(sol.TituloVentana, "Reporte de prueba");
    EXPECT_EQ(sol.UsuarioImpresion, "PRUEBA");
    EXPECT_EQ(sol.Destino, 0);
    EXPECT_TRUE(sink->mensajes.empty());
    // The fill said what it was doing and how many rows went in; the bar is hidden at the end.
    ASSERT_EQ(sink->progresos.size(), 3u);
    EXPECT_EQ(sink->progresos[0],
              std::make_pair(-1, std::string("Llenando la tabla de trabajo...")));
    EXPECT_EQ(sink->progresos[1].second.rfind("Tabla de trabajo: 3 filas", 0), 0u);
    EXPECT_EQ(sink->progresos[2], std::make_pair(0, std::string()));
}

TEST_F(MarcoTest, GuardiaDeFechaConLaFechaDelServidor) {
    session::sesion().DiasParaReportes = 30;
    forma.Carga();
    auto haceDias = [this](int dias) {
        return *bd->valor("SELECT DATE_FORMAT(CURDATE() - INTERVAL " + std::to_string(dias) +
                          " DAY, '%d/%m/%Y')");
    };
    forma.Fija("mkeFecha(1)", haceDias(0));
    forma.Fija("mkeFecha(0)", haceDias(30));
    EXPECT_TRUE(forma.Imprime());
    EXPECT_EQ(sink->beeps, 0);

    forma.Fija("mkeFecha(0)", haceDias(31));
    EXPECT_FALSE(forma.Imprime());
    EXPECT_EQ(sink->beeps, 1);  // the refusal only beeps
    EXPECT_TRUE(sink->mensajes.empty());
    EXPECT_EQ(corridas, 1);  // nothing ran the second time
    EXPECT_EQ(TablasDeTrabajo(), 0);
}

TEST_F(MarcoTest, FechaInvalidaSeRechazaAunSinLimite) {
    forma.Carga();
    forma.Fija("mkeFecha(1)", "31/02/2024");
    EXPECT_FALSE(forma.Imprime());
    ASSERT_EQ(sink->mensajes.size(), 1u);
    EXPECT_NE(sink->mensajes[0].texto.find("La fecha final"), std::string::npos);
    EXPECT_EQ(corridas, 0);
}

struct CasoComillas {
    const char* nombre;
    const char* texto;  // typed in the box
};

class ComillasEnCajas : public MarcoTest, public ::testing::WithParamInterface<CasoComillas> {};

TEST_P(ComillasEnCajas, DetienenLaImpresionAntesDeArmarSql) {
    forma.Carga();
    forma.Fija("txtDato(0)", GetParam().texto);
    EXPECT_FALSE(forma.Imprime());
    ASSERT_EQ(sink->mensajes.size(), 1u);
    EXPECT_EQ(sink->mensajes[0].titulo, "Reporte de prueba");
    EXPECT_NE(sink->mensajes[0].texto.find("'Cliente'"), std::string::npos)
        << sink->mensajes[0].texto;
    EXPECT_FALSE(forma.llenada);
    EXPECT_EQ(corridas, 0);
    EXPECT_EQ(TablasDeTrabajo(), 0);
}

INSTANTIATE_TEST_SUITE_P(Casos, ComillasEnCajas,
                         ::testing::Values(CasoComillas{"ApostrofoEnNombre", "O'BRIEN"},
                                           CasoComillas{"InyeccionSql", "' OR '1'='1"},
                                           CasoComillas{"DiagonalInversa", "C\\1"},
                                           CasoComillas{"SoloDiagonalInversa", "\\"}),
                         pruebas::PorNombre());

TEST_F(MarcoTest, BanderaDeErrorSaltaElLlenado) {
    forma.modelo = "no_existe";
    forma.Carga();
    EXPECT_FALSE(forma.Imprime());
    EXPECT_FALSE(forma.llenada);
    EXPECT_EQ(corridas, 0);
    EXPECT_TRUE(session::HuboError());
    ASSERT_EQ(sink->mensajes.size(), 1u);
    const auto& m = sink->mensajes[0];
    EXPECT_EQ(m.icono, host::Icono::Critico);
    EXPECT_NE(m.texto.find("crear la tabla de trabajo a partir de 'no_existe'"), std::string::npos)
        << m.texto;
    EXPECT_NE(m.texto.find("1146"), std::string::npos) << m.texto;  // the server's code
}

TEST_F(MarcoTest, TablaBorradaTrasFallarElReporte) {
    falloDelMotor = "La plantilla 'prueba.rpt' no está en reportesbin";
    forma.Carga();
    EXPECT_FALSE(forma.Imprime());
    EXPECT_TRUE(forma.llenada);
    EXPECT_TRUE(tablaAlCorrer);
    EXPECT_EQ(TablasDeTrabajo(), 0);
    ASSERT_EQ(sink->mensajes.size(), 1u);
    const std::string& texto = sink->mensajes[0].texto;
    EXPECT_NE(texto.find("generar el reporte con la plantilla 'prueba.rpt'"), std::string::npos)
        << texto;
    EXPECT_NE(texto.find(falloDelMotor), std::string::npos) << texto;

    // The form stays usable: the next print takes the same free name again.
    falloDelMotor.clear();
    sink->Limpia();
    EXPECT_TRUE(forma.Imprime());
    EXPECT_EQ(forma.tabla, "tbltemp0");
    EXPECT_TRUE(sink->mensajes.empty());
}

TEST_F(MarcoTest, ArchivoSinElegirNoSeImprime) {
    forma.Carga();
    sink->respuestasDialogo.push_back(false);  // the export dialog is cancelled
    forma.Fija("optDispos(2)", "1");
    EXPECT_EQ(forma.Destino(), 0);  // back to the screen
    EXPECT_FALSE(forma.Ctl("lblArchivoReporte").Visible);
}

TEST_F(MarcoTest, CerrarGuardaLaPosicionYAvisaAlAnfitrion) {
    struct MenuPrueba : host::MenuRegistro {
        bool deja = true;
        int descargas = 0;
        bool SiDescargaVentana(const host::Formulario&) override { return deja; }
        void AlDescargarVentanaHija(const host::Formulario&) override { ++descargas; }
    };
    auto menu = std::make_shared<MenuPrueba>();
    session::sesion().objMenu = menu;
    forma.Carga();
    forma.Top = 120;
    menu->deja = false;
    EXPECT_FALSE(forma.Cierra());
    EXPECT_FALSE(forma.Descargada());
    menu->deja = true;
    EXPECT_TRUE(forma.Cierra());
    EXPECT_EQ(menu->descargas, 1);
    EXPECT_FALSE(forma.ConexionEmpresa());
    FormaPrueba otra;
    otra.Carga();
    EXPECT_EQ(otra.Top, 120);  // the position written on unload comes back
}

TEST(RepAdmMovUserTest, CondicionesYLlenadoComoLasPlantillasDelSistema) {
    EXPECT_EQ(RepAdmMovUser::Condiciones("2024-01-01", "2024-01-31", "", false),
              " WHERE Fecha>='2024-01-01' AND Fecha<='2024-01-31'");
    EXPECT_EQ(RepAdmMovUser::Condiciones("2024-01-01", "2024-01-31", "ANA", true),
              " WHERE Fecha>='2024-01-01' AND Fecha<='2024-01-31' AND "
              "decode(bitacorausuarios.Usuario,'418')='ANA' AND "
              "(estructurasm.Id=180 or estructurasm.Id=181)");
    const std::string sql = RepAdmMovUser::SqlLlenado("tbltemp3", " WHERE X");
    EXPECT_EQ(sql.rfind("INSERT INTO tbltemp3 (Id,Fecha,Hora,Usuario,Accion,Version,Equipo) "
                        "SELECT bitacorausuarios.Id,Fecha,Hora,decode(Usuario,'418') as Usuario,",
                        0),
              0u);
    EXPECT_NE(sql.find(" FROM bitacorausuarios LEFT JOIN generaltanzo.estructurasm on "
                       "estructurasm.Id=Registro WHERE X"),
              std::string::npos);
}

TEST(RepAdmMovUserTest, TiposDeAccionSeUnenConO) {
    EXPECT_EQ(RepAdmMovUser::FormulaAcciones({}), "");
    EXPECT_EQ(RepAdmMovUser::FormulaAcciones({"ALTA"}), "'ALTA' in {bitacorausuarios.Accion}");
    EXPECT_EQ(RepAdmMovUser::FormulaAcciones({"ALTA", "BAJA"}),
              "('ALTA' in {bitacorausuarios.Accion} or 'BAJA' in {bitacorausuarios.Accion})");
}

}  // namespace
}  // namespace paratzorep::reports
