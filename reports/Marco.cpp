#include "reports/Marco.h"

#include <chrono>
#include <exception>

#include "data/AbrirBaseDeDatos.h"
#include "data/ConexionMaria.h"
#include "data/TablasTrabajo.h"
#include "host/Interaccion.h"
#include "host/Menu.h"
#include "host/Proceso.h"
#include "output/Ejecutor.h"
#include "output/ExportarReporte.h"
#include "renderer/TiposArchivo.h"
#include "session/Iniciales.h"
#include "session/Sesion.h"
#include "session/Solicitud.h"
#include "session/SuModulo.h"
#include "toolkit/ElSkin.h"
#include "toolkit/LibKRVM.h"
#include "toolkit/Texto.h"

namespace paratzorep::reports {

namespace detail {

bool RompeLiteral(const std::string& texto) {
    return texto.find_first_of("'\\") != std::string::npos;
}

bool TextoInvalido(const std::string& texto) {
    return !toolkit::detail::EsUtf8Valido(texto);
}

const toolkit::LibKRVM& Lib() {
    static const toolkit::LibKRVM local;
    const auto& lib = session::sesion().LibKRVM;
    return lib ? *lib : local;
}

host::BaseDD& Base(const std::string& paso) {
    auto& bd = session::sesion().BaseDD;
    if (!bd) throw ErrorPaso(paso, "la sesión no tiene objeto de acceso a datos (BaseDD)");
    return *bd;
}

// The reason of a data-access failure with the server's code, for the user; a server that
// cannot be reached gets the hint to start it.
std::string Motivo(const std::exception& e) {
    if (const auto* d = dynamic_cast<const host::ErrorDatos*>(&e)) {
        std::string m = d->MensajeServidor().empty() ? d->what() : d->MensajeServidor();
        if (data::EsServidorInalcanzable(d->Codigo()))
            m += ". " + data::ConsejoServidor();
        else if (d->Codigo() != 0 && d->Codigo() < 2000)
            m += " (error " + std::to_string(d->Codigo()) + " del servidor)";
        return m;
    }
    return e.what();
}

}  // namespace detail

FormaReporte::FormaReporte(std::string nombre, std::string caption)
    : FormaBasica(std::move(nombre), std::move(caption)),
      ejecutor_([](const std::string& archivoLocal) { output::EjecutaReporte(archivoLocal); }) {
    // The destination frame is the dressing's Frame2 ("Enviar reporte a: ").
    Agrega("lblTipoArchivo").Caption = "Tipo de archivo";
    Agrega("pctFondoUniversal");
}

FormaReporte::~FormaReporte() = default;

std::string FormaReporte::ArchivoLocal() {
    // One per process, in its private folder: prints that run at once never share headings.
    return (host::CarpetaPrivada() / "Auxiliar.mdb").string();
}

std::int16_t FormaReporte::Destino() const {
    for (std::int16_t i = 0; i < 3; ++i) {
        if (Ctl("optDispos", i).Value != 0) return i;
    }
    return 0;
}

void FormaReporte::Load() {
    ConectaEventos();
    // Skin and the destination frame's dressing.
    if (auto skin = session::ObjetoAyuda<toolkit::ElSkin>("ElSkin")) skin->Skin(*this);
    VisteMarcoDestino(*this);
    destinoAnterior_ = Destino();
    // The company database stays open while the form is.
    if (session::sesion().BaseDD) AbreEmpresa();
    for (const Control* c : Controles()) {
        if (c->Tipo() != host::TipoControl::Fecha) continue;
        Control& f = Ctl(c->Nombre, c->Indice);
        f.Mask = detail::Lib().MascaraFecha();
        f.Format = detail::Lib().FormatoFecha();
        if (f.Text.empty()) f.Text = host::kFechaVacia;
    }
    if (cn_) {
        FechasPorOmision();
        EnlazaCombos();
    }
    LeeRecordados();
    session::LeePosicion(*this);
    AlTerminarCarga();
}

bool FormaReporte::AbreEmpresa() {
    auto& bd = *session::sesion().BaseDD;
    if (data::AbrirBaseDeDatos(cn_, bd.cMiBase)) return true;
    ultimoError_ = "No se pudo abrir la base de datos de la empresa '" + bd.cMiBase +
                   "': " + bd.UltimoError() + ". " +
                   (data::EsServidorInalcanzable(bd.UltimoCodigo())
                        ? data::ConsejoServidor()
                        : std::string("Revise los datos de conexión."));
    session::Mensaje(ultimoError_, Caption, host::Icono::Critico);
    return false;
}

void FormaReporte::FechasPorOmision() {
    const std::string tabla = TablaMovimientos();
    if (tabla.empty() || !TieneControl("mkeFecha", 0)) return;
    auto& bd = *session::sesion().BaseDD;
    auto lee = [&](const std::string& fuente, Control& caja) {
        host::Recordset rs;
        if (!bd.AbrirTabla(rs, cn_, fuente) || rs.RecordCount() == 0) return;
        rs.MoveFirst();
        const std::string f = detail::Lib().FechaDMA(rs.Campo("Fecha").Texto());
        if (!f.empty()) caja.Text = f;
    };
    lee(tabla + " WHERE Fecha>'0000-00-00' ORDER BY Fecha LIMIT 1", Ctl("mkeFecha", 0));
    if (TieneControl("mkeFecha", 1)) {
        lee(tabla + " WHERE Fecha<'9999-12-31' ORDER BY Fecha DESC LIMIT 1", Ctl("mkeFecha", 1));
    }
}

void FormaReporte::ConectaEventos() {
    for (const Control* cc : Controles()) {
        Control& c = Ctl(cc->Nombre, cc->Indice);
        const auto tipo = c.Tipo();
        if (tipo == host::TipoControl::Texto || tipo == host::TipoControl::Fecha) {
            // Highlight on focus; arrows and Enter move between boxes where there is a screen.
            c.GotFocus = [](Control& x) { (void)detail::Lib().Resalta(x.Text); };
            c.KeyDown = [](Control&, std::int16_t& tecla, std::int16_t shift) {
                (void)detail::Lib().Teclas(tecla, shift);
            };
            c.KeyPress = [](Control&, std::int16_t& tecla) { (void)detail::Lib().Enter(tecla); };
            c.LostFocus = [this](Control& x) { AlSalir(x); };
        }
    }
    for (std::int16_t i = 0; i < 3; ++i) {
        Ctl("optDispos", i).Click = [this, i](Control&) { EligeDestino(i); };
    }
    const char* imagenes[] = {"imgPant", "imgImpr", "imgArch"};
    for (std::int16_t i = 0; i < 3; ++i) {
        Ctl(imagenes[i]).Click = [this, i](Control&) {
            Fija("optDispos(" + std::to_string(i) + ")", "1");
        };
    }
    Ctl("cmdImprimir").Click = [this](Control&) { Imprime(); };
}

void FormaReporte::EligeDestino(std::int16_t opcion) {
    if (opcion == 2) {
        PideArchivo();
    } else {
        destinoAnterior_ = opcion;
    }
    const bool archivo = Destino() == 2;
    Ctl("lblTipoArchivo").Visible = archivo;
    Ctl("lblArchivoReporte").Visible = archivo;
}

void FormaReporte::PideArchivo() {
    auto respuesta = output::PideArchivoDeSalida(host::interaccion());
    if (!respuesta.aceptado || respuesta.nombreArchivo.empty()) {
        // Cancelled: the destination chosen before stays.
        for (std::int16_t i = 0; i < 3; ++i) Ctl("optDispos", i).Value = i == destinoAnterior_;
        return;
    }
    ArchivoSalida = respuesta.nombreArchivo;
    TipoSalida = respuesta.tipo;
    const auto tipo = renderer::TipoPorCodigo(respuesta.tipo);
    Ctl("lblTipoArchivo").Caption =
        tipo ? toolkit::detail::Recorta(std::string(tipo->texto)) : std::to_string(respuesta.tipo);
    Ctl("lblArchivoReporte").Caption = ArchivoSalida;
    destinoAnterior_ = 2;
}

void FormaReporte::Avisa(const std::string& texto) {
    ultimoError_ = texto;
    session::Mensaje(texto, Caption, host::Icono::Exclamacion);
}

bool FormaReporte::RevisaEntradas() {
    for (const Control* c : Controles()) {
        if (c->Tipo() != host::TipoControl::Texto || !c->Visible || !c->Enabled) continue;
        const std::string dato = c->Caption.empty() ? c->NombreCompleto() : c->Caption;
        if (detail::TextoInvalido(c->Text)) {
            Avisa("El dato '" + dato + "' tiene caracteres que no son texto válido (UTF-8). " +
                  "Corríjalo y vuelva a imprimir.");
            return false;
        }
        if (!detail::RompeLiteral(c->Text)) continue;
        Avisa("El dato '" + dato + "' no puede llevar comillas simples (') ni diagonales " +
              "invertidas (\\). Corríjalo y vuelva a imprimir.");
        return false;
    }
    return true;
}

bool FormaReporte::RevisaFechas() {
    for (const Control* c : Controles()) {
        if (c->Tipo() != host::TipoControl::Fecha || !c->Visible || !c->Enabled) continue;
        if (c->SinFecha() && FechaOpcional(*c)) continue;
        const std::string que = c->Indice == 1 ? "final" : "inicial";
        if (c->SinFecha() || !detail::Lib().EsFecha(c->Text)) {
            Avisa("La fecha " + que + " ('" + c->Text +
                  "') no es una fecha válida. Escríbala como dd/mm/aaaa.");
            return false;
        }
        if (!session::FechaReporteValida(c->Text)) {
            // The guard beeped; the print stops there.
            ultimoError_ = "La fecha " + que + " está fuera de los " +
                           std::to_string(session::sesion().DiasParaReportes) +
                           " días permitidos para los reportes";
            return false;
        }
    }
    return true;
}

std::string FormaReporte::Fecha(std::int16_t i) const {
    const Control& c = Ctl("mkeFecha", i);
    return c.SinFecha() ? std::string() : c.Text;
}

std::string FormaReporte::FechaSQL(std::int16_t i) const {
    return detail::Lib().FechaSQL(Fecha(i));
}

std::string FormaReporte::ClonaTabla(const std::string& modelo, bool enReportes) {
    Paso("crear la tabla de trabajo a partir de '" + modelo + "'");
    try {
        std::string tabla = data::ClonaEstructura(cn_, modelo, enReportes);
        tablas_.push_back(tabla);
        return tabla;
    } catch (const std::exception& e) {
        session::HuboError() = true;
        causaError_ = detail::Motivo(e);
        return {};
    }
}

std::int64_t FormaReporte::Ejecutar(const std::string& sql) {
    return detail::Base(paso_).Executar(cn_, sql);
}

std::int64_t FormaReporte::Llena(const std::string& sql) {
    auto& sink = host::interaccion();
    sink.Progreso(-1, "Llenando la tabla de trabajo...");
    const auto inicio = std::chrono::steady_clock::now();
    const std::int64_t filas = Ejecutar(sql);
    const double s =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - inicio).count();
    std::string texto =
        "Tabla de trabajo: " + output::detail::ConMiles(filas) + (filas == 1 ? " fila" : " filas");
    if (s >= 0.2)
        texto +=
            " (" + output::detail::ConMiles(static_cast<std::int64_t>(filas / s)) + " filas/s)";
    sink.Progreso(-1, texto);
    return filas;
}

void FormaReporte::PasaGenerales(std::vector<std::pair<std::string, host::Valor>> valores) {
    Paso("escribir los encabezados en el archivo de trabajo local");
    auto& bd = detail::Base(paso_);
    host::Conexion local;
    if (!bd.AbreBdDAccess(local, ArchivoLocal())) {
        throw ErrorPaso(paso_, "no se pudo abrir " + ArchivoLocal() + ": " + bd.UltimoError());
    }
    struct Cierra {
        host::BaseDD& bd;
        host::Conexion& cn;
        ~Cierra() { bd.CierraBdD(cn); }
    } cierra{bd, local};
    session::PasaGeneralesAlRpt(local, std::move(valores));
}

void FormaReporte::Ejecuta() {
    auto& sol = session::solicitud();
    sol.Destino = Destino();
    if (sol.Destino == 2) {
        if (ArchivoSalida.empty()) {
            throw ErrorPaso("preparar la salida",
                            "no se eligió el archivo de salida; elija de nuevo \"&Archivo\"");
        }
        sol.NombreArchivo = ArchivoSalida;
        sol.TipoArchivo = TipoSalida;
    }
    sol.Copias = Copias;
    sol.Impresora = Impresora;
    sol.TituloVentana = Caption;
    sol.UsuarioImpresion = session::sesion().UserUsuario;
    sol.ArchivoLocal = ArchivoLocal();
    Paso("generar el reporte con la plantilla '" + sol.Plantilla + "'");
    ejecutor_(ArchivoLocal());
}

void FormaReporte::EjecutaFormato(const std::string& formato) {
    auto& sol = session::solicitud();
    output::PreparaFormato(formato, Caption);
    sol.Copias = Copias;
    sol.Impresora = Impresora;
    sol.UsuarioImpresion = session::sesion().UserUsuario;
    sol.ArchivoLocal = ArchivoLocal();
    Paso("imprimir el formato '" + formato + "'");
    ejecutor_(ArchivoLocal());
}

void FormaReporte::EjecutaArchivo(const std::string& ruta, std::int16_t tipo) {
    auto& sol = session::solicitud();
    sol.Destino = 2;
    sol.NombreArchivo = ruta;
    sol.TipoArchivo = tipo;
    sol.Copias = 1;
    sol.Impresora.clear();
    sol.TituloVentana = Caption;
    sol.UsuarioImpresion = session::sesion().UserUsuario;
    sol.ArchivoLocal = ArchivoLocal();
    Paso("generar " + ruta + " con la plantilla '" + sol.Plantilla + "'");
    ejecutor_(ArchivoLocal());
}

bool FormaReporte::EnlazaCombo(Control& combo, const std::string& fuente,
                               const std::string& campoLista, const std::string& campoLigado) {
    auto& bd = session::sesion().BaseDD;
    return bd && cn_ && host::EnlazaDataSource(combo, *bd, cn_, fuente, campoLista, campoLigado);
}

void FormaReporte::BorraTablas(std::string& problemas) {
    for (const auto& tabla : tablas_) {
        try {
            data::BorraTablaTrabajo(cn_, tabla);
        } catch (const std::exception& e) {
            // With the server gone, the reason was said already: the table is cleaned later.
            const auto* d = dynamic_cast<const host::ErrorDatos*>(&e);
            if (d && data::EsServidorInalcanzable(d->Codigo()))
                problemas += "\nLa tabla de trabajo " + tabla +
                             " quedó en el servidor; se borrará en la próxima impresión.";
            else
                problemas +=
                    "\nNo se pudo borrar la tabla de trabajo " + tabla + ": " + detail::Motivo(e);
        }
    }
    tablas_.clear();
}

bool FormaReporte::Imprime() {
    session::HuboError() = false;
    session::solicitud().Limpia();
    ultimoError_.clear();
    causaError_.clear();
    // Without the company database the filters cannot be checked: its failure is the only
    // message (the dates it would have filled in are not the user's fault).
    if (!cn_) {
        if (!session::sesion().BaseDD) {
            Avisa(
                "No se pudo generar el reporte: la sesión no tiene objeto de acceso a datos "
                "(BaseDD)");
            return false;
        }
        if (!AbreEmpresa()) {
            session::HuboError() = true;
            return false;
        }
    }
    paso_ = "revisar los datos";
    if (!RevisaEntradas() || !RevisaFechas()) return false;
    // Work tables left by prints that died (process killed, server restarted) go now.
    try {
        data::BorraTablasHuerfanas(*session::sesion().BaseDD, cn_);
    } catch (const std::exception&) {
        // They stay for the next print; this one does not depend on it.
    }

    std::string fallo;            // the step that failed and why; empty when all went well
    bool enteroDelMotor = false;  // the runner's message already names the report and the cause
    try {
        Imprimir();
        if (session::HuboError()) {
            fallo = "al " + paso_ + ": " +
                    (causaError_.empty() ? std::string("un paso anterior falló") : causaError_);
        }
    } catch (const output::ErrorReporte& e) {
        fallo = e.what();
        enteroDelMotor = true;
    } catch (const ErrorPaso& e) {
        fallo = "al " + e.Paso() + ": " + e.what();
    } catch (const std::exception& e) {
        fallo = "al " + paso_ + ": " + detail::Motivo(e);
    }
    std::string problemas;
    BorraTablas(problemas);
    host::interaccion().Progreso(0, "");
    if (fallo.empty() && problemas.empty()) {
        GuardaRecordados();
        return true;
    }
    if (fallo.empty()) {
        ultimoError_ = "El reporte se generó, pero quedó pendiente la limpieza:" + problemas;
    } else if (enteroDelMotor) {
        ultimoError_ = fallo + problemas;
    } else {
        ultimoError_ = "No se pudo generar el reporte " + fallo + problemas;
    }
    session::HuboError() = true;
    session::Mensaje(ultimoError_, Caption, host::Icono::Critico);
    return fallo.empty();
}

void FormaReporte::LeeRecordados() {
    for (const auto& nombre : Recordados()) {
        const std::string valor = session::LeeIni(Nombre(), nombre);
        if (valor.empty()) continue;
        try {
            Fija(nombre, valor);
        } catch (const std::exception&) {
            // A remembered value the form no longer takes is ignored.
        }
    }
}

void FormaReporte::GuardaRecordados() {
    for (const auto& nombre : Recordados()) {
        try {
            auto paren = nombre.find('(');
            const std::string base = nombre.substr(0, paren);
            const std::int16_t indice =
                paren == std::string::npos
                    ? std::int16_t{-1}
                    : static_cast<std::int16_t>(std::stoi(nombre.substr(paren + 1)));
            const Control& c = Ctl(base, indice);
            const auto tipo = c.Tipo();
            const std::string valor =
                tipo == host::TipoControl::Casilla || tipo == host::TipoControl::Opcion
                    ? std::to_string(c.Value)
                    : (tipo == host::TipoControl::ComboDatos ? c.BoundText : c.Text);
            session::EscribeIni(Nombre(), nombre, valor);
        } catch (const std::exception&) {
            // Settings that cannot be written do not spoil a finished report.
        }
    }
}

FormularioPareado::FormularioPareado(std::string nombre, std::string caption)
    : FormaReporte(std::move(nombre), std::move(caption)) {
    Agrega("lblTipo");
    Agrega("lblPersona", -1, "Cliente");
}

bool FormaReporte::Cierra() {
    auto& menu = session::sesion().objMenu;
    if (menu && !menu->SiDescargaVentana(*this)) return false;
    Descarga();
    return true;
}

void FormaReporte::Unload() {
    if (auto& bd = session::sesion().BaseDD; bd && cn_) bd->CierraBdD(cn_);
    cn_.reset();
    auto& menu = session::sesion().objMenu;
    if (menu) menu->stListaVentanas(*this);
    session::GuardaPosicion(*this);
    if (menu) menu->AlDescargarVentanaHija(*this);
}

}  // namespace paratzorep::reports
