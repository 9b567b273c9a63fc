// CSV file (RFC 4180): comma separated, CRLF line ends, fields quoted when they hold a
// comma, a quote, a line break or edge blanks, quotes doubled. Encoding UTF-8 with a
// byte-order mark: Excel reads a CSV as the system's ANSI code page unless the mark is
// there (accents would break), and LibreOffice and Python's "utf-8-sig" accept it.
// Numbers use "." and no thousands separator, rounded to the decimals their format
// shows; dates are ISO 8601 ("2024-02-29", with " 13:30:00" when they carry a time), times
// "13:30:00", which both spreadsheets recognise whatever the locale. The title row is
// written even when no row follows.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "renderer/writers/SalidaTabular.h"

namespace paratzorep::renderer {
namespace detail {
class ArchivoSalida;
}

class ArchivoCsv : public SalidaTabular {
  public:
    explicit ArchivoCsv(std::filesystem::path archivo);
    ~ArchivoCsv() override;

    int Estilo(const EstiloCelda& estilo) override;
    void Columnas(std::vector<ColumnaTabla> columnas) override;
    void Fila(std::span<const CeldaTabla> celdas) override;
    void Cerrar() override;

  private:
    std::unique_ptr<detail::ArchivoSalida> archivo_;
    std::vector<int> decimales_;  // per style: decimals its format shows, -1 for all
    std::string linea_;
};

namespace detail {
std::string CampoCsv(std::string_view texto);
std::string NumeroCsv(double valor, int decimales);
std::string FechaCsv(double serie);
std::string HoraCsv(double fraccion);  // "hh:mm:ss"
int DecimalesDeFormato(std::string_view formato);
}  // namespace detail

}  // namespace paratzorep::renderer
