#include "renderer/writers/TxtEscritor.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>

#include "renderer/layout/Medidor.h"
#include "renderer/writers/ErrorEscritura.h"

namespace paratzorep::renderer {

namespace {

std::u32string Decodifica(std::string_view s) {
    std::u32string r;
    r.reserve(s.size());
    for (std::size_t i = 0; i < s.size();) r.push_back(detail::SiguienteCaracter(s, i));
    return r;
}

void Codifica(char32_t c, std::string& out) {
    if (c < 0x80) {
        out.push_back(static_cast<char>(c));
    } else if (c < 0x800) {
        out.push_back(static_cast<char>(0xC0 | (c >> 6)));
        out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    } else if (c < 0x10000) {
        out.push_back(static_cast<char>(0xE0 | (c >> 12)));
        out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    } else {
        out.push_back(static_cast<char>(0xF0 | (c >> 18)));
        out.push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    }
}

// One thing to put on the grid: a line of text or a horizontal rule.
struct Pieza {
    double base;      // baseline (texts) or position (rules), points
    double x, ancho;  // the element's box
    Alineacion alineacion;
    bool regla;
    bool numero;
    std::u32string texto;
};

}  // namespace

TxtEscritor::TxtEscritor(std::string archivo) : archivo_(std::move(archivo)) {}

TxtEscritor::TxtEscritor(std::ostream& salida, std::string separador)
    : salida_(&salida), separador_(std::move(separador)) {}

void TxtEscritor::Inicia(const Documento& documento) {
    doc_ = documento;
    double tam = documento.fuentes.empty() ? 9 : documento.fuentes.front().tamano;
    // A column is a little wider than the base font's average character, so that texts
    // measured for a proportional font fit their boxes.
    anchoColumna_ = tam * 0.6;
    altoRenglon_ = tam * 1.16;
    primera_ = true;
    if (!salida_) {
        archivoSalida_ = std::make_unique<detail::ArchivoSalida>(archivo_);
        salida_ = &archivoSalida_->flujo();
    }
}

std::vector<std::string> TxtEscritor::Rejilla(const renderer::Pagina& pagina) const {
    return Rejilla(pagina, anchoColumna_, nullptr);
}

double TxtEscritor::AnchoParaPagina(const renderer::Pagina& pagina) {
    const double util = doc_.anchoPagina - doc_.margenIzquierdo - doc_.margenDerecho;
    if (columnasMaximas_ <= 0 || util <= 0 || util / anchoColumna_ <= columnasMaximas_)
        return anchoColumna_;
    const double ajustado = util / columnasMaximas_;
    int referencia = 0;
    Rejilla(pagina, anchoColumna_, &referencia);
    auto sirve = [&](double ancho) {
        int danos = 0;
        Rejilla(pagina, ancho, &danos);
        return danos <= referencia;
    };
    // The widest column (narrowest grid) that still serves, between the fitted width (or the
    // width an earlier page settled on) and the report's own.
    double malo = anchoAjustado_ > 0 ? anchoAjustado_ : ajustado;
    if (sirve(malo)) return anchoAjustado_ = malo;
    double bueno = anchoColumna_;
    for (int i = 0; i < 8; ++i) {
        const double medio = (malo + bueno) / 2;
        (sirve(medio) ? bueno : malo) = medio;
    }
    return anchoAjustado_ = bueno;
}

std::vector<std::string> TxtEscritor::Rejilla(const renderer::Pagina& pagina,
                                              const double anchoColumna, int* danos) const {
    std::vector<Pieza> piezas;
    for (const auto& t : pagina.textos) {
        double base = t.y + t.base;
        for (const auto& r : t.renglones) {
            if (!r.texto.empty())
                piezas.push_back({base, t.x, t.ancho, t.alineacion, false,
                                  t.tipo == TipoValor::Numero, Decodifica(r.texto)});
            base += t.interlineado;
        }
    }
    for (const auto& l : pagina.lineas)
        if (std::abs(l.y1 - l.y2) < 0.5 && std::abs(l.x2 - l.x1) > anchoColumna)
            piezas.push_back({l.y1 + altoRenglon_ * 0.5,
                              std::min(l.x1, l.x2),
                              std::abs(l.x2 - l.x1),
                              Alineacion::Izquierda,
                              true,
                              false,
                              {}});
    std::stable_sort(piezas.begin(), piezas.end(),
                     [](const Pieza& a, const Pieza& b) { return a.base < b.base; });

    // Rows follow the baselines in order: one row per distinct baseline, with blank rows
    // kept for wider gaps.
    std::vector<int> fila(piezas.size());
    int actual = -1;
    double anterior = 0;
    for (std::size_t i = 0; i < piezas.size(); ++i) {
        double b = piezas[i].base;
        if (actual < 0) {
            actual = std::max(
                0, static_cast<int>(std::lround((b - doc_.margenSuperior) / altoRenglon_)) - 1);
        } else if (b - anterior > altoRenglon_ * 0.45) {
            actual += std::max(1, static_cast<int>(std::lround((b - anterior) / altoRenglon_)));
        } else {
            fila[i] = actual;
            continue;  // same row: keep the row's reference baseline
        }
        fila[i] = actual;
        anterior = b;
    }
    std::vector<std::u32string> rejilla(actual + 1);
    // Which piece wrote each cell (-1 blank or a rule), to find texts that touch.
    std::vector<std::vector<int>> duenos(danos ? rejilla.size() : 0);
    auto columna = [&](double x) {
        return std::max(0,
                        static_cast<int>(std::lround((x - doc_.margenIzquierdo) / anchoColumna)));
    };
    // Right-aligned texts (numbers) first: they own their cells; other texts fill around.
    std::vector<std::size_t> orden(piezas.size());
    for (std::size_t i = 0; i < orden.size(); ++i) orden[i] = i;
    std::stable_sort(orden.begin(), orden.end(), [&](std::size_t a, std::size_t b) {
        auto prioridad = [&](const Pieza& p) {
            return p.regla ? 3 : p.alineacion == Alineacion::Derecha ? 0 : 1;
        };
        return prioridad(piezas[a]) < prioridad(piezas[b]);
    });
    for (std::size_t idx : orden) {
        const Pieza& p = piezas[idx];
        std::u32string& r = rejilla[static_cast<std::size_t>(fila[idx])];
        int inicio, n;
        if (p.regla) {
            inicio = columna(p.x);
            n = std::max(1, columna(p.x + p.ancho) - inicio);
        } else {
            n = static_cast<int>(p.texto.size());
            if (p.alineacion == Alineacion::Derecha)
                inicio = std::max(0, columna(p.x + p.ancho) - n);
            else if (p.alineacion == Alineacion::Centro)
                inicio = std::max(0, (columna(p.x) + columna(p.x + p.ancho) - n) / 2);
            else
                inicio = columna(p.x);
        }
        if (r.size() < static_cast<std::size_t>(inicio + n)) r.resize(inicio + n, U' ');
        std::vector<int>* dueno = danos ? &duenos[static_cast<std::size_t>(fila[idx])] : nullptr;
        if (dueno && dueno->size() < r.size()) dueno->resize(r.size(), -1);
        for (int k = 0; k < n; ++k) {
            char32_t& celda = r[static_cast<std::size_t>(inicio + k)];
            if (celda != U' ') {
                if (p.regla) continue;
                if (danos) *danos += n - k;
                break;  // never write over a text already placed
            }
            celda = p.regla ? U'-' : p.texto[static_cast<std::size_t>(k)];
            if (dueno && !p.regla)
                (*dueno)[static_cast<std::size_t>(inicio + k)] = static_cast<int>(idx);
        }
    }
    if (danos)
        for (const auto& d : duenos)
            for (std::size_t i = 0; i + 1 < d.size(); ++i)
                if (d[i] >= 0 && d[i + 1] >= 0 && d[i] != d[i + 1]) ++*danos;
    std::vector<std::string> lineas;
    lineas.reserve(rejilla.size());
    for (auto& r : rejilla) {
        while (!r.empty() && r.back() == U' ') r.pop_back();
        std::string s;
        for (char32_t c : r) Codifica(c, s);
        lineas.push_back(std::move(s));
    }
    return lineas;
}

void TxtEscritor::Pagina(const renderer::Pagina& pagina) {
    if (lectorCerrado_) return;
    errno = 0;
    if (!primera_) *salida_ << separador_;
    primera_ = false;
    for (const auto& l : Rejilla(pagina, AnchoParaPagina(pagina), nullptr)) *salida_ << l << '\n';
    if (!*salida_) {
        if (LectorSeFue()) return;
        throw ErrorEscritura("No se pudo escribir el archivo de texto", archivo_,
                             std::strerror(errno));
    }
}

bool TxtEscritor::LectorSeFue() {
    // A preview read through a pipe whose reader has gone (a pager closed, `| head`): the
    // rest is not wanted. Files never end this way.
    if (archivoSalida_ || errno != EPIPE) return false;
    lectorCerrado_ = true;
    return true;
}

void TxtEscritor::Termina() {
    if (archivoSalida_) {
        archivoSalida_->Confirmar();
        salida_ = nullptr;
        archivoSalida_.reset();
        return;
    }
    if (lectorCerrado_) return;
    errno = 0;
    salida_->flush();
    if (!*salida_ && !LectorSeFue())
        throw ErrorEscritura("No se pudo escribir el archivo de texto", archivo_,
                             std::strerror(errno));
}

}  // namespace paratzorep::renderer
