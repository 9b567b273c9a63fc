// Reliability of tzorep print: prints at once never mix their data, an interrupted or killed print
// leaves nothing behind, a server that stops answering ends the print in time, and broken input
// gets one true message. The user activity log of a scratch company, its fill held up at will by a
// row lock the test takes.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <thread>

#include "renderer/data/Consulta.h"
#include "support/Soporte.h"
#include "tests/apps/tzorep/EmpresaPrueba.h"

namespace paratzorep::cli {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using Reloj = std::chrono::steady_clock;

const std::vector<std::string> kUsuarios = {"ANA", "ADMIN", "M", "MARIO"};

// n rows of October 2026; row i is kUsuarios[i % 4]'s, with the key "FOLIO i".
std::string Bitacora(int n) {
    return "INSERT INTO bitacorausuarios (Fecha,Hora,Usuario,Registro,Llave,Adicionales,Version,"
           "Equipo) SELECT '2026-10-01' + INTERVAL (seq % 28) DAY, SEC_TO_TIME(seq * 37 % 86400), "
           "ENCODE(ELT(1 + seq % 4,'ANA','ADMIN','M','MARIO'),'418'), 9150, "
           "ENCODE(CONCAT('FOLIO ', seq),'184'), ENCODE('ALTA','184'), ENCODE('5.3.004','527'), "
           "ENCODE('CAJA-01','527') FROM seq_1_to_" +
           std::to_string(n);
}

std::string Lee(const fs::path& p) {
    std::ifstream in(p, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

bool Contiene(const std::string& texto, const std::string& parte) {
    return texto.find(parte) != std::string::npos;
}

// Waits up to `limite` for `condicion`.
template <class F>
bool Espera(F condicion, std::chrono::milliseconds limite = 20s) {
    const auto fin = Reloj::now() + limite;
    while (!condicion()) {
        if (Reloj::now() > fin) return false;
        std::this_thread::sleep_for(10ms);
    }
    return true;
}

double Segundos(Reloj::time_point desde) {
    return std::chrono::duration<double>(Reloj::now() - desde).count();
}

class Fiabilidad : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        pruebas::BaseDeDatosDePrueba b;
        b.ejecutar(prueba::kBasesCompartidas);
    }

    void SetUp() override {
        bd.emplace();
        bd->ejecutar(prueba::kTablasEmpresa);
        bd->ejecutar(Bitacora(400));
        prueba::EscribeIni(tmp.ruta(), bd->servidor(), bd->nombre());
        auto r = Tzorep({"templates", "import", std::string(TZ_SOURCE_DIR) + "/templates"});
        ASSERT_EQ(r.estado, 0) << r.errores;
    }

    std::vector<std::string> Args(std::vector<std::string> args) const {
        args.insert(args.begin(), {"--home", tmp.ruta().string()});
        return args;
    }
    pruebas::ResultadoPrograma Tzorep(std::vector<std::string> args) const {
        return pruebas::ejecutarTzorep(Args(std::move(args)));
    }
    // October's log of one user ("" for all) to a file.
    std::vector<std::string> Imprime(const std::string& usuario, const fs::path& salida) const {
        return Args({"print", "BitacoraUsuarios", "--set", "mkeFecha(0)=01/10/2026", "--set",
                     "mkeFecha(1)=31/10/2026", "--set", "txtDato(0)=" + usuario, "--to", "file",
                     "--out", salida.string()});
    }

    // Work tables in the company database plus their rows in the registry.
    int Restos() const {
        return bd->tablasDeTrabajo() +
               std::stoi(bd->valor("SELECT COUNT(*) FROM tanzoreportes.tablastrabajo WHERE "
                                   "Base=DATABASE()")
                             .value_or("0"));
    }

    // Holds a row of the log locked, so that a print's fill waits for it; returns once the fill
    // is waiting.
    pruebas::Conexion DetieneElLlenado() const {
        auto c = pruebas::conectar(bd->servidor(), bd->nombre());
        pruebas::ejecutar(c.get(), "START TRANSACTION");
        pruebas::filas(c.get(), "SELECT Id FROM bitacorausuarios WHERE Id=1 FOR UPDATE");
        return c;
    }
    bool LlenadoEnEspera() const {
        return bd->valor("SELECT COUNT(*) FROM information_schema.PROCESSLIST WHERE DB='" +
                         bd->nombre() + "' AND INFO LIKE 'INSERT INTO tbltemp%'") != "0";
    }

    pruebas::CarpetaTemporal tmp;
    std::optional<pruebas::BaseDeDatosDePrueba> bd;
};

// The key numbers of a printed log, and whether its heading names `usuario`.
std::set<int> Folios(const std::string& texto) {
    std::set<int> r;
    for (std::size_t p = texto.find("FOLIO "); p != std::string::npos;
         p = texto.find("FOLIO ", p + 1))
        r.insert(std::stoi(texto.substr(p + 6)));
    return r;
}

TEST_F(Fiabilidad, OchoImpresionesALaVezNoSeMezclanNiFallan) {
    // Each user alone first: the bytes that every print at once must give.
    std::map<std::string, std::string> solo;
    for (std::size_t u = 0; u < kUsuarios.size(); ++u) {
        const fs::path salida = tmp / ("solo-" + kUsuarios[u] + ".txt");
        auto r = pruebas::ejecutarTzorep(Imprime(kUsuarios[u], salida));
        ASSERT_EQ(r.estado, 0) << r.errores;
        solo[kUsuarios[u]] = Lee(salida);
        EXPECT_TRUE(Contiene(solo[kUsuarios[u]], "Movimientos del usuario '" + kUsuarios[u] + "'"));
        const auto folios = Folios(solo[kUsuarios[u]]);
        EXPECT_EQ(folios.size(), 100u);
        for (int f : folios) EXPECT_EQ(static_cast<std::size_t>(f % 4), u) << f;
    }
    std::vector<std::unique_ptr<pruebas::ProgramaEnCurso>> impresiones;
    for (int i = 0; i < 8; ++i)
        impresiones.push_back(pruebas::lanzarTzorep(
            Imprime(kUsuarios[i % 4], tmp / ("junta-" + std::to_string(i) + ".txt"))));
    for (int i = 0; i < 8; ++i) {
        const auto r = impresiones[i]->espera();
        EXPECT_EQ(r.estado, 0) << r.errores;
        EXPECT_EQ(Lee(tmp / ("junta-" + std::to_string(i) + ".txt")), solo[kUsuarios[i % 4]])
            << "impresión " << i;
    }
    EXPECT_EQ(Restos(), 0);
}

// Interrupted during the fill (held up by the lock) or while the file is being written (the print
// stopped the moment its partial file appears): the work table and the partial file go, and the
// message says what happened.
TEST_F(Fiabilidad, InterrumpidaNoDejaTablaNiArchivoParcial) {
    struct Caso {
        const char* fase;
        int senal;
        const char* mensaje;
    };
    for (const Caso& c : {Caso{"llenado", SIGTERM, "tzorep: terminado con SIGTERM"},
                          Caso{"escritura", SIGINT, "tzorep: interrumpido con Ctrl-C (SIGINT)"}}) {
        SCOPED_TRACE(c.fase);
        const fs::path carpeta = tmp / c.fase;
        fs::create_directories(carpeta);
        std::optional<pruebas::Conexion> bloqueo;
        const int aviso = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
        ::inotify_add_watch(aviso, carpeta.c_str(), IN_CREATE);
        const bool enLlenado = std::string(c.fase) == "llenado";
        if (enLlenado) bloqueo = DetieneElLlenado();
        auto impresion = pruebas::lanzarTzorep(Imprime("", carpeta / "bitacora.pdf"));
        if (enLlenado) {
            ASSERT_TRUE(Espera([&] { return LlenadoEnEspera(); }));
        } else {
            // Stopped as soon as the writer makes its partial file.
            ASSERT_TRUE(Espera(
                [&] {
                    char buf[4096];
                    const ssize_t n = ::read(aviso, buf, sizeof buf);
                    for (ssize_t i = 0; i < n;) {
                        const auto* e = reinterpret_cast<const inotify_event*>(buf + i);
                        if (e->len && Contiene(e->name, ".parcial")) {
                            impresion->senal(SIGSTOP);
                            return true;
                        }
                        i += static_cast<ssize_t>(sizeof(inotify_event) + e->len);
                    }
                    return false;
                },
                60s));
            EXPECT_EQ(bd->tablasDeTrabajo(), 1);
        }
        ::close(aviso);
        impresion->senal(c.senal);
        impresion->senal(SIGCONT);
        const auto r = impresion->espera(30s);
        EXPECT_EQ(r.estado, 128 + c.senal) << r.errores;
        EXPECT_EQ(r.errores, std::string(c.mensaje) + "; no quedó nada a medias.\n");
        if (bloqueo) pruebas::ejecutar(bloqueo->get(), "ROLLBACK");
        EXPECT_EQ(Restos(), 0);
        // No partial file. The finished file may stand when the signal came after the writer
        // had already put it in place (the stop races the last page of a small report).
        for (const auto& e : fs::directory_iterator(carpeta))
            EXPECT_EQ(e.path().filename(), "bitacora.pdf") << e.path();
    }
}

// A print killed outright (SIGKILL) leaves its table; the next print recognises it as orphaned
// (its connection is gone) and drops it. A live print's table, on another connection, stays.
TEST_F(Fiabilidad, LaDeUnaImpresionMuertaSeBorraEnLaSiguienteYLaDeUnaVivaNo) {
    auto bloqueo = DetieneElLlenado();
    auto muerta = pruebas::lanzarTzorep(Imprime("ANA", tmp / "muerta.txt"));
    ASSERT_TRUE(Espera([&] { return LlenadoEnEspera(); }));
    muerta->senal(SIGKILL);
    EXPECT_EQ(muerta->espera().estado, 128 + SIGKILL);
    // Its connection lives on while its statement waits: nobody takes the table yet.
    EXPECT_EQ(Restos(), 2);
    pruebas::ejecutar(bloqueo.get(), "ROLLBACK");
    const std::string creador =
        bd->valor("SELECT Conexion FROM tanzoreportes.tablastrabajo WHERE Base=DATABASE()")
            .value_or("");
    ASSERT_FALSE(creador.empty());
    // The server ends the dead print's connection once its statement is done.
    ASSERT_TRUE(Espera([&] {
        return bd->valor("SELECT COUNT(*) FROM information_schema.PROCESSLIST WHERE ID=" +
                         creador) == "0";
    }));

    // Another workstation's print in progress: its table, registered by its live connection.
    auto viva = pruebas::conectar(bd->servidor(), bd->nombre());
    pruebas::ejecutar(viva.get(),
                      "CREATE TABLE tbltemp40 (a INT);"
                      "INSERT INTO tanzoreportes.tablastrabajo (Base, Tabla, Conexion, Arranque, "
                      "Usuario, Creada) VALUES (DATABASE(), 'tbltemp40', CONNECTION_ID(), NOW() - "
                      "INTERVAL (SELECT VARIABLE_VALUE FROM information_schema.GLOBAL_STATUS WHERE "
                      "VARIABLE_NAME='UPTIME') SECOND, CURRENT_USER(), NOW())");

    auto r = pruebas::ejecutarTzorep(Imprime("ANA", tmp / "siguiente.txt"));
    ASSERT_EQ(r.estado, 0) << r.errores;
    EXPECT_EQ(Folios(Lee(tmp / "siguiente.txt")).size(), 100u);
    EXPECT_EQ(bd->filas("SELECT TABLE_NAME FROM information_schema.TABLES WHERE "
                        "TABLE_SCHEMA=DATABASE() AND TABLE_NAME LIKE 'tbltemp%'"),
              (std::vector<std::vector<std::string>>{{"tbltemp40"}}));
    EXPECT_EQ(Restos(), 2);  // the live print's table and its row
}

// Bad input and a server that is down: one true message each, and no file.
TEST_F(Fiabilidad, UnMensajeVerdaderoPorCadaFalla) {
    struct Caso {
        const char* nombre;
        std::vector<std::string> args;
        int estado;
        std::string mensaje;
    };
    const std::string sinExtension = (tmp / ".pdf").string();
    const std::vector<Caso> casos = {
        {"texto que no es UTF-8",
         {"print", "BitacoraUsuarios", "--set", "txtDato(0)=AN\xff", "--to", "file", "--out",
          (tmp / "x.txt").string()},
         1,
         "Bitácora de usuarios: El dato 'Usuario' tiene caracteres que no son texto válido"},
        {"--out a una carpeta",
         {"print", "BitacoraUsuarios", "--to", "file", "--out", tmp.ruta().string()},
         2,
         "tzorep: --out nombra la carpeta " + tmp.ruta().string() +
             "; indique el archivo, por ejemplo --out " + (tmp / "BitacoraUsuarios.pdf").string()},
        {"--out sin nombre",
         {"print", "BitacoraUsuarios", "--to", "file", "--out", sinExtension},
         2,
         "tzorep: --out '" + sinExtension + "' no tiene nombre de archivo"},
    };
    for (const auto& c : casos) {
        SCOPED_TRACE(c.nombre);
        const auto antes =
            std::distance(fs::directory_iterator(tmp.ruta()), fs::directory_iterator());
        const auto r = Tzorep(c.args);
        EXPECT_EQ(r.estado, c.estado);
        EXPECT_EQ(r.errores.rfind(c.mensaje, 0), 0u) << r.errores;
        EXPECT_EQ(std::distance(fs::directory_iterator(tmp.ruta()), fs::directory_iterator()),
                  antes);
    }
    // The extension as the user wrote it.
    auto r =
        Tzorep({"print", "BitacoraUsuarios", "--to", "file", "--out", (tmp / "x.PDF").string()});
    ASSERT_EQ(r.estado, 0) << r.errores;
    EXPECT_EQ(r.salida, (tmp / "x.PDF").string() + "\n");
    EXPECT_TRUE(fs::exists(tmp / "x.PDF"));

    // The server is not there: the reason in Spanish and how to start it, once; show fails too.
    auto sv = bd->servidor();
    sv.puerto = 1;
    prueba::EscribeIni(tmp.ruta(), sv, bd->nombre());
    for (const char* orden : {"show", "print"}) {
        SCOPED_TRACE(orden);
        r = Tzorep({orden, "BitacoraUsuarios"});
        EXPECT_EQ(r.estado, 1);
        EXPECT_TRUE(Contiene(r.errores, "No se pudo abrir la base de datos de la empresa"));
        EXPECT_TRUE(Contiene(r.errores, "Conectar con el servidor " + sv.host + ":1 (base '" +
                                            bd->nombre() + "'): "))
            << r.errores;
        EXPECT_FALSE(Contiene(r.errores, "Can't")) << r.errores;
        EXPECT_TRUE(Contiene(r.errores, "¿Está arrancado el servidor? tzorep --home " +
                                            tmp.ruta().string() + " db start\n"))
            << r.errores;
        EXPECT_EQ(std::count(r.errores.begin(), r.errores.end(), '\n'), 1) << r.errores;
    }
}

// A template that does not read is refused when imported, with its line and column, and the
// stored one stays; a field the database lacks is reported with the template line that uses it.
TEST_F(Fiabilidad, PlantillaRotaRechazadaYCampoFaltanteConSuLinea) {
    const std::string buena = Lee(fs::path(TZ_SOURCE_DIR) / "templates" / "bitacoraus.rpt");
    fs::create_directories(tmp / "rota");
    std::ofstream(tmp / "rota" / "bitacoraus.rpt") << buena.substr(0, buena.size() / 2);
    auto r = Tzorep({"templates", "import", (tmp / "rota").string()});
    EXPECT_EQ(r.estado, 1);
    EXPECT_TRUE(Contiene(r.errores, "Plantilla 'bitacoraus.rpt', línea ")) << r.errores;
    EXPECT_TRUE(Contiene(r.errores, "el XML no es válido")) << r.errores;
    r = pruebas::ejecutarTzorep(Imprime("ANA", tmp / "sigue.txt"));
    EXPECT_EQ(r.estado, 0) << r.errores;

    std::string otra = buena;
    const std::string campo = "ref=\"bitacorausuarios.Accion\"";
    const auto pos = otra.find(campo);
    ASSERT_NE(pos, std::string::npos);
    otra.insert(pos + campo.size() - 1, "x");
    const int linea = 1 + static_cast<int>(std::count(otra.begin(), otra.begin() + pos, '\n'));
    fs::create_directories(tmp / "campo");
    std::ofstream(tmp / "campo" / "bitacoraus.rpt") << otra;
    ASSERT_EQ(Tzorep({"templates", "import", (tmp / "campo").string()}).estado, 0);
    r = pruebas::ejecutarTzorep(Imprime("ANA", tmp / "campo.txt"));
    EXPECT_EQ(r.estado, 1);
    EXPECT_TRUE(Contiene(r.errores, "bitacoraus.rpt', línea " + std::to_string(linea) +
                                        ": el campo 'bitacorausuarios.Accionx' no existe"))
        << r.errores;
    EXPECT_EQ(Restos(), 0);
}

// A server that stops answering (paused with SIGSTOP; a private server of this test's own, so
// that no other test waits for it) ends a print within [Servidor] TiempoDeEspera, with a message
// that says so, whether it was waiting on the C client (the fill) or on ODBC (the report's rows).
TEST(ServidorPausado, LaImpresionTerminaDentroDelTiempoDeEspera) {
    pruebas::CarpetaTemporal home;
    data::ServidorPrivado servidor(home / "servidor");
    const data::DatosServidor sv = servidor.iniciar();
    const int pid = servidor.estado().pid;
    struct Detiene {
        data::ServidorPrivado& s;
        int pid;
        ~Detiene() {
            ::kill(pid, SIGCONT);
            s.detener();
        }
    } detiene{servidor, pid};
    {
        auto c = pruebas::conectar(sv);
        pruebas::ejecutar(c.get(), std::string(prueba::kBasesCompartidas) +
                                       ";CREATE DATABASE empresa;USE empresa;" +
                                       prueba::kTablasEmpresa + ";" + Bitacora(40));
    }
    constexpr int kEspera = 2;
    prueba::EscribeIni(home.ruta(), sv, "empresa",
                       "[Servidor]\nTiempoDeEspera=" + std::to_string(kEspera) + "\n");
    auto r = pruebas::ejecutarTzorep({"--home", home.ruta().string(), "templates", "import",
                                      std::string(TZ_SOURCE_DIR) + "/templates"});
    ASSERT_EQ(r.estado, 0) << r.errores;

    // The C client: the fill, held up by a lock, then the server paused.
    auto bloqueo = pruebas::conectar(sv, "empresa");
    pruebas::ejecutar(bloqueo.get(), "START TRANSACTION");
    pruebas::filas(bloqueo.get(), "SELECT Id FROM bitacorausuarios WHERE Id=1 FOR UPDATE");
    auto impresion =
        pruebas::lanzarTzorep({"--home", home.ruta().string(), "print", "BitacoraUsuarios", "--to",
                               "file", "--out", (home / "b.pdf").string()});
    auto control = pruebas::conectar(sv);
    ASSERT_TRUE(Espera([&] {
        return pruebas::valor(control.get(),
                              "SELECT COUNT(*) FROM information_schema.PROCESSLIST WHERE INFO "
                              "LIKE 'INSERT INTO tbltemp%'") != "0";
    }));
    auto inicio = Reloj::now();
    ::kill(pid, SIGSTOP);
    r = impresion->espera(60s);
    const double cliente = Segundos(inicio);
    ::kill(pid, SIGCONT);
    EXPECT_EQ(r.estado, 1);
    EXPECT_TRUE(
        Contiene(r.errores, "el servidor no respondió en " + std::to_string(kEspera) + " segundos"))
        << r.errores;
    EXPECT_LT(cliente, kEspera + 3.0);
    pruebas::ejecutar(bloqueo.get(), "ROLLBACK");

    // ODBC: the report's rows read in blocks; the server paused between two.
    renderer::data::Opciones o;
    o.filasPorBloque = 5;
    o.leerAdelantado = false;
    o.segundosEspera = kEspera;
    renderer::data::DescripcionConsulta d;
    d.tablas = {{"bitacorausuarios", "empresa.bitacorausuarios"}};
    d.columnas = {{"bitacorausuarios", "Id"}};
    d.orden = {"+{bitacorausuarios.Id}"};
    auto filas = renderer::data::abrirOdbc(
        "DRIVER=/usr/lib/x86_64-linux-gnu/odbc/libmaodbc.so;SERVER=127.0.0.1;PORT=" +
            std::to_string(sv.puerto) + ";DB=empresa;UID=" + sv.usuario + ";PWD=" + sv.password,
        d, o);
    ASSERT_TRUE(filas->siguiente());
    inicio = Reloj::now();
    ::kill(pid, SIGSTOP);
    try {
        while (filas->siguiente()) {
        }
        ADD_FAILURE() << "se esperaba que la lectura fallara";
    } catch (const renderer::data::ErrorDatos& e) {
        EXPECT_TRUE(Contiene(
            e.what(), "el servidor no respondió en " + std::to_string(kEspera) + " segundos"))
            << e.what();
    }
    const double odbc = Segundos(inicio);
    ::kill(pid, SIGCONT);
    EXPECT_LT(odbc, kEspera + 3.0);
    std::cout << "Servidor pausado: la impresión terminó en " << cliente
              << " s, la lectura ODBC en " << odbc << " s (TiempoDeEspera=" << kEspera << ")\n";
}

}  // namespace
}  // namespace paratzorep::cli
