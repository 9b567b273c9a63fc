// "kvtz5.BitacoraUsuarios": the user-activity log. The session sets Version and Usuario once;
// each logged action sets ID (the action's entry in estructurasm), Llave and Adicionales and
// calls Graba, which inserts one row into bitacorausuarios with its texts encoded.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "host/BaseDD.h"
#include "toolkit/Fabrica.h"

namespace paratzorep::toolkit {

class BitacoraUsuarios : public ObjetoKv {
  public:
    std::string Clase() const override { return "BitacoraUsuarios"; }

    std::string Version;      // version text of the host program
    std::string Usuario;      // login name of the current user
    std::string Llave;        // key of the record acted upon
    std::int32_t ID = 0;      // the action (estructurasm.Id), stored as Registro
    std::string Adicionales;  // further detail of the action
    std::string Accion;       // kind of action
    std::string Equipo;       // workstation name; "" means this machine's host name
    // The data-access object that writes the row.
    std::shared_ptr<host::BaseDD> BaseDD;

    // Inserts the action with today's server date and time; Usuario encoded with '418',
    // Llave and Adicionales with '184', Version and Equipo with '527'. Throws host::ErrorDatos.
    void Graba(const host::Conexion& cn) const;
    // The INSERT statement that Graba runs.
    std::string SentenciaGraba() const;
};

}  // namespace paratzorep::toolkit
