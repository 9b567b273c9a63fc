// The statement recomputation on real chains, row by row and in one statement: several
// movements on one date, a row with both a charge and a payment, a first movement, a payment
// captured late; the exact statements of the row-by-row pass; both passes equal on a long
// chain; the balance table.
#include <gtest/gtest.h>

#include <random>
#include <tuple>

#include "Empresa.h"
#include "support/NombresDeCaso.h"

namespace paratzorep::engines {
namespace {

using prueba::Empresa;

struct Mov {
    int id;
    const char* fecha;
    double cargo, pago;
    const char* clave = "C001";
    int moneda = 1;
};

struct Saldos {
    int id;
    double anterior, actual;
};

struct Cadena {
    const char* nombre;
    std::vector<Mov> movs;
    int desde;
    std::vector<Saldos> esperados;  // every row, by Id; rows before `desde` start right
    double saldoCliente;
};

// Rows before the start in the chain's order hold their right balances; the rest start
// wrong (999).
void Carga(Empresa& e, const Cadena& c) {
    std::string sql =
        "INSERT INTO clientes (Clave, Saldo) VALUES ('C001', 999), ('C002', 7);"
        "INSERT INTO saldoscli (Clave, IdMoneda, Saldo) VALUES ('C001', 1, 999), ('C001', 2, 5);";
    const Mov* inicio = nullptr;
    for (const Mov& m : c.movs)
        if (m.id == c.desde) inicio = &m;
    auto antes = [&](const Mov& m) {
        return std::tie(m.clave, m.moneda) == std::tie(inicio->clave, inicio->moneda) &&
               std::make_pair(std::string(m.fecha), m.id) <
                   std::make_pair(std::string(inicio->fecha), inicio->id);
    };
    for (const Mov& m : c.movs) {
        double ant = 999, act = 999;
        for (const Saldos& s : c.esperados)
            if (s.id == m.id && antes(m)) ant = s.anterior, act = s.actual;
        sql +=
            "INSERT INTO edoctacli (Id, Folio, Fecha, Clave, CantidadCargo, CantidadPago, "
            "IdMoneda, SaldoAnterior, SaldoActual) VALUES (" +
            std::to_string(m.id) + "," + std::to_string(m.id) + ",'" + m.fecha + "','" + m.clave +
            "'," + std::to_string(m.cargo) + "," + std::to_string(m.pago) + "," +
            std::to_string(m.moneda) + "," + std::to_string(ant) + "," + std::to_string(act) + ");";
    }
    e.bd.ejecutar(sql);
}

const std::vector<Cadena> kCadenas = {
    {"varios movimientos en una fecha se encadenan por Id",
     {{1, "2026-03-01", 100, 0},
      {2, "2026-03-05", 50, 0},
      {3, "2026-03-07", 0, 40},
      {4, "2026-03-05", 0, 30},
      {5, "2026-03-05", 20, 0},
      {6, "2026-03-05", 1, 0, "C002"},
      {7, "2026-03-05", 2, 0, "C001", 2}},
     2,
     {{1, 0, 100},
      {2, 100, 150},
      {3, 140, 100},
      {4, 150, 120},
      {5, 120, 140},
      {6, 999, 999},
      {7, 999, 999}},
     100},
    {"desde la mitad de una fecha abre con el anterior de esa fecha",
     {{1, "2026-03-01", 100, 0},
      {2, "2026-03-05", 50, 0},
      {4, "2026-03-05", 0, 30},
      {5, "2026-03-05", 20, 0},
      {3, "2026-03-07", 0, 40}},
     4,
     {{1, 0, 100}, {2, 100, 150}, {3, 140, 100}, {4, 150, 120}, {5, 120, 140}},
     100},
    {"un renglon con cargo y pago cuenta solo el cargo",
     {{1, "2026-03-01", 100, 0}, {2, "2026-03-02", 50, 50}, {3, "2026-03-03", 0, 25.25}},
     1,
     {{1, 0, 100}, {2, 100, 150}, {3, 150, 124.75}},
     124.75},
    {"el primer movimiento abre en cero",
     {{1, "2026-03-01", 10.5, 0}, {2, "2026-03-01", 0, 0.5}},
     1,
     {{1, 0, 10.5}, {2, 10.5, 10}},
     10},
    {"un pago capturado tarde con fecha anterior va en su fecha",
     {{1, "2026-03-10", 100, 0}, {2, "2026-03-12", 10, 0}, {3, "2026-03-11", 0, 30}},
     3,
     {{1, 0, 100}, {2, 70, 80}, {3, 100, 70}},
     80},
};

class Recalculo : public ::testing::TestWithParam<std::tuple<Cadena, bool>> {};

TEST_P(Recalculo, DejaLaCadenaYLosSaldosDelCliente) {
    const auto& [c, porRenglon] = GetParam();
    Empresa e;
    Carga(e, c);
    MovEnLinea m = e.Motor();
    m.RecalculoPorRenglon = porRenglon;
    const ResumenRecalculo r = m.RecalculaEdoCta(c.desde);
    EXPECT_TRUE(r.encontrado);
    EXPECT_EQ(r.clave, "C001");
    EXPECT_DOUBLE_EQ(r.saldo, c.saldoCliente);
    for (const Saldos& s : c.esperados) {
        const auto f = e.bd.filas("SELECT SaldoAnterior, SaldoActual FROM edoctacli WHERE Id=" +
                                  std::to_string(s.id));
        EXPECT_DOUBLE_EQ(std::stod(f[0][0]), s.anterior) << "Id " << s.id;
        EXPECT_DOUBLE_EQ(std::stod(f[0][1]), s.actual) << "Id " << s.id;
    }
    EXPECT_DOUBLE_EQ(std::stod(e.valor("SELECT Saldo FROM clientes WHERE Clave='C001'")),
                     c.saldoCliente);
    EXPECT_DOUBLE_EQ(std::stod(e.valor("SELECT Saldo FROM saldoscli WHERE Clave='C001' AND "
                                       "IdMoneda=1")),
                     c.saldoCliente);
    EXPECT_EQ(e.valor("SELECT Saldo FROM saldoscli WHERE Clave='C001' AND IdMoneda=2"), "5");
    EXPECT_EQ(e.valor("SELECT Saldo FROM clientes WHERE Clave='C002'"), "7");
}

INSTANTIATE_TEST_SUITE_P(Cadenas, Recalculo,
                         ::testing::Combine(::testing::ValuesIn(kCadenas), ::testing::Bool()),
                         [](const auto& info) {
                             return pruebas::NombreUnico(
                                 pruebas::NombreDeCaso(std::get<0>(info.param).nombre) +
                                     (std::get<1>(info.param) ? "_por_renglon" : "_en_conjunto"),
                                 info.index);
                         });

TEST(RecalculoPorRenglon, CorreLasSentenciasDelSistemaUnaPorUna) {
    Empresa e;
    Cadena c = kCadenas[2];
    c.desde = 2;
    Carga(e, c);
    MovEnLinea m = e.Motor();
    m.RecalculoPorRenglon = true;
    e.base->grabando = true;
    m.RecalculaEdoCta(2);
    const std::vector<std::string> esperadas = {
        "START TRANSACTION",
        "edoctacli WHERE Id=2",
        "edoctacli WHERE Clave='C001' and IdMoneda=1 and Fecha='2026-03-02' and Id<2 ORDER BY "
        "Fecha DESC,Id DESC LIMIT 1",
        "edoctacli WHERE Clave='C001' and IdMoneda=1 and Fecha<'2026-03-02' ORDER BY Fecha "
        "DESC,Id DESC LIMIT 1",
        "UPDATE edoctacli SET SaldoActual=150,SaldoAnterior=100 WHERE Id=2",
        "edoctacli WHERE IdMoneda=1 AND Clave='C001' AND (Fecha='2026-03-02' AND Id>2 OR "
        "Fecha>'2026-03-02') ORDER BY Fecha,Id LIMIT 1",
        "UPDATE edoctacli SET SaldoActual=124.75,SaldoAnterior=150 WHERE Id=3",
        "edoctacli WHERE IdMoneda=1 AND Clave='C001' AND (Fecha='2026-03-03' AND Id>3 OR "
        "Fecha>'2026-03-03') ORDER BY Fecha,Id LIMIT 1",
        "UPDATE clientes SET Saldo=124.75 WHERE Clave='C001'",
        "saldoscli WHERE Clave='C001' AND IdMoneda=1",
        "SELECT * FROM clientes WHERE Clave='C001'",
        "UPDATE saldoscli SET Saldo=124.75 WHERE Clave='C001' AND IdMoneda=1",
        "COMMIT"};
    EXPECT_EQ(e.base->vistas, esperadas);
}

TEST(RecalculoEnConjunto, DaLosMismosSaldosQueRenglonPorRenglonEnUnaCadenaLarga) {
    Empresa e;
    std::mt19937 az(20261123);
    std::string sql =
        "INSERT INTO clientes (Clave) VALUES ('C001');"
        "INSERT INTO saldoscli (Clave, IdMoneda) VALUES ('C001', 1);"
        "INSERT INTO edoctacli (Fecha, Clave, CantidadCargo, CantidadPago) VALUES ";
    for (int i = 0; i < 600; ++i) {
        const int dia = static_cast<int>(az() % 40);
        const double cargo = az() % 3 == 0 ? static_cast<double>(az() % 100000) / 100 : 0;
        const double pago =
            cargo == 0 || az() % 5 == 0 ? static_cast<double>(az() % 50000) / 100 : 0;
        sql += std::string(i ? "," : "") + "(DATE_ADD('2026-01-01', INTERVAL " +
               std::to_string(dia) + " DAY),'C001'," + std::to_string(cargo) + "," +
               std::to_string(pago) + ")";
    }
    e.bd.ejecutar(sql);
    const std::string primero = e.valor("SELECT Id FROM edoctacli ORDER BY Fecha, Id LIMIT 1");
    const std::string mitad =
        e.valor("SELECT Id FROM edoctacli ORDER BY Fecha, Id LIMIT 1 OFFSET 300");
    const std::string saldos = "SELECT Id, SaldoAnterior, SaldoActual FROM edoctacli ORDER BY Id";
    for (const std::string& desde : {primero, mitad}) {
        SCOPED_TRACE("desde el movimiento " + desde);
        MovEnLinea m = e.Motor();
        m.RecalculoPorRenglon = true;
        m.RecalculaEdoCta(std::stoll(desde));
        const auto porRenglon = e.bd.filas(saldos);
        e.bd.ejecutar(
            "UPDATE edoctacli SET SaldoAnterior=0, SaldoActual=0 WHERE (Fecha, Id) >= "
            "(SELECT Fecha, Id FROM (SELECT Fecha, Id FROM edoctacli WHERE Id=" +
            desde + ") d)");
        m.RecalculoPorRenglon = false;
        const ResumenRecalculo r = m.RecalculaEdoCta(std::stoll(desde));
        EXPECT_EQ(e.bd.filas(saldos), porRenglon);
        EXPECT_EQ(r.movimientos, desde == primero ? 600 : 300);
    }
}

struct CasoSaldo {
    const char* nombre;
    const char* datos;
    bool cambia;
    const char* saldoscli;
};

class ActualizaSaldo : public ::testing::TestWithParam<CasoSaldo> {};

TEST_P(ActualizaSaldo, IgualaSaldoscliAlCliente) {
    Empresa e;
    e.bd.ejecutar(GetParam().datos);
    EXPECT_EQ(e.Motor().ActualizaSaldo("C001"), GetParam().cambia);
    EXPECT_EQ(e.valor("SELECT GROUP_CONCAT(CONCAT(IdMoneda,':',Saldo) ORDER BY IdMoneda) FROM "
                      "saldoscli WHERE Clave='C001'"),
              GetParam().saldoscli);
}

INSTANTIATE_TEST_SUITE_P(
    Casos, ActualizaSaldo,
    ::testing::Values(CasoSaldo{"distintos",
                                "INSERT INTO clientes (Clave,Saldo) VALUES ('C001',80.5);"
                                "INSERT INTO saldoscli VALUES ('C001',1,10),('C001',2,3)",
                                true, "1:80.5,2:3"},
                      CasoSaldo{"iguales",
                                "INSERT INTO clientes (Clave,Saldo) VALUES ('C001',10);"
                                "INSERT INTO saldoscli VALUES ('C001',1,10)",
                                false, "1:10"},
                      CasoSaldo{"sin renglon en pesos",
                                "INSERT INTO clientes (Clave,Saldo) VALUES ('C001',10);"
                                "INSERT INTO saldoscli VALUES ('C001',2,3)",
                                false, "2:3"},
                      CasoSaldo{"sin cliente", "INSERT INTO saldoscli VALUES ('C001',1,3)", false,
                                "1:3"}),
    pruebas::PorNombre());

TEST(ActualizaSaldo, RechazaUnaClaveConComillaSinTocarNada) {
    Empresa e;
    try {
        e.Motor().ActualizaSaldo("O'HARA");
        FAIL() << "aceptó la clave";
    } catch (const ErrorMovEnLinea& error) {
        EXPECT_NE(std::string(error.what()).find("La clave del cliente 'O'HARA' no es válida"),
                  std::string::npos);
    }
}

}  // namespace
}  // namespace paratzorep::engines
