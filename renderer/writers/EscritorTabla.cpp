#include "renderer/writers/EscritorTabla.h"

#include <algorithm>
#include <cmath>

#include "renderer/writers/ArchivoCsv.h"
#include "renderer/writers/ErrorEscritura.h"
#include "renderer/writers/LibroXls.h"
#include "renderer/writers/LibroXlsx.h"

namespace paratzorep::renderer {
namespace detail {
namespace {

double Traslape(double a0, double a1, double b0, double b1) {
    return std::max(0.0, std::min(a1, b1) - std::max(a0, b0));
}

// Where a text's lines actually print, which may be narrower than its box.
std::pair<double, double> Tinta(const ElementoTexto& e) {
    if (e.renglones.empty()) return {e.x, e.x + e.ancho};
    double x0 = e.x + e.ancho, x1 = e.x;
    for (const auto& r : e.renglones) {
        x0 = std::min(x0, e.x + r.dx);
        x1 = std::max(x1, e.x + r.dx + r.ancho);
    }
    return {x0, std::max(x1, x0)};
}

std::string TextoMostrado(const ElementoTexto& e) {
    std::string t;
    for (const auto& r : e.renglones) {
        if (r.texto.empty()) continue;
        if (!t.empty()) t += ' ';
        t += r.texto;
    }
    return t;
}

}  // namespace

std::vector<EscritorTabla::Columna> AgruparColumnas(std::vector<std::pair<double, double>> spans) {
    std::sort(spans.begin(), spans.end());
    std::vector<EscritorTabla::Columna> columnas;
    for (auto [x0, x1] : spans) {
        bool unida = false;
        for (auto& c : columnas) {
            double menor = std::min(x1 - x0, c.x1 - c.x0);
            double t = Traslape(x0, x1, c.x0, c.x1);
            if ((menor <= 0 && t >= 0 && x0 >= c.x0 && x0 <= c.x1) ||
                (menor > 0 && t > menor / 2)) {
                c.x0 = std::min(c.x0, x0);
                c.x1 = std::max(c.x1, x1);
                unida = true;
                break;
            }
        }
        if (!unida) columnas.push_back({x0, x1});
    }
    std::sort(columnas.begin(), columnas.end(),
              [](const auto& a, const auto& b) { return a.x0 < b.x0; });
    return columnas;
}

std::size_t ColumnaDe(const std::vector<EscritorTabla::Columna>& columnas, double x0, double x1) {
    std::size_t mejor = 0;
    double mejorTraslape = 0, mejorDistancia = INFINITY;
    for (std::size_t i = 0; i < columnas.size(); ++i) {
        double t = Traslape(x0, x1, columnas[i].x0, columnas[i].x1);
        double d = std::max({0.0, columnas[i].x0 - x1, x0 - columnas[i].x1});
        if (t > mejorTraslape || (mejorTraslape == 0 && t == 0 && d < mejorDistancia)) {
            mejor = i;
            mejorTraslape = t;
            mejorDistancia = d;
        }
    }
    return mejor;
}

double AnchoEnCaracteres(double puntos) {
    // Arial 10 averages about 5.25 points per character; one more for the cell's padding.
    return std::max(4.0, std::round((puntos / 5.25 + 1) * 10) / 10);
}

}  // namespace detail

EscritorTabla::EscritorTabla(CrearSalida crear, bool soloDetalle)
    : crear_(std::move(crear)), soloDetalle_(soloDetalle) {}

EscritorTabla::~EscritorTabla() = default;

void EscritorTabla::Inicia(const Documento& documento) {
    fuentes_ = documento.fuentes;
    salida_ = crear_(documento);
}

bool EscritorTabla::Incluida(TipoBanda tipo) const {
    switch (tipo) {
        case TipoBanda::Detalle:
            return true;
        case TipoBanda::EncabezadoGrupo:
        case TipoBanda::PieGrupo:
        case TipoBanda::PieReporte:
            return !soloDetalle_;
        default:
            return false;
    }
}

void EscritorTabla::DefinirColumnas(const std::vector<const ElementoTexto*>& base) {
    std::vector<std::pair<double, double>> spans;
    for (const auto* e : base) spans.emplace_back(e->x, e->x + e->ancho);
    columnas_ = detail::AgruparColumnas(std::move(spans));

    // Titles: page header texts over exactly one column, the lowest one per column.
    std::vector<ColumnaTabla> definicion(columnas_.size());
    std::vector<double> yTitulo(columnas_.size(), -INFINITY);
    for (const auto& h : encabezado_) {
        auto [x0, x1] = detail::Tinta(h);
        std::size_t tocadas = 0, cual = 0;
        for (std::size_t i = 0; i < columnas_.size(); ++i) {
            if (detail::Traslape(x0, x1, columnas_[i].x0, columnas_[i].x1) > 0) {
                ++tocadas;
                cual = i;
            }
        }
        std::string texto = detail::TextoMostrado(h);
        if (tocadas != 1 || texto.empty() || h.y <= yTitulo[cual]) continue;
        yTitulo[cual] = h.y;
        definicion[cual].titulo = texto;
    }
    for (std::size_t i = 0; i < columnas_.size(); ++i)
        definicion[i].ancho = detail::AnchoEnCaracteres(columnas_[i].x1 - columnas_[i].x0);
    salida_->Columnas(std::move(definicion));
    columnasDefinidas_ = true;
    for (const auto& f : pendientes_) EmitirFila(f);
    pendientes_.clear();
}

int EscritorTabla::EstiloDe(const ElementoTexto& e) {
    EstiloCelda estilo;
    if (e.tipo != TipoValor::Texto) estilo.formato = e.formato;
    estilo.negrita = e.fuente < fuentes_.size() && fuentes_[e.fuente].negrita;
    estilo.alineacion = e.alineacion == Alineacion::Izquierda ? AlineacionCelda::Izquierda
                        : e.alineacion == Alineacion::Centro  ? AlineacionCelda::Centro
                                                              : AlineacionCelda::Derecha;
    for (const auto& [conocido, id] : estilos_)
        if (conocido == estilo) return id;
    int id = salida_->Estilo(estilo);
    estilos_.emplace_back(estilo, id);
    return id;
}

void EscritorTabla::EmitirFila(const FilaPendiente& fila) {
    std::vector<std::vector<const ElementoTexto*>> porColumna(columnas_.size());
    for (const auto& e : fila.elementos)
        porColumna[detail::ColumnaDe(columnas_, e.x, e.x + e.ancho)].push_back(&e);
    std::vector<CeldaTabla> celdas(columnas_.size());
    bool alguna = false;
    for (std::size_t c = 0; c < columnas_.size(); ++c) {
        auto& lista = porColumna[c];
        if (lista.empty()) continue;
        std::sort(lista.begin(), lista.end(), [](const auto* a, const auto* b) {
            return a->y != b->y ? a->y < b->y : a->x < b->x;
        });
        const ElementoTexto& e = *lista.front();
        if (lista.size() == 1 && e.tipo == TipoValor::Numero) {
            celdas[c] = CeldaTabla::Numero(e.numero, EstiloDe(e));
        } else if (lista.size() == 1 && e.tipo == TipoValor::Fecha) {
            celdas[c] = CeldaTabla::Fecha(e.numero, EstiloDe(e));
        } else {
            std::string texto;
            for (const auto* x : lista) {
                std::string t = detail::TextoMostrado(*x);
                if (t.empty()) continue;
                if (!texto.empty()) texto += ' ';
                texto += t;
            }
            if (texto.empty()) continue;
            celdas[c] = CeldaTabla::Texto(std::move(texto), EstiloDe(e));
        }
        alguna = true;
    }
    if (alguna) salida_->Fila(celdas);
}

void EscritorTabla::CerrarFilaAbierta() {
    if (!abierta_) return;
    if (columnasDefinidas_)
        EmitirFila(*abierta_);
    else
        pendientes_.push_back(std::move(*abierta_));
    abierta_.reset();
}

void EscritorTabla::Pagina(const renderer::Pagina& pagina) {
    if (!salida_) throw ErrorEscritura("El escritor no fue iniciado");
    std::vector<const ElementoTexto*> textos;
    for (const auto& t : pagina.textos) textos.push_back(&t);
    std::stable_sort(textos.begin(), textos.end(),
                     [](const auto* a, const auto* b) { return a->banda < b->banda; });
    if (encabezado_.empty() && !columnasDefinidas_)
        for (const auto* t : textos)
            if (t->tipoBanda == TipoBanda::EncabezadoPagina) encabezado_.push_back(*t);
    if (!columnasDefinidas_) {
        std::vector<const ElementoTexto*> detalle;
        for (const auto* t : textos)
            if (t->tipoBanda == TipoBanda::Detalle) detalle.push_back(t);
        if (!detalle.empty()) DefinirColumnas(detalle);
    }
    for (const auto* t : textos) {
        if (!Incluida(t->tipoBanda)) continue;
        if (abierta_ && abierta_->banda != t->banda) CerrarFilaAbierta();
        if (!abierta_) abierta_ = FilaPendiente{t->banda, t->tipoBanda, {}};
        abierta_->elementos.push_back(*t);
    }
}

void EscritorTabla::Termina() {
    if (!salida_) throw ErrorEscritura("El escritor no fue iniciado");
    CerrarFilaAbierta();
    if (!columnasDefinidas_) {
        // No details at all: the columns come from whatever rows there are.
        std::vector<const ElementoTexto*> todos;
        for (const auto& f : pendientes_)
            for (const auto& e : f.elementos) todos.push_back(&e);
        DefinirColumnas(todos);
    }
    salida_->Cerrar();
}

namespace {
std::string NombreHoja(const Documento& d) {
    return d.titulo.empty() ? "Reporte" : d.titulo;
}
}  // namespace

std::unique_ptr<Escritor> CreaEscritorXls(const std::string& archivo) {
    return std::make_unique<EscritorTabla>(
        [archivo](const Documento& d) {
            return std::make_unique<LibroXls>(archivo, NombreHoja(d));
        },
        false);
}

std::unique_ptr<Escritor> CreaEscritorXlsx(const std::string& archivo) {
    return std::make_unique<EscritorTabla>(
        [archivo](const Documento& d) {
            return std::make_unique<LibroXlsx>(archivo, NombreHoja(d));
        },
        false);
}

std::unique_ptr<Escritor> CreaEscritorCsv(const std::string& archivo) {
    return std::make_unique<EscritorTabla>(
        [archivo](const Documento&) { return std::make_unique<ArchivoCsv>(archivo); }, true);
}

}  // namespace paratzorep::renderer
