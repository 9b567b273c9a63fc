// The account reports end to end: a demo company with a short history in a scratch database,
// the templates of this tree imported, and tzorep pointed at it. Files printed are read back
// by readers that share no code with the writers.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "renderer/writers/Lector.h"
#include "schema/Esquema.h"
#include "schema/GeneradorDemo.h"
#include "support/Soporte.h"

namespace paratzorep::cli {

class DemoCuentas : public ::testing::Test {
  protected:
    // Days of history of the demo company (up to its fixed last day, 2026-10-31).
    static constexpr int kDias = 100;

    // The work-table models of the account reports in the reports work database.
    static void SetUpTestSuite() {
        pruebas::BaseDeDatosDePrueba b;
        b.ejecutar("CREATE DATABASE IF NOT EXISTS tanzoreportes");
        const auto archivo = schema::carpetaEsquemas() / "tanzoreportes.sql";
        std::ifstream f(archivo);
        const std::string texto((std::istreambuf_iterator<char>(f)), {});
        for (const auto& s : schema::dividirSentencias(texto, archivo.string()))
            for (const std::string modelo : {"cxc", "cxp"}) {
                const std::string crea = "CREATE TABLE " + modelo + " (";
                const auto p = s.sql.find(crea);
                if (p != std::string::npos)
                    b.ejecutar("CREATE TABLE IF NOT EXISTS tanzoreportes." + modelo + " (" +
                               s.sql.substr(p + crea.size()));
            }
    }

    void SetUp() override {
        bd.emplace();
        schema::cargarArchivo(bd->mysql(), schema::carpetaEsquemas() / "empresa.sql");
        {
            auto c = schema::Conexion::abrir(pruebas::servidorDePrueba(), bd->nombre());
            schema::OpcionesDemo op;
            op.baseEmpresa = bd->nombre();
            op.baseGeneral = "";
            op.dias = kDias;
            schema::generarDemo(c, op);
        }
        const auto& sv = bd->servidor();
        std::ofstream(tmp / "tzorep.ini")
            << "[BaseDD]\ncRuta=" << sv.host << "\ncUsuario=" << sv.usuario
            << "\ncPassword=" << sv.password << "\ncPuerto=" << sv.puerto
            << "\ncMiBase=" << bd->nombre() << "\n";
        auto r = Tzorep({"templates", "import", std::string(TZ_SOURCE_DIR) + "/templates"});
        ASSERT_EQ(r.estado, 0) << r.errores;
    }

    pruebas::ResultadoPrograma Tzorep(std::vector<std::string> args) {
        args.insert(args.begin(), {"--home", tmp.ruta().string()});
        return pruebas::ejecutarTzorep(args);
    }

    // `print ENTRY --set ...` with the settings given as "control=valor".
    pruebas::ResultadoPrograma Imprime(const std::string& entrada,
                                       const std::vector<std::string>& ajustes,
                                       std::vector<std::string> extra = {}) {
        std::vector<std::string> args = {"print", entrada};
        for (const auto& a : ajustes) args.insert(args.end(), {"--set", a});
        args.insert(args.end(), extra.begin(), extra.end());
        return Tzorep(args);
    }

    // Prints to a file of type `tipo` and returns the text its reader gives ("" on failure,
    // with the failure recorded).
    std::string ImprimeYLee(const std::string& entrada, const std::vector<std::string>& ajustes,
                            const std::string& tipo) {
        namespace lector = renderer::prueba;
        const auto salida = tmp / ("salida/" + entrada + "." + tipo);
        auto r =
            Imprime(entrada, ajustes, {"--to", "file", "--type", tipo, "--out", salida.string()});
        EXPECT_EQ(r.estado, 0) << tipo << ": " << r.errores;
        if (r.estado != 0) return "";
        std::string comando;
        if (tipo == "pdf")
            comando = "pdftotext -layout " + lector::Comillas(salida.string()) + " -";
        if (tipo == "csv" || tipo == "xls" || tipo == "xlsx")
            comando = lector::Lector() + " " + tipo + " " + lector::Comillas(salida.string());
        if (tipo == "rtf" || tipo == "doc")
            comando = lector::Lector() + " rtf " + lector::Comillas(salida.string());
        if (comando.empty()) {
            std::ifstream in(salida);
            return std::string(std::istreambuf_iterator<char>(in), {});
        }
        auto leido = lector::Ejecutar(comando + " 2>&1");
        EXPECT_EQ(leido.estado, 0) << tipo << ": " << leido.texto;
        return leido.texto;
    }

    // The request log's lines of one print.
    std::vector<std::string> Solicitudes(const std::string& entrada,
                                         const std::vector<std::string>& ajustes) {
        const auto bitacora = tmp / "solicitudes.jsonl";
        std::filesystem::remove(bitacora);
        auto r = Imprime(entrada, ajustes,
                         {"--to", "file", "--type", "txt", "--out",
                          (tmp / "solicitud.txt").string(), "--request-log", bitacora.string()});
        EXPECT_EQ(r.estado, 0) << r.errores;
        std::vector<std::string> lineas;
        std::ifstream in(bitacora);
        for (std::string l; std::getline(in, l);) lineas.push_back(l);
        return lineas;
    }

    // The rows of a CSV as its reader gives them ("FILA", then the cells).
    static std::vector<std::vector<std::string>> FilasCsv(const std::string& texto) {
        auto filas = renderer::prueba::Campos(texto);
        for (auto& f : filas)
            if (!f.empty() && f[0] == "FILA") f.erase(f.begin());
        return filas;
    }

    // A number as the reports print it ("#,##0.00").
    static std::string Importe(double v) {
        char buf[64];
        std::snprintf(buf, sizeof buf, "%.2f", v < 0 ? -v : v);
        std::string s = buf;
        for (int i = static_cast<int>(s.find('.')) - 3; i > 0; i -= 3)
            s.insert(static_cast<std::size_t>(i), ",");
        return (v < 0 && s != "0.00" ? "-" : "") + s;
    }

    int TablasDeTrabajo() const { return bd->tablasDeTrabajo(); }

    pruebas::CarpetaTemporal tmp;
    std::optional<pruebas::BaseDeDatosDePrueba> bd;
};

}  // namespace paratzorep::cli
