#include "data/AbrirBaseDeDatos.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include "EntornoPrueba.h"
#include "host/Interaccion.h"
#include "session/Sesion.h"
#include "support/NombresDeCaso.h"

namespace paratzorep::data {
namespace {

// A local port on which nothing listens: connecting to it is refused at once.
int PuertoQueRechaza() {
    int s = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in dir{};
    dir.sin_family = AF_INET;
    dir.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ::bind(s, reinterpret_cast<sockaddr*>(&dir), sizeof dir);
    socklen_t largo = sizeof dir;
    ::getsockname(s, reinterpret_cast<sockaddr*>(&dir), &largo);
    ::close(s);
    return ntohs(dir.sin_port);
}

std::string BaseActual(host::BaseDD& base, const host::Conexion& cn) {
    host::Recordset rs;
    base.RstExecutar(rs, cn, "SELECT DATABASE() AS b, CURRENT_USER() AS u");
    return rs["b"].Texto();
}

class AbrirBaseDeDatosTest : public prueba::ConBase {
  protected:
    void SetUp() override {
        ConBase::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        interaccion = std::make_shared<host::InteraccionGrabada>();
        sumidero.emplace(interaccion);
        rutaOriginal = base->cRuta;
        usuarioOriginal = base->cUsuario;
        passwordOriginal = base->cPassword;
        puertoOriginal = base->cPuerto;
        base->Olvida();
    }
    void TearDown() override {
        sumidero.reset();
        ConBase::TearDown();
    }

    void EsperaValoresOriginales() {
        EXPECT_EQ(base->cRuta, rutaOriginal);
        EXPECT_EQ(base->cUsuario, usuarioOriginal);
        EXPECT_EQ(base->cPassword, passwordOriginal);
        EXPECT_EQ(base->cPuerto, puertoOriginal);
    }

    std::shared_ptr<host::InteraccionGrabada> interaccion;
    std::optional<host::InteraccionTemporal> sumidero;
    host::DatosConecte datos;
    host::Conexion cn;
    std::string rutaOriginal, usuarioOriginal, passwordOriginal;
    std::int32_t puertoOriginal = 0;
};

struct CasoGeneral {
    const char* nombre;
    const char* general;  // the name the caller gives the general database
};

class NombreDeLaGeneral : public AbrirBaseDeDatosTest,
                          public ::testing::WithParamInterface<CasoGeneral> {};

TEST_P(NombreDeLaGeneral, NoPasaPorElServidorRemoto) {
    datos.xServidor = "127.0.0.1";
    datos.xPuerto = PuertoQueRechaza();
    datos.xBaseDD = "remota";
    ASSERT_TRUE(AbrirBaseDeDatos(*base, datos, cn, GetParam().general));
    EXPECT_EQ(base->basesAbiertas, std::vector<std::string>{""});
    EXPECT_EQ(BaseActual(*base, cn), "generaltanzo");
    EXPECT_EQ(datos.xServidor, "127.0.0.1");
    EXPECT_TRUE(interaccion->mensajes.empty());
    EsperaValoresOriginales();
}

INSTANTIATE_TEST_SUITE_P(Nombres, NombreDeLaGeneral,
                         ::testing::Values(CasoGeneral{"Vacio", ""},
                                           CasoGeneral{"Minusculas", "generaltanzo"},
                                           CasoGeneral{"EntreBlancos", " GeneralTanzo "},
                                           CasoGeneral{"MayusculasYTabulador", "GENERALTANZO\t"},
                                           CasoGeneral{"SoloBlancos", "   "}),
                         pruebas::PorNombre());

TEST_F(AbrirBaseDeDatosTest, SinServidorRemotoAbreElNombreNormalizado) {
    std::string pedido = "  ";
    for (char c : nombreBase) pedido += static_cast<char>(std::toupper(c));
    ASSERT_TRUE(AbrirBaseDeDatos(*base, datos, cn, pedido + " "));
    EXPECT_EQ(BaseActual(*base, cn), nombreBase);
    EXPECT_TRUE(interaccion->mensajes.empty());
}

TEST_F(AbrirBaseDeDatosTest, ServidorRemotoCaidoAvisaYVuelveAlOriginal) {
    datos.xServidor = "127.0.0.1";
    datos.xPuerto = PuertoQueRechaza();
    datos.xUsuario = "remoto";
    datos.xPassWord = "clave";
    datos.xBaseDD = "empresa_remota";
    const std::string pedido = " " + nombreBase;
    ASSERT_TRUE(AbrirBaseDeDatos(*base, datos, cn, pedido));

    ASSERT_EQ(interaccion->mensajes.size(), 1u);
    const auto& m = interaccion->mensajes[0];
    EXPECT_EQ(m.titulo, "Atención");
    EXPECT_EQ(m.icono, host::Icono::Critico);
    EXPECT_EQ(m.texto,
              "El programa trató de conectar al servidor '127.0.0.1' y a la base de datos "
              "'empresa_remota' sin conseguirlo.\r\n\r\nTemporalmente se usarán los valores "
              "originales: servidor '" +
                  rutaOriginal + "' y la base de datos '" + pedido +
                  "'\r\n\r\nPuede modificar los datos de conexión en el Catálogo de Empresas, o "
                  "intente resolver el problema con el servidor remoto.");
    EXPECT_TRUE(datos.xServidor.empty());
    EXPECT_EQ(datos.xBaseDD, pedido);
    EsperaValoresOriginales();
    // The second try went to the company database on the original server.
    EXPECT_EQ(base->servidores, (std::vector<std::string>{"127.0.0.1", rutaOriginal}));
    EXPECT_EQ(cn->Puerto(), puertoOriginal);
    EXPECT_EQ(BaseActual(*base, cn), base->cMiBase);

    // The remote server is not tried again in the session.
    host::Conexion otra;
    ASSERT_TRUE(AbrirBaseDeDatos(*base, datos, otra, nombreBase));
    EXPECT_EQ(interaccion->mensajes.size(), 1u);
}

TEST_F(AbrirBaseDeDatosTest, ElNombreAlternoEsElQueSeIntentaEnElRemoto) {
    datos.xServidor = "127.0.0.1";
    datos.xPuerto = PuertoQueRechaza();
    datos.xBaseDD = "empresa_remota";
    ASSERT_TRUE(AbrirBaseDeDatos(*base, datos, cn, nombreBase, "alterna"));
    EXPECT_EQ(base->basesAbiertas, (std::vector<std::string>{"alterna", nombreBase}));
    ASSERT_EQ(interaccion->mensajes.size(), 1u);
    EXPECT_NE(interaccion->mensajes[0].texto.find("a la base de datos 'alterna' sin"),
              std::string::npos);
}

TEST_F(AbrirBaseDeDatosTest, ServidorRemotoArribaDejaLaConexionEnElRemoto) {
    // The "remote" server is the same server reached under another name and another user.
    const std::string remoto = "tzremoto" + std::to_string(::getpid());
    Ejecuta("CREATE OR REPLACE USER '" + remoto + "'@'%' IDENTIFIED BY 'clave remota'");
    Ejecuta("GRANT ALL ON " + nombreBase + ".* TO '" + remoto + "'@'%'");
    datos.xServidor = servidor->host == "localhost" ? "127.0.0.1" : "localhost";
    datos.xPuerto = servidor->puerto;
    datos.xUsuario = remoto;
    datos.xPassWord = "clave remota";
    datos.xBaseDD = nombreBase;
    const bool abierta = AbrirBaseDeDatos(*base, datos, cn, "otra_cualquiera");
    Ejecuta("DROP USER '" + remoto + "'@'%'");
    ASSERT_TRUE(abierta) << base->UltimoError();
    EXPECT_TRUE(interaccion->mensajes.empty());
    EsperaValoresOriginales();
    EXPECT_EQ(cn->Servidor(), datos.xServidor);
    EXPECT_EQ(cn->Usuario(), remoto);
    EXPECT_EQ(BaseActual(*base, cn), nombreBase);
}

TEST_F(AbrirBaseDeDatosTest, DesdeLaSesion) {
    auto& s = session::sesion();
    auto anteriorBase = s.BaseDD;
    auto anteriorDatos = s.DatosConecte;
    s.BaseDD = base;
    s.DatosConecte.reset();
    const bool abierta = AbrirBaseDeDatos(cn, nombreBase);
    s.BaseDD = anteriorBase;
    s.DatosConecte = anteriorDatos;
    ASSERT_TRUE(abierta);
    EXPECT_EQ(BaseActual(*base, cn), nombreBase);
}

}  // namespace
}  // namespace paratzorep::data
