#include "reports/sales/RepAdmComisXvend.h"

#include "engines/clsComisionarAux.h"
#include "session/Iniciales.h"
#include "session/Sesion.h"
#include "session/Solicitud.h"
#include "session/SuModulo.h"
#include "toolkit/LibKRVM.h"
#include "toolkit/Texto.h"

namespace paratzorep::reports {

namespace {

const toolkit::LibKRVM& Lib() {
    static const toolkit::LibKRVM local;
    const auto& lib = session::sesion().LibKRVM;
    return lib ? *lib : local;
}

// A text inside a formula's quoted literal: a quote is written twice.
std::string LiteralFormula(const std::string& s) {
    return toolkit::detail::Reemplaza(s, "'", "''");
}

}  // namespace

std::string ConfigComisiones::Base() const {
    if (porPagado) return "pagado";
    if (porLiquidado) return "liquidado";
    return "vendido";
}

RepAdmComisXvend::RepAdmComisXvend() : FormaReporte("RepAdmComisXvend", "Comisiones por vendedor") {
    Agrega("lblFecha", 0, "Del día:");
    AgregaFecha("mkeFecha", 0);
    Agrega("lblFecha", 1, "Al día:");
    AgregaFecha("mkeFecha", 1);
    Agrega("lblDocumentos", -1, "Documentos:");
    Control& docs = Agrega("cmbDocumentos");
    docs.Items = ListaDocumentos();
    docs.ListIndex = 2;
    docs.Text = docs.Items[2];
    Agrega("lblMoneda", -1, "Moneda (vacía: todas):");
    Agrega("cmbDato", 0, "Moneda");
    Agrega("lblVendedor", -1, "Vendedor (vacío: todos):");
    Agrega("dcmDato", 0, "Vendedor");
    Agrega("lblDato", 0);
    Agrega("optDato", 0, "Ordenar por fecha").Value = 1;
    Agrega("optDato", 1, "Ordenar por documento");
    Agrega("optDato", 2, "Ordenar por cliente");
    Agrega("lblBase", -1, TextoBase(config_));
    Ctl("dcmDato", 0).Change = [this](Control&) { MuestraVendedor(); };
}

const std::vector<std::string>& RepAdmComisXvend::ListaDocumentos() {
    static const std::vector<std::string> lista = {"Facturas", "Remisiones", "Ambas"};
    return lista;
}

std::string RepAdmComisXvend::TextoBase(const ConfigComisiones& config) {
    return "Comisionar por lo " + config.Base();
}

std::string RepAdmComisXvend::Plantilla(const ConfigComisiones& config,
                                        const std::string& rutaRpts) {
    const std::string carpeta = rutaRpts.empty() ? "" : session::ConSeparadorFinal(rutaRpts);
    return carpeta + (config.EsquemaDeTabla() ? "comispv1.rpt" : "comispv2.rpt");
}

std::string RepAdmComisXvend::ArchivosDatos(const std::string& tablaVentas,
                                            const std::string& tablaDetalle) {
    return "comisxventas*" + tablaVentas + ";comisxventasdetalle*" + tablaDetalle;
}

std::vector<std::string> RepAdmComisXvend::Orden(std::int16_t opcion, bool porTabla) {
    const std::string t = porTabla ? "ComisXvend2" : "comisxventas";
    auto campo = [&](const char* c) { return "+{" + t + "." + c + "}"; };
    switch (opcion) {
        case 1:
            return {campo("Documento"), campo("Serie"), campo("Numero")};
        case 2:
            return {campo("Cliente"), campo("Fecha")};
        default:
            return {campo("Fecha")};
    }
}

std::string RepAdmComisXvend::TextoPeriodo(const std::string& desde, const std::string& hasta) {
    const auto& lib = Lib();
    if (!desde.empty() && !hasta.empty())
        return "Del " + lib.FechaCompleta(desde) + " al " + lib.FechaCompleta(hasta);
    if (!desde.empty()) return "Desde el " + lib.FechaCompleta(desde);
    if (!hasta.empty()) return "Hasta el " + lib.FechaCompleta(hasta);
    return "Todas las fechas";
}

void RepAdmComisXvend::EnlazaCombos() {
    const host::Conexion& cn = ConexionEmpresa();
    config_.porPagado = session::LeerConfigBool(cn, "ComisXpagado");
    config_.porLiquidado = session::LeerConfigBool(cn, "ComisXliquidado");
    config_.porTabla = session::LeerConfigBool(cn, "ComisVendXtabla");
    config_.porLinea = session::LeerConfigBool(cn, "ComisVendXlinea");
    config_.porPrecios = session::LeerConfigBool(cn, "ComisVendXprecios");
    config_.porLinYprec = session::LeerConfigBool(cn, "ComisVendXlinYprec");
    Ctl("lblBase").Caption = TextoBase(config_);

    // Delivery notes only where the company issues them.
    const bool remisiones = session::LeerConfigBool(cn, "Remisiones");
    Ctl("lblDocumentos").Visible = remisiones;
    Control& docs = Ctl("cmbDocumentos");
    docs.Visible = remisiones;
    if (!remisiones) {
        docs.ListIndex = 0;
        docs.Text = docs.Items[0];
    }

    // Currencies: every one by default; a choice keeps only the documents in it.
    const bool multimoneda = session::LeerConfigBool(cn, "MultiMoneda");
    Control& moneda = Ctl("cmbDato", 0);
    moneda.Visible = multimoneda;
    Ctl("lblMoneda").Visible = multimoneda;
    if (multimoneda) {
        auto& bd = *session::sesion().BaseDD;
        host::Recordset rs;
        if (bd.AbrirTabla(rs, cn, "monedas ORDER BY Id"))
            host::LlenaLista(moneda, rs, "Abreviacion", "Id");
    }

    EnlazaCombo(Ctl("dcmDato", 0), "vendedores ORDER BY Clave", "Clave", "Clave");
}

void RepAdmComisXvend::MuestraVendedor() {
    Control& etiqueta = Ctl("lblDato", 0);
    etiqueta.Caption.clear();
    const std::string clave = toolkit::detail::Recorta(Ctl("dcmDato", 0).BoundText);
    host::Recordset rs;
    if (!clave.empty() && ConexionEmpresa() && session::BuscaVendedor(ConexionEmpresa(), clave, rs))
        etiqueta.Caption = rs["Nombre"].Texto();
}

void RepAdmComisXvend::Imprimir() {
    Paso("revisar el periodo");
    const std::string desde = Fecha(0), hasta = Fecha(1);
    if (!desde.empty() && !hasta.empty() && FechaSQL(0) > FechaSQL(1))
        throw ErrorPaso("revisar el periodo",
                        "la fecha inicial (" + desde + ") es posterior a la final (" + hasta + ")");

    engines::clsComisionarAux motor;
    const Control& docs = Ctl("cmbDocumentos");
    motor.Documentos = static_cast<engines::DocumentosComision>(
        docs.ListIndex >= 0 && docs.ListIndex <= 2 ? docs.ListIndex : 2);
    const Control& moneda = Ctl("cmbDato", 0);
    std::string abreviacion;
    if (moneda.Visible && moneda.ListIndex >= 0 &&
        moneda.ListIndex < static_cast<int>(moneda.ItemData.size())) {
        motor.Moneda = static_cast<std::int16_t>(Lib().kvVal(moneda.ItemData[moneda.ListIndex]));
        abreviacion = moneda.Items[moneda.ListIndex];
    }
    motor.Liquidado = config_.SobrePagos() && !config_.porPagado;
    motor.PorLinea = config_.FuenteLinea();
    motor.PorPrecio = config_.FuentePrecio();
    const std::string vendedor = toolkit::detail::Recorta(Ctl("dcmDato", 0).BoundText);

    auto& sol = session::solicitud();
    const bool porTabla = config_.EsquemaDeTabla();
    if (porTabla) {
        Paso("calcular las comisiones por la tabla de ventas");
        if (config_.SobrePagos())
            motor.CreaMovsXpagado(desde, hasta, vendedor, ArchivoLocal());
        else
            motor.CreaMovsXvendido(desde, hasta, vendedor, ArchivoLocal());
    } else {
        const std::string ventas = ClonaTabla("comisxventas", true);
        if (session::HuboError()) return;
        const std::string detalle = ClonaTabla("comisxventasdetalle", true);
        if (session::HuboError()) return;
        Paso("calcular las comisiones por línea y precio en " + ventas + " y " + detalle);
        if (config_.SobrePagos())
            motor.CreaMovsXpag(desde, hasta, vendedor, ventas, detalle);
        else
            motor.CreaMovsXlasOtras(desde, hasta, vendedor, ventas, detalle);
        sol.ArchivosDatos.push_back(ArchivosDatos(ventas, detalle));
    }

    std::string filtros = docs.Text == "Ambas" ? "Facturas y remisiones" : docs.Text;
    if (!abreviacion.empty()) filtros += ". Moneda: " + abreviacion;
    PasaGenerales({
        {"Titulo", host::Valor(TextoBase(config_))},
        {"Subtitulo", host::Valor(std::string(porTabla ? "Por la tabla de comisiones sobre ventas"
                                                       : "Por línea y número de precio") +
                                  ". Importes en moneda nacional, antes de impuestos")},
        {"ParaLasFechas", host::Valor(TextoPeriodo(desde, hasta))},
        {"Filtros", host::Valor(filtros)},
    });

    sol.Plantilla = Plantilla(config_, session::sesion().RutaRpts);
    int i = 0;
    if (!vendedor.empty())
        sol.Formula(i++, session::FormulaVendedor(LiteralFormula(Ctl("lblDato", 0).Caption)));
    if (porTabla && config_.SobrePagos()) {
        sol.Formula(i++, "COLVENCE='Vence'");
        sol.Formula(i++, "COLDIAS='Días'");
    }
    std::int16_t orden = 0;
    for (std::int16_t k = 0; k < 3; ++k)
        if (Ctl("optDato", k).Value != 0) orden = k;
    int s = 0;
    for (const auto& campo : Orden(orden, porTabla)) sol.SortField(s++, campo);
    Ejecuta();
}

}  // namespace paratzorep::reports
