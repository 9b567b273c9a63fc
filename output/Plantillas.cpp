#include "output/Plantillas.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "host/Interaccion.h"
#include "host/Menu.h"
#include "host/Recordset.h"
#include "renderer/template/Plantilla.h"
#include "session/Sesion.h"
#include "session/SuModulo.h"
#include "toolkit/BitacoraUsuarios.h"
#include "toolkit/CamposBin.h"
#include "toolkit/DeArchivos.h"
#include "toolkit/Texto.h"

namespace paratzorep::output {

namespace detail {

std::shared_ptr<toolkit::DeArchivos> Archivos() {
    auto da = session::ObjetoAyuda<toolkit::DeArchivos>("DeArchivos");
    if (!da) throw std::runtime_error("No se pudo crear el objeto de archivos (kvtz5.DeArchivos)");
    return da;
}

// The binary-fields object configured on the store's table and columns.
std::shared_ptr<toolkit::CamposBin> Almacen(const host::Conexion& cn, const std::string& tabla) {
    auto cb = session::ObjetoAyuda<toolkit::CamposBin>("CamposBin");
    if (!cb)
        throw std::runtime_error("No se pudo crear el objeto de campos binarios (kvtz5.CamposBin)");
    if (!session::sesion().BaseDD)
        throw std::runtime_error("No hay objeto de acceso a datos para leer las plantillas");
    if (!cn) throw std::runtime_error("No hay conexión abierta con el almacén de plantillas");
    cb->BaseDD = session::sesion().BaseDD;
    cb->Conexion = cn;
    cb->CampoLlave = "Archivo";
    cb->CampoNumero = "Renglon";
    cb->CampoTexto = "Contenido";
    cb->cTablaRpts = tabla;
    cb->cRutaPrograma = session::sesion().RutaTanzo;
    return cb;
}

bool TablaValida(const std::string& tabla) {
    return !tabla.empty() && tabla.size() <= 64 &&
           std::all_of(tabla.begin(), tabla.end(),
                       [](unsigned char c) { return std::isalnum(c) || c == '_' || c == '.'; });
}

void ExigeTabla(const std::string& tabla) {
    if (!TablaValida(tabla))
        throw std::invalid_argument("Nombre de tabla de plantillas no válido: '" + tabla + "'");
}

host::BaseDD& Base() {
    auto& b = session::sesion().BaseDD;
    if (!b) throw std::runtime_error("No hay objeto de acceso a datos para leer las plantillas");
    return *b;
}

}  // namespace detail

bool& OlvidarFormato() {
    static bool v = false;
    return v;
}

std::string& FormatoRecordado() {
    static std::string v;
    return v;
}

bool& RecordarFormato() {
    static bool v = false;
    return v;
}

std::string ExtraePlantilla(const host::Conexion& cn, const std::string& archivo,
                            std::string& carpeta, const std::string& tabla) {
    detail::ExigeTabla(tabla);
    auto da = detail::Archivos();
    const std::string nombre = da->NombreDeArchivo(archivo);
    if (nombre.empty()) throw std::invalid_argument("No se indicó el nombre de la plantilla");
    if (carpeta.empty()) carpeta = session::sesion().RutaRpts;
    auto cb = detail::Almacen(cn, tabla);
    if (!carpeta.empty() && !da->CreaRuta(carpeta))
        throw std::runtime_error("No se pudo crear la carpeta " + carpeta + " para la plantilla " +
                                 nombre);
    try {
        return cb->ExtraeRPT(nombre, carpeta);
    } catch (const host::ErrorDatos&) {
        throw;
    } catch (const std::exception& e) {
        throw std::runtime_error("No se pudo sacar la plantilla " + nombre + " a " + carpeta +
                                 ": " + e.what());
    }
}

// --- Format list ------------------------------------------------------------------------------

frmListaFormatos::frmListaFormatos(const std::string& archivo, const std::string& omision,
                                   const host::Conexion& cn)
    : host::Formulario("frmListaFormatos", "Elija el formato"),
      archivo_(archivo),
      omision_(omision),
      cn_(cn) {
    Agrega("cmbFormato");
    Agrega("chkConservar", -1, "Conservar la elección");
    Agrega("cmdAceptar", -1, "&Aceptar");
    Agrega("cmdCancelar", -1, "&Cancelar");
}

void frmListaFormatos::Load() {
    auto& lista = Ctl("cmbFormato");
    lista.Items = {omision_ + " - Formato normal"};
    lista.ItemData = {omision_};
    host::Recordset rs;
    const std::string sql = "SELECT Archivo, DESCripcion FROM " + std::string(kTablaAnexos) +
                            " WHERE ArchivoPadre='" + toolkit::detail::EscapaSQL(archivo_) +
                            "' ORDER BY Id";
    if (!detail::Base().RstExecutar(rs, cn_, sql))
        throw host::ErrorDatos("Leer los formatos de " + archivo_, sql, 0,
                               detail::Base().UltimoError());
    for (rs.MoveFirst(); !rs.Eof(); rs.MoveNext()) {
        lista.Items.push_back(rs.Campo("Archivo").Texto() + " - " +
                              rs.Campo("DESCripcion").Texto());
        lista.ItemData.push_back(rs.Campo("Archivo").Texto());
    }
    lista.ListIndex = 0;
}

std::string frmListaFormatos::Elegido() const {
    const auto& lista = Ctl("cmbFormato");
    if (lista.ListIndex < 0 || static_cast<std::size_t>(lista.ListIndex) >= lista.ItemData.size())
        return omision_;
    return lista.ItemData[static_cast<std::size_t>(lista.ListIndex)];
}

bool frmListaFormatos::Conservar() const {
    return Ctl("chkConservar").Value != 0;
}

std::string EligeFormato(const std::string& archivo, const host::Conexion& cn,
                         const std::string& omision) {
    if (OlvidarFormato()) FormatoRecordado().clear();
    if (!FormatoRecordado().empty()) return FormatoRecordado();

    auto da = detail::Archivos();
    const std::string plantilla = da->NombreDeArchivo(archivo);
    const std::int32_t anexos = detail::Base().LastRec(
        cn, session::LlenaXXX(std::string(kTablaAnexos) + " WHERE ArchivoPadre='XXX'",
                              toolkit::detail::EscapaSQL(plantilla)));
    std::string resultado = omision;
    if (anexos > 0) {
        frmListaFormatos forma(plantilla, omision, cn);
        forma.Carga();
        forma.Caption =
            std::string("Elija el ") + (plantilla.rfind("fmt", 0) == 0 ? "formato" : "reporte");
        const bool aceptado = host::interaccion().Dialogo(forma);
        if (aceptado) {
            resultado = forma.Elegido();
            if (forma.Conservar()) FormatoRecordado() = da->NombreDeArchivo(resultado);
        }
        forma.Descarga();
    }
    return da->NombreDeArchivo(resultado);
}

std::string EditaPlantilla(const std::string& archivo, std::int16_t estiloVentana,
                           const host::Conexion& cn, bool sinElegir) {
    auto& s = session::sesion();
    auto bitacora = s.BitacoraUsuarios;
    if (!bitacora) bitacora = session::ObjetoAyuda<toolkit::BitacoraUsuarios>("BitacoraUsuarios");
    if (!bitacora)
        throw std::runtime_error(
            "No se pudo crear la bitácora de usuarios (kvtz5.BitacoraUsuarios)");
    if (!bitacora->BaseDD) bitacora->BaseDD = s.BaseDD;
    bitacora->ID = kIdEditaPlantilla;
    bitacora->Llave = archivo;
    bitacora->Graba(cn);

    std::string elegido = sinElegir ? archivo : EligeFormato(archivo, cn, archivo);
    if (elegido.empty()) return "";
    auto da = detail::Archivos();
    elegido = da->NombreDeArchivo(elegido);

    std::string carpeta = s.RutaEditaRpts;
    if (carpeta.empty())
        throw std::runtime_error(
            "No se indicó la carpeta de edición de plantillas (RutaEditaRpts)");
    // The editor's companion file goes beside the template when the store holds one.
    auto cb = detail::Almacen(cn, kTablaPlantillas);
    if (cb->Existe(kArchivoAuxiliar)) ExtraePlantilla(cn, kArchivoAuxiliar, carpeta);
    const std::string ruta = ExtraePlantilla(cn, elegido, carpeta);

    const std::string fecha = da->FechaYhora(ruta);
    da->AbreDocumento(ruta, estiloVentana);
    if (s.objMenu) {
        s.objMenu->mnTimerCrw.Tag = ruta + "\t" + fecha;
        s.objMenu->mnTimerCrw.Enabled = true;
    }
    return ruta;
}

// --- Loading and listing ------------------------------------------------------------------------

void RevisaPlantilla(const std::filesystem::path& ruta) {
    if (toolkit::detail::Minusculas(ruta.extension().string()) != ".rpt") return;
    std::ifstream in(ruta, std::ios::binary);
    if (!in)
        throw std::runtime_error("No se pudo leer el archivo " + ruta.string() + ": " +
                                 std::strerror(errno));
    const std::string texto((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    renderer::LeePlantillaTexto(texto, ruta.filename().string());
}

int GuardaPlantilla(const host::Conexion& cn, const std::filesystem::path& ruta,
                    const std::string& tabla) {
    detail::ExigeTabla(tabla);
    // A template that cannot be read would make every print of its report fail.
    RevisaPlantilla(ruta);
    auto cb = detail::Almacen(cn, tabla);
    return cb->Guarda(ruta.string(), ruta.filename().string());
}

std::vector<std::string> ImportaPlantillas(const host::Conexion& cn,
                                           const std::filesystem::path& carpeta,
                                           const std::string& tabla) {
    std::error_code ec;
    if (!std::filesystem::is_directory(carpeta, ec))
        throw std::runtime_error("La carpeta " + carpeta.string() + " no existe");
    std::vector<std::filesystem::path> rutas;
    for (const auto& e : std::filesystem::directory_iterator(carpeta, ec)) {
        if (!e.is_regular_file()) continue;
        if (toolkit::detail::Minusculas(e.path().extension().string()) == ".rpt")
            rutas.push_back(e.path());
    }
    if (ec) throw std::runtime_error("No se pudo leer la carpeta " + carpeta.string());
    std::sort(rutas.begin(), rutas.end());
    // All or nothing: every template is read before any is stored.
    std::string errores;
    for (const auto& r : rutas) {
        try {
            RevisaPlantilla(r);
        } catch (const std::exception& e) {
            errores += std::string("\n  ") + e.what();
        }
    }
    if (!errores.empty())
        throw std::runtime_error("No se guardó ninguna plantilla; corrija estas:" + errores);
    std::vector<std::string> guardadas;
    for (const auto& r : rutas) {
        GuardaPlantilla(cn, r, tabla);
        guardadas.push_back(r.filename().string());
    }
    return guardadas;
}

std::vector<PlantillaGuardada> ListaPlantillas(const host::Conexion& cn, const std::string& tabla) {
    detail::ExigeTabla(tabla);
    const std::string sql =
        "SELECT Archivo, SUM(LENGTH(Contenido)) AS Bytes, COUNT(*) AS Piezas "
        "FROM " +
        tabla + " GROUP BY Archivo ORDER BY Archivo";
    host::Recordset rs;
    if (!detail::Base().RstExecutar(rs, cn, sql))
        throw host::ErrorDatos("Listar las plantillas", sql, 0, detail::Base().UltimoError());
    std::vector<PlantillaGuardada> r;
    for (rs.MoveFirst(); !rs.Eof(); rs.MoveNext())
        r.push_back({rs.Campo("Archivo").Texto(), rs.Campo("Bytes").Entero(),
                     static_cast<std::int32_t>(rs.Campo("Piezas").Entero())});
    return r;
}

std::vector<std::string> ExportaPlantillas(const host::Conexion& cn,
                                           const std::filesystem::path& carpeta,
                                           const std::string& tabla) {
    std::vector<std::string> escritas;
    std::string destino = carpeta.string();
    if (destino.empty()) throw std::invalid_argument("No se indicó la carpeta de destino");
    for (const auto& p : ListaPlantillas(cn, tabla)) {
        // Names come from the table: never let one climb out of the folder.
        const std::string nombre = detail::Archivos()->NombreDeArchivo(p.archivo);
        if (nombre.empty() || nombre == "." || nombre == "..") continue;
        escritas.push_back(ExtraePlantilla(cn, nombre, destino, tabla));
    }
    return escritas;
}

}  // namespace paratzorep::output
