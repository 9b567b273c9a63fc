// Renderer benchmark: a synthetic report of N rows (default 1,000,000) with three group
// levels (region, branch, seller), about 50 detail rows a page, laid out once and written
// to PDF and to TXT; then the screen path's time to the first preview page.
// Prints rows/s, pages/s, the size of the on-disk page list and the peak memory.
//
//   bench_render [rows] [output folder]
#include <sys/resource.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

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
    long filas = argc > 1 ? std::atol(argv[1]) : 1000000;
    std::string carpeta = argc > 2 ? argv[2] : "/tmp/tz-bench-render";
    std::filesystem::create_directories(carpeta);
    try {
        Plantilla p = LeePlantillaTexto(kPlantilla, "bench.rpt");
        Medidor medidor;

        // Screen path: time until the first preview page is on disk.
        {
            auto t0 = Reloj::now();
            double primera = -1;
            Sintetica datos(filas);
            ListaPaginas lista;
            Maquetador m(p, medidor, 0);
            m.AlCerrarPagina([&](int n) {
                if (n != 1) return;
                PngEscritor png(carpeta + "/vista", medidor);
                const std::string pendiente = "…";
                png.Inicia(m.DocumentoSalida());
                png.Pagina(lista.Lee(0, medidor, &pendiente));
                primera = Segundos(t0);
            });
            auto r = m.Maqueta(datos, lista);
            double maquetado = Segundos(t0);
            std::printf(
                "maquetado: %ld filas, %d páginas en %.2f s (%.0f filas/s, %.0f páginas/s); "
                "lista en disco %.1f MB\n",
                static_cast<long>(r.filas), r.paginas, maquetado,
                static_cast<double>(r.filas) / maquetado, r.paginas / maquetado,
                static_cast<double>(lista.Bytes()) / 1e6);
            std::printf("primera página de la vista previa: %.3f s\n", primera);
            std::printf("memoria máxima tras el maquetado: %ld MB\n", PicoMemoriaMb());

            auto t1 = Reloj::now();
            PdfEscritor pdf(carpeta + "/bench.pdf", medidor);
            lista.Reproduce(m.DocumentoSalida(), medidor, {&pdf});
            double tPdf = Segundos(t1);
            std::printf(
                "PDF: %d páginas en %.2f s (%.0f páginas/s); con el maquetado %.0f páginas/s, "
                "%.0f filas/s\n",
                r.paginas, tPdf, r.paginas / tPdf, r.paginas / (tPdf + maquetado),
                static_cast<double>(r.filas) / (tPdf + maquetado));
            std::printf("memoria máxima tras el PDF: %ld MB\n", PicoMemoriaMb());

            auto t2 = Reloj::now();
            TxtEscritor txt(carpeta + "/bench.txt");
            lista.Reproduce(m.DocumentoSalida(), medidor, {&txt});
            double tTxt = Segundos(t2);
            std::printf(
                "TXT: %d páginas en %.2f s (%.0f páginas/s); con el maquetado %.0f "
                "páginas/s\n",
                r.paginas, tTxt, r.paginas / tTxt, r.paginas / (tTxt + maquetado));
        }
        std::printf("memoria máxima: %ld MB\n", PicoMemoriaMb());
    } catch (const std::exception& e) {
        std::fprintf(stderr, "bench_render: %s\n", e.what());
        return 1;
    }
    return 0;
}
