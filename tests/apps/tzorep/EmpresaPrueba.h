// The user activity log's databases for end-to-end tests through tzorep: the general database and
// the reports database's model, shared by the run, and a company with the template store and an
// empty log; and the home's tzorep.ini pointing at them.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>

#include "data/ServidorPrivado.h"

namespace paratzorep::cli::prueba {

// generaltanzo.estructurasm with the system's Ids 180 and 181 (and 9150, which no other test
// uses), and tanzoreportes.bitacorausuarios; made when missing.
inline constexpr const char* kBasesCompartidas =
    "CREATE DATABASE IF NOT EXISTS generaltanzo;"
    "CREATE TABLE IF NOT EXISTS generaltanzo.estructurasm (Id INT NOT NULL, Dato BLOB, "
    "PRIMARY KEY (Id));"
    "INSERT IGNORE INTO generaltanzo.estructurasm VALUES "
    "(180, ENCODE('ENTRADA AL SISTEMA','527')), (181, ENCODE('SALIDA DEL SISTEMA','527')),"
    "(9150, ENCODE('FACTURACION','527'));"
    "CREATE DATABASE IF NOT EXISTS tanzoreportes;"
    "CREATE TABLE IF NOT EXISTS tanzoreportes.bitacorausuarios (Id INT NOT NULL "
    "AUTO_INCREMENT, Fecha DATE NOT NULL DEFAULT '0000-00-00', Hora TIME NOT NULL DEFAULT "
    "'00:00:00', Usuario VARCHAR(60) NOT NULL DEFAULT '', Accion VARCHAR(500) NOT NULL "
    "DEFAULT '', Version VARCHAR(60) NOT NULL DEFAULT '', Equipo VARCHAR(60) NOT NULL "
    "DEFAULT '', PRIMARY KEY (Id), KEY Fecha (Fecha))";

// The company's template store and its (empty) log.
inline constexpr const char* kTablasEmpresa =
    "CREATE TABLE reportesbin (Archivo VARCHAR(100) NOT NULL, Renglon INT NOT NULL, "
    "Contenido MEDIUMBLOB, PRIMARY KEY (Archivo, Renglon));"
    "CREATE TABLE anexoreportes (Id INT NOT NULL AUTO_INCREMENT, ArchivoPadre "
    "VARCHAR(100) NOT NULL DEFAULT '', Archivo VARCHAR(100) NOT NULL DEFAULT '', "
    "DESCripcion VARCHAR(150) NOT NULL DEFAULT '', PRIMARY KEY (Id));"
    "CREATE TABLE bitacorausuarios (Id INT NOT NULL AUTO_INCREMENT, Fecha DATE NOT NULL "
    "DEFAULT '0000-00-00', Hora TIME NOT NULL DEFAULT '00:00:00', Usuario BLOB, Accion "
    "VARCHAR(60) NOT NULL DEFAULT '', Registro INT NOT NULL DEFAULT 0, Llave BLOB, "
    "Adicionales BLOB, Version BLOB, Equipo BLOB, PRIMARY KEY (Id))";

// <home>/tzorep.ini for the server and company database given, with `extra` lines after.
inline void EscribeIni(const std::filesystem::path& home, const data::DatosServidor& sv,
                       const std::string& base, const std::string& extra = {}) {
    std::ofstream(home / "tzorep.ini")
        << "[BaseDD]\ncRuta=" << sv.host << "\ncUsuario=" << sv.usuario
        << "\ncPassword=" << sv.password << "\ncPuerto=" << sv.puerto << "\ncMiBase=" << base
        << "\n"
        << extra;
}

}  // namespace paratzorep::cli::prueba
