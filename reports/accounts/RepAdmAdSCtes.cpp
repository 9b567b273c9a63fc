#include "reports/accounts/RepAdmAdSCtes.h"

#include <algorithm>
#include <filesystem>

#include "host/Interaccion.h"
#include "renderer/TiposArchivo.h"
#include "reports/accounts/FormaCuentas.h"
#include "session/Sesion.h"
#include "session/Solicitud.h"
#include "session/SuModulo.h"
#include "toolkit/Correo.h"
#include "toolkit/Fechas.h"
#include "toolkit/Ini.h"
#include "toolkit/LibKRVM.h"
#include "toolkit/Texto.h"

namespace paratzorep::reports {

namespace {

const toolkit::LibKRVM& Lib() {
    static const toolkit::LibKRVM local;
    const auto& lib = session::sesion().LibKRVM;
    return lib ? *lib : local;
}

// The bound value of a visible list with a choice; "" otherwise.
std::string ElegidoDe(const Formulario& f, std::int16_t i) {
    const Control& c = f.Ctl("dcmDato", i);
    return c.Visible && c.ListIndex >= 0 ? c.BoundText : std::string();
}

}  // namespace

RepAdmAdSCtes::RepAdmAdSCtes() : FormaReporte("RepAdmAdSCtes", "Antigüedad de saldos de clientes") {
    Agrega("lblFecha", 0, "Al día:");
    AgregaFecha("mkeFecha", 0);
    Agrega("txtDato", 0, "Del cliente");
    Agrega("lblDato", 0);
    Agrega("txtDato", 1, "Al cliente");
    Agrega("lblDato", 1);
    const char* tipos[] = {"Factura", "Cargo", "Remisión", "Apartado"};
    for (std::int16_t i = 0; i < 4; ++i) Agrega("chkVentas", i, tipos[i]).Value = 1;
    Agrega("chkSinVencer", -1, "Incluir documentos sin vencer").Value = 1;
    Agrega("lblLista", 1, "Clasificación:");
    Agrega("dcmDato", 1, "Clasificación");
    Agrega("lblLista", 2, "Moneda:");
    Agrega("dcmDato", 2, "Moneda");
    Agrega("lblLista", 3, "Vendedor:");
    Agrega("dcmDato", 3, "Vendedor");
    Agrega("cmdEnviar", -1, "&Enviar por correo").Click = [this](Control&) { Envia(); };
}

void RepAdmAdSCtes::EnlazaCombos() {
    const auto& cn = ConexionEmpresa();
    struct Lista {
        std::int16_t i;
        const char* ajuste;
        const char* fuente;
        const char* lista;
        const char* ligado;
    };
    const Lista listas[] = {
        {1, "ClasificaCtes", "clasificactes ORDER BY Clasificacion", "Clasificacion",
         "Clasificacion"},
        {2, "MultiMoneda", "monedas ORDER BY Abreviacion", "Abreviacion", "Id"},
        {3, "Vendedores", "vendedores ORDER BY Clave", "Nombre", "Clave"},
    };
    for (const auto& l : listas) {
        const bool activa = session::LeerConfigBool(cn, l.ajuste);
        if (activa) EnlazaCombo(Ctl("dcmDato", l.i), l.fuente, l.lista, l.ligado);
        Ctl("dcmDato", l.i).Visible = activa;
        Ctl("lblLista", l.i).Visible = activa;
    }
    Ctl("chkVentas", 2).Visible = session::LeerConfigBool(cn, "Remisiones");
    Ctl("chkVentas", 3).Visible = session::LeerConfigBool(cn, "Apartados");
}

void RepAdmAdSCtes::AlTerminarCarga() {
    // The cut-off date defaults to today.
    Control& fecha = Ctl("mkeFecha", 0);
    if (fecha.SinFecha()) fecha.Text = toolkit::TextoDMA(toolkit::Hoy());
    // Sending needs the mail server and the sender's address.
    const auto correo = toolkit::LeeServidorCorreo();
    Control& enviar = Ctl("cmdEnviar");
    enviar.Enabled = correo.falta.empty() && correo.servidor.enviarCorreos;
    enviar.Tag = !correo.servidor.enviarCorreos
                     ? "el envío de correos está apagado en este equipo (EnviarCorreos=0 en " +
                           toolkit::ArchivoRegistro().string() + ")"
                 : correo.falta.empty() ? std::string()
                                        : "falta " + correo.falta + " en la sección [kvtz5] de " +
                                              toolkit::ArchivoRegistro().string();
}

void RepAdmAdSCtes::AlSalir(Control& c) {
    if (c.Nombre != "txtDato" || c.Indice < 0 || c.Indice > 1) return;
    Ctl("lblDato", c.Indice).Caption =
        NombreDeCuenta(ConexionEmpresa(), true, toolkit::detail::Recorta(c.Text));
}

FiltrosAntiguedad RepAdmAdSCtes::Filtros() const {
    FiltrosAntiguedad f;
    f.corteSQL = FechaSQL(0);
    f.clave0 = toolkit::detail::Recorta(Ctl("txtDato", 0).Text);
    f.clave1 = toolkit::detail::Recorta(Ctl("txtDato", 1).Text);
    const auto& tipos = TiposAntiguedadClientes();
    for (std::size_t i = 0; i < tipos.size(); ++i) {
        const Control& c = Ctl("chkVentas", static_cast<std::int16_t>(i));
        if (c.Visible && c.Value != 0) f.tipos.push_back(tipos[i].tipo);
    }
    f.sinVencer = Ctl("chkSinVencer").Value != 0;
    f.clasificacion = ElegidoDe(*this, 1);
    f.moneda = ElegidoDe(*this, 2);
    f.vendedor = ElegidoDe(*this, 3);
    return f;
}

std::string RepAdmAdSCtes::FormulaEncabezado() const {
    return session::LlenaXXX("ENCABEZADO='XXX'",
                             Caption + " al día: " + Lib().FechaMesCorto(Fecha(0)));
}

std::string RepAdmAdSCtes::ArchivoHoja(const std::string& carpeta, const std::string& clave) {
    // A key never names another folder.
    std::string nombre = clave;
    std::replace(nombre.begin(), nombre.end(), '/', '_');
    return (std::filesystem::path(carpeta) / ("ADS-" + nombre + ".pdf")).string();
}

std::string RepAdmAdSCtes::LlenaTabla(const FiltrosAntiguedad& f, const std::string& origen) {
    const std::string tabla = ClonaTabla("adsmovtos", true);
    if (session::HuboError()) return tabla;
    for (const auto& t : TiposAntiguedadClientes()) {
        if (std::find(f.tipos.begin(), f.tipos.end(), t.tipo) == f.tipos.end()) continue;
        // Charges carry no seller: a report for one seller lists documents only.
        if (t.tipo == 'C' && !f.vendedor.empty()) continue;
        Paso("llenar la tabla de trabajo " + tabla + " con " + t.tabla);
        FormaReporte::Llena(SqlAntiguedad(tabla, "cxc", t, f, origen));
    }
    return tabla;
}

void RepAdmAdSCtes::PreparaSolicitud(const std::string& tabla, const FiltrosAntiguedad& f) {
    std::string filtros;
    auto suma = [&](const std::string& parte) {
        filtros += (filtros.empty() ? "" : " · ") + parte;
    };
    std::string tipos;
    for (const Control* c : const_cast<RepAdmAdSCtes*>(this)->Arreglo("chkVentas"))
        if (c->Visible && c->Value != 0) tipos += (tipos.empty() ? "" : ", ") + c->Caption;
    suma(tipos.empty() ? "Ningún tipo de documento" : tipos);
    if (!f.clave0.empty() && !f.clave1.empty())
        suma("Clientes del " + f.clave0 + " al " + f.clave1);
    else if (!f.clave0.empty() || !f.clave1.empty())
        suma("Cliente " + (f.clave0.empty() ? f.clave1 : f.clave0));
    for (std::int16_t i = 1; i <= 3; ++i)
        if (!ElegidoDe(*this, i).empty())
            suma(Ctl("dcmDato", i).Caption + ": " + Ctl("dcmDato", i).Elegido());
    suma(f.sinVencer ? "Con documentos sin vencer" : "Solo documentos vencidos");
    PasaGenerales({{"Filtros", host::Valor(filtros)}});

    auto& sol = session::solicitud();
    sol.Plantilla = "adsdcm.rpt";
    sol.Formula(0, FormulaEncabezado());
    sol.Formula(1, session::LlenaXXX("TEXTOLLAVE='XXX'", "Movto."));
    sol.MapeaTabla("adsmovtos", tabla);
}

void RepAdmAdSCtes::Imprimir() {
    if (enviando_) {
        EnviaHojas();
        return;
    }
    Paso("armar las condiciones del reporte");
    const FiltrosAntiguedad f = Filtros();
    const std::string tabla = LlenaTabla(f, "");
    if (session::HuboError()) return;
    PreparaSolicitud(tabla, f);
    Ejecuta();
}

bool RepAdmAdSCtes::Envia() {
    enviando_ = true;
    struct Fin {
        bool& b;
        ~Fin() { b = false; }
    } fin{enviando_};
    return Imprime() && !session::HuboError();
}

void RepAdmAdSCtes::EnviaHojas() {
    Paso("leer los datos del correo");
    const auto lectura = toolkit::LeeServidorCorreo();
    if (!lectura.servidor.enviarCorreos)
        throw ErrorPaso("leer los datos del correo",
                        "el envío de correos está apagado en este equipo (EnviarCorreos=0 "
                        "en " +
                            toolkit::ArchivoRegistro().string() + ")");
    if (!lectura.falta.empty())
        throw ErrorPaso("leer los datos del correo", "falta " + lectura.falta +
                                                         " en la sección [kvtz5] de " +
                                                         toolkit::ArchivoRegistro().string());
    const std::string carpeta = session::sesion().RutaPDFs;
    if (carpeta.empty())
        throw ErrorPaso("leer los datos del correo",
                        "no se indicó la carpeta de los archivos PDF (RutaPDFs)");

    Paso("armar las condiciones del envío");
    const FiltrosAntiguedad f = Filtros();
    const std::string tabla = LlenaTabla(f, "(" + SqlCorreoAntiguedad(f) + ")");
    if (session::HuboError()) return;

    Paso("leer los clientes a los que se envía");
    struct Destino {
        std::string clave, nombre, correo;
    };
    std::vector<Destino> destinos;
    {
        auto& bd = *session::sesion().BaseDD;
        host::Recordset rs;
        if (!bd.AbrirTabla(rs, ConexionEmpresa(), "SELECT clave FROM " + tabla + " GROUP BY Clave"))
            throw ErrorPaso("leer los clientes a los que se envía", bd.UltimoError());
        for (rs.MoveFirst(); !rs.Eof(); rs.MoveNext()) {
            Destino d;
            d.clave = rs.Campo("clave").Texto();
            host::Recordset c;
            if (session::BuscaCliente(ConexionEmpresa(), d.clave, c)) {
                d.nombre = c.Campo("Nombre").Texto();
                d.correo = toolkit::detail::Recorta(c.Campo("Email").Texto());
            }
            if (!d.correo.empty()) destinos.push_back(std::move(d));
        }
        bd.CierraTabla(rs);
    }
    std::filesystem::create_directories(carpeta);
    PreparaSolicitud(tabla, f);
    const auto& cn = ConexionEmpresa();
    toolkit::EnvioCorreo envio(lectura.servidor);
    auto& sink = host::interaccion();
    const int pdf = renderer::InfoDe(renderer::TipoArchivo::Pdf).codigo;
    for (std::size_t i = 0; i < destinos.size(); ++i) {
        const Destino& d = destinos[i];
        sink.Progreso(static_cast<int>(100 * i / destinos.size()), "Generando " + d.clave);
        session::solicitud().FormulaSeleccion =
            session::LlenaXXX("{adsmovtos.Clave}='XXX'", d.clave);
        const std::string archivo = ArchivoHoja(carpeta, d.clave);
        EjecutaArchivo(archivo, static_cast<std::int16_t>(pdf));
        Paso("enviar la hoja de " + d.clave + " a " + d.correo);
        toolkit::MensajeCorreo m;
        m.para = d.correo;
        m.nombrePara = d.nombre;
        std::string asunto = session::AsuntoCorreo(cn, "EDC-ADS", d.nombre);
        if (toolkit::detail::Recorta(asunto).empty()) asunto = "Antigüedad de saldos";
        m.asunto = "[EDC-ADS] " + asunto;
        m.texto = session::TextoCorreo(cn, "EDC-ADS", d.nombre);
        m.adjunto = archivo;
        try {
            envio.Envia(m);
        } catch (const toolkit::ErrorCorreo& e) {
            std::string faltan;
            for (std::size_t j = i; j < destinos.size(); ++j)
                faltan += (faltan.empty() ? "" : ", ") + destinos[j].clave + " (" +
                          destinos[j].correo + ")";
            throw ErrorPaso("enviar las hojas por correo",
                            std::string(e.what()) + ". Se enviaron " + std::to_string(i) + " de " +
                                std::to_string(destinos.size()) +
                                " hojas; quedaron sin enviar: " + faltan);
        }
    }
    sink.Progreso(0, "");
    session::Mensaje(destinos.empty()
                         ? std::string("Ningún cliente con correo electrónico tiene documentos "
                                       "con los filtros pedidos; no se envió nada.")
                         : "Se enviaron " + std::to_string(destinos.size()) +
                               (destinos.size() == 1 ? " hoja" : " hojas") +
                               " de antigüedad de saldos por " + lectura.servidor.Nombre() +
                               " (los PDF quedan en " + carpeta + ").",
                     Caption, host::Icono::Informacion);
}

}  // namespace paratzorep::reports
