// Fixture of the template store and runner tests: our BaseDD on the test server with a scratch
// company database holding the store's tables, the session's folders under a temporary folder
// and the process's odbc.ini under it too.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>

#include "Apoyo.h"
#include "data/BaseDDMaria.h"
#include "host/DatosConecte.h"
#include "host/Interaccion.h"
#include "host/Menu.h"
#include "output/Ejecutor.h"
#include "output/Plantillas.h"
#include "session/Sesion.h"
#include "session/Solicitud.h"
#include "support/Soporte.h"

namespace paratzorep::output::prueba {

inline const char* kTablasAlmacen = R"(
CREATE TABLE reportesbin (Archivo VARCHAR(100) NOT NULL, Renglon INT NOT NULL DEFAULT 0,
    Contenido MEDIUMBLOB, PRIMARY KEY (Archivo, Renglon)) ENGINE=InnoDB;
CREATE TABLE anexoreportes (Id INT NOT NULL AUTO_INCREMENT,
    ArchivoPadre VARCHAR(100) NOT NULL DEFAULT '', Archivo VARCHAR(100) NOT NULL DEFAULT '',
    DESCripcion VARCHAR(150) NOT NULL DEFAULT '', PRIMARY KEY (Id), KEY ArchivoPadre (ArchivoPadre));
CREATE TABLE bitacorausuarios (Id INT NOT NULL AUTO_INCREMENT,
    Fecha DATE NOT NULL DEFAULT '0000-00-00', Hora TIME NOT NULL DEFAULT '00:00:00',
    Usuario BLOB, Accion VARCHAR(60) NOT NULL DEFAULT '', Registro INT NOT NULL DEFAULT 0,
    Llave BLOB, Adicionales BLOB, Version BLOB, Equipo BLOB, PRIMARY KEY (Id)) ENGINE=InnoDB)";

class ConAlmacen : public ::testing::Test {
  protected:
    void SetUp() override {
        bd.emplace();
        bd->ejecutar(kTablasAlmacen);
        base = pruebas::baseDD(bd->servidor(), bd->nombre());
        auto& s = session::sesion();
        s.BaseDD = base;
        s.DatosConecte = std::make_shared<host::DatosConecte>();
        s.RutaTanzo = tmp.ruta().string() + "/";
        s.RutaRpts = (tmp / "rpts").string() + "/";
        s.RutaEditaRpts = (tmp / "editarpts").string() + "/";
        s.RutaPDFs = (tmp / "pdfs").string() + "/";
        s.UserUsuario = "PRUEBA";
        menu = std::make_shared<host::MenuRegistro>();
        s.objMenu = menu;
        // The driver manager reads the data sources once per process: one file for the run.
        // It holds the test server's password: kept in the test run's home, not in /tmp.
        static const std::string odbcIni =
            (pruebas::homeDePrueba() / ("odbc-output-" + std::to_string(::getpid()) + ".ini"))
                .string();
        ::setenv("ODBCINI", odbcIni.c_str(), 1);
        usuario = std::make_shared<UsuarioDePrueba>();
        sink.emplace(usuario);
        ASSERT_TRUE(base->AbrirBdD(cn, bd->nombre())) << base->UltimoError();
    }

    void TearDown() override {
        base->CierraBdD(cn);
        auto& s = session::sesion();
        s.BaseDD.reset();
        s.DatosConecte.reset();
        s.objMenu.reset();
        s.RutaTanzo = s.RutaRpts = s.RutaEditaRpts = s.RutaPDFs = "";
        OlvidarFormato() = false;
        FormatoRecordado().clear();
        RecordarFormato() = false;
        opcionesEjecucion() = {};
        session::solicitud().Limpia();
        sink.reset();
    }

    // Stores `contenido` under `nombre` as the store does.
    void Guarda(const std::string& nombre, const std::string& contenido) {
        const auto ruta = tmp / ("fuente-" + nombre);
        std::ofstream(ruta, std::ios::binary) << contenido;
        std::filesystem::rename(ruta, tmp / nombre);
        GuardaPlantilla(cn, tmp / nombre);
        std::filesystem::remove(tmp / nombre);
    }

    static std::string Lee(const std::filesystem::path& p) {
        std::ifstream in(p, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }

    pruebas::CarpetaTemporal tmp;
    std::optional<pruebas::BaseDeDatosDePrueba> bd;
    std::shared_ptr<data::BaseDDMaria> base;
    std::shared_ptr<host::MenuRegistro> menu;
    std::shared_ptr<UsuarioDePrueba> usuario;
    std::optional<host::InteraccionTemporal> sink;
    host::Conexion cn;
};

}  // namespace paratzorep::output::prueba
