// Test helpers of the toolkit, session, facade and start-up suites: the run's private server
// (TZOREP_TEST_HOME), a scratch database per test over our own BaseDD, temporary folders and
// running the tzorep program.
#pragma once

#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "data/BaseDDMaria.h"
#include "data/ServidorPrivado.h"

namespace paratzorep::apoyo {

struct Servidor {
    std::string host;
    int puerto = 0;
    std::string usuario;
    std::string password;
};

inline std::filesystem::path homeDePrueba() {
    const char* home = std::getenv("TZOREP_TEST_HOME");
    return home && *home ? std::filesystem::path(home) : std::filesystem::path(TZ_TEST_HOME);
}

// The running test server; throws when there is none.
inline const Servidor& servidorDePrueba() {
    static const std::optional<Servidor> servidor = []() -> std::optional<Servidor> {
        auto e = data::ServidorPrivado(homeDePrueba()).estado();
        if (!e.corriendo || !e.datos) return std::nullopt;
        return Servidor{e.datos->host, e.datos->puerto, e.datos->usuario, e.datos->password};
    }();
    if (!servidor)
        throw std::runtime_error("no hay servidor de prueba en " + homeDePrueba().string());
    return *servidor;
}

class CarpetaTemporal {
  public:
    CarpetaTemporal() {
        std::string plantilla = (std::filesystem::temp_directory_path() / "tzkit-XXXXXX").string();
        if (!::mkdtemp(plantilla.data())) throw std::runtime_error("mkdtemp");
        ruta_ = plantilla;
    }
    ~CarpetaTemporal() {
        std::error_code ec;
        std::filesystem::remove_all(ruta_, ec);
    }
    CarpetaTemporal(const CarpetaTemporal&) = delete;
    CarpetaTemporal& operator=(const CarpetaTemporal&) = delete;

    const std::filesystem::path& ruta() const { return ruta_; }
    std::filesystem::path operator/(const std::string& nombre) const { return ruta_ / nombre; }

  private:
    std::filesystem::path ruta_;
};

// A database of its own for one test, dropped on destruction; `bd` points at it.
class BaseDeDatosDePrueba {
  public:
    BaseDeDatosDePrueba() : servidor_(servidorDePrueba()) {
        static std::atomic<int> contador{0};
        nombre_ = "tzkit_" + std::to_string(::getpid()) + "_" + std::to_string(contador++);
        bd = std::make_shared<data::BaseDDMaria>();
        bd->cRuta = servidor_.host;
        bd->cPuerto = servidor_.puerto;
        bd->cUsuario = servidor_.usuario;
        bd->cPassword = servidor_.password;
        host::Conexion cn;
        if (!bd->AbrirBdD(cn, "information_schema")) throw std::runtime_error(bd->UltimoError());
        bd->Executar(cn, "DROP DATABASE IF EXISTS " + nombre_);
        bd->Executar(cn, "CREATE DATABASE " + nombre_ + " CHARACTER SET utf8mb4");
        bd->CierraBdD(cn);
        bd->cMiBase = nombre_;
        if (!bd->AbrirBdD(cn_, nombre_)) throw std::runtime_error(bd->UltimoError());
    }
    ~BaseDeDatosDePrueba() {
        try {
            bd->CierraBdD(cn_);
            host::Conexion cn;
            if (bd->AbrirBdD(cn, "information_schema")) {
                bd->Executar(cn, "DROP DATABASE IF EXISTS " + nombre_);
            }
        } catch (...) {
        }
    }
    BaseDeDatosDePrueba(const BaseDeDatosDePrueba&) = delete;
    BaseDeDatosDePrueba& operator=(const BaseDeDatosDePrueba&) = delete;

    const std::string& nombre() const { return nombre_; }
    const Servidor& servidor() const { return servidor_; }

    // Runs statements separated by ";" (no ";" inside the statements).
    void ejecutar(const std::string& sql) const {
        std::size_t pos = 0;
        while (pos <= sql.size()) {
            std::size_t fin = sql.find(';', pos);
            if (fin == std::string::npos) fin = sql.size();
            std::string s = sql.substr(pos, fin - pos);
            if (s.find_first_not_of(" \n\t") != std::string::npos) bd->Executar(cn_, s);
            pos = fin + 1;
        }
    }
    // Every row, each field as text ("" for null).
    std::vector<std::vector<std::string>> filas(const std::string& sql) const {
        host::Recordset rs;
        if (!bd->RstExecutar(rs, cn_, sql)) throw std::runtime_error(bd->UltimoError());
        std::vector<std::vector<std::string>> r;
        for (rs.MoveFirst(); !rs.Eof(); rs.MoveNext()) {
            std::vector<std::string> fila;
            for (std::size_t i = 0; i < rs.Columnas().size(); ++i) {
                fila.push_back(rs.Campo(i).Texto());
            }
            r.push_back(std::move(fila));
        }
        return r;
    }
    // First field of the first row; nothing for null or no rows.
    std::optional<std::string> valor(const std::string& sql) const {
        host::Recordset rs;
        if (!bd->RstExecutar(rs, cn_, sql)) throw std::runtime_error(bd->UltimoError());
        if (rs.RecordCount() == 0) return std::nullopt;
        rs.MoveFirst();
        if (rs.Campo(std::size_t{0}).EsNulo()) return std::nullopt;
        return rs.Campo(std::size_t{0}).Texto();
    }

    std::shared_ptr<data::BaseDDMaria> bd;

  private:
    Servidor servidor_;
    std::string nombre_;
    host::Conexion cn_;
};

struct ResultadoPrograma {
    int estado = -1;
    std::string salida;
};

// Runs this build's tzorep with the arguments (no quoting needed: plain words); stderr dropped.
inline ResultadoPrograma ejecutarTzorep(const std::vector<std::string>& args) {
    std::string orden = std::string("'") + TZOREP_EXE + "'";
    for (const auto& a : args) orden += " '" + a + "'";
    orden += " 2>/dev/null";
    ResultadoPrograma r;
    FILE* p = ::popen(orden.c_str(), "r");
    if (!p) return r;
    char buf[4096];
    std::size_t n;
    while ((n = std::fread(buf, 1, sizeof buf, p)) > 0) r.salida.append(buf, n);
    int st = ::pclose(p);
    r.estado = WIFEXITED(st) ? WEXITSTATUS(st) : -1;
    return r;
}

}  // namespace paratzorep::apoyo
