// What every part of the demo generator shares: the source of chance, dates and
// fixed-point texts, SQL value lists, and the batched writers that load them.
#pragma once

#include <atomic>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <cstdint>
#include <cstdio>
#include <deque>
#include <exception>
#include <functional>
#include <initializer_list>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "schema/GeneradorDemo.h"

namespace paratzorep::schema::detail {

// xoshiro256** seeded through splitmix64: the generator's only source of chance.
class Azar {
  public:
    explicit Azar(std::uint64_t semilla);
    std::uint64_t siguiente();
    // Uniform integer in [a, b].
    long long entre(long long a, long long b);
    // Uniform in [0, 1).
    double unitario();
    bool probable(double p) { return unitario() < p; }

  private:
    std::uint64_t s_[4];
};

// A stream of chance of its own, fixed by the seed and a name, apart from the seed's own.
Azar azarDe(std::uint64_t semilla, std::string_view nombre);

// Days since 1970-01-01 <-> "yyyy-mm-dd".
int diasDesdeCivil(int anio, int mes, int dia);
void civilDeDias(int dias, int& anio, int& mes, int& dia);
std::string textoFecha(int dias);
int fechaDeTexto(std::string_view texto);  // throws std::invalid_argument

// Fixed-point texts: cents as "-12.34", thousandths as "1.250".
std::string textoCentavos(long long centavos);
std::string textoMilesimas(long long milesimas);

template <typename T>
const T& elige(Azar& a, const std::vector<T>& v) {
    return v[static_cast<size_t>(a.entre(0, static_cast<long long>(v.size()) - 1))];
}

// Joins texts in order: a braced list evaluates its elements left to right, so
// the draws of chance inside them happen in a fixed order on every compiler.
std::string junta(std::initializer_list<std::string> partes);
inline long long redondea(double v) {
    return static_cast<long long>(std::llround(v));
}
std::string conCeros(long long n, int ancho);

// One row's SQL value list.
class Renglon {
  public:
    Renglon& n(long long v) { return r(std::to_string(v)); }
    Renglon& m(long long centavos) { return r(textoCentavos(centavos)); }
    Renglon& q(long long milesimas) { return r(textoMilesimas(milesimas)); }
    Renglon& f(int dias) { return t(textoFecha(dias)); }
    Renglon& cero() { return t("0000-00-00"); }
    Renglon& h(int segundos) {
        char b[32];
        std::snprintf(b, sizeof b, "'%02d:%02d:%02d'", segundos / 3600, segundos / 60 % 60,
                      segundos % 60);
        return r(b);
    }
    Renglon& x(double v, int decimales) {
        char b[48];
        std::snprintf(b, sizeof b, "%.*f", decimales, v);
        return r(b);
    }
    Renglon& t(std::string_view s) {
        std::string v = "'";
        for (char c : s) {
            if (c == '\'')
                v += "''";
            else if (c == '\\')
                v += "\\\\";
            else
                v += c;
        }
        v += '\'';
        return r(v);
    }
    // A text stored with the server's ENCODE and the given key.
    Renglon& cod(std::string_view s, std::string_view clave) {
        Renglon tmp;
        tmp.t(s);
        return r("ENCODE(" + tmp.s_ + ",'" + std::string(clave) + "')");
    }
    Renglon& r(std::string_view crudo) {
        if (!s_.empty()) s_ += ',';
        s_ += crudo;
        return *this;
    }
    const std::string& texto() const { return s_; }

  private:
    std::string s_;
};

// Runs the INSERT statements on a few connections of their own while the
// generator goes on: the server's time, not the generator's, dominates a load.
// Every row carries its key, so the order in which batches land does not change
// the data.
class Escritores {
  public:
    // `avance` is called on the sending thread after each statement handed over
    // and every fraction of a second while it waits for the server (may be empty).
    Escritores(Conexion& origen, int n, std::function<void()> avance = {});
    Escritores(const Escritores&) = delete;
    Escritores& operator=(const Escritores&) = delete;
    ~Escritores();

    // Queues a statement of `filas` rows; rethrows the first failure of any writer.
    void envia(std::string sql, long long filas);
    // Waits until every statement sent has run; rethrows the first failure.
    void termina();

    // Rows composed by the batches (counted on the sending thread), sent, and run by the server.
    void filaGenerada() { ++generadas_; }
    long long filasGeneradas() const { return generadas_; }
    long long filasEnviadas() const { return enviadas_; }
    long long filasEscritas() const { return escritas_.load(std::memory_order_relaxed); }

  private:
    static constexpr size_t kMaxCola = 6;
    static constexpr std::chrono::milliseconds kPausaAvance{200};

    struct Sentencia {
        std::string sql;
        long long filas = 0;
    };

    // The server's "deadlock found" and "lock wait timeout exceeded", and the tries a statement
    // gets when they are its failure.
    static constexpr unsigned kInterbloqueo = 1213, kEsperaDeBloqueo = 1205;
    static constexpr int kIntentos = 5;

    // Waits under `l` until `listo` holds or a writer failed, calling `avance_`
    // (unlocked) while it waits.
    template <typename Pred>
    void espera(std::unique_lock<std::mutex>& l, Pred listo);
    // Runs one statement, again when the server undid it for a deadlock or a lock wait.
    static void ejecuta(Conexion& c, const std::string& sql);
    void trabaja(Conexion& c);

    std::function<void()> avance_;
    std::vector<Conexion> conexiones_;
    std::vector<std::thread> hilos_;
    std::mutex m_;
    std::condition_variable hay_, espacio_;
    std::deque<Sentencia> cola_;
    int ocupados_ = 0;
    bool fin_ = false;
    std::exception_ptr error_;
    long long generadas_ = 0, enviadas_ = 0;
    std::atomic<long long> escritas_{0};
};

// One table's multi-row INSERTs of a few megabytes, counted into `conteos`.
class Lote {
  public:
    Lote(Escritores& e, ConteoFilas& conteos, std::string tabla, std::string columnas);
    Lote(const Lote&) = delete;
    Lote& operator=(const Lote&) = delete;

    void agrega(const Renglon& r) {
        if (buf_.empty())
            buf_ = "INSERT INTO " + tabla_ + " (" + columnas_ + ") VALUES ";
        else
            buf_ += ',';
        buf_ += '(';
        buf_ += r.texto();
        buf_ += ')';
        ++pendientes_;
        e_.filaGenerada();
        if (buf_.size() > kTamLote) termina();
    }
    // Sends what is pending.
    void termina();

  private:
    static constexpr size_t kTamLote = 2u << 20;
    Escritores& e_;
    ConteoFilas& conteos_;
    std::string tabla_, columnas_, buf_;
    long long pendientes_ = 0;
};

}  // namespace paratzorep::schema::detail
