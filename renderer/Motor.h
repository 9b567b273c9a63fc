// The report engine object: the properties that the report runner sets, and Action = 1,
// which reads the rows once, lays the report out and sends it to the screen (PNG preview
// pages plus text pages on the standard output), to a printer or to a file. Its temporary
// files (the preview's pages unless a folder is given, the PDF sent to a printer) live in the
// process's private folder and are removed whatever way the run ends.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "renderer/Valor.h"
#include "renderer/layout/Maquetador.h"
#include "renderer/template/Plantilla.h"
#include "renderer/writers/Escritor.h"
#include "renderer/writers/TablaDatos.h"

namespace paratzorep::renderer {

// An engine error: a Spanish message for the user (what failed and why).
class ErrorMotor : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// Raw rows of the report's tables, as the data layer streams them: selected (as far as
// the data layer could) and sorted.
class CursorFilas {
  public:
    virtual ~CursorFilas() = default;
    virtual bool Siguiente() = 0;
    // The current row's value of tabla.campo (names without regard to letter case).
    virtual Valor Campo(std::string_view tabla, std::string_view campo) const = 0;
    // A value that does not depend on the rows (a heading table read once), asked when the
    // report has no rows so that its headings still print; empty by default.
    virtual Valor Constante(std::string_view, std::string_view) const { return {}; }
    // Where tabla.campo stands in the row, found once before the first row so that the
    // layout reads each row's values by position instead of by name; -1 when the cursor
    // answers that field through Campo only.
    virtual int Posicion(std::string_view, std::string_view) const { return -1; }
    // The current row's value at a position that Posicion gave.
    virtual const Valor& EnPosicion(int posicion) const;
};

// What the engine asks of the data layer for one run.
struct ConsultaReporte {
    const Plantilla* plantilla = nullptr;
    std::vector<std::string> archivosDatos;  // DataFiles(i), one per template table
    std::string conexion;                    // Connect
    std::string seleccion;                   // SelectionFormula
    std::vector<std::string> orden;          // groups first, then SortFields, then the template's
    std::vector<std::string> campos;         // every "tabla.campo" the report reads
};

struct DatosAbiertos {
    std::unique_ptr<CursorFilas> cursor;
    // False when the data layer left (part of) the selection formula to the engine: the
    // engine then evaluates the whole formula on each row.
    bool seleccionAplicada = false;
};

using ProveedorDatos = std::function<DatosAbiertos(const ConsultaReporte&)>;
// Prints a finished PDF: file, printer name, copies, job title. Errors throw.
using FuncionImprimir = std::function<void(const std::string& pdf, const std::string& impresora,
                                           int copias, const std::string& titulo)>;

// Where a run stands, for a host that shows progress: first the rows are read and laid out
// into pages, then the pages are written to the destination.
struct AvanceMotor {
    enum class Fase { Leyendo, Escribiendo };
    Fase fase = Fase::Leyendo;
    std::int64_t filas = 0;  // rows read so far (in all, once writing)
    int paginas = 0;         // pages laid out so far (in all, once writing)
    int escritas = 0;        // pages written so far
    double segundos = 0;     // since the phase began
};
using FuncionAvance = std::function<void(const AvanceMotor&)>;

struct ResultadoMotor {
    int paginas = 0;
    std::int64_t filas = 0;
    std::vector<std::string> archivos;  // files written (the file, the preview pages)
};

class Motor {
  public:
    static constexpr int kMaxIndice = 20;  // Formulas(i) and SortFields(i): 0..20

    Motor();
    ~Motor();
    Motor(const Motor&) = delete;
    Motor& operator=(const Motor&) = delete;

    // Reads the template; its data files become DataFiles(0..n-1). Throws ErrorPlantilla.
    void ReportFileName(const std::string& ruta);
    const std::string& ReportFileName() const { return archivo_; }

    int RetrieveDataFiles() const;
    std::string DataFiles(int i) const;
    void DataFiles(int i, const std::string& valor);

    std::string Formulas(int i) const;
    void Formulas(int i, const std::string& asignacion);  // "NOMBRE=expresión"
    std::string SortFields(int i) const;
    void SortFields(int i, const std::string& campo);  // "+{t.f}" / "-{t.f}"

    const std::string& SelectionFormula() const { return seleccion_; }
    void SelectionFormula(const std::string& f) { seleccion_ = f; }
    int Destination() const { return destino_; }
    void Destination(int d);  // 0 screen, 1 printer, 2 file
    int PrintFileType() const { return tipoArchivo_; }
    void PrintFileType(int t) { tipoArchivo_ = t; }
    const std::string& PrintFileName() const { return nombreArchivo_; }
    void PrintFileName(const std::string& n) { nombreArchivo_ = n; }
    const std::string& Connect() const { return conexion_; }
    void Connect(const std::string& c) { conexion_ = c; }
    const std::string& WindowTitle() const { return titulo_; }
    void WindowTitle(const std::string& t) { titulo_ = t; }
    int CopiesToPrinter() const { return copias_; }
    void CopiesToPrinter(int c) { copias_ = c; }
    const std::string& PrinterName() const { return impresora_; }
    void PrinterName(const std::string& n) { impresora_ = n; }

    // Action = 1 renders to the destination; any other value does nothing. Throws
    // ErrorMotor, ErrorPlantilla, formula::ErrorFormula or ErrorEscritura.
    void Action(int valor);

    // Beyond the original properties: what the host supplies.
    void Parametro(const std::string& nombre, const std::string& valor);  // UsuarioImpresion
    void Datos(ProveedorDatos proveedor) { proveedor_ = std::move(proveedor); }
    // Printing goes to CUPS (impresion/Impresora.h) unless another function is set.
    void Imprimir(FuncionImprimir f) { imprimir_ = std::move(f); }
    // The writer of a file type: over the laid-out pages, or over the report's data (tables).
    void RegistraEscritor(int codigo, FabricaEscritor fabrica);
    void RegistraTabla(int codigo, FabricaTabla fabrica);
    // The screen preview's PNG pages: written into this folder, or into one of the process's
    // private folder (removed when the process ends) when it is "", or not at all when
    // ImagenesVistaPrevia(false) (the text pages alone, as a command line wants them).
    void CarpetaVistaPrevia(const std::string& carpeta) { carpetaVista_ = carpeta; }
    const std::string& CarpetaVistaPrevia() const { return carpetaVista_; }
    void ImagenesVistaPrevia(bool si) { imagenesVista_ = si; }
    void SalidaPantalla(std::ostream* salida) { salidaPantalla_ = salida; }
    // The screen's text pages: fitted to `columnas` where the layout allows (0: the report's
    // own width), separated by `separador` (a form feed by default).
    void AnchoPantalla(int columnas) { anchoPantalla_ = columnas; }
    void SeparadorPantalla(std::string separador) { separadorPantalla_ = std::move(separador); }
    // Progress of Action: told at the start and end of each phase and, in between, every
    // `intervalo` seconds at most (rows are counted, the clock is looked at every 256 rows and
    // at each page), so that showing it costs nothing per row.
    void Avance(FuncionAvance f, double intervalo = 0.2) {
        avance_ = std::move(f);
        intervaloAvance_ = intervalo;
    }

    const ResultadoMotor& Resultado() const { return resultado_; }

  private:
    static void RevisaIndice(int i, const char* propiedad);
    Plantilla PlantillaConFormulas() const;
    void Renderiza();

    std::string archivo_;
    std::unique_ptr<Plantilla> plantilla_;
    std::vector<std::string> archivosDatos_;
    std::vector<std::string> formulas_ = std::vector<std::string>(kMaxIndice + 1);
    std::vector<std::string> orden_ = std::vector<std::string>(kMaxIndice + 1);
    std::string seleccion_;
    int destino_ = 0;
    int tipoArchivo_ = 0;
    std::string nombreArchivo_;
    std::string conexion_;
    std::string titulo_;
    int copias_ = 1;
    std::string impresora_;
    std::map<std::string, std::string> parametros_;
    ProveedorDatos proveedor_;
    FuncionImprimir imprimir_;
    std::map<int, FabricaEscritor> fabricas_;
    std::map<int, FabricaTabla> fabricasTabla_;
    std::string carpetaVista_;
    bool imagenesVista_ = true;
    std::ostream* salidaPantalla_ = nullptr;
    int anchoPantalla_ = 0;
    std::string separadorPantalla_ = "\f";
    FuncionAvance avance_;
    double intervaloAvance_ = 0.2;
    ResultadoMotor resultado_;
};

}  // namespace paratzorep::renderer
