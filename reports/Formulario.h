// The minimal report form: a named window with a caption and named controls (arrays indexed
// from 0) carrying Caption, Text, Value, Enabled and Visible. The report form frame extends it
// with events, loading and printing.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "host/Objeto.h"

namespace paratzorep::reports {

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
    // Events the form wires: a change of text or value, a click or choice.
    std::function<void(Control&)> Change;
    std::function<void(Control&)> Click;

    // "mkeFecha(0)" or "cmdImprimir".
    std::string NombreCompleto() const;
};

// Thrown when a form is asked for a control it does not have.
class ErrorFormulario : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

class Formulario : public host::Ventana {
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
    // Sets a control as a user would and raises its event. `control` is "nombre" or
    // "nombre(i)". Text and date boxes (txt, mke) take text; check boxes (chk) 0 or 1; options
    // (opt) 1, clearing the rest of their array; combos (cmb) an item's text or "#index"; data
    // combos (dcm) a bound value or an item's text; buttons (cmd) are clicked. Throws
    // ErrorFormulario (Spanish) for an unknown control or a value it cannot take.
    void Fija(const std::string& control, const std::string& valor);
    // Every control in the order added.
    std::vector<const Control*> Controles() const;

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
    bool cargada_ = false;
    bool descargada_ = false;
};

// A form that serves customers and suppliers (RepAdmCargos, RepAdmEdoCta): the facade sets
// its report key, numeric code, mode label lblTipo ("C" or "P") and person label lblPersona.
class FormularioPareado : public Formulario {
  public:
    FormularioPareado(std::string nombre, std::string caption);

    // Report key ("RepCargosCtes"); after ShowForm it reads key, tab, key.
    std::string Llave;
    // 73 CargosClientes, 79 CargosProveedores, 75 EdoCtaClientes, 81 EdoCtaProveedores.
    std::int16_t Codigo = 0;

    // True when lblTipo says customers ("C").
    bool ParaClientes() const { return Ctl("lblTipo").Caption == "C"; }
};

}  // namespace paratzorep::reports
