// Data-layer fixture: our BaseDD (with a record of what went through it) pointed at the test
// run's private server, with a scratch database of its own as the company database.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>

#include "BaseEspia.h"
#include "support/Soporte.h"

namespace paratzorep::data::prueba {

class ConBase : public ::testing::Test {
  protected:
    void SetUp() override;

    // Opens a connection on the scratch database (fails the test otherwise).
    host::Conexion Abre();
    // Runs one statement on the scratch database.
    void Ejecuta(const std::string& sql);

    std::optional<pruebas::BaseDeDatosDePrueba> bd;
    std::shared_ptr<BaseEspia> base;
    std::string nombreBase;
    const DatosServidor* servidor = nullptr;
};

}  // namespace paratzorep::data::prueba
