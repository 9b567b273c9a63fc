// Test helpers for the writers: a temporary folder and the independent readers
// (lector.py, unrtf, pdftotext ...) run as child processes.
#pragma once

#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <ostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace paratzorep::renderer::prueba {

class CarpetaTemporal {
  public:
    CarpetaTemporal() {
        std::string plantilla =
            (std::filesystem::temp_directory_path() / "tz-escritores-XXXXXX").string();
        if (::mkdtemp(plantilla.data()) == nullptr) throw std::runtime_error("mkdtemp");
        ruta_ = plantilla;
    }
    ~CarpetaTemporal() {
        std::error_code ec;
        std::filesystem::remove_all(ruta_, ec);
    }
    const std::filesystem::path& ruta() const { return ruta_; }
    std::filesystem::path operator/(const std::string& nombre) const { return ruta_ / nombre; }

  private:
    std::filesystem::path ruta_;
};

struct Salida {
    int estado = -1;
    std::string texto;
};

inline Salida Ejecutar(const std::string& comando) {
    Salida s;
    std::unique_ptr<FILE, int (*)(FILE*)> p(::popen(comando.c_str(), "r"), ::pclose);
    if (!p) return s;
    char bloque[1 << 14];
    std::size_t n;
    while ((n = std::fread(bloque, 1, sizeof bloque, p.get())) > 0) s.texto.append(bloque, n);
    s.estado = ::pclose(p.release());
    return s;
}

inline std::string Comillas(const std::string& s) {
    std::string r = "'";
    for (char c : s) r += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return r + "'";
}

inline std::string Lector() {
    return std::string("/usr/bin/python3 ") + TZ_SOURCE_DIR + "/tests/renderer/writers/lector.py";
}

// Lines of a reader's output, each split at tabs (escapes \t, \n, \\ undone).
inline std::vector<std::vector<std::string>> Campos(const std::string& texto) {
    std::vector<std::vector<std::string>> filas;
    std::istringstream in(texto);
    std::string linea;
    while (std::getline(in, linea)) {
        std::vector<std::string> campos(1);
        for (std::size_t i = 0; i < linea.size(); ++i) {
            char c = linea[i];
            if (c == '\t') {
                campos.emplace_back();
            } else if (c == '\\' && i + 1 < linea.size()) {
                char e = linea[++i];
                campos.back() += e == 't' ? '\t' : e == 'n' ? '\n' : e == 'r' ? '\r' : e;
            } else {
                campos.back() += c;
            }
        }
        filas.push_back(std::move(campos));
    }
    return filas;
}

inline bool HayPrograma(const std::string& programa) {
    return Ejecutar("command -v " + programa + " >/dev/null 2>&1").estado == 0;
}

inline bool HayModuloPython(const std::string& modulo) {
    return Ejecutar("/usr/bin/python3 -c 'import " + modulo + "' 2>/dev/null").estado == 0;
}

// A workbook as lector.py reads it in its xls and xlsx modes.
struct CeldaLeida {
    std::string tipo, valor, formato;
    bool negrita = false;
    bool operator==(const CeldaLeida&) const = default;
};
inline void PrintTo(const CeldaLeida& c, std::ostream* os) {
    *os << c.tipo << " '" << c.valor << "' " << c.formato << (c.negrita ? " negrita" : "");
}
struct HojaLeida {
    std::string nombre;
    long filas = 0, columnas = 0;
    std::string anchos;
    // "frozen rows, fit width, fit height, paper, portrait" and "filter, print titles"
    // (xlsx: ranges; xls: the filter's column count), tab separated.
    std::string vista, filtro;
    std::map<std::pair<long, long>, CeldaLeida> celdas;
    const CeldaLeida& at(long fila, long columna) const { return celdas.at({fila, columna}); }
};
struct LibroLeido {
    std::vector<HojaLeida> hojas;
    std::vector<std::string> nombres;  // xls: defined names as "name<TAB>sheet<TAB>formula"
    std::string formulas;              // formulas in the sheets' XML (xlsx only)
};

// `maximo` limits the cells read per sheet to its first and last `maximo` rows.
inline LibroLeido LeerLibro(const std::string& modo, const std::filesystem::path& archivo,
                            int maximo = 0) {
    auto s = Ejecutar(Lector() + " " + modo + " " + Comillas(archivo.string()) +
                      (maximo ? " " + std::to_string(maximo) : "") + " 2>&1");
    if (s.estado != 0) throw std::runtime_error("lector.py " + modo + ": " + s.texto);
    LibroLeido libro;
    for (const auto& c : Campos(s.texto)) {
        if (c[0] == "HOJA")
            libro.hojas.push_back({c[1], std::stol(c[2]), std::stol(c[3]), c[4], {}, {}, {}});
        else if (c[0] == "CELDA")
            libro.hojas.back().celdas[{std::stol(c[1]), std::stol(c[2])}] = {c[3], c[4], c[5],
                                                                             c[6] == "1"};
        else if (c[0] == "FORMULAS")
            libro.formulas = c[1];
        else if (c[0] == "VISTA" || c[0] == "FILTRO") {
            std::string t;
            for (std::size_t i = 1; i < c.size(); ++i) t += (i > 1 ? "\t" : "") + c[i];
            (c[0] == "VISTA" ? libro.hojas.back().vista : libro.hojas.back().filtro) = t;
        } else if (c[0] == "NOMBRE")
            libro.nombres.push_back(c[1] + "\t" + c[2] + "\t" + c[3]);
    }
    return libro;
}

}  // namespace paratzorep::renderer::prueba
