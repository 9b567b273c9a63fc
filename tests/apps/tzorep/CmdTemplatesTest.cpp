// tzorep templates list | import DIR | export DIR against a scratch company database.
#include <gtest/gtest.h>

#include <fstream>

#include "support/Soporte.h"

namespace paratzorep::cli {
namespace {

class CmdTemplates : public ::testing::Test {
  protected:
    void SetUp() override {
        bd.emplace();
        bd->ejecutar(
            "CREATE TABLE reportesbin (Archivo VARCHAR(100) NOT NULL, Renglon INT NOT NULL, "
            "Contenido MEDIUMBLOB, PRIMARY KEY (Archivo, Renglon))");
        EscribeIni(bd->nombre());
    }

    void EscribeIni(const std::string& base) {
        const auto& sv = bd->servidor();
        std::ofstream(tmp / "tzorep.ini")
            << "[BaseDD]\ncRuta=" << sv.host << "\ncUsuario=" << sv.usuario
            << "\ncPassword=" << sv.password << "\ncPuerto=" << sv.puerto << "\ncMiBase=" << base
            << "\n";
    }

    pruebas::ResultadoPrograma Tzorep(std::vector<std::string> args) {
        args.insert(args.begin(), {"--home", tmp.ruta().string(), "templates"});
        return pruebas::ejecutarTzorep(args);
    }

    static std::string Lee(const std::filesystem::path& p) {
        std::ifstream in(p, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }

    pruebas::CarpetaTemporal tmp;
    std::optional<pruebas::BaseDeDatosDePrueba> bd;
};

TEST_F(CmdTemplates, ImportListExport) {
    std::filesystem::create_directories(tmp / "fuentes");
    std::ofstream(tmp / "fuentes" / "bitacoraus.rpt") << "<reporte version=\"1\"/>";
    std::ofstream(tmp / "fuentes" / "leeme.txt") << "x";
    auto r = Tzorep({"import", (tmp / "fuentes").string()});
    ASSERT_EQ(r.estado, 0) << r.errores;
    EXPECT_EQ(r.salida, "bitacoraus.rpt\n");

    r = Tzorep({"list"});
    ASSERT_EQ(r.estado, 0) << r.errores;
    EXPECT_EQ(r.salida, "bitacoraus.rpt\t22\t1\n");

    r = Tzorep({"export", (tmp / "copia").string()});
    ASSERT_EQ(r.estado, 0) << r.errores;
    EXPECT_EQ(Lee(tmp / "copia" / "bitacoraus.rpt"), "<reporte version=\"1\"/>");
}

TEST_F(CmdTemplates, UsageErrorsAndFailures) {
    for (const auto& args : std::vector<std::vector<std::string>>{
             {}, {"borrar"}, {"import"}, {"list", "x"}, {"export", ""}}) {
        EXPECT_EQ(Tzorep(args).estado, 2) << ::testing::PrintToString(args);
    }
    auto r = Tzorep({"import", (tmp / "nohay").string()});
    EXPECT_EQ(r.estado, 1);
    EXPECT_NE(r.errores.find("no existe"), std::string::npos) << r.errores;

    EscribeIni("base_que_no_existe");
    r = Tzorep({"list"});
    EXPECT_EQ(r.estado, 1);
    EXPECT_NE(r.errores.find("base_que_no_existe"), std::string::npos) << r.errores;
    if (!bd->servidor().password.empty()) {
        EXPECT_EQ(r.errores.find(bd->servidor().password), std::string::npos) << r.errores;
    }
}

}  // namespace
}  // namespace paratzorep::cli
