#include "output/Ejecutor.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <regex>

#include "Entorno.h"
#include "data/TablasTrabajo.h"
#include "host/Interaccion.h"
#include "renderer/TiposArchivo.h"
#include "toolkit/MyODBCs.h"

namespace paratzorep::output::prueba {
namespace {

// A template over the company table "movtos" (redirected to the work table) and the local
// heading table Generales.
const char* kPlantilla = R"(<?xml version="1.0" encoding="UTF-8"?>
<reporte version="1" titulo="Movimientos">
  <tabla nombre="movtos"/>
  <tabla nombre="Generales" archivo="Auxiliar.mdb"/>
  <formula nombre="ENCABEZADO">'Sin título'</formula>
  <parametro nombre="UsuarioImpresion"/>
  <encabezadoReporte>
    <formula nombre="ENCABEZADO" x="0" y="0" ancho="100"/>
    <campo ref="Generales.Titulo" x="100" y="0" ancho="60"/>
    <parametro nombre="UsuarioImpresion" x="160" y="0" ancho="30"/>
  </encabezadoReporte>
  <detalle>
    <campo ref="movtos.Clave" x="0" y="0" ancho="40"/>
    <campo ref="movtos.Importe" x="50" y="0" ancho="40" formato="0.00"/>
  </detalle>
  <sinDatos>Sin movimientos</sinDatos>
</reporte>)";

class Ejecutor : public ConAlmacen {
  protected:
    void SetUp() override {
        ConAlmacen::SetUp();
        if (HasFatalFailure()) return;
        Guarda("movimientos.rpt", kPlantilla);
        // The model table, its work-table clone filled as a form would.
        bd->ejecutar(
            "CREATE TABLE movtos (Id INT NOT NULL PRIMARY KEY, Clave VARCHAR(10), "
            "Importe DECIMAL(12,2))");
        trabajo = data::ClonaEstructura(*base, cn, "movtos", false);
        bd->ejecutar("INSERT INTO " + trabajo +
                     " VALUES (1,'A-1',5.00),(2,'B-2',250.50),(3,'C-3',75.25),(4,'D''4',12.00)");
        // The local work file with its heading row.
        local = (tmp / "Auxiliar.mdb").string();
        host::Conexion cl;
        ASSERT_TRUE(base->AbreBdDAccess(cl, local)) << base->UltimoError();
        base->PasaGeneralesAlRpt(cl, {{"Titulo", host::Valor("Sucursal Centro")}});
        base->CierraBdD(cl);

        auto& sol = session::solicitud();
        sol.Limpia();
        sol.Plantilla = "movimientos";
        sol.MapeaTabla("movtos", trabajo);
        sol.Formula(0, "ENCABEZADO='Movimientos de enero'");
        sol.SortField(0, "-{movtos.Importe}");
        sol.FormulaSeleccion = "{movtos.Importe} > 10";
        sol.Destino = 2;
        sol.TipoArchivo =
            static_cast<std::int16_t>(renderer::InfoDe(renderer::TipoArchivo::Txt).codigo);
        sol.NombreArchivo = (tmp / "salida.txt").string();
    }

    std::string trabajo;
    std::string local;
};

TEST_F(Ejecutor, RendersAFilledWorkTableThroughTheDataSourceItWrote) {
    opcionesEjecucion().bitacoraSolicitudes = (tmp / "solicitudes.jsonl").string();
    auto sink = std::make_shared<host::InteraccionGrabada>();
    {
        host::InteraccionTemporal instalada(sink);
        EjecutaReporte(local);
    }
    // The progress bar: reading, then writing, then hidden.
    ASSERT_GE(sink->progresos.size(), 3u);
    EXPECT_EQ(sink->progresos.front(), std::make_pair(-1, std::string("Leyendo datos...")));
    EXPECT_EQ(sink->progresos.back(), std::make_pair(0, std::string()));
    const auto& escrito = sink->progresos[sink->progresos.size() - 2];
    EXPECT_EQ(escrito.first, 100);
    EXPECT_EQ(escrito.second.rfind("Escribiendo: página 1 de 1", 0), 0u) << escrito.second;

    const std::string txt = Lee(tmp / "salida.txt");
    EXPECT_NE(txt.find("Movimientos de enero"), std::string::npos) << txt;
    EXPECT_NE(txt.find("Sucursal Centro"), std::string::npos) << txt;
    EXPECT_NE(txt.find("PRUEBA"), std::string::npos) << txt;
    // Selected (> 10) and in descending order of Importe; the quote survives.
    const auto b = txt.find("B-2"), c = txt.find("C-3"), d = txt.find("D'4");
    ASSERT_NE(b, std::string::npos) << txt;
    ASSERT_NE(c, std::string::npos) << txt;
    ASSERT_NE(d, std::string::npos) << txt;
    EXPECT_LT(b, c);
    EXPECT_LT(c, d);
    EXPECT_EQ(txt.find("A-1"), std::string::npos) << txt;
    EXPECT_EQ(UltimoResultado().filas, 3);

    // The data source the engine connected through, readable by its owner only.
    const std::string ini = std::getenv("ODBCINI");
    struct stat st {};
    ASSERT_EQ(::stat(ini.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0600u);
    const std::string fuente = Lee(ini);
    EXPECT_NE(fuente.find("[myodbc3-test]"), std::string::npos);
    EXPECT_NE(fuente.find("PORT=" + std::to_string(bd->servidor().puerto)), std::string::npos);

    // The request log: one line, the password masked.
    const std::string log = Lee(tmp / "solicitudes.jsonl");
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1);
    EXPECT_NE(log.find("PWD=***"), std::string::npos) << log;
    EXPECT_NE(log.find("\"archivoLocal\":\"" + local + "\""), std::string::npos) << log;
    if (!bd->servidor().password.empty()) {
        EXPECT_EQ(log.find(bd->servidor().password), std::string::npos);
    }
    // The template was written under the reports folder.
    EXPECT_TRUE(std::filesystem::exists(session::sesion().RutaRpts + "movimientos.rpt"));
}

TEST_F(Ejecutor, PdfPrinterWritesIntoThePdfFolderWithAStampedName) {
    auto& sol = session::solicitud();
    sol.Destino = 1;
    sol.Impresora = "PDFCreator";
    EjecutaReporte(local);
    std::vector<std::string> pdfs;
    for (const auto& e : std::filesystem::directory_iterator(session::sesion().RutaPDFs))
        pdfs.push_back(e.path().filename().string());
    ASSERT_EQ(pdfs.size(), 1u);
    EXPECT_TRUE(std::regex_match(pdfs[0], std::regex(R"(movimientos\d{8}-\d{6}\.pdf)"))) << pdfs[0];
    EXPECT_EQ(Lee(session::sesion().RutaPDFs + pdfs[0]).substr(0, 5), "%PDF-");
    EXPECT_FALSE(std::filesystem::exists(tmp / "salida.txt"));
}

TEST_F(Ejecutor, MissingTemplateGivesAClearMessageAndNoFile) {
    session::solicitud().Plantilla = "noexiste";
    try {
        EjecutaReporte(local);
        FAIL() << "no error";
    } catch (const ErrorReporte& e) {
        const std::string m = e.what();
        EXPECT_NE(m.find("noexiste.rpt"), std::string::npos) << m;
        EXPECT_NE(m.find("no está guardado"), std::string::npos) << m;
        if (!bd->servidor().password.empty()) {
            EXPECT_EQ(m.find(bd->servidor().password), std::string::npos);
        }
    }
    EXPECT_FALSE(std::filesystem::exists(tmp / "salida.txt"));
    EXPECT_FALSE(std::filesystem::exists(session::sesion().RutaRpts + "noexiste.rpt"));
}

TEST_F(Ejecutor, NameThatIsNotARptRendersNothing) {
    session::solicitud().Plantilla = "movimientos.rptx";
    EXPECT_NO_THROW(EjecutaReporte(local));
    EXPECT_EQ(UltimoResultado().paginas, 0);
    EXPECT_FALSE(std::filesystem::exists(tmp / "salida.txt"));
}

TEST_F(Ejecutor, EngineErrorsReachTheCallerNamingTheReport) {
    session::solicitud().Formula(1, "NOHAY='x'");
    try {
        EjecutaReporte(local);
        FAIL() << "no error";
    } catch (const ErrorReporte& e) {
        const std::string m = e.what();
        EXPECT_NE(m.find("movimientos"), std::string::npos) << m;
        EXPECT_NE(m.find("NOHAY"), std::string::npos) << m;
    }
    EXPECT_FALSE(std::filesystem::exists(tmp / "salida.txt"));
}

TEST_F(Ejecutor, ServerErrorKeepsItsSqlNested) {
    bd->ejecutar("DROP TABLE reportesbin");
    try {
        EjecutaReporte(local);
        FAIL() << "no error";
    } catch (const ErrorReporte& e) {
        try {
            std::rethrow_if_nested(e);
            FAIL() << "nothing nested";
        } catch (const host::ErrorDatos& d) {
            EXPECT_NE(d.Sql().find("reportesbin"), std::string::npos) << d.Sql();
            EXPECT_NE(d.Codigo(), 0);
        }
    }
}

TEST_F(Ejecutor, LocalTableNeedsTheWorkFileOnlyWhenItIsRead) {
    try {
        EjecutaReporte("");
        FAIL() << "no error";
    } catch (const ErrorReporte& e) {
        EXPECT_NE(std::string(e.what()).find("Generales"), std::string::npos) << e.what();
    }
    std::string sinLocal = kPlantilla;
    const std::string campo = R"(<campo ref="Generales.Titulo" x="100" y="0" ancho="60"/>)";
    sinLocal.erase(sinLocal.find(campo), campo.size());
    Guarda("sinlocal.rpt", sinLocal);
    session::solicitud().Plantilla = "sinlocal";
    EjecutaReporte("");
    EXPECT_EQ(UltimoResultado().filas, 3);
}

TEST_F(Ejecutor, UnreachableRemoteServerFallsBackBeforeTheConnectionIsBuilt) {
    auto& dc = *session::sesion().DatosConecte;
    dc.xServidor = "127.0.0.1";
    dc.xPuerto = 1;  // nothing listens there
    dc.xUsuario = "remoto";
    dc.xPassWord = "claveremota";
    dc.xBaseDD = "datos_remotos";
    opcionesEjecucion().bitacoraSolicitudes = (tmp / "solicitudes.jsonl").string();
    EjecutaReporte(local);
    EXPECT_EQ(UltimoResultado().filas, 3);
    ASSERT_EQ(usuario->mensajes.size(), 1u);
    EXPECT_EQ(usuario->mensajes[0].titulo, "Atención");
    EXPECT_TRUE(dc.xServidor.empty());
    // The log names the server actually read.
    const std::string log = Lee(tmp / "solicitudes.jsonl");
    EXPECT_NE(log.find("DB=" + bd->nombre() + ";UID=" + bd->servidor().usuario), std::string::npos)
        << log;
    EXPECT_EQ(log.find("claveremota"), std::string::npos);
}

TEST_F(Ejecutor, RememberFlagLetsTheUserPickTheFormatFirst) {
    std::string corto = kPlantilla;
    corto.replace(corto.find("<encabezadoReporte>"), std::string("<encabezadoReporte>").size(),
                  R"(<encabezadoReporte><texto x="0" y="10" ancho="100">FORMATO CORTO</texto>)");
    Guarda("movcorto.rpt", corto);
    bd->ejecutar(
        "INSERT INTO anexoreportes (ArchivoPadre, Archivo, DESCripcion) VALUES "
        "('movimientos.rpt', 'movcorto.rpt', 'Corto')");
    usuario->llena = [](host::Formulario& f) { f.Fija("cmbFormato", "#1"); };
    EjecutaReporte(local);
    EXPECT_EQ(Lee(tmp / "salida.txt").find("FORMATO CORTO"), std::string::npos);
    EXPECT_TRUE(usuario->dialogos.empty());

    RecordarFormato() = true;
    EjecutaReporte(local);
    EXPECT_NE(Lee(tmp / "salida.txt").find("FORMATO CORTO"), std::string::npos);
    EXPECT_EQ(usuario->dialogos.size(), 1u);
}

TEST_F(Ejecutor, RemoteServerValuesGoIntoTheConnection) {
    auto& dc = *session::sesion().DatosConecte;
    dc.xServidor = "remoto.example";
    dc.xBaseDD = "datos7";
    dc.xUsuario = "ru";
    dc.xPassWord = "rp";
    dc.xPuerto = 3310;
    const auto s = detail::ServidorDeSesion();
    EXPECT_EQ(detail::CadenaConnect(s),
              "DSN=myodbc3-test;SERVER=remoto.example;DB=datos7;UID=ru;PWD=rp");
    EXPECT_EQ(s.puerto, 3310);
    dc.xServidor.clear();
    EXPECT_EQ(detail::ServidorDeSesion().base, bd->nombre());
}

TEST_F(Ejecutor, FormatEntryUsesPrinterOrPreview) {
    std::ostringstream pantalla;
    opcionesEjecucion().salidaPantalla = &pantalla;
    opcionesEjecucion().carpetaVistaPrevia = (tmp / "vista").string();
    session::sesion().VistaPrevia = -1;
    EjecutaFormato("movimientos.rpt", "Nota de venta", local);
    session::sesion().VistaPrevia = 0;
    EXPECT_EQ(session::solicitud().Destino, 0);
    EXPECT_EQ(session::solicitud().TituloVentana, "Nota de venta");
    EXPECT_NE(pantalla.str().find("B-2"), std::string::npos);
    EXPECT_FALSE(UltimoResultado().archivos.empty());
}

}  // namespace
}  // namespace paratzorep::output::prueba

namespace paratzorep::output::detail {
namespace {

struct CasoAvance {
    const char* nombre;
    renderer::AvanceMotor avance;
    int porcentaje;
    const char* texto;
};

class TextosDeAvance : public ::testing::TestWithParam<CasoAvance> {};

TEST_P(TextosDeAvance, PorcentajeYTexto) {
    const auto [porcentaje, texto] = TextoAvance(GetParam().avance);
    EXPECT_EQ(porcentaje, GetParam().porcentaje);
    EXPECT_EQ(texto, GetParam().texto);
}

using Fase = renderer::AvanceMotor::Fase;
INSTANTIATE_TEST_SUITE_P(
    Fases, TextosDeAvance,
    ::testing::Values(
        CasoAvance{"AlEmpezar", {Fase::Leyendo, 0, 0, 0, 0.0}, -1, "Leyendo datos..."},
        CasoAvance{"LeyendoConRitmo",
                   {Fase::Leyendo, 1234567, 24000, 0, 2.0},
                   -1,
                   "Leyendo datos: 1,234,567 filas, 24,000 páginas (617,283 filas/s)"},
        CasoAvance{"UnaFilaSinRitmoAun",
                   {Fase::Leyendo, 1, 1, 0, 0.1},
                   -1,
                   "Leyendo datos: 1 fila, 1 página"},
        CasoAvance{"Escribiendo",
                   {Fase::Escribiendo, 200000, 3893, 1200, 0.5},
                   30,
                   "Escribiendo: página 1,200 de 3,893 (2,400 páginas/s)"},
        CasoAvance{
            "SinPaginas", {Fase::Escribiendo, 0, 0, 0, 0.0}, 0, "Escribiendo: página 0 de 0"}),
    [](const auto& i) { return std::string(i.param.nombre); });

}  // namespace
}  // namespace paratzorep::output::detail
