// frmExportarReporte: the modal dialog in which the user says where a report sent to
// "&Archivo" goes: the file type (cmbTipo), the folder (lblRuta, chosen with cmdRuta) and the
// file name without extension (txtArchivo). On accept lblNumTipo holds the type's code, the
// engine's PrintFileType, read from the last two characters of the chosen item's text.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/Formulario.h"
#include "host/Interaccion.h"

namespace paratzorep::output {

class frmExportarReporte : public host::Formulario {
  public:
    // `sink` receives the beep and the folder choice; null means the process-wide one.
    explicit frmExportarReporte(host::Interaccion* sink = nullptr);

    // The full name made on accept: folder + name + the type's extension ("" before).
    const std::string& NombreCompleto() const { return nombreCompleto_; }
    bool Aceptado() const { return aceptado_; }
    bool Cancelado() const { return cancelado_; }

  protected:
    void Load() override;

  private:
    host::Interaccion& Sink() const;
    void Aceptar();
    void EligeRuta();
    void CambiaNombre();
    void SoloTexto();

    host::Interaccion* sink_;
    std::string nombreCompleto_;
    bool aceptado_ = false;
    bool cancelado_ = false;
};

// The list texts of cmbTipo: each type's text followed by its two-digit code; PDF only when
// `conPdf`. The system's five come first, in their order, then CSV and XLSX.
std::vector<std::string> TiposDeExportacion(bool conPdf);
// The extension of an item: what follows the "*" up to the ")" (the four characters ".txt",
// ".rtf", ".xls", ".doc", ".pdf" for the system's types); "" when the text has no "*".
std::string ExtensionDeTipo(const std::string& item);
// The code of an item: its last two characters read as a number.
std::int16_t CodigoDeTipo(const std::string& item);
// The folder with its final separator ("/" added when it ends in neither "/" nor "\").
std::string ConSeparador(const std::string& carpeta);

struct RespuestaExportar {
    bool aceptado = false;
    std::string nombreArchivo;  // full path with extension
    std::int16_t tipo = 0;      // the engine's PrintFileType
};

// Creates the dialog, shows it modally through `interaccion` and reads back lblRuta,
// txtArchivo and lblNumTipo. A host that accepts the dialog without pressing cmdAceptar gets
// it pressed for it; a blank name then leaves the answer not accepted.
RespuestaExportar PideArchivoDeSalida(host::Interaccion& interaccion);

}  // namespace paratzorep::output
