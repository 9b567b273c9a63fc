// The component-wide report request that a form fills and the report runner reads, and the
// component-wide error flag that a failing print step raises.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace paratzorep::session {

class SolicitudReporte {
  public:
    static constexpr int kMaxEntradas = 21;  // formulas and sort fields, indices 0..20

    // Template: a bare name ("bitacoraus.rpt", ".rpt" may be missing) or a path.
    std::string Plantilla;
    // 0 screen, 1 printer, 2 file.
    std::int16_t Destino = 0;
    // File type code and file name for destination 2.
    std::int16_t TipoArchivo = 0;
    std::string NombreArchivo;
    std::int16_t Copias = 1;
    std::string Impresora;
    std::string TituloVentana;
    // Selection formula in the template's formula language.
    std::string FormulaSeleccion;
    // Data-file mappings "tabla*tablaDeTrabajo".
    std::vector<std::string> ArchivosDatos;
    // Path of the local work file for the template's ".mdb" data files.
    std::string ArchivoLocal;
    // The printing user handed to the templates.
    std::string UsuarioImpresion;

    // Formula i (0..20): "NOMBRE='valor'". Out of range throws std::out_of_range.
    void Formula(int i, const std::string& texto);
    const std::string& Formula(int i) const;
    // Sort field i (0..20): "+{tabla.campo}" or "-{tabla.campo}".
    void SortField(int i, const std::string& texto);
    const std::string& SortField(int i) const;
    // The formulas and sort fields set, in index order, without the empty ones.
    std::vector<std::string> Formulas() const;
    std::vector<std::string> SortFields() const;
    // Adds a mapping "tabla*tablaDeTrabajo".
    void MapeaTabla(const std::string& tablaPlantilla, const std::string& tablaTrabajo);

    // Back to an empty request (one copy, screen).
    void Limpia();

  private:
    std::array<std::string, kMaxEntradas> formulas_{};
    std::array<std::string, kMaxEntradas> orden_{};
};

// The one request of the component.
SolicitudReporte& solicitud();

// The component-wide error flag: raised by a failing print step, checked by the form after
// cloning its work table, lowered when a print starts.
bool& HuboError();

}  // namespace paratzorep::session
