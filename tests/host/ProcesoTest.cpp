// The process's private folder and the clean-ups an interruption runs (the interruption itself is
// tested through tzorep: tests/apps/tzorep/FiabilidadTest.cpp).
#include "host/Proceso.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <string>
#include <vector>

namespace paratzorep::host {
namespace {

namespace fs = std::filesystem;

TEST(CarpetaPrivada, SoloDelUsuarioYSeBorraConTodo) {
    const fs::path carpeta = CarpetaPrivada();
    EXPECT_EQ(&CarpetaPrivada(), &CarpetaPrivada());  // one per process
    struct stat st {};
    ASSERT_EQ(::stat(carpeta.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0700u);
    EXPECT_EQ(carpeta.filename().string().rfind("tzorep-" + std::to_string(::getpid()) + "-", 0),
              0u);
    const fs::path sub = SubcarpetaPrivada("vista");
    EXPECT_EQ(sub.parent_path(), carpeta);
    EXPECT_NE(SubcarpetaPrivada("vista"), sub);
    std::ofstream(sub / "pagina-0001.png") << "x";
    BorraCarpetaPrivada();
    EXPECT_FALSE(fs::exists(carpeta));
    EXPECT_NE(CarpetaPrivada(), carpeta);  // made again on the next use
    BorraCarpetaPrivada();
}

// Folders of processes that are gone (their lock free) are removed when a process makes its own;
// a folder still held by a live process is not.
TEST(CarpetaPrivada, LasDeProcesosMuertosSeBorranLasVivasNo) {
    BorraCarpetaPrivada();
    const fs::path base = fs::temp_directory_path();
    std::vector<fs::path> carpetas;
    for (const char* nombre : {"tzorep-1-muerta", "tzorep-2-viva"}) {
        carpetas.push_back(base / (nombre + std::string("-") + std::to_string(::getpid())));
        fs::create_directories(carpetas.back());
        std::ofstream(carpetas.back() / ".en-uso");
    }
    const int viva = ::open((carpetas[1] / ".en-uso").c_str(), O_RDWR);
    ASSERT_EQ(::flock(viva, LOCK_EX), 0);
    CarpetaPrivada();
    EXPECT_FALSE(fs::exists(carpetas[0]));
    EXPECT_TRUE(fs::exists(carpetas[1]));
    ::close(viva);
    fs::remove_all(carpetas[1]);
    BorraCarpetaPrivada();
}

TEST(Limpieza, CorrenLasRegistradasDeLaMasNuevaALaMasViejaYUnaVez) {
    std::vector<std::string> corridas;
    Limpieza a([&] {
        corridas.push_back("a");
        return std::string();
    });
    Limpieza liberada([&] {
        corridas.push_back("liberada");
        return std::string();
    });
    Limpieza b([&] {
        corridas.push_back("b");
        return std::string("no se pudo b");
    });
    Limpieza movida = std::move(a);
    liberada.Libera();
    EXPECT_FALSE(liberada.Registrada());
    EXPECT_EQ(EjecutaLimpiezas(), "no se pudo b\n");
    EXPECT_EQ(corridas, (std::vector<std::string>{"b", "a"}));
    EXPECT_EQ(EjecutaLimpiezas(), "");
    EXPECT_EQ(corridas.size(), 2u);
}

}  // namespace
}  // namespace paratzorep::host
