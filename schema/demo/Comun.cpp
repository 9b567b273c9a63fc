#include "schema/demo/Comun.h"

#include <cmath>
#include <cstdio>
#include <stdexcept>
#include <utility>

namespace paratzorep::schema::detail {

namespace {
std::uint64_t splitmix64(std::uint64_t& x) {
    std::uint64_t z = (x += 0x9E3779B97F4A7C15ULL);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
    return z ^ (z >> 31);
}
std::uint64_t rotl(std::uint64_t x, int k) {
    return (x << k) | (x >> (64 - k));
}
}  // namespace

Azar::Azar(std::uint64_t semilla) {
    std::uint64_t x = semilla;
    for (auto& s : s_) s = splitmix64(x);
}

std::uint64_t Azar::siguiente() {
    const std::uint64_t r = rotl(s_[1] * 5, 7) * 9;
    const std::uint64_t t = s_[1] << 17;
    s_[2] ^= s_[0];
    s_[3] ^= s_[1];
    s_[1] ^= s_[2];
    s_[0] ^= s_[3];
    s_[2] ^= t;
    s_[3] = rotl(s_[3], 45);
    return r;
}

long long Azar::entre(long long a, long long b) {
    if (b <= a) return a;
    const std::uint64_t rango = static_cast<std::uint64_t>(b - a) + 1;
    return a + static_cast<long long>(siguiente() % rango);
}

double Azar::unitario() {
    return static_cast<double>(siguiente() >> 11) * 0x1.0p-53;
}

Azar azarDe(std::uint64_t semilla, std::string_view nombre) {
    std::uint64_t h = 0xCBF29CE484222325ULL;  // FNV-1a of the name
    for (unsigned char ch : nombre) h = (h ^ ch) * 0x100000001B3ULL;
    return Azar(semilla ^ h);
}

int diasDesdeCivil(int y, int m, int d) {
    y -= m <= 2;
    const int era = (y >= 0 ? y : y - 399) / 400;
    const int yoe = y - era * 400;
    const int doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const int doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + doe - 719468;
}

void civilDeDias(int z, int& y, int& m, int& d) {
    z += 719468;
    const int era = (z >= 0 ? z : z - 146096) / 146097;
    const int doe = z - era * 146097;
    const int yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    y = yoe + era * 400;
    const int doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const int mp = (5 * doy + 2) / 153;
    d = doy - (153 * mp + 2) / 5 + 1;
    m = mp + (mp < 10 ? 3 : -9);
    y += m <= 2;
}

std::string textoFecha(int dias) {
    int y, m, d;
    civilDeDias(dias, y, m, d);
    char b[16];
    std::snprintf(b, sizeof b, "%04d-%02d-%02d", y, m, d);
    return b;
}

int fechaDeTexto(std::string_view t) {
    int y = 0, m = 0, d = 0;
    if (t.size() != 10 || t[4] != '-' || t[7] != '-' ||
        std::sscanf(std::string(t).c_str(), "%4d-%2d-%2d", &y, &m, &d) != 3 || m < 1 || m > 12 ||
        d < 1 || d > 31)
        throw std::invalid_argument("fecha no válida: '" + std::string(t) + "'");
    return diasDesdeCivil(y, m, d);
}

std::string textoCentavos(long long c) {
    const bool neg = c < 0;
    const unsigned long long a = neg ? 0ULL - static_cast<unsigned long long>(c) : c;
    char b[32];
    std::snprintf(b, sizeof b, "%s%llu.%02llu", neg ? "-" : "", a / 100, a % 100);
    return b;
}

std::string textoMilesimas(long long c) {
    const bool neg = c < 0;
    const unsigned long long a = neg ? 0ULL - static_cast<unsigned long long>(c) : c;
    char b[32];
    std::snprintf(b, sizeof b, "%s%llu.%03llu", neg ? "-" : "", a / 1000, a % 1000);
    return b;
}

std::string junta(std::initializer_list<std::string> partes) {
    std::string r;
    for (const auto& p : partes) r += p;
    return r;
}

std::string conCeros(long long n, int ancho) {
    std::string s = std::to_string(n);
    if (static_cast<int>(s.size()) < ancho) s.insert(0, ancho - s.size(), '0');
    return s;
}

Escritores::Escritores(Conexion& origen, int n, std::function<void()> avance)
    : avance_(std::move(avance)) {
    for (int i = 0; i < n; ++i) {
        conexiones_.push_back(origen.otra());
        for (const char* sql : {"SET SESSION unique_checks=0", "SET SESSION foreign_key_checks=0",
                                "SET SESSION sql_mode='NO_ENGINE_SUBSTITUTION'"})
            conexiones_.back().ejecutar(sql);
    }
    for (auto& c : conexiones_) hilos_.emplace_back([this, &c] { trabaja(c); });
}

Escritores::~Escritores() {
    {
        std::lock_guard l(m_);
        fin_ = true;
    }
    hay_.notify_all();
    for (auto& h : hilos_) h.join();
}

template <typename Pred>
void Escritores::espera(std::unique_lock<std::mutex>& l, Pred listo) {
    auto hecho = [&] { return listo() || error_; };
    if (!avance_) {
        espacio_.wait(l, hecho);
        return;
    }
    while (!espacio_.wait_for(l, kPausaAvance, hecho)) {
        l.unlock();
        avance_();
        l.lock();
    }
}

void Escritores::envia(std::string sql, long long filas) {
    {
        std::unique_lock l(m_);
        espera(l, [&] { return cola_.size() < kMaxCola; });
        if (error_) std::rethrow_exception(error_);
        cola_.push_back({std::move(sql), filas});
        enviadas_ += filas;
    }
    hay_.notify_one();
    if (avance_) avance_();
}

void Escritores::termina() {
    std::unique_lock l(m_);
    espera(l, [&] { return cola_.empty() && ocupados_ == 0; });
    if (error_) std::rethrow_exception(error_);
}

// Batches of one table land side by side on several connections, and InnoDB may pick one of
// them as the victim of a deadlock (or let it wait too long for a lock). The statement is then
// undone whole, so it runs again.
void Escritores::ejecuta(Conexion& c, const std::string& sql) {
    for (int intento = 1;; ++intento) {
        try {
            c.ejecutar(sql);
            return;
        } catch (const ErrorEsquema& e) {
            const bool reintenta = e.codigo() == kInterbloqueo || e.codigo() == kEsperaDeBloqueo;
            if (!reintenta || intento == kIntentos) throw;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20 * intento));
    }
}

void Escritores::trabaja(Conexion& c) {
    for (;;) {
        Sentencia s;
        {
            std::unique_lock l(m_);
            hay_.wait(l, [&] { return !cola_.empty() || fin_; });
            if (cola_.empty()) return;
            s = std::move(cola_.front());
            cola_.pop_front();
            if (error_) {  // the load has failed: drop what is left
                espacio_.notify_all();
                continue;
            }
            ++ocupados_;
        }
        std::exception_ptr e;
        try {
            ejecuta(c, s.sql);
            escritas_.fetch_add(s.filas, std::memory_order_relaxed);
        } catch (...) {
            e = std::current_exception();
        }
        {
            std::lock_guard l(m_);
            --ocupados_;
            if (e && !error_) error_ = e;
        }
        espacio_.notify_all();
    }
}

Lote::Lote(Escritores& e, ConteoFilas& conteos, std::string tabla, std::string columnas)
    : e_(e), conteos_(conteos), tabla_(std::move(tabla)), columnas_(std::move(columnas)) {
    conteos_[tabla_] += 0;
}

void Lote::termina() {
    if (buf_.empty()) return;
    conteos_[tabla_] += pendientes_;
    e_.envia(std::move(buf_), pendientes_);
    pendientes_ = 0;
    buf_.clear();
}

}  // namespace paratzorep::schema::detail
