#include "renderer/writers/EscritorRtf.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <utility>

#include "renderer/writers/ArchivoSalida.h"
#include "renderer/writers/ErrorEscritura.h"
#include "renderer/writers/Unicode.h"

namespace paratzorep::renderer {
namespace detail {
namespace {

long Twips(double puntos) {
    return std::lround(puntos * 20);
}

// Windows-1252 byte for a code point, or 0 when the code page lacks it.
unsigned char Cp1252(char16_t c) {
    if (c >= 0xA0 && c <= 0xFF) return static_cast<unsigned char>(c);
    switch (c) {
        case 0x20AC:
            return 0x80;
        case 0x201A:
            return 0x82;
        case 0x0192:
            return 0x83;
        case 0x201E:
            return 0x84;
        case 0x2026:
            return 0x85;
        case 0x2020:
            return 0x86;
        case 0x2021:
            return 0x87;
        case 0x02C6:
            return 0x88;
        case 0x2030:
            return 0x89;
        case 0x0160:
            return 0x8A;
        case 0x2039:
            return 0x8B;
        case 0x0152:
            return 0x8C;
        case 0x017D:
            return 0x8E;
        case 0x2018:
            return 0x91;
        case 0x2019:
            return 0x92;
        case 0x201C:
            return 0x93;
        case 0x201D:
            return 0x94;
        case 0x2022:
            return 0x95;
        case 0x2013:
            return 0x96;
        case 0x2014:
            return 0x97;
        case 0x02DC:
            return 0x98;
        case 0x2122:
            return 0x99;
        case 0x0161:
            return 0x9A;
        case 0x203A:
            return 0x9B;
        case 0x0153:
            return 0x9C;
        case 0x017E:
            return 0x9E;
        case 0x0178:
            return 0x9F;
        default:
            return 0;
    }
}

}  // namespace

std::string TextoRtf(std::string_view utf8) {
    static const char* kHex = "0123456789abcdef";
    std::string r;
    r.reserve(utf8.size() + 8);
    for (char16_t c : Utf8AUtf16(utf8)) {
        if (c == '\\' || c == '{' || c == '}') {
            r += '\\';
            r += static_cast<char>(c);
        } else if (c == '\t') {
            r += "\\tab ";
        } else if (c < 0x20) {
            r += ' ';  // no line breaks or control characters inside a line
        } else if (c < 0x80) {
            r += static_cast<char>(c);
        } else {
            r += "\\u" + std::to_string(static_cast<std::int16_t>(c));
            unsigned char b = Cp1252(c);
            if (b != 0) {
                r += "\\'";
                r += kHex[b >> 4];
                r += kHex[b & 15];
            } else {
                r += '?';
            }
        }
    }
    return r;
}

std::string FigurasRtf(const renderer::Pagina& pagina) {
    std::string r;
    int z = 0;
    auto sp = [](const char* n, long v) {
        return std::string("{\\sp{\\sn ") + n + "}{\\sv " + std::to_string(v) + "}}";
    };
    auto figura = [&r, &z, &sp](double x0, double y0, double x1, double y1, int tipo,
                                const std::string& propiedades) {
        r += "{\\shp{\\*\\shpinst\\shpleft" + std::to_string(Twips(std::min(x0, x1))) + "\\shptop" +
             std::to_string(Twips(std::min(y0, y1))) + "\\shpright" +
             std::to_string(Twips(std::max(x0, x1))) + "\\shpbottom" +
             std::to_string(Twips(std::max(y0, y1))) +
             "\\shpfhdr0\\shpbxpage\\shpbypage\\shpwr3\\shpwrk0\\shpfblwtxt1\\shpz" +
             std::to_string(z++) + sp("shapeType", tipo) + sp("fBehindDocument", 1) + propiedades +
             "}}";
    };
    constexpr double kEmuPorPunto = 12700;
    for (const auto& c : pagina.cajas) {
        std::string p;
        if (c.gris >= 0) {
            long v = std::lround(std::clamp(c.gris, 0.0, 1.0) * 255);
            p += sp("fFilled", 1) + sp("fillColor", v << 16 | v << 8 | v);
        } else {
            p += sp("fFilled", 0);
        }
        if (c.grosor > 0)
            p += sp("fLine", 1) + sp("lineWidth", std::lround(c.grosor * kEmuPorPunto));
        else
            p += sp("fLine", 0);
        figura(c.x, c.y, c.x + c.ancho, c.y + c.alto, 1, p);
    }
    for (const auto& l : pagina.lineas) {
        // A line runs from the shape's top-left to its bottom-right corner unless flipped.
        bool invertida = (l.x2 - l.x1) * (l.y2 - l.y1) < 0;
        figura(l.x1, l.y1, l.x2, l.y2, 20,
               sp("lineWidth", std::lround(std::max(l.grosor, 0.1) * kEmuPorPunto)) +
                   (invertida ? sp("fFlipV", 1) : std::string()));
    }
    return r;
}

LineasDePagina LineasRtf(std::vector<PiezaRtf> piezas) {
    std::stable_sort(piezas.begin(), piezas.end(),
                     [](const auto& a, const auto& b) { return a.base < b.base; });
    LineasDePagina r;
    // Pieces whose heights overlap the largest one's gather; a piece takes the height of its
    // font from its baseline up and a fifth below.
    std::vector<PiezaRtf> grupo;
    std::size_t ancla = 0;
    auto cierra = [&] {
        if (grupo.empty()) return;
        const PiezaRtf a = grupo[ancla];
        std::vector<PiezaRtf> linea{a};
        for (std::size_t i = 0; i < grupo.size(); ++i) {
            if (i == ancla) continue;
            const PiezaRtf& p = grupo[i];
            // On the line: the same baseline and no piece where it prints; else in a box.
            const bool base =
                std::abs(p.base - a.base) <= std::max(1.0, 0.3 * std::min(a.tamano, p.tamano));
            const bool choca = std::any_of(linea.begin(), linea.end(), [&p](const PiezaRtf& o) {
                return std::min(o.x1, p.x1) - std::max(o.x0, p.x0) > -1.5;
            });
            (base && !choca ? linea : r.sueltas).push_back(p);
        }
        std::stable_sort(linea.begin(), linea.end(),
                         [](const auto& x, const auto& y) { return x.x0 < y.x0; });
        r.lineas.push_back(std::move(linea));
        grupo.clear();
    };
    for (const auto& p : piezas) {
        if (!grupo.empty()) {
            const PiezaRtf& a = grupo[ancla];
            if (p.base - p.tamano < a.base + 0.2 * a.tamano - 0.25 * p.tamano) {
                grupo.push_back(p);
                if (p.tamano > a.tamano) ancla = grupo.size() - 1;
                continue;
            }
            cierra();
        }
        grupo.push_back(p);
        ancla = 0;
    }
    cierra();
    return r;
}

}  // namespace detail

EscritorRtf::EscritorRtf(std::filesystem::path archivo) : ruta_(std::move(archivo)) {}

EscritorRtf::~EscritorRtf() = default;

void EscritorRtf::Escribir(const std::string& texto) {
    auto& f = archivo_->flujo();
    errno = 0;
    f << texto;
    if (!f) archivo_->FallaEscritura();
}

void EscritorRtf::Inicia(const Documento& documento) {
    archivo_ = std::make_unique<detail::ArchivoSalida>(ruta_);
    documento_ = documento;
    std::vector<std::string> familias;
    for (const auto& f : documento.fuentes) {
        auto it = std::find(familias.begin(), familias.end(), f.familia);
        if (it == familias.end()) {
            familias.push_back(f.familia);
            it = familias.end() - 1;
        }
        familiaDeFuente_.push_back(static_cast<int>(it - familias.begin()));
    }
    documento_.fuentes = documento.fuentes;
    if (familias.empty()) familias.push_back("DejaVu Sans");

    std::string s = "{\\rtf1\\ansi\\ansicpg1252\\deff0\\uc1\n{\\fonttbl";
    for (std::size_t i = 0; i < familias.size(); ++i) {
        bool fija = familias[i].find("Mono") != std::string::npos ||
                    familias[i].find("Courier") != std::string::npos;
        s += "{\\f" + std::to_string(i) + (fija ? "\\fmodern" : "\\fswiss") + "\\fcharset0 " +
             detail::TextoRtf(familias[i]) + ";}";
    }
    s += "}\n{\\info{\\title " + detail::TextoRtf(documento.titulo) + "}}\n";
    s += "\\paperw" + std::to_string(detail::Twips(documento.anchoPagina)) + "\\paperh" +
         std::to_string(detail::Twips(documento.altoPagina));
    s += "\\margl" + std::to_string(detail::Twips(documento.margenIzquierdo)) + "\\margr" +
         std::to_string(detail::Twips(documento.margenDerecho)) + "\\margt" +
         std::to_string(detail::Twips(documento.margenSuperior)) + "\\margb" +
         std::to_string(detail::Twips(documento.margenInferior));
    if (documento.anchoPagina > documento.altoPagina) s += "\\landscape";
    s += "\\viewkind1\\deftab720\n";
    Escribir(s);
}

void EscritorRtf::Pagina(const renderer::Pagina& pagina) {
    if (!archivo_) throw ErrorEscritura("El escritor no fue iniciado", ruta_.string());
    std::vector<detail::PiezaRtf> piezas;
    for (const auto& e : pagina.textos) {
        double tamano =
            e.fuente < documento_.fuentes.size() ? documento_.fuentes[e.fuente].tamano : 9.0;
        double base = e.y + (e.base > 0 ? e.base : tamano * 0.8);
        double paso = e.interlineado > 0 ? e.interlineado : tamano * 1.2;
        for (std::size_t i = 0; i < e.renglones.size(); ++i) {
            const auto& r = e.renglones[i];
            if (r.texto.empty()) continue;
            double x0 = e.x + r.dx;
            piezas.push_back({base + static_cast<double>(i) * paso, x0, x0 + r.ancho, e.alineacion,
                              e.fuente, tamano, &r.texto});
        }
    }

    const double margenIzquierdo = documento_.margenIzquierdo;
    double cursor = documento_.margenSuperior;
    std::string& s = buffer_;
    s.clear();
    bool primeraLinea = true;
    // A piece as a run of text in its font.
    auto corrida = [this](const detail::PiezaRtf& p) {
        const Fuente f =
            p.fuente < documento_.fuentes.size() ? documento_.fuentes[p.fuente] : Fuente{};
        int familia = p.fuente < familiaDeFuente_.size() ? familiaDeFuente_[p.fuente] : 0;
        return "{\\f" + std::to_string(familia) + "\\fs" +
               std::to_string(std::lround(f.tamano * 2)) + (f.negrita ? "\\b" : "") +
               (f.cursiva ? "\\i" : "") + (f.subrayada ? "\\ul" : "") + " " +
               detail::TextoRtf(*p.texto) + "}";
    };
    auto disposicion = detail::LineasRtf(std::move(piezas));
    // Lines and boxes are shapes placed on the page, anchored in the page's first paragraph;
    // so are the text boxes of the pieces that stand beside a line's height.
    std::string figuras = detail::FigurasRtf(pagina);
    int z = 1000;
    for (const auto& p : disposicion.sueltas) {
        const double ancho = p.x1 - p.x0, holgura = std::max(6.0, 0.3 * ancho);
        const double x0 = p.alineacion == Alineacion::Derecha  ? p.x1 - ancho - holgura
                          : p.alineacion == Alineacion::Centro ? p.x0 - holgura / 2
                                                               : p.x0;
        const double arriba = p.base - p.tamano, alto = p.tamano * 1.2;
        auto sp = [](const char* n, long v) {
            return std::string("{\\sp{\\sn ") + n + "}{\\sv " + std::to_string(v) + "}}";
        };
        figuras += "{\\shp{\\*\\shpinst\\shpleft" + std::to_string(detail::Twips(x0)) + "\\shptop" +
                   std::to_string(detail::Twips(arriba)) + "\\shpright" +
                   std::to_string(detail::Twips(x0 + ancho + holgura)) + "\\shpbottom" +
                   std::to_string(detail::Twips(arriba + alto)) +
                   "\\shpfhdr0\\shpbxpage\\shpbypage\\shpwr3\\shpwrk0\\shpfblwtxt0\\shpz" +
                   std::to_string(z++) + sp("shapeType", 202) + sp("fFilled", 0) + sp("fLine", 0) +
                   sp("dxTextLeft", 0) + sp("dyTextTop", 0) + sp("dxTextRight", 0) +
                   sp("dyTextBottom", 0) + "{\\shptxt\\pard\\plain" +
                   (p.alineacion == Alineacion::Derecha  ? "\\qr"
                    : p.alineacion == Alineacion::Centro ? "\\qc"
                                                         : "\\ql") +
                   "\\sl-" + std::to_string(detail::Twips(alto)) + "\\slmult0 " + corrida(p) +
                   "\\par}}}";
    }
    auto tomarFiguras = [&figuras] { return std::exchange(figuras, std::string()); };
    auto inicioParrafo = [&] {
        s += "\\pard\\plain\\nowidctlpar";
        if (primeraLinea && !primeraPagina_) s += "\\pagebb";
        primeraLinea = false;
    };
    for (const auto& linea : disposicion.lineas) {
        // The line's largest text sets its height and baseline.
        const auto mayor =
            std::max_element(linea.begin(), linea.end(), [](const auto& a, const auto& b) {
                return a.tamano != b.tamano ? a.tamano < b.tamano : a.base < b.base;
            });
        const double tamano = mayor->tamano;
        const double alto = tamano * 1.2;
        double arriba = std::max(cursor, mayor->base - tamano);
        long hueco = detail::Twips(arriba - cursor);
        if (primeraLinea && hueco > 0) {
            // Spacing before a paragraph may be dropped at the top of a page: an empty
            // paragraph of exact height holds the gap instead.
            inicioParrafo();
            s += "\\sl-" + std::to_string(hueco) + "\\slmult0\\fs2 " + tomarFiguras() + "\\par\n";
            hueco = 0;
        }
        inicioParrafo();
        s += "\\sl-" + std::to_string(detail::Twips(alto)) + "\\slmult0";
        if (hueco > 0) s += "\\sb" + std::to_string(hueco);
        std::string tabuladores, texto;
        for (std::size_t i = 0; i < linea.size(); ++i) {
            const auto& p = linea[i];
            double posicion = p.alineacion == Alineacion::Derecha  ? p.x1
                              : p.alineacion == Alineacion::Centro ? (p.x0 + p.x1) / 2
                                                                   : p.x0;
            long tw = detail::Twips(posicion - margenIzquierdo);
            bool alInicio = i == 0 && p.alineacion == Alineacion::Izquierda && tw <= 10;
            if (!alInicio) {
                tabuladores += p.alineacion == Alineacion::Derecha  ? "\\tqr"
                               : p.alineacion == Alineacion::Centro ? "\\tqc"
                                                                    : "";
                tabuladores += "\\tx" + std::to_string(std::max(tw, 1L));
                texto += "\\tab";
            }
            texto += corrida(p);
        }
        s += tabuladores + " " + tomarFiguras() + texto + "\\par\n";
        cursor = arriba + alto;
    }
    if (primeraLinea) {  // a page without texts still takes its page
        inicioParrafo();
        s += " " + tomarFiguras() + "\\par\n";
    }
    primeraPagina_ = false;
    Escribir(s);
}

void EscritorRtf::Termina() {
    if (!archivo_) throw ErrorEscritura("El escritor no fue iniciado", ruta_.string());
    Escribir("}\n");
    archivo_->Confirmar();
    archivo_.reset();
}

std::unique_ptr<Escritor> CreaEscritorRtf(const std::string& archivo) {
    return std::make_unique<EscritorRtf>(archivo);
}

std::unique_ptr<Escritor> CreaEscritorDoc(const std::string& archivo) {
    return std::make_unique<EscritorRtf>(archivo);
}

}  // namespace paratzorep::renderer
