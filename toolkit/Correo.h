// The helper library's mail sender: messages with one attached file over SMTP (libcurl), with
// the settings that the registry (kvtz5.ini, section [kvtz5]) keeps under the names beginning
// with "edc". A password is handed to libcurl only: it never enters a message, the mail or a
// file.
#pragma once

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

namespace paratzorep::toolkit {

// How the connection is protected: none, TLS from the start (port 465) or STARTTLS.
enum class SeguridadCorreo { Ninguna, Tls, StartTls };

struct ServidorCorreo {
    std::string servidor;  // edcSMTP
    std::int32_t puerto = 25;
    std::string remitente;  // edcCorreoSaliente
    std::string nombreRemitente;
    bool autenticacion = false;  // edcAutenticacion
    std::string usuario;         // edcUsuario (the sender's address when blank)
    std::string password;        // edcPassword
    SeguridadCorreo seguridad = SeguridadCorreo::Ninguna;
    bool popAntes = false;      // edcAutenticacionPOP: a POP3 login before sending
    std::string servidorPop;    // edcSMTPPOP3
    bool enviarCorreos = true;  // EnviarCorreos ("0" turns mail off on this workstation)

    // "servidor:puerto", as messages name it.
    std::string Nombre() const;
};

// The settings read from the registry; `falta` says which required value is missing ("" when
// none is).
struct LecturaCorreo {
    ServidorCorreo servidor;
    std::string falta;
};
LecturaCorreo LeeServidorCorreo();

struct MensajeCorreo {
    std::string para;
    std::string nombrePara;
    std::string asunto;   // UTF-8
    std::string texto;    // UTF-8, plain text
    std::string adjunto;  // path of the file attached ("" for none)
};

// Failure to send: what() says what went wrong in Spanish, naming the server.
class ErrorCorreo : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// One connection to the server, reused for every message sent through it.
class EnvioCorreo {
  public:
    explicit EnvioCorreo(ServidorCorreo servidor);
    ~EnvioCorreo();
    EnvioCorreo(const EnvioCorreo&) = delete;
    EnvioCorreo& operator=(const EnvioCorreo&) = delete;

    // Sends one message; throws ErrorCorreo.
    void Envia(const MensajeCorreo& m);

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

namespace detail {
// The message as it goes on the wire: headers (the subject and names encoded as UTF-8 words),
// the text and the attachment in base64, CRLF line ends. `fecha` is the Date header's value.
std::string ArmaMensaje(const ServidorCorreo& s, const MensajeCorreo& m, const std::string& fecha,
                        const std::string& frontera);
std::string Base64(const std::string& datos, std::size_t anchoLinea = 76);
// "=?UTF-8?B?...?=" for a text that is not plain ASCII; the text itself otherwise.
std::string PalabraCodificada(const std::string& texto);
}  // namespace detail

}  // namespace paratzorep::toolkit
