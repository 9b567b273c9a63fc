#include "host/Formulario.h"

#include <algorithm>
#include <cctype>

namespace paratzorep::host {

namespace detail {
bool Prefijo(const std::string& nombre, const char* p);
}

TipoControl TipoDe(const std::string& nombre) {
    static const std::pair<const char*, TipoControl> prefijos[] = {
        {"mke", TipoControl::Fecha},    {"txt", TipoControl::Texto},
        {"cmb", TipoControl::Combo},    {"dcm", TipoControl::ComboDatos},
        {"chk", TipoControl::Casilla},  {"opt", TipoControl::Opcion},
        {"stb", TipoControl::Pestanas}, {"lbl", TipoControl::Etiqueta},
        {"cmd", TipoControl::Boton},    {"img", TipoControl::Imagen}};
    for (const auto& [p, t] : prefijos) {
        if (detail::Prefijo(nombre, p)) return t;
    }
    return TipoControl::Otro;
}

std::string Control::NombreCompleto() const {
    return Indice < 0 ? Nombre : Nombre + "(" + std::to_string(Indice) + ")";
}

bool Control::SinFecha() const {
    for (char c : Text) {
        if (c != '_' && c != ' ' && c != '/') return false;
    }
    return true;
}

std::string Control::Elegido() const {
    if (ListIndex < 0 || ListIndex >= static_cast<int>(Items.size())) return {};
    return Items[static_cast<std::size_t>(ListIndex)];
}

void LlenaLista(Control& lista, Recordset& rs, const std::string& campoLista,
                const std::string& campoLigado) {
    lista.Items.clear();
    lista.ItemData.clear();
    lista.ListIndex = -1;
    lista.BoundText.clear();
    lista.Text.clear();
    if (!rs.Abierto() || rs.RecordCount() == 0) return;
    for (rs.MoveFirst(); !rs.Eof(); rs.MoveNext()) {
        lista.Items.push_back(rs.Campo(campoLista).Texto());
        lista.ItemData.push_back(campoLigado.empty() ? lista.Items.back()
                                                     : rs.Campo(campoLigado).Texto());
    }
}

bool EnlazaDataSource(Control& combo, BaseDD& base, const Conexion& cn, const std::string& fuente,
                      const std::string& campoLista, const std::string& campoLigado) {
    Recordset rs;
    const std::string columnas = campoLigado.empty() || campoLigado == campoLista
                                     ? campoLista
                                     : campoLista + "," + campoLigado;
    if (!base.AbrirDataSource(rs, cn, fuente, columnas)) {
        Recordset vacio;
        LlenaLista(combo, vacio, campoLista);
        return false;
    }
    LlenaLista(combo, rs, campoLista, campoLigado);
    return true;
}

Formulario::Formulario(std::string nombre, std::string caption) : nombre_(std::move(nombre)) {
    Caption = std::move(caption);
}

Control& Formulario::Agrega(const std::string& nombre, std::int16_t indice,
                            const std::string& caption) {
    auto clave = std::make_pair(nombre, indice);
    if (auto it = porNombre_.find(clave); it != porNombre_.end()) return *it->second;
    auto c = std::make_unique<Control>();
    c->Nombre = nombre;
    c->Indice = indice;
    c->Caption = caption;
    Control* p = c.get();
    controles_.push_back(std::move(c));
    porNombre_[clave] = p;
    return *p;
}

Control& Formulario::Ctl(const std::string& nombre, std::int16_t indice) {
    return const_cast<Control&>(std::as_const(*this).Ctl(nombre, indice));
}

const Control& Formulario::Ctl(const std::string& nombre, std::int16_t indice) const {
    auto it = porNombre_.find({nombre, indice});
    if (it == porNombre_.end()) {
        Control c;
        c.Nombre = nombre;
        c.Indice = indice;
        throw ErrorFormulario("La forma " + nombre_ + " no tiene el control " + c.NombreCompleto());
    }
    return *it->second;
}

bool Formulario::TieneControl(const std::string& nombre, std::int16_t indice) const {
    return porNombre_.count({nombre, indice}) > 0;
}

std::vector<const Control*> Formulario::Controles() const {
    std::vector<const Control*> r;
    for (const auto& c : controles_) r.push_back(c.get());
    return r;
}

std::vector<Control*> Formulario::Arreglo(const std::string& nombre) {
    std::vector<Control*> r;
    for (const auto& c : controles_) {
        if (c->Nombre == nombre) r.push_back(c.get());
    }
    std::sort(r.begin(), r.end(),
              [](const Control* a, const Control* b) { return a->Indice < b->Indice; });
    return r;
}

Control& Formulario::AgregaFecha(const std::string& nombre, std::int16_t indice) {
    Control& c = Agrega(nombre, indice);
    c.Mask = kMascaraFecha;
    c.Format = kFormatoFecha;
    if (c.Text.empty()) c.Text = kFechaVacia;
    return c;
}

void Formulario::Enfoca(Control& c) {
    if (foco_ == &c) return;
    Desenfoca();
    foco_ = &c;
    if (c.GotFocus) c.GotFocus(c);
}

void Formulario::Desenfoca() {
    Control* anterior = foco_;
    foco_ = nullptr;
    if (anterior && anterior->LostFocus) anterior->LostFocus(*anterior);
}

std::int16_t Formulario::Tecla(Control& c, std::int16_t keyCode, std::int16_t shift) {
    if (c.KeyDown) c.KeyDown(c, keyCode, shift);
    return keyCode;
}

std::int16_t Formulario::Pulsa(Control& c, std::int16_t keyAscii) {
    if (c.KeyPress) c.KeyPress(c, keyAscii);
    return keyAscii;
}

void Formulario::Carga() {
    if (cargada_) return;
    cargada_ = true;
    descargada_ = false;
    Load();
}

void Formulario::Descarga() {
    if (descargada_) return;
    Unload();
    descargada_ = true;
    cargada_ = false;
}

namespace detail {

std::pair<std::string, std::int16_t> SeparaNombre(const std::string& control) {
    auto abre = control.find('(');
    if (abre == std::string::npos) return {control, -1};
    if (control.back() != ')' || abre == 0 || abre + 2 > control.size() - 1) {
        throw ErrorFormulario("Nombre de control mal formado: " + control);
    }
    std::string numero = control.substr(abre + 1, control.size() - abre - 2);
    if (numero.empty() || numero.size() > 4) {
        throw ErrorFormulario("Índice de control mal formado: " + control);
    }
    for (char c : numero) {
        if (!std::isdigit(static_cast<unsigned char>(c))) {
            throw ErrorFormulario("Índice de control mal formado: " + control);
        }
    }
    return {control.substr(0, abre), static_cast<std::int16_t>(std::stoi(numero))};
}

bool Prefijo(const std::string& nombre, const char* p) {
    return nombre.rfind(p, 0) == 0;
}

std::string Minusculas(std::string s) {
    for (char& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return s;
}

// Position of `valor` among `items`: exact first, then without regard to case; -1 if none.
int Busca(const std::vector<std::string>& items, const std::string& valor) {
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (items[i] == valor) return static_cast<int>(i);
    }
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (Minusculas(items[i]) == Minusculas(valor)) return static_cast<int>(i);
    }
    return -1;
}

// A date box's text fits the mask "##/##/####": digits (or '_' not typed yet) and the slashes.
bool CabeEnMascara(const std::string& texto) {
    const std::string mascara = kMascaraFecha;
    if (texto.size() != mascara.size()) return false;
    for (std::size_t i = 0; i < texto.size(); ++i) {
        const bool digito = std::isdigit(static_cast<unsigned char>(texto[i])) || texto[i] == '_';
        if (mascara[i] == '#' ? !digito : texto[i] != mascara[i]) return false;
    }
    return true;
}

void Dispara(const std::function<void(Control&)>& evento, Control& c) {
    if (evento) evento(c);
}

}  // namespace detail

void Formulario::Fija(const std::string& control, const std::string& valor) {
    auto [nombre, indice] = detail::SeparaNombre(control);
    Control& c = Ctl(nombre, indice);
    const std::string completo = c.NombreCompleto();
    if (!c.Enabled) throw ErrorFormulario("El control " + completo + " está deshabilitado");
    if (detail::Prefijo(nombre, "txt") || detail::Prefijo(nombre, "mke")) {
        std::string texto = valor;
        if (detail::Prefijo(nombre, "mke")) {
            if (texto.empty()) texto = kFechaVacia;
            if (!detail::CabeEnMascara(texto)) {
                throw ErrorFormulario("La fecha " + completo + " se escribe dd/mm/aaaa, no '" +
                                      valor + "'");
            }
        }
        Enfoca(c);
        c.Text = texto;
        detail::Dispara(c.Change, c);
        Desenfoca();
    } else if (detail::Prefijo(nombre, "chk")) {
        if (valor != "0" && valor != "1") {
            throw ErrorFormulario("La casilla " + completo + " admite 0 o 1, no '" + valor + "'");
        }
        c.Value = valor == "1" ? 1 : 0;
        detail::Dispara(c.Click, c);
    } else if (detail::Prefijo(nombre, "opt")) {
        if (valor != "1") {
            throw ErrorFormulario("La opción " + completo + " solo admite 1, no '" + valor + "'");
        }
        for (const auto& otro : controles_) {
            if (otro->Nombre == nombre) otro->Value = 0;
        }
        c.Value = 1;
        detail::Dispara(c.Click, c);
    } else if (detail::Prefijo(nombre, "cmb") || detail::Prefijo(nombre, "dcm") ||
               detail::Prefijo(nombre, "stb")) {
        int pos = -1;
        if (!detail::Prefijo(nombre, "dcm") && valor.size() > 1 && valor[0] == '#') {
            const std::string n = valor.substr(1);
            bool numero = n.size() <= 5;
            for (char ch : n) numero = numero && std::isdigit(static_cast<unsigned char>(ch));
            pos = numero ? std::stoi(n) : -1;
            if (pos < 0 || pos >= static_cast<int>(c.Items.size())) {
                throw ErrorFormulario("La lista " + completo + " no tiene el elemento " + valor);
            }
        } else {
            if (detail::Prefijo(nombre, "dcm")) pos = detail::Busca(c.ItemData, valor);
            if (pos < 0) pos = detail::Busca(c.Items, valor);
            if (pos < 0) {
                throw ErrorFormulario("La lista " + completo + " no tiene '" + valor + "'");
            }
        }
        c.ListIndex = static_cast<std::int16_t>(pos);
        c.Text = pos < static_cast<int>(c.Items.size()) ? c.Items[pos] : valor;
        if (detail::Prefijo(nombre, "dcm")) {
            c.BoundText = pos < static_cast<int>(c.ItemData.size()) ? c.ItemData[pos] : c.Text;
            detail::Dispara(c.Change, c);
        }
        detail::Dispara(c.Click, c);
    } else if (detail::Prefijo(nombre, "cmd") || detail::Prefijo(nombre, "img")) {
        detail::Dispara(c.Click, c);
    } else {
        throw ErrorFormulario("El control " + completo + " no se puede fijar");
    }
}

}  // namespace paratzorep::host
