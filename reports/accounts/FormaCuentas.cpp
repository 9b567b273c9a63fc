#include "reports/accounts/FormaCuentas.h"

#include "session/Sesion.h"
#include "session/SuModulo.h"
#include "toolkit/LibKRVM.h"
#include "toolkit/Texto.h"

namespace paratzorep::reports {

namespace detail {

const toolkit::LibKRVM& LibCuentas() {
    static const toolkit::LibKRVM local;
    const auto& lib = session::sesion().LibKRVM;
    return lib ? *lib : local;
}

}  // namespace detail

std::string TablaEdoCta(bool clientes) {
    return clientes ? "edoctacli" : "edoctaprov";
}

std::vector<std::string> CondicionesClave(const std::string& tabla, const std::string& clave0,
                                          const std::string& clave1) {
    const std::string campo = "{" + tabla + ".Clave}";
    std::vector<std::string> c;
    if (!clave0.empty())
        c.push_back(session::LlenaXXX(campo + (clave1.empty() ? "='XXX'" : ">='XXX'"), clave0));
    if (!clave1.empty())
        c.push_back(session::LlenaXXX(campo + (clave0.empty() ? "='XXX'" : "<='XXX'"), clave1));
    return c;
}

std::string CondicionFecha(const std::string& tabla, const std::string& fecha, bool hasta) {
    const std::string f = session::FechaFormula(fecha);
    if (f.empty()) return "";
    return "{" + tabla + ".Fecha}" + (hasta ? "<=" : ">=") + f;
}

FormaCuentas::FormaCuentas(std::string nombre, std::string caption)
    : FormularioPareado(std::move(nombre), std::move(caption)) {
    Agrega("lblFecha", 0, "Del día:");
    AgregaFecha("mkeFecha", 0);
    Agrega("lblFecha", 1, "Al día:");
    AgregaFecha("mkeFecha", 1);
    Agrega("txtDato", 0, "Del cliente");
    Agrega("lblDato", 0);
    Agrega("txtDato", 1, "Al cliente");
    Agrega("lblDato", 1);
    Agrega("lblMoneda", -1, "Moneda:");
    Agrega("dcmDato", 0, "Moneda");
}

std::string FormaCuentas::Persona() const {
    return ParaClientes() ? "cliente" : "proveedor";
}

void FormaCuentas::AjustaModo() {
    Ctl("txtDato", 0).Caption = "Del " + Persona();
    Ctl("txtDato", 1).Caption = "Al " + Persona();
}

void FormaCuentas::EnlazaCombos() {
    Control& moneda = Ctl("dcmDato", 0);
    EnlazaCombo(moneda, "monedas ORDER BY Abreviacion", "Abreviacion", "Id");
    const bool multimoneda = session::LeerConfigBool(ConexionEmpresa(), "MultiMoneda");
    moneda.Visible = multimoneda;
    Ctl("lblMoneda").Visible = multimoneda;
}

std::string NombreDeCuenta(const host::Conexion& cn, bool clientes, const std::string& clave) {
    if (clave.empty() || !cn) return "";
    try {
        host::Recordset rs;
        const bool hay = clientes ? session::BuscaCliente(cn, clave, rs)
                                  : session::BuscaProveedor(cn, clave, rs);
        if (hay) return rs.Campo("Nombre").Texto();
    } catch (const std::exception&) {
    }
    return "";
}

void FormaCuentas::AlSalir(Control& c) {
    if (c.Nombre != "txtDato" || c.Indice < 0 || c.Indice > 1) return;
    Ctl("lblDato", c.Indice).Caption =
        NombreDeCuenta(ConexionEmpresa(), ParaClientes(), toolkit::detail::Recorta(c.Text));
}

FiltrosCuenta FormaCuentas::Filtros() const {
    FiltrosCuenta f;
    f.clientes = ParaClientes();
    const Control& moneda = Ctl("dcmDato", 0);
    if (moneda.Visible && moneda.ListIndex >= 0) f.moneda = moneda.BoundText;
    f.desde = Fecha(0);
    f.hasta = Fecha(1);
    f.clave0 = toolkit::detail::Recorta(Ctl("txtDato", 0).Text);
    f.clave1 = toolkit::detail::Recorta(Ctl("txtDato", 1).Text);
    return f;
}

std::string FormaCuentas::TextoPeriodo(const FiltrosCuenta& f) const {
    const auto& lib = detail::LibCuentas();
    if (!f.desde.empty() && !f.hasta.empty())
        return "Del " + lib.FechaCompleta(f.desde) + " al " + lib.FechaCompleta(f.hasta);
    if (!f.desde.empty()) return "Desde el " + lib.FechaCompleta(f.desde);
    if (!f.hasta.empty()) return "Hasta el " + lib.FechaCompleta(f.hasta);
    return "Todos los movimientos";
}

std::string FormaCuentas::TextoFiltros(const FiltrosCuenta& f, bool monedaUnoPorOmision) const {
    // The currency by its abbreviation, as the list shows it.
    const Control& lista = Ctl("dcmDato", 0);
    const std::string id = f.moneda.empty() && monedaUnoPorOmision ? "1" : f.moneda;
    std::string texto = "Todas las monedas";
    if (!id.empty()) {
        texto = "Moneda: " + id;
        for (std::size_t i = 0; i < lista.ItemData.size() && i < lista.Items.size(); ++i)
            if (lista.ItemData[i] == id) texto = "Moneda: " + lista.Items[i];
    }
    if (!f.clave0.empty() && !f.clave1.empty()) {
        texto += " · " + std::string(f.clientes ? "Clientes" : "Proveedores") + " del " + f.clave0 +
                 " al " + f.clave1;
    } else if (!f.clave0.empty() || !f.clave1.empty()) {
        const std::string& c = f.clave0.empty() ? f.clave1 : f.clave0;
        texto += " · " + std::string(f.clientes ? "Cliente " : "Proveedor ") + c;
    }
    if (f.sinCancelaciones) texto += " · Sin los movimientos de cancelaciones";
    return texto;
}

void FormaCuentas::PasaEncabezado(const std::string& encabezado) {
    Paso("escribir el encabezado en el archivo de trabajo local");
    auto& bd = session::sesion().BaseDD;
    if (!bd)
        throw ErrorPaso("escribir el encabezado", "la sesión no tiene objeto de acceso a datos");
    host::Conexion local;
    if (!bd->AbreBdDAccess(local, ArchivoLocal()))
        throw ErrorPaso("escribir el encabezado",
                        "no se pudo abrir " + ArchivoLocal() + ": " + bd->UltimoError());
    struct Cierra {
        host::BaseDD& bd;
        host::Conexion& cn;
        ~Cierra() { bd.CierraBdD(cn); }
    } cierra{*bd, local};
    bd->Executar(local, "DELETE FROM Titulo100");
    bd->AgregaRegistro(local, "Titulo100", {"Encabezado"}, {host::Valor(encabezado)});
}

}  // namespace paratzorep::reports
