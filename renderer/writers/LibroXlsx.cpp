#include "renderer/writers/LibroXlsx.h"

#include <fcntl.h>
#include <unistd.h>
#include <xlsxwriter.h>
#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <system_error>

#include "renderer/writers/ArchivoSalida.h"
#include "renderer/writers/ErrorEscritura.h"
#include "renderer/writers/LibroXls.h"
#include "renderer/writers/Unicode.h"

namespace paratzorep::renderer {
namespace detail {

// Runs `f` with the process's stderr closed: libxlsxwriter prints its failures there in
// English, and the writer reports them itself.
template <class F>
void SinMensajesDeLaBiblioteca(F f) {
    std::fflush(stderr);
    const int guardado = ::dup(2);
    const int nulo = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (guardado >= 0 && nulo >= 0) ::dup2(nulo, 2);
    if (nulo >= 0) ::close(nulo);
    f();
    std::fflush(stderr);
    if (guardado >= 0) {
        ::dup2(guardado, 2);
        ::close(guardado);
    }
}

// The reason of a libxlsxwriter failure: the system's when the library's came from a failed call.
std::string CausaXlsx(lxw_error error, const std::string& causaSistema) {
    switch (error) {
        case LXW_ERROR_MEMORY_MALLOC_FAILED:
            return "sin memoria";
        case LXW_ERROR_CREATING_XLSX_FILE:
        case LXW_ERROR_CREATING_TMPFILE:
        case LXW_ERROR_READING_TMPFILE:
        case LXW_ERROR_ZIP_FILE_OPERATION:
        case LXW_ERROR_ZIP_FILE_ADD:
        case LXW_ERROR_ZIP_CLOSE:
            return causaSistema;
        case LXW_ERROR_WORKSHEET_INDEX_OUT_OF_RANGE:
            return "la celda queda fuera de la hoja";
        case LXW_ERROR_MAX_STRING_LENGTH_EXCEEDED:
            return "el texto es más largo de lo que admite una celda";
        default:
            return "error " + std::to_string(static_cast<int>(error)) + " de libxlsxwriter";
    }
}

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

std::uint16_t U16(const unsigned char* p) {
    return static_cast<std::uint16_t>(p[0] | p[1] << 8);
}
std::uint32_t U32(const unsigned char* p) {
    return U16(p) | static_cast<std::uint32_t>(U16(p + 2)) << 16;
}

struct EntradaZip {
    std::string nombre;
    std::uint16_t metodo = 0;
    std::uint32_t crc = 0, comprimido = 0, tamano = 0, local = 0;
};

// Inflates (or copies) one entry, returning its CRC, size and count of "</row>".
struct Contenido {
    std::uint32_t crc = 0;
    std::uint64_t tamano = 0;
    std::uint64_t filas = 0;
};

Contenido LeerEntrada(std::ifstream& in, const EntradaZip& e) {
    unsigned char cab[30];
    in.seekg(e.local);
    if (!in.read(reinterpret_cast<char*>(cab), 30) || U32(cab) != 0x04034b50)
        throw std::runtime_error("encabezado local dañado en " + e.nombre);
    in.seekg(e.local + 30 + U16(cab + 26) + U16(cab + 28));

    Contenido c;
    c.crc = crc32(0, nullptr, 0);
    const std::string marca = "</row>";
    std::string cola;  // the last bytes of the previous block, for marks split across blocks
    auto consumir = [&](const unsigned char* datos, std::size_t n) {
        c.crc = crc32(c.crc, datos, static_cast<uInt>(n));
        c.tamano += n;
        std::string bloque = cola + std::string(reinterpret_cast<const char*>(datos), n);
        for (std::size_t p = 0; (p = bloque.find(marca, p)) != std::string::npos; p += marca.size())
            ++c.filas;
        cola = bloque.substr(bloque.size() - std::min(bloque.size(), marca.size() - 1));
    };

    std::vector<unsigned char> entrada(1 << 16), salida(1 << 16);
    std::uint64_t restante = e.comprimido;
    if (e.metodo == 0) {
        while (restante > 0) {
            auto n =
                static_cast<std::streamsize>(std::min<std::uint64_t>(restante, entrada.size()));
            if (!in.read(reinterpret_cast<char*>(entrada.data()), n))
                throw std::runtime_error("datos truncados en " + e.nombre);
            consumir(entrada.data(), static_cast<std::size_t>(n));
            restante -= static_cast<std::uint64_t>(n);
        }
        return c;
    }
    if (e.metodo != 8) throw std::runtime_error("compresión desconocida en " + e.nombre);
    z_stream z{};
    if (inflateInit2(&z, -MAX_WBITS) != Z_OK) throw std::runtime_error("zlib");
    int r = Z_OK;
    while (r != Z_STREAM_END) {
        if (z.avail_in == 0) {
            auto n =
                static_cast<std::streamsize>(std::min<std::uint64_t>(restante, entrada.size()));
            if (n == 0 || !in.read(reinterpret_cast<char*>(entrada.data()), n)) {
                inflateEnd(&z);
                throw std::runtime_error("datos truncados en " + e.nombre);
            }
            restante -= static_cast<std::uint64_t>(n);
            z.next_in = entrada.data();
            z.avail_in = static_cast<uInt>(n);
        }
        z.next_out = salida.data();
        z.avail_out = static_cast<uInt>(salida.size());
        r = inflate(&z, Z_NO_FLUSH);
        if (r != Z_OK && r != Z_STREAM_END) {
            inflateEnd(&z);
            throw std::runtime_error("datos dañados en " + e.nombre);
        }
        consumir(salida.data(), salida.size() - z.avail_out);
    }
    inflateEnd(&z);
    return c;
}

}  // namespace

void VerificarXlsx(const std::filesystem::path& archivo, const std::filesystem::path& nombre,
                   const std::vector<std::uint32_t>& filasPorHoja) {
    try {
        std::ifstream in(archivo, std::ios::binary);
        if (!in) throw std::runtime_error("no se pudo abrir");
        in.seekg(0, std::ios::end);
        const auto largo = static_cast<std::uint64_t>(in.tellg());
        if (largo < 22) throw std::runtime_error("archivo demasiado corto");
        unsigned char fin[22];
        in.seekg(static_cast<std::streamoff>(largo - 22));
        in.read(reinterpret_cast<char*>(fin), 22);
        if (U32(fin) != 0x06054b50) throw std::runtime_error("falta el directorio del paquete");
        const std::uint16_t entradas = U16(fin + 10);
        const std::uint32_t tamanoDirectorio = U32(fin + 12), inicio = U32(fin + 16);
        std::vector<unsigned char> dir(tamanoDirectorio);
        in.seekg(inicio);
        if (!in.read(reinterpret_cast<char*>(dir.data()), tamanoDirectorio))
            throw std::runtime_error("directorio del paquete truncado");

        std::size_t p = 0, hojas = 0;
        for (std::uint16_t i = 0; i < entradas; ++i) {
            if (p + 46 > dir.size() || U32(&dir[p]) != 0x02014b50)
                throw std::runtime_error("directorio del paquete dañado");
            EntradaZip e;
            e.metodo = U16(&dir[p + 10]);
            e.crc = U32(&dir[p + 16]);
            e.comprimido = U32(&dir[p + 20]);
            e.tamano = U32(&dir[p + 24]);
            const std::uint16_t n = U16(&dir[p + 28]), extra = U16(&dir[p + 30]),
                                comentario = U16(&dir[p + 32]);
            e.local = U32(&dir[p + 42]);
            if (p + 46 + n > dir.size()) throw std::runtime_error("directorio del paquete dañado");
            e.nombre.assign(reinterpret_cast<const char*>(&dir[p + 46]), n);
            p += 46 + n + extra + comentario;

            Contenido c = LeerEntrada(in, e);
            if (c.crc != e.crc || c.tamano != e.tamano)
                throw std::runtime_error("contenido dañado en " + e.nombre);
            const std::string prefijo = "xl/worksheets/sheet";
            if (e.nombre.rfind(prefijo, 0) == 0 && e.nombre.size() > prefijo.size() + 4 &&
                e.nombre.compare(e.nombre.size() - 4, 4, ".xml") == 0) {
                std::size_t h = std::stoul(e.nombre.substr(prefijo.size())) - 1;
                ++hojas;
                if (h >= filasPorHoja.size() || c.filas != filasPorHoja[h])
                    throw std::runtime_error("faltan renglones en la hoja " +
                                             std::to_string(h + 1));
            }
        }
        if (hojas != filasPorHoja.size()) throw std::runtime_error("faltan hojas");
    } catch (const std::runtime_error& e) {
        throw ErrorEscritura("No se pudo escribir el libro de Excel completo (¿disco lleno?)",
                             nombre.string(), e.what());
    }
}

}  // namespace detail

LibroXlsx::LibroXlsx(std::filesystem::path archivo, std::string nombreHoja,
                     std::uint32_t filasPorHoja)
    : archivo_(std::move(archivo)),
      parcial_(archivo_),
      nombreHoja_(detail::NombreHojaValido(nombreHoja)),
      filasPorHoja_(std::clamp<std::uint32_t>(filasPorHoja, 2, kFilasPorHoja)) {
    // libxlsxwriter creates its file only when the workbook closes: the partial file, made
    // here, shows as every writer does that the file can be made.
    lxw_workbook_options opciones{};
    opciones.constant_memory = LXW_TRUE;
    libro_ = workbook_new_opt(parcial_.ruta().string().c_str(), &opciones);
    if (libro_ == nullptr)
        throw ErrorEscritura("No se pudo crear el libro de Excel", archivo_.string());
    estilos_.push_back(EstiloCelda{});
}

LibroXlsx::~LibroXlsx() {
    if (libro_ != nullptr) detail::SinMensajesDeLaBiblioteca([&] { workbook_close(libro_); });
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

lxw_format* LibroXlsx::Formato(int estilo, CeldaTabla::Tipo tipo) {
    if (estilo < 0 || static_cast<std::size_t>(estilo) >= estilos_.size()) estilo = 0;
    const EstiloCelda& e = estilos_[estilo];
    // Dates and times without a format of their own get the usual one.
    const char* porOmision = !e.formato.empty()                ? nullptr
                             : tipo == CeldaTabla::Tipo::Fecha ? "dd/mm/yyyy"
                             : tipo == CeldaTabla::Tipo::Hora  ? "hh:mm:ss"
                                                               : nullptr;
    if (estilo == 0 && !porOmision) return nullptr;
    auto& cache = !porOmision                       ? formatos_
                  : tipo == CeldaTabla::Tipo::Fecha ? formatosFecha_
                                                    : formatosHora_;
    if (cache.size() < estilos_.size()) cache.resize(estilos_.size(), nullptr);
    if (cache[estilo] == nullptr) {
        lxw_format* f = workbook_add_format(libro_);
        std::string formato = porOmision ? porOmision : detail::Utf8Valido(e.formato);
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
    if (hoja_ != nullptr) filasHoja_.back() = fila_;
    std::string nombre =
        hojas_.empty() ? nombreHoja_ : detail::NombreContinuacion(nombreHoja_, hojas_.size() + 1);
    hoja_ = workbook_add_worksheet(libro_, nombre.c_str());
    if (hoja_ == nullptr)
        throw ErrorEscritura("No se pudo agregar la hoja al libro de Excel", archivo_.string(),
                             nombre);
    hojas_.push_back(hoja_);
    filasHoja_.push_back(0);
    filasConDatos_.push_back(0);
    fila_ = 0;
    for (std::size_t c = 0; c < columnas_.size(); ++c)
        worksheet_set_column(hoja_, static_cast<lxw_col_t>(c), static_cast<lxw_col_t>(c),
                             std::clamp(columnas_[c].ancho, 0.0, 255.0), nullptr);
    hayTitulos_ = std::any_of(columnas_.begin(), columnas_.end(),
                              [](const ColumnaTabla& c) { return !c.titulo.empty(); });
    if (hayTitulos_) {
        worksheet_freeze_panes(hoja_, 1, 0);
        worksheet_repeat_rows(hoja_, 0, 0);
        worksheet_fit_to_pages(hoja_, 1, 0);
        if (int papel = CodigoPapel(impresion_.anchoPapel, impresion_.altoPapel))
            worksheet_set_paper(hoja_, static_cast<std::uint8_t>(papel));
        // "&" starts a code in headers and footers: a literal one is doubled.
        std::string titulo;
        for (char c : detail::Utf8Valido(impresion_.titulo))
            titulo += c == '&' ? "&&" : std::string(1, c);
        if (!titulo.empty() && titulo.size() < 200)
            worksheet_set_header(hoja_, ("&L" + titulo).c_str());
        worksheet_set_footer(hoja_, "&CPágina &P de &N");
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
    bool conDatos = false;
    for (std::size_t c = 0; c < n; ++c) {
        const CeldaTabla& celda = celdas[c];
        const auto col = static_cast<lxw_col_t>(c);
        lxw_error error = LXW_NO_ERROR;
        switch (celda.tipo) {
            case CeldaTabla::Tipo::Vacia:
                continue;
            case CeldaTabla::Tipo::Numero:
            case CeldaTabla::Tipo::Fecha:
            case CeldaTabla::Tipo::Hora:
                if (!std::isfinite(celda.numero)) continue;
                error = worksheet_write_number(hoja_, fila_, col, celda.numero,
                                               Formato(celda.estilo, celda.tipo));
                break;
            case CeldaTabla::Tipo::Texto:
                if (celda.texto.empty()) continue;
                error = worksheet_write_string(hoja_, fila_, col,
                                               detail::TextoCelda(celda.texto).c_str(),
                                               Formato(celda.estilo, celda.tipo));
                break;
        }
        if (error != LXW_NO_ERROR)
            throw ErrorEscritura("No se pudo escribir una celda del libro de Excel",
                                 archivo_.string(), detail::CausaXlsx(error, {}));
        conDatos = true;
    }
    if (conDatos) ++filasConDatos_.back();
    ++fila_;
}

void LibroXlsx::Anchos(const std::vector<double>& anchos) {
    for (std::size_t c = 0; c < columnas_.size() && c < anchos.size(); ++c)
        columnas_[c].ancho = anchos[c];
}

void LibroXlsx::Cerrar() {
    if (cerrado_) return;
    if (hoja_ == nullptr) NuevaHoja();
    filasHoja_.back() = fila_;
    std::vector<double> anchos;
    for (const auto& c : columnas_) anchos.push_back(std::clamp(c.ancho, 0.0, 255.0));
    const bool horizontal = HojaHorizontal(anchos, impresion_);
    for (std::size_t h = 0; h < hojas_.size(); ++h) {
        for (std::size_t c = 0; c < anchos.size(); ++c)
            worksheet_set_column(hojas_[h], static_cast<lxw_col_t>(c), static_cast<lxw_col_t>(c),
                                 anchos[c], nullptr);
        if (!hayTitulos_ || anchos.empty()) continue;
        if (horizontal) worksheet_set_landscape(hojas_[h]);
        worksheet_autofilter(hojas_[h], 0, 0, std::max<std::uint32_t>(filasHoja_[h], 1) - 1,
                             static_cast<lxw_col_t>(anchos.size() - 1));
    }
    lxw_error error = LXW_NO_ERROR;
    errno = 0;
    detail::SinMensajesDeLaBiblioteca([&] { error = workbook_close(libro_); });
    const std::string causa = detail::CausaDelSistema();
    libro_ = nullptr;
    cerrado_ = true;
    if (error != LXW_NO_ERROR) {
        parcial_.Descarta();
        throw ErrorEscritura("No se pudo guardar el libro de Excel", archivo_.string(),
                             detail::CausaXlsx(error, causa));
    }
    try {
        detail::VerificarXlsx(parcial_.ruta(), archivo_, filasConDatos_);
    } catch (...) {
        parcial_.Descarta();
        throw;
    }
    parcial_.Reemplaza();
}

}  // namespace paratzorep::renderer
