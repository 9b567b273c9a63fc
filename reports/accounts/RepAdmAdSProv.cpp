#include "reports/accounts/RepAdmAdSProv.h"

#include "reports/accounts/FormaCuentas.h"
#include "session/Sesion.h"
#include "session/Solicitud.h"
#include "session/SuModulo.h"
#include "toolkit/Fechas.h"
#include "toolkit/LibKRVM.h"
#include "toolkit/Texto.h"

namespace paratzorep::reports {

namespace {

const toolkit::LibKRVM& Lib() {
    static const toolkit::LibKRVM local;
    const auto& lib = session::sesion().LibKRVM;
    return lib ? *lib : local;
}

std::string ElegidoDe(const Formulario& f, std::int16_t i) {
    const Control& c = f.Ctl("dcmDato", i);
    return c.Visible && c.ListIndex >= 0 ? c.BoundText : std::string();
}

}  // namespace

RepAdmAdSProv::RepAdmAdSProv()
    : FormaReporte("RepAdmAdSProv", "Antigüedad de saldos de proveedores") {
    Agrega("lblFecha", 0, "Al día:");
    AgregaFecha("mkeFecha", 0);
    Agrega("txtDato", 0, "Del proveedor");
    Agrega("lblDato", 0);
    Agrega("txtDato", 1, "Al proveedor");
    Agrega("lblDato", 1);
    Control& tipo = Agrega("cmbDato", -1, "Tipo de documento");
    tipo.Items = {"Compra", "Compra ND", "Cargo"};
    tipo.ListIndex = 0;
    tipo.Text = "Compra";
    Agrega("chkSinVencer", -1, "Incluir documentos sin vencer").Value = 1;
    Agrega("lblLista", 1, "Clasificación:");
    Agrega("dcmDato", 1, "Clasificación");
    Agrega("lblLista", 2, "Moneda:");
    Agrega("dcmDato", 2, "Moneda");
}

void RepAdmAdSProv::EnlazaCombos() {
    const auto& cn = ConexionEmpresa();
    const bool clasifica = session::LeerConfigBool(cn, "ClasificaProv");
    const bool monedas = session::LeerConfigBool(cn, "MultiMoneda");
    if (clasifica)
        EnlazaCombo(Ctl("dcmDato", 1), "clasificaprov ORDER BY Clasificacion", "Clasificacion",
                    "Clasificacion");
    if (monedas)
        EnlazaCombo(Ctl("dcmDato", 2), "monedas ORDER BY Abreviacion", "Abreviacion", "Id");
    for (auto [i, activa] : {std::pair<std::int16_t, bool>{1, clasifica}, {2, monedas}}) {
        Ctl("dcmDato", i).Visible = activa;
        Ctl("lblLista", i).Visible = activa;
    }
    // Purchases without invoice are "documents" where the company keeps no other purchases.
    Control& tipo = Ctl("cmbDato");
    tipo.Items[1] = session::LeerConfigBool(cn, "OtrasCompras") ? "Compra ND" : "Documento";
    if (tipo.ListIndex >= 0) tipo.Text = tipo.Items[static_cast<std::size_t>(tipo.ListIndex)];
}

void RepAdmAdSProv::AlTerminarCarga() {
    Control& fecha = Ctl("mkeFecha", 0);
    if (fecha.SinFecha()) fecha.Text = toolkit::TextoDMA(toolkit::Hoy());
}

void RepAdmAdSProv::AlSalir(Control& c) {
    if (c.Nombre != "txtDato" || c.Indice < 0 || c.Indice > 1) return;
    Ctl("lblDato", c.Indice).Caption =
        NombreDeCuenta(ConexionEmpresa(), false, toolkit::detail::Recorta(c.Text));
}

FiltrosAntiguedad RepAdmAdSProv::Filtros() const {
    FiltrosAntiguedad f;
    f.corteSQL = FechaSQL(0);
    f.clave0 = toolkit::detail::Recorta(Ctl("txtDato", 0).Text);
    f.clave1 = toolkit::detail::Recorta(Ctl("txtDato", 1).Text);
    const std::int16_t i = Ctl("cmbDato").ListIndex;
    const auto& tipos = TiposAntiguedadProveedores();
    if (i >= 0 && static_cast<std::size_t>(i) < tipos.size())
        f.tipos.push_back(tipos[static_cast<std::size_t>(i)].tipo);
    f.sinVencer = Ctl("chkSinVencer").Value != 0;
    f.clasificacion = ElegidoDe(*this, 1);
    f.moneda = ElegidoDe(*this, 2);
    return f;
}

std::string RepAdmAdSProv::FormulaEncabezado() const {
    return session::LlenaXXX("ENCABEZADO='XXX'",
                             Caption + " al día: " + Lib().FechaMesCorto(Fecha(0)));
}

std::string RepAdmAdSProv::FormulaLlave() const {
    return session::LlenaXXX("TEXTOLLAVE='XXX'", Ctl("cmbDato").Elegido());
}

void RepAdmAdSProv::Imprimir() {
    Paso("armar las condiciones del reporte");
    const FiltrosAntiguedad f = Filtros();
    const std::string tabla = ClonaTabla("adsmovtos", true);
    if (session::HuboError()) return;
    for (const auto& t : TiposAntiguedadProveedores()) {
        if (f.tipos.empty() || f.tipos[0] != t.tipo) continue;
        Paso("llenar la tabla de trabajo " + tabla + " con " + t.tabla);
        Llena(SqlAntiguedad(tabla, "cxp", t, f));
    }
    std::string filtros = Ctl("cmbDato").Elegido();
    if (!f.clave0.empty() && !f.clave1.empty())
        filtros += " · Proveedores del " + f.clave0 + " al " + f.clave1;
    else if (!f.clave0.empty() || !f.clave1.empty())
        filtros += " · Proveedor " + (f.clave0.empty() ? f.clave1 : f.clave0);
    for (std::int16_t i = 1; i <= 2; ++i)
        if (!ElegidoDe(*this, i).empty())
            filtros += " · " + Ctl("dcmDato", i).Caption + ": " + Ctl("dcmDato", i).Elegido();
    filtros += f.sinVencer ? " · Con documentos sin vencer" : " · Solo documentos vencidos";
    PasaGenerales({{"Filtros", host::Valor(filtros)}});

    auto& sol = session::solicitud();
    sol.Plantilla = "adsdpm.rpt";
    sol.Formula(0, FormulaEncabezado());
    sol.Formula(1, FormulaLlave());
    sol.MapeaTabla("adsmovtos", tabla);
    Ejecuta();
}

}  // namespace paratzorep::reports
