// Our BaseDD with a record of what went through it, for tests that check what was sent.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "data/BaseDDMaria.h"

namespace paratzorep::data::prueba {

class BaseEspia : public BaseDDMaria {
  public:
    bool AbrirBdD(host::Conexion& cn, const std::string& base = "", bool bandera = false) override {
        ++aperturas;
        basesAbiertas.push_back(base);
        servidores.push_back(cRuta);
        return BaseDDMaria::AbrirBdD(cn, base, bandera);
    }
    void CierraBdD(host::Conexion& cn) override {
        ++cierres;
        BaseDDMaria::CierraBdD(cn);
    }
    std::int64_t Executar(const host::Conexion& cn, const std::string& sql) override {
        ejecutadas.push_back(sql);
        return BaseDDMaria::Executar(cn, sql);
    }
    bool RstExecutar(host::Recordset& rs, const host::Conexion& cn,
                     const std::string& sql) override {
        consultas.push_back(sql);
        return BaseDDMaria::RstExecutar(rs, cn, sql);
    }
    bool HayTabla(const host::Conexion& cn, const std::string& tabla) override {
        ++preguntasHayTabla;
        if (hayTablaFija) return *hayTablaFija;
        return BaseDDMaria::HayTabla(cn, tabla);
    }

    // Forgets what was recorded so far (the fixture's own set-up).
    void Olvida() {
        aperturas = cierres = preguntasHayTabla = 0;
        basesAbiertas.clear();
        servidores.clear();
        ejecutadas.clear();
        consultas.clear();
    }

    int aperturas = 0;
    int cierres = 0;
    int preguntasHayTabla = 0;
    std::optional<bool> hayTablaFija;
    std::vector<std::string> basesAbiertas;
    std::vector<std::string> servidores;
    std::vector<std::string> ejecutadas;
    std::vector<std::string> consultas;
};

}  // namespace paratzorep::data::prueba
