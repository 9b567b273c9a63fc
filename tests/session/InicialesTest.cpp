// The session context: setters, folder rule, log forwarding, variants, start-up by name.
#include "session/Iniciales.h"

#include <gtest/gtest.h>

#include "session/Sesion.h"
#include "support/NombresDeCaso.h"
#include "toolkit/BitacoraUsuarios.h"
#include "toolkit/Fabrica.h"

namespace paratzorep::session {
namespace {

class InicialesTest : public ::testing::Test {
  protected:
    void SetUp() override {
        toolkit::RegistraToolkit();
        sesion() = RegistroSesion{};
    }
    void TearDown() override {
        toolkit::RegistraToolkit();
        sesion() = RegistroSesion{};
    }
};

struct CasoRuta {
    const char* nombre;
    const char* valor;
    const char* guardado;
};

void PrintTo(const CasoRuta& c, std::ostream* os) {
    *os << '"' << c.valor << '"';
}

class RutaTanzoTest : public InicialesTest, public ::testing::WithParamInterface<CasoRuta> {};

TEST_P(RutaTanzoTest, TerminaSiempreEnSeparador) {
    Iniciales ini;
    ini.RutaTanzo(GetParam().valor);
    EXPECT_EQ(sesion().RutaTanzo, GetParam().guardado);
}

INSTANTIATE_TEST_SUITE_P(
    Tabla, RutaTanzoTest,
    ::testing::Values(CasoRuta{"SinBarraFinal", "/opt/tanzo", "/opt/tanzo/"},
                      CasoRuta{"ConBarraFinal", "/opt/tanzo/", "/opt/tanzo/"},
                      CasoRuta{"WindowsConDiagonalFinal", "C:\\Tanzo\\", "C:\\Tanzo\\"},
                      CasoRuta{"WindowsSinDiagonalFinal", "C:\\Tanzo", "C:\\Tanzo/"},
                      CasoRuta{"Vacia", "", "/"}, CasoRuta{"Raiz", "/", "/"}),
    pruebas::PorNombre());

TEST_F(InicialesTest, ConstructorCreaObjetosYToleraQueFalten) {
    {
        Iniciales ini;
        EXPECT_TRUE(sesion().LibKRVM);
        EXPECT_TRUE(sesion().BitacoraUsuarios);
    }
    sesion() = RegistroSesion{};
    toolkit::Quita("kvtz5.LibKRVM");
    toolkit::Quita("kvtz5.BitacoraUsuarios");
    EXPECT_NO_THROW(Iniciales{});
    EXPECT_FALSE(sesion().LibKRVM);
    EXPECT_FALSE(sesion().BitacoraUsuarios);
}

TEST_F(InicialesTest, UsuarioYVersionPasanALaBitacora) {
    Iniciales ini;
    ini.UserUsuario("ana");
    ini.VersionDeEste("3.1");
    EXPECT_EQ(sesion().UserUsuario, "ana");
    EXPECT_EQ(sesion().BitacoraUsuarios->Usuario, "ana");
    EXPECT_EQ(sesion().BitacoraUsuarios->Version, "3.1");
}

TEST_F(InicialesTest, SinBitacoraGuardaYLuegoFalla) {
    toolkit::Quita("kvtz5.BitacoraUsuarios");
    Iniciales ini;
    EXPECT_THROW(ini.UserUsuario("ana"), ErrorSesion);
    EXPECT_EQ(sesion().UserUsuario, "ana");
    EXPECT_THROW(ini.VersionDeEste("3.1"), ErrorSesion);
    EXPECT_EQ(sesion().VersionDeEste, "3.1");
}

TEST_F(InicialesTest, DelRegistroSiempreQuedaVacio) {
    Iniciales ini;
    ini.DelRegistro(std::make_shared<host::Objeto>());
    EXPECT_FALSE(sesion().DelRegistro);
    ini.DelRegistro(nullptr);
    EXPECT_FALSE(sesion().DelRegistro);
}

TEST_F(InicialesTest, SegundaInstanciaEscribeElMismoRegistro) {
    Iniciales a;
    a.RutaRpts("/rpts/");
    a.DiasParaReportes(30);
    Iniciales b;
    b.RutaRpts("/otros/");
    EXPECT_EQ(sesion().RutaRpts, "/otros/");
    EXPECT_EQ(sesion().DiasParaReportes, 30);
}

TEST(VarianteTest, ConversionBooleana) {
    EXPECT_FALSE(ABooleano(Variante{}));
    EXPECT_TRUE(ABooleano(Variante{true}));
    EXPECT_FALSE(ABooleano(Variante{false}));
    EXPECT_TRUE(ABooleano(Variante{std::int64_t{-1}}));
    EXPECT_FALSE(ABooleano(Variante{std::int64_t{0}}));
    EXPECT_TRUE(ABooleano(Variante{0.5}));
    EXPECT_TRUE(ABooleano(Variante{std::string("True")}));
    EXPECT_TRUE(ABooleano(Variante{std::string("verdadero")}));
    EXPECT_TRUE(ABooleano(Variante{std::string("-1")}));
    EXPECT_FALSE(ABooleano(Variante{std::string("False")}));
    EXPECT_FALSE(ABooleano(Variante{std::string("0")}));
    EXPECT_FALSE(ABooleano(Variante{std::string("")}));
    EXPECT_FALSE(ABooleano(Variante{std::string("quizá")}));
}

TEST_F(InicialesTest, AsignaPorNombreSinDistinguirMayusculas) {
    Iniciales ini;
    EXPECT_TRUE(ini.AsignaPorNombre("rutatanzo", "/home/x"));
    EXPECT_EQ(sesion().RutaTanzo, "/home/x/");
    EXPECT_TRUE(ini.AsignaPorNombre("DiasParaReportes", "45"));
    EXPECT_EQ(sesion().DiasParaReportes, 45);
    EXPECT_TRUE(ini.AsignaPorNombre("VistaPrevia", "true"));
    EXPECT_EQ(sesion().VistaPrevia, -1);
    EXPECT_TRUE(ini.AsignaPorNombre("cPrograma", "7"));
    EXPECT_EQ(sesion().cPrograma, 7);
    EXPECT_FALSE(ini.AsignaPorNombre("NoExiste", "1"));
    EXPECT_FALSE(ini.AsignaPorNombre("BaseDD", "x"));  // objects are not set by text
}

}  // namespace
}  // namespace paratzorep::session
