// Account statements end to end on a demo company: the running balance printed on every row
// equals the one SQL computes from the movements alone, in the PDF and in the CSV; every file
// type; the request handed to the runner; the filters' refusals.
#include <cmath>
#include <cstdlib>
#include <regex>
#include <sstream>

#include "tests/apps/tzorep/accounts/DemoCuentas.h"

namespace paratzorep::cli {
namespace {

namespace lector = renderer::prueba;

bool Contiene(const std::string& texto, const std::string& parte) {
    return texto.find(parte) != std::string::npos;
}

struct Movimiento {
    std::string clave, fecha, folio;
    double antes = 0;  // the balance before the movement, from every movement before it
    double saldo = 0;  // after it
};

class EdoCtaDemo : public DemoCuentas {
  protected:
    // The movements of one currency of the accounts in [desde, hasta] from a date on, with the
    // balance that the movements themselves give, in the order of the balance chain.
    std::vector<Movimiento> Cadena(const std::string& tabla, const std::string& desde,
                                   const std::string& hasta, const std::string& fecha) {
        std::vector<Movimiento> r;
        for (const auto& f : bd->filas(
                 "SELECT Clave, DATE_FORMAT(Fecha,'%d/%m/%Y'), Folio, ROUND(saldo - movto, 2), "
                 "ROUND(saldo, 2) FROM (SELECT Clave, Fecha, Id, Folio, IF(CantidadCargo<>0, "
                 "CantidadCargo, -CantidadPago) AS movto, SUM(IF(CantidadCargo<>0, "
                 "CantidadCargo, -CantidadPago)) OVER (PARTITION BY Clave ORDER BY Fecha, Id) "
                 "AS saldo FROM " +
                 tabla + " WHERE IdMoneda=1) x WHERE Clave BETWEEN '" + desde + "' AND '" + hasta +
                 "' AND Fecha>='" + fecha + "' ORDER BY Clave, Fecha, Id"))
            r.push_back({f[0], f[1], f[2], std::stod(f[3]), std::stod(f[4])});
        return r;
    }
};

// The three customers with the most movements in pesos since mid-September, and every
// account between them: from that date, each printed row's balance and each account's opening
// and closing balance are those of the chain computed here.
TEST_F(EdoCtaDemo, SaldoImpresoDeCadaRenglonEsElDeLaCadena) {
    const std::string fecha = "2026-09-15";
    const auto masMovidos =
        bd->filas("SELECT Clave FROM edoctacli WHERE IdMoneda=1 AND Clave<>'' AND Fecha>='" +
                  fecha + "' GROUP BY Clave ORDER BY COUNT(*) DESC, Clave LIMIT 3");
    ASSERT_EQ(masMovidos.size(), 3u);
    std::vector<std::string> claves = {masMovidos[0][0], masMovidos[1][0], masMovidos[2][0]};
    std::sort(claves.begin(), claves.end());
    const auto esperada = Cadena("edoctacli", claves.front(), claves.back(), fecha);
    ASSERT_GE(esperada.size(), 20u);
    const std::vector<std::string> ajustes = {
        "mkeFecha(0)=15/09/2026", "txtDato(0)=" + claves.front(), "txtDato(1)=" + claves.back()};

    {
        SCOPED_TRACE("CSV: the account's opening balance and the balance on every row");
        const auto filas = FilasCsv(ImprimeYLee("EdoCtaClientes", ajustes, "csv"));
        ASSERT_EQ(filas.size(), esperada.size() + 1);
        EXPECT_EQ(filas[0],
                  (std::vector<std::string>{"Cliente", "Nombre", "Saldo anterior", "Fecha", "Folio",
                                            "Concepto", "Cargos", "Abonos", "Saldo"}));
        std::string cuenta;
        double apertura = 0;
        for (std::size_t i = 0; i < esperada.size(); ++i) {
            const auto& e = esperada[i];
            const auto& f = filas[i + 1];
            if (e.clave != cuenta) cuenta = e.clave, apertura = e.antes;
            EXPECT_EQ(f[0], e.clave) << i;
            EXPECT_EQ(f[4], e.folio) << i;
            EXPECT_NEAR(std::stod(f[2]), apertura, 0.005) << e.clave;
            EXPECT_NEAR(std::stod(f[8]), e.saldo, 0.005) << e.clave << " " << e.folio;
        }
    }
    {
        SCOPED_TRACE("PDF: the same figures as printed, row by row");
        const std::string texto = ImprimeYLee("EdoCtaClientes", ajustes, "pdf");
        std::vector<std::string> saldos, aperturas, finales;
        const std::regex renglon(R"(^\s*\d\d/\d\d/\d{4}\s.*\s(-?[\d,]+\.\d\d)\s*$)");
        const std::regex apertura(R"(^\s*Saldo anterior\s+(-?[\d,]+\.\d\d)\s*$)");
        const std::regex final(R"(Totales y saldo final\s.*\s(-?[\d,]+\.\d\d)\s*$)");
        std::istringstream in(texto);
        for (std::string l; std::getline(in, l);) {
            std::smatch m;
            if (std::regex_match(l, m, renglon)) saldos.push_back(m[1]);
            if (std::regex_match(l, m, apertura)) aperturas.push_back(m[1]);
            if (std::regex_search(l, m, final)) finales.push_back(m[1]);
        }
        std::vector<std::string> esperados, aperturasEsperadas, finalesEsperados;
        for (std::size_t i = 0; i < esperada.size(); ++i) {
            esperados.push_back(Importe(esperada[i].saldo));
            if (i == 0 || esperada[i].clave != esperada[i - 1].clave)
                aperturasEsperadas.push_back(Importe(esperada[i].antes));
            if (i + 1 == esperada.size() || esperada[i].clave != esperada[i + 1].clave)
                finalesEsperados.push_back(Importe(esperada[i].saldo));
        }
        EXPECT_EQ(saldos, esperados) << texto;
        EXPECT_EQ(aperturas, aperturasEsperadas);
        EXPECT_EQ(finales, finalesEsperados);
        EXPECT_TRUE(Contiene(texto, "Desde el 15 de septiembre de 2026")) << texto;
        EXPECT_TRUE(
            Contiene(texto, "Moneda: MN · Clientes del " + claves.front() + " al " + claves.back()))
            << texto;
    }
    {
        SCOPED_TRACE("the suppliers' statement, by the same rule");
        const auto primero = bd->valor("SELECT MIN(Clave) FROM edoctaprov WHERE IdMoneda=1");
        const auto ultimo = bd->valor(
            "SELECT Clave FROM edoctaprov WHERE IdMoneda=1 GROUP BY Clave ORDER BY Clave "
            "LIMIT 1 OFFSET 4");
        ASSERT_TRUE(primero && ultimo);
        const auto prov = Cadena("edoctaprov", *primero, *ultimo, "2026-08-01");
        ASSERT_GE(prov.size(), 5u);
        const auto filas = FilasCsv(ImprimeYLee(
            "EdoCtaProveedores",
            {"mkeFecha(0)=01/08/2026", "txtDato(0)=" + *primero, "txtDato(1)=" + *ultimo}, "csv"));
        ASSERT_EQ(filas.size(), prov.size() + 1);
        EXPECT_EQ(filas[0][0], "Proveedor");
        for (std::size_t i = 0; i < prov.size(); ++i)
            EXPECT_NEAR(std::stod(filas[i + 1][8]), prov[i].saldo, 0.005) << prov[i].folio;
    }
    EXPECT_EQ(TablasDeTrabajo(), 0);
}

// Every file type of both sides, read back: the account's name and its closing balance; and
// the request of a print.
TEST_F(EdoCtaDemo, CadaTipoDeArchivoYLaSolicitud) {
    for (const bool clientes : {true, false}) {
        const std::string tabla = clientes ? "edoctacli" : "edoctaprov";
        const std::string catalogo = clientes ? "clientes" : "proveedores";
        const auto c = bd->filas("SELECT e.Clave, n.Nombre, ROUND(e.SaldoActual, 2) FROM " + tabla +
                                 " e JOIN " + catalogo +
                                 " n ON n.Clave=e.Clave WHERE e.IdMoneda=1 ORDER BY e.Clave, "
                                 "e.Fecha DESC, e.Id DESC LIMIT 1");
        ASSERT_EQ(c.size(), 1u);
        const std::string entrada = clientes ? "EdoCtaClientes" : "EdoCtaProveedores";
        for (const std::string tipo : {"pdf", "txt", "rtf", "doc", "xls", "xlsx", "csv"}) {
            SCOPED_TRACE(entrada + " " + tipo);
            const std::string texto = ImprimeYLee(entrada, {"txtDato(0)=" + c[0][0]}, tipo);
            EXPECT_TRUE(Contiene(texto, c[0][1])) << texto;
            const double saldo = std::stod(c[0][2]);
            const bool tabular = tipo == "csv" || tipo == "xls" || tipo == "xlsx";
            if (!tabular) {
                EXPECT_TRUE(Contiene(texto, Importe(saldo))) << texto;
            }
        }
    }
    EXPECT_EQ(TablasDeTrabajo(), 0);

    // What the form hands the runner: the template of its side, no work table, no sort field
    // or formula, the selection formula of the filters set.
    auto log = Solicitudes("EdoCtaProveedores",
                           {"mkeFecha(1)=30/09/2026", "dcmDato(0)=USD", "txtDato(1)=P0003"});
    ASSERT_EQ(log.size(), 1u);
    EXPECT_TRUE(Contiene(log[0], "\"plantilla\":\"edoctaprov.rpt\"")) << log[0];
    EXPECT_TRUE(Contiene(log[0], "\"tituloVentana\":\"Estados de cuenta de proveedores\""));
    EXPECT_TRUE(Contiene(log[0],
                         "\"formulas\":[],\"camposOrden\":[],\"formulaSeleccion\":\""
                         "{edoctaprov.IdMoneda}=2 and {edoctaprov.Fecha}<=Date(2026,9,"
                         "30) and {edoctaprov.Clave}='P0003'\",\"archivosDatos\":[]"))
        << log[0];
    log = Solicitudes("EdoCtaClientes", {"chkCancelaciones=1"});
    ASSERT_EQ(log.size(), 1u);
    EXPECT_TRUE(Contiene(log[0], "\"plantilla\":\"edoctactes.rpt\"")) << log[0];
    EXPECT_TRUE(Contiene(log[0],
                         "\"formulaSeleccion\":\"{edoctacli.IdMoneda}=1 and not "
                         "('BONIFICACION POR CANCELACION' in {edoctacli.Concepto}) and "
                         "not ('DEVOLUCION DEL DINERO POR CANC.' in "
                         "{edoctacli.Concepto})\""))
        << log[0];
}

// The filters: leaving out cancellations drops exactly the rows whose concept holds either
// text; without MultiMoneda currency 1; refusals of bad input; the names beside the keys.
TEST_F(EdoCtaDemo, FiltrosYEntradasMalas) {
    const auto todas = FilasCsv(ImprimeYLee("EdoCtaClientes", {}, "csv"));
    const auto sin = FilasCsv(ImprimeYLee("EdoCtaClientes", {"chkCancelaciones=1"}, "csv"));
    const auto quitadas = std::stoul(*bd->valor(
        "SELECT COUNT(*) FROM edoctacli WHERE IdMoneda=1 AND (Concepto LIKE "
        "'%BONIFICACION POR CANCELACION%' OR Concepto LIKE '%DEVOLUCION DEL DINERO POR CANC.%')"));
    EXPECT_GT(quitadas, 0u);
    EXPECT_EQ(todas.size(), sin.size() + quitadas);
    EXPECT_EQ(todas.size() - 1,
              std::stoul(*bd->valor("SELECT COUNT(*) FROM edoctacli WHERE IdMoneda=1")));

    // Without MultiMoneda the currency list is hidden and currency 1 is printed.
    bd->ejecutar("UPDATE configura SET Valor='0' WHERE Dato='MultiMoneda'");
    auto r = Tzorep({"show", "EdoCtaClientes", "--json"});
    ASSERT_EQ(r.estado, 0) << r.errores;
    EXPECT_TRUE(Contiene(r.salida, "{\"name\":\"dcmDato(0)\"")) << r.salida;
    const auto moneda = r.salida.substr(r.salida.find("{\"name\":\"dcmDato(0)\""));
    EXPECT_TRUE(Contiene(moneda.substr(0, moneda.find('}')), "\"visible\":false")) << moneda;
    EXPECT_EQ(FilasCsv(ImprimeYLee("EdoCtaClientes", {}, "csv")).size(), todas.size());

    // Bad input: the frame's message and exit 1, no file.
    struct Caso {
        std::vector<std::string> ajustes;
        std::string mensaje;
    };
    for (const auto& c : std::vector<Caso>{
             {{"txtDato(0)=C'0001"}, "no puede llevar comillas simples"},
             {{"mkeFecha(0)=31/02/2026"}, "La fecha inicial ('31/02/2026') no es una fecha válida"},
             {{"mkeFecha(1)=12/__/2026"},
              "La fecha final ('12/__/2026') no es una fecha válida"}}) {
        const auto salida = tmp / "mala.pdf";
        r = Imprime("EdoCtaClientes", c.ajustes,
                    {"--to", "file", "--type", "pdf", "--out", salida.string()});
        EXPECT_EQ(r.estado, 1) << r.errores;
        EXPECT_TRUE(Contiene(r.errores, c.mensaje)) << r.errores;
        EXPECT_FALSE(std::filesystem::exists(salida));
    }
    // The name beside each key; an unknown key leaves it blank and prints no rows.
    r = Tzorep({"show", "EdoCtaClientes", "--set", "txtDato(0)=C00001", "--set",
                "txtDato(1)=NOEXISTE", "--json"});
    ASSERT_EQ(r.estado, 0) << r.errores;
    const auto nombre = bd->valor("SELECT Nombre FROM clientes WHERE Clave='C00001'");
    EXPECT_TRUE(Contiene(
        r.salida, "{\"name\":\"lblDato(0)\",\"kind\":\"etiqueta\",\"caption\":\"" + *nombre + "\""))
        << r.salida;
    EXPECT_TRUE(
        Contiene(r.salida, "{\"name\":\"lblDato(1)\",\"kind\":\"etiqueta\",\"caption\":\"\""))
        << r.salida;
    EXPECT_TRUE(Contiene(ImprimeYLee("EdoCtaClientes", {"txtDato(0)=NOEXISTE"}, "txt"),
                         "No hay movimientos en los estados de cuenta con los filtros pedidos."));
    EXPECT_EQ(TablasDeTrabajo(), 0);
}

}  // namespace
}  // namespace paratzorep::cli
