// Excel 97-2003 workbook (BIFF8 in a compound file). Cells are streamed sheet by sheet
// to temporary files; the shared string table and the workbook globals are assembled on
// Cerrar(). A sheet holds at most 65536 rows: the table continues on a new sheet
// ("Hoja (2)", ...), with the column titles repeated on top. Under titles every sheet keeps
// them in view (frozen row, repeated on printed pages), filters them and prints on the
// report's paper fitted to the page width.
#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "renderer/writers/SalidaTabular.h"

namespace paratzorep::renderer {

class LibroXls : public SalidaTabular {
  public:
    static constexpr std::uint32_t kFilasPorHoja = 65536;
    static constexpr std::uint16_t kColumnasPorHoja = 256;
    static constexpr std::size_t kLargoMaximoTexto = 32767;

    explicit LibroXls(std::filesystem::path archivo, std::string nombreHoja = "Hoja1");
    ~LibroXls() override;

    void Impresion(const ImpresionHoja& impresion) override { impresion_ = impresion; }
    int Estilo(const EstiloCelda& estilo) override;
    void Columnas(std::vector<ColumnaTabla> columnas) override;
    void Fila(std::span<const CeldaTabla> celdas) override;
    void Anchos(const std::vector<double>& anchos) override;
    void Cerrar() override;

    std::size_t Hojas() const { return totalHojas_; }

  private:
    struct CerrarArchivo {
        void operator()(std::FILE* f) const { std::fclose(f); }
    };
    struct Hoja {
        std::string nombre;
        std::unique_ptr<std::FILE, CerrarArchivo> datos;
        std::uint64_t tamano = 0;
        std::uint32_t filas = 0;
        std::uint16_t columnas = 0;
    };

    void NuevaHoja();
    void EscribirFila(std::span<const CeldaTabla> celdas);
    std::uint32_t IndiceTexto(const std::string& texto);
    std::string Globales(std::vector<std::size_t>& posicionesHoja) const;
    std::string InicioHoja(const Hoja& hoja) const;  // the records before the cells
    std::string FinHoja(bool primera) const;         // and after them

    std::filesystem::path archivo_;
    std::string nombreHoja_;
    std::vector<EstiloCelda> estilos_;
    std::vector<ColumnaTabla> columnas_;
    ImpresionHoja impresion_;
    bool hayTitulos_ = false;
    int estiloTitulo_ = -1;
    std::vector<Hoja> hojas_;
    std::unordered_map<std::string, std::uint32_t> indiceTextos_;
    std::vector<std::u16string> textos_;
    std::uint32_t totalTextos_ = 0;
    std::size_t totalHojas_ = 0;
    bool cerrado_ = false;
};

namespace detail {

// BIFF8 parts exposed for the tests.
inline constexpr std::size_t kMaxDatosRegistro = 8224;

// The shared string table as SST and CONTINUE records followed by EXTSST, positioned at
// `posicion` within the Workbook stream.
std::string RegistrosSst(const std::vector<std::u16string>& textos, std::uint32_t total,
                         std::size_t posicion);

// The built-in names that filter a sheet's titled table and repeat its title row on
// printed pages (Print_Titles), with the references they need (SUPBOOK, EXTERNSHEET).
// `filas`: rows of each sheet; `columnas`: columns of the table.
std::string RegistrosNombres(const std::vector<std::uint32_t>& filas, std::uint16_t columnas);

// A sheet name that Excel accepts: no []:*?/\, at most 31 characters, not blank.
std::string NombreHojaValido(const std::string& nombre);

// The name of the `numero`-th sheet of a table named `nombre`: "Ventas (2)", the name
// shortened so that the whole stays within 31 characters.
std::string NombreContinuacion(const std::string& nombre, std::size_t numero);

}  // namespace detail
}  // namespace paratzorep::renderer
