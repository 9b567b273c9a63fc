// The host's main menu window object (objMenu): it shows report forms inside the host's window,
// keeps the list of open windows and owns the timer that watches edited templates.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace paratzorep::host {

class Formulario;

// A host timer: the tag text it carries and whether it runs.
struct Temporizador {
    std::string Tag;
    bool Enabled = false;
};

class Menu {
  public:
    virtual ~Menu() = default;

    // Shows `forma` under the host's menu option `opcion` and registers it in the window list.
    // The host may replace the form object: callers take `forma` back afterwards.
    virtual void ShowForm(std::int16_t opcion, std::shared_ptr<Formulario>& forma) = 0;
    // Refreshes the host's list of open windows (on a form's activation and deactivation).
    virtual void CerrarFrmListaVentanas() {}
    // Takes a closing form out of the host's list of open windows.
    virtual void stListaVentanas(const Formulario& forma) { (void)forma; }
    // Whether the host lets the form close.
    virtual bool SiDescargaVentana(const Formulario& forma) {
        (void)forma;
        return true;
    }
    // Tells the host that a child form has unloaded.
    virtual void AlDescargarVentanaHija(const Formulario& forma) { (void)forma; }
    // Handle of the host's main window (parent of report previews); 0 when headless.
    virtual std::intptr_t hWnd() const { return 0; }
    // The main window's background colour (0xBBGGRR) and scale mode.
    virtual std::int32_t BackColor() const { return 0xFFFFFF; }
    virtual std::int16_t ScaleMode() const { return 1; }

    // Watches a template open in the editor: Tag = full path, a tab, the file's date-time text.
    Temporizador mnTimerCrw;
};

// A menu that only records what it was asked to show (headless hosts and tests).
class MenuRegistro : public Menu {
  public:
    struct Llamada {
        std::int16_t opcion;
        std::shared_ptr<Formulario> forma;
    };

    void ShowForm(std::int16_t opcion, std::shared_ptr<Formulario>& forma) override {
        llamadas.push_back({opcion, forma});
    }
    void CerrarFrmListaVentanas() override { ++refrescos; }

    std::vector<Llamada> llamadas;
    int refrescos = 0;
};

}  // namespace paratzorep::host
