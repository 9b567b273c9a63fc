#include "reports/RepAdmMovUser.h"

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

}  // namespace

RepAdmMovUser::RepAdmMovUser() : FormaReporte("RepAdmMovUser", "Bitácora de usuarios") {
    Agrega("lblFecha", 0, "Del día:");
    AgregaFecha("mkeFecha", 0);
    Agrega("lblFecha", 1, "Al día:");
    AgregaFecha("mkeFecha", 1);
    Agrega("lblUsuario", -1, "Usuario:");
    Agrega("txtDato", 0, "Usuario");
    Agrega("lblDato", 0, "(vacío: todos los usuarios)");
    Agrega("optAccesos", 0, "Todos los movimientos").Value = 1;
    Agrega("optAccesos", 1, "Solo entradas y salidas del sistema");
    Agrega("Frame3").Caption = "Tipos de acción (ninguno: todos)";
    std::int16_t i = 0;
    for (const auto& [caption, _] : TiposAccion()) Agrega("chkAccion", i++, caption);
}

const std::vector<std::pair<std::string, std::string>>& RepAdmMovUser::TiposAccion() {
    static const std::vector<std::pair<std::string, std::string>> tipos = {
        {"Altas", "ALTA"},
        {"Cambios", "CAMBIO"},
        {"Bajas", "BAJA"},
        {"Impresiones", "IMPRESION"},
        {"Consultas", "CONSULTA"}};
    return tipos;
}

std::string RepAdmMovUser::Condiciones(const std::string& desdeSQL, const std::string& hastaSQL,
                                       const std::string& usuario, bool soloAccesos) {
    const auto& lib = Lib();
    std::string w = lib.SumaWhereAnd("", session::LlenaXXX("Fecha>='XXX'", desdeSQL));
    w = lib.SumaWhereAnd(w, session::LlenaXXX("Fecha<='XXX'", hastaSQL));
    if (!usuario.empty()) {
        w = lib.SumaWhereAnd(
            w, session::LlenaXXX("decode(bitacorausuarios.Usuario,'418')='XXX'", usuario));
    }
    if (soloAccesos) w = lib.SumaWhereAnd(w, "(estructurasm.Id=180 or estructurasm.Id=181)");
    return w;
}

std::string RepAdmMovUser::SqlLlenado(const std::string& tabla, const std::string& condiciones) {
    return "INSERT INTO " + tabla + " (Id,Fecha,Hora,Usuario,Accion,Version,Equipo) " +
           "SELECT bitacorausuarios.Id,Fecha,Hora,decode(Usuario,'418') as Usuario," +
           "trim(concat(trim(decode(estructurasm.Dato,'527')),' ',Decode(Llave,'184'),' '," +
           "trim(decode(Adicionales,'184')))) as Concepto," +
           "decode(Version,'527'),decode(Equipo,'527')" +
           " FROM bitacorausuarios LEFT JOIN generaltanzo.estructurasm on "
           "estructurasm.Id=Registro" +
           condiciones;
}

std::string RepAdmMovUser::FormulaAcciones(const std::vector<std::string>& tipos) {
    std::string f;
    for (const auto& t : tipos) {
        if (!f.empty()) f += " or ";
        f += session::LlenaXXX("'XXX' in {bitacorausuarios.Accion}", t);
    }
    return tipos.size() > 1 ? "(" + f + ")" : f;
}

void RepAdmMovUser::Imprimir() {
    Paso("armar las condiciones del reporte");
    const std::string usuario = toolkit::detail::Recorta(Ctl("txtDato", 0).Text);
    const std::string condiciones =
        Condiciones(FechaSQL(0), FechaSQL(1), usuario, Ctl("optAccesos", 1).Value != 0);

    const std::string tabla = ClonaTabla("bitacorausuarios", true);
    if (session::HuboError()) return;

    Paso("llenar la tabla de trabajo " + tabla + " con la bitácora");
    Llena(SqlLlenado(tabla, condiciones));

    PasaGenerales({
        {"Titulo", usuario.empty()
                       ? host::Valor("Movimientos de todos los usuarios")
                       : host::Valor(session::LlenaXXX("Movimientos del usuario 'XXX'", usuario))},
        {"ParaLasFechas", host::Valor("Del " + Lib().FechaCompleta(Fecha(0)) + " al " +
                                      Lib().FechaCompleta(Fecha(1)))},
    });

    std::vector<std::string> tipos;
    for (const Control* c : Arreglo("chkAccion")) {
        if (c->Value != 0)
            tipos.push_back(TiposAccion()[static_cast<std::size_t>(c->Indice)].second);
    }
    auto& sol = session::solicitud();
    sol.Plantilla = "bitacoraus.rpt";
    sol.FormulaSeleccion = FormulaAcciones(tipos);
    sol.MapeaTabla("bitacorausuarios", tabla);
    Ejecuta();
}

}  // namespace paratzorep::reports
