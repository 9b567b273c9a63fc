// The interaction sink: the console default, the recording sink and scoped replacement.
#include "host/Interaccion.h"

#include <gtest/gtest.h>

namespace paratzorep::host {
namespace {

TEST(InteraccionTest, ConsolaEscribeTituloYTextoEnStderr) {
    InteraccionConsola c;
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(c.Mensaje("Atención", "No hay datos", Icono::Exclamacion, Botones::Aceptar),
              Respuesta::Aceptar);
    EXPECT_EQ(c.Mensaje("Pregunta", "¿Seguir?", Icono::Pregunta, Botones::SiNo), Respuesta::Si);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "Atención: No hay datos\nPregunta: ¿Seguir?\n");
    EXPECT_EQ(c.EligeCarpeta("t", "/inicio"), "/inicio");
}

TEST(InteraccionTest, GrabadaResponseEnOrdenYLuegoPorOmision) {
    InteraccionGrabada g;
    g.respuestas = {Respuesta::No, Respuesta::Cancelar};
    EXPECT_EQ(g.Mensaje("a", "1", Icono::Pregunta, Botones::SiNo), Respuesta::No);
    EXPECT_EQ(g.Mensaje("a", "2", Icono::Pregunta, Botones::SiNoCancelar), Respuesta::Cancelar);
    EXPECT_EQ(g.Mensaje("a", "3", Icono::Pregunta, Botones::SiNo), Respuesta::Si);
    EXPECT_EQ(g.Mensaje("a", "4", Icono::Critico, Botones::Aceptar), Respuesta::Aceptar);
    ASSERT_EQ(g.mensajes.size(), 4u);
    EXPECT_EQ(g.mensajes[3].icono, Icono::Critico);
    g.Beep();
    g.Progreso(50, "mitad");
    g.Limpia();
    EXPECT_TRUE(g.mensajes.empty());
    EXPECT_EQ(g.beeps, 0);
}

TEST(InteraccionTest, TemporalRestauraLaAnterior) {
    Interaccion* original = &interaccion();
    auto g = std::make_shared<InteraccionGrabada>();
    {
        InteraccionTemporal t(g);
        EXPECT_EQ(&interaccion(), g.get());
        interaccion().Beep();
    }
    EXPECT_EQ(&interaccion(), original);
    EXPECT_EQ(g->beeps, 1);
    // Installing nothing puts a console sink back.
    auto anterior = PonInteraccion(nullptr);
    EXPECT_NE(dynamic_cast<InteraccionConsola*>(&interaccion()), nullptr);
    PonInteraccion(anterior);
}

}  // namespace
}  // namespace paratzorep::host
