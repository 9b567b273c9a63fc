// The online movements engine on two real servers: stores A and B, two company databases on
// the run's server, share a central database on a second private server that the test starts
// itself (tzorep --home DIR2 db start) and stops. Store B copies its customers and documents;
// store A takes payments for B's documents; B applies them with `tzorep movenlinea aplicar`.
// Then the faults: the central server down at the start, killed in the middle of an
// application, and the retry.
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>

#include <chrono>
#include <fstream>
#include <thread>

#include "data/ServidorPrivado.h"
#include "engines/MovEnLinea.h"
#include "session/Sesion.h"
#include "support/Soporte.h"
#include "support/TablasDeEmpresa.h"

namespace paratzorep::cli {
namespace {

using engines::MovEnLinea;
using pruebas::CarpetaTemporal;

bool Contiene(const std::string& texto, const std::string& parte) {
    return texto.find(parte) != std::string::npos;
}

// A second private server under a temporary home of its own; its data folder is a copy of the
// run's initialised one when there is one (test-home-central), which spares the initialisation.
class ServidorCentral {
  public:
    ServidorCentral() {
        const std::filesystem::path plantilla = std::string(TZ_TEST_HOME) + "-central";
        std::error_code ec;
        if (std::filesystem::exists(plantilla / "servidor.conf") &&
            !data::ServidorPrivado(plantilla).estado().corriendo) {
            std::filesystem::copy(plantilla / "mariadb", home_.ruta() / "mariadb",
                                  std::filesystem::copy_options::recursive, ec);
            std::filesystem::copy_file(plantilla / "servidor.conf", home_.ruta() / "servidor.conf",
                                       ec);
            if (ec) {
                std::filesystem::remove_all(home_.ruta() / "mariadb");
                std::filesystem::remove(home_.ruta() / "servidor.conf");
            }
        }
        Arranca();
    }
    ~ServidorCentral() { pruebas::ejecutarTzorep({"--home", home_.ruta().string(), "db", "stop"}); }

    void Arranca() {
        auto r = pruebas::ejecutarTzorep({"--home", home_.ruta().string(), "db", "start"});
        if (r.estado != 0) throw std::runtime_error("el servidor central no arrancó: " + r.errores);
        datos_ = *data::ServidorPrivado(home_.ruta()).estado().datos;
    }
    // SIGKILL, as a crash would stop it, and waits until it is gone.
    void Mata() {
        data::ServidorPrivado s(home_.ruta());
        const int pid = s.estado().pid;
        ASSERT_GT(pid, 0);
        ::kill(pid, SIGKILL);
        for (int i = 0; i < 500 && s.estado().corriendo; ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        ASSERT_FALSE(s.estado().corriendo);
    }
    const data::DatosServidor& datos() const { return datos_; }

  private:
    CarpetaTemporal home_;
    data::DatosServidor datos_;
};

// One store: its company database on the run's server, a tzorep home pointing at it.
struct Tienda {
    explicit Tienda(std::string c) : clave(std::move(c)) {
        pruebas::cargarTablasDeEmpresa(
            bd.mysql(), {"clientes", "saldoscli", "edoctacli", "cxc", "facturas", "remisiones",
                         "anexopagosctes", "configura", "pagossel"});
        const auto& sv = pruebas::servidorDePrueba();
        std::ofstream(home.ruta() / "tzorep.ini")
            << "[Iniciales]\nClaveEmpresa=" << clave << "\n[BaseDD]\ncRuta=" << sv.host
            << "\ncUsuario=" << sv.usuario << "\ncPassword=" << sv.password
            << "\ncPuerto=" << sv.puerto << "\ncMiBase=" << bd.nombre() << "\n";
        base = pruebas::baseDD(sv, bd.nombre());
    }
    // The engine as this store's host would create it.
    MovEnLinea Motor() {
        session::sesion().ClaveEmpresa = clave;
        session::sesion().DatosConecte.reset();
        session::sesion().UserUsuario = "CAJA" + clave;
        MovEnLinea m;
        m.deBdD = base;
        return m;
    }
    std::string valor(const std::string& sql) const { return bd.valor(sql).value_or("NULL"); }
    // Every table's checksum: equal before and after means nothing changed.
    std::vector<std::vector<std::string>> Huella() const {
        const std::string tablas = valor(
            "SELECT GROUP_CONCAT(TABLE_NAME) FROM information_schema.TABLES WHERE "
            "TABLE_SCHEMA=DATABASE()");
        return bd.filas("CHECKSUM TABLE " + tablas);
    }

    std::string clave;
    pruebas::BaseDeDatosDePrueba bd;
    CarpetaTemporal home;
    std::shared_ptr<data::BaseDDMaria> base;
};

class DosServidores : public ::testing::Test {
  protected:
    void SetUp() override {
        EscribeRegistro();
        ::setenv("XDG_CONFIG_HOME", config.ruta().c_str(), 1);

        // B has two customers before it goes online.
        b.bd.ejecutar(
            "INSERT INTO clientes (Id, Clave, Nombre, Saldo) VALUES (1, 'C001', 'ANA LOPEZ', 0),"
            " (2, 'C002', 'BETO RUIZ', 500);"
            "INSERT INTO saldoscli VALUES ('C001', 1, 0), ('C002', 1, 500);"
            "INSERT INTO edoctacli (Id, Folio, Foliote, Movimiento, Fecha, Clave, CantidadCargo, "
            "Concepto, SaldoActual) VALUES (1, 1, 1, 1, CURDATE() - INTERVAL 30 DAY, 'C002', "
            "500, 'SALDO ANTERIOR', 500)");
        ASSERT_EQ(a.Motor().CrearBdDR().tablasCreadas, 6);
        const auto otra = b.Motor().CrearBdDR();
        EXPECT_EQ(otra.tablasCreadas, 0);
        EXPECT_TRUE(otra.sentencias.empty()) << otra.sentencias.front();
        auto r = Tzorep(b, {"movenlinea", "clientes"});
        ASSERT_EQ(r.estado, 0) << r.errores;
        EXPECT_EQ(r.salida, "Clientes a la base central: 2 copiados, 0 ya estaban (de 2)\n");

        // Then it sells: two invoices and a charge, each copied to the central database.
        b.bd.ejecutar(
            "INSERT INTO facturas (Id, Factura, Fecha, Cliente, Credito, Total, Saldo, Vence) "
            "VALUES (1, 101, CURDATE(), 'C001', 1, 1000, 1000, CURDATE() + INTERVAL 30 DAY),"
            " (2, 102, CURDATE(), 'C001', 1, 250.5, 250.5, CURDATE() + INTERVAL 30 DAY);"
            "INSERT INTO edoctacli (Id, Folio, Foliote, Movimiento, Fecha, Clave, CantidadCargo, "
            "Concepto, SaldoAnterior, SaldoActual) VALUES"
            " (2, 2, 2, 1, CURDATE(), 'C001', 1000, 'FACTURA 101', 0, 1000),"
            " (3, 3, 3, 2, CURDATE(), 'C001', 250.5, 'FACTURA 102', 1000, 1250.5),"
            " (4, 4, 4, 3, CURDATE(), 'C001', 100, 'CARGO POR INTERESES MORATORIOS', 1250.5, "
            "1350.5);"
            "INSERT INTO cxc (Id, Clave, Fecha, Tipo, Numero, Saldo, Total) VALUES"
            " (1, 'C001', CURDATE(), 'F', 1, 1000, 1000), (2, 'C001', CURDATE(), 'F', 2, 250.5, "
            "250.5), (3, 'C001', CURDATE(), 'C', 4, 100, 100);"
            "UPDATE clientes SET Saldo=1350.5 WHERE Clave='C001';"
            "UPDATE saldoscli SET Saldo=1350.5 WHERE Clave='C001'");
        EXPECT_GT(b.Motor().GeneraCxCyEdoCta(2, 1, false, 1000, 1000, 10), 0);
        EXPECT_GT(b.Motor().GeneraCxCyEdoCta(3, 2, false, 250.5, 250.5, 0), 0);
        EXPECT_GT(b.Motor().GeneraCxCyEdoCta(4, 0, false, 100, 100, 0), 0);
        EXPECT_EQ(Central("SELECT CONCAT(Saldo,' ',SusPuntos) FROM clientes WHERE Clave='C001'"),
                  "1350.5 10");
        EXPECT_EQ(Central("SELECT GROUP_CONCAT(CONCAT(Tipo,IdEmpresa,':',Saldo) ORDER BY Id) FROM "
                          "cxc WHERE ClaveEmpresa='B'"),
                  "F1:1000,F2:250.5,C3:100");

        // Store A takes three payments for B's documents; the second leaves 0.50.
        Paga("F", 1, 400, "PAGO A FACTURA 101");
        Paga("F", 2, 250, "PAGO A FACTURA 102");
        Paga("C", 4, 100, "PAGO A CARGO 4");
    }

    void EscribeRegistro() {
        const auto& d = central.datos();
        std::filesystem::create_directories(config / "kvtz5");
        std::ofstream(config / "kvtz5" / "kvtz5.ini")
            << "[kvtz5]\nBasesDD=1\nSELservidor=" << d.host << "\nSELpuerto=" << d.puerto
            << "\nSELbaseDeDatos=central\nSELusuario=" << d.usuario
            << "\nSELpassword=" << d.password << "\n";
    }

    std::string Central(const std::string& sql) {
        auto m = pruebas::conectar(central.datos(), "central");
        return pruebas::valor(m.get(), sql).value_or("NULL");
    }

    std::int64_t Paga(const std::string& tipo, std::int64_t numero, double cantidad,
                      const std::string& concepto) {
        engines::DatosPago p;
        p.clave = "C001";
        p.cantidad = cantidad;
        p.concepto = concepto;
        p.concepto2 = "RECIBIDO EN LA TIENDA A";
        p.claveEmpresaDoc = "B";
        p.tipo = tipo;
        p.numero = numero;
        p.idCxC =
            std::stoll(Central("SELECT Id FROM cxc WHERE ClaveEmpresa='B' AND Tipo='" + tipo +
                               "' AND IdEmpresa=" + (tipo == "C" ? "3" : std::to_string(numero))));
        return a.Motor().GrabaPago(p);
    }

    pruebas::ResultadoPrograma Tzorep(const Tienda& t, const std::vector<std::string>& args) {
        std::vector<std::string> todo = {"--home", t.home.ruta().string()};
        todo.insert(todo.end(), args.begin(), args.end());
        return pruebas::ejecutarTzorep(todo, {{"XDG_CONFIG_HOME", config.ruta().string()}});
    }

    // What store B must hold once the three payments are applied, once each.
    void BTieneLosTresPagosUnaVez() {
        EXPECT_EQ(b.valor("SELECT GROUP_CONCAT(CONCAT(Id,':',Saldo) ORDER BY Id) FROM cxc"),
                  "1:600");
        EXPECT_EQ(
            b.valor("SELECT GROUP_CONCAT(CONCAT(Saldo,'/',Pagado) ORDER BY Id) FROM facturas"),
            "600/400,0/250");
        EXPECT_EQ(b.valor("SELECT GROUP_CONCAT(CONCAT(Folio,':',CantidadPago,':',Concepto,':',"
                          "Concepto2) ORDER BY Id) FROM edoctacli WHERE CantidadPago>0"),
                  "5:400:PAGO A FACTURA 101:RECIBIDO EN LA TIENDA A,"
                  "6:250:PAGO A FACTURA 102:RECIBIDO EN LA TIENDA A,"
                  "7:100:PAGO A CARGO 4:RECIBIDO EN LA TIENDA A");
        EXPECT_EQ(b.valor("SELECT GROUP_CONCAT(CONCAT(FolioDelPago,':',Tipo,':',Factura,':',Cargo,"
                          "':',Cantidad,':',Saldo) ORDER BY Id) FROM anexopagosctes"),
                  "5:F:1:0:400:600,6:F:2:0:250:0,7:C:0:4:100:0");
        EXPECT_EQ(b.valor("SELECT COUNT(*) FROM pagossel"), "3");
        // The chain: each row opens with the previous row's balance and ends at 600.50.
        EXPECT_EQ(
            b.valor("SELECT COUNT(*) FROM (SELECT SaldoAnterior, SaldoActual, CantidadCargo, "
                    "CantidadPago, COALESCE(LAG(SaldoActual) OVER (ORDER BY Fecha, Id), 0) p "
                    "FROM edoctacli WHERE Clave='C001') c WHERE ABS(SaldoAnterior-p)>0.001 OR "
                    "ABS(SaldoActual-IF(CantidadCargo<>0, p+CantidadCargo, p-CantidadPago))"
                    ">0.001"),
            "0");
        EXPECT_EQ(b.valor("SELECT SaldoActual FROM edoctacli WHERE Clave='C001' ORDER BY Fecha "
                          "DESC, Id DESC LIMIT 1"),
                  "600.5");
        EXPECT_EQ(
            b.valor("SELECT CONCAT(c.Saldo,' ',s.Saldo,' ',c.UltPago=CURDATE()) FROM clientes "
                    "c JOIN saldoscli s ON s.Clave=c.Clave AND s.IdMoneda=1 WHERE "
                    "c.Clave='C001'"),
            "600.5 600.5 1");
        EXPECT_EQ(Central("SELECT GROUP_CONCAT(Aplicado ORDER BY Id) FROM edoctacli WHERE "
                          "Clave2Empresa='B'"),
                  "1,1,1");
        EXPECT_EQ(b.valor("SELECT Valor FROM configura WHERE Dato='FolioSEL'"),
                  Central("SELECT MAX(Id) FROM edoctacli WHERE Clave2Empresa='B'"));
    }

    ServidorCentral central;
    CarpetaTemporal config;
    Tienda a{"A"}, b{"B"};
};

TEST_F(DosServidores, UnPagoDeLaTiendaAAUnDocumentoDeBSeAplicaUnaVez) {
    // A's payments lowered the central ledger and documents; the 0.50 left closed invoice 102.
    EXPECT_EQ(Central("SELECT GROUP_CONCAT(CONCAT(Tipo,IdEmpresa,':',Saldo)) FROM cxc"), "F1:600");
    EXPECT_EQ(Central("SELECT GROUP_CONCAT(Saldo ORDER BY IdEmpresa) FROM facturas"), "600,0");
    EXPECT_EQ(Central("SELECT GROUP_CONCAT(CONCAT(ClaveEmpresa,Clave2Empresa,Tipo,Numero,':',"
                      "IdCxCemp,':',Aplicado) ORDER BY Id) FROM edoctacli WHERE CantidadPago>0"),
              "ABF1:1:0,ABF2:2:0,ABC4:3:0");
    EXPECT_EQ(Central("SELECT SaldoActual FROM edoctacli WHERE Clave='C001' ORDER BY Fecha DESC, "
                      "Id DESC LIMIT 1"),
              "600.5");

    auto r = Tzorep(b, {"movenlinea", "aplicar"});
    ASSERT_EQ(r.estado, 0) << r.errores;
    const std::string folio = Central("SELECT MAX(Id) FROM edoctacli");
    EXPECT_EQ(r.salida,
              "Pagos de otras empresas: 3 aplicados por 750.00; FolioSEL " + folio + "\n");
    BTieneLosTresPagosUnaVez();

    const auto antes = b.Huella();
    r = Tzorep(b, {"movenlinea", "aplicar"});
    ASSERT_EQ(r.estado, 0) << r.errores;
    EXPECT_EQ(r.salida, "Pagos de otras empresas: 0 aplicados por 0.00; FolioSEL " + folio + "\n");
    EXPECT_EQ(b.Huella(), antes);

    // A payment for a document that is closed, or of another owner, is refused centrally.
    const std::string movimientos = Central("SELECT COUNT(*) FROM edoctacli");
    EXPECT_THROW(Paga("F", 2, 1, "OTRA VEZ"), std::exception);
    engines::DatosPago p;
    p.clave = "C001";
    p.cantidad = 10;
    p.claveEmpresaDoc = "A";
    p.tipo = "F";
    p.numero = 1;
    p.idCxC = std::stoll(Central("SELECT Id FROM cxc"));
    try {
        a.Motor().GrabaPago(p);
        ADD_FAILURE() << "grabó un pago de un documento ajeno";
    } catch (const engines::ErrorMovEnLinea& e) {
        EXPECT_TRUE(Contiene(e.what(), "no se grabó el pago")) << e.what();
    }
    EXPECT_EQ(Central("SELECT COUNT(*) FROM edoctacli"), movimientos);
}

TEST_F(DosServidores, ElServidorCentralCaidoNoCambiaNadaYMuertoAMitadSeReanudaSinRepetir) {
    MovEnLinea motor = b.Motor();
    motor.AlAplicar = [&](std::int64_t, int hechos, int) {
        if (hechos == 2) central.Mata();
    };
    try {
        motor.AplicaPagosPendientes();
        ADD_FAILURE() << "siguió sin el servidor central";
    } catch (const engines::ErrorMovEnLinea& e) {
        EXPECT_TRUE(Contiene(e.what(), "2 aplicados en esta ejecución")) << e.what();
    }
    // The second payment is applied in B (committed before its central mark), the third not.
    EXPECT_EQ(b.valor("SELECT COUNT(*) FROM pagossel"), "2");
    EXPECT_EQ(b.valor("SELECT COUNT(*) FROM anexopagosctes"), "2");
    EXPECT_EQ(b.valor("SELECT COUNT(*) FROM configura WHERE Dato='FolioSEL'"), "0");

    // With the central server down nothing starts, and B is left as it was.
    const auto antes = b.Huella();
    for (const char* op : {"crear", "clientes", "aplicar"}) {
        auto r = Tzorep(b, {"movenlinea", op});
        EXPECT_EQ(r.estado, 1) << op;
        EXPECT_TRUE(Contiene(r.errores,
                             "Movimientos en línea: No se pudo conectar con la base de "
                             "datos central 'central' del servidor '127.0.0.1'"))
            << r.errores;
        EXPECT_TRUE(Contiene(r.errores, "No se cambió nada en la base de datos de la empresa."))
            << r.errores;
        EXPECT_TRUE(r.salida.empty()) << r.salida;
    }
    EXPECT_EQ(b.Huella(), antes);

    // Back up (on another port): the first is marked, the second was applied but not marked.
    central.Arranca();
    EscribeRegistro();
    EXPECT_EQ(Central("SELECT GROUP_CONCAT(Aplicado ORDER BY Id) FROM edoctacli WHERE "
                      "Clave2Empresa='B'"),
              "1,0,0");
    auto r = Tzorep(b, {"movenlinea", "aplicar"});
    ASSERT_EQ(r.estado, 0) << r.errores;
    EXPECT_TRUE(Contiene(r.salida, "1 aplicados por 100.00, 1 ya aplicados antes")) << r.salida;
    BTieneLosTresPagosUnaVez();
}

TEST(MovEnLineaCli, ErroresDeUsoSalenCon2) {
    CarpetaTemporal home;
    for (const std::vector<std::string>& args :
         std::vector<std::vector<std::string>>{{},
                                               {"sincronizar"},
                                               {"recalcular"},
                                               {"recalcular", "abc"},
                                               {"recalcular", "0"},
                                               {"saldo"},
                                               {"aplicar", "de_mas"}}) {
        std::vector<std::string> todo = {"--home", home.ruta().string(), "movenlinea"};
        todo.insert(todo.end(), args.begin(), args.end());
        auto r = pruebas::ejecutarTzorep(todo);
        EXPECT_EQ(r.estado, 2) << (args.empty() ? "" : args[0]) << "\n" << r.errores;
        EXPECT_TRUE(Contiene(r.errores, "Uso: tzorep [--home CARPETA] movenlinea")) << r.errores;
        EXPECT_TRUE(r.salida.empty()) << r.salida;
    }
}

TEST(MovEnLineaCli, RecalculaYSaldoEnLaEmpresaYSinBaseCentralNoHaceNada) {
    Tienda t("B");
    CarpetaTemporal config;
    std::filesystem::create_directories(config / "kvtz5");
    std::ofstream(config / "kvtz5" / "kvtz5.ini") << "[kvtz5]\nBasesDD=0\n";
    t.bd.ejecutar(
        "INSERT INTO clientes (Clave, Saldo) VALUES ('C001', 0);"
        "INSERT INTO saldoscli VALUES ('C001', 1, 3);"
        "INSERT INTO edoctacli (Id, Fecha, Clave, CantidadCargo, CantidadPago) VALUES"
        " (1, '2026-03-01', 'C001', 100, 0), (2, '2026-03-01', 'C001', 0, 30)");
    auto corre = [&](std::vector<std::string> args) {
        args.insert(args.begin(), {"--home", t.home.ruta().string(), "movenlinea"});
        return pruebas::ejecutarTzorep(args, {{"XDG_CONFIG_HOME", config.ruta().string()}});
    };
    auto r = corre({"recalcular", "1"});
    EXPECT_EQ(r.estado, 0) << r.errores;
    EXPECT_EQ(r.salida,
              "Estado de cuenta de C001 (moneda 1): 2 movimientos recalculados desde el "
              "1, saldo final 70.00\n");
    EXPECT_EQ(t.valor("SELECT CONCAT(c.Saldo,' ',s.Saldo) FROM clientes c, saldoscli s"), "70 70");

    t.bd.ejecutar("UPDATE saldoscli SET Saldo=1");
    r = corre({"saldo", "C001"});
    EXPECT_EQ(r.salida, "saldoscli de C001 igualado a clientes.Saldo\n");
    r = corre({"saldo", "C001"});
    EXPECT_TRUE(Contiene(r.salida, "saldoscli de C001 sin cambios")) << r.salida;

    r = corre({"saldo", "O'HARA"});
    EXPECT_EQ(r.estado, 1);
    EXPECT_TRUE(Contiene(r.errores,
                         "Movimientos en línea: La clave del cliente 'O'HARA' no es "
                         "válida"))
        << r.errores;
    r = corre({"recalcular", "99"});
    EXPECT_EQ(r.estado, 1);
    EXPECT_TRUE(Contiene(r.errores, "no existe el movimiento 99")) << r.errores;
    r = corre({"aplicar"});
    EXPECT_EQ(r.estado, 1);
    EXPECT_TRUE(Contiene(r.errores, "la base de datos central no está en uso")) << r.errores;
}

}  // namespace
}  // namespace paratzorep::cli
