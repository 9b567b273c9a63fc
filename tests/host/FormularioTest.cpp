// The form model: focus and key events, masked date boxes, tab strips, lists filled from rows.
#include "host/Formulario.h"

#include <gtest/gtest.h>

#include "support/NombresDeCaso.h"

namespace paratzorep::host {
namespace {

class Forma : public Formulario {
  public:
    Forma() : Formulario("frmPrueba", "Prueba") {}
};

TEST(FormularioModelo, UnaCajaGanaElFocoCambiaYLoPierdeComoConUnUsuario) {
    Forma f;
    std::vector<std::string> eventos;
    auto anota = [&eventos](const char* que) {
        return [&eventos, que](Control& c) { eventos.push_back(c.NombreCompleto() + " " + que); };
    };
    for (auto* nombre : {"txtDato", "mkeFecha"}) {
        Control& c = nombre[0] == 'm' ? f.AgregaFecha(nombre, 0) : f.Agrega(nombre, 0);
        c.GotFocus = anota("foco");
        c.Change = anota("cambio");
        c.LostFocus = anota("sale");
    }
    f.Fija("txtDato(0)", "ANA");
    f.Fija("mkeFecha(0)", "01/02/2024");
    EXPECT_EQ(eventos, (std::vector<std::string>{"txtDato(0) foco", "txtDato(0) cambio",
                                                 "txtDato(0) sale", "mkeFecha(0) foco",
                                                 "mkeFecha(0) cambio", "mkeFecha(0) sale"}));
    EXPECT_EQ(f.Foco(), nullptr);

    // Moving the focus takes it from the previous control first.
    eventos.clear();
    f.Enfoca(f.Ctl("txtDato", 0));
    f.Enfoca(f.Ctl("mkeFecha", 0));
    EXPECT_EQ(eventos,
              (std::vector<std::string>{"txtDato(0) foco", "txtDato(0) sale", "mkeFecha(0) foco"}));
}

TEST(FormularioModelo, TeclasPasanPorLosManejadores) {
    Forma f;
    Control& c = f.Agrega("txtDato", 0);
    EXPECT_EQ(f.Pulsa(c, 13), 13);  // no handler: the key stays
    c.KeyPress = [](Control&, std::int16_t& k) {
        if (k == 13) k = 0;
    };
    c.KeyDown = [](Control&, std::int16_t& k, std::int16_t shift) {
        if (shift == 0 && k == 40) k = 0;
    };
    EXPECT_EQ(f.Pulsa(c, 13), 0);
    EXPECT_EQ(f.Pulsa(c, 65), 65);
    EXPECT_EQ(f.Tecla(c, 40), 0);
    EXPECT_EQ(f.Tecla(c, 40, 1), 40);
}

struct CasoFecha {
    const char* nombre;
    const char* texto;
    bool aceptada;
    bool sinFecha;
};

class FechaEnMascara : public ::testing::TestWithParam<CasoFecha> {};

TEST_P(FechaEnMascara, SoloTextoQueCabeEnLaMascara) {
    const auto& c = GetParam();
    Forma f;
    Control& caja = f.AgregaFecha("mkeFecha", 0);
    EXPECT_EQ(caja.Mask, kMascaraFecha);
    EXPECT_EQ(caja.Format, kFormatoFecha);
    EXPECT_TRUE(caja.SinFecha());  // a new box shows its empty mask
    if (c.aceptada) {
        f.Fija("mkeFecha(0)", c.texto);
        EXPECT_EQ(caja.SinFecha(), c.sinFecha) << c.texto;
    } else {
        f.Fija("mkeFecha(0)", "03/04/2024");
        EXPECT_THROW(f.Fija("mkeFecha(0)", c.texto), ErrorFormulario) << c.texto;
        EXPECT_EQ(caja.Text, "03/04/2024");  // a refused value leaves the box as it was
    }
}

INSTANTIATE_TEST_SUITE_P(
    Casos, FechaEnMascara,
    ::testing::Values(CasoFecha{"FechaCompleta", "05/03/2024", true, false},
                      CasoFecha{"DiaQueNoExisteCabe", "31/02/2024", true, false},
                      CasoFecha{"Vacia", "", true, true},
                      CasoFecha{"MascaraVacia", "__/__/____", true, true},
                      CasoFecha{"SinCeros", "5/3/2024", false, false},
                      CasoFecha{"Iso", "2024-03-05", false, false},
                      CasoFecha{"Letras", "aa/bb/cccc", false, false},
                      CasoFecha{"ComillaAlFinal", "05/03/2024'", false, false}),
    pruebas::PorNombre());

TEST(FormularioModelo, PestanasYListasEligenPorTextoOIndice) {
    Forma f;
    Control& tab = f.Agrega("stbTab");
    tab.Items = {"Clientes", "Proveedores"};
    int clics = 0;
    tab.Click = [&clics](Control&) { ++clics; };
    f.Fija("stbTab", "proveedores");
    EXPECT_EQ(tab.ListIndex, 1);
    EXPECT_EQ(tab.Elegido(), "Proveedores");
    f.Fija("stbTab", "#0");
    EXPECT_EQ(tab.Elegido(), "Clientes");
    EXPECT_EQ(clics, 2);
    EXPECT_THROW(f.Fija("stbTab", "#2"), ErrorFormulario);

    int imagen = 0;
    f.Agrega("imgArch").Click = [&imagen](Control&) { ++imagen; };
    f.Fija("imgArch", "");
    EXPECT_EQ(imagen, 1);
}

TEST(FormularioModelo, ListaLlenaDeFilasConValorLigado) {
    Recordset rs;
    rs.Abre({Columna{"Id", TipoCampo::Entero, "", false, false},
             Columna{"Nombre", TipoCampo::Texto, "", false, false}},
            {{Valor(7), Valor("FERRETERIA")}, {Valor(9), Valor("PLOMERIA")}}, "lineas", "", {});
    Forma f;
    Control& dcm = f.Agrega("dcmDato", 0);
    dcm.ListIndex = 3;  // a stale choice is cleared
    LlenaLista(dcm, rs, "Nombre", "Id");
    EXPECT_EQ(dcm.Items, (std::vector<std::string>{"FERRETERIA", "PLOMERIA"}));
    EXPECT_EQ(dcm.ItemData, (std::vector<std::string>{"7", "9"}));
    EXPECT_EQ(dcm.ListIndex, -1);
    f.Fija("dcmDato(0)", "9");
    EXPECT_EQ(dcm.Text, "PLOMERIA");
    EXPECT_EQ(dcm.BoundText, "9");
}

TEST(FormularioModelo, TipoPorPrefijoYArreglosPorIndice) {
    EXPECT_EQ(TipoDe("mkeFecha"), TipoControl::Fecha);
    EXPECT_EQ(TipoDe("dcmDato"), TipoControl::ComboDatos);
    EXPECT_EQ(TipoDe("stbTab"), TipoControl::Pestanas);
    EXPECT_EQ(TipoDe("Frame2"), TipoControl::Otro);
    Forma f;
    f.Agrega("chkAccion", 2);
    f.Agrega("chkAccion", 0);
    f.Agrega("chkOtro");
    auto arreglo = f.Arreglo("chkAccion");
    ASSERT_EQ(arreglo.size(), 2u);
    EXPECT_EQ(arreglo[0]->Indice, 0);
    EXPECT_EQ(arreglo[1]->Indice, 2);
}

}  // namespace
}  // namespace paratzorep::host
