// tzorep show ENTRY [--set C=V]... [--all] [--json]: the entry's form after loading and the
// settings. As text, the filters a user sets, in the order of the form, with what each takes
// (every control with --all); as JSON every control, each with its caption, value, items,
// enabled, visible and whether it is a filter.
#include <iostream>
#include <sstream>

#include "apps/tzorep/AbreEntrada.h"

namespace paratzorep::cli {

namespace detail {

const char* NombreTipo(host::TipoControl t) {
    switch (t) {
        case host::TipoControl::Fecha:
            return "fecha";
        case host::TipoControl::Texto:
            return "texto";
        case host::TipoControl::Combo:
            return "lista";
        case host::TipoControl::ComboDatos:
            return "lista-datos";
        case host::TipoControl::Casilla:
            return "casilla";
        case host::TipoControl::Opcion:
            return "opcion";
        case host::TipoControl::Pestanas:
            return "pestanas";
        case host::TipoControl::Etiqueta:
            return "etiqueta";
        case host::TipoControl::Boton:
            return "boton";
        case host::TipoControl::Imagen:
            return "imagen";
        case host::TipoControl::Otro:
            break;
    }
    return "otro";
}

bool EsLista(host::TipoControl t) {
    return t == host::TipoControl::Combo || t == host::TipoControl::ComboDatos ||
           t == host::TipoControl::Pestanas;
}

bool TieneValor(host::TipoControl t) {
    return t == host::TipoControl::Casilla || t == host::TipoControl::Opcion;
}

// The controls a user sets to filter the report: date and text boxes, lists, check boxes,
// options and tabs, visible, outside the destination frame (print's --to chooses it).
bool EsFiltro(const host::Control& c) {
    switch (c.Tipo()) {
        case host::TipoControl::Fecha:
        case host::TipoControl::Texto:
        case host::TipoControl::Combo:
        case host::TipoControl::ComboDatos:
        case host::TipoControl::Casilla:
        case host::TipoControl::Opcion:
        case host::TipoControl::Pestanas:
            return c.Visible && c.Nombre != "optDispos";
        default:
            return false;
    }
}

// What a filter takes in --set.
const char* Admite(host::TipoControl t) {
    switch (t) {
        case host::TipoControl::Fecha:
            return "fecha dd/mm/aaaa";
        case host::TipoControl::Texto:
            return "texto";
        case host::TipoControl::Combo:
        case host::TipoControl::Pestanas:
            return "lista: texto o #índice";
        case host::TipoControl::ComboDatos:
            return "lista: clave o texto";
        case host::TipoControl::Casilla:
            return "casilla: 0 o 1";
        case host::TipoControl::Opcion:
            return "opción: 1 la elige";
        default:
            return "";
    }
}

void MuestraJson(const host::Formulario& f, std::ostream& o) {
    o << "{\"form\":" << TextoJson(f.Nombre()) << ",\"caption\":" << TextoJson(f.Caption)
      << ",\"controls\":[";
    bool primero = true;
    for (const host::Control* c : f.Controles()) {
        o << (primero ? "" : ",") << "\n  {\"name\":" << TextoJson(c->NombreCompleto())
          << ",\"kind\":" << TextoJson(NombreTipo(c->Tipo()))
          << ",\"caption\":" << TextoJson(c->Caption) << ",\"text\":" << TextoJson(c->Text)
          << ",\"value\":" << c->Value << ",\"listIndex\":" << c->ListIndex
          << ",\"boundText\":" << TextoJson(c->BoundText) << ",\"items\":[";
        for (std::size_t i = 0; i < c->Items.size(); ++i) {
            o << (i ? "," : "") << TextoJson(c->Items[i]);
        }
        o << "],\"enabled\":" << (c->Enabled ? "true" : "false")
          << ",\"visible\":" << (c->Visible ? "true" : "false")
          << ",\"filter\":" << (EsFiltro(*c) ? "true" : "false") << "}";
        primero = false;
    }
    o << "\n]}\n";
}

// One line per control: name, legend, value, list items and state. `todos`: every control;
// otherwise the filters in the order of the form, a filter without a caption of its own
// under the label before it, and the captions of the frames that head filters.
void MuestraTexto(const host::Formulario& f, bool todos, std::ostream& o) {
    o << f.Nombre() << ": " << f.Caption << "\n";
    const auto controles = f.Controles();
    std::size_t ancho = 0;
    for (const host::Control* c : controles) {
        if (todos || EsFiltro(*c)) ancho = std::max(ancho, c->NombreCompleto().size());
    }
    std::string etiqueta, marco;
    for (const host::Control* c : controles) {
        const auto tipo = c->Tipo();
        if (!todos && !EsFiltro(*c)) {
            if (tipo == host::TipoControl::Etiqueta) etiqueta = c->Caption;
            if (c->Nombre.rfind("Frame", 0) == 0 && c->Nombre != "Frame2") marco = c->Caption;
            continue;
        }
        if (!todos && !marco.empty()) {
            o << "  " << marco << "\n";
            marco.clear();
        }
        std::string leyenda = c->Caption.empty() && !todos ? etiqueta : c->Caption;
        etiqueta.clear();
        std::string linea = "  " + c->NombreCompleto();
        linea.resize(ancho + 4, ' ');
        if (!leyenda.empty()) linea += " \"" + leyenda + "\"";
        if (tipo == host::TipoControl::Texto || tipo == host::TipoControl::Fecha || EsLista(tipo)) {
            linea += " = \"" + c->Text + "\"";
        }
        if (TieneValor(tipo)) linea += " = " + std::to_string(c->Value);
        if (tipo == host::TipoControl::ComboDatos && !c->BoundText.empty()) {
            linea += " [" + c->BoundText + "]";
        }
        if (EsLista(tipo)) {
            linea += " (" + std::to_string(c->Items.size()) + " elementos";
            for (std::size_t i = 0; i < c->Items.size() && i < 8; ++i) {
                linea += (i ? ", " : ": ") + c->Items[i];
            }
            if (c->Items.size() > 8) linea += ", ...";
            linea += ")";
        }
        if (!c->Enabled) linea += " deshabilitado";
        if (!c->Visible) linea += " oculto";
        if (!todos) linea += "  [" + std::string(Admite(tipo)) + "]";
        o << linea << "\n";
    }
    if (!todos)
        o << "Se fijan con print --set CONTROL=VALOR; el destino con print --to (por omisión, la "
             "pantalla).\nTodos los controles de la forma: show --all.\n";
}

}  // namespace detail

int cmdShow(const Contexto& ctx, const std::vector<std::string>& args) {
    Argumentos a;
    try {
        a = LeeArgumentos(args, {}, {"--json", "--all"});
    } catch (const ErrorUso& e) {
        std::cerr
            << "tzorep: " << e.what() << "\n"
            << "Uso: tzorep show ENTRADA [--set C=V]... [--all] [--json] (tzorep help show)\n";
        return 2;
    }
    bool json = false, todos = false;
    for (const auto& [opcion, valor] : a.opciones) {
        json = json || opcion == "--json";
        todos = todos || opcion == "--all";
    }
    bool fallo = false;
    try {
        auto interaccion = std::make_shared<InteraccionCli>();
        auto abierta = AbreEntrada(ctx, a, interaccion);
        if (!FijaDesdeLinea(*abierta.forma, a)) return 2;
        if (json) {
            detail::MuestraJson(*abierta.forma, std::cout);
        } else {
            detail::MuestraTexto(*abierta.forma, todos, std::cout);
        }
        // The form is shown as it loaded, but a failure while loading (the company database
        // could not be opened) is a failure of the command.
        fallo = interaccion->criticos > 0;
    } catch (const std::exception& e) {
        std::cerr << "tzorep: " << e.what() << "\n";
        return 1;
    }
    return std::cout.flush() && !fallo ? 0 : 1;
}

}  // namespace paratzorep::cli
