// The toolkit-neutral form model: a named window with a caption and named controls (arrays
// indexed from 0) carrying Caption, Text, Value, ListIndex, BoundText, Enabled, Visible and list
// items, and raising change, click, focus and key events. The kind of a control follows its
// name's prefix (mke masked date box, txt text box, cmb combo, dcm data combo, chk check box,
// opt option, stb tab strip, lbl label, cmd button, img picture). Hosts bind widgets or
// command-line arguments to it; tests drive it directly.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "host/BaseDD.h"
#include "host/Objeto.h"

namespace paratzorep::host {

enum class TipoControl {
    Fecha,       // mke: masked date box
    Texto,       // txt: text or code box
    Combo,       // cmb: plain combo
    ComboDatos,  // dcm: data combo bound over a query
    Casilla,     // chk: check box
    Opcion,      // opt: option of a group (the control array)
    Pestanas,    // stb: tab strip (Items are the tabs, ListIndex the chosen one)
    Etiqueta,    // lbl
    Boton,       // cmd
    Imagen,      // img
    Otro
};

// The kind of a control by its name's prefix.
TipoControl TipoDe(const std::string& nombre);

// The date boxes' input mask, display format and empty text.
inline constexpr const char* kMascaraFecha = "##/##/####";
inline constexpr const char* kFormatoFecha = "dd/mm/yyyy";
inline constexpr const char* kFechaVacia = "__/__/____";

struct Control {
    std::string Nombre;        // "mkeFecha"
    std::int16_t Indice = -1;  // position in its control array; -1 for a single control
    std::string Caption;
    std::string Text;
    std::int32_t Value = 0;
    bool Enabled = true;
    bool Visible = true;
    std::string Tag;
    // Lists (cmbDato, dcmDato): the shown items, their bound values (data combos), the chosen
    // position (-1 none) and the chosen bound value.
    std::vector<std::string> Items;
    std::vector<std::string> ItemData;
    std::int16_t ListIndex = -1;
    std::string BoundText;
    // Date boxes: input mask and display format ("" for other controls).
    std::string Mask;
    std::string Format;
    // Events the form wires: a change of text or value, a click or choice, focus gained and
    // lost, key-down (key code, shift) and key-press (ASCII code; set it to 0 to swallow).
    std::function<void(Control&)> Change;
    std::function<void(Control&)> Click;
    std::function<void(Control&)> GotFocus;
    std::function<void(Control&)> LostFocus;
    std::function<void(Control&, std::int16_t&, std::int16_t)> KeyDown;
    std::function<void(Control&, std::int16_t&)> KeyPress;

    // "mkeFecha(0)" or "cmdImprimir".
    std::string NombreCompleto() const;
    TipoControl Tipo() const { return TipoDe(Nombre); }
    // A date box that holds no date: blank or its empty mask.
    bool SinFecha() const;
    // The chosen item's text; "" when none is chosen.
    std::string Elegido() const;
};

// Fills a list control from the rows of `rs`: the shown text from `campoLista`, the bound value
// from `campoLigado` (the shown text when empty). The choice is cleared.
void LlenaLista(Control& lista, Recordset& rs, const std::string& campoLista,
                const std::string& campoLigado = "");

// Binds a data combo over a query (AbrirDataSource of the data-access object): `fuente` is a
// table name or SQL text as AbrirTabla takes it. False, with the list empty, when the query
// could not be opened (the reason in base.UltimoError()).
bool EnlazaDataSource(Control& combo, BaseDD& base, const Conexion& cn, const std::string& fuente,
                      const std::string& campoLista, const std::string& campoLigado);

// Thrown when a form is asked for a control it does not have.
class ErrorFormulario : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

class Formulario : public Ventana {
  public:
    Formulario(std::string nombre, std::string caption);
    ~Formulario() override = default;
    Formulario(const Formulario&) = delete;
    Formulario& operator=(const Formulario&) = delete;

    std::string Nombre() const override { return nombre_; }

    // Adds a control (or returns the existing one of that name and index).
    Control& Agrega(const std::string& nombre, std::int16_t indice = -1,
                    const std::string& caption = "");
    // The control of that name and index; throws ErrorFormulario when missing.
    Control& Ctl(const std::string& nombre, std::int16_t indice = -1);
    const Control& Ctl(const std::string& nombre, std::int16_t indice = -1) const;
    bool TieneControl(const std::string& nombre, std::int16_t indice = -1) const;
    // Sets a control as a user would and raises its events. `control` is "nombre" or
    // "nombre(i)". Text boxes (txt) take text, date boxes (mke) "dd/mm/yyyy" or "" (no date),
    // both getting the focus, changing and losing it; check boxes (chk) 0 or 1; options (opt) 1,
    // clearing the rest of their array; combos (cmb) and tab strips (stb) an item's text or
    // "#index"; data combos (dcm) a bound value or an item's text; buttons (cmd) and pictures
    // (img) are clicked. Throws ErrorFormulario (Spanish) for an unknown control or a value it
    // cannot take.
    void Fija(const std::string& control, const std::string& valor);
    // Every control in the order added.
    std::vector<const Control*> Controles() const;
    // The controls of an array (same name), by index.
    std::vector<Control*> Arreglo(const std::string& nombre);

    // Adds a masked date box: mask "##/##/####", format "dd/mm/yyyy", empty mask as text.
    Control& AgregaFecha(const std::string& nombre, std::int16_t indice = -1);

    // Focus: moves it to `c` (the previous control loses it first); Desenfoca leaves no control
    // focused. Enter/Teclas-style key handling goes through Tecla and Pulsa.
    void Enfoca(Control& c);
    void Desenfoca();
    Control* Foco() const { return foco_; }
    // A key-down on a control; returns the key code after the handler (0 when swallowed).
    std::int16_t Tecla(Control& c, std::int16_t keyCode, std::int16_t shift = 0);
    // A key-press on a control; returns the ASCII code after the handler.
    std::int16_t Pulsa(Control& c, std::int16_t keyAscii);

    // Loads the form once (runs Load); later calls do nothing.
    void Carga();
    bool Cargada() const { return cargada_; }
    // Unloads the form (runs Unload); a facade then makes a new instance on its next call.
    void Descarga();
    bool Descargada() const { return descargada_; }

  protected:
    // What the form does when it loads and unloads; nothing by default.
    virtual void Load() {}
    virtual void Unload() {}

  private:
    std::string nombre_;
    std::vector<std::unique_ptr<Control>> controles_;
    std::map<std::pair<std::string, std::int16_t>, Control*> porNombre_;
    Control* foco_ = nullptr;
    bool cargada_ = false;
    bool descargada_ = false;
};

}  // namespace paratzorep::host
