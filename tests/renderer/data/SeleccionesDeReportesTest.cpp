// Every selection formula of the report forms runs on the server as pushed SQL
// and selects the same rows as its evaluation here, over tables made from the
// fields it reads and filled with the values it compares against.
#include <gtest/gtest.h>

#include <map>
#include <set>

#include "renderer/data/Consulta.h"
#include "renderer/formula/Evaluador.h"
#include "renderer/formula/Traductor.h"
#include "support/Soporte.h"
#include "tests/renderer/data/ConexionOdbc.h"
#include "tests/renderer/formula/FormulasDeReportes.h"

namespace paratzorep::renderer::data {
namespace {

using formula::Nodo;
using formula::TipoNodo;

struct Columna {
    std::string tipo = "VARCHAR(60)";
    std::vector<std::string> valores;  // SQL literals
};

// The kind and sample values of each field, from what the formula compares it with.
void recoger(const Nodo& n, std::map<std::string, std::map<std::string, Columna>>& tablas) {
    if (n.tipo == TipoNodo::Binario && n.hijos.size() == 2) {
        const Nodo* campo = nullptr;
        const Nodo* otro = nullptr;
        if (n.hijos[0]->tipo == TipoNodo::Campo)
            campo = n.hijos[0].get(), otro = n.hijos[1].get();
        else if (n.hijos[1]->tipo == TipoNodo::Campo)
            campo = n.hijos[1].get(), otro = n.hijos[0].get();
        if (campo != nullptr) {
            Columna& c = tablas[campo->tabla][campo->nombre];
            if (otro->tipo == TipoNodo::Literal && otro->valor.tipo() == Valor::Tipo::Numero) {
                c.tipo = "DOUBLE";
                const double v = otro->valor.comoNumero();
                for (double d : {v, v + 1, v - 1}) c.valores.push_back(formula::numeroSql(d));
            } else if (otro->tipo == TipoNodo::Literal) {
                const std::string s = otro->valor.comoTexto();
                for (const std::string& x : {s, "x " + s + " y", std::string("zz")})
                    c.valores.push_back(formula::textoSql(x, formula::Dialecto::MariaDB));
            } else if (otro->tipo == TipoNodo::Funcion) {
                c.tipo = "DATE";
                c.valores = {"'2024-03-05'", "'2024-03-06'", "'0000-00-00'", "'2023-12-31'"};
            }
        }
    }
    for (const auto& h : n.hijos) recoger(*h, tablas);
}

TEST(SeleccionesDeReportes, MismasFilasEnElServidorYEnMemoria) {
    pruebas::BaseDeDatosDePrueba bd;
    const std::string cs = prueba::conexionOdbc(bd);
    int n = 0;
    for (const auto& sel : formula::prueba::seleccionesDeReportes()) {
        SCOPED_TRACE(sel);
        const formula::Formula f = formula::analizar(sel);
        std::map<std::string, std::map<std::string, Columna>> tablas;
        recoger(*f.raiz(), tablas);
        DescripcionConsulta d;
        DescripcionConsulta todas;
        for (auto& [tabla, columnas] : tablas) {
            const std::string nombre = "s" + std::to_string(n++);
            std::string ddl = "CREATE TABLE " + nombre + " (Id INT PRIMARY KEY";
            for (auto& [col, c] : columnas) ddl += ", `" + col + "` " + c.tipo + " NULL";
            bd.ejecutar(ddl + ") DEFAULT CHARSET=utf8mb4");
            // Four rows: each column cycles through its sample values; the last is all NULL.
            for (int r = 0; r < 4; ++r) {
                std::string ins = "INSERT INTO " + nombre + " VALUES (" + std::to_string(r);
                for (auto& [col, c] : columnas)
                    ins += ", " + (r == 3 || c.valores.empty() ? std::string("NULL")
                                                               : c.valores[r % c.valores.size()]);
                bd.ejecutar(ins + ")");
            }
            d.tablas.push_back({tabla, nombre});
            d.columnas.push_back({tabla, "Id"});
            for (auto& [col, c] : columnas) todas.columnas.push_back({tabla, col});
        }
        d.seleccion = sel;
        todas.tablas = d.tablas;
        for (const auto& c : d.columnas) todas.columnas.push_back(c);
        for (const auto& t : d.tablas) d.orden.push_back("+{" + t.nombre + ".Id}");
        todas.orden = d.orden;

        auto enviada = abrirOdbc(cs, d);
        EXPECT_TRUE(enviada->seleccionEnMemoria().empty());
        std::vector<std::vector<Valor>> a, b;
        while (enviada->siguiente())
            a.emplace_back(enviada->fila().begin(),
                           enviada->fila().begin() + static_cast<long>(d.tablas.size()));
        auto filas = abrirOdbc(cs, todas);
        const std::size_t primera = todas.columnas.size() - d.tablas.size();
        while (filas->siguiente())
            if (formula::seleccionar(f, *filas))
                b.emplace_back(
                    filas->fila().begin() + static_cast<long>(primera),
                    filas->fila().begin() + static_cast<long>(primera + d.tablas.size()));
        EXPECT_EQ(a, b);
        EXPECT_LT(a.size(), filas->leidas()) << "la selección no descartó ninguna fila";
    }
}

}  // namespace
}  // namespace paratzorep::renderer::data
