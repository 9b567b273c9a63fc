#include "session/Iniciales.h"

#include <charconv>
#include <functional>
#include <map>

#include "session/Sesion.h"
#include "toolkit/BitacoraUsuarios.h"
#include "toolkit/Fabrica.h"
#include "toolkit/LibKRVM.h"
#include "toolkit/Texto.h"

namespace paratzorep::session {

namespace detail {

std::shared_ptr<toolkit::BitacoraUsuarios> ExigeBitacora(const char* propiedad) {
    auto& b = sesion().BitacoraUsuarios;
    if (!b) {
        throw ErrorSesion(std::string("No se pudo pasar ") + propiedad +
                          " a la bitácora de usuarios: el objeto kvtz5.BitacoraUsuarios no "
                          "existe");
    }
    return b;
}

bool TextoVerdadero(const std::string& texto) {
    std::string t = toolkit::detail::Minusculas(toolkit::detail::Recorta(texto));
    if (t == "true" || t == "verdadero" || t == "si" || t == "sí") return true;
    toolkit::LibKRVM kv;
    return kv.kvVal(t) != 0;
}

}  // namespace detail

bool ABooleano(const Variante& v) {
    return std::visit(
        [](const auto& x) -> bool {
            using T = std::decay_t<decltype(x)>;
            if constexpr (std::is_same_v<T, std::monostate>) {
                return false;
            } else if constexpr (std::is_same_v<T, std::string>) {
                return detail::TextoVerdadero(x);
            } else {
                return x != 0;
            }
        },
        v);
}

std::string ConSeparadorFinal(const std::string& carpeta) {
    if (!carpeta.empty() && (carpeta.back() == '/' || carpeta.back() == '\\')) return carpeta;
    return carpeta + "/";
}

Iniciales::Iniciales() {
    sesion().LibKRVM = toolkit::Crea<toolkit::LibKRVM>("LibKRVM");
    sesion().BitacoraUsuarios = toolkit::Crea<toolkit::BitacoraUsuarios>("BitacoraUsuarios");
    if (sesion().BitacoraUsuarios) sesion().BitacoraUsuarios->BaseDD = sesion().BaseDD;
}

void Iniciales::ArchivoCoordenadas(const std::string& v) {
    sesion().ArchivoCoordenadas = v;
}
void Iniciales::ArchivoINI(const std::string& v) {
    sesion().ArchivoINI = v;
}
void Iniciales::BaseDD(std::shared_ptr<host::BaseDD> v) {
    sesion().BaseDD = std::move(v);
    // The log writes through the session's data-access object.
    if (sesion().BitacoraUsuarios) sesion().BitacoraUsuarios->BaseDD = sesion().BaseDD;
}
void Iniciales::ClaveEmpresa(const std::string& v) {
    sesion().ClaveEmpresa = v;
}
void Iniciales::cPrograma(std::uint8_t v) {
    sesion().cPrograma = v;
}
void Iniciales::DatosConecte(std::shared_ptr<host::DatosConecte> v) {
    sesion().DatosConecte = std::move(v);
}
void Iniciales::DelRegistro(std::shared_ptr<host::Objeto>) {
    sesion().DelRegistro.reset();
}
void Iniciales::DiasParaReportes(std::int16_t v) {
    sesion().DiasParaReportes = v;
}
void Iniciales::EjecutarProceder(const Variante& v) {
    sesion().EjecutarProceder = ABooleano(v);
}
void Iniciales::EsMonoUsuario(std::int16_t v) {
    sesion().EsMonoUsuario = v;
}
void Iniciales::IdDelUs(std::int16_t v) {
    sesion().IdDelUs = v;
}
void Iniciales::ListaPlugins(const std::string& v) {
    sesion().ListaPlugins = v;
}
void Iniciales::Paswordsota(const std::string& v) {
    sesion().Paswordsota = v;
}
void Iniciales::objMenu(std::shared_ptr<host::Menu> v) {
    sesion().objMenu = std::move(v);
}
void Iniciales::objPDFCreator(std::shared_ptr<host::PDFCreator> v) {
    sesion().objPDFCreator = std::move(v);
}
void Iniciales::objPDFopt(std::shared_ptr<host::PDFOpciones> v) {
    sesion().objPDFopt = std::move(v);
}
void Iniciales::RutaImgs(const std::string& v) {
    sesion().RutaImgs = v;
}
void Iniciales::RutaEditaRpts(const std::string& v) {
    sesion().RutaEditaRpts = v;
}
void Iniciales::RutaPDFs(const std::string& v) {
    sesion().RutaPDFs = v;
}
void Iniciales::RutaTanzo(const std::string& v) {
    sesion().RutaTanzo = ConSeparadorFinal(v);
}
void Iniciales::RutaRpts(const std::string& v) {
    sesion().RutaRpts = v;
}
void Iniciales::VersionDeEste(const std::string& v) {
    sesion().VersionDeEste = v;
    detail::ExigeBitacora("VersionDeEste")->Version = v;
}
void Iniciales::VistaPrevia(std::int16_t v) {
    sesion().VistaPrevia = v;
}
void Iniciales::UserlnFondoCelda(std::int32_t v) {
    sesion().UserlnFondoCelda = v;
}
void Iniciales::UserlnLetrasCelda(std::int32_t v) {
    sesion().UserlnLetrasCelda = v;
}
void Iniciales::UserModulosUs(const std::string& v) {
    sesion().UserModulosUs = v;
}
void Iniciales::UserUsuario(const std::string& v) {
    sesion().UserUsuario = v;
    detail::ExigeBitacora("UserUsuario")->Usuario = v;
}
void Iniciales::UsuarioAteb(const std::string& v) {
    sesion().UsuarioAteb = v;
}
void Iniciales::PasswordAteb(const std::string& v) {
    sesion().PasswordAteb = v;
}
void Iniciales::RutaCFDs(const std::string& v) {
    sesion().RutaCFDs = v;
}
void Iniciales::MetodoDigestion(const std::string& v) {
    sesion().MetodoDigestion = v;
}
void Iniciales::IdentRFC(const std::string& v) {
    sesion().IdentRFC = v;
}
void Iniciales::RutaPublicDicom(const std::string& v) {
    sesion().RutaPublicDicom = v;
}

bool Iniciales::AsignaPorNombre(const std::string& propiedad, const std::string& valor) {
    using Setter = std::function<void(Iniciales&, const std::string&)>;
    toolkit::LibKRVM kv;
    auto i16 = [&kv](const std::string& s) { return static_cast<std::int16_t>(kv.kvVal(s)); };
    auto i32 = [&kv](const std::string& s) { return static_cast<std::int32_t>(kv.kvVal(s)); };
    // A boolean property takes -1/0 as the host passes them, also "true"/"false".
    auto b16 = [](const std::string& s) -> std::int16_t { return ABooleano(Variante{s}) ? -1 : 0; };
    const std::map<std::string, Setter> setters = {
        {"archivocoordenadas", [](Iniciales& i, const std::string& s) { i.ArchivoCoordenadas(s); }},
        {"archivoini", [](Iniciales& i, const std::string& s) { i.ArchivoINI(s); }},
        {"claveempresa", [](Iniciales& i, const std::string& s) { i.ClaveEmpresa(s); }},
        {"cprograma",
         [&](Iniciales& i, const std::string& s) {
             i.cPrograma(static_cast<std::uint8_t>(i16(s)));
         }},
        {"diasparareportes",
         [&](Iniciales& i, const std::string& s) { i.DiasParaReportes(i16(s)); }},
        {"ejecutarproceder",
         [](Iniciales& i, const std::string& s) { i.EjecutarProceder(Variante{s}); }},
        {"esmonousuario", [&](Iniciales& i, const std::string& s) { i.EsMonoUsuario(b16(s)); }},
        {"iddelus", [&](Iniciales& i, const std::string& s) { i.IdDelUs(i16(s)); }},
        {"listaplugins", [](Iniciales& i, const std::string& s) { i.ListaPlugins(s); }},
        {"paswordsota", [](Iniciales& i, const std::string& s) { i.Paswordsota(s); }},
        {"rutaimgs", [](Iniciales& i, const std::string& s) { i.RutaImgs(s); }},
        {"rutaeditarpts", [](Iniciales& i, const std::string& s) { i.RutaEditaRpts(s); }},
        {"rutapdfs", [](Iniciales& i, const std::string& s) { i.RutaPDFs(s); }},
        {"rutatanzo", [](Iniciales& i, const std::string& s) { i.RutaTanzo(s); }},
        {"rutarpts", [](Iniciales& i, const std::string& s) { i.RutaRpts(s); }},
        {"versiondeeste", [](Iniciales& i, const std::string& s) { i.VersionDeEste(s); }},
        {"vistaprevia", [&](Iniciales& i, const std::string& s) { i.VistaPrevia(b16(s)); }},
        {"userlnfondocelda",
         [&](Iniciales& i, const std::string& s) { i.UserlnFondoCelda(i32(s)); }},
        {"userlnletrascelda",
         [&](Iniciales& i, const std::string& s) { i.UserlnLetrasCelda(i32(s)); }},
        {"usermodulosus", [](Iniciales& i, const std::string& s) { i.UserModulosUs(s); }},
        {"userusuario", [](Iniciales& i, const std::string& s) { i.UserUsuario(s); }},
        {"usuarioateb", [](Iniciales& i, const std::string& s) { i.UsuarioAteb(s); }},
        {"passwordateb", [](Iniciales& i, const std::string& s) { i.PasswordAteb(s); }},
        {"rutacfds", [](Iniciales& i, const std::string& s) { i.RutaCFDs(s); }},
        {"metododigestion", [](Iniciales& i, const std::string& s) { i.MetodoDigestion(s); }},
        {"identrfc", [](Iniciales& i, const std::string& s) { i.IdentRFC(s); }},
        {"rutapublicdicom", [](Iniciales& i, const std::string& s) { i.RutaPublicDicom(s); }},
    };
    auto it = setters.find(toolkit::detail::Minusculas(toolkit::detail::Recorta(propiedad)));
    if (it == setters.end()) return false;
    it->second(*this, valor);
    return true;
}

}  // namespace paratzorep::session
