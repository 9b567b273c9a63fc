// RepAdmCargos: the charges (statement rows with CantidadCargo > 0) of customers
// ("cargosctes.rpt") or suppliers ("cargosprov.rpt") in a date range. No work table: the
// template is rendered straight over the statement table with a selection formula and the
// sort field chosen in cmbDato; the heading goes to the local work file's Titulo100.
#pragma once

#include <string>

#include "reports/accounts/FormaCuentas.h"

namespace paratzorep::reports {

class RepAdmCargos : public FormaCuentas {
  public:
    RepAdmCargos();

    void AjustaModo() override;

    static std::string FormulaSeleccion(const FiltrosCuenta& f);
    // The sort field of position `orden` of cmbDato (0 date, 1 amount, 2 concept, 3 account);
    // "" for none.
    static std::string CampoOrden(bool clientes, int orden);
    // caption + ", desde el dd/mmm/yyyy" + " hasta el dd/mmm/yyyy", each part only with its date.
    static std::string Encabezado(const std::string& caption, const std::string& desde,
                                  const std::string& hasta);
    static std::string Plantilla(bool clientes);

  protected:
    void Imprimir() override;
};

}  // namespace paratzorep::reports
