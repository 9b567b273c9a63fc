// Sample reports in the page model and as data, shared by the writer tests, and the PDF
// word reader used to check where LibreOffice put the texts.
#pragma once

#include <cstdio>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "Lector.h"
#include "renderer/writers/Escritor.h"
#include "renderer/writers/SalidaTabular.h"
#include "renderer/writers/TablaDatos.h"

namespace paratzorep::renderer::prueba {

// Texts of the page model.
inline ElementoTexto Texto(TipoBanda tipo, std::uint32_t banda, double x, double y, double ancho,
                           std::string texto, Alineacion al = Alineacion::Izquierda) {
    ElementoTexto e;
    e.x = x;
    e.y = y;
    e.ancho = ancho;
    e.alto = 12;
    e.tipoBanda = tipo;
    e.banda = banda;
    e.alineacion = al;
    double medido = 5.0 * static_cast<double>(texto.size());
    double dx = al == Alineacion::Derecha ? ancho - medido : 0;
    e.renglones.push_back({std::move(texto), dx, medido});
    return e;
}

inline ElementoTexto Numero(TipoBanda tipo, std::uint32_t banda, double x, double y, double ancho,
                            double valor, std::string mostrado) {
    auto e = Texto(tipo, banda, x, y, ancho, std::move(mostrado), Alineacion::Derecha);
    e.tipo = TipoValor::Numero;
    e.numero = valor;
    e.formato = "#,##0.00";
    e.fuente = tipo == TipoBanda::PieGrupo ? 1 : 0;
    return e;
}

// The report's data through TablaDatos: a day (group value), a time, a text, an amount and a
// count whose format carries text; the third record has an empty date and no count.
inline const std::vector<ColumnaDatos> kColumnasDatos = {{"Fecha", "dd/mmm/yyyy", 1},
                                                         {"Hora", "", 0},
                                                         {"Cliente", "", 0},
                                                         {"Saldo", "#,##0.00", 0},
                                                         {"Movimientos", "#,##0 movimientos", 0}};

inline void EscribeDatos(std::unique_ptr<SalidaTabular> salida, bool conFilas) {
    TablaDatos t(std::move(salida), kColumnasDatos, {612, 792, "Saldos & cargos"});
    if (conFilas) {
        const Valor dia = Valor::fecha({2024, 1, 2});
        t.Registro({dia, Valor::hora({8, 0, 50}), Valor::texto("Pérez, Juan"),
                    Valor::numero(1500.5), Valor::numero(3)});
        t.Registro({dia, Valor::hora({13, 30, 0}), Valor::texto("Ñúñez"), Valor::numero(-20),
                    Valor::numero(1)});
        t.Registro({Valor::fecha({}), Valor::hora({0, 0, 0}), Valor::texto("García"),
                    Valor::numero(0.25), Valor()});
    }
    t.Termina();
}

// Two A4 pages of 40 rows: date, client (left aligned) and amount (right aligned
// at x = 500), under a bold centred title.
constexpr int kFilas = 40;

inline std::string Cliente(int i) {
    return i % 2 ? "Pérez, Juan {x}" : "Ñúñez & Cía";
}
inline std::string Importe(int i) {
    char buf[32];
    std::snprintf(buf, sizeof buf, "%.2f", i * 1234.5);
    return buf;
}

inline void Escribir(Escritor& w) {
    Documento d;
    d.titulo = "Saldos";
    d.fuentes = {Fuente{}, Fuente{"DejaVu Sans", 12, true}};
    d.margenIzquierdo = d.margenSuperior = d.margenDerecho = d.margenInferior = 36;
    d.totalPaginas = 2;
    w.Inicia(d);
    for (int pg = 1; pg <= 2; ++pg) {
        renderer::Pagina p;
        p.numero = pg;
        auto t = [&p](double x, double y, double ancho, std::string s, Alineacion a, int f = 0) {
            auto e = Texto(TipoBanda::Detalle, 0, x, y, ancho, std::move(s), a);
            e.base = 9;
            e.fuente = static_cast<std::uint16_t>(f);
            auto& r = e.renglones[0];
            if (a == Alineacion::Centro) r.dx = (ancho - r.ancho) / 2;
            p.textos.push_back(std::move(e));
        };
        t(36, 40, 520, "Saldos de clientes — página " + std::to_string(pg), Alineacion::Centro, 1);
        for (int i = 0; i < kFilas; ++i) {
            double y = 80 + i * 14;
            t(420, y, 80, Importe(i), Alineacion::Derecha);
            t(36, y, 60, std::to_string(10 + i) + "/01/2024", Alineacion::Izquierda);
            t(110, y, 200, Cliente(i), Alineacion::Izquierda);
        }
        // A rule under the heads and a grey box in the top right corner.
        p.lineas.push_back({36, 70, 500, 70, 2});
        p.cajas.push_back({450, 10, 100, 20, 0, 0.5});
        w.Pagina(p);
    }
    w.Termina();
}

// Words of a PDF with their boxes, through pdftotext.
struct Palabra {
    int pagina;
    double x0, y0, x1;
    std::string texto;
};

inline std::vector<Palabra> Palabras(const std::filesystem::path& pdf) {
    auto s = Ejecutar("pdftotext -bbox " + pdf.string() + " -");
    std::vector<Palabra> r;
    int pagina = 0;
    std::regex palabra(
        R"re(<word xMin="([\d.]+)" yMin="([\d.]+)" xMax="([\d.]+)" yMax="[\d.]+">(.*)</word>)re");
    std::istringstream in(s.texto);
    std::string linea;
    while (std::getline(in, linea)) {
        if (linea.find("<page ") != std::string::npos) ++pagina;
        std::smatch m;
        if (std::regex_search(linea, m, palabra))
            r.push_back({pagina, std::stod(m[1]), std::stod(m[2]), std::stod(m[3]), m[4]});
    }
    return r;
}

}  // namespace paratzorep::renderer::prueba
