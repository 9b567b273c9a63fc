#include "output/DatosMotor.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <set>

#include "data/ConexionMaria.h"
#include "renderer/data/Consulta.h"
#include "renderer/formula/Formula.h"

namespace paratzorep::output {

namespace detail {

std::string Minusculas(std::string s) {
    for (char& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return s;
}

// The table of a sort field "+{tabla.campo}" (lower case); "" when it names none.
std::string TablaDeOrden(const std::string& orden) {
    const auto llave = orden.find('{');
    const auto punto = orden.find('.', llave == std::string::npos ? 0 : llave);
    if (llave == std::string::npos || punto == std::string::npos) return "";
    return Minusculas(orden.substr(llave + 1, punto - llave - 1));
}

renderer::formula::RefCampo SeparaCampo(const std::string& campo) {
    const auto punto = campo.find('.');
    if (punto == std::string::npos) return {"", campo};
    return {campo.substr(0, punto), campo.substr(punto + 1)};
}

// Rows of the driving tables plus the constant values of the unjoined heading tables.
class CursorReporte : public renderer::CursorFilas {
  public:
    CursorReporte(std::unique_ptr<renderer::data::Filas> filas,
                  std::map<std::string, std::map<std::string, renderer::Valor>> constantes)
        : filas_(std::move(filas)), constantes_(std::move(constantes)) {}

    bool Siguiente() override { return filas_->siguiente(); }

    renderer::Valor Campo(std::string_view tabla, std::string_view campo) const override {
        const int i = filas_->indice(tabla, campo);
        if (i >= 0) return filas_->valor(static_cast<std::size_t>(i));
        return Constante(tabla, campo);
    }

    int Posicion(std::string_view tabla, std::string_view campo) const override {
        return filas_->indice(tabla, campo);
    }

    const renderer::Valor& EnPosicion(int posicion) const override {
        return filas_->valor(static_cast<std::size_t>(posicion));
    }

    renderer::Valor Constante(std::string_view tabla, std::string_view campo) const override {
        auto t = constantes_.find(Minusculas(std::string(tabla)));
        if (t == constantes_.end()) return {};
        auto c = t->second.find(Minusculas(std::string(campo)));
        return c == t->second.end() ? renderer::Valor() : c->second;
    }

  private:
    std::unique_ptr<renderer::data::Filas> filas_;
    std::map<std::string, std::map<std::string, renderer::Valor>> constantes_;
};

}  // namespace detail

bool EsArchivoLocal(const std::string& archivoDatos) {
    return archivoDatos.size() >= 4 &&
           detail::Minusculas(archivoDatos.substr(archivoDatos.size() - 4)) == ".mdb";
}

renderer::DatosAbiertos AbreDatosReporte(const renderer::ConsultaReporte& c) {
    using renderer::ErrorMotor;
    namespace rd = renderer::data;
    if (!c.plantilla) throw ErrorMotor("La consulta del reporte no tiene plantilla");
    const auto& tablas = c.plantilla->tablas;
    if (tablas.empty())
        throw ErrorMotor("La plantilla '" + c.plantilla->archivo + "' no lee tablas");
    if (c.archivosDatos.size() != tablas.size())
        throw ErrorMotor("La plantilla tiene " + std::to_string(tablas.size()) +
                         " tablas y se indicaron " + std::to_string(c.archivosDatos.size()) +
                         " archivos de datos");

    // Which tables are read where: local ones (the template marks them, or the runner pointed
    // their data file at the work file) and the company's.
    std::vector<bool> local(tablas.size());
    for (std::size_t i = 0; i < tablas.size(); ++i)
        local[i] = tablas[i].EsLocal() || EsArchivoLocal(c.archivosDatos[i]);
    const bool porLocal = local[0];
    // The work file of a local table; asked only when the table is read.
    auto archivoDe = [&](std::size_t i) {
        if (c.archivosDatos[i].empty() || c.archivosDatos[i] == tablas[i].archivo)
            throw ErrorMotor("La tabla local '" + tablas[i].nombre +
                             "' del reporte no tiene archivo de trabajo local");
        return c.archivosDatos[i];
    };

    // The driving set: the first table and every table of the same kind.
    std::set<std::string> enConsulta;
    rd::DescripcionConsulta d;
    for (std::size_t i = 0; i < tablas.size(); ++i) {
        if (local[i] != porLocal) continue;
        const std::string& archivo = c.archivosDatos[i];
        d.tablas.push_back({tablas[i].nombre, porLocal ? tablas[i].nombre : archivo});
        enConsulta.insert(detail::Minusculas(tablas[i].nombre));
    }
    // A table without a join of its own goes in as a cross join.
    for (std::size_t i = 1; i < d.tablas.size(); ++i) {
        rd::Union u;
        for (const auto& un : c.plantilla->uniones) {
            if (detail::Minusculas(un.tabla) != detail::Minusculas(d.tablas[i].nombre)) continue;
            u.izquierda = un.tipo == renderer::TipoUnion::Izquierda;
            u.campos.emplace_back(detail::SeparaCampo(un.campoIzquierdo),
                                  detail::SeparaCampo(un.campoDerecho));
        }
        d.uniones.push_back(std::move(u));
    }
    for (const auto& un : c.plantilla->uniones) {
        const bool dentro = enConsulta.count(detail::Minusculas(un.tabla)) > 0;
        const auto otra = detail::Minusculas(detail::SeparaCampo(un.campoIzquierdo).tabla);
        if (dentro != (enConsulta.count(otra) > 0))
            throw ErrorMotor("La plantilla une la tabla '" + un.tabla +
                             "' con una tabla de otro origen (base de datos y archivo local)");
    }

    // Fields, order and selection that belong to the driving tables.
    std::map<std::string, std::vector<std::string>> camposFuera;
    for (const auto& campo : c.campos) {
        const auto ref = detail::SeparaCampo(campo);
        if (enConsulta.count(detail::Minusculas(ref.tabla)))
            d.columnas.push_back(ref);
        else
            camposFuera[detail::Minusculas(ref.tabla)].push_back(ref.campo);
    }
    for (const auto& o : c.orden)
        if (enConsulta.count(detail::TablaDeOrden(o))) d.orden.push_back(o);
    bool seleccionFuera = false;
    if (!c.seleccion.empty()) {
        for (const auto& ref : renderer::formula::analizar(c.seleccion).campos())
            if (!enConsulta.count(detail::Minusculas(ref.tabla))) seleccionFuera = true;
    }
    if (!seleccionFuera) d.seleccion = c.seleccion;

    // The same limit on a silent server as the data layer's connections.
    rd::Opciones opciones;
    opciones.segundosEspera = data::SegundosDeEspera();
    std::unique_ptr<rd::Filas> filas =
        porLocal ? rd::abrirSqlite(archivoDe(0), d) : rd::abrirOdbc(c.conexion, d, opciones);

    // Heading tables of the other source: their first row, once.
    std::map<std::string, std::map<std::string, renderer::Valor>> constantes;
    for (std::size_t i = 0; i < tablas.size(); ++i) {
        if (local[i] == porLocal) continue;
        const std::string clave = detail::Minusculas(tablas[i].nombre);
        auto campos = camposFuera.find(clave);
        if (campos == camposFuera.end()) continue;
        rd::DescripcionConsulta h;
        h.tablas.push_back({tablas[i].nombre, local[i] ? tablas[i].nombre : c.archivosDatos[i]});
        for (const auto& f : campos->second) h.columnas.push_back({tablas[i].nombre, f});
        auto fila =
            local[i] ? rd::abrirSqlite(archivoDe(i), h) : rd::abrirOdbc(c.conexion, h, opciones);
        auto& valores = constantes[clave];
        if (fila->siguiente())
            for (const auto& f : campos->second)
                valores[detail::Minusculas(f)] =
                    fila->valor(static_cast<std::size_t>(fila->indice(tablas[i].nombre, f)));
    }

    renderer::DatosAbiertos r;
    r.cursor = std::make_unique<detail::CursorReporte>(std::move(filas), std::move(constantes));
    r.seleccionAplicada = !seleccionFuera;
    return r;
}

}  // namespace paratzorep::output
