#include "data/ConexionLocal.h"

#include <sqlite3.h>

#include <memory>

namespace paratzorep::data {

namespace detail {

struct FinalizaSentencia {
    void operator()(sqlite3_stmt* s) const { sqlite3_finalize(s); }
};
using Sentencia = std::unique_ptr<sqlite3_stmt, FinalizaSentencia>;

// The column type from its declared type, as SQLite's affinity rules read it, with dates apart.
host::TipoCampo TipoDeclarado(std::string_view declarado) {
    std::string d = Minusculas(declarado);
    auto tiene = [&](const char* s) { return d.find(s) != std::string::npos; };
    if (tiene("int")) return host::TipoCampo::Entero;
    if (tiene("datetime") || tiene("timestamp")) return host::TipoCampo::FechaHora;
    if (tiene("date")) return host::TipoCampo::Fecha;
    if (tiene("time")) return host::TipoCampo::Hora;
    if (tiene("char") || tiene("text") || tiene("clob")) return host::TipoCampo::Texto;
    if (tiene("blob")) return host::TipoCampo::Binario;
    if (tiene("real") || tiene("floa") || tiene("doub") || tiene("dec") || tiene("num") ||
        tiene("money") || tiene("currency"))
        return host::TipoCampo::Decimal;
    return host::TipoCampo::Texto;
}

host::TipoCampo TipoAlmacenado(int clase) {
    switch (clase) {
        case SQLITE_INTEGER:
            return host::TipoCampo::Entero;
        case SQLITE_FLOAT:
            return host::TipoCampo::Decimal;
        case SQLITE_BLOB:
            return host::TipoCampo::Binario;
        default:
            return host::TipoCampo::Texto;
    }
}

constexpr const char* kTablas[] = {
    "CREATE TABLE IF NOT EXISTS Generales (Id INTEGER PRIMARY KEY, Titulo TEXT, Subtitulo TEXT, "
    "ParaLasFechas TEXT, Usuario TEXT, UsuarioImpresion TEXT, Empresa TEXT, Sucursal TEXT, "
    "Filtros TEXT, FechaImpresion TEXT, Texto1 TEXT, Texto2 TEXT, Texto3 TEXT, Texto4 TEXT, "
    "Texto5 TEXT)",
    "CREATE TABLE IF NOT EXISTS EncabDeudores (Id INTEGER PRIMARY KEY, Texto1 TEXT, Texto2 TEXT, "
    "Texto3 TEXT, Texto4 TEXT, Texto5 TEXT)",
    "CREATE TABLE IF NOT EXISTS Titulo100 (Id INTEGER PRIMARY KEY, Encabezado TEXT)",
    "CREATE TABLE IF NOT EXISTS Utilidad (Id INTEGER PRIMARY KEY, Linea TEXT, SubLinea TEXT, "
    "Marca TEXT, VendedorCve TEXT, VendedorNom TEXT, Fecha DATE, Factura INTEGER, Serie TEXT, "
    "Remision INTEGER, CostoPromedio DOUBLE, PrecioNeto DOUBLE, Precio DOUBLE, Desc1 DOUBLE, "
    "Desc2 DOUBLE, Desc3 DOUBLE, Desc4 DOUBLE, Desc5 DOUBLE, Cliente TEXT, clave TEXT, "
    "Articulo TEXT, DESCripcion TEXT, Cantidad DOUBLE, Devueltos DOUBLE, Moneda INTEGER, "
    "Paridad DOUBLE, IdentVta TEXT, IdKardex INTEGER, Costo DOUBLE, ExistenciaAnterior DOUBLE, "
    "EnDevolucs DOUBLE, EnNdeC DOUBLE, Devolucion INTEGER, MontoNdeC DOUBLE, NombreLinea TEXT, "
    "NombreSubLinea TEXT, NombreMarca TEXT)",
    "CREATE TABLE IF NOT EXISTS TotalesUtilPdV (Id INTEGER PRIMARY KEY, Gastos DOUBLE)",
    "CREATE TABLE IF NOT EXISTS ComisXvend1 (Id INTEGER PRIMARY KEY, Clave TEXT, "
    "MontoTotal DOUBLE)",
    "CREATE TABLE IF NOT EXISTS ComisXvend2 (Id INTEGER PRIMARY KEY, Vendedor TEXT, clave TEXT, "
    "Nombre TEXT, Documento TEXT, Serie TEXT, Numero INTEGER, Fecha DATE, Cliente TEXT, "
    "IdVenta INTEGER, Subtotal DOUBLE, Monto DOUBLE, NotasDeCredito DOUBLE, Comision DOUBLE, "
    "Vence DATE, DiasVencida INTEGER)",
    "CREATE TABLE IF NOT EXISTS ComisVendXtabla (Id INTEGER PRIMARY KEY, Vendedor TEXT, "
    "DeLaTabla TEXT, Comision DOUBLE)",
};

}  // namespace detail

ConexionLocal::ConexionLocal(std::string archivo) : archivo_(std::move(archivo)) {
    int rc = sqlite3_open_v2(archivo_.c_str(), &db_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE,
                             nullptr);
    if (rc != SQLITE_OK) {
        std::string mensaje = db_ ? sqlite3_errmsg(db_) : sqlite3_errstr(rc);
        sqlite3_close(db_);
        db_ = nullptr;
        throw host::ErrorDatos("Abrir el archivo de trabajo '" + archivo_ + "'", "", rc, mensaje);
    }
    sqlite3_busy_timeout(db_, 2000);
    try {
        // A scratch file refilled on every print: no waiting for the disk on every row.
        Ejecuta("PRAGMA synchronous=OFF", "Preparar el archivo de trabajo");
        CreaTablas();
    } catch (...) {
        Cierra();
        throw;
    }
}

ConexionLocal::~ConexionLocal() {
    Cierra();
}

void ConexionLocal::Cierra() {
    if (db_ != nullptr) {
        sqlite3_close_v2(db_);
        db_ = nullptr;
    }
}

std::string ConexionLocal::Definicion(const std::string& tabla) {
    const std::string inicio = "CREATE TABLE IF NOT EXISTS " + tabla + " (";
    for (const char* ddl : detail::kTablas)
        if (detail::IgualSinMayusculas(std::string_view(ddl).substr(0, inicio.size()), inicio))
            return ddl;
    return {};
}

void ConexionLocal::CreaTablas() {
    for (const char* ddl : detail::kTablas) Ejecuta(ddl, "Crear las tablas del archivo de trabajo");
}

namespace {

detail::Sentencia Prepara(sqlite3* db, const std::string& sql, const std::string& accion) {
    if (db == nullptr) throw host::ErrorDatos(accion, sql, 0, "el archivo de trabajo está cerrado");
    sqlite3_stmt* st = nullptr;
    if (sqlite3_prepare_v2(db, sql.c_str(), static_cast<int>(sql.size()), &st, nullptr) !=
        SQLITE_OK) {
        throw host::ErrorDatos(accion, sql, sqlite3_errcode(db), sqlite3_errmsg(db));
    }
    if (st == nullptr) throw host::ErrorDatos(accion, sql, 0, "la sentencia está vacía");
    return detail::Sentencia(st);
}

void Enlaza(sqlite3* db, sqlite3_stmt* st, const std::vector<host::Valor>& valores,
            const std::string& sql, const std::string& accion) {
    if (sqlite3_bind_parameter_count(st) != static_cast<int>(valores.size())) {
        throw host::ErrorDatos(accion, sql, 0,
                               "la sentencia espera " +
                                   std::to_string(sqlite3_bind_parameter_count(st)) +
                                   " valores y recibió " + std::to_string(valores.size()));
    }
    for (std::size_t i = 0; i < valores.size(); ++i) {
        const host::Valor& v = valores[i];
        int k = static_cast<int>(i) + 1;
        int rc;
        if (v.EsNulo()) {
            rc = sqlite3_bind_null(st, k);
        } else if (v.Tipo() == host::TipoCampo::Entero) {
            rc = sqlite3_bind_int64(st, k, v.Entero());
        } else if (v.Tipo() == host::TipoCampo::Decimal) {
            rc = sqlite3_bind_double(st, k, v.Doble());
        } else if (v.Tipo() == host::TipoCampo::Binario) {
            rc = sqlite3_bind_blob64(st, k, v.Texto().data(), v.Texto().size(), SQLITE_TRANSIENT);
        } else {
            rc = sqlite3_bind_text64(st, k, v.Texto().data(), v.Texto().size(), SQLITE_TRANSIENT,
                                     SQLITE_UTF8);
        }
        if (rc != SQLITE_OK) throw host::ErrorDatos(accion, sql, rc, sqlite3_errmsg(db));
    }
}

detail::Resultado Lee(sqlite3* db, sqlite3_stmt* st, const std::string& sql,
                      const std::string& accion) {
    detail::Resultado r;
    const int n = sqlite3_column_count(st);
    std::string unica;
    bool varias = false;
    std::vector<bool> declarado(n, false);
    for (int i = 0; i < n; ++i) {
        host::Columna c;
        c.nombre = sqlite3_column_name(st, i);
        if (const char* d = sqlite3_column_decltype(st, i)) {
            c.tipo = detail::TipoDeclarado(d);
            declarado[i] = true;
        }
        if (const char* t = sqlite3_column_table_name(st, i)) {
            c.tabla = t;
            const char* origen = sqlite3_column_origin_name(st, i);
            int noNulo = 0, clave = 0, autoinc = 0;
            const char* tipo = nullptr;
            const char* colacion = nullptr;
            if (origen != nullptr && sqlite3_table_column_metadata(
                                         db, sqlite3_column_database_name(st, i), t, origen, &tipo,
                                         &colacion, &noNulo, &clave, &autoinc) == SQLITE_OK) {
                c.esClave = clave != 0;
                // An INTEGER PRIMARY KEY is the row id: SQLite numbers it when left empty.
                c.autoIncremento = autoinc != 0 || (clave != 0 && tipo != nullptr &&
                                                    detail::IgualSinMayusculas(tipo, "INTEGER"));
            }
            if (unica.empty()) {
                unica = c.tabla;
            } else if (!detail::IgualSinMayusculas(unica, c.tabla)) {
                varias = true;
            }
        }
        r.columnas.push_back(std::move(c));
    }
    if (!varias) r.tablaUnica = unica;
    int rc;
    while ((rc = sqlite3_step(st)) == SQLITE_ROW) {
        std::vector<host::Valor> fila;
        fila.reserve(n);
        for (int i = 0; i < n; ++i) {
            int clase = sqlite3_column_type(st, i);
            if (!declarado[i] && clase != SQLITE_NULL) {
                r.columnas[i].tipo = detail::TipoAlmacenado(clase);
                declarado[i] = true;
            }
            if (clase == SQLITE_NULL) {
                fila.push_back(host::Valor::Nulo(r.columnas[i].tipo));
            } else if (clase == SQLITE_FLOAT) {
                fila.emplace_back(host::Valor(sqlite3_column_double(st, i)).Texto(),
                                  r.columnas[i].tipo);
            } else {
                const void* datos =
                    clase == SQLITE_BLOB ? sqlite3_column_blob(st, i) : sqlite3_column_text(st, i);
                int largo = sqlite3_column_bytes(st, i);
                fila.emplace_back(
                    std::string(static_cast<const char*>(datos), static_cast<std::size_t>(largo)),
                    r.columnas[i].tipo);
            }
        }
        r.filas.push_back(std::move(fila));
    }
    if (rc != SQLITE_DONE) throw host::ErrorDatos(accion, sql, rc, sqlite3_errmsg(db));
    // Null columns of an expression keep their declared type; the rows' types follow it.
    return r;
}

}  // namespace

detail::Resultado ConexionLocal::Consulta(const std::string& sql, const std::string& accion) {
    return ConsultaConValores(sql, {}, accion);
}

detail::Resultado ConexionLocal::ConsultaConValores(const std::string& sql,
                                                    const std::vector<host::Valor>& valores,
                                                    const std::string& accion) {
    auto st = Prepara(db_, sql, accion);
    Enlaza(db_, st.get(), valores, sql, accion);
    return Lee(db_, st.get(), sql, accion);
}

std::int64_t ConexionLocal::Ejecuta(const std::string& sql, const std::string& accion) {
    if (db_ == nullptr)
        throw host::ErrorDatos(accion, sql, 0, "el archivo de trabajo está cerrado");
    char* error = nullptr;
    int antes = sqlite3_total_changes(db_);
    if (sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, &error) != SQLITE_OK) {
        std::string mensaje = error ? error : sqlite3_errmsg(db_);
        sqlite3_free(error);
        throw host::ErrorDatos(accion, sql, sqlite3_errcode(db_), mensaje);
    }
    return sqlite3_total_changes(db_) - antes;
}

std::int64_t ConexionLocal::EjecutaConValores(const std::string& sql,
                                              const std::vector<host::Valor>& valores,
                                              const std::string& accion) {
    auto st = Prepara(db_, sql, accion);
    Enlaza(db_, st.get(), valores, sql, accion);
    int rc;
    while ((rc = sqlite3_step(st.get())) == SQLITE_ROW) {
    }
    if (rc != SQLITE_DONE) throw host::ErrorDatos(accion, sql, rc, sqlite3_errmsg(db_));
    return sqlite3_changes(db_);
}

std::int64_t ConexionLocal::UltimoId() {
    return db_ == nullptr ? 0 : sqlite3_last_insert_rowid(db_);
}

bool ConexionLocal::ExisteTabla(const std::string& tabla) {
    auto r = ConsultaConValores(
        "SELECT COUNT(*) FROM sqlite_master WHERE type IN ('table','view') AND name=? "
        "COLLATE NOCASE",
        {host::Valor(tabla)}, "Buscar la tabla '" + tabla + "'");
    return !r.filas.empty() && r.filas[0][0].Entero() > 0;
}

std::vector<std::string> ConexionLocal::ColumnasDe(const std::string& tabla) {
    auto r = Consulta("PRAGMA table_info(" + Identificador(tabla) + ")",
                      "Leer las columnas de '" + tabla + "'");
    std::vector<std::string> nombres;
    for (const auto& f : r.filas) nombres.push_back(f[1].Texto());
    return nombres;
}

std::string ConexionLocal::Identificador(std::string_view nombre) const {
    std::string r = "\"";
    for (char c : nombre) {
        r += c;
        if (c == '"') r += '"';
    }
    return r + "\"";
}

std::string ConexionLocal::UpdateDeUnaFila(const std::string& tabla,
                                           const std::string& asignaciones,
                                           const std::string& condicion) const {
    const std::string t = Identificador(tabla);
    return "UPDATE " + t + " SET " + asignaciones + " WHERE rowid=(SELECT rowid FROM " + t +
           " WHERE " + condicion + " LIMIT 1)";
}

std::string ConexionLocal::IgualQueValor(const std::string& columna) const {
    return Identificador(columna) + " IS ?";
}

std::string ConexionLocal::InsertSinColumnas(const std::string& tabla) const {
    return "INSERT INTO " + Identificador(tabla) + " DEFAULT VALUES";
}

InsercionLocal::InsercionLocal(ConexionLocal& local, std::string sql, std::string accion)
    : db_(local.db_), sql_(std::move(sql)), accion_(std::move(accion)) {
    st_ = Prepara(db_, sql_, accion_).release();
}

InsercionLocal::~InsercionLocal() {
    sqlite3_finalize(st_);
}

void InsercionLocal::Inserta(const detail::FilaTexto& valores) {
    if (sqlite3_bind_parameter_count(st_) != static_cast<int>(valores.size()))
        throw host::ErrorDatos(accion_, sql_, 0,
                               "la sentencia espera " +
                                   std::to_string(sqlite3_bind_parameter_count(st_)) +
                                   " valores y recibió " + std::to_string(valores.size()));
    for (std::size_t i = 0; i < valores.size(); ++i) {
        const int k = static_cast<int>(i) + 1;
        const int rc = valores[i] ? sqlite3_bind_text64(st_, k, valores[i]->data(),
                                                        valores[i]->size(), SQLITE_STATIC,
                                                        SQLITE_UTF8)
                                  : sqlite3_bind_null(st_, k);
        if (rc != SQLITE_OK) throw host::ErrorDatos(accion_, sql_, rc, sqlite3_errmsg(db_));
    }
    const int rc = sqlite3_step(st_);
    sqlite3_reset(st_);
    sqlite3_clear_bindings(st_);
    if (rc != SQLITE_DONE) throw host::ErrorDatos(accion_, sql_, rc, sqlite3_errmsg(db_));
}

}  // namespace paratzorep::data
