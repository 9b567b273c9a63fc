// Write failures in every writer: a full disk (simulated with a file-size limit) and a
// missing folder. Each is reported with a clear message naming the file, leaves no
// partial file and keeps the earlier file of the same name.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fstream>
#include <functional>
#include <memory>

#include "Documentos.h"
#include "Lector.h"
#include "renderer/writers/ErrorEscritura.h"
#include "renderer/writers/EscritorRtf.h"
#include "renderer/writers/PdfEscritor.h"
#include "renderer/writers/TablaDatos.h"
#include "renderer/writers/TxtEscritor.h"
#include "support/NombresDeCaso.h"

namespace paratzorep::renderer {
namespace {

using namespace prueba;

// Caps the size of any file this process writes while alive; past it, writes fail with
// EFBIG instead of raising SIGXFSZ.
class LimiteDeArchivo {
  public:
    explicit LimiteDeArchivo(rlim_t bytes) {
        anteriorSenal_ = std::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &anterior_);
        rlimit nuevo = anterior_;
        nuevo.rlim_cur = bytes;
        ::setrlimit(RLIMIT_FSIZE, &nuevo);
    }
    ~LimiteDeArchivo() {
        ::setrlimit(RLIMIT_FSIZE, &anterior_);
        std::signal(SIGXFSZ, anteriorSenal_);
    }

  private:
    rlimit anterior_{};
    void (*anteriorSenal_)(int) = nullptr;
};

struct CasoDisco {
    std::string extension;
    std::function<std::unique_ptr<Escritor>(const std::string&)> crear;  // over pages
    FabricaTabla tabla = nullptr;                                        // or over data
};

void PrintTo(const CasoDisco& c, std::ostream* os) {
    *os << c.extension;
}

// Writes 100 pages of 50 rows (far more than 16 KB in any format) and returns the
// message of the ErrorEscritura it ends in, checking that it names the file.
std::string EscribeReporteLargo(const CasoDisco& caso, const std::filesystem::path& ruta) {
    try {
        if (caso.tabla) {
            TablaDatos t(caso.tabla(ruta.string(), "Lleno"), {{"Cliente", "", 0}, {"Monto", "", 0}},
                         {});
            for (int fila = 0; fila < 5000; ++fila)
                t.Registro({Valor::texto("Cliente número " + std::to_string(fila)),
                            Valor::numero(fila * 1.5)});
            t.Termina();
            ADD_FAILURE() << "se esperaba ErrorEscritura";
            return "";
        }
        auto w = caso.crear(ruta.string());
        Documento doc;
        doc.titulo = "Lleno";
        w->Inicia(doc);
        std::uint32_t banda = 0;
        for (int pagina = 0; pagina < 100; ++pagina) {
            renderer::Pagina p;
            for (int fila = 0; fila < 50; ++fila, ++banda) {
                double y = 40 + fila * 14;
                p.textos.push_back(Texto(TipoBanda::Detalle, banda, 36, y, 200,
                                         "Cliente número " + std::to_string(banda)));
                p.textos.push_back(
                    Numero(TipoBanda::Detalle, banda, 300, y, 80, banda * 1.5, "1.50"));
            }
            w->Pagina(p);
        }
        w->Termina();
    } catch (const ErrorEscritura& e) {
        EXPECT_EQ(e.archivo(), ruta.string());
        return e.what();
    }
    ADD_FAILURE() << "se esperaba ErrorEscritura";
    return "";
}

class FalloDeEscritura : public ::testing::TestWithParam<CasoDisco> {
  protected:
    CarpetaTemporal carpeta;
};

TEST_P(FalloDeEscritura, DiscoLlenoDaErrorClaroSinArchivoParcialYElAnteriorIntacto) {
    auto ruta = carpeta / ("reporte." + GetParam().extension);
    std::ofstream(ruta) << "anterior";
    std::string mensaje;
    {
        LimiteDeArchivo limite(16 * 1024);
        mensaje = EscribeReporteLargo(GetParam(), ruta);
    }
    EXPECT_NE(mensaje.find("No se pudo"), std::string::npos) << mensaje;
    // The system's own reason; libxlsxwriter drops it on its temporary files, so the workbook's
    // read-back can only say what is missing.
    if (GetParam().extension != "xlsx") {
        EXPECT_NE(mensaje.find(std::strerror(EFBIG)), std::string::npos) << mensaje;
    }
    std::ifstream in(ruta);
    std::string contenido;
    in >> contenido;
    EXPECT_EQ(contenido, "anterior");
    for (const auto& e : std::filesystem::directory_iterator(carpeta.ruta()))
        EXPECT_EQ(e.path(), ruta) << "sobra " << e.path();
}

TEST_P(FalloDeEscritura, CarpetaInexistenteDaErrorClaroYNoCreaNada) {
    auto ruta = carpeta / "falta" / ("reporte." + GetParam().extension);
    auto mensaje = EscribeReporteLargo(GetParam(), ruta);
    EXPECT_NE(mensaje.find("No se pudo"), std::string::npos) << mensaje;
    EXPECT_TRUE(std::filesystem::is_empty(carpeta.ruta()));
}

INSTANTIATE_TEST_SUITE_P(
    Escritores, FalloDeEscritura,
    ::testing::Values(
        CasoDisco{"pdf",
                  [](const std::string& ruta) {
                      // The fonts of the pages below, registered once.
                      static Medidor medidor;
                      if (medidor.Registra(Fuente{}) == 0)
                          medidor.Registra(Fuente{"DejaVu Sans", 9, true});
                      return std::make_unique<PdfEscritor>(ruta, medidor);
                  }},
        CasoDisco{"txt",
                  [](const std::string& ruta) { return std::make_unique<TxtEscritor>(ruta); }},
        CasoDisco{"csv", nullptr, CreaTablaCsv}, CasoDisco{"xls", nullptr, CreaTablaXls},
        CasoDisco{"xlsx", nullptr, CreaTablaXlsx}, CasoDisco{"rtf", CreaEscritorRtf},
        CasoDisco{"doc", CreaEscritorDoc}),
    pruebas::NombrePor(&CasoDisco::extension));

}  // namespace
}  // namespace paratzorep::renderer
