#include "toolkit/CamposBin.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "toolkit/DeArchivos.h"
#include "toolkit/Ini.h"
#include "toolkit/Texto.h"

namespace paratzorep::toolkit {

namespace {

constexpr char kHex[] = "0123456789ABCDEF";

std::string AHex(std::string_view bytes) {
    std::string r;
    r.reserve(bytes.size() * 2);
    for (unsigned char c : bytes) {
        r += kHex[c >> 4];
        r += kHex[c & 15];
    }
    return r;
}

int ValorHex(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

std::string DeHex(const std::string& hex) {
    std::string r;
    r.reserve(hex.size() / 2);
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
        int a = ValorHex(hex[i]), b = ValorHex(hex[i + 1]);
        if (a < 0 || b < 0) throw std::runtime_error("Contenido binario dañado");
        r += static_cast<char>(a * 16 + b);
    }
    return r;
}

}  // namespace

void CamposBin::Exige(const char* accion) const {
    if (!BaseDD || !Conexion) {
        throw std::runtime_error(std::string(accion) + ": no hay conexión a la base de datos");
    }
}

std::string CamposBin::ExtraeRPT(const std::string& archivo, const std::string& carpeta) const {
    Exige("Extraer plantilla");
    DeArchivos da;
    const std::string nombre = da.NombreDeArchivo(archivo);
    const std::string sql = "SELECT HEX(" + CampoTexto + ") AS H FROM " + cTablaRpts + " WHERE " +
                            CampoLlave + "='" + detail::EscapaSQL(nombre) + "' ORDER BY " +
                            CampoNumero;
    host::Recordset rs;
    if (!BaseDD->RstExecutar(rs, Conexion, sql)) {
        throw host::ErrorDatos("Extraer " + nombre + " de " + cTablaRpts, sql, 0,
                               BaseDD->UltimoError());
    }
    if (rs.RecordCount() == 0) {
        throw std::runtime_error("El archivo " + nombre + " no está guardado en " + cTablaRpts);
    }
    std::string contenido;
    for (rs.MoveFirst(); !rs.Eof(); rs.MoveNext()) contenido += DeHex(rs.Campo("H").Texto());

    std::string destino = RutaNativa(carpeta);
    if (destino.empty()) destino = RutaNativa(cRutaPrograma);
    if (!destino.empty() && destino.back() != '/') destino += '/';
    if (!destino.empty()) da.CreaRuta(destino);
    const std::string ruta = destino + nombre;
    detail::EscribeAtomico(ruta, contenido);
    return ruta;
}

int CamposBin::Guarda(const std::string& ruta, const std::string& archivo) const {
    Exige("Guardar archivo");
    std::ifstream in(RutaNativa(ruta), std::ios::binary);
    if (!in) throw std::runtime_error("No se pudo leer el archivo " + ruta);
    std::string contenido((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    const std::string nombre = DeArchivos().NombreDeArchivo(archivo.empty() ? ruta : archivo);
    const std::string llave = "'" + detail::EscapaSQL(nombre) + "'";
    const std::size_t tam = TamanoPieza == 0 ? 60000 : TamanoPieza;

    BaseDD->Executar(Conexion, "START TRANSACTION");
    int piezas = 0;
    try {
        BaseDD->Executar(Conexion,
                         "DELETE FROM " + cTablaRpts + " WHERE " + CampoLlave + "=" + llave);
        std::size_t pos = 0;
        do {
            std::string_view pieza = std::string_view(contenido).substr(pos, tam);
            ++piezas;
            BaseDD->Executar(
                Conexion, "INSERT INTO " + cTablaRpts + " (" + CampoLlave + "," + CampoNumero +
                              "," + CampoTexto + ") VALUES (" + llave + "," +
                              std::to_string(piezas) + "," +
                              (pieza.empty() ? std::string("''") : "X'" + AHex(pieza) + "'") + ")");
            pos += tam;
        } while (pos < contenido.size());
        BaseDD->Executar(Conexion, "COMMIT");
    } catch (...) {
        try {
            BaseDD->Executar(Conexion, "ROLLBACK");
        } catch (...) {
            // The connection is gone; the server rolls back on its own.
        }
        throw;
    }
    return piezas;
}

bool CamposBin::BLOBextraer(const std::string& fuente, const std::string& campo,
                            const std::string& archivo) const {
    Exige("Extraer imagen");
    const std::string sql = "SELECT HEX(" + campo + ") AS H FROM " + fuente;
    host::Recordset rs;
    if (!BaseDD->RstExecutar(rs, Conexion, sql)) {
        throw host::ErrorDatos("Extraer " + campo, sql, 0, BaseDD->UltimoError());
    }
    if (rs.RecordCount() == 0) return false;
    rs.MoveFirst();
    if (rs.Campo("H").EsNulo()) return false;
    const std::string ruta = RutaNativa(archivo);
    if (const std::string carpeta = DeArchivos().CarpetaDeArchivo(ruta); !carpeta.empty()) {
        DeArchivos().CreaRuta(carpeta);
    }
    detail::EscribeAtomico(ruta, DeHex(rs.Campo("H").Texto()));
    return true;
}

bool CamposBin::Existe(const std::string& archivo) const {
    Exige("Buscar archivo");
    const std::string nombre = DeArchivos().NombreDeArchivo(archivo);
    return BaseDD->LastRec(Conexion, cTablaRpts + " WHERE " + CampoLlave + "='" +
                                         detail::EscapaSQL(nombre) + "'") > 0;
}

}  // namespace paratzorep::toolkit
