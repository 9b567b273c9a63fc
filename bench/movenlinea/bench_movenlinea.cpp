// The online movements engine's speed, by hand:
//   bench_movenlinea HOME [MOVIMIENTOS] [PAGOS] [HOME_CENTRAL]
// HOME is the tzorep home of a running private server (company databases); HOME_CENTRAL
// that of a second one for the central database (the same server when left out). It
// creates scratch databases there and drops them at the end.
//  1. A customer with MOVIMIENTOS statement rows (default 10,000) over a year, several a
//     day: the chain recomputed from its first row row by row (one UPDATE and one SELECT per
//     row) and in one statement (window functions), checked equal; then from the middle.
//  2. PAGOS documents (default 1,000) of store B copied to the central database
//     (GeneraCxCyEdoCta), paid at store A (GrabaPago) and applied by B
//     (AplicaPagosPendientes): documents, payments recorded and payments applied per second.
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>
#include <string>

#include "data/BaseDDMaria.h"
#include "data/ServidorPrivado.h"
#include "engines/MovEnLinea.h"
#include "schema/Esquema.h"
#include "session/Sesion.h"

using namespace paratzorep;

namespace {

double Ahora() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

std::shared_ptr<data::BaseDDMaria> Base(const data::DatosServidor& s, const std::string& base) {
    auto b = std::make_shared<data::BaseDDMaria>();
    b->cRuta = s.host;
    b->cPuerto = s.puerto;
    b->cUsuario = s.usuario;
    b->cPassword = s.password;
    b->cMiBase = base;
    return b;
}

engines::MovEnLinea Motor(const std::shared_ptr<data::BaseDDMaria>& base,
                          const std::string& clave) {
    session::sesion().ClaveEmpresa = clave;
    session::sesion().UserUsuario = "BENCH";
    engines::MovEnLinea m;
    m.deBdD = base;
    return m;
}

void Cadena(schema::Conexion& c, const data::DatosServidor& sv, const std::string& base, int n) {
    std::mt19937 az(7);
    c.ejecutar("INSERT INTO clientes (Clave) VALUES ('C001')");
    c.ejecutar("INSERT INTO saldoscli (Clave, IdMoneda) VALUES ('C001', 1)");
    std::string sql;
    for (int i = 0; i < n; ++i) {
        const double cargo = az() % 2 ? static_cast<double>(az() % 500000) / 100 : 0;
        const double pago = cargo == 0 ? static_cast<double>(az() % 300000) / 100 : 0;
        sql += std::string(sql.empty() ? "INSERT INTO edoctacli (Fecha, Clave, CantidadCargo, "
                                         "CantidadPago) VALUES "
                                       : ",") +
               "(DATE_ADD('2025-11-01', INTERVAL " + std::to_string(az() % 365) + " DAY),'C001'," +
               std::to_string(cargo) + "," + std::to_string(pago) + ")";
        if (sql.size() > 500000 || i == n - 1) {
            c.ejecutar(sql);
            sql.clear();
        }
    }
    const std::string primero = c.valor("SELECT Id FROM edoctacli ORDER BY Fecha, Id LIMIT 1");
    const std::string mitad = c.valor(
        "SELECT Id FROM edoctacli ORDER BY Fecha, Id LIMIT 1 OFFSET " + std::to_string(n / 2));
    auto bd = Base(sv, base);
    const std::string saldos = "SELECT Id, SaldoAnterior, SaldoActual FROM edoctacli ORDER BY Id";
    for (const auto& [que, desde] : {std::pair{"el primero", primero}, {"la mitad", mitad}}) {
        auto m = Motor(bd, "B");
        m.RecalculoPorRenglon = true;
        double t0 = Ahora();
        auto r = m.RecalculaEdoCta(std::stoll(desde));
        const double renglon = Ahora() - t0;
        const auto esperados = c.consultar(saldos);
        // Rows from the start on wiped; those before it keep the opening balance.
        c.ejecutar("UPDATE edoctacli e JOIN edoctacli d ON d.Id=" + desde +
                   " SET e.SaldoAnterior=-1, e.SaldoActual=-1 WHERE e.Fecha>d.Fecha OR "
                   "(e.Fecha=d.Fecha AND e.Id>=d.Id)");
        m.RecalculoPorRenglon = false;
        t0 = Ahora();
        auto r2 = m.RecalculaEdoCta(std::stoll(desde));
        const double conjunto = Ahora() - t0;
        const bool iguales = r.saldo == r2.saldo && r.movimientos == r2.movimientos &&
                             c.consultar(saldos) == esperados;
        std::printf(
            "cadena de %d movimientos desde %s (%lld recalculados): renglón por renglón "
            "%.3f s, en conjunto %.3f s (%.0fx); iguales: %s\n",
            n, que, static_cast<long long>(r.movimientos), renglon, conjunto, renglon / conjunto,
            iguales ? "sí" : "NO");
    }
}

void Pagos(schema::Conexion& b, const data::DatosServidor& sv, const data::DatosServidor& svCentral,
           const std::string& baseA, const std::string& baseB, const std::string& central, int n) {
    const auto cfg =
        std::filesystem::temp_directory_path() / ("bench-mel-" + std::to_string(::getpid()));
    std::filesystem::create_directories(cfg / "kvtz5");
    std::ofstream(cfg / "kvtz5" / "kvtz5.ini")
        << "[kvtz5]\nBasesDD=1\nSELservidor=" << svCentral.host
        << "\nSELpuerto=" << svCentral.puerto << "\nSELbaseDeDatos=" << central
        << "\nSELusuario=" << svCentral.usuario << "\nSELpassword=" << svCentral.password << "\n";
    ::setenv("XDG_CONFIG_HOME", cfg.c_str(), 1);
    auto bdA = Base(sv, baseA), bdB = Base(sv, baseB);
    Motor(bdA, "A").CrearBdDR();

    const int clientes = 50;
    std::string sql = "INSERT INTO clientes (Clave) VALUES ";
    for (int i = 1; i <= clientes; ++i)
        sql += (i > 1 ? ",('" : "('") + std::string("C") + std::to_string(1000 + i) + "')";
    b.ejecutar(sql);
    b.ejecutar("INSERT INTO saldoscli (Clave, IdMoneda) SELECT Clave, 1 FROM clientes");
    Motor(bdB, "B").AgregarClientesSEL();
    for (int i = 1; i <= n; ++i) {
        const std::string cli = "C" + std::to_string(1000 + (i % clientes) + 1);
        b.ejecutar("INSERT INTO facturas (Id, Factura, Fecha, Cliente, Total, Saldo) VALUES (" +
                   std::to_string(i) + "," + std::to_string(i) + ",CURDATE(),'" + cli +
                   "',1000,1000)");
        b.ejecutar("INSERT INTO edoctacli (Id, Folio, Fecha, Clave, CantidadCargo) VALUES (" +
                   std::to_string(i) + "," + std::to_string(i) + ",CURDATE(),'" + cli + "',1000)");
        b.ejecutar("INSERT INTO cxc (Id, Clave, Tipo, Numero, Saldo, Total) VALUES (" +
                   std::to_string(i) + ",'" + cli + "','F'," + std::to_string(i) + ",1000,1000)");
    }
    b.ejecutar(
        "UPDATE clientes c SET Saldo=(SELECT SUM(CantidadCargo) FROM edoctacli e WHERE "
        "e.Clave=c.Clave)");
    double t0 = Ahora();
    for (int i = 1; i <= n; ++i) Motor(bdB, "B").GeneraCxCyEdoCta(i, i, false, 1000, 1000, 0);
    const double copia = Ahora() - t0;
    auto cen = schema::Conexion::abrir(svCentral, central);
    const auto cxc = cen.consultar("SELECT Id, Clave, IdEmpresa FROM cxc ORDER BY Id");
    t0 = Ahora();
    for (const auto& f : cxc) {
        engines::DatosPago p;
        p.clave = *f[1];
        p.cantidad = 400;
        p.concepto = "PAGO EN LA TIENDA A";
        p.claveEmpresaDoc = "B";
        p.tipo = "F";
        p.numero = std::stoll(*f[2]);
        p.idCxC = std::stoll(*f[0]);
        Motor(bdA, "A").GrabaPago(p);
    }
    const double graba = Ahora() - t0;
    t0 = Ahora();
    const auto r = Motor(bdB, "B").AplicaPagosPendientes();
    const double aplica = Ahora() - t0;
    std::printf("%d documentos de B a la base central: %.2f s (%.0f/s)\n", n, copia, n / copia);
    std::printf("%zu pagos grabados en la tienda A: %.2f s (%.0f/s)\n", cxc.size(), graba,
                cxc.size() / graba);
    std::printf("%d pagos aplicados por B: %.2f s (%.0f/s), %d clientes de %d movimientos c/u\n",
                r.aplicados, aplica, r.aplicados / aplica, clientes, 2 * n / clientes);
    std::filesystem::remove_all(cfg);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::cerr << "Uso: bench_movenlinea HOME [MOVIMIENTOS] [PAGOS] [HOME_CENTRAL]\n";
        return 2;
    }
    const int n = argc > 2 ? std::atoi(argv[2]) : 10000;
    const int pagos = argc > 3 ? std::atoi(argv[3]) : 1000;
    try {
        const auto sv = *data::ServidorPrivado(argv[1]).estado().datos;
        const auto svCentral = argc > 4 ? *data::ServidorPrivado(argv[4]).estado().datos : sv;
        auto c = schema::Conexion::abrir(sv);
        auto cen = schema::Conexion::abrir(svCentral);
        const auto esquema = schema::carpetaEsquemas() / "empresa.sql";
        schema::recrearBase(c, "bench_mel_cadena", esquema);
        Cadena(c, sv, "bench_mel_cadena", n);
        auto a = schema::Conexion::abrir(sv), b = schema::Conexion::abrir(sv);
        schema::recrearBase(a, "bench_mel_a", esquema);
        schema::recrearBase(b, "bench_mel_b", esquema);
        cen.ejecutar("DROP DATABASE IF EXISTS bench_mel_central");
        if (pagos > 0)
            Pagos(b, sv, svCentral, "bench_mel_a", "bench_mel_b", "bench_mel_central", pagos);
        for (const char* base : {"bench_mel_cadena", "bench_mel_a", "bench_mel_b"})
            c.ejecutar(std::string("DROP DATABASE ") + base);
        cen.ejecutar("DROP DATABASE bench_mel_central");
    } catch (const std::exception& e) {
        std::cerr << "bench_movenlinea: " << e.what() << "\n";
        return 1;
    }
    return 0;
}
