// The report facade: option numbers, default instances, paired entries, the marker file and
// the tzorep list output.
#include "reports/ReportesAdm.h"

#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>

#include "host/Menu.h"
#include "reports/Formas.h"
#include "reports/Marco.h"
#include "reports/accounts/RepAdmCxC.h"
#include "reports/sales/RepAdmUtilidad.h"
#include "session/Sesion.h"
#include "support/NombresDeCaso.h"
#include "toolkit/Apoyo.h"
#include "toolkit/Fabrica.h"

namespace paratzorep::reports {
namespace {

class FachadaTest : public ::testing::Test {
  protected:
    void SetUp() override {
        toolkit::RegistraToolkit();
        RegistraFormasBasicas();
        OlvidaInstancias();
        session::sesion() = session::RegistroSesion{};
        session::sesion().objMenu = menu;
        // Saved positions go to a scratch settings file, not the user's.
        session::sesion().ArchivoINI = (tmp / "sistema.ini").string();
    }
    void TearDown() override {
        OlvidaInstancias();
        session::sesion() = session::RegistroSesion{};
        toolkit::RegistraToolkit();
    }

    FormularioPareado& Pareado(std::size_t llamada) {
        auto* p = dynamic_cast<FormularioPareado*>(menu->llamadas.at(llamada).forma.get());
        EXPECT_NE(p, nullptr);
        return *p;
    }

    apoyo::CarpetaTemporal tmp;
    std::shared_ptr<host::MenuRegistro> menu = std::make_shared<host::MenuRegistro>();
    ReportesAdm fachada;
};

TEST_F(FachadaTest, TablaEnOrdenDeInterfazConOpcionesDelMenu) {
    const auto& t = TablaFachada();
    std::set<std::string> metodos;
    for (std::size_t i = 0; i < t.size(); ++i) {
        EXPECT_EQ(t[i].numero, static_cast<std::int16_t>(i + 1));
        metodos.insert(t[i].metodo);
    }
    EXPECT_EQ(metodos.size(), 46u);
    // Spot checks on the spelling and numbers the host depends on.
    EXPECT_STREQ(t[0].metodo, "ADSClientes");
    EXPECT_EQ(t[0].opcion, 218);
    EXPECT_STREQ(t[16].metodo, "cxp");
    EXPECT_EQ(t[16].opcion, 99);
    EXPECT_STREQ(t[34].forma, "RepAdmRecep");
    EXPECT_EQ(t[34].opcion, 456);
    EXPECT_STREQ(t[45].metodo, "VentasCanceladas");
    EXPECT_EQ(t[45].opcion, 365);
}

TEST_F(FachadaTest, CadaEntradaMuestraSuFormaConSuOpcion) {
    for (const auto& e : TablaFachada()) {
        menu->llamadas.clear();
        (fachada.*e.llamada)();
        ASSERT_EQ(menu->llamadas.size(), 1u) << e.metodo;
        EXPECT_EQ(menu->llamadas[0].opcion, e.opcion) << e.metodo;
        ASSERT_TRUE(menu->llamadas[0].forma) << e.metodo;
        EXPECT_EQ(menu->llamadas[0].forma->Nombre(), e.forma) << e.metodo;
    }
}

TEST_F(FachadaTest, EntradaSimpleReusaLaInstanciaHastaQueSeDescarga) {
    fachada.CxC();
    fachada.CxC();
    ASSERT_EQ(menu->llamadas.size(), 2u);
    EXPECT_EQ(menu->llamadas[0].forma, menu->llamadas[1].forma);
    EXPECT_EQ(InstanciaPorOmision("RepAdmCxC"), menu->llamadas[0].forma);
    menu->llamadas[0].forma->Descarga();
    EXPECT_FALSE(InstanciaPorOmision("RepAdmCxC"));
    fachada.CxC();
    EXPECT_NE(menu->llamadas[2].forma, menu->llamadas[0].forma);
    // Another entry keeps its own instance.
    fachada.cxp();
    EXPECT_NE(menu->llamadas[3].forma, menu->llamadas[2].forma);
}

// A host that shows another object in place of the form it was given.
class MenuQueReemplaza : public host::Menu {
  public:
    void ShowForm(std::int16_t, std::shared_ptr<Formulario>& forma) override {
        forma = reemplazo ? reemplazo : forma;
        vistas.push_back(forma);
    }
    std::shared_ptr<Formulario> reemplazo;
    std::vector<std::shared_ptr<Formulario>> vistas;
};

TEST_F(FachadaTest, SeQuedaConLaFormaQueDevuelveElAnfitrion) {
    auto host = std::make_shared<MenuQueReemplaza>();
    session::sesion().objMenu = host;
    host->reemplazo = std::make_shared<RepAdmUtilidad>();
    fachada.Utilidad();
    EXPECT_EQ(InstanciaPorOmision("RepAdmUtilidad"), host->reemplazo);
    // An object of another class is refused.
    host->reemplazo = std::make_shared<RepAdmCxC>();
    OlvidaInstancias();
    EXPECT_THROW(fachada.Utilidad(), ErrorFormulario);
}

TEST_F(FachadaTest, SinMenuElErrorPasaAlAnfitrion) {
    session::sesion().objMenu.reset();
    EXPECT_THROW(fachada.Ajustes(), std::runtime_error);
    EXPECT_THROW(fachada.EdoCtaClientes(), std::runtime_error);
}

struct CasoPareado {
    void (ReportesAdm::*llamada)();
    std::int16_t opcion;
    const char* forma;
    const char* llave;
    std::int16_t codigo;
    const char* modo;
    const char* caption;
    const char* persona;
};

void PrintTo(const CasoPareado& c, std::ostream* os) {
    *os << c.llave;
}

class PareadoTest : public FachadaTest, public ::testing::WithParamInterface<CasoPareado> {};

TEST_P(PareadoTest, InstanciaNuevaConLlaveCodigoModoYTitulo) {
    const CasoPareado& c = GetParam();
    (fachada.*c.llamada)();
    (fachada.*c.llamada)();
    ASSERT_EQ(menu->llamadas.size(), 2u);
    EXPECT_NE(menu->llamadas[0].forma, menu->llamadas[1].forma);  // fresh each time
    EXPECT_EQ(menu->llamadas[0].opcion, c.opcion);
    FormularioPareado& f = Pareado(0);
    EXPECT_EQ(f.Nombre(), c.forma);
    EXPECT_TRUE(f.Cargada());
    EXPECT_EQ(f.Llave, std::string(c.llave) + "\t" + c.llave);
    EXPECT_EQ(f.Codigo, c.codigo);
    EXPECT_EQ(f.Ctl("lblTipo").Caption, c.modo);
    EXPECT_EQ(f.Caption, c.caption);
    EXPECT_EQ(f.Ctl("lblPersona").Caption, c.persona);
    EXPECT_FALSE(InstanciaPorOmision(c.forma));  // the facade keeps no reference
}

INSTANTIATE_TEST_SUITE_P(
    Tabla, PareadoTest,
    ::testing::Values(CasoPareado{&ReportesAdm::CargosClientes, 215, "RepAdmCargos",
                                  "RepCargosCtes", 73, "C", "Cargos a clientes", "Cliente"},
                      CasoPareado{&ReportesAdm::CargosProveedores, 95, "RepAdmCargos",
                                  "RepCargosProv", 79, "P", "Cargos de proveedores", "Proveedor"},
                      CasoPareado{&ReportesAdm::EdoCtaClientes, 217, "RepAdmEdoCta",
                                  "RepEdoCtaCtes", 75, "C", "Estados de cuenta de clientes",
                                  "Cliente"},
                      CasoPareado{&ReportesAdm::EdoCtaProveedores, 97, "RepAdmEdoCta",
                                  "RepEdoCtaProv", 81, "P", "Estados de cuenta de proveedores",
                                  "Proveedor"}),
    pruebas::NombrePor(&CasoPareado::caption));

TEST_F(FachadaTest, ClientesYProveedoresAbiertosALaVez) {
    fachada.EdoCtaClientes();
    fachada.EdoCtaProveedores();
    FormularioPareado& c = Pareado(0);
    FormularioPareado& p = Pareado(1);
    EXPECT_TRUE(c.ParaClientes());
    EXPECT_FALSE(p.ParaClientes());
    EXPECT_NE(c.Caption, p.Caption);
}

TEST_F(FachadaTest, PareadoRestauraLaPosicionGuardada) {
    std::ofstream(tmp / "sistema.ini")
        << "[RepAdmCargos]\nVentana=0\nLinea=77\nColumna=33\nFirma=RepAdmCargos\n";
    fachada.CargosProveedores();
    EXPECT_EQ(Pareado(0).Top, 77);
    EXPECT_EQ(Pareado(0).Left, 33);
}

TEST_F(FachadaTest, SinObjetoDeSkinElPareadoFalla) {
    toolkit::Quita("kvtz5.ElSkin");
    EXPECT_THROW(fachada.CargosProveedores(), std::runtime_error);
    EXPECT_TRUE(menu->llamadas.empty());
}

TEST(CarpetaComponenteTest, EsLaCarpetaDelEjecutableSinBiblioteca) {
    // Linked statically into the test program, the component's folder is the program's.
    auto exe = std::filesystem::read_symlink("/proc/self/exe");
    EXPECT_EQ(CarpetaComponente(), exe.parent_path().string() + "/");
}

TEST_F(FachadaTest, MarcadorApagaSoloCargosClientes) {
    detail::FijaCarpetaComponente(tmp.ruta().string());
    struct Restaura {
        ~Restaura() { detail::FijaCarpetaComponente(""); }
    } restaura;
    EXPECT_EQ(CarpetaComponente(), tmp.ruta().string() + "/");
    const std::string marcador = CarpetaComponente() + "RepCargosCtes.BND";
    std::ofstream(marcador) << "";

    EXPECT_NO_THROW(fachada.CargosClientes());
    EXPECT_TRUE(menu->llamadas.empty());
    fachada.CargosProveedores();
    fachada.EdoCtaClientes();
    fachada.EdoCtaProveedores();
    EXPECT_EQ(menu->llamadas.size(), 3u);

    std::filesystem::remove(marcador);
    fachada.CargosClientes();
    EXPECT_EQ(menu->llamadas.size(), 4u);
}

TEST_F(FachadaTest, SinObjetoDeArchivosCargosClientesFalla) {
    toolkit::Quita("kvtz5.DeArchivos");
    EXPECT_THROW(fachada.CargosClientes(), std::runtime_error);
    EXPECT_NO_THROW(fachada.CargosProveedores());  // makes no marker test
}

TEST(FormularioTest, ControlesPorNombreEIndice) {
    RepAdmGymAsistencias f;
    EXPECT_EQ(f.Ctl("optDispos", 0).Caption, "&Pantalla");
    EXPECT_EQ(f.Ctl("optDispos", 1).Caption, "Im&presora");
    EXPECT_EQ(f.Ctl("optDispos", 2).Caption, "&Archivo");
    EXPECT_EQ(f.Ctl("optDispos", 0).Value, 1);
    EXPECT_EQ(f.Ctl("Frame2").Caption, "Enviar reporte a: ");
    EXPECT_EQ(f.Ctl("cmdImprimir").Caption, "Pr&ocesar");
    EXPECT_FALSE(f.Ctl("lblArchivoReporte").Visible);
    // Dressing again keeps the user's choice and shows the file labels for the file destination.
    f.Ctl("optDispos", 0).Value = 0;
    f.Ctl("optDispos", 2).Value = 1;
    VisteMarcoDestino(f);
    EXPECT_EQ(f.Ctl("optDispos", 0).Value, 0);
    EXPECT_TRUE(f.Ctl("lblArchivoReporte").Visible);
    EXPECT_TRUE(f.Ctl("lblTipoArchivo").Visible);
    Control& fecha = f.Agrega("mkeFecha", 1);
    fecha.Text = "01/01/2024";
    EXPECT_EQ(&f.Agrega("mkeFecha", 1), &fecha);  // adding again gives the same control
    EXPECT_EQ(f.Ctl("mkeFecha", 1).Text, "01/01/2024");
    EXPECT_FALSE(f.TieneControl("mkeFecha", 0));
    try {
        f.Ctl("mkeFecha", 0);
        FAIL();
    } catch (const ErrorFormulario& e) {
        EXPECT_NE(std::string(e.what()).find("mkeFecha(0)"), std::string::npos);
    }
    EXPECT_EQ(f.Controles().back()->NombreCompleto(), "mkeFecha(1)");
    EXPECT_THROW(CreaForma("RepAdmNoExiste"), ErrorFormulario);
}

TEST(FormularioTest, FijaComoUnUsuarioYDisparaEventos) {
    FormaBasica f("RepAdmPrueba", "Prueba");
    std::vector<std::string> eventos;
    auto anota = [&eventos](Control& c) { eventos.push_back(c.NombreCompleto()); };
    f.Agrega("mkeFecha", 0).Change = anota;
    f.Agrega("chkCancelaciones").Click = anota;
    f.Ctl("optDispos", 2).Click = anota;
    Control& cmb = f.Agrega("cmbDato", 0);
    cmb.Items = {"Fecha", "Cantidad", "Concepto"};
    cmb.Click = anota;
    Control& dcm = f.Agrega("dcmDato", 0);
    dcm.Items = {"MN", "USD"};
    dcm.ItemData = {"1", "2"};
    dcm.Change = anota;

    f.Fija("mkeFecha(0)", "05/03/2024");
    f.Fija("chkCancelaciones", "1");
    f.Fija("optDispos(2)", "1");
    f.Fija("cmbDato(0)", "#2");
    f.Fija("dcmDato(0)", "usd");
    EXPECT_EQ(f.Ctl("mkeFecha", 0).Text, "05/03/2024");
    EXPECT_EQ(f.Ctl("chkCancelaciones").Value, 1);
    EXPECT_EQ(f.Ctl("optDispos", 0).Value, 0);  // the rest of the group is cleared
    EXPECT_EQ(f.Ctl("optDispos", 2).Value, 1);
    EXPECT_EQ(cmb.ListIndex, 2);
    EXPECT_EQ(cmb.Text, "Concepto");
    EXPECT_EQ(dcm.BoundText, "2");
    EXPECT_EQ(dcm.Text, "USD");
    f.Fija("dcmDato(0)", "1");  // a bound value
    EXPECT_EQ(dcm.Text, "MN");
    f.Fija("cmbDato(0)", "cantidad");
    EXPECT_EQ(cmb.ListIndex, 1);
    EXPECT_EQ(eventos,
              (std::vector<std::string>{"mkeFecha(0)", "chkCancelaciones", "optDispos(2)",
                                        "cmbDato(0)", "dcmDato(0)", "dcmDato(0)", "cmbDato(0)"}));
}

TEST(FormularioTest, FijaRechazaValoresYNombresMalos) {
    FormaBasica f("RepAdmPrueba", "Prueba");
    f.Agrega("chkTodos");
    f.Agrega("cmbDato", 0).Items = {"A"};
    f.Agrega("lblDato", 0);
    f.Agrega("txtDato", 1).Enabled = false;
    for (auto [control, valor] :
         std::vector<std::pair<const char*, const char*>>{{"chkTodos", "2"},
                                                          {"optDispos(1)", "0"},
                                                          {"cmbDato(0)", "#1"},
                                                          {"cmbDato(0)", "#x"},
                                                          {"cmbDato(0)", "B"},
                                                          {"lblDato(0)", "x"},
                                                          {"txtDato(1)", "x"},
                                                          {"txtDato(9)", "x"},
                                                          {"txtDato(", "x"},
                                                          {"txtDato(1", "x"},
                                                          {"txtDato(-1)", "x"},
                                                          {"noExiste", "x"}}) {
        EXPECT_THROW(f.Fija(control, valor), ErrorFormulario) << control << "=" << valor;
    }
    EXPECT_EQ(f.Ctl("chkTodos").Value, 0);
    EXPECT_EQ(f.Ctl("optDispos", 0).Value, 1);
}

TEST(FormularioTest, CargaYDescargaUnaVez) {
    struct Contadora : Formulario {
        Contadora() : Formulario("X", "x") {}
        int cargas = 0, descargas = 0;
        void Load() override { ++cargas; }
        void Unload() override { ++descargas; }
    } f;
    f.Carga();
    f.Carga();
    EXPECT_EQ(f.cargas, 1);
    f.Descarga();
    f.Descarga();
    EXPECT_EQ(f.descargas, 1);
    EXPECT_TRUE(f.Descargada());
}

TEST(TzorepListTest, ListaLasEntradasComoLaTabla) {
    auto r = apoyo::ejecutarTzorep({"list"});
    ASSERT_EQ(r.estado, 0);
    std::istringstream in(r.salida);
    std::string linea;
    std::size_t i = 0;
    std::size_t columnaForma = std::string::npos;
    const auto& t = TablaFachada();
    ASSERT_TRUE(std::getline(in, linea));
    EXPECT_EQ(linea.rfind("Núm  Entrada", 0), 0u) << linea;  // the title line
    while (std::getline(in, linea)) {
        ASSERT_LT(i, t.size()) << linea;
        std::istringstream campos(linea);
        int numero = 0, opcion = 0;
        std::string metodo, forma;
        campos >> numero >> metodo >> forma >> opcion;
        EXPECT_EQ(numero, t[i].numero);
        EXPECT_EQ(metodo, t[i].metodo);
        EXPECT_EQ(forma, t[i].forma);
        EXPECT_EQ(opcion, t[i].opcion);
        // Aligned: every form starts in the same column.
        std::size_t col = linea.find(t[i].forma, 4 + metodo.size());
        if (columnaForma == std::string::npos) columnaForma = col;
        EXPECT_EQ(col, columnaForma) << linea;
        ++i;
    }
    EXPECT_EQ(i, 46u);
    EXPECT_EQ(apoyo::ejecutarTzorep({"list", "extra"}).estado, 2);
}

}  // namespace
}  // namespace paratzorep::reports
