// Test support shared by every suite: the test run's private server, a scratch
// database per test, SQL helpers, temporary folders and running tzorep.
//
//   using namespace paratzorep::pruebas;
//   BaseDeDatosDePrueba bd;                       // CREATE DATABASE t_<test>_<pid>_<n>
//   bd.ejecutar("CREATE TABLE x (a INT); INSERT INTO x VALUES (1), (2)");
//   EXPECT_EQ(bd.valor("SELECT SUM(a) FROM x"), "3");
//   CarpetaTemporal tmp;                          // removed with its contents
//   auto r = ejecutarTzorep({"--home", tmp.ruta().string(), "db", "status"});
//   EXPECT_EQ(r.estado, 3);
//
// Failures throw std::runtime_error with the SQL and the server's code; gtest
// reports them as the test's failure.
#pragma once

#include <mysql.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "data/BaseDDMaria.h"
#include "data/ServidorPrivado.h"

namespace paratzorep::pruebas {

// The home folder of the test run's server: TZOREP_TEST_HOME, or the build's.
std::filesystem::path homeDePrueba();
// Connection data of the test run's server (read once). Throws when it does not run.
const data::DatosServidor& servidorDePrueba();

struct CierraMysql {
    void operator()(MYSQL* m) const { mysql_close(m); }
};
using Conexion = std::unique_ptr<MYSQL, CierraMysql>;

// Connects as the application user over TCP, utf8mb4, multi-statements on;
// `base` may be empty.
Conexion conectar(const data::DatosServidor& servidor, const std::string& base = "");

// Runs one or more statements separated by ';', discarding any results.
void ejecutar(MYSQL* m, const std::string& sql);
// First column of the first row; nullopt for NULL or no rows.
std::optional<std::string> valor(MYSQL* m, const std::string& sql);
// Every row, each column as text ("" for NULL).
std::vector<std::vector<std::string>> filas(MYSQL* m, const std::string& sql);

// A database of its own for one test, named from the running test
// (t_<suite>_<test>_<pid>_<n>, at most 64 characters), dropped on destruction.
class BaseDeDatosDePrueba {
  public:
    explicit BaseDeDatosDePrueba(const data::DatosServidor& servidor = servidorDePrueba());
    ~BaseDeDatosDePrueba();
    BaseDeDatosDePrueba(const BaseDeDatosDePrueba&) = delete;
    BaseDeDatosDePrueba& operator=(const BaseDeDatosDePrueba&) = delete;

    const std::string& nombre() const { return nombre_; }
    // Connected with this database as the default one.
    MYSQL* mysql() const { return conexion_.get(); }
    const data::DatosServidor& servidor() const { return servidor_; }

    void ejecutar(const std::string& sql) const { pruebas::ejecutar(mysql(), sql); }
    std::optional<std::string> valor(const std::string& sql) const {
        return pruebas::valor(mysql(), sql);
    }
    std::vector<std::vector<std::string>> filas(const std::string& sql) const {
        return pruebas::filas(mysql(), sql);
    }
    // The report work tables ("tbltemp...") in this database.
    int tablasDeTrabajo() const {
        return std::stoi(valor("SELECT COUNT(*) FROM information_schema.tables WHERE "
                               "table_schema=DATABASE() AND table_name LIKE 'tbltemp%'")
                             .value_or("-1"));
    }

  private:
    data::DatosServidor servidor_;
    std::string nombre_;
    Conexion conexion_;
};

// Our data-access object (or a subclass of it) pointed at the run's server and the database
// `base`, not yet connected.
template <class B = data::BaseDDMaria>
std::shared_ptr<B> baseDD(const data::DatosServidor& servidor, const std::string& base) {
    auto b = std::make_shared<B>();
    b->cRuta = servidor.host;
    b->cPuerto = servidor.puerto;
    b->cUsuario = servidor.usuario;
    b->cPassword = servidor.password;
    b->cMiBase = base;
    return b;
}

// A fresh folder under the system's temporary folder, removed with its contents.
class CarpetaTemporal {
  public:
    CarpetaTemporal();
    ~CarpetaTemporal();
    CarpetaTemporal(const CarpetaTemporal&) = delete;
    CarpetaTemporal& operator=(const CarpetaTemporal&) = delete;

    const std::filesystem::path& ruta() const { return ruta_; }
    std::filesystem::path operator/(const std::string& nombre) const { return ruta_ / nombre; }

  private:
    std::filesystem::path ruta_;
};

struct ResultadoPrograma {
    int estado = -1;  // exit status; 128 + signal when killed
    std::string salida;
    std::string errores;
};

// Runs a program with extra environment variables ("NAME", "value") and
// captures its output; killed after `limite`.
ResultadoPrograma ejecutarPrograma(
    const std::filesystem::path& programa, const std::vector<std::string>& args,
    const std::vector<std::pair<std::string, std::string>>& entorno = {},
    std::chrono::seconds limite = std::chrono::seconds(120));
// A program started in the background, its output going to files, for tests that signal it or
// its server while it runs. Killed (SIGKILL) and reaped on destruction if still running.
class ProgramaEnCurso {
  public:
    ProgramaEnCurso(const std::filesystem::path& programa, const std::vector<std::string>& args,
                    const std::vector<std::pair<std::string, std::string>>& entorno = {});
    ~ProgramaEnCurso();
    ProgramaEnCurso(const ProgramaEnCurso&) = delete;
    ProgramaEnCurso& operator=(const ProgramaEnCurso&) = delete;

    int pid() const { return pid_; }
    void senal(int s) const;
    // Whether it has ended (without waiting).
    bool termino();
    // Waits for its end (SIGKILL after `limite`) and returns its status and output.
    ResultadoPrograma espera(std::chrono::seconds limite = std::chrono::seconds(120));

  private:
    CarpetaTemporal salidas_;
    int pid_ = -1;
    std::optional<int> estado_;
};
// tzorep of this build, in the background.
std::unique_ptr<ProgramaEnCurso> lanzarTzorep(
    const std::vector<std::string>& args,
    const std::vector<std::pair<std::string, std::string>>& entorno = {});

// The same for the tzorep program of this build (TZOREP_EXE).
ResultadoPrograma ejecutarTzorep(
    const std::vector<std::string>& args,
    const std::vector<std::pair<std::string, std::string>>& entorno = {},
    std::chrono::seconds limite = std::chrono::seconds(120));

}  // namespace paratzorep::pruebas
