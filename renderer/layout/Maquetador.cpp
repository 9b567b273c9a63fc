#include "renderer/layout/Maquetador.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <deque>
#include <map>
#include <set>
#include <unordered_set>

#include "renderer/formula/Evaluador.h"
#include "renderer/formula/Formula.h"

namespace paratzorep::renderer {

namespace detail {

// One summary element's running state.
class Acumulador {
  public:
    Acumulador(FuncionResumen f, int slot, AmbitoResumen ambito)
        : funcion_(f), slot_(slot), ambito_(ambito) {}

    int Slot() const { return slot_; }
    const AmbitoResumen& Ambito() const { return ambito_; }
    FuncionResumen Funcion() const { return funcion_; }

    void Reinicia() {
        suma_ = 0;
        cuenta_ = 0;
        numericos_ = 0;
        minimo_ = maximo_ = Valor();
        distintos_.clear();
    }

    void Agrega(const Valor& v) {
        if (v.esNulo()) return;
        ++cuenta_;
        switch (funcion_) {
            case FuncionResumen::Suma:
            case FuncionResumen::Promedio:
                if (v.tipo() == Valor::Tipo::Numero) {
                    suma_ += v.comoNumero();
                    ++numericos_;
                }
                break;
            case FuncionResumen::Minimo:
                if (minimo_.esNulo() || compararParaOrden(v, minimo_) < 0) minimo_ = v;
                break;
            case FuncionResumen::Maximo:
                if (maximo_.esNulo() || compararParaOrden(v, maximo_) > 0) maximo_ = v;
                break;
            case FuncionResumen::CuentaDistintos:
                distintos_.insert(Clave(v));
                break;
            case FuncionResumen::Cuenta:
                break;
        }
    }

    Valor Resultado() const {
        switch (funcion_) {
            case FuncionResumen::Suma:
                return Valor::numero(suma_);
            case FuncionResumen::Promedio:
                return numericos_ ? Valor::numero(suma_ / static_cast<double>(numericos_))
                                  : Valor();
            case FuncionResumen::Cuenta:
                return Valor::numero(static_cast<double>(cuenta_));
            case FuncionResumen::CuentaDistintos:
                return Valor::numero(static_cast<double>(distintos_.size()));
            case FuncionResumen::Minimo:
                return minimo_;
            case FuncionResumen::Maximo:
                return maximo_;
        }
        return Valor();
    }

  private:
    // Distinct values as the server would group them: texts by collation weight
    // (case and accents aside, trailing blanks ignored), other kinds by kind and value.
    static std::string Clave(const Valor& v) {
        std::string k(1, static_cast<char>('0' + static_cast<int>(v.tipo())));
        if (v.tipo() == Valor::Tipo::Texto) {
            std::string_view s = v.comoTexto();
            while (!s.empty() && s.back() == ' ') s.remove_suffix(1);
            for (std::size_t i = 0; i < s.size();) {
                std::uint16_t p = pesoColacion(SiguienteCaracter(s, i));
                k.push_back(static_cast<char>(p >> 8));
                k.push_back(static_cast<char>(p & 0xFF));
            }
        } else if (v.tipo() == Valor::Tipo::Numero) {
            double d = v.comoNumero();
            k.append(reinterpret_cast<const char*>(&d), sizeof d);
        } else {
            k += v.aTexto();
        }
        return k;
    }

    FuncionResumen funcion_;
    int slot_;
    AmbitoResumen ambito_;
    double suma_ = 0;
    std::int64_t cuenta_ = 0;
    std::int64_t numericos_ = 0;
    Valor minimo_, maximo_;
    std::unordered_set<std::string> distintos_;
};

struct ElementoCompilado {
    const ElementoPlantilla* el = nullptr;
    std::uint16_t fuente = 0;
    MetricaFuente metrica;
    int slot = -1;        // value slot (Campo, Formula, Parametro)
    int acumulador = -1;  // Resumen
    int conResumen = -1;  // Formula that uses summaries: its entry in Impl::conResumen
    std::uint16_t columna = 0;
};

// A formula shown in a band that uses group summaries (Sum({@Venta}, {t.grupo}) / ...). It is
// evaluated when its band is laid out, each summary call with an accumulator of its own: the
// scope of the group it names, else the scope of the section it shows in (as <resumen>).
struct FormulaConResumen {
    std::string nombre;
    std::map<const formula::Nodo*, int> acumuladores;
};

struct SeccionCompilada {
    const SeccionPlantilla* sec = nullptr;
    TipoBanda tipo = TipoBanda::Detalle;
    std::uint8_t nivel = 0;
    std::vector<ElementoCompilado> elementos;
    bool Vacia() const { return !sec || !sec->presente || sec->elementos.empty(); }
};

// A band measured and ready to be placed: texts relative to the band's top.
struct BandaPreparada {
    double alto = 0;
    bool suprimida = false;
    std::vector<ElementoTexto> textos;
    std::vector<bool> especiales;  // per text: holds {N} / {M}
    std::vector<ElementoLinea> lineas;
    std::vector<ElementoCaja> cajas;
};

double SerieDe(const Fecha& f) {
    static const std::int64_t base = Fecha{1899, 12, 30}.diaJuliano();
    return static_cast<double>(f.diaJuliano() - base);
}

}  // namespace detail

using detail::Acumulador;
using detail::BandaPreparada;
using detail::ElementoCompilado;
using detail::SeccionCompilada;

struct Maquetador::Impl {
    const Plantilla& p;
    Medidor& medidor;
    std::time_t impresion;
    std::vector<Referencia> referencias;
    std::vector<Acumulador> acumuladores;
    std::map<std::string, formula::Formula> formulasLeidas;  // by lower-case name
    std::vector<detail::FormulaConResumen> conResumen;
    std::set<std::string> nombresConResumen;  // lower-case names of the formulas above
    std::uint16_t fuenteBase = 0;
    bool detalleConResumen = false;

    SeccionCompilada encRep, encPag, detalle, piePag, pieRep;
    std::vector<SeccionCompilada> encGrupo, pieGrupo;
    std::vector<int> slotGrupo;
    std::vector<std::vector<Valor>> filaEncabezado;  // per level: the row its group started with

    // Data records for the tabular exports: where each column's value comes from.
    struct OrigenColumna {
        const ElementoCompilado* ec = nullptr;  // the element; null: the group's own value
        int slot = -1;                          // when `ec` is null
        int nivel = 0;                          // 0 detail (or innermost footer); k group header
    };
    std::vector<ColumnaDatos> columnasDatos;
    std::vector<OrigenColumna> origenDatos;
    bool registroEnPie = false;        // the detail shows no value: one record per innermost group
    std::vector<Valor> registroDatos;  // the record being built; group columns kept between rows
    std::function<void(const std::vector<Valor>&)> alRegistro;

    // Layout state
    ListaPaginas* salida = nullptr;
    std::function<void(int)> aviso;
    FuenteFilas* fuente = nullptr;
    std::deque<std::vector<Valor>> adelantadas;  // rows read ahead for keep-together
    PaginaEnConstruccion pagina;
    int numeroPagina = 0;
    double y = 0;
    double limite = 0;
    double altoPie = 0;
    bool contenido = false;
    std::uint32_t banda = 0;
    std::int64_t registro = 0;
    BandaPreparada bp;
    BandaPreparada bpPagina;  // page header and footer, prepared while `bp` waits

    Impl(const Plantilla& pl, Medidor& m, std::time_t t) : p(pl), medidor(m), impresion(t) {
        fuenteBase = medidor.Registra(p.fuente);
        for (const auto& e : p.detalle.elementos)
            detalleConResumen =
                detalleConResumen || e.tipo == TipoElemento::Resumen ||
                (e.tipo == TipoElemento::Especial && e.especial == CampoEspecial::NumeroRegistro);
        Compila(encRep, p.encabezadoReporte, TipoBanda::EncabezadoReporte, 0);
        Compila(encPag, p.encabezadoPagina, TipoBanda::EncabezadoPagina, 0);
        Compila(detalle, p.detalle, TipoBanda::Detalle, 0);
        Compila(piePag, p.piePagina, TipoBanda::PiePagina, 0);
        Compila(pieRep, p.pieReporte, TipoBanda::PieReporte, 0);
        encGrupo.resize(p.grupos.size());
        pieGrupo.resize(p.grupos.size());
        for (std::size_t i = 0; i < p.grupos.size(); ++i) {
            const auto& g = p.grupos[i];
            auto nivel = static_cast<std::uint8_t>(i + 1);
            Compila(encGrupo[i], g.encabezado, TipoBanda::EncabezadoGrupo, nivel);
            Compila(pieGrupo[i], g.pie, TipoBanda::PieGrupo, nivel);
            slotGrupo.push_back(
                Slot({g.esFormula ? Referencia::Tipo::Formula : Referencia::Tipo::Campo, g.valor}));
        }
        // The page header and footer repeat on every page: they must leave room for the body.
        double fijos =
            (encPag.Vacia() ? 0 : MedidaFija(encPag)) + (piePag.Vacia() ? 0 : piePag.sec->alto);
        if (fijos > p.pagina.AltoUtil() - 36)
            throw ErrorPlantilla(p.archivo, 0, 0,
                                 "el encabezado y el pie de página no dejan espacio para el cuerpo "
                                 "del reporte");
        filaEncabezado.resize(p.grupos.size());
        ArmaColumnasDatos();
    }

    // ---- data columns ----

    static bool EsDato(const ElementoPlantilla& e) {
        switch (e.tipo) {
            case TipoElemento::Campo:
            case TipoElemento::Formula:
            case TipoElemento::Parametro:
            case TipoElemento::Resumen:
                return true;
            case TipoElemento::Especial:
                return e.especial == CampoEspecial::NumeroRegistro;
            default:
                return false;
        }
    }

    double AnchoDe(const ElementoPlantilla& e) const {
        return e.ancho > 0 ? e.ancho : std::max(p.pagina.AnchoUtil() - e.x, 1.0);
    }
    static double AltoDe(const ElementoPlantilla& e) {
        return e.alto > 0 ? e.alto : e.fuente.tamano * 1.2;
    }

    static std::string NombreCampo(const std::string& ref) {
        auto punto = ref.rfind('.');
        return punto == std::string::npos ? ref : ref.substr(punto + 1);
    }

    // A value's column title: the template's `titulo`; under the page header, the heading
    // over it; else the label on its left in the same band; else the field's own name.
    std::string TituloColumna(const SeccionCompilada& sc, const ElementoPlantilla& e,
                              bool bajoEncabezado) const {
        if (!e.titulo.empty()) return e.titulo;
        const double x0 = e.x, x1 = e.x + AnchoDe(e);
        if (bajoEncabezado && !encPag.Vacia()) {
            const ElementoPlantilla* mejor = nullptr;
            double mejorTraslape = 0;
            for (const auto& t : encPag.sec->elementos) {
                if (t.tipo != TipoElemento::Texto || t.valor.empty()) continue;
                double traslape = std::min(x1, t.x + AnchoDe(t)) - std::max(x0, t.x);
                if (traslape > mejorTraslape + 1e-6 ||
                    (mejor && std::abs(traslape - mejorTraslape) <= 1e-6 && t.y > mejor->y)) {
                    mejor = &t;
                    mejorTraslape = traslape;
                }
            }
            if (mejor) return mejor->valor;
        }
        const ElementoPlantilla* etiqueta = nullptr;
        for (const auto& t : sc.sec->elementos) {
            if (t.tipo != TipoElemento::Texto || t.valor.empty() || t.x >= x0) continue;
            if (t.y >= e.y + AltoDe(e) || e.y >= t.y + AltoDe(t)) continue;
            if (!etiqueta || t.x > etiqueta->x) etiqueta = &t;
        }
        // A label is the text just before the value, with no other value in between.
        if (etiqueta && std::any_of(sc.sec->elementos.begin(), sc.sec->elementos.end(),
                                    [&](const ElementoPlantilla& o) {
                                        return &o != &e && EsDato(o) && o.x > etiqueta->x &&
                                               o.x < x0;
                                    }))
            etiqueta = nullptr;
        if (etiqueta) {
            std::string r = etiqueta->valor;
            while (!r.empty() && (r.back() == ':' || r.back() == ' ')) r.pop_back();
            if (!r.empty()) return r;
        }
        switch (e.tipo) {
            case TipoElemento::Campo:
                return NombreCampo(e.valor);
            case TipoElemento::Resumen: {
                static const char* kFuncion[] = {"Suma",     "Cuenta", "Distintos",
                                                 "Promedio", "Mínimo", "Máximo"};
                return std::string(kFuncion[static_cast<int>(e.funcion)]) + " de " +
                       (e.resumenDeFormula ? e.valor : NombreCampo(e.valor));
            }
            case TipoElemento::Especial:
                return "Registro";
            default:
                return e.valor;
        }
    }

    // The columns: the values of each group's header, outermost first (the group's own value
    // when its header shows none), then the detail's left to right; a value already in a
    // column is not repeated. A detail that shows no value gives way to the innermost
    // group's footer.
    void ArmaColumnasDatos() {
        std::vector<Referencia> vistos;
        auto yaVisto = [&](const Referencia& r) {
            if (std::find(vistos.begin(), vistos.end(), r) != vistos.end()) return true;
            vistos.push_back(r);
            return false;
        };
        auto agrega = [&](const SeccionCompilada& sc, int nivel, bool bajoEncabezado) {
            std::vector<const ElementoCompilado*> lista;
            if (!sc.Vacia())
                for (const auto& ec : sc.elementos)
                    if (EsDato(*ec.el)) lista.push_back(&ec);
            std::stable_sort(lista.begin(), lista.end(), [](const auto* a, const auto* b) {
                return a->el->x != b->el->x ? a->el->x < b->el->x : a->el->y < b->el->y;
            });
            int agregadas = 0;
            for (const auto* ec : lista) {
                const ElementoPlantilla& e = *ec->el;
                if (ec->slot >= 0 && e.tipo != TipoElemento::Parametro &&
                    yaVisto(referencias[static_cast<std::size_t>(ec->slot)]))
                    continue;
                std::string formato = e.formato;
                if (formato.empty() && e.tipo == TipoElemento::Resumen &&
                    (e.funcion == FuncionResumen::Cuenta ||
                     e.funcion == FuncionResumen::CuentaDistintos))
                    formato = "#,##0";
                columnasDatos.push_back({TituloColumna(sc, e, bajoEncabezado), formato, nivel});
                origenDatos.push_back({ec, -1, nivel});
                ++agregadas;
            }
            return agregadas;
        };
        for (std::size_t i = 0; i < p.grupos.size(); ++i) {
            const int nivel = static_cast<int>(i + 1);
            if (agrega(encGrupo[i], nivel, false) > 0) continue;
            const Referencia& r = referencias[static_cast<std::size_t>(slotGrupo[i])];
            if (yaVisto(r)) continue;
            columnasDatos.push_back(
                {r.tipo == Referencia::Tipo::Campo ? NombreCampo(r.nombre) : r.nombre, "", nivel});
            origenDatos.push_back({nullptr, slotGrupo[i], nivel});
        }
        registroEnPie =
            !p.grupos.empty() && std::none_of(detalle.elementos.begin(), detalle.elementos.end(),
                                              [](const auto& ec) { return EsDato(*ec.el); });
        agrega(registroEnPie ? pieGrupo.back() : detalle, 0, true);
        // Titles name columns: the same title twice gets a number.
        for (std::size_t i = 0; i < columnasDatos.size(); ++i) {
            int n = 1;
            for (std::size_t j = 0; j < i; ++j)
                if (columnasDatos[j].titulo == columnasDatos[i].titulo) ++n;
            if (n > 1) columnasDatos[i].titulo += " " + std::to_string(n);
        }
        registroDatos.resize(columnasDatos.size());
    }

    Valor ValorDe(const OrigenColumna& o, const std::vector<Valor>& vals) const {
        if (!o.ec) return vals[static_cast<std::size_t>(o.slot)];
        switch (o.ec->el->tipo) {
            case TipoElemento::Campo:
            case TipoElemento::Parametro:
                return vals[static_cast<std::size_t>(o.ec->slot)];
            case TipoElemento::Formula:
                return ValorFormula(*o.ec, vals);
            case TipoElemento::Resumen:
                return acumuladores[static_cast<std::size_t>(o.ec->acumulador)].Resultado();
            case TipoElemento::Especial:
                return Valor::numero(static_cast<double>(registro));
            default:
                return {};
        }
    }

    // A group of level `nivel` started with `vals`: its header's values stay in the records
    // until the group ends.
    void TomaEncabezado(int nivel, const std::vector<Valor>& vals) {
        for (std::size_t c = 0; c < origenDatos.size(); ++c)
            if (origenDatos[c].nivel == nivel) registroDatos[c] = ValorDe(origenDatos[c], vals);
    }

    void EmiteRegistro(const std::vector<Valor>& vals) {
        for (std::size_t c = 0; c < origenDatos.size(); ++c)
            if (origenDatos[c].nivel == 0) registroDatos[c] = ValorDe(origenDatos[c], vals);
        alRegistro(registroDatos);
    }

    int Slot(const Referencia& r) {
        for (std::size_t i = 0; i < referencias.size(); ++i)
            if (referencias[i] == r) return static_cast<int>(i);
        referencias.push_back(r);
        return static_cast<int>(referencias.size() - 1);
    }

    void Compila(SeccionCompilada& sc, const SeccionPlantilla& s, TipoBanda tipo,
                 std::uint8_t nivel) {
        sc.sec = &s;
        sc.tipo = tipo;
        sc.nivel = nivel;
        std::uint16_t columna = 0;
        for (const auto& e : s.elementos) {
            ElementoCompilado ec;
            ec.el = &e;
            ec.columna = columna++;
            if (e.tipo != TipoElemento::Linea && e.tipo != TipoElemento::Caja) {
                ec.fuente = medidor.Registra(e.fuente);
                ec.metrica = medidor.Metrica(ec.fuente);
            }
            switch (e.tipo) {
                case TipoElemento::Campo:
                    ec.slot = Slot({Referencia::Tipo::Campo, e.valor});
                    break;
                case TipoElemento::Formula:
                    if (UsaResumenes(e.valor, e.linea)) {
                        conResumen.push_back({e.valor, {}});
                        ec.conResumen = static_cast<int>(conResumen.size() - 1);
                        PreparaResumenes(e.valor, AmbitoDe(tipo, nivel), e.linea,
                                         conResumen.back());
                    } else {
                        ec.slot = Slot({Referencia::Tipo::Formula, e.valor});
                    }
                    break;
                case TipoElemento::Parametro:
                    ec.slot = Slot({Referencia::Tipo::Parametro, e.valor});
                    break;
                case TipoElemento::Resumen: {
                    int slot = Slot(
                        {e.resumenDeFormula ? Referencia::Tipo::Formula : Referencia::Tipo::Campo,
                         e.valor});
                    acumuladores.emplace_back(e.funcion, slot, e.ambito);
                    ec.acumulador = static_cast<int>(acumuladores.size() - 1);
                    break;
                }
                default:
                    break;
            }
            sc.elementos.push_back(ec);
        }
    }

    // ---- formulas that use summaries ----

    static std::string Minusculas(std::string s) {
        for (char& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        return s;
    }

    // The template's formula of that name, parsed once; null when the template has none.
    const formula::Formula* LeeFormula(const std::string& nombre, int linea) {
        const std::string clave = Minusculas(nombre);
        if (auto it = formulasLeidas.find(clave); it != formulasLeidas.end()) return &it->second;
        const FormulaPlantilla* f = p.BuscaFormula(nombre);
        if (!f) return nullptr;
        try {
            return &formulasLeidas.emplace(clave, formula::analizar(f->expresion)).first->second;
        } catch (const formula::ErrorFormula& ex) {
            throw ErrorPlantilla(p.archivo, linea, 0,
                                 "la fórmula '" + nombre + "' no es válida: " + ex.what());
        }
    }

    // Whether the formula (or one it refers to) calls a group summary.
    bool UsaResumenes(const std::string& nombre, int linea, int profundidad = 0) {
        if (profundidad > 32)
            throw ErrorPlantilla(p.archivo, linea, 0,
                                 "las fórmulas de la plantilla se refieren unas a otras sin fin");
        const formula::Formula* f = LeeFormula(nombre, linea);
        if (!f) return false;
        if (!f->resumenes().empty()) return true;
        for (const auto& otra : f->formulas())
            if (UsaResumenes(otra, linea, profundidad + 1)) return true;
        return false;
    }

    // Where a summary without a group accumulates: as a <resumen> of that section would.
    static AmbitoResumen AmbitoDe(TipoBanda tipo, std::uint8_t nivel) {
        if (tipo == TipoBanda::EncabezadoGrupo || tipo == TipoBanda::PieGrupo)
            return {AmbitoResumen::Tipo::Grupo, nivel};
        if (tipo == TipoBanda::EncabezadoPagina || tipo == TipoBanda::PiePagina)
            return {AmbitoResumen::Tipo::Pagina, 0};
        return {AmbitoResumen::Tipo::Reporte, 0};
    }

    static FuncionResumen FuncionDe(formula::Resumen r) {
        switch (r) {
            case formula::Resumen::Sum:
                return FuncionResumen::Suma;
            case formula::Resumen::Count:
                return FuncionResumen::Cuenta;
            case formula::Resumen::DistinctCount:
                return FuncionResumen::CuentaDistintos;
            case formula::Resumen::Average:
                return FuncionResumen::Promedio;
            case formula::Resumen::Minimum:
                return FuncionResumen::Minimo;
            case formula::Resumen::Maximum:
                return FuncionResumen::Maximo;
        }
        return FuncionResumen::Suma;
    }

    // Accumulators for every summary call of the formula and of the summary formulas it
    // refers to; slots for the fields, row formulas and parameters it reads.
    void PreparaResumenes(const std::string& nombre, const AmbitoResumen& ambito, int linea,
                          detail::FormulaConResumen& fr, int profundidad = 0) {
        if (profundidad > 32)
            throw ErrorPlantilla(p.archivo, linea, 0,
                                 "las fórmulas de la plantilla se refieren unas a otras sin fin");
        const formula::Formula* f = LeeFormula(nombre, linea);
        nombresConResumen.insert(Minusculas(nombre));
        for (const auto& r : f->resumenes()) {
            AmbitoResumen a = ambito;
            if (!r.grupo.campo.empty()) {
                const std::string campo = r.grupo.tabla + "." + r.grupo.campo;
                int nivel = 0;
                for (std::size_t i = 0; i < p.grupos.size(); ++i)
                    if (!p.grupos[i].esFormula &&
                        Minusculas(p.grupos[i].valor) == Minusculas(campo))
                        nivel = static_cast<int>(i + 1);
                if (nivel == 0)
                    throw ErrorPlantilla(p.archivo, linea, 0,
                                         "la fórmula '" + nombre + "' resume por {" + campo +
                                             "}, que no es un grupo de la plantilla");
                a = {AmbitoResumen::Tipo::Grupo, nivel};
            }
            int slot;
            if (r.campo.tabla.empty()) {
                const std::string otra = r.campo.campo.substr(1);  // "@nombre"
                if (UsaResumenes(otra, linea))
                    throw ErrorPlantilla(p.archivo, linea, 0,
                                         "la fórmula '" + nombre + "' resume la fórmula '" + otra +
                                             "', que ya usa resúmenes");
                slot = Slot({Referencia::Tipo::Formula, otra});
            } else {
                slot = Slot({Referencia::Tipo::Campo, r.campo.tabla + "." + r.campo.campo});
            }
            acumuladores.emplace_back(FuncionDe(r.funcion), slot, a);
            fr.acumuladores[r.nodo] = static_cast<int>(acumuladores.size() - 1);
        }
        for (const auto& c : f->campos()) Slot({Referencia::Tipo::Campo, c.tabla + "." + c.campo});
        for (const auto& n : f->parametros()) Slot({Referencia::Tipo::Parametro, n});
        for (const auto& otra : f->formulas()) {
            if (UsaResumenes(otra, linea))
                PreparaResumenes(otra, ambito, linea, fr, profundidad + 1);
            else
                Slot({Referencia::Tipo::Formula, otra});
        }
    }

    // What a formula with summaries sees: the band's row values and its accumulators.
    class ContextoBanda : public renderer::formula::Contexto {
      public:
        ContextoBanda(const Impl& m, const std::vector<Valor>& vals,
                      const detail::FormulaConResumen& fr)
            : m_(m), vals_(vals), fr_(fr) {}

        Valor campo(std::string_view tabla, std::string_view campo) const override {
            return Busca(Referencia::Tipo::Campo, std::string(tabla) + "." + std::string(campo));
        }
        Valor formula(std::string_view nombre) const override {
            const std::string n(nombre);
            if (m_.nombresConResumen.count(Minusculas(n)))
                return m_.EvaluaConResumen(n, vals_, fr_);
            return Busca(Referencia::Tipo::Formula, n);
        }
        Valor parametro(std::string_view nombre) const override {
            return Busca(Referencia::Tipo::Parametro, std::string(nombre));
        }
        Valor resumen(const renderer::formula::RefResumen& r) const override {
            auto it = fr_.acumuladores.find(r.nodo);
            if (it == fr_.acumuladores.end()) return renderer::formula::Contexto::resumen(r);
            return m_.acumuladores[static_cast<std::size_t>(it->second)].Resultado();
        }

      private:
        const Valor* Ubica(Referencia::Tipo tipo, const std::string& nombre) const {
            const std::string buscado = Minusculas(nombre);
            for (std::size_t i = 0; i < m_.referencias.size(); ++i)
                if (m_.referencias[i].tipo == tipo &&
                    Minusculas(m_.referencias[i].nombre) == buscado)
                    return &vals_[i];
            return nullptr;
        }
        Valor Busca(Referencia::Tipo tipo, const std::string& nombre) const {
            if (const Valor* v = Ubica(tipo, nombre)) return *v;
            throw ErrorValor("la referencia " + nombre + " no está disponible");
        }

        const Impl& m_;
        const std::vector<Valor>& vals_;
        const detail::FormulaConResumen& fr_;
    };

    Valor EvaluaConResumen(const std::string& nombre, const std::vector<Valor>& vals,
                           const detail::FormulaConResumen& fr) const {
        auto it = formulasLeidas.find(Minusculas(nombre));
        if (it == formulasLeidas.end())
            throw ErrorValor("la fórmula {@" + nombre + "} no existe en la plantilla");
        return formula::evaluar(it->second, ContextoBanda(*this, vals, fr));
    }

    Valor ValorFormula(const ElementoCompilado& ec, const std::vector<Valor>& vals) const {
        if (ec.conResumen < 0) return vals[static_cast<std::size_t>(ec.slot)];
        const auto& fr = conResumen[static_cast<std::size_t>(ec.conResumen)];
        return EvaluaConResumen(fr.nombre, vals, fr);
    }

    // ---- texts of elements ----

    static std::string Formatea(const Valor& v, const std::string& formato) {
        switch (v.tipo()) {
            case Valor::Tipo::Numero:
                return formato.empty() ? v.aTexto() : formatearNumero(v.comoNumero(), formato);
            case Valor::Tipo::Fecha:
                return formato.empty() ? v.aTexto()
                                       : formatearFecha(FechaHora{v.comoFecha(), {}}, formato);
            case Valor::Tipo::FechaHora:
                return formato.empty() ? v.aTexto() : formatearFecha(v.comoFechaHora(), formato);
            default:
                return v.aTexto();
        }
    }

    std::string TextoEspecial(const ElementoPlantilla& e) const {
        std::tm t{};
        localtime_r(&impresion, &t);
        FechaHora ahora{{t.tm_year + 1900, t.tm_mon + 1, t.tm_mday},
                        {t.tm_hour, t.tm_min, t.tm_sec}};
        switch (e.especial) {
            case CampoEspecial::NumeroPagina:
                return e.valor.empty() ? "{N}" : e.valor;
            case CampoEspecial::TotalPaginas:
                return e.valor.empty() ? "{M}" : e.valor;
            case CampoEspecial::PaginaDeTotal:
                return e.valor.empty() ? "Página {N} de {M}" : e.valor;
            case CampoEspecial::FechaImpresion:
                return formatearFecha(ahora, e.formato.empty() ? "dd/mm/yyyy" : e.formato);
            case CampoEspecial::HoraImpresion:
                return formatearFecha(ahora, e.formato.empty() ? "hh:nn:ss" : e.formato);
            case CampoEspecial::NumeroRegistro:
                return formatearNumero(static_cast<double>(registro),
                                       e.formato.empty() ? "#,##0" : e.formato);
        }
        return {};
    }

    // Measures a band for the given row values. Texts are broken into lines here, once;
    // page numbers are put in when the band is placed.
    void Prepara(const SeccionCompilada& sc, const std::vector<Valor>& vals, BandaPreparada& b) {
        b.alto = 0;
        b.suprimida = false;
        b.textos.clear();
        b.especiales.clear();
        b.lineas.clear();
        b.cajas.clear();
        if (sc.Vacia()) {
            b.suprimida = true;
            return;
        }
        const double anchoUtil = p.pagina.AnchoUtil();
        bool algunValor = false, hayValores = false;
        double alto = sc.sec->alto;
        for (const auto& ec : sc.elementos) {
            const ElementoPlantilla& e = *ec.el;
            if (e.tipo == TipoElemento::Linea) {
                b.lineas.push_back({e.x, e.y, e.x2, e.y2, e.grosor});
                continue;
            }
            if (e.tipo == TipoElemento::Caja) {
                b.cajas.push_back({e.x, e.y, e.ancho, e.alto, e.grosor, e.gris});
                continue;
            }
            ElementoTexto t;
            t.x = e.x;
            t.y = e.y;
            t.ancho = e.ancho > 0 ? e.ancho : std::max(anchoUtil - e.x, 1.0);
            t.fuente = ec.fuente;
            t.tipoBanda = sc.tipo;
            t.nivelGrupo = sc.nivel;
            t.columna = ec.columna;
            t.formato = e.formato;
            t.base = ec.metrica.ascenso;
            t.interlineado = ec.metrica.AltoLinea();
            std::string texto;
            bool especial = false;
            Valor v;
            bool conValor = false;
            try {
                switch (e.tipo) {
                    case TipoElemento::Texto:
                        texto = e.valor;
                        break;
                    case TipoElemento::Campo:
                    case TipoElemento::Parametro:
                        v = vals[static_cast<std::size_t>(ec.slot)];
                        conValor = true;
                        break;
                    case TipoElemento::Formula:
                        v = ValorFormula(ec, vals);
                        conValor = true;
                        break;
                    case TipoElemento::Resumen: {
                        v = acumuladores[static_cast<std::size_t>(ec.acumulador)].Resultado();
                        conValor = true;
                        if (e.formato.empty() && v.tipo() == Valor::Tipo::Numero &&
                            (e.funcion == FuncionResumen::Cuenta ||
                             e.funcion == FuncionResumen::CuentaDistintos))
                            t.formato = "#,##0";
                        break;
                    }
                    case TipoElemento::Especial:
                        texto = TextoEspecial(e);
                        especial = texto.find('{') != std::string::npos;
                        break;
                    default:
                        break;
                }
                if (conValor) {
                    texto = Formatea(v, t.formato);
                    hayValores = true;
                    if (!texto.empty()) algunValor = true;
                }
            } catch (const std::exception& ex) {
                throw ErrorPlantilla(p.archivo, e.linea, 0,
                                     std::string("no se pudo mostrar el elemento: ") + ex.what());
            }
            if (conValor) {
                if (v.tipo() == Valor::Tipo::Numero) {
                    t.tipo = TipoValor::Numero;
                    t.numero = v.comoNumero();
                } else if ((v.tipo() == Valor::Tipo::Fecha || v.tipo() == Valor::Tipo::FechaHora) &&
                           !v.esVacio()) {
                    t.tipo = TipoValor::Fecha;
                    FechaHora fh = v.comoFechaHora();
                    t.numero =
                        detail::SerieDe(fh.fecha) +
                        (fh.hora.hora * 3600 + fh.hora.minuto * 60 + fh.hora.segundo) / 86400.0;
                }
            }
            t.alineacion = e.alineacion                  ? *e.alineacion
                           : t.tipo == TipoValor::Numero ? Alineacion::Derecha
                                                         : Alineacion::Izquierda;
            if (!especial)
                t.renglones = medidor.Parte(t.fuente, texto, t.ancho, t.alineacion, e.crece);
            else
                t.renglones.push_back({std::move(texto), 0, 0});
            double altoUna = ec.metrica.AltoLinea();
            double altoTexto =
                static_cast<double>(std::max<std::size_t>(t.renglones.size(), 1)) * altoUna;
            t.alto = e.alto > 0 ? (e.crece ? std::max(e.alto, altoTexto) : e.alto) : altoTexto;
            if (!e.crece && t.renglones.size() > 1) t.renglones.resize(1);
            alto = std::max(alto, t.y + t.alto);
            b.textos.push_back(std::move(t));
            b.especiales.push_back(especial);
        }
        if (sc.sec->suprimirVacia && hayValores && !algunValor) {
            b.suprimida = true;
            return;
        }
        b.alto = alto;
    }

    // Copies a prepared band onto the page at the cursor and moves the cursor down.
    void Coloca(BandaPreparada& b, double top, double limiteInferior) {
        const double x0 = p.pagina.margenIzquierdo;
        ++banda;
        for (auto& c : b.cajas) {
            c.x += x0;
            c.y += top;
            pagina.pagina.cajas.push_back(c);
        }
        for (auto& l : b.lineas) {
            l.x1 += x0;
            l.x2 += x0;
            l.y1 += top;
            l.y2 += top;
            pagina.pagina.lineas.push_back(l);
        }
        for (std::size_t i = 0; i < b.textos.size(); ++i) {
            ElementoTexto& t = b.textos[i];
            t.x += x0;
            t.y += top;
            t.banda = banda;
            // A band taller than the page keeps the lines that fit above the footer.
            if (t.y + t.alto > limiteInferior) {
                auto caben = static_cast<std::size_t>(
                    std::max(0.0, std::floor((limiteInferior - t.y) / t.interlineado + 1e-6)));
                if (caben == 0) continue;
                if (caben < t.renglones.size()) t.renglones.resize(caben);
                t.alto = static_cast<double>(caben) * t.interlineado;
            }
            if (b.especiales[i]) {
                std::string n = std::to_string(numeroPagina);
                bool pendiente = false;
                for (auto& r : t.renglones) {
                    for (std::size_t k; (k = r.texto.find("{N}")) != std::string::npos;)
                        r.texto.replace(k, 3, n);
                    pendiente = pendiente || r.texto.find("{M}") != std::string::npos;
                    r.ancho = medidor.Ancho(t.fuente, r.texto);
                    r.dx = t.alineacion == Alineacion::Derecha  ? t.ancho - r.ancho
                           : t.alineacion == Alineacion::Centro ? (t.ancho - r.ancho) / 2
                                                                : 0;
                }
                if (pendiente)
                    pagina.pendientes.push_back(
                        static_cast<std::uint32_t>(pagina.pagina.textos.size()));
            }
            pagina.pagina.textos.push_back(std::move(t));
        }
    }

    // ---- pages ----

    // Opens a page. The headers of the groups 1..`vigentes` that go on across the break and
    // ask for it print again under the page header, with their group's values.
    void AbrePagina(const std::vector<Valor>& vals, int vigentes = 0) {
        pagina.pagina = Pagina{};
        pagina.pendientes.clear();
        pagina.pagina.numero = ++numeroPagina;
        y = p.pagina.margenSuperior;
        contenido = false;
        for (auto& a : acumuladores)
            if (a.Ambito().tipo == AmbitoResumen::Tipo::Pagina) a.Reinicia();
        altoPie = piePag.Vacia() ? 0 : piePag.sec->alto;
        limite = p.pagina.alto - p.pagina.margenInferior - altoPie;
        if (numeroPagina == 1) {
            Prepara(encRep, vals, bpPagina);
            if (!bpPagina.suprimida) {
                Coloca(bpPagina, y, limite);
                y += std::min(bpPagina.alto, limite - y);
            }
        }
        Prepara(encPag, vals, bpPagina);
        if (!bpPagina.suprimida) {
            Coloca(bpPagina, y, limite);
            y += std::min(bpPagina.alto, limite - y);
        }
        cuerpoInicio = y;
        for (int k = 1; k <= vigentes; ++k) {
            const auto i = static_cast<std::size_t>(k - 1);
            if (!p.grupos[i].repetirEncabezado || filaEncabezado[i].empty()) continue;
            Prepara(encGrupo[i], filaEncabezado[i], bpPagina);
            if (bpPagina.suprimida) continue;
            // Not body content: a band that follows still goes on this page whatever its size.
            Coloca(bpPagina, y, limite);
            y += std::min(bpPagina.alto, limite - y);
        }
    }

    void CierraPagina(const std::vector<Valor>& vals) {
        Prepara(piePag, vals, bpPagina);
        if (!bpPagina.suprimida) {
            // The footer has its reserved place; a footer that grows keeps within the sheet.
            double top = p.pagina.alto - p.pagina.margenInferior - altoPie;
            Coloca(bpPagina, top, p.pagina.alto - p.pagina.margenInferior);
        }
        salida->Agrega(pagina);
        if (aviso) aviso(numeroPagina);
    }

    double cuerpoInicio = 0;  // where the body starts on the current page

    // Makes room for `alto` points: a new page when they do not fit and the page already
    // holds body bands (on a fresh page the band goes anyway, clipped above the footer).
    // `vigentes`: the group levels that go on across a break here (their headers may repeat).
    void Asegura(double alto, const std::vector<Valor>& anteriores,
                 const std::vector<Valor>& actuales, int vigentes) {
        if (y + alto <= limite + 1e-6 || !contenido) return;
        CierraPagina(anteriores);
        AbrePagina(actuales, vigentes);
    }

    void ColocaCuerpo(BandaPreparada& b) {
        Coloca(b, y, limite);
        y += b.alto;
        contenido = true;
    }

    // ---- rows ----

    std::int64_t filas = 0;

    bool Lee(std::vector<Valor>& v) {
        if (!adelantadas.empty()) {
            v = std::move(adelantadas.front());
            adelantadas.pop_front();
            return true;
        }
        if (fuente->Siguiente(v)) {
            ++filas;
            return true;
        }
        return false;
    }

    // The row `k` places after the current one, reading ahead when needed.
    const std::vector<Valor>* Mira(std::size_t k) {
        while (adelantadas.size() <= k) {
            std::vector<Valor> v;
            if (!fuente->Siguiente(v)) return nullptr;
            ++filas;
            adelantadas.push_back(std::move(v));
        }
        return &adelantadas[k];
    }

    bool MismoGrupo(const std::vector<Valor>& a, const std::vector<Valor>& b, int nivel) const {
        for (int i = 0; i < nivel; ++i) {
            auto s = static_cast<std::size_t>(slotGrupo[static_cast<std::size_t>(i)]);
            if (compararParaOrden(a[s], b[s]) != 0) return false;
        }
        return true;
    }

    // The outermost group level that changes between two rows; 0 when none does.
    int NivelCambio(const std::vector<Valor>& a, const std::vector<Valor>& b) const {
        for (std::size_t i = 0; i < slotGrupo.size(); ++i) {
            auto s = static_cast<std::size_t>(slotGrupo[i]);
            if (compararParaOrden(a[s], b[s]) != 0) return static_cast<int>(i) + 1;
        }
        return 0;
    }

    double AltoDetalle(const std::vector<Valor>& v) {
        if (detalle.Vacia()) return 0;
        bool crece = std::any_of(detalle.elementos.begin(), detalle.elementos.end(),
                                 [](const auto& e) { return e.el->crece; });
        if (!crece) return detalle.sec->alto == 0 ? MedidaFija(detalle) : detalle.sec->alto;
        BandaPreparada tmp;
        Prepara(detalle, v, tmp);
        return tmp.suprimida ? 0 : tmp.alto;
    }

    double MedidaFija(const SeccionCompilada& sc) {
        if (sc.Vacia()) return 0;
        double alto = sc.sec->alto;
        for (const auto& ec : sc.elementos)
            if (ec.el->tipo != TipoElemento::Linea && ec.el->tipo != TipoElemento::Caja)
                alto = std::max(
                    alto, ec.el->y + (ec.el->alto > 0 ? ec.el->alto : ec.metrica.AltoLinea()));
        return alto;
    }

    // Keep-together: the height of the group of level `nivel` that starts with `actual`,
    // found by reading ahead at most one page of rows. Returns a value above the body
    // height when the group cannot fit on one page anyway.
    double AltoGrupo(int nivel, const std::vector<Valor>& actual) {
        const double tope = AltoCuerpoPagina();
        const int niveles = static_cast<int>(slotGrupo.size());
        double total = 0;
        for (int k = nivel; k <= niveles; ++k) total += MedidaFija(encGrupo[k - 1]);
        total += AltoDetalle(actual);
        const std::vector<Valor>* previa = &actual;
        for (std::size_t j = 0; total <= tope; ++j) {
            const std::vector<Valor>* sig = Mira(j);
            if (!sig || !MismoGrupo(*sig, actual, nivel)) break;
            int cambio = NivelCambio(*previa, *sig);
            if (cambio > 0)
                for (int k = cambio; k <= niveles; ++k)
                    total += MedidaFija(pieGrupo[k - 1]) + MedidaFija(encGrupo[k - 1]);
            total += AltoDetalle(*sig);
            previa = sig;
        }
        for (int k = nivel; k <= niveles; ++k) total += MedidaFija(pieGrupo[k - 1]);
        return total;
    }

    double AltoCuerpoPagina() const { return limite - cuerpoInicio; }

    void EncabezadosDesde(int nivel, const std::vector<Valor>& anteriores,
                          const std::vector<Valor>& actual, bool primera) {
        const int niveles = static_cast<int>(slotGrupo.size());
        bool paginaNueva = false;
        for (int k = nivel; k <= niveles; ++k) {
            for (auto& a : acumuladores)
                if (a.Ambito().tipo == AmbitoResumen::Tipo::Grupo && a.Ambito().nivel == k)
                    a.Reinicia();
            paginaNueva = paginaNueva || p.grupos[static_cast<std::size_t>(k - 1)].paginaNueva;
        }
        // Every level from `nivel` down starts a new group here: the page breaks once,
        // before the outermost header, so that no header is left behind on the old page.
        if (paginaNueva && contenido) {
            CierraPagina(primera ? actual : anteriores);
            AbrePagina(actual, nivel - 1);
        }
        // Keep-together of the outermost level that can keep its group on one page,
        // counting the headers of the levels above it that print with it.
        double encima = 0;
        for (int k = nivel; k <= niveles; ++k) {
            if (p.grupos[static_cast<std::size_t>(k - 1)].juntos) {
                double alto = encima + AltoGrupo(k, actual);
                if (alto <= AltoCuerpoPagina()) {
                    Asegura(alto, anteriores, actual, nivel - 1);
                    break;
                }
            }
            encima += MedidaFija(encGrupo[static_cast<std::size_t>(k - 1)]);
        }
        // A group header never stays alone at the foot of a page: it goes with the
        // headers below it and the first detail (and the footers that detail closes).
        double conPrimera = 0;
        for (int k = nivel; k <= niveles; ++k) {
            Prepara(encGrupo[static_cast<std::size_t>(k - 1)], actual, bp);
            if (!bp.suprimida) conPrimera += bp.alto;
        }
        conPrimera += AltoDetalle(actual);
        const double conPies = conPrimera + AltoPiesQueCierra(actual);
        Asegura(conPies <= AltoCuerpoPagina() ? conPies : conPrimera, anteriores, actual,
                nivel - 1);
        for (int k = nivel; k <= niveles; ++k) {
            const auto i = static_cast<std::size_t>(k - 1);
            filaEncabezado[i] = actual;
            Prepara(encGrupo[i], actual, bp);
            if (!bp.suprimida) ColocaCuerpo(bp);
            if (alRegistro) TomaEncabezado(k, actual);
        }
    }

    // The footers that follow the detail of `actual` when it is the last row of its group:
    // the height they need on the same page (0 when the next row stays in every group).
    double AltoPiesQueCierra(const std::vector<Valor>& actual) {
        const int niveles = static_cast<int>(slotGrupo.size());
        if (niveles == 0) return 0;
        const std::vector<Valor>* sig = Mira(0);
        const int cambio = sig ? NivelCambio(actual, *sig) : 1;
        if (cambio == 0) return 0;
        double alto = 0;
        for (int k = cambio; k <= niveles; ++k) alto += MedidaFija(pieGrupo[k - 1]);
        return alto;
    }

    void PiesHasta(int nivel, const std::vector<Valor>& anteriores) {
        for (int k = static_cast<int>(slotGrupo.size()); k >= nivel; --k) {
            Prepara(pieGrupo[static_cast<std::size_t>(k - 1)], anteriores, bp);
            if (bp.suprimida) continue;
            // A footer that does not fit goes to the next page, which still belongs to
            // the group that ends: its page header shows that group's values.
            Asegura(bp.alto, anteriores, anteriores, k);
            if (alRegistro && registroEnPie && k == static_cast<int>(slotGrupo.size()))
                EmiteRegistro(anteriores);
            ColocaCuerpo(bp);
        }
    }

    ResultadoMaquetado Ejecuta(FuenteFilas& f, ListaPaginas& s) {
        fuente = &f;
        salida = &s;
        fuente->Prepara(referencias);
        for (auto& a : acumuladores) a.Reinicia();

        std::vector<Valor> actual, anterior;
        if (!Lee(actual)) {
            fuente->SinFila(actual);
            actual.resize(referencias.size());
            AbrePagina(actual);
            if (!p.sinDatos.empty()) {
                double ancho = p.pagina.AnchoUtil();
                ElementoTexto t;
                t.fuente = fuenteBase;
                t.tipoBanda = TipoBanda::SinDatos;
                t.ancho = ancho;
                MetricaFuente m = medidor.Metrica(fuenteBase);
                t.base = m.ascenso;
                t.interlineado = m.AltoLinea();
                t.renglones =
                    medidor.Parte(fuenteBase, p.sinDatos, ancho, Alineacion::Izquierda, true);
                t.alto = t.interlineado * static_cast<double>(t.renglones.size());
                bp = BandaPreparada{};
                bp.alto = t.alto + t.interlineado / 2;
                bp.textos.push_back(std::move(t));
                bp.especiales.push_back(false);
                ColocaCuerpo(bp);
            }
            Prepara(pieRep, actual, bp);
            if (!bp.suprimida) {
                Asegura(bp.alto, actual, actual, 0);
                ColocaCuerpo(bp);
            }
            CierraPagina(actual);
            return {numeroPagina, 0};
        }
        actual.resize(referencias.size());

        AbrePagina(actual);
        EncabezadosDesde(1, actual, actual, true);
        while (true) {
            // Detail
            Prepara(detalle, actual, bp);
            if (!bp.suprimida && contenido) {
                // The last row of a group goes with the footers it closes: no footer opens
                // a page alone (unless row and footers together exceed a page).
                const double conPies = bp.alto + AltoPiesQueCierra(actual);
                Asegura(conPies <= AltoCuerpoPagina() ? conPies : bp.alto,
                        anterior.empty() ? actual : anterior, actual,
                        static_cast<int>(slotGrupo.size()));
            }
            ++registro;
            for (auto& a : acumuladores) a.Agrega(actual[static_cast<std::size_t>(a.Slot())]);
            // Running values include this row: measure again with the totals updated.
            if (detalleConResumen) Prepara(detalle, actual, bp);
            if (!bp.suprimida) ColocaCuerpo(bp);
            if (alRegistro && !registroEnPie) EmiteRegistro(actual);

            anterior.swap(actual);
            if (!Lee(actual)) break;
            actual.resize(referencias.size());
            int cambio = NivelCambio(anterior, actual);
            if (cambio > 0) {
                PiesHasta(cambio, anterior);
                EncabezadosDesde(cambio, anterior, actual, false);
            }
        }
        PiesHasta(1, anterior);
        Prepara(pieRep, anterior, bp);
        if (!bp.suprimida) {
            Asegura(bp.alto, anterior, anterior, 0);
            ColocaCuerpo(bp);
        }
        CierraPagina(anterior);
        return {numeroPagina, filas};
    }
};

Maquetador::Maquetador(const Plantilla& plantilla, Medidor& medidor, std::time_t impresion)
    : impl_(std::make_unique<Impl>(plantilla, medidor, impresion)) {}

Maquetador::~Maquetador() = default;

const std::vector<Referencia>& Maquetador::Referencias() const {
    return impl_->referencias;
}

ResultadoMaquetado Maquetador::Maqueta(FuenteFilas& filas, ListaPaginas& salida) {
    return impl_->Ejecuta(filas, salida);
}

void Maquetador::AlCerrarPagina(std::function<void(int)> aviso) {
    impl_->aviso = std::move(aviso);
}

const std::vector<ColumnaDatos>& Maquetador::ColumnasDatos() const {
    return impl_->columnasDatos;
}

void Maquetador::AlRegistro(std::function<void(const std::vector<Valor>&)> registro) {
    impl_->alRegistro = std::move(registro);
}

Documento Maquetador::DocumentoSalida() const {
    Documento d;
    d.titulo = impl_->p.titulo;
    d.anchoPagina = impl_->p.pagina.ancho;
    d.altoPagina = impl_->p.pagina.alto;
    d.margenIzquierdo = impl_->p.pagina.margenIzquierdo;
    d.margenSuperior = impl_->p.pagina.margenSuperior;
    d.margenDerecho = impl_->p.pagina.margenDerecho;
    d.margenInferior = impl_->p.pagina.margenInferior;
    d.totalPaginas = impl_->numeroPagina;
    d.fuentes = impl_->medidor.Fuentes();
    return d;
}

}  // namespace paratzorep::renderer
