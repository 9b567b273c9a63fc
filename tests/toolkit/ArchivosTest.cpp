// INI files, file helpers, the ODBC data source and the factory.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <fstream>

#include "host/Interaccion.h"
#include "support/NombresDeCaso.h"
#include "toolkit/Apoyo.h"
#include "toolkit/Auxiliares.h"
#include "toolkit/BitacoraUsuarios.h"
#include "toolkit/DeArchivos.h"
#include "toolkit/ElSkin.h"
#include "toolkit/Fabrica.h"
#include "toolkit/Ini.h"
#include "toolkit/LibKRVM.h"
#include "toolkit/MyODBCs.h"
#include "toolkit/Utilerias.h"

namespace paratzorep::toolkit {
namespace {

using apoyo::CarpetaTemporal;
constexpr auto Lee = apoyo::LeeArchivo;

void Escribe(const std::filesystem::path& p, const std::string& texto) {
    std::ofstream(p, std::ios::binary) << texto;
}

TEST(IniTest, IdaYVueltaConSeccionesYClavesSinDistinguirMayusculas) {
    CarpetaTemporal tmp;
    auto archivo = tmp / "sub" / "conf.ini";
    EXPECT_EQ(LeeIni("General", "Clave", archivo, "omision"), "omision");
    EscribeIni("General", "Ruta", "/datos/ñandú", archivo);
    EscribeIni("Ventana", "Linea", "10", archivo);
    EscribeIni("general", "Otra", "2", archivo);
    EscribeIni("GENERAL", "ruta", "/nueva", archivo);
    EXPECT_EQ(LeeIni("general", "RUTA", archivo), "/nueva");
    EXPECT_EQ(LeeIni("General", "Otra", archivo), "2");
    EXPECT_EQ(LeeIni("ventana", "linea", archivo), "10");
    EXPECT_EQ(LeeIni("Ventana", "Otra", archivo, "x"), "x");
    // One section header per section, keys kept in their section.
    EXPECT_EQ(Lee(archivo), "[General]\nRuta=/nueva\nOtra=2\n\n[Ventana]\nLinea=10\n");
    // No temporary file is left beside it.
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(tmp / "sub"),
                            std::filesystem::directory_iterator{}),
              1);
}

TEST(IniTest, ConservaComentariosBomYFinesDeLineaWindows) {
    CarpetaTemporal tmp;
    auto archivo = tmp / "c.ini";
    Escribe(archivo,
            "\xEF\xBB\xBF[Mirror]\r\n; comentario\r\nPuerto = 3310 \r\nContraseña=ñ=1\r\n");
    EXPECT_EQ(LeeIni("Mirror", "Puerto", archivo), "3310");
    EXPECT_EQ(LeeIni("mirror", "contraseña", archivo), "ñ=1");
    EscribeIni("Mirror", "Usuario", "root", archivo);
    EXPECT_NE(Lee(archivo).find("; comentario"), std::string::npos);
    EXPECT_EQ(LeeIni("Mirror", "Usuario", archivo), "root");
    EXPECT_EQ(LeeIni("Mirror", "Puerto", archivo), "3310");
    auto claves = ClavesIni("MIRROR", archivo);
    ASSERT_EQ(claves.size(), 3u);
    EXPECT_EQ(claves[2].first, "Usuario");
}

TEST(IniTest, BorraClaveYSeccion) {
    CarpetaTemporal tmp;
    auto archivo = tmp / "b.ini";
    EscribeIni("A", "x", "1", archivo);
    EscribeIni("A", "y", "2", archivo);
    EscribeIni("B", "z", "3", archivo);
    BorraIni("a", "X", archivo);
    EXPECT_EQ(LeeIni("A", "x", archivo, "-"), "-");
    EXPECT_EQ(LeeIni("A", "y", archivo), "2");
    BorraIni("A", "", archivo);
    EXPECT_EQ(LeeIni("A", "y", archivo, "-"), "-");
    EXPECT_EQ(LeeIni("B", "z", archivo), "3");
}

TEST(IniTest, UnArchivoSoloDeSuDuenoSigueAsiAlEscribirlo) {
    CarpetaTemporal tmp;
    auto archivo = tmp / "kvtz5.ini";
    EscribeIni("kvtz5", "SELpassword", "secreta", archivo);
    struct stat st {};
    ASSERT_EQ(::stat(archivo.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0644u);  // a new file: the usual permissions
    ::chmod(archivo.c_str(), 0600);
    EscribeIni("RepAdmSALF", "Linea", "5", archivo);
    BorraIni("RepAdmSALF", "", archivo);
    ASSERT_EQ(::stat(archivo.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0600u);
}

TEST(IniTest, CarpetaImposibleDaErrorClaro) {
    CarpetaTemporal tmp;
    Escribe(tmp / "soy-archivo", "x");
    try {
        EscribeIni("A", "b", "c", tmp / "soy-archivo" / "x.ini");
        FAIL() << "sin error";
    } catch (const std::runtime_error& e) {
        EXPECT_NE(std::string(e.what()).find("x.ini"), std::string::npos) << e.what();
    }
    EXPECT_EQ(LeeIni("A", "b", tmp / "soy-archivo" / "x.ini", "omision"), "omision");
}

struct CasoNombre {
    const char* caso;
    const char* ruta;
    const char* nombre;
    const char* carpeta;
};

void PrintTo(const CasoNombre& c, std::ostream* os) {
    *os << '"' << c.ruta << '"';
}

class NombreDeArchivoTest : public ::testing::TestWithParam<CasoNombre> {};

TEST_P(NombreDeArchivoTest, SeparaNombreYCarpeta) {
    DeArchivos da;
    EXPECT_EQ(da.NombreDeArchivo(GetParam().ruta), GetParam().nombre);
    EXPECT_EQ(da.CarpetaDeArchivo(GetParam().ruta), GetParam().carpeta);
}

INSTANTIATE_TEST_SUITE_P(
    Tabla, NombreDeArchivoTest,
    ::testing::Values(CasoNombre{"RutaConBarras", "/a/b/c.rpt", "c.rpt", "/a/b/"},
                      CasoNombre{"RutaConDiagonalesInversas", "C:\\Tanzo\\Rpts\\x.rpt", "x.rpt",
                                 "C:\\Tanzo\\Rpts\\"},
                      CasoNombre{"SeparadoresMezclados", "mixta/sub\\y.rpt", "y.rpt",
                                 "mixta/sub\\"},
                      CasoNombre{"SoloNombre", "solo.rpt", "solo.rpt", ""},
                      CasoNombre{"SoloCarpeta", "carpeta/", "", "carpeta/"},
                      CasoNombre{"Vacia", "", "", ""}),
    pruebas::NombrePor(&CasoNombre::caso));

TEST(DeArchivosTest, RutasArchivosYFechas) {
    CarpetaTemporal tmp;
    DeArchivos da;
    EXPECT_FALSE(da.HayArchivo(""));
    EXPECT_FALSE(da.HayArchivo(tmp.ruta().string()));  // a folder is not a file
    std::string carpeta = (tmp / "uno").string() + "\\dos\\";
    EXPECT_TRUE(da.CreaRuta(carpeta));
    EXPECT_TRUE(std::filesystem::is_directory(tmp / "uno" / "dos"));
    Escribe(tmp / "uno" / "dos" / "f.txt", "x");
    EXPECT_TRUE(da.HayArchivo(carpeta + "f.txt"));
    std::string fh = da.FechaYhora(carpeta + "f.txt");
    ASSERT_EQ(fh.size(), 19u) << fh;
    EXPECT_EQ(fh[2], '/');
    EXPECT_EQ(fh[13], ':');
    EXPECT_EQ(da.FechaYhora(carpeta + "no.txt"), "");
    EXPECT_TRUE(da.BorraArchivo(carpeta + "f.txt"));
    EXPECT_FALSE(da.HayArchivo(carpeta + "f.txt"));
    std::string t1 = da.ArchivoTemporal(tmp.ruta().string(), "img");
    EXPECT_EQ(da.CarpetaDeArchivo(t1), (tmp / "Temporal").string() + "/");
    EXPECT_EQ(t1.substr(t1.size() - 4), ".img");
}

TEST(DeArchivosTest, AbreDocumentoSinEscritorioNoFalla) {
    CarpetaTemporal tmp;
    Escribe(tmp / "d.txt", "x");
    const char* display = std::getenv("DISPLAY");
    std::string guardado = display ? display : "";
    ::unsetenv("DISPLAY");
    ::unsetenv("WAYLAND_DISPLAY");
    EXPECT_FALSE(DeArchivos().AbreDocumento((tmp / "d.txt").string()));
    if (display) ::setenv("DISPLAY", guardado.c_str(), 1);
}

TEST(DeArchivosTest, CarpetaPreguntaAlAnfitrion) {
    auto grabada = std::make_shared<host::InteraccionGrabada>();
    grabada->carpetas.push_back("/elegida");
    host::InteraccionTemporal t(grabada);
    EXPECT_EQ(DeArchivos().Carpeta("Elija", "/inicio"), "/elegida");
    EXPECT_EQ(DeArchivos().Carpeta("Elija", "/inicio"), "/inicio");
}

TEST(MyODBCsTest, EscribeFuenteConPermisosYConservaOtras) {
    CarpetaTemporal tmp;
    auto archivo = tmp / "odbc.ini";
    Escribe(archivo, "[otra]\nDriver=x\n\n[myodbc3-test]\nSERVER=viejo\n");
    MyODBCs m;
    m.ArchivoOdbc = archivo.string();
    EXPECT_EQ(m.GuardaEnODBCtzp("10.0.0.5", "datos1", "ana", "s3cr;to", 3307), archivo.string());
    const std::string texto = Lee(archivo);
    EXPECT_NE(texto.find("[otra]\nDriver=x\n"), std::string::npos);
    EXPECT_EQ(texto.find("viejo"), std::string::npos);
    EXPECT_EQ(LeeIni("myodbc3-test", "Driver", archivo),
              "/usr/lib/x86_64-linux-gnu/odbc/libmaodbc.so");
    EXPECT_EQ(LeeIni("myodbc3-test", "SERVER", archivo), "10.0.0.5");
    EXPECT_EQ(LeeIni("myodbc3-test", "DATABASE", archivo), "datos1");
    EXPECT_EQ(LeeIni("myodbc3-test", "USER", archivo), "ana");
    EXPECT_EQ(LeeIni("myodbc3-test", "PASSWORD", archivo), "s3cr;to");
    EXPECT_EQ(LeeIni("myodbc3-test", "PORT", archivo), "3307");
    struct stat st {};
    ASSERT_EQ(::stat(archivo.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0600u);
    EXPECT_STREQ(std::getenv("ODBCINI"), archivo.c_str());
}

TEST(FabricaTest, CreaCadaClasePorIdentificador) {
    RegistraToolkit();
    const char* clases[] = {"LibKRVM",     "Utilerias", "DeArchivos",          "ElSkin",
                            "CamposBin",   "MyODBCs",   "Movimientos",         "BasesDD",
                            "DeControles", "DeAyudaP0", "ConcentradorRutinas", "BitacoraUsuarios"};
    for (const char* c : clases) {
        auto obj = CreaObjeto(std::string("kvtz5.") + c);
        ASSERT_TRUE(obj) << c;
        EXPECT_EQ(obj->Clase(), c);
    }
    EXPECT_EQ(Registrados().size(), 12u);
    EXPECT_TRUE(Crea<LibKRVM>("LibKRVM"));
    // Wrong type, unknown class, other application key: empty, no exception.
    EXPECT_FALSE(Crea<LibKRVM>("Utilerias"));
    EXPECT_FALSE(CreaObjeto("kvtz5.NoExiste"));
    EXPECT_FALSE(CreaObjeto("otra.LibKRVM"));
    EXPECT_FALSE(CreaObjeto(""));
}

TEST(FabricaTest, CreadorQueFallaDaObjetoVacio) {
    Registra("kvtz5.Falla", []() -> std::shared_ptr<ObjetoKv> { throw std::runtime_error("x"); });
    EXPECT_FALSE(CreaObjeto("kvtz5.Falla"));
    Quita("kvtz5.Falla");
    Quita("kvtz5.LibKRVM");
    EXPECT_FALSE(Crea<LibKRVM>("LibKRVM"));
    RegistraToolkit();
    EXPECT_TRUE(Crea<LibKRVM>("LibKRVM"));
}

TEST(AuxiliaresTest, NombresListasYPlugins) {
    BasesDD b;
    EXPECT_EQ(b.Califica("clientes", "datos1"), "datos1.clientes");
    EXPECT_EQ(b.Califica("otra.clientes", "datos1"), "otra.clientes");
    EXPECT_EQ(b.Califica("clientes", ""), "clientes");
    EXPECT_TRUE(b.NombreValido("tbltemp12"));
    EXPECT_FALSE(b.NombreValido("x; DROP TABLE y"));
    EXPECT_EQ(DeControles().BuscaEnLista({"Fecha", " Clave "}, "clave"), 1);
    EXPECT_EQ(DeControles().BuscaEnLista({"Fecha"}, "otra"), -1);
    EXPECT_EQ(DeAyudaP0().CondicionBusqueda("Nombre", " juan  o'neil "),
              "Nombre LIKE '%juan%' AND Nombre LIKE '%o''neil%'");
    ConcentradorRutinas cr;
    EXPECT_TRUE(cr.PluginCorrecto("Gym, Carnes;Metales", "carnes"));
    EXPECT_FALSE(cr.PluginCorrecto("Gym,Carnes", "Car"));
    EXPECT_FALSE(cr.PluginCorrecto("Gym", ""));
}

TEST(BitacoraUsuariosTest, SentenciaCodificaConSusLlaves) {
    BitacoraUsuarios b;
    b.Usuario = "ana";
    b.Llave = "fmt'x.rpt";
    b.ID = 156;
    b.Version = "1.0";
    b.Equipo = "caja1";
    const std::string sql = b.SentenciaGraba();
    EXPECT_NE(sql.find("ENCODE('ana','418')"), std::string::npos);
    EXPECT_NE(sql.find("ENCODE('fmt''x.rpt','184')"), std::string::npos);
    EXPECT_NE(sql.find("ENCODE('1.0','527')"), std::string::npos);
    EXPECT_NE(sql.find("ENCODE('caja1','527')"), std::string::npos);
    EXPECT_NE(sql.find(",156,"), std::string::npos);
    EXPECT_THROW(b.Graba(nullptr), host::ErrorDatos);
}

TEST(RegistroKvtz5Test, ValoresEnElArchivoDeConfiguracionDelUsuario) {
    apoyo::CarpetaTemporal tmp;
    const char* previo = std::getenv("XDG_CONFIG_HOME");
    std::string guardado = previo ? previo : "";
    ::setenv("XDG_CONFIG_HOME", tmp.ruta().c_str(), 1);
    EXPECT_EQ(ArchivoRegistro(), tmp / "kvtz5" / "kvtz5.ini");
    Utilerias u;
    EXPECT_EQ(u.LeeRegistro("MovEnLinea", "Servidor", "ninguno"), "ninguno");
    u.GrabaRegistro("MovEnLinea", "Servidor", "central");
    EXPECT_EQ(u.LeeRegistro("movenlinea", "servidor"), "central");
    // Window positions without a settings file go to the same registry file.
    struct V : host::Ventana {
        std::string Nombre() const override { return "RepAdmSALF"; }
    } v;
    v.Top = 5;
    ElSkin skin;
    skin.GrabaCoord(v);
    V w;
    skin.LeeCoord(w);
    EXPECT_EQ(w.Top, 5);
    EXPECT_EQ(LeeIni("RepAdmSALF", "Firma", ArchivoRegistro()), "RepAdmSALF");
    if (previo) {
        ::setenv("XDG_CONFIG_HOME", guardado.c_str(), 1);
    } else {
        ::unsetenv("XDG_CONFIG_HOME");
    }
}

TEST(ElSkinTest, PosicionDeOtraVentanaNoSeAplica) {
    apoyo::CarpetaTemporal tmp;
    ElSkin skin;
    skin.ArchivoINI = (tmp / "s.ini").string();
    EscribeIni("RepAdmCxC", "Linea", "50", skin.ArchivoINI);  // no signature: not ours
    struct V : host::Ventana {
        std::string Nombre() const override { return "RepAdmCxC"; }
    } v;
    v.Top = 9;
    skin.LeeCoord(v);
    EXPECT_EQ(v.Top, 9);
    skin.Skin(v);
    EXPECT_EQ(v.Piel, "kvtz5");
}

TEST(ElSkinTest, MensajesYBarraVanAlAnfitrion) {
    auto g = std::make_shared<host::InteraccionGrabada>();
    host::InteraccionTemporal t(g);
    ElSkin skin;
    skin.MsgBoxSkn("Sin datos", "Reporte", host::Icono::Exclamacion);
    skin.BarraPorcentaje(3, 4, "Llenando");
    ASSERT_EQ(g->mensajes.size(), 1u);
    EXPECT_EQ(g->mensajes[0].titulo, "Reporte");
    EXPECT_EQ(g->mensajes[0].texto, "Sin datos");
    EXPECT_EQ(g->progresos.back().first, 75);
}

}  // namespace
}  // namespace paratzorep::toolkit
