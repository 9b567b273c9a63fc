#include "output/Plantillas.h"

#include <gtest/gtest.h>

#include <cctype>
#include <ostream>

#include <random>

#include "Entorno.h"
#include "renderer/template/Plantilla.h"
#include "support/NombresDeCaso.h"

namespace paratzorep::output::prueba {
namespace {

std::string BytesAlAzar(std::size_t n) {
    std::mt19937 g(42);
    std::string s(n, '\0');
    for (auto& c : s) c = static_cast<char>(g() & 0xFF);
    return s;
}

class AlmacenPlantillas : public ConAlmacen {};

// A template that reads, padded with a comment to `n` bytes.
std::string PlantillaDe(std::size_t n) {
    std::string s = "<reporte version=\"1\"/><!--";
    s.resize(n - 3, 'x');
    return s + "-->";
}

TEST_F(AlmacenPlantillas, StoredInPiecesAndExtractedByteForByte) {
    // Three pieces of 60000 bytes, with NUL, quotes and backslashes among them (a file of the
    // store that is not a template: templates are read before they are stored).
    const std::string contenido = BytesAlAzar(150001) + "'\\\0\"";
    Guarda("pedazos.bin", contenido);
    EXPECT_EQ(bd->valor("SELECT COUNT(*) FROM reportesbin WHERE Archivo='pedazos.bin'"), "3");
    std::string carpeta = (tmp / "salida").string();
    const std::string ruta = ExtraePlantilla(cn, "C:\\otra\\pedazos.bin", carpeta);
    EXPECT_EQ(ruta, (tmp / "salida" / "pedazos.bin").string());
    EXPECT_EQ(Lee(ruta), contenido);
}

TEST_F(AlmacenPlantillas, PiecesJoinInRenglonOrderWhateverTheirInsertOrder) {
    bd->ejecutar(
        "INSERT INTO reportesbin VALUES ('orden.rpt', 3, 'ccc'), ('orden.rpt', 1, 'a'),"
        " ('orden.rpt', 2, 'bb'), ('otro.rpt', 1, 'zz')");
    std::string carpeta;
    const std::string ruta = ExtraePlantilla(cn, "orden.rpt", carpeta);
    // An empty folder means RutaRpts, and the argument says so.
    EXPECT_EQ(carpeta, session::sesion().RutaRpts);
    EXPECT_EQ(Lee(ruta), "abbccc");
}

TEST_F(AlmacenPlantillas, MissingTemplateGivesAClearMessageAndNoFile) {
    std::string carpeta;
    try {
        ExtraePlantilla(cn, "noexiste.rpt", carpeta);
        FAIL() << "no error";
    } catch (const std::runtime_error& e) {
        EXPECT_NE(std::string(e.what()).find("noexiste.rpt"), std::string::npos) << e.what();
        EXPECT_NE(std::string(e.what()).find("no está guardado"), std::string::npos) << e.what();
    }
    EXPECT_FALSE(std::filesystem::exists(session::sesion().RutaRpts + "noexiste.rpt"));
}

TEST_F(AlmacenPlantillas, FormatWithoutAnnexesIsTheDefaultWithoutDialog) {
    EXPECT_EQ(EligeFormato("bitacoraus.rpt", cn, "C:\\rpts\\bitacoraus.rpt"), "bitacoraus.rpt");
    EXPECT_TRUE(usuario->dialogos.empty());
}

struct CasoTitulo {
    const char* nombre;
    const char* plantilla;
    const char* titulo;
};

inline void PrintTo(const CasoTitulo& c, std::ostream* os) {
    *os << Etiqueta(c.plantilla);
}

class TituloFormatos : public ConAlmacen, public ::testing::WithParamInterface<CasoTitulo> {};

TEST_P(TituloFormatos, CaptionByTheFmtPrefix) {
    bd->ejecutar(std::string("INSERT INTO anexoreportes (ArchivoPadre, Archivo, DESCripcion) "
                             "VALUES ('") +
                 GetParam().plantilla + "', 'alterno.rpt', 'Formato corto')");
    std::string titulo;
    std::vector<std::string> items;
    usuario->llena = [&](host::Formulario& f) {
        titulo = f.Caption;
        items = f.Ctl("cmbFormato").Items;
        f.Fija("cmbFormato", "#1");
    };
    EXPECT_EQ(EligeFormato(GetParam().plantilla, cn, GetParam().plantilla), "alterno.rpt");
    EXPECT_EQ(titulo, GetParam().titulo);
    ASSERT_EQ(items.size(), 2u);
    EXPECT_EQ(items[1], "alterno.rpt - Formato corto");
    // Not kept: the next print asks again.
    EligeFormato(GetParam().plantilla, cn, GetParam().plantilla);
    EXPECT_EQ(usuario->dialogos.size(), 2u);
}

INSTANTIATE_TEST_SUITE_P(
    Prefijos, TituloFormatos,
    ::testing::Values(CasoTitulo{"EmpiezaConFmt", "fmtfactura.rpt", "Elija el formato"},
                      CasoTitulo{"SinFmt", "ventas.rpt", "Elija el reporte"},
                      CasoTitulo{"FmtEnMedio", "vfmt.rpt", "Elija el reporte"}),
    pruebas::PorNombre());

TEST_F(AlmacenPlantillas, KeptChoiceIsRememberedUntilTheForgetFlag) {
    bd->ejecutar(
        "INSERT INTO anexoreportes (ArchivoPadre, Archivo, DESCripcion) VALUES "
        "('fmtnota.rpt', 'fmtnota2.rpt', 'Media carta')");
    usuario->llena = [](host::Formulario& f) {
        f.Fija("cmbFormato", "fmtnota2.rpt - Media carta");
        f.Fija("chkConservar", "1");
    };
    EXPECT_EQ(EligeFormato("fmtnota.rpt", cn, "fmtnota.rpt"), "fmtnota2.rpt");
    EXPECT_EQ(FormatoRecordado(), "fmtnota2.rpt");
    usuario->llena = nullptr;
    EXPECT_EQ(EligeFormato("fmtnota.rpt", cn, "fmtnota.rpt"), "fmtnota2.rpt");
    EXPECT_EQ(usuario->dialogos.size(), 1u);

    // Forget: the list shows again; a cancelled list prints the default.
    OlvidarFormato() = true;
    usuario->respuestasDialogo.push_back(false);
    EXPECT_EQ(EligeFormato("fmtnota.rpt", cn, "fmtnota.rpt"), "fmtnota.rpt");
    EXPECT_EQ(usuario->dialogos.size(), 2u);
    EXPECT_TRUE(FormatoRecordado().empty());
}

TEST_F(AlmacenPlantillas, QuoteInTheTemplateNameDoesNotBreakTheCount) {
    EXPECT_EQ(EligeFormato("o'brien.rpt", cn, "o'brien.rpt"), "o'brien.rpt");
}

TEST_F(AlmacenPlantillas, EditWritesAuxiliaryAndTemplateAndHandsItToTheWatcher) {
    Guarda("ventas.rpt", "<reporte version=\"1\"/>");
    Guarda("Auxiliar.mdb", "aux");
    const std::string ruta = EditaPlantilla("ventas.rpt", 1, cn, true);
    EXPECT_EQ(ruta, session::sesion().RutaEditaRpts + "ventas.rpt");
    EXPECT_EQ(Lee(ruta), "<reporte version=\"1\"/>");
    EXPECT_EQ(Lee(session::sesion().RutaEditaRpts + "Auxiliar.mdb"), "aux");
    EXPECT_TRUE(menu->mnTimerCrw.Enabled);
    const auto tab = menu->mnTimerCrw.Tag.find('\t');
    ASSERT_NE(tab, std::string::npos);
    EXPECT_EQ(menu->mnTimerCrw.Tag.substr(0, tab), ruta);
    EXPECT_EQ(menu->mnTimerCrw.Tag.size() - tab - 1, std::string("dd/mm/yyyy hh:mm:ss").size());
    EXPECT_EQ(bd->valor("SELECT Registro FROM bitacorausuarios"), "156");
}

TEST_F(AlmacenPlantillas, ImportListExportRoundTrip) {
    std::filesystem::create_directories(tmp / "fuentes");
    std::ofstream(tmp / "fuentes" / "a.rpt") << PlantillaDe(100);
    std::ofstream(tmp / "fuentes" / "B.RPT") << PlantillaDe(70000);
    std::ofstream(tmp / "fuentes" / "notas.txt") << "no";
    EXPECT_EQ(ImportaPlantillas(cn, tmp / "fuentes"), (std::vector<std::string>{"B.RPT", "a.rpt"}));
    const auto lista = ListaPlantillas(cn);
    ASSERT_EQ(lista.size(), 2u);
    // Listed in the server's order of names (its collation ignores letter case).
    EXPECT_EQ(lista[1].archivo, "B.RPT");
    EXPECT_EQ(lista[1].bytes, 70000);
    EXPECT_EQ(lista[1].piezas, 2);
    const auto escritas = ExportaPlantillas(cn, tmp / "copia");
    ASSERT_EQ(escritas.size(), 2u);
    EXPECT_EQ(Lee(tmp / "copia" / "B.RPT"), Lee(tmp / "fuentes" / "B.RPT"));
    EXPECT_THROW(ImportaPlantillas(cn, tmp / "nohay"), std::runtime_error);
}

// Broken templates are refused with their line and column, and then none of the folder is
// stored: an empty file, text that is not XML, a file cut short, a repeated attribute.
TEST_F(AlmacenPlantillas, BrokenTemplatesAreRefusedAndNothingIsStored) {
    std::filesystem::create_directories(tmp / "rotas");
    std::ofstream(tmp / "rotas" / "a-buena.rpt") << PlantillaDe(100);
    std::ofstream(tmp / "rotas" / "b-vacia.rpt") << "";
    std::ofstream(tmp / "rotas" / "c-texto.rpt") << "not xml at all";
    std::ofstream(tmp / "rotas" / "d-cortada.rpt") << "<reporte version=\"1\">\n  <tabla nombre=";
    std::ofstream(tmp / "rotas" / "e-repetido.rpt")
        << "<reporte version=\"1\">\n  <tabla nombre=\"a\" nombre=\"b\"/>\n</reporte>";
    try {
        ImportaPlantillas(cn, tmp / "rotas");
        FAIL() << "se esperaba que se rechazaran";
    } catch (const std::runtime_error& e) {
        const std::string m = e.what();
        for (const char* esperado :
             {"'b-vacia.rpt', línea 1, columna 1: el XML no es válido",
              "'c-texto.rpt', línea 1, columna 15", "'d-cortada.rpt', línea 2",
              "'e-repetido.rpt', línea 2, columna 3: el atributo 'nombre' está repetido"})
            EXPECT_NE(m.find(esperado), std::string::npos) << esperado << "\n" << m;
        EXPECT_EQ(m.find("a-buena"), std::string::npos) << m;
    }
    EXPECT_EQ(bd->valor("SELECT COUNT(*) FROM reportesbin"), "0");
    EXPECT_THROW(GuardaPlantilla(cn, tmp / "rotas" / "c-texto.rpt"), renderer::ErrorPlantilla);
}

}  // namespace
}  // namespace paratzorep::output::prueba
