#include "data/MensajesCliente.h"

#include <string_view>

namespace paratzorep::data {

namespace detail {

// What a client message quotes: the host or socket ("'127.0.0.1'") and the system's error
// number at its end ("(111)"); each empty when the message has none.
struct Citas {
    std::string donde;
    std::string numero;
};

Citas Cita(std::string_view texto) {
    Citas c;
    // The last quoted part: "Can't" has a quote of its own before it.
    const auto cierra = texto.rfind('\'');
    const auto abre = cierra == std::string_view::npos || cierra == 0
                          ? std::string_view::npos
                          : texto.rfind('\'', cierra - 1);
    if (abre != std::string_view::npos) c.donde = texto.substr(abre, cierra - abre + 1);
    const auto parentesis = texto.rfind('(');
    if (parentesis != std::string_view::npos && !texto.empty() && texto.back() == ')' &&
        (abre == std::string_view::npos || parentesis > cierra))
        c.numero = texto.substr(parentesis);
    return c;
}

}  // namespace detail

std::string MensajeMaria(unsigned codigo, const std::string& texto) {
    if (codigo < 2000 || codigo > 2999) return texto;
    // The ODBC driver puts its name in front: "[ma-3.1.15]Can't connect ...".
    std::string prefijo;
    std::string_view resto = texto;
    while (!resto.empty() && resto.front() == '[') {
        const auto fin = resto.find(']');
        if (fin == std::string_view::npos) break;
        prefijo += resto.substr(0, fin + 1);
        resto.remove_prefix(fin + 1);
    }
    const detail::Citas c = detail::Cita(resto);
    const std::string donde = c.donde.empty() ? "" : " " + c.donde;
    const std::string numero = c.numero.empty() ? "" : " " + c.numero;
    std::string es;
    switch (codigo) {
        case 2001:  // CR_SOCKET_CREATE_ERROR
        case 2002:  // CR_CONNECTION_ERROR
        case 2003:  // CR_CONN_HOST_ERROR
        case 2004:  // CR_IPSOCK_ERROR
            es = "No se pudo conectar con el servidor" + (c.donde.empty() ? "" : " en" + donde) +
                 numero + ": no está en marcha o no escucha en esa dirección";
            break;
        case 2005:  // CR_UNKNOWN_HOST
            es = "No se encontró el servidor" + donde + numero + ": el nombre no se resuelve";
            break;
        case 2006:  // CR_SERVER_GONE_ERROR
            es = "El servidor cerró la conexión (se detuvo o la dio por inactiva)";
            break;
        case 2008:  // CR_OUT_OF_MEMORY
            es = "El cliente de MariaDB se quedó sin memoria";
            break;
        case 2012:  // CR_SERVER_HANDSHAKE_ERR
            es = "El servidor no completó el inicio de la conexión";
            break;
        case 2013:  // CR_SERVER_LOST
            es = "Se perdió la conexión con el servidor durante la consulta";
            break;
        case 2026:  // CR_SSL_CONNECTION_ERROR
            es = "No se pudo establecer la conexión cifrada (SSL) con el servidor";
            break;
        default:
            es = "Error " + std::to_string(codigo) +
                 " del cliente de MariaDB: " + std::string(resto);
    }
    return prefijo + es;
}

}  // namespace paratzorep::data
