// Rows from the local SQLite work file.
#include <sqlite3.h>

#include <cctype>
#include <cstdlib>

#include "renderer/data/ArmadoSql.h"
#include "renderer/data/Consulta.h"
#include "renderer/formula/Traductor.h"

namespace paratzorep::renderer::data {

namespace detail {

using formula::Dialecto;

struct CierraSqlite {
    void operator()(sqlite3* b) const { sqlite3_close(b); }
};
struct FinalizaSentencia {
    void operator()(sqlite3_stmt* s) const { sqlite3_finalize(s); }
};

int colacionGeneral(void*, int na, const void* a, int nb, const void* b) {
    const auto r = compararTextos(std::string_view(static_cast<const char*>(a), na),
                                  std::string_view(static_cast<const char*>(b), nb));
    return r < 0 ? -1 : (r > 0 ? 1 : 0);
}

// tz_locate(needle, haystack): 1 when found as the server's LOCATE finds it,
// 0 when not, NULL when either is NULL.
void localizar(sqlite3_context* ctx, int, sqlite3_value** v) {
    if (sqlite3_value_type(v[0]) == SQLITE_NULL || sqlite3_value_type(v[1]) == SQLITE_NULL) {
        sqlite3_result_null(ctx);
        return;
    }
    const auto* a = reinterpret_cast<const char*>(sqlite3_value_text(v[0]));
    const int na = sqlite3_value_bytes(v[0]);
    const auto* b = reinterpret_cast<const char*>(sqlite3_value_text(v[1]));
    const int nb = sqlite3_value_bytes(v[1]);
    sqlite3_result_int(ctx,
                       contieneTexto(std::string_view(b, nb), std::string_view(a, na)) ? 1 : 0);
}

Valor convertir(sqlite3_stmt* s, int c) {
    switch (sqlite3_column_type(s, c)) {
        case SQLITE_NULL:
            return Valor();
        case SQLITE_INTEGER:
        case SQLITE_FLOAT:
            return Valor::numero(sqlite3_column_double(s, c));
        default:
            break;
    }
    const std::string t(reinterpret_cast<const char*>(sqlite3_column_text(s, c)),
                        sqlite3_column_bytes(s, c));
    // Dates are kept as ISO text; the declared type says how to read them.
    const char* decl = sqlite3_column_decltype(s, c);
    std::string tipo = decl ? decl : "";
    for (auto& ch : tipo) ch = static_cast<char>(std::toupper(static_cast<unsigned char>(ch)));
    if (tipo.find("DATETIME") != std::string::npos || tipo.find("TIMESTAMP") != std::string::npos) {
        if (auto f = FechaHora::leer(t)) return Valor::fechaHora(*f);
    } else if (tipo.find("DATE") != std::string::npos) {
        if (auto f = Fecha::leer(t)) return Valor::fecha(*f);
    } else if (tipo.find("TIME") != std::string::npos) {
        if (auto h = Hora::leer(t)) return Valor::hora(*h);
    } else if (tipo.find("INT") != std::string::npos || tipo.find("REAL") != std::string::npos ||
               tipo.find("DOUB") != std::string::npos || tipo.find("NUM") != std::string::npos ||
               tipo.find("DEC") != std::string::npos || tipo.find("FLOA") != std::string::npos) {
        char* fin = nullptr;
        const double d = std::strtod(t.c_str(), &fin);
        if (!t.empty() && fin && *fin == '\0') return Valor::numero(d);
    }
    return Valor::texto(t);
}

class FilasSqlite : public Filas {
  public:
    FilasSqlite(const std::filesystem::path& archivo, const DescripcionConsulta& d,
                const Opciones& o)
        : Filas(d, o) {
        const auto t = formula::traducirSeleccion(seleccion_, Dialecto::SQLite);
        resto_ = t.resto;
        sqlite3* b = nullptr;
        const int rc = sqlite3_open_v2(archivo.c_str(), &b, SQLITE_OPEN_READONLY, nullptr);
        bd_.reset(b);
        if (rc != SQLITE_OK)
            throw ErrorDatos("abrir el archivo de trabajo local " + archivo.string(),
                             b ? sqlite3_errmsg(b) : "sin memoria", {}, {}, rc);
        sqlite3_busy_timeout(b, 5000);
        sqlite3_create_collation(b, "tz_general_ci", SQLITE_UTF8, nullptr, colacionGeneral);
        sqlite3_create_function(b, "tz_locate", 2, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr,
                                localizar, nullptr, nullptr);
        detail::revisarNombres(d, columnas_, [&](const TablaConsulta& t) {
            std::optional<std::set<std::string>> r;
            sqlite3_stmt* s = nullptr;
            if (sqlite3_prepare_v2(b, "SELECT name FROM pragma_table_info(?1)", -1, &s, nullptr) !=
                SQLITE_OK)
                return std::optional<std::set<std::string>>(std::set<std::string>{});
            std::unique_ptr<sqlite3_stmt, FinalizaSentencia> st(s);
            sqlite3_bind_text(s, 1, t.origen.c_str(), -1, SQLITE_TRANSIENT);
            while (sqlite3_step(s) == SQLITE_ROW) {
                if (!r) r.emplace();
                r->insert(detail::minusculasSql(
                    reinterpret_cast<const char*>(sqlite3_column_text(s, 0))));
            }
            return r;
        });
        std::string sql = seleccionarDesde(d, columnas_, Dialecto::SQLite);
        if (!t.sql.empty()) sql += " WHERE " + t.sql;
        if (!orden_.empty()) {
            // NULLs first ascending and last descending, as on the server.
            sql += " ORDER BY ";
            for (std::size_t i = 0; i < orden_.size(); ++i)
                sql += (i ? ", " : "") + formula::columnaSql(orden_[i].campo, Dialecto::SQLite) +
                       " COLLATE tz_general_ci" + (orden_[i].descendente ? " DESC" : " ASC");
        }
        registrarSql(sql);
        sqlite3_stmt* s = nullptr;
        if (sqlite3_prepare_v2(b, sql.c_str(), -1, &s, nullptr) != SQLITE_OK)
            throw ErrorDatos("leer los datos del reporte", sqlite3_errmsg(b), sql, {},
                             sqlite3_extended_errcode(b));
        st_.reset(s);
        fila_.resize(columnas_.size());
    }

    bool siguiente() override {
        // SQLite starts a finished statement over on the next step: the end is kept.
        if (terminado_) return false;
        for (;;) {
            const int rc = sqlite3_step(st_.get());
            if (rc == SQLITE_DONE) {
                terminado_ = true;
                return false;
            }
            if (rc != SQLITE_ROW)
                throw ErrorDatos("leer los datos del reporte", sqlite3_errmsg(bd_.get()),
                                 sql_.back(), {}, rc);
            for (std::size_t c = 0; c < fila_.size(); ++c)
                fila_[c] = convertir(st_.get(), static_cast<int>(c));
            ++leidas_;
            if (pasaResto()) {
                ++entregadas_;
                return true;
            }
        }
    }

  private:
    std::unique_ptr<sqlite3, CierraSqlite> bd_;
    std::unique_ptr<sqlite3_stmt, FinalizaSentencia> st_;  // finalized before the close
    bool terminado_ = false;
};

}  // namespace detail

std::unique_ptr<Filas> abrirSqlite(const std::filesystem::path& archivo,
                                   const DescripcionConsulta& d, const Opciones& o) {
    if (!std::filesystem::exists(archivo))
        throw ErrorDatos("abrir el archivo de trabajo local",
                         "no existe el archivo " + archivo.string());
    return std::make_unique<detail::FilasSqlite>(archivo, d, o);
}

}  // namespace paratzorep::renderer::data
