// Test helpers for the writers: a temporary folder and the independent readers
// (lector.py, unrtf, pdftotext ...) run as child processes.
#pragma once

#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <sstream>
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

}  // namespace paratzorep::renderer::prueba
