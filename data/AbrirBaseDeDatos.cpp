#include "data/AbrirBaseDeDatos.h"

#include "data/ConexionInterna.h"
#include "host/Interaccion.h"
#include "session/Sesion.h"
#include "session/SuModulo.h"

namespace paratzorep::data {

std::string MensajeServidorRemoto(const std::string& servidorRemoto,
                                  const std::string& baseIntentada,
                                  const std::string& servidorOriginal,
                                  const std::string& baseSolicitada) {
    const std::string salto = "\r\n";
    return "El programa trató de conectar al servidor '" + servidorRemoto +
           "' y a la base de datos '" + baseIntentada + "' sin conseguirlo." + salto + salto +
           "Temporalmente se usarán los valores originales: servidor '" + servidorOriginal +
           "' y la base de datos '" + baseSolicitada + "'" + salto + salto +
           "Puede modificar los datos de conexión en el Catálogo de Empresas," +
           " o intente resolver el problema con el servidor remoto.";
}

bool AbrirBaseDeDatos(host::BaseDD& base, host::DatosConecte& datos, host::Conexion& cn,
                      const std::string& nombre, const std::string& alterno, bool bandera) {
    const std::string normalizado = detail::Minusculas(detail::Recorta(nombre));
    if (normalizado.empty() || normalizado == host::kBaseGeneral)
        return base.AbrirBdD(cn, "", bandera);

    std::string aAbrir = normalizado;
    // The object's own server values, put back after every open.
    const std::string rutaOriginal = base.cRuta;
    const std::string passwordOriginal = base.cPassword;
    const std::string usuarioOriginal = base.cUsuario;
    const std::int32_t puertoOriginal = base.cPuerto;
    if (!datos.xServidor.empty()) {
        base.cRuta = datos.xServidor;
        base.cPassword = datos.xPassWord;
        base.cUsuario = datos.xUsuario;
        base.cPuerto = datos.xPuerto;
        aAbrir = alterno.empty() ? datos.xBaseDD : alterno;
    }
    while (true) {
        bool abierta = false;
        try {
            abierta = base.AbrirBdD(cn, aAbrir, bandera);
        } catch (...) {
            // A host object that throws instead of answering false: put the values back first.
            if (!datos.xServidor.empty()) {
                base.cRuta = rutaOriginal;
                base.cPassword = passwordOriginal;
                base.cUsuario = usuarioOriginal;
                base.cPuerto = puertoOriginal;
            }
            throw;
        }
        if (datos.xServidor.empty()) return abierta;
        base.cRuta = rutaOriginal;
        base.cPassword = passwordOriginal;
        base.cUsuario = usuarioOriginal;
        base.cPuerto = puertoOriginal;
        if (abierta) return true;

        const std::string mensaje =
            MensajeServidorRemoto(datos.xServidor, aAbrir, rutaOriginal, nombre);
        aAbrir = base.cMiBase;
        datos.xBaseDD = nombre;
        // The remote server is not tried again in this session.
        datos.xServidor.clear();
        session::Mensaje(mensaje, "Atención", host::Icono::Critico);
    }
}

bool AbrirBaseDeDatos(host::Conexion& cn, const std::string& nombre, const std::string& alterno,
                      bool bandera) {
    auto& s = session::sesion();
    if (!s.BaseDD) return false;
    host::DatosConecte sinRemoto;  // no connection record: the object's own server
    return AbrirBaseDeDatos(*s.BaseDD, s.DatosConecte ? *s.DatosConecte : sinRemoto, cn, nombre,
                            alterno, bandera);
}

}  // namespace paratzorep::data
