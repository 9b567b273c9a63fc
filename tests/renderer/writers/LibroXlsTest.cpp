// The XLS writer read back with xlrd (an independent BIFF8 and compound-file reader).
#include "renderer/writers/LibroXls.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <random>

#include "Lector.h"
#include "renderer/writers/ArchivoSalida.h"
#include "renderer/writers/Bytes.h"
#include "renderer/writers/Cfb.h"
#include "renderer/writers/ErrorEscritura.h"
#include "renderer/writers/Unicode.h"
#include "support/NombresDeCaso.h"

namespace paratzorep::renderer {
namespace {

using prueba::CarpetaTemporal;

std::vector<prueba::HojaLeida> LeerXls(const std::filesystem::path& archivo, int maximo = 0) {
    return prueba::LeerLibro("xls", archivo, maximo).hojas;
}

class LibroXlsTest : public ::testing::Test {
  protected:
    void SetUp() override {
        if (!prueba::HayModuloPython("xlrd")) GTEST_SKIP() << "python3-xlrd no está instalado";
    }
    CarpetaTemporal carpeta;
};

TEST_F(LibroXlsTest, NumerosFechasYTextosConservanSuTipoYFormato) {
    auto ruta = carpeta / "ventas.xls";
    {
        LibroXls libro(ruta, "Ventas");
        int moneda = libro.Estilo({"#,##0.00", false, AlineacionCelda::Derecha});
        int fecha = libro.Estilo({"dd/mm/yyyy"});
        libro.Columnas({{"Fecha", 12}, {"Cliente", 30}, {"Importe", 14}, {"Cantidad", 8}});
        std::vector<CeldaTabla> fila = {CeldaTabla::Fecha(SerieFecha(2024, 2, 29), fecha),
                                        CeldaTabla::Texto("Señor Ñandú ¿Cómo está?"),
                                        CeldaTabla::Numero(1234567.891, moneda),
                                        CeldaTabla::Numero(-3)};
        libro.Fila(fila);
        // A date without a format of its own still shows as a date; NaN stays blank.
        std::vector<CeldaTabla> otra = {CeldaTabla::Fecha(SerieFecha(1999, 12, 31, 13, 30)),
                                        CeldaTabla::Texto(""), CeldaTabla::Numero(NAN),
                                        CeldaTabla::Numero(0.1 + 0.2)};
        libro.Fila(otra);
        libro.Cerrar();
        EXPECT_EQ(libro.Hojas(), 1u);
    }
    auto hojas = LeerXls(ruta);
    ASSERT_EQ(hojas.size(), 1u);
    const auto& h = hojas[0];
    EXPECT_EQ(h.nombre, "Ventas");
    EXPECT_EQ(h.filas, 3);
    EXPECT_EQ(h.columnas, 4);
    EXPECT_EQ(h.anchos, "3256,7864,3768,2232");
    using C = prueba::CeldaLeida;
    EXPECT_EQ(h.at(0, 1), (C{"texto", "Cliente", "General", true}));
    EXPECT_EQ(h.at(1, 0), (C{"fecha", "2024-02-29T00:00:00", "dd/mm/yyyy"}));
    EXPECT_EQ(h.at(1, 1), (C{"texto", "Señor Ñandú ¿Cómo está?", "General"}));
    EXPECT_EQ(h.at(1, 2), (C{"numero", "1234567.891", "#,##0.00"}));
    EXPECT_EQ(h.at(1, 3), (C{"numero", "-3.0", "General"}));
    EXPECT_EQ(h.at(2, 0).tipo, "fecha");
    EXPECT_EQ(h.at(2, 0).valor, "1999-12-31T13:30:00");
    EXPECT_EQ(h.at(2, 1).tipo, "texto");
    EXPECT_EQ(h.celdas.count({2, 2}), 0u);
    EXPECT_EQ(h.at(2, 3).valor, "0.30000000000000004");
}

// Texts of every shape survive the shared string table, wherever a record ends.
struct CasoTexto {
    std::string nombre;
    std::size_t relleno;  // length of a Latin-1 text written before, to move the boundary
    std::string texto;
    std::string esperado;
};

void PrintTo(const CasoTexto& c, std::ostream* os) {
    *os << c.nombre;
}

class TextosXls : public LibroXlsTest, public ::testing::WithParamInterface<CasoTexto> {};

TEST_P(TextosXls, SeLeenIgual) {
    const CasoTexto& caso = GetParam();
    auto ruta = carpeta / "textos.xls";
    {
        LibroXls libro(ruta);
        if (caso.relleno)
            libro.Fila(std::vector{CeldaTabla::Texto(std::string(caso.relleno, 'r'))});
        libro.Fila(std::vector{CeldaTabla::Texto(caso.texto), CeldaTabla::Texto("después")});
        libro.Cerrar();
    }
    auto hojas = LeerXls(ruta);
    ASSERT_EQ(hojas.size(), 1u);
    long fila = caso.relleno ? 1 : 0;
    EXPECT_EQ(hojas[0].at(fila, 0).valor, caso.esperado);
    EXPECT_EQ(hojas[0].at(fila, 1).valor, "después");
}

std::vector<CasoTexto> CasosTexto() {
    std::string largoLatino, largoUnicode;
    for (int i = 0; i < 9000; ++i) largoLatino += static_cast<char>('a' + i % 26);
    for (int i = 0; i < 5000; ++i) largoUnicode += i % 2 ? "€" : "ñ";
    std::vector<CasoTexto> casos = {
        {"vacio", 0, "", ""},
        {"acentos", 0, "Año, niño, pingüino, acción", "Año, niño, pingüino, acción"},
        {"euro", 0, "Total € 100", "Total € 100"},
        {"fuera_del_plano_basico", 0, "caja 📦", "caja 📦"},
        {"utf8_mal_formado", 0,
         "a\xff"
         "b\xc3",
         "a\uFFFD"
         "b\uFFFD"},
        {"latino_cruza_registros", 0, largoLatino, largoLatino},
        {"unicode_cruza_registros", 0, largoUnicode, largoUnicode},
        {"recortado_a_32767", 0, std::string(40000, 'x'), std::string(32767, 'x')},
    };
    // The SST's first record holds 8 bytes of counts, then the filler (3 + length bytes):
    // a filler of 8213 - f leaves f free bytes for the next text. A Latin-1 text needs 4
    // (header and one character), a UTF-16 one 5: one byte short, exact, one to spare.
    for (std::size_t libre : {2, 3, 4, 5}) {
        if (libre < 5)
            casos.push_back({"latino_con_" + std::to_string(libre) + "_libres", 8213 - libre,
                             "ñandú " + largoLatino.substr(0, 20),
                             "ñandú " + largoLatino.substr(0, 20)});
        if (libre > 2)
            casos.push_back(
                {"unicode_con_" + std::to_string(libre) + "_libres", 8213 - libre, "€uro", "€uro"});
    }
    return casos;
}

INSTANTIATE_TEST_SUITE_P(Sst, TextosXls, ::testing::ValuesIn(CasosTexto()), pruebas::PorNombre());

TEST(RegistrosSst, ElIndiceExtsstApuntaAlInicioDeCadaCubeta) {
    std::vector<std::u16string> textos;
    for (int i = 0; i < 3000; ++i)
        textos.push_back(detail::Utf8AUtf16((i % 3 ? "texto " : "€ ") + std::string(i % 50, 'x')));
    const std::size_t posicion = 1000;
    std::string sst = detail::RegistrosSst(textos, 5000, posicion);

    // Walk the records: SST, CONTINUEs, and finally EXTSST.
    std::size_t p = 0;
    std::vector<std::uint16_t> tipos;
    std::string ext;
    while (p < sst.size()) {
        std::uint16_t tipo = detail::LeerU16(&sst[p]);
        std::uint16_t largo = detail::LeerU16(&sst[p + 2]);
        ASSERT_LE(largo, detail::kMaxDatosRegistro);
        tipos.push_back(tipo);
        if (tipo == 0x00FF) ext = sst.substr(p + 4, largo);
        p += 4 + largo;
    }
    ASSERT_EQ(p, sst.size());
    EXPECT_EQ(tipos.front(), 0x00FC);
    EXPECT_EQ(tipos.back(), 0x00FF);
    EXPECT_GT(tipos.size(), 3u);
    EXPECT_EQ(detail::LeerU32(&sst[4]), 5000u);
    EXPECT_EQ(detail::LeerU32(&sst[8]), 3000u);

    const std::uint16_t porCubeta = detail::LeerU16(&ext[0]);
    EXPECT_EQ(porCubeta, 3000 / 128 + 1);
    ASSERT_EQ(ext.size(), 2 + 8 * ((3000 + porCubeta - 1) / porCubeta));
    for (std::size_t k = 0; 2 + 8 * k < ext.size(); ++k) {
        std::uint32_t ib = detail::LeerU32(&ext[2 + 8 * k]) - posicion;
        std::uint16_t enRegistro = detail::LeerU16(&ext[6 + 8 * k]);
        ASSERT_LT(ib, sst.size());
        const auto& t = textos[k * porCubeta];
        EXPECT_EQ(detail::LeerU16(&sst[ib]), t.size()) << "cubeta " << k;
        // The offset within the record leads back to a record header.
        std::uint16_t tipo = detail::LeerU16(&sst[ib - enRegistro]);
        EXPECT_TRUE(tipo == 0x00FC || tipo == 0x003C) << "cubeta " << k;
    }
}

// A sheet holds 65536 rows; the table continues on new sheets under repeated titles. A
// table without rows still makes one sheet with its titles.
struct CasoHojas {
    const char* nombre;
    bool titulos;
    long filasDatos;
    std::size_t hojas;
    long filasUltimaHoja;
};

void PrintTo(const CasoHojas& c, std::ostream* os) {
    *os << c.filasDatos << (c.titulos ? " filas con títulos" : " filas");
}

class HojasXls : public LibroXlsTest, public ::testing::WithParamInterface<CasoHojas> {};

TEST_P(HojasXls, PasaDe65536FilasAOtraHoja) {
    const CasoHojas& caso = GetParam();
    auto ruta = carpeta / "largo.xls";
    {
        LibroXls libro(ruta, "Movimientos del año");
        if (caso.titulos) libro.Columnas({{"Número", 10}, {"Descripción", 20}});
        for (long i = 0; i < caso.filasDatos; ++i)
            libro.Fila(std::vector{CeldaTabla::Numero(static_cast<double>(i)),
                                   CeldaTabla::Texto("fila " + std::to_string(i % 1000))});
        libro.Cerrar();
        EXPECT_EQ(libro.Hojas(), caso.hojas);
    }
    auto hojas = LeerXls(ruta, 2);
    ASSERT_EQ(hojas.size(), caso.hojas);
    EXPECT_EQ(hojas[0].nombre, "Movimientos del año");
    if (caso.hojas > 1) {
        EXPECT_EQ(hojas[1].nombre, "Movimientos del año (2)");
    }
    long datos = 0;
    for (std::size_t i = 0; i < hojas.size(); ++i) {
        const auto& h = hojas[i];
        if (i + 1 < hojas.size()) {
            EXPECT_EQ(h.filas, 65536);
        }
        long primera = caso.titulos ? 1 : 0;
        if (caso.titulos) {
            EXPECT_EQ(h.at(0, 1).valor, "Descripción");
        }
        // Numbering runs on across sheets without gaps or repeats.
        if (h.filas == primera) continue;  // a table without rows: its titles only
        EXPECT_EQ(h.at(primera, 0).valor, std::to_string(datos) + ".0");
        datos += h.filas - primera;
        EXPECT_EQ(h.at(h.filas - 1, 0).valor, std::to_string(datos - 1) + ".0");
    }
    EXPECT_EQ(datos, caso.filasDatos);
    EXPECT_EQ(hojas.back().filas, caso.filasUltimaHoja);
}

INSTANTIATE_TEST_SUITE_P(Limite, HojasXls,
                         ::testing::Values(CasoHojas{"SoloTitulos", true, 0, 1, 1},
                                           CasoHojas{"UnaHojaLlena", false, 65536, 1, 65536},
                                           CasoHojas{"UnaFilaDeMas", false, 65537, 2, 1},
                                           CasoHojas{"TresHojasConTitulos", true, 65535 * 2 + 5, 3,
                                                     6}),
                         pruebas::PorNombre());

TEST(NombreHojaValido, CumpleLasReglasDeExcel) {
    struct Caso {
        std::string entrada, esperado;
    } casos[] = {
        {"Ventas", "Ventas"},
        {"Ventas 2024/01", "Ventas 2024_01"},
        {"[a]:b*c?d\\e", "_a__b_c_d_e"},
        {"", "Hoja"},
        {"'''", "Hoja"},
        {std::string(40, 'n'), std::string(31, 'n')},
        {"Señor " + std::string(30, 'x'), "Señor " + std::string(25, 'x')},
    };
    for (const auto& c : casos) EXPECT_EQ(detail::NombreHojaValido(c.entrada), c.esperado);
}

TEST(NombreContinuacion, CabeEn31CaracteresSinCortarLetras) {
    EXPECT_EQ(detail::NombreContinuacion("Ventas", 2), "Ventas (2)");
    std::string enies, esperado;
    for (int i = 0; i < 30; ++i) enies += "ñ";
    for (int i = 0; i < 26; ++i) esperado += "ñ";
    EXPECT_EQ(detail::NombreContinuacion(enies, 12), esperado + " (12)");
}

// The compound file alone: a regular stream large enough to need DIFAT sectors, a
// small one in the mini stream and an empty one.
TEST(Cfb, FlujosGrandesPequenosYVaciosSeLeenIgual) {
    if (!prueba::HayModuloPython("xlrd")) GTEST_SKIP() << "python3-xlrd no está instalado";
    CarpetaTemporal carpeta;
    std::mt19937 azar(7);
    auto contenido = [&azar](std::size_t n) {
        std::string s(n, '\0');
        for (auto& c : s) c = static_cast<char>(azar());
        return s;
    };
    std::vector<std::pair<std::string, std::string>> flujos = {
        {"Workbook", contenido(9 * 1024 * 1024 + 77)},
        {"Pequeno", contenido(4095)},
        {"Justo", contenido(4096)},
        {"Diminuto", contenido(1)},
        {"Vacio", ""},
    };
    std::vector<FlujoCfb> cfb;
    std::string pares;
    for (const auto& [nombre, datos] : flujos) {
        auto esperado = carpeta / nombre;
        std::ofstream(esperado, std::ios::binary) << datos;
        pares += " " + nombre + "=" + esperado.string();
        cfb.push_back({nombre, datos.size(), [&datos](std::ostream& o) {
                           o.write(datos.data(), static_cast<std::streamsize>(datos.size()));
                       }});
    }
    auto ruta = carpeta / "compuesto.cfb";
    {
        std::ofstream salida(ruta, std::ios::binary);
        EscribirCfb(salida, cfb);
    }
    EXPECT_EQ(std::filesystem::file_size(ruta) % 512, 0u);
    auto plan = detail::PlanificarCfb({9 * 1024 * 1024 + 77, 4095, 4096, 1, 0});
    EXPECT_GT(plan.sectoresFat, 109u);
    EXPECT_EQ(plan.sectoresDifat, 1u);

    auto s = prueba::Ejecutar(prueba::Lector() + " cfb " + ruta.string() + pares);
    ASSERT_EQ(s.estado, 0) << s.texto;
    auto lineas = prueba::Campos(s.texto);
    ASSERT_EQ(lineas.size(), flujos.size());
    for (std::size_t i = 0; i < flujos.size(); ++i) {
        if (flujos[i].second.empty()) continue;  // xlrd reports an empty stream as missing
        EXPECT_EQ(lineas[i][1], flujos[i].first);
        EXPECT_EQ(lineas[i][3], "igual") << flujos[i].first;
    }
}

TEST(Cfb, RechazaNombresInvalidosYFlujosQueNoCumplenSuTamano) {
    std::ostringstream salida;
    auto nada = [](std::ostream&) {};
    EXPECT_THROW(EscribirCfb(salida, {{"", 0, nada}}), ErrorEscritura);
    EXPECT_THROW(EscribirCfb(salida, {{std::string(32, 'a'), 0, nada}}), ErrorEscritura);
    EXPECT_THROW(EscribirCfb(salida, {{"a/b", 0, nada}}), ErrorEscritura);
    EXPECT_THROW(EscribirCfb(salida, {{"Uno", 0, nada}, {"UNO", 0, nada}}), ErrorEscritura);
    EXPECT_THROW(EscribirCfb(salida, {{"Corto", 10, nada}}), ErrorEscritura);
}

TEST(Cfb, OrdenDeNombresDelDirectorio) {
    EXPECT_LT(detail::CompararNombresCfb(u"Zeta", u"Alpha"), 0);  // shorter first
    EXPECT_EQ(detail::CompararNombresCfb(u"abc", u"ABC"), 0);
    EXPECT_LT(detail::CompararNombresCfb(u"abc", u"ABD"), 0);
}

}  // namespace
}  // namespace paratzorep::renderer
