#include "data/ConexionInterna.h"

#include <cctype>

namespace paratzorep::data::detail {

ConexionInterna& Interna(const host::Conexion& cn, const std::string& accion) {
    auto* interna = dynamic_cast<ConexionInterna*>(cn.get());
    if (interna == nullptr || !interna->Abierta()) {
        throw host::ErrorDatos(accion, "", 0,
                               cn ? "la conexión está cerrada" : "no hay conexión abierta");
    }
    return *interna;
}

void ConexionInterna::Recorre(const std::string& sql, const std::string& accion,
                              const std::function<void(const FilaTexto&)>& fila) {
    const Resultado r = Consulta(sql, accion);
    FilaTexto textos;
    for (const auto& valores : r.filas) {
        textos.clear();
        for (const auto& v : valores)
            textos.push_back(v.EsNulo() ? std::nullopt
                                        : std::optional<std::string_view>(v.Texto()));
        fila(textos);
    }
}

bool IgualSinMayusculas(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (std::tolower(static_cast<unsigned char>(a[i])) !=
            std::tolower(static_cast<unsigned char>(b[i])))
            return false;
    }
    return true;
}

std::string Recorta(std::string_view s) {
    while (!s.empty() && std::isspace(static_cast<unsigned char>(s.front()))) s.remove_prefix(1);
    while (!s.empty() && std::isspace(static_cast<unsigned char>(s.back()))) s.remove_suffix(1);
    return std::string(s);
}

std::string Minusculas(std::string_view s) {
    std::string r(s);
    for (auto& c : r) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return r;
}

std::string ReemplazaTodo(std::string texto, std::string_view buscado, std::string_view nuevo) {
    if (buscado.empty()) return texto;
    std::size_t pos = 0;
    while ((pos = texto.find(buscado, pos)) != std::string::npos) {
        texto.replace(pos, buscado.size(), nuevo);
        pos += nuevo.size();
    }
    return texto;
}

namespace {

std::string PrimeraPalabra(std::string_view s) {
    std::string r = Recorta(s);
    std::size_t fin = 0;
    while (fin < r.size() && !std::isspace(static_cast<unsigned char>(r[fin])) && r[fin] != '(')
        ++fin;
    return r.substr(0, fin);
}

}  // namespace

bool EsTextoSql(std::string_view fuente) {
    std::string r = Recorta(fuente);
    if (!r.empty() && r.front() == '(') return true;
    std::string p = Minusculas(PrimeraPalabra(r));
    return p == "select" || p == "show" || p == "with" || p == "describe" || p == "desc" ||
           p == "explain" || p == "pragma" || p == "values";
}

std::string TablaDeFuente(std::string_view fuente) {
    if (EsTextoSql(fuente)) return {};
    // The bare name: quotes around the name or its parts are the caller's, not the name's.
    std::string nombre;
    for (char c : PrimeraPalabra(fuente)) {
        if (c != '`' && c != '"') nombre += c;
    }
    return nombre;
}

std::string SqlDeFuente(std::string_view fuente, std::string_view columnas) {
    if (EsTextoSql(fuente)) return std::string(fuente);
    return "SELECT " + std::string(columnas) + " FROM " + Recorta(fuente);
}

}  // namespace paratzorep::data::detail
