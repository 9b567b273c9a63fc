// The entry of the demo generator; the business it simulates lives in schema/demo/, one
// source file per domain (see schema/demo/Simulacion.h).
#include "schema/GeneradorDemo.h"

#include <stdexcept>
#include <string>

#include "schema/demo/Simulacion.h"

namespace paratzorep::schema {

ConteoFilas generarDemo(Conexion& conexion, const OpcionesDemo& opciones) {
    if (opciones.escala < 1 || opciones.escala > 1000)
        throw std::invalid_argument("La escala debe estar entre 1 y 1000 (se recibió " +
                                    std::to_string(opciones.escala) + ")");
    if (opciones.dias < 0 || opciones.dias > 3660)
        throw std::invalid_argument("Los días de historia deben estar entre 1 y 3660 (se recibió " +
                                    std::to_string(opciones.dias) + ")");
    for (const auto* b : {&opciones.baseEmpresa, &opciones.baseGeneral})
        if (!nombreDeBaseValido(*b) && !(b == &opciones.baseGeneral && b->empty()))
            throw std::invalid_argument("Nombre de base de datos no válido: '" + *b + "'");
    ConteoFilas conteos;
    detail::Simulacion* sim = nullptr;
    detail::Escritores escritores(conexion, 3, [&sim] {
        if (sim) sim->informa();
    });
    detail::Simulacion simulacion(escritores, opciones, conteos);
    sim = &simulacion;
    simulacion.ejecuta();
    return conteos;
}

}  // namespace paratzorep::schema
