#include "host/Recordset.h"

#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdio>

#include "host/BaseDD.h"

namespace paratzorep::host {

namespace detail {

bool IgualSinMayusculas(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (std::tolower(static_cast<unsigned char>(a[i])) !=
            std::tolower(static_cast<unsigned char>(b[i])))
            return false;
    }
    return true;
}

std::string Minusculas(std::string_view s) {
    std::string r(s);
    for (auto& c : r) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return r;
}

std::string_view Recorta(std::string_view s) {
    while (!s.empty() && std::isspace(static_cast<unsigned char>(s.front()))) s.remove_prefix(1);
    while (!s.empty() && std::isspace(static_cast<unsigned char>(s.back()))) s.remove_suffix(1);
    return s;
}

std::string ComponeMensaje(const std::string& accion, const std::string& sql, int codigo,
                           const std::string& mensaje) {
    std::string m = accion;
    if (!mensaje.empty()) m += ": " + mensaje;
    if (codigo != 0) m += " (código " + std::to_string(codigo) + ")";
    if (!sql.empty()) m += " [SQL: " + sql + "]";
    return m;
}

}  // namespace detail

ErrorDatos::ErrorDatos(std::string accion, std::string sql, int codigo, std::string mensaje)
    : std::runtime_error(detail::ComponeMensaje(accion, sql, codigo, mensaje)),
      accion_(std::move(accion)),
      sql_(std::move(sql)),
      codigo_(codigo),
      mensaje_(std::move(mensaje)) {}

bool EsTipoNumerico(TipoCampo tipo) {
    return tipo == TipoCampo::Entero || tipo == TipoCampo::Decimal;
}

Valor::Valor(double numero) : tipo_(TipoCampo::Decimal), nulo_(false) {
    // Shortest text that reads back as the same double.
    char buf[64];
    auto [fin, ec] = std::to_chars(buf, buf + sizeof buf, numero);
    texto_ = ec == std::errc() ? std::string(buf, fin) : std::to_string(numero);
}

Valor Valor::Nulo(TipoCampo tipo) {
    Valor v;
    v.tipo_ = tipo;
    return v;
}

double Valor::Doble() const {
    if (nulo_) return 0;
    std::string_view s = detail::Recorta(texto_);
    if (!s.empty() && s.front() == '+') s.remove_prefix(1);
    double d = 0;
    auto [fin, ec] = std::from_chars(s.data(), s.data() + s.size(), d);
    if (ec != std::errc() || fin != s.data() + s.size() || !std::isfinite(d)) return 0;
    return d;
}

std::int64_t Valor::Entero() const {
    if (nulo_) return 0;
    std::string_view s = detail::Recorta(texto_);
    if (!s.empty() && s.front() == '+') s.remove_prefix(1);
    std::int64_t n = 0;
    auto [fin, ec] = std::from_chars(s.data(), s.data() + s.size(), n);
    if (ec == std::errc() && fin == s.data() + s.size()) return n;
    // "12.0", "1e3": rounded as the system's numeric conversion does, halves to even.
    double d = Doble();
    if (d >= -9.2e18 && d <= 9.2e18) return static_cast<std::int64_t>(std::llrint(d));
    return 0;
}

std::string Valor::Fecha() const {
    if (nulo_ || texto_.size() < 10) return {};
    std::string_view f(texto_.data(), 10);
    for (std::size_t i = 0; i < 10; ++i) {
        bool guion = i == 4 || i == 7;
        if (guion ? f[i] != '-' : !std::isdigit(static_cast<unsigned char>(f[i]))) return {};
    }
    if (texto_.size() > 10 && texto_[10] != ' ' && texto_[10] != 'T') return {};
    if (f == "0000-00-00") return {};
    return std::string(f);
}

bool Valor::Booleano() const {
    if (nulo_) return false;
    std::string_view s = detail::Recorta(texto_);
    if (detail::IgualSinMayusculas(s, "true") || detail::IgualSinMayusculas(s, "verdadero"))
        return true;
    return Doble() != 0;
}

void Recordset::Abre(std::vector<Columna> columnas, std::vector<std::vector<Valor>> filas,
                     std::string fuente, std::string tabla, std::weak_ptr<ConexionBdD> cn) {
    columnas_ = std::move(columnas);
    indice_.clear();
    for (std::size_t i = 0; i < columnas_.size(); ++i)
        indice_.emplace(detail::Minusculas(columnas_[i].nombre), i);
    filas_ = std::move(filas);
    originales_ = filas_;
    estado_.assign(filas_.size(), EstadoFila::Leida);
    fuente_ = std::move(fuente);
    tabla_ = std::move(tabla);
    cn_ = std::move(cn);
    pos_ = 0;
    abierto_ = true;
}

void Recordset::Cierra() {
    columnas_.clear();
    indice_.clear();
    filas_.clear();
    originales_.clear();
    estado_.clear();
    fuente_.clear();
    tabla_.clear();
    cn_.reset();
    pos_ = 0;
    abierto_ = false;
}

void Recordset::MoveNext() {
    if (Eof()) throw ErrorRecordset("No hay registro siguiente: el recordset está al final");
    ++pos_;
}

void Recordset::MovePrevious() {
    if (pos_ < 0) throw ErrorRecordset("No hay registro anterior: el recordset está al inicio");
    --pos_;
}

void Recordset::Posiciona(std::int32_t fila) {
    if (fila < 0 || fila > RecordCount())
        throw ErrorRecordset("Posición fuera del recordset: " + std::to_string(fila));
    pos_ = fila;
}

std::optional<std::size_t> Recordset::IndiceDe(std::string_view nombre) const {
    if (auto it = indice_.find(detail::Minusculas(nombre)); it != indice_.end()) return it->second;
    // A qualified name ("tabla.campo") also finds the column by its bare name.
    if (auto punto = nombre.rfind('.'); punto != std::string_view::npos)
        return IndiceDe(nombre.substr(punto + 1));
    return std::nullopt;
}

std::size_t Recordset::IndiceExigido(std::string_view nombre) const {
    auto i = IndiceDe(nombre);
    if (!i) {
        throw ErrorRecordset("El campo '" + std::string(nombre) + "' no existe en '" + fuente_ +
                             "'");
    }
    return *i;
}

void Recordset::ExigeFilaActual() const {
    if (pos_ < 0 || pos_ >= RecordCount())
        throw ErrorRecordset("No hay registro actual en '" + fuente_ + "'");
}

const Valor& Recordset::Campo(std::string_view nombre) const {
    std::size_t i = IndiceExigido(nombre);
    ExigeFilaActual();
    return filas_[pos_][i];
}

const Valor& Recordset::Campo(std::size_t indice) const {
    if (indice >= columnas_.size())
        throw ErrorRecordset("Índice de campo fuera de rango: " + std::to_string(indice));
    ExigeFilaActual();
    return filas_[pos_][indice];
}

void Recordset::Asigna(std::string_view nombre, Valor valor) {
    std::size_t i = IndiceExigido(nombre);
    ExigeFilaActual();
    // Keep the column's type so that later reads and NoNull treat the value alike.
    if (valor.EsNulo()) valor = Valor::Nulo(columnas_[i].tipo);
    filas_[pos_][i] = std::move(valor);
    if (estado_[pos_] == EstadoFila::Leida) estado_[pos_] = EstadoFila::Modificada;
}

void Recordset::AddNew() {
    if (!abierto_) throw ErrorRecordset("El recordset no está abierto");
    std::vector<Valor> fila;
    fila.reserve(columnas_.size());
    for (const auto& c : columnas_) fila.push_back(Valor::Nulo(c.tipo));
    originales_.push_back(fila);
    filas_.push_back(std::move(fila));
    estado_.push_back(EstadoFila::Nueva);
    pos_ = RecordCount() - 1;
}

std::vector<std::int32_t> Recordset::FilasPendientes() const {
    std::vector<std::int32_t> r;
    for (std::size_t i = 0; i < estado_.size(); ++i) {
        if (estado_[i] != EstadoFila::Leida) r.push_back(static_cast<std::int32_t>(i));
    }
    return r;
}

void Recordset::MarcaGuardada(std::int32_t fila, std::optional<Valor> generado) {
    auto& f = filas_.at(fila);
    if (generado) {
        for (std::size_t i = 0; i < columnas_.size(); ++i) {
            if (columnas_[i].autoIncremento && f[i].EsNulo()) f[i] = *generado;
        }
    }
    originales_.at(fila) = f;
    estado_.at(fila) = EstadoFila::Leida;
}

}  // namespace paratzorep::host
