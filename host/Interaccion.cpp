#include "host/Interaccion.h"

#include <unistd.h>

#include <iostream>

namespace paratzorep::host {

namespace detail {

Respuesta RespuestaPorOmision(Botones botones) {
    switch (botones) {
        case Botones::SiNo:
        case Botones::SiNoCancelar:
            return Respuesta::Si;
        default:
            return Respuesta::Aceptar;
    }
}

std::shared_ptr<Interaccion>& ActualInteraccion() {
    static std::shared_ptr<Interaccion> actual = std::make_shared<InteraccionConsola>();
    return actual;
}

}  // namespace detail

Respuesta InteraccionConsola::Mensaje(const std::string& titulo, const std::string& texto, Icono,
                                      Botones botones) {
    std::cerr << titulo << ": " << texto << '\n';
    return detail::RespuestaPorOmision(botones);
}

void InteraccionConsola::Beep() {
    // Only a terminal rings; a redirected stderr keeps just the messages.
    if (::isatty(2)) std::cerr << '\a' << std::flush;
}

void InteraccionConsola::Progreso(int, const std::string&) {}

void InteraccionConsola::TextoEstado(const std::string&) {}

bool InteraccionConsola::Dialogo(Formulario&) {
    return true;
}

std::string InteraccionConsola::EligeCarpeta(const std::string&, const std::string& inicial) {
    return inicial;
}

Respuesta InteraccionGrabada::Mensaje(const std::string& titulo, const std::string& texto,
                                      Icono icono, Botones botones) {
    mensajes.push_back({titulo, texto, icono, botones});
    if (respuestas.empty()) return detail::RespuestaPorOmision(botones);
    Respuesta r = respuestas.front();
    respuestas.pop_front();
    return r;
}

void InteraccionGrabada::Progreso(int porcentaje, const std::string& texto) {
    progresos.emplace_back(porcentaje, texto);
}

bool InteraccionGrabada::Dialogo(Formulario& forma) {
    dialogos.push_back(&forma);
    if (respuestasDialogo.empty()) return true;
    bool r = respuestasDialogo.front();
    respuestasDialogo.pop_front();
    return r;
}

std::string InteraccionGrabada::EligeCarpeta(const std::string&, const std::string& inicial) {
    if (carpetas.empty()) return inicial;
    std::string r = carpetas.front();
    carpetas.pop_front();
    return r;
}

void InteraccionGrabada::Limpia() {
    mensajes.clear();
    beeps = 0;
    progresos.clear();
    estados.clear();
    dialogos.clear();
}

Interaccion& interaccion() {
    return *detail::ActualInteraccion();
}

std::shared_ptr<Interaccion> PonInteraccion(std::shared_ptr<Interaccion> nueva) {
    if (!nueva) nueva = std::make_shared<InteraccionConsola>();
    std::shared_ptr<Interaccion> anterior = std::move(detail::ActualInteraccion());
    detail::ActualInteraccion() = std::move(nueva);
    return anterior;
}

}  // namespace paratzorep::host
