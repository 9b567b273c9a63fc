// Start-up of the command-line host from tzorep.ini.
#include "apps/tzorep/Arranque.h"

#include <gtest/gtest.h>

#include <fstream>

#include "session/Sesion.h"
#include "toolkit/Apoyo.h"
#include "toolkit/BitacoraUsuarios.h"
#include "toolkit/Fabrica.h"

namespace paratzorep::cli {
namespace {

class ArranqueTest : public ::testing::Test {
  protected:
    void SetUp() override {
        toolkit::RegistraToolkit();
        session::sesion() = session::RegistroSesion{};
    }
    void TearDown() override { session::sesion() = session::RegistroSesion{}; }
    apoyo::CarpetaTemporal tmp;
};

TEST_F(ArranqueTest, SinArchivoValoresDeLaCarpeta) {
    session::Iniciales ini;
    auto r = Arranca(tmp.ruta(), ini);
    const auto& s = session::sesion();
    const std::string home = tmp.ruta().string() + "/";
    EXPECT_EQ(s.RutaTanzo, home);
    EXPECT_EQ(s.RutaRpts, home + "rpts/");
    EXPECT_EQ(s.RutaPDFs, home + "pdfs/");
    EXPECT_EQ(s.ArchivoINI, home + "tzorep.ini");
    ASSERT_TRUE(r.baseDD);
    EXPECT_EQ(s.BaseDD, r.baseDD);
    EXPECT_EQ(s.DatosConecte, r.datosConecte);
    EXPECT_EQ(r.baseDD->cMiBase, "datos1");
    EXPECT_EQ(r.baseDD->cRuta, "127.0.0.1");
    EXPECT_TRUE(r.avisos.empty());
    // The log writes through the session's data-access object.
    EXPECT_EQ(s.BitacoraUsuarios->BaseDD, r.baseDD);
}

TEST_F(ArranqueTest, LeeLasTresSeccionesYAvisaLoDesconocido) {
    std::ofstream(tmp / "tzorep.ini")
        << "; comentario\n[Iniciales]\nRutaTanzo=/opt/tanzo\nUserUsuario=ANA\nVersionDeEste=5.3\n"
           "DiasParaReportes=30\nVistaPrevia=-1\nNoExiste=1\n"
           "[BaseDD]\ncRuta=db.ejemplo\ncUsuario=u\ncPassword=p=1\ncPuerto=3310\ncMiBase=datos7\n"
           "[DatosConecte]\nxServidor=remoto\nxUsuario=ru\nxPassWord=rp\nxPuerto=abc\n"
           "xBaseDD=datos9\n";
    session::Iniciales ini;
    auto r = Arranca(tmp.ruta(), ini);
    const auto& s = session::sesion();
    EXPECT_EQ(s.RutaTanzo, "/opt/tanzo/");
    EXPECT_EQ(s.UserUsuario, "ANA");
    EXPECT_EQ(s.BitacoraUsuarios->Usuario, "ANA");
    EXPECT_EQ(s.BitacoraUsuarios->Version, "5.3");
    EXPECT_EQ(s.DiasParaReportes, 30);
    EXPECT_EQ(s.VistaPrevia, -1);
    EXPECT_EQ(r.baseDD->cRuta, "db.ejemplo");
    EXPECT_EQ(r.baseDD->cUsuario, "u");
    EXPECT_EQ(r.baseDD->cPassword, "p=1");
    EXPECT_EQ(r.baseDD->cPuerto, 3310);
    EXPECT_EQ(r.baseDD->cMiBase, "datos7");
    EXPECT_EQ(r.datosConecte->xServidor, "remoto");
    EXPECT_EQ(r.datosConecte->xPassWord, "rp");
    EXPECT_EQ(r.datosConecte->xPuerto, 0);
    EXPECT_EQ(r.datosConecte->xBaseDD, "datos9");
    ASSERT_EQ(r.avisos.size(), 2u);
    EXPECT_NE(r.avisos[0].find("NoExiste"), std::string::npos);
    EXPECT_NE(r.avisos[1].find("xPuerto"), std::string::npos);
}

TEST_F(ArranqueTest, ElServidorPrivadoEnMarchaDaLosValoresPorOmision) {
    const auto& privado = apoyo::servidorDePrueba();
    session::Iniciales ini;
    data::BaseDDMaria bd;
    host::DatosConecte dc;
    std::vector<std::string> avisos;
    // A home without a running server: the file's values stand.
    std::ofstream(tmp / "tzorep.ini")
        << "[BaseDD]\ncRuta=127.0.0.1\ncUsuario=" << privado.usuario << "\ncPuerto=1\n";
    LeeArranque(tmp.ruta(), ini, bd, dc, avisos);
    EXPECT_EQ(bd.cPuerto, 1);
    // The test run's home (its server running): the server's own connection values.
    if (!std::filesystem::exists(apoyo::homeDePrueba() / "tzorep.ini")) {
        LeeArranque(apoyo::homeDePrueba(), ini, bd, dc, avisos);
        EXPECT_EQ(bd.cRuta, privado.host);
        EXPECT_EQ(bd.cPuerto, privado.puerto);
        EXPECT_EQ(bd.cUsuario, privado.usuario);
        EXPECT_EQ(bd.cPassword, privado.password);
    }
}

}  // namespace
}  // namespace paratzorep::cli
