#include "toolkit/Correo.h"

#include <curl/curl.h>

#include <algorithm>
#include <cctype>
#include <ctime>
#include <fstream>
#include <iterator>
#include <random>
#include <vector>

#include "toolkit/Ini.h"
#include "toolkit/Texto.h"

namespace paratzorep::toolkit {

namespace detail {

std::string Base64(const std::string& datos, std::size_t anchoLinea) {
    static const char* const abc =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string r;
    r.reserve(datos.size() * 4 / 3 + datos.size() / 38 + 8);
    std::size_t enLinea = 0;
    for (std::size_t i = 0; i < datos.size(); i += 3) {
        const std::size_t n = std::min<std::size_t>(3, datos.size() - i);
        std::uint32_t v = 0;
        for (std::size_t j = 0; j < 3; ++j)
            v = (v << 8) | (j < n ? static_cast<unsigned char>(datos[i + j]) : 0u);
        const char c[4] = {abc[(v >> 18) & 63], abc[(v >> 12) & 63],
                           n > 1 ? abc[(v >> 6) & 63] : '=', n > 2 ? abc[v & 63] : '='};
        for (char x : c) {
            if (anchoLinea && enLinea == anchoLinea) {
                r += "\r\n";
                enLinea = 0;
            }
            r += x;
            ++enLinea;
        }
    }
    return r;
}

std::string PalabraCodificada(const std::string& texto) {
    const bool ascii = std::all_of(texto.begin(), texto.end(), [](char c) {
        const auto u = static_cast<unsigned char>(c);
        return u >= 32 && u < 127;
    });
    if (ascii) return texto;
    // Words of at most 45 bytes (75 characters encoded), cut between characters.
    std::string r;
    std::size_t i = 0;
    while (i < texto.size()) {
        std::size_t fin = std::min(texto.size(), i + 45);
        while (fin < texto.size() && (static_cast<unsigned char>(texto[fin]) & 0xC0) == 0x80) --fin;
        if (!r.empty()) r += "\r\n ";
        r += "=?UTF-8?B?" + Base64(texto.substr(i, fin - i), 0) + "?=";
        i = fin;
    }
    return r;
}

namespace {

// A header value without line breaks (no header can be smuggled in).
std::string UnaLinea(std::string s) {
    for (char& c : s)
        if (c == '\r' || c == '\n') c = ' ';
    return s;
}

std::string Direccion(const std::string& nombre, const std::string& correo) {
    if (nombre.empty()) return "<" + correo + ">";
    const bool simple = std::all_of(nombre.begin(), nombre.end(), [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) || c == ' ' || c == '.' || c == '-';
    });
    return (simple ? nombre : PalabraCodificada(nombre)) + " <" + correo + ">";
}

// The text with CRLF line ends.
std::string ConCrLf(const std::string& texto) {
    std::string r;
    for (std::size_t i = 0; i < texto.size(); ++i) {
        if (texto[i] == '\n' && (i == 0 || texto[i - 1] != '\r')) r += '\r';
        r += texto[i];
    }
    return r;
}

}  // namespace

// The addresses of a field that may hold several, separated by ";" or ",".
std::vector<std::string> Direcciones(const std::string& campo) {
    std::vector<std::string> r;
    std::string actual;
    for (char c : campo + ";") {
        if (c == ';' || c == ',') {
            const std::string d = detail::Recorta(actual);
            if (!d.empty()) r.push_back(d);
            actual.clear();
        } else {
            actual += c;
        }
    }
    return r;
}

std::string ArmaMensaje(const ServidorCorreo& s, const MensajeCorreo& m, const std::string& fecha,
                        const std::string& frontera) {
    std::string para;
    for (const auto& d : Direcciones(m.para))
        para += (para.empty() ? "" : ", ") + Direccion(UnaLinea(m.nombrePara), d);
    std::string r = "Date: " + fecha + "\r\n";
    r += "From: " + Direccion(UnaLinea(s.nombreRemitente), UnaLinea(s.remitente)) + "\r\n";
    r += "To: " + para + "\r\n";
    r += "Subject: " + PalabraCodificada(UnaLinea(m.asunto)) + "\r\n";
    r += "MIME-Version: 1.0\r\n";
    r += "Content-Type: multipart/mixed; boundary=\"" + frontera + "\"\r\n\r\n";
    r += "--" + frontera + "\r\nContent-Type: text/plain; charset=UTF-8\r\n";
    r += "Content-Transfer-Encoding: base64\r\n\r\n" + Base64(ConCrLf(m.texto)) + "\r\n";
    if (!m.adjunto.empty()) {
        std::ifstream in(m.adjunto, std::ios::binary);
        if (!in) throw ErrorCorreo("no se pudo leer el archivo adjunto " + m.adjunto);
        const std::string datos((std::istreambuf_iterator<char>(in)), {});
        std::string nombre = m.adjunto.substr(m.adjunto.find_last_of('/') + 1);
        std::string ext = nombre.size() > 4 ? nombre.substr(nombre.size() - 4) : "";
        for (char& c : ext) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        nombre = PalabraCodificada(UnaLinea(nombre));
        r += "--" + frontera + "\r\nContent-Type: " +
             (ext == ".pdf" ? "application/pdf" : "application/octet-stream") + "; name=\"" +
             nombre + "\"\r\nContent-Disposition: attachment; filename=\"" + nombre +
             "\"\r\nContent-Transfer-Encoding: base64\r\n\r\n" + Base64(datos) + "\r\n";
    }
    r += "--" + frontera + "--\r\n";
    return r;
}

}  // namespace detail

namespace {

bool EsSi(const std::string& valor) {
    std::string v = detail::Recorta(valor);
    for (char& c : v) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return v == "1" || v == "-1" || v == "si" || v == "sí" || v == "s" || v == "true" ||
           v == "verdadero" || v == "ssl" || v == "tls" || v == "starttls";
}

std::string Registro(const std::string& clave) {
    return detail::Recorta(LeeIni("kvtz5", clave, ArchivoRegistro()));
}

struct LiberaLista {
    void operator()(curl_slist* l) const { curl_slist_free_all(l); }
};

struct Lectura {
    const std::string* datos;
    std::size_t pos = 0;
};

std::size_t Lee(char* destino, std::size_t tam, std::size_t n, void* usuario) {
    auto* l = static_cast<Lectura*>(usuario);
    const std::size_t cuanto = std::min(tam * n, l->datos->size() - l->pos);
    std::copy_n(l->datos->data() + l->pos, cuanto, destino);
    l->pos += cuanto;
    return cuanto;
}

// The reason of a libcurl failure in words, the server's reply code when it gave one.
std::string Motivo(CURLcode codigo, const char* detalle, long respuesta) {
    std::string m;
    switch (codigo) {
        case CURLE_COULDNT_RESOLVE_HOST:
            m = "no se encontró el servidor (revise el nombre)";
            break;
        case CURLE_COULDNT_CONNECT:
            m = "no aceptó la conexión (revise que esté en marcha y el puerto)";
            break;
        case CURLE_OPERATION_TIMEDOUT:
            m = "no respondió a tiempo";
            break;
        case CURLE_LOGIN_DENIED:
            m = "rechazó el usuario o la contraseña";
            break;
        case CURLE_USE_SSL_FAILED:
            m = "no ofrece conexión segura (STARTTLS)";
            break;
        case CURLE_SSL_CONNECT_ERROR:
        case CURLE_PEER_FAILED_VERIFICATION:
        case CURLE_SSL_CACERT_BADFILE:
            m = "no se pudo establecer la conexión segura";
            break;
        default:
            m = respuesta >= 400 ? "rechazó el mensaje" : "falló la comunicación";
    }
    if (respuesta >= 400) m += " (respuesta " + std::to_string(respuesta) + ")";
    if (detalle && *detalle) m += "; detalle: " + std::string(detalle);
    return m;
}

std::string FechaCorreo() {
    char b[64];
    const std::time_t t = std::time(nullptr);
    std::tm tm{};
    localtime_r(&t, &tm);
    std::strftime(b, sizeof b, "%a, %d %b %Y %H:%M:%S %z", &tm);
    return b;
}

}  // namespace

std::string ServidorCorreo::Nombre() const {
    return servidor + ":" + std::to_string(puerto);
}

LecturaCorreo LeeServidorCorreo() {
    LecturaCorreo l;
    ServidorCorreo& s = l.servidor;
    const std::string enviar = Registro("EnviarCorreos");
    s.enviarCorreos = enviar.empty() || EsSi(enviar);
    s.nombreRemitente = Registro("DeEquipo");
    s.servidor = Registro("edcSMTP");
    s.remitente = Registro("edcCorreoSaliente");
    s.autenticacion = EsSi(Registro("edcAutenticacion"));
    s.usuario = Registro("edcUsuario");
    if (s.usuario.empty()) s.usuario = s.remitente;
    s.password = LeeIni("kvtz5", "edcPassword", ArchivoRegistro());
    s.popAntes = EsSi(Registro("edcAutenticacionPOP"));
    s.servidorPop = Registro("edcSMTPPOP3");
    std::string ssl = Registro("edcSSL");
    for (char& c : ssl) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    const std::string puerto = Registro("edcPuertoSalida");
    long p = 0;
    try {
        p = puerto.empty() ? 0 : std::stol(puerto);
    } catch (const std::exception&) {
        p = -1;
    }
    if (ssl == "starttls") {
        s.seguridad = SeguridadCorreo::StartTls;
    } else if (EsSi(ssl)) {
        // SSL on the port of implicit TLS, STARTTLS on any other (587, 25).
        s.seguridad = p == 0 || p == 465 ? SeguridadCorreo::Tls : SeguridadCorreo::StartTls;
    }
    s.puerto = p > 0 && p <= 65535 ? static_cast<std::int32_t>(p)
                                   : (s.seguridad == SeguridadCorreo::Tls ? 465 : 25);
    if (s.servidor.empty())
        l.falta = "edcSMTP";
    else if (s.remitente.empty())
        l.falta = "edcCorreoSaliente";
    else if (p < 0)
        l.falta = "edcPuertoSalida";
    else if (s.popAntes && s.servidorPop.empty())
        l.falta = "edcSMTPPOP3";
    return l;
}

struct EnvioCorreo::Impl {
    ServidorCorreo s;
    CURL* h = nullptr;
    char error[CURL_ERROR_SIZE] = {};
    bool popHecho = false;

    ~Impl() {
        if (h) curl_easy_cleanup(h);
    }

    void Comunes(CURL* c, bool seguro) {
        curl_easy_setopt(c, CURLOPT_NOSIGNAL, 1L);
        curl_easy_setopt(c, CURLOPT_CONNECTTIMEOUT, 20L);
        curl_easy_setopt(c, CURLOPT_TIMEOUT, 120L);
        curl_easy_setopt(c, CURLOPT_ERRORBUFFER, error);
        if (seguro && s.seguridad == SeguridadCorreo::StartTls)
            curl_easy_setopt(c, CURLOPT_USE_SSL, static_cast<long>(CURLUSESSL_ALL));
        if (s.autenticacion || s.popAntes) {
            curl_easy_setopt(c, CURLOPT_USERNAME, s.usuario.c_str());
            curl_easy_setopt(c, CURLOPT_PASSWORD, s.password.c_str());
        }
    }

    // POP before SMTP: a login to the POP3 server opens the sending for a while.
    void EntraPop() {
        CURL* c = curl_easy_init();
        if (!c) throw ErrorCorreo("no se pudo preparar la conexión de correo");
        struct Cierra {
            CURL* c;
            ~Cierra() { curl_easy_cleanup(c); }
        } cierra{c};
        const bool tls = s.seguridad == SeguridadCorreo::Tls;
        const std::string url = std::string(tls ? "pop3s://" : "pop3://") + s.servidorPop + "/";
        curl_easy_setopt(c, CURLOPT_URL, url.c_str());
        curl_easy_setopt(c, CURLOPT_CUSTOMREQUEST, "NOOP");
        curl_easy_setopt(c, CURLOPT_NOBODY, 1L);
        error[0] = 0;
        Comunes(c, true);
        const CURLcode r = curl_easy_perform(c);
        if (r != CURLE_OK) {
            long resp = 0;
            curl_easy_getinfo(c, CURLINFO_RESPONSE_CODE, &resp);
            throw ErrorCorreo("el servidor POP3 " + s.servidorPop + " " + Motivo(r, error, resp));
        }
    }
};

EnvioCorreo::EnvioCorreo(ServidorCorreo servidor) : impl_(std::make_unique<Impl>()) {
    impl_->s = std::move(servidor);
}

EnvioCorreo::~EnvioCorreo() = default;

void EnvioCorreo::Envia(const MensajeCorreo& m) {
    auto& i = *impl_;
    const auto destinos = detail::Direcciones(m.para);
    if (destinos.empty()) throw ErrorCorreo("no hay dirección de correo a la cual enviar");
    for (const auto& d : destinos)
        if (d.find('@') == std::string::npos || d.find_first_of(" <>\"\r\n\t") != std::string::npos)
            throw ErrorCorreo("la dirección de correo '" + d + "' no es válida");
    if (i.s.popAntes && !i.popHecho) {
        i.EntraPop();
        i.popHecho = true;
    }
    if (!i.h) {
        i.h = curl_easy_init();
        if (!i.h) throw ErrorCorreo("no se pudo preparar la conexión de correo");
    }
    CURL* h = i.h;
    static std::mt19937_64 azar{std::random_device{}()};
    char frontera[48];
    std::snprintf(frontera, sizeof frontera, "=_tzorep_%016llx",
                  static_cast<unsigned long long>(azar()));
    const std::string texto = detail::ArmaMensaje(i.s, m, FechaCorreo(), frontera);
    Lectura lectura{&texto};

    const bool tls = i.s.seguridad == SeguridadCorreo::Tls;
    const std::string url =
        std::string(tls ? "smtps://" : "smtp://") + i.s.servidor + ":" + std::to_string(i.s.puerto);
    std::unique_ptr<curl_slist, LiberaLista> rcpt;
    for (const auto& d : destinos) {
        curl_slist* n = curl_slist_append(rcpt.get(), ("<" + d + ">").c_str());
        if (!n) throw ErrorCorreo("sin memoria para los destinatarios");
        rcpt.release();
        rcpt.reset(n);
    }
    const std::string de = "<" + i.s.remitente + ">";
    curl_easy_setopt(h, CURLOPT_URL, url.c_str());
    curl_easy_setopt(h, CURLOPT_MAIL_FROM, de.c_str());
    curl_easy_setopt(h, CURLOPT_MAIL_RCPT, rcpt.get());
    curl_easy_setopt(h, CURLOPT_UPLOAD, 1L);
    curl_easy_setopt(h, CURLOPT_READFUNCTION, &Lee);
    curl_easy_setopt(h, CURLOPT_READDATA, &lectura);
    curl_easy_setopt(h, CURLOPT_INFILESIZE_LARGE, static_cast<curl_off_t>(texto.size()));
    i.error[0] = 0;
    i.Comunes(h, true);
    const CURLcode r = curl_easy_perform(h);
    curl_easy_setopt(h, CURLOPT_MAIL_RCPT, nullptr);
    if (r != CURLE_OK) {
        long resp = 0;
        curl_easy_getinfo(h, CURLINFO_RESPONSE_CODE, &resp);
        // A failed connection is not reused for the next message.
        curl_easy_cleanup(h);
        i.h = nullptr;
        throw ErrorCorreo("el servidor de correo " + i.s.Nombre() + " " + Motivo(r, i.error, resp));
    }
}

}  // namespace paratzorep::toolkit
