// The report form frame that every report form shares: load (skin, company database, date
// masks and default dates, bound combos, remembered settings, window position), the destination
// frame (screen, printer, file through the export dialog), the print sequence under one error
// handler, and closing. A report form adds its controls in its constructor and its own print
// steps in Imprimir().
#pragma once

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "host/BaseDD.h"
#include "reports/Formas.h"

namespace paratzorep::reports {

// A print step that failed: `Paso` says which, what() the reason. The frame shows both.
class ErrorPaso : public std::runtime_error {
  public:
    ErrorPaso(std::string paso, const std::string& motivo)
        : std::runtime_error(motivo), paso_(std::move(paso)) {}
    const std::string& Paso() const { return paso_; }

  private:
    std::string paso_;
};

class FormaReporte : public FormaBasica {
  public:
    // Renders the component-wide report request; gets the local work file's path.
    using Ejecutor = std::function<void(const std::string& archivoLocal)>;

    FormaReporte(std::string nombre, std::string caption);
    ~FormaReporte() override;

    // The print sequence (cmdImprimir): input and date checks, the report's own steps, the
    // runner, the work tables dropped whatever happened. True when the report was produced;
    // otherwise a message was shown (or the date guard beeped) and the form keeps its filters.
    bool Imprime();
    // The message of the last failed print ("" after a good one or a silent refusal).
    const std::string& UltimoError() const { return ultimoError_; }

    // Asks the host whether the window may close and unloads it; false when the host refuses.
    bool Cierra();

    // Printer and copies for the printer destination ("" = the default printer).
    std::string Impresora;
    std::int16_t Copias = 1;
    // The file chosen through the export dialog for the file destination.
    std::string ArchivoSalida;
    std::int16_t TipoSalida = 0;

    // Replaces the report runner (tests); the default is output::EjecutaReporte.
    void FijaEjecutor(Ejecutor ejecutor) { ejecutor_ = std::move(ejecutor); }

    // The company database opened on load.
    const host::Conexion& ConexionEmpresa() const { return cn_; }
    // The local work file: "Auxiliar.mdb" in the process's private folder.
    static std::string ArchivoLocal();
    // 0 screen, 1 printer, 2 file, from optDispos.
    std::int16_t Destino() const;

  protected:
    // The table whose first and last Fecha are the default dates ("" for none).
    virtual std::string TablaMovimientos() const { return {}; }
    // Binds the form's data combos (EnlazaCombo) once the company database is open.
    virtual void EnlazaCombos() {}
    // The controls whose values are remembered between sessions (settings file, section = the
    // form's name); none by default.
    virtual std::vector<std::string> Recordados() const { return {}; }
    // The report's own print steps: conditions, work table, request, Ejecuta().
    virtual void Imprimir() = 0;
    // Redraws the caption labels beside a box that lost the focus (EtiquetaNegra).
    virtual void AlSalir(Control&) {}
    // Runs once the form has loaded (combos bound, remembered settings and position read).
    virtual void AlTerminarCarga() {}
    // Whether a date box may be left blank (its condition is then dropped); by default every
    // visible date box must hold a date. A disabled date box is never checked.
    virtual bool FechaOpcional(const Control&) const { return false; }

    // --- Steps for Imprimir ---------------------------------------------------------------
    // Names the step under way; a failure is reported as having happened in it.
    void Paso(std::string descripcion) { paso_ = std::move(descripcion); }
    // Clones a work table (dropped when the print ends). A failure raises the error flag and
    // returns "": the caller checks session::HuboError() before filling.
    std::string ClonaTabla(const std::string& modelo, bool enReportes);
    // Runs a statement on the company database; returns the rows it affected.
    std::int64_t Ejecutar(const std::string& sql);
    // Ejecutar for the statement that fills a work table in one go (INSERT ... SELECT), with
    // the progress bar saying so and then how many rows went in, and how fast.
    std::int64_t Llena(const std::string& sql);
    // Writes the general values into the local work file's Generales (UsuarioImpresion added).
    void PasaGenerales(std::vector<std::pair<std::string, host::Valor>> valores);
    // Completes the request (destination, file, printer, copies, window title, printing user,
    // local work file) and calls the runner.
    void Ejecuta();
    // Ejecuta for a document format: the template under the reports folder, to the printer (to
    // the screen with VistaPrevia); the form's destination options are not consulted.
    void EjecutaFormato(const std::string& formato);
    // Ejecuta() into the file `ruta` of type `tipo`, whatever destination the form shows (a
    // report rendered once per account, to be sent on).
    void EjecutaArchivo(const std::string& ruta, std::int16_t tipo);
    // Binds a data combo over the company database.
    bool EnlazaCombo(Control& combo, const std::string& fuente, const std::string& campoLista,
                     const std::string& campoLigado);

    // A date box's text as typed, "" when it holds no date; and as "yyyy-mm-dd".
    std::string Fecha(std::int16_t i) const;
    std::string FechaSQL(std::int16_t i) const;

    void Load() final;
    void Unload() final;

  private:
    // Opens the company database; on failure says why (once) and answers false.
    bool AbreEmpresa();
    void ConectaEventos();
    void FechasPorOmision();
    void EligeDestino(std::int16_t opcion);
    void PideArchivo();
    bool RevisaEntradas();
    bool RevisaFechas();
    void BorraTablas(std::string& problemas);
    void LeeRecordados();
    void GuardaRecordados();
    void Avisa(const std::string& texto);

    host::Conexion cn_;
    std::vector<std::string> tablas_;
    std::string paso_;
    std::string causaError_;
    std::string ultimoError_;
    std::int16_t destinoAnterior_ = 0;
    Ejecutor ejecutor_;
};

// A report form that serves customers and suppliers (RepAdmCargos, RepAdmEdoCta). The facade
// loads it, then sets its report key, numeric code, mode label lblTipo ("C" or "P") and person
// label lblPersona, and calls AjustaModo() before showing it.
class FormularioPareado : public FormaReporte {
  public:
    FormularioPareado(std::string nombre, std::string caption);

    // Report key ("RepCargosCtes"); after ShowForm it reads key, tab, key.
    std::string Llave;
    // 73 CargosClientes, 79 CargosProveedores, 75 EdoCtaClientes, 81 EdoCtaProveedores.
    std::int16_t Codigo = 0;

    // True when lblTipo says customers ("C").
    bool ParaClientes() const { return Ctl("lblTipo").Caption == "C"; }
    // Fits the controls to the side that lblTipo names (captions, controls of one side only).
    virtual void AjustaModo() {}
};

namespace detail {
// True when a text holds a single quote or a backslash, which would break a quoted SQL literal.
bool RompeLiteral(const std::string& texto);
// True when a text is not valid UTF-8 (it would reach the report's files as it is).
bool TextoInvalido(const std::string& texto);
}  // namespace detail

}  // namespace paratzorep::reports
