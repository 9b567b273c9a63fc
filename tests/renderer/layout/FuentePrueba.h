// Rows in memory for layout tests: columns by "tabla.campo" name, formulas and parameters
// as fixed values.
#pragma once

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "renderer/layout/Maquetador.h"

namespace paratzorep::renderer::prueba {

class FuentePrueba : public FuenteFilas {
  public:
    FuentePrueba(std::vector<std::string> columnas, std::vector<std::vector<Valor>> filas,
                 std::map<std::string, Valor> fijos = {})
        : columnas_(std::move(columnas)), filas_(std::move(filas)), fijos_(std::move(fijos)) {}

    void Prepara(const std::vector<Referencia>& refs) override {
        mapa_.clear();
        for (const auto& r : refs) {
            int col = -1;
            for (std::size_t i = 0; i < columnas_.size(); ++i)
                if (columnas_[i] == r.nombre) col = static_cast<int>(i);
            if (col < 0 && !fijos_.count(r.nombre))
                throw std::runtime_error("referencia desconocida en la prueba: " + r.nombre);
            mapa_.push_back({col, r.nombre});
        }
    }
    bool Siguiente(std::vector<Valor>& v) override {
        if (pos_ >= filas_.size()) return false;
        Llena(&filas_[pos_++], v);
        return true;
    }
    void SinFila(std::vector<Valor>& v) override { Llena(nullptr, v); }
    std::size_t Leidas() const { return pos_; }

  private:
    void Llena(const std::vector<Valor>* fila, std::vector<Valor>& v) {
        v.resize(mapa_.size());
        for (std::size_t i = 0; i < mapa_.size(); ++i) {
            auto [col, nombre] = mapa_[i];
            if (col >= 0)
                v[i] = fila ? (*fila)[static_cast<std::size_t>(col)] : Valor();
            else
                v[i] = fijos_.at(nombre);
        }
    }
    std::vector<std::string> columnas_;
    std::vector<std::vector<Valor>> filas_;
    std::map<std::string, Valor> fijos_;
    std::vector<std::pair<int, std::string>> mapa_;
    std::size_t pos_ = 0;
};

}  // namespace paratzorep::renderer::prueba
