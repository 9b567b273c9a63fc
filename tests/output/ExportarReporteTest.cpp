#include "output/ExportarReporte.h"

#include <gtest/gtest.h>

#include <cctype>
#include <ostream>

#include <memory>

#include "Apoyo.h"
#include "renderer/TiposArchivo.h"
#include "session/Sesion.h"
#include "support/NombresDeCaso.h"

namespace paratzorep::output {
namespace {

using Usuario = prueba::UsuarioDePrueba;
using prueba::Etiqueta;

class ExportarReporte : public ::testing::Test {
  protected:
    void SetUp() override { session::sesion().RutaPDFs = "/tmp/pdfs/"; }
    void TearDown() override { session::sesion().RutaPDFs.clear(); }
};

TEST_F(ExportarReporte, ListsTheSystemTypesExactlyThenCsvAndXlsx) {
    frmExportarReporte f;
    f.Carga();
    const auto& items = f.Ctl("cmbTipo").Items;
    ASSERT_EQ(items.size(), 7u);
    const char* sistema[] = {
        "Archivo de texto (*.txt)            ", "Formato de texto enriquecido (*.rtf)",
        "Excel 5.0 (*.xls)                   ", "Word para Windows (*.doc)           ",
        "Formato de Documento Portable (*.pdf)           "};
    for (int i = 0; i < 5; ++i) {
        SCOPED_TRACE(i);
        // The system's text, trailing blanks kept, then the two-digit code.
        EXPECT_EQ(items[i].substr(0, items[i].size() - 2), sistema[i]);
    }
    EXPECT_EQ(ExtensionDeTipo(items[5]), ".csv");
    EXPECT_EQ(ExtensionDeTipo(items[6]), ".xlsx");
}

TEST_F(ExportarReporte, WithoutPdfFolderFourSystemTypesAndNoPdf) {
    session::sesion().RutaPDFs.clear();
    const auto items = TiposDeExportacion(false);
    ASSERT_EQ(items.size(), 6u);
    for (const auto& i : items) EXPECT_NE(ExtensionDeTipo(i), ".pdf") << i;
    EXPECT_EQ(ExtensionDeTipo(items[3]), ".doc");
    EXPECT_EQ(ExtensionDeTipo(items[4]), ".csv");
}

// The code read back from each item is the renderer's code for the same extension.
TEST_F(ExportarReporte, EveryItemCodeIsTheRenderersTypeForItsExtension) {
    for (const auto& item : TiposDeExportacion(true)) {
        SCOPED_TRACE(item);
        auto t = renderer::TipoPorCodigo(CodigoDeTipo(item));
        ASSERT_TRUE(t.has_value());
        EXPECT_EQ(std::string(t->extension), ExtensionDeTipo(item));
    }
    // The rule of the system's types: the four characters after the "*".
    for (const auto& item : TiposDeExportacion(true)) {
        if (ExtensionDeTipo(item).size() == 4) {
            EXPECT_EQ(ExtensionDeTipo(item), item.substr(item.find('*') + 1, 4));
        }
    }
}

TEST_F(ExportarReporte, BlankNameBeepsAndDoesNotAccept) {
    for (const char* nombre : {"", "   "}) {
        Usuario u;
        frmExportarReporte f(&u);
        f.Carga();
        if (*nombre) f.Fija("txtArchivo", nombre);
        f.Fija("cmdAceptar", "");
        EXPECT_EQ(u.beeps, 1) << "'" << nombre << "'";
        EXPECT_FALSE(f.Aceptado());
        EXPECT_EQ(f.Ctl("lblNumTipo").Caption, "");
    }
}

struct CasoCarpeta {
    const char* nombre;
    const char* carpeta;
    const char* esperado;
};

inline void PrintTo(const CasoCarpeta& c, std::ostream* os) {
    *os << Etiqueta(c.carpeta);
}

class CarpetaExportar : public ExportarReporte,
                        public ::testing::WithParamInterface<CasoCarpeta> {};

TEST_P(CarpetaExportar, FolderGetsOneTrailingSeparator) {
    Usuario u;
    u.carpetas.push_back(GetParam().carpeta);
    u.llena = [](host::Formulario& f) {
        f.Fija("cmdRuta", "");
        f.Fija("cmbTipo", "#2");
        f.Fija("txtArchivo", "ventas");
        f.Fija("cmdAceptar", "");
    };
    auto r = PideArchivoDeSalida(u);
    ASSERT_TRUE(r.aceptado);
    EXPECT_EQ(r.nombreArchivo, GetParam().esperado);
    EXPECT_EQ(r.tipo, renderer::InfoDe(renderer::TipoArchivo::Xls).codigo);
}

INSTANTIATE_TEST_SUITE_P(
    Carpetas, CarpetaExportar,
    ::testing::Values(CasoCarpeta{"SinSeparadorFinal", "/tmp/salida", "/tmp/salida/ventas.xls"},
                      CasoCarpeta{"ConSeparadorFinal", "/tmp/salida/", "/tmp/salida/ventas.xls"},
                      CasoCarpeta{"WindowsConDiagonalFinal", "C:\\reportes\\",
                                  "C:/reportes/ventas.xls"}),
    pruebas::PorNombre());

TEST_F(ExportarReporte, TypedExtensionPicksItsType) {
    Usuario u;
    u.carpetas.push_back("/tmp");
    u.llena = [](host::Formulario& f) {
        f.Fija("cmdRuta", "");
        f.Fija("txtArchivo", "libro.XLSX");
    };
    // The host accepts without pressing the button: the dialog is accepted for it.
    auto r = PideArchivoDeSalida(u);
    ASSERT_TRUE(r.aceptado);
    EXPECT_EQ(r.nombreArchivo, "/tmp/libro.xlsx");
    EXPECT_EQ(r.tipo, renderer::InfoDe(renderer::TipoArchivo::Xlsx).codigo);
}

TEST_F(ExportarReporte, CancelAndPdfCode) {
    Usuario u;
    u.llena = [](host::Formulario& f) {
        f.Fija("txtArchivo", "x");
        // Command1 is not named as a button: the host clicks it directly.
        auto& cancelar = f.Ctl("Command1");
        cancelar.Click(cancelar);
    };
    EXPECT_FALSE(PideArchivoDeSalida(u).aceptado);

    Usuario v;
    v.carpetas.push_back("/tmp");
    v.llena = [](host::Formulario& f) {
        f.Fija("cmdRuta", "");
        f.Fija("cmbTipo", "#4");
        f.Fija("txtArchivo", "estado");
        f.Fija("cmdAceptar", "");
        EXPECT_EQ(f.Ctl("lblNumTipo").Caption,
                  std::to_string(renderer::InfoDe(renderer::TipoArchivo::Pdf).codigo));
    };
    auto r = PideArchivoDeSalida(v);
    EXPECT_EQ(r.nombreArchivo, "/tmp/estado.pdf");
}

TEST_F(ExportarReporte, TextOnlyLocksThePlainTextType) {
    frmExportarReporte f;
    f.Carga();
    f.Fija("cmbTipo", "#3");
    f.Fija("chkSoloTexto", "1");
    EXPECT_EQ(f.Ctl("cmbTipo").ListIndex, 0);
    EXPECT_FALSE(f.Ctl("cmbTipo").Enabled);
    f.Fija("chkSoloTexto", "0");
    EXPECT_TRUE(f.Ctl("cmbTipo").Enabled);
}

}  // namespace
}  // namespace paratzorep::output
