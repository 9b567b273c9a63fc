#include "renderer/layout/ListaPaginas.h"

#include <gtest/gtest.h>

#include "renderer/writers/ErrorEscritura.h"

namespace paratzorep::renderer {
namespace {

PaginaEnConstruccion PaginaCompleta(int numero) {
    PaginaEnConstruccion pc;
    Pagina& p = pc.pagina;
    p.numero = numero;
    p.cajas.push_back({1, 2, 3, 4, 0.5, 0.9});
    p.lineas.push_back({5, 6, 7, 8, 1.5});
    ElementoTexto t;
    t.x = 10.25;
    t.y = 20.5;
    t.ancho = 100;
    t.alto = 12;
    t.base = 8.5;
    t.interlineado = 10.75;
    t.fuente = 0;
    t.alineacion = Alineacion::Derecha;
    t.tipoBanda = TipoBanda::PieGrupo;
    t.nivelGrupo = 3;
    t.banda = 123456;
    t.columna = 7;
    t.tipo = TipoValor::Numero;
    t.numero = -1234.5678;
    t.formato = "#,##0.00";
    t.renglones = {{"-1,234.57", 60.5, 39.5}, {"Núñez", 0, 20}};
    p.textos.push_back(t);
    ElementoTexto total;
    total.ancho = 100;
    total.alineacion = Alineacion::Derecha;
    total.tipoBanda = TipoBanda::PiePagina;
    total.renglones = {{"Página " + std::to_string(numero) + " de {M}", 0, 0}};
    p.textos.push_back(total);
    pc.pendientes.push_back(1);
    return pc;
}

TEST(ListaPaginas, LeeLoQueEscribioYPoneElTotal) {
    Medidor medidor;
    medidor.Registra(Fuente{});
    ListaPaginas lista;
    for (int i = 1; i <= 3; ++i) lista.Agrega(PaginaCompleta(i));
    ASSERT_EQ(lista.Total(), 3);
    Pagina p = lista.Lee(1, medidor);
    EXPECT_EQ(p.numero, 2);
    ASSERT_EQ(p.cajas.size(), 1u);
    EXPECT_DOUBLE_EQ(p.cajas[0].gris, 0.9f);
    ASSERT_EQ(p.lineas.size(), 1u);
    EXPECT_DOUBLE_EQ(p.lineas[0].grosor, 1.5);
    ASSERT_EQ(p.textos.size(), 2u);
    const ElementoTexto& t = p.textos[0];
    EXPECT_DOUBLE_EQ(t.x, 10.25);
    EXPECT_DOUBLE_EQ(t.interlineado, 10.75);
    EXPECT_EQ(t.alineacion, Alineacion::Derecha);
    EXPECT_EQ(t.tipoBanda, TipoBanda::PieGrupo);
    EXPECT_EQ(t.nivelGrupo, 3);
    EXPECT_EQ(t.banda, 123456u);
    EXPECT_EQ(t.columna, 7);
    EXPECT_EQ(t.tipo, TipoValor::Numero);
    EXPECT_DOUBLE_EQ(t.numero, -1234.5678);
    EXPECT_EQ(t.formato, "#,##0.00");
    ASSERT_EQ(t.renglones.size(), 2u);
    EXPECT_EQ(t.renglones[1].texto, "Núñez");
    EXPECT_DOUBLE_EQ(t.renglones[0].dx, 60.5);
    // The total is put in and the text aligned again to the right edge.
    const ElementoTexto& total = p.textos[1];
    EXPECT_EQ(total.renglones[0].texto, "Página 2 de 3");
    EXPECT_NEAR(total.renglones[0].dx + total.renglones[0].ancho, 100, 1e-3);
    EXPECT_GT(total.renglones[0].ancho, 0);
}

TEST(ListaPaginas, LeerMientrasSeEscribeConTotalProvisional) {
    Medidor medidor;
    medidor.Registra(Fuente{});
    ListaPaginas lista;
    lista.Agrega(PaginaCompleta(1));
    const std::string provisional = "…";
    EXPECT_EQ(lista.Lee(0, medidor, &provisional).textos[1].renglones[0].texto, "Página 1 de …");
    lista.Agrega(PaginaCompleta(2));  // writing resumes after a read
    EXPECT_EQ(lista.Lee(1, medidor).textos[1].renglones[0].texto, "Página 2 de 2");
    EXPECT_EQ(lista.Lee(0, medidor).textos[0].renglones[1].texto, "Núñez");
    EXPECT_THROW(lista.Lee(2, medidor), std::out_of_range);
}

TEST(ListaPaginas, CarpetaTemporalInexistente) {
    EXPECT_THROW(ListaPaginas("/no/existe"), ErrorEscritura);
}

}  // namespace
}  // namespace paratzorep::renderer
