// Excel 2007+ workbook through libxlsxwriter in constant-memory mode: rows go to disk
// as they arrive. Cells hold values (numbers, dates as serials with a date format,
// texts), never formulas: readers show formulas without a cached value as 0. Past
// 1,048,576 rows the table continues on a new sheet under repeated titles. Under titles a
// sheet keeps them in view (frozen row, repeated on printed pages), filters them and prints
// on the report's paper fitted to the page width.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "renderer/writers/ArchivoSalida.h"
#include "renderer/writers/SalidaTabular.h"

struct lxw_workbook;
struct lxw_worksheet;
struct lxw_format;

namespace paratzorep::renderer {

class LibroXlsx : public SalidaTabular {
  public:
    static constexpr std::uint32_t kFilasPorHoja = 1048576;
    static constexpr std::uint16_t kColumnasPorHoja = 16384;

    // `filasPorHoja` below the format's limit serves the tests of sheet continuation.
    explicit LibroXlsx(std::filesystem::path archivo, std::string nombreHoja = "Hoja1",
                       std::uint32_t filasPorHoja = kFilasPorHoja);
    ~LibroXlsx() override;
    LibroXlsx(const LibroXlsx&) = delete;
    LibroXlsx& operator=(const LibroXlsx&) = delete;

    void Impresion(const ImpresionHoja& impresion) override { impresion_ = impresion; }
    int Estilo(const EstiloCelda& estilo) override;
    void Columnas(std::vector<ColumnaTabla> columnas) override;
    void Fila(std::span<const CeldaTabla> celdas) override;
    void Anchos(const std::vector<double>& anchos) override;
    void Cerrar() override;

    std::size_t Hojas() const { return hojas_.size(); }

  private:
    void NuevaHoja();
    void EscribirFila(std::span<const CeldaTabla> celdas);
    lxw_format* Formato(int estilo, CeldaTabla::Tipo tipo);

    std::filesystem::path archivo_;
    detail::Parcial parcial_;
    std::string nombreHoja_;
    std::uint32_t filasPorHoja_;
    lxw_workbook* libro_ = nullptr;  // owned: closed by Cerrar or the destructor
    lxw_worksheet* hoja_ = nullptr;
    std::uint32_t fila_ = 0;
    std::vector<std::uint32_t> filasConDatos_;  // per sheet, to check the finished file
    std::vector<lxw_worksheet*> hojas_;         // owned by the workbook
    std::vector<std::uint32_t> filasHoja_;      // rows written on each sheet
    ImpresionHoja impresion_;
    bool hayTitulos_ = false;
    std::vector<EstiloCelda> estilos_;
    std::vector<lxw_format*> formatos_;       // per style, created on first use
    std::vector<lxw_format*> formatosFecha_;  // per style, with the default date format
    std::vector<lxw_format*> formatosHora_;   // per style, with the default time format
    std::vector<ColumnaTabla> columnas_;
    int estiloTitulo_ = -1;
    bool cerrado_ = false;
};

namespace detail {
// Reads the finished package back: every entry's CRC and size, and each worksheet's
// count of rows against what was written. libxlsxwriter does not check its writes to
// temporary files, so a full disk there would otherwise leave a corrupt workbook that
// reports success. Throws ErrorEscritura.
void VerificarXlsx(const std::filesystem::path& archivo, const std::filesystem::path& nombre,
                   const std::vector<std::uint32_t>& filasPorHoja);
}  // namespace detail

}  // namespace paratzorep::renderer
