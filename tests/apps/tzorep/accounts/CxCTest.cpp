// Receivables and payables end to end on a demo company: the listed documents are those that
// the ledger rule gives, walked row by row here with a query per row; the balances at a date
// are those rebuilt from the documents and the payments applied after it, for three dates;
// every file type; the request; a failing fill still drops the work table.
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "tests/apps/tzorep/accounts/DemoCuentas.h"

namespace paratzorep::cli {
namespace {

bool Contiene(const std::string& texto, const std::string& parte) {
    return texto.find(parte) != std::string::npos;
}

// One listed document: account, document text, total and balance to the cent.
using Renglon = std::tuple<std::string, std::string, std::string, std::string>;

std::string Centavos(const std::string& v) {
    char b[32];
    std::snprintf(b, sizeof b, "%.2f", std::stod(v));
    return b;
}

class CxCDemo : public DemoCuentas {
  protected:
    // The rows of a CSV of cxcnvo/cxpnvo (account, name, date, document, concept, due, total,
    // balance) as sorted tuples.
    std::vector<Renglon> DelReporte(const std::string& entrada,
                                    const std::vector<std::string>& ajustes) {
        auto filas = FilasCsv(ImprimeYLee(entrada, ajustes, "csv"));
        std::vector<Renglon> r;
        for (std::size_t i = 1; i < filas.size(); ++i)
            r.emplace_back(filas[i][0], filas[i][3], Centavos(filas[i][6]), Centavos(filas[i][7]));
        std::sort(r.begin(), r.end());
        return r;
    }

    // The ledger rule, row by row: each cxc row of a ticked kind, its source document opened
    // by its key, the classification, seller and currency tested on it.
    std::vector<Renglon> ReglaLedger(const std::string& clasificacion, const std::string& moneda) {
        std::vector<Renglon> r;
        for (const auto& x : bd->filas("SELECT Clave,Tipo,Numero,Saldo FROM cxc ORDER BY Id")) {
            const std::string& tipo = x[1];
            if (!clasificacion.empty() &&
                *bd->valor("SELECT Clasificacion FROM clientes WHERE Clave='" + x[0] + "'") !=
                    clasificacion)
                continue;
            std::vector<std::vector<std::string>> d;
            if (tipo == "C") {
                d = bd->filas(
                    "SELECT CONCAT(Folio),CantidadCargo,IdMoneda FROM edoctacli WHERE "
                    "Folio=" +
                    x[2] + " LIMIT 1");
            } else {
                const std::string tabla = tipo == "F"   ? "facturas"
                                          : tipo == "R" ? "remisiones"
                                                        : "apartados";
                d = bd->filas(
                    "SELECT CONCAT(Serie,Factura),Subtotal+IVA+ImpuestoAd+"
                    "Cargo1Cantidad+Cargo2Cantidad+Cargo3Cantidad+Retencion+"
                    "RetencionIVA,Moneda FROM " +
                    tabla + " WHERE Id=" + x[2]);
            }
            if (d.empty()) continue;
            if (!moneda.empty() && d[0][2] != moneda) continue;
            r.emplace_back(x[0], d[0][0], Centavos(d[0][1]), Centavos(x[3]));
        }
        std::sort(r.begin(), r.end());
        return r;
    }

    // The at-a-date rule as written: per kind, the documents still open that existed on the
    // date, then those paid off now but paid after it; each balance raised by the payments
    // applied after the date.
    std::vector<Renglon> ReglaAUnaFecha(const std::string& fecha) {
        std::vector<Renglon> r;
        for (const auto& [tabla, id] :
             std::vector<std::pair<std::string, std::string>>{{"facturas", "IdFactura"},
                                                              {"remisiones", "IdRemision"},
                                                              {"apartados", "IdApartado"}}) {
            auto docs =
                bd->filas("SELECT Id,Cliente,CONCAT(Serie,Factura),Total,Saldo FROM " + tabla +
                          " WHERE Fecha<='" + fecha + "' AND Saldo>=.01 ORDER BY Id");
            for (const auto& p :
                 bd->filas("SELECT " + id + " FROM anexopagosctes WHERE FechaAplicacion>'" + fecha +
                           "' AND " + id + "<>0 GROUP BY " + id + " ORDER BY " + id))
                for (const auto& d :
                     bd->filas("SELECT Id,Cliente,CONCAT(Serie,Factura),Total,Saldo FROM " + tabla +
                               " WHERE Id=" + p[0] + " AND Fecha<='" + fecha + "' AND Saldo=0"))
                    docs.push_back(d);
            for (const auto& d : docs) {
                const auto pagado = bd->valor(
                    "SELECT IFNULL(SUM(Cantidad),0) FROM anexopagosctes "
                    "WHERE " +
                    id + "=" + d[0] + " AND FechaAplicacion>'" + fecha + "'");
                r.emplace_back(d[1], d[2], Centavos(d[3]),
                               Centavos(std::to_string(std::stod(d[4]) + std::stod(*pagado))));
            }
        }
        std::sort(r.begin(), r.end());
        return r;
    }
};

TEST_F(CxCDemo, LosDocumentosSonLosDeLaRegla) {
    const auto todos = DelReporte("CxC", {});
    ASSERT_GT(todos.size(), 50u);
    EXPECT_EQ(todos, ReglaLedger("", ""));
    // Every kind is there, a layaway in the invoice columns ("AP..." under Documento).
    for (const char* tipo : {"F", "R", "A", "C"})
        EXPECT_EQ(*bd->valor(std::string("SELECT COUNT(*)>0 FROM cxc WHERE Tipo='") + tipo + "'"),
                  "1")
            << tipo;
    const auto clasif = *bd->valor(
        "SELECT k.Clasificacion FROM cxc x JOIN clientes k ON k.Clave=x.Clave GROUP BY 1 ORDER BY "
        "COUNT(*) DESC LIMIT 1");
    const auto filtrados = DelReporte("CxC", {"dcmDato(2)=" + clasif, "dcmDato(1)=USD"});
    ASSERT_FALSE(filtrados.empty());
    EXPECT_EQ(filtrados, ReglaLedger(clasif, "2"));
    EXPECT_EQ(TablasDeTrabajo(), 0);
}

// Three dates: one with payments applied on the day itself (they count as made), the date of
// the company's last day and one a month and a half before it.
TEST_F(CxCDemo, SaldosAUnaFechaContraLaRegla) {
    const auto conPagos = *bd->valor(
        "SELECT FechaAplicacion FROM anexopagosctes WHERE FechaAplicacion<'2026-10-15' AND "
        "IdFactura<>0 GROUP BY FechaAplicacion ORDER BY COUNT(*) DESC LIMIT 1");
    for (const std::string& fecha :
         {conPagos, std::string("2026-09-15"), std::string("2026-10-31")}) {
        SCOPED_TRACE(fecha);
        const std::string dma =
            fecha.substr(8, 2) + "/" + fecha.substr(5, 2) + "/" + fecha.substr(0, 4);
        const auto regla = ReglaAUnaFecha(fecha);
        ASSERT_GT(regla.size(), 10u);
        EXPECT_EQ(DelReporte("CxC", {"chkAunaFecha=1", "mkeFecha(0)=" + dma}), regla);
    }
    // The balance printed at the date against SQL run independently.
    const std::string pdf = ImprimeYLee("CxC", {"chkAunaFecha=1", "mkeFecha(0)=15/09/2026"}, "pdf");
    double total = 0;
    for (const auto& r : ReglaAUnaFecha("2026-09-15")) total += std::stod(std::get<3>(r));
    EXPECT_TRUE(Contiene(pdf, "Saldos al 15 de septiembre de 2026")) << pdf;
    EXPECT_TRUE(Contiene(pdf, Importe(total))) << pdf;
    // The date is required in this mode.
    auto r = Imprime("CxC", {"chkAunaFecha=1", "mkeFecha(0)="},
                     {"--to", "file", "--type", "pdf", "--out", (tmp / "m.pdf").string()});
    EXPECT_EQ(r.estado, 1);
    EXPECT_TRUE(Contiene(r.errores, "La fecha inicial")) << r.errores;
    EXPECT_EQ(TablasDeTrabajo(), 0);
}

TEST_F(CxCDemo, TiposDeArchivoSolicitudYFallas) {
    for (const std::string entrada : {"CxC", "cxp"}) {
        const std::string libro = entrada == "CxC" ? "cxc" : "cxp";
        const auto saldo = std::stod(*bd->valor(
            "SELECT ROUND(SUM(Saldo),2) FROM " + libro + " x WHERE EXISTS (SELECT 1 FROM " +
            (entrada == "CxC" ? std::string("facturas d WHERE x.Tipo='F' AND d.Id=x.Numero) OR "
                                            "x.Tipo<>'F'")
                              : std::string("compras d WHERE x.Tipo='M' AND d.Compra=x.Numero) OR "
                                            "x.Tipo<>'M'"))));
        for (const std::string tipo : {"pdf", "txt", "rtf", "doc", "xls", "xlsx", "csv"}) {
            SCOPED_TRACE(entrada + " " + tipo);
            const std::string texto = ImprimeYLee(entrada, {}, tipo);
            EXPECT_FALSE(texto.empty());
            if (tipo == "pdf") {
                EXPECT_TRUE(Contiene(texto, Importe(saldo))) << texto;
            }
        }
    }
    auto log = Solicitudes("cxp", {"mkeFecha(1)=30/11/2026", "chkVentas(1)=0"});
    ASSERT_EQ(log.size(), 1u);
    EXPECT_TRUE(Contiene(log[0], "\"plantilla\":\"cxpnvo.rpt\"")) << log[0];
    EXPECT_TRUE(Contiene(log[0], "\"archivosDatos\":[\"cxp*")) << log[0];

    // Without delivery notes in the company the box is hidden.
    bd->ejecutar("UPDATE configura SET Valor='0' WHERE Dato='Remisiones'");
    auto r = Tzorep({"show", "CxC", "--json"});
    const auto caja = r.salida.substr(r.salida.find("{\"name\":\"chkVentas(2)\""));
    EXPECT_TRUE(Contiene(caja.substr(0, caja.find('}')), "\"visible\":false")) << caja;

    // A fill that fails reports the step and still drops the work table; a quote in a key is
    // refused.
    bd->ejecutar("RENAME TABLE apartados TO apartados_fuera");
    r = Imprime("CxC", {}, {"--to", "file", "--type", "pdf", "--out", (tmp / "f.pdf").string()});
    EXPECT_EQ(r.estado, 1);
    EXPECT_TRUE(Contiene(r.errores, "apartados")) << r.errores;
    EXPECT_EQ(TablasDeTrabajo(), 0);
    r = Imprime("cxp", {"txtDato(0)=P'1"},
                {"--to", "file", "--type", "pdf", "--out", (tmp / "q.pdf").string()});
    EXPECT_EQ(r.estado, 1);
    EXPECT_TRUE(Contiene(r.errores, "no puede llevar comillas simples")) << r.errores;
}

}  // namespace
}  // namespace paratzorep::cli
