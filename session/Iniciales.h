// Iniciales: the public class through which the host hands over the session. Every property is
// write-only and lands in the process-wide session record (session/Sesion.h); a second
// instance writes into the same record.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <variant>

#include "host/BaseDD.h"
#include "host/DatosConecte.h"
#include "host/Menu.h"
#include "host/Objeto.h"
#include "host/ObjetosPDF.h"

namespace paratzorep::session {

// A late-bound value as the host passes it: empty, a boolean, a whole or real number, or text.
using Variante = std::variant<std::monostate, bool, std::int64_t, double, std::string>;

// Boolean conversion of a variant: numbers are true when not 0; texts "True"/"Verdadero"/"Si"
// or a non-zero number are true; anything else is false.
bool ABooleano(const Variante& v);

// Thrown when a value cannot be forwarded to the user-activity log object.
class ErrorSesion : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

class Iniciales {
  public:
    // Creates "kvtz5.LibKRVM" and "kvtz5.BitacoraUsuarios" into the session record; a failed
    // creation leaves the field empty and is not reported.
    Iniciales();

    void ArchivoCoordenadas(const std::string& v);
    void ArchivoINI(const std::string& v);
    void BaseDD(std::shared_ptr<host::BaseDD> v);
    void ClaveEmpresa(const std::string& v);
    void cPrograma(std::uint8_t v);
    void DatosConecte(std::shared_ptr<host::DatosConecte> v);
    // Always clears the field, whatever object is given.
    void DelRegistro(std::shared_ptr<host::Objeto> v);
    void DiasParaReportes(std::int16_t v);
    void EjecutarProceder(const Variante& v);
    void EsMonoUsuario(std::int16_t v);
    void IdDelUs(std::int16_t v);
    void ListaPlugins(const std::string& v);
    void Paswordsota(const std::string& v);
    void objMenu(std::shared_ptr<host::Menu> v);
    void objPDFCreator(std::shared_ptr<host::PDFCreator> v);
    void objPDFopt(std::shared_ptr<host::PDFOpciones> v);
    void RutaImgs(const std::string& v);
    void RutaEditaRpts(const std::string& v);
    void RutaPDFs(const std::string& v);
    // Stored with a final "/" added when it ends in neither "/" nor "\\" ("" becomes "/").
    void RutaTanzo(const std::string& v);
    void RutaRpts(const std::string& v);
    // Stored, then given to the log object's Version; throws ErrorSesion when there is no log
    // object (the stored value stays).
    void VersionDeEste(const std::string& v);
    void VistaPrevia(std::int16_t v);
    void UserlnFondoCelda(std::int32_t v);
    void UserlnLetrasCelda(std::int32_t v);
    void UserModulosUs(const std::string& v);
    // Stored, then given to the log object's Usuario; throws ErrorSesion without a log object.
    void UserUsuario(const std::string& v);
    void UsuarioAteb(const std::string& v);
    void PasswordAteb(const std::string& v);
    void RutaCFDs(const std::string& v);
    void MetodoDigestion(const std::string& v);
    void IdentRFC(const std::string& v);
    void RutaPublicDicom(const std::string& v);

    // Sets a text, number or boolean property by its name (start-up files, scripted hosts).
    // Returns false for a name that is not a property of this kind.
    bool AsignaPorNombre(const std::string& propiedad, const std::string& valor);
};

// Folder rule of RutaTanzo: a final "/" unless the value already ends in "/" or "\\".
std::string ConSeparadorFinal(const std::string& carpeta);

}  // namespace paratzorep::session
