// Rows from MariaDB through unixODBC, read in keyset-paged blocks: the driver holds a whole
// result in memory, so a block is at most Opciones::filasPorBloque rows and the next one starts
// after the last row's sort keys (the table's unique key ends them). The next block runs on a
// second connection while the current one is consumed. When no index serves the order (the
// server's plan sorts), the rest of the selection after the first block is sorted once into a
// temporary table and read by row number.
#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <future>

#include "renderer/data/ArmadoSql.h"
#include "renderer/data/Consulta.h"
#include "renderer/formula/Traductor.h"

namespace paratzorep::renderer::data {

namespace detail {

using formula::Dialecto;
using formula::RefCampo;

// An ODBC handle, freed on destruction.
class Manejador {
  public:
    Manejador() = default;
    // A failure says the parent's reason (a statement on a connection that the server cut).
    Manejador(SQLSMALLINT tipo, SQLHANDLE padre, const char* accion);
    Manejador(const Manejador&) = delete;
    Manejador& operator=(const Manejador&) = delete;
    Manejador(Manejador&& o) noexcept : tipo_(o.tipo_), h_(o.h_) { o.h_ = SQL_NULL_HANDLE; }
    Manejador& operator=(Manejador&& o) noexcept {
        std::swap(tipo_, o.tipo_);
        std::swap(h_, o.h_);
        return *this;
    }
    ~Manejador() {
        if (h_ != SQL_NULL_HANDLE) SQLFreeHandle(tipo_, h_);
    }
    SQLHANDLE get() const { return h_; }
    SQLSMALLINT tipo() const { return tipo_; }

  private:
    SQLSMALLINT tipo_ = 0;
    SQLHANDLE h_ = SQL_NULL_HANDLE;
};

// The limit on a silent server (the same for every connection of the process) and when this
// thread sent its last statement: a lost connection that took the whole limit is the server not
// answering.
std::atomic<unsigned> segundosEspera{0};
thread_local double inicioSentencia = 0;

double ahora() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

bool esConexionPerdida(const std::string& estado, long nativo) {
    return nativo == 2006 || nativo == 2013 || nativo == 2055 || estado == "HYT00" ||
           estado == "HYT01" || estado == "08S01" || estado == "08003";
}

[[noreturn]] void fallarOdbc(SQLSMALLINT tipo, SQLHANDLE h, const std::string& accion,
                             const std::string& sql = {},
                             std::string sinDetalle = "el controlador ODBC no dio detalles") {
    SQLCHAR estado[8] = {0};
    SQLINTEGER nativo = 0;
    SQLCHAR texto[1024] = {0};
    SQLSMALLINT largo = 0;
    std::string detalle;
    std::string primerEstado;
    long primerNativo = 0;
    for (SQLSMALLINT i = 1; i <= 5; ++i) {
        if (!SQL_SUCCEEDED(SQLGetDiagRec(tipo, h, i, estado, &nativo, texto, sizeof texto, &largo)))
            break;
        if (primerEstado.empty()) {
            primerEstado = reinterpret_cast<char*>(estado);
            primerNativo = nativo;
        }
        if (!detalle.empty()) detalle += "; ";
        detalle += reinterpret_cast<char*>(texto);
    }
    const bool sinDiagnostico = detalle.empty();
    if (sinDiagnostico) detalle = std::move(sinDetalle);
    // A handle refused with no reason after a wait as long as the limit: the server did not
    // answer the statement before (freeing a statement also waits for the server).
    const unsigned espera = segundosEspera;
    if ((esConexionPerdida(primerEstado, primerNativo) ||
         (sinDiagnostico && tipo != SQL_HANDLE_STMT)) &&
        espera > 0 && ahora() - inicioSentencia + 0.5 >= espera)
        detalle = "el servidor no respondió en " + std::to_string(espera) +
                  " segundos (puede estar detenido, saturado o sin red)";
    throw ErrorDatos(accion, detalle, sql, primerEstado, primerNativo);
}

[[noreturn]] void fallarOdbc(const Manejador& m, const std::string& accion,
                             const std::string& sql = {}) {
    fallarOdbc(m.tipo(), m.get(), accion, sql);
}

Manejador::Manejador(SQLSMALLINT tipo, SQLHANDLE padre, const char* accion) : tipo_(tipo) {
    if (SQL_SUCCEEDED(SQLAllocHandle(tipo, padre, &h_))) return;
    h_ = SQL_NULL_HANDLE;
    if (padre == SQL_NULL_HANDLE) throw ErrorDatos(accion, "no se pudo reservar un manejador ODBC");
    fallarOdbc(tipo == SQL_HANDLE_STMT ? SQL_HANDLE_DBC : SQL_HANDLE_ENV, padre, accion, {},
               "no se pudo reservar un manejador ODBC");
}

enum class Clase { Texto, Numero, Fecha, FechaHora, Hora };

Clase claseOdbc(SQLSMALLINT t) {
    switch (t) {
        case SQL_TYPE_DATE:
        case SQL_DATE:
            return Clase::Fecha;
        case SQL_TYPE_TIMESTAMP:
        case SQL_TIMESTAMP:
            return Clase::FechaHora;
        case SQL_TYPE_TIME:
        case SQL_TIME:
            return Clase::Hora;
        case SQL_DECIMAL:
        case SQL_NUMERIC:
        case SQL_SMALLINT:
        case SQL_INTEGER:
        case SQL_REAL:
        case SQL_FLOAT:
        case SQL_DOUBLE:
        case SQL_BIT:
        case SQL_TINYINT:
        case SQL_BIGINT:
            return Clase::Numero;
        default:
            return Clase::Texto;
    }
}

Valor convertir(Clase c, std::string s) {
    switch (c) {
        case Clase::Texto:
            return Valor::texto(std::move(s));
        case Clase::Numero:
            return Valor::numero(std::strtod(s.c_str(), nullptr));
        case Clase::Fecha: {
            auto f = Fecha::leer(s);
            return f ? Valor::fecha(*f) : Valor::texto(s);
        }
        case Clase::FechaHora: {
            auto f = FechaHora::leer(s);
            return f ? Valor::fechaHora(*f) : Valor::texto(s);
        }
        case Clase::Hora: {
            auto h = Hora::leer(s);
            return h ? Valor::hora(*h) : Valor::texto(s);
        }
    }
    return Valor::texto(s);
}

// One ordering key of the paged query: its column, direction and kind.
struct Clave {
    RefCampo campo;
    bool desc = false;
    int columna = 0;
    std::string expr;  // how the key is compared and sorted in SQL
};

class FilasOdbc : public Filas {
  public:
    FilasOdbc(const std::string& connect, const DescripcionConsulta& d, const Opciones& o)
        : Filas(d, o), desc_(d) {
        segundosEspera = o.segundosEspera;
        const auto t = formula::traducirSeleccion(seleccion_, Dialecto::MariaDB);
        donde_ = t.sql;
        resto_ = t.resto;
        connect_ = connect;
        conectar(dbc_, connect);
        revisarEnCatalogo();
        armarClaves();
        base_ = seleccionarDesde(desc_, columnasSql_, Dialecto::MariaDB, expresiones_);
    }

    bool siguiente() override {
        for (;;) {
            if (!stmt_) {
                if (terminado_) return false;
                abrirBloque();
            }
            if (enlazado_ && posLote_ < lote_) {
                leerFilaEnlazada(posLote_++);
            } else {
                const SQLRETURN r = SQLFetch(stmt_->get());
                if (r == SQL_NO_DATA || (enlazado_ && SQL_SUCCEEDED(r) && lote_ == 0)) {
                    inicioSentencia = ahora();  // closing the statement talks to the server
                    stmt_.reset();
                    // A short block is the last one; so is an unpaged query.
                    if (!paginado_ || enBloque_ < bloque_) terminado_ = true;
                    enBloque_ = 0;
                    continue;
                }
                if (!SQL_SUCCEEDED(r))
                    fallarOdbc(*stmt_, "leer los datos del reporte", sql_.back());
                if (enlazado_) {
                    posLote_ = 0;
                    guardarClavesEnlazadas(lote_ - 1);
                    leerFilaEnlazada(posLote_++);
                } else {
                    leerFila();
                }
            }
            ++enBloque_;
            ++leidas_;
            if (pasaResto()) {
                ++entregadas_;
                return true;
            }
        }
    }

  private:
    // Connects `dbc` (allocated here) with the report's connection string.
    void conectar(Manejador& dbc, std::string connect) {
        if (!env_.get()) {
            env_ = Manejador(SQL_HANDLE_ENV, SQL_NULL_HANDLE, "preparar ODBC");
            SQLSetEnvAttr(env_.get(), SQL_ATTR_ODBC_VERSION, reinterpret_cast<void*>(SQL_OV_ODBC3),
                          0);
        }
        dbc = Manejador(SQL_HANDLE_DBC, env_.get(), "preparar la conexión ODBC");
        // Texts in UTF-8, as the formulas and the writers expect them.
        std::string bajo = connect;
        for (auto& c : bajo) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        if (bajo.find("charset=") == std::string::npos) {
            if (!connect.empty() && connect.back() != ';') connect += ';';
            connect += "CHARSET=utf8mb4";
        }
        // A server that stops answering ends the read instead of leaving it waiting for ever.
        if (opciones_.segundosEspera > 0) {
            const std::string t = std::to_string(opciones_.segundosEspera);
            for (const char* clave : {"READ_TIMEOUT", "WRITE_TIMEOUT", "CONN_TIMEOUT"}) {
                std::string buscada = clave;
                for (auto& c : buscada)
                    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
                if (bajo.find(buscada + "=") != std::string::npos) continue;
                if (!connect.empty() && connect.back() != ';') connect += ';';
                connect += std::string(clave) + "=" + t;
            }
        }
        SQLCHAR salida[1024];
        SQLSMALLINT largo = 0;
        inicioSentencia = ahora();
        const SQLRETURN r =
            SQLDriverConnect(dbc.get(), nullptr, reinterpret_cast<SQLCHAR*>(connect.data()),
                             static_cast<SQLSMALLINT>(connect.size()), salida, sizeof salida,
                             &largo, SQL_DRIVER_NOPROMPT);
        if (!SQL_SUCCEEDED(r)) fallarOdbc(dbc, "conectar con la base de datos del reporte");
        (&dbc == &dbc_ ? conectado_ : conectado2_) = true;
        // Text literals are written with backslash escapes; make sure they are read so.
        const std::string modo =
            "SET SESSION sql_mode = REPLACE(@@sql_mode, 'NO_BACKSLASH_ESCAPES', '')";
        if (&dbc == &dbc_) {
            consultar(modo);
        } else {
            ejecutar(dbc, modo, false);
        }
    }

    // Runs a statement on `dbc` and returns it, its result (buffered by the driver) ready.
    // Touches nothing of this object but the handles: the next block runs on another thread.
    static std::unique_ptr<Manejador> ejecutar(const Manejador& dbc, std::string sql,
                                               bool desplazable) {
        auto st =
            std::make_unique<Manejador>(SQL_HANDLE_STMT, dbc.get(), "leer los datos del reporte");
        if (desplazable)
            SQLSetStmtAttr(st->get(), SQL_ATTR_CURSOR_TYPE,
                           reinterpret_cast<SQLPOINTER>(SQL_CURSOR_STATIC), 0);
        inicioSentencia = ahora();
        if (!SQL_SUCCEEDED(SQLExecDirect(st->get(), reinterpret_cast<SQLCHAR*>(sql.data()),
                                         static_cast<SQLINTEGER>(sql.size()))))
            fallarOdbc(*st, "leer los datos del reporte", sql);
        return st;
    }

  public:
    ~FilasOdbc() override {
        if (adelantado_.valid()) {
            try {
                adelantado_.get();
            } catch (const std::exception&) {
                // The block read ahead is not wanted any more, nor its error.
            }
        }
        stmt_.reset();
        if (conectado_) SQLDisconnect(dbc_.get());
        if (conectado2_) SQLDisconnect(dbc2_.get());
    }

  private:
    // Runs a statement and returns its rows as text (for the key look-up).
    std::vector<std::vector<std::string>> consultar(const std::string& sql) {
        return consultar(dbc_, sql);
    }
    std::vector<std::vector<std::string>> consultar(const Manejador& dbc, const std::string& sql) {
        Manejador st(SQL_HANDLE_STMT, dbc.get(), "consultar la base de datos");
        registrarSql(sql);
        std::string s = sql;
        inicioSentencia = ahora();
        if (!SQL_SUCCEEDED(SQLExecDirect(st.get(), reinterpret_cast<SQLCHAR*>(s.data()),
                                         static_cast<SQLINTEGER>(s.size()))))
            fallarOdbc(st, "consultar la base de datos", sql);
        SQLSMALLINT n = 0;
        SQLNumResultCols(st.get(), &n);
        std::vector<std::vector<std::string>> r;
        if (n == 0) return r;
        while (SQL_SUCCEEDED(SQLFetch(st.get()))) {
            std::vector<std::string> f;
            for (SQLSMALLINT c = 1; c <= n; ++c) {
                bool nulo = false;
                f.push_back(leerTexto(st, c, nulo, sql));
            }
            r.push_back(std::move(f));
        }
        return r;
    }

    static std::string leerTexto(const Manejador& st, SQLUSMALLINT col, bool& nulo,
                                 const std::string& sql) {
        std::string r;
        char buf[512];
        for (;;) {
            SQLLEN ind = 0;
            const SQLRETURN x = SQLGetData(st.get(), col, SQL_C_CHAR, buf, sizeof buf, &ind);
            if (x == SQL_NO_DATA) break;
            if (!SQL_SUCCEEDED(x)) fallarOdbc(st, "leer los datos del reporte", sql);
            if (ind == SQL_NULL_DATA) {
                nulo = true;
                return {};
            }
            if (x == SQL_SUCCESS_WITH_INFO && (ind == SQL_NO_TOTAL || ind >= SQLLEN(sizeof buf))) {
                r.append(buf, sizeof buf - 1);  // a longer value: more to come
                continue;
            }
            r.append(buf, static_cast<std::size_t>(ind));
            break;
        }
        nulo = false;
        return r;
    }

    // "TABLE_SCHEMA = ... AND TABLE_NAME = ..." for a table of the query: its own
    // database when the origin names one, else the connection's.
    static std::string tablaEnCatalogo(const TablaConsulta& t) {
        std::string base = "DATABASE()";
        std::string tabla = t.origen;
        if (const std::size_t punto = t.origen.find('.'); punto != std::string::npos) {
            base = formula::textoSql(t.origen.substr(0, punto), Dialecto::MariaDB);
            tabla = t.origen.substr(punto + 1);
        }
        return "TABLE_SCHEMA = " + base +
               " AND TABLE_NAME = " + formula::textoSql(tabla, Dialecto::MariaDB);
    }

    const TablaConsulta* tablaDe(const RefCampo& c) const {
        for (const auto& t : desc_.tablas)
            if (mismoNombre(t.nombre, c.tabla)) return &t;
        return nullptr;
    }

    // Whether information_schema.<vista> has a row for the column c and `condicion`.
    bool catalogoTiene(const char* vista, const RefCampo& c, const std::string& condicion) {
        const TablaConsulta* t = tablaDe(c);
        if (t == nullptr) return false;
        return !consultar(std::string("SELECT 1 FROM information_schema.") + vista + " WHERE " +
                          tablaEnCatalogo(*t) +
                          " AND COLUMN_NAME = " + formula::textoSql(c.campo, Dialecto::MariaDB) +
                          " AND " + condicion + " LIMIT 1")
                    .empty();
    }

    // Every table and field the report reads, in one look at the catalogue: a missing one is
    // named as the template names it, before any query that would fail on it is sent.
    void revisarEnCatalogo() {
        std::string donde;
        for (const auto& t : desc_.tablas)
            donde += (donde.empty() ? "(" : " OR (") + tablaEnCatalogo(t) + ")";
        const auto filas = consultar(
            "SELECT LOWER(TABLE_SCHEMA), LOWER(TABLE_NAME), LOWER(COLUMN_NAME), DATABASE() FROM "
            "information_schema.COLUMNS WHERE " +
            donde);
        detail::revisarNombres(desc_, columnas_, [&](const TablaConsulta& t) {
            std::optional<std::set<std::string>> r;
            const auto punto = t.origen.find('.');
            for (const auto& f : filas) {
                const std::string base = punto == std::string::npos
                                             ? detail::minusculasSql(f[3])
                                             : detail::minusculasSql(t.origen.substr(0, punto));
                const std::string tabla = detail::minusculasSql(
                    punto == std::string::npos ? t.origen : t.origen.substr(punto + 1));
                if (f[0] != base || f[1] != tabla) continue;
                if (!r) r.emplace();
                r->insert(f[2]);
            }
            return r;
        });
    }

    // The unique key of a table: its primary key, else its first unique index.
    std::vector<std::string> claveUnica(const TablaConsulta& t) {
        const auto filas = consultar(
            "SELECT INDEX_NAME, COLUMN_NAME FROM information_schema.STATISTICS WHERE " +
            tablaEnCatalogo(t) +
            " AND NON_UNIQUE = 0 ORDER BY INDEX_NAME <> 'PRIMARY', INDEX_NAME, SEQ_IN_INDEX");
        std::vector<std::string> r;
        for (const auto& f : filas) {
            if (f[0] != filas.front()[0]) break;
            r.push_back(f[1]);
        }
        return r;
    }

    // Whether the server sorts the selection to give the order of the blocks: no index serves
    // the whole order (sort fields, then the unique keys), as the server's plan for the second
    // block tells (the first one, from the start, is often sorted even when an index serves
    // the order). Each later block would then sort the rest of the selection again.
    bool ordenaElServidor(const Manejador& dbc) {
        std::vector<std::vector<std::string>> plan;
        try {
            plan = consultar(dbc, "EXPLAIN " + textoBloque());
        } catch (const ErrorDatos&) {
            return false;  // the block itself will say what is wrong
        }
        for (const auto& paso : plan) {
            if (paso.empty()) continue;
            const std::string& extra = paso.back();
            if (extra.find("filesort") != std::string::npos ||
                extra.find("temporary") != std::string::npos)
                return true;
        }
        return false;
    }

    bool esFloat(const RefCampo& c) { return catalogoTiene("COLUMNS", c, "DATA_TYPE = 'float'"); }

    void armarClaves() {
        bloque_ = std::max<std::size_t>(1, opciones_.filasPorBloque);
        columnasSql_ = columnas_;
        for (const auto& o : orden_) {
            int columna = agregarColumna(columnasSql_, o.campo);
            std::string expr = formula::columnaSql(o.campo, Dialecto::MariaDB);
            // A FLOAT comes as text with 6 digits, not enough to find the row again:
            // its key is read a second time, compared and sorted as the exact DOUBLE
            // it widens to.
            if (esFloat(o.campo)) {
                expr = "CAST(" + expr + " AS DOUBLE)";
                columnasSql_.push_back(o.campo);
                columna = static_cast<int>(columnasSql_.size() - 1);
                expresiones_.resize(columnasSql_.size());
                expresiones_[columna] = expr;
            }
            claves_.push_back({o.campo, o.descendente, columna, expr});
        }
        paginado_ = true;
        for (const auto& t : desc_.tablas) {
            const auto k = claveUnica(t);
            if (k.empty()) paginado_ = false;
            for (const auto& c : k) {
                RefCampo rc{t.nombre, c};
                // A column already sorted on orders nothing more.
                if (std::any_of(claves_.begin(), claves_.end(), [&](const Clave& x) {
                        return mismoNombre(x.campo.tabla, rc.tabla) &&
                               mismoNombre(x.campo.campo, rc.campo);
                    }))
                    continue;
                claves_.push_back({rc, false, agregarColumna(columnasSql_, rc),
                                   formula::columnaSql(rc, Dialecto::MariaDB)});
            }
        }
        // The columns the caller sees come first; the key columns follow.
        fila_.resize(columnas_.size());
    }

    // "k1 > v1 OR (k1 = v1 AND (k2 > v2 OR ...))", NULLs first ascending, last descending.
    std::string despuesDe(std::size_t i) const {
        if (i >= claves_.size()) return "FALSE";
        const Clave& k = claves_[i];
        const std::string& col = k.expr;
        const auto& [nulo, lit] = ultimos_[i];
        const std::string resto = despuesDe(i + 1);
        if (nulo) {
            // Ascending: every non-NULL comes after. Descending: nothing but NULL ties.
            if (!k.desc)
                return "(" + col + " IS NOT NULL OR (" + col + " IS NULL AND " + resto + "))";
            return "(" + col + " IS NULL AND " + resto + ")";
        }
        const std::string op = k.desc ? " < " : " > ";
        std::string s = "(" + col + op + lit;
        if (k.desc) s += " OR " + col + " IS NULL";
        return s + " OR (" + col + " = " + lit + " AND " + resto + "))";
    }

    // " ORDER BY k1 ASC, k2 DESC ..." over the paging keys ("" without keys).
    std::string ordenSql() const {
        std::string r;
        for (std::size_t i = 0; i < claves_.size(); ++i)
            r += (i ? ", " : " ORDER BY ") + claves_[i].expr + (claves_[i].desc ? " DESC" : " ASC");
        return r;
    }

    // The rest of the selection, after the first block, sorted once into a temporary table
    // numbered in that order: each later block is a range of the number, not another sort
    // of the whole selection. Where the server refuses the table (no right to temporary
    // tables, no default database) the rest is read as before, in larger blocks.
    void materializar() {
        materializado_ = true;
        std::string where = donde_;
        const std::string k = despuesDe(0);
        where = where.empty() ? k : "(" + where + ") AND " + k;
        const std::string sql =
            std::string("CREATE TEMPORARY TABLE ") + kTablaOrden +
            " (tz_n BIGINT UNSIGNED NOT NULL AUTO_INCREMENT PRIMARY KEY) ENGINE=Aria " +
            seleccionarDesde(desc_, columnasSql_, Dialecto::MariaDB, expresiones_, true) +
            " WHERE " + where + ordenSql();
        try {
            consultar(sql);
        } catch (const ErrorDatos&) {
            bloque_ = std::max(bloque_, opciones_.filasPorBloqueSinIndice);
            return;
        }
        const std::size_t n = columnasSql_.size();
        base_ = "SELECT ";
        for (std::size_t i = 0; i < n; ++i) base_ += "c" + std::to_string(i) + ", ";
        base_ += std::string("tz_n FROM ") + kTablaOrden;
        donde_.clear();
        const RefCampo numero{kTablaOrden, "tz_n"};
        columnasSql_.push_back(numero);
        claves_ = {Clave{numero, false, static_cast<int>(n), "tz_n"}};
        ultimos_.clear();
        inicioBloque_.clear();
        // The table's columns are described again on its first block.
        clases_.clear();
        anchos_.clear();
    }

    // The statement of the next block: after the last keys read, in key order.
    std::string sqlBloque() {
        if (paginado_ && !ultimos_.empty()) {
            // A block that ends on the keys it started after would be read forever.
            if (ultimos_ == inicioBloque_)
                throw ErrorDatos("leer los datos del reporte",
                                 "la lectura por bloques no avanza (claves repetidas)");
            inicioBloque_ = ultimos_;
        }
        return textoBloque();
    }

    std::string textoBloque() const {
        std::string sql = base_;
        std::string where = donde_;
        if (paginado_ && !ultimos_.empty()) {
            const std::string k = despuesDe(0);
            where = where.empty() ? k : "(" + where + ") AND " + k;
        }
        if (!where.empty()) sql += " WHERE " + where;
        sql += ordenSql();
        if (paginado_) sql += " LIMIT " + std::to_string(bloque_);
        return sql;
    }

    // Whether the next block is read on a second connection while this one is consumed:
    // the server then works on it while the rows of this one are converted and laid out.
    // Not while the order waits for its table (a temporary table is seen by its own
    // connection only).
    bool adelantable() const {
        return opciones_.leerAdelantado && paginado_ &&
               !(sinIndice_ && opciones_.ordenEnTablaTemporal);
    }

    // Once the first block is read: whether the server sorts for the blocks that follow. If it
    // does, the rest is sorted once into a table (materializar) or, where that is not allowed,
    // read in fewer, larger blocks. The first block stays small either way (the server keeps
    // only its rows while it sorts: the first page comes soon). `dbc` must be free.
    void decidirOrden(const Manejador& dbc) {
        if (ordenDecidido_) return;
        ordenDecidido_ = true;
        sinIndice_ = ordenaElServidor(dbc);
        if (sinIndice_ && !opciones_.ordenEnTablaTemporal)
            bloque_ = std::max(bloque_, opciones_.filasPorBloqueSinIndice);
    }

    void abrirBloque() {
        if (paginado_ && !ultimos_.empty() && !adelantado_.valid()) {
            decidirOrden(dbc_);
            if (sinIndice_ && !materializado_ && opciones_.ordenEnTablaTemporal) materializar();
        }
        if (adelantado_.valid()) {
            stmt_ = adelantado_.get();
            enSegunda_ = !enSegunda_;
        } else {
            const std::string sql = sqlBloque();
            registrarSql(sql);
            stmt_ = ejecutar(dbc_, sql, adelantable());
            enSegunda_ = false;
        }
        if (!paginado_) terminado_ = true;  // read in one go
        if (clases_.empty()) {
            SQLSMALLINT n = 0;
            SQLNumResultCols(stmt_->get(), &n);
            for (SQLSMALLINT c = 1; c <= n; ++c) {
                SQLCHAR nombre[256];
                SQLSMALLINT largo = 0, tipo = 0, dec = 0, nul = 0;
                SQLULEN tam = 0;
                SQLDescribeCol(stmt_->get(), c, nombre, sizeof nombre, &largo, &tipo, &tam, &dec,
                               &nul);
                clases_.push_back(claseOdbc(tipo));
                // Room for the value as text: up to 4 bytes a character, a sign and a point.
                anchos_.push_back(static_cast<SQLLEN>(std::max<SQLULEN>(tam, 16) * 4 + 8));
            }
            // Bound buffers and rowsets of kLote rows, unless a column is too wide.
            enlazado_ = true;
            for (auto a : anchos_)
                if (a > 16384) enlazado_ = false;
        }
        if (enlazado_) enlazar();
        if (paginado_) terminado_ = false;
        if (adelantable() && enlazado_) adelantar();
    }

    // A full block: its last row's keys (the driver holds the whole block) start the next
    // block on the other connection, on another thread; then back to the first rowset. The
    // two connections take turns, so that no connection is used by two threads at once.
    void adelantar() {
        SQLLEN filas = -1;
        SQLRowCount(stmt_->get(), &filas);
        if (filas >= 0 && static_cast<std::size_t>(filas) < bloque_) return;  // the last block
        const SQLRETURN r = SQLFetchScroll(stmt_->get(), SQL_FETCH_LAST, 0);
        if (r == SQL_NO_DATA || lote_ == 0) return;
        if (!SQL_SUCCEEDED(r)) fallarOdbc(*stmt_, "leer los datos del reporte", sql_.back());
        guardarClavesEnlazadas(lote_ - 1);
        if (!conectado2_) conectar(dbc2_, connect_);
        const Manejador* otra = enSegunda_ ? &dbc_ : &dbc2_;
        decidirOrden(*otra);
        if (!adelantable()) {
            // The rest goes through a sorted table, on this connection, after this block.
            if (!SQL_SUCCEEDED(SQLFetchScroll(stmt_->get(), SQL_FETCH_FIRST, 0)))
                fallarOdbc(*stmt_, "leer los datos del reporte", sql_.back());
            posLote_ = 0;
            return;
        }
        const std::string sql = sqlBloque();
        registrarSql(sql);
        adelantado_ =
            std::async(std::launch::async, [otra, sql] { return ejecutar(*otra, sql, true); });
        // The first rowset is read from the buffers, then SQLFetch goes on from there.
        const SQLRETURN p = SQLFetchScroll(stmt_->get(), SQL_FETCH_FIRST, 0);
        if (!SQL_SUCCEEDED(p)) fallarOdbc(*stmt_, "leer los datos del reporte", sql_.back());
        posLote_ = 0;
    }

    void enlazar() {
        SQLHANDLE st = stmt_->get();
        SQLSetStmtAttr(st, SQL_ATTR_ROW_BIND_TYPE, reinterpret_cast<SQLPOINTER>(SQL_BIND_BY_COLUMN),
                       0);
        SQLSetStmtAttr(st, SQL_ATTR_ROW_ARRAY_SIZE, reinterpret_cast<SQLPOINTER>(kLote), 0);
        SQLSetStmtAttr(st, SQL_ATTR_ROWS_FETCHED_PTR, &lote_, 0);
        bufs_.resize(anchos_.size());
        inds_.resize(anchos_.size());
        for (std::size_t c = 0; c < anchos_.size(); ++c) {
            bufs_[c].resize(static_cast<std::size_t>(anchos_[c]) * kLote);
            inds_[c].resize(kLote);
            if (!SQL_SUCCEEDED(SQLBindCol(st, static_cast<SQLUSMALLINT>(c + 1), SQL_C_CHAR,
                                          bufs_[c].data(), anchos_[c], inds_[c].data())))
                fallarOdbc(*stmt_, "leer los datos del reporte", sql_.back());
        }
        lote_ = 0;
        posLote_ = 0;
    }

    std::string_view enlazado(std::size_t c, SQLULEN fila, bool& nulo) const {
        const SQLLEN ind = inds_[c][fila];
        nulo = ind == SQL_NULL_DATA;
        if (nulo) return {};
        const SQLLEN largo = std::min<SQLLEN>(ind, anchos_[c] - 1);
        return std::string_view(bufs_[c].data() + static_cast<std::size_t>(anchos_[c]) * fila,
                                static_cast<std::size_t>(largo));
    }

    void leerFilaEnlazada(SQLULEN fila) {
        for (std::size_t c = 0; c < fila_.size(); ++c) {
            bool nulo = false;
            const std::string_view s = enlazado(c, fila, nulo);
            fila_[c] = nulo ? Valor() : convertir(clases_[c], std::string(s));
        }
    }

    // The keys of the rowset's last row: where the next block starts.
    void guardarClavesEnlazadas(SQLULEN fila) {
        if (!paginado_) return;
        ultimos_.resize(claves_.size());
        for (std::size_t i = 0; i < claves_.size(); ++i) {
            bool nulo = false;
            const std::string s(enlazado(claves_[i].columna, fila, nulo));
            ultimos_[i] = {nulo, clases_[claves_[i].columna] == Clase::Numero
                                     ? s
                                     : formula::textoSql(s, Dialecto::MariaDB)};
        }
    }

    void leerFila() {
        const std::string& sql = sql_.back();
        std::vector<std::pair<bool, std::string>> crudos(columnasSql_.size());
        for (std::size_t c = 0; c < columnasSql_.size(); ++c) {
            bool nulo = false;
            std::string s = leerTexto(*stmt_, static_cast<SQLUSMALLINT>(c + 1), nulo, sql);
            if (c < fila_.size()) fila_[c] = nulo ? Valor() : convertir(clases_[c], s);
            crudos[c] = {nulo, std::move(s)};
        }
        if (!paginado_) return;
        ultimos_.resize(claves_.size());
        for (std::size_t i = 0; i < claves_.size(); ++i) {
            const auto& [nulo, s] = crudos[claves_[i].columna];
            // Numbers go back as the server wrote them; the rest as quoted text.
            ultimos_[i] = {nulo, clases_[claves_[i].columna] == Clase::Numero
                                     ? s
                                     : formula::textoSql(s, Dialecto::MariaDB)};
        }
    }

    DescripcionConsulta desc_;
    std::string connect_;
    Manejador env_, dbc_, dbc2_;  // dbc2_: the blocks read ahead
    bool conectado_ = false;
    bool conectado2_ = false;
    bool enSegunda_ = false;  // stmt_ was run on dbc2_
    std::unique_ptr<Manejador> stmt_;
    std::string donde_;
    std::string base_;
    std::vector<RefCampo> columnasSql_;
    std::vector<std::string> expresiones_;  // select expressions replacing columns
    std::vector<Clave> claves_;
    std::vector<Clase> clases_;
    std::vector<std::pair<bool, std::string>> ultimos_;       // last row's keys: (null, literal)
    std::vector<std::pair<bool, std::string>> inicioBloque_;  // keys the current block follows
    bool paginado_ = false;
    bool sinIndice_ = false;      // no index serves the order: the server sorts
    bool ordenDecidido_ = false;  // sinIndice_ is known (after the first block)
    bool materializado_ = false;  // the rest was sorted into kTablaOrden (or refused)
    static constexpr const char* kTablaOrden = "tz_orden";
    bool terminado_ = false;
    std::size_t enBloque_ = 0;
    std::size_t bloque_ = 0;  // rows per block
    // Bound mode: column buffers for rowsets of kLote rows.
    static constexpr SQLULEN kLote = 256;
    bool enlazado_ = false;
    std::vector<SQLLEN> anchos_;
    std::vector<std::vector<char>> bufs_;
    std::vector<std::vector<SQLLEN>> inds_;
    SQLULEN lote_ = 0;
    SQLULEN posLote_ = 0;
    // The next block, executed on dbc2_ by another thread (last: waited for first).
    std::future<std::unique_ptr<Manejador>> adelantado_;
};

}  // namespace detail

std::unique_ptr<Filas> abrirOdbc(const std::string& connect, const DescripcionConsulta& d,
                                 const Opciones& o) {
    return std::make_unique<detail::FilasOdbc>(connect, d, o);
}

}  // namespace paratzorep::renderer::data
