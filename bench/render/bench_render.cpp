// Renderer benchmark: a report with three group levels and about 50 detail rows a page,
// laid out once (with the screen path's early first preview page) and replayed to PDF
// and TXT. Prints rows/s, pages/s, the time to the first preview page, the size of
// the on-disk page list and the peak memory.
//
//   bench_render [rows] [output folder]
//       synthetic rows made on the fly (default 1,000,000)
//   bench_render --demo CONNECT "SELECTION" [output folder]
//       the warehouse history (historicoalmacen) of a demo company, read through the
//       renderer's data path (ODBC, keyset blocks, selection pushed down) with the
//       Connect string; ODBCINI must name a file with the data source (see demo.sh).
//   SOLO_PRIMERA=1 stops at the first preview page (its time is what is printed).
#include <sys/resource.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>

#include "renderer/data/Consulta.h"
#include "renderer/layout/ListaPaginas.h"
#include "renderer/layout/Maquetador.h"
#include "renderer/writers/PdfEscritor.h"
#include "renderer/writers/PngEscritor.h"
#include "renderer/writers/TxtEscritor.h"

using namespace paratzorep::renderer;
using Reloj = std::chrono::steady_clock;

namespace {

const char* kPlantilla = R"(<reporte version="1" titulo="Ventas por región">
  <pagina tamano="A4" unidades="mm" margenes="10"/>
  <fuente familia="DejaVu Sans" tamano="7.5"/>
  <tabla nombre="ventas"/>
  <grupo campo="ventas.Region">
    <encabezado alto="6"><texto x="0" y="1" ancho="20" estilo="negrita">Región</texto>
      <campo ref="ventas.Region" x="20" y="1" ancho="60" estilo="negrita"/></encabezado>
    <pie alto="6"><texto x="80" y="1" ancho="50" alinea="derecha" estilo="negrita">Total región</texto>
      <resumen funcion="suma" campo="ventas.Importe" x="160" y="1" ancho="30" formato="#,##0.00" estilo="negrita"/></pie>
  </grupo>
  <grupo campo="ventas.Sucursal">
    <encabezado alto="5"><texto x="5" y="0.5" ancho="20">Sucursal</texto>
      <campo ref="ventas.Sucursal" x="25" y="0.5" ancho="60"/></encabezado>
    <pie alto="5"><texto x="80" y="0.5" ancho="50" alinea="derecha">Total sucursal</texto>
      <resumen funcion="suma" campo="ventas.Importe" x="160" y="0.5" ancho="30" formato="#,##0.00"/></pie>
  </grupo>
  <grupo campo="ventas.Vendedor">
    <encabezado alto="5"><campo ref="ventas.Vendedor" x="10" y="0.5" ancho="60"/></encabezado>
    <pie alto="5"><texto x="80" y="0.5" ancho="50" alinea="derecha">Total vendedor</texto>
      <resumen funcion="suma" campo="ventas.Importe" x="160" y="0.5" ancho="30" formato="#,##0.00"/>
      <resumen funcion="cuenta" campo="ventas.Documento" x="130" y="0.5" ancho="28"/></pie>
  </grupo>
  <encabezadoPagina alto="12">
    <texto x="0" y="0" ancho="190" tamano="12" estilo="negrita" alinea="centro">Ventas por región</texto>
    <texto x="15" y="7" ancho="20" estilo="negrita">Fecha</texto>
    <texto x="40" y="7" ancho="25" estilo="negrita" alinea="derecha">Documento</texto>
    <texto x="70" y="7" ancho="60" estilo="negrita">Cliente</texto>
    <texto x="130" y="7" ancho="28" estilo="negrita" alinea="derecha">Cantidad</texto>
    <texto x="160" y="7" ancho="30" estilo="negrita" alinea="derecha">Importe</texto>
    <linea x="0" y="11.5" ancho="190"/>
  </encabezadoPagina>
  <detalle alto="5">
    <campo ref="ventas.Fecha" x="15" y="0.3" ancho="20" formato="dd/mmm/yyyy"/>
    <campo ref="ventas.Documento" x="40" y="0.3" ancho="25" formato="0"/>
    <campo ref="ventas.Cliente" x="70" y="0.3" ancho="60"/>
    <campo ref="ventas.Cantidad" x="130" y="0.3" ancho="28" formato="#,##0"/>
    <campo ref="ventas.Importe" x="160" y="0.3" ancho="30" formato="#,##0.00"/>
  </detalle>
  <piePagina alto="8"><linea x="0" y="1" ancho="190"/>
    <especial tipo="fecha" x="0" y="2" ancho="50"/>
    <especial tipo="paginaDeTotal" x="140" y="2" ancho="50" alinea="derecha"/></piePagina>
  <pieReporte alto="8"><texto x="80" y="1" ancho="50" alinea="derecha" estilo="negrita">Total general</texto>
    <resumen funcion="suma" campo="ventas.Importe" x="160" y="1" ancho="30" formato="#,##0.00" estilo="negrita"/></pieReporte>
</reporte>)";

const char* kClientes[] = {"Abarrotes La Güera", "Ferretería Núñez",  "Papelería El Águila",
                           "Distribuidora Peña", "Comercial Sánchez", "Farmacia San José",
                           "Tlapalería Ortiz",   "Mueblería Díaz"};

// Rows made on the fly: nothing is held, as with a streamed query.
class Sintetica : public FuenteFilas {
  public:
    explicit Sintetica(long filas) : filas_(filas) {}
    void Prepara(const std::vector<Referencia>& refs) override { refs_ = refs; }
    bool Siguiente(std::vector<Valor>& v) override {
        if (i_ >= filas_) return false;
        v.resize(refs_.size());
        for (std::size_t k = 0; k < refs_.size(); ++k) v[k] = Columna(refs_[k].nombre, i_);
        ++i_;
        return true;
    }
    void SinFila(std::vector<Valor>& v) override { v.assign(refs_.size(), Valor()); }

  private:
    static Valor Columna(const std::string& n, long i) {
        if (n == "ventas.Region") return Valor::texto("Región " + std::to_string(i / 100000 + 1));
        if (n == "ventas.Sucursal")
            return Valor::texto("Sucursal " + std::to_string(i / 10000 + 1));
        if (n == "ventas.Vendedor") return Valor::texto("Vendedor " + std::to_string(i / 1000 + 1));
        if (n == "ventas.Fecha")
            return Valor::fecha({2024, static_cast<int>(i % 12) + 1, static_cast<int>(i % 28) + 1});
        if (n == "ventas.Documento") return Valor::numero(static_cast<double>(100000 + i));
        if (n == "ventas.Cliente") return Valor::texto(kClientes[i % 8]);
        if (n == "ventas.Cantidad") return Valor::numero(static_cast<double>(i % 97 + 1));
        if (n == "ventas.Importe")
            return Valor::numero(static_cast<double>((i * 7919) % 100000) / 7.0);
        return Valor();
    }
    long filas_;
    long i_ = 0;
    std::vector<Referencia> refs_;
};

// The warehouse movements of a demo company by branch, movement and user.
const char* kPlantillaDemo = R"(<reporte version="1" titulo="Movimientos de almacén">
  <pagina tamano="A4" unidades="mm" margenes="10"/>
  <fuente familia="DejaVu Sans" tamano="7.5"/>
  <tabla nombre="historicoalmacen"/>
  <grupo campo="historicoalmacen.Sucursal">
    <encabezado alto="6"><texto x="0" y="1" ancho="20" estilo="negrita">Sucursal</texto>
      <campo ref="historicoalmacen.Sucursal" x="20" y="1" ancho="60" estilo="negrita"/></encabezado>
    <pie alto="6"><texto x="80" y="1" ancho="50" alinea="derecha" estilo="negrita">Total sucursal</texto>
      <resumen funcion="suma" campo="historicoalmacen.Cantidad" x="130" y="1" ancho="28" formato="#,##0" estilo="negrita"/></pie>
  </grupo>
  <grupo campo="historicoalmacen.Movimiento">
    <encabezado alto="5"><campo ref="historicoalmacen.Movimiento" x="5" y="0.5" ancho="80"/></encabezado>
    <pie alto="5"><texto x="80" y="0.5" ancho="50" alinea="derecha">Total movimiento</texto>
      <resumen funcion="suma" campo="historicoalmacen.Cantidad" x="130" y="0.5" ancho="28" formato="#,##0"/></pie>
  </grupo>
  <grupo campo="historicoalmacen.Usuario">
    <encabezado alto="5"><campo ref="historicoalmacen.Usuario" x="10" y="0.5" ancho="60"/></encabezado>
    <pie alto="5"><texto x="80" y="0.5" ancho="50" alinea="derecha">Total usuario</texto>
      <resumen funcion="cuenta" campo="historicoalmacen.Id" x="50" y="0.5" ancho="28" formato="#,##0 movs."/>
      <resumen funcion="suma" campo="historicoalmacen.Cantidad" x="130" y="0.5" ancho="28" formato="#,##0"/></pie>
  </grupo>
  <encabezadoPagina alto="12">
    <texto x="0" y="0" ancho="190" tamano="12" estilo="negrita" alinea="centro">Movimientos de almacén</texto>
    <texto x="15" y="7" ancho="20" estilo="negrita">Fecha</texto>
    <texto x="37" y="7" ancho="25" estilo="negrita">Producto</texto>
    <texto x="62" y="7" ancho="20" estilo="negrita" alinea="derecha">Documento</texto>
    <texto x="85" y="7" ancho="20" estilo="negrita" alinea="derecha">Anterior</texto>
    <texto x="130" y="7" ancho="28" estilo="negrita" alinea="derecha">Cantidad</texto>
    <texto x="160" y="7" ancho="30" estilo="negrita" alinea="derecha">Costo</texto>
    <linea x="0" y="11.5" ancho="190"/>
  </encabezadoPagina>
  <detalle alto="5">
    <campo ref="historicoalmacen.Fecha" x="15" y="0.3" ancho="20" formato="dd/mmm/yyyy"/>
    <campo ref="historicoalmacen.Producto" x="37" y="0.3" ancho="25"/>
    <campo ref="historicoalmacen.Documento" x="62" y="0.3" ancho="20" formato="0"/>
    <campo ref="historicoalmacen.ExistenciaAnterior" x="85" y="0.3" ancho="20" formato="#,##0"/>
    <campo ref="historicoalmacen.Cantidad" x="130" y="0.3" ancho="28" formato="#,##0"/>
    <campo ref="historicoalmacen.Costo" x="160" y="0.3" ancho="30" formato="#,##0.00"/>
  </detalle>
  <piePagina alto="8"><linea x="0" y="1" ancho="190"/>
    <especial tipo="fecha" x="0" y="2" ancho="50" formato="dd/mmm/yyyy"/>
    <especial tipo="paginaDeTotal" x="140" y="2" ancho="50" alinea="derecha"/></piePagina>
  <pieReporte alto="8"><texto x="80" y="1" ancho="50" alinea="derecha" estilo="negrita">Total general</texto>
    <resumen funcion="suma" campo="historicoalmacen.Cantidad" x="130" y="1" ancho="28" formato="#,##0" estilo="negrita"/></pieReporte>
</reporte>)";

// Rows of the renderer's data path, in the order of the layout's references.
class DesdeDatos : public FuenteFilas {
  public:
    explicit DesdeDatos(std::unique_ptr<data::Filas> filas) : filas_(std::move(filas)) {}
    void Prepara(const std::vector<Referencia>& refs) override {
        indices_.clear();
        for (const auto& r : refs) {
            auto punto = r.nombre.find('.');
            int i = filas_->indice(r.nombre.substr(0, punto), r.nombre.substr(punto + 1));
            if (i < 0) throw std::runtime_error("columna sin leer: " + r.nombre);
            indices_.push_back(static_cast<std::size_t>(i));
        }
    }
    bool Siguiente(std::vector<Valor>& v) override {
        const auto t0 = Reloj::now();
        const bool hay = filas_->siguiente();
        if (hay) {
            v.resize(indices_.size());
            for (std::size_t k = 0; k < indices_.size(); ++k) v[k] = filas_->valor(indices_[k]);
        }
        espera_ += Reloj::now() - t0;
        return hay;
    }
    void SinFila(std::vector<Valor>& v) override { v.assign(indices_.size(), Valor()); }
    const data::Filas& Filas() const { return *filas_; }
    // Time spent waiting for rows (server, transfer and conversion).
    double Espera() const { return std::chrono::duration<double>(espera_).count(); }

  private:
    std::unique_ptr<data::Filas> filas_;
    std::vector<std::size_t> indices_;
    Reloj::duration espera_{};
};

// The query the engine would ask for: the template's table, its fields, the groups as
// the sort order, and the selection.
std::unique_ptr<data::Filas> AbreDemo(const Plantilla& p, const Maquetador& m,
                                      const std::string& connect, const std::string& seleccion) {
    data::DescripcionConsulta d;
    d.tablas = {{"historicoalmacen", "historicoalmacen"}};
    for (const auto& r : m.Referencias()) {
        auto punto = r.nombre.find('.');
        d.columnas.push_back({r.nombre.substr(0, punto), r.nombre.substr(punto + 1)});
    }
    for (const auto& g : p.grupos) d.orden.push_back("+{" + g.valor + "}");
    d.seleccion = seleccion;
    return data::abrirOdbc(connect, d);
}

double Segundos(Reloj::time_point desde) {
    return std::chrono::duration<double>(Reloj::now() - desde).count();
}

long PicoMemoriaMb() {
    rusage r{};
    getrusage(RUSAGE_SELF, &r);
    return r.ru_maxrss / 1024;
}

}  // namespace

int main(int argc, char** argv) {
    const bool demo = argc > 1 && std::string(argv[1]) == "--demo";
    if (demo && argc < 4) {
        std::fprintf(stderr, "uso: bench_render --demo CONNECT \"SELECCION\" [carpeta]\n");
        return 2;
    }
    long filas = !demo && argc > 1 ? std::atol(argv[1]) : 1000000;
    std::string carpeta = demo ? (argc > 4 ? argv[4] : "/tmp/tz-bench-render")
                               : (argc > 2 ? argv[2] : "/tmp/tz-bench-render");
    std::filesystem::create_directories(carpeta);
    try {
        Plantilla p =
            LeePlantillaTexto(demo ? kPlantillaDemo : kPlantilla, demo ? "demo.rpt" : "bench.rpt");
        Medidor medidor;

        // The layout reads every row once; the first page goes to the preview as soon as
        // it is laid out, as the screen path does.
        auto t0 = Reloj::now();
        double primera = -1;
        ListaPaginas lista;
        Maquetador m(p, medidor, std::time(nullptr));
        std::unique_ptr<FuenteFilas> datos;
        if (demo)
            datos = std::make_unique<DesdeDatos>(AbreDemo(p, m, argv[2], argv[3]));
        else
            datos = std::make_unique<Sintetica>(filas);
        m.AlCerrarPagina([&](int n) {
            if (n != 1) return;
            PngEscritor png(carpeta + "/vista", medidor);
            const std::string pendiente = "…";
            png.Inicia(m.DocumentoSalida());
            png.Pagina(lista.Lee(0, medidor, &pendiente));
            png.Termina();
            primera = Segundos(t0);
            // SOLO_PRIMERA=1: the time to the first preview page, and nothing more.
            if (const char* solo = std::getenv("SOLO_PRIMERA"); solo && *solo == '1') {
                std::printf("primera página de la vista previa: %.3f s\n", primera);
                std::fflush(stdout);
                std::_Exit(0);
            }
        });
        auto r = m.Maqueta(*datos, lista);
        double maquetado = Segundos(t0);
        if (demo) {
            const auto& f = static_cast<DesdeDatos&>(*datos).Filas();
            std::printf(
                "datos: %zu sentencias, %.2f s esperando filas; en memoria: %zu partes de la "
                "selección\n",
                f.sqlEnviado().size(), static_cast<DesdeDatos&>(*datos).Espera(),
                f.seleccionEnMemoria().size());
            for (const auto& sql : f.sqlEnviado())
                if (sql.rfind("SELECT `", 0) == 0) {
                    std::printf("primer SQL: %s\n", sql.c_str());
                    break;
                }
        }
        datos.reset();
        std::printf(
            "maquetado%s: %ld filas, %d páginas en %.2f s (%.0f filas/s, %.0f páginas/s); "
            "lista en disco %.1f MB\n",
            demo ? " (con la lectura de datos)" : "", static_cast<long>(r.filas), r.paginas,
            maquetado, static_cast<double>(r.filas) / maquetado, r.paginas / maquetado,
            static_cast<double>(lista.Bytes()) / 1e6);
        std::printf("primera página de la vista previa: %.3f s\n", primera);
        std::printf("memoria máxima tras el maquetado: %ld MB\n", PicoMemoriaMb());

        struct Salida {
            const char* nombre;
            std::function<std::unique_ptr<Escritor>()> crea;
        };
        const std::vector<Salida> salidas = {
            {"PDF", [&] { return std::make_unique<PdfEscritor>(carpeta + "/bench.pdf", medidor); }},
            {"TXT", [&] { return std::make_unique<TxtEscritor>(carpeta + "/bench.txt"); }},
        };
        for (const auto& s : salidas) {
            auto t1 = Reloj::now();
            auto escritor = s.crea();
            lista.Reproduce(m.DocumentoSalida(), medidor, {escritor.get()});
            escritor.reset();
            double t = Segundos(t1);
            std::printf(
                "%s: %d páginas en %.2f s (%.0f páginas/s); con el maquetado %.2f s: %.0f "
                "páginas/s, %.0f filas/s; memoria máxima %ld MB\n",
                s.nombre, r.paginas, t, r.paginas / t, t + maquetado, r.paginas / (t + maquetado),
                static_cast<double>(r.filas) / (t + maquetado), PicoMemoriaMb());
        }
        std::printf("memoria máxima: %ld MB\n", PicoMemoriaMb());
    } catch (const std::exception& e) {
        std::fprintf(stderr, "bench_render: %s\n", e.what());
        return 1;
    }
    return 0;
}
