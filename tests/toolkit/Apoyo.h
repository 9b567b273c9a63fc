// Test helpers of the toolkit, session, facade and start-up suites: the shared test support
// under the names these suites use, and a fixture with our own BaseDD opened on a scratch
// database of the run's private server.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <sstream>
#include <string>

#include "data/BaseDDMaria.h"
#include "support/Soporte.h"

namespace paratzorep::apoyo {

using pruebas::CarpetaTemporal;
using pruebas::ejecutarTzorep;
using pruebas::homeDePrueba;
using pruebas::servidorDePrueba;

inline std::string LeeArchivo(const std::filesystem::path& p) {
    std::ifstream in(p, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

// A scratch database (`base_`) and a BaseDD (`bd`) connected to it on `cn`; skips the test
// when the run has no server.
class ConServidor : public ::testing::Test {
  protected:
    void SetUp() override {
        try {
            base_.emplace();
        } catch (const std::exception& e) {
            GTEST_SKIP() << "sin servidor de prueba: " << e.what();
        }
        const auto& s = base_->servidor();
        bd = pruebas::baseDD(s, base_->nombre());
        ASSERT_TRUE(bd->AbrirBdD(cn, base_->nombre())) << bd->UltimoError();
    }
    void TearDown() override {
        if (bd) bd->CierraBdD(cn);
    }

    std::optional<pruebas::BaseDeDatosDePrueba> base_;
    std::shared_ptr<data::BaseDDMaria> bd;
    host::Conexion cn;
};

}  // namespace paratzorep::apoyo
