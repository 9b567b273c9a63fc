#include "renderer/data/Consulta.h"

#include <cctype>
#include <cstdlib>
#include <iostream>

#include "renderer/data/ArmadoSql.h"
#include "renderer/formula/Traductor.h"

namespace paratzorep::renderer::data {

namespace {
std::string mensajeDatos(const std::string& accion, const std::string& detalle,
                         const std::string& sql, const std::string& estado, long codigo) {
    std::string m = "Error al " + accion + ": " + detalle;
    if (!estado.empty() || codigo != 0)
        m += " (código " + std::to_string(codigo) + (estado.empty() ? "" : ", estado " + estado) +
             ")";
    if (!sql.empty()) m += ". SQL: " + sql;
    return m;
}

std::string recortar(std::string_view s) {
    while (!s.empty() && std::isspace(static_cast<unsigned char>(s.front()))) s.remove_prefix(1);
    while (!s.empty() && std::isspace(static_cast<unsigned char>(s.back()))) s.remove_suffix(1);
    return std::string(s);
}

std::string minusculas(std::string_view s) {
    std::string r(s);
    for (auto& c : r) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return r;
}
}  // namespace

ErrorDatos::ErrorDatos(std::string accion, std::string detalle, std::string sql, std::string estado,
                       long codigo)
    : std::runtime_error(mensajeDatos(accion, detalle, sql, estado, codigo)),
      accion_(std::move(accion)),
      detalle_(std::move(detalle)),
      sql_(std::move(sql)),
      estado_(std::move(estado)),
      codigo_(codigo) {}

ErrorNombre::ErrorNombre(std::string tabla, std::string campo, std::string origen)
    : ErrorDatos("leer los datos del reporte",
                 campo.empty()
                     ? "la tabla '" + tabla + "' no existe en la base de datos (" + origen + ")"
                     : "el campo '" + tabla + "." + campo + "' no existe en la tabla " + origen),
      tabla_(std::move(tabla)),
      campo_(std::move(campo)),
      origen_(std::move(origen)) {}

std::map<std::string, std::string> leerArchivosDatos(std::string_view entradas) {
    std::map<std::string, std::string> r;
    std::size_t i = 0;
    while (i <= entradas.size()) {
        std::size_t fin = entradas.find(';', i);
        if (fin == std::string_view::npos) fin = entradas.size();
        const std::string_view e = entradas.substr(i, fin - i);
        const std::size_t estrella = e.find('*');
        if (estrella != std::string_view::npos) {
            const std::string tabla = recortar(e.substr(0, estrella));
            const std::string trabajo = recortar(e.substr(estrella + 1));
            if (!tabla.empty() && !trabajo.empty()) r[minusculas(tabla)] = trabajo;
        } else if (!recortar(e).empty()) {
            throw ErrorDatos(
                "leer los archivos de datos del reporte",
                "la entrada '" + recortar(e) + "' no tiene la forma tabla*tablatrabajo");
        }
        i = fin + 1;
    }
    return r;
}

std::string resolverTabla(std::string_view nombre, const std::map<std::string, std::string>& mapeos,
                          std::string_view base) {
    std::string t(nombre);
    auto it = mapeos.find(minusculas(nombre));
    if (it != mapeos.end()) t = it->second;
    if (t.find('.') == std::string::npos && !base.empty()) t = std::string(base) + "." + t;
    return t;
}

namespace detail {

bool mismoNombre(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (std::tolower(static_cast<unsigned char>(a[i])) !=
            std::tolower(static_cast<unsigned char>(b[i])))
            return false;
    return true;
}

int agregarColumna(std::vector<formula::RefCampo>& v, const formula::RefCampo& c) {
    for (std::size_t i = 0; i < v.size(); ++i)
        if (mismoNombre(v[i].tabla, c.tabla) && mismoNombre(v[i].campo, c.campo))
            return static_cast<int>(i);
    v.push_back(c);
    return static_cast<int>(v.size() - 1);
}

std::string tablaSql(const std::string& origen, formula::Dialecto d) {
    const std::size_t punto = origen.find('.');
    if (punto == std::string::npos || d == formula::Dialecto::SQLite)
        return formula::identificadorSql(origen, d);
    return formula::identificadorSql(origen.substr(0, punto), d) + "." +
           formula::identificadorSql(origen.substr(punto + 1), d);
}

std::string seleccionarDesde(const DescripcionConsulta& d,
                             const std::vector<formula::RefCampo>& columnas,
                             formula::Dialecto dialecto,
                             const std::vector<std::string>& expresiones, bool alias) {
    if (d.tablas.empty())
        throw ErrorDatos("armar la consulta del reporte", "el reporte no lee ninguna tabla");
    std::string s = "SELECT ";
    if (columnas.empty()) s += "1";  // a report that shows only its headings still has rows
    for (std::size_t i = 0; i < columnas.size(); ++i) {
        s += (i ? ", " : "") + (i < expresiones.size() && !expresiones[i].empty()
                                    ? expresiones[i]
                                    : formula::columnaSql(columnas[i], dialecto));
        if (alias) s += " AS c" + std::to_string(i);
    }
    s += " FROM " + tablaSql(d.tablas[0].origen, dialecto) + " AS " +
         formula::identificadorSql(d.tablas[0].nombre, dialecto);
    for (std::size_t i = 1; i < d.tablas.size(); ++i) {
        const Union* u = i - 1 < d.uniones.size() ? &d.uniones[i - 1] : nullptr;
        if (u == nullptr || u->campos.empty()) {
            s += " CROSS JOIN ";
        } else {
            s += u->izquierda ? " LEFT JOIN " : " INNER JOIN ";
        }
        s += tablaSql(d.tablas[i].origen, dialecto) + " AS " +
             formula::identificadorSql(d.tablas[i].nombre, dialecto);
        if (u != nullptr && !u->campos.empty()) {
            s += " ON ";
            for (std::size_t k = 0; k < u->campos.size(); ++k)
                s += (k ? " AND " : "") + formula::columnaSql(u->campos[k].first, dialecto) +
                     " = " + formula::columnaSql(u->campos[k].second, dialecto);
        }
    }
    return s;
}

std::string minusculasSql(std::string_view s) {
    return minusculas(s);
}

void revisarNombres(
    const DescripcionConsulta& d, const std::vector<formula::RefCampo>& columnas,
    const std::function<std::optional<std::set<std::string>>(const TablaConsulta&)>& columnasDe) {
    std::vector<std::optional<std::set<std::string>>> tablas;
    for (const auto& t : d.tablas) {
        tablas.push_back(columnasDe(t));
        if (!tablas.back()) throw ErrorNombre(t.nombre, "", t.origen);
    }
    auto revisa = [&](const formula::RefCampo& c) {
        for (std::size_t i = 0; i < d.tablas.size(); ++i) {
            if (!mismoNombre(d.tablas[i].nombre, c.tabla)) continue;
            if (!tablas[i]->count(minusculas(c.campo)))
                throw ErrorNombre(d.tablas[i].nombre, c.campo, d.tablas[i].origen);
            return;
        }
    };
    for (const auto& c : columnas) revisa(c);
    for (const auto& u : d.uniones)
        for (const auto& [a, b] : u.campos) {
            revisa(a);
            revisa(b);
        }
}

}  // namespace detail

Filas::Filas(const DescripcionConsulta& d, const Opciones& o) : opciones_(o) {
    seleccion_ = formula::analizar(d.seleccion);
    for (const auto& s : d.orden)
        if (!recortar(s).empty()) orden_.push_back(formula::analizarCampoOrden(s));
    columnas_ = d.columnas;
    for (const auto& c : orden_) detail::agregarColumna(columnas_, c.campo);
    for (const auto& c : seleccion_.campos()) detail::agregarColumna(columnas_, c);
}

int Filas::indice(std::string_view tabla, std::string_view campo) const {
    for (std::size_t i = 0; i < columnas_.size(); ++i)
        if (detail::mismoNombre(columnas_[i].tabla, tabla) &&
            detail::mismoNombre(columnas_[i].campo, campo))
            return static_cast<int>(i);
    return -1;
}

Valor Filas::campo(std::string_view tabla, std::string_view campo) const {
    const int i = indice(tabla, campo);
    if (i < 0 || static_cast<std::size_t>(i) >= fila_.size())
        throw ErrorValor("el campo {" + std::string(tabla) + "." + std::string(campo) +
                         "} no está en la consulta del reporte");
    return fila_[i];
}

Valor Filas::formula(std::string_view nombre) const {
    return opciones_.contexto ? opciones_.contexto->formula(nombre) : Contexto::formula(nombre);
}

Valor Filas::parametro(std::string_view nombre) const {
    return opciones_.contexto ? opciones_.contexto->parametro(nombre) : Contexto::parametro(nombre);
}

Valor Filas::resumen(const formula::RefResumen& r) const {
    return opciones_.contexto ? opciones_.contexto->resumen(r) : Contexto::resumen(r);
}

std::vector<std::string> Filas::seleccionEnMemoria() const {
    std::vector<std::string> r;
    for (const auto* n : resto_) r.push_back(formula::aTexto(*n));
    return r;
}

bool Filas::pasaResto() {
    for (const auto* n : resto_)
        if (!formula::seleccionar(*n, *this)) return false;
    return true;
}

void Filas::registrarSql(const std::string& sql) {
    sql_.push_back(sql);
    const char* dbg = std::getenv("TZOREP_DEBUG_SQL");
    if (dbg != nullptr && std::string_view(dbg) == "1") std::cerr << "SQL: " << sql << "\n";
}

}  // namespace paratzorep::renderer::data
