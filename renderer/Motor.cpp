#include "renderer/Motor.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cctype>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <iostream>
#include <unordered_map>

#include "host/Proceso.h"
#include "renderer/TiposArchivo.h"
#include "renderer/data/Consulta.h"
#include "renderer/formula/Evaluador.h"
#include "renderer/formula/Formula.h"
#include "renderer/impresion/Impresora.h"
#include "renderer/layout/ListaPaginas.h"
#include "renderer/layout/Medidor.h"
#include "renderer/writers/ErrorEscritura.h"
#include "renderer/writers/EscritorRtf.h"
#include "renderer/writers/PdfEscritor.h"
#include "renderer/writers/PngEscritor.h"
#include "renderer/writers/TablaDatos.h"
#include "renderer/writers/TxtEscritor.h"

namespace paratzorep::renderer {

namespace detail {

std::string Recorta(std::string_view s) {
    while (!s.empty() && std::isspace(static_cast<unsigned char>(s.front()))) s.remove_prefix(1);
    while (!s.empty() && std::isspace(static_cast<unsigned char>(s.back()))) s.remove_suffix(1);
    return std::string(s);
}

bool Iguales(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::tolower(static_cast<unsigned char>(x)) ==
                      std::tolower(static_cast<unsigned char>(y));
           });
}

// Tells the host where the run stands: at the start and end of each phase, and in between
// when `intervalo` seconds have passed, looking at the clock only every 256 rows and at pages.
class Avisador {
  public:
    using Reloj = std::chrono::steady_clock;

    Avisador(const FuncionAvance& f, double intervalo) : f_(f), intervalo_(intervalo) {}

    void Empieza(AvanceMotor::Fase fase) {
        a_.fase = fase;
        a_.escritas = 0;
        inicio_ = Reloj::now();
        Mira(true);
    }
    void Fila() {
        if (!f_) return;
        if ((++a_.filas & 255) == 0) Mira(false);
    }
    void Pagina(int paginas) {
        a_.paginas = paginas;
        Mira(false);
    }
    void Escrita(int escritas) {
        a_.escritas = escritas;
        Mira(false);
    }
    void Termina() { Mira(true); }

  private:
    void Mira(bool siempre) {
        if (!f_) return;
        const auto ahora = Reloj::now();
        if (!siempre && ahora < proximo_) return;
        proximo_ = ahora + std::chrono::duration_cast<Reloj::duration>(
                               std::chrono::duration<double>(intervalo_));
        a_.segundos = std::chrono::duration<double>(ahora - inicio_).count();
        f_(a_);
    }

    const FuncionAvance& f_;
    double intervalo_;
    AvanceMotor a_;
    Reloj::time_point inicio_ = Reloj::now();
    Reloj::time_point proximo_ = inicio_;
};

// The layout's rows over the data layer's cursor: fields come from the cursor, named
// formulas are evaluated on each row, parameters are constants, and the selection formula
// is applied here when the data layer could not apply all of it.
class FuenteEvaluada : public FuenteFilas, private formula::Contexto {
  public:
    FuenteEvaluada(CursorFilas& cursor, const Plantilla& plantilla,
                   const std::map<std::string, std::string>& parametros,
                   const formula::Formula* seleccion, Avisador& avisador)
        : cursor_(cursor), parametros_(parametros), seleccion_(seleccion), avisador_(avisador) {
        for (const auto& f : plantilla.formulas) {
            try {
                formulas_.push_back({f.nombre, formula::analizar(f.expresion)});
            } catch (const formula::ErrorFormula& e) {
                throw ErrorMotor("La fórmula '" + f.nombre + "' de la plantilla '" +
                                 plantilla.archivo + "' no es válida. " + e.what());
            }
        }
        memo_.resize(formulas_.size());
        memoFila_.assign(formulas_.size(), 0);
    }

    void Prepara(const std::vector<Referencia>& refs) override {
        refs_.clear();
        for (const auto& r : refs) {
            Ref x{r.tipo, {}, {}, -1, {}, -1};
            if (r.tipo == Referencia::Tipo::Campo) {
                auto p = r.nombre.find('.');
                x.tabla = r.nombre.substr(0, p);
                x.campo = r.nombre.substr(p + 1);
                x.posicion = cursor_.Posicion(x.tabla, x.campo);
            } else if (r.tipo == Referencia::Tipo::Formula) {
                x.formula = Busca(r.nombre);
                if (x.formula < 0)
                    throw ErrorMotor("La fórmula '" + r.nombre + "' no existe en la plantilla");
            } else {
                x.constante = parametro(r.nombre);
            }
            refs_.push_back(std::move(x));
        }
    }

    bool Siguiente(std::vector<Valor>& v) override {
        while (true) {
            if (!cursor_.Siguiente()) return false;
            hayFila_ = true;
            ++fila_;
            if (seleccion_ && !Selecciona()) continue;
            Llena(v);
            avisador_.Fila();
            return true;
        }
    }

    void SinFila(std::vector<Valor>& v) override {
        hayFila_ = false;
        ++fila_;
        Llena(v);
    }

  private:
    struct Ref {
        Referencia::Tipo tipo;
        std::string tabla, campo;
        int formula;  // index in formulas_
        Valor constante;
        int posicion;  // in the cursor's row, or -1: read by name
    };

    bool Selecciona() {
        try {
            return formula::seleccionar(*seleccion_, *this);
        } catch (const std::exception& e) {
            throw ErrorMotor(std::string("No se pudo evaluar la fórmula de selección. ") +
                             e.what());
        }
    }

    void Llena(std::vector<Valor>& v) {
        v.resize(refs_.size());
        for (std::size_t i = 0; i < refs_.size(); ++i) {
            const Ref& r = refs_[i];
            switch (r.tipo) {
                case Referencia::Tipo::Campo:
                    if (!hayFila_)
                        v[i] = cursor_.Constante(r.tabla, r.campo);
                    else if (r.posicion >= 0)
                        v[i] = cursor_.EnPosicion(r.posicion);
                    else
                        v[i] = cursor_.Campo(r.tabla, r.campo);
                    break;
                case Referencia::Tipo::Formula:
                    v[i] = Evalua(static_cast<std::size_t>(r.formula));
                    break;
                case Referencia::Tipo::Parametro:
                    v[i] = r.constante;
                    break;
            }
        }
    }

    // A formula's value on the current row, worked out once per row however many formulas
    // refer to it.
    Valor Evalua(std::size_t i) const {
        if (memoFila_[i] == fila_) return memo_[i];
        const formula::Formula& f = formulas_[i].second;
        if (++profundidad_ > 32) {
            profundidad_ = 0;
            throw ErrorMotor("Las fórmulas de la plantilla se refieren unas a otras sin fin");
        }
        Valor v;
        try {
            v = formula::evaluar(f, *this);
        } catch (const ErrorMotor&) {
            --profundidad_;
            throw;
        } catch (const std::exception& e) {
            --profundidad_;
            throw ErrorMotor("No se pudo evaluar la fórmula '" + f.fuente() + "'. " + e.what());
        }
        --profundidad_;
        memo_[i] = v;
        memoFila_[i] = fila_;
        return v;
    }

    int Busca(std::string_view nombre) const {
        for (std::size_t i = 0; i < formulas_.size(); ++i)
            if (Iguales(formulas_[i].first, nombre)) return static_cast<int>(i);
        return -1;
    }

    // Formulas name their fields and formulas with the texts of their parsed nodes, which live
    // as long as this source's formulas and the selection: what a name resolved to is kept by
    // the text's address, so a name is looked up once per run rather than once per row.
    struct Resuelto {
        std::string_view tabla, nombre;
        int indice = -2;  // -2: not resolved yet
    };
    template <class F>
    int Resuelve(std::string_view tabla, std::string_view nombre, F&& busca) const {
        auto& r = resueltos_[nombre.data()];
        if (r.indice == -2 || r.nombre != nombre || r.tabla != tabla)
            r = {tabla, nombre, busca()};
        return r.indice;
    }

    // formula::Contexto
    Valor campo(std::string_view tabla, std::string_view campo) const override {
        if (!hayFila_) return Valor();
        const int pos =
            Resuelve(tabla, campo, [&] { return cursor_.Posicion(tabla, campo); });
        return pos >= 0 ? cursor_.EnPosicion(pos) : cursor_.Campo(tabla, campo);
    }
    Valor formula(std::string_view nombre) const override {
        const int i = Resuelve({}, nombre, [&] { return Busca(nombre); });
        if (i < 0) throw ErrorValor("fórmula desconocida: " + std::string(nombre));
        return Evalua(static_cast<std::size_t>(i));
    }
    Valor parametro(std::string_view nombre) const override {
        for (const auto& [n, v] : parametros_)
            if (Iguales(n, nombre)) return Valor::texto(v);
        throw ErrorValor("parámetro desconocido: " + std::string(nombre));
    }

    CursorFilas& cursor_;
    const std::map<std::string, std::string>& parametros_;
    const formula::Formula* seleccion_;
    std::vector<std::pair<std::string, formula::Formula>> formulas_;
    std::vector<Ref> refs_;
    bool hayFila_ = false;
    mutable int profundidad_ = 0;
    std::uint64_t fila_ = 1;  // the row being read; memoFila_ says on which row memo_ was set
    mutable std::vector<Valor> memo_;
    mutable std::vector<std::uint64_t> memoFila_;
    mutable std::unordered_map<const char*, Resuelto> resueltos_;
    Avisador& avisador_;
};

// Removes a temporary file when the run ends, and if the process is interrupted first.
class ArchivoTemporal {
  public:
    explicit ArchivoTemporal(std::filesystem::path ruta)
        : ruta_(std::move(ruta)), limpieza_([r = ruta_]() -> std::string {
              std::error_code ec;
              std::filesystem::remove(r, ec);
              return "";
          }) {}
    ~ArchivoTemporal() {
        if (conservar_) return;
        std::error_code ec;
        std::filesystem::remove(ruta_, ec);
    }
    const std::filesystem::path& ruta() const { return ruta_; }
    // Left where it is (it goes with the private folder).
    void Conserva() {
        conservar_ = true;
        limpieza_.Libera();
    }

  private:
    std::filesystem::path ruta_;
    host::Limpieza limpieza_;
    bool conservar_ = false;
};

}  // namespace detail

const Valor& CursorFilas::EnPosicion(int) const {
    static const Valor vacio;
    return vacio;
}

Motor::Motor() : imprimir_(ImprimirEnCups) {
    RegistraEscritor(InfoDe(TipoArchivo::Rtf).codigo, CreaEscritorRtf);
    RegistraEscritor(InfoDe(TipoArchivo::Doc).codigo, CreaEscritorDoc);
    RegistraTabla(InfoDe(TipoArchivo::Xls).codigo, CreaTablaXls);
    RegistraTabla(InfoDe(TipoArchivo::Xlsx).codigo, CreaTablaXlsx);
    RegistraTabla(InfoDe(TipoArchivo::Csv).codigo, CreaTablaCsv);
}

Motor::~Motor() = default;

void Motor::ReportFileName(const std::string& ruta) {
    auto p = std::make_unique<Plantilla>(LeePlantilla(ruta));
    archivo_ = ruta;
    archivosDatos_ = p->ArchivosDatos();
    plantilla_ = std::move(p);
}

int Motor::RetrieveDataFiles() const {
    return static_cast<int>(archivosDatos_.size());
}

std::string Motor::DataFiles(int i) const {
    if (i < 0 || i >= RetrieveDataFiles())
        throw ErrorMotor("DataFiles(" + std::to_string(i) +
                         ") está fuera de rango: la plantilla tiene " +
                         std::to_string(RetrieveDataFiles()) + " archivos de datos");
    return archivosDatos_[static_cast<std::size_t>(i)];
}

void Motor::DataFiles(int i, const std::string& valor) {
    DataFiles(i);  // range check
    archivosDatos_[static_cast<std::size_t>(i)] = valor;
}

void Motor::RevisaIndice(int i, const char* propiedad) {
    if (i < 0 || i > kMaxIndice)
        throw ErrorMotor(std::string(propiedad) + "(" + std::to_string(i) +
                         ") está fuera de rango (se admite de 0 a " + std::to_string(kMaxIndice) +
                         ")");
}

std::string Motor::Formulas(int i) const {
    RevisaIndice(i, "Formulas");
    return formulas_[static_cast<std::size_t>(i)];
}

void Motor::Formulas(int i, const std::string& asignacion) {
    RevisaIndice(i, "Formulas");
    formulas_[static_cast<std::size_t>(i)] = asignacion;
}

std::string Motor::SortFields(int i) const {
    RevisaIndice(i, "SortFields");
    return orden_[static_cast<std::size_t>(i)];
}

void Motor::SortFields(int i, const std::string& campo) {
    RevisaIndice(i, "SortFields");
    orden_[static_cast<std::size_t>(i)] = campo;
}

void Motor::Destination(int d) {
    if (d < 0 || d > 2)
        throw ErrorMotor("Destino desconocido: " + std::to_string(d) +
                         " (0 pantalla, 1 impresora, 2 archivo)");
    destino_ = d;
}

void Motor::Parametro(const std::string& nombre, const std::string& valor) {
    parametros_[nombre] = valor;
}

void Motor::RegistraEscritor(int codigo, FabricaEscritor fabrica) {
    fabricasTabla_.erase(codigo);
    fabricas_[codigo] = std::move(fabrica);
}

void Motor::RegistraTabla(int codigo, FabricaTabla fabrica) {
    fabricas_.erase(codigo);
    fabricasTabla_[codigo] = std::move(fabrica);
}

void Motor::Action(int valor) {
    if (valor == 1) Renderiza();
}

// The template with the request's formula assignments in place of the defaults.
Plantilla Motor::PlantillaConFormulas() const {
    Plantilla p = *plantilla_;
    for (const auto& a : formulas_) {
        if (detail::Recorta(a).empty()) continue;
        auto igual = a.find('=');
        std::string nombre = detail::Recorta(igual == std::string::npos ? a : a.substr(0, igual));
        if (igual == std::string::npos || nombre.empty())
            throw ErrorMotor("La fórmula \"" + a + "\" no tiene la forma NOMBRE=valor");
        FormulaPlantilla* f = p.BuscaFormula(nombre);
        if (!f)
            throw ErrorMotor("La fórmula '" + nombre + "' no existe en la plantilla '" + p.archivo +
                             "'");
        f->expresion = a.substr(igual + 1);
    }
    return p;
}

void Motor::Renderiza() {
    resultado_ = {};
    if (!plantilla_) throw ErrorMotor("No se indicó la plantilla del reporte (ReportFileName)");
    if (!proveedor_) throw ErrorMotor("El motor de reportes no tiene origen de datos");
    std::optional<InfoTipoArchivo> tipo;
    if (destino_ == 2) {
        if (nombreArchivo_.empty())
            throw ErrorMotor("No se indicó el nombre del archivo de salida (PrintFileName)");
        tipo = TipoPorCodigo(tipoArchivo_);
        if (!tipo) throw ErrorMotor("Tipo de archivo desconocido: " + std::to_string(tipoArchivo_));
        if (tipo->tipo != TipoArchivo::Pdf && tipo->tipo != TipoArchivo::Txt &&
            !fabricas_.count(tipo->codigo) && !fabricasTabla_.count(tipo->codigo))
            throw ErrorMotor("El tipo de archivo " + std::string(tipo->extension) +
                             " no está disponible");
    }
    if (destino_ == 1 && !imprimir_)
        throw ErrorMotor("No hay servicio de impresión para enviar el reporte a la impresora");

    const Plantilla p = PlantillaConFormulas();
    std::map<std::string, std::string> parametros;
    for (const auto& pa : p.parametros) parametros[pa.nombre] = pa.valor;
    for (const auto& [n, v] : parametros_) {
        bool hay = false;
        for (auto& [pn, pv] : parametros)
            if (detail::Iguales(pn, n)) {
                pv = v;
                hay = true;
            }
        if (!hay) parametros[n] = v;
    }

    Medidor medidor;
    Maquetador maquetador(p, medidor, std::time(nullptr));

    ConsultaReporte consulta;
    consulta.plantilla = &p;
    consulta.archivosDatos = archivosDatos_;
    consulta.conexion = conexion_;
    consulta.seleccion = seleccion_;
    for (const auto& g : p.grupos)
        if (!g.esFormula) consulta.orden.push_back((g.descendente ? "-{" : "+{") + g.valor + "}");
    for (const auto& o : orden_)
        if (!detail::Recorta(o).empty()) consulta.orden.push_back(detail::Recorta(o));
    for (const auto& o : p.orden) consulta.orden.push_back(o);
    auto agregaCampo = [&](const std::string& c) {
        if (std::none_of(consulta.campos.begin(), consulta.campos.end(),
                         [&](const std::string& x) { return detail::Iguales(x, c); }))
            consulta.campos.push_back(c);
    };
    for (const auto& r : maquetador.Referencias())
        if (r.tipo == Referencia::Tipo::Campo) agregaCampo(r.nombre);
    formula::Formula seleccion;
    try {
        seleccion = formula::analizar(seleccion_);
    } catch (const formula::ErrorFormula& e) {
        throw ErrorMotor(std::string("La fórmula de selección no es válida. ") + e.what());
    }
    for (const auto& c : seleccion.campos()) agregaCampo(c.tabla + "." + c.campo);
    for (const auto& f : p.formulas) {
        try {
            for (const auto& c : formula::analizar(f.expresion).campos())
                agregaCampo(c.tabla + "." + c.campo);
        } catch (const formula::ErrorFormula& e) {
            throw ErrorMotor("La fórmula '" + f.nombre + "' no es válida. " + e.what());
        }
    }

    detail::Avisador avisador(avance_, intervaloAvance_);
    avisador.Empieza(AvanceMotor::Fase::Leyendo);
    DatosAbiertos datos;
    try {
        datos = proveedor_(consulta);
    } catch (const data::ErrorNombre& e) {
        // A name the database lacks: the template's line that uses it, or the request's part.
        const int linea = LineaQueNombra(p, e.tabla(), e.campo());
        if (linea > 0 || e.campo().empty()) throw ErrorPlantilla(p.archivo, linea, 0, e.detalle());
        throw ErrorMotor(
            "La fórmula de selección o el orden del reporte nombran un campo que no "
            "existe: " +
            e.detalle());
    }
    if (!datos.cursor) throw ErrorMotor("El origen de datos no entregó filas para el reporte");
    detail::FuenteEvaluada fuente(
        *datos.cursor, p, parametros,
        datos.seleccionAplicada || seleccion.vacia() ? nullptr : &seleccion, avisador);
    ListaPaginas lista(host::CarpetaPrivada().string());
    static std::atomic<int> contador{0};
    std::string carpetaVista;
    const bool imagenes = destino_ == 0 && imagenesVista_;
    if (imagenes) {
        carpetaVista = carpetaVista_;
        if (carpetaVista.empty()) carpetaVista = host::SubcarpetaPrivada("vista").string();
    }
    maquetador.AlCerrarPagina([&](int paginas) {
        avisador.Pagina(paginas);
        // The first page is shown as soon as it is laid out, its total still unknown;
        // the replay below writes it again with the total.
        if (!imagenes || paginas != 1) return;
        PngEscritor png(carpetaVista, medidor);
        const std::string pendiente = "…";
        png.Inicia(maquetador.DocumentoSalida());
        png.Pagina(lista.Lee(0, medidor, &pendiente));
        png.Termina();
    });
    // Tabular types take the report's data, record by record as the layout reads them.
    std::unique_ptr<TablaDatos> tabla;
    if (tipo && fabricasTabla_.count(tipo->codigo)) {
        const Documento d = maquetador.DocumentoSalida();
        const std::string titulo = titulo_.empty() ? d.titulo : titulo_;
        tabla = std::make_unique<TablaDatos>(
            fabricasTabla_.at(tipo->codigo)(nombreArchivo_, titulo), maquetador.ColumnasDatos(),
            ImpresionHoja{d.anchoPagina, d.altoPagina, titulo});
        maquetador.AlRegistro([&tabla](const std::vector<Valor>& v) { tabla->Registro(v); });
        lista.SoloCuenta();  // the pages only give their count
    }
    auto r = maquetador.Maqueta(fuente, lista);
    avisador.Pagina(r.paginas);
    avisador.Termina();
    datos.cursor.reset();  // the connection goes before the slow part, the output
    avisador.Empieza(AvanceMotor::Fase::Escribiendo);
    const auto escrita = [&](int n) { avisador.Escrita(n); };
    resultado_.paginas = r.paginas;
    resultado_.filas = r.filas;
    Documento doc = maquetador.DocumentoSalida();
    if (!titulo_.empty()) doc.titulo = titulo_;

    if (destino_ == 0) {
        TxtEscritor txt(salidaPantalla_ ? *salidaPantalla_ : std::cout, separadorPantalla_);
        txt.AjustaA(anchoPantalla_);
        if (imagenes) {
            PngEscritor png(carpetaVista, medidor);
            lista.Reproduce(doc, medidor, {&png, &txt}, escrita);
            for (int i = 1; i <= r.paginas; ++i)
                resultado_.archivos.push_back(png.ArchivoPagina(i));
        } else {
            lista.Reproduce(doc, medidor, {&txt}, escrita);
        }
    } else if (destino_ == 1) {
        // Only this process can read the document on its way to the printer, and it goes
        // when the printer took it; one the printer refused stays (in the private folder) for
        // the host to keep.
        detail::ArchivoTemporal pdf(host::CarpetaPrivada() /
                                    ("impresion-" + std::to_string(++contador) + ".pdf"));
        PdfEscritor escritor(pdf.ruta().string(), medidor);
        lista.Reproduce(doc, medidor, {&escritor}, escrita);
        try {
            imprimir_(pdf.ruta().string(), impresora_, copias_ < 1 ? 1 : copias_, doc.titulo);
        } catch (const ErrorImpresion&) {
            pdf.Conserva();
            throw;
        }
    } else if (tabla) {
        // The table was written while the rows were read.
        tabla->Termina();
        escrita(r.paginas);
        resultado_.archivos.push_back(nombreArchivo_);
    } else {
        std::unique_ptr<Escritor> escritor;
        if (tipo->tipo == TipoArchivo::Pdf)
            escritor = std::make_unique<PdfEscritor>(nombreArchivo_, medidor);
        else if (tipo->tipo == TipoArchivo::Txt)
            escritor = std::make_unique<TxtEscritor>(nombreArchivo_);
        else
            escritor = fabricas_.at(tipo->codigo)(nombreArchivo_);
        // Every writer draws into a partial file and puts it in place only when complete: a
        // failure leaves no half-written report and keeps an earlier file of the same name.
        lista.Reproduce(doc, medidor, {escritor.get()}, escrita);
        resultado_.archivos.push_back(nombreArchivo_);
    }
    avisador.Termina();
}

}  // namespace paratzorep::renderer
