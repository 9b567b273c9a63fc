#include "data/BaseDDMaria.h"

#include <algorithm>

#include "data/ConexionInterna.h"
#include "data/ConexionLocal.h"
#include "data/ConexionMaria.h"

namespace paratzorep::data {

namespace detail {

// A name from the caller goes into SQL quoted, unless the caller quoted or qualified it with
// an expression already.
std::string NombreSql(const ConexionInterna& c, const std::string& nombre) {
    if (nombre.find_first_of("`\"( ") != std::string::npos) return nombre;
    return c.Identificador(nombre);
}

std::string SinCalificar(const std::string& tabla) {
    auto punto = tabla.rfind('.');
    return punto == std::string::npos ? tabla : tabla.substr(punto + 1);
}

std::string Une(const std::vector<std::string>& partes, const std::string& separador) {
    std::string r;
    for (std::size_t i = 0; i < partes.size(); ++i) {
        if (i) r += separador;
        r += partes[i];
    }
    return r;
}

bool ContieneSinMayusculas(const std::string& texto, const std::string& buscado) {
    return Minusculas(texto).find(Minusculas(buscado)) != std::string::npos;
}

}  // namespace detail

using detail::Interna;

BaseDDMaria::BaseDDMaria() {
    cRuta = "127.0.0.1";
}

bool BaseDDMaria::AbrirBdD(host::Conexion& cn, const std::string& base, bool /*bandera*/) {
    DatosConexion datos;
    datos.servidor = cRuta;
    datos.usuario = cUsuario;
    datos.password = cPassword;
    datos.puerto = cPuerto;
    datos.base = base.empty() ? std::string(host::kBaseGeneral) : base;
    try {
        cn = std::make_shared<ConexionMaria>(std::move(datos));
        Anota(nullptr);
        return true;
    } catch (const std::exception& e) {
        Anota(&e);
        cn.reset();
        return false;
    }
}

void BaseDDMaria::Anota(const std::exception* e) {
    ultimoError_ = e ? e->what() : "";
    const auto* d = dynamic_cast<const host::ErrorDatos*>(e);
    ultimoCodigo_ = d ? d->Codigo() : 0;
}

void BaseDDMaria::CierraBdD(host::Conexion& cn) {
    if (auto* c = dynamic_cast<detail::ConexionInterna*>(cn.get())) c->Cierra();
    cn.reset();
}

bool BaseDDMaria::AbrirTabla(host::Recordset& rs, const host::Conexion& cn,
                             const std::string& fuente, std::int32_t /*opcion*/, bool /*bandera*/) {
    try {
        const std::string accion = "Abrir '" + fuente + "'";
        auto& c = Interna(cn, accion);
        auto r = c.Consulta(detail::SqlDeFuente(fuente), accion);
        std::string tabla =
            detail::EsTextoSql(fuente) ? r.tablaUnica : detail::TablaDeFuente(fuente);
        rs.Abre(std::move(r.columnas), std::move(r.filas), fuente, std::move(tabla), cn);
        Anota(nullptr);
        return true;
    } catch (const std::exception& e) {
        Anota(&e);
        rs.Cierra();
        return false;
    }
}

void BaseDDMaria::CierraTabla(host::Recordset& rs) {
    rs.Cierra();
}

void BaseDDMaria::DesactivaConexion(host::Recordset& rs) {
    rs.Desconecta();
}

std::int64_t BaseDDMaria::Executar(const host::Conexion& cn, const std::string& sql) {
    return Interna(cn, "Ejecutar").Ejecuta(sql, "Ejecutar");
}

bool BaseDDMaria::RstExecutar(host::Recordset& rs, const host::Conexion& cn,
                              const std::string& sql) {
    auto& c = Interna(cn, "Consultar");
    auto r = c.Consulta(sql, "Consultar");
    rs.Abre(std::move(r.columnas), std::move(r.filas), sql, std::move(r.tablaUnica), cn);
    return true;
}

bool BaseDDMaria::HayTabla(const host::Conexion& cn, const std::string& tabla) {
    return Interna(cn, "Buscar la tabla '" + tabla + "'").ExisteTabla(tabla);
}

std::int32_t BaseDDMaria::LastRec(const host::Conexion& cn, const std::string& fuente) {
    const std::string accion = "Contar los registros de '" + fuente + "'";
    auto& c = Interna(cn, accion);
    const std::string sql = detail::SqlDeFuente(fuente);
    const std::string palabra = detail::Minusculas(detail::Recorta(sql).substr(0, 4));
    if (palabra == "sele" || palabra == "with" || palabra.front() == '(') {
        try {
            auto r = c.Consulta("SELECT COUNT(*) FROM (" + sql + ") AS tz_cuenta", accion);
            return r.filas.empty() ? 0 : static_cast<std::int32_t>(r.filas[0][0].Entero());
        } catch (const host::ErrorDatos&) {
            // Not countable as a derived table (duplicate column names of a join): count rows.
        }
    }
    return static_cast<std::int32_t>(c.Consulta(sql, accion).filas.size());
}

std::int64_t BaseDDMaria::LastId(const host::Conexion& cn) {
    return Interna(cn, "Leer el último Id").UltimoId();
}

double BaseDDMaria::Sum(const host::Conexion& cn, const std::string& columna,
                        const std::string& fuente) {
    const std::string accion = "Sumar " + columna + " de '" + fuente + "'";
    auto& c = Interna(cn, accion);
    std::string sql;
    if (!detail::EsTextoSql(fuente) && !detail::ContieneSinMayusculas(fuente, " limit ")) {
        sql = "SELECT SUM(" + columna + ") FROM " + detail::Recorta(fuente);
    } else {
        sql = "SELECT SUM(" + detail::SinCalificar(columna) + ") FROM (" +
              detail::SqlDeFuente(fuente) + ") AS tz_suma";
    }
    auto r = c.Consulta(sql, accion);
    return r.filas.empty() ? 0.0 : r.filas[0][0].Doble();
}

void BaseDDMaria::AddNuevo(host::Recordset& rs) {
    rs.AddNew();
}

void BaseDDMaria::RstUpdate(host::Recordset& rs) {
    auto pendientes = rs.FilasPendientes();
    if (pendientes.empty()) return;
    const std::string accion = "Guardar los cambios de '" + rs.Fuente() + "'";
    auto cn = rs.Conexion();
    if (!cn) throw host::ErrorDatos(accion, "", 0, "el recordset está desconectado");
    auto& c = Interna(cn, accion);
    const std::string base = rs.TablaBase();
    if (base.empty())
        throw host::ErrorDatos(accion, "", 0, "el recordset no viene de una sola tabla");
    const std::string sinCalificar = detail::SinCalificar(base);
    const auto& columnas = rs.Columnas();
    std::vector<std::size_t> propias;
    for (std::size_t i = 0; i < columnas.size(); ++i) {
        if (detail::IgualSinMayusculas(columnas[i].tabla, sinCalificar)) propias.push_back(i);
    }
    if (propias.empty())
        throw host::ErrorDatos(accion, "", 0, "ningún campo pertenece a la tabla '" + base + "'");
    const std::string tabla = c.Identificador(base);

    for (std::int32_t fila : pendientes) {
        const auto& valores = rs.Fila(fila);
        if (rs.Estado(fila) == host::Recordset::EstadoFila::Nueva) {
            std::vector<std::string> nombres;
            std::vector<host::Valor> datos;
            bool faltaAutonumerico = false;
            for (std::size_t i : propias) {
                if (valores[i].EsNulo()) {
                    faltaAutonumerico |= columnas[i].autoIncremento;
                    continue;  // left to the column's default
                }
                nombres.push_back(c.Identificador(columnas[i].nombre));
                datos.push_back(valores[i]);
            }
            std::string sql;
            if (nombres.empty()) {
                sql = c.InsertSinColumnas(base);
            } else {
                sql = "INSERT INTO " + tabla + " (" + detail::Une(nombres, ",") + ") VALUES (" +
                      detail::Une(std::vector<std::string>(nombres.size(), "?"), ",") + ")";
            }
            c.EjecutaConValores(sql, datos, accion);
            std::optional<host::Valor> generado;
            if (faltaAutonumerico) generado = host::Valor(c.UltimoId());
            rs.MarcaGuardada(fila, generado);
            continue;
        }
        const auto& originales = rs.Original(fila);
        std::vector<std::string> asignaciones;
        std::vector<host::Valor> datos;
        for (std::size_t i : propias) {
            if (valores[i] == originales[i]) continue;
            asignaciones.push_back(c.Identificador(columnas[i].nombre) + "=?");
            datos.push_back(valores[i]);
        }
        if (asignaciones.empty()) {
            rs.MarcaGuardada(fila);
            continue;
        }
        // The row is found by its primary key as read; without a key, by all its values.
        std::vector<std::size_t> llave;
        for (std::size_t i : propias) {
            if (columnas[i].esClave) llave.push_back(i);
        }
        if (llave.empty()) llave = propias;
        std::vector<std::string> condiciones;
        for (std::size_t i : llave) {
            condiciones.push_back(c.IgualQueValor(columnas[i].nombre));
            datos.push_back(originales[i]);
        }
        const std::string sql = c.UpdateDeUnaFila(base, detail::Une(asignaciones, ","),
                                                  detail::Une(condiciones, " AND "));
        if (c.EjecutaConValores(sql, datos, accion) == 0)
            throw host::ErrorDatos(accion, sql, 0, "el registro ya no existe en la tabla");
        rs.MarcaGuardada(fila);
    }
}

void BaseDDMaria::AgregaRegistro(const host::Conexion& cn, const std::string& tabla,
                                 const std::vector<std::string>& campos,
                                 const std::vector<host::Valor>& valores) {
    const std::string accion = "Agregar un registro a '" + tabla + "'";
    auto& c = Interna(cn, accion);
    if (campos.size() != valores.size() || campos.empty()) {
        throw host::ErrorDatos(accion, "", 0,
                               std::to_string(campos.size()) + " campos y " +
                                   std::to_string(valores.size()) + " valores no corresponden");
    }
    std::vector<std::string> nombres;
    for (const auto& campo : campos)
        nombres.push_back(detail::NombreSql(c, detail::Recorta(campo)));
    const std::string sql = "INSERT INTO " + detail::NombreSql(c, tabla) + " (" +
                            detail::Une(nombres, ",") + ") VALUES (" +
                            detail::Une(std::vector<std::string>(nombres.size(), "?"), ",") + ")";
    c.EjecutaConValores(sql, valores, accion);
}

std::int64_t BaseDDMaria::ActualizaRegistro(const host::Conexion& cn, const std::string& tabla,
                                            const std::string& condicion,
                                            const std::vector<std::string>& campos,
                                            const std::vector<host::Valor>& valores) {
    const std::string accion = "Actualizar '" + tabla + "'";
    auto& c = Interna(cn, accion);
    if (campos.size() != valores.size() || campos.empty()) {
        throw host::ErrorDatos(accion, "", 0,
                               std::to_string(campos.size()) + " campos y " +
                                   std::to_string(valores.size()) + " valores no corresponden");
    }
    std::vector<std::string> asignaciones;
    for (const auto& campo : campos)
        asignaciones.push_back(detail::NombreSql(c, detail::Recorta(campo)) + "=?");
    std::string cond = detail::Recorta(condicion);
    if (detail::Minusculas(cond.substr(0, 6)) == "where ") cond = detail::Recorta(cond.substr(6));
    std::string sql =
        "UPDATE " + detail::NombreSql(c, tabla) + " SET " + detail::Une(asignaciones, ",");
    if (!cond.empty()) sql += " WHERE " + cond;
    return c.EjecutaConValores(sql, valores, accion);
}

void BaseDDMaria::PasaCampo(host::Recordset& destino, const host::Recordset& origen,
                            const std::string& campo, const std::string& campoDestino) {
    destino.Asigna(campoDestino.empty() ? campo : campoDestino, origen.Campo(campo));
}

void BaseDDMaria::CopiaRecordset(host::Recordset& destino, const host::Recordset& origen,
                                 const std::vector<std::string>& excepto) {
    if (origen.Eof() || origen.Bof())
        throw host::ErrorRecordset("No hay registro actual que copiar de '" + origen.Fuente() +
                                   "'");
    destino.AddNew();
    for (const auto& col : destino.Columnas()) {
        bool excluido = std::any_of(excepto.begin(), excepto.end(), [&](const std::string& e) {
            return detail::IgualSinMayusculas(e, col.nombre);
        });
        if (!excluido && origen.TieneCampo(col.nombre))
            destino.Asigna(col.nombre, origen.Campo(col.nombre));
    }
}

bool BaseDDMaria::AbrirDataSource(host::Recordset& rs, const host::Conexion& cn,
                                  const std::string& fuente, const std::string& columnas) {
    try {
        const std::string accion = "Abrir la lista '" + fuente + "'";
        auto& c = Interna(cn, accion);
        auto r = c.Consulta(detail::SqlDeFuente(fuente, columnas.empty() ? "*" : columnas), accion);
        rs.Abre(std::move(r.columnas), std::move(r.filas), fuente, "", {});
        ultimoError_.clear();
        return true;
    } catch (const std::exception& e) {
        ultimoError_ = e.what();
        rs.Cierra();
        return false;
    }
}

bool BaseDDMaria::AbreBdDAccess(host::Conexion& cn, const std::string& archivo) {
    try {
        cn = std::make_shared<ConexionLocal>(archivo);
        ultimoError_.clear();
        return true;
    } catch (const std::exception& e) {
        ultimoError_ = e.what();
        cn.reset();
        return false;
    }
}

void BaseDDMaria::PasaGeneralesAlRpt(
    const host::Conexion& cnLocal,
    const std::vector<std::pair<std::string, host::Valor>>& valores) {
    const std::string accion = "Pasar los valores generales al reporte";
    auto& c = Interna(cnLocal, accion);
    std::vector<std::string> nombres;
    std::vector<host::Valor> datos;
    auto* local = dynamic_cast<ConexionLocal*>(&c);
    std::vector<std::string> existentes;
    if (local != nullptr) existentes = local->ColumnasDe("Generales");
    for (const auto& [nombre, valor] : valores) {
        bool existe = std::any_of(existentes.begin(), existentes.end(), [&](const std::string& e) {
            return detail::IgualSinMayusculas(e, nombre);
        });
        if (local != nullptr && !existe) {
            c.Ejecuta("ALTER TABLE Generales ADD COLUMN " + c.Identificador(nombre) + " TEXT",
                      accion);
            existentes.push_back(nombre);
        }
        nombres.push_back(c.Identificador(nombre));
        datos.push_back(valor);
    }
    c.Ejecuta("DELETE FROM Generales", accion);
    if (nombres.empty()) return;
    c.EjecutaConValores("INSERT INTO Generales (" + detail::Une(nombres, ",") + ") VALUES (" +
                            detail::Une(std::vector<std::string>(nombres.size(), "?"), ",") + ")",
                        datos, accion);
}

}  // namespace paratzorep::data
