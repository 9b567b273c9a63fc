// A formula context over one row held in a map, for the tests.
#pragma once

#include <cctype>
#include <map>
#include <string>

#include "renderer/formula/Evaluador.h"

namespace paratzorep::renderer::formula::prueba {

class ContextoFila : public Contexto {
  public:
    std::map<std::string, Valor> campos;     // "tabla.campo" in lower case
    std::map<std::string, Valor> formulas_;  // by name
    std::map<std::string, Valor> parametros_;
    Valor valorResumen;
    mutable std::vector<RefResumen> pedidos;

    static std::string clave(std::string_view t, std::string_view c) {
        std::string k = std::string(t) + "." + std::string(c);
        for (auto& ch : k) ch = static_cast<char>(std::tolower(static_cast<unsigned char>(ch)));
        return k;
    }
    ContextoFila& con(std::string_view t, std::string_view c, Valor v) {
        campos[clave(t, c)] = std::move(v);
        return *this;
    }
    Valor campo(std::string_view t, std::string_view c) const override {
        auto it = campos.find(clave(t, c));
        if (it == campos.end()) throw ErrorValor("campo desconocido " + clave(t, c));
        return it->second;
    }
    Valor formula(std::string_view n) const override {
        auto it = formulas_.find(std::string(n));
        return it == formulas_.end() ? Contexto::formula(n) : it->second;
    }
    Valor parametro(std::string_view n) const override {
        auto it = parametros_.find(std::string(n));
        return it == parametros_.end() ? Contexto::parametro(n) : it->second;
    }
    Valor resumen(const RefResumen& r) const override {
        pedidos.push_back(r);
        return valorResumen;
    }
    Fecha fechaActual() const override { return Fecha{2024, 3, 5}; }
};

}  // namespace paratzorep::renderer::formula::prueba
