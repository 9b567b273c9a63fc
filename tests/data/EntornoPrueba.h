// Test environment of the data layer: the run's private server (TZOREP_TEST_HOME; or
// TZ_DATA_SERVIDOR="host:port:user:password" to point at another one) and one scratch database
// per test.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "BaseEspia.h"
#include "data/BaseDDMaria.h"

namespace paratzorep::data::prueba {

struct Servidor {
    std::string host;
    int puerto = 0;
    std::string usuario;
    std::string password;
};

// The server of the run; skips the test when none is reachable.
const Servidor* ServidorDePrueba();

// A BaseDD pointed at the test server, company database = a fresh database of its own.
class ConBase : public ::testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    // Opens a connection on the test database (fails the test otherwise).
    host::Conexion Abre();
    // Runs statements on the test database.
    void Ejecuta(const std::string& sql);

    std::shared_ptr<BaseEspia> base;
    std::string nombreBase;  // the scratch database
    const Servidor* servidor = nullptr;
};

}  // namespace paratzorep::data::prueba
