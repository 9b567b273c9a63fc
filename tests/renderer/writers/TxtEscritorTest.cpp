#include "renderer/writers/TxtEscritor.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>
#include <ext/stdio_filebuf.h>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <set>
#include <sstream>

#include "Muestra.h"
#include "renderer/writers/ErrorEscritura.h"
#include "support/NombresDeCaso.h"

namespace paratzorep::renderer {
namespace {

// A text line of one element in a 9 pt document with 10 pt margins: a column is 5.4 pt.
ElementoTexto Texto(double x, double y, double ancho, const std::string& t,
                    Alineacion a = Alineacion::Izquierda, TipoValor tipo = TipoValor::Texto) {
    ElementoTexto e;
    e.x = x;
    e.y = y;
    e.ancho = ancho;
    e.alto = 10;
    e.base = 8;
    e.interlineado = 10.5;
    e.alineacion = a;
    e.tipo = tipo;
    e.renglones.push_back({t, 0, 0});
    return e;
}

Documento Doc() {
    Documento d;
    d.margenIzquierdo = 10;
    d.margenSuperior = 10;
    d.fuentes.push_back(Fuente{});
    return d;
}

std::vector<std::string> Rejilla(const Pagina& p) {
    std::ostringstream nulo;
    TxtEscritor escritor(nulo, "\f");
    escritor.Inicia(Doc());
    return escritor.Rejilla(p);
}

struct CasoColumna {
    const char* nombre;
    std::vector<ElementoTexto> textos;
    std::vector<std::string> esperado;
    std::vector<ElementoLinea> lineas = {};
};

class RejillaTxt : public ::testing::TestWithParam<CasoColumna> {};

TEST_P(RejillaTxt, ColocaCadaTextoEnSuColumna) {
    Pagina p;
    p.textos = GetParam().textos;
    p.lineas = GetParam().lineas;
    EXPECT_EQ(Rejilla(p), GetParam().esperado);
}

INSTANTIATE_TEST_SUITE_P(
    Casos, RejillaTxt,
    ::testing::Values(
        // x=10 is column 0; a box 54 pt wide spans 10 columns.
        CasoColumna{"IzquierdaEnSuColumna", {Texto(10 + 5.4 * 3, 10, 54, "abc")}, {"   abc"}},
        CasoColumna{"NumerosTerminanEnLaMismaColumna",
                    {Texto(10, 10, 54, "1.00", Alineacion::Derecha, TipoValor::Numero),
                     Texto(10, 20.5, 54, "1,234.50", Alineacion::Derecha, TipoValor::Numero)},
                    {"      1.00", "  1,234.50"}},
        CasoColumna{"Centrado", {Texto(10, 10, 54, "ab", Alineacion::Centro)}, {"    ab"}},
        CasoColumna{
            "MismaLineaBaseMismoRenglon",
            {Texto(10, 10, 27, "Fecha"), Texto(10 + 27, 10.2, 27, "Saldo", Alineacion::Derecha)},
            {"FechaSaldo"}},
        // A long text stops where a number already sits: the number is never overwritten.
        // ("Saldo" right-aligned in the box after "Fecha" ends at column 10.)
        CasoColumna{"TextoLargoNoPisaUnNumero",
                    {Texto(10, 10, 27, "Distribuidora Peña de Occidente"),
                     Texto(10 + 27, 10, 27, "99.00", Alineacion::Derecha, TipoValor::Numero)},
                    {"Distr99.00"}},
        CasoColumna{"HuecoGrandeDejaRenglonEnBlanco",
                    {Texto(10, 10, 54, "uno"), Texto(10, 10 + 31.5, 54, "dos")},
                    {"uno", "", "", "dos"}},
        CasoColumna{"Acentos", {Texto(10, 10, 54, "Núñez")}, {"Núñez"}},
        CasoColumna{"ReglaHorizontalComoGuiones",
                    {Texto(10, 10, 54, "Total")},
                    {"Total", "--------"},
                    {{10, 25, 10 + 5.4 * 8, 25, 0.5}}}),
    pruebas::PorNombre());

TEST(TxtEscritor, MuestraConColumnasAlineadasYSaltoDePagina) {
    Medidor medidor;
    std::ostringstream salida;
    TxtEscritor escritor(salida, "\f");
    int paginas = prueba::RenderMuestra(20, medidor, {&escritor}, 0);
    std::string texto = salida.str();
    EXPECT_EQ(std::count(texto.begin(), texto.end(), '\f'), paginas - 1);
    EXPECT_NE(texto.find("Página 1 de " + std::to_string(paginas)), std::string::npos);
    // Every amount line ends in the same column.
    std::istringstream in(texto);
    std::set<std::size_t> finales;
    for (std::string linea; std::getline(in, linea);) {
        if (linea.size() < 3 || linea[linea.size() - 3] != '.' ||
            linea.find("Página") != std::string::npos)
            continue;
        finales.insert(static_cast<std::size_t>(
            std::count_if(linea.begin(), linea.end(), [](char c) { return (c & 0xC0) != 0x80; })));
    }
    EXPECT_EQ(finales.size(), 1u);
}

// The preview on standard output: a reader that goes away (a pager closed, `| head`) ends the
// preview quietly; a stream that fails otherwise (a full disk) is still an error.
TEST(TxtEscritor, LectorQueSeVaTerminaLaVistaSinError) {
    Pagina p;
    for (int i = 0; i < 2000; ++i) p.textos.push_back(Texto(10, 10 + 10.5 * i, 54, "renglón"));
    const auto anterior = std::signal(SIGPIPE, SIG_IGN);  // as in tzorep (the client library)
    int fd[2];
    ASSERT_EQ(::pipe(fd), 0);
    ::close(fd[0]);
    {
        __gnu_cxx::stdio_filebuf<char> buf(fd[1], std::ios::out);
        std::ostream tuberia(&buf);
        TxtEscritor escritor(tuberia, "\f");
        escritor.Inicia(Doc());
        EXPECT_NO_THROW({
            escritor.Pagina(p);
            escritor.Pagina(p);
            escritor.Termina();
        });
    }
    std::signal(SIGPIPE, anterior);

    std::ofstream lleno("/dev/full");
    TxtEscritor escritor(lleno, "\f");
    escritor.Inicia(Doc());
    EXPECT_THROW(
        {
            escritor.Pagina(p);
            escritor.Termina();
        },
        ErrorEscritura);
}

// For a terminal: narrower columns as far as every text still prints whole and apart. The
// page is 106 columns as laid out (575 pt of 5.4 pt).
TEST(TxtEscritor, SeAjustaAlAnchoDeLaTerminalSiLasColumnasCaben) {
    auto escribe = [](const std::vector<ElementoTexto>& textos, int columnas) {
        std::ostringstream salida;
        TxtEscritor escritor(salida, "\n");
        escritor.AjustaA(columnas);
        escritor.Inicia(Doc());
        Pagina p;
        p.textos = textos;
        escritor.Pagina(p);
        escritor.Termina();
        return salida.str();
    };
    auto ancho = [](const std::string& texto) {
        std::size_t mayor = 0;
        std::istringstream in(texto);
        for (std::string l; std::getline(in, l);) mayor = std::max(mayor, l.size());
        return mayor;
    };
    const std::vector<ElementoTexto> holgada = {
        Texto(10, 20, 50, "Clave"), Texto(100, 20, 200, "Juan Perez"),
        Texto(400, 20, 100, "1,234.50", Alineacion::Derecha, TipoValor::Numero)};
    const std::string ajustada = escribe(holgada, 60);
    EXPECT_LE(ancho(ajustada), 60u) << ajustada;
    EXPECT_NE(ajustada.find("Clave    Juan Perez"), std::string::npos) << ajustada;
    EXPECT_NE(ajustada.find("1,234.50"), std::string::npos) << ajustada;
    EXPECT_EQ(escribe(holgada, 0), escribe(holgada, 200));  // wide enough: as laid out
    // A text as wide as its box would run into the next one at 60 columns: the grid stays
    // as wide as it takes to keep both apart.
    const std::vector<ElementoTexto> justa = {Texto(10, 20, 108, "ABCDEFGHIJKLMNOPQRST"),
                                              Texto(122, 20, 50, "X"), Texto(500, 20, 75, "fin")};
    const std::string apretada = escribe(justa, 60);
    EXPECT_NE(apretada.find("ABCDEFGHIJKLMNOPQRST X"), std::string::npos) << apretada;
    EXPECT_NE(apretada.find("fin"), std::string::npos) << apretada;
    EXPECT_LT(ancho(apretada), 106u) << apretada;
}

}  // namespace
}  // namespace paratzorep::renderer
