// The users' activity log: each user's day opens and closes the system and does a few
// things in between; the general database describes the structures the log refers to
// (some on purpose not).
#include <algorithm>

#include "schema/demo/Simulacion.h"

namespace paratzorep::schema::detail {

namespace {

const std::vector<std::string> kEquipos = {"CAJA-01", "CAJA-02", "OFICINA-01", "ALMACEN",
                                           "GERENCIA"};
const std::vector<std::string> kVersiones = {"5.2.118", "5.2.121", "5.3.004"};

const std::vector<std::pair<int, const char*>> kEstructuras = {{100, "CATALOGO DE CLIENTES"},
                                                               {101, "CATALOGO DE PRODUCTOS"},
                                                               {102, "CATALOGO DE PROVEEDORES"},
                                                               {110, "FACTURACION"},
                                                               {111, "REMISIONES"},
                                                               {112, "PUNTO DE VENTA"},
                                                               {120, "PAGOS DE CLIENTES"},
                                                               {121, "PAGOS A PROVEEDORES"},
                                                               {130, "COMPRAS"},
                                                               {131, "ENTRADAS DE MERCANCIA"},
                                                               {132, "TRASPASOS"},
                                                               {133, "AJUSTES DE INVENTARIO"},
                                                               {140, "CANCELACION DE DOCUMENTO"},
                                                               {156, "EDICION DE FORMATO"},
                                                               {160, "REPORTES"},
                                                               {180, "ENTRADA AL SISTEMA"},
                                                               {181, "SALIDA DEL SISTEMA"}};

}  // namespace

void Simulacion::abreBitacora() {
    bitacora_ = lote("bitacorausuarios",
                     "Id,Fecha,Hora,Usuario,Accion,Registro,Llave,Adicionales,Version,Equipo");
}

void Simulacion::bitacora(int d) {
    const int activos = 3 + std::min(s_, 5);
    for (int u = 0; u < activos; ++u) {
        const std::string& usr = kUsuarios[static_cast<size_t>(u) % kUsuarios.size()];
        if (az_.probable(0.15)) continue;  // not everybody works every day
        const std::string& equipo = kEquipos[static_cast<size_t>(u) % kEquipos.size()];
        const std::string& version =
            kVersiones[d > inicio_ + 400 ? 2 : (d > inicio_ + 200 ? 1 : 0)];
        int hr = static_cast<int>(az_.entre(8 * 3600, 9 * 3600));
        auto graba = [&](int registro, const char* accion, const std::string& llave,
                         const std::string& adicionales) {
            bitacora_->agrega(Renglon()
                                  .n(sigBitacora_++)
                                  .f(d)
                                  .h(hr)
                                  .cod(usr, "418")
                                  .t(accion)
                                  .n(registro)
                                  .cod(llave, "184")
                                  .cod(adicionales, "184")
                                  .cod(version, "527")
                                  .cod(equipo, "527"));
        };
        graba(180, "ACCESO", "", "");
        const int acciones = static_cast<int>(az_.entre(1, 4));
        for (int k = 0; k < acciones; ++k) {
            hr += static_cast<int>(az_.entre(300, 7200));
            const double r = az_.unitario();
            if (r < 0.08) {
                // A structure that the general database does not describe.
                const int registro = static_cast<int>(az_.entre(990, 995));
                graba(registro, "CONSULTA", "MODULO " + std::to_string(az_.entre(1, 9)),
                      "CONSULTA");
            } else {
                const auto& e = kEstructuras[static_cast<size_t>(
                    az_.entre(0, static_cast<long long>(kEstructuras.size()) - 3))];
                const char* accion =
                    r < 0.35 ? "ALTA" : (r < 0.6 ? "CAMBIO" : (r < 0.7 ? "BAJA" : "IMPRESION"));
                // The action word leads the additional data, so that the log report's
                // action filters find it in the composed concept.
                const std::string llave =
                    e.first == 156 ? "adsdcm.rpt" : "FOLIO " + std::to_string(az_.entre(1, 9000));
                std::string adicionales = accion;
                if (r < 0.5) adicionales += " TOTAL " + textoCentavos(az_.entre(1000, 5000000));
                graba(e.first, accion, llave, adicionales);
            }
        }
        hr = std::max(hr, 17 * 3600) + static_cast<int>(az_.entre(0, 3 * 3600));
        graba(181, "SALIDA", "", "");
    }
}

// The structure texts, in the general database.
void Simulacion::cierreBitacora() {
    bitacora_->termina();
    if (op_.baseGeneral.empty()) return;
    auto est = loteGeneral("estructurasm", "Id,Dato");
    for (const auto& [id, texto] : kEstructuras) est->agrega(Renglon().n(id).cod(texto, "527"));
    est->termina();
}

}  // namespace paratzorep::schema::detail
