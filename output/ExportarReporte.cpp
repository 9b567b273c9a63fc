#include "output/ExportarReporte.h"

#include <filesystem>

#include "renderer/TiposArchivo.h"
#include "session/Sesion.h"
#include "session/SuModulo.h"
#include "toolkit/DeArchivos.h"
#include "toolkit/ElSkin.h"
#include "toolkit/LibKRVM.h"
#include "toolkit/Texto.h"

namespace paratzorep::output {

namespace detail {

std::string DosDigitos(int codigo) {
    std::string s = std::to_string(codigo % 100);
    return s.size() < 2 ? "0" + s : s;
}

}  // namespace detail

std::vector<std::string> TiposDeExportacion(bool conPdf) {
    std::vector<std::string> r;
    for (const auto& t : renderer::TiposArchivo()) {
        if (t.tipo == renderer::TipoArchivo::Pdf && !conPdf) continue;
        r.push_back(std::string(t.texto) + detail::DosDigitos(t.codigo));
    }
    return r;
}

std::string ExtensionDeTipo(const std::string& item) {
    const auto asterisco = item.find('*');
    if (asterisco == std::string::npos) return "";
    const auto cierre = item.find(')', asterisco);
    std::string ext =
        item.substr(asterisco + 1, cierre == std::string::npos ? 4 : cierre - asterisco - 1);
    return ext;
}

std::int16_t CodigoDeTipo(const std::string& item) {
    if (item.size() < 2) return 0;
    return static_cast<std::int16_t>(toolkit::LibKRVM().kvVal(item.substr(item.size() - 2)));
}

std::string ConSeparador(const std::string& carpeta) {
    if (carpeta.empty() || carpeta.back() == '/' || carpeta.back() == '\\') return carpeta;
    return carpeta + "/";
}

frmExportarReporte::frmExportarReporte(host::Interaccion* sink)
    : host::Formulario("frmExportarReporte", "Exportar reporte"), sink_(sink) {
    Agrega("cmbTipo");
    Agrega("txtArchivo");
    Agrega("lblRuta");
    Agrega("cmdRuta", -1, "...");
    Agrega("chkSoloTexto", -1, "Sólo texto");
    Agrega("lblNumTipo");
    Agrega("cmdAceptar", -1, "&Aceptar");
    Agrega("Command1", -1, "&Cancelar");
    Ctl("cmdAceptar").Click = [this](host::Control&) { Aceptar(); };
    Ctl("cmdRuta").Click = [this](host::Control&) { EligeRuta(); };
    Ctl("Command1").Click = [this](host::Control&) {
        cancelado_ = true;
        aceptado_ = false;
    };
    Ctl("txtArchivo").Change = [this](host::Control&) { CambiaNombre(); };
    Ctl("chkSoloTexto").Click = [this](host::Control&) { SoloTexto(); };
}

host::Interaccion& frmExportarReporte::Sink() const {
    return sink_ ? *sink_ : host::interaccion();
}

void frmExportarReporte::Load() {
    if (auto skin = session::ObjetoAyuda<toolkit::ElSkin>("ElSkin")) skin->Skin(*this);
    auto& tipo = Ctl("cmbTipo");
    tipo.Items = TiposDeExportacion(!session::sesion().RutaPDFs.empty());
    tipo.ListIndex = 0;
    tipo.Text = tipo.Items.front();
    std::error_code ec;
    Ctl("lblRuta").Caption = ConSeparador(std::filesystem::current_path(ec).string());
}

// A name typed with a known extension picks that type and loses the extension.
void frmExportarReporte::CambiaNombre() {
    auto& nombre = Ctl("txtArchivo");
    auto& tipo = Ctl("cmbTipo");
    for (std::size_t i = 0; i < tipo.Items.size(); ++i) {
        const std::string ext = ExtensionDeTipo(tipo.Items[i]);
        if (ext.empty() || nombre.Text.size() <= ext.size()) continue;
        const std::string fin = nombre.Text.substr(nombre.Text.size() - ext.size());
        if (!toolkit::detail::IgualesSinCaso(fin, ext)) continue;
        if (!Ctl("chkSoloTexto").Value || i == 0) {
            tipo.ListIndex = static_cast<std::int16_t>(i);
            tipo.Text = tipo.Items[i];
        }
        nombre.Text.resize(nombre.Text.size() - ext.size());
        return;
    }
}

// "Only text": the plain-text type, the list locked until the box is cleared.
void frmExportarReporte::SoloTexto() {
    auto& tipo = Ctl("cmbTipo");
    const bool solo = Ctl("chkSoloTexto").Value != 0;
    if (solo && !tipo.Items.empty()) {
        tipo.ListIndex = 0;
        tipo.Text = tipo.Items.front();
    }
    tipo.Enabled = !solo;
}

void frmExportarReporte::EligeRuta() {
    const std::string actual = Ctl("lblRuta").Caption;
    std::string carpeta = Sink().EligeCarpeta("Carpeta del archivo", actual);
    if (!carpeta.empty()) Ctl("lblRuta").Caption = ConSeparador(toolkit::RutaNativa(carpeta));
}

void frmExportarReporte::Aceptar() {
    const auto& nombre = Ctl("txtArchivo");
    const auto& tipo = Ctl("cmbTipo");
    if (toolkit::detail::Recorta(nombre.Text).empty() || tipo.ListIndex < 0 ||
        static_cast<std::size_t>(tipo.ListIndex) >= tipo.Items.size()) {
        Sink().Beep();
        return;
    }
    const std::string& item = tipo.Items[static_cast<std::size_t>(tipo.ListIndex)];
    auto& ruta = Ctl("lblRuta");
    if (ruta.Caption.empty()) {
        std::error_code ec;
        ruta.Caption = std::filesystem::current_path(ec).string();
    }
    ruta.Caption = ConSeparador(ruta.Caption);
    nombreCompleto_ = ruta.Caption + nombre.Text + ExtensionDeTipo(item);
    Ctl("lblNumTipo").Caption = item.substr(item.size() - 2);
    aceptado_ = true;
    cancelado_ = false;
}

RespuestaExportar PideArchivoDeSalida(host::Interaccion& interaccion) {
    frmExportarReporte forma(&interaccion);
    forma.Carga();
    const bool aceptado = interaccion.Dialogo(forma);
    if (aceptado && !forma.Aceptado() && !forma.Cancelado()) forma.Fija("cmdAceptar", "");
    RespuestaExportar r;
    r.aceptado = aceptado && forma.Aceptado();
    if (r.aceptado) {
        const auto& tipo = forma.Ctl("cmbTipo");
        r.nombreArchivo = ConSeparador(forma.Ctl("lblRuta").Caption) +
                          forma.Ctl("txtArchivo").Text +
                          ExtensionDeTipo(tipo.Items[static_cast<std::size_t>(tipo.ListIndex)]);
        r.tipo =
            static_cast<std::int16_t>(toolkit::LibKRVM().kvVal(forma.Ctl("lblNumTipo").Caption));
    }
    forma.Descarga();
    return r;
}

}  // namespace paratzorep::output
