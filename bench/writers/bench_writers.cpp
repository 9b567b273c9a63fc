// File writers benchmark: a synthetic report of N detail rows (default 1,000,000), six
// columns (date, key, name, quantity, price, amount). RTF takes it through the page model,
// 50 rows a page under a page header with a group footer every 200 rows; XLS, XLSX and CSV
// take the same rows as the report's data (TablaDatos), one record each.
// Prints rows/s, pages/s, the file's size and the process's peak memory; run once per
// format so that the peak belongs to that writer.
//
//   bench_writers [rows] [xls|xlsx|csv|rtf] [folder]
#include <sys/resource.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "renderer/writers/EscritorRtf.h"
#include "renderer/writers/SalidaTabular.h"
#include "renderer/writers/TablaDatos.h"

using namespace paratzorep::renderer;

namespace {

ElementoTexto Texto(TipoBanda tipo, std::uint32_t banda, double x, double y, double ancho,
                    std::string texto, Alineacion al = Alineacion::Izquierda) {
    ElementoTexto e;
    e.x = x;
    e.y = y;
    e.ancho = ancho;
    e.alto = 10;
    e.base = 8;
    e.tipoBanda = tipo;
    e.banda = banda;
    e.alineacion = al;
    double medido = 4.5 * static_cast<double>(texto.size());
    e.renglones.push_back(
        {std::move(texto), al == Alineacion::Derecha ? ancho - medido : 0, medido});
    return e;
}

ElementoTexto Numero(TipoBanda tipo, std::uint32_t banda, double x, double y, double ancho,
                     double v, const char* formato) {
    char buf[64];
    std::snprintf(buf, sizeof buf, "%.2f", v);
    auto e = Texto(tipo, banda, x, y, ancho, buf, Alineacion::Derecha);
    e.tipo = TipoValor::Numero;
    e.numero = v;
    e.formato = formato;
    return e;
}

}  // namespace

int main(int argc, char** argv) {
    const long filas = argc > 1 ? std::atol(argv[1]) : 1000000;
    const std::string tipo = argc > 2 ? argv[2] : "xls";
    const std::filesystem::path carpeta =
        argc > 3 ? argv[3] : std::filesystem::temp_directory_path();
    const auto archivo = carpeta / ("bench_writers." + tipo);

    const char* nombres[] = {"Abarrotes Pérez", "Ferretería Ñandú", "Farmacia López y Cía",
                             "Papelería \"El Búho\"", "Tortillería La Güera"};
    if (tipo != "rtf") {
        auto inicio = std::chrono::steady_clock::now();
        FabricaTabla fabrica = tipo == "xls"    ? CreaTablaXls
                               : tipo == "xlsx" ? CreaTablaXlsx
                                                : CreaTablaCsv;
        TablaDatos t(fabrica(archivo.string(), "Ventas del año"),
                     {{"Fecha", "dd/mm/yyyy", 1},
                      {"Clave", "", 0},
                      {"Cliente", "", 0},
                      {"Cantidad", "#,##0", 0},
                      {"Precio", "#,##0.00", 0},
                      {"Importe", "#,##0.00", 0}},
                     {612, 792, "Ventas del año"});
        std::vector<Valor> v(6);
        for (long r = 0; r < filas; ++r) {
            v[0] = Valor::fecha(Fecha::desdeDiaJuliano(Fecha{2024, 1, 1}.diaJuliano() + r % 366));
            v[1] = Valor::texto("C" + std::to_string(100000 + r % 5000));
            v[2] = Valor::texto(nombres[r % 5]);
            double cantidad = static_cast<double>(r % 17 + 1),
                   precio = 10.5 + static_cast<double>(r % 100);
            v[3] = Valor::numero(cantidad);
            v[4] = Valor::numero(precio);
            v[5] = Valor::numero(cantidad * precio);
            t.Registro(v);
        }
        t.Termina();
        double s = std::chrono::duration<double>(std::chrono::steady_clock::now() - inicio).count();
        rusage uso{};
        getrusage(RUSAGE_SELF, &uso);
        std::printf(
            "%s: %ld filas en %.2f s (%.0f filas/s), %.1f MB en disco, memoria máxima "
            "%.1f MB\n",
            tipo.c_str(), filas, s, filas / s,
            static_cast<double>(std::filesystem::file_size(archivo)) / 1e6,
            static_cast<double>(uso.ru_maxrss) / 1024);
        if (!std::getenv("TZ_BENCH_CONSERVAR")) std::filesystem::remove(archivo);
        return 0;
    }
    std::unique_ptr<Escritor> w = CreaEscritorRtf(archivo.string());
    Documento doc;
    doc.titulo = "Ventas del año";
    doc.fuentes = {Fuente{"DejaVu Sans", 7.5}, Fuente{"DejaVu Sans", 7.5, true}};
    doc.margenIzquierdo = doc.margenSuperior = doc.margenDerecho = doc.margenInferior = 28;
    const long porPagina = 50;
    doc.totalPaginas = static_cast<int>((filas + porPagina - 1) / porPagina);

    auto inicio = std::chrono::steady_clock::now();
    w->Inicia(doc);
    std::uint32_t banda = 0;
    double total = 0;
    for (long r = 0, pagina = 1; r < filas; ++pagina) {
        Pagina p;
        p.numero = static_cast<int>(pagina);
        ++banda;
        p.textos.push_back(
            Texto(TipoBanda::EncabezadoPagina, banda, 28, 28, 540, doc.titulo, Alineacion::Centro));
        const char* titulos[] = {"Fecha", "Clave", "Cliente", "Cantidad", "Precio", "Importe"};
        const double xs[] = {28, 90, 150, 360, 420, 490}, anchos[] = {55, 55, 200, 50, 60, 77};
        for (int c = 0; c < 6; ++c)
            p.textos.push_back(Texto(TipoBanda::EncabezadoPagina, banda, xs[c], 50, anchos[c],
                                     titulos[c],
                                     c >= 3 ? Alineacion::Derecha : Alineacion::Izquierda));
        double y = 70;
        for (long k = 0; k < porPagina && r < filas; ++k, ++r) {
            ++banda;
            auto f = Texto(TipoBanda::Detalle, banda, xs[0], y, anchos[0], "01/01/2024");
            f.tipo = TipoValor::Fecha;
            f.numero = SerieFecha(2024, 1, 1) + static_cast<double>(r % 366);
            f.formato = "dd/mm/yyyy";
            p.textos.push_back(f);
            p.textos.push_back(Texto(TipoBanda::Detalle, banda, xs[1], y, anchos[1],
                                     "C" + std::to_string(100000 + r % 5000)));
            p.textos.push_back(
                Texto(TipoBanda::Detalle, banda, xs[2], y, anchos[2], nombres[r % 5]));
            double cantidad = static_cast<double>(r % 17 + 1),
                   precio = 10.5 + static_cast<double>(r % 100);
            p.textos.push_back(
                Numero(TipoBanda::Detalle, banda, xs[3], y, anchos[3], cantidad, "#,##0"));
            p.textos.push_back(
                Numero(TipoBanda::Detalle, banda, xs[4], y, anchos[4], precio, "#,##0.00"));
            p.textos.push_back(Numero(TipoBanda::Detalle, banda, xs[5], y, anchos[5],
                                      cantidad * precio, "#,##0.00"));
            total += cantidad * precio;
            y += 14;
            if ((r + 1) % 200 == 0) {
                ++banda;
                p.textos.push_back(
                    Texto(TipoBanda::PieGrupo, banda, xs[4], y, anchos[4], "Subtotal"));
                p.textos.push_back(
                    Numero(TipoBanda::PieGrupo, banda, xs[5], y, anchos[5], total, "#,##0.00"));
            }
        }
        w->Pagina(p);
    }
    w->Termina();
    double s = std::chrono::duration<double>(std::chrono::steady_clock::now() - inicio).count();
    rusage uso{};
    getrusage(RUSAGE_SELF, &uso);
    std::printf(
        "%s: %ld filas, %d páginas en %.2f s (%.0f filas/s, %.0f páginas/s), %.1f MB en disco, "
        "memoria máxima %.1f MB\n",
        tipo.c_str(), filas, doc.totalPaginas, s, filas / s, doc.totalPaginas / s,
        static_cast<double>(std::filesystem::file_size(archivo)) / 1e6,
        static_cast<double>(uso.ru_maxrss) / 1024);
    if (!std::getenv("TZ_BENCH_CONSERVAR")) std::filesystem::remove(archivo);
}
