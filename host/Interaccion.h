// The host's interaction sink: message boxes, beep, status text, progress bar, modal dialogs and
// folder choice. The component never talks to a screen itself; it calls the current sink, which
// the host program installs (the command-line host prints to stderr, the desktop host shows
// dialogs, tests record what was asked).
#pragma once

#include <deque>
#include <memory>
#include <string>
#include <vector>

namespace paratzorep::host {

class Formulario;

enum class Icono { Informacion, Exclamacion, Critico, Pregunta };
enum class Botones { Aceptar, AceptarCancelar, SiNo, SiNoCancelar };
enum class Respuesta { Aceptar, Cancelar, Si, No };

class Interaccion {
  public:
    virtual ~Interaccion() = default;

    // Shows a message with a title and an icon; for questions the answer the user gave.
    virtual Respuesta Mensaje(const std::string& titulo, const std::string& texto,
                              Icono icono = Icono::Informacion,
                              Botones botones = Botones::Aceptar) = 0;
    // The system beep.
    virtual void Beep() = 0;
    // Progress of a long task: 0..100, or -1 when the share done is not known (rows read so
    // far, say), and a short text; 0 with "" hides the bar.
    virtual void Progreso(int porcentaje, const std::string& texto) = 0;
    // The status line's text.
    virtual void TextoEstado(const std::string& texto) = 0;
    // Shows a form modally; true when the user accepted it.
    virtual bool Dialogo(Formulario& forma) = 0;
    // Lets the user choose a folder, starting at `inicial`; "" when the user cancelled.
    virtual std::string EligeCarpeta(const std::string& titulo, const std::string& inicial) = 0;
    // Gives the host's message loop a turn (DoEvents) during long fills.
    virtual void Eventos() {}
};

// Writes every message to stderr as "Titulo: texto"; questions take their default button
// (Si / Aceptar), dialogs are accepted unchanged and folder choices keep the start folder.
class InteraccionConsola : public Interaccion {
  public:
    Respuesta Mensaje(const std::string& titulo, const std::string& texto, Icono icono,
                      Botones botones) override;
    void Beep() override;
    void Progreso(int porcentaje, const std::string& texto) override;
    void TextoEstado(const std::string& texto) override;
    bool Dialogo(Formulario& forma) override;
    std::string EligeCarpeta(const std::string& titulo, const std::string& inicial) override;
};

// Records everything asked of it, for tests. Answers come from queues the test fills; when a
// queue is empty the default button, an accepted dialog and the start folder are given.
class InteraccionGrabada : public Interaccion {
  public:
    struct MensajeVisto {
        std::string titulo;
        std::string texto;
        Icono icono;
        Botones botones;
    };

    Respuesta Mensaje(const std::string& titulo, const std::string& texto, Icono icono,
                      Botones botones) override;
    void Beep() override { ++beeps; }
    void Progreso(int porcentaje, const std::string& texto) override;
    void TextoEstado(const std::string& texto) override { estados.push_back(texto); }
    bool Dialogo(Formulario& forma) override;
    std::string EligeCarpeta(const std::string& titulo, const std::string& inicial) override;

    // Forgets what was recorded (answer queues stay).
    void Limpia();

    std::vector<MensajeVisto> mensajes;
    int beeps = 0;
    std::vector<std::pair<int, std::string>> progresos;
    std::vector<std::string> estados;
    std::vector<Formulario*> dialogos;
    std::deque<Respuesta> respuestas;
    std::deque<bool> respuestasDialogo;
    std::deque<std::string> carpetas;
};

// The process-wide current sink (a console sink until the host installs another).
Interaccion& interaccion();
// Installs `nueva` (null restores the console sink); returns the one it replaces.
std::shared_ptr<Interaccion> PonInteraccion(std::shared_ptr<Interaccion> nueva);

// Installs a sink for a scope and puts the previous one back on exit (tests, dialogs).
class InteraccionTemporal {
  public:
    explicit InteraccionTemporal(std::shared_ptr<Interaccion> nueva)
        : anterior_(PonInteraccion(std::move(nueva))) {}
    ~InteraccionTemporal() { PonInteraccion(std::move(anterior_)); }
    InteraccionTemporal(const InteraccionTemporal&) = delete;
    InteraccionTemporal& operator=(const InteraccionTemporal&) = delete;

  private:
    std::shared_ptr<Interaccion> anterior_;
};

}  // namespace paratzorep::host
