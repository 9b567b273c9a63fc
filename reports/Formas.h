// The report forms of the facade as bare classes (name, caption and the destination frame's
// controls), and the registry through which the facade creates them. A report family
// registers its full form under the same name (RegistraForma), replacing the bare one.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "reports/Formulario.h"

namespace paratzorep::reports {

// The destination frame's dressing that every report form gets on load: Frame2 "Enviar reporte
// a: ", the options optDispos(0..2) "&Pantalla", "Im&presora", "&Archivo" with their pictures
// imgPant, imgImpr, imgArch, the file labels lblTipoArchivo and lblArchivoReporte (shown with
// the file destination only) and cmdImprimir "Pr&ocesar". Existing controls are kept and
// re-captioned; the screen is chosen when no option is.
void VisteMarcoDestino(Formulario& forma);

// A bare report form: name, caption, "Imprimir en:" options and the print button.
class FormaBasica : public Formulario {
  public:
    FormaBasica(std::string nombre, std::string caption);
};

#define TZ_FORMA_BASICA(Clase, Titulo)           \
    class Clase : public FormaBasica {           \
      public:                                    \
        Clase() : FormaBasica(#Clase, Titulo) {} \
    };

TZ_FORMA_BASICA(RepAdmApar, "Apartados")
TZ_FORMA_BASICA(RepAdmGymAsistencias, "Asistencias al gimnasio")
TZ_FORMA_BASICA(RepAdmChecador, "Checador del gimnasio")
TZ_FORMA_BASICA(RepAdmCompras, "Compras")
TZ_FORMA_BASICA(RepAdmComprasND, "Compras no deducibles")
TZ_FORMA_BASICA(RepAdmConsigna, "Consignaciones")
TZ_FORMA_BASICA(RepAdmCortes, "Cortes de carne")
TZ_FORMA_BASICA(RepAdmCotiza, "Cotizaciones")
TZ_FORMA_BASICA(RepAdmDevCtes, "Devoluciones de clientes")
TZ_FORMA_BASICA(RepAdmDevProv, "Devoluciones a proveedores")
TZ_FORMA_BASICA(RepAdmEmbarques, "Embarques")
TZ_FORMA_BASICA(RepAdmEntraCompra, "Entradas y compras")
TZ_FORMA_BASICA(RepAdmEspVtas, "Especial de ventas")
TZ_FORMA_BASICA(RepAdmMovCanc, "Movimientos cancelados")
TZ_FORMA_BASICA(RepAdmMDC, "Movimientos de clientes")
TZ_FORMA_BASICA(RepAdmOrdenes, "Órdenes de trabajo")
TZ_FORMA_BASICA(RepAdmPedidos, "Pedidos")
TZ_FORMA_BASICA(RepAdmProdsRecib, "Productos recibidos")
TZ_FORMA_BASICA(RepAdmRecep, "Recepción de mercancía")
TZ_FORMA_BASICA(RepAdmKits, "Salidas y entradas de kits")
TZ_FORMA_BASICA(RepAdmVtasCanc, "Ventas canceladas")

#undef TZ_FORMA_BASICA

using CreadorForma = std::function<std::shared_ptr<Formulario>()>;

// Registers (or replaces) the maker of a form by its class name.
void RegistraForma(const std::string& nombre, CreadorForma creador);
// Registers the bare class of every form of the facade. Called by the registry on first use;
// calling it again puts the bare classes back.
void RegistraFormasBasicas();
// Creates a form by class name; throws ErrorFormulario when no maker is registered.
std::shared_ptr<Formulario> CreaForma(const std::string& nombre);
// The names of the forms registered, sorted.
std::vector<std::string> FormasRegistradas();

}  // namespace paratzorep::reports
