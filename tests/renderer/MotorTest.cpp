#include "renderer/Motor.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>

#include "renderer/TiposArchivo.h"
#include "renderer/formula/Formula.h"

namespace paratzorep::renderer {
namespace {

namespace fs = std::filesystem;

const char* kPlantilla = R"(<reporte version="1" titulo="Bitácora">
  <pagina tamano="A4" margenes="10"/>
  <tabla nombre="bitacorausuarios"/>
  <tabla nombre="Generales" archivo="Auxiliar.mdb"/>
  <formula nombre="ENCABEZADO">'Sin título'</formula>
  <formula nombre="DOBLE">{bitacorausuarios.Id} * 2</formula>
  <parametro nombre="UsuarioImpresion"/>
  <encabezadoReporte>
    <formula nombre="ENCABEZADO" x="0" y="0" ancho="100"/>
    <parametro nombre="UsuarioImpresion" x="100" y="0" ancho="80"/>
  </encabezadoReporte>
  <detalle>
    <campo ref="bitacorausuarios.Accion" x="0" y="0" ancho="100"/>
    <formula nombre="DOBLE" x="120" y="0" ancho="30" formato="0"/>
  </detalle>
  <sinDatos>Sin movimientos</sinDatos>
</reporte>)";

class CursorPrueba : public CursorFilas {
  public:
    explicit CursorPrueba(std::vector<std::pair<int, std::string>> filas)
        : filas_(std::move(filas)) {}
    bool Siguiente() override { return ++pos_ < static_cast<int>(filas_.size()); }
    Valor Campo(std::string_view, std::string_view campo) const override {
        const auto& f = filas_[static_cast<std::size_t>(pos_)];
        if (campo == "Id") return Valor::numero(f.first);
        return Valor::texto(f.second);
    }

  private:
    std::vector<std::pair<int, std::string>> filas_;
    int pos_ = -1;
};

class MotorTest : public ::testing::Test {
  protected:
    void SetUp() override {
        char plantilla[] = "/tmp/tz-motor-XXXXXX";
        dir_ = mkdtemp(plantilla);
        rpt_ = (dir_ / "bitacoraus.rpt").string();
        std::ofstream(rpt_) << kPlantilla;
        Conecta(motor_);
    }
    void TearDown() override {
        std::error_code ec;
        fs::remove_all(dir_, ec);
    }
    // Rows from filas_, and the query the engine asked for kept in consulta_.
    void Conecta(Motor& m) {
        m.Datos([this](const ConsultaReporte& c) {
            consulta_ = c;
            return DatosAbiertos{std::make_unique<CursorPrueba>(filas_), false};
        });
    }
    // The template, to a file of the given type in the test folder; returns its path.
    std::string AArchivo(const std::string& nombre, TipoArchivo tipo = TipoArchivo::Txt) {
        motor_.ReportFileName(rpt_);
        motor_.Destination(2);
        motor_.PrintFileType(InfoDe(tipo).codigo);
        motor_.PrintFileName((dir_ / nombre).string());
        return (dir_ / nombre).string();
    }
    static std::string Lee(const std::string& archivo) {
        std::ifstream in(archivo);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    fs::path dir_;
    std::string rpt_;
    Motor motor_;
    ConsultaReporte consulta_;
    std::vector<std::pair<int, std::string>> filas_ = {
        {1, "Entrada"}, {2, "Salida"}, {3, "Entrada"}};
};

TEST_F(MotorTest, ArchivosDeDatosDeLaPlantilla) {
    motor_.ReportFileName(rpt_);
    ASSERT_EQ(motor_.RetrieveDataFiles(), 2);
    EXPECT_EQ(motor_.DataFiles(0), "bitacorausuarios");
    EXPECT_EQ(motor_.DataFiles(1), "Auxiliar.mdb");
    EXPECT_THROW(motor_.DataFiles(2), ErrorMotor);
}

TEST_F(MotorTest, IndicesDeFormulasYOrdenDe0A20) {
    for (int i : {0, 20}) {
        EXPECT_NO_THROW(motor_.Formulas(i, "X='1'"));
        EXPECT_NO_THROW(motor_.SortFields(i, "+{t.f}"));
    }
    for (int i : {-1, 21}) {
        EXPECT_THROW(motor_.Formulas(i, "X='1'"), ErrorMotor);
        EXPECT_THROW(motor_.SortFields(i, "+{t.f}"), ErrorMotor);
    }
}

TEST_F(MotorTest, ArchivoDeTextoConFormulasParametrosYSeleccion) {
    const std::string salida = AArchivo("bitacora.txt");
    motor_.Formulas(0, "ENCABEZADO='Movimientos del usuario ADMIN'");
    motor_.Parametro("UsuarioImpresion", "ADMIN");
    motor_.SelectionFormula("'Entrada' in {bitacorausuarios.Accion}");
    motor_.SortFields(0, "+{bitacorausuarios.Id}");
    motor_.Action(1);
    const std::string texto = Lee(salida);
    EXPECT_NE(texto.find("Movimientos del usuario ADMIN"), std::string::npos) << texto;
    EXPECT_NE(texto.find("ADMIN"), std::string::npos);
    EXPECT_NE(texto.find("Entrada"), std::string::npos);
    EXPECT_EQ(texto.find("Salida"), std::string::npos);  // left out by the selection
    EXPECT_NE(texto.find("6"), std::string::npos);       // DOBLE of row 3
    EXPECT_EQ(motor_.Resultado().paginas, 1);
    EXPECT_EQ(consulta_.orden, std::vector<std::string>{"+{bitacorausuarios.Id}"});
    EXPECT_NE(std::find(consulta_.campos.begin(), consulta_.campos.end(), "bitacorausuarios.Id"),
              consulta_.campos.end());
}

// A cursor that also answers by position, as the data layer's does: the layout then reads
// each row's fields by position, with the same result.
class CursorConPosiciones : public CursorPrueba {
  public:
    CursorConPosiciones(std::vector<std::pair<int, std::string>> filas, int& pedidos)
        : CursorPrueba(std::move(filas)), pedidos_(pedidos) {}
    int Posicion(std::string_view, std::string_view campo) const override {
        return campo == "Id" ? 0 : (campo == "Accion" ? 1 : -1);
    }
    const Valor& EnPosicion(int posicion) const override {
        ++pedidos_;
        valor_ = Campo("", posicion == 0 ? "Id" : "Accion");
        return valor_;
    }

  private:
    int& pedidos_;
    mutable Valor valor_;
};

TEST_F(MotorTest, CamposPorPosicionDanLoMismoQuePorNombre) {
    const std::string porNombre = AArchivo("nombre.txt");
    motor_.Action(1);
    int pedidos = 0;
    motor_.Datos([&](const ConsultaReporte&) {
        return DatosAbiertos{std::make_unique<CursorConPosiciones>(filas_, pedidos), false};
    });
    const std::string porPosicion = AArchivo("posicion.txt");
    motor_.Action(1);
    EXPECT_EQ(Lee(porPosicion), Lee(porNombre));
    EXPECT_GE(pedidos, static_cast<int>(filas_.size()));
}

// Progress while the rows are read and the pages written: told at each end of a phase and in
// between only when the clock is looked at (every 256 rows, at each page), never per row.
TEST_F(MotorTest, AvanceDeLecturaYEscritura) {
    filas_.clear();
    for (int i = 1; i <= 3000; ++i) filas_.push_back({i, "Fila " + std::to_string(i)});
    AArchivo("largo.txt");
    std::vector<AvanceMotor> avisos;
    motor_.Avance([&](const AvanceMotor& a) { avisos.push_back(a); }, 0);
    motor_.Action(1);
    const int paginas = motor_.Resultado().paginas;
    ASSERT_GT(paginas, 1);
    std::vector<AvanceMotor> leyendo, escribiendo;
    for (const auto& a : avisos)
        (a.fase == AvanceMotor::Fase::Leyendo ? leyendo : escribiendo).push_back(a);
    ASSERT_GE(leyendo.size(), 2u);
    ASSERT_GE(escribiendo.size(), 2u);
    EXPECT_EQ(leyendo.front().filas, 0);
    EXPECT_EQ(leyendo.back().filas, 3000);
    EXPECT_EQ(leyendo.back().paginas, paginas);
    EXPECT_LE(leyendo.size(), 3000u / 256 + static_cast<unsigned>(paginas) + 3);
    for (std::size_t i = 1; i < leyendo.size(); ++i) {
        EXPECT_GE(leyendo[i].filas, leyendo[i - 1].filas);
        EXPECT_GE(leyendo[i].paginas, leyendo[i - 1].paginas);
    }
    EXPECT_EQ(escribiendo.front().escritas, 0);
    EXPECT_EQ(escribiendo.back().escritas, paginas);
    for (const auto& a : escribiendo) EXPECT_EQ(a.paginas, paginas);
}

TEST_F(MotorTest, FormulaDesconocidaEsUnErrorClaro) {
    AArchivo("x.txt");
    motor_.Formulas(0, "TITULO='x'");
    try {
        motor_.Action(1);
        FAIL();
    } catch (const ErrorMotor& e) {
        EXPECT_NE(std::string(e.what()).find("'TITULO' no existe"), std::string::npos);
    }
}

TEST_F(MotorTest, PantallaDaPaginasPngYTextoEnLaSalida) {
    motor_.ReportFileName(rpt_);
    std::ostringstream pantalla;
    motor_.SalidaPantalla(&pantalla);
    motor_.CarpetaVistaPrevia((dir_ / "vista").string());
    motor_.Destination(0);
    motor_.Action(1);
    EXPECT_NE(pantalla.str().find("Salida"), std::string::npos);
    ASSERT_EQ(motor_.Resultado().archivos.size(), 1u);
    EXPECT_TRUE(fs::exists(motor_.Resultado().archivos[0]));
}

TEST_F(MotorTest, ImpresoraRecibeElPdfConCopias) {
    motor_.ReportFileName(rpt_);
    std::string impresora;
    int copias = 0;
    bool eraPdf = false;
    motor_.Imprimir([&](const std::string& pdf, const std::string& imp, int c, const std::string&) {
        impresora = imp;
        copias = c;
        std::ifstream in(pdf);
        std::string cabecera(4, '\0');
        in.read(cabecera.data(), 4);
        eraPdf = cabecera == "%PDF";
    });
    motor_.Destination(1);
    motor_.PrinterName("Oficina");
    motor_.CopiesToPrinter(2);
    motor_.Action(1);
    EXPECT_EQ(impresora, "Oficina");
    EXPECT_EQ(copias, 2);
    EXPECT_TRUE(eraPdf);
}

TEST_F(MotorTest, SinServidorDeImpresionDiceDondeQuedoElReporte) {
    // The default printing goes to CUPS; with no server there, a clear error and the
    // PDF kept.
    setenv("CUPS_SERVER", "127.0.0.1:1", 1);
    Motor motor;
    Conecta(motor);
    motor.ReportFileName(rpt_);
    motor.Destination(1);
    motor.PrinterName("Oficina");
    try {
        motor.Action(1);
        FAIL() << "se esperaba un error de impresión";
    } catch (const std::runtime_error& e) {
        std::string m = e.what();
        EXPECT_NE(m.find(".pdf"), std::string::npos) << m;
        auto inicio = m.find("/tmp/");
        if (inicio != std::string::npos) {
            std::string ruta = m.substr(inicio, m.find(".pdf", inicio) + 4 - inicio);
            EXPECT_TRUE(fs::exists(ruta)) << ruta;
            fs::remove(ruta);
        }
    }
    unsetenv("CUPS_SERVER");
}

TEST_F(MotorTest, SinFilasImprimeElTextoDeSinDatos) {
    filas_.clear();
    const std::string salida = AArchivo("vacio.pdf", TipoArchivo::Pdf);
    motor_.Action(1);
    EXPECT_EQ(Lee(salida).rfind("%PDF", 0), 0u);
    EXPECT_EQ(motor_.Resultado().paginas, 1);
}

TEST_F(MotorTest, ErroresDeUsoConMensaje) {
    EXPECT_THROW(motor_.Action(1), ErrorMotor);  // no template
    EXPECT_THROW(motor_.ReportFileName((dir_ / "noexiste.rpt").string()), ErrorPlantilla);
    AArchivo("x.zzz");
    motor_.PrintFileType(99);
    EXPECT_THROW(motor_.Action(1), ErrorMotor);
    EXPECT_THROW(motor_.Destination(3), ErrorMotor);
    motor_.PrintFileType(InfoDe(TipoArchivo::Txt).codigo);
    motor_.SelectionFormula("{bitacorausuarios.Accion} = ");
    EXPECT_THROW(motor_.Action(1), ErrorMotor);
    motor_.Action(0);  // any other action does nothing
}

TEST(TiposArchivo, CodigosUnicosYExtensiones) {
    std::set<int> codigos;
    for (const auto& t : TiposArchivo()) {
        EXPECT_TRUE(codigos.insert(t.codigo).second) << t.extension;
        EXPECT_LE(t.codigo, 99);
        EXPECT_EQ(TipoPorCodigo(t.codigo)->tipo, t.tipo);
        EXPECT_NE(t.texto.find(t.extension), std::string_view::npos);
    }
    EXPECT_EQ(TipoPorExtension("/a/b/Reporte.PDF")->tipo, TipoArchivo::Pdf);
    EXPECT_EQ(TipoPorExtension("x.xlsx")->tipo, TipoArchivo::Xlsx);
    EXPECT_FALSE(TipoPorExtension("sin-extension"));
    EXPECT_FALSE(TipoPorCodigo(0));
}

}  // namespace
}  // namespace paratzorep::renderer
