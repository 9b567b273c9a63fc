// tzorep show ENTRY [--set C=V]... [--json]: the entry's form after loading and the settings,
// each control with its caption, value, items, enabled and visible; as aligned text or JSON.
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

std::string Json(const std::string& s) {
    std::ostringstream o;
    o << '"';
    for (unsigned char c : s) {
        switch (c) {
            case '"':
                o << "\\\"";
                break;
            case '\\':
                o << "\\\\";
                break;
            case '\n':
                o << "\\n";
                break;
            case '\r':
                o << "\\r";
                break;
            case '\t':
                o << "\\t";
                break;
            default:
                if (c < 0x20) {
                    static const char* hex = "0123456789abcdef";
                    o << "\\u00" << hex[c >> 4] << hex[c & 15];
                } else {
                    o << c;
                }
        }
    }
    o << '"';
    return o.str();
}

bool EsLista(host::TipoControl t) {
    return t == host::TipoControl::Combo || t == host::TipoControl::ComboDatos ||
           t == host::TipoControl::Pestanas;
}

bool TieneValor(host::TipoControl t) {
    return t == host::TipoControl::Casilla || t == host::TipoControl::Opcion;
}

void MuestraJson(const host::Formulario& f, std::ostream& o) {
    o << "{\"form\":" << Json(f.Nombre()) << ",\"caption\":" << Json(f.Caption)
      << ",\"controls\":[";
    bool primero = true;
    for (const host::Control* c : f.Controles()) {
        o << (primero ? "" : ",") << "\n  {\"name\":" << Json(c->NombreCompleto())
          << ",\"kind\":" << Json(NombreTipo(c->Tipo())) << ",\"caption\":" << Json(c->Caption)
          << ",\"text\":" << Json(c->Text) << ",\"value\":" << c->Value
          << ",\"listIndex\":" << c->ListIndex << ",\"boundText\":" << Json(c->BoundText)
          << ",\"items\":[";
        for (std::size_t i = 0; i < c->Items.size(); ++i) {
            o << (i ? "," : "") << Json(c->Items[i]);
        }
        o << "],\"enabled\":" << (c->Enabled ? "true" : "false")
          << ",\"visible\":" << (c->Visible ? "true" : "false") << "}";
        primero = false;
    }
    o << "\n]}\n";
}

void MuestraTexto(const host::Formulario& f, std::ostream& o) {
    o << f.Nombre() << ": " << f.Caption << "\n";
    std::size_t ancho = 0;
    for (const host::Control* c : f.Controles()) {
        ancho = std::max(ancho, c->NombreCompleto().size());
    }
    for (const host::Control* c : f.Controles()) {
        const auto tipo = c->Tipo();
        std::string linea = "  " + c->NombreCompleto();
        linea.resize(ancho + 4, ' ');
        if (!c->Caption.empty()) linea += " \"" + c->Caption + "\"";
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
        o << linea << "\n";
    }
}

}  // namespace detail

int cmdShow(const Contexto& ctx, const std::vector<std::string>& args) {
    Argumentos a;
    try {
        a = LeeArgumentos(args, {}, {"--json"});
    } catch (const ErrorUso& e) {
        std::cerr << "tzorep: " << e.what() << "\n"
                  << "Uso: tzorep show ENTRADA [--set C=V]... [--json]\n";
        return 2;
    }
    const bool json = !a.opciones.empty();
    try {
        auto abierta = AbreEntrada(ctx, a, std::make_shared<InteraccionCli>());
        if (!FijaDesdeLinea(*abierta.forma, a)) return 2;
        if (json) {
            detail::MuestraJson(*abierta.forma, std::cout);
        } else {
            detail::MuestraTexto(*abierta.forma, std::cout);
        }
    } catch (const std::exception& e) {
        std::cerr << "tzorep: " << e.what() << "\n";
        return 1;
    }
    return std::cout.flush() ? 0 : 1;
}

}  // namespace paratzorep::cli
