// What the statement and charges forms share: the paired form over the statement tables
// (edoctacli for customers, edoctaprov for suppliers) with its date range, account key range
// (the account's name shown beside each key), currency list and the selection conditions they
// build alike.
#pragma once

#include <string>
#include <vector>

#include "reports/Marco.h"

namespace paratzorep::reports {

// The filters of a print, as the user set them.
struct FiltrosCuenta {
    bool clientes = true;
    std::string moneda;  // bound id of the chosen currency; "" when none is chosen
    std::string desde;   // dates as typed (dd/mm/yyyy); "" when blank
    std::string hasta;
    std::string clave0;  // account keys, trimmed; "" when blank
    std::string clave1;
    bool sinCancelaciones = false;  // statements of customers only
};

// The statement table of a side.
std::string TablaEdoCta(bool clientes);

// The selection conditions of an account key range over `tabla`.Clave: a single key when only
// one box is filled, a range when both are.
std::vector<std::string> CondicionesClave(const std::string& tabla, const std::string& clave0,
                                          const std::string& clave1);
// "{tabla.Fecha}>=Date(y,m,d)" (or "<=" when `hasta`); "" when the text is not a date.
std::string CondicionFecha(const std::string& tabla, const std::string& fecha, bool hasta);

// The name of a customer (or supplier) by its key; "" when the key is unknown or the lookup
// fails (the print then reports the server).
std::string NombreDeCuenta(const host::Conexion& cn, bool clientes, const std::string& clave);

class FormaCuentas : public FormularioPareado {
  public:
    FormaCuentas(std::string nombre, std::string caption);

    void AjustaModo() override;
    FiltrosCuenta Filtros() const;

  protected:
    void EnlazaCombos() override;
    void AlSalir(Control& c) override;
    bool FechaOpcional(const Control&) const override { return true; }

    // "Cliente" or "Proveedor".
    std::string Persona() const;
    // The headings every statement report prints: the period and the filters in words.
    std::string TextoPeriodo(const FiltrosCuenta& f) const;
    std::string TextoFiltros(const FiltrosCuenta& f, bool monedaUnoPorOmision) const;
    // Writes the report's heading into the local work file's Titulo100 (column Encabezado).
    void PasaEncabezado(const std::string& encabezado);
};

}  // namespace paratzorep::reports
