#include "renderer/writers/LibroXls.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>

#include "renderer/writers/ArchivoSalida.h"
#include "renderer/writers/Bytes.h"
#include "renderer/writers/Cfb.h"
#include "renderer/writers/ErrorEscritura.h"
#include "renderer/writers/Unicode.h"

namespace paratzorep::renderer {
namespace detail {
namespace {

// BIFF8 record types.
enum : std::uint16_t {
    kBof = 0x0809,
    kEof = 0x000A,
    kCodepage = 0x0042,
    kWindow1 = 0x003D,
    kDatemode = 0x0022,
    kFont = 0x0031,
    kFormat = 0x041E,
    kXf = 0x00E0,
    kStyle = 0x0293,
    kBoundsheet = 0x0085,
    kSst = 0x00FC,
    kContinue = 0x003C,
    kExtsst = 0x00FF,
    kColinfo = 0x007D,
    kDimensions = 0x0200,
    kRow = 0x0208,
    kNumber = 0x0203,
    kLabelsst = 0x00FD,
    kWindow2 = 0x023E,
    kPane = 0x0041,
    kSelection = 0x001D,
    kWsbool = 0x0081,
    kHeader = 0x0014,
    kFooter = 0x0015,
    kHcenter = 0x0083,
    kVcenter = 0x0084,
    kSetup = 0x00A1,
    kAutofilterinfo = 0x009D,
    kSupbook = 0x01AE,
    kExternsheet = 0x0017,
    kName = 0x0018,
};

constexpr std::uint16_t kPrimerXfCelda = 15;
constexpr std::uint16_t kPrimerFormatoPropio = 164;
constexpr std::uint16_t kFuenteNegrita = 5;  // font index 4 does not exist in BIFF

void Registro(Bytes& b, std::uint16_t tipo, const Bytes& datos) {
    b.u16(tipo).u16(static_cast<std::uint16_t>(datos.size())).crudo(datos.str());
}

bool Comprimible(const std::u16string& s) {
    return std::all_of(s.begin(), s.end(), [](char16_t c) { return c <= 0xFF; });
}

void Caracteres(Bytes& b, const std::u16string& s, bool comprimido, std::size_t desde,
                std::size_t n) {
    for (std::size_t i = desde; i < desde + n; ++i) {
        if (comprimido)
            b.u8(static_cast<std::uint8_t>(s[i]));
        else
            b.u16(s[i]);
    }
}

// ShortXLUnicodeString (count in one byte) or XLUnicodeString (two bytes).
void Cadena(Bytes& b, const std::u16string& s, bool cuentaCorta) {
    bool comp = Comprimible(s);
    if (cuentaCorta)
        b.u8(static_cast<std::uint8_t>(s.size()));
    else
        b.u16(static_cast<std::uint16_t>(s.size()));
    b.u8(comp ? 0 : 1);
    Caracteres(b, s, comp, 0, s.size());
}

void Bof(Bytes& b, std::uint16_t tipo) {
    Bytes d;
    d.u16(0x0600).u16(tipo).u16(0x0DBB).u16(0x07CC).u32(0).u32(6);
    Registro(b, kBof, d);
}

void Eof(Bytes& b) {
    Registro(b, kEof, Bytes{});
}

std::uint16_t FormatoIncorporado(const std::string& f) {
    if (f.empty() || f == "General") return 0;
    if (f == "0") return 1;
    if (f == "0.00") return 2;
    if (f == "#,##0") return 3;
    if (f == "#,##0.00") return 4;
    if (f == "0%") return 9;
    if (f == "0.00%") return 10;
    return 0xFFFF;
}

std::u16string Recortar(std::u16string s, std::size_t largo) {
    if (s.size() <= largo) return s;
    s.resize(largo);
    // Never leave half of a surrogate pair at the end.
    if (!s.empty() && s.back() >= 0xD800 && s.back() <= 0xDBFF) s.pop_back();
    return s;
}

}  // namespace

std::string RegistrosSst(const std::vector<std::u16string>& textos, std::uint32_t total,
                         std::size_t posicion) {
    Bytes b;
    std::size_t inicioRegistro = 0;
    auto abrir = [&](std::uint16_t tipo) {
        inicioRegistro = b.size();
        b.u16(tipo).u16(0);
    };
    auto cerrar = [&] {
        b.parche16(inicioRegistro + 2, static_cast<std::uint16_t>(b.size() - inicioRegistro - 4));
    };
    auto libre = [&] { return kMaxDatosRegistro - (b.size() - inicioRegistro - 4); };

    abrir(kSst);
    b.u32(total).u32(static_cast<std::uint32_t>(textos.size()));
    const std::size_t porCubeta = std::max<std::size_t>(8, textos.size() / 128 + 1);
    std::vector<std::pair<std::uint32_t, std::uint16_t>> indice;
    for (std::size_t i = 0; i < textos.size(); ++i) {
        const std::u16string& s = textos[i];
        const bool comp = Comprimible(s);
        const std::size_t ancho = comp ? 1 : 2;
        // The string's header and its first character share a record.
        if (libre() < 3 + (s.empty() ? 0 : ancho)) {
            cerrar();
            abrir(kContinue);
        }
        if (i % porCubeta == 0)
            indice.emplace_back(static_cast<std::uint32_t>(posicion + b.size()),
                                static_cast<std::uint16_t>(b.size() - inicioRegistro));
        b.u16(static_cast<std::uint16_t>(s.size())).u8(comp ? 0 : 1);
        std::size_t hechos = 0;
        while (hechos < s.size()) {
            std::size_t n = std::min(s.size() - hechos, libre() / ancho);
            if (n == 0) {
                // Characters continue in a CONTINUE record that restates their width.
                cerrar();
                abrir(kContinue);
                b.u8(comp ? 0 : 1);
                continue;
            }
            Caracteres(b, s, comp, hechos, n);
            hechos += n;
        }
    }
    cerrar();

    Bytes ext;
    ext.u16(static_cast<std::uint16_t>(porCubeta));
    for (auto [ib, desplazamiento] : indice) ext.u32(ib).u16(desplazamiento).u16(0);
    Registro(b, kExtsst, ext);
    return b.str();
}

std::string RegistrosNombres(const std::vector<std::uint32_t>& filas, std::uint16_t columnas) {
    Bytes b;
    if (filas.empty() || columnas == 0) return b.str();
    const auto hojas = static_cast<std::uint16_t>(filas.size());
    // The workbook's own sheets as external references: one XTI per sheet.
    Registro(b, kSupbook, Bytes{}.u16(hojas).u16(0x0401));
    Bytes xti;
    xti.u16(hojas);
    for (std::uint16_t h = 0; h < hojas; ++h) xti.u16(0).u16(h).u16(h);
    Registro(b, kExternsheet, xti);
    // A sheet-level built-in name over rows and columns of sheet h (ptgArea3d, absolute).
    auto nombre = [&](std::uint16_t h, std::uint16_t opciones, std::uint8_t codigo,
                      std::uint16_t filaFin, std::uint16_t columnaFin) {
        Bytes formula;
        formula.u8(0x3B).u16(h).u16(0).u16(filaFin).u16(0).u16(columnaFin);
        Bytes d;
        d.u16(opciones).u8(0).u8(1).u16(static_cast<std::uint16_t>(formula.size()));
        d.u16(0).u16(static_cast<std::uint16_t>(h + 1)).u8(0).u8(0).u8(0).u8(0);
        d.u8(0).u8(codigo);
        d.crudo(formula.str());
        Registro(b, kName, d);
    };
    for (std::uint16_t h = 0; h < hojas; ++h)  // _FilterDatabase: hidden
        nombre(h, 0x0021, 0x0D,
               static_cast<std::uint16_t>(std::max<std::uint32_t>(filas[h], 1) - 1),
               static_cast<std::uint16_t>(columnas - 1));
    for (std::uint16_t h = 0; h < hojas; ++h)  // Print_Titles: the first row
        nombre(h, 0x0020, 0x07, 0, 0x00FF);
    return b.str();
}

std::string NombreHojaValido(const std::string& nombre) {
    std::u16string s = Utf8AUtf16(nombre);
    for (char16_t& c : s)
        if (c == '[' || c == ']' || c == ':' || c == '*' || c == '?' || c == '/' || c == '\\' ||
            c < 0x20)
            c = '_';
    s = Recortar(s, 31);
    while (!s.empty() && (s.front() == '\'' || s.front() == ' ')) s.erase(s.begin());
    while (!s.empty() && (s.back() == '\'' || s.back() == ' ')) s.pop_back();
    if (s.empty()) return "Hoja";
    std::string r;
    for (std::size_t i = 0; i < s.size(); ++i) {
        char32_t cp = s[i];
        if (cp >= 0xD800 && cp <= 0xDBFF && i + 1 < s.size())
            cp = 0x10000 + ((cp - 0xD800) << 10) + (s[++i] - 0xDC00);
        if (cp < 0x80) {
            r += static_cast<char>(cp);
        } else if (cp < 0x800) {
            r += static_cast<char>(0xC0 | cp >> 6);
            r += static_cast<char>(0x80 | (cp & 0x3F));
        } else if (cp < 0x10000) {
            r += static_cast<char>(0xE0 | cp >> 12);
            r += static_cast<char>(0x80 | (cp >> 6 & 0x3F));
            r += static_cast<char>(0x80 | (cp & 0x3F));
        } else {
            r += static_cast<char>(0xF0 | cp >> 18);
            r += static_cast<char>(0x80 | (cp >> 12 & 0x3F));
            r += static_cast<char>(0x80 | (cp >> 6 & 0x3F));
            r += static_cast<char>(0x80 | (cp & 0x3F));
        }
    }
    return r;
}

std::string NombreContinuacion(const std::string& nombre, std::size_t numero) {
    const std::string sufijo = " (" + std::to_string(numero) + ")";
    std::string base = NombreHojaValido(nombre);
    // Cut whole characters (UTF-8 lead bytes) until the suffix fits.
    std::size_t caracteres = 0;
    for (unsigned char c : base) caracteres += (c & 0xC0) != 0x80;
    while (caracteres + sufijo.size() > 31) {
        std::size_t fin = base.size() - 1;
        while (fin > 0 && (static_cast<unsigned char>(base[fin]) & 0xC0) == 0x80) --fin;
        base.resize(fin);
        --caracteres;
    }
    return NombreHojaValido(base + sufijo);
}

}  // namespace detail

using detail::Bytes;

LibroXls::LibroXls(std::filesystem::path archivo, std::string nombreHoja)
    : archivo_(std::move(archivo)), nombreHoja_(detail::NombreHojaValido(nombreHoja)) {
    estilos_.push_back(EstiloCelda{});
}

LibroXls::~LibroXls() = default;

int LibroXls::Estilo(const EstiloCelda& estilo) {
    auto it = std::find(estilos_.begin(), estilos_.end(), estilo);
    if (it != estilos_.end()) return static_cast<int>(it - estilos_.begin());
    if (estilos_.size() >= 4000) return 0;  // Excel's limit on cell formats
    estilos_.push_back(estilo);
    return static_cast<int>(estilos_.size() - 1);
}

void LibroXls::Columnas(std::vector<ColumnaTabla> columnas) {
    if (columnas.size() > kColumnasPorHoja) columnas.resize(kColumnasPorHoja);
    columnas_ = std::move(columnas);
    hayTitulos_ = std::any_of(columnas_.begin(), columnas_.end(),
                              [](const ColumnaTabla& c) { return !c.titulo.empty(); });
    estiloTitulo_ = Estilo(EstiloCelda{"", true, AlineacionCelda::Centro});
}

std::uint32_t LibroXls::IndiceTexto(const std::string& texto) {
    ++totalTextos_;
    auto [it, nuevo] = indiceTextos_.try_emplace(texto, static_cast<std::uint32_t>(textos_.size()));
    if (nuevo) textos_.push_back(detail::Recortar(detail::Utf8AUtf16(texto), kLargoMaximoTexto));
    return it->second;
}

void LibroXls::NuevaHoja() {
    Hoja hoja;
    hoja.nombre =
        hojas_.empty() ? nombreHoja_ : detail::NombreContinuacion(nombreHoja_, hojas_.size() + 1);
    errno = 0;
    hoja.datos.reset(std::tmpfile());
    if (!hoja.datos)
        throw ErrorEscritura("No se pudo crear un archivo temporal para la hoja de cálculo",
                             archivo_.string(), std::strerror(errno));
    hojas_.push_back(std::move(hoja));
    ++totalHojas_;
    if (hayTitulos_) {
        std::vector<CeldaTabla> titulos;
        for (const auto& c : columnas_)
            titulos.push_back(CeldaTabla::Texto(c.titulo, estiloTitulo_));
        EscribirFila(titulos);
    }
}

void LibroXls::Fila(std::span<const CeldaTabla> celdas) {
    if (cerrado_) throw ErrorEscritura("El libro ya está cerrado", archivo_.string());
    if (hojas_.empty() || hojas_.back().filas >= kFilasPorHoja) NuevaHoja();
    EscribirFila(celdas);
}

void LibroXls::EscribirFila(std::span<const CeldaTabla> celdas) {
    Hoja& hoja = hojas_.back();
    const auto fila = static_cast<std::uint16_t>(hoja.filas);
    const std::size_t n = std::min<std::size_t>(celdas.size(), kColumnasPorHoja);
    std::uint16_t primera = 0xFFFF, ultima = 0;
    Bytes registros;
    for (std::size_t c = 0; c < n; ++c) {
        const CeldaTabla& celda = celdas[c];
        int estilo = celda.estilo >= 0 && static_cast<std::size_t>(celda.estilo) < estilos_.size()
                         ? celda.estilo
                         : 0;
        Bytes d;
        switch (celda.tipo) {
            case CeldaTabla::Tipo::Vacia:
                continue;
            case CeldaTabla::Tipo::Fecha:
            case CeldaTabla::Tipo::Hora:
                // Dates and times without a format of their own get the usual one.
                if (estilos_[estilo].formato.empty()) {
                    EstiloCelda conFormato = estilos_[estilo];
                    conFormato.formato =
                        celda.tipo == CeldaTabla::Tipo::Fecha ? "dd/mm/yyyy" : "hh:mm:ss";
                    estilo = Estilo(conFormato);
                }
                [[fallthrough]];
            case CeldaTabla::Tipo::Numero:
                // Excel has no NaN or infinity: such a value is left blank.
                if (!std::isfinite(celda.numero)) continue;
                d.u16(fila).u16(static_cast<std::uint16_t>(c));
                d.u16(static_cast<std::uint16_t>(detail::kPrimerXfCelda + estilo));
                d.f64(celda.numero);
                detail::Registro(registros, detail::kNumber, d);
                break;
            case CeldaTabla::Tipo::Texto:
                d.u16(fila).u16(static_cast<std::uint16_t>(c));
                d.u16(static_cast<std::uint16_t>(detail::kPrimerXfCelda + estilo));
                d.u32(IndiceTexto(celda.texto));
                detail::Registro(registros, detail::kLabelsst, d);
                break;
        }
        primera = std::min<std::uint16_t>(primera, static_cast<std::uint16_t>(c));
        ultima = static_cast<std::uint16_t>(c);
    }
    if (primera != 0xFFFF) {
        Bytes r;
        r.u16(fila).u16(primera).u16(static_cast<std::uint16_t>(ultima + 1));
        r.u16(0x00FF).u16(0).u16(0).u32(0x000F0100u);
        Bytes todo;
        detail::Registro(todo, detail::kRow, r);
        todo.crudo(registros.str());
        if (std::fwrite(todo.str().data(), 1, todo.size(), hoja.datos.get()) != todo.size())
            throw ErrorEscritura("No se pudo escribir la hoja de cálculo temporal",
                                 archivo_.string(), std::strerror(errno));
        hoja.tamano += todo.size();
        hoja.columnas = std::max<std::uint16_t>(hoja.columnas, ultima + 1);
    }
    ++hoja.filas;
}

std::string LibroXls::Globales(std::vector<std::size_t>& posicionesHoja) const {
    using namespace detail;
    Bytes b;
    Bof(b, 0x0005);
    Registro(b, kCodepage, Bytes{}.u16(1200));
    Registro(b, kWindow1,
             Bytes{}
                 .u16(0x01E0)
                 .u16(0x005A)
                 .u16(0x3FCF)
                 .u16(0x2A4E)
                 .u16(0x0038)
                 .u16(0)
                 .u16(0)
                 .u16(1)
                 .u16(0x0258));
    Registro(b, kDatemode, Bytes{}.u16(0));
    for (int f = 0; f < 5; ++f) {
        const bool negrita = f == 4;  // written fifth, read as index 5
        Bytes d;
        d.u16(200)
            .u16(negrita ? 1 : 0)
            .u16(0x7FFF)
            .u16(negrita ? 700 : 400)
            .u16(0)
            .u8(0)
            .u8(0)
            .u8(0)
            .u8(0);
        Cadena(d, u"Arial", true);
        Registro(b, kFont, d);
    }
    std::vector<std::uint16_t> formatoDeEstilo;
    std::vector<std::string> propios;
    for (const auto& e : estilos_) {
        std::uint16_t f = FormatoIncorporado(e.formato);
        if (f == 0xFFFF) {
            auto it = std::find(propios.begin(), propios.end(), e.formato);
            if (it == propios.end()) {
                propios.push_back(e.formato);
                it = propios.end() - 1;
            }
            f = static_cast<std::uint16_t>(kPrimerFormatoPropio + (it - propios.begin()));
        }
        formatoDeEstilo.push_back(f);
    }
    for (std::size_t i = 0; i < propios.size(); ++i) {
        Bytes d;
        d.u16(static_cast<std::uint16_t>(kPrimerFormatoPropio + i));
        Cadena(d, Recortar(Utf8AUtf16(propios[i]), 255), false);
        Registro(b, kFormat, d);
    }
    // Fifteen style XFs (Normal and the built-in levels), then one cell XF per style.
    auto xf = [&b](std::uint16_t fuente, std::uint16_t formato, bool esEstilo,
                   std::uint8_t alineacion) {
        Bytes d;
        d.u16(fuente).u16(formato).u16(esEstilo ? 0xFFF5 : 0x0001);
        d.u8(static_cast<std::uint8_t>(alineacion | 0x20)).u8(0).u8(0);
        d.u8(esEstilo ? 0x00 : 0xFC);
        d.u32(0).u32(0).u16(0x20C0);
        Registro(b, kXf, d);
    };
    for (int i = 0; i < 15; ++i) xf(0, 0, true, 0);
    for (std::size_t i = 0; i < estilos_.size(); ++i) {
        const auto& e = estilos_[i];
        xf(e.negrita ? kFuenteNegrita : 0, formatoDeEstilo[i], false,
           static_cast<std::uint8_t>(e.alineacion));
    }
    Registro(b, kStyle, Bytes{}.u16(0x8000).u8(0).u8(0xFF));
    for (const auto& hoja : hojas_) {
        Bytes d;
        d.u32(0).u8(0).u8(0);
        Cadena(d, Utf8AUtf16(hoja.nombre), true);
        posicionesHoja.push_back(b.size() + 4);
        Registro(b, kBoundsheet, d);
    }
    if (hayTitulos_) {
        std::vector<std::uint32_t> filas;
        for (const auto& hoja : hojas_) filas.push_back(hoja.filas);
        b.crudo(RegistrosNombres(filas, static_cast<std::uint16_t>(columnas_.size())));
    }
    b.crudo(RegistrosSst(textos_, totalTextos_, b.size()));
    Eof(b);
    return b.str();
}

void LibroXls::Anchos(const std::vector<double>& anchos) {
    for (std::size_t c = 0; c < columnas_.size() && c < anchos.size(); ++c)
        columnas_[c].ancho = anchos[c];
}

std::string LibroXls::InicioHoja(const Hoja& hoja) const {
    using namespace detail;
    Bytes p;
    Bof(p, 0x0010);
    std::vector<double> anchos;
    for (const auto& c : columnas_) anchos.push_back(std::clamp(c.ancho, 0.0, 255.0));
    if (hayTitulos_) {
        // Fitted to the page: one page wide, as many tall as it takes.
        Registro(p, kWsbool, Bytes{}.u16(0x05C1));
        auto texto = [](const std::string& s) {
            Bytes d;
            if (!s.empty()) Cadena(d, Recortar(Utf8AUtf16(s), 250), false);
            return d;
        };
        std::string titulo;  // "&" starts a code: a literal one is doubled
        for (char c : impresion_.titulo) titulo += c == '&' ? "&&" : std::string(1, c);
        Registro(p, kHeader, texto(titulo.empty() ? "" : "&L" + titulo));
        Registro(p, kFooter, texto("&CPágina &P de &N"));
        Registro(p, kHcenter, Bytes{}.u16(0));
        Registro(p, kVcenter, Bytes{}.u16(0));
        const bool horizontal = HojaHorizontal(anchos, impresion_);
        Bytes setup;
        setup.u16(
            static_cast<std::uint16_t>(CodigoPapel(impresion_.anchoPapel, impresion_.altoPapel)));
        setup.u16(100).u16(1).u16(1).u16(0);
        setup.u16(horizontal ? 0x0000 : 0x0002);  // fPortrait
        setup.u16(600).u16(600).f64(0.5).f64(0.5).u16(1);
        Registro(p, kSetup, setup);
    }
    for (std::size_t c = 0; c < columnas_.size(); ++c) {
        Bytes d;
        d.u16(static_cast<std::uint16_t>(c)).u16(static_cast<std::uint16_t>(c));
        d.u16(static_cast<std::uint16_t>(std::lround(anchos[c] * 256 + 184)));
        d.u16(kPrimerXfCelda).u16(0).u16(0);
        Registro(p, kColinfo, d);
    }
    if (hayTitulos_ && !columnas_.empty())
        Registro(p, kAutofilterinfo, Bytes{}.u16(static_cast<std::uint16_t>(columnas_.size())));
    Registro(p, kDimensions, Bytes{}.u32(0).u32(hoja.filas).u16(0).u16(hoja.columnas).u16(0));
    return p.str();
}

std::string LibroXls::FinHoja(bool primera) const {
    using namespace detail;
    Bytes s;
    // Shown grid, headings, zeros, guts; paged; selected when first; title row frozen.
    std::uint16_t opciones = 0x00B6 | (primera ? 0x0600 : 0);
    if (hayTitulos_) opciones |= 0x0108;
    Registro(s, kWindow2,
             Bytes{}.u16(opciones).u16(0).u16(0).u16(0x40).u16(0).u16(0).u16(0).u16(0).u16(0));
    if (hayTitulos_) {
        // Frozen below row 1; the lower pane is active, its cursor on A2.
        Registro(s, kPane, Bytes{}.u16(0).u16(1).u16(1).u16(0).u8(2).u8(0));
        Registro(s, kSelection,
                 Bytes{}.u8(2).u16(1).u16(0).u16(0).u16(1).u16(1).u16(1).u8(0).u8(0));
    }
    Eof(s);
    return s.str();
}

void LibroXls::Cerrar() {
    using namespace detail;
    if (cerrado_) return;
    if (hojas_.empty()) NuevaHoja();

    std::vector<std::size_t> posiciones;
    Bytes globales;
    globales.crudo(Globales(posiciones));
    std::vector<std::string> prefijos, sufijos;
    std::uint64_t posicion = globales.size();
    for (std::size_t i = 0; i < hojas_.size(); ++i) {
        const Hoja& hoja = hojas_[i];
        std::string p = InicioHoja(hoja), s = FinHoja(i == 0);
        globales.parche32(posiciones[i], static_cast<std::uint32_t>(posicion));
        posicion += p.size() + hoja.tamano + s.size();
        prefijos.push_back(std::move(p));
        sufijos.push_back(std::move(s));
    }

    FlujoCfb libro{
        "Workbook", posicion, [&](std::ostream& salida) {
            salida.write(globales.str().data(), static_cast<std::streamsize>(globales.size()));
            std::vector<char> bloque(1 << 16);
            for (std::size_t i = 0; i < hojas_.size(); ++i) {
                salida.write(prefijos[i].data(), static_cast<std::streamsize>(prefijos[i].size()));
                std::FILE* f = hojas_[i].datos.get();
                std::rewind(f);
                std::size_t leidos;
                while ((leidos = std::fread(bloque.data(), 1, bloque.size(), f)) > 0)
                    salida.write(bloque.data(), static_cast<std::streamsize>(leidos));
                if (std::ferror(f))
                    throw ErrorEscritura("No se pudo leer la hoja de cálculo temporal",
                                         archivo_.string());
                salida.write(sufijos[i].data(), static_cast<std::streamsize>(sufijos[i].size()));
            }
        }};
    ArchivoSalida archivo(archivo_);
    try {
        errno = 0;
        EscribirCfb(archivo.flujo(), {libro});
    } catch (const ErrorEscritura& e) {
        // A stream that failed is the system's doing; anything else is the format's.
        if (!archivo.flujo()) archivo.FallaEscritura();
        throw ErrorEscritura("No se pudo escribir el libro de Excel", archivo_.string(), e.what());
    }
    archivo.Confirmar();
    cerrado_ = true;
    hojas_.clear();
}

}  // namespace paratzorep::renderer
