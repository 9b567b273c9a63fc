// Names of parameterized cases in words, so that ctest's list and a failure say which case ran.
// GoogleTest takes letters, digits and '_' only, unique within an instantiation.
//
//   using namespace paratzorep::pruebas;
//   INSTANTIATE_TEST_SUITE_P(Casos, X, ::testing::Values(Caso{"sinFecha", ...}), PorNombre());
//   INSTANTIATE_TEST_SUITE_P(Casos, Y, ::testing::Values(...), NombrePor(&Caso::fuente));
//   INSTANTIATE_TEST_SUITE_P(Casos, Z, ::testing::Values(...),
//                            NombrePor(&Caso::formula, NombreDeFormula));
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace paratzorep::pruebas {

// `texto` as a test name: ASCII letters and digits kept, accented letters without their accent
// ("Núñez" -> "Nunez"), every run of anything else one '_', none at either end; at most 80
// characters, cut at a word's end; "vacio" when nothing is left.
std::string NombreDeCaso(std::string_view texto);

// The same for a formula or a condition, with its operators in words outside quoted text:
// "{t.Fecha} >= Date(2024,3,5)" -> "t_Fecha_mayor_o_igual_Date_2024_3_5",
// "(1 + 2) * 3" -> "abre_1_mas_2_cierra_por_3" (a parenthesis right after a name is a call's and
// is not spelled), "'' in {t.Texto}" -> "vacio_in_t_Texto", "// ..." -> "comentario".
std::string NombreDeFormula(std::string_view formula);

// `nombre` unique within the instantiation being named: a repeated name gets "_bis", "_ter",
// then "_caso4"...
// GoogleTest names each instantiation's cases in order from index 0, which starts a new list.
std::string NombreUnico(const std::string& nombre, std::size_t indice);

// Name generator of a table whose cases carry a `nombre`.
struct PorNombre {
    template <class T>
    std::string operator()(const ::testing::TestParamInfo<T>& info) const {
        return NombreUnico(NombreDeCaso(info.param.nombre), info.index);
    }
};

// Name generator from a descriptive field of the case (a member pointer or any callable on
// the parameter), turned into a name by `convierte`.
template <class Describe>
auto NombrePor(Describe describe, std::string (*convierte)(std::string_view) = &NombreDeCaso) {
    return [describe, convierte](const auto& info) {
        return NombreUnico(convierte(std::string_view(std::invoke(describe, info.param))),
                           info.index);
    };
}

}  // namespace paratzorep::pruebas
