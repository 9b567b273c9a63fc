// The component-wide session record: every property that the host sets through
// Iniciales lands here, and every other part of the component reads it from here.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace paratzorep::host {
class BaseDD;
class DatosConecte;
class Menu;
class PDFCreator;
class PDFOpciones;
class Objeto;
}  // namespace paratzorep::host

namespace paratzorep::toolkit {
class LibKRVM;
class BitacoraUsuarios;
}  // namespace paratzorep::toolkit

namespace paratzorep::session {

struct RegistroSesion {
    std::string ArchivoCoordenadas;
    std::string ArchivoINI;
    std::shared_ptr<host::BaseDD> BaseDD;
    std::string ClaveEmpresa;
    std::uint8_t cPrograma = 0;
    std::shared_ptr<host::DatosConecte> DatosConecte;
    std::shared_ptr<host::Objeto> DelRegistro;
    std::int16_t DiasParaReportes = 0;
    bool EjecutarProceder = false;
    std::int16_t EsMonoUsuario = 0;
    std::int16_t IdDelUs = 0;
    std::string ListaPlugins;
    std::string Paswordsota;
    std::shared_ptr<host::Menu> objMenu;
    std::shared_ptr<host::PDFCreator> objPDFCreator;
    std::shared_ptr<host::PDFOpciones> objPDFopt;
    std::string RutaImgs;
    std::string RutaEditaRpts;
    std::string RutaPDFs;
    std::string RutaTanzo;
    std::string RutaRpts;
    std::string VersionDeEste;
    std::int16_t VistaPrevia = 0;
    std::int32_t UserlnFondoCelda = 0;
    std::int32_t UserlnLetrasCelda = 0;
    std::string UserModulosUs;
    std::string UserUsuario;
    std::string UsuarioAteb;
    std::string PasswordAteb;
    std::string RutaCFDs;
    std::string MetodoDigestion;
    std::string IdentRFC;
    std::string RutaPublicDicom;

    // Objects that Iniciales creates through the helper-object factory ("kvtz5.<Clase>");
    // empty when creation failed.
    std::shared_ptr<toolkit::LibKRVM> LibKRVM;
    std::shared_ptr<toolkit::BitacoraUsuarios> BitacoraUsuarios;
};

// The one process-wide record (single user-interface thread; unsynchronised).
RegistroSesion& sesion();

}  // namespace paratzorep::session
