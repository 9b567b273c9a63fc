#include "session/SuModulo.h"

#include <cstdlib>
#include <optional>

#include "session/Iniciales.h"
#include "session/Sesion.h"
#include "toolkit/Auxiliares.h"
#include "toolkit/BitacoraUsuarios.h"
#include "toolkit/CamposBin.h"
#include "toolkit/DeArchivos.h"
#include "toolkit/ElSkin.h"
#include "toolkit/Fechas.h"
#include "toolkit/Ini.h"
#include "toolkit/LibKRVM.h"
#include "toolkit/Movimientos.h"
#include "toolkit/MyODBCs.h"
#include "toolkit/Texto.h"
#include "toolkit/Utilerias.h"

namespace paratzorep::session {

namespace detail {

host::BaseDD& ExigeBaseDD(const char* accion) {
    if (!sesion().BaseDD) {
        throw host::ErrorDatos(accion, "", 0, "No hay objeto de acceso a datos en la sesión");
    }
    return *sesion().BaseDD;
}

// The first field of the first row of a query; nothing when there is no row.
std::optional<host::Valor> PrimerValor(const host::Conexion& cn, const std::string& sql,
                                       const char* accion) {
    host::BaseDD& bd = ExigeBaseDD(accion);
    host::Recordset rs;
    if (!bd.RstExecutar(rs, cn, sql)) throw host::ErrorDatos(accion, sql, 0, bd.UltimoError());
    if (rs.RecordCount() == 0 || rs.FieldCount() == 0) return std::nullopt;
    rs.MoveFirst();
    return rs.Campo(std::size_t{0});
}

}  // namespace detail

std::shared_ptr<toolkit::ObjetoKv> CreaObjetoAyuda(const std::string& clase) {
    auto obj = toolkit::CreaObjeto(toolkit::Identificador(clase));
    if (!obj) return obj;
    const auto& s = sesion();
    if (auto* skin = dynamic_cast<toolkit::ElSkin*>(obj.get())) {
        skin->ArchivoINI = s.ArchivoINI;
    } else if (auto* bit = dynamic_cast<toolkit::BitacoraUsuarios*>(obj.get())) {
        bit->BaseDD = s.BaseDD;
        bit->Version = s.VersionDeEste;
        bit->Usuario = s.UserUsuario;
    } else if (auto* mov = dynamic_cast<toolkit::Movimientos*>(obj.get())) {
        mov->BaseDD = s.BaseDD;
    } else if (auto* cb = dynamic_cast<toolkit::CamposBin*>(obj.get())) {
        cb->BaseDD = s.BaseDD;
        cb->cRutaPrograma = s.RutaTanzo;
    } else if (auto* ay = dynamic_cast<toolkit::DeAyudaP0*>(obj.get())) {
        ay->ArchivoCoordenadas = s.ArchivoCoordenadas;
    } else if (auto* odbc = dynamic_cast<toolkit::MyODBCs*>(obj.get())) {
        // The session's odbc.ini sits in the program folder unless ODBCINI names one.
        const char* env = std::getenv("ODBCINI");
        if ((!env || !*env) && !s.RutaTanzo.empty()) {
            odbc->ArchivoOdbc = toolkit::RutaNativa(s.RutaTanzo) + "odbc.ini";
        }
    }
    return obj;
}

std::string LlenaXXX(const std::string& plantilla, const std::string& valor) {
    return toolkit::Utilerias().CambXXX(plantilla, valor);
}

std::string UneCondicion(const std::string& acumulado, const std::string& condicion) {
    if (condicion.empty()) return acumulado;
    if (acumulado.empty()) return condicion;
    return acumulado + " and " + condicion;
}

std::string FormulaVendedor(const std::string& nombreVendedor) {
    if (toolkit::detail::Recorta(nombreVendedor).empty()) return "";
    return LlenaXXX("VENDEDOR='Vendedor: XXX'", nombreVendedor);
}

std::string FechaFormula(const std::string& fecha) {
    auto f = toolkit::LeeFecha(fecha);
    if (!f) return "";
    return "Date(" + std::to_string(f->anio) + "," + std::to_string(f->mes) + "," +
           std::to_string(f->dia) + ")";
}

double TotalDocumento(const host::Recordset& documento) {
    static const char* const kCampos[] = {
        "Subtotal",       "IVA",       "ImpuestoAd",  "Cargo1Cantidad", "Cargo2Cantidad",
        "Cargo3Cantidad", "Retencion", "RetencionIVA"};
    double total = 0;
    for (const char* campo : kCampos) {
        if (documento.TieneCampo(campo)) total += documento.Campo(campo).Doble();
    }
    return total;
}

bool BuscaXclave(const host::Conexion& cn, const std::string& tabla, const std::string& clave,
                 host::Recordset& rs) {
    host::BaseDD& bd = detail::ExigeBaseDD("Buscar por clave");
    const std::string llave = toolkit::detail::Recorta(clave);
    if (llave.empty()) return false;
    const std::string fuente =
        tabla + " WHERE Clave='" + toolkit::detail::EscapaSQL(llave) + "' LIMIT 1";
    if (!bd.AbrirTabla(rs, cn, fuente)) {
        throw host::ErrorDatos("Buscar en " + tabla, fuente, 0, bd.UltimoError());
    }
    if (rs.RecordCount() == 0) return false;
    rs.MoveFirst();
    return true;
}

bool BuscaCliente(const host::Conexion& cn, const std::string& clave, host::Recordset& rs) {
    return BuscaXclave(cn, "clientes", clave, rs);
}

bool BuscaProveedor(const host::Conexion& cn, const std::string& clave, host::Recordset& rs) {
    return BuscaXclave(cn, "proveedores", clave, rs);
}

bool BuscaVendedor(const host::Conexion& cn, const std::string& clave, host::Recordset& rs) {
    return BuscaXclave(cn, "vendedores", clave, rs);
}

double Paridad(const host::Conexion& cn, std::int32_t idMoneda) {
    auto v = detail::PrimerValor(
        cn, "SELECT Paridad FROM monedas WHERE Id=" + std::to_string(idMoneda), "Leer la paridad");
    if (!v || v->EsNulo()) return 1.0;
    return v->Doble();
}

std::string LeerConfig(const host::Conexion& cn, const std::string& dato,
                       const std::string& omision) {
    auto v = detail::PrimerValor(
        cn,
        "SELECT Valor FROM configura WHERE Dato='" + toolkit::detail::EscapaSQL(dato) + "' LIMIT 1",
        "Leer la configuración");
    if (!v || v->EsNulo()) return omision;
    return v->Texto();
}

bool LeerConfigBool(const host::Conexion& cn, const std::string& dato) {
    return toolkit::detail::Recorta(LeerConfig(cn, dato, "0")) == "1";
}

void GrabarConfig(const host::Conexion& cn, const std::string& dato, const std::string& valor) {
    host::BaseDD& bd = detail::ExigeBaseDD("Grabar la configuración");
    const std::string d = toolkit::detail::EscapaSQL(dato);
    const std::string v = toolkit::detail::EscapaSQL(valor);
    if (bd.LastRec(cn, "configura WHERE Dato='" + d + "'") > 0) {
        bd.Executar(cn, "UPDATE configura SET Valor='" + v + "' WHERE Dato='" + d + "'");
    } else {
        bd.Executar(cn, "INSERT INTO configura (Dato,Valor) VALUES ('" + d + "','" + v + "')");
    }
}

bool EsMultiempresa(const host::Conexion& cn) {
    return LeerConfigBool(cn, "multiempresa");
}
bool AplicaIVA(const host::Conexion& cn) {
    return LeerConfigBool(cn, "AplicaIVA");
}
bool AplicaImpAd(const host::Conexion& cn) {
    return LeerConfigBool(cn, "AplicaImpAd");
}

std::string AsuntoCorreo(const host::Conexion& cn, const std::string& prefijo,
                         const std::string& nombre) {
    return LlenaXXX(LeerConfig(cn, prefijo + "-Asunto"), nombre);
}

std::string TextoCorreo(const host::Conexion& cn, const std::string& prefijo,
                        const std::string& nombre) {
    std::string texto = LeerConfig(cn, prefijo + "-Texto");
    if (toolkit::detail::Recorta(texto).empty()) texto = "Mensaje del correo para XXX";
    return LlenaXXX(texto, nombre);
}

std::string ArchivoReplicacion() {
    return toolkit::RutaNativa(ConSeparadorFinal(sesion().RutaTanzo)) + "Para replicacion.INI";
}

Replicacion LeeReplicacion() {
    Replicacion r;
    const std::string archivo = ArchivoReplicacion();
    r.base = toolkit::LeeIni("Mirror", "Base de datos", archivo, r.base);
    r.password = toolkit::LeeIni("Mirror", "Contraseña", archivo, r.password);
    r.puerto = toolkit::LeeIni("Mirror", "Puerto", archivo, r.puerto);
    r.usuario = toolkit::LeeIni("Mirror", "Usuario", archivo, r.usuario);
    return r;
}

void AplicaReplicacion(host::BaseDD& bd) {
    Replicacion r = LeeReplicacion();
    bd.cMiBase = r.base;
    bd.cPassword = r.password;
    bd.cPuerto = static_cast<std::int32_t>(toolkit::LibKRVM().kvVal(r.puerto));
    bd.cUsuario = r.usuario;
}

std::string LeeIni(const std::string& seccion, const std::string& clave,
                   const std::string& omision) {
    return toolkit::LeeIni(seccion, clave, sesion().ArchivoINI, omision);
}

void EscribeIni(const std::string& seccion, const std::string& clave, const std::string& valor) {
    toolkit::EscribeIni(seccion, clave, valor, sesion().ArchivoINI);
}

void GuardaPosicion(const host::Ventana& ventana) {
    if (sesion().ArchivoINI.empty()) return;
    toolkit::ElSkin skin;
    skin.ArchivoINI = sesion().ArchivoINI;
    skin.GrabaCoord(ventana);
}

void LeePosicion(host::Ventana& ventana) {
    toolkit::ElSkin skin;
    skin.ArchivoINI = sesion().ArchivoINI;
    skin.LeeCoord(ventana);
}

std::string HoraServidor(const host::Conexion& cn) {
    auto v = detail::PrimerValor(cn, "SELECT NOW()", "Leer la hora del servidor");
    return v ? v->Texto() : std::string();
}

std::int64_t Foliar(const host::Conexion& cn, const std::string& tabla,
                    const std::string& campoFolio, const std::string& serie) {
    toolkit::Movimientos mov;
    mov.BaseDD = sesion().BaseDD;
    return mov.Foliar(cn, tabla, campoFolio, serie);
}

void PasaGeneralesAlRpt(const host::Conexion& cnLocal,
                        std::vector<std::pair<std::string, host::Valor>> valores) {
    host::BaseDD& bd = detail::ExigeBaseDD("Pasar los datos generales al reporte");
    valores.emplace_back("UsuarioImpresion", host::Valor(sesion().UserUsuario));
    bd.PasaGeneralesAlRpt(cnLocal, valores);
}

std::string FechaHoyServidor() {
    toolkit::Fecha hoy = toolkit::Hoy();
    if (auto bd = sesion().BaseDD) {
        try {
            host::Conexion cn;
            if (bd->AbrirBdD(cn, "")) {
                host::Recordset rs;
                if (bd->RstExecutar(rs, cn, "SELECT CURDATE()") && rs.RecordCount() > 0) {
                    rs.MoveFirst();
                    if (auto f = toolkit::LeeFecha(rs.Campo(std::size_t{0}).Texto())) hoy = *f;
                }
                bd->CierraBdD(cn);
            }
        } catch (const std::exception&) {
            // No server: the workstation's date stands.
        }
    }
    return toolkit::TextoSQL(hoy);
}

bool FechaReporteValida(const std::string& fecha) {
    const std::int16_t dias = sesion().DiasParaReportes;
    if (dias <= 0) return true;
    auto f = toolkit::LeeFecha(fecha);
    if (!f) {
        Beep();
        return false;
    }
    auto hoy = toolkit::LeeFecha(FechaHoyServidor());
    if (toolkit::DiasEntre(*f, *hoy) > dias) {
        Beep();
        return false;
    }
    return true;
}

namespace detail {

std::string ExtraeIcono(const host::Conexion& cn, const std::string& fuente) {
    toolkit::CamposBin cb;
    cb.BaseDD = sesion().BaseDD;
    cb.Conexion = cn;
    const std::string archivo =
        toolkit::RutaNativa(ConSeparadorFinal(sesion().RutaImgs)) + "Tempo.img";
    return cb.BLOBextraer(fuente, "Imagen", archivo) ? archivo : std::string();
}

}  // namespace detail

std::string IconoPorDescripcion(const host::Conexion& cn, const std::string& descripcion,
                                const std::string& base) {
    return detail::ExtraeIcono(cn, base + ".iconos WHERE DESCripcion='" +
                                       toolkit::detail::EscapaSQL(descripcion) + "' LIMIT 1");
}

std::string IconoPorId(const host::Conexion& cn, std::int32_t id, const std::string& base) {
    return detail::ExtraeIcono(cn, base + ".iconos WHERE Id=" + std::to_string(id) + " LIMIT 1");
}

bool HayArchivo(const std::string& ruta) {
    return toolkit::DeArchivos().HayArchivo(ruta);
}
bool BorraArchivo(const std::string& ruta) {
    return toolkit::DeArchivos().BorraArchivo(ruta);
}

std::string ArchivoTemporal(const std::string& extension) {
    return toolkit::DeArchivos().ArchivoTemporal(sesion().RutaTanzo, extension);
}

host::Respuesta Mensaje(const std::string& texto, const std::string& titulo, host::Icono icono,
                        host::Botones botones) {
    return host::interaccion().Mensaje(titulo, texto, icono, botones);
}

void Beep() {
    host::interaccion().Beep();
}

void BarraPorcentaje(double i, double n, const std::string& texto) {
    host::interaccion().Progreso(toolkit::LibKRVM().Porcentaje(i, n), texto);
}

void TextoEstado(const std::string& texto) {
    host::interaccion().TextoEstado(texto);
}

}  // namespace paratzorep::session
