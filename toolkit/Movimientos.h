// "kvtz5.Movimientos": document numbering.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "host/BaseDD.h"
#include "toolkit/Fabrica.h"

namespace paratzorep::toolkit {

class Movimientos : public ObjetoKv {
  public:
    std::string Clase() const override { return "Movimientos"; }

    // The data-access object that runs the queries.
    std::shared_ptr<host::BaseDD> BaseDD;

    // The next folio of a series: the greatest `campoFolio` of `tabla` (rows of `serie` when
    // `campoSerie` is given) plus one; 1 for an empty series. Throws host::ErrorDatos.
    std::int64_t Foliar(const host::Conexion& cn, const std::string& tabla,
                        const std::string& campoFolio = "Folio", const std::string& serie = "",
                        const std::string& campoSerie = "Serie") const;
};

}  // namespace paratzorep::toolkit
