#include "EntornoPrueba.h"

#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <optional>

#include "data/ServidorPrivado.h"

namespace paratzorep::data::prueba {

namespace {

std::optional<Servidor> Busca() {
    if (const char* s = std::getenv("TZ_DATA_SERVIDOR"); s && *s) {
        std::string t = s;
        Servidor r;
        auto p1 = t.find(':'), p2 = t.find(':', p1 + 1), p3 = t.find(':', p2 + 1);
        if (p3 == std::string::npos) return std::nullopt;
        r.host = t.substr(0, p1);
        r.puerto = std::stoi(t.substr(p1 + 1, p2 - p1 - 1));
        r.usuario = t.substr(p2 + 1, p3 - p2 - 1);
        r.password = t.substr(p3 + 1);
        return r;
    }
    const char* home = std::getenv("TZOREP_TEST_HOME");
    if (home == nullptr || *home == 0) return std::nullopt;
    auto estado = ServidorPrivado(home).estado();
    if (!estado.corriendo || !estado.datos) return std::nullopt;
    return Servidor{estado.datos->host, estado.datos->puerto, estado.datos->usuario,
                    estado.datos->password};
}

}  // namespace

const Servidor* ServidorDePrueba() {
    static const std::optional<Servidor> servidor = Busca();
    return servidor ? &*servidor : nullptr;
}

void ConBase::SetUp() {
    servidor = ServidorDePrueba();
    if (servidor == nullptr) GTEST_SKIP() << "no hay servidor de prueba (TZOREP_TEST_HOME)";
    static std::atomic<int> contador{0};
    nombreBase = "tzdatos_" + std::to_string(::getpid()) + "_" + std::to_string(contador++);
    base = std::make_shared<BaseEspia>();
    base->cRuta = servidor->host;
    base->cPuerto = servidor->puerto;
    base->cUsuario = servidor->usuario;
    base->cPassword = servidor->password;
    host::Conexion cn;
    ASSERT_TRUE(base->AbrirBdD(cn, "information_schema")) << base->UltimoError();
    base->Executar(cn, "DROP DATABASE IF EXISTS " + nombreBase);
    base->Executar(cn, "CREATE DATABASE " + nombreBase + " CHARACTER SET utf8mb4");
    base->Executar(cn, "CREATE DATABASE IF NOT EXISTS generaltanzo");
    base->cMiBase = nombreBase;
}

void ConBase::TearDown() {
    if (!base || nombreBase.empty()) return;
    host::Conexion cn;
    if (base->AbrirBdD(cn, "information_schema"))
        base->Executar(cn, "DROP DATABASE IF EXISTS " + nombreBase);
}

host::Conexion ConBase::Abre() {
    host::Conexion cn;
    EXPECT_TRUE(base->AbrirBdD(cn, nombreBase)) << base->UltimoError();
    return cn;
}

void ConBase::Ejecuta(const std::string& sql) {
    auto cn = Abre();
    base->Executar(cn, sql);
}

}  // namespace paratzorep::data::prueba
