#include <gtest/gtest.h>

#include <cctype>
#include <ostream>

#include <ctime>
#include <fstream>
#include <regex>

#include "Apoyo.h"
#include "output/BitacoraSolicitudes.h"
#include "output/Ejecutor.h"
#include "renderer/Motor.h"
#include "session/Solicitud.h"
#include "support/NombresDeCaso.h"
#include "support/Soporte.h"

namespace paratzorep::output {
namespace {

using prueba::Etiqueta;

struct CasoNombre {
    const char* nombre;
    const char* pedido;
    const char* ruta;  // "" when nothing is rendered
};

inline void PrintTo(const CasoNombre& c, std::ostream* os) {
    *os << Etiqueta(c.pedido);
}

class ResolucionPlantilla : public ::testing::TestWithParam<CasoNombre> {};

TEST_P(ResolucionPlantilla, ResolvesUnderTheReportsFolder) {
    auto r = detail::ResuelvePlantilla(GetParam().pedido, "/rpts/");
    if (*GetParam().ruta == 0) {
        EXPECT_FALSE(r.has_value());
    } else {
        ASSERT_TRUE(r.has_value());
        EXPECT_EQ(r->ruta, GetParam().ruta);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Nombres, ResolucionPlantilla,
    ::testing::Values(
        CasoNombre{"SinExtension", "bitacoraus", "/rpts/bitacoraus.rpt"},
        CasoNombre{"ConExtension", "bitacoraus.rpt", "/rpts/bitacoraus.rpt"},
        CasoNombre{"ExtensionEnMayusculas", "ADSDCM.RPT", "/rpts/ADSDCM.RPT"},
        // contains ".rpt", does not end in it
        CasoNombre{"ExtensionConLetraDeMas", "x.rptx", ""}, CasoNombre{"Respaldo", "x.rpt.bak", ""},
        CasoNombre{"SoloBlancos", "   ", ""},
        CasoNombre{"RutaPropiaSinExtension", "/otra/fmtfactura", "/otra/fmtfactura.rpt"},
        CasoNombre{"RutaDeWindows", "C:\\Tanzo\\fmtnota.rpt", "C:/Tanzo/fmtnota.rpt"}),
    pruebas::PorNombre());

TEST(Solicitud, TwentySecondFormulaOrSortFieldIsOutOfRange) {
    session::SolicitudReporte s;
    EXPECT_NO_THROW(s.Formula(20, "A='1'"));
    EXPECT_THROW(s.Formula(21, "A='1'"), std::out_of_range);
    EXPECT_THROW(s.SortField(21, "+{t.c}"), std::out_of_range);
    renderer::Motor m;
    EXPECT_THROW(m.Formulas(21, "A='1'"), renderer::ErrorMotor);
    EXPECT_THROW(m.SortFields(21, "+{t.c}"), renderer::ErrorMotor);
}

TEST(NombrePdf, ReportNameThenStamp) {
    std::tm tm{};
    tm.tm_year = 2026 - 1900;
    tm.tm_mon = 0;
    tm.tm_mday = 5;
    tm.tm_hour = 7;
    tm.tm_min = 8;
    tm.tm_sec = 9;
    tm.tm_isdst = -1;
    const std::time_t t = std::mktime(&tm);
    EXPECT_EQ(detail::NombrePdf("/pdfs", "bitacoraus", t), "/pdfs/bitacoraus20260105-070809.pdf");
    EXPECT_EQ(detail::NombrePdf("C:\\pdfs\\", "x", t), "C:/pdfs/x20260105-070809.pdf");
}

struct CasoPassword {
    const char* nombre;
    const char* connect;
    const char* oculto;
};

inline void PrintTo(const CasoPassword& c, std::ostream* os) {
    *os << Etiqueta(c.connect);
}

class Ocultar : public ::testing::TestWithParam<CasoPassword> {};

TEST_P(Ocultar, MasksEveryPasswordKey) {
    EXPECT_EQ(OcultaPassword(GetParam().connect), GetParam().oculto);
}

INSTANTIATE_TEST_SUITE_P(
    Connect, Ocultar,
    ::testing::Values(CasoPassword{"ClaveConSignoIgual",
                                   "DSN=myodbc3-test;SERVER=h;DB=d;UID=u;PWD=s3cr=t;x",
                                   "DSN=myodbc3-test;SERVER=h;DB=d;UID=u;PWD=***;x"},
                      CasoPassword{"PwdEnMinusculas", "DSN=a;pwd=abc", "DSN=a;pwd=***"},
                      CasoPassword{"PwdVacio", "DSN=a;PWD=", "DSN=a;PWD=***"},
                      CasoPassword{"PasswordEntreBlancos", "DSN=a; Password =zz;UID=u",
                                   "DSN=a; Password =***;UID=u"},
                      CasoPassword{"PwdComoValorNoSeOculta", "DSN=a;UID=pwd", "DSN=a;UID=pwd"}),
    pruebas::PorNombre());

TEST(BitacoraSolicitudes, OneJsonLinePerRequestWithoutThePassword) {
    session::SolicitudReporte s;
    s.Plantilla = "bitacoraus";
    s.Destino = 2;
    s.TipoArchivo = 21;
    s.NombreArchivo = "/tmp/a \"b\".xls";
    s.TituloVentana = "Bitácora\tde usuarios";
    s.Formula(0, "ENCABEZADO='Del 01/01/2026'");
    s.Formula(3, "VENDEDOR='Vendedor: Ana'");
    s.SortField(1, "-{bitacorausuarios.Fecha}");
    s.FormulaSeleccion = "'Alta' in {bitacorausuarios.Accion}";
    s.MapeaTabla("bitacorausuarios", "tbltemp3");
    const std::string linea =
        LineaSolicitud(s, "/tmp/Auxiliar.mdb", "DSN=myodbc3-test;UID=u;PWD=claveSecreta");
    EXPECT_EQ(linea.find('\n'), std::string::npos);
    EXPECT_EQ(linea.find("claveSecreta"), std::string::npos);
    EXPECT_NE(linea.find("\"connect\":\"DSN=myodbc3-test;UID=u;PWD=***\""), std::string::npos);
    EXPECT_NE(linea.find("\"nombreArchivo\":\"/tmp/a \\\"b\\\".xls\""), std::string::npos);
    EXPECT_NE(linea.find("\"tituloVentana\":\"Bitácora\\tde usuarios\""), std::string::npos);
    EXPECT_NE(linea.find("{\"i\":3,\"texto\":\"VENDEDOR='Vendedor: Ana'\"}"), std::string::npos);
    EXPECT_NE(linea.find("\"camposOrden\":[{\"i\":1,"), std::string::npos);
    EXPECT_NE(linea.find("\"archivosDatos\":[\"bitacorausuarios*tbltemp3\"]"), std::string::npos);

    pruebas::CarpetaTemporal tmp;
    const auto archivo = (tmp / "solicitudes.jsonl").string();
    AnotaSolicitud(archivo, linea);
    AnotaSolicitud(archivo, linea);
    std::ifstream in(archivo);
    std::string l;
    int n = 0;
    while (std::getline(in, l)) {
        ++n;
        EXPECT_EQ(l, linea) << n;
    }
    EXPECT_EQ(n, 2);
}

}  // namespace
}  // namespace paratzorep::output
