// A scratch company for the engine's tests: the company schema in a database of its own on the
// run's server, a data-access object pointed at it (recording what goes through it) and the
// session set so that the engine works on it.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "data/BaseDDMaria.h"
#include "engines/MovEnLinea.h"
#include "session/Sesion.h"
#include "support/Soporte.h"
#include "support/TablasDeEmpresa.h"

namespace paratzorep::engines::prueba {

// Records table-form sources opened and statements run, in order, when `grabando`.
class BaseGrabadora : public data::BaseDDMaria {
  public:
    bool AbrirTabla(host::Recordset& rs, const host::Conexion& cn, const std::string& fuente,
                    std::int32_t opcion = 0, bool bandera = false) override {
        if (grabando) vistas.push_back(fuente);
        return BaseDDMaria::AbrirTabla(rs, cn, fuente, opcion, bandera);
    }
    std::int64_t Executar(const host::Conexion& cn, const std::string& sql) override {
        if (grabando) vistas.push_back(sql);
        return BaseDDMaria::Executar(cn, sql);
    }
    bool grabando = false;
    std::vector<std::string> vistas;
};

class Empresa {
  public:
    // What the engine reads and writes in a company database.
    inline static const std::vector<std::string> kTablas = {
        "clientes",   "saldoscli",      "edoctacli", "cxc",     "facturas",
        "remisiones", "anexopagosctes", "configura", "pagossel"};

    explicit Empresa(const data::DatosServidor& servidor = pruebas::servidorDePrueba())
        : bd(servidor) {
        pruebas::cargarTablasDeEmpresa(bd.mysql(), kTablas);
        base = pruebas::baseDD<BaseGrabadora>(servidor, bd.nombre());
    }

    // The engine on this company, as company `clave` of the chain.
    MovEnLinea Motor(const std::string& clave = "B") {
        auto& s = session::sesion();
        s.ClaveEmpresa = clave;
        s.DatosConecte.reset();
        s.UserUsuario = "CAJA1";
        MovEnLinea m;
        m.deBdD = base;
        return m;
    }

    std::string valor(const std::string& sql) const { return bd.valor(sql).value_or("NULL"); }

    pruebas::BaseDeDatosDePrueba bd;
    std::shared_ptr<BaseGrabadora> base;
};

}  // namespace paratzorep::engines::prueba
