#include "engines/TextosMovEnLinea.h"

#include <cctype>
#include <charconv>
#include <cmath>
#include <optional>
#include <string_view>

#include "session/SuModulo.h"
#include "toolkit/Texto.h"

namespace paratzorep::engines::detail {

namespace {

std::string N(std::int64_t n) {
    return std::to_string(n);
}

std::string Mayus(std::string_view s) {
    std::string r(s);
    for (auto& c : r) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return r;
}

// One index of a SHOW CREATE TABLE text: its name ("PRIMARY" for the primary key) and its
// column list as written ("`Id`,`Clave`").
struct Indice {
    std::string nombre;
    std::string columnas;
};

struct Definicion {
    std::vector<std::pair<std::string, std::string>> columnas;  // name, whole line
    std::vector<Indice> indices;

    const std::string* Columna(std::string_view nombre) const {
        for (const auto& [n, linea] : columnas)
            if (toolkit::detail::IgualesSinCaso(n, nombre)) return &linea;
        return nullptr;
    }
    const Indice* IndiceLlamado(std::string_view nombre) const {
        for (const auto& i : indices)
            if (toolkit::detail::IgualesSinCaso(i.nombre, nombre)) return &i;
        return nullptr;
    }
    bool HayIndiceSobre(std::string_view columnas) const {
        for (const auto& i : indices)
            if (toolkit::detail::IgualesSinCaso(i.columnas, columnas)) return true;
        return false;
    }
};

// The name between the first pair of backquotes of a line.
std::optional<std::string> NombreEntreComillas(std::string_view linea) {
    auto a = linea.find('`');
    if (a == std::string_view::npos) return std::nullopt;
    auto b = linea.find('`', a + 1);
    if (b == std::string_view::npos) return std::nullopt;
    return std::string(linea.substr(a + 1, b - a - 1));
}

// The text between the first "(" and its matching ")" of a line.
std::string ListaEntreParentesis(std::string_view linea) {
    auto a = linea.find('(');
    if (a == std::string_view::npos) return {};
    int nivel = 0;
    for (auto i = a; i < linea.size(); ++i) {
        if (linea[i] == '(') ++nivel;
        if (linea[i] == ')' && --nivel == 0) return std::string(linea.substr(a + 1, i - a - 1));
    }
    return {};
}

Definicion Lee(const std::string& texto) {
    Definicion d;
    std::size_t inicio = 0;
    while (inicio < texto.size()) {
        auto fin = texto.find('\n', inicio);
        if (fin == std::string::npos) fin = texto.size();
        const std::string linea = toolkit::detail::Recorta(texto.substr(inicio, fin - inicio));
        inicio = fin + 1;
        const std::string mayus = Mayus(linea);
        if (linea.rfind('`', 0) == 0) {
            if (auto n = NombreEntreComillas(linea)) d.columnas.emplace_back(*n, linea);
        } else if (mayus.rfind("PRIMARY KEY", 0) == 0) {
            d.indices.push_back({"PRIMARY", ListaEntreParentesis(linea)});
        } else if (mayus.rfind("KEY ", 0) == 0 || mayus.rfind("UNIQUE KEY ", 0) == 0 ||
                   mayus.rfind("FULLTEXT KEY ", 0) == 0) {
            if (auto n = NombreEntreComillas(linea))
                d.indices.push_back({*n, ListaEntreParentesis(linea)});
        }
    }
    return d;
}

}  // namespace

std::string NumeroSql(double valor) {
    if (!std::isfinite(valor) || valor == 0) return "0";
    char buf[64];
    auto [fin, ec] = std::to_chars(buf, buf + sizeof buf, valor);
    return ec == std::errc() ? std::string(buf, fin) : std::to_string(valor);
}

bool ClaveAceptable(const std::string& clave) {
    if (toolkit::detail::Recorta(clave).empty()) return false;
    for (unsigned char c : clave)
        if (c == '\'' || c == '\\' || c < 0x20 || c == 0x7f) return false;
    return true;
}

std::string FuenteMovimiento(std::int64_t id) {
    return "edoctacli WHERE Id=" + N(id);
}

std::string FuenteAnteriorMismaFecha(const std::string& clave, std::int32_t moneda,
                                     const std::string& fecha, std::int64_t id) {
    return "edoctacli WHERE Clave='" + clave + "' and IdMoneda=" + N(moneda) + " and Fecha='" +
           fecha + "' and Id<" + N(id) + " ORDER BY Fecha DESC,Id DESC LIMIT 1";
}

std::string FuenteAnteriorFechaPrevia(const std::string& clave, std::int32_t moneda,
                                      const std::string& fecha) {
    return "edoctacli WHERE Clave='" + clave + "' and IdMoneda=" + N(moneda) + " and Fecha<'" +
           fecha + "' ORDER BY Fecha DESC,Id DESC LIMIT 1";
}

std::string ActualizaSaldosMovimiento(double nuevo, double anterior, std::int64_t id) {
    return "UPDATE edoctacli SET SaldoActual=" + NumeroSql(nuevo) +
           ",SaldoAnterior=" + NumeroSql(anterior) + " WHERE Id=" + N(id);
}

std::string FuenteSiguiente(std::int32_t moneda, const std::string& clave, const std::string& fecha,
                            std::int64_t id) {
    return "edoctacli WHERE IdMoneda=" + N(moneda) + " AND Clave='" + clave + "' AND (Fecha='" +
           fecha + "' AND Id>" + N(id) + " OR Fecha>'" + fecha + "') ORDER BY Fecha,Id LIMIT 1";
}

std::string ActualizaSaldoCliente(double saldo, const std::string& clave) {
    return session::LlenaXXX("UPDATE clientes SET Saldo=" + NumeroSql(saldo) + " WHERE Clave='XXX'",
                             clave);
}

std::string RecalculoEnConjunto(std::int64_t id, double apertura) {
    // The opening balance enters as a first pseudo-row (Id 0, never a real one) so that the
    // window adds ((apertura + m1) + m2) + ... in the same order as the row-by-row pass;
    // SaldoAnterior is the previous running sum, SaldoActual this row's.
    return "UPDATE edoctacli e JOIN (SELECT Id, LAG(s) OVER (ORDER BY o, Fecha, Id) AS ant, s "
           "FROM (SELECT Id, o, Fecha, SUM(m) OVER (ORDER BY o, Fecha, Id ROWS BETWEEN UNBOUNDED "
           "PRECEDING AND CURRENT ROW) AS s FROM (SELECT 0 AS Id, 0 AS o, CAST('0000-00-00' AS "
           "DATE) AS Fecha, CAST(" +
           NumeroSql(apertura) +
           " AS DOUBLE) AS m UNION ALL SELECT x.Id, 1, x.Fecha, IF(x.CantidadCargo<>0, "
           "x.CantidadCargo, -x.CantidadPago) FROM edoctacli x JOIN edoctacli i ON i.Id=" +
           N(id) +
           " WHERE x.Clave=i.Clave AND x.IdMoneda=i.IdMoneda AND (x.Fecha=i.Fecha AND x.Id>=i.Id "
           "OR x.Fecha>i.Fecha)) m) s) c ON c.Id=e.Id SET e.SaldoAnterior=c.ant, "
           "e.SaldoActual=c.s";
}

std::string FuenteUltimoMovimiento(const std::string& clave, std::int32_t moneda) {
    return "edoctacli WHERE Clave='" + clave + "' and IdMoneda=" + N(moneda) +
           " ORDER BY Fecha DESC,Id DESC LIMIT 1";
}

std::string FuenteSaldoscli(const std::string& clave) {
    return "saldoscli WHERE Clave='" + clave + "' AND IdMoneda=1";
}

std::string ActualizaSaldoscli(double saldo, const std::string& clave) {
    return "UPDATE saldoscli SET Saldo=" + NumeroSql(saldo) + " WHERE Clave='" + clave +
           "' AND IdMoneda=1";
}

std::string BuscaCliente(const std::string& clave) {
    return "SELECT * FROM clientes WHERE Clave=" + session::LlenaXXX("'XXX'", clave);
}

std::string FuenteClientesEmpresa() {
    return "clientes ORDER BY Clave";
}

std::string FijaSaldoCliente(double saldo, const std::string& clave) {
    return session::LlenaXXX("UPDATE clientes SET saldo=" + NumeroSql(saldo) + " WHERE Clave='XXX'",
                             clave);
}

std::string FuentePrimerMovimiento(const std::string& clave) {
    return "edoctacli WHERE Clave='" + clave + "' LIMIT 1";
}

std::string SumaPuntos(double puntos, const std::string& clave) {
    return session::LlenaXXX(
        "UPDATE clientes SET SusPuntos=SusPuntos+" + NumeroSql(puntos) + " WHERE Clave='XXX'",
        clave);
}

std::string FuenteDocumento(bool esRemision, std::int64_t id) {
    return std::string(esRemision ? "remisiones" : "facturas") + " WHERE Id=" + N(id);
}

std::string FuenteVacia(const std::string& tabla) {
    return tabla + " WHERE Id=-9";
}

std::string FuenteCxC(std::int64_t id) {
    return "cxc WHERE Id=" + N(id);
}

std::string FuenteCxCEmpresa(std::int64_t id) {
    return "cxc WHERE Id=" + N(id) + " LIMIT 1";
}

std::string BorraCxC(std::int64_t id) {
    return "DELETE FROM cxc WHERE Id=" + N(id);
}

std::string ActualizaSaldoCxC(double saldo, std::int64_t id) {
    return "UPDATE cxc SET Saldo=" + NumeroSql(saldo) + " WHERE Id=" + N(id);
}

std::string FuenteDocumentoCentral(const std::string& tipo, const std::string& claveEmpresa,
                                   std::int64_t numero) {
    if (tipo == "R")
        return "remisiones WHERE ClaveEmpresa='" + claveEmpresa + "' and IdEmpresa=" + N(numero);
    if (tipo == "C")
        return "edoctacli WHERE ClaveEmpresa='" + claveEmpresa + "' and Folio=" + N(numero);
    return "facturas WHERE ClaveEmpresa='" + claveEmpresa + "' and IdEmpresa=" + N(numero);
}

std::string FuenteAnexoVacio() {
    return "anexopagosctes WHERE FolioDelPago=-9";
}

std::string FuenteCargoEmpresa(std::int64_t folio) {
    return "edoctacli WHERE Folio=" + N(folio) + " LIMIT 1";
}

std::string FuenteCxCDeDocumento(const std::string& tipo, std::int64_t numero) {
    return "cxc WHERE Tipo='" + tipo + "' AND Numero=" + N(numero) + " LIMIT 1";
}

std::string ActualizaSaldoDocumento(bool esRemision, double saldo, std::int64_t id) {
    return std::string("UPDATE ") + (esRemision ? "remisiones" : "facturas") +
           " SET Saldo=" + NumeroSql(saldo) + " WHERE Id=" + N(id);
}

std::string ActualizaDocumentoPagado(bool esRemision, double saldo, double pago, std::int64_t id) {
    return std::string("UPDATE ") + (esRemision ? "remisiones" : "facturas") +
           " SET Saldo=" + NumeroSql(saldo) + ",Pagado=Pagado+" + NumeroSql(pago) +
           " WHERE Id=" + N(id);
}

std::string ActualizaUltPago(const std::string& fecha, const std::string& clave) {
    return session::LlenaXXX("UPDATE clientes SET UltPago='" + fecha + "' WHERE Clave='XXX'",
                             clave);
}

std::string FuentePagosPendientes(const std::string& claveEmpresa, std::int64_t folioSEL) {
    return "edoctacli WHERE Clave2Empresa='" + claveEmpresa + "' and Id>" + N(folioSEL) +
           " and CantidadPago>0 and Aplicado=0 ORDER BY Fecha,Id";
}

std::string MarcaAplicado(std::int64_t id) {
    return "UPDATE edoctacli SET Aplicado=1 WHERE Id=" + N(id);
}

std::string FuenteMarcaSEL(std::int64_t idSEL) {
    return "pagossel WHERE IdSEL=" + N(idSEL);
}

std::string CompletaMarcaSEL(std::int64_t idSEL, std::int64_t folio, std::int64_t idEdoCta) {
    return "UPDATE pagossel SET Folio=" + N(folio) + ",IdEdoCta=" + N(idEdoCta) +
           " WHERE IdSEL=" + N(idSEL);
}

const std::vector<std::string>& TablasCentrales() {
    static const std::vector<std::string> tablas = {"clientes", "edoctacli",  "cxc",
                                                    "facturas", "remisiones", "saldoscli"};
    return tablas;
}

std::string MuestraDefinicion(const std::string& tabla) {
    return "SHOW CREATE TABLE " + tabla;
}

std::string Altera(const std::string& tabla, const std::string& clausula) {
    return "Alter table " + tabla + clausula;
}

std::string Vacia(const std::string& tabla) {
    return "Truncate table " + tabla;
}

std::string CreaSiFalta(const std::string& definicion) {
    const std::string buscado = "CREATE TABLE";
    auto p = definicion.find(buscado);
    if (p == std::string::npos || definicion.compare(p, 26, "CREATE TABLE IF NOT EXISTS") == 0)
        return definicion;
    return definicion.substr(0, p) + "CREATE TABLE IF NOT EXISTS" +
           definicion.substr(p + buscado.size());
}

std::vector<std::string> ClausulasPendientes(const std::string& tabla,
                                             const std::string& definicion,
                                             const std::string& claveEmpresa) {
    const Definicion d = Lee(definicion);
    std::vector<std::string> r;
    auto siFalta = [&](const char* columna, std::string clausula) {
        if (!d.Columna(columna)) r.push_back(std::move(clausula));
    };
    auto siHayIndice = [&](const char* nombre, const char* clausula) {
        if (const Indice* i = d.IndiceLlamado(nombre); i && i->nombre != "PRIMARY")
            r.emplace_back(clausula);
    };
    const std::string t = toolkit::detail::Minusculas(tabla);
    if (t == "saldoscli") return r;

    siFalta("ClaveEmpresa",
            session::LlenaXXX(" add ClaveEmpresa varchar(15) default 'XXX'", claveEmpresa));
    siFalta("IdEmpresa", " add IdEmpresa integer default 0");
    if (!d.HayIndiceSobre("`IdEmpresa`,`ClaveEmpresa`"))
        r.emplace_back(" add Key(IdEmpresa,ClaveEmpresa)");

    if (t == "clientes") {
        siFalta("Saldo", " add Saldo double default 0");
        siFalta("SusPuntos", " add SusPuntos double default 0");
    } else if (t == "cxc") {
        siHayIndice("Clave", " drop index Clave");
        siHayIndice("Tipo", " drop index Tipo");
        siFalta("Total", " add Total double default 0");
    } else if (t == "edoctacli") {
        // The company's index ID (Id, Clave); the central one on (Id, Clave2Empresa), which the
        // server names "Id" too, stays.
        if (const Indice* i = d.IndiceLlamado("ID");
            i && i->nombre != "PRIMARY" &&
            !toolkit::detail::IgualesSinCaso(i->columnas, "`Id`,`Clave2Empresa`"))
            r.emplace_back(" drop index ID");
        if (d.Columna("Autoinc")) r.emplace_back(" drop Autoinc");
        const Indice* primaria = d.IndiceLlamado("PRIMARY");
        const bool primariaEnAutoinc =
            primaria && toolkit::detail::IgualesSinCaso(primaria->columnas, "`Autoinc`");
        if (!primaria || primariaEnAutoinc) r.emplace_back(" add primary key(Id)");
        const std::string* id = d.Columna("Id");
        if (!id || Mayus(*id).find("AUTO_INCREMENT") == std::string::npos)
            r.emplace_back(" change Id Id integer not null auto_increment");
        siHayIndice("Fecha", " drop index Fecha");
        siHayIndice("Folio", " drop index Folio");
        siFalta("Clave2Empresa", " add Clave2Empresa varchar(15) default ''");
        if (!d.HayIndiceSobre("`Id`,`Clave2Empresa`")) r.emplace_back(" add Key(Id,Clave2Empresa)");
        siFalta("Tipo", " add Tipo Char(1) default ''");
        siFalta("Numero", " add Numero integer default '0'");
        siFalta("IdCxCemp", " add IdCxCemp integer default '0'");
        siFalta("Aplicado", " add Aplicado smallint default '0'");
    } else if (t == "facturas" || t == "remisiones") {
        siHayIndice("Factura", " drop index Factura");
    }
    return r;
}

}  // namespace paratzorep::engines::detail
