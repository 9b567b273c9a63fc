#include "reports/accounts/Cobranza.h"

#include "session/Sesion.h"
#include "session/SuModulo.h"
#include "toolkit/Texto.h"

namespace paratzorep::reports {

namespace detail {

const toolkit::LibKRVM& LibCobranza() {
    static const toolkit::LibKRVM local;
    const auto& lib = session::sesion().LibKRVM;
    return lib ? *lib : local;
}

}  // namespace detail

std::string FormaCobranza::Encabezado(const std::string& caption, const std::string& desde,
                                      const std::string& hasta) {
    const auto& lib = detail::LibCobranza();
    std::string texto = caption;
    if (!desde.empty()) texto += ", desde el " + lib.FechaMesCorto(desde);
    if (!hasta.empty()) texto += " hasta el " + lib.FechaMesCorto(hasta);
    return texto;
}

std::vector<std::string> FormaCobranza::RangoClaves(const std::string& igual,
                                                    const std::string& desde,
                                                    const std::string& hasta,
                                                    const std::string& claveDesde,
                                                    const std::string& claveHasta) {
    std::vector<std::string> c;
    if (!claveDesde.empty())
        c.push_back(session::LlenaXXX(claveHasta.empty() ? igual : desde, claveDesde));
    if (!claveHasta.empty())
        c.push_back(session::LlenaXXX(claveDesde.empty() ? igual : hasta, claveHasta));
    return c;
}

std::string FormaCobranza::OrdenPagos(const std::string& tabla, int eleccion) {
    static const char* campos[] = {"Fecha", "CantidadPago", "Concepto", "Clave"};
    if (eleccion < 0 || eleccion > 3) eleccion = 0;
    return "+{" + tabla + "." + campos[eleccion] + "}";
}

const std::vector<std::string>& FormaCobranza::OpcionesOrden(const std::string& cuenta) {
    static const std::vector<std::string> clientes = {"Fecha", "Cantidad", "Concepto", "Cliente"};
    static const std::vector<std::string> proveedores = {"Fecha", "Cantidad", "Concepto",
                                                         "Proveedor"};
    return cuenta == "Cliente" ? clientes : proveedores;
}

void FormaCobranza::AgregaOrden(std::int16_t indice, const std::string& cuenta) {
    Agrega("lblOrden", -1, "Ordenar por:");
    Control& c = Agrega("cmbDato", indice, "Orden");
    c.Items = OpcionesOrden(cuenta);
    c.ListIndex = 0;
}

void FormaCobranza::EnlazaMonedas(std::int16_t indice) {
    const bool monedas = session::LeerConfigBool(ConexionEmpresa(), "MultiMoneda");
    Ctl("lblMoneda").Visible = monedas;
    Ctl("dcmDato", indice).Visible = monedas;
    if (monedas)
        EnlazaCombo(Ctl("dcmDato", indice),
                    "SELECT Id,Abreviacion FROM monedas ORDER BY Abreviacion", "Abreviacion", "Id");
}

std::string FormaCobranza::MonedaElegida(std::int16_t indice) const {
    const Control& mon = Ctl("dcmDato", indice);
    if (!mon.Visible || mon.BoundText.empty()) return {};
    if (mon.BoundText.find_first_not_of("0123456789") != std::string::npos)
        throw ErrorPaso("leer la moneda elegida",
                        "La moneda elegida ('" + mon.BoundText + "') no es válida.");
    return mon.BoundText;
}

void FormaCobranza::EscribeEncabezado(const std::string& encabezado) {
    Paso("escribir el encabezado en el archivo de trabajo local");
    auto& bd = session::sesion().BaseDD;
    if (!bd) throw ErrorPaso("escribir el encabezado", "no hay acceso a datos en la sesión");
    host::Conexion local;
    if (!bd->AbreBdDAccess(local, ArchivoLocal()))
        throw ErrorPaso("escribir el encabezado",
                        "no se pudo abrir " + ArchivoLocal() + ": " + bd->UltimoError());
    struct Cierra {
        host::BaseDD& bd;
        host::Conexion& cn;
        ~Cierra() { bd.CierraBdD(cn); }
    } cierra{*bd, local};
    std::string texto;
    for (char ch : encabezado) texto += ch == '\'' ? std::string("''") : std::string(1, ch);
    bd->Executar(local, "DELETE FROM Titulo100");
    bd->Executar(local, "INSERT INTO Titulo100 (Id,Encabezado) VALUES (1,'" + texto + "')");
}

std::string FormaCobranza::NombreDe(const std::string& tabla, const std::string& clave) const {
    auto& bd = session::sesion().BaseDD;
    if (!bd || !ConexionEmpresa() || clave.empty() || reports::detail::RompeLiteral(clave))
        return {};
    try {
        host::Recordset rs;
        if (!bd->AbrirTabla(rs, ConexionEmpresa(),
                            "SELECT Nombre FROM " + tabla + " WHERE Clave='" + clave + "'") ||
            rs.RecordCount() == 0)
            return {};
        rs.MoveFirst();
        return rs.Campo("Nombre").Texto();
    } catch (const std::exception&) {
        return {};  // a lookup that fails leaves the label empty; printing reports the problem
    }
}

std::string FormaCobranza::Clave(std::int16_t i) const {
    return toolkit::detail::Recorta(Ctl("txtDato", i).Text);
}

}  // namespace paratzorep::reports
