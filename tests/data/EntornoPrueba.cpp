#include "EntornoPrueba.h"

namespace paratzorep::data::prueba {

void ConBase::SetUp() {
    servidor = &pruebas::servidorDePrueba();
    bd.emplace(*servidor);
    // The general database, which AbrirBdD opens for an empty name.
    bd->ejecutar("CREATE DATABASE IF NOT EXISTS generaltanzo");
    nombreBase = bd->nombre();
    base = std::make_shared<BaseEspia>();
    base->cRuta = servidor->host;
    base->cPuerto = servidor->puerto;
    base->cUsuario = servidor->usuario;
    base->cPassword = servidor->password;
    base->cMiBase = nombreBase;
}

host::Conexion ConBase::Abre() {
    host::Conexion cn;
    EXPECT_TRUE(base->AbrirBdD(cn, nombreBase)) << base->UltimoError();
    return cn;
}

void ConBase::Ejecuta(const std::string& sql) {
    bd->ejecutar(sql);
}

}  // namespace paratzorep::data::prueba
