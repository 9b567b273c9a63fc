// The helper library's smaller objects: "kvtz5.BasesDD", "kvtz5.DeControles",
// "kvtz5.DeAyudaP0" and "kvtz5.ConcentradorRutinas".
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "toolkit/Fabrica.h"

namespace paratzorep::toolkit {

// "kvtz5.BasesDD": database and table names.
class BasesDD : public ObjetoKv {
  public:
    std::string Clase() const override { return "BasesDD"; }

    // A table name qualified with its database ("base.tabla"); a name that already has a "."
    // or an empty database is returned as it is.
    std::string Califica(const std::string& tabla, const std::string& base) const;
    // Whether a name is a plain SQL identifier (letters, digits, "_", "$"), safe to splice.
    bool NombreValido(const std::string& nombre) const;
};

// "kvtz5.DeControles": list and combo helpers.
class DeControles : public ObjetoKv {
  public:
    std::string Clase() const override { return "DeControles"; }

    // Index of the item whose text equals `texto` (ignoring case and end blanks); -1 if none.
    std::int16_t BuscaEnLista(const std::vector<std::string>& items,
                              const std::string& texto) const;
};

// "kvtz5.DeAyudaP0": search dialogs (customers, suppliers, sellers, products).
class DeAyudaP0 : public ObjetoKv {
  public:
    std::string Clase() const override { return "DeAyudaP0"; }

    // File in which search windows keep their coordinates.
    std::string ArchivoCoordenadas;
    // The WHERE condition that a search by name uses: each word of `texto` must appear in
    // `campo` ("campo LIKE '%w1%' AND campo LIKE '%w2%'"); "" for a blank text.
    std::string CondicionBusqueda(const std::string& campo, const std::string& texto) const;
};

// "kvtz5.ConcentradorRutinas": installation-wide routines.
class ConcentradorRutinas : public ObjetoKv {
  public:
    std::string Clase() const override { return "ConcentradorRutinas"; }

    // Whether `plugin` is in the installation's list of plug-ins (items separated by ",", ";"
    // or "|", compared without regard to case).
    bool PluginCorrecto(const std::string& lista, const std::string& plugin) const;
};

}  // namespace paratzorep::toolkit
