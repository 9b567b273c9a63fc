// Field values and the disconnected, updatable recordset that every data-access object hands
// out. A recordset holds all its rows in memory: it stays usable after its connection closes,
// and rows added or changed in it are written back by the data-access object (RstUpdate).
#pragma once

#include <concepts>
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace paratzorep::host {

class ConexionBdD;

// How a column's values are to be read; decides what NoNull gives for a null.
enum class TipoCampo : std::uint8_t { Texto, Entero, Decimal, Fecha, FechaHora, Hora, Binario };

bool EsTipoNumerico(TipoCampo tipo);

// One field value: null, or the value's text as the server sent it (numbers in C locale,
// dates "yyyy-mm-dd", date-times "yyyy-mm-dd hh:mm:ss"). A null differs from an empty text.
class Valor {
  public:
    Valor() = default;  // null
    Valor(std::string texto, TipoCampo tipo = TipoCampo::Texto)
        : texto_(std::move(texto)), tipo_(tipo), nulo_(false) {}
    Valor(const char* texto) : Valor(std::string(texto)) {}
    Valor(std::string_view texto) : Valor(std::string(texto)) {}
    Valor(double numero);
    template <std::integral T>
    requires(!std::same_as<T, bool> && !std::same_as<T, char>) Valor(T numero)
        : Valor(std::to_string(numero), TipoCampo::Entero) {}
    Valor(bool b) : Valor(std::string(b ? "1" : "0"), TipoCampo::Entero) {}

    static Valor Nulo(TipoCampo tipo = TipoCampo::Texto);

    bool EsNulo() const { return nulo_; }
    TipoCampo Tipo() const { return tipo_; }
    // The text as stored; "" for null.
    const std::string& Texto() const { return texto_; }
    // Numeric reads: 0 for null or text that is not a number; Entero rounds halves to even.
    double Doble() const;
    std::int64_t Entero() const;
    // "yyyy-mm-dd"; "" for null, for a zero date ("0000-00-00...") and for a non-date.
    std::string Fecha() const;
    // Non-zero number or "true"/"verdadero"; false for null.
    bool Booleano() const;

    // Same nullness and same text (the type is not compared).
    friend bool operator==(const Valor& a, const Valor& b) {
        return a.nulo_ == b.nulo_ && a.texto_ == b.texto_;
    }

  private:
    std::string texto_;
    TipoCampo tipo_ = TipoCampo::Texto;
    bool nulo_ = true;
};

struct Columna {
    std::string nombre;
    TipoCampo tipo = TipoCampo::Texto;
    std::string tabla;     // base table of the column, "" for a computed column
    bool esClave = false;  // part of the base table's primary key
    bool autoIncremento = false;
};

// Thrown on a misuse of a recordset (unknown field, no current row); the message is Spanish.
class ErrorRecordset : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

class Recordset {
  public:
    enum class EstadoFila : std::uint8_t { Leida, Nueva, Modificada };

    Recordset() = default;

    // Loads rows; used by the data-access objects. `tabla` is the base table that write-back
    // targets ("" when the rows are not updatable), `cn` the connection it stays attached to.
    void Abre(std::vector<Columna> columnas, std::vector<std::vector<Valor>> filas,
              std::string fuente, std::string tabla, std::weak_ptr<ConexionBdD> cn);
    // Drops rows and columns.
    void Cierra();
    bool Abierto() const { return abierto_; }
    // The text the recordset was opened with.
    const std::string& Fuente() const { return fuente_; }

    // Navigation (Eof and Bof stand for the recordset's EOF and BOF, which C reserves as macro
    // names); an empty recordset is at Eof and Bof at once.
    bool Eof() const { return pos_ >= static_cast<std::int32_t>(filas_.size()); }
    bool Bof() const { return pos_ < 0 || filas_.empty(); }
    void MoveFirst() { pos_ = 0; }
    void MoveLast() { pos_ = static_cast<std::int32_t>(filas_.size()) - 1; }
    void MoveNext();
    void MovePrevious();
    std::int32_t RecordCount() const { return static_cast<std::int32_t>(filas_.size()); }
    // 0-based index of the current row.
    std::int32_t Posicion() const { return pos_; }
    void Posiciona(std::int32_t fila);

    // Fields, looked up by name without regard to case.
    const std::vector<Columna>& Columnas() const { return columnas_; }
    std::int16_t FieldCount() const { return static_cast<std::int16_t>(columnas_.size()); }
    std::optional<std::size_t> IndiceDe(std::string_view nombre) const;
    bool TieneCampo(std::string_view nombre) const { return IndiceDe(nombre).has_value(); }
    const Valor& Campo(std::string_view nombre) const;
    const Valor& Campo(std::size_t indice) const;
    const Valor& operator[](std::string_view nombre) const { return Campo(nombre); }
    // Sets a field of the current row and marks the row for write-back.
    void Asigna(std::string_view nombre, Valor valor);

    // Appends an all-null row, makes it current and marks it new.
    void AddNew();

    // Write-back bookkeeping, used by the data-access objects.
    const std::string& TablaBase() const { return tabla_; }
    void TablaBase(std::string tabla) { tabla_ = std::move(tabla); }
    EstadoFila Estado(std::int32_t fila) const { return estado_.at(fila); }
    const std::vector<Valor>& Fila(std::int32_t fila) const { return filas_.at(fila); }
    // The row as it was read (its key locates it in the table).
    const std::vector<Valor>& Original(std::int32_t fila) const { return originales_.at(fila); }
    std::vector<std::int32_t> FilasPendientes() const;
    // Marks a row as stored; `generado` sets the auto-increment column of a new row.
    void MarcaGuardada(std::int32_t fila, std::optional<Valor> generado = std::nullopt);

    // The connection the recordset is attached to; empty once detached or closed.
    std::shared_ptr<ConexionBdD> Conexion() const { return cn_.lock(); }
    void Desconecta() { cn_.reset(); }

  private:
    std::size_t IndiceExigido(std::string_view nombre) const;
    void ExigeFilaActual() const;

    std::vector<Columna> columnas_;
    // Lower-case column name -> first column of that name.
    std::unordered_map<std::string, std::size_t> indice_;
    std::vector<std::vector<Valor>> filas_;
    std::vector<std::vector<Valor>> originales_;
    std::vector<EstadoFila> estado_;
    std::string fuente_;
    std::string tabla_;
    std::weak_ptr<ConexionBdD> cn_;
    std::int32_t pos_ = 0;
    bool abierto_ = false;
};

}  // namespace paratzorep::host
