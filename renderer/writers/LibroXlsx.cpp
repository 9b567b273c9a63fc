#include "renderer/writers/LibroXlsx.h"

#include <xlsxwriter.h>

#include <algorithm>
#include <cmath>
#include <system_error>

#include "renderer/writers/ArchivoSalida.h"
#include "renderer/writers/ErrorEscritura.h"
#include "renderer/writers/LibroXls.h"
#include "renderer/writers/Unicode.h"

namespace paratzorep::renderer {
namespace detail {
namespace {

constexpr std::size_t kLargoMaximoTexto = 32767;  // characters per cell

// Valid UTF-8 cut to the cell limit, counted in code points as the library counts them.
std::string TextoCelda(const std::string& texto) {
    std::string s = Utf8Valido(texto);
    std::size_t puntos = 0;
    for (std::size_t i = 0; i < s.size(); ++i) {
        if ((static_cast<unsigned char>(s[i]) & 0xC0) != 0x80 && ++puntos > kLargoMaximoTexto) {
            s.resize(i);
            break;
        }
    }
    return s;
}

}  // namespace
}  // namespace detail

LibroXlsx::LibroXlsx(std::filesystem::path archivo, std::string nombreHoja,
                     std::uint32_t filasPorHoja)
    : archivo_(std::move(archivo)),
      parcial_(detail::RutaParcial(archivo_)),
      nombreHoja_(detail::NombreHojaValido(nombreHoja)),
      filasPorHoja_(std::clamp<std::uint32_t>(filasPorHoja, 2, kFilasPorHoja)) {
    if (archivo_.empty()) throw ErrorEscritura("No se indicó el nombre del archivo");
    lxw_workbook_options opciones{};
    opciones.constant_memory = LXW_TRUE;
    opciones.use_zip64 = LXW_TRUE;
    libro_ = workbook_new_opt(parcial_.string().c_str(), &opciones);
    if (libro_ == nullptr)
        throw ErrorEscritura("No se pudo crear el libro de Excel", archivo_.string());
    estilos_.push_back(EstiloCelda{});
}

LibroXlsx::~LibroXlsx() {
    if (libro_ != nullptr) {
        workbook_close(libro_);
        std::error_code ec;
        std::filesystem::remove(parcial_, ec);
    }
}

int LibroXlsx::Estilo(const EstiloCelda& estilo) {
    auto it = std::find(estilos_.begin(), estilos_.end(), estilo);
    if (it != estilos_.end()) return static_cast<int>(it - estilos_.begin());
    estilos_.push_back(estilo);
    return static_cast<int>(estilos_.size() - 1);
}

void LibroXlsx::Columnas(std::vector<ColumnaTabla> columnas) {
    if (columnas.size() > kColumnasPorHoja) columnas.resize(kColumnasPorHoja);
    columnas_ = std::move(columnas);
    estiloTitulo_ = Estilo(EstiloCelda{"", true, AlineacionCelda::Centro});
}

lxw_format* LibroXlsx::Formato(int estilo, bool fecha) {
    if (estilo < 0 || static_cast<std::size_t>(estilo) >= estilos_.size()) estilo = 0;
    const EstiloCelda& e = estilos_[estilo];
    fecha = fecha && e.formato.empty();
    if (estilo == 0 && !fecha) return nullptr;
    auto& cache = fecha ? formatosFecha_ : formatos_;
    if (cache.size() < estilos_.size()) cache.resize(estilos_.size(), nullptr);
    if (cache[estilo] == nullptr) {
        lxw_format* f = workbook_add_format(libro_);
        std::string formato = fecha ? "dd/mm/yyyy" : detail::Utf8Valido(e.formato);
        if (!formato.empty()) format_set_num_format(f, formato.c_str());
        if (e.negrita) format_set_bold(f);
        switch (e.alineacion) {
            case AlineacionCelda::Izquierda:
                format_set_align(f, LXW_ALIGN_LEFT);
                break;
            case AlineacionCelda::Centro:
                format_set_align(f, LXW_ALIGN_CENTER);
                break;
            case AlineacionCelda::Derecha:
                format_set_align(f, LXW_ALIGN_RIGHT);
                break;
            case AlineacionCelda::General:
                break;
        }
        cache[estilo] = f;
    }
    return cache[estilo];
}

void LibroXlsx::NuevaHoja() {
    std::string nombre =
        hojas_ == 0 ? nombreHoja_ : detail::NombreContinuacion(nombreHoja_, hojas_ + 1);
    hoja_ = workbook_add_worksheet(libro_, nombre.c_str());
    if (hoja_ == nullptr)
        throw ErrorEscritura("No se pudo agregar la hoja al libro de Excel", archivo_.string(),
                             nombre);
    ++hojas_;
    fila_ = 0;
    for (std::size_t c = 0; c < columnas_.size(); ++c)
        worksheet_set_column(hoja_, static_cast<lxw_col_t>(c), static_cast<lxw_col_t>(c),
                             std::clamp(columnas_[c].ancho, 0.0, 255.0), nullptr);
    bool hayTitulos = std::any_of(columnas_.begin(), columnas_.end(),
                                  [](const ColumnaTabla& c) { return !c.titulo.empty(); });
    if (hayTitulos) {
        std::vector<CeldaTabla> titulos;
        for (const auto& c : columnas_)
            titulos.push_back(CeldaTabla::Texto(c.titulo, estiloTitulo_));
        EscribirFila(titulos);
    }
}

void LibroXlsx::Fila(std::span<const CeldaTabla> celdas) {
    if (cerrado_) throw ErrorEscritura("El libro ya está cerrado", archivo_.string());
    if (hoja_ == nullptr || fila_ >= filasPorHoja_) NuevaHoja();
    EscribirFila(celdas);
}

void LibroXlsx::EscribirFila(std::span<const CeldaTabla> celdas) {
    const std::size_t n = std::min<std::size_t>(celdas.size(), kColumnasPorHoja);
    for (std::size_t c = 0; c < n; ++c) {
        const CeldaTabla& celda = celdas[c];
        const auto col = static_cast<lxw_col_t>(c);
        lxw_error error = LXW_NO_ERROR;
        switch (celda.tipo) {
            case CeldaTabla::Tipo::Vacia:
                continue;
            case CeldaTabla::Tipo::Numero:
            case CeldaTabla::Tipo::Fecha:
                if (!std::isfinite(celda.numero)) continue;
                error = worksheet_write_number(
                    hoja_, fila_, col, celda.numero,
                    Formato(celda.estilo, celda.tipo == CeldaTabla::Tipo::Fecha));
                break;
            case CeldaTabla::Tipo::Texto:
                if (celda.texto.empty()) continue;
                error = worksheet_write_string(hoja_, fila_, col,
                                               detail::TextoCelda(celda.texto).c_str(),
                                               Formato(celda.estilo, false));
                break;
        }
        if (error != LXW_NO_ERROR)
            throw ErrorEscritura("No se pudo escribir una celda del libro de Excel",
                                 archivo_.string(), lxw_strerror(error));
    }
    ++fila_;
}

void LibroXlsx::Cerrar() {
    if (cerrado_) return;
    if (hoja_ == nullptr) NuevaHoja();
    lxw_error error = workbook_close(libro_);
    libro_ = nullptr;
    cerrado_ = true;
    if (error != LXW_NO_ERROR) {
        std::error_code ec;
        std::filesystem::remove(parcial_, ec);
        throw ErrorEscritura("No se pudo guardar el libro de Excel", archivo_.string(),
                             lxw_strerror(error));
    }
    detail::Reemplazar(parcial_, archivo_);
}

}  // namespace paratzorep::renderer
